#!/usr/bin/env python3
"""Writes the seeds of the two fuzz targets whose input is no plain document,
from the example scenario: corpus/edit_request/ (a flavour digit, then the
request) and corpus/composer/ (object types and packets in the byte format
that composer_fuzzer.cpp reads). The other targets take their seeds straight
from examples/. Run it again when the scenario changes and commit the result.
"""
import json
import pathlib
import shutil

HERE = pathlib.Path(__file__).resolve().parent
EXAMPLES = HERE.parent / "examples"

# The flavour digit that edit_request_fuzzer.cpp reads from the first byte.
EDIT_FLAVOURS = {"edit": "0", "edit-before-resolution": "1",
                 "save": "2", "save-before-resolution": "3"}


def provider_string(text):
    """A string as FuzzedDataProvider::ConsumeRandomLengthString reads it: a
    back-slash is doubled, and a back-slash with one more byte ends it."""
    return text.encode().replace(b"\\", b"\\\\") + b"\\\n"


def composer_seed(first_type, first_packet, second_type, second_packet, uploads):
    """Strings are read from the front; the two entry counts and the bool from
    the back, in that order, so they stand at the end in reverse."""
    front = provider_string(first_type)
    for name, value in first_packet.items():
        front += provider_string(name) + provider_string(value)
    front += provider_string(second_type)
    for name, value in second_packet.items():
        front += provider_string(name) + provider_string(value)
    # At most kMostEntriesInAPacket entries each.
    assert len(first_packet) <= 16 and len(second_packet) <= 16
    back = bytes([1 if uploads else 0, len(second_packet), len(first_packet)])
    return front + back


def is_packet(value):
    return isinstance(value, dict) and all(isinstance(v, str) for v in value.values())


def fresh_folder(name):
    folder = HERE / "corpus" / name
    shutil.rmtree(folder, ignore_errors=True)
    folder.mkdir(parents=True)
    return folder


def main():
    steps = json.loads((EXAMPLES / "scenario.json").read_text())["steps"]
    edits = fresh_folder("edit_request")
    composer = fresh_folder("composer")
    for step in steps:
        name, kind = step["name"], step["kind"]
        text = (EXAMPLES / "requests" / (name + ".json")).read_text()
        request = json.loads(text)
        if kind in EDIT_FLAVOURS:
            (edits / (name + ".txt")).write_text(EDIT_FLAVOURS[kind] + text)
        if kind == "link":
            ancestor, descendant = request["ancestor"], request["descendant"]
            seed = composer_seed(ancestor["objectType"], ancestor["attributes"],
                                 descendant["objectType"], descendant["attributes"], False)
        elif is_packet(request.get("initialAttributes")) and \
                is_packet(request.get("targetAttributes")):
            seed = composer_seed(request.get("objectType", ""), request["initialAttributes"],
                                 request.get("objectType", ""), request["targetAttributes"],
                                 request.get("uploadsRepresentationFile") is True)
        else:
            continue
        (composer / (name + ".bin")).write_bytes(seed)


if __name__ == "__main__":
    main()
