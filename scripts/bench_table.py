"""Prints what the benchmarks reached, beside what they must reach.

Usage: bench_table.py RESULTS [JSON]

RESULTS holds a folder for every set of kernels, with the result files of the programs. JSON, when
given, is written: the rows, and the medians of all benchmarks in seconds.
"""

import json
import pathlib
import sys

# A row: what it says; the job, and the benchmark it is compared with; what the quotient must reach
# with AVX2 and with AVX-512. Rows of SPEED divide the time of the other by that of the job: the more
# the better. Rows of COST divide the other way: the less the better.
SPEED = [
    ("pack 16 to 12 bits, even width", "pack12", "pack12/memcpy", 0.90, 1.0),
    ("the same, odd width", "pack12-odd", "pack12-odd/memcpy", 0.70, 0.80),
    ("setTiffImageData, its allocation included", "frame12", "frame12/memcpy", 0.80, 0.85),
    ("copy 8-bit rows with padding", "rows8", "rows8/memcpy", 0.95, 0.95),
    ("unpack 12 to 16 bits", "unpack12", "unpack12/memcpy", 0.90, 1.0),
    ("addFrame of the amplifier", "addFrame", "addFrame/memcpy", 1.3, 1.4),
    ("getReference", "getReference", "getReference/memcpy", 0.80, 0.80),
    ("amplify, quiet scene", "amplify-quiet", "amplify-quiet/memcpy", 1.1, 1.2),
    ("amplify, busy scene", "amplify-busy", "amplify-busy/memcpy", 0.9, 1.1),
    ("amplify, negative factor", "amplify-negative", "amplify-negative/memcpy", None, None),
    ("add + reference + amplify, against plain loops", "amplifier", "amplifier/plain", 7, 7),
    ("the same, against OpenCV, exact", "amplifier", "amplifier/opencv-exact", 2, 2),
    ("the same, against OpenCV, natural", "amplifier", "amplifier/opencv-natural", 2, 2),
    ("setTiffImageData on two threads, against one", "frame12/threads=2", "frame12/threads=1", 1.5, 1.5),
    ("amplify on two threads, against one",
     "amplifyFrame/shared/threads=2", "amplifyFrame/shared/threads=1", 1.5, 1.5),
    ("its reference included", "amplifyFrame/threads=2", "amplifyFrame/threads=1", None, None),
    ("growth: pack 16 to 12 bits", "pack12-growth", "pack12-growth/memcpy", None, None),
    ("growth: add + reference + amplify", "amplifier-growth", "amplifier-growth/memcpy", None, None),
    ("record to the device, against TIFF", "recording/device", "tiff/device", 1, 1),
    ("record to the device, against HDF5", "recording/device", "hdf5/device", 1, 1),
    ("record to the device, against FFV1", "recording/device", "ffv1/device", 1, 1),
    ("record to the page cache, against TIFF", "recording/cache", "tiff/cache", None, None),
    ("record to the page cache, against HDF5", "recording/cache", "hdf5/cache", None, None),
    ("record to the page cache, against FFV1", "recording/cache", "ffv1/cache", None, None),
]
COST = [
    ("vxAddTiffImageData, time against write", "record-image", "record/write", 1.70, 1.50),
    ("vxAddPackedData, time against write", "record-packed", "record/write", 1.40, 1.40),
    ("map at one frequency, 12 bits, time against reading once",
     "probe-frequency-12", "probe-read-12", 4, 4),
    ("map of dominant frequencies, 12 bits, the same", "probe-dominant-12", "probe-read-12", 4, 4),
    ("map at one frequency, 8 bits, the same",
     "probe-frequency-8", "probe-read-8", None, None),
    ("map of dominant frequencies, 8 bits, the same",
     "probe-dominant-8", "probe-read-8", None, None),
    ("window of 900, time against one of 9", "amplifier/W=900", "amplifier/W=9", 1.10, 1.10),
]
KERNELS = {"plain": "plain", "avx2": "AVX2", "avx512": "AVX-512"}
UNITS = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


def processor():
    for line in pathlib.Path("/proc/cpuinfo").read_text().splitlines():
        if line.startswith("model name"):
            return line.split(":", 1)[1].strip()
    return "unknown processor"


def medians(folder):
    """Seconds of every benchmark, as {(job, size): seconds}."""
    found = {}
    for file in sorted(folder.glob("*.json")):
        for result in json.loads(file.read_text())["benchmarks"]:
            if result.get("aggregate_name") != "median":
                continue
            name = result["run_name"].removesuffix("/real_time").removesuffix("/manual_time")
            job, size = name.rsplit("/", 1)
            found[job, size] = result["real_time"] * UNITS[result["time_unit"]]
    return found


def rows_of(kernels, times):
    for better, rows in (("more", SPEED), ("less", COST)):
        for text, job, other, *targets in rows:
            target = targets[1 if kernels == "avx512" else 0]
            for (name, size), seconds in times.items():
                if name != job or (other, size) not in times:
                    continue
                ratio = times[other, size] / seconds
                if better == "less":
                    ratio = 1 / ratio
                yield {"kernels": kernels, "row": text, "size": size, "seconds": seconds,
                       "ratio": ratio, "target": target, "better": better}


def verdict(row):
    """Reached means to the digit that is printed."""
    if row["target"] is None:
        return ""
    ratio = round(row["ratio"], 2)
    reached = ratio >= row["target"] if row["better"] == "more" else ratio <= row["target"]
    return "" if reached else "missed"


def print_table(rows):
    print(f"{'job':<48}{'kernels':<9}{'frame':<11}{'ms':>9}{'ratio':>8}{'must':>10}")
    for row in rows:
        must = ""
        if row["target"] is not None:
            must = f"{'>=' if row['better'] == 'more' else '<='} {row['target']:.2f}"
        print(f"{row['row']:<48}{KERNELS[row['kernels']]:<9}{row['size']:<11}"
              f"{row['seconds'] * 1e3:>9.3f}{row['ratio']:>8.2f}{must:>10}  {verdict(row)}".rstrip())


def main():
    results = pathlib.Path(sys.argv[1])
    times = {name: medians(results / name) for name in KERNELS if (results / name).is_dir()}
    rows = [row for name, of_name in times.items() for row in rows_of(name, of_name)]
    order = [row[0] for row in SPEED + COST]
    rows.sort(key=lambda row: order.index(row["row"]))
    print(f"\n{processor()}\nMedians. Without a note, 'ratio' is the speed beside memcpy that moves as "
          "many bytes.\n")
    print_table(rows)
    if len(sys.argv) > 2:
        whole = {"processor": processor(), "rows": rows,
                 "seconds": {name: {"/".join(job): s for job, s in of_name.items()}
                             for name, of_name in times.items()}}
        pathlib.Path(sys.argv[2]).write_text(json.dumps(whole, indent=2) + "\n")


main()
