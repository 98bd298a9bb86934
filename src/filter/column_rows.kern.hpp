// The rows of Columns for an operation: for level sources.
#pragma once
#include "filter/column_rows.hpp"
#include "kernel/level_words.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// How many registers.
template <int C> struct Count {};

// Calls f(Count<C>, i) for C registers of `size` elements from element i on until all of at least a register's elements
// have had their turn, some of them twice: what is left of a row costs a compiler's loop as much as a thousand
// elements. C is Many, and for what is left the smallest of Many, Many / 2 ... 1 that covers it.
template <int size, int Many, class F> [[gnu::always_inline]] inline void each_register(int64_t n, F f, int64_t i = 0) {
    constexpr int64_t step = Many * size;
    for (; i + step <= n; i += step) f(Count<Many>(), i);
    if (i >= n) return;
    if constexpr (Many == 1)
        f(Count<1>(), n - step);
    else if (2 * (n - i) > step && n >= step)
        f(Count<Many>(), n - step);
    else
        each_register<size, Many / 2>(n, f, i);
}

// Of the same element of many rows, in nested groups: to[k] of the first end[k] ones. Gathers in registers, several for
// each look at the list of rows; loops that the compiler makes for every number of rows would take ten times the code.
template <class Op, class T, class Result>
[[gnu::noinline]] void columns_across_nested(void *const *to, const void *const *rows, const int32_t *end,
                                             int64_t groups, int64_t n) {
    constexpr int size = register_bytes / int(sizeof(Result)), narrow = 16 / int(sizeof(Result));
    const auto gather = [&]<int N, int Many>(Count<N>, Count<Many>, int64_t i) __attribute__((always_inline)) {
        using V = VectorOf<Result, N>;
        V all[Many];
        const auto at = [&](int64_t k, int j) __attribute__((always_inline)) {
            return converted<Result, N, T>(read<VectorOf<T, N>>(elements<T>(rows[k]) + i + j * N));
        };
        for (int j = 0; j < Many; ++j) all[j] = at(0, j);
        for (int64_t k = 1, group = 0; group < groups; ++group) {
            for (; k < end[group]; ++k)
                for (int j = 0; j < Many; ++j) all[j] = Op::of(all[j], at(k, j));
            Result *const line = elements<Result>(to[group]) + i;
            for (int j = 0; j < Many; ++j) {
                const V v = all[j];
                __builtin_memcpy(line + j * N, &v, sizeof v);
            }
        }
    };
    const auto all = [&]<int N>(Count<N>) __attribute__((always_inline)) {
        each_register<N, 4>(
            n, [&](auto many, int64_t i) __attribute__((always_inline)) { gather(Count<N>(), many, i); });
    };
    if (n >= size)
        all(Count<size>());
    else if (n >= narrow)
        all(Count<narrow>());
    else
        for (int64_t i = 0; i < n; ++i) gather(Count<1>(), Count<1>(), i);
}
template <class Op, class T, class Result>
void columns_across(void *to, const void *const *rows, int64_t count, int64_t n) {
    const int32_t end = int32_t(count);
    columns_across_nested<Op, T, Result>(&to, rows, &end, 1, n);
}

template <class Op, class T, class Result> void columns_join(void *to, const void *row, const void *suffix, int64_t n) {
    Result *__restrict t = elements<Result>(to);
    const T *__restrict r = elements<T>(row);
    const Result *__restrict s = elements<Result>(suffix);
    for (int64_t i = 0; i < n; ++i) t[i] = Op::of(s[i], r[i]);
}

template <class Op, class T, class Result, bool First>
void columns_extend(void *to, void *prefix, const void *row, const void *suffix, int64_t n) {
    Result *__restrict t = elements<Result>(to), *__restrict p = elements<Result>(prefix);
    const T *__restrict r = elements<T>(row);
    const Result *__restrict s = elements<Result>(suffix);
    for (int64_t i = 0; i < n; ++i) {
        p[i] = First ? Result(r[i]) : Op::of(p[i], r[i]);
        t[i] = Op::of(s[i], p[i]);
    }
}

template <class Op, class T, class Result>
constexpr ColumnRows column_rows = {sizeof(Result), columns_across<Op, T, Result>, columns_join<Op, T, Result>,
                                    columns_extend<Op, T, Result, true>, columns_extend<Op, T, Result, false>};

} // namespace
} // namespace jorm::JORM_LEVEL
