"""Every endpoint of `tov workbench` over real HTTP connections: the page and
its files, and each question with the answers the commands give, its
refusals, and bodies that must never bring the program down."""

import json

import pytest

from benching import (EXAMPLES, Workbench, error_body, example_documents, examples,
                      read_until_closed, run_tov)

PAGE_FILES = [
    ("/", "text/html; charset=utf-8"),
    ("/static/workbench.js", "text/javascript; charset=utf-8"),
    ("/static/workbench.css", "text/css; charset=utf-8"),
    ("/static/codemirror/codemirror.js", "text/javascript; charset=utf-8"),
    ("/static/codemirror/codemirror.css", "text/css; charset=utf-8"),
    ("/static/codemirror/javascript.js", "text/javascript; charset=utf-8"),
    ("/static/codemirror/matchbrackets.js", "text/javascript; charset=utf-8"),
]
POLICY = ("default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
          "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'")
CODEMIRROR = "/usr/share/javascript/codemirror"


@pytest.fixture(scope="module")
def bench():
    with Workbench() as running:
        yield running


def test_the_page_and_its_files(bench):
    page_folder = EXAMPLES.parent / "tools" / "workbench" / "page"
    sources = {"/": page_folder / "index.html",
               "/static/workbench.js": page_folder / "workbench.js",
               "/static/workbench.css": page_folder / "workbench.css",
               "/static/codemirror/codemirror.js": CODEMIRROR + "/lib/codemirror.js",
               "/static/codemirror/codemirror.css": CODEMIRROR + "/lib/codemirror.css",
               "/static/codemirror/javascript.js": CODEMIRROR + "/mode/javascript/javascript.js",
               "/static/codemirror/matchbrackets.js":
                   CODEMIRROR + "/addon/edit/matchbrackets.js"}
    for path, content_type in PAGE_FILES:
        answer = bench.get(path, token=False)
        assert answer.status == 200, path
        assert answer.header("Content-Type") == content_type
        assert answer.body == open(sources[path], "rb").read(), path
        assert answer.header("Content-Security-Policy") == POLICY
        assert answer.header("X-Content-Type-Options") == "nosniff"
        assert answer.header("Referrer-Policy") == "no-referrer"
        assert answer.header("X-Frame-Options") == "DENY"
        assert answer.header("Cache-Control") == "no-store"
        assert answer.header("Access-Control-Allow-Origin") is None


def test_the_documents_the_page_starts_from(bench):
    answer = bench.get("/api/documents")
    assert answer.status == 200
    assert answer.header("Content-Type") == "application/json"
    assert answer.header("Content-Security-Policy") == POLICY
    started = answer.json()
    assert started["rules"] == {"name": "examples/rules.json",
                                "text": (EXAMPLES / "rules.json").read_text()}
    assert started["datamodel"]["text"] == (EXAMPLES / "datamodel.json").read_text()
    assert started["write"] is False
    assert started["diagrams"] is None
    assert [kind["name"] for kind in started["kinds"]] == [
        "edit", "edit-before-resolution", "save", "save-before-resolution", "link", "options"]
    assert [(e["name"], e["kind"]) for e in started["examples"]] == examples()
    suite = json.loads(started["suite"]["text"])
    assert len(suite["cases"]) == 25
    assert all("requestFile" not in case for case in suite["cases"])


def test_check_tells_what_check_strict_tells_with_places(bench):
    documents = example_documents()
    documents["rules"] = documents["rules"].replace('"transitions"', '"transitionz"', 1)
    answer = bench.post("/api/check", documents)
    assert answer.status == 200
    checked = answer.json()
    assert checked["loaded"] is True
    assert checked["findings"][0] == {
        "document": "rules", "severity": "warning", "section": "transitionz",
        "message": 'transitionz: unknown section "transitionz" is ignored; did you mean '
                   '"transitions"?', "line": 2, "column": 3}
    # The same messages as the command, in the same order.
    status, output, _ = run_tov("check", "--strict", "--format", "json", "--rules",
                                EXAMPLES / "rules.json", "--dm", EXAMPLES / "datamodel.json")
    assert status == 1
    command = json.loads(output)
    answer = bench.post("/api/check", example_documents()).json()
    assert [f["message"] for f in answer["findings"]] == [
        f["message"] for f in command["faults"]]
    assert [d["comment"] for d in answer["documents"]] == [
        d["comment"] for d in command["documents"]]


def test_explain_answers_as_explain_does(bench):
    _, output, _ = run_tov("explain", "--format", "json", "--rules", EXAMPLES / "rules.json",
                           "--dm", EXAMPLES / "datamodel.json")
    answer = bench.post("/api/explain", example_documents())
    assert answer.status == 200
    assert answer.body.decode() == output


def test_graph_draws_what_graph_draws(bench):
    _, output, _ = run_tov("graph", "--rules", EXAMPLES / "rules.json", "--dm",
                           EXAMPLES / "datamodel.json", "--type", "Part", "--attribute", "Status")
    answer = bench.post("/api/graph", dict(example_documents(), type="Part", attribute="Status"))
    assert answer.status == 200
    drawn = answer.json()
    assert drawn["dot"] == output
    assert drawn["message"] is None
    assert drawn["svg"].startswith('<?xml version="1.0" encoding="UTF-8" standalone="no"?>')
    assert "<svg " in drawn["svg"] and drawn["svg"].rstrip().endswith("</svg>")
    for value in ("In Work", "In Review", "Released", "Obsolete", "Cancelled"):
        assert ">%s</text>" % value in drawn["svg"]


@pytest.mark.parametrize("name,kind", examples())
def test_every_example_is_answered_and_traced_as_eval_prints_it(bench, name, kind):
    request = (EXAMPLES / "requests" / (name + ".json")).read_text()
    answer = bench.post("/api/evaluate", dict(example_documents(), kind=kind, request=request))
    assert answer.status == 200
    evaluated = answer.json()
    assert evaluated["line"] + "\n" == (EXAMPLES / "expected" / (name + ".out")).read_text()
    status, output, _ = run_tov("eval", kind, "--trace", "--format", "json", "--rules",
                                EXAMPLES / "rules.json", "--dm", EXAMPLES / "datamodel.json",
                                EXAMPLES / "requests" / (name + ".json"))
    structured = json.loads(output)
    assert "trace" in structured
    assert {key: evaluated[key] for key in structured} == structured
    assert evaluated["verdict"] == {0: "approved", 1: "refused", 3: "needs more data"}[status]
    # The trace: the rules that decided are those whose words the comment holds.
    assert len(evaluated["tracePlaces"]) == len(evaluated["trace"])
    for step in evaluated["trace"]:
        assert set(step) == {"section", "number", "rule", "outcome", "decisive"}
        assert step["decisive"] == (step["rule"] in evaluated["comment"])


def test_the_example_suite_passes_as_tov_test_runs_it(bench):
    suite = bench.get("/api/documents").json()["suite"]["text"]
    answer = bench.post("/api/test", dict(example_documents(), suite=suite))
    assert answer.status == 200
    tested = answer.json()
    assert (tested["passed"], tested["failed"]) == (25, 0)
    _, output, _ = run_tov("test", "--format", "json", EXAMPLES / "tests.json")
    command = json.loads(output)
    assert [(c["name"], c["passed"], c["mismatches"]) for c in tested["cases"]] == [
        (c["name"], c["passed"], c["mismatches"]) for c in command["cases"]]


def test_a_suite_against_edited_documents_tells_the_differences(bench):
    suite = bench.get("/api/documents").json()["suite"]["text"]
    documents = example_documents()
    documents["rules"] = documents["rules"].replace('"Released", "Obsolete", "Cancelled"',
                                                    '"Released", "Cancelled"')
    tested = bench.post("/api/test", dict(documents, suite=suite)).json()
    assert tested["failed"] >= 1
    failing = [case for case in tested["cases"] if not case["passed"]]
    assert failing[0]["mismatches"][0]["keyword"] in ("Result", "ResultComment")


def test_documents_that_do_not_load_are_told_and_refused(bench):
    documents = dict(example_documents(), rules="{")
    checked = bench.post("/api/check", documents).json()
    assert checked["loaded"] is False
    assert checked["findings"][0]["message"] == "Json has fundamental parsing error"
    for path, extra in [("/api/explain", {}), ("/api/graph", {"type": "Part", "attribute": "x"}),
                        ("/api/evaluate", {"kind": "edit", "request": "{}"}),
                        ("/api/test", {"suite": '{"cases": []}'})]:
        answer = bench.post(path, dict(documents, **extra))
        assert (answer.status, answer.body) == (422, error_body(
            "the documents do not load, so nothing can be judged by them:\n%s: Json has "
            "fundamental parsing error" % "examples/rules.json")), path


def test_bodies_that_are_not_what_an_endpoint_takes_are_400(bench):
    takes = 'this endpoint takes "rules" and "datamodel", each a string'
    for sent, message in [
            (b"", "the body is no JSON: 1:1: The document is empty."),
            (b"[1]", "the body is a JSON array, not an object: " + takes),
            (b'{"rules": "{}"}', '"datamodel" is missing: ' + takes),
            (b'{"rules": 1, "datamodel": "{}"}', '"rules" is a JSON number, not a string: ' + takes),
            (b'{"rules": "", "datamodel": "", "x": ""}', 'unknown member "x": ' + takes)]:
        answer = bench.post("/api/check", sent)
        assert (answer.status, answer.body) == (400, error_body(message)), sent


def test_nothing_is_saved_without_write(bench):
    answer = bench.post("/api/save", example_documents())
    assert (answer.status, answer.body) == (403, error_body(
        "this workbench was started without --write, so it saves no file; download the "
        "documents instead"))


def test_a_body_over_the_limit_is_refused_before_it_is_read():
    with Workbench("--max-body-size", "1KiB") as small:
        answer = small.post("/api/check", example_documents())
        assert answer.status == 413
        assert small.post("/api/check", {"rules": "{}", "datamodel": "{}"}).status == 200


@pytest.mark.parametrize("text", [
    "[" * 200000 + "]" * 200000,
    '{"transitions": {"Part": [' + "{}," * 20000 + "{}]}}",
    "\u0000\ufffd\U0001f600 \\ud800",
    '{"transitions": {"Part": [{"attribute": "S", "fromValue": "a", "toValue": ["%s"]}]}}'
    % ("b" * 1000000),
])
def test_hostile_documents_are_answered_and_the_program_lives(bench, text):
    for path, extra in [("/api/check", {}), ("/api/explain", {}),
                        ("/api/graph", {"type": "Part", "attribute": "S"}),
                        ("/api/evaluate", {"kind": "edit", "request": text}),
                        ("/api/test", {"suite": text})]:
        for member in ("rules", "datamodel"):
            documents = dict(example_documents(), **extra)
            documents[member] = text
            answer = bench.post(path, documents)
            assert answer.status in (200, 422), (path, member, answer)
    assert bench.get("/api/documents").status == 200


def test_bytes_that_are_no_utf8_are_answered(bench):
    answer = bench.post("/api/check", b'{"rules": "\xff\xfe", "datamodel": "{}"}')
    assert answer.status in (200, 400)
    raw = bench.request("POST", "/api/evaluate", body=b"\x00" * 1000)
    assert raw.status == 400
    assert bench.get("/api/documents").status == 200
