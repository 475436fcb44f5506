"""Frames in some order, read as they are asked for."""
from __future__ import annotations

import operator
from typing import TYPE_CHECKING, Any, Iterator, Sequence

import numpy

from . import errors

if TYPE_CHECKING:
    from .recording import Recording

Array = numpy.ndarray[Any, Any]


class Frames:
    """Frames by their places in a recording: nothing is read before a frame is asked for.

    Looks like an array of frames x rows x columns. `frames[3]` and iteration give single frames,
    slices and lists further views, `numpy.asarray(frames)` all of it.
    """

    @property
    def _recording(self) -> Recording:
        raise NotImplementedError

    @property
    def _places(self) -> Sequence[int]:
        raise NotImplementedError

    def __len__(self) -> int:
        return len(self._places)

    @property
    def frame_shape(self) -> tuple[int, int]:
        """Rows and columns of a frame."""
        return self._recording._pictures.shape

    @property
    def shape(self) -> tuple[int, int, int]:
        return (len(self), *self.frame_shape)

    @property
    def dtype(self) -> numpy.dtype[Any]:
        return self._recording._pictures.dtype

    @property
    def ndim(self) -> int:
        return 3

    @property
    def size(self) -> int:
        return len(self) * self.frame_shape[0] * self.frame_shape[1]

    @property
    def nbytes(self) -> int:
        """Bytes of all frames as an array."""
        return self.size * self.dtype.itemsize

    @property
    def times(self) -> Array:
        """When each frame was taken, as datetime64[us]; NaT for lost frames."""
        return self._column("times")

    @property
    def lost(self) -> Array:
        """A mask: True where there is no picture."""
        return self._column("lost")

    @property
    def numbers(self) -> Array:
        """The frames' numbers as the recorder gave them; the place for lost frames."""
        return self._column("numbers")

    def _column(self, name: str) -> Array:
        places: Any = self._places
        if isinstance(places, range):
            places = numpy.arange(places.start, places.stop, places.step)  # at once, not one by one
        column: Array = getattr(self._recording._pictures.table, name)
        return column[numpy.asarray(places, numpy.intp)]

    def _place(self, index: int) -> int:
        count = len(self)
        if not -count <= index < count:
            raise errors.RangeError(f"{self._recording.path}: there is no frame {index} of {count}")
        return self._places[index]

    def __getitem__(self, key: Any) -> Any:
        if isinstance(key, tuple):
            return self._crop(key)
        if isinstance(key, slice):
            return View(self._recording, self._places[key])
        if key is Ellipsis:
            return View(self._recording, self._places)
        try:
            index = operator.index(key)
        except TypeError:
            return View(self._recording, self._chosen_by(key))
        return self._recording._pictures.read(self._place(index))

    def _chosen_by(self, key: Any) -> Sequence[int]:
        chosen = numpy.asarray(key)
        if chosen.dtype == bool:
            if chosen.shape != (len(self),):
                raise errors.RangeError(f"a mask of {len(self)} frames has as many entries, not "
                                        f"the shape {chosen.shape}")
            chosen = numpy.flatnonzero(chosen)
        if chosen.ndim != 1 or (chosen.size and chosen.dtype.kind not in "iu"):
            raise TypeError("frames are chosen by an integer, a slice, a list of integers or a mask")
        return [self._place(index) for index in chosen.tolist()]

    def _crop(self, key: tuple[Any, ...]) -> Any:
        """As an array takes several indices: the first chooses frames, the others a part of each."""
        first, rest = (key or (Ellipsis,))[0], key[1:]
        if first is Ellipsis or first is None:
            return self._array()[key]
        chosen = self[first]
        if not isinstance(chosen, Frames):
            return chosen[rest]
        return chosen._array()[(slice(None), *rest)]

    def __iter__(self) -> Iterator[Array]:
        return self._recording._pictures.iterate(self._places)

    def _array(self) -> Array:
        return self._recording._pictures.block(self._places)

    def __array__(self, dtype: Any = None, copy: bool | None = None) -> Array:
        if copy is False:
            raise ValueError("frames lie apart in the file: an array of them is a copy")
        array = self._recording._pictures.plain(self._array())
        return array if dtype is None else array.astype(dtype, copy=False)

    def masked(self) -> numpy.ma.MaskedArray[Any, Any]:
        """All frames as one array in which the lost ones are masked."""
        masked: numpy.ma.MaskedArray[Any, Any] = numpy.ma.array(self._array(), copy=False)
        return masked


class View(Frames):
    """Some frames of a recording, as slices and lists choose them."""

    def __init__(self, recording: Recording, places: Sequence[int]) -> None:
        self._of, self._chosen = recording, places

    @property
    def _recording(self) -> Recording:
        return self._of

    @property
    def _places(self) -> Sequence[int]:
        return self._chosen

    def __repr__(self) -> str:
        return f"<{len(self)} frames of {self._recording!r}>"
