/* libJorm region trees: nodes and walks, trees and their builders, the watershed tree builder, region features.
 *
 *     jorm_stb (builder) ----------> storage: all nodes and region blocks, released together
 *        |  ^
 *        v  |
 *     jorm_st (tree) -> root: jorm_dgt <-> region block: jorm_wtsrgn | feature | feature ...
 *                         |                                          (a jorm_wtslsc says where)
 *                         +-> child -> next -> next (the child added last comes first)
 *
 * A builder has at most one tree and a tree at most one builder. Nodes are never freed singly: clearing a tree or its
 * builder takes the storage back to where it stood before the first node. A tree is a handle without memory of its own.
 * Nothing here is shared between threads. Functions that return a record return null for a null one.
 *
 *     jorm_stb builder = {0};
 *     JormSTBinit(&builder, NULL, 0, NULL, NULL, 0);
 *     jorm_dgt *root = JormSTBnewnode(&builder), *leaf = JormSTBnewnode(&builder);  // null without memory
 *     JormAGTaddchild(&root->node, &leaf->node);
 *     __JormSTBrootnode(&builder, &root->node);
 *     JormAGTwalk(__JormSTBtree(&builder), JORM_WALK_POSTORDER, callback, context);
 *     JormSTBfini(&builder, 0);
 */
#ifndef JORM_TREE_H
#define JORM_TREE_H

#include "jorm/types.h"

/* ---- Nodes ---- */

/* Tree node, 24 bytes. */
typedef struct jorm_agt {
    struct jorm_agt *next, *child, *parent; /* next sibling, first child; null where there is none */
} jorm_agt;

/* Node with data, 32 bytes. The record that data points to names the node in its own first word. */
typedef struct jorm_dgt {
    jorm_agt node;
    void *data;
} jorm_dgt;

typedef struct jorm_st jorm_st;
typedef struct jorm_stb jorm_stb;

/* Makes child the first child of parent; its own children stay. Returns parent. */
JORM_API jorm_agt *JormAGTaddchild(jorm_agt *parent, jorm_agt *child);
JORM_API void __JormAGTaddchild(jorm_agt *parent, jorm_agt *child);

/* The number of children, or of all descendants when recursive is not 0; 0 for null. */
JORM_API int32_t JormAGTcountChildren(const jorm_agt *node, int32_t recursive);

/* Ties a node to its data: node->data = data, and the first word of data = node. Returns node. */
JORM_API jorm_dgt *JormDGTnodeData(jorm_dgt *node, void *data);
JORM_API jorm_dgt *__JormDGTnodeData(jorm_dgt *node, void *data);

/* ---- Walks ---- */

enum { JORM_WALK_POSTORDER = 1, JORM_WALK_INORDER = 2, JORM_WALK_PREORDER = 3 };

/* index is 0 except in the in-order walk. */
typedef int32_t (*jorm_agt_visit)(jorm_agt *node, void *context, int32_t index);

/* Visits a node and its descendants: post-order after their children, pre-order before them. Trees of any depth are
 * walked in a small constant amount of memory (below the 64th level by the parent links). The callback decides:
 * - post-order: 0 stops the walk, which then returns 0, otherwise 1. The callback may release the node it is given.
 * - in-order: a node with k >= 2 children is visited k - 1 times, between child i and child i + 1 with index i; a node
 *   with one child once after it, with index 0; a leaf once with index -1. 0 stops the walk, which then returns 0,
 *   otherwise 1, or the callback's last value when the start is a leaf or has one child.
 * - pre-order: 1 or more goes on; 0 stops the walk, which then returns 0; -1 skips the node's descendants; -2 or less
 *   skips its descendants and the siblings after it. The walk returns a positive value when it was not stopped, but -1
 *   when the start itself was answered with -2 or less.
 * A null node, a tree that is null or empty, and an unknown order give 0 and no visit. */
JORM_API int32_t JormAGTwalkFromNode(jorm_agt *node, uint32_t order, jorm_agt_visit callback, void *context);
JORM_API int32_t JormAGTwalk(const jorm_st *tree, uint32_t order, jorm_agt_visit callback, void *context);

/* ---- Trees ---- */

/* Tree handle, 40 bytes, zero-filled before first use. */
struct jorm_st {
    jorm_agt *root;                           /* null: empty */
    void (*on_attach)(jorm_st *, jorm_stb *); /* called when a builder has taken the tree; or null */
    void (*on_clear)(jorm_st *, jorm_stb *);  /* called before the nodes are dropped, root still set; or null */
    void (*release)(jorm_st *);               /* frees the handle; null when it is the caller's */
    jorm_stb *builder;                        /* the builder it is attached to, or null */
};

/* Empties the handle and attaches it to builder if that is not null; callbacks and release stay as they are. Returns
 * tree; null when the builder refused (its own embedded handle). */
JORM_API jorm_st *JormSTinit(jorm_st *tree, jorm_stb *builder);
/* JormSTinit of a given tree. Without one: with a builder, clears it and returns its embedded tree; without either, a
 * new handle from malloc that JormSTclose frees (null without memory). */
JORM_API jorm_st *JormSTopen(jorm_st *tree, jorm_stb *builder);
/* Attaches the tree to builder, which is cleared first, as is the builder that had the tree before; a null builder
 * detaches (the form with underscores then does nothing). Returns tree; null when the builder refused. */
JORM_API jorm_st *JormSTsetbuilder(jorm_st *tree, jorm_stb *builder);
JORM_API jorm_st *__JormST_setbuilder(jorm_st *tree, jorm_stb *builder);
/* Clears the tree's builder and with it the tree. keep 0 keeps both attached, any other value detaches: the reverse of
 * JormSTBclear. A tree without builder is left as it is. Returns tree. */
JORM_API jorm_st *JormSTclear(jorm_st *tree, int32_t keep);
/* Ends the use of the tree. mode 0 closes its builder too, any other mode only detaches from it. Returns tree; null
 * when it is the builder's embedded handle. JormSTclose then also calls release. */
JORM_API jorm_st *JormSTfini(jorm_st *tree, int32_t mode);
JORM_API void JormSTclose(jorm_st *tree, int32_t mode);

/* ---- Builders ---- */

/* Bits of jorm_stb::flags. */
enum {
    JORM_STB_INITIALISED = 1,
    JORM_STB_IN_STORAGE = 16,  /* JormSTBopen made the record, inside its storage */
    JORM_STB_OWNS_STORAGE = 32 /* and opened that storage */
};

/* Tree builder, 160 bytes and a client area of `extra` bytes behind it; zero-filled before first use and never moved
 * while in use. */
struct jorm_stb {
    const void *iface; /* the first interface record, or null */
    jorm_st *tree;     /* the attached tree, or null */
    uint16_t flags;
    uint16_t extra;             /* bytes of client data behind the record */
    void *storage;              /* where nodes come from; null until first needed */
    size_t block_size;          /* of a storage of its own, 0: the library's choice */
    uint64_t inline_storage[6]; /* where a storage of its own lives */
    uint64_t saved_state[4];    /* what the storage returns to when cleared */
    jorm_st own_tree;           /* the embedded tree, attached when nothing else is */
};

/* Interface records form a chain: each starts with a tag and the byte distance from its own start to the next record;
 * tag 0 ends the chain. A builder looks for the one tagged JORM_STBL only; any of its functions may be null. */
enum { JORM_STBL = 0x7374626C };

typedef struct jorm_stbl {
    uint32_t tag, next;
    /* Before the nodes are dropped: returns null or a function void f(jorm_agt *node, jorm_stb *builder), which is then
     * called for every node in pre-order. */
    void *(*clear)(jorm_stb *builder, int32_t keep, const void *record);
    void (*attach)(jorm_stb *builder, const void *record);               /* after a tree has been attached */
    void (*detach)(jorm_stb *builder, const void *record, int32_t zero); /* before the links between both are cut */
} jorm_stbl;

/* Initialises a builder on storage (null: one of its own, opened with the first node) and attaches tree unless it is
 * null. Clearing returns the storage to its present state. A builder that is initialised already stays as it is.
 * Returns builder. */
JORM_API jorm_stb *JormSTBinit(jorm_stb *builder, const void *iface, uint32_t extra, jorm_st *tree, void *storage,
                               size_t block_size);
/* The same for a record that need not be zero-filled: record and client area are zeroed first. With builder null the
 * record is made inside storage, or inside a new storage when that is null too; JormSTBclose gives it back. Returns the
 * builder; null without memory. */
JORM_API jorm_stb *JormSTBopen(jorm_stb *builder, const void *iface, uint32_t extra, jorm_st *tree, void *storage,
                               size_t block_size);
/* A zeroed node; null without memory. */
JORM_API jorm_dgt *JormSTBnewnode(jorm_stb *builder);
/* The attached tree; the embedded one is attached if there is none. */
JORM_API jorm_st *__JormSTBtree(jorm_stb *builder);
/* Makes node the root of that tree. */
JORM_API void __JormSTBrootnode(jorm_stb *builder, jorm_agt *node);
/* Clears the builder and attaches an external tree; null only clears and detaches. A tree that is attached already
 * stays as it is. Returns builder; null when tree is the embedded one and not attached. */
JORM_API jorm_stb *JormSTBxtrntree(jorm_stb *builder, jorm_st *tree);
/* Empties the tree and releases all nodes; keep 0 also detaches the tree. Returns builder. */
JORM_API jorm_stb *JormSTBclear(jorm_stb *builder, int32_t keep);
/* Ends the use: clears, detaches, gives up a storage of its own or returns the caller's to its saved state. mode 0 also
 * closes an external tree that was attached (JormSTclose), any other mode leaves it to the caller. No effect on a
 * builder that is not initialised. Returns builder. */
JORM_API jorm_stb *JormSTBfini(jorm_stb *builder, int32_t mode);
/* JormSTBfini, then gives back the memory that JormSTBopen took. */
JORM_API void JormSTBclose(jorm_stb *builder, int32_t mode);

/* ---- Features ---- */

/* What a region block carries per region is described by a table of features, 96 bytes each. A null operation is
 * skipped. `data` is the feature's own part of a block, zeroed before init. */
typedef struct jorm_wtsfeature {
    uint32_t magic;
    uint32_t size;   /* bytes of data */
    uint32_t offset; /* of the data in the block, set by JormWTSLSCfixup */
    uint32_t reserved;
    void *parameter; /* handed to init */
    void (*init)(void *data, void *parameter);
    void (*destroy)(void *data, void *zero); /* releases what data owns */
    void *unused;
    void (*update)(void *data, const void *pixels, int32_t n);   /* n records of 32 bytes: row and column in the second
                                                                  * and third 32-bit word */
    void (*update2D)(void *data, const void *pixels, int32_t n); /* n pairs of int32_t: row, column */
    void (*merge)(void *data, const void *other);
    void (*lazymerge)(void *data, const void *other); /* what reading the region needs may wait for ongather */
    int32_t (*isgathered)(const void *data);          /* 1 when the data is complete */
    void (*ongather)(void *data, const void *region); /* completes it; region is the block */
} jorm_wtsfeature;

enum { JORM_WTS_MOMENTS = 0x6D6E7466, JORM_WTS_PIXELS = 0x70786C66 }; /* magics of the two built-in features */

/* The index of the first feature of that magic in a table of count; -1 without one. */
JORM_API int32_t JormWTSFindexByMagic(const void *table, int32_t count, uint32_t magic);

/* Where the features of a region lie, and the picture they belong to; 48 bytes. */
typedef struct jorm_wtslsc {
    jorm_wtsfeature *features;
    int32_t count;
    int32_t block_size; /* of a region block, 0 until laid out */
    int32_t volume[8];  /* 1, H, W, 1, H * row stride, row stride, 1, 1 */
} jorm_wtslsc;

/* The head of a region block, 24 bytes; the features follow. The 32 bytes before it belong to the builder. */
typedef struct jorm_wtsrgn {
    void *node;   /* the region's jorm_dgt, or null; blocks that are gathered from a flood name their jorm_fwtsr here */
    int32_t area; /* pixels, those of merged children included */
    uint32_t reserved[3];
} jorm_wtsrgn;

/* Describe a picture and lay out the block: the features, count of them, follow each other from offset 24, each at a
 * multiple of 8; the block size is their end. dims and strides are those of an array of ndim axes (pixels in the
 * second-last, rows in the third-last one); strides are bytes. JormWTSLSCfixup leaves a layout alone that has a block
 * size above 24 already. The 2D form stores a negative count as 0. All return layout. */
JORM_API jorm_wtslsc *JormWTSLSCinit(jorm_wtslsc *layout, jorm_wtsfeature *features, int32_t count, int32_t ndim,
                                     const int32_t *dims, const int32_t *strides);
JORM_API jorm_wtslsc *JormWTSLSCinit2D(jorm_wtslsc *layout, jorm_wtsfeature *features, int32_t count, int32_t height,
                                       int32_t width, int32_t row_stride);
JORM_API jorm_wtslsc *JormWTSLSCsetimvol(jorm_wtslsc *layout, int32_t ndim, const int32_t *dims,
                                         const int32_t *strides);
JORM_API jorm_wtslsc *JormWTSLSCsetimvol2D(jorm_wtslsc *layout, int32_t height, int32_t width, int32_t row_stride);
JORM_API jorm_wtslsc *JormWTSLSCfixup(jorm_wtslsc *layout);

/* Moments of a region, 48 bytes. The sign of count tells how far they are: negative while pixels come in and regions
 * are merged lazily (then the pixels given to this region itself), positive once gathered or merged (all of them). */
typedef struct jorm_moments {
    int32_t count;
    uint32_t reserved;
    double sum_y, sum_x, sum_yy, sum_xy, sum_xx; /* y is the row, x the column */
} jorm_moments;

/* The pixels of a region, 24 bytes. Entries are row | column << 32, in a block from _UlMrealloc. */
typedef struct jorm_pixlist {
    uint64_t capacity; /* in entries; bit 63: gathered */
    uint64_t count;
    uint64_t *entries;
} jorm_pixlist;

/* Fill in a feature completely, whatever it held. Return it. */
JORM_API jorm_wtsfeature *JormWTSMFinitFeatureDs(jorm_wtsfeature *feature, void *parameter);
JORM_API jorm_wtsfeature *JormWTSPFinitFeatureDs(jorm_wtsfeature *feature, void *parameter);

/* The operations of the moments, on a jorm_moments. The updates count n further pixels, the merge makes the count that
 * of both regions, the lazy one leaves it; the gathered count is the region's area (without a region: its absolute
 * value). The functions without underscores add to the sums only. Sums are taken in f64, pixel by pixel. */
JORM_API void __JormWTSMF__update__(void *data, const void *pixels, int32_t n);
JORM_API void __JormWTSMF__update2D__(void *data, const void *pixels, int32_t n);
JORM_API void __JormWTSMF__merge__(void *data, const void *other);
JORM_API void __JormWTSMF__lazymerge__(void *data, const void *other);
JORM_API int32_t __JormWTSMF__isgathered__(const void *data);
JORM_API void __JormWTSMF__ongather__(void *data, const void *region);
JORM_API void JormWTSMF_update2D(void *data, int32_t row, int32_t column);
JORM_API void JormWTSMF_update_n(void *data, const void *pixels, int32_t n);
JORM_API void JormWTSMF_update2D_n(void *data, const void *pixels, int32_t n);

/* Figures of moments with n = count: the means Sx/n and Sy/n; the central moments (Sxx - Sx Sx/n)/n,
 * (Syy - Sy Sy/n)/n and (Sxy - Sx Sy/n)/n; all three as out[0..2] = Myy, Mxy, Mxx (returns out); the direction
 * 0.5 atan2(2 Mxy, Mxx - Myy) of the longer axis, from the column axis toward the row axis. In f64. */
JORM_API double jorm_mf_mx(const void *data);
JORM_API double jorm_mf_my(const void *data);
JORM_API double jorm_mf_Mxx(const void *data);
JORM_API double jorm_mf_Myy(const void *data);
JORM_API double jorm_mf_Mxy(const void *data);
JORM_API double *jorm_mf_M2(double *out, const void *data);
JORM_API double jorm_mf_theta(const void *data);

/* The operations of the pixel lists, on a jorm_pixlist. Appending doubles the capacity (2 when 0) until everything
 * fits; merging grows to exactly what is needed and sets the gathered flag, the lazy form leaves that as it was. When
 * memory cannot be had nothing is appended. */
JORM_API void __JormWTSPF__init__(void *data, void *parameter);
JORM_API void __JormWTSPF__destroy__(void *data, void *zero);
JORM_API void __JormWTSPF__merge__(void *data, const void *other);
JORM_API void __JormWTSPF__lazymerge__(void *data, const void *other);
JORM_API int32_t __JormWTSPF__isgathered__(const void *data);
JORM_API void __JormWTSPF__ongather__(void *data, const void *region);
JORM_API void JormWTSPF_update2D(void *data, int32_t row, int32_t column);
JORM_API void JormWTSPF_update_n(void *data, const void *pixels, int32_t n);
JORM_API void JormWTSPF_update2D_n(void *data, const void *pixels, int32_t n);

/* ---- The watershed tree builder ----
 * A tree builder whose nodes carry region blocks. Its interface chain holds a second record, through which whoever
 * floods a picture makes regions, gives them pixels and merges them. */

/* A builder with its layout in the client area. */
typedef struct jorm_wtstb {
    jorm_stb builder;
    jorm_wtslsc layout;
} jorm_wtstb;

enum { JORM_WTSL = 0x7774736C };

/* Bits of setup's flags. */
#define JORM_WTS_MIXED UINT64_C(0x100000)  /* the 2D updates of built-in features without calls through the table */
#define JORM_WTS_SINGLE UINT64_C(0x600000) /* either bit: a layout of one built-in feature is served directly */

/* The second interface record, 88 bytes. `context` is for the caller's use and may be null; a null layout stands for
 * the one that was set up. Blocks are jorm_wtsrgn. */
typedef struct jorm_wtsl {
    uint32_t tag, next;
    /* Zeroed memory from the builder's storage; align 0 means 16; null without memory. */
    void *(*allocate)(void *context, jorm_stb *builder, size_t size, size_t align);
    /* Copies the layout into the client area and chooses among four interface chains that give the same results. */
    void (*setup)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, uint64_t flags);
    /* Unless request is 0, completes every region of the builder's tree (ongather): area, count and pixels are then
     * those of the whole subtree, however it was merged. */
    void (*gather)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, int32_t request);
    /* A region block with initialised features, without a node; null without memory. */
    void *(*newregion)(void *context, jorm_stb *builder, const jorm_wtslsc *layout);
    /* Releases what the features of a block own. Clearing the builder does so for all blocks in the tree; whoever drops
     * a block that never came into it calls this. */
    void (*destroyrgn)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *block);
    void (*disposergn)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *block); /* does nothing */
    /* Adds count pixels to the area and the features, as records of 32 bytes or as (row, column) pairs. */
    void (*update)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *block, const void *pixels,
                   int32_t count);
    void (*update2D)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *block, const void *pixels,
                     int32_t count);
    /* Adds the child's area and features to the parent's, makes its node the first child of the parent's node, and the
     * parent the root of the builder's tree. The lazy form leaves completing the features to gather. */
    void (*merge)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *parent, void *child);
    void (*lazymerge)(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *parent, void *child);
} jorm_wtsl;

/* JormSTBinit and JormSTBopen with the general interface chain and a client area for the layout: a record of the
 * caller has the size of jorm_wtstb. */
JORM_API jorm_stb *JormWTSTBinit(jorm_stb *builder, jorm_st *tree, void *storage, size_t block_size);
JORM_API jorm_stb *JormWTSTBopen(jorm_stb *builder, jorm_st *tree, void *storage, size_t block_size);
/* The general interface chain: a jorm_stbl, a jorm_wtsl and the end. */
JORM_API const void *JormWTSTBxinterface(void);
/* Stores that chain as the builder's interface. Returns builder. */
JORM_API jorm_stb *__JormWTSTBinit__(jorm_stb *builder);

/* newregion of the builder's own chain; with a node tied to the block; a node for a block that has none. Null without
 * memory, and then nothing is kept. */
JORM_API void *__JormWTSTBnewregion(void *context, jorm_stb *builder, const jorm_wtslsc *layout);
JORM_API jorm_dgt *__JormWTSTBnewregionNode(void *context, jorm_stb *builder, const jorm_wtslsc *layout);
JORM_API jorm_dgt *__JormWTSTBnewnodeWithRegion(jorm_stb *builder, void *block);
/* The entries destroyrgn and disposergn of the chains. */
JORM_API void __JormWTSTBdestroyrgn(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *block);
JORM_API void __JormWTSTBdisposergn(void *context, jorm_stb *builder, const jorm_wtslsc *layout, void *block);

#endif
