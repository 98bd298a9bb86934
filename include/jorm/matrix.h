/* libJorm matrix products.
 *
 * A matrix is an array of one channel: its rows are the matrix's, its pixels the columns. Strides may be anything, so a
 * transposed matrix is a descriptor with the two extents and the two strides exchanged, a block of one a view.
 *
 * Accuracy. An element of a product is the sum, in double precision, of products that are each rounded to double
 * precision, in the order of the index and from 0 on; then it is rounded once to the element type of the result. The
 * bits depend neither on the processor nor on the layout (of NaN, only that it is one). */
#ifndef JORM_MATRIX_H
#define JORM_MATRIX_H

#include "jorm/types.h"

/* dst = a x b: a has h rows of k elements, b has k rows of w, dst has h rows of w. Elements are f32 or f64, in any
 * mixture. dst may not overlap a or b.
 *
 * Scratch memory holds some rows of a, as many as make half a megabyte but at least eight.
 * Statuses of all three functions, in this order: JORM_EINVAL (null pointers, the environment too; bad descriptors;
 * channels or sizes that disagree), JORM_EEMPTY (an extent is 0), JORM_ENOTSUP (element types that are not served, or
 * JORM_EINVAL where one is no type code; four axes in the first two), JORM_EINVAL (overlap), JORM_ENOMEM. Nothing is
 * written unless the status is JORM_OK. */
JORM_API int64_t JormMulMM(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *a,
                           const jorm_array *b);

/* dst = m x v for a matrix of h rows and k columns and vectors of one channel, each a single row or a single column: v
 * has k elements, dst has h. Otherwise as JormMulMM. */
JORM_API int64_t JormMulMV(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *m,
                           const jorm_array *v);

/* The same for many vectors: multiplies every one of v by m and writes it to its place in dst.
 *
 * Vectors are pixels: v has k channels and dst has h, 1 to 4, and the same extents else; a 3 x 3 matrix over a picture
 * changes its colours, a 1 x 3 matrix makes it grey. Where that does not fit and both have one channel, vectors are
 * rows: rows of k pixels in v, of h pixels in dst. Three or four axes.
 *
 * m is f32 or f64. v and dst are u8, s16, s32, f32 or f64, in any mixture; results in integers are rounded to nearest
 * even and clamped, NaN becomes 0. v may be dst itself; where the two overlap otherwise v goes through scratch memory
 * of its size. m may not overlap dst. Vectors that are pixels and do not overlap need no environment. */
JORM_API int64_t JormMulMV_n(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *m,
                             const jorm_array *v);

#endif
