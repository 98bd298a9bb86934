// Copies of blocks that may reach outside the image, completed by a border rule.
#include "convert/copy_front.hpp"
#include "jorm/array.h"
#include "jorm/copy.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

static_assert(sizeof(jorm_mkbparams) == 24 && offsetof(jorm_mkbparams, at) == 8 &&
              offsetof(jorm_mkbparams, src_size) == 16);

using namespace jorm;

namespace {

// A run of pixels of the block that follow each other in the image: forward, backward or the same one over and over.
struct Run {
    int64_t image; // position of the first one; < 0: no pixel of the image
    int64_t count, step;
};

// The run that begins at position `block` of a block of `size` pixels whose origin is `at`, along an axis where the
// image has n pixels. Mirror images repeat: with a period of 2n pixels, of 2n - 2 when the edge is not repeated.
Run run_at(uint32_t mode, int64_t block, int64_t size, int64_t at, int64_t n) {
    const int64_t p = at + block, room = size - block;
    if (p >= 0 && p < n) return {p, std::min(room, n - p), 1};
    const int64_t outside = p < 0 ? std::min(room, -p) : room;
    const auto phase = [p](int64_t period) { return (p % period + period) % period; };
    switch (mode) {
    case JORM_BORDER_REPLICATE:
        return {p < 0 ? 0 : n - 1, outside, 0};
    case JORM_BORDER_WRAP:
        return {phase(n), std::min(outside, n - phase(n)), 1};
    case JORM_BORDER_REFLECT: {
        const int64_t m = phase(2 * n);
        return m < n ? Run{m, std::min(outside, n - m), 1} : Run{2 * n - 1 - m, std::min(outside, 2 * n - m), -1};
    }
    case JORM_BORDER_REFLECT101: {
        if (n == 1) return {0, outside, 0};
        const int64_t period = 2 * n - 2, m = phase(period);
        return m < n ? Run{m, std::min(outside, n - m), 1} : Run{period - m, std::min(outside, period - m), -1};
    }
    default:
        return {-1, outside, 0};
    }
}

struct BorderCall {
    uint32_t mode;
    Shape shape;
    Operand dst, src;        // src at the image's first pixel
    int64_t at[2], image[2]; // rows, pixels
    char pattern[16];        // a pixel of the constants
};

// Runs of a row in bytes: where they begin in the rows of the block and of the image, the step in the image.
struct Piece {
    int64_t dst, src, step, count;
    bool inside; // the image has these pixels
};
struct RowPlan {
    CopyBytes copy;
    int64_t unit, dst_step, next;
    int count;
    Piece piece[16];
};

// One row of units (whole pixels, or the elements of a channel). Without `src` the row is outside the image; without
// `constant` what is outside stays as it is.
void make_row(const RowPlan &plan, char *dst, const char *src, const char *constant) {
    for (int i = 0; i < plan.count; ++i) {
        const Piece &p = plan.piece[i];
        char *const d = dst + p.dst;
        if (!src || !p.inside) {
            if (constant) copy_units(plan.copy, d, plan.dst_step, constant, 0, p.count, plan.unit);
        } else if (d != src + p.src || p.step != plan.dst_step) // the image may stand in the block already
            copy_units(plan.copy, d, plan.dst_step, src + p.src, p.step, p.count, plan.unit, plan.next);
    }
}

void make_rows(const BorderCall &c, uint64_t options) {
    const int64_t element = element_size(c.dst.type);
    const int64_t dst_channel = channel_stride(c.shape, c.dst), src_channel = channel_stride(c.shape, c.src);
    const int64_t dst_row = row_stride(c.shape, c.dst), src_row = row_stride(c.shape, c.src);
    const int64_t src_step = pixel_stride(c.shape, c.src);
    const bool pixels = c.shape.channels == 1 || (dst_channel == element && src_channel == element);
    RowPlan plan = {memory_rows_at(level(options)).copy,
                    pixels ? element * c.shape.channels : element,
                    pixel_stride(c.shape, c.dst),
                    src_row,
                    0,
                    {}};
    const char *const constant = c.mode == JORM_BORDER_CONST ? c.pattern : nullptr;

    // As many pieces at a time as a plan holds: one pass over the rows unless the margins repeat the image many times.
    for (int64_t x = 0; x < c.shape.pixels;) {
        for (plan.count = 0; plan.count < int(std::size(plan.piece)) && x < c.shape.pixels; ++plan.count) {
            const Run r = run_at(c.mode, x, c.shape.pixels, c.at[1], c.image[1]);
            plan.piece[plan.count] = {x * plan.dst_step, r.image * src_step, r.step * src_step, r.count, r.image >= 0};
            x += r.count;
        }
        for (int64_t y = 0; y < c.shape.rows;) {
            const Run rows = run_at(c.mode, y, c.shape.rows, c.at[0], c.image[0]);
            for (int64_t i = 0; i < rows.count; ++i, ++y)
                for (int64_t k = 0; k < (pixels ? 1 : c.shape.channels); ++k)
                    make_row(plan, c.dst.start + y * dst_row + k * dst_channel,
                             rows.image < 0 ? nullptr
                                            : c.src.start + (rows.image + i * rows.step) * src_row + k * src_channel,
                             constant ? constant + k * plan.unit : nullptr);
        }
    }
}

bool meets(int64_t at, int64_t size, int64_t image) { return image > 0 && at < image && at + size > 0; }

bool known_mode(uint32_t mode) {
    return mode == JORM_BORDER_NUL || (mode >= JORM_BORDER_CONST && mode <= JORM_BORDER_REFLECT101);
}

int64_t make_border(uint32_t mode, uint64_t options, uint32_t word, const int32_t *size, const Operand &dst,
                    const Operand &src, const int32_t *at, const int32_t *src_size, const jorm_border *border) {
    BorderCall c;
    c.mode = mode;
    c.dst = dst;
    c.src = src;
    if (!dst.start || !dst.stride || !src.start || !src.stride || !at || !src_size || !border) return JORM_EINVAL;
    if (const int64_t status = read_shape(c.shape, word, size); status != JORM_OK) return status;
    if (dst.type != src.type || !well_formed(dst.type) || !known_mode(mode)) return JORM_EINVAL;
    const bool rows = c.shape.axes == 3;
    c.at[0] = rows ? at[0] : 0;
    c.image[0] = rows ? src_size[0] : 1;
    c.at[1] = at[rows];
    c.image[1] = src_size[rows];
    if (!meets(c.at[0], c.shape.rows, c.image[0]) || !meets(c.at[1], c.shape.pixels, c.image[1])) return JORM_EEMPTY;
    if (element_size(dst.type) == 0) return JORM_ENOTSUP;
    if (mode == JORM_BORDER_CONST)
        if (const int64_t status = jorm_mkifillvalv16(dst.type, c.pattern, border->values, c.shape.channels);
            status != JORM_OK)
            return status;
    make_rows(c, options);
    return JORM_OK;
}

} // namespace

#define MKB_PARAMS(L)                                                                                                  \
    LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, src), const int32_t *at, const int32_t *src_size,                \
        const jorm_border *border
#define MKB_KERNEL(name, mode)                                                                                         \
    JORM_API int64_t name(MKB_PARAMS(D)) {                                                                             \
        (void)xe;                                                                                                      \
        return make_border(mode, options, word, size, D_OPERAND(dst), D_OPERAND(src), at, src_size, border);           \
    }
MKB_KERNEL(jorma__copymkb_const, JORM_BORDER_CONST)
MKB_KERNEL(jorma__copymkb_replicate, JORM_BORDER_REPLICATE)
MKB_KERNEL(jorma__copymkb_wrap, JORM_BORDER_WRAP)
MKB_KERNEL(jorma__copymkb_reflect, JORM_BORDER_REFLECT)
MKB_KERNEL(jorma__copymkb_reflect101, JORM_BORDER_REFLECT101)
MKB_KERNEL(jorma__copymkb, border ? border->mode & 15 : 0)

JORM_API int64_t jorma_copymkb(MKB_PARAMS(A)) {
    const Operand to = A_OPERAND(dst), from = A_OPERAND(src);
    return jorma__copymkb(xe, options, word, size, SLICE(to), SLICE(from), at, src_size, border);
}

JORM_API int64_t JormTGAcopymkb(jorm_xe *xe, uint64_t options, const jorm_mkbparams *params, uint32_t word,
                                const int32_t *size, D_PARAMS(, dst), D_PARAMS(const, src)) {
    if (!params) return JORM_EINVAL;
    return jorma__copymkb(xe, options, word, size, dst_type, dst, dst_stride, src_type, src, src_stride, params->at,
                          params->src_size, params->border);
}

namespace {

// Does the image stand in the block already, pixel by pixel where it belongs? `at` is the block's origin in it.
bool stands_in(const Operand &block, const Operand &image, const int32_t *at, int axes) {
    int64_t offset = 0;
    for (int i = 0; i < axes; ++i) {
        if (block.stride[i] != image.stride[i]) return false;
        if (i + 1 < axes) offset += int64_t(at[i]) * image.stride[i];
    }
    return block.start == image.start + offset;
}

int64_t copy_mkb(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src, const jorm_site *roi,
                 const int32_t *at, const jorm_border *border, const jorm_site *src_roi) {
    if (!src) {
        src = dst;
        if (!at && roi) at = roi->origin;
    }
    if (check_operands(dst, {src, at}) != JORM_OK || dst->ndims != src->ndims || dst->eltype != src->eltype)
        return JORM_EINVAL;
    Front f;
    if (const int64_t status = negotiate(f, dst, roi); status != JORM_OK) return status;

    // The image, and where the block begins in it.
    jorm_site image;
    jorm_arr_adjorgetRoi(src, &image, src_roi);
    int32_t start[3], origin[4];
    for (int i = 0; i < 3; ++i) {
        const int64_t relative = (at ? int64_t(at[i]) : 0) - image.origin[i];
        if (!meets(relative, f.size[i], image.size[i])) return JORM_EEMPTY;
        start[i] = int32_t(relative);
        origin[i] = image.origin[i];
    }
    origin[3] = at ? std::max(at[3], 0) : 0;
    f.size[3] = std::min(f.size[3], stored_channels(src->extent[3]) - std::min(origin[3], 4));
    if (f.size[3] < 1) return JORM_EEMPTY;
    if (!border || !known_mode(border->mode & 15) || !well_formed(dst->eltype)) return JORM_EINVAL;
    if (element_size(dst->eltype) == 0) return JORM_ENOTSUP;

    // Planes are not made up: those of the block that the image has.
    const int32_t skipped = std::max(0, -start[0]);
    f.size[0] = std::min(f.size[0] - skipped, image.size[0] - start[0] - skipped);
    f.operand[0].start += int64_t(skipped) * dst->stride[0];
    origin[0] += start[0] + skipped;
    image.size[0] = f.size[0];
    start[0] = 0;

    const int axes = dst->ndims, first = f.first;
    Operand to = f.operand[0], from = operand_at(*src, origin);
    Detached detached;
    if (may_meet(axes, f.size[3], f.sizes(), to, image.size + first, from) && !stands_in(to, from, start + first, axes))
        if (const int64_t status = detached.move(xe, options, axes, image.size + first, f.size[3], from);
            status != JORM_OK)
            return status;

    const jorm_mkbparams params = {border, start + 1, image.size + 1};
    if (axes < 4) return JormTGAcopymkb(xe, options, &params, f.word, f.sizes(), SLICE(to), SLICE(from));
    // Each piece is one plane: no axis is merged with another one.
    constexpr uint64_t with_hint = 0x300;
    jorm_pack pack;
    jorma_mappackL(&pack, fourcc("cmkb"), to_proc(JormTGAcopymkb), xe, options | with_hint, &params, f.word, 3,
                   f.sizes(), PACKED_SLICE(to), PACKED_SLICE(from));
    pack.reduce_hint = 3;
    return jorma_call(&pack);
}

} // namespace

JORM_API int64_t JormCopyMkb(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const int32_t *at, const jorm_border *border) {
    return copy_mkb(xe, options, dst, src, roi, at, border, nullptr);
}

JORM_API int64_t JormCopyRMkb(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const jorm_site *roi, const int32_t *at, const jorm_border *border,
                              const jorm_site *src_roi) {
    return copy_mkb(xe, options, dst, src, roi, at, border, src_roi);
}
