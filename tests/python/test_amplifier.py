"""Amplification, against what stands in the definition."""
import numpy as np
import pytest

import kpf


def expected(frames, gain):
    """The newest frame, brightened by its positive difference from the cut mean over W."""
    window = len(frames) + 1
    newest = frames[-1].astype(int)
    reference = sum(frame.astype(int) for frame in frames) // window
    difference = np.maximum(newest - reference, 0)
    return reference, np.minimum(newest + (gain * difference) % 256, 255)


def test_it_gives_what_the_definition_says():
    rng = np.random.default_rng(5)
    frames = [rng.integers(0, 20, (6, 7), np.uint8) for _ in range(12)]
    with kpf.Amplifier((6, 7), frame_rate=30, motion_frequency=10, gain=3) as amplifier:
        assert amplifier.window == 8 and not amplifier.available
        with pytest.raises(kpf.NotReadyError):
            amplifier.get()
        for frame in frames:
            amplifier.add(frame)
        reference, newest = expected(frames[-8:], 3)
        assert amplifier.available
        assert (amplifier.reference() == reference).all()
        assert (amplifier.get() == newest).all()
        amplifier.gain = 5
        out = np.empty((6, 7), np.uint8)
        assert amplifier.get(out) is out and amplifier.gain == 5
        assert (out == expected(frames[-8:], 5)[1]).all()


def test_any_layout_of_memory_is_copied():
    image = np.arange(12, dtype=np.uint8).reshape(3, 4)
    with kpf.Amplifier((3, 4), 2, 2, 1) as amplifier:
        for layout in (np.asfortranarray(image), np.pad(image, 2)[2:-2, 2:-2]):
            amplifier.add(layout)
        assert (amplifier.reference() == 2 * image.astype(int) // 3).all()


@pytest.mark.parametrize("options", [
    {"shape": (0, 4)}, {"shape": (2, 70000)}, {"shape": (-1, 4)}, {"frame_rate": 0},
    {"frame_rate": float("nan")}, {"motion_frequency": 0}, {"motion_frequency": 99},
    {"gain": float("inf")}])
def test_bad_options(options):
    with pytest.raises(ValueError):
        kpf.Amplifier(**{"shape": (2, 4), "frame_rate": 30, "motion_frequency": 10, **options})


def test_bad_frames_and_buffers():
    with kpf.Amplifier((2, 4), 30, 10) as amplifier:
        with pytest.raises(TypeError, match="uint8, not uint16"):
            amplifier.add(np.zeros((2, 4), np.uint16))
        with pytest.raises(ValueError, match="shape"):
            amplifier.add(np.zeros((4, 2), np.uint8))
        with pytest.raises(ValueError):
            amplifier.gain = float("nan")
        assert amplifier.gain == 8.0
        for _ in range(8):
            amplifier.add(np.zeros((2, 4), np.uint8))
        locked = np.zeros((2, 4), np.uint8)
        locked.flags.writeable = False
        for out in (np.zeros((2, 4)), np.zeros((4, 2), np.uint8), locked,
                    np.zeros((2, 8), np.uint8)[:, ::2]):
            with pytest.raises(ValueError, match="contiguous"):
                amplifier.get(out)


def test_a_closed_one_says_so():
    amplifier = kpf.Amplifier((2, 4), 30, 10)
    amplifier.close()
    amplifier.close()
    for use in (amplifier.get, lambda: amplifier.window, amplifier.__enter__):
        with pytest.raises(kpf.ClosedError):
            use()
    assert repr(amplifier).startswith("<closed")
