"""The JSON Schemas in schemas/ against the example documents and against
documents with faults.

Run as: python3 test_schemas.py TOV_PROGRAM SOURCE_DIR

Every example document must be valid against the schema of its kind, and
every faulty document below must be rejected. A faulty rules or data-model
document that the library refuses too is also loaded with `tov check`, so the
schemas and the loader are held to the same line. Only what python3-jsonschema
4.10 (Debian 12) offers is used.
"""

import copy
import json
import os
import subprocess
import sys
import tempfile
import unittest

import jsonschema

TOV = None
SOURCE = None

SCHEMA_OF_KIND = {
    "edit": "edit-request",
    "edit-before-resolution": "edit-request",
    "save": "edit-request",
    "save-before-resolution": "edit-request",
    "link": "link-request",
    "options": "options-query",
}

# Example requests that show how the library answers a faulty request.
FAULTY_EXAMPLES = {"edit-request-with-faults"}


def load_json(*parts):
    with open(os.path.join(SOURCE, *parts), encoding="utf-8") as f:
        return json.load(f)


def validator(name):
    schema = load_json("schemas", name + ".schema.json")
    return jsonschema.Draft202012Validator(schema)


def rules_with(section, object_type, rule):
    return {section: {object_type: [rule]}}


TRANSITION = {"attribute": "Status", "fromValue": "In Work", "toValue": ["In Review"]}
FREEZE = {"attribute": "Owner", "freezeConditionAttribute": "Status", "freezeConditionValue": "Released"}
CONFLICT = {"attribute": "Status", "fromValue": "In Work", "toValue": "In Review",
            "updatesFile": "N_A", "conflictResolution": "overwrite"}
SELECTION = {"conditionAttribute1": "Status", "conditionValue1": ["Released"],
             "versioningOption": ["Revision"]}
MANUAL = {"attribute": "Status", "fromValue": "<any>", "toValue": "Released",
          "acceptableManualLinkValues": ["Released"]}
DATAMODEL = {"OverwriteLabel": "Overwrite", "structureObjects": [
    {"name": "Part", "dmObjectType": "DMITEM",
     "attributes": [{"name": "Number", "type": "REGULAR", "primary": True}]}]}
EDIT = {"objectType": "Part", "initialAttributes": {"Status": "In Work"},
        "targetAttributes": {"Status": "In Review"}}
LINK = {"ancestor": {"objectType": "Part", "attributes": {"Status": "Released"}},
        "descendant": {"objectType": "Assembly", "attributes": {"Status": "Released"}}}
OPTIONS = {"objectType": "Part", "initialAttributes": {"Status": "In Work"},
           "targetAttributes": {"Status": "In Review"}}


def changed(document, change):
    result = copy.deepcopy(document)
    change(result)
    return result


# (schema, what is wrong, document, whether the library refuses it as well).
# The schemas are stricter than the loader where the loader would quietly
# ignore what is surely a slip: those cases say False.
FAULTY_DOCUMENTS = [
    ("rules", "a transition rule without toValue",
     rules_with("transitions", "Part", {"attribute": "Status", "fromValue": "In Work"}), True),
    ("rules", "toValue of a transition rule as a bare string",
     rules_with("transitions", "Part", dict(TRANSITION, toValue="In Review")), True),
    ("rules", "an empty toValue list",
     rules_with("transitions", "Part", dict(TRANSITION, toValue=[])), True),
    ("rules", "an empty object type in the transitions",
     rules_with("transitions", "", TRANSITION), True),
    ("rules", "rules of an object type given as a string, not a list",
     {"manualLinks": {"Assembly": "Released"}}, True),
    ("rules", "a rule given as a string, not an object",
     {"transitions": {"Part": ["Status"]}}, True),
    ("rules", "a freeze rule with a member that is a number",
     rules_with("transitionsFreeze", "Part", dict(FREEZE, priority=1)), True),
    ("rules", "a freeze rule without freezeConditionValue",
     rules_with("transitionsFreeze", "Part",
                {"attribute": "Owner", "freezeConditionAttribute": "Status"}), True),
    ("rules", "hasDifferentPrimaries given as a string",
     rules_with("conflictResolutions", "Part", dict(CONFLICT, hasDifferentPrimaries="true")), True),
    ("rules", "a conflict resolution rule without updatesFile",
     rules_with("conflictResolutions", "Part",
                {k: v for k, v in CONFLICT.items() if k != "updatesFile"}), True),
    ("rules", "a versioning selection rule with no versioning option",
     rules_with("versioningSelections", "Part", dict(SELECTION, versioningOption=[])), True),
    ("rules", "a manual link rule with the history link's list",
     rules_with("manualLinks", "Assembly",
                {"attribute": "Status", "fromValue": "<any>", "toValue": "Released",
                 "acceptableHistoryLinkValues": ["Released"]}), True),
    ("rules", "toValue of a manual link rule as a list",
     rules_with("manualLinks", "Assembly", dict(MANUAL, toValue=["Released"])), True),
    ("rules", "a trigger rule without initializationValue",
     rules_with("triggers", "Part", {"attribute": "Status", "triggerInitialize": "ReleaseDate"}),
     True),
    ("rules", "a section given as a list",
     {"transitions": [TRANSITION]}, False),
    ("rules", "updateFile in small letters, which forbids nothing",
     rules_with("fileConstraints", "Drawing",
                {"attribute": "Status", "fromValue": "In Work", "toValue": "In Review",
                 "updateFile": "mandatory"}), False),
    ("rules", "conflictResolution with a capital, which forces nothing",
     rules_with("conflictResolutions", "Part", dict(CONFLICT, conflictResolution="Overwrite")),
     False),
    ("rules", "a second condition without its values",
     rules_with("versioningSelections", "Part", dict(SELECTION, conditionAttribute2="Owner")),
     False),
    ("datamodel", "no OverwriteLabel",
     {"structureObjects": DATAMODEL["structureObjects"]}, True),
    ("datamodel", "OverwriteLabel given as a number",
     dict(DATAMODEL, OverwriteLabel=1), True),
    ("datamodel", "primary given as a string",
     changed(DATAMODEL, lambda d: d["structureObjects"][0]["attributes"][0].update(primary="true")),
     True),
    ("datamodel", "an object type with no attributes",
     changed(DATAMODEL, lambda d: d["structureObjects"][0].update(attributes=[])), True),
    ("datamodel", "an object type without a name",
     changed(DATAMODEL, lambda d: d["structureObjects"][0].pop("name")), True),
    ("datamodel", "an object type given as a string",
     dict(DATAMODEL, structureObjects=["Part"]), True),
    ("datamodel", "a category word in small letters, which loads as DMITEM",
     changed(DATAMODEL, lambda d: d["structureObjects"][0].update(dmObjectType="rli")), False),
    ("edit-request", "no targetAttributes",
     {"objectType": "Part", "initialAttributes": {"Status": "In Work"}}, None),
    ("edit-request", "no objectType",
     {k: v for k, v in EDIT.items() if k != "objectType"}, None),
    ("edit-request", "a number among the initial attributes",
     changed(EDIT, lambda d: d["initialAttributes"].update(Revision=1)), None),
    ("edit-request", "a family member with another key than attributes",
     dict(EDIT, membersOfFamily={"srv-1": {"attributes": {}, "status": "Released"}}), None),
    ("edit-request", "a family member that is no object",
     dict(EDIT, membersOfFamily={"srv-1": "Released"}), None),
    ("edit-request", "an ancestor's attributes given as a list",
     dict(EDIT, manualLinkAncestors={"srv-1": {"attributes": ["Released"]}}), None),
    ("link-request", "an ancestor with no attributes",
     changed(LINK, lambda d: d["ancestor"].update(attributes={})), None),
    ("link-request", "a descendant without objectType",
     changed(LINK, lambda d: d["descendant"].pop("objectType")), None),
    ("link-request", "an attribute value that is a number",
     changed(LINK, lambda d: d["descendant"]["attributes"].update(Revision=2)), None),
    ("options-query", "no initialAttributes",
     {k: v for k, v in OPTIONS.items() if k != "initialAttributes"}, None),
    ("options-query", "uploadsRepresentationFile given as a string",
     dict(OPTIONS, uploadsRepresentationFile="true"), None),
    ("options-query", "a target value that is a bool",
     changed(OPTIONS, lambda d: d["targetAttributes"].update(Status=True)), None),
]


def tov_check(kind, document):
    """Exit status of `tov check` on a document of the given kind."""
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, kind + ".json")
        with open(path, "w", encoding="utf-8") as f:
            json.dump(document, f)
        rules = path if kind == "rules" else os.path.join(SOURCE, "examples", "rules.json")
        dm = path if kind == "datamodel" else os.path.join(SOURCE, "examples", "datamodel.json")
        done = subprocess.run([TOV, "check", "--rules", rules, "--dm", dm],
                              capture_output=True, text=True, timeout=60)
        return done.returncode, done.stdout + done.stderr


class SchemasTest(unittest.TestCase):

    def test_schemas_are_valid_draft_2020_12(self):
        for name in ["rules", "datamodel", "edit-request", "link-request", "options-query",
                     "test-suite"]:
            with self.subTest(schema=name):
                schema = load_json("schemas", name + ".schema.json")
                self.assertEqual(schema["$schema"], "https://json-schema.org/draft/2020-12/schema")
                jsonschema.Draft202012Validator.check_schema(schema)

    def test_every_key_has_a_description(self):
        def walk(node, where):
            if isinstance(node, dict):
                for key, sub in node.get("properties", {}).items():
                    with self.subTest(key=where + "/" + key):
                        self.assertIn("description", sub)
                for key, sub in node.items():
                    walk(sub, where + "/" + key)
            elif isinstance(node, list):
                for i, sub in enumerate(node):
                    walk(sub, where + "/" + str(i))

        for name in ["rules", "datamodel", "edit-request", "link-request", "options-query",
                     "test-suite"]:
            schema = load_json("schemas", name + ".schema.json")
            self.assertIn("description", schema)
            walk(schema, name)

    def test_example_documents_are_valid(self):
        validator("rules").validate(load_json("examples", "rules.json"))
        validator("datamodel").validate(load_json("examples", "datamodel.json"))

    def test_the_example_suite_is_valid_and_holds_the_whole_scenario(self):
        suite = load_json("examples", "tests.json")
        validator("test-suite").validate(suite)
        steps = load_json("examples", "scenario.json")["steps"]
        self.assertEqual([(case["name"], case["kind"]) for case in suite["cases"]],
                         [(step["name"], step["kind"]) for step in steps])
        for case in suite["cases"]:
            with self.subTest(case=case["name"]):
                with open(os.path.join(SOURCE, "examples", "expected", case["name"] + ".out"),
                          encoding="utf-8") as f:
                    self.assertEqual(case["expect"], json.loads(f.read()))
                self.assertEqual(case["requestFile"], "requests/" + case["name"] + ".json")

    def test_faulty_suites_are_rejected(self):
        good = {"rules": "rules.json", "datamodel": "dm.json",
                "cases": [{"name": "a", "kind": "edit", "request": {}, "expect": {}}]}
        validator("test-suite").validate(good)
        faults = {
            "no cases": {"rules": "rules.json", "datamodel": "dm.json"},
            "an unknown kind": changed(good, lambda d: d["cases"][0].update(kind="judge")),
            "both request forms": changed(
                good, lambda d: d["cases"][0].update(requestFile="r.json")),
            "no request": changed(good, lambda d: d["cases"][0].pop("request")),
            "an expected text that is no string": changed(
                good, lambda d: d["cases"][0].update(expect={"Result": True})),
            "an empty name": changed(good, lambda d: d["cases"][0].update(name="")),
        }
        for what, suite in faults.items():
            with self.subTest(fault=what):
                self.assertTrue(list(validator("test-suite").iter_errors(suite)))

    def test_example_requests_are_valid_for_their_kind(self):
        scenario = load_json("examples", "scenario.json")
        for step in scenario["steps"]:
            with self.subTest(request=step["name"]):
                request = load_json("examples", "requests", step["name"] + ".json")
                errors = list(validator(SCHEMA_OF_KIND[step["kind"]]).iter_errors(request))
                if step["name"] in FAULTY_EXAMPLES:
                    self.assertTrue(errors, "the faulty example passed its schema")
                else:
                    self.assertEqual([e.message for e in errors], [])

    def test_batch_requests_are_valid_for_their_kind(self):
        # The batch file holds the scenario's requests in the scenario's order.
        steps = load_json("examples", "scenario.json")["steps"]
        with open(os.path.join(SOURCE, "examples", "requests.jsonl"), encoding="utf-8") as f:
            lines = [json.loads(line) for line in f if line.strip()]
        self.assertEqual(len(lines), len(steps))
        for step, line in zip(steps, lines):
            with self.subTest(request=step["name"]):
                errors = list(validator(SCHEMA_OF_KIND[line["kind"]]).iter_errors(line["request"]))
                self.assertEqual(bool(errors), step["name"] in FAULTY_EXAMPLES)

    def test_faulty_documents_are_rejected(self):
        for schema, what, document, _ in FAULTY_DOCUMENTS:
            with self.subTest(schema=schema, fault=what):
                self.assertFalse(validator(schema).is_valid(document))

    def test_faulty_documents_are_refused_by_the_library_too(self):
        for schema, what, document, refused in FAULTY_DOCUMENTS:
            if schema not in ("rules", "datamodel"):
                continue
            with self.subTest(schema=schema, fault=what):
                status, output = tov_check(schema, document)
                self.assertEqual(status, 1 if refused else 0, output)

    def test_documents_fixed_again_are_valid(self):
        # The faulty documents are small changes of these, which must pass.
        validator("rules").validate(rules_with("transitions", "Part", TRANSITION))
        validator("rules").validate(rules_with("transitionsFreeze", "Part", FREEZE))
        validator("rules").validate(rules_with("conflictResolutions", "Part", CONFLICT))
        validator("rules").validate(rules_with("versioningSelections", "Part", SELECTION))
        validator("rules").validate(rules_with("manualLinks", "Assembly", MANUAL))
        validator("rules").validate({"$schema": "rules.schema.json"})
        validator("datamodel").validate(DATAMODEL)
        validator("edit-request").validate(EDIT)
        validator("edit-request").validate(dict(EDIT, membersOfFamily={}, manualLinkAncestors={
            "srv-1": {"attributes": {"Status": "Released"}}}))
        validator("link-request").validate(LINK)
        validator("link-request").validate({})
        validator("options-query").validate(dict(OPTIONS, uploadsRepresentationFile=True))


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit("usage: test_schemas.py TOV_PROGRAM SOURCE_DIR")
    TOV, SOURCE = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    unittest.main(argv=[sys.argv[0]], verbosity=2)
