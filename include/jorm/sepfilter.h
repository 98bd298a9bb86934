/* libJorm: separable and Gaussian filters. For every pixel of a region the weighted sum of the pixels in a window, with
 * weights that are products of one weight an axis.
 *
 * Windows, what lies beyond the region, regions, overlap, scratch memory and statuses are as in jorm/filter.h; besides
 * the rows of in-place calls, two rows of sums and the weights stand in scratch memory.
 *
 * Elements are u8, s16, s32 or f32, of one type in source and destination, in one or three channels; of four stored
 * channels (codes 4 and 11) the first three are filtered and the destination's fourth stays as it is. Two channels:
 * JORM_EINVAL.
 *
 * Accuracy: integers are rounded once, to nearest even, and clamped. Whole weights on integers give the exact result,
 * others miss the exact sum by at most one unit, bytes by at most half a unit and 1/256. Sums are taken in single
 * precision where that suffices, in double precision otherwise; f32 in single precision. Results are the same bits at
 * every level. */
#ifndef JORM_SEPFILTER_H
#define JORM_SEPFILTER_H

#include "jorm/filter.h"

/* Weights by axis: those of the axes in use from kernel[0] on (three axes: rows, pixels; four: planes, rows, pixels),
 * as many as the shape has places there. Weight i of an axis applies to the source at offset i - anchor. An axis of one
 * place may have a null kernel, a weight of 1. */
typedef struct jorm_sepkernel {
    jorm_seshape shape;
    const double *kernel[3];
} jorm_sepkernel;

/* A shape of positive extents counts as it stands (1 by 1 included); otherwise it is adjusted like that of a filter,
 * and the kernels must have the lengths that result. A missing kernel: JORM_EINVAL; so is a null record, after the
 * arrays and the region have been found in order. */
JORM_API int64_t JormSepFilter(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                               const jorm_site *roi, const jorm_site *src_roi, const jorm_sepkernel *kernel);

/* Gaussian weights for the adjusted shape (null: 5 by 5); `sigmas` are standard deviations in pixels, from the
 * outermost axis in use on, see jorm_adjustgaussigmas. */
JORM_API int64_t JormGaussianFilter(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                                    const jorm_site *roi, const jorm_site *src_roi, const jorm_seshape *shape,
                                    const double *sigmas);

/* exp(-(i - anchor)^2 / (2 sigma^2)) for i in [0, length), divided by their sum. An anchor off the centre shifts the
 * window, not the Gaussian. The second form serves k axes, the third those of a layout word: the kernels of the block,
 * which it writes, for its shape. */
JORM_API void jorm__computegauskernel1(double *out, int32_t anchor, int32_t length, double sigma);
JORM_API void jorm__computegauskernel(int32_t k, double *const *kernels, const int32_t *anchors, const int32_t *extents,
                                      const double *sigmas);
JORM_API void jorm_computegauskernel(uint32_t layout, const jorm_sepkernel *block, const double *sigmas);

/* The deviations in use, for the spatial axes of the layout word; `extent` is addressed at slot 0. An axis takes the
 * one given for it, 0 standing for the last one given before it or, in front of the first, for that. With none given at
 * all it follows from the length n of the window: ((n - 1) / 2 - 1) 0.3 + 0.8. */
JORM_API void jorm_adjustgaussigmas(uint32_t layout, double *out, const int32_t *extent, const double *given);

/* Removes isolated bright pixels. For each pixel m is the Gaussian-weighted mean of its window without the pixel
 * itself, the other weights divided by their sum; where src - m exceeds the threshold of its channel the result is m,
 * rounded as above, elsewhere src. Ex also removes dark pixels, where m - src exceeds `lower`. Null thresholds are
 * three standard deviations of src - m over the region, of each channel by itself. Shape and sigmas are those of the
 * Gaussian filter; NaN is left alone. */
JORM_API int64_t JormFirefly(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const jorm_site *src_roi, const jorm_seshape *shape,
                             const double *sigmas, const double *thresholds);
JORM_API int64_t JormFireflyEx(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                               const jorm_site *roi, const jorm_site *src_roi, const jorm_seshape *shape,
                               const double *sigmas, const double *lower, const double *upper);

/* ---- Layers below the entries, as in jorm/filter.h ---- */

JORM_API int64_t jorma_esepfilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                  void *dst, const int32_t *dst_origin, const int32_t *dst_strides, const void *src,
                                  const int32_t *src_origin, const int32_t *src_strides, const jorm_sepkernel *kernel,
                                  const jorm_border *border, const jorm_site *sites);
JORM_API int64_t jorma__esepfilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                   void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                   const jorm_sepkernel *kernel, const jorm_border *border, const jorm_site *sites);
JORM_API int64_t jorma_sepfilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                 void *dst, const int32_t *dst_origin, const int32_t *dst_strides, const void *src,
                                 const int32_t *src_origin, const int32_t *src_strides, const jorm_sepkernel *kernel);
JORM_API int64_t jorma__sepfilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                  void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                  const jorm_sepkernel *kernel);

JORM_API int64_t jorma_egaussianfilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size,
                                       uint32_t eltype, void *dst, const int32_t *dst_origin,
                                       const int32_t *dst_strides, const void *src, const int32_t *src_origin,
                                       const int32_t *src_strides, const jorm_seshape *shape, const double *sigmas,
                                       const jorm_border *border, const jorm_site *sites);
JORM_API int64_t jorma__efilter_gaussian(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size,
                                         uint32_t eltype, void *dst, const int32_t *dst_strides, const void *src,
                                         const int32_t *src_strides, const jorm_seshape *shape, const double *sigmas,
                                         const jorm_border *border, const jorm_site *sites);
JORM_API int64_t jorma_gaussianfilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size,
                                      uint32_t eltype, void *dst, const int32_t *dst_origin, const int32_t *dst_strides,
                                      const void *src, const int32_t *src_origin, const int32_t *src_strides,
                                      const jorm_seshape *shape, const double *sigmas);
JORM_API int64_t jorma__filter_gaussian(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size,
                                        uint32_t eltype, void *dst, const int32_t *dst_strides, const void *src,
                                        const int32_t *src_strides, const jorm_seshape *shape, const double *sigmas);

/* Dark pixels are removed when `dark` is not 0. */
JORM_API int64_t jorma__firefly_gauss(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size,
                                      uint32_t eltype, void *dst, const int32_t *dst_strides, const void *src,
                                      const int32_t *src_strides, const jorm_seshape *shape, const double *sigmas,
                                      const double *lower, const double *upper, int32_t dark);

typedef struct jorm_sepparams {
    jorm_sepkernel kernel;
    jorm_border border;
    jorm_site sites[2]; /* own, parent */
} jorm_sepparams;
JORM_API int64_t JormTGAsepfilter(jorm_xe *xe, uint64_t flags, const jorm_sepparams *params, uint32_t layout,
                                  const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_strides,
                                  uint32_t src_type, const void *src, const int32_t *src_strides);

typedef struct jorm_gaussparams {
    jorm_seshape shape;
    const double *sigmas;
    jorm_border border;
    jorm_site sites[2];
} jorm_gaussparams;
JORM_API int64_t JormTGAgaussianfilter(jorm_xe *xe, uint64_t flags, const jorm_gaussparams *params, uint32_t layout,
                                       const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_strides,
                                       uint32_t src_type, const void *src, const int32_t *src_strides);

/* Typed kernels; c3 serves codes 3, 4 and 11. The lookup: see jorm/filter.h. */
typedef int64_t jorm_sepfilter_proc(jorm_xe *xe, uint64_t flags, int32_t axes, const int32_t *size, void *dst,
                                    const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                    const jorm_sepkernel *kernel);
JORM_API jorm_sepfilter_proc *jorma__sepfiltfun_imp(uint32_t channels, uint32_t eltype, int32_t *status);
JORM_API jorm_sepfilter_proc jorma__sepfilter_c1_u8, jorma__sepfilter_c1_s16, jorma__sepfilter_c1_s32,
    jorma__sepfilter_c1_f32, jorma__sepfilter_c3_u8, jorma__sepfilter_c3_s16, jorma__sepfilter_c3_s32,
    jorma__sepfilter_c3_f32;

#endif
