"""An engine: one private set of rules, data model and logger in libtov."""

import contextlib
import ctypes
import json
import os
import threading
from types import TracebackType
from typing import Any, Dict, Iterator, List, Mapping, NamedTuple, Optional, Type, Union

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


class TracedAnswer(NamedTuple):
    """An answer with the rules that judged it, in the order of judging. Each
    step is a dict: "section" (the rules document's section, such as
    "transitions"), "number" (the rule's place in that section, from 1),
    "rule" (the rule in words), "outcome" ("approved", "objected", "asked for
    missing data" or "not applicable") and "decisive" (True for the rules
    whose words stand in the answer's comment)."""
    answer: Dict[str, str]
    trace: List[Dict[str, Any]]


class Engine:
    """Loads the rules and the data model, then evaluates requests.

    Every call answers with the response as a dict of strings, such as
    {"Result": "Success", "ResultComment": "Edit attempt approved"}; the
    *_raw forms give the same answer as the library wrote it, the text that
    `tov eval` prints. An engine is safe to share between threads: any
    number of them may evaluate at once, in parallel, while another loads;
    each answer comes wholly from the documents before a load or wholly from
    those after it. Use it in a with
    block, or call close(), to free it at a known time.
    """

    def __init__(self, log: str = "") -> None:
        """log: "" or "off" for no log (the default), "console", or a folder."""
        self._library = _library.library()
        # Calls in flight, so that close() never frees the engine under one.
        self._calls = threading.Condition()
        self._in_flight = 0
        self._handle: Optional[int] = self._library.tov_engine_new()
        if not self._handle:
            raise MemoryError("tov could not create an engine")
        if log:
            self.set_log(log)

    def close(self) -> None:
        """Frees the engine once the calls in flight on other threads have
        returned; further calls raise ValueError."""
        with self._calls:
            handle, self._handle = self._handle, None
            self._calls.wait_for(lambda: self._in_flight == 0)
        if handle:
            self._library.tov_engine_free(handle)

    def __enter__(self) -> "Engine":
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], error: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __del__(self) -> None:
        if getattr(self, "_handle", None) and hasattr(self, "_calls"):
            self.close()

    def set_log(self, where: str) -> None:
        """"" or "off": no log; "console": standard output; anything else: a
        folder, created if missing, where a new log file starts."""
        setting = _text(where, "the log setting")
        with self._call() as handle:
            status = self._library.tov_set_log(handle, setting)
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

    def evaluate(self, kind: str, request: Document,
                 trace: bool = False) -> Union[Dict[str, str], TracedAnswer]:
        """kind: "edit", "edit-before-resolution", "save",
        "save-before-resolution", "link", "options" (or "rules",
        "datamodel"). An unknown kind gets a Failure answer. With trace=True
        the answer comes as a TracedAnswer, with the rules that judged it."""
        if not trace:
            return json.loads(self.evaluate_raw(kind, request))
        kind_text = _text(kind, "the kind")
        data = _json_text(request)
        steps = ctypes.c_void_p()
        with self._call() as handle:
            answer = self._library.tov_evaluate_traced(handle, kind_text, data,
                                                       ctypes.byref(steps))
        try:
            text = self._take(answer)
        finally:
            # Given back whatever became of the answer; NULL only with it.
            steps_text = self._take(steps.value) if steps.value else None
        if steps_text is None:
            raise MemoryError("tov ran out of memory")
        return TracedAnswer(json.loads(text), json.loads(steps_text))

    def evaluate_file(self, kind: str, path: FilePath) -> Dict[str, str]:
        """The same with the path of a file that holds the request."""
        return json.loads(self.evaluate_file_raw(kind, path))

    def evaluate_raw(self, kind: str, request: Document) -> str:
        return self._answer(self._library.tov_evaluate, kind, _json_text(request))

    def evaluate_file_raw(self, kind: str, path: FilePath) -> str:
        return self._answer(self._library.tov_evaluate_file, kind,
                            _text(os.fsencode(path), "the path"))

    @contextlib.contextmanager
    def _call(self) -> Iterator[int]:
        """The handle, held live for one call into the library."""
        with self._calls:
            if not self._handle:
                raise ValueError("the engine is closed")
            handle = self._handle
            self._in_flight += 1
        try:
            yield handle
        finally:
            with self._calls:
                self._in_flight -= 1
                if self._in_flight == 0:
                    self._calls.notify_all()

    def _answer(self, function: Any, kind: str, data: bytes) -> str:
        kind_text = _text(kind, "the kind")
        with self._call() as handle:
            answer = function(handle, kind_text, data)
        return self._take(answer)

    def _take(self, text: Optional[int]) -> str:
        """A text the library handed over, read and given back."""
        if not text:
            raise MemoryError("tov ran out of memory")
        try:
            # The library hands texts through as they came; undecodable bytes
            # survive as surrogates.
            return ctypes.string_at(text).decode("utf-8", "surrogateescape")
        finally:
            self._library.tov_string_free(text)
