// Rows of histograms.
#include "kernel/level_ops.hpp"
#include "stats/histogram_rows.hpp"

namespace jorm::JORM_LEVEL {
namespace {

using u16 = uint16_t;
using u32 = uint32_t;
using u64 = uint64_t;

// ------------------------------------------------- bytes, by their values

// Counts the elements of a word, the lowest first, into counters `way` and on.
template <class T> [[gnu::always_inline]] inline void count_word(u32 *counters, const T *x, int way) {
    constexpr int each = 8 / int(sizeof(T));
    u64 word;
    __builtin_memcpy(&word, x, sizeof word);
    for (int k = 0; k < each; ++k) ++counters[(word >> bits<T> * k & T(-1)) * byte_ways + way + k];
}
template <class T> [[gnu::always_inline]] inline void count_values(u32 *counters, const T *x, int64_t n) {
    constexpr int each = 8 / int(sizeof(T));
    int64_t i = 0;
    for (; n - i >= byte_ways; i += byte_ways)
        for (int k = 0; k < byte_ways; k += each) count_word(counters, x + i + k, k);
    for (int k = 0; k < int(n - i); ++k) ++counters[x[i + k] * byte_ways + k];
}

void count_bytes(void *state, const void *const *src, int64_t n, const RowParams &) {
    count_values(elements<HistogramState>(state)->counters, elements<u8>(src[0]), n);
}

void count_masked_bytes(void *state, const void *const *src, int64_t n, const RowParams &) {
    constexpr int block = 512;
    const HistogramState &s = *elements<HistogramState>(state);
    const u8 *x = elements<u8>(src[0]), *mask = elements<u8>(src[1]), unselected = s.unselected;
    u16 group[block];
    for (int64_t i = 0; i < n; i += block) {
        const int m = n - i < block ? int(n - i) : block;
        for (int k = 0; k < m; ++k) {
            const u16 out = mask[i + k] == unselected;
            group[k] = u16((x[i + k] & (out - 1)) | out * (byte_groups - 1));
        }
        count_values(s.counters, group, m);
    }
}

// ---------------------------------------------------------- samples, by bin

constexpr int block = 256;
static_assert(block % real_sums == 0);

template <class T, BinRule rule>
[[gnu::always_inline]] inline void find_bins(u32 *bin, const T *x, int n, const HistogramState &s) {
    const u32 last = s.last;
    if constexpr (is_real<T>) {
        const f32 lo = s.flo, hi = s.fhi;
        const f64 factor = s.factor, top = s.last;
        for (int i = 0; i < n; ++i) {
            f64 at = f64(x[i] - lo) * factor;
            at = at >= top ? top : at;
            at = at >= 1 ? at : 0;
            const u32 inside = rule == BinRule::wide ? u32(s64(at)) : u32(s32(at));
            bin[i] = x[i] < lo ? 0 : x[i] > hi ? last : inside;
        }
    } else if constexpr (rule == BinRule::wide) {
        for (int i = 0; i < n; ++i) bin[i] = bin_of(s, x[i]);
    } else {
        const s32 lo = s.lo, hi = s.hi;
        const f64 bins = f64(s.bins), width = f64(s.width);
        for (int i = 0; i < n; ++i) {
            const s32 v = x[i], y = v < lo ? lo : v > hi ? hi : v;
            u32 inside = u32(y) - u32(lo);
            // Exact: the quotient of whole numbers whose sum double precision holds is never rounded up to the next.
            if (rule == BinRule::scaled) inside = u32(s32((f64(y) - f64(lo)) * bins / width));
            bin[i] = v < lo ? 0 : v > hi ? last : inside;
        }
    }
}

template <class T> [[gnu::always_inline]] inline void find_bins(u32 *bin, const T *x, int n, const HistogramState &s) {
    if (s.rule == BinRule::wide) return find_bins<T, BinRule::wide>(bin, x, n, s);
    if (!is_real<T> && s.rule == BinRule::unit) return find_bins<T, BinRule::unit>(bin, x, n, s);
    find_bins<T, BinRule::scaled>(bin, x, n, s);
}
// Bytes that are not counted by their values are few: loops for words do.
[[gnu::noinline]] void find_bins_of_words(u32 *bin, const s16 *x, int n, const HistogramState &s) {
    find_bins(bin, x, n, s);
}
template <class T>
[[gnu::always_inline]] inline void find_any_bins(u32 *bin, const T *x, int n, const HistogramState &s) {
    if constexpr (sizeof(T) > 1)
        find_bins(bin, x, n, s);
    else {
        s16 word[block];
        for (int i = 0; i < n; ++i) word[i] = x[i];
        find_bins_of_words(bin, word, n, s);
    }
}

// Adds up the samples that count.
[[gnu::always_inline]] inline void add_up(HistogramState &s, const f32 *x, const u32 *counts, int n) {
    f64 sum[real_sums];
    for (int w = 0; w < real_sums; ++w) sum[w] = s.sum[(w + s.phase) % real_sums];
    int k = 0;
    for (; n - k >= real_sums; k += real_sums)
        for (int w = 0; w < real_sums; ++w) sum[w] += counts[k + w] != 0 ? x[k + w] : 0;
    for (int w = 0; w < n - k; ++w) sum[w] += counts[k + w] != 0 ? x[k + w] : 0;
    for (int w = 0; w < real_sums; ++w) s.sum[(w + s.phase) % real_sums] = sum[w];
    s.phase = (s.phase + n) % real_sums;
}

template <class T, bool Masked> void count_samples(void *state, const void *const *src, int64_t n, const RowParams &) {
    HistogramState &s = *elements<HistogramState>(state);
    const T *x = elements<T>(src[0]);
    const u8 *mask = Masked ? elements<u8>(src[1]) : nullptr, unselected = s.unselected;
    const s64 step = s.step;
    u32 *const way[bin_ways] = {s.counters, s.counters + s.spread, s.counters + 2 * s.spread,
                                s.counters + 3 * s.spread};
    u32 bin[block], counts[block]; // how often a sample counts: once, or not at all
    for (int64_t i = 0; i < n; i += block, x += block) {
        const int m = n - i < block ? int(n - i) : block;
        find_any_bins(bin, x, m, s);
        if (Masked || is_real<T>)
            for (int k = 0; k < m; ++k) counts[k] = (!Masked || mask[i + k] != unselected) && x[k] == x[k];
        const auto count = [&](int k, int w) __attribute__((always_inline)) {
            way[w][bin[k] * step] += Masked || is_real<T> ? counts[k] : 1;
        };
        int k = 0;
        for (; m - k >= bin_ways; k += bin_ways)
            for (int w = 0; w < bin_ways; ++w) count(k + w, w);
        for (; k < m; ++k) count(k, 0);
        if constexpr (is_real<T>) add_up(s, x, counts, m);
    }
}

// The sum of each group of counters.
template <int Ways> void fold(void *dst, const void *const *src, int64_t n, const RowParams &) {
    u32 *to = elements<u32>(dst);
    const u32 *from = elements<u32>(src[0]);
    for (int64_t i = 0; i < n; ++i) {
        u32 sum = 0;
        for (int k = 0; k < Ways; ++k) sum += from[i * Ways + k];
        to[i] = sum;
    }
}

} // namespace

#define LINE(row) row, nullptr, nullptr, nullptr
extern const Row histogram_rows[], masked_histogram_rows[], byte_rows[], masked_byte_rows[], fold_rows[];
const Row histogram_rows[] = {LINE((count_samples<u8, false>)), LINE((count_samples<s8, false>)),
                              LINE((count_samples<s16, false>)), LINE((count_samples<s32, false>)),
                              LINE((count_samples<f32, false>))};
const Row masked_histogram_rows[] = {LINE((count_samples<u8, true>)), LINE(nullptr), LINE((count_samples<s16, true>)),
                                     LINE((count_samples<s32, true>)), LINE((count_samples<f32, true>))};
const Row byte_rows[] = {LINE(count_bytes)}, masked_byte_rows[] = {LINE(count_masked_bytes)};
const Row fold_rows[] = {fold<byte_ways>, fold<bin_ways>};

} // namespace jorm::JORM_LEVEL
