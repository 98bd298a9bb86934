#include "convert/copy_masked.hpp"

#include "jorm/shapes.h"
#include "kernel/level_table.hpp"

#include <algorithm>
#include <bit>
#include <cstring>

namespace jorm {

JORM_LEVEL_TABLE(const Row, masked_rows);

namespace {

Row find_row(const MaskedCall &call, int op) {
    const int log2 = std::countr_zero(unsigned(element_size(call.dst.type)));
    const bool inverted = (call.options & JORM_OPT_MASK_INVERT) != 0;
    return JORM_OF_LEVEL(masked_rows, level(call.options))[masked_row(op, log2, inverted)];
}

// Sizes, of all operands, from which the rows for distant data win.
constexpr double far_copy_bytes = 16 << 20, far_fill_bytes = 1 << 20;

double bytes_of(const Shape &shape, uint32_t type, int arrays) {
    return double(shape.rows) * shape.pixels * shape.channels * (1 + arrays * element_size(type));
}

int64_t read_call(MaskedCall &call, Shape &shape) {
    call.mask.by_pixel = call.by_pixel;
    if (!call.dst.start || !call.dst.stride || !call.mask.start || !call.mask.stride) return JORM_EINVAL;
    if (int64_t status = read_shape(shape, call.word, call.size); status != JORM_OK) return status;
    return check_masked(call.dst.type, call.mask.type);
}

// A pixel of converted values as constants of rows.
class Values {
public:
    int64_t read(uint32_t type, const double *values, int32_t channels) {
        element_ = element_size(type);
        return jorm_mkifillvalv16(type, pixel_, values, channels);
    }
    bool uniform(int32_t channels) const {
        for (int32_t c = 1; c < channels; ++c)
            if (std::memcmp(pixel_, pixel_ + c * element_, size_t(element_)) != 0) return false;
        return true;
    }
    // Entry i becomes the value of channel `first` + i, repeated with the channels; `length` entries.
    const ConstantPattern *lay_out(int32_t first, int32_t channels, int32_t length) {
        for (int32_t i = 0; i < std::min(channels, length); ++i) {
            pattern_.whole[i] = 0;
            std::memcpy(&pattern_.whole[i], pixel_ + (first + i) * element_, size_t(element_));
        }
        for (int32_t i = channels; i < length; ++i) pattern_.whole[i] = pattern_.whole[i - channels];
        return &pattern_;
    }

private:
    static_assert(std::endian::native == std::endian::little);
    char pixel_[16];
    int32_t element_ = 0;
    ConstantPattern pattern_;
};

} // namespace

int64_t check_masked(uint32_t type, uint32_t mask_type) {
    if (!well_formed(type) || (mask_type != JORM_U8 && mask_type != JORM_S8)) return JORM_EINVAL;
    return element_size(type) == 0 ? JORM_ENOTSUP : JORM_OK;
}

int64_t copy_masked(MaskedCall &&call, const Operand &src) {
    Shape shape;
    if (!src.start || !src.stride || src.type != call.dst.type) return JORM_EINVAL;
    if (const int64_t status = read_call(call, shape); status != JORM_OK) return status;
    const Operand operands[1 + max_sources] = {call.dst, src, call.mask};
    walk_channels(shape, operands, 3,
                  find_row(call, bytes_of(shape, src.type, 2) < far_copy_bytes ? masked_copy : masked_copy_far),
                  RowParams{}, level(call.options), WalkKind::update);
    return JORM_OK;
}

int64_t fill_masked(MaskedCall &&call, const double *values, bool choose, const double *other_values) {
    Shape shape;
    if (const int64_t status = read_call(call, shape); status != JORM_OK) return status;
    Values in, out;
    const uint32_t type = call.dst.type;
    if (const int64_t status = in.read(type, values, shape.channels); status != JORM_OK) return status;
    if (choose) out.read(type, other_values, shape.channels);

    const Operand operands[1 + max_sources] = {call.dst, call.mask};
    const bool fold = channels_fold(shape, operands, 2);
    const bool uniform = !fold || (in.uniform(shape.channels) && (!choose || out.uniform(shape.channels)));
    const int32_t length = uniform ? 1 : pattern_length, period = fold ? shape.channels : 1;
    const int fill = !uniform                                    ? masked_fill_pattern
                     : bytes_of(shape, type, 1) < far_fill_bytes ? masked_fill
                                                                 : masked_fill_far;
    const int op = !choose ? fill : uniform ? masked_choose : masked_choose_pattern;
    RowParams params;
    for (int c = 0; c < (fold ? 1 : shape.channels); ++c) {
        params.constants[0] = in.lay_out(c, period, length);
        if (choose) params.constants[1] = out.lay_out(c, period, length);
        Walk w = make_walk(shape, operands, 2, fold ? -1 : c, level(call.options));
        w.kind = choose ? WalkKind::map : WalkKind::update;
        walk(w, find_row(call, op), params);
    }
    return JORM_OK;
}

} // namespace jorm
