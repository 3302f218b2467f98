#!/usr/bin/env python3
"""Runs the example scenario (examples/scenario.json) through the tov program
and prints, for each request, what it shows, the verdict and the comment.

Usage: scripts/demo.py [--tov PROGRAM]

Exit status 0 when every answer is the one written down in examples/expected/,
1 when one is not, 2 when the program cannot be run.
"""

import argparse
import json
import os
import shutil
import subprocess
import sys
import textwrap

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
WIDTH = 100
DOCUMENTS = ["--rules", "examples/rules.json", "--dm", "examples/datamodel.json"]


class Style:
    """Colours on a terminal, plain text elsewhere."""

    def __init__(self, enabled):
        self.enabled = enabled

    def _wrap(self, code, text):
        return f"\033[{code}m{text}\033[0m" if self.enabled else text

    def bold(self, text):
        return self._wrap("1", text)

    def dim(self, text):
        return self._wrap("2", text)

    def good(self, text):
        return self._wrap("32", text)

    def bad(self, text):
        return self._wrap("31", text)

    def ask(self, text):
        return self._wrap("33", text)


def paragraph(label, text, indent=4):
    lead = " " * indent + label
    return textwrap.fill(text, WIDTH, initial_indent=lead,
                         subsequent_indent=" " * (indent + len(label)),
                         break_on_hyphens=False, break_long_words=False)


def verdict_of(answer, status, style):
    if answer.get("Result") == "Success":
        return style.good("Success") + " (exit status 0)"
    # The keyword that asks, and the section of the request that answers it.
    asked = [section for keyword, section in (("ObjectFamilyMembers", "membersOfFamily"),
                                              ("ManualLinkAncestors", "manualLinkAncestors"))
             if answer.get(keyword) == "MissingData"]
    if asked:
        return (style.ask("Failure, send the request again with " + " and ".join(asked))
                + f" (exit status {status})")
    return style.bad("Failure") + f" (exit status {status})"


def expected_answer(name):
    with open(os.path.join(ROOT, "examples", "expected", name + ".out"), encoding="utf-8") as f:
        return f.read().strip()


def run(tov, *arguments):
    return subprocess.run([tov, *arguments], cwd=ROOT, capture_output=True, text=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("--tov", default=os.path.join("build", "default", "tools", "tov"),
                        help="the tov program (default: %(default)s)")
    options = parser.parse_args()
    tov = os.path.abspath(os.path.join(ROOT, options.tov))
    if not os.access(tov, os.X_OK):
        found = shutil.which(options.tov)
        if found is None:
            print(f"demo: no tov program at {options.tov}; build it first (make build)",
                  file=sys.stderr)
            return 2
        tov = found

    style = Style(sys.stdout.isatty())
    with open(os.path.join(ROOT, "examples", "scenario.json"), encoding="utf-8") as f:
        scenario = json.load(f)

    print(style.bold("The documents") + style.dim("  (examples/rules.json, examples/datamodel.json)"))
    print(style.dim("  $ tov check " + " ".join(DOCUMENTS)))
    checked = run(tov, "check", *DOCUMENTS)
    for line in checked.stdout.splitlines():
        print("    " + line)
    if checked.returncode != 0:
        print(checked.stderr, file=sys.stderr)
        return 2
    print()

    mismatches = []
    tally = {"approved": 0, "refused": 0, "asked for more data": 0}
    for number, step in enumerate(scenario["steps"], 1):
        request = f"examples/requests/{step['name']}.json"
        done = run(tov, "eval", step["kind"], *DOCUMENTS, request)
        if done.returncode == 2:
            print(done.stderr, file=sys.stderr)
            return 2
        single = done.stdout.strip()
        answer = json.loads(single)
        tally["approved" if done.returncode == 0 else
              "asked for more data" if done.returncode == 3 else "refused"] += 1

        print(style.bold(f"{number:2}. {step['kind']}: {step['name']}"))
        print(paragraph("", step["purpose"]))
        print(style.dim(f"    $ tov eval {step['kind']} --rules ... --dm ... {request}"))
        print("    Verdict: " + verdict_of(answer, done.returncode, style))
        print(paragraph("Comment: ", answer.get("ResultComment", "")))
        for keyword, value in answer.items():
            if keyword not in ("Result", "ResultComment"):
                print(paragraph(keyword + ": ", value))

        expected = expected_answer(step["name"])
        if single != expected or done.returncode != step["exit"]:
            mismatches.append(step["name"])
            print(style.bad(f"    Expected exit status {step['exit']} and: {expected}"))
        print()

    print(style.bold("Batch") + style.dim("  (the same requests as JSON Lines, two workers)"))
    print(style.dim("  $ tov batch " + " ".join(DOCUMENTS) + " --jobs 2 examples/requests.jsonl"))
    batch = run(tov, "batch", *DOCUMENTS, "--jobs", "2", "examples/requests.jsonl")
    answers = batch.stdout.splitlines()
    same = answers == [expected_answer(step["name"]) for step in scenario["steps"]]
    print(f"    {len(answers)} answer lines in input order, "
          + (style.good("the same as one by one") if same else style.bad("not as expected")))
    if not same or batch.returncode != 0:
        mismatches.append("batch")
    print()

    summary = ", ".join(f"{count} {what}" for what, count in tally.items())
    print(f"{len(scenario['steps'])} requests: {summary}.")
    if mismatches:
        print(style.bad("Not as written down in examples/expected: " + ", ".join(mismatches)))
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
