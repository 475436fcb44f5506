"""Frames that were lost never pass for black."""
import numpy as np
import pytest
import recordings

import kpf


def test_the_mask_and_what_stands_beside_it(gappy):
    rec = kpf.open(gappy)
    assert rec.lost.tolist() == [True, False, True, True, False]
    assert rec[1:4].lost.tolist() == [False, True, True]
    assert np.isnat(rec.times).tolist() == rec.lost.tolist()
    assert rec.numbers.tolist() == [0, 1, 2, 3, 4]
    rec.lost[:] = False  # a copy, of the caller's
    assert rec.lost.any()


def test_a_lost_frame_is_masked(gappy):
    frame = kpf.open(gappy)[2]
    assert isinstance(frame, np.ma.MaskedArray) and frame.mask.all()
    assert [frame.sum() is np.ma.masked for frame in kpf.open(gappy)] == [1, 0, 1, 1, 0]


def test_a_plain_array_warns(gappy):
    with pytest.warns(kpf.LostFramesWarning, match="3 lost frames are zeros"):
        whole = np.asarray(kpf.open(gappy))
    assert whole[:, 0, 0].tolist() == [0, 11, 0, 0, 44]
    assert kpf.open(gappy).masked().mean() == 27.5
    assert np.asarray(kpf.open(gappy)[[1, 4]]).sum() == 8 * 55  # nothing to warn of


def test_lost_frames_as_nan(gappy):
    rec = kpf.open(gappy, lost="nan")
    assert rec.dtype == np.float32
    assert np.isnan(np.asarray(rec)).all(axis=(1, 2)).tolist() == rec.lost.tolist()
    assert np.nanmean(rec) == 27.5


def test_lost_frames_repeated(gappy):
    rec = kpf.open(gappy, lost="repeat")
    assert [int(frame[0, 0]) for frame in rec] == [11, 11, 11, 11, 44]
    assert np.asarray(rec)[:, 1, 3].tolist() == [11, 11, 11, 11, 44]
    assert rec.lost.any()


def test_lost_frames_raise(gappy):
    rec = kpf.open(gappy, lost="raise")
    assert rec[1][0, 0] == 11
    with pytest.raises(kpf.LostFrameError, match="frame 2 was lost"):
        rec[2]
    with pytest.raises(LookupError):
        list(rec)


def test_a_plain_array_of_the_callers_is_left_alone(gappy):
    out = np.full((2, 4), 99, np.uint8)
    with pytest.raises(kpf.LostFrameError, match="lost='nan'"):
        kpf.open(gappy).read(0, out)
    assert (out == 99).all()
    assert kpf.open(gappy, lost="repeat").read(0, out)[0, 0] == 11


@pytest.mark.parametrize("lost", ["mask", "nan", "repeat"])
def test_of_12_bits_too(tmp_path, lost):
    records = [recordings.record(0, bytes.fromhex("ab3c1200f1ff")), recordings.lost(6)]
    rec = kpf.open(recordings.make(tmp_path, records, width=2, height=2, bits=12), lost=lost)
    second = {"mask": [[None] * 2] * 2, "nan": None, "repeat": [[0xABC, 0x123], [1, 0xFFF]]}[lost]
    block = rec[:]._array()
    assert np.ma.asarray(block)[0].tolist() == [[0xABC, 0x123], [1, 0xFFF]]
    assert np.isnan(block[1]).all() if second is None else block[1].tolist() == second


def test_a_recording_without_any_picture(tmp_path):
    path = recordings.make(tmp_path, [recordings.lost(8)] * 2)
    assert kpf.open(path)[:].masked().mask.all()
    with pytest.raises(kpf.LostFrameError, match="none to repeat"):
        kpf.open(path, lost="repeat")[0]


def test_a_data_file_that_is_missing_is_lost(tmp_path):
    path = recordings.make(tmp_path, recordings.stepped(3), announced=9, frames_per_file=3)
    folder = path.with_suffix("")
    (folder / "clip_0003.div").write_bytes(recordings.record(6, [66] * 8))
    rec = kpf.open(path)
    assert rec.lost.tolist() == [False] * 3 + [True] * 3 + [False]
    assert rec[6][0, 0] == 66 and not rec.header.complete
