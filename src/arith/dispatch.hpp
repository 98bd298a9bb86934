// Typed dispatch of the element-wise operations.
#pragma once
#include "arith/kernels/families.hpp"
#include "jorm/types.h"
#include "kernel/call.hpp"

namespace jorm {

struct ArithCall {
    jorm_xe *xe;
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand operand[1 + max_sources]; // the destination first
    const double *constant[2];
    int32_t p;
};

// Orders the sources, finds the kernel, goes through a scratch strip where the destination is narrower than a source.
int64_t dispatch(Family family, ArithCall &&call);

// Runs the kernel in this line of the family's list on `channels` interleaved channels: the typed kernels.
int64_t run_kernel(Family family, int line, int channels, ArithCall &&call);

// How a family is called, and the keys of its list: the types of the destination and the sources, four bits each.
struct FamilyKeys {
    int8_t sources, constants;
    int16_t count;
    const uint32_t *keys;
};
extern const FamilyKeys family_keys[family_count];

// The line of the list with these types, -1 when there is none.
int find_line(Family family, uint32_t key);

} // namespace jorm
