// Index vectors, regions, overlap, memory sizes, sub-arrays and the reduction of axes against slow oracles.
#include "array/element.hpp"
#include "jorm/array.h"
#include "support/picture.hpp"

#include <climits>

namespace {

jorm_array make_array(const Index &extent, int32_t ndims = 3) {
    jorm_array a = {};
    return *_jorm_array__$xtrn(&a, JORM_U8, ndims, &extent[size_t(4 - ndims)], nullptr,
                               reinterpret_cast<void *>(0x10000));
}
template <class T> Index slots(const T *v) { return {int32_t(v[0]), int32_t(v[1]), int32_t(v[2]), int32_t(v[3])}; }

// The three ways to give n slots: as a count, in the low bits, in a word with operands that begin at the first used
// one.
template <class Test, class Counted, class Masked, class Packed>
void each_form(int n, Test test, Counted counted, Masked masked, Packed packed) {
    test(counted, n, 0, n);
    test(masked, 0xFFFFFF70u | uint32_t(n), 0, n);
    test(packed, JORM_WORD(n ? n : 4), n ? 4 - n : 0, 4);
}

Index random_vec(Random &r) {
    Index v;
    for (auto &x : v) x = r.one_in(3) ? r.of(std::array{INT_MIN, INT_MIN + 1, -1, 0, 1, INT_MAX}) : r.in(-1000, 1000);
    return v;
}

// Every form of a family on its own slots: which are changed, to what, and that the others stay.
TEST(Vec, BinaryFamilies) {
    Random r(7);
    for (int round = 0; round < 200; ++round) {
        const Index a = random_vec(r), b = random_vec(r), blank = {5, 6, 7, 8};
        const int n = r.in(0, 4);
        const bool null = round % 4 == 0; // stands for zeros, in place for nothing
        const auto check = [&](auto oracle) {
            return [&, oracle](auto form, auto slots, int first, int count) {
                constexpr bool in_place = std::is_invocable_v<decltype(form), decltype(slots), int32_t *, int32_t *>;
                Index d = in_place ? a : blank, want = d;
                for (size_t i = 0; i < size_t(count) && !(in_place && null); ++i)
                    want[i] = int32_t(oracle(int64_t(a[i]), null ? 0 : int64_t(b[i])));
                int32_t *const to = d.data() + first;
                const int32_t *const x = a.data() + first, *const y = null ? nullptr : b.data() + first;
                if constexpr (in_place)
                    EXPECT_EQ(form(slots, to, y), to);
                else
                    EXPECT_TRUE(form(slots, to, x, y) == to && form(slots, nullptr, x, y) == nullptr);
                EXPECT_EQ(d, want);
            };
        };
#define FAMILY(op, value)                                                                                              \
    {                                                                                                                  \
        SCOPED_TRACE(#op);                                                                                             \
        const auto oracle = [](int64_t x, int64_t y) { return uint32_t(value); };                                      \
        each_form(n, check(oracle), jorm_vec__##op, jorm_vec_##op, jorm_vec_##op##_$L);                                \
        each_form(n, check(oracle), jorm_vec__##op##_$S, jorm_vec_##op##_$S, jorm_vec_##op##_$LS);                     \
        each_form(n, check(oracle), jorm_vec__##op##_$I, jorm_vec_##op##_$I, jorm_vec_##op##_$IL);                     \
        each_form(n, check(oracle), jorm_vec__##op##_$IS, jorm_vec_##op##_$IS, jorm_vec_##op##_$ILS);                  \
    }
        FAMILY(add, x + y)
        FAMILY(sub, x - y)
        FAMILY(rsb, y - x)
        FAMILY(min, std::min(x, y))
        FAMILY(max, std::max(x, y))
#undef FAMILY
    }
}

TEST(Vec, UnaryFamiliesAndComparisons) {
    Random r(10);
    for (int round = 0; round < 400; ++round) {
        const Index blank = {5, 6, 7, 8};
        Index a, b;
        for (size_t i = 0; i < 4; ++i) {
            a[i] = r.one_in(3) ? r.of(std::array{INT_MIN, INT_MAX}) : r.in(-1, 1);
            b[i] = r.one_in(6) ? 1 : a[i];
        }
        if (r.one_in(4)) a = {0, 0, 0, r.in(0, 1)};
        const int n = r.in(0, 4);
        const bool null = r.one_in(4); // stands for zeros
        const auto writes = [&](auto oracle) {
            return [&, oracle](auto form, auto slots, int first, int count) {
                Index d = blank, want = blank;
                for (int i = 0; i < count; ++i) want[size_t(i)] = oracle(null ? 0 : a[size_t(i)]);
                EXPECT_EQ(form(slots, d.data() + first, null ? nullptr : a.data() + first), d.data() + first);
                EXPECT_EQ(d, want);
            };
        };
        const auto compares = [&](const Index &other) {
            return [&](auto form, auto slots, int first, int count) {
                const bool equal = std::equal(a.begin(), a.begin() + count, other.begin());
                EXPECT_EQ(form(slots, a.data() + first, other.data() + first), equal);
                EXPECT_EQ(form(slots, other.data() + first, a.data() + first), equal);
            };
        };
        const auto copy = writes([](int32_t v) { return v; });
        const auto negate = writes([](int32_t v) { return int32_t(0 - uint32_t(v)); });
        each_form(n, copy, jorm_vec__assign, jorm_vec_assign, jorm_vec_assign_$L);
        each_form(n, copy, jorm_vec__assign_$S, jorm_vec_assign_$S, jorm_vec_assign_$LS);
        each_form(n, negate, jorm_vec__neg, jorm_vec_neg, jorm_vec_neg_$L);
#define IN_PLACE(f, assign) [](auto n, int32_t *d, const int32_t *v) { return f(n, assign(n, d, v)); }
#define CONSTANT(call) [](auto n, int32_t *d, const int32_t *) { return call; }
        each_form(n, negate, IN_PLACE(jorm_vec__neg_$I, jorm_vec__assign), IN_PLACE(jorm_vec_neg_$I, jorm_vec_assign),
                  IN_PLACE(jorm_vec_neg_$IL, jorm_vec_assign_$L));
        each_form(n, writes([](int32_t) { return 9; }), CONSTANT(jorm_vec__dup(n, d, 9)),
                  CONSTANT(jorm_vec_dup(n, d, 9)), CONSTANT(jorm_vec_dup_$L(n, d, 9)));
        each_form(n, writes([](int32_t) { return 0; }), CONSTANT(jorm_vec__zero(n, d)), CONSTANT(jorm_vec_zero(n, d)),
                  CONSTANT(jorm_vec_zero_$L(n, d)));
        each_form(n, compares(b), jorm_vec__equal, jorm_vec_equal, jorm_vec_equal_$L);
        each_form(n, compares(b), jorm_vec__equal_$S, jorm_vec_equal_$S, jorm_vec_equal_$LS);
        const auto is_zero = [&](auto form, auto slots, int first, int count) {
            EXPECT_EQ(form(slots, a.data() + first), std::count(a.begin(), a.begin() + count, 0) == count);
            EXPECT_EQ(form(slots, nullptr), 1);
        };
        each_form(n, is_zero, jorm_vec__equal0, jorm_vec_equal0, jorm_vec_equal0_$L);
        each_form(n, is_zero, jorm_vec__equal0_$S, jorm_vec_equal0_$S, jorm_vec_equal0_$LS);
#undef IN_PLACE
#undef CONSTANT
        EXPECT_EQ(jorm_vec__assign_$Z(n, b.data(), a.data()), n > 0 && *std::min_element(&a[0], &a[0] + n) > 0);
    }
    EXPECT_EQ(jorm_vec__assign_$S(4, nullptr, Index{}.data()), nullptr);
}

TEST(Vec, OffsetsThereAndBack) {
    const Index size = {3, 4, 5, 2}, dense = {40, 10, 2, 1};
    each(size, [&](const Index &place) {
        for (int n = 0; n <= 4; ++n) {
            const auto sums = [&](auto form, auto slots, int first, int count) {
                int64_t sum = 0;
                for (size_t i = 0; i < size_t(count); ++i) sum += int64_t(place[i]) * dense[i];
                EXPECT_EQ(form(slots, place.data() + first, dense.data() + first), sum);
            };
            const auto returns = [&](auto form, auto slots, int first, int count) {
                const int64_t sum = jorm_vec__mkloff(count, place.data(), dense.data());
                Index back = {}, want = {};
                std::copy_n(place.begin(), count, want.begin());
                EXPECT_EQ(form(slots, back.data() + first, dense.data() + first, sum), back.data() + first);
                EXPECT_EQ(back, want);
            };
            each_form(n, sums, jorm_vec__mkloff, jorm_vec_mkloff, jorm_vec_mkloff_$L);
            each_form(n, sums, jorm_vec__mkloff, jorm_vec_mkloff, jorm_vec_mkloff_$LS);
            each_form(n, returns, jorm_vec__fromloff, jorm_vec_fromloff, jorm_vec_fromloff_$L);
            each_form(n, returns, jorm_vec__update_$loff, jorm_vec_update_$loff, jorm_vec_update_$loff$L);
        }
    });
}

TEST(Vec, Offsets) {
    const Index huge = {0, 70000, 3, 2}, stride = {0, 65536, 4, 1};
    EXPECT_EQ(jorm_vec_mkloff(4, huge.data(), stride.data()), INT64_C(4587520014));
    EXPECT_EQ(jorm_vec_mkloff_$LS(JORM_WORD(2), nullptr, stride.data() + 2), 0);
    EXPECT_EQ(jorm_base_advance(nullptr, -14, 4, huge.data(), stride.data()), reinterpret_cast<void *>(4587520000));
    Index v = {};
    EXPECT_EQ(slots(jorm_vec_fromloff(4, v.data(), stride.data(), INT64_C(4587520014))), huge);
    // The outermost slots take all they can; a stride of 0 takes nothing; the signs follow the division.
    EXPECT_EQ(slots(jorm_vec_fromloff(4, v.data(), Index{1000, 0, -30, 7}.data(), 2095)), (Index{2, 0, -3, 0}));
    EXPECT_EQ(slots(jorm_vec_fromloff(4, v.data(), Index{1000, 0, -30, 7}.data(), -1045)), (Index{-1, 0, 1, -2}));
    EXPECT_EQ(slots(jorm_vec_update_$loff(4, v.data(), Index{}.data(), 99)), (Index{-1, 0, 1, -2}));
    jorm_vec_fromloff(4, v.data(), Index{0, -1, 1, 1}.data(), INT32_MIN);
    EXPECT_EQ(v, (Index{0, INT32_MIN, 0, 0}));
    jorm_vec_fromloff(4, v.data(), Index{-1, 1, 1, 1}.data(), INT64_MIN);
    EXPECT_EQ(v, Index{});
}

TEST(Region, NegotiatesLikeCountingPositions) {
    Random r(8);
    for (int round = 0; round < 3000; ++round) {
        const jorm_array a = make_array({r.in(1, 3), r.in(1, 6), r.in(1, 6), r.of(std::array{1, 3, 4, 11, 8})}, 4);
        const jorm_array b = make_array({r.in(1, 3), r.in(1, 6), r.in(1, 6), 1}, 4);
        jorm_site roi, sa, sb;
        Index at;
        for (size_t i = 0; i < 4; ++i) roi.origin[i] = r.in(-2, 4), roi.size[i] = r.in(1, 8), at[i] = r.in(-2, 4);
        const int n = r.in(0, 4);
        const int32_t common = jorm_arr_negotiateRoi(&a, &b, &sa, &sb, &roi, at.data(), n);
        const Region both = common_region({&a, &b}, &roi, {at.data()}), one = common_region({&a}, &roi, {});
        bool expected = true;
        for (size_t i = n >= 1 && n <= 3 ? size_t(3 - n) : 0; i < 3; ++i) {
            expected &= both.size[i] > 0;
            EXPECT_EQ(sa.size[i], sb.size[i]);
            EXPECT_EQ(std::max(sa.size[i], 0), both.size[i]);
            if (both.size[i] == 0) continue;
            EXPECT_EQ(sa.origin[i], both.origin[0][i]);
            EXPECT_EQ(sb.origin[i], both.origin[1][i]);
        }
        EXPECT_EQ(common, expected);
        EXPECT_EQ(std::max(sa.size[3], 0), one.size[3]);
        jorm_arr_adjustRoi_$I(&a, &roi);
        EXPECT_EQ(slots(roi.origin), slots(sa.origin));
    }
}

TEST(Region, SitesAndExtremes) {
    jorm_array a = make_array({1, 10, 20, 11});
    jorm_site s;
    EXPECT_EQ(jorm_arr_siteofAt_$g2(&a, &s, 3, -4), &s);
    EXPECT_EQ(slots(s.origin), (Index{0, 3, 0, 0}));
    EXPECT_EQ(slots(s.size), (Index{1, 7, 16, 11}));
    jorm_arr_adjorgetRoi(&a, &s, nullptr);
    EXPECT_EQ(slots(s.size), (Index{1, 10, 20, 4}));
    a.extent[1] = 0xFFFFFFFF; // reads as -1
    EXPECT_FALSE(jorm_arr_negotiateRoi(&a, &a, &s, &s, nullptr, nullptr, 3));
    EXPECT_EQ(jorm_arr_siteof(nullptr, &s), nullptr);

    int32_t origin = INT32_MAX, size = INT32_MAX, low = INT32_MIN, far = INT32_MIN;
    EXPECT_TRUE(jorm_intersec(1, nullptr, nullptr, &origin, &size, &origin, &size));
    EXPECT_FALSE(jorm_intersecI(1, &origin, &size, &low, &far));
    EXPECT_EQ(origin, INT32_MAX);
    EXPECT_EQ(size, INT32_MIN); // the true size lies below
    EXPECT_FALSE(jorm_intersec(0, &origin, &size, &origin, &size, &origin, &size));
}

TEST(Region, Proportions) {
    const int32_t most = INT32_MAX;
    struct {
        int32_t a, b;
        double scale, scale_out;
        int32_t a_out, b_out, result;
    } cases[] = {
        {30, 20, 0, 1.5, 30, 20, 1},   {40, 20, 1.5, 1.5, 30, 20, 1},       {25, 20, 1.5, 1.5, 25, 17, 1},
        {30, 21, 1.5, 1.5, 30, 20, 1}, {31, 21, 1.5, 1.5, 31, 21, 1},       {33, 21, 1.5, 1.5, 32, 21, 1},
        {10, 10, -2, -2, -20, 10, 0},  {9, 2, 0.2, 0.2, 0, 2, 0},           {1, 19, 0.1, 0.1, 1, 19, 1},
        {1, 9, 1e300, 1e300, 1, 0, 0}, {9, 1, -1e300, -1e300, -most, 1, 0},
    };
    for (const auto &c : cases) {
        const jorm_array a = make_array({1, c.a, 5, 1}), b = make_array({1, c.b, 5, 1});
        double scale[4] = {7, c.scale, 1, 1}; // two slots in use, the first factor is not
        jorm_site sa, sb;
        EXPECT_EQ(jorm_arr_negotiateRoiEx(&a, &b, &sa, &sb, scale, nullptr, nullptr, 2), c.result) << c.a << ' ' << c.b;
        EXPECT_EQ(sa.size[1], c.a_out);
        EXPECT_EQ(sb.size[1], c.b_out) << c.a << ' ' << c.b;
        EXPECT_EQ(scale[1], c.scale_out);
    }
}

TEST(Overlap, CoarseAnswers) {
    const jorm_array a = make_array({1, 10, 20, 1});
    const auto at = [](int32_t y, int32_t x, int32_t h, int32_t w) { return jorm_site{{0, y, x, 0}, {1, h, w, 1}}; };
    const jorm_site left = at(0, 0, 10, 5), right = at(0, 5, 10, 5), middle = at(0, 4, 10, 5);
    jorm_array wide = a, behind = a;
    wide.stride[1] = 40, behind.stride[1] = 10, behind.loff = 10 * 20 + 20 + 1; // where the first one ends
    expect_each(-1, {jorm_arr_overlapped(&a, &a, nullptr, nullptr),
                     jorm_arr_overlapped(&a, &a, &left, &middle),     // one column in common
                     jorm_arr_overlapped(&a, &wide, &left, &right)}); // rows of different strides
    expect_each(0,
                {jorm_arr_overlapped(&a, &a, &left, &right), // side by side
                 jorm_arr_overlapped(&a, &behind, nullptr, nullptr), jorm_arr_overlapped(nullptr, &a, nullptr, nullptr),
                 jorm_overlappedLS(JORM_WORD(3), &left.size[1], a.base, &left.origin[1], &a.stride[1], a.base,
                                   &right.origin[1], &a.stride[1]),
                 jorm_xoverlappedLS(JORM_WORD(3), a.base, 0, &left.origin[1], &left.size[1], &a.stride[1], JORM_WORD(2),
                                    a.base, 0, &right.origin[2], &right.size[2], &a.stride[2])}); // a single row
}

TEST(Toolkit, AccessorsAndCounts) {
    using Values = std::array<int32_t, 5>; // of vectors of none to four slots
    const Index s = {7, 64, 12, 2}, e = {2, 3, 5, 11}, negative = {2, -1, 3, 11}, huge = {65536, 65537, 3, 4};
    const auto check = [](auto counted, auto worded, const Values &wanted, const auto &...v) {
        for (int n = 0; n <= 4; ++n) {
            EXPECT_EQ(counted(n, v.data()...), wanted[size_t(n)]) << n;
            EXPECT_EQ(worded(JORM_WORD(n), v.data()...), wanted[size_t(n)]) << n;
        }
    };
    check(jorm__elstride, jorm_elstride, {0, 7, 64, 12, 2}, s);
    check(jorm__pixstride, jorm_pixstride, {0, 0, 7, 64, 12}, s);
    check(jorm__rowstride, jorm_rowstride, {0, 0, 0, 7, 64}, s);
    check(jorm__rowstride2, jorm_rowstride2, {0, 0, 14, 7, 64}, e, s);
    check(jorm__pixpadding, jorm_pixpadding, {0, -14, -185, 4, 4}, e, s);
    check(jorm__rowpadding, jorm_rowpadding, {0, 0, -14, -185, 4}, e, s);
    check(jorm_volume__height, jorm_volume_height, {1, 1, 1, 2, 3}, e);
    check(jorm_volume__nchannels, jorm_volume_nchannels, {0, 2, 3, 5, 4}, e);
    check(jorm_volume__capacity, jorm_volume_capacity, {2, 2, 6, 30, 330}, e);
    check(jorm_volume__capacity, jorm_volume_capacity, {65536, 65536, 65536, 196608, 786432}, huge); // modulo 2^32
    check(jorm_volume__pixcap, jorm_volume_pixcap, {2, 2, 2, -2, -6}, negative);
    check(jorm_volume__capacity_$Q, jorm_volume_capacity_$Q, {1, 2, 0, 0, 0}, negative);
    check(jorm_volume__capacity_$Q, jorm_volume_capacity_$Q, {1, 65536, 65536, 196608, 786432}, huge);
    check(jorm_volume__pixcap_$Q, jorm_volume_pixcap_$Q, {1, 1, 2, 6, 30}, e);
    check(jorm_volume__empty, jorm_volume_empty, {}, e);
    check(jorm_volume__empty, jorm_volume_empty, {0, 0, 1, 1, 1}, negative);
    EXPECT_TRUE(jorm_volume__empty(1, Index{}.data()));
    EXPECT_EQ(jorm_elpadding(), 0);
    Index v;
    EXPECT_EQ(slots(_jorm_Nvolume__$(v.data())), (Index{1, 1, 1, 1}));
    EXPECT_EQ(slots(_jorm_Nvolume__$1(v.data(), 3)), (Index{1, 1, 1, 3}));
    EXPECT_EQ(slots(_jorm_Nvolume__$2(v.data(), 7, 3)), (Index{1, 1, 7, 3}));
    EXPECT_EQ(slots(_jorm_Nvolume__$3(v.data(), 5, 7, 3)), (Index{1, 5, 7, 3}));
    EXPECT_EQ(slots(_jorm_Nvolume__$g1(v.data(), 7)), (Index{1, 1, 7, 1}));
    EXPECT_EQ(slots(_jorm_Nvolume__$g2(v.data(), 5, 7)), (Index{1, 5, 7, 1}));
    EXPECT_EQ(slots(_jorm_Nvolume__$g3(v.data(), 2, 5, 7)), (Index{2, 5, 7, 1}));
    char bytes[400];
    const Index place = {0, 3, 2, 1};
    const void *const want[] = {bytes + 40 + 3 * 64 + 2 * 12 + 2, bytes + 40 + 3 * 64 + 2 * 12};
    EXPECT_EQ(jorm_base_advance(bytes, 40, 4, place.data(), s.data()), want[0]);
    EXPECT_EQ(jorm_base_advance_$L(bytes, 40, JORM_WORD(3), &place[1], &s[1]), want[0]);
    EXPECT_EQ(jorm_base_advance_$LS(bytes, 40, JORM_WORD(3), &place[1], &s[1]), want[0]);
    EXPECT_EQ(jorm_base_at_$2d$pt(bytes, 40, &place[1], &s[1]), want[1]);
    EXPECT_EQ(jorm_advance_ptr(want[1], 2), want[0]);
    EXPECT_EQ(jorm::element_size(15), 0);
    EXPECT_TRUE(jorm::well_formed(15) && !jorm::well_formed(5) && !jorm::well_formed(0x11));
}

TEST(Toolkit, MemorySizes) {
    Index s = {0, -64, 0, 1};
    EXPECT_EQ(jorm_vmemsize(4, Index{2, 5, 30, 3}.data(), s.data(), 0), 2u * 5 * 128);
    EXPECT_EQ(s, (Index{640, 128, 3, 1}));
    s = {0, 200, 7, 2};
    EXPECT_EQ(jorm_vmemsizeL(JORM_WORD(3), Index{9, 5, 30, 3}.data() + 1, s.data() + 1, 2), 5u * 210 + 64);
    EXPECT_EQ(s, (Index{0, 210, 7, 2}));
    // Bad layouts leave the strides alone: no rows, no element, beyond 32 bits, no power of two.
    const Index bad[][2] = {{{1, 0, 5, 1}, {0, 0, 0, 1}},
                            {{1, 5, 5, 1}, {0, 0, 0, 0}},
                            {{1, 2, INT32_MAX, 1}, {0, 0, 0, 4}},
                            {{1, 5, 5, 1}, {0, -3, 0, 4}}};
    for (const auto &[e, strides] : bad) {
        s = strides;
        EXPECT_EQ(jorm_vmemsize(4, e.data(), s.data(), 1), 0u);
        EXPECT_EQ(s, strides);
    }
}

TEST(SubArray, ViewsOfViews) {
    const jorm_array a = make_array({1, 10, 20, 11});
    jorm_array v, w;
    const jorm_site outer = {{0, 2, -3, 0}, {1, 5, 13, 4}}, inner = {{0, 1, 4, 1}, {1, 99, 3, 2}};
    ASSERT_EQ(_jorm_array__$sar(&v, &a, &outer), &v);
    EXPECT_EQ(v.loff, 2 * 80);
    EXPECT_EQ(slots(v.extent), (Index{1, 5, 10, 11}));
    ASSERT_EQ(_jorm_array__$sar(&w, &v, &inner), &w);
    EXPECT_EQ(w.loff, 3 * 80 + 4 * 4 + 1);
    EXPECT_EQ(slots(w.extent), (Index{1, 4, 3, 2}));
    jorm_site parent;
    jorm_arr_parsiteof(&w, &parent);
    EXPECT_EQ(slots(parent.origin), (Index{0, -3, -4, -1}));
    EXPECT_EQ(slots(parent.size), (Index{1, 10, 20, 11}));
    Index index;
    EXPECT_EQ(jorm_arr_pt2pcs(&w, index.data(), Index{2, 1}.data()), a.base);
    EXPECT_EQ(index, (Index{0, 5, 5, 1}));
    const jorm_site around = {{0, -1, -1, 0}, {1, 7, 12, 4}}; // may leave the view, not the parent
    ASSERT_EQ(_jorm_array__$_sar$I(&v, &around), &v);
    EXPECT_EQ(v.loff, 80 - 4);
    const jorm_site outside = {{0, 10, 0, 0}, {1, 1, 1, 1}};
    _jorm_array__$sar$I(&w, &outside);
    EXPECT_EQ(slots(w.extent), Index{});
    const jorm_array big = make_array({1, 70000, 65536, 1});
    const jorm_site end = {{0, 69999, 0, 0}, {1, 1, 1, 1}};
    EXPECT_EQ(_jorm_array__$sar(&w, &big, &end), nullptr);
}

// ---- Constructors ----

TEST(Make, DescribesMemory) {
    int16_t memory[64] = {};
    jorm_array a, b;
    const int32_t extent[4] = {2, 3, 5, 2}, upward[3] = {-40, 4, 2};
    const auto expect_like = [&](int64_t status, int32_t ndims, const int32_t *stride) {
        EXPECT_EQ(status, JORM_OK);
        _jorm_array__$xtrn(&b, JORM_S16, ndims, extent + 4 - ndims, stride, memory);
        EXPECT_EQ(std::memcmp(&a, &b, sizeof a), 0);
    };
    expect_like(jorm_array_make(&a, JORM_S16, 3, 5, 2, 0, memory), 3, nullptr);
    expect_like(jorm_array_make(&a, JORM_S16, 3, 5, 2, -40, memory), 3, upward);
    expect_like(jorm_array_make4(&a, JORM_S16, 2, 3, 5, 2, 0, 0, memory), 4, nullptr);
    ASSERT_EQ(jorm_array_make4(&a, JORM_S16, 2, 3, 5, 2, 0, -24, memory), JORM_OK);
    EXPECT_EQ(slots(a.stride), (Index{72, -24, 4, 2}));

    const jorm_array before = a;
    const int64_t wide = int64_t(1) << 31;
    const auto make = [&](uint32_t type, int32_t h, int32_t w, int32_t channels, int64_t row_stride) {
        return jorm_array_make(&a, type, h, w, channels, row_stride, memory);
    };
    const auto make4 = [&](uint32_t type, int32_t d, int32_t h, int32_t w, int64_t plane_stride) {
        return jorm_array_make4(&a, type, d, h, w, 1, plane_stride, 0, memory);
    };
    expect_each(JORM_EINVAL,
                {jorm_array_make(nullptr, JORM_U8, 1, 1, 1, 0, memory),
                 jorm_array_make(&a, JORM_U8, 1, 1, 1, 0, nullptr), make(15, 1, 1, 1, 0), make(5, 1, 1, 1, 0),
                 make(257, 1, 1, 1, 0), make(0, 1, 1, 1, 0), make(JORM_U8, 0, 1, 1, 0), make(JORM_U8, 1, -1, 1, 0),
                 make(JORM_U8, 1, 1, 0, 0), make(JORM_U8, 1, 1, 5, 0), make(JORM_S16, 1, 1, 1, 3),
                 make(JORM_U8, 1, 1, 1, wide), make(JORM_U8, 1, 1, 1, INT64_MIN), make(JORM_S32, 2, INT32_MAX, 4, 0),
                 make4(JORM_U8, 0, 1, 1, 0), make4(JORM_U8, 2, 65536, 32768, 0), make4(JORM_S16, 1, 1, 1, 1)});
    EXPECT_EQ(std::memcmp(&a, &before, sizeof a), 0);
    EXPECT_EQ(jorm_array_make(&a, JORM_U8, 2, 9, 1, -wide, memory), JORM_OK);
}

// Chains of views, followed by hand: each element's place, and that the parent, where there is one, is what it was.
TEST(Make, ViewsOfViewsOfAnyLayout) {
    Random r(10);
    for (int round = 0; round < 2000; ++round) {
        const int ndims = r.in(3, 4);
        const Index extent = {ndims == 4 ? r.in(1, 3) : 1, r.in(1, 6), r.in(1, 6), r.in(1, 4)};
        const Picture picture(r, JORM_S16, extent, false, ndims);
        jorm_array a = picture.a;
        a.base = picture.at({}), a.loff = 0;
        Index size = extent_of(a), start = {}, step = {1, 1, 1, 1};
        for (int k = 0; k < 4; ++k) {
            const int y = r.in(-2, 6), x = r.in(-2, 6), h = r.in(-1, 7), w = r.in(0, 7), kind = r.in(0, 2);
            const jorm_array before = a;
            if (kind == 0) {
                const int rows = overlap(size[1], y, h), pixels = overlap(size[2], x, w);
                const int64_t status = jorm_array_sub(&a, &before, y, x, h, w);
                ASSERT_EQ(status, rows > 0 && pixels > 0 ? JORM_OK : JORM_EEMPTY);
                if (status != JORM_OK) continue;
                start[1] += step[1] * std::max(y, 0), start[2] += step[2] * std::max(x, 0);
                size[1] = rows, size[2] = pixels;
            } else if (kind == 1) {
                const int c = r.in(-1, 4);
                const int64_t status = jorm_array_channel(&a, &a, c);
                ASSERT_EQ(status, c >= 0 && c < size[3] ? JORM_OK : JORM_EINVAL);
                if (status == JORM_OK) start[3] += c, size[3] = 1;
            } else {
                const bool vertical = r.one_in(2), horizontal = r.one_in(2);
                ASSERT_EQ(jorm_array_flip(&a, &before, vertical, horizontal), JORM_OK);
                for (const size_t s : {1, 2})
                    if (s == 1 ? vertical : horizontal) start[s] += step[s] * (size[s] - 1), step[s] = -step[s];
            }
        }
        ASSERT_EQ(extent_of(a), size);
        each(size, [&](const Index &i) {
            Index at = start;
            for (size_t s = 0; s < 4; ++s) at[s] += step[s] * i[s];
            ASSERT_EQ(element(a, i), picture.at(at));
        });
        // Everything of the parent lies in the memory.
        jorm_site parent;
        jorm_arr_parsiteof(&a, &parent);
        each({1, 2, 2, 2}, [&](const Index &corner) {
            Index at;
            for (size_t s = 0; s < 4; ++s) at[s] = parent.origin[s] + (corner[s] ? parent.size[s] - 1 : 0);
            if (parent.size[3] == 11) at[3] -= corner[3] * 7;
            const uint8_t *const p = element(a, at);
            ASSERT_TRUE(p >= picture.memory.data() && p < picture.memory.data() + picture.memory.size());
        });
    }
}

TEST(Make, OffsetsBeyond32BitsMoveTheBase) {
    jorm_array a, v;
    uint8_t *const base = reinterpret_cast<uint8_t *>(uintptr_t(1) << 40);
    ASSERT_EQ(jorm_array_make(&a, JORM_U8, 70000, 65536, 1, 0, base), JORM_OK);
    ASSERT_EQ(jorm_array_sub(&v, &a, 69999, 5, 9, 9), JORM_OK);
    EXPECT_TRUE(v.base == base + 69999 * int64_t(65536) + 5 && v.loff == 0);
    EXPECT_EQ(slots(v.extent), slots(v.parent_extent));
    ASSERT_EQ(jorm_array_flip(&v, &a, 1, 0), JORM_OK);
    EXPECT_TRUE(v.base == base + 69999 * int64_t(65536) && v.loff == 0 && v.stride[1] == -65536);
    jorm_array nowhere = a;
    nowhere.base = nullptr;
    expect_each(JORM_EINVAL, {jorm_array_sub(nullptr, &a, 0, 0, 1, 1), jorm_array_sub(&v, nullptr, 0, 0, 1, 1),
                              jorm_array_channel(&v, nullptr, 0), jorm_array_flip(&v, nullptr, 1, 1),
                              jorm_array_flip(&v, &nowhere, 1, 1)});
    jorm_site site;
    EXPECT_EQ(jorm_site_make(&site, 1, 2, 3, 4), &site);
    jorm_arr_adjorgetRoi(&a, &site, &site);
    EXPECT_EQ(slots(site.origin), (Index{0, 1, 2, 0}));
    EXPECT_EQ(slots(site.size), (Index{1, 3, 4, 1}));
    EXPECT_EQ(jorm_site_make(nullptr, 1, 2, 3, 4), nullptr);
}

// The reduced axes visit the same elements in the same order, and nothing that could be merged is left.
TEST(Reduce, KeepsTheWalk) {
    Random r(9);
    const auto offsets = [](const Index &size, const Index &stride) {
        std::vector<int64_t> all;
        each(size, [&](const Index &i) { all.push_back(jorm_vec_mkloff(4, i.data(), stride.data())); });
        return all;
    };
    for (int round = 0; round < 5000; ++round) {
        Index size, strides[2];
        for (auto &x : size) x = r.in(1, 3);
        for (auto &s : strides) {
            s[3] = r.one_in(2) ? 1 : -2;
            for (size_t i = 3; i-- > 0;) s[i] = r.one_in(4) ? r.in(-50, 50) : size[i + 1] * s[i + 1];
        }
        const Index old_size = size;
        const std::vector<int64_t> before[] = {offsets(size, strides[0]), offsets(size, strides[1])};
        int32_t *pointers[] = {strides[0].data(), nullptr, strides[1].data()};
        const int hint = r.in(-1, 5), held = hint < 0 ? 4 : std::clamp(hint, 1, 4);
        const int n = int(jorm_dims_xreduce(4, size.data(), 3, pointers, hint));
        ASSERT_GE(n, std::max(2, held));
        for (int k = 0; k < 2; ++k) EXPECT_EQ(offsets(size, strides[k]), before[k]);
        for (int i = 0; i < 4; ++i) {
            const auto contiguous = [&](const Index &s) { return s[i] == size[i + 1] * s[i + 1]; };
            EXPECT_TRUE(i >= 4 - n || (size[i] == 1 && strides[0][i] == 0 && strides[1][i] == 0));
            EXPECT_TRUE(i < 4 - held || size[i] == old_size[i]);
            if (i < 4 - n || i >= 4 - held) continue;
            EXPECT_TRUE(size[i] != 1 || n == held + 1);
            EXPECT_FALSE(i < 3 - held && contiguous(strides[0]) && contiguous(strides[1]));
        }
    }
    Index size = {2, 1 << 16, 1 << 15, 1}, stride = {0, 1 << 15, 1, 1};
    int32_t *pointer = stride.data();
    EXPECT_EQ(jorm_dims_xreduce(4, size.data(), 1, &pointer, 0), 4); // the product does not fit
    size[1] = 0;
    EXPECT_EQ(jorm_dims_xreduce(4, size.data(), 1, &pointer, 0), JORM_EINVAL);
    EXPECT_EQ(jorm_dims_xreduce(4, size.data(), 1, nullptr, 0), JORM_EINVAL);
}

} // namespace
