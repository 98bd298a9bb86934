// Windows over pictures: the one mechanism of all neighbourhood operations.
//
// An operation is a chain of stages. A stage makes rows of results, in ascending order, from the rows of a window
// around each of them, which WindowRows brings before it. No picture is copied for the sake of its border: rows beyond
// the edge are other rows of the picture, columns beyond it are completed in the one row that a stage works on. Rows
// that the destination would overwrite too early, or whose elements do not lie side by side, pass through a ring of as
// many rows as the window has.
#pragma once
#include "kernel/call.hpp"
#include "xe/level.hpp"
#include "xe/scratch.hpp"

#include "jorm/shapes.h"

#include <optional>

namespace jorm {

struct FoldGap;

// One call of a neighbourhood operation, in slots: planes, rows, pixels, and for strides the channels.
struct WindowCall {
    jorm_xe *xe;
    uint64_t flags;
    Level which;
    uint32_t type, code; // of the elements, of the channels
    int axes;            // slots in use, the channels included
    int32_t channels;    // that take part, from the first on
    int64_t size[3];     // of the region
    char *dst;
    const char *src;
    int64_t dst_stride[4], src_stride[4];
    int64_t before[3], extent[3]; // of the window: its anchor, its size
    int64_t first[3], last[3];    // where the picture begins and ends, seen from the source's start
    jorm_border border;
    bool in_place; // source and destination are the same elements
    // A small picture goes as a row: the rows one after the other with the columns that their windows read beyond them,
    // `pitch` pixels from one to the next. 0 rows where it does not.
    struct {
        int64_t rows, pixels, pitch;
    } folded;

    int32_t element() const { return element_size(type); }
    int64_t pixel() const { return int64_t(channels) * element(); }
    int64_t after(int i) const { return extent[i] - 1 - before[i]; }
    int64_t row_elements() const { return size[2] * channels; }
};

// A chain's stages see the planes one after the other, and the rows of each in ascending order, every one once.
class RowStage {
public:
    virtual void begin_plane(int64_t z) = 0;
    virtual void produce(int64_t y, void *row) = 0; // dense
    // Rows y and y + 1, for stages that make two of them quicker than one after the other.
    virtual void produce_two(int64_t y, void *row, void *next) {
        produce(y, row);
        produce(y + 1, next);
    }
};

// The rows around a row of results. Of the elements that a window reads in a row, `left` are to be completed, `bare`
// exist and `right` are to be completed; rows that come whole have neither left nor right.
class WindowRows {
public:
    // The source of the call. `history` rows above the window stay readable. Of a stage that reads all of its window's
    // rows `side by side` those that would not stay in the first-level cache together go through the ring.
    int64_t open(const WindowCall &call, int64_t history = 0, bool side_by_side = false);
    // What another stage makes of the region, with a constant (a pixel of elements) around it.
    int64_t open(const WindowCall &call, RowStage &stage, const void *constant, int64_t history = 0);
    void begin_plane(int64_t z);
    // Do n rows above the window stay readable?
    bool keeps(int64_t n) const { return !ring_ || history_ >= n; }

    // The bare part of row v of the region, which may lie beyond the picture. Rows are asked for in ascending order but
    // for those of the window and the history.
    const char *row(int64_t v) {
        if (!ring_ && v >= call_->first[1] && v < call_->last[1]) return plane_ + v * call_->src_stride[1];
        return distant_row(v);
    }
    // The same in plane d of a window with several.
    const char *row(int64_t d, int64_t v);

    // Pixel 0 of row y of the region.
    const char *centre(int64_t y) {
        const char *const at = call_->extent[0] == 1 ? row(y) : row(call_->before[0], y);
        return at + call_->before[2] * call_->pixel() - left * call_->element();
    }
    // Completes a row that was made from bare parts, of elements of another size perhaps.
    void complete(void *row, int32_t element) const;

    // The same for a stage that keeps its columns in a way of its own: f(column, the one that stands for it), counted
    // from the first one that the window reads.
    template <class F> void each_to_complete(F f) const {
        if (left == 0 && right == 0) return;
        for (int64_t i = 0; i < columns_[0] + columns_[1]; ++i)
            f(i < columns_[0] ? i : i + bare / call_->channels, stands_for_[i] + call_->before[2]);
    }

    int64_t left = 0, bare = 0, right = 0; // elements
    int64_t whole() const { return left + bare + right; }
    const WindowCall &call() const { return *call_; }

private:
    friend class PreparedCall;
    int64_t find_columns();
    int64_t open_ring(int64_t history, const void *constant);
    const char *distant_row(int64_t v);
    char *next_slot();
    void load();
    void make_bare(char *to, const char *from) const;
    void make_plane(char *to, int64_t pitch, const char *plane, bool bare_rows) const;
    bool find_gap(FoldGap &gap) const;
    void complete_all(char *block, int64_t pitch, int64_t rows) const;
    void make_row(char *to, const char *from) const;
    char *slot(int64_t r) const { return ring_start_ + (r - lowest_ + (r < lowest_ ? capacity_ : 0)) * pitch_; }

    const WindowCall *call_ = nullptr;
    RowStage *stage_ = nullptr;
    const char *plane_ = nullptr; // the bare part of row 0
    int64_t z_ = 0;
    int64_t columns_[2] = {};             // how many to complete on either side
    const int64_t *stands_for_ = nullptr; // the column of the picture for each of them, `none` for a constant
    bool ring_ = false;
    // The last row that was loaded, and the last one that was loaded into the first slot.
    int64_t loaded_ = 0, lowest_ = 0;
    int64_t history_ = 0, capacity_ = 0, pitch_ = 0;
    char *ring_start_ = nullptr, *constant_row_ = nullptr;
    char constant_[16] = {};
    std::optional<Scratch> column_block_, ring_block_;
};

// Where rows of results go: into the destination where that is dense, else by way of a row of their own.
class OutputRows {
public:
    int64_t open(const WindowCall &call);
    // Do rows go straight into the destination?
    bool direct() const { return !bounce_; }
    void *begin(int64_t z, int64_t y) const;
    void finish(int64_t z, int64_t y) const;

private:
    const WindowCall *call_ = nullptr;
    std::optional<Scratch> bounce_;
};

// Makes the source of a call fit for windows: a source that overlaps the destination, other than by being the same, or
// that a window with several planes cannot read as it stands, is copied with its border. So is a small picture, which
// then goes as one row: by itself each of its rows would cost more than its pixels do.
class PreparedCall {
public:
    // A small picture is folded whose rows have so many bytes at most. Not one whose stage looks at more than the
    // windows of the region, nor where what a stage gathers for its first row is much.
    static constexpr int64_t short_row = 256;
    int64_t prepare(WindowCall &call, int64_t most_of_row = short_row);

private:
    int64_t copy_with_border(WindowCall &call);

    std::optional<Scratch> copy_;
};

// How many rows of a call go together: all, but where rows are short, so many that they may be folded.
int64_t rows_of_band(const WindowCall &call, int64_t most_of_row);

// Runs f(prepared call) on the region, or on one band of it after the other.
template <class F> int64_t run_prepared(const WindowCall &call, int64_t most_of_row, F f) {
    const int64_t rows = rows_of_band(call, most_of_row);
    for (int64_t y = 0; y < call.size[1]; y += rows) {
        WindowCall band = call;
        band.size[1] = rows < call.size[1] - y ? rows : call.size[1] - y;
        band.dst += y * call.dst_stride[1];
        band.src += y * call.src_stride[1];
        band.first[1] -= y;
        band.last[1] -= y;
        PreparedCall prepared;
        int64_t status = prepared.prepare(band, most_of_row);
        if (status == JORM_OK) status = f(band);
        if (status != JORM_OK) return status;
    }
    return JORM_OK;
}

// Bytes from row to row of a buffer: whole cache lines that do not all begin at the same place of a page.
int64_t ring_pitch(int64_t bytes);

// Runs the last stage of a chain over the region.
int64_t run_stage(const WindowCall &call, RowStage &stage);

} // namespace jorm
