// What the compiler makes poor vector code of, in the processor's own instructions: for level sources.
#pragma once
#include "kernel/level_ops.hpp"

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace jorm::JORM_LEVEL {
namespace {

// N bytes become words; N is a multiple of 16.
template <int N> [[gnu::always_inline]] inline void widen(s32 *to, const u8 *from) {
#if defined(JORM_LEVEL_avx512)
    for (int i = 0; i < N; i += 16)
        _mm512_storeu_si512(to + i, _mm512_maskz_cvtepu8_epi32(0xffff, _mm_loadu_si128((const __m128i *)(from + i))));
#elif defined(JORM_LEVEL_avx2)
    for (int i = 0; i < N; i += 8)
        _mm256_storeu_si256((__m256i *)(to + i), _mm256_cvtepu8_epi32(_mm_loadl_epi64((const __m128i *)(from + i))));
#else
    for (int i = 0; i < N; ++i) to[i] = from[i];
#endif
}

// N words from 0 to 255 become bytes; N is a multiple of 16.
template <int N> [[gnu::always_inline]] inline void narrow(u8 *to, const s32 *from) {
#if defined(JORM_LEVEL_avx512)
    for (int i = 0; i < N; i += 16)
        _mm_storeu_si128((__m128i *)(to + i), _mm512_maskz_cvtepi32_epi8(0xffff, _mm512_loadu_si512(from + i)));
#else
    for (int i = 0; i < N; ++i) to[i] = u8(from[i]);
#endif
}

// Saturated sums and differences.
template <class T> constexpr bool has_saturated_sums = false;
#ifdef __x86_64__
template <> constexpr bool has_saturated_sums<u8> = true;
template <> constexpr bool has_saturated_sums<s16> = true;
#if defined(JORM_LEVEL_avx512)
using Register = __m512i;
#define JORM_OF_REGISTER(operation) _mm512_##operation
#elif defined(JORM_LEVEL_avx2)
using Register = __m256i;
#define JORM_OF_REGISTER(operation) _mm256_##operation
#else
using Register = __m128i;
#define JORM_OF_REGISTER(operation) _mm_##operation
#endif

template <bool Add, class T> [[gnu::always_inline]] inline Register saturated(Register a, Register b) {
    if constexpr (same<T, u8>)
        return Add ? JORM_OF_REGISTER(adds_epu8)(a, b) : JORM_OF_REGISTER(subs_epu8)(a, b);
    else
        return Add ? JORM_OF_REGISTER(adds_epi16)(a, b) : JORM_OF_REGISTER(subs_epi16)(a, b);
}

// row2 for d = a + b or a - b; f serves what does not fill a register.
template <bool Add, class T, class F>
[[gnu::always_inline]] inline void saturated_row(void *dst, const void *const *src, int64_t n, F f) {
    constexpr int64_t whole = sizeof(Register) / sizeof(T);
    T *d = elements<T>(dst);
    const T *a = elements<T>(src[0]), *b = elements<T>(src[1]);
    int64_t i = 0;
    for (; i + whole <= n; i += whole) {
        Register x, y;
        __builtin_memcpy(&x, a + i, sizeof x);
        __builtin_memcpy(&y, b + i, sizeof y);
        x = saturated<Add, T>(x, y);
        __builtin_memcpy(d + i, &x, sizeof x);
    }
    const void *const rest[] = {a + i, b + i};
    row2<T, T, T>(d + i, rest, n - i, f);
}
#endif

// Three components of bytes, interleaved in 48 and apart in 16 each.
#ifdef __SSSE3__
struct Thirds {
    __m128i part[3];
};

// Byte j of a part comes from, or goes to, byte 3 j + (its number); pick[p][q]: what part p takes from 16 bytes q.
struct ThirdsPicks {
    alignas(16) u8 split[3][3][16], join[3][3][16];
};
constexpr ThirdsPicks thirds_picks() {
    ThirdsPicks picks = {};
    for (int p = 0; p < 3; ++p)
        for (int q = 0; q < 3; ++q)
            for (int j = 0; j < 16; ++j) {
                const int apart = 3 * j + p, woven = 16 * p + j;
                picks.split[p][q][j] = apart / 16 == q ? u8(apart % 16) : u8(128);
                picks.join[p][q][j] = woven % 3 == q ? u8(woven / 3) : u8(128);
            }
    return picks;
}
alignas(16) constexpr ThirdsPicks thirds = thirds_picks();

[[gnu::always_inline]] inline Thirds shuffled(const Thirds &t, const u8 (&picks)[3][3][16]) {
    Thirds result;
    for (int p = 0; p < 3; ++p) {
        result.part[p] = _mm_setzero_si128();
        for (int q = 0; q < 3; ++q) {
            const __m128i pick = _mm_load_si128((const __m128i *)picks[p][q]);
            result.part[p] = _mm_or_si128(result.part[p], _mm_shuffle_epi8(t.part[q], pick));
        }
    }
    return result;
}
#endif

// n pixels of three bytes to three rows, and back; the rows lie `pitch` apart.
[[gnu::always_inline]] inline void split_thirds(u8 *to, int64_t pitch, const u8 *from, int64_t n) {
    int64_t i = 0;
#ifdef __SSSE3__
    for (; i + 16 <= n; i += 16) {
        Thirds t;
        for (int q = 0; q < 3; ++q) t.part[q] = _mm_loadu_si128((const __m128i *)(from + 3 * i + 16 * q));
        t = shuffled(t, thirds.split);
        for (int p = 0; p < 3; ++p) _mm_storeu_si128((__m128i *)(to + p * pitch + i), t.part[p]);
    }
#endif
    for (; i < n; ++i)
        for (int p = 0; p < 3; ++p) to[p * pitch + i] = from[3 * i + p];
}
[[gnu::always_inline]] inline void join_thirds(u8 *to, const u8 *from, int64_t pitch, int64_t n) {
    int64_t i = 0;
#ifdef __SSSE3__
    for (; i + 16 <= n; i += 16) {
        Thirds t;
        for (int p = 0; p < 3; ++p) t.part[p] = _mm_loadu_si128((const __m128i *)(from + p * pitch + i));
        t = shuffled(t, thirds.join);
        for (int q = 0; q < 3; ++q) _mm_storeu_si128((__m128i *)(to + 3 * i + 16 * q), t.part[q]);
    }
#endif
    for (; i < n; ++i)
        for (int p = 0; p < 3; ++p) to[3 * i + p] = from[p * pitch + i];
}

#ifdef JORM_LEVEL_avx512
// Bit i tells whether byte i of 64 differs from the value.
[[gnu::always_inline]] inline uint64_t bytes_other_than(u8 value, const u8 *bytes) {
    return _mm512_cmpneq_epi8_mask(_mm512_loadu_si512(bytes), _mm512_set1_epi8(char(value)));
}
#endif

} // namespace
} // namespace jorm::JORM_LEVEL
