// The three coordinate families as template arguments, and the lines of the export tables.
#pragma once

#include <cmath>
#include <cstdint>

#include "jorm/geometry.h"

namespace jorm {

__extension__ typedef __int128 int128;

// Wide holds every sum and difference of two coordinates exactly (integers) or in f64; a Wide goes back into a Coord by
// static_cast, which wraps integers and rounds floats once.
struct Int2d {
    using Coord = int32_t;
    using Wide = int64_t;
    using Pt = jorm_2d_pt;
    using Rect = jorm_2d_rect;
    using Crect = jorm_2d_crect;
    using Quad = jorm_2d_quad;
    using Centre = jorm_r2d_pt;
};

struct F32 {
    using Coord = float;
    using Wide = double;
    using Pt = jorm_f2d_pt;
    using Rect = jorm_f2d_rect;
    using Crect = jorm_f2d_crect;
    using Quad = jorm_f2d_quad;
    using Ell = jorm_f2d_ell;
    using Centre = jorm_f2d_pt;
};

struct F64 {
    using Coord = double;
    using Wide = double;
    using Pt = jorm_r2d_pt;
    using Rect = jorm_r2d_rect;
    using Crect = jorm_r2d_crect;
    using Quad = jorm_r2d_quad;
    using Ell = jorm_r2d_ell;
    using Centre = jorm_r2d_pt;
};

// The nearest Coord, ties to even; INT32_MIN for what no int32_t holds.
template <class T> T nearest(double v) { return static_cast<T>(v); }
template <> inline int32_t nearest<int32_t>(double v) {
    return v >= -2147483648.5 && v < 2147483647.5 ? static_cast<int32_t>(std::lrint(v)) : INT32_MIN;
}

// Minimum and maximum that keep a NaN.
template <class T> T lesser(T a, T b) { return a < b || a != a ? a : b; }
template <class T> T greater(T a, T b) { return a > b || a != a ? a : b; }

// A null pointer is an empty vector.
inline int32_t count_of(const void *points, int32_t n) { return points ? n : 0; }

template <class Pt> Pt turned(const Pt &a, const Pt &centre, double cosine, double sine) {
    using T = decltype(a.x);
    const double dx = static_cast<double>(a.x) - centre.x, dy = static_cast<double>(a.y) - centre.y;
    return {static_cast<T>(centre.x + (dx * cosine - dy * sine)), static_cast<T>(centre.y + (dx * sine + dy * cosine))};
}

} // namespace jorm

// Export tables: one line per operation, SHAPE(name, family, operation) writes one exported function.
#define JORM_ALL_FAMILIES(SHAPE, op, i, f, r) SHAPE(i, Int2d, op) SHAPE(f, F32, op) SHAPE(r, F64, op)
#define JORM_FLOAT_FAMILIES(SHAPE, op, f, r) SHAPE(f, F32, op) SHAPE(r, F64, op)
