#include "filter/composite.hpp"

#include "convert/copy_block.hpp"

#include <cstring>
#include <limits>

namespace jorm {
namespace {

template <class T> void put(NeutralPixel &pixel, Extreme against) {
    using limits = std::numeric_limits<T>;
    const T value = against == Extreme::least ? limits::max() : limits::lowest();
    for (size_t i = 0; i < sizeof pixel.bytes; i += sizeof value) std::memcpy(pixel.bytes + i, &value, sizeof value);
    pixel.value = double(value);
}

} // namespace

NeutralPixel::NeutralPixel(const WindowCall &c, Extreme against) {
    c.type == JORM_U8    ? put<uint8_t>(*this, against)
    : c.type == JORM_S16 ? put<int16_t>(*this, against)
    : c.type == JORM_S32 ? put<int32_t>(*this, against)
                         : put<float>(*this, against);
}

int64_t HatStage::open(WindowRows &source, RowStage &changed, Composite which) {
    source_ = &source;
    changed_ = &changed;
    closing_ = is_closing(which);
    pitch_ = ring_pitch(source.call().row_elements() * source.call().element());
    rows_.emplace(source.call().xe, scratch_bytes(2, pitch_), 64);
    return *rows_ ? JORM_OK : JORM_ENOMEM;
}

void HatStage::begin_plane(int64_t z) {
    source_->begin_plane(z);
    changed_->begin_plane(z);
}

void HatStage::subtract(int64_t y, void *row, const void *changed) {
    const WindowCall &c = source_->call();
    const void *const before = source_->centre(y);
    extremum_rows_of(c, Extreme::least)
        .subtract(row, closing_ ? changed : before, closing_ ? before : changed, c.row_elements());
}

void HatStage::produce(int64_t y, void *row) {
    changed_->produce(y, rows_->get());
    subtract(y, row, rows_->get());
}

void HatStage::produce_two(int64_t y, void *row, void *next) {
    char *const changed = rows_->as<char>();
    changed_->produce_two(y, changed, changed + pitch_);
    subtract(y, row, changed);
    subtract(y + 1, next, changed + pitch_);
}

// Folded, both passes have the same pitch, so the results of the first one lie between borders as they come.
int64_t BetweenPasses::open(const WindowCall &c, Extreme against) {
    const bool folded = c.folded.rows > 0;
    const int64_t row = (folded ? c.folded.pitch : c.size[2]) * c.pixel();
    const int64_t rows = folded ? c.folded.rows + c.extent[1] - 1 : c.size[1];
    against_ = against;
    block_.emplace(c.xe, scratch_bytes(c.size[0], rows, row), 64);
    if (!*block_) return JORM_ENOMEM;
    const int64_t dense[4] = {rows * row, row, c.pixel(), c.element()};
    first = second = c;
    first.folded = {};
    std::memcpy(first.dst_stride, dense, sizeof dense);
    std::memcpy(second.src_stride, dense, sizeof dense);
    first.dst = block_->as<char>() + (folded ? before() : 0);
    second.src = first.dst;
    return JORM_OK;
}

int64_t BetweenPasses::finish(PreparedCall &prepared) {
    WindowCall &c = second;
    const NeutralPixel neutral(c, against_);
    if (c.folded.rows == 0) {
        for (int i = 0; i < 3; ++i) {
            c.first[i] = 0;
            c.last[i] = c.size[i];
        }
        c.border.mode = JORM_BORDER_CONST;
        for (double &value : c.border.values) value = neutral.value;
        return prepared.prepare(c, 0);
    }
    const int64_t pitch = c.src_stride[1], row = c.folded.pixels * c.pixel();
    char *const start = block_->as<char>(), *const end = start + before() + row;
    const auto fill = [&](char *to, int64_t rows, int64_t bytes) {
        fill_rows(memory_rows_at(c.which), to, pitch, rows, bytes, int32_t(sizeof(float)), neutral.bytes);
    };
    fill(start, 1, before());
    fill(end, c.folded.rows - 1, pitch - row);
    const int64_t last = (c.folded.rows - 1) * pitch;
    fill(end + last, 1, (c.folded.rows + c.extent[1] - 1) * pitch - (before() + row + last));
    return JORM_OK;
}

int64_t rectangular_composite(WindowCall &c, Composite which) {
    return run_composite<ExtremumStage>(
        c, which, [](ExtremumStage &stage, WindowRows &rows, Extreme extreme) { return stage.open(rows, extreme); });
}

} // namespace jorm
