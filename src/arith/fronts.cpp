#include "arith/fronts.hpp"

#include "arith/dispatch.hpp"
#include "jorm/arith.h"
#include "kernel/front.hpp"

namespace jorm {
namespace {

// What follows the arrays in every front end.
struct FrontCall {
    jorm_xe *xe;
    uint64_t options;
    const jorm_array *dst;
    const jorm_site *roi;
    int32_t p = 0;
    const double *constant1 = nullptr, *constant2 = nullptr;
};

// Negotiates and goes on only with arrays of three axes.
template <int N> int64_t run_front(const Family &family, const FrontCall &c, FrontSource (&&sources)[N]) {
    Front f;
    if (const int64_t status = negotiate(f, c.dst, c.roi, sources, N); status != JORM_OK) return status;
    if (f.axes() > 3) return JORM_ENOTSUP;
    ArithCall call = {c.xe, c.options, f.word, f.sizes(), f.operand, c.p, {c.constant1, c.constant2}};
    return dispatch(family, call);
}

} // namespace

int64_t unary_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                    const jorm_site *roi, const int32_t *at, int32_t p, int32_t) {
    return run_front(family, {xe, options, dst, roi, p}, {{src, at}});
}

int64_t binary_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                     const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p,
                     int32_t) {
    return run_front(family, {xe, options, dst, roi, p}, {{src1, at1}, {src2, at2}});
}

int64_t constant_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                       const jorm_array *src, const double *constant, const jorm_site *roi, const int32_t *at,
                       int32_t p, int32_t) {
    return run_front(family, {xe, options, dst, roi, p, constant}, {{src, at}});
}

int64_t ternary_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                      const jorm_array *src1, const jorm_array *src2, const jorm_array *src3, const jorm_site *roi,
                      const int32_t *at1, const int32_t *at2, const int32_t *at3, int32_t p, int32_t) {
    return run_front(family, {xe, options, dst, roi, p}, {{src1, at1}, {src2, at2}, {src3, at3}});
}

int64_t ternary_constant_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                               const jorm_array *src1, const jorm_array *src2, const double *constant,
                               const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p, int32_t) {
    return run_front(family, {xe, options, dst, roi, p, constant}, {{src1, at1}, {src2, at2}});
}

int64_t ternary_constants_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                                const jorm_array *src, const double *constant1, const double *constant2,
                                const jorm_site *roi, const int32_t *at, int32_t p, int32_t) {
    return run_front(family, {xe, options, dst, roi, p, constant1, constant2}, {{src, at}});
}

int64_t logic_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                    const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2) {
    return run_front(family, {xe, options, dst, roi}, {{src1, at1}, {src2, at2}});
}

int64_t logic_constant_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                             const jorm_array *src, const double *constant, const jorm_site *roi, const int32_t *at) {
    return run_front(family, {xe, options, dst, roi, 0, constant}, {{src, at}});
}

} // namespace jorm

JORM_API int64_t JormNot(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                         const jorm_site *roi, const int32_t *at) {
    using namespace jorm;
    return run_front(family_not_, {xe, options, dst, roi}, {{src, at}});
}
