"""An engine: one private set of rules, data model and logger in libtov."""

import ctypes
import json
import os
from types import TracebackType
from typing import Any, Dict, Mapping, Optional, Type, Union

from . import _library

# A document or request: JSON text, or the object that it would describe.
Document = Union[str, bytes, Mapping[str, Any]]
FilePath = Union[str, bytes, "os.PathLike[str]", "os.PathLike[bytes]"]


def _text(value: Union[str, bytes], what: str) -> bytes:
    data = value.encode("utf-8") if isinstance(value, str) else bytes(value)
    if b"\0" in data:
        raise ValueError(what + " holds a NUL character, which cannot cross the C interface")
    return data


def _json_text(document: Document) -> bytes:
    if isinstance(document, (str, bytes)):
        return _text(document, "the JSON text")
    return _text(json.dumps(document, ensure_ascii=False), "the JSON text")


class Engine:
    """Loads the rules and the data model, then evaluates requests.

    Every call answers with the response as a dict of strings, such as
    {"Result": "Success", "ResultComment": "Edit attempt approved"}; the
    *_raw forms give the same answer as the library wrote it, the text that
    `tov eval` prints. Calls on one engine must not overlap; different
    engines share nothing and may run on different threads. Use it in a with
    block, or call close(), to free it at a known time.
    """

    def __init__(self, log: str = "") -> None:
        """log: "" or "off" for no log (the default), "console", or a folder."""
        self._library = _library.library()
        self._handle: Optional[int] = self._library.tov_engine_new()
        if not self._handle:
            raise MemoryError("tov could not create an engine")
        if log:
            self.set_log(log)

    def close(self) -> None:
        """Frees the engine; further calls raise ValueError."""
        handle, self._handle = self._handle, None
        if handle:
            self._library.tov_engine_free(handle)

    def __enter__(self) -> "Engine":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_handle", None):
            self.close()

    def set_log(self, where: str) -> None:
        """"" or "off": no log; "console": standard output; anything else: a
        folder, created if missing, where a new log file starts."""
        status = self._library.tov_set_log(self._live_handle(), _text(where, "the log setting"))
        if status == _library.LOG_UNUSABLE_FOLDER:
            raise OSError("cannot log to folder " + repr(where))
        if status == _library.LOG_OUT_OF_MEMORY:
            raise MemoryError("tov could not change where it logs")
        if status != _library.LOG_OK:
            raise ValueError("tov_set_log refused " + repr(where))

    def load_rules(self, document: Document) -> Dict[str, str]:
        """Replaces the rules, all or nothing."""
        return self.evaluate("rules", document)

    def load_datamodel(self, document: Document) -> Dict[str, str]:
        """Replaces the data-model information, all or nothing."""
        return self.evaluate("datamodel", document)

    def load_rules_file(self, path: FilePath) -> Dict[str, str]:
        return self.evaluate_file("rules", path)

    def load_datamodel_file(self, path: FilePath) -> Dict[str, str]:
        return self.evaluate_file("datamodel", path)

    def evaluate(self, kind: str, request: Document) -> Dict[str, str]:
        """kind: "edit", "edit-before-resolution", "save",
        "save-before-resolution", "link", "options" (or "rules",
        "datamodel"). An unknown kind gets a Failure answer."""
        return json.loads(self.evaluate_raw(kind, request))

    def evaluate_file(self, kind: str, path: FilePath) -> Dict[str, str]:
        """The same with the path of a file that holds the request."""
        return json.loads(self.evaluate_file_raw(kind, path))

    def evaluate_raw(self, kind: str, request: Document) -> str:
        return self._answer(self._library.tov_evaluate, kind, _json_text(request))

    def evaluate_file_raw(self, kind: str, path: FilePath) -> str:
        return self._answer(self._library.tov_evaluate_file, kind,
                            _text(os.fsencode(path), "the path"))

    def _live_handle(self) -> int:
        if not self._handle:
            raise ValueError("the engine is closed")
        return self._handle

    def _answer(self, function: Any, kind: str, data: bytes) -> str:
        answer = function(self._live_handle(), _text(kind, "the kind"), data)
        if not answer:
            raise MemoryError("tov ran out of memory")
        try:
            # The library hands texts through as they came; undecodable bytes
            # survive as surrogates.
            return ctypes.string_at(answer).decode("utf-8", "surrogateescape")
        finally:
            self._library.tov_string_free(answer)
