// Rows of minima and maxima.
#include "filter/column_rows.kern.hpp"
#include "filter/extremum_rows.hpp"

namespace jorm::JORM_LEVEL {
namespace {

template <bool Ordered> struct Least {
    template <class T> [[gnu::always_inline]] static T of(T a, T b) {
        if constexpr (is_real<T> && !Ordered)
            return b != b ? a : a < b ? a : b;
        else
            return a < b ? a : b;
    }
};
template <bool Ordered> struct Largest {
    template <class T> [[gnu::always_inline]] static T of(T a, T b) {
        if constexpr (is_real<T> && !Ordered)
            return b != b ? a : a > b ? a : b;
        else
            return a > b ? a : b;
    }
};

// Windows of N elements.
template <class Kind, class T, int N> void along_n(void *to, const void *row, int64_t n, int64_t step) {
    T *__restrict t = elements<T>(to);
    const T *__restrict r = elements<T>(row);
    for (int64_t i = 0; i < n; ++i) {
        T best = r[i];
        for (int k = 1; k < N; ++k) best = Kind::of(best, r[i + k * step]);
        t[i] = best;
    }
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
    for (int64_t i = 0; i < n; ++i) t[i] = Kind::of(Kind::of(r[i], r[i + second]), Kind::of(r[i + third], r[i + last]));
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

#define LINE(Kind, T, unordered)                                                                                       \
    { column_rows<Kind, T, T>, unordered, subtract<T>, pair<Kind, T>, along<Kind, T> }
#define LINES(Kind)                                                                                                    \
    LINE(Kind<true>, u8, nullptr), LINE(Kind<true>, s16, nullptr), LINE(Kind<true>, s32, nullptr),                     \
        LINE(Kind<true>, f32, holds_nan), LINE(Kind<false>, f32, nullptr)
extern const ExtremumRows extremum_rows[];
const ExtremumRows extremum_rows[] = {LINES(Least), LINES(Largest)};

} // namespace jorm::JORM_LEVEL
