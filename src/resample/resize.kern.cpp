// Rows of resized pictures by shuffles of bytes.
#include "kernel/level_vectors.hpp"
#include "resample/resize_rows.hpp"

namespace jorm::JORM_LEVEL {

extern const ResizeRows resize_rows[];

#ifdef __SSSE3__
namespace {

template <int Windows> [[gnu::always_inline]] inline __m128i shuffled(const char *src, const uint8_t *picks) {
    __m128i all = _mm_setzero_si128();
    for (int w = 0; w < Windows; ++w) {
        const __m128i window = _mm_loadu_si128((const __m128i *)(src + w * shuffle_block));
        const __m128i pick = _mm_load_si128((const __m128i *)(picks + w * shuffle_block));
        all = _mm_or_si128(all, _mm_shuffle_epi8(window, pick));
    }
    return all;
}

template <int Windows> void shuffle(char *__restrict dst, const char *src, const ShufflePlan &plan) {
    const uint8_t *picks = plan.picks;
    const int64_t *from = plan.from;
    const int64_t last = plan.bytes - shuffle_block;
    for (int64_t x = 0; x < last; x += shuffle_block, picks += Windows * shuffle_block)
        _mm_storeu_si128((__m128i *)(dst + x), shuffled<Windows>(src + *from++, picks));
    _mm_storeu_si128((__m128i *)(dst + last), shuffled<Windows>(src + *from, picks));
}

} // namespace

const ResizeRows resize_rows[] = {{{shuffle<1>, shuffle<2>, shuffle<3>, shuffle<4>}}};
#else
const ResizeRows resize_rows[] = {{{nullptr, nullptr, nullptr, nullptr}}};
#endif

} // namespace jorm::JORM_LEVEL
