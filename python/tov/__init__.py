"""tov from Python: judges changes to the lifecycle of data-management objects.

    import tov

    with tov.Engine() as engine:
        engine.load_datamodel_file("examples/datamodel.json")
        engine.load_rules_file("examples/rules.json")
        answer = engine.evaluate("edit", {"objectType": "Part", ...})
        if tov.missing_sections(answer):
            ...  # fetch those objects, add the sections, evaluate again

The package calls libtov through its C interface (tov/tov_c.h) with ctypes.
tov.Client("http://127.0.0.1:8480") asks a `tov serve` service instead, with
the same evaluate() and the same answers.
"""

from ._client import Client, ServiceError
from ._engine import Document, Engine, TracedAnswer
from ._library import library as _library
from ._texts import (missing_sections, parse_list, parse_map, selected_versioning_attributes,
                     trigger_initialization)

__all__ = [
    "Client",
    "Document",
    "Engine",
    "ServiceError",
    "TracedAnswer",
    "missing_sections",
    "parse_list",
    "parse_map",
    "selected_versioning_attributes",
    "trigger_initialization",
    "version",
]


def version() -> str:
    """The version of the loaded libtov, such as "1.1"."""
    return _library().tov_version().decode("ascii")
