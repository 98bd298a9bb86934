// One comparison of up to three axes.
#pragma once
#include "kernel/call.hpp"
#include "kernel/row.hpp"

namespace jorm {

// An operator and its rows at every level. Who names one holds no other's rows.
struct Relation {
    const Row *arrays[level_count], *constant[level_count];
    bool exchanged;     // the rows of arrays take the second source first
    bool never = false; // nothing stands in it, whatever the rows say
};
extern const Relation relation_equal, relation_less, relation_less_equal, relation_greater, relation_greater_equal;
const Relation &relation_of(uint32_t op);

struct CompareCall {
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand operand[3]; // the destination, the source, the second source
    int sources;        // 1: with constants
    bool chosen;        // writes given values instead of masks
    const Relation &relation;
};

// Elements for each channel, of the source's type (constant) and of the destination's (what is written).
struct ComparePixels {
    const void *constant, *yes, *no;
};

// The typed kernels, which are told their types by their names.
int64_t compare_as(uint32_t dst_type, uint32_t src_type, CompareCall &&call, const ComparePixels &pixels);

// Every type: compares what there are kernels for, converts constants and values.
int64_t compare(CompareCall &&call, const double *constants, const double *yes, const double *no);

// Where the kernel of the types stands in the list of its family, -1 when there is none.
int compare_line(bool chosen, uint32_t dst_type, uint32_t src_type);

} // namespace jorm
