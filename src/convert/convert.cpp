#include "jorm/convert.h"

#include "convert/convert_rows.hpp"
#include "jorm/arith.h"
#include "kernel/call.hpp"
#include "kernel/level_table.hpp"
#include "kernel/proc.hpp"

namespace jorm {

JORM_LEVEL_TABLE(const Row, convert_rows);

namespace {

constexpr uint32_t u8 = JORM_U8, s16 = JORM_S16, s32 = JORM_S32, f32 = JORM_F32;

struct Conversion {
    uint32_t dst, src;
    jorm_convert_kernel *kernel;
};
#define CONVERSION(name, D, S) {D, S, name},
constexpr Conversion conversions[] = {JORM_CONVERSIONS(CONVERSION)};

constexpr int find_conversion(uint32_t dst, uint32_t src) {
    int i = 0;
    for (const Conversion &c : conversions) {
        if (c.dst == dst && c.src == src) return i;
        ++i;
    }
    return -1;
}

int64_t run_conversion(int line, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                       const int32_t *dst_stride, const void *src, const int32_t *src_stride) {
    Shape shape;
    if (!dst || !dst_stride || !src || !src_stride) return JORM_EINVAL;
    if (int64_t status = read_shape(shape, word, size); status != JORM_OK) return status;
    const Operand operands[1 + max_sources] = {operand(conversions[line].dst, dst, dst_stride),
                                               operand(conversions[line].src, src, src_stride)};
    walk_channels(shape, operands, 2, JORM_OF_LEVEL(convert_rows, level(options))[line], RowParams{});
    return JORM_OK;
}

} // namespace
} // namespace jorm

using namespace jorm;

#define KERNEL(name, D, S)                                                                                             \
    JORM_API int64_t name(jorm_xe *, uint64_t options, uint32_t word, const int32_t *size, void *dst,                  \
                          const int32_t *dst_stride, const void *src, const int32_t *src_stride) {                     \
        return run_conversion(find_conversion(D, S), options, word, size, dst, dst_stride, src, src_stride);           \
    }
JORM_CONVERSIONS(KERNEL)

JORM_API jorm_proc *jorma__tcvtfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status) {
    const int line = find_conversion(dst_type, src_type);
    const bool formed = well_formed(dst_type) && well_formed(src_type);
    if (status) *status = line >= 0 ? JORM_OK : formed ? JORM_ENOTSUP : JORM_EINVAL;
    if (line >= 0) return to_proc(conversions[line].kernel);
    return formed ? jorma_proc_enotsup : jorma_proc_einval;
}

JORM_API int64_t _jorma__swtconvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                    uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                    const void *src, const int32_t *src_stride) {
    const int line = find_conversion(dst_type, src_type);
    if (line < 0) return jorma__tcvtfun_imp(dst_type, src_type, nullptr)();
    return conversions[line].kernel(xe, options, word, size, dst, dst_stride, src, src_stride);
}
