// The loop of rows with constant operands.
#pragma once
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Constant i of a row for element j, in type K.
template <class K> [[gnu::always_inline]] inline K constant_at(const RowParams &p, int i, int j) {
    if constexpr (is_real<K>)
        return K(p.constants[i]->real[j]);
    else
        return K(p.constants[i]->whole[j]);
}

// Calls f(a, [b,] k1[, k2]) for every element, with Count constants of type K: the first of each pattern, or by
// pattern.
template <bool Uniform, int Count, class K, class D, class A, class B, class F>
[[gnu::always_inline]] inline void constant_row(void *dst, const void *const *src, int64_t n, const RowParams &p, F f) {
    D *d = elements<D>(dst);
    const A *a = elements<A>(src[0]);
    const B *b = elements<B>(src[same<B, void *> ? 0 : 1]);
    auto at = [&](int64_t i, K k1, K k2) {
        if constexpr (same<B, void *>) {
            if constexpr (Count == 2)
                d[i] = f(a[i], k1, k2);
            else
                d[i] = f(a[i], k1);
        } else
            d[i] = f(a[i], b[i], k1);
    };
    if constexpr (Uniform) {
        const K k1 = constant_at<K>(p, 0, 0), k2 = constant_at<K>(p, Count - 1, 0);
        for (int64_t i = 0; i < n; ++i) at(i, k1, k2);
    } else {
        K k1[pattern_length], k2[pattern_length];
        for (int j = 0; j < pattern_length; ++j)
            k1[j] = constant_at<K>(p, 0, j), k2[j] = constant_at<K>(p, Count - 1, j);
        for (int64_t i = 0; i < n; i += pattern_length) {
            const int m = n - i < pattern_length ? int(n - i) : pattern_length;
            for (int j = 0; j < m; ++j) at(i + j, k1[j], k2[j]);
        }
    }
}

// Elements of an integer type nearest to what `real` gives in double precision, in blocks. Those without a result
// beyond 32 bits, or NaN, take the shorter way through the processor's own conversion, whose answer to these is -2^31.
template <bool Uniform, int Count, class D, class A, class F>
[[gnu::always_inline]] inline void nearest_row(void *dst, const void *const *src, int64_t n, const RowParams &p,
                                               F real) {
    constexpr int block = 2 * pattern_length;
    s32 whole[block];
    D *d = elements<D>(dst);
    const A *a = elements<A>(src[0]);
    for (int m; n > 0; n -= m, d += m, a += m) {
        m = n < block ? int(n) : block;
        const void *const from = a;
        constant_row<Uniform, Count, f64, s32, A, void *>(whole, &from, m, p,
                                                          [=](A x, auto... k) { return round_s32(real(x, k...)); });
        s32 least = 0;
        for (int l = 0; l < m; ++l) least = whole[l] < least ? whole[l] : least;
        if (least > lowest<s32>)
            for (int l = 0; l < m; ++l) {
                const s32 x = whole[l] < s32(lowest<D>) ? s32(lowest<D>) : whole[l];
                d[l] = D(x > s32(largest<D>) ? s32(largest<D>) : x);
            }
        else
            constant_row<Uniform, Count, f64, D, A, void *>(d, &from, m, p,
                                                            [=](A x, auto... k) { return nearest<D>(real(x, k...)); });
    }
}

} // namespace
} // namespace jorm::JORM_LEVEL
