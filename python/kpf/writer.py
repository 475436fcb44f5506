"""A recording that is being written."""
from __future__ import annotations

import ctypes
import datetime
import os
import weakref
from typing import Any, NamedTuple

import numpy

from . import _signatures, errors
from ._library import encoded, lib

Array = numpy.ndarray[Any, Any]
# A moment: seconds since 1970 in UTC, or what NumPy and Python have for one.
Time = Any

_FORMS = {"value": _signatures.SAMPLES_VALUE, "left": _signatures.SAMPLES_LEFT}


class Counts(NamedTuple):
    """Frames of a writer. added = on disk as pictures + lost + failed."""

    announced: int  #: 0: not known
    added: int  #: places taken: the number of the next frame
    lost: int  #: of these, added by add_lost
    failed: int  #: of these, answered with WriteError: they read as lost
    refused: int  #: frames that took no place: every other exception


def _moment(time: Time) -> tuple[int, int]:
    """Whole seconds and microseconds. A datetime without a zone is taken as UTC, as NumPy does."""
    if isinstance(time, datetime.datetime):
        time = numpy.datetime64(time.astimezone(datetime.timezone.utc).replace(tzinfo=None)
                                if time.tzinfo else time)
    if isinstance(time, numpy.datetime64):
        if numpy.isnat(time):
            raise errors.ArgumentError("NaT is not a time")
        return divmod(int(time.astype("M8[us]").astype(numpy.int64)), 10**6)
    if isinstance(time, float):
        if not -2.0**53 < time < 2.0**53:
            raise errors.ArgumentError(f"{time} is not a time")
        return divmod(round(time * 10**6), 10**6)
    return int(time), 0


def _number(name: str, value: int, bits: int, signed: bool = False) -> int:
    """ctypes would cut what does not fit."""
    least, most = (-2 ** (bits - 1), 2 ** (bits - 1) - 1) if signed else (0, 2**bits - 1)
    if not least <= value <= most:
        raise errors.ArgumentError(f"{name} is {value}; it can be {least} to {most}")
    return int(value)


class Writer:
    """Writes a recording, frame by frame; a context manager.

    path: of the header file, by habit `.kpf`; the data files go into a folder of the same name.
    shape: rows and columns. bits: 8 or 12. frame_rate: whole frames per second.
    count: frames announced; 0, and the true count is set when it is closed.
    start: time of the first frame, in seconds since 1970 or as datetime64 or datetime.
    samples: of 12-bit arrays; "value", 0 to 4095, or "left", these times 16.
    replace: removes a recording of that name first; else there is an ExistsError.
    durable: closing waits until all is on the disk itself.
    text2, text5, value3, value5, value7: of your own meaning, kept in the header.

    Each call tells what became of its own frame. One thread at a time.
    """

    def __init__(self, path: str | os.PathLike[str], shape: tuple[int, int], *, bits: int = 8,
                 frame_rate: int = 25, count: int = 0, start: Time = 0, samples: str = "value",
                 replace: bool = False, durable: bool = False, text2: str = "", text5: str = "",
                 value3: int = 0, value5: int = 0, value7: int = 0) -> None:
        self.path = os.path.abspath(os.fsdecode(path))
        height, width = (_number("a side of the shape", side, 32) for side in shape)
        if samples not in _FORMS:
            raise errors.ArgumentError(f"samples is {samples!r}; it can be {', '.join(_FORMS)}")
        if frame_rate != int(frame_rate):
            raise errors.ArgumentError(f"frame_rate is {frame_rate}; the format has whole ones")
        seconds, microseconds = _moment(start)
        options = _signatures.WriterOptions(
            width=width, height=height, bits=_number("bits", bits, 32),
            frame_rate=_number("frame_rate", frame_rate, 32), frame_count=_number("count", count, 32),
            start_seconds=_number("start", seconds, 64, signed=True),
            start_microseconds=microseconds, samples=_FORMS[samples] if bits == 12 else 0,
            replace=bool(replace), durable=bool(durable), text2=encoded(text2),
            text5=encoded(text5), value3=_number("value3", value3, 32, signed=True),
            value5=_number("value5", value5, 32), value7=_number("value7", value7, 32, signed=True))
        handle = ctypes.c_void_p()
        lib.kpf_writer_create(encoded(self.path), options, ctypes.byref(handle))
        self._shape = (height, width)
        self._dtype = numpy.dtype(numpy.uint8 if bits == 8 else numpy.uint16)
        self._handle = handle.value
        # One that is forgotten is closed too, so that its count is set; at exit the system ends it.
        self._forgotten = weakref.finalize(self, lib.kpf_writer_close, self._handle, None)
        self._counts: Counts | None = None

    @property
    def shape(self) -> tuple[int, int]:
        """Rows and columns."""
        return self._shape

    @property
    def dtype(self) -> numpy.dtype[Any]:
        """What `add` takes."""
        return self._dtype

    def add(self, image: Array, time: Time | None = None) -> None:
        """Adds a frame. When this returns, its record is with the operating system.

        image: of the writer's shape and dtype; rows may lie apart. Other layouts are copied first.
        time: the frame's own; without it the one by the rate, start + number / frame_rate.

        A WriteError: this very frame did not get to its file, and reads as lost; the next may. Any
        other exception: it took no place.
        """
        image = self._checked(image)
        lib.kpf_writer_add_image(self._open_handle(), image.__array_interface__["data"][0],
                                 image.strides[0], self._stamp(time))

    def add_packed(self, data: Any, time: Time | None = None) -> None:
        """Adds a frame as it is stored: cameras' Mono12Packed (of an even width) goes as it is."""
        stored = numpy.frombuffer(data, numpy.uint8)
        lib.kpf_writer_add_packed(self._open_handle(), stored.__array_interface__["data"][0],
                                  stored.size, self._stamp(time))

    def add_lost(self) -> None:
        """Keeps the next place for a frame that was lost before it came here."""
        lib.kpf_writer_add_lost(self._open_handle())

    def __len__(self) -> int:
        return self.counts.added

    @property
    def counts(self) -> Counts:
        """What was announced, added, lost, failed and refused, also after closing."""
        if self._counts is not None:
            return self._counts
        counts = _signatures.WriterCounts()
        lib.kpf_writer_statistics(self._open_handle(), counts)
        return _counts_of(counts)

    def close(self) -> None:
        """Ends the recording; an exception says what is not on disk. May be called again."""
        if self._handle is None:
            return
        self._forgotten.detach()
        handle, self._handle = self._handle, None
        counts = _signatures.WriterCounts()
        try:
            lib.kpf_writer_close(handle, counts)
        finally:
            self._counts = _counts_of(counts)

    def __enter__(self) -> Writer:
        self._open_handle()
        return self

    def __exit__(self, kind: Any, error: BaseException | None, trace: Any) -> None:
        try:
            self.close()
        except errors.Error as closing:
            if error is None:
                raise
            if hasattr(error, "add_note"):  # Python 3.11: shown below what went wrong first
                error.add_note(f"and closing: {closing}")

    def __repr__(self) -> str:
        state = "closed " if self._handle is None else ""
        return f"<{state}kpf.Writer {self.path!r}: {self.counts.added} frames>"

    def _open_handle(self) -> int:
        if self._handle is None:
            raise errors.ClosedError(f"{self.path} was closed; a recording cannot be continued")
        return self._handle

    def _stamp(self, time: Time | None) -> _signatures.Stamp | None:
        if time is None:
            return None
        seconds, microseconds = _moment(time)
        return _signatures.Stamp(seconds=_number("time", seconds, 64, signed=True),
                                 microseconds=microseconds)

    def _checked(self, image: Array) -> Array:
        """Itself, where the library can read it as it lies: whole rows, one below the other."""
        if not isinstance(image, numpy.ndarray) or image.dtype != self._dtype:
            kind = getattr(image, "dtype", type(image).__name__)
            raise TypeError(f"this writer takes arrays of {self._dtype}, not {kind}; convert with "
                            "astype, and mind the range")
        if image.shape != self._shape:
            raise errors.ArgumentError(f"this writer takes frames of the shape {self._shape}, not "
                                       f"{image.shape}")
        if isinstance(image, numpy.ma.MaskedArray) and image.mask.any():
            raise errors.ArgumentError("the array is masked; use add_lost() for a lost frame")
        item = self._dtype.itemsize
        if image.strides[1] == item and image.strides[0] >= image.shape[1] * item:
            return image
        return numpy.ascontiguousarray(image)


def _counts_of(counts: _signatures.WriterCounts) -> Counts:
    return Counts(*(getattr(counts, name) for name in Counts._fields))
