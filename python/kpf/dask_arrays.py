"""Recordings as arrays of dask: computed in pieces, on all cores or on other machines.

What travels to a worker is the recording's path and a range of frames; it reads the frames itself.
So the path must mean the same there: a folder that all machines share, or the same machine.
"""
from __future__ import annotations

import functools
import os
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Callable

import numpy

from . import errors

if TYPE_CHECKING:
    from .recording import Recording

Array = numpy.ndarray[Any, Any]

# As many frames a task as make up this many bytes, where nobody says otherwise: long enough that a
# task's own cost of a millisecond does not count, short enough for a few of them at once.
_CHUNK_BYTES = 64 << 20


@dataclass(frozen=True)
class Source:
    """What a task knows of a recording."""

    path: str
    options: tuple[tuple[str, str], ...]
    identity: tuple[Any, ...]

    def block(self, start: int, stop: int) -> Array:
        recording = _opened(self.path, self.options, _version(self.path), os.getpid())
        if recording._pictures.reader.identity != self.identity:
            raise errors.FormatError(f"{self.path}: another recording is there now than when the "
                                     "computation was set up")
        if len(recording) < stop and recording.refresh() < stop:
            raise errors.RangeError(f"{self.path}: frame {stop - 1} is asked for, and there are "
                                    f"{len(recording)}; is the shared folder up to date here?")
        block: Array = recording[start:stop]._array()
        return block


def _version(path: str) -> tuple[int, int]:
    """Changes with the header file, when a recording is closed or replaced."""
    try:
        status = os.stat(path)
    except OSError:
        return (0, 0)  # opening it will say what is wrong
    return (status.st_ino, status.st_mtime_ns)


@functools.lru_cache(maxsize=16)
def _opened(path: str, options: tuple[tuple[str, str], ...], version: tuple[int, int],
            process: int) -> Recording:
    """Opening costs more than reading a few frames, so each process keeps what it has opened."""
    from .recording import Recording
    return Recording(path, **dict(options))


def source_of(recording: Recording) -> Source:
    return Source(recording.path, tuple(sorted(recording.options.items())),
                  recording._pictures.reader.identity)


def _chunks(recording: Recording, chunk: int | None) -> tuple[int, ...]:
    """Frames of each task."""
    count, frame_bytes = len(recording), recording[:1].nbytes
    if chunk is None:
        chunk = max(1, _CHUNK_BYTES // max(1, frame_bytes))
    if chunk < 1:
        raise errors.ArgumentError(f"chunk is {chunk}; a task takes one frame or more")
    full, rest = divmod(count, chunk)
    return (chunk,) * full + ((rest,) if rest else ()) or (0,)


def _array_of(name: str, recording: Recording, chunks: tuple[int, ...], task: Callable[..., Any],
              shape: tuple[int, ...], dtype: Any) -> Any:
    """One task for each chunk: task(start, stop)."""
    from dask.array.core import Array as DaskArray
    from dask.base import tokenize
    from dask.highlevelgraph import HighLevelGraph

    name = f"{name}-{tokenize(source_of(recording), task, chunks)}"
    graph, start = {}, 0
    for at, frames in enumerate(chunks):
        graph[(name, at, *(0 for _ in shape))] = (task, start, start + frames)
        start += frames
    whole = (chunks, *((side,) for side in shape))
    meta = numpy.empty((0,) * (1 + len(shape)), dtype)
    return DaskArray(HighLevelGraph.from_collections(name, graph), name, whole, meta=meta)


def to_dask(recording: Recording, chunk: int | None = None) -> Any:
    """A lazy array of frames x rows x columns, with `chunk` frames a task (64 MiB by default).

    Lost frames are as the recording was opened: with lost="mask", chunks that have some are masked
    arrays, which dask's reductions know.
    """
    chunks = _chunks(recording, chunk)
    return _array_of("kpf", recording, chunks, source_of(recording).block,
                     recording.frame_shape, recording.dtype)


@dataclass(frozen=True)
class _Overlapping:
    """A task of map_overlap: reads its frames and their neighbours, and keeps what is its own."""

    source: Source
    function: Callable[[Array], Any]
    before: int
    after: int
    count: int

    def __call__(self, start: int, stop: int) -> Array:
        first, last = max(0, start - self.before), min(self.count, stop + self.after)
        result = numpy.asanyarray(self.function(self.source.block(first, last)))
        if result.shape[:1] != (last - first,):
            raise errors.ArgumentError(f"the function was given {last - first} frames and must give "
                                       f"as many results, not the shape {result.shape}")
        own: Array = result[start - first:stop - first]
        return own


def map_overlap(function: Callable[[Array], Any], recording: Recording, before: int = 0,
                after: int = 0, *, chunk: int | None = None, shape: tuple[int, ...] | None = None,
                dtype: Any = None) -> Any:
    """Computes something of each frame that depends on its neighbours, lazily, with dask.

    function: is given frames x rows x columns, and gives one result for each of these frames.
    before, after: how many neighbours a result depends on. Each task reads them anew from the
        recording, so that no pixel travels between workers. Where the recording begins and ends
        there are fewer.
    chunk: results a task; many times the neighbours, or most of the work is theirs.
    shape, dtype: of a single result; that of a frame by default, () where it is a number.
    """
    if before < 0 or after < 0:
        raise errors.ArgumentError("before and after are numbers of frames, 0 or more")
    chunks = _chunks(recording, chunk)
    task = _Overlapping(source_of(recording), function, before, after, len(recording))
    return _array_of("kpf-overlap", recording, chunks, task,
                     recording.frame_shape if shape is None else shape,
                     recording.dtype if dtype is None else dtype)
