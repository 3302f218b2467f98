#!/usr/bin/env python3
"""The doors test's runner for the Python package: answers every case of a
corpus (see corpus.py) on one engine, reloading the documents of each group,
and writes "ID<TAB>ANSWER" lines. Requests go over as the bytes of their files.

    door_python.py CORPUS ANSWERS
"""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
import tov  # noqa: E402
from corpus import read_manifest  # noqa: E402


def main(corpus, answers):
    with tov.Engine() as engine, open(answers, "wb") as out:
        def write(name, answer):
            out.write(name.encode("utf-8") + b"\t" + answer.encode("utf-8", "surrogateescape") +
                      b"\n")

        for group in read_manifest(corpus):
            write(group.name + "/datamodel", engine.evaluate_file_raw(
                "datamodel", corpus / group.datamodel))
            write(group.name + "/rules", engine.evaluate_file_raw("rules", corpus / group.rules))
            for case in group.cases:
                write(case.name, engine.evaluate_raw(case.kind, (corpus / case.request).read_bytes()))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: door_python.py CORPUS ANSWERS")
    main(pathlib.Path(sys.argv[1]), sys.argv[2])
