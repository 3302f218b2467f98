"""What `tov serve` refuses before any handler runs: requests for foreign host
names (DNS rebinding), cross-site requests (Origin, form content types), and
callers without the bearer token; and that the token reaches no log."""

import json

import pytest

from serving import EXAMPLES, Server, error_body

EDIT = (EXAMPLES / "requests" / "edit-part-release-first-pass.json").read_bytes()
EDIT_ANSWER = (EXAMPLES / "expected" / "edit-part-release-first-pass.out").read_bytes()
TOKEN = "s3cr3t-T0ken_value.42"
UNAUTHORIZED = error_body('this server asks for its token: send "Authorization: Bearer TOKEN"')
ROUTES = [("POST", "/v1/evaluate/edit"), ("POST", "/v1/batch"), ("GET", "/v1/rules"),
          ("GET", "/v1/graph?type=Part&attribute=Status"), ("GET", "/v1/status"),
          ("GET", "/metrics"), ("GET", "/openapi.json")]


def host_refusal(host, extra=""):
    return error_body('Host "%s" is not allowed: this server answers requests for 127.0.0.1, '
                      "localhost, [::1]%s only (allow another name with --allow-host)"
                      % (host, extra))


@pytest.fixture(scope="module")
def server():
    with Server("--allow-host", "tov.internal.example", "--allow-host", "Other.Example") as running:
        yield running


@pytest.mark.parametrize("method,path", ROUTES + [("GET", "/health"), ("GET", "/ready"),
                                                  ("GET", "/nowhere")])
def test_a_foreign_host_name_is_refused_on_every_route(server, method, path):
    for host in ("attacker.example", "attacker.example:%d" % server.port, "127.0.0.2",
                 "localhost.attacker.example"):
        answer = server.request(method, path, body=b"{}" if method == "POST" else None,
                                headers={"Host": host})
        assert (answer.status, answer.body) == (403, host_refusal(
            host, ", tov.internal.example, Other.Example")), (host, path)


def test_loopback_names_and_allowed_names_pass_with_or_without_a_port(server):
    for host in ("127.0.0.1", "127.0.0.1:%d" % server.port, "localhost", "LOCALHOST:80",
                 "[::1]", "[::1]:%d" % server.port, "tov.internal.example",
                 "other.example:443"):
        answer = server.get("/health", headers={"Host": host})
        assert answer.status == 200, host


def test_a_request_without_a_host_is_refused(server):
    answer = server.raw(b"GET /health HTTP/1.0\r\n\r\n")
    assert answer.startswith(b"HTTP/1.0 403 Forbidden\r\n")
    assert answer.endswith(error_body("a request to this server must carry exactly one Host header"))


def test_a_foreign_name_is_refused_without_reading_the_body(server):
    head = (b"POST /v1/evaluate/edit HTTP/1.1\r\nHost: attacker.example\r\n"
            b"Content-Type: application/json\r\nContent-Length: 1000000\r\n\r\n")
    answer = server.raw(head)
    assert answer.startswith(b"HTTP/1.1 403 Forbidden\r\n")


@pytest.mark.parametrize("method,path", ROUTES + [("GET", "/health")])
def test_a_foreign_origin_is_refused(server, method, path):
    for origin in ("http://attacker.example", "null", "http://127.0.0.1:1",
                   "https://localhost:%d" % server.port):
        answer = server.request(method, path, body=b"{}" if method == "POST" else None,
                                headers={"Origin": origin})
        assert (answer.status, answer.body) == (403, error_body(
            'cross-site request refused: Origin "%s" is not this server\'s own origin' % origin))


def test_the_servers_own_origin_passes(server):
    for origin in ("http://127.0.0.1:%d" % server.port, "https://127.0.0.1:%d" % server.port):
        answer = server.post("/v1/evaluate/edit", EDIT, headers={"Origin": origin})
        assert (answer.status, answer.body) == (200, EDIT_ANSWER)


@pytest.mark.parametrize("content_type", [
    "application/x-www-form-urlencoded", "multipart/form-data; boundary=x", "text/plain",
    "text/plain; charset=utf-8", "application/jsonx", "application/x-ndjson"])
def test_a_form_post_is_415(server, content_type):
    answer = server.post("/v1/evaluate/edit", EDIT, headers={"Content-Type": content_type})
    assert (answer.status, answer.body) == (415, error_body(
        'Content-Type must be application/json, not "%s"' % content_type))


def test_a_post_without_a_content_type_is_415(server):
    data = (b"POST /v1/evaluate/edit HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n"
            b"Content-Length: " + str(len(EDIT)).encode() + b"\r\n\r\n" + EDIT)
    answer = server.raw(data)
    assert answer.startswith(b"HTTP/1.1 415 Unsupported Media Type\r\n")
    assert answer.endswith(error_body("Content-Type must be application/json (none was given)"))


@pytest.mark.parametrize("content_type", ["application/x-www-form-urlencoded", "text/plain",
                                          "multipart/form-data; boundary=x"])
def test_a_form_post_to_batch_is_415(server, content_type):
    answer = server.post("/v1/batch", b"{}", headers={"Content-Type": content_type})
    assert (answer.status, answer.body) == (415, error_body(
        "Content-Type must be one of application/json, application/x-ndjson, application/jsonl, "
        'not "%s"' % content_type))


@pytest.fixture(scope="module")
def guarded(tmp_path_factory):
    token_file = tmp_path_factory.mktemp("token") / "token"
    token_file.write_text("  %s\n\n" % TOKEN)
    with Server("--token-file", token_file) as running:
        yield running


@pytest.mark.parametrize("method,path", ROUTES + [("GET", "/nowhere")])
def test_without_the_token_every_route_but_the_probes_is_401(guarded, method, path):
    for authorization in (None, "Bearer wrong", "Bearer " + TOKEN + "x", "Bearer " + TOKEN[:-1],
                          "Basic " + TOKEN, TOKEN, "Bearer", "Bearer  "):
        headers = {} if authorization is None else {"Authorization": authorization}
        answer = guarded.request(method, path, body=b"{}" if method == "POST" else None,
                                 headers=headers)
        assert (answer.status, answer.body) == (401, UNAUTHORIZED), (authorization, path)
        assert answer.header("WWW-Authenticate") == 'Bearer realm="tov"'


def test_with_the_token_every_route_answers(guarded):
    for authorization in ("Bearer " + TOKEN, "bearer " + TOKEN, "Bearer   " + TOKEN + " "):
        headers = {"Authorization": authorization}
        assert guarded.post("/v1/evaluate/edit", EDIT, headers=headers).body == EDIT_ANSWER
        for method, path in ROUTES[1:]:
            answer = guarded.request(method, path, body=b"" if method == "POST" else None,
                                     headers=dict(headers, **{"Content-Type": "application/jsonl"}))
            assert answer.status == 200, path


def test_the_probes_need_no_token(guarded):
    assert guarded.get("/health").status == 200
    assert guarded.get("/ready").status == 200
    assert guarded.get("/health", headers={"Authorization": "Bearer wrong"}).status == 200


def test_two_authorization_headers_are_refused(guarded):
    data = ("GET /v1/status HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: close\r\n"
            "Authorization: Bearer %s\r\nAuthorization: Bearer %s\r\n\r\n" % (TOKEN, TOKEN))
    assert guarded.raw(data.encode()).startswith(b"HTTP/1.1 401 Unauthorized\r\n")


def test_the_token_reaches_no_log(tmp_path):
    token_file = tmp_path / "token"
    token_file.write_text(TOKEN)
    decisions = tmp_path / "decisions.jsonl"
    server = Server("--token-file", token_file, "--decision-log", decisions, "--log", "console")
    with server:
        headers = {"Authorization": "Bearer " + TOKEN}
        assert server.post("/v1/evaluate/edit", EDIT, headers=headers).status == 200
        batch = b'{"kind": "edit", "request": {}}\n'
        assert server.post("/v1/batch", batch, headers=dict(headers, **{
            "Content-Type": "application/x-ndjson"})).status == 200
        assert server.post("/v1/evaluate/edit", EDIT,
                           headers={"Authorization": "Bearer " + TOKEN + "-guess"}).status == 401
    # Stopped: every line it wrote has been read.
    lines = decisions.read_text(encoding="utf-8").splitlines()
    assert len(lines) == 2
    for line in lines:
        assert set(json.loads(line)) == {"time", "kind", "request", "answer", "generation",
                                         "latencySeconds"}
    assert TOKEN not in decisions.read_text(encoding="utf-8")
    log = server.stderr_text()
    assert "History Link violation detected" in log  # the console log was written
    assert TOKEN[:8] not in log
