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
        # What was read and not given back, all of one block, and where that block ends.
        self._first = self._last = self._block_end = 0

    def passed(self, frame: _signatures.Frame) -> None:
        """That frame was read."""
        pixels = frame.pixels
        if not pixels:
            return
        end = pixels + self._size
        if self._first <= pixels and end < self._block_end:
            self._last = max(self._last, end)  # the block goes on
        else:
            self._leave(pixels, pixels - frame.pixel_offset, end)

    def _leave(self, pixels: int, mapping: int, end: int) -> None:
        """Gives back all but the block in which the frame ends."""
        first = max(mapping, pixels // _BLOCK * _BLOCK)
        if self._first != first:  # it does not go on where the last one ended
            _give_back(self._first, -(-self._last // mmap.PAGESIZE) * mmap.PAGESIZE)
        self._block_end = (end // _BLOCK + 1) * _BLOCK
        self._first, self._last = max(first, self._block_end - _BLOCK), end
        _give_back(first, self._first)
