"""Recordings that are still being written."""
import numpy as np
import pytest
import recordings

import kpf


def test_frames_appear_with_refresh(tmp_path):
    path = tmp_path / "clip.kpf"
    with kpf.Writer(path, (2, 4)) as writer:
        writer.add(np.full((2, 4), 1, np.uint8))
        rec = kpf.open(path)
        assert (len(rec), rec.header.announced, rec.header.complete) == (1, None, False)
        writer.add(np.full((2, 4), 2, np.uint8))
        writer.add_lost()
        assert len(rec) == 1
        assert rec.refresh() == len(rec) == 3
        assert rec[1][0, 0] == 2 and rec.lost.tolist() == [False, False, True]
    rec.refresh()
    assert (rec.header.announced, rec.header.complete) == (3, True)


def test_an_iteration_ends_where_it_was_to_end(tmp_path):
    path = tmp_path / "clip.kpf"
    with kpf.Writer(path, (2, 4)) as writer:
        for _ in range(3):
            writer.add(np.ones((2, 4), np.uint8))
        rec = kpf.open(path)
        seen = 0
        for _ in rec:
            writer.add(np.ones((2, 4), np.uint8))
            rec.refresh()
            seen += 1
    assert seen == 3 and len(rec) == 6


def test_another_recording_is_refused(tmp_path):
    path = recordings.make(tmp_path, recordings.stepped(4))
    rec = kpf.open(path)
    recordings.make(tmp_path, recordings.stepped(2), identifier=b"another one now.")
    with pytest.raises(kpf.FormatError, match="another recording"):
        rec.refresh()
    assert len(rec) == 4


def test_columns_are_of_the_frames_that_were_there(tmp_path):
    path = tmp_path / "clip.kpf"
    with kpf.Writer(path, (2, 4), start=1) as writer:
        writer.add(np.ones((2, 4), np.uint8))
        rec = kpf.open(path)
        writer.add(np.ones((2, 4), np.uint8))
        assert rec.times.size == rec.lost.size == len(rec) == 1
    path.unlink()
    recordings.make(tmp_path, recordings.stepped(1))
    late = kpf.open(path)
    path.unlink()
    recordings.make(tmp_path, recordings.stepped(1), identifier=b"another one now.")
    with pytest.raises(kpf.FormatError, match="another recording"):
        late.lost


def test_a_recording_that_is_gone_leaves_the_reader_as_it_was(ten):
    rec = kpf.open(ten)
    frame = rec[3]
    ten.unlink()
    with pytest.raises(kpf.OpenError):
        rec.refresh()
    assert (len(rec), frame[0, 0], rec[4][0, 0]) == (10, 3, 4)
