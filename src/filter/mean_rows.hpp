// Rows of means: what a level offers.
#pragma once
#include "filter/column_rows.hpp"
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// Windows of bytes whose column sums fit 16 bits.
struct ByteMean {
    int32_t width;                // of the window
    int32_t phase;                // 1: the row of sums begins one column before the first window
    uint16_t area, factor, shift; // (sum + area / 2) * factor / 2^16 * shift / 2^16 is the mean, but for ties
    static constexpr int max_half = 8;
    static constexpr int64_t max_height = 257, max_area = 16400; // that one less than
};
struct ByteMeanRows {
    // Windows of 3 or 5 columns about their centres, which lie in n columns, and of 3 or 5 rows; a second row of
    // results goes into to[1] unless that is null, of the rows from rows[1] on. Columns beside the n count as anything.
    void (*small)(uint8_t *const *to, const uint8_t *const *rows, int64_t height, int64_t n, const ByteMean &m);
    int64_t small_row; // n is not less
    // Column sums, those of even and of odd columns apart, of n columns: of so many rows; a row comes in, another goes.
    void (*gather)(uint16_t *even, uint16_t *odd, const uint8_t *const *rows, int64_t count, int64_t n);
    void (*slide)(uint16_t *even, uint16_t *odd, const uint8_t *in, const uint8_t *out, int64_t n);
    // Windows that factors divide, at most 2 * max_half + 1 columns wide; a register beyond the sums is readable.
    void (*mean)(uint8_t *to, const uint16_t *even, const uint16_t *odd, int64_t n, const ByteMean &m);
    // All others: `before` becomes the sums of the pairs of columns before each of n pairs; n is a multiple of 16.
    void (*add_up)(uint32_t *before, const uint16_t *even, const uint16_t *odd, int64_t n);
    void (*wide_mean)(uint8_t *to, const uint32_t *before, const uint16_t *even, const uint16_t *odd, int64_t n,
                      const ByteMean &m);
};

// All other windows: sums down the columns, then along them.
struct MeanRows {
    int32_t sum_bytes;
    void (*enter)(void *columns, const void *row, int64_t n); // integers only: single precision never takes away
    void (*slide)(void *columns, const void *in, const void *out, int64_t n);
    // Sums of windows of k columns along a row of n + k - 1 of them; `to` and `spare` are as long as that.
    void (*along)(void *to, void *spare, const void *columns, int64_t n, int64_t k);
    void (*mean)(void *to, const void *sums, int64_t n, int64_t area);
    // Both at once, for windows of up to `few` columns; null where it is not quicker.
    void (*mean_along)(void *to, const void *columns, int64_t n, int64_t k, int64_t area);
    static constexpr int64_t few = 7;
};
// Narrow sums have 32 bits.
enum BoxLine : int { box_u8_narrow, box_s16_narrow, box_u8, box_s16, box_s32, box_f32 };

JORM_LEVEL_TABLE(const ByteMeanRows, byte_mean_rows);
JORM_LEVEL_TABLE(const MeanRows, mean_rows);
JORM_LEVEL_TABLE(const ColumnRows, real_sum_columns);

} // namespace jorm
