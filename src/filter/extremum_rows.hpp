// Rows of minima and maxima: what a level offers for one of them on one element type.
#pragma once
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// NaN never hides another value. Lengths are in elements; destinations may be operands only where that is said.
struct ExtremumRows {
    // Of n elements in each of `count` rows. Not in place.
    void (*across)(void *to, const void *const *rows, int64_t count, int64_t n);
    // to = of a and b; not in place.
    void (*two)(void *to, const void *a, const void *b, int64_t n);
    // prefix = of prefix and row; to = of that and suffix.
    void (*extend)(void *to, void *prefix, const void *row, const void *suffix, int64_t n);
    // to = a - b, saturated; not in place.
    void (*subtract)(void *to, const void *a, const void *b, int64_t n);
    // Of windows of k elements, `step` apart, along a row of n + (k - 1) * step; `spare` is as long. Both are
    // destroyed.
    void (*along)(void *to, void *row, void *spare, int64_t n, int64_t k, int64_t step);
};

// In the order u8, s16, s32, f32; minima, then maxima.
JORM_LEVEL_TABLE(const ExtremumRows, extremum_rows);

} // namespace jorm
