"""The endpoints of `tov serve` and the limits of its HTTP layer: every status
code with its exact body and headers, keep-alive, pipelining, chunks,
Expect: 100-continue, sizes, timeouts and the connection limit."""

import hashlib
import json
import socket
import time

import pytest
from prometheus_client.parser import text_string_to_metric_families

from serving import (DATA_MODEL, EXAMPLES, RULES, SOURCE, Server, error_body, parse_response,
                     read_until_closed, run_tov)

EDIT = (EXAMPLES / "requests" / "edit-part-release-first-pass.json").read_bytes()
EDIT_ANSWER = (EXAMPLES / "expected" / "edit-part-release-first-pass.out").read_bytes()
APPROVED = (EXAMPLES / "requests" / "edit-part-release-family-clean.json").read_bytes()
APPROVED_ANSWER = (EXAMPLES / "expected" / "edit-part-release-family-clean.out").read_bytes()

# Every route with its method, as the OpenAPI document lists them.
ROUTES = [("POST", "/v1/evaluate/edit"), ("POST", "/v1/batch"), ("GET", "/v1/rules"),
          ("GET", "/v1/graph"), ("GET", "/v1/status"), ("GET", "/health"), ("GET", "/ready"),
          ("GET", "/metrics"), ("GET", "/openapi.json")]


@pytest.fixture(scope="module")
def server():
    with Server() as running:
        yield running


def post_head(path, length, extra=b""):
    return (b"POST " + path.encode() + b" HTTP/1.1\r\nHost: 127.0.0.1\r\n"
            b"Content-Type: application/json\r\nContent-Length: " + str(length).encode()
            + b"\r\n" + extra + b"\r\n")


def test_health_and_ready(server):
    answer = server.get("/health")
    assert (answer.status, answer.body) == (200, b'{"status":"serving"}\n')
    assert answer.header("Content-Type") == "application/json"
    answer = server.get("/ready")
    assert (answer.status, answer.body) == (200, b'{"status":"ready","generation":1}\n')


def test_status_tells_versions_documents_and_the_last_reload(server):
    status = server.status()
    _, version, _ = run_tov("--version")
    assert version.decode().strip() == "tov %s, library %s" % (status["programVersion"],
                                                               status["libraryVersion"])
    assert status["program"] == "tov"
    assert status["generation"] == 1
    assert status["rulesLoaded"] == 20
    for name, path in (("rules", RULES), ("datamodel", DATA_MODEL)):
        facts = status["documents"][name]
        assert facts["path"] == str(path)
        assert facts["sha256"] == hashlib.sha256(path.read_bytes()).hexdigest()
        assert facts["loadedAt"].endswith("Z") and facts["loadedAt"] >= status["startedAt"]
    assert status["lastReload"] == {"outcome": "none", "at": None, "message": ""}


def test_metrics_parse_and_count(tmp_path):
    with Server() as server:
        for _ in range(3):
            assert server.post("/v1/evaluate/edit", EDIT).body == EDIT_ANSWER
        assert server.post("/v1/evaluate/edit", APPROVED).body == APPROVED_ANSWER
        assert server.post("/v1/evaluate/link", b"{}").status == 200
        lines = b'{"kind": "options", "request": {}}\nnot json\n'
        assert server.post("/v1/batch", lines, headers={"Content-Type": "application/jsonl"}
                           ).status == 200
        assert server.get("/nowhere").status == 404
        answer = server.get("/metrics")
        assert answer.status == 200
        assert answer.header("Content-Type") == "text/plain; version=0.0.4; charset=utf-8"
        families = {family.name: family
                    for family in text_string_to_metric_families(answer.body.decode())}

    def value(family, **labels):
        for sample in families[family].samples:
            if all(sample.labels.get(k) == v for k, v in labels.items()) and \
                    len(sample.labels) == len(labels):
                return sample.value
        raise AssertionError("no sample %s %s" % (family, labels))

    requests = "tov_requests"  # the parser names a counter without _total
    assert value(requests, kind="edit", result="MissingData") == 3
    assert value(requests, kind="edit", result="Success") == 1
    assert value(requests, kind="edit", result="Failure") == 0
    assert value(requests, kind="link", result="Success") == 1  # the library approves {}
    assert value(requests, kind="options", result="Failure") == 1
    assert value(requests, kind="save", result="Success") == 0
    assert families["tov_request_duration_seconds"].type == "histogram"
    durations = [s for s in families["tov_request_duration_seconds"].samples
                 if s.labels.get("kind") == "edit"]
    count = [s.value for s in durations if s.name.endswith("_count")]
    infinite = [s.value for s in durations if s.labels.get("le") == "+Inf"]
    assert count == [4] and infinite == [4]
    buckets = [s.value for s in durations if s.name.endswith("_bucket")]
    assert buckets == sorted(buckets)
    assert [s.value for s in families["tov_request_duration_seconds"].samples
            if s.labels.get("kind") == "batch" and s.name.endswith("_count")] == [1]
    assert value("tov_requests_in_flight") == 0
    assert value("tov_reloads", outcome="success") == 0
    assert value("tov_reloads", outcome="failure") == 0
    assert value("tov_rules_loaded") == 20
    assert value("tov_generation") == 1
    assert value("tov_http_responses", code="200") == 6
    assert value("tov_http_responses", code="404") == 1


def test_the_served_openapi_document_is_the_committed_one(server):
    answer = server.get("/openapi.json")
    committed = (SOURCE / "schemas" / "tov-serve.openapi.json").read_bytes()
    assert (answer.status, answer.body) == (200, committed)
    assert answer.header("Content-Type") == "application/json"
    document = json.loads(committed)
    assert document["openapi"].startswith("3.")
    for method, path in ROUTES:
        listed = "/v1/evaluate/{kind}" if path.startswith("/v1/evaluate/") else path
        assert method.lower() in document["paths"][listed], path


def test_unknown_paths_and_kinds_are_404(server):
    answer = server.get("/v2/everything")
    assert (answer.status, answer.body) == (
        404, error_body('no route for "/v2/everything"; /openapi.json lists the routes'))
    for kind in ("rules", "datamodel", "Edit", "edit/more", ""):
        answer = server.post("/v1/evaluate/" + kind, "{}")
        assert (answer.status, answer.body) == (404, error_body(
            'unknown request kind "%s"; expected edit, edit-before-resolution, save, '
            'save-before-resolution, link or options' % kind)), kind


@pytest.mark.parametrize("method,path", ROUTES)
def test_a_wrong_method_is_405_with_allow(server, method, path):
    wrong = "GET" if method == "POST" else "POST"
    for other in (wrong, "PUT", "DELETE", "OPTIONS", "HEAD"):
        answer = server.request(other, path, body=b"{}" if other != "HEAD" else None,
                                headers={"Content-Type": "application/json"})
        assert answer.status == 405, (other, path)
        assert answer.header("Allow") == method
        if other != "HEAD":
            assert answer.body == error_body("method %s is not allowed here; use %s"
                                             % (other, method))


def test_no_answer_carries_access_control_allow_origin(server):
    for method, path in ROUTES + [("OPTIONS", "/v1/batch"), ("GET", "/x")]:
        answer = server.request(method, path, headers={
            "Origin": "http://127.0.0.1:%d" % server.port, "Access-Control-Request-Method": "POST"})
        assert answer.header("Access-Control-Allow-Origin") is None


def test_a_declared_length_over_the_limit_is_refused_before_the_body_is_read():
    with Server("--max-body-size", "1KiB") as server:
        # The head alone: the server answers without waiting for the body.
        with socket.create_connection(("127.0.0.1", server.port), timeout=30) as raw:
            raw.sendall(post_head("/v1/evaluate/edit", 10 ** 12))
            status, headers, body = parse_response(read_until_closed(raw))
        assert (status, body) == (413, error_body(
            "the request's body of 1000000000000 bytes is larger than the limit of 1024 bytes"))
        assert headers["connection"] == "close"
        # Just within the limit, the same request is answered.
        within = b'{"objectType": "Part"}'.ljust(1024, b" ")
        assert server.post("/v1/evaluate/edit", within).status == 200
        answer = server.post("/v1/batch", b"\n" * 1025,
                             headers={"Content-Type": "application/jsonl"})
        assert answer.status == 413


def test_a_chunked_body_over_the_limit_is_refused():
    with Server("--max-body-size", "1KiB") as server:
        chunk = b"x" * 800
        data = (b"POST /v1/batch HTTP/1.1\r\nHost: localhost\r\nContent-Type: application/jsonl\r\n"
                b"Transfer-Encoding: chunked\r\n\r\n" + b"320\r\n" + chunk + b"\r\n"
                + b"320\r\n" + chunk + b"\r\n0\r\n\r\n")
        status, _, body = parse_response(server.raw(data))
        assert (status, body) == (413, error_body(
            "the request's body is larger than the limit of 1024 bytes"))


def test_a_head_over_the_limit_is_431():
    with Server("--max-header-size", "2KiB") as server:
        data = (b"GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\nX-Filler: " + b"a" * 3000
                + b"\r\n\r\n")
        status, headers, body = parse_response(server.raw(data))
        assert (status, body) == (431, error_body("the request's head is larger than 2048 bytes"))
        assert headers["connection"] == "close"
        assert server.get("/health", headers={"X-Filler": "a" * 1500}).status == 200


def test_what_is_no_http_is_400(server):
    status, headers, body = parse_response(server.raw(b"HELLO THERE\r\n\r\n"))
    assert (status, body) == (400, error_body("malformed request: bad target"))
    assert headers["connection"] == "close"


def test_a_kept_alive_connection_answers_again_and_again(server):
    connection = server.connection()
    try:
        for _ in range(5):
            assert server.post("/v1/evaluate/edit", EDIT, connection=connection).body == EDIT_ANSWER
            assert server.get("/health", connection=connection).status == 200
    finally:
        connection.close()


def test_pipelined_requests_are_answered_in_order(server):
    one = post_head("/v1/evaluate/edit", len(EDIT)) + EDIT
    two = post_head("/v1/evaluate/edit", len(APPROVED)) + APPROVED
    close = b"GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n\r\n"
    received = server.raw(one + two + close)
    assert received.count(b"HTTP/1.1 200 OK") == 3
    assert received.index(EDIT_ANSWER) < received.index(APPROVED_ANSWER) < received.index(
        b'{"status":"serving"}')


def test_a_long_batch_goes_out_in_chunks(server):
    lines = (EXAMPLES / "requests.jsonl").read_bytes() * 100
    data = (b"POST /v1/batch HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n"
            b"Content-Type: application/x-ndjson\r\nContent-Length: " + str(len(lines)).encode()
            + b"\r\n\r\n" + lines)
    head, _, chunked = server.raw(data).partition(b"\r\n\r\n")
    assert b"Transfer-Encoding: chunked" in head
    body = b""
    pieces = 0
    while True:
        size_line, _, chunked = chunked.partition(b"\r\n")
        size = int(size_line, 16)
        if size == 0:
            break
        body += chunked[:size]
        chunked = chunked[size + 2:]
        pieces += 1
    assert pieces > 3
    assert body.count(b"\n") == lines.count(b"\n")


def test_an_http_1_0_batch_comes_whole(server):
    lines = (EXAMPLES / "requests.jsonl").read_bytes()
    data = (b"POST /v1/batch HTTP/1.0\r\nHost: 127.0.0.1\r\nContent-Type: application/jsonl\r\n"
            b"Content-Length: " + str(len(lines)).encode() + b"\r\n\r\n" + lines)
    status, headers, body = parse_response(server.raw(data))
    assert status == 200
    assert int(headers["content-length"]) == len(body)
    assert body.count(b"\n") == lines.count(b"\n")


def test_expect_100_continue_is_answered_before_the_body(server):
    with socket.create_connection(("127.0.0.1", server.port), timeout=30) as raw:
        raw.sendall(post_head("/v1/evaluate/edit", len(EDIT), b"Expect: 100-continue\r\n"))
        assert raw.recv(1024) == b"HTTP/1.1 100 Continue\r\n\r\n"
        raw.sendall(EDIT)
        received = b""
        while not received.endswith(EDIT_ANSWER):
            chunk = raw.recv(65536)
            assert chunk, received
            received += chunk
        assert received.startswith(b"HTTP/1.1 200 OK\r\n")


def test_connections_over_the_limit_are_503_and_others_go_on():
    with Server("--max-connections", "2") as server:
        first = server.connection()
        second = server.connection()
        try:
            assert server.get("/health", connection=first).status == 200
            assert server.get("/health", connection=second).status == 200
            status, headers, body = parse_response(server.raw(b""))
            assert (status, body) == (503, error_body("too many connections; try again later"))
            assert headers["connection"] == "close"
            assert server.get("/health", connection=first).status == 200
        finally:
            first.close()
            second.close()
        # Once they are gone, new connections are taken again.
        deadline = time.monotonic() + 30
        while server.get("/health").status != 200:
            assert time.monotonic() < deadline


def test_an_idle_connection_is_closed_after_the_idle_timeout():
    with Server("--idle-timeout", "0.3") as server:
        with socket.create_connection(("127.0.0.1", server.port), timeout=30) as raw:
            raw.sendall(b"GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n")
            received = read_until_closed(raw)
        assert received.startswith(b"HTTP/1.1 200 OK")
        assert received.endswith(b'{"status":"serving"}\n')


def test_a_client_too_slow_to_send_its_request_is_cut_off_and_others_are_answered():
    with Server("--read-timeout", "0.5") as server:
        with socket.create_connection(("127.0.0.1", server.port), timeout=30) as slow:
            slow.sendall(b"POST /v1/evaluate/edit HTTP/1.1\r\nHost: 127.0.0.1\r\n")
            for _ in range(5):
                assert server.post("/v1/evaluate/edit", EDIT).body == EDIT_ANSWER
            # Nothing more comes; the server gives up on it without an answer.
            assert read_until_closed(slow) == b""
