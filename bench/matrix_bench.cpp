// Matrix products beside a BLAS (one thread; OPENBLAS_NUM_THREADS=1) and a colour matrix beside a multiplication by a
// constant. Wanted: a product within 4 times the BLAS; an element of the colour matrix within 1.5 times one of the
// multiplication.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target matrix_bench
//     env -u OPENBLAS_CORETYPE OPENBLAS_NUM_THREADS=1 taskset -c 1 build/release/bench/matrix_bench
#include "jorm.h"

#include <benchmark/benchmark.h>
#include <cblas.h>

#include <memory>
#include <vector>

namespace {

template <class T> class Image {
public:
    Image(uint32_t eltype, int32_t height, int32_t width, int32_t channels = 1)
        : memory_(size_t(height) * size_t(width) * size_t(channels)) {
        for (size_t i = 0; i < memory_.size(); ++i) memory_[i] = T(i * 37 % 251);
        const int32_t extent[3] = {height, width, channels};
        _jorm_array__$xtrn(&array_, eltype, 3, extent, nullptr, memory_.data());
    }
    operator const jorm_array *() const { return &array_; }
    T *data() { return memory_.data(); }
    int64_t count() const { return int64_t(memory_.size()); }

private:
    std::vector<T> memory_;
    jorm_array array_;
};

using Environment = std::unique_ptr<jorm_xe, decltype(&JormXEclose)>;

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

void product(benchmark::State &state) {
    const auto n = int32_t(state.range(0));
    const Image<float> a(JORM_F32, n, n), b(JORM_F32, n, n), out(JORM_F32, n, n);
    repeat(state, [&](jorm_xe *xe) { return JormMulMM(xe, 0, out, a, b); });
}

void product_f64(benchmark::State &state) {
    const auto n = int32_t(state.range(0));
    const Image<double> a(JORM_F64, n, n), b(JORM_F64, n, n), out(JORM_F64, n, n);
    repeat(state, [&](jorm_xe *xe) { return JormMulMM(xe, 0, out, a, b); });
}

void product_blas(benchmark::State &state) {
    const auto n = int(state.range(0));
    Image<float> a(JORM_F32, n, n), b(JORM_F32, n, n), out(JORM_F32, n, n);
    repeat(state, [&](jorm_xe *) {
        cblas_sgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, n, n, n, 1, a.data(), n, b.data(), n, 0, out.data(), n);
        return JORM_OK;
    });
}

void vector(benchmark::State &state) {
    const auto n = int32_t(state.range(0));
    const Image<float> m(JORM_F32, n, n), v(JORM_F32, 1, n), out(JORM_F32, n, 1);
    repeat(state, [&](jorm_xe *xe) { return JormMulMV(xe, 0, out, m, v); });
}

void per_element(benchmark::State &state, int64_t elements) {
    state.counters["ns/element"] = benchmark::Counter(
        double(elements) * 1e-9, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}

void colours(benchmark::State &state) {
    const Image<uint8_t> a(JORM_U8, 1080, 1920, 3), out(JORM_U8, 1080, 1920, 3);
    Image<float> m(JORM_F32, 3, 3);
    const float sepia[] = {.393f, .769f, .189f, .349f, .686f, .168f, .272f, .534f, .131f};
    std::copy(sepia, sepia + 9, m.data());
    repeat(state, [&](jorm_xe *xe) { return JormMulMV_n(xe, 0, out, m, a); });
    per_element(state, a.count());
}

void multiply_add(benchmark::State &state) {
    const Image<float> a(JORM_F32, 1080, 1920), b(JORM_F32, 1080, 1920), out(JORM_F32, 1080, 1920);
    const double factor[] = {1.75};
    repeat(state, [&](jorm_xe *xe) { return JormMulAddC(xe, 0, out, a, b, factor, nullptr, nullptr, nullptr, 0, 0); });
    per_element(state, a.count());
}

} // namespace

BENCHMARK(product)->Name("f32 product")->Arg(64)->Arg(512);
BENCHMARK(product_blas)->Name("f32 product, BLAS")->Arg(64)->Arg(512);
BENCHMARK(product_f64)->Name("f64 product")->Arg(512);
BENCHMARK(vector)->Name("f32 matrix by vector")->Arg(512);
BENCHMARK(multiply_add)->Name("1920x1080 f32: JormMulAddC");
BENCHMARK(colours)->Name("1920x1080 u8, 3 channels: 3x3 f32 matrix");
