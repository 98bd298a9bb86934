// Conversion against an oracle in long double.
#include "jorm.h"
#include "xe/level.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace {

using Random = std::mt19937;
constexpr uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};
constexpr double nan = std::numeric_limits<double>::quiet_NaN(), inf = std::numeric_limits<double>::infinity();

int bytes_of(uint32_t type) { return type == JORM_U8 ? 1 : type == JORM_S16 ? 2 : 4; }

double load(uint32_t type, const void *p) {
    switch (type) {
    case JORM_U8:
        return *static_cast<const uint8_t *>(p);
    case JORM_S16:
        return *static_cast<const int16_t *>(p);
    case JORM_S32:
        return *static_cast<const int32_t *>(p);
    default:
        return *static_cast<const float *>(p);
    }
}

void store(uint32_t type, void *p, double x) {
    switch (type) {
    case JORM_U8:
        *static_cast<uint8_t *>(p) = uint8_t(x);
        break;
    case JORM_S16:
        *static_cast<int16_t *>(p) = int16_t(x);
        break;
    case JORM_S32:
        *static_cast<int32_t *>(p) = int32_t(x);
        break;
    default:
        *static_cast<float *>(p) = float(x);
    }
}

double limit(uint32_t type, bool upper) {
    return type == JORM_U8    ? (upper ? 255 : 0)
           : type == JORM_S16 ? (upper ? 32767 : -32768)
           : upper            ? 2147483647.0
                              : -2147483648.0;
}

// What a value becomes in the type: to nearest even into 32 bits, then clamped.
double converted(uint32_t type, double x) {
    if (type == JORM_F32) return float(x);
    const double near = std::nearbyint(x);
    const double whole = near >= -2147483648.0 && near <= 2147483647.0 ? near : -2147483648.0;
    return std::min(std::max(whole, limit(type, false)), limit(type, true));
}

bool alike(double a, double b) { return a == b || (std::isnan(a) && std::isnan(b)); }

double sample(uint32_t type, Random &rng) {
    static const double odd[] = {nan, inf,  -inf,  3e9,   -3e9,    2147483648.0, 0.5,  1.5,
                                 2.5, -0.5, 254.5, 255.5, 32767.5, -32768.5,     1e-30};
    if (type == JORM_F32)
        return rng() % 4 == 0 ? odd[rng() % 15] : (double(rng()) / 4294967296.0 - 0.5) * std::ldexp(1, int(rng() % 36));
    const double span = limit(type, true) - limit(type, false) + 1;
    return limit(type, false) + std::floor(double(rng()) / 4294967296.0 * span);
}

// A picture in some layout: padded rows and pixels, turned rows.
struct Picture {
    std::vector<uint8_t> memory;
    jorm_array array{};
    int planes, h, w, channels;

    Picture(uint32_t type, int planes, int h, int w, int channels, int layout, Random &rng, uint32_t axes = 3)
        : planes(planes), h(h), w(w), channels(channels) {
        const int b = bytes_of(type), pixel = b * channels + (layout == 2 ? b : 0),
                  row = pixel * w + (layout ? 4 * b : 0);
        memory.assign(size_t(planes) * size_t(h) * size_t(row) + 16, 0x5A);
        array.ndims = uint16_t(axes);
        array.eltype = type;
        const uint32_t extent[4] = {uint32_t(planes), uint32_t(h), uint32_t(w), uint32_t(channels)};
        std::memcpy(array.extent, extent, sizeof extent);
        const int32_t stride[4] = {row * h, layout == 3 ? -row : row, pixel, b};
        std::memcpy(array.stride, stride, sizeof stride);
        array.base = memory.data();
        array.loff = layout == 3 ? row * (h - 1) : 0;
        for (int p = 0; p < planes; ++p)
            for (int y = 0; y < h; ++y)
                for (int x = 0; x < w; ++x)
                    for (int c = 0; c < channels; ++c) store(type, at(p, y, x, c), sample(type, rng));
    }
    void *at(int p, int y, int x, int c) {
        const int32_t *s = array.stride;
        return memory.data() + array.loff + p * s[0] + y * s[1] + x * s[2] + c * s[3];
    }
    double value(int p, int y, int x, int c) { return load(array.eltype, at(p, y, x, c)); }
};

template <class F> void for_each(const Picture &a, F f) {
    for (int p = 0; p < a.planes; ++p)
        for (int y = 0; y < a.h; ++y)
            for (int x = 0; x < a.w; ++x)
                for (int c = 0; c < a.channels; ++c) f(p, y, x, c);
}

struct Convert : testing::Test {
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    Random rng{7};
    ~Convert() override {
        JormXEclose(xe);
        _G_jorm_use_simd = -1;
        jorm::limit_level(jorm::level_count);
    }
};

// y = x * scale + offset between the ranges, in double as promised.
double mapped(double x, const vrng &d, const vrng &s) {
    const double scale = (d.hi - d.lo) / (s.hi - s.lo);
    return x * scale + (d.lo - s.lo * scale);
}

TEST_F(Convert, PlainAndByRangesInEveryLayout) {
    for (uint32_t d : types)
        for (uint32_t s : types)
            for (int round = 0; round < 24; ++round) {
                const int planes = round % 5 == 4 ? 3 : 1, axes = planes > 1 ? 4 : 3, h = 1 + int(rng() % 4);
                const int w = int(round % 3 ? 1 + rng() % 70 : 300 + rng() % 2000), channels = 1 + int(rng() % 4);
                Picture src(s, planes, h, w, channels, int(rng() % 4), rng, axes),
                    dst(d, planes, h, w, channels, int(rng() % 4), rng, axes);
                _G_jorm_use_simd = round % 2;
                jorm::limit_level(round % 4 < 2 ? jorm::level_count : jorm::level_avx2);
                const bool ranged = round % 3 == 2;
                vrng to[4], from[4];
                for (int c = 0; c < 4; ++c) to[c] = {1, 100.5}, from[c] = {-50, 200};
                ASSERT_EQ(JormVConvert(xe, 0, &dst.array, &src.array, nullptr, nullptr, ranged ? to : nullptr,
                                       ranged ? from : nullptr),
                          0);
                for_each(src, [&](int p, int y, int x, int c) {
                    const double v = src.value(p, y, x, c),
                                 wish = converted(
                                     d, ranged ? mapped(v, to[c], s == JORM_U8 ? vrng{0, 200} : vrng{-50, 200}) : v);
                    ASSERT_TRUE(alike(dst.value(p, y, x, c), wish))
                        << d << " <- " << s << " of " << v << ": " << dst.value(p, y, x, c) << ", not " << wish;
                });
            }
}

TEST_F(Convert, MeasuredRangesScalesAndOffsets) {
    // Null scales and offsets shift the data so that the minimum becomes 0.
    Picture src(JORM_S16, 2, 3, 40, 2, 1, rng, 4), dst(JORM_S32, 2, 3, 40, 2, 2, rng, 4);
    double lo = inf, hi = -inf;
    for_each(src, [&](int p, int y, int x, int c) {
        lo = std::min(lo, src.value(p, y, x, c)), hi = std::max(hi, src.value(p, y, x, c));
    });
    ASSERT_EQ(JormConvert(xe, 0, &dst.array, &src.array, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    for_each(src, [&](int p, int y, int x, int c) { ASSERT_EQ(dst.value(p, y, x, c), src.value(p, y, x, c) - lo); });

    // The measured range fills the destination's. Channels cannot be selected.
    vrng full[2] = {{0, 255}, {0, 255}};
    Picture bytes(JORM_U8, 2, 3, 40, 2, 0, rng, 4);
    ASSERT_EQ(JormVConvert(xe, 0x20, &bytes.array, &src.array, nullptr, nullptr, full, nullptr), 0);
    for_each(src, [&](int p, int y, int x, int c) {
        ASSERT_EQ(bytes.value(p, y, x, c), converted(JORM_U8, mapped(src.value(p, y, x, c), {0, 255}, {lo, hi})));
    });

    // Offsets by channel: the multiply-add with constants per channel.
    const double scales[2] = {0.25, 0.5}, offsets[2] = {10, 20};
    const vrng known[2] = {{-32768, 32767}, {-32768, 32767}};
    Picture real(JORM_F32, 2, 3, 40, 2, 0, rng, 4);
    ASSERT_EQ(JormConvert(xe, 0, &real.array, &src.array, nullptr, nullptr, scales, offsets, known), 0);
    for_each(src, [&](int p, int y, int x, int c) {
        ASSERT_NEAR(real.value(p, y, x, c), offsets[c] + (src.value(p, y, x, c) + 32768) * scales[c], 0.01);
    });
    // Scales of 1 and offsets of NaN: plain.
    const double ones[2] = {1, nan}, none[2] = {nan, inf};
    ASSERT_EQ(JormConvert(xe, 0, &bytes.array, &src.array, nullptr, nullptr, ones, none, nullptr), 0);
    for_each(src, [&](int p, int y, int x, int c) {
        ASSERT_EQ(bytes.value(p, y, x, c), converted(JORM_U8, src.value(p, y, x, c)));
    });
}

TEST_F(Convert, RangesAreRepairedAndFilled) {
    Picture src(JORM_U8, 1, 2, 9, 1, 0, rng), dst(JORM_F32, 1, 2, 9, 1, 0, rng);
    vrng invalid = {5, 1};
    const vrng from = {10, 20};
    ASSERT_EQ(JormVConvert(xe, 0, &dst.array, &src.array, nullptr, nullptr, &invalid, &from), 0);
    EXPECT_EQ(invalid.lo, 10);
    EXPECT_EQ(invalid.hi, 20);
    EXPECT_EQ(from.lo, 10);

    for (uint8_t &b : src.memory) b = 77; // no extent
    vrng to = {3, 9};
    ASSERT_EQ(JormVConvert(xe, 0, &dst.array, &src.array, nullptr, nullptr, &to, nullptr), 0);
    for_each(dst, [&](int p, int y, int x, int c) { ASSERT_EQ(dst.value(p, y, x, c), 3); });
}

TEST_F(Convert, NarrowsInPlace) {
    for (int simd = 0; simd < 2; ++simd) {
        _G_jorm_use_simd = simd;
        std::vector<int16_t> memory(5000);
        for (int16_t &v : memory) v = int16_t(rng() % 600 - 100);
        const std::vector<int16_t> before = memory;
        const int32_t size[2] = {5000, 1}, wide[2] = {2, 2}, narrow[2] = {1, 1};
        ASSERT_EQ(_jorma__tconvert_u8s16(xe, 0, JORM_WORD(2), size, memory.data(), narrow, memory.data(), wide), 0);
        const auto *bytes = reinterpret_cast<const uint8_t *>(memory.data());
        for (int i = 0; i < 5000; ++i) ASSERT_EQ(bytes[i], converted(JORM_U8, before[size_t(i)])) << i;
    }
}

TEST_F(Convert, Statuses) {
    Picture a(JORM_U8, 1, 3, 5, 1, 0, rng), b(JORM_S16, 1, 3, 5, 1, 0, rng), c3(JORM_U8, 1, 3, 5, 3, 0, rng);
    const auto convert = [&](const jorm_array *d, const jorm_array *s, const jorm_site *roi) {
        return JormVConvert(xe, 0, d, s, roi, nullptr, nullptr, nullptr);
    };
    const jorm_site far = {{0, 9, 0, 0}, {1, 1, 1, 1}};
    EXPECT_EQ(convert(nullptr, &a.array, nullptr), JORM_EINVAL);
    EXPECT_EQ(convert(&a.array, &c3.array, nullptr), JORM_EINVAL);
    EXPECT_EQ(convert(&a.array, &b.array, &far), JORM_EEMPTY);
    b.array.eltype = JORM_U16;
    EXPECT_EQ(convert(&a.array, &b.array, nullptr), JORM_ENOTSUP);
    b.array.eltype = 7;
    EXPECT_EQ(convert(&a.array, &b.array, nullptr), JORM_EINVAL);
    b.array.eltype = JORM_S16;
    b.array.ndims = 4;
    EXPECT_EQ(convert(&a.array, &b.array, nullptr), JORM_EINVAL);
    int32_t status = 1;
    EXPECT_EQ(jorma__vcvtfun_imp(JORM_U8, JORM_F64, &status), jorma_proc_enotsup);
    EXPECT_EQ(status, JORM_ENOTSUP);
    EXPECT_EQ(jorma__tcvtfun_imp(8, JORM_U8, &status), jorma_proc_einval);
    EXPECT_EQ(status, JORM_EINVAL);
    EXPECT_EQ(_jorma__swvconvert(xe, 0, JORM_WORD(3), nullptr, JORM_U8, a.memory.data(), a.array.stride + 1, JORM_U8,
                                 a.memory.data(), a.array.stride + 1, nullptr, nullptr),
              JORM_EINVAL);
    const double two[] = {2}, one[] = {1};
    EXPECT_EQ(jorm_scfochk(two, nullptr, 1), 3);
    EXPECT_EQ(jorm_scfochk(one, nullptr, 1), 2);
    EXPECT_EQ(jorm_scfochk(two, &nan, 1), 1);
}

} // namespace
