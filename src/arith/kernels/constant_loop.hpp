// What rows with constant operands share.
#pragma once
#include "arith/kernels/arith_ops.hpp"
#include "kernel/constant_loop.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Rows of whole numbers with a shift are exact at any size and slow; where a result is known to fit, the rows in double
// precision serve. One compilation of them is enough for all levels.
#ifdef JORM_LEVEL_base
constexpr bool has_scaled_rows = true;
#else
constexpr bool has_scaled_rows = false;
#endif

// A whole constant as the slow rows take it, cut to Bits bits so that the result fits 127. A larger one has no low bits
// that could matter, and neither has the power of two that stands for it.
template <int Bits> [[gnu::always_inline]] inline s128 whole(f64 k) {
    constexpr f64 limit = __builtin_bit_cast(f64, uint64_t(1023 + Bits) << 52);
    return s128(k < -limit ? -limit : k > limit ? limit : k);
}

} // namespace
} // namespace jorm::JORM_LEVEL
