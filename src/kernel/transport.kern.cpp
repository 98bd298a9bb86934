// Transport of elements: strided reading and writing, and stores that go past the cache.
#include "kernel/transport.hpp"

#ifdef JORM_LEVEL_avx512
#include <immintrin.h>
#endif

namespace jorm::JORM_LEVEL {
namespace {

// Whole cache lines in one store; narrower streaming stores are slower than what they save.
#ifdef JORM_LEVEL_avx512
void stream(void *to, const void *from, int64_t bytes) {
    constexpr int64_t line = 64;
    char *t = static_cast<char *>(to);
    const char *f = static_cast<const char *>(from);
    const int64_t before = int64_t(-reinterpret_cast<uintptr_t>(t) & (line - 1));
    const int64_t head = bytes < before ? bytes : before;
    const int64_t end = head + (bytes - head) / line * line;
    for (int64_t i = 0; i < head; ++i) t[i] = f[i];
    for (int64_t i = head; i < end; i += line)
        _mm512_stream_si512(reinterpret_cast<__m512i *>(t + i), _mm512_loadu_si512(f + i));
    for (int64_t i = end; i < bytes; ++i) t[i] = f[i];
    if (bytes == 0) _mm_sfence();
}
#else
constexpr decltype(Transport::stream) stream = nullptr;
#endif

template <class T> [[gnu::always_inline]] inline void move(char *to, const char *from) {
    __builtin_memcpy(to, from, sizeof(T));
}

// Steps that the compiler knows become shuffles of whole vectors.
template <class T, int Step> void gather_steps(char *__restrict to, const char *__restrict from, int64_t n) {
    for (int64_t i = 0; i < n; ++i) move<T>(to + i * sizeof(T), from + i * Step * sizeof(T));
}
template <class T, int Repeat> void gather_repeats(char *__restrict to, const char *__restrict from, int64_t n) {
    for (int64_t i = 0; i < n / Repeat; ++i)
        for (int k = 0; k < Repeat; ++k) move<T>(to + (i * Repeat + k) * sizeof(T), from + i * sizeof(T));
}

template <class T> void gather(void *to, const char *from, int64_t stride, int32_t repeat, int64_t n) {
    char *const t = static_cast<char *>(to);
    constexpr int64_t element = sizeof(T);
    if (repeat == 1 && stride == 2 * element) return gather_steps<T, 2>(t, from, n);
    if (repeat == 1 && stride == 3 * element) return gather_steps<T, 3>(t, from, n);
    if (repeat == 1 && stride == 4 * element) return gather_steps<T, 4>(t, from, n);
    if (repeat == 2 && stride == element) return gather_repeats<T, 2>(t, from, n);
    if (repeat == 3 && stride == element) return gather_repeats<T, 3>(t, from, n);
    if (repeat == 4 && stride == element) return gather_repeats<T, 4>(t, from, n);
    for (int64_t i = 0; i < n; i += repeat, from += stride)
        for (int k = 0; k < repeat; ++k) move<T>(t + (i + k) * element, from);
}

template <class T> void scatter(char *to, int64_t stride, const void *from, int64_t n) {
    const char *const f = static_cast<const char *>(from);
    for (int64_t i = 0; i < n; ++i, to += stride) move<T>(to, f + i * sizeof(T));
}

} // namespace

extern const Transport transports[];
const Transport transports[] = {{stream,
                                 {gather<uint8_t>, gather<uint16_t>, gather<uint32_t>, gather<uint64_t>},
                                 {scatter<uint8_t>, scatter<uint16_t>, scatter<uint32_t>, scatter<uint64_t>}}};

} // namespace jorm::JORM_LEVEL
