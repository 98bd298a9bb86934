// Thresholds and the classes that they make.
#pragma once
#include "compare/compare_rows.hpp"
#include "jorm/threshold.h"
#include "stats/statistics.hpp"

namespace jorm {

// One thresholding of up to three axes.
struct ThresholdCall {
    jorm_xe *xe;
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand dst, src;
};

// Otsu's threshold of each selected channel; the ranges and bin counts (null or by channel) that were used.
int64_t otsu_thresholds(const StatSource &s, double *thresholds, vrng *ranges, uint32_t *bins);
// As a method asks for it, of all channels, as the lower values of pairs.
int64_t otsu_pairs(StatSource s, const jorm_thhmethod *method, double *pairs);

// Everything but overlap and layout, which any operation checks that writes the destination.
int64_t check_threshold(Shape &shape, const ThresholdCall &call);

// The upper class is what lies above the lower values of the pairs, and with `two` not above the upper ones. Inverted,
// the classes exchange what is written.
int64_t sheer_threshold(const ThresholdCall &call, const double *pairs, bool two, bool inverted = false);
void set_classes(CompareParams &p, uint32_t dst_type, bool inverted);

// The same beside the mean of a window.
int64_t adaptive_threshold(const ThresholdCall &call, const double *pairs);

int64_t immediate_threshold(const ThresholdCall &call, const double *pairs, int32_t count);
int64_t otsu_threshold(const ThresholdCall &call, const jorm_thhmethod *method);
int64_t usto_threshold(const ThresholdCall &call, const jorm_thhmethod *method);
int64_t blur_threshold(const ThresholdCall &call, const jorm_thhmethod *method);
int64_t method_threshold(const ThresholdCall &call, const jorm_thhmethod *method, const double *pairs, int32_t count);

inline uint32_t method_code(const jorm_thhmethod *method) {
    return method ? method->word & 15 : uint32_t(JORM_THRESHOLD_IMMEDIATE);
}
int64_t check_method(const jorm_thhmethod *method, const double *pairs);

} // namespace jorm
