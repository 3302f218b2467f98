"""Tests of ratios.py and batch_times.py on fixed reports and on stand-ins
for the programs, run as python3 test_ratios.py."""

import os
import stat
import sys
import tempfile
import unittest
from unittest import mock

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import batch_times  # noqa: E402
import ratios  # noqa: E402


def entry(name, cpu_time, unit="us", aggregate=None, **extra):
    run = {"name": name if aggregate is None else name + "_" + aggregate, "run_name": name,
           "run_type": "iteration" if aggregate is None else "aggregate",
           "cpu_time": cpu_time, "real_time": cpu_time * 2, "time_unit": unit}
    if aggregate is not None:
        run["aggregate_name"] = aggregate
    run.update(extra)
    return run


def report_of(*entries):
    return {"context": {}, "benchmarks": list(entries)}


MEMORY_OUTPUT = """document: 6318908 bytes, 100000 transition rules
from text: the load raised the peak by 54.6 MiB, 9.06 times the document (process peak 64.3 MiB)
from file: the load raised the peak by 34.0 MiB, 5.64 times the document (process peak 37.6 MiB)
"""

# Medians in the units tov_bench reports them in, one time per goal's benchmark.
FULL_REPORT = report_of(
    entry("BM_ParseRequest", 1.0, aggregate="median"),
    entry("BM_Edit/100", 20.0, aggregate="median"),
    entry("BM_Edit/100000", 4.5, "ms", aggregate="median"),
    entry("BM_ParseRules100k", 12.5, "ms", aggregate="median"),
    entry("BM_LoadRules100k", 150.0, "ms", aggregate="median"),
    entry("BM_Options/100", 10.0, aggregate="median"),
    entry("BM_Options/100000", 1.2e7, "ns", aggregate="median"),
    entry("BM_EngineEdit", 20.2, aggregate="median"),
)

# A measure of tov batch in nanoseconds: 30 us a line, 400 ms and 240 ms.
BATCH = {"lines": 25000, "runs": 5, "cores": 2, "load": 1.5, "line_cpu": 30000.0,
         "wall_one": 4e8, "wall_two": 2.4e8}


class MedianCpuTimesTest(unittest.TestCase):
    def test_takes_the_median_aggregate_in_nanoseconds(self):
        report = report_of(entry("BM_Edit/100", 21.0, aggregate="mean"),
                           entry("BM_Edit/100", 20.0, aggregate="median"),
                           entry("BM_Edit/100", 0.5, aggregate="stddev"),
                           entry("BM_LoadRules100k", 150.0, "ms", aggregate="median"))
        self.assertEqual(ratios.median_cpu_times(report),
                         {"BM_Edit/100": 20000.0, "BM_LoadRules100k": 150000000.0})

    def test_without_aggregates_takes_the_median_of_the_runs(self):
        report = report_of(entry("BM_Edit/100", 30.0), entry("BM_Edit/100", 10.0),
                           entry("BM_Edit/100", 20.0), entry("BM_ParseRequest", 2.0, "ns"))
        self.assertEqual(ratios.median_cpu_times(report),
                         {"BM_Edit/100": 20000.0, "BM_ParseRequest": 2.0})

    def test_keeps_the_order_of_the_report(self):
        report = report_of(entry("BM_Options/100", 1.0), entry("BM_Edit/100", 1.0))
        self.assertEqual(list(ratios.median_cpu_times(report)), ["BM_Options/100", "BM_Edit/100"])

    def test_a_wrong_answer_is_an_error(self):
        report = report_of(entry("BM_Edit/100", 0.0, error_occurred=True,
                                 error_message="expected A but got B"))
        with self.assertRaisesRegex(ValueError, r"^BM_Edit/100: expected A but got B$"):
            ratios.median_cpu_times(report)


class PinnedMallocTest(unittest.TestCase):
    def test_fixes_both_thresholds_and_keeps_the_rest(self):
        with mock.patch.dict(os.environ, {"KEPT": "yes"}):
            environment = ratios.pinned_malloc_environment()
        self.assertEqual(environment["KEPT"], "yes")
        self.assertEqual(environment["GLIBC_TUNABLES"],
                         "glibc.malloc.mmap_threshold=33554432:"
                         "glibc.malloc.trim_threshold=1073741824")


class MemoryRatiosTest(unittest.TestCase):
    def test_reads_both_forms(self):
        self.assertEqual(ratios.memory_ratios(MEMORY_OUTPUT),
                         {"text": (54.6, 9.06, 64.3), "file": (34.0, 5.64, 37.6)})

    def test_other_lines_give_nothing(self):
        self.assertEqual(ratios.memory_ratios("from text: something else\n"), {})


class RatioRowsTest(unittest.TestCase):
    def test_divides_the_goals_benchmarks(self):
        rows = ratios.ratio_rows(ratios.median_cpu_times(FULL_REPORT),
                                 ratios.memory_ratios(MEMORY_OUTPUT))
        self.assertEqual(rows, [
            ("edit at 100 rules / parse of the request", 20.0, 3.0),
            ("edit at 100,000 rules / edit at 100 rules", 225.0, 1.5),
            ("load of 100,000 rules / parse of their document", 12.0, 2.0),
            ("options at 100,000 rules / options at 100 rules", 1200.0, 1.5),
            ("edit through a shared engine / edit at 100 rules", 1.01, 1.05),
            ("peak memory of a load from text / document size", 9.06, 3.0),
            ("peak memory of a load from a file / document size", 5.64, 2.0),
        ])

    def test_a_missing_benchmark_is_an_error(self):
        times = ratios.median_cpu_times(FULL_REPORT)
        del times["BM_Options/100"]
        with self.assertRaisesRegex(ValueError, r"^no time for BM_Options/100$"):
            ratios.ratio_rows(times, ratios.memory_ratios(MEMORY_OUTPUT))

    def test_a_missing_memory_measure_is_an_error(self):
        with self.assertRaisesRegex(ValueError, r"^no memory measure of the load from text$"):
            ratios.ratio_rows(ratios.median_cpu_times(FULL_REPORT), {})

    def test_the_batch_rows_follow_the_others(self):
        rows = ratios.ratio_rows(ratios.median_cpu_times(FULL_REPORT),
                                 ratios.memory_ratios(MEMORY_OUTPUT), BATCH)
        self.assertEqual(len(rows), 9)
        self.assertEqual(rows[-2:], [
            ("line of tov batch --jobs 1 / edit at 100 rules", 1.5, 1.25),
            ("wall time of tov batch --jobs 2 / --jobs 1", 0.6, 0.55),
        ])

    def test_the_batch_rows_alone_need_only_the_edit(self):
        self.assertEqual(ratios.batch_rows({"BM_Edit/100": 40000.0}, BATCH), [
            ("line of tov batch --jobs 1 / edit at 100 rules", 0.75, 1.25),
            ("wall time of tov batch --jobs 2 / --jobs 1", 0.6, 0.55),
        ])

    def test_a_batch_without_the_edit_is_an_error(self):
        with self.assertRaisesRegex(ValueError, r"^no time for BM_Edit/100$"):
            ratios.batch_rows({"BM_ParseRequest": 1.0}, BATCH)


class FormatReportTest(unittest.TestCase):
    def test_tells_times_memory_and_ratios_with_their_goals(self):
        times = ratios.median_cpu_times(FULL_REPORT)
        memory = ratios.memory_ratios(MEMORY_OUTPUT)
        rows = ratios.ratio_rows(times, memory)
        rows[0] = (rows[0][0], 1.5, rows[0][2])
        self.assertEqual(ratios.format_report(times, memory, rows), "\n".join([
            "CPU time, medians:",
            "  BM_ParseRequest                1 us",
            "  BM_Edit/100                   20 us",
            "  BM_Edit/100000               4.5 ms",
            "  BM_ParseRules100k           12.5 ms",
            "  BM_LoadRules100k             150 ms",
            "  BM_Options/100                10 us",
            "  BM_Options/100000             12 ms",
            "  BM_EngineEdit               20.2 us",
            "Peak memory while 100,000 rules load:",
            "  from text: +54.6 MiB, 9.06x the document (process peak 64.3 MiB)",
            "  from file: +34.0 MiB, 5.64x the document (process peak 37.6 MiB)",
            "Ratio                                                measured     goal  met",
            "edit at 100 rules / parse of the request                1.50x    <= 3x  yes",
            "edit at 100,000 rules / edit at 100 rules             225.00x  <= 1.5x  no",
            "load of 100,000 rules / parse of their document        12.00x    <= 2x  no",
            "options at 100,000 rules / options at 100 rules      1200.00x  <= 1.5x  no",
            "edit through a shared engine / edit at 100 rules        1.01x <= 1.05x  yes",
            "peak memory of a load from text / document size         9.06x    <= 3x  no",
            "peak memory of a load from a file / document size       5.64x    <= 2x  no",
        ]))

    def test_tells_the_batch_before_the_ratios(self):
        times = {"BM_Edit/100": 20000.0}
        lines = ratios.format_report(times, {}, ratios.batch_rows(times, BATCH),
                                     batch=BATCH).splitlines()
        self.assertEqual(lines, [
            "CPU time, medians:",
            "  BM_Edit/100                   20 us",
            "tov batch over 25,000 and 50,000 edit lines at 100 rules, medians of 5 runs "
            "(2 cores, load average 1.50):",
            "  CPU time of a line, --jobs 1              30 us",
            "  wall time of 50,000 lines, --jobs 1      400 ms",
            "  wall time of 50,000 lines, --jobs 2      240 ms",
            "Ratio                                                measured     goal  met",
            "line of tov batch --jobs 1 / edit at 100 rules          1.50x <= 1.25x  no",
            "wall time of tov batch --jobs 2 / --jobs 1              0.60x <= 0.55x  no",
        ])

    def test_a_single_run_is_told_so(self):
        self.assertEqual(ratios.format_batch(dict(BATCH, lines=1000, runs=1))[0],
                         "tov batch over 1,000 and 2,000 edit lines at 100 rules, one run "
                         "(2 cores, load average 1.50):")

    def test_times_below_a_microsecond_are_in_nanoseconds(self):
        self.assertEqual(ratios.format_time(695.4), "695 ns")
        self.assertEqual(ratios.format_time(2.5e9), "2.5 s")


class BatchLinesTest(unittest.TestCase):
    def test_takes_a_count_within_the_limits(self):
        self.assertEqual(ratios.batch_lines("25000"), 25000)

    def test_a_count_beyond_the_limits_is_refused(self):
        for text in ("99", "200001", "-1"):
            with self.assertRaises(ratios.argparse.ArgumentTypeError):
                ratios.batch_lines(text)


class LineCpuTimeTest(unittest.TestCase):
    def test_divides_the_difference_of_the_medians_by_the_lines_added(self):
        # Medians 0.12 s and 0.22 s: 0.1 s for the 20,000 lines added.
        self.assertAlmostEqual(batch_times.line_cpu_time([0.12, 0.5, 0.11], [0.22, 0.2, 0.3],
                                                         20000), 5e-6)

    def test_summary_is_in_nanoseconds(self):
        self.assertEqual(batch_times.summary(1000, [0.01], [0.02], [0.03, 0.05, 0.04],
                                             [0.02, 0.03, 0.01], 2, 0.5),
                         {"lines": 1000, "runs": 3, "cores": 2, "load": 0.5,
                          "line_cpu": 10000.0, "wall_one": 4e7, "wall_two": 2e7})

    def test_a_request_line_carries_the_edit(self):
        self.assertEqual(batch_times.request_line({"objectType": "Type0"}),
                         '{"kind": "edit", "request": {"objectType": "Type0"}}\n')


class CheckAnswersTest(unittest.TestCase):
    def test_every_line_must_be_the_answer(self):
        batch_times.check_answers("a\na\na\n", "a", 3, "the run")
        with self.assertRaisesRegex(ValueError, r"^the run answered line 2 with b, not a$"):
            batch_times.check_answers("a\nb\na\n", "a", 3, "the run")

    def test_one_line_per_request(self):
        with self.assertRaisesRegex(ValueError, r"^the run printed 2 lines for 3 requests$"):
            batch_times.check_answers("a\na\n", "a", 3, "the run")


# Stand-ins for tov_bench_workload_files and the tov program: eval prints
# EVAL_ANSWER, batch prints BATCH_ANSWER once per line of its requests, the
# line numbered WRONG_LINE (if set) as something else, and ends with
# BATCH_STATUS (if set).
WORKLOAD_FILES = """#!/bin/sh
echo '{"objectType":"Type0"}' > "$1/edit.json"
: > "$1/rules.json"
: > "$1/datamodel.json"
"""
TOV = """#!/bin/sh
if [ "$1" = eval ]; then echo "$EVAL_ANSWER"; exit 0; fi
for last; do :; done
number=0
while read -r line; do
  number=$((number + 1))
  if [ "$number" = "$WRONG_LINE" ]; then echo '{"Result":"Failure"}'
  else echo "$BATCH_ANSWER"; fi
done < "$last"
[ -z "$BATCH_STATUS" ] || { echo "tov batch: the stand-in fails" >&2; exit "$BATCH_STATUS"; }
"""


class MeasureTest(unittest.TestCase):
    def setUp(self):
        self.build = tempfile.TemporaryDirectory()
        self.addCleanup(self.build.cleanup)
        for path, text in (("bench/tov_bench_workload_files", WORKLOAD_FILES),
                           ("tools/tov", TOV)):
            path = os.path.join(self.build.name, path)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as program:
                program.write(text)
            os.chmod(path, os.stat(path).st_mode | stat.S_IXUSR)
        environment = mock.patch.dict(os.environ, EVAL_ANSWER=batch_times.APPROVED_EDIT,
                                      BATCH_ANSWER=batch_times.APPROVED_EDIT, WRONG_LINE="",
                                      BATCH_STATUS="")
        environment.start()
        self.addCleanup(environment.stop)

    def measure(self):
        with tempfile.TemporaryDirectory() as folder:
            return batch_times.measure(self.build.name, folder, 3, 2)

    def test_right_answers_are_timed(self):
        measured = self.measure()
        self.assertEqual((measured["lines"], measured["runs"]), (3, 2))
        self.assertGreater(measured["wall_one"], 0)
        self.assertGreater(measured["wall_two"], 0)

    def test_a_wrong_line_fails_the_measure(self):
        os.environ["WRONG_LINE"] = "5"
        with self.assertRaisesRegex(ValueError, r"^tov batch --jobs 1 over 6 lines answered "
                                    r"line 5 with \{\"Result\":\"Failure\"\}, not "):
            self.measure()

    def test_an_answer_other_than_tov_evals_fails_the_measure(self):
        os.environ["BATCH_ANSWER"] = '{"Result":"Success"}'
        with self.assertRaisesRegex(ValueError, r"^tov batch --jobs 1 over 3 lines answered "
                                    r"line 1 with "):
            self.measure()

    def test_a_failed_run_fails_the_measure(self):
        os.environ["BATCH_STATUS"] = "2"
        with self.assertRaisesRegex(ValueError, r"^tov batch --jobs 1 over 3 lines ended with "
                                    r"status 2: tov batch: the stand-in fails$"):
            self.measure()

    def test_an_edit_that_is_not_approved_fails_the_measure(self):
        os.environ["EVAL_ANSWER"] = '{"Result":"Failure"}'
        with self.assertRaisesRegex(ValueError, r"^tov eval answered the edit with "
                                    r"'\{\"Result\":\"Failure\"\}' \(status 0\), not "):
            self.measure()

    def test_a_missing_program_is_named(self):
        os.remove(os.path.join(self.build.name, "tools", "tov"))
        with self.assertRaisesRegex(ValueError, r"^no tov program at .*tools/tov \(build "):
            self.measure()


if __name__ == "__main__":
    unittest.main()
