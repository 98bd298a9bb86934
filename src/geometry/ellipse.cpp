#include "geometry/family.hpp"

namespace jorm {
namespace {

static_assert(sizeof(jorm_f2d_ell) == 20 && sizeof(jorm_r2d_ell) == 40);

constexpr double pi = 3.14159265358979323846;

template <class F> using Ell = typename F::Ell;
template <class F> using Pt = typename F::Pt;

template <class F> Ell<F> make(double x, double y, double semi1, double semi2, double angle) {
    using T = typename F::Coord;
    return {
        {static_cast<T>(x), static_cast<T>(y)}, static_cast<T>(semi1), static_cast<T>(semi2), static_cast<T>(angle)};
}

template <class F> Ell<F> of_matrix(const Pt<F> &centre, const double *matrix, double k) {
    double eigenvalues[2];
    const double angle = jorm_f64_symmat2x2_xeigvals(eigenvalues, matrix);
    return make<F>(centre.x, centre.y, std::sqrt(eigenvalues[0]) * k, std::sqrt(eigenvalues[1]) * k, angle);
}

template <class F> Ell<F> inscribed(const typename F::Rect &a) {
    const double across = std::fabs(0.5 * a.width), down = std::fabs(0.5 * a.height);
    const double x = a.x + 0.5 * a.width, y = a.y + 0.5 * a.height;
    return down < across ? make<F>(x, y, down, across, 0.5 * pi) : make<F>(x, y, across, down, 0);
}

// The ellipse in f64 with the sine and cosine of its angle.
struct Turned {
    double x, y, semi1, semi2, cosine, sine;

    template <class E>
    explicit Turned(const E &a)
        : x(a.centre.x), y(a.centre.y), semi1(a.semi1), semi2(a.semi2), cosine(std::cos(double(a.angle))),
          sine(std::sin(double(a.angle))) {}
};

template <class F> typename F::Quad bquad(const Turned &e) {
    using T = typename F::Coord;
    const double ux = e.semi1 * e.cosine, uy = -e.semi1 * e.sine, vx = e.semi2 * e.sine, vy = e.semi2 * e.cosine;
    const auto corner = [&](double u, double v) {
        return Pt<F>{static_cast<T>(e.x + u * ux + v * vx), static_cast<T>(e.y + u * uy + v * vy)};
    };
    return {{corner(-1, -1), corner(-1, 1), corner(1, 1), corner(1, -1)}};
}

template <class F> typename F::Rect brect(const Turned &e) {
    using T = typename F::Coord;
    const double across = std::hypot(e.semi1 * e.cosine, e.semi2 * e.sine);
    const double down = std::hypot(e.semi1 * e.sine, e.semi2 * e.cosine);
    return {static_cast<T>(e.x - across), static_cast<T>(e.y - down), static_cast<T>(2 * across),
            static_cast<T>(2 * down)};
}

// Part of a semi-axis that a point lies out along it; 0 on an axis without length.
double share(double distance, double semi) { return distance == 0 ? 0 : distance / std::fabs(semi); }

int32_t inside(const Turned &e, double x, double y) {
    const double dx = x - e.x, dy = y - e.y;
    const double u = share(dx * e.cosine - dy * e.sine, e.semi1), v = share(dx * e.sine + dy * e.cosine, e.semi2);
    return u * u + v * v <= 1;
}

jorm_r2d_moment2 central(const Turned &e) {
    const double a = e.semi1 * e.semi1, b = e.semi2 * e.semi2, c = e.cosine, s = e.sine;
    return {(a * c * c + b * s * s) / 4, (b - a) * s * c / 4, (a * s * s + b * c * c) / 4};
}

jorm_r2d_moment2 raw(const Turned &e) {
    const jorm_r2d_moment2 m = central(e);
    return {m.m00 + e.x * e.x, m.m01 + e.x * e.y, m.m11 + e.y * e.y};
}

} // namespace
} // namespace jorm

using namespace jorm;

#define FIELDS(name, F, _)                                                                                             \
    F::Ell *name(F::Ell *out, F::Coord x, F::Coord y, F::Coord semi1, F::Coord semi2, F::Coord angle) {                \
        *out = {{x, y}, semi1, semi2, angle};                                                                          \
        return out;                                                                                                    \
    }
#define OF_RECT(name, F, _)                                                                                            \
    F::Ell *name(F::Ell *out, const F::Rect *a) {                                                                      \
        *out = inscribed<F>(*a);                                                                                       \
        return out;                                                                                                    \
    }
#define OF_MATRIX(name, F, _)                                                                                          \
    F::Ell *name(F::Ell *out, const F::Pt *centre, const double *matrix, double k) {                                   \
        *out = of_matrix<F>(*centre, matrix, k);                                                                       \
        return out;                                                                                                    \
    }
#define OF_MOMENTS(name, F, _)                                                                                         \
    F::Ell *name(F::Ell *out, const F::Pt *centre, const jorm_r2d_moment2 *moments, double k) {                        \
        double matrix[4];                                                                                              \
        *out = of_matrix<F>(*centre, jorm_r2d_moment2c_covariance(matrix, moments), k);                                \
        return out;                                                                                                    \
    }
#define CAST(name, To, From)                                                                                           \
    To::Ell *name(To::Ell *out, const From::Ell *a) {                                                                  \
        *out = make<To>(a->centre.x, a->centre.y, a->semi1, a->semi2, a->angle);                                       \
        return out;                                                                                                    \
    }
#define AREA(name, F, _)                                                                                               \
    double name(const F::Ell *a) { return pi * a->semi2 * a->semi1; }
#define BQUAD(name, F, _)                                                                                              \
    F::Quad *name(F::Quad *out, const F::Ell *a) {                                                                     \
        *out = bquad<F>(Turned(*a));                                                                                   \
        return out;                                                                                                    \
    }
#define BRECT(name, F, _)                                                                                              \
    F::Rect *name(F::Rect *out, const F::Ell *a) {                                                                     \
        *out = brect<F>(Turned(*a));                                                                                   \
        return out;                                                                                                    \
    }
#define INSIDE(name, F, _)                                                                                             \
    int32_t name(const F::Ell *a, const F::Pt *b) { return inside(Turned(*a), b->x, b->y); }
#define INSIDE_XY(name, F, _)                                                                                          \
    int32_t name(const F::Ell *a, F::Coord x, F::Coord y) { return inside(Turned(*a), x, y); }
#define SECOND(name, F, op)                                                                                            \
    jorm_r2d_moment2 *name(jorm_r2d_moment2 *out, const F::Ell *a) {                                                   \
        *out = op(Turned(*a));                                                                                         \
        return out;                                                                                                    \
    }

// clang-format off
JORM_FLOAT_FAMILIES(FIELDS, , __jorm_f2d_ellipse__$g5, __jorm_r2d_ellipse__$g5)
JORM_FLOAT_FAMILIES(OF_RECT, , __jorm_f2d_ellipse__$rect, __jorm_r2d_ellipse__$rect)
JORM_FLOAT_FAMILIES(OF_MATRIX, , __jorm_f2d_ellipse__$covariance, __jorm_r2d_ellipse__$covariance)
JORM_FLOAT_FAMILIES(OF_MOMENTS, , __jorm_f2d_ellipse__$moment2$c, __jorm_r2d_ellipse__$moment2$c)
CAST(__jorm_f2d_ellipse__$cast$r, F32, F64)
CAST(__jorm_r2d_ellipse__$cast$f, F64, F32)
JORM_FLOAT_FAMILIES(AREA, , jorm_f2d_ell_area, jorm_r2d_ell_area)
JORM_FLOAT_FAMILIES(BQUAD, , jorm_f2d_ell_bquad, jorm_r2d_ell_bquad)
JORM_FLOAT_FAMILIES(BRECT, , jorm_f2d_ell_brect, jorm_r2d_ell_brect)
JORM_FLOAT_FAMILIES(INSIDE, , jorm_f2d_ell_inside, jorm_r2d_ell_inside)
JORM_FLOAT_FAMILIES(INSIDE_XY, , jorm_f2d_ell_inside2, jorm_r2d_ell_inside2)
JORM_FLOAT_FAMILIES(SECOND, raw, jorm_f2d_ell_moment2, jorm_r2d_ell_moment2)
JORM_FLOAT_FAMILIES(SECOND, central, jorm_f2d_ell_moment2_$c, jorm_r2d_ell_moment2_$c)
// clang-format on
