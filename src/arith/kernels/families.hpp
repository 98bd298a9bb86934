// The families of element-wise kernels: F(family, list of kernels, shape of the list).
//
// The shape says what a line of the list holds: UNARY (D, A), BINARY (D, A, B), TERNARY (D, A, B, C); with constants
// CONSTANT (D, A, K), CHANNELED (channels, D, A), CONSTANT2 (D, A, B, K), CONSTANTS (D, A, K1, K2).
// Families of operations without typed kernels of their own use the list of a family with the same operands.
#pragma once
#include "arith/kernels/lists.hpp"
#include "kernel/row.hpp"

#define JORM_REAL_KERNELS(K) K(, f32, f32)
#define JORM_REAL_C_KERNELS(K) K(, 1, f32, f32)

#define JORM_BINARY_FAMILIES(F) \
    F(add, JORM_ADD_KERNELS, BINARY) \
    F(sub, JORM_SUB_KERNELS, BINARY) \
    F(rsub, JORM_RSUB_KERNELS, BINARY) \
    F(mul, JORM_MUL_KERNELS, BINARY) \
    F(addq, JORM_ADDQ_KERNELS, BINARY) \
    F(subq, JORM_SUBQ_KERNELS, BINARY) \
    F(rsubq, JORM_RSUBQ_KERNELS, BINARY) \
    F(addsq, JORM_ADD_KERNELS, BINARY) \
    F(subsq, JORM_SUB_KERNELS, BINARY) \
    F(div, JORM_DIV_KERNELS, BINARY) \
    F(divr, JORM_DIVR_KERNELS, BINARY) \
    F(rdiv, JORM_DIV_KERNELS, BINARY) \
    F(rdivr, JORM_DIVR_KERNELS, BINARY) \
    F(mulq, JORM_MULQ_KERNELS, BINARY) \
    F(absdiff, JORM_ABSDIFF_KERNELS, BINARY) \
    F(min, JORM_MIN_KERNELS, BINARY) \
    F(max, JORM_MAX_KERNELS, BINARY) \
    F(and_, JORM_AND_KERNELS, BINARY) \
    F(orr, JORM_ORR_KERNELS, BINARY) \
    F(xor_, JORM_XOR_KERNELS, BINARY)

#define JORM_CONSTANT_FAMILIES(F) \
    F(addC, JORM_ADD_C_KERNELS, CONSTANT) \
    F(subC, JORM_SUB_C_KERNELS, CONSTANT) \
    F(rsubC, JORM_RSUB_C_KERNELS, CONSTANT) \
    F(mulC, JORM_MUL_C_KERNELS, CONSTANT) \
    F(addqC, JORM_ADDQ_C_KERNELS, CONSTANT) \
    F(subqC, JORM_SUBQ_C_KERNELS, CONSTANT) \
    F(rsubqC, JORM_RSUBQ_C_KERNELS, CONSTANT) \
    F(addsqC, JORM_ADD_C_KERNELS, CONSTANT) \
    F(subsqC, JORM_SUB_C_KERNELS, CONSTANT) \
    F(divC, JORM_DIV_C_KERNELS, CHANNELED) \
    F(rdivC, JORM_RDIV_C_KERNELS, CHANNELED) \
    F(divrC, JORM_DIVR_C_KERNELS, CHANNELED) \
    F(rdivrC, JORM_RDIVR_C_KERNELS, CHANNELED) \
    F(mulqC, JORM_MULQ_C_KERNELS, CHANNELED) \
    F(absdiffC, JORM_ABSDIFF_C_KERNELS, CHANNELED) \
    F(minC, JORM_MIN_C_KERNELS, CHANNELED) \
    F(maxC, JORM_MAX_C_KERNELS, CHANNELED) \
    F(andC, JORM_AND_C_KERNELS, CHANNELED) \
    F(orrC, JORM_ORR_C_KERNELS, CHANNELED) \
    F(xorC, JORM_XOR_C_KERNELS, CHANNELED) \
    F(sigmoid, JORM_REAL_C_KERNELS, CHANNELED)

#define JORM_TERNARY_FAMILIES(F) \
    F(mla, JORM_MLA_KERNELS, TERNARY) \
    F(mls, JORM_MLS_KERNELS, TERNARY) \
    F(mlrs, JORM_MLS_KERNELS, TERNARY)

#define JORM_TERNARY_C_FAMILIES(F) \
    F(mlaC, JORM_MLA_C_KERNELS, CONSTANT2) \
    F(mlsC, JORM_MLS_C_KERNELS, CONSTANT2) \
    F(mlrsC, JORM_MLS_C_KERNELS, CONSTANT2) \
    F(mlaCC, JORM_MLA_CC_KERNELS, CONSTANTS) \
    F(mlsCC, JORM_MLS_CC_KERNELS, CONSTANTS) \
    F(mlrsCC, JORM_MLS_CC_KERNELS, CONSTANTS)

#define JORM_UNARY_FAMILIES(F) \
    F(neg, JORM_NEG_KERNELS, UNARY) \
    F(negq, JORM_NEGQ_KERNELS, UNARY) \
    F(sqr, JORM_SQR_KERNELS, UNARY) \
    F(not_, JORM_NOT_KERNELS, UNARY) \
    F(exp, JORM_REAL_KERNELS, UNARY) \
    F(ln, JORM_REAL_KERNELS, UNARY)

#define JORM_FAMILIES(F) \
    JORM_BINARY_FAMILIES(F) \
    JORM_CONSTANT_FAMILIES(F) \
    JORM_TERNARY_FAMILIES(F) \
    JORM_TERNARY_C_FAMILIES(F) \
    JORM_UNARY_FAMILIES(F)

namespace jorm {

#define JORM_FAMILY_ENUM(family, list, shape) family_##family,
enum Family : int { JORM_FAMILIES(JORM_FAMILY_ENUM) family_count };
#undef JORM_FAMILY_ENUM

} // namespace jorm
