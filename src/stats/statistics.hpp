// Statistics of samples, behind every layer of the interface.
#pragma once
#include "jorm/histogram.h"
#include "jorm/stats.h"
#include "kernel/call.hpp"

#include <cmath>
#include <limits>

namespace jorm {

// To nearest; NaN and what does not fit become -2147483648.
inline int32_t rounded(double x) {
    x = std::nearbyint(x);
    return x >= -2147483648.0 && x <= 2147483647.0 ? int32_t(x) : std::numeric_limits<int32_t>::min();
}

// What a statistic is taken of: flat arguments with two to four axes.
struct StatSource {
    jorm_xe *xe;
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand samples;
    bool masked = false;
    Operand mask = {0, nullptr, nullptr};
    int32_t channels = 0; // what a kernel's name says; 0: what the size vector says
};

// A statistic of masked samples has a name of its own, so that the other one brings no rows for masks into a program.
int64_t sum(const StatSource &s, double *results);
int64_t masked_sum(const StatSource &s, double *results);
int64_t mean(const StatSource &s, double *results);
int64_t masked_mean(const StatSource &s, double *results);

// Places are counted from `origin` (plane, row, column; null for zeros), where the samples begin.
int64_t extrema(const StatSource &s, jorm_minmax *record, const int32_t *origin);
int64_t masked_extrema(const StatSource &s, jorm_minmax *record, const int32_t *origin);

// Per selected channel the measured range; the caller's range, repaired.
int64_t compute_range(const StatSource &s, vrng *ranges);
int64_t compute_masked_range(const StatSource &s, vrng *ranges);
int64_t adjust_range(const StatSource &s, vrng *ranges);
int64_t adjust_masked_range(const StatSource &s, vrng *ranges);

// Counts the samples of each selected channel into its record.
int64_t histogram(const StatSource &s, jorm_histogram *records);
int64_t masked_histogram(const StatSource &s, jorm_histogram *records);
// Are samples of the type counted?
int64_t check_histogram_type(uint32_t type);

} // namespace jorm
