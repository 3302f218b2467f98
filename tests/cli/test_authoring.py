"""The rules author's tools: tov test, tov graph, tov check --strict, --format
json on every command, the one-line answer to an unknown command, and bash
completion. Exact outputs and exit statuses.

Run as: python3 test_authoring.py TOV_PROGRAM SOURCE_DIR
"""

import json
import os
import shutil
import subprocess
import sys
import unittest

import test_commands as base
from test_commands import (APPROVED_EDIT, IN_WORK, RETITLE, RULES, SKIP_REVIEW, TO_REVIEW,
                           TRANSITION_REFUSED, ProgramTest, batch_line)

SOURCE = None


def suite_with(*cases, rules="rules.json", datamodel="dm.json"):
    return {"rules": rules, "datamodel": datamodel, "cases": list(cases)}


PASSING = {"name": "retitle", "kind": "edit", "request": RETITLE,
           "expect": {"Result": "Success"}}
FAILING = {"name": "skip review", "kind": "edit", "request": SKIP_REVIEW,
           "expect": {"Result": "Success", "TriggerInitialization": "{Approver:pending}"}}


class UnknownCommand(ProgramTest):
    def test_an_unknown_command_is_told_in_a_line_with_the_nearest_one(self):
        result = self.tov("chek", "--rules", "rules.json")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr,
                         "tov: unknown command 'chek'; did you mean 'check'?\n"
                         "Usage: tov COMMAND [OPTIONS]; run 'tov --help' for the commands.\n")

    def test_help_names_the_new_commands(self):
        result = self.tov("--help")
        for command in ("test", "graph"):
            self.assertIn(command, result.stdout)


class TestCommand(ProgramTest):
    def run_suite(self, suite, *extra):
        self.write_json("suite.json", suite)
        return self.tov("test", "suite.json", *extra)

    def test_all_pass(self):
        result = self.run_suite(suite_with(PASSING))
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (0, "1 passed, 0 failed\n", ""))

    def test_a_failing_case_is_told_with_expected_and_actual(self):
        result = self.run_suite(suite_with(PASSING, FAILING))
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout,
                         'FAIL skip review (suite.json): Result: expected "Success", got '
                         '"Failure"; TriggerInitialization: expected "{Approver:pending}", '
                         "got nothing\n"
                         '  expected: {"Result":"Success","TriggerInitialization":'
                         '"{Approver:pending}"}\n'
                         '  actual:   {"Result":"Failure","ResultComment":"Transition violation '
                         'detected: For Part: Status can transition from \\"In Work\\" to '
                         '\\"In Work\\", \\"In Review\\""}\n'
                         "1 passed, 1 failed\n")
        self.assertEqual(result.stderr, "")

    def test_verbose_tells_passing_cases_too(self):
        result = self.run_suite(suite_with(PASSING, FAILING), "-v")
        self.assertEqual(result.stdout.splitlines()[0], "PASS retitle (suite.json)")
        self.assertEqual(result.stdout.splitlines()[-1], "1 passed, 1 failed")

    def test_exact_cases_allow_no_other_keyword(self):
        loose = {"name": "review", "kind": "edit", "request": TO_REVIEW,
                 "expect": {"Result": "Failure"}}
        exact = dict(loose, name="review exactly", exact=True)
        result = self.run_suite(suite_with(loose, exact))
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout.splitlines(), [
            'FAIL review exactly (suite.json): ResultComment: expected nothing, got '
            '"File constraint violation detected: For Part: When Status transitions from '
            '\\"In Work\\" to \\"In Review\\" we MUST upload a new representation file"',
            '  expected: {"Result":"Failure"}',
            '  actual:   {"Result":"Failure","ResultComment":"File constraint violation '
            'detected: For Part: When Status transitions from \\"In Work\\" to \\"In Review\\" '
            'we MUST upload a new representation file"}',
            "1 passed, 1 failed",
        ])

    def test_a_request_file_relative_to_the_suite(self):
        os.mkdir(self.path("suites"))
        self.write_json("suites/retitle.json", RETITLE)
        self.write_json("suites/suite.json", suite_with(
            {"name": "from a file", "kind": "edit", "requestFile": "retitle.json",
             "expect": json.loads(APPROVED_EDIT), "exact": True},
            rules="../rules.json", datamodel="../dm.json"))
        result = self.tov("test", "suites/suite.json")
        self.assertEqual((result.returncode, result.stdout), (0, "1 passed, 0 failed\n"))

    def test_texts_are_compared_as_eval_prints_them(self):
        refused = json.loads(TRANSITION_REFUSED)
        result = self.run_suite(suite_with({"name": "skip", "kind": "edit",
                                            "request": SKIP_REVIEW, "expect": refused,
                                            "exact": True}))
        self.assertEqual((result.returncode, result.stdout), (0, "1 passed, 0 failed\n"))

    def test_several_suites_add_up(self):
        self.write_json("one.json", suite_with(PASSING))
        self.write_json("two.json", suite_with(PASSING, FAILING))
        result = self.tov("test", "one.json", "two.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout.splitlines()[-1], "2 passed, 1 failed")

    def test_json_report(self):
        result = self.run_suite(suite_with(PASSING, FAILING), "--format", "json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(json.loads(result.stdout), {
            "passed": 1, "failed": 1, "cases": [
                {"suite": "suite.json", "name": "retitle", "passed": True,
                 "expected": {"Result": "Success"},
                 "actual": {"Result": "Success", "ResultComment": "Edit attempt approved"},
                 "warnings": [], "mismatches": []},
                {"suite": "suite.json", "name": "skip review", "passed": False,
                 "expected": {"Result": "Success", "TriggerInitialization": "{Approver:pending}"},
                 "actual": {"Result": "Failure", "ResultComment": json.loads(
                     TRANSITION_REFUSED)["ResultComment"]},
                 "warnings": [], "mismatches": [
                    {"keyword": "Result", "expected": "Success", "actual": "Failure"},
                    {"keyword": "TriggerInitialization", "expected": "{Approver:pending}",
                     "actual": None}]},
            ]})

    def test_junit_report(self):
        result = self.run_suite(suite_with(PASSING, FAILING), "--format", "junit")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout,
                         '<?xml version="1.0" encoding="UTF-8"?>\n'
                         '<testsuites name="tov test" tests="2" failures="1">\n'
                         '  <testsuite name="suite.json" tests="2" failures="1">\n'
                         '    <testcase classname="suite.json" name="retitle"/>\n'
                         '    <testcase classname="suite.json" name="skip review">\n'
                         '      <failure message="Result: expected &quot;Success&quot;, got '
                         '&quot;Failure&quot;; TriggerInitialization: expected '
                         '&quot;{Approver:pending}&quot;, got nothing">Result: expected '
                         '&quot;Success&quot;, got &quot;Failure&quot;&#10;'
                         'TriggerInitialization: expected &quot;{Approver:pending}&quot;, got '
                         'nothing&#10;expected: {&quot;Result&quot;:&quot;Success&quot;,'
                         '&quot;TriggerInitialization&quot;:&quot;{Approver:pending}&quot;}&#10;'
                         'actual: {&quot;Result&quot;:&quot;Failure&quot;,&quot;ResultComment'
                         '&quot;:&quot;Transition violation detected: For Part: Status can '
                         'transition from \\&quot;In Work\\&quot; to \\&quot;In Work\\&quot;, '
                         '\\&quot;In Review\\&quot;&quot;}&#10;</failure>\n'
                         '    </testcase>\n'
                         '  </testsuite>\n'
                         '</testsuites>\n')

    def test_a_keyword_that_no_answer_holds_makes_the_suite_unreadable(self):
        misspelt = dict(PASSING, expect={"Reslt": "Success"})
        result = self.run_suite(suite_with(misspelt))
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertEqual(result.stderr,
                         'tov: suite suite.json: case 1 (retitle): "expect" names "Reslt", which '
                         'no answer holds; did you mean "Result"?\n')
        unknown = dict(PASSING, expect={"Verdict": "Success"})
        result = self.run_suite(suite_with(unknown))
        self.assertEqual(result.stderr,
                         'tov: suite suite.json: case 1 (retitle): "expect" names "Verdict", '
                         'which no answer holds; an answer holds "Result", "ResultComment", '
                         '"ObjectFamilyMembers", "ManualLinkAncestors", '
                         '"SelectedVersioningAttribute", "ForcedOverwrite", "ForcedSpinup" or '
                         '"TriggerInitialization"\n')

    def test_the_suite_schema_admits_the_keywords_that_tov_test_does(self):
        result = self.run_suite(suite_with(dict(PASSING, expect={"Verdict": "Success"})))
        told = result.stderr.rstrip("\n").split("an answer holds ", 1)[1]
        admitted = json.loads(told.replace(" or ", ", ").join("[]"))
        with open(os.path.join(SOURCE, "schemas", "test-suite.schema.json"),
                  encoding="utf-8") as f:
            schema = json.load(f)
        expect = schema["$defs"]["case"]["properties"]["expect"]
        self.assertEqual(expect["propertyNames"]["enum"], admitted)

    def test_names_the_data_model_does_not_describe_are_warned_of(self):
        typo = {"name": "typo", "kind": "edit",
                "request": base.edit(dict(base.IN_WORK, Titel="Bracket"), {"Stauts": "Released"}),
                "expect": {"Result": "Success"}}
        other = {"name": "other type", "kind": "edit",
                 "request": dict(RETITLE, objectType="Prat"), "expect": {"Result": "Success"}}
        result = self.run_suite(suite_with(PASSING, typo, other))
        # The library approves all three: only the warnings tell.
        self.assertEqual((result.returncode, result.stdout), (0, "3 passed, 0 failed\n"))
        self.assertEqual(result.stderr.splitlines(), [
            'tov: warning: typo (suite.json): the request\'s attribute "Titel" is none that the '
            'data model describes for Part; did you mean "Title"?',
            'tov: warning: typo (suite.json): the request\'s attribute "Stauts" is none that the '
            'data model describes for Part; did you mean "Status"?',
            'tov: warning: other type (suite.json): the request\'s object type "Prat" is none '
            'that the data model describes; did you mean "Part"?',
        ])
        strict = self.run_suite(suite_with(PASSING, typo, other), "--strict")
        self.assertEqual((strict.returncode, strict.stdout), (1, "3 passed, 0 failed\n"))
        self.assertEqual(strict.stderr, result.stderr.replace("tov: warning: ", "tov: error: "))
        report = json.loads(self.run_suite(suite_with(PASSING, other), "--format",
                                           "json").stdout)
        self.assertEqual([case["warnings"] for case in report["cases"]], [
            [], ['the request\'s object type "Prat" is none that the data model describes; '
                 'did you mean "Part"?']])
        # A request that names only what the data model describes is told nothing.
        clean = self.run_suite(suite_with(PASSING), "--strict")
        self.assertEqual((clean.returncode, clean.stderr), (0, ""))

    def test_eval_warns_of_the_same_names_and_answers_as_before(self):
        self.write_json("typo.json", base.edit(base.IN_WORK, {"Stauts": "Released"}))
        result = self.tov("eval", "edit", *self.documents(), "typo.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, APPROVED_EDIT + "\n")
        self.assertEqual(result.stderr,
                         'tov: warning: the request\'s attribute "Stauts" is none that the data '
                         'model describes for Part; did you mean "Status"?\n'
                         "Success! Edit attempt approved\n")
        self.write_json("retitle.json", RETITLE)
        result = self.tov("eval", "edit", *self.documents(), "retitle.json")
        self.assertEqual(result.stderr, "Success! Edit attempt approved\n")

    def test_suites_that_cannot_be_read(self):
        self.write("broken.json", '{"rules": ')
        self.write_json("list.json", [])
        cases = {
            "missing.json": "tov: cannot read suite missing.json: No such file or directory\n",
            "broken.json": "tov: broken.json:1:11: Invalid value.\n",
            "list.json": "tov: suite list.json is a JSON array, not an object\n",
        }
        faulty = {
            "no cases": ({"rules": "rules.json", "datamodel": "dm.json"},
                         'needs "rules" and "datamodel" (paths) and "cases" (a list)'),
            "no name": (suite_with(dict(PASSING, name="")),
                        'case 1 has no "name" (a string that is not empty)'),
            "unknown kind": (suite_with(dict(PASSING, kind="judge")),
                             'case 1 (retitle): "kind" is "judge"; expected edit, '
                             "edit-before-resolution, save, save-before-resolution, link or "
                             "options"),
            "both requests": (suite_with(dict(PASSING, requestFile="r.json")),
                              'case 1 (retitle): needs either "request" (an object) or '
                              '"requestFile" (a path)'),
            "missing request file": (suite_with({"name": "a", "kind": "edit",
                                                 "requestFile": "r.json", "expect": {}}),
                                     "case 1 (a): cannot read request r.json: No such file "
                                     "or directory"),
            "text no string": (suite_with(dict(PASSING, expect={"Result": True})),
                               'case 1 (retitle): the expected text of "Result" is no string'),
            "exact no bool": (suite_with(dict(PASSING, exact="yes")),
                              'case 1 (retitle): "exact" must be true or false'),
        }
        for name, (suite, message) in faulty.items():
            self.write_json(name + ".json", suite)
            cases[name + ".json"] = "tov: suite " + name + ".json" + (
                " " if message.startswith("needs") else ": ") + message + "\n"
        for suite, message in cases.items():
            with self.subTest(suite=suite):
                result = self.tov("test", suite, "--format", "json")
                self.assertEqual((result.returncode, result.stdout, result.stderr),
                                 (2, "", message))

    def test_documents_that_do_not_load(self):
        self.write_json("bad.json", {"transitions": {"Part": [{}]}})
        result = self.run_suite(suite_with(PASSING, rules="bad.json"))
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertEqual(result.stderr,
                         "bad.json: Transition rule for Part demands ALL keywords: "
                         "[attribute,fromValue,toValue]\n"
                         'bad.json:1:27: note: transitions: Part #1: has no "attribute", and a '
                         'transition rule needs "attribute", "fromValue" and "toValue"\n'
                         "tov: the documents of suite suite.json do not load\n")

    def test_the_example_scenario_passes(self):
        result = self.tov("test", os.path.join(SOURCE, "examples", "tests.json"), "-v")
        self.assertEqual(result.returncode, 0, result.stdout)
        lines = result.stdout.splitlines()
        self.assertEqual(lines[-1], "25 passed, 0 failed")
        self.assertTrue(all(line.startswith("PASS ") for line in lines[:-1]))


GRAPH_RULES = dict(RULES, transitionsFreeze={"Part": [
    {"attribute": "Status", "freezeConditionAttribute": "Approver",
     "freezeConditionValue": "nobody"},
    {"attribute": "Status", "freezeConditionAttribute": "Status",
     "freezeConditionValue": "Released"}]})
GRAPH_RULES["transitions"] = {"ALL": RULES["transitions"]["Part"] + [
    {"attribute": "Status", "fromValue": "Released", "toValue": ["Obsolete"]}]}

# Drawn as the library judges each move of Status alone: "Obsolete" has no
# transition rule, so it may move anywhere; the freeze on Status itself keeps
# "Released" where it is, which the last comment tells.
DOT = """// The lifecycle of Status for part: values with a double border have no way out.
// Each edge is a move of Status alone that the library approves as an edit or a save.
digraph "part Status" {
  rankdir=LR;
  node [shape=box, style=rounded];
  "In Work";
  "In Review";
  "Released" [peripheries=2];
  "Obsolete";
  "In Work" -> "In Review" [label="file upload required, frozen while Approver is nobody"];
  "In Review" -> "In Work" [label="forced spin-up, frozen while Approver is nobody"];
  "In Review" -> "Released" [label="asks for the family, asks for the ancestors, frozen while Approver is nobody"];
  "Obsolete" -> "In Work" [label="frozen while Approver is nobody"];
  "Obsolete" -> "In Review" [label="frozen while Approver is nobody"];
  "Obsolete" -> "Released" [label="asks for the family, asks for the ancestors, frozen while Approver is nobody"];
  // refused: "Released" -> "Obsolete": Transition freeze violation detected: For Part: When Status equals "Released", then Status must remain unchanged.
}
"""

MERMAID = """stateDiagram-v2
    state "In Work" as s0
    state "In Review" as s1
    state "Released" as s2
    state "Obsolete" as s3
    s0 --> s1 : file upload required, frozen while Approver is nobody
    s1 --> s0 : forced spin-up, frozen while Approver is nobody
    s1 --> s2 : asks for the family, asks for the ancestors, frozen while Approver is nobody
    s3 --> s0 : frozen while Approver is nobody
    s3 --> s1 : frozen while Approver is nobody
    s3 --> s2 : asks for the family, asks for the ancestors, frozen while Approver is nobody
    s2 --> [*]
    %% refused: "Released" -> "Obsolete": Transition freeze violation detected: For Part: When Status equals "Released", then Status must remain unchanged.
"""


class GraphCommand(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write_json("graph-rules.json", GRAPH_RULES)

    def graph(self, *extra):
        return self.tov("graph", "--rules", "graph-rules.json", "--dm", "dm.json", *extra)

    def test_dot_by_default(self):
        result = self.graph("--type", "part", "--attribute", "Status")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, DOT, ""))

    def test_mermaid(self):
        result = self.graph("--type", "part", "--attribute", "Status", "--format", "mermaid")
        self.assertEqual((result.returncode, result.stdout, result.stderr), (0, MERMAID, ""))

    def test_an_attribute_without_transitions(self):
        result = self.graph("--type", "Part", "--attribute", "Title")
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (1, "", "tov: graph-rules.json has no transition rule of Title for "
                                 "Part\n"))

    def test_a_type_the_data_model_does_not_describe(self):
        result = self.graph("--type", "Bolt", "--attribute", "Status")
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (2, "", "tov: the data model dm.json describes no object type Bolt\n"))

    def test_the_type_and_attribute_are_required(self):
        result = self.tov("graph", "--rules", "graph-rules.json", "--dm", "dm.json", "--type",
                          "Part")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn("--attribute is required", result.stderr)

    def test_the_data_model_is_required_since_the_library_judges_every_move(self):
        result = self.tov("graph", "--rules", "graph-rules.json", "--type", "Part",
                          "--attribute", "Status")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertTrue(result.stderr.startswith("tov: --dm is required\n"), result.stderr)

    def test_two_rules_from_one_value_draw_neither_move_and_any_is_no_state(self):
        self.write_json("document.json", {"transitions": {"Part": [
            {"attribute": "Status", "fromValue": "Draft", "toValue": ["In Review"]},
            {"attribute": "Status", "fromValue": "Draft", "toValue": ["Approved"]},
            {"attribute": "Status", "fromValue": "<any>", "toValue": ["Obsolete"]}]}})
        result = self.tov("graph", "--rules", "document.json", "--dm", "dm.json", "--type",
                          "Part", "--attribute", "Status", "--format", "mermaid")
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        self.assertEqual(result.stdout, """stateDiagram-v2
    state "Draft" as s0
    state "In Review" as s1
    state "Approved" as s2
    state "Obsolete" as s3
    s1 --> s3
    s2 --> s3
    s0 --> [*]
    s3 --> [*]
    %% refused: "Draft" -> "In Review": Transition violation detected: For Part: Status can transition from "<any>" to "Obsolete"
    %% refused: "Draft" -> "Approved": Transition violation detected: For Part: Status can transition from "<any>" to "Obsolete"
    %% refused: "Draft" -> "Obsolete": Transition violation detected: For Part: Status can transition from "Draft" to "In Review"
""")

    def test_every_edge_is_approved_by_eval(self):
        for line in DOT.splitlines():
            if " -> " not in line or line.lstrip().startswith("//"):
                continue
            source, target = [side.strip(' ";').split('" [')[0].strip('"')
                              for side in line.split(" -> ")]
            asked = [self.eval_move(kind, source, target) for kind in
                     ("edit-before-resolution", "save-before-resolution")]
            with self.subTest(move=(source, target)):
                self.assertTrue(any(status in (0, 3) for status in asked), asked)

    def eval_move(self, kind, source, target):
        self.write_json("move.json", {"objectType": "part", "initialAttributes": {
            "Status": source}, "targetAttributes": {"Status": target}})
        return self.tov("eval", kind, "--rules", "graph-rules.json", "--dm", "dm.json",
                        "move.json").returncode

    @unittest.skipIf(shutil.which("dot") is None, "Graphviz is not installed")
    def test_graphviz_renders_it(self):
        result = self.graph("--type", "Part", "--attribute", "Status")
        rendered = subprocess.run(["dot", "-Tsvg"], input=result.stdout, capture_output=True,
                                  text=True, timeout=60)
        self.assertEqual(rendered.returncode, 0, rendered.stderr)
        self.assertIn("<svg", rendered.stdout)


STRICT_RULES = {
    "transitionz": {},
    "manualLinks": [],
    "transitions": {"Part": [
        {"attribute": "Stauts", "fromValue": "In Work", "toValue": ["In Review"]},
        {"attribute": "Status", "fromValue": "In Work", "toValue": ["In Review", "In Work"]},
        {"attribute": "Status", "fromValue": "In Work", "toValue": ["In Work", "In Review"]}]},
    "fileConstraints": {"Part": [
        {"attribute": "Status", "fromValue": "In Work", "toValue": "In Review",
         "updateFile": "mandatory"},
        {"attribute": "Status", "fromValue": "In Review", "toValue": "Released",
         "updateFile": "ALWAYS"}]},
    "conflictResolutions": {
        "ALL": [{"attribute": "Status", "fromValue": "In Review", "toValue": "In Work",
                 "updatesFile": "N_A", "conflictResolution": "overwrite"}],
        "Part": [{"attribute": "Status", "fromValue": "<any>", "toValue": "in work",
                  "updatesFile": "Yes", "conflictResolution": "spinup"}]},
    "versioningSelections": {"Part": [
        {"conditionAttribute1": "Status", "conditionValue1": ["Obsolete"],
         "versioningOption": ["Title"]}]},
    "triggers": {"Part": [{"attribute": "<any>", "triggerInitialize": "Approver",
                           "initializationValue": "pending"}]},
}

STRICT_DATA_MODEL = {"OverwriteLabel": "Overwrite", "structureObjects": [
    {"name": "Part", "dmObjectType": "DMitem", "attributes": [
        {"name": "Number", "type": "REGULAR", "primary": True},
        {"name": "Revision", "type": "VERSIONING", "primary": True},
        {"name": "Status", "type": "REGULAR", "primary": False},
        {"name": "Title", "type": "TEXT", "primary": False},
        {"name": "Approver", "type": "REGULAR", "primary": False}]}]}

# Each finding: its document, section, place and message, in the order of the
# documents (the data model first) and of their texts.
STRICT_FINDINGS = [
    ('strict-dm.json', 'structureObjects', "1:87",
     'structureObjects: Part: dmObjectType "DMitem" loads as DMITEM; the word is "DMITEM", exactly in this case'),
    ('strict-dm.json', 'structureObjects', "1:312",
     'structureObjects: Part Title: type "TEXT" is none of REGULAR, FILE, VERSIONING and loads as REGULAR'),
    ('strict.json', 'transitionz', "1:2",
     'transitionz: unknown section "transitionz" is ignored; did you mean "transitions"?'),
    ('strict.json', 'manualLinks', "1:21",
     'manualLinks: the section is a JSON array, not an object, and is ignored'),
    ('strict.json', 'transitions', "1:79",
     'transitions: Part #1 (explain 1): "Stauts" is no attribute of Part in the data model'),
    ('strict.json', 'transitions', "1:226",
     'transitions: Part #3 (explain 3): repeats Part #2 (explain 2)'),
    ('strict.json', 'transitions', "1:226",
     'transitions: Part #3 (explain 3): Status from "In Work" has a rule already, Part #2 (explain 2), and every rule that applies must hold, so "In Work" may move only to what all of them list: "In Work", "In Review"; write the targets of "In Work" in one rule'),
    ('strict.json', 'fileConstraints', "1:429",
     'fileConstraints: Part #1 (explain 1): updateFile "mandatory" loads as no constraint, so the rule never forbids anything; the word is "MANDATORY", exactly in this case'),
    ('strict.json', 'fileConstraints', "1:504",
     'fileConstraints: Part #2 (explain 2): toValue "Released" is no value of Status that a transition rule names (In Work, In Review); add a transition rule for it, or correct it'),
    ('strict.json', 'fileConstraints', "1:530",
     'fileConstraints: Part #2 (explain 2): updateFile "ALWAYS" is none of FORBIDDEN, MANDATORY and loads as no constraint, so the rule never forbids anything'),
    ('strict.json', 'conflictResolutions', "1:715",
     'conflictResolutions: Part #1 (explain 2): forces spinup where ALL #1 (explain 1) forces overwrite on Status from "<any>" to "in work"'),
    ('strict.json', 'conflictResolutions', "1:798",
     'conflictResolutions: Part #1 (explain 2): updatesFile "Yes" loads as N_A, so the rule holds whether or not the file is updated; the word is "YES", exactly in this case'),
    ('strict.json', 'versioningSelections', "1:928",
     'versioningSelections: Part #1 (explain 1): conditionValue1 "Obsolete" is no value of Status that a transition rule names (In Work, In Review); add a transition rule for it, or correct it'),
    ('strict.json', 'versioningSelections', "1:961",
     'versioningSelections: Part #1 (explain 1): offers no versioning attribute of Part (Revision), so no spin-up can follow the selection'),
    ('strict.json', 'triggers', "1:1011",
     'triggers: Part #1 (explain 1): attribute "<any>" is no wildcard where rules are looked up, so the rule applies only to an attribute named "<any>"'),
]


class StrictCheck(ProgramTest):
    def setUp(self):
        super().setUp()
        self.write_json("strict.json", STRICT_RULES)
        self.write_json("strict-dm.json", STRICT_DATA_MODEL)

    def test_every_finding_is_an_error(self):
        result = self.tov("check", "--strict", "--rules", "strict.json", "--dm",
                          "strict-dm.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout.splitlines(), [
            "strict-dm.json: Succesfully initialized DM info",
            "strict.json: Successfully initialized TOV rules",
        ] + [document + ":" + place + ": error: " + message
             for document, _, place, message in STRICT_FINDINGS])

    def test_without_strict_the_same_findings_are_warnings(self):
        result = self.tov("check", "--rules", "strict.json", "--dm", "strict-dm.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.splitlines(), [
            "strict-dm.json: Succesfully initialized DM info",
            "strict.json: Successfully initialized TOV rules",
        ] + [document + ":" + place + ": warning: " + message
             for document, _, place, message in STRICT_FINDINGS])

    def test_json_lists_them_as_faults(self):
        result = self.tov("check", "--strict", "--format", "json", "--rules", "strict.json",
                          "--dm", "strict-dm.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(json.loads(result.stdout), {
            "documents": [
                {"document": "strict-dm.json", "comment": "Succesfully initialized DM info"},
                {"document": "strict.json", "comment": "Successfully initialized TOV rules"}],
            "faults": [{"document": document, "section": section, "message": message,
                        "line": int(place.split(":")[0]), "column": int(place.split(":")[1])}
                       for document, section, place, message in STRICT_FINDINGS],
            "notes": [], "warnings": []})

    def test_json_lists_warnings_without_strict(self):
        result = self.tov("check", "--format", "json", "--rules", "strict.json", "--dm",
                          "strict-dm.json")
        self.assertEqual(result.returncode, 0)
        answer = json.loads(result.stdout)
        self.assertEqual((answer["faults"], answer["notes"]), ([], []))
        self.assertEqual([(warning["line"], warning["column"], warning["message"])
                          for warning in answer["warnings"]],
                         [(int(place.split(":")[0]), int(place.split(":")[1]), message)
                          for _, _, place, message in STRICT_FINDINGS])

    def test_notes_become_errors(self):
        self.write_json("nothing.json", {})
        result = self.tov("check", "--strict", "--rules", "nothing.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "nothing.json: Successfully initialized TOV rules\n"
                                        "nothing.json: error: no rules, so every request will "
                                        "be refused with \"Uninitialized TOV rules\"\n")

    def test_clean_documents_pass(self):
        result = self.tov("check", "--strict", *self.documents())
        self.assertEqual((result.returncode, result.stdout),
                         (0, "dm.json: Succesfully initialized DM info\n"
                             "rules.json: Successfully initialized TOV rules\n"))

    def test_attributes_are_checked_only_with_a_data_model(self):
        result = self.tov("check", "--strict", "--rules", "strict.json")
        self.assertEqual(result.returncode, 1)
        self.assertNotIn("Stauts", result.stdout)
        self.assertNotIn("versioning attribute", result.stdout)
        self.assertIn("repeats Part #2", result.stdout)


def transition(source, targets):
    return {"attribute": "Status", "fromValue": source, "toValue": targets}


# Each finding of check, with a document (as it is written, indented) that
# triggers it and the line told, and the same document put right, which
# checks clean.
FINDINGS = {
    "a section named twice": (
        '{\n'
        '  "transitions": {"Part": [{"attribute": "Status", "fromValue": "In Work", '
        '"toValue": ["In Review"]}]},\n'
        '  "transitions": {"Part": [{"attribute": "Status", "fromValue": "In Review", '
        '"toValue": ["Released"]}]}\n'
        '}\n',
        'doc.json:3:3: warning: transitions: "transitions" is named a second time (first at '
        '2:3); the library reads only the first and ignores this section without a word: '
        'merge the two',
        '{\n'
        '  "transitions": {"Part": [{"attribute": "Status", "fromValue": "In Work", '
        '"toValue": ["In Review"]},\n'
        '                           {"attribute": "Status", "fromValue": "In Review", '
        '"toValue": ["Released"]}]}\n'
        '}\n'),
    "a member named twice": (
        '{\n'
        '  "transitions": {"Part": [\n'
        '    {"attribute": "Status", "fromValue": "In Work", "fromValue": "In Review", '
        '"toValue": ["Released"]}\n'
        '  ]}\n'
        '}\n',
        'doc.json:3:53: warning: transitions: Part #1 (explain 1): "fromValue" is named a '
        'second time in one object (first at 3:29); a JSON object names each member once, and '
        'which of the two counts is not told: keep one',
        '{\n'
        '  "transitions": {"Part": [\n'
        '    {"attribute": "Status", "fromValue": "In Review", "toValue": ["Released"]}\n'
        '  ]}\n'
        '}\n'),
    "two transition rules from one value": (
        {"transitions": {"Part": [transition("Draft", ["In Review"]),
                                  transition("Draft", ["Approved"])]}},
        'doc.json:11:7: warning: transitions: Part #2 (explain 2): Status from "Draft" has a '
        'rule already, Part #1 (explain 1), and every rule that applies must hold, so "Draft" '
        'may move only to what all of them list: none; write the targets of "Draft" in one '
        'rule',
        {"transitions": {"Part": [transition("Draft", ["In Review", "Approved"])]}}),
    "<any> as a transition's from value": (
        {"transitions": {"Part": [transition("Draft", ["In Review"]),
                                  transition("<any>", ["Obsolete"])]}},
        'doc.json:13:22: warning: transitions: Part #2 (explain 2): fromValue "<any>" holds on '
        'every value of Status, beside the rules for each value, and all rules that apply must '
        'hold: every value may move only to "Obsolete"; write a rule for each value instead',
        {"transitions": {"Part": [transition("Draft", ["In Review", "Obsolete"]),
                                  transition("In Review", ["Obsolete"])]}}),
    "a value that no transition rule names": (
        {"transitions": {"Part": [transition("In Review", ["Approved"])]},
         "fileConstraints": {"Part": [{"attribute": "Status", "fromValue": "In Review",
                                       "toValue": "Aproved", "updateFile": "MANDATORY"}]}},
        'doc.json:18:20: warning: fileConstraints: Part #1 (explain 1): toValue "Aproved" is '
        'no value of Status that a transition rule names (In Review, Approved); did you mean '
        '"Approved"?',
        {"transitions": {"Part": [transition("In Review", ["Approved"])]},
         "fileConstraints": {"Part": [{"attribute": "Status", "fromValue": "In Review",
                                       "toValue": "Approved", "updateFile": "MANDATORY"}]}}),
    "a value in another case where values compare exactly": (
        {"transitions": {"Part": [transition("In Review", ["Approved"])]},
         "historyLinks": {"Part": [{"attribute": "Status", "fromValue": "<any>",
                                    "toValue": "Approved",
                                    "acceptableHistoryLinkValues": ["approved"]}]}},
        'doc.json:20:11: warning: historyLinks: Part #1 (explain 1): acceptableHistoryLinkValues '
        '"approved" differs only in case from "Approved", which the transition rules name, and '
        'this member is compared exactly, case included: write "Approved"',
        {"transitions": {"Part": [transition("In Review", ["Approved"])]},
         "historyLinks": {"Part": [{"attribute": "Status", "fromValue": "<any>",
                                    "toValue": "Approved",
                                    "acceptableHistoryLinkValues": ["Approved"]}]}}),
    "a target in another case": (
        {"transitions": {"Part": [transition("In Review", ["Approved"]),
                                  transition("Approved", ["Obsolete"]),
                                  transition("Obsolete", ["obsolete"])]}},
        'doc.json:22:11: warning: transitions: Part #3 (explain 3): toValue "obsolete" differs '
        'only in case from "Obsolete", which Part #2 (explain 2) names first, and targets are '
        'compared exactly, case included: write "Obsolete"',
        {"transitions": {"Part": [transition("In Review", ["Approved"]),
                                  transition("Approved", ["Obsolete"]),
                                  transition("Obsolete", ["Obsolete"])]}}),
    "a member that no judgement reads": (
        {"transitions": {"Part": [{"attribute": "Status", "fromValue": "In Work",
                                   "toValues": ["In Review"], "toValue": ["In Review"]}]}},
        'doc.json:7:9: warning: transitions: Part #1 (explain 1): "toValues" is no member of a '
        'transition rule and is ignored; did you mean "toValue"?',
        {"transitions": {"Part": [transition("In Work", ["In Review"])]}}),
    "a link rule's from value": (
        {"transitions": {"Part": [transition("In Review", ["Released"])]},
         "manualLinks": {"Part": [{"attribute": "Status", "fromValue": "In Review",
                                   "toValue": "Released",
                                   "acceptableManualLinkValues": ["Released"]}]}},
        'doc.json:17:22: warning: manualLinks: Part #1 (explain 1): fromValue "In Review" is '
        'ignored: the rule holds whenever an edit changes Status to "Released", whatever it was '
        'before; write "<any>"',
        {"transitions": {"Part": [transition("In Review", ["Released"])]},
         "manualLinks": {"Part": [{"attribute": "Status", "fromValue": "<any>",
                                   "toValue": "Released",
                                   "acceptableManualLinkValues": ["Released"]}]}}),
}

# Each rule that keeps a document from loading: the library's fault, the
# program's note after it, and the rule put right.
LOAD_FAULTS = {
    "a member missing": (
        {"transitions": {"Part": [transition("In Work", ["In Review"]),
                                  {"attribute": "Status", "fromValue": "In Review"}]}},
        ["doc.json: Transition rule for Part demands ALL keywords: "
         "[attribute,fromValue,toValue]",
         'doc.json:11:7: note: transitions: Part #2: has no "toValue", and a transition rule '
         'needs "attribute", "fromValue" and "toValue"'],
        {"transitions": {"Part": [transition("In Work", ["In Review"]),
                                  transition("In Review", ["Released"])]}}),
    "a member of the wrong type": (
        {"transitions": {"Part": [transition("In Work", "In Review")]}},
        ["doc.json: Transition rule value for toValue of Part should be a string.",
         'doc.json:7:20: note: transitions: Part #1: "toValue" is a JSON string, not a list of '
         'strings: write ["In Review"]'],
        {"transitions": {"Part": [transition("In Work", ["In Review"])]}}),
}


class EachFinding(ProgramTest):
    def check(self, document, *extra):
        text = document if isinstance(document, str) else json.dumps(document, indent=2) + "\n"
        self.write("doc.json", text)
        return self.tov("check", "--rules", "doc.json", "--dm", "dm.json", *extra)

    def test_each_finding_at_its_place_and_not_once_put_right(self):
        loaded = ["dm.json: Succesfully initialized DM info",
                  "doc.json: Successfully initialized TOV rules"]
        for name, (document, line, right) in FINDINGS.items():
            with self.subTest(finding=name):
                result = self.check(document)
                self.assertEqual((result.returncode, result.stdout.splitlines()),
                                 (0, loaded + [line]))
                strict = self.check(document, "--strict")
                self.assertEqual((strict.returncode, strict.stdout.splitlines()),
                                 (1, loaded + [line.replace(": warning: ", ": error: ", 1)]))
                clean = self.check(right, "--strict")
                self.assertEqual((clean.returncode, clean.stdout.splitlines()), (0, loaded))

    def test_a_member_named_twice_in_the_data_model(self):
        text = json.dumps(base.DATA_MODEL, indent=2) + "\n"
        self.write("twice-dm.json", text.replace(
            '"dmObjectType": "DMITEM",', '"dmObjectType": "DMITEM",\n      "name": "Parts",', 1))
        self.write_json("doc.json", {"transitions": {"Part": [transition("A", ["B"])]}})
        result = self.tov("check", "--rules", "doc.json", "--dm", "twice-dm.json")
        self.assertEqual(result.stdout.splitlines()[-1],
                         'twice-dm.json:7:7: warning: structureObjects: "name" is named a second '
                         'time in one object (first at 5:7); a JSON object names each member '
                         'once, and which of the two counts is not told: keep one')
        self.write("once-dm.json", text)
        result = self.tov("check", "--strict", "--rules", "doc.json", "--dm", "once-dm.json")
        self.assertEqual(result.returncode, 0, result.stdout)

    def test_notices_are_told_once_when_a_document_does_not_load(self):
        result = self.check(
            '{"transitions": {"Part": [\n'
            '  {"attribute": "Status", "fromValue": "A", "toValue": ["B"], "allowJumps": true},\n'
            '  {"attribute": "Status", "fromValue": "B", "allowReverse": true}\n'
            ']}}\n')
        self.assertEqual((result.returncode, result.stdout.splitlines()), (1, [
            "dm.json: Succesfully initialized DM info",
            "doc.json: Transition rule for Part demands ALL keywords: "
            "[attribute,fromValue,toValue]",
            'doc.json:3:3: note: transitions: Part #2: has no "toValue", and a transition rule '
            'needs "attribute", "fromValue" and "toValue"',
            "doc.json: note: We do not support the allowJumps keyword in the Transition Rule.",
            "doc.json: note: We do not support the allowReverse keyword in the Transition Rule.",
        ]))

    def test_each_rule_that_does_not_load_is_pointed_at(self):
        for name, (document, lines, right) in LOAD_FAULTS.items():
            with self.subTest(fault=name):
                result = self.check(document)
                self.assertEqual((result.returncode, result.stdout.splitlines()),
                                 (1, ["dm.json: Succesfully initialized DM info"] + lines))
                clean = self.check(right, "--strict")
                self.assertEqual(clean.returncode, 0, clean.stdout)


class JudgingOrder(ProgramTest):
    def test_the_readme_states_the_order_as_explain_help_does(self):
        help_text = self.tov("explain", "--help").stdout
        start = help_text.index("The order of judgement.")
        paragraph = help_text[start:help_text.index("\nWith --format json", start)]
        chain = " ".join(paragraph.split()).replace("The order of judgement. ", "", 1)
        with open(os.path.join(SOURCE, "README.md"), encoding="utf-8") as f:
            readme = " ".join(f.read().split())
        self.assertIn(chain, readme)


class JsonFormat(ProgramTest):
    def test_eval(self):
        self.write_json("request.json", RETITLE)
        result = self.tov("eval", "edit", *self.documents(), "request.json", "--format", "json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout,
                         '{"result":true,"comment":"Edit attempt approved","keywords":'
                         '{"Result":"Success","ResultComment":"Edit attempt approved"},'
                         '"options":[],"initialize":{},"missing":[]}\n')

    def test_eval_decodes_triggers_options_and_what_is_missing(self):
        for name, request, kind, expected in (
            ("trigger", TO_REVIEW, "save", {"initialize": {"Approver": "pending"}}),
            ("missing", base.RELEASE, "edit",
             {"missing": ["membersOfFamily", "manualLinkAncestors"], "result": False}),
            ("options", base.OPTIONS_SPINUP, "options", {"options": ["Revision"]}),
        ):
            with self.subTest(case=name):
                self.write_json("request.json", request)
                result = self.tov("eval", kind, *self.documents(), "request.json", "--format",
                                  "json")
                answer = json.loads(result.stdout)
                for key, value in expected.items():
                    self.assertEqual(answer[key], value)

    def test_batch_carries_the_id_back(self):
        self.write("requests.jsonl",
                   '{"id":"a-1","kind":"edit","request":' + json.dumps(RETITLE) + "}\n"
                   + batch_line("edit", RETITLE) + "\n"
                   + '{"id":{"n":[1,2]},"kind":"judge"}\n')
        result = self.tov("batch", *self.documents(), "--format", "json", "requests.jsonl")
        self.assertEqual(result.returncode, 1)
        approved = ('"result":true,"comment":"Edit attempt approved","keywords":{"Result":'
                    '"Success","ResultComment":"Edit attempt approved"},"options":[],'
                    '"initialize":{},"missing":[]}')
        self.assertEqual(result.stdout.splitlines(), [
            '{"id":"a-1",' + approved,
            "{" + approved,
            '{"id":{"n":[1,2]},"line":3,"error":"unknown kind \\"judge\\"; expected edit, '
            'edit-before-resolution, save, save-before-resolution, link or options"}',
        ])

    def test_text_batch_ignores_the_id(self):
        self.write("requests.jsonl",
                   '{"id":"a-1","kind":"edit","request":' + json.dumps(RETITLE) + "}\n")
        result = self.tov("batch", *self.documents(), "requests.jsonl")
        self.assertEqual(result.stdout, APPROVED_EDIT + "\n")

    def test_explain(self):
        self.write_json("rules-lib.json", {"triggers": {"Library_Item": [
            {"attribute": "Status", "triggerInitialize": "Approver",
             "initializationValue": "x"}]}})
        result = self.tov("explain", "--rules", "rules-lib.json", "--dm", "dm.json",
                          "--format", "json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(json.loads(result.stdout), {
            "kinds": [{"kind": "trigger", "rules": [
                'For Library_Item: When Status is edited, Approver must be initialized to '
                '"x"'], "numbers": [1]}],
            "libraryItem": []})

    def test_check_tells_faults_with_their_section(self):
        self.write("broken.json", '{"transitions":\n  {"Part": [1,}}')
        self.write_json("bad.json", {"transitions": {"Part": [{}]}, "manualLinks": {"A": {}}})
        result = self.tov("check", "--rules", "bad.json", "--format", "json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(json.loads(result.stdout), {"documents": [], "warnings": [], "faults": [
            {"document": "bad.json", "section": "transitions",
             "message": "Transition rule for Part demands ALL keywords: "
                        "[attribute,fromValue,toValue]"},
            {"document": "bad.json", "section": "manualLinks",
             "message": "Manual Link rules for A should be in a List."}], "notes": [
            {"document": "bad.json", "section": "transitions",
             "message": 'transitions: Part #1: has no "attribute", and a transition rule needs '
                        '"attribute", "fromValue" and "toValue"', "line": 1, "column": 27},
            {"document": "bad.json", "section": "manualLinks",
             "message": "manualLinks: the rules of A are a JSON object, not a list",
             "line": 1, "column": 54}]})
        result = self.tov("check", "--rules", "broken.json", "--format", "json")
        self.assertEqual(json.loads(result.stdout)["faults"], [
            {"document": "broken.json", "section": None,
             "message": "Json has fundamental parsing error"}])
        self.assertEqual(json.loads(result.stdout)["notes"], [
            {"document": "broken.json", "section": None, "message": "Invalid value.",
             "line": 2, "column": 15}])

    def test_an_unknown_format(self):
        result = self.tov("check", "--rules", "rules.json", "--format", "yaml")
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertIn("--format", result.stderr)


class Completion(unittest.TestCase):
    SCRIPT = None

    def complete(self, *words):
        line = " ".join(words)
        command = ('source "$1"; COMP_WORDS=(' + line + '); COMP_CWORD=' + str(len(words) - 1)
                   + '; _tov; printf "%s\\n" "${COMPREPLY[@]}"')
        if words[-1] == "":
            command = command.replace("COMP_WORDS=(" + line + ")",
                                      "COMP_WORDS=(" + line + " '')")
        result = subprocess.run(["bash", "-c", command, "bash", self.SCRIPT],
                                capture_output=True, text=True, timeout=30)
        self.assertEqual(result.returncode, 0, result.stderr)
        return result.stdout.split()

    def test_the_script_parses(self):
        result = subprocess.run(["bash", "-n", self.SCRIPT], capture_output=True, text=True)
        self.assertEqual((result.returncode, result.stderr), (0, ""))

    def test_it_completes_the_commands(self):
        self.assertEqual(self.complete("tov", "ch"), ["check"])
        self.assertEqual(self.complete("tov", "t"), ["test"])
        self.assertEqual(self.complete("tov", "se"), ["serve"])
        self.assertEqual(self.complete("tov", "e"), ["explain", "eval"])

    def test_it_completes_options_kinds_and_formats(self):
        self.assertEqual(self.complete("tov", "check", "--st"), ["--strict"])
        self.assertEqual(self.complete("tov", "eval", "save"),
                         ["save", "save-before-resolution"])
        self.assertEqual(self.complete("tov", "graph", "--format", "m"), ["mermaid"])
        self.assertEqual(self.complete("tov", "test", "--format", "j"), ["json", "junit"])
        self.assertEqual(self.complete("tov", "serve", "--wa"), ["--watch"])
        self.assertEqual(self.complete("tov", "serve", "--listen", "127"), ["127.0.0.1:8480"])
        self.assertEqual(self.complete("tov", "serve", "--grace", ""), [])
        self.assertEqual(self.complete("tov", "work"), ["workbench"])
        self.assertEqual(self.complete("tov", "workbench", "--no"), ["--no-token"])
        self.assertEqual(self.complete("tov", "workbench", "--wr"), ["--write"])
        self.assertEqual(self.complete("tov", "workbench", "--listen", "127"),
                         ["127.0.0.1:0", "127.0.0.1:8490"])


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_authoring.py TOV_PROGRAM SOURCE_DIR")
    base.TOV = os.path.abspath(sys.argv[1])
    SOURCE = os.path.abspath(sys.argv[2])
    Completion.SCRIPT = os.path.join(SOURCE, "tools", "completion", "tov.bash")
    unittest.main(argv=[sys.argv[0]], verbosity=2)
