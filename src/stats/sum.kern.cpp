// Rows of sums.
#include "kernel/level_ops.hpp"
#include "stats/sum_rows.hpp"

namespace jorm::JORM_LEVEL {
namespace {

inline int64_t least(int64_t a, int64_t b) { return a < b ? a : b; }

// The samples of a row; those that the mask leaves out are 0.
template <class T, bool Masked> struct Samples {
    const T *value;
    const u8 *mask;
    u8 unselected;

    Samples(const void *const *src, const SumState &state)
        : value(elements<T>(src[0])), mask(Masked ? elements<u8>(src[1]) : nullptr), unselected(state.unselected) {}
    [[gnu::always_inline]] T operator[](int64_t i) const { return Masked && mask[i] == unselected ? T(0) : value[i]; }
};

// Whole numbers: lane k of narrow counters takes every sample that lies k beyond a multiple of the lanes, which are a
// multiple of the channels. They are flushed before they can overflow.
template <class T> struct Lanes;
template <> struct Lanes<u8> {
    using Counter = uint16_t;
    static constexpr int64_t rounds = 256;
};
template <> struct Lanes<s16> {
    using Counter = s32;
    static constexpr int64_t rounds = 32768;
};
template <> struct Lanes<s32> {
    using Counter = s64;
    static constexpr int64_t rounds = s64(1) << 30;
};

template <class T, int C, bool Masked>
void sum_whole(void *state, const void *const *src, int64_t n, const RowParams &) {
    constexpr int lanes = C == 3 ? 192 : 64;
    SumState &sum = *elements<SumState>(state);
    const Samples<T, Masked> x(src, sum);
    for (int64_t i = 0; i < n;) {
        typename Lanes<T>::Counter lane[lanes] = {};
        const int64_t end = i + least(Lanes<T>::rounds, (n - i) / lanes) * lanes;
        for (; i < end; i += lanes)
            for (int k = 0; k < lanes; ++k) lane[k] += x[i + k];
        if (n - i < lanes) {
            for (int k = 0; k < int(n - i); ++k) lane[k] += x[i + k];
            i = n;
        }
        s64 total[C] = {};
        for (int k = 0; k < lanes; k += C)
            for (int c = 0; c < C; ++c) total[c] += lane[k + c];
        for (int c = 0; c < C; ++c) sum.whole[c] += total[c];
    }
}

// One channel of bytes: processors add up the differences of many bytes at once, and the compiler sees that the loop
// asks for those, as long as it does not know that they are the differences to 0. Four quarters at a time, because one
// chain of additions would wait for each.
template <bool Masked> void sum_bytes(void *state, const void *const *src, int64_t n, const RowParams &) {
    constexpr int64_t block = 1 << 23; // what 32 bits hold
    SumState &sum = *elements<SumState>(state);
    const Samples<u8, Masked> x(src, sum);
    u8 zero = 0;
    asm("" : "+r"(zero));
    const auto value = [=](int64_t i) {
        const s32 difference = s32(x[i]) - s32(zero);
        return difference < 0 ? -difference : difference;
    };
    for (int64_t i = 0; i < n;) {
        s32 total[4] = {};
        const int64_t quarter = least(block, (n - i) / 256 * 64);
        for (int64_t k = i; k < i + quarter; ++k)
            for (int q = 0; q < 4; ++q) total[q] += value(k + q * quarter);
        i += 4 * quarter;
        if (n - i < 256)
            for (; i < n; ++i) total[0] += value(i);
        sum.whole[0] += s64(total[0]) + total[1] + total[2] + total[3];
    }
}

template <int C, bool Masked> void sum_real(void *state, const void *const *src, int64_t n, const RowParams &) {
    constexpr int lanes = sum_partials * C;
    SumState &sum = *elements<SumState>(state);
    const Samples<f32, Masked> x(src, sum);
    int64_t i = 0;
    if (sum.phase < 0) {
        for (int k = 0; k < lanes; ++k) sum.partial[k] = 0;
        sum.phase = 0;
    }
    if (sum.phase != 0) { // up to the first partial sum
        const int head = int(least(n, lanes - sum.phase));
        for (int k = 0; k < head; ++k) sum.partial[sum.phase + k] += x[k];
        i = head;
    }
    f64 lane[lanes];
    for (int k = 0; k < lanes; ++k) lane[k] = sum.partial[k];
    for (; n - i >= lanes; i += lanes)
        for (int k = 0; k < lanes; ++k) lane[k] += x[i + k];
    for (int k = 0; k < lanes; ++k) sum.partial[k] = lane[k];
    for (int k = 0; k < int(n - i); ++k) sum.partial[k] += x[i + k];
    sum.phase = int32_t((sum.phase + n) % lanes);
}

// The mask elements that select.
void count(void *state, const void *const *src, int64_t n, const RowParams &) {
    constexpr int64_t block = 1 << 30;
    SumState &sum = *elements<SumState>(state);
    const u8 *mask = elements<u8>(src[0]), unselected = sum.unselected;
    for (int64_t i = 0; i < n;) {
        s32 selected = 0;
        for (const int64_t end = i + least(block, n - i); i < end; ++i) selected += mask[i] != unselected;
        sum.whole[0] += selected;
    }
}

} // namespace

#define ROWS_OF_WHOLE(T, Masked) sum_whole<T, 1, Masked>, nullptr, sum_whole<T, 3, Masked>, sum_whole<T, 4, Masked>
#define ROWS(Masked)                                                                                                   \
    sum_bytes<Masked>, nullptr, sum_whole<u8, 3, Masked>, sum_whole<u8, 4, Masked>, ROWS_OF_WHOLE(s16, Masked),        \
        ROWS_OF_WHOLE(s32, Masked), sum_real<1, Masked>, nullptr, sum_real<3, Masked>, sum_real<4, Masked>

extern const Row sum_rows[], masked_sum_rows[], selection_rows[];
const Row sum_rows[] = {ROWS(false)};
const Row masked_sum_rows[] = {ROWS(true)};
const Row selection_rows[] = {count};

} // namespace jorm::JORM_LEVEL
