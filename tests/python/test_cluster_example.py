"""examples/cluster.py, as its user runs it."""
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest

import kpf

for module in ("dask.array", "distributed", "matplotlib"):
    pytest.importorskip(module)
EXAMPLE = Path(__file__).resolve().parents[2] / "examples/cluster.py"


def run(*arguments):
    return subprocess.run([sys.executable, "-B", str(EXAMPLE), *map(str, arguments)], check=False,
                          capture_output=True, text=True)


def record(path, jump):
    """Eighty frames of which one is brighter by 40 on a quarter of the picture."""
    frame = np.full((32, 32), 100, np.uint8)
    with kpf.Writer(path, frame.shape) as writer:
        for n in range(80):
            shown = frame.copy()
            if n == jump:
                shown[:16, :16] += 40
            writer.add(shown)


def test_it_finds_when_something_moved(tmp_path):
    record(tmp_path / "door.kpf", 50)
    record(tmp_path / "yard.kpf", 7)
    done = run(tmp_path, "--chunk", 30, "--picture", tmp_path / "energy.png")
    assert done.returncode == 0, done.stderr
    assert done.stdout == ("door: 80 frames, most at 50: 10.00\n"
                           "yard: 80 frames, most at 7: 10.00\n")
    assert (tmp_path / "energy.png").stat().st_size > 5000


def test_chunks_do_not_show(tmp_path, monkeypatch):
    monkeypatch.syspath_prepend(EXAMPLE.parent)
    import cluster
    rng = np.random.default_rng(2)
    with kpf.Writer(tmp_path / "noise.kpf", (8, 8), bits=12) as writer:
        for _ in range(70):
            writer.add(rng.integers(1, 4096, (8, 8), np.uint16))
    rec = kpf.open(tmp_path / "noise.kpf")
    whole = cluster.motion_energy(np.asarray(rec))
    assert whole[0] == 0 and (whole[1:] > 0).all()
    for chunk in (16, 17, 70):
        lazy = kpf.map_overlap(cluster.motion_energy, rec, before=cluster.BEFORE, chunk=chunk,
                               shape=(), dtype=float)
        assert lazy.compute(scheduler="sync").tobytes() == whole.tobytes()
