// Measured value ranges.
#include "jorm/vrng.h"
#include "stats/extrema_rows.hpp"
#include "stats/gather.hpp"

#include <cmath>
#include <cstring>
#include <limits>

namespace jorm {

JORM_LEVEL_TABLE(const Row, bounds_rows);
JORM_LEVEL_TABLE(const Row, fold_bounds_rows);

static void begin(BoundsState &state, int, uint8_t) { state.lanes = 0; }

namespace {

constexpr uint32_t opcode = fourcc("mima");

// Of every `step`-th lane from `first` on. Where there is no sample, the range of none holds nothing.
template <class T> vrng range_of(const BoundsState &state, int first, int step) {
    using Limits = std::numeric_limits<T>;
    T lo = Limits::has_infinity ? Limits::infinity() : Limits::max();
    T hi = Limits::has_infinity ? -Limits::infinity() : Limits::min();
    for (int k = first; k < state.lanes; k += step) {
        T x, y;
        std::memcpy(&x, state.least + k * sizeof(T), sizeof x);
        std::memcpy(&y, state.largest + k * sizeof(T), sizeof y);
        if (x < lo) lo = x;
        if (y > hi) hi = y;
    }
    if (Limits::has_infinity && lo > hi) return {std::nan(""), std::nan("")};
    return {float(lo) + 0.0, float(hi) + 0.0}; // no -0, which is as good as 0 and may lie in any lane
}
constexpr vrng (*ranges_of[])(const BoundsState &, int, int) = {range_of<uint8_t>, range_of<int16_t>, range_of<int32_t>,
                                                                range_of<float>}; // by stat_line()

template <class Compute> int64_t adjust_by(Compute compute, const StatSource &s, vrng *ranges) {
    StatShape shape;
    vrng measured[4];
    if (!ranges) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    if (int64_t status = check_ordered(s.samples.type); status != JORM_OK) return status;
    bool measure = false;
    for (int c = 0; c < shape.channels; ++c)
        measure |= shape.is_selected(c) && (std::isinf(ranges[c].lo) || ranges[c].lo > ranges[c].hi);
    if (measure)
        if (int64_t status = compute(s, measured); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c)
        if (shape.is_selected(c)) jorm_vrng_normalize_$IQ(s.samples.type, &ranges[c], measure ? &measured[c] : nullptr);
    return JORM_OK;
}

} // namespace

int64_t compute_range(const StatSource &s, vrng *ranges) {
    StatShape shape;
    if (!ranges) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    const uint32_t type = s.samples.type;
    if (int64_t status = check_ordered(type); status != JORM_OK) return status;
    const Level which = level(s.options);
    const int line = stat_line(type);
    Gathering<BoundsState> g(JORM_OF_LEVEL(bounds_rows, which) + line * stat_line_length, shape.selected, s.options);
    if (int64_t status = gather(g, s, shape, opcode); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c) {
        BoundsState &state = g.state[c];
        const bool used = g.interleaved ? c == 0 : shape.is_selected(c);
        if (used && state.lanes > 0) JORM_OF_LEVEL(fold_bounds_rows, which)[line](&state, nullptr, 0, RowParams{});
    }
    for (int c = 0; c < shape.channels; ++c)
        if (shape.is_selected(c))
            ranges[c] = ranges_of[line](g.state_of(c), g.index_of(c), g.interleaved ? shape.channels : 1);
    return JORM_OK;
}

// Rare enough to look for places too.
int64_t compute_masked_range(const StatSource &s, vrng *ranges) {
    StatShape shape;
    jorm_minmax record;
    record.request = JORM_WANT_MIN | JORM_WANT_MAX;
    if (!ranges) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    if (int64_t status = masked_extrema(s, &record, nullptr); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c)
        if (shape.is_selected(c)) ranges[c] = {record.min[c].f, record.max[c].f};
    return JORM_OK;
}

int64_t adjust_range(const StatSource &s, vrng *ranges) { return adjust_by(compute_range, s, ranges); }
int64_t adjust_masked_range(const StatSource &s, vrng *ranges) { return adjust_by(compute_masked_range, s, ranges); }

} // namespace jorm
