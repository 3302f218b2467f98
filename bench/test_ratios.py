"""Tests of ratios.py on fixed reports, run as python3 test_ratios.py."""

import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
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

    def test_times_below_a_microsecond_are_in_nanoseconds(self):
        self.assertEqual(ratios.format_time(695.4), "695 ns")
        self.assertEqual(ratios.format_time(2.5e9), "2.5 s")


if __name__ == "__main__":
    unittest.main()
