"""Component trees, stable regions and figures of points, against slow and obvious code."""

import numpy as np
import pytest

import jorm


def components(on):
    """Sets of pixels connected by four neighbours, the first column left out."""
    left = {tuple(p) for p in np.argwhere(on) if p[1] > 0}
    found = []
    while left:
        todo, piece = [left.pop()], set()
        while todo:
            y, x = p = todo.pop()
            piece.add(p)
            for q in ((y - 1, x), (y + 1, x), (y, x - 1), (y, x + 1)):
                if q in left:
                    left.remove(q)
                    todo.append(q)
        found.append(frozenset(piece))
    return found


def picture(seed, shape=(14, 17)):
    return np.random.default_rng(seed).integers(0, 6, shape).astype(np.uint8) * 40


@pytest.mark.parametrize("bright", [False, True])
def test_tree(bright):
    a = picture(1)
    regions, pixels = jorm.component_tree(a, bright=bright, every=True, pixels=True)
    expected = {c for v in np.unique(a) for c in components(a >= v if bright else a <= v)}
    found = {}
    for i, r in enumerate(regions):
        inside = frozenset(map(tuple, pixels[r.start : r.start + r.area].tolist()))
        assert len(inside) == r.area
        levels = [int(a[p]) for p in inside]
        assert r.level == (min(levels) if bright else max(levels))
        if r.parent < 0:
            assert i == 0
        else:
            outer = regions[r.parent]
            assert inside < frozenset(map(tuple, pixels[outer.start : outer.start + outer.area].tolist()))
        found[inside] = i
    assert set(found) == expected

    labels, again = jorm.watershed(a, bright=bright, every=True)
    assert (again == regions).all() and (labels[:, 0] == -1).all()
    smallest = {p: i for inside, i in sorted(found.items(), key=lambda f: -len(f[0])) for p in inside}
    for p in np.ndindex(a.shape):
        assert labels[p] == smallest.get(p, -1)


def test_tree_of_a_region():
    a = picture(2, (20, 20))
    region, rows, columns = (3, 4, 12, 13), slice(3, 15), slice(4, 17)
    regions, pixels = jorm.component_tree(a, every=True, pixels=True, region=region)
    other, other_pixels = jorm.component_tree(a[rows, columns], every=True, pixels=True)
    assert (regions == other).all() and (pixels == other_pixels + (3, 4)).all()
    labels, _ = jorm.watershed(a, every=True, region=region)
    expected, _ = jorm.watershed(a[rows, columns].copy(), every=True)
    np.testing.assert_array_equal(labels, expected)
    out = np.full(a.shape, 7, np.int32)
    assert jorm.watershed(a, out, every=True, region=region)[0] is out
    np.testing.assert_array_equal(out[rows, columns], expected)
    assert (out[:3] == 7).all() and (out[:, 17:] == 7).all()


def test_mser():
    a = np.full((60, 80), 120, np.uint8)
    a[10:30, 12:42] = 20  # dark, with a darker one inside and a bright one
    a[14:26, 20:30] = 5
    a[40:50, 50:70] = 230
    regions, pixels = jorm.mser(a, delta=4, min_area=20, pixels=True)
    found = {(r.area, r.level, bool(r.bright)): r for r in regions}
    assert set(found) == {(120, 5, False), (600, 20, False), (200, 230, True)}
    for r in regions:
        inside = pixels[r.start : r.start + r.area]
        assert (inside.min(0) == r.box[:2]).all() and (np.ptp(inside, 0) + 1 == r.box[2:]).all()
        np.testing.assert_allclose(r.ellipse[:2], inside.mean(0), rtol=1e-5)
        np.testing.assert_allclose(sorted(r.ellipse[2:4]), 2 * np.sqrt(sorted(inside.var(0))), rtol=1e-4)
        assert r.variation == 0
    inner, outer = found[120, 5, False], found[600, 20, False]
    assert regions[inner.parent].area == 600 and outer.parent == -1
    assert jorm.mser(a, dark=False, min_area=20).area.tolist() == [200]
    moved = jorm.mser(a, delta=4, min_area=20, region=(5, 6, 50, 70))
    assert sorted(moved.box.tolist()) == sorted(regions.box.tolist())
    ramp = np.add.outer(np.arange(60), np.arange(60)).astype(np.uint8)
    for r in jorm.mser(ramp, delta=2, max_variation=10, bright=False):
        assert r.variation == pytest.approx(((ramp[:, 1:] <= r.level + 2).sum() - r.area) / r.area)


@pytest.mark.parametrize("dtype", [np.int32, np.float32, np.float64])
def test_figures(dtype):
    r = np.random.default_rng(3)
    for n in (1, 3, 50):
        points = r.integers(0, 100, (n, 2)).astype(dtype)
        hull = jorm.convex_hull(points)
        assert hull.dtype == dtype and {tuple(p) for p in hull} <= {tuple(p) for p in points}
        if n == 50:
            turned = np.roll(hull, -1, 0) - hull
            for p in points:  # on one side of every edge
                cross = turned[:, 0] * (p - hull)[:, 1] - turned[:, 1] * (p - hull)[:, 0]
                assert (cross >= 0).all() or (cross <= 0).all()
        x, y = points.astype(float).T
        np.testing.assert_allclose(jorm.moments(points), [(x * x).mean(), (x * y).mean(), (y * y).mean()], rtol=1e-6)
        central = np.cov(x, y, bias=True) if n > 1 else np.zeros((2, 2))
        np.testing.assert_allclose(jorm.moments(points, central=True), central[[0, 0, 1], [0, 1, 1]], atol=1e-3)
        e = jorm.ellipse(points, k=1)
        np.testing.assert_allclose(e.centre, (x.mean(), y.mean()), rtol=1e-5)
        np.testing.assert_allclose(np.square(e.axes), np.clip(np.linalg.eigvalsh(central), 0, None), atol=1e-2)
        corners = jorm.min_area_rect(points[::-1])
        sides = np.linalg.norm(corners - np.roll(corners, 1, 0), axis=1)
        angles = np.arange(0, np.pi / 2, 0.001)
        along = np.outer(np.cos(angles), x) + np.outer(np.sin(angles), y)
        across = np.outer(-np.sin(angles), x) + np.outer(np.cos(angles), y)
        assert sides[0] * sides[1] <= (np.ptp(along, 1) * np.ptp(across, 1)).min() + 1e-2
    square = np.array([[0, 0], [6, 0], [6, 6], [0, 6]], dtype)
    np.testing.assert_allclose(jorm.moments(square, central=True, polygon=True), (3, 0, 3))
