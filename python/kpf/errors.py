"""What can go wrong: one exception for each result of the library, each also one of Python's own."""
from __future__ import annotations


class Error(Exception):
    """Anything that the library refuses or that fails; its text says what and where."""


class ArgumentError(Error, ValueError):
    """A value out of its range, an array of another shape, a sample above 4095."""


class ClosedError(Error, ValueError):
    """It was closed already."""


class BadNameError(Error, ValueError):
    """Not the name of a recording: not UTF-8, or without a file name and an extension."""


class ExistsError(Error, FileExistsError):
    """There is a recording of that name, and replacing was not asked for."""


class OpenError(Error, OSError):
    """A file or folder cannot be opened or made."""


class WriteError(Error, OSError):
    """A file cannot be written. The frame keeps its place, as a lost one; the next may succeed."""


class FullError(Error):
    """As many frames as were announced have been added."""


class IncompleteError(Error):
    """Closed with fewer frames than were announced."""


class FormatError(Error, ValueError):
    """Not a recording, or one that contradicts itself, or another one than before."""


class RangeError(Error, IndexError):
    """There is no such frame."""


class LostFrameError(Error, LookupError):
    """The frame was lost: there are no pixels to give."""


class NotReadyError(Error):
    """The amplifier holds too few frames as yet."""


class OutOfMemoryError(Error, MemoryError):
    """Out of memory."""


class LostFramesWarning(UserWarning):
    """Frames that were lost stand as zeros in an array that cannot say so."""


# By the numbers of kpf_result; what a later library adds is an Error.
BY_RESULT: dict[int, type[Error]] = {
    1: ArgumentError,
    3: ClosedError,
    4: BadNameError,
    5: ExistsError,
    6: OpenError,
    7: WriteError,
    8: FullError,
    9: IncompleteError,
    10: FormatError,
    11: RangeError,
    12: LostFrameError,
    13: NotReadyError,
    14: OutOfMemoryError,
}
