// Copies, plain and under a mask.
#include "jorm/copy.h"

#include "convert/copy_front.hpp"
#include "convert/copy_masked.hpp"

#include <cstdlib>

using namespace jorm;

// ------------------------------------------------------------------- plain

// The kernel is told no type: the channels of the destination lie one element apart.
JORM_API int64_t jorma__copy(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                             const int32_t *dst_stride, const void *src, const int32_t *src_stride) {
    const int axes = int(word & 15);
    if (!dst_stride || axes < 2 || axes > 3) return axes == 4 ? JORM_ENOTSUP : JORM_EINVAL;
    static constexpr uint32_t types[9] = {0, JORM_U8, JORM_U16, 0, JORM_U32, 0, 0, 0, JORM_U64};
    const int64_t step = std::llabs(int64_t(dst_stride[axes - 1]));
    const uint32_t type = step <= 8 ? types[step] : 0;
    return copy_elements(xe, options, word, size, operand(type, dst, dst_stride), operand(type, src, src_stride));
}

JORM_API int64_t jorma_copy(LEAD_PARAMS, A_PARAMS(, dst), A_PARAMS(const, src)) {
    return copy_elements(xe, options, word, size, A_OPERAND(dst), A_OPERAND(src));
}

JORM_API int64_t JormTGAcopy(jorm_xe *xe, uint64_t options, const void *, uint32_t word, const int32_t *size,
                             D_PARAMS(, dst), D_PARAMS(const, src)) {
    return copy_elements(xe, options, word, size, D_OPERAND(dst), D_OPERAND(src));
}

JORM_API int64_t JormCopy(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const jorm_site *roi, const int32_t *at) {
    if (dst && src && dst->eltype != src->eltype) return JORM_EINVAL;
    Front f;
    if (const int64_t status = negotiate(f, dst, roi, {{src, at}}); status != JORM_OK) return status;
    const Operand &to = f.operand[0], &from = f.operand[1];
    if (f.axes() < 4) return JormTGAcopy(xe, options, nullptr, f.word, f.sizes(), SLICE(to), SLICE(from));
    // Planes that overlap other planes are copied in an order of their own.
    if (well_formed(to.type) && element_size(to.type) > 0 && may_meet(4, f.size[3], f.size, to, f.size, from))
        return copy_block(xe, options, block_of(4, f.size, f.size[3], to, from));
    jorm_pack pack;
    return jorma_call(jorma_mappackL(&pack, fourcc("copy"), to_proc(JormTGAcopy), xe, options, nullptr, f.word, 3,
                                     f.sizes(), PACKED_SLICE(to), PACKED_SLICE(from)));
}

// ------------------------------------------------------------- under a mask

#define DEFINE(adapter, dispatcher, by_pixel)                                                                          \
    JORM_API int64_t adapter(LEAD_PARAMS, A_PARAMS(, dst), A_PARAMS(const, src), A_PARAMS(const, mask)) {              \
        return copy_masked({xe, options, word, size, A_OPERAND(dst), A_OPERAND(mask), by_pixel}, A_OPERAND(src));      \
    }                                                                                                                  \
    JORM_API int64_t dispatcher(LEAD_PARAMS, D_PARAMS(, dst), D_PARAMS(const, src), D_PARAMS(const, mask)) {           \
        return copy_masked({xe, options, word, size, D_OPERAND(dst), D_OPERAND(mask), by_pixel}, D_OPERAND(src));      \
    }
DEFINE(jorma_copyem, jorma__copyem, false)
DEFINE(jorma_copyxm, jorma__copyxm, true)

namespace {
struct CopyExParams {
    bool by_pixel;
};
} // namespace

JORM_API int64_t JormTGAcopyEx(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                               D_PARAMS(, dst), D_PARAMS(const, src), D_PARAMS(const, mask)) {
    if (!params) return JORM_EINVAL;
    const bool by_pixel = static_cast<const CopyExParams *>(params)->by_pixel;
    return (by_pixel ? jorma__copyxm : jorma__copyem)(xe, options, word, size, dst_type, dst, dst_stride, src_type, src,
                                                      src_stride, mask_type, mask, mask_stride);
}

JORM_API int64_t JormCopyEx(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const jorm_array *mask, const jorm_site *roi, const int32_t *at, const int32_t *at_mask) {
    if (dst && src && dst->eltype != src->eltype) return JORM_EINVAL;
    Front f;
    if (const int64_t status = negotiate(f, dst, roi, {{src, at}, {mask, at_mask, Role::mask}}); status != JORM_OK)
        return status;
    Operand &to = f.operand[0], &from = f.operand[1], &by = f.operand[2];
    const CopyExParams params = {by.by_pixel};
    if (const int64_t status = check_masked(to.type, by.type); status != JORM_OK) return status;
    Detached source, selection;
    if (const int64_t status = source.move_from(to, xe, options, f, from); status != JORM_OK) return status;
    if (const int64_t status = selection.move_from(to, xe, options, f, by); status != JORM_OK) return status;
    if (f.axes() < 4) return JormTGAcopyEx(xe, options, &params, f.word, f.sizes(), SLICE(to), SLICE(from), SLICE(by));
    jorm_pack pack;
    return jorma_call(jorma_zippackL(&pack, fourcc("copx"), to_proc(JormTGAcopyEx), xe, options, &params, f.word, 3,
                                     f.sizes(), PACKED_SLICE(to), PACKED_SLICE(from), PACKED_SLICE(by)));
}
