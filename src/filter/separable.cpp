#include "filter/separable.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace jorm {
namespace {

constexpr int64_t line = 64;
constexpr int64_t end = 32; // columns that the windows at an end of a row are made of, and more

int64_t aligned(int64_t bytes) { return (bytes + line - 1) / line * line; }

double weight_at(const SeparableWeights &w, int axis, int64_t i) { return w.axis[axis] ? w.axis[axis][i] : 1; }

// How the weights of a call go in single precision.
struct Plan {
    double magnitude = 1, steps = 4; // of the greatest sum in units of elements; of rounding
    bool whole = true;

    explicit Plan(const SeparableWeights &w, const WindowCall &c, int first) {
        for (int i = first; i < 3; ++i) {
            double sum = 0;
            for (int64_t k = 0; k < c.extent[i]; ++k) {
                const double weight = weight_at(w, i, k);
                sum += std::fabs(weight);
                whole = whole && weight == std::trunc(weight);
            }
            magnitude *= sum;
            steps += double(c.extent[i]);
        }
    }
    // What rounding may add: a unit of 2^-24 of all weights' magnitude in every product and sum.
    double error(double largest) const { return largest * magnitude * steps * 0x1p-24; }
};

// Does single precision do? Whole weights of sums below 2^24 are exact there.
bool single_serves(const WindowCall &c, const Plan &plan) {
    if (c.type != JORM_U8 && c.type != JORM_S16) return c.type == JORM_F32;
    const double largest = c.type == JORM_U8 ? 255 : 32768;
    return plan.whole ? plan.magnitude * largest < 0x1p24
                      : plan.error(largest) < (c.type == JORM_U8 ? 1.0 / 270 : 0.45);
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

double nearest_whole(double x) { return (x + 0x1.8p52) - 0x1.8p52; }

// A scale that makes weights whole numbers of 16 bits, at most so far from the true ones that sums of values from 0 to
// 1 miss by no more than `allowed`; 0 if a short search finds none. Whole weights stay what they are.
double scale_of(const double *weights, int64_t n, bool whole, double allowed) {
    double largest = 0, sum = 0;
    for (int64_t k = 0; k < n; ++k) {
        largest = std::max(largest, std::fabs(weights[k]));
        sum += std::fabs(weights[k]);
    }
    const auto serves = [&](double scale) {
        double above = 0, below = 0;
        for (int64_t k = 0; k < n; ++k) {
            const double x = weights[k] * scale, error = nearest_whole(x) - x;
            above += std::max(error, 0.0);
            below += std::max(-error, 0.0);
        }
        return std::max(above, below) <= allowed * scale;
    };
    const double most = std::min(32767 / largest, 0x1p22 / sum); // sums of bytes stay within 30 bits
    if (!(most >= 1 && most < 0x1p40)) return 0;
    if (whole) return 1;
    double scale = std::floor(most);
    for (int i = 0; i < 128 && scale >= 4096; ++i, scale -= 7)
        if (serves(scale)) return scale;
    return 0;
}

bool mirrored(const double *w, int64_t n) {
    for (int64_t k = 0; k < n / 2; ++k)
        if (w[k] != w[n - 1 - k]) return false;
    return n > 1;
}

// Weights with a 0 after them, rows of windows that go together, places.
int64_t taps_bytes(int64_t places) {
    return aligned((places + 1) * int64_t(sizeof(double))) +
           aligned(SeparableStage::together * places * int64_t(sizeof(void *))) +
           aligned(places * int64_t(sizeof(int64_t)));
}

} // namespace

// Weights that mirror each other go in pairs, and the one in the middle alone.
SeparableStage::Taps SeparableStage::make_taps(int64_t places, const double *weights, double scale,
                                               int32_t weight_bytes, char *&memory) {
    const int64_t pairs = mirrored(weights, places) ? places / 2 : 0;
    char *const weight = memory;
    auto *const row = reinterpret_cast<const void **>(memory += aligned((places + 1) * int64_t(sizeof(double))));
    auto *const place = reinterpret_cast<int64_t *>(memory += aligned(together * places * int64_t(sizeof(void *))));
    memory += aligned(places * int64_t(sizeof(int64_t)));
    for (int64_t k = 0; k < places - pairs; ++k) {
        const double value = weights[k] * scale;
        if (weight_bytes == 2)
            reinterpret_cast<int16_t *>(weight)[k] = int16_t(nearest_whole(value));
        else if (weight_bytes == 4)
            reinterpret_cast<float *>(weight)[k] = float(value);
        else
            reinterpret_cast<double *>(weight)[k] = value;
        if (k < pairs)
            place[2 * k] = k, place[2 * k + 1] = places - 1 - k;
        else
            place[pairs + k] = k;
    }
    std::memset(weight + (places - pairs) * weight_bytes, 0, size_t(weight_bytes));
    return {{row, weight, pairs, places - 2 * pairs}, row, place};
}

int64_t SeparableStage::open(WindowRows &in, const SeparableWeights &w, const SeparableRows *table, bool precise) {
    in_ = &in;
    const WindowCall &c = in.call();
    const size_t rows = scratch_bytes(c.extent[0], c.extent[1], 3 * int64_t(sizeof(double)));
    if (rows > SIZE_MAX / 8 || c.extent[2] > INT64_MAX / 64) return JORM_ENOMEM;
    const int64_t height = c.extent[0] * c.extent[1];
    const int64_t bytes = taps_bytes(height) + taps_bytes(c.extent[2]) + aligned(height * int64_t(sizeof(double)));
    const int64_t pitch = ring_pitch(in.whole() * int64_t(sizeof(double)));
    const int64_t rows_of_sums = std::min(together, c.size[1]);
    memory_.emplace(c.xe, size_t(bytes) + scratch_bytes(rows_of_sums, pitch), line);
    if (!*memory_) return JORM_ENOMEM;
    char *memory = memory_->as<char>();

    // The weights of the rows of all planes are one list.
    auto *const down = reinterpret_cast<double *>(memory);
    memory += aligned(height * int64_t(sizeof(double)));
    for (int64_t d = 0; d < c.extent[0]; ++d)
        for (int64_t k = 0; k < c.extent[1]; ++k) down[d * c.extent[1] + k] = weight_at(w, 0, d) * weight_at(w, 1, k);
    const Plan plan(w, c, 0), across(w, c, 2);
    double scale = 0;
    if (!precise && c.type == JORM_U8 && !(plan.whole && plan.magnitude * 255 >= 0x1p24)) {
        // Half a unit and 1/256 are promised; the sums along the row and their rounding take a share.
        const double left = 1.0 / 260 - across.error(255) * plan.magnitude / across.magnitude;
        scale = scale_of(down, height, plan.whole, left / (255 * across.magnitude));
    }
    rows_ = table + (scale > 0 ? scaled_u8 : line_of(c, !precise && single_serves(c, plan)));
    const double one = 1, factor = scale > 0 ? scale : 1;
    down_ = make_taps(height, down, factor, rows_->weight_bytes, memory);
    along_ = make_taps(c.extent[2], w.axis[2] ? w.axis[2] : &one, 1 / factor, rows_->sum_bytes, memory);
    for (int64_t r = 0; r < rows_of_sums; ++r) sums_[r] = memory + r * pitch;
    small_ = small_serves();
    return JORM_OK;
}

bool SeparableStage::small_serves() const {
    const WindowCall &c = in_->call();
    const int64_t reach = c.before[2];
    return rows_->small && c.channels == 1 && c.size[2] >= std::max(rows_->small_row, end) && reach == c.after(2) &&
           reach > 0 && reach < 4 && in_->left <= reach && in_->right <= reach;
}

const void **SeparableStage::find_rows(int64_t r, int64_t y) {
    const WindowCall &c = in_->call();
    const int64_t height = c.extent[0] * c.extent[1], top = y - c.before[1];
    const bool flat = c.extent[0] == 1;
    const void **const row = down_.row + r * height;
    for (int64_t i = 0; i < height; ++i) {
        const int64_t k = down_.place[i];
        row[i] = flat ? in_->row(top + k) : in_->row(k / c.extent[1], top + k % c.extent[1]);
    }
    return row;
}

// Windows at the ends of the row go down and along by themselves.
void SeparableStage::produce_small(int64_t y, void *to) {
    const WindowCall &c = in_->call();
    const int64_t height = c.extent[0] * c.extent[1], reach = c.before[2], n = c.size[2], e = c.element();
    const void **const row = find_rows(0, y), **const other = row + height;
    const auto move = [&](int64_t columns) {
        for (int64_t i = 0; i < height; ++i) other[i] = static_cast<const char *>(row[i]) + columns * e;
    };
    WeightedRows rows = down_.rows;
    rows.row = other;
    move(reach - in_->left);
    rows_->small(to, rows, along_.rows, n);
    for (const bool right : {false, true}) {
        const int64_t from = right ? in_->bare - end : 0;
        void *const sums = sums_[0] + (in_->left + from) * rows_->sum_bytes;
        move(from);
        rows_->down(&sums, &rows, 1, end);
    }
    in_->complete(sums_[0], rows_->sum_bytes);
    for (const bool right : {false, true}) {
        const int64_t from = right ? n - reach : 0;
        for (int64_t i = 0; i < c.extent[2]; ++i)
            along_.row[i] = sums_[0] + (from + along_.place[i]) * rows_->sum_bytes;
        rows_->along(static_cast<char *>(to) + from * e, along_.rows, reach);
    }
}

// The sums of the columns, and where the taps along the row find them.
void SeparableStage::gather(int64_t y) {
    const WindowCall &c = in_->call();
    if (y >= last_) {
        WeightedRows windows[together];
        void *bare[together];
        first_ = y;
        last_ = std::min(y + together, c.size[1]);
        for (int64_t r = 0; r < last_ - y; ++r) {
            windows[r] = down_.rows;
            windows[r].row = find_rows(r, y + r);
            bare[r] = sums_[r] + in_->left * rows_->sum_bytes;
        }
        rows_->down(bare, windows, last_ - y, in_->bare);
        for (int64_t r = 0; r < last_ - y; ++r) in_->complete(sums_[r], rows_->sum_bytes);
    }
    for (int64_t i = 0; i < c.extent[2]; ++i)
        along_.row[i] = sums_[y - first_] + along_.place[i] * c.channels * rows_->sum_bytes;
}

void SeparableStage::produce(int64_t y, void *row) {
    if (small_) return produce_small(y, row);
    const WindowCall &c = in_->call();
    gather(y);
    if (c.folded.rows == 0 || rows_->sum_bytes < int32_t(sizeof(double)))
        return rows_->along(row, along_.rows, c.row_elements());
    // What lies between the rows of a small picture is not worth sums in double precision.
    const int64_t pitch = c.folded.pitch * c.channels;
    for (int64_t r = 0; r < c.folded.rows; ++r) {
        rows_->along(static_cast<char *>(row) + r * pitch * c.element(), along_.rows, c.folded.pixels * c.channels);
        for (int64_t i = 0; i < c.extent[2]; ++i)
            along_.row[i] = static_cast<const char *>(along_.row[i]) + pitch * rows_->sum_bytes;
    }
}

void SeparableStage::produce_sums(int64_t y, void *row) {
    gather(y);
    rows_->along_sums(row, along_.rows, in_->call().row_elements());
}

int64_t separable(WindowCall &c, const SeparableWeights &weights, const SeparableRows *table) {
    return run_prepared(c, PreparedCall::short_row, [&](const WindowCall &band) -> int64_t {
        WindowRows rows;
        if (const int64_t status = rows.open(band, SeparableStage::together - 1, true); status != JORM_OK)
            return status;
        SeparableStage stage;
        const int64_t status = stage.open(rows, weights, table);
        return status == JORM_OK ? run_stage(band, stage) : status;
    });
}

} // namespace jorm
