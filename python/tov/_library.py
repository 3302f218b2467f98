"""Finds libtov and declares the C interface (tov/tov_c.h) to ctypes."""

import ctypes
import ctypes.util
import functools
import os
from pathlib import Path
from typing import List

LIBRARY_FILE = "libtov.so.1"

# Results of tov_set_log.
LOG_OK = 0
LOG_NULL_ARGUMENT = 1
LOG_UNUSABLE_FOLDER = 2
LOG_OUT_OF_MEMORY = 3


def _candidates() -> List[str]:
    """Where the library may be, in the order tried."""
    here = Path(__file__).resolve().parent
    places = [str(here / LIBRARY_FILE)]
    try:
        # Written by the CMake installation: the library folder, relative to
        # this package.
        from . import _install_location
    except ImportError:
        pass
    else:
        places.append(os.path.normpath(here / _install_location.LIBRARY_FOLDER / LIBRARY_FILE))
    # Bare names go through the dynamic loader: LD_LIBRARY_PATH, the ldconfig
    # cache and the system folders.
    places.append(LIBRARY_FILE)
    found = ctypes.util.find_library("tov")
    if found:
        places.append(found)
    return places


def _open(places: List[str]) -> ctypes.CDLL:
    failures = []
    for place in places:
        if os.sep in place and not os.path.exists(place):
            continue
        try:
            return ctypes.CDLL(place)
        except OSError as error:
            failures.append(str(error))
    raise OSError("cannot load libtov: tried " + ", ".join(places) +
                  "".join("; " + failure for failure in failures) +
                  ". Install tov, add its library folder to LD_LIBRARY_PATH, or name the "
                  "library file in the environment variable TOV_LIBRARY.")


def _declare(library: ctypes.CDLL) -> ctypes.CDLL:
    # Answers stay plain pointers, so that they can be given back to
    # tov_string_free after reading.
    library.tov_engine_new.argtypes = []
    library.tov_engine_new.restype = ctypes.c_void_p
    library.tov_engine_free.argtypes = [ctypes.c_void_p]
    library.tov_engine_free.restype = None
    for name in ("tov_evaluate", "tov_evaluate_file"):
        function = getattr(library, name)
        function.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p]
        function.restype = ctypes.c_void_p
    library.tov_evaluate_traced.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_char_p,
                                            ctypes.POINTER(ctypes.c_void_p)]
    library.tov_evaluate_traced.restype = ctypes.c_void_p
    library.tov_string_free.argtypes = [ctypes.c_void_p]
    library.tov_string_free.restype = None
    library.tov_set_log.argtypes = [ctypes.c_void_p, ctypes.c_char_p]
    library.tov_set_log.restype = ctypes.c_int
    library.tov_version.argtypes = []
    library.tov_version.restype = ctypes.c_char_p
    return library


@functools.lru_cache(maxsize=None)
def library() -> ctypes.CDLL:
    """The loaded library: the file named by TOV_LIBRARY if set; otherwise
    beside this package, then where an installation put it, then wherever the
    dynamic loader finds it."""
    override = os.environ.get("TOV_LIBRARY")
    return _declare(_open([override] if override else _candidates()))
