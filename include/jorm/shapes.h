/* libJorm: structuring elements, border shapes and modes, fill values, the input region of a neighbourhood operation.
 *
 * Every neighbourhood operation describes its window with these records. They are plain values: no function here
 * allocates, fails on odd numbers or keeps state. Vectors have four slots: planes, rows, columns, channels; the three
 * spatial ones matter. Where a function takes a count k and a pointer, the pointer addresses k entries that stand for
 * the last k spatial axes (k = 2: rows and columns); k above 3 counts as 3, k below 1 as none, a null pointer as
 * zeros. Forms named ..._$L take a packed count word and use its low four bits as k.
 * A function that makes or changes a record returns it; a null record gives null (0 for the tests and the fits).
 */
#ifndef JORM_SHAPES_H
#define JORM_SHAPES_H

#include "jorm/types.h"

JORM_BEGIN_DOLLARS

/* A window: where its anchor, the output pixel, lies in it and how far it extends. An operation adjusts the shape to
 * the array it runs on first: until then a negative extent means the array's size plus it, 0 means 1, and a negative
 * anchor means the extent plus it. */
typedef struct jorm_seshape {
    int32_t anchor[4]; /* slot 3: 0 */
    int32_t extent[4]; /* slot 3: 1 from constructors, 0 once adjusted */
} jorm_seshape;

/* A window with a mask, 96 bytes: elements of 255 belong to it. Without mask data (mask.base + mask.loff null) it
 * stands for the rectangle that its anchor and the mask's extent describe, like a seshape. */
typedef struct jorm_strel {
    int32_t anchor[4];
    jorm_array mask;
} jorm_strel;

/* By how much a region is widened: `low` is the offset of its new start (a margin of m in front is -m), `high` the
 * margin behind its end. Slot 3 is 0. */
typedef struct jorm_brshape {
    int32_t low[4];
    int32_t high[4];
} jorm_brshape;

typedef jorm_brshape jorm_brparm; /* the same record under the name of parameter-taking interfaces */

/* What stands beyond the edge of an image. Only the low four bits of a mode count. */
enum {
    JORM_BORDER_NUL = 0,       /* nothing: only pixels that exist may be read */
    JORM_BORDER_CONST = 3,     /* a constant per channel */
    JORM_BORDER_REPLICATE = 4, /* the nearest edge pixel */
    JORM_BORDER_WRAP = 5,      /* the image again */
    JORM_BORDER_REFLECT = 6,   /* its mirror image, the edge pixel repeated */
    JORM_BORDER_REFLECT101 = 7 /* its mirror image about the edge pixel; the mode of filters that are given none */
};

/* A border mode with its constants, 40 bytes. */
typedef struct jorm_border {
    uint32_t mode;
    uint32_t reserved;
    double values[4]; /* by channel; read only in mode JORM_BORDER_CONST */
} jorm_border;

/* Bits of the options word of neighbourhood operations. Without either, pixels of the parent image around the region
 * are read, and a border stands only where the parent image ends. */
#define JORM_OPT_NO_BORDER UINT64_C(0x1000000)  /* no border is made: the caller vouches for the pixels around */
#define JORM_OPT_OWN_BORDER UINT64_C(0x2000000) /* the border stands at the edges of the array itself */

/* ---- Windows: jorm_seshape ---- */

/* The default, 5 by 5 about its centre. */
JORM_API jorm_seshape *__jorm_seshape__$(jorm_seshape *s);
/* n columns, h rows by w columns, d planes of these; the anchor is the centre, extent / 2 toward zero. */
JORM_API jorm_seshape *__jorm_seshape__$g1(jorm_seshape *s, int32_t n);
JORM_API jorm_seshape *__jorm_seshape__$g2(jorm_seshape *s, int32_t h, int32_t w);
JORM_API jorm_seshape *__jorm_seshape__$g3(jorm_seshape *s, int32_t d, int32_t h, int32_t w);
JORM_API jorm_seshape *__jorm_seshape__$gv(jorm_seshape *s, int32_t k, const int32_t *extent);
JORM_API jorm_seshape *__jorm_seshape__$gv$L(jorm_seshape *s, uint32_t word, const int32_t *extent);
/* The anchor given as well, before the extent. */
JORM_API jorm_seshape *__jorm_seshape__$g11(jorm_seshape *s, int32_t a, int32_t n);
JORM_API jorm_seshape *__jorm_seshape__$g22(jorm_seshape *s, int32_t a1, int32_t a2, int32_t h, int32_t w);
JORM_API jorm_seshape *__jorm_seshape__$g33(jorm_seshape *s, int32_t a0, int32_t a1, int32_t a2, int32_t d, int32_t h,
                                            int32_t w);
JORM_API jorm_seshape *__jorm_seshape__$gvv(jorm_seshape *s, int32_t k, const int32_t *anchor, const int32_t *extent);
JORM_API jorm_seshape *__jorm_seshape__$gvv$L(jorm_seshape *s, uint32_t word, const int32_t *anchor,
                                              const int32_t *extent);

/* Sets the extent, 1 on axes not named. The xsetvol forms also put the anchor into the centre, like the constructors;
 * the setvol forms leave it. */
JORM_API jorm_seshape *jorm_seshape_setvol_$g1(jorm_seshape *s, int32_t n);
JORM_API jorm_seshape *jorm_seshape_setvol_$g2(jorm_seshape *s, int32_t h, int32_t w);
JORM_API jorm_seshape *jorm_seshape_setvol_$g3(jorm_seshape *s, int32_t d, int32_t h, int32_t w);
JORM_API jorm_seshape *jorm_seshape_setvol_$gv(jorm_seshape *s, int32_t k, const int32_t *extent);
JORM_API jorm_seshape *jorm_seshape_setvol_$gv$L(jorm_seshape *s, uint32_t word, const int32_t *extent);
JORM_API jorm_seshape *jorm_seshape_xsetvol_$g1(jorm_seshape *s, int32_t n);
JORM_API jorm_seshape *jorm_seshape_xsetvol_$g2(jorm_seshape *s, int32_t h, int32_t w);
JORM_API jorm_seshape *jorm_seshape_xsetvol_$g3(jorm_seshape *s, int32_t d, int32_t h, int32_t w);
JORM_API jorm_seshape *jorm_seshape_xsetvol_$gv(jorm_seshape *s, int32_t k, const int32_t *extent);
JORM_API jorm_seshape *jorm_seshape_xsetvol_$gv$L(jorm_seshape *s, uint32_t word, const int32_t *extent);

/* Puts the anchor into the centre on all three axes, the last, the last two, all three, the last k. */
JORM_API jorm_seshape *jorm_seshape_rstanchor(jorm_seshape *s);
JORM_API jorm_seshape *jorm_seshape_rstanchor_$g1(jorm_seshape *s);
JORM_API jorm_seshape *jorm_seshape_rstanchor_$g2(jorm_seshape *s);
JORM_API jorm_seshape *jorm_seshape_rstanchor_$g3(jorm_seshape *s);
JORM_API jorm_seshape *jorm_seshape_rstanchor_$gn(jorm_seshape *s, int32_t k);

/* Clears the whole record, the anchor, the extent. */
JORM_API jorm_seshape *jorm_seshape_zero(jorm_seshape *s);
JORM_API jorm_seshape *jorm_seshape_azero(jorm_seshape *s);
JORM_API jorm_seshape *jorm_seshape_vzero(jorm_seshape *s);

/* 1 when an extent is below 1; the product of the extents modulo 2^32; the same modulo 2^64, 0 when one is negative. */
JORM_API int32_t jorm_seshape_empty(const jorm_seshape *s);
JORM_API int32_t jorm_seshape_capacity(const jorm_seshape *s);
JORM_API int64_t jorm_seshape_capacity_$Q(const jorm_seshape *s);

/* Adjusts a shape to an array of the given size, axis by axis: a negative extent gets the size added (below 0: 0); an
 * extent of 0 becomes 1 with the anchor at 0. When every extent is then 1 the whole shape becomes the default 5 by 5
 * window: a 1 by 1 window never runs. A negative anchor gets the extent added; anchors end in [0, extent). Slot 3
 * becomes 0. The forms work on three axes (size: a whole four-slot vector), on rows and columns, on the last k axes;
 * with dst they copy src first, unless it is null. All return 1. */
JORM_API int32_t jorm_seshape_adjust(jorm_seshape *dst, const jorm_seshape *src, const int32_t *size);
JORM_API int32_t jorm_seshape_adjust_$I(jorm_seshape *s, const int32_t *size);
JORM_API int32_t jorm_seshape_adjust_$g2(jorm_seshape *dst, const jorm_seshape *src, int32_t h, int32_t w);
JORM_API int32_t jorm_seshape_adjust_$g2$I(jorm_seshape *s, int32_t h, int32_t w);
JORM_API int32_t jorm_seshape__adjust_$gv(jorm_seshape *dst, const jorm_seshape *src, int32_t k, const int32_t *size);
JORM_API int32_t jorm_seshape__adjust_$gv$I(jorm_seshape *s, int32_t k, const int32_t *size);

/* ---- Windows with a mask: jorm_strel ----
 * As the functions above, the mask's extent being the window's. Adjusting one that has mask data places the anchor and
 * leaves the mask as it is: a 1 by 1 mask stays 1 by 1. */
JORM_API int32_t jorm_strel_adjust(jorm_strel *dst, const jorm_strel *src, const int32_t *size);
JORM_API int32_t jorm_strel_adjust_$I(jorm_strel *s, const int32_t *size);
JORM_API int32_t jorm_strel_adjust_$g2(jorm_strel *dst, const jorm_strel *src, int32_t h, int32_t w);
JORM_API int32_t jorm_strel_adjust_$g2$I(jorm_strel *s, int32_t h, int32_t w);
JORM_API int32_t jorm_strel__adjust_$gv(jorm_strel *dst, const jorm_strel *src, int32_t k, const int32_t *size);
JORM_API int32_t jorm_strel__adjust_$gv$I(jorm_strel *s, int32_t k, const int32_t *size);
JORM_API jorm_strel *jorm_strel_rstanchor(jorm_strel *s);
JORM_API jorm_strel *jorm_strel_azero(jorm_strel *s);
JORM_API int32_t jorm_strel_empty(const jorm_strel *s);
JORM_API int32_t jorm_strel_capacity(const jorm_strel *s);
JORM_API int64_t jorm_strel_capacity_$Q(const jorm_strel *s);

/* 1 when no element of the mask differs from 255: any strides, every plane and channel. A mask without data, which
 * stands for its rectangle, is solid, and so is a null pointer; one of a type without a size is not. */
JORM_API int32_t jorm_strel_issolid_$v255(const jorm_strel *s);
JORM_API int32_t jorm_sea_issolid_v255(const jorm_array *mask);

/* ---- Borders: jorm_brshape ---- */

/* No margins; margins before and after, in this order, on the last one, two, three, k axes. */
JORM_API jorm_brshape *__jorm_brshape__$(jorm_brshape *b);
JORM_API jorm_brshape *__jorm_brshape__$g1(jorm_brshape *b, int32_t before, int32_t after);
JORM_API jorm_brshape *__jorm_brshape__$g2(jorm_brshape *b, int32_t b1, int32_t b2, int32_t a1, int32_t a2);
JORM_API jorm_brshape *__jorm_brshape__$g3(jorm_brshape *b, int32_t b0, int32_t b1, int32_t b2, int32_t a0, int32_t a1,
                                           int32_t a2);
JORM_API jorm_brshape *__jorm_brshape__$gv(jorm_brshape *b, int32_t k, const int32_t *before, const int32_t *after);
JORM_API jorm_brshape *__jorm_brshape__$gv$L(jorm_brshape *b, uint32_t word, const int32_t *before,
                                             const int32_t *after);
/* The reach of an adjusted window about its anchor: low = -anchor, high = extent - anchor - 1. */
JORM_API jorm_brshape *__jorm_brshape__$se(jorm_brshape *b, const jorm_seshape *s);
JORM_API jorm_brparm *__jorm_brparm__$se(jorm_brparm *b, const jorm_seshape *s);
/* What an outer region has more than an inner one: low = difference of the origins, high = difference of the ends. */
JORM_API jorm_brshape *__jorm_brshape__$ois(jorm_brshape *b, const jorm_site *outer, const jorm_site *inner);
JORM_API jorm_brshape *jorm_brshape__compute_$gv(jorm_brshape *b, int32_t k, const int32_t *outer_origin,
                                                 const int32_t *outer_size, const int32_t *inner_origin,
                                                 const int32_t *inner_size);
JORM_API jorm_brparm *jorm_brparm__compute_$gv(jorm_brparm *b, int32_t k, const int32_t *outer_origin,
                                               const int32_t *outer_size, const int32_t *inner_origin,
                                               const int32_t *inner_size);

JORM_API jorm_brshape *jorm_brshape_zero(jorm_brshape *b);
JORM_API jorm_brparm *jorm_brparm_zero(jorm_brparm *b);
/* 1 when no margin is left: both vectors are zero. */
JORM_API int32_t jorm_brshape_empty(const jorm_brshape *b);
JORM_API int32_t jorm_brparm_empty(const jorm_brparm *b);

/* Fits margins into the room that region a offers more than region b (only the sizes count), axis by axis. With a room
 * r below 1: low = -r, high = 0. With margins wider than r they shrink in proportion: low = low * r / (high - low),
 * rounded to nearest even in single precision, high = r + low. Returns 1 when every low is then at most 0 and every
 * high at least 0 on the axes in question. With dst the margins are copied from src first, unless it is null. */
JORM_API int32_t jorm_brshape_adjust(jorm_brshape *dst, const jorm_brshape *src, const jorm_site *a,
                                     const jorm_site *b);
JORM_API int32_t jorm_brshape__adjust_$gv(jorm_brshape *dst, const jorm_brshape *src, int32_t k,
                                          const int32_t *origin_a, const int32_t *size_a, const int32_t *origin_b,
                                          const int32_t *size_b);
JORM_API int32_t jorm_brshape__adjust_$gv$I(jorm_brshape *b, int32_t k, const int32_t *origin_a, const int32_t *size_a,
                                            const int32_t *origin_b, const int32_t *size_b);

/* Sizes widened or narrowed by a border (high - low per axis) or by a window (extent - 1 per axis), modulo 2^32. Four
 * slots; the channel slot is copied. dst may be src; a null border or window changes nothing. The $I forms work in
 * place. */
JORM_API int32_t *jorm_Nvolume_widen_$br(int32_t *dst, const int32_t *src, const jorm_brshape *b);
JORM_API int32_t *jorm_Nvolume_widen_$I$br(int32_t *v, const jorm_brshape *b);
JORM_API int32_t *jorm_Nvolume_narrow_$br(int32_t *dst, const int32_t *src, const jorm_brshape *b);
JORM_API int32_t *jorm_Nvolume_narrow_$I$br(int32_t *v, const jorm_brshape *b);
JORM_API int32_t *jorm_Nvolume_widen_$se(int32_t *dst, const int32_t *src, const jorm_seshape *s);
JORM_API int32_t *jorm_Nvolume_widen_$I$se(int32_t *v, const jorm_seshape *s);
JORM_API int32_t *jorm_Nvolume_narrow_$se(int32_t *dst, const int32_t *src, const jorm_seshape *s);
JORM_API int32_t *jorm_Nvolume_narrow_$I$se(int32_t *v, const jorm_seshape *s);

/* "nul-border", "const-border", "replicate-border", "wrap-border", "reflect-border", "reflect101-border",
 * "unknown-border". */
JORM_API const char *jorm_border_str(uint32_t mode);

/* ---- Fill values ---- */

/* n copies each of the largest and the smallest value of an element type, which fills above or below everything; for
 * f32 those of normalised intensities, 1 and 0. Either array may be null; n below 1 writes nothing. JORM_ENOTSUP for
 * u64, s64, f64 and code 15, JORM_EINVAL for what is no type code. */
JORM_API int64_t jorm_defillvals(uint32_t type, double *largest, double *smallest, int32_t n);

/* A vector of 16, 32 or 64 bytes that repeats, from its first byte on, one pixel of n (1 to 4) values converted to the
 * element type: rounded to nearest even into 32 bits (what does not fit, NaN included, is -2147483648), then clamped
 * to the type (u32 only at 0, so that 2^31 and more give 0); f32 rounds to single precision. Null `values` are zeros.
 * The two longer vectors also serve f64, unconverted, and repeat with a period of n words (f64: 2n words).
 * JORM_ENOTSUP for u64, s64, code 15 and, in 16 bytes, f64; JORM_EINVAL for what is no type code, a null `out` and any
 * other n, except that f64 in the longer vectors answers that with JORM_ENOTSUP. On failure nothing is written. */
JORM_API int64_t jorm_mkifillvalv16(uint32_t type, void *out, const double *values, int32_t n);
JORM_API int64_t jorm_mkifillvalv32(uint32_t type, void *out, const double *values, int32_t n);
JORM_API int64_t jorm_mkifillvalv64(uint32_t type, void *out, const double *values, int32_t n);

/* Widens a filled vector from 16 to 32, 16 to 64, 32 to 64 bytes: from the first 32-bit word that is not set yet to the
 * last, word[i] = word[i - p]; p is n from 16 bytes, 2n from 32. Nothing happens when p covers the vector or n < 1. */
JORM_API void jorm_dupifillvalv3216(void *vector, int32_t n);
JORM_API void jorm_dupifillvalv6416(void *vector, int32_t n);
JORM_API void jorm_dupifillvalv6432(void *vector, int32_t n);

/* One to four consecutive 32-bit words of a fill pattern from byte s (0 to 3, taken modulo 4) on: where a pixel of
 * three channels begins within a word. With s other than 0 one word more is read. */
JORM_API void jorm_readifillvals4(uint32_t *w0, const void *pattern, int32_t s);
JORM_API void jorm_readifillvals4x2(uint32_t *w0, uint32_t *w1, const void *pattern, int32_t s);
JORM_API void jorm_readifillvals4x3(uint32_t *w0, uint32_t *w1, uint32_t *w2, const void *pattern, int32_t s);
JORM_API void jorm_readifillvals4x4(uint32_t *w0, uint32_t *w1, uint32_t *w2, uint32_t *w3, const void *pattern,
                                    int32_t s);

/* ---- The input region of a neighbourhood operation ---- */

/* What a window reads when it visits a region. `work` becomes the region, `roi` or else `own`, grown by the window
 * (origin - anchor, size + extent - 1). `out` becomes the part of it that exists: cut to `parent`, with
 * JORM_OPT_OWN_BORDER to `own`. Returns 1 when nothing is cut off, so that no border has to be made. With
 * JORM_OPT_NO_BORDER `out` is the region itself, ungrown, and the result 0. `roi` is not cut first. A null window grows
 * nothing, a null parent is `own`, a null `own` or array gives 0, a null output is not written. The channel slots of
 * the outputs are those of `own`.
 *
 * The worker takes the last k axes: six vectors at their first used slot, whole records. */
JORM_API int32_t jorm_compute_roi_$se(jorm_site *out, jorm_site *work, uint64_t options, const jorm_site *roi,
                                      const jorm_seshape *s, const jorm_site *own, const jorm_site *parent);
JORM_API int32_t jorm__compute_roi_$se(uint64_t options, int32_t k, int32_t *out_origin, int32_t *out_size,
                                       int32_t *work_origin, int32_t *work_size, const int32_t *roi_origin,
                                       const int32_t *roi_size, const jorm_seshape *s, const jorm_site *own,
                                       const jorm_site *parent);
/* The same with the two sites taken from an array: its own and that of its parent buffer. */
JORM_API int32_t jorm_testfiltop_$se(jorm_site *out, jorm_site *work, uint64_t options, const jorm_site *roi,
                                     const jorm_seshape *s, const jorm_array *array);
JORM_API int32_t jorm__testfiltop_$se(uint64_t options, int32_t k, int32_t *out_origin, int32_t *out_size,
                                      int32_t *work_origin, int32_t *work_size, const int32_t *roi_origin,
                                      const int32_t *roi_size, const jorm_seshape *s, const jorm_array *array);

JORM_END_DOLLARS

#endif
