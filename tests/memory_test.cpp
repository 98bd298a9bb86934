// Memory kernels against obvious loops.
#include "jorm/copy.h"
#include "support/picture.hpp"

#include <numeric>

namespace {

constexpr uint32_t nowhere = 0xFFFFFFFF;

// Every test runs at every level.
class Memory : public testing::TestWithParam<int> {
protected:
    Memory() { use_level(GetParam()); }
    Random r{7};
};
INSTANTIATE_TEST_SUITE_P(Levels, Memory, testing::Range(0, int(jorm::level_count)));

TEST_P(Memory, FillsRestartThePatternInEveryRow) {
    Bytes pattern(16);
    std::iota(pattern.begin(), pattern.end(), uint8_t(1));
    for (int channels = 1; channels <= 4; ++channels)
        for (int bytes : {0, 1, 11, 63, 64, 70, 191, 400, 1000})
            for (int gap : {0, 5}) {
                const int step = bytes + gap, rows = 3;
                Bytes down(size_t(rows * step + 2)), up = down, one = down, expected = down;
                for (int y = 0; y < rows; ++y) {
                    uint8_t *const row = &expected[size_t(1 + y * step)];
                    for (int i = 0; i < bytes; ++i) row[i] = pattern[size_t(i % (4 * channels))];
                    C_jorm_bfill(&one[size_t(1 + y * step)], bytes, channels, pattern.data());
                }
                C_jorm_bfill2d(&down[1], step, rows, bytes, channels, pattern.data());
                C_jorm_bfill2d(&down[1], step, 0, bytes, channels, &pattern[1]);
                C_jorm_bfill2d(&up[size_t(1 + 2 * step)], -step, rows, bytes, channels, pattern.data());
                ASSERT_TRUE(down == expected && up == expected && one == expected) << channels << " " << bytes;
            }
    Bytes untouched(8, 3);
    C_jorm_bfill(untouched.data(), 8, 5, pattern.data());
    C_jorm_bfill(nullptr, 8, 1, pattern.data());
    EXPECT_EQ(untouched, Bytes(8, 3));
}

TEST_P(Memory, CopiesOfRows) {
    for (int shift : {-17, -1, 0, 3, 50}) {
        Bytes b(400);
        std::iota(b.begin(), b.end(), uint8_t(0));
        Bytes expected = b;
        for (int y = 0; y < 5; ++y) std::copy_n(&b[size_t(100 + 40 * y)], 30, &expected[size_t(100 + shift + 40 * y)]);
        C_jorm_bcopy2d(&b[size_t(100 + shift)], 40, &b[100], 40, 5, 30);
        EXPECT_EQ(b, expected) << shift;
    }
}

TEST_P(Memory, Searches) {
    // What to look for, what it becomes, another element.
    const std::tuple<uint32_t, double, double, double> cases[] = {
        {JORM_U8, 300, 255, 44},     {JORM_S8, 300, 127, 44},         {JORM_S8, -1000, -128, 24},
        {JORM_U16, 65536, 65535, 0}, {JORM_S16, -4e4, -32768, 32767}, {JORM_U32, 7.5, 8, 7},
        {JORM_S32, -2.5, -2, -3},    {JORM_F32, 0.1, 0.1f, 0.2f},     {JORM_F32, 0, -0.f, 1},
    };
    for (const auto &[type, value, element, other] : cases)
        for (int w : {1, 7, 256, 300, 700}) {
            const int h = 3, y = r.in(0, h - 1), x = r.in(0, w - 1);
            Picture v(r, type, {1, h, w + 5, 1}, true);
            v.a.extent[2] = uint32_t(w); // random bits behind each row
            const auto set_all = [&](double e) { v.fill([=] { return e; }); };
            const auto set = [&](int row, int column, double e) { store(type, v.at({0, row, column, 0}), e); };
            const auto search = [&](auto *f) { return f(type, v.at({}), v.a.stride[1], h, w, value); };
            set_all(other);
            EXPECT_EQ(search(jorm_memelem2d), nowhere);
            EXPECT_EQ(search(jorm_memcelem2dS), 0u);
            set(y, x, element), set(h - 1, w - 1, element);
            EXPECT_EQ(search(jorm_memelem2d), uint32_t(x + y * w)) << type << " " << w;
            EXPECT_EQ(search(jorm_memelem2dS), uint32_t(x + y * w));
            set_all(element);
            EXPECT_EQ(search(jorm_memcelem2d), nowhere);
            set(y, x, other);
            EXPECT_EQ(search(jorm_memcelem2d), uint32_t(x + y * w));
        }
    const float no_number = NAN;
    const double one = 1;
    EXPECT_EQ(jorm_memelem2d(JORM_F32, &no_number, 4, 1, 1, nan), nowhere);
    EXPECT_EQ(jorm_memcelem2d(JORM_F32, &no_number, 4, 1, 1, nan), 0u);
    for (auto *f : {jorm_memelem2d, jorm_memelem2dS, jorm_memcelem2d, jorm_memcelem2dS}) {
        EXPECT_EQ(f(JORM_U8, nullptr, 1, 1, 1, 0), nowhere);
        EXPECT_EQ(f(JORM_U8, &one, 1, 0, 1, 1), nowhere);
        EXPECT_EQ(f(JORM_F64, &one, 1, 1, 1, 1), nowhere);
    }
}

uint32_t hash(const std::string &s) {
    uint32_t h = 0;
    for (char c : s) {
        h = (h << 4) + uint32_t(int8_t(c));
        h ^= (h & 0xF0000000) | (h & 0xF0000000) >> 24;
    }
    return h;
}

TEST(Hashes, Bytes) {
    Random r(1);
    std::string s;
    for (size_t n = 0; n < 40; s += char(r.in(1, 255)), ++n)
        for (uint32_t h : {jorm_bhash(s.data(), n), jorm_bcshash(s.c_str()), jorm_bcsnhash(s.c_str(), n + 9),
                           jorm_bcsnhash((s + "more").c_str(), n)})
            EXPECT_EQ(h, hash(s)) << n;
    EXPECT_EQ(jorm_bhash("A\0B", 3), (0x41u << 8) + 0x42);
    EXPECT_EQ(jorm_bhash(nullptr, 5) + jorm_bcshash(nullptr), 0u);
}

bool relation(uint32_t op, double a, double b) {
    return op == 3 ? a == b : op == 4 ? a < b : op == 5 ? a <= b : op == 6 ? a > b : op == 7 && a >= b;
}

TEST(Tables, ComparisonsAndTranslation) {
    Random r(2);
    const double c1[] = {100.4, 300, -5, 7}, c2[] = {10, 20, 30, 255}, yes[] = {1, 2, 3, 999}, no[] = {4, 5, -6, 7};
    for (uint32_t op = 0; op < 9; ++op)
        for (int channels = 1; channels <= 4; ++channels)
            for (int given = 0; given < 4; ++given) {
                Bytes one(size_t(256 * channels + 1), 77), two = one;
                const double *const t = given & 1 ? yes : nullptr, *const f = given & 2 ? no : nullptr;
                EXPECT_EQ(jorm_mkcmpxlatab(one.data(), op | 0x70, c1, t, f, channels), JORM_OK);
                EXPECT_EQ(jorm_mkcmpxlatab2(two.data(), 7, op, c2, c1, t, f, channels), JORM_OK);
                for (int c = 0; c < channels; ++c)
                    for (int v = 0; v < 256; ++v) {
                        const double in = t ? converted(JORM_U8, t[c]) : 255, out = f ? converted(JORM_U8, f[c]) : 0;
                        const bool holds = relation(op, v, converted(JORM_U8, c1[c]));
                        ASSERT_EQ(one[size_t(256 * c + v)], holds ? in : out) << op << " " << c << " " << v;
                        ASSERT_EQ(two[size_t(256 * c + v)], holds && v >= c2[c] ? in : out);
                    }
                EXPECT_EQ(one.back(), 77);

                Bytes image(3 * 20);
                scramble(r, image);
                Bytes expected = image;
                for (int i = 0; i < 60; ++i)
                    if (i % 20 < 17) expected[size_t(i)] = one[size_t(256 * (i % 20 % channels) + image[size_t(i)])];
                jorm_xlat2d_u8(image.data(), 20, image.data(), 20, 3, 17, channels, one.data());
                ASSERT_EQ(image, expected);
            }
    Bytes table(1024, 9);
    for (int channels : {0, 5})
        EXPECT_EQ(jorm_mkcmpxlatab(table.data(), 3, c1, nullptr, nullptr, channels), JORM_EINVAL);
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
        Bytes a(n);
        for (float &x : f) x = real(r);
        for (uint8_t &x : a) x = uint8_t(r());
        const auto expect_with = [&](auto run, float (*model)(float, float)) {
            run(out.data(), f.data(), pattern, n);
            for (size_t i = 0; i < n; ++i) ASSERT_EQ(out[i], model(f[i], pattern[i % 4])) << i;
            EXPECT_EQ(out[n], 42);
        };
        expect_with(C_jorm_addvcf, [](float x, float k) { return x + k; });
        expect_with(C_jorm_subvcf, [](float x, float k) { return x - k; });
        expect_with(C_jorm_rsubvcf, [](float x, float k) { return k - x; });
        expect_with(C_jorm_mulvcf, [](float x, float k) { return x * k; });
        expect_with(C_jorm_divvcf, [](float x, float k) { return x / k; });
        expect_with(C_jorm_rdivvcf, [](float x, float k) { return k / x; });
        const auto expect = [&](auto run, auto element, auto model) {
            using T = decltype(element);
            std::vector<T> x(n), y(n), z(n);
            for (size_t i = 0; i < n; ++i) x[i] = T(r()), y[i] = T(r());
            run(z.data(), x.data(), y.data(), n);
            for (size_t i = 0; i < n; ++i) ASSERT_EQ(z[i], T(model(x[i], y[i]))) << i;
        };
        const auto plus = [](int x, int y) { return x + y; };
        const auto apart = [](int x, int y) { return std::abs(x - y); };
        expect(C_jorm_addLE256_8, uint8_t(), plus), expect(C_jorm_addLE256_16, uint16_t(), plus);
        expect(C_jorm_subaLE256_8, uint8_t(), apart), expect(C_jorm_subaLE256_16, uint16_t(), apart);

        EXPECT_EQ(C_jorm_maxu8_n(a.data(), n), n ? *std::max_element(a.begin(), a.end()) : 0);
        EXPECT_EQ(C_jorm_minu8_n(a.data(), n), n ? *std::min_element(a.begin(), a.end()) : 255);
        EXPECT_EQ(C_jorm_sumu8_n(a.data(), n), std::accumulate(a.begin(), a.end(), int64_t(0)));
        const std::vector<int16_t> low(n, -32768);
        EXPECT_EQ(C_jorm_sumi16_n(low.data(), n), -32768 * int64_t(n));
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
