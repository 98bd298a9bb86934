// Vectors for the operators of the language, and words of 16 bits in the processor's own instructions: for level
// sources.
#pragma once
#include "kernel/level_vectors.hpp"

namespace jorm::JORM_LEVEL {
namespace {

#if defined(JORM_LEVEL_avx512)
constexpr int register_bytes = 64;
#elif defined(JORM_LEVEL_avx2)
constexpr int register_bytes = 32;
#else
constexpr int register_bytes = 16;
#endif

// N elements; a single one is no vector.
template <class T, int N> struct VectorType { using type [[gnu::vector_size(N * sizeof(T))]] = T; };
template <class T> struct VectorType<T, 1> { using type = T; };
template <class T, int N> using VectorOf = typename VectorType<T, N>::type;

template <class V> [[gnu::always_inline]] inline V read(const void *from) {
    V v;
    __builtin_memcpy(&v, from, sizeof v);
    return v;
}
template <class To, int N, class From> [[gnu::always_inline]] inline VectorOf<To, N> converted(VectorOf<From, N> v) {
#if defined(JORM_LEVEL_avx512) // the compiler would go by halves
    if constexpr (same<To, f64> && same<From, f32> && N == 8)
        return VectorOf<To, N>(_mm512_maskz_cvtps_pd(0xff, __m256(v)));
#elif defined(JORM_LEVEL_base) && defined(__x86_64__) // and by elements here
    if constexpr (same<To, f64> && same<From, f32> && N == 2)
        return VectorOf<To, N>(_mm_cvtps_pd(_mm_castsi128_ps(_mm_cvtsi64_si128(__builtin_bit_cast(s64, v)))));
#endif
    if constexpr (N == 1)
        return To(v);
    else
        return __builtin_convertvector(v, VectorOf<To, N>);
}

using Numbers = VectorOf<f32, register_bytes / 4>;
using Words = VectorOf<uint16_t, register_bytes / 2>;

// A register of the bytes from byte N on of two that lie side by side.
template <int... I> struct Places {
    template <int N, class V> [[gnu::always_inline]] static V from(V a, V b) {
        return __builtin_shufflevector(a, b, (N + I)...);
    }
};
template <int N, class V> [[gnu::always_inline]] inline V bytes_from(V a, V b) {
    static_assert(sizeof(V) == register_bytes && N >= 0 && N <= register_bytes);
#if defined(JORM_LEVEL_avx512)
    constexpr int part = N / 16, rest = N % 16;
    const __m512i x = __m512i(a), y = __m512i(b);
    if constexpr (N == register_bytes) return b;
    if constexpr (N % 4 == 0) return V(_mm512_maskz_alignr_epi32(0xffff, y, x, N / 4 % 16));
    if constexpr (same<V, Words> && N % 2 == 0) { // a permutation; of other types several N share registers
        using All = Places<0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25,
                           26, 27, 28, 29, 30, 31>;
        return All::from<N / 2>(a, b);
    }
    const __m512i first = part == 0 ? x : _mm512_maskz_alignr_epi64(0xff, y, x, 2 * part);
    const __m512i next = part == 3 ? y : _mm512_maskz_alignr_epi64(0xff, y, x, (2 * part + 2) % 8);
    return V(_mm512_maskz_alignr_epi8(~__mmask64(0), next, first, rest));
#elif defined(JORM_LEVEL_avx2)
    if constexpr (N == 0) return a;
    if constexpr (N == register_bytes) return b;
    const __m256i x = __m256i(a), y = __m256i(b), between = _mm256_permute2x128_si256(x, y, 0x21);
    if constexpr (N == 16) return V(between);
    return V(N < 16 ? _mm256_alignr_epi8(between, x, N % 16) : _mm256_alignr_epi8(y, between, N % 16));
#else
    if constexpr (N % 4 == 0) return V(Places<0, 1, 2, 3>::from<N / 4>(Numbers(a), Numbers(b)));
#ifdef __x86_64__
    return V(_mm_or_si128(_mm_bsrli_si128(__m128i(a), N), _mm_bslli_si128(__m128i(b), 16 - N)));
#else
    using Bytes = VectorOf<u8, 16>;
    return V(Places<0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15>::from<N>(Bytes(a), Bytes(b)));
#endif
#endif
}

// The high halves of products.
[[gnu::always_inline]] inline Words high_words(Words a, uint16_t b) {
#ifdef __x86_64__
    return Words(JORM_OF_REGISTER(mulhi_epu16)(Register(a), Register(b - Words{})));
#else
    using Wide = VectorOf<uint32_t, register_bytes / 2>;
    return __builtin_convertvector(__builtin_convertvector(a, Wide) * b >> 16, Words);
#endif
}

#ifdef __x86_64__
// A register of bytes as words.
[[gnu::always_inline]] inline Register words_at(const u8 *bytes) {
#if defined(JORM_LEVEL_avx512)
    return _mm512_maskz_cvtepu8_epi16(~__mmask32(0), _mm256_loadu_si256((const __m256i *)bytes));
#elif defined(JORM_LEVEL_avx2)
    return _mm256_cvtepu8_epi16(_mm_loadu_si128((const __m128i *)bytes));
#else
    return _mm_unpacklo_epi8(_mm_loadl_epi64((const __m128i *)bytes), _mm_setzero_si128());
#endif
}

// Two words of each column by two weights, summed up: a register of columns as two of sums, the halves of each 128 bits
// of columns apart.
struct WeightedWords {
    Register low = {}, high = {};

    [[gnu::always_inline]] void add(Register weights, Register a, Register b) {
        low = sum(low, product(JORM_OF_REGISTER(unpacklo_epi16)(a, b), weights));
        high = sum(high, product(JORM_OF_REGISTER(unpackhi_epi16)(a, b), weights));
    }
    // The sums in that order, and in the order of columns.
    [[gnu::always_inline]] void get(Numbers &first, Numbers &second) const {
        first = numbers(low);
        second = numbers(high);
    }
    [[gnu::always_inline]] void get_in_order(Numbers &first, Numbers &second) const {
#if defined(JORM_LEVEL_avx512)
        const __m512i from = _mm512_setr_epi32(0, 1, 2, 3, 16, 17, 18, 19, 4, 5, 6, 7, 20, 21, 22, 23);
        first = numbers(_mm512_permutex2var_epi32(low, from, high));
        second = numbers(_mm512_permutex2var_epi32(low, _mm512_add_epi32(from, _mm512_set1_epi32(8)), high));
#elif defined(JORM_LEVEL_avx2)
        first = numbers(_mm256_permute2x128_si256(low, high, 0x20));
        second = numbers(_mm256_permute2x128_si256(low, high, 0x31));
#else
        get(first, second);
#endif
    }

private:
    static Register sum(Register a, Register b) { return JORM_OF_REGISTER(add_epi32)(a, b); }
    static Register product(Register a, Register b) { return JORM_OF_REGISTER(madd_epi16)(a, b); }
    static Numbers numbers(Register a) {
#ifdef JORM_LEVEL_avx512
        return Numbers(_mm512_maskz_cvtepi32_ps(0xffff, a));
#else
        return Numbers(JORM_OF_REGISTER(cvtepi32_ps)(a));
#endif
    }
};

// A register of words from two of numbers: to nearest even, clamped, the halves of each 128 bits from either.
[[gnu::always_inline]] inline Register rounded_words(Numbers a, Numbers b) {
#if defined(JORM_LEVEL_avx512)
    return _mm512_packs_epi32(_mm512_maskz_cvtps_epi32(0xffff, a), _mm512_maskz_cvtps_epi32(0xffff, b));
#elif defined(JORM_LEVEL_avx2)
    return _mm256_packs_epi32(_mm256_cvtps_epi32(a), _mm256_cvtps_epi32(b));
#else
    return _mm_packs_epi32(_mm_cvtps_epi32(a), _mm_cvtps_epi32(b));
#endif
}
[[gnu::always_inline]] inline void store_register(s16 *to, const Numbers *from) {
    Register words = rounded_words(from[0], from[1]);
#if defined(JORM_LEVEL_avx512)
    words = _mm512_maskz_permutexvar_epi64(0xff, _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), words);
#elif defined(JORM_LEVEL_avx2)
    words = _mm256_permute4x64_epi64(words, 0xd8);
#endif
    __builtin_memcpy(to, &words, sizeof words);
}
[[gnu::always_inline]] inline void store_register(u8 *to, const Numbers *from) {
    Register bytes = JORM_OF_REGISTER(packus_epi16)(rounded_words(from[0], from[1]), rounded_words(from[2], from[3]));
#if defined(JORM_LEVEL_avx512)
    bytes = _mm512_maskz_permutexvar_epi32(
        0xffff, _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), bytes);
#elif defined(JORM_LEVEL_avx2)
    bytes = _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
#endif
    __builtin_memcpy(to, &bytes, sizeof bytes);
}

#endif

} // namespace
} // namespace jorm::JORM_LEVEL
