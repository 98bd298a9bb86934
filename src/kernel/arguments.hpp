// The arguments that the layers of every operation share.
//
// Layers: K typed kernels (start pointers and strides), D dispatchers (with element types), A adapters (bases, with
// types and origins).
#pragma once
#include "array/vec.hpp"
#include "kernel/call.hpp"

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

// An operand for a per-slice entry; the same for a pack.
#define SLICE(o) (o).type, (o).start, (o).stride
#define PACKED_SLICE(o) (o).type, (o).start, nullptr, (o).stride
