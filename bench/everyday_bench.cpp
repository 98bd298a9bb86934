// Everyday operations beside the saturated sum, the conversion between ranges and plain loops. Wanted: differences and
// extremes as fast as the saturated sum of the same bytes, gains as fast as the conversion between ranges of the same
// types (where there is none: at most twice that), and nothing slower than its loop.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target everyday_bench
//     taskset -c 1 build/release/bench/everyday_bench
#include "jorm.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

using Environment = std::unique_ptr<jorm_xe, decltype(&JormXEclose)>;

struct Size {
    const char *name;
    int32_t rows, pixels;
};
constexpr Size sizes[] = {{"256x256", 256, 256}, {"1920x1080", 1080, 1920}};

int bytes_of(uint32_t type) { return "\0\1\2\4\10\4\10"[type & 7]; }
const char *name_of(uint32_t type) {
    static const char *const names[] = {"", "u8", "u16", "", "", "", "", "", "", "s8", "s16", "s32", "", "f32"};
    return names[type];
}

class Image {
public:
    Image(uint32_t type, const Size &size) : memory_(size_t(size.rows) * size_t(size.pixels) * size_t(bytes_of(type))) {
        jorm_array_make(&array_, type, size.rows, size.pixels, 1, 0, memory_.data());
        jorm_array bytes;
        jorm_array_make(&bytes, JORM_U8, size.rows, size.pixels, 1, 0, memory_.data());
        std::vector<uint8_t> grey(size_t(size.rows) * size_t(size.pixels));
        for (size_t i = 0; i < grey.size(); ++i) grey[i] = uint8_t(i * 37 >> 3);
        jorm_array_make(&bytes, JORM_U8, size.rows, size.pixels, 1, 0, grey.data());
        const double half = 0.5, down = type == JORM_S8 ? -64 : type == JORM_F32 ? 0.25 : 0;
        JormGain(nullptr, 0, &array_, &bytes, &half, &down, nullptr, nullptr);
    }
    operator const jorm_array *() const { return &array_; }
    template <class T> T *data() { return reinterpret_cast<T *>(memory_.data()); }

private:
    std::vector<uint8_t> memory_;
    jorm_array array_;
};

// Times a call, vectorised, in nanoseconds of an element; a call that fails counts as an error and not as a fast one.
template <class Call> void add_case(const std::string &name, const Size &size, Call call) {
    benchmark::RegisterBenchmark((std::string(size.name) + " " + name).c_str(), [=](benchmark::State &state) {
        _G_jorm_use_simd = 1;
        const Environment xe(JormXEopen(nullptr, nullptr, 0), &JormXEclose);
        for (auto _ : state) {
            if (call(xe.get()) < 0) return state.SkipWithError("the call failed");
            benchmark::ClobberMemory();
        }
        state.counters["elements/ns"] = benchmark::Counter(1e-9 * size.rows * size.pixels * double(state.iterations()),
                                                           benchmark::Counter::kIsRate);
    });
}

using Binary = int64_t(jorm_xe *, uint64_t, const jorm_array *, const jorm_array *, const jorm_array *,
                       const jorm_site *, const int32_t *, const int32_t *);

void add_binary(const char *name, Binary *f, uint32_t type, const Size &size) {
    auto a = std::make_shared<Image>(type, size), b = std::make_shared<Image>(type, size),
         d = std::make_shared<Image>(type, size);
    add_case(std::string(name) + " " + name_of(type), size,
             [=](jorm_xe *xe) { return f(xe, 0, *d, *a, *b, nullptr, nullptr, nullptr); });
}

int64_t sum(jorm_xe *xe, uint64_t options, const jorm_array *d, const jorm_array *a, const jorm_array *b,
            const jorm_site *roi, const int32_t *at1, const int32_t *at2) {
    return JormAddq(xe, options, d, a, b, roi, at1, at2, 0, 0);
}
int64_t product(jorm_xe *xe, uint64_t options, const jorm_array *d, const jorm_array *a, const jorm_array *b,
                const jorm_site *roi, const int32_t *at1, const int32_t *at2) {
    return JormMulq(xe, options, d, a, b, roi, at1, at2, -8, 0);
}

template <class T, class F> void add_loop(const char *name, uint32_t type, const Size &size, F f) {
    auto a = std::make_shared<Image>(type, size), b = std::make_shared<Image>(type, size),
         d = std::make_shared<Image>(type, size);
    const int64_t n = int64_t(size.rows) * size.pixels;
    add_case(std::string(name) + " " + name_of(type) + ": loop", size, [=](jorm_xe *) {
        const T *__restrict const x = a->data<T>(), *__restrict const y = b->data<T>();
        T *__restrict const z = d->data<T>();
        for (int64_t i = 0, count = n; i < count; ++i) z[i] = f(x[i], y[i]);
        return int64_t(0);
    });
}

void add_gain(uint32_t to, uint32_t from, const Size &size) {
    auto a = std::make_shared<Image>(from, size), d = std::make_shared<Image>(to, size);
    add_case(std::string("gain ") + name_of(from) + " to " + name_of(to), size, [=](jorm_xe *xe) {
        const double gain = 201 / 255., offset = 3;
        return JormGain(xe, 0, *d, *a, &gain, &offset, nullptr, nullptr);
    });
    const auto converts = [](uint32_t t) { return t != JORM_S8 && t != JORM_U16; };
    if (!converts(to) || !converts(from)) return;
    add_case(std::string("range ") + name_of(from) + " to " + name_of(to), size, [=](jorm_xe *xe) {
        vrng dst = {3, 204}, src = {0, 255};
        return JormVConvert(xe, 0, *d, *a, nullptr, nullptr, &dst, &src);
    });
}

const bool registered = [] {
    for (const Size &size : sizes) {
        add_binary("sum", sum, JORM_U8, size);
        add_binary("product", product, JORM_U8, size);
        add_binary("product", product, JORM_S16, size);
        for (const uint32_t type : {JORM_U8, JORM_S8, JORM_S16, JORM_S32, JORM_F32}) {
            add_binary("absdiff", JormAbsDiff, type, size);
            add_binary("min", JormMin, type, size);
            add_binary("max", JormMax, type, size);
        }
        add_loop<uint8_t>("absdiff", JORM_U8, size,
                          [](uint8_t x, uint8_t y) { return uint8_t(x > y ? x - y : y - x); });
        add_loop<uint8_t>("min", JORM_U8, size, [](uint8_t x, uint8_t y) { return x < y ? x : y; });
        add_loop<float>("absdiff", JORM_F32, size, [](float x, float y) { return std::fabs(x - y); });
        add_loop<float>("min", JORM_F32, size, [](float x, float y) { return x < y ? x : y; });
        const uint32_t types[] = {JORM_U8, JORM_S8, JORM_U16, JORM_S16, JORM_S32, JORM_F32};
        for (const uint32_t from : types)
            for (const uint32_t to : types) add_gain(to, from, size);
    }
    return true;
}();

} // namespace
