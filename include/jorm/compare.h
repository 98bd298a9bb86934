/* libJorm: comparison of an array with another one, or with a constant for each channel.
 *
 * Relations read from left to right: the element of `src`, the relation, the element of `src2` or the constant. NaN
 *   stands in no relation, neither greater nor equal; -0 equals +0. Only the low four bits of an operator count. One
 *   outside 3..7 holds nowhere.
 * Results. The plain forms write masks: all bits set where the relation holds (255 in u8, -1 in s16 and s32, 1.0 in
 *   f32), 0 elsewhere. The E forms write the channel's `true_values` where it holds, else its `false_values`.
 * Types. Destinations: u8, s8, u16, s16, u32, s32, and f32 with f32 sources. Sources: u8, s8, s16, s32, f32; two
 *   sources of different types are compared by value, exactly. Arrays have three or four axes and 1 to 4 channels, the
 *   same number in all operands; with constants the entries take 1 to 3 channels (the functions below them 4 as well).
 * Constants and values are arrays of double, one for each channel; null stands for zeros. jorm_mkifillvalv16
 *   (jorm/shapes.h) converts the constants to the source's type, the values to the destination's: rounded to nearest
 *   even, clamped to the type (so u8 > 3.5 means u8 > 4).
 * Region. `roi` is a site in coordinates of the destination, null for all of it. `at` and `at2` are the points (four
 *   slots) where the regions of the sources start, null for their first elements. The operation covers what all
 *   operands offer: a source that ends early shortens it. `src` has the destination's axes and planes; a second source
 *   of one plane, or of three axes beside four, meets every plane. The channel slot of the region may narrow the
 *   channels; channel i of the region is then channel at[3] + i of a source, and constants and values [i] belong to it.
 * Layout. Strides may be anything: views, padded pixels, planes of channels, negative strides. Dense data is the fast
 *   path. Elements lie at multiples of their size (else JORM_EINVAL).
 * In place. A null `src` means the destination; with a null `at` its region then starts at the origin of `roi`. A
 * source may lie in the destination's memory where it begins at the same element and its elements are at least as wide,
 *   rows and pixels following each other upward; the results of other overlaps are unspecified.
 * Statuses, in this order: JORM_EINVAL (null or bad descriptor, axes, planes or channels that disagree), JORM_EEMPTY
 *   (no region is left), JORM_EINVAL for an ill-formed type, JORM_ENOTSUP for types that are not served. Nothing is
 *   written unless the status is JORM_OK. The environment may be null: no scratch memory is taken.
 */
#ifndef JORM_COMPARE_H
#define JORM_COMPARE_H

#include "jorm/types.h"

/* Operators. */
enum {
    JORM_CMP_EQUAL = 3,
    JORM_CMP_LESS = 4,
    JORM_CMP_LESS_EQUAL = 5,
    JORM_CMP_GREATER = 6,
    JORM_CMP_GREATER_EQUAL = 7
};

/* The name of an operator's low four bits: "equal-cmpop", "less-cmpop", "less-or-equal-cmpop", "greater-cmpop",
 * "greater-or-equal-cmpop"; "nul-cmpop" for 0, "unknown-cmpop" for all others. */
JORM_API const char *jorm_cmpop_str(uint32_t op);

/* ---- Entries ---- */

/* dst = mask of (src op src2). */
JORM_API int64_t JormCompare(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_array *src2, const jorm_site *roi, const int32_t *at, const int32_t *at2,
                             uint32_t op);
/* dst = mask of (src op constant of the channel). */
JORM_API int64_t JormCompareC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const double *constants, const jorm_site *roi, const int32_t *at, uint32_t op);
/* dst = src op src2 ? true value of the channel : its false value. */
JORM_API int64_t JormECompare(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const jorm_array *src2, const jorm_site *roi, const int32_t *at, const int32_t *at2,
                              uint32_t op, const double *true_values, const double *false_values);
/* The same with a constant for each channel. */
JORM_API int64_t JormECompareC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                               const double *constants, const jorm_site *roi, const int32_t *at, uint32_t op,
                               const double *true_values, const double *false_values);

/* ---- Flat calls on up to three axes, 1 to 4 channels ---- */

/* Per-slice entries; `params` points to the record of the operation (null: JORM_EINVAL). */
typedef struct jorm_compare_params {
    uint32_t op;
} jorm_compare_params;
typedef struct jorm_comparec_params {
    const double *constants;
    uint32_t op;
} jorm_comparec_params;
typedef struct jorm_ecompare_params {
    const double *true_values, *false_values;
    uint32_t op;
} jorm_ecompare_params;
typedef struct jorm_ecomparec_params {
    const double *constants, *true_values, *false_values;
    uint32_t op;
} jorm_ecomparec_params;
typedef int64_t jorm_compare_slice(jorm_xe *xe, uint64_t options, const void *params, uint32_t word,
                                   const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_stride,
                                   uint32_t src_type, const void *src, const int32_t *src_stride, uint32_t src2_type,
                                   const void *src2, const int32_t *src2_stride);
typedef int64_t jorm_comparec_slice(jorm_xe *xe, uint64_t options, const void *params, uint32_t word,
                                    const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_stride,
                                    uint32_t src_type, const void *src, const int32_t *src_stride);
JORM_API jorm_compare_slice JormTGAcompare, JormTGAecompare;
JORM_API jorm_comparec_slice JormTGAcompareC, JormTGAecompareC;

/* Adapters: bases with origins. */
JORM_API int64_t jorma_compare(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                               void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                               const void *src, const int32_t *src_origin, const int32_t *src_stride,
                               uint32_t src2_type, const void *src2, const int32_t *src2_origin,
                               const int32_t *src2_stride, uint32_t op);
JORM_API int64_t jorma_compareC(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                                const void *src, const int32_t *src_origin, const int32_t *src_stride,
                                const double *constants, uint32_t op);
JORM_API int64_t jorma_ecompare(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                                const void *src, const int32_t *src_origin, const int32_t *src_stride,
                                uint32_t src2_type, const void *src2, const int32_t *src2_origin,
                                const int32_t *src2_stride, uint32_t op, const double *true_values,
                                const double *false_values);
JORM_API int64_t jorma_ecompareC(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                 void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                                 const void *src, const int32_t *src_origin, const int32_t *src_stride,
                                 const double *constants, uint32_t op, const double *true_values,
                                 const double *false_values);

/* Dispatchers: start pointers. The plain ones hand an f32 destination to the E forms, with 1 and 0. The runners (sw)
 * serve only what has a kernel of their own family, where that matters: the plain ones no f32 destination. */
typedef int64_t jorm_compare_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                        uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                        const void *src, const int32_t *src_stride, uint32_t src2_type,
                                        const void *src2, const int32_t *src2_stride, uint32_t op);
typedef int64_t jorm_comparec_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                         uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                         const void *src, const int32_t *src_stride, const double *constants,
                                         uint32_t op);
typedef int64_t jorm_ecompare_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                         uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                         const void *src, const int32_t *src_stride, uint32_t src2_type,
                                         const void *src2, const int32_t *src2_stride, uint32_t op,
                                         const double *true_values, const double *false_values);
typedef int64_t jorm_ecomparec_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                          uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                          const void *src, const int32_t *src_stride, const double *constants,
                                          uint32_t op, const double *true_values, const double *false_values);
JORM_API jorm_compare_dispatcher jorma__compare, _jorma__swcompare;
JORM_API jorm_comparec_dispatcher jorma__compareC, _jorma__swcompareC;
JORM_API jorm_ecompare_dispatcher jorma__ecompare, _jorma__swecompare;
JORM_API jorm_ecomparec_dispatcher jorma__ecompareC, _jorma__swecompareC;

/* ---- Kernels ----
 *
 * The destination's type is named first; its sign does not matter (s16 serves u16). They walk size[N - 3] rows (one
 * when N is 2) of size[N - 2] pixels, N being `ndims`, for which a packed count word serves as well. Constants and
 * values are patterns as jorm_mkifillvalv16 makes them: an element for each channel, of the source's and of the
 * destination's type. A null pattern is JORM_EINVAL. */
typedef int64_t jorm_compare_kernel(jorm_xe *xe, uint64_t options, uint32_t ndims, const int32_t *size, void *dst,
                                    const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                                    const void *src2, const int32_t *src2_stride, uint32_t op);
JORM_API jorm_compare_kernel _jorma__compare_u8u8, _jorma__compare_u8s8, _jorma__compare_u8s16, _jorma__compare_u8s32,
    _jorma__compare_u8f32, _jorma__compare_s16u8, _jorma__compare_s16s8, _jorma__compare_s16s16, _jorma__compare_s16s32,
    _jorma__compare_s16f32, _jorma__compare_s32u8, _jorma__compare_s32s8, _jorma__compare_s32s16,
    _jorma__compare_s32s32, _jorma__compare_s32f32;

typedef int64_t jorm_comparec_kernel(jorm_xe *xe, uint64_t options, uint32_t ndims, const int32_t *size, void *dst,
                                     const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                                     const void *constants, uint32_t op);
JORM_API jorm_comparec_kernel _jorma__compareC_u8u8, _jorma__compareC_u8s8, _jorma__compareC_u8s16,
    _jorma__compareC_u8s32, _jorma__compareC_u8f32, _jorma__compareC_s16u8, _jorma__compareC_s16s8,
    _jorma__compareC_s16s16, _jorma__compareC_s16s32, _jorma__compareC_s16f32, _jorma__compareC_s32u8,
    _jorma__compareC_s32s8, _jorma__compareC_s32s16, _jorma__compareC_s32s32, _jorma__compareC_s32f32;

typedef int64_t jorm_ecompare_kernel(jorm_xe *xe, uint64_t options, uint32_t ndims, const int32_t *size, void *dst,
                                     const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                                     const void *src2, const int32_t *src2_stride, uint32_t op, const void *true_values,
                                     const void *false_values);
JORM_API jorm_ecompare_kernel _jorma__ecompare_u8u8, _jorma__ecompare_u8s8, _jorma__ecompare_u8s16,
    _jorma__ecompare_u8s32, _jorma__ecompare_u8f32, _jorma__ecompare_s16u8, _jorma__ecompare_s16s8,
    _jorma__ecompare_s16s16, _jorma__ecompare_s16s32, _jorma__ecompare_s16f32, _jorma__ecompare_s32u8,
    _jorma__ecompare_s32s8, _jorma__ecompare_s32s16, _jorma__ecompare_s32s32, _jorma__ecompare_s32f32,
    _jorma__ecompare_f32f32;

typedef int64_t jorm_ecomparec_kernel(jorm_xe *xe, uint64_t options, uint32_t ndims, const int32_t *size, void *dst,
                                      const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                                      const void *constants, uint32_t op, const void *true_values,
                                      const void *false_values);
JORM_API jorm_ecomparec_kernel _jorma__ecompareC_u8u8, _jorma__ecompareC_u8s8, _jorma__ecompareC_u8s16,
    _jorma__ecompareC_u8s32, _jorma__ecompareC_u8f32, _jorma__ecompareC_s16u8, _jorma__ecompareC_s16s8,
    _jorma__ecompareC_s16s16, _jorma__ecompareC_s16s32, _jorma__ecompareC_s16f32, _jorma__ecompareC_s32u8,
    _jorma__ecompareC_s32s8, _jorma__ecompareC_s32s16, _jorma__ecompareC_s32s32, _jorma__ecompareC_s32f32,
    _jorma__ecompareC_f32f32;

/* The kernel of a pair of types; without one jorma_proc_einval when a code is ill formed, else jorma_proc_enotsup. The
 * status that calling it would give goes to `status`, unless that is null. */
JORM_API jorm_proc *jorma__cmpfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status);
JORM_API jorm_proc *jorma__cmpcfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status);
JORM_API jorm_proc *jorma__ecmpfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status);
JORM_API jorm_proc *jorma__ecmpcfun_imp(uint32_t dst_type, uint32_t src_type, int32_t *status);

#endif
