"""Wrong arguments, wrong files: a clear error, and nothing lost."""
import os

import numpy as np
import pytest
import recordings

import kpf


@pytest.mark.parametrize("image, problem", [
    (np.zeros((2, 4), np.uint16), "uint8, not uint16"),
    (np.zeros((2, 4), float), "uint8, not float64"),
    (np.zeros((2, 4), np.int8), "uint8, not int8"),
    ([[0] * 4] * 2, "uint8, not list"),
    (None, "uint8, not NoneType"),
])
def test_a_wrong_kind_of_array(tmp_path, image, problem):
    with kpf.Writer(tmp_path / "clip.kpf", (2, 4)) as writer:
        with pytest.raises(TypeError, match=problem):
            writer.add(image)
        assert writer.counts.added == 0


@pytest.mark.parametrize("shape", [(4, 2), (2, 5), (8,), (1, 2, 4), (0, 0)])
def test_a_wrong_shape(tmp_path, shape):
    with kpf.Writer(tmp_path / "clip.kpf", (2, 4)) as writer:
        with pytest.raises(ValueError, match=r"of the shape \(2, 4\)"):
            writer.add(np.zeros(shape, np.uint8))


def test_samples_of_the_wrong_byte_order_or_range(tmp_path):
    with kpf.Writer(tmp_path / "clip.kpf", (1, 2), bits=12) as writer:
        with pytest.raises(TypeError, match="not >u2"):
            writer.add(np.zeros((1, 2), ">u2"))
        with pytest.raises(kpf.ArgumentError, match="above 4095"):
            writer.add(np.full((1, 2), 4096, np.uint16))
        writer.add(np.full((1, 2), 4095, np.uint16))
        assert (writer.counts.added, writer.counts.refused) == (1, 1)
    assert kpf.open(tmp_path / "clip.kpf")[0].max() == 4095


def test_a_masked_frame_is_not_stored_as_black(tmp_path):
    with kpf.Writer(tmp_path / "clip.kpf", (2, 4)) as writer:
        with pytest.raises(kpf.ArgumentError, match="add_lost"):
            writer.add(np.ma.masked_all((2, 4), np.uint8))


@pytest.mark.parametrize("options, problem", [
    ({"bits": 10}, "bits"), ({"bits": -8}, "bits"), ({"frame_rate": 0}, "frame_rate"),
    ({"frame_rate": 29.97}, "whole ones"), ({"count": -1}, "count"), ({"count": 2**32}, "count"),
    ({"start": -1}, "start"), ({"start": float("nan")}, "not a time"),
    ({"start": np.datetime64("NaT")}, "NaT"), ({"samples": "right"}, "value, left"),
    ({"value5": 3}, "value5"), ({"value3": 2**31}, "value3"), ({"text2": "x" * 61}, "text2"),
    ({"text5": "a\0b"}, "zero"), ({"shape": (0, 4)}, "height"), ({"shape": (2, 65536)}, "width"),
    ({"shape": (-1, 4)}, "side"),
])
def test_options_of_a_writer(tmp_path, options, problem):
    shape = options.pop("shape", (2, 4))
    with pytest.raises(ValueError, match=problem):
        kpf.Writer(tmp_path / "clip.kpf", shape, **options)
    assert os.listdir(tmp_path) == []


@pytest.mark.parametrize("time", [-2.0**60, np.datetime64("NaT"), 2**63])
def test_a_wrong_time_takes_no_place(tmp_path, time):
    with kpf.Writer(tmp_path / "clip.kpf", (2, 4)) as writer:
        with pytest.raises(ValueError):
            writer.add(np.zeros((2, 4), np.uint8), time=time)
        assert writer.counts.added == 0


def test_names_that_cannot_be(tmp_path):
    (tmp_path / "folder.kpf").mkdir()
    for name, kind in (("folder.kpf", OSError), ("missing/clip.kpf", OSError),
                       ("without", ValueError), ("a\0b.kpf", ValueError)):
        path = os.path.join(os.fsencode(tmp_path), os.fsencode(name))
        with pytest.raises(kind) as caught:
            kpf.Writer(path, (2, 4))
        assert isinstance(caught.value, kpf.Error)
        with pytest.raises(kpf.Error):
            kpf.open(path)
    assert os.listdir(tmp_path) == ["folder.kpf"]


@pytest.mark.parametrize("content", [b"", b"GIF89a", recordings.header(4, 2, 8, 1)[:2000],
                                     b"v9.9" + recordings.header(4, 2, 8, 1)[4:]],
                         ids=["empty", "another kind", "cut short", "another version"])
def test_files_that_are_no_recordings(tmp_path, content):
    path = tmp_path / "clip.kpf"
    path.write_bytes(content)
    with pytest.raises(kpf.FormatError, match="clip.kpf"):
        kpf.open(path)


@pytest.mark.parametrize("options", [{"samples": "right"}, {"lost": "black"}, {"access": "random"}])
def test_options_of_a_reader(ten, options):
    with pytest.raises(kpf.ArgumentError, match="it can be"):
        kpf.open(ten, **options)


def test_a_data_file_that_was_cut_short(ten):
    data = ten.with_suffix("") / "clip_0001.div"
    os.truncate(data, 3 * 24 + 10)
    rec = kpf.open(ten)
    assert (len(rec), rec.header.complete) == (3, False)
    os.truncate(data, 24)  # behind the reader's back, before it has looked
    with pytest.raises(kpf.OpenError):
        rec[2]


def test_no_failure_says_nothing(tmp_path):
    with pytest.raises(kpf.OpenError) as caught:
        kpf.open(tmp_path / "missing.kpf")
    assert "missing.kpf" in str(caught.value) and "kpf_reader_open" in str(caught.value)


@pytest.mark.skipif(not os.path.exists("/dev/full"), reason="no device that is always full")
def test_a_full_disk_is_told_for_each_frame(tmp_path):
    path = tmp_path / "clip.kpf"
    writer = kpf.Writer(path, (2, 4))
    os.symlink("/dev/full", path.with_suffix("") / "clip_0001.div")
    with pytest.raises(kpf.WriteError):
        for _ in range(3):
            writer.add(np.zeros((2, 4), np.uint8))
    assert writer.counts.failed >= 1
    with pytest.raises(OSError):
        writer.close()
