// Rows of conversions: to nearest even, clamped.
#include "convert/convert_rows.hpp"
#include "kernel/constant_loop.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// To the nearest 32-bit integer, where the processor's own conversion is within reach of the compiler.
#if defined(__x86_64__) && defined(__NO_MATH_ERRNO__) && !defined(__clang__)
[[gnu::always_inline]] inline s32 nearest(f64 x) { return __builtin_irint(x); }
[[gnu::always_inline]] inline s32 nearest(f32 x) { return __builtin_irintf(x); }
#else
template <class T> [[gnu::always_inline]] inline s32 nearest(T x) { return round_s32(x); }
#endif

template <class D, class S> [[gnu::always_inline]] inline D clamped(S x) {
    constexpr S lo = S(lowest<D>), hi = S(largest<D>);
    x = x < lo ? lo : x;
    x = x > hi ? hi : x;
    return D(x);
}

template <class D, class S> [[gnu::always_inline]] inline D convert_element(S x) {
    if constexpr (is_real<D>)
        return D(x);
    else if constexpr (is_real<S>)
        return convert_element<D>(nearest(x));
    else if constexpr (sizeof(S) > sizeof(D))
        return clamped<D>(x);
    else
        return D(x);
}

template <class D, class S> void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
    row1<D, S>(dst, src, n, [](S x) { return convert_element<D>(x); });
}

// x * scale + offset, the constants of the row, in double precision.
template <bool Uniform, class D, class S> void range(void *dst, const void *const *src, int64_t n, const RowParams &p) {
    constant_row<Uniform, 2, f64, D, S, void *>(
        dst, src, n, p, [](S x, f64 scale, f64 offset) { return convert_element<D>(f64(x) * scale + offset); });
}

} // namespace

#define ROW(name, D, S) plain<D, S>,
extern const Row convert_rows[];
const Row convert_rows[] = {JORM_CONVERSIONS(ROW)};

#define UNIFORM(name, D, S) range<true, D, S>,
#define PATTERN(name, D, S) range<false, D, S>,
extern const Row range_rows[], range_pattern_rows[];
const Row range_rows[] = {JORM_RANGE_CONVERSIONS(UNIFORM)};
const Row range_pattern_rows[] = {JORM_RANGE_CONVERSIONS(PATTERN)};

} // namespace jorm::JORM_LEVEL
