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

} // namespace jorm
