"""What the tests of `tov serve` share: starting and stopping a server, and
asking it over real HTTP connections on the loopback interface.

The program and the source tree come from the environment (TOV_PROGRAM and
TOV_SOURCE_DIR, which ctest sets). Every server a test starts is stopped by
the test: Server is a context manager, and its stop() kills the process when
it does not end in time.
"""

import http.client
import json
import os
import re
import resource
import select
import signal
import socket
import subprocess
import threading
import time
from pathlib import Path

TOV = os.environ.get("TOV_PROGRAM", "tov")
SOURCE = Path(os.environ.get("TOV_SOURCE_DIR", Path(__file__).resolve().parents[2]))
EXAMPLES = SOURCE / "examples"
RULES = EXAMPLES / "rules.json"
DATA_MODEL = EXAMPLES / "datamodel.json"
# Set by ctest for a build under AddressSanitizer, which reserves more address
# space than a limit on it would allow.
SANITIZED = os.environ.get("TOV_SANITIZED") == "1"

# Bounds of every wait, far above what a loaded machine needs.
START_SECONDS = 60
STOP_SECONDS = 60
POLL_SECONDS = 60

LISTENING = re.compile(r"^tov serve: listening on (http://[^ ]+:(\d+))$")


def raise_open_file_limit():
    """Idle connections each take a descriptor in this process too."""
    soft, hard = resource.getrlimit(resource.RLIMIT_NOFILE)
    if soft < hard:
        resource.setrlimit(resource.RLIMIT_NOFILE, (hard, hard))


def child_environment(extra=None):
    """The environment of a program started by a test: without the
    AddressSanitizer runtime that a Python test of the sanitized library may
    preload, since the sanitized program links its own."""
    environment = dict(os.environ)
    environment.pop("LD_PRELOAD", None)
    environment.update(extra or {})
    return environment


def run_tov(*arguments, stdin=None):
    """Runs the tov program to its end: (exit status, stdout, stderr) as bytes."""
    completed = subprocess.run([TOV, *map(str, arguments)], input=stdin, capture_output=True,
                               timeout=START_SECONDS, env=child_environment(), check=False)
    return completed.returncode, completed.stdout, completed.stderr


def request_kind(path):
    """The kind of an example request, from its file name."""
    name = Path(path).name
    for kind in ("edit-before-resolution", "save-before-resolution", "edit", "save", "link",
                 "options"):
        if name.startswith(kind + "-"):
            return kind
    raise ValueError("no kind for " + name)


class Response:
    def __init__(self, status, headers, body):
        self.status = status
        self.headers = headers  # list of (name, value), as received
        self.body = body  # bytes

    def header(self, name):
        for key, value in self.headers:
            if key.lower() == name.lower():
                return value
        return None

    def json(self):
        return json.loads(self.body)

    def __repr__(self):
        return "Response(%d, %r)" % (self.status, self.body[:300])


class Server:
    """A `tov serve` process on a free loopback port."""

    def __init__(self, *arguments, rules=RULES, data_model=DATA_MODEL, environment=None,
                 listen="127.0.0.1:0", wait_until_serving=True):
        # None leaves an option to the arguments.
        documents = [] if rules is None else ["--rules", str(rules), "--dm", str(data_model)]
        address = [] if listen is None else ["--listen", listen]
        self.command = [TOV, "serve", *documents, *address, *map(str, arguments)]
        self.process = subprocess.Popen(self.command, stdin=subprocess.DEVNULL,
                                        stdout=subprocess.DEVNULL, stderr=subprocess.PIPE,
                                        env=child_environment(environment))
        self.stderr_lines = []
        self._lines_changed = threading.Condition()
        self._reader = threading.Thread(target=self._read_stderr, daemon=True)
        self._reader.start()
        self.url = None
        self.port = None
        self.exit_status = None
        self.stopping = False
        try:
            first = self.wait_for_line(lambda line: True, START_SECONDS)
            match = LISTENING.match(first or "")
            if match is None:
                raise AssertionError("the first line is no listening line: %r; all: %r"
                                     % (first, self.stderr_text()))
            self.url = match.group(1)
            self.port = int(match.group(2))
            if wait_until_serving:
                self.wait_until_serving()
        except BaseException:
            self.kill()
            raise

    def wait_until_serving(self):
        served = self.wait_for_line(
            lambda line: " serves, with " in line, START_SECONDS, or_exit=True)
        if served is None:
            raise AssertionError("the server did not start serving: %r" % self.stderr_text())

    def _read_stderr(self):
        for raw in self.process.stderr:
            with self._lines_changed:
                self.stderr_lines.append(raw.decode("utf-8", "replace").rstrip("\n"))
                self._lines_changed.notify_all()
        with self._lines_changed:
            self.stderr_lines.append(None)  # the end
            self._lines_changed.notify_all()

    def wait_for_line(self, wanted, seconds, or_exit=False, start=0):
        """The first line from `start` on for which `wanted` holds; None when
        the stream ends first (or, with or_exit, the process ends)."""
        deadline = time.monotonic() + seconds
        with self._lines_changed:
            while True:
                for line in self.stderr_lines[start:]:
                    if line is None:
                        return None
                    if wanted(line):
                        return line
                remaining = deadline - time.monotonic()
                if remaining <= 0:
                    raise AssertionError("no such line within %s s: %r"
                                         % (seconds, self.stderr_text()))
                self._lines_changed.wait(min(remaining, 0.2))

    def stderr_text(self):
        with self._lines_changed:
            return "\n".join(line for line in self.stderr_lines if line is not None)

    # Asking.

    def connection(self, timeout=30):
        return http.client.HTTPConnection("127.0.0.1", self.port, timeout=timeout)

    def request(self, method, path, body=None, headers=None, connection=None):
        """One request; on a new connection unless one is given. POSTs are
        sent as JSON unless the headers say otherwise."""
        headers = dict(headers or {})
        if body is not None and not any(k.lower() == "content-type" for k in headers):
            headers["Content-Type"] = "application/json"
        if isinstance(body, str):
            body = body.encode("utf-8")
        own = connection is None
        connection = connection or self.connection()
        try:
            connection.request(method, path, body=body, headers=headers)
            answer = connection.getresponse()
            return Response(answer.status, answer.getheaders(), answer.read())
        finally:
            if own:
                connection.close()

    def get(self, path, **keywords):
        return self.request("GET", path, **keywords)

    def post(self, path, body, **keywords):
        return self.request("POST", path, body=body, **keywords)

    def raw(self, data, timeout=30):
        """Sends bytes on a new connection and reads until the server closes it."""
        with socket.create_connection(("127.0.0.1", self.port), timeout=timeout) as raw:
            raw.sendall(data)
            return read_until_closed(raw, timeout)

    def status(self):
        return self.get("/v1/status").json()

    def wait_for_status(self, wanted, seconds=POLL_SECONDS):
        """Polls /v1/status until `wanted(status)` holds; returns that status."""
        deadline = time.monotonic() + seconds
        while True:
            status = self.status()
            if wanted(status):
                return status
            if time.monotonic() > deadline:
                raise AssertionError("status never became as wanted: %r" % status)
            time.sleep(0.05)

    # Stopping.

    def send_signal(self, number):
        if number in (signal.SIGTERM, signal.SIGINT):
            self.stopping = True
        self.process.send_signal(number)

    def stop(self, number=signal.SIGTERM, seconds=STOP_SECONDS):
        """Stops the server with `number` and returns its exit status; kills
        it when it does not end within `seconds`."""
        if self.exit_status is not None:
            return self.exit_status
        if self.process.poll() is None and not self.stopping:
            self.send_signal(number)
        try:
            self.exit_status = self.process.wait(timeout=seconds)
        except subprocess.TimeoutExpired:
            self.kill()
            raise AssertionError("the server did not stop within %s s: %r"
                                 % (seconds, self.stderr_text()))
        self._reader.join(timeout=seconds)
        return self.exit_status

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.exit_status = self.process.wait()
        self._reader.join(timeout=STOP_SECONDS)

    def __enter__(self):
        return self

    def __exit__(self, kind, error, trace):
        if self.exit_status is None:
            status = self.stop()
            if kind is None:
                assert status == 0, "exit status %s: %s" % (status, self.stderr_text())


def read_until_closed(connection, timeout=30):
    """Everything a socket receives until the peer closes it."""
    deadline = time.monotonic() + timeout
    received = b""
    while True:
        remaining = deadline - time.monotonic()
        if remaining <= 0:
            raise AssertionError("the server did not close the connection: %r" % received)
        readable, _, _ = select.select([connection], [], [], remaining)
        if not readable:
            continue
        try:
            chunk = connection.recv(65536)
        except ConnectionResetError:
            return received
        if not chunk:
            return received
        received += chunk


def parse_response(data):
    """(status, headers dict with lower-case names, body) of one response in
    raw bytes that hold exactly one response with a Content-Length."""
    head, _, body = data.partition(b"\r\n\r\n")
    lines = head.decode("latin-1").split("\r\n")
    status = int(lines[0].split(" ")[1])
    headers = {}
    for line in lines[1:]:
        name, _, value = line.partition(":")
        headers[name.strip().lower()] = value.strip()
    return status, headers, body


def error_body(message):
    """An error body as the server writes it."""
    return (json.dumps({"error": message}, separators=(",", ":"), ensure_ascii=False)
            + "\n").encode("utf-8")
