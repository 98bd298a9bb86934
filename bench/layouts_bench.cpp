// What a call costs before its kernel runs, and what layouts other than dense ones cost. Wanted: a small call within
// 400 ns of its kernel; padded rows, views and interleaved channels within 1.25 times the dense case.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target layouts_bench
//     taskset -c 1 build/release/bench/layouts_bench
#include "jorm.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

// Strides of 0 are dense ones; `start` is the byte where the first element lies.
struct Layout {
    int32_t height, width, channels = 1, row = 0, pixel = 0, start = 0;
};

constexpr Layout small = {64, 64};
constexpr Layout dense = {1080, 1920};
constexpr Layout padded_rows = {1080, 1920, 1, 1920 + 64};
constexpr Layout view = {1080, 1920, 1, 2048, 0, 51 * 2048 + 37}; // within 1200 x 2048
constexpr Layout three_channels = {1080, 640, 3};                 // as many bytes as the dense one
constexpr Layout one_of_three = {1080, 1920, 1, 3 * 1920, 3, 1};

class Image {
public:
    Image(const Layout &l, uint32_t eltype, int32_t bytes) {
        const int32_t pixel = l.pixel ? l.pixel : l.channels * bytes, row = l.row ? l.row : l.width * pixel;
        const int32_t extent[3] = {l.height, l.width, l.channels}, stride[3] = {row, pixel, bytes};
        // Whatever the strides, the last row is whole.
        memory_.resize(size_t(l.start) + size_t(l.height) * size_t(row));
        for (size_t i = 0; i < memory_.size(); ++i) memory_[i] = uint8_t(i * 37 >> 3);
        if (eltype == JORM_F64) std::memset(memory_.data(), 0, memory_.size());
        _jorm_array__$xtrn(&array_, eltype, 3, extent, stride, memory_.data());
        array_.loff = l.start;
    }
    explicit Image(const Layout &l) : Image(l, JORM_U8, 1) {}
    operator const jorm_array *() const { return &array_; }
    uint8_t *data() { return memory_.data(); }
    int64_t bytes() const { return int64_t(memory_.size()); }

private:
    std::vector<uint8_t> memory_;
    jorm_array array_;
};

using Environment = std::unique_ptr<jorm_xe, decltype(&JormXEclose)>;

constexpr double constants[4] = {3, 50, 7, 100};

// Repeats a call, vectorised; a call that fails counts as an error and not as a fast one.
template <class Call> void repeat(benchmark::State &state, Call call) {
    _G_jorm_use_simd = 1;
    const Environment xe(JormXEopen(nullptr, nullptr, 0), &JormXEclose);
    for (auto _ : state) {
        if (call(xe.get()) < 0) {
            state.SkipWithError("the call failed");
            return;
        }
        benchmark::ClobberMemory();
    }
}

void add(benchmark::State &state, const Layout &layout) {
    const Image a(layout), b(layout), out(layout);
    repeat(state, [&](jorm_xe *xe) { return JormAdd(xe, 0, out, a, b, nullptr, nullptr, nullptr, 0, 0); });
}

void add_constants(benchmark::State &state, const Layout &layout) {
    const Image a(layout), out(layout);
    repeat(state, [&](jorm_xe *xe) { return JormAddC(xe, 0, out, a, constants, nullptr, nullptr, 0, 0); });
}

void complement(benchmark::State &state, const Layout &layout) {
    const Image a(layout), out(layout);
    repeat(state, [&](jorm_xe *xe) { return JormNot(xe, 0, out, a, nullptr, nullptr); });
}

void add_kernel(benchmark::State &state) {
    Image a(small), b(small), out(small);
    const int32_t size[3] = {64, 64, 1}, stride[3] = {64, 1, 1};
    repeat(state, [&](jorm_xe *xe) {
        return jorma__add_c1_u8u8u8(xe, 0, JORM_WORD(3), size, out.data(), stride, a.data(), stride, b.data(), stride,
                                    0, 0);
    });
}

void copy(benchmark::State &state, uint32_t eltype, int32_t bytes, const Layout &layout) {
    const Image a(layout, eltype, bytes), out(layout, eltype, bytes);
    repeat(state, [&](jorm_xe *xe) { return JormCopy(xe, 0, out, a, nullptr, nullptr); });
    state.SetBytesProcessed(state.iterations() * out.bytes());
}

void fill(benchmark::State &state, uint32_t eltype, int32_t bytes, const Layout &layout) {
    const Image out(layout, eltype, bytes);
    repeat(state, [&](jorm_xe *xe) { return JormFill(xe, 0, out, nullptr, constants); });
    state.SetBytesProcessed(state.iterations() * out.bytes());
}

void sum(benchmark::State &state, uint32_t eltype, int32_t bytes, const Layout &layout) {
    const Image a(layout, eltype, bytes);
    double sums[4];
    repeat(state, [&](jorm_xe *xe) { return JormSum(xe, 0, a, nullptr, sums); });
    state.SetBytesProcessed(state.iterations() * a.bytes());
}

} // namespace

BENCHMARK(add_kernel)->Name("64x64 u8: add kernel alone");
BENCHMARK_CAPTURE(add, small, small)->Name("64x64 u8: JormAdd");
BENCHMARK_CAPTURE(add_constants, small, small)->Name("64x64 u8: JormAddC");
BENCHMARK_CAPTURE(complement, small, small)->Name("64x64 u8: JormNot");

BENCHMARK_CAPTURE(add, dense, dense)->Name("2 MB u8, JormAdd: dense");
BENCHMARK_CAPTURE(add, padded_rows, padded_rows)->Name("2 MB u8, JormAdd: padded rows");
BENCHMARK_CAPTURE(add, view, view)->Name("2 MB u8, JormAdd: view");
BENCHMARK_CAPTURE(add, three_channels, three_channels)->Name("2 MB u8, JormAdd: 3 channels");
BENCHMARK_CAPTURE(add_constants, dense, dense)->Name("2 MB u8, JormAddC: dense");
BENCHMARK_CAPTURE(add_constants, three_channels, three_channels)->Name("2 MB u8, JormAddC: 3 channels, 3 constants");
// For information: the memory that this goes through is three times as much.
BENCHMARK_CAPTURE(add, one_of_three, one_of_three)->Name("2 MB u8, JormAdd: one channel of three");

BENCHMARK_CAPTURE(copy, f64, JORM_F64, 8, dense)->Name("1920x1080: JormCopy f64");
BENCHMARK_CAPTURE(fill, s32, JORM_S32, 4, dense)->Name("1920x1080: JormFill s32");
BENCHMARK_CAPTURE(sum, s32c3, JORM_S32, 4, Layout{1080, 1920, 3})->Name("1920x1080: JormSum s32, 3 channels");
