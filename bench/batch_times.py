"""Times the tov program's `tov batch` over the benchmark's edit at 100 rules,
for the two ratios of ratios.py that tov_bench cannot measure in-process.

The workload is tov_bench's, written by tov_bench_workload_files: two request
files of N and 2N identical lines {"kind": "edit", "request": <the edit>}.

  1. The CPU time of a line with --jobs 1: the user and system time of the
     child (getrusage of the children around each run), the median of each
     file's runs; a line's time is the difference of the two medians over
     the N lines added, so that starting the program and loading the
     documents cancel out.
  2. The wall time of --jobs 2 and of --jobs 1, whole runs over the 2N file,
     medians of the runs. The goal is about the time a user waits for, and
     what cannot run in parallel (the start and the loads, a few hundredths
     of a run here) belongs to it, so it is not subtracted: leaving it in
     can only raise the ratio. The runs of every kind are taken in turn,
     round by round, so that other work on a shared machine weighs on each
     alike.

Before anything is timed, one run of each kind writes its answers to a file:
there must be one line per request, each the answer that `tov eval` gives
the same edit, which must be the approved one; otherwise the measure fails.
"""

import json
import os
import resource
import statistics
import subprocess
import time

# tov_bench's expected answer to the edit, which every rule approves.
APPROVED_EDIT = '{"Result":"Success","ResultComment":"Edit attempt approved"}'
RULE_COUNT = 100


def request_line(edit):
    """The batch line that carries an edit request (a JSON object)."""
    return json.dumps({"kind": "edit", "request": edit}) + "\n"


def check_answers(output, expected, count, what):
    """Fails unless `output` is `count` lines, each `expected`."""
    lines = output.splitlines()
    if len(lines) != count:
        raise ValueError("%s printed %d lines for %d requests" % (what, len(lines), count))
    for number, line in enumerate(lines, 1):
        if line != expected:
            raise ValueError("%s answered line %d with %s, not %s" %
                             (what, number, line, expected))


def line_cpu_time(short_runs, long_runs, lines_added):
    """The CPU time of one line: the median of the longer file's runs less
    that of the shorter's, over the lines that the longer one adds."""
    return (statistics.median(long_runs) - statistics.median(short_runs)) / lines_added


def summary(lines, cpu_short, cpu_long, wall_one, wall_two, cores, load):
    """The measure in nanoseconds from runs in seconds: "line_cpu" the CPU
    time of a line with --jobs 1, "wall_one" and "wall_two" the median wall
    times of the 2N file with --jobs 1 and 2; with the cores this process
    may run on and the load average before the runs, which tell whether two
    jobs could run at once."""
    return {"lines": lines, "runs": len(wall_one), "cores": cores, "load": load,
            "line_cpu": line_cpu_time(cpu_short, cpu_long, lines) * 1e9,
            "wall_one": statistics.median(wall_one) * 1e9,
            "wall_two": statistics.median(wall_two) * 1e9}


def batch_command(tov, folder, requests, jobs):
    return [tov, "batch", "--jobs", str(jobs), "--rules", os.path.join(folder, "rules.json"),
            "--dm", os.path.join(folder, "datamodel.json"), requests]


def describe(jobs, lines):
    return "tov batch --jobs %d over %s lines" % (jobs, "{:,}".format(lines))


def run_batch(tov, folder, requests, jobs, lines, out=None, environment=None):
    """Runs tov batch once, in `environment` when given; (CPU seconds, wall
    seconds) of the child. Its answers go to the file `out`, or to /dev/null."""
    with open(out or os.devnull, "w", encoding="utf-8") as answers:
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        start = time.perf_counter()
        finished = subprocess.run(batch_command(tov, folder, requests, jobs),
                                  stdin=subprocess.DEVNULL, stdout=answers,
                                  stderr=subprocess.PIPE, universal_newlines=True,
                                  env=environment)
        wall = time.perf_counter() - start
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
    if finished.returncode != 0:
        raise ValueError("%s ended with status %d: %s" % (describe(jobs, lines),
                                                          finished.returncode,
                                                          finished.stderr.strip()))
    cpu = (after.ru_utime - before.ru_utime) + (after.ru_stime - before.ru_stime)
    return cpu, wall


def approved_answer(tov, folder):
    """tov eval's answer to the workload's edit, which must be the approved one."""
    finished = subprocess.run(
        [tov, "eval", "edit", "--rules", os.path.join(folder, "rules.json"), "--dm",
         os.path.join(folder, "datamodel.json"), os.path.join(folder, "edit.json")],
        stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.PIPE,
        universal_newlines=True)
    answer = finished.stdout.strip()
    if finished.returncode != 0 or answer != APPROVED_EDIT:
        raise ValueError("tov eval answered the edit with %r (status %d), not %s" %
                         (answer or finished.stderr.strip(), finished.returncode,
                          APPROVED_EDIT))
    return answer


def measure(build, folder, lines, repetitions, environment=None):
    """Writes the workload into `folder`, checks the answers and times the
    runs, each in `environment` when given (that of the benchmark it is held
    against); the summary of the measure."""
    load = os.getloadavg()[0]
    tov = os.path.join(build, "tools", "tov")
    if not os.access(tov, os.X_OK):
        raise ValueError("no tov program at %s (build tov_program, or pass --no-batch)" % tov)
    subprocess.run([os.path.join(build, "bench", "tov_bench_workload_files"), folder,
                    str(RULE_COUNT)], check=True)
    expected = approved_answer(tov, folder)
    with open(os.path.join(folder, "edit.json"), encoding="utf-8") as edit:
        line = request_line(json.load(edit))
    files = {}
    for count in (lines, 2 * lines):
        files[count] = os.path.join(folder, "requests-%d.jsonl" % count)
        with open(files[count], "w", encoding="utf-8") as requests:
            requests.write(line * count)
    # (jobs, lines): every kind of run that is timed.
    kinds = [(1, lines), (1, 2 * lines), (2, 2 * lines)]
    out = os.path.join(folder, "answers.txt")
    for jobs, count in kinds:
        run_batch(tov, folder, files[count], jobs, count, out)
        with open(out, encoding="utf-8") as answers:
            check_answers(answers.read(), expected, count, describe(jobs, count))
    runs = {kind: [] for kind in kinds}
    for _ in range(repetitions):
        for jobs, count in kinds:
            runs[(jobs, count)].append(run_batch(tov, folder, files[count], jobs, count,
                                                 environment=environment))
    return summary(lines, [cpu for cpu, _ in runs[(1, lines)]],
                   [cpu for cpu, _ in runs[(1, 2 * lines)]],
                   [wall for _, wall in runs[(1, 2 * lines)]],
                   [wall for _, wall in runs[(2, 2 * lines)]],
                   len(os.sched_getaffinity(0)), load)
