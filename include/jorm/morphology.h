/* libJorm: grey-level morphology with structuring elements of any shape.
 *
 * A jorm_strel (jorm/shapes.h) is a window with a mask: elements of 255 belong to it. Erosion writes the least of the
 * source pixels that the mask selects, dilation the largest: the element is laid over the source with its anchor on the
 * pixel of the result, without reflection. What lies beyond the region and beyond the picture, regions, overlap and
 * scratch memory are as in jorm/filter.h; the scratch memory of a mask is that of its rows times the lengths of runs of
 * 255 that occur in them. The cost grows with the number of such runs, not with the number of elements.
 *
 *     jorm_strel cross = {{0, 7, 7, 0}, {0}};                    15 by 15, anchored at its centre
 *     jorm_array_make(&cross.mask, JORM_U8, 15, 15, 1, 0, pixels_of_the_cross);
 *     JormMorphop(xe, 0, &dst, &src, NULL, NULL, JORM_MORPH_OPEN, &cross);
 */
#ifndef JORM_MORPHOLOGY_H
#define JORM_MORPHOLOGY_H

#include "jorm/filter.h"

/* Operations; only the low four bits count. */
enum {
    JORM_MORPH_NUL = 0, /* copies */
    JORM_MORPH_ERODE = 3,
    JORM_MORPH_DILATE = 4,
    JORM_MORPH_CLOSE = 5,
    JORM_MORPH_OPEN = 6,
    JORM_MORPH_BOTHAT = 7,
    JORM_MORPH_TOPHAT = 8,
    JORM_MORPH_GRADIENT = 9 /* not implemented */
};

/* u8, s16, s32, f32; 1, 3 or 4 channels, each for itself. The mask has u8 elements and one channel, any strides.
 *
 * Close: erosion of the dilation; open: dilation of the erosion, both with the same element; the second pass sees the
 * first one's results within the region, around it the value that never wins. Tophat: source - open; bothat: close -
 * source, saturated. NaN takes no part. A mask without any 255 gives the value that never wins everywhere: erosion the
 * largest, dilation the smallest of the type, for f32 the finite ones.
 *
 * An element without a mask (a null strel, or one whose mask has no data) is the rectangle of its extents: the call is
 * JormFilter's, which serves one channel and takes 1 by 1 for 5 by 5. So do close, open and the hats hand over when
 * every element of the mask is 255. A mask of 1 by 1 copies, whatever the operation.
 *
 * JORM_EINVAL for a mask without rows or columns, an anchor outside it (it is not adjusted), a region that leaves out
 * channels, unknown operations, and what JormFilter refuses with it; JORM_ENOTIMP for the gradient; JORM_EEMPTY,
 * JORM_ENOMEM as there. */
JORM_API int64_t JormMorphop(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const jorm_site *src_roi, uint32_t op, const jorm_strel *strel);

/* "nul-morhop", "erode", "dilate", "morph-close", "morph-open", "morph-bothat", "morph-tophat", "morph-gradient",
 * "unknown-morhop". */
JORM_API const char *jorm_morphop_str(uint32_t op);

/* ---- Layers below the entry: those of jorm/filter.h with an operation and an element ---- */

JORM_API int64_t jorma_emorphop(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                void *dst, const int32_t *dst_origin, const int32_t *dst_strides, const void *src,
                                const int32_t *src_origin, const int32_t *src_strides, const jorm_strel *strel,
                                uint32_t op, const jorm_border *border, const jorm_site *sites);
JORM_API int64_t jorma__emorphop(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                 void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                 const jorm_strel *strel, uint32_t op, const jorm_border *border,
                                 const jorm_site *sites);
JORM_API int64_t jorma_morphop(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                               void *dst, const int32_t *dst_origin, const int32_t *dst_strides, const void *src,
                               const int32_t *src_origin, const int32_t *src_strides, uint32_t op,
                               const jorm_strel *strel);
JORM_API int64_t jorma__morphop(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                uint32_t op, const jorm_strel *strel);

typedef int64_t jorm_morph_handler(jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype,
                                   void *dst, const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                   const jorm_strel *strel);
JORM_API jorm_morph_handler jorma__morphop_erode, jorma__morphop_dilate, jorma__morphop_close, jorma__morphop_open,
    jorma__morphop_tophat, jorma__morphop_bothat;

typedef struct jorm_morphparams {
    uint32_t op;
    const jorm_strel *strel;
    jorm_border border;
    jorm_site sites[2]; /* own, parent */
} jorm_morphparams;
JORM_API int64_t JormTGAmorphop(jorm_xe *xe, uint64_t flags, const jorm_morphparams *params, uint32_t layout,
                                const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_strides,
                                uint32_t src_type, const void *src, const int32_t *src_strides);

/* Typed kernels, and the lookups by channel code (1, 3, 4, 11) and element type; see jorm/filter.h. */
typedef int64_t jorm_morph_proc(jorm_xe *xe, uint64_t flags, int32_t axes, const int32_t *size, void *dst,
                                const int32_t *dst_strides, const void *src, const int32_t *src_strides,
                                const jorm_strel *strel);
JORM_API jorm_morph_proc *jorma__erodefun_imp(uint32_t channels, uint32_t eltype, int32_t *status);
JORM_API jorm_morph_proc *jorma__dilatefun_imp(uint32_t channels, uint32_t eltype, int32_t *status);
JORM_API jorm_morph_proc jorma__erode_c1_u8, jorma__erode_c1_s16, jorma__erode_c1_s32, jorma__erode_c1_f32,
    jorma__erode_c3_u8, jorma__erode_c3_s16, jorma__erode_c3_s32, jorma__erode_c3_f32, jorma__erode_c4_u8,
    jorma__erode_c4_s16, jorma__erode_c4_s32, jorma__erode_c4_f32;
JORM_API jorm_morph_proc jorma__dilate_c1_u8, jorma__dilate_c1_s16, jorma__dilate_c1_s32, jorma__dilate_c1_f32,
    jorma__dilate_c3_u8, jorma__dilate_c3_s16, jorma__dilate_c3_s32, jorma__dilate_c3_f32, jorma__dilate_c4_u8,
    jorma__dilate_c4_s16, jorma__dilate_c4_s32, jorma__dilate_c4_f32;

#endif
