// Neighbourhood filters: every element type, small windows and large ones, one channel and several, in place, in a
// view, in small pictures and large ones. Wanted:
//   - a pixel of a row of 4096 within 1.3 times one of a row of 1920 (4096 x 4096 leaves the last cache besides: the
//     copy shows what that costs by itself);
//   - a mean of 101 x 101 within 1.3 times one of 31 x 31;
//   - a call of 64 x 64 within two microseconds of the share that its pixels have of 1920 x 1080.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target filter_bench
//     taskset -c 1 build/release/bench/filter_bench
#include "jorm.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using Environment = std::unique_ptr<jorm_xe, decltype(&JormXEclose)>;

struct Size {
    const char *name;
    int32_t rows, pixels;
};
constexpr Size full = {"1920x1080", 1080, 1920}, wide = {"4096x1080", 1080, 4096}, huge = {"4096x4096", 4096, 4096},
               small = {"64x64", 64, 64};

struct Type {
    const char *name;
    uint32_t code;
    int bytes;
};
constexpr Type types[] = {{"u8", JORM_U8, 1}, {"s16", JORM_S16, 2}, {"s32", JORM_S32, 4}, {"f32", JORM_F32, 4}};

class Image {
public:
    Image(const Type &type, const Size &size, int channels)
        : memory_(size_t(size.rows) * size_t(size.pixels) * size_t(channels * type.bytes)) {
        jorm_array bytes;
        std::vector<uint8_t> grey(memory_.size() / size_t(type.bytes));
        for (size_t i = 0; i < grey.size(); ++i) grey[i] = uint8_t(i * 37 >> 3);
        jorm_array_make(&bytes, JORM_U8, size.rows, size.pixels, channels, 0, grey.data());
        jorm_array_make(&array_, type.code, size.rows, size.pixels, channels, 0, memory_.data());
        JormConvert(nullptr, 0, &array_, &bytes, nullptr, nullptr, nullptr, nullptr, nullptr);
    }
    operator const jorm_array *() const { return &array_; }

private:
    std::vector<uint8_t> memory_;
    jorm_array array_;
};

// A call of an operation with its window.
using Call = std::function<int64_t(jorm_xe *xe, const jorm_array *dst, const jorm_array *src, const jorm_site *roi)>;

Call copied(int32_t) {
    return [](jorm_xe *xe, const jorm_array *dst, const jorm_array *src, const jorm_site *roi) {
        return JormCopy(xe, 0, dst, src, roi, nullptr);
    };
}

Call by_kind(uint32_t kind, int32_t n) {
    jorm_seshape window;
    __jorm_seshape__$g2(&window, n, n);
    return [=](jorm_xe *xe, const jorm_array *dst, const jorm_array *src, const jorm_site *roi) {
        return JormFilter(xe, 0, dst, src, roi, nullptr, kind, &window);
    };
}

// Over a disk.
Call masked(uint32_t op, int32_t n) {
    const auto mask = std::make_shared<std::vector<uint8_t>>(size_t(n) * size_t(n));
    const int32_t reach = n / 2;
    for (int32_t i = 0; i < n * n; ++i) {
        const int32_t y = i / n - reach, x = i % n - reach;
        (*mask)[size_t(i)] = x * x + y * y <= reach * reach + reach ? 255 : 0;
    }
    jorm_strel disk = {{0, reach, reach, 0}, {}};
    jorm_array_make(&disk.mask, JORM_U8, n, n, 1, 0, mask->data());
    return [disk, mask, op](jorm_xe *xe, const jorm_array *dst, const jorm_array *src, const jorm_site *roi) {
        return JormMorphop(xe, 0, dst, src, roi, nullptr, op, &disk);
    };
}

// With the weights of a Gaussian, or such that do not mirror each other.
Call weighted(int32_t n, bool mirrored) {
    std::vector<double> weights(static_cast<size_t>(n));
    jorm__computegauskernel1(weights.data(), n / 2, n, 0.3 * ((n - 1) * 0.5 - 1) + 0.8);
    if (!mirrored) weights[0] += 0.01, weights[1] -= 0.01;
    jorm_seshape window;
    __jorm_seshape__$g2(&window, n, n);
    return [=](jorm_xe *xe, const jorm_array *dst, const jorm_array *src, const jorm_site *roi) {
        const jorm_sepkernel kernel = {window, {weights.data(), weights.data()}};
        return JormSepFilter(xe, 0, dst, src, roi, nullptr, &kernel);
    };
}

struct Operation {
    const char *name;
    Call (*with_window)(int32_t n);
};
constexpr Operation box = {"box", [](int32_t n) { return by_kind(JORM_FILTER_BOX, n); }},
                    least = {"min", [](int32_t n) { return by_kind(JORM_FILTER_MIN, n); }},
                    largest = {"max", [](int32_t n) { return by_kind(JORM_FILTER_MAX, n); }},
                    closing = {"close", [](int32_t n) { return by_kind(JORM_FILTER_CLOSE, n); }},
                    top_hat = {"tophat", [](int32_t n) { return by_kind(JORM_FILTER_TOPHAT, n); }},
                    eroded = {"erode", [](int32_t n) { return masked(JORM_MORPH_ERODE, n); }}, copy = {"copy", copied},
                    mirrored = {"weights", [](int32_t n) { return weighted(n, true); }},
                    any = {"any weights", [](int32_t n) { return weighted(n, false); }};

enum class Layout { plain, in_place, view };
constexpr const char *layouts[] = {"", " in place", " view"};

void add(const Operation &operation, const Type &type, const Size &size, int channels, int32_t n,
         Layout layout = Layout::plain) {
    const std::string name = std::string(size.name) + " " + type.name + " c" + std::to_string(channels) + " " +
                             operation.name + " " + std::to_string(n) + "x" + std::to_string(n) + layouts[int(layout)];
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        _G_jorm_use_simd = 1;
        const Environment xe(JormXEopen(nullptr, nullptr, 0), &JormXEclose);
        const Image src(type, size, channels), dst(type, size, channels);
        const Call call = operation.with_window(n);
        const jorm_site inside = {{0, 8, 9, 0}, {1, size.rows - 16, size.pixels - 18, 4}};
        for (auto _ : state) {
            if (call(xe.get(), layout == Layout::in_place ? src : dst, src,
                     layout == Layout::view ? &inside : nullptr) < 0)
                return state.SkipWithError("the call failed");
            benchmark::ClobberMemory();
        }
        state.counters["ns/pixel"] = benchmark::Counter(1e-9 * size.rows * size.pixels * double(state.iterations()),
                                                        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
    });
}

const bool registered = [] {
    for (const Type &type : types) {
        for (const Size &size : {full, wide, huge, small}) {
            add(copy, type, size, 1, 1);
            for (const int32_t n : {5, 15}) add(eroded, type, size, 1, n);
            for (const Operation &operation : {closing, top_hat}) add(operation, type, size, 1, 5);
        }
        for (const Operation &operation : {box, least, largest, mirrored}) {
            for (const int32_t n : {3, 5, 7, 15, 31, 101}) add(operation, type, full, 1, n);
            for (const Size &size : {wide, huge})
                for (const int32_t n : {3, 5, 31}) add(operation, type, size, 1, n);
            for (const int32_t n : {3, 5, 15}) add(operation, type, small, 1, n);
            for (const int32_t n : {5, 15}) {
                add(operation, type, full, 1, n, Layout::in_place);
                add(operation, type, full, 1, n, Layout::view);
            }
        }
        for (const int32_t n : {5, 15}) {
            add(any, type, full, 1, n);
            for (const int channels : {3, 4}) add(eroded, type, full, channels, n);
            for (const int channels : {3, 4}) add(mirrored, type, full, channels, n);
        }
    }
    return true;
}();

} // namespace
