// What the rows of extrema gather into.
#pragma once

#include <cstdint>

namespace jorm {

struct Extremum {
    double value;  // every sample type fits
    int64_t place; // of its first sample in row-major order; -1 as long as there is none
};

// The extrema of up to four channels.
struct ExtremaState {
    Extremum least[4], largest[4];
    int64_t pixels;     // seen so far
    uint8_t unselected; // mask elements with this value leave their samples out
};

} // namespace jorm
