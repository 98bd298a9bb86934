// Rows of minima and maxima: what a level offers for one of them on one element type.
#pragma once
#include "filter/column_rows.hpp"
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// NaN never hides another value. Lengths are in elements; nothing is in place.
struct ExtremumRows {
    ColumnRows columns;
    // Does a row ask for the exact rules of NaN? Null where all rows may come.
    bool (*unordered)(const void *row, int64_t n);
    // to = a - b, saturated.
    void (*subtract)(void *to, const void *a, const void *b, int64_t n);
    // to = of each of n elements and the one `apart` further.
    void (*pair)(void *to, const void *row, int64_t n, int64_t apart);
    // Of windows of k elements, `step` apart, along a row of n + (k - 1) * step; `spare` is as long. Both are
    // destroyed.
    void (*along)(void *to, void *row, void *spare, int64_t n, int64_t k, int64_t step);
};

// In the order u8, s16, s32, f32 without NaN, f32; minima, then maxima.
JORM_LEVEL_TABLE(const ExtremumRows, extremum_rows);

} // namespace jorm
