// Conversion kernels, their lookup, and the executors of one slice.
#include "convert/convert.hpp"
#include "convert/convert_rows.hpp"
#include "convert/copy_block.hpp"
#include "jorm/arith.h"
#include "jorm/convert.h"
#include "jorm/copy.h"
#include "kernel/call.hpp"
#include "kernel/level_table.hpp"
#include "kernel/proc.hpp"
#include "kernel/stream.hpp"

#include <cmath>

namespace jorm {

JORM_LEVEL_TABLE(const Row, convert_rows);
JORM_LEVEL_TABLE(const Row, range_rows);
JORM_LEVEL_TABLE(const Row, range_pattern_rows);

namespace {

constexpr uint32_t u8 = JORM_U8, s16 = JORM_S16, s32 = JORM_S32, f32 = JORM_F32;

struct Conversion {
    uint32_t dst, src;
    jorm_convert_kernel *kernel;
};
struct RangeConversion {
    uint32_t dst, src;
    jorm_convert_range_kernel *kernel;
};
#define CONVERSION(name, D, S) {D, S, name},
constexpr Conversion conversions[] = {JORM_CONVERSIONS(CONVERSION)};
constexpr RangeConversion range_conversions[] = {JORM_RANGE_CONVERSIONS(CONVERSION)};

template <class T, int N> constexpr int find(const T (&table)[N], uint32_t dst, uint32_t src) {
    for (int i = 0; i < N; ++i)
        if (table[i].dst == dst && table[i].src == src) return i;
    return -1;
}
constexpr bool is_converted(uint32_t type) { return type == u8 || type == s16 || type == s32 || type == f32; }

// The answer of a lookup by a pair of types.
jorm_proc *answer(jorm_proc *kernel, uint32_t dst, uint32_t src, int32_t *status) {
    const bool formed = well_formed(dst) && well_formed(src);
    if (status) *status = kernel ? JORM_OK : formed ? JORM_ENOTSUP : JORM_EINVAL;
    return kernel ? kernel : formed ? jorma_proc_enotsup : jorma_proc_einval;
}

int64_t read_operands(Shape &shape, uint32_t word, const int32_t *size, const Operand &dst, const Operand &src) {
    if (!dst.start || !dst.stride || !src.start || !src.stride) return JORM_EINVAL;
    return read_shape(shape, word, size);
}

int64_t run_conversion(int line, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                       const int32_t *dst_stride, const void *src, const int32_t *src_stride) {
    Shape shape;
    const Operand operands[1 + max_sources] = {operand(conversions[line].dst, dst, dst_stride),
                                               operand(conversions[line].src, src, src_stride)};
    if (const int64_t status = read_operands(shape, word, size, operands[0], operands[1]); status != JORM_OK)
        return status;
    const Level which = level(options);
    RowParams params;
    params.stream = stream_at(which);
    walk_channels(shape, operands, 2, JORM_OF_LEVEL(convert_rows, which)[line], params);
    return JORM_OK;
}

// The constants that carry a range onto another; a source range without extent goes to the start of the destination's.
void solve(double &scale, double &offset, const vrng &dst, const vrng &src) {
    scale = is_degenerate(src) ? 0 : (dst.hi - dst.lo) / (src.hi - src.lo);
    offset = is_degenerate(src) ? dst.lo : dst.lo - src.lo * scale;
}

int64_t run_range_conversion(int line, jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                             const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                             const vrng *dst_ranges, const vrng *src_ranges) {
    Shape shape;
    const uint32_t type = range_conversions[line].dst;
    const Operand operands[1 + max_sources] = {operand(type, dst, dst_stride),
                                               operand(range_conversions[line].src, src, src_stride)};
    if (!dst_ranges || !src_ranges) return JORM_EINVAL;
    if (const int64_t status = read_operands(shape, word, size, operands[0], operands[1]); status != JORM_OK)
        return status;

    double scale[4], offset[4], lo[4];
    bool all_degenerate = true, uniform = true;
    for (int c = 0; c < shape.channels; ++c) {
        solve(scale[c], offset[c], dst_ranges[c], src_ranges[c]);
        lo[c] = dst_ranges[c].lo;
        all_degenerate = all_degenerate && is_degenerate(src_ranges[c]);
        uniform = uniform && scale[c] == scale[0] && offset[c] == offset[0];
    }
    if (all_degenerate) return jorma__fill(xe, options, word, size, type, dst, dst_stride, lo);

    const Level which = level(options);
    const bool fold = channels_fold(shape, operands, 2);
    ConstantPattern pattern[2];
    RowParams params;
    params.stream = stream_at(which);
    params.constants[0] = &pattern[0];
    params.constants[1] = &pattern[1];
    uniform = uniform || !fold;
    for (int c = 0; c < (fold ? 1 : shape.channels); ++c) {
        for (int j = 0; j < (uniform ? 1 : pattern_length); ++j) {
            const int channel = fold ? j % shape.channels : c;
            pattern[0].real[j] = scale[channel];
            pattern[1].real[j] = offset[channel];
        }
        Walk w = make_walk(shape, operands, 2, fold ? -1 : c);
        walk(w, (uniform ? JORM_OF_LEVEL(range_rows, which) : JORM_OF_LEVEL(range_pattern_rows, which))[line], params);
    }
    return JORM_OK;
}

} // namespace

bool is_degenerate(const vrng &r) { return std::fabs(r.hi - r.lo) <= 0x1p-23; }

} // namespace jorm

using namespace jorm;

#define KERNEL(name, D, S)                                                                                             \
    JORM_API int64_t name(jorm_xe *, uint64_t options, uint32_t word, const int32_t *size, void *dst,                  \
                          const int32_t *dst_stride, const void *src, const int32_t *src_stride) {                     \
        return run_conversion(find(conversions, D, S), options, word, size, dst, dst_stride, src, src_stride);         \
    }
JORM_CONVERSIONS(KERNEL)

#define RANGE_KERNEL(name, D, S)                                                                                       \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,                \
                          const int32_t *dst_stride, const void *src, const int32_t *src_stride,                       \
                          const vrng *dst_ranges, const vrng *src_ranges) {                                            \
        return run_range_conversion(find(range_conversions, D, S), xe, options, word, size, dst, dst_stride, src,      \
                                    src_stride, dst_ranges, src_ranges);                                               \
    }
JORM_RANGE_CONVERSIONS(RANGE_KERNEL)

JORM_API jorm_proc *jorma__tcvtfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status) {
    const int line = find(conversions, dst_type, src_type);
    jorm_proc *kernel = line >= 0                                        ? to_proc(conversions[line].kernel)
                        : dst_type == src_type && is_converted(dst_type) ? to_proc(jorma__copy)
                                                                         : nullptr;
    return answer(kernel, dst_type, src_type, status);
}

JORM_API jorm_proc *jorma__vcvtfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status) {
    const int line = find(range_conversions, dst_type, src_type);
    return answer(line >= 0 ? to_proc(range_conversions[line].kernel) : nullptr, dst_type, src_type, status);
}

JORM_API int64_t _jorma__swtconvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                    uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                    const void *src, const int32_t *src_stride) {
    if (dst_type == src_type && is_converted(dst_type))
        return copy_elements(xe, options, word, size, operand(dst_type, dst, dst_stride),
                             operand(src_type, src, src_stride));
    const int line = find(conversions, dst_type, src_type);
    if (line < 0) return jorma__tcvtfun_imp(dst_type, src_type, nullptr)();
    return conversions[line].kernel(xe, options, word, size, dst, dst_stride, src, src_stride);
}

JORM_API int64_t _jorma__swvconvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                    uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                    const void *src, const int32_t *src_stride, const vrng *dst_ranges,
                                    const vrng *src_ranges) {
    const int line = find(range_conversions, dst_type, src_type);
    if (line < 0) return jorma__vcvtfun_imp(dst_type, src_type, nullptr)();
    Shape shape;
    const int64_t status =
        read_operands(shape, word, size, operand(dst_type, dst, dst_stride), operand(src_type, src, src_stride));
    if (status != JORM_OK) return status;
    if (!dst_ranges || !src_ranges) return JORM_EINVAL;
    double lo[4];
    bool degenerate = false;
    for (int c = 0; c < shape.channels; ++c) {
        degenerate = degenerate || is_degenerate(dst_ranges[c]) || is_degenerate(src_ranges[c]);
        lo[c] = dst_ranges[c].lo;
    }
    if (degenerate) return jorma__fill(xe, options, word, size, dst_type, dst, dst_stride, lo);
    return range_conversions[line].kernel(xe, options, word, size, dst, dst_stride, src, src_stride, dst_ranges,
                                          src_ranges);
}
