// What the C++ face costs over the calls of the C interface, on pictures of 16 pixels where the call itself is all
// there is. Wanted: at most 10 nanoseconds a call.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target cxx_bench
//     taskset -c 1 build/release/bench/cxx_bench
//
// Each case is timed in both ways alternately; "extra_ns" is the median of the differences between neighbours.
#include "jorm/jorm.hpp"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

namespace {

struct Pictures {
    std::vector<uint8_t> memory = std::vector<uint8_t>(3 * 16, 9);
    jorm::view<uint8_t> d{&memory[0], {4, 4}}, a{&memory[16], {4, 4}}, b{&memory[32], {4, 4}};
    jorm_xe *xe = jorm::environment::local().get();
};

template <class Call> double nanoseconds(Call call) {
    constexpr int rounds = 20000;
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < rounds; ++i) {
        call();
        benchmark::ClobberMemory();
    }
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count() / rounds;
}

template <class Cxx, class C> void add_case(const char *name, Cxx cxx, C c) {
    benchmark::RegisterBenchmark(name, [=](benchmark::State &state) {
        Pictures p;
        std::vector<double> by_c, by_cxx, extra;
        for (auto _ : state) {
            by_c.push_back(nanoseconds([&] { c(p); }));
            by_cxx.push_back(nanoseconds([&] { cxx(p); }));
            extra.push_back(by_cxx.back() - by_c.back());
        }
        const auto median = [](std::vector<double> &v) {
            std::nth_element(v.begin(), v.begin() + std::ptrdiff_t(v.size() / 2), v.end());
            return v[v.size() / 2];
        };
        state.counters["c_ns"] = median(by_c);
        state.counters["cxx_ns"] = median(by_cxx);
        state.counters["extra_ns"] = median(extra);
    })->Iterations(51);
}

constexpr double seven[] = {7, 7, 7, 7};
constexpr int32_t at[] = {0, 1, 1, 0};

const bool registered = [] {
    add_case(
        "add", [](Pictures &p) { jorm::add(p.d, p.a, p.b); },
        [](Pictures &p) { return JormAdd(p.xe, 0, p.d.get(), p.a.get(), p.b.get(), nullptr, nullptr, nullptr, 0, 0); });
    add_case(
        "add, result", [](Pictures &p) { benchmark::DoNotOptimize(bool(jorm::add<jorm::nothrow>(p.d, p.a, p.b))); },
        [](Pictures &p) { return JormAdd(p.xe, 0, p.d.get(), p.a.get(), p.b.get(), nullptr, nullptr, nullptr, 0, 0); });
    add_case(
        "add constant, saturated, in place", [](Pictures &p) { jorm::add(p.d, jorm::in_place, 7, {.saturate = true}); },
        [](Pictures &p) { return JormAddqC(p.xe, 0, p.d.get(), nullptr, seven, nullptr, nullptr, 0, 0); });
    add_case(
        "add, region, starts",
        [](Pictures &p) {
            jorm::add(p.d, p.a, p.b, {.region = {1, 1, 2, 2}, .at = {1, 1}, .at2 = {1, 1}});
        },
        [](Pictures &p) {
            jorm_site site;
            jorm_site_make(&site, 1, 1, 2, 2);
            return JormAdd(p.xe, 0, p.d.get(), p.a.get(), p.b.get(), &site, at, at, 0, 0);
        });
    add_case(
        "compare", [](Pictures &p) { jorm::compare(p.d, p.a, jorm::relation::less, 7); },
        [](Pictures &p) {
            return JormCompareC(p.xe, 0, p.d.get(), p.a.get(), seven, nullptr, nullptr, JORM_CMP_LESS);
        });
    add_case(
        "copy, mask", [](Pictures &p) { jorm::copy(p.d, p.a, {.mask = p.b}); },
        [](Pictures &p) { return JormCopyEx(p.xe, 0, p.d.get(), p.a.get(), p.b.get(), nullptr, nullptr, nullptr); });
    add_case(
        "mean", [](Pictures &p) { benchmark::DoNotOptimize(jorm::mean(p.a)[0]); },
        [](Pictures &p) {
            double v[4];
            JormMean(p.xe, 0, p.a.get(), nullptr, v);
            benchmark::DoNotOptimize(v[0]);
        });
    add_case(
        "minmax", [](Pictures &p) { benchmark::DoNotOptimize(jorm::minmax(p.a).max[0].i); },
        [](Pictures &p) {
            jorm_minmax m;
            m.request = JORM_WANT_MIN | JORM_WANT_MAX;
            JormMinmax(p.xe, 0, p.a.get(), nullptr, &m);
            benchmark::DoNotOptimize(m.max[0].i);
        });
    add_case(
        "box filter",
        [](Pictures &p) {
            jorm::box_filter(p.d, p.a, {3, 3});
        },
        [](Pictures &p) {
            const jorm_seshape shape = {{0, 1, 1, 0}, {1, 3, 3, 1}};
            return JormFilter(p.xe, 0, p.d.get(), p.a.get(), nullptr, nullptr, JORM_FILTER_BOX, &shape);
        });
    add_case(
        "part of a view",
        [](Pictures &p) {
            benchmark::DoNotOptimize(p.a.sub({1, 1, 2, 2}).get());
        },
        [](Pictures &p) {
            jorm_array part;
            jorm_array_sub(&part, p.a.get(), 1, 1, 2, 2);
            benchmark::DoNotOptimize(&part);
        });
    return true;
}();

} // namespace
