// Weighted filters: every element type, small windows and large ones, one channel and three, in place, in a view, in
// small pictures and wide ones. Wanted: under two microseconds beside the work for a call of 64 x 64, and in pictures
// of 4096 pixels a row at most 1.3 times the time per pixel of those of 1920.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target weights_bench
//     taskset -c 1 build/release/bench/weights_bench
#include "jorm.h"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>
#include <vector>

namespace {

using Environment = std::unique_ptr<jorm_xe, decltype(&JormXEclose)>;

struct Size {
    const char *name;
    int32_t rows, pixels;
};
constexpr Size full = {"1920x1080", 1080, 1920}, wide = {"4096x1080", 1080, 4096}, small = {"64x64", 64, 64};

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

enum class Layout { plain, in_place, view };
constexpr const char *layouts[] = {"", " in place", " view"};

// Weights of one window: of a Gaussian, or such that do not mirror each other.
struct Weights {
    Weights(int32_t n, bool mirrored) : list(size_t(n)) {
        const double sigma = 0.3 * ((n - 1) * 0.5 - 1) + 0.8;
        jorm__computegauskernel1(list.data(), n / 2, n, sigma);
        if (!mirrored) list[0] += 0.01, list[1] -= 0.01;
        __jorm_seshape__$g2(&kernel.shape, n, n);
        kernel.kernel[0] = kernel.kernel[1] = list.data();
    }
    std::vector<double> list;
    jorm_sepkernel kernel = {};
};

void add(const Type &type, const Size &size, int channels, int32_t n, bool mirrored = true,
         Layout layout = Layout::plain) {
    const std::string name = std::string(size.name) + " " + type.name + " c" + std::to_string(channels) + " " +
                             std::to_string(n) + "x" + std::to_string(n) + (mirrored ? "" : " any") +
                             layouts[int(layout)];
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State &state) {
        _G_jorm_use_simd = 1;
        const Environment xe(JormXEopen(nullptr, nullptr, 0), &JormXEclose);
        const Image src(type, size, channels), dst(type, size, channels);
        const Weights weights(n, mirrored);
        const jorm_site inside = {{0, 8, 9, 0}, {1, size.rows - 16, size.pixels - 18, 4}};
        for (auto _ : state) {
            const int64_t status = JormSepFilter(xe.get(), 0, layout == Layout::in_place ? src : dst, src,
                                                 layout == Layout::view ? &inside : nullptr, nullptr, &weights.kernel);
            if (status < 0) return state.SkipWithError("the call failed");
            benchmark::ClobberMemory();
        }
        state.counters["pixels/ns"] = benchmark::Counter(1e-9 * size.rows * size.pixels * double(state.iterations()),
                                                         benchmark::Counter::kIsRate);
    });
}

const bool registered = [] {
    for (const Type &type : types) {
        for (const int32_t n : {3, 5, 7, 15, 31, 75, 101})
            for (const int channels : {1, 3}) add(type, full, channels, n);
        for (const int32_t n : {5, 15}) {
            add(type, full, 1, n, false);
            add(type, full, 1, n, true, Layout::in_place);
            add(type, full, 1, n, true, Layout::view);
            add(type, wide, 1, n);
        }
        for (const int32_t n : {3, 5, 15}) add(type, small, 1, n);
    }
    return true;
}();

} // namespace
