// The argument lists of the element-wise functions, once for every layer and shape: how many sources and constants there
// are, and whether p and q follow.
#pragma once
#include "arith/dispatch.hpp"
#include "jorm/arith.h"
#include "kernel/arguments.hpp"

// Defines `call`, the arguments of a function as one record.
#define CALL(constant1, constant2, p, ...)                                                                             \
    jorm::Operand operands[] = {__VA_ARGS__};                                                                          \
    jorm::ArithCall call = {xe, options, word, size, operands, p, {constant1, constant2}}

#define NOT_PARAMS(L) LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, src)
#define NOT_CALL(L) CALL(nullptr, nullptr, 0, L##_OPERAND(dst), L##_OPERAND(src))

#define UNARY_PARAMS(L) NOT_PARAMS(L), int32_t p, int32_t
#define UNARY_CALL(L) CALL(nullptr, nullptr, p, L##_OPERAND(dst), L##_OPERAND(src))

#define LOGIC_PARAMS(L) LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, src1), L##_PARAMS(const, src2)
#define LOGIC_CALL(L) CALL(nullptr, nullptr, 0, L##_OPERAND(dst), L##_OPERAND(src1), L##_OPERAND(src2))

#define BINARY_PARAMS(L) LOGIC_PARAMS(L), int32_t p, int32_t
#define BINARY_CALL(L) CALL(nullptr, nullptr, p, L##_OPERAND(dst), L##_OPERAND(src1), L##_OPERAND(src2))

#define LOGIC_CONSTANT_PARAMS(L) LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, src), const double *constant
#define LOGIC_CONSTANT_CALL(L) CALL(constant, nullptr, 0, L##_OPERAND(dst), L##_OPERAND(src))

#define CONSTANT_PARAMS(L) LOGIC_CONSTANT_PARAMS(L), int32_t p, int32_t
#define CONSTANT_CALL(L) CALL(constant, nullptr, p, L##_OPERAND(dst), L##_OPERAND(src))

#define TERNARY_PARAMS(L) LOGIC_PARAMS(L), L##_PARAMS(const, src3), int32_t p, int32_t
#define TERNARY_CALL(L)                                                                                                \
    CALL(nullptr, nullptr, p, L##_OPERAND(dst), L##_OPERAND(src1), L##_OPERAND(src2), L##_OPERAND(src3))

#define CONSTANT2_PARAMS(L) LOGIC_PARAMS(L), const double *constant, int32_t p, int32_t
#define CONSTANT2_CALL(L) CALL(constant, nullptr, p, L##_OPERAND(dst), L##_OPERAND(src1), L##_OPERAND(src2))

#define CONSTANTS_PARAMS(L)                                                                                            \
    LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, src), const double *constant1, const double *constant2,          \
        int32_t p, int32_t
#define CONSTANTS_CALL(L) CALL(constant1, constant2, p, L##_OPERAND(dst), L##_OPERAND(src))
