"""`tov workbench` as a command: what it tells at its start, the documents it
starts from, --open, --write and the stop."""

import os
import shutil
import signal
import stat
import time

import pytest

from benching import EXAMPLES, TOV, Workbench, example_documents, run_tov


def test_the_start_tells_where_and_what(tmp_path):
    rules = tmp_path / "rules.json"
    data_model = tmp_path / "datamodel.json"
    rules.write_text(example_documents()["rules"])
    data_model.write_text(example_documents()["datamodel"])
    with Workbench("--rules", rules, "--dm", data_model) as bench:
        assert bench.stderr.lines[:2] == [
            "tov workbench: listening on " + bench.url,
            "tov workbench: editing %s and %s, never saved by the program" % (rules, data_model)]
        started = bench.get("/api/documents").json()
        assert started["rules"]["name"] == str(rules)
        # The examples are offered whatever the documents.
        assert len(started["examples"]) == 25
    assert bench.exit_status == 0
    assert bench.stderr.lines[-2:] == ["tov workbench: stopped", None]


@pytest.mark.parametrize("number", [signal.SIGTERM, signal.SIGINT])
def test_it_stops_on_sigterm_and_sigint(number):
    bench = Workbench()
    assert bench.stop(number) == 0
    assert "tov workbench: stopped" in bench.stderr.lines


def test_the_installed_examples_come_before_the_source_trees(tmp_path):
    program = tmp_path / "bin" / "tov"
    program.parent.mkdir()
    shutil.copy(TOV, program)
    installed = tmp_path / "share" / "tov" / "examples"
    (installed / "requests").mkdir(parents=True)
    for name in ("rules.json", "datamodel.json", "scenario.json", "tests.json"):
        shutil.copy(EXAMPLES / name, installed / name)
    for request in (EXAMPLES / "requests").iterdir():
        shutil.copy(request, installed / "requests" / request.name)
    (installed / "rules.json").write_text((EXAMPLES / "rules.json").read_text() + "\n")
    suite = (EXAMPLES / "tests.json").read_text()
    (installed / "tests.json").write_text(suite.replace('"edit-part-release-first-pass"',
                                                        '"installed first pass"', 1))
    with Workbench(program=program) as bench:
        assert bench.stderr.lines[1] == (
            "tov workbench: editing %s and %s, never saved by the program"
            % (installed / "rules.json", installed / "datamodel.json"))
        started = bench.get("/api/documents").json()
        assert started["rules"]["text"] == (installed / "rules.json").read_text()
        assert started["rules"]["name"] == "examples/rules.json"
        assert started["suite"]["name"] == "examples/tests.json"
        assert '"name":"installed first pass"' in started["suite"]["text"]


def test_documents_that_do_not_load_are_opened_all_the_same(tmp_path):
    rules = tmp_path / "rules.json"
    rules.write_text('{"transitions": ')
    with Workbench("--rules", rules, "--dm", EXAMPLES / "datamodel.json") as bench:
        started = bench.get("/api/documents").json()
        assert started["rules"]["text"] == '{"transitions": '
        checked = bench.post("/api/check", {"rules": started["rules"]["text"],
                                            "datamodel": started["datamodel"]["text"]}).json()
        assert checked["loaded"] is False


def test_documents_that_cannot_be_read_end_the_start(tmp_path):
    status, output, errors = run_tov("workbench", "--rules", tmp_path / "missing.json")
    assert (status, output) == (2, "")
    assert errors == "tov: cannot read rules document %s: No such file or directory\n" % (
        tmp_path / "missing.json")
    status, _, errors = run_tov("workbench", "--rules", tmp_path)
    assert status == 2
    assert errors.startswith("tov: ")


def test_write_needs_both_documents():
    status, output, errors = run_tov("workbench", "--write", "--rules", EXAMPLES / "rules.json")
    assert (status, output) == (2, "")
    assert errors == "tov: --write saves to the documents given: name both with --rules and --dm\n"


def test_an_address_that_cannot_be_had_ends_the_start():
    status, _, errors = run_tov("workbench", "--listen", "127.0.0.1:99999")
    assert status == 2
    assert errors.startswith("tov: ")
    with Workbench() as bench:
        status, _, errors = run_tov("workbench", "--listen", "127.0.0.1:%d" % bench.port)
        assert status == 2
        assert errors.startswith("tov: ")


def test_write_saves_to_the_paths_given_once_they_load(tmp_path):
    rules = tmp_path / "rules.json"
    data_model = tmp_path / "datamodel.json"
    documents = example_documents()
    rules.write_text(documents["rules"])
    data_model.write_text(documents["datamodel"])
    os.chmod(rules, 0o640)
    link = tmp_path / "link.json"
    link.symlink_to(data_model)
    with Workbench("--write", "--rules", rules, "--dm", link) as bench:
        assert bench.stderr.lines[1].endswith(", saved back on request")
        assert bench.get("/api/documents").json()["write"] is True
        edited = {"rules": documents["rules"] + "\n\n", "datamodel": documents["datamodel"] + " "}
        answer = bench.post("/api/save", edited)
        assert answer.status == 200
        assert answer.json() == {"saved": [str(rules), str(link)]}
        assert rules.read_text() == edited["rules"]
        assert data_model.read_text() == edited["datamodel"]
        assert link.is_symlink()
        assert stat.S_IMODE(rules.stat().st_mode) == 0o640
        # The page opened again starts from what was saved.
        assert bench.get("/api/documents").json()["rules"]["text"] == edited["rules"]
        refused = bench.post("/api/save", dict(edited, rules="{"))
        assert refused.status == 422
        assert rules.read_text() == edited["rules"]
    assert sorted(p.name for p in tmp_path.iterdir()) == ["datamodel.json", "link.json",
                                                           "rules.json"]


def fake_opener(folder, name="xdg-open"):
    """An opener that writes the address it was given into a file."""
    seen = folder / "opened"
    opener = folder / name
    opener.write_text('#!/bin/sh\nprintf "%%s\\n" "$*" > "%s"\n' % seen)
    opener.chmod(0o755)
    return seen


def test_open_hands_the_page_with_its_token_to_xdg_open(tmp_path):
    seen = fake_opener(tmp_path)
    path = "%s:%s" % (tmp_path, os.environ.get("PATH", ""))
    with Workbench("--open", environment={"PATH": path}) as bench:
        # The opener runs on its own, a moment later.
        deadline = time.monotonic() + 60
        while not (seen.exists() and seen.read_text().endswith("\n")):
            assert time.monotonic() < deadline, "the opener never ran"
            time.sleep(0.05)
        assert seen.read_text() == bench.page + "\n"


def test_open_without_xdg_open_tells_what_to_do(tmp_path):
    with Workbench("--open", environment={"PATH": str(tmp_path)}) as bench:
        line = bench.stderr.wait_for(lambda text: "xdg-open" in text, 60)
        assert line == ("tov workbench: xdg-open is not installed; open the address on standard "
                        "output in a browser")


def test_help_tells_the_options():
    status, output, _ = run_tov("workbench", "--help")
    assert status == 0
    for option in ("--rules", "--dm", "--suite", "--listen", "--open", "--write", "--no-token",
                   "--allow-host", "--max-body-size", "--log"):
        assert option in output
    status, output, _ = run_tov("--help")
    assert "workbench" in output


def test_a_suite_of_ones_own(tmp_path):
    suite = tmp_path / "suite.json"
    request = tmp_path / "request.json"
    request.write_text('{"objectType": "Part", "initialAttributes": {}, "targetAttributes": {}}')
    suite.write_text('{"rules": "x", "datamodel": "y", "cases": [{"name": "new part", '
                     '"kind": "edit", "requestFile": "request.json", "expect": {}}]}')
    with Workbench("--suite", suite) as bench:
        started = bench.get("/api/documents").json()
        assert started["suite"] == {
            "name": str(suite),
            "text": '{"cases":[{"name":"new part","kind":"edit","request":{"objectType": "Part", '
                    '"initialAttributes": {}, "targetAttributes": {}},"expect":{}}]}'}
