#!/usr/bin/env python3
"""Evaluates requests through the tov package, printing each answer exactly as
`tov eval` prints it, one line each.

    python3 evaluate.py RULES DATAMODEL [KIND REQUEST]...

KIND is edit, edit-before-resolution, save, save-before-resolution, link or
options. Exit status: 0 when both documents loaded, 1 when one did not, 2 for
bad arguments.
"""

import sys

import tov


def main(arguments):
    if len(arguments) < 2 or len(arguments) % 2 != 0:
        print("usage: evaluate.py RULES DATAMODEL [KIND REQUEST]...", file=sys.stderr)
        return 2
    rules, datamodel, requests = arguments[0], arguments[1], arguments[2:]
    with tov.Engine() as engine:
        for loaded, path in ((engine.load_datamodel_file(datamodel), datamodel),
                             (engine.load_rules_file(rules), rules)):
            if loaded["Result"] != "Success":
                print(f"evaluate.py: {path} did not load: {loaded['ResultComment']}",
                      file=sys.stderr)
                return 1
        for kind, path in zip(requests[::2], requests[1::2]):
            print(engine.evaluate_file_raw(kind, path))
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
