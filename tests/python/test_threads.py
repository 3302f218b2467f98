"""One tov.Engine shared by many threads, as a threaded web application shares
it: evaluations from eight threads while a ninth reloads the documents, and a
close() that waits for calls in flight instead of freeing the engine under
them."""

import json
import threading

import tov

from conftest import EXAMPLES, request_path, scenario_steps

EVALUATING_THREADS = 8
RELOADS = 200
# Bounds each evaluating thread, whatever the speed of the build.
MAX_ROUNDS = 400
JOIN_SECONDS = 120


def rules_without_freeze_rules():
    rules = json.loads((EXAMPLES / "rules.json").read_text(encoding="utf-8"))
    del rules["transitionsFreeze"]
    return json.dumps(rules)


def requests():
    return [(step["kind"], request_path(step).read_text(encoding="utf-8"))
            for step in scenario_steps()]


def answers_under(rules, data_model):
    with tov.Engine() as engine:
        engine.load_datamodel(data_model)
        engine.load_rules(rules)
        return [engine.evaluate_raw(kind, text) for kind, text in requests()]


def test_every_answer_comes_wholly_from_one_rule_set_while_another_thread_reloads():
    rules_a = (EXAMPLES / "rules.json").read_text(encoding="utf-8")
    rules_b = rules_without_freeze_rules()
    data_model = (EXAMPLES / "datamodel.json").read_text(encoding="utf-8")
    expected_a = answers_under(rules_a, data_model)
    expected_b = answers_under(rules_b, data_model)
    assert expected_a != expected_b, "the two rule sets must answer some request differently"
    work = requests()

    with tov.Engine() as engine:
        engine.load_datamodel(data_model)
        engine.load_rules(rules_a)
        started = threading.Barrier(EVALUATING_THREADS + 1)
        reloading = threading.Event()
        reloading.set()
        failed_loads = []
        strange = []  # (request index, answer), from any thread
        errors = []

        def reload():
            started.wait()
            try:
                for i in range(RELOADS):
                    rules = rules_b if i % 2 == 0 else rules_a
                    if engine.load_rules(rules)["Result"] != "Success":
                        failed_loads.append(("rules", i))
                    if engine.load_datamodel(data_model)["Result"] != "Success":
                        failed_loads.append(("datamodel", i))
            finally:
                reloading.clear()

        def evaluate():
            started.wait()
            try:
                for _ in range(MAX_ROUNDS):
                    if not reloading.is_set():
                        return
                    for index, (kind, text) in enumerate(work):
                        answer = engine.evaluate_raw(kind, text)
                        if answer not in (expected_a[index], expected_b[index]):
                            strange.append((index, answer))
            except Exception as error:  # reported below, never lost in the thread
                errors.append(error)

        threads = [threading.Thread(target=evaluate) for _ in range(EVALUATING_THREADS)]
        threads.append(threading.Thread(target=reload))
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join(JOIN_SECONDS)
        assert not any(thread.is_alive() for thread in threads)
        assert errors == []
        assert failed_loads == []
        assert strange == []
        # The last load was of rule set A.
        assert [engine.evaluate_raw(kind, text) for kind, text in work] == expected_a


def test_close_waits_for_calls_in_flight_and_later_calls_are_refused():
    engine = tov.Engine()
    engine.load_datamodel_file(EXAMPLES / "datamodel.json")
    engine.load_rules_file(EXAMPLES / "rules.json")
    work = requests()
    outcomes = []

    def evaluate():
        try:
            for _ in range(200):
                for kind, text in work:
                    engine.evaluate_raw(kind, text)
        except ValueError as error:
            outcomes.append(str(error))
        else:
            outcomes.append("finished")

    threads = [threading.Thread(target=evaluate) for _ in range(4)]
    for thread in threads:
        thread.start()
    engine.close()
    for thread in threads:
        thread.join(JOIN_SECONDS)
    assert len(outcomes) == 4
    assert set(outcomes) <= {"the engine is closed", "finished"}
    try:
        engine.evaluate_raw("edit", work[0][1])
    except ValueError as error:
        assert str(error) == "the engine is closed"
    else:
        raise AssertionError("a closed engine answered")
