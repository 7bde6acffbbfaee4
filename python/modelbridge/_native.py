"""The library's C API through ctypes: loading the library and the signatures of its calls."""

from __future__ import annotations

import ctypes
import os
from typing import Dict, Optional, Union

from . import _build


def _load() -> ctypes.CDLL:
    """The library named by MODELBRIDGE_LIBRARY; else the one inside this package (a wheel);
    else the one installed where the build put it; else the one the system's loader finds."""
    chosen = os.environ.get("MODELBRIDGE_LIBRARY")
    if chosen:
        return ctypes.CDLL(chosen)
    here = os.path.dirname(os.path.abspath(__file__))
    for candidate in (os.path.join(here, _build.LIBRARY),
                      os.path.normpath(os.path.join(here, _build.RELATIVE, _build.LIBRARY))):
        if os.path.exists(candidate):
            return ctypes.CDLL(candidate)
    return ctypes.CDLL(_build.LIBRARY)


class Options(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("flags", ctypes.c_uint), ("line_width", ctypes.c_int),
                ("indent", ctypes.c_char_p), ("file_prefix", ctypes.c_char_p),
                ("library_folders", ctypes.POINTER(ctypes.c_char_p)), ("library_folder_count", ctypes.c_int)]


# Statuses of the C calls.
OK, FAILED, NO_SUCH_CLASS, INVALID_ARGUMENT, NO_MEMORY = range(5)
# The flag that takes the header's time from SOURCE_DATE_EPOCH.
REPRODUCIBLE = 4
# The lists of one file's update report.
ORPHANED, RESTORED, CONFLICTS = range(3)
# Flags of an update.
UPDATE_CHECK, UPDATE_OVERWRITE, UPDATE_PRUNE, UPDATE_CONFLICT_MARKERS, UPDATE_DIFF = 1, 2, 4, 8, 16

_p = ctypes.c_void_p
_s = ctypes.c_char_p
_i = ctypes.c_int
_strings = ctypes.POINTER(ctypes.c_char_p)

lib = _load()
for _name, _result, _arguments in [
    ("mb_parse_options_init", None, [ctypes.POINTER(Options)]),
    ("mb_parse_with", _i, [_s, ctypes.POINTER(Options), ctypes.POINTER(_p)]),
    ("mb_switch_count", _i, []),
    ("mb_switch_name", _s, [_i]),
    ("mb_switch_flag", ctypes.c_uint, [_i]),
    ("mb_ok", _i, [_p]),
    ("mb_report", _s, [_p]),
    ("mb_class_count", _i, [_p]),
    ("mb_class_name", _s, [_p, _i]),
    ("mb_diagnostic_count", _i, [_p]),
    ("mb_diagnostic_text", _s, [_p, _i]),
    ("mb_diagnostic_severity", _i, [_p, _i]),
    ("mb_diagnostic_file", _s, [_p, _i]),
    ("mb_diagnostic_line", _i, [_p, _i]),
    ("mb_diagnostic_column", _i, [_p, _i]),
    ("mb_diagnostic_message", _s, [_p, _i]),
    ("mb_write_class_outcome", _i, [_p, _s, _s, ctypes.POINTER(_p)]),
    ("mb_write_single_outcome", _i, [_p, _strings, _i, _s, ctypes.POINTER(_p)]),
    ("mb_outcome_count", _i, [_p]),
    ("mb_outcome_text", _s, [_p, _i]),
    ("mb_outcome_severity", _i, [_p, _i]),
    ("mb_outcome_file", _s, [_p, _i]),
    ("mb_outcome_line", _i, [_p, _i]),
    ("mb_outcome_column", _i, [_p, _i]),
    ("mb_outcome_message", _s, [_p, _i]),
    ("mb_outcome_free", None, [_p]),
    ("mb_render_class", _i, [_p, _s, ctypes.POINTER(_p)]),
    ("mb_string_free", None, [_p]),
    ("mb_free", None, [_p]),
    ("mb_update_folder", _i, [_p, _s, _strings, _i, ctypes.c_uint, ctypes.POINTER(_p)]),
    ("mb_update_error", _s, [_p]),
    ("mb_update_file_count", _i, [_p]),
    ("mb_update_file", _s, [_p, _i]),
    ("mb_update_outcome", _i, [_p, _i]),
    ("mb_update_outcome_name", _s, [_i]),
    ("mb_update_changes", _i, [_p, _i]),
    ("mb_update_renamed_from", _s, [_p, _i]),
    ("mb_update_message", _s, [_p, _i]),
    ("mb_update_diff", _s, [_p, _i]),
    ("mb_update_item_count", _i, [_p, _i, _i]),
    ("mb_update_item", _s, [_p, _i, _i, _i]),
    ("mb_update_conflict_line", _i, [_p, _i, _i]),
    ("mb_update_free", None, [_p]),
]:
    _function = getattr(lib, _name)
    _function.restype = _result
    _function.argtypes = _arguments

# The switches of the library's extensions by their Python names: "decode-references" is
# decode_references.
SWITCHES: Dict[str, int] = {lib.mb_switch_name(i).decode().replace("-", "_"): lib.mb_switch_flag(i)
                            for i in range(lib.mb_switch_count())}


def text(raw: Optional[bytes]) -> str:
    """Text from the library: UTF-8, with bytes that aren't kept as they are."""
    return "" if raw is None else raw.decode("utf-8", "surrogateescape")


def to_bytes(value: Union[str, "os.PathLike[str]", "os.PathLike[bytes]", bytes]) -> bytes:
    """Text or a path for the library."""
    if isinstance(value, (bytes, os.PathLike)):
        return os.fsencode(value)
    return str(value).encode("utf-8", "surrogateescape")


def string_array(values: "list[bytes]") -> "ctypes.Array[ctypes.c_char_p]":
    """A C array of the strings, never of length 0."""
    return (ctypes.c_char_p * max(len(values), 1))(*values)
