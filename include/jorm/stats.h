/* libJorm statistics: sums, means, extrema, measured value ranges. Histograms: jorm/histogram.h.
 *
 *     JormSum(xe, options, src, roi, results)                       one double for each channel
 *     JormSumEx(xe, options, src, mask, roi, at_mask, results)      of the pixels that a mask selects
 *     JormMean, JormMeanEx, JormMinmax, JormMinmaxEx                likewise
 *
 * Operands. Arrays of u8, s16, s32 or f32 with three or four axes and 1 to 3 channels; the layers below the entries
 *   serve 4 channels as well. Strides may be anything: views, padded or interleaved pixels, negative strides. Dense
 *   data is the fast path. Elements lie at multiples of their size (else JORM_EINVAL).
 *
 * Region. `roi` is a site in coordinates of the array, null for all of it; it may narrow the channels, of which the
 *   first is then channel 0 of the results. Four axes give one result over all planes.
 *
 * Mask. One channel of u8 or s8. A pixel takes part when its mask element differs from 0; with JORM_OPT_MASK_INVERT,
 *   when it differs from 255. `at_mask` (four slots) is where the mask's region starts, null for its first element. A
 *   mask that ends early shortens the region.
 *
 * Channels. Bits 4 to 7 of the options select channels of the region (bit 4 + k for channel k); without any of them
 *   bits 4 to 7 of the channel code do; without those all channels are selected. Results of other channels stay as they
 *   were.
 *
 * Environment. Null will do except for JormCountRelBox: no scratch memory is used.
 *
 * Statuses, in this order: JORM_EINVAL (null pointers, bad or disagreeing descriptors, channel counts), JORM_EEMPTY (no
 *   sample in the region), then for an element type that is not served JORM_EINVAL from sums and means, and from
 *   extrema and ranges JORM_ENOTSUP when it is well formed, else JORM_EINVAL. Nothing is written unless the status is
 *   JORM_OK.
 *
 * Sums of integers are exact at any size and rounded once to double. Sums of f32 are taken in double precision, in an
 * order that depends neither on the processor nor on the layout: sample i of a channel, in row-major order, goes to
 * partial sum i % 64 (as 0 when a mask leaves it out); then the partial sums are added in pairs, k and k + 32, k and
 * k + 16, and so on. Of a sum that is NaN only that is certain: its bits may differ between levels and processors. */
#ifndef JORM_STATS_H
#define JORM_STATS_H

#include "jorm/histogram.h"
#include "jorm/shapes.h"
#include "jorm/types.h"
#include "jorm/vrng.h"

/* ---- Entries ---- */

/* The sum of each selected channel. */
JORM_API int64_t JormSum(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi, double *results);
JORM_API int64_t JormSumEx(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_array *mask,
                           const jorm_site *roi, const int32_t *at_mask, double *results);

/* The sum divided by the number of pixels; under a mask, of selected pixels (0 when there is none). */
JORM_API int64_t JormMean(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi, double *results);
JORM_API int64_t JormMeanEx(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_array *mask,
                            const jorm_site *roi, const int32_t *at_mask, double *results);

/* An extremum: its value, and the place where it stands first in row-major order (plane by plane), counted from the
 * array's origin. For f32 samples `i` is the value rounded to nearest even, -2147483648 when that does not fit; for
 * integers `f` is the value converted. NaN samples are passed over. When no sample is left the place is -1 in all three
 * coordinates; the value is then NaN for f32, and for integers the minimum is the largest value of the type, the
 * maximum the smallest. */
typedef struct jorm_extremum {
    int32_t i;
    float f;
    int32_t row, column, plane;
    int32_t reserved; /* 0 */
} jorm_extremum;

/* What JormMinmax fills, 196 bytes. The caller sets `request`; what it does not ask for stays as it was. */
typedef struct jorm_minmax {
    uint32_t request;             /* JORM_WANT_MIN | JORM_WANT_MAX */
    jorm_extremum min[4], max[4]; /* by channel */
} jorm_minmax;
enum { JORM_WANT_MIN = 1, JORM_WANT_MAX = 2 };

JORM_API int64_t JormMinmax(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,
                            jorm_minmax *record);
JORM_API int64_t JormMinmaxEx(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_array *mask,
                              const jorm_site *roi, const int32_t *at_mask, jorm_minmax *record);

/* Relative differential box counting (Jin, Ong and Jayasooriah, "A practical method for estimating fractal dimension",
 * Pattern Recognition Letters 16, 1995): how many boxes of the grey-level relief each channel goes through.
 *
 * The region is cut from its origin on into windows of the shape's extent, smaller ones at the ends; the anchor does
 * not matter, and planes count for four axes only. The shape is adjusted to the region first (jorm_seshape_adjust);
 * null stands for 5 by 5. A box is as high, h = (hi - lo) x window rows / region rows, in proportion to the channel's
 * range, as its window is in proportion to the region. A window adds ceil((largest - least sample) / h) to its
 * channel's result, but at least 1; with h not above 0 it adds 1. All of that in double precision; samples that are NaN
 * are passed over.
 *
 * `ranges` has one record for each channel. Where one is invalid, or all for null, jorma__adjust_vrange over the region
 * says what takes its place, for null the measured range. Valid ranges are used as they are; none is written to.
 *
 * Operands, regions, channels and statuses as above, of other element types those of extrema; JORM_EINVAL also without
 * an environment. Scratch memory (JORM_ENOMEM) is two rows. */
JORM_API int64_t JormCountRelBox(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,
                                 const jorm_seshape *shape, const vrng *ranges, double *results);

/* ---- Layers below ----
 *
 * On flat arguments: the packed count word, the size vector (its channel slot holds a channel code), then for the
 * samples the element type, a pointer and byte strides, for the mask of the xm forms a pointer and byte strides.
 * Vectors begin at their first used slot. Two axes are one row; four are served too. Adapters (jorma_) take bases and
 * origins, and places count from the base; dispatchers (jorma__), kernels and per-slice entries (JormTGA) take start
 * pointers, from which places count. */
#define JORM_STAT_LEAD jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size
#define JORM_STAT_ADAPTER(name, result)                                                                                \
    JORM_API int64_t name(JORM_STAT_LEAD, uint32_t type, const void *base, const int32_t *origin,                      \
                          const int32_t *stride, result *results)
#define JORM_STAT_XM_ADAPTER(name, result)                                                                             \
    JORM_API int64_t name(JORM_STAT_LEAD, uint32_t type, const void *base, const int32_t *origin,                      \
                          const int32_t *stride, const void *mask, const int32_t *mask_origin,                         \
                          const int32_t *mask_stride, result *results)
#define JORM_STAT_DISPATCHER(name, result)                                                                             \
    JORM_API int64_t name(JORM_STAT_LEAD, uint32_t type, const void *data, const int32_t *stride, result *results)
#define JORM_STAT_XM_DISPATCHER(name, result)                                                                          \
    JORM_API int64_t name(JORM_STAT_LEAD, uint32_t type, const void *data, const int32_t *stride, const void *mask,    \
                          const int32_t *mask_stride, result *results)
#define JORM_STAT_SLICE(name, result)                                                                                  \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, result *results, uint32_t word, const int32_t *size,          \
                          uint32_t type, const void *data, const int32_t *stride)
#define JORM_STAT_EX_SLICE(name, result)                                                                               \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, result *results, uint32_t word, const int32_t *size,          \
                          uint32_t type, const void *data, const int32_t *stride, uint32_t mask_type,                  \
                          const void *mask, const int32_t *mask_stride)

JORM_STAT_ADAPTER(jorma_sum, double);
JORM_STAT_ADAPTER(jorma_mean, double);
JORM_STAT_ADAPTER(jorma_minmax, jorm_minmax);
JORM_STAT_XM_ADAPTER(jorma_sum_xm, double);
JORM_STAT_XM_ADAPTER(jorma_mean_xm, double);
JORM_STAT_XM_ADAPTER(jorma_minmax_xm, jorm_minmax);
JORM_STAT_DISPATCHER(jorma__sum, double);
JORM_STAT_DISPATCHER(jorma__mean, double);
JORM_STAT_DISPATCHER(jorma__minmax, jorm_minmax);
JORM_STAT_XM_DISPATCHER(jorma__sum_xm, double);
JORM_STAT_XM_DISPATCHER(jorma__mean_xm, double);
JORM_STAT_XM_DISPATCHER(jorma__minmax_xm, jorm_minmax);
JORM_STAT_SLICE(JormTGAsum, double);
JORM_STAT_SLICE(JormTGAmean, double);
JORM_STAT_SLICE(JormTGAminmax, jorm_minmax);
JORM_STAT_EX_SLICE(JormTGAsumEx, double);
JORM_STAT_EX_SLICE(JormTGAmeanEx, double);
JORM_STAT_EX_SLICE(JormTGAminmaxEx, jorm_minmax);

/* Value ranges, one record for each channel. compute stores [minimum, maximum] of each selected channel, as single
 * precision holds them. adjust repairs the given range of each selected channel: one whose lo is infinite or above hi
 * becomes the measured [minimum, maximum]; any other goes through jorm_vrng_normalize_$IQ for the samples' type. */
JORM_STAT_ADAPTER(jorma_compute_vrange, vrng);
JORM_STAT_ADAPTER(jorma_adjust_vrange, vrng);
JORM_STAT_XM_ADAPTER(jorma_compute_vrange_xm, vrng);
JORM_STAT_XM_ADAPTER(jorma_adjust_vrange_xm, vrng);
JORM_STAT_DISPATCHER(jorma__compute_vrange, vrng);
JORM_STAT_DISPATCHER(jorma__adjust_vrange, vrng);
JORM_STAT_XM_DISPATCHER(jorma__compute_vrange_xm, vrng);
JORM_STAT_XM_DISPATCHER(jorma__adjust_vrange_xm, vrng);

#undef JORM_STAT_LEAD
#undef JORM_STAT_ADAPTER
#undef JORM_STAT_XM_ADAPTER
#undef JORM_STAT_DISPATCHER
#undef JORM_STAT_XM_DISPATCHER
#undef JORM_STAT_SLICE
#undef JORM_STAT_EX_SLICE

/* ---- Kernels ----
 *
 * The name says the number of channels and the type. The fast kernels may wrap or lose digits beyond 32 bits where that
 * is faster; at present it is not, and they give what the others give. */
typedef int64_t jorm_sum_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const void *data,
                                const int32_t *stride, double *results);
typedef int64_t jorm_sum_xm_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const void *data,
                                   const int32_t *stride, const void *mask, const int32_t *mask_stride,
                                   double *results);
typedef int64_t jorm_minmax_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const void *data,
                                   const int32_t *stride, jorm_minmax *record);
typedef int64_t jorm_minmax_xm_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                      const void *data, const int32_t *stride, const void *mask,
                                      const int32_t *mask_stride, jorm_minmax *record);

JORM_API jorm_sum_kernel jorma__sum_c1_u8, jorma__sum_c1_s16, jorma__sum_c1_s32, jorma__sum_c1_f32, jorma__sum_c3_u8,
    jorma__sum_c3_s16, jorma__sum_c3_s32, jorma__sum_c3_f32, jorma__sum_c4_u8, jorma__sum_c4_s16, jorma__sum_c4_s32,
    jorma__sum_c4_f32;
JORM_API jorm_sum_kernel jorma__fastsum_c1_u8, jorma__fastsum_c1_s16, jorma__fastsum_c1_s32, jorma__fastsum_c1_f32,
    jorma__fastsum_c3_u8, jorma__fastsum_c3_s16, jorma__fastsum_c3_s32, jorma__fastsum_c3_f32, jorma__fastsum_c4_u8,
    jorma__fastsum_c4_s16, jorma__fastsum_c4_s32, jorma__fastsum_c4_f32;
JORM_API jorm_sum_xm_kernel jorma__sum_xm_c1_u8, jorma__sum_xm_c1_s16, jorma__sum_xm_c1_s32, jorma__sum_xm_c1_f32,
    jorma__sum_xm_c3_u8, jorma__sum_xm_c3_s16, jorma__sum_xm_c3_s32, jorma__sum_xm_c3_f32, jorma__sum_xm_c4_u8,
    jorma__sum_xm_c4_s16, jorma__sum_xm_c4_s32, jorma__sum_xm_c4_f32;
JORM_API jorm_sum_xm_kernel jorma__fastsum_xm_c1_u8, jorma__fastsum_xm_c1_s16, jorma__fastsum_xm_c1_s32,
    jorma__fastsum_xm_c1_f32, jorma__fastsum_xm_c3_u8, jorma__fastsum_xm_c3_s16, jorma__fastsum_xm_c3_s32,
    jorma__fastsum_xm_c3_f32, jorma__fastsum_xm_c4_u8, jorma__fastsum_xm_c4_s16, jorma__fastsum_xm_c4_s32,
    jorma__fastsum_xm_c4_f32;
JORM_API jorm_minmax_kernel jorma__minmax_c1_u8, jorma__minmax_c1_s16, jorma__minmax_c1_s32, jorma__minmax_c1_f32,
    jorma__minmax_c3_u8, jorma__minmax_c3_s16, jorma__minmax_c3_s32, jorma__minmax_c3_f32, jorma__minmax_c4_u8,
    jorma__minmax_c4_s16, jorma__minmax_c4_s32, jorma__minmax_c4_f32;
JORM_API jorm_minmax_xm_kernel jorma__minmax_xm_c1_u8, jorma__minmax_xm_c1_s16, jorma__minmax_xm_c1_s32,
    jorma__minmax_xm_c1_f32;

/* The kernel for a channel code (1, 3, 4; codes 11 and 12 count as 4) and a type; the options choose between plain and
 * fast sums. Without one, jorma_proc_enotsup for extrema of other well-formed types and for channel counts up to 4 that
 * have no kernel of their own, else jorma_proc_einval. The status that calling it would give goes to `status`, unless
 * that is null. */
JORM_API jorm_proc *jorma__sumfun_imp(uint64_t options, uint32_t code, uint32_t type, int32_t *status);
JORM_API jorm_proc *jorma__sumfunxm_imp(uint64_t options, uint32_t code, uint32_t type, int32_t *status);
JORM_API jorm_proc *jorma__minmaxfun_imp(uint64_t options, uint32_t code, uint32_t type, int32_t *status);
JORM_API jorm_proc *jorma__minmaxfunxm_imp(uint64_t options, uint32_t code, uint32_t type, int32_t *status);

#endif
