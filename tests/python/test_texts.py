"""The readers of the list and map texts inside an answer, on texts the way the
library writes them and on real answers. The Java package's TextsTest reads the
same texts to the same results."""

import pytest

import tov
from conftest import request_path, scenario_steps


@pytest.mark.parametrize("text, names", [
    ("", []),
    ("[]", []),
    ("[Revision]", ["Revision"]),
    ("[Iteration,Overwrite]", ["Iteration", "Overwrite"]),
    ("[In Work,In Review,Released]", ["In Work", "In Review", "Released"]),
    ("[", []),
    ("]", []),
    ("[a,,b]", ["a", "", "b"]),
    ("[,]", ["", ""]),
    ("[a,]", ["a", ""]),
    ("[]]", ["]"]),
    ("[[a]]", ["[a]"]),
    ("a,b", ["a", "b"]),
    (" [a] ", [" [a] "]),
    ("[a, b]", ["a", " b"]),
])
def test_lists(text, names):
    assert tov.parse_list(text) == names


@pytest.mark.parametrize("text, pairs", [
    ("", {}),
    ("{}", {}),
    ("{ReleaseDate:Reset}", {"ReleaseDate": "Reset"}),
    ("{Iteration:Next, ReleaseDate:Reset}", {"Iteration": "Next", "ReleaseDate": "Reset"}),
    ("{ReleaseDate:}", {"ReleaseDate": ""}),
    ("{Note:10:30}", {"Note": "10:30"}),
    ("{Note:one, two, Owner:me}", {"Note": "one, two", "Owner": "me"}),
    ("{[Iteration,Revision]:Next}", {"[Iteration,Revision]": "Next"}),
    ("{", {}),
    ("}", {}),
    ("{plain}", {"plain": ""}),
    ("{plain, more}", {"plain": ", more"}),
    ("{a:1, a:2}", {"a": "2"}),
    ("{a:1, b:2, a:3, tail}", {"a": "3, tail", "b": "2"}),
    ("{:x}", {"": "x"}),
    ("{a:1, , b:2}", {"a": "1, ", "b": "2"}),
    ("{a:1,b:2}", {"a": "1,b:2"}),
    ("a:1", {"a": "1"}),
    ("{{a:1}}", {"{a": "1}"}),
    ("{a:1, }", {"a": "1, "}),
])
def test_maps(text, pairs):
    read = tov.parse_map(text)
    assert read == pairs
    # The order of the pairs is kept too, first place of a repeated name included.
    assert list(read) == list(pairs)


def answer_of(engine, name):
    step = next(step for step in scenario_steps() if step["name"] == name)
    return engine.evaluate_file(step["kind"], request_path(step))


def test_options_of_real_answers(loaded):
    assert tov.selected_versioning_attributes(
        answer_of(loaded, "options-part-in-work-selection")) == ["Iteration", "Overwrite"]
    assert tov.selected_versioning_attributes(
        answer_of(loaded, "options-drawing-reopen-forced-spinup")) == ["Revision"]
    assert tov.selected_versioning_attributes(
        answer_of(loaded, "options-drawing-reopen-contradicting-resolutions")) == []


def test_triggers_of_real_answers(loaded):
    assert tov.trigger_initialization(
        answer_of(loaded, "edit-part-release-family-clean")) == {"ReleaseDate": "Reset"}
    assert tov.trigger_initialization(
        answer_of(loaded, "edit-part-material-abstract-trigger")) == {"Iteration": "Next"}
    assert tov.trigger_initialization(answer_of(loaded, "edit-assembly-release-all-clean")) == {}


def test_missing_sections_of_real_answers(loaded):
    assert tov.missing_sections(answer_of(loaded, "edit-part-release-first-pass")) == [
        "membersOfFamily"]
    assert tov.missing_sections(answer_of(loaded, "edit-assembly-release-first-pass")) == [
        "membersOfFamily", "manualLinkAncestors"]
    assert tov.missing_sections(answer_of(loaded, "edit-part-release-family-offending")) == []
    assert tov.missing_sections({"Result": "Success", "ObjectFamilyMembers": "MissingData"}) == []
