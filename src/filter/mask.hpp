// Minima and maxima over masks of any shape.
#pragma once
#include "filter/extremum.hpp"

namespace jorm {

// Calls f(x, does it belong to the window?) for the elements of a row of a mask; rows are counted through all planes.
template <class F> void each_in_row(const jorm_strel &s, const WindowCall &c, int64_t row, F f) {
    const auto *const start = static_cast<const uint8_t *>(s.mask.base) + s.mask.loff +
                              row / c.extent[1] * s.mask.stride[0] + row % c.extent[1] * s.mask.stride[1];
    if (const int64_t step = s.mask.stride[2]; step == 1)
        for (int64_t x = 0; x < c.extent[2]; ++x) f(x, start[x] == 255);
    else
        for (int64_t x = 0; x < c.extent[2]; ++x) f(x, start[x * step] == 255);
}

// A run of mask elements that belong to the window, in a row of it.
struct MaskRun {
    int32_t plane, row; // of the window
    int32_t start;      // its first column
    int32_t line;       // its length, as an index into the lengths that occur
};

// The runs of a mask.
class MaskRuns {
public:
    using Stage = class MaskStage;

    int64_t open(jorm_xe *xe, const jorm_strel &strel, const WindowCall &call);

    int64_t count = 0, lengths = 0;
    const MaskRun *run = nullptr;
    const int32_t *length = nullptr; // ascending
    // Where runs of each length begin: the first of them, the last.
    const int32_t *first = nullptr, *last = nullptr;

private:
    std::optional<Scratch> memory_;
};

// The extremum over the runs: in every source row those of each length that occurs, kept for as many rows as the window
// has; a window is then as many elements as the mask has runs.
class MaskStage : public RowStage {
public:
    static constexpr int64_t short_row = 0; // not folded: every row of the window has lines of its own
    int64_t open(WindowRows &in, Extreme which, const MaskRuns &runs);
    void begin_plane(int64_t z) override;
    void produce(int64_t y, void *row) override;

private:
    void take(int64_t d, int64_t v);
    char *line(int64_t d, int64_t slot, int64_t line) const;

    WindowRows *in_ = nullptr;
    ExtremumChoice rows_;
    const MaskRuns *runs_ = nullptr;
    int64_t pitch_ = 0, taken_ = 0;
    char *ring_ = nullptr, *row_ = nullptr, *spare_ = nullptr, *neutral_ = nullptr;
    const void **list_ = nullptr;
    std::optional<Scratch> memory_;
};

} // namespace jorm
