"""Motion energy of a folder of recordings, computed on a cluster of dask.

    python3 cluster.py FOLDER [--scheduler ADDRESS] [--picture energy.png]

The energy of a frame is the mean of its positive difference from the reference, which is the mean of
the frames before it: how much of the picture moves, and how strongly. Each task reads a range of
frames, and the few before it, by itself: what travels is a path, a range, and a number for each frame.

Without --scheduler two workers are started on this machine. With it, FOLDER is one that all workers
see under the same name, and the package kpf is installed there too.
"""
import argparse
import pathlib

import numpy as np
from dask.distributed import Client, LocalCluster

import kpf

BEFORE = 16  # frames that make up the reference


def motion_energy(frames):
    """In whole numbers up to the last division, so that every machine gives the same bytes."""
    energy = np.zeros(len(frames))
    total = np.zeros(frames.shape[1:], np.int64)
    for n, frame in enumerate(frames):
        if n > 0:
            reference = total // min(n, BEFORE)
            energy[n] = np.maximum(frame - reference, 0).sum() / frame.size
        total += frame
        if n >= BEFORE:
            total -= frames[n - BEFORE]
    return energy


def energies(client, folder, chunk):
    """The energy of each recording in the folder, by its name; all are computed at once."""
    paths = sorted(pathlib.Path(folder).glob("*.kpf"))
    lazy = [kpf.map_overlap(motion_energy, kpf.open(path, lost="repeat"), before=BEFORE, chunk=chunk,
                            shape=(), dtype=float) for path in paths]
    return {path.stem: result for path, result in zip(paths, client.gather(client.compute(lazy)))}


def draw(found, picture):
    import matplotlib
    matplotlib.use("Agg")
    from matplotlib import pyplot
    figure, axes = pyplot.subplots(figsize=(9, 4))
    for name, energy in found.items():
        axes.plot(energy, label=name)
    axes.set(xlabel="frame", ylabel="motion energy (grey levels)")
    axes.legend()
    figure.savefig(picture)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("folder")
    parser.add_argument("--scheduler", help="address of a running one, such as tcp://host:8786")
    parser.add_argument("--chunk", type=int, default=256, help="frames a task")
    parser.add_argument("--picture", default="energy.png")
    options = parser.parse_args()
    cluster = options.scheduler or LocalCluster(n_workers=2, threads_per_worker=1,
                                                host="127.0.0.1", dashboard_address="127.0.0.1:0")
    with Client(cluster) as client:
        found = energies(client, options.folder, options.chunk)
    if not options.scheduler:
        cluster.close()
    if not found:
        parser.error(f"{options.folder} holds no recordings (*.kpf)")
    for name, energy in found.items():
        print(f"{name}: {len(energy)} frames, most at {energy.argmax()}: {energy.max():.2f}")
    draw(found, options.picture)


if __name__ == "__main__":  # workers import this file
    main()
