// Rows of weighted sums: what a level offers for one element type and one type that sums are taken in.
#pragma once
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// Rows with their weights: rows 2k and 2k + 1 share weight k of the pairs, each single one has its own.
struct WeightedRows {
    const void *const *row;
    const void *weight; // of the type of weights
    int64_t pairs, singles;
};

struct SeparableRows {
    int32_t sum_bytes, weight_bytes; // the latter down the columns; along the row weights are sums
    // Sums of elements: `count` rows of them, of windows with the same weights.
    void (*down)(void *const *sums, const WeightedRows *rows, int64_t count, int64_t n);
    // Sums of sums as elements: rounded to nearest even and clamped.
    void (*along)(void *to, const WeightedRows &rows, int64_t n);
    // The same as they are.
    void (*along_sums)(void *to, const WeightedRows &rows, int64_t n);
    // Both at once, for windows of 3, 5 or 7 columns about their centres, which lie in n columns, `small_row` of them
    // at least; the rows of `along` are not read. Columns beside the n count as anything. Null where sums are double.
    void (*small)(void *to, const WeightedRows &down, const WeightedRows &along, int64_t n);
    int64_t small_row;
};
// Scaled: whole weights of 16 bits down the columns, an odd number of them followed by a 0.
enum SeparableLine : int { scaled_u8, single_u8, single_f32, single_s16, double_u8, double_s16, double_s32 };

JORM_LEVEL_TABLE(const SeparableRows, separable_rows);
// The lines up to single_f32, for windows of 5 columns whose weights mirror each other and keep bytes in single
// precision.
JORM_LEVEL_TABLE(const SeparableRows, blur_rows);

} // namespace jorm
