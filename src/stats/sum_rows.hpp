// What the rows of sums gather into.
#pragma once

#include <cstdint>

namespace jorm {

// Sample i of a channel of f32, counted in row-major order, goes to partial sum i % sum_partials of the channel; halves
// of the partial sums are then added until one is left. So a sum depends neither on the level nor on the layout. What
// that costs: rows that do not follow each other in memory begin and end within a round of partial sums.
constexpr int sum_partials = 64;

// The sums of up to four channels. `channels` says how many of them each row brings, interleaved.
struct SumState {
    alignas(64) double partial[4 * sum_partials]; // f32: those of the channels interleaved
    __int128 whole[4];                            // other types: exact at any size
    int32_t phase;                                // the partial sum that comes next; -1 before the first
    uint8_t unselected;                           // mask elements with this value leave their samples out
};

} // namespace jorm
