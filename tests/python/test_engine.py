"""The Engine class: its life, its misuse, where it logs, and threads."""

import threading

import pytest

import tov
from conftest import EXAMPLES, expected_answer, request_path, scenario_steps

KINDS = ("expected rules, datamodel, edit, edit-before-resolution, save, "
         "save-before-resolution, link or options")
RELEASE = {"objectType": "Part", "initialAttributes": {"Number": "P-1", "Status": "In Review"},
           "targetAttributes": {"Status": "Released"}}
UNINITIALIZED = {"Result": "Failure", "ResultComment": "Uninitialized TOV rules"}


def test_version_is_the_librarys():
    assert tov.version() == "1.1"


def test_the_package_version_is_the_librarys():
    pyproject = (EXAMPLES.parent / "python" / "pyproject.toml").read_text(encoding="utf-8")
    assert 'version = "' + tov.version() + '.' in pyproject


def test_a_new_engine_has_nothing_loaded(engine):
    assert engine.evaluate("edit", RELEASE) == UNINITIALIZED


def test_documents_load_from_dicts_and_text(engine):
    datamodel = (EXAMPLES / "datamodel.json").read_text(encoding="utf-8")
    assert engine.load_datamodel(datamodel) == {
        "Result": "Success", "ResultComment": "Succesfully initialized DM info"}
    assert engine.load_rules({"transitions": {"Part": [
        {"attribute": "Status", "fromValue": "In Review", "toValue": ["In Work"]}]}}) == {
        "Result": "Success", "ResultComment": "Successfully initialized TOV rules"}
    assert engine.evaluate("edit", RELEASE)["ResultComment"].startswith(
        "Transition violation detected: For Part: Status can transition from \"In Review\"")


def test_a_failed_load_leaves_no_rules(loaded):
    assert loaded.load_rules("") == {"Result": "Failure", "ResultComment": "Insufficient input data"}
    assert loaded.evaluate("edit", RELEASE) == UNINITIALIZED


def test_an_unknown_kind_gets_a_failure_answer(engine):
    assert engine.evaluate("Edit", RELEASE) == {
        "Result": "Failure", "ResultComment": 'Unknown request kind "Edit": ' + KINDS}


def test_an_unreadable_file_gets_the_librarys_answer(engine, tmp_path):
    assert engine.load_rules_file(tmp_path / "missing.json") == {
        "Result": "Failure", "ResultComment": "Json has fundamental parsing error"}


def test_text_that_is_no_json_object_gets_the_librarys_answer(loaded):
    assert loaded.evaluate_raw("options", "[1, 2]") == (
        '{"Result":"Failure","ResultComment":"Json has fundamental parsing error"}')


def test_a_nul_character_cannot_cross(engine):
    with pytest.raises(ValueError, match="NUL"):
        engine.evaluate("edit", '{"objectType": "Pa\0rt"}')
    with pytest.raises(ValueError, match="NUL"):
        engine.evaluate("ed\0it", RELEASE)


def test_a_closed_engine_refuses_calls():
    with tov.Engine() as engine:
        pass
    with pytest.raises(ValueError, match="the engine is closed"):
        engine.evaluate("edit", RELEASE)
    engine.close()  # a second close does nothing


def test_engines_share_nothing(loaded):
    with tov.Engine() as other:
        assert other.evaluate("edit", RELEASE) == UNINITIALIZED
    assert loaded.evaluate("edit", RELEASE) != UNINITIALIZED


def test_logs_to_a_folder_it_creates(tmp_path):
    folder = tmp_path / "logs" / "today"
    with tov.Engine(log=str(folder)) as engine:
        engine.evaluate("edit", RELEASE)
    files = list(folder.iterdir())
    assert [path.name.startswith("\\TOV_Log_") for path in files] == [True]
    log = files[0].read_text(encoding="utf-8")
    assert 'Evaluating Edit attempt result="{"Result":"Failure","ResultComment":' \
           '"Uninitialized TOV rules"}"' in log


def test_logs_to_the_console(capfd):
    with tov.Engine(log="console") as engine:
        engine.evaluate("edit", RELEASE)
        engine.set_log("off")
        engine.evaluate("options", RELEASE)
    printed = capfd.readouterr().out
    assert "Evaluating Edit attempt input=" in printed
    assert "Requesting proper conflict resolutions options" not in printed


def test_a_file_is_no_log_folder(tmp_path):
    plain = tmp_path / "plain"
    plain.write_text("not a folder")
    with pytest.raises(OSError, match="cannot log to folder"):
        tov.Engine(log=str(plain))


def test_engines_on_threads_answer_alike():
    steps = scenario_steps()
    wrong = []

    def work():
        with tov.Engine() as engine:
            engine.load_datamodel_file(EXAMPLES / "datamodel.json")
            engine.load_rules_file(EXAMPLES / "rules.json")
            for _ in range(3):
                for step in steps:
                    if engine.evaluate_file_raw(step["kind"], request_path(step)) != \
                            expected_answer(step):
                        wrong.append(step["name"])

    threads = [threading.Thread(target=work) for _ in range(6)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert wrong == []


def test_a_traced_evaluation_answers_alike_and_tells_the_rules_that_judged(loaded):
    request = (EXAMPLES / "requests" / "edit-released-part-description-frozen.json").read_text(
        encoding="utf-8")
    traced = loaded.evaluate("edit", request, trace=True)
    assert isinstance(traced, tov.TracedAnswer)
    assert traced.answer == loaded.evaluate("edit", request)
    assert traced.trace == [{
        "section": "transitionsFreeze", "number": 1,
        "rule": 'For Part: When Status equals "Released", then Description must remain unchanged.',
        "outcome": "objected", "decisive": True}]


def test_a_traced_load_or_refusal_before_judging_has_an_empty_trace(engine):
    request = {"objectType": "Part", "initialAttributes": {"Status": "In Work"},
               "targetAttributes": {"Status": "In Review"}}
    assert engine.evaluate("edit", request, trace=True) == (
        {"Result": "Failure", "ResultComment": "Uninitialized TOV rules"}, [])
    assert engine.evaluate("rules", "{}", trace=True).trace == []
