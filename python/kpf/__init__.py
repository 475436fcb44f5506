"""Recordings of mono video, read and written as NumPy arrays, and amplification of small movements.

    import kpf

    with kpf.Writer("clip.kpf", (480, 640), bits=12, frame_rate=100) as writer:
        writer.add(image)

    recording = kpf.open("clip.kpf")
    for frame in recording[100:200:10]:
        ...
"""
from __future__ import annotations

import os
from typing import Any

from ._library import lib as _lib
from .amplifier import Amplifier
from .errors import (ArgumentError, BadNameError, ClosedError, Error, ExistsError, FormatError,
                     FullError, IncompleteError, LostFrameError, LostFramesWarning, NotReadyError,
                     OpenError, OutOfMemoryError, RangeError, WriteError)
from .frames import Frames
from .header import Header
from .recording import Recording
from .writer import Counts, Writer

__all__ = [
    "Amplifier", "ArgumentError", "BadNameError", "ClosedError", "Counts", "Error", "ExistsError",
    "FormatError", "Frames", "FullError", "Header", "IncompleteError", "LostFrameError",
    "LostFramesWarning", "NotReadyError", "OpenError", "OutOfMemoryError", "RangeError",
    "Recording", "WriteError", "Writer", "library_version", "map_overlap", "open",
]

#: Version of the shared library that is loaded.
library_version: str = _lib.kpf_version().decode()


def open(path: str | os.PathLike[str], *, samples: str = "value", lost: str = "mask",
         access: str = "sequential") -> Recording:
    """Opens a recording for reading; see Recording for what the options mean."""
    return Recording(path, samples=samples, lost=lost, access=access)


def map_overlap(*arguments: Any, **options: Any) -> Any:
    """A function of each frame and its neighbours, on dask; see kpf.dask_arrays.map_overlap."""
    from .dask_arrays import map_overlap as mapped
    return mapped(*arguments, **options)
