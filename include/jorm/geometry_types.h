/* libJorm geometry: the records.
 *
 * Three coordinate families stand side by side: 2d (int32_t), f2d (float) and r2d (double). The first coordinate, x,
 * counts to the right, the second, y, downward; angles are radians. Directions and rotations count from the x axis
 * toward the y axis (clockwise on a screen, where y points down), but the angle of an ellipse, a moment or a matrix
 * counts from the x axis away from the y axis (counter-clockwise on a screen): its axis is (cos angle, -sin angle).
 *
 * A point vector (ptv) is a pointer to consecutive points and an int32_t count; a polygon (poly) is the closed outline
 * through the points of such a vector, from the last one back to the first. Neither has a record of its own. */
#ifndef JORM_GEOMETRY_TYPES_H
#define JORM_GEOMETRY_TYPES_H

#include "jorm/types.h"

/* Point. */
typedef struct jorm_2d_pt {
    int32_t x, y;
} jorm_2d_pt;

typedef struct jorm_f2d_pt {
    float x, y;
} jorm_f2d_pt;

typedef struct jorm_r2d_pt {
    double x, y;
} jorm_r2d_pt;

/* Rectangle: the closed box [x, x + width] x [y, y + height]. */
typedef struct jorm_2d_rect {
    int32_t x, y, width, height;
} jorm_2d_rect;

typedef struct jorm_f2d_rect {
    float x, y, width, height;
} jorm_f2d_rect;

typedef struct jorm_r2d_rect {
    double x, y, width, height;
} jorm_r2d_rect;

/* Rectangle given by two opposite corners: the closed box [x0, x1] x [y0, y1]. */
typedef struct jorm_2d_crect {
    int32_t x0, y0, x1, y1;
} jorm_2d_crect;

typedef struct jorm_f2d_crect {
    float x0, y0, x1, y1;
} jorm_f2d_crect;

typedef struct jorm_r2d_crect {
    double x0, y0, x1, y1;
} jorm_r2d_crect;

/* Quadrilateral: its four corners along the outline. Where the library builds one from a box they are, in this order,
 * (min x, min y), (min x, max y), (max x, max y), (max x, min y), turned as need be. */
typedef struct jorm_2d_quad {
    jorm_2d_pt pt[4];
} jorm_2d_quad;

typedef struct jorm_f2d_quad {
    jorm_f2d_pt pt[4];
} jorm_f2d_quad;

typedef struct jorm_r2d_quad {
    jorm_r2d_pt pt[4];
} jorm_r2d_quad;

/* Ellipse with the semi-axis semi1 along (cos angle, -sin angle) and semi2 along (sin angle, cos angle). Ellipses that
 * are built from moments or a matrix have the shorter semi-axis first. */
typedef struct jorm_f2d_ell {
    jorm_f2d_pt centre;
    float semi1, semi2, angle;
} jorm_f2d_ell;

typedef struct jorm_r2d_ell {
    jorm_r2d_pt centre;
    double semi1, semi2, angle;
} jorm_r2d_ell;

/* First moments: the means of x and of y. */
typedef struct jorm_r2d_moment1 {
    double m0, m1;
} jorm_r2d_moment1;

/* Second moments: the means of x x, x y and y y, about the origin (raw) or about the centroid (central). */
typedef struct jorm_r2d_moment2 {
    double m00, m01, m11;
} jorm_r2d_moment2;

#endif
