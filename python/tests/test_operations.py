"""What functions compute, with numpy as the oracle; over types, channels and layouts, in place and by regions."""

import itertools

import numpy as np
import pytest

import jorm
from pictures import ARITHMETIC, COMPARED, LAYOUTS, picture, stored

SHAPES = [(7, 9), (1, 1), (5, 6, 1), (5, 6, 2), (4, 7, 3), (4, 5, 4), (2, 3, 5, 1), (2, 4, 3, 3)]


def wide(a):
    return a.astype(np.float64)


def window(a, rows, columns, reduce):
    """The oracle of neighbourhoods: mirror images beyond the edges, windows anchored at size // 2."""
    pads = [(rows // 2, rows - rows // 2 - 1), (columns // 2, columns - columns // 2 - 1)] + [(0, 0)] * (a.ndim - 2)
    around = np.pad(wide(a), pads, mode="reflect") if min(a.shape[:2]) > 1 else np.pad(wide(a), pads, mode="edge")
    views = [around[y : y + a.shape[0], x : x + a.shape[1]] for y in range(rows) for x in range(columns)]
    return reduce(np.stack(views), axis=0)


BINARY = {
    "add": (jorm.add, np.add),
    "subtract": (jorm.subtract, np.subtract),
    "multiply": (jorm.multiply, np.multiply),
}


@pytest.mark.parametrize("name", BINARY)
@pytest.mark.parametrize("dtype", ARITHMETIC)
@pytest.mark.parametrize("shape", SHAPES)
def test_arithmetic(name, dtype, shape):
    call, oracle = BINARY[name]
    a, b = picture(shape, dtype, 1), picture(shape, dtype, 2)
    if np.dtype(dtype).kind == "f":
        exact = oracle(a, b)
    else:  # Python's integers: products of int32 leave float64's exact ones
        info = np.iinfo(dtype)
        exact = np.clip(oracle(a.astype(object), b.astype(object)), info.min, info.max).astype(dtype)
    for layout in LAYOUTS.values():
        x, y = layout(a), layout(b)
        result = call(x, y)
        assert result.dtype == dtype and result.shape == shape
        np.testing.assert_array_equal(result, exact)
        assert call(x, y, x) is x  # in place
        np.testing.assert_array_equal(x, exact)
    if np.dtype(dtype).kind != "f":
        np.testing.assert_array_equal(call(a, b, saturate=False), oracle(a, b))  # numpy wraps as well


@pytest.mark.parametrize("first,second", itertools.permutations(ARITHMETIC, 2))
def test_types_mix(first, second):
    a, b = picture((5, 6), first, 3, small=True), picture((5, 6), second, 4, small=True)
    result = jorm.add(a, b)
    assert result.dtype == max(np.dtype(first), np.dtype(second), key=ARITHMETIC.index)
    np.testing.assert_array_equal(result, stored(wide(a) + wide(b), result.dtype))


@pytest.mark.parametrize("dtype", ARITHMETIC)
def test_constants(dtype):
    a = np.minimum(picture((4, 5, 3), dtype, 5, small=True), dtype(15))  # products fit a byte
    each = np.array([1, 2.5, 3])
    for constant in (7, 2.5, np.float32(7), (1, 2.5, 3), [1, 2.5, 3], each):
        exact = wide(a) + np.asarray(constant, float)
        np.testing.assert_array_equal(jorm.add(a, constant), stored(exact, dtype))
        np.testing.assert_array_equal(jorm.add(constant, a), stored(exact, dtype))
    np.testing.assert_array_equal(jorm.subtract(10, a), stored(10 - wide(a), dtype))
    np.testing.assert_array_equal(jorm.muladd(a, 2, 3), stored(wide(a) * 2 + 3, dtype))
    np.testing.assert_array_equal(jorm.muladd(a, 2, a), stored(wide(a) * 2 + wide(a), dtype))
    np.testing.assert_array_equal(jorm.muladd(a, a, 3), stored(wide(a) * wide(a) + 3, dtype))


def test_quotients_and_shifts():
    a = np.array([[7, -7, 5, 0, 9]], np.int16)
    b = np.array([[2, 2, 3, 5, 0]], np.int16)
    np.testing.assert_array_equal(jorm.divide(a, b), [[4, -4, 2, 0, 0]])
    np.testing.assert_array_equal(jorm.divide(a, b, round=False), [[3, -3, 1, 0, 0]])
    np.testing.assert_array_equal(jorm.divide(a.astype(np.float32), 2), [[3.5, -3.5, 2.5, 0, 4.5]])
    np.testing.assert_array_equal(jorm.divide(6, b), [[3, 3, 2, 1, 0]])
    np.testing.assert_array_equal(jorm.add(a, b, shift=-1), np.rint((wide(a) + b) / 2))


CONVERTED = [np.uint8, np.int8, np.uint16, np.int16, np.int32, np.float32]


@pytest.mark.parametrize("to", CONVERTED)
@pytest.mark.parametrize("of", CONVERTED)
def test_convert(of, to):
    a = picture((5, 6, 3), of, 6)
    for layout in LAYOUTS.values():
        np.testing.assert_array_equal(jorm.convert(layout(a), to), stored(wide(a), to))
    np.testing.assert_array_equal(
        jorm.convert(a, to, gain=(1, 0.5, 2), offset=3), stored(wide(a) * [1, 0.5, 2] + 3, to)
    )
    out = np.zeros_like(a, to)
    assert jorm.convert(a, out=out) is out
    np.testing.assert_array_equal(out, stored(wide(a), to))


OPERATORS = {
    "==": np.equal,
    "!=": np.not_equal,
    "<": np.less,
    "<=": np.less_equal,
    ">": np.greater,
    ">=": np.greater_equal,
}


@pytest.mark.parametrize("dtype", COMPARED)
@pytest.mark.parametrize("op", OPERATORS)
def test_compare(op, dtype):
    for shape in SHAPES:
        a, b = picture(shape, dtype, 7, small=True), picture(shape, dtype, 8, small=True)
        holds = OPERATORS[op](a, b)
        np.testing.assert_array_equal(jorm.compare(a, b, op), np.where(holds, 255, 0))
        np.testing.assert_array_equal(jorm.compare(a, b, op, if_true=3, if_false=4), np.where(holds, 3, 4))
        np.testing.assert_array_equal(jorm.compare(a, 10, op), np.where(OPERATORS[op](a, 10), 255, 0))
        np.testing.assert_array_equal(jorm.compare(10, a, op), np.where(OPERATORS[op](10, a), 255, 0))
    for to, yes in ((np.int8, -1), (np.uint16, 65535), (np.int16, -1), (np.uint32, 2**32 - 1), (np.int32, -1)):
        np.testing.assert_array_equal(jorm.compare(a, 10, op, dtype=to), np.where(OPERATORS[op](a, 10), yes, 0))


@pytest.mark.parametrize("dtype", COMPARED)
def test_threshold(dtype):
    for shape in SHAPES:
        a = picture(shape, dtype, 9, small=True)
        np.testing.assert_array_equal(jorm.threshold(a, 9), np.where(a > 9, 255, 0))
        np.testing.assert_array_equal(jorm.threshold(a, 4, upper=11), np.where((a > 4) & (a <= 11), 255, 0))
        np.testing.assert_array_equal(jorm.threshold(a, "otsu"), np.where(a > jorm.otsu(a), 255, 0))
    if dtype != np.int8:
        plane = picture((9, 9), dtype, 10, small=True)
        mean = stored(window(plane, 5, 5, np.mean), dtype)
        adaptive = jorm.threshold(plane, "adaptive", offset=1)
        np.testing.assert_array_equal(adaptive, np.where(plane > mean + 1.0, 255, 0))


def test_otsu_separates_best():
    a = picture((40, 40), np.uint8, 11)
    a[:, :15] //= 4

    def between(t):
        low, high = a[a <= t], a[a > t]
        return len(low) * len(high) * (low.mean() - high.mean()) ** 2 if len(low) and len(high) else 0

    best = max(range(256), key=between)
    assert np.floor(jorm.otsu(a)) == best


@pytest.mark.parametrize("dtype", ARITHMETIC)
@pytest.mark.parametrize("shape", SHAPES)
def test_statistics(dtype, shape):
    a = picture(shape, dtype, 12)
    chosen = np.random.default_rng(13).random(shape[:2] if len(shape) < 4 else shape[:3] + (1,)) < 0.5
    chosen.flat[0] = True
    for layout in LAYOUTS.values():
        x = layout(a)
        for mask in (None, chosen, chosen.astype(np.uint8) * 7):
            pixels = a.reshape(-1, a.shape[-1] if a.ndim > 2 else 1)
            taken = pixels if mask is None else pixels[chosen.reshape(-1)]
            total = jorm.sum(x, mask)
            assert isinstance(total, float) == (a.ndim == 2)
            np.testing.assert_allclose(np.ravel(total), wide(taken).sum(0), rtol=1e-12)
            np.testing.assert_allclose(np.ravel(jorm.mean(x, mask)), wide(taken).mean(0), rtol=1e-12)
            m = jorm.minmax(x, mask)
            np.testing.assert_array_equal(np.ravel(m.min), taken.min(0))
            np.testing.assert_array_equal(np.ravel(m.max), taken.max(0))
            for c, place in enumerate(np.reshape(m.argmax, (-1, 3 if a.ndim == 4 else 2))):
                at = tuple(place) + ((c,) if a.ndim > 2 else ())
                assert a[at] == np.ravel(m.max)[c]


@pytest.mark.parametrize("dtype", COMPARED)
def test_histogram(dtype):
    for shape in SHAPES:
        a = picture(shape, dtype, 14, small=True)
        if np.dtype(dtype).kind == "f":
            continue
        rows = a.reshape(-1, a.shape[-1] if a.ndim > 2 else 1).T.astype(int)
        expected = np.array([np.bincount(r, minlength=21) for r in rows])
        counts = jorm.histogram(a, 21, (0, 20))
        assert counts.dtype == np.uint32 and counts.ndim == (1 if a.ndim == 2 else 2)
        np.testing.assert_array_equal(np.atleast_2d(counts), expected)
        out = np.full_like(counts, 77)
        assert jorm.histogram(a, 21, (0, 20), out) is out
        np.testing.assert_array_equal(out, counts)
    a = np.array([[0.0, 0.5, 1.0, np.nan, 9]], np.float32)
    np.testing.assert_array_equal(jorm.histogram(a, 3, (0, 1)), [1, 1, 2])
    assert jorm.histogram(picture((9, 9), dtype, 15)).sum() == 81  # the usual range


WINDOWS = {
    "box": (np.mean, True),
    "minimum": (np.min, False),
    "maximum": (np.max, False),
    "erode": (np.min, False),
    "dilate": (np.max, False),
}


@pytest.mark.parametrize("name", WINDOWS)
@pytest.mark.parametrize("dtype", ARITHMETIC)
def test_windows(name, dtype):
    reduce, mean = WINDOWS[name]
    call = getattr(jorm, name)
    for shape in ((9, 11), (9, 11, 2), (9, 10, 3), (8, 9, 4)):
        a = picture(shape, dtype, 16)
        for size in (1, 3, (5, 2), (1, 7), (7, 7)):
            rows, columns = (size, size) if isinstance(size, int) else size
            exact = stored(window(a, rows, columns, reduce), dtype)
            check = np.testing.assert_allclose if mean and dtype == np.float32 else np.testing.assert_array_equal
            for layout in LAYOUTS.values():
                x = layout(a)
                check(call(x, size), exact)
                assert call(x, size, x) is x
                check(x, exact)


@pytest.mark.parametrize("dtype", ARITHMETIC)
def test_elements(dtype):
    element = np.array([[0, 1, 0], [1, 1, 1], [0, 1, 0]])
    for shape in ((9, 11), (9, 11, 2), (9, 10, 3), (8, 9, 4)):
        a = picture(shape, dtype, 17)
        cross = element.reshape(9).astype(bool)
        low = window(a, 3, 3, lambda s, axis: s[cross].min(0))
        high = window(a, 3, 3, lambda s, axis: s[cross].max(0))
        for e in (element, element.astype(bool), element.astype(np.uint8) * 255):
            np.testing.assert_array_equal(jorm.erode(a, e), low)
            np.testing.assert_array_equal(jorm.dilate(a, e), high)
        for e in (element, 3, (1, 5), np.ones((3, 3))):
            opened, closed = jorm.opening(a, e), jorm.closing(a, e)
            assert (opened <= a).all() and (closed >= a).all()
            np.testing.assert_array_equal(jorm.opening(opened, e), opened)
            np.testing.assert_array_equal(jorm.tophat(a, e), stored(wide(a) - wide(opened), dtype))
            np.testing.assert_array_equal(jorm.bothat(a, e), stored(wide(closed) - wide(a), dtype))
    assert not jorm.tophat(a, 1).any() and not jorm.bothat(a, 1).any()


def test_against_scipy():
    ndimage = pytest.importorskip("scipy.ndimage")
    a = picture((40, 50), np.float32, 18)
    np.testing.assert_allclose(jorm.gaussian(a, sigma=1.5), ndimage.gaussian_filter(a, 1.5, mode="mirror"), atol=1e-3)
    np.testing.assert_allclose(
        jorm.gaussian(a, sigma=(2, 0.7)), ndimage.gaussian_filter(a, (2, 0.7), mode="mirror"), atol=1e-3
    )
    for size in (3, (5, 7)):
        np.testing.assert_array_equal(jorm.opening(a, 1), a)
        np.testing.assert_array_equal(jorm.minimum(a, size), ndimage.minimum_filter(a, size, mode="mirror"))
    weights = [1, 4, -2]
    once = ndimage.correlate1d(wide(a), weights, 0, mode="mirror")
    once = ndimage.correlate1d(once, [1, 2, 1], 1, mode="mirror")
    np.testing.assert_allclose(jorm.sepfilter(a, weights, [1, 2, 1]), once, rtol=1e-4, atol=1e-2)
    volume = picture((5, 6, 7, 1), np.float32, 19)
    np.testing.assert_allclose(
        jorm.gaussian(volume, sigma=(1, 1, 1))[..., 0],
        ndimage.gaussian_filter(volume[..., 0], 1, mode="mirror"), atol=1e-3
    )


@pytest.mark.parametrize("dtype", ARITHMETIC)
def test_weighted_by_channel(dtype):
    for channels in (1, 2, 3, 4):
        a = picture((9, 10, channels), dtype, 20)
        smooth = jorm.gaussian(a, 5, sigma=1.2)
        for c in range(channels):
            np.testing.assert_array_equal(smooth[..., c], jorm.gaussian(a[..., c], 5, sigma=1.2))
        a[4, 4] = 200
        assert jorm.firefly(a, 5, bright=1e12).tolist() == a.tolist()


MODES = {"reflect101": "reflect", "reflect": "symmetric", "replicate": "edge", "wrap": "wrap", "constant": "constant"}


@pytest.mark.parametrize("mode", MODES)
def test_borders(mode):
    for shape, dtype in (((4, 5), np.uint8), ((4, 5, 3), np.float64), ((2, 4, 5, 2), np.int64)):
        if mode == "constant" and np.dtype(dtype).itemsize == 8:
            continue
        a = picture(shape, dtype, 21)
        pads = ((0, 0),) * (len(shape) == 4) + ((2, 3), (1, 4)) + ((0, 0),) * (len(shape) > 2)
        expected = np.pad(a, pads, MODES[mode])
        for layout in LAYOUTS.values() if len(shape) < 4 else [LAYOUTS["dense"]]:
            np.testing.assert_array_equal(jorm.copy_border(layout(a), ((2, 3), (1, 4)), mode=mode), expected)
    around = np.zeros((8, 9), np.uint8)
    around[2:6, 2:7] = inner = picture((4, 5), np.uint8, 22)
    jorm.copy_border(around[2:6, 2:7], 2, around, mode=mode)  # the picture stands in its frame already
    np.testing.assert_array_equal(around, np.pad(inner, 2, MODES[mode]))
    np.testing.assert_array_equal(jorm.copy_border(inner, -1), inner[1:-1, 1:-1])


def test_fill():
    for shape, dtype in (((4, 5), np.uint8), ((4, 5, 3), np.float32), ((4, 5, 2), np.uint32)):
        mask = np.random.default_rng(23).random(shape[:2]) < 0.5
        for layout in LAYOUTS.values():
            a = layout(picture(shape, dtype, 24))
            before = a.copy()
            assert jorm.fill(a, 9, mask=mask) is a
            chosen = mask if a.ndim == 2 else mask[..., None]
            np.testing.assert_array_equal(a, np.where(chosen, 9, before))
            jorm.fill(a, 1, mask=mask, otherwise=2)
            np.testing.assert_array_equal(a, np.broadcast_to(np.where(chosen, 1, 2), shape))


def test_resize():
    for shape, dtype in (((7, 5), np.uint8), ((7, 5, 3), np.float64), ((2, 7, 5, 1), np.int16)):
        a = picture(shape, dtype, 25)
        for rows, columns in ((3, 11), (14, 5), (1, 1)):
            y = np.floor((np.arange(rows) + 0.5) * 7 / rows).astype(int)
            x = np.floor((np.arange(columns) + 0.5) * 5 / columns).astype(int)
            taken = a[:, y][:, :, x] if a.ndim == 4 else a[y][:, x]
            np.testing.assert_array_equal(jorm.resize(a, (rows, columns)), taken)
            out = np.zeros(taken.shape, dtype)
            assert jorm.resize(a, out=out) is out
            np.testing.assert_array_equal(out, taken)
    np.testing.assert_array_equal(jorm.resize(a, scale=-1), a[:, ::-1, ::-1])
    square = picture((6, 6), np.uint8, 26)
    before = square.copy()
    jorm.resize(square, out=square[:, ::-1])
    np.testing.assert_array_equal(square, before[:, ::-1])


def test_regions_are_parts():
    a, b = picture((20, 30), np.uint8, 27), picture((20, 30), np.uint8, 28)
    region, rows, columns = (4, 6, 9, 12), slice(4, 13), slice(6, 18)
    calls = {
        "add": lambda **o: jorm.add(a, b, **o),
        "constant": lambda **o: jorm.muladd(a, 2, b, **o),
        "convert": lambda **o: jorm.convert(a, np.uint8, gain=2, **o),
        "compare": lambda **o: jorm.compare(a, b, ">", **o),
        "gaussian": lambda **o: jorm.gaussian(a, 5, **o),  # filters read the true pixels around the region
        "erode": lambda **o: jorm.erode(a, 5, **o),
    }
    for name, call in calls.items():
        expected = call()[rows, columns]
        np.testing.assert_array_equal(call(region=region), expected, name)
        np.testing.assert_array_equal(call(region=np.s_[4:13, 6:18]), expected, name)
        part = np.zeros((9, 12), np.uint8)
        call(region=region, out=part)
        np.testing.assert_array_equal(part, expected, name)
        whole = np.full((20, 30), 99, np.uint8)
        call(region=region, out=whole)
        np.testing.assert_array_equal(whole[rows, columns], expected, name)
        whole[rows, columns] = 99
        assert (whole == 99).all(), name
    part = a[rows, columns]
    mask = b > 100
    assert jorm.sum(a, region=region) == part.sum()
    assert jorm.sum(a, mask, region=region) == part[mask[rows, columns]].sum()
    assert jorm.minmax(a, region=region).max == part.max()
    np.testing.assert_array_equal(jorm.histogram(a, region=region), np.bincount(part.ravel(), minlength=256))
    np.testing.assert_array_equal(jorm.resize(a, (3, 4), region=region), part[1::3, 1::3])
    np.testing.assert_array_equal(jorm.copy_border(a, 2, region=region), np.pad(part, 2, "reflect"))
    np.testing.assert_array_equal(jorm.threshold(a, "otsu", region=region), jorm.threshold(part.copy(), "otsu"))
    inside = a.copy()
    jorm.gaussian(inside, 5, inside, region=region)
    np.testing.assert_array_equal(inside[rows, columns], jorm.gaussian(a, 5)[rows, columns])


def test_results_over_their_sources():
    a = picture((20, 30), np.int16, 29, small=True)
    x = a.copy()
    jorm.add(x[:-1], 1, x[1:])
    np.testing.assert_array_equal(x[1:], a[:-1] + 1)
    x = a.copy()
    jorm.add(x[:, ::-1], x, x)
    np.testing.assert_array_equal(x, a[:, ::-1] + a)
    x = a.copy()
    jorm.compare(x[::-1], 5, ">", x, if_true=1)
    np.testing.assert_array_equal(x, a[::-1] > 5)
    x = a.copy()
    jorm.minimum(x[:-1], 3, x[1:])
    np.testing.assert_array_equal(x[1:], jorm.minimum(a[:-1], 3))
