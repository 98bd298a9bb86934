/* libJorm resampling: nearest-neighbour resizing with a factor for each axis.
 *
 *     double factors[4] = {0};                                  // from region to region
 *     JormResize(xe, 0, &dst, &src, NULL, NULL, factors);
 *
 * Factors. One for each of the slots planes, rows, pixels, channels: the size of the destination per unit of the source.
 * Above 1 enlarges, below 1 reduces; a negative factor f gives the mirror image, along that axis, of what |f| gives. The
 * channel slot is not looked at, nor is that of the planes for arrays of three axes. */
#ifndef JORM_RESAMPLE_H
#define JORM_RESAMPLE_H

#include "jorm/types.h"

/* Resizes `src` into `dst`: pixels are repeated or left out, never mixed.
 *
 * Operands. Both of one element type with a size (1 to 8 bytes), with the same number of axes, three or four, and the
 * same number of channels, 1 to 4. Strides may be anything. Regions. `roi` is a region of dst, `src_roi` one of src;
 * null stands for all of it. The two are negotiated by jorm_arr_negotiateRoiEx (jorm/array.h) with the magnitudes of
 * the factors: a factor of about 0 is replaced by the proportion of the two regions, and the region that is too large
 * for the other is cut at its end. Regions may narrow the channels; what both have, from the first ones on, is copied.
 * Null `factors` are four zeros. On success factors of about 0 hold what they were replaced by.
 *
 * Along each axis position i of the destination's region reads position floor((i + 0.5) / |f|) of the source's region,
 * at most its last one. That is exact: a factor that is the quotient of two sizes, rounded to double (jorm_mkreszf, or
 * replaced), counts as the quotient itself, any other as the number that it is.
 *
 * JormEResize begins `offsets` source positions further (four numbers like the factors; null: zeros, then it is
 * JormResize): position floor((i + 0.5) / |f| + offset), kept within the source's region.
 *
 * Memory. The regions may not overlap. Scratch memory is bounded by the width of the destination.
 * Statuses, in this order: JORM_EINVAL (null pointers, the environment too; bad descriptors; types, axes or channels
 * that differ; a type without a size; a factor or an offset that is not finite), JORM_EEMPTY (no region is left),
 * JORM_EINVAL (the regions overlap), JORM_ENOMEM. Nothing is written unless the status is JORM_OK. */
JORM_API int64_t JormResize(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const jorm_site *roi, const jorm_site *src_roi, double *factors);
JORM_API int64_t JormEResize(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const jorm_site *src_roi, double *factors, const double *offsets);

/* The factors from one size to another: dst_size[i] / src_size[i] in slots 0 to 2, 0 where the source's size is below
 * 1; slot 3 becomes 1. A null size is a vector of zeros. Returns `factors`, which may be null. */
JORM_API double *jorm_mkreszf(double *factors, const int32_t *dst_size, const int32_t *src_size);

/* Replaces factors that are 0, NaN or infinite by what jorm_mkreszf gives in their place. Returns 1 when all four are
 * then finite and not 0, else 0 (null `factors` too). */
JORM_API int32_t jorm_fixreszf(double *factors, const int32_t *dst_size, const int32_t *src_size);

#endif
