// Minima and maxima of rectangular windows.
#pragma once
#include "filter/chain.hpp"
#include "filter/columns.hpp"
#include "filter/extremum_rows.hpp"

namespace jorm {

enum class Extreme : int { least, largest };

inline const ExtremumRows &extremum_rows_of(const WindowCall &c, Extreme which) {
    return JORM_OF_LEVEL(extremum_rows, c.which)[5 * int(which) + window_line(c.type)];
}

// The rows of an extremum in single precision are the quick ones, exact without NaN, until a row holds one. Both make
// the same of what came before it.
class ExtremumChoice {
public:
    void open(const WindowCall &c, Extreme which) { rows_ = &extremum_rows_of(c, which); }
    const ExtremumRows *operator->() const { return rows_; }
    void meet(const void *row, int64_t n) {
        if (rows_->unordered && rows_->unordered(row, n)) ++rows_;
    }
    // Rows [from, to) of every plane that a window reads.
    void meet(WindowRows &in, int64_t from, int64_t to) {
        if (rows_->unordered) meet_all(in, from, to);
    }

private:
    void meet_all(WindowRows &in, int64_t from, int64_t to);

    const ExtremumRows *rows_ = nullptr;
};

// The extremum in every window: down the columns first, then along the row; of small windows both at once, and two rows
// of them at a time where `in` keeps one more row than a window has.
class ExtremumStage : public RowStage {
public:
    static constexpr int64_t short_row = PreparedCall::short_row; // that is folded
    int64_t open(WindowRows &in, Extreme which);
    void begin_plane(int64_t z) override { in_->begin_plane(z); }
    void produce(int64_t y, void *row) override;
    void produce_two(int64_t y, void *row, void *next) override;

private:
    bool find_ends();
    void meet(int64_t y);
    void make_small(int64_t y, void *row, void *next);

    WindowRows *in_ = nullptr;
    ExtremumChoice rows_;
    bool small_ = false; // while small_windows() serves
    RowEnds ends_ = {};
    Columns columns_;
    std::optional<Scratch> buffers_;
    char *made_ = nullptr, *spare_ = nullptr, *other_ = nullptr;
};

} // namespace jorm
