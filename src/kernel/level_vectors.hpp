// What the compiler makes poor vector code of, in the processor's own instructions: for level sources.
#pragma once
#include "kernel/level_ops.hpp"

#if defined(JORM_LEVEL_avx2) || defined(JORM_LEVEL_avx512)
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

#ifdef JORM_LEVEL_avx512
// Bit i tells whether byte i of 64 differs from the value.
[[gnu::always_inline]] inline uint64_t bytes_other_than(u8 value, const u8 *bytes) {
    return _mm512_cmpneq_epi8_mask(_mm512_loadu_si512(bytes), _mm512_set1_epi8(char(value)));
}
#endif

} // namespace
} // namespace jorm::JORM_LEVEL
