"""Memory for the frames of an iteration."""
from __future__ import annotations

import sys
from typing import Any

import numpy

# References to a buffer that nobody else looks at: the list's, and that of the question itself.
_ONLY_OURS = 2


class Buffers:
    """Arrays of one shape, handed out anew once nobody looks at them.

    The first touch of new memory costs as much as unpacking into it. Whoever keeps a frame, or a
    view of it, holds a reference, and so keeps its memory.
    """

    def __init__(self, shape: tuple[int, ...], dtype: Any) -> None:
        self._shape, self._dtype = shape, dtype
        # Two, since the last frame is still in its caller's hands when the next is asked for.
        self._kept = [numpy.empty(shape, dtype), numpy.empty(shape, dtype)]

    def take(self) -> numpy.ndarray[Any, Any]:
        for at in range(len(self._kept)):
            if sys.getrefcount(self._kept[at]) == _ONLY_OURS:
                return self._kept[at]
        self._kept = [self._kept[1], numpy.empty(self._shape, self._dtype)]
        return self._kept[1]
