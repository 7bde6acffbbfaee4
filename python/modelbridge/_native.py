"""ModelBridge from Python: parse a UML model saved as XMI, list its classes, read its
diagnostics, and write or render Tarvane class declarations.

    import modelbridge
    m = modelbridge.parse("bank.xmi")
    if m.ok:
        for name in m.classes:
            m.write_class(name, "out")

A thin layer over the library's C API (ctypes). Text is str throughout (UTF-8 inside). Calls
may come from any thread; the library serialises them.
"""

import ctypes
import os
from typing import List, NamedTuple, Optional, Sequence

__all__ = ["parse", "Model", "Diagnostic", "Error", "FileUpdate", "Conflict", "UpdateReport", "XMI2", "ANYWHERE",
           "REPRODUCIBLE"]

_LIBRARY = "@MODELBRIDGE_PY_LIBRARY@"   # the library's file name under its SONAME
_RELATIVE = "@MODELBRIDGE_PY_RELATIVE@"  # from this folder to the installed library's folder

XMI2, ANYWHERE, REPRODUCIBLE = 1, 2, 4
_OK, _FAILED, _NO_SUCH_CLASS, _INVALID_ARGUMENT, _NO_MEMORY = range(5)
_SEVERITIES = ("information", "warning", "error", "fatal")


def _load() -> ctypes.CDLL:
    """The library named by MODELBRIDGE_LIBRARY, else the one installed beside this module,
    else the one the system's loader finds."""
    chosen = os.environ.get("MODELBRIDGE_LIBRARY")
    if chosen:
        return ctypes.CDLL(chosen)
    beside = os.path.normpath(os.path.join(os.path.dirname(os.path.abspath(__file__)), _RELATIVE, _LIBRARY))
    return ctypes.CDLL(beside if os.path.exists(beside) else _LIBRARY)


class _Options(ctypes.Structure):
    _fields_ = [("size", ctypes.c_size_t), ("flags", ctypes.c_uint), ("line_width", ctypes.c_int),
                ("indent", ctypes.c_char_p), ("file_prefix", ctypes.c_char_p),
                ("library_folders", ctypes.POINTER(ctypes.c_char_p)), ("library_folder_count", ctypes.c_int)]


_lib = _load()
_model_p = ctypes.c_void_p
_outcome_p = ctypes.c_void_p
_update_p = ctypes.c_void_p
for _name, _result, _arguments in [
    ("mb_parse_options_init", None, [ctypes.POINTER(_Options)]),
    ("mb_parse_with", ctypes.c_int, [ctypes.c_char_p, ctypes.POINTER(_Options), ctypes.POINTER(_model_p)]),
    ("mb_switch_count", ctypes.c_int, []),
    ("mb_switch_name", ctypes.c_char_p, [ctypes.c_int]),
    ("mb_switch_flag", ctypes.c_uint, [ctypes.c_int]),
    ("mb_ok", ctypes.c_int, [_model_p]),
    ("mb_report", ctypes.c_char_p, [_model_p]),
    ("mb_class_count", ctypes.c_int, [_model_p]),
    ("mb_class_name", ctypes.c_char_p, [_model_p, ctypes.c_int]),
    ("mb_diagnostic_count", ctypes.c_int, [_model_p]),
    ("mb_diagnostic_text", ctypes.c_char_p, [_model_p, ctypes.c_int]),
    ("mb_diagnostic_severity", ctypes.c_int, [_model_p, ctypes.c_int]),
    ("mb_diagnostic_file", ctypes.c_char_p, [_model_p, ctypes.c_int]),
    ("mb_diagnostic_line", ctypes.c_int, [_model_p, ctypes.c_int]),
    ("mb_diagnostic_column", ctypes.c_int, [_model_p, ctypes.c_int]),
    ("mb_diagnostic_message", ctypes.c_char_p, [_model_p, ctypes.c_int]),
    ("mb_write_class_outcome", ctypes.c_int, [_model_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.POINTER(_outcome_p)]),
    ("mb_write_single_outcome", ctypes.c_int,
     [_model_p, ctypes.POINTER(ctypes.c_char_p), ctypes.c_int, ctypes.c_char_p, ctypes.POINTER(_outcome_p)]),
    ("mb_outcome_count", ctypes.c_int, [_outcome_p]),
    ("mb_outcome_text", ctypes.c_char_p, [_outcome_p, ctypes.c_int]),
    ("mb_outcome_free", None, [_outcome_p]),
    ("mb_render_class", ctypes.c_int, [_model_p, ctypes.c_char_p, ctypes.POINTER(ctypes.c_void_p)]),
    ("mb_string_free", None, [ctypes.c_void_p]),
    ("mb_free", None, [_model_p]),
    ("mb_update_folder", ctypes.c_int,
     [_model_p, ctypes.c_char_p, ctypes.POINTER(ctypes.c_char_p), ctypes.c_int, ctypes.c_uint, ctypes.POINTER(_update_p)]),
    ("mb_update_error", ctypes.c_char_p, [_update_p]),
    ("mb_update_file_count", ctypes.c_int, [_update_p]),
    ("mb_update_file", ctypes.c_char_p, [_update_p, ctypes.c_int]),
    ("mb_update_outcome", ctypes.c_int, [_update_p, ctypes.c_int]),
    ("mb_update_outcome_name", ctypes.c_char_p, [ctypes.c_int]),
    ("mb_update_changes", ctypes.c_int, [_update_p, ctypes.c_int]),
    ("mb_update_renamed_from", ctypes.c_char_p, [_update_p, ctypes.c_int]),
    ("mb_update_message", ctypes.c_char_p, [_update_p, ctypes.c_int]),
    ("mb_update_diff", ctypes.c_char_p, [_update_p, ctypes.c_int]),
    ("mb_update_item_count", ctypes.c_int, [_update_p, ctypes.c_int, ctypes.c_int]),
    ("mb_update_item", ctypes.c_char_p, [_update_p, ctypes.c_int, ctypes.c_int, ctypes.c_int]),
    ("mb_update_conflict_line", ctypes.c_int, [_update_p, ctypes.c_int, ctypes.c_int]),
    ("mb_update_free", None, [_update_p]),
]:
    _function = getattr(_lib, _name)
    _function.restype = _result
    _function.argtypes = _arguments


# The switches of the library's extensions as keywords of `parse`: "decode-references" is
# decode_references.
_SWITCHES = {_lib.mb_switch_name(i).decode().replace("-", "_"): _lib.mb_switch_flag(i)
             for i in range(_lib.mb_switch_count())}


def _text(raw: Optional[bytes]) -> str:
    return "" if raw is None else raw.decode("utf-8", "surrogateescape")


def _bytes(text) -> bytes:
    return os.fsencode(text) if isinstance(text, os.PathLike) else str(text).encode("utf-8", "surrogateescape")


class Diagnostic(NamedTuple):
    severity: str  # "information", "warning", "error" or "fatal"
    file: str      # the input file's full path, or "" where there is no position
    line: int
    column: int
    message: str
    text: str      # the full line: "bank.xmi (2,6): Fatal error! Syntax error at ''c''."


class Conflict(NamedTuple):
    line: int    # in the user's file, counted from 1
    member: str  # the declaration's first line, as the model now gives it


class FileUpdate(NamedTuple):
    file: str           # the file's name in the folder
    outcome: str        # "created", "unchanged", "updated", "merged", "conflict", "foreign", "stale",
                        # "pruned" or "failed"
    changes: bool       # whether it is, or would be, written, renamed or removed
    renamed_from: str   # the file it was before its class was renamed, or ""
    message: str        # why it was left alone or failed, or ""
    diff: str           # with diff=True, its change as a unified diff
    orphaned: List[str]  # members gone from the model, kept commented out: their first lines
    restored: List[str]  # members kept so before, back in place
    conflicts: List[Conflict]


class UpdateReport(NamedTuple):
    ok: bool     # every file settled: no conflict, no foreign file, no failure
    error: str   # why nothing was done (a record that can't be read: "FILE:LINE: reason"), or ""
    files: List[FileUpdate]


_ORPHANED, _RESTORED, _CONFLICTS = range(3)


def _report(update) -> UpdateReport:
    def items(i, kind):
        return [_text(_lib.mb_update_item(update, i, kind, k)) for k in range(_lib.mb_update_item_count(update, i, kind))]
    files = [FileUpdate(_text(_lib.mb_update_file(update, i)), _text(_lib.mb_update_outcome_name(_lib.mb_update_outcome(update, i))),
                        _lib.mb_update_changes(update, i) == 1, _text(_lib.mb_update_renamed_from(update, i)),
                        _text(_lib.mb_update_message(update, i)), _text(_lib.mb_update_diff(update, i)),
                        items(i, _ORPHANED), items(i, _RESTORED),
                        [Conflict(_lib.mb_update_conflict_line(update, i, k), member)
                         for k, member in enumerate(items(i, _CONFLICTS))])
             for i in range(_lib.mb_update_file_count(update))]
    error = _text(_lib.mb_update_error(update))
    return UpdateReport(not error and all(f.outcome not in ("conflict", "foreign", "failed") for f in files), error, files)


class Error(Exception):
    """A write that failed; `diagnostics` holds the texts of what that call gave."""

    def __init__(self, diagnostics: List[str]):
        super().__init__("; ".join(diagnostics))
        self.diagnostics = diagnostics


class Model:
    """A parsed model. Made by `parse`; the library's model is freed with this object."""

    def __init__(self, handle: ctypes.c_void_p):
        self._handle = handle
        count = _lib.mb_class_count(handle)
        self.classes: List[str] = [_text(_lib.mb_class_name(handle, i)) for i in range(count)]
        self.diagnostics: List[Diagnostic] = [
            Diagnostic(_SEVERITIES[_lib.mb_diagnostic_severity(handle, i)], _text(_lib.mb_diagnostic_file(handle, i)),
                       _lib.mb_diagnostic_line(handle, i), _lib.mb_diagnostic_column(handle, i),
                       _text(_lib.mb_diagnostic_message(handle, i)), _text(_lib.mb_diagnostic_text(handle, i)))
            for i in range(_lib.mb_diagnostic_count(handle))]
        self.ok: bool = _lib.mb_ok(handle) == 1
        self.report: str = _text(_lib.mb_report(handle))

    def __del__(self):
        handle, self._handle = getattr(self, "_handle", None), None
        if handle:
            _lib.mb_free(handle)

    def _written(self, write, name) -> None:
        """Runs a write of the C API with an outcome of its own, and raises what it gave."""
        outcome = _outcome_p()
        status = write(ctypes.byref(outcome))
        try:
            results = [_text(_lib.mb_outcome_text(outcome, i)) for i in range(_lib.mb_outcome_count(outcome))]
        finally:
            if outcome.value:
                _lib.mb_outcome_free(outcome)
        self._checked(status, name, results)

    def _checked(self, status: int, name, results: Optional[List[str]] = None) -> None:
        results = results or []
        if status == _NO_SUCH_CLASS:
            raise KeyError(name)
        if status == _NO_MEMORY:
            raise MemoryError()
        if status != _OK:
            raise Error(results)

    def write_class(self, name: str, directory=".") -> None:
        """Writes DIRECTORY/NAME.tv. KeyError for a class the model doesn't hold (nothing is
        written), Error with the diagnostics when the write fails."""
        self._written(lambda outcome: _lib.mb_write_class_outcome(self._handle, _bytes(name), _bytes(directory), outcome),
                      name)

    def write_classes(self, names: Sequence[str], file) -> None:
        """Writes the named classes (none: every class), in the model's order, into one file
        whose extension becomes .tv."""
        array = (ctypes.c_char_p * max(len(names), 1))(*[_bytes(n) for n in names])
        self._written(lambda outcome: _lib.mb_write_single_outcome(self._handle, array, len(names), _bytes(file), outcome),
                      list(names))

    def update(self, directory, classes: Sequence[str] = (), *, check: bool = False, overwrite: bool = False,
               prune: bool = False, conflict_markers: bool = False, diff: bool = False) -> UpdateReport:
        """Brings DIRECTORY (made when missing) up to date with the named classes (none: every
        class), one file each, keeping what the user wrote in the files: see UpdateReport.
        check=True writes nothing; diff=True gives each file's change as a unified diff.
        KeyError for a class the model doesn't hold (nothing is written)."""
        flags = (1 if check else 0) | (2 if overwrite else 0) | (4 if prune else 0) | (8 if conflict_markers else 0) \
            | (16 if diff else 0)
        array = (ctypes.c_char_p * max(len(classes), 1))(*[_bytes(n) for n in classes])
        update = _update_p()
        status = _lib.mb_update_folder(self._handle, _bytes(directory), array, len(classes), flags, ctypes.byref(update))
        try:
            self._checked(status if status != _FAILED else _OK, list(classes))
            return _report(update)
        finally:
            if update.value:
                _lib.mb_update_free(update)

    def render_class(self, name: str) -> str:
        """The text that write_class(name, ".") would write, without writing."""
        raw = ctypes.c_void_p()
        status = _lib.mb_render_class(self._handle, _bytes(name), ctypes.byref(raw))
        try:
            self._checked(status, name)
            return _text(ctypes.string_at(raw.value))
        finally:
            if raw.value:
                _lib.mb_string_free(raw)


def parse(path, *, specified: bool = False, reproducible: bool = True, line_width: int = 100, indent: str = "\t",
          file_prefix: str = "", library: Sequence = (), **switches: bool) -> Model:
    """Parses the XMI file. Always gives a model: see `ok` and `diagnostics`. The keywords
    beyond the layout are the switches of the library's extensions (xmi2, anywhere,
    plain_model_text, decode_references, every_form, ...), all on by default; `specified=True`
    turns off every switch not named, for exactly the library's specified results. `library`
    names the folders where files that types are referred to in are looked for. Options out
    of bounds raise ValueError; an unknown switch TypeError."""
    options = _Options()
    _lib.mb_parse_options_init(ctypes.byref(options))
    if specified:
        options.flags &= REPRODUCIBLE
    for switch, on in switches.items():
        if switch not in _SWITCHES:
            raise TypeError(f"parse() got an unexpected keyword argument '{switch}'")
        options.flags = options.flags | _SWITCHES[switch] if on else options.flags & ~_SWITCHES[switch]
    if not reproducible:
        options.flags &= ~REPRODUCIBLE
    options.line_width, options.indent, options.file_prefix = line_width, _bytes(indent), _bytes(file_prefix)
    folders = (ctypes.c_char_p * len(library))(*[_bytes(folder) for folder in library])
    options.library_folders, options.library_folder_count = folders, len(library)
    handle = _model_p()
    status = _lib.mb_parse_with(_bytes(path), ctypes.byref(options), ctypes.byref(handle))
    if status == _NO_MEMORY or not handle.value:
        raise MemoryError()
    model = Model(handle)
    if status == _INVALID_ARGUMENT:
        raise ValueError(model.diagnostics[0].text if model.diagnostics else "bad options")
    return model
