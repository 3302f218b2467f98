"""A client of `tov serve`: the answers of an Engine, from a service.

    client = tov.Client("http://127.0.0.1:8480")        # instead of tov.Engine()
    answer = client.evaluate("edit", {"objectType": "Part", ...})

A client loads no documents: the service has them. Only the standard
library's urllib is used, so that nothing new needs installing.
"""

import json
import os
import urllib.error
import urllib.parse
import urllib.request
from types import TracebackType
from typing import Dict, Optional, Type

from ._engine import Document, FilePath, _json_text

# The kinds a service evaluates; the documents are the service's own.
REQUEST_KINDS = ("edit", "edit-before-resolution", "save", "save-before-resolution", "link",
                 "options")
DOCUMENT_KINDS = ("rules", "datamodel")


class ServiceError(Exception):
    """The service refused the call: `status` is the HTTP status, `message`
    what the service said ({"error": ...})."""

    def __init__(self, status: int, message: str) -> None:
        super().__init__("tov serve answered %d: %s" % (status, message))
        self.status = status
        self.message = message


class Client:
    """Evaluates requests with a `tov serve` service; evaluate() and
    evaluate_raw() answer as an Engine's do. Calls may come from several
    threads. Connection failures raise urllib's URLError (an OSError); a
    refusal of the service raises ServiceError."""

    def __init__(self, url: str, token: Optional[str] = None, timeout: float = 30.0) -> None:
        """url: where the service listens, such as "http://127.0.0.1:8480" or
        "https://tov.example.org/"; token: the bearer token of its
        --token-file, if it asks for one."""
        self._base = url.rstrip("/")
        self._token = token
        self._timeout = timeout

    def close(self) -> None:
        """Nothing to free; for the same use as an Engine."""

    def __enter__(self) -> "Client":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def evaluate(self, kind: str, request: Document) -> Dict[str, str]:
        """kind: "edit", "edit-before-resolution", "save",
        "save-before-resolution", "link" or "options"."""
        return json.loads(self.evaluate_raw(kind, request))

    def evaluate_file(self, kind: str, path: FilePath) -> Dict[str, str]:
        """The same with the path of a file that holds the request, read here."""
        return json.loads(self.evaluate_file_raw(kind, path))

    def evaluate_raw(self, kind: str, request: Document) -> str:
        """The single string, as the library wrote it (as `tov eval` prints it)."""
        if kind in DOCUMENT_KINDS:
            raise ValueError("a client loads no documents: the service reads its own "
                             "(reload them with SIGHUP)")
        answer = self._call("POST", "/v1/evaluate/" + urllib.parse.quote(kind, safe=""),
                            _json_text(request))
        return answer.decode("utf-8", "surrogateescape").rstrip("\n")

    def evaluate_file_raw(self, kind: str, path: FilePath) -> str:
        with open(os.fsencode(path), "rb") as request:
            return self.evaluate_raw(kind, request.read())

    def status(self) -> Dict[str, object]:
        """/v1/status: versions, the documents that serve, the last reload."""
        return json.loads(self._call("GET", "/v1/status"))

    def ready(self) -> bool:
        """True once the service has loaded both documents."""
        try:
            self._call("GET", "/ready")
            return True
        except ServiceError as refusal:
            if refusal.status == 503:
                return False
            raise

    def _call(self, method: str, path: str, body: Optional[bytes] = None) -> bytes:
        headers = {}
        if body is not None:
            headers["Content-Type"] = "application/json"
        if self._token is not None:
            headers["Authorization"] = "Bearer " + self._token
        call = urllib.request.Request(self._base + path, data=body, headers=headers,
                                      method=method)
        try:
            with urllib.request.urlopen(call, timeout=self._timeout) as answer:
                return answer.read()
        except urllib.error.HTTPError as refusal:
            text = refusal.read().decode("utf-8", "replace")
            try:
                message = json.loads(text)["error"]
            except (ValueError, KeyError, TypeError):
                message = text.strip() or refusal.reason
            raise ServiceError(refusal.code, message) from None
