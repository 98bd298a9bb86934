/* libJorm thresholding: arrays of two classes, and thresholds by Otsu's method.
 *
 *     JormThreshold(xe, options, dst, src, roi, at, NULL, pairs, 1)        src > the lower value of the channel's pair
 *     JormThreshold(xe, options, dst, src, roi, at, &method, NULL, 0)      the thresholds found by a method
 *     JormComputeThresholdByOtsu(xe, options, src, roi, thresholds, NULL, NULL)
 */
#ifndef JORM_THRESHOLD_H
#define JORM_THRESHOLD_H

#include "jorm/histogram.h"
#include "jorm/types.h"
#include "jorm/vrng.h"

/* Methods. */
enum {
    JORM_THRESHOLD_IMMEDIATE = 0,
    JORM_THRESHOLD_OTSU = 3,
    JORM_THRESHOLD_USTO = 4,
    JORM_THRESHOLD_BLUR = 5,
    JORM_THRESHOLD_OWN_RANGES = 16 /* with a method: the record's ranges and bin counts hold */
};

/* A method, 88 bytes, which is only read. */
typedef struct jorm_thhmethod {
    uint32_t word; /* the low four bits name the method */
    uint32_t pad;
    vrng ranges[4]; /* by channel, as in JormComputeThresholdByOtsu */
    uint32_t bins[4];
} jorm_thhmethod;

/* "null(immediate)-threshold-method", "otsu-threshold-method", "usto-threshold-method", "blur-threshold-method" for the
 * low four bits, else "unknown-threshold-method". */
JORM_API const char *jorm_thhmethod_str(uint32_t method);

/* ---- Thresholds ---- */

/* The threshold of each selected channel by Otsu's method (N. Otsu, "A threshold selection method from gray-level
 * histograms", IEEE Trans. SMC 9, 1979): of all ways to cut the channel's histogram in two the one with the largest
 * variance between the classes. It lies just below the first value of the upper class, so that src > threshold selects
 * that.
 *
 * Operands, region, channel selection and planes are those of JormHistogram; several planes give one threshold.
 * `ranges` and `bins` (by channel, either may be null) say which interval is looked at and in how many bins, and are
 * told what was used. Without them, and for a range whose lo is NaN, the interval is [0, 255] for u8, s16 and s32 and
 * [0, 1] for other types; a range with finite lo <= hi is saturated to the type; any other becomes the measured
 * [minimum, maximum] as single precision holds them. A count below 2 becomes 256 for u8, s16 and s32, 384 for other
 * types. Samples outside the interval count at its ends; NaN does not count.
 *
 * What belongs to channels that are not selected stays as it is. Statuses: as JormHistogram; JORM_ENOTSUP also for s8
 * with a range to be measured; JORM_ENOMEM, also without an environment, which the counters come from. Nothing is
 * written unless the status is JORM_OK. */
JORM_API int64_t JormComputeThresholdByOtsu(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,
                                            double *thresholds, vrng *ranges, uint32_t *bins);

/* Otsu's threshold of a filled histogram whose `product` is the number of samples. With v(i) = flo + i * fstep it is
 * v(t) + fstep - 2^-23 for the bin t that the lower class ends with; among equals, to within 2^-23, the lowest wins. A
 * histogram with one occupied bin, or none, gives flo + fstep - 2^-23. i: rounded to the nearest integer, ties to even.
 * A null record, or one without counters, gives NaN. */
JORM_API double jorma_calculate_threshold_otsu_f(const jorm_histogram *record);
JORM_API double jorma_calculate_threshold_otsu_i(const jorm_histogram *record);

/* Layers below, on flat arguments as in jorm/stats.h. */
typedef struct jorm_otsuparams { /* of the per-slice entry */
    double *thresholds;
    vrng *ranges;
    uint32_t *bins;
} jorm_otsuparams;
JORM_API int64_t JormTGAcomputeThresholdByOtsu(jorm_xe *xe, uint64_t options, const jorm_otsuparams *params,
                                               uint32_t word, const int32_t *size, uint32_t type, const void *data,
                                               const int32_t *stride);
JORM_API int64_t jorma_compute_threshold_otsu(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                              uint32_t type, const void *base, const int32_t *origin,
                                              const int32_t *stride, double *thresholds, vrng *ranges, uint32_t *bins);
JORM_API int64_t jorma__compute_threshold_otsu(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                               uint32_t type, const void *data, const int32_t *stride,
                                               double *thresholds, vrng *ranges, uint32_t *bins);

/* ---- Classes ---- */

/* Writes the largest value of the destination's type (255, 32767, 2147483647, 1.0) for samples of the upper class, 0
 * for the others, those that are NaN among them.
 *
 * Immediate (a null record or method 0). `thresholds` holds a pair (lower, upper) of doubles for each channel. Samples
 *   are compared with them exactly, whatever their types. With a count below 2 the upper class is src > lower, else
 *   lower < src <= upper. When the upper value of channel 0 is NaN it is src > mean + lower, whatever the count, with
 *   the mean of the 5 by 5 window around the sample.
 * Otsu. src > the threshold of the channel that JormComputeThresholdByOtsu gives for the region, whatever channels the
 *   options select; the record's ranges and bin counts hold when its word says so.
 * Usto: dark marks on uneven ground become 0. The difference of the mean of the 15 by 15 window and the sample, shifted
 *   so that its own mean stands at mid range (128; 0.5) and saturated, goes through Otsu's method; the upper class is
 *   what lies at or below the threshold. Blur: the samples smoothed by the 5 by 5 Gaussian go through Otsu's method.
 *   Both serve sources of u8 and f32 with 1 or 3 channels, plane by plane.
 * Windows go on beyond the region's edges by reflection about its outermost samples.
 *
 * Types. Sources: u8, s8, s16, s32, f32; destinations: u8, s16, s32, and f32 with f32 sources; 1 to 3 channels. Region,
 * start point, layout, in place and overlap: as JormCompareC (jorm/compare.h). `thresholds` and `count` matter to the
 * immediate method alone. Statuses, in this order: JORM_EINVAL (descriptors), JORM_EEMPTY, JORM_EINVAL (an unknown
 * method, null thresholds, ill-formed types), JORM_ENOTSUP (types that are not served), JORM_ENOMEM (every method but
 * plain immediate takes scratch memory). Nothing is written unless the status is JORM_OK. */
JORM_API int64_t JormThreshold(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                               const jorm_site *roi, const int32_t *at, const jorm_thhmethod *method,
                               const double *thresholds, int32_t count);

/* Layers below, on up to three axes and 1 to 4 channels. */
typedef struct jorm_thresholdparams { /* of the per-slice entry */
    const jorm_thhmethod *method;
    const double *thresholds;
    int32_t count;
} jorm_thresholdparams;
JORM_API int64_t JormTGAthreshold(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                                  uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                  const void *src, const int32_t *src_stride);

#define JORM_THRESHOLD_ADAPTER_LEAD                                                                                    \
    jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type, void *dst,                   \
        const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type, const void *src,                      \
        const int32_t *src_origin, const int32_t *src_stride
#define JORM_THRESHOLD_LEAD                                                                                            \
    jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type, void *dst,                   \
        const int32_t *dst_stride, uint32_t src_type, const void *src, const int32_t *src_stride

/* Any method; the immediate one. */
JORM_API int64_t jorma_ethreshold(JORM_THRESHOLD_ADAPTER_LEAD, const jorm_thhmethod *method, const double *thresholds,
                                  int32_t count);
JORM_API int64_t jorma_threshold(JORM_THRESHOLD_ADAPTER_LEAD, const double *thresholds, int32_t count);

typedef int64_t jorm_ethreshold_dispatcher(JORM_THRESHOLD_LEAD, const jorm_thhmethod *method, const double *thresholds,
                                           int32_t count);
JORM_API jorm_ethreshold_dispatcher jorma__ethreshold, jorma__ethreshold_otsu, jorma__ethreshold_usto,
    jorma__ethreshold_blur;

/* The immediate method, and its kernels: plain and against the window's mean, by one threshold and by two (the adaptive
 * ones are alike). */
typedef int64_t jorm_threshold_dispatcher(JORM_THRESHOLD_LEAD, const double *thresholds, int32_t count);
JORM_API jorm_threshold_dispatcher jorma__threshold, jorma__sheer_threshold_n1, jorma__sheer_threshold_n2,
    jorma__adaptive_threshold_n1, jorma__adaptive_threshold_n2;

#undef JORM_THRESHOLD_ADAPTER_LEAD
#undef JORM_THRESHOLD_LEAD

#endif
