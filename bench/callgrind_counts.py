#!/usr/bin/env python3
"""Counts with callgrind the instructions that one call costs: the edit at 100
rules, the load of 100,000 rules, RapidJSON's parse of each of their texts,
and a line of `tov batch --jobs 1`. Unlike CPU times, these counts do not move
with the load of a shared machine, so that they compare across runs.

tov_bench_calls repeats one operation COUNT times inside one function, whose
instructions alone callgrind counts (--toggle-collect). A batch line is the
difference between two runs of the program over the same documents, one with
twice the lines of the other, divided by the lines added, so that starting
the program and loading the documents cancel out.

Usage: callgrind_counts.py [--build-dir DIR]
"""

import argparse
import json
import os
import re
import subprocess
import sys
import tempfile

# (what, operation of tov_bench_calls, count)
CALLS = [
    ("parse of the edit request", "parse-request", 2000),
    ("edit at 100 rules", "edit", 2000),
    ("parse of the 100,000-rule document", "parse-rules", 2),
    ("load of 100,000 rules", "load", 2),
]
BATCH_LINES = 2000
TOTALS = re.compile(r"^totals:\s+(\d+)", re.MULTILINE)


def instructions(command, folder, toggle=None):
    out = os.path.join(folder, "callgrind.out")
    arguments = ["valgrind", "--tool=callgrind", "--callgrind-out-file=" + out]
    if toggle:
        arguments.append("--toggle-collect=" + toggle)
    subprocess.run(arguments + command, check=True, stdout=subprocess.DEVNULL,
                   stderr=subprocess.DEVNULL)
    with open(out, encoding="utf-8") as report:
        match = TOTALS.search(report.read())
    if not match:
        raise ValueError("no totals in callgrind's output of " + " ".join(command))
    return int(match.group(1))


def batch_line_instructions(build, folder):
    subprocess.run([os.path.join(build, "bench", "tov_bench_workload_files"), folder, "100"],
                   check=True)
    with open(os.path.join(folder, "edit.json"), encoding="utf-8") as edit:
        line = json.dumps({"kind": "edit", "request": json.load(edit)}) + "\n"
    totals = []
    for lines in (BATCH_LINES, 2 * BATCH_LINES):
        requests = os.path.join(folder, "requests.jsonl")
        with open(requests, "w", encoding="utf-8") as out:
            out.write(line * lines)
        totals.append(instructions(
            [os.path.join(build, "tools", "tov"), "batch", "--jobs", "1", "--rules",
             os.path.join(folder, "rules.json"), "--dm", os.path.join(folder, "datamodel.json"),
             requests], folder))
    return (totals[1] - totals[0]) / BATCH_LINES


def main():
    root = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--build-dir", default=os.path.join(root, "build", "default"),
                        help="the build folder that holds bench/ (default: build/default)")
    parser.add_argument("--no-batch", action="store_true",
                        help="leave out the batch line (for a build without the program)")
    arguments = parser.parse_args()
    build = arguments.build_dir
    counts = {}
    try:
        with tempfile.TemporaryDirectory() as folder:
            for what, operation, count in CALLS:
                total = instructions([os.path.join(build, "bench", "tov_bench_calls"), operation,
                                      str(count)], folder, "*tovbench_measured*")
                counts[what] = total / count
            if not arguments.no_batch:
                counts["line of tov batch --jobs 1 (edit at 100 rules)"] = \
                    batch_line_instructions(build, folder)
    except (OSError, subprocess.CalledProcessError, ValueError) as error:
        print("callgrind_counts.py: %s" % error, file=sys.stderr)
        return 1
    print("Instructions per call (callgrind):")
    for what, count in counts.items():
        print("  %-50s %14s" % (what, "{:,.0f}".format(count)))
    print("Ratios of instructions:")
    print("  %-50s %13.2fx" % ("edit at 100 rules / parse of the request",
                               counts["edit at 100 rules"] / counts["parse of the edit request"]))
    print("  %-50s %13.2fx" % ("load of 100,000 rules / parse of their document",
                               counts["load of 100,000 rules"] /
                               counts["parse of the 100,000-rule document"]))
    batch = "line of tov batch --jobs 1 (edit at 100 rules)"
    if batch in counts:
        print("  %-50s %13.2fx" % ("batch line / edit at 100 rules",
                                   counts[batch] / counts["edit at 100 rules"]))
    return 0


if __name__ == "__main__":
    sys.exit(main())
