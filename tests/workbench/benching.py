"""What the tests of `tov workbench` share: starting and stopping the program,
and asking it over real HTTP connections on the loopback interface, as its
page does.

The program and the source tree come from the environment (TOV_PROGRAM and
TOV_SOURCE_DIR, which ctest sets). Every workbench a test starts is stopped
by the test: Workbench is a context manager, and its stop() kills the
process when it does not end in time.
"""

import json
import os
import re
import signal
import subprocess
import sys
import threading
import time
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "serve"))

from serving import (  # noqa: E402  (after the path to the service's helpers)
    Response, child_environment, error_body, read_until_closed)

TOV = os.environ.get("TOV_PROGRAM", "tov")
SOURCE = Path(os.environ.get("TOV_SOURCE_DIR", Path(__file__).resolve().parents[2]))
EXAMPLES = SOURCE / "examples"
RULES = EXAMPLES / "rules.json"
DATA_MODEL = EXAMPLES / "datamodel.json"

# Bounds of every wait, far above what a loaded machine needs.
START_SECONDS = 60
STOP_SECONDS = 60

LISTENING = re.compile(r"^tov workbench: listening on (http://[^ ]+:(\d+))$")
PAGE = re.compile(r"^(http://[^ ]+:(\d+))/(\?token=([0-9a-f]{64}))?$")
TOKEN_REFUSAL = error_body("this server asks for its token, which the address that it printed "
                           "at its start carries: open that address")

__all__ = ["Response", "error_body", "read_until_closed", "EXAMPLES", "RULES", "DATA_MODEL",
           "TOKEN_REFUSAL", "TOV", "Workbench", "run_tov", "example_documents", "examples"]


def run_tov(*arguments, environment=None):
    """Runs the tov program to its end: (exit status, stdout, stderr) as text."""
    completed = subprocess.run([TOV, *map(str, arguments)], capture_output=True, text=True,
                               timeout=START_SECONDS, env=child_environment(environment),
                               check=False)
    return completed.returncode, completed.stdout, completed.stderr


def example_documents():
    """The bodies' two members, with the example documents."""
    return {"rules": RULES.read_text(), "datamodel": DATA_MODEL.read_text()}


def examples():
    """(name, kind) of every step of the example scenario."""
    scenario = json.loads((EXAMPLES / "scenario.json").read_text())
    return [(step["name"], step["kind"]) for step in scenario["steps"]]


class _Lines:
    """The lines of one stream of the process, as they come."""

    def __init__(self, stream):
        self.lines = []
        self._changed = threading.Condition()
        self._reader = threading.Thread(target=self._read, args=(stream,), daemon=True)
        self._reader.start()

    def _read(self, stream):
        for raw in stream:
            with self._changed:
                self.lines.append(raw.decode("utf-8", "replace").rstrip("\n"))
                self._changed.notify_all()
        with self._changed:
            self.lines.append(None)  # the end
            self._changed.notify_all()

    def wait_for(self, wanted, seconds):
        """The first line for which `wanted` holds; None when the stream ends first."""
        deadline = time.monotonic() + seconds
        with self._changed:
            while True:
                for line in self.lines:
                    if line is None:
                        return None
                    if wanted(line):
                        return line
                remaining = deadline - time.monotonic()
                if remaining <= 0:
                    raise AssertionError("no such line within %s s: %r" % (seconds, self.lines))
                self._changed.wait(min(remaining, 0.2))

    def text(self):
        with self._changed:
            return "\n".join(line for line in self.lines if line is not None)

    def join(self, seconds):
        self._reader.join(timeout=seconds)


class Workbench:
    """A `tov workbench` process on a free loopback port."""

    def __init__(self, *arguments, listen="127.0.0.1:0", environment=None, program=TOV):
        address = [] if listen is None else ["--listen", listen]
        self.command = [str(program), "workbench", *address, *map(str, arguments)]
        self.process = subprocess.Popen(self.command, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=subprocess.PIPE,
                                        env=child_environment(environment))
        self.stdout = _Lines(self.process.stdout)
        self.stderr = _Lines(self.process.stderr)
        self.exit_status = None
        try:
            first = self.stderr.wait_for(lambda line: True, START_SECONDS)
            match = LISTENING.match(first or "")
            if match is None:
                raise AssertionError("the first line is no listening line: %r; all: %r"
                                     % (first, self.stderr.text()))
            self.url = match.group(1)
            self.port = int(match.group(2))
            # The line naming the documents follows at once, and tests read it by its place.
            self.stderr.wait_for(lambda line: line.startswith("tov workbench: editing"),
                                 START_SECONDS)
            page = self.stdout.wait_for(lambda line: True, START_SECONDS)
            found = PAGE.match(page or "")
            if found is None or found.group(1) != self.url:
                raise AssertionError("standard output holds no page address: %r" % page)
            self.page = page
            self.token = found.group(4)
        except BaseException:
            self.kill()
            raise

    # Asking.

    def request(self, method, path, body=None, headers=None, token=True):
        """One request on a new connection, as the page's script sends it:
        with the token and, for a POST, JSON; `headers` add or replace
        (None as a value leaves a header out)."""
        import http.client
        sent = {}
        if token and self.token:
            sent["X-Tov-Token"] = self.token
        if body is not None:
            sent["Content-Type"] = "application/json"
            if not isinstance(body, (bytes, str)):
                body = json.dumps(body)
            if isinstance(body, str):
                body = body.encode("utf-8")
        sent.update(headers or {})
        sent = {name: value for name, value in sent.items() if value is not None}
        connection = http.client.HTTPConnection("127.0.0.1", self.port, timeout=60)
        try:
            connection.request(method, path, body=body, headers=sent)
            answer = connection.getresponse()
            return Response(answer.status, answer.getheaders(), answer.read())
        finally:
            connection.close()

    def get(self, path, **keywords):
        return self.request("GET", path, **keywords)

    def post(self, path, body, **keywords):
        return self.request("POST", path, body=body, **keywords)

    # Stopping.

    def stop(self, number=signal.SIGTERM, seconds=STOP_SECONDS):
        """Stops the workbench with `number` and returns its exit status;
        kills it when it does not end within `seconds`."""
        if self.exit_status is not None:
            return self.exit_status
        if self.process.poll() is None:
            self.process.send_signal(number)
        try:
            self.exit_status = self.process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            self.kill()
            raise AssertionError("the workbench did not stop within %s s: %r"
                                 % (seconds, self.stderr.text()))
        self.stdout.join(seconds)
        self.stderr.join(seconds)
        return self.exit_status

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.exit_status = self.process.wait()
        self.stdout.join(STOP_SECONDS)
        self.stderr.join(STOP_SECONDS)

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        if self.exit_status is None:
            status = self.stop()
            if kind is None:
                assert status == 0, "exit status %s: %s" % (status, self.stderr.text())
