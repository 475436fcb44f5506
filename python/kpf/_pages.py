"""Memory of mapped files, given back once it has been read."""
from __future__ import annotations

import ctypes
import mmap
import sys

from . import _signatures

# What the system maps at once where it can: giving back less would break that up, and make every
# page behind it a fault of its own.
_BLOCK = 2 << 20


def _keep(first: int, last: int) -> None:
    """Where the system has no such call, it finds out by itself."""


def _give_back_on_linux(first: int, last: int) -> None:
    """Tells the system that these whole pages, all of one mapped file, will hardly be read again."""
    if last > first:
        _madvise(first, last - first, mmap.MADV_DONTNEED)  # advice: what fails changes nothing


if sys.platform == "linux":
    _madvise = ctypes.CDLL(None).madvise
    _madvise.argtypes = (ctypes.c_void_p, ctypes.c_size_t, ctypes.c_int)
    _give_back = _give_back_on_linux
else:
    _give_back = _keep


class Behind:
    """What lies behind the frame that was read last.

    Its bytes stay in the page cache, and whoever reads them after all gets them from there; but a
    long recording no longer counts as memory of this process, block by block as it is read. Never
    touches a page that holds no byte of the frames: the next one may be anybody's.
    """

    def __init__(self, frame_size: int) -> None:
        self._size = frame_size
        self._rest = (0, 0)  # read already, of the block in which the last frame ended

    def passed(self, frame: _signatures.Frame) -> None:
        """That frame was read."""
        if not frame.pixels:
            return
        end = frame.pixels + self._size
        mapping = frame.pixels - frame.pixel_offset
        first = max(mapping, frame.pixels // _BLOCK * _BLOCK)
        last = max(first, end // _BLOCK * _BLOCK)
        if self._rest[0] != first:  # it does not go on where the last one ended
            _give_back(*self._rest)
        _give_back(first, last)
        self._rest = (last, -(-end // mmap.PAGESIZE) * mmap.PAGESIZE)
