// The flood: what it is given, and the components that are open while it runs.
#pragma once
#include "regiontree/result_store.hpp"

#include <cstdint>

namespace jorm {

constexpr uint32_t no_pixel = JORM_NO_PIXEL;
constexpr int32_t levels = 256;

// A plane of samples with the rows that take part and the place where the flood starts.
struct FloodSource {
    const uint8_t *data;
    int64_t row_stride, pixel_stride;
    int32_t rows, columns;
    uint8_t invert;                    // 255 or 0
    uint8_t shift;                     // at most 8
    const uint8_t *row_mask = nullptr; // the byte that decides about row 0, null: all rows take part
    int64_t row_mask_stride = 0;
    uint8_t off = 0;                 // the byte that leaves a row out
    int32_t start_row, start_column; // in the buffer, so the column is at least 1

    int64_t pixels() const { return int64_t(rows) * columns; }
    uint32_t level(uint8_t sample) const { return uint32_t(sample ^ invert) >> shift; }
    const uint8_t *row(int64_t r) const { return data + r * row_stride; }
    bool takes_part(int64_t r) const { return !row_mask || row_mask[r * row_mask_stride] != off; }
};

// A component that can still grow. Its record is made when it first takes over a child, or when it closes.
struct Component {
    int32_t level;
    uint32_t seed;
    uint32_t opened; // how many pixels were done before; whatever follows belongs to it or to a descendant
    jorm_fwtsr *record;
};

// Pixels in the order in which they are done. In a list each follows the one done before it, but for what the marks
// say.
enum LogMark : uint32_t {
    log_pixel = 0x0FFFFFFF,
    log_begins = 0x10000000,  // the first pixel of a region, or of its first child: nothing follows it
    log_renews = 0x20000000,  // the last one of a region whose parent has no pixels yet
    log_resumes = 0x40000000, // the last one of a region: the list of the parent goes on
};

// The stack of open components, from high levels to low ones. A component of less than `smallest` pixels leaves no
// record; its pixels go to the component that swallows it.
class Components {
public:
    // Pixel numbers count rows of `stride`; those in records rows of `columns`. The log is null when nobody keeps one.
    Components(jorm_fwtsres *store, uint32_t stride, uint32_t columns, uint32_t *log)
        : pool_(store), stride_(stride), columns_(columns), log_(log) {
        entry_[0] = {JORM_NO_PIXEL, no_pixel, 0, nullptr};
    }

    void open(Component *&top, uint32_t level, uint32_t pixel, uint32_t done) {
        *++top = {int32_t(level), pixel, done, nullptr};
    }
    Component *bottom() { return entry_; }

    // The top closes as a region of its own, whose last pixel was the last one done: the component below takes it over
    // when it has the level, else a new one that begins with the pixel. False without memory.
    [[gnu::cold, gnu::noinline]] bool close(Component *&top, int32_t level, uint32_t pixel, uint32_t last,
                                            uint32_t done);

    // The only component left becomes the tree of the store. False without memory.
    [[gnu::cold, gnu::noinline]] bool finish(Component *top, uint32_t last, uint32_t done);

private:
    jorm_fwtsr *record(Component &c, uint32_t last, uint32_t done);
    int32_t place(uint32_t pixel) const {
        if (stride_ == columns_) return int32_t(pixel);
        return int32_t(pixel / stride_ * columns_ + pixel % stride_);
    }

    RegionPool pool_;
    uint32_t stride_, columns_;
    uint32_t *const log_;
    Component entry_[levels + 1]; // open levels fall strictly, above a bottom that is higher than all
};

// Rises to `level`, where `pixel` waits. The pixel that a descent left behind waits at the level of the component
// below, so that one is never passed: either it has the level and swallows the top, or the top is lifted.
template <int smallest>
[[gnu::always_inline]] inline bool rise(Components &components, Component *&top, int32_t level, uint32_t pixel,
                                        uint32_t last, uint32_t done) {
    if (__builtin_expect(done - top->opened >= uint32_t(smallest), smallest == 1))
        return components.close(top, level, pixel, last, done);
    top -= top[-1].level == level;
    top->level = level;
    return true;
}

// Floods, in working memory of the environment, or of the store when there is none. A buffer of the store holds the
// pixel lists afterwards.
int64_t flood(jorm_xe *xe, jorm_fwtsres *store, const FloodSource &source, int smallest);

} // namespace jorm
