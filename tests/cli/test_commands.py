"""The tov program's commands: what they print, where, and with which exit
status, for good input, bad arguments, missing files and malformed lines.

Run as: python3 test_commands.py TOV_PROGRAM SOURCE_DIR

The documents are small ones that the tests write themselves, so that nothing
here depends on the example scenario.
"""

import json
import os
import pty
import select
import subprocess
import sys
import tempfile
import threading
import unittest

TOV = None

DATA_MODEL = {
    "OverwriteLabel": "Overwrite",
    "structureObjects": [
        {
            "name": "Part",
            "dmObjectType": "DMITEM",
            "attributes": [
                {"name": "Number", "type": "REGULAR", "primary": True},
                {"name": "Revision", "type": "VERSIONING", "primary": True},
                {"name": "Status", "type": "REGULAR", "primary": False},
                {"name": "Title", "type": "REGULAR", "primary": False},
                {"name": "Approver", "type": "REGULAR", "primary": False},
            ],
        }
    ],
}

RULES = {
    "transitions": {
        "Part": [
            {"attribute": "Status", "fromValue": "In Work", "toValue": ["In Work", "In Review"]},
            {"attribute": "Status", "fromValue": "In Review",
             "toValue": ["In Review", "Released", "In Work"]},
            {"attribute": "Status", "fromValue": "Released", "toValue": ["Released", "Obsolete"]},
        ]
    },
    "transitionsFreeze": {
        "Part": [{"attribute": "Title", "freezeConditionAttribute": "Status",
                  "freezeConditionValue": "Released"}]
    },
    "fileConstraints": {
        "Part": [{"attribute": "Status", "fromValue": "In Work", "toValue": "In Review",
                  "updateFile": "MANDATORY"}]
    },
    "conflictResolutions": {
        "Part": [{"attribute": "Status", "fromValue": "In Review", "toValue": "In Work",
                  "updatesFile": "N_A", "conflictResolution": "spinup"}]
    },
    "historyLinks": {
        "Part": [{"attribute": "Status", "fromValue": "<any>", "toValue": "Released",
                  "acceptableHistoryLinkValues": ["Released", "Obsolete"]}]
    },
    "manualLinks": {
        "Part": [{"attribute": "Status", "fromValue": "<any>", "toValue": "Released",
                  "acceptableManualLinkValues": ["Released"]}]
    },
    "triggers": {
        "Part": [{"attribute": "Status", "triggerInitialize": "Approver",
                  "initializationValue": "pending"}]
    },
    "versioningSelections": {
        "ALL": [{"conditionAttribute1": "Status", "conditionValue1": ["Obsolete"],
                 "versioningOption": ["Revision"]}]
    },
}

IN_WORK = {"Number": "P1", "Revision": "A", "Status": "In Work", "Title": "Bracket"}
IN_REVIEW = dict(IN_WORK, Status="In Review")
RELEASED = dict(IN_WORK, Status="Released")


def edit(initial, target, **sections):
    request = {"objectType": "Part", "initialAttributes": initial, "targetAttributes": target}
    request.update(sections)
    return request


# Requests with the answers the library gives them, by kind.
RETITLE = edit(IN_WORK, {"Title": "Clamp"})
TO_REVIEW = edit(IN_WORK, {"Status": "In Review"})
SKIP_REVIEW = edit(IN_WORK, {"Status": "Released"})
RETITLE_RELEASED = edit(RELEASED, {"Title": "Clamp"})
BACK_TO_WORK = edit(IN_REVIEW, {"Status": "In Work"})
RELEASE = edit(IN_REVIEW, {"Status": "Released"})
RELEASE_WITH_DATA = edit(
    IN_REVIEW, {"Status": "Released"},
    membersOfFamily={"srv-1": {"attributes": {"Status": "Obsolete"}}},
    manualLinkAncestors={})
RELEASE_WITH_OFFENDER = edit(
    IN_REVIEW, {"Status": "Released"},
    membersOfFamily={"srv-1": {"attributes": {"Status": "Obsolete"}},
                     "srv-2": {"attributes": {"Status": "In Work"}}},
    manualLinkAncestors={})
LINK_REFUSED = {"ancestor": {"objectType": "Part", "attributes": {"Status": "In Work"}},
                "descendant": {"objectType": "Part", "attributes": {"Status": "Released"}}}
LINK_APPROVED = {"ancestor": {"objectType": "Part", "attributes": {"Status": "Released"}},
                 "descendant": {"objectType": "Part", "attributes": {"Status": "Released"}}}
OPTIONS_FREE = {"objectType": "Part", "initialAttributes": IN_WORK,
                "targetAttributes": {"Status": "In Review"}}
OPTIONS_SPINUP = {"objectType": "Part", "initialAttributes": IN_REVIEW,
                  "targetAttributes": {"Status": "In Work"}}

APPROVED_EDIT = '{"Result":"Success","ResultComment":"Edit attempt approved"}'
APPROVED_EDIT_WITH_TRIGGER = ('{"Result":"Success","ResultComment":"Edit attempt approved",'
                              '"TriggerInitialization":"{Approver:pending}"}')
APPROVED_SAVE_WITH_TRIGGER = ('{"Result":"Success","ResultComment":"Save attempt approved",'
                              '"TriggerInitialization":"{Approver:pending}"}')
FILE_REFUSED = ('{"Result":"Failure","ResultComment":"File constraint violation detected: '
                'For Part: When Status transitions from \\"In Work\\" to \\"In Review\\" '
                'we MUST upload a new representation file"}')
TRANSITION_REFUSED = ('{"Result":"Failure","ResultComment":"Transition violation detected: '
                      'For Part: Status can transition from \\"In Work\\" to \\"In Work\\", '
                      '\\"In Review\\""}')
FREEZE_REFUSED = ('{"Result":"Failure","ResultComment":"Transition freeze violation detected: '
                  'For Part: When Status equals \\"Released\\", then Title must remain '
                  'unchanged."}')
CONFLICT_REFUSED = ('{"Result":"Failure","ResultComment":"Conflict resolution violation '
                    'detected: For Part: When Status transitions from \\"In Review\\" to '
                    '\\"In Work\\" then we MUST spinup"}')
HISTORY_RULE = ('For Part: When Status is \\"Released\\" then entries in the same object '
                'family can have Status equal to one of :[Obsolete,Released]')
MANUAL_RULE = ('For Part: When Status is \\"Released\\" then its manual link ancestors can have '
               'Status equal to one of :[Released]')
NEEDS_DATA = ('{"ManualLinkAncestors":"MissingData","ObjectFamilyMembers":"MissingData",'
              '"Result":"Failure","ResultComment":"History Link violation detected.No entries '
              'provided to check rule:' + HISTORY_RULE + '. Manual Ancestor Link violation '
              'detected.No entries provided to check rule:' + MANUAL_RULE + '"}')
FAMILY_REFUSED = ('{"Result":"Failure","ResultComment":"History Link violation detected.Entry '
                  'with server id \\"srv-2\\" violates rule:' + HISTORY_RULE + '"}')
LINK_REFUSED_ANSWER = '{"Result":"Failure","ResultComment":"' + MANUAL_RULE + '"}'
LINK_APPROVED_ANSWER = '{"Result":"Success","ResultComment":"Manual Link creation approved"}'
OPTIONS_FREE_ANSWER = ('{"Result":"Success","ResultComment":"Did not find any TOV rule for '
                       'specific versioning attribute selection",'
                       '"SelectedVersioningAttribute":"[Revision,Overwrite]"}')
OPTIONS_SPINUP_ANSWER = ('{"Result":"Success","ResultComment":"Found TOV rule for specific '
                         'versioning attribute selection","SelectedVersioningAttribute":'
                         '"[Revision]"}')
INSUFFICIENT = '{"Result":"Failure","ResultComment":"Insufficient input data"}'
UNUSABLE = '{"Result":"Failure","ResultComment":"Json has fundamental parsing error"}'

# The info message keeps the comment as it is, where the single string makes
# one blank of two.
CONFLICT_INFO = ('Failure! Conflict resolution violation detected: For Part: When Status '
                 'transitions from "In Review" to "In Work"  then we MUST spinup')

# kind, request, answer, exit status of eval
CASES = [
    ("edit", RETITLE, APPROVED_EDIT, 0),
    ("edit", TO_REVIEW, FILE_REFUSED, 1),
    ("edit", SKIP_REVIEW, TRANSITION_REFUSED, 1),
    ("edit", RETITLE_RELEASED, FREEZE_REFUSED, 1),
    ("edit", BACK_TO_WORK, CONFLICT_REFUSED, 1),
    ("edit", RELEASE, NEEDS_DATA, 3),
    ("edit", RELEASE_WITH_DATA, APPROVED_EDIT_WITH_TRIGGER, 0),
    ("edit", RELEASE_WITH_OFFENDER, FAMILY_REFUSED, 1),
    ("edit-before-resolution", BACK_TO_WORK, APPROVED_EDIT_WITH_TRIGGER, 0),
    ("save", TO_REVIEW, APPROVED_SAVE_WITH_TRIGGER, 0),
    ("save", BACK_TO_WORK, CONFLICT_REFUSED, 1),
    ("save-before-resolution", BACK_TO_WORK, APPROVED_SAVE_WITH_TRIGGER, 0),
    ("link", LINK_REFUSED, LINK_REFUSED_ANSWER, 1),
    ("link", LINK_APPROVED, LINK_APPROVED_ANSWER, 0),
    ("options", OPTIONS_FREE, OPTIONS_FREE_ANSWER, 0),
    ("options", OPTIONS_SPINUP, OPTIONS_SPINUP_ANSWER, 0),
]

COMMANDS = ["check", "explain", "eval", "batch"]


def info_message(answer):
    if answer == CONFLICT_REFUSED:
        return CONFLICT_INFO
    response = json.loads(answer)
    return response["Result"] + "! " + response["ResultComment"]


# Deep enough that a recursive parse would run out of stack.
DEEP = 1000000


class ProgramTest(unittest.TestCase):
    """Runs the program in a temporary folder that holds the documents."""

    def setUp(self):
        self.folder_holder = tempfile.TemporaryDirectory(prefix="tov-cli-")
        self.folder = self.folder_holder.name
        self.addCleanup(self.folder_holder.cleanup)
        self.write_json("rules.json", RULES)
        self.write_json("dm.json", DATA_MODEL)

    def path(self, name):
        return os.path.join(self.folder, name)

    def write(self, name, text):
        with open(self.path(name), "w", encoding="utf-8", newline="") as f:
            f.write(text)
        return name

    def write_json(self, name, value):
        return self.write(name, json.dumps(value))

    def tov(self, *arguments, stdin=None):
        return subprocess.run([TOV, *arguments], cwd=self.folder, input=stdin,
                              capture_output=True, text=True, timeout=120)

    def documents(self):
        return ["--rules", "rules.json", "--dm", "dm.json"]

    def assertUsageError(self, result, message):
        self.assertEqual(result.returncode, 2, result.stderr)
        self.assertEqual(result.stdout, "")
        self.assertIn(message, result.stderr)
        self.assertIn("Usage: tov", result.stderr)


class ProgramAsAWhole(ProgramTest):
    def test_without_a_command_tells_the_usage(self):
        self.assertUsageError(self.tov(), "A subcommand is required")

    def test_an_unknown_command_is_a_usage_error(self):
        result = self.tov("judge")
        self.assertEqual(result.returncode, 2)
        self.assertIn("Usage: tov", result.stderr)

    def test_version(self):
        result = self.tov("--version")
        self.assertEqual(result.returncode, 0)
        self.assertRegex(result.stdout, r"^tov \d+\.\d+\.\d+, library 1\.1\n$")

    def test_help_of_the_program_lists_every_command(self):
        for flag in ("--help", "-h"):
            result = self.tov(flag)
            self.assertEqual(result.returncode, 0)
            self.assertEqual(result.stderr, "")
            self.assertIn("Usage: tov [OPTIONS] SUBCOMMAND", result.stdout)
            for command in COMMANDS:
                self.assertRegex(result.stdout, r"\n  " + command + r" ")
            self.assertIn("Exit statuses:", result.stdout)

    def test_help_of_every_command(self):
        for command in COMMANDS:
            with self.subTest(command=command):
                result = self.tov(command, "--help")
                self.assertEqual(result.returncode, 0)
                self.assertEqual(result.stderr, "")
                self.assertIn("Usage: tov " + command, result.stdout)
                self.assertIn("--rules FILE", result.stdout)
                self.assertIn("--log DIR|console|off", result.stdout)
                self.assertIn("Exit status", result.stdout)
                self.assertIn("Example: tov " + command, result.stdout)

    def test_help_of_eval_tells_every_kind(self):
        result = self.tov("eval", "--help")
        for kind in ("edit", "edit-before-resolution", "save", "save-before-resolution",
                     "link", "options"):
            self.assertIn("\n  " + kind + ": ", result.stdout)

    def test_help_of_batch_tells_what_goes_out(self):
        result = self.tov("batch", "--help")
        self.assertIn("single-string form", result.stdout)
        self.assertIn('"error"', result.stdout)
        self.assertIn("--jobs N", result.stdout)

    def test_an_unknown_option_is_a_usage_error_of_its_command(self):
        for command in COMMANDS:
            with self.subTest(command=command):
                kind = ["edit"] if command == "eval" else []
                result = self.tov(command, *kind, "--frobnicate", *self.documents())
                self.assertUsageError(result, "--frobnicate")
                self.assertIn("Usage: tov " + command, result.stderr)

    def test_output_that_cannot_be_written_is_an_error(self):
        if not os.path.exists("/dev/full"):
            self.skipTest("no /dev/full here")
        with open("/dev/full", "w", encoding="utf-8") as full:
            result = subprocess.run([TOV, "check", *self.documents()], cwd=self.folder,
                                    stdout=full, stderr=subprocess.PIPE, text=True, timeout=120)
        self.assertEqual(result.returncode, 2)
        self.assertIn("tov: cannot write standard output: No space left on device",
                      result.stderr)

    def test_an_option_without_its_value_is_a_usage_error(self):
        self.assertUsageError(self.tov("check", "--rules"), "--rules")


class CheckCommand(ProgramTest):
    def test_both_documents_load(self):
        result = self.tov("check", *self.documents())
        self.assertEqual(result.returncode, 0, result.stdout)
        self.assertEqual(result.stdout, "dm.json: Succesfully initialized DM info\n"
                                        "rules.json: Successfully initialized TOV rules\n")
        self.assertEqual(result.stderr, "")

    def test_the_data_model_is_optional(self):
        result = self.tov("check", "--rules", "rules.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, "rules.json: Successfully initialized TOV rules\n")

    def test_each_fault_on_a_line_of_its_own(self):
        self.write_json("bad.json", {
            "transitions": {"Part": [{"attribute": "Status", "fromValue": "A"}]},
            "manualLinks": {"Part": "Released"}})
        result = self.tov("check", "--rules", "bad.json", "--dm", "dm.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout.splitlines(), [
            "dm.json: Succesfully initialized DM info",
            "bad.json: Transition rule for Part demands ALL keywords: "
            "[attribute,fromValue,toValue]",
            'bad.json:1:27: note: transitions: Part #1: has no "toValue", and a transition rule '
            'needs "attribute", "fromValue" and "toValue"',
            "bad.json: Manual Link rules for Part should be in a List.",
            "bad.json:1:96: note: manualLinks: the rules of Part are a JSON string, not a list",
        ])

    def test_a_faulty_data_model(self):
        self.write_json("bad-dm.json", {"structureObjects": []})
        result = self.tov("check", "--rules", "rules.json", "--dm", "bad-dm.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout.splitlines(), [
            "bad-dm.json: DM Structure Information demands ALL keywords: "
            "[structureObjects,OverwriteLabel]",
            "rules.json: Successfully initialized TOV rules",
        ])

    def test_text_that_is_no_json_is_told_where(self):
        self.write("broken.json", '{"transitions":\n  {"Part": [1,}}')
        result = self.tov("check", "--rules", "broken.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "broken.json: Json has fundamental parsing error\n"
                                        "broken.json:2:15: note: Invalid value.\n")

    def test_deeply_nested_text_is_told_without_exhausting_the_stack(self):
        self.write("deep.json", "[" * DEEP)
        result = self.tov("check", "--rules", "deep.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "deep.json: Json has fundamental parsing error\n"
                                        "deep.json:1:" + str(DEEP + 1) + ": note: Invalid value.\n")

    def test_a_document_that_is_no_object(self):
        self.write("list.json", "[]")
        result = self.tov("check", "--rules", "list.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "list.json: Json has fundamental parsing error\n"
                                        "list.json: note: the document is a JSON array, "
                                        "not an object\n")

    def test_an_empty_file(self):
        self.write("empty.json", "")
        result = self.tov("check", "--rules", "empty.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "empty.json: Insufficient input data\n"
                                        "empty.json: note: the file is empty\n")

    def test_documents_that_hold_nothing_load_with_a_note(self):
        self.write_json("nothing.json", {})
        self.write_json("no-types.json", {"OverwriteLabel": "", "structureObjects": []})
        result = self.tov("check", "--rules", "nothing.json", "--dm", "no-types.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.splitlines(), [
            "no-types.json: Succesfully initialized DM info",
            "nothing.json: Successfully initialized TOV rules",
            "no-types.json: note: no object types, so evaluations that need them will be "
            'refused with "Uninitialized Dm Information"',
            "nothing.json: note: no rules, so every request will be refused with "
            '"Uninitialized TOV rules"',
        ])

    def test_rules_for_object_types_the_data_model_does_not_describe(self):
        rule = {"attribute": "Status", "fromValue": "A", "toValue": ["A"]}
        self.write_json("types.json", {
            "transitions": {"Prt": [rule], "ALL": [rule], "part": [rule]},
            "triggers": {"Library_Item": [{"attribute": "Status", "triggerInitialize": "X",
                                           "initializationValue": ""}]}})
        result = self.tov("check", "--rules", "types.json", "--dm", "dm.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.splitlines(), [
            "dm.json: Succesfully initialized DM info",
            "types.json: Successfully initialized TOV rules",
            "types.json: note: the rules for Library_Item concern no object type of the data "
            "model dm.json",
            "types.json: note: the rules for Prt concern no object type of the data model "
            "dm.json",
            # ALL stands for every object type, so its rule from "A" applies beside the others.
            'types.json:1:96: warning: transitions: ALL #1 (explain 2): Status from "A" has a '
            'rule already, Prt #1 (explain 1), and every rule that applies must hold, so "A" '
            'may move only to what all of them list: "A"; write the targets of "A" in one rule',
            'types.json:1:167: warning: transitions: part #1 (explain 3): Status from "A" has a '
            'rule already, ALL #1 (explain 2), and every rule that applies must hold, so "A" '
            'may move only to what all of them list: "A"; write the targets of "A" in one rule',
        ])
        without_data_model = self.tov("check", "--rules", "types.json")
        self.assertEqual(without_data_model.stdout.splitlines()[0],
                         "types.json: Successfully initialized TOV rules")
        self.assertNotIn("concern no object type", without_data_model.stdout)

    def test_notices_of_the_library_become_notes(self):
        self.write_json("jumps.json", {"transitions": {"Part": [
            {"attribute": "Status", "fromValue": "A", "toValue": ["B"], "allowJumps": True,
             "allowReverse": True},
            {"attribute": "Status", "fromValue": "B", "toValue": ["A"], "allowJumps": True}]}})
        result = self.tov("check", "--rules", "jumps.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.splitlines(), [
            "jumps.json: Successfully initialized TOV rules",
            "jumps.json: note: We do not support the allowJumps keyword in the Transition "
            "Rule. (2 times)",
            "jumps.json: note: We do not support the allowReverse keyword in the Transition "
            "Rule.",
        ])

    def test_a_missing_file_is_an_input_error(self):
        result = self.tov("check", "--rules", "missing.json", "--dm", "dm.json")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr, "tov: cannot read rules document missing.json: "
                                        "No such file or directory\n")

    def test_a_folder_is_no_document(self):
        os.mkdir(self.path("folder"))
        result = self.tov("check", "--rules", "folder")
        self.assertEqual(result.returncode, 2)
        self.assertIn("cannot read rules document folder: Is a directory", result.stderr)

    def test_documents_come_from_files_only(self):
        result = self.tov("check", "--rules", "-", stdin="{}")
        self.assertEqual(result.returncode, 2)
        self.assertIn("the rules document must be a file", result.stderr)

    def test_the_rules_are_required(self):
        self.assertUsageError(self.tov("check", "--dm", "dm.json"), "--rules is required")


class ExplainCommand(ProgramTest):
    def test_every_kind_in_words_in_the_order_they_are_judged(self):
        # Groups in the order of the edit chain; within a group the order in
        # which the rules are asked, each numbered by its place in the document.
        result = self.tov("explain", *self.documents())
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stderr, "")
        self.assertEqual(result.stdout, "\n".join([
            "Transition freeze rules (1):",
            '  1. For Part: When Status equals "Released", then Title must remain unchanged.',
            "",
            "Transition rules (3):",
            '  1. For Part: Status can transition from "In Work" to "In Work", "In Review"',
            '  3. For Part: Status can transition from "Released" to "Released", "Obsolete"',
            '  2. For Part: Status can transition from "In Review" to "In Review", "Released", '
            '"In Work"',
            "",
            "File constraint rules (1):",
            '  1. For Part: When Status transitions from "In Work" to "In Review" we MUST '
            "upload a new representation file",
            "",
            "Conflict resolution rules (1):",
            '  1. For Part: When Status transitions from "In Review" to "In Work"  then we MUST '
            "spinup",
            "",
            "History link rules (1):",
            '  1. For Part: When Status is "Released" then entries in the same object family '
            "can have Status equal to one of :[Obsolete,Released]",
            "",
            "Manual link rules (1):",
            '  1. For Part: When Status is "Released" then its manual link ancestors can have '
            "Status equal to one of :[Released]",
            "",
            "Trigger rules (1):",
            '  1. For Part: When Status is edited, Approver must be initialized to "pending"',
            "",
            "Versioning selection rules (1):",
            '  1. For <any>: When {"Status" equals "Obsolete"} then you should spin up versions '
            "using one of the attributes: [Revision]",
            "",
        ]))

    def test_rules_of_a_kind_in_store_order_numbered_as_written(self):
        self.write_json("triggers.json", {"triggers": {
            "ALL": [{"attribute": "Material", "triggerInitialize": "Proper_Versioning_Attribute",
                     "initializationValue": "Next"}],
            "Part": [{"attribute": "Status", "triggerInitialize": "Approver",
                      "initializationValue": ""}]}})
        result = self.tov("explain", "--rules", "triggers.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.splitlines(), [
            "Trigger rules (2):",
            '  2. For Part: When Status is edited, Approver must be initialized to ""',
            "  1. For <any>: When Material is edited, the proper versioning attribute "
            '(Proper_Versioning_Attribute) must be initialized to "Next"',
        ])

    def test_the_data_model_tells_what_library_item_stands_for(self):
        self.write_json("library.json", {"triggers": {"Library_Item": [
            {"attribute": "Status", "triggerInitialize": "Approver",
             "initializationValue": "x"}]}})
        with_items = json.loads(json.dumps(DATA_MODEL))
        for name in ("Drawing", "Datasheet"):
            with_items["structureObjects"].append({
                "name": name, "dmObjectType": "RLI",
                "attributes": [{"name": "Number", "type": "REGULAR", "primary": True}]})
        self.write_json("items.json", with_items)
        expected_rule = ("Trigger rules (1):\n"
                         '  1. For Library_Item: When Status is edited, Approver must be '
                         'initialized to "x"\n')
        result = self.tov("explain", "--rules", "library.json", "--dm", "items.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, expected_rule + "\nLibrary_Item stands for the RLI "
                                        "object types of the data model: Datasheet, "
                                        "Drawing.\n")
        result = self.tov("explain", "--rules", "library.json", "--dm", "dm.json")
        self.assertEqual(result.stdout, expected_rule + "\nLibrary_Item stands for the RLI "
                                        "object types of the data model: none.\n")
        result = self.tov("explain", "--rules", "library.json")
        self.assertEqual(result.stdout, expected_rule)
        result = self.tov("explain", *self.documents())
        self.assertNotIn("Library_Item", result.stdout)

    def test_no_rules(self):
        self.write_json("nothing.json", {})
        result = self.tov("explain", "--rules", "nothing.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, "The rules document holds no rules.\n")

    def test_a_document_that_does_not_load(self):
        self.write_json("bad.json", {"triggers": {"Part": [{"attribute": "Status"}]}})
        result = self.tov("explain", "--rules", "bad.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr, "bad.json: Triggers rule for Part demands ALL "
                                        "keywords: [attribute,initializationValue,"
                                        "triggerInitialize]\n"
                                        'bad.json:1:24: note: triggers: Part #1: has no '
                                        '"triggerInitialize", and a trigger rule needs '
                                        '"attribute", "triggerInitialize" and '
                                        '"initializationValue"\n')

    def test_a_data_model_that_does_not_load(self):
        self.write("bad-dm.json", "{")
        result = self.tov("explain", "--rules", "rules.json", "--dm", "bad-dm.json")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, "")
        self.assertIn("bad-dm.json: Json has fundamental parsing error\n", result.stderr)

    def test_a_missing_file(self):
        result = self.tov("explain", "--rules", "missing.json")
        self.assertEqual(result.returncode, 2)
        self.assertIn("cannot read rules document missing.json", result.stderr)


class EvalCommand(ProgramTest):
    def eval(self, kind, request_text, *extra):
        self.write("request.json", request_text)
        return self.tov("eval", kind, *self.documents(), "request.json", *extra)

    def test_every_kind_and_outcome(self):
        for kind, request, answer, status in CASES:
            with self.subTest(kind=kind, request=request):
                result = self.eval(kind, json.dumps(request))
                self.assertEqual(result.stdout, answer + "\n")
                self.assertEqual(result.stderr, info_message(answer) + "\n")
                self.assertEqual(result.returncode, status)

    def test_the_info_message_words_any_for_people(self):
        self.write_json("any.json", {"transitions": {"ALL": [
            {"attribute": "Status", "fromValue": "A", "toValue": ["A"]}]}})
        self.write_json("request.json", edit({"Status": "A"}, {"Status": "B"}))
        result = self.tov("eval", "edit", "--rules", "any.json", "--dm", "dm.json",
                          "request.json")
        self.assertEqual(result.returncode, 1)
        self.assertIn("For <any>: Status", result.stdout)
        self.assertEqual(result.stderr, 'Failure! Transition violation detected: For any '
                                        'object type: Status can transition from "A" to '
                                        '"A"\n')

    def test_the_request_from_standard_input(self):
        request = json.dumps(RETITLE)
        for source in (["-"], []):
            with self.subTest(source=source):
                result = self.tov("eval", "edit", *self.documents(), *source, stdin=request)
                self.assertEqual(result.returncode, 0)
                self.assertEqual(result.stdout, APPROVED_EDIT + "\n")

    def test_an_empty_request(self):
        result = self.eval("edit", "")
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, INSUFFICIENT + "\n")
        self.assertEqual(result.stderr, "Failure! Insufficient input data\n")

    def test_a_request_that_is_no_json(self):
        for kind in ("edit", "link", "options"):
            with self.subTest(kind=kind):
                result = self.eval(kind, "{not json")
                self.assertEqual(result.returncode, 1)
                self.assertEqual(result.stdout, UNUSABLE + "\n")

    def test_a_request_with_a_fault(self):
        result = self.eval("options", json.dumps({"objectType": "Part",
                                                  "initialAttributes": {}}))
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout, '{"Result":"Failure","ResultComment":"Target '
                                        'Attributes demands ALL keywords: '
                                        '[targetAttributes]"}\n')

    def test_a_missing_request_file(self):
        result = self.tov("eval", "edit", *self.documents(), "missing.json")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr, "tov: cannot read request missing.json: No such file "
                                        "or directory\n")

    def test_a_missing_document(self):
        result = self.tov("eval", "edit", "--rules", "missing.json", "--dm", "dm.json",
                          stdin="{}")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertIn("cannot read rules document missing.json", result.stderr)

    def test_documents_that_do_not_load_stop_before_evaluating(self):
        self.write("broken.json", "{")
        result = self.tov("eval", "edit", "--rules", "broken.json", "--dm", "dm.json",
                          stdin=json.dumps(RETITLE))
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr, "broken.json: Json has fundamental parsing error\n"
                                        "broken.json:1:2: note: Missing a name for object "
                                        "member.\n")

    def test_notices_of_the_library_stay_off_standard_output(self):
        rules = dict(RULES)
        rules["transitions"] = {"Part": [dict(rule, allowReverse=True)
                                         for rule in RULES["transitions"]["Part"]]}
        self.write_json("reverse.json", rules)
        self.write_json("request.json", RETITLE)
        result = self.tov("eval", "edit", "--rules", "reverse.json", "--dm", "dm.json",
                          "request.json")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, APPROVED_EDIT + "\n")
        self.assertEqual(result.stderr, "reverse.json: note: We do not support the "
                                        "allowReverse keyword in the Transition Rule. (3 "
                                        "times)\nSuccess! Edit attempt approved\n")

    def test_an_unknown_kind(self):
        result = self.tov("eval", "delete", *self.documents(), stdin="{}")
        self.assertUsageError(result, "KIND: delete not in")

    def test_the_kind_and_both_documents_are_required(self):
        self.assertUsageError(self.tov("eval", *self.documents()), "KIND is required")
        self.assertUsageError(self.tov("eval", "edit", "--rules", "rules.json"),
                              "--dm is required")

    def test_one_request_only(self):
        self.write_json("request.json", RETITLE)
        result = self.tov("eval", "edit", *self.documents(), "request.json", "request.json")
        self.assertUsageError(result, "request.json")


def batch_line(kind, request):
    return json.dumps({"kind": kind, "request": request})


class BatchCommand(ProgramTest):
    def batch(self, lines, *extra, stdin=None):
        self.write("requests.jsonl", "".join(line + "\n" for line in lines))
        return self.tov("batch", *self.documents(), *extra, "requests.jsonl", stdin=stdin)

    def test_one_answer_per_line_in_input_order(self):
        result = self.batch([batch_line(kind, request) for kind, request, _, _ in CASES])
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout.splitlines(), [answer for _, _, answer, _ in CASES])
        self.assertEqual(result.stderr, "")

    def test_lines_that_are_no_request(self):
        lines = [
            "{not json",
            "[1, 2]",
            '"edit"',
            json.dumps({"request": RETITLE}),
            json.dumps({"kind": 3, "request": RETITLE}),
            json.dumps({"kind": "delete", "request": RETITLE}),
            json.dumps({"kind": "edit"}),
            json.dumps({"kind": "edit", "request": json.dumps(RETITLE)}),
            "",
            "   ",
            batch_line("edit", RETITLE) + " {}",
            batch_line("edit", RETITLE),
        ]
        result = self.batch(lines)
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stderr, "")
        answers = result.stdout.splitlines()
        self.assertEqual(len(answers), len(lines))
        self.assertEqual([json.loads(answer) for answer in answers[:-1]], [
            {"line": 1, "error": "not JSON: Missing a name for object member. (column 2)"},
            {"line": 2, "error": "not a JSON object"},
            {"line": 3, "error": "not a JSON object"},
            {"line": 4, "error": 'missing "kind"'},
            {"line": 5, "error": '"kind" is not a string'},
            {"line": 6, "error": 'unknown kind "delete"; expected edit, edit-before-resolution, '
                                 'save, save-before-resolution, link or options'},
            {"line": 7, "error": 'missing "request"'},
            {"line": 8, "error": '"request" is not a JSON object'},
            {"line": 9, "error": "empty line"},
            {"line": 10, "error": "empty line"},
            {"line": 11, "error": "not JSON: The document root must not be followed by other "
                                  "values. (column " + str(len(lines[10]) - 1) + ")"},
        ])
        self.assertEqual(answers[-1], APPROVED_EDIT)

    def test_a_deeply_nested_line_is_answered_without_exhausting_the_stack(self):
        result = self.batch(["[" * DEEP + "]" * DEEP, "[" * DEEP])
        self.assertEqual(result.returncode, 1)
        self.assertEqual(result.stdout.splitlines(), [
            '{"line":1,"error":"not a JSON object"}',
            '{"line":2,"error":"not JSON: Invalid value. (column ' + str(DEEP + 1) + ')"}',
        ])

    def test_an_error_line_is_exactly_this(self):
        result = self.batch(["[]"])
        self.assertEqual(result.stdout, '{"line":1,"error":"not a JSON object"}\n')

    def test_other_members_of_a_line_are_ignored(self):
        line = json.dumps({"id": 7, "kind": "link", "request": LINK_APPROVED})
        result = self.batch([line])
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, LINK_APPROVED_ANSWER + "\n")

    def test_windows_line_ends_and_a_last_line_without_one(self):
        text = batch_line("edit", RETITLE) + "\r\n" + batch_line("link", LINK_APPROVED)
        self.write("requests.jsonl", text)
        result = self.tov("batch", *self.documents(), "requests.jsonl")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, APPROVED_EDIT + "\n" + LINK_APPROVED_ANSWER + "\n")

    def test_an_empty_input_gives_no_output(self):
        result = self.batch([])
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, "")

    def test_one_job_and_four_jobs_give_the_same_output(self):
        lines = []
        for round_number in range(40):
            for kind, request, _, _ in CASES:
                lines.append(batch_line(kind, request))
            lines.append("not json " + str(round_number))
        one = self.batch(lines, "--jobs", "1")
        four = self.batch(lines, "--jobs", "4")
        default = self.batch(lines)
        self.assertEqual(one.returncode, 1)
        self.assertEqual(len(one.stdout.splitlines()), len(lines))
        self.assertEqual(one.stdout, four.stdout)
        self.assertEqual(one.stdout, default.stdout)
        self.assertEqual(four.returncode, 1)
        expected = []
        for round_number in range(40):
            expected.extend(answer for _, _, answer, _ in CASES)
            expected.append(None)
        for number, (answer, want) in enumerate(zip(one.stdout.splitlines(), expected), 1):
            if want is None:
                self.assertEqual(json.loads(answer)["line"], number)
            else:
                self.assertEqual(answer, want)

    def test_more_jobs_than_lines(self):
        result = self.batch([batch_line("edit", RETITLE)], "-j", "16")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, APPROVED_EDIT + "\n")

    def test_requests_from_standard_input(self):
        text = batch_line("edit", RETITLE) + "\n" + batch_line("options", OPTIONS_FREE) + "\n"
        for source in (["-"], []):
            with self.subTest(source=source):
                result = self.tov("batch", *self.documents(), "--jobs", "2", *source,
                                  stdin=text)
                self.assertEqual(result.returncode, 0)
                self.assertEqual(result.stdout, APPROVED_EDIT + "\n" + OPTIONS_FREE_ANSWER + "\n")
                self.assertEqual(result.stderr, "")

    def test_each_answer_comes_out_before_the_next_line_is_read(self):
        # One job answers on the reading thread and writes in blocks; more
        # hand lines to workers: either way an answer waits for no later line.
        for jobs in ("1", "2"):
            with self.subTest(jobs=jobs):
                self.expect_answers_line_by_line(jobs)

    def expect_answers_line_by_line(self, jobs):
        process = subprocess.Popen([TOV, "batch", *self.documents(), "--jobs", jobs],
                                   cwd=self.folder, stdin=subprocess.PIPE,
                                   stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True)
        # A program that held its answers back would leave the reads below
        # waiting; the timer ends the program then, and the test fails.
        watchdog = threading.Timer(60, process.kill)
        watchdog.start()
        try:
            for kind, request, answer in (("edit", RETITLE, APPROVED_EDIT),
                                          ("link", LINK_APPROVED, LINK_APPROVED_ANSWER)):
                process.stdin.write(batch_line(kind, request) + "\n")
                process.stdin.flush()
                self.assertEqual(process.stdout.readline(), answer + "\n")
            process.stdin.close()
            self.assertEqual(process.stdout.read(), "")
            self.assertEqual(process.wait(), 0)
        finally:
            watchdog.cancel()
            process.kill()
            process.wait()
            process.stdout.close()
            process.stderr.close()

    def test_bad_job_counts(self):
        for jobs in ("0", "-1", "many", "2000"):
            with self.subTest(jobs=jobs):
                result = self.batch([], "--jobs", jobs)
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stdout, "")
                self.assertIn("Usage: tov batch", result.stderr)

    def test_a_missing_requests_file(self):
        result = self.tov("batch", *self.documents(), "missing.jsonl")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stderr, "tov: cannot read requests missing.jsonl: No such file "
                                        "or directory\n")

    def test_a_folder_for_requests_is_unreadable_not_empty(self):
        os.mkdir(self.path("folder"))
        result = self.tov("batch", *self.documents(), "folder")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr, "tov: cannot read requests folder: Is a directory\n")

    def test_documents_that_do_not_load_stop_before_any_line(self):
        self.write_json("bad.json", {"transitions": {"Part": [{"attribute": "Status"}]}})
        self.write("requests.jsonl", batch_line("edit", RETITLE) + "\n")
        result = self.tov("batch", "--rules", "bad.json", "--dm", "dm.json", "requests.jsonl")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr, "bad.json: Transition rule for Part demands ALL "
                                        "keywords: [attribute,fromValue,toValue]\n"
                                        'bad.json:1:27: note: transitions: Part #1: has no '
                                        '"fromValue", and a transition rule needs "attribute", '
                                        '"fromValue" and "toValue"\n')

    def test_both_documents_are_required(self):
        result = self.tov("batch", "--rules", "rules.json", stdin="")
        self.assertUsageError(result, "--dm is required")

    def run_with_terminal_stderr(self, arguments, stdin_text=None):
        """Runs the program with standard error on a pseudo-terminal; returns
        its exit status, standard output and what the terminal showed."""
        controller, terminal = pty.openpty()
        try:
            process = subprocess.Popen([TOV, *arguments], cwd=self.folder,
                                       stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                       stderr=terminal)
            os.close(terminal)
            terminal = None
            out, _ = process.communicate(
                input=None if stdin_text is None else stdin_text.encode(), timeout=120)
            shown = b""
            while select.select([controller], [], [], 0.5)[0]:
                try:
                    chunk = os.read(controller, 65536)
                except OSError:
                    break
                if not chunk:
                    break
                shown += chunk
            return process.returncode, out.decode(), shown.decode()
        finally:
            if terminal is not None:
                os.close(terminal)
            os.close(controller)

    def test_a_progress_bar_on_a_terminal_for_a_file(self):
        self.write("requests.jsonl", batch_line("edit", RETITLE) + "\n")
        status, out, shown = self.run_with_terminal_stderr(
            ["batch", *self.documents(), "requests.jsonl"])
        self.assertEqual(status, 0)
        self.assertEqual(out, APPROVED_EDIT + "\n")
        self.assertIn("%", shown)
        self.assertIn("tov: 1 line answered (0 no request)", shown)

    def test_no_progress_bar_for_standard_input(self):
        status, out, shown = self.run_with_terminal_stderr(
            ["batch", *self.documents()], batch_line("edit", RETITLE) + "\n")
        self.assertEqual(status, 0)
        self.assertEqual(out, APPROVED_EDIT + "\n")
        self.assertEqual(shown, "")


class LogOption(ProgramTest):
    def test_off_is_the_default_and_silent(self):
        self.write_json("request.json", RETITLE)
        for extra in ([], ["--log", "off"], ["--log", "OFF"]):
            with self.subTest(extra=extra):
                result = self.tov("eval", "edit", *self.documents(), "request.json", *extra)
                self.assertEqual(result.stdout, APPROVED_EDIT + "\n")
                self.assertEqual(result.stderr, "Success! Edit attempt approved\n")
        self.assertEqual(sorted(os.listdir(self.folder)), ["dm.json", "request.json",
                                                           "rules.json"])

    def test_console_for_eval(self):
        self.write_json("request.json", RETITLE)
        result = self.tov("eval", "edit", *self.documents(), "request.json", "--log",
                          "console")
        self.assertEqual(result.returncode, 0)
        # The log goes to standard error, in the order it was written, and never
        # among the answers.
        self.assertEqual(result.stdout, APPROVED_EDIT + "\n")
        self.assertIn("Initializing TOV Rules result=", result.stderr)
        self.assertIn("Evaluating Edit attempt input=", result.stderr)
        self.assertIn('Evaluating Edit attempt result="' + APPROVED_EDIT + '"', result.stderr)
        self.assertLess(result.stderr.index("Initializing TOV Rules result="),
                        result.stderr.index("Evaluating Edit attempt input="))
        self.assertTrue(result.stderr.endswith("Success! Edit attempt approved\n"))

    def test_console_for_check(self):
        result = self.tov("check", *self.documents(), "--log", "Console")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, "dm.json: Succesfully initialized DM info\n"
                                        "rules.json: Successfully initialized TOV rules\n")
        self.assertIn("Initializing DM Info attempt result=", result.stderr)
        self.assertIn("Initializing TOV Rules result=", result.stderr)

    def test_console_for_every_command_keeps_the_answers_clean(self):
        self.write("requests.jsonl", batch_line("edit", RETITLE) + "\n")
        self.write_json("request.json", RETITLE)
        runs = {
            "explain": (["explain", *self.documents()], None),
            "eval json": (["eval", "edit", *self.documents(), "request.json", "--format",
                           "json"], None),
            "batch": (["batch", *self.documents(), "--jobs", "2", "requests.jsonl"],
                      APPROVED_EDIT + "\n"),
        }
        for command, (arguments, stdout) in runs.items():
            with self.subTest(command=command):
                quiet = self.tov(*arguments)
                logged = self.tov(*arguments, "--log", "console")
                self.assertEqual(logged.returncode, quiet.returncode)
                self.assertEqual(logged.stdout, quiet.stdout)
                if stdout is not None:
                    self.assertEqual(logged.stdout, stdout)
                self.assertIn("Initializing TOV Rules result=", logged.stderr)

    def test_a_folder_gets_the_log_file(self):
        self.write_json("request.json", RETITLE)
        result = self.tov("eval", "edit", *self.documents(), "request.json", "--log",
                          "logs/today")
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout, APPROVED_EDIT + "\n")
        files = os.listdir(self.path("logs/today"))
        self.assertEqual(len(files), 1)
        self.assertRegex(files[0], r"^\\TOV_Log_-?\d+\.txt$")
        with open(os.path.join(self.path("logs/today"), files[0]), encoding="utf-8") as f:
            log = f.read()
        self.assertIn("Evaluating Edit attempt input=", log)
        self.assertRegex(log, r"\d\d/\d\d/\d{4} \d\d:\d\d:\d\d : ")

    def test_a_folder_for_every_command(self):
        self.write("requests.jsonl", batch_line("edit", RETITLE) + "\n")
        self.write_json("request.json", RETITLE)
        runs = {
            "check": ["check", *self.documents()],
            "explain": ["explain", *self.documents()],
            "eval": ["eval", "edit", *self.documents(), "request.json"],
            "batch": ["batch", *self.documents(), "--jobs", "3", "requests.jsonl"],
        }
        for command, arguments in runs.items():
            with self.subTest(command=command):
                result = self.tov(*arguments, "--log", "logs-" + command)
                self.assertEqual(result.returncode, 0, result.stderr)
                files = os.listdir(self.path("logs-" + command))
                self.assertGreaterEqual(len(files), 1)
                text = ""
                for name in files:
                    with open(os.path.join(self.path("logs-" + command), name),
                              encoding="utf-8") as f:
                        text += f.read()
                self.assertIn("Initializing TOV Rules result=", text)

    def test_a_folder_that_cannot_be_made(self):
        self.write("taken", "")
        for command in (["check", *self.documents()], ["explain", *self.documents()],
                        ["eval", "edit", *self.documents()], ["batch", *self.documents()]):
            with self.subTest(command=command[0]):
                result = self.tov(*command, "--log", "taken/logs", stdin="")
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stdout, "")
                self.assertIn("tov: cannot use log folder taken/logs", result.stderr)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_commands.py TOV_PROGRAM SOURCE_DIR")
    TOV = os.path.abspath(sys.argv[1])
    unittest.main(argv=[sys.argv[0]], verbosity=2)
