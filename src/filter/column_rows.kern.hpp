// The rows of Columns for an operation: for level sources.
#pragma once
#include "filter/column_rows.hpp"
#include "kernel/level_words.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Gathers `Many` registers of results for each look at the list of rows; what is left of a row goes by single
// registers, some elements of it twice. Loops that the compiler makes for every number of rows would take ten times the
// code.
template <class Op, class T, class Result, int N, int Many>
[[gnu::always_inline]] inline void columns_across_at(Result *to, const void *const *rows, int64_t count, int64_t i) {
    using V = VectorOf<Result, N>;
    V all[Many];
    const auto at = [&](int64_t k, int j) __attribute__((always_inline)) {
        return converted<Result, N, T>(read<VectorOf<T, N>>(elements<T>(rows[k]) + i + j * N));
    };
    for (int j = 0; j < Many; ++j) all[j] = at(0, j);
    for (int64_t k = 1; k < count; ++k)
        for (int j = 0; j < Many; ++j) all[j] = Op::of(all[j], at(k, j));
    for (int j = 0; j < Many; ++j) {
        const V v = all[j];
        __builtin_memcpy(to + i + j * N, &v, sizeof v);
    }
}
template <class Op, class T, class Result>
void columns_across(void *to, const void *const *rows, int64_t count, int64_t n) {
    constexpr int size = register_bytes / int(sizeof(Result)), many = 8;
    Result *const t = elements<Result>(to);
    int64_t i = 0;
    for (; i + many * size <= n; i += many * size) columns_across_at<Op, T, Result, size, many>(t, rows, count, i);
    if (n < size)
        for (; i < n; ++i) columns_across_at<Op, T, Result, 1, 1>(t, rows, count, i);
    for (; i < n; i += size) columns_across_at<Op, T, Result, size, 1>(t, rows, count, i + size <= n ? i : n - size);
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
