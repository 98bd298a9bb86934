#include <algorithm>

#include "geometry/family.hpp"

namespace jorm {
namespace {

static_assert(sizeof(jorm_2d_rect) == 16 && sizeof(jorm_f2d_rect) == 16 && sizeof(jorm_r2d_rect) == 32);

template <class F> using Rect = typename F::Rect;
template <class F> using Coord = typename F::Coord;
template <class F> using Wide = typename F::Wide;

// A side of a rectangle: [lo, lo + size].
template <class F> struct Side { Wide<F> lo, size; };
template <class F> Side<F> across(const Rect<F> &a) { return {a.x, a.width}; }
template <class F> Side<F> down(const Rect<F> &a) { return {a.y, a.height}; }

template <class F> Rect<F> of_sides(const Side<F> &h, const Side<F> &v) {
    return {static_cast<Coord<F>>(h.lo), static_cast<Coord<F>>(v.lo), static_cast<Coord<F>>(h.size),
            static_cast<Coord<F>>(v.size)};
}

// Common part and hull work with sizes instead of upper ends, so that a side that contains another one gives the inner
// or the outer size unrounded.
template <class F> Side<F> common(const Side<F> &a, const Side<F> &b) {
    const Side<F> &late = a.lo > b.lo ? a : b, &early = a.lo > b.lo ? b : a;
    Wide<F> size = lesser(early.size - (late.lo - early.lo), late.size);
    if constexpr (std::is_integral_v<Coord<F>>) {
        size = std::max<Wide<F>>(size, INT32_MIN); // a gap never wraps into a size
    }
    return {late.lo, size};
}

template <class F> Side<F> hull(const Side<F> &a, const Side<F> &b) {
    const Side<F> &early = a.lo < b.lo ? a : b, &late = a.lo < b.lo ? b : a;
    return {early.lo, greater((late.lo - early.lo) + late.size, early.size)};
}

template <class F> int32_t empty(const Rect<F> &a) { return !(a.width > 0 && a.height > 0); }

template <class F> double area(const Rect<F> &a) {
    return empty<F>(a) ? 0.0 : static_cast<double>(Wide<F>(a.width) * a.height);
}

template <class F> typename F::Centre centre(const Rect<F> &a) {
    using T = decltype(F::Centre::x);
    return {static_cast<T>(a.x + 0.5 * a.width), static_cast<T>(a.y + 0.5 * a.height)};
}

// The distance from the lower end is rounded as the sizes are: both points that span a rectangle lie inside.
template <class F> bool within(Wide<F> lo, Coord<F> size, Wide<F> at) {
    if constexpr (std::is_same_v<Coord<F>, float>) return at >= lo && static_cast<float>(at - lo) <= size;
    return at >= lo && at - lo <= size;
}

template <class F> int32_t inside(const Rect<F> &a, const typename F::Pt &b) {
    return within<F>(a.x, a.width, b.x) && within<F>(a.y, a.height, b.y);
}

template <class F> int32_t equal(const Rect<F> &a, const Rect<F> &b) {
    return a.x == b.x && a.y == b.y && a.width == b.width && a.height == b.height;
}

template <class F> int32_t intersect(Rect<F> &out, const Rect<F> &a, const Rect<F> &b) {
    out = of_sides<F>(common<F>(across<F>(a), across<F>(b)), common<F>(down<F>(a), down<F>(b)));
    return !empty<F>(out);
}

template <class F> Rect<F> unite(const Rect<F> &a, const Rect<F> &b) {
    if (empty<F>(a)) return b;
    if (empty<F>(b)) return a;
    return of_sides<F>(hull<F>(across<F>(a), across<F>(b)), hull<F>(down<F>(a), down<F>(b)));
}

template <class F> Rect<F> grown(const Rect<F> &a, Wide<F> dx, Wide<F> dy) {
    return of_sides<F>({a.x - dx, a.width + 2 * dx}, {a.y - dy, a.height + 2 * dy});
}

template <class F> Rect<F> of_corners(const typename F::Crect &a) {
    return of_sides<F>({a.x0, Wide<F>(a.x1) - a.x0}, {a.y0, Wide<F>(a.y1) - a.y0});
}

template <class F> Rect<F> of_points(const typename F::Pt &a, const typename F::Pt &b) {
    return of_corners<F>({lesser(a.x, b.x), lesser(a.y, b.y), greater(a.x, b.x), greater(a.y, b.y)});
}

} // namespace
} // namespace jorm

using namespace jorm;

#define ZERO(name, F, _)                                                                                               \
    F::Rect *name(F::Rect *out) {                                                                                      \
        *out = {};                                                                                                     \
        return out;                                                                                                    \
    }
#define FIELDS(name, F, _)                                                                                             \
    F::Rect *name(F::Rect *out, F::Coord x, F::Coord y, F::Coord width, F::Coord height) {                             \
        *out = {x, y, width, height};                                                                                  \
        return out;                                                                                                    \
    }
#define CAST(name, To, From)                                                                                           \
    To::Rect *name(To::Rect *out, const From::Rect *a) {                                                               \
        *out = {nearest<To::Coord>(a->x), nearest<To::Coord>(a->y), nearest<To::Coord>(a->width),                      \
                nearest<To::Coord>(a->height)};                                                                        \
        return out;                                                                                                    \
    }
#define OF_CORNERS(name, F, _)                                                                                         \
    F::Rect *name(F::Rect *out, const F::Crect *a) {                                                                   \
        *out = of_corners<F>(*a);                                                                                      \
        return out;                                                                                                    \
    }
#define OF_POINTS(name, F, _)                                                                                          \
    F::Rect *name(F::Rect *out, const F::Pt *a, const F::Pt *b) {                                                      \
        *out = of_points<F>(*a, *b);                                                                                   \
        return out;                                                                                                    \
    }
#define TRUTH(name, F, op)                                                                                             \
    int32_t name(const F::Rect *a) { return op<F>(*a); }
#define MEASURE(name, F, op)                                                                                           \
    double name(const F::Rect *a) { return op<F>(*a); }
#define CENTRE(name, F, _)                                                                                             \
    F::Centre *name(F::Centre *out, const F::Rect *a) {                                                                \
        *out = centre<F>(*a);                                                                                          \
        return out;                                                                                                    \
    }
#define INSIDE(name, F, _)                                                                                             \
    int32_t name(const F::Rect *a, const F::Pt *b) { return inside<F>(*a, *b); }
#define EQUAL(name, F, _)                                                                                              \
    int32_t name(const F::Rect *a, const F::Rect *b) { return equal<F>(*a, *b); }
#define INTERSECTION(name, F, _)                                                                                       \
    int32_t name(F::Rect *out, const F::Rect *a, const F::Rect *b) { return intersect<F>(*out, *a, *b); }
#define INTERSECTION_IN_PLACE(name, F, _)                                                                              \
    int32_t name(F::Rect *a, const F::Rect *b) { return intersect<F>(*a, *a, *b); }
#define UNION(name, F, _)                                                                                              \
    F::Rect *name(F::Rect *out, const F::Rect *a, const F::Rect *b) {                                                  \
        *out = unite<F>(*a, *b);                                                                                       \
        return out;                                                                                                    \
    }
#define GROWTH(name, F, _)                                                                                             \
    F::Rect *name(F::Rect *a, F::Coord dx, F::Coord dy) {                                                              \
        *a = grown<F>(*a, dx, dy);                                                                                     \
        return a;                                                                                                      \
    }

// clang-format off
JORM_ALL_FAMILIES(ZERO, , __jorm_2d_rect__$, __jorm_f2d_rect__$, __jorm_r2d_rect__$)
JORM_ALL_FAMILIES(FIELDS, , __jorm_2d_rect__$g4, __jorm_f2d_rect__$g4, __jorm_r2d_rect__$g4)
JORM_ALL_FAMILIES(OF_CORNERS, , __jorm_2d_rect__$crect, __jorm_f2d_rect__$crect, __jorm_r2d_rect__$crect)
JORM_ALL_FAMILIES(OF_POINTS, , __jorm_2d_rect__$pts, __jorm_f2d_rect__$pts, __jorm_r2d_rect__$pts)
CAST(__jorm_2d_rect__$cast$f, Int2d, F32)
CAST(__jorm_2d_rect__$cast$r, Int2d, F64)
CAST(__jorm_f2d_rect__$cast$i, F32, Int2d)
CAST(__jorm_f2d_rect__$cast$r, F32, F64)
CAST(__jorm_r2d_rect__$cast$i, F64, Int2d)
CAST(__jorm_r2d_rect__$cast$f, F64, F32)
JORM_ALL_FAMILIES(TRUTH, empty, jorm_2d_rect_empty, jorm_f2d_rect_empty, jorm_r2d_rect_empty)
JORM_ALL_FAMILIES(MEASURE, area, jorm_2d_rect_area, jorm_f2d_rect_area, jorm_r2d_rect_area)
JORM_ALL_FAMILIES(CENTRE, , jorm_2d_rect_centre, jorm_f2d_rect_centre, jorm_r2d_rect_centre)
JORM_ALL_FAMILIES(INSIDE, , jorm_2d_rect_inside, jorm_f2d_rect_inside, jorm_r2d_rect_inside)
JORM_ALL_FAMILIES(EQUAL, , jorm_2d_rect_equal, jorm_f2d_rect_equal, jorm_r2d_rect_equal)
JORM_ALL_FAMILIES(INTERSECTION, , jorm_2d_rect_intersec, jorm_f2d_rect_intersec, jorm_r2d_rect_intersec)
JORM_ALL_FAMILIES(INTERSECTION_IN_PLACE, ,
                  jorm_2d_rect_intersec_$I, jorm_f2d_rect_intersec_$I, jorm_r2d_rect_intersec_$I)
JORM_ALL_FAMILIES(UNION, , jorm_2d_rect_unite, jorm_f2d_rect_unite, jorm_r2d_rect_unite)
JORM_ALL_FAMILIES(GROWTH, , jorm_2d_rect_grow_$I, jorm_f2d_rect_grow_$I, jorm_r2d_rect_grow_$I)
// clang-format on
