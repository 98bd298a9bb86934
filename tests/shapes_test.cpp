// Windows, borders, fill values and input regions against hand-worked values and slow recomputation.
#include "jorm/array.h"
#include "jorm/shapes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>

namespace {

using V4 = std::array<int32_t, 4>;
constexpr int32_t largest = INT32_MAX, smallest = INT32_MIN;

V4 v4(const int32_t *v) { return {v[0], v[1], v[2], v[3]}; }
struct Pair {
    V4 first, second;
    bool operator==(const Pair &) const = default;
};
void PrintTo(const Pair &p, std::ostream *o) {
    for (int32_t x : p.first) *o << x << ' ';
    for (int32_t x : p.second) *o << x << ' ';
}
Pair of(const jorm_seshape *s) { return {v4(s->anchor), v4(s->extent)}; }
Pair of(const jorm_brshape *b) { return {v4(b->low), v4(b->high)}; }
Pair of(const jorm_site &s) { return {v4(s.origin), v4(s.size)}; }

TEST(Seshape, ConstructorsAndParts) {
    jorm_seshape s;
    const int32_t a[] = {1, 0, 3}, e[] = {3, 4, 7};
    EXPECT_EQ(of(__jorm_seshape__$(&s)), (Pair{{0, 2, 2, 0}, {1, 5, 5, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$g1(&s, -3)), (Pair{{0, 0, -1, 0}, {1, 1, -3, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$g2(&s, 4, 7)), (Pair{{0, 2, 3, 0}, {1, 4, 7, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$g3(&s, 3, 4, 7)), (Pair{{1, 2, 3, 0}, {3, 4, 7, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$g11(&s, 9, 7)), (Pair{{0, 0, 9, 0}, {1, 1, 7, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$g22(&s, 1, 2, 4, 7)), (Pair{{0, 1, 2, 0}, {1, 4, 7, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$g33(&s, 5, 1, 2, 3, 4, 7)), (Pair{{5, 1, 2, 0}, {3, 4, 7, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$gv(&s, 2, e)), (Pair{{0, 1, 2, 0}, {1, 3, 4, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$gv$L(&s, JORM_WORD(3), e)), (Pair{{1, 2, 3, 0}, {3, 4, 7, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$gvv(&s, 2, a, e)), (Pair{{0, 1, 0, 0}, {1, 3, 4, 1}}));
    EXPECT_EQ(of(__jorm_seshape__$gvv$L(&s, JORM_WORD(1), a, e)), (Pair{{0, 0, 1, 0}, {1, 1, 3, 1}}));
    EXPECT_EQ(of(jorm_seshape_setvol_$gv(&s, 3, e)), (Pair{{0, 0, 1, 0}, {3, 4, 7, 1}}));
    EXPECT_EQ(of(jorm_seshape_rstanchor_$gn(&s, 2)), (Pair{{0, 2, 3, 0}, {3, 4, 7, 1}}));
    EXPECT_EQ(of(jorm_seshape_setvol_$g1(&s, 9)), (Pair{{0, 2, 3, 0}, {1, 1, 9, 1}}));
    EXPECT_EQ(of(jorm_seshape_rstanchor_$g1(&s)), (Pair{{0, 2, 4, 0}, {1, 1, 9, 1}}));
    EXPECT_EQ(of(jorm_seshape_xsetvol_$g2(&s, 8, 6)), (Pair{{0, 4, 3, 0}, {1, 8, 6, 1}}));
    EXPECT_EQ(of(jorm_seshape_vzero(&s)), (Pair{{0, 4, 3, 0}, {}}));
    EXPECT_EQ(jorm_seshape_empty(&s), 1);
    jorm_seshape_setvol_$g3(&s, 65536, 65536, -2);
    EXPECT_EQ(jorm_seshape_capacity(&s), 0);
    EXPECT_EQ(jorm_seshape_capacity_$Q(&s), 0);
    jorm_seshape_setvol_$g3(&s, 65536, 65536, 2);
    EXPECT_EQ(jorm_seshape_capacity_$Q(&s), int64_t(1) << 33);
    EXPECT_EQ(jorm_seshape_empty(&s), 0);
    EXPECT_EQ(__jorm_seshape__$gvv(nullptr, 3, nullptr, nullptr), nullptr);
}

TEST(Seshape, Adjustment) {
    const Pair default_shape{{0, 2, 2, 0}, {1, 5, 5, 0}};
    const struct {
        int32_t k;
        Pair in, out;
    } cases[] = {
        {3, {{9, 9, 9, 9}, {0, 0, 0, 9}}, default_shape},
        {2, {{0, 0, 0, 0}, {7, 1, 1, 1}}, default_shape},
        {0, {{4, 4, 4, 4}, {9, 9, 9, 9}}, default_shape},
        {3, {{0, 0, 0, 0}, {-29, 1, -9, 1}}, default_shape},
        {2, {{0, -1, 7, 1}, {0, 4, 5, 1}}, {{0, 3, 4, 0}, {0, 4, 5, 0}}},
        {3, {{-1, -9, 5, 0}, {-1, -1, 0, 0}}, {{28, 10, 0, 0}, {29, 19, 1, 0}}},
        {3,
         {{smallest, largest, smallest, 0}, {smallest, largest, 3, 0}},
         {{0, largest - 1, 0, 0}, {1, largest, 3, 0}}},
    };
    const int32_t size[] = {30, 20, 10, 3};
    for (const auto &c : cases) {
        jorm_seshape in, s;
        std::memcpy(&in, &c.in, sizeof in);
        EXPECT_EQ(jorm_seshape__adjust_$gv(&s, &in, c.k, size + 3 - c.k), 1);
        EXPECT_EQ(of(&s), c.out);
        EXPECT_EQ(of(&in), c.in);
        jorm_strel t{}; // without data the same
        std::memcpy(&t, &in, sizeof in);
        EXPECT_EQ(jorm_strel__adjust_$gv$I(&t, c.k, size + 3 - c.k), 1);
        std::memcpy(&s, &t, sizeof s);
        EXPECT_EQ(of(&s), c.out);
    }
}

TEST(Strel, MaskDataStayAndSolidityIsExact) {
    // 2 planes x 3 rows x 4 padded pixels, rows upside down
    uint8_t data[2 * 3 * 8];
    std::memset(data, 0, sizeof data);
    jorm_strel s{{-1, 7, -9, 5}, {}};
    s.mask = {{2, 3, 4, 1}, {2, 3, 4, 1}, {24, -8, 2, 1}, 4, 0, JORM_U8, 0, 16, data};
    const auto at = [&](int z, int y, int x) -> uint8_t & { return data[16 + 24 * z - 8 * y + 2 * x]; };
    for (int i = 0; i < 24; ++i) at(i / 12, i / 4 % 3, i % 4) = 255;
    EXPECT_EQ(jorm_strel_issolid_$v255(&s), 1);
    for (int i = 0; i < 24; ++i) {
        at(i / 12, i / 4 % 3, i % 4) = 254;
        EXPECT_EQ(jorm_sea_issolid_v255(&s.mask), 0);
        at(i / 12, i / 4 % 3, i % 4) = 255;
    }
    const jorm_array mask = s.mask;
    EXPECT_EQ(jorm_strel_adjust_$I(&s, nullptr), 1);
    EXPECT_EQ(v4(s.anchor), (V4{1, 2, 0, 0}));
    EXPECT_EQ(std::memcmp(&mask, &s.mask, sizeof mask), 0);
    s.mask.extent[1] = s.mask.extent[2] = 1;
    jorm_strel_adjust_$g2$I(&s, 9, 9);
    EXPECT_EQ(s.mask.extent[1] * s.mask.extent[2], 1u);
    s.mask.eltype = JORM_S8;
    EXPECT_EQ(jorm_strel_issolid_$v255(&s), 0);
    s.mask = {};
    EXPECT_TRUE(jorm_strel_issolid_$v255(&s) && jorm_strel_issolid_$v255(nullptr));
}

TEST(Brshape, ConstructorsAndSizes) {
    jorm_brshape b;
    const int32_t before[] = {smallest, 2}, after[] = {3, 4}, size[] = {2, 10, 20, 3};
    EXPECT_EQ(of(__jorm_brshape__$g1(&b, 3, 4)), (Pair{{0, 0, -3, 0}, {0, 0, 4, 0}}));
    EXPECT_EQ(of(__jorm_brshape__$g3(&b, 1, 2, 3, 4, 5, 6)), (Pair{{-1, -2, -3, 0}, {4, 5, 6, 0}}));
    EXPECT_EQ(of(__jorm_brshape__$gv$L(&b, JORM_WORD(2), before, after)), (Pair{{0, smallest, -2, 0}, {0, 3, 4, 0}}));
    jorm_seshape s;
    __jorm_brshape__$se(&b, __jorm_seshape__$g22(&s, 0, 3, 4, 5));
    EXPECT_EQ(of(&b), (Pair{{0, 0, -3, 0}, {0, 3, 1, 0}}));
    V4 v, w;
    EXPECT_EQ(v4(jorm_Nvolume_widen_$br(v.data(), size, &b)), (V4{2, 13, 24, 3}));
    EXPECT_EQ(v4(jorm_Nvolume_narrow_$se(w.data(), v.data(), &s)), v4(size));
    EXPECT_EQ(v4(jorm_Nvolume_narrow_$I$br(w.data(), &b)), (V4{2, 7, 16, 3}));
    const jorm_site outer{{0, -2, -3, 9}, {1, 14, 20, 3}}, inner{{0, 0, 1, 9}, {1, 10, 15, 1}};
    EXPECT_EQ(of(__jorm_brshape__$ois(&b, &outer, &inner)), (Pair{{0, -2, -4, 0}, {0, 2, 1, 0}}));
    EXPECT_EQ(jorm_brshape_empty(&b), 0);
    EXPECT_EQ(jorm_brparm_empty(jorm_brparm_zero(&b)), 1);
}

TEST(Brshape, Fitting) {
    const struct {
        int32_t low, high, a, b, new_low, new_high;
    } cases[] = {
        {-4, 4, 13, 10, -2, 1},   {-4, 4, 18, 10, -4, 4},
        {-4, 4, 10, 10, 0, 0},    {-4, 4, 9, 10, 1, 0},
        {-1, 3, 11, 10, 0, 1},    {smallest, largest, largest, 0, -1073741824, 1073741823},
        {-1, -5, 12, 10, -1, -5}, {-1, -5, 10, 10, 0, 0},
        {-5, 1, 13, 10, -2, 1},   {0, 0, smallest, largest, largest, 0},
    };
    for (const auto &c : cases) {
        const jorm_brshape b{{0, 7, c.low, 3}, {0, -7, c.high, 3}};
        jorm_brshape out;
        const int valid = jorm_brshape__adjust_$gv(&out, &b, 1, nullptr, &c.a, nullptr, &c.b);
        EXPECT_EQ(of(&out), (Pair{{0, 7, c.new_low, 0}, {0, -7, c.new_high, 0}}));
        EXPECT_EQ(valid, c.new_low <= 0 && c.new_high >= 0);
    }
    jorm_brshape b{{0, -4, -4, 0}, {0, 4, 4, 0}};
    const jorm_site a{{}, {1, 9, 30, 0}}, inner{{}, {1, 10, 10, 0}};
    EXPECT_EQ(jorm_brshape_adjust(&b, nullptr, &a, &inner), 0); // one bad axis spoils it
    EXPECT_EQ(of(&b), (Pair{{0, 1, -4, 0}, {0, 0, 4, 0}}));
}

TEST(Border, Names) {
    std::set<std::string> names;
    for (uint32_t code = 0; code < 16; ++code) names.insert(jorm_border_str(code + 16));
    EXPECT_EQ(names.size(), 7u);
    EXPECT_STREQ(jorm_border_str(0x17), "reflect101-border");
    EXPECT_STREQ(jorm_border_str(1), "unknown-border");
}

// What one value becomes, by way of long doubles and the rounding of the environment.
int64_t converted(uint32_t type, double x) {
    const long double r = std::rint(static_cast<long double>(x));
    const int64_t v = r >= smallest && r <= largest ? int64_t(r) : smallest;
    const int64_t lo[] = {0, 0, 0, 0, 0, 0, 0, 0, 0, -128, -32768, smallest},
                  hi[] = {0, 255, 65535, largest, 0, 0, 0, 0, 0, 127, 32767, largest};
    return std::clamp(v, lo[type], hi[type]);
}

TEST(FillValues, VectorsOfEveryType) {
    const double pool[] = {254.5,
                           253.5,
                           300,
                           -3,
                           2.5,
                           3e9,
                           -40000,
                           2147483647.5,
                           2147483647.25,
                           -2147483648.5,
                           -2147483649.0,
                           0.5,
                           -0.5,
                           1e300,
                           -1e300,
                           std::numeric_limits<double>::quiet_NaN(),
                           std::numeric_limits<double>::infinity(),
                           1.0 / 3,
                           65535.5,
                           -128.5};
    std::mt19937 rng(3);
    for (uint32_t type = 0; type < 40; ++type)
        for (int32_t n = -1; n < 6; ++n)
            for (int round = 0; round < 20; ++round) {
                const bool formed = (type >= 1 && type <= 4) || (type >= 9 && type <= 15), good = n >= 1 && n <= 4;
                const bool f64 = type == 14, eight = type == 4 || type == 12 || f64;
                double values[6];
                for (double &v : values) v = pool[rng() % std::size(pool)];
                for (size_t bytes : {16, 32, 64}) {
                    unsigned char out[80];
                    std::memset(out, 0xA5, sizeof out);
                    const auto make = bytes == 16   ? jorm_mkifillvalv16
                                      : bytes == 32 ? jorm_mkifillvalv32
                                                    : jorm_mkifillvalv64;
                    const bool wide = bytes > 16 && eight;
                    const int64_t expected = !formed               ? JORM_EINVAL
                                             : wide                ? (f64 && good ? JORM_OK : JORM_ENOTSUP)
                                             : !good               ? JORM_EINVAL
                                             : eight || type == 15 ? JORM_ENOTSUP
                                                                   : JORM_OK;
                    ASSERT_EQ(make(type, out, values, n), expected) << type << ' ' << n << ' ' << bytes;
                    const size_t size = f64 ? 8 : type == 13 ? 4 : size_t(1) << ((type & 7) - 1) % 3;
                    for (size_t i = 0; i < sizeof out / size; ++i) {
                        unsigned char element[8];
                        std::memset(element, 0xA5, 8);
                        if (expected == JORM_OK && (i + 1) * size <= bytes) {
                            // 16 bytes repeat the pixel; what follows repeats n words (f64: 2n), whole pixels
                            size_t at = i * size;
                            while (at >= (f64 ? 32 : 16)) at -= size_t(n) * (f64 ? 8 : 4);
                            const double v = values[at / size % size_t(n)];
                            const float single = float(v);
                            const int64_t whole = type < 12 ? converted(type, v) : 0;
                            std::memcpy(element,
                                        f64          ? (const void *)&v
                                        : type == 13 ? (const void *)&single
                                                     : &whole,
                                        size);
                        }
                        ASSERT_EQ(std::memcmp(out + i * size, element, size), 0)
                            << type << ' ' << n << ' ' << bytes << ' ' << i;
                    }
                }
            }
    double hi[3] = {7, 7, 7}, lo[3] = {7, 7, 7};
    EXPECT_EQ(jorm_defillvals(JORM_S32, hi, lo, 2), 0);
    EXPECT_TRUE(hi[1] == largest && lo[1] == smallest && hi[2] == 7 && lo[2] == 7);
    EXPECT_EQ(jorm_defillvals(JORM_F32, hi, nullptr, 3), 0);
    EXPECT_EQ(hi[2], 1);
    EXPECT_EQ(jorm_defillvals(15, hi, lo, 1), JORM_ENOTSUP);
    EXPECT_EQ(jorm_defillvals(17, hi, lo, 1), JORM_EINVAL);
}

TEST(FillValues, WordsAtAPhase) {
    unsigned char bytes[21];
    for (int i = 0; i < 21; ++i) bytes[i] = static_cast<unsigned char>(i * 37 + 1);
    for (int s = 0; s < 4; ++s) {
        uint32_t w[4], expected[4];
        jorm_readifillvals4x4(&w[0], &w[1], &w[2], &w[3], bytes + 1, s);
        std::memcpy(expected, bytes + 1 + s, sizeof expected);
        EXPECT_EQ(std::memcmp(w, expected, sizeof w), 0);
    }
}

// Pixel by pixel: which of the pixels that a window reads exist.
TEST(Roi, AgainstEnumeration) {
    std::mt19937 rng(4);
    const auto pick = [&](int lo, int hi) { return lo + int(rng() % unsigned(hi - lo + 1)); };
    for (int round = 0; round < 3000; ++round) {
        const V4 view{0, pick(0, 3), pick(0, 3), 0};
        jorm_array a{{1, uint32_t(pick(1, 6)), uint32_t(pick(1, 6)), 3},
                     {1, 9, 9, 3},
                     {243, 27, 3, 1},
                     3,
                     0,
                     JORM_U8,
                     0,
                     view[1] * 27 + view[2] * 3,
                     nullptr};
        const jorm_site roi{{0, pick(-1, 3), pick(-1, 3), 0}, {1, pick(1, 4), pick(1, 4), 3}};
        jorm_seshape s;
        const int h = pick(1, 4), w = pick(1, 4);
        __jorm_seshape__$g22(&s, pick(0, h - 1), pick(0, w - 1), h, w);
        for (uint64_t options : {uint64_t(0), JORM_OPT_OWN_BORDER, JORM_OPT_NO_BORDER}) {
            jorm_site out, work;
            const int complete = jorm_testfiltop_$se(&out, &work, options, &roi, &s, &a);
            bool all = options != JORM_OPT_NO_BORDER;
            for (int i : {1, 2}) {
                const int from = roi.origin[i] - s.anchor[i],
                          to = roi.origin[i] + roi.size[i] + s.extent[i] - s.anchor[i] - 1;
                EXPECT_EQ(work.origin[i], from);
                EXPECT_EQ(work.size[i], to - from);
                const int lo = options ? 0 : -view[size_t(i)], hi = options ? int(a.extent[i]) : lo + 9;
                std::set<int> there;
                for (int x = from; x < to; ++x) x >= lo &&x < hi ? void(there.insert(x)) : void(all = false);
                if (options == JORM_OPT_NO_BORDER)
                    EXPECT_TRUE(out.origin[i] == roi.origin[i] && out.size[i] == roi.size[i]);
                else if (there.empty())
                    EXPECT_LE(out.size[i], 0);
                else
                    EXPECT_TRUE(out.origin[i] == *there.begin() && out.size[i] == int(there.size()));
            }
            EXPECT_EQ(complete, all && options != JORM_OPT_NO_BORDER);
            EXPECT_TRUE(out.size[3] == 3 && work.size[3] == 3);
            V4 o{}, os{}, wo{}, ws{};
            EXPECT_EQ(complete, jorm__testfiltop_$se(options, 2, &o[1], &os[1], &wo[1], &ws[1], roi.origin + 1,
                                                     roi.size + 1, &s, &a));
            EXPECT_TRUE(o[1] == out.origin[1] && os[2] == out.size[2] && wo[2] == work.origin[2] &&
                        ws[1] == work.size[1]);
            EXPECT_EQ(o[3] + os[3] + wo[3] + ws[3] + o[0] + ws[0], 0);
        }
    }
    jorm_site out, work;
    const jorm_site own{{0, 0, 0, 0}, {1, 4, 4, 1}};
    const jorm_seshape huge{{0, largest, smallest, 0}, {1, largest, largest, 0}};
    EXPECT_EQ(jorm_compute_roi_$se(&out, &work, 0, nullptr, &huge, &own, nullptr), 0);
    EXPECT_EQ(jorm_compute_roi_$se(&out, &work, 0, nullptr, nullptr, &own, nullptr), 1);
    EXPECT_EQ(of(out), of(own));
    EXPECT_EQ(jorm_testfiltop_$se(nullptr, nullptr, 0, nullptr, nullptr, nullptr), 0);
}

} // namespace
