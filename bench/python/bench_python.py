"""Measures the package for Python beside the C++ that it stands on, in one run.

Usage: bench_python.py --baseline LIBRARY [--dry]

Rivals take turns in one process, so that a slow moment of the machine hits both; figures are medians
of the turns. Recordings are written below TMPDIR and read from the page cache. --dry does everything
once, with small frames, to see that it works.
"""
import argparse
import ctypes
import functools
import mmap
import os
import pathlib
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

import numpy as np

import kpf


class Sizes:
    """How much is measured."""

    def __init__(self, dry):
        self.shape = (32, 48) if dry else (1024, 1280)
        self.frames = 12 if dry else 150
        self.turns = 1 if dry else 15
        self.sparse = 50 if dry else 1638  # frames that make 2 GB
        self.tasks = 4 if dry else 24
        self.rounds = 1 if dry else 40  # of arithmetic for each frame


def seconds(work):
    began = time.perf_counter()
    work()
    return time.perf_counter() - began


def take_turns(turns, *rivals):
    """The median of each; each is a function that gives seconds. They go there and back, since each
    pays for what the one before it left in the caches."""
    measured = [[] for _ in rivals]
    for turn in range(turns):
        order = range(len(rivals))
        for at in order if turn % 2 == 0 else reversed(order):
            measured[at].append(rivals[at]())
    return [statistics.median(times) for times in measured]


def baseline_of(path):
    library = ctypes.CDLL(path)
    library.baseline_unpack.argtypes = (ctypes.c_char_p,)
    library.baseline_record.argtypes = (ctypes.c_char_p, ctypes.c_void_p) + (ctypes.c_uint,) * 4
    for function in (library.baseline_unpack, library.baseline_record):
        function.restype = ctypes.c_double
        function.errcheck = checked
    return library


def checked(result, function, arguments):
    if result < 0:
        raise RuntimeError(f"{function.__name__} did not do its work")
    return result


def record(path, images, bits, frames):
    with kpf.Writer(path, images.shape[1:], bits=bits, start=1, frame_rate=100) as writer:
        for n in range(frames):
            writer.add(images[n % len(images)])
    return path


def remove(path):
    path.unlink()
    shutil.rmtree(path.with_suffix(""))


def iterate(path, touch=None, **options):
    """Seconds from the first frame to the last; opening and closing are not counted."""
    with kpf.open(path, **options) as recording:
        began = time.perf_counter()
        if touch is None:
            for _ in recording:
                pass
        else:
            for frame in recording:
                touch(frame)
        return time.perf_counter() - began


def measure_unpacking(folder, images, sizes, baseline):
    path = record(folder / "wide.kpf", images, 12, sizes.frames)
    value, left, native = take_turns(
        sizes.turns, lambda: iterate(path),
        lambda: iterate(path, samples="left"),
        lambda: baseline.baseline_unpack(os.fsencode(path)))
    remove(path)
    frame = 1e3 / sizes.frames
    yield "iterate 12-bit frames, against the C++ reader's unpack", native / value, ">= 0.85"
    yield "the same, left-justified", native / left, ""
    yield "  ms a frame: Python, left-justified, C++", [value * frame, left * frame, native * frame], ""


def maximum(frame):
    return frame.max()


def touch_bytes(path, shape):
    """The bytes alone: the data file, mapped anew as the reader maps it."""
    size = shape[0] * shape[1]
    with open(path.with_suffix("") / f"{path.stem}_0001.div", "rb") as file:
        mapping = mmap.mmap(file.fileno(), 0, access=mmap.ACCESS_READ)
    mapping.madvise(mmap.MADV_SEQUENTIAL)
    if hasattr(mmap, "MADV_HUGEPAGE"):
        mapping.madvise(mmap.MADV_HUGEPAGE)
    stored = np.frombuffer(mapping, np.uint8)
    began = time.perf_counter()
    for at in range(16, stored.size, 16 + size):
        maximum(stored[at:at + size])
    return time.perf_counter() - began


def measure_views(folder, images, sizes):
    path = record(folder / "narrow.kpf", (images >> 4).astype(np.uint8), 8, sizes.frames)
    bare, touched, kept, bytes_alone = take_turns(
        sizes.turns, lambda: iterate(path),
        lambda: iterate(path, maximum),
        lambda: iterate(path, maximum, access="sparse"),
        lambda: touch_bytes(path, sizes.shape))
    remove(path)
    frame = 1e6 / sizes.frames
    yield "iterate 8-bit frames as views, us a frame, untouched", bare * frame, "<= 20"
    yield "the same beyond touching the bytes (maximum)", (touched - bytes_alone) * frame, "<= 20"
    yield "the same with access='sparse'", (kept - bytes_alone) * frame, ""
    yield "  us a frame: touching the bytes alone", bytes_alone * frame, ""


def add_all(path, images, frames, samples):
    """Seconds that the calls of add took."""
    with kpf.Writer(path, images.shape[1:], bits=12, samples=samples, count=frames) as writer:
        took = seconds(lambda: [writer.add(images[n % len(images)]) for n in range(frames)])
    remove(path)
    return took


def record_natively(path, images, frames, baseline):
    height, width = images.shape[1:]
    took = baseline.baseline_record(os.fsencode(path), images.ctypes.data, len(images), width,
                                    height, frames)
    remove(path)
    return took


def measure_writing(folder, images, sizes, baseline):
    left = images << 4
    path = folder / "written.kpf"
    value, same, native = take_turns(
        sizes.turns, lambda: add_all(path, images, sizes.frames, "value"),
        lambda: add_all(path, left, sizes.frames, "left"),
        lambda: record_natively(path, left, sizes.frames, baseline))
    frame = 1e3 / sizes.frames
    yield "Writer.add, against vxAddTiffImageData", native / value, ">= 0.9"
    yield "the same, left-justified", native / same, ""
    yield "  ms a frame: Python, left-justified, C++", [value * frame, same * frame, native * frame], ""


SUM = """
import sys, kpf
def resident():
    with open("/proc/self/status") as status:
        return next(int(line.split()[1]) * 1024 for line in status if line.startswith("VmRSS"))
recording = kpf.open(sys.argv[1])
total = int(recording[0].sum())
before = most = resident()
for frame in recording:
    total += int(frame.sum())
    most = max(most, resident())
print((most - before) / recording[0].nbytes)
"""


def measure_memory(folder, sizes):
    """A recording that is long and takes no room: black frames, of which only headers are written."""
    path = record(folder / "sparse.kpf", np.zeros((1, *sizes.shape), np.uint8), 8, 1)
    size = 16 + sizes.shape[0] * sizes.shape[1]
    data = path.with_suffix("") / "sparse_0001.div"
    with open(data, "r+b") as file:
        for n in range(sizes.sparse):
            file.seek(n * size)
            file.write(n.to_bytes(4, "little") + b"\1")
        file.truncate(sizes.sparse * size)
    with open(path, "r+b") as file:  # the count that is announced
        file.seek(468)
        file.write(sizes.sparse.to_bytes(4, "little"))
    done = subprocess.run([sys.executable, "-B", "-c", SUM, str(path)], check=True,
                          capture_output=True, text=True)
    remove(path)
    yield "memory while summing a sparse 2 GB recording, frames", float(done.stdout), "< 3"


def arithmetic(rounds, turn, frames):
    """Work that needs the processor and little memory."""
    values = frames[:, ::4, ::4].astype(np.float32)
    for _ in range(rounds):
        values = np.sqrt(values * values + np.sin(values))
    return values.mean(axis=(1, 2))


def with_workers(count, path, turns, work):
    """The median of the turns on a cluster of so many processes, and the last result."""
    from dask.distributed import Client, LocalCluster
    with LocalCluster(n_workers=count, threads_per_worker=1, host="127.0.0.1",
                      dashboard_address="127.0.0.1:0") as cluster, Client(cluster) as client:
        times = []
        for turn in range(turns + 1):
            # A task of its own each turn, or the cluster would give what it knows already.
            lazy = kpf.map_overlap(functools.partial(work, turn), kpf.open(path), chunk=2, shape=(),
                                   dtype=float)
            began = time.perf_counter()
            result = client.compute(lazy).result()
            times.append(time.perf_counter() - began)
    return statistics.median(times[1:]), result  # the first time they import and open


def measure_cluster(folder, images, sizes):
    os.environ["DASK_LOGGING__DISTRIBUTED"] = "critical"  # workers say goodbye at length
    try:
        import dask.distributed  # noqa: F401
    except ImportError:
        yield "dask on two processes, against one", "python3-distributed is missing", ">= 1.5"
        return
    frames = sizes.tasks * 2
    path = record(folder / "work.kpf", images, 12, frames)
    turns = min(sizes.turns, 5)
    work = functools.partial(arithmetic, sizes.rounds)
    (one, first), (two, second) = (with_workers(count, path, turns, work) for count in (1, 2))
    if first.tobytes() != second.tobytes():
        raise RuntimeError("two workers do not give the bytes of one")
    yield "dask on two processes, against one", one / two, ">= 1.5"
    yield "  ms a task of two frames, on one process", one / sizes.tasks * 1e3, ""
    idle = with_workers(1, path, turns, no_work)[0]
    yield "  the same without the arithmetic", idle / sizes.tasks * 1e3, ""
    remove(path)


def no_work(turn, frames):
    return frames[:, 0, 0].astype(float)


def show(name, reached, wanted):
    if isinstance(reached, list):
        reached = " / ".join(f"{value:.2f}" for value in reached)
    elif not isinstance(reached, str):
        reached = f"{reached:.2f}"
    print(f"{name:<58}{reached:>24}  {wanted}", flush=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--baseline", required=True)
    parser.add_argument("--dry", action="store_true")
    options = parser.parse_args()
    sizes = Sizes(options.dry)
    baseline = baseline_of(options.baseline)
    images = np.random.default_rng(1).integers(0, 4096, (8, *sizes.shape), np.uint16)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for rows in (measure_unpacking(folder, images, sizes, baseline),
                     measure_views(folder, images, sizes),
                     measure_writing(folder, images, sizes, baseline),
                     measure_memory(folder, sizes), measure_cluster(folder, images, sizes)):
            for row in rows:
                show(*row)


if __name__ == "__main__":  # workers import this file
    main()
