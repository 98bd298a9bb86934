#include "jorm/pointset.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <tuple>
#include <vector>

namespace {

using I = jorm_2d_pt;
using Points = std::vector<I>;
__extension__ typedef __int128 Big;

// The three families behind one set of overloads, for points that all of them can hold.
#define FAMILY(P, srt, hul, cpy, alo, area, ccw, cw, cvx, col)                                                         \
    void angular_sort(P *p, int n) { EXPECT_EQ(p, srt(p, n)); }                                                        \
    int hull(P *p, int n) { return hul(p, n); }                                                                        \
    int hull(P *out, const P *p, int n) { return cpy(out, p, n); }                                                     \
    int hull(const P *p, int n, P **out) { return alo(p, n, out); }                                                    \
    std::vector<double> shape(const P *p, int n) {                                                                     \
        return {area(p, n), double(ccw(p, n)), double(cw(p, n)), double(cvx(p, n)), double(col(p, n))};                \
    }
FAMILY(jorm_2d_pt, jorm_2d_ptv_sort_$I, jorm_2d_ptv_convexhull_$I, jorm_2d_ptv_convexhull, jorm_2d_ptv_aconvexhull,
       jorm_2d_ptv___sarea, jorm_2d_ptv_iscclockwise, jorm_2d_ptv_isclockwise, jorm_2d_ptv_isconvex,
       jorm_2d_ptv_all_colinear)
FAMILY(jorm_f2d_pt, jorm_f2d_ptv_sort_$I, jorm_f2d_ptv_convexhull_$I, jorm_f2d_ptv_convexhull, jorm_f2d_ptv_aconvexhull,
       jorm_f2d_ptv___sarea, jorm_f2d_ptv_iscclockwise, jorm_f2d_ptv_isclockwise, jorm_f2d_ptv_isconvex,
       jorm_f2d_ptv_all_colinear)
FAMILY(jorm_r2d_pt, jorm_r2d_ptv_sort_$I, jorm_r2d_ptv_convexhull_$I, jorm_r2d_ptv_convexhull, jorm_r2d_ptv_aconvexhull,
       jorm_r2d_ptv___sarea, jorm_r2d_ptv_iscclockwise, jorm_r2d_ptv_isclockwise, jorm_r2d_ptv_isconvex,
       jorm_r2d_ptv_all_colinear)

// Integer points on a grid of the given pitch.
template <class P> std::vector<P> on_grid(const Points &points, double origin, double pitch) {
    std::vector<P> v;
    for (I p : points) v.push_back({decltype(P::x)(origin + p.x * pitch), decltype(P::y)(origin + p.y * pitch)});
    return v;
}
template <class P> std::vector<std::pair<double, double>> pairs(const P *p, size_t n) {
    std::vector<std::pair<double, double>> v;
    for (size_t i = 0; i < n; ++i) v.emplace_back(p[i].x, p[i].y);
    return v;
}

// Positive when a, b, q turns clockwise (y up).
Big turn(I a, I b, I q) {
    return Big(int64_t(b.y) - a.y) * (int64_t(q.x) - a.x) - Big(int64_t(b.x) - a.x) * (int64_t(q.y) - a.y);
}
bool left_of(I a, I b) { return std::tie(a.x, a.y) < std::tie(b.x, b.y); }

// The documented result: nothing for n < 4, everything sorted when all triples are colinear, else the strict hull as a
// walk from edge to edge (gift wrapping) finds it.
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
    Points walk{v[0]};
    for (;;) {
        const I at = walk.back();
        I next = at;
        for (I p : v) {
            const Big t = turn(at, next, p);
            const auto far = [&](I q) { return std::abs(int64_t(q.x) - at.x) + std::abs(int64_t(q.y) - at.y); };
            if (t < 0 || (t == 0 && far(p) > far(next))) next = p;
        }
        if (next.x == v[0].x && next.y == v[0].y) return walk;
        walk.push_back(next);
    }
}

template <class P> void check_hull(const Points &points, const Points &expected, double origin, double pitch) {
    const auto in = on_grid<P>(points, origin, pitch), want = on_grid<P>(expected, origin, pitch);
    const int n = int(in.size());
    auto own = in, other = in;
    P *block = nullptr;
    ASSERT_EQ(want.size(), size_t(hull(own.data(), n)));
    ASSERT_EQ(want.size(), size_t(hull(other.data(), in.data(), n)));
    ASSERT_EQ(want.size(), size_t(hull(in.data(), n, &block)));
    ASSERT_EQ(pairs(want.data(), want.size()), pairs(own.data(), want.size()));
    ASSERT_EQ(pairs(want.data(), want.size()), pairs(other.data(), want.size()));
    ASSERT_EQ(pairs(want.data(), want.size()), pairs(block, want.size()));
    free(block);
}

// Kinds of sets within [-range, range).
Points some_points(std::mt19937 &rng, int kind, size_t n, int64_t range) {
    Points v;
    const auto one = [&] { return std::uniform_int_distribution<int64_t>(-range, range - 1)(rng); };
    while (v.size() < n) {
        I p = {int32_t(one()), int32_t(one())};
        if (kind == 1) p = {p.x / 3, p.x / 3 * 2};                                      // a line
        if (kind == 2) p = {p.x, int32_t(-range + int64_t(double(p.x) * p.x / range))}; // convex, dense corners
        if (kind == 3 && v.size() % 4) p = rng() % 2 ? I{p.x, int32_t(-range)} : I{int32_t(range - 1), p.y}; // on edges
        v.push_back(p);
        if (kind == 4 && v.size() < n) v.push_back(p); // twice
    }
    std::shuffle(v.begin(), v.end(), rng);
    return v;
}

TEST(PointSet, HullIsExact) {
    std::mt19937 rng(1);
    for (int64_t range : {int64_t(2), int64_t(12), int64_t(1000), int64_t(1) << 22, int64_t(1) << 31})
        for (size_t n : {1, 3, 4, 5, 7, 31, 32, 33, 300, 2000})
            for (int kind = 0; kind < 5; ++kind)
                for (int repeat = 0; repeat < (n < 100 ? 10 : 1); ++repeat) {
                    SCOPED_TRACE(testing::Message() << "range " << range << " n " << n << " kind " << kind);
                    const Points v = some_points(rng, kind, n, range), expected = expected_hull(v);
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
    // Exact turns of coordinates that are no grid: 0.3 is not three times 0.1.
    std::vector<jorm_r2d_pt> r = {{0, 0}, {0.1, 0.1}, {0.3, 3 * 0.1}, {0.3, 0}, {0.3, 0.3}};
    EXPECT_EQ(3, hull(r.data(), 5));
    EXPECT_EQ(3 * 0.1, r[1].y);
}

TEST(PointSet, HullOfAMillionInTime) {
    std::mt19937 rng(2);
    for (int kind = 0; kind < 3; ++kind) {
        Points v = some_points(rng, kind, 1000000, 1000000);
        const I first = *jorm_2d_ptv_lowest(v.data(), 1000000);
        const int n = hull(v.data(), 1000000);
        EXPECT_TRUE(first.x == v[0].x && first.y == v[0].y);
        EXPECT_TRUE(kind == 1 ? n == 1000000 : jorm_2d_ptv_isconvex(v.data(), n));
    }
}

// The order as it is described, with atan2.
bool comes_first(I pivot, I a, I b) {
    const double ax = double(a.x) - pivot.x, ay = double(a.y) - pivot.y, bx = double(b.x) - pivot.x;
    const double by = double(b.y) - pivot.y, turn = std::atan2(bx, by) - std::atan2(ax, ay);
    return std::fabs(turn) > 0x1p-23 ? turn > 0 : std::hypot(bx, by) - std::hypot(ax, ay) > 0x1p-23;
}

TEST(PointSet, SortsByAngleAndDistance) {
    std::mt19937 rng(3);
    for (int kind = 0; kind < 5; ++kind) {
        const Points v = some_points(rng, kind, 500, kind == 0 ? 2 : 1000);
        Points expected = v;
        const I pivot = *std::min_element(v.begin(), v.end(), left_of);
        std::sort(expected.begin(), expected.end(), [&](I a, I b) { return comes_first(pivot, a, b); });
        auto i = v;
        auto f = on_grid<jorm_f2d_pt>(v, 0, 1);
        auto r = on_grid<jorm_r2d_pt>(v, 0, 0x1p600);
        angular_sort(i.data(), 500), angular_sort(f.data(), 500), angular_sort(r.data(), 500);
        const auto want = pairs(expected.data(), 500);
        EXPECT_EQ(want, pairs(i.data(), 500));
        EXPECT_EQ(want, pairs(f.data(), 500));
        EXPECT_EQ(pairs(on_grid<jorm_r2d_pt>(expected, 0, 0x1p600).data(), 500), pairs(r.data(), 500));
    }
    // 3e-8 apart the nearer point precedes, 3e-7 apart the angle decides.
    Points v = {{0, 2000000000}, {30, 1000000000}, {300, 900000000}, {0, 0}};
    angular_sort(v.data(), 4);
    EXPECT_EQ((std::vector<std::pair<double, double>>{{0, 0}, {30, 1000000000}, {0, 2000000000}, {300, 900000000}}),
              pairs(v.data(), 4));
    // A fan within a few tolerances has no strict order, but keeps its points.
    Points fan = {{0, 0}};
    for (int i = 1; i < 3000; ++i) fan.push_back({int32_t(rng() % 500), int32_t(1000000000 + rng() % 1000000000)});
    Points sorted = fan;
    angular_sort(sorted.data(), 3000);
    EXPECT_TRUE(sorted[0].x == 0 && sorted[0].y == 0);
    std::sort(fan.begin(), fan.end(), left_of), std::sort(sorted.begin(), sorted.end(), left_of);
    EXPECT_EQ(pairs(fan.data(), 3000), pairs(sorted.data(), 3000));
}

TEST(PointSet, AreaOrientationConvexity) {
    const struct {
        Points points;
        std::vector<double> shape; // area, ccw, cw, convex, colinear
    } cases[] = {
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
    for (const auto &c : cases) {
        const int n = int(c.points.size());
        EXPECT_EQ(c.shape, shape(c.points.data(), n)) << &c - cases;
        EXPECT_EQ(c.shape, shape(on_grid<jorm_f2d_pt>(c.points, 0, 1).data(), n)) << &c - cases;
        EXPECT_EQ(c.shape, shape(on_grid<jorm_r2d_pt>(c.points, 0, 1).data(), n)) << &c - cases;
    }
    const int32_t lo = INT32_MIN, hi = INT32_MAX;
    const Points whole = {{lo, lo}, {lo, hi}, {hi, hi}, {hi, lo}}, thin = {{lo, lo}, {hi, hi - 1}, {hi, hi}};
    EXPECT_EQ((std::vector<double>{0x1p64 - 0x1p33 + 1, 0, 1, 1, 0}), shape(whole.data(), 4));
    EXPECT_EQ((std::vector<double>{-2147483647.5, 1, 0, 1, 0}), shape(thin.data(), 3));
}

TEST(PointSet, LowestAndBounds) {
    const Points v = {{3, 9}, {-2, 7}, {-2, -4}, {8, 1}, {-2, -4}};
    const float inf = std::numeric_limits<float>::infinity();
    EXPECT_EQ(&v[2], jorm_2d_ptv_lowest(v.data(), 5));
    EXPECT_EQ(nullptr, jorm_2d_ptv_lowest(nullptr, 5));
    jorm_2d_rect i;
    jorm_f2d_rect f;
    const auto box = [](auto b) {
        return std::vector<double>{double(b.x), double(b.y), double(b.width), double(b.height)};
    };
    EXPECT_EQ((std::vector<double>{-2, -4, 10, 13}), box(*jorm_2d_ptv_brect(&i, v.data(), 5)));
    EXPECT_EQ((std::vector<double>{INT32_MAX, INT32_MAX, 1, 1}), box(*jorm_2d_ptv_brect(&i, nullptr, 0)));
    EXPECT_EQ((std::vector<double>{inf, inf, -inf, -inf}), box(*jorm_f2d_ptv_brect(&f, nullptr, 0)));
    jorm_f2d_quad q;
    EXPECT_EQ((std::vector<std::pair<double, double>>{{-2, -4}, {-2, 9}, {8, 9}, {8, -4}}),
              pairs(jorm_2d_ptv_bquad_$f(&q, v.data(), 5)->pt, 4));
    jorm_2d_pt c[4];
    const jorm_r2d_pt r[] = {{0.5, -1.5}, {2.5, 2147483647.4}, {2147483647.5, -1e300}, {NAN, 7}};
    EXPECT_EQ((std::vector<std::pair<double, double>>{{0, -2}, {2, INT32_MAX}, {INT32_MIN, INT32_MIN}, {INT32_MIN, 7}}),
              pairs(jorm_2d_ptv_cast_$r(c, r, 4), 4));
}

TEST(PointSet, LeastRectangle) {
    std::mt19937 rng(4);
    for (int kind = 0; kind < 5; ++kind)
        for (size_t n : {2, 3, 4, 6, 40, 400})
            for (int range : {3, 1000}) {
                SCOPED_TRACE(testing::Message() << "range " << range << " n " << n << " kind " << kind);
                const Points v = some_points(rng, kind, n, range);
                jorm_r2d_quad q, box;
                ASSERT_EQ(&q, jorm_2d_ptv_minbquad_$r(&q, v.data(), int(n)));
                jorm_2d_ptv_bquad_$r(&box, v.data(), int(n));
                const auto side = [&](int a, int b) {
                    return std::hypot(q.pt[b].x - q.pt[a].x, q.pt[b].y - q.pt[a].y);
                };
                double least = (box.pt[2].x - box.pt[0].x) * (box.pt[2].y - box.pt[0].y);
                const bool flat = least == 0;
                // Every pair of points that has all others on one side spans an edge.
                for (I a : v)
                    for (I b : v) {
                        const double ex = b.x - a.x, ey = b.y - a.y;
                        double u0 = 0, u1 = 0, v0 = 0, v1 = 0;
                        for (I p : v) {
                            const double u = (p.x - a.x) * ex + (p.y - a.y) * ey,
                                         w = (p.y - a.y) * ex - (p.x - a.x) * ey;
                            u0 = std::min(u0, u), u1 = std::max(u1, u), v0 = std::min(v0, w), v1 = std::max(v1, w);
                            if (v1 > 0) break;
                        }
                        if (v1 <= 0 && ex * ex + ey * ey > 0)
                            least = std::min(least, (u1 - u0) * -v0 / (ex * ex + ey * ey));
                    }
                EXPECT_NEAR(least, side(0, 1) * side(1, 2), 1e-9 * range * range);
                EXPECT_NEAR(side(0, 2), side(1, 3), 1e-9 * range);
                EXPECT_TRUE(!flat || !memcmp(&q, &box, sizeof q));
                for (int k = 0; k < 4; ++k) { // all points inside, corners in order
                    const auto &a = q.pt[k], &b = q.pt[(k + 1) % 4];
                    for (I p : v)
                        EXPECT_GE((b.y - a.y) * (p.x - a.x) - (b.x - a.x) * (p.y - a.y), -1e-9 * range * range);
                }
                EXPECT_GT(q.pt[3].x - q.pt[0].x + 1e-9, std::fabs(q.pt[3].y - q.pt[0].y));
            }
    const Points diamond = {{0, -5}, {5, 0}, {0, 5}, {-5, 0}}, square = {{0, 0}, {0, 7}, {7, 0}, {7, 7}},
                 line = {{9, 6}, {0, 0}, {3, 2}};
    jorm_f2d_quad f;
    const auto corners = [&](const Points &p) {
        return pairs(jorm_2d_ptv_minbquad_$f(&f, p.data(), int(p.size()))->pt, 4);
    };
    EXPECT_EQ((std::vector<std::pair<double, double>>{{0, -5}, {-5, 0}, {0, 5}, {5, 0}}), corners(diamond));
    EXPECT_EQ((std::vector<std::pair<double, double>>{{0, 0}, {0, 7}, {7, 7}, {7, 0}}), corners(square));
    EXPECT_EQ((std::vector<std::pair<double, double>>{{0, 0}, {0, 0}, {9, 6}, {9, 6}}), corners(line));
    EXPECT_EQ(pairs(jorm_2d_ptv_bquad_$f(&f, nullptr, 0)->pt, 4), corners({}));
}

TEST(PointSet, OddFloatsDoNoHarm) {
    std::mt19937 rng(5);
    const double odd[] = {NAN, INFINITY, -INFINITY, 1e308, -1e308, 5e-324, -0.0, 1e155, 3, -7};
    for (int round = 0; round < 300; ++round) {
        std::vector<jorm_r2d_pt> v(round), out(round);
        // Mostly plain points, so that the odd ones can turn up anywhere on an otherwise useful outline.
        for (auto &p : v) p = {rng() % 1000 / 7.0, rng() % 1000 / 3.0};
        for (int k = round % 8; v.size() && k > 0; --k)
            (rng() % 2 ? v[rng() % round].x : v[rng() % round].y) = odd[rng() % 10];
        jorm_r2d_quad q;
        const int n = hull(out.data(), v.data(), round);
        EXPECT_TRUE(n <= round && n >= std::min(round, 2));
        jorm_r2d_ptv_minbquad(&q, v.data(), round);
        angular_sort(v.data(), round);
        shape(v.data(), round);
    }
}

} // namespace
