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

int64_t extrema_by(const Row *rows, const StatSource &s, jorm_minmax *record, const int32_t *origin) {
    StatShape shape;
    if (!record) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    const uint32_t type = s.samples.type;
    if (int64_t status = check_ordered(type); status != JORM_OK) return status;
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

} // namespace

int64_t extrema(const StatSource &s, jorm_minmax *record, const int32_t *origin) {
    return extrema_by(JORM_OF_LEVEL(extrema_rows, level(s.options)), s, record, origin);
}
int64_t masked_extrema(const StatSource &s, jorm_minmax *record, const int32_t *origin) {
    return extrema_by(JORM_OF_LEVEL(masked_extrema_rows, level(s.options)), s, record, origin);
}

} // namespace jorm
