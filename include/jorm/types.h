/* libJorm: types that every header shares.
 *
 * Conventions of the whole library
 * - Functions are plain C, never throw, print or abort, and keep no state.
 * - An operation returns an int64_t that holds a sign-extended 32-bit status: JORM_OK (0), a count where its
 *   documentation says so, or one of the negative codes below. jorm_status_str() names them.
 * - Bad input gets its status and nothing is written.
 * - Vectors of coordinates, extents and strides have four int32_t slots, the outermost first:
 *   slot 0 planes, 1 rows, 2 pixels, 3 channels. An array of N axes uses the last N slots. Strides are bytes.
 * - A packed count word says how many slots are used: bits 0-3 the number N of used slots, bits 4-7 the 4 - N unused
 *   leading ones, bits 8-12 their sum. JORM_WORD(N) builds it.
 * - Names: Jorm... entries for callers; JormTGA... per-slice entries on flat, negotiated arguments; jorma_... adapters
 *   (bases and origins); jorma__... dispatchers and typed kernels (start pointers), the destination's type named first.
 *   After _$: I in place, S tolerant of a null operand, L takes the packed count word, Z tests positivity.
 */
#ifndef JORM_TYPES_H
#define JORM_TYPES_H

#include <stddef.h>
#include <stdint.h>

/* Marks of declarations: visible outside the library, with C linkage. */
#if defined(_WIN32)
#define JORM_VISIBLE
#else
#define JORM_VISIBLE __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define JORM_API extern "C" JORM_VISIBLE
#define JORM_BEGIN_DECLS extern "C" {
#define JORM_END_DECLS }
#else
#define JORM_API extern JORM_VISIBLE
#define JORM_BEGIN_DECLS
#define JORM_END_DECLS
#endif

/* After a declaration: pointer parameter n is kept, and nothing read through it. Compilers that look for memory that is
 * read before it is written need to know. */
#if defined(__GNUC__) && !defined(__clang__) && __GNUC__ >= 11
#define JORM_KEEPS(n) __attribute__((access(none, n)))
#else
#define JORM_KEEPS(n)
#endif

/* Around declarations of names with a dollar sign, an extension that clang speaks about under -pedantic. */
#if defined(__clang__)
#define JORM_BEGIN_DOLLARS                                                                                             \
    _Pragma("clang diagnostic push") _Pragma("clang diagnostic ignored \"-Wdollar-in-identifier-extension\"")
#define JORM_END_DOLLARS _Pragma("clang diagnostic pop")
#else
#define JORM_BEGIN_DOLLARS
#define JORM_END_DOLLARS
#endif

/* Statuses. */
enum {
    JORM_OK = 0,
    JORM_EINVAL = -65514,  /* invalid argument: null or bad descriptor, disagreeing operands, ill-formed type or code */
    JORM_EEMPTY = -65508,  /* the negotiated region of interest is empty */
    JORM_ENOTSUP = -65511, /* well formed, but there is no kernel for this combination of types, channels or axes */
    JORM_ENOMEM = -65524,  /* scratch or heap memory exhausted */
    JORM_ENOTIMP = -65496, /* not implemented */
    JORM_EAGAIN = -65525   /* internal: a kernel asks its caller for a prepared copy of the input */
};

/* Element type codes: bits 0-2 the size class, bit 3 the sign. Well formed: 1-4 and 9-15. */
enum {
    JORM_U8 = 1,
    JORM_U16 = 2,
    JORM_U32 = 3,
    JORM_U64 = 4,
    JORM_S8 = 9,
    JORM_S16 = 10,
    JORM_S32 = 11,
    JORM_S64 = 12,
    JORM_F32 = 13,
    JORM_F64 = 14
};

/* Bits of the options word. Bits 4-7 select channels (bit 4 + k for channel k) in statistics and thresholds. */
#define JORM_OPT_NO_SIMD UINT64_C(2)           /* this call runs the kernels of the base level */
#define JORM_OPT_CHANNELS UINT64_C(0xF0)       /* the channel selection */
#define JORM_OPT_MASK_INVERT UINT64_C(0x20000) /* masks select what is not 255 instead of what is not 0 */
#define JORM_OPT_FAST UINT64_C(0x600000)       /* either bit chooses the fast kernels of sums and floods */

/* Packed count word for n used slots, 1 <= n <= 4. */
#define JORM_WORD(n) (UINT32_C(1024) | (uint32_t)(4 - (n)) << 4 | (uint32_t)(n))

typedef struct jorm_xe jorm_xe; /* execution environment, see jorm/xe.h */

/* Array descriptor, 80 bytes. Describes memory of the caller; the library never owns or frees it.
 * The channel code in extent[3] stores (c & 7) + ((c >> 3) & 1) channels per pixel.
 * The first element of the array is at base + loff. */
typedef struct jorm_array {
    uint32_t extent[4];        /* logical extents; slot 3 holds the channel code */
    uint32_t parent_extent[4]; /* extents of the whole buffer of which this array is a view */
    int32_t stride[4];         /* byte strides */
    uint16_t ndims;            /* number of axes, 3 or 4 */
    uint16_t reserved0;
    uint32_t eltype; /* element type code */
    uint64_t reserved1;
    int32_t loff; /* byte offset of the first element from base */
    void *base;   /* address of the whole buffer */
} jorm_array;

/* A region: where it starts and how far it reaches, in four slots. */
typedef struct jorm_site {
    int32_t origin[4];
    int32_t size[4];
} jorm_site;

/* A procedure of any signature, as the kernel lookups return it; cast it to its own type before calling. */
typedef int64_t jorm_proc(void);

#endif
