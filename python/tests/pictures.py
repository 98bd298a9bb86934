"""Pictures in layouts of all kinds, from fixed seeds."""

import numpy as np

ARITHMETIC = [np.uint8, np.int16, np.int32, np.float32]
COMPARED = ARITHMETIC + [np.int8]

LAYOUTS = {
    "dense": lambda a: a.copy(),
    "padded": lambda a: _inside(a, pad=5),
    "upside down": lambda a: a[::-1].copy()[::-1],
    "mirrored": lambda a: a[:, ::-1].copy()[:, ::-1],
    "every second": lambda a: _every_second(a),
    "columns first": lambda a: np.swapaxes(np.swapaxes(a, 0, 1).copy(), 0, 1),
    "planes of channels": lambda a: np.moveaxis(np.moveaxis(a, -1, 0).copy(), 0, -1) if a.ndim == 3 else a.copy(),
    "one of three channels": lambda a: np.repeat(a[..., None], 3, axis=-1)[..., 1] if a.ndim == 2 else a.copy(),
}


def _inside(a, pad):
    shape = (a.shape[0] + 2, a.shape[1] + pad) + a.shape[2:]
    around = np.zeros(shape, a.dtype)
    view = around[1:-1, 2 : 2 + a.shape[1]]
    view[...] = a
    return view


def _every_second(a):
    around = np.zeros((2 * a.shape[0], 2 * a.shape[1]) + a.shape[2:], a.dtype)
    around[::2, ::2] = a
    return around[::2, ::2]


def picture(shape, dtype, seed, small=False):
    """Random pixels, all values of the type or few."""
    r = np.random.default_rng(seed)
    dtype = np.dtype(dtype)
    if dtype.kind == "f":
        return r.uniform(-100, 400, shape).astype(dtype)
    lowest, highest = (0, 20) if small else (np.iinfo(dtype).min, np.iinfo(dtype).max)
    return r.integers(lowest, highest, shape, endpoint=True).astype(dtype)


def stored(exact, dtype):
    """Exact numbers (float64 or Python integers) as the library stores them: rounded to nearest even, clamped."""
    dtype = np.dtype(dtype)
    if dtype.kind == "f":
        return np.asarray(exact, np.float64).astype(dtype)
    info = np.iinfo(dtype)
    return np.clip(np.rint(np.asarray(exact, np.float64)), info.min, info.max).astype(dtype)
