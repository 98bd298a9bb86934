#include "jorm/vrng.h"
#include "stats/extrema_rows.hpp"
#include "stats/gather.hpp"

#include <cmath>
#include <cstddef>

static_assert(sizeof(jorm_extremum) == 24 && offsetof(jorm_minmax, min) == 4 && offsetof(jorm_minmax, max) == 100 &&
              sizeof(jorm_minmax) == 196);

namespace jorm {

JORM_LEVEL_TABLE(const Row, extrema_rows);
JORM_LEVEL_TABLE(const Row, masked_extrema_rows);

static void begin(ExtremaState &state, int channels, uint8_t unselected) {
    for (int c = 0; c < channels; ++c) state.least[c] = state.largest[c] = {0, -1};
    state.pixels = 0;
    state.unselected = unselected;
}

namespace {

constexpr uint32_t opcode = fourcc("mima");

// What stands for an extremum that no sample has.
double nothing(uint32_t type, bool least) {
    if (type == JORM_F32) return std::nan("");
    const int bits = 8 * element_size(type), sign = type == JORM_U8 ? 0 : 1;
    const double values = std::ldexp(1, bits);
    return least ? values / (1 + sign) - 1 : sign ? -values / 2 : 0;
}

void store(jorm_extremum &entry, const Extremum &e, const StatShape &shape, uint32_t type, bool least,
           const int32_t *origin) {
    const double value = e.place < 0 ? nothing(type, least) : e.value;
    entry = {rounded(value), float(value), -1, -1, -1, 0};
    if (e.place < 0) return;
    const int64_t row = e.place / shape.pixels;
    entry.row = int32_t(row % shape.rows) + (origin ? origin[1] : 0);
    entry.column = int32_t(e.place % shape.pixels) + (origin ? origin[2] : 0);
    entry.plane = int32_t(row / shape.rows) + (origin ? origin[0] : 0);
}

int64_t check_type(uint32_t type) {
    return stat_line(type) >= 0 ? JORM_OK : well_formed(type) ? JORM_ENOTSUP : JORM_EINVAL;
}

} // namespace

int64_t extrema(const StatSource &s, jorm_minmax *record, const int32_t *origin) {
    StatShape shape;
    if (!record) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    const uint32_t type = s.samples.type;
    if (int64_t status = check_type(type); status != JORM_OK) return status;
    const Level at = level(s.options);
    const Row *rows = s.masked ? JORM_OF_LEVEL(masked_extrema_rows, at) : JORM_OF_LEVEL(extrema_rows, at);
    Gathering<ExtremaState> g(rows + stat_line(type) * stat_line_length, shape.selected, s.options);
    if (int64_t status = gather(g, s, shape, opcode); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c) {
        if (!shape.is_selected(c)) continue;
        const ExtremaState &state = g.state_of(c);
        const int i = g.index_of(c);
        if (record->request & JORM_WANT_MIN) store(record->min[c], state.least[i], shape, type, true, origin);
        if (record->request & JORM_WANT_MAX) store(record->max[c], state.largest[i], shape, type, false, origin);
    }
    return JORM_OK;
}

int64_t compute_range(const StatSource &s, vrng *ranges) {
    StatShape shape;
    jorm_minmax record;
    record.request = JORM_WANT_MIN | JORM_WANT_MAX;
    if (!ranges) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    if (int64_t status = extrema(s, &record, nullptr); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c)
        if (shape.is_selected(c)) ranges[c] = {record.min[c].f, record.max[c].f};
    return JORM_OK;
}

int64_t adjust_range(const StatSource &s, vrng *ranges) {
    StatShape shape;
    vrng measured[4];
    if (!ranges) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    if (int64_t status = check_type(s.samples.type); status != JORM_OK) return status;
    bool measure = false;
    for (int c = 0; c < shape.channels; ++c)
        measure |= shape.is_selected(c) && (std::isinf(ranges[c].lo) || ranges[c].lo > ranges[c].hi);
    if (measure)
        if (int64_t status = compute_range(s, measured); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c)
        if (shape.is_selected(c)) jorm_vrng_normalize_$IQ(s.samples.type, &ranges[c], measure ? &measured[c] : nullptr);
    return JORM_OK;
}

} // namespace jorm
