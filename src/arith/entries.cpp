// The entries of element-wise arithmetic and logic: each is a front end with an operation code.
#include "arith/fronts.hpp"
#include "jorm/arith.h"
#include "kernel/front.hpp"

using namespace jorm;

#define UNARY(name, code)                                                                                              \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const jorm_site *roi, const int32_t *at, int32_t p, int32_t q) {                             \
        return unary_front(fourcc(code), xe, options, dst, src, roi, at, p, q);                                        \
    }
UNARY(JormExp, "exp ")
UNARY(JormLn, "ln  ")
UNARY(JormNegate, "neg ")
UNARY(JormNegateq, "negq")

#define BINARY(name, code)                                                                                             \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,        \
                          int32_t p, int32_t q) {                                                                      \
        return binary_front(fourcc(code), xe, options, dst, src1, src2, roi, at1, at2, p, q);                          \
    }
BINARY(JormAdd, "aadd")
BINARY(JormAddq, "addq")
BINARY(JormAddsq, "adsq")
BINARY(JormSub, "asub")
BINARY(JormSubq, "subq")
BINARY(JormSubsq, "sbsq")
BINARY(JormRSub, "rsub")
BINARY(JormRSubq, "rsbq")
BINARY(JormRSubsq, "rssq")
BINARY(JormMul, "amul")
BINARY(JormMulq, "mulq")
BINARY(JormDiv, "adiv")
BINARY(JormDivr, "divr")
BINARY(JormRDiv, "rdiv")
BINARY(JormRDivr, "rdvr")

#define CONSTANT(name, code)                                                                                           \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q) {     \
        return constant_front(fourcc(code), xe, options, dst, src, constant, roi, at, p, q);                           \
    }
CONSTANT(JormAddC, "aadd")
CONSTANT(JormAddqC, "addq")
CONSTANT(JormAddsqC, "adsq")
CONSTANT(JormSubC, "asub")
CONSTANT(JormSubqC, "subq")
CONSTANT(JormSubsqC, "sbsq")
CONSTANT(JormRSubC, "rsub")
CONSTANT(JormRSubqC, "rsbq")
CONSTANT(JormRSubsqC, "rssq")
CONSTANT(JormMulC, "amul")
CONSTANT(JormMulqC, "mulq")
CONSTANT(JormDivC, "adiv")
CONSTANT(JormDivrC, "divr")
CONSTANT(JormRDivC, "rdiv")
CONSTANT(JormRDivrC, "rdvr")
CONSTANT(JormSigmoidAlpha, "sigm")

#define TERNARY(name, code)                                                                                            \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,    \
                          const int32_t *at2, const int32_t *at3, int32_t p, int32_t q) {                              \
        return ternary_front(fourcc(code), xe, options, dst, src1, src2, src3, roi, at1, at2, at3, p, q);              \
    }
TERNARY(JormMulAdd, "mla ")
TERNARY(JormMulSub, "mls ")
TERNARY(JormMulRSub, "mlrs")

#define TERNARY_CONSTANT(name, code)                                                                                   \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const double *constant, const jorm_site *roi, const int32_t *at1,    \
                          const int32_t *at2, int32_t p, int32_t q) {                                                  \
        return ternary_constant_front(fourcc(code), xe, options, dst, src1, src2, constant, roi, at1, at2, p, q);      \
    }
TERNARY_CONSTANT(JormMulAddC, "mla ")
TERNARY_CONSTANT(JormMulSubC, "mls ")
TERNARY_CONSTANT(JormMulRSubC, "mlrs")

#define TERNARY_CONSTANTS(name, code)                                                                                  \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const double *constant1, const double *constant2, const jorm_site *roi, const int32_t *at,   \
                          int32_t p, int32_t q) {                                                                      \
        return ternary_constants_front(fourcc(code), xe, options, dst, src, constant1, constant2, roi, at, p, q);      \
    }
TERNARY_CONSTANTS(JormMulAddCC, "mla ")
TERNARY_CONSTANTS(JormMulSubCC, "mls ")
TERNARY_CONSTANTS(JormMulRSubCC, "mlrs")

#define LOGIC(name, code)                                                                                              \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,                \
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2) {      \
        return logic_front(fourcc(code), xe, options, dst, src1, src2, roi, at1, at2);                                 \
    }
LOGIC(JormAnd, "aand")
LOGIC(JormOrr, "aorr")
LOGIC(JormXor, "axor")
LOGIC(JormAbsDiff, "abdf")
LOGIC(JormMin, "amin")
LOGIC(JormMax, "amax")

#define LOGIC_CONSTANT(name, code)                                                                                     \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,                 \
                          const double *constant, const jorm_site *roi, const int32_t *at) {                           \
        return logic_constant_front(fourcc(code), xe, options, dst, src, constant, roi, at);                           \
    }
LOGIC_CONSTANT(JormAndC, "aand")
LOGIC_CONSTANT(JormOrrC, "aorr")
LOGIC_CONSTANT(JormXorC, "axor")
LOGIC_CONSTANT(JormAbsDiffC, "abdf")
LOGIC_CONSTANT(JormMinC, "amin")
LOGIC_CONSTANT(JormMaxC, "amax")
