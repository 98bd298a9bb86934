// Stores that go past the cache.
#include "kernel/row.hpp"

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
constexpr StreamCopy copy = stream;
#else
constexpr StreamCopy copy = nullptr;
#endif

} // namespace

extern const StreamCopy stream_copy[];
const StreamCopy stream_copy[] = {copy};

} // namespace jorm::JORM_LEVEL
