"""ModelBridge from Python: read a UML model saved as XMI, list its classes, read its
diagnostics, and write, render or update Tarvane class declarations.

    import modelbridge

    with modelbridge.parse("bank.xmi") as model:
        print(model.classes)                    # ['Account', 'Customer', 'SavingsAccount']
        report = model.update("spec")           # spec/*.tv, keeping what you wrote in them
        for file in report.files:
            print(file.file, file.outcome.value)

Text is str throughout; paths may be str or os.PathLike. Failures raise exceptions derived
from modelbridge.Error, which carry the library's diagnostics; a class the model doesn't hold
raises KeyError. Calls may come from any thread: the library serialises them.
"""

from __future__ import annotations

import ctypes as _ctypes
import dataclasses as _dataclasses
import enum as _enum
import os as _os
from typing import Any as _Any
from typing import Callable as _Callable
from typing import Iterable as _Iterable
from typing import List as _List
from typing import Optional as _Optional
from typing import Sequence as _Sequence
from typing import Tuple as _Tuple
from typing import Union as _Union

from . import _build
from . import _native

__version__: str = _build.VERSION

__all__ = [
    "__version__",
    "parse",
    "Model",
    "Severity",
    "Diagnostic",
    "Error",
    "ParseError",
    "WriteError",
    "UpdateError",
    "Outcome",
    "Conflict",
    "FileUpdate",
    "UpdateReport",
]

_Path = _Union[str, "_os.PathLike[str]"]
_lib = _native.lib


class Severity(_enum.Enum):
    """How grave a diagnostic is."""

    INFORMATION = "information"
    WARNING = "warning"
    ERROR = "error"
    FATAL = "fatal"


_SEVERITIES: _Tuple[Severity, ...] = (Severity.INFORMATION, Severity.WARNING, Severity.ERROR, Severity.FATAL)


@_dataclasses.dataclass(frozen=True)
class Diagnostic:
    """One thing the library said: `text` is the whole line, the other fields its parts."""

    severity: Severity
    file: str       # the input file's full path, or "" where there is no position
    line: int       # counted from 1; 0 where there is no position
    column: int
    message: str
    text: str       # "bank.xmi (2,6): Fatal error! Syntax error at ''c''."

    def __str__(self) -> str:
        return self.text


class Error(Exception):
    """Everything the library refuses or fails at; `diagnostics` says why."""

    def __init__(self, message: str, diagnostics: _Sequence[Diagnostic] = ()) -> None:
        super().__init__(message)
        self.diagnostics: _List[Diagnostic] = list(diagnostics)


class ParseError(Error):
    """The model could not be read: it holds an error (a syntax error, an unreadable file)."""


class WriteError(Error):
    """A file could not be written."""


class UpdateError(Error):
    """An update did nothing: the folder's record of the last generation can't be read."""


class Outcome(_enum.Enum):
    """What an update did, or would do, to one file."""

    CREATED = "created"
    UNCHANGED = "unchanged"
    UPDATED = "updated"
    MERGED = "merged"
    CONFLICT = "conflict"
    FOREIGN = "foreign"
    STALE = "stale"
    PRUNED = "pruned"
    FAILED = "failed"


_UNSETTLED = (Outcome.CONFLICT, Outcome.FOREIGN, Outcome.FAILED)


@_dataclasses.dataclass(frozen=True)
class Conflict:
    """Lines that the model and the user both changed."""

    line: int    # in the user's file, counted from 1
    member: str  # the declaration's first line, as the model now gives it


@_dataclasses.dataclass(frozen=True)
class FileUpdate:
    """What an update did, or would do, to one file."""

    file: str              # the file's name in the folder
    outcome: Outcome
    changes: bool          # whether it is, or would be, written, renamed or removed
    renamed_from: str      # the file it was before its class was renamed, or ""
    message: str           # why it was left alone or failed, or ""
    diff: str              # with diff=True, its change as a unified diff
    orphaned: _Tuple[str, ...]   # members gone from the model, kept commented out: their first lines
    restored: _Tuple[str, ...]   # members kept so before, back in place
    conflicts: _Tuple[Conflict, ...]


@_dataclasses.dataclass(frozen=True)
class UpdateReport:
    """An update, file by file. `ok` when every file was settled: no conflict, no file in the
    way that the record doesn't know, no failure."""

    files: _Tuple[FileUpdate, ...]

    @property
    def ok(self) -> bool:
        return all(f.outcome not in _UNSETTLED for f in self.files)


def _diagnostics(family: str, owner: _Any) -> _List[Diagnostic]:
    """The diagnostics of a model ("diagnostic") or of a write ("outcome"), read through the C
    API's calls of that family: mb_diagnostic_count, mb_diagnostic_severity, ..."""
    def part(kind: str, i: int) -> _Any:
        return getattr(_lib, f"mb_{family}_{kind}")(owner, i)

    return [Diagnostic(_SEVERITIES[part("severity", i)], _native.text(part("file", i)), part("line", i),
                       part("column", i), _native.text(part("message", i)), _native.text(part("text", i)))
            for i in range(getattr(_lib, f"mb_{family}_count")(owner))]


def _file_update(update: _ctypes.c_void_p, i: int) -> FileUpdate:
    def items(kind: int) -> _Tuple[str, ...]:
        return tuple(_native.text(_lib.mb_update_item(update, i, kind, k))
                     for k in range(_lib.mb_update_item_count(update, i, kind)))

    conflicts = tuple(Conflict(_lib.mb_update_conflict_line(update, i, k), member)
                      for k, member in enumerate(items(_native.CONFLICTS)))
    return FileUpdate(_native.text(_lib.mb_update_file(update, i)),
                      Outcome(_native.text(_lib.mb_update_outcome_name(_lib.mb_update_outcome(update, i)))),
                      _lib.mb_update_changes(update, i) == 1, _native.text(_lib.mb_update_renamed_from(update, i)),
                      _native.text(_lib.mb_update_message(update, i)), _native.text(_lib.mb_update_diff(update, i)),
                      items(_native.ORPHANED), items(_native.RESTORED), conflicts)


def _raise_for(status: int, name: object, error: type = Error, diagnostics: _Sequence[Diagnostic] = ()) -> None:
    """Raises what a status of the C API stands for; nothing for success."""
    if status == _native.OK:
        return
    if status == _native.NO_SUCH_CLASS:
        raise KeyError(name)
    if status == _native.NO_MEMORY:
        raise MemoryError()
    if status == _native.INVALID_ARGUMENT:
        raise ValueError("; ".join(d.text for d in diagnostics) or "an argument the library refuses")
    raise error("; ".join(d.text for d in diagnostics) or "the library failed", diagnostics)


class Model:
    """A parsed model, made by `parse`. Close it (or use it in a `with` block) to free the
    library's model at once; otherwise it is freed when the object goes."""

    _handle: _Optional[int]          # the C API's model, None once closed
    classes: _List[str]              # the classes, sorted
    diagnostics: _List[Diagnostic]   # what the parse said, errors and warnings first by position
    ok: bool                         # no error and no warning
    report: str                      # "Parsed 116 lines from file 'bank.xmi' in 0 seconds"

    def __init__(self) -> None:
        raise TypeError("a Model is made by modelbridge.parse()")

    @classmethod
    def _adopt(cls, handle: int) -> "Model":
        """The model over a handle of the C API, which it frees when closed."""
        model = cls.__new__(cls)
        model._handle = handle
        model.classes = [_native.text(_lib.mb_class_name(handle, i)) for i in range(_lib.mb_class_count(handle))]
        model.diagnostics = _diagnostics("diagnostic", handle)
        model.ok = _lib.mb_ok(handle) == 1
        model.report = _native.text(_lib.mb_report(handle))
        return model

    def close(self) -> None:
        """Frees the library's model; the classes, diagnostics and report stay readable. Calls
        that generate raise ValueError after it. Closing twice does nothing."""
        handle, self._handle = getattr(self, "_handle", None), None
        if handle:
            _lib.mb_free(handle)

    @property
    def closed(self) -> bool:
        return not getattr(self, "_handle", None)

    def __enter__(self) -> "Model":
        return self

    def __exit__(self, *exception: object) -> None:
        self.close()

    def __del__(self) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "closed" if self.closed else f"{len(self.classes)} classes"
        return f"<modelbridge.Model {self.report.split(' in ')[0]!r}, {state}>"

    def _open_handle(self) -> int:
        handle = getattr(self, "_handle", None)
        if not handle:
            raise ValueError("the model is closed")
        return int(handle)

    def _write(self, write: _Callable[[_ctypes.c_void_p], int], name: object) -> None:
        """Runs a write of the C API with an outcome of its own, and raises what it gave."""
        outcome = _ctypes.c_void_p()
        status = write(outcome)
        try:
            said = _diagnostics("outcome", outcome)
        finally:
            if outcome.value:
                _lib.mb_outcome_free(outcome)
        _raise_for(status, name, WriteError, said)

    def write_class(self, name: str, directory: _Path = ".") -> None:
        """Writes DIRECTORY/NAME.tv, replacing what is there. KeyError for a class the model
        doesn't hold (nothing is written), WriteError when the write fails."""
        handle = self._open_handle()
        self._write(lambda outcome: int(_lib.mb_write_class_outcome(
            handle, _native.to_bytes(name), _native.to_bytes(directory), _ctypes.byref(outcome))), name)

    def write_classes(self, names: _Iterable[str], file: _Path) -> None:
        """Writes the named classes (none: every class), in the model's order, into one file
        whose extension becomes .tv."""
        handle = self._open_handle()
        chosen = [_native.to_bytes(n) for n in names]
        array = _native.string_array(chosen)
        self._write(lambda outcome: int(_lib.mb_write_single_outcome(
            handle, array, len(chosen), _native.to_bytes(file), _ctypes.byref(outcome))), [n.decode() for n in chosen])

    def render_class(self, name: str) -> str:
        """The text that write_class(name, ".") would write, writing nothing."""
        raw = _ctypes.c_void_p()
        status = _lib.mb_render_class(self._open_handle(), _native.to_bytes(name), _ctypes.byref(raw))
        try:
            _raise_for(status, name)
            return _native.text(_ctypes.string_at(raw.value or 0))
        finally:
            if raw.value:
                _lib.mb_string_free(raw)

    def update(self, directory: _Path, classes: _Iterable[str] = (), *, check: bool = False,
               overwrite: bool = False, prune: bool = False, conflict_markers: bool = False,
               diff: bool = False) -> UpdateReport:
        """Brings DIRECTORY (made when missing) up to date with the named classes (none: every
        class), one file each, keeping what the user wrote in the files. check=True writes
        nothing; diff=True gives each file's change as a unified diff; overwrite=True replaces
        files the record doesn't know; prune=True removes the files of classes gone from the
        model; conflict_markers=True writes a file in conflict with markers round the lines.
        KeyError for a class the model doesn't hold (nothing is written); UpdateError when the
        folder's record can't be read. Conflicts and failures of single files are in the
        report (`ok` is False), not raised."""
        handle = self._open_handle()
        flags = ((_native.UPDATE_CHECK if check else 0) | (_native.UPDATE_OVERWRITE if overwrite else 0)
                 | (_native.UPDATE_PRUNE if prune else 0)
                 | (_native.UPDATE_CONFLICT_MARKERS if conflict_markers else 0) | (_native.UPDATE_DIFF if diff else 0))
        chosen = [_native.to_bytes(n) for n in classes]
        update = _ctypes.c_void_p()
        status = _lib.mb_update_folder(handle, _native.to_bytes(directory), _native.string_array(chosen), len(chosen),
                                       flags, _ctypes.byref(update))
        try:
            _raise_for(status if status != _native.FAILED else _native.OK, [n.decode() for n in chosen])
            error = _native.text(_lib.mb_update_error(update))
            if error:
                raise UpdateError(error, [_update_diagnostic(error)])
            return UpdateReport(tuple(_file_update(update, i) for i in range(_lib.mb_update_file_count(update))))
        finally:
            if update.value:
                _lib.mb_update_free(update)


def _update_diagnostic(error: str) -> Diagnostic:
    """"FILE:LINE: reason" as a diagnostic."""
    place, _, reason = error.partition(": ")
    file, _, line = place.rpartition(":")
    if file and line.isdigit():
        return Diagnostic(Severity.ERROR, file, int(line), 0, reason, error)
    return Diagnostic(Severity.ERROR, "", 0, 0, error, error)


def parse(path: _Path, *, specified: bool = False, reproducible: bool = True, line_width: int = 100,
          indent: str = "\t", file_prefix: str = "", library: _Iterable[_Path] = (),
          xmi2: _Optional[bool] = None, anywhere: _Optional[bool] = None, plain_model_text: _Optional[bool] = None,
          decode_references: _Optional[bool] = None, every_form: _Optional[bool] = None,
          decode_encodings: _Optional[bool] = None, safe_names: _Optional[bool] = None,
          cross_file_types: _Optional[bool] = None, report: _Optional[bool] = None,
          enumerations: _Optional[bool] = None, interfaces: _Optional[bool] = None,
          association_classes: _Optional[bool] = None, documentation: _Optional[bool] = None,
          constraints: _Optional[bool] = None) -> Model:
    """Reads the model in the XMI file PATH.

    Every extension of the library is on unless turned off by its keyword (xmi2=False ...);
    specified=True turns off every one not named, for exactly the library's specified results.
    `library` names folders where the files that types are referred to in are looked for.
    `reproducible` takes the header's time from SOURCE_DATE_EPOCH when it is set. The layout:
    `line_width` (20 to 10000), `indent`, `file_prefix`.

    Raises FileNotFoundError or IsADirectoryError for a path that isn't a file, ParseError
    (with the diagnostics) when the model holds an error, ValueError for layout options out of
    bounds. A model that parsed with warnings is returned with `ok` False."""
    switches = {"xmi2": xmi2, "anywhere": anywhere, "plain_model_text": plain_model_text,
                "decode_references": decode_references, "every_form": every_form,
                "decode_encodings": decode_encodings, "safe_names": safe_names, "cross_file_types": cross_file_types,
                "report": report, "enumerations": enumerations, "interfaces": interfaces,
                "association_classes": association_classes, "documentation": documentation,
                "constraints": constraints}
    options = _native.Options()
    _lib.mb_parse_options_init(_ctypes.byref(options))
    if specified:
        options.flags &= _native.REPRODUCIBLE
    for switch, on in switches.items():
        if on is not None:
            flag = _native.SWITCHES[switch]
            options.flags = options.flags | flag if on else options.flags & ~flag
    if not reproducible:
        options.flags &= ~_native.REPRODUCIBLE
    options.line_width, options.indent, options.file_prefix = line_width, _native.to_bytes(indent), \
        _native.to_bytes(file_prefix)
    folders = [_native.to_bytes(folder) for folder in library]
    options.library_folders, options.library_folder_count = _native.string_array(folders), len(folders)

    name = _os.fspath(path)
    if _os.path.isdir(name):
        raise IsADirectoryError(21, "Is a directory", name)
    if not _os.path.exists(name):
        raise FileNotFoundError(2, "No such file or directory", name)
    handle = _ctypes.c_void_p()
    status = _lib.mb_parse_with(_native.to_bytes(path), _ctypes.byref(options), _ctypes.byref(handle))
    if status == _native.NO_MEMORY or not handle.value:
        raise MemoryError()
    model = Model._adopt(handle.value)
    if status == _native.INVALID_ARGUMENT:
        model.close()
        _raise_for(status, name, diagnostics=model.diagnostics)
    errors = [d for d in model.diagnostics if d.severity in (Severity.ERROR, Severity.FATAL)]
    if errors:
        model.close()
        raise ParseError("; ".join(d.text for d in errors), model.diagnostics)
    return model


def __dir__() -> _List[str]:
    return sorted(__all__)
