#include "filter/composite.hpp"

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

int64_t BetweenPasses::open(const WindowCall &c, Extreme against) {
    const int64_t row = c.size[2] * c.pixel();
    block_.emplace(c.xe, scratch_bytes(c.size[0], c.size[1], row), 64);
    if (!*block_) return JORM_ENOMEM;
    const int64_t dense[4] = {c.size[1] * row, row, c.pixel(), c.element()};
    first = second = c;
    first.dst = block_->as<char>();
    second.src = block_->as<char>();
    std::memcpy(first.dst_stride, dense, sizeof dense);
    std::memcpy(second.src_stride, dense, sizeof dense);
    if (c.folded.rows > 0) { // what the first pass makes lies in memory as it is; the second one folds it again
        second.size[1] = c.folded.rows;
        second.size[2] = c.folded.pixels;
        second.src_stride[1] = c.folded.pitch * c.pixel();
        first.folded = second.folded = {};
    }
    for (int i = 0; i < 3; ++i) {
        second.first[i] = 0;
        second.last[i] = second.size[i];
    }
    second.border.mode = JORM_BORDER_CONST;
    for (double &value : second.border.values) value = NeutralPixel(c, against).value;
    return JORM_OK;
}

int64_t rectangular_composite(WindowCall &c, Composite which) {
    return run_composite<ExtremumStage>(
        c, which, [](ExtremumStage &stage, WindowRows &rows, Extreme extreme) { return stage.open(rows, extreme); });
}

} // namespace jorm
