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

#define ARRAYS(D, A) arrays<D, A, Equal>, arrays<D, A, Less>, arrays<D, A, LessEqual>
#define CONSTANT(D, A)                                                                                                 \
    constant<D, A, Equal>, constant<D, A, Less>, constant<D, A, LessEqual>, constant<D, A, Exchanged<Less>>,           \
        constant<D, A, Exchanged<LessEqual>>
#define ROWS(D, A)                                                                                                     \
    {                                                                                                                  \
        {ARRAYS(D, A)}, { CONSTANT(D, A) }                                                                             \
    }
#define DESTINATION(D)                                                                                                 \
    ROWS(D, u8), ROWS(D, s8), ROWS(D, s16), ROWS(D, s32), ROWS(D, f32), {                                              \
        {ARRAYS(D, f64)}, {}                                                                                           \
    }

extern const CompareRows compare_rows[];
const CompareRows compare_rows[] = {DESTINATION(u8), DESTINATION(u16), DESTINATION(u32)};

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
