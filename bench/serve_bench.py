#!/usr/bin/env python3
"""Measures tov serve over HTTP with wrk, against nginx answering a fixed body
of the same size on the same loopback interface with as many worker threads:
the floor that HTTP alone sets on this machine, measured in the same run.

The request is the benchmark's edit at 100 rules (tov_bench's workload,
written by tov_bench_workload_files), sent over keep-alive connections.
Three measures:

  1. The highest rate of tov serve and of nginx, with --connections each,
     the median of --rounds runs taken in turn, so that other work on the
     machine weighs on both alike; their ratio is the first goal (tov serve
     at least half of nginx).
  2. The latency near half of tov serve's highest rate. Debian's wrk has no
     rate limit (wrk2's -R), so the rate is lowered by fewer connections:
     every connection waits for its answer before it sends again, so a
     closed loop with few connections runs below the highest rate. The run
     whose rate is nearest to half of the highest is reported; its p99 is
     the second goal (under 1 ms).
  3. Every answer is checked: one request before the runs must get the
     answer that tov eval prints, and wrk must count no status other than
     2xx; otherwise the script fails.

Usage: serve_bench.py [--build-dir DIR] [--duration SECONDS] [--threads N]
                      [--connections N] [--rounds N] [--quick]
"""

import argparse
import http.client
import os
import re
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

RATIO_GOAL = 0.5
P99_GOAL_SECONDS = 0.001
UNITS = {"us": 1e-6, "ms": 1e-3, "s": 1.0}
LISTENING = re.compile(r"^tov serve: listening on http://127\.0\.0\.1:(\d+)$")
WRK_RATE = re.compile(r"^Requests/sec:\s+([0-9.]+)", re.MULTILINE)
WRK_COUNT = re.compile(r"^\s+(\d+) requests in ", re.MULTILINE)
TICKS = os.sysconf("SC_CLK_TCK")
WRK_PERCENTILE = re.compile(r"^\s+(50|99)%\s+([0-9.]+)(us|ms|s)\s*$", re.MULTILINE)
WRK_ERRORS = re.compile(r"Non-2xx or 3xx responses: (\d+)")
WRK_SOCKET_ERRORS = re.compile(r"Socket errors: connect (\d+), read (\d+), write (\d+), "
                               r"timeout (\d+)")
PATH = "/v1/evaluate/edit"


def parse_wrk(output):
    """{"rate": requests/s, "p50": seconds, "p99": seconds} from wrk --latency."""
    rate = WRK_RATE.search(output)
    count = WRK_COUNT.search(output)
    percentiles = {int(p): float(v) * UNITS[u] for p, v, u in WRK_PERCENTILE.findall(output)}
    if rate is None or count is None or set(percentiles) != {50, 99}:
        raise ValueError("cannot read wrk's output:\n" + output)
    errors = WRK_ERRORS.search(output)
    if errors and int(errors.group(1)) > 0:
        raise ValueError("%s answers were no 2xx:\n%s" % (errors.group(1), output))
    sockets = WRK_SOCKET_ERRORS.search(output)
    if sockets and any(int(count) > 0 for count in sockets.groups()[:3]):
        raise ValueError("wrk had socket errors:\n" + output)
    return {"rate": float(rate.group(1)), "requests": int(count.group(1)),
            "p50": percentiles[50], "p99": percentiles[99]}


def cpu_seconds(pid):
    """User and system CPU time of a process and of its children that live
    (nginx's workers), in seconds."""
    total = 0.0
    for process in [pid] + children(pid):
        try:
            with open("/proc/%d/stat" % process) as stat:
                fields = stat.read().rsplit(")", 1)[1].split()
        except OSError:
            continue
        total += (int(fields[11]) + int(fields[12])) / TICKS
    return total


def children(pid):
    found = []
    for task in os.listdir("/proc/%d/task" % pid):
        try:
            with open("/proc/%d/task/%s/children" % (pid, task)) as listed:
                found += [int(child) for child in listed.read().split()]
        except OSError:
            pass
    return found


def median_run(runs):
    """The run of the median rate."""
    return sorted(runs, key=lambda run: run["rate"])[len(runs) // 2]


def half_rate_run(runs, highest):
    """The run whose rate is nearest to half of `highest`."""
    return min(runs, key=lambda run: abs(run["rate"] - highest / 2))


def format_seconds(seconds):
    if seconds < 1e-5:
        return "%.1f us" % (seconds * 1e6)
    return "%.0f us" % (seconds * 1e6) if seconds < 1e-3 else "%.2f ms" % (seconds * 1e3)


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


def wait_for_port(port, process, seconds=30):
    deadline = time.monotonic() + seconds
    while True:
        try:
            socket.create_connection(("127.0.0.1", port), timeout=5).close()
            return
        except OSError:
            if process.poll() is not None or time.monotonic() > deadline:
                raise RuntimeError("nothing listens on port %d" % port)
            time.sleep(0.05)


def stop(process):
    if process.poll() is None:
        process.send_signal(signal.SIGTERM)
        try:
            process.wait(timeout=30)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def post(port, body):
    connection = http.client.HTTPConnection("127.0.0.1", port, timeout=30)
    try:
        connection.request("POST", PATH, body=body, headers={"Content-Type": "application/json"})
        answer = connection.getresponse()
        return answer.status, answer.read()
    finally:
        connection.close()


def start_tov(tov, folder, threads):
    process = subprocess.Popen(
        [tov, "serve", "--rules", os.path.join(folder, "rules.json"), "--dm",
         os.path.join(folder, "datamodel.json"), "--listen", "127.0.0.1:0", "--threads",
         str(threads)], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
        stderr=subprocess.PIPE)
    match = LISTENING.match(process.stderr.readline().decode().strip())
    if match is None:
        stop(process)
        raise RuntimeError("tov serve did not start")
    port = int(match.group(1))
    wait_for_port(port, process)
    return process, port


def start_nginx(folder, threads, body):
    port = free_port()
    for name in ("client_body", "proxy", "fastcgi", "uwsgi", "scgi"):
        os.mkdir(os.path.join(folder, name))
    literal = body.decode().replace("\\", "\\\\").replace("'", "\\'").replace("\n", "\\n")
    configuration = os.path.join(folder, "nginx.conf")
    with open(configuration, "w") as out:
        out.write(
            "daemon off;\n%sworker_processes %d;\npid %s/nginx.pid;\nerror_log %s/error.log;\n"
            "events { worker_connections 4096; }\n"
            "http {\n  access_log off;\n  keepalive_requests 1000000000;\n"
            "  client_body_temp_path %s/client_body;\n  proxy_temp_path %s/proxy;\n"
            "  fastcgi_temp_path %s/fastcgi;\n  uwsgi_temp_path %s/uwsgi;\n"
            "  scgi_temp_path %s/scgi;\n"
            "  server {\n    listen 127.0.0.1:%d;\n"
            "    location / { default_type application/json; return 200 '%s'; }\n  }\n}\n"
            % ("user root;\n" if os.geteuid() == 0 else "", threads, folder, folder, folder,
               folder, folder, folder, folder, port, literal))
    nginx = shutil.which("nginx") or "/usr/sbin/nginx"
    process = subprocess.Popen([nginx, "-p", folder, "-c", configuration, "-e",
                                os.path.join(folder, "error.log")], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    wait_for_port(port, process)
    return process, port


def run_wrk(port, script, threads, connections, duration, server=None):
    """wrk's figures; with the server's process, also the server's CPU time
    per request, which other work on a shared machine moves far less than
    the rate."""
    before = cpu_seconds(server.pid) if server is not None else None
    completed = subprocess.run(
        ["wrk", "-t%d" % min(threads, connections), "-c%d" % connections, "-d%ds" % duration,
         "--latency", "-s", script, "http://127.0.0.1:%d%s" % (port, PATH)],
        capture_output=True, text=True, timeout=duration + 60, check=True)
    run = parse_wrk(completed.stdout)
    if server is not None:
        run["cpu"] = (cpu_seconds(server.pid) - before) / max(run["requests"], 1)
    return run


def measure(arguments):
    build = arguments.build_dir
    tov = os.path.join(build, "tools", "tov")
    writer = os.path.join(build, "bench", "tov_bench_workload_files")
    with tempfile.TemporaryDirectory(prefix="tov_serve_bench_") as folder:
        subprocess.run([writer, folder, "100"], check=True)
        request = open(os.path.join(folder, "edit.json"), "rb").read()
        expected = subprocess.run([tov, "eval", "edit", "--rules",
                                   os.path.join(folder, "rules.json"), "--dm",
                                   os.path.join(folder, "datamodel.json"),
                                   os.path.join(folder, "edit.json")],
                                  capture_output=True, check=True).stdout
        script = os.path.join(folder, "post.lua")
        with open(script, "w") as out:
            out.write('wrk.method = "POST"\nwrk.headers["Content-Type"] = "application/json"\n'
                      "wrk.body = [==[%s]==]\n" % request.decode())

        nginx_folder = os.path.join(folder, "nginx")
        os.mkdir(nginx_folder)
        server, port = start_tov(tov, folder, arguments.threads)
        nginx = None
        try:
            nginx, nginx_port = start_nginx(nginx_folder, arguments.threads, expected)
            if post(port, request) != (200, expected):
                raise RuntimeError("tov serve did not answer as tov eval does")
            if post(nginx_port, request) != (200, expected):
                raise RuntimeError("nginx did not answer with the fixed body")
            for warm in (port, nginx_port):
                run_wrk(warm, script, arguments.threads, arguments.connections, 1)
            # Rounds in turn, so that other work on the machine weighs on both alike.
            rounds = {"tov": [], "nginx": []}
            for _ in range(arguments.rounds):
                for name, target, process in (("tov", port, server),
                                              ("nginx", nginx_port, nginx)):
                    rounds[name].append(run_wrk(target, script, arguments.threads,
                                                arguments.connections, arguments.duration,
                                                process))
            results = {name: median_run(runs) for name, runs in rounds.items()}
            for name, runs in rounds.items():
                results[name]["cpu"] = sorted(run["cpu"] for run in runs)[len(runs) // 2]
            lower = []
            for connections in (1, 2, 4, 8, 16):
                if connections >= arguments.connections:
                    break
                run = run_wrk(port, script, arguments.threads, connections, arguments.duration)
                run["connections"] = connections
                lower.append(run)
                if run["rate"] > results["tov"]["rate"] / 2 or arguments.quick:
                    break
            results["half"] = half_rate_run(lower or [dict(results["tov"],
                                                           connections=arguments.connections)],
                                            results["tov"]["rate"])
            if post(port, request) != (200, expected):
                raise RuntimeError("tov serve's answer changed under load")
        finally:
            stop(server)
            if nginx is not None:
                stop(nginx)
    return results


def format_report(results, arguments):
    tov, nginx, half = results["tov"], results["nginx"], results["half"]
    ratio = tov["rate"] / nginx["rate"]
    lines = [
        "Edit at 100 rules over HTTP/1.1 keep-alive on loopback, %d threads, wrk for %d s, "
        "medians of %d rounds in turn:" % (arguments.threads, arguments.duration,
                                          arguments.rounds),
        "  %-34s %12s %10s %10s" % ("", "requests/s", "p50", "p99"),
        "  %-34s %12.0f %10s %10s" % ("tov serve, %d connections" % arguments.connections,
                                       tov["rate"], format_seconds(tov["p50"]),
                                       format_seconds(tov["p99"])),
        "  %-34s %12.0f %10s %10s" % ("nginx, fixed body, %d connections" % arguments.connections,
                                       nginx["rate"], format_seconds(nginx["p50"]),
                                       format_seconds(nginx["p99"])),
        "  %-34s %12.0f %10s %10s" % ("tov serve, %d connection%s" % (
            half["connections"], "" if half["connections"] == 1 else "s"), half["rate"],
            format_seconds(half["p50"]), format_seconds(half["p99"])),
        "Server CPU time per request (user and system, medians): tov serve %s, nginx %s, "
        "%.2fx" % (format_seconds(tov["cpu"]), format_seconds(nginx["cpu"]),
                   tov["cpu"] / nginx["cpu"] if nginx["cpu"] > 0 else float("inf")),
        "%-50s %9s %10s  %s" % ("Goal", "measured", "goal", "met"),
        "%-50s %8.2fx %10s  %s" % ("tov serve's rate / nginx's rate", ratio,
                                   ">= %g" % RATIO_GOAL, "yes" if ratio >= RATIO_GOAL else "no"),
        "%-50s %9s %10s  %s" % ("p99 near half the highest rate (%.0f%% of it)"
                                % (100 * half["rate"] / tov["rate"]),
                                format_seconds(half["p99"]), "< 1 ms",
                                "yes" if half["p99"] < P99_GOAL_SECONDS else "no"),
    ]
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--build-dir", default="build/default")
    parser.add_argument("--duration", type=int, default=10, help="seconds of each wrk run")
    parser.add_argument("--threads", type=int, default=os.cpu_count() or 1,
                        help="server threads, nginx workers and wrk threads")
    parser.add_argument("--connections", type=int, default=64)
    parser.add_argument("--rounds", type=int, default=3,
                        help="runs of each server in turn; the median counts")
    parser.add_argument("--quick", action="store_true",
                        help="one-second runs and one lower run: that everything works")
    arguments = parser.parse_args()
    if arguments.quick:
        arguments.duration = 1
        arguments.rounds = 1
    for tool in ("wrk", "nginx"):
        if shutil.which(tool) is None and not os.path.exists("/usr/sbin/" + tool):
            print("serve_bench.py: %s is not installed (Debian package %s)" % (tool, tool),
                  file=sys.stderr)
            return 2
    try:
        results = measure(arguments)
    except (RuntimeError, ValueError, subprocess.CalledProcessError, OSError) as error:
        print("serve_bench.py: %s" % error, file=sys.stderr)
        return 1
    print(format_report(results, arguments))
    return 0


if __name__ == "__main__":
    sys.exit(main())
