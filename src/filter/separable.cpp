#include "filter/separable.hpp"

#include <algorithm>
#include <cmath>

namespace jorm {
namespace {

constexpr int64_t line = 64;

int64_t aligned(int64_t bytes) { return (bytes + line - 1) / line * line; }

double weight_at(const SeparableWeights &w, int axis, int64_t i) { return w.axis[axis] ? w.axis[axis][i] : 1; }

// Does single precision do? Whole weights of sums below 2^24 are exact there; otherwise every product and sum adds at
// most a unit of 2^-24 of all weights' magnitude.
bool single_serves(const WindowCall &c, const SeparableWeights &w) {
    if (c.type != JORM_U8 && c.type != JORM_S16) return c.type == JORM_F32;
    double magnitude = c.type == JORM_U8 ? 255 : 32768, steps = 4;
    bool whole = true;
    for (int i = 0; i < 3; ++i) {
        double sum = 0;
        for (int64_t k = 0; k < c.extent[i]; ++k) {
            const double weight = weight_at(w, i, k);
            sum += std::fabs(weight);
            whole = whole && weight == std::trunc(weight);
        }
        magnitude *= sum;
        steps += double(c.extent[i]);
    }
    const double allowed = c.type == JORM_U8 ? 1.0 / 320 : 0.4;
    return whole ? magnitude < 0x1p24 : magnitude * steps * 0x1p-24 < allowed;
}

SeparableLine line_of(const WindowCall &c, bool single) {
    switch (c.type) {
    case JORM_U8:
        return single ? single_u8 : double_u8;
    case JORM_S16:
        return single ? single_s16 : double_s16;
    case JORM_S32:
        return double_s32;
    default:
        return single_f32;
    }
}

bool mirrored(const double *w, int64_t n) {
    for (int64_t k = 0; k < n / 2; ++k)
        if (w[k] != w[n - 1 - k]) return false;
    return n > 1;
}

int64_t taps_bytes(int64_t places) {
    return aligned(places * int64_t(sizeof(double))) + 2 * aligned((places + 1) * int64_t(sizeof(void *)));
}

} // namespace

// Weights that mirror each other go in pairs; one in the middle is halved for the two rows of its pair, which are the
// same one.
SeparableStage::Taps SeparableStage::make_taps(int64_t places, const double *weights, char *&memory) const {
    Taps taps = {{nullptr, memory, places, mirrored(weights, places)}, places, nullptr, nullptr};
    char *const weight = memory;
    taps.row = reinterpret_cast<const void **>(memory + aligned(places * int64_t(sizeof(double))));
    auto *const place = reinterpret_cast<int64_t *>(reinterpret_cast<char *>(taps.row) +
                                                    aligned((places + 1) * int64_t(sizeof(void *))));
    memory += taps_bytes(places);
    taps.rows.row = taps.row;
    taps.place = place;
    if (taps.rows.paired) taps.rows.count = (places + 1) / 2;
    for (int64_t k = 0; k < taps.rows.count; ++k) {
        const bool middle = taps.rows.paired && 2 * k + 1 == places;
        const double value = middle ? weights[k] / 2 : weights[k];
        if (rows_->sum_bytes == 4)
            reinterpret_cast<float *>(weight)[k] = float(value);
        else
            reinterpret_cast<double *>(weight)[k] = value;
        if (taps.rows.paired)
            place[2 * k] = k, place[2 * k + 1] = places - 1 - k;
        else
            place[k] = k;
    }
    return taps;
}

int64_t SeparableStage::open(WindowRows &in, const SeparableWeights &w, bool precise) {
    in_ = &in;
    const WindowCall &c = in.call();
    rows_ = JORM_OF_LEVEL(separable_rows, c.which) + line_of(c, !precise && single_serves(c, w));
    const size_t rows = scratch_bytes(c.extent[0], c.extent[1], 3 * int64_t(sizeof(double)));
    const int64_t pitch = ring_pitch(in.whole() * rows_->sum_bytes);
    if (rows > SIZE_MAX / 8 || c.extent[2] > INT64_MAX / 64) return JORM_ENOMEM;
    const int64_t height = c.extent[0] * c.extent[1];
    const int64_t bytes = taps_bytes(height) + taps_bytes(c.extent[2]) + aligned(height * int64_t(sizeof(double)));
    memory_.emplace(c.xe, size_t(bytes) + scratch_bytes(2, pitch), line);
    if (!*memory_) return JORM_ENOMEM;
    char *memory = memory_->as<char>();

    // The weights of the rows of all planes are one list.
    auto *const down = reinterpret_cast<double *>(memory);
    memory += aligned(height * int64_t(sizeof(double)));
    for (int64_t d = 0; d < c.extent[0]; ++d)
        for (int64_t k = 0; k < c.extent[1]; ++k) down[d * c.extent[1] + k] = weight_at(w, 0, d) * weight_at(w, 1, k);
    const double one = 1;
    down_ = make_taps(height, down, memory);
    along_ = make_taps(c.extent[2], w.axis[2] ? w.axis[2] : &one, memory);
    sums_ = memory;
    spare_ = sums_ + pitch;
    return JORM_OK;
}

// The sums of the columns, and where the taps along the row find them.
void SeparableStage::gather(int64_t y) {
    const WindowCall &c = in_->call();
    const int64_t top = y - c.before[1];
    const int64_t rows = down_.rows.paired ? 2 * down_.rows.count : down_.rows.count;
    for (int64_t i = 0; i < rows; ++i)
        down_.row[i] = in_->row(down_.place[i] / c.extent[1], top + down_.place[i] % c.extent[1]);
    rows_->down(sums_ + in_->left * rows_->sum_bytes, down_.rows, in_->bare);
    in_->complete(sums_, rows_->sum_bytes);
    const int64_t columns = along_.rows.paired ? 2 * along_.rows.count : along_.rows.count;
    for (int64_t i = 0; i < columns; ++i) along_.row[i] = sums_ + along_.place[i] * c.channels * rows_->sum_bytes;
}

void SeparableStage::produce(int64_t y, void *row) {
    gather(y);
    rows_->along(row, spare_, along_.rows, in_->call().row_elements());
}

void SeparableStage::produce_sums(int64_t y, void *row) {
    gather(y);
    rows_->along_sums(row, spare_, along_.rows, in_->call().row_elements());
}

int64_t separable(WindowCall &c, const SeparableWeights &weights) {
    PreparedCall prepared;
    if (const int64_t status = prepared.prepare(c); status != JORM_OK) return status;
    WindowRows rows;
    if (const int64_t status = rows.open(c); status != JORM_OK) return status;
    SeparableStage stage;
    const int64_t status = stage.open(rows, weights);
    return status == JORM_OK ? run_stage(c, stage) : status;
}

} // namespace jorm
