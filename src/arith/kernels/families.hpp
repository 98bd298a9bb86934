// The families of element-wise kernels: F(family, list of kernels, shape of the list, traits).
//
// The shape says what a line of the list holds: UNARY (D, A), BINARY (D, A, B), TERNARY (D, A, B, C); with constants
// CONSTANT (D, A, K), CHANNELED (channels, D, A), CONSTANT2 (D, A, B, K), CONSTANTS (D, A, K1, K2).
// Families of operations without typed kernels of their own use the list of a family with the same operands.
// The traits are members of Family other than their defaults.
#pragma once
#include "arith/kernels/lists.hpp"

#define JORM_REAL_KERNELS(K) K(, f32, f32)
#define JORM_REAL_C_KERNELS(K) K(, 1, f32, f32)

#define JORM_FAMILIES(F) \
    F(add, JORM_ADD_KERNELS, BINARY, .exchanged = &family_add, .doubled = &family_mulC) \
    F(sub, JORM_SUB_KERNELS, BINARY, .exchanged = &family_rsub) \
    F(rsub, JORM_RSUB_KERNELS, BINARY, .exchanged = &family_sub) \
    F(mul, JORM_MUL_KERNELS, BINARY, .exchanged = &family_mul) \
    F(addq, JORM_ADDQ_KERNELS, BINARY, .exchanged = &family_addq) \
    F(subq, JORM_SUBQ_KERNELS, BINARY, .exchanged = &family_rsubq) \
    F(rsubq, JORM_RSUBQ_KERNELS, BINARY, .exchanged = &family_subq) \
    F(addsq, JORM_ADD_KERNELS, BINARY, .exchanged = &family_addsq) \
    F(subsq, JORM_SUB_KERNELS, BINARY, .exchanged = &family_subsq) \
    F(div, JORM_DIV_KERNELS, BINARY) \
    F(divr, JORM_DIVR_KERNELS, BINARY) \
    F(rdiv, JORM_DIV_KERNELS, BINARY) \
    F(rdivr, JORM_DIVR_KERNELS, BINARY) \
    F(mulq, JORM_MULQ_KERNELS, BINARY, .exchanged = &family_mulq) \
    F(absdiff, JORM_ABSDIFF_KERNELS, BINARY, .narrows = false) \
    F(min, JORM_MIN_KERNELS, BINARY, .narrows = false) \
    F(max, JORM_MAX_KERNELS, BINARY, .narrows = false) \
    F(and_, JORM_AND_KERNELS, BINARY) \
    F(orr, JORM_ORR_KERNELS, BINARY) \
    F(xor_, JORM_XOR_KERNELS, BINARY) \
    F(addC, JORM_ADD_C_KERNELS, CONSTANT) \
    F(subC, JORM_SUB_C_KERNELS, CONSTANT) \
    F(rsubC, JORM_RSUB_C_KERNELS, CONSTANT) \
    F(mulC, JORM_MUL_C_KERNELS, CONSTANT) \
    F(addqC, JORM_ADDQ_C_KERNELS, CONSTANT) \
    F(subqC, JORM_SUBQ_C_KERNELS, CONSTANT) \
    F(rsubqC, JORM_RSUBQ_C_KERNELS, CONSTANT) \
    F(addsqC, JORM_ADD_C_KERNELS, CONSTANT, .squares = true) \
    F(subsqC, JORM_SUB_C_KERNELS, CONSTANT, .squares = true) \
    F(divC, JORM_DIV_C_KERNELS, CHANNELED) \
    F(rdivC, JORM_RDIV_C_KERNELS, CHANNELED) \
    F(divrC, JORM_DIVR_C_KERNELS, CHANNELED) \
    F(rdivrC, JORM_RDIVR_C_KERNELS, CHANNELED) \
    F(mulqC, JORM_MULQ_C_KERNELS, CHANNELED) \
    F(absdiffC, JORM_ABSDIFF_C_KERNELS, CHANNELED, .narrows = false) \
    F(minC, JORM_MIN_C_KERNELS, CHANNELED, .narrows = false) \
    F(maxC, JORM_MAX_C_KERNELS, CHANNELED, .narrows = false) \
    F(andC, JORM_AND_C_KERNELS, CHANNELED) \
    F(orrC, JORM_ORR_C_KERNELS, CHANNELED) \
    F(xorC, JORM_XOR_C_KERNELS, CHANNELED) \
    F(sigmoid, JORM_REAL_C_KERNELS, CHANNELED, .narrows = false) \
    F(mla, JORM_MLA_KERNELS, TERNARY, .exchanged = &family_mla) \
    F(mls, JORM_MLS_KERNELS, TERNARY, .exchanged = &family_mls) \
    F(mlrs, JORM_MLS_KERNELS, TERNARY, .exchanged = &family_mlrs) \
    F(mlaC, JORM_MLA_C_KERNELS, CONSTANT2) \
    F(mlsC, JORM_MLS_C_KERNELS, CONSTANT2) \
    F(mlrsC, JORM_MLS_C_KERNELS, CONSTANT2) \
    F(mlaCC, JORM_MLA_CC_KERNELS, CONSTANTS) \
    F(mlsCC, JORM_MLS_CC_KERNELS, CONSTANTS) \
    F(mlrsCC, JORM_MLS_CC_KERNELS, CONSTANTS) \
    F(neg, JORM_NEG_KERNELS, UNARY) \
    F(negq, JORM_NEGQ_KERNELS, UNARY) \
    F(sqr, JORM_SQR_KERNELS, UNARY) \
    F(not_, JORM_NOT_KERNELS, UNARY) \
    F(exp, JORM_REAL_KERNELS, UNARY, .narrows = false) \
    F(ln, JORM_REAL_KERNELS, UNARY, .narrows = false)
