"""One recording, read by several threads at once, also while it is refreshed and closed."""
import threading

import numpy as np
import pytest

import kpf


@pytest.mark.parametrize("bits", [8, 12])
def test_readers_do_not_disturb_each_other(tmp_path, bits):
    kind = np.uint8 if bits == 8 else np.uint16
    with kpf.Writer(tmp_path / "clip.kpf", (16, 16), bits=bits, start=1) as writer:
        for n in range(40):
            writer.add(np.full((16, 16), n, kind))
    rec = kpf.open(tmp_path / "clip.kpf")
    wrong = []

    def read(step):
        for _ in range(5):
            wrong.extend(n for n in range(0, 40, step) if not (rec[n] == n).all())
            wrong.extend(n for n, frame in enumerate(rec) if not (frame == n).all())
            rec.refresh()

    threads = [threading.Thread(target=read, args=(step,)) for step in (1, 2, 3, 5)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert wrong == []


def test_errors_are_of_the_thread_that_made_them(tmp_path):
    texts = {}

    def fail(name):
        for _ in range(50):
            with pytest.raises(kpf.OpenError) as caught:
                kpf.open(tmp_path / name)
            texts.setdefault(name, set()).add(name in str(caught.value))

    threads = [threading.Thread(target=fail, args=(f"{letter}.kpf",)) for letter in "abcd"]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert set(map(frozenset, texts.values())) == {frozenset({True})} and len(texts) == 4
