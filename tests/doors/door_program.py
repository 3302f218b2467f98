#!/usr/bin/env python3
"""The doors test's runners for the tov program, writing "ID<TAB>ANSWER"
lines for a corpus (see corpus.py):

    door_program.py eval TOV CORPUS ANSWERS    tov eval once per case of the sample
    door_program.py batch TOV CORPUS ANSWERS   tov batch once per group that loads
    door_program.py serve TOV CORPUS ANSWERS   tov serve once per group that loads

tov eval costs a process start per case, so it runs the seeded sample that the
corpus marks, two processes at a time; tov batch takes each group's requests
as JSON Lines, each line carrying the request's text as it stands; tov serve
takes each request's text as it stands as the body of an HTTP request, on one
kept-alive loopback connection per group.
"""

import concurrent.futures
import http.client
import os
import re
import pathlib
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from corpus import read_manifest  # noqa: E402


def documents(corpus, group):
    return ["--rules", str(corpus / group.rules), "--dm", str(corpus / group.datamodel)]


def printed_answer(done, what):
    """The one line a run printed, without its line end."""
    if done.returncode not in (0, 1, 3) or not done.stdout.endswith(b"\n"):
        raise RuntimeError("%s ended with %d:\n%s" % (what, done.returncode,
                                                       done.stderr.decode("utf-8", "replace")))
    return done.stdout[:-1]


def run_eval(tov, corpus, out):
    jobs = []
    for group in read_manifest(corpus):
        for case in group.cases:
            if "sample" in case.flags:
                jobs.append((case.name, [tov, "eval", case.kind, *documents(corpus, group),
                                         str(corpus / case.request)]))

    def answer(job):
        name, command = job
        done = subprocess.run(command, capture_output=True, timeout=120)
        return name, printed_answer(done, " ".join(command))

    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
        for name, text in pool.map(answer, jobs):
            out.write(name.encode("utf-8") + b"\t" + text + b"\n")


def run_batch(tov, corpus, out):
    with tempfile.TemporaryDirectory() as scratch:
        for group in read_manifest(corpus):
            if not group.loads:
                continue
            cases = [case for case in group.cases if "object" in case.flags]
            lines = pathlib.Path(scratch) / (group.name + ".jsonl")
            with open(lines, "wb") as batch:
                for case in cases:
                    # Pretty-printed requests go on one line: a line end in
                    # JSON text outside strings is white space.
                    text = (corpus / case.request).read_bytes().replace(b"\n", b" ")
                    batch.write(b'{"kind": "' + case.kind.encode("ascii") + b'", "request": ' +
                                text + b"}\n")
            command = [tov, "batch", *documents(corpus, group), "--jobs", "1", str(lines)]
            done = subprocess.run(command, capture_output=True, timeout=300)
            if done.returncode != 0:
                raise RuntimeError("%s ended with %d:\n%s" % (" ".join(command), done.returncode,
                                                               done.stderr.decode("utf-8", "replace")))
            answers = done.stdout.split(b"\n")
            if answers[-1] != b"" or len(answers) - 1 != len(cases):
                raise RuntimeError("tov batch gave %d lines for the %d requests of %s"
                                   % (len(answers) - 1, len(cases), group.name))
            for case, text in zip(cases, answers):
                out.write(case.name.encode("utf-8") + b"\t" + text + b"\n")


def serving(tov, corpus, group):
    """A tov serve of the group's documents on a free loopback port: (process, port)."""
    environment = dict(os.environ)
    environment.pop("LD_PRELOAD", None)  # a sanitized program links its own runtime
    process = subprocess.Popen([tov, "serve", *documents(corpus, group), "--listen",
                                "127.0.0.1:0", "--threads", "1"], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, env=environment)
    told = [process.stderr.readline().decode("utf-8", "replace")]
    listening = re.match(r"tov serve: listening on http://127\.0\.0\.1:(\d+)$", told[0].strip())
    # Notes about the documents may come before the line that it serves.
    while listening is not None and told[-1] and " serves, with " not in told[-1]:
        told.append(process.stderr.readline().decode("utf-8", "replace"))
    if listening is None or not told[-1]:
        stop(process)
        raise RuntimeError("tov serve did not start for %s: %s" % (group.name, "".join(told)))
    return process, int(listening.group(1))


def stop(process):
    process.terminate()
    try:
        process.wait(timeout=60)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
    process.stderr.close()


def run_serve(tov, corpus, out):
    for group in read_manifest(corpus):
        if not group.loads:
            continue
        process, port = serving(tov, corpus, group)
        connection = http.client.HTTPConnection("127.0.0.1", port, timeout=120)
        try:
            for case in group.cases:
                connection.request("POST", "/v1/evaluate/" + case.kind,
                                   body=(corpus / case.request).read_bytes(),
                                   headers={"Content-Type": "application/json"})
                answer = connection.getresponse()
                text = answer.read()
                if answer.status != 200 or not text.endswith(b"\n"):
                    raise RuntimeError("tov serve answered %s to %s: %r"
                                       % (answer.status, case.name, text))
                out.write(case.name.encode("utf-8") + b"\t" + text[:-1] + b"\n")
        finally:
            connection.close()
            stop(process)
        if process.returncode != 0:
            raise RuntimeError("tov serve for %s stopped with %d" % (group.name,
                                                                   process.returncode))


RUNNERS = {"eval": run_eval, "batch": run_batch, "serve": run_serve}


def main(arguments):
    if len(arguments) != 4 or arguments[0] not in RUNNERS:
        sys.exit("usage: door_program.py eval|batch|serve TOV CORPUS ANSWERS")
    way, tov, corpus, answers = arguments
    with open(answers, "wb") as out:
        RUNNERS[way](tov, pathlib.Path(corpus), out)


if __name__ == "__main__":
    main(sys.argv[1:])
