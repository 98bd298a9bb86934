#include "compare/threshold.hpp"

#include "compare/compare.hpp"
#include "compare/threshold_rows.hpp"
#include "jorm/shapes.h"
#include "kernel/level_table.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace jorm {

JORM_LEVEL_TABLE(const Row, between_rows);

namespace {

constexpr double none = std::numeric_limits<double>::quiet_NaN(), infinity = std::numeric_limits<double>::infinity();

// The largest number of single precision that is not above x.
float single_below(double x) {
    const auto f = float(x);
    return double(f) > x ? std::nextafter(f, -HUGE_VALF) : f;
}

vrng values_of(uint32_t type) {
    vrng all = {-infinity, infinity};
    if (type != JORM_F32) jorm_vrng_saturate_$I(type, &all);
    return all;
}

// The smallest value of a type above a threshold, the largest one not above it; NaN when there is none.
double least_above(uint32_t type, double threshold) {
    const vrng all = values_of(type);
    if (std::isnan(threshold) || threshold >= all.hi) return none;
    if (type == JORM_F32) return std::nextafter(single_below(threshold), HUGE_VALF);
    return std::max(std::floor(threshold) + 1, all.lo);
}
double largest_upto(uint32_t type, double threshold) {
    const vrng all = values_of(type);
    if (std::isnan(threshold) || threshold < all.lo) return none;
    return type == JORM_F32 ? single_below(threshold) : std::min(std::floor(threshold), all.hi);
}

uint32_t bits_of(uint32_t type, double value) {
    uint32_t bits[4];
    jorm_mkifillvalv16(type, bits, &value, 1);
    return bits[0];
}

double upper_class(uint32_t type) {
    double largest = 0;
    jorm_defillvals(type, &largest, nullptr, 1);
    return largest;
}

// The samples of the upper class, by channel: empty where a bound is NaN.
struct Intervals {
    vrng of[4];

    bool any_empty(int channels) const {
        return std::any_of(of, of + channels, [](const vrng &r) { return !(r.lo <= r.hi); });
    }
    bool uniform(int channels) const {
        return std::all_of(of, of + channels, [&](const vrng &r) { return r.lo == of[0].lo && r.hi == of[0].hi; });
    }
};

int64_t select_between(const ThresholdCall &call, const Shape &shape, const Intervals &intervals, bool inverted) {
    const uint32_t type = call.src.type;
    const Operand operands[] = {call.dst, call.src};
    const Level which = level(call.options);
    const Row row = JORM_OF_LEVEL(between_rows, which)[compare_line(true, call.dst.type, type)];
    BetweenParams p;
    set_classes(p, call.dst.type, inverted);
    const auto set_bounds = [&](vrng r) {
        if (!(r.lo <= r.hi)) { // nothing lies between
            r = values_of(type);
            std::swap(r.lo, r.hi);
        }
        p.constant = bits_of(type, r.lo);
        p.upper = bits_of(type, r.hi);
    };
    if (intervals.uniform(shape.channels)) {
        set_bounds(intervals.of[0]);
        walk_channels(shape, operands, 2, row, p, which);
        return JORM_OK;
    }
    for (int c = 0; c < shape.channels; ++c) {
        set_bounds(intervals.of[c]);
        Walk w = make_walk(shape, operands, 2, c, which);
        walk(w, row, p);
    }
    return JORM_OK;
}

} // namespace

void set_classes(CompareParams &p, uint32_t dst_type, bool inverted) {
    p.yes = bits_of(dst_type, upper_class(dst_type));
    p.no = 0;
    if (inverted) std::swap(p.yes, p.no);
}

int64_t check_threshold(Shape &shape, const ThresholdCall &call) {
    const uint32_t to = call.dst.type;
    if (!call.dst.start || !call.dst.stride || !call.src.start || !call.src.stride) return JORM_EINVAL;
    if (int64_t status = read_shape(shape, call.word, call.size); status != JORM_OK) return status;
    if (!well_formed(to) || !well_formed(call.src.type)) return JORM_EINVAL;
    const bool has_class = to == JORM_U8 || to == JORM_S16 || to == JORM_S32 || to == JORM_F32;
    return has_class && compare_line(true, to, call.src.type) >= 0 ? JORM_OK : JORM_ENOTSUP;
}

int64_t sheer_threshold(const ThresholdCall &call, const double *pairs, bool two, bool inverted) {
    Shape shape;
    if (!pairs) return JORM_EINVAL;
    if (int64_t status = check_threshold(shape, call); status != JORM_OK) return status;
    const uint32_t type = call.src.type;
    Intervals intervals;
    for (int c = 0; c < shape.channels; ++c)
        intervals.of[c] = {least_above(type, pairs[2 * c]),
                           two ? largest_upto(type, pairs[2 * c + 1]) : values_of(type).hi};
    if (two || intervals.any_empty(shape.channels)) return select_between(call, shape, intervals, inverted);
    double least[4], upper[4];
    constexpr double lower[4] = {};
    for (int c = 0; c < shape.channels; ++c) least[c] = intervals.of[c].lo;
    std::fill_n(upper, 4, upper_class(call.dst.type));
    return compare({call.options, call.word, call.size, {call.dst, call.src}, 1, true, relation_greater_equal}, least,
                   inverted ? lower : upper, inverted ? upper : lower);
}

int64_t immediate_threshold(const ThresholdCall &call, const double *pairs, int32_t count) {
    if (!pairs) return JORM_EINVAL;
    return std::isnan(pairs[1]) ? adaptive_threshold(call, pairs) : sheer_threshold(call, pairs, count >= 2);
}

int64_t otsu_threshold(const ThresholdCall &call, const jorm_thhmethod *method) {
    Shape shape;
    double pairs[8];
    if (int64_t status = check_threshold(shape, call); status != JORM_OK) return status;
    const int64_t status = otsu_pairs({call.xe, call.options, call.word, call.size, call.src}, method, pairs);
    return status == JORM_OK ? sheer_threshold(call, pairs, false) : status;
}

int64_t check_method(const jorm_thhmethod *method, const double *pairs) {
    switch (method_code(method)) {
    case JORM_THRESHOLD_IMMEDIATE:
        return pairs ? JORM_OK : JORM_EINVAL;
    case JORM_THRESHOLD_OTSU:
    case JORM_THRESHOLD_USTO:
    case JORM_THRESHOLD_BLUR:
        return JORM_OK;
    default:
        return JORM_EINVAL;
    }
}

int64_t method_threshold(const ThresholdCall &call, const jorm_thhmethod *method, const double *pairs, int32_t count) {
    switch (method_code(method)) {
    case JORM_THRESHOLD_IMMEDIATE:
        return immediate_threshold(call, pairs, count);
    case JORM_THRESHOLD_OTSU:
        return otsu_threshold(call, method);
    case JORM_THRESHOLD_USTO:
        return usto_threshold(call, method);
    case JORM_THRESHOLD_BLUR:
        return blur_threshold(call, method);
    default:
        return JORM_EINVAL;
    }
}

} // namespace jorm
