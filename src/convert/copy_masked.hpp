// Operations under a mask: bytes that select elements, or whole pixels.
#pragma once
#include "kernel/call.hpp"

namespace jorm {

// The row of an operation at a level is at masked_row(...) of the table masked_rows.
enum MaskedOp : int {
    masked_copy,
    masked_copy_far, // for data beyond the nearest caches
    masked_fill,
    masked_fill_far,
    masked_fill_pattern, // values by channel
    masked_choose,       // one value or another
    masked_choose_pattern,
    masked_ops
};
constexpr int masked_row(int op, int element_size_log2, bool inverted) {
    return (op * 4 + element_size_log2) * 2 + inverted;
}

struct MaskedCall {
    jorm_xe *xe;
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand dst, mask;
    bool by_pixel; // the mask has one channel that stands for all
};

int64_t copy_masked(MaskedCall &&call, const Operand &src);

// Elements that the mask selects get the values of their channels; with `choose` the others get `other_values`. Null
// values are zeros.
int64_t fill_masked(MaskedCall &&call, const double *values, bool choose, const double *other_values);

// The status of an operation on elements of this type under a mask of that one.
int64_t check_masked(uint32_t type, uint32_t mask_type);

} // namespace jorm
