"""What a call of the Python module costs over the C call, beside other modules; and what two threads gain.

    PYTHONPATH=build/release/python taskset -c 1 /usr/bin/python3 bench/python_calls.py build/release
    PYTHONPATH=build/release/python /usr/bin/python3 bench/python_calls.py --threads        # on two idle cores

Prints microseconds: the least of several rounds.
"""

import pathlib
import subprocess
import sys
import tempfile
import threading
import time
import timeit

import numpy as np

import jorm

C_CALLS = {
    "add": "JormAddq(xe, 0, &d, &a, &b, NULL, NULL, NULL, 0, 0)",
    "add a number": "JormAddqC(xe, 0, &d, &a, ten, NULL, NULL, 0, 0)",
    "convert to float32": "JormVConvert(xe, 0, &f, &a, NULL, NULL, NULL, NULL)",
    "threshold": "JormThreshold(xe, 0, &d, &a, NULL, NULL, NULL, ten, 1)",
    "sum": "JormSum(xe, 0, &a, NULL, ten + 8)",
    "minmax": "JormMinmax(xe, 0, &a, NULL, &m)",
    "erode 3x3": "JormFilter(xe, 0, &d, &a, NULL, NULL, JORM_FILTER_MIN, &three)",
    "gaussian 5x5": "JormGaussianFilter(xe, 0, &d, &a, NULL, NULL, NULL, NULL)",
}
C_PROGRAM = """
#include <jorm.h>
#include <stdio.h>
#include <time.h>
static unsigned char pa[4096], pb[4096], pd[4096];
static float pf[4096];
static double now(void) {
    struct timespec t;
    clock_gettime(CLOCK_MONOTONIC, &t);
    return t.tv_sec * 1e6 + t.tv_nsec / 1e3;
}
int main(void) {
    double ten[12] = {10, 10, 10, 10, 10, 10, 10, 10};
    jorm_array a, b, d, f;
    jorm_minmax m = {JORM_WANT_MIN | JORM_WANT_MAX};
    jorm_seshape three = {{0, 1, 1, 0}, {1, 3, 3, 1}};
    for (int i = 0; i < 4096; ++i) pa[i] = i * 37 >> 3, pb[i] = i * 11 >> 2;
    jorm_array_make(&a, JORM_U8, 64, 64, 1, 0, pa), jorm_array_make(&b, JORM_U8, 64, 64, 1, 0, pb);
    jorm_array_make(&d, JORM_U8, 64, 64, 1, 0, pd), jorm_array_make(&f, JORM_F32, 64, 64, 1, 0, pf);
    _G_jorm_use_simd = 1;
    jorm_xe *xe = JormXEopen(NULL, NULL, 0);
%s
    JormXEclose(xe);
}
"""
C_LOOP = """
    {
        double best = 1e9;
        for (int r = 0; r < 9; ++r) {
            const double start = now();
            for (int i = 0; i < 10000; ++i) if (%s < 0) return 1;
            const double each = (now() - start) / 10000;
            if (each < best) best = each;
        }
        printf("%%.3f\\n", best);
    }"""


def c_times(build):
    root = pathlib.Path(__file__).resolve().parents[1]
    with tempfile.TemporaryDirectory() as scratch:
        source = pathlib.Path(scratch, "calls.c")
        source.write_text(C_PROGRAM % "".join(C_LOOP % call for call in C_CALLS.values()))
        library = next(pathlib.Path(build).resolve().glob("libJorm-*.so"))
        subprocess.run(["cc", "-O2", source, "-I", root / "include", library, f"-Wl,-rpath,{library.parent}",
                        "-o", f"{scratch}/calls"], check=True)
        out = subprocess.run([f"{scratch}/calls"], check=True, capture_output=True, text=True).stdout
    return dict(zip(C_CALLS, map(float, out.split())))


def microseconds(call, number=5000):
    return min(timeit.repeat(call, number=number, repeat=9)) / number * 1e6


def calls(build):
    i = np.arange(4096)
    a, b = (((i * k >> s) & 255).astype(np.uint8).reshape(64, 64) for k, s in ((37, 3), (11, 2)))
    out, floats = np.empty_like(a), np.empty(a.shape, np.float32)
    ours = {
        "add": (lambda: jorm.add(a, b), lambda: jorm.add(a, b, out=out)),
        "add a number": (lambda: jorm.add(a, 10), lambda: jorm.add(a, 10, out=out)),
        "convert to float32": (lambda: jorm.convert(a, np.float32), lambda: jorm.convert(a, out=floats)),
        "threshold": (lambda: jorm.threshold(a, 10), lambda: jorm.threshold(a, 10, out=out)),
        "sum": (lambda: jorm.sum(a), None),
        "minmax": (lambda: jorm.minmax(a), None),
        "erode 3x3": (lambda: jorm.erode(a, 3), lambda: jorm.erode(a, 3, out=out)),
        "gaussian 5x5": (lambda: jorm.gaussian(a, 5), lambda: jorm.gaussian(a, 5, out=out)),
    }
    peers = {name: [None, None] for name in ours}
    try:
        import cv2

        cv2.setNumThreads(1)
        element = np.ones((3, 3), np.uint8)
        peers["add"][0] = lambda: cv2.add(a, b)
        peers["threshold"][0] = lambda: cv2.threshold(a, 10, 255, cv2.THRESH_BINARY)
        peers["sum"][0] = lambda: cv2.sumElems(a)
        peers["minmax"][0] = lambda: cv2.minMaxLoc(a)
        peers["erode 3x3"][0] = lambda: cv2.erode(a, element)
        peers["gaussian 5x5"][0] = lambda: cv2.GaussianBlur(a, (5, 5), 0)
    except ImportError:
        pass
    try:
        from scipy import ndimage

        peers["sum"][1] = lambda: ndimage.sum(a)
        peers["minmax"][1] = lambda: ndimage.extrema(a)
        peers["erode 3x3"][1] = lambda: ndimage.grey_erosion(a, 3)
        peers["gaussian 5x5"][1] = lambda: ndimage.gaussian_filter(a, 1.1, truncate=2)
    except ImportError:
        pass
    in_c = c_times(build)
    print("| call | C | new array | over C | `out=` | over C | cv2 | scipy.ndimage |\n" + 8 * "|---" + "|")
    for name, (new, into) in ours.items():
        c = in_c[name]
        row = [f"{c:.2f}"]
        for call in (new, into):
            t = microseconds(call) if call else None
            row += [f"{t:.2f}", f"{t - c:.2f}"] if t else ["", ""]
        row += [f"{microseconds(p, 1000):.2f}" if p else "" for p in peers[name]]
        print(f"| {name} | " + " | ".join(row) + " |")


def threads():
    pictures = [np.random.default_rng(i).integers(0, 256, (4096, 4096)).astype(np.uint8) for i in range(2)]
    outs = [np.empty_like(p) for p in pictures]

    def work(i, size):
        jorm.gaussian(pictures[i], size, outs[i])

    def both(size):
        started = [threading.Thread(target=work, args=(i, size)) for i in range(2)]
        for t in started:
            t.start()
        for t in started:
            t.join()

    def seconds(call):
        start = time.perf_counter()
        call()
        return time.perf_counter() - start

    for size in (5, 15, 31):
        both(size)
        rounds = [(seconds(lambda: (work(0, size), work(1, size))), seconds(lambda: both(size))) for _ in range(9)]
        one, two = (min(r[k] for r in rounds) for k in (0, 1))
        print(f"gaussian {size}x{size} of two 4096x4096 u8: one after the other {one * 1e3:.1f} ms, two threads "
              f"{two * 1e3:.1f} ms, {two / one:.2f}")


threads() if "--threads" in sys.argv else calls(sys.argv[1] if len(sys.argv) > 1 else "build/release")
