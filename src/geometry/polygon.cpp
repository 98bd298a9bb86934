#include <algorithm>
#include <cfloat>

#include "geometry/moment.hpp"

namespace jorm {
namespace {

template <class F> using Pt = typename F::Pt;
template <class F> constexpr bool integer = std::is_integral_v<typename F::Coord>;

// Calls edge(p, q) for each edge of the closed outline, the one that closes it first.
template <class F, class Edge> void each_edge(const Pt<F> *points, int32_t n, Edge edge) {
    for (int32_t i = 0; i < n; ++i) edge(points[i > 0 ? i - 1 : n - 1], points[i]);
}

template <class F> double perimeter(const Pt<F> *points, int32_t n) {
    double sum = 0;
    each_edge<F>(points, n, [&](const Pt<F> &p, const Pt<F> &q) {
        sum += std::hypot(static_cast<double>(typename F::Wide(q.x) - p.x),
                          static_cast<double>(typename F::Wide(q.y) - p.y));
    });
    return sum;
}

// Even-odd rule with a ray toward +x. An edge counts for y in [lower, upper), so that a vertex on the ray counts once.
template <class F> int32_t inside(const Pt<F> *points, int32_t n, const Pt<F> &b) {
    using Wide = typename F::Wide;
    using Product = std::conditional_t<integer<F>, int128, double>;
    bool odd = false, on_outline = false;
    each_edge<F>(points, n, [&](const Pt<F> &p, const Pt<F> &q) {
        const Pt<F> &lower = p.y < q.y ? p : q, &upper = p.y < q.y ? q : p;
        if (!(lower.y <= b.y && b.y <= upper.y)) return;
        const bool crossed = b.y < upper.y;
        const auto [left, right] = std::minmax(p.x, q.x);
        if (b.x < left) odd ^= crossed;
        if (!(left <= b.x && b.x <= right)) return;
        const Product along = Product(Wide(upper.x) - lower.x) * (Wide(b.y) - lower.y);
        const Product across = Product(Wide(b.x) - lower.x) * (Wide(upper.y) - lower.y);
        if (across < along) odd ^= crossed; // b lies left of the edge
        on_outline |= across == along;
    });
    return odd || on_outline;
}

// What the first moments of an area give: twice its signed size, and its centroid seen from the first point.
struct Area {
    double twice;
    jorm_r2d_pt centroid;
};

double to_double(int128 v) { return static_cast<double>(v); }

// False when the polygon has no area.
bool measure(const jorm_2d_pt *points, int32_t n, Area &area) {
    // |cross| < 2^63, each moment < 2^95: the sums are exact for any count.
    int128 twice = 0, sx = 0, sy = 0;
    each_edge<Int2d>(points, n, [&](const jorm_2d_pt &p, const jorm_2d_pt &q) {
        const int64_t cross = jorm_2d_pt_cross(&p, &q);
        twice += cross;
        sx += int128(cross) * (int64_t(p.x) + q.x);
        sy += int128(cross) * (int64_t(p.y) + q.y);
    });
    if (twice == 0) return false;
    area = {to_double(twice), {to_double(sx - 3 * twice * points->x), to_double(sy - 3 * twice * points->y)}};
    area.centroid.x /= 3 * area.twice;
    area.centroid.y /= 3 * area.twice;
    return true;
}

// The same in f64, relative to the first point; an area within the rounding errors of its sum counts as none.
template <class P> bool measure(const P *points, int32_t n, Area &area) {
    double twice = 0, sx = 0, sy = 0, magnitude = 0;
    for (int32_t i = 2; i < n; ++i) {
        const double px = double(points[i - 1].x) - points->x, py = double(points[i - 1].y) - points->y;
        const double qx = double(points[i].x) - points->x, qy = double(points[i].y) - points->y;
        const double cross = px * qy - qx * py;
        twice += cross;
        sx += cross * (px + qx);
        sy += cross * (py + qy);
        magnitude += std::fabs(px * qy) + std::fabs(qx * py);
    }
    if (!(std::fabs(twice) > 4 * DBL_EPSILON * magnitude)) return false;
    area = {twice, {sx / (3 * twice), sy / (3 * twice)}};
    return true;
}

template <class F> jorm_r2d_pt centroid(const Pt<F> *points, int32_t n) {
    Area area;
    if (!measure(points, n, area)) return mean_point<F>(points, n);
    return {points->x + area.centroid.x, points->y + area.centroid.y};
}

// Second moments of a polygon's area about its own centroid (C. Steger, "On the calculation of arbitrary moments of
// polygons", 1996). Coordinates are taken from the centroid, where nothing cancels.
template <class F> jorm_r2d_moment2 about_centroid(const Pt<F> *points, int32_t n, const Area &area) {
    using Wide = typename F::Wide;
    jorm_r2d_moment2 sum = {};
    each_edge<F>(points, n, [&](const Pt<F> &p, const Pt<F> &q) {
        const double px = static_cast<double>(Wide(p.x) - points->x) - area.centroid.x;
        const double py = static_cast<double>(Wide(p.y) - points->y) - area.centroid.y;
        const double qx = static_cast<double>(Wide(q.x) - points->x) - area.centroid.x;
        const double qy = static_cast<double>(Wide(q.y) - points->y) - area.centroid.y;
        const double cross = px * qy - qx * py;
        sum.m00 += cross * (px * px + px * qx + qx * qx);
        sum.m01 += cross * (px * qy + 2 * (px * py + qx * qy) + qx * py);
        sum.m11 += cross * (py * py + py * qy + qy * qy);
    });
    return {sum.m00 / (6 * area.twice), sum.m01 / (12 * area.twice), sum.m11 / (6 * area.twice)};
}

template <class F> jorm_r2d_moment2 central(const Pt<F> *points, int32_t n) {
    Area area;
    if (!measure(points, n, area)) return central_moments<F>(points, n);
    return about_centroid<F>(points, n, area);
}

template <class F> jorm_r2d_moment2 raw(const Pt<F> *points, int32_t n) {
    Area area;
    if (!measure(points, n, area)) return raw_moments<F>(points, n);
    const jorm_r2d_moment2 c = about_centroid<F>(points, n, area);
    const double x = points->x + area.centroid.x, y = points->y + area.centroid.y;
    return {c.m00 + x * x, c.m01 + x * y, c.m11 + y * y};
}

} // namespace
} // namespace jorm

using namespace jorm;

#define AREA(name, ptv_sarea, Point)                                                                                   \
    double name(const Point *points, int32_t n) { return std::fabs(ptv_sarea(points, n)); }
#define PERIMETER(name, F, _)                                                                                          \
    double name(const F::Pt *points, int32_t n) { return perimeter<F>(points, count_of(points, n)); }
#define INSIDE(name, F, _)                                                                                             \
    int32_t name(const F::Pt *points, int32_t n, const F::Pt *b) { return inside<F>(points, count_of(points, n), *b); }
#define CENTROID(name, F, _)                                                                                           \
    F::Centre *name(F::Centre *out, const F::Pt *points, int32_t n) {                                                  \
        const jorm_r2d_pt c = centroid<F>(points, count_of(points, n));                                                \
        *out = {static_cast<decltype(out->x)>(c.x), static_cast<decltype(out->y)>(c.y)};                               \
        return out;                                                                                                    \
    }
#define SECOND(name, F, op)                                                                                            \
    jorm_r2d_moment2 *name(jorm_r2d_moment2 *out, const F::Pt *points, int32_t n) {                                    \
        *out = op<F>(points, count_of(points, n));                                                                     \
        return out;                                                                                                    \
    }
#define REVERSE(name, F, _)                                                                                            \
    F::Pt *name(F::Pt *points, int32_t n) {                                                                            \
        if (count_of(points, n) > 1) std::reverse(points + 1, points + n);                                             \
        return points;                                                                                                 \
    }

// clang-format off
AREA(jorm_2d_poly_area, jorm_2d_ptv___sarea, jorm_2d_pt)
AREA(jorm_f2d_poly_area, jorm_f2d_ptv___sarea, jorm_f2d_pt)
AREA(jorm_r2d_poly_area, jorm_r2d_ptv___sarea, jorm_r2d_pt)
JORM_ALL_FAMILIES(PERIMETER, , jorm_2d_poly_perimeter, jorm_f2d_poly_perimeter, jorm_r2d_poly_perimeter)
JORM_ALL_FAMILIES(INSIDE, , jorm_2d_poly_inside, jorm_f2d_poly_inside, jorm_r2d_poly_inside)
JORM_ALL_FAMILIES(CENTROID, , jorm_2d_poly_centroid, jorm_f2d_poly_centroid, jorm_r2d_poly_centroid)
JORM_ALL_FAMILIES(SECOND, raw, jorm_2d_poly_moment2, jorm_f2d_poly_moment2, jorm_r2d_poly_moment2)
JORM_ALL_FAMILIES(SECOND, central, jorm_2d_poly_moment2_$c, jorm_f2d_poly_moment2_$c, jorm_r2d_poly_moment2_$c)
JORM_ALL_FAMILIES(REVERSE, , jorm_2d_poly_reverse_$I, jorm_f2d_poly_reverse_$I, jorm_r2d_poly_reverse_$I)
// clang-format on
