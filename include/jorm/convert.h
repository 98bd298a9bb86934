/* libJorm: conversion of element types.
 *
 *   JormGain: src * gain + offset, the usual choice for contrast and depth; u8, s8, u16, s16, s32, f32 to any of them.
 *
 *   JormVConvert: plain, or from one range of values onto another; u8, s16, s32, f32 to any of them.
 *
 *   JormConvert: by scales and offsets relative to the range of the data; the same types.
 *
 * xe is the environment (see below), `options` the options word (jorm/types.h). `roi` is a site in coordinates of the
 * destination, null for all of it; `at` the point (four slots) where the source's region starts, null for its first
 * element; see jorm/arith.h for what negative ones do. The region may narrow the channels; gains, offsets, scales and
 * ranges belong to the channels of the region, from its first one on.
 *
 * Arrays have 1 to 4 channels, three or four axes and any strides. A null `src` converts the destination in place (a
 * null `at` is then the origin of `roi`). Otherwise `src` may lie in the destination's memory where it begins at the
 * destination's start and its elements are at least as wide. Where the layouts (padded pixels, reversed or steeper
 * strides) or constants by channel would let results overwrite what is still to be read, the source first moves into
 * scratch memory of its size: a null environment then gives JORM_EINVAL, no memory JORM_ENOMEM. Other calls take none.
 * The results of other overlaps are as if the source were read first, or the call is refused in the same way.
 *
 * Statuses, in this order: JORM_EINVAL (null or bad descriptor; axes, planes or channels that disagree), JORM_EEMPTY,
 * those of the measuring and the fitting of ranges, JORM_EINVAL for an ill-formed type, JORM_ENOTSUP for a type without
 * kernels, those of scratch memory. Nothing is written, ranges included, unless the status is JORM_OK.
 *
 * A plain conversion keeps the value where the destination's type holds it. Integers are clamped; f32 is rounded to
 * nearest even into 32 bits first, where NaN and what does not fit become -2147483648, and then clamped (so u8 from NaN
 * or from 3e9 is 0); f32 from s32 is rounded to nearest.
 *
 * A conversion between ranges carries [src.lo, src.hi] onto [dst.lo, dst.hi]: x * scale + offset with scale =
 * (dst.hi - dst.lo) / (src.hi - src.lo) and offset = dst.lo - src.lo * scale, product and sum each rounded to double,
 * the result stored like an f32 value above (f32: rounded to single). Values outside the source range go on along the
 * same line. When a source or destination range has no extent (at most 2^-23), all becomes dst.lo.
 */
#ifndef JORM_CONVERT_H
#define JORM_CONVERT_H

#include "jorm/vrng.h"

/* dst = src * gain + offset, for each channel its own (null: 1 and 0). Product and sum are each rounded to double, the
 * result is rounded to nearest even and clamped (f32: rounded to single); infinities go by their sign, NaN becomes 0 in
 * integers. A source of three axes may stand beside a destination of four. */
JORM_API int64_t JormGain(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *gain, const double *offset, const jorm_site *roi, const int32_t *at);

/* JormConvert: scales and offsets (one for each channel) relative to the source's range: the range [lo, hi] of a
 * channel becomes [offset, offset + (hi - lo) * scale], fitted into the destination's type by jorm_vrng_scale_$cn$Q. So
 * null scales and offsets (1 and 0) shift the data so that their minimum becomes 0. With every scale 1 (or NaN) and
 * every offset NaN or infinite the conversion is plain. `src_range` is null (the ranges are measured over the region,
 * once for all planes) or a range for each channel, which is repaired against the data like jorma__adjust_vrange; the
 * caller's record stays as it is. All channels get the common source range; where the destination ranges of the
 * channels differ, jorma__mlaCC converts with constants per channel.
 *
 * JormVConvert takes the ranges themselves, a record for each channel. Both null: plain. Null `src_range`: measured.
 * Null `dst_range`: plain. A given destination range is refitted by value: NaN bounds and invalid ranges are replaced
 * (jorm_vrng_normalize_$cn$IQ with the source ranges as defaults), then all channels get the common range
 * (jorm_vrng_equalize_$I); the ranges used are written back, one record for each channel of the region.
 *
 * Source and destination have the same number of axes and the same extent[0]. */
JORM_API int64_t JormConvert(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const int32_t *at, const double *scales, const double *offsets,
                             const vrng *src_range);
JORM_API int64_t JormVConvert(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const jorm_site *roi, const int32_t *at, vrng *dst_range, const vrng *src_range);

/* Per-slice entries; `params` points to one of these records. */
typedef struct jorm_convert_params {
    const vrng *src_range;
    const double *scales, *offsets;
} jorm_convert_params;
typedef struct jorm_vconvert_params {
    vrng *dst_range;
    const vrng *src_range;
} jorm_vconvert_params;
typedef struct jorm_gain_params {
    const double *gain, *offset;
} jorm_gain_params;
typedef int64_t jorm_convert_slice(jorm_xe *xe, uint64_t options, const void *params, uint32_t word,
                                   const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_stride,
                                   uint32_t src_type, const void *src, const int32_t *src_stride);
JORM_API jorm_convert_slice JormTGAconvert, JormTGAvconvert, JormTGAgain;

/* Adapters (bases with origins) and dispatchers (start pointers). The scale forms take the destination's type for both.
 */
typedef int64_t jorm_econvert_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                      uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                      const int32_t *dst_stride, uint32_t src_type, const void *src,
                                      const int32_t *src_origin, const int32_t *src_stride, const double *scales,
                                      const double *offsets, const vrng *src_range);
typedef int64_t jorm_vconvert_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                      uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                      const int32_t *dst_stride, uint32_t src_type, const void *src,
                                      const int32_t *src_origin, const int32_t *src_stride, vrng *dst_range,
                                      const vrng *src_range);
JORM_API int64_t jorma_gain(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                            void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                            const void *src, const int32_t *src_origin, const int32_t *src_stride, const double *gain,
                            const double *offset);
JORM_API int64_t jorma__gain(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                             void *dst, const int32_t *dst_stride, uint32_t src_type, const void *src,
                             const int32_t *src_stride, const double *gain, const double *offset);
JORM_API jorm_econvert_adapter jorma_econvert, jorma_escale;
JORM_API jorm_vconvert_adapter jorma_vconvert, jorma_vscale;
JORM_API int64_t jorma__econvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                 void *dst, const int32_t *dst_stride, uint32_t src_type, const void *src,
                                 const int32_t *src_stride, const double *scales, const double *offsets,
                                 const vrng *src_range);
JORM_API int64_t jorma__vconvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                 void *dst, const int32_t *dst_stride, uint32_t src_type, const void *src,
                                 const int32_t *src_stride, vrng *dst_range, const vrng *src_range);

/* Which parts of a scaling take part for n channels: bit 0 the scales, unless every one is NaN or 1 to single
 * precision; bit 1 the offsets, unless every one is NaN or infinite. A null array takes part (as 1 or 0). */
JORM_API int32_t jorm_scfochk(const double *scales, const double *offsets, int32_t n);

/* Kernels of plain conversions, the destination's type named first. They walk size[N - 3] rows (one when N is 2) of
 * size[N - 2] pixels with all their channels. */
typedef int64_t jorm_convert_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                    const int32_t *dst_stride, const void *src, const int32_t *src_stride);
JORM_API jorm_convert_kernel _jorma__tconvert_u8s16, _jorma__tconvert_u8s32, _jorma__tconvert_u8f32,
    _jorma__tconvert_s16u8, _jorma__tconvert_s16s32, _jorma__tconvert_s16f32, _jorma__tconvert_s32u8,
    _jorma__tconvert_s32s16, _jorma__tconvert_s32f32, _jorma__tconvert_f32u8, _jorma__tconvert_f32s16,
    _jorma__tconvert_f32s32;

/* Kernels from range to range, a range of each for every channel. A channel whose source range has no extent becomes
 * dst.lo. */
typedef int64_t jorm_convert_range_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                          const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                                          const vrng *dst_ranges, const vrng *src_ranges);
JORM_API jorm_convert_range_kernel _jorma__vscale_u8, _jorma__vconvert_u8s16, _jorma__vconvert_u8s32,
    _jorma__vconvert_u8f32, _jorma__vconvert_s16u8, _jorma__vscale_s16, _jorma__vconvert_s16s32,
    _jorma__vconvert_s16f32, _jorma__vconvert_s32u8, _jorma__vconvert_s32s16, _jorma__vscale_s32,
    _jorma__vconvert_s32f32, _jorma__vconvert_f32u8, _jorma__vconvert_f32s16, _jorma__vconvert_f32s32,
    _jorma__vscale_f32;

/* The kernel of a pair of types (plain: jorma__copy for equal ones); without one jorma_proc_einval when a code is ill
 * formed, else jorma_proc_enotsup. The status that calling it would give goes to `status`, unless that is null. */
JORM_API jorm_proc *jorma__tcvtfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status);
JORM_API jorm_proc *jorma__vcvtfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status);

/* Look up the kernel of the pair and run it; the range form fills with dst.lo when a range of any channel has no
 * extent. */
JORM_API int64_t _jorma__swtconvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                    uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                    const void *src, const int32_t *src_stride);

JORM_API int64_t _jorma__swvconvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                    uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                    const void *src, const int32_t *src_stride, const vrng *dst_ranges,
                                    const vrng *src_ranges);

#endif
