// Rows of thresholds.
#include "compare/threshold_rows.hpp"
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

using u16 = uint16_t;
using u32 = uint32_t;

template <class D, class A> void between(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    const auto &p = static_cast<const BetweenParams &>(params);
    const D yes = D(p.yes), no = D(p.no);
    A lo, hi;
    __builtin_memcpy(&lo, &p.constant, sizeof lo);
    __builtin_memcpy(&hi, &p.upper, sizeof hi);
    row1<D, A>(dst, src, n, [=](A a) { return D(((lo <= a) & (a <= hi)) ? yes : no); });
}

// Differences of integers are exact, those of single precision rounded to double.
template <class A> struct Wide { using type = s32; };
template <> struct Wide<s32> { using type = s64; };
template <> struct Wide<f32> { using type = f64; };

template <class D, class A> void excess(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    using W = typename Wide<A>::type;
    const auto &p = static_cast<const ExcessParams &>(params);
    const D yes = D(p.yes), no = D(p.no);
    const W limit = W(p.limit);
    row2<D, A, A>(dst, src, n, [=](A a, A mean) { return W(a) > W(mean) + limit ? yes : no; });
}

template <class D, class A> void subtract(void *dst, const void *const *src, int64_t n, const RowParams &) {
    row2<D, A, A>(dst, src, n, [](A a, A b) { return D(D(a) - D(b)); });
}
template <class D, class A> void move(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    const f64 by = static_cast<const MoveParams &>(params).by;
    row1<D, A>(dst, src, n, [=](A a) { return store<D, true>(f64(a) + by); });
}

} // namespace

#define SOURCES(row, D, of_s8) row<D, u8>, of_s8, row<D, s16>, row<D, s32>, row<D, f32>
#define BETWEEN(D) SOURCES(between, D, (between<D, s8>))
// No windows have means of s8.
#define EXCESS(D) SOURCES(excess, D, nullptr)
extern const Row between_rows[], excess_rows[];
const Row between_rows[] = {BETWEEN(u8), BETWEEN(u16), BETWEEN(u32), between<u32, f32>};
const Row excess_rows[] = {EXCESS(u8), EXCESS(u16), EXCESS(u32), excess<u32, f32>};
extern const GroundRows ground_rows[];
const GroundRows ground_rows[] = {{subtract<s16, u8>, move<u8, s16>}, {subtract<f32, f32>, move<f32, f32>}};

} // namespace jorm::JORM_LEVEL
