"""Opens recordings in napari, which finds it by napari.yaml."""
from __future__ import annotations

from typing import Any, Callable, Sequence

from .recording import Recording


def get_reader(path: str | Sequence[str]) -> Callable[[Any], list[tuple[Any, ...]]] | None:
    """What reads these files, or None where they are none of ours."""
    paths = [path] if isinstance(path, str) else list(path)
    return _layers if paths and all(one.endswith(".kpf") for one in paths) else None


def _layers(path: str | Sequence[str]) -> list[tuple[Any, ...]]:
    """An image layer for each recording: lazy, a frame a step."""
    return [_layer(one) for one in ([path] if isinstance(path, str) else path)]


def _layer(path: str) -> tuple[Any, ...]:
    recording = Recording(path, lost="repeat", access="sparse")
    most = 255 if recording.header.bits == 8 else 4095
    metadata = {"kpf": {"lost": recording.lost, "times": recording.times,
                        "frame_rate": recording.frame_rate}}
    # napari brings dask along.
    return (recording.to_dask(1),
            {"name": path, "contrast_limits": (0, most), "metadata": metadata}, "image")
