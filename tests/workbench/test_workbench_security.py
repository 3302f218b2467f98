"""What `tov workbench` refuses before any question is answered: requests for
foreign host names (DNS rebinding), requests from other origins, form posts,
requests without the token of this start, and a save that names a path; and
that the token reaches no log line."""

import pytest

from benching import TOKEN_REFUSAL, Workbench, error_body, example_documents

QUESTIONS = [("GET", "/api/documents"), ("POST", "/api/check"), ("POST", "/api/explain"),
             ("POST", "/api/graph"), ("POST", "/api/evaluate"), ("POST", "/api/test"),
             ("POST", "/api/save")]
PAGE = [("GET", "/"), ("GET", "/static/workbench.js"), ("GET", "/static/codemirror/codemirror.js")]


def host_refusal(host, extra=""):
    return error_body('Host "%s" is not allowed: this server answers requests for 127.0.0.1, '
                      "localhost, [::1]%s only (allow another name with --allow-host)"
                      % (host, extra))


def origin_refusal(origin):
    return error_body("cross-site request refused: Origin \"%s\" is not this server's own "
                      "origin" % origin)


@pytest.fixture(scope="module")
def bench():
    with Workbench("--allow-host", "bench.internal.example") as running:
        yield running


def test_each_start_draws_a_new_token(bench):
    with Workbench() as other:
        assert len(other.token) == 64 and len(bench.token) == 64
        assert other.token != bench.token
        assert other.page == "%s/?token=%s" % (other.url, other.token)


@pytest.mark.parametrize("method,path", QUESTIONS + PAGE + [("GET", "/nowhere")])
def test_a_foreign_host_name_is_refused_everywhere(bench, method, path):
    for host in ("attacker.example", "attacker.example:%d" % bench.port, "127.0.0.2",
                 "localhost.attacker.example"):
        answer = bench.request(method, path, body=b"{}" if method == "POST" else None,
                               headers={"Host": host})
        assert (answer.status, answer.body) == (403, host_refusal(
            host, ", bench.internal.example")), (host, path)


def test_loopback_names_and_allowed_names_pass(bench):
    for host in ("127.0.0.1:%d" % bench.port, "localhost", "[::1]:%d" % bench.port,
                 "bench.internal.example", "BENCH.internal.example:80"):
        assert bench.get("/api/documents", headers={"Host": host}).status == 200, host


@pytest.mark.parametrize("method,path", QUESTIONS + PAGE[1:])
def test_a_foreign_origin_is_refused_beyond_the_page(bench, method, path):
    for origin in ("http://attacker.example", "null", "http://127.0.0.1:1"):
        answer = bench.request(method, path, body=b"{}" if method == "POST" else None,
                               headers={"Origin": origin})
        assert (answer.status, answer.body) == (403, origin_refusal(origin)), (origin, path)


def test_the_page_opens_from_anywhere_but_not_across_sites_by_post(bench):
    assert bench.get("/", headers={"Origin": "http://attacker.example"}, token=False).status == 200
    answer = bench.post("/", b"{}", headers={"Origin": "http://attacker.example"}, token=False)
    assert (answer.status, answer.body) == (403, origin_refusal("http://attacker.example"))


def test_the_servers_own_origin_passes(bench):
    answer = bench.post("/api/check", example_documents(), headers={"Origin": bench.url})
    assert answer.status == 200


@pytest.mark.parametrize("method,path", QUESTIONS + [("GET", "/nowhere")])
def test_without_the_token_every_question_is_refused(bench, method, path):
    for token in (None, "", "0" * 64, bench.token[:-1], bench.token + "0", bench.token.upper()):
        answer = bench.request(method, path, body=b"{}" if method == "POST" else None,
                               headers={"X-Tov-Token": token}, token=False)
        assert (answer.status, answer.body) == (403, TOKEN_REFUSAL), (token, path)
    answer = bench.request(method, path, body=b"{}" if method == "POST" else None,
                           headers={"Authorization": "Bearer " + bench.token,
                                    "Cookie": "X-Tov-Token=" + bench.token}, token=False)
    assert (answer.status, answer.body) == (403, TOKEN_REFUSAL)


def test_the_token_in_the_address_opens_nothing_but_the_page(bench):
    assert bench.get("/?token=" + bench.token, token=False).status == 200
    answer = bench.get("/api/documents?token=" + bench.token, token=False)
    assert (answer.status, answer.body) == (403, TOKEN_REFUSAL)


@pytest.mark.parametrize("content_type", [
    "application/x-www-form-urlencoded", "multipart/form-data; boundary=x", "text/plain", None])
def test_a_form_post_is_refused(bench, content_type):
    for method, path in QUESTIONS:
        if method != "POST":
            continue
        answer = bench.post(path, b"rules=x&datamodel=y", headers={"Content-Type": content_type})
        assert answer.status == 415, path
        assert answer.body == error_body(
            "Content-Type must be application/json" +
            (" (none was given)" if content_type is None else ', not "%s"' % content_type))


def test_a_write_names_no_path(tmp_path):
    rules = tmp_path / "rules.json"
    data_model = tmp_path / "datamodel.json"
    documents = example_documents()
    rules.write_text(documents["rules"])
    data_model.write_text(documents["datamodel"])
    elsewhere = tmp_path / "elsewhere.json"
    with Workbench("--write", "--rules", rules, "--dm", data_model) as bench:
        for member in ("path", "rulesPath", "datamodelPath", "target"):
            answer = bench.post("/api/save", dict(documents, **{member: str(elsewhere)}))
            assert (answer.status, answer.body) == (400, error_body(
                'unknown member "%s": this endpoint takes "rules" and "datamodel", each a '
                "string" % member))
        assert bench.post("/api/save", {"rules": str(elsewhere),
                                        "datamodel": documents["datamodel"]}).status == 422
    assert not elsewhere.exists()
    assert rules.read_text() == documents["rules"]
    assert sorted(path.name for path in tmp_path.iterdir()) == ["datamodel.json", "rules.json"]


def test_the_token_reaches_no_log_line(tmp_path):
    with Workbench("--log", tmp_path) as bench:
        bench.post("/api/evaluate", dict(example_documents(), kind="edit", request="{}"))
        bench.get("/api/documents", token=False)
        bench.get("/?token=" + bench.token, token=False)
    assert bench.token not in bench.stderr.text()
    assert bench.stdout.text() == bench.page
    for log in tmp_path.iterdir():
        assert bench.token not in log.read_text(errors="replace"), log


def test_without_a_token_it_warns_and_asks_none():
    with Workbench("--no-token") as bench:
        assert bench.token is None
        assert bench.page == bench.url + "/"
        assert bench.get("/api/documents", token=False).status == 200
        assert bench.get("/api/documents", headers={"Host": "attacker.example"}).status == 403
        assert bench.get("/api/documents", headers={"Origin": "http://a.example"}).status == 403
    assert ("tov workbench: warning: --no-token: any program on this machine, and any web page "
            "whose requests reach this address, can read and judge the documents"
            in bench.stderr.lines)
