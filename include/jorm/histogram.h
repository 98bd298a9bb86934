/* libJorm histograms: how many samples of an array fall into each bin.
 *
 *     jorm_histdesc d = {0};
 *     d.nbins = 256, d.lo = 0, d.hi = 255;
 *     jorm_histogram h;
 *     _jorm_histogram__$xe(&h, &d, xe);              header and zeroed counters, here from the environment's stack
 *     JormHistogram(xe, options, src, roi, 0, &h);   h.bins[v] samples have the value v
 *     jorm_hist_fini_$xe(&h, xe);
 *
 * The caller owns the records, one for each channel; the entries only count into them. */
#ifndef JORM_HISTOGRAM_H
#define JORM_HISTOGRAM_H

#include "jorm/types.h"

JORM_BEGIN_DOLLARS

/* What a histogram is to cover, 40 bytes. */
typedef struct jorm_histdesc {
    uint32_t first;  /* not read */
    uint32_t nbins;  /* the number of bins */
    double lo, hi;   /* the interval */
    uint32_t fourth; /* not read */
    uint32_t f1, f2; /* their product goes to the record: the number of samples, where one is to be known later */
    uint32_t rest;   /* not read */
} jorm_histdesc;

/* A histogram, 56 bytes. `sum` and `fsum` belong to the counted samples, the other numbers to the layout. Rounded means
 * to the nearest integer, ties to even; NaN and what does not fit 32 bits become -2147483648. */
typedef struct jorm_histogram {
    uint32_t sum;          /* of all that was counted, see JormHistogram */
    int32_t ilo, ihi;      /* lo and hi, rounded */
    uint32_t width;        /* ihi - ilo + 1, modulo 2^32 as all differences here */
    uint32_t istep;        /* (ihi - ilo) / min(ihi - ilo, nbins - 1); 0 when that divides by 0 */
    float fsum;            /* as sum */
    float flo, fhi, fspan; /* lo and hi in single precision; fhi - flo */
    float fstep;           /* fspan / (nbins - 1); 0 for fewer than two bins */
    uint32_t product;      /* f1 x f2, the low 32 bits */
    uint32_t nbins;
    uint32_t *bins; /* nbins + 1 counters, owned by the record; the last is a spare and stays 0 */
} jorm_histogram;

/* ---- Life of a record ----
 *
 * inithdr lays a record out without counters and returns the number of bins. The functions _jorm_histogram__ lay it out
 * and take zeroed counters from the heap ($ia) or from an environment's scratch stack ($xe), which fini and fini_$xe
 * give back. fini also zeroes `sum`, `fsum` and `product`. reset zeroes counters and sums and keeps the layout.
 *
 * The $n forms work on consecutive records, as many as the channel code stores channels (1 to 4). Bits 4 to 7 of the
 * code select channels (bit 4 + k for channel k), none of them means all. A record that is not selected gets 0 in `sum`
 * and `ilo` and null counters; fini_$n serves every channel, in reverse order, and reset_$n the selected ones.
 * inithdr_$n returns the selection as bits 0 to 3, 0 for a code of other channel counts.
 *
 * init does what its mode says: 0 the layout alone, 1 layout and counters, 2 a reset (the description is then not
 * read).
 *
 * Null counters are accepted everywhere. Statuses: JORM_EINVAL (null records or descriptions, other modes, other
 * channel counts) and JORM_ENOMEM, after which no record has counters: those already taken were given back. */
JORM_API uint32_t jorm_hist_inithdr(jorm_histogram *record, const jorm_histdesc *description);
JORM_API uint32_t jorm_hist_inithdr_$n(uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions);
JORM_API int64_t _jorm_histogram__$ia(jorm_histogram *record, const jorm_histdesc *description);
JORM_API int64_t _jorm_histogram__$xe(jorm_histogram *record, const jorm_histdesc *description, jorm_xe *xe);
JORM_API int64_t _jorm_histogram__$n$ia(uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions);
JORM_API int64_t _jorm_histogram__$n$xe(uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions,
                                        jorm_xe *xe);
enum { JORM_HIST_HEADER = 0, JORM_HIST_COUNTERS = 1, JORM_HIST_RESET = 2 }; /* modes */
JORM_API int64_t jorm_hist__init(uint32_t mode, jorm_histogram *record, const jorm_histdesc *description);
JORM_API int64_t jorm_hist__init_xe(uint32_t mode, jorm_histogram *record, const jorm_histdesc *description,
                                    jorm_xe *xe);
JORM_API int64_t jorm_hist__init_n(uint32_t mode, uint32_t code, jorm_histogram *records,
                                   const jorm_histdesc *descriptions);
JORM_API int64_t jorm_hist__init_n_xe(uint32_t mode, uint32_t code, jorm_histogram *records,
                                      const jorm_histdesc *descriptions, jorm_xe *xe);
JORM_API void jorm_hist_fini(jorm_histogram *record);
JORM_API void jorm_hist_fini_$xe(jorm_histogram *record, jorm_xe *xe);
JORM_API void jorm_hist_fini_$n(uint32_t code, jorm_histogram *records);
JORM_API void jorm_hist_fini_$n$xe(uint32_t code, jorm_histogram *records, jorm_xe *xe);
JORM_API void jorm_hist_reset(jorm_histogram *record);
JORM_API void jorm_hist_reset_$n(uint32_t code, jorm_histogram *records);

/* ---- Counting ----
 *
 * The samples of each selected channel are counted into its record; a record without counters or without bins is passed
 * over. Counters add up from call to call. Operands, region, mask, channel selection and planes are those of JormSumEx
 * (jorm/stats.h); types are u8, s8, s16, s32 and f32, under a mask not s8.
 *
 * Bins. Integers: with lo = ilo limited to the samples' type, a sample x of the interval goes to bin x - lo when
 * `width` equals `nbins`, else to bin (x - lo) x nbins / width, truncated; an interval that spans all 2^32 values has
 * that width. f32: to bin (x - flo) x ((nbins - 1) / fspan), the difference and the factor in single precision (0 when
 * there is no span), the product in double, truncated. Samples below the interval go to the first bin, those above it
 * to the last; NaN is not counted.
 *
 * Sums. Integers: `sum` is the sum of bins[i] x (lo + i) over all bins modulo 2^32, which is that of the samples when
 * each bin holds one value; `fsum` is the same number, taken as signed when ilo is negative. f32: `fsum` adds up the
 * samples, those of one call in double precision and in an order that does not depend on the processor; `sum` is that
 * rounded.
 *
 * `kind` is 0. Statuses, in this order: JORM_EINVAL (null pointers, bad or disagreeing descriptors, channel counts),
 * JORM_EEMPTY, JORM_ENOTIMP (kinds 1 to 3) or JORM_EINVAL (other kinds), JORM_ENOTSUP for other well-formed types, else
 * JORM_EINVAL. Nothing is counted unless the status is JORM_OK. Environment: null will do. Scratch memory of at most
 * 17 KiB for each channel makes counting faster. */
JORM_API int64_t JormHistogram(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,
                               uint32_t kind, jorm_histogram *records);
JORM_API int64_t JormHistogramEx(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_array *mask,
                                 const jorm_site *roi, const int32_t *at_mask, uint32_t kind, jorm_histogram *records);

/* Layers below, on flat arguments as in jorm/stats.h. Kernels serve one channel. */
typedef struct jorm_histparams { /* of the per-slice entries */
    uint32_t kind;
    jorm_histogram *records;
} jorm_histparams;

JORM_API int64_t jorma_histogram(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                                 const void *base, const int32_t *origin, const int32_t *stride,
                                 jorm_histogram *records);
JORM_API int64_t jorma_histogram_xm(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                                    const void *base, const int32_t *origin, const int32_t *stride, const void *mask,
                                    const int32_t *mask_origin, const int32_t *mask_stride, jorm_histogram *records);
JORM_API int64_t jorma__histogram(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                                  const void *data, const int32_t *stride, jorm_histogram *records);
JORM_API int64_t jorma__histogram_xm(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                                     const void *data, const int32_t *stride, const void *mask,
                                     const int32_t *mask_stride, jorm_histogram *records);
JORM_API int64_t JormTGAhistogram(jorm_xe *xe, uint64_t options, const jorm_histparams *params, uint32_t word,
                                  const int32_t *size, uint32_t type, const void *data, const int32_t *stride);
JORM_API int64_t JormTGAhistogramEx(jorm_xe *xe, uint64_t options, const jorm_histparams *params, uint32_t word,
                                    const int32_t *size, uint32_t type, const void *data, const int32_t *stride,
                                    uint32_t mask_type, const void *mask, const int32_t *mask_stride);

typedef int64_t jorm_histogram_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                      const void *data, const int32_t *stride, jorm_histogram *record);
typedef int64_t jorm_histogram_xm_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                         const void *data, const int32_t *stride, const void *mask,
                                         const int32_t *mask_stride, jorm_histogram *record);
JORM_API jorm_histogram_kernel jorma__histogram_c1_u8, jorma__histogram_c1_s8, jorma__histogram_c1_s16,
    jorma__histogram_c1_s32, jorma__histogram_c1_f32;
JORM_API jorm_histogram_xm_kernel jorma__histogram_xm_c1_u8, jorma__histogram_xm_c1_s16, jorma__histogram_xm_c1_s32,
    jorma__histogram_xm_c1_f32;

/* The kernel for a number of channels (1) and a type. Without one, jorma_proc_enotsup for other well-formed types with
 * 1 to 4 channels, else jorma_proc_einval. The status that calling it would give goes to `status`, unless that is null.
 */
JORM_API jorm_proc *jorma__histofun_imp(uint32_t channels, uint32_t type, int32_t *status);
JORM_API jorm_proc *jorma__histofunxm_imp(uint32_t channels, uint32_t type, int32_t *status);

JORM_END_DOLLARS

#endif
