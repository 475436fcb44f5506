"""A recording, opened for reading."""
from __future__ import annotations

import os
from typing import Any, Sequence

import numpy

from . import errors
from ._pictures import ACCESS, FORMS, LOST, Pictures
from .frames import Array, Frames
from .header import Header, header_of


def _option(name: str, value: str, known: Any) -> str:
    if value not in known:
        raise errors.ArgumentError(f"{name} is {value!r}; it can be {', '.join(known)}")
    return value


class Recording(Frames):
    """The frames of a recording, as a sequence, and as a reader of PIMS.

    path: its header file.
    samples: of 12-bit frames; "value" gives 0 to 4095, "left" these times 16.
    lost: what a lost frame is. "mask": a masked array, all of it masked; in a plain array of many
        frames zeros, with a LostFramesWarning, and `lost` is the mask. "nan": all frames are
        float32, lost ones NaN. "repeat": the last picture before it (of the first frames: the first
        picture). "raise": a LostFrameError.
    access: "sequential" gives the memory of frames back once they were read, "sparse" keeps it for
        who looks at the same frames again, and reads nothing ahead.

    8-bit frames are read-only views of the file, which stays mapped for as long as one of them
    lives, also when the recording is closed. 12-bit frames are unpacked into memory of their own.
    Any number of threads may read. It pickles as its path and options.
    """

    def __init__(self, path: str | os.PathLike[str], *, samples: str = "value",
                 lost: str = "mask", access: str = "sequential") -> None:
        self.path = os.path.abspath(os.fsdecode(path))
        self.options = {"samples": _option("samples", samples, FORMS),
                        "lost": _option("lost", lost, LOST),
                        "access": _option("access", access, ACCESS)}
        self._open: Pictures | None = Pictures(self.path, self.options)

    @property
    def _recording(self) -> Recording:
        return self

    @property
    def _pictures(self) -> Pictures:
        if self._open is None:
            raise errors.ClosedError(f"{self.path} was closed; open it again")
        return self._open

    @property
    def _places(self) -> Sequence[int]:
        return range(self._pictures.reader.info.frame_count)

    @property
    def header(self) -> Header:
        return header_of(self._pictures.reader.info)

    @property
    def frame_rate(self) -> float:
        """Frames per second."""
        return self.header.frame_rate

    def refresh(self) -> int:
        """Looks at the files again, for what was recorded since; gives the number of frames.

        Arrays that were read before stay as they are. Fails, and nothing changes, when another
        recording is there by now.
        """
        before, now = self._pictures, Pictures(self.path, self.options)
        if now.reader.identity != before.reader.identity:
            raise errors.FormatError(f"{self.path}: another recording is there now; open it anew")
        self._open = now
        return len(self)

    def close(self) -> None:
        """Ends reading. Views that were given stay valid. May be called again."""
        self._open = None

    def __enter__(self) -> Recording:
        self._pictures  # a closed one says so
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    def __reduce__(self) -> Any:
        return _opened_again, (type(self), self.path, self.options)

    def __repr__(self) -> str:
        if self._open is None:
            return f"<closed kpf.Recording {self.path!r}>"
        info = self._open.reader.info
        return (f"<kpf.Recording {self.path!r}: {info.frame_count} frames of {info.width} x "
                f"{info.height}, {info.bits} bits>")

    def read(self, index: int, out: Array) -> Array:
        """Reads one frame into an array of the caller's, of the frame's shape and dtype."""
        pictures, place = self._pictures, self._place(index)
        if out.shape != pictures.shape or out.dtype != pictures.dtype:
            raise errors.ArgumentError(f"out is {out.dtype} of the shape {out.shape}; a frame is "
                                       f"{pictures.dtype} of the shape {pictures.shape}")
        usable = out.dtype == numpy.uint16 and out.flags.c_contiguous and out.flags.writeable
        frame = pictures.read(place, out if usable else None)
        if isinstance(frame, numpy.ma.MaskedArray):
            raise errors.LostFrameError(f"{self.path}: frame {place} was lost, and a plain array "
                                        "cannot say so; open with lost='nan' or 'repeat'")
        if frame is not out:
            out[...] = frame
        return out

    # ---- The protocol of PIMS' FramesSequence, with what Frames has of it.

    @property
    def pixel_type(self) -> numpy.dtype[Any]:
        return self.dtype

    def get_frame(self, i: int) -> Array:
        return self._pictures.read(self._place(i))

    @classmethod
    def class_exts(cls) -> set[str]:
        return {"kpf"}

    # ---- For engines that compute elsewhere.

    def to_dask(self, chunk: int | None = None) -> Any:
        """A lazy array of frames x rows x columns; see kpf.dask_arrays.to_dask."""
        from .dask_arrays import to_dask
        return to_dask(self, chunk)

    def to_zarr_reference(self, file: str | os.PathLike[str] | None = None,
                          base: str | None = None) -> dict[str, Any]:
        """Where the bytes of each frame lie, for engines that read Zarr; see kpf.zarr_reference."""
        from .zarr_reference import to_zarr_reference
        return to_zarr_reference(self, file, base)


def _opened_again(kind: type[Recording], path: str, options: dict[str, str]) -> Recording:
    return kind(path, **options)
