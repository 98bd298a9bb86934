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
    Operand *operand; // the destination first
    int32_t p;
    const double *constant[2];
};

// Orders the sources, finds the kernel, goes through a scratch strip where the destination is narrower than a source.
int64_t dispatch(Family family, ArithCall &call);

// Runs the kernel in this line of the family's list on `channels` interleaved channels: the typed kernels.
int64_t run_kernel(Family family, int line, int channels, ArithCall &call);

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

// How a family is called, and the keys of its list: the types of the destination and the sources, four bits each.
struct FamilyKeys {
    uint8_t sources, constants;
    const uint32_t *keys;
    KeyIndex index;
};
extern const FamilyKeys family_keys[family_count];

// The line of the list with these types, -1 when there is none.
inline int find_line(Family family, uint32_t key) {
    const FamilyKeys &f = family_keys[family];
    for (uint32_t slot = KeyIndex::first_slot(key); f.index.line[slot] >= 0; slot = (slot + 1) % KeyIndex::slots)
        if (f.keys[f.index.line[slot]] == key) return f.index.line[slot];
    return -1;
}

} // namespace jorm
