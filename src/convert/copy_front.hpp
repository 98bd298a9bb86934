// What the front ends of copies and fills share.
#pragma once
#include "convert/copy_block.hpp"
#include "jorm/arith.h"
#include "kernel/arguments.hpp"
#include "kernel/front.hpp"
#include "kernel/proc.hpp"
#include "xe/scratch.hpp"

#include <optional>

namespace jorm {

// Scratch memory for an operand that the destination would overwrite before it is read.
class Detached {
public:
    // Moves the operand, `size` of which count, into scratch memory.
    int64_t move(jorm_xe *xe, uint64_t options, int axes, const int32_t *size, int32_t channels, Operand &o);
    // The same where that is necessary.
    int64_t move_from(const Operand &dst, jorm_xe *xe, uint64_t options, const Front &f, Operand &o);

private:
    std::optional<Scratch> block_;
    int32_t stride_[4];
};

} // namespace jorm
