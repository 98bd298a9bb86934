#!/usr/bin/env python3
"""How large programs become when they are linked with the static library, and that they run at every level.

Each case is a program of one call that has to give the wanted results at every level of the processor. Sizes are those
of the files that the linker leaves, symbols and all.

Usage: static_size.py ARCHIVE INCLUDE CC SCRATCH
"""
import concurrent.futures
import pathlib
import subprocess
import sys

LIMIT = 1024  # KiB

# The call, and what holds for byte or element i of the result then.
ZIP, MAP = "xe, 0, &D, &A, &B, NULL, NULL, NULL", "xe, 0, &D, &A"
WIDE = MAP.replace("&D", "&S")
CASES = [
    (f"JormAddq({ZIP}, 0, 0)", "d[i] == (a[i] + b[i] < 255 ? a[i] + b[i] : 255)"),
    (f"JormAdd({ZIP}, 0, 0)", "d[i] == (uint8_t)(a[i] + b[i])"),
    (f"JormSub({ZIP}, 0, 0)", "d[i] == (uint8_t)(a[i] - b[i])"),
    (f"JormDiv({ZIP}, 0, 0)", "d[i] == a[i] / b[i]"),
    (f"JormMin({ZIP})", "d[i] == (a[i] < b[i] ? a[i] : b[i])"),
    (f"JormAnd({ZIP})", "d[i] == (a[i] & b[i])"),
    (f"JormNot({MAP}, NULL, NULL)", "d[i] == 255 - a[i]"),
    (f"JormAddC({MAP}, k, NULL, NULL, 0, 0)", "d[i] == (uint8_t)(a[i] + 3)"),
    ("JormMulAdd(xe, 0, &D, &A, &B, &A, NULL, NULL, NULL, NULL, 0, 0)", "d[i] == (uint8_t)(a[i] * b[i] + a[i])"),
    (f"JormMulAddCC({WIDE}, k, k, NULL, NULL, 0, 0)", "s[i] == 3 * a[i] + 3"),
    (f"JormCopy({MAP}, NULL, NULL)", "d[i] == a[i]"),
    (f"JormCopyEx({ZIP})", "d[i] == a[i]"),
    ("JormFill(xe, 0, &D, NULL, k)", "d[i] == 3"),
    (f"JormConvert({WIDE}, NULL, NULL, NULL, NULL, NULL)", "s[i] == a[i]"),
    (f"JormGain({MAP}, k, NULL, NULL, NULL)", "d[i] == (3 * a[i] < 255 ? 3 * a[i] : 255)"),
    (f"JormCompare({ZIP}, JORM_CMP_LESS)", "d[i] == (a[i] < b[i] ? 255 : 0)"),
    (f"JormCompareC({MAP}, k, NULL, NULL, JORM_CMP_LESS)", "d[i] == (a[i] < 3 ? 255 : 0)"),
    (f"JormThreshold({MAP}, NULL, NULL, NULL, k, 1)", "d[i] == (a[i] > 3 ? 255 : 0)"),
    ("JormSum(xe, 0, &A, NULL, result)", "i || result[0] == sum(0, N)"),
    ("JormMean(xe, 0, &A, NULL, result)", "i || result[0] == (double)sum(0, N) / N"),
    ("JormMinmax(xe, 0, &A, NULL, &extrema)", "extrema.min[0].i <= a[i] && a[i] <= extrema.max[0].i"),
    ("JormHistogram(xe, 0, &A, NULL, 0, &counts)", "i > 255 || counts.bins[i] == (uint32_t)count(i)"),
    ("JormFilter(xe, 0, &D, &A, NULL, NULL, JORM_FILTER_BOX, NULL)", "d[i] == window(i, 1)"),
    ("JormFilter(xe, 0, &D, &A, NULL, NULL, JORM_FILTER_MIN, NULL)", "d[i] == window(i, 0)"),
    ("JormMorphop(xe, 0, &D, &A, NULL, NULL, JORM_MORPH_ERODE, NULL)", "d[i] == window(i, 0)"),
    ("JormGaussianFilter(xe, 0, &D, &E, NULL, NULL, NULL, k)", "d[i] == 7"),
    ("JormResize(xe, 0, &D, &A, NULL, NULL, NULL)", "d[i] == a[i]"),
    ("JormMulMM(xe, 0, &G, &F, &F)", "i > 3 || ((float *)d)[i] == f[i / 2 * 2] * f[i % 2] + f[i | 1] * f[2 + i % 2]"),
    ("JormGenerateMSERs(xe, 0, &A, NULL, &mser)", "mser.dark_count > 0 && mser.bright_count > 0"),
    ("jorm_2d_ptv_convexhull((jorm_2d_pt *)d, corners, 5) - 4", "1"),
    ("UlQuickSort(memcpy(d, a, N), N, 1, ascending, NULL)", "i == 0 || d[i - 1] <= d[i]"),
]

PROGRAM = r"""
#include <jorm.h>
#include <string.h>

void _ZN4jorm11limit_levelENS_5LevelE(int level); /* no call runs above the level */

enum { H = 33, W = 71, N = H * W };
static uint8_t a[N], b[N], e[N], d[4 * N] __attribute__((aligned(64))), at_base[sizeof d];
static uint32_t bins[257];
static float f[4] = {1, 2, 3, 4};
static double result[4];
static jorm_minmax extrema = {.request = JORM_WANT_MIN | JORM_WANT_MAX};
static jorm_histogram counts = {.ilo = 0, .ihi = 255, .width = 256, .nbins = 256, .bins = bins};
static jorm_mser mser = {.delta = 5, .max_area_fraction = 0.5f, .max_variation = 1, .passes = 2};
static const jorm_2d_pt corners[5] = {{0, 0}, {9, 9}, {4, 5}, {9, 0}, {0, 9}};

static int sum(int from, int to) {
    int total = 0;
    for (int i = from; i < to; ++i) total += a[i];
    return total;
}
static int count(int value) {
    int n = 0;
    for (int i = 0; i < N; ++i) n += a[i] == value;
    return n;
}
static int mirror(int v, int n) { return v < 0 ? -v : v >= n ? 2 * n - 2 - v : v; }
/* The mean of five rows of five pixels about pixel i, or the least of them. */
static int window(int i, int mean) {
    int total = 0, least = 255;
    for (int y = i / W - 2; y <= i / W + 2; ++y)
        for (int x = i % W - 2; x <= i % W + 2; ++x) {
            const int v = a[mirror(y, H) * W + mirror(x, W)];
            total += v;
            if (v < least) least = v;
        }
    return mean ? (2 * total + 25) / 50 : least;
}
static int32_t ascending(const void *x, const void *y, void *unused) {
    (void)unused;
    return *(const uint8_t *)x - *(const uint8_t *)y;
}
void *const unused[] = {&sum, &count, &window, &ascending, &extrema, &counts, &mser, &result, &f, (void *)&corners};

int main(void) {
    const double k[4] = {3, 3, 3, 3};
    const int16_t *const s = (int16_t *)d;
    jorm_array A, B, D, E, F, S, G;
    jorm_array_make(&A, JORM_U8, H, W, 1, 0, a);
    jorm_array_make(&B, JORM_U8, H, W, 1, 0, b);
    jorm_array_make(&D, JORM_U8, H, W, 1, 0, d);
    jorm_array_make(&E, JORM_U8, H, W, 1, 0, e);
    jorm_array_make(&S, JORM_S16, H, W, 1, 0, d);
    jorm_array_make(&F, JORM_F32, 2, 2, 1, 0, f);
    jorm_array_make(&G, JORM_F32, 2, 2, 1, 0, d);
    for (int i = 0; i < N; ++i) a[i] = (uint8_t)(i * i * 37 >> 4), b[i] = (uint8_t)(i * 91 >> 3 | 1), e[i] = 7;
    jorm_xe *xe = JormXEopen(NULL, NULL, 0);
    _G_jorm_use_simd = 1;
    for (int level = 0; level < 3; ++level) {
        _ZN4jorm11limit_levelENS_5LevelE(level);
        memset(d, 0, sizeof d), memset(bins, 0, sizeof bins);
        if ((CALL) != 0) return 1;
        for (int i = 0; i < N; ++i)
            if (!(WANTED)) return 2;
        if (level == 0) memcpy(at_base, d, sizeof d);
        if (memcmp(at_base, d, sizeof d) != 0) return 3;
    }
    JormXEclose(xe);
    (void)k, (void)s;
    return 0;
}
"""


def main():
    archive, include, compiler, scratch = sys.argv[1:]
    folder = pathlib.Path(scratch)
    folder.mkdir(parents=True, exist_ok=True)

    def judge(number, call, wanted):
        """What there is to say about the case, and whether it is a fault."""
        source, program = folder / f"case_{number}.c", folder / f"case_{number}"
        source.write_text(PROGRAM.replace("CALL", call).replace("WANTED", wanted))
        subprocess.run([compiler, "-std=gnu99", "-Wall", "-Wextra", "-Werror", "-O1", "-I", include, source, archive,
                        "-Wl,--gc-sections", "-lm", "-o", program], check=True)
        size = (program.stat().st_size + 1023) // 1024
        status = subprocess.run([program]).returncode
        program.unlink()
        faults = [f"exit status {status}"] * (status != 0) + [f"more than {LIMIT} KiB"] * (size > LIMIT)
        return f"{size:6} KiB  {call}{''.join(': ' + fault for fault in faults)}", bool(faults)

    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        results = list(pool.map(judge, range(len(CASES)), *zip(*CASES)))
    print("\n".join(line for line, _ in results))
    faults = sum(fault for _, fault in results)
    print(f"{len(CASES)} programs, {faults} faults")
    return 1 if faults else 0


sys.exit(main())
