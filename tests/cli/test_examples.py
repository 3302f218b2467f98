"""The example scenario through the tov program: every request of
examples/scenario.json gives the answer written down in examples/expected/,
with its exit status; check, explain, batch and the demo agree.

Run as: python3 test_examples.py TOV_PROGRAM SOURCE_DIR
"""

import json
import os
import subprocess
import sys
import unittest

TOV = None
SOURCE = None
DOCUMENTS = ["--rules", "examples/rules.json", "--dm", "examples/datamodel.json"]
KINDS = ["edit", "edit-before-resolution", "save", "save-before-resolution", "link", "options"]


def tov(*arguments, stdin=None):
    # Relative paths, so that what the program prints does not depend on where
    # the sources are.
    return subprocess.run([TOV, *arguments], cwd=SOURCE, input=stdin, capture_output=True,
                          text=True, timeout=120)


def read(*parts):
    with open(os.path.join(SOURCE, *parts), encoding="utf-8") as f:
        return f.read()


def steps():
    return json.loads(read("examples", "scenario.json"))["steps"]


def expected_answer(step):
    return read("examples", "expected", step["name"] + ".out")


def collapsed(text):
    return " ".join(text.split())


def info_message(single_string):
    # The message for a person: the verdict, "! ", and the comment with its
    # first "<any>" told in words.
    answer = json.loads(single_string)
    verdict = "Success" if answer["Result"] == "Success" else "Failure"
    return verdict + "! " + answer["ResultComment"].replace("<any>", "any object type", 1)


class ScenarioTest(unittest.TestCase):

    def test_documents_load(self):
        done = tov("check", *DOCUMENTS)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout, read("examples", "expected", "check.out"))

    def test_rules_in_words(self):
        done = tov("explain", *DOCUMENTS)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.assertEqual(done.stdout, read("examples", "expected", "explain.out"))

    def test_every_request_gives_its_answer(self):
        for step in steps():
            with self.subTest(request=step["name"]):
                done = tov("eval", step["kind"], *DOCUMENTS,
                           "examples/requests/" + step["name"] + ".json")
                self.assertEqual(done.stdout, expected_answer(step), done.stderr)
                self.assertEqual(done.returncode, step["exit"], done.stderr)
                # The single string collapses runs of white space; the info
                # message keeps the comment as the library wrote it.
                self.assertIn(collapsed(info_message(expected_answer(step))),
                              [collapsed(line) for line in done.stderr.splitlines()])

    def test_a_request_on_standard_input(self):
        step = steps()[0]
        request = read("examples", "requests", step["name"] + ".json")
        for name in ["-", None]:
            with self.subTest(request=name):
                arguments = ["eval", step["kind"], *DOCUMENTS] + ([name] if name else [])
                done = tov(*arguments, stdin=request)
                self.assertEqual(done.stdout, expected_answer(step), done.stderr)
                self.assertEqual(done.returncode, step["exit"])

    def test_exit_statuses_follow_the_answers(self):
        for step in steps():
            with self.subTest(request=step["name"]):
                answer = json.loads(expected_answer(step))
                asks = "MissingData" in (answer.get("ObjectFamilyMembers"),
                                         answer.get("ManualLinkAncestors"))
                status = 0 if answer["Result"] == "Success" else 3 if asks else 1
                self.assertEqual(step["exit"], status)

    def test_the_scenario_shows_every_kind_and_outcome(self):
        self.assertEqual(sorted({s["kind"] for s in steps()}), sorted(KINDS))
        self.assertEqual({s["exit"] for s in steps()}, {0, 1, 3})
        answers = "\n".join(expected_answer(s) for s in steps())
        for outcome in [
                '"ResultComment":"Edit attempt approved"',
                '"ResultComment":"Save attempt approved"',
                "Transition freeze violation detected: ",
                "Transition violation detected: ",
                "File constraint violation detected: ",
                "Conflict resolution violation detected: ",
                "History Link violation detected.No entries provided to check rule:",
                "History Link violation detected.Entry with server id ",
                "Manual Ancestor Link violation detected.No entries provided to check rule:",
                "Manual Ancestor Link violation detected.Entry with server id ",
                '"ObjectFamilyMembers":"MissingData"',
                '"ManualLinkAncestors":"MissingData"',
                '"TriggerInitialization":"{ReleaseDate:Reset}"',
                '"TriggerInitialization":"{Iteration:Next}"',
                "Manual Link creation approved",
                "Did not find any TOV rule for specific versioning attribute selection",
                "Found TOV rule for specific versioning attribute selection",
                '"SelectedVersioningAttribute":"[Overwrite]"',
                "Contradicting conflict resolution detected!!",
                "Contradicting versioning rules detected!!",
                "demands ALL keywords",
        ]:
            with self.subTest(outcome=outcome):
                self.assertIn(outcome, answers)

    def test_every_request_file_belongs_to_the_scenario(self):
        names = {s["name"] for s in steps()}
        self.assertEqual(len(names), len(steps()))
        files = {f[:-len(".json")] for f in os.listdir(os.path.join(SOURCE, "examples", "requests"))}
        self.assertEqual(files, names)
        outs = {f[:-len(".out")] for f in os.listdir(os.path.join(SOURCE, "examples", "expected"))
                if f.endswith(".out")} - {"check", "explain"}
        self.assertEqual(outs, names)

    def test_batch_file_holds_the_scenario(self):
        lines = [json.loads(line) for line in read("examples", "requests.jsonl").splitlines()]
        self.assertEqual(len(lines), len(steps()))
        for step, line in zip(steps(), lines):
            with self.subTest(request=step["name"]):
                self.assertEqual(line["kind"], step["kind"])
                request = json.loads(read("examples", "requests", step["name"] + ".json"))
                self.assertEqual(line["request"], request)

    def test_batch_answers_as_one_by_one_in_order(self):
        expected = "".join(expected_answer(s) for s in steps())
        for jobs in ["1", "4"]:
            with self.subTest(jobs=jobs):
                done = tov("batch", *DOCUMENTS, "--jobs", jobs, "examples/requests.jsonl")
                self.assertEqual(done.returncode, 0, done.stderr)
                self.assertEqual(done.stdout, expected)

    def test_demo(self):
        done = subprocess.run([sys.executable, os.path.join(SOURCE, "scripts", "demo.py"),
                               "--tov", TOV], capture_output=True, text=True, timeout=300)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        for step in steps():
            self.assertIn(step["name"], done.stdout)
        self.assertIn("the same as one by one", done.stdout)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_examples.py TOV_PROGRAM SOURCE_DIR")
    TOV, SOURCE = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    unittest.main(argv=[sys.argv[0]], verbosity=2)
