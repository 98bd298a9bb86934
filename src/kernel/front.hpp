// The steps that every front end takes first: checks, negotiation, start pointers.
#pragma once
#include "jorm/types.h"
#include "kernel/call.hpp"

namespace jorm {

// An operation code: four characters, the first in the highest byte.
constexpr uint32_t fourcc(const char (&s)[5]) {
    return uint32_t(uint8_t(s[0])) << 24 | uint32_t(uint8_t(s[1])) << 16 | uint32_t(uint8_t(s[2])) << 8 | uint8_t(s[3]);
}

// What an operand beside the destination is: a source, or a mask of bytes with one channel or as many as the others.
enum class Role : uint8_t { source, mask };

struct FrontSource {
    const jorm_array *array;
    const int32_t *at; // where its region starts, null for its origin
    Role role = Role::source;
};

// The operands of one call, the destination first, at their start elements; strides from the first used slot on. A mask
// of one channel beside several counts by pixel. The size vector is whole; `first` is its first used slot.
struct Front {
    uint32_t word;
    int32_t first;
    int32_t size[4];
    Operand operand[1 + max_sources];

    const int32_t *sizes() const { return size + first; }
    int axes() const { return 4 - first; }
    Shape shape() const { return {axes(), size[1], size[2], size[3], 0}; }
};

// Checks the destination and the sources, negotiates the region and fills the front. A null first source means the
// destination itself. The region may narrow the channels; those of a source start at the channel slot of its start
// point. Four-axis arrays pass here; the caller decides about them by word. Returns a status.
int64_t negotiate(Front &front, const jorm_array *dst, const jorm_site *roi, FrontSource *sources, int count);

template <int N>
int64_t negotiate(Front &front, const jorm_array *dst, const jorm_site *roi, FrontSource (&&sources)[N]) {
    static_assert(N <= max_sources);
    return negotiate(front, dst, roi, sources, N);
}
inline int64_t negotiate(Front &front, const jorm_array *dst, const jorm_site *roi) {
    return negotiate(front, dst, roi, nullptr, 0);
}

// The check of the descriptors alone, for fronts that negotiate by rules of their own.
int64_t check_operands(const jorm_array *dst, const FrontSource &source);

// An array as an operand that starts at `origin` (four slots); its strides from the first slot on that it uses.
Operand operand_at(const jorm_array &a, const int32_t *origin);

// An array that a descriptor can really describe: no null base, elements at multiples of their size.
bool describes_memory(const jorm_array *a);

} // namespace jorm
