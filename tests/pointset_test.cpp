// Sorting by angle, hulls, orientation and enclosing rectangles of point sets against exact arithmetic.
#include "jorm/pointset.h"
#include "support/families.hpp"
#include "support/picture.hpp"

#include <cstdlib>

namespace {

using I = jorm_2d_pt;
using Points = std::vector<I>;
using Pairs = std::vector<std::pair<double, double>>;
__extension__ typedef __int128 Big;

// clang-format off
OF_ALL(ptv_sort_$I) OF_ALL(ptv_convexhull_$I) OF_ALL(ptv_convexhull) OF_ALL(ptv_aconvexhull) OF_ALL(ptv___sarea)
OF_ALL(ptv_iscclockwise) OF_ALL(ptv_isclockwise) OF_ALL(ptv_isconvex) OF_ALL(ptv_all_colinear)
    // clang-format on

    // Integer points on a grid of the given pitch.
    template <class P>
    std::vector<P> on_grid(const Points &points, double origin, double pitch) {
    std::vector<P> v;
    for (I p : points) v.push_back({decltype(P::x)(origin + p.x * pitch), decltype(P::y)(origin + p.y * pitch)});
    return v;
}
template <class P> Pairs pairs(const P *p, size_t n) {
    Pairs v;
    for (size_t i = 0; i < n; ++i) v.emplace_back(p[i].x, p[i].y);
    return v;
}

// Positive when a, b, q turns clockwise (y up).
Big turn(I a, I b, I q) {
    return Big(int64_t(b.y) - a.y) * (int64_t(q.x) - a.x) - Big(int64_t(b.x) - a.x) * (int64_t(q.y) - a.y);
}
bool left_of(I a, I b) { return std::tie(a.x, a.y) < std::tie(b.x, b.y); }

// The documented result: as it is for n < 4, sorted when all triples are colinear, else the corners.
Points expected_hull(Points v) {
    if (v.size() < 4) return v;
    std::iter_swap(v.begin(), std::min_element(v.begin(), v.end(), left_of));
    std::sort(v.begin() + 1, v.end(), [&](I a, I b) {
        const Big t = turn(v[0], a, b);
        return t != 0 ? t > 0 : left_of(a, b);
    });
    bool colinear = true;
    for (size_t i = 2; i < v.size(); ++i) colinear &= turn(v[i - 2], v[i - 1], v[i]) == 0;
    if (colinear) return v;
    Points corners;
    for (I q : v) {
        while (corners.size() > 1 && turn(corners.end()[-2], corners.back(), q) <= 0) corners.pop_back();
        corners.push_back(q);
    }
    return corners;
}

template <class P> void check_hull(const Points &points, const Points &expected, double origin, double pitch) {
    const auto in = on_grid<P>(points, origin, pitch), want = on_grid<P>(expected, origin, pitch);
    const int n = int(in.size());
    auto own = in, other = in;
    P *block = nullptr;
    const std::pair<int, const P *> results[] = {{ptv_convexhull_$I(own.data(), n), own.data()},
                                                 {ptv_convexhull(other.data(), in.data(), n), other.data()},
                                                 {ptv_aconvexhull(in.data(), n, &block), block}};
    for (const auto &[count, result] : results)
        ASSERT_EQ(pairs(want.data(), want.size()), pairs(result, size_t(count)));
    free(block);
}

// Kinds of sets within [-range, range).
Points some_points(Random &r, int kind, size_t n, int64_t range) {
    Points v;
    std::uniform_int_distribution<int32_t> one(int32_t(-range), int32_t(range - 1));
    while (v.size() < n) {
        I p = {one(r), one(r)};
        if (kind == 1) p = {p.x / 3, p.x / 3 * 2};                                      // a line
        if (kind == 2) p = {p.x, int32_t(-range + int64_t(double(p.x) * p.x / range))}; // convex, dense corners
        if (kind == 3 && v.size() % 4)
            p = r.one_in(2) ? I{int32_t(range - 1), p.y} : I{p.x, int32_t(-range)}; // on edges
        v.push_back(p);
        if (kind == 4 && v.size() < n) v.push_back(p); // twice
    }
    std::shuffle(v.begin(), v.end(), r);
    return v;
}

TEST(PointSet, HullIsExact) {
    Random r(1);
    for (int64_t range : {int64_t(2), int64_t(12), int64_t(1000), int64_t(1) << 22, int64_t(1) << 31})
        for (size_t n : {1, 3, 4, 5, 7, 31, 32, 33, 300, 2000})
            for (int kind = 0; kind < 5; ++kind)
                for (int repeat = 0; repeat < (n < 100 ? 10 : 1); ++repeat) {
                    SCOPED_TRACE(testing::Message() << "range " << range << " n " << n << " kind " << kind);
                    const Points v = some_points(r, kind, n, range), expected = expected_hull(v);
                    check_hull<jorm_2d_pt>(v, expected, 0, 1);
                    check_hull<jorm_r2d_pt>(v, expected, 0, 1);
                    if (range <= 1 << 22) check_hull<jorm_f2d_pt>(v, expected, 0, 0x1p30);
                    if (range > 1000) continue;
                    // Grids as fine as the format allows: only exact turns see them.
                    check_hull<jorm_f2d_pt>(v, expected, 1.5, 0x1p-23);
                    check_hull<jorm_r2d_pt>(v, expected, 1.5, 0x1p-52);
                    check_hull<jorm_r2d_pt>(v, expected, 0, 0x1p-300);
                }
    I point, *block = &point;
    for (int n : {0, -1, INT32_MIN}) EXPECT_EQ(0, jorm_2d_ptv_convexhull(&point, &point, n));
    EXPECT_EQ(0, jorm_2d_ptv_aconvexhull(nullptr, 5, &block));
    EXPECT_EQ(nullptr, block);
}

// Points whose differences are not exact in f64 and nearly in line, as multiples of 2^-53 (Kettner, Mehlhorn and
// others, "Classroom examples of robustness problems in geometric computations", 2008).
TEST(PointSet, TurnsOfFloatsAreExact) {
    Random r(6);
    const auto turn = [](const jorm_r2d_pt &a, const jorm_r2d_pt &b, const jorm_r2d_pt &q) {
        const auto d = [](double from, double to) { return Big(int64_t(to * 0x1p53) - int64_t(from * 0x1p53)); };
        return d(a.y, b.y) * d(a.x, q.x) - d(a.x, b.x) * d(a.y, q.y);
    };
    for (int round = 0; round < 2000; ++round) {
        std::vector<jorm_r2d_pt> v = {{12, 12}, {24, 24}, {12, 12 + 0x1p-49 * (round % 3 - 1)}};
        while (v.size() < 12) v.push_back({0.5 + r.in(0, 15) * 0x1p-53, 0.5 + r.in(0, 15) * 0x1p-53});
        auto h = v;
        const int n = jorm_r2d_ptv_convexhull_$I(h.data(), 12);
        for (int i = 0; i < n; ++i) {
            const auto &a = h[i], &b = h[(i + 1) % n];
            ASSERT_TRUE(turn(a, b, h[(i + 2) % n]) > 0);
            for (const auto &p : v) ASSERT_TRUE(turn(a, b, p) >= 0);
        }
    }
}

// The order as it is described, with atan2.
bool comes_first(I pivot, I a, I b) {
    const double ax = double(a.x) - pivot.x, ay = double(a.y) - pivot.y, bx = double(b.x) - pivot.x;
    const double by = double(b.y) - pivot.y, turn = std::atan2(bx, by) - std::atan2(ax, ay);
    return std::fabs(turn) > 0x1p-23 ? turn > 0 : std::hypot(bx, by) - std::hypot(ax, ay) > 0x1p-23;
}

template <class P> Pairs sorted_by_angle(std::vector<P> v) {
    EXPECT_EQ(ptv_sort_$I(v.data(), int(v.size())), v.data());
    return pairs(v.data(), v.size());
}

TEST(PointSet, SortsByAngleAndDistance) {
    Random r(3);
    for (int kind = 0; kind < 5; ++kind) {
        const Points v = some_points(r, kind, 500, kind == 0 ? 2 : 1000);
        Points expected = v;
        const I pivot = *std::min_element(v.begin(), v.end(), left_of);
        std::sort(expected.begin(), expected.end(), [&](I a, I b) { return comes_first(pivot, a, b); });
        EXPECT_EQ(pairs(expected.data(), 500), sorted_by_angle(v));
        EXPECT_EQ(pairs(expected.data(), 500), sorted_by_angle(on_grid<jorm_f2d_pt>(v, 0, 1)));
        EXPECT_EQ(pairs(on_grid<jorm_r2d_pt>(expected, 0, 0x1p600).data(), 500),
                  sorted_by_angle(on_grid<jorm_r2d_pt>(v, 0, 0x1p600)));
    }
    // 3e-8 apart the nearer point precedes, 3e-7 apart the angle decides; pi apart is far apart.
    const Points order = {{0, 0}, {30, 1000000000}, {0, 2000000000}, {300, 900000000}, {1, -20000000}};
    Points v = order;
    std::sort(v.begin(), v.end(), left_of);
    do EXPECT_EQ(pairs(order.data(), 5), sorted_by_angle(v));
    while (std::next_permutation(v.begin(), v.end(), left_of));
    // A fan within a few tolerances has no strict order, but keeps its points.
    Points fan = {{0, 0}};
    while (fan.size() < 3000) fan.push_back({r.in(0, 499), r.in(1000000000, 1999999999)});
    Pairs sorted = sorted_by_angle(fan), all = pairs(fan.data(), 3000);
    EXPECT_EQ(sorted[0], all[0]);
    EXPECT_TRUE(std::is_permutation(sorted.begin(), sorted.end(), all.begin()));
}

template <class P> std::vector<double> shape(const std::vector<P> &v) {
    const int n = int(v.size());
    return {ptv___sarea(v.data(), n), double(ptv_iscclockwise(v.data(), n)), double(ptv_isclockwise(v.data(), n)),
            double(ptv_isconvex(v.data(), n)), double(ptv_all_colinear(v.data(), n))};
}

TEST(PointSet, AreaOrientationConvexity) {
    const std::pair<Points, std::vector<double>> cases[] = {
        // area, ccw, cw, convex, colinear
        {{}, {0, 0, 1, 0, 1}},
        {{{3, 4}, {5, 6}}, {0, 0, 1, 0, 1}},
        {{{0, 0}, {0, 1}, {1, 1}, {1, 0}}, {1, 0, 1, 1, 0}},
        {{{0, 0}, {1, 0}, {1, 1}, {0, 1}}, {-1, 1, 0, 1, 0}},
        {{{0, 0}, {0, 4}, {1, 1}, {4, 0}}, {4, 0, 1, 0, 0}},
        {{{0, 0}, {0, 2}, {0, 4}, {4, 0}}, {8, 0, 1, 1, 0}}, // no turn at (0, 2) goes with the positive ones
        {{{0, 0}, {4, 0}, {0, 4}, {0, 2}}, {-8, 1, 0, 0, 0}},
        {{{0, 0}, {2, 2}, {2, 2}, {5, 0}}, {5, 0, 1, 1, 1}}, // a hidden corner
        {{{-5, -5}, {5, 5}, {1, 1}}, {0, 0, 1, 1, 1}},
    };
    for (const auto &[points, wanted] : cases) {
        EXPECT_EQ(wanted, shape(points));
        EXPECT_EQ(wanted, shape(on_grid<jorm_f2d_pt>(points, 0, 1)));
        EXPECT_EQ(wanted, shape(on_grid<jorm_r2d_pt>(points, 0, 1)));
    }
    const int32_t lo = INT32_MIN, hi = INT32_MAX;
    const Points whole = {{lo, lo}, {lo, hi}, {hi, hi}, {hi, lo}}, thin = {{lo, lo}, {hi, hi - 1}, {hi, hi}};
    EXPECT_EQ((std::vector<double>{0x1p64 - 0x1p33 + 1, 0, 1, 1, 0}), shape(whole));
    EXPECT_EQ((std::vector<double>{-2147483647.5, 1, 0, 1, 0}), shape(thin));
}

TEST(PointSet, LowestBoundsAndCasts) {
    const Points v = {{3, 9}, {-2, 7}, {-2, -4}, {8, 1}, {-2, -4}};
    EXPECT_EQ(&v[2], jorm_2d_ptv_lowest(v.data(), 5));
    EXPECT_EQ(nullptr, jorm_2d_ptv_lowest(nullptr, 5));
    jorm_2d_rect i;
    jorm_f2d_rect f;
    jorm_f2d_quad q;
    const auto box = [](auto *b) { return Pairs{{b->x, b->y}, {b->width, b->height}}; };
    EXPECT_EQ((Pairs{{-2, -4}, {10, 13}}), box(jorm_2d_ptv_brect(&i, v.data(), 5)));
    EXPECT_EQ((Pairs{{INT32_MAX, INT32_MAX}, {1, 1}}), box(jorm_2d_ptv_brect(&i, nullptr, 0)));
    EXPECT_EQ((Pairs{{inf, inf}, {-inf, -inf}}), box(jorm_f2d_ptv_brect(&f, nullptr, 0)));
    EXPECT_EQ((Pairs{{-2, -4}, {-2, 9}, {8, 9}, {8, -4}}), pairs(jorm_2d_ptv_bquad_$f(&q, v.data(), 5)->pt, 4));
    I c[4];
    const jorm_r2d_pt r[] = {{0.5, -1.5}, {2.5, 2147483647.4}, {2147483647.5, -1e300}, {nan, 7}};
    EXPECT_EQ((Pairs{{0, -2}, {2, INT32_MAX}, {INT32_MIN, INT32_MIN}, {INT32_MIN, 7}}),
              pairs(jorm_2d_ptv_cast_$r(c, r, 4), 4));
}

TEST(PointSet, LeastRectangle) {
    Random r(4);
    for (int round = 0; round < 400; ++round) {
        const int range = round % 2 ? 3 : round % 4 ? 40 : 1000; // edges of one unit, of many
        const size_t n = round % 10 ? size_t(r.in(2, 9)) : size_t(r.in(40, 200));
        const Points v = some_points(r, round % 5, n, range);
        jorm_r2d_quad q, box;
        ASSERT_EQ(&q, jorm_2d_ptv_minbquad_$r(&q, v.data(), int(n)));
        jorm_2d_ptv_bquad_$r(&box, v.data(), int(n));
        const auto side = [&](int a, int b) { return std::hypot(q.pt[b].x - q.pt[a].x, q.pt[b].y - q.pt[a].y); };
        double least = (box.pt[2].x - box.pt[0].x) * (box.pt[2].y - box.pt[0].y);
        const bool flat = least == 0;
        // No direction beats those of the edges, which are among these.
        for (I a : v)
            for (I b : v) {
                const double ex = b.x - a.x, ey = b.y - a.y;
                double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
                for (I p : v) {
                    const double u = (p.x - a.x) * ex + (p.y - a.y) * ey, w = (p.y - a.y) * ex - (p.x - a.x) * ey;
                    u0 = std::min(u0, u), u1 = std::max(u1, u), v0 = std::min(v0, w), v1 = std::max(v1, w);
                }
                if (u1 > 0) least = std::min(least, (u1 - u0) * (v1 - v0) / (ex * ex + ey * ey));
            }
        EXPECT_NEAR(least, side(0, 1) * side(1, 2), 1e-9 * range * range);
        EXPECT_NEAR(side(0, 2), side(1, 3), 1e-9 * range);
        EXPECT_TRUE(!flat || !memcmp(&q, &box, sizeof q));
        for (int k = 0; k < 4; ++k) { // all points inside, corners in order
            const auto &a = q.pt[k], &b = q.pt[(k + 1) % 4];
            for (I p : v) EXPECT_GE((b.y - a.y) * (p.x - a.x) - (b.x - a.x) * (p.y - a.y), -1e-9 * range * range);
        }
        EXPECT_GT(q.pt[3].x - q.pt[0].x + 1e-9, std::fabs(q.pt[3].y - q.pt[0].y));
    }
    jorm_f2d_quad f;
    const auto corners = [&](Points p) { return pairs(jorm_2d_ptv_minbquad_$f(&f, p.data(), int(p.size()))->pt, 4); };
    EXPECT_EQ((Pairs{{0, -5}, {-5, 0}, {0, 5}, {5, 0}}), corners({{0, -5}, {5, 0}, {0, 5}, {-5, 0}}));
    EXPECT_EQ((Pairs{{0, 0}, {0, 7}, {7, 7}, {7, 0}}),
              corners({{0, 7}, {0, 0}, {7, 7}})); // as small as along the edges
    EXPECT_EQ((Pairs{{0, 0}, {0, 0}, {9, 6}, {9, 6}}), corners({{9, 6}, {0, 0}, {3, 2}}));
    EXPECT_EQ(pairs(jorm_2d_ptv_bquad_$f(&f, nullptr, 0)->pt, 4), corners({}));
}

} // namespace
