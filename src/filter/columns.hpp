// What a window sees in the columns of its rows, gathered by an operation that cannot take anything back: an extremum,
// a sum in floating point. Few rows are looked at side by side; for more of them, blocks of as many rows as the window
// has take three operations whatever its height (van Herk 1992; Gil and Werman 1993): the window is the end of one
// block and the beginning of the next.
#pragma once
#include "filter/column_rows.hpp"
#include "filter/window.hpp"

namespace jorm {

class Columns {
public:
    int64_t open(WindowRows &in, const ColumnRows &rows);
    // Other rows of the same operation.
    void use(const ColumnRows &rows) { rows_ = &rows; }
    // The bare part of the columns around row y, in ascending order of y.
    void gather(int64_t y, void *to);

private:
    char *suffix(int64_t k) const { return prefix_ + k * pitch_; } // 0 < k < height
    void make_suffixes(int64_t top);

    WindowRows *in_ = nullptr;
    const ColumnRows *rows_ = nullptr;
    int64_t pitch_ = 0;
    char *prefix_ = nullptr;      // of blocks
    const void **list_ = nullptr; // of rows side by side
    std::optional<Scratch> memory_;
};

} // namespace jorm
