// The entries of element-wise arithmetic and logic: each is a front end with its family.
#include "arith/dispatch.hpp"
#include "arith/fronts.hpp"
#include "jorm/arith.h"

using namespace jorm;

#define UNARY(name, family)                                                                                            \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const jorm_site *roi, const int32_t *at, int32_t p, int32_t q) {                             \
        return unary_front(family, xe, options, dst, src, roi, at, p, q);                                              \
    }
UNARY(JormExp, family_exp)
UNARY(JormLn, family_ln)
UNARY(JormNegate, family_neg)
UNARY(JormNegateq, family_negq)

#define BINARY(name, family)                                                                                           \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,        \
                          int32_t p, int32_t q) {                                                                      \
        return binary_front(family, xe, options, dst, src1, src2, roi, at1, at2, p, q);                                \
    }
BINARY(JormAdd, family_add)
BINARY(JormAddq, family_addq)
BINARY(JormAddsq, family_addsq)
BINARY(JormSub, family_sub)
BINARY(JormSubq, family_subq)
BINARY(JormSubsq, family_subsq)
BINARY(JormRSub, family_rsub)
BINARY(JormRSubq, family_rsubq)
BINARY(JormRSubsq, family_subsq)
BINARY(JormMul, family_mul)
BINARY(JormMulq, family_mulq)
BINARY(JormDiv, family_div)
BINARY(JormDivr, family_divr)
BINARY(JormRDiv, family_rdiv)
BINARY(JormRDivr, family_rdivr)

#define CONSTANT(name, family)                                                                                         \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q) {     \
        return constant_front(family, xe, options, dst, src, constant, roi, at, p, q);                                 \
    }
CONSTANT(JormAddC, family_addC)
CONSTANT(JormAddqC, family_addqC)
CONSTANT(JormAddsqC, family_addsqC)
CONSTANT(JormSubC, family_subC)
CONSTANT(JormSubqC, family_subqC)
CONSTANT(JormSubsqC, family_subsqC)
CONSTANT(JormRSubC, family_rsubC)
CONSTANT(JormRSubqC, family_rsubqC)
CONSTANT(JormRSubsqC, family_subsqC)
CONSTANT(JormMulC, family_mulC)
CONSTANT(JormMulqC, family_mulqC)
CONSTANT(JormDivC, family_divC)
CONSTANT(JormDivrC, family_divrC)
CONSTANT(JormRDivC, family_rdivC)
CONSTANT(JormRDivrC, family_rdivrC)
CONSTANT(JormSigmoidAlpha, family_sigmoid)

#define TERNARY(name, family)                                                                                          \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,    \
                          const int32_t *at2, const int32_t *at3, int32_t p, int32_t q) {                              \
        return ternary_front(family, xe, options, dst, src1, src2, src3, roi, at1, at2, at3, p, q);                    \
    }
TERNARY(JormMulAdd, family_mla)
TERNARY(JormMulSub, family_mls)
TERNARY(JormMulRSub, family_mlrs)

#define TERNARY_CONSTANT(name, family)                                                                                 \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const double *constant, const jorm_site *roi, const int32_t *at1,    \
                          const int32_t *at2, int32_t p, int32_t q) {                                                  \
        return ternary_constant_front(family, xe, options, dst, src1, src2, constant, roi, at1, at2, p, q);            \
    }
TERNARY_CONSTANT(JormMulAddC, family_mlaC)
TERNARY_CONSTANT(JormMulSubC, family_mlsC)
TERNARY_CONSTANT(JormMulRSubC, family_mlrsC)

#define TERNARY_CONSTANTS(name, family)                                                                                \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const double *constant1, const double *constant2, const jorm_site *roi, const int32_t *at,   \
                          int32_t p, int32_t q) {                                                                      \
        return ternary_constants_front(family, xe, options, dst, src, constant1, constant2, roi, at, p, q);            \
    }
TERNARY_CONSTANTS(JormMulAddCC, family_mlaCC)
TERNARY_CONSTANTS(JormMulSubCC, family_mlsCC)
TERNARY_CONSTANTS(JormMulRSubCC, family_mlrsCC)

#define LOGIC(name, family)                                                                                            \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2) {      \
        return logic_front(family, xe, options, dst, src1, src2, roi, at1, at2);                                       \
    }
LOGIC(JormAnd, family_and_)
LOGIC(JormOrr, family_orr)
LOGIC(JormXor, family_xor_)
LOGIC(JormAbsDiff, family_absdiff)
LOGIC(JormMin, family_min)
LOGIC(JormMax, family_max)

#define LOGIC_CONSTANT(name, family)                                                                                   \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const double *constant, const jorm_site *roi, const int32_t *at) {                           \
        return logic_constant_front(family, xe, options, dst, src, constant, roi, at);                                 \
    }
LOGIC_CONSTANT(JormAndC, family_andC)
LOGIC_CONSTANT(JormOrrC, family_orrC)
LOGIC_CONSTANT(JormXorC, family_xorC)
LOGIC_CONSTANT(JormAbsDiffC, family_absdiffC)
LOGIC_CONSTANT(JormMinC, family_minC)
LOGIC_CONSTANT(JormMaxC, family_maxC)
