"""How `tov serve` starts and stops: the listening line, documents or options
that keep it from starting (exit status 2), and the graceful stop on
SIGTERM and SIGINT, with requests in flight finishing within the grace."""

import json
import re
import signal
import socket
import subprocess

import pytest

from serving import (DATA_MODEL, EXAMPLES, RULES, START_SECONDS, TOV, Server,
                     child_environment, parse_response, read_until_closed, run_tov)

EDIT = (EXAMPLES / "requests" / "edit-part-release-first-pass.json").read_bytes()
EDIT_ANSWER = (EXAMPLES / "expected" / "edit-part-release-first-pass.out").read_bytes()


def serve_to_the_end(*arguments):
    """Runs a `tov serve` that is expected not to start: (status, stderr lines)."""
    completed = subprocess.run([TOV, "serve", *map(str, arguments)], capture_output=True,
                               timeout=START_SECONDS, env=child_environment(), check=False)
    return completed.returncode, completed.stderr.decode().splitlines()


def test_the_first_line_tells_where_it_listens_and_the_second_what_serves():
    with Server() as server:
        lines = server.stderr_text().splitlines()
        assert re.fullmatch(r"tov serve: listening on http://127\.0\.0\.1:\d+", lines[0])
        assert lines[1] == "tov serve: generation 1 serves, with 20 rules"
        assert server.port != 8480


def test_the_help_tells_the_default_address():
    status, out, _ = run_tov("serve", "--help")
    assert status == 0
    assert b"--listen HOST:PORT" in out and b"default 127.0.0.1:8480" in out


@pytest.mark.parametrize("broken,which", [
    ('{"transitions": {"Part": [{"attribute": "Status"}]}}', "rules"),
    ('{"transitions": ', "rules"),
    ("", "rules"),
    ('{"structureObjects": 3}', "datamodel"),
])
def test_documents_that_do_not_load_end_the_start_with_their_faults(tmp_path, broken, which):
    rules, data_model = tmp_path / "rules.json", tmp_path / "datamodel.json"
    rules.write_text(RULES.read_text() if which != "rules" else broken)
    data_model.write_text(DATA_MODEL.read_text() if which != "datamodel" else broken)
    _, checked, _ = run_tov("check", "--rules", rules, "--dm", data_model)
    faults = [line for line in checked.decode().splitlines()
              if not line.endswith("initialized DM info") and
              not line.endswith("Successfully initialized TOV rules")]
    assert faults
    status, lines = serve_to_the_end("--rules", rules, "--dm", data_model, "--listen",
                                     "127.0.0.1:0")
    assert status == 2
    assert re.fullmatch(r"tov serve: listening on http://127\.0\.0\.1:\d+", lines[0])
    assert lines[1:] == faults


def test_while_the_documents_load_it_lives_and_is_not_ready(tmp_path):
    # Rules enough that their load takes a while after the listening line.
    rule = {"attribute": "Status", "fromValue": "In Work", "toValue": ["In Work", "Released"]}
    rules = tmp_path / "rules.json"
    rules.write_text(json.dumps({"transitions": {"Type%d" % n: [rule] * 20
                                                 for n in range(15000)}}))
    seen = {"health": set(), "ready": set(), "edit": set()}
    server = Server(rules=rules, wait_until_serving=False)
    with server:
        while True:
            ready = server.get("/ready")
            seen["ready"].add((ready.status, ready.body))
            seen["health"].add((server.get("/health").status))
            if ready.status == 200:
                break
            answer = server.post("/v1/evaluate/edit", EDIT)
            seen["edit"].add((answer.status, answer.body))
        server.wait_until_serving()
    not_loaded = (503, b'{"error":"the documents are not loaded yet"}\n')
    assert seen["health"] == {200}
    assert seen["ready"] == {not_loaded, (200, b'{"status":"ready","generation":1}\n')}
    # Asked while /ready said 503, an evaluation is refused the same way,
    # unless the load ended in between.
    assert not_loaded in seen["edit"]
    assert all(answer == not_loaded or answer[0] == 200 for answer in seen["edit"])


@pytest.mark.parametrize("arguments,message", [
    (("--listen", "localhost"), 'tov: --listen takes HOST:PORT, such as 127.0.0.1:8480 or '
                                '[::1]:8480, not "localhost"'),
    (("--listen", "127.0.0.1:70000"), "tov: --listen: the port 70000 is over 65535"),
    (("--listen", "tov.example:80"), 'tov: --listen: "tov.example" is no IPv4 address (write '
                                     "an IPv6 address in brackets, such as [::1])"),
    (("--token-file", "/nonexistent/token"), None),
    (("--decision-log", "/nonexistent/folder/decisions.jsonl"),
     "tov: cannot open the decision log /nonexistent/folder/decisions.jsonl: No such file or "
     "directory"),
])
def test_options_that_cannot_be_used_end_the_start(arguments, message):
    status, lines = serve_to_the_end("--rules", RULES, "--dm", DATA_MODEL, *arguments)
    assert status == 2
    if message is not None:
        assert lines == [message]
    else:
        assert len(lines) == 1 and lines[0].startswith("tov: cannot read token file")


def test_an_empty_or_spaced_token_is_refused(tmp_path):
    token = tmp_path / "token"
    token.write_text(" \n")
    status, lines = serve_to_the_end("--rules", RULES, "--dm", DATA_MODEL, "--token-file", token)
    assert (status, lines) == (2, ["tov: the token file %s holds no token" % token])
    token.write_text("two words\n")
    status, lines = serve_to_the_end("--rules", RULES, "--dm", DATA_MODEL, "--token-file", token)
    assert (status, lines) == (2, ["tov: the token in %s must be one word of printable ASCII "
                                   "characters, as a bearer token is sent" % token])


def test_a_port_that_is_taken_ends_the_start():
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        taken.listen()
        port = taken.getsockname()[1]
        status, lines = serve_to_the_end("--rules", RULES, "--dm", DATA_MODEL, "--listen",
                                         "127.0.0.1:%d" % port)
    assert (status, lines) == (2, ["tov: cannot listen on 127.0.0.1:%d: Address already in use"
                                   % port])


def test_missing_documents_are_a_usage_error():
    status, lines = serve_to_the_end("--rules", RULES)
    assert status == 2
    assert lines[0] == "tov: --dm is required"


def accepted_connection(server):
    """A connection that the server has surely accepted: it answered on it."""
    connection = socket.create_connection(("127.0.0.1", server.port), timeout=30)
    connection.sendall(b"GET /health HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n")
    received = b""
    while not received.endswith(b'{"status":"serving"}\n'):
        chunk = connection.recv(4096)
        assert chunk, received
        received += chunk
    return connection


def head_of_edit():
    return (b"POST /v1/evaluate/edit HTTP/1.1\r\nHost: 127.0.0.1\r\n"
            b"Content-Type: application/json\r\nContent-Length: " + str(len(EDIT)).encode()
            + b"\r\n\r\n")


@pytest.mark.parametrize("stop", [signal.SIGTERM, signal.SIGINT])
def test_a_stop_lets_the_request_in_flight_finish_and_takes_no_new_one(stop):
    server = Server("--grace", "60")
    with server:
        idle = [server.connection() for _ in range(5)]
        for connection in idle:
            assert server.get("/health", connection=connection).status == 200
        with accepted_connection(server) as flight:
            flight.sendall(head_of_edit() + EDIT[:10])  # the request is in flight
            server.send_signal(stop)
            server.wait_for_line(lambda line: line.startswith("tov serve: stopping"), 30)
            with pytest.raises(ConnectionRefusedError):
                socket.create_connection(("127.0.0.1", server.port), timeout=30).close()
            flight.sendall(EDIT[10:])
            status, headers, body = parse_response(read_until_closed(flight))
        assert (status, body) == (200, EDIT_ANSWER)
        assert headers["connection"] == "close"
        # The idle connections were closed, so the stop needs none of its grace.
        assert server.stop(seconds=30) == 0
        for connection in idle:
            connection.close()
    assert server.stderr_text().splitlines()[-2:] == [
        "tov serve: stopping; requests in flight have 60 s to finish", "tov serve: stopped"]


def test_a_request_still_in_flight_when_the_grace_ends_is_dropped():
    server = Server("--grace", "0.2")
    with server:
        with accepted_connection(server) as flight:
            flight.sendall(head_of_edit() + EDIT[:10])
            assert server.stop(seconds=30) == 0
            assert read_until_closed(flight) == b""


def test_readiness_of_a_stopping_server():
    # A request that reaches the server while it stops learns that it is not ready.
    server = Server("--grace", "60")
    with server:
        with accepted_connection(server) as flight:
            flight.sendall(b"GET /ready HTTP/1.1\r\nHost: 127.0.0.1\r\nX")
            server.send_signal(signal.SIGTERM)
            server.wait_for_line(lambda line: line.startswith("tov serve: stopping"), 30)
            flight.sendall(b"-Late: yes\r\n\r\n")
            status, _, body = parse_response(read_until_closed(flight))
        assert (status, json.loads(body)) == (503, {"error": "the server is stopping"})
