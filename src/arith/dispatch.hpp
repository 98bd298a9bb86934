// Typed dispatch of the element-wise operations.
#pragma once
#include "arith/kernels/families.hpp"
#include "jorm/types.h"
#include "kernel/call.hpp"
#include "kernel/row.hpp"
#include "xe/level.hpp"

namespace jorm {

struct ArithCall {
    jorm_xe *xe;
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand *operand; // the destination first
    int32_t p;
    const double *constant[2];
};

// Where the keys of a list stand in it: hashed, with the next free slot for what meets.
struct KeyIndex {
    static constexpr uint32_t slots = 128;
    int8_t line[slots];

    static constexpr uint32_t first_slot(uint32_t key) { return key * 0x9E3779B1u >> 25; }
    template <int N> constexpr explicit KeyIndex(const uint32_t (&keys)[N]) : line() {
        static_assert(N <= int(slots) / 2);
        for (int8_t &l : line) l = -1;
        for (int i = 0; i < N; ++i) {
            uint32_t slot = first_slot(keys[i]);
            while (line[slot] >= 0) slot = (slot + 1) % slots;
            line[slot] = int8_t(i);
        }
    }
};

// What a family is: how it is called, and the kernels of its list. The families refer to each other only where one runs
// the other's kernels, so that a program holds no kernels but those of its calls.
struct Family {
    uint8_t sources, constants;
    const uint32_t *keys; // the types of the destination and the sources, four bits each
    KeyIndex index;
    const Rows *rows[level_count];
    const Family *exchanged = nullptr; // the first two sources the other way round; null where they may not be
    const Family *doubled = nullptr;   // of a source with itself: a product with two
    bool narrows = true;               // destinations narrower than a source come by way of a strip
    bool squares = false;

    // The line of the list with these types, -1 when there is none.
    int find_line(uint32_t key) const {
        for (uint32_t slot = KeyIndex::first_slot(key); index.line[slot] >= 0; slot = (slot + 1) % KeyIndex::slots)
            if (keys[index.line[slot]] == key) return index.line[slot];
        return -1;
    }
};
#define JORM_DECLARE_FAMILY(family, ...) extern const Family family_##family;
JORM_FAMILIES(JORM_DECLARE_FAMILY)
#undef JORM_DECLARE_FAMILY

// Orders the sources, finds the kernel, goes through a scratch strip where the destination is narrower than a source.
int64_t dispatch(const Family &family, ArithCall &call);

// Runs the kernel in this line of the family's list on `channels` interleaved channels: the typed kernels.
int64_t run_kernel(const Family &family, int line, int channels, ArithCall &call);

} // namespace jorm
