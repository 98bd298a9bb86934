// What the rows of sums gather into.
#pragma once

#include <cstdint>

namespace jorm {

// Sample i of a channel of f32, counted in row-major order, goes to partial sum i % sum_partials of the channel; the
// partial sums are added up in their order. So a sum depends neither on the level nor on the layout.
constexpr int sum_partials = 64;

// The sums of up to four channels. `channels` says how many of them each row brings, interleaved.
struct SumState {
    alignas(64) double partial[4 * sum_partials]; // f32: those of the channels interleaved
    __int128 whole[4];                            // other types: exact at any size
    int32_t phase;                                // the partial sum that comes next
    uint8_t unselected;                           // mask elements with this value leave their samples out
};

} // namespace jorm
