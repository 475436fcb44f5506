"""Finds the shared library, and gives its functions the types and errors of Python."""
from __future__ import annotations

import ctypes
import os
import sys
from pathlib import Path
from typing import Any

from . import _signatures, errors

# The first number of the version is that of the binary interface.
_NAME = "kpf.dll" if sys.platform == "win32" else "libkpf.so.1"


def _candidates() -> list[str]:
    """The one that KPF_LIBRARY names; else that of the wheel; else that of the system."""
    named = os.environ.get("KPF_LIBRARY")
    if named:
        return [named]
    beside = Path(__file__).with_name(_NAME)
    return [str(beside)] if beside.exists() else [_NAME]


def _load() -> ctypes.CDLL:
    for name in _candidates():
        try:
            return ctypes.CDLL(name)
        except OSError as error:
            raise ImportError(
                f"{name} cannot be loaded ({error}). Install the package libkpf1, or set "
                "KPF_LIBRARY to the path of the library.") from error
    raise AssertionError("there is always a candidate")


def _check(result: int, function: Any, arguments: Any) -> int:
    """Turns a result that is a failure into its exception, with the library's own text."""
    if result == _signatures.OK:
        return result
    text = lib.kpf_error_text().decode("utf-8", "replace")
    raise errors.BY_RESULT.get(result, errors.Error)(text)


def _bind(library: ctypes.CDLL) -> ctypes.CDLL:
    for name, takes in _signatures.CALLS.items():
        function = getattr(library, name)
        function.restype, function.argtypes, function.errcheck = ctypes.c_int32, takes, _check
    for name, takes in _signatures.TEXTS.items():
        function = getattr(library, name)
        function.restype, function.argtypes = ctypes.c_char_p, takes
    return library


lib = _bind(_load())


def encoded(path: str | bytes | os.PathLike[Any]) -> bytes:
    """A name as the library takes it: UTF-8. What is not, it refuses itself."""
    text = os.fsdecode(path)
    if "\0" in text:
        raise errors.BadNameError("a name holds no zero character")
    return text.encode("utf-8", "surrogateescape")
