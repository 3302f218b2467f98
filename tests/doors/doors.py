#!/usr/bin/env python3
"""One answer through every door: a seeded corpus of rules, data models and
requests (generate.py) goes through every way into the library, and every
answer must be the same, byte for byte, whichever door it came through.

    doors.py --corpus FOLDER --door NAME:COVERAGE=COMMAND [--door ...]

A door is a runner: COMMAND CORPUS ANSWERS, which reads the corpus's manifest
and writes "ID<TAB>ANSWER" lines (corpus.py tells the layout). COVERAGE names
which answers it owes (corpus.COVERAGES): "all" for a door inside the host's
process, "loaded" for a program started with the documents, and so on. The
doors run side by side, then the answers are compared; a door that leaves out
an answer it owes, or gives one it does not, fails as a mismatch does.

The corpus: TOV_DOORS_CASES cases (default 2000), TOV_DOORS_SEED (default
19), and TOV_DOORS_EVAL cases in tov eval's sample (default a fifth of the
cases, at least 400; or "all").
"""

import argparse
import collections
import concurrent.futures
import json
import os
import pathlib
import shlex
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from corpus import COVERAGES, expected_ids  # noqa: E402
from generate import generate  # noqa: E402

# Shown when a door fails, at most this many mismatches.
SHOWN = 8


def door_spec(text):
    name, _, command = text.partition("=")
    name, _, coverage = name.partition(":")
    if not name or coverage not in COVERAGES or not command:
        raise argparse.ArgumentTypeError("expected NAME:COVERAGE=COMMAND with COVERAGE one of "
                                         + ", ".join(COVERAGES) + ": " + text)
    return name, coverage, shlex.split(command)


def run_door(door, corpus, answers):
    name, _, command = door
    started = time.monotonic()
    done = subprocess.run(command + [str(corpus), str(answers / (name + ".tsv"))],
                          capture_output=True, timeout=600)
    seconds = time.monotonic() - started
    if done.returncode != 0:
        raise RuntimeError("door %s: %s ended with %d\n%s%s" % (
            name, " ".join(command), done.returncode, done.stdout.decode("utf-8", "replace"),
            done.stderr.decode("utf-8", "replace")))
    return seconds


def read_answers(path):
    answers = {}
    with open(path, "rb") as lines:
        for line in lines:
            name, tab, answer = line.rstrip(b"\n").partition(b"\t")
            if not tab or name.decode("utf-8") in answers:
                raise RuntimeError("%s: a line without an id, or an id twice: %r" % (path, line))
            answers[name.decode("utf-8")] = answer
    return answers


def compare(groups, doors, answers):
    """Every mismatch, in words; empty when all doors agree."""
    faults = []
    by_door = {}
    for name, coverage, _ in doors:
        given = read_answers(answers / (name + ".tsv"))
        owed = expected_ids(groups, coverage)
        missing = [i for i in owed if i not in given]
        extra = sorted(set(given) - set(owed))
        if missing or extra:
            faults.append("door %s (%s) left out %d answers %s and gave %d it does not owe %s"
                          % (name, coverage, len(missing), missing[:SHOWN], len(extra),
                             extra[:SHOWN]))
        by_door[name] = given
    every_id = [i for g in groups for i in g.load_ids() + [c.name for c in g.cases]]
    differing = 0
    for i in every_id:
        seen = {name: given[i] for name, given in by_door.items() if i in given}
        if len(set(seen.values())) > 1:
            differing += 1
            if differing <= SHOWN:
                faults.append("%s differs:\n%s" % (i, "\n".join(
                    "  %-10s %s" % (name, text.decode("utf-8", "replace"))
                    for name, text in seen.items())))
    if differing > SHOWN:
        faults.append("... %d answers differ in all" % differing)
    return faults


def health(groups, reference):
    """What the corpus made the library say, by the answers of a door that
    answered everything; faults when it says too little to prove much."""
    counts = collections.Counter()
    faults = []
    for group in groups:
        loads = [json.loads(reference[i]) for i in group.load_ids()]
        loaded = all(answer["Result"] == "Success" for answer in loads)
        if loaded != group.loads:
            faults.append("%s was meant %s but its documents answered %s" % (
                group.name, "to load" if group.loads else "not to load", loads))
        for case in group.cases:
            answer = json.loads(reference[case.name])
            counts["cases"] += 1
            counts[answer["Result"]] += 1
            counts["kind " + case.kind] += 1
            for keyword in ("ObjectFamilyMembers", "ManualLinkAncestors",
                            "TriggerInitialization", "SelectedVersioningAttribute"):
                if keyword in answer:
                    counts[keyword] += 1
            comment = answer.get("ResultComment", "")
            for outcome in ("Json has fundamental parsing error", "violation detected",
                            "demands ALL keywords", "parsing error on keys",
                            "Contradicting", "approved"):
                if outcome in comment:
                    counts[outcome] += 1
    # Each outcome must stand for a fair share (the rare ones for half of it),
    # so that a change to the generator cannot quietly make the corpus say
    # nothing.
    share = counts["cases"] / 100
    for outcome, part in (("Success", 1), ("Failure", 1), ("ObjectFamilyMembers", 1),
                          ("ManualLinkAncestors", 1), ("TriggerInitialization", 1),
                          ("SelectedVersioningAttribute", 1),
                          ("Json has fundamental parsing error", 1), ("violation detected", 1),
                          ("demands ALL keywords", 1), ("parsing error on keys", 0.5),
                          ("Contradicting", 0.5), ("approved", 1), ("kind edit", 1),
                          ("kind edit-before-resolution", 1), ("kind save", 1),
                          ("kind save-before-resolution", 1), ("kind link", 1),
                          ("kind options", 1)):
        if counts[outcome] < share * part:
            faults.append("only %d of %d answers show %r" % (counts[outcome], counts["cases"],
                                                               outcome))
    return counts, faults


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--corpus", type=pathlib.Path, required=True)
    parser.add_argument("--door", type=door_spec, action="append", required=True)
    arguments = parser.parse_args()
    doors = arguments.door
    if not any(coverage == "all" for _, coverage, _ in doors):
        parser.error("at least one door must answer everything")

    cases = int(os.environ.get("TOV_DOORS_CASES", "2000"))
    seed = int(os.environ.get("TOV_DOORS_SEED", "19"))
    sample = os.environ.get("TOV_DOORS_EVAL", str(max(400, cases // 5)))
    started = time.monotonic()
    groups = generate(arguments.corpus / "corpus", cases, seed,
                      cases if sample == "all" else int(sample))
    generated = time.monotonic() - started
    answers = arguments.corpus / "answers"
    answers.mkdir(parents=True, exist_ok=True)
    for stale in answers.glob("*.tsv"):
        stale.unlink()

    # Each door is a process of its own (or, for tov eval, a few at a time), so
    # they run side by side on every core.
    with concurrent.futures.ThreadPoolExecutor(max_workers=os.cpu_count() or 2) as pool:
        futures = {door[0]: pool.submit(run_door, door, arguments.corpus / "corpus", answers)
                   for door in doors}
        seconds = {name: future.result() for name, future in futures.items()}

    faults = compare(groups, doors, answers)
    reference = next(name for name, coverage, _ in doors if coverage == "all")
    counts, unhealthy = health(groups, read_answers(answers / (reference + ".tsv")))
    print("corpus: seed %d, %d cases in %d groups, generated in %.1f s" % (
        seed, counts["cases"], len(groups), generated))
    for name, coverage, _ in doors:
        print("  %-8s %-14s %5d answers in %5.1f s" % (
            name, coverage, len(expected_ids(groups, coverage)), seconds[name]))
    print("answers: " + ", ".join("%s %d" % item for item in sorted(counts.items())))
    for fault in faults + unhealthy:
        print("FAIL: " + fault)
    return 1 if faults or unhealthy else 0


if __name__ == "__main__":
    sys.exit(main())
