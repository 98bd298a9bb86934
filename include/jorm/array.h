/* libJorm arrays: index vectors, sites, regions of interest, sizes and strides.
 *
 * The array descriptor
 *   A jorm_array (jorm/types.h) describes memory of the caller: extents, byte strides, element type, and where the
 *   first element lies, base + loff. Slot 0 holds planes, 1 rows, 2 pixels, 3 channels; an array of three axes uses
 *   slots 1 to 3 and has extent[0] = 1. Extents are handled as signed numbers: one above INT32_MAX counts as negative,
 *   thus empty. Strides may be negative (bottom-up pictures) and padded (one channel of an interleaved picture). A u8
 *   picture of 640 x 480 with three channels has extent {1, 480, 640, 3}, stride {0, 1920, 3, 1}, ndims 3, eltype
 *   JORM_U8, and parent_extent equal to extent; jorm_array_make fills such a record.
 *
 * The channel code
 *   extent[3] is a code: (c & 7) + ((c >> 3) & 1) channels are stored per pixel, so 1 to 4 mean themselves, 11 means
 *   four and 8 means one. Below the entries, where the code travels in the channel slot of a size vector, bits 4 to 7
 *   may select channels (bit 4 + k for channel k).
 *
 * Views and the linear offset
 *   A view shares base and strides with the whole buffer; loff is the byte offset of its first element, parent_extent
 *   the extents of the buffer. Folding loff into an index (jorm_vec_update_$loff) turns positions in the view into
 *   positions in the buffer; jorm_arr_parsiteof tells where the buffer lies as seen from the view. An array that is no
 *   view has loff 0 and parent_extent = extent.
 *
 * Regions
 *   A region is a site, origin and size in four slots, in coordinates of the array. An operation takes its region from
 *   the destination and a start point from each source: the common size is, in every spatial slot, what all of them
 *   offer. A smaller source shortens the operation; a region that becomes empty makes it fail with JORM_EEMPTY.
 *
 * Rules of the helpers
 *   They are pure, allocate nothing and write only where they are told to. Arithmetic on slots wraps at 32 bits;
 *   offsets are formed in 64 bits; the ends of boxes are computed in 64 bits and a size that does not fit is limited to
 *   the range of int32_t. Where a helper takes a count and a vector, the vector begins at the first used slot. Names
 *   with a double underscore after the family take a plain count (below 1: nothing to do); names with a single
 *   underscore use the low four bits of `n`, so that a count and a packed count word both serve; names with L after _$
 *   take a packed count word (JORM_WORD), step back from the first used slot to slot 0 and work on all slots. Null
 *   arrays, records and vectors are never touched: a null result pointer or 0 answers them unless a function says
 *   otherwise. */
#ifndef JORM_ARRAY_H
#define JORM_ARRAY_H

#include "jorm/types.h"

JORM_BEGIN_DOLLARS

/* Index vectors.
 *
 * A null operand counts as the zero vector, a null destination is left alone, and in place a null second operand leaves
 * the first unchanged; the S names promise that, the others behave alike. Operands may be the same vector, not shifted
 * parts of one. All return their destination. */

/* dst = src; a null src fills zeros. */
JORM_API int32_t *jorm_vec__assign(int32_t n, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec__assign_$S(int32_t n, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec_assign(uint32_t n, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec_assign_$S(uint32_t n, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec_assign_$L(uint32_t word, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec_assign_$LS(uint32_t word, int32_t *dst, const int32_t *src);
/* The same; the result is 1 when n > 0 and every slot copied is above 0, else 0. */
JORM_API int32_t jorm_vec__assign_$Z(int32_t n, int32_t *dst, const int32_t *src);

/* Every slot = v; every slot = 0. */
JORM_API int32_t *jorm_vec__dup(int32_t n, int32_t *dst, int32_t v);
JORM_API int32_t *jorm_vec_dup(uint32_t n, int32_t *dst, int32_t v);
JORM_API int32_t *jorm_vec_dup_$L(uint32_t word, int32_t *dst, int32_t v);
JORM_API int32_t *jorm_vec__zero(int32_t n, int32_t *dst);
JORM_API int32_t *jorm_vec_zero(uint32_t n, int32_t *dst);
JORM_API int32_t *jorm_vec_zero_$L(uint32_t word, int32_t *dst);

/* dst = -src; v = -v. */
JORM_API int32_t *jorm_vec__neg(int32_t n, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec_neg(uint32_t n, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec_neg_$L(uint32_t word, int32_t *dst, const int32_t *src);
JORM_API int32_t *jorm_vec__neg_$I(int32_t n, int32_t *v);
JORM_API int32_t *jorm_vec_neg_$I(uint32_t n, int32_t *v);
JORM_API int32_t *jorm_vec_neg_$IL(uint32_t word, int32_t *v);

/* dst = a + b; a += b. */
JORM_API int32_t *jorm_vec__add(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__add_$S(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add_$S(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add_$L(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add_$LS(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__add_$I(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__add_$IS(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add_$I(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add_$IS(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add_$IL(uint32_t word, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_add_$ILS(uint32_t word, int32_t *a, const int32_t *b);

/* dst = a - b; a -= b. */
JORM_API int32_t *jorm_vec__sub(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__sub_$S(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub_$S(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub_$L(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub_$LS(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__sub_$I(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__sub_$IS(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub_$I(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub_$IS(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub_$IL(uint32_t word, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_sub_$ILS(uint32_t word, int32_t *a, const int32_t *b);

/* dst = b - a; a = b - a. */
JORM_API int32_t *jorm_vec__rsb(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__rsb_$S(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb_$S(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb_$L(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb_$LS(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__rsb_$I(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__rsb_$IS(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb_$I(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb_$IS(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb_$IL(uint32_t word, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_rsb_$ILS(uint32_t word, int32_t *a, const int32_t *b);

/* dst = min(a, b); a = min(a, b). Signed. */
JORM_API int32_t *jorm_vec__min(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__min_$S(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min_$S(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min_$L(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min_$LS(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__min_$I(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__min_$IS(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min_$I(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min_$IS(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min_$IL(uint32_t word, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_min_$ILS(uint32_t word, int32_t *a, const int32_t *b);

/* dst = max(a, b); a = max(a, b). Signed. */
JORM_API int32_t *jorm_vec__max(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__max_$S(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max_$S(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max_$L(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max_$LS(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__max_$I(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec__max_$IS(int32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max_$I(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max_$IS(uint32_t n, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max_$IL(uint32_t word, int32_t *a, const int32_t *b);
JORM_API int32_t *jorm_vec_max_$ILS(uint32_t word, int32_t *a, const int32_t *b);

/* 1 when every slot of a equals that of b (or there is no slot), else 0. */
JORM_API int32_t jorm_vec__equal(int32_t n, const int32_t *a, const int32_t *b);
JORM_API int32_t jorm_vec__equal_$S(int32_t n, const int32_t *a, const int32_t *b);
JORM_API int32_t jorm_vec_equal(uint32_t n, const int32_t *a, const int32_t *b);
JORM_API int32_t jorm_vec_equal_$S(uint32_t n, const int32_t *a, const int32_t *b);
JORM_API int32_t jorm_vec_equal_$L(uint32_t word, const int32_t *a, const int32_t *b);
JORM_API int32_t jorm_vec_equal_$LS(uint32_t word, const int32_t *a, const int32_t *b);

/* 1 when every slot is 0, else 0. */
JORM_API int32_t jorm_vec__equal0(int32_t n, const int32_t *v);
JORM_API int32_t jorm_vec__equal0_$S(int32_t n, const int32_t *v);
JORM_API int32_t jorm_vec_equal0(uint32_t n, const int32_t *v);
JORM_API int32_t jorm_vec_equal0_$S(uint32_t n, const int32_t *v);
JORM_API int32_t jorm_vec_equal0_$L(uint32_t word, const int32_t *v);
JORM_API int32_t jorm_vec_equal0_$LS(uint32_t word, const int32_t *v);

/* The byte offset of an index: the sum of index[i] * stride[i], 0 when either vector is null. */
JORM_API int64_t jorm_vec__mkloff(int32_t n, const int32_t *index, const int32_t *stride);
JORM_API int64_t jorm_vec_mkloff(uint32_t n, const int32_t *index, const int32_t *stride);
JORM_API int64_t jorm_vec_mkloff_$L(uint32_t word, const int32_t *index, const int32_t *stride);
JORM_API int64_t jorm_vec_mkloff_$LS(uint32_t word, const int32_t *index, const int32_t *stride);

/* Folds a byte offset into an index: from the outermost slot on, every slot with a stride other than 0 takes
 * loff / stride (truncated) and leaves loff % stride to the next. A rest smaller than the innermost stride is lost. */
JORM_API int32_t *jorm_vec__update_$loff(int32_t n, int32_t *index, const int32_t *stride, int64_t loff);
JORM_API int32_t *jorm_vec_update_$loff(uint32_t n, int32_t *index, const int32_t *stride, int64_t loff);
JORM_API int32_t *jorm_vec_update_$loff$L(uint32_t word, int32_t *index, const int32_t *stride, int64_t loff);

/* The same into a zeroed vector: the index of a byte offset. */
JORM_API int32_t *jorm_vec__fromloff(int32_t n, int32_t *dst, const int32_t *stride, int64_t loff);
JORM_API int32_t *jorm_vec_fromloff(uint32_t n, int32_t *dst, const int32_t *stride, int64_t loff);
JORM_API int32_t *jorm_vec_fromloff_$L(uint32_t word, int32_t *dst, const int32_t *stride, int64_t loff);

/* Boxes.
 *
 * The intersection of two boxes of n slots: origin = the larger origin, size = the smaller end - origin, which is not
 * positive in a slot where the boxes do not meet. The result is 1 when n >= 1 and every size is above 0, else 0. Either
 * output may be null or one of the inputs; the I form overwrites the first box. */
JORM_API int32_t jorm_intersec(int32_t n, int32_t *out_origin, int32_t *out_size, const int32_t *origin,
                               const int32_t *size, const int32_t *other_origin, const int32_t *other_size);
JORM_API int32_t jorm_intersecI(int32_t n, int32_t *origin, int32_t *size, const int32_t *other_origin,
                                const int32_t *other_size);

/* Sites of arrays. All return the site, null when the array or the site is null. A count n tells how many spatial slots
 * are in use, the inner ones; outside 1 to 3 it means 3. */

/* The whole array: origin 0, size = extent (slot 3 the channel code as it is). The counted form sets the size of unused
 * leading slots to 1. */
JORM_API jorm_site *jorm_arr_siteof(const jorm_array *a, jorm_site *site);
JORM_API jorm_site *jorm_arr__siteof(const jorm_array *a, int32_t n, jorm_site *site);

/* The buffer of which `a` is a view, in coordinates of the view: origin = -(index of loff), size = parent_extent. */
JORM_API jorm_site *jorm_arr_parsiteof(const jorm_array *a, jorm_site *site);

/* What is left of the array from a start point on, in the spatial slots: the array met with itself moved to `at`. An
 * at[i] >= 0 gives origin at[i] and size extent[i] - at[i], a negative one origin 0 and size extent[i] + at[i]; beyond
 * the array the size is not positive. Null `at`: the whole array. `at` begins at the first used slot; the g2 form has
 * at = (0, y, x). The channel slot is that of jorm_arr_siteof. */
JORM_API jorm_site *jorm_arr_siteofAt(const jorm_array *a, jorm_site *site, const int32_t *at);
JORM_API jorm_site *jorm_arr_siteofAt_$g2(const jorm_array *a, jorm_site *site, int32_t y, int32_t x);
JORM_API jorm_site *jorm_arr__siteofAt(const jorm_array *a, int32_t n, jorm_site *site, const int32_t *at);

/* The whole array with the number of stored channels in slot 3, met in all four slots with `roi` unless that is null.
 * jorm_arr_adjustRoi takes a null `roi` for the site itself, its I form always does. */
JORM_API jorm_site *jorm_arr_adjorgetRoi(const jorm_array *a, jorm_site *site, const jorm_site *roi);
JORM_API jorm_site *jorm_arr_adjustRoi(const jorm_array *a, jorm_site *site, const jorm_site *roi);
JORM_API jorm_site *jorm_arr_adjustRoi_$I(const jorm_array *a, jorm_site *site);

/* Negotiates the common region of two arrays. site_a: jorm_arr_adjorgetRoi of `a` and roi_a; site_b: jorm_arr_siteofAt
 * of `b` and at_b; then, in the n spatial slots, both get the smaller of the two sizes. The result is 1 when these
 * sizes are all above 0, else 0. The channel slots are left for the caller to compare. */
JORM_API int32_t jorm_arr_negotiateRoi(const jorm_array *a, const jorm_array *b, jorm_site *site_a, jorm_site *site_b,
                                       const jorm_site *roi_a, const int32_t *at_b, int32_t n);

/* The same for regions in proportion. Each site is jorm_arr_adjorgetRoi with its own optional region; an empty one
 * gives 0. scale[i], one factor for each of the four slots, is the size of `a` per unit of `b`; an entry of about 0 (up
 * to the epsilon of single precision) is replaced by the proportion of the two sizes. Where `a` is larger than its
 * part, size_b * scale rounded up, it becomes that product rounded to nearest (ties to even); where it is smaller than
 * the product rounded down, `b` becomes size_a / scale rounded likewise. The result is 0 when a size so changed is not
 * above 0, else 1. Null `scale`: all 0. */
JORM_API int32_t jorm_arr_negotiateRoiEx(const jorm_array *a, const jorm_array *b, jorm_site *site_a, jorm_site *site_b,
                                         double *scale, const jorm_site *roi_a, const jorm_site *roi_b, int32_t n);

/* May the memory of two regions overlap? -1 (all bits set) when it may, 0 when it cannot.
 *
 * The test is coarse. Disjoint are regions whose address ranges, from the first element s on to s + the offset of the
 * size vector, do not meet. Otherwise regions with rows of different strides count as overlapping, and of the others
 * only the first rows are compared: disjoint when they do not meet. So two regions of one buffer that begin in
 * different rows count as disjoint even where their later rows meet, and negative strides can hide an overlap; look
 * closer where that matters. Null sites mean the whole arrays; in the LS forms a null vector counts as zeros. */
JORM_API int32_t jorm_arr_overlapped(const jorm_array *a, const jorm_array *b, const jorm_site *site_a,
                                     const jorm_site *site_b);
JORM_API int32_t jorm_xoverlappedLS(uint32_t word_a, const void *base_a, int32_t loff_a, const int32_t *origin_a,
                                    const int32_t *size_a, const int32_t *stride_a, uint32_t word_b, const void *base_b,
                                    int32_t loff_b, const int32_t *origin_b, const int32_t *size_b,
                                    const int32_t *stride_b);
JORM_API int32_t jorm_overlappedLS(uint32_t word, const int32_t *size, const void *base_a, const int32_t *origin_a,
                                   const int32_t *stride_a, const void *base_b, const int32_t *origin_b,
                                   const int32_t *stride_b);

/* An index in the view becomes one in the buffer: copies it, folds loff into it and returns base, so that the element
 * is at base + jorm_vec_mkloff(dst, stride). topcs: the last n of the array's slots (4 at most). pt2pcs: `point` is a
 * row and a pixel, dst has all four slots. A null index or point counts as zeros. */
JORM_API void *jorm_arr_topcs(const jorm_array *a, uint32_t n, int32_t *dst, const int32_t *index);
JORM_API void *jorm_arr_pt2pcs(const jorm_array *a, int32_t *dst, const int32_t *point);

/* Making arrays, views and regions: what most callers need. Each returns a status (JORM_EINVAL for null pointers; `out`
 * is then untouched) and allocates nothing.
 *
 * make: memory of the caller of `rows` rows of `pixels` pixels of `channels` elements, three axes; make4: the same in
 * planes, four axes. `base` is the first element of the first row (of the first plane). Strides are bytes from one row
 * or plane to the next; 0 means dense, a negative row stride that the rows go upward in memory (then dense planes still
 * follow each other downward). JORM_EINVAL for a type without a size, an extent below 1, channels outside 1 to 4, and a
 * stride that does not fit 32 bits or is no multiple of the element's size. Memory that the library only reads may be
 * constant.
 *
 *     jorm_array picture, part, green;
 *     jorm_array_make(&picture, JORM_U8, 480, 640, 3, 0, pixels);
 *     jorm_array_sub(&part, &picture, 100, 200, 50, 60);      rows 100 to 149, pixels 200 to 259
 *     jorm_array_channel(&green, &part, 1);                   of them the second channel
 */
JORM_API int64_t jorm_array_make(jorm_array *out, uint32_t eltype, int32_t rows, int32_t pixels, int32_t channels,
                                 int64_t row_stride, const void *base) JORM_KEEPS(7);
JORM_API int64_t jorm_array_make4(jorm_array *out, uint32_t eltype, int32_t planes, int32_t rows, int32_t pixels,
                                  int32_t channels, int64_t plane_stride, int64_t row_stride, const void *base)
    JORM_KEEPS(9);

/* Views of an array; `out` may be `a`. They know their parent as long as 32 bits of loff can tell where in it they lie;
 * otherwise `base` is their first element and they count as whole arrays.
 *
 * sub: the rectangle of h rows and w pixels from row y, pixel x on, cut to the array, of all planes and channels;
 * JORM_EEMPTY when nothing is left. channel: one channel as an array of one channel; JORM_EINVAL outside the stored
 * ones. flip: the same pixels with the rows (vertical not 0), the pixels of each row (horizontal not 0), or both in
 * reversed order, by negative strides; JORM_EINVAL for an empty array. */
JORM_API int64_t jorm_array_sub(jorm_array *out, const jorm_array *a, int32_t y, int32_t x, int32_t h, int32_t w);
JORM_API int64_t jorm_array_channel(jorm_array *out, const jorm_array *a, int32_t channel);
JORM_API int64_t jorm_array_flip(jorm_array *out, const jorm_array *a, int32_t vertical, int32_t horizontal);

/* A region: that rectangle of all planes and channels. Returns `out`. */
JORM_API jorm_site *jorm_site_make(jorm_site *out, int32_t y, int32_t x, int32_t h, int32_t w);

/* Sub-arrays and descriptors.
 *
 * A view of the part `site` of an array: base, strides, type and parent_extent are kept, loff moves to the first
 * element of the part, extent becomes its size. The sar forms cut the site to the array, an empty cut gives extents 0;
 * the _sar forms take the site as it is, which may reach into the parent around the view. A site may narrow the
 * channels; all channels keep their code. A null site is the whole array. An array with loff 0 and parent_extent 0
 * counts as a whole buffer. `out` may be `a`. Returns `out`, or null with nothing written when an offset does not fit
 * 32 bits. */
JORM_API jorm_array *_jorm_array__$sar(jorm_array *out, const jorm_array *a, const jorm_site *site);
JORM_API jorm_array *_jorm_array__$sar$I(jorm_array *a, const jorm_site *site);
JORM_API jorm_array *_jorm_array__$_sar(jorm_array *out, const jorm_array *a, const jorm_site *site);
JORM_API jorm_array *_jorm_array__$_sar$I(jorm_array *a, const jorm_site *site);

/* A descriptor of memory of the caller that is no view. extent and stride have ndims entries, the last one that of the
 * channels: {480, 640, 3} for the picture above. Null stride: dense. Unused leading slots get extent 1, stride 0.
 * Returns `out`, or null with nothing written when ndims is outside 1 to 4, an extent is negative, or a dense layout
 * has no element size or a stride beyond 32 bits. */
JORM_API jorm_array *_jorm_array__$xtrn(jorm_array *out, uint32_t eltype, int32_t ndims, const int32_t *extent,
                                        const int32_t *stride, void *base);

/* Strides, padding, counts. e is an extent vector, s a stride vector, both of n slots, the last one that of the
 * channels. A slot that a short (or null) vector does not have counts as 0. */

/* s[n-1]; s[n-2]; s[n-3], 0 when n < 3; the same, but e[n-2] * s[n-2] when n < 3. */
JORM_API int32_t jorm__elstride(int32_t n, const int32_t *s);
JORM_API int32_t jorm_elstride(uint32_t n, const int32_t *s);
JORM_API int32_t jorm__pixstride(int32_t n, const int32_t *s);
JORM_API int32_t jorm_pixstride(uint32_t n, const int32_t *s);
JORM_API int32_t jorm__rowstride(int32_t n, const int32_t *s);
JORM_API int32_t jorm_rowstride(uint32_t n, const int32_t *s);
JORM_API int32_t jorm__rowstride2(int32_t n, const int32_t *e, const int32_t *s);
JORM_API int32_t jorm_rowstride2(uint32_t n, const int32_t *e, const int32_t *s);

/* Bytes between what is stored and the next of its kind. Elements: always 0. Pixels: s[n-2] - channels * s[n-1]. Rows:
 * s[n-3] - e[n-2] * s[n-2], where s[n-3] is 0 when n < 3. */
JORM_API int32_t jorm_elpadding(void);
JORM_API int32_t jorm__pixpadding(int32_t n, const int32_t *e, const int32_t *s);
JORM_API int32_t jorm_pixpadding(uint32_t n, const int32_t *e, const int32_t *s);
JORM_API int32_t jorm__rowpadding(int32_t n, const int32_t *e, const int32_t *s);
JORM_API int32_t jorm_rowpadding(uint32_t n, const int32_t *e, const int32_t *s);

/* e[n-3], 1 when n < 3; the number of channels that e[n-1] stores. */
JORM_API int32_t jorm_volume__height(int32_t n, const int32_t *e);
JORM_API int32_t jorm_volume_height(uint32_t n, const int32_t *e);
JORM_API int32_t jorm_volume__nchannels(int32_t n, const int32_t *e);
JORM_API int32_t jorm_volume_nchannels(uint32_t n, const int32_t *e);

/* The product of all n slots (capacity), or of the first n - 1 (pixcap, the pixels), in arithmetic that wraps at 32
 * bits; e[0] alone when there is at most one slot to multiply. The Q forms give 0 when one of the slots is negative, 1
 * when there is none. */
JORM_API int32_t jorm_volume__capacity(int32_t n, const int32_t *e);
JORM_API int32_t jorm_volume_capacity(uint32_t n, const int32_t *e);
JORM_API int32_t jorm_volume__capacity_$Q(int32_t n, const int32_t *e);
JORM_API int32_t jorm_volume_capacity_$Q(uint32_t n, const int32_t *e);
JORM_API int32_t jorm_volume__pixcap(int32_t n, const int32_t *e);
JORM_API int32_t jorm_volume_pixcap(uint32_t n, const int32_t *e);
JORM_API int32_t jorm_volume__pixcap_$Q(int32_t n, const int32_t *e);
JORM_API int32_t jorm_volume_pixcap_$Q(uint32_t n, const int32_t *e);

/* 1 when one of the n slots is not above 0, else 0; 0 when n < 1. */
JORM_API int32_t jorm_volume__empty(int32_t n, const int32_t *e);
JORM_API int32_t jorm_volume_empty(uint32_t n, const int32_t *e);

/* Extent vectors; all four slots are written, v is returned. The numbered forms end with a channel code, the g forms
 * have one channel: (1,1,1,1), (1,1,1,c), (1,1,w,c), (1,h,w,c), (1,1,w,1), (1,h,w,1), (d,h,w,1). */
JORM_API int32_t *_jorm_Nvolume__$(int32_t *v);
JORM_API int32_t *_jorm_Nvolume__$1(int32_t *v, int32_t c);
JORM_API int32_t *_jorm_Nvolume__$2(int32_t *v, int32_t w, int32_t c);
JORM_API int32_t *_jorm_Nvolume__$3(int32_t *v, int32_t h, int32_t w, int32_t c);
JORM_API int32_t *_jorm_Nvolume__$g1(int32_t *v, int32_t w);
JORM_API int32_t *_jorm_Nvolume__$g2(int32_t *v, int32_t h, int32_t w);
JORM_API int32_t *_jorm_Nvolume__$g3(int32_t *v, int32_t d, int32_t h, int32_t w);

/* Pointers.
 *
 * p + off; p + off + the offset of an index. In the last form pt is a row and a pixel, s their two strides. */
JORM_API void *jorm_advance_ptr(const void *p, int32_t off);
JORM_API void *jorm_base_advance(const void *p, int64_t off, uint32_t n, const int32_t *index, const int32_t *s);
JORM_API void *jorm_base_advance_$L(const void *p, int64_t off, uint32_t word, const int32_t *index, const int32_t *s);
JORM_API void *jorm_base_advance_$LS(const void *p, int64_t off, uint32_t word, const int32_t *index, const int32_t *s);
JORM_API void *jorm_base_at_$2d$pt(const void *p, int64_t off, const int32_t *pt, const int32_t *s);

/* Completes the strides of a layout and returns the bytes that it needs. The innermost stride is given; each further
 * one that is shorter than what lies inside it becomes that length, and a negative one, -k with k a power of two,
 * becomes the length rounded up to a multiple of k. Extents are plain counts, the channel slot too. The result adds
 * room to align the start: 32 bytes for align 1, 64 for align >= 2, none for less. 0, with nothing written, when an
 * extent or the innermost stride is below 1, a stride does not fit 32 bits, or k is no power of two. The L form takes
 * the packed count word and works on the used slots. */
JORM_API size_t jorm_vmemsize(int32_t n, const int32_t *extent, int32_t *stride, int32_t align);
JORM_API size_t jorm_vmemsizeL(uint32_t word, const int32_t *extent, int32_t *stride, int32_t align);

/* Reduces the axes of `count` arrays of one common size: neighbouring axes that follow each other without a gap in
 * every array become one, axes of size 1 vanish, and what remains moves to the last slots; the leading ones that become
 * free get size 1 and stride 0. The channel slot and at least one axis before it stay. A hint above 1 names the number
 * of inner axes that must stay as they are; a negative one keeps all. `size` and the vectors in `strides` have `slots`
 * slots and are rewritten; null entries of `strides` are skipped. Returns the number of axes left, or JORM_EINVAL when
 * slots < 1, a size is below 1, count < 0 or a needed pointer is null. */
JORM_API int64_t jorm_dims_xreduce(int32_t slots, int32_t *size, int32_t count, int32_t *const *strides, int32_t hint);

JORM_END_DOLLARS

#include "jorm/vrng.h"

#endif
