// From the arguments of a call to the flood.
#include "array/region.hpp"
#include "jorm/arith.h"
#include "kernel/proc.hpp"
#include "regiontree/watershed.hpp"

#include <algorithm>

namespace jorm {
namespace {

constexpr int64_t pixel_limit = int64_t{1} << 27;

// Finds where a masked flood starts and which rows take part; false when the mask selects nothing.
bool apply_mask(FloodSource &s, const FloodCall &call, const Shape &shape, int32_t row, int32_t column) {
    const auto *mask = reinterpret_cast<const uint8_t *>(call.mask.start);
    const int64_t row_step = row_stride(shape, call.mask), step = pixel_stride(shape, call.mask);
    s.off = call.options & JORM_OPT_MASK_INVERT ? 255 : 0;
    const auto find = [&](int64_t r, int64_t c, int64_t end) {
        for (; r < end; ++r, c = 0)
            for (; c < s.columns; ++c)
                if (mask[r * row_step + c * step] != s.off) {
                    s.start_row = int32_t(r);
                    s.start_column = int32_t(c);
                    return true;
                }
        return false;
    };
    const bool at_origin = row == 0 && column == 0;
    if (!find(row, column, s.rows) && (at_origin || !find(0, 0, row + 1))) return false;
    mask += s.start_column * step;
    if (at_origin) {
        mask += s.start_row * row_step;
        s.data += s.start_row * s.row_stride;
        s.rows -= s.start_row;
        s.start_row = 0;
    }
    s.row_mask = mask;
    s.row_mask_stride = row_step;
    return true;
}

} // namespace

int64_t check_flood(const FloodCall &call, Shape &shape) {
    if (const int64_t status = read_shape(shape, call.word, call.size); status != JORM_OK) return status;
    if (!call.image.start || !call.image.stride || (call.mask.start && !call.mask.stride)) return JORM_EINVAL;
    const uint32_t type = call.image.type;
    if (!well_formed(type)) return JORM_EINVAL;
    if (shape.channels > 1 || element_size(type) > 1) return JORM_ENOTSUP;
    if (type != JORM_U8 || shape.rows < 1 || shape.pixels < 1) return JORM_EINVAL;
    return int64_t(shape.rows) * shape.pixels < pixel_limit ? JORM_OK : JORM_EINVAL;
}

int64_t watershed(const FloodCall &call, FloodKind kind, const jorm_fwtsparams *params) {
    if (!params || !params->store) return JORM_EINVAL;
    Shape shape;
    if (const int64_t status = check_flood(call, shape); status != JORM_OK) return status;

    jorm_fwtsres *const store = params->store;
    const int32_t row = params->seed_row, column = params->seed_column;
    bool found = row >= 0 && row < shape.rows && column >= 0 && column < shape.pixels;
    FloodSource source = {reinterpret_cast<const uint8_t *>(call.image.start),
                          row_stride(shape, call.image),
                          pixel_stride(shape, call.image),
                          shape.rows,
                          shape.pixels,
                          uint8_t(params->polarity == 1 ? 255 : 0),
                          uint8_t(std::min<int>(params->shift, 8)),
                          nullptr,
                          0,
                          0,
                          row,
                          column};
    if (found && call.mask.start) found = apply_mask(source, call, shape, row, column);
    if (!found || ++source.start_column >= source.columns) { // the first column is border
        RegionPool::release(store);
        return JORM_OK;
    }
    const int smallest = kind == FloodKind::fast ? 16 : 1;
    const int64_t status = flood(call.xe, store, source, smallest);
    if (status != JORM_OK) RegionPool::release(store);
    return status;
}

int64_t negotiate_flood(Front &front, const jorm_array *image, const jorm_array *mask, const jorm_site *roi) {
    if (!mask) return negotiate(front, image, roi);
    if (stored_channels(mask->extent[3]) != 1) return JORM_EINVAL;
    return negotiate(front, image, roi, {{mask, roi ? roi->origin : nullptr, Role::mask}});
}

int64_t flood_planes(jorm_xe *xe, uint64_t options, uint32_t opcode, const Front &f, const void *params,
                     jorm_proc *entry, jorm_proc *masked_entry, bool masked) {
    constexpr uint64_t with_hint = 0x300;
    jorm_pack pack;
    const Operand &image = f.operand[0], &mask = f.operand[1];
    if (masked)
        jorma_mappackL(&pack, opcode, masked_entry, xe, options | with_hint, params, f.word, 3, f.sizes(), image.type,
                       image.start, nullptr, image.stride, mask.type, mask.start, nullptr, mask.stride);
    else
        jorma_genpackL(&pack, opcode, entry, xe, options | with_hint, params, f.word, 3, f.sizes(), image.type,
                       image.start, nullptr, image.stride);
    pack.reduce_hint = 3; // a piece is a plane: rows, pixels and channels stay as they are
    return jorma_call(&pack);
}

} // namespace jorm
