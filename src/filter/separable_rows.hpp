// Rows of weighted sums: what a level offers for one element type and one type that sums are taken in.
#pragma once
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// Rows with their weights. Paired: row 2k and row 2k + 1 share weight k.
struct WeightedRows {
    const void *const *row;
    const void *weight; // of the type of sums
    int64_t count;      // of weights
    bool paired;
};

struct SeparableRows {
    int32_t sum_bytes;
    // Sums of elements.
    void (*down)(void *sums, const WeightedRows &rows, int64_t n);
    // Sums of sums as elements: rounded to nearest even and clamped. `spare` has room for n sums.
    void (*along)(void *to, void *spare, const WeightedRows &rows, int64_t n);
    // The same as they are.
    void (*along_sums)(void *to, void *spare, const WeightedRows &rows, int64_t n);
};
enum SeparableLine : int { single_u8, single_s16, single_f32, double_u8, double_s16, double_s32 };

JORM_LEVEL_TABLE(const SeparableRows, separable_rows);

} // namespace jorm
