"""A recording as a sequence of arrays."""
import os
import pickle

import numpy as np
import pytest
import recordings

import kpf


def first_pixels(frames):
    return [int(frame[0, 0]) for frame in frames]


def test_it_looks_like_an_array(ten):
    rec = kpf.open(ten)
    assert (len(rec), rec.shape, rec.ndim, rec.dtype) == (10, (10, 2, 4), 3, np.uint8)
    assert (rec.frame_shape, rec.size, rec.nbytes) == ((2, 4), 80, 80)


def test_frames_by_number(ten):
    rec = kpf.open(ten)
    assert rec[3].tolist() == [[3] * 4] * 2
    assert rec[-1][0, 0] == rec[np.int64(9)][0, 0] == 9


@pytest.mark.parametrize("index", [10, -11, 2**40])
def test_a_frame_out_of_range_is_told(ten, index):
    with pytest.raises(kpf.RangeError, match="there is no frame .* of 10"):
        kpf.open(ten)[index]
    with pytest.raises(IndexError):
        kpf.open(ten)[2:5][3]


@pytest.mark.parametrize("key", [slice(None), slice(2, 8, 3), slice(None, None, -2), slice(7, 2),
                                 slice(-3, None)])
def test_slices_are_lazy_and_as_lists_have_them(ten, key):
    view = kpf.open(ten)[key]
    expected = list(range(10))[key]
    assert isinstance(view, kpf.Frames)
    assert first_pixels(view) == expected
    assert view.shape == (len(expected), 2, 4)


def test_slices_of_slices(ten):
    view = kpf.open(ten)[1:][::2][1:3]
    assert first_pixels(view) == [3, 5]
    assert view.numbers.tolist() == [3, 5]
    assert first_pixels([view[-1]]) == [5]


def test_lists_and_masks_choose_frames(ten):
    rec = kpf.open(ten)
    assert first_pixels(rec[[5, 0, 5, -1]]) == [5, 0, 5, 9]
    assert first_pixels(rec[np.arange(10) % 4 == 1]) == [1, 5, 9]
    assert len(rec[[]]) == 0
    with pytest.raises(IndexError):
        rec[[3, 10]]
    with pytest.raises(IndexError, match="mask of 10"):
        rec[np.ones(9, bool)]
    for wrong in ("first", 1.5, [0.5], [[1]]):
        with pytest.raises(TypeError, match="frames are chosen by"):
            rec[wrong]


def test_several_indices_crop(ten):
    rec = kpf.open(ten)
    assert rec[4, 1].tolist() == [4] * 4
    assert rec[2:4, 0, 1:3].tolist() == [[2, 2], [3, 3]]
    assert rec[..., 0].shape == (10, 2)
    assert first_pixels(rec[...][8:]) == [8, 9]


def test_all_of_it_as_an_array(ten):
    rec = kpf.open(ten)
    whole = np.asarray(rec)
    assert whole.tolist() == [[[n] * 4] * 2 for n in range(10)]
    assert np.asarray(rec[::5], dtype=float).dtype == float
    assert np.mean(rec[3:5]) == 3.5
    with pytest.raises(ValueError, match="copy"):
        rec.__array__(copy=False)


def test_times_numbers_and_header(ten):
    rec = kpf.open(ten)
    assert rec.times.dtype == "M8[us]"
    assert rec.times[3] == np.datetime64("1970-01-01T00:16:40.120")
    assert rec.numbers.tolist() == list(range(10))
    assert not rec.lost.any()
    header = rec.header
    assert (header.width, header.height, header.bits, header.frame_rate) == (4, 2, 8, 25.0)
    assert (header.announced, header.complete, header.frame_size) == (10, True, 8)
    assert (header.text5, header.text2) == ("Bridge 7", "north pier")
    assert (header.value3, header.value5, header.value7) == (3, 1, 7)
    assert header.identifier == recordings.IDENTIFIER


def test_a_time_beyond_all_calendars_is_not_a_time(tmp_path):
    path = recordings.make(tmp_path, [recordings.record(0, [1] * 8, 2**62),
                                      recordings.record(1, [1] * 8, -2**63)])
    assert np.isnat(kpf.open(path).times).all()


def test_twelve_bits_come_unpacked(packed):
    assert kpf.open(packed)[0].tolist() == [[0xABC, 0x123], [0x001, 0xFFF]]
    left = kpf.open(packed, samples="left")
    assert left[0].tolist() == [[0xABC0, 0x1230], [0x0010, 0xFFF0]]
    assert left.dtype == np.uint16


def test_a_frame_may_be_read_into_memory_of_the_callers(packed, ten):
    out = np.empty((2, 2), np.uint16)
    assert kpf.open(packed).read(0, out) is out
    assert out[0, 0] == 0xABC
    apart = np.zeros((2, 4), np.uint16)[:, ::2]
    assert kpf.open(packed).read(-1, apart)[1, 1] == 0xFFF
    with pytest.raises(kpf.ArgumentError, match="a frame is uint8"):
        kpf.open(ten).read(0, out)


def test_it_pickles_as_path_and_options(ten, monkeypatch, tmp_path):
    monkeypatch.chdir(tmp_path)
    rec = kpf.open("clip.kpf", lost="nan", access="sparse")
    data = pickle.dumps(rec)
    assert len(data) < 500
    monkeypatch.chdir("/")
    again = pickle.loads(data)
    assert (again.path, again.options) == (rec.path, rec.options)
    assert again[7][0, 0] == 7


def test_the_protocol_of_pims(ten):
    rec = kpf.Recording(ten)
    assert (len(rec), rec.frame_shape, rec.pixel_type) == (10, (2, 4), np.uint8)
    assert rec.get_frame(6)[0, 0] == 6
    assert "kpf" in rec.class_exts()
    assert rec.frame_rate == 25.0


def test_it_says_what_it_is(ten):
    rec = kpf.open(ten)
    assert "10 frames of 4 x 2, 8 bits" in repr(rec)
    assert repr(rec[2:4]).startswith("<2 frames of")
    rec.close()
    assert repr(rec).startswith("<closed")


def test_files_are_named_in_any_script(tmp_path):
    folder = tmp_path / "Brücke мост 橋"
    folder.mkdir()
    path = recordings.make(folder, recordings.stepped(2))
    assert len(kpf.open(str(path))) == len(kpf.open(path)) == 2


def test_names_need_not_be_text(tmp_path):
    path = os.path.join(os.fsencode(tmp_path), b"\xff.kpf")
    with kpf.Writer(path, (1, 2)) as writer:
        writer.add(np.ones((1, 2), np.uint8))
    assert kpf.open(path)[0].sum() == 2


def test_a_recording_without_columns(tmp_path):
    rec = kpf.open(recordings.make(tmp_path, [recordings.record(1, b"")] * 2, width=0))
    assert [frame.shape for frame in rec] == [(2, 0)] * 2


def test_an_empty_recording(tmp_path):
    rec = kpf.open(recordings.make(tmp_path, [], announced=5))
    assert (len(rec), list(rec), np.asarray(rec).shape) == (0, [], (0, 2, 4))
    assert rec.lost.size == 0 and not rec.header.complete
