"""Reloads of `tov serve`: on SIGHUP and, with --watch, on a change of either
file; a reload whose documents do not load, or that runs out of memory,
keeps the generation before serving; under load through reloads no request
fails and no answer mixes two generations; the decision log is reopened."""

import json
import os
import resource
import shutil
import signal
import threading
import time

import pytest

from serving import (DATA_MODEL, EXAMPLES, RULES, SANITIZED, Server, run_tov)

REQUEST = EXAMPLES / "requests" / "edit-part-release-first-pass.json"
RULES_WITHOUT_LINKS = {key: value for key, value in json.loads(RULES.read_text()).items()
                       if key not in ("historyLinks", "manualLinks")}


@pytest.fixture
def documents(tmp_path):
    """The example documents in a folder of their own, which tests may change."""
    shutil.copy(RULES, tmp_path / "rules.json")
    shutil.copy(DATA_MODEL, tmp_path / "datamodel.json")
    return tmp_path


def answer_with(rules_file, data_model_file=DATA_MODEL, request=REQUEST):
    status, out, _ = run_tov("eval", "edit", "--rules", rules_file, "--dm", data_model_file,
                             request)
    assert status in (0, 1, 3)
    return out


def replace_file(path, text):
    """Writes a new file beside `path` and renames it into place, as deployments do."""
    fresh = path.with_name("." + path.name + ".new")
    fresh.write_text(text)
    os.replace(fresh, path)


def start(documents, *arguments):
    return Server(*arguments, rules=documents / "rules.json",
                  data_model=documents / "datamodel.json")


def test_sighup_loads_the_next_generation(documents):
    before = answer_with(RULES)
    with start(documents) as server:
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == before
        replace_file(documents / "rules.json", json.dumps(RULES_WITHOUT_LINKS))
        after = answer_with(documents / "rules.json")
        assert after != before
        server.send_signal(signal.SIGHUP)
        status = server.wait_for_status(lambda status: status["generation"] == 2)
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == after
        assert status["lastReload"]["outcome"] == "success"
        assert status["lastReload"]["message"] == "generation 2 serves, with %d rules" % (
            status["rulesLoaded"])
        assert status["rulesLoaded"] == 18
        assert status["documents"]["rules"]["loadedAt"] >= status["documents"]["rules"][
            "loadedAt"]
        server.wait_for_line(lambda line: line == "tov serve: reloaded (SIGHUP): generation 2 "
                             "serves, with 18 rules", 10)
        # A signal reloads even documents that did not change.
        server.send_signal(signal.SIGHUP)
        server.wait_for_status(lambda status: status["generation"] == 3)
        metrics = server.get("/metrics").body.decode()
        assert 'tov_reloads_total{outcome="success"} 2\n' in metrics
        assert "tov_generation 3\n" in metrics


def test_a_reload_that_does_not_load_keeps_the_generation_before(documents):
    before = answer_with(RULES)
    with start(documents) as server:
        broken = '{"transitions": {"Part": [{"attribute": "Status"}]}}'
        replace_file(documents / "rules.json", broken)
        status, checked, _ = run_tov("check", "--rules", documents / "rules.json", "--dm",
                                     documents / "datamodel.json")
        assert status == 1
        faults = [line for line in checked.decode().splitlines()
                  if not line.endswith("initialized DM info")]
        server.send_signal(signal.SIGHUP)
        status = server.wait_for_status(
            lambda status: status["lastReload"]["outcome"] == "failure")
        assert status["generation"] == 1
        assert status["lastReload"]["message"] == "\n".join(faults)
        assert status["documents"]["rules"]["sha256"] != ""
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == before
        assert server.get("/ready").status == 200
        assert 'tov_reloads_total{outcome="failure"} 1\n' in server.get("/metrics").body.decode()
        server.wait_for_line(lambda line: line == "tov serve: reload (SIGHUP) failed; generation "
                             "1 keeps serving:", 10)
        server.wait_for_line(lambda line: line == faults[0], 10)
        # A file that cannot be read fails the same way.
        (documents / "rules.json").unlink()
        server.send_signal(signal.SIGHUP)
        status = server.wait_for_status(
            lambda status: "cannot read" in status["lastReload"]["message"])
        assert status["generation"] == 1
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == before


def test_watch_reloads_on_rename_into_place_and_on_writes(documents):
    with start(documents, "--watch") as server:
        replace_file(documents / "rules.json", json.dumps(RULES_WITHOUT_LINKS))
        server.wait_for_status(lambda status: status["generation"] == 2)
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == answer_with(
            documents / "rules.json")
        # A file written in place.
        (documents / "rules.json").write_text(RULES.read_text())
        server.wait_for_status(lambda status: status["generation"] == 3)
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == answer_with(RULES)
        # Another file of the folder changes nothing; the data model does.
        (documents / "notes.txt").write_text("unrelated")
        data_model = json.loads(DATA_MODEL.read_text())
        data_model["OverwriteLabel"] = "Overwrite it"
        replace_file(documents / "datamodel.json", json.dumps(data_model))
        status = server.wait_for_status(lambda status: status["generation"] == 4)
        assert status["lastReload"]["outcome"] == "success"
        server.wait_for_line(lambda line: line.startswith(
            "tov serve: reloaded (a document changed): generation 4"), 10)


def test_watch_follows_a_kubernetes_config_map_swap(tmp_path):
    # The layout of a mounted ConfigMap: the files are links into "..data",
    # itself a link to a folder of the current version, swapped by a rename.
    for version, rules in (("v1", json.loads(RULES.read_text())), ("v2", RULES_WITHOUT_LINKS)):
        (tmp_path / version).mkdir()
        (tmp_path / version / "rules.json").write_text(json.dumps(rules))
        shutil.copy(DATA_MODEL, tmp_path / version / "datamodel.json")
    os.symlink("v1", tmp_path / "..data")
    for name in ("rules.json", "datamodel.json"):
        os.symlink(os.path.join("..data", name), tmp_path / name)
    with start(tmp_path, "--watch") as server:
        assert server.status()["generation"] == 1
        os.symlink("v2", tmp_path / "..data_tmp")
        os.replace(tmp_path / "..data_tmp", tmp_path / "..data")
        server.wait_for_status(lambda status: status["generation"] == 2)
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == answer_with(
            tmp_path / "v2" / "rules.json")


def test_under_load_through_reloads_no_request_fails_and_no_answer_mixes(documents):
    rules_a = RULES.read_text()
    rules_b = json.dumps(RULES_WITHOUT_LINKS)
    (documents / "b.json").write_text(rules_b)
    answer_a = answer_with(RULES)
    answer_b = answer_with(documents / "b.json")
    assert answer_a != answer_b
    line = json.dumps({"kind": "edit", "request": json.loads(REQUEST.read_text())}) + "\n"
    batch = (line * 50).encode()
    batch_a, batch_b = answer_a * 50, answer_b * 50

    failures = []
    seen = {"a": 0, "b": 0}
    lock = threading.Lock()
    done = threading.Event()

    def ask(server):
        connection = server.connection()
        try:
            for round_number in range(20000):  # bounded, whatever the machine's speed
                if done.is_set():
                    return
                try:
                    if round_number % 4 == 3:
                        answer = server.post("/v1/batch", batch, connection=connection,
                                             headers={"Content-Type": "application/x-ndjson"})
                        expected = {batch_a: "a", batch_b: "b"}
                    else:
                        answer = server.post("/v1/evaluate/edit", REQUEST.read_bytes(),
                                             connection=connection)
                        expected = {answer_a: "a", answer_b: "b"}
                    with lock:
                        if answer.status != 200 or answer.body not in expected:
                            failures.append(answer)
                        else:
                            seen[expected[answer.body]] += 1
                except Exception as error:  # every failure counts, whatever it is
                    with lock:
                        failures.append(error)
                    connection.close()
                    connection = server.connection()
        finally:
            connection.close()

    with start(documents, "--threads", "2") as server:
        clients = [threading.Thread(target=ask, args=(server,)) for _ in range(4)]
        for client in clients:
            client.start()
        try:
            for reload_number in range(8):
                replace_file(documents / "rules.json", rules_b if reload_number % 2 == 0 else rules_a)
                server.send_signal(signal.SIGHUP)
                server.wait_for_status(lambda status, n=reload_number: status["generation"] == n + 2)
                time.sleep(0.05)  # let answers of this generation come
        finally:
            done.set()
            for client in clients:
                client.join(timeout=120)
        assert not any(client.is_alive() for client in clients)
    assert failures == []
    assert seen["a"] > 0 and seen["b"] > 0


@pytest.mark.skipif(SANITIZED, reason="AddressSanitizer reserves more address space than a "
                    "limit on it leaves")
def test_a_reload_that_runs_out_of_memory_keeps_the_generation_before(documents):
    before = answer_with(RULES)
    # One arena for all threads, so that the limit below leaves room for
    # answers whatever thread asks.
    with Server("--threads", "1", rules=documents / "rules.json",
                data_model=documents / "datamodel.json",
                environment={"MALLOC_ARENA_MAX": "1"}) as server:
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == before
        size = 0
        with open("/proc/%d/status" % server.process.pid) as status:
            for line in status:
                if line.startswith("VmSize:"):
                    size = int(line.split()[1]) * 1024
        limit = size + (64 << 20)
        resource.prlimit(server.process.pid, resource.RLIMIT_AS, (limit, limit))
        # Rules whose text fits within the limit but whose load does not.
        rule = {"attribute": "attr", "fromValue": "v0", "toValue": ["v0", "v1"]}
        (documents / "rules.json").write_text(json.dumps(
            {"transitions": {"Type%d" % n: [rule] * 20 for n in range(12000)}}))
        assert (documents / "rules.json").stat().st_size < (48 << 20)
        server.send_signal(signal.SIGHUP)
        status = server.wait_for_status(
            lambda status: status["lastReload"]["outcome"] == "failure")
        assert "out of memory" in status["lastReload"]["message"].lower()
        assert status["generation"] == 1
        assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).body == before
        assert 'tov_reloads_total{outcome="failure"} 1\n' in server.get("/metrics").body.decode()


def test_sighup_reopens_the_decision_log(documents):
    log = documents / "decisions.jsonl"
    request = json.loads(REQUEST.read_text())
    with start(documents, "--decision-log", log) as server:
        for _ in range(2):
            assert server.post("/v1/evaluate/edit", REQUEST.read_bytes()).status == 200
        os.replace(log, documents / "decisions.jsonl.1")
        server.send_signal(signal.SIGHUP)
        server.wait_for_status(lambda status: status["generation"] == 2)
        assert server.post("/v1/evaluate/edit?format=structured",
                           REQUEST.read_bytes()).status == 200
    rotated = (documents / "decisions.jsonl.1").read_text().splitlines()
    fresh = log.read_text().splitlines()
    assert (len(rotated), len(fresh)) == (2, 1)
    entry = json.loads(fresh[0])
    assert entry["kind"] == "edit"
    assert entry["request"] == request
    assert entry["answer"] == json.loads(answer_with(RULES))
    assert entry["generation"] == 2
    assert 0 < entry["latencySeconds"] < 60
    assert entry["time"].endswith("Z")
    assert [json.loads(line)["generation"] for line in rotated] == [1, 1]


def test_a_decision_log_keeps_text_that_is_no_json_as_a_string(documents):
    log = documents / "decisions.jsonl"
    with start(documents, "--decision-log", log) as server:
        assert server.post("/v1/evaluate/options", b"not \xff json").status == 200
        lines = b'{"kind": "link", "request": {"ancestor": {}}}\nnot json\n'
        assert server.post("/v1/batch", lines, headers={"Content-Type": "application/jsonl"}
                           ).status == 200
    entries = [json.loads(line) for line in log.read_text(encoding="utf-8").splitlines()]
    assert [(entry["kind"], entry["request"]) for entry in entries] == [
        ("options", "not \ufffd json"), ("link", {"ancestor": {}})]
