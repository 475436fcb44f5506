"""Amplification of small movements."""
from __future__ import annotations

import ctypes
import weakref
from typing import Any

import numpy

from . import _signatures, errors
from ._library import lib

Array = numpy.ndarray[Any, Any]


class Amplifier:
    """A window of recent 8-bit frames, against which the newest is amplified; a context manager.

    shape: rows and columns. frame_rate, motion_frequency: in cycles per second; the window spans
    three cycles. gain: the factor on each pixel's positive difference from the reference.
    """

    def __init__(self, shape: tuple[int, int], frame_rate: float, motion_frequency: float,
                 gain: float = 8.0) -> None:
        height, width = shape
        if not (0 < height < 65536 and 0 < width < 65536):
            raise errors.ArgumentError(f"the sides of the shape {shape} can be 1 to 65535")
        options = _signatures.AmplifierOptions(
            width=width, height=height, frame_rate=frame_rate, motion_frequency=motion_frequency,
            gain=gain)
        handle = ctypes.c_void_p()
        lib.kpf_amplifier_create(options, ctypes.byref(handle))
        self._shape = (height, width)
        self._gain = float(gain)
        self._handle = handle.value
        self._forgotten = weakref.finalize(self, lib.kpf_amplifier_destroy, self._handle)
        self._forgotten.atexit = False

    @property
    def shape(self) -> tuple[int, int]:
        return self._shape

    @property
    def window(self) -> int:
        """Frames that it holds, which must have been added before one can be had."""
        return self._number(lib.kpf_amplifier_window)

    @property
    def available(self) -> bool:
        return bool(self._number(lib.kpf_amplifier_available))

    @property
    def gain(self) -> float:
        """May be changed at any time; the window stays."""
        return self._gain

    @gain.setter
    def gain(self, gain: float) -> None:
        lib.kpf_amplifier_set_gain(self._open_handle(), gain)
        self._gain = float(gain)

    def add(self, image: Array) -> None:
        """Adds a frame, copied; the oldest leaves a full window."""
        if not isinstance(image, numpy.ndarray) or image.dtype != numpy.uint8:
            kind = getattr(image, "dtype", type(image).__name__)
            raise TypeError(f"an amplifier takes arrays of uint8, not {kind}; of 12 bits take "
                            "(image >> 4).astype('u1')")
        if image.shape != self._shape:
            raise errors.ArgumentError(f"this amplifier takes frames of the shape {self._shape}, "
                                       f"not {image.shape}")
        if image.strides[1] != 1 or image.strides[0] < image.shape[1]:
            image = numpy.ascontiguousarray(image)
        lib.kpf_amplifier_add(self._open_handle(), image.__array_interface__["data"][0],
                              image.strides[0])

    def get(self, out: Array | None = None) -> Array:
        """The newest frame, amplified; NotReadyError while there are too few."""
        return self._filled(lib.kpf_amplifier_get, out)

    def reference(self, out: Array | None = None) -> Array:
        """What the newest frame is compared with."""
        return self._filled(lib.kpf_amplifier_reference, out)

    def close(self) -> None:
        """Ends it. May be called again."""
        if self._handle is not None:
            self._handle = None
            self._forgotten()

    def __enter__(self) -> Amplifier:
        self._open_handle()
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    def __repr__(self) -> str:
        state = "closed " if self._handle is None else ""
        return f"<{state}kpf.Amplifier of {self._shape}, gain {self._gain:g}>"

    def _open_handle(self) -> int:
        if self._handle is None:
            raise errors.ClosedError("the amplifier was closed")
        return self._handle

    def _number(self, ask: Any) -> int:
        number = ctypes.c_uint32()
        ask(self._open_handle(), ctypes.byref(number))
        return number.value

    def _filled(self, ask: Any, out: Array | None) -> Array:
        if out is None:
            out = numpy.empty(self._shape, numpy.uint8)
        flags = out.flags
        if (out.shape, out.dtype) != (self._shape, numpy.uint8) or not (
                flags.c_contiguous and flags.writeable):
            raise errors.ArgumentError(f"out must be a contiguous, writable array of uint8 of the "
                                       f"shape {self._shape}")
        ask(self._open_handle(), out.__array_interface__["data"][0], out.size)
        return out
