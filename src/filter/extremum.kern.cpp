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

// How many registers.
template <int C> struct Count {};
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
    const Columns after_first(rows, after_left), before_last(rows, last - before_right), at_last(rows, last);
    for (int r = 0; r < N; ++r) {
        store_lanes(line[r] + left, a.of[r][0]);
        store_lanes(line[r] + K - 1, after_first.of[r][0]);
        store_lanes(line[r] + 2 * size, before_last.of[r][0]);
        store_lanes(line[r] + 2 * size + before_right, at_last.of[r][0]);
        for (int64_t i = 0; i < left + e.right; ++i) line[r][e.copy[i].to] = line[r][e.copy[i].from];
    }
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
        i += Many * size;
    };
    while (i + 3 * size <= n) inner(Count<2>());
    while (i + 2 * size <= n) inner(Count<1>());
    if (i < last) {
        i = last - size;
        a = Columns(rows, i);
        inner(Count<1>());
    }
    for (int r = 0; r < N; ++r) {
        if (left > 0) at_end(0, r, line[r]);
        at_end(left + last - before_right, r, line[r] + 2 * size);
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

// Calls f(Count<C>, i) for C registers from element i on until all of at least a register's elements have had their
// turn, some of them twice: what is left of a row costs a compiler's loop as much as a thousand elements. C is Many,
// and for what is left the smallest of Many, Many / 2 ... 1 that covers it.
template <class T, int Many, class F> [[gnu::always_inline]] inline void each_register(int64_t n, F f, int64_t i = 0) {
    constexpr int64_t step = Many * lanes<T>;
    for (; i + step <= n; i += step) f(Count<Many>(), i);
    if (i >= n) return;
    if constexpr (Many == 1)
        f(Count<1>(), n - step);
    else if (2 * (n - i) > step && n >= step)
        f(Count<Many>(), n - step);
    else
        each_register<T, Many / 2>(n, f, i);
}

// Windows of N elements.
template <class Kind, class T, int N> void along_n(void *to, const void *row, int64_t n, int64_t step) {
    T *__restrict t = elements<T>(to);
    const T *__restrict r = elements<T>(row);
    if (n >= lanes<T>)
        return each_register<T, 2>(
            n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
                for (int j = 0; j < C; ++j, i += lanes<T>) {
                    auto best = read<Lanes<T>>(r + i);
                    for (int k = 1; k < N; ++k) best = Kind::of(best, read<Lanes<T>>(r + i + k * step));
                    store_lanes(t + i, best);
                }
            });
    for (int64_t i = 0; i < n; ++i) {
        T best = r[i];
        for (int k = 1; k < N; ++k) best = Kind::of(best, r[i + k * step]);
        t[i] = best;
    }
}

// Gathers in registers, several of them for each look at the list.
template <class Kind, class T> void gather(void *to, const void *const *rows, int64_t count, int64_t n) {
    if (n < lanes<T>) return columns_across<Kind, T, T>(to, rows, count, n);
    each_register<T, 4>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            Lanes<T> best[C];
            const auto at = [&](int64_t k, int j) { return read<Lanes<T>>(elements<T>(rows[k]) + i + j * lanes<T>); };
            for (int j = 0; j < C; ++j) best[j] = at(0, j);
            for (int64_t k = 1; k < count; ++k)
                for (int j = 0; j < C; ++j) best[j] = Kind::of(best[j], at(k, j));
            for (int j = 0; j < C; ++j) store_lanes(elements<T>(to) + i + j * lanes<T>, best[j]);
        });
}

template <class Kind, class T>
void gather_nested(void *const *to, const void *const *rows, const int32_t *end, int64_t groups, int64_t n) {
    const auto each_group = [&]<class V, int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
        constexpr int64_t size = sizeof(V) / sizeof(T);
        V best[C];
        const auto at = [&](int64_t k, int j) { return read<V>(elements<T>(rows[k]) + i + j * size); };
        for (int j = 0; j < C; ++j) best[j] = at(0, j);
        for (int64_t k = 1, group = 0; group < groups; ++group) {
            for (; k < end[group]; ++k)
                for (int j = 0; j < C; ++j) best[j] = Kind::of(best[j], at(k, j));
            T *const line = elements<T>(to[group]);
            for (int j = 0; j < C; ++j) __builtin_memcpy(line + i + j * size, &best[j], sizeof(V));
        }
    };
    if (n < lanes<T>) {
        for (int64_t i = 0; i < n; ++i) each_group.template operator()<T>(Count<1>(), i);
        return;
    }
    each_register<T, 4>(
        n, [&]<int C>(Count<C> many, int64_t i)
               __attribute__((always_inline)) { each_group.template operator()<Lanes<T>>(many, i); });
}

// Windows of twice and four times as many elements until two or four of them, overlapping, make the one wanted.
template <class Kind, class T> void along(void *to, void *row, void *spare, int64_t n, int64_t k, int64_t step) {
    switch (k) {
    case 1:
        return along_n<Kind, T, 1>(to, row, n, step);
    case 2:
        return along_n<Kind, T, 2>(to, row, n, step);
    case 3:
        return along_n<Kind, T, 3>(to, row, n, step);
    case 4:
        return along_n<Kind, T, 4>(to, row, n, step);
    case 5:
        return along_n<Kind, T, 5>(to, row, n, step);
    case 6:
        return along_n<Kind, T, 6>(to, row, n, step);
    case 7:
        return along_n<Kind, T, 7>(to, row, n, step);
    default:
        break;
    }
    int64_t size = 1;
    const int64_t all = n + (k - 1) * step;
    while (size * 4 < k) {
        size *= 4;
        along_n<Kind, T, 4>(spare, row, all - (size - 1) * step, size / 4 * step);
        void *const made = spare;
        spare = row;
        row = made;
    }
    // size < k <= 4 * size
    T *__restrict t = elements<T>(to);
    const T *__restrict r = elements<T>(row);
    const int64_t last = (k - size) * step;
    const int64_t second = size * step < last ? size * step : last,
                  third = 2 * size * step < last ? 2 * size * step : last;
    const auto best = [&](auto at) __attribute__((always_inline)) {
        return Kind::of(Kind::of(at(0), at(second)), Kind::of(at(third), at(last)));
    };
    if (n < lanes<T>) {
        for (int64_t i = 0; i < n; ++i) t[i] = best([&](int64_t k) { return r[i + k]; });
        return;
    }
    each_register<T, 1>(
        n, [&](Count<1>, int64_t i) __attribute__((always_inline)) {
            store_lanes(t + i, best([&](int64_t k) { return read<Lanes<T>>(r + i + k); }));
        });
}

template <class Kind, class T> void pair(void *to, const void *row, int64_t n, int64_t apart) {
    along_n<Kind, T, 2>(to, row, n, apart);
}

bool holds_nan(const void *row, int64_t n) {
    const f32 *r = elements<f32>(row);
    s32 found = 0;
    for (int64_t i = 0; i < n; ++i) found |= r[i] != r[i];
    return found != 0;
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
        lanes<T>, small, column_rows<Kind, T, T>, gather<Kind, T>, gather_nested<Kind, T>, unordered, subtract<T>,     \
            pair<Kind, T>, along<Kind, T>                                                                              \
    }
#define ORDERED(Kind, T, unordered) LINE(Kind<true>, T, (small_windows<Kind<true>, T>), unordered)
#define LINES(Kind)                                                                                                    \
    ORDERED(Kind, u8, nullptr), ORDERED(Kind, s16, nullptr), ORDERED(Kind, s32, nullptr),                              \
        ORDERED(Kind, f32, holds_nan), LINE(Kind<false>, f32, nullptr, nullptr)
extern const ExtremumRows extremum_rows[];
const ExtremumRows extremum_rows[] = {LINES(Least), LINES(Largest)};

} // namespace jorm::JORM_LEVEL
