#include "filter/extremum.hpp"

namespace jorm {
namespace {

constexpr int64_t direct_rows = 7; // up to here all rows are looked at side by side

} // namespace

int64_t ExtremumStage::open(WindowRows &in, Extreme which) {
    in_ = &in;
    const WindowCall &c = in.call();
    rows_ = &extremum_rows_of(c, which);
    const int64_t height = c.extent[0] * c.extent[1];
    blocks_ = c.extent[0] == 1 && height > direct_rows;
    constexpr int64_t line = 64;
    const int64_t bytes = (in.whole() * c.element() + line - 1) / line * line;
    pitch_ = bytes % 4096 == 0 ? bytes + line : bytes;
    const int64_t count = 2 + (blocks_ ? height : 0), list_bytes = blocks_ ? 0 : height * int64_t(sizeof(void *));
    const size_t block = scratch_bytes(count, pitch_);
    if (block > SIZE_MAX / 2) return JORM_ENOMEM;
    buffers_.emplace(c.xe, block + size_t(list_bytes), line);
    if (!*buffers_) return JORM_ENOMEM;
    made_ = buffers_->as<char>();
    spare_ = made_ + pitch_;
    prefix_ = spare_ + pitch_;
    list_ = reinterpret_cast<const void **>(made_ + count * pitch_);
    return JORM_OK;
}

void ExtremumStage::begin_plane(int64_t z) { in_->begin_plane(z); }

// Suffix k (0 < k < height): the extremum of the rows from top + k to the end of the block that begins at top.
void ExtremumStage::make_suffixes(int64_t top) {
    const int64_t height = in_->call().extent[1], n = in_->bare;
    const void *below = in_->row(top + height - 1);
    for (int64_t k = height - 1; k > 0; --k) {
        char *const to = suffix(k);
        const void *const row = in_->row(top + k);
        k == height - 1 ? rows_->across(to, &row, 1, n) : rows_->two(to, row, below, n);
        below = to;
    }
}

void ExtremumStage::across(int64_t y, void *to) {
    const WindowCall &c = in_->call();
    const int64_t top = y - c.before[1], height = c.extent[1], n = in_->bare;
    if (!blocks_) {
        int64_t count = 0;
        for (int64_t d = 0; d < c.extent[0]; ++d)
            for (int64_t k = 0; k < height; ++k)
                list_[count++] = c.extent[0] == 1 ? in_->row(top + k) : in_->row(d, top + k);
        return rows_->across(to, list_, count, n);
    }
    const int64_t k = y % height; // place of the window in its block
    if (k == 0) {
        in_->row(top + height - 1); // the ring is filled in ascending order
        make_suffixes(top);
        return rows_->two(to, in_->row(top), suffix(1), n);
    }
    const void *const row = in_->row(top + height - 1);
    if (k == 1) {
        rows_->across(prefix_, &row, 1, n);
        return rows_->two(to, prefix_, suffix(1), n);
    }
    rows_->extend(to, prefix_, row, suffix(k), n);
}

void ExtremumStage::produce(int64_t y, void *row) {
    const WindowCall &c = in_->call();
    if (c.extent[2] == 1) return across(y, row);
    across(y, made_ + in_->left * c.element());
    in_->complete(made_, c.element());
    rows_->along(row, made_, spare_, c.row_elements(), c.extent[2], c.channels);
}

} // namespace jorm
