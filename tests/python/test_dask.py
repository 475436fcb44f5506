"""Recordings as arrays of dask, in this process and on a cluster of two others."""
import pickle
import subprocess
import sys
from pathlib import Path

import numpy as np
import pytest
import recordings

import kpf
from kpf.dask_arrays import source_of

dask = pytest.importorskip("dask")
distributed = pytest.importorskip("distributed")


@pytest.fixture(scope="module")
def two_workers():
    with dask.config.set({"distributed.worker.daemon": False}):
        with distributed.LocalCluster(n_workers=2, threads_per_worker=1, processes=True,
                                      host="127.0.0.1", dashboard_address="127.0.0.1:0") as cluster:
            with distributed.Client(cluster) as client:
                yield client


@pytest.fixture
def moving(tmp_path):
    """Sixty 12-bit frames of noise, some of them lost."""
    rng = np.random.default_rng(3)
    path = tmp_path / "moving.kpf"
    with kpf.Writer(path, (16, 24), bits=12, start=1) as writer:
        for n in range(60):
            if n % 17 == 5:
                writer.add_lost()
            else:
                writer.add(rng.integers(0, 4096, (16, 24), np.uint16))
    return path


def energy(frames):
    """The mean of each frame's positive difference from the three before it."""
    frames = frames.astype(np.int64)
    sums = np.cumsum(np.concatenate([np.zeros((1, *frames.shape[1:]), np.int64), frames]), axis=0)
    first = np.maximum(np.arange(len(frames)) - 3, 0)
    held = np.maximum(np.arange(len(frames)) - first, 1)[:, None, None]
    reference = (sums[np.arange(len(frames))] - sums[first]) // held
    return np.maximum(frames - reference, 0).mean(axis=(1, 2))


def test_chunks_are_ranges_of_frames(ten):
    array = kpf.open(ten).to_dask(4)
    assert array.chunks == ((4, 4, 2), (2,), (4,))
    assert array.dtype == np.uint8
    assert (array.compute(scheduler="sync") == np.asarray(kpf.open(ten))).all()
    assert array[5, 0, 0].compute(scheduler="sync") == 5
    assert kpf.open(ten).to_dask().numblocks == (1, 1, 1)


def test_nothing_but_path_and_range_travels(ten):
    graph = dict(kpf.open(ten).to_dask(1).__dask_graph__())
    assert len(graph) == 10
    assert max(len(pickle.dumps(task)) for task in graph.values()) < 600


def test_the_name_is_that_of_the_content(ten, tmp_path):
    name = kpf.open(ten).to_dask(3).name
    assert kpf.open(ten).to_dask(3).name == name != kpf.open(ten).to_dask(4).name
    assert kpf.open(ten, lost="nan").to_dask(3).name != name


def test_lost_frames_stay_masked(gappy):
    array = kpf.open(gappy).to_dask(2)
    assert array.sum().compute(scheduler="sync") == 8 * 55
    assert array.mean().compute(scheduler="sync") == 27.5
    whole = array.compute(scheduler="sync")
    assert np.ma.getmaskarray(whole)[:, 0, 0].tolist() == [True, False, True, True, False]
    assert np.isnan(kpf.open(gappy, lost="nan").to_dask(2).compute(scheduler="sync")).sum() == 24


def test_an_empty_recording(tmp_path):
    path = recordings.make(tmp_path, [], announced=5)
    assert kpf.open(path).to_dask().compute(scheduler="sync").shape == (0, 2, 4)


def test_bad_arguments(ten):
    with pytest.raises(kpf.ArgumentError, match="chunk"):
        kpf.open(ten).to_dask(0)
    with pytest.raises(kpf.ArgumentError, match="before"):
        kpf.map_overlap(energy, kpf.open(ten), before=-1)
    short = kpf.map_overlap(lambda frames: frames[1:], kpf.open(ten), chunk=4)
    with pytest.raises(kpf.ArgumentError, match="as many results"):
        short.compute(scheduler="sync")


def test_a_recording_that_grew_or_changed(tmp_path):
    path = tmp_path / "clip.kpf"
    with kpf.Writer(path, (2, 4), start=1) as writer:
        writer.add(np.full((2, 4), 1, np.uint8))
        assert kpf.open(path).to_dask().compute(scheduler="sync").shape == (1, 2, 4)
        writer.add(np.full((2, 4), 2, np.uint8))
        assert kpf.open(path).to_dask().compute(scheduler="sync")[1, 0, 0] == 2
    before = kpf.open(path)
    with pytest.raises(kpf.RangeError, match="up to date"):
        source_of(before).block(0, 3)
    path.unlink()
    recordings.make(tmp_path, recordings.stepped(2))
    with pytest.raises(kpf.FormatError, match="another recording"):
        before.to_dask().compute(scheduler="sync")


@pytest.mark.parametrize("chunk", [1, 7, 60, 1000])
def test_windows_reach_across_chunks(moving, chunk):
    rec = kpf.open(moving, lost="repeat")
    expected = energy(np.asarray(rec))
    found = kpf.map_overlap(energy, rec, before=3, chunk=chunk, shape=(), dtype=float)
    assert found.compute(scheduler="sync").tobytes() == expected.tobytes()
    both = kpf.map_overlap(lambda frames: frames, rec, 2, 5, chunk=chunk)
    assert (both.compute(scheduler="sync") == np.asarray(rec)).all()


def test_two_workers_give_the_bytes_of_one_process(moving, two_workers):
    rec = kpf.open(moving, lost="repeat")
    here = energy(np.asarray(rec)).tobytes()
    found = kpf.map_overlap(energy, rec, before=3, chunk=5, shape=(), dtype=float)
    assert two_workers.compute(found).result().tobytes() == here
    sums = two_workers.compute(rec.to_dask(8).sum(axis=(1, 2), dtype=np.int64)).result()
    assert sums.tobytes() == np.asarray(rec).sum(axis=(1, 2), dtype=np.int64).tobytes()


def test_errors_come_back_from_a_worker(gappy, two_workers):
    array = kpf.open(gappy, lost="raise").to_dask(1)
    with pytest.raises(kpf.LostFrameError, match="was lost"):
        two_workers.compute(array.sum()).result()


def test_recordings_and_frames_travel(ten, two_workers):
    rec = kpf.open(ten)
    assert two_workers.submit(lambda remote: int(remote[7].sum()), rec).result() == 56
    assert two_workers.submit(lambda remote: len(remote[2:8:2]), rec).result() == 3
    assert two_workers.submit(lambda remote: remote[4], rec).result().tolist() == [[4] * 4] * 2


def test_the_example_runs_on_a_scheduler_that_is_there(ten, two_workers):
    example = Path(__file__).resolve().parents[2] / "examples/cluster.py"
    picture = ten.with_name("energy.png")
    done = subprocess.run([sys.executable, "-B", str(example), str(ten.parent), "--scheduler",
                           two_workers.scheduler.address, "--picture", str(picture)], check=False,
                          capture_output=True, text=True)
    assert done.returncode == 0, done.stderr
    assert done.stdout == "clip: 10 frames, most at 8: 5.00\n"
    assert picture.exists()
