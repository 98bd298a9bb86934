// The rows of thresholds, in the order of compare_line().
#pragma once
#include "compare/compare_rows.hpp"

namespace jorm {

// Rows write `yes` where a sample lies between `constant` and `upper`, both included, else `no`.
struct BetweenParams : CompareParams {
    uint32_t upper; // as `constant`
};

// Rows write `yes` where a sample exceeds that of a second source by more than the limit, else `no`.
struct ExcessParams : CompareParams {
    double limit;
};

// What levels an uneven ground, for samples of u8 and of f32: differences of means and samples, in s16 and f32, and
// those moved and rounded to the samples' type.
struct MoveParams : RowParams {
    double by;
};
struct GroundRows {
    Row subtract, move;
};

} // namespace jorm
