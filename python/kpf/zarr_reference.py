"""Recordings as Zarr, in place: a list of which bytes of which file are which frame.

The list is a reference of fsspec, version 1. Whatever reads Zarr through fsspec reads the recording
by it, from a disk or an object store, without copying it and, at 8 bits, without this package.
"""
from __future__ import annotations

import base64
import json
import os
from typing import TYPE_CHECKING, Any, Iterator

import numpy

from . import errors

if TYPE_CHECKING:
    from .recording import Recording

# 12-bit samples are below it. 8 bits have no number to spare: there the array `lost` tells.
LOST_12 = 65535
# In front of the pixels of each record.
_RECORD_HEADER_SIZE = 16


def _frames_array(recording: Recording) -> dict[str, Any]:
    """Describes the array `frames`, of which each frame is a chunk."""
    height, width = recording.frame_shape
    wide = recording.header.bits == 12
    codec = {"id": "kpf12", "width": width, "height": height,
             "samples": recording.options["samples"]}
    return {"zarr_format": 2, "shape": list(recording.shape), "chunks": [1, height, width],
            "dtype": "<u2" if wide else "|u1", "compressor": codec if wide else None,
            "fill_value": LOST_12 if wide else 0, "filters": None, "order": "C"}


def _column(values: numpy.ndarray[Any, Any]) -> dict[str, Any]:
    return {"zarr_format": 2, "shape": [values.size], "chunks": [max(1, values.size)],
            "dtype": values.dtype.str, "compressor": None, "fill_value": None, "filters": None,
            "order": "C"}


def _columns(recording: Recording) -> dict[str, str]:
    """What stands beside the pixels; small, and so inside the reference itself."""
    refs = {}
    for name, values in (("lost", recording.lost), ("times", recording.times),
                         ("numbers", recording.numbers)):
        refs[f"{name}/.zarray"] = json.dumps(_column(values))
        refs[f"{name}/.zattrs"] = json.dumps({"_ARRAY_DIMENSIONS": ["frame"]})
        if values.size:
            refs[f"{name}/0"] = "base64:" + base64.b64encode(values.tobytes()).decode()
    return refs


def _url(recording: Recording, number: int, base: str | None) -> str:
    """Of a data file, below `base` where the recording lies elsewhere for who reads it."""
    path = recording._pictures.reader.data_file(number)
    if base is None:
        return path
    beside = os.path.relpath(path, os.path.dirname(recording.path)).replace(os.sep, "/")
    return f"{base.rstrip('/')}/{beside}"


def to_zarr_reference(recording: Recording, file: str | os.PathLike[str] | None = None,
                      base: str | None = None) -> dict[str, Any]:
    """Gives the reference, and writes it to `file` as JSON where one is named.

    The group has `frames`, of which each frame is a chunk, and beside it `times`, `numbers` and
    `lost`. Lost frames read as 65535 at 12 bits and as 0 at 8, where `lost` tells. Of 8-bit frames
    whose whole data file is missing there is no chunk.

    base: where the folder of the header lies for who reads, such as "s3://bucket/recordings"; without
        it the absolute path here. 12-bit frames need numcodecs to know `kpf12`, which it does where
        this package is installed.
    """
    refs = {".zgroup": json.dumps({"zarr_format": 2}),
            ".zattrs": json.dumps({"frame_rate": recording.frame_rate}),
            "frames/.zarray": json.dumps(_frames_array(recording)),
            "frames/.zattrs": json.dumps({"_ARRAY_DIMENSIONS": ["frame", "y", "x"]}),
            **_columns(recording)}
    for place, chunk in _chunks(recording, base):
        refs[f"frames/{place}.0.0"] = chunk
    reference = {"version": 1, "refs": refs}
    if file is not None:
        _write_new(file, json.dumps(reference))
    return reference


def _chunks(recording: Recording, base: str | None) -> Iterator[tuple[int, Any]]:
    """Where each frame lies: file, offset, length; or, lost at 12 bits, nothing for the codec."""
    info, sizes, urls = recording.header, {}, {}
    record_size = _RECORD_HEADER_SIZE + info.frame_size
    for place, lost in enumerate(recording.lost.tolist()):
        number, record = place // info.frames_per_file + 1, place % info.frames_per_file
        if number not in urls:
            urls[number] = _url(recording, number, base)
            sizes[number] = _size(recording._pictures.reader.data_file(number))
        if lost and info.bits == 12:
            yield place, ""
        elif (record + 1) * record_size <= sizes[number]:
            yield place, [urls[number], record * record_size + _RECORD_HEADER_SIZE, info.frame_size]


def _size(path: str) -> int:
    try:
        return os.path.getsize(path)
    except OSError:
        return 0  # missing: all its frames are lost


def _write_new(file: str | os.PathLike[str], text: str) -> None:
    """Nothing is overwritten unasked."""
    try:
        with open(file, "x", encoding="utf-8") as reference:
            reference.write(text)
    except FileExistsError:
        raise errors.ExistsError(f"{os.fspath(file)} exists already; remove it first") from None
