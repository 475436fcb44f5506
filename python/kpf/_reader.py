"""An open recording of the library, for as long as anything looks at it."""
from __future__ import annotations

import ctypes
import os
import threading
import weakref
from typing import Any

import numpy

from . import _signatures
from ._library import encoded, lib

# Copied, which takes less time than filling one in.
_EMPTY_FRAME = bytes(_signatures.Frame())


class Stored:
    """Stored pixels, as NumPy takes them without copying.

    NumPy keeps this object while an array looks at the pixels, and it keeps the reader, which keeps
    the file mapped.
    """

    __slots__ = ("__array_interface__", "_reader")

    def __init__(self, reader: Reader, address: int, shape: tuple[int, ...]) -> None:
        self._reader = reader
        self.__array_interface__ = {
            "version": 3, "shape": shape, "typestr": "|u1", "data": (address, True)}


class Reader:
    """A handle, closed when the last view of its pixels is gone, and not before.

    So a recording may be closed or refreshed while arrays look at it. Any thread may use it: calls
    that need the handle take turns, unpacking needs none.
    """

    __slots__ = ("path", "info", "shape", "bits", "_size", "_handle", "_lock", "__weakref__")

    def __init__(self, path: str, access: int) -> None:
        self.path = path
        self._lock = threading.Lock()
        handle = ctypes.c_void_p()
        lib.kpf_reader_open(encoded(path), _signatures.ReaderOptions(access=access),
                            ctypes.byref(handle))
        self._handle = handle.value
        # Not at exit: threads may still read then, and the system unmaps by itself.
        weakref.finalize(self, lib.kpf_reader_close, self._handle).atexit = False
        self.info = _signatures.RecordingInfo()
        lib.kpf_reader_describe(self._handle, self.info)
        # Members of a structure are made anew each time one looks at them.
        self.shape = (self.info.height, self.info.width)
        self.bits, self._size = self.info.bits, self.info.frame_size

    @property
    def identity(self) -> tuple[Any, ...]:
        """The same for as long as the same recording lies at the path, however it grows."""
        info = self.info
        return (bytes(info.identifier), info.width, info.height, info.bits, info.frames_per_file)

    def frame(self, place: int) -> _signatures.Frame:
        frame = _signatures.Frame.from_buffer_copy(_EMPTY_FRAME)
        with self._lock:
            lib.kpf_reader_frame(self._handle, place, frame)
        return frame

    def data_file(self, number: int) -> str:
        path = ctypes.c_char_p()
        with self._lock:
            lib.kpf_reader_data_file(self._handle, number, ctypes.byref(path))
            return os.fsdecode(path.value or b"")

    def view(self, frame: _signatures.Frame) -> numpy.ndarray[Any, Any]:
        """The pixels of an 8-bit frame, read-only, where they lie in the file."""
        return numpy.asarray(Stored(self, frame.pixels, self.shape))

    def unpack(self, frame: _signatures.Frame, samples: numpy.ndarray[Any, Any], form: int) -> None:
        """Unpacks a 12-bit frame into `samples`, which is contiguous and of its size."""
        height, width = self.shape
        lib.kpf_unpack(width, height, self.bits, frame.pixels, self._size,
                       samples.__array_interface__["data"][0], samples.size, form)
