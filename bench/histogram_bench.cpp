// Histograms of 256 bins of constant, striped and noisy pictures, plain and under a mask. Wanted: a constant picture no
// slower than noise, and a mask at most 1.3 times the plain count.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target histogram_bench
//     taskset -c 1 build/release/bench/histogram_bench
#include "jorm.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

constexpr int32_t rows = 1080, columns = 1920;
using Samples = std::vector<uint8_t>;

template <class Paint> Samples paint(Paint sample) {
    Samples s(size_t(rows) * columns);
    uint32_t noise = 2463534242;
    for (size_t i = 0; i < s.size(); ++i) {
        noise ^= noise << 13, noise ^= noise >> 17, noise ^= noise << 5;
        s[i] = uint8_t(sample(i, noise));
    }
    return s;
}

void count(benchmark::State &state, Samples samples, Samples mask) {
    _G_jorm_use_simd = 1;
    jorm_array a, m;
    jorm_array_make(&a, JORM_U8, rows, columns, 1, 0, samples.data());
    jorm_array_make(&m, JORM_U8, rows, columns, 1, 0, mask.data());
    jorm_xe *const xe = JormXEopen(nullptr, nullptr, 0);
    jorm_histdesc description = {};
    description.nbins = 256;
    description.hi = 255;
    jorm_histogram h;
    bool ok = _jorm_histogram__$xe(&h, &description, xe) == JORM_OK;
    for (auto _ : state)
        ok = ok && (mask.empty() ? JormHistogram(xe, 0, &a, nullptr, 0, &h)
                                 : JormHistogramEx(xe, 0, &a, &m, nullptr, nullptr, 0, &h)) >= 0;
    if (!ok) state.SkipWithError("the call failed");
    state.counters["samples/ns"] =
        benchmark::Counter(1e-9 * rows * columns * double(state.iterations()), benchmark::Counter::kIsRate);
    jorm_hist_fini_$xe(&h, xe);
    JormXEclose(xe);
}

const bool registered = [] {
    const Samples masks[] = {{},
                             paint([](size_t, uint32_t) { return 255; }),
                             paint([](size_t i, uint32_t) { return i / 97 % 2 * 255; }),
                             paint([](size_t, uint32_t noise) { return noise >> 9 & 1; })};
    const Samples pictures[] = {paint([](size_t, uint32_t) { return 77; }),
                                paint([](size_t i, uint32_t) { return i / 41; }),
                                paint([](size_t, uint32_t noise) { return noise >> 11; })};
    const char *const under[] = {"plain", "full mask", "blocks", "random mask"};
    const char *const names[] = {"constant", "stripes", "noise"};
    for (int p = 0; p < 3; ++p)
        for (int m = 0; m < 4; ++m)
            benchmark::RegisterBenchmark((std::string(names[p]) + " " + under[m]).c_str(), count, pictures[p], masks[m])
                ->Unit(benchmark::kMicrosecond);
    return true;
}();

} // namespace
