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

#include <algorithm>
#include <bit>
#include <cmath>

namespace jorm {

JORM_LEVEL_TABLE(const Row, convert_rows);
JORM_LEVEL_TABLE(const RangeRows, range_rows);

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

int64_t run_conversion(int line, jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                       const int32_t *dst_stride, const void *src, const int32_t *src_stride) {
    Shape shape;
    Detached kept;
    Operand operands[1 + max_sources] = {operand(conversions[line].dst, dst, dst_stride),
                                         operand(conversions[line].src, src, src_stride)};
    if (const int64_t status = read_operands(shape, word, size, operands[0], operands[1]); status != JORM_OK)
        return status;
    if (const int64_t status = keep_source(kept, xe, options, shape.axes, size, shape.channels, operands[0],
                                           operands[1], channels_fold(shape, operands, 2));
        status != JORM_OK)
        return status;
    const Level which = level(options);
    walk_channels(shape, operands, 2, JORM_OF_LEVEL(convert_rows, which)[line], RowParams{}, which);
    return JORM_OK;
}

// The line that carries a range onto another; a source range without extent goes to the start of the destination's.
Line line_between(const vrng &src, const vrng &dst) {
    if (is_degenerate(src)) return {0, dst.lo};
    const double scale = (dst.hi - dst.lo) / (src.hi - src.lo);
    return {scale, dst.lo - src.lo * scale};
}

template <class F> void by_element(const Lines &lines, F f) {
    for (int j = 0; j < (lines.count > 1 ? pattern_length : 1); ++j) f(j, lines.line[j % lines.count]);
}

// Constants for results in fixed point with 16 bits of fraction. Rounding to nearest becomes a floor by adding half of
// the integers' unit, and `error`, the most that a result may be wrong by: then the floor is right unless the fraction
// is below twice that.
//
// With u = 2^-24, the part that one rounding loses at most: where a result matters, the sum is below 2^24 and the
// product below 2^24 + |offset|. In the product the roundings of the scale, of s32 to f32 and of the product itself
// count, in the offset its own. The sum and its conversion lose 3/4 together: 1/2 and nothing from 2^23 on, 1/4 and 1/2
// below that. What double precision loses goes into the rest. Results farther out may be wrong by more, but do not come
// near the range by that. NaN and what exceeds 32 bits become -2^31, whose fraction is 0.
bool to_fixed_point(RangeParams &params, const Lines &lines, bool fused, bool wide_source) {
    constexpr double one = 65536, u = 0x1p-24, rest = 0x1p-6, most = 64;
    double error = 0;
    for (int c = 0; c < lines.count; ++c) {
        const double scale = lines.line[c].scale * one;
        const double offset = (std::fabs(lines.line[c].offset) * one + one / 2 + most) * u;
        const double scale_error = scale == 0 ? 0 : std::fabs((double(float(scale)) - scale) / scale) / u;
        error = std::max(error, 0.75 + rest + offset + (1 + offset) * (scale_error + !fused + wide_source));
    }
    if (!(error <= most)) return false;
    params.doubt = uint16_t(std::ceil(2 * error));
    by_element(lines, [&](int j, const Line &line) {
        params.fast[0][j] = float(line.scale * one);
        params.fast[1][j] = float(line.offset * one + one / 2 + error);
        params.fast[2][j] = params.fast[3][j] = 0;
    });
    return true;
}

// Constants in two pieces. The first are multiples of a unit in the last place of the largest result, so that the
// product with a byte and the sum are exact, and even for integers, which are rounded piece by piece. For u8 one piece
// will do. Do the offsets have no second piece?
bool to_pieces(RangeParams &params, const Lines &lines, uint32_t dst) {
    bool whole_offset = true;
    by_element(lines, [&](int j, const Line &line) {
        const double last = 255 * line.scale + line.offset;
        const double reach = std::max({std::fabs(255 * line.scale), std::fabs(line.offset), std::fabs(last), 1e-30});
        const double power = std::bit_cast<double>(std::bit_cast<uint64_t>(reach) & uint64_t(0x7ff) << 52);
        const double unit = std::max(power * 0x1p-23, dst == f32 ? 0.0 : 2.0);
        const auto first = [&](double x) {
            return float(element_size(dst) == 1 ? x : double(std::lrint(x / unit)) * unit);
        };
        params.fast[0][j] = first(line.scale);
        params.fast[1][j] = first(line.offset);
        params.fast[2][j] = float(line.scale - params.fast[0][j]);
        params.fast[3][j] = float(line.offset - params.fast[1][j]);
        whole_offset = whole_offset && params.fast[3][j] == 0;
    });
    return whole_offset;
}

// Do all results for integers of this type stay within 32 bits?
bool stays_within(const Lines &lines, uint32_t src) {
    const double most = std::ldexp(1, 8 * element_size(src) - (src > 8));
    bool all = true;
    for (int c = 0; c < lines.count; ++c)
        all = all && std::fabs(lines.line[c].scale) * most + std::fabs(lines.line[c].offset) < 2147483647.0;
    return all;
}

// The quickest row that gives the results of the exact one; its constants go to `params`.
Row choose_row(const RangeRows &rows, RangeParams &params, const Lines &lines, double elements, uint32_t dst,
               uint32_t src) {
    constexpr double worthwhile = 2048;
    const bool by_channel = lines.count > 1;
    const Row exact = rows.exact[by_channel], fast = rows.fast[by_channel], brief = rows.brief[by_channel];
    const bool bytes = element_size(src) == 1;
    if (rows.beyond[0] && !stays_within(lines, src)) return rows.beyond[by_channel];
    if (!fast || elements < (bytes ? worthwhile : pattern_length)) return exact;
    for (int c = 0; c < lines.count; ++c)
        if (!(std::fabs(lines.line[c].scale) < 1e30 && std::fabs(lines.line[c].offset) < 1e30)) return exact;
    if (!bytes) return to_fixed_point(params, lines, rows.fused, src == s32) ? fast : exact;
    const bool quick = to_pieces(params, lines, dst) && brief;
    for (int c = 0; c < lines.count; ++c)
        if (!rows.holds[quick](params, c)) return exact;
    return quick ? brief : fast;
}

int64_t run_range_conversion(int line, jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                             const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                             const vrng *dst_ranges, const vrng *src_ranges) {
    Shape shape;
    const RangeConversion &types = range_conversions[line];
    Operand operands[1 + max_sources] = {operand(types.dst, dst, dst_stride), operand(types.src, src, src_stride)};
    if (!dst_ranges || !src_ranges) return JORM_EINVAL;
    if (const int64_t status = read_operands(shape, word, size, operands[0], operands[1]); status != JORM_OK)
        return status;

    Lines all = {{}, shape.channels};
    double lo[4];
    bool all_degenerate = true;
    for (int c = 0; c < shape.channels; ++c) {
        all.line[c] = line_between(src_ranges[c], dst_ranges[c]);
        lo[c] = dst_ranges[c].lo;
        all_degenerate = all_degenerate && is_degenerate(src_ranges[c]);
    }
    if (all_degenerate) return jorma__fill(xe, options, word, size, types.dst, dst, dst_stride, lo);

    Detached kept;
    if (const int64_t status = keep_source(kept, xe, options, shape.axes, size, shape.channels, operands[0],
                                           operands[1], channels_fold(shape, operands, 2));
        status != JORM_OK)
        return status;
    const Level which = level(options);
    run_lines(JORM_OF_LEVEL(range_rows, which)[line], shape, operands, all, which);
    return JORM_OK;
}

// The elements of both lie in ascending order, as they are visited, and none is written beyond the place from which it
// was read.
bool ascends(int axes, const int32_t *size, int32_t channels, const Operand &dst, const Operand &src) {
    int64_t inside = element_size(src.type), ahead = dst.start - src.start + element_size(dst.type) - inside;
    for (int i = axes - 1; i >= 0; --i) {
        const int64_t n = i + 1 < axes ? size[i] : channels, drift = (n - 1) * (int64_t(dst.stride[i]) - src.stride[i]);
        if (n == 1) continue;
        if (src.stride[i] < inside) return false;
        inside += (n - 1) * src.stride[i];
        if (drift > 0) ahead += drift;
    }
    return ahead <= 0;
}

} // namespace

bool is_degenerate(const vrng &r) { return std::fabs(r.hi - r.lo) <= 0x1p-23; }

void run_lines(const RangeRows &rows, const Shape &shape, const Operand *operands, const Lines &all, Level which) {
    const bool fold = channels_fold(shape, operands, 2);
    bool uniform = true;
    for (int c = 1; c < shape.channels; ++c)
        uniform = uniform && all.line[c].scale == all.line[0].scale && all.line[c].offset == all.line[0].offset;
    ConstantPattern pattern[2];
    RangeParams params;
    params.constants[0] = &pattern[0];
    params.constants[1] = &pattern[1];
    for (int c = 0; c < (fold ? 1 : shape.channels); ++c) {
        const Lines lines = fold && !uniform ? all : Lines{{all.line[c]}, 1};
        by_element(lines, [&](int j, const Line &l) { pattern[0].real[j] = l.scale, pattern[1].real[j] = l.offset; });
        Walk w = make_walk(shape, operands, 2, fold ? -1 : c, which);
        const Row row =
            choose_row(rows, params, lines, double(w.rows) * double(w.length), operands[0].type, operands[1].type);
        walk(w, row, params);
    }
}

int64_t keep_source(Detached &kept, jorm_xe *xe, uint64_t options, int axes, const int32_t *size, int32_t channels,
                    const Operand &dst, Operand &src, bool one_pass) {
    for (int i = 0; i + 1 < axes; ++i)
        if (size[i] < 1) return JORM_OK;
    if (!may_meet(axes, channels, size, dst, size, src) || coincide(axes, size, channels, dst, src) ||
        (one_pass && ascends(axes, size, channels, dst, src)))
        return JORM_OK;
    return kept.move(xe, options, axes, size, channels, src);
}

} // namespace jorm

using namespace jorm;

#define KERNEL(name, D, S)                                                                                             \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,                \
                          const int32_t *dst_stride, const void *src, const int32_t *src_stride) {                     \
        return run_conversion(find(conversions, D, S), xe, options, word, size, dst, dst_stride, src, src_stride);     \
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
