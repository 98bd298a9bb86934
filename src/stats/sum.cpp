#include "stats/gather.hpp"
#include "stats/sum_rows.hpp"

#include <algorithm>

namespace jorm {

JORM_LEVEL_TABLE(const Row, sum_rows);
JORM_LEVEL_TABLE(const Row, masked_sum_rows);
JORM_LEVEL_TABLE(const Row, selection_rows);

static void begin(SumState &state, int channels, uint8_t unselected) {
    std::fill_n(state.whole, channels, 0);
    state.phase = -1;
    state.unselected = unselected;
}

namespace {

constexpr uint32_t opcode = fourcc("sum ");

double result(const Gathering<SumState> &g, uint32_t type, int channels, int c) {
    const SumState &state = g.state_of(c);
    const int index = g.index_of(c), step = g.interleaved ? channels : 1;
    if (type != JORM_F32) return double(state.whole[index]);
    if (state.phase < 0) return 0;
    double sum[sum_partials];
    for (int i = 0; i < sum_partials; ++i) sum[i] = state.partial[i * step + index];
    for (int half = sum_partials / 2; half > 0; half /= 2)
        for (int i = 0; i < half; ++i) sum[i] += sum[i + half];
    return sum[0];
}

int64_t count_all(const StatSource &, const StatShape &shape, double &count) {
    count = double(shape.planes) * double(shape.rows) * double(shape.pixels);
    return JORM_OK;
}
// How many pixels the mask selects.
int64_t count_selected(const StatSource &s, StatShape shape, double &count) {
    StatSource mask = {s.xe, s.options, s.word, s.size, s.mask};
    shape.channels = 1;
    int32_t size[4];
    const auto axes = int(s.word & 15);
    std::copy_n(s.size, axes, size);
    size[axes - 1] = 1;
    mask.size = size;
    Gathering<SumState> g(JORM_OF_LEVEL(selection_rows, level(s.options)), 1, s.options);
    const int64_t status = gather(g, mask, shape, opcode);
    if (status == JORM_OK) count = double(g.state[0].whole[0]);
    return status;
}

int64_t sum_by(const Row *rows, const StatSource &s, double *results) {
    StatShape shape;
    if (!results) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    const int line = stat_line(s.samples.type);
    if (line < 0) return JORM_EINVAL;
    Gathering<SumState> g(rows + line * stat_line_length, shape.selected, s.options);
    if (int64_t status = gather(g, s, shape, opcode); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c)
        if (shape.is_selected(c)) results[c] = result(g, s.samples.type, shape.channels, c);
    return JORM_OK;
}

// Sums become means of as many samples as `count_samples` finds.
template <class Sum, class Count> int64_t mean_by(Sum sum, Count count_samples, const StatSource &s, double *results) {
    StatShape shape;
    double sums[4] = {}, count;
    if (!results) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    if (int64_t status = sum(s, sums); status != JORM_OK) return status;
    if (int64_t status = count_samples(s, shape, count); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c)
        if (shape.is_selected(c)) results[c] = count > 0 ? sums[c] / count : 0;
    return JORM_OK;
}

} // namespace

int64_t sum(const StatSource &s, double *results) {
    return sum_by(JORM_OF_LEVEL(sum_rows, level(s.options)), s, results);
}
int64_t masked_sum(const StatSource &s, double *results) {
    return sum_by(JORM_OF_LEVEL(masked_sum_rows, level(s.options)), s, results);
}

int64_t mean(const StatSource &s, double *results) { return mean_by(sum, count_all, s, results); }
int64_t masked_mean(const StatSource &s, double *results) { return mean_by(masked_sum, count_selected, s, results); }

} // namespace jorm
