/* libJorm: neighbourhood filters. For every pixel of a region the minimum, the maximum or the mean of the pixels in a
 * window around it, and the openings, closings and hats that are made of these.
 *
 * Windows
 *   A jorm_seshape (jorm/shapes.h) says how large the window is and which of its places, the anchor, lies over the
 *   pixel of the result: the window of result p covers the source pixels p - anchor + q for q in [0, extent). An entry
 *   adjusts the shape to the region first; a null shape, all zeros and 1 by 1 are the 5 by 5 window anchored at (2, 2).
 *   Arrays of four axes take windows with several planes too; with a plane extent of 1 each plane stands for itself.
 *
 * Beyond the region
 *   A window may reach out of the region. It then reads the source's true pixels: those of the array, and when the
 * array is a view those of its parent buffer, in pictures described by negative strides as well. Beyond the edge of the
 *   buffer the picture goes on as its mirror image about the edge pixels (JORM_BORDER_REFLECT101), again and again for
 *   windows larger than the picture; a picture of one row or column stands for itself. With JORM_OPT_OWN_BORDER the
 *   mirrors stand at the edges of the array itself, with JORM_OPT_NO_BORDER there are none and the caller vouches for
 *   all pixels that the windows reach.
 *
 * Regions, overlap, memory
 *   The region `roi` is one of the destination (null: all of it); of `src_roi` only the origin is read, where the
 *   source's part begins (null: at its first pixel). A null source is the destination, from the origin of src_roi or
 *   else of roi on. The common size is what both offer. Results are those of a source read before anything is written,
 *   whatever the overlap of the two. In place, and for sources whose pixels do not lie side by side, as many rows as
 *   the window has pass through scratch memory (twice as many for the hats); a source that overlaps the destination in
 *   another way, and windows with several planes over such sources, take scratch memory of the size of the region grown
 *   by the window.
 *
 * Statuses: JORM_EINVAL for bad descriptors, element types that differ or have no kernel, unknown codes; JORM_EEMPTY
 * for a region that becomes empty; JORM_ENOTSUP for three and four channels; JORM_ENOTIMP for the median and the
 * gradient; JORM_ENOMEM when scratch memory cannot be had. On all of these nothing has been written.
 */
#ifndef JORM_FILTER_H
#define JORM_FILTER_H

#include "jorm/shapes.h"

/* Filter kinds; only the low byte of a kind counts. */
enum {
    JORM_FILTER_NUL = 0,    /* copies */
    JORM_FILTER_MIN = 3,    /* the least value in the window */
    JORM_FILTER_MAX = 4,    /* the largest */
    JORM_FILTER_BOX = 5,    /* the mean */
    JORM_FILTER_MEDIAN = 6, /* not implemented */
    JORM_FILTER_CLOSE = 105,
    JORM_FILTER_OPEN = 106,
    JORM_FILTER_BOTHAT = 107,
    JORM_FILTER_TOPHAT = 108,
    JORM_FILTER_GRADIENT = 109 /* not implemented */
};

/* Bit of the flags word: the layers below the entry check their arguments and return without reading or writing
 * anything; pointers may then be null. The entries clear it. */
#define JORM_OPT_CHECK_ONLY UINT64_C(1)

/* Filters a region of one channel of u8, s16, s32 or f32.
 *
 * Minimum, maximum: NaN takes no part; a window of nothing but NaN gives NaN. Which of two zeros of different sign wins
 * is not said. Windows taller than 7 rows cost the same whatever their height (van Herk 1992; Gil and Werman 1993).
 *
 * Mean: of integers exact sums, rounded to nearest even; of f32 sums in double precision, rounded once to single. NaN
 * and infinities reach the windows that hold them and no others. The cost does not depend on the size of the window.
 *
 * Close: the minimum of the maximum; open: the maximum of the minimum. The second pass sees the results of the first
 * within the region only; around it stands the value that never wins (the limits of the type, for f32 the finite ones).
 * Tophat: source - open; bothat: close - source, both saturated. */
JORM_API int64_t JormFilter(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                            const jorm_site *roi, const jorm_site *src_roi, uint32_t kind, const jorm_seshape *shape);

/* "nul-filter", "min-filter", "max-filter", "box-filter", "median-filter", "close-filter", "open-filter",
 * "bothat-filter", "tophat-filter", "gradient-filter", "unknown-filter". */
JORM_API const char *jorm_filter_str(uint32_t kind);

/* ---- Layers below the entry ----
 *
 * They take the region's size and the strides at their first used slot, a packed layout word (JORM_WORD), the region's
 * first pixels, and a window that has been adjusted already: extents of at least 1, the anchor inside. A size below 1
 * is answered with JORM_EEMPTY. Adapters (single underscore) take an origin before each pair of strides, null for 0,
 * and bases for start pointers.
 *
 * The bordered layers (efilter) take a border record, null for reflect101, and two sites: the source array's own and
 * its parent's, relative to the pixel that `src` points at (in adapters: to the base). Null sites, or empty ones in
 * the adapters, are the region itself. In mode JORM_BORDER_NUL a window that leaves the site is refused with
 * JORM_EINVAL. The others find true pixels around `src`. */
JORM_API int64_t jorma_efilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                               void *dst, const int32_t *dst_origin, const int32_t *dst_strides, const void *src,
                               const int32_t *src_origin, const int32_t *src_strides, const jorm_seshape *shape,
                               uint32_t kind, const jorm_border *border, const jorm_site *sites);
JORM_API int64_t jorma__efilter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                const jorm_seshape *shape, uint32_t kind, const jorm_border *border,
                                const jorm_site *sites);
JORM_API int64_t jorma_filter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                              void *dst, const int32_t *dst_origin, const int32_t *dst_strides, const void *src,
                              const int32_t *src_origin, const int32_t *src_strides, uint32_t kind,
                              const jorm_seshape *shape);
JORM_API int64_t jorma__filter(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                               void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                               uint32_t kind, const jorm_seshape *shape);

/* The same for one kind each. */
typedef int64_t jorm_filter_handler(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                    void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                    const jorm_seshape *shape);
JORM_API jorm_filter_handler jorma__filter_min, jorma__filter_max, jorma__filter_box, jorma__filter_close,
    jorma__filter_open, jorma__filter_tophat, jorma__filter_bothat;

/* The per-slice entry and its parameters. Types that differ: JORM_EINVAL. */
typedef struct jorm_filtparams {
    uint32_t kind;
    jorm_seshape shape;
    jorm_border border;
    jorm_site sites[2]; /* own, parent */
} jorm_filtparams;
JORM_API int64_t JormTGAfilter(jorm_xe *xe, uint64_t flags, const jorm_filtparams *params, uint32_t layout,
                               const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_strides,
                               uint32_t src_type, const void *src, const int32_t *src_strides);

/* Typed kernels: the handlers for one element type, `axes` slots. Those of three and four channels return JORM_ENOTSUP.
 * The lookups take a channel code (1, 3, 4, 11) in its low four bits; without a kernel they return jorma_proc_einval
 * and set the status, unless it is null, to JORM_EINVAL. */
typedef int64_t jorm_filter_proc(jorm_xe *xe, uint64_t flags, int32_t axes, const int32_t *size, void *dst,
                                 const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                 const jorm_seshape *shape);
JORM_API jorm_filter_proc *jorma__minfiltfun_imp(uint32_t channels, uint32_t eltype, int32_t *status);
JORM_API jorm_filter_proc *jorma__maxfiltfun_imp(uint32_t channels, uint32_t eltype, int32_t *status);
JORM_API jorm_filter_proc *jorma__boxfiltfun_imp(uint32_t channels, uint32_t eltype, int32_t *status);
JORM_API jorm_filter_proc jorma__minfilter_c1_u8, jorma__minfilter_c1_s16, jorma__minfilter_c1_s32,
    jorma__minfilter_c1_f32, jorma__minfilter_c3_u8, jorma__minfilter_c3_s16, jorma__minfilter_c3_s32,
    jorma__minfilter_c3_f32, jorma__minfilter_c4_u8, jorma__minfilter_c4_s16, jorma__minfilter_c4_s32,
    jorma__minfilter_c4_f32;
JORM_API jorm_filter_proc jorma__maxfilter_c1_u8, jorma__maxfilter_c1_s16, jorma__maxfilter_c1_s32,
    jorma__maxfilter_c1_f32, jorma__maxfilter_c3_u8, jorma__maxfilter_c3_s16, jorma__maxfilter_c3_s32,
    jorma__maxfilter_c3_f32, jorma__maxfilter_c4_u8, jorma__maxfilter_c4_s16, jorma__maxfilter_c4_s32,
    jorma__maxfilter_c4_f32;
JORM_API jorm_filter_proc jorma__boxfilter_c1_u8, jorma__boxfilter_c1_s16, jorma__boxfilter_c1_s32,
    jorma__boxfilter_c1_f32, jorma__boxfilter_c3_u8, jorma__boxfilter_c3_s16, jorma__boxfilter_c3_s32,
    jorma__boxfilter_c3_f32, jorma__boxfilter_c4_u8, jorma__boxfilter_c4_s16, jorma__boxfilter_c4_s32,
    jorma__boxfilter_c4_f32;

#endif
