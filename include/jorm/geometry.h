/* libJorm geometry: points, rectangles, quadrilaterals, ellipses, polygons, moments and small solvers.
 *
 * All functions are pure: no environment, no status, no heap memory unless told, and nothing is read or written but the
 * records passed. Common rules:
 * - Three coordinate families: 2d (int32_t), f2d (float), r2d (double). A comment above a group speaks for all of them.
 *   The records are in jorm/geometry_types.h, the extremes, hulls and areas of point vectors in jorm/pointset.h.
 * - Constructors are __jorm_<family>_<long name>__$<from what>, operations jorm_<family>_<short name>_<what>; functions
 *   ending in _$I work in place on their first argument.
 * - The output comes first, may be one of the inputs, and is returned. Truth values are exactly 0 or 1.
 * - A count below 1 or a null pointer to the points is an empty vector. No other pointer may be null; none is checked.
 * - Integer sums, differences and sizes are exact, then wrap to 32 bits where an int32_t is stored, and products to 64
 *   bits. Comparisons and tests of integer figures are exact for all coordinates.
 * - f2d functions compute in f64 and round each result to f32 once. r2d products overflow to infinity when coordinates
 *   exceed some 1e150.
 * - Angles are radians: of points and rotations from x toward y, clockwise on a screen where y points down; of
 *   ellipses, moments and matrices from x away from y, counter-clockwise there: the axis is (cos angle, -sin angle).
 * - NaN coordinates do no harm: figures made of them are NaN or unspecified, and a NaN point lies inside nothing.
 * - Casts to integers, and the scaling of integer points, round to nearest, ties to even; NaN and what does not fit
 *   give -2147483648. Casts to f32 round once; the others are exact. */
#ifndef JORM_GEOMETRY_H
#define JORM_GEOMETRY_H

#include "jorm/geometry_types.h"

JORM_BEGIN_DOLLARS

/* ---- Points ---- */

/* (0, 0); (x, y); a point of another family. */
JORM_API jorm_2d_pt *__jorm_2d_point__$(jorm_2d_pt *out);
JORM_API jorm_f2d_pt *__jorm_f2d_point__$(jorm_f2d_pt *out);
JORM_API jorm_r2d_pt *__jorm_r2d_point__$(jorm_r2d_pt *out);
JORM_API jorm_2d_pt *__jorm_2d_point__$g2(jorm_2d_pt *out, int32_t x, int32_t y);
JORM_API jorm_f2d_pt *__jorm_f2d_point__$g2(jorm_f2d_pt *out, float x, float y);
JORM_API jorm_r2d_pt *__jorm_r2d_point__$g2(jorm_r2d_pt *out, double x, double y);
JORM_API jorm_2d_pt *__jorm_2d_point__$cast$f(jorm_2d_pt *out, const jorm_f2d_pt *a);
JORM_API jorm_2d_pt *__jorm_2d_point__$cast$r(jorm_2d_pt *out, const jorm_r2d_pt *a);
JORM_API jorm_f2d_pt *__jorm_f2d_point__$cast$i(jorm_f2d_pt *out, const jorm_2d_pt *a);
JORM_API jorm_f2d_pt *__jorm_f2d_point__$cast$r(jorm_f2d_pt *out, const jorm_r2d_pt *a);
JORM_API jorm_r2d_pt *__jorm_r2d_point__$cast$i(jorm_r2d_pt *out, const jorm_2d_pt *a);
JORM_API jorm_r2d_pt *__jorm_r2d_point__$cast$f(jorm_r2d_pt *out, const jorm_f2d_pt *a);

/* a + b; a - b. */
JORM_API jorm_2d_pt *jorm_2d_pt_add(jorm_2d_pt *out, const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API jorm_f2d_pt *jorm_f2d_pt_add(jorm_f2d_pt *out, const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API jorm_r2d_pt *jorm_r2d_pt_add(jorm_r2d_pt *out, const jorm_r2d_pt *a, const jorm_r2d_pt *b);
JORM_API jorm_2d_pt *jorm_2d_pt_add_$I(jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API jorm_f2d_pt *jorm_f2d_pt_add_$I(jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API jorm_r2d_pt *jorm_r2d_pt_add_$I(jorm_r2d_pt *a, const jorm_r2d_pt *b);
JORM_API jorm_2d_pt *jorm_2d_pt_sub(jorm_2d_pt *out, const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API jorm_f2d_pt *jorm_f2d_pt_sub(jorm_f2d_pt *out, const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API jorm_r2d_pt *jorm_r2d_pt_sub(jorm_r2d_pt *out, const jorm_r2d_pt *a, const jorm_r2d_pt *b);

/* k a. */
JORM_API jorm_2d_pt *jorm_2d_pt_scale(jorm_2d_pt *out, const jorm_2d_pt *a, double k);
JORM_API jorm_f2d_pt *jorm_f2d_pt_scale(jorm_f2d_pt *out, const jorm_f2d_pt *a, double k);
JORM_API jorm_r2d_pt *jorm_r2d_pt_scale(jorm_r2d_pt *out, const jorm_r2d_pt *a, double k);
JORM_API jorm_2d_pt *jorm_2d_pt_scale_$I(jorm_2d_pt *a, double k);
JORM_API jorm_f2d_pt *jorm_f2d_pt_scale_$I(jorm_f2d_pt *a, double k);
JORM_API jorm_r2d_pt *jorm_r2d_pt_scale_$I(jorm_r2d_pt *a, double k);

/* 1 when both coordinates are equal. */
JORM_API int32_t jorm_2d_pt_equal(const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API int32_t jorm_f2d_pt_equal(const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API int32_t jorm_r2d_pt_equal(const jorm_r2d_pt *a, const jorm_r2d_pt *b);

/* a.x b.x + a.y b.y; a.x b.y - a.y b.x; the squared distance. The integer forms take differences exactly; only dot and
 * dist2 can exceed 64 bits, and then wrap. */
JORM_API int64_t jorm_2d_pt_dot(const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API double jorm_f2d_pt_dot(const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API double jorm_r2d_pt_dot(const jorm_r2d_pt *a, const jorm_r2d_pt *b);
JORM_API int64_t jorm_2d_pt_cross(const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API double jorm_f2d_pt_cross(const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API double jorm_r2d_pt_cross(const jorm_r2d_pt *a, const jorm_r2d_pt *b);
JORM_API int64_t jorm_2d_pt_dist2(const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API double jorm_f2d_pt_dist2(const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API double jorm_r2d_pt_dist2(const jorm_r2d_pt *a, const jorm_r2d_pt *b);

/* Euclidean distance from b, and from (0, 0); neither overflows on the way. */
JORM_API double jorm_2d_pt_dist(const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API double jorm_f2d_pt_dist(const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API double jorm_r2d_pt_dist(const jorm_r2d_pt *a, const jorm_r2d_pt *b);
JORM_API double jorm_2d_pt_norm(const jorm_2d_pt *a);
JORM_API double jorm_f2d_pt_norm(const jorm_f2d_pt *a);
JORM_API double jorm_r2d_pt_norm(const jorm_r2d_pt *a);

/* atan2(y, x): the direction of a, from the x axis toward the y axis. */
JORM_API double jorm_f2d_pt_angle(const jorm_f2d_pt *a);
JORM_API double jorm_r2d_pt_angle(const jorm_r2d_pt *a);

/* a turned about centre by angle, from x toward y. */
JORM_API jorm_f2d_pt *jorm_f2d_pt_rotate(jorm_f2d_pt *out, const jorm_f2d_pt *a, const jorm_f2d_pt *centre,
                                         double angle);
JORM_API jorm_r2d_pt *jorm_r2d_pt_rotate(jorm_r2d_pt *out, const jorm_r2d_pt *a, const jorm_r2d_pt *centre,
                                         double angle);

/* ---- Rectangles ---- */

/* Four zeros; field by field; a rectangle of another family, field by field. */
JORM_API jorm_2d_rect *__jorm_2d_rect__$(jorm_2d_rect *out);
JORM_API jorm_f2d_rect *__jorm_f2d_rect__$(jorm_f2d_rect *out);
JORM_API jorm_r2d_rect *__jorm_r2d_rect__$(jorm_r2d_rect *out);
JORM_API jorm_2d_rect *__jorm_2d_rect__$g4(jorm_2d_rect *out, int32_t x, int32_t y, int32_t width, int32_t height);
JORM_API jorm_f2d_rect *__jorm_f2d_rect__$g4(jorm_f2d_rect *out, float x, float y, float width, float height);
JORM_API jorm_r2d_rect *__jorm_r2d_rect__$g4(jorm_r2d_rect *out, double x, double y, double width, double height);
JORM_API jorm_2d_rect *__jorm_2d_rect__$cast$f(jorm_2d_rect *out, const jorm_f2d_rect *a);
JORM_API jorm_2d_rect *__jorm_2d_rect__$cast$r(jorm_2d_rect *out, const jorm_r2d_rect *a);
JORM_API jorm_f2d_rect *__jorm_f2d_rect__$cast$i(jorm_f2d_rect *out, const jorm_2d_rect *a);
JORM_API jorm_f2d_rect *__jorm_f2d_rect__$cast$r(jorm_f2d_rect *out, const jorm_r2d_rect *a);
JORM_API jorm_r2d_rect *__jorm_r2d_rect__$cast$i(jorm_r2d_rect *out, const jorm_2d_rect *a);
JORM_API jorm_r2d_rect *__jorm_r2d_rect__$cast$f(jorm_r2d_rect *out, const jorm_f2d_rect *a);

/* (x0, y0, x1 - x0, y1 - y0); the smallest rectangle that holds both points. */
JORM_API jorm_2d_rect *__jorm_2d_rect__$crect(jorm_2d_rect *out, const jorm_2d_crect *a);
JORM_API jorm_f2d_rect *__jorm_f2d_rect__$crect(jorm_f2d_rect *out, const jorm_f2d_crect *a);
JORM_API jorm_r2d_rect *__jorm_r2d_rect__$crect(jorm_r2d_rect *out, const jorm_r2d_crect *a);
JORM_API jorm_2d_rect *__jorm_2d_rect__$pts(jorm_2d_rect *out, const jorm_2d_pt *a, const jorm_2d_pt *b);
JORM_API jorm_f2d_rect *__jorm_f2d_rect__$pts(jorm_f2d_rect *out, const jorm_f2d_pt *a, const jorm_f2d_pt *b);
JORM_API jorm_r2d_rect *__jorm_r2d_rect__$pts(jorm_r2d_rect *out, const jorm_r2d_pt *a, const jorm_r2d_pt *b);

/* 1 when width or height is not above 0; width times height, 0 of an empty rectangle. */
JORM_API int32_t jorm_2d_rect_empty(const jorm_2d_rect *a);
JORM_API int32_t jorm_f2d_rect_empty(const jorm_f2d_rect *a);
JORM_API int32_t jorm_r2d_rect_empty(const jorm_r2d_rect *a);
JORM_API double jorm_2d_rect_area(const jorm_2d_rect *a);
JORM_API double jorm_f2d_rect_area(const jorm_f2d_rect *a);
JORM_API double jorm_r2d_rect_area(const jorm_r2d_rect *a);

/* (x + width / 2, y + height / 2), in f64 for integer rectangles. */
JORM_API jorm_r2d_pt *jorm_2d_rect_centre(jorm_r2d_pt *out, const jorm_2d_rect *a);
JORM_API jorm_f2d_pt *jorm_f2d_rect_centre(jorm_f2d_pt *out, const jorm_f2d_rect *a);
JORM_API jorm_r2d_pt *jorm_r2d_rect_centre(jorm_r2d_pt *out, const jorm_r2d_rect *a);

/* 1 when b lies in a or on its edges. Float forms compare the distance from (x, y), rounded to the coordinate type,
 * with the size, so that the points of a vector always lie in its bounding rectangle. */
JORM_API int32_t jorm_2d_rect_inside(const jorm_2d_rect *a, const jorm_2d_pt *b);
JORM_API int32_t jorm_f2d_rect_inside(const jorm_f2d_rect *a, const jorm_f2d_pt *b);
JORM_API int32_t jorm_r2d_rect_inside(const jorm_r2d_rect *a, const jorm_r2d_pt *b);

/* 1 when all four fields are equal. */
JORM_API int32_t jorm_2d_rect_equal(const jorm_2d_rect *a, const jorm_2d_rect *b);
JORM_API int32_t jorm_f2d_rect_equal(const jorm_f2d_rect *a, const jorm_f2d_rect *b);
JORM_API int32_t jorm_r2d_rect_equal(const jorm_r2d_rect *a, const jorm_r2d_rect *b);

/* The common part; 1 when it is not empty. It is written either way: the sizes of rectangles that do not meet come out
 * as 0 or minus the gap (at least -2147483648 in integers). */
JORM_API int32_t jorm_2d_rect_intersec(jorm_2d_rect *out, const jorm_2d_rect *a, const jorm_2d_rect *b);
JORM_API int32_t jorm_f2d_rect_intersec(jorm_f2d_rect *out, const jorm_f2d_rect *a, const jorm_f2d_rect *b);
JORM_API int32_t jorm_r2d_rect_intersec(jorm_r2d_rect *out, const jorm_r2d_rect *a, const jorm_r2d_rect *b);
JORM_API int32_t jorm_2d_rect_intersec_$I(jorm_2d_rect *a, const jorm_2d_rect *b);
JORM_API int32_t jorm_f2d_rect_intersec_$I(jorm_f2d_rect *a, const jorm_f2d_rect *b);
JORM_API int32_t jorm_r2d_rect_intersec_$I(jorm_r2d_rect *a, const jorm_r2d_rect *b);

/* The smallest rectangle with both. An empty one does not count; of two empty ones the result is b. */
JORM_API jorm_2d_rect *jorm_2d_rect_unite(jorm_2d_rect *out, const jorm_2d_rect *a, const jorm_2d_rect *b);
JORM_API jorm_f2d_rect *jorm_f2d_rect_unite(jorm_f2d_rect *out, const jorm_f2d_rect *a, const jorm_f2d_rect *b);
JORM_API jorm_r2d_rect *jorm_r2d_rect_unite(jorm_r2d_rect *out, const jorm_r2d_rect *a, const jorm_r2d_rect *b);

/* Moves the left and the right side outward by dx each, the upper and the lower one by dy; negative values shrink. */
JORM_API jorm_2d_rect *jorm_2d_rect_grow_$I(jorm_2d_rect *a, int32_t dx, int32_t dy);
JORM_API jorm_f2d_rect *jorm_f2d_rect_grow_$I(jorm_f2d_rect *a, float dx, float dy);
JORM_API jorm_r2d_rect *jorm_r2d_rect_grow_$I(jorm_r2d_rect *a, double dx, double dy);

/* ---- Corner-point rectangles ---- */

/* Field by field; (x, y, x + width, y + height); of another family, field by field. */
JORM_API jorm_2d_crect *__jorm_2d_crect__$g4(jorm_2d_crect *out, int32_t x0, int32_t y0, int32_t x1, int32_t y1);
JORM_API jorm_f2d_crect *__jorm_f2d_crect__$g4(jorm_f2d_crect *out, float x0, float y0, float x1, float y1);
JORM_API jorm_r2d_crect *__jorm_r2d_crect__$g4(jorm_r2d_crect *out, double x0, double y0, double x1, double y1);
JORM_API jorm_2d_crect *__jorm_2d_crect__$rect(jorm_2d_crect *out, const jorm_2d_rect *a);
JORM_API jorm_f2d_crect *__jorm_f2d_crect__$rect(jorm_f2d_crect *out, const jorm_f2d_rect *a);
JORM_API jorm_r2d_crect *__jorm_r2d_crect__$rect(jorm_r2d_crect *out, const jorm_r2d_rect *a);
JORM_API jorm_2d_crect *__jorm_2d_crect__$cast$f(jorm_2d_crect *out, const jorm_f2d_crect *a);
JORM_API jorm_2d_crect *__jorm_2d_crect__$cast$r(jorm_2d_crect *out, const jorm_r2d_crect *a);
JORM_API jorm_f2d_crect *__jorm_f2d_crect__$cast$i(jorm_f2d_crect *out, const jorm_2d_crect *a);
JORM_API jorm_f2d_crect *__jorm_f2d_crect__$cast$r(jorm_f2d_crect *out, const jorm_r2d_crect *a);
JORM_API jorm_r2d_crect *__jorm_r2d_crect__$cast$i(jorm_r2d_crect *out, const jorm_2d_crect *a);
JORM_API jorm_r2d_crect *__jorm_r2d_crect__$cast$f(jorm_r2d_crect *out, const jorm_f2d_crect *a);

/* 1 unless x0 < x1 and y0 < y1. */
JORM_API int32_t jorm_2d_crect_empty(const jorm_2d_crect *a);
JORM_API int32_t jorm_f2d_crect_empty(const jorm_f2d_crect *a);
JORM_API int32_t jorm_r2d_crect_empty(const jorm_r2d_crect *a);

/* Exchanges coordinates so that x0 <= x1 and y0 <= y1. */
JORM_API jorm_2d_crect *jorm_2d_crect_normalize_$I(jorm_2d_crect *a);
JORM_API jorm_f2d_crect *jorm_f2d_crect_normalize_$I(jorm_f2d_crect *a);
JORM_API jorm_r2d_crect *jorm_r2d_crect_normalize_$I(jorm_r2d_crect *a);

/* 1 when b lies in a or on its edges. */
JORM_API int32_t jorm_2d_crect_inside(const jorm_2d_crect *a, const jorm_2d_pt *b);
JORM_API int32_t jorm_f2d_crect_inside(const jorm_f2d_crect *a, const jorm_f2d_pt *b);
JORM_API int32_t jorm_r2d_crect_inside(const jorm_r2d_crect *a, const jorm_r2d_pt *b);

/* Reduces a to its common part with b; 1 when that is not empty. */
JORM_API int32_t jorm_2d_crect_intersec_$I(jorm_2d_crect *a, const jorm_2d_crect *b);
JORM_API int32_t jorm_f2d_crect_intersec_$I(jorm_f2d_crect *a, const jorm_f2d_crect *b);
JORM_API int32_t jorm_r2d_crect_intersec_$I(jorm_r2d_crect *a, const jorm_r2d_crect *b);

/* Moves the sides of a outward as far as b asks for. */
JORM_API jorm_2d_crect *jorm_2d_crect_include_$I(jorm_2d_crect *a, const jorm_2d_pt *b);
JORM_API jorm_f2d_crect *jorm_f2d_crect_include_$I(jorm_f2d_crect *a, const jorm_f2d_pt *b);
JORM_API jorm_r2d_crect *jorm_r2d_crect_include_$I(jorm_r2d_crect *a, const jorm_r2d_pt *b);

/* ---- Quadrilaterals ---- */

/* Of four points in their order; of a rectangle, corners in the order (min x, min y), (min x, max y), (max x, max y),
 * (max x, min y); of another family, corner by corner. */
JORM_API jorm_2d_quad *__jorm_2d_quad__$pts(jorm_2d_quad *out, const jorm_2d_pt *points);
JORM_API jorm_f2d_quad *__jorm_f2d_quad__$pts(jorm_f2d_quad *out, const jorm_f2d_pt *points);
JORM_API jorm_r2d_quad *__jorm_r2d_quad__$pts(jorm_r2d_quad *out, const jorm_r2d_pt *points);
JORM_API jorm_2d_quad *__jorm_2d_quad__$rect(jorm_2d_quad *out, const jorm_2d_rect *a);
JORM_API jorm_f2d_quad *__jorm_f2d_quad__$rect(jorm_f2d_quad *out, const jorm_f2d_rect *a);
JORM_API jorm_r2d_quad *__jorm_r2d_quad__$rect(jorm_r2d_quad *out, const jorm_r2d_rect *a);
JORM_API jorm_2d_quad *__jorm_2d_quad__$cast$f(jorm_2d_quad *out, const jorm_f2d_quad *a);
JORM_API jorm_2d_quad *__jorm_2d_quad__$cast$r(jorm_2d_quad *out, const jorm_r2d_quad *a);
JORM_API jorm_f2d_quad *__jorm_f2d_quad__$cast$i(jorm_f2d_quad *out, const jorm_2d_quad *a);
JORM_API jorm_f2d_quad *__jorm_f2d_quad__$cast$r(jorm_f2d_quad *out, const jorm_r2d_quad *a);
JORM_API jorm_r2d_quad *__jorm_r2d_quad__$cast$i(jorm_r2d_quad *out, const jorm_2d_quad *a);
JORM_API jorm_r2d_quad *__jorm_r2d_quad__$cast$f(jorm_r2d_quad *out, const jorm_f2d_quad *a);

/* What poly_area, ptv_isconvex, poly_inside, ptv_brect and ptv_bquad say of the four corners. */
JORM_API double jorm_2d_quad_area(const jorm_2d_quad *a);
JORM_API double jorm_f2d_quad_area(const jorm_f2d_quad *a);
JORM_API double jorm_r2d_quad_area(const jorm_r2d_quad *a);
JORM_API int32_t jorm_2d_quad_isconvex(const jorm_2d_quad *a);
JORM_API int32_t jorm_f2d_quad_isconvex(const jorm_f2d_quad *a);
JORM_API int32_t jorm_r2d_quad_isconvex(const jorm_r2d_quad *a);
JORM_API int32_t jorm_2d_quad_inside(const jorm_2d_quad *a, const jorm_2d_pt *b);
JORM_API int32_t jorm_f2d_quad_inside(const jorm_f2d_quad *a, const jorm_f2d_pt *b);
JORM_API int32_t jorm_r2d_quad_inside(const jorm_r2d_quad *a, const jorm_r2d_pt *b);
JORM_API jorm_2d_rect *jorm_2d_quad_brect(jorm_2d_rect *out, const jorm_2d_quad *a);
JORM_API jorm_f2d_rect *jorm_f2d_quad_brect(jorm_f2d_rect *out, const jorm_f2d_quad *a);
JORM_API jorm_r2d_rect *jorm_r2d_quad_brect(jorm_r2d_rect *out, const jorm_r2d_quad *a);
JORM_API jorm_f2d_quad *jorm_f2d_quad_bquad(jorm_f2d_quad *out, const jorm_f2d_quad *a);
JORM_API jorm_r2d_quad *jorm_r2d_quad_bquad(jorm_r2d_quad *out, const jorm_r2d_quad *a);

/* Centroid and second moments of its area, raw and central: poly_centroid, poly_moment2, poly_moment2_$c. */
JORM_API jorm_f2d_pt *jorm_f2d_quad_centroid(jorm_f2d_pt *out, const jorm_f2d_quad *a);
JORM_API jorm_r2d_pt *jorm_r2d_quad_centroid(jorm_r2d_pt *out, const jorm_r2d_quad *a);
JORM_API jorm_r2d_moment2 *jorm_f2d_quad_moment2(jorm_r2d_moment2 *out, const jorm_f2d_quad *a);
JORM_API jorm_r2d_moment2 *jorm_r2d_quad_moment2(jorm_r2d_moment2 *out, const jorm_r2d_quad *a);
JORM_API jorm_r2d_moment2 *jorm_f2d_quad_moment2_$c(jorm_r2d_moment2 *out, const jorm_f2d_quad *a);
JORM_API jorm_r2d_moment2 *jorm_r2d_quad_moment2_$c(jorm_r2d_moment2 *out, const jorm_r2d_quad *a);

/* jorm_r2d_moment2c_rotation() of its central moments; the ellipse with its centroid and central moments. */
JORM_API double jorm_f2d_quad_rotation(const jorm_f2d_quad *a);
JORM_API double jorm_r2d_quad_rotation(const jorm_r2d_quad *a);
JORM_API jorm_f2d_ell *jorm_f2d_quad_fitell(jorm_f2d_ell *out, const jorm_f2d_quad *a);
JORM_API jorm_r2d_ell *jorm_r2d_quad_fitell(jorm_r2d_ell *out, const jorm_r2d_quad *a);

/* Turns every corner about centre by angle, from x toward y. */
JORM_API jorm_f2d_quad *jorm_f2d_quad_rotate_$I(jorm_f2d_quad *a, const jorm_f2d_pt *centre, double angle);
JORM_API jorm_r2d_quad *jorm_r2d_quad_rotate_$I(jorm_r2d_quad *a, const jorm_r2d_pt *centre, double angle);

/* ---- Ellipses ---- */

/* Field by field; of the other family. */
JORM_API jorm_f2d_ell *__jorm_f2d_ellipse__$g5(jorm_f2d_ell *out, float x, float y, float semi1, float semi2,
                                               float angle);
JORM_API jorm_r2d_ell *__jorm_r2d_ellipse__$g5(jorm_r2d_ell *out, double x, double y, double semi1, double semi2,
                                               double angle);
JORM_API jorm_f2d_ell *__jorm_f2d_ellipse__$cast$r(jorm_f2d_ell *out, const jorm_r2d_ell *a);
JORM_API jorm_r2d_ell *__jorm_r2d_ellipse__$cast$f(jorm_r2d_ell *out, const jorm_f2d_ell *a);

/* The ellipse inscribed in a rectangle; the shorter semi-axis is the first, with angle 0 or pi / 2. */
JORM_API jorm_f2d_ell *__jorm_f2d_ellipse__$rect(jorm_f2d_ell *out, const jorm_f2d_rect *a);
JORM_API jorm_r2d_ell *__jorm_r2d_ellipse__$rect(jorm_r2d_ell *out, const jorm_r2d_rect *a);

/* The ellipse of a symmetric matrix, or of central second moments: semi-axes k sqrt(smaller eigenvalue) and
 * k sqrt(larger eigenvalue), angle as jorm_f64_symmat2x2_xeigvals(). A filled ellipse has the central moment r r / 4
 * along a semi-axis of length r, so k = 2 recovers a region's own ellipse. A negative eigenvalue gives NaN. */
JORM_API jorm_f2d_ell *__jorm_f2d_ellipse__$covariance(jorm_f2d_ell *out, const jorm_f2d_pt *centre,
                                                       const double *matrix, double k);
JORM_API jorm_r2d_ell *__jorm_r2d_ellipse__$covariance(jorm_r2d_ell *out, const jorm_r2d_pt *centre,
                                                       const double *matrix, double k);
JORM_API jorm_f2d_ell *__jorm_f2d_ellipse__$moment2$c(jorm_f2d_ell *out, const jorm_f2d_pt *centre,
                                                      const jorm_r2d_moment2 *moments, double k);
JORM_API jorm_r2d_ell *__jorm_r2d_ellipse__$moment2$c(jorm_r2d_ell *out, const jorm_r2d_pt *centre,
                                                      const jorm_r2d_moment2 *moments, double k);

/* pi semi2 semi1. */
JORM_API double jorm_f2d_ell_area(const jorm_f2d_ell *a);
JORM_API double jorm_r2d_ell_area(const jorm_r2d_ell *a);

/* The rectangle along its axes that touches it at their four ends, its corners as those of a bounding quadrilateral
 * turned with the ellipse; the smallest axis-parallel rectangle around it. */
JORM_API jorm_f2d_quad *jorm_f2d_ell_bquad(jorm_f2d_quad *out, const jorm_f2d_ell *a);
JORM_API jorm_r2d_quad *jorm_r2d_ell_bquad(jorm_r2d_quad *out, const jorm_r2d_ell *a);
JORM_API jorm_f2d_rect *jorm_f2d_ell_brect(jorm_f2d_rect *out, const jorm_f2d_ell *a);
JORM_API jorm_r2d_rect *jorm_r2d_ell_brect(jorm_r2d_rect *out, const jorm_r2d_ell *a);

/* 1 when a point lies in the ellipse or on its edge, computed in f64. */
JORM_API int32_t jorm_f2d_ell_inside(const jorm_f2d_ell *a, const jorm_f2d_pt *b);
JORM_API int32_t jorm_r2d_ell_inside(const jorm_r2d_ell *a, const jorm_r2d_pt *b);
JORM_API int32_t jorm_f2d_ell_inside2(const jorm_f2d_ell *a, float x, float y);
JORM_API int32_t jorm_r2d_ell_inside2(const jorm_r2d_ell *a, double x, double y);

/* Second moments of its area per unit of area, raw and about its centre. The ellipse of the central moments with k = 2
 * is the same figure again. */
JORM_API jorm_r2d_moment2 *jorm_f2d_ell_moment2(jorm_r2d_moment2 *out, const jorm_f2d_ell *a);
JORM_API jorm_r2d_moment2 *jorm_r2d_ell_moment2(jorm_r2d_moment2 *out, const jorm_r2d_ell *a);
JORM_API jorm_r2d_moment2 *jorm_f2d_ell_moment2_$c(jorm_r2d_moment2 *out, const jorm_f2d_ell *a);
JORM_API jorm_r2d_moment2 *jorm_r2d_ell_moment2_$c(jorm_r2d_moment2 *out, const jorm_r2d_ell *a);

/* ---- Polygons: the closed outline through n points ---- */

/* Absolute value of ptv___sarea; length of the outline. */
JORM_API double jorm_2d_poly_area(const jorm_2d_pt *points, int32_t n);
JORM_API double jorm_f2d_poly_area(const jorm_f2d_pt *points, int32_t n);
JORM_API double jorm_r2d_poly_area(const jorm_r2d_pt *points, int32_t n);
JORM_API double jorm_2d_poly_perimeter(const jorm_2d_pt *points, int32_t n);
JORM_API double jorm_f2d_poly_perimeter(const jorm_f2d_pt *points, int32_t n);
JORM_API double jorm_r2d_poly_perimeter(const jorm_r2d_pt *points, int32_t n);

/* 1 when b lies inside by the even-odd rule or on the outline. Exact for integers; the f64 products of the float forms
 * decide on which side of an edge b lies. */
JORM_API int32_t jorm_2d_poly_inside(const jorm_2d_pt *points, int32_t n, const jorm_2d_pt *b);
JORM_API int32_t jorm_f2d_poly_inside(const jorm_f2d_pt *points, int32_t n, const jorm_f2d_pt *b);
JORM_API int32_t jorm_r2d_poly_inside(const jorm_r2d_pt *points, int32_t n, const jorm_r2d_pt *b);

/* Centroid, raw and central second moments of the area, the moments per unit of area. Parts of a crossing outline that
 * run against the rest count negatively. A polygon without area, in the float forms also one whose area is within the
 * rounding errors of f64, gives the figure of its points (ptv_centroid, ptv_moment2, ptv_moment2_$c). */
JORM_API jorm_r2d_pt *jorm_2d_poly_centroid(jorm_r2d_pt *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_f2d_poly_centroid(jorm_f2d_pt *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_pt *jorm_r2d_poly_centroid(jorm_r2d_pt *out, const jorm_r2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_2d_poly_moment2(jorm_r2d_moment2 *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_f2d_poly_moment2(jorm_r2d_moment2 *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_r2d_poly_moment2(jorm_r2d_moment2 *out, const jorm_r2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_2d_poly_moment2_$c(jorm_r2d_moment2 *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_f2d_poly_moment2_$c(jorm_r2d_moment2 *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_r2d_poly_moment2_$c(jorm_r2d_moment2 *out, const jorm_r2d_pt *points, int32_t n);

/* Reverses the order of the points; the first one stays first. */
JORM_API jorm_2d_pt *jorm_2d_poly_reverse_$I(jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_f2d_poly_reverse_$I(jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_pt *jorm_r2d_poly_reverse_$I(jorm_r2d_pt *points, int32_t n);

/* ---- Moments of point vectors ---- */

/* The mean point, (0, 0) of an empty vector; in f64 for integer points, or that rounded to f32 (_$f and _f are the same
 * function). The sums over integer points are exact in this group. */
JORM_API jorm_r2d_pt *jorm_2d_ptv_centroid(jorm_r2d_pt *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_f2d_ptv_centroid(jorm_f2d_pt *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_pt *jorm_r2d_ptv_centroid(jorm_r2d_pt *out, const jorm_r2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_2d_ptv_centroid_$f(jorm_f2d_pt *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_f2d_pt *jorm_2d_ptv_centroid_f(jorm_f2d_pt *out, const jorm_2d_pt *points, int32_t n);

/* Means of x and y. */
JORM_API jorm_r2d_moment1 *jorm_2d_ptv_moment1(jorm_r2d_moment1 *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment1 *jorm_f2d_ptv_moment1(jorm_r2d_moment1 *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment1 *jorm_r2d_ptv_moment1(jorm_r2d_moment1 *out, const jorm_r2d_pt *points, int32_t n);

/* Means of x x, x y and y y, raw and about the centroid; zeros of an empty vector. _c and _$c are the same function. */
JORM_API jorm_r2d_moment2 *jorm_2d_ptv_moment2(jorm_r2d_moment2 *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_f2d_ptv_moment2(jorm_r2d_moment2 *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_r2d_ptv_moment2(jorm_r2d_moment2 *out, const jorm_r2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_2d_ptv_moment2_$c(jorm_r2d_moment2 *out, const jorm_2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_f2d_ptv_moment2_$c(jorm_r2d_moment2 *out, const jorm_f2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_r2d_ptv_moment2_$c(jorm_r2d_moment2 *out, const jorm_r2d_pt *points, int32_t n);
JORM_API jorm_r2d_moment2 *jorm_2d_ptv_moment2_c(jorm_r2d_moment2 *out, const jorm_2d_pt *points, int32_t n);

/* ---- Second moments ---- */

/* Central moments from raw ones: (m00 - x x, m01 - x y, m11 - y y) with (x, y) the centroid. */
JORM_API jorm_r2d_moment2 *jorm_r2d_moment2_centralize(jorm_r2d_moment2 *out, const jorm_r2d_moment2 *moments,
                                                       const jorm_r2d_pt *centroid);
JORM_API jorm_r2d_moment2 *jorm_r2d_moment2_centralize_$I(jorm_r2d_moment2 *moments, const jorm_r2d_pt *centroid);

/* Of central moments: the matrix (m00, m01, m01, m11); its eigenvalues, the smaller first; these and the principal
 * angle; the angle alone. Matrix and angle as under the solvers. */
JORM_API double *jorm_r2d_moment2c_covariance(double *out, const jorm_r2d_moment2 *moments);
JORM_API double *jorm_r2d_moment2c_eigvals(double *out, const jorm_r2d_moment2 *moments);
JORM_API double jorm_r2d_moment2c_xeigvals(double *out, const jorm_r2d_moment2 *moments);
JORM_API double jorm_r2d_moment2c_rotation(const jorm_r2d_moment2 *moments);

/* ---- Small solvers ----
 * Closed forms in f64 that write a pair, the smaller value first. A pair with NaN stays in the order (r2, r1). */

/* Roots of a x x + b x + c = 0. With d = sqrt(b b - 4 a c) / (2 a): r1 = d - b / (2 a), r2 = -b / (2 a) - d. A negative
 * discriminant gives two NaN, a = 0 infinities or NaN. */
JORM_API double *jorm_f64_quadequ_solve(double *out, double a, double b, double c);

/* Roots of x x + p x + q = 0: r1, r2 = -p / 2 +- sqrt(p p - 4 q) / 2. */
JORM_API double *jorm_f64_quadequ_solve_$simple(double *out, double p, double q);

/* Roots of x x - 2 m x + q = 0: r1, r2 = m +- sqrt(m m - q). Two values with mean m and product q. */
JORM_API double *jorm_f64_quadequ_solve_$mm(double *out, double m, double q);

/* Eigenvalues of the symmetric matrix (m00, m01; m01, m11), given as four values in row order of which the third is not
 * read. The x form returns the principal angle too: 0.5 atan2(2 m01, m11 - m00), so that (cos, -sin) of it is the
 * eigenvector of the smaller eigenvalue and (sin, cos) that of the larger. */
JORM_API double *jorm_f64_symmat2x2_eigvals(double *out, const double *matrix);
JORM_API double jorm_f64_symmat2x2_xeigvals(double *out, const double *matrix);

JORM_END_DOLLARS

#include "jorm/pointset.h"

#endif
