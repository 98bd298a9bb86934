// Fills, plain and under a mask.
#include "convert/copy_front.hpp"
#include "convert/copy_masked.hpp"
#include "jorm/copy.h"
#include "jorm/shapes.h"

using namespace jorm;

// ------------------------------------------------------------------- plain

namespace {

int64_t fill(uint64_t options, uint32_t word, const int32_t *size, const Operand &dst, const double *values) {
    Shape shape;
    if (!dst.start || !dst.stride) return JORM_EINVAL;
    if (const int64_t status = read_shape(shape, word, size); status != JORM_OK) return status;
    alignas(16) char pattern[16];
    if (const int64_t status = jorm_mkifillvalv16(dst.type, pattern, values, shape.channels); status != JORM_OK)
        return status;
    if (shape.rows < 1 || shape.pixels < 1) return JORM_OK;

    const MemoryRows &kernels = memory_rows_at(level(options));
    const int64_t element = element_size(dst.type), pixel = element * shape.channels;
    const int64_t rows = row_stride(shape, dst), step = pixel_stride(shape, dst);
    const bool dense_channels = shape.channels == 1 || channel_stride(shape, dst) == element;
    if (dense_channels && (step == pixel || shape.pixels == 1)) {
        const int64_t row_bytes = shape.pixels * pixel;
        int64_t all;
        const bool one_run = rows == row_bytes && !__builtin_mul_overflow(row_bytes, int64_t(shape.rows), &all);
        fill_rows(kernels, dst.start, rows, one_run ? 1 : shape.rows, one_run ? all : row_bytes, 4 * shape.channels,
                  pattern);
        return JORM_OK;
    }
    const int64_t unit = dense_channels ? pixel : element;
    for (int32_t y = 0; y < shape.rows; ++y)
        for (int64_t c = 0; c < pixel / unit; ++c)
            copy_units(kernels.copy, dst.start + y * rows + c * channel_stride(shape, dst), step, pattern + c * unit, 0,
                       shape.pixels, unit);
    return JORM_OK;
}

} // namespace

#define FILL_PARAMS(L) LEAD_PARAMS, L##_PARAMS(, dst), const double *values
JORM_API int64_t jorma__dofill(FILL_PARAMS(D)) {
    (void)xe;
    return fill(options, word, size, D_OPERAND(dst), values);
}
JORM_API int64_t jorma__fill(FILL_PARAMS(D)) {
    return jorma__dofill(xe, options, word, size, dst_type, dst, dst_stride, values);
}
JORM_API int64_t jorma_fill(FILL_PARAMS(A)) {
    const Operand start = A_OPERAND(dst);
    return jorma__fill(xe, options, word, size, SLICE(start), values);
}

JORM_API int64_t JormTGAfill(jorm_xe *xe, uint64_t options, const double *values, uint32_t word, const int32_t *size,
                             D_PARAMS(, dst)) {
    return jorma__fill(xe, options, word, size, dst_type, dst, dst_stride, values);
}

JORM_API int64_t JormFill(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_site *roi,
                          const double *values) {
    Front f;
    if (const int64_t status = negotiate(f, dst, roi); status != JORM_OK) return status;
    const Operand &to = f.operand[0];
    if (f.axes() < 4) return JormTGAfill(xe, options, values, f.word, f.sizes(), SLICE(to));
    jorm_pack pack;
    return jorma_call(jorma_genpackL(&pack, fourcc("fill"), to_proc(JormTGAfill), xe, options, values, f.word, 3,
                                     f.sizes(), PACKED_SLICE(to)));
}

// ------------------------------------------------------------- under a mask

#define MASKED_PARAMS(L) LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, mask), const double *values
#define MASKED_CALL(L, by_pixel)                                                                                       \
    { xe, options, word, size, L##_OPERAND(dst), L##_OPERAND(mask), by_pixel }
#define DEFINE(adapter, dispatcher, kernel, by_pixel)                                                                  \
    JORM_API int64_t kernel(MASKED_PARAMS(D)) {                                                                        \
        return fill_masked(MASKED_CALL(D, by_pixel), values, false, nullptr);                                          \
    }                                                                                                                  \
    JORM_API int64_t dispatcher(MASKED_PARAMS(D)) {                                                                    \
        return kernel(xe, options, word, size, dst_type, dst, dst_stride, mask_type, mask, mask_stride, values);       \
    }                                                                                                                  \
    JORM_API int64_t adapter(MASKED_PARAMS(A)) { return fill_masked(MASKED_CALL(A, by_pixel), values, false, nullptr); }
DEFINE(jorma_fillem, jorma__fillem, jorma__dofillem, false)
DEFINE(jorma_fillxm, jorma__fillxm, jorma__dofillxm, true)

#define DEFINE2(adapter, dispatcher, kernel, by_pixel)                                                                 \
    JORM_API int64_t kernel(MASKED_PARAMS(D), const double *other_values) {                                            \
        return fill_masked(MASKED_CALL(D, by_pixel), values, true, other_values);                                      \
    }                                                                                                                  \
    JORM_API int64_t dispatcher(MASKED_PARAMS(D), const double *other_values) {                                        \
        return kernel(xe, options, word, size, dst_type, dst, dst_stride, mask_type, mask, mask_stride, values,        \
                      other_values);                                                                                   \
    }                                                                                                                  \
    JORM_API int64_t adapter(MASKED_PARAMS(A), const double *other_values) {                                           \
        return fill_masked(MASKED_CALL(A, by_pixel), values, true, other_values);                                      \
    }
DEFINE2(jorma_fillem2, jorma__fillem2, jorma__dofillem2, false)
DEFINE2(jorma_fillxm2, jorma__fillxm2, jorma__dofillxm2, true)

namespace {

struct FillExParams {
    bool by_pixel, choose;
    const double *values, *other_values;
};

int64_t fill_ex(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *mask, const jorm_site *roi,
                const int32_t *at_mask, FillExParams params) {
    Front f;
    const int64_t status = negotiate(f, dst, roi, {{mask, at_mask, Role::mask}});
    if (status != JORM_OK) return status;
    Operand &to = f.operand[0], &by = f.operand[1];
    params.by_pixel = by.by_pixel;
    if (const int64_t type_status = check_masked(to.type, by.type); type_status != JORM_OK) return type_status;
    Detached selection;
    if (const int64_t moved = selection.move_from(to, xe, options, f, by); moved != JORM_OK) return moved;
    if (f.axes() < 4) return JormTGAfillEx(xe, options, &params, f.word, f.sizes(), SLICE(to), SLICE(by));
    jorm_pack pack;
    return jorma_call(jorma_mappackL(&pack, fourcc("filx"), to_proc(JormTGAfillEx), xe, options, &params, f.word, 3,
                                     f.sizes(), PACKED_SLICE(to), PACKED_SLICE(by)));
}

} // namespace

JORM_API int64_t JormTGAfillEx(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                               D_PARAMS(, dst), D_PARAMS(const, mask)) {
    if (!params) return JORM_EINVAL;
    const auto &p = *static_cast<const FillExParams *>(params);
    if (p.choose)
        return (p.by_pixel ? jorma__fillxm2 : jorma__fillem2)(xe, options, word, size, dst_type, dst, dst_stride,
                                                              mask_type, mask, mask_stride, p.values, p.other_values);
    return (p.by_pixel ? jorma__fillxm : jorma__fillem)(xe, options, word, size, dst_type, dst, dst_stride, mask_type,
                                                        mask, mask_stride, p.values);
}

JORM_API int64_t JormFillEx(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *mask,
                            const jorm_site *roi, const int32_t *at_mask, const double *values) {
    return fill_ex(xe, options, dst, mask, roi, at_mask, {false, false, values, nullptr});
}

JORM_API int64_t JormFillEx2(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *mask,
                             const jorm_site *roi, const int32_t *at_mask, const double *values,
                             const double *other_values) {
    return fill_ex(xe, options, dst, mask, roi, at_mask, {false, true, values, other_values});
}
