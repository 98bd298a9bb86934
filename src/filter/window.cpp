#include "filter/window.hpp"

#include "convert/copy_block.hpp"
#include "filter/folded_rows.hpp"
#include "filter/shape.hpp"

#include <algorithm>
#include <cstring>

namespace jorm {
namespace {

constexpr int64_t none = INT64_MIN;
constexpr int64_t line = 64;
// Of the first-level cache: so many lines a multiple of a page apart stay in it.
constexpr int64_t ways = 8, page = 4096;
// A picture is folded that has so many bytes with its border at most and this many rows at least.
constexpr int64_t most_folded = 1 << 17, least_rows = 5;

// The position of [first, last) that stands for v under a border mode, `none` for a constant. Mirror images repeat.
int64_t stands_for(uint32_t mode, int64_t v, int64_t first, int64_t last) {
    if (v >= first && v < last) return v;
    const int64_t n = last - first, p = v - first;
    const auto phase = [p](int64_t period) { return (p % period + period) % period; };
    switch (mode & 15) {
    case JORM_BORDER_CONST:
        return none;
    case JORM_BORDER_REPLICATE:
        return v < first ? first : last - 1;
    case JORM_BORDER_WRAP:
        return first + phase(n);
    case JORM_BORDER_REFLECT: {
        const int64_t m = phase(2 * n);
        return first + (m < n ? m : 2 * n - 1 - m);
    }
    default: {
        if (n == 1) return first;
        const int64_t m = phase(2 * n - 2);
        return first + (m < n ? m : 2 * n - 2 - m);
    }
    }
}

int64_t stands_for(const WindowCall &c, int axis, int64_t v) {
    return stands_for(c.border.mode, v, c.first[axis], c.last[axis]);
}

const FoldedRows &folded_rows_of(const WindowCall &c) { return JORM_OF_LEVEL(folded_rows, c.which)[0]; }

bool dense_source(const WindowCall &c) {
    return c.src_stride[2] == c.pixel() && (c.channels == 1 || c.src_stride[3] == c.element());
}
bool dense_destination(const WindowCall &c) {
    return c.dst_stride[2] == c.pixel() && (c.channels == 1 || c.dst_stride[3] == c.element());
}

// Does the region lie in the picture along an axis?
bool inside(const WindowCall &c, int axis) { return c.first[axis] <= 0 && c.last[axis] >= c.size[axis]; }

// The columns that windows read: [begin, end), of which [from, to) exist.
struct ColumnSpan {
    int64_t begin, end, from, to;

    explicit ColumnSpan(const WindowCall &c) : begin(-c.before[2]), end(c.size[2] + c.after(2)) {
        from = std::clamp(c.first[2], begin, end);
        to = std::clamp(c.last[2], from, end);
    }
    int64_t missing(int64_t i) const { return i < from - begin ? begin + i : to + i - (from - begin); }
    // Are those that stand for the missing ones among those that exist?
    bool complete_each_other(const WindowCall &c) const {
        for (int64_t i = 0; i < end - begin - (to - from); ++i)
            if (const int64_t x = stands_for(c, 2, missing(i)); x < from || x >= to) return false;
        return true;
    }
};

// Can windows not read the rows as they stand?
bool needs_ring(const WindowCall &c) {
    const bool beyond = c.first[1] > -c.before[1] || c.last[1] < c.size[1] + c.after(1);
    return c.in_place || !dense_source(c) || !ColumnSpan(c).complete_each_other(c) ||
           (beyond && (c.border.mode & 15) == JORM_BORDER_CONST);
}

// Does a ring follow what windows read: the rows of one plane, downward?
bool ring_serves(const WindowCall &c) {
    return c.extent[0] == 1 && (c.border.mode & 15) != JORM_BORDER_WRAP && inside(c, 0) && inside(c, 1) && inside(c, 2);
}

// Pixels of a row from a layout into another, `channels` elements each.
void copy_pixels(const WindowCall &c, char *to, const int64_t *to_stride, const char *from, const int64_t *from_stride,
                 int64_t n) {
    if (n < 1) return;
    const CopyBytes copy = memory_rows_at(c.which).copy;
    const int64_t e = c.element();
    if (c.channels == 1 || (to_stride[1] == e && from_stride[1] == e))
        return copy_units(copy, to, to_stride[0], from, from_stride[0], n, c.pixel(), 0, &transport_at(c.which));
    for (int32_t k = 0; k < c.channels; ++k)
        copy_units(copy, to + k * to_stride[1], to_stride[0], from + k * from_stride[1], from_stride[0], n, e, 0,
                   &transport_at(c.which));
}

template <class U> void complete_side(char *row, int64_t at, int64_t n, const int64_t *from, int64_t origin) {
    constexpr int64_t size = sizeof(U);
    for (int64_t i = 0; i < n; ++i) std::memcpy(row + (at + i) * size, row + (from[i] - origin) * size, size);
}
template <int N> struct Unit { char bytes[N]; };

// Calls f(a unit of so many bytes): a pixel of up to four channels, in elements or in sums of them.
template <class F> [[gnu::always_inline]] inline void with_unit(int64_t bytes, F f) {
    switch (bytes) {
    case 1:
        return f(Unit<1>());
    case 2:
        return f(Unit<2>());
    case 3:
        return f(Unit<3>());
    case 4:
        return f(Unit<4>());
    case 6:
        return f(Unit<6>());
    case 8:
        return f(Unit<8>());
    case 12:
        return f(Unit<12>());
    case 16:
        return f(Unit<16>());
    case 24:
        return f(Unit<24>());
    default: // four channels of 8 bytes
        return f(Unit<32>());
    }
}

} // namespace

int64_t ring_pitch(int64_t bytes) {
    const int64_t pitch = (bytes + line - 1) / line * line;
    return pitch % page == 0 ? pitch + line : pitch;
}

// ---- Rows of a window ----

int64_t WindowRows::find_columns() {
    const WindowCall &c = *call_;
    const ColumnSpan k(c);
    columns_[0] = k.from - k.begin;
    columns_[1] = k.end - k.to;
    left = columns_[0] * c.channels;
    bare = (k.to - k.from) * c.channels;
    right = columns_[1] * c.channels;
    const int64_t n = columns_[0] + columns_[1];
    if (n == 0) return JORM_OK;
    column_block_.emplace(c.xe, scratch_bytes(n, sizeof(int64_t)), alignof(int64_t));
    if (!*column_block_) return JORM_ENOMEM;
    auto *const table = column_block_->as<int64_t>();
    for (int64_t i = 0; i < n; ++i) table[i] = stands_for(c, 2, k.missing(i));
    stands_for_ = table;
    return JORM_OK;
}

int64_t WindowRows::open(const WindowCall &call, int64_t history, bool side_by_side) {
    call_ = &call;
    if (const int64_t status = find_columns(); status != JORM_OK) return status;
    const bool crowded = side_by_side && call.extent[1] > ways && call.src_stride[1] % page == 0 && ring_serves(call);
    if (!needs_ring(call) && !crowded) return JORM_OK;
    const bool constant = (call.border.mode & 15) == JORM_BORDER_CONST;
    if (constant) jorm_mkifillvalv16(call.type, constant_, call.border.values, call.channels);
    return open_ring(history, constant ? constant_ : nullptr);
}

int64_t WindowRows::open(const WindowCall &call, RowStage &stage, const void *constant, int64_t history) {
    call_ = &call;
    stage_ = &stage;
    columns_[0] = call.before[2];
    columns_[1] = call.after(2);
    std::memcpy(constant_, constant, size_t(call.pixel()));
    bare = call.row_elements();
    return open_ring(history, constant_);
}

// Rows of the ring are whole.
int64_t WindowRows::open_ring(int64_t history, const void *constant) {
    const WindowCall &c = *call_;
    const int64_t pixels = c.size[2] + c.extent[2] - 1;
    ring_ = true;
    history_ = history;
    // A stage runs ahead by a row.
    capacity_ = stage_ ? std::min(c.extent[1] + history + 1, c.size[1])
                       : std::min(c.extent[1] + history, c.last[1] - c.first[1]);
    pitch_ = ring_pitch(pixels * c.pixel());
    ring_block_.emplace(c.xe, scratch_bytes(capacity_ + (constant ? 1 : 0), pitch_), line);
    if (!*ring_block_) return JORM_ENOMEM;
    ring_start_ = ring_block_->as<char>();
    left = right = 0;
    bare = pixels * c.channels;
    if (!constant) return JORM_OK;
    constant_row_ = ring_start_ + capacity_ * pitch_;
    for (int64_t i = 0; i < pixels; ++i) std::memcpy(constant_row_ + i * c.pixel(), constant, size_t(c.pixel()));
    for (int64_t r = 0; stage_ && r < capacity_; ++r) {
        std::memcpy(ring_start_ + r * pitch_, constant_row_, size_t(columns_[0] * c.pixel()));
        std::memcpy(ring_start_ + r * pitch_ + (columns_[0] + c.size[2]) * c.pixel(), constant_row_,
                    size_t(columns_[1] * c.pixel()));
    }
    return JORM_OK;
}

void WindowRows::begin_plane(int64_t z) {
    const WindowCall &c = *call_;
    z_ = z;
    if (stage_) {
        stage_->begin_plane(z);
        lowest_ = 0;
    } else {
        plane_ = c.src + stands_for(c, 0, z) * c.src_stride[0];
        if (!ring_) plane_ += (columns_[0] - c.before[2]) * c.src_stride[2];
        // The mirror image at the lower edge may ask for rows above the first window.
        const int64_t mirrored = 2 * (c.last[1] - 1) - (c.size[1] - 1 + c.after(1));
        lowest_ = std::max(c.first[1], std::min(-c.before[1], mirrored));
    }
    loaded_ = lowest_ - 1;
}

const char *WindowRows::row(int64_t d, int64_t v) {
    const WindowCall &c = *call_;
    if (c.extent[0] == 1) return row(v);
    const int64_t z = stands_for(c, 0, z_ - c.before[0] + d), y = stands_for(c, 1, v);
    return c.src + z * c.src_stride[0] + y * c.src_stride[1] + (columns_[0] - c.before[2]) * c.src_stride[2];
}

const char *WindowRows::distant_row(int64_t v) {
    const WindowCall &c = *call_;
    const int64_t r = stage_ ? (v >= 0 && v < c.size[1] ? v : none) : stands_for(c, 1, v);
    if (r == none) return constant_row_;
    if (!ring_) return plane_ + r * c.src_stride[1];
    while (loaded_ < r) load();
    return slot(r);
}

char *WindowRows::next_slot() {
    if (++loaded_ - lowest_ == capacity_) lowest_ = loaded_;
    return slot(loaded_);
}

// The next row of the picture, or the next two that a stage makes.
void WindowRows::load() {
    char *const to = next_slot();
    if (!stage_) return make_row(to, plane_ + loaded_ * call_->src_stride[1]);
    const int64_t y = loaded_, skip = columns_[0] * call_->pixel();
    if (y + 1 == call_->size[1]) return stage_->produce(y, to + skip);
    stage_->produce_two(y, to + skip, next_slot() + skip);
}

// The bare part of a whole row from the picture's; `from` is its column 0.
void WindowRows::make_bare(char *to, const char *from) const {
    const WindowCall &c = *call_;
    const int64_t dense[2] = {c.pixel(), c.element()}, n = c.size[2] + c.extent[2] - 1 - columns_[0] - columns_[1];
    copy_pixels(c, to + columns_[0] * c.pixel(), dense, from + (columns_[0] - c.before[2]) * c.src_stride[2],
                c.src_stride + 2, n);
}

// All of it.
void WindowRows::make_row(char *to, const char *from) const {
    const WindowCall &c = *call_;
    const int64_t pixel = c.pixel(), step = c.src_stride[2];
    const int64_t dense[2] = {pixel, c.element()},
                  bare_pixels = c.size[2] + c.extent[2] - 1 - columns_[0] - columns_[1];
    make_bare(to, from);
    for (int64_t i = 0; i < columns_[0] + columns_[1]; ++i) {
        char *const at = to + (i < columns_[0] ? i : i + bare_pixels) * pixel;
        if (stands_for_[i] == none)
            std::memcpy(at, constant_, size_t(pixel));
        else
            copy_pixels(c, at, dense, from + stands_for_[i] * step, c.src_stride + 2, 1);
    }
}

void WindowRows::complete(void *row, int32_t element) const {
    if (left == 0 && right == 0) return;
    const WindowCall &c = *call_;
    const int64_t right_at = columns_[0] + bare / c.channels, origin = -c.before[2];
    with_unit(c.channels * element, [&]<int N>(Unit<N>) {
        complete_side<Unit<N>>(static_cast<char *>(row), 0, columns_[0], stands_for_, origin);
        complete_side<Unit<N>>(static_cast<char *>(row), right_at, columns_[1], stands_for_ + columns_[0], origin);
    });
}

// The rows that windows read of a plane, bare or whole; those that a constant stands for are left out.
void WindowRows::make_plane(char *to, int64_t pitch, const char *plane, bool bare_rows) const {
    const WindowCall &c = *call_;
    const int64_t begin = -c.before[1], end = c.size[1] + c.after(1), step = c.src_stride[1];
    const int64_t from = std::clamp(c.first[1], begin, end), until = std::clamp(c.last[1], from, end);
    const bool together = bare_rows && bare > 0 && dense_source(c) && bare * c.element() <= PreparedCall::short_row;
    for (int64_t v = begin, n; v < end; v += n) {
        n = together && v == from && from < until ? until - from : 1;
        const int64_t y = stands_for(c, 1, v);
        if (y == none) continue;
        char *const row = to + (v - begin) * pitch;
        const char *const source = plane + y * step;
        if (together)
            folded_rows_of(c).copy(row + left * c.element(), pitch, source + (columns_[0] - c.before[2]) * c.pixel(),
                                   step, n, bare * c.element());
        else if (bare_rows)
            make_bare(row, source);
        else
            make_row(row, source);
    }
}

// Finds what lies between two bare rows; false where it does not come from their ends.
bool WindowRows::find_gap(FoldGap &gap) const {
    const int64_t pixel = call_->pixel(), bytes = bare / call_->channels * pixel, begin = columns_[0] * pixel;
    gap.bytes = (columns_[0] + columns_[1]) * pixel;
    if (gap.bytes > gap.most) return false;
    for (int64_t i = gap.bytes; i < gap.most; ++i) gap.from[i] = uint8_t(16 + (i - gap.bytes) % 16);
    bool serve = true;
    each_to_complete([&](int64_t column, int64_t from) {
        const bool after = column < columns_[0]; // the gap
        const int64_t to = after ? columns_[1] * pixel + column * pixel : column * pixel - begin - bytes;
        const int64_t place = from * pixel - begin + (after ? 16 : 16 - bytes);
        serve = serve && (after ? place + pixel <= 32 : place >= 0);
        for (int64_t k = 0; k < pixel; ++k) gap.from[to + k] = uint8_t(place + k);
    });
    return serve;
}

// Completes all rows of a block. Up to a cache line before and after it may be written.
void WindowRows::complete_all(char *block, int64_t pitch, int64_t rows) const {
    const WindowCall &c = *call_;
    const auto fill_gaps = folded_rows_of(c).fill_gaps;
    FoldGap gap;
    if (fill_gaps && find_gap(gap)) return fill_gaps(block + (left + bare) * c.element() - pitch, pitch, rows + 1, gap);
    if (rows * pitch > most_folded) {
        for (int64_t r = 0; r < rows; ++r) complete(block + r * pitch, c.element());
        return;
    }
    with_unit(c.pixel(), [&]<int N>(Unit<N>) {
        each_to_complete([&](int64_t to, int64_t from) {
            for (int64_t r = 0; r < rows; ++r) std::memcpy(block + r * pitch + to * N, block + r * pitch + from * N, N);
        });
    });
}

// ---- Rows of results ----

int64_t OutputRows::open(const WindowCall &call) {
    call_ = &call;
    if (call.folded.rows == 0 && dense_destination(call)) return JORM_OK;
    bounce_.emplace(call.xe, scratch_bytes(call.size[2], call.pixel()), line);
    return *bounce_ ? JORM_OK : JORM_ENOMEM;
}

void *OutputRows::begin(int64_t z, int64_t y) const {
    return bounce_ ? bounce_->as<char>() : call_->dst + z * call_->dst_stride[0] + y * call_->dst_stride[1];
}

void OutputRows::finish(int64_t z, int64_t y) const {
    if (!bounce_) return;
    const WindowCall &c = *call_;
    char *const to = c.dst + z * c.dst_stride[0] + y * c.dst_stride[1];
    const char *const from = bounce_->as<char>();
    const int64_t dense[2] = {c.pixel(), c.element()}, pitch = c.folded.pitch * c.pixel();
    if (c.folded.rows == 0) return copy_pixels(c, to, c.dst_stride + 2, from, dense, c.size[2]);
    if (dense_destination(c))
        return folded_rows_of(c).copy(to, c.dst_stride[1], from, pitch, c.folded.rows, c.folded.pixels * c.pixel());
    for (int64_t r = 0; r < c.folded.rows; ++r)
        copy_pixels(c, to + r * c.dst_stride[1], c.dst_stride + 2, from + r * pitch, dense, c.folded.pixels);
}

// ---- Whole calls ----

namespace {

// What the windows read, as an operand with its size; false when that cannot be told in 32 bits.
struct Footprint {
    int32_t size[4], stride[4];
    Operand operand;
};
Footprint source_footprint(const WindowCall &c) {
    Footprint f;
    const char *start = c.src;
    for (int i = 0; i < 3; ++i) {
        const int64_t from = -c.before[i], to = c.size[i] + c.after(i);
        int64_t low = std::max(c.first[i], from), high = std::min(c.last[i], to);
        // Mirror images reach into the picture as far as the window beyond it.
        if (from < c.first[i]) high = std::clamp(2 * c.first[i] - from + 1, high, std::max(high, c.last[i]));
        if (to > c.last[i]) low = std::clamp(2 * c.last[i] - to - 1, std::min(low, c.first[i]), low);
        if ((c.border.mode & 15) == JORM_BORDER_WRAP && (from < c.first[i] || to > c.last[i]))
            low = c.first[i], high = c.last[i];
        start += low * c.src_stride[i];
        f.size[i] = saturate_i32(high - low);
        f.stride[i] = int32_t(c.src_stride[i]);
    }
    f.size[3] = c.channels;
    f.stride[3] = int32_t(c.src_stride[3]);
    f.operand = operand(c.type, start, f.stride);
    return f;
}

Footprint destination_footprint(const WindowCall &c) {
    Footprint f;
    for (int i = 0; i < 4; ++i) {
        f.size[i] = i < 3 ? int32_t(c.size[i]) : c.channels;
        f.stride[i] = int32_t(c.dst_stride[i]);
    }
    f.operand = operand(c.type, c.dst, f.stride);
    return f;
}

// May what windows read be written?
bool may_meet(const WindowCall &c) {
    Footprint src = source_footprint(c), dst = destination_footprint(c);
    src.operand.stride = src.stride;
    dst.operand.stride = dst.stride;
    return may_meet(4, c.channels, dst.size, dst.operand, src.size, src.operand);
}

// Does a row by itself cost more than its pixels, and is the border beside it the lesser part?
bool short_rows(const WindowCall &c, int64_t most_of_row) {
    return c.size[0] == 1 && c.extent[0] == 1 && c.size[2] >= c.extent[2] && c.size[2] * c.pixel() <= most_of_row;
}
// How many rows may be folded together?
int64_t most_rows(const WindowCall &c) {
    return most_folded / ((c.size[2] + c.extent[2] - 1) * c.pixel()) - (c.extent[1] - 1);
}
bool folds(const WindowCall &c, int64_t most_of_row) {
    return short_rows(c, most_of_row) && c.size[1] >= std::max(least_rows, c.extent[1]) && c.size[1] <= most_rows(c);
}

} // namespace

int64_t rows_of_band(const WindowCall &c, int64_t most_of_row) {
    const int64_t rows = c.size[1], most = short_rows(c, most_of_row) ? most_rows(c) : rows;
    // An environment keeps the memory that a band has had, so that none is refused once results are written.
    if (!c.xe || rows <= most || most < 4 * c.extent[1] || may_meet(c)) return rows;
    const int64_t bands = (rows + most - 1) / most;
    return (rows + bands - 1) / bands;
}

int64_t PreparedCall::prepare(WindowCall &c, int64_t most_of_row) {
    const bool meet = may_meet(c);
    bool same = meet && c.dst == c.src;
    for (int i = 0; i < 4 && same; ++i)
        same = c.dst_stride[i] == c.src_stride[i] || (i < 3 ? c.size[i] : c.channels) == 1;
    c.in_place = same;

    const bool copy = (meet && !same) || (needs_ring(c) && !ring_serves(c)) ||
                      (c.extent[0] > 1 && (c.border.mode & 15) == JORM_BORDER_CONST);
    const bool fold = folds(c, most_of_row);
    if (!copy && !fold) return JORM_OK;

    c.in_place = false;
    if (const int64_t status = copy_with_border(c); status != JORM_OK || !fold) return status;
    c.folded = {c.size[1], c.size[2], c.size[2] + c.extent[2] - 1};
    c.size[2] += (c.size[1] - 1) * c.folded.pitch;
    c.last[2] = c.size[2] + c.after(2);
    c.size[1] = 1;
    return JORM_OK;
}

// Rows first as far as they exist, around them the constant or what stands for others, column by column or all columns
// between two rows at once.
int64_t PreparedCall::copy_with_border(WindowCall &c) {
    int64_t grown[3];
    for (int i = 0; i < 3; ++i) grown[i] = c.size[i] + c.extent[i] - 1;
    const int64_t pixel = c.pixel(), row_bytes = grown[2] * pixel, rows = grown[0] * grown[1];
    const size_t bytes = scratch_bytes(grown[0], grown[1], grown[2], pixel);
    if (bytes > SIZE_MAX / 2) return JORM_ENOMEM;
    copy_.emplace(c.xe, bytes + 2 * line, line);
    if (!*copy_) return JORM_ENOMEM;
    char *const block = copy_->as<char>() + line;
    WindowRows made;
    made.call_ = &c;
    if (const int64_t status = made.find_columns(); status != JORM_OK) return status;
    const bool constant = (c.border.mode & 15) == JORM_BORDER_CONST;
    const bool bare = constant || ColumnSpan(c).complete_each_other(c);
    if (constant) {
        jorm_mkifillvalv16(c.type, made.constant_, c.border.values, c.channels);
        fill_rows(memory_rows_at(c.which), block, 0, 1, rows * row_bytes, 4 * c.channels, made.constant_);
    }
    for (int64_t d = 0; d < grown[0]; ++d) {
        const int64_t z = stands_for(c, 0, d - c.before[0]);
        if (z != none) made.make_plane(block + d * grown[1] * row_bytes, row_bytes, c.src + z * c.src_stride[0], bare);
    }
    if (bare && !constant) made.complete_all(block, row_bytes, rows);
    c.src_stride[3] = c.element();
    c.src_stride[2] = pixel;
    c.src_stride[1] = row_bytes;
    c.src_stride[0] = row_bytes * grown[1];
    c.src = block;
    for (int i = 0; i < 3; ++i) {
        c.src += c.before[i] * c.src_stride[i];
        c.first[i] = -c.before[i];
        c.last[i] = c.size[i] + c.after(i);
    }
    return JORM_OK;
}

int64_t run_stage(const WindowCall &call, RowStage &stage) {
    OutputRows out;
    if (const int64_t status = out.open(call); status != JORM_OK) return status;
    for (int64_t z = 0; z < call.size[0]; ++z) {
        stage.begin_plane(z);
        int64_t y = 0;
        for (; out.direct() && y + 2 <= call.size[1]; y += 2)
            stage.produce_two(y, out.begin(z, y), out.begin(z, y + 1));
        for (; y < call.size[1]; ++y) {
            stage.produce(y, out.begin(z, y));
            out.finish(z, y);
        }
    }
    return JORM_OK;
}

} // namespace jorm
