// How elements travel between arrays and dense blocks at a level.
#pragma once
#include "kernel/level_table.hpp"

#include <cstdint>

namespace jorm {

struct Transport {
    // Copies a block past the cache to memory; null where that does not pay. A copy of 0 bytes ends a series: what was
    // streamed is then visible to other processors.
    void (*stream)(void *to, const void *from, int64_t bytes);
    // n elements of 1, 2, 4 or 8 bytes (by the logarithm of that) become dense; each counts for `repeat` of them.
    void (*gather[4])(void *to, const char *from, int64_t stride, int32_t repeat, int64_t n);
    void (*scatter[4])(char *to, int64_t stride, const void *from, int64_t n);
};

JORM_LEVEL_TABLE(const Transport, transports);

inline const Transport &transport_at(Level which) { return JORM_OF_LEVEL(transports, which)[0]; }

} // namespace jorm
