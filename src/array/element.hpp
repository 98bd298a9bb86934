// Element type codes and channel codes.
#pragma once

#include <cstdint>

namespace jorm {

// Bytes of one element; 0 where the code's size class has none.
constexpr int32_t element_size(uint32_t code) {
    constexpr uint32_t bytes = 0x08484210; // four bits for each size class
    return int32_t(bytes >> (code & 7) * 4 & 15);
}

// Code 15 is well formed although it has no size: it is a request that nothing supports.
constexpr bool well_formed(uint32_t code) { return (code >= 1 && code <= 4) || (code >= 9 && code <= 15); }

// Channels stored per pixel.
constexpr int32_t stored_channels(uint32_t code) { return int32_t((code & 7) + (code >> 3 & 1)); }

} // namespace jorm
