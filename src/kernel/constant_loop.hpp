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
    auto at = [&](int64_t i, K k1, K k2) [[gnu::always_inline]] {
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

} // namespace
} // namespace jorm::JORM_LEVEL
