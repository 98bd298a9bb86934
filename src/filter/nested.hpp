// Minima and maxima over masks whose columns are nested: disks, diamonds, crosses, ellipses, rectangles.
#pragma once
#include "filter/extremum.hpp"

namespace jorm {

// The columns of a mask, when of any two of them one has all rows of the other: they fall into groups of equal columns,
// and the rows of a group are those of the group before it and some more.
class NestedColumns {
public:
    using Stage = class NestedStage;

    int64_t open(jorm_xe *xe, const jorm_strel &strel, const WindowCall &call);
    // Are they nested, and is there anything in the mask?
    bool serve() const { return groups > 0; }

    // What the groups see lies in a line of elements each, the extrema of 2, 4 ... columns of a line in further ones.
    struct Doubled {
        int32_t from, apart; // of a line and its columns that many apart
    };
    struct Place {
        int32_t line, column;
    };
    int32_t groups = 0, doubled_lines = 0, rows = 0, places = 0;
    const int32_t *end = nullptr;                   // of the rows of each group
    const int32_t *plane = nullptr, *row = nullptr; // of the window, for each of the rows
    // Where every group is a run of rows that goes beyond the one before at both ends: the rows that two windows look
    // at, in the order of ExtremumRows::across_two().
    int32_t rows_of_two = 0;
    const int32_t *row_of_two = nullptr, *shared = nullptr;
    const Doubled *doubled = nullptr;
    const Place *place = nullptr; // all that a window looks at

private:
    void list_rows_of_two(int32_t *list, int32_t *shared_rows);
    void list_places(const int32_t *count, int32_t columns, Doubled *to_double, Place *to_place);

    std::optional<Scratch> memory_;
};

// The extremum over nested columns: down the columns for all groups together, then along the lines that this makes.
class NestedStage : public RowStage {
public:
    static constexpr int64_t short_row = PreparedCall::short_row;
    int64_t open(WindowRows &in, Extreme which, const NestedColumns &mask);
    void begin_plane(int64_t z) override;
    void produce(int64_t y, void *row) override;
    void produce_two(int64_t y, void *row, void *next) override;

private:
    void take(int64_t end);
    void find_rows(int64_t y, const int32_t *row, const int32_t *plane, int32_t rows);
    void along_lines(int lower, void *to, int64_t n);
    // Elements that the last window of a row reads after its first ones.
    int64_t beyond() const { return (in_->call().extent[2] - 1) * in_->call().channels; }

    WindowRows *in_ = nullptr;
    ExtremumChoice rows_;
    const NestedColumns *mask_ = nullptr;
    int64_t pitch_ = 0, taken_ = 0; // the row to take next
    int64_t slots_ = 0, slot_ = 0;  // of rows of one plane; where the next one goes
    bool two_ = false;              // rows of results go together
    int64_t part_ = 0;              // elements of a row that are made at once
    bool whole_ = false;            // as rows come
    char *ring_ = nullptr, *lines_ = nullptr;
    void **line_list_ = nullptr;
    const void **row_list_ = nullptr, **place_list_ = nullptr;
    std::optional<Scratch> memory_;
};

} // namespace jorm
