// Conversion: how the map between values follows from scales, offsets and ranges, and the front ends.
#include "convert/convert.hpp"
#include "jorm/arith.h"
#include "jorm/convert.h"
#include "jorm/stats.h"
#include "jorm/vrng.h"

#include <cmath>
#include <cstring>

using namespace jorm;

namespace {

// A conversion of which everything is settled but the pixels, so that it can run piece by piece.
struct Mapping {
    enum Kind { plain, ranges, constants } kind;
    vrng dst[4], src[4];
    double scale[4], offset[4];
    vrng *caller = nullptr; // who wants to know the destination ranges

    // Tells them, unless the call was refused.
    int64_t done(int64_t status, uint32_t code) const {
        if (status == JORM_OK && caller) std::memcpy(caller, dst, sizeof(vrng) * size_t(stored_channels(code)));
        return status;
    }
};

struct Slice {
    jorm_xe *xe;
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand dst, src;

    uint32_t channel_code() const { return uint32_t(size[(word & 15) - 1]) & 15; }
};

// Vectors of four axes are fine here: ranges are measured over all planes.
int64_t check(const Slice &s) {
    const uint32_t axes = s.word & 15;
    if (axes < 2 || axes > 4 || !s.size || !s.dst.start || !s.dst.stride || !s.src.start || !s.src.stride)
        return JORM_EINVAL;
    const int32_t channels = stored_channels(s.channel_code());
    return channels >= 1 && channels <= 4 ? JORM_OK : JORM_EINVAL;
}

// The source ranges: those given, repaired against the data, or the data's own; the same for all channels. A selection
// of channels, which statistics would heed, means nothing to a conversion.
int64_t source_ranges(Mapping &m, const Slice &s, const vrng *given) {
    const uint32_t code = s.channel_code();
    if (given) std::memcpy(m.src, given, sizeof(vrng) * size_t(stored_channels(code)));
    auto *const measure = given ? jorma__adjust_vrange : jorma__compute_vrange;
    const uint64_t options = s.options | JORM_OPT_CHANNELS;
    const int64_t status = measure(s.xe, options, s.word, s.size, s.src.type, s.src.start, s.src.stride, m.src);
    if (status == JORM_OK) jorm_vrng_equalize_$I(m.src, code);
    return status;
}

// What carries the source ranges onto the destination's.
void settle(Mapping &m, uint32_t code) {
    if (jorm_vrng_equal_$cn(m.dst, m.src, code))
        m.kind = Mapping::plain;
    else if (jorm_vrng_equalized(m.dst, code))
        m.kind = Mapping::ranges;
    else {
        m.kind = Mapping::constants;
        jorm_vrng_solve_$cn(m.scale, m.offset, m.dst, m.src, code);
    }
}

int64_t map_by_scales(Mapping &m, const Slice &s, const double *scales, const double *offsets, const vrng *src_range) {
    if (const int64_t status = check(s); status != JORM_OK) return status;
    const uint32_t code = s.channel_code();
    const int32_t parts = jorm_scfochk(scales, offsets, stored_channels(code));
    m.kind = Mapping::plain;
    if (parts == 0) return JORM_OK;
    if (parts == 1) offsets = nullptr;
    if (parts == 2) scales = nullptr;
    if (const int64_t status = source_ranges(m, s, src_range); status != JORM_OK) return status;
    if (const int64_t status = jorm_vrng_scale_$cn$Q(s.dst.type, m.dst, m.src, scales, offsets, code);
        status != JORM_OK)
        return status;
    settle(m, code);
    return JORM_OK;
}

int64_t map_by_ranges(Mapping &m, const Slice &s, vrng *dst_range, const vrng *src_range) {
    if (const int64_t status = check(s); status != JORM_OK) return status;
    const uint32_t code = s.channel_code();
    m.kind = Mapping::plain;
    if (!dst_range && !src_range) return JORM_OK;
    if (const int64_t status = source_ranges(m, s, src_range); status != JORM_OK) return status;
    if (!dst_range) return JORM_OK;
    m.caller = dst_range;
    std::memcpy(m.dst, dst_range, sizeof(vrng) * size_t(stored_channels(code)));
    jorm_vrng_normalize_$cn$IQ(s.dst.type, m.dst, m.src, code);
    jorm_vrng_equalize_$I(m.dst, code);
    settle(m, code);
    return JORM_OK;
}

int64_t run(const Mapping &m, const Slice &s) {
    const Operand &d = s.dst;
    Operand a = s.src;
    Detached kept;
    switch (m.kind) {
    case Mapping::plain:
        return _jorma__swtconvert(s.xe, s.options, s.word, s.size, d.type, d.start, d.stride, a.type, a.start,
                                  a.stride);
    case Mapping::ranges:
        return _jorma__swvconvert(s.xe, s.options, s.word, s.size, d.type, d.start, d.stride, a.type, a.start, a.stride,
                                  m.dst, m.src);
    default:
        if (const int64_t status = keep_source(kept, s.xe, s.options, int(s.word & 15), s.size,
                                               stored_channels(s.channel_code()), d, a, false);
            status != JORM_OK)
            return status;
        return jorma__mlaCC(s.xe, s.options, s.word, s.size, d.type, d.start, d.stride, a.type, a.start, a.stride,
                            m.scale, m.offset, 0, 0);
    }
}

// What the packed call runs; the parameters are the mapping.
int64_t piece(jorm_xe *xe, uint64_t options, const void *mapping, uint32_t word, const int32_t *size, D_PARAMS(, dst),
              D_PARAMS(const, src)) {
    return run(*static_cast<const Mapping *>(mapping), {xe, options, word, size, D_OPERAND(dst), D_OPERAND(src)});
}

// Negotiates, lets `settle` find the mapping over the whole region, and runs it.
template <class Settle>
int64_t front(uint32_t opcode, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
              const jorm_site *roi, const int32_t *at, Settle settle) {
    if (dst && src && (dst->ndims != src->ndims || dst->extent[0] != src->extent[0])) return JORM_EINVAL;
    Front f;
    if (const int64_t status = negotiate(f, dst, roi, {{src, at}}); status != JORM_OK) return status;
    Slice whole = {xe, options, f.word, f.sizes(), f.operand[0], f.operand[1]};
    Mapping m;
    if (const int64_t status = settle(m, whole); status != JORM_OK) return status;
    const uint32_t code = whole.channel_code();
    if (f.axes() < 4) return m.done(run(m, whole), code);
    int32_t types;
    if (jorma__tcvtfun_imp(whole.dst.type, whole.src.type, &types); types != JORM_OK) return types;
    // Planes may get in each other's way too, and no piece may be refused after another one has run.
    Detached kept;
    const Operand operands[] = {whole.dst, whole.src};
    const bool one_pass = m.kind != Mapping::constants && channels_fold(f.shape(), operands, 2);
    if (const int64_t status = keep_source(kept, xe, options, 4, f.size, f.size[3], whole.dst, whole.src, one_pass);
        status != JORM_OK)
        return status;
    jorm_pack pack;
    return m.done(jorma_call(jorma_mappackL(&pack, opcode, to_proc(piece), xe, options, &m, f.word, 3, f.sizes(),
                                            PACKED_SLICE(whole.dst), PACKED_SLICE(whole.src))),
                  code);
}

} // namespace

JORM_API int32_t jorm_scfochk(const double *scales, const double *offsets, int32_t n) {
    int32_t parts = 3;
    bool unit = scales != nullptr, free = offsets != nullptr;
    for (int32_t i = 0; i < n; ++i) {
        if (scales) unit = unit && (std::isnan(scales[i]) || std::fabs(float(scales[i]) - 1.f) <= 1.1920929e-7f);
        if (offsets) free = free && !std::isfinite(offsets[i]);
    }
    if (unit) parts &= ~1;
    if (free) parts &= ~2;
    return parts;
}

#define SLICE_OF(L)                                                                                                    \
    { xe, options, word, size, L##_OPERAND(dst), L##_OPERAND(src) }
#define SCALES const double *scales, const double *offsets, const vrng *src_range
#define RANGES vrng *dst_range, const vrng *src_range
#define CONVERT_PARAMS(L) LEAD_PARAMS, L##_PARAMS(, dst), L##_PARAMS(const, src)

static int64_t convert_scaled(const Slice &s, SCALES) {
    Mapping m;
    const int64_t status = map_by_scales(m, s, scales, offsets, src_range);
    return status != JORM_OK ? status : run(m, s);
}
static int64_t convert_ranged(const Slice &s, RANGES) {
    Mapping m;
    const int64_t status = map_by_ranges(m, s, dst_range, src_range);
    return status != JORM_OK ? status : m.done(run(m, s), s.channel_code());
}

JORM_API int64_t jorma__econvert(CONVERT_PARAMS(D), SCALES) {
    return convert_scaled(SLICE_OF(D), scales, offsets, src_range);
}
JORM_API int64_t jorma_econvert(CONVERT_PARAMS(A), SCALES) {
    return convert_scaled(SLICE_OF(A), scales, offsets, src_range);
}
JORM_API int64_t jorma_escale(CONVERT_PARAMS(A), SCALES) {
    src_type = dst_type;
    return convert_scaled(SLICE_OF(A), scales, offsets, src_range);
}
JORM_API int64_t jorma__vconvert(CONVERT_PARAMS(D), RANGES) {
    return convert_ranged(SLICE_OF(D), dst_range, src_range);
}
JORM_API int64_t jorma_vconvert(CONVERT_PARAMS(A), RANGES) { return convert_ranged(SLICE_OF(A), dst_range, src_range); }
JORM_API int64_t jorma_vscale(CONVERT_PARAMS(A), RANGES) {
    src_type = dst_type;
    return convert_ranged(SLICE_OF(A), dst_range, src_range);
}

JORM_API int64_t JormTGAconvert(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                                D_PARAMS(, dst), D_PARAMS(const, src)) {
    if (!params) return JORM_EINVAL;
    const auto &p = *static_cast<const jorm_convert_params *>(params);
    return convert_scaled(SLICE_OF(D), p.scales, p.offsets, p.src_range);
}
JORM_API int64_t JormTGAvconvert(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                                 D_PARAMS(, dst), D_PARAMS(const, src)) {
    if (!params) return JORM_EINVAL;
    const auto &p = *static_cast<const jorm_vconvert_params *>(params);
    return convert_ranged(SLICE_OF(D), p.dst_range, p.src_range);
}

JORM_API int64_t JormConvert(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const int32_t *at, SCALES) {
    return front(fourcc("ecvt"), xe, options, dst, src, roi, at,
                 [=](Mapping &m, const Slice &s) { return map_by_scales(m, s, scales, offsets, src_range); });
}
JORM_API int64_t JormVConvert(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const jorm_site *roi, const int32_t *at, RANGES) {
    return front(fourcc("vcvt"), xe, options, dst, src, roi, at,
                 [=](Mapping &m, const Slice &s) { return map_by_ranges(m, s, dst_range, src_range); });
}
