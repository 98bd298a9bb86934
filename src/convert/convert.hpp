// What the parts of conversion share.
#pragma once
#include "convert/copy_front.hpp"
#include "jorm/vrng.h"

namespace jorm {

struct RangeRows;

// A range without extent, which no map can spread.
bool is_degenerate(const vrng &r);

// x * scale + offset, for every element or for each channel.
struct Line {
    double scale, offset;
};
struct Lines {
    Line line[4];
    int count;
};

// Runs the quickest of the rows that give the exact results: a line for each channel of the shape.
void run_lines(const RangeRows &rows, const Shape &shape, const Operand *operands, const Lines &all, Level which);

// Sees to it that the destination does not overwrite what of the source is still to be read: elements are read and
// written in ascending order, all channels in one pass or each in its own. Where that will not do, the source moves
// into scratch memory of its size: JORM_EINVAL when `xe` is null, JORM_ENOMEM when there is none.
int64_t keep_source(Detached &kept, jorm_xe *xe, uint64_t options, int axes, const int32_t *size, int32_t channels,
                    const Operand &dst, Operand &src, bool one_pass);

} // namespace jorm
