// Rounding and saturating stores of whole registers, which the compiler does not find by itself: the processor's
// conversions to 32-bit integers (to nearest even; NaN and what does not fit become -2147483648) and its saturating
// packs. In levels without them `has_packs` is false.
#pragma once
#include "kernel/level_ops.hpp"

#if defined(__SSE2__)
#include <immintrin.h>
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized" // of operands that the compiler's own header leaves undefined
#endif
#endif

namespace jorm::JORM_LEVEL {
namespace {

#if defined(JORM_LEVEL_avx512)
constexpr bool has_packs = true;
constexpr int words = 16; // 32-bit integers of a register
using Words = __m512i;
using Halves = __m512d; // half as many doubles

[[gnu::always_inline]] inline Words rounded(const f32 *p) { return _mm512_cvtps_epi32(_mm512_loadu_ps(p)); }
[[gnu::always_inline]] inline Words rounded(const s32 *p) { return _mm512_loadu_si512(p); }
[[gnu::always_inline]] inline Halves doubles(const f32 *p) { return _mm512_cvtps_pd(_mm256_loadu_ps(p)); }
[[gnu::always_inline]] inline Halves doubles(const s32 *p) {
    return _mm512_cvtepi32_pd(_mm256_loadu_si256(reinterpret_cast<const __m256i *>(p)));
}
[[gnu::always_inline]] inline Halves doubles(const s16 *p) {
    return _mm512_cvtepi32_pd(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i *>(p))));
}
[[gnu::always_inline]] inline Halves doubles(const u8 *p) {
    return _mm512_cvtepi32_pd(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p))));
}
[[gnu::always_inline]] inline Halves broadcast(f64 x) { return _mm512_set1_pd(x); }
[[gnu::always_inline]] inline Words rounded(Halves a, Halves b) {
    return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtpd_epi32(a)), _mm512_cvtpd_epi32(b), 1);
}
[[gnu::always_inline]] inline void store(f32 *d, Halves a, Halves b) {
    _mm256_storeu_ps(d, _mm512_cvtpd_ps(a));
    _mm256_storeu_ps(d + 8, _mm512_cvtpd_ps(b));
}
[[gnu::always_inline]] inline void store(s16 *d, Words a, Words b) {
    const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
    _mm512_storeu_si512(d, _mm512_permutexvar_epi64(order, _mm512_packs_epi32(a, b)));
}
[[gnu::always_inline]] inline void store(u8 *d, Words a, Words b, Words c, Words e) {
    const __m512i order = _mm512_set_epi32(15, 11, 7, 3, 14, 10, 6, 2, 13, 9, 5, 1, 12, 8, 4, 0);
    const __m512i packed = _mm512_packus_epi16(_mm512_packs_epi32(a, b), _mm512_packs_epi32(c, e));
    _mm512_storeu_si512(d, _mm512_permutexvar_epi32(order, packed));
}
[[gnu::always_inline]] inline void store_bytes(u8 *d, const s16 *p) {
    const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
    const __m512i packed = _mm512_packus_epi16(_mm512_loadu_si512(p), _mm512_loadu_si512(p + 32));
    _mm512_storeu_si512(d, _mm512_permutexvar_epi64(order, packed));
}

#elif defined(JORM_LEVEL_avx2)
constexpr bool has_packs = true;
constexpr int words = 8;
using Words = __m256i;
using Halves = __m256d;

[[gnu::always_inline]] inline __m256i load(const void *p) {
    return _mm256_loadu_si256(static_cast<const __m256i *>(p));
}
[[gnu::always_inline]] inline __m128i load_half(const void *p) {
    return _mm_loadu_si128(static_cast<const __m128i *>(p));
}
[[gnu::always_inline]] inline Words rounded(const f32 *p) { return _mm256_cvtps_epi32(_mm256_loadu_ps(p)); }
[[gnu::always_inline]] inline Words rounded(const s32 *p) { return load(p); }
[[gnu::always_inline]] inline Halves doubles(const f32 *p) { return _mm256_cvtps_pd(_mm_loadu_ps(p)); }
[[gnu::always_inline]] inline Halves doubles(const s32 *p) { return _mm256_cvtepi32_pd(load_half(p)); }
[[gnu::always_inline]] inline Halves doubles(const s16 *p) {
    return _mm256_cvtepi32_pd(_mm_cvtepi16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p))));
}
[[gnu::always_inline]] inline Halves doubles(const u8 *p) {
    s32 four;
    __builtin_memcpy(&four, p, 4);
    return _mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(four)));
}
[[gnu::always_inline]] inline Halves broadcast(f64 x) { return _mm256_set1_pd(x); }
[[gnu::always_inline]] inline Words rounded(Halves a, Halves b) {
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvtpd_epi32(a)), _mm256_cvtpd_epi32(b), 1);
}
[[gnu::always_inline]] inline void store(f32 *d, Halves a, Halves b) {
    _mm_storeu_ps(d, _mm256_cvtpd_ps(a));
    _mm_storeu_ps(d + 4, _mm256_cvtpd_ps(b));
}
[[gnu::always_inline]] inline void store(s16 *d, Words a, Words b) {
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(d), _mm256_permute4x64_epi64(_mm256_packs_epi32(a, b), 0xD8));
}
[[gnu::always_inline]] inline void store(u8 *d, Words a, Words b, Words c, Words e) {
    const __m256i order = _mm256_set_epi32(7, 3, 6, 2, 5, 1, 4, 0);
    const __m256i packed = _mm256_packus_epi16(_mm256_packs_epi32(a, b), _mm256_packs_epi32(c, e));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(d), _mm256_permutevar8x32_epi32(packed, order));
}
[[gnu::always_inline]] inline void store_bytes(u8 *d, const s16 *p) {
    const __m256i packed = _mm256_packus_epi16(load(p), load(p + 16));
    _mm256_storeu_si256(reinterpret_cast<__m256i *>(d), _mm256_permute4x64_epi64(packed, 0xD8));
}

#elif defined(__SSE2__)
constexpr bool has_packs = true;
constexpr int words = 4;
using Words = __m128i;
using Halves = __m128d;

[[gnu::always_inline]] inline __m128i load(const void *p) { return _mm_loadu_si128(static_cast<const __m128i *>(p)); }
[[gnu::always_inline]] inline Words rounded(const f32 *p) { return _mm_cvtps_epi32(_mm_loadu_ps(p)); }
[[gnu::always_inline]] inline Words rounded(const s32 *p) { return load(p); }
[[gnu::always_inline]] inline Halves doubles(const f32 *p) {
    return _mm_cvtps_pd(_mm_castpd_ps(_mm_load_sd(reinterpret_cast<const double *>(p))));
}
[[gnu::always_inline]] inline Halves doubles(const s32 *p) {
    return _mm_cvtepi32_pd(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(p)));
}
[[gnu::always_inline]] inline Halves doubles(const s16 *p) { return _mm_cvtepi32_pd(_mm_set_epi32(0, 0, p[1], p[0])); }
[[gnu::always_inline]] inline Halves doubles(const u8 *p) { return _mm_cvtepi32_pd(_mm_set_epi32(0, 0, p[1], p[0])); }
[[gnu::always_inline]] inline Halves broadcast(f64 x) { return _mm_set1_pd(x); }
[[gnu::always_inline]] inline Words rounded(Halves a, Halves b) {
    return _mm_unpacklo_epi64(_mm_cvtpd_epi32(a), _mm_cvtpd_epi32(b));
}
[[gnu::always_inline]] inline void store(f32 *d, Halves a, Halves b) {
    _mm_storeu_ps(d, _mm_movelh_ps(_mm_cvtpd_ps(a), _mm_cvtpd_ps(b)));
}
[[gnu::always_inline]] inline void store(s16 *d, Words a, Words b) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(d), _mm_packs_epi32(a, b));
}
[[gnu::always_inline]] inline void store(u8 *d, Words a, Words b, Words c, Words e) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(d), _mm_packus_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, e)));
}
[[gnu::always_inline]] inline void store_bytes(u8 *d, const s16 *p) {
    _mm_storeu_si128(reinterpret_cast<__m128i *>(d), _mm_packus_epi16(load(p), load(p + 8)));
}

#else
constexpr bool has_packs = false;
#endif

#if defined(__SSE2__)
[[gnu::always_inline]] inline void store(s32 *d, Words a) { __builtin_memcpy(d, &a, sizeof a); }
#endif

} // namespace
} // namespace jorm::JORM_LEVEL
