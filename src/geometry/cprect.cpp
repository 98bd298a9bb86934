#include <utility>

#include "geometry/family.hpp"

namespace jorm {
namespace {

static_assert(sizeof(jorm_2d_crect) == 16 && sizeof(jorm_f2d_crect) == 16 && sizeof(jorm_r2d_crect) == 32);

template <class F> using Crect = typename F::Crect;

template <class F> Crect<F> of_rect(const typename F::Rect &a) {
    using T = typename F::Coord;
    using W = typename F::Wide;
    return {a.x, a.y, static_cast<T>(W(a.x) + a.width), static_cast<T>(W(a.y) + a.height)};
}

template <class F> int32_t empty(const Crect<F> &a) { return !(a.x0 < a.x1 && a.y0 < a.y1); }

template <class F> void normalize(Crect<F> &a) {
    if (a.x1 < a.x0) std::swap(a.x0, a.x1);
    if (a.y1 < a.y0) std::swap(a.y0, a.y1);
}

template <class F> int32_t inside(const Crect<F> &a, const typename F::Pt &b) {
    return a.x0 <= b.x && b.x <= a.x1 && a.y0 <= b.y && b.y <= a.y1;
}

template <class F> int32_t intersect(Crect<F> &a, const Crect<F> &b) {
    a = {greater(a.x0, b.x0), greater(a.y0, b.y0), lesser(a.x1, b.x1), lesser(a.y1, b.y1)};
    return !empty<F>(a);
}

template <class F> void include(Crect<F> &a, const typename F::Pt &b) {
    a = {lesser(a.x0, b.x), lesser(a.y0, b.y), greater(a.x1, b.x), greater(a.y1, b.y)};
}

} // namespace
} // namespace jorm

using namespace jorm;

#define FIELDS(name, F, _)                                                                                             \
    F::Crect *name(F::Crect *out, F::Coord x0, F::Coord y0, F::Coord x1, F::Coord y1) {                                \
        *out = {x0, y0, x1, y1};                                                                                       \
        return out;                                                                                                    \
    }
#define OF_RECT(name, F, _)                                                                                            \
    F::Crect *name(F::Crect *out, const F::Rect *a) {                                                                  \
        *out = of_rect<F>(*a);                                                                                         \
        return out;                                                                                                    \
    }
#define CAST(name, To, From)                                                                                           \
    To::Crect *name(To::Crect *out, const From::Crect *a) {                                                            \
        *out = {nearest<To::Coord>(a->x0), nearest<To::Coord>(a->y0), nearest<To::Coord>(a->x1),                       \
                nearest<To::Coord>(a->y1)};                                                                            \
        return out;                                                                                                    \
    }
#define EMPTY(name, F, _)                                                                                              \
    int32_t name(const F::Crect *a) { return empty<F>(*a); }
#define NORMALIZE(name, F, _)                                                                                          \
    F::Crect *name(F::Crect *a) {                                                                                      \
        normalize<F>(*a);                                                                                              \
        return a;                                                                                                      \
    }
#define INSIDE(name, F, _)                                                                                             \
    int32_t name(const F::Crect *a, const F::Pt *b) { return inside<F>(*a, *b); }
#define INTERSECTION(name, F, _)                                                                                       \
    int32_t name(F::Crect *a, const F::Crect *b) { return intersect<F>(*a, *b); }
#define INCLUDE(name, F, _)                                                                                            \
    F::Crect *name(F::Crect *a, const F::Pt *b) {                                                                      \
        include<F>(*a, *b);                                                                                            \
        return a;                                                                                                      \
    }

// clang-format off
JORM_ALL_FAMILIES(FIELDS, , __jorm_2d_crect__$g4, __jorm_f2d_crect__$g4, __jorm_r2d_crect__$g4)
JORM_ALL_FAMILIES(OF_RECT, , __jorm_2d_crect__$rect, __jorm_f2d_crect__$rect, __jorm_r2d_crect__$rect)
CAST(__jorm_2d_crect__$cast$f, Int2d, F32)
CAST(__jorm_2d_crect__$cast$r, Int2d, F64)
CAST(__jorm_f2d_crect__$cast$i, F32, Int2d)
CAST(__jorm_f2d_crect__$cast$r, F32, F64)
CAST(__jorm_r2d_crect__$cast$i, F64, Int2d)
CAST(__jorm_r2d_crect__$cast$f, F64, F32)
JORM_ALL_FAMILIES(EMPTY, , jorm_2d_crect_empty, jorm_f2d_crect_empty, jorm_r2d_crect_empty)
JORM_ALL_FAMILIES(NORMALIZE, , jorm_2d_crect_normalize_$I, jorm_f2d_crect_normalize_$I, jorm_r2d_crect_normalize_$I)
JORM_ALL_FAMILIES(INSIDE, , jorm_2d_crect_inside, jorm_f2d_crect_inside, jorm_r2d_crect_inside)
JORM_ALL_FAMILIES(INTERSECTION, , jorm_2d_crect_intersec_$I, jorm_f2d_crect_intersec_$I, jorm_r2d_crect_intersec_$I)
JORM_ALL_FAMILIES(INCLUDE, , jorm_2d_crect_include_$I, jorm_f2d_crect_include_$I, jorm_r2d_crect_include_$I)
// clang-format on
