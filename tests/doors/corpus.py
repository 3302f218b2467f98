"""The corpus of the doors test, and what every door runner reads of it.

A corpus is a folder:

    manifest.tsv            one line per document pair and per case, in order
    documents/GROUP-datamodel.json, documents/GROUP-rules.json
    requests/CASE.json

The manifest's lines are tab-separated, so that a runner in any language reads
them with a split:

    group  GROUP  loads|faulty  DATAMODEL-PATH  RULES-PATH
    case   CASE   KIND          REQUEST-PATH    FLAGS

Paths are relative to the folder. Every case belongs to the group above it. A
"faulty" group has a document that is meant not to load. FLAGS is "-" or a
comma-separated list of: "object" (the request is strict JSON text of one
object, so a line of tov batch can carry it), "empty" (the request file is
empty), "sample" (the case is in the seeded sample that tov eval runs, drawn
from the groups that load).

A runner writes one line per answer, "ID<TAB>ANSWER": a case's ID, or
"GROUP/datamodel" and "GROUP/rules" for the answers to loading the documents.
"""

import json
import math

MANIFEST = "manifest.tsv"


class Group:
    def __init__(self, name, loads, datamodel, rules):
        self.name = name
        self.loads = loads
        self.datamodel = datamodel
        self.rules = rules
        self.cases = []

    def load_ids(self):
        return [self.name + "/datamodel", self.name + "/rules"]


class Case:
    def __init__(self, name, kind, request, flags):
        self.name = name
        self.kind = kind
        self.request = request
        self.flags = flags


def read_manifest(folder):
    groups = []
    with open(folder / MANIFEST, encoding="utf-8") as manifest:
        for line in manifest:
            fields = line.rstrip("\n").split("\t")
            if fields[0] == "group":
                groups.append(Group(fields[1], fields[2] == "loads", fields[3], fields[4]))
            elif fields[0] == "case":
                flags = set() if fields[4] == "-" else set(fields[4].split(","))
                groups[-1].cases.append(Case(fields[1], fields[2], fields[3], flags))
    return groups


def write_manifest(folder, groups, comment):
    with open(folder / MANIFEST, "w", encoding="utf-8") as manifest:
        manifest.write("# " + comment + "\n")
        for group in groups:
            manifest.write("\t".join(["group", group.name, "loads" if group.loads else "faulty",
                                      group.datamodel, group.rules]) + "\n")
            for case in group.cases:
                manifest.write("\t".join(["case", case.name, case.kind, case.request,
                                          ",".join(sorted(case.flags)) or "-"]) + "\n")


# Which answers each kind of door must give. A door answers exactly these; the
# comparer holds it to that, so that a runner cannot skip cases unseen.
COVERAGES = {
    # Every case, and the answers to loading the documents: the doors in a
    # host's own process.
    "all": lambda group, case: True,
    # The same but for empty request files: the file forms of the interfaces
    # read an empty file as text that is no JSON object, where tov eval reads
    # it as empty text.
    "all-but-empty": lambda group, case: case is None or "empty" not in case.flags,
    # The cases whose documents load: a program started with the documents.
    "loaded": lambda group, case: case is not None and group.loads,
    # Those that a line of tov batch can carry.
    "loaded-objects": lambda group, case: (case is not None and group.loads
                                           and "object" in case.flags),
    # The seeded sample that tov eval runs, one process per case.
    "loaded-sample": lambda group, case: case is not None and "sample" in case.flags,
}


def expected_ids(groups, coverage):
    wanted = COVERAGES[coverage]
    ids = []
    for group in groups:
        if wanted(group, None):
            ids.extend(group.load_ids())
        ids.extend(case.name for case in group.cases if wanted(group, case))
    return ids


def is_strict_json_object(text):
    """True when the text is one JSON object as RFC 8259 has it: no NaN or
    Infinity, no unpaired surrogate, no number too large for a double."""
    def refuse(constant):
        raise ValueError(constant)

    def strings_are_unicode(value):
        if isinstance(value, str):
            value.encode("utf-8")  # raises for an unpaired surrogate
        elif isinstance(value, list):
            for item in value:
                strings_are_unicode(item)
        elif isinstance(value, dict):
            for key, item in value.items():
                strings_are_unicode(key)
                strings_are_unicode(item)
        elif isinstance(value, float) and not math.isfinite(value):
            raise ValueError(value)

    def check_pairs(pairs):
        # Every pair, so that a key written twice is checked both times.
        for key, value in pairs:
            strings_are_unicode(key)
            strings_are_unicode(value)
        return dict(pairs)

    try:
        return isinstance(json.loads(text, parse_constant=refuse, object_pairs_hook=check_pairs),
                          dict)
    except (ValueError, UnicodeEncodeError, RecursionError):
        return False
        # Duplicate keys too are strict JSON; json.loads keeps the last, so
        # the check walks the pairs.
        json.loads(text, object_pairs_hook=lambda pairs: [strings_are_unicode(k) or
                                                          strings_are_unicode(v)
                                                          for k, v in pairs])
        return True
    except (ValueError, UnicodeEncodeError, RecursionError):
        return False
