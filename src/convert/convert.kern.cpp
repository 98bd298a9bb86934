// Rows of conversions: to nearest even, clamped.
#include "convert/convert_rows.hpp"
#include "kernel/constant_loop.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Single precision into a narrow type: clamped first, then rounded by the sum with 1.5 * 2^23, whose low bits are the
// integer. NaN and what does not fit 32 bits go where -2147483648 would.
template <class D> [[gnu::always_inline]] inline D narrow(f32 x) {
    constexpr f32 lo = f32(lowest<D>), hi = f32(largest<D>);
    f32 y = x < 2147483648.f ? x : lo;
    y = y < lo ? lo : y;
    y = y > hi ? hi : y;
    return D(__builtin_bit_cast(s32, y + 12582912.f));
}

template <class D, class S> [[gnu::always_inline]] inline D convert_element(S x) {
    if constexpr (is_real<D>)
        return D(x);
    else if constexpr (!is_real<S>) {
        if constexpr (sizeof(S) > sizeof(D))
            return clamp<D>(x);
        else
            return D(x);
    } else if constexpr (sizeof(D) < 4)
        return narrow<D>(x);
    else
        return round_s32(x);
}

template <class D, class S> void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
    row1<D, S>(dst, src, n, [](S x) { return convert_element<D>(x); });
}

// x * scale + offset, the constants of the row, in double precision.
template <bool Uniform, class D, class S> void range(void *dst, const void *const *src, int64_t n, const RowParams &p) {
    constant_row<Uniform, 2, f64, D, S, void *>(dst, src, n, p, [](S x, f64 scale, f64 offset) {
        const f64 y = f64(x) * scale + offset;
        if constexpr (is_real<D>)
            return D(y);
        else
            return clamp<D>(round_s32(y));
    });
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
