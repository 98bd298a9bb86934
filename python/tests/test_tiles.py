"""Tiles against the whole picture, on dask's threads and on worker processes."""

import numpy as np
import pytest

import jorm
from pictures import ARITHMETIC, picture

dask = pytest.importorskip("dask")
da = pytest.importorskip("dask.array")
tiles = pytest.importorskip("jorm.tiles")

SHAPES = {2: ((45, 60), (23, 17)), 3: ((24, 45, 3), (13, 20, 2)), 4: ((2, 20, 23, 1), (1, 11, 13, 1))}

# Name, operands after the picture, options; "other" stands for a second picture.
CASES = [
    *((name, (b,), {}) for name in ("add", "subtract", "multiply", "divide") for b in ("other", 3)),
    ("muladd", ("other", 2), {}),
    ("convert", (np.int16,), {"gain": 2}),
    ("convert", (np.uint8,), {"to_range": (0, 255)}),
    ("compare", ("other", "<"), {"if_true": 7, "dtype": np.int16}),
    ("box", (5,), {}),
    ("box", ((3, 31),), {}),
    ("minimum", (4,), {"anchor": 0}),
    ("maximum", ((1, 9),), {}),
    ("opening", (4,), {}),
    ("closing", ((7, 3),), {}),
    ("tophat", (5,), {}),
    ("bothat", (5,), {}),
    ("gaussian", (5,), {}),
    ("gaussian", (), {"sigma": 1.5}),
    ("sepfilter", ([1, 2, 1], [-1, 0, 1, 2]), {}),
    ("firefly", (5,), {"bright": 10}),
    ("threshold", (7,), {"upper": 90}),
    ("threshold", ("otsu",), {}),
    ("threshold", ("adaptive",), {"offset": 3}),
    ("histogram", (50,), {}),
    ("otsu", (), {}),
    ("otsu", (), {"bins": 99, "range": (-50, 70)}),
    ("sum", (), {}),
    ("mean", (), {}),
    ("minmax", (), {}),
    *(("copy_border", (((3, 4), (-2, 5)),), {"mode": m, "value": 7})
      for m in ("reflect101", "reflect", "replicate", "wrap", "constant")),
]
FLAT = [("erode", (np.eye(5),), {}), ("dilate", (np.eye(3),), {}), ("threshold", ("blur",), {})]


@pytest.fixture(scope="module")
def cluster():
    distributed = pytest.importorskip("distributed")
    with distributed.LocalCluster(n_workers=2, threads_per_worker=1, dashboard_address=None) as workers:
        with distributed.Client(workers):
            yield


@pytest.fixture(params=["threads", "processes"])
def scheduler(request):
    """Every picture on threads; on processes of bytes and of floats, which come back at any address."""
    if request.param == "processes":
        if request.node.callspec.params.get("dtype") in (np.int16, np.int32):
            pytest.skip("on threads only")
        request.getfixturevalue("cluster")
        yield
    else:
        with dask.config.set(scheduler="threads"):
            yield


def together(pairs):
    """Computes all in one go and compares; pairs of what is computed and what it should be."""
    for got, wanted in zip(dask.compute([g for g, _ in pairs])[0], [w for _, w in pairs]):
        for one, other in zip(got, wanted) if isinstance(wanted, tuple) else [(got, wanted)]:
            np.testing.assert_array_equal(one, other)
            assert np.ndim(one) == 0 or np.asarray(one).dtype.kind == np.asarray(other).dtype.kind


@pytest.mark.parametrize("axes", SHAPES)
@pytest.mark.parametrize("dtype", ARITHMETIC)
def test_equal_to_the_whole(scheduler, dtype, axes):
    shape, chunks = SHAPES[axes]
    a, b = picture(shape, dtype, 1), picture(shape, dtype, 2)
    whole, cut = {"other": b}, {"other": da.from_array(b, tuple(c + 1 for c in chunks))}
    pairs = []
    for name, operands, options in CASES + (FLAT if axes < 4 and dtype in (np.uint8, np.float32) else []):
        of = lambda known: [known.get(o, o) if isinstance(o, str) else o for o in operands]
        pairs.append((getattr(tiles, name)(da.from_array(a, chunks), *of(cut), **options),
                      getattr(jorm, name)(a, *of(whole), **options)))
    together(pairs)


@pytest.mark.parametrize("dtype", ARITHMETIC)
def test_masks(dtype):
    for axes in (2, 3):
        shape, chunks = SHAPES[axes]
        a, mask = picture(shape, dtype, 3), picture(shape[:2], np.uint8, 4) > 100
        tiled, masks = da.from_array(a, chunks), (mask, da.from_array(mask, 9))
        together([(getattr(tiles, name)(tiled, mask=m), getattr(jorm, name)(a, mask=mask))
                  for name in ("sum", "mean", "minmax", "histogram") for m in masks])
        together([(tiles.fill(tiled, 5, mask=m, otherwise=9), jorm.fill(a.copy(), 5, mask=mask, otherwise=9))
                  for m in masks])


def test_edges():
    a = np.full((9, 9), np.nan, np.float32)
    a[7, 2] = a[8, 1] = 3
    tiled = da.from_array(a, 4)
    together([(tiles.minmax(tiled), (3, 3, (7, 2), (7, 2))), (tiles.box(tiled, 25), jorm.box(a, 25))])
    large = np.full((2100, 2000), 2**31 - 1, np.int32)  # beyond what a double holds exactly in parts
    assert tiles.sum(da.from_array(large, 2100)).compute() == float(4200000 * (2**31 - 1))
    with pytest.raises(ValueError):
        tiles.threshold(tiled, "usto")
    with pytest.raises(TypeError):
        tiles.add(da.from_array(a.astype(np.float64), 4), 1)


@pytest.mark.parametrize("name, options", [("mser", {"max_variation": 0.5}), ("component_tree", {}),
                                           ("component_tree", {"every": True, "bright": True})])
def test_regions(scheduler, name, options):
    """What tiles find is in the whole picture, nothing twice; and what fits the overlap is found."""
    a = jorm.convert(jorm.gaussian(picture((150, 200), np.uint8, 5), sigma=2), np.uint8, to_range=(0, 255))
    overlap = 30
    regions, pixels = getattr(jorm, name)(a, pixels=True, **options)
    found, lists = getattr(tiles, name)(da.from_array(a, (45, 60)), overlap=overlap, pixels=True, **options).compute()

    def by_pixels(regions, pixels):
        of = lambda r: pixels[r["start"] : r["start"] + r["area"]]
        return {(int(r["level"]), frozenset(map(tuple, of(r)))): r for r in regions}

    whole, tiled = by_pixels(regions, pixels), by_pixels(found, lists)
    assert len(tiled) == len(found) > 100
    assert set(tiled) <= set(whole)
    size = lambda places: np.ptp(np.array(list(places)), axis=0).max()
    assert all(k in tiled for k in whole if size(k[1]) < overlap - 1 and len(k[1]) < 0.2 * a.size)
    for (_, places), r in tiled.items():
        assert tuple(r["seed"]) == min(places)
        assert r["parent"] < 0 or found[r["parent"]]["area"] >= r["area"]
