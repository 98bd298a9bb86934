// Resizing over random types, layouts, regions, factors and levels, against the rule in exact fractions.
#include "jorm/resample.h"
#include "support/picture.hpp"

namespace {

using Whole = __int128;
const uint32_t types[] = {JORM_U8, JORM_S8, JORM_U16, JORM_S16, JORM_S32, JORM_F32, JORM_S64, JORM_F64};

Whole floor_of(Whole a, Whole b) { return a / b - (a % b < 0); }

// floor((i + 0.5) / (p / q) + eighths / 8) within [0, size).
int source_of(int i, int64_t p, int64_t q, int eighths, int size) {
    const Whole position = floor_of(Whole(2 * i + 1) * q * 4 + Whole(eighths) * p, Whole(8) * p);
    return int(std::clamp<Whole>(position, 0, size - 1));
}

struct Along {
    int64_t p, q; // the factor
    bool mirrored;
    int eighths;
};

void check_resize(Random &r, bool large) {
    const uint32_t type = r.of(types);
    const int axes = r.in(3, 4), channels = r.in(1, 4), most = large ? 300 : 20;
    const Index size = {axes == 4 ? r.in(1, 3) : 1, r.in(1, large ? 5 : 12), r.in(1, most), channels};
    const Index from = {axes == 4 ? r.in(1, 3) : 1, r.in(1, large ? 5 : 12), r.in(1, most), channels};
    Picture src(r, type, from, false, axes), dst(r, type, size, false, axes);

    const Part to_part(r, size), from_part(r, from);
    const Index &o = to_part.origin, &a = from_part.origin;
    Index n = to_part.size, m = from_part.size;
    const bool offset = r.one_in(2);

    // The whole of both regions, also mirrored, or a factor that leaves a part of one of them out.
    double factors[4] = {r.one_in(2) ? 0. : 7., 0, 0, 5}, offsets[4] = {0, 0, 0, nan};
    Along along[3];
    for (size_t k = 0; k < 3; ++k) {
        along[k] = {n[k], m[k], false, 0};
        if (axes == 3 && k == 0) continue;
        const int kind = r.in(0, 2);
        if (kind == 2) {
            along[k].p = r.in(1, 9), along[k].q = r.in(1, 9);
            const double f = double(along[k].p) / double(along[k].q), part = m[k] * f;
            if (std::ceil(part) < n[k])
                n[k] = int(std::nearbyint(part));
            else if (n[k] < std::floor(part))
                m[k] = int(std::nearbyint(n[k] / f));
        }
        along[k].mirrored = kind > 0 && r.one_in(2);
        factors[k] = kind == 0 ? r.of(std::array{0., 1e-8, -0.}) : double(along[k].p) / double(along[k].q);
        if (along[k].mirrored) factors[k] = -factors[k];
        if (offset) offsets[k] = (along[k].eighths = r.in(-30, 30)) / 8.;
    }
    n[3] = m[3] = std::min(n[3], m[3]);
    const bool nothing = n[0] < 1 || n[1] < 1 || n[2] < 1 || m[0] < 1 || m[1] < 1 || m[2] < 1;

    Bytes expected = dst.memory;
    each(nothing ? Index{} : n, [&](const Index &i) {
        Index to = i, at = a;
        for (size_t k = 0; k < 3; ++k) {
            at[k] += source_of(i[k], along[k].p, along[k].q, along[k].eighths, m[k]);
            if (along[k].mirrored) to[k] = n[k] - 1 - i[k];
        }
        at[3] += i[3];
        std::memcpy(&expected[size_t(dst.at(sum(to, o)) - dst.memory.data())], src.at(at), size_t(bytes_of(type)));
    });
    Env xe;
    at_each_level(dst, [&](int level) {
        double f[4];
        std::copy(factors, factors + 4, f);
        const int64_t status = offset ? JormEResize(xe, 0, &dst.a, &src.a, to_part.roi(), from_part.roi(), f, offsets)
                                      : JormResize(xe, 0, &dst.a, &src.a, to_part.roi(), from_part.roi(), f);
        ASSERT_EQ(status, nothing ? JORM_EEMPTY : JORM_OK);
        ASSERT_TRUE(dst.memory == expected) << "type " << type << " level " << level;
        for (int k = 0; k < 4; ++k) {
            const bool replaced = k < 3 && !nothing && std::fabs(factors[k]) < 1e-7;
            ASSERT_EQ(f[k], replaced ? double(along[k].p) / double(along[k].q) : factors[k]);
        }
    });
}

TEST(Resize, ReadsTheNearest) {
    Random r(41);
    for (int i = 0; i < 3000; ++i) check_resize(r, false);
    for (int i = 0; i < 1200; ++i) check_resize(r, true);
}

// Every pair of sizes of one row, where rounded quotients would go wrong.
TEST(Resize, IsExactForSizes) {
    Env xe;
    std::vector<int32_t> from(600), to(600);
    for (int i = 0; i < 600; ++i) from[size_t(i)] = i;
    Random r(42);
    jorm_array dst, src;
    const auto rows = [&](int n, int m) {
        jorm_array_make(&dst, JORM_S32, 1, n, 1, 0, to.data());
        jorm_array_make(&src, JORM_S32, 1, m, 1, 0, from.data());
    };
    for (int trial = 0; trial < 4000; ++trial) {
        const int32_t n = r.in(1, 600), m = r.in(1, 600), dst_size[] = {1, 1, n, 1}, src_size[] = {1, 1, m, 1};
        rows(n, m);
        double factors[4];
        ASSERT_EQ(JormResize(xe, 0, &dst, &src, nullptr, nullptr, jorm_mkreszf(factors, dst_size, src_size)), 0);
        for (int i = 0; i < n; ++i) ASSERT_EQ(to[size_t(i)], source_of(i, n, m, 0, m)) << n << " of " << m;
    }
    // A factor that is no quotient of sizes counts as the number that it is: here 1.5 / f is just below 3.
    rows(4, 8);
    double factors[4] = {0, 0, std::nextafter(0.5, 1), 0};
    const double offsets[4] = {0, 0, std::nextafter(-1., -2), 0};
    ASSERT_EQ(JormResize(xe, 0, &dst, &src, nullptr, nullptr, factors), 0);
    EXPECT_EQ(to[1], 2);
    factors[2] = 0.5;
    ASSERT_EQ(JormEResize(xe, 0, &dst, &src, nullptr, nullptr, factors, offsets), 0);
    EXPECT_EQ((std::array{to[0], to[1], to[2]}), (std::array{0, 1, 3})); // just below 0, 2, 4
}

TEST(Resize, FactorsThatCannotBe) {
    Random r(43);
    Picture dst(r, JORM_U8, {1, 6, 6, 3}, true), src(r, JORM_U8, {1, 4, 4, 3}, true);
    Env xe;
    const Bytes before = dst.memory;
    for (const double bad : {nan, inf, -inf}) {
        double factors[4] = {0, 0, bad, 0}, offsets[4] = {0, bad, 0, 0}, none[4] = {};
        expect_each(JORM_EINVAL, {JormEResize(xe, 0, &dst.a, &src.a, nullptr, nullptr, factors, nullptr),
                                  JormEResize(xe, 0, &dst.a, &src.a, nullptr, nullptr, none, offsets)});
        expect_each(0, {int64_t(none[0]), int64_t(none[1]), int64_t(none[2])});
    }
    // The halves of one picture: apart side by side, not with one column in common.
    jorm_array left = dst.a, right = dst.a;
    left.extent[2] = right.extent[2] = 3;
    right.loff += 6;
    EXPECT_EQ(JormResize(xe, 0, &left, &right, nullptr, nullptr, nullptr), JORM_EINVAL);
    EXPECT_EQ(dst.memory, before);
    right.loff += 3;
    EXPECT_EQ(JormResize(xe, 0, &left, &right, nullptr, nullptr, nullptr), JORM_OK);

    const int32_t to[4] = {3, 10, -4, 3}, from[4] = {6, 0, 8, 1};
    double f[4] = {nan, nan, nan, nan}, g[4] = {nan, 7, -inf, 0};
    EXPECT_EQ(jorm_mkreszf(f, to, from), f);
    EXPECT_EQ(std::vector(f, f + 4), (std::vector<double>{0.5, 0, -0.5, 1}));
    EXPECT_EQ(jorm_fixreszf(f, to, from), 0); // no factor for the rows
    EXPECT_EQ(jorm_fixreszf(g, to, from), 1);
    EXPECT_EQ(std::vector(g, g + 4), (std::vector<double>{0.5, 7, -0.5, 1}));
    expect_each(0, {jorm_fixreszf(nullptr, to, from), jorm_mkreszf(nullptr, to, from) != nullptr,
                    jorm_fixreszf(f, nullptr, nullptr)});
}

} // namespace
