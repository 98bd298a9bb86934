// The rows of comparisons.
#pragma once
#include "kernel/row.hpp"

namespace jorm {

// What rows take besides their sources, in bits of elements.
struct CompareParams : RowParams {
    uint32_t constant = 0;              // of the source's type
    uint32_t yes = 0xFFFFFFFFu, no = 0; // of the destination's type
};

// The types that are compared. The last one serves only sources that have no narrower type in common.
enum CompareType : int { compare_u8, compare_s8, compare_s16, compare_s32, compare_f32, compare_f64, compare_types };

// Each relation has tables of its own, of two arrays and of an array with a constant: equal_rows and
// constant_equal_rows. The row of a destination's size and a type stands at size_log2 * compare_types + type.

// What else comparisons take: the only line of the table compare_helpers.
struct CompareHelpers {
    Row select[3];                               // d = mask ? a : b, by the logarithm of the size
    Row widen[compare_types][compare_types - 1]; // [to][from], null where nothing is to be done
};

} // namespace jorm
