// Rows of minima and maxima: what a level offers for one of them on one element type.
#pragma once
#include "filter/column_rows.hpp"
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// The ends of rows of which windows read columns that do not exist. Each of these is a copy of another one; both are
// places in a line of four registers: the row as windows see it, `left` columns before it and `right` ones after it,
// begins there, and its last windows begin at `last`, a register of them.
struct RowEnds {
    static constexpr int64_t most = 4;
    struct Copy {
        int32_t to, from;
    };
    int64_t left, right, last;
    Copy copy[most];
};

// NaN never hides another value. Lengths are in elements; nothing is in place.
struct ExtremumRows {
    int64_t lanes; // elements of a register
    // Of windows of 3 by 3 or 5 by 5 in rows of n elements, no fewer than a register, as are the results. A second row
    // of results goes into to[1] unless that is null: of the rows from rows[1] on. Null where rows may hold NaN.
    void (*small_windows)(void *const *to, const void *const *rows, int64_t n, int64_t size, const RowEnds &ends);
    ColumnRows columns;
    // Across nested groups of rows at once: to[k] of the first end[k] ones.
    void (*across_nested)(void *const *to, const void *const *rows, const int32_t *end, int64_t groups, int64_t n);
    // The same for two windows, one a row below the other: `shared` counts the rows of both that each group adds to
    // those before it. In the list these are followed by the first row of the upper window's group and the last one of
    // the lower one's, which all further groups of both have. n is a register at least.
    void (*across_two)(void *const *to, void *const *next, const void *const *rows, const int32_t *shared,
                       int64_t groups, int64_t n);
    // Does a row ask for the exact rules of NaN? Null where all rows may come.
    bool (*unordered)(const void *row, int64_t n);
    // to = a - b, saturated.
    void (*subtract)(void *to, const void *a, const void *b, int64_t n);
    // to = of each of n elements and the one `apart` further.
    void (*pair)(void *to, const void *row, int64_t n, int64_t apart);
    // Of windows of k elements, `step` apart, along a row of n + (k - 1) * step; `spare` and `other`, which may be the
    // row, are as long. Both are destroyed.
    void (*along)(void *to, const void *row, void *spare, void *other, int64_t n, int64_t k, int64_t step);
};

// In the order u8, s16, s32, f32 without NaN, f32; minima, then maxima.
JORM_LEVEL_TABLE(const ExtremumRows, extremum_rows);

} // namespace jorm
