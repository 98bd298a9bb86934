// Rows of minima and maxima.
#include "filter/column_rows.kern.hpp"
#include "filter/extremum_rows.hpp"
#include "kernel/level_words.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Of elements, or of vectors of them; where NaN may come, not Ordered.
template <bool Ordered> struct Least {
    template <class T> [[gnu::always_inline]] static T of(T a, T b) {
        if constexpr (!Ordered)
            return b != b ? a : a < b ? a : b;
        else
            return a < b ? a : b;
    }
};
template <bool Ordered> struct Largest {
    template <class T> [[gnu::always_inline]] static T of(T a, T b) {
        if constexpr (!Ordered)
            return b != b ? a : a > b ? a : b;
        else
            return a > b ? a : b;
    }
};

// ---- Small windows: down the columns and along the row in registers ----

template <class T> constexpr int lanes = register_bytes / int(sizeof(T));
template <class T> using Lanes = VectorOf<T, lanes<T>>;

// Down K rows of columns from element i on, for N rows of results: two windows share all rows but one each.
template <class Kind, class T, int N, int K, int Many> struct SmallColumns {
    Lanes<T> of[N][Many];

    [[gnu::always_inline]] SmallColumns(const T *const *rows, int64_t i) {
        for (int j = 0; j < Many; ++j) {
            const auto at = [&](int k) { return read<Lanes<T>>(rows[k] + i + j * lanes<T>); };
            of[0][j] = at(N - 1);
            for (int k = N; k < K; ++k) of[0][j] = Kind::of(of[0][j], at(k));
            if constexpr (N == 2) {
                of[1][j] = Kind::of(of[0][j], at(K));
                of[0][j] = Kind::of(of[0][j], at(0));
            }
        }
    }
};

// Of the windows of K columns that begin in a; b are the columns after it.
template <class Kind, class T, int K> [[gnu::always_inline]] inline Lanes<T> windows_of(Lanes<T> a, Lanes<T> b) {
    constexpr int e = int(sizeof(T));
    Lanes<T> best = Kind::of(Kind::of(a, bytes_from<e>(a, b)), bytes_from<2 * e>(a, b));
    if constexpr (K == 5) best = Kind::of(Kind::of(best, bytes_from<3 * e>(a, b)), bytes_from<4 * e>(a, b));
    return best;
}

template <class T> [[gnu::always_inline]] inline void store_lanes(T *to, Lanes<T> v) {
    __builtin_memcpy(to, &v, sizeof v);
}

template <class Kind, class T, int N, int K>
void small_windows_of(void *const *to_rows, const void *const *all_rows, int64_t n, const RowEnds &e) {
    using Columns = SmallColumns<Kind, T, N, K, 1>;
    constexpr int size = lanes<T>;
    T *to[N];
    for (int r = 0; r < N; ++r) to[r] = elements<T>(to_rows[r]);
    const T *rows[K + N - 1];
    for (int k = 0; k < K + N - 1; ++k) rows[k] = elements<T>(all_rows[k]);

    // The ends of the row in a line, for windows that reach beyond it.
    alignas(register_bytes) T line[N][4 * size];
    Columns a(rows, 0);
    const int64_t left = e.left, last = n - size, after_left = K - 1 - left, before_right = K - 1 - e.right;
    const bool two_registers = n >= 2 * size;
    const Columns at_last(rows, last);
    for (int r = 0; r < N; ++r) {
        store_lanes(line[r] + left, a.of[r][0]);
        store_lanes(line[r] + e.last + before_right, at_last.of[r][0]);
    }
    if (two_registers) {
        const Columns after_first(rows, after_left), before_last(rows, last - before_right);
        for (int r = 0; r < N; ++r) {
            store_lanes(line[r] + K - 1, after_first.of[r][0]);
            store_lanes(line[r] + e.last, before_last.of[r][0]);
        }
    }
    for (int r = 0; r < N; ++r)
        for (int64_t i = 0; i < left + e.right; ++i) line[r][e.copy[i].to] = line[r][e.copy[i].from];
    const auto at_end = [&](int64_t i, int r, const T *from) __attribute__((always_inline)) {
        const auto x = read<Lanes<T>>(from), next = read<Lanes<T>>(from + size);
        store_lanes(to[r] + i, windows_of<Kind, T, K>(x, next));
    };

    // As far as registers go, some of them twice.
    int64_t i = 0;
    const auto inner = [&]<int Many>(Count<Many>) __attribute__((always_inline)) {
        const SmallColumns<Kind, T, N, K, Many> next(rows, i + size);
        for (int r = 0; r < N; ++r)
            for (int j = 0; j < Many; ++j) {
                store_lanes(to[r] + left + i + j * size, windows_of<Kind, T, K>(a.of[r][0], next.of[r][j]));
                a.of[r][0] = next.of[r][j];
            }
    };
    for (; i + 3 * size <= n; i += 2 * size) inner(Count<2>());
    for (; i + 2 * size <= n; i += size) inner(Count<1>());
    if (two_registers && i < last) {
        i = last - size;
        a = Columns(rows, i);
        inner(Count<1>());
    }
    for (int r = 0; r < N; ++r) {
        if (left > 0 || !two_registers) at_end(0, r, line[r]);
        at_end(left + last - before_right, r, line[r] + e.last);
    }
}
template <class Kind, class T>
void small_windows(void *const *to, const void *const *rows, int64_t n, int64_t size, const RowEnds &ends) {
    if (to[1])
        (size == 3 ? small_windows_of<Kind, T, 2, 3> : small_windows_of<Kind, T, 2, 5>)(to, rows, n, ends);
    else
        (size == 3 ? small_windows_of<Kind, T, 1, 3> : small_windows_of<Kind, T, 1, 5>)(to, rows, n, ends);
}

// ---- Any windows ----

// Of windows of up to seven elements, `apart` from each other.
template <class Kind, class T> void few_along(void *to, const void *row, int64_t n, int64_t k, int64_t apart) {
    const void *places[7] = {row};
    for (int64_t i = 1; i < k; ++i) places[i] = elements<T>(row) + i * apart;
    columns_across<Kind, T, T>(to, places, k, n);
}

// Windows of twice and four times as many elements until two or four of them, overlapping, make the one wanted.
template <class Kind, class T>
void along(void *to, const void *row, void *spare, void *other, int64_t n, int64_t k, int64_t step) {
    if (k <= 7) return few_along<Kind, T>(to, row, n, k, step);
    int64_t size = 1;
    const int64_t all = n + (k - 1) * step;
    while (size * 4 < k) {
        size *= 4;
        few_along<Kind, T>(spare, row, all - (size - 1) * step, 4, size / 4 * step);
        row = spare;
        spare = other;
        other = const_cast<void *>(row);
    }
    // size < k <= 4 * size
    const T *const first = elements<T>(row), *const last = first + (k - size) * step,
                   *const second = first + size * step, *const third = second + size * step;
    const void *const places[] = {first, last, second, third};
    columns_across<Kind, T, T>(to, places, 2 + (second < last) + (third < last), n);
}

template <class Kind, class T>
[[gnu::noinline]] void across_two(void *const *to, void *const *next, const void *const *rows, const int32_t *shared,
                                  int64_t groups, int64_t n) {
    const auto gather = [&]<int Many>(Count<Many>, int64_t i) __attribute__((always_inline)) {
        const void *const *row = rows;
        const auto at = [i](const void *r, int j) __attribute__((always_inline)) {
            return read<Lanes<T>>(elements<T>(r) + i + j * lanes<T>);
        };
        Lanes<T> all[Many];
        const auto add = [&]() __attribute__((always_inline)) {
            for (int j = 0; j < Many; ++j) all[j] = Kind::of(all[j], at(*row, j));
            ++row;
        };
        const auto add_ends = [&](int64_t group, auto with) __attribute__((always_inline)) {
            for (int j = 0; j < Many; ++j) {
                const auto first = at(row[0], j), last = at(row[1], j);
                store_lanes(elements<T>(to[group]) + i + j * lanes<T>, with(j, first));
                store_lanes(elements<T>(next[group]) + i + j * lanes<T>, with(j, last));
                all[j] = with(j, Kind::of(first, last));
            }
            row += 2;
        };
        const auto alone = [](int, Lanes<T> v) { return v; };
        const auto with_all = [&](int j, Lanes<T> v) { return Kind::of(all[j], v); };
        int64_t group = 0, k = 1;
        if (shared[0] > 0) {
            for (int j = 0; j < Many; ++j) all[j] = at(*row, j);
            ++row;
        } else {
            add_ends(group++, alone);
            k = 0;
        }
        for (; group < groups; ++group, k = 0) {
            for (; k < shared[group]; ++k) add();
            add_ends(group, with_all);
        }
    };
    // What is left of a row goes with some of what went before: code for every length of it would be as long again.
    const auto all_blocks = [&]<int Many>(Count<Many> many) __attribute__((always_inline)) {
        constexpr int64_t step = Many * lanes<T>;
        for (int64_t i = 0; i < n; i += step) gather(many, i + step <= n ? i : n - step);
    };
    n >= 4 * lanes<T> ? all_blocks(Count<4>()) : all_blocks(Count<1>());
}

template <class Kind, class T> void pair(void *to, const void *row, int64_t n, int64_t apart) {
    few_along<Kind, T>(to, row, n, 2, apart);
}

bool holds_nan(const void *row, int64_t n) {
    const s32 *bits = elements<s32>(row); // without the sign, greater than those of infinity
    s32 found = 0;
    for (int64_t i = 0; i < n; ++i) found |= 0x7f800000 - (bits[i] & 0x7fffffff);
    return found < 0;
}

template <class T> [[gnu::always_inline]] inline T difference(T a, T b) {
    if constexpr (is_real<T>)
        return a - b;
    else if constexpr (same<T, u8>)
        return T((a > b ? a : b) - b);
    else
        return clamp<T>(select<sizeof(T) == 4, s64, s32>(a) - b);
}
template <class T> void subtract(void *to, const void *a, const void *b, int64_t n) {
    T *__restrict t = elements<T>(to);
    const T *__restrict x = elements<T>(a), *__restrict y = elements<T>(b);
    for (int64_t i = 0; i < n; ++i) t[i] = difference(x[i], y[i]);
}

} // namespace

#define LINE(Kind, T, small, unordered)                                                                                \
    {                                                                                                                  \
        lanes<T>, small, column_rows<Kind, T, T>, columns_across_nested<Kind, T, T>, across_two<Kind, T>, unordered,   \
            subtract<T>, pair<Kind, T>, along<Kind, T>                                                                 \
    }
#define ORDERED(Kind, T, unordered) LINE(Kind<true>, T, (small_windows<Kind<true>, T>), unordered)
#define LINES(Kind)                                                                                                    \
    ORDERED(Kind, u8, nullptr), ORDERED(Kind, s16, nullptr), ORDERED(Kind, s32, nullptr),                              \
        ORDERED(Kind, f32, holds_nan), LINE(Kind<false>, f32, nullptr, nullptr)
extern const ExtremumRows extremum_rows[];
const ExtremumRows extremum_rows[] = {LINES(Least), LINES(Largest)};

} // namespace jorm::JORM_LEVEL
