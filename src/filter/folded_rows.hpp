// Rows of a small picture that goes as one row: what a level offers.
#pragma once
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

// What lies between two rows of pixels: columns beyond the end of one, then those before the next. Each byte is one of
// the last 16 of the row before (from 0 on) or of the first 16 of the row after (from 16 on); after the gap the latter
// follow in their order.
struct FoldGap {
    static constexpr int64_t most = 32; // bytes
    int64_t bytes;
    uint8_t from[most];
};

struct FoldedRows {
    // Short rows that do not overlap.
    void (*copy)(char *to, int64_t to_pitch, const char *from, int64_t from_pitch, int64_t rows, int64_t bytes);
    // The gap after each of so many rows, which end at `end`, `pitch` bytes apart. A gap may write 16 bytes beyond
    // itself, as they are. Null where columns go one by one.
    void (*fill_gaps)(char *end, int64_t pitch, int64_t rows, const FoldGap &gap);
};
JORM_LEVEL_TABLE(const FoldedRows, folded_rows);

} // namespace jorm
