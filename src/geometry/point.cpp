#include "geometry/family.hpp"

namespace jorm {
namespace {

static_assert(sizeof(jorm_2d_pt) == 8 && sizeof(jorm_f2d_pt) == 8 && sizeof(jorm_r2d_pt) == 16);

template <class F> using Pt = typename F::Pt;
template <class F> using Coord = typename F::Coord;
template <class F> using Wide = typename F::Wide;

// a b + c d, wrapped in 64 bits for integers.
int64_t products(int64_t a, int64_t b, int64_t c, int64_t d) {
    return static_cast<int64_t>(static_cast<uint64_t>(a) * static_cast<uint64_t>(b) +
                                static_cast<uint64_t>(c) * static_cast<uint64_t>(d));
}
double products(double a, double b, double c, double d) { return a * b + c * d; }

template <class F> Pt<F> add(const Pt<F> &a, const Pt<F> &b) {
    return {static_cast<Coord<F>>(Wide<F>(a.x) + b.x), static_cast<Coord<F>>(Wide<F>(a.y) + b.y)};
}

template <class F> Pt<F> sub(const Pt<F> &a, const Pt<F> &b) {
    return {static_cast<Coord<F>>(Wide<F>(a.x) - b.x), static_cast<Coord<F>>(Wide<F>(a.y) - b.y)};
}

template <class F> Pt<F> scale(const Pt<F> &a, double k) {
    return {nearest<Coord<F>>(k * a.x), nearest<Coord<F>>(k * a.y)};
}

template <class F> int32_t equal(const Pt<F> &a, const Pt<F> &b) { return a.x == b.x && a.y == b.y; }

template <class F> Wide<F> dot(const Pt<F> &a, const Pt<F> &b) {
    return products(Wide<F>(a.x), b.x, Wide<F>(a.y), b.y);
}

template <class F> Wide<F> cross(const Pt<F> &a, const Pt<F> &b) {
    return products(Wide<F>(a.x), b.y, -Wide<F>(a.y), b.x);
}

template <class F> Wide<F> dist2(const Pt<F> &a, const Pt<F> &b) {
    const Wide<F> dx = Wide<F>(a.x) - b.x, dy = Wide<F>(a.y) - b.y;
    return products(dx, dx, dy, dy);
}

template <class F> double dist(const Pt<F> &a, const Pt<F> &b) {
    return std::hypot(static_cast<double>(Wide<F>(a.x) - b.x), static_cast<double>(Wide<F>(a.y) - b.y));
}

template <class F> double norm(const Pt<F> &a) { return dist<F>(a, {}); }
template <class F> double angle(const Pt<F> &a) { return std::atan2(double(a.y), double(a.x)); }

} // namespace
} // namespace jorm

using namespace jorm;

#define ORIGIN(name, F, _)                                                                                             \
    F::Pt *name(F::Pt *out) {                                                                                          \
        *out = {};                                                                                                     \
        return out;                                                                                                    \
    }
#define COORDINATES(name, F, _)                                                                                        \
    F::Pt *name(F::Pt *out, F::Coord x, F::Coord y) {                                                                  \
        *out = {x, y};                                                                                                 \
        return out;                                                                                                    \
    }
#define CAST(name, To, From)                                                                                           \
    To::Pt *name(To::Pt *out, const From::Pt *a) {                                                                     \
        *out = {nearest<To::Coord>(a->x), nearest<To::Coord>(a->y)};                                                   \
        return out;                                                                                                    \
    }
#define OF_TWO(name, F, op)                                                                                            \
    F::Pt *name(F::Pt *out, const F::Pt *a, const F::Pt *b) {                                                          \
        *out = op<F>(*a, *b);                                                                                          \
        return out;                                                                                                    \
    }
#define ONTO_FIRST(name, F, op)                                                                                        \
    F::Pt *name(F::Pt *a, const F::Pt *b) {                                                                            \
        *a = op<F>(*a, *b);                                                                                            \
        return a;                                                                                                      \
    }
#define SCALED(name, F, op)                                                                                            \
    F::Pt *name(F::Pt *out, const F::Pt *a, double k) {                                                                \
        *out = op<F>(*a, k);                                                                                           \
        return out;                                                                                                    \
    }
#define SCALED_IN_PLACE(name, F, op)                                                                                   \
    F::Pt *name(F::Pt *a, double k) {                                                                                  \
        *a = op<F>(*a, k);                                                                                             \
        return a;                                                                                                      \
    }
#define ROTATED(name, F, _)                                                                                            \
    F::Pt *name(F::Pt *out, const F::Pt *a, const F::Pt *centre, double angle) {                                       \
        *out = turned(*a, *centre, std::cos(angle), std::sin(angle));                                                  \
        return out;                                                                                                    \
    }
#define TRUTH(name, F, op)                                                                                             \
    int32_t name(const F::Pt *a, const F::Pt *b) { return op<F>(*a, *b); }
#define PRODUCT(name, F, op)                                                                                           \
    F::Wide name(const F::Pt *a, const F::Pt *b) { return op<F>(*a, *b); }
#define DISTANCE(name, F, op)                                                                                          \
    double name(const F::Pt *a, const F::Pt *b) { return op<F>(*a, *b); }
#define MEASURE(name, F, op)                                                                                           \
    double name(const F::Pt *a) { return op<F>(*a); }

// clang-format off
JORM_ALL_FAMILIES(ORIGIN, , __jorm_2d_point__$, __jorm_f2d_point__$, __jorm_r2d_point__$)
JORM_ALL_FAMILIES(COORDINATES, , __jorm_2d_point__$g2, __jorm_f2d_point__$g2, __jorm_r2d_point__$g2)
CAST(__jorm_2d_point__$cast$f, Int2d, F32)
CAST(__jorm_2d_point__$cast$r, Int2d, F64)
CAST(__jorm_f2d_point__$cast$i, F32, Int2d)
CAST(__jorm_f2d_point__$cast$r, F32, F64)
CAST(__jorm_r2d_point__$cast$i, F64, Int2d)
CAST(__jorm_r2d_point__$cast$f, F64, F32)
JORM_ALL_FAMILIES(OF_TWO, add, jorm_2d_pt_add, jorm_f2d_pt_add, jorm_r2d_pt_add)
JORM_ALL_FAMILIES(ONTO_FIRST, add, jorm_2d_pt_add_$I, jorm_f2d_pt_add_$I, jorm_r2d_pt_add_$I)
JORM_ALL_FAMILIES(OF_TWO, sub, jorm_2d_pt_sub, jorm_f2d_pt_sub, jorm_r2d_pt_sub)
JORM_ALL_FAMILIES(SCALED, scale, jorm_2d_pt_scale, jorm_f2d_pt_scale, jorm_r2d_pt_scale)
JORM_ALL_FAMILIES(SCALED_IN_PLACE, scale, jorm_2d_pt_scale_$I, jorm_f2d_pt_scale_$I, jorm_r2d_pt_scale_$I)
JORM_ALL_FAMILIES(TRUTH, equal, jorm_2d_pt_equal, jorm_f2d_pt_equal, jorm_r2d_pt_equal)
JORM_ALL_FAMILIES(PRODUCT, dot, jorm_2d_pt_dot, jorm_f2d_pt_dot, jorm_r2d_pt_dot)
JORM_ALL_FAMILIES(PRODUCT, cross, jorm_2d_pt_cross, jorm_f2d_pt_cross, jorm_r2d_pt_cross)
JORM_ALL_FAMILIES(PRODUCT, dist2, jorm_2d_pt_dist2, jorm_f2d_pt_dist2, jorm_r2d_pt_dist2)
JORM_ALL_FAMILIES(DISTANCE, dist, jorm_2d_pt_dist, jorm_f2d_pt_dist, jorm_r2d_pt_dist)
JORM_ALL_FAMILIES(MEASURE, norm, jorm_2d_pt_norm, jorm_f2d_pt_norm, jorm_r2d_pt_norm)
JORM_FLOAT_FAMILIES(MEASURE, angle, jorm_f2d_pt_angle, jorm_r2d_pt_angle)
JORM_FLOAT_FAMILIES(ROTATED, , jorm_f2d_pt_rotate, jorm_r2d_pt_rotate)
// clang-format on
