"""The tov program against hostile input: deep nesting, endless devices, FIFOs
without a writer, folders, files over the size limit and reads that fail.
Every one gets a clear message and an exact exit status at once.

Run as: python3 test_hostile_input.py TOV_PROGRAM SOURCE_DIR
"""

import json
import os
import subprocess
import sys
import unittest

import test_commands as base
from test_commands import RETITLE, APPROVED_EDIT, ProgramTest, batch_line

# Quick answers are the point here: a hang is a failure, not a slow pass.
QUICK = 20
NESTING = 100000


class HostileInputTest(ProgramTest):
    def quick(self, *arguments, stdin=None):
        return subprocess.run([base.TOV, *arguments], cwd=self.folder, stdin=stdin,
                              capture_output=True, text=True, timeout=QUICK)


class DeepNesting(HostileInputTest):
    def test_a_request_nested_deep_in_a_batch_line_is_answered_as_eval_answers_it(self):
        request = ('{"objectType":"Part","initialAttributes":{"Status":"In Work"},'
                   '"targetAttributes":{"Deep":' + "[" * NESTING + "]" * NESTING + "}}")
        self.write("request.json", request)
        self.write("requests.jsonl", '{"kind":"edit","request":' + request + "}\n")
        evaluated = self.tov("eval", "edit", *self.documents(), "request.json")
        answered = self.tov("batch", *self.documents(), "requests.jsonl")
        self.assertEqual(answered.returncode, 0, answered.stderr)
        self.assertEqual(answered.stdout, evaluated.stdout)
        self.assertEqual(answered.stdout, '{"Result":"Failure","ResultComment":"Target '
                         'Attributes: parsing error on keys - values of targetAttributes."}\n')

    def test_a_deep_id_comes_back_whole_in_json_form(self):
        deep_id = "[" * NESTING + "]" * NESTING
        self.write("requests.jsonl",
                   '{"id":' + deep_id + ',"kind":"edit","request":' + json.dumps(RETITLE) + "}\n")
        result = self.tov("batch", *self.documents(), "--format", "json", "requests.jsonl")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertTrue(result.stdout.startswith('{"id":' + deep_id + ',"result":true,'))


class NotARegularFile(HostileInputTest):
    def test_an_endless_device_as_a_document(self):
        for option, what in (("--rules", "rules document"), ("--dm", "data-model document")):
            for command in (["check"], ["explain"], ["eval", "edit"], ["batch"], ["graph"]):
                with self.subTest(option=option, command=command[0]):
                    documents = {"--rules": "rules.json", "--dm": "dm.json", option: "/dev/zero"}
                    arguments = [*command, "--rules", documents["--rules"], "--dm",
                                 documents["--dm"]]
                    if command[0] == "graph":
                        arguments += ["--type", "Part", "--attribute", "Status"]
                    result = self.quick(*arguments, stdin=subprocess.DEVNULL)
                    self.assertEqual(result.returncode, 2)
                    self.assertEqual(result.stdout, "")
                    self.assertEqual(result.stderr, "tov: cannot read " + what +
                                     " /dev/zero: not a regular file\n")

    def test_an_endless_device_as_a_request_or_requests(self):
        result = self.quick("eval", "edit", *self.documents(), "/dev/zero")
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (2, "", "tov: cannot read request /dev/zero: not a regular file\n"))
        result = self.quick("batch", *self.documents(), "/dev/zero")
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (2, "", "tov: cannot read requests /dev/zero: not a regular file\n"))

    def test_a_fifo_without_a_writer_is_refused_at_once(self):
        os.mkfifo(self.path("fifo"))
        runs = {
            "rules": (["check", "--rules", "fifo"], "rules document fifo"),
            "data model": (["check", "--rules", "rules.json", "--dm", "fifo"],
                           "data-model document fifo"),
            "request": (["eval", "edit", *self.documents(), "fifo"], "request fifo"),
            "requests": (["batch", *self.documents(), "fifo"], "requests fifo"),
            "suite": (["test", "fifo"], "suite fifo"),
        }
        for what, (arguments, named) in runs.items():
            with self.subTest(what=what):
                result = self.quick(*arguments)
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stdout, "")
                self.assertEqual(result.stderr,
                                 "tov: cannot read " + named + ": not a regular file\n")

    def test_a_folder_is_refused_as_a_request(self):
        os.mkdir(self.path("folder"))
        result = self.quick("eval", "edit", *self.documents(), "folder")
        self.assertEqual((result.returncode, result.stderr),
                         (2, "tov: cannot read request folder: Is a directory\n"))


class SizeLimit(HostileInputTest):
    def test_a_document_over_the_limit(self):
        size = os.path.getsize(self.path("rules.json"))
        result = self.quick("check", "--rules", "rules.json", "--max-input-size",
                            str(size - 1))
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, "")
        self.assertEqual(result.stderr, "tov: rules document rules.json is larger than the "
                                        "input size limit of " + str(size - 1) +
                                        " bytes (--max-input-size)\n")
        result = self.quick("check", "--rules", "rules.json", "--max-input-size", str(size))
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_the_limit_takes_units(self):
        self.write("big.json", "{}" + " " * 2048)
        result = self.quick("check", "--rules", "big.json", "--max-input-size", "2KiB")
        self.assertEqual(result.returncode, 2)
        self.assertIn("input size limit of 2048 bytes", result.stderr)
        result = self.quick("check", "--rules", "big.json", "--max-input-size", "3k")
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_a_request_over_the_limit_from_a_file_or_standard_input(self):
        self.write_json("request.json", RETITLE)
        size = os.path.getsize(self.path("request.json"))
        limit = str(max(size, os.path.getsize(self.path("rules.json")),
                        os.path.getsize(self.path("dm.json"))))
        padded = json.dumps(RETITLE) + " " * int(limit)
        self.write("padded.json", padded)
        result = self.quick("eval", "edit", *self.documents(), "padded.json",
                            "--max-input-size", limit)
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertEqual(result.stderr, "tov: request padded.json is larger than the input "
                                        "size limit of " + limit + " bytes (--max-input-size)\n")
        with open(self.path("padded.json"), encoding="utf-8") as stdin:
            result = self.quick("eval", "edit", *self.documents(), "--max-input-size", limit,
                                stdin=stdin)
        self.assertEqual((result.returncode, result.stdout), (2, ""))
        self.assertEqual(result.stderr, "tov: request from standard input is larger than the "
                                        "input size limit of " + limit +
                                        " bytes (--max-input-size)\n")

    def test_a_batch_line_over_the_limit_ends_the_batch_after_the_lines_before_it(self):
        line = batch_line("edit", RETITLE)
        limit = max(len(line), os.path.getsize(self.path("rules.json")))
        self.write("requests.jsonl", line + "\n" + line + " " * limit + "\n" + line + "\n")
        for source in ("file", "standard input"):
            with self.subTest(source=source):
                if source == "file":
                    result = self.quick("batch", *self.documents(), "--max-input-size",
                                        str(limit), "requests.jsonl")
                    named = "requests requests.jsonl"
                else:
                    with open(self.path("requests.jsonl"), encoding="utf-8") as stdin:
                        result = self.quick("batch", *self.documents(), "--max-input-size",
                                            str(limit), stdin=stdin)
                    named = "requests from standard input"
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stdout, APPROVED_EDIT + "\n")
                self.assertEqual(result.stderr, "tov: line 2 of " + named + " is larger than "
                                 "the input size limit of " + str(limit) +
                                 " bytes (--max-input-size)\n")

    def test_a_limit_that_is_no_size_is_a_usage_error(self):
        for value in ("0", "-5", "lots"):
            with self.subTest(value=value):
                result = self.quick("check", "--rules", "rules.json", "--max-input-size", value)
                self.assertEqual(result.returncode, 2)
                self.assertEqual(result.stdout, "")
                self.assertIn("--max-input-size", result.stderr)


class ReadErrors(HostileInputTest):
    """Standard input that is a folder opens but fails every read."""

    def with_folder_as_stdin(self, *arguments):
        os.makedirs(self.path("folder"), exist_ok=True)
        descriptor = os.open(self.path("folder"), os.O_RDONLY)
        try:
            return self.quick(*arguments, stdin=descriptor)
        finally:
            os.close(descriptor)

    def test_a_request_that_cannot_be_read(self):
        result = self.with_folder_as_stdin("eval", "edit", *self.documents())
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (2, "", "tov: cannot read request from standard input: "
                                 "Is a directory\n"))

    def test_requests_that_cannot_be_read_are_no_end_of_input(self):
        result = self.with_folder_as_stdin("batch", *self.documents())
        self.assertEqual((result.returncode, result.stdout, result.stderr),
                         (2, "", "tov: cannot read requests from standard input: "
                                 "Is a directory\n"))


class KeysAreNeverRepeated(HostileInputTest):
    def test_a_line_with_two_ids_is_answered_with_one(self):
        self.write("requests.jsonl", '{"id":1,"id":2,"kind":"edit","request":' +
                   json.dumps(RETITLE) + "}\n")
        result = self.tov("batch", *self.documents(), "--format", "json", "requests.jsonl")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout.count('"id"'), 1)
        pairs = json.loads(result.stdout, object_pairs_hook=lambda pairs: pairs)
        self.assertEqual([key for key, _ in pairs],
                         ["id", "result", "comment", "keywords", "options", "initialize",
                          "missing"])


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_hostile_input.py TOV_PROGRAM SOURCE_DIR")
    base.TOV = os.path.abspath(sys.argv[1])
    unittest.main(argv=[sys.argv[0]], verbosity=2)
