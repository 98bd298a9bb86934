// The argument lists of the element-wise functions, once for every layer and shape.
//
// Layers: K typed kernels (start pointers and strides), D dispatchers (with element types), A adapters (bases, with
// types and origins). Shapes: how many sources and constants there are, and whether p and q follow.
#pragma once
#include "arith/dispatch.hpp"
#include "array/vec.hpp"
#include "jorm/arith.h"

namespace jorm {

// Null, which every dispatcher refuses, for a word of more slots than a vector has.
inline const void *start_of(uint32_t word, const void *base, const int32_t *origin, const int32_t *stride) {
    if (!base || word_slots(word) > 4) return nullptr;
    return static_cast<const char *>(base) +
           vec_mkloff(word_slots(word), at_slot0(word, origin), at_slot0(word, stride));
}

} // namespace jorm

#define K_PARAMS(cv, x) cv void *x, const int32_t *x##_stride
#define D_PARAMS(cv, x) uint32_t x##_type, cv void *x, const int32_t *x##_stride
#define A_PARAMS(cv, x) uint32_t x##_type, cv void *x, const int32_t *x##_origin, const int32_t *x##_stride

#define K_OPERAND(x) jorm::operand(0, x, x##_stride)
#define D_OPERAND(x) jorm::operand(x##_type, x, x##_stride)
#define A_OPERAND(x) jorm::operand(x##_type, jorm::start_of(word, x, x##_origin, x##_stride), x##_stride)

#define LEAD_PARAMS jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size
#define CALL(constant1, constant2, p, ...)                                                                             \
    jorm::ArithCall(xe, options, word, size, constant1, constant2, p, __VA_ARGS__)

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
