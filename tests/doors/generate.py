#!/usr/bin/env python3
"""Writes a seeded corpus for the doors test (the layout is in corpus.py):
random data models and rules documents over the eight rule kinds, and random
requests of every kind against them, faulty ones among them, and the two-pass
exchange (a request without the family or the ancestors, then the same with
them).

    generate.py FOLDER [--cases N] [--seed S] [--eval-sample N]

The same arguments write the same corpus, byte for byte.
"""

import argparse
import json
import pathlib
import random
import shutil
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from corpus import Case, Group, is_strict_json_object, write_manifest  # noqa: E402

KINDS = ["edit", "edit-before-resolution", "save", "save-before-resolution", "link", "options"]
# Edits are asked most; options answers vary most.
KIND_WEIGHTS = KINDS[:4] + ["edit", "save", "link", "options", "options"]

# Small pools, so that rules and requests meet often; some words beyond ASCII,
# up to four bytes of UTF-8.
TYPES = ["Part", "Assembly", "Drawing", "Datasheet", "Tool", "Pièce"]
STATUSES = ["In Work", "In Review", "Released", "Obsolete", "Cancelled", "Geprüft", "Gelöst ✓",
            "Frozen ❄", "Done 🚀"]
VERSIONING = ["Revision", "Iteration", "Edition"]
REGULAR = ["Owner", "Description", "Material", "ReleaseDate", "Größe"]
FILES = ["SheetFile", "DocumentFile"]
VALUES = {
    "Number": ["P-1", "P-2", "A-10", "D-3", "N°7"],
    "Revision": ["A", "B", "C"],
    "Iteration": ["1", "2", "3"],
    "Edition": ["E1", "E2"],
    "Owner": ["design", "qa", "mfg", "Zoë"],
    "Description": ["bracket", "housing", "pièce d'essai", "  spaced   out  "],
    "Material": ["steel", "alu", "Stahl ✓"],
    "ReleaseDate": ["2024-01-01", "Reset", ""],
    "Größe": ["M", "XL"],
    "SheetFile": ["D-1.pdf", "D-2.pdf"],
    "DocumentFile": ["spec.docx", "spéc.odt"],
}
SERVER_IDS = ["srv-1", "srv-2", "srv-ü-3", "srv-😀-4", "5"]


def values_of(attribute):
    return VALUES.get(attribute, STATUSES if attribute == "Status" else ["x", "y"])


class Generator:
    def __init__(self, seed):
        self.random = random.Random(seed)

    def chance(self, probability):
        return self.random.random() < probability

    def pick(self, items):
        return self.random.choice(items)

    def some(self, items, low, high):
        return self.random.sample(items, self.random.randint(low, min(high, len(items))))

    def cased(self, value):
        """Values are compared without regard to case by most rules."""
        roll = self.random.random()
        return value.upper() if roll < 0.05 else value.lower() if roll < 0.1 else value

    # Documents.

    def datamodel(self):
        types = {}
        for name in self.some(TYPES, 2, 5):
            category = self.pick(["DMITEM", "RLI"])
            attributes = [("Number", "REGULAR", True), ("Status", "REGULAR", False)]
            attributes += [(name_, "VERSIONING", True) for name_ in self.some(VERSIONING, 1, 2)]
            if category == "RLI" or self.chance(0.2):
                attributes.append((self.pick(FILES), "FILE", self.chance(0.8)))
            attributes += [(name_, "REGULAR", self.chance(0.1)) for name_ in self.some(REGULAR, 0, 3)]
            self.random.shuffle(attributes)
            types[name] = (category, attributes)
        document = {
            "OverwriteLabel": self.pick(["Overwrite", "Overwrite", "Écraser"]),
            "structureObjects": [
                {"name": name, "dmObjectType": category,
                 "attributes": [{"name": a, "type": t, "primary": p} for a, t, p in attributes]}
                for name, (category, attributes) in types.items()],
        }
        return document, types

    def rule_owner(self, types):
        return self.pick(list(types) + ["ALL", "all", "Library_Item"])

    def status(self, anything=0.0):
        """A status, or "<any>" with the given chance."""
        return "<any>" if self.chance(anything) else self.pick(STATUSES)

    def attribute(self, types):
        if self.chance(0.7):
            return "Status"
        return self.pick(REGULAR + VERSIONING + ["Number"])

    def rules(self, types):
        sections = {}

        def add(section, make, count):
            if count:
                rules = sections.setdefault(section, {})
                for _ in range(count):
                    rules.setdefault(self.rule_owner(types), []).append(make())

        def counts():
            return self.random.choice([0, 0, 1, 2, 3, 4])

        add("transitionsFreeze", lambda: {
            "attribute": self.pick(REGULAR + ["Status"]),
            "freezeConditionAttribute": "Status",
            "freezeConditionValue": self.status()}, counts())

        def transition():
            rule = {"attribute": "Status", "fromValue": self.status(),
                    "toValue": self.some(STATUSES, 1, 4)}
            if self.chance(0.05):
                rule[self.pick(["allowJumps", "allowReverse"])] = True
            return rule
        add("transitions", transition, counts())
        add("fileConstraints", lambda: {
            "attribute": "Status", "fromValue": self.status(0.2), "toValue": self.status(0.2),
            "updateFile": self.pick(["MANDATORY", "FORBIDDEN"])}, counts())

        def conflict_resolution():
            # Often "<any>", so that rules meet and now and then contradict.
            rule = {"attribute": self.pick(["Status", "Status", "Revision"]),
                    "fromValue": self.status(0.4), "toValue": self.status(0.4),
                    "updatesFile": self.pick(["YES", "NO", "N_A"]),
                    "conflictResolution": self.pick(["overwrite", "spinup"])}
            if self.chance(0.3):
                rule["hasDifferentPrimaries"] = self.chance(0.5)
            return rule
        add("conflictResolutions", conflict_resolution, counts())

        def versioning_selection():
            rule = {"conditionAttribute1": "Status", "conditionValue1": self.some(STATUSES, 1, 3),
                    "versioningOption": self.some(VERSIONING, 1, 2)}
            if self.chance(0.3):
                rule["conditionAttribute2"] = self.pick(["Owner", "Material"])
                rule["conditionValue2"] = self.some(VALUES[rule["conditionAttribute2"]], 1, 2)
            return rule
        add("versioningSelections", versioning_selection, counts())
        if self.chance(0.2):
            # Two selections that always apply and share no attribute: every
            # options query contradicts, and so does an abstract trigger.
            owner = self.rule_owner(types)
            for option in self.random.sample(VERSIONING, 2):
                sections.setdefault("versioningSelections", {}).setdefault(owner, []).append(
                    {"conditionAttribute1": "Status", "conditionValue1": list(STATUSES),
                     "versioningOption": [option]})
        add("historyLinks", lambda: {
            "attribute": "Status", "fromValue": self.status(0.2), "toValue": self.status(),
            "acceptableHistoryLinkValues": self.some(STATUSES, 1, 4)}, counts())
        add("manualLinks", lambda: {
            "attribute": "Status", "fromValue": self.status(0.2), "toValue": self.status(),
            "acceptableManualLinkValues": self.some(STATUSES, 1, 4)}, counts())
        add("triggers", lambda: {
            "attribute": self.attribute(types),
            "triggerInitialize": self.pick(REGULAR + ["Proper_Versioning_Attribute"]),
            "initializationValue": self.pick(["Reset", "Next", "today", "Zoë"])}, counts())
        return sections

    def faulty_document(self, document, rules):
        """A document with one fault that the loader refuses."""
        text = self.dumps(document)
        roll = self.random.random()
        if roll < 0.3:
            return text[:self.random.randint(1, max(1, len(text) - 1))]
        if rules:
            section = self.pick(["transitions", "historyLinks", "triggers", "fileConstraints"])
            owner = self.pick(["Part", "ALL"])
            broken = {"transitions": {"attribute": "Status", "fromValue": "In Work",
                                      "toValue": "Released"},
                      "historyLinks": {"attribute": "Status", "toValue": "Released"},
                      "triggers": {"attribute": 5, "triggerInitialize": "Owner",
                                   "initializationValue": "x"},
                      "fileConstraints": {"attribute": "Status", "fromValue": "a",
                                          "toValue": "b"}}[section]
            document = dict(document)
            document[section] = dict(document.get(section, {}))
            document[section][owner] = list(document[section].get(owner, [])) + [broken]
            return self.dumps(document)
        document = dict(document)
        if roll < 0.6:
            del document["OverwriteLabel"]
        else:
            document["structureObjects"] = [{"name": "Part", "dmObjectType": "DMITEM",
                                             "attributes": [{"name": "Number", "type": "TEXT",
                                                             "primary": "yes"}]}]
        return self.dumps(document)

    # Requests.

    def packet(self, category_attributes, changed=False):
        packet = {}
        for name, _, _ in category_attributes:
            if self.chance(0.85):
                packet[name] = self.cased(self.pick(values_of(name)))
        if self.chance(0.05):
            packet["Unknown"] = "u"
        return packet

    def target(self, initial, attributes):
        target = {}
        names = [name for name, _, _ in attributes]
        roll = self.random.random()
        if roll < 0.7 and "Status" in names:
            target["Status"] = self.cased(self.pick(STATUSES))
        elif roll < 0.8:
            versioning = [name for name, kind, _ in attributes if kind == "VERSIONING"]
            name = self.pick(versioning or names)
            target[name] = self.pick(values_of(name))
        elif roll < 0.9 and initial:
            # Only case differs: no edit at all.
            name = self.pick(list(initial))
            target[name] = initial[name].swapcase()
        for name in self.some(names, 0, 1):
            target[name] = self.pick(values_of(name))
        return target

    def linked(self, initial, attributes):
        objects = {}
        for server_id in self.some(SERVER_IDS, 0, 3):
            packet = self.packet(attributes)
            if "Number" in initial and self.chance(0.8):
                packet["Number"] = initial["Number"]
            packet["Status"] = self.pick(STATUSES)
            objects[server_id] = {"attributes": packet}
        return objects

    def edit_request(self, types, type_name):
        category, attributes = types.get(type_name, ("DMITEM", [("Number", "REGULAR", True),
                                                                ("Status", "REGULAR", False)]))
        initial = {} if self.chance(0.05) else self.packet(attributes)
        return {"objectType": type_name, "initialAttributes": initial,
                "targetAttributes": self.target(initial, attributes)}, initial, attributes

    def requests(self, types, kind):
        """One request, or two for the two-pass exchange."""
        type_name = self.pick(list(types)) if self.chance(0.9) else self.pick(TYPES + ["Nothing"])
        if kind == "link":
            ends = {}
            for end in ("ancestor", "descendant"):
                name = self.pick(list(types))
                ends[end] = {"objectType": name, "attributes": self.packet(types[name][1])}
            return [ends]
        request, initial, attributes = self.edit_request(types, type_name)
        if kind == "options":
            if self.chance(0.5):
                request["uploadsRepresentationFile"] = self.chance(0.5)
            return [request]
        roll = self.random.random()
        if roll < 0.4:
            return [request]
        second = dict(request)
        sections = self.pick([["membersOfFamily"], ["manualLinkAncestors"],
                              ["membersOfFamily", "manualLinkAncestors"]])
        for section in sections:
            second[section] = self.linked(initial, attributes)
        # Half of them as the exchange has it, half sent at once.
        return [request, second] if roll < 0.7 else [second]

    def faulty_request(self, request):
        text = self.dumps(request)
        roll = self.random.random()
        if roll < 0.15:
            return text[:self.random.randint(0, max(0, len(text) - 1))]
        if roll < 0.25:
            return self.pick(["", "[]", "\"edit\"", "42", "null", "true", "[{}]", "{}", "   \n",
                              "{\"objectType\": \"Part\"} trailing", "{\"a\": 1,}",
                              "{\"a\": 1 /* note */}", "{\"objectType\": \"Pa\\ud800rt\"}",
                              "{\"objectType\": \"Pa\trt\"}", "{\"objectType\": NaN}"])
        request = json.loads(json.dumps(request))
        keys = list(request)
        if roll < 0.45 and keys:
            del request[self.pick(keys)]
            return self.dumps(request)
        if roll < 0.75 and keys:
            key = self.pick(keys)
            value = request[key]
            if isinstance(value, dict) and value and self.chance(0.8):
                inner = self.pick(list(value))
                value[inner] = self.pick([5, True, None, ["x"], {"a": "b"}, 1.5, -0, ""])
            else:
                request[key] = self.pick([7, None, ["Part"], {}, "x", False, 3.25])
            return self.dumps(request)
        if roll < 0.85:
            request[self.pick(["comment", "objectType2", "", "ö"])] = "extra"
            return self.dumps(request)
        # A key written twice; the text keeps both.
        key = self.pick(keys) if keys else "objectType"
        return "{" + json.dumps(key) + ": \"Other\", " + self.dumps(request)[1:]

    def dumps(self, value):
        """JSON text in one of several hands: compact or indented, with
        characters beyond ASCII as they are or escaped."""
        return json.dumps(value, ensure_ascii=self.chance(0.3),
                          indent=self.pick([None, None, 2]),
                          separators=self.pick([None, (",", ":")]) if self.chance(0.5) else None)


def generate(folder, cases, seed, eval_sample):
    generator = Generator(seed)
    if folder.exists():
        shutil.rmtree(folder)
    (folder / "documents").mkdir(parents=True)
    (folder / "requests").mkdir()
    groups = []
    written = 0
    while written < cases:
        name = "g%04d" % (len(groups) + 1)
        datamodel, types = generator.datamodel()
        rules = generator.rules(types)
        loads = len(groups) % 20 != 7  # one group in twenty has a faulty document
        datamodel_text = generator.dumps(datamodel)
        rules_text = generator.dumps(rules)
        if not loads:
            if generator.chance(0.5):
                rules_text = generator.faulty_document(rules, True)
            else:
                datamodel_text = generator.faulty_document(datamodel, False)
        group = Group(name, loads, "documents/%s-datamodel.json" % name,
                      "documents/%s-rules.json" % name)
        (folder / group.datamodel).write_text(datamodel_text, encoding="utf-8")
        (folder / group.rules).write_text(rules_text, encoding="utf-8")
        for _ in range(generator.random.randint(10, 30)):
            kind = generator.pick(KIND_WEIGHTS)
            requests = generator.requests(types, kind)
            faulty = generator.chance(0.18)
            for request in requests:
                if written == cases:
                    break
                text = generator.faulty_request(request) if faulty else generator.dumps(request)
                case = Case("c%06d" % (written + 1), kind, "requests/c%06d.json" % (written + 1),
                            set())
                if is_strict_json_object(text):
                    case.flags.add("object")
                if text == "":
                    case.flags.add("empty")
                (folder / case.request).write_text(text, encoding="utf-8")
                group.cases.append(case)
                written += 1
        groups.append(group)

    # The sample that tov eval runs, drawn from the cases whose documents load.
    loaded = [case for group in groups if group.loads for case in group.cases]
    sample = loaded if eval_sample >= len(loaded) else generator.random.sample(loaded, eval_sample)
    for case in sample:
        case.flags.add("sample")
    write_manifest(folder, groups, "tov doors corpus: seed %d, %d cases in %d groups, %d in the "
                   "tov eval sample" % (seed, written, len(groups), len(sample)))
    return groups


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--cases", type=int, default=2000)
    parser.add_argument("--seed", type=int, default=19)
    parser.add_argument("--eval-sample", type=int, default=400)
    arguments = parser.parse_args()
    generate(arguments.folder, arguments.cases, arguments.seed, arguments.eval_sample)


if __name__ == "__main__":
    main()
