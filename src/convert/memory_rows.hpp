// The byte and vector loops that every level has.
#pragma once
#include <cstddef>
#include <cstdint>

namespace jorm {

// Bytes that repeat a pattern of 4, 8, 12 or 16 bytes: a common multiple of these and of a cache line, and one line
// more to begin at any phase.
constexpr int64_t fill_period = 192;
constexpr int64_t fill_block_bytes = fill_period + 64;

enum Sense : int { first_equal, first_different };
using FindRow = int64_t (*)(const void *row, int64_t n, const void *value);

// The source of the next run lies `next` bytes further, as far as that is known; else 0.
using CopyBytes = void (*)(void *dst, const void *src, int64_t bytes, int64_t next);

using VectorConstant = void (*)(float *dst, const float *src, const float *pattern, size_t n);
using VectorBytes = void (*)(void *dst, const void *a, const void *b, size_t n);

struct MemoryRows {
    CopyBytes copy;                                            // of bytes that do not overlap
    void (*fill)(void *dst, int64_t bytes, const char *block); // block: fill_block_bytes
    FindRow find8[2], find16[2], find32[2], find_f32[2];       // by Sense: the position of the first, n without one
    VectorConstant add, sub, rsub, mul, div, rdiv;
    VectorBytes add8, add16, distance8, distance16;
    uint8_t (*max_u8)(const uint8_t *src, size_t n), (*min_u8)(const uint8_t *src, size_t n);
    float (*max_f32)(const float *src, size_t n), (*min_f32)(const float *src, size_t n);
    int64_t (*sum_u8)(const uint8_t *src, size_t n), (*sum_s16)(const int16_t *src, size_t n);
    double (*sum_f32)(const float *src, size_t n);
};

} // namespace jorm
