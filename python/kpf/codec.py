"""The codec of 12-bit frames, for engines that read Zarr: registered with numcodecs as `kpf12`."""
from __future__ import annotations

from typing import Any

import numpy
from numcodecs.abc import Codec
from numcodecs.compat import ensure_contiguous_ndarray, ndarray_copy
from numcodecs.registry import register_codec

from . import _signatures, errors
from ._library import lib
from ._pictures import FORMS
from .zarr_reference import LOST_12


class Kpf12(Codec):  # type: ignore[misc]
    """Two pixels in three bytes, and 16 bits a pixel when decoded."""

    codec_id = "kpf12"

    def __init__(self, width: int, height: int, samples: str = "value") -> None:
        if samples not in FORMS:
            raise errors.ArgumentError(f"samples is {samples!r}; it can be {', '.join(FORMS)}")
        self.width, self.height, self.samples = int(width), int(height), samples

    def decode(self, buf: Any, out: Any = None) -> Any:
        stored = ensure_contiguous_ndarray(buf).view(numpy.uint8)
        if not stored.size:  # a frame that was lost
            return ndarray_copy(numpy.full((self.height, self.width), LOST_12, numpy.uint16), out)
        frame = numpy.empty((self.height, self.width), numpy.uint16)
        lib.kpf_unpack(self.width, self.height, 12, stored.__array_interface__["data"][0],
                       stored.size, frame.__array_interface__["data"][0], frame.size,
                       FORMS[self.samples])
        return ndarray_copy(frame, out)

    def encode(self, buf: Any) -> bytes:
        """As docs/format.md has it; the last column of an odd width is not stored."""
        samples: numpy.ndarray[Any, Any] = numpy.asarray(buf).view(numpy.uint16).reshape(self.height, self.width)
        if FORMS[self.samples] == _signatures.SAMPLES_LEFT:
            samples = samples >> 4
        elif samples.size and samples.max() > 4095:
            raise errors.ArgumentError("a sample is above 4095; samples='left' takes such")
        stored = bytearray(self.width * self.height * 3 // 2)
        pairs = self.width // 2
        for y, row in enumerate(samples[:, :2 * pairs].reshape(self.height, pairs, 2)):
            a, b = row[:, 0], row[:, 1]
            packed = numpy.stack([a >> 4, (b & 15) << 4 | a & 15, b >> 4], axis=1)
            start = self.width * y * 3 // 2
            stored[start:start + 3 * pairs] = packed.astype(numpy.uint8).tobytes()
        return bytes(stored)


register_codec(Kpf12)
