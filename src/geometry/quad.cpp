#include "geometry/family.hpp"

static_assert(sizeof(jorm_2d_quad) == 32 && sizeof(jorm_f2d_quad) == 32 && sizeof(jorm_r2d_quad) == 64);

using namespace jorm;

#define OF_POINTS(name, F, _)                                                                                          \
    F::Quad *name(F::Quad *out, const F::Pt *points) {                                                                 \
        *out = {{points[0], points[1], points[2], points[3]}};                                                         \
        return out;                                                                                                    \
    }
#define OF_RECT(name, F, to_crect)                                                                                     \
    F::Quad *name(F::Quad *out, const F::Rect *a) {                                                                    \
        F::Crect c;                                                                                                    \
        to_crect(&c, a);                                                                                               \
        *out = {{{c.x0, c.y0}, {c.x0, c.y1}, {c.x1, c.y1}, {c.x1, c.y0}}};                                             \
        return out;                                                                                                    \
    }
#define CAST(name, To, From)                                                                                           \
    To::Quad *name(To::Quad *out, const From::Quad *a) {                                                               \
        To::Quad q;                                                                                                    \
        for (int i = 0; i < 4; ++i) q.pt[i] = {nearest<To::Coord>(a->pt[i].x), nearest<To::Coord>(a->pt[i].y)};        \
        *out = q;                                                                                                      \
        return out;                                                                                                    \
    }
// Quadrilaterals are polygons of four corners; of_corners is the function of point vectors that does the work.
#define MEASURE(name, F, of_corners)                                                                                   \
    double name(const F::Quad *a) { return of_corners(a->pt, 4); }
#define TRUTH(name, F, of_corners)                                                                                     \
    int32_t name(const F::Quad *a) { return of_corners(a->pt, 4); }
#define INSIDE(name, F, of_corners)                                                                                    \
    int32_t name(const F::Quad *a, const F::Pt *b) { return of_corners(a->pt, 4, b); }
#define FIGURE(name, F, Result, of_corners)                                                                            \
    Result *name(Result *out, const F::Quad *a) { return of_corners(out, a->pt, 4); }
#define ROTATION(name, F, central_moments)                                                                             \
    double name(const F::Quad *a) {                                                                                    \
        jorm_r2d_moment2 moments;                                                                                      \
        return jorm_r2d_moment2c_rotation(central_moments(&moments, a));                                               \
    }
#define FITTED_ELLIPSE(name, F, of_moments, centroid, central_moments)                                                 \
    F::Ell *name(F::Ell *out, const F::Quad *a) {                                                                      \
        F::Pt centre;                                                                                                  \
        jorm_r2d_moment2 moments;                                                                                      \
        return of_moments(out, centroid(&centre, a), central_moments(&moments, a), 2.0);                               \
    }
#define ROTATE(name, F, _)                                                                                             \
    F::Quad *name(F::Quad *a, const F::Pt *centre, double angle) {                                                     \
        const F::Pt about = *centre; /* may be one of the corners */                                                   \
        const double cosine = std::cos(angle), sine = std::sin(angle);                                                 \
        for (F::Pt & corner : a->pt) corner = turned(corner, about, cosine, sine);                                     \
        return a;                                                                                                      \
    }

// clang-format off
JORM_ALL_FAMILIES(OF_POINTS, , __jorm_2d_quad__$pts, __jorm_f2d_quad__$pts, __jorm_r2d_quad__$pts)
OF_RECT(__jorm_2d_quad__$rect, Int2d, __jorm_2d_crect__$rect)
OF_RECT(__jorm_f2d_quad__$rect, F32, __jorm_f2d_crect__$rect)
OF_RECT(__jorm_r2d_quad__$rect, F64, __jorm_r2d_crect__$rect)
CAST(__jorm_2d_quad__$cast$f, Int2d, F32)
CAST(__jorm_2d_quad__$cast$r, Int2d, F64)
CAST(__jorm_f2d_quad__$cast$i, F32, Int2d)
CAST(__jorm_f2d_quad__$cast$r, F32, F64)
CAST(__jorm_r2d_quad__$cast$i, F64, Int2d)
CAST(__jorm_r2d_quad__$cast$f, F64, F32)
MEASURE(jorm_2d_quad_area, Int2d, jorm_2d_poly_area)
MEASURE(jorm_f2d_quad_area, F32, jorm_f2d_poly_area)
MEASURE(jorm_r2d_quad_area, F64, jorm_r2d_poly_area)
TRUTH(jorm_2d_quad_isconvex, Int2d, jorm_2d_ptv_isconvex)
TRUTH(jorm_f2d_quad_isconvex, F32, jorm_f2d_ptv_isconvex)
TRUTH(jorm_r2d_quad_isconvex, F64, jorm_r2d_ptv_isconvex)
INSIDE(jorm_2d_quad_inside, Int2d, jorm_2d_poly_inside)
INSIDE(jorm_f2d_quad_inside, F32, jorm_f2d_poly_inside)
INSIDE(jorm_r2d_quad_inside, F64, jorm_r2d_poly_inside)
FIGURE(jorm_2d_quad_brect, Int2d, jorm_2d_rect, jorm_2d_ptv_brect)
FIGURE(jorm_f2d_quad_brect, F32, jorm_f2d_rect, jorm_f2d_ptv_brect)
FIGURE(jorm_r2d_quad_brect, F64, jorm_r2d_rect, jorm_r2d_ptv_brect)
FIGURE(jorm_f2d_quad_bquad, F32, jorm_f2d_quad, jorm_f2d_ptv_bquad)
FIGURE(jorm_r2d_quad_bquad, F64, jorm_r2d_quad, jorm_r2d_ptv_bquad)
FIGURE(jorm_f2d_quad_centroid, F32, jorm_f2d_pt, jorm_f2d_poly_centroid)
FIGURE(jorm_r2d_quad_centroid, F64, jorm_r2d_pt, jorm_r2d_poly_centroid)
FIGURE(jorm_f2d_quad_moment2, F32, jorm_r2d_moment2, jorm_f2d_poly_moment2)
FIGURE(jorm_r2d_quad_moment2, F64, jorm_r2d_moment2, jorm_r2d_poly_moment2)
FIGURE(jorm_f2d_quad_moment2_$c, F32, jorm_r2d_moment2, jorm_f2d_poly_moment2_$c)
FIGURE(jorm_r2d_quad_moment2_$c, F64, jorm_r2d_moment2, jorm_r2d_poly_moment2_$c)
ROTATION(jorm_f2d_quad_rotation, F32, jorm_f2d_quad_moment2_$c)
ROTATION(jorm_r2d_quad_rotation, F64, jorm_r2d_quad_moment2_$c)
FITTED_ELLIPSE(jorm_f2d_quad_fitell, F32, __jorm_f2d_ellipse__$moment2$c,
               jorm_f2d_quad_centroid, jorm_f2d_quad_moment2_$c)
FITTED_ELLIPSE(jorm_r2d_quad_fitell, F64, __jorm_r2d_ellipse__$moment2$c,
               jorm_r2d_quad_centroid, jorm_r2d_quad_moment2_$c)
JORM_FLOAT_FAMILIES(ROTATE, , jorm_f2d_quad_rotate_$I, jorm_r2d_quad_rotate_$I)
// clang-format on
