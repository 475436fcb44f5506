"""What the header of a recording says."""
from __future__ import annotations

from dataclasses import dataclass

from . import _signatures


@dataclass(frozen=True)
class Header:
    """The fields of a recording's header, and what its files add to them."""

    width: int
    height: int
    bits: int  #: of a sample: 8 or 12
    frame_rate: float  #: frames per second
    announced: int | None  #: frames; None while the recorder has not closed the recording
    complete: bool  #: as many frames as announced, and no data file is missing
    frames_per_file: int  #: frame n is in data file n // frames_per_file + 1
    frame_size: int  #: bytes of a frame as stored
    has_status_file: bool  #: the recorder left a file that says frames are missing
    text2: str  #: of the recorder's own meaning, as are the next four
    text5: str
    value3: float
    value5: int
    value7: float
    identifier: bytes  #: random; recordings begun within one second share it


def header_of(info: _signatures.RecordingInfo) -> Header:
    same = {name: getattr(info, name) for name in (
        "width", "height", "bits", "frame_rate", "frames_per_file", "frame_size", "value3",
        "value5", "value7")}
    unknown = info.announced == _signatures.FRAMES_UNKNOWN
    return Header(
        announced=None if unknown else info.announced, complete=bool(info.complete),
        has_status_file=bool(info.has_status_file), text2=info.text2.decode("utf-8", "replace"),
        text5=info.text5.decode("utf-8", "replace"), identifier=bytes(info.identifier), **same)
