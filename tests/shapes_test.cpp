// Windows, borders, fill values and input regions against hand-worked values and slow recomputation.
#include "jorm/shapes.h"
#include "support/picture.hpp"

#include <set>

namespace {

using Pair = std::pair<Index, Index>;
constexpr int32_t largest = INT32_MAX, smallest = INT32_MIN;

Index slots(const int32_t *v) { return {v[0], v[1], v[2], v[3]}; }
Pair of(const jorm_seshape *s) { return {slots(s->anchor), slots(s->extent)}; }
Pair of(const jorm_brshape *b) { return {slots(b->low), slots(b->high)}; }
Pair of(const jorm_site &s) { return {slots(s.origin), slots(s.size)}; }

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
    const Pair standard{{0, 2, 2, 0}, {1, 5, 5, 0}};
    const Pair outside{{smallest, largest, smallest, 0}, {smallest, largest, 3, 0}};
    const std::tuple<int32_t, Pair, Pair> cases[] = {
        {3, {{9, 9, 9, 9}, {0, 0, 0, 9}}, standard},
        {2, {{0, 0, 0, 0}, {7, 1, 1, 1}}, standard},
        {0, {{4, 4, 4, 4}, {9, 9, 9, 9}}, standard},
        {3, {{0, 0, 0, 0}, {-29, 1, -9, 1}}, standard},
        {2, {{0, -1, 7, 1}, {0, 4, 5, 1}}, {{0, 3, 4, 0}, {0, 4, 5, 0}}},
        {3, {{-1, -9, 5, 0}, {-1, -1, 0, 0}}, {{28, 10, 0, 0}, {29, 19, 1, 0}}},
        {3, outside, {{0, largest - 1, 0, 0}, {1, largest, 3, 0}}},
    };
    const int32_t size[] = {30, 20, 10, 3};
    for (const auto &[k, in, out] : cases) {
        jorm_seshape before, s;
        jorm_strel t{}; // without data the same
        std::memcpy(&before, &in, sizeof before);
        std::memcpy(&t, &in, sizeof before);
        EXPECT_EQ(jorm_seshape__adjust_$gv(&s, &before, k, size + 3 - k), 1);
        EXPECT_EQ(of(&s), out);
        EXPECT_EQ(of(&before), in);
        EXPECT_EQ(jorm_strel__adjust_$gv$I(&t, k, size + 3 - k), 1);
        std::memcpy(&s, &t, sizeof s);
        EXPECT_EQ(of(&s), out);
    }
}

TEST(Strel, MaskDataStayAndSolidityIsExact) {
    uint8_t data[2 * 3 * 8] = {}; // 2 planes x 3 rows x 4 padded pixels, rows upside down
    jorm_strel s{{-1, 7, -9, 5}, {}};
    s.mask = {{2, 3, 4, 1}, {2, 3, 4, 1}, {24, -8, 2, 1}, 4, 0, JORM_U8, 0, 16, data};
    const Index size = {2, 3, 4, 1};
    each(size, [&](const Index &i) { *element(s.mask, i) = 255; });
    EXPECT_EQ(jorm_strel_issolid_$v255(&s), 1);
    each(size, [&](const Index &i) {
        *element(s.mask, i) = 254;
        EXPECT_EQ(jorm_sea_issolid_v255(&s.mask), 0);
        *element(s.mask, i) = 255;
    });
    const jorm_array mask = s.mask;
    EXPECT_EQ(jorm_strel_adjust_$I(&s, nullptr), 1);
    EXPECT_EQ(slots(s.anchor), (Index{1, 2, 0, 0}));
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
    Index v, w;
    EXPECT_EQ(slots(jorm_Nvolume_widen_$br(v.data(), size, &b)), (Index{2, 13, 24, 3}));
    EXPECT_EQ(slots(jorm_Nvolume_narrow_$se(w.data(), v.data(), &s)), slots(size));
    EXPECT_EQ(slots(jorm_Nvolume_narrow_$I$br(w.data(), &b)), (Index{2, 7, 16, 3}));
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

TEST(FillValues, VectorsOfEveryType) {
    const double pool[] = {254.5,         253.5,         300,           -3,    2.5,  3e9,   -40000, 2147483647.5,
                           2147483647.25, -2147483648.5, -2147483649.0, 0.5,   -0.5, 1e300, -1e300, nan,
                           inf,           1.0 / 3,       65535.5,       -128.5};
    const auto statuses = [](uint32_t type, int32_t n, size_t bytes) {
        const bool formed = (type >= 1 && type <= 4) || (type >= 9 && type <= 15), good = n >= 1 && n <= 4;
        const bool f64 = type == JORM_F64, eight = formed && bytes_of(type) == 8;
        if (!formed) return JORM_EINVAL;
        if (bytes > 16 && eight) return f64 && good ? JORM_OK : JORM_ENOTSUP;
        return !good ? JORM_EINVAL : eight || type == 15 ? JORM_ENOTSUP : JORM_OK;
    };
    Random r(3);
    for (uint32_t type = 0; type < 40; ++type)
        for (int32_t n = -1; n < 6; ++n)
            for (int round = 0; round < 20; ++round) {
                double values[6];
                for (double &v : values) v = r.of(pool);
                for (size_t bytes : {16, 32, 64}) {
                    auto *const make = bytes == 16   ? jorm_mkifillvalv16
                                       : bytes == 32 ? jorm_mkifillvalv32
                                                     : jorm_mkifillvalv64;
                    Bytes out(80, 0xA5), want = out;
                    const auto status = statuses(type, n, bytes);
                    ASSERT_EQ(make(type, out.data(), values, n), status) << type << ' ' << n << ' ' << bytes;
                    // 16 bytes repeat the pixel; what follows repeats n words (f64: 32 bytes and 2n), whole pixels.
                    const size_t size = size_t(bytes_of(type)), words = type == JORM_F64 ? 8 : 4;
                    for (size_t i = 0; status == JORM_OK && i < bytes; i += size) {
                        size_t at = i;
                        while (at >= 4 * words) at -= size_t(n) * words;
                        store(type, &want[i], converted(type, values[at / size % size_t(n)]));
                    }
                    ASSERT_EQ(out, want) << type << ' ' << n << ' ' << bytes;
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
    Random r(4);
    Bytes bytes(24);
    scramble(r, bytes);
    for (int s = 0; s < 4; ++s) {
        uint32_t w[4];
        jorm_readifillvals4x4(&w[0], &w[1], &w[2], &w[3], &bytes[1], s);
        EXPECT_EQ(std::memcmp(w, &bytes[size_t(1 + s)], sizeof w), 0);
    }
}

// Pixel by pixel: which of the pixels that a window reads exist.
TEST(Roi, AgainstEnumeration) {
    Random r(5);
    for (int round = 0; round < 3000; ++round) {
        const int view[] = {0, r.in(0, 3), r.in(0, 3)};
        const jorm_array a{{1, uint32_t(r.in(1, 6)), uint32_t(r.in(1, 6)), 3},
                           {1, 9, 9, 3},
                           {243, 27, 3, 1},
                           3,
                           0,
                           JORM_U8,
                           0,
                           view[1] * 27 + view[2] * 3,
                           nullptr};
        const jorm_site roi{{0, r.in(-1, 3), r.in(-1, 3), 0}, {1, r.in(1, 4), r.in(1, 4), 3}};
        const int h = r.in(1, 4), w = r.in(1, 4), y = r.in(0, h - 1), x = r.in(0, w - 1);
        jorm_seshape s;
        __jorm_seshape__$g22(&s, y, x, h, w);
        for (uint64_t options : {uint64_t(0), JORM_OPT_OWN_BORDER, JORM_OPT_NO_BORDER}) {
            const bool borderless = options == JORM_OPT_NO_BORDER;
            jorm_site out, work, flat{}, flat_work{};
            const int complete = jorm_testfiltop_$se(&out, &work, options, &roi, &s, &a);
            bool all = !borderless;
            for (int i : {1, 2}) {
                const int from = roi.origin[i] - s.anchor[i], length = roi.size[i] + s.extent[i] - 1;
                EXPECT_TRUE(work.origin[i] == from && work.size[i] == length);
                const int low = options ? 0 : -view[i], extent = options ? int(a.extent[i]) : 9;
                const int there = overlap(extent, from - low, length);
                all &= there == length;
                if (borderless)
                    EXPECT_TRUE(out.origin[i] == roi.origin[i] && out.size[i] == roi.size[i]);
                else
                    EXPECT_TRUE(there ? out.origin[i] == std::max(from, low) && out.size[i] == there
                                      : out.size[i] <= 0);
            }
            EXPECT_EQ(complete, all);
            EXPECT_TRUE(out.size[3] == 3 && work.size[3] == 3);
            // On vectors, of which only the two slots are written.
            EXPECT_EQ(complete, jorm__testfiltop_$se(options, 2, &flat.origin[1], &flat.size[1], &flat_work.origin[1],
                                                     &flat_work.size[1], roi.origin + 1, roi.size + 1, &s, &a));
            for (jorm_site *site : {&out, &work})
                for (int i : {0, 3}) site->origin[i] = site->size[i] = 0;
            EXPECT_TRUE(of(flat) == of(out) && of(flat_work) == of(work));
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
