"""The frames of an open recording, in the form that its user asked for."""
from __future__ import annotations

import warnings
from functools import cached_property
from typing import Any, Iterator, Sequence

import numpy

from . import _signatures, errors
from ._buffers import Buffers
from ._pages import Behind
from ._reader import Reader
from ._table import Table

Array = numpy.ndarray[Any, Any]

FORMS = {"value": _signatures.SAMPLES_VALUE, "left": _signatures.SAMPLES_LEFT}
ACCESS = {"sequential": _signatures.ACCESS_SEQUENTIAL, "sparse": _signatures.ACCESS_SPARSE}
LOST = ("mask", "nan", "repeat", "raise")

# A recording of fewer bytes may stay in memory for the next time it is iterated over.
_LONG = 64 << 20


class Pictures:
    """Reads by place, which is the number of a frame from 0; lost ones keep theirs."""

    def __init__(self, path: str, options: dict[str, str]) -> None:
        self.reader = Reader(path, ACCESS[options["access"]])
        info = self.reader.info
        self.shape = self.reader.shape
        self.stored_dtype = numpy.dtype(numpy.uint8 if info.bits == 8 else numpy.uint16)
        self._lost = options["lost"]
        self.dtype = numpy.dtype(numpy.float32) if self._lost == "nan" else self.stored_dtype
        self._form = FORMS[options["samples"]]
        self._frame_size = info.frame_size
        long = info.frame_size * info.frame_count > _LONG
        self._gives_back = long and options["access"] == "sequential"

    @cached_property
    def table(self) -> Table:
        """Read without reading ahead, which would bring in all the pixels in between."""
        sparse = Reader(self.reader.path, ACCESS["sparse"])
        if sparse.identity != self.reader.identity:
            raise errors.FormatError(f"{sparse.path}: another recording is there now; open it anew")
        return Table(sparse, self.reader.info.frame_count)

    def read(self, place: int, out: Array | None = None) -> Array:
        """One frame; of 12 bits in `out`, where given and the frame has pixels."""
        return self._shown(self.reader.frame(place), place, out)

    def _shown(self, frame: _signatures.Frame, place: int, out: Array | None) -> Array:
        if frame.lost:
            return self._stand_in(place)
        picture = self._picture(frame, out)
        return picture.astype(numpy.float32) if self._lost == "nan" else picture

    def _picture(self, frame: _signatures.Frame, out: Array | None = None) -> Array:
        if self.reader.bits == 8:
            return self.reader.view(frame)
        samples = numpy.empty(self.shape, numpy.uint16) if out is None else out
        self.reader.unpack(frame, samples, self._form)
        return samples

    def _stand_in(self, place: int) -> Array:
        """What a lost frame is to this recording's user."""
        if self._lost == "raise":
            raise errors.LostFrameError(f"{self.reader.path}: frame {place} was lost")
        if self._lost == "repeat":
            return self._picture(self.reader.frame(self.table.source(place)))
        if self._lost == "nan":
            return numpy.full(self.shape, numpy.nan, numpy.float32)
        stand_in: Array = numpy.ma.masked_all(self.shape, self.dtype)
        return stand_in

    def _behind(self) -> Behind | None:
        return Behind(self._frame_size) if self._gives_back else None

    def iterate(self, places: Sequence[int]) -> Iterator[Array]:
        """Frame by frame, in memory that is used again where nobody keeps it."""
        if self.stored_dtype != numpy.uint16:
            yield from self._walk(places, None)
            return
        buffers = Buffers(self.shape, self.stored_dtype)
        try:
            yield from self._walk(places, buffers)
        finally:
            buffers.leave()

    def _walk(self, places: Sequence[int], buffers: Buffers | None) -> Iterator[Array]:
        behind = self._behind()
        for place in places:
            frame = self.reader.frame(place)
            # Not through a variable, which would hold the picture while the next one is made.
            yield self._shown(frame, place, buffers.take() if buffers else None)
            if behind is not None:
                behind.passed(frame)

    def block(self, places: Sequence[int]) -> Array:
        """Frames as one array, masked when one of them was lost and that is how to say so."""
        block = numpy.empty((len(places), *self.shape), self.dtype)
        lost: list[int] = []
        behind = self._behind()
        for at, place in enumerate(places):
            frame = self.reader.frame(place)
            shown = self._shown(frame, place, block[at] if block.dtype == numpy.uint16 else None)
            if isinstance(shown, numpy.ma.MaskedArray):
                lost.append(at)
                block[at] = 0
            elif not numpy.may_share_memory(shown, block):
                block[at] = shown
            if behind is not None:
                behind.passed(frame)
        return masked(block, lost) if lost else block

    def plain(self, block: Array) -> Array:
        """An array without a mask, and a warning where it had one."""
        if not isinstance(block, numpy.ma.MaskedArray):
            return block
        count = int(block.mask.any(axis=(1, 2)).sum())
        warnings.warn(f"{self.reader.path}: {count} lost frames are zeros in this array. `lost` "
                      "tells which, masked() masks them; or open with lost='nan', 'repeat' or "
                      "'raise'.", errors.LostFramesWarning, stacklevel=4)
        unmasked: Array = block.data
        return unmasked


def masked(block: Array, lost: Sequence[int]) -> numpy.ma.MaskedArray[Any, Any]:
    mask = numpy.zeros(block.shape, bool)
    mask[list(lost)] = True
    return numpy.ma.MaskedArray(block, mask)
