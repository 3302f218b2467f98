"""tov.Client against a real `tov serve`: the same evaluate() and the same
answers as tov.Engine, so that a host switches with one line."""

import json
import sys
import urllib.error

import pytest

import tov
from conftest import EXAMPLES, SOURCE, expected_answer, request_path, scenario_steps

sys.path.insert(0, str(SOURCE / "tests" / "serve"))
from serving import Server  # noqa: E402  (the tests of tov serve share how to start one)

STEPS = scenario_steps()
TOKEN = "client-t0ken"


@pytest.fixture(scope="module")
def service(tmp_path_factory):
    token = tmp_path_factory.mktemp("client") / "token"
    token.write_text(TOKEN + "\n")
    with Server("--token-file", token) as running:
        yield running


@pytest.fixture
def client(service):
    with tov.Client(service.url, token=TOKEN) as opened:
        yield opened


@pytest.mark.parametrize("step", STEPS, ids=[step["name"] for step in STEPS])
def test_each_answer_is_the_engines(loaded, client, step):
    text = request_path(step).read_text(encoding="utf-8")
    assert client.evaluate_raw(step["kind"], text) == expected_answer(step)
    assert client.evaluate(step["kind"], json.loads(text)) == loaded.evaluate(step["kind"], text)
    assert client.evaluate_file(step["kind"], request_path(step)) == json.loads(
        expected_answer(step))
    assert client.evaluate_file_raw(step["kind"], str(request_path(step)).encode()) == \
        loaded.evaluate_file_raw(step["kind"], request_path(step))


def test_a_text_that_is_no_request_gets_the_engines_answer(loaded, client):
    for text in ("", "no json", b"[1]"):
        assert client.evaluate("options", text) == loaded.evaluate("options", text)


def test_a_trailing_slash_in_the_url_is_fine(service):
    client = tov.Client(service.url + "/", token=TOKEN)
    step = STEPS[0]
    assert client.evaluate_file_raw(step["kind"], request_path(step)) == expected_answer(step)


def test_status_and_readiness(client):
    assert client.ready() is True
    status = client.status()
    assert status["generation"] == 1
    assert status["documents"]["rules"]["path"] == str(EXAMPLES / "rules.json")


def test_a_client_loads_no_documents(client):
    for kind in ("rules", "datamodel"):
        with pytest.raises(ValueError, match="a client loads no documents"):
            client.evaluate(kind, "{}")


def test_refusals_raise_service_errors(service):
    with pytest.raises(tov.ServiceError) as refused:
        tov.Client(service.url).evaluate("edit", {})
    assert refused.value.status == 401
    assert refused.value.message == ('this server asks for its token: send "Authorization: '
                                     'Bearer TOKEN"')
    with pytest.raises(tov.ServiceError) as refused:
        tov.Client(service.url, token=TOKEN).evaluate("approve", {})
    assert refused.value.status == 404
    assert refused.value.message.startswith('unknown request kind "approve"')
    with pytest.raises(tov.ServiceError) as refused:
        tov.Client(service.url, token="wrong").status()
    assert refused.value.status == 401
    # The probes ask for no token.
    assert tov.Client(service.url, token="wrong").ready() is True


def test_a_service_that_is_not_there_is_an_os_error():
    with Server() as gone:
        url = gone.url
    with pytest.raises(urllib.error.URLError):
        tov.Client(url, timeout=5).evaluate("edit", {})
