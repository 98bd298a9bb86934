#include "filter/columns.hpp"

namespace jorm {
namespace {

constexpr int64_t side_by_side = 7; // rows of a window
constexpr int64_t few_results = 2;  // for which blocks do not pay
constexpr int64_t line = 64;

} // namespace

int64_t Columns::open(WindowRows &in, const ColumnRows &rows) {
    in_ = &in;
    rows_ = &rows;
    const WindowCall &c = in.call();
    const int64_t height = c.extent[0] * c.extent[1];
    const bool blocks = c.extent[0] == 1 && height > side_by_side && c.size[1] > few_results;
    pitch_ = ring_pitch(in.bare * rows.result_bytes);
    memory_.emplace(c.xe, scratch_bytes(height, blocks ? pitch_ : int64_t(sizeof(void *))), line);
    if (!*memory_) return JORM_ENOMEM;
    if (blocks)
        prefix_ = memory_->as<char>();
    else
        list_ = memory_->as<const void *>();
    return JORM_OK;
}

// Suffix k: the rows from top + k to the end of the block that begins at top.
void Columns::make_suffixes(int64_t top) {
    const int64_t height = in_->call().extent[1], n = in_->bare;
    const void *const last = in_->row(top + height - 1);
    rows_->across(suffix(height - 1), &last, 1, n);
    for (int64_t k = height - 2; k > 0; --k) rows_->join(suffix(k), in_->row(top + k), suffix(k + 1), n);
}

void Columns::gather(int64_t y, void *to) {
    const WindowCall &c = in_->call();
    const int64_t top = y - c.before[1], height = c.extent[1], n = in_->bare;
    if (list_) {
        int64_t count = 0;
        for (int64_t d = 0; d < c.extent[0]; ++d)
            for (int64_t k = 0; k < height; ++k) list_[count++] = in_->row(d, top + k);
        return rows_->across(to, list_, count, n);
    }
    const void *const row = in_->row(top + height - 1);
    const int64_t k = y % height; // of the window in its block
    if (k == 0) {
        make_suffixes(top);
        return rows_->join(to, in_->row(top), suffix(1), n);
    }
    (k == 1 ? rows_->begin : rows_->extend)(to, prefix_, row, suffix(k), n);
}

} // namespace jorm
