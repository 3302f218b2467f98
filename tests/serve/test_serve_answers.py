"""What `tov serve` answers equals, byte for byte, what the program prints for
the same documents: eval for every example request, batch for JSON Lines,
explain --format json for /v1/rules, graph for /v1/graph."""

import json

import pytest

from serving import DATA_MODEL, EXAMPLES, RULES, Server, error_body, run_tov

STEPS = json.loads((EXAMPLES / "scenario.json").read_text(encoding="utf-8"))["steps"]
DOCUMENTS = ("--rules", RULES, "--dm", DATA_MODEL)


@pytest.fixture(scope="module")
def server():
    with Server() as running:
        yield running


def eval_output(kind, request_file, *options):
    status, out, _ = run_tov("eval", kind, *DOCUMENTS, *options, request_file)
    assert status in (0, 1, 3)
    return out


@pytest.mark.parametrize("step", STEPS, ids=[step["name"] for step in STEPS])
def test_every_example_request_is_answered_as_eval_prints_it(server, step):
    request_file = EXAMPLES / "requests" / (step["name"] + ".json")
    body = request_file.read_bytes()
    answer = server.post("/v1/evaluate/" + step["kind"], body)
    assert answer.status == 200
    assert answer.header("Content-Type") == "application/json"
    assert answer.body == eval_output(step["kind"], request_file)
    structured = server.post("/v1/evaluate/" + step["kind"] + "?format=structured", body)
    assert structured.status == 200
    assert structured.body == eval_output(step["kind"], request_file, "--format", "json")


@pytest.mark.parametrize("text", [b"", b"no json", b"[1, 2]", b'{"objectType": 3}',
                                  b"\xff\xfe\x00 binary"])
def test_a_body_that_is_no_request_is_the_librarys_to_answer(server, tmp_path, text):
    request_file = tmp_path / "request.json"
    request_file.write_bytes(text)
    for kind in ("edit", "link", "options"):
        answer = server.post("/v1/evaluate/" + kind, text)
        assert answer.status == 200
        assert answer.body == eval_output(kind, request_file)


def test_a_charset_beside_the_json_type_is_fine(server):
    request_file = EXAMPLES / "requests" / (STEPS[0]["name"] + ".json")
    answer = server.post("/v1/evaluate/" + STEPS[0]["kind"], request_file.read_bytes(),
                         headers={"Content-Type": "Application/JSON; charset=utf-8"})
    assert answer.status == 200
    assert answer.body == eval_output(STEPS[0]["kind"], request_file)


def batch_output(requests_file, *options):
    status, out, _ = run_tov("batch", *DOCUMENTS, "--jobs", 1, *options, requests_file)
    assert status in (0, 1)
    return out


# Lines of every sort that tov batch reads: requests, a byte order mark, CRLF
# ends, an empty line, text that is no JSON, no object, unknown or missing
# kinds, a request that is no object, an id, and a last line without a line end.
AWKWARD_LINES = (
    b'\xef\xbb\xbf{"kind": "edit", "request": {"objectType": "Part"}, "id": 7}\r\n'
    b"\n"
    b"not json\n"
    b"[1]\n"
    b'{"kind": "nope", "request": {}}\n'
    b'{"request": {}}\n'
    b'{"kind": "rules", "request": {}}\n'
    b'{"kind": "edit", "request": "text", "id": "x"}\n'
    b'   \t \r\n'
    b'{"kind": "options", "request": {"objectType": "Drawing", "initialAttributes": '
    b'{"Status": "Released"}, "targetAttributes": {"Status": "In Work"}}, "id": [1, {"a": 2}]}'
)


@pytest.mark.parametrize("content_type", ["application/x-ndjson", "application/jsonl",
                                          "application/json"])
def test_batch_answers_the_example_lines_as_batch_prints_them(server, content_type):
    requests_file = EXAMPLES / "requests.jsonl"
    answer = server.post("/v1/batch", requests_file.read_bytes(),
                         headers={"Content-Type": content_type})
    assert answer.status == 200
    assert answer.header("Content-Type") == "application/x-ndjson"
    assert answer.header("Transfer-Encoding") == "chunked"
    assert answer.body == batch_output(requests_file)


@pytest.mark.parametrize("query,options", [("", ()), ("?format=structured", ("--format", "json"))])
def test_batch_answers_awkward_lines_as_batch_prints_them(server, tmp_path, query, options):
    requests_file = tmp_path / "requests.jsonl"
    requests_file.write_bytes(AWKWARD_LINES)
    answer = server.post("/v1/batch" + query, AWKWARD_LINES,
                         headers={"Content-Type": "application/x-ndjson"})
    assert answer.status == 200
    expected = batch_output(requests_file, *options)
    assert answer.body == expected
    assert expected.count(b"\n") == 10


def test_a_long_batch_comes_in_pieces_and_whole(server, tmp_path):
    # Far more than one piece of answers, so that the answer is sent in several chunks.
    lines = (EXAMPLES / "requests.jsonl").read_bytes() * 100
    requests_file = tmp_path / "requests.jsonl"
    requests_file.write_bytes(lines)
    answer = server.post("/v1/batch", lines, headers={"Content-Type": "application/x-ndjson"})
    assert answer.status == 200
    assert answer.body == batch_output(requests_file)
    assert len(answer.body) > 3 * 65536


def test_an_empty_batch_has_an_empty_answer(server):
    answer = server.post("/v1/batch", b"", headers={"Content-Type": "application/x-ndjson"})
    assert (answer.status, answer.body) == (200, b"")


def test_rules_are_told_as_explain_tells_them_in_json(server):
    status, out, _ = run_tov("explain", *DOCUMENTS, "--format", "json")
    assert status == 0
    answer = server.get("/v1/rules")
    assert answer.status == 200
    assert answer.header("Content-Type") == "application/json"
    assert answer.body == out
    assert json.loads(out)["libraryItem"] == ["Datasheet", "Drawing"]


@pytest.mark.parametrize("object_type,attribute", [("Part", "Status"), ("Drawing", "Status"),
                                                   ("part", "Status")])
def test_graphs_are_drawn_as_graph_draws_them(server, object_type, attribute):
    query = "/v1/graph?type=%s&attribute=%s" % (object_type, attribute)
    status, dot, _ = run_tov("graph", *DOCUMENTS, "--type", object_type, "--attribute", attribute)
    assert status == 0
    answer = server.get(query)
    assert (answer.status, answer.body) == (200, dot)
    assert answer.header("Content-Type") == "text/vnd.graphviz; charset=utf-8"
    status, mermaid, _ = run_tov("graph", *DOCUMENTS, "--type", object_type, "--attribute",
                                 attribute, "--format", "mermaid")
    assert status == 0
    answer = server.get(query + "&format=mermaid")
    assert (answer.status, answer.body) == (200, mermaid)
    assert answer.header("Content-Type") == "text/plain; charset=utf-8"


def test_a_graph_parameter_may_be_encoded(server):
    status, dot, _ = run_tov("graph", *DOCUMENTS, "--type", "Part", "--attribute", "Status")
    assert status == 0
    assert server.get("/v1/graph?attribute=St%61tus&type=Par%74").body == dot


def test_graph_refusals(server):
    needs = error_body("a graph needs the parameters type and attribute, such as "
                       "/v1/graph?type=Part&attribute=Status")
    for query in ("", "?type=Part", "?attribute=Status", "?type=&attribute=Status"):
        answer = server.get("/v1/graph" + query)
        assert (answer.status, answer.body) == (400, needs), query
    answer = server.get("/v1/graph?type=Part&attribute=Status&format=svg")
    assert (answer.status, answer.body) == (
        400, error_body('format "svg" is unknown; ask for dot (the default) or mermaid'))
    answer = server.get("/v1/graph?type=Bolt&attribute=Status")
    assert (answer.status, answer.body) == (
        404, error_body("the data model %s describes no object type Bolt" % DATA_MODEL))
    answer = server.get("/v1/graph?type=Part&attribute=Colour")
    assert (answer.status, answer.body) == (
        404, error_body("%s has no transition rule of Colour for Part" % RULES))


def test_an_unknown_format_of_an_answer_is_refused(server):
    expected = error_body('format "text" is unknown; leave it out, or ask for '
                          "format=structured")
    answer = server.post("/v1/evaluate/edit?format=text", "{}")
    assert (answer.status, answer.body) == (400, expected)
    answer = server.post("/v1/batch?format=text", "", headers={"Content-Type": "application/jsonl"})
    assert (answer.status, answer.body) == (400, expected)
