"""What stands beside the pixels: number, time and fate of every frame."""
from __future__ import annotations

from typing import Any

import numpy

from . import errors
from ._reader import Reader

Array = numpy.ndarray[Any, Any]

# Whole seconds that datetime64[us] has room for.
_MOST_SECONDS = 2**63 // 10**6 - 1


class Table:
    """Read once, in one pass over the headers of the records."""

    def __init__(self, reader: Reader, count: int) -> None:
        self.numbers = numpy.empty(count, numpy.uint32)
        self.times = numpy.empty(count, "M8[us]")
        self.lost = numpy.zeros(count, bool)
        self._sources: Array | None = None
        microseconds = self.times.view(numpy.int64)
        for place in range(count):
            frame = reader.frame(place)
            self.numbers[place] = frame.number
            self.lost[place] = frame.lost
            known = not frame.lost and abs(frame.seconds) <= _MOST_SECONDS
            microseconds[place] = (frame.seconds * 10**6 + frame.microseconds if known
                                   else numpy.datetime64("NaT").astype(numpy.int64))
        for column in (self.numbers, self.times, self.lost):
            column.flags.writeable = False

    def source(self, place: int) -> int:
        """The last picture up to that place; where there is none as yet, the first one."""
        if self._sources is None:
            pictures = numpy.flatnonzero(~self.lost)
            if not pictures.size:
                raise errors.LostFrameError("every frame was lost: there is none to repeat")
            last = numpy.searchsorted(pictures, numpy.arange(self.lost.size), side="right") - 1
            self._sources = pictures[numpy.maximum(last, 0)]
        return int(self._sources[place])
