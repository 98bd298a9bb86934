"""Threads run calls at the same time, each with an environment of its own."""

import threading
import time

import numpy as np

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
    most = 0
    for _ in range(20):
        before = ticks[0]
        jorm.gaussian(a, 31, out)
        most = max(most, ticks[0] - before)
        if most > 10:
            break
    done.set()
    counter.join()
    assert most > 10
