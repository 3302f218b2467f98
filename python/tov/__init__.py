"""tov from Python: judges changes to the lifecycle of data-management objects.

    import tov

    with tov.Engine() as engine:
        engine.load_datamodel_file("examples/datamodel.json")
        engine.load_rules_file("examples/rules.json")
        answer = engine.evaluate("edit", {"objectType": "Part", ...})
        if tov.missing_sections(answer):
            ...  # fetch those objects, add the sections, evaluate again

The package calls libtov through its C interface (tov/tov_c.h) with ctypes.
"""

from ._engine import Document, Engine
from ._library import library as _library
from ._texts import (missing_sections, parse_list, parse_map, selected_versioning_attributes,
                     trigger_initialization)

__all__ = [
    "Document",
    "Engine",
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
