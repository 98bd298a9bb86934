// Rows of small pictures.
#include "filter/folded_rows.hpp"
#include "kernel/level_words.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// N bytes of every row at a time, down the picture: rows are too short for a loop along each.
template <int N>
void copy_by(char *to, int64_t to_pitch, const char *from, int64_t from_pitch, int64_t rows, int64_t bytes) {
    for (int64_t i = 0;; i = i + 2 * N <= bytes ? i + N : bytes - N) {
        for (int64_t r = 0; r < rows; ++r) __builtin_memcpy(to + r * to_pitch + i, from + r * from_pitch + i, N);
        if (i + N == bytes) return;
    }
}
void copy(char *to, int64_t to_pitch, const char *from, int64_t from_pitch, int64_t rows, int64_t bytes) {
    const auto by = bytes >= 64   ? copy_by<64>
                    : bytes >= 32 ? copy_by<32>
                    : bytes >= 16 ? copy_by<16>
                    : bytes >= 8  ? copy_by<8>
                    : bytes >= 4  ? copy_by<4>
                    : bytes >= 2  ? copy_by<2>
                                  : copy_by<1>;
    by(to, to_pitch, from, from_pitch, rows, bytes);
}

// Bytes of a pair of registers.
using Bytes16 = VectorOf<u8, 16>;
#if defined(JORM_LEVEL_base) && defined(__x86_64__) // has no instruction for it
constexpr auto fill_gaps = nullptr;
#else
struct Chosen {
#if defined(__x86_64__)
    __m128i before, after; // a byte beyond 127 chooses a zero
    explicit Chosen(const u8 *from) {
        const __m128i place = _mm_loadu_si128((const __m128i *)from), half = _mm_set1_epi8(16);
        before = _mm_or_si128(place, _mm_cmpgt_epi8(place, _mm_set1_epi8(15)));
        after = _mm_sub_epi8(place, half);
    }
    Bytes16 of(Bytes16 a, Bytes16 b) const {
        return Bytes16(_mm_or_si128(_mm_shuffle_epi8(__m128i(a), before), _mm_shuffle_epi8(__m128i(b), after)));
    }
#else
    Bytes16 place;
    explicit Chosen(const u8 *from) : place(read<Bytes16>(from)) {}
    Bytes16 of(Bytes16 a, Bytes16 b) const {
        Bytes16 to;
        for (int i = 0; i < 16; ++i) to[i] = place[i] < 16 ? a[place[i]] : b[place[i] - 16];
        return to;
    }
#endif
};
void fill_gaps(char *end, int64_t pitch, int64_t rows, const FoldGap &gap) {
    const Chosen first(gap.from), second(gap.from + 16);
    const bool two = gap.bytes > 16;
    for (int64_t r = 0; r < rows; ++r, end += pitch) {
        const auto before = read<Bytes16>(end - 16), after = read<Bytes16>(end + gap.bytes);
        const Bytes16 one = first.of(before, after), other = second.of(before, after);
        __builtin_memcpy(end, &one, 16);
        if (two) __builtin_memcpy(end + 16, &other, 16);
    }
}
#endif

} // namespace

extern const FoldedRows folded_rows[];
const FoldedRows folded_rows[] = {{copy, fill_gaps}};

} // namespace jorm::JORM_LEVEL
