"""The programs of docs/python.md run as they stand there, one after the other."""
import importlib.util
import re
from pathlib import Path

import pytest

DOCUMENT = Path(__file__).resolve().parents[2] / "docs/python.md"
# Not needed by anything else here: where it is not installed, its lines are read and not run.
OPTIONAL = ("cv2",)
# It would open a window.
READ_ONLY = ("napari",)


def needs(program, names):
    return any(f"import {name}" in program for name in names)


def programs():
    return re.findall(r"^```python\n(.*?)^```", DOCUMENT.read_text(encoding="utf-8"), re.M | re.S)


def test_they_run(tmp_path, monkeypatch, capsys):
    for module in ("dask.array", "zarr", "fsspec"):
        pytest.importorskip(module)
    pytest.importorskip("matplotlib").use("Agg")
    monkeypatch.chdir(tmp_path)
    known = {"__name__": "document"}
    for program in programs():
        missing = [name for name in OPTIONAL if importlib.util.find_spec(name) is None]
        if needs(program, READ_ONLY) or needs(program, missing):
            compile(program, str(DOCUMENT), "exec")
            continue
        exec(compile(program, str(DOCUMENT), "exec"), known)
    said = capsys.readouterr().out
    assert "21 frames of 640 x 480, 12 bits" in said and "1400.0" in said
    assert (tmp_path / "clip.png").stat().st_size > 1000
