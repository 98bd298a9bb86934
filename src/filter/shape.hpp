// Windows as a pair of vectors, which jorm_seshape and jorm_strel share.
#pragma once

#include "array/vec.hpp"
#include "jorm/shapes.h"

namespace jorm {

constexpr int32_t spatial_axes = 3;

/// A count of axes as callers give it, within 0..3.
constexpr int32_t axes_of(int32_t k) { return k < 0 ? 0 : k > spatial_axes ? spatial_axes : k; }

/// The anchor goes to the centre on the last k axes.
void centre_anchor(int32_t *anchor, const int32_t *extent, int32_t k);

/// Into [0, extent) on the last k axes, counted from the extent where negative.
void place_anchor(int32_t *anchor, const int32_t *extent, int32_t k);

/// The whole adjustment of a window to the size of an array on the last k axes.
void adjust_window(int32_t *anchor, int32_t *extent, int32_t k, const int32_t *size);

int32_t window_empty(const int32_t *extent);
int32_t window_capacity(const int32_t *extent);
int64_t window_guarded_capacity(const int32_t *extent);

} // namespace jorm
