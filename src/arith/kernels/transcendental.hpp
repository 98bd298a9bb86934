// Exponential and logarithm of single-precision values, computed in double precision by polynomials that vectorise: no
// branches, no tables, no library calls. Errors stay below 2^-40 relative, so the result rounded to single precision is
// the nearest value or, next to a tie, its neighbour.
#pragma once
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

constexpr f64 ln2_high = 0x1.62e42fee00000p-1, ln2_low = 0x1.a39ef35793c76p-33;
constexpr f64 infinity = __builtin_inf();

// e^x = 2^k e^r with |r| <= ln 2 / 2; e^r by its series up to r^11 (the rest is below 2^-42).
[[gnu::always_inline]] inline f64 exponential(f64 x) {
    constexpr f64 shifter = 6755399441055744.0;                // 1.5 * 2^52: rounds to a whole number
    const f64 y = x < -745.0 ? -745.0 : x > 709.0 ? 709.0 : x; // NaN passes
    const f64 biased = y * 0x1.71547652b82fep+0 + shifter;
    const f64 k = biased - shifter;
    const f64 r = (y - k * ln2_high) - k * ln2_low;
    f64 e = 1.0 / 39916800;
    e = e * r + 1.0 / 3628800;
    e = e * r + 1.0 / 362880;
    e = e * r + 1.0 / 40320;
    e = e * r + 1.0 / 5040;
    e = e * r + 1.0 / 720;
    e = e * r + 1.0 / 120;
    e = e * r + 1.0 / 24;
    e = e * r + 1.0 / 6;
    e = e * r + 0.5;
    e = e * r + 1.0;
    e = e * r + 1.0;
    // Two factors, so that 2^k stays normal down to the results that vanish in single precision.
    const s64 whole = __builtin_bit_cast(s64, biased) - __builtin_bit_cast(s64, shifter);
    const s64 half = whole >> 1;
    const f64 first = __builtin_bit_cast(f64, uint64_t(half + 1023) << 52);
    const f64 second = __builtin_bit_cast(f64, uint64_t(whole - half + 1023) << 52);
    const f64 value = e * first * second;
    return x > 709.0 ? infinity : x != x ? x : value;
}

// ln x = k ln 2 + ln m with m in [sqrt(1/2), sqrt(2)); ln m = 2 artanh((m - 1) / (m + 1)) by its series up to s^23.
[[gnu::always_inline]] inline f64 logarithm(f64 x) {
    const uint64_t word = __builtin_bit_cast(uint64_t, x);
    const uint64_t upper = word - 0x3fe6a09e667f3bcdu; // bits of sqrt(1/2)
    const f64 k = __builtin_bit_cast(f64, ((upper >> 52) ^ 0x800u) | 0x4330000000000000u) - 4503599627372544.0;
    const f64 m = __builtin_bit_cast(f64, word - (upper & 0xfff0000000000000u));
    const f64 s = (m - 1.0) / (m + 1.0), z = s * s;
    f64 t = 2.0 / 23;
    t = t * z + 2.0 / 21;
    t = t * z + 2.0 / 19;
    t = t * z + 2.0 / 17;
    t = t * z + 2.0 / 15;
    t = t * z + 2.0 / 13;
    t = t * z + 2.0 / 11;
    t = t * z + 2.0 / 9;
    t = t * z + 2.0 / 7;
    t = t * z + 2.0 / 5;
    t = t * z + 2.0 / 3;
    t = t * z + 2.0;
    const f64 value = k * ln2_high + (t * s + k * ln2_low);
    const f64 special = x == infinity ? infinity : x == 0.0 ? -infinity : __builtin_nan("");
    return x > 0.0 && x < infinity ? value : special;
}

} // namespace
} // namespace jorm::JORM_LEVEL
