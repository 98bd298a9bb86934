/* libJorm: copies, plain, under a mask and with a border around them; fills; memory kernels.
 *
 * Region. `roi` is a site in coordinates of the destination, null for all of it. `at` is the point (four slots) where
 *   the source's region starts, null for its first element; `at_mask` the same for a mask. The operation covers what
 * all operands offer, planes included: a source that ends early shortens it. When nothing is left the status is
 *   JORM_EEMPTY. The channel slot of the region may narrow the channels; channel i of the region is then channel
 *   at[3] + i of the source, of a mask with as many channels at_mask[3] + i, and values[i] belongs to it.
 * Operands. Arrays have three or four axes and 1 to 4 channels, the same number in source and destination; a source of
 *   three axes may stand beside a destination of four. Strides may be anything: views, padded or interleaved pixels,
 *   planes of channels, negative strides. Dense data is the fast path. Elements lie at multiples of their size (else
 *   JORM_EINVAL).
 * Types. Copies move every type that has a size, the 64-bit ones included. Source and destination have the same type.
 *   Fills serve u8, s8, u16, s16, u32, s32 and f32.
 *   Ill-formed codes (0, 5 to 8, above 15) give JORM_EINVAL; code 15, which has no size, and in fills the 64-bit types
 *   JORM_ENOTSUP. Channel codes that do not store 1 to 4 channels (0, 5 to 7, 12 and more) give JORM_EINVAL in every
 *   layer; JORM_ENOTSUP never comes from channels.
 *
 * Values are arrays of double, one for each channel of the region, from its first one on; null stands for zeros. They
 *   are converted by jorm_mkifillvalv16 (jorm/shapes.h): rounded to nearest even, clamped to the type.
 *
 * Masks have u8 or s8 elements and either one channel, which decides about whole pixels, or as many as the image, which
 *   decide one by one. A mask selects where its byte differs from 0; with JORM_OPT_MASK_INVERT, where it differs from
 *   255.
 *
 * Overlap. Copies behave as if the source, and the mask, were read before anything is written, whatever the layouts. A
 *   null source means the destination; with a null `at` its region then starts at the origin of `roi`. A source given
 *   as the destination itself starts at its first element when `at` is null (see jorm/arith.h, also for negative
 *   starts).
 *
 * Environment. Null will do, except for overlaps that no order of copying gets right (mirroring in place, an overlap
 *   under a mask): these take scratch memory of the size of the region, JormCopy only of a row where rows do not get in
 *   each other's way. Null then gives JORM_EINVAL, no memory JORM_ENOMEM; that is known before anything is written.
 * Statuses, in this order: JORM_EINVAL (null or bad descriptor, disagreeing operands or types, a bad mask),
 * JORM_EEMPTY, JORM_EINVAL for an ill-formed type, JORM_ENOTSUP for one that is not served, then the statuses of
 * scratch memory. Nothing is written unless the status is JORM_OK.
 */
#ifndef JORM_COPY_H
#define JORM_COPY_H

#include "jorm/shapes.h"
#include "jorm/types.h"

/* ---- Copy ---- */

/* dst = src. */
JORM_API int64_t JormCopy(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const jorm_site *roi, const int32_t *at);
/* dst = src where the mask selects; the rest stays. */
JORM_API int64_t JormCopyEx(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const jorm_array *mask, const jorm_site *roi, const int32_t *at, const int32_t *at_mask);

/* A block of an image that may reach outside. The block has the size of the destination's region and begins at `at`,
 * which may be negative: pixel i of the region is pixel at + i of the image, which `border` continues beyond its edges
 * (see the modes in jorm/shapes.h), however far. Mirror images repeat: with a period of 2n pixels, of 2n - 2 where the
 * edge is not repeated (an image of one pixel then repeats it). With JORM_BORDER_NUL the pixels that exist are copied
 * to their places and the others stay. The image is the source array as described, not the parent of a view; in
 * JormCopyRMkb only what `src_roi` (null: all) leaves of it, in coordinates of the source. Planes are not made up:
 * those that exist are copied, each with a border of its own.
 *
 * Source and destination have the same number of axes. The block must meet the image on every axis (JORM_EEMPTY); after
 * that a null border and an unknown mode give JORM_EINVAL. Constants of 64-bit elements give JORM_ENOTSUP.
 * When the image stands in the block already, in its place, nothing but the border is written. */
JORM_API int64_t JormCopyMkb(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const int32_t *at, const jorm_border *border);
JORM_API int64_t JormCopyRMkb(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const jorm_site *roi, const int32_t *at, const jorm_border *border,
                              const jorm_site *src_roi);

/* ---- Fill ---- */

/* dst = values; dst = values where the mask selects, the rest stays; the same with other values for the rest. */
JORM_API int64_t JormFill(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_site *roi,
                          const double *values);
JORM_API int64_t JormFillEx(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *mask,
                            const jorm_site *roi, const int32_t *at_mask, const double *values);
JORM_API int64_t JormFillEx2(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *mask,
                             const jorm_site *roi, const int32_t *at_mask, const double *values,
                             const double *other_values);

/* ---- Below the entries ----
 *
 * Flat, negotiated arguments: a packed count word, a size vector (the last slot the channels), and for each operand its
 * type, pointer and byte strides; vectors at their first used slot. Words of two (one row) and three used slots serve;
 * four give JORM_ENOTSUP. Null pointers and a bad word or channel code give JORM_EINVAL, then types as above.
 *
 * Per-slice entries and dispatchers take start pointers, adapters a base and an origin: their origins and strides are
 * parts of vectors of four slots, whose unused slots are read too. Names with em take a mask of as many channels as the
 * image, names with xm one of one channel. Plain copies look after overlaps here too; masked ones and fills want a
 * source or a mask that is the destination itself or apart from it. */

/* The kernel of copies is told no type: the channel stride of the destination is the size of an element (1, 2, 4 or 8,
 * else JORM_EINVAL). */
JORM_API int64_t jorma__copy(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                             const int32_t *dst_stride, const void *src, const int32_t *src_stride);
JORM_API int64_t jorma_copy(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                            void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                            const void *src, const int32_t *src_origin, const int32_t *src_stride);
JORM_API int64_t JormTGAcopy(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                             uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                             const void *src, const int32_t *src_stride); /* params is not read */

JORM_API int64_t jorma__copyem(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                               void *dst, const int32_t *dst_stride, uint32_t src_type, const void *src,
                               const int32_t *src_stride, uint32_t mask_type, const void *mask,
                               const int32_t *mask_stride);
JORM_API int64_t jorma__copyxm(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                               void *dst, const int32_t *dst_stride, uint32_t src_type, const void *src,
                               const int32_t *src_stride, uint32_t mask_type, const void *mask,
                               const int32_t *mask_stride);
JORM_API int64_t jorma_copyem(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                              void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                              const void *src, const int32_t *src_origin, const int32_t *src_stride, uint32_t mask_type,
                              const void *mask, const int32_t *mask_origin, const int32_t *mask_stride);
JORM_API int64_t jorma_copyxm(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                              void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                              const void *src, const int32_t *src_origin, const int32_t *src_stride, uint32_t mask_type,
                              const void *mask, const int32_t *mask_origin, const int32_t *mask_stride);
/* What the packed call of JormCopyEx runs; `params` is a block of its own making. */
JORM_API int64_t JormTGAcopyEx(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                               uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                               const void *src, const int32_t *src_stride, uint32_t mask_type, const void *mask,
                               const int32_t *mask_stride);

/* Copies with a border: `src` is the image's first pixel, src_size its size, `at` the block's origin in it. `size` is
 * that of the block. jorma__copymkb goes by the mode of the border, the others by their own (the constant one reads the
 * values). The image may be the inside of the block itself; other overlaps are unspecified. */
typedef int64_t jorm_mkb_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                void *dst, const int32_t *dst_stride, uint32_t src_type, const void *src,
                                const int32_t *src_stride, const int32_t *at, const int32_t *src_size,
                                const jorm_border *border);
JORM_API jorm_mkb_kernel jorma__copymkb, jorma__copymkb_const, jorma__copymkb_replicate, jorma__copymkb_wrap,
    jorma__copymkb_reflect, jorma__copymkb_reflect101;
JORM_API int64_t jorma_copymkb(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                               void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                               const void *src, const int32_t *src_origin, const int32_t *src_stride, const int32_t *at,
                               const int32_t *src_size, const jorm_border *border);
typedef struct jorm_mkbparams {
    const jorm_border *border;
    const int32_t *at, *src_size; /* at their first used slot */
} jorm_mkbparams;
JORM_API int64_t JormTGAcopymkb(jorm_xe *xe, uint64_t options, const jorm_mkbparams *params, uint32_t word,
                                const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_stride,
                                uint32_t src_type, const void *src, const int32_t *src_stride);

/* Fills. The do names are the kernels that the dispatchers run. */
typedef int64_t jorm_fill_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                 void *dst, const int32_t *dst_stride, const double *values);
typedef int64_t jorm_masked_fill_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                        uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t mask_type,
                                        const void *mask, const int32_t *mask_stride, const double *values);
typedef int64_t jorm_masked_fill2_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                         uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t mask_type,
                                         const void *mask, const int32_t *mask_stride, const double *values,
                                         const double *other_values);
JORM_API jorm_fill_kernel jorma__fill, jorma__dofill;
JORM_API jorm_masked_fill_kernel jorma__fillem, jorma__fillxm, jorma__dofillem, jorma__dofillxm;
JORM_API jorm_masked_fill2_kernel jorma__fillem2, jorma__fillxm2, jorma__dofillem2, jorma__dofillxm2;

typedef int64_t jorm_masked_fill_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                         uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                         const int32_t *dst_stride, uint32_t mask_type, const void *mask,
                                         const int32_t *mask_origin, const int32_t *mask_stride, const double *values);
typedef int64_t jorm_masked_fill2_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                          uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                          const int32_t *dst_stride, uint32_t mask_type, const void *mask,
                                          const int32_t *mask_origin, const int32_t *mask_stride, const double *values,
                                          const double *other_values);
JORM_API int64_t jorma_fill(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                            void *dst, const int32_t *dst_origin, const int32_t *dst_stride, const double *values);
JORM_API jorm_masked_fill_adapter jorma_fillem, jorma_fillxm;
JORM_API jorm_masked_fill2_adapter jorma_fillem2, jorma_fillxm2;
JORM_API int64_t JormTGAfill(jorm_xe *xe, uint64_t options, const double *values, uint32_t word, const int32_t *size,
                             uint32_t dst_type, void *dst, const int32_t *dst_stride);
/* What the packed calls of JormFillEx and JormFillEx2 run; `params` is a block of their own making. */
JORM_API int64_t JormTGAfillEx(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                               uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t mask_type,
                               const void *mask, const int32_t *mask_stride);

/* ---- Memory kernels ----
 *
 * Functions on raw memory, strides in bytes, which may be negative. Null pointers: nothing happens, and searches and
 * hashes answer as for an empty input. */

/* Fills rows of row_bytes bytes: byte i of every row is pattern[i % (4 * channels)], channels 1 to 4, so that a vector
 * of jorm_mkifillvalv16 repeats in whole pixels. The form without rows fills one. */
JORM_API void C_jorm_bfill2d(void *dst, int64_t row_stride, int32_t rows, int64_t row_bytes, int32_t channels,
                             const void *pattern);
JORM_API void C_jorm_bfill(void *dst, int64_t bytes, int32_t channels, const void *pattern);
/* Copies rows of row_bytes bytes. With equal strides, rows that overlap are copied as if all were read first. */
JORM_API void C_jorm_bcopy2d(void *dst, int64_t dst_stride, const void *src, int64_t src_stride, int32_t rows,
                             int64_t row_bytes);

/* The position, column + row * row_len modulo 2^32, of the first element that equals (memelem) or differs from
 * (memcelem) the value, row by row; 0xFFFFFFFF without one. The value is converted like a fill value (300 in s8
 * searches for 127). Types that fills do not serve have no matches. The S forms are the same functions. */
JORM_API uint32_t jorm_memelem2d(uint32_t type, const void *base, int64_t row_stride, int32_t rows, int32_t row_len,
                                 double value);
JORM_API uint32_t jorm_memelem2dS(uint32_t type, const void *base, int64_t row_stride, int32_t rows, int32_t row_len,
                                  double value);
JORM_API uint32_t jorm_memcelem2d(uint32_t type, const void *base, int64_t row_stride, int32_t rows, int32_t row_len,
                                  double value);
JORM_API uint32_t jorm_memcelem2dS(uint32_t type, const void *base, int64_t row_stride, int32_t rows, int32_t row_len,
                                   double value);

/* The hash of the object-file format ELF, with bytes taken as signed numbers: h = (h << 4) + c; g = h & 0xF0000000;
 * h ^= g | g >> 24, from h = 0. The string forms end at the zero byte, the n form after `max` bytes at the latest. */
JORM_API uint32_t jorm_bhash(const void *bytes, size_t count);
JORM_API uint32_t jorm_bcshash(const char *s);
JORM_API uint32_t jorm_bcsnhash(const char *s, size_t max);

/* Tables of comparisons of u8 data: 256 bytes for each of 1 to 4 channels, entry v of channel c at 256 * c + v. It is
 * the channel's true value where v stands in the relation `op` (3 equal, 4 less, 5 less or equal, 6 greater, 7 greater
 * or equal; only the low four bits count, others hold nowhere) to the channel's constant, else the false value; in the
 * second form, where both relations hold. Constants and values are converted like u8 fill values; null true values are
 * 255, null false values 0. JORM_EINVAL, with nothing written, for a null table or constants and a bad count. */
JORM_API int64_t jorm_mkcmpxlatab(void *table, uint32_t op, const double *constants, const double *true_values,
                                  const double *false_values, int32_t channels);
JORM_API int64_t jorm_mkcmpxlatab2(void *table, uint32_t op1, uint32_t op2, const double *constants1,
                                   const double *constants2, const double *true_values, const double *false_values,
                                   int32_t channels);
/* Translates rows of row_len bytes: byte i by the table of channel i % channels. dst may be src. */
JORM_API void jorm_xlat2d_u8(void *dst, int64_t dst_stride, const void *src, int64_t src_stride, int32_t rows,
                             int32_t row_len, int32_t channels, const void *table);

/* Vectors of n elements. dst may be a source.
 *
 * dst[i] = src[i] + c, src[i] - c, c - src[i], src[i] * c, src[i] / c, c / src[i], with c = pattern16[i % 4]. */
JORM_API void C_jorm_addvcf(float *dst, const float *src, const float *pattern16, size_t n);
JORM_API void C_jorm_subvcf(float *dst, const float *src, const float *pattern16, size_t n);
JORM_API void C_jorm_rsubvcf(float *dst, const float *src, const float *pattern16, size_t n);
JORM_API void C_jorm_mulvcf(float *dst, const float *src, const float *pattern16, size_t n);
JORM_API void C_jorm_divvcf(float *dst, const float *src, const float *pattern16, size_t n);
JORM_API void C_jorm_rdivvcf(float *dst, const float *src, const float *pattern16, size_t n);
/* The sum, modulo the type, and the absolute difference of unsigned elements of 8 and 16 bits. */
JORM_API void C_jorm_addLE256_8(void *dst, const void *a, const void *b, size_t n);
JORM_API void C_jorm_addLE256_16(void *dst, const void *a, const void *b, size_t n);
JORM_API void C_jorm_subaLE256_8(void *dst, const void *a, const void *b, size_t n);
JORM_API void C_jorm_subaLE256_16(void *dst, const void *a, const void *b, size_t n);
/* The largest and the smallest element. NaN is passed over. Without an element: 0 and 255, -infinity and infinity. */
JORM_API uint8_t C_jorm_maxu8_n(const uint8_t *src, size_t n);
JORM_API uint8_t C_jorm_minu8_n(const uint8_t *src, size_t n);
JORM_API float C_jorm_maxf_n(const float *src, size_t n);
JORM_API float C_jorm_minf_n(const float *src, size_t n);
/* The sum. Of f32: in double precision, sixteen sums of every sixteenth element, which are then added in pairs (k and
 * k + 8, k and k + 4, ...). */
JORM_API int64_t C_jorm_sumu8_n(const uint8_t *src, size_t n);
JORM_API int64_t C_jorm_sumi16_n(const int16_t *src, size_t n);
JORM_API double C_jorm_sumf_n(const float *src, size_t n);

#endif
