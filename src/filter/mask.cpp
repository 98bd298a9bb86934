#include "filter/mask.hpp"

#include "filter/composite.hpp"

#include <algorithm>
#include <cstring>

namespace jorm {

// Calls f(plane, row, start, length) for every run.
template <class F> static void each_run(const jorm_strel &s, const WindowCall &c, F f) {
    for (int64_t row = 0; row < c.extent[0] * c.extent[1]; ++row) {
        int32_t start = -1;
        const auto end_run = [&](int64_t x) {
            if (start >= 0) f(int32_t(row / c.extent[1]), int32_t(row % c.extent[1]), start, int32_t(x) - start);
            start = -1;
        };
        each_in_row(s, c, row, [&](int64_t x, bool belongs) {
            if (!belongs)
                end_run(x);
            else if (start < 0)
                start = int32_t(x);
        });
        end_run(c.extent[2]);
    }
}

int64_t MaskRuns::open(jorm_xe *xe, const jorm_strel &strel, const WindowCall &c) {
    each_run(strel, c, [&](int32_t, int32_t, int32_t, int32_t) { ++count; });
    memory_.emplace(xe, scratch_bytes(count + 1, sizeof(MaskRun) + 3 * sizeof(int32_t)), alignof(MaskRun));
    if (!*memory_) return JORM_ENOMEM;
    auto *const runs = memory_->as<MaskRun>();
    auto *const all = reinterpret_cast<int32_t *>(runs + count), *const starts = all + count,
                *const ends = starts + count;
    int64_t n = 0;
    each_run(strel, c, [&](int32_t plane, int32_t row, int32_t start, int32_t size) {
        runs[n] = {plane, row, start, size};
        all[n++] = size;
    });
    std::sort(all, all + n);
    lengths = std::unique(all, all + n) - all;
    std::fill(starts, starts + lengths, INT32_MAX);
    std::fill(ends, ends + lengths, 0);
    for (int64_t i = 0; i < n; ++i) {
        MaskRun &r = runs[i];
        r.line = int32_t(std::lower_bound(all, all + lengths, r.line) - all);
        starts[r.line] = std::min(starts[r.line], r.start);
        ends[r.line] = std::max(ends[r.line], r.start);
    }
    run = runs;
    length = all;
    first = starts;
    last = ends;
    return JORM_OK;
}

int64_t MaskStage::open(WindowRows &in, Extreme which, const MaskRuns &runs) {
    in_ = &in;
    runs_ = &runs;
    const WindowCall &c = in.call();
    rows_.open(c, which);
    pitch_ = ring_pitch(in.whole() * c.element());
    const size_t lines = scratch_bytes(c.extent[0], c.extent[1], std::max<int64_t>(runs.lengths, 1), pitch_);
    const size_t rest = scratch_bytes(3, pitch_), list = scratch_bytes(runs.count, sizeof(void *));
    if (lines > SIZE_MAX / 4 || rest > SIZE_MAX / 4 || list > SIZE_MAX / 4) return JORM_ENOMEM;
    memory_.emplace(c.xe, lines + rest + list, 64);
    if (!*memory_) return JORM_ENOMEM;
    ring_ = memory_->as<char>();
    row_ = ring_ + lines;
    spare_ = row_ + pitch_;
    neutral_ = spare_ + pitch_;
    list_ = reinterpret_cast<const void **>(neutral_ + pitch_);
    const NeutralPixel neutral(c, which);
    for (int64_t i = 0; runs.count == 0 && i < c.size[2]; ++i)
        std::memcpy(neutral_ + i * c.pixel(), neutral.bytes, size_t(c.pixel()));
    return JORM_OK;
}

void MaskStage::begin_plane(int64_t z) {
    in_->begin_plane(z);
    taken_ = -in_->call().before[1];
}

char *MaskStage::line(int64_t d, int64_t slot, int64_t line) const {
    return ring_ + ((d * in_->call().extent[1] + slot) * runs_->lengths + line) * pitch_;
}

// The extrema of runs of all lengths in row v of plane d of the window, from where the first of each length begins:
// runs of a length mostly begin at one place, so their lines are read as aligned as they are written.
void MaskStage::take(int64_t d, int64_t v) {
    const WindowCall &c = in_->call();
    const int64_t e = c.element();
    char *row = row_, *spare = spare_;
    std::memcpy(row + in_->left * e, in_->row(d, v), size_t(in_->bare * e));
    rows_.meet(row + in_->left * e, in_->bare);
    in_->complete(row, int32_t(e));
    const int64_t slot = (v + c.before[1]) % c.extent[1];
    int64_t made = 1; // length of the runs that `row` holds
    for (int64_t k = 0; k < runs_->lengths; ++k) {
        const int64_t wanted = runs_->length[k];
        for (; 2 * made <= wanted; made *= 2) {
            rows_->pair(spare, row, in_->whole() - (2 * made - 1) * c.channels, made * c.channels);
            std::swap(row, spare);
        }
        rows_->pair(line(d, slot, k), row + runs_->first[k] * c.pixel(),
                    c.row_elements() + (runs_->last[k] - runs_->first[k]) * c.channels, (wanted - made) * c.channels);
    }
}

void MaskStage::produce(int64_t y, void *row) {
    const WindowCall &c = in_->call();
    if (runs_->count == 0) {
        std::memcpy(row, neutral_, size_t(c.size[2] * c.pixel()));
        return;
    }
    const int64_t top = y - c.before[1];
    for (; taken_ < top + c.extent[1]; ++taken_)
        for (int64_t d = 0; d < c.extent[0]; ++d) take(d, taken_);
    const int64_t first = y % c.extent[1]; // slot of the window's first row
    for (int64_t i = 0; i < runs_->count; ++i) {
        const MaskRun &r = runs_->run[i];
        const int64_t slot = first + r.row < c.extent[1] ? first + r.row : first + r.row - c.extent[1];
        list_[i] = line(r.plane, slot, r.line) + (r.start - runs_->first[r.line]) * c.pixel();
    }
    rows_->columns.across(row, list_, runs_->count, c.row_elements());
}

} // namespace jorm
