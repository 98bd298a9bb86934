// Value ranges against tables of cases and a long-integer oracle.
#include "jorm/vrng.h"

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <random>

bool operator==(const vrng &a, const vrng &b) { // bit for bit, but all NaN are one
    const auto same = [](double x, double y) {
        return std::isnan(x) ? std::isnan(y) : x == y && std::signbit(x) == std::signbit(y);
    };
    return same(a.lo, b.lo) && same(a.hi, b.hi);
}
void PrintTo(const vrng &r, std::ostream *out) { *out << '[' << r.lo << ", " << r.hi << ']'; }

namespace {

const double nan = NAN, inf = INFINITY, f32max = FLT_MAX;

TEST(Vrng, Normalize) {
    struct {
        uint32_t type;
        vrng in, out, quantised;
    } cases[] = {
        {JORM_S32, {nan, 5}, {0, 255}, {0, 255}},       {JORM_F32, {nan, 5}, {0, 1}, {0, 1}},
        {JORM_U16, {nan, 5}, {0, 1}, {0, 1}},           {JORM_U8, {10, 5}, {0, 255}, {0, 255}},
        {JORM_S8, {-inf, 3}, {-128, 127}, {-128, 127}}, {JORM_F32, {inf, inf}, {-f32max, f32max}, {-f32max, f32max}},
        {JORM_F64, {2, 1}, {-inf, inf}, {-inf, inf}},   {JORM_U32, {2, 1}, {0, 4294967295.0}, {0, 4294967295.0}},
        {JORM_U8, {-0.5, 7.25}, {-0.5, 7.25}, {0, 8}},  {JORM_U8, {1.5, inf}, {1.5, inf}, {1, 255}},
        {JORM_F32, {1, nan}, {1, nan}, {1, nan}},       {JORM_S16, {1, nan}, {1, nan}, {1, 32767}},
        {JORM_F64, {0.1, 0.2}, {0.1, 0.2}, {0.1, 0.2}},
    };
    for (const auto &c : cases) {
        vrng r;
        EXPECT_EQ(*jorm_vrng_normalize(c.type, &r, &c.in, nullptr), c.out);
        EXPECT_EQ(*jorm_vrng_normalize_$Q(c.type, &r, &c.in, nullptr), c.quantised);
    }
    vrng three[3] = {{10, 5}, {1.5, 2.5}, {inf, 0}};
    const vrng defaults[3] = {{3.5, 4}, {0, 0}, {7, 6}};
    jorm_vrng_normalize_$cn$IQ(JORM_U8, three, defaults, 3);
    EXPECT_EQ(three[0], (vrng{3.5, 4})); // a default is taken as it is
    EXPECT_EQ(three[1], (vrng{1, 3}));
    EXPECT_EQ(three[2], (vrng{7, 6}));
    EXPECT_EQ(jorm_vrng_normalize_$cn$QS(JORM_U8, nullptr, three, nullptr, 3), nullptr);
}

// Quarters have exact floors and ceilings in integers.
TEST(Vrng, SaturateIntegers) {
    struct {
        uint32_t type;
        int64_t lo, hi;
    } types[] = {{JORM_U8, 0, 255},    {JORM_U16, 0, 65535},      {JORM_U32, 0, INT64_MAX},
                 {JORM_S8, -128, 127}, {JORM_S16, -32768, 32767}, {JORM_S32, INT32_MIN, INT32_MAX}};
    std::mt19937_64 rng(3);
    for (const auto &t : types)
        for (int round = 0; round < 2000; ++round) {
            const int64_t span = int64_t(1) << (rng() % 33);
            const auto quarters = [&] { return int64_t(rng() % uint64_t(2 * span)) - span; };
            const int64_t lo = quarters(), hi = quarters();
            const auto clamp = [&](int64_t v) { return double(std::min(std::max(v, t.lo), t.hi)); };
            vrng r = {double(lo) / 4, double(hi) / 4};
            jorm_vrng_saturate_$I(t.type, &r);
            // Arithmetic shifts round down.
            EXPECT_EQ(r, (vrng{clamp(lo >> 2), clamp(-(-hi >> 2))})) << t.type;
        }
}

TEST(Vrng, SaturateOthers) {
    const vrng wide = {-1e300, 1e300}, tenths = {0.1, 0.2};
    vrng r = {5, 6};
    EXPECT_EQ(*jorm_vrng_saturate(JORM_S32, &r, &wide), (vrng{INT32_MIN, INT32_MAX}));
    EXPECT_EQ(*jorm_vrng_saturate(JORM_F32, &r, &tenths), (vrng{0.1f, 0.2f}));
    for (uint32_t type : {0u, 4u, 5u, 6u, 7u, 8u, 12u, 14u, 15u, 16u, 0x11u})
        EXPECT_EQ(*jorm_vrng_saturate(type, &r, &wide), (vrng{0.1f, 0.2f}));
    vrng four[4] = {{nan, nan}, {-inf, inf}, {2.2, 7.1}, {-3.5, 300.2}};
    jorm_vrng_saturate_$cn$I(JORM_U8, four, 11);
    EXPECT_EQ(four[0], (vrng{0, 255}));
    EXPECT_EQ(four[1], (vrng{0, 255}));
    EXPECT_EQ(four[2], (vrng{2, 8}));
    EXPECT_EQ(four[3], (vrng{0, 255}));
}

TEST(Vrng, Equality) {
    const vrng unit = {0, 1}, near = {0, 1.0000001}, off = {0, 1.0000002}, big = {1e6, 2}, big2 = {1000000.06, 2},
               big3 = {1000000.01, 2};
    EXPECT_TRUE(jorm_vrng_equal(&unit, &near));
    EXPECT_FALSE(jorm_vrng_equal(&unit, &off));
    EXPECT_FALSE(jorm_vrng_equal(&big, &big2));
    EXPECT_TRUE(jorm_vrng_equal(&big, &big3));
    EXPECT_TRUE(jorm_vrng_equal_$S(nullptr, nullptr));
    EXPECT_FALSE(jorm_vrng_equal_$cn$S(&unit, nullptr, 1));
    const vrng a[2] = {{0.5, 2.5}, {9, 1}}, b[2] = {{0, 3}, {0, 255}};
    EXPECT_FALSE(jorm_vrng_equal_$cn(a, b, 2));
    EXPECT_TRUE(jorm_vrng_xequal_$cn(JORM_U8, a, b, 2));
    EXPECT_FALSE(jorm_vrng_xequal_$cn(JORM_S16, a, b, 2));
    EXPECT_FALSE(jorm_vrng_xequal(JORM_F32, a, b));
}

TEST(Vrng, CommonRange) {
    const vrng src[3] = {{1.5, 4}, {nan, 2}, {-2, 3.5}};
    vrng r[3];
    EXPECT_EQ(jorm_vrng_equalize(r, src, 3), r);
    EXPECT_EQ(r[0], (vrng{-2, 4}));
    EXPECT_EQ(r[2], r[0]);
    EXPECT_TRUE(jorm_vrng_equalized(r, 3));
    EXPECT_FALSE(jorm_vrng_equalized(src, 3));
    jorm_vrng_xequalize(JORM_S16, r, src, 3); // the NaN asks for [0, 255]
    EXPECT_EQ(r[1], (vrng{-2, 255}));
    EXPECT_EQ(*jorm_vrng_equalize(r, src, 1), src[0]);
}

TEST(Vrng, Checks) {
    const vrng r[2] = {{0, 255}, {16, 31}}, s[1] = {{-128, 127}}, open[1] = {{0, nan}},
               beyond[2] = {{-129, 0}, {0, 128}};
    EXPECT_TRUE(jorm_vrng_uxchk_$cn(r, 2, 8, 8));
    EXPECT_FALSE(jorm_vrng_uxchk_$cn(r, 2, 7, 8));
    EXPECT_FALSE(jorm_vrng_uxchk_$cn(r, 2, 9, 7)); // the extent of 255 needs 8 bits
    EXPECT_TRUE(jorm_vrng_uxchk_$cn(r + 1, 1, 9, 4));
    EXPECT_TRUE(jorm_vrng_sxchk_$cn(s, 1, 8, 8));
    EXPECT_FALSE(jorm_vrng_sxchk_$cn(s, 1, 7, 8));
    EXPECT_FALSE(jorm_vrng_sxchk_$cn(beyond, 1, 8, 9));
    EXPECT_FALSE(jorm_vrng_sxchk_$cn(beyond + 1, 1, 8, 9));
    EXPECT_FALSE(jorm_vrng_uxchk_$cn(open, 1, 8, 8));
    EXPECT_TRUE(jorm_vrng_diffuxchk_$cn(s, 1, 8));
    EXPECT_FALSE(jorm_vrng_diffuxchk_$cn(s, 1, 7));
    EXPECT_FALSE(jorm_vrng_diffuxchk_$cn(nullptr, 1, 8));
    for (double extent : {-7., 0., 1., 2., 2.5, 256., 1073741824., 3., 255., 5e9, inf, nan}) {
        const vrng e = {0, extent};
        EXPECT_EQ(jorm_vrng_m2chk_$cn(&e, 1), extent <= 2.5 || extent == 256 || extent == 1073741824) << extent;
    }
    EXPECT_TRUE(jorm_vrng_m2chk_$cn(nullptr, 0));
}

TEST(Vrng, Solve) {
    const vrng dst = {10, 30}, src = {-1, 4}, flat = {5, 5};
    double scale, offset;
    EXPECT_EQ(jorm_vrng_solve(&scale, &offset, &dst, &src), 1);
    EXPECT_EQ(scale, 4);
    EXPECT_EQ(offset, 14);
    EXPECT_EQ(jorm_vrng_solve(&scale, &offset, &dst, &flat), 0);
    EXPECT_EQ(scale, 1);
    EXPECT_EQ(offset, 5);
    EXPECT_EQ(jorm_vrng_solve(&scale, &offset, nullptr, &flat), 0);
}

TEST(Vrng, Scale) {
    struct {
        uint32_t type;
        double offset[2], extent[2];
        vrng out[2];
    } cases[] = {
        {JORM_U8, {50, 60}, {200, 200}, {{45, 245}, {55, 255}}},           // shifted down together
        {JORM_U8, {0, 100}, {200, 200}, {{0, 200}, {100, 255}}},           // no room: cut above
        {JORM_S8, {-130, -100}, {20, 30.5}, {{-128, -108}, {-98, -67.5}}}, // shifted up
        {JORM_S8, {-130.5, 0}, {20, 127}, {{-128, -110.5}, {0, 127}}},     // no room: cut below
        {JORM_U8, {-1, 0.5}, {2.5, 300}, {{0, 2}, {0, 255}}},              // both: saturated
        {JORM_U8, {0.5, 1}, {2, 3}, {{0.5, 2.5}, {1, 4}}},                 // fits: kept
        {JORM_F32, {0, -0x1p127}, {1e39, 1}, {{0, f32max}, {-0x1p127, -0x1p127}}},
    };
    for (const auto &c : cases) {
        const vrng src[2] = {{7, 7 + c.extent[0]}, {-4, -4 + 2 * c.extent[1]}};
        const double scales[2] = {1, 0.5};
        vrng dst[2];
        EXPECT_EQ(jorm_vrng_scale_$cn$Q(c.type, dst, src, scales, c.offset, 2), 0);
        EXPECT_EQ(dst[0], c.out[0]);
        EXPECT_EQ(dst[1], c.out[1]);
    }
    vrng same = {3, 5};
    EXPECT_EQ(jorm_vrng_scale_$Q(JORM_U8, &same, &same, 10, 5), 0);
    EXPECT_EQ(same, (vrng{5, 25}));
    for (uint32_t type = 0; type < 20; ++type) {
        const bool served = (type >= 1 && type <= 3) || (type >= 9 && type <= 11) || type == 13;
        const bool known = type == 4 || type == 12 || type == 14 || type == 15;
        vrng r = {1, 2};
        const int32_t status = jorm_vrng_scale_$cn$Q(type, &r, &r, nullptr, nullptr, 1);
        EXPECT_EQ(status, served ? 0 : known ? JORM_ENOTSUP : JORM_EINVAL) << type;
        EXPECT_TRUE(served || r == (vrng{1, 2}));
    }
}

TEST(Vrng, FromExtrema) {
    alignas(4) unsigned char record[196] = {};
    for (int c = 0; c < 4; ++c) {
        const float lo = -1.5f - float(c), hi = 300.25f + float(c);
        std::memcpy(record + 4 + 24 * c + 4, &lo, 4);
        std::memcpy(record + 100 + 24 * c + 4, &hi, 4);
    }
    const auto *mm = reinterpret_cast<const jorm_minmax *>(record);
    vrng r[4];
    EXPECT_EQ(__jorm_vrng__$cn$minmax(r, 4, mm), r);
    EXPECT_EQ(r[3], (vrng{-4.5, 303.25}));
    EXPECT_EQ(*__jorm_vrng__$minmax$Q(JORM_S16, r, mm), (vrng{-2, 301}));
}

} // namespace
