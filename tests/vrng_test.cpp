// Value ranges against tables of cases and a long-integer oracle.
#include "jorm/stats.h"
#include "jorm/vrng.h"
#include "support/picture.hpp"

#include <cfloat>

namespace {

constexpr double f32max = FLT_MAX;
using Ranges = std::vector<vrng>;

} // namespace

bool operator==(const vrng &a, const vrng &b) { return same(a.lo, b.lo) && same(a.hi, b.hi); }
void PrintTo(const vrng &r, std::ostream *out) { *out << '[' << r.lo << ", " << r.hi << ']'; }

namespace {

TEST(Vrng, Normalize) {
    const std::tuple<uint32_t, vrng, vrng, vrng> cases[] = {
        // as it is, normalised, quantised
        {JORM_S32, {nan, 5}, {0, 255}, {0, 255}},       {JORM_F32, {nan, 5}, {0, 1}, {0, 1}},
        {JORM_U16, {nan, 5}, {0, 1}, {0, 1}},           {JORM_U8, {10, 5}, {0, 255}, {0, 255}},
        {JORM_S8, {-inf, 3}, {-128, 127}, {-128, 127}}, {JORM_F32, {inf, inf}, {-f32max, f32max}, {-f32max, f32max}},
        {JORM_F64, {2, 1}, {-inf, inf}, {-inf, inf}},   {JORM_U32, {2, 1}, {0, 4294967295.0}, {0, 4294967295.0}},
        {JORM_U8, {-0.5, 7.25}, {-0.5, 7.25}, {0, 8}},  {JORM_U8, {1.5, inf}, {1.5, inf}, {1, 255}},
        {JORM_F32, {1, nan}, {1, nan}, {1, nan}},       {JORM_S16, {1, nan}, {1, nan}, {1, 32767}},
        {JORM_F64, {0.1, 0.2}, {0.1, 0.2}, {0.1, 0.2}},
    };
    for (const auto &[type, in, out, quantised] : cases) {
        const uint32_t t = type; // structured bindings cannot be captured
        const vrng &from = in;
        const auto expect = [&](const vrng &want, auto... forms) {
            const auto check = [&](auto form) {
                vrng r = from;
                EXPECT_EQ(*form(&r), want);
            };
            (check(forms), ...);
        };
#define FORM(call) [&](vrng *r) { return call; }
        expect(out, FORM(jorm_vrng_normalize(t, r, &from, nullptr)), FORM(jorm_vrng_normalize_$I(t, r, nullptr)),
               FORM(jorm_vrng_normalize_$cn(t, r, &from, nullptr, 1)),
               FORM(jorm_vrng_normalize_$cn$I(t, r, nullptr, 1)));
        expect(quantised, FORM(jorm_vrng_normalize_$Q(t, r, &from, nullptr)),
               FORM(jorm_vrng_normalize_$QS(t, r, &from, nullptr)), FORM(jorm_vrng_normalize_$IQ(t, r, nullptr)),
               FORM(jorm_vrng_normalize_$IQS(t, r, nullptr)), FORM(jorm_vrng_normalize_$cn$Q(t, r, &from, nullptr, 1)),
               FORM(jorm_vrng_normalize_$cn$QS(t, r, &from, nullptr, 1)),
               FORM(jorm_vrng_normalize_$cn$IQ(t, r, nullptr, 1)), FORM(jorm_vrng_normalize_$cn$IQS(t, r, nullptr, 1)));
#undef FORM
    }
    Ranges three = {{10, 5}, {1.5, 2.5}, {inf, 0}};
    const Ranges defaults = {{3.5, 4}, {0, 0}, {7, 6}};
    jorm_vrng_normalize_$cn$IQ(JORM_U8, three.data(), defaults.data(), 3);
    EXPECT_EQ(three, (Ranges{{3.5, 4}, {1, 3}, {7, 6}})); // a default is taken as it is
    EXPECT_EQ(jorm_vrng_normalize_$cn$QS(JORM_U8, nullptr, three.data(), nullptr, 3), nullptr);
}

// Quarters have exact floors and ceilings in integers.
TEST(Vrng, SaturateIntegers) {
    Random r(3);
    for (uint32_t type : {JORM_U8, JORM_U16, JORM_U32, JORM_S8, JORM_S16, JORM_S32})
        for (int round = 0; round < 2000; ++round) {
            const int64_t span = int64_t(1) << r.in(0, 32);
            std::uniform_int_distribution<int64_t> quarters(-span, span - 1);
            const int64_t lo = quarters(r), hi = quarters(r);
            const auto clamp = [&](int64_t v) { return std::clamp(double(v), lowest(type), highest(type)); };
            vrng range = {double(lo) / 4, double(hi) / 4};
            jorm_vrng_saturate_$I(type, &range);
            EXPECT_EQ(range, (vrng{clamp(lo >> 2), clamp(-(-hi >> 2))})) << type; // arithmetic shifts round down
        }
}

TEST(Vrng, SaturateOthers) {
    const vrng wide = {-1e300, 1e300}, tenths = {0.1, 0.2};
    vrng r = {5, 6};
    EXPECT_EQ(*jorm_vrng_saturate(JORM_S32, &r, &wide), (vrng{INT32_MIN, INT32_MAX}));
    EXPECT_EQ(*jorm_vrng_saturate(JORM_F32, &r, &tenths), (vrng{0.1f, 0.2f}));
    for (uint32_t type : {0u, 4u, 5u, 6u, 7u, 8u, 12u, 14u, 15u, 16u, 0x11u})
        EXPECT_EQ(*jorm_vrng_saturate(type, &r, &wide), (vrng{0.1f, 0.2f}));
    Ranges four = {{nan, nan}, {-inf, inf}, {2.2, 7.1}, {-3.5, 300.2}};
    jorm_vrng_saturate_$cn$I(JORM_U8, four.data(), 11);
    EXPECT_EQ(four, (Ranges{{0, 255}, {0, 255}, {2, 8}, {0, 255}}));
}

TEST(Vrng, Equality) {
    const vrng unit = {0, 1}, near = {0, 1.0000001}, off = {0, 1.0000002}, big = {1e6, 2}, big2 = {1000000.06, 2},
               big3 = {1000000.01, 2};
    const vrng a[2] = {{0.5, 2.5}, {9, 1}}, b[2] = {{0, 3}, {0, 255}};
    expect_each(1, {jorm_vrng_equal(&unit, &near), jorm_vrng_equal(&big, &big3), jorm_vrng_equal_$S(nullptr, nullptr),
                    jorm_vrng_equal_$cn(a, a, 2), jorm_vrng_xequal_$cn(JORM_U8, a, b, 2),
                    jorm_vrng_xequal_$cn$S(JORM_U8, a, b, 2), jorm_vrng_xequal_$S(JORM_U8, a, b),
                    jorm_vrng_xequal(JORM_U8, nullptr, nullptr)});
    expect_each(0, {jorm_vrng_equal(&unit, &off), jorm_vrng_equal(&big, &big2),
                    jorm_vrng_equal_$cn$S(&unit, nullptr, 1), jorm_vrng_equal_$cn(a, b, 2),
                    jorm_vrng_xequal_$cn(JORM_S16, a, b, 2), jorm_vrng_xequal(JORM_F32, a, b)});
}

TEST(Vrng, CommonRange) {
    const Ranges src = {{1.5, 4}, {nan, 2}, {-2, 3.5}};
    Ranges r(3);
    EXPECT_EQ(jorm_vrng_equalize(r.data(), src.data(), 3), r.data());
    EXPECT_EQ(r, Ranges(3, {-2, 4}));
    EXPECT_TRUE(jorm_vrng_equalized(r.data(), 3) && !jorm_vrng_equalized(src.data(), 3));
    jorm_vrng_xequalize(JORM_S16, r.data(), src.data(), 3); // the NaN asks for [0, 255]
    EXPECT_EQ(r, Ranges(3, {-2, 255}));
    EXPECT_EQ(*jorm_vrng_equalize(r.data(), src.data(), 1), src[0]);
}

TEST(Vrng, Checks) {
    const vrng r[2] = {{0, 255}, {16, 31}}, s[1] = {{-128, 127}}, open[1] = {{0, nan}},
               beyond[2] = {{-129, 0}, {0, 128}};
    expect_each(1,
                {jorm_vrng_uxchk_$cn(r, 2, 8, 8), jorm_vrng_uxchk_$cn(r + 1, 1, 9, 4), jorm_vrng_sxchk_$cn(s, 1, 8, 8),
                 jorm_vrng_diffuxchk_$cn(s, 1, 8), jorm_vrng_m2chk_$cn(nullptr, 0)});
    expect_each(0, {jorm_vrng_uxchk_$cn(r, 2, 7, 8), jorm_vrng_uxchk_$cn(r, 2, 9, 7), // the extent of 255 needs 8 bits
                    jorm_vrng_sxchk_$cn(s, 1, 7, 8), jorm_vrng_sxchk_$cn(beyond, 1, 8, 9),
                    jorm_vrng_sxchk_$cn(beyond + 1, 1, 8, 9), jorm_vrng_uxchk_$cn(open, 1, 8, 8),
                    jorm_vrng_diffuxchk_$cn(s, 1, 7), jorm_vrng_diffuxchk_$cn(nullptr, 1, 8)});
    for (double extent : {-7., 0., 1., 2., 2.5, 256., 1073741824., 3., 255., 5e9, inf, nan}) {
        const vrng e = {0, extent};
        EXPECT_EQ(jorm_vrng_m2chk_$cn(&e, 1), extent <= 2.5 || extent == 256 || extent == 1073741824) << extent;
    }
}

TEST(Vrng, Solve) {
    const vrng dst = {10, 30}, src = {-1, 4}, flat = {5, 5};
    double scale, offset;
    EXPECT_EQ(jorm_vrng_solve(&scale, &offset, &dst, &src), 1);
    EXPECT_TRUE(scale == 4 && offset == 14) << scale << ' ' << offset;
    EXPECT_EQ(jorm_vrng_solve(&scale, &offset, &dst, &flat), 0);
    EXPECT_TRUE(scale == 1 && offset == 5) << scale << ' ' << offset;
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
    jorm_minmax mm = {};
    for (int c = 0; c < 4; ++c) mm.min[c].f = -1.5f - float(c), mm.max[c].f = 300.25f + float(c);
    vrng r[4];
    EXPECT_EQ(__jorm_vrng__$cn$minmax(r, 4, &mm), r);
    EXPECT_EQ(r[3], (vrng{-4.5, 303.25}));
    EXPECT_EQ(*__jorm_vrng__$minmax$Q(JORM_S16, r, &mm), (vrng{-2, 301}));
    EXPECT_EQ(*__jorm_vrng__$minmax(r, &mm), (vrng{-1.5, 300.25}));
    EXPECT_EQ(__jorm_vrng__$cn$minmax$Q(JORM_S16, r, 4, nullptr)[0], (vrng{-1.5, 300.25}));
    EXPECT_EQ(__jorm_vrng__$cn$minmax$Q(JORM_U8, r, 4, &mm)[3], (vrng{0, 255}));
}

TEST(Vrng, FromBounds) {
    vrng r[4];
    rngf64 d;
    rngf32 f;
    EXPECT_EQ(*__jorm_vrng__$2(r, -1.5, 7), (vrng{-1.5, 7}));
    EXPECT_EQ(*__jorm_vrng__$(r), (vrng{0, 0}));
    EXPECT_EQ(*__jorm_vrng__$2$Q(JORM_S16, r, -1.5, 7.5), (vrng{-2, 8}));
    EXPECT_EQ(__jorm_vrng__$cn$2(r, 11, -1.5, 7.5)[3], (vrng{-1.5, 7.5}));
    EXPECT_EQ(__jorm_vrng__$cn$2$Q(JORM_U8, r, 11, -1.5, 7.5)[3], (vrng{0, 8}));
    EXPECT_EQ(jorm_vrng_saturate_$cn(JORM_U8, r + 1, r, 3), r + 1);
    EXPECT_TRUE(__jorm_rngf64__$2(&d, 1, 2)->lo == 1 && d.hi == 2 && !__jorm_rngf64__$2(nullptr, 1, 2));
    EXPECT_TRUE(__jorm_rngf32__$2(&f, 1, 2)->lo == 1 && f.hi == 2 && !__jorm_rngf32__$2(nullptr, 1, 2));
    double scales[2], offsets[2];
    const vrng to[] = {{10, 30}, {0, 1}}, from[] = {{-1, 4}, {0, 2}};
    jorm_vrng_solve_$cn(scales, offsets, to, from, 2);
    EXPECT_TRUE(scales[0] == 4 && offsets[0] == 14 && scales[1] == 0.5 && offsets[1] == 0);
}

} // namespace
