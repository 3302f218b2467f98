"""Tests of serve_bench.py on fixed outputs of wrk, run as python3 test_serve_bench.py."""

import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import serve_bench  # noqa: E402

WRK_OUTPUT = """Running 10s test @ http://127.0.0.1:8480/v1/evaluate/edit
  2 threads and 64 connections
  Thread Stats   Avg      Stdev     Max   +/- Stdev
    Latency     1.40ms    1.10ms  20.00ms   90.00%
    Req/Sec    23.00k     1.00k   25.00k    70.00%
  Latency Distribution
     50%    1.18ms
     75%    1.50ms
     90%    2.00ms
     99%    5.89ms
  451150 requests in 10.00s, 60.00MB read
Requests/sec:  45115.00
Transfer/sec:      6.00MB
"""


class ParseWrk(unittest.TestCase):
    def test_rate_and_percentiles(self):
        run = serve_bench.parse_wrk(WRK_OUTPUT)
        self.assertEqual(run["rate"], 45115.0)
        self.assertEqual(run["requests"], 451150)
        self.assertAlmostEqual(run["p50"], 0.00118)
        self.assertAlmostEqual(run["p99"], 0.00589)

    def test_microseconds(self):
        run = serve_bench.parse_wrk(WRK_OUTPUT.replace("5.89ms", "72.00us"))
        self.assertAlmostEqual(run["p99"], 72e-6)

    def test_answers_that_are_no_2xx_fail_the_measure(self):
        output = WRK_OUTPUT.replace("Requests/sec", "  Non-2xx or 3xx responses: 3\nRequests/sec")
        with self.assertRaisesRegex(ValueError, "3 answers were no 2xx"):
            serve_bench.parse_wrk(output)

    def test_socket_errors_fail_the_measure(self):
        output = WRK_OUTPUT.replace(
            "Requests/sec", "  Socket errors: connect 0, read 2, write 0, timeout 0\nRequests/sec")
        with self.assertRaisesRegex(ValueError, "socket errors"):
            serve_bench.parse_wrk(output)
        # Timeouts alone are latency, which the percentiles tell.
        serve_bench.parse_wrk(WRK_OUTPUT.replace(
            "Requests/sec", "  Socket errors: connect 0, read 0, write 0, timeout 5\nRequests/sec"))

    def test_output_that_is_no_wrk_report(self):
        with self.assertRaises(ValueError):
            serve_bench.parse_wrk("wrk: command not found")


class CpuTime(unittest.TestCase):
    def test_this_process_has_used_some(self):
        self.assertGreaterEqual(serve_bench.cpu_seconds(os.getpid()), 0.0)
        self.assertEqual(serve_bench.children(os.getpid()), [])


class Median(unittest.TestCase):
    def test_the_run_of_the_median_rate(self):
        runs = [{"rate": 3.0}, {"rate": 1.0}, {"rate": 2.0}]
        self.assertEqual(serve_bench.median_run(runs), {"rate": 2.0})
        self.assertEqual(serve_bench.median_run(runs[:1]), {"rate": 3.0})


class HalfRate(unittest.TestCase):
    def test_the_run_nearest_to_half_the_highest_rate(self):
        runs = [{"rate": 20000.0}, {"rate": 31000.0}, {"rate": 40000.0}]
        self.assertEqual(serve_bench.half_rate_run(runs, 45000.0), {"rate": 20000.0})
        self.assertEqual(serve_bench.half_rate_run(runs, 60000.0), {"rate": 31000.0})


class Seconds(unittest.TestCase):
    def test_microseconds_below_a_millisecond(self):
        self.assertEqual(serve_bench.format_seconds(72e-6), "72 us")
        self.assertEqual(serve_bench.format_seconds(8.25e-6), "8.2 us")
        self.assertEqual(serve_bench.format_seconds(0.00589), "5.89 ms")


if __name__ == "__main__":
    unittest.main()
