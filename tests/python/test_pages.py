"""Which memory is given back behind the frame that was read last."""
import mmap

import pytest
from kpf import _pages

BLOCK = 2 << 20
MAPPING = 0x7F0000000000 + 3 * mmap.PAGESIZE  # in the midst of a block, as mappings may begin
HEADER = 16


class Frame:
    def __init__(self, place, size, mapping=MAPPING):
        self.pixel_offset = HEADER + place * (HEADER + size)
        self.pixels = mapping + self.pixel_offset


@pytest.fixture
def given(monkeypatch):
    """Ranges that were given back, as (begin, end) behind the mapping's beginning."""
    ranges = []

    def give_back(begin, end):
        if end > begin:
            ranges.append((begin - MAPPING, end - MAPPING))

    monkeypatch.setattr(_pages, "_give_back", give_back)
    return ranges


def read(places, size):
    behind = _pages.Behind(size)
    for place in places:
        behind.passed(Frame(place, size))


@pytest.mark.parametrize("size", [1000, 640 * 480, 1280 * 1024, 5 << 20])
def test_all_but_the_last_block_once(given, size):
    count = (20 << 20) // size
    read(range(count), size)
    assert given[0][0] == 0
    assert all(before[1] == after[0] for before, after in zip(given, given[1:]))
    end = count * (HEADER + size)
    assert 0 <= end - given[-1][1] < BLOCK
    assert all((MAPPING + last) % BLOCK == 0 for _, last in given)


@pytest.mark.parametrize("size", [1000, 1280 * 1024])
def test_backwards_too(given, size):
    count = (20 << 20) // size
    read(reversed(range(count)), size)
    assert sum(end - begin for begin, end in given) > (20 << 20) - 2 * (BLOCK + size)


def test_a_block_that_is_left(given):
    size = 640 * 480
    read([0, 50, 100], size)
    for place in (0, 50):
        for at in (Frame(place, size).pixel_offset, Frame(place, size).pixel_offset + size - 1):
            assert any(begin <= at < end for begin, end in given), place


def test_never_what_was_not_read(given):
    size = 1000
    read(range(100, 3000), size)
    begin, end = 100 * (HEADER + size), 3000 * (HEADER + size)
    assert min(first for first, _ in given) >= begin - BLOCK
    assert max(last for _, last in given) <= end


def test_lost_frames_have_no_pages(given):
    behind = _pages.Behind(1000)
    lost = Frame(0, 1000)
    lost.pixels = None
    behind.passed(lost)
    assert given == []
