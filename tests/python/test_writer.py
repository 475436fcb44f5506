"""What a writer leaves on disk, and what it says."""
import datetime
import gc
import struct

import numpy as np
import pytest

import kpf


def stored(path):
    return (path.with_suffix("") / f"{path.stem}_0001.div").read_bytes()


def test_eight_bits_byte_for_byte(tmp_path):
    path = tmp_path / "clip.kpf"
    with kpf.Writer(path, (2, 3), frame_rate=4, start=1000) as writer:
        writer.add(np.arange(6, dtype=np.uint8).reshape(2, 3))
        writer.add_lost()
        writer.add(np.full((2, 3), 9, np.uint8))
    assert stored(path) == (struct.pack("<IqI", 0, 1000, 0) + bytes(range(6)) + bytes(22) +
                            struct.pack("<IqI", 2, 1000, 500000) + bytes([9] * 6))


@pytest.mark.parametrize("samples, shift", [("value", 0), ("left", 4)])
def test_twelve_bits_byte_for_byte(tmp_path, samples, shift):
    path = tmp_path / "clip.kpf"
    image = np.array([[0xABC, 0x123], [0x001, 0xFFF]], np.uint16) << shift
    with kpf.Writer(path, (2, 2), bits=12, samples=samples) as writer:
        writer.add(image)
    assert stored(path)[16:].hex() == "ab3c1200f1ff"


def test_packed_bytes_go_as_they_are(tmp_path):
    path = tmp_path / "clip.kpf"
    with kpf.Writer(path, (2, 2), bits=12) as writer:
        writer.add_packed(bytes.fromhex("ab3c1200f1ff"), time=5)
        with pytest.raises(kpf.ArgumentError, match="size"):
            writer.add_packed(b"short")
        with pytest.raises(kpf.ArgumentError):
            writer.add_packed(bytearray())
    assert stored(path) == struct.pack("<IqI", 0, 5, 0) + bytes.fromhex("ab3c1200f1ff")
    assert kpf.open(path)[0][0, 0] == 0xABC


@pytest.mark.parametrize("layout", [
    lambda image: np.pad(image, ((0, 0), (2, 3)))[:, 2:-3],    # rows with gaps
    lambda image: np.asfortranarray(image),
    lambda image: image[::-1].copy()[::-1],                     # rows from below
    lambda image: np.repeat(image, 2, axis=1)[:, ::2],          # columns with gaps
    lambda image: np.frombuffer(b"x" + image.tobytes(), np.uint8)[1:].view(image.dtype)
    .reshape(image.shape),                                      # at any address
])
@pytest.mark.parametrize("bits", [8, 12])
def test_any_layout_of_memory(tmp_path, layout, bits):
    image = np.arange(20, dtype=np.uint8 if bits == 8 else np.uint16).reshape(4, 5)[:, :4].copy()
    with kpf.Writer(tmp_path / "clip.kpf", (4, 4), bits=bits) as writer:
        writer.add(layout(image))
    assert (kpf.open(tmp_path / "clip.kpf")[0] == image).all()


@pytest.mark.parametrize("time", [
    1.5, np.datetime64("1970-01-01T00:00:01.5"), datetime.datetime(1970, 1, 1, 0, 0, 1, 500000),
    datetime.datetime(1970, 1, 1, 1, 0, 1, 500000,
                      datetime.timezone(datetime.timedelta(hours=1)))])
def test_times_of_every_kind(tmp_path, time):
    with kpf.Writer(tmp_path / "clip.kpf", (1, 2), start=time) as writer:
        writer.add(np.zeros((1, 2), np.uint8))
        writer.add(np.zeros((1, 2), np.uint8), time=time)
    expected = np.datetime64("1970-01-01T00:00:01.500")
    assert (kpf.open(tmp_path / "clip.kpf").times == expected).all()


def test_the_header_keeps_what_it_is_given(tmp_path):
    with kpf.Writer(tmp_path / "clip.kpf", (1, 2), text2="north pier", text5="Brücke", value3=-3,
                    value5=2, value7=7, frame_rate=100) as writer:
        assert (writer.shape, writer.dtype, len(writer)) == ((1, 2), np.uint8, 0)
    header = kpf.open(tmp_path / "clip.kpf").header
    assert (header.text2, header.text5) == ("north pier", "Brücke")
    assert (header.value3, header.value5, header.value7, header.frame_rate) == (-3, 2, 7, 100)


def test_counts_are_told_while_it_runs_and_after(tmp_path):
    writer = kpf.Writer(tmp_path / "clip.kpf", (1, 2), count=3)
    writer.add(np.zeros((1, 2), np.uint8))
    writer.add_lost()
    assert writer.counts == (3, 2, 1, 0, 0)
    with pytest.raises(kpf.IncompleteError, match="1 of the announced"):
        writer.close()
    assert writer.counts.added == 2
    writer.close()
    assert (tmp_path / "clip.kpf.incomplete.txt").exists()


def test_a_full_recording_refuses(tmp_path):
    with kpf.Writer(tmp_path / "clip.kpf", (1, 2), count=1) as writer:
        writer.add(np.zeros((1, 2), np.uint8))
        with pytest.raises(kpf.FullError):
            writer.add(np.zeros((1, 2), np.uint8))
        assert writer.counts == (1, 1, 0, 0, 1)


def test_nothing_is_overwritten_unasked(tmp_path):
    path = tmp_path / "clip.kpf"
    for value in (1, 2):
        with kpf.Writer(path, (1, 2), replace=value == 2) as writer:
            writer.add(np.full((1, 2), value, np.uint8))
        with pytest.raises(FileExistsError):
            kpf.Writer(path, (1, 2))
        assert kpf.open(path)[0][0, 0] == value


def test_what_went_wrong_first_is_what_is_raised(tmp_path):
    with pytest.raises(KeyError) as caught:
        with kpf.Writer(tmp_path / "clip.kpf", (1, 2), count=5) as writer:
            writer.add(np.zeros((1, 2), np.uint8))
            raise KeyError("camera")
    assert any("announced" in note for note in getattr(caught.value, "__notes__", ["announced"]))
    assert len(kpf.open(tmp_path / "clip.kpf")) == 1


def test_a_writer_that_is_forgotten_is_closed(tmp_path):
    writer = kpf.Writer(tmp_path / "clip.kpf", (1, 2))
    writer.add(np.zeros((1, 2), np.uint8))
    del writer
    gc.collect()
    assert kpf.open(tmp_path / "clip.kpf").header.announced == 1


def test_durable_recordings(tmp_path):
    with kpf.Writer(tmp_path / "clip.kpf", (1, 2), durable=True) as writer:
        writer.add(np.zeros((1, 2), np.uint8))
    assert len(kpf.open(tmp_path / "clip.kpf")) == 1


def test_a_closed_writer_says_so(tmp_path):
    writer = kpf.Writer(tmp_path / "clip.kpf", (1, 2))
    writer.close()
    for use in (lambda: writer.add(np.zeros((1, 2), np.uint8)), writer.add_lost, writer.__enter__):
        with pytest.raises(kpf.ClosedError, match="cannot be continued"):
            use()
    assert repr(writer).startswith("<closed")
