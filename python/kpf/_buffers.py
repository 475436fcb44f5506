"""Memory for the frames of an iteration."""
from __future__ import annotations

import math
import mmap
import sys
from typing import Any

import numpy

# References to a buffer that nobody else looks at: the list's, and that of the question itself.
_ONLY_OURS = 2

# Of the large pages that the system has, where it has some.
_LARGE_PAGE = 2 << 20


def _large(shape: tuple[int, ...], dtype: Any) -> numpy.ndarray[Any, Any]:
    """Memory in whole large pages, of which a frame takes one or two instead of hundreds of small
    ones: unpacking into it takes a tenth less time."""
    size = math.prod(shape) * numpy.dtype(dtype).itemsize
    if size < _LARGE_PAGE or not hasattr(mmap, "MADV_HUGEPAGE"):
        return numpy.empty(shape, dtype)
    memory = mmap.mmap(-1, -(-size // _LARGE_PAGE) * _LARGE_PAGE,
                       flags=mmap.MAP_PRIVATE | mmap.MAP_ANONYMOUS)
    try:
        memory.madvise(mmap.MADV_HUGEPAGE)
    except OSError:
        pass  # a system without them; the memory is as good as any
    return numpy.ndarray(shape, dtype, buffer=memory)


# Buffers of the iteration that ended last, by what they are for: at most one entry.
_spare: dict[Any, list[numpy.ndarray[Any, Any]]] = {}

# Larger ones are not kept when nobody iterates.
_MOST_SPARE = 64 << 20


class Buffers:
    """Arrays of one shape, handed out anew once nobody looks at them.

    The first touch of new memory costs as much as unpacking into it. Whoever keeps a frame, or a
    view of it, holds a reference, and so keeps its memory.
    """

    def __init__(self, shape: tuple[int, ...], dtype: Any) -> None:
        self._shape, self._dtype = shape, dtype
        self._spare = _spare  # at exit the module may be gone before an iteration is
        # Two, since the last frame is still in its caller's hands when the next is asked for.
        self._kept = _spare.pop((shape, dtype), None) or [_large(shape, dtype), _large(shape, dtype)]

    def take(self) -> numpy.ndarray[Any, Any]:
        for at in range(len(self._kept)):
            if sys.getrefcount(self._kept[at]) == _ONLY_OURS:
                return self._kept[at]
        # Frames are being kept, and each takes no more than it needs.
        self._kept = [self._kept[1], numpy.empty(self._shape, self._dtype)]
        return self._kept[1]

    def leave(self) -> None:
        """Nothing more is taken here: the next iteration may have them, as far as nobody keeps
        them."""
        kept, self._kept = self._kept, []
        if sum(array.nbytes for array in kept) <= _MOST_SPARE:
            self._spare.clear()
            self._spare[self._shape, self._dtype] = kept
