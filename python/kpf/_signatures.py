"""The C front's structures and functions, as kpf_types.h and kpf.h declare them.

Everything that is called or passed stands here and nowhere else; a test compares it with the headers.
"""
from __future__ import annotations

import ctypes
from ctypes import (POINTER, c_char, c_char_p, c_double, c_int32, c_int64, c_size_t, c_ubyte,
                    c_uint32, c_uint64, c_void_p)
from typing import Any

OK = 0
SAMPLES_VALUE, SAMPLES_LEFT = 0, 1
ACCESS_SEQUENTIAL, ACCESS_SPARSE = 0, 1
FRAMES_UNKNOWN = 0xFFFFFFFF


class Sized(ctypes.Structure):
    """A structure that begins with its own size, so that older and newer libraries take it."""

    def __init__(self, **members: Any) -> None:
        super().__init__(struct_size=ctypes.sizeof(self), **members)


class WriterOptions(Sized):
    _fields_ = [("struct_size", c_uint32), ("width", c_uint32), ("height", c_uint32),
                ("bits", c_uint32), ("frame_rate", c_uint32), ("frame_count", c_uint32),
                ("start_seconds", c_int64), ("start_microseconds", c_uint32),
                ("samples", c_uint32), ("replace", c_uint32), ("durable", c_uint32),
                ("text5", c_char_p), ("text2", c_char_p), ("value3", c_int32),
                ("value5", c_int32), ("value7", c_int32), ("reserved", c_uint32)]


class Stamp(Sized):
    _fields_ = [("struct_size", c_uint32), ("microseconds", c_uint32), ("seconds", c_int64)]


class WriterCounts(Sized):
    _fields_ = [("struct_size", c_uint32), ("announced", c_uint32), ("added", c_uint32),
                ("lost", c_uint32), ("failed", c_uint32), ("refused", c_uint32)]


class ReaderOptions(Sized):
    _fields_ = [("struct_size", c_uint32), ("access", c_uint32)]


class RecordingInfo(Sized):
    _fields_ = [("struct_size", c_uint32), ("width", c_uint32), ("height", c_uint32),
                ("bits", c_uint32), ("frame_rate", c_double), ("frame_count", c_uint32),
                ("announced", c_uint32), ("complete", c_uint32), ("frames_per_file", c_uint32),
                ("frame_size", c_uint64), ("has_status_file", c_uint32), ("value5", c_uint32),
                ("value3", c_double), ("value7", c_double), ("text5", c_char * 152),
                ("text2", c_char * 64), ("identifier", c_ubyte * 16)]


class Frame(Sized):
    _fields_ = [("struct_size", c_uint32), ("lost", c_uint32), ("number", c_uint32),
                ("microseconds", c_uint32), ("seconds", c_int64), ("pixels", c_void_p),
                ("pixel_offset", c_uint64), ("file_number", c_uint32), ("reserved", c_uint32)]


class AmplifierOptions(Sized):
    _fields_ = [("struct_size", c_uint32), ("width", c_uint32), ("height", c_uint32),
                ("reserved", c_uint32), ("frame_rate", c_double), ("motion_frequency", c_double),
                ("gain", c_double)]


# Functions that answer with a result, and what they take.
CALLS: dict[str, tuple[Any, ...]] = {
    "kpf_writer_create": (c_char_p, POINTER(WriterOptions), POINTER(c_void_p)),
    "kpf_writer_add_image": (c_void_p, c_void_p, c_size_t, POINTER(Stamp)),
    "kpf_writer_add_packed": (c_void_p, c_void_p, c_size_t, POINTER(Stamp)),
    "kpf_writer_add_lost": (c_void_p,),
    "kpf_writer_statistics": (c_void_p, POINTER(WriterCounts)),
    "kpf_writer_close": (c_void_p, POINTER(WriterCounts)),
    "kpf_reader_open": (c_char_p, POINTER(ReaderOptions), POINTER(c_void_p)),
    "kpf_reader_describe": (c_void_p, POINTER(RecordingInfo)),
    "kpf_reader_frame": (c_void_p, c_uint32, POINTER(Frame)),
    "kpf_reader_data_file": (c_void_p, c_uint32, POINTER(c_char_p)),
    "kpf_reader_close": (c_void_p,),
    "kpf_unpack": (c_uint32, c_uint32, c_uint32, c_void_p, c_size_t, c_void_p, c_size_t, c_uint32),
    "kpf_amplifier_create": (POINTER(AmplifierOptions), POINTER(c_void_p)),
    "kpf_amplifier_window": (c_void_p, POINTER(c_uint32)),
    "kpf_amplifier_add": (c_void_p, c_void_p, c_size_t),
    "kpf_amplifier_available": (c_void_p, POINTER(c_uint32)),
    "kpf_amplifier_get": (c_void_p, c_void_p, c_size_t),
    "kpf_amplifier_reference": (c_void_p, c_void_p, c_size_t),
    "kpf_amplifier_set_gain": (c_void_p, c_double),
    "kpf_amplifier_destroy": (c_void_p,),
}

# Functions that answer with a text, and what they take.
TEXTS: dict[str, tuple[Any, ...]] = {
    "kpf_version": (),
    "kpf_result_name": (c_int32,),
    "kpf_error_text": (),
}
