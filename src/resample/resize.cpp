// Nearest-neighbour resizing.
#include "jorm/resample.h"

#include "array/region.hpp"
#include "convert/copy_block.hpp"
#include "jorm/array.h"
#include "kernel/front.hpp"
#include "resample/axis.hpp"
#include "resample/resize_rows.hpp"
#include "xe/scratch.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <optional>

namespace jorm {
namespace {

constexpr double about_zero = std::numeric_limits<float>::epsilon();

// ---------------------------------------------------------------------- rows

template <int64_t Unit> void pick_units(char *dst, int64_t dst_step, const char *src, const int64_t *from, int64_t n) {
    for (int64_t i = 0; i < n; ++i) std::memcpy(dst + i * dst_step, src + from[i], Unit);
}

using PickUnits = void (*)(char *dst, int64_t dst_step, const char *src, const int64_t *from, int64_t n);

// For pixels, or elements, of so many bytes.
PickUnits pick_of(int64_t unit) {
    switch (unit) {
    case 1:
        return pick_units<1>;
    case 2:
        return pick_units<2>;
    case 3:
        return pick_units<3>;
    case 4:
        return pick_units<4>;
    case 6:
        return pick_units<6>;
    case 8:
        return pick_units<8>;
    case 12:
        return pick_units<12>;
    case 16:
        return pick_units<16>;
    case 24:
        return pick_units<24>;
    default:
        return pick_units<32>;
    }
}

// How the units of one row travel, each from its place in the source row.
class RowPlan {
public:
    RowPlan(int64_t units, int64_t unit, int64_t dst_step)
        : units_(units), unit_(unit), dst_step_(dst_step), pick_(pick_of(unit)) {}

    // Where each unit lies in the source row, from its first byte on.
    int64_t place(jorm_xe *xe, Axis axis, bool mirrored, int64_t src_step) {
        from_block_.emplace(xe, scratch_bytes(units_, sizeof(int64_t)), alignof(int64_t));
        if (!*from_block_) return JORM_ENOMEM;
        auto *const from = from_block_->as<int64_t>();
        for (int64_t i = 0; i < units_; ++i) from[mirrored ? units_ - 1 - i : i] = axis.next() * src_step;
        from_ = from;
        return JORM_OK;
    }

    // Shuffles, where the row is dense and its blocks come from few windows; only what units lie in is read.
    int64_t shuffle_by(jorm_xe *xe, const ResizeRows &rows) {
        if (!rows.shuffle[0] || dst_step_ != unit_ || bytes() < shuffle_block) return JORM_OK;
        int64_t span = 0;
        for (int64_t b = 0; b < blocks(); ++b) span = std::max(span, block(b).high - block(b).low);
        const int64_t windows = (span + shuffle_block - 1) / shuffle_block;
        const int64_t low = std::min(from_[0], from_[units_ - 1]), high = std::max(from_[0], from_[units_ - 1]) + unit_;
        if (windows > most_windows || high - low < windows * shuffle_block) return JORM_OK;

        const int64_t block_bytes = windows * shuffle_block;
        plan_block_.emplace(xe, scratch_bytes(blocks(), block_bytes + int64_t(sizeof(int64_t))), 64);
        if (!*plan_block_) return JORM_ENOMEM;
        auto *const picks = plan_block_->as<uint8_t>();
        auto *const starts = reinterpret_cast<int64_t *>(picks + blocks() * block_bytes);
        for (int64_t b = 0; b < blocks(); ++b) {
            starts[b] = std::min(block(b).low, high - block_bytes);
            fill_picks(picks + b * block_bytes, int(windows), starts[b], block_start(b));
        }
        plan_ = {bytes(), starts, picks};
        shuffle_ = rows.shuffle[windows - 1];
        return JORM_OK;
    }

    void run(char *dst, const char *src) const {
        if (shuffle_)
            shuffle_(dst, src, plan_);
        else
            pick_(dst, dst_step_, src, from_, units_);
    }

    bool dense() const { return dst_step_ == unit_; }
    int64_t bytes() const { return units_ * unit_; }

private:
    struct Reach {
        int64_t low, high;
    };

    int64_t blocks() const { return (bytes() + shuffle_block - 1) / shuffle_block; }
    int64_t block_start(int64_t b) const { return std::min(b * shuffle_block, bytes() - shuffle_block); }
    // What the units of a block span; they follow each other in ascending or in descending order.
    Reach block(int64_t b) const {
        const int64_t first = from_[block_start(b) / unit_], last = from_[(block_start(b) + shuffle_block - 1) / unit_];
        return {std::min(first, last), std::max(first, last) + unit_};
    }
    void fill_picks(uint8_t *picks, int windows, int64_t start, int64_t at) const {
        int64_t unit = at / unit_, byte = at % unit_;
        for (int i = 0; i < shuffle_block; ++i) {
            const int64_t place = from_[unit] - start + byte;
            for (int w = 0; w < windows; ++w)
                picks[w * shuffle_block + i] =
                    place / shuffle_block == w ? uint8_t(place % shuffle_block) : uint8_t(128);
            if (++byte == unit_) byte = 0, ++unit;
        }
    }

    int64_t units_, unit_, dst_step_;
    PickUnits pick_;
    const int64_t *from_ = nullptr;
    ShufflePlan plan_ = {};
    void (*shuffle_)(char *, const char *, const ShufflePlan &) = nullptr;
    std::optional<Scratch> from_block_, plan_block_;
};

// --------------------------------------------------------------------- front

// The two regions and what lies between them, in four slots.
struct Resize {
    int32_t size[4], src_size[4]; // the channel slots hold the common count
    int32_t stride[4], src_stride[4];
    Operand dst, src;
    Ratio ratio[3];
    bool mirrored[3];
    double offset[3];

    Axis axis(int slot) const { return {ratio[slot], offset[slot], src_size[slot]}; }
    bool overlaps() const { return may_meet(4, size[3], size, dst, src_size, src); }
};

bool agree(const jorm_array *dst, const jorm_array *src) {
    return check_operands(dst, {dst, nullptr}) == JORM_OK && check_operands(src, {src, nullptr}) == JORM_OK &&
           dst->ndims == src->ndims && dst->eltype == src->eltype && well_formed(dst->eltype) &&
           element_size(dst->eltype) > 0 && stored_channels(dst->extent[3]) == stored_channels(src->extent[3]);
}

// Whole numbers from an array, those of slots that it does not use as given.
void take_slots(int32_t *to, const int32_t *from, int ndims, int32_t unused) {
    std::copy(from, from + 4, to);
    if (ndims < 4) to[0] = unused;
}

int64_t negotiate(Resize &r, const jorm_array *dst, const jorm_array *src, const jorm_site *roi,
                  const jorm_site *src_roi, double *factors, const double *offsets) {
    if (!agree(dst, src)) return JORM_EINVAL;
    double given[4] = {}, scale[4] = {};
    for (int i = 4 - dst->ndims; i < 3; ++i) {
        given[i] = factors ? factors[i] : 0;
        scale[i] = std::fabs(given[i]);
        if (!std::isfinite(given[i]) || (offsets && !std::isfinite(offsets[i]))) return JORM_EINVAL;
    }
    jorm_site to, from;
    if (!jorm_arr_negotiateRoiEx(dst, src, &to, &from, scale, roi, src_roi, 3)) return JORM_EEMPTY;
    to.size[3] = from.size[3] = std::min(to.size[3], from.size[3]);
    take_slots(r.size, to.size, dst->ndims, 1);
    take_slots(r.src_size, from.size, dst->ndims, 1);
    take_slots(r.stride, dst->stride, dst->ndims, 0);
    take_slots(r.src_stride, src->stride, dst->ndims, 0);
    if (dst->ndims < 4) to.origin[0] = from.origin[0] = 0;
    r.dst = {dst->eltype, operand_at(*dst, to.origin).start, r.stride};
    r.src = {src->eltype, operand_at(*src, from.origin).start, r.src_stride};
    for (int i = 0; i < 3; ++i) {
        const bool replaced = std::fabs(given[i]) <= about_zero;
        r.ratio[i] = replaced ? Ratio{uint64_t(r.size[i]), unsigned(r.src_size[i])} : ratio_of(scale[i]);
        r.mirrored[i] = !replaced && given[i] < 0;
        r.offset[i] = offsets && i >= 4 - dst->ndims ? offsets[i] : 0;
    }
    if (r.overlaps()) return JORM_EINVAL;
    for (int i = 0; factors && i < 3; ++i)
        if (std::fabs(factors[i]) <= about_zero) factors[i] = double(r.size[i]) / double(r.src_size[i]);
    return JORM_OK;
}

int64_t run(jorm_xe *xe, uint64_t options, const Resize &r) {
    const int64_t element = element_size(r.dst.type);
    const bool packed = r.size[3] == 1 || (r.stride[3] == element && r.src_stride[3] == element);
    const int channels = packed ? 1 : r.size[3]; // that travel on their own
    const int64_t unit = packed ? element * r.size[3] : element;
    const Level which = level(options);
    RowPlan row(r.size[2], unit, r.size[2] == 1 ? unit : r.stride[2]);
    if (const int64_t status = row.place(xe, r.axis(2), r.mirrored[2], r.src_stride[2]); status != JORM_OK)
        return status;
    if (const int64_t status = row.shuffle_by(xe, resize_rows_at(which)); status != JORM_OK) return status;
    const CopyBytes copy = memory_rows_at(which).copy;

    Axis planes = r.axis(0);
    for (int64_t z = 0; z < r.size[0]; ++z) {
        char *const plane = r.dst.start + (r.mirrored[0] ? r.size[0] - 1 - z : z) * r.stride[0];
        const char *const src_plane = r.src.start + planes.next() * r.src_stride[0];
        Axis rows = r.axis(1);
        const char *last_row = nullptr;
        int64_t last = -1;
        for (int64_t y = 0; y < r.size[1]; ++y) {
            char *const to = plane + (r.mirrored[1] ? r.size[1] - 1 - y : y) * r.stride[1];
            const int64_t from = rows.next();
            if (from == last && channels == 1 && row.dense())
                copy(to, last_row, row.bytes(), 0);
            else
                for (int c = 0; c < channels; ++c)
                    row.run(to + c * r.stride[3], src_plane + from * r.src_stride[1] + c * r.src_stride[3]);
            last = from;
            last_row = to;
        }
    }
    return JORM_OK;
}

double ratio_of_sizes(const int32_t *dst_size, const int32_t *src_size, int slot) {
    if (slot == 3) return 1;
    return dst_size && src_size && src_size[slot] >= 1 ? double(dst_size[slot]) / double(src_size[slot]) : 0;
}

} // namespace
} // namespace jorm

using namespace jorm;

JORM_API int64_t JormResize(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const jorm_site *roi, const jorm_site *src_roi, double *factors) {
    return JormEResize(xe, options, dst, src, roi, src_roi, factors, nullptr);
}

JORM_API int64_t JormEResize(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const jorm_site *src_roi, double *factors, const double *offsets) {
    Resize r;
    if (!xe) return JORM_EINVAL;
    double replaced[4] = {};
    if (factors) std::copy(factors, factors + 4, replaced);
    if (const int64_t status = negotiate(r, dst, src, roi, src_roi, replaced, offsets); status != JORM_OK)
        return status;
    const int64_t status = run(xe, options, r);
    if (factors && status == JORM_OK) std::copy(replaced, replaced + 4, factors);
    return status;
}

JORM_API double *jorm_mkreszf(double *factors, const int32_t *dst_size, const int32_t *src_size) {
    for (int i = 0; factors && i < 4; ++i) factors[i] = ratio_of_sizes(dst_size, src_size, i);
    return factors;
}

JORM_API int32_t jorm_fixreszf(double *factors, const int32_t *dst_size, const int32_t *src_size) {
    int32_t all = factors != nullptr;
    for (int i = 0; factors && i < 4; ++i) {
        if (!std::isfinite(factors[i]) || factors[i] == 0) factors[i] = ratio_of_sizes(dst_size, src_size, i);
        all &= factors[i] != 0;
    }
    return all;
}
