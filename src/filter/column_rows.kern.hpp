// The rows of Columns for an operation: for level sources.
#pragma once
#include "filter/column_rows.hpp"
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Of up to eight rows, and of what stands in `to` already.
template <class Op, class T, class Result, int N, bool First>
void columns_across_n(void *to, const void *const *rows, int64_t n) {
    Result *__restrict t = elements<Result>(to);
    const T *r[N];
    for (int k = 0; k < N; ++k) r[k] = elements<T>(rows[k]);
    for (int64_t i = 0; i < n; ++i) {
        Result all = First ? Result(r[0][i]) : Op::of(t[i], r[0][i]);
        for (int k = 1; k < N; ++k) all = Op::of(all, r[k][i]);
        t[i] = all;
    }
}

template <class Op, class T, class Result>
void columns_across_few(void *to, const void *const *rows, int64_t count, int64_t n) {
    switch (count) {
    case 1:
        return columns_across_n<Op, T, Result, 1, true>(to, rows, n);
    case 2:
        return columns_across_n<Op, T, Result, 2, true>(to, rows, n);
    case 3:
        return columns_across_n<Op, T, Result, 3, true>(to, rows, n);
    case 4:
        return columns_across_n<Op, T, Result, 4, true>(to, rows, n);
    case 5:
        return columns_across_n<Op, T, Result, 5, true>(to, rows, n);
    case 6:
        return columns_across_n<Op, T, Result, 6, true>(to, rows, n);
    case 7:
        return columns_across_n<Op, T, Result, 7, true>(to, rows, n);
    default:
        return columns_across_n<Op, T, Result, 8, true>(to, rows, n);
    }
}

// More than eight rows begin with as many as leave a multiple of four.
template <class Op, class T, class Result>
void columns_across(void *to, const void *const *rows, int64_t count, int64_t n) {
    int64_t k = count <= 8 ? count : (count - 1) % 4 + 5;
    columns_across_few<Op, T, Result>(to, rows, k, n);
    for (; k + 8 <= count; k += 8) columns_across_n<Op, T, Result, 8, false>(to, rows + k, n);
    if (k < count) columns_across_n<Op, T, Result, 4, false>(to, rows + k, n);
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
