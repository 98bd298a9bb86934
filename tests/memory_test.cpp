// Memory kernels against obvious loops.
#include "jorm/copy.h"
#include "jorm/xe.h"
#include "xe/level.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
constexpr uint32_t nowhere = 0xFFFFFFFF;

// Every test runs at every level.
class Memory : public testing::TestWithParam<int> {
protected:
    Memory() {
        _G_jorm_use_simd = 1;
        jorm::limit_level(jorm::Level(GetParam()));
    }
    ~Memory() override {
        _G_jorm_use_simd = 0;
        jorm::limit_level(jorm::level_count);
    }
    std::mt19937 r{7};
};
INSTANTIATE_TEST_SUITE_P(Levels, Memory, testing::Range(0, int(jorm::level_count)));

TEST_P(Memory, FillsRestartThePatternInEveryRow) {
    Bytes pattern(16);
    std::iota(pattern.begin(), pattern.end(), uint8_t(1));
    for (int channels = 1; channels <= 4; ++channels)
        for (int bytes : {1, 11, 63, 64, 70, 191, 400, 1000})
            for (int gap : {0, 5}) {
                const int step = bytes + gap, rows = 3;
                Bytes down(size_t(rows * step + 2)), up = down, one = down, expected = down;
                for (int y = 0; y < rows; ++y)
                    for (int i = 0; i < bytes; ++i)
                        expected[size_t(1 + y * step + i)] = pattern[size_t(i % (4 * channels))];
                C_jorm_bfill2d(&down[1], step, rows, bytes, channels, pattern.data());
                C_jorm_bfill2d(&up[size_t(1 + 2 * step)], -step, rows, bytes, channels, pattern.data());
                for (int y = 0; y < rows; ++y)
                    C_jorm_bfill(&one[size_t(1 + y * step)], bytes, channels, pattern.data());
                ASSERT_EQ(down, expected) << channels << " " << bytes;
                ASSERT_EQ(up, expected);
                ASSERT_EQ(one, expected);
            }
    Bytes untouched(8, 3);
    C_jorm_bfill2d(untouched.data(), 4, 0, 4, 1, pattern.data());
    C_jorm_bfill2d(untouched.data(), 4, 2, 0, 1, pattern.data());
    C_jorm_bfill(untouched.data(), 8, 5, pattern.data());
    C_jorm_bfill(nullptr, 8, 1, pattern.data());
    EXPECT_EQ(untouched, Bytes(8, 3));
}

TEST_P(Memory, CopiesOfRows) {
    for (int shift : {-17, -1, 0, 3, 50}) {
        Bytes b(400), expected;
        for (size_t i = 0; i < b.size(); ++i) b[i] = uint8_t(i);
        expected = b;
        for (int y = 0; y < 5; ++y)
            for (int i = 0; i < 30; ++i) expected[size_t(100 + shift + 40 * y + i)] = b[size_t(100 + 40 * y + i)];
        C_jorm_bcopy2d(&b[size_t(100 + shift)], 40, &b[100], 40, 5, 30);
        EXPECT_EQ(b, expected) << shift;
    }
}

template <class T> void search_for(uint32_t type, double value, T element, T other, std::mt19937 &r) {
    for (int w : {1, 7, 256, 300, 700}) {
        const int h = 3, stride = w + 5;
        std::vector<T> v(size_t(h * stride), other);
        const auto elements = [&](auto *f) { return f(type, v.data(), stride * int64_t(sizeof(T)), h, w, value); };
        EXPECT_EQ(elements(jorm_memelem2d), nowhere);
        EXPECT_EQ(elements(jorm_memcelem2dS), 0u);
        const int y = int(r() % h), x = int(r() % unsigned(w));
        v[size_t(y * stride + x)] = element;
        v[size_t(2 * stride + w - 1)] = element;
        EXPECT_EQ(elements(jorm_memelem2d), uint32_t(x + y * w)) << type << " " << w;
        EXPECT_EQ(elements(jorm_memelem2dS), uint32_t(x + y * w));
        std::fill(v.begin(), v.end(), element);
        EXPECT_EQ(elements(jorm_memcelem2d), nowhere);
        v[size_t(y * stride + x)] = other;
        EXPECT_EQ(elements(jorm_memcelem2d), uint32_t(x + y * w));
    }
}

TEST_P(Memory, Searches) {
    search_for<uint8_t>(JORM_U8, 300, 255, 44, r);
    search_for<int8_t>(JORM_S8, 300, 127, 44, r);
    search_for<int8_t>(JORM_S8, -1000, -128, 24, r);
    search_for<uint16_t>(JORM_U16, 65536, 65535, 0, r);
    search_for<int16_t>(JORM_S16, -32769.5, -32768, 32767, r);
    search_for<uint32_t>(JORM_U32, 70000.5, 70000, 70001, r);
    search_for<int32_t>(JORM_S32, -2.5, -2, -3, r);
    search_for<float>(JORM_F32, 0.1, 0.1f, 0.2f, r);
    search_for<float>(JORM_F32, 0, -0.f, 1, r);
    const float nan[] = {NAN};
    EXPECT_EQ(jorm_memelem2d(JORM_F32, nan, 4, 1, 1, NAN), nowhere);
    EXPECT_EQ(jorm_memcelem2d(JORM_F32, nan, 4, 1, 1, NAN), 0u);
    const uint8_t byte = 1;
    for (auto *f : {jorm_memelem2d, jorm_memelem2dS, jorm_memcelem2d, jorm_memcelem2dS}) {
        EXPECT_EQ(f(JORM_U8, nullptr, 1, 1, 1, 0), nowhere);
        EXPECT_EQ(f(JORM_U8, &byte, 1, 0, 1, 1), nowhere);
        EXPECT_EQ(f(JORM_F64, &byte, 1, 1, 1, 1), nowhere);
    }
}

TEST(Hashes, Bytes) {
    EXPECT_EQ(jorm_bhash("A", 1), 0x41u);
    EXPECT_EQ(jorm_bhash("AB", 2), 0x452u);
    EXPECT_EQ(jorm_bhash("A\0B", 3), (0x41u << 8) + 0x42);
    EXPECT_EQ(jorm_bhash("\xFF", 1), 0x0FFFFF0Fu);
    EXPECT_EQ(jorm_bcshash("\xFF"), 0x0FFFFF0Fu);
    EXPECT_EQ(jorm_bcsnhash("ABC", 2), 0x452u);
    EXPECT_EQ(jorm_bcsnhash("AB", 9), 0x452u);
    // Long enough for the folding of the upper bits: the last step by hand.
    const uint64_t h = (uint64_t(jorm_bhash("abcdefg", 7)) << 4) + 'h', low = h & 0xFFFFFFFF, g = low & 0xF0000000;
    EXPECT_EQ(jorm_bcshash("abcdefgh"), uint32_t(low ^ (g | g >> 24)));
    EXPECT_NE(g, 0u);
    for (uint32_t empty : {jorm_bhash(nullptr, 5), jorm_bhash("x", 0), jorm_bcshash(""), jorm_bcshash(nullptr)})
        EXPECT_EQ(empty, 0u);
}

bool relation(uint32_t op, double a, double b) {
    return op == 3 ? a == b : op == 4 ? a < b : op == 5 ? a <= b : op == 6 ? a > b : op == 7 && a >= b;
}

TEST(Tables, ComparisonsAndTranslation) {
    const double c1[] = {100.4, 300, -5, 7}, c2[] = {10, 20, 30, 255}, yes[] = {1, 2, 3, 999}, no[] = {4, 5, -6, 7};
    const double k1[] = {100, 255, 0, 7}, y1[] = {1, 2, 3, 255}, n1[] = {4, 5, 0, 7};
    for (uint32_t op = 0; op < 9; ++op)
        for (int channels = 1; channels <= 4; ++channels)
            for (int given = 0; given < 4; ++given) {
                Bytes one(size_t(256 * channels + 1), 77), two = one;
                const double *const t = given & 1 ? yes : nullptr, *const f = given & 2 ? no : nullptr;
                EXPECT_EQ(jorm_mkcmpxlatab(one.data(), op | 0x70, c1, t, f, channels), JORM_OK);
                EXPECT_EQ(jorm_mkcmpxlatab2(two.data(), 7, op, c2, c1, t, f, channels), JORM_OK);
                for (int c = 0; c < channels; ++c)
                    for (int v = 0; v < 256; ++v) {
                        const double in = t ? y1[c] : 255, out = f ? n1[c] : 0;
                        const bool holds = relation(op, v, k1[c]);
                        ASSERT_EQ(one[size_t(256 * c + v)], holds ? in : out) << op << " " << c << " " << v;
                        ASSERT_EQ(two[size_t(256 * c + v)], holds && v >= c2[c] ? in : out);
                    }
                EXPECT_EQ(one.back(), 77);

                Bytes image(3 * 20), expected = image;
                for (size_t i = 0; i < image.size(); ++i) image[i] = uint8_t(i * 37);
                expected = image;
                for (int y = 0; y < 3; ++y)
                    for (int i = 0; i < 17; ++i) {
                        uint8_t &e = expected[size_t(20 * y + i)];
                        e = one[size_t(256 * (i % channels) + e)];
                    }
                jorm_xlat2d_u8(image.data(), 20, image.data(), 20, 3, 17, channels, one.data());
                ASSERT_EQ(image, expected);
            }
    Bytes table(1024, 9);
    EXPECT_EQ(jorm_mkcmpxlatab(table.data(), 3, c1, nullptr, nullptr, 0), JORM_EINVAL);
    EXPECT_EQ(jorm_mkcmpxlatab(table.data(), 3, c1, nullptr, nullptr, 5), JORM_EINVAL);
    EXPECT_EQ(jorm_mkcmpxlatab(table.data(), 3, nullptr, nullptr, nullptr, 1), JORM_EINVAL);
    EXPECT_EQ(jorm_mkcmpxlatab2(table.data(), 3, 3, c1, nullptr, nullptr, nullptr, 1), JORM_EINVAL);
    EXPECT_EQ(jorm_mkcmpxlatab(nullptr, 3, c1, nullptr, nullptr, 1), JORM_EINVAL);
    EXPECT_EQ(table, Bytes(1024, 9));
}

TEST_P(Memory, Vectors) {
    const float pattern[4] = {2, -0.5f, 3, 1e30f};
    std::uniform_real_distribution<float> real(-100, 100);
    for (size_t n : {0, 1, 5, 16, 17, 100, 70000}) {
        std::vector<float> f(n), out(n + 1, 42);
        Bytes a(2 * n), b(2 * n), c(2 * n);
        for (float &x : f) x = real(r);
        for (uint8_t &x : a) x = uint8_t(r());
        for (uint8_t &x : b) x = uint8_t(r());
        // clang-format off
        const struct {
            void (*run)(float *, const float *, const float *, size_t);
            float (*model)(float, float);
        } with_constant[] = {
            {C_jorm_addvcf, [](float x, float k) { return x + k; }}, {C_jorm_subvcf, [](float x, float k) { return x - k; }},
            {C_jorm_mulvcf, [](float x, float k) { return x * k; }}, {C_jorm_rsubvcf, [](float x, float k) { return k - x; }},
            {C_jorm_divvcf, [](float x, float k) { return x / k; }}, {C_jorm_rdivvcf, [](float x, float k) { return k / x; }},
        };
        // clang-format on
        for (const auto &op : with_constant) {
            op.run(out.data(), f.data(), pattern, n);
            for (size_t i = 0; i < n; ++i) ASSERT_EQ(out[i], op.model(f[i], pattern[i % 4])) << i;
            EXPECT_EQ(out[n], 42);
        }
        const auto at16 = [](const Bytes &v, size_t i) { return v[2 * i] + 256 * v[2 * i + 1]; };
        C_jorm_addLE256_8(c.data(), a.data(), b.data(), 2 * n);
        for (size_t i = 0; i < 2 * n; ++i) ASSERT_EQ(c[i], uint8_t(a[i] + b[i]));
        C_jorm_subaLE256_8(c.data(), a.data(), b.data(), 2 * n);
        for (size_t i = 0; i < 2 * n; ++i) ASSERT_EQ(c[i], std::abs(a[i] - b[i]));
        C_jorm_addLE256_16(c.data(), a.data(), b.data(), n);
        for (size_t i = 0; i < n; ++i) ASSERT_EQ(at16(c, i), (at16(a, i) + at16(b, i)) & 65535);
        C_jorm_subaLE256_16(c.data(), a.data(), b.data(), n);
        for (size_t i = 0; i < n; ++i) ASSERT_EQ(at16(c, i), std::abs(at16(a, i) - at16(b, i)));

        EXPECT_EQ(C_jorm_maxu8_n(a.data(), n), n ? *std::max_element(a.begin(), a.begin() + long(n)) : 0);
        EXPECT_EQ(C_jorm_minu8_n(a.data(), n), n ? *std::min_element(a.begin(), a.begin() + long(n)) : 255);
        EXPECT_EQ(C_jorm_sumu8_n(a.data(), n), std::accumulate(a.begin(), a.begin() + long(n), int64_t(0)));
        std::vector<int16_t> low(n, -32768);
        EXPECT_EQ(C_jorm_sumi16_n(low.data(), n), -32768 * int64_t(n));
        const float inf = std::numeric_limits<float>::infinity();
        EXPECT_EQ(C_jorm_maxf_n(f.data(), n), n ? *std::max_element(f.begin(), f.end()) : -inf);
        EXPECT_EQ(C_jorm_minf_n(f.data(), n), n ? *std::min_element(f.begin(), f.end()) : inf);
        std::array<double, 16> part = {};
        for (size_t i = 0; i < n; ++i) part[i % 16] += double(f[i]);
        for (size_t step : {8, 4, 2, 1})
            for (size_t k = 0; k < step; ++k) part[k] += part[k + step];
        EXPECT_EQ(C_jorm_sumf_n(f.data(), n), part[0]); // the same bits everywhere
    }
    const float with_nan[] = {NAN, 3, NAN, -2};
    EXPECT_EQ(C_jorm_maxf_n(with_nan, 4), 3);
    EXPECT_EQ(C_jorm_minf_n(with_nan, 4), -2);
    EXPECT_EQ(C_jorm_sumu8_n(nullptr, 4), 0);
}

} // namespace
