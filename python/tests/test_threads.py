"""Threads run calls at the same time, each with an environment of its own."""

import os
import threading
import time

import numpy as np
import pytest

import jorm


def both(call):
    threads = [threading.Thread(target=call, args=(i,)) for i in range(2)]
    for t in threads:
        t.start()
    for t in threads:
        t.join()


def test_results_of_threads():
    pictures = [np.random.default_rng(i).integers(0, 256, (200, 300)).astype(np.uint8) for i in range(2)]
    expected = [jorm.opening(jorm.gaussian(p, 9), 5) for p in pictures]
    wrong = []

    def work(i):
        for _ in range(50):
            if not np.array_equal(jorm.opening(jorm.gaussian(pictures[i], 9), 5), expected[i]):
                wrong.append(i)

    for _ in range(3):  # environments come and go
        both(work)
    assert not wrong


def test_the_lock_is_released():
    """Python goes on in another thread while a call runs; with the lock held it could not."""
    a = np.zeros((4096, 4096), np.uint8)
    out = np.empty_like(a)
    jorm.gaussian(a, 31, out)
    ticks, running = [0], threading.Event()
    done = threading.Event()

    def count():
        running.set()
        while not done.is_set():
            ticks[0] += 1
            time.sleep(0)

    counter = threading.Thread(target=count)
    counter.start()
    running.wait()
    before = ticks[0]
    for _ in range(3):
        jorm.gaussian(a, 31, out)
    during = ticks[0] - before
    done.set()
    counter.join()
    assert during > 100


@pytest.mark.skipif("JORM_TIMING" not in os.environ, reason="a measurement: set JORM_TIMING on two idle cores")
def test_two_threads_take_little_longer_than_one():
    pictures = [np.random.default_rng(i).integers(0, 256, (4096, 4096)).astype(np.uint8) for i in range(2)]
    outs = [np.empty_like(p) for p in pictures]

    def work(i):
        jorm.gaussian(pictures[i], 15, outs[i])

    def seconds(call):
        start = time.perf_counter()
        call()
        return time.perf_counter() - start

    both(work)
    one_by_one = min(seconds(lambda: (work(0), work(1))) for _ in range(7))
    together = min(seconds(lambda: both(work)) for _ in range(7))
    print(f"one after the other {one_by_one * 1e3:.1f} ms, two threads {together * 1e3:.1f} ms: "
          f"{together / one_by_one:.2f}")
    assert together <= 0.6 * one_by_one
