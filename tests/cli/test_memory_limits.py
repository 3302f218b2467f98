"""The tov program under a real memory limit, as hosts and containers run it:
a rules document of about 30 MB is checked and batch-evaluated under address
space limits from 40 to 300 MB (the program needs about 200 MB for it). Every
run either answers as without a limit or says "tov: out of memory" with
status 2; none dies by a signal.

Left out when the program is built with a sanitizer, whose runtime reserves
more address space than any of these limits allows.

Run as: python3 test_memory_limits.py TOV_PROGRAM SOURCE_DIR
"""

import json
import os
import resource
import subprocess
import sys
import tempfile
import unittest

import test_commands as base

LIMITS_MB = (40, 50, 60, 70, 85, 100, 120, 150, 200, 300)
OBJECT_TYPES = 2000
RULES_PER_TYPE = 200
RUN_SECONDS = 120


def write_large_rules(path):
    """About 30 MB: OBJECT_TYPES x RULES_PER_TYPE transition rules."""
    with open(path, "w", encoding="utf-8") as out:
        out.write('{"transitions":{')
        for type_index in range(OBJECT_TYPES):
            if type_index:
                out.write(",")
            rules = ",".join(
                '{"attribute":"Status","fromValue":"State %d","toValue":["State %d","State %d"]}'
                % (rule, rule, rule + 1) for rule in range(RULES_PER_TYPE))
            out.write('"Type%04d":[%s]' % (type_index, rules))
        out.write("}}")


def limited_to(megabytes):
    def apply():
        limit = megabytes * 1024 * 1024
        resource.setrlimit(resource.RLIMIT_AS, (limit, limit))
    return apply


class UnderAMemoryLimit(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.holder = tempfile.TemporaryDirectory(prefix="tov-memory-")
        cls.folder = cls.holder.name
        cls.rules = os.path.join(cls.folder, "rules.json")
        write_large_rules(cls.rules)
        cls.data_model = os.path.join(cls.folder, "dm.json")
        with open(cls.data_model, "w", encoding="utf-8") as out:
            json.dump(base.DATA_MODEL, out)
        cls.requests = os.path.join(cls.folder, "requests.jsonl")
        with open(cls.requests, "w", encoding="utf-8") as out:
            for _ in range(3):
                out.write(base.batch_line("edit", base.RETITLE) + "\n")
        cls.commands = {
            "check": ["check", "--rules", cls.rules, "--dm", cls.data_model],
            "batch": ["batch", "--jobs", "2", "--rules", cls.rules, "--dm", cls.data_model,
                      cls.requests],
        }
        cls.unlimited = {name: cls.run_tov(arguments) for name, arguments in cls.commands.items()}

    @classmethod
    def tearDownClass(cls):
        cls.holder.cleanup()

    @classmethod
    def run_tov(cls, arguments, limit_mb=None):
        return subprocess.run([base.TOV, *arguments], cwd=cls.folder, capture_output=True,
                              text=True, timeout=RUN_SECONDS,
                              preexec_fn=None if limit_mb is None else limited_to(limit_mb))

    def test_the_document_is_about_30_mb(self):
        self.assertGreater(os.path.getsize(self.rules), 25 * 1024 * 1024)
        self.assertLess(os.path.getsize(self.rules), 35 * 1024 * 1024)

    def test_without_a_limit_both_commands_answer(self):
        self.assertEqual(self.unlimited["check"].returncode, 0, self.unlimited["check"].stderr)
        self.assertEqual(self.unlimited["batch"].returncode, 0, self.unlimited["batch"].stderr)
        self.assertEqual(self.unlimited["batch"].stdout.count("\n"), 3)

    def test_every_limit_gives_the_answer_or_out_of_memory_and_never_a_signal(self):
        outcomes = []
        for name, arguments in self.commands.items():
            for limit in LIMITS_MB:
                with self.subTest(command=name, limit_mb=limit):
                    result = self.run_tov(arguments, limit)
                    self.assertGreaterEqual(result.returncode, 0,
                                            "killed by signal %d" % -result.returncode)
                    if result.returncode == 2:
                        # Batch answers stream out: those before the failure stand.
                        self.assertTrue(self.unlimited[name].stdout.startswith(result.stdout))
                        self.assertIn("tov: out of memory", result.stderr)
                        outcomes.append((name, limit, "out of memory"))
                    else:
                        expected = self.unlimited[name]
                        self.assertEqual(result.returncode, expected.returncode, result.stderr)
                        self.assertEqual(result.stdout, expected.stdout)
                        outcomes.append((name, limit, "answered"))
        print("\n".join("%s under %d MB: %s" % outcome for outcome in outcomes))
        # The limits span both outcomes, or the test would prove less than it says.
        self.assertIn("out of memory", [outcome for _, _, outcome in outcomes])
        self.assertIn("answered", [outcome for _, _, outcome in outcomes])


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_memory_limits.py TOV_PROGRAM SOURCE_DIR")
    base.TOV = os.path.abspath(sys.argv[1])
    unittest.main(argv=[sys.argv[0]], verbosity=2)
