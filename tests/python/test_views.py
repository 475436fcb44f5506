"""Views into the mapped file, and what keeps them alive."""
import gc
import sys

import numpy as np
import pytest
import recordings

import kpf
from kpf._buffers import Buffers


def mapped(path):
    """Is one of the recording's data files mapped by this process?"""
    data = str(path.with_suffix(""))
    with open("/proc/self/maps", encoding="utf-8") as maps:
        return any(data in line for line in maps)


def test_frames_of_8_bits_are_read_only_views(ten):
    rec = kpf.open(ten)
    frame = rec[2]
    assert not frame.flags.owndata and not frame.flags.writeable
    with pytest.raises(ValueError):
        frame[0, 0] = 1
    assert rec[2].__array_interface__["data"] == frame.__array_interface__["data"]


def test_a_view_outlives_its_recording(ten):
    with kpf.open(ten) as rec:
        frame = rec[5]
    part = frame[1:, ::2]
    del frame, rec
    gc.collect()
    assert mapped(ten) and part.tolist() == [[5, 5]]


def test_the_file_is_let_go_with_the_last_view(ten):
    rec = kpf.open(ten)
    frames = list(rec)
    rec.close()
    del rec
    gc.collect()
    assert mapped(ten)
    del frames
    gc.collect()
    assert not mapped(ten)


def test_a_view_outlives_a_refresh(ten):
    rec = kpf.open(ten)
    before = rec[9]
    rec.refresh()
    gc.collect()
    assert before[0, 0] == 9 and rec[9] is not before


def test_iterating_keeps_views_valid_for_who_keeps_them(ten):
    assert [frame[1, 3] for frame in list(kpf.open(ten))] == list(range(10))


def test_a_closed_recording_says_so(ten):
    rec = kpf.open(ten)
    view = rec[2:4]
    rec.close()
    rec.close()
    for use in (lambda: rec[0], lambda: len(rec), lambda: list(view), lambda: rec.refresh(),
                lambda: rec.header, lambda: rec.times, lambda: np.asarray(rec)):
        with pytest.raises(kpf.ClosedError, match="was closed"):
            use()
    with pytest.raises(ValueError):
        rec.__enter__()


def test_unpacked_frames_that_are_kept_keep_their_pixels(tmp_path):
    records = [recordings.record(n, bytes([n, 0, n] * 4)) for n in range(20)]
    rec = kpf.open(recordings.make(tmp_path, records, width=4, height=2, bits=12))
    kept = list(rec)
    rows = [frame[0] for frame in rec]  # views of frames that nobody else keeps
    assert [int(frame[1, 1]) for frame in kept] == [16 * n for n in range(20)]
    assert [int(row[0]) for row in rows] == [16 * n for n in range(20)]


@pytest.mark.parametrize("shape", [(2, 4), (1024, 1280)])
def test_a_view_keeps_the_memory_of_its_frame(shape):
    buffers = Buffers(shape, np.uint16)
    row = buffers.take()[0]
    row[:] = 7
    for _ in range(5):
        buffers.take()[:] = 1
    assert (row == 7).all()


def test_unpacked_frames_that_nobody_keeps_share_memory(tmp_path):
    records = [recordings.record(n, bytes(12)) for n in range(50)]
    rec = kpf.open(recordings.make(tmp_path, records, width=4, height=2, bits=12))
    addresses = {frame.__array_interface__["data"][0] for frame in rec}
    assert len(addresses) <= 2


def twelve_bits(folder, count=20):
    records = [recordings.record(n, bytes([n, 0, n] * 4)) for n in range(count)]
    return recordings.make(folder, records, width=4, height=2, bits=12)


def address(frame):
    return frame.__array_interface__["data"][0]


def test_the_next_iteration_gets_the_memory_of_the_last(tmp_path):
    path = twelve_bits(tmp_path)
    first = {address(frame) for frame in kpf.open(path)}
    half = kpf.open(path)[:10]
    for frame in half:
        break  # left before its end
    del frame
    assert {address(frame) for frame in kpf.open(path)} == first


def test_frames_outlive_the_next_iteration(tmp_path):
    path = twelve_bits(tmp_path)
    *_, before, last = kpf.open(path)
    row = before[0]
    del before
    for _ in range(2):
        for frame in kpf.open(path)[:5]:
            assert address(frame) not in (address(last), address(row))
    assert int(last[1, 1]) == 16 * 19 and int(row[1]) == 16 * 18


def test_very_large_buffers_are_not_kept():
    buffers = Buffers((5000, 5000), np.uint16)
    held = sys.getrefcount(picture := buffers.take())
    buffers.leave()
    assert sys.getrefcount(picture) == held - 1
