// The row walker: brings rows of elements of any layout before a Row, in as few and as long runs as the layout allows.
#pragma once
#include "kernel/row.hpp"
#include "kernel/transport.hpp"

#include <cstdint>

namespace jorm {

struct WalkOperand {
    char *start;
    int64_t row_stride;
    int64_t stride;     // from element to element; with a repeat, from group to group
    int32_t element;    // bytes of one
    int32_t repeat = 1; // so many elements of the row share one of this operand (a mask by pixel)
};

enum class WalkKind {
    map,    // writes the destination
    update, // reads it too, as masked operations do
    reduce  // operand 0 is not an array: its start goes to every row as the state that it gathers into
};

struct Walk {
    int64_t rows;
    int64_t length;   // elements of a row
    int32_t operands; // the destination first
    WalkOperand operand[1 + max_sources];
    const Transport *transport;
    WalkKind kind = WalkKind::map;
};

// Runs the row over everything, from the first element of the first row on. Dense data goes straight in, rows that
// follow each other in memory as one. Other layouts pass through blocks on the stack; so do results too large to stay
// in the cache, which are then streamed to memory. An operand may be the destination itself; the results of other
// overlaps are unspecified. Merges the rows of `w` on the way.
void walk(Walk &w, Row row, const RowParams &params);

} // namespace jorm
