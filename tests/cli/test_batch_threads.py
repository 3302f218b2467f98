"""tov batch on several workers answers as on one: the same lines in the same
order, error lines and status included, from a file and from standard input.
The ThreadSanitizer build runs it too, so that the workers' hand-offs are
checked for races as well as for their answers.

Run as: python3 test_batch_threads.py TOV_PROGRAM SOURCE_DIR
"""

import os
import subprocess
import sys
import tempfile
import unittest

TOV = None
SOURCE = None

# Lines enough that every worker takes many bunches, few enough that a
# sanitized build answers them in seconds.
REPEATS = 40
BROKEN_LINES = [
    "not json",
    '{"kind": "edit"}',
    '{"kind": "delete", "request": {}}',
    "",
    '{"kind": "edit", "request": {"objectType": "Part"}, "id": 7}',
]


def batch_lines():
    with open(os.path.join(SOURCE, "examples", "requests.jsonl"), encoding="utf-8") as lines:
        examples = [line for line in lines.read().splitlines() if line]
    lines = []
    for repeat in range(REPEATS):
        lines += examples
        lines.append(BROKEN_LINES[repeat % len(BROKEN_LINES)])
    return "".join(line + "\n" for line in lines)


def batch(jobs, requests=None, stdin=None):
    arguments = [TOV, "batch", "--rules", os.path.join(SOURCE, "examples", "rules.json"),
                 "--dm", os.path.join(SOURCE, "examples", "datamodel.json"), "--jobs", str(jobs)]
    if requests:
        arguments.append(requests)
    return subprocess.run(arguments, input=stdin, capture_output=True, text=True, timeout=300)


class BatchOnSeveralWorkers(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.requests = os.path.join(cls.folder.name, "requests.jsonl")
        cls.text = batch_lines()
        with open(cls.requests, "w", encoding="utf-8") as out:
            out.write(cls.text)
        cls.one = batch(1, cls.requests)

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_one_worker_answers_every_line(self):
        self.assertEqual(self.one.returncode, 1, self.one.stderr)
        self.assertEqual(len(self.one.stdout.splitlines()), len(self.text.splitlines()))

    def test_several_workers_answer_as_one(self):
        for jobs in (2, 3, 8):
            with self.subTest(jobs=jobs):
                several = batch(jobs, self.requests)
                self.assertEqual(several.returncode, self.one.returncode, several.stderr)
                self.assertEqual(several.stdout, self.one.stdout)
                self.assertEqual(several.stderr, self.one.stderr)

    def test_standard_input_answers_as_the_file(self):
        for jobs in (1, 2):
            with self.subTest(jobs=jobs):
                piped = batch(jobs, stdin=self.text)
                self.assertEqual(piped.returncode, self.one.returncode, piped.stderr)
                self.assertEqual(piped.stdout, self.one.stdout)


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_batch_threads.py TOV_PROGRAM SOURCE_DIR")
    TOV = os.path.abspath(sys.argv[1])
    SOURCE = os.path.abspath(sys.argv[2])
    unittest.main(argv=[sys.argv[0]], verbosity=2)
