#include <limits>

#include "geometry/pointset.hpp"

namespace jorm {
namespace {

constexpr double area_tolerance = 0x1p-23;

template <class F> typename F::Crect bounds(const Pt<F> *points, int32_t n) {
    using Limits = std::numeric_limits<typename F::Coord>;
    constexpr auto least = Limits::has_infinity ? -Limits::infinity() : Limits::lowest();
    constexpr auto most = Limits::has_infinity ? Limits::infinity() : Limits::max();
    typename F::Crect b = {most, most, least, least};
    for (int32_t i = 0; points && i < n; ++i) {
        b.x0 = lesser(b.x0, points[i].x);
        b.y0 = lesser(b.y0, points[i].y);
        b.x1 = greater(b.x1, points[i].x);
        b.y1 = greater(b.y1, points[i].y);
    }
    return b;
}

template <class F> typename F::Rect brect(const Pt<F> *points, int32_t n) {
    using Coord = typename F::Coord;
    using Wide = typename F::Wide;
    const typename F::Crect b = bounds<F>(points, n);
    return {b.x0, b.y0, static_cast<Coord>(Wide(b.x1) - b.x0), static_cast<Coord>(Wide(b.y1) - b.y0)};
}

template <class F, class Quad> Quad bquad(const Pt<F> *points, int32_t n) {
    using To = decltype(Quad{}.pt->x);
    const typename F::Crect b = bounds<F>(points, n);
    const To x0 = static_cast<To>(b.x0), y0 = static_cast<To>(b.y0);
    const To x1 = static_cast<To>(b.x1), y1 = static_cast<To>(b.y1);
    return {{{x0, y0}, {x0, y1}, {x1, y1}, {x1, y0}}};
}

template <class F> double signed_area(const Pt<F> *points, int32_t n) {
    if (!points || n < 2) return 0;
    Product<F> sum = 0;
    for (int32_t i = 0; i < n; ++i) {
        const Pt<F> &p = points[i], &before = points[i > 0 ? i - 1 : n - 1];
        sum += Product<F>(p.x) * before.y - Product<F>(p.y) * before.x;
    }
    return 0.5 * static_cast<double>(sum);
}

template <class F> int32_t counter_clockwise(const Pt<F> *points, int32_t n) {
    return -signed_area<F>(points, n) > area_tolerance;
}

template <class F> int32_t clockwise(const Pt<F> *points, int32_t n) {
    return -signed_area<F>(points, n) <= area_tolerance;
}

template <class F> int32_t convex(const Pt<F> *points, int32_t n) {
    if (!points || n < 3) return 0;
    const auto negative = [&](const Pt<F> &a, const Pt<F> &b, const Pt<F> &q) {
        const Turn<F> turn(a, b, q);
        return turn.left - turn.right < 0;
    };
    const bool first = negative(points[n - 2], points[n - 1], points[0]);
    if (negative(points[n - 1], points[0], points[1]) != first) return 0;
    for (int32_t i = 2; i < n; ++i)
        if (negative(points[i - 2], points[i - 1], points[i]) != first) return 0;
    return 1;
}

} // namespace
} // namespace jorm

using namespace jorm;

#define POINT(name, F, op)                                                                                             \
    const F::Pt *name(const F::Pt *points, int32_t n) { return op<F>(points, n); }
#define RECT(name, F, op)                                                                                              \
    F::Rect *name(F::Rect *out, const F::Pt *points, int32_t n) {                                                      \
        *out = op<F>(points, n);                                                                                       \
        return out;                                                                                                    \
    }
#define QUAD(name, F, Quad)                                                                                            \
    Quad *name(Quad *out, const F::Pt *points, int32_t n) {                                                            \
        *out = bquad<F, Quad>(points, n);                                                                              \
        return out;                                                                                                    \
    }
#define MEASURE(name, F, op)                                                                                           \
    double name(const F::Pt *points, int32_t n) { return op<F>(points, n); }
#define TRUTH(name, F, op)                                                                                             \
    int32_t name(const F::Pt *points, int32_t n) { return op<F>(points, n); }
#define CAST(name, To, From)                                                                                           \
    To::Pt *name(To::Pt *out, const From::Pt *points, int32_t n) {                                                     \
        for (int32_t i = 0; points && i < n; ++i)                                                                      \
            out[i] = {nearest<To::Coord>(points[i].x), nearest<To::Coord>(points[i].y)};                               \
        return out;                                                                                                    \
    }

// clang-format off
JORM_ALL_FAMILIES(POINT, lowest, jorm_2d_ptv_lowest, jorm_f2d_ptv_lowest, jorm_r2d_ptv_lowest)
JORM_ALL_FAMILIES(RECT, brect, jorm_2d_ptv_brect, jorm_f2d_ptv_brect, jorm_r2d_ptv_brect)
QUAD(jorm_2d_ptv_bquad_$f, Int2d, jorm_f2d_quad)
QUAD(jorm_2d_ptv_bquad_$r, Int2d, jorm_r2d_quad)
QUAD(jorm_f2d_ptv_bquad, F32, jorm_f2d_quad)
QUAD(jorm_r2d_ptv_bquad, F64, jorm_r2d_quad)
JORM_ALL_FAMILIES(MEASURE, signed_area, jorm_2d_ptv___sarea, jorm_f2d_ptv___sarea, jorm_r2d_ptv___sarea)
JORM_ALL_FAMILIES(TRUTH, counter_clockwise, jorm_2d_ptv_iscclockwise, jorm_f2d_ptv_iscclockwise, jorm_r2d_ptv_iscclockwise)
JORM_ALL_FAMILIES(TRUTH, clockwise, jorm_2d_ptv_isclockwise, jorm_f2d_ptv_isclockwise, jorm_r2d_ptv_isclockwise)
JORM_ALL_FAMILIES(TRUTH, convex, jorm_2d_ptv_isconvex, jorm_f2d_ptv_isconvex, jorm_r2d_ptv_isconvex)
JORM_ALL_FAMILIES(TRUTH, all_colinear, jorm_2d_ptv_all_colinear, jorm_f2d_ptv_all_colinear, jorm_r2d_ptv_all_colinear)
CAST(jorm_2d_ptv_cast_$f, Int2d, F32)
CAST(jorm_2d_ptv_cast_$r, Int2d, F64)
CAST(jorm_f2d_ptv_cast_$i, F32, Int2d)
CAST(jorm_f2d_ptv_cast_$r, F32, F64)
CAST(jorm_r2d_ptv_cast_$i, F64, Int2d)
CAST(jorm_r2d_ptv_cast_$f, F64, F32)
