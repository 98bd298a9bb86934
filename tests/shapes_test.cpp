// Windows, borders, fill values and input regions against hand-worked values and slow recomputation.
#include "jorm/shapes.h"
#include "support/picture.hpp"

namespace {

using Pair = std::pair<Index, Index>;
constexpr int32_t largest = INT32_MAX, smallest = INT32_MIN;

Index slots(const int32_t *v) { return {v[0], v[1], v[2], v[3]}; }
Pair of(const jorm_seshape *s) { return {slots(s->anchor), slots(s->extent)}; }
Pair of(const jorm_brshape *b) { return {slots(b->low), slots(b->high)}; }
Pair of(const jorm_site &s) { return {slots(s.origin), slots(s.size)}; }

// All forms of one call on the same record: the result, and that null gives null.
template <class S, class... Forms> void expect_forms(const S &old, const Pair &want, Forms... forms) {
    int at = 0;
    const auto check = [&](auto form) {
        S s = old;
        EXPECT_EQ(form(&s), &s);
        EXPECT_EQ(of(&s), want) << "form " << at++;
        EXPECT_EQ(form(static_cast<S *>(nullptr)), nullptr);
    };
    (check(forms), ...);
}
#define FORM(call) [&](auto *s) { return call; }

TEST(Seshape, FormsOfConstructorsAndParts) {
    const jorm_seshape old{{7, -8, 9, 6}, {5, 5, 5, 5}}, sized{{7, -8, 9, 6}, {8, -3, 6, 1}};
    const int32_t e[] = {8, -3, 6}, a[] = {2, 1, 3};
    const auto vectors = [&](int k, const Pair &centred, const Pair &kept, const Pair &placed, const Pair &moved) {
        const int32_t *const v = e + 3 - k, *const u = a + 3 - k;
        const uint32_t word = JORM_WORD(k);
        expect_forms(old, centred, FORM(__jorm_seshape__$gv(s, k, v)), FORM(__jorm_seshape__$gv$L(s, word, v)),
                     FORM(jorm_seshape_xsetvol_$gv(s, k, v)), FORM(jorm_seshape_xsetvol_$gv$L(s, word, v)));
        expect_forms(old, kept, FORM(jorm_seshape_setvol_$gv(s, k, v)), FORM(jorm_seshape_setvol_$gv$L(s, word, v)));
        expect_forms(old, placed, FORM(__jorm_seshape__$gvv(s, k, u, v)), FORM(__jorm_seshape__$gvv$L(s, word, u, v)));
        expect_forms(sized, moved, FORM(jorm_seshape_rstanchor_$gn(s, k)));
    };
    const Index e1 = {1, 1, 6, 1}, e2 = {1, -3, 6, 1}, e3 = {8, -3, 6, 1}, was = {7, -8, 9, 6};
    vectors(0, {{}, {1, 1, 1, 1}}, {was, {1, 1, 1, 1}}, {{}, {1, 1, 1, 1}}, {was, e3});
    vectors(1, {{0, 0, 3, 0}, e1}, {was, e1}, {{0, 0, 3, 0}, e1}, {{7, -8, 3, 6}, e3});
    vectors(2, {{0, -1, 3, 0}, e2}, {was, e2}, {{0, 1, 3, 0}, e2}, {{7, -1, 3, 6}, e3});
    vectors(3, {{4, -1, 3, 0}, e3}, {was, e3}, {{2, 1, 3, 0}, e3}, {{4, -1, 3, 6}, e3});
    expect_forms(old, {{0, 0, 3, 0}, e1}, FORM(__jorm_seshape__$g1(s, 6)), FORM(jorm_seshape_xsetvol_$g1(s, 6)),
                 FORM(__jorm_seshape__$g11(s, 3, 6)));
    expect_forms(old, {{0, -1, 3, 0}, e2}, FORM(__jorm_seshape__$g2(s, -3, 6)),
                 FORM(jorm_seshape_xsetvol_$g2(s, -3, 6)), FORM(__jorm_seshape__$g22(s, -1, 3, -3, 6)));
    expect_forms(old, {{4, -1, 3, 0}, e3}, FORM(__jorm_seshape__$g3(s, 8, -3, 6)),
                 FORM(jorm_seshape_xsetvol_$g3(s, 8, -3, 6)), FORM(__jorm_seshape__$g33(s, 4, -1, 3, 8, -3, 6)));
    expect_forms(old, {was, e1}, FORM(jorm_seshape_setvol_$g1(s, 6)));
    expect_forms(old, {was, e2}, FORM(jorm_seshape_setvol_$g2(s, -3, 6)));
    expect_forms(old, {was, e3}, FORM(jorm_seshape_setvol_$g3(s, 8, -3, 6)));
    expect_forms(sized, {{7, -8, 3, 6}, e3}, FORM(jorm_seshape_rstanchor_$g1(s)));
    expect_forms(sized, {{7, -1, 3, 6}, e3}, FORM(jorm_seshape_rstanchor_$g2(s)));
    expect_forms(sized, {{4, -1, 3, 6}, e3}, FORM(jorm_seshape_rstanchor_$g3(s)), FORM(jorm_seshape_rstanchor(s)));
    expect_forms(old, {{0, 2, 2, 0}, {1, 5, 5, 1}}, FORM(__jorm_seshape__$(s)));
    expect_forms(old, {{}, {5, 5, 5, 5}}, FORM(jorm_seshape_azero(s)));
    expect_forms(old, {was, {}}, FORM(jorm_seshape_vzero(s)));
    expect_forms(old, {}, FORM(jorm_seshape_zero(s)));
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
        const int axes = k; // a structured binding cannot be captured
        const int32_t *const n = size + 3 - k;
        const auto check = [&](auto old, auto adjust, auto in_place) {
            std::memcpy(&old, &in, sizeof in);
            auto copied = old;
            EXPECT_TRUE(adjust(&copied, &old) == 1 && std::memcmp(&old, &in, sizeof in) == 0);
            EXPECT_TRUE(in_place(&old) == 1 && std::memcmp(&old, &out, sizeof out) == 0);
            EXPECT_EQ(std::memcmp(&copied, &out, sizeof out), 0);
            EXPECT_EQ(in_place(static_cast<decltype(&old)>(nullptr)), 0);
        };
#define ADJUST(call) [&](auto *d, const auto *s) { return call; }
        const jorm_seshape window{};
        const jorm_strel masked{}; // without data the same
        check(window, ADJUST(jorm_seshape__adjust_$gv(d, s, axes, n)), FORM(jorm_seshape__adjust_$gv$I(s, axes, n)));
        check(masked, ADJUST(jorm_strel__adjust_$gv(d, s, axes, n)), FORM(jorm_strel__adjust_$gv$I(s, axes, n)));
        if (k == 3) check(window, ADJUST(jorm_seshape_adjust(d, s, n)), FORM(jorm_seshape_adjust_$I(s, n)));
        if (k == 3) check(masked, ADJUST(jorm_strel_adjust(d, s, n)), FORM(jorm_strel_adjust_$I(s, n)));
        if (k != 2) continue;
        check(window, ADJUST(jorm_seshape_adjust_$g2(d, s, 20, 10)), FORM(jorm_seshape_adjust_$g2$I(s, 20, 10)));
        check(masked, ADJUST(jorm_strel_adjust_$g2(d, s, 20, 10)), FORM(jorm_strel_adjust_$g2$I(s, 20, 10)));
#undef ADJUST
    }
}

TEST(Strel, LikeAWindow) {
    const struct {
        int32_t d, h, w, empty, capacity;
        int64_t guarded;
    } cases[] = {{2, 3, 4, 0, 24, 24},
                 {65536, 65536, 2, 0, 0, int64_t(1) << 33},
                 {65536, 65536, -2, 1, 0, 0},
                 {0, 3, 4, 1, 0, 0},
                 {-1, -1, 7, 1, 7, 0}};
    for (const auto &c : cases) {
        jorm_seshape s{{1, 2, 3, 4}, {c.d, c.h, c.w, 1}};
        jorm_strel t{};
        std::memcpy(&t, &s, sizeof s);
        expect_each(c.empty, {jorm_seshape_empty(&s), jorm_strel_empty(&t)});
        expect_each(c.capacity, {jorm_seshape_capacity(&s), jorm_strel_capacity(&t)});
        expect_each(c.guarded, {jorm_seshape_capacity_$Q(&s), jorm_strel_capacity_$Q(&t)});
        EXPECT_EQ(slots(jorm_strel_rstanchor(&t)->anchor), (Index{c.d / 2, c.h / 2, c.w / 2, 4}));
        EXPECT_EQ(slots(jorm_strel_azero(&t)->anchor), Index{});
    }
    expect_each(0, {jorm_seshape_empty(nullptr), jorm_seshape_capacity(nullptr), jorm_seshape_capacity_$Q(nullptr),
                    jorm_strel_empty(nullptr), jorm_strel_capacity(nullptr), jorm_strel_capacity_$Q(nullptr)});
}

// Masks of every type with 2 planes, 3 rows upside down and 4 pixels, one of which may be less than 255.
TEST(Strel, SolidityIsExact) {
    Random r(1);
    const Index size = {2, 3, 4, 1};
    for (uint32_t type = 0; type < 16; ++type) {
        const bool numbers = (type >= JORM_U8 && type <= JORM_U64) || (type > JORM_S8 && type <= JORM_F64);
        const int32_t bytes = bytes_of(type);
        Bytes data(size_t(2 * 3 * 5 * bytes) + 1);
        jorm_strel s{{-1, 7, -9, 5}, {}};
        s.mask = {{2, 3, 4, 1}, {2, 3, 4, 1}, {15 * bytes, -5 * bytes, bytes, 0}, 4, 0, type, 0,
                  10 * bytes,   data.data()};
        const auto paint = [&](const Index &i, double v) {
            const int64_t whole = int64_t(v);
            std::memcpy(element(s.mask, i), &whole, size_t(bytes));
            if (type == JORM_F32 || type == JORM_F64) store(type, element(s.mask, i), v);
        };
        each(size, [&](const Index &i) { paint(i, 255); });
        EXPECT_EQ(jorm_strel_issolid_$v255(&s), numbers) << type;
        each(size, [&](const Index &i) {
            paint(i, 254);
            EXPECT_EQ(jorm_sea_issolid_v255(&s.mask), 0) << type;
            paint(i, 255);
        });
        const jorm_array mask = s.mask;
        EXPECT_EQ(jorm_strel_adjust_$I(&s, nullptr), 1); // moves the anchor alone
        EXPECT_EQ(slots(s.anchor), (Index{1, 2, 0, 0}));
        EXPECT_EQ(std::memcmp(&mask, &s.mask, sizeof mask), 0);
    }
    const jorm_strel none = {};
    EXPECT_TRUE(jorm_strel_issolid_$v255(&none) && jorm_strel_issolid_$v255(nullptr));
}

TEST(Brshape, FormsOfConstructors) {
    const jorm_brshape old{{9, 9, 9, 9}, {9, 9, 9, 9}};
    const int32_t before[] = {smallest, 2, 3}, after[] = {4, 5, 6};
    const Pair made[] = {
        {{}, {}}, {{0, 0, -3, 0}, {0, 0, 6, 0}}, {{0, -2, -3, 0}, {0, 5, 6, 0}}, {{smallest, -2, -3, 0}, {4, 5, 6, 0}}};
    for (int k = 0; k <= 3; ++k)
        expect_forms(old, made[k], FORM(__jorm_brshape__$gv(s, k, before + 3 - k, after + 3 - k)),
                     FORM(__jorm_brshape__$gv$L(s, JORM_WORD(k), before + 3 - k, after + 3 - k)));
    expect_forms(old, made[1], FORM(__jorm_brshape__$g1(s, 3, 6)));
    expect_forms(old, made[2], FORM(__jorm_brshape__$g2(s, 2, 3, 5, 6)));
    expect_forms(old, made[3], FORM(__jorm_brshape__$g3(s, smallest, 2, 3, 4, 5, 6)));
    expect_forms(old, {}, FORM(__jorm_brshape__$(s)), FORM(jorm_brshape_zero(s)), FORM(jorm_brparm_zero(s)),
                 FORM(__jorm_brshape__$se(s, nullptr)));
    const jorm_seshape window{{0, 0, 3, 7}, {1, 4, 5, 7}};
    expect_forms(old, {{0, 0, -3, 0}, {0, 3, 1, 0}}, FORM(__jorm_brshape__$se(s, &window)),
                 FORM(__jorm_brparm__$se(s, &window)));
    const jorm_site outer{{0, -2, -3, 9}, {1, 14, 20, 3}}, inner{{0, 0, 1, 9}, {1, 10, 15, 1}};
    expect_forms(old, {{0, -2, -4, 0}, {0, 2, 1, 0}}, FORM(__jorm_brshape__$ois(s, &outer, &inner)),
                 FORM(jorm_brparm__compute_$gv(s, 3, outer.origin, outer.size, inner.origin, inner.size)));
    expect_forms(
        old, {{9, -2, -4, 0}, {9, 2, 1, 0}}, // the other axis stays
        FORM(jorm_brshape__compute_$gv(s, 2, outer.origin + 1, outer.size + 1, inner.origin + 1, inner.size + 1)));
    const jorm_brshape none{}, one{{}, {0, 0, 0, 1}};
    expect_each(1, {jorm_brshape_empty(&none), jorm_brparm_empty(&none)});
    expect_each(0, {jorm_brshape_empty(&one), jorm_brparm_empty(&old), jorm_brshape_empty(nullptr)});
}

TEST(Brshape, WidenedSizesNarrowBack) {
    const Index v = {smallest, largest, 30, 40}, wide = {largest, largest + (-9 - 1), 36, 40};
    const jorm_seshape s = {{1, -2, 3, 4}, {0, -9, 7, 5}};
    jorm_brshape b;
    __jorm_brshape__$se(&b, &s);
    const auto check = [&](auto widen, auto widen_in_place, auto narrow, auto narrow_in_place, const auto *by) {
        Index out, in_place = v;
        EXPECT_EQ(slots(widen(out.data(), v.data(), by)), wide);
        EXPECT_EQ(slots(widen_in_place(in_place.data(), by)), wide);
        EXPECT_EQ(slots(narrow(out.data(), wide.data(), by)), v);
        EXPECT_EQ(slots(narrow_in_place(in_place.data(), by)), v);
        EXPECT_EQ(slots(narrow(out.data(), wide.data(), nullptr)), wide);
        EXPECT_EQ(widen(nullptr, v.data(), by), nullptr);
    };
    check(jorm_Nvolume_widen_$br, jorm_Nvolume_widen_$I$br, jorm_Nvolume_narrow_$br, jorm_Nvolume_narrow_$I$br, &b);
    check(jorm_Nvolume_widen_$se, jorm_Nvolume_widen_$I$se, jorm_Nvolume_narrow_$se, jorm_Nvolume_narrow_$I$se, &s);
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
    for (const uint32_t type : {1u, 2u, 3u, 9u, 10u, 11u, uint32_t(JORM_F32)}) {
        const bool real = type == JORM_F32;
        EXPECT_EQ(jorm_defillvals(type, hi, type == 9 ? nullptr : lo, 2), 0);
        EXPECT_TRUE(hi[1] == (real ? 1 : highest(type)) && (real || type == 9 || lo[1] == lowest(type))) << type;
    }
    EXPECT_TRUE(hi[2] == 7 && lo[2] == 7);
    EXPECT_EQ(jorm_defillvals(15, hi, lo, 1), JORM_ENOTSUP);
    EXPECT_EQ(jorm_defillvals(17, hi, lo, 1), JORM_EINVAL);
    for (int s = 0; s < 4; ++s) { // words at a phase
        const uint8_t bytes[] = {9, 8, 7, 6, 5, 4, 3, 2, 1, 19, 18, 17, 16, 15, 14, 13, 12, 11, 10, 0, 29, 28};
        uint32_t w[4][4] = {};
        jorm_readifillvals4(&w[0][0], &bytes[1], s);
        jorm_readifillvals4x2(&w[1][0], &w[1][1], &bytes[1], s);
        jorm_readifillvals4x3(&w[2][0], &w[2][1], &w[2][2], &bytes[1], s);
        jorm_readifillvals4x4(&w[3][0], &w[3][1], &w[3][2], &w[3][3], &bytes[1], s);
        for (size_t n = 0; n < 4; ++n) EXPECT_EQ(std::memcmp(w[n], &bytes[size_t(1 + s)], 4 * (n + 1)), 0);
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
