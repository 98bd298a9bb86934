#include "filter/extremum.hpp"

#include <algorithm>

namespace jorm {

void ExtremumChoice::meet_all(WindowRows &in, int64_t from, int64_t to) {
    const WindowCall &c = in.call();
    if (c.folded.rows > 0) return meet(in.row(from), in.bare + (to - 1 - from) * c.folded.pitch * c.channels);
    for (int64_t v = from; rows_->unordered && v < to; ++v)
        for (int64_t d = 0; d < c.extent[0]; ++d) meet(in.row(d, v), in.bare);
}

int64_t ExtremumStage::open(WindowRows &in, Extreme which) {
    in_ = &in;
    const WindowCall &c = in.call();
    rows_.open(c, which);
    small_ = find_ends();
    if (const int64_t status = columns_.open(in, rows_->columns); status != JORM_OK || c.extent[2] == 1) return status;
    const bool folded = c.folded.rows > 0;
    const int64_t all = in.whole() + (folded ? (c.extent[1] - 1) * c.folded.pitch * c.channels : 0);
    const int64_t pitch = ring_pitch(all * c.element());
    buffers_.emplace(c.xe, scratch_bytes(folded ? 3 : 2, pitch), 64);
    if (!*buffers_) return JORM_ENOMEM;
    made_ = buffers_->as<char>();
    spare_ = made_ + pitch;
    other_ = folded ? spare_ + pitch : made_;
    return JORM_OK;
}

// Does small_windows() serve? Finds the copies that it needs.
bool ExtremumStage::find_ends() {
    const WindowCall &c = in_->call();
    const int64_t left = in_->left, bare = in_->bare, lanes = rows_->lanes, k = c.extent[2];
    const bool square = c.extent[0] == 1 && c.extent[1] == k && (k == 3 || k == 5);
    if (!square || c.channels != 1 || bare < lanes || c.size[2] < lanes) return false;
    ends_.left = left;
    ends_.right = in_->right;
    ends_.last = std::min(c.size[2] - lanes, 2 * lanes);
    const int64_t from_end = c.size[2] - lanes - ends_.last;
    bool near = true;
    const auto place = [&](int64_t column) {
        near = near && (column < left + lanes || column >= left + bare - lanes);
        return int32_t(column < left + lanes ? column : column - from_end);
    };
    RowEnds::Copy *copy = ends_.copy;
    in_->each_to_complete([&](int64_t column, int64_t from) { *copy++ = {place(column), place(from)}; });
    return near;
}

// Looks at the rows that come in with row y.
void ExtremumStage::meet(int64_t y) {
    if (!rows_->unordered) return;
    const WindowCall &c = in_->call();
    const int64_t top = y - c.before[1], end = top + c.extent[1];
    rows_.meet(*in_, y == 0 ? top : end - 1, end);
    small_ = small_ && rows_->small_windows;
}

// Row y, and the next one unless that is null, by small_windows().
void ExtremumStage::make_small(int64_t y, void *row, void *next) {
    const WindowCall &c = in_->call();
    const void *rows[6];
    for (int64_t k = 0; k < c.extent[1] + (next ? 1 : 0); ++k) rows[k] = in_->row(y - c.before[1] + k);
    void *const to[] = {row, next};
    rows_->small_windows(to, rows, in_->bare, c.extent[2], ends_);
}

void ExtremumStage::produce(int64_t y, void *row) {
    const WindowCall &c = in_->call();
    meet(y);
    if (small_) return make_small(y, row, nullptr);
    columns_.use(rows_->columns);
    if (c.extent[2] == 1) return columns_.gather(y, row);
    if (c.folded.rows > 0) // the columns lie in memory at one step
        rows_->along(made_, in_->row(-c.before[1]), spare_, other_, in_->bare, c.extent[1],
                     c.folded.pitch * c.channels);
    else
        columns_.gather(y, made_ + in_->left * c.element());
    in_->complete(made_, c.element());
    rows_->along(row, made_, spare_, made_, c.row_elements(), c.extent[2], c.channels);
}

void ExtremumStage::produce_two(int64_t y, void *row, void *next) {
    if (small_ && in_->keeps(1)) {
        meet(y);
        meet(y + 1);
        if (small_) return make_small(y, row, next);
    }
    RowStage::produce_two(y, row, next);
}

} // namespace jorm
