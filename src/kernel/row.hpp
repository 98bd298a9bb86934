// Rows: what a level source offers for one operation on one combination of element types.
#pragma once
#include <cstdint>

namespace jorm {

constexpr int max_sources = 3;

// Constants of a row repeat with the channels: entry i serves element i of the row. The length is a multiple of every
// channel count and of the widest vector, so rows step through it in whole vectors.
constexpr int pattern_length = 192;

struct ConstantPattern {
    int32_t whole[pattern_length]; // rounded to nearest even, the low 32 bits
    double real[pattern_length];   // as given
};

// Which constants the fast rows of a constant form serve.
enum class ConstantRule : uint8_t {
    none,      // the fast rows do not exist
    low_bits,  // whole numbers, of which only the low bits matter
    saturated, // whole numbers of 32 bits
    small,     // whole numbers of at most 24 bits
    single,    // numbers that single precision holds
    any,       // all
    rounded,   // all, rounded to nearest even
    element,   // all, as elements of the destination's type
    factor     // all, times 2^p
};

// What is the same for every row of a call.
struct RowParams {
    int32_t shift = 0;                        // results are scaled by 2^shift
    double scale = 1;                         // 2^shift
    const ConstantPattern *constants[2] = {}; // null when the operation has none
};

// Computes n dense elements. dst may be a source; rows never overlap otherwise.
using Row = void (*)(void *dst, const void *const *src, int64_t n, const RowParams &params);

// The rows of one combination of element types. Without constants: plain and scaled.
struct Rows {
    Row plain;   // not scaled; constants: the same one for every channel, within the rule
    Row scaled;  // any shift; constants: whole numbers
    Row pattern; // as plain, constants by channel
    Row real;    // any shift, any constants
    ConstantRule rule;
};

} // namespace jorm
