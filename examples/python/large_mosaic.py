#!/usr/bin/env python3
"""Counts the spots on a mosaic that no memory needs to hold: flat field, Gaussian, Otsu's threshold, components.

usage: large_mosaic.py [--size 20000] [--tile 1000] [--workers N] [--check] FOLDER

The mosaic is painted first: frames of one microscope, darker towards their corners, in FOLDER/raw.zarr. With --workers
processes of one thread share the work, without it the threads of this process. --check counts again on the whole
picture at once, which takes memory.
"""
import argparse
import contextlib
import pathlib
import resource
import time

import dask
import dask.array as da
import numpy as np
from dask.diagnostics import ProgressBar

import jorm
from jorm import tiles


def light(n):
    """The illumination of a frame: 1 in the middle, 0.4 in the corners."""
    d = np.linspace(-1, 1, n, dtype=np.float32) ** 2
    return 1 - 0.3 * (d[:, None] + d)


def paint(shape, n, block_info=None):
    """One frame: dim ground with noise, bright spots, uneven light."""
    where = block_info[None]["chunk-location"]
    r = np.random.default_rng(list(where))
    frame = np.zeros(shape, np.float32)
    spots = max(1, n * n // 4000)
    frame[r.integers(4, shape[0] - 4, spots), r.integers(4, shape[1] - 4, spots)] = r.uniform(10e3, 20e3, spots)
    frame = jorm.gaussian(frame, sigma=3)
    frame = (40 + frame) * light(n)[: shape[0], : shape[1]] + r.normal(0, 3, shape).astype(np.float32)
    return jorm.convert(frame.astype(np.float32), np.uint8)


def total_of_frames(raw, n):
    """The sum of all whole frames, a row of them at a time, and their number. Their mean is the light, but for spots,
    which are spread."""
    total, count = np.zeros((n, n), np.int32), 0
    for row in range(raw.numblocks[0]):
        blocks = [raw.blocks[row, column] for column in range(raw.numblocks[1])]
        for frame in dask.compute(*(b for b in blocks if b.shape == total.shape)):
            jorm.add(total, frame, out=total)
            count += 1
    return total, count


def spots(smooth):
    """A record of each spot: its area, and its seed. Spots are smaller than the overlap, so none is lost."""
    return tiles.component_tree(tiles.threshold(smooth, "otsu"), bright=True, every=True, overlap=64)


def stage(name, work):
    """Runs it under a progress bar and says how long it took."""
    start = time.perf_counter()
    result = work()
    print(f"{name}: {time.perf_counter() - start:.1f} s", flush=True)
    return result


def peak_mib():
    return resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    parser.add_argument("--size", type=int, default=20000)
    parser.add_argument("--tile", type=int, default=1000)
    parser.add_argument("--workers", type=int, default=0)
    parser.add_argument("--check", action="store_true")
    parser.add_argument("folder", type=pathlib.Path)
    o = parser.parse_args()

    with contextlib.ExitStack() as open_things:
        client = None
        if o.workers:
            from distributed import Client, LocalCluster

            cluster = LocalCluster(n_workers=o.workers, threads_per_worker=1, dashboard_address=None)
            client = open_things.enter_context(Client(open_things.enter_context(cluster)))
        else:
            open_things.enter_context(ProgressBar())

        raw_path, smooth_path = str(o.folder / "raw.zarr"), str(o.folder / "smooth.zarr")
        chunks = da.core.normalize_chunks(o.tile, (o.size, o.size))
        mosaic = da.map_blocks(lambda z, n, block_info=None: paint(z.shape, n, block_info),
                               da.zeros((o.size, o.size), chunks=chunks, dtype=np.uint8), o.tile,
                               dtype=np.uint8, meta=np.empty((0, 0), np.uint8))
        stage("paint", lambda: mosaic.to_zarr(raw_path, overwrite=True))
        raw = da.from_zarr(raw_path)

        flat, frames = stage("flat field", lambda: total_of_frames(raw, o.tile))
        flat = jorm.gaussian(jorm.convert(flat, np.float32, gain=1 / frames), sigma=o.tile / 40)
        gain = jorm.divide(float(flat.max()), flat)

        gains = da.tile(da.from_array(gain, chunks=-1), raw.numblocks)[: o.size, : o.size]
        even = tiles.convert(tiles.multiply(tiles.convert(raw, np.float32), gains), np.uint8)
        stage("smooth", lambda: tiles.gaussian(even, sigma=2).to_zarr(smooth_path, overwrite=True))
        smooth = da.from_zarr(smooth_path)

        level = stage("threshold", lambda: float(tiles.otsu(smooth).compute()))
        found = stage("spots", lambda: spots(smooth).compute())
        found = found[found["level"] == 255]  # the rest is the ground
        print(f"{len(found)} spots above {level:.2f}, of {np.median(found['area']):.0f} pixels in the median")
        memory = [peak_mib(), *(client.run(peak_mib).values() if client else [])]
        print("peak memory:", " + ".join(f"{m:.0f}" for m in memory), "MiB")
        if o.check:
            picture = smooth.compute()
            tree = jorm.component_tree(jorm.threshold(picture, "otsu"), bright=True, every=True)
            assert float(jorm.otsu(picture)) == level
            assert sorted(tree.area[tree.level == 255]) == sorted(found["area"])
            print("the whole picture at once says the same")


if __name__ == "__main__":
    main()
