"""tov eval --trace and tov test --coverage: which rules judged a request, and
which rules a suite never exercised, as a rules author reads them.

Run as: python3 test_trace.py TOV_PROGRAM SOURCE_DIR
"""

import json
import os
import subprocess
import sys
import tempfile
import unittest

TOV = None
SOURCE = None


def tov(*arguments, cwd=None):
    return subprocess.run([TOV, *arguments], cwd=cwd or SOURCE, capture_output=True, text=True,
                          timeout=120)


def examples(*arguments):
    return ["--rules", "examples/rules.json", "--dm", "examples/datamodel.json", *arguments]


FIRST_PASS = "examples/requests/edit-part-release-first-pass.json"
FROZEN = "examples/requests/edit-released-part-description-frozen.json"


class EvalTrace(unittest.TestCase):
    def test_the_trace_follows_the_answer_in_words(self):
        plain = tov("eval", "edit", *examples(FIRST_PASS))
        traced = tov("eval", "edit", "--trace", *examples(FIRST_PASS))
        self.assertEqual(traced.returncode, 3, traced.stderr)
        self.assertEqual(traced.returncode, plain.returncode)
        self.assertEqual(traced.stderr, plain.stderr)
        self.assertEqual(traced.stdout, plain.stdout + "\n".join([
            "Trace, in judging order:",
            '  transitions #1, not applicable: For Part: Status can transition from "In Work" '
            'to "In Work", "In Review", "Cancelled"',
            '  transitions #3, not applicable: For Part: Status can transition from "Released" '
            'to "Released", "Obsolete"',
            '  transitions #2, approved: For Part: Status can transition from "In Review" to '
            '"In Review", "In Work", "Released"',
            '  transitions #5, not applicable: For <any>: Status can transition from "Obsolete" '
            'to "Obsolete"',
            '  conflictResolutions #1, not applicable: For Part: When Status transitions from '
            '"In Work" to "In Review"  then we MUST overwrite',
            '  historyLinks #1, asked for missing data (decisive): For <any>: When Status is '
            '"Released" then entries in the same object family can have Status equal to one '
            'of :[Cancelled,Obsolete,Released]',
        ]) + "\n")

    def test_a_request_that_no_rule_judges_says_so(self):
        traced = tov("eval", "options", "--trace",
                     *examples("examples/requests/options-assembly-no-rule.json"))
        self.assertEqual(traced.returncode, 0, traced.stderr)
        self.assertTrue(traced.stdout.endswith("\nTrace: no rule was consulted\n"))

    def test_in_json_form_the_trace_is_the_last_member(self):
        plain = tov("eval", "edit", "--format", "json", *examples(FROZEN))
        traced = tov("eval", "edit", "--format", "json", "--trace", *examples(FROZEN))
        self.assertEqual(traced.returncode, 1, traced.stderr)
        answer = json.loads(traced.stdout)  # keeps the order of the members
        self.assertEqual(list(answer)[-1], "trace")
        trace = answer.pop("trace")
        self.assertEqual(answer, json.loads(plain.stdout))
        self.assertEqual(trace, [{
            "section": "transitionsFreeze", "number": 1,
            "rule": 'For Part: When Status equals "Released", then Description must remain '
                    'unchanged.',
            "outcome": "objected", "decisive": True}])


class TestCoverage(unittest.TestCase):
    def test_tells_per_kind_what_was_exercised_and_what_never(self):
        result = tov("test", "--coverage", "examples/tests.json")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout, "\n".join([
            "25 passed, 0 failed",
            "Coverage of examples/rules.json: 16 of 20 rules exercised (80.0%)",
            "  transitionsFreeze: 1 of 2",
            '    never: #2 For <any>: When Status equals "Obsolete", then Owner must remain '
            'unchanged.',
            "  historyLinks: 1 of 1",
            "  manualLinks: 1 of 1",
            "  transitions: 3 of 5",
            '    never: #3 For Part: Status can transition from "Released" to "Released", '
            '"Obsolete"',
            '    never: #5 For <any>: Status can transition from "Obsolete" to "Obsolete"',
            "  triggers: 2 of 2",
            "  versioningSelections: 3 of 4",
            '    never: #2 For Part: When {"Status" equals "Released"} then you should spin up '
            'versions using one of the attributes: [Revision]',
            "  conflictResolutions: 3 of 3",
            "  fileConstraints: 2 of 2",
        ]) + "\n")

    def test_in_json_form_the_coverage_is_a_member(self):
        result = tov("test", "--coverage", "--format", "json", "examples/tests.json")
        self.assertEqual(result.returncode, 0, result.stderr)
        report = json.loads(result.stdout)
        self.assertEqual(report["passed"], 25)
        [coverage] = report["coverage"]
        self.assertEqual((coverage["rules"], coverage["exercised"], coverage["total"],
                          coverage["percent"]), ("examples/rules.json", 16, 20, 80.0))
        kinds = {kind["section"]: kind for kind in coverage["kinds"]}
        self.assertEqual(set(kinds), {"transitionsFreeze", "historyLinks", "manualLinks",
                                      "transitions", "triggers", "versioningSelections",
                                      "conflictResolutions", "fileConstraints"})
        self.assertEqual([entry["number"] for entry in kinds["transitions"]["never"]], [3, 5])
        self.assertEqual((kinds["fileConstraints"]["exercised"],
                          kinds["fileConstraints"]["total"], kinds["fileConstraints"]["never"]),
                         (2, 2, []))

    def test_without_the_option_nothing_about_coverage_is_told(self):
        result = tov("test", "examples/tests.json")
        self.assertEqual(result.stdout, "25 passed, 0 failed\n")
        self.assertNotIn("coverage", json.loads(
            tov("test", "--format", "json", "examples/tests.json").stdout))

    def test_a_minimum_fails_the_run_below_it_and_passes_at_it(self):
        below = tov("test", "--coverage-min", "80.5", "examples/tests.json")
        self.assertEqual(below.returncode, 1)
        self.assertEqual(below.stderr,
                         "tov: 16 of 20 rules exercised (80.0%), below the minimum of 80.5%\n")
        self.assertIn("Coverage of examples/rules.json", below.stdout)
        at = tov("test", "--coverage-min", "80", "examples/tests.json")
        self.assertEqual(at.returncode, 0, at.stderr)

    def test_a_minimum_beyond_a_hundred_is_a_usage_error(self):
        result = tov("test", "--coverage-min", "101", "examples/tests.json")
        self.assertEqual(result.returncode, 2)
        self.assertIn("--coverage-min", result.stderr)

    def test_documents_without_rules_are_covered_whole(self):
        with tempfile.TemporaryDirectory(prefix="tov-coverage-") as folder:
            with open(os.path.join(folder, "rules.json"), "w", encoding="utf-8") as out:
                out.write("{}")
            with open(os.path.join(folder, "suite.json"), "w", encoding="utf-8") as out:
                json.dump({"rules": "rules.json",
                           "datamodel": os.path.join(SOURCE, "examples", "datamodel.json"),
                           "cases": [{"name": "nothing to judge", "kind": "options",
                                      "requestFile": os.path.join(
                                          SOURCE, "examples", "requests",
                                          "options-assembly-no-rule.json"),
                                      "expect": {"Result": "Failure"}}]}, out)
            result = tov("test", "--coverage-min", "100", "suite.json", cwd=folder)
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(result.stdout, "1 passed, 0 failed\n"
                             "Coverage of rules.json: 0 of 0 rules exercised (100.0%)\n")


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_trace.py TOV_PROGRAM SOURCE_DIR")
    TOV = os.path.abspath(sys.argv[1])
    SOURCE = os.path.abspath(sys.argv[2])
    unittest.main(argv=[sys.argv[0]], verbosity=2)
