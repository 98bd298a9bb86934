#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "jorm/geometry.h"

namespace {

__extension__ typedef __int128 Wide;
using Real = long double;
constexpr int32_t lowest = INT32_MIN, highest = INT32_MAX;
constexpr double inf = std::numeric_limits<double>::infinity(), nan = std::numeric_limits<double>::quiet_NaN();
const int32_t extremes[] = {lowest, lowest + 1, -65536, -1, 0, 1, 46341, 1 << 30, highest - 1, highest};

// The functions of a family that all three have.
template <class P, class R, class K, class C> struct Family {
    using Pt = P;
    using Rect = R;
    using Crect = K;
    using Centre = C;
    using T = decltype(P::x);
    int32_t (*intersec)(R *, const R *, const R *);
    R *(*unite)(R *, const R *, const R *);
    int32_t (*inside)(const R *, const P *);
    K *(*of_rect)(K *, const R *);
    R *(*of_crect)(R *, const K *);
    int32_t (*cinside)(const K *, const P *);
    int32_t (*poly_inside)(const P *, int32_t, const P *);
    double (*perimeter)(const P *, int32_t);
    C *(*poly_centroid)(C *, const P *, int32_t);
    jorm_r2d_moment2 *(*poly_moment2)(jorm_r2d_moment2 *, const P *, int32_t);
    jorm_r2d_moment2 *(*poly_central)(jorm_r2d_moment2 *, const P *, int32_t);
    C *(*centroid)(C *, const P *, int32_t);
    jorm_r2d_moment2 *(*moment2)(jorm_r2d_moment2 *, const P *, int32_t);
    jorm_r2d_moment2 *(*central)(jorm_r2d_moment2 *, const P *, int32_t);
};

const Family<jorm_2d_pt, jorm_2d_rect, jorm_2d_crect, jorm_r2d_pt> family_2d = {
    jorm_2d_rect_intersec,  jorm_2d_rect_unite,    jorm_2d_rect_inside,     __jorm_2d_crect__$rect,
    __jorm_2d_rect__$crect, jorm_2d_crect_inside,  jorm_2d_poly_inside,     jorm_2d_poly_perimeter,
    jorm_2d_poly_centroid,  jorm_2d_poly_moment2,  jorm_2d_poly_moment2_$c, jorm_2d_ptv_centroid,
    jorm_2d_ptv_moment2,    jorm_2d_ptv_moment2_$c};
const Family<jorm_f2d_pt, jorm_f2d_rect, jorm_f2d_crect, jorm_f2d_pt> family_f2d = {
    jorm_f2d_rect_intersec,  jorm_f2d_rect_unite,    jorm_f2d_rect_inside,     __jorm_f2d_crect__$rect,
    __jorm_f2d_rect__$crect, jorm_f2d_crect_inside,  jorm_f2d_poly_inside,     jorm_f2d_poly_perimeter,
    jorm_f2d_poly_centroid,  jorm_f2d_poly_moment2,  jorm_f2d_poly_moment2_$c, jorm_f2d_ptv_centroid,
    jorm_f2d_ptv_moment2,    jorm_f2d_ptv_moment2_$c};
const Family<jorm_r2d_pt, jorm_r2d_rect, jorm_r2d_crect, jorm_r2d_pt> family_r2d = {
    jorm_r2d_rect_intersec,  jorm_r2d_rect_unite,    jorm_r2d_rect_inside,     __jorm_r2d_crect__$rect,
    __jorm_r2d_rect__$crect, jorm_r2d_crect_inside,  jorm_r2d_poly_inside,     jorm_r2d_poly_perimeter,
    jorm_r2d_poly_centroid,  jorm_r2d_poly_moment2,  jorm_r2d_poly_moment2_$c, jorm_r2d_ptv_centroid,
    jorm_r2d_ptv_moment2,    jorm_r2d_ptv_moment2_$c};

template <class Test> void each_family(Test test) {
    test(family_2d);
    test(family_f2d);
    test(family_r2d);
}

void near(double got, Real want, Real tolerance, const char *what) {
    EXPECT_LE(std::fabs(got - want), tolerance) << what << ": got " << got << ", want " << double(want);
}

TEST(Points, IntegersNeverOverflow) {
    for (int32_t ax : extremes)
        for (int32_t ay : extremes)
            for (int32_t bx : extremes)
                for (int32_t by : extremes) {
                    const jorm_2d_pt a = {ax, ay}, b = {bx, by};
                    const Wide dx = Wide(ax) - bx, dy = Wide(ay) - by;
                    jorm_2d_pt c;
                    ASSERT_EQ(jorm_2d_pt_sub(&c, &a, &b), &c);
                    EXPECT_EQ(uint32_t(c.x), uint32_t(dx));
                    EXPECT_EQ(uint32_t(c.y), uint32_t(dy));
                    EXPECT_TRUE(jorm_2d_pt_equal(jorm_2d_pt_add_$I(&c, &b), &a));
                    EXPECT_EQ(jorm_2d_pt_dot(&a, &b), int64_t(Wide(ax) * bx + Wide(ay) * by));
                    EXPECT_EQ(jorm_2d_pt_cross(&a, &b), Wide(ax) * by - Wide(ay) * bx);
                    EXPECT_EQ(jorm_2d_pt_dist2(&a, &b), int64_t(dx * dx + dy * dy));
                    const Real d = std::sqrt(Real(dx * dx + dy * dy));
                    near(jorm_2d_pt_dist(&a, &b), d, d * 2e-16L, "distance");
                }
}

TEST(Points, RoundToNearestEven) {
    const struct {
        double in;
        int32_t out;
    } cases[] = {{0.5, 0},
                 {1.5, 2},
                 {-2.5, -2},
                 {2147483647.4, highest},
                 {2147483647.5, lowest},
                 {-2147483648.5, lowest},
                 {-3e9, lowest},
                 {1e300, lowest},
                 {nan, lowest},
                 {-inf, lowest},
                 {-2147483648.75, lowest}};
    for (const auto &c : cases) {
        const jorm_r2d_pt r = {c.in, 7};
        const jorm_f2d_pt f = {float(c.in), 7};
        const jorm_2d_pt one = {1, 7};
        jorm_2d_pt p, q, s;
        __jorm_2d_point__$cast$r(&p, &r);
        __jorm_2d_point__$cast$f(&q, &f);
        jorm_2d_pt_scale(&s, &one, c.in);
        EXPECT_EQ(p.x, c.out) << c.in;
        EXPECT_EQ(p.y, 7);
        EXPECT_EQ(s.x, c.out) << c.in;
        if (double(f.x) == c.in) {
            EXPECT_EQ(q.x, c.out) << c.in;
        }
    }
}

TEST(Points, RotationRunsFromXTowardY) {
    const jorm_r2d_pt a = {3, 1}, centre = {1, 1};
    jorm_r2d_pt r;
    jorm_r2d_pt_rotate(&r, &a, &centre, std::acos(-1.0) / 2);
    near(r.x, 1, 1e-15L, "x");
    near(r.y, 3, 1e-15L, "y");
    const jorm_r2d_pt far = {3e300, 4e300}, origin = {0, 0};
    near(jorm_r2d_pt_norm(&far), 5e300L, 1e285L, "norm");
    near(jorm_r2d_pt_dist(&origin, &far), 5e300L, 1e285L, "distance");
}

// Rectangles on a small lattice against the membership of its points.
TEST(Rectangles, SetsOfPoints) {
    each_family([](const auto &f) {
        using F = std::decay_t<decltype(f)>;
        using T = typename F::T;
        std::mt19937 random(1);
        std::uniform_int_distribution<int> at(-3, 3), size(-1, 5);
        for (int round = 0; round < 3000; ++round) {
            const typename F::Rect a = {T(at(random)), T(at(random)), T(size(random)), T(size(random))};
            const typename F::Rect b = {T(at(random)), T(at(random)), T(size(random)), T(size(random))};
            const bool full_a = a.width > 0 && a.height > 0, full_b = b.width > 0 && b.height > 0;
            typename F::Rect both = a, hull = b, back;
            typename F::Crect corners;
            const int32_t met = f.intersec(&both, &both, &b);
            f.unite(&hull, &a, &hull);
            f.of_rect(&corners, &a);
            f.of_crect(&back, &corners);
            EXPECT_EQ(met, both.width > 0 && both.height > 0);
            EXPECT_TRUE(back.x == a.x && back.y == a.y && back.width == a.width && back.height == a.height);
            T x1 = -99, y1 = -99;
            for (T y = -5; y <= 9; ++y)
                for (T x = -5; x <= 9; ++x) {
                    const typename F::Pt p = {x, y};
                    const bool in_a = x >= a.x && x - a.x <= a.width && y >= a.y && y - a.y <= a.height;
                    const bool in_b = x >= b.x && x - b.x <= b.width && y >= b.y && y - b.y <= b.height;
                    ASSERT_EQ(f.inside(&a, &p), in_a);
                    ASSERT_EQ(f.cinside(&corners, &p), in_a);
                    ASSERT_EQ(f.inside(&both, &p), in_a && in_b);
                    if ((full_a && in_a) || (full_b && in_b)) {
                        ASSERT_TRUE(f.inside(&hull, &p));
                        x1 = std::max(x1, x);
                        y1 = std::max(y1, y);
                    }
                }
            if (full_a || full_b) {
                EXPECT_TRUE(hull.x + hull.width == x1 && hull.y + hull.height == y1);
            }
        }
    });
}

TEST(Rectangles, Extremes) {
    const jorm_2d_rect left = {lowest, lowest, 1, 1}, right = {highest, highest, 1, 1};
    jorm_2d_rect out;
    EXPECT_EQ(jorm_2d_rect_intersec(&out, &left, &right), 0);
    EXPECT_TRUE(jorm_2d_rect_empty(&out));
    const jorm_2d_rect wide = {highest - 1, 0, highest, highest};
    const jorm_2d_pt in = {highest, 5}, outside = {lowest, 5};
    EXPECT_TRUE(jorm_2d_rect_inside(&wide, &in));
    EXPECT_FALSE(jorm_2d_rect_inside(&wide, &outside));
    EXPECT_EQ(jorm_2d_rect_area(&wide), 2147483647.0 * 2147483647.0);
    jorm_r2d_pt centre;
    jorm_2d_rect_centre(&centre, &wide);
    EXPECT_EQ(centre.x, 2147483646.0 + 1073741823.5);
    jorm_2d_rect grown = wide;
    jorm_2d_rect_grow_$I(&grown, highest, lowest);
    EXPECT_EQ(grown.x, -1);
    EXPECT_EQ(grown.y, lowest);
    EXPECT_EQ(grown.width, highest - 2); // 3 highest less 2^32
    EXPECT_EQ(grown.height, highest);
}

TEST(Rectangles, FloatsHoldWhatSpansThem) {
    std::mt19937 random(2);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    std::uniform_int_distribution<int> exponent(-30, 30);
    const auto coordinate = [&] { return std::ldexp(mantissa(random), exponent(random)); };
    const auto check = [&](const auto &f) {
        using F = std::decay_t<decltype(f)>;
        using T = typename F::T;
        const typename F::Pt a = {T(coordinate()), T(coordinate())}, b = {T(coordinate()), T(coordinate())};
        typename F::Crect corners = {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
        typename F::Rect rect, out;
        f.of_crect(&rect, &corners);
        ASSERT_TRUE(f.inside(&rect, &a) && f.inside(&rect, &b));
        rect.width = T(std::fabs(coordinate()));
        f.intersec(&out, &rect, &rect);
        ASSERT_TRUE(out.x == rect.x && out.y == rect.y && out.width == rect.width && out.height == rect.height);
        f.unite(&out, &rect, &rect);
        ASSERT_TRUE(out.x == rect.x && out.y == rect.y && out.width == rect.width && out.height == rect.height);
    };
    for (int round = 0; round < 100000; ++round) {
        check(family_f2d);
        check(family_r2d);
    }
}

TEST(Rectangles, Corners) {
    const jorm_2d_pt a = {5, -7}, b = {-2, 9};
    jorm_2d_rect rect;
    EXPECT_EQ(__jorm_2d_rect__$pts(&rect, &a, &b)->height, 16);
    jorm_2d_crect c = {5, 9, -2, -7};
    EXPECT_TRUE(jorm_2d_crect_empty(&c));
    jorm_2d_crect_normalize_$I(&c);
    const jorm_2d_crect small = {-9, 1, -1, 3};
    EXPECT_TRUE(c.x0 == -2 && c.y0 == -7 && c.x1 == 5 && c.y1 == 9 && jorm_2d_crect_intersec_$I(&c, &small));
    EXPECT_TRUE(c.x0 == -2 && c.y0 == 1 && c.x1 == -1 && c.y1 == 3);
    jorm_2d_crect_include_$I(jorm_2d_crect_include_$I(&c, &a), &b);
    EXPECT_TRUE(c.x0 == -2 && c.y0 == -7 && c.x1 == 5 && c.y1 == 9);
}

// A ray of slope 1 / 1000 meets no point of the small lattice but its own start.
template <class P> bool inside_oracle(const std::vector<P> &points, int x, int y) {
    const auto side = [&](const P &p) { return 1000 * (int(p.y) - y) - (int(p.x) - x); };
    bool odd = false;
    for (size_t i = 0; i < points.size(); ++i) {
        const P &p = points[i], &q = points[(i + 1) % points.size()];
        const int px = int(p.x) - x, py = int(p.y) - y, qx = int(q.x) - x, qy = int(q.y) - y;
        const int cross = px * qy - py * qx;
        if (cross == 0 && px * qx <= 0 && py * qy <= 0) return true;
        const int sp = side(p), sq = side(q);
        if ((sp < 0) != (sq < 0) && (cross > 0) == (sq > sp)) odd = !odd;
    }
    return odd;
}

TEST(Polygons, EvenOddRule) {
    each_family([](const auto &f) {
        using P = typename std::decay_t<decltype(f)>::Pt;
        using T = decltype(P::x);
        std::mt19937 random(3);
        std::uniform_int_distribution<int> at(-4, 4), count(1, 7);
        for (int round = 0; round < 1500; ++round) {
            std::vector<P> points(count(random));
            for (P &p : points) p = {T(at(random)), T(at(random))};
            for (int y = -5; y <= 5; ++y)
                for (int x = -5; x <= 5; ++x) {
                    const P b = {T(x), T(y)};
                    ASSERT_EQ(f.poly_inside(points.data(), int32_t(points.size()), &b), inside_oracle(points, x, y))
                        << round << ": " << x << ", " << y;
                }
        }
    });
    const jorm_2d_pt whole[] = {{lowest, lowest}, {lowest, highest}, {highest, highest}, {highest, lowest}}, zero = {};
    EXPECT_TRUE(jorm_2d_poly_inside(whole, 4, &zero));
    const jorm_2d_pt half[] = {{lowest, lowest}, {highest, highest}, {lowest, highest}}, in = {-1 << 30, 1 << 30};
    const jorm_2d_pt out = {1 << 30, -1 << 30}, beside = {1, 0};
    EXPECT_TRUE(jorm_2d_poly_inside(half, 3, &in) && jorm_2d_poly_inside(half, 3, &zero));
    EXPECT_FALSE(jorm_2d_poly_inside(half, 3, &out) || jorm_2d_poly_inside(half, 3, &beside));
    EXPECT_FALSE(jorm_2d_poly_inside(half, 0, &zero));
}

// Moments of an area by the quadrature of triangles at the middles of their sides, which is exact for squares.
struct Figure {
    Real size = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0;

    void add(Real weight, Real px, Real py) {
        size += weight;
        x += weight * px, y += weight * py;
        xx += weight * px * px, xy += weight * px * py, yy += weight * py * py;
    }
};
template <class P> Figure of_area(const std::vector<P> &points, Real ox, Real oy) {
    Figure f;
    const Real ax = Real(points[0].x) + 7 - ox, ay = Real(points[0].y) - 9 - oy; // an apex anywhere
    for (size_t i = 0; i < points.size(); ++i) {
        const P &p = points[i], &q = points[(i + 1) % points.size()];
        const Real px = p.x - ox, py = p.y - oy, qx = q.x - ox, qy = q.y - oy;
        const Real third = ((px - ax) * (qy - ay) - (qx - ax) * (py - ay)) / 6;
        f.add(third, (ax + px) / 2, (ay + py) / 2);
        f.add(third, (ax + qx) / 2, (ay + qy) / 2);
        f.add(third, (px + qx) / 2, (py + qy) / 2);
    }
    return f;
}
template <class P> Figure of_points(const std::vector<P> &points, Real ox, Real oy) {
    Figure f;
    for (const P &p : points) f.add(1, p.x - ox, p.y - oy);
    return f;
}

void expect_moments(const jorm_r2d_moment2 &m, const Figure &f, const char *what) {
    const Real tolerance = 1e-13L * (std::fabs(f.xx) + std::fabs(f.yy)) / std::fabs(f.size);
    near(m.m00, f.xx / f.size, tolerance, what);
    near(m.m01, f.xy / f.size, tolerance, what);
    near(m.m11, f.yy / f.size, tolerance, what);
}

// Triangles and vectors of points, near the origin and as far from it as the coordinates still hold them exactly.
TEST(Moments, OfAreasAndPoints) {
    each_family([](const auto &f) {
        using F = std::decay_t<decltype(f)>;
        using T = typename F::T;
        std::mt19937 random(4);
        std::uniform_int_distribution<int> at(-40, 40), count(3, 9);
        const Real rounding = std::is_same_v<decltype(F::Centre::x), float> ? 1e-7L : 1e-15L;
        for (const Real shift : {Real(0), std::is_same_v<T, float> ? Real(1 << 23) : Real(2147483600)}) {
            for (int round = 0; round < 500; ++round) {
                std::vector<typename F::Pt> v(count(random));
                for (auto &p : v) p = {T(at(random) + shift), T(at(random) - shift)};
                jorm_r2d_moment2 m;
                typename F::Centre c;
                const auto check = [&](auto oracle, auto centroid, auto raw, auto central) {
                    const int32_t n = int32_t(v.size());
                    const Figure about_origin = oracle(v, 0, 0);
                    const Real x = about_origin.x / about_origin.size, y = about_origin.y / about_origin.size;
                    near(centroid(&c, v.data(), n)->x, x, (std::fabs(x) + 40) * rounding, "x");
                    near(c.y, y, (std::fabs(y) + 40) * rounding, "y");
                    expect_moments(*raw(&m, v.data(), n), about_origin, "raw");
                    expect_moments(*central(&m, v.data(), n), oracle(v, x, y), "central");
                };
                check(of_points<typename F::Pt>, f.centroid, f.moment2, f.central);
                v.resize(3);
                if (std::fabs(of_area(v, v[0].x, v[0].y).size) < 20) continue;
                v.push_back(v[0]); // a corner given twice changes nothing
                check(of_area<typename F::Pt>, f.poly_centroid, f.poly_moment2, f.poly_central);
            }
        }
        const typename F::Pt line[] = {{1, 1}, {2, 3}, {4, 7}};
        jorm_r2d_moment2 a, b;
        f.poly_central(&a, line, 3);
        f.central(&b, line, 3);
        EXPECT_TRUE(a.m00 == b.m00 && a.m01 == b.m01 && a.m11 == b.m11 && b.m11 > 0);
        EXPECT_EQ(f.moment2(&a, line, 0)->m00, 0);
        EXPECT_EQ(f.poly_central(&a, nullptr, 3)->m11, 0);
        near(f.perimeter(line, 3), std::sqrt(5.0L) + std::sqrt(20.0L) + std::sqrt(45.0L), 1e-14L, "perimeter");
    });
    const jorm_2d_pt whole[] = {{lowest, lowest}, {lowest, highest}, {highest, highest}, {highest, lowest}};
    jorm_r2d_moment2 m;
    std::vector<jorm_r2d_pt> away(100001); // their sum rounds, and so their mean
    for (size_t i = 0; i < away.size(); ++i) away[i] = {1e15 + double(i % 2), double(i % 2)};
    near(jorm_r2d_ptv_moment2_$c(&m, away.data(), int32_t(away.size()))->m00, 0.25L, 1e-6L, "far away");
    near(m.m01, 0.25L, 1e-6L, "far away");
    const Real side = 4294967295.0L;
    jorm_r2d_pt c;
    near(jorm_2d_poly_moment2_$c(&m, whole, 4)->m00, side * side / 12, 1e4L, "square");
    near(jorm_2d_ptv_moment2_$c(&m, whole, 4)->m11, side * side / 4, 1e4L, "corners");
    EXPECT_EQ(jorm_2d_poly_centroid(&c, whole, 4)->x, -0.5);
}

TEST(Solvers, Roots) {
    const auto expect_pair = [](const double *got, double low, double high) {
        EXPECT_EQ(got[0], low);
        EXPECT_EQ(got[1], high);
    };
    double r[2], m[4] = {4, 0, nan, 1};
    expect_pair(jorm_f64_quadequ_solve(r, 1, -3, 2), 1, 2);
    expect_pair(jorm_f64_quadequ_solve(r, -1, 3, -2), 1, 2);
    expect_pair(jorm_f64_quadequ_solve_$simple(r, -3, 2), 1, 2);
    expect_pair(jorm_f64_quadequ_solve_$mm(r, 1.5, 2), 1, 2);
    EXPECT_TRUE(std::isnan(jorm_f64_quadequ_solve(r, 1, 0, 1)[0]) && std::isnan(r[1]));
    EXPECT_TRUE(std::isnan(jorm_f64_quadequ_solve_$simple(r, 0, 1)[0]) && std::isnan(r[1]));
    expect_pair(jorm_f64_symmat2x2_eigvals(r, m), 1, 4);
    EXPECT_EQ(jorm_f64_symmat2x2_xeigvals(m, m), std::acos(-1.0) / 2);
    expect_pair(m, 1, 4);
    // With a = 0, h and d are infinite: r1 = d - h b = NaN, r2 = -(h b) - d = -inf, and the pair stays (r2, r1).
    EXPECT_EQ(jorm_f64_quadequ_solve(r, 0, 1, 0)[0], -inf);
    EXPECT_TRUE(std::isnan(r[1]));

    std::mt19937 random(5);
    std::uniform_real_distribution<double> value(-9, 9);
    for (int round = 0; round < 2000; ++round) {
        const double a = value(random), b = value(random), d = value(random);
        const jorm_r2d_moment2 moments = {a, b, d};
        const double angle = jorm_r2d_moment2c_xeigvals(r, &moments), x = std::cos(angle), y = -std::sin(angle);
        EXPECT_EQ(angle, jorm_r2d_moment2c_rotation(&moments));
        near(a * x + b * y, r[0] * x, 1e-13L, "eigenvector");
        near(b * x + d * y, r[0] * y, 1e-13L, "eigenvector");
        near(r[0] + r[1], a + d, 1e-13L, "trace");
        EXPECT_LE(r[0], r[1]);
        jorm_f64_quadequ_solve(r, a, b, d);
        if (b * b < 4 * a * d) continue;
        EXPECT_LE(r[0], r[1]);
        for (double root : r) near((a * root + b) * root + d, 0, 1e-12L * (1 + std::fabs(a) * root * root), "root");
    }
}

TEST(Ellipses, EveryFigureAgreesWithItsOutline) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> at(-50, 50), semi(0.5, 20), turn(-3, 3);
    for (int round = 0; round < 300; ++round) {
        jorm_r2d_ell e, back;
        __jorm_r2d_ellipse__$g5(&e, at(random), at(random), semi(random), semi(random), turn(random));
        jorm_r2d_rect box;
        jorm_r2d_quad quad;
        jorm_r2d_moment2 moments;
        jorm_r2d_ell_brect(&box, &e);
        jorm_r2d_ell_bquad(&quad, &e);
        jorm_r2d_ell_moment2_$c(&moments, &e);
        const double c = std::cos(e.angle), s = std::sin(e.angle);
        std::vector<jorm_r2d_pt> outline;
        double x0 = inf, y0 = inf, x1 = -inf, y1 = -inf;
        for (int i = 0; i < 4096; ++i) {
            const double t = i * std::acos(-1.0) / 2048, u = e.semi1 * std::cos(t), v = e.semi2 * std::sin(t);
            const jorm_r2d_pt p = {e.centre.x + u * c + v * s, e.centre.y - u * s + v * c};
            const auto scaled = [&](double k) {
                return jorm_r2d_pt{e.centre.x + k * (p.x - e.centre.x), e.centre.y + k * (p.y - e.centre.y)};
            };
            const jorm_r2d_pt in = scaled(1 - 1e-9), out = scaled(1 + 1e-9);
            ASSERT_TRUE(jorm_r2d_ell_inside(&e, &in) && jorm_r2d_quad_inside(&quad, &in));
            ASSERT_FALSE(jorm_r2d_ell_inside2(&e, out.x, out.y));
            x0 = std::min(x0, p.x), x1 = std::max(x1, p.x), y0 = std::min(y0, p.y), y1 = std::max(y1, p.y);
            outline.push_back(p);
        }
        near(box.x, x0, 1e-4L, "x");
        near(box.y, y0, 1e-4L, "y");
        near(box.width, x1 - x0, 1e-4L, "width");
        near(box.height, y1 - y0, 1e-4L, "height");
        near(jorm_r2d_quad_area(&quad), 4 * e.semi1 * e.semi2, 1e-9L, "quadrilateral");
        jorm_r2d_moment2 sampled;
        jorm_r2d_poly_moment2_$c(&sampled, outline.data(), 4096);
        near(moments.m01, sampled.m01, 1e-3L, "m01");
        near(moments.m00, sampled.m00, 1e-3L, "m00");
        __jorm_r2d_ellipse__$moment2$c(&back, &e.centre, &moments, 2);
        near(back.semi1, std::min(e.semi1, e.semi2), 1e-9L, "semi1");
        near(jorm_r2d_ell_area(&back), jorm_r2d_ell_area(&e), 1e-9L, "area");
        // A rectangle spreads by a third of its half sides squared, an ellipse by a quarter.
        jorm_r2d_quad_fitell(&back, &quad);
        near(back.semi2, std::max(e.semi1, e.semi2) * std::sqrt(4 / 3.0L), 1e-9L, "fitted");
    }
}

TEST(Ellipses, OfMomentsAndRectangles) {
    const jorm_f2d_pt centre = {7, 8};
    const jorm_r2d_moment2 moments = {1, 0, 4};
    jorm_f2d_ell e;
    __jorm_f2d_ellipse__$moment2$c(&e, &centre, &moments, 2);
    EXPECT_TRUE(e.centre.x == 7 && e.centre.y == 8 && e.semi1 == 2 && e.semi2 == 4 && e.angle == 0);
    const jorm_r2d_rect rect = {1, 2, 8, 4};
    jorm_r2d_ell r;
    __jorm_r2d_ellipse__$rect(&r, &rect);
    EXPECT_TRUE(r.centre.x == 5 && r.centre.y == 4 && r.semi1 == 2 && r.semi2 == 4);
    EXPECT_TRUE(jorm_r2d_ell_inside2(&r, 9, 4));
    EXPECT_TRUE(jorm_r2d_ell_inside2(&r, 5, 2));
    jorm_r2d_quad quad, bounds, turned;
    __jorm_r2d_quad__$rect(&bounds, &rect);
    jorm_r2d_ell_bquad(&quad, &r);
    turned = bounds;
    const jorm_r2d_pt about = {5, 4};
    jorm_r2d_quad_rotate_$I(&turned, &about, std::acos(-1.0));
    for (int i = 0; i < 4; ++i) { // turned by a quarter, the first corner is the second of the box
        near(quad.pt[i].x, bounds.pt[(i + 1) % 4].x, 1e-14L, "corner");
        near(quad.pt[i].y, bounds.pt[(i + 1) % 4].y, 1e-14L, "corner");
        near(turned.pt[i].x, bounds.pt[(i + 2) % 4].x, 1e-14L, "half a turn");
    }
    r.semi1 = 0; // a line
    EXPECT_FALSE(jorm_r2d_ell_inside2(&r, 5, 4.5) && jorm_r2d_ell_inside2(&r, 5, 3.5));
    EXPECT_FALSE(jorm_r2d_ell_inside2(&r, nan, 4));
}

} // namespace
