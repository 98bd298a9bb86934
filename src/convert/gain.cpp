// Conversion by a gain and an offset for each channel.
#include "convert/convert.hpp"
#include "convert/convert_rows.hpp"
#include "jorm/convert.h"
#include "kernel/level_table.hpp"

namespace jorm {

JORM_LEVEL_TABLE(const RangeRows, gain_rows);

namespace {

constexpr uint32_t u8 = JORM_U8, s8 = JORM_S8, u16 = JORM_U16, s16 = JORM_S16, s32 = JORM_S32, f32 = JORM_F32;

#define PAIR(D, S) D << 4 | S,
constexpr uint32_t pairs[] = {JORM_GAINS(PAIR)};

int find_pair(uint32_t dst, uint32_t src) {
    for (int i = 0; i < int(sizeof pairs / sizeof *pairs); ++i)
        if (pairs[i] == (dst << 4 | src)) return i;
    return -1;
}

// The line of the table; a status where there is none.
int64_t check_types(int &line, uint32_t dst, uint32_t src) {
    if (!well_formed(dst) || !well_formed(src)) return JORM_EINVAL;
    line = find_pair(dst, src);
    return line < 0 ? JORM_ENOTSUP : JORM_OK;
}

int64_t gain_slice(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const Operand &dst,
                   const Operand &src, const double *gain, const double *offset) {
    Shape shape;
    int line;
    if (!dst.start || !dst.stride || !src.start || !src.stride) return JORM_EINVAL;
    if (const int64_t status = read_shape(shape, word, size); status != JORM_OK) return status;
    if (const int64_t status = check_types(line, dst.type, src.type); status != JORM_OK) return status;
    Operand operands[1 + max_sources] = {dst, src};
    Detached kept;
    if (const int64_t status = keep_source(kept, xe, options, shape.axes, size, shape.channels, operands[0],
                                           operands[1], channels_fold(shape, operands, 2));
        status != JORM_OK)
        return status;
    Lines lines = {{}, shape.channels};
    for (int c = 0; c < shape.channels; ++c) lines.line[c] = {gain ? gain[c] : 1, offset ? offset[c] : 0};
    const Level which = level(options);
    run_lines(JORM_OF_LEVEL(gain_rows, which)[line], shape, operands, lines, which);
    return JORM_OK;
}

} // namespace
} // namespace jorm

using namespace jorm;

#define DEFINE(name, L)                                                                                                \
    JORM_API int64_t name(LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, src), const double *gain,                  \
                          const double *offset) {                                                                      \
        return gain_slice(xe, options, word, size, L##_OPERAND(dst), L##_OPERAND(src), gain, offset);                  \
    }
DEFINE(jorma_gain, A)
DEFINE(jorma__gain, D)

JORM_API int64_t JormTGAgain(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                             D_PARAMS(, dst), D_PARAMS(const, src)) {
    if (!params) return JORM_EINVAL;
    const auto &p = *static_cast<const jorm_gain_params *>(params);
    return gain_slice(xe, options, word, size, D_OPERAND(dst), D_OPERAND(src), p.gain, p.offset);
}

JORM_API int64_t JormGain(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *gain, const double *offset, const jorm_site *roi, const int32_t *at) {
    Front f;
    if (const int64_t status = negotiate(f, dst, roi, {{src, at}}); status != JORM_OK) return status;
    const Operand &to = f.operand[0];
    Operand &from = f.operand[1];
    if (f.axes() < 4) return gain_slice(xe, options, f.word, f.sizes(), to, from, gain, offset);
    int line;
    if (const int64_t status = check_types(line, to.type, from.type); status != JORM_OK) return status;
    Detached kept; // planes may get in each other's way too
    const bool one_pass = channels_fold(f.shape(), f.operand, 2);
    if (const int64_t status = keep_source(kept, xe, options, 4, f.size, f.size[3], to, from, one_pass);
        status != JORM_OK)
        return status;
    const jorm_gain_params params = {gain, offset};
    jorm_pack pack;
    return jorma_call(jorma_mappackL(&pack, fourcc("gain"), to_proc(JormTGAgain), xe, options, &params, f.word, 3,
                                     f.sizes(), PACKED_SLICE(to), PACKED_SLICE(from)));
}
