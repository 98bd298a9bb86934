/* libJorm floods: component trees of 8-bit pictures, and the maximally stable extremal regions (MSER) that they hold.
 *
 *     jorm_fwtsres store = {0};
 *     JormFWTSRESinit(&store, NULL, NULL);
 *     jorm_fwtsparams params = {&store, 0, 0, 0, 0};
 *     JormWatershed(xe, JORM_OPT_FAST, &picture, NULL, &params);    // store.root is the tree
 *     JormFWTSRESfini(&store);
 *
 *     jorm_mser mser = {0};                                         // then set the criteria
 *     JormGenerateFMSERs(xe, 0, &picture, NULL, &mser);             // mser.dark, mser.bright: the stable regions
 *     JormFWTSRESfini(mser.dark_store), JormFWTSRESfini(mser.bright_store);
 *     _UlMfree(mser.regions.data);
 *
 * What a flood finds. Water rises from the lowest grey level to the highest. At each level the connected sets of pixels
 *   (four neighbours) at or below it are its regions; with rising water they grow and merge into a tree whose root
 *   holds everything that the flood reached. A region is a record with its level, its area (descendants included) and
 *   links; children stand in the order of their taking over, the latest first.
 * Fast and standard. The fast flood (JORM_OPT_FAST in the options) makes no record of a component that has less than 16
 *   pixels when it is absorbed: its pixels count as those of the region that swallows it. The standard flood makes a
 *   record of every component, however small. Everything else is alike, and the fast one needs far less time.
 * Border. The first column of the flooded picture is a border that no region enters: it is not looked at. A picture of
 *   one column holds nothing to flood.
 * Pictures. u8, one channel, any strides, three or four axes, less than 2^27 pixels in a plane. Of four axes each plane
 *   is flooded by itself; the last one stays in the store.
 * Region. Everything is relative to the region of interest: H rows, W columns, seeds, pixel indices (row * W + column).
 * Statuses, in this order: JORM_EINVAL (null pointers, bad or disagreeing descriptors, no store), JORM_EEMPTY (no pixel
 *   in the region), JORM_ENOTSUP (elements of 16, 32 or 64 bits, 2 to 4 channels), JORM_EINVAL (other element types,
 *   too many pixels), JORM_ENOMEM. After JORM_ENOMEM the store is empty, the other refusals leave it as it was.
 * Environment. Working memory comes from it, 5 bytes for each pixel, of which the 4 that hold waiting pixels are
 * touched only as far as they are needed; with a null environment it comes from the store. */
#ifndef JORM_WATERSHED_H
#define JORM_WATERSHED_H

#include "jorm/types.h"

/* ---- Records ---- */

/* A region. `head` is the first pixel of its list of own pixels (see jorm_fwtsres), JORM_NO_PIXEL when it has none;
 * `seed` is the pixel it began with, which is the last of its list unless it took over a child. `level` is the grey
 * level as the flood saw it: inverted and shifted. */
typedef struct jorm_fwtsr {
    int32_t head, seed;
    int32_t level;
    int32_t area;                             /* pixels, those of all descendants included */
    uint32_t mser;                            /* 1 when a detection found the region stable */
    uint32_t pad;                             /* 0 */
    struct jorm_fwtsr *next, *child, *parent; /* next sibling, first child */
} jorm_fwtsr;
enum { JORM_NO_PIXEL = 0x7FFFFFFF };

/* The result of a flood, 112 bytes, zero-filled before its first JormFWTSRESinit and never moved while in use. A store
 * can be flooded any number of times; each flood replaces the one before and reuses its memory.
 *
 * With a buffer of W * H + 2 * (W + 2) words the flood also leaves every region's pixels: `words` then is the word of
 * row 0, column 0, and words[i] the pixel after pixel i in its region's list (JORM_NO_PIXEL ends it; words of the first
 * column, and of what the flood did not reach, are no pixels). Without one `words` is null. */
typedef struct jorm_fwtsres {
    jorm_fwtsr *root; /* null until a flood has ended well, and when nothing could be flooded */
    uint32_t *words, *buffer;
    void *storage;              /* where regions come from; its own when JormFWTSRESinit got none */
    uint64_t inline_storage[6]; /* where a storage of its own lives */
    uint64_t saved_state[4];    /* what JormFWTSRESfini returns a caller's storage to */
} jorm_fwtsres;

/* What to flood into, and how. */
typedef struct jorm_fwtsparams {
    jorm_fwtsres *store;
    int32_t polarity; /* 1: from bright to dark, the samples are inverted; otherwise from dark to bright */
    uint16_t shift;   /* samples are then shifted right by so many bits */
    /* Where the flood starts: column seed_column + 1 of row seed_row. Outside the picture the store stays empty. */
    int32_t seed_row, seed_column;
} jorm_fwtsparams;

/* A growable array, counted in entries; `data` comes from _UlMrealloc. */
typedef struct jorm_vector {
    uint64_t capacity, count;
    void *data;
} jorm_vector;

/* What makes a region stable, in levels as the flood saw them. */
typedef struct jorm_msercriteria {
    int32_t delta;              /* span of levels over which the growth is measured */
    int32_t min_area, max_area; /* pixels */
    float max_variation;        /* largest growth over the span, as a part of the larger area */
    float min_diversity;        /* smallest part by which a region must exceed a stable one inside it */
} jorm_msercriteria;

/* Parameters and results of a generation, 360 bytes, zero-filled before first use. */
typedef struct jorm_mser {
    int32_t delta; /* in 8-bit grey levels; shifted right by `shift` it is the span of levels */
    float min_area_fraction, max_area_fraction; /* of the picture's pixels */
    float max_variation, min_diversity;         /* as in jorm_msercriteria */
    int32_t min_area; /* pixels, used when the fraction gives 0; 9 when this is not above 0 either */
    uint32_t unused0;
    uint16_t passes; /* 0 dark regions, 1 bright regions, otherwise both */
    uint8_t shift;   /* quantisation of the grey levels */
    uint8_t unused1;
    int32_t seed_row, seed_column; /* as in jorm_fwtsparams */
    jorm_vector regions;           /* the stable regions (jorm_fwtsr *), dark before bright, inner before outer */
    uint32_t dark_count, bright_count;
    jorm_fwtsr **dark, **bright;             /* their parts of `regions` */
    int32_t volume[8];                       /* 1, H, W, 1, H * stride, stride, 1, 1: the picture that was searched */
    jorm_fwtsres *dark_store, *bright_store; /* the caller's, initialised; null: the embedded ones are put here */
    jorm_fwtsres embedded[2];
} jorm_mser;

/* ---- Result store ---- */

/* Makes a store ready: no root, no words. A null `buffer` leaves the field as it is. A storage of the caller has its
 * state saved; without one the store opens its own, unless it has one already. Returns store. */
JORM_API jorm_fwtsres *JormFWTSRESinit(jorm_fwtsres *store, void *buffer, void *storage);

/* Gives the memory back: rolls a caller's storage back to its saved state, destroys its own. The store is empty then.
 * Returns store. */
JORM_API jorm_fwtsres *JormFWTSRESfini(jorm_fwtsres *store);

/* A region without pixels or links; null without memory. */
JORM_API jorm_fwtsr *JormFWTSRESnewregion(jorm_fwtsres *store, int32_t seed, int32_t level);

/* A block from the store's storage (`align` 0 means 16; null without memory), and its return. */
JORM_API void *JormFWTSRESalloca(jorm_fwtsres *store, size_t size, size_t align);
JORM_API void JormFWTSRES_freea(jorm_fwtsres *store, void *block);

/* ---- Watershed ---- */

/* Floods a picture from the seed on. */
JORM_API int64_t JormWatershed(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_site *roi,
                               jorm_fwtsparams *params);

/* The same with a mask (null: as above) and a region given as two vectors of four slots, both null for the whole
 * picture. The mask has one channel of u8 or s8 elements and is read from the region's origin on; an element selects
 * when it differs from 0, or from 255 with JORM_OPT_MASK_INVERT.
 *
 * The mask is looked at coarsely. The flood starts at the first selected pixel from the seed on, in row-major order, or
 * from the start of the picture when there is none and the seed is not (0, 0). That pixel's column decides about whole
 * rows: a row belongs to the flood when the mask selects its element there. With the seed (0, 0), rows above the start
 * are dropped, and row 0 is the first one kept. A mask that selects nothing gives JORM_OK and an empty store. */
JORM_API int64_t JormWatershedEx(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_array *mask,
                                 const int32_t *origin, const int32_t *size, jorm_fwtsparams *params);

/* ---- Stable regions ---- */

/* Floods the picture for dark regions, bright ones or both, and lists the stable regions of each tree in mser->regions.
 * A region R is stable when its area lies within bounds and it grows little: the first ancestor at least delta levels
 * away is exactly delta levels away and larger by at most max_variation of its own area, or it is farther. Of stable
 * regions inside R those fall away that R exceeds by less than min_diversity.
 *
 * Levels of listed bright regions are those of the picture. The store fields name the stores used afterwards. On
 * failure they are null, the list is freed, and nothing is left allocated. A record that was used before can be used
 * again as it is.
 *
 * The Ex forms take mask and region like JormWatershedEx. JormGenerateMSERs runs the standard flood unless
 * JORM_OPT_FAST is set, JormGenerateFMSERs always the fast one. */
JORM_API int64_t JormGenerateFMSERs(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_site *roi,
                                    jorm_mser *mser);
JORM_API int64_t JormGenerateFMSERsEx(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_array *mask,
                                      const int32_t *origin, const int32_t *size, jorm_mser *mser);
JORM_API int64_t JormGenerateMSERs(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_site *roi,
                                   jorm_mser *mser);
JORM_API int64_t JormGenerateMSERsEx(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_array *mask,
                                     const int32_t *origin, const int32_t *size, jorm_mser *mser);

/* Appends the stable regions of a tree (null: none) to a vector of region pointers, a region after those inside it, and
 * sets or clears the regions' flags. Regions of the vector whose flag is clear afterwards are removed. What lies
 * under a region whose level is below delta is not looked at and keeps its flags. A region for which there is no memory
 * is not appended. Any depth of tree will do. Returns the vector. */
JORM_API jorm_vector *JormDetectFMSERs(jorm_vector *regions, jorm_fwtsr *root, const jorm_msercriteria *criteria);
JORM_API jorm_vector *JormDetectMSERs(jorm_vector *regions, jorm_fwtsr *root, const jorm_msercriteria *criteria);

/* (b - a) / b of two areas, or of the areas of two regions; the Abs forms without its sign. */
JORM_API float __JormMSERareaVariation(int32_t a, int32_t b);
JORM_API float __JormMSERareaVariationAbs(int32_t a, int32_t b);
JORM_API float __JormMSERregionVariation(const jorm_fwtsr *a, const jorm_fwtsr *b);
JORM_API float __JormMSERregionVariationAbs(const jorm_fwtsr *a, const jorm_fwtsr *b);

/* Records the picture that is searched: rows, columns and row stride from the last three of `ndim` extents and strides
 * (one row when there are but two). Returns mser. */
JORM_API jorm_mser *jorm_fmserf_setimvol(jorm_mser *mser, int32_t ndim, const int32_t *dims, const int32_t *strides);

/* ---- Layers below ----
 *
 * On flat arguments: the packed count word, the size vector (its channel slot holds a channel code), then for the
 * picture and the mask the element type, a pointer and byte strides; a null mask means that there is none. Vectors
 * begin at their first used slot. Two axes are one row. Adapters (jorma_) take bases and origins, dispatchers
 * (jorma__), kernels and per-slice entries (JormTGA) start pointers. */
#define JORM_WTS_LEAD jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size
#define JORM_WTS_SLICE(name, Params)                                                                                   \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, Params *params, uint32_t word, const int32_t *size,           \
                          uint32_t type, const void *data, const int32_t *strides)
#define JORM_WTS_EX_SLICE(name, Params)                                                                                \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, Params *params, uint32_t word, const int32_t *size,           \
                          uint32_t type, const void *data, const int32_t *strides, uint32_t mask_type,                 \
                          const void *mask, const int32_t *mask_strides)
#define JORM_WTS_ADAPTER(name, Params)                                                                                 \
    JORM_API int64_t name(JORM_WTS_LEAD, uint32_t type, const void *base, const int32_t *origin,                       \
                          const int32_t *strides, Params *params)
#define JORM_WTS_XM_ADAPTER(name, Params)                                                                              \
    JORM_API int64_t name(JORM_WTS_LEAD, uint32_t type, const void *base, const int32_t *origin,                       \
                          const int32_t *strides, uint32_t mask_type, const void *mask, const int32_t *mask_origin,    \
                          const int32_t *mask_strides, Params *params)
#define JORM_WTS_DISPATCHER(name)                                                                                      \
    JORM_API int64_t name(JORM_WTS_LEAD, uint32_t type, const void *data, const int32_t *strides,                      \
                          jorm_fwtsparams *params)
#define JORM_WTS_XM_DISPATCHER(name)                                                                                   \
    JORM_API int64_t name(JORM_WTS_LEAD, uint32_t type, const void *data, const int32_t *strides, uint32_t mask_type,  \
                          const void *mask, const int32_t *mask_strides, jorm_fwtsparams *params)

/* The flood that the options choose. */
JORM_WTS_SLICE(JormTGAwatershed, jorm_fwtsparams);
JORM_WTS_EX_SLICE(JormTGAwatershedEx, jorm_fwtsparams);
JORM_WTS_SLICE(JormTGAgenerateFMSERs, jorm_mser);
JORM_WTS_EX_SLICE(JormTGAgenerateFMSERsEx, jorm_mser);

/* The standard flood. */
JORM_WTS_ADAPTER(jorma_watershed, jorm_fwtsparams);
JORM_WTS_XM_ADAPTER(jorma_watershed_xm, jorm_fwtsparams);
JORM_WTS_XM_ADAPTER(jorma_mser_xm, jorm_mser);
JORM_WTS_DISPATCHER(jorma__watershed);
JORM_WTS_XM_DISPATCHER(jorma__watershed_xm);

/* The fast flood. */
JORM_WTS_ADAPTER(jorma_fwatershed, jorm_fwtsparams);
JORM_WTS_XM_ADAPTER(jorma_fwatershed_xm, jorm_fwtsparams);
JORM_WTS_ADAPTER(jorma_fmser, jorm_mser);
JORM_WTS_XM_ADAPTER(jorma_fmser_xm, jorm_mser);
JORM_WTS_DISPATCHER(jorma__fwatershed);
JORM_WTS_XM_DISPATCHER(jorma__fwatershed_xm);
JORM_API int64_t _jorma__fwatershed_c1_u8(JORM_WTS_LEAD, const void *data, const int32_t *strides,
                                          jorm_fwtsparams *params);
JORM_API int64_t _jorma__fwatershed_xm_c1_u8(JORM_WTS_LEAD, const void *data, const int32_t *strides, const void *mask,
                                             const int32_t *mask_strides, jorm_fwtsparams *params);

#endif
