#include "filter/extremum.hpp"

namespace jorm {

int64_t ExtremumStage::open(WindowRows &in, Extreme which) {
    in_ = &in;
    const WindowCall &c = in.call();
    rows_.open(c, which);
    if (const int64_t status = columns_.open(in, rows_->columns); status != JORM_OK || c.extent[2] == 1) return status;
    const int64_t pitch = ring_pitch(in.whole() * c.element());
    buffers_.emplace(c.xe, scratch_bytes(2, pitch), 64);
    if (!*buffers_) return JORM_ENOMEM;
    made_ = buffers_->as<char>();
    spare_ = made_ + pitch;
    return JORM_OK;
}

void ExtremumStage::produce(int64_t y, void *row) {
    const WindowCall &c = in_->call();
    const int64_t top = y - c.before[1], last = top + c.extent[1] - 1;
    for (int64_t v = y == 0 ? top : last; rows_->unordered && v <= last; ++v)
        for (int64_t d = 0; d < c.extent[0]; ++d) rows_.meet(in_->row(d, v), in_->bare);
    columns_.use(rows_->columns);
    if (c.extent[2] == 1) return columns_.gather(y, row);
    columns_.gather(y, made_ + in_->left * c.element());
    in_->complete(made_, c.element());
    rows_->along(row, made_, spare_, c.row_elements(), c.extent[2], c.channels);
}

} // namespace jorm
