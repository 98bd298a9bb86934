/* libJorm geometry: point vectors: extremes, area and orientation, angular order, convex hull, bounding quadrilaterals.
 *
 * A point vector is a pointer to n consecutive points; a null pointer or n < 1 is an empty vector. Outputs must not be
 * null. The functions of one group do the same for integer (2d), f32 (f2d) and f64 (r2d) points. They are pure and need
 * no heap memory but where it is said. Whatever decides something about integer points is exact for all coordinates.
 * The f2d forms compute in f64 and round to f32 once. NaN and infinite coordinates give unspecified results but do no
 * harm.
 *
 * Outlines are clockwise when x points to the right and y up, counter-clockwise on a screen where y points down, when
 * they run (min x, min y), (min x, max y), (max x, max y), (max x, min y). Hulls and quadrilaterals run so; only hulls
 * of at most three points stay as given, in the caller's order and sense, even when the points coincide or are
 * colinear.
 */
#ifndef JORM_POINTSET_H
#define JORM_POINTSET_H

#include "jorm/geometry_types.h"

JORM_BEGIN_DOLLARS

/* The point with the smallest x, among those the smallest y, of equal ones the first. n < 2 returns points. */
JORM_API const jorm_2d_pt *jorm_2d_ptv_lowest(const jorm_2d_pt *points, int32_t n);
JORM_API const jorm_f2d_pt *jorm_f2d_ptv_lowest(const jorm_f2d_pt *points, int32_t n);
JORM_API const jorm_r2d_pt *jorm_r2d_ptv_lowest(const jorm_r2d_pt *points, int32_t n);

/* Bounding rectangle: (min x, min y, max x - min x, max y - min y); integer sizes wrap in 32 bits. An empty vector
 * gives (2147483647, 2147483647, 1, 1), in the float forms (inf, inf, -inf, -inf). Returns out. */
JORM_API jorm_2d_rect *jorm_2d_ptv_brect(jorm_2d_rect *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_rect *jorm_f2d_ptv_brect(jorm_f2d_rect *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_rect *jorm_r2d_ptv_brect(jorm_r2d_rect *out, const jorm_r2d_pt *points, int32_t n);

/* Axis-parallel bounding quadrilateral: (min x, min y), (min x, max y), (max x, max y), (max x, min y). Of an empty
 * vector the minima are the largest and the maxima the smallest values of the points' type (inf and -inf). Returns out.
 */
JORM_API jorm_f2d_quad *jorm_2d_ptv_bquad_$f(jorm_f2d_quad *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_quad *jorm_2d_ptv_bquad_$r(jorm_r2d_quad *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_quad *jorm_f2d_ptv_bquad(jorm_f2d_quad *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_quad *jorm_r2d_ptv_bquad(jorm_r2d_quad *out, const jorm_r2d_pt *points, int32_t n);

/* Rectangle of least area around the points, in any direction: of the axis-parallel one and those with a side along an
 * edge of the convex hull the first of least area (rotating calipers: G. Toussaint, "Solving geometric problems with
 * the rotating calipers", 1983). The corners run as those of the axis-parallel one turned by more than -45 and at most
 * 45 degrees. Colinear points give the degenerate rectangle on their line. Takes a copy of the points with malloc;
 * without memory, and for an empty vector, the result is the axis-parallel one. Returns out. */
JORM_API jorm_f2d_quad *jorm_2d_ptv_minbquad_$f(jorm_f2d_quad *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_quad *jorm_2d_ptv_minbquad_$r(jorm_r2d_quad *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_quad *jorm_f2d_ptv_minbquad(jorm_f2d_quad *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_quad *jorm_r2d_ptv_minbquad(jorm_r2d_quad *out, const jorm_r2d_pt *points, int32_t n);

/* Signed area of the closed polygon: half the sum of x[i] y[i - 1] - y[i] x[i - 1], positive for outlines that run as
 * described above; 0 for n < 2. The sum over integer points is exact and rounded once, that over floats is taken in
 * f64. */
JORM_API double jorm_2d_ptv___sarea(const jorm_2d_pt *points, int32_t n);
JORM_API double jorm_f2d_ptv___sarea(const jorm_f2d_pt *points, int32_t n);
JORM_API double jorm_r2d_ptv___sarea(const jorm_r2d_pt *points, int32_t n);

/* 1 when -sarea > 2^-23: counter-clockwise where y points up. */
JORM_API int32_t jorm_2d_ptv_iscclockwise(const jorm_2d_pt *points, int32_t n);
JORM_API int32_t jorm_f2d_ptv_iscclockwise(const jorm_f2d_pt *points, int32_t n);
JORM_API int32_t jorm_r2d_ptv_iscclockwise(const jorm_r2d_pt *points, int32_t n);

/* 1 when -sarea <= 2^-23: clockwise, or without area. */
JORM_API int32_t jorm_2d_ptv_isclockwise(const jorm_2d_pt *points, int32_t n);
JORM_API int32_t jorm_f2d_ptv_isclockwise(const jorm_f2d_pt *points, int32_t n);
JORM_API int32_t jorm_r2d_ptv_isclockwise(const jorm_r2d_pt *points, int32_t n);

/* 1 when all corners of the closed polygon turn the same way, 0 for n < 3. A corner without a turn counts as one of
 * (q.x - a.x)(b.y - a.y) - (q.y - a.y)(b.x - a.x) >= 0. The float forms compute this in f64. */
JORM_API int32_t jorm_2d_ptv_isconvex(const jorm_2d_pt *points, int32_t n);
JORM_API int32_t jorm_f2d_ptv_isconvex(const jorm_f2d_pt *points, int32_t n);
JORM_API int32_t jorm_r2d_ptv_isconvex(const jorm_r2d_pt *points, int32_t n);

/* 1 when n < 3 or every three consecutive points (not around the end) lie on one line: both products of
 * (b.y - a.y)(c.x - a.x) = (c.y - a.y)(b.x - a.x) are equal, in the float forms as computed in f64. Repeated points
 * can hide a corner: of A, B, B, C every three consecutive ones are colinear. */
JORM_API int32_t jorm_2d_ptv_all_colinear(const jorm_2d_pt *points, int32_t n);
JORM_API int32_t jorm_f2d_ptv_all_colinear(const jorm_f2d_pt *points, int32_t n);
JORM_API int32_t jorm_r2d_ptv_all_colinear(const jorm_r2d_pt *points, int32_t n);

/* Sorts in place by angle around the lowest point, which comes first. The angle is atan2(dx, dy), so that it grows from
 * the y axis toward x. Where two angles differ by 2^-23 or less the nearer point comes first; where the distances, too,
 * differ by 2^-23 or less (tiny or huge coordinates only) the exact angle and then the distance decide. Angles within
 * the tolerance do not make a strict order for all vectors: three points may each precede the next in a circle. Then
 * the order is one of those that fit most pairs; no point is lost. O(n log n), no heap memory. Returns points. */
JORM_API jorm_2d_pt *jorm_2d_ptv_sort_$I(jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_f2d_ptv_sort_$I(jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_pt *jorm_r2d_ptv_sort_$I(jorm_r2d_pt *points, int32_t n);

/* Convex hull in place: Graham's scan over the points in angular order. Returns the number of hull points, which then
 * stand at the front of the vector in that order, the lowest one first; what follows them is unspecified. Points on an
 * edge are not kept. n < 4 returns n (0 if negative) and changes nothing: up to three points stay as given; a vector
 * that is colinear after sorting (all_colinear) is returned whole, sorted. Here the angles are compared without a
 * tolerance, which makes a difference only to coordinates some thousand units apart, and turns are decided exactly, of
 * floats unless a product of coordinates over- or underflows (J. Shewchuk, "Adaptive precision floating-point
 * arithmetic", 1997): no point lies outside. Points inside an octagon of extreme ones are thrown away unsorted (S. Akl,
 * G. Toussaint, "A fast convex hull algorithm", 1978). O(n log n), no heap memory. */
JORM_API int32_t jorm_2d_ptv_convexhull_$I(jorm_2d_pt *points, int32_t n);
JORM_API int32_t jorm_f2d_ptv_convexhull_$I(jorm_f2d_pt *points, int32_t n);
JORM_API int32_t jorm_r2d_ptv_convexhull_$I(jorm_r2d_pt *points, int32_t n);

/* The same into out, which has room for n points and may overlap the input. 0 for an empty vector. */
JORM_API int32_t jorm_2d_ptv_convexhull(jorm_2d_pt *out, const jorm_2d_pt *points, int32_t n);
JORM_API int32_t jorm_f2d_ptv_convexhull(jorm_f2d_pt *out, const jorm_f2d_pt *points, int32_t n);
JORM_API int32_t jorm_r2d_ptv_convexhull(jorm_r2d_pt *out, const jorm_r2d_pt *points, int32_t n);

/* The same into a block from malloc that the caller frees, stored through hull. Null and 0 for an empty vector or
 * without memory. */
JORM_API int32_t jorm_2d_ptv_aconvexhull(const jorm_2d_pt *points, int32_t n, jorm_2d_pt **hull);
JORM_API int32_t jorm_f2d_ptv_aconvexhull(const jorm_f2d_pt *points, int32_t n, jorm_f2d_pt **hull);
JORM_API int32_t jorm_r2d_ptv_aconvexhull(const jorm_r2d_pt *points, int32_t n, jorm_r2d_pt **hull);

/* Points of another family: i from 2d, f from f2d, r from r2d. To integers rounded to nearest, ties to even; NaN and
 * what does not fit give -2147483648. To f32 rounded once. The vectors must not overlap. Returns out. */
JORM_API jorm_2d_pt *jorm_2d_ptv_cast_$f(jorm_2d_pt *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_2d_pt *jorm_2d_ptv_cast_$r(jorm_2d_pt *out, const jorm_r2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_f2d_ptv_cast_$i(jorm_f2d_pt *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_f2d_ptv_cast_$r(jorm_f2d_pt *out, const jorm_r2d_pt *points, int32_t n);
JORM_API jorm_r2d_pt *jorm_r2d_ptv_cast_$i(jorm_r2d_pt *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_pt *jorm_r2d_ptv_cast_$f(jorm_r2d_pt *out, const jorm_f2d_pt *points, int32_t n);

JORM_END_DOLLARS

#endif
