"""The doors test's own parts: the corpus is the same for the same seed, the
coverages nest as they should, and the comparer finds every kind of mismatch."""

import argparse
import filecmp
import pathlib
import sys

import pytest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))
from corpus import expected_ids, is_strict_json_object, read_manifest  # noqa: E402
from doors import compare, door_spec  # noqa: E402
from generate import generate  # noqa: E402


@pytest.fixture(scope="module")
def corpus(tmp_path_factory):
    folder = tmp_path_factory.mktemp("doors") / "corpus"
    generate(folder, 60, 3, 10)
    return folder


def test_the_same_seed_writes_the_same_corpus(corpus, tmp_path):
    again = tmp_path / "again"
    generate(again, 60, 3, 10)
    files = sorted(path.relative_to(corpus) for path in corpus.rglob("*") if path.is_file())
    assert files == sorted(path.relative_to(again) for path in again.rglob("*") if path.is_file())
    _, mismatch, errors = filecmp.cmpfiles(corpus, again, [str(path) for path in files],
                                           shallow=False)
    assert (mismatch, errors) == ([], [])
    other = tmp_path / "other"
    generate(other, 60, 4, 10)
    assert (other / "manifest.tsv").read_bytes() != (corpus / "manifest.tsv").read_bytes()


def test_the_manifest_reads_back_as_written(corpus):
    groups = read_manifest(corpus)
    cases = [case for group in groups for case in group.cases]
    assert [case.name for case in cases] == ["c%06d" % i for i in range(1, 61)]
    assert all((corpus / case.request).is_file() for case in cases)
    assert all((corpus / group.rules).is_file() and (corpus / group.datamodel).is_file()
               for group in groups)
    assert sum("sample" in case.flags for case in cases) == 10


def test_coverages_nest(corpus):
    groups = read_manifest(corpus)
    every = set(expected_ids(groups, "all"))
    assert len(every) == 60 + 2 * len(groups)
    assert set(expected_ids(groups, "all-but-empty")) <= every
    loaded = set(expected_ids(groups, "loaded"))
    assert loaded <= every
    assert set(expected_ids(groups, "loaded-objects")) <= loaded
    assert set(expected_ids(groups, "loaded-sample")) <= loaded
    assert len(expected_ids(groups, "loaded-sample")) == 10
    assert not any("/" in i for i in loaded)


def write_answers(folder, name, answers):
    with open(folder / (name + ".tsv"), "wb") as out:
        for i, text in answers.items():
            out.write(i.encode() + b"\t" + text + b"\n")


def test_the_comparer_finds_every_mismatch(corpus, tmp_path):
    groups = read_manifest(corpus)
    doors = [("a", "all", []), ("b", "loaded", [])]
    every = {i: b'{"Result":"Success"}' for i in expected_ids(groups, "all")}
    loaded = {i: every[i] for i in expected_ids(groups, "loaded")}
    write_answers(tmp_path, "a", every)
    write_answers(tmp_path, "b", loaded)
    assert compare(groups, doors, tmp_path) == []

    first = next(iter(loaded))
    write_answers(tmp_path, "b", dict(loaded, **{first: b'{"Result":"Failure"}'}))
    assert compare(groups, doors, tmp_path) == [
        '%s differs:\n  a          {"Result":"Success"}\n  b          {"Result":"Failure"}'
        % first]

    write_answers(tmp_path, "b", {i: t for i, t in loaded.items() if i != first})
    assert compare(groups, doors, tmp_path) == [
        "door b (loaded) left out 1 answers ['%s'] and gave 0 it does not owe []" % first]

    load_id = groups[0].load_ids()[0]
    write_answers(tmp_path, "b", dict(loaded, **{load_id: every[load_id]}))
    assert compare(groups, doors, tmp_path) == [
        "door b (loaded) left out 0 answers [] and gave 1 it does not owe ['%s']" % load_id]


@pytest.mark.parametrize("text, strict", [
    ("{}", True), ('{"a": "\\ud83d\\ude00"}', True), ('{"a": 1, "a": 2}', True),
    ("", False), ("[]", False), ('{"a": NaN}', False), ('{"a": "\\ud800"}', False),
    ('{"a": 1e400}', False), ('{"a": 1} x', False), ('{"a": "\t"}', False),
])
def test_strict_json_objects(text, strict):
    assert is_strict_json_object(text) is strict


def test_door_specs():
    assert door_spec("c:all=tov_door_c text") == ("c", "all", ["tov_door_c", "text"])
    for bad in ("c=tov_door_c", "c:most=tov_door_c", "c:all=", ":all=x"):
        with pytest.raises(argparse.ArgumentTypeError):
            door_spec(bad)
