#include "geometry/moment.hpp"

using namespace jorm;

#define CENTROID(name, F, To)                                                                                          \
    To *name(To *out, const F::Pt *points, int32_t n) {                                                                \
        const jorm_r2d_pt mean = mean_point<F>(points, count_of(points, n));                                           \
        *out = {static_cast<decltype(out->x)>(mean.x), static_cast<decltype(out->y)>(mean.y)};                         \
        return out;                                                                                                    \
    }
#define FIRST(name, F, op)                                                                                             \
    jorm_r2d_moment1 *name(jorm_r2d_moment1 *out, const F::Pt *points, int32_t n) {                                    \
        const jorm_r2d_pt mean = mean_point<F>(points, count_of(points, n));                                           \
        *out = {mean.x, mean.y};                                                                                       \
        return out;                                                                                                    \
    }
#define SECOND(name, F, op)                                                                                            \
    jorm_r2d_moment2 *name(jorm_r2d_moment2 *out, const F::Pt *points, int32_t n) {                                    \
        *out = op<F>(points, count_of(points, n));                                                                     \
        return out;                                                                                                    \
    }

// clang-format off
CENTROID(jorm_2d_ptv_centroid, Int2d, jorm_r2d_pt)
CENTROID(jorm_2d_ptv_centroid_$f, Int2d, jorm_f2d_pt)
CENTROID(jorm_2d_ptv_centroid_f, Int2d, jorm_f2d_pt)
CENTROID(jorm_f2d_ptv_centroid, F32, jorm_f2d_pt)
CENTROID(jorm_r2d_ptv_centroid, F64, jorm_r2d_pt)
JORM_ALL_FAMILIES(FIRST, , jorm_2d_ptv_moment1, jorm_f2d_ptv_moment1, jorm_r2d_ptv_moment1)
JORM_ALL_FAMILIES(SECOND, raw_moments, jorm_2d_ptv_moment2, jorm_f2d_ptv_moment2, jorm_r2d_ptv_moment2)
JORM_ALL_FAMILIES(SECOND, central_moments, jorm_2d_ptv_moment2_$c, jorm_f2d_ptv_moment2_$c, jorm_r2d_ptv_moment2_$c)
SECOND(jorm_2d_ptv_moment2_c, Int2d, central_moments)
// clang-format on
