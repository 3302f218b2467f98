"""Shared by the tests of the Python package: the example scenario, and an
engine with its documents loaded. The package and the library come from the
environment (PYTHONPATH and TOV_LIBRARY, which ctest sets)."""

import json
from pathlib import Path

import pytest

import tov

SOURCE = Path(__file__).resolve().parents[2]
EXAMPLES = SOURCE / "examples"


def scenario_steps():
    with open(EXAMPLES / "scenario.json", encoding="utf-8") as scenario:
        return json.load(scenario)["steps"]


def expected_answer(step):
    """What `tov eval` prints for the step, without the closing line feed."""
    return (EXAMPLES / "expected" / (step["name"] + ".out")).read_text(encoding="utf-8").rstrip("\n")


def request_path(step):
    return EXAMPLES / "requests" / (step["name"] + ".json")


@pytest.fixture
def engine():
    with tov.Engine() as fresh:
        yield fresh


@pytest.fixture
def loaded(engine):
    assert engine.load_datamodel_file(EXAMPLES / "datamodel.json") == {
        "Result": "Success", "ResultComment": "Succesfully initialized DM info"}
    assert engine.load_rules_file(EXAMPLES / "rules.json") == {
        "Result": "Success", "ResultComment": "Successfully initialized TOV rules"}
    return engine
