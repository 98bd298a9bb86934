// What the rows of extrema gather into.
#pragma once

#include <cstdint>

namespace jorm {

struct Extremum {
    double value;  // every sample type fits
    int64_t place; // of its first sample in row-major order; -1 as long as there is none
};

// The extrema of up to four interleaved channels.
struct ExtremaState {
    Extremum least[4], largest[4];
    int64_t pixels;     // seen so far
    uint8_t unselected; // mask elements with this value leave their samples out
};

// Extrema without their places. Lane k holds those of the samples that lie k beyond a multiple of the lanes, which are
// a multiple of every number of channels.
struct BoundsState {
    static constexpr int bytes = 192, fewest = 12;
    alignas(64) unsigned char least[bytes], largest[bytes];
    int32_t lanes; // 0 before the first row
};

} // namespace jorm
