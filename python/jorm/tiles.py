"""The module's operations on dask arrays, tile by tile.

Functions have the names and the options of `jorm`, without `out` and `region`. They take dask arrays with 2 axes (rows,
columns), 3 (channels last) or 4 (planes in front) in chunks of any size, and give dask arrays, or delayed objects where
the result is no array: nothing is computed before `compute()`. Results equal those of `jorm` on the whole array bit for
bit; only sums of floating-point numbers are rounded once more for each tile.

Regions that a flood finds cannot be cut at the edges of tiles without loss: see `mser` and `watershed`.
"""

import functools
import operator

import dask
import dask.array as da
import numpy as np

import jorm

_AXES = {2: "yx", 3: "yxc", 4: "zyxc"}


def _picture(a):
    """A dask array whose channels lie in one chunk."""
    a = da.asarray(a)
    if a.ndim not in _AXES:
        raise ValueError(f"arrays have 2 to 4 axes, not {a.ndim}")
    return a if a.ndim == 2 else a.rechunk({a.ndim - 1: -1})


def _is_picture(a):
    return isinstance(a, (da.Array, np.ndarray)) and a.ndim > 1


def _aligned(a):
    """Arrays that come from other processes may begin anywhere."""
    return np.require(a, requirements="A") if isinstance(a, np.ndarray) else a


def _run(name, *operands, **options):
    """A function of the module by its name, which workers in other processes understand."""
    return getattr(jorm, name)(*map(_aligned, operands), **options)


def _fill(a, value, mask, otherwise):
    return jorm.fill(a.copy(), value, mask=mask, otherwise=otherwise)


# ---- Element by element ----


def _call(call, fixed, places, *blocks, **options):
    """Calls with blocks in their places among the fixed operands."""
    operands = list(fixed)
    for place, block in zip(places, blocks):
        operands[place] = block
    return call(*operands, **options)


def _blocks(call, *operands, result=None, waiting={}, **options):
    """A function of the module on the blocks of the operands; operands that are no pictures go to each call as they are, options that
    wait for results when these are there."""
    places = [i for i, a in enumerate(operands) if _is_picture(a)]
    if not places:
        raise TypeError("one operand must be an array")
    pictures = [_picture(operands[i]) for i in places]
    fixed = [None if _is_picture(a) else a for a in operands]
    call = call if callable(call) else functools.partial(_run, call)
    run = functools.partial(_call, functools.partial(call, **options), fixed, places)
    if result is None:
        result = run(*(np.ones((1,) * (a.ndim - 1) + (a.shape[-1] if a.ndim > 2 else 1,), a.dtype)
                       for a in pictures)).dtype
    axes = _AXES[max(a.ndim for a in pictures)]
    pairs = [x for a in pictures for x in (a, axes if a.ndim == len(axes) else "yx")]
    return da.blockwise(run, axes, *pairs, dtype=result, concatenate=True, meta=np.empty((0,) * len(axes), result),
                        **waiting)


def add(a, b, *, saturate=True, shift=0):
    """The sum of two pictures, or of a picture and numbers, see `jorm.add`.

    Examples
    --------
    >>> a = da.from_array(np.array([[100, 200]], np.uint8), chunks=1)
    >>> tiles.add(a, 100).compute()
    array([[200, 255]], dtype=uint8)
    """
    return _blocks("add", a, b, saturate=saturate, shift=shift)


def subtract(a, b, *, saturate=True, shift=0):
    """The difference of two pictures, or of a picture and numbers, see `jorm.subtract`."""
    return _blocks("subtract", a, b, saturate=saturate, shift=shift)


def multiply(a, b, *, saturate=True, shift=0):
    """The product of two pictures, or of a picture and numbers, see `jorm.multiply`."""
    return _blocks("multiply", a, b, saturate=saturate, shift=shift)


def divide(a, b, *, round=True, shift=0):
    """The quotient of two pictures, or of a picture and numbers, see `jorm.divide`."""
    return _blocks("divide", a, b, round=round, shift=shift)


def muladd(a, b, c, *, shift=0):
    """a * b + c, rounded once, see `jorm.muladd`."""
    return _blocks("muladd", a, b, c, shift=shift)


def convert(a, dtype, *, gain=None, offset=None, to_range=None, from_range=None):
    """A picture in another element type, see `jorm.convert`.

    A `from_range` left out beside `to_range` is measured over all tiles first.
    """
    dtype = np.dtype(dtype)
    measured = {"from_range": _measured(_picture(a))} if to_range is not None and from_range is None else {}
    return _blocks("convert", a, dtype, result=dtype, waiting=measured, gain=gain, offset=offset,
                   to_range=to_range, **({} if measured else {"from_range": from_range}))


def compare(a, b, op, *, if_true=None, if_false=None, dtype=None):
    """Where pixels stand in a relation, see `jorm.compare`."""
    return _blocks("compare", a, b, op=op, if_true=if_true, if_false=if_false, dtype=dtype)


def fill(a, value, *, mask=None, otherwise=None):
    """A copy in which the pixels that a mask selects, or all, have a value, see `jorm.fill`."""
    return _blocks(_fill, a, value, mask, otherwise)


_MODES = {"reflect101": "reflect", "reflect": "symmetric", "replicate": "edge", "wrap": "wrap", "constant": "constant"}


def copy_border(a, margin, *, mode="reflect101", value=0):
    """A picture with a border around it, which goes at most once around the picture; see `jorm.copy_border`."""
    if mode not in _MODES:
        raise ValueError(f"mode must be one of {', '.join(map(repr, _MODES))}, not {mode!r}")
    a = _picture(a)
    margin = np.broadcast_to(np.reshape(margin, (-1, 1)) if np.ndim(margin) < 2 else margin, (2, 2))
    planes, channels = ((0, 0),) * (a.ndim == 4), ((0, 0),) * (a.ndim > 2)
    width = (*planes, *(tuple(map(int, np.maximum(m, 0))) for m in margin), *channels)
    cut = (*planes, *(tuple(map(int, np.maximum(-m, 0))) for m in margin), *channels)
    if mode == "constant" and channels:
        values = jorm.fill(np.empty((1, 1, a.shape[-1]), a.dtype), value)[0, 0]
        padded = da.concatenate([da.pad(a[..., c:c + 1], width, "constant", constant_values=v)
                                 for c, v in enumerate(values)], axis=-1)
    elif mode == "constant":
        padded = da.pad(a, width, "constant", constant_values=jorm.fill(np.empty((1, 1), a.dtype), value)[0, 0])
    else:
        padded = da.pad(a, width, _MODES[mode])
    return _picture(padded[tuple(slice(lo, n - hi) for (lo, hi), n in zip(cut, padded.shape))])


# ---- Neighbourhoods ----


def _by_axis(given, a, planes):
    """A number, or one for rows and columns, or for each axis of four: as numbers for the axes but the channels."""
    values = [planes, given, given] if np.ndim(given) == 0 else [planes, *given] if len(given) == 2 else list(given)
    return values if a.ndim == 4 else values[1:]


def _overlap(name, a, depths, result=None, **options):
    """A function on tiles that see so many pixels of their neighbours, of which they are trimmed again."""
    a = _picture(a)
    # A tile that reaches across the whole picture is that; the picture's own edges are the library's business.
    a = a.rechunk({axis: -1 for axis, d in enumerate(depths) if d >= a.shape[axis]})
    depth = {axis: int(d) if a.numblocks[axis] > 1 else 0 for axis, d in enumerate(depths)}
    dtype = result or a.dtype
    return da.map_overlap(functools.partial(_run, name, **options), a, depth=depth, boundary="none", dtype=dtype,
                          meta=np.empty((0,) * a.ndim, dtype))


def _window_filter(name, passes, doc):
    def filter(a, size, *, anchor=None):
        element = isinstance(size, np.ndarray) and size.ndim > 1
        window = _by_axis(size.shape if element else size, da.asarray(a), 1)
        return _overlap(name, a, [passes * (n - 1) for n in window], size=size, anchor=anchor)

    filter.__name__ = filter.__qualname__ = name
    filter.__doc__ = f"{doc}, see `jorm.{name}`."
    return filter


box = _window_filter("box", 1, "The mean of the window around each pixel")
minimum = _window_filter("minimum", 1, "The least pixel of the window")
maximum = _window_filter("maximum", 1, "The largest pixel of the window")
erode = _window_filter("erode", 1, "Grey-level erosion")
dilate = _window_filter("dilate", 1, "Grey-level dilation")
opening = _window_filter("opening", 2, "Grey-level opening")
closing = _window_filter("closing", 2, "Grey-level closing")
tophat = _window_filter("tophat", 2, "What opening removes")
bothat = _window_filter("bothat", 2, "What closing adds")


def _bell(a, size, sigma):
    """The depths that a Gaussian needs."""
    if size is not None:
        return [n - 1 for n in _by_axis(size, a, 1)]
    return [np.floor(4 * s + 0.5) for s in _by_axis(sigma, a, 0)]


def gaussian(a, size=None, *, sigma=None, anchor=None):
    """The Gaussian-weighted mean of the window around each pixel, see `jorm.gaussian`."""
    if size is None and sigma is None:
        raise TypeError("gaussian: size or sigma is needed")
    a = _picture(a)
    return _overlap("gaussian", a, _bell(a, size, sigma), size=size, sigma=sigma, anchor=anchor)


def sepfilter(a, down, along, *, planes=None, anchor=None):
    """The sum of the window's pixels with the weights down[row] * along[column], see `jorm.sepfilter`."""
    a = _picture(a)
    lengths = _by_axis((len(down), len(along)), a, 1 if planes is None else len(planes))
    return _overlap("sepfilter", a, [n - 1 for n in lengths], down=down, along=along, planes=planes, anchor=anchor)


def firefly(a, size=None, *, sigma=None, bright, dark=None, both=False, anchor=None):
    """Replaces isolated bright pixels by the mean of their surroundings, see `jorm.firefly`.

    `bright`, and with `both` also `dark`, must be given: their defaults look at the whole picture.
    """
    if both and dark is None:
        raise TypeError("firefly: dark is needed with both")
    a = _picture(a)
    return _overlap("firefly", a, _bell(a, size, sigma), size=size, sigma=sigma, bright=bright, dark=dark,
                    both=both, anchor=anchor)


# ---- Statistics ----


def _fold(parts, combine):
    """Combines delayed parts as a tree, so that no worker has to hold all of them."""
    run = dask.delayed(combine, pure=True)
    while len(parts) > 1:
        parts = [run(parts[i:i + 16]) for i in range(0, len(parts), 16)]
    return parts[0]


def _part(part, block, *args):
    return part(_aligned(block), *args)


def _reduce(part, combine, a, mask, *args):
    """Combines `part` of the tiles, of their masks and of the places where they begin."""
    run = dask.delayed(functools.partial(_part, part), pure=True)
    starts = [np.concatenate(([0], np.cumsum(c)[:-1])).astype(int) for c in a.chunks]
    masks = np.full(a.numblocks, None)
    if mask is not None:
        mask = da.asarray(mask)
        mask = mask[..., None] if mask.ndim < a.ndim else mask
        masks = mask.rechunk((*a.chunks[:-1], -1) if a.ndim > 2 else a.chunks).to_delayed()
    return _fold([run(block, masks[index], [s[i] for s, i in zip(starts, index)], *args)
                  for index, block in np.ndenumerate(a.to_delayed())], combine)


def _by_channel(a, value, dtype, *more):
    return da.from_delayed(value, (a.shape[-1:] if a.ndim > 2 else ()) + more, dtype)


def _pixels(a):
    """The number of pixels of an array."""
    return np.prod(a.shape[:-1] if a.ndim > 2 else a.shape, dtype=np.int64)


def _sum_part(block, mask, start):
    """The sums, those of integers as integers, and the number of pixels."""
    pixels = _pixels(block) if mask is None else np.count_nonzero(mask)
    if block.dtype.kind == "f":
        return np.asarray(jorm.sum(block, mask)), pixels
    rows = block.ndim == 4  # strips of them have sums that a double holds exactly
    step = max(1, 2**21 * block.shape[rows] // _pixels(block))
    strips = [(slice(None),) * rows + (slice(y, y + step),) for y in range(0, block.shape[rows], step)]
    sums = [jorm.sum(block[s], None if mask is None else mask[s]) for s in strips]
    return np.sum([np.asarray(s).astype(np.int64) for s in sums], axis=0), pixels


def _sum_combine(parts):
    return np.sum([total for total, _ in parts], axis=0), np.sum([pixels for _, pixels in parts])


def sum(a, mask=None):
    """The sum of each channel, see `jorm.sum`."""
    a = _picture(a)
    total = _reduce(_sum_part, _sum_combine, a, mask)
    return _by_channel(a, dask.delayed(lambda t: t[0].astype(np.float64))(total), np.float64)


def mean(a, mask=None):
    """The mean of each channel, see `jorm.mean`."""
    a = _picture(a)
    total = _reduce(_sum_part, _sum_combine, a, mask)
    return _by_channel(a, dask.delayed(lambda t: t[0].astype(np.float64) / max(1, t[1]))(total), np.float64)


def _minmax_part(block, mask, start):
    m = jorm.minmax(block, mask)
    places = [np.atleast_2d(at) for at in (m.argmin, m.argmax)]
    return (*(np.atleast_1d(v) for v in (m.min, m.max)),
            *(np.where(at < 0, at, at + start[:at.shape[1]]) for at in places))


def _minmax_combine(parts):
    """The first in the order of the picture of what is least and largest."""
    def best(which, sign):
        values, places = (np.stack([p[i] for p in parts]) for i in (which, 2 + which))
        order = lambda p, c: (places[p, c, 0] < 0, sign * values[p, c].item(), places[p, c].tolist())
        first = [min(range(len(parts)), key=lambda p: order(p, c)) for c in range(values.shape[1])]
        return values[first, range(len(first))], places[first, range(len(first))]

    (lo, lo_at), (hi, hi_at) = best(0, 1), best(1, -1)
    return lo, hi, lo_at, hi_at


def _minmax_result(found, ndim):
    if ndim > 2:
        return jorm.MinMax(found)
    return jorm.MinMax([v.item() for v in found[:2]] + [tuple(at[0].tolist()) for at in found[2:]])


def minmax(a, mask=None):
    """The least and the largest value of each channel and where they stand first, delayed; see `jorm.minmax`."""
    a = _picture(a)
    return dask.delayed(_minmax_result)(_reduce(_minmax_part, _minmax_combine, a, mask), a.ndim)


def _measured(a, mask=None):
    """The range of all channels, delayed."""
    def of(found):
        seen = [v[at[:, 0] >= 0] for v, at in zip(found[:2], found[2:])]
        return (float(seen[0].min()), float(seen[1].max())) if seen[0].size else (0.0, 0.0)

    return dask.delayed(of)(_reduce(_minmax_part, _minmax_combine, a, mask))


def _histogram_part(block, mask, start, bins, range):
    return jorm.histogram(block, bins, range, mask=mask).astype(np.uint64)


def _histogram(a, bins, range, mask=None):
    return _reduce(_histogram_part, functools.partial(np.sum, axis=0), a, mask, bins, range)


def histogram(a, bins=256, range=None, *, mask=None):
    """How many pixels of each channel fall into each bin, as uint64; see `jorm.histogram`.

    A range left out is measured over all tiles first, but for pixels of 8 bits.
    """
    a = _picture(a)
    if range is None and a.dtype.itemsize > 1:
        range = _measured(a, mask)
    return _by_channel(a, _histogram(a, bins, range, mask), np.uint64, bins)


def _otsu(counts, range, pixels):
    if counts.ndim == 1:
        return np.float64(jorm._jorm._otsu_of_counts(counts, *range, pixels))
    return np.array([_otsu(c, range, pixels) for c in counts])


def otsu(a, *, bins=0, range=None):
    """The threshold of Otsu's method over all tiles, of less than 2**32 pixels; see `jorm.otsu`."""
    a = _picture(a)
    coarse = a.dtype in (np.uint8, np.int16, np.int32)
    lo, hi = ((0, 255) if coarse else (0, 1)) if range is None else range
    if a.dtype.kind != "f":
        lo, hi = (min(max(v, np.iinfo(a.dtype).min), np.iinfo(a.dtype).max) for v in (lo, hi))
    counts = _histogram(a, bins if bins > 1 else 256 if coarse else 384, (lo, hi))
    return _by_channel(a, dask.delayed(_otsu)(counts, (lo, hi), int(_pixels(a))), np.float64)


def threshold(a, level, *, upper=None, offset=None, bins=0, range=None, dtype=np.uint8):
    """The largest value of the type where a pixel is above a level, 0 elsewhere; see `jorm.threshold`.

    Of the methods 'otsu', 'blur' and 'adaptive' are served; 'usto' looks at the whole picture in between.
    """
    a = _picture(a)
    dtype = np.dtype(dtype)
    if isinstance(level, str) and level == "adaptive":
        return _overlap("threshold", a, _by_axis(2, a, 0), level=level, offset=offset, result=dtype)
    if isinstance(level, str):
        if level not in ("otsu", "blur"):
            raise ValueError(f"threshold: level must be a number, 'otsu', 'blur' or 'adaptive', not {level!r}")
        if level == "blur":
            if a.ndim == 4 and len(a) > 1:  # plane by plane
                return da.concatenate([threshold(plane, level, bins=bins, range=range, dtype=dtype)
                                       for plane in (a[z:z + 1] for z in np.arange(len(a)))])
            a = gaussian(a, 5)
        level = dask.delayed(operator.methodcaller("tolist"))(otsu(a, bins=bins, range=range))
        return _blocks("threshold", a, waiting={"level": level}, upper=upper, dtype=dtype, result=dtype)
    return _blocks("threshold", a, level=level, upper=upper, dtype=dtype, result=dtype)


# ---- Regions ----


def _outlines(regions, pixels, nested):
    """(first pixel, first row, last row, first column, last column) of each region; the first in the order of rows."""
    if not len(regions):
        return np.empty((0, 6), np.int64)
    rows, columns = pixels.T.astype(np.int64)
    key = rows << 32 | columns
    found = np.stack([np.minimum.reduceat(key, regions.start), np.minimum.reduceat(rows, regions.start),
                      -np.maximum.reduceat(rows, regions.start), np.minimum.reduceat(columns, regions.start),
                      -np.maximum.reduceat(columns, regions.start)], axis=1)
    if nested:  # what lies inside comes after what lies around
        for i in np.arange(len(regions) - 1, 0, -1):
            around = found[regions.parent[i]]
            np.minimum(around, found[i], out=around)
    found[:, [2, 4]] *= -1
    return np.column_stack((found[:, 0] >> 32, found[:, 0] & 0xFFFFFFFF, found[:, 1:]))


def _regions_part(block, name, own, shape, with_pixels, options):
    """The regions of a tile that are its own and whole, in the coordinates of the picture.

    `own` holds for each axis where the tile begins, where it ends, and where the block with its surroundings begins.
    """
    if name == "mser":  # areas count in the picture, not in the tile
        scale = shape[0] * shape[1] / block.size
        options = {**options, **{k: min(1.0, v * scale) for k, v in options.items() if k.endswith("fraction")}}
    regions, pixels = getattr(jorm, name)(block, pixels=True, **options)
    outlines = _outlines(regions, pixels, name == "component_tree")
    keep = np.ones(len(regions), bool)
    for axis, (begin, end, start) in enumerate(own):
        seed, first, last = outlines[:, axis], outlines[:, 2 + 2 * axis], outlines[:, 3 + 2 * axis]
        keep &= (begin <= seed + start) & (seed + start < end)
        keep &= (first > axis) | (start == 0)  # floods never enter the first column
        keep &= (last < block.shape[axis] - 1) | (start + block.shape[axis] == shape[axis])

    at = np.array([start for _, _, start in own])
    index = np.append(np.where(keep, np.cumsum(keep) - 1, -1), -1)
    parents = regions.parent.copy()
    while (lost := (parents >= 0) & ~keep[parents]).any():  # to the next one around that stays
        parents[lost] = regions.parent[parents[lost]]
    dtype = np.dtype([*((n, regions.dtype[n]) for n in regions.dtype.names), ("seed", "(2,)i4")])
    kept = np.empty(int(keep.sum()), dtype)
    for field in regions.dtype.names:
        kept[field] = regions[field][keep]
    kept["seed"] = outlines[keep, :2] + at
    kept["parent"] = index[parents[keep]]
    for field in {"box", "ellipse"} & set(dtype.names):
        kept[field][:, :2] += at
    if not with_pixels:
        return kept, np.empty((0, 2), np.int32)
    lists = [pixels[s:s + n] + at for s, n in zip(kept["start"].tolist(), kept["area"].tolist())]
    kept["start"] = np.cumsum([0] + [len(one) for one in lists])[:-1]
    return kept, np.concatenate(lists or [np.empty((0, 2))]).astype(np.int32)


def _regions_combine(parts):
    joined, pixels = (np.concatenate(lists) for lists in zip(*parts))
    before = np.repeat(np.cumsum([0] + [len(regions) for regions, _ in parts[:-1]]), [len(r) for r, _ in parts])
    listed = np.repeat(np.cumsum([0] + [len(p) for _, p in parts[:-1]]), [len(r) for r, _ in parts])
    joined["parent"] += np.where(joined["parent"] >= 0, before, 0).astype(np.int32)
    joined["start"] += listed.astype(np.int32)
    return joined, pixels


def _regions(name, a, overlap, pixels, options):
    a = _picture(a)
    if a.ndim != 2:
        raise ValueError(f"{name}: a must have two axes")
    a = a.rechunk({axis: -1 for axis in (0, 1) if overlap >= a.shape[axis]})
    a = a.rechunk(tuple(da.overlap.ensure_minimum_chunksize(overlap, c) for c in a.chunks))
    depth = {axis: overlap if a.numblocks[axis] > 1 else 0 for axis in (0, 1)}
    ends = [np.cumsum(c).tolist() for c in a.chunks]
    blocks = da.overlap.overlap(a, depth=depth, boundary="none").to_delayed()
    run = dask.delayed(_regions_part, pure=True)
    parts = []
    for index, block in np.ndenumerate(blocks):
        begin = [e[i] - c[i] for e, c, i in zip(ends, a.chunks, index)]
        own = [(b, e[i], max(0, b - depth[axis])) for axis, (b, e, i) in enumerate(zip(begin, ends, index))]
        parts.append(run(block, name, own, a.shape, pixels, options))
    found = _fold(parts, _regions_combine)
    return found if pixels else found[0]


_RULE = """

    Each tile is flooded with `overlap` pixels of its neighbours around it. A region belongs to the tile that holds its
    seed: of its uppermost pixels the leftmost one. No region comes twice.

    What is lost: regions that reach beyond what the tile with their seed sees, so any that is higher or wider than the
    overlap may be. Those that are found have the pixels, area and level that they have in the whole picture.

    The structured array has one field more, `seed` (row, column); `parent` is the next region around that was found in the
    same tile, as the trees of tiles are not joined. The options are those of `jorm`, without seed, mask and region.
    """


def mser(a, *, overlap=128, max_area_fraction=0.25, pixels=False, **options):
    return _regions("mser", a, overlap, pixels, {"max_area_fraction": max_area_fraction, **options})


def component_tree(a, *, overlap=128, pixels=False, **options):
    return _regions("component_tree", a, overlap, pixels, options)


mser.__doc__ = """The maximally stable extremal regions of all tiles, delayed; see `jorm.mser`.

    Growth is measured on what the tile sees of the components around: a region inside one that reaches further may be
    missed, or found though it is none.""" + _RULE + """
    Examples
    --------
    >>> a = np.full((40, 40), 200, np.uint8)
    >>> a[10:20, 12:24] = 50
    >>> found = tiles.mser(da.from_array(a, chunks=15), overlap=12, bright=False, max_area_fraction=0.5).compute()
    >>> found["area"], found["seed"]
    (array([120], dtype=int32), array([[10, 12]], dtype=int32))
    """
component_tree.__doc__ = """The components of the watersheds of all tiles, delayed; see `jorm.component_tree`.""" + _RULE
