"""Which arrays are taken as they are, which are refused and in what words; statuses as exceptions."""

import re

import numpy as np
import pytest

import jorm

A = np.zeros((4, 6), np.uint8)
C3 = np.zeros((4, 6, 3), np.uint8)
READ_ONLY = np.zeros((4, 6), np.uint8)
READ_ONLY.flags.writeable = False
STRIDED = np.zeros((4, 6), [("tag", np.uint8), ("value", np.int32)])["value"]
BYTES = np.zeros(4 * 6 * 4 + 1, np.uint8)
UNALIGNED = BYTES[1:].view(np.int32).reshape(4, 6)
FAR = np.lib.stride_tricks.as_strided(A, (2, 6), (2**33, 1))

REFUSED = [
    (lambda: jorm.add(np.zeros(4, np.uint8), 1), ValueError, "add: a has 1 axes; pictures have 2"),
    (lambda: jorm.sum(np.zeros((2, 2, 2, 2, 1), np.uint8)), ValueError, "5 axes"),
    (lambda: jorm.add(np.zeros((4, 6, 5), np.uint8), 1), ValueError, "a has 5 channels"),
    (lambda: jorm.add(np.zeros((0, 6), np.uint8), 1), ValueError, r"a is empty: its shape is \(0, 6\)"),
    (lambda: jorm.sum(UNALIGNED), ValueError, "not aligned"),
    (lambda: jorm.sum(FAR), ValueError, "beyond 32 bits.*8589934592"),
    (lambda: jorm.add(A, A[:, :5]), ValueError, r"b has shape \(4, 5\), not that of.*\(4, 6\)"),
    (lambda: jorm.add(A, C3), ValueError, r"b has shape \(4, 6, 3\)"),
    (lambda: jorm.add(A, A, READ_ONLY), ValueError, "out is read-only"),
    (lambda: jorm.add(A, A, np.zeros((4, 5), np.uint8)), ValueError, r"out has shape \(4, 5\)"),
    (lambda: jorm.fill(READ_ONLY, 1), ValueError, "read-only"),
    (lambda: jorm.add(C3, (1, 2)), ValueError, "2 numbers for 3 channels"),
    (lambda: jorm.sum(A, np.zeros((4, 5), bool)), ValueError, "mask has shape"),
    (lambda: jorm.sum(A, region=(0, 0, 5, 1)), ValueError, "region must be"),
    (lambda: jorm.sum(A, region=np.s_[::2, :]), ValueError, "region must be"),
    (lambda: jorm.gaussian(A, 0), ValueError, "size must be above 0"),
    (lambda: jorm.gaussian(A), ValueError, "sigma must be above 0"),
    (lambda: jorm.box(A, 3, anchor=3), ValueError, "anchor must lie in the window"),
    (lambda: jorm.compare(A, A, "<>"), ValueError, "op must be one of '=='"),
    (lambda: jorm.threshold(A, "best"), ValueError, "level must be one of 'otsu'"),
    (lambda: jorm.copy_border(A, 1, mode="edge"), ValueError, "mode must be one of 'constant'"),
    (lambda: jorm.copy_border(A, -3), ValueError, "nothing is left"),
    (lambda: jorm.histogram(A, 0), ValueError, "bins must be above 0"),
    (lambda: jorm.histogram(A, out=np.zeros(4, np.uint32)), ValueError, "256 counters"),
    (lambda: jorm.component_tree(C3), ValueError, "one channel"),
    (lambda: jorm.convex_hull(np.zeros((4, 3), np.int32)), ValueError, r"rows \(x, y\)"),
    (lambda: jorm.add([[1]], 1), TypeError, "a must be a numpy array, not list"),
    (lambda: jorm.add(A.astype(np.float64), 1), TypeError, "float64.*served are.*uint8, int16, int32, float32"),
    (lambda: jorm.add(A.astype(bool), 1), TypeError, "bool.*served are"),
    (lambda: jorm.add(A.astype(complex), 1), TypeError, "complex128.*served are"),
    (lambda: jorm.add(A.astype(">i2"), 1), TypeError, ">i2.*order of the machine"),
    (lambda: jorm.gaussian(A, 3, A.astype(np.int16)), TypeError, "out has dtype.*int16.*served are.*uint8"),
    (lambda: jorm.convert(A, np.float64), TypeError, "dtype float64 is not served; these are: uint8, int8"),
    (lambda: jorm.convert(A), TypeError, "either dtype or out"),
    (lambda: jorm.add(A, "x"), TypeError, "b must be a number"),
    (lambda: jorm.convex_hull(np.zeros((4, 2), np.int64)), TypeError, "int64 is not served; these are: int32"),
    (lambda: jorm.box(A, 2.5), TypeError, "size must be an integer"),
]


@pytest.mark.parametrize("call,error,words", REFUSED, ids=[words for _, _, words in REFUSED])
def test_refusals(call, error, words):
    before = A.copy()
    with pytest.raises(error, match=words):
        call()
    assert (A == before).all()


def test_statuses():
    with pytest.raises(jorm.Error) as caught:
        jorm.add(A, A, A.astype(np.float64))
    assert isinstance(caught.value, TypeError) and caught.value.status == -65511
    assert re.match("add: .*; uint8, uint8 -> float64", str(caught.value))
    for error, kind in ((jorm.InvalidError, ValueError), (jorm.UnsupportedError, TypeError),
                        (jorm.OutOfMemoryError, MemoryError)):
        assert issubclass(error, kind) and issubclass(error, jorm.Error)


def test_strides_that_a_descriptor_can_say():
    STRIDED[...] = np.arange(24).reshape(4, 6)
    if STRIDED.strides[1] % 4:  # packed records: elements are not aligned either
        with pytest.raises(ValueError):
            jorm.sum(STRIDED)
    aligned = np.zeros((4, 6), np.dtype([("tag", np.uint8), ("value", np.int32)], align=True))["value"]
    aligned[...] = np.arange(24).reshape(4, 6)
    assert jorm.sum(aligned) == 276
    row = np.arange(6, dtype=np.int32)
    spread = np.broadcast_to(row, (4, 6))  # rows that are one row
    np.testing.assert_array_equal(jorm.add(aligned, spread), aligned + row)
    assert jorm.sum(spread) == 60
    with pytest.raises(ValueError, match="read-only"):
        jorm.add(aligned, 1, spread)


def test_results_look_like_their_sources():
    for shape in ((4, 6), (4, 6, 1), (4, 6, 3), (2, 4, 6, 1)):
        a = np.ones(shape, np.int16)
        for result in (jorm.add(a, a), jorm.gaussian(a, 3), jorm.erode(a, 3), jorm.convert(a, np.float32),
                       jorm.threshold(a, 0), jorm.resize(a, (4, 6)), jorm.copy_border(a, 0)):
            assert result.shape == shape and result.flags.c_contiguous and result.flags.owndata


def test_references_balance():
    import sys

    a, out = np.ones((8, 8), np.uint8), np.ones((8, 8), np.uint8)
    before = [sys.getrefcount(x) for x in (a, out, a.dtype, None)]
    for _ in range(1000):
        jorm.add(a, a, out), jorm.add(a, 3), jorm.sum(a), jorm.minmax(a), jorm.histogram(a), jorm.erode(a, a)
        with pytest.raises(TypeError):
            jorm.add(a.view(bool), 1)
    for x, count in zip((a, out, a.dtype), before):
        assert abs(sys.getrefcount(x) - count) < 10
