// Element type codes and channel codes.
#pragma once

#include <cstdint>

namespace jorm {

// Bytes of one element; 0 where the code's size class has none.
constexpr int32_t element_size(uint32_t code) {
    constexpr int8_t bytes[8] = {0, 1, 2, 4, 8, 4, 8, 0};
    return bytes[code & 7];
}

// Code 15 is well formed although it has no size: it is a request that nothing supports.
constexpr bool well_formed(uint32_t code) { return (code >= 1 && code <= 4) || (code >= 9 && code <= 15); }

// Channels stored per pixel.
constexpr int32_t stored_channels(uint32_t code) { return int32_t((code & 7) + (code >> 3 & 1)); }

} // namespace jorm
