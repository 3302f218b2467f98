#!/usr/bin/env python3
"""Runs tov_bench and tov_bench_memory and prints the ratios that tell how the
library's costs scale, each beside its goal.

Every ratio divides two CPU-time medians of one run of tov_bench, so the
speed of the machine cancels out, with malloc's thresholds fixed so that no
benchmark's cost depends on those before it; the memory ratio is the growth of the peak
resident set while 100,000 rules load, from text and from a file, over the
document's size. Without --quick the memory is measured again with 1,000,000
rules, and told without a goal.

The tov program's `tov batch` over the edit at 100 rules gives two more
(batch_times.py tells how): the CPU time of a line with --jobs 1 over the
median CPU time of BM_Edit/100 from the same run of tov_bench, and the wall
time of a batch with --jobs 2 over that with --jobs 1.

Usage: ratios.py [--build-dir DIR] [--repetitions N] [--min-time SECONDS]
                 [--batch-lines N] [--no-batch | --only-batch] [--quick]
"""

import argparse
import json
import os
import re
import statistics
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
import batch_times  # noqa: E402

# (what is divided, numerator, denominator, goal)
SPEED_RATIOS = [
    ("edit at 100 rules / parse of the request", "BM_Edit/100", "BM_ParseRequest", 3.0),
    ("edit at 100,000 rules / edit at 100 rules", "BM_Edit/100000", "BM_Edit/100", 1.5),
    ("load of 100,000 rules / parse of their document", "BM_LoadRules100k",
     "BM_ParseRules100k", 2.0),
    ("options at 100,000 rules / options at 100 rules", "BM_Options/100000", "BM_Options/100",
     1.5),
    ("edit through a shared engine / edit at 100 rules", "BM_EngineEdit", "BM_Edit/100", 1.05),
]
MEMORY_RATIOS = [
    ("peak memory of a load from text / document size", "text", 3.0),
    ("peak memory of a load from a file / document size", "file", 2.0),
]
# (what, goal): the CPU time of a batch line over BM_Edit/100, and the wall
# time of a batch with two jobs over that with one.
BATCH_RATIOS = [
    ("line of tov batch --jobs 1 / edit at 100 rules", 1.25),
    ("wall time of tov batch --jobs 2 / --jobs 1", 0.55),
]
# The memory measure again at ten times the rules, told beside the first.
LARGE_RULE_COUNT = 1000000
# Edit lines of the shorter batch file (the longer has twice as many): a run
# of the longer takes a few tenths of a second with one job.
BATCH_LINES = 25000
QUICK_BATCH_LINES = 1000
BATCH_LINE_LIMITS = (100, 200000)

NANOSECONDS = {"ns": 1.0, "us": 1e3, "ms": 1e6, "s": 1e9}
MEMORY_LINE = re.compile(r"^from (text|file): the load raised the peak by ([0-9.]+) MiB, "
                         r"([0-9.]+) times the document \(process peak ([0-9.]+) MiB\)$")


def median_cpu_times(report):
    """CPU time in nanoseconds by benchmark name, in the order of the report:
    the median aggregate where there is one, else the median of the name's runs."""
    medians = {}
    runs = {}
    for entry in report.get("benchmarks", []):
        if entry.get("error_occurred"):
            raise ValueError("%s: %s" % (entry["name"], entry.get("error_message", "error")))
        nanoseconds = entry["cpu_time"] * NANOSECONDS[entry["time_unit"]]
        if entry.get("run_type") == "aggregate":
            if entry.get("aggregate_name") == "median":
                medians[entry["run_name"]] = nanoseconds
        else:
            runs.setdefault(entry["run_name"], []).append(nanoseconds)
    for name, times in runs.items():
        medians.setdefault(name, statistics.median(times))
    return medians


def memory_ratios(output):
    """By form ("text", "file"): (growth in MiB, ratio to the document,
    process peak in MiB), from tov_bench_memory's output."""
    ratios = {}
    for line in output.splitlines():
        match = MEMORY_LINE.match(line)
        if match:
            ratios[match.group(1)] = tuple(float(match.group(i)) for i in (2, 3, 4))
    return ratios


def batch_rows(times, batch):
    """(what, measured ratio, goal) for the goals of tov batch."""
    if "BM_Edit/100" not in times:
        raise ValueError("no time for BM_Edit/100")
    (line_what, line_goal), (jobs_what, jobs_goal) = BATCH_RATIOS
    return [(line_what, batch["line_cpu"] / times["BM_Edit/100"], line_goal),
            (jobs_what, batch["wall_two"] / batch["wall_one"], jobs_goal)]


def ratio_rows(times, memory, batch=None):
    """(what, measured ratio, goal) for every goal; those of tov batch only
    with its measure."""
    rows = []
    for what, numerator, denominator, goal in SPEED_RATIOS:
        missing = [name for name in (numerator, denominator) if name not in times]
        if missing:
            raise ValueError("no time for " + ", ".join(missing))
        rows.append((what, times[numerator] / times[denominator], goal))
    for what, form, goal in MEMORY_RATIOS:
        if form not in memory:
            raise ValueError("no memory measure of the load from " + form)
        rows.append((what, memory[form][1], goal))
    if batch is not None:
        rows += batch_rows(times, batch)
    return rows


def format_time(nanoseconds):
    for unit in ("s", "ms", "us"):
        if nanoseconds >= NANOSECONDS[unit]:
            return "%.3g %s" % (nanoseconds / NANOSECONDS[unit], unit)
    return "%.3g ns" % nanoseconds


def format_memory(rules, memory):
    lines = ["Peak memory while %s rules load:" % "{:,}".format(rules)]
    for form in ("text", "file"):
        if form in memory:
            growth, ratio, peak = memory[form]
            lines.append("  from %s: +%.1f MiB, %.2fx the document (process peak %.1f MiB)" %
                         (form, growth, ratio, peak))
    return lines


def format_batch(batch):
    longer = "{:,}".format(2 * batch["lines"])
    runs = "medians of %d runs" % batch["runs"] if batch["runs"] > 1 else "one run"
    lines = ["tov batch over %s and %s edit lines at 100 rules, %s (%d cores, load "
             "average %.2f):" % ("{:,}".format(batch["lines"]), longer, runs, batch["cores"],
                                 batch["load"])]
    lines += ["  %-36s %10s" % (what, format_time(batch[key])) for what, key in (
        ("CPU time of a line, --jobs 1", "line_cpu"),
        ("wall time of %s lines, --jobs 1" % longer, "wall_one"),
        ("wall time of %s lines, --jobs 2" % longer, "wall_two"))]
    return lines


def format_report(times, memory, rows, large_memory=None, batch=None):
    lines = ["CPU time, medians:"]
    lines += ["  %-24s %10s" % (name, format_time(time)) for name, time in times.items()]
    if memory:
        lines += format_memory(100000, memory)
    if large_memory:
        lines += format_memory(LARGE_RULE_COUNT, large_memory)
    if batch:
        lines += format_batch(batch)
    lines.append("%-50s %10s %8s  %s" % ("Ratio", "measured", "goal", "met"))
    for what, measured, goal in rows:
        lines.append("%-50s %9.2fx %7sx  %s" % (what, measured, "<= %g" % goal,
                                                "yes" if measured <= goal else "no"))
    return "\n".join(lines)


# glibc's malloc moves its mmap threshold up after a large block is freed, and
# gives memory back to the system above a trim threshold: so whether a large
# allocation faults in fresh pages depends on what ran before it in the
# process, and the same benchmark costs a third more or less by its place in
# the run (RapidJSON's parse of the large document faulted its pages in every
# time when it came first, and never after an edit at 100,000 rules). Fixed
# thresholds make every benchmark cost the same wherever it runs: the
# measures are the work itself, without the kernel's page faults.
PINNED_MALLOC = "glibc.malloc.mmap_threshold=33554432:glibc.malloc.trim_threshold=1073741824"


def pinned_malloc_environment():
    """The environment with malloc's thresholds fixed, for a timed program."""
    return dict(os.environ, GLIBC_TUNABLES=PINNED_MALLOC)


def run_benchmark(program, repetitions, min_time, only=None):
    with tempfile.TemporaryDirectory() as folder:
        out = os.path.join(folder, "tov_bench.json")
        command = [program, "--benchmark_out=" + out, "--benchmark_out_format=json",
                   "--benchmark_min_time=%g" % min_time]
        if only:
            command.append("--benchmark_filter=" + only)
        if repetitions > 1:
            command += ["--benchmark_repetitions=%d" % repetitions,
                        "--benchmark_report_aggregates_only=true"]
        subprocess.run(command, check=True, stdout=sys.stderr, env=pinned_malloc_environment())
        with open(out, encoding="utf-8") as report:
            return json.load(report)


def batch_lines(text):
    lines = int(text)
    if not BATCH_LINE_LIMITS[0] <= lines <= BATCH_LINE_LIMITS[1]:
        raise argparse.ArgumentTypeError("%d is not between %d and %d" %
                                          ((lines,) + BATCH_LINE_LIMITS))
    return lines


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build-dir", default=os.path.join(root, "build", "default"),
                        help="the build folder that holds bench/ (default: build/default)")
    parser.add_argument("--repetitions", type=int, default=5,
                        help="repetitions of every benchmark, whose median counts (default 5)")
    parser.add_argument("--min-time", type=float, default=0.5,
                        help="seconds that each repetition runs at least (default 0.5)")
    parser.add_argument("--batch-lines", type=batch_lines, default=BATCH_LINES,
                        help="edit lines of the shorter batch file, between %d and %d "
                        "(default %d)" % (BATCH_LINE_LIMITS + (BATCH_LINES,)))
    which = parser.add_mutually_exclusive_group()
    which.add_argument("--no-batch", action="store_true",
                       help="leave out tov batch (for a build without the program)")
    which.add_argument("--only-batch", action="store_true",
                       help="only tov batch, with BM_Edit/100 for its first ratio")
    parser.add_argument("--quick", action="store_true",
                        help="one iteration of each, to check that everything runs")
    arguments = parser.parse_args()
    if arguments.quick:
        arguments.repetitions, arguments.min_time = 1, 0.0
        arguments.batch_lines = QUICK_BATCH_LINES

    bench = os.path.join(arguments.build_dir, "bench")
    try:
        times = median_cpu_times(run_benchmark(
            os.path.join(bench, "tov_bench"), arguments.repetitions, arguments.min_time,
            "^BM_Edit/100$" if arguments.only_batch else None))
        memory, large_memory, batch = {}, None, None
        if not arguments.only_batch:
            measured = subprocess.run([os.path.join(bench, "tov_bench_memory")], check=True,
                                      stdout=subprocess.PIPE, universal_newlines=True).stdout
            memory = memory_ratios(measured)
            if not arguments.quick:
                large_memory = memory_ratios(subprocess.run(
                    [os.path.join(bench, "tov_bench_memory"), str(LARGE_RULE_COUNT)],
                    check=True, stdout=subprocess.PIPE, universal_newlines=True).stdout)
        if not arguments.no_batch:
            with tempfile.TemporaryDirectory() as folder:
                # Held against BM_Edit/100, so timed with malloc set alike.
                batch = batch_times.measure(arguments.build_dir, folder, arguments.batch_lines,
                                            arguments.repetitions, pinned_malloc_environment())
        rows = (batch_rows(times, batch) if arguments.only_batch
                else ratio_rows(times, memory, batch))
        print(format_report(times, memory, rows, large_memory, batch))
    except (OSError, subprocess.CalledProcessError, ValueError) as error:
        print("ratios.py: %s" % error, file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
