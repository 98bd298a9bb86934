/* libJorm: conversion of element types.
 *
 * A plain conversion keeps the value where the destination's type holds it. Integers are clamped; f32 is rounded to
 * nearest even into 32 bits first, where NaN and what does not fit become -2147483648, and then clamped (so u8 from NaN
 * or from 3e9 is 0); f32 from s32 is rounded to nearest.
 */
#ifndef JORM_CONVERT_H
#define JORM_CONVERT_H

#include "jorm/types.h"

/* Kernels of plain conversions, the destination's type named first. They walk size[N - 3] rows (one when N is 2) of
 * size[N - 2] pixels with all their channels. */
typedef int64_t jorm_convert_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                    const int32_t *dst_stride, const void *src, const int32_t *src_stride);
JORM_API jorm_convert_kernel _jorma__tconvert_u8s16, _jorma__tconvert_u8s32, _jorma__tconvert_u8f32,
    _jorma__tconvert_s16u8, _jorma__tconvert_s16s32, _jorma__tconvert_s16f32, _jorma__tconvert_s32u8,
    _jorma__tconvert_s32s16, _jorma__tconvert_s32f32, _jorma__tconvert_f32u8, _jorma__tconvert_f32s16,
    _jorma__tconvert_f32s32;

/* The kernel of a pair of types; without one jorma_proc_einval when a code is ill formed, else jorma_proc_enotsup. The
 * status that calling it would give goes to `status`, unless that is null. */
JORM_API jorm_proc *jorma__tcvtfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status);

/* Looks up the kernel of the pair and runs it. */
JORM_API int64_t _jorma__swtconvert(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                    void *dst, const int32_t *dst_stride, uint32_t src_type, const void *src,
                                    const int32_t *src_stride);

#endif
