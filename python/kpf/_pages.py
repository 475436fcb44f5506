"""Memory of mapped files, given back once it has been read."""
from __future__ import annotations

import ctypes
import mmap
import sys


def _keep(address: int, size: int) -> None:
    """Where the system has no such call, it finds out by itself."""


def _give_back_on_linux(address: int, size: int) -> None:
    """Tells the system that these bytes will hardly be read again.

    They stay in the page cache, and whoever reads them after all gets them from there; but a long
    recording no longer counts as memory of this process, page by page as it is read. Whole pages
    only, those of its neighbours stay.
    """
    first = -(-address // mmap.PAGESIZE) * mmap.PAGESIZE
    last = (address + size) // mmap.PAGESIZE * mmap.PAGESIZE
    if last > first:
        _madvise(first, last - first, mmap.MADV_DONTNEED)  # advice: what fails changes nothing


if sys.platform == "linux":
    _madvise = ctypes.CDLL(None).madvise
    _madvise.argtypes = (ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int)
    give_back = _give_back_on_linux
else:
    give_back = _keep
