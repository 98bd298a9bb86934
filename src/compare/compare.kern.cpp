// Rows of comparisons.
#include "compare/compare_rows.hpp"
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

using u16 = uint16_t;
using u32 = uint32_t;

struct Equal {
    template <class T> static bool holds(T a, T b) { return a == b; }
};
struct Less {
    template <class T> static bool holds(T a, T b) { return a < b; }
};
struct LessEqual {
    template <class T> static bool holds(T a, T b) { return a <= b; }
};
template <class Relation> struct Exchanged {
    template <class T> static bool holds(T a, T b) { return Relation::holds(b, a); }
};

template <class D, class A, class Relation>
void arrays(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    const auto &p = static_cast<const CompareParams &>(params);
    const D yes = D(p.yes), no = D(p.no);
    row2<D, A, A>(dst, src, n, [=](A a, A b) { return Relation::holds(a, b) ? yes : no; });
}

template <class D, class A, class Relation>
void constant(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    const auto &p = static_cast<const CompareParams &>(params);
    const D yes = D(p.yes), no = D(p.no);
    A k;
    __builtin_memcpy(&k, &p.constant, sizeof k);
    row1<D, A>(dst, src, n, [=](A a) { return Relation::holds(a, k) ? yes : no; });
}

template <class D> void select_by(void *dst, const void *const *src, int64_t n, const RowParams &) {
    row3<D, D, D, D>(dst, src, n, [](D mask, D a, D b) { return D((mask & a) | (~mask & b)); });
}

template <class C, class A> void widen(void *dst, const void *const *src, int64_t n, const RowParams &) {
    row1<C, A>(dst, src, n, [](A a) { return C(a); });
}

} // namespace

#define SOURCES(row, D, Relation)                                                                                      \
    row<D, u8, Relation>, row<D, s8, Relation>, row<D, s16, Relation>, row<D, s32, Relation>, row<D, f32, Relation>
#define ARRAYS(D, Relation) SOURCES(arrays, D, Relation), arrays<D, f64, Relation>
#define CONSTANT(D, Relation) SOURCES(constant, D, Relation), nullptr
#define TABLE(name, ROWS, ...)                                                                                         \
    extern const Row name[];                                                                                           \
    const Row name[] = {ROWS(u8, __VA_ARGS__), ROWS(u16, __VA_ARGS__), ROWS(u32, __VA_ARGS__)};
TABLE(equal_rows, ARRAYS, Equal)
TABLE(less_rows, ARRAYS, Less)
TABLE(less_equal_rows, ARRAYS, LessEqual)
TABLE(constant_equal_rows, CONSTANT, Equal)
TABLE(constant_less_rows, CONSTANT, Less)
TABLE(constant_less_equal_rows, CONSTANT, LessEqual)
TABLE(constant_greater_rows, CONSTANT, Exchanged<Less>)
TABLE(constant_greater_equal_rows, CONSTANT, Exchanged<LessEqual>)

extern const CompareHelpers compare_helpers[];
const CompareHelpers compare_helpers[] = {{
    {select_by<u8>, select_by<u16>, select_by<u32>},
    {{},
     {},
     {},
     {widen<s32, u8>, widen<s32, s8>, widen<s32, s16>},
     {widen<f32, u8>, widen<f32, s8>, widen<f32, s16>},
     {nullptr, nullptr, nullptr, widen<f64, s32>, widen<f64, f32>}},
}};

} // namespace jorm::JORM_LEVEL
