#include "filter/box.hpp"

#include "filter/columns.hpp"
#include "filter/mean_rows.hpp"

#include <algorithm>
#include <cstring>

namespace jorm {
namespace {

constexpr int64_t line = 64;

// Calls f(row that comes in, row that goes) for every plane of the window of row y. At row 0 all rows come in; from
// then on one comes in and one goes.
template <class Enter, class Slide> void slide_columns(WindowRows &in, int64_t y, Enter enter, Slide slide) {
    const WindowCall &c = in.call();
    const int64_t top = y - c.before[1], height = c.extent[1];
    for (int64_t d = 0; d < c.extent[0]; ++d) {
        if (y > 0) {
            const void *const row = in.row(d, top + height - 1);
            slide(row, in.row(d, top - 1));
            continue;
        }
        for (int64_t k = 0; k < height; ++k) enter(in.row(d, top + k));
    }
}

// ---- Windows of bytes ----

// Finds factor and shift; false when there are none that divide all sums. Of a sum t the factor makes t / area and
// t * excess / (area * scale) more, which reaches no other integer while t * excess < scale: sums of a full remainder,
// of which 255 * area - 1 is the largest, come nearest.
bool find_factors(ByteMean &m, int64_t area) {
    if (area < 3 || area > 256) return false;
    int shift = 1;
    while (((int64_t(1) << (17 + shift)) + area - 1) / area < 65536) ++shift;
    const int64_t scale = int64_t(1) << (16 + shift), factor = (scale + area - 1) / area;
    m.area = uint16_t(area);
    m.factor = uint16_t(factor);
    m.shift = uint16_t(1 << (16 - shift));
    return (255 * area - 1) * (factor * area - scale) < scale;
}

class ByteBoxStage : public RowStage {
public:
    int64_t open(WindowRows &in, const ByteMean &mean) {
        in_ = &in;
        mean_ = mean;
        rows_ = JORM_OF_LEVEL(byte_mean_rows, in.call().which);
        // Pairs of columns are pairs of bytes of the bare part, wherever that begins.
        mean_.phase = int32_t(in.left & 1);
        // Registers may read beyond the last column.
        half_ = ring_pitch((in.whole() + 4) / 2 * int64_t(sizeof(uint16_t)) + line);
        sums_.emplace(in.call().xe, scratch_bytes(mean.factor ? 2 : 4, half_), line);
        return *sums_ ? JORM_OK : JORM_ENOMEM;
    }
    void begin_plane(int64_t z) override { in_->begin_plane(z); }
    void produce(int64_t y, void *row) override {
        uint16_t *const sums[] = {plane(0), plane(1)};
        const int64_t n = in_->bare, skip = (in_->left + mean_.phase) / 2;
        const uint8_t *first[ByteMean::max_height];
        int64_t count = 0;
        slide_columns(
            *in_, y, [&](auto *in) { first[count++] = bytes(in); },
            [&](auto *in, auto *out) { rows_->slide(sums[0] + skip, sums[1] + skip, bytes(in), bytes(out), n); });
        if (count > 0) {
            sums[0][0] = 0; // of the column before the first window, where there is one
            rows_->gather(sums[0] + skip, sums[1] + skip, first, count, n);
        }
        in_->each_to_complete([&](int64_t column, int64_t from) {
            column += mean_.phase;
            from += mean_.phase;
            sums[column & 1][column / 2] = sums[from & 1][from / 2];
        });
        uint8_t *const to = static_cast<uint8_t *>(row);
        if (mean_.factor) return rows_->mean(to, sums[0], sums[1], in_->call().size[2], mean_);
        auto *const before = reinterpret_cast<uint32_t *>(plane(2));
        rows_->add_up(before, sums[0], sums[1], half_ / int64_t(sizeof(uint16_t)));
        rows_->wide_mean(to, before, sums[0], sums[1], in_->call().size[2], mean_);
    }

private:
    static const uint8_t *bytes(const void *p) { return static_cast<const uint8_t *>(p); }
    uint16_t *plane(int k) const { return reinterpret_cast<uint16_t *>(sums_->as<char>() + k * half_); }

    WindowRows *in_ = nullptr;
    const ByteMeanRows *rows_ = nullptr;
    ByteMean mean_ = {};
    int64_t half_ = 0; // bytes of the sums of every other column
    std::optional<Scratch> sums_;
};

// Those of 3 or 5 rows and columns about a centre: two rows of results at a time, from the source at once.
class SmallBoxStage : public RowStage {
public:
    static bool serves(const WindowRows &in) {
        const WindowCall &c = in.call();
        const auto small = [&](int i) { return (c.extent[i] == 3 || c.extent[i] == 5) && c.before[i] == c.after(i); };
        return c.extent[0] == 1 && small(1) && small(2) &&
               c.size[2] >= JORM_OF_LEVEL(byte_mean_rows, c.which)->small_row && in.left <= c.before[2] &&
               in.right <= c.before[2];
    }
    void open(WindowRows &in, const ByteMean &mean) {
        const WindowCall &c = in.call();
        in_ = &in;
        mean_ = mean;
        rows_ = JORM_OF_LEVEL(byte_mean_rows, c.which);
        reach_ = c.before[2];
        const int64_t begin[2] = {0, c.size[2] - reach_};
        for (int right = 0; right < 2; ++right)
            for (int64_t i = 0; i < side(); ++i) column_[right][i] = begin[right] + i - reach_;
        in.each_to_complete([&](int64_t column, int64_t from) {
            const int right = column >= side();
            column_[right][column - begin[right]] = from - reach_;
        });
    }
    void begin_plane(int64_t z) override { in_->begin_plane(z); }
    void produce(int64_t y, void *row) override { make(y, row, nullptr); }
    void produce_two(int64_t y, void *row, void *next) override { make(y, row, next); }

private:
    void make(int64_t y, void *row, void *next) const {
        const WindowCall &c = in_->call();
        const int64_t height = c.extent[1];
        uint8_t *const to[2] = {static_cast<uint8_t *>(row), static_cast<uint8_t *>(next)};
        const uint8_t *rows[6];
        for (int64_t k = 0; k < height + (next ? 1 : 0); ++k)
            rows[k] = reinterpret_cast<const uint8_t *>(in_->row(y - c.before[1] + k)) + reach_ - in_->left;
        rows_->small(to, rows, height, c.size[2], mean_);
        for (int r = 0; r < 2 && to[r]; ++r)
            for (const int right : {0, 1}) make_end(to[r] + (right ? c.size[2] - reach_ : 0), rows + r, column_[right]);
    }

    int64_t side() const { return 3 * reach_; } // columns that the windows at an end read
    void make_end(uint8_t *to, const uint8_t *const *rows, const int64_t *column) const {
        uint32_t sum[6] = {};
        for (int64_t k = 0; k < in_->call().extent[1]; ++k)
            for (int64_t i = 0; i < side(); ++i) sum[i] += rows[k][column[i]];
        for (int64_t i = 0; i < reach_; ++i) {
            uint32_t t = mean_.area / 2;
            for (int64_t k = 0; k < mean_.width; ++k) t += sum[i + k];
            to[i] = uint8_t((t * mean_.factor >> 16) * mean_.shift >> 16);
        }
    }

    WindowRows *in_ = nullptr;
    const ByteMeanRows *rows_ = nullptr;
    ByteMean mean_ = {};
    int64_t reach_ = 0;
    // Those columns, or the ones that stand for them, counted from the centre of the first window.
    int64_t column_[2][6];
};

// ---- All other windows ----

BoxLine box_line(const WindowCall &c, int64_t area) {
    switch (c.type) {
    case JORM_U8:
        return area < (int64_t(1) << 23) ? box_u8_narrow : box_u8;
    case JORM_S16:
        return area < (int64_t(1) << 15) ? box_s16_narrow : box_s16;
    case JORM_S32:
        return box_s32;
    default:
        return box_f32;
    }
}

class BoxStage : public RowStage {
public:
    int64_t open(WindowRows &in, int64_t area) {
        in_ = &in;
        area_ = area;
        const WindowCall &c = in.call();
        rows_ = JORM_OF_LEVEL(mean_rows, c.which) + box_line(c, area);
        pitch_ = ring_pitch(in.whole() * rows_->sum_bytes);
        sums_.emplace(c.xe, scratch_bytes(3, pitch_), line);
        if (!*sums_) return JORM_ENOMEM;
        if (c.type != JORM_F32) return JORM_OK;
        return columns_.open(in, JORM_OF_LEVEL(real_sum_columns, c.which)[0]);
    }
    void begin_plane(int64_t z) override {
        in_->begin_plane(z);
        std::memset(sums_->get(), 0, size_t(pitch_));
    }
    void produce(int64_t y, void *row) override {
        const WindowCall &c = in_->call();
        char *const columns = sums_->as<char>(), *const along = columns + pitch_, *const spare = along + pitch_;
        char *const bare = columns + in_->left * rows_->sum_bytes;
        const int64_t n = in_->bare;
        if (c.type == JORM_F32)
            columns_.gather(y, bare);
        else
            slide_columns(
                *in_, y, [&](auto *in) { rows_->enter(bare, in, n); },
                [&](auto *in, auto *out) { rows_->slide(bare, in, out, n); });
        in_->complete(columns, rows_->sum_bytes);
        const bool narrow = c.extent[2] == 1;
        if (rows_->mean_along && c.extent[2] <= MeanRows::few)
            return rows_->mean_along(row, columns, c.size[2], c.extent[2], area_);
        if (!narrow) rows_->along(along, spare, columns, c.size[2], c.extent[2]);
        rows_->mean(row, narrow ? columns : along, c.size[2], area_);
    }

private:
    WindowRows *in_ = nullptr;
    const MeanRows *rows_ = nullptr;
    int64_t area_ = 0, pitch_ = 0;
    std::optional<Scratch> sums_;
    Columns columns_; // in single precision
};

// Beyond that the sums of 32-bit elements would not fit 64 bits.
constexpr int64_t most_pixels = int64_t(1) << 31;

int64_t box_of_bytes(const WindowCall &c, int64_t area) {
    WindowRows rows;
    if (const int64_t status = rows.open(c, 1); status != JORM_OK) return status;
    ByteMean mean = {int32_t(c.extent[2]), 0, 0, 0, 0};
    if (mean.width < 2 || mean.width > 2 * ByteMean::max_half + 1 || !find_factors(mean, area))
        mean = {mean.width, 0, uint16_t(area), 0, 0};
    if (SmallBoxStage::serves(rows)) {
        SmallBoxStage stage;
        stage.open(rows, mean);
        return run_stage(c, stage);
    }
    ByteBoxStage stage;
    const int64_t status = stage.open(rows, mean);
    return status == JORM_OK ? run_stage(c, stage) : status;
}

int64_t box_of_any(const WindowCall &c, int64_t area) {
    WindowRows rows;
    if (const int64_t status = rows.open(c, 1); status != JORM_OK) return status;
    BoxStage stage;
    const int64_t status = stage.open(rows, area);
    return status == JORM_OK ? run_stage(c, stage) : status;
}

} // namespace

int64_t box(WindowCall &c) {
    const size_t area = scratch_bytes(c.extent[0], c.extent[1], c.extent[2]);
    if (area > size_t(most_pixels)) return JORM_ENOMEM;
    const bool of_bytes =
        c.type == JORM_U8 && area < ByteMean::max_area && c.extent[0] * c.extent[1] <= ByteMean::max_height;
    return run_prepared(c, of_bytes ? 3 * PreparedCall::short_row / 4 : 0, [=](const WindowCall &band) {
        return of_bytes ? box_of_bytes(band, int64_t(area)) : box_of_any(band, int64_t(area));
    });
}

} // namespace jorm
