/* libJorm region trees: what a flood leaves, how it hangs together, and how to read it.
 *
 *   jorm_mser                                  jorm_fwtsres (store)                    words, one per pixel
 *   +--------------------------+               +----------------+                      of the flooded picture
 *   | regions: jorm_vector     |   dark_store  | root  ---------|--> region             +---+---+---+---+---+
 *   |   [ * * * | * * ]        | ------------> | words ---------|------ | ------------> | . | i | . | j | . |
 *   |     dark    bright       |               | storage        |       | head = i      +---+-|-+---+-^-+---+
 *   +-----|--------------------+               +----------------+       | child               +-------+
 *         |                                            | holds          v                  the list i, j, ...
 *         +------------------------------------> region --next--> region --next--> ...     of the region's pixels
 *
 * A region's area counts its descendants' pixels, its list holds only its own: those of the whole region are the lists
 * of it and of all its descendants. Words are there only when the flood was given a buffer for them.
 *
 * Who frees what
 * - regions: the store, all at once (JormFWTSRESfini). Pointers to them are good until then or until the next flood.
 * - the buffer of words: whoever gave it, after the last query.
 * - vectors (jorm_vector, zero-filled at first): the caller, _UlMfree(vector.data). Every function appends; a vector is
 *   emptied for reuse by setting count to 0. Groups of pixels and the pixels themselves are one block.
 * - gathered features own their pixel lists: JormMSERfreeFeatures, or the features' destroy.
 * Without memory, functions that append leave the vector as it is.
 *
 * Ellipses of the dark stable regions of a picture of h rows and w columns:
 *
 *     uint32_t *words = malloc(((size_t)w * h + 2 * (w + 2)) * sizeof *words);
 *     jorm_fwtsres store = {0};
 *     JormFWTSRESinit(&store, words, NULL);
 *     jorm_mser mser = {.delta = 5, .max_area_fraction = 0.25f, .max_variation = 0.5f, .dark_store = &store};
 *     jorm_mserfilt filter;
 *     _jorm_fmserfilt__$ex(&filter, 60, 0, 0);                 // at least 60 pixels
 *     jorm_vector ellipses = {0};
 *     if (JormGenerateFMSERs(xe, 0, &picture, NULL, &mser) == JORM_OK)
 *         jorm_fmserf_ellipse_$f2d(&ellipses, &mser, &filter); // ((jorm_f2d_ell *)ellipses.data)[0 .. count - 1]
 *     _UlMfree(ellipses.data), _UlMfree(mser.regions.data), JormFWTSRESfini(&store), free(words);
 *
 * Figures take pixels as points (row, column): x is the row, y the column. Null regions, vectors, words and records are
 * allowed: nothing happens, counts are 0.
 */
#ifndef JORM_REGIONTREE_H
#define JORM_REGIONTREE_H

#include "jorm/tree.h"
#include "jorm/watershed.h"

JORM_BEGIN_DOLLARS

/* ---- Regions ---- */

/* The number of children, or of all descendants when recursive is not 0 ($R). The $mser forms count only those found
 * stable; the recursive one looks through the others. */
JORM_API int32_t jorm_fwtsr_countcld(const jorm_fwtsr *region, int32_t recursive);
JORM_API int32_t jorm_fwtsr_countcld_$R(const jorm_fwtsr *region);
JORM_API int32_t jorm_fwtsr_countcld_$mser(const jorm_fwtsr *region, int32_t recursive);
JORM_API int32_t jorm_fwtsr_countcld_$mser$R(const jorm_fwtsr *region);
/* The number of own pixels: the area without that of the children. */
JORM_API int32_t jorm_fwtsr_countpix_$proper(const jorm_fwtsr *region);

enum { JORM_REGIONS_PREORDER = 1, JORM_REGIONS_INORDER = 2, JORM_REGIONS_POSTORDER = 3 };

typedef int32_t (*jorm_fwtsr_visit)(jorm_fwtsr *region, void *context, int32_t index);

/* Visits a region and its descendants, as JormAGTwalkFromNode visits nodes; but pre-order is order 1 and post-order 3
 * here. Another order, and a null region, give 0. */
JORM_API int32_t jorm_fwtsr_walk(jorm_fwtsr *region, int32_t order, jorm_fwtsr_visit callback, void *context);
JORM_API int32_t jorm_fwtsr_walk_$preorder(jorm_fwtsr *region, jorm_fwtsr_visit callback, void *context);
JORM_API int32_t jorm_fwtsr_walk_$inorder(jorm_fwtsr *region, jorm_fwtsr_visit callback, void *context);
JORM_API int32_t jorm_fwtsr_walk_$postorder(jorm_fwtsr *region, jorm_fwtsr_visit callback, void *context);

/* ---- Pixels ----
 * Pixel i of a picture of `width` columns is the pair of int32_t (i / width, i % width): row, column. */

/* Makes the seed the last pixel of the region's list. */
JORM_API void jorm_fwtsr_fixup(jorm_fwtsr *region, const uint32_t *words);

/* Append pairs to a vector: the region's own pixels in the order of its list when proper is not 0, otherwise those of
 * the region and all its descendants, region by region in pre-order. The height is not looked at; nor are the extents
 * but the second-last of ndim, the width. Return the vector. */
JORM_API jorm_vector *jorm_fwtsr_fetchpix_$2d(jorm_vector *pixels, const jorm_fwtsr *region, const uint32_t *words,
                                              int32_t proper, int32_t height, int32_t width);
JORM_API jorm_vector *jorm_fwtsr_fetchpix(jorm_vector *pixels, const jorm_fwtsr *region, const uint32_t *words,
                                          int32_t proper, int32_t ndim, const int32_t *dims);
/* Appends the pixels of the region and its descendants and returns the number of these regions; 0 when nothing was
 * appended: without area, words or memory. */
JORM_API int32_t jorm_fwtsr_pixenum_$2d(jorm_vector *pixels, const jorm_fwtsr *region, const uint32_t *words,
                                        int32_t height, int32_t width);

/* ---- Figures of groups of pixels ---- */

/* Some pixels, as pairs (row, column); at most 2147483647 of them count. */
typedef struct jorm_pixgroup {
    const int32_t *pixels;
    int64_t count;
} jorm_pixgroup;

/* For each of a vector of groups, in order, one entry is appended to `out`, which is returned. An empty group gives
 * what the named function gives for an empty point vector.
 * - brect, jorm_2d_rect: least row and column, then the spans (jorm_2d_ptv_brect)
 * - m1, jorm_r2d_moment1: means of row and column (jorm_2d_ptv_moment1)
 * - m2, jorm_r2d_moment2: means of row row, row column, column column (jorm_2d_ptv_moment2); m2c about the centroid
 * - mf, jorm_moments, gathered
 * - ellipse, jorm_f2d_ell or jorm_r2d_ell: centroid and central moments as an ellipse, k = 2; centre row first
 * - minbquad, jorm_f2d_quad or jorm_r2d_quad: rectangle of least area (jorm_2d_ptv_minbquad_$f; it needs memory for a
 *   copy of the points and is axis-parallel without) */
JORM_API jorm_vector *jorm_fwtsr_brect_$2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_m1_$2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_m2_$2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_m2c_$2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_mf_$2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_ellipse_$f2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_ellipse_$r2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_minbquad_$f2d(jorm_vector *out, const jorm_vector *groups);
JORM_API jorm_vector *jorm_fwtsr_minbquad_$r2d(jorm_vector *out, const jorm_vector *groups);

/* ---- Filters over stable regions ---- */

/* Which of the listed regions to keep, 40 bytes. All zeros keep every region; each field that is not 0 is one more
 * condition, and fields may be set one by one. */
typedef struct jorm_mserfilt {
    int32_t min_area, max_area;           /* pixels, both included */
    int32_t min_level, level_end;         /* levels as listed: from min_level up to below level_end */
    float max_variation;                  /* largest growth, by the rule of the detection */
    float min_axis_ratio, max_axis_ratio; /* shorter through longer axis of the ellipse with the region's moments: 0 a
                                           * line, 1 round or a single pixel. Without words no region passes */
    uint32_t nesting;                     /* one of the values below */
    uint32_t features;                    /* what JormGatherMSERsFeatures gathers: bits below, 0 for all */
    uint32_t reserved;
} jorm_mserfilt;
typedef jorm_mserfilt jorm_fmserfilt;

/* jorm_mserfilt::nesting. Among the regions of one list that meet all other conditions: */
enum {
    JORM_MSER_OUTERMOST = 1, /* those inside no other one */
    JORM_MSER_INNERMOST = 2  /* those with no other one inside */
};

/* Bits of jorm_mserfilt::features, with their names. */
enum {
    JORM_MSER_MOMENTS = 1, /* "moments" */
    JORM_MSER_PIXELS = 2   /* "pixels" */
};

/* Fill in a filter: all zeros; areas and variation; features by name (null for a name that is none); axis ratios. The
 * fields not named are 0. Return the filter. The fmserfilt names do the same. */
JORM_API jorm_mserfilt *_jorm_mserfilt__$(jorm_mserfilt *filter);
JORM_API jorm_mserfilt *_jorm_mserfilt__$ex(jorm_mserfilt *filter, int32_t min_area, int32_t max_area,
                                            float max_variation);
JORM_API jorm_mserfilt *_jorm_mserfilt__$feats(jorm_mserfilt *filter, const char *const *names, int32_t count);
JORM_API jorm_mserfilt *_jorm_mserfilt__$mf(jorm_mserfilt *filter, float min_axis_ratio, float max_axis_ratio);
JORM_API jorm_fmserfilt *_jorm_fmserfilt__$(jorm_fmserfilt *filter);
JORM_API jorm_fmserfilt *_jorm_fmserfilt__$ex(jorm_fmserfilt *filter, int32_t min_area, int32_t max_area,
                                              float max_variation);
JORM_API jorm_fmserfilt *_jorm_fmserfilt__$feats(jorm_fmserfilt *filter, const char *const *names, int32_t count);
JORM_API jorm_fmserfilt *_jorm_fmserfilt__$mf(jorm_fmserfilt *filter, float min_axis_ratio, float max_axis_ratio);

/* ---- Figures of stable regions ----
 * For each listed region that the filter (null: all) keeps one entry is appended, dark regions before bright ones, each
 * list in its order, so that the entries of all these functions correspond. A region is all its pixels, those of its
 * descendants included. Regions whose store has no words count as empty groups. Return `out`. */

/* The regions themselves, jorm_fwtsr *. */
JORM_API jorm_vector *jorm_fmserf_regions(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter);
/* Their pixels, jorm_pixgroup. Groups and pixels are one block in out->data: groups that are in the vector before move
 * into the new block together with their pixels, and only this function may append to it. */
JORM_API jorm_vector *jorm_fmserf_pixreg_$2d(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter);
/* jorm_fwtsr_brect_$2d and jorm_fwtsr_ellipse_$f2d of these groups; other figures are had the same way. */
JORM_API jorm_vector *jorm_fmserf_brect_$2d(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter);
JORM_API jorm_vector *jorm_fmserf_ellipse_$f2d(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter);

/* ---- Features of stable regions ---- */

/* Moments and pixels of a region, 96 bytes: a region block with both built-in features. A feature that was not asked
 * for, or whose region has no words, is zero. */
typedef struct jorm_mserfeats {
    jorm_wtsrgn region; /* region.node is the jorm_fwtsr */
    jorm_moments moments;
    jorm_pixlist pixels;
} jorm_mserfeats;

/* Appends a jorm_mserfeats for every region that the filter keeps, with the features it names. */
JORM_API jorm_vector *JormGatherMSERsFeatures(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter);
/* Frees the pixel lists and the vector's data; the vector is zero then. */
JORM_API void JormMSERfreeFeatures(jorm_vector *features);

/* The same for features of any kind: each gets init, all pixels of the region in one update2D, and ongather with a
 * block whose area is the region's. Null words leave it at init. The one-region forms fill memory of the caller, which
 * need not be cleared (feature->size bytes, layout->block_size bytes for a jorm_wtsrgn with its features), and return
 * it; null without memory, and then nothing is left to destroy. The list form appends a block for each of count regions
 * of one store; whoever has the blocks destroys their features. The layout's width is that of the flooded picture. */
JORM_API void *JormMSERgatherFeatureOfRegion(void *data, const jorm_wtsfeature *feature, const jorm_fwtsr *region,
                                             const uint32_t *words, int32_t width);
JORM_API void *JormMSERgatherFeaturesOfRegion(void *block, const jorm_wtslsc *layout, jorm_fwtsr *region,
                                              const uint32_t *words);
JORM_API jorm_vector *JormMSERgatherFeatures(jorm_vector *blocks, const jorm_wtslsc *layout, jorm_fwtsr *const *regions,
                                             uint64_t count, const uint32_t *words);

JORM_END_DOLLARS

#endif
