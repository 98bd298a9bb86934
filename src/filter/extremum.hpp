// Minima and maxima of rectangular windows.
#pragma once
#include "filter/chain.hpp"
#include "filter/extremum_rows.hpp"

namespace jorm {

enum class Extreme : int { least, largest };

inline const ExtremumRows &extremum_rows_of(const WindowCall &c, Extreme which) {
    return JORM_OF_LEVEL(extremum_rows, c.which)[4 * int(which) + window_line(c.type)];
}

// The extremum in every window: across the rows first, which for tall windows takes three operations whatever their
// height (van Herk 1992; Gil and Werman 1993), then along the row.
class ExtremumStage : public RowStage {
public:
    int64_t open(WindowRows &in, Extreme which);
    void begin_plane(int64_t z) override;
    void produce(int64_t y, void *row) override;

private:
    void across(int64_t y, void *to);
    void make_suffixes(int64_t top);

    WindowRows *in_ = nullptr;
    const ExtremumRows *rows_ = nullptr;
    char *suffix(int64_t k) const { return prefix_ + k * pitch_; }

    bool blocks_ = false; // of rows
    int64_t pitch_ = 0;
    char *made_ = nullptr, *spare_ = nullptr, *prefix_ = nullptr;
    const void **list_ = nullptr; // the rows of a window
    std::optional<Scratch> buffers_;
};

} // namespace jorm
