// Index vectors, regions, overlap, memory sizes, sub-arrays and the reduction of axes against slow oracles.
#include "jorm/array.h"

#include "array/element.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <random>
#include <vector>

namespace {

using Vec = std::array<int32_t, 4>;
std::mt19937 rng(7);
int32_t uniform(int32_t lo, int32_t hi) { return std::uniform_int_distribution<int32_t>(lo, hi)(rng); }

Vec random_vec() {
    const int32_t extremes[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX};
    Vec v;
    for (auto &x : v) x = uniform(0, 2) ? uniform(-1000, 1000) : extremes[uniform(0, 5)];
    return v;
}

jorm_array make_array(Vec extent, int32_t ndims = 3) {
    jorm_array a = {};
    _jorm_array__$xtrn(&a, JORM_U8, ndims, extent.data() + 4 - ndims, nullptr, reinterpret_cast<void *>(0x10000));
    return a;
}

Vec vec_of(const int32_t *v) { return {v[0], v[1], v[2], v[3]}; }

struct Family {
    const char *name;
    uint32_t (*oracle)(int64_t, int64_t);
    std::vector<int32_t *(*)(int32_t, int32_t *, const int32_t *, const int32_t *)> counted;
    std::vector<int32_t *(*)(uint32_t, int32_t *, const int32_t *, const int32_t *)> masked, packed;
    std::vector<int32_t *(*)(int32_t, int32_t *, const int32_t *)> counted_i;
    std::vector<int32_t *(*)(uint32_t, int32_t *, const int32_t *)> masked_i, packed_i;
};

// Every form of a family on its own slots: which are changed, to what, and that the others stay.
TEST(Vec, BinaryFamilies) {
    // clang-format off
    const Family families[] = {
        {"add", [](int64_t a, int64_t b) { return uint32_t(a + b); },
         {jorm_vec__add, jorm_vec__add_$S}, {jorm_vec_add, jorm_vec_add_$S}, {jorm_vec_add_$L, jorm_vec_add_$LS},
         {jorm_vec__add_$I, jorm_vec__add_$IS}, {jorm_vec_add_$I, jorm_vec_add_$IS},
         {jorm_vec_add_$IL, jorm_vec_add_$ILS}},
        {"sub", [](int64_t a, int64_t b) { return uint32_t(a - b); },
         {jorm_vec__sub, jorm_vec__sub_$S}, {jorm_vec_sub, jorm_vec_sub_$S}, {jorm_vec_sub_$L, jorm_vec_sub_$LS},
         {jorm_vec__sub_$I, jorm_vec__sub_$IS}, {jorm_vec_sub_$I, jorm_vec_sub_$IS},
         {jorm_vec_sub_$IL, jorm_vec_sub_$ILS}},
        {"rsb", [](int64_t a, int64_t b) { return uint32_t(b - a); },
         {jorm_vec__rsb, jorm_vec__rsb_$S}, {jorm_vec_rsb, jorm_vec_rsb_$S}, {jorm_vec_rsb_$L, jorm_vec_rsb_$LS},
         {jorm_vec__rsb_$I, jorm_vec__rsb_$IS}, {jorm_vec_rsb_$I, jorm_vec_rsb_$IS},
         {jorm_vec_rsb_$IL, jorm_vec_rsb_$ILS}},
        {"min", [](int64_t a, int64_t b) { return uint32_t(std::min(a, b)); },
         {jorm_vec__min, jorm_vec__min_$S}, {jorm_vec_min, jorm_vec_min_$S}, {jorm_vec_min_$L, jorm_vec_min_$LS},
         {jorm_vec__min_$I, jorm_vec__min_$IS}, {jorm_vec_min_$I, jorm_vec_min_$IS},
         {jorm_vec_min_$IL, jorm_vec_min_$ILS}},
        {"max", [](int64_t a, int64_t b) { return uint32_t(std::max(a, b)); },
         {jorm_vec__max, jorm_vec__max_$S}, {jorm_vec_max, jorm_vec_max_$S}, {jorm_vec_max_$L, jorm_vec_max_$LS},
         {jorm_vec__max_$I, jorm_vec__max_$IS}, {jorm_vec_max_$I, jorm_vec_max_$IS},
         {jorm_vec_max_$IL, jorm_vec_max_$ILS}},
    };
    // clang-format on
    for (const Family &f : families)
        for (int round = 0; round < 200; ++round) {
            SCOPED_TRACE(f.name);
            const Vec a = random_vec(), b = random_vec();
            const int32_t n = uniform(0, 4), lead = n ? 4 - n : 0;
            const bool null = round % 4 == 0;
            const Vec blank = {5, 6, 7, 8};
            const auto expect = [&](Vec v, int32_t count, bool in_place) {
                for (int32_t i = 0; i < count; ++i)
                    if (!in_place || !null) v[i] = int32_t(f.oracle(a[i], null ? 0 : b[i]));
                return v;
            };
            const auto apart = [&](const auto &forms, auto slots, int32_t first, int32_t count) {
                for (auto form : forms) {
                    Vec d = blank;
                    EXPECT_EQ(form(slots, &d[first], &a[first], null ? nullptr : &b[first]), &d[first]);
                    EXPECT_EQ(d, expect(blank, count, false));
                    EXPECT_EQ(form(slots, nullptr, &a[first], &b[first]), nullptr);
                }
            };
            const auto in_place = [&](const auto &forms, auto slots, int32_t first, int32_t count) {
                for (auto form : forms) {
                    Vec d = a;
                    EXPECT_EQ(form(slots, &d[first], null ? nullptr : &b[first]), &d[first]);
                    EXPECT_EQ(d, expect(a, count, true));
                }
            };
            const uint32_t low_bits = 0xFFFFFF70u | uint32_t(n), word = JORM_WORD(n ? n : 4);
            apart(f.counted, n, 0, n);
            apart(f.masked, low_bits, 0, n);
            apart(f.packed, word, lead, 4);
            in_place(f.counted_i, n, 0, n);
            in_place(f.masked_i, low_bits, 0, n);
            in_place(f.packed_i, word, lead, 4);
        }
}

TEST(Vec, AssignNegateCompare) {
    const Vec a = {3, 0, INT32_MIN, 9};
    Vec d = {1, 1, 1, 1};
    EXPECT_EQ(jorm_vec__assign_$S(4, nullptr, a.data()), nullptr);
    EXPECT_EQ(vec_of(jorm_vec_neg(4, d.data(), a.data())), (Vec{-3, 0, INT32_MIN, -9}));
    EXPECT_EQ(jorm_vec_assign_$L(JORM_WORD(2), d.data() + 2, a.data() + 2), d.data() + 2);
    EXPECT_EQ(d, a);
    EXPECT_EQ(vec_of(jorm_vec__assign_$S(2, d.data(), nullptr)), (Vec{0, 0, INT32_MIN, 9}));
    EXPECT_EQ(vec_of(jorm_vec_dup_$L(JORM_WORD(3), d.data() + 1, 4) - 1), (Vec{4, 4, 4, 4}));
    EXPECT_TRUE(jorm_vec_equal0_$LS(JORM_WORD(3), nullptr));
    EXPECT_TRUE(jorm_vec__equal(2, Vec{1, 2, 3, 4}.data(), Vec{1, 2, 4, 4}.data()));
    EXPECT_FALSE(jorm_vec_equal(3, Vec{1, 2, 3, 4}.data(), Vec{1, 2, 4, 4}.data()));
    EXPECT_FALSE(jorm_vec_equal_$L(JORM_WORD(1), Vec{1, 2, 3, 4}.data() + 3, Vec{0, 2, 3, 4}.data() + 3));
    EXPECT_FALSE(jorm_vec__equal_$S(4, a.data(), nullptr));
    EXPECT_TRUE(jorm_vec__assign_$Z(1, d.data(), a.data()));
    EXPECT_FALSE(jorm_vec__assign_$Z(2, d.data(), a.data()));
    EXPECT_FALSE(jorm_vec__assign_$Z(0, d.data(), a.data()));
}

TEST(Vec, Offsets) {
    const Vec huge = {0, 70000, 3, 2}, stride = {0, 65536, 4, 1};
    EXPECT_EQ(jorm_vec_mkloff(4, huge.data(), stride.data()), INT64_C(4587520014));
    EXPECT_EQ(jorm_vec_mkloff_$LS(JORM_WORD(2), huge.data() + 2, stride.data() + 2), INT64_C(4587520014));
    EXPECT_EQ(jorm_vec_mkloff_$LS(JORM_WORD(2), nullptr, stride.data() + 2), 0);
    EXPECT_EQ(jorm_base_advance(nullptr, -14, 4, huge.data(), stride.data()), reinterpret_cast<void *>(4587520000));
    Vec v = {};
    EXPECT_EQ(vec_of(jorm_vec_fromloff(4, v.data(), stride.data(), INT64_C(4587520014))), huge);
    // The outermost slots take all they can; a stride of 0 takes nothing; the signs follow the division.
    EXPECT_EQ(vec_of(jorm_vec_fromloff(4, v.data(), Vec{1000, 0, -30, 7}.data(), 2095)), (Vec{2, 0, -3, 0}));
    EXPECT_EQ(vec_of(jorm_vec_fromloff(4, v.data(), Vec{1000, 0, -30, 7}.data(), -1045)), (Vec{-1, 0, 1, -2}));
    EXPECT_EQ(vec_of(jorm_vec_update_$loff(4, v.data(), Vec{}.data(), 99)), (Vec{-1, 0, 1, -2}));
    jorm_vec_fromloff(4, v.data(), Vec{0, -1, 1, 1}.data(), INT32_MIN);
    EXPECT_EQ(v, (Vec{0, INT32_MIN, 0, 0}));
    jorm_vec_fromloff(4, v.data(), Vec{-1, 1, 1, 1}.data(), INT64_MIN);
    EXPECT_EQ(v, Vec{});
}

// First position and number of positions of [0, extent) that pass every further interval.
struct Stretch {
    int32_t first, count;
};
Stretch stretch_of(int32_t extent, int32_t from, int32_t length) {
    Stretch found = {0, 0};
    for (int32_t p = extent - 1; p >= 0; --p)
        if (p >= from && p < from + length) found = {p, found.count + 1};
    return found;
}

TEST(Region, NegotiatesLikeCountingPositions) {
    for (int round = 0; round < 3000; ++round) {
        const int32_t codes[] = {1, 3, 4, 11, 8};
        const Vec ea = {uniform(1, 3), uniform(1, 6), uniform(1, 6), codes[uniform(0, 4)]};
        const Vec eb = {uniform(1, 3), uniform(1, 6), uniform(1, 6), 1};
        const jorm_array a = make_array(ea, 4), b = make_array(eb, 4);
        jorm_site roi;
        Vec at;
        for (int i = 0; i < 4; ++i) {
            roi.origin[i] = uniform(-2, 4), roi.size[i] = uniform(1, 8), at[i] = uniform(-2, 4);
        }
        const int32_t n = uniform(0, 4), first = n >= 1 && n <= 3 ? 3 - n : 0;
        jorm_site sa, sb;
        const int32_t common = jorm_arr_negotiateRoi(&a, &b, &sa, &sb, &roi, at.data(), n);
        bool expected = true;
        for (int i = first; i < 3; ++i) {
            const Stretch ra = stretch_of(ea[i], roi.origin[i], roi.size[i]), rb = stretch_of(eb[i], at[i], eb[i]);
            const int32_t count = std::min(ra.count, rb.count);
            expected &= count > 0;
            EXPECT_EQ(sa.size[i], sb.size[i]);
            EXPECT_EQ(std::max(sa.size[i], 0), count);
            EXPECT_TRUE(!ra.count || sa.origin[i] == ra.first);
            EXPECT_TRUE(!rb.count || sb.origin[i] == rb.first);
        }
        EXPECT_EQ(common, expected);
        const Stretch channels = stretch_of(jorm::stored_channels(ea[3]), roi.origin[3], roi.size[3]);
        EXPECT_EQ(std::max(sa.size[3], 0), channels.count);
        jorm_site again = roi;
        jorm_arr_adjustRoi_$I(&a, &again);
        EXPECT_EQ(vec_of(again.origin), vec_of(sa.origin));
    }
}

TEST(Region, SitesAndExtremes) {
    jorm_array a = make_array({1, 10, 20, 11});
    jorm_site s;
    EXPECT_EQ(jorm_arr_siteofAt_$g2(&a, &s, 3, -4), &s);
    EXPECT_EQ(vec_of(s.origin), (Vec{0, 3, 0, 0}));
    EXPECT_EQ(vec_of(s.size), (Vec{1, 7, 16, 11}));
    jorm_arr_adjorgetRoi(&a, &s, nullptr);
    EXPECT_EQ(vec_of(s.size), (Vec{1, 10, 20, 4}));
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
    struct {
        int32_t a, b;
        double scale, scale_out;
        int32_t a_out, b_out, result;
    } cases[] = {
        {30, 20, 0, 1.5, 30, 20, 1},
        {40, 20, 1.5, 1.5, 30, 20, 1},
        {25, 20, 1.5, 1.5, 25, 17, 1},
        {30, 21, 1.5, 1.5, 30, 20, 1},
        {31, 21, 1.5, 1.5, 31, 21, 1},
        {33, 21, 1.5, 1.5, 32, 21, 1},
        {10, 10, -2, -2, -20, 10, 0},
        {9, 2, 0.2, 0.2, 0, 2, 0},
        {1, 19, 0.1, 0.1, 1, 19, 1},
        {1, 9, 1e300, 1e300, 1, 0, 0},
        {9, 1, -1e300, -1e300, -INT32_MAX, 1, 0},
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
    jorm_array b = a;
    const auto at = [](int32_t y, int32_t x, int32_t h, int32_t w) { return jorm_site{{0, y, x, 0}, {1, h, w, 1}}; };
    const jorm_site left = at(0, 0, 10, 5), right = at(0, 5, 10, 5), middle = at(0, 4, 10, 5);
    EXPECT_EQ(jorm_arr_overlapped(&a, &a, nullptr, nullptr), -1);
    EXPECT_EQ(jorm_arr_overlapped(&a, &a, &left, &right), 0);   // side by side
    EXPECT_EQ(jorm_arr_overlapped(&a, &a, &left, &middle), -1); // one column in common
    b.stride[1] = 40;
    EXPECT_EQ(jorm_arr_overlapped(&a, &b, &left, &right), -1); // rows of different strides
    b.loff = 10 * 20 + 20 + 1;
    EXPECT_EQ(jorm_arr_overlapped(&a, &b, nullptr, nullptr), 0); // behind the last byte
    EXPECT_EQ(jorm_overlappedLS(JORM_WORD(3), &left.size[1], a.base, &left.origin[1], &a.stride[1], a.base,
                                &right.origin[1], &a.stride[1]),
              0);
    EXPECT_EQ(jorm_xoverlappedLS(JORM_WORD(3), a.base, 0, &left.origin[1], &left.size[1], &a.stride[1], JORM_WORD(2),
                                 a.base, 0, &right.origin[2], &right.size[2], &a.stride[2]),
              0); // a single row
    EXPECT_EQ(jorm_arr_overlapped(nullptr, &b, nullptr, nullptr), 0);
}

TEST(Toolkit, AccessorsAndCounts) {
    const Vec e = {2, -1, 3, 11}, s = {0, 64, 12, 2};
    EXPECT_EQ(jorm_rowstride(JORM_WORD(4), s.data()), 64);
    EXPECT_EQ(jorm__rowstride(2, s.data() + 2), 0);
    EXPECT_EQ(jorm__rowstride2(2, e.data() + 2, s.data() + 2), 36);
    EXPECT_EQ(jorm__pixpadding(3, e.data() + 1, s.data() + 1), 12 - 4 * 2);
    EXPECT_EQ(jorm_rowpadding(JORM_WORD(3), e.data() + 1, s.data() + 1), 64 - 36);
    EXPECT_EQ(jorm__rowpadding(2, e.data() + 2, s.data() + 2), -36);
    EXPECT_EQ(jorm_volume__height(2, e.data()), 1);
    EXPECT_EQ(jorm_volume__nchannels(4, e.data()), 4);
    EXPECT_EQ(jorm_volume__capacity(3, e.data()), -6);
    EXPECT_EQ(jorm_volume__capacity_$Q(3, e.data()), 0);
    EXPECT_EQ(jorm_volume__capacity_$Q(0, nullptr), 1);
    EXPECT_EQ(jorm_volume__capacity(0, e.data()), 2);
    EXPECT_EQ(jorm_volume_pixcap(JORM_WORD(4), e.data()), -6);
    EXPECT_TRUE(jorm_volume__empty(2, e.data()));
    EXPECT_FALSE(jorm_volume__empty(1, e.data()));
    Vec v;
    EXPECT_EQ(vec_of(_jorm_Nvolume__$2(v.data(), 7, 3)), (Vec{1, 1, 7, 3}));
    EXPECT_EQ(vec_of(_jorm_Nvolume__$g3(v.data(), 2, 5, 7)), (Vec{2, 5, 7, 1}));
    EXPECT_EQ(jorm::element_size(15), 0);
    EXPECT_TRUE(jorm::well_formed(15) && !jorm::well_formed(5) && !jorm::well_formed(0x11));
}

TEST(Toolkit, MemorySizes) {
    Vec s = {0, -64, 0, 1};
    EXPECT_EQ(jorm_vmemsize(4, Vec{2, 5, 30, 3}.data(), s.data(), 0), 2u * 5 * 128);
    EXPECT_EQ(s, (Vec{640, 128, 3, 1}));
    s = {0, 200, 7, 2};
    EXPECT_EQ(jorm_vmemsizeL(JORM_WORD(3), Vec{9, 5, 30, 3}.data() + 1, s.data() + 1, 2), 5u * 210 + 64);
    EXPECT_EQ(s, (Vec{0, 210, 7, 2}));
    // Bad layouts leave the strides alone: no rows, no element, beyond 32 bits, no power of two.
    const Vec bad[][2] = {{{1, 0, 5, 1}, {0, 0, 0, 1}},
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
    EXPECT_EQ(vec_of(reinterpret_cast<int32_t *>(v.extent)), (Vec{1, 5, 10, 11}));
    ASSERT_EQ(_jorm_array__$sar(&w, &v, &inner), &w);
    EXPECT_EQ(w.loff, 3 * 80 + 4 * 4 + 1);
    EXPECT_EQ(vec_of(reinterpret_cast<int32_t *>(w.extent)), (Vec{1, 4, 3, 2}));
    jorm_site parent;
    jorm_arr_parsiteof(&w, &parent);
    EXPECT_EQ(vec_of(parent.origin), (Vec{0, -3, -4, -1}));
    EXPECT_EQ(vec_of(parent.size), (Vec{1, 10, 20, 11}));
    Vec index;
    EXPECT_EQ(jorm_arr_pt2pcs(&w, index.data(), Vec{2, 1}.data()), a.base);
    EXPECT_EQ(index, (Vec{0, 5, 5, 1}));
    const jorm_site around = {{0, -1, -1, 0}, {1, 7, 12, 4}}; // may leave the view, not the parent
    ASSERT_EQ(_jorm_array__$_sar$I(&v, &around), &v);
    EXPECT_EQ(v.loff, 80 - 4);
    const jorm_site outside = {{0, 10, 0, 0}, {1, 1, 1, 1}};
    _jorm_array__$sar$I(&w, &outside);
    EXPECT_EQ(vec_of(reinterpret_cast<int32_t *>(w.extent)), Vec{});
    const jorm_array big = make_array({1, 70000, 65536, 1});
    const jorm_site end = {{0, 69999, 0, 0}, {1, 1, 1, 1}};
    EXPECT_EQ(_jorm_array__$sar(&w, &big, &end), nullptr);
}

std::vector<int64_t> offsets(const int32_t *size, const int32_t *stride, int32_t n) {
    std::vector<int64_t> all = {0};
    for (int32_t i = 0; i < n; ++i) {
        std::vector<int64_t> next;
        for (int64_t base : all)
            for (int32_t k = 0; k < size[i]; ++k) next.push_back(base + int64_t(k) * stride[i]);
        all.swap(next);
    }
    return all;
}

// The reduced axes visit the same elements in the same order, and nothing that could be merged is left.
TEST(Reduce, KeepsTheWalk) {
    for (int round = 0; round < 5000; ++round) {
        Vec size, strides[2];
        for (auto &x : size) x = uniform(1, 3);
        for (auto &s : strides) {
            s[3] = uniform(0, 1) ? 1 : -2;
            for (int i = 2; i >= 0; --i) s[i] = uniform(0, 3) ? size[i + 1] * s[i + 1] : uniform(-50, 50);
        }
        const Vec old_size = size;
        const std::vector<int64_t> before[] = {offsets(size.data(), strides[0].data(), 4),
                                               offsets(size.data(), strides[1].data(), 4)};
        int32_t *pointers[] = {strides[0].data(), nullptr, strides[1].data()};
        const int32_t hint = uniform(-1, 5), held = hint < 0 ? 4 : std::clamp(hint, 1, 4);
        const auto n = int32_t(jorm_dims_xreduce(4, size.data(), 3, pointers, hint));
        ASSERT_GE(n, std::max(2, held));
        for (int k = 0; k < 2; ++k) {
            EXPECT_EQ(offsets(size.data() + 4 - n, strides[k].data() + 4 - n, n), before[k]);
            for (int i = 0; i < 4 - n; ++i) EXPECT_TRUE(size[i] == 1 && strides[k][i] == 0);
        }
        for (int i = 4 - held; i < 4; ++i) EXPECT_EQ(size[i], old_size[i]);
        for (int i = 4 - n; i < 4 - held; ++i) {
            EXPECT_TRUE(size[i] != 1 || n == held + 1);
            EXPECT_FALSE(i < 3 - held && strides[0][i] == size[i + 1] * strides[0][i + 1] &&
                         strides[1][i] == size[i + 1] * strides[1][i + 1]);
        }
    }
    Vec size = {2, 1 << 16, 1 << 15, 1}, stride = {0, 1 << 15, 1, 1};
    int32_t *pointer = stride.data();
    EXPECT_EQ(jorm_dims_xreduce(4, size.data(), 1, &pointer, 0), 4); // the product does not fit
    size[1] = 0;
    EXPECT_EQ(jorm_dims_xreduce(4, size.data(), 1, &pointer, 0), JORM_EINVAL);
    EXPECT_EQ(jorm_dims_xreduce(4, size.data(), 1, nullptr, 0), JORM_EINVAL);
}

} // namespace
