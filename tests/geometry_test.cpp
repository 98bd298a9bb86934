// Points, rectangles, polygons, moments, solvers and ellipses against sets of points and wider arithmetic.
#include "jorm/geometry.h"
#include "jorm/pointset.h"
#include "support/families.hpp"
#include "support/picture.hpp"

#include <bit>

namespace {

__extension__ typedef __int128 Wide;
using Real = long double;
constexpr int32_t low = INT32_MIN, high = INT32_MAX;
const double pi = std::acos(-1.0);
const int32_t extremes[] = {low, low + 1, -65536, -1, 0, 1, 46341, 1 << 30, high - 1, high};

// clang-format off
OF_ALL(pt_add) OF_ALL(pt_sub) OF_ALL(pt_scale) OF_ALL(pt_equal) OF_ALL(pt_dot) OF_ALL(pt_cross) OF_ALL(pt_dist2)
OF_ALL(pt_dist) OF_ALL(pt_norm) OF_ALL(rect_intersec) OF_ALL(rect_unite) OF_ALL(rect_inside) OF_ALL(rect_equal)
OF_ALL(rect_area) OF_ALL(rect_centre) OF_ALL(rect_grow_$I) OF_ALL(crect_inside) OF_ALL(poly_inside)
OF_ALL(poly_perimeter) OF_ALL(poly_centroid) OF_ALL(poly_moment2) OF_ALL(poly_moment2_$c) OF_ALL(ptv_centroid)
OF_ALL(ptv_moment1) OF_ALL(ptv_moment2) OF_ALL(ptv_moment2_$c) OF_ALL(quad_area) OF_ALL(quad_isconvex)
OF_ALL(quad_inside) OF_ALL(quad_brect)
OF_FLOATS(quad_rotate_$I) OF_FLOATS(quad_bquad) OF_FLOATS(quad_centroid) OF_FLOATS(quad_moment2)
OF_FLOATS(quad_moment2_$c) OF_FLOATS(quad_rotation) OF_FLOATS(quad_fitell)
MAKERS_OF_ALL(point, point__$g2) MAKERS_OF_ALL(origin, point__$) MAKERS_OF_ALL(rect, rect__$g4)
MAKERS_OF_ALL(rect_of_points, rect__$pts) MAKERS_OF_ALL(rect_of_corners, rect__$crect)
MAKERS_OF_ALL(corners_of_rect, crect__$rect) MAKERS_OF_ALL(quad, quad__$pts) MAKERS_OF_ALL(quad_of_rect, quad__$rect)
    // clang-format on

    // The types of a family: points, rectangles, corners, centres, quadrilaterals.
    template <class P, class R, class K, class C, class Q>
    struct Types {};
using Singles = Types<jorm_f2d_pt, jorm_f2d_rect, jorm_f2d_crect, jorm_f2d_pt, jorm_f2d_quad>;
using Doubles = Types<jorm_r2d_pt, jorm_r2d_rect, jorm_r2d_crect, jorm_r2d_pt, jorm_r2d_quad>;
template <class Test> void each_family(Test test) {
    test(Types<jorm_2d_pt, jorm_2d_rect, jorm_2d_crect, jorm_r2d_pt, jorm_2d_quad>());
    test(Singles());
    test(Doubles());
}

// The members of a record, which are all numbers of one type.
template <class S, class T> auto members(const T &record) {
    return std::bit_cast<std::array<S, sizeof(T) / sizeof(S)>>(record);
}
void expect_near(double got, Real want, Real tolerance) { EXPECT_NEAR(got, double(want), double(tolerance)); }
template <class T> void expect_near(const T &record, std::initializer_list<Real> want, Real tolerance) {
    const auto got = members<double>(record);
    ASSERT_EQ(got.size(), want.size());
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_LE(std::fabs(got[i] - want.begin()[i]), tolerance) << "member " << i << " is " << got[i];
}

TEST(Points, IntegersNeverOverflow) {
    for (int i = 0; i < 10000; ++i) {
        const jorm_2d_pt a = {extremes[i / 1000], extremes[i / 100 % 10]};
        const jorm_2d_pt b = {extremes[i / 10 % 10], extremes[i % 10]};
        const Wide dx = Wide(a.x) - b.x, dy = Wide(a.y) - b.y;
        const Real d = std::sqrt(Real(dx * dx + dy * dy));
        jorm_2d_pt c;
        ASSERT_EQ(jorm_2d_pt_sub(&c, &a, &b), &c);
        EXPECT_TRUE(c.x == int32_t(dx) && c.y == int32_t(dy));
        EXPECT_TRUE(jorm_2d_pt_equal(jorm_2d_pt_add_$I(&c, &b), &a));
        EXPECT_EQ(jorm_2d_pt_dot(&a, &b), int64_t(Wide(a.x) * b.x + Wide(a.y) * b.y));
        EXPECT_EQ(jorm_2d_pt_cross(&a, &b), Wide(a.x) * b.y - Wide(a.y) * b.x);
        EXPECT_EQ(jorm_2d_pt_dist2(&a, &b), int64_t(dx * dx + dy * dy));
        expect_near(jorm_2d_pt_dist(&a, &b), d, d * 4e-16L); // within two units
    }
    const jorm_r2d_pt a = {3, 1}, centre = {1, 1}, far = {3e300, 4e300}, zero = {0, 0};
    jorm_r2d_pt r;
    expect_near(*jorm_r2d_pt_rotate(&r, &a, &centre, pi / 2), {1, 3}, 1e-15L); // from x toward y
    expect_near(jorm_r2d_pt_norm(&far), 5e300L, 1e285L);
    expect_near(jorm_r2d_pt_dist(&zero, &far), 5e300L, 1e285L);
}

template <class T> constexpr uint32_t type_of = std::is_integral_v<T> ? JORM_S32 : sizeof(T) == 4 ? JORM_F32 : JORM_F64;

// Every number of a record becomes the nearest one of the other type.
template <class T, class S, class To, class From> void expect_cast(To *(*cast)(To *, const From *)) {
    const double values[] = {0.5,          1.5,           -2.5,           0.1,           2147483647.4,
                             2147483647.5, -2147483648.5, -2147483648.75, -3e9,          1e300,
                             nan,          inf,           -inf,           16777217.0625, -7};
    for (size_t shift = 0; shift < std::size(values); ++shift) {
        std::array<S, sizeof(From) / sizeof(S)> in;
        for (size_t i = 0; i < in.size(); ++i)
            in[i] = S(converted(type_of<S>, values[(shift + i) % std::size(values)]));
        const From from = std::bit_cast<From>(in);
        To to;
        ASSERT_EQ(cast(&to, &from), &to);
        const auto out = members<T>(to);
        ASSERT_EQ(out.size(), in.size());
        for (size_t i = 0; i < in.size(); ++i)
            EXPECT_TRUE(same(double(out[i]), converted(type_of<T>, double(in[i])))) << in[i] << " became " << out[i];
    }
}
template <class T, class S, class... Casts> void expect_casts(Casts... casts) { (expect_cast<T, S>(casts), ...); }

TEST(Figures, CastsRoundToNearestEven) {
#define CASTS(k, from)                                                                                                 \
    __jorm_##k##_point__$cast$##from, __jorm_##k##_rect__$cast$##from, __jorm_##k##_crect__$cast$##from,               \
        __jorm_##k##_quad__$cast$##from
    expect_casts<int32_t, float>(CASTS(2d, f));
    expect_casts<int32_t, double>(CASTS(2d, r));
    expect_casts<float, int32_t>(CASTS(f2d, i));
    expect_casts<float, double>(CASTS(f2d, r), __jorm_f2d_ellipse__$cast$r);
    expect_casts<double, int32_t>(CASTS(r2d, i));
    expect_casts<double, float>(CASTS(r2d, f), __jorm_r2d_ellipse__$cast$f);
    for (const double k : {0.5, -2.5, 2147483647.4, 2147483647.5, -3e9, nan}) {
        jorm_2d_pt one = {1, 0};
        EXPECT_EQ(jorm_2d_pt_scale_$I(&one, k)->x, converted(JORM_S32, k)) << k;
    }
}

// Numbers that all families hold exactly, as do their products.
TEST(Points, EveryFamily) {
    each_family([]<class P, class R, class K, class C, class Q>(Types<P, R, K, C, Q>) {
        using T = decltype(P::x);
        Random r(12);
        for (int round = 0; round < 500; ++round) {
            const int x = r.in(-99, 99), y = r.in(-99, 99), u = r.one_in(3) ? x : r.in(-99, 99),
                      v = r.one_in(2) ? y : 5;
            P a, b, c;
            point(&a, T(x), T(y)), point(&b, T(u), T(v));
            EXPECT_TRUE(a.x == x && a.y == y && origin(&c) == &c && c.x == 0 && c.y == 0);
            EXPECT_EQ(members<T>(*pt_add(&c, &a, &b)), (std::array<T, 2>{T(x + u), T(y + v)}));
            EXPECT_EQ(members<T>(*pt_sub(&c, &a, &b)), (std::array<T, 2>{T(x - u), T(y - v)}));
            EXPECT_EQ(members<T>(*pt_scale(&c, &a, -4.0)), (std::array<T, 2>{T(-4 * x), T(-4 * y)}));
            EXPECT_EQ(pt_equal(&a, &b), x == u && y == v);
            EXPECT_EQ(pt_dot(&a, &b), x * u + y * v);
            EXPECT_EQ(pt_cross(&a, &b), x * v - y * u);
            EXPECT_EQ(pt_dist2(&a, &b), (x - u) * (x - u) + (y - v) * (y - v));
            expect_near(pt_dist(&a, &b), std::hypot(x - u, y - v), 1e-13L);
            expect_near(pt_norm(&a), std::hypot(x, y), 1e-13L);
            const std::array<T, 4> want = {T(std::min(x, u)), T(std::min(y, v)), T(std::abs(x - u)),
                                           T(std::abs(y - v))};
            R box, other;
            C centre;
            EXPECT_EQ(members<T>(*rect_of_points(&box, &a, &b)), want);
            EXPECT_EQ(rect_area(&box), std::abs((x - u) * (y - v)));
            EXPECT_TRUE(rect_centre(&centre, &box)->x * 2 == x + u && centre.y * 2 == y + v);
            EXPECT_EQ(members<T>(*rect(&other, want[0], want[1], want[2], want[3])), want);
            EXPECT_TRUE(rect_equal(&other, &box) && !rect_equal(rect_grow_$I(&other, T(1), T(0)), &box));
            EXPECT_EQ(members<T>(other), (std::array<T, 4>{want[0] - 1, want[1], want[2] + 2, want[3]}));
        }
    });
}

// Rectangles on a small lattice against the membership of its points.
TEST(Rectangles, SetsOfPoints) {
    each_family([]<class P, class R, class K, class C, class Q>(Types<P, R, K, C, Q>) {
        using T = decltype(P::x);
        Random r(1);
        const auto some = [&] { return R{T(r.in(-3, 3)), T(r.in(-3, 3)), T(r.in(-1, 5)), T(r.in(-1, 5))}; };
        for (int round = 0; round < 3000; ++round) {
            const R a = some(), b = some();
            const bool full_a = a.width > 0 && a.height > 0, full_b = b.width > 0 && b.height > 0;
            R both = a, hull = b, back;
            K corners;
            const int32_t met = rect_intersec(&both, &both, &b);
            EXPECT_EQ(met, both.width > 0 && both.height > 0);
            rect_unite(&hull, &a, &hull);
            corners_of_rect(&corners, &a);
            EXPECT_EQ(members<T>(*rect_of_corners(&back, &corners)), members<T>(a));
            int reached = 0; // edges of the hull, by points that it must hold
            for (T y = -5; y <= 9; ++y)
                for (T x = -5; x <= 9; ++x) {
                    const P p = {x, y};
                    const bool in_a = x >= a.x && x - a.x <= a.width && y >= a.y && y - a.y <= a.height;
                    const bool in_b = x >= b.x && x - b.x <= b.width && y >= b.y && y - b.y <= b.height;
                    ASSERT_TRUE(rect_inside(&a, &p) == in_a && crect_inside(&corners, &p) == in_a);
                    ASSERT_EQ(rect_inside(&both, &p), in_a && in_b);
                    if (!(full_a && in_a) && !(full_b && in_b)) continue;
                    ASSERT_TRUE(rect_inside(&hull, &p));
                    reached |= (x == hull.x) + 2 * (y == hull.y);
                    reached |= 4 * (x == hull.x + hull.width) + 8 * (y == hull.y + hull.height);
                }
            EXPECT_EQ(reached, full_a || full_b ? 15 : 0);
        }
    });
}

TEST(Rectangles, ExtremesAndCorners) {
    const jorm_2d_rect left = {low, low, 1, 1}, right = {high, high, 1, 1}, wide = {high - 1, 0, high, high};
    const jorm_2d_pt in = {high, 5}, outside = {low, 5}, a = {5, -7}, b = {-2, 9};
    using Four = std::array<int32_t, 4>;
    jorm_2d_rect out, grown = wide;
    jorm_r2d_pt centre;
    EXPECT_TRUE(!jorm_2d_rect_intersec(&out, &left, &right) && jorm_2d_rect_empty(&out));
    EXPECT_TRUE(jorm_2d_rect_inside(&wide, &in) && !jorm_2d_rect_inside(&wide, &outside));
    EXPECT_EQ(jorm_2d_rect_area(&wide), 2147483647.0 * 2147483647.0);
    EXPECT_EQ(jorm_2d_rect_centre(&centre, &wide)->x, 2147483646.0 + 1073741823.5);
    jorm_2d_rect_grow_$I(&grown, high, low);
    EXPECT_EQ(members<int32_t>(grown), (Four{-1, low, high - 2, high})); // 3 high less 2^32

    jorm_2d_crect c = {5, 9, -2, -7};
    const jorm_2d_crect small = {-9, 1, -1, 3};
    EXPECT_TRUE(jorm_2d_crect_empty(&c));
    EXPECT_EQ(members<int32_t>(*jorm_2d_crect_normalize_$I(&c)), (Four{-2, -7, 5, 9}));
    EXPECT_TRUE(jorm_2d_crect_intersec_$I(&c, &small));
    EXPECT_EQ(members<int32_t>(c), (Four{-2, 1, -1, 3}));
    jorm_2d_crect_include_$I(jorm_2d_crect_include_$I(&c, &a), &b);
    EXPECT_EQ(members<int32_t>(c), (Four{-2, -7, 5, 9}));
}

template <class P, class R, class K, class C, class Q> void check_spans(Types<P, R, K, C, Q>) {
    using T = decltype(P::x);
    Random r(2);
    std::uniform_real_distribution<double> mantissa(-1, 1);
    const auto coordinate = [&] {
        const double m = mantissa(r);
        return T(std::ldexp(m, r.in(-30, 30)));
    };
    for (int round = 0; round < 100000; ++round) {
        const P a = {coordinate(), coordinate()}, b = {coordinate(), coordinate()};
        const K corners = {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x), std::max(a.y, b.y)};
        R rect, out;
        rect_of_corners(&rect, &corners);
        ASSERT_TRUE(rect_inside(&rect, &a) && rect_inside(&rect, &b));
        rect.width = std::fabs(coordinate());
        rect_intersec(&out, &rect, &rect);
        ASSERT_EQ(members<T>(out), members<T>(rect));
        ASSERT_EQ(members<T>(*rect_unite(&out, &rect, &rect)), members<T>(rect));
    }
}
TEST(Rectangles, FloatsHoldWhatSpansThem) {
    check_spans(Singles());
    check_spans(Doubles());
}

// A ray of slope 1 / 1000 meets no point of the small lattice but its own start.
template <class P> bool inside_oracle(const std::vector<P> &points, int x, int y) {
    const auto side = [&](const P &p) { return 1000 * (int(p.y) - y) - (int(p.x) - x); };
    bool odd = false;
    for (size_t i = 0; i < points.size(); ++i) {
        const P &p = points[i], &q = points[(i + 1) % points.size()];
        const int px = int(p.x) - x, py = int(p.y) - y, qx = int(q.x) - x, qy = int(q.y) - y;
        const int cross = px * qy - py * qx, sp = side(p), sq = side(q);
        if (cross == 0 && px * qx <= 0 && py * qy <= 0) return true;
        if ((sp < 0) != (sq < 0) && (cross > 0) == (sq > sp)) odd = !odd;
    }
    return odd;
}

struct Figure {
    Real size = 0, x = 0, y = 0, xx = 0, xy = 0, yy = 0;

    void add(Real weight, Real px, Real py) {
        size += weight;
        x += weight * px, y += weight * py;
        xx += weight * px * px, xy += weight * px * py, yy += weight * py * py;
    }
};
// Moments of an area by the quadrature of triangles at the middles of their sides, which is exact for squares.
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

// Polygons and, of four corners, quadrilaterals.
TEST(Polygons, LatticeCorners) {
    each_family([]<class P, class R, class K, class C, class Q>(Types<P, R, K, C, Q>) {
        using T = decltype(P::x);
        Random r(3);
        Q q;
        for (int round = 0; round < 3000; ++round) {
            std::vector<P> v(round % 2 ? 4 : size_t(r.in(1, 7)));
            for (P &p : v) p = {T(r.in(-4, 4)), T(r.in(-4, 4))};
            if (round % 2) quad(&q, v.data());
            each({1, 11, 11, 1}, [&](const Index &i) {
                const int x = i[2] - 5, y = i[1] - 5;
                const P b = {T(x), T(y)};
                const bool inside = inside_oracle(v, x, y);
                ASSERT_EQ(poly_inside(v.data(), int32_t(v.size()), &b), inside) << round << ": " << x << ", " << y;
                ASSERT_TRUE(round % 2 == 0 || quad_inside(&q, &b) == inside) << round << ": " << x << ", " << y;
            });
            if (round % 2 == 0) continue;
            R box;
            const auto [x0, x1] = std::minmax({v[0].x, v[1].x, v[2].x, v[3].x});
            const auto [y0, y1] = std::minmax({v[0].y, v[1].y, v[2].y, v[3].y});
            EXPECT_EQ(members<T>(*quad_brect(&box, &q)), (std::array<T, 4>{x0, y0, x1 - x0, y1 - y0}));
            expect_near(quad_area(&q), std::fabs(of_area(v, 0, 0).size), 1e-14L);
            // With no three corners on a line: convex where each diagonal parts the other two corners.
            const auto side = [&](int a, int b, int c) {
                return (v[b].x - v[a].x) * (v[c].y - v[a].y) - (v[b].y - v[a].y) * (v[c].x - v[a].x);
            };
            const auto by_02 = side(0, 2, 1) * side(0, 2, 3), by_13 = side(1, 3, 0) * side(1, 3, 2);
            EXPECT_TRUE(by_02 == 0 || by_13 == 0 || quad_isconvex(&q) == (by_02 < 0 && by_13 < 0));
        }
        const R box = {-3, 2, 5, 9};
        EXPECT_EQ(members<T>(*quad_of_rect(&q, &box)), (std::array<T, 8>{-3, 2, -3, 11, 2, 11, 2, 2}));
    });
    const jorm_2d_pt half[] = {{low, low}, {high, high}, {low, high}};
    const std::pair<jorm_2d_pt, int> places[] = {
        {{-1 << 30, 1 << 30}, 1}, {{0, 0}, 1}, {{1 << 30, -1 << 30}, 0}, {{1, 0}, 0}};
    for (const auto &[p, inside] : places) EXPECT_EQ(jorm_2d_poly_inside(half, 3, &p), inside) << p.x;
    EXPECT_FALSE(jorm_2d_poly_inside(half, 0, half));
}

void expect_moments(const jorm_r2d_moment2 &m, const Figure &f) {
    const Real tolerance = 1e-13L * (std::fabs(f.xx) + std::fabs(f.yy)) / std::fabs(f.size);
    expect_near(m, {f.xx / f.size, f.xy / f.size, f.yy / f.size}, tolerance);
}

// Triangles and vectors of points, near the origin and as far from it as the coordinates still hold them exactly.
TEST(Moments, OfAreasAndPoints) {
    each_family([]<class P, class R, class K, class C, class Q>(Types<P, R, K, C, Q>) {
        using T = decltype(P::x);
        Random r(4);
        const Real rounding = std::is_same_v<decltype(C::x), float> ? 1e-7L : 1e-15L;
        jorm_r2d_moment1 first;
        jorm_r2d_moment2 m, other;
        for (const Real shift : {Real(0), std::is_same_v<T, float> ? Real(1 << 23) : Real(2147483600)})
            for (int round = 0; round < 500; ++round) {
                std::vector<P> v(size_t(r.in(3, 9)));
                for (P &p : v) p = {T(r.in(-40, 40) + shift), T(r.in(-40, 40) - shift)};
                const auto check = [&](auto oracle, auto centroid, auto raw, auto central) {
                    const int32_t n = int32_t(v.size());
                    const Figure about_origin = oracle(v, 0, 0);
                    const Real x = about_origin.x / about_origin.size, y = about_origin.y / about_origin.size;
                    C c;
                    expect_near(centroid(&c, v.data(), n)->x, x, (std::fabs(x) + 40) * rounding);
                    expect_near(c.y, y, (std::fabs(y) + 40) * rounding);
                    expect_moments(*raw(&m, v.data(), n), about_origin);
                    expect_moments(*central(&m, v.data(), n), oracle(v, x, y));
                };
                check(of_points<P>, ptv_centroid, ptv_moment2, ptv_moment2_$c);
                const Figure f = of_points(v, 0, 0);
                expect_near(*ptv_moment1(&first, v.data(), int32_t(v.size())), {f.x / f.size, f.y / f.size}, 1e-6L);
                v.resize(3);
                if (std::fabs(of_area(v, v[0].x, v[0].y).size) < 20) continue;
                v.push_back(v[0]); // a corner given twice changes nothing
                check(of_area<P>, poly_centroid, poly_moment2, poly_moment2_$c);
            }
        const P line[] = {{1, 1}, {2, 3}, {4, 7}}; // without an area its moments are those of the points
        const jorm_r2d_pt mean = {7 / 3.0, 11 / 3.0};
        EXPECT_EQ(members<double>(*poly_moment2_$c(&m, line, 3)), members<double>(*ptv_moment2_$c(&other, line, 3)));
        EXPECT_GT(m.m11, 0);
        expect_near(*jorm_r2d_moment2_centralize_$I(ptv_moment2(&m, line, 3), &mean), {other.m00, other.m01, other.m11},
                    1e-14L);
        EXPECT_TRUE(ptv_moment2(&m, line, 0)->m00 == 0 && poly_moment2_$c(&m, static_cast<P *>(nullptr), 3)->m11 == 0);
        expect_near(poly_perimeter(line, 3), std::sqrt(5.0L) + std::sqrt(20.0L) + std::sqrt(45.0L), 1e-14L);
    });
    const jorm_2d_pt whole[] = {{low, low}, {low, high}, {high, high}, {high, low}}, three[] = {{1, 2}, {2, 4}, {7, 9}};
    jorm_f2d_pt mean;
    for (const auto centroid : {jorm_2d_ptv_centroid_$f, jorm_2d_ptv_centroid_f})
        EXPECT_TRUE(centroid(&mean, three, 3)->x == float(10 / 3.0) && mean.y == 5);
    std::vector<jorm_r2d_pt> away(100001); // their sum rounds, and so their mean
    for (size_t i = 0; i < away.size(); ++i) away[i] = {1e15 + double(i % 2), double(i % 2)};
    const Real side = 4294967295.0L;
    jorm_r2d_moment2 m;
    jorm_r2d_pt c;
    expect_near(*jorm_r2d_ptv_moment2_$c(&m, away.data(), int32_t(away.size())), {0.25L, 0.25L, 0.25L}, 1e-6L);
    expect_near(jorm_2d_poly_moment2_$c(&m, whole, 4)->m00, side * side / 12, 1e4L);
    expect_near(jorm_2d_ptv_moment2_$c(&m, whole, 4)->m11, side * side / 4, 1e4L);
    EXPECT_EQ(jorm_2d_poly_centroid(&c, whole, 4)->x, -0.5);
    for (const int bits : {10, 27, 28}) { // sums of the largest products that a block may hold, and of larger ones
        std::vector<jorm_2d_pt> v(700);
        for (size_t i = 0; i < v.size(); ++i) v[i] = {(1 << bits) - 1 - int32_t(i % 3), (1 << bits) - 1};
        const Figure about_origin = of_points(v, 0, 0);
        expect_moments(*jorm_2d_ptv_moment2(&m, v.data(), 700), about_origin);
        expect_moments(*jorm_2d_ptv_moment2_$c(&m, v.data(), 700),
                       of_points(v, about_origin.x / 700, about_origin.y / 700));
    }
}

// A rectangle of 6 by 2 turned about a corner: all figures are known.
template <class P, class R, class K, class C, class Q, class E>
void check_turned(Types<P, R, K, C, Q>, E e, Real tolerance) {
    for (int i = -9; i <= 9; ++i) {
        const R rect = {10, 20, 6, 2};
        const Real c = cosl(i * 0.17L), s = sinl(i * 0.17L), x = 10 + 3 * c - s, y = 20 + 3 * s + c;
        Q q, box;
        P centre;
        R bounds;
        jorm_r2d_moment2 m;
        quad_rotate_$I(quad_of_rect(&q, &rect), &q.pt[0], i * 0.17);
        EXPECT_TRUE(q.pt[0].x == 10 && q.pt[0].y == 20);
        expect_near(q.pt[2].x, 10 + 6 * c - 2 * s, tolerance);
        expect_near(q.pt[2].y, 20 + 6 * s + 2 * c, tolerance);
        quad_brect(&bounds, &q);
        quad_bquad(&box, &q);
        for (int k = 0; k < 4; ++k) {
            expect_near(box.pt[k].x, k < 2 ? bounds.x : bounds.x + bounds.width, 4 * tolerance);
            expect_near(box.pt[k].y, k % 3 ? bounds.y + bounds.height : bounds.y, 4 * tolerance);
        }
        expect_near(quad_centroid(&centre, &q)->x, x, tolerance);
        expect_near(centre.y, y, tolerance);
        // Half sides 3 and 1 spread by 3 and 1/3 along their own axes.
        const Real xx = 3 * c * c + s * s / 3, xy = (3 - 1 / 3.0L) * s * c, yy = 3 * s * s + c * c / 3;
        expect_near(*quad_moment2_$c(&m, &q), {xx, xy, yy}, 100 * tolerance);
        expect_near(*quad_moment2(&m, &q), {xx + x * x, xy + x * y, yy + y * y}, 100 * tolerance);
        quad_fitell(&e, &q);
        expect_near(e.semi1, 2 / std::sqrt(3.0L), 10 * tolerance);
        expect_near(e.semi2, 2 * std::sqrt(3.0L), 10 * tolerance);
        expect_near(e.angle, quad_rotation(&q), tolerance);
        expect_near(e.centre.x, x, tolerance);
        // (sin, cos) of the angle runs along the longer side.
        expect_near(std::sin(e.angle) * s - std::cos(e.angle) * c, 0, 10 * tolerance);
    }
}
TEST(Quadrilaterals, TurnedRectangles) {
    check_turned(Singles(), jorm_f2d_ell(), 4e-6L);
    check_turned(Doubles(), jorm_r2d_ell(), 1e-14L);
}

TEST(Solvers, Roots) {
    double r[2], m[4] = {4, 0, nan, 1};
    const auto expect = [](const double *got, double first, double second) {
        EXPECT_TRUE(same(got[0], first) && same(got[1], second)) << got[0] << " and " << got[1];
    };
    expect(jorm_f64_quadequ_solve_$simple(r, -3, 2), 1, 2);
    expect(jorm_f64_quadequ_solve_$mm(r, 1.5, 2), 1, 2);
    expect(jorm_f64_quadequ_solve(r, 1, 0, 1), nan, nan);
    expect(jorm_f64_quadequ_solve_$simple(r, 0, 1), nan, nan);
    // With a = 0, h and d are infinite: r1 = d - h b = NaN, r2 = -(h b) - d = -inf, and the pair stays (r2, r1).
    expect(jorm_f64_quadequ_solve(r, 0, 1, 0), -inf, nan);
    expect(jorm_f64_symmat2x2_eigvals(r, m), 1, 4);
    EXPECT_EQ(jorm_f64_symmat2x2_xeigvals(m, m), pi / 2);
    expect(m, 1, 4);

    std::mt19937 random(5);
    std::uniform_real_distribution<double> value(-9, 9);
    for (int round = 0; round < 2000; ++round) {
        const double a = value(random), b = value(random), d = value(random);
        const jorm_r2d_moment2 moments = {a, b, d};
        const double angle = jorm_r2d_moment2c_xeigvals(r, &moments), x = std::cos(angle), y = -std::sin(angle);
        EXPECT_EQ(angle, jorm_r2d_moment2c_rotation(&moments));
        double matrix[4], values[2], again[2];
        jorm_f64_symmat2x2_eigvals(values, jorm_r2d_moment2c_covariance(matrix, &moments));
        jorm_r2d_moment2c_eigvals(again, &moments);
        EXPECT_TRUE(std::equal(values, values + 2, again) && std::equal(values, values + 2, r));
        const jorm_r2d_pt image = {a * x + b * y, b * x + d * y};
        expect_near(image, {r[0] * x, r[0] * y}, 1e-13L);
        expect_near(r[0] + r[1], a + d, 1e-13L);
        EXPECT_LE(r[0], r[1]);
        jorm_f64_quadequ_solve(r, a, b, d);
        if (b * b < 4 * a * d) continue;
        EXPECT_LE(r[0], r[1]);
        for (double root : r) expect_near((a * root + b) * root + d, 0, 1e-12L * (1 + std::fabs(a) * root * root));
    }
}

TEST(Ellipses, EveryFigureAgreesWithItsOutline) {
    std::mt19937 random(6);
    std::uniform_real_distribution<double> at(-50, 50), semi(0.5, 20), turn(-3, 3);
    for (int round = 0; round < 300; ++round) {
        jorm_r2d_ell e, back;
        const double x = at(random), y = at(random), a = semi(random), b = semi(random);
        __jorm_r2d_ellipse__$g5(&e, x, y, a, b, turn(random));
        jorm_r2d_rect box, bounds;
        jorm_r2d_quad quad;
        jorm_r2d_moment2 moments, sampled;
        jorm_r2d_ell_bquad(&quad, &e);
        const double c = std::cos(e.angle), s = std::sin(e.angle);
        std::vector<jorm_r2d_pt> outline;
        for (int i = 0; i < 4096; ++i) {
            const double t = i * pi / 2048, u = e.semi1 * std::cos(t), v = e.semi2 * std::sin(t);
            const double dx = u * c + v * s, dy = v * c - u * s;
            const auto scaled = [&](double k) { return jorm_r2d_pt{e.centre.x + k * dx, e.centre.y + k * dy}; };
            const jorm_r2d_pt in = scaled(1 - 1e-9), out = scaled(1 + 1e-9);
            ASSERT_TRUE(jorm_r2d_ell_inside(&e, &in) && jorm_r2d_quad_inside(&quad, &in));
            ASSERT_FALSE(jorm_r2d_ell_inside2(&e, out.x, out.y));
            outline.push_back(scaled(1));
        }
        jorm_r2d_ptv_brect(&bounds, outline.data(), 4096);
        expect_near(*jorm_r2d_ell_brect(&box, &e), {bounds.x, bounds.y, bounds.width, bounds.height}, 1e-4L);
        expect_near(jorm_r2d_quad_area(&quad), 4 * e.semi1 * e.semi2, 1e-9L);
        jorm_r2d_poly_moment2_$c(&sampled, outline.data(), 4096);
        expect_near(*jorm_r2d_ell_moment2_$c(&moments, &e), {sampled.m00, sampled.m01, sampled.m11}, 1e-3L);
        jorm_r2d_ell_moment2(&sampled, &e);
        expect_near(*jorm_r2d_moment2_centralize(&sampled, &sampled, &e.centre),
                    {moments.m00, moments.m01, moments.m11}, 1e-11L);
        __jorm_r2d_ellipse__$moment2$c(&back, &e.centre, &moments, 2);
        expect_near(back.semi1, std::min(e.semi1, e.semi2), 1e-9L);
        expect_near(jorm_r2d_ell_area(&back), jorm_r2d_ell_area(&e), 1e-9L);
        // A rectangle spreads by a third of its half sides squared, an ellipse by a quarter.
        expect_near(jorm_r2d_quad_fitell(&back, &quad)->semi2, std::max(e.semi1, e.semi2) * std::sqrt(4 / 3.0L), 1e-9L);
    }
    const jorm_r2d_rect rect = {1, 2, 8, 4};
    jorm_r2d_ell r;
    jorm_r2d_quad quad;
    __jorm_r2d_ellipse__$rect(&r, &rect);
    EXPECT_TRUE(r.centre.x == 5 && r.centre.y == 4 && r.semi1 == 2 && r.semi2 == 4);
    // Turned by a quarter, the first corner is the second of the box.
    expect_near(*jorm_r2d_ell_bquad(&quad, &r), {1, 6, 9, 6, 9, 2, 1, 2}, 1e-14L);
    r.semi1 = 0; // a line
    EXPECT_FALSE(jorm_r2d_ell_inside2(&r, 5, 4.5) || jorm_r2d_ell_inside2(&r, nan, 4));
}

} // namespace
