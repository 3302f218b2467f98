"""Every request of the example scenario through the package gives the answer
that `tov eval` prints."""

import json

import pytest

from conftest import expected_answer, request_path, scenario_steps

STEPS = scenario_steps()


def test_the_scenario_has_every_kind():
    assert {step["kind"] for step in STEPS} == {
        "edit", "edit-before-resolution", "save", "save-before-resolution", "link", "options"}


@pytest.mark.parametrize("step", STEPS, ids=[step["name"] for step in STEPS])
def test_each_request_as_a_file(loaded, step):
    assert loaded.evaluate_file_raw(step["kind"], request_path(step)) == expected_answer(step)
    assert loaded.evaluate_file(step["kind"], str(request_path(step))) == json.loads(
        expected_answer(step))


@pytest.mark.parametrize("step", STEPS, ids=[step["name"] for step in STEPS])
def test_each_request_as_text_and_as_a_dict(loaded, step):
    text = request_path(step).read_text(encoding="utf-8")
    assert loaded.evaluate_raw(step["kind"], text) == expected_answer(step)
    assert loaded.evaluate_raw(step["kind"], text.encode("utf-8")) == expected_answer(step)
    assert loaded.evaluate(step["kind"], json.loads(text)) == json.loads(expected_answer(step))
