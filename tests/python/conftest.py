"""What the tests share: the recordings that they read."""
import pytest
import recordings

import kpf


@pytest.fixture
def ten(tmp_path):
    """Ten 8-bit frames of 2 rows x 4 columns; each pixel is the frame's number."""
    return recordings.make(tmp_path, recordings.stepped(10))


@pytest.fixture
def gappy(tmp_path):
    """Five frames of which the first, third and fourth were lost."""
    gone = recordings.lost(8)
    return recordings.make(tmp_path, [gone, recordings.record(1, [11] * 8), gone, gone,
                                      recordings.record(4, [44] * 8)])


@pytest.fixture
def packed(tmp_path):
    """One 12-bit frame of 2 x 2 pixels: 0xABC 0x123, and below 0x001 0xFFF."""
    return recordings.make(tmp_path, [recordings.record(0, bytes.fromhex("ab3c1200f1ff"))],
                           width=2, height=2, bits=12, name="packed.kpf")


def pytest_report_header():
    return f"libkpf {kpf.library_version}"
