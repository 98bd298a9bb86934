// Rows of means.
#include "filter/column_rows.kern.hpp"
#include "filter/mean_rows.hpp"
#include "kernel/level_words.hpp"

namespace jorm::JORM_LEVEL {
namespace {

using u16 = uint16_t;

// ---- Small windows of bytes: two columns in a word, no element ever changes its place ----

[[gnu::always_inline]] inline u16 word_at(const u8 *row, int64_t i) {
    u16 w;
    __builtin_memcpy(&w, row + 2 * i, sizeof w);
    return w;
}
// Of words, or of vectors of them.
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
template <class W> [[gnu::always_inline]] inline W even_of(W w) { return W(w >> 8); }
template <class W> [[gnu::always_inline]] inline W odd_of(W w) { return W(w & 255); }
template <class W> [[gnu::always_inline]] inline W pair_of(W even, W odd) { return W(even << 8 | odd); }
#else
template <class W> [[gnu::always_inline]] inline W even_of(W w) { return W(w & 255); }
template <class W> [[gnu::always_inline]] inline W odd_of(W w) { return W(w >> 8); }
template <class W> [[gnu::always_inline]] inline W pair_of(W even, W odd) { return W(even | odd << 8); }
#endif

void gather_bytes(u16 *even, u16 *odd, const u8 *const *rows, int64_t count, int64_t n) {
    const auto both = [&]<int N>(Count<N>, int64_t i) __attribute__((always_inline)) { // columns 2 i and 2 i + 1
        using V = VectorOf<u16, N>;
        V e[1] = {}, o[1] = {};
        for (int64_t k = 0; k < count; ++k) {
            const V w = read<V>(rows[k] + 2 * i);
            e[0] += even_of(w);
            o[0] += odd_of(w);
        }
        __builtin_memcpy(even + i, e, sizeof e);
        __builtin_memcpy(odd + i, o, sizeof o);
    };
    constexpr int words = register_bytes / 2;
    if (n >= register_bytes)
        each_register<words, 1>(
            n / 2, [&](Count<1>, int64_t i) __attribute__((always_inline)) { both(Count<words>(), i); });
    else
        for (int64_t i = 0; i < n / 2; ++i) both(Count<1>(), i);
    if (n & 1) {
        even[n / 2] = 0;
        for (int64_t k = 0; k < count; ++k) even[n / 2] = u16(even[n / 2] + rows[k][n - 1]);
    }
}

void slide_bytes(u16 *even, u16 *odd, const u8 *in, const u8 *out, int64_t n) {
    u16 *__restrict e = even, *__restrict o = odd;
    for (int64_t i = 0; i < n / 2; ++i) {
        const u16 a = word_at(in, i), b = word_at(out, i);
        e[i] = u16(e[i] + even_of(a) - even_of(b));
        o[i] = u16(o[i] + odd_of(a) - odd_of(b));
    }
    if (n & 1) e[n / 2] = u16(e[n / 2] + in[n - 1] - out[n - 1]);
}

// Of words, or of vectors of them.
[[gnu::always_inline]] inline u16 high_words(u16 a, u16 b) { return u16(uint32_t(a) * b >> 16); }
[[gnu::always_inline]] inline u16 where_equal(u16 a, u16 b) { return a == b ? 0xffff : 0; }
[[gnu::always_inline]] inline Words where_equal(Words a, Words b) { return Words(a == b); }

template <bool Even, class W>
[[gnu::always_inline]] inline W mean_of(W sum, u16 half, u16 area, u16 factor, u16 shift) {
    const W t = W(sum + half), q = high_words(high_words(t, factor), shift);
    if constexpr (Even)
        return W(q - (where_equal(W(q * area), t) & q & 1)); // a tie
    else
        return q;
}

// Of Many registers, or of a word, of the windows that begin at columns 2i and 2i + 1: pairs of results. The number of
// columns is looked at as the registers gather, or every width would have loops of its own.
template <bool OddWidth, bool EvenArea, class W, int Many>
[[gnu::always_inline]] inline void mean_pairs(u8 *to, const u16 *even, const u16 *odd, int64_t i, const ByteMean &m) {
    constexpr int size = int(sizeof(W)) / int(sizeof(u16));
    const u16 half = m.area / 2, area = m.area, factor = m.factor, shift = m.shift;
    const int64_t last = m.width / 2;
    const u16 *const e = even + i, *const o = odd + i;
    W shared[Many];
    for (int j = 0; j < Many; ++j) shared[j] = read<W>(o + j * size);
    for (int64_t k = 1; k < last; ++k)
        for (int j = 0; j < Many; ++j) shared[j] = W(shared[j] + read<W>(e + k + j * size) + read<W>(o + k + j * size));
    for (int j = 0; j < Many; ++j) {
        const W first = read<W>(e + j * size), beyond = read<W>(e + last + j * size);
        W both = shared[j], next = beyond;
        if constexpr (OddWidth) {
            both = W(both + beyond);
            next = read<W>(o + last + j * size);
        }
        const W pairs = pair_of(mean_of<EvenArea>(W(both + first), half, area, factor, shift),
                                mean_of<EvenArea>(W(both + next), half, area, factor, shift));
        __builtin_memcpy(to + 2 * (i + j * size), &pairs, sizeof pairs);
    }
}

template <bool OddWidth, bool EvenArea>
void mean_bytes_of(u8 *to, const u16 *even, const u16 *odd, int64_t n, const ByteMean &m) {
    constexpr int64_t size = register_bytes / 2, many = 4;
    const auto single = [&](int64_t i) { // the row of sums has room for the second one
        u8 pair[2];
        mean_pairs<OddWidth, EvenArea, u16, 1>(pair, even + i, odd + i, 0, m);
        return u16(pair[1] << 8 | pair[0]);
    };
    if (m.phase == 1 && n > 0) {
        *to++ = u8(single(0) >> 8);
        --n;
        ++even;
        ++odd;
    }
    const int64_t words = n / 2;
    int64_t i = 0;
    for (; i + many * size <= words; i += many * size) mean_pairs<OddWidth, EvenArea, Words, many>(to, even, odd, i, m);
    if (words < size) {
        u8 room[register_bytes];
        mean_pairs<OddWidth, EvenArea, Words, 1>(room, even, odd, 0, m);
        __builtin_memcpy(to, room, static_cast<unsigned long>(2 * words));
        i = words;
    }
    for (; i < words; i += size) // some of them twice
        mean_pairs<OddWidth, EvenArea, Words, 1>(to, even, odd, i + size <= words ? i : words - size, m);
    if (n & 1) to[n - 1] = u8(single(words));
}

void mean_bytes(u8 *to, const u16 *even, const u16 *odd, int64_t n, const ByteMean &m) {
    if (m.width & 1)
        return m.area & 1 ? mean_bytes_of<true, false>(to, even, odd, n, m)
                          : mean_bytes_of<true, true>(to, even, odd, n, m);
    return m.area & 1 ? mean_bytes_of<false, false>(to, even, odd, n, m)
                      : mean_bytes_of<false, true>(to, even, odd, n, m);
}

// ---- Windows of 3 or 5 rows and columns: all in registers ----

// Sums of even and of odd columns.
struct ColumnPairs {
    Words even, odd;
};

// One row of results, or two, whose windows share all rows but one.
template <int Width, int Height, bool Two>
void small_means_of(u8 *const *to, const u8 *const *rows, int64_t n, const ByteMean &m) {
    u8 *const t = to[0], *const u = to[1];
    const u8 *r[Height + Two];
    for (int k = 0; k < Height + Two; ++k) r[k] = rows[k];
    const u16 half = m.area / 2, factor = m.factor, shift = m.shift;

    // From column i on, for both rows.
    const auto columns = [&](int64_t i, ColumnPairs & a, ColumnPairs & b) __attribute__((always_inline)) {
        const auto row = [&](int k) __attribute__((always_inline)) { return read<Words>(r[k] + i); };
        Words even = even_of(row(1)), odd = odd_of(row(1));
        for (int k = 2; k < Height; ++k) {
            even += even_of(row(k));
            odd += odd_of(row(k));
        }
        a = {even + even_of(row(0)), odd + odd_of(row(0))};
        if constexpr (Two) b = {even + even_of(row(Height)), odd + odd_of(row(Height))};
    };
    const auto mean = [&](Words sum) __attribute__((always_inline)) {
#ifdef __SSSE3__
        if constexpr (Width * Height == 9) // rounding the product does
            return Words(JORM_OF_REGISTER(mulhrs_epi16)(Register(sum), Register(u16(3641) - Words{})));
#endif
        return high_words(high_words(sum + half, factor), shift);
    };
    const auto store = [&](u8 * at, ColumnPairs before, ColumnPairs here, ColumnPairs after)
        __attribute__((always_inline)) {
        const Words both = here.even + here.odd;
        Words first = both, second = both;
        if constexpr (Width == 3) {
            first += bytes_from<register_bytes - 2>(before.odd, here.odd);
            second += bytes_from<2>(here.even, after.even);
        } else {
            first +=
                bytes_from<register_bytes - 2>(before.even + before.odd, both) + bytes_from<2>(here.even, after.even);
            second +=
                bytes_from<register_bytes - 2>(before.odd, here.odd) + bytes_from<2>(both, after.even + after.odd);
        }
        const Words pairs = pair_of(mean(first), mean(second));
        __builtin_memcpy(at, &pairs, sizeof pairs);
    };
    const auto store_both = [&](int64_t i, ColumnPairs a, ColumnPairs b, ColumnPairs c, ColumnPairs d, ColumnPairs e,
                                ColumnPairs f) __attribute__((always_inline)) {
        store(t + i, a, c, e);
        if constexpr (Two) store(u + i, b, d, f);
    };

    ColumnPairs a, b = {}, c, d = {}, e, f = {};
    columns(0, c, d);
    a = c;
    b = d;
    int64_t i = 0;
    for (; i + 2 * register_bytes <= n; i += register_bytes) {
        columns(i + register_bytes, e, f);
        store_both(i, a, b, c, d, e, f);
        a = c;
        b = d;
        c = e;
        d = f;
    }
    if (i + register_bytes < n) { // the rest, some of it once more
        i = n - register_bytes;
        columns(i - 2 * register_bytes, a, b);
        columns(i - register_bytes, c, d);
        columns(i, e, f);
        store_both(i - register_bytes, a, b, c, d, e, f);
        a = c;
        b = d;
        c = e;
        d = f;
    }
    store_both(i, a, b, c, d, c, d); // what lies beside the row counts as anything
}

template <int Width, int Height>
void small_means_of(u8 *const *to, const u8 *const *rows, int64_t n, const ByteMean &m) {
    return to[1] ? small_means_of<Width, Height, true>(to, rows, n, m)
                 : small_means_of<Width, Height, false>(to, rows, n, m);
}
void small_means(u8 *const *to, const u8 *const *rows, int64_t height, int64_t n, const ByteMean &m) {
    if (m.width == 3) return height == 3 ? small_means_of<3, 3>(to, rows, n, m) : small_means_of<3, 5>(to, rows, n, m);
    return height == 3 ? small_means_of<5, 3>(to, rows, n, m) : small_means_of<5, 5>(to, rows, n, m);
}

// ---- Large windows of bytes: differences of sums from the beginning of the row ----

constexpr int lanes = register_bytes / 4;
#if defined(JORM_LEVEL_avx512)
#define LANES 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15
#elif defined(JORM_LEVEL_avx2)
#define LANES 0, 1, 2, 3, 4, 5, 6, 7
#else
#define LANES 0, 1, 2, 3
#endif
using WideLanes = VectorOf<uint32_t, lanes>;

[[gnu::always_inline]] inline WideLanes load_lanes(const u16 *p) {
    return converted<uint32_t, lanes, u16>(read<VectorOf<u16, lanes>>(p));
}
template <int... I> struct LaneList {
    // K lanes up; zeros come in.
    template <int K> [[gnu::always_inline]] static WideLanes up(WideLanes v) {
        return __builtin_shufflevector(WideLanes{}, v, (I < K ? I : lanes + I - K)...);
    }
    [[gnu::always_inline]] static WideLanes last(WideLanes v) {
        return __builtin_shufflevector(v, v, (I * 0 + lanes - 1)...);
    }
};

void add_up(uint32_t *before, const u16 *even, const u16 *odd, int64_t n) {
    using L = LaneList<LANES>;
    WideLanes carry = {};
    for (int64_t i = 0; i < n; i += lanes) {
        const WideLanes x = load_lanes(even + i) + load_lanes(odd + i);
        WideLanes sum = x + L::up<1>(x);
        sum += L::up<2>(sum);
        if constexpr (lanes > 4) sum += L::up<4>(sum);
        if constexpr (lanes > 8) sum += L::up<8>(sum);
        const WideLanes all = carry + (sum - x);
        __builtin_memcpy(before + i, &all, sizeof all);
        carry += L::last(sum);
    }
}
#undef LANES

// In single precision the product misses the quotient by less than 2^-15, which no odd area comes near a tie by. Of
// even ones the first addition rounds to 2^-14, so that ties become exact.
template <bool OddWidth>
void wide_mean_of(u8 *to, const uint32_t *before, const u16 *even, const u16 *odd, int64_t n, const ByteMean &m) {
    const uint32_t *__restrict p = before;
    const u16 *__restrict e = even, *__restrict o = odd;
    u8 *__restrict t = to;
    const int64_t half = m.width / 2;
    const f32 inverse = 1.f / f32(m.area), first_term = m.area & 1 ? 0.f : 512.f, second_term = 12582912.f - first_term;
    const auto mean = [&](s32 sum) __attribute__((always_inline)) {
        return __builtin_bit_cast(uint32_t, f32(sum) * inverse + first_term + second_term);
    };
    // Of the windows that begin at columns 2i and 2i + 1.
    const auto both = [&](int64_t i) __attribute__((always_inline)) {
        const s32 pairs = s32(p[i + half] - p[i]), first = OddWidth ? pairs + e[i + half] : pairs;
        const uint32_t a = mean(first), b = mean(first - e[i] + (OddWidth ? o[i + half] : e[i + half]));
        return pair_of(u16(a & 255), u16(b & 255));
    };
    if (m.phase == 1 && n > 0) {
        *t++ = u8(odd_of(both(0)));
        --n;
        ++p;
        ++e;
        ++o;
    }
    for (int64_t i = 0; i < n / 2; ++i) {
        const u16 w = both(i);
        __builtin_memcpy(t + 2 * i, &w, sizeof w);
    }
    if (n & 1) t[n - 1] = u8(even_of(both(n / 2))); // the rows of sums have room for the second one
}
void wide_mean(u8 *to, const uint32_t *before, const u16 *even, const u16 *odd, int64_t n, const ByteMean &m) {
    return m.width & 1 ? wide_mean_of<true>(to, before, even, odd, n, m)
                       : wide_mean_of<false>(to, before, even, odd, n, m);
}

// ---- All other windows ----

template <class T, class Sum> void enter(void *columns, const void *row, int64_t n) {
    Sum *__restrict s = elements<Sum>(columns);
    const T *__restrict r = elements<T>(row);
    for (int64_t i = 0; i < n; ++i) s[i] += r[i];
}

template <class T, class Sum> void slide(void *columns, const void *in, const void *out, int64_t n) {
    Sum *__restrict s = elements<Sum>(columns);
    const T *__restrict a = elements<T>(in), *__restrict b = elements<T>(out);
    for (int64_t i = 0; i < n; ++i) s[i] += Sum(a[i]) - Sum(b[i]);
}

template <class Sum, int N> void sum_windows(Sum *__restrict to, const Sum *__restrict row, int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
        Sum sum = row[i];
        for (int k = 1; k < N; ++k) sum += row[i + k];
        to[i] = sum;
    }
}
template <class Sum> void sum_few(Sum *to, const Sum *row, int64_t n, int64_t k) {
    switch (k) {
    case 1:
        return sum_windows<Sum, 1>(to, row, n);
    case 2:
        return sum_windows<Sum, 2>(to, row, n);
    case 3:
        return sum_windows<Sum, 3>(to, row, n);
    case 4:
        return sum_windows<Sum, 4>(to, row, n);
    case 5:
        return sum_windows<Sum, 5>(to, row, n);
    case 6:
        return sum_windows<Sum, 6>(to, row, n);
    default:
        return sum_windows<Sum, 7>(to, row, n);
    }
}

// The binary digits of the width, from the highest down: sums of `size` columns become sums of twice as many, or of one
// more than that.
template <class Sum> void along(void *to, void *spare, const void *columns, int64_t n, int64_t k) {
    const Sum *const x = elements<Sum>(columns);
    int digits = 0;
    while (k >> digits > 7) ++digits;
    Sum *made = elements<Sum>(digits % 2 == 0 ? to : spare), *next = elements<Sum>(digits % 2 == 0 ? spare : to);
    sum_few(made, x, n + k - (k >> digits), k >> digits);
    while (digits-- > 0) {
        const int64_t size = k >> digits, half = size / 2, length = n + k - size;
        const Sum *__restrict m = made;
        Sum *__restrict t = next;
        if (size & 1)
            for (int64_t i = 0; i < length; ++i) t[i] = m[i] + m[i + half] + x[i + 2 * half];
        else
            for (int64_t i = 0; i < length; ++i) t[i] = m[i] + m[i + half];
        next = made;
        made = t;
    }
}

// An estimate and the exact rest tell the nearest integer, the even one where two are as near.
template <class T, class Sum> void mean(void *to, const void *sums, int64_t n, int64_t area) {
    using Real = select<sizeof(Sum) == 4, f32, f64>;
    T *__restrict t = elements<T>(to);
    const Sum *__restrict s = elements<Sum>(sums);
    const Real inverse = Real(1) / Real(area);
    const Sum a = Sum(area);
    for (int64_t i = 0; i < n; ++i) {
        const s32 q = round_s32(Real(s[i]) * inverse);
        const Sum rest = s[i] - q * a, twice = 2 * rest, odd = q & 1;
        t[i] = T(q + (twice + odd > a ? 1 : 0) - (twice - odd < -a ? 1 : 0));
    }
}

void mean_real(void *to, const void *sums, int64_t n, int64_t area) {
    f32 *__restrict t = elements<f32>(to);
    const f64 *__restrict s = elements<f64>(sums);
    const f64 inverse = 1.0 / f64(area);
    for (int64_t i = 0; i < n; ++i) t[i] = f32(s[i] * inverse);
}

// The sums of a register of windows stay in it.
void mean_real_along(void *to, const void *columns, int64_t n, int64_t k, int64_t area) {
    constexpr int lanes = register_bytes / int(sizeof(f64));
    f32 *const t = elements<f32>(to);
    const f64 *const x = elements<f64>(columns), inverse = 1.0 / f64(area);
    const auto mean_of = [&]<int N, int Many>(Count<N>, Count<Many>, int64_t i) __attribute__((always_inline)) {
        using V = VectorOf<f64, N>;
        V sum[Many];
        for (int j = 0; j < Many; ++j) sum[j] = read<V>(x + i + j * N);
        for (int64_t c = 1; c < k; ++c)
            for (int j = 0; j < Many; ++j) sum[j] += read<V>(x + i + c + j * N);
        for (int j = 0; j < Many; ++j) {
            const VectorOf<f32, N> mean = converted<f32, N, f64>(sum[j] * inverse);
            __builtin_memcpy(t + i + j * N, &mean, sizeof mean);
        }
    };
    if (n >= lanes)
        each_register<lanes, 4>(
            n, [&](auto many, int64_t i) __attribute__((always_inline)) { mean_of(Count<lanes>(), many, i); });
    else
        for (int64_t i = 0; i < n; ++i) mean_of(Count<1>(), Count<1>(), i);
}

struct Add {
    template <class V> [[gnu::always_inline]] static V of(V a, V b) { return a + b; }
    [[gnu::always_inline]] static f64 of(f64 a, f32 b) { return a + f64(b); }
};

} // namespace

extern const ByteMeanRows byte_mean_rows[];
const ByteMeanRows byte_mean_rows[] = {
    {small_means, 3 * register_bytes, gather_bytes, slide_bytes, mean_bytes, add_up, wide_mean}};

#define LINE(T, Sum, mean_row)                                                                                         \
    { sizeof(Sum), enter<T, Sum>, slide<T, Sum>, along<Sum>, mean_row, nullptr }
extern const MeanRows mean_rows[];
const MeanRows mean_rows[] = {
    LINE(u8, s32, (mean<u8, s32>)),   LINE(s16, s32, (mean<s16, s32>)),
    LINE(u8, s64, (mean<u8, s64>)),   LINE(s16, s64, (mean<s16, s64>)),
    LINE(s32, s64, (mean<s32, s64>)), {sizeof(f64), nullptr, nullptr, along<f64>, mean_real, mean_real_along}};

extern const ColumnRows real_sum_columns[];
const ColumnRows real_sum_columns[] = {column_rows<Add, f32, f64>};

} // namespace jorm::JORM_LEVEL
