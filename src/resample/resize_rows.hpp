// What a level offers for resizing: rows of bytes put together by shuffles.
#pragma once
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

constexpr int shuffle_block = 16, most_windows = 4;

// A row in blocks of 16 bytes, of which the last one may overlap the one before it. Block b takes its bytes from some
// windows of 16 bytes that follow each other from from[b] on. Its picks are 16 bytes for each window: the position in
// the window of each byte of the block, 128 where the byte comes from another window.
struct ShufflePlan {
    int64_t bytes;
    const int64_t *from;
    const uint8_t *picks;
};

struct ResizeRows {
    // By the number of windows, from 1 on; null where the level has no shuffles of bytes.
    void (*shuffle[most_windows])(char *dst, const char *src, const ShufflePlan &plan);
};

JORM_LEVEL_TABLE(const ResizeRows, resize_rows);

inline const ResizeRows &resize_rows_at(Level which) { return JORM_OF_LEVEL(resize_rows, which)[0]; }

} // namespace jorm
