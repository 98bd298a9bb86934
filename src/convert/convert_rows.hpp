// The rows of conversions: K(kernel, destination type, source type).
#pragma once
#include "kernel/row.hpp"

namespace jorm {

// What rows from range to range take. The exact ones compute in double precision, with RowParams::constants.
struct RangeParams : RowParams {
    float fast[4][pattern_length]; // for the fast rows: scale and offset, their second pieces; repeat like constants
    uint16_t doubt;                // a fixed-point result with a fraction below this may be on the wrong side of a tie
    mutable int32_t doubtful = 0;  // blocks of such results in succession; below 0: blocks to pass over
};

// The rows of one pair of types, with the same constants for every channel [0] or with constants by channel [1]. Fast
// ones give the bits of the exact ones wherever they are chosen; null where there are none.
struct RangeRows {
    Row exact[2], fast[2];
    Row brief[2]; // fast, for offsets in one piece
    Row beyond[2]; // exact, for results that may leave 32 bits
    // Are the fast rows [0], the brief ones [1] exact with entry j of the constants?
    bool (*holds[2])(const RangeParams &params, int j);
    bool fused; // the fast rows do not round products that go into a sum
};

} // namespace jorm

// The plain conversions between different types.
#define JORM_CONVERSIONS(K) \
    K(_jorma__tconvert_u8s16, u8, s16) \
    K(_jorma__tconvert_u8s32, u8, s32) \
    K(_jorma__tconvert_u8f32, u8, f32) \
    K(_jorma__tconvert_s16u8, s16, u8) \
    K(_jorma__tconvert_s16s32, s16, s32) \
    K(_jorma__tconvert_s16f32, s16, f32) \
    K(_jorma__tconvert_s32u8, s32, u8) \
    K(_jorma__tconvert_s32s16, s32, s16) \
    K(_jorma__tconvert_s32f32, s32, f32) \
    K(_jorma__tconvert_f32u8, f32, u8) \
    K(_jorma__tconvert_f32s16, f32, s16) \
    K(_jorma__tconvert_f32s32, f32, s32)

// The conversions from range to range.
#define JORM_RANGE_CONVERSIONS(K) \
    K(_jorma__vscale_u8, u8, u8) \
    K(_jorma__vconvert_u8s16, u8, s16) \
    K(_jorma__vconvert_u8s32, u8, s32) \
    K(_jorma__vconvert_u8f32, u8, f32) \
    K(_jorma__vconvert_s16u8, s16, u8) \
    K(_jorma__vscale_s16, s16, s16) \
    K(_jorma__vconvert_s16s32, s16, s32) \
    K(_jorma__vconvert_s16f32, s16, f32) \
    K(_jorma__vconvert_s32u8, s32, u8) \
    K(_jorma__vconvert_s32s16, s32, s16) \
    K(_jorma__vscale_s32, s32, s32) \
    K(_jorma__vconvert_s32f32, s32, f32) \
    K(_jorma__vconvert_f32u8, f32, u8) \
    K(_jorma__vconvert_f32s16, f32, s16) \
    K(_jorma__vconvert_f32s32, f32, s32) \
    K(_jorma__vscale_f32, f32, f32)

// The conversions by a gain and an offset: every pair of these types, those of one destination together.
#define JORM_GAINS_INTO(K, D) K(D, u8) K(D, s8) K(D, u16) K(D, s16) K(D, s32) K(D, f32)
#define JORM_GAINS(K) \
    JORM_GAINS_INTO(K, u8) \
    JORM_GAINS_INTO(K, s8) \
    JORM_GAINS_INTO(K, u16) \
    JORM_GAINS_INTO(K, s16) \
    JORM_GAINS_INTO(K, s32) \
    JORM_GAINS_INTO(K, f32)
