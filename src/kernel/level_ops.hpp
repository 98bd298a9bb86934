// Building blocks of level sources: element types, rounding, scaling, clamping, the loops over one row.
//
// Everything sits in the unnamed namespace of the level, so that no two levels ever share a function that the linker
// could merge. Only constant expressions and plain loops: the compiler vectorises them for the level's registers.
#pragma once
#include "kernel/row.hpp"

#include <cstdint>

#ifndef JORM_LEVEL
#error "a level source is compiled once per level, with JORM_LEVEL defined"
#endif

namespace jorm::JORM_LEVEL {
namespace {

using u8 = uint8_t;
using s8 = int8_t;
using s16 = int16_t;
using s32 = int32_t;
using s64 = int64_t;
using s128 = __int128;
using f32 = float;
using f64 = double;

// Before a loop whose elements do not depend on one another.
#ifdef __clang__
#define JORM_INDEPENDENT _Pragma("clang loop vectorize(assume_safety)")
#else
#define JORM_INDEPENDENT _Pragma("GCC ivdep")
#endif

template <class A, class B> constexpr bool same = false;
template <class A> constexpr bool same<A, A> = true;
template <class T> constexpr bool is_real = same<T, f32> || same<T, f64>;

template <bool C, class A, class B> struct Select { using type = A; };
template <class A, class B> struct Select<false, A, B> { using type = B; };
template <bool C, class A, class B> using select = typename Select<C, A, B>::type;

template <class T> constexpr s64 lowest = 0;
template <> constexpr s64 lowest<s8> = -128;
template <> constexpr s64 lowest<s16> = -32768;
template <> constexpr s64 lowest<s32> = -2147483648;
template <class T> constexpr s64 largest = 0;
template <> constexpr s64 largest<u8> = 255;
template <> constexpr s64 largest<s8> = 127;
template <> constexpr s64 largest<uint16_t> = 65535;
template <> constexpr s64 largest<s16> = 32767;
template <> constexpr s64 largest<s32> = 2147483647;

template <class T> constexpr int bits = int(sizeof(T)) * 8;

// ------------------------------------------------------------------ rounding

// To the nearest 32-bit integer, ties to even. NaN and what does not fit become -2147483648.
#if defined(__x86_64__) && defined(__NO_MATH_ERRNO__) && !defined(__clang__)
// The processor's own conversion, within reach of the compiler.
[[gnu::always_inline]] inline s32 round_s32(f64 x) { return __builtin_irint(x); }
[[gnu::always_inline]] inline s32 round_s32(f32 x) { return __builtin_irintf(x); }
#else
// Adding 1.5 * 2^52 leaves the integer in the low bits of the sum.
[[gnu::always_inline]] inline s32 round_s32(f64 x) {
    const bool fits = x >= -2147483648.5 && x < 2147483647.5;
    const f64 y = (fits ? x : -2147483648.0) + 6755399441055744.0;
    return s32(__builtin_bit_cast(s64, y));
}
// The same for single precision: the sum rounds magnitudes below 2^23, from there on x is whole.
[[gnu::always_inline]] inline s32 round_s32(f32 x) {
    const bool fits = x >= -2147483648.f && x < 2147483648.f;
    const f32 y = fits ? x : -2147483648.f;
    const f32 magnitude = y < 0 ? -y : y;
    const f32 near = magnitude < 8388608.f ? (magnitude + 8388608.f) - 8388608.f : magnitude;
    return s32(y < 0 ? -near : near);
}
#endif

template <class C> struct Unsigned { using type = C; };
template <> struct Unsigned<s8> { using type = u8; };
template <> struct Unsigned<s16> { using type = uint16_t; };
template <> struct Unsigned<s32> { using type = uint32_t; };
template <> struct Unsigned<s64> { using type = uint64_t; };
template <> struct Unsigned<s128> { using type = unsigned __int128; };

// x / 2^k to nearest even, 1 <= k < bits of C; exact for every x.
template <class C> [[gnu::always_inline]] inline C shift_right(C x, int k) {
    using U = typename Unsigned<C>::type;
    const C quotient = C(x >> k);
    const U rest = U(U(x) & U((U(1) << k) - 1));
    return C(quotient + C(U(rest + (quotient & 1)) > U(U(1) << (k - 1)) ? 1 : 0));
}

// The same for values that leave room for half a unit below the type's limit: one addition less.
template <class C> [[gnu::always_inline]] inline C shift_right_small(C x, int k) {
    const C half = C((C(1) << (k - 1)) - 1), quotient = C(x >> k), sum = C(x + half + (quotient & 1));
    return C(sum >> k);
}

template <class D, class C> [[gnu::always_inline]] inline D clamp(C x) {
    if constexpr (is_real<D>)
        return D(x);
    else {
        const C lo = C(-1) > 0 && lowest<D> < 0 ? C(0) : C(lowest<D>), hi = C(largest<D>);
        return D(x < lo ? lo : x > hi ? hi : x);
    }
}

// Stores the exact result x: the low bits of it, or clamped to the type.
template <class D, bool Clamp, class C> [[gnu::always_inline]] inline D store(C x) {
    if constexpr (!is_real<D> && is_real<C>)
        return store<D, Clamp>(round_s32(x));
    else if constexpr (!is_real<D> && Clamp && sizeof(C) >= sizeof(D) && !same<C, D>)
        return clamp<D>(x);
    else
        return D(x);
}

// The nearest value of the type, ties to even, infinities included; NaN becomes 0 in integers.
template <class D> [[gnu::always_inline]] inline D nearest(f64 x) {
    if constexpr (is_real<D>)
        return D(x);
    else {
        constexpr f64 lo = f64(lowest<D>), hi = f64(largest<D>);
        x = x > lo ? x : lo == 0 || x == x ? lo : 0;
        return D(round_s32(x < hi ? x : hi));
    }
}

// x * 2^p for any p, of integers: the slow road for shifts to the left and very long ones.
template <class D, bool Clamp, class C> [[gnu::always_inline]] inline D store_shifted(C x, int p) {
    using U = typename Unsigned<C>::type;
    constexpr int width = int(sizeof(C)) * 8;
    if (p < 0) {
        if (p <= -width) return D(C(-1) > 0 && p == -width && x > C(U(1) << (width - 1)) ? 1 : 0);
        return store<D, Clamp>(shift_right(x, -p));
    }
    if (p >= width) return D(!Clamp || x == 0 ? 0 : x > 0 ? largest<D> : lowest<D>);
    if constexpr (Clamp) {
        constexpr C top = C(largest<D>), bottom = C(lowest<D>);
        if (x > top >> p) return D(largest<D>);
        if (C(-1) < 0 && x < bottom >> p) return D(lowest<D>);
    }
    return store<D, Clamp>(C(U(x) << p));
}

// ------------------------------------------------------- loops over one row

template <class T> inline T *elements(void *p) { return static_cast<T *>(p); }
template <class T> inline const T *elements(const void *p) { return static_cast<const T *>(p); }

template <class D, class A, class F>
[[gnu::always_inline]] inline void row1(void *dst, const void *const *src, int64_t n, F f) {
    D *d = elements<D>(dst);
    const A *a = elements<A>(src[0]);
    for (int64_t i = 0; i < n; ++i) d[i] = f(a[i]);
}

template <class D, class A, class B, class F>
[[gnu::always_inline]] inline void row2(void *dst, const void *const *src, int64_t n, F f) {
    D *d = elements<D>(dst);
    const A *a = elements<A>(src[0]);
    const B *b = elements<B>(src[1]);
    for (int64_t i = 0; i < n; ++i) d[i] = f(a[i], b[i]);
}

template <class D, class A, class B, class C, class F>
[[gnu::always_inline]] inline void row3(void *dst, const void *const *src, int64_t n, F f) {
    D *d = elements<D>(dst);
    const A *a = elements<A>(src[0]);
    const B *b = elements<B>(src[1]);
    const C *c = elements<C>(src[2]);
    for (int64_t i = 0; i < n; ++i) d[i] = f(a[i], b[i], c[i]);
}

} // namespace
} // namespace jorm::JORM_LEVEL
