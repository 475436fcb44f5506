"""Reading a long recording holds a frame or two, not all of it."""
import os
import subprocess
import sys
from pathlib import Path

import pytest
import recordings

SUM = """
import sys, numpy, kpf
def resident():
    with open("/proc/self/status") as status:
        return next(int(line.split()[1]) * 1024 for line in status if line.startswith("VmRSS"))
rec = kpf.open(sys.argv[1])
total = int(rec[0].sum()) + int(rec[1].sum())
before = most = resident()
for n, frame in enumerate(rec):
    total += int(frame.sum())
    if n % 16 == 0:
        most = max(most, resident())
print((most - before) / rec[0].nbytes, total)
"""


@pytest.mark.skipif(not Path("/proc/self/status").exists(), reason="no /proc")
@pytest.mark.skipif("ASAN_OPTIONS" in os.environ, reason="the sanitizer's memory grows too")
def test_summing_grows_by_less_than_three_frames(tmp_path):
    path = recordings.sparse(tmp_path / "long.kpf", 1280, 1024, 200)
    done = subprocess.run([sys.executable, "-B", "-c", SUM, str(path)], check=True,
                          capture_output=True, text=True)
    frames, total = done.stdout.split()
    assert float(frames) < 3 and total == "0"
