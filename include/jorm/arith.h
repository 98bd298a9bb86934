/* libJorm: element-wise arithmetic and logic, and the packed call for arrays of four axes.
 *
 * Every entry takes an environment, an options word, the destination and its sources (array descriptors), the region of
 * interest and start points:
 *
 *     JormAdd(xe, options, dst, src1, src2, roi, at1, at2, p, q)
 *
 * Operands. Arrays have three axes (rows, pixels, channels) and 1 to 4 channels, the same number in every operand.
 *   Strides may be anything: padded rows and pixels, views, negative strides. Dense data is the fast path. Elements lie
 *   at multiples of their size (else JORM_EINVAL). An element type that no kernel serves gives JORM_ENOTSUP.
 * Region. `roi` is a site in coordinates of the destination, null for all of it; its channel slot may narrow the
 *   channels. `at` is the point (four slots) where the source's region starts, null for its first element. The
 *   operation covers what all operands offer: a source that ends early shortens it. When nothing is left the status is
 *   JORM_EEMPTY.
 *   What a region names outside the destination is cut off: origin (0, -1, 0, 0) with 3 rows leaves rows 0 and 1, and
 *   `at` belongs to the first row that is left. A negative at[i] counts as 0 but takes its amount off: from the region
 *   (-1 and 5 rows leave 4), for the last source of the call and for planes from what the source offers (-1 of 9 rows
 *   leaves 8 at most).
 * In place. A null first source means the destination; with a null `at` its region then starts at the origin of `roi`.
 *   A source may also be the destination itself: its region too starts at `at`, and null is its first element, not the
 *   origin of `roi`. For a region from row 10 on,
 *       JormAddC(xe, 0, &a, NULL, constant, &roi, NULL, 0, 0)         changes the rows from 10 on in place,
 *       JormAddC(xe, 0, &a, &a, constant, &roi, roi.origin, 0, 0)     does the same,
 *       JormAddC(xe, 0, &a, &a, constant, &roi, NULL, 0, 0)           takes its source from row 0 on: an overlap.
 *   The results of other overlaps than in place are unspecified.
 * Constants are arrays of double, one for each channel of the region, from its first one on.
 * p scales: the exact result is multiplied by 2^p before it is rounded to nearest even and stored (p = 0: no scaling;
 *   JormDiv and JormRDiv truncate instead). q is reserved; give 0.
 * Environment. Null will do where the destination is as wide as the sources. A narrower destination is served through a
 *   strip of at most 32 KiB taken from the environment: null gives JORM_EINVAL, no memory JORM_ENOMEM.
 * Statuses, in this order: JORM_EINVAL (null or bad descriptor, disagreeing operands), JORM_EEMPTY, JORM_ENOTSUP for
 *   four axes, JORM_EINVAL for a null constant or an ill-formed element type, JORM_ENOTSUP for types without a kernel.
 *   Nothing is written unless the status is JORM_OK.
 *
 * How results are stored
 * - Integers: the exact result; plain operations keep its low bits (they wrap), the q and sq forms clamp it to the
 *   destination's type. Results with a fraction (constants that are not whole, f32 sources) are rounded to nearest even
 *   first, and become -2147483648 when they do not fit 32 bits.
 * - f32: the exact result rounded once to single precision, wherever double precision holds it. The product and the sum
 *   of three f32 operands (constants that single precision holds included) are rounded one after the other.
 * - A destination narrower than the widest source, for a combination without a kernel of its own: the result in the
 *   type of that source, stored as above, then converted (rounded to nearest even, clamped). So u8 and s16 from s32 or
 *   f32 sources are clamped in plain operations too, where u8 from u8 and s16 wraps.
 * - The same bits on every processor, with the vectorised kernels on or off (of NaN, only that it is one).
 */
#ifndef JORM_ARITH_H
#define JORM_ARITH_H

#include "jorm/types.h"

/* ---- Two sources ----
 *
 *   JormAdd, JormSub, JormMul   src1 + src2, src1 - src2, src1 * src2
 *   JormRSub                    src2 - src1
 *   JormAddq, Subq, RSubq       the sums and differences, clamped
 *   JormMulq                    the product, clamped
 *   JormAddsq, Subsq, RSubsq    the squares (a + b)^2, (a - b)^2, clamped
 *   JormDiv, JormRDiv           src1 / src2, src2 / src1, truncated toward zero
 *   JormDivr, JormRDivr         the same to nearest even. An integer divided by 0 gives 0
 *
 * Types, and how integers are stored:
 *
 *   operation                    destination   sources                                     p = 0
 *   Add, Sub, RSub, Mul          u8            u8, s16 in any mixture                      wraps
 *                                s16           u8, s16                                     wraps
 *                                s32           u8, s16, s32, f32                           wraps
 *                                f32           u8, s16, s32, f32                           rounded once
 *                                u8, s16       with an s32 or f32 among them               in that type, then clamped
 *   Addq, Subq, RSubq            u8            u8, s16                                     clamped
 *                                s8            u8                                          clamped
 *                                s16           u8, s16                                     clamped
 *                                s32, f32      u8, s16, s32                                clamped
 *                                u8, s16       with an s32 among them                      in s32, then clamped
 *   Mulq                         u8, s16, s32  u8, s16, s32 in any mixture                 clamped, rounded once
 *   Addsq, Subsq, RSubsq         as for Add                                                clamped
 *   Div, RDiv                    u8, s16, s32  both of the destination's type              truncated
 *                                f32           f32                                         IEEE 754, not truncated
 *                                u8, s16       both of one wider type                      in that type, then clamped
 *   Divr, RDivr                  u8, s16, s32  both of the destination's type              to nearest even
 *                                u8, s16       both of one wider integer type              in that type, then clamped
 *
 * Quotients of f32 sources are f32 numbers: they are never truncated, and a narrower destination gets them rounded to
 * nearest.
 */
JORM_API int64_t JormAdd(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                         int32_t p, int32_t q);
JORM_API int64_t JormSub(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                         int32_t p, int32_t q);
JORM_API int64_t JormRSub(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                          int32_t p, int32_t q);
JORM_API int64_t JormMul(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                         int32_t p, int32_t q);
JORM_API int64_t JormAddq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                          int32_t p, int32_t q);
JORM_API int64_t JormSubq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                          int32_t p, int32_t q);
JORM_API int64_t JormRSubq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                           const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                           int32_t p, int32_t q);
JORM_API int64_t JormAddsq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                           const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                           int32_t p, int32_t q);
JORM_API int64_t JormSubsq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                           const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                           int32_t p, int32_t q);
JORM_API int64_t JormRSubsq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                            const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                            int32_t p, int32_t q);
JORM_API int64_t JormMulq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                          int32_t p, int32_t q);
JORM_API int64_t JormDiv(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                         int32_t p, int32_t q);
JORM_API int64_t JormDivr(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                          int32_t p, int32_t q);
JORM_API int64_t JormRDiv(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                          const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                          int32_t p, int32_t q);
JORM_API int64_t JormRDivr(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                           const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2,
                           int32_t p, int32_t q);

/* ---- One source and a constant for each channel ----
 *
 * The forms above with src2 = constant (JormRSubC: constant - src, JormRDivC: constant / src). Any constant serves;
 * results of whole ones are exact.
 *
 * JormMulqC serves u8, s16, s32 from u8, s16, s32, f32: the product with constant * 2^p is rounded once to double, then
 * to nearest even and clamped; infinities go by their sign, NaN becomes 0.
 *
 * JormSigmoidAlpha: 1 / (1 + exp(-constant * src)), f32, within 2 units in the last place.
 */
JORM_API int64_t JormAddC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormSubC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormRSubC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                           const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormMulC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormAddqC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                           const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormSubqC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                           const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormRSubqC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormAddsqC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormSubsqC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormRSubsqC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormMulqC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                           const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormDivC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormDivrC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                           const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormRDivC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                           const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormRDivrC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormSigmoidAlpha(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                                  const double *constant, const jorm_site *roi, const int32_t *at, int32_t p,
                                  int32_t q);

/* ---- One source ----
 *
 *   JormNegate, JormNegateq   -src, wrapped or clamped (q: u8, s16 from s16, s32; s32 from s32)
 *   JormExp, JormLn           e^src and the natural logarithm, f32, within 2 units in the last place at every value;
 *                             ln 0 is -infinity, ln of a negative number NaN
 *   JormNot                   the complement of every bit; u8, s16, s32
 */
JORM_API int64_t JormNegate(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                            const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormNegateq(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormExp(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                         const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormLn(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                        const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
JORM_API int64_t JormNot(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                         const jorm_site *roi, const int32_t *at);

/* ---- Products and sums ----
 *
 *   JormMulAdd, C, CC    src1 * src2 + src3, src1 * constant + src2, src * constant1 + constant2
 *   JormMulSub, C, CC    src1 * src2 - src3, ...
 *   JormMulRSub, C, CC   src3 - src1 * src2, ...
 *
 * Types, where the destination is no narrower than a source (otherwise the strip described above serves):
 *   three sources     u8 and s16 from u8 and s16; s32 from u8 and s16, and with an s32 third source also from s32;
 *                     f32 from f32 x (u8, s16, s32, f32) + f32, f32 x f32 + (u8, s16, s32), and from equal types u8,
 *                     s16, s32 with an f32 third source, u8 and s16 also with one of their own type
 *   one constant      every pair of sources no wider than the destination; f32 sources into f32
 *   two constants     u8, s16, s32, f32 from any of them
 */
JORM_API int64_t JormMulAdd(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                            const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,
                            const int32_t *at2, const int32_t *at3, int32_t p, int32_t q);
JORM_API int64_t JormMulAddC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                             const jorm_array *src2, const double *constant, const jorm_site *roi, const int32_t *at1,
                             const int32_t *at2, int32_t p, int32_t q);
JORM_API int64_t JormMulAddCC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const double *constant1, const double *constant2, const jorm_site *roi, const int32_t *at,
                              int32_t p, int32_t q);
JORM_API int64_t JormMulSub(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                            const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,
                            const int32_t *at2, const int32_t *at3, int32_t p, int32_t q);
JORM_API int64_t JormMulSubC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                             const jorm_array *src2, const double *constant, const jorm_site *roi, const int32_t *at1,
                             const int32_t *at2, int32_t p, int32_t q);
JORM_API int64_t JormMulSubCC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const double *constant1, const double *constant2, const jorm_site *roi, const int32_t *at,
                              int32_t p, int32_t q);
JORM_API int64_t JormMulRSub(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                             const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,
                             const int32_t *at2, const int32_t *at3, int32_t p, int32_t q);
JORM_API int64_t JormMulRSubC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                              const jorm_array *src2, const double *constant, const jorm_site *roi, const int32_t *at1,
                              const int32_t *at2, int32_t p, int32_t q);
JORM_API int64_t JormMulRSubCC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                               const double *constant1, const double *constant2, const jorm_site *roi,
                               const int32_t *at, int32_t p, int32_t q);

/* ---- Differences and extremes: u8, s8, s16, s32, f32, equal types ----
 *
 *   JormAbsDiff, C   |src1 - src2|, |src - constant|; integers clamped to the largest value of the type
 *   JormMin, C       the smaller one
 *   JormMax, C       the larger one
 *
 * Of f32, the extremes pass over NaN: with one NaN they give the other operand, with two NaN; -0 counts as smaller than
 * 0. A difference with NaN is NaN. The C forms turn their constants into elements first, like fill values: rounded to
 * nearest even and clamped to the type (f32: rounded to single precision). */
JORM_API int64_t JormAbsDiff(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                             const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
JORM_API int64_t JormAbsDiffC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const double *constant, const jorm_site *roi, const int32_t *at);
JORM_API int64_t JormMin(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
JORM_API int64_t JormMinC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at);
JORM_API int64_t JormMax(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
JORM_API int64_t JormMaxC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at);

/* ---- Logic: u8, s16, s32, equal types ----
 *
 * The C forms round their constants to nearest even and take the low bits: 255 and -1 are both all ones of an u8;
 * infinities and NaN count as -2147483648. */
JORM_API int64_t JormAnd(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
JORM_API int64_t JormAndC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at);
JORM_API int64_t JormOrr(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
JORM_API int64_t JormOrrC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at);
JORM_API int64_t JormXor(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                         const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
JORM_API int64_t JormXorC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                          const double *constant, const jorm_site *roi, const int32_t *at);

/* ---- Adapters: bases with origins; the vectors have four slots and are addressed at their first used one. ---- */

typedef int64_t jorm_not_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                 void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                                 const void *src, const int32_t *src_origin, const int32_t *src_stride);
typedef int64_t jorm_unary_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                   void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src_type,
                                   const void *src, const int32_t *src_origin, const int32_t *src_stride, int32_t p,
                                   int32_t q);
typedef int64_t jorm_binary_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                    uint32_t dst_type, void *dst, const int32_t *dst_origin, const int32_t *dst_stride,
                                    uint32_t src1_type, const void *src1, const int32_t *src1_origin,
                                    const int32_t *src1_stride, uint32_t src2_type, const void *src2,
                                    const int32_t *src2_origin, const int32_t *src2_stride, int32_t p, int32_t q);
typedef int64_t jorm_constant_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                      uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                      const int32_t *dst_stride, uint32_t src_type, const void *src,
                                      const int32_t *src_origin, const int32_t *src_stride, const double *constant,
                                      int32_t p, int32_t q);
typedef int64_t jorm_ternary_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                     uint32_t dst_type, void *dst, const int32_t *dst_origin, const int32_t *dst_stride,
                                     uint32_t src1_type, const void *src1, const int32_t *src1_origin,
                                     const int32_t *src1_stride, uint32_t src2_type, const void *src2,
                                     const int32_t *src2_origin, const int32_t *src2_stride, uint32_t src3_type,
                                     const void *src3, const int32_t *src3_origin, const int32_t *src3_stride,
                                     int32_t p, int32_t q);
typedef int64_t jorm_ternary_constant_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                              uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                              const int32_t *dst_stride, uint32_t src1_type, const void *src1,
                                              const int32_t *src1_origin, const int32_t *src1_stride,
                                              uint32_t src2_type, const void *src2, const int32_t *src2_origin,
                                              const int32_t *src2_stride, const double *constant, int32_t p, int32_t q);
typedef int64_t jorm_ternary_constants_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                               uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                               const int32_t *dst_stride, uint32_t src_type, const void *src,
                                               const int32_t *src_origin, const int32_t *src_stride,
                                               const double *constant1, const double *constant2, int32_t p, int32_t q);
typedef int64_t jorm_logic_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t dst_type,
                                   void *dst, const int32_t *dst_origin, const int32_t *dst_stride, uint32_t src1_type,
                                   const void *src1, const int32_t *src1_origin, const int32_t *src1_stride,
                                   uint32_t src2_type, const void *src2, const int32_t *src2_origin,
                                   const int32_t *src2_stride);
typedef int64_t jorm_logic_constant_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                            uint32_t dst_type, void *dst, const int32_t *dst_origin,
                                            const int32_t *dst_stride, uint32_t src_type, const void *src,
                                            const int32_t *src_origin, const int32_t *src_stride,
                                            const double *constant);

JORM_API jorm_binary_adapter jorma_add, jorma_addq, jorma_addsq, jorma_sub, jorma_subq, jorma_subsq, jorma_rsub,
    jorma_rsubq, jorma_rsubsq, jorma_mul, jorma_mulq, jorma_div, jorma_divr, jorma_rdiv, jorma_rdivr;
JORM_API jorm_constant_adapter jorma_addC, jorma_addqC, jorma_addsqC, jorma_subC, jorma_subqC, jorma_subsqC,
    jorma_rsubC, jorma_rsubqC, jorma_rsubsqC, jorma_mulC, jorma_mulqC, jorma_divC, jorma_divrC, jorma_rdivC,
    jorma_rdivrC, jorma_sigmoidalpha;
JORM_API jorm_unary_adapter jorma_exp, jorma_ln, jorma_neg, jorma_negq;
JORM_API jorm_not_adapter jorma_not;
JORM_API jorm_ternary_adapter jorma_mla, jorma_mls, jorma_mlrs;
JORM_API jorm_ternary_constant_adapter jorma_mlaC, jorma_mlsC, jorma_mlrsC;
JORM_API jorm_ternary_constants_adapter jorma_mlaCC, jorma_mlsCC, jorma_mlrsCC;
JORM_API jorm_logic_adapter jorma_and, jorma_orr, jorma_xor, jorma_absdiff, jorma_min, jorma_max;
JORM_API jorm_logic_constant_adapter jorma_andC, jorma_orrC, jorma_xorC, jorma_absdiffC, jorma_minC, jorma_maxC;

/* ---- Dispatchers: start pointers with element types. ---- */

typedef int64_t jorm_not_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                    uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                    const void *src, const int32_t *src_stride);
typedef int64_t jorm_unary_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                      uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                      const void *src, const int32_t *src_stride, int32_t p, int32_t q);
typedef int64_t jorm_binary_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                       uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src1_type,
                                       const void *src1, const int32_t *src1_stride, uint32_t src2_type,
                                       const void *src2, const int32_t *src2_stride, int32_t p, int32_t q);
typedef int64_t jorm_constant_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                         uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src_type,
                                         const void *src, const int32_t *src_stride, const double *constant, int32_t p,
                                         int32_t q);
typedef int64_t jorm_ternary_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                        uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src1_type,
                                        const void *src1, const int32_t *src1_stride, uint32_t src2_type,
                                        const void *src2, const int32_t *src2_stride, uint32_t src3_type,
                                        const void *src3, const int32_t *src3_stride, int32_t p, int32_t q);
typedef int64_t jorm_ternary_constant_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                                 uint32_t dst_type, void *dst, const int32_t *dst_stride,
                                                 uint32_t src1_type, const void *src1, const int32_t *src1_stride,
                                                 uint32_t src2_type, const void *src2, const int32_t *src2_stride,
                                                 const double *constant, int32_t p, int32_t q);
typedef int64_t jorm_ternary_constants_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                                  uint32_t dst_type, void *dst, const int32_t *dst_stride,
                                                  uint32_t src_type, const void *src, const int32_t *src_stride,
                                                  const double *constant1, const double *constant2, int32_t p,
                                                  int32_t q);
typedef int64_t jorm_logic_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                      uint32_t dst_type, void *dst, const int32_t *dst_stride, uint32_t src1_type,
                                      const void *src1, const int32_t *src1_stride, uint32_t src2_type,
                                      const void *src2, const int32_t *src2_stride);
typedef int64_t jorm_logic_constant_dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                               uint32_t dst_type, void *dst, const int32_t *dst_stride,
                                               uint32_t src_type, const void *src, const int32_t *src_stride,
                                               const double *constant);

JORM_API jorm_binary_dispatcher jorma__add, jorma__addq, jorma__addsq, jorma__sub, jorma__subq, jorma__subsq,
    jorma__rsub, jorma__rsubq, jorma__rsubsq, jorma__mul, jorma__mulq, jorma__div, jorma__divr, jorma__rdiv,
    jorma__rdivr;
JORM_API jorm_constant_dispatcher jorma__addC, jorma__addqC, jorma__addsqC, jorma__subC, jorma__subqC, jorma__subsqC,
    jorma__rsubC, jorma__rsubqC, jorma__rsubsqC, jorma__mulC, jorma__mulqC, jorma__divC, jorma__divrC, jorma__rdivC,
    jorma__rdivrC, jorma__sigmoidalpha;
JORM_API jorm_unary_dispatcher jorma__exp, jorma__ln, jorma__neg, jorma__negq, jorma__sqr;
JORM_API jorm_not_dispatcher jorma__not;
JORM_API jorm_ternary_dispatcher jorma__mla, jorma__mls, jorma__mlrs;
JORM_API jorm_ternary_constant_dispatcher jorma__mlaC, jorma__mlsC, jorma__mlrsC;
JORM_API jorm_ternary_constants_dispatcher jorma__mlaCC, jorma__mlsCC, jorma__mlrsCC;
JORM_API jorm_logic_dispatcher jorma__and, jorma__orr, jorma__xor, jorma__absdiff, jorma__min, jorma__max;
JORM_API jorm_logic_constant_dispatcher jorma__andC, jorma__orrC, jorma__xorC, jorma__absdiffC, jorma__minC,
    jorma__maxC;

/* ---- Typed kernels: start pointers, the types in the name. ----
 * They walk size[N - 3] rows (one when N is 2) of size[N - 2] elements, c3 and c4 kernels of as many pixels of 3 or 4
 * channels, by the strides of the pixel (and channel) slot. Constants are doubles, one per channel. A constant kernel
 * serves every constant exactly; the type that its name gives to the constant is the one meant for it. */

typedef int64_t jorm_not_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                const int32_t *dst_stride, const void *src, const int32_t *src_stride);
typedef int64_t jorm_unary_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                  const int32_t *dst_stride, const void *src, const int32_t *src_stride, int32_t p,
                                  int32_t q);
typedef int64_t jorm_binary_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                   const int32_t *dst_stride, const void *src1, const int32_t *src1_stride,
                                   const void *src2, const int32_t *src2_stride, int32_t p, int32_t q);
typedef int64_t jorm_constant_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                     const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                                     const double *constant, int32_t p, int32_t q);
typedef int64_t jorm_ternary_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                    const int32_t *dst_stride, const void *src1, const int32_t *src1_stride,
                                    const void *src2, const int32_t *src2_stride, const void *src3,
                                    const int32_t *src3_stride, int32_t p, int32_t q);
typedef int64_t jorm_ternary_constant_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                             void *dst, const int32_t *dst_stride, const void *src1,
                                             const int32_t *src1_stride, const void *src2, const int32_t *src2_stride,
                                             const double *constant, int32_t p, int32_t q);
typedef int64_t jorm_ternary_constants_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
                                              void *dst, const int32_t *dst_stride, const void *src,
                                              const int32_t *src_stride, const double *constant1,
                                              const double *constant2, int32_t p, int32_t q);
typedef int64_t jorm_logic_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                  const int32_t *dst_stride, const void *src1, const int32_t *src1_stride,
                                  const void *src2, const int32_t *src2_stride);
typedef int64_t jorm_logic_constant_kernel(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, void *dst,
                                           const int32_t *dst_stride, const void *src, const int32_t *src_stride,
                                           const double *constant);

JORM_API jorm_binary_kernel jorma__add_c1_f32f32f32, jorma__add_c1_f32f32s16, jorma__add_c1_f32f32s32,
    jorma__add_c1_f32f32u8, jorma__add_c1_f32s16s16, jorma__add_c1_f32s16u8, jorma__add_c1_f32s32s16,
    jorma__add_c1_f32s32s32, jorma__add_c1_f32s32u8, jorma__add_c1_f32u8u8, jorma__add_c1_s16s16s16,
    jorma__add_c1_s16s16u8, jorma__add_c1_s16u8u8, jorma__add_c1_s32f32f32, jorma__add_c1_s32f32s16,
    jorma__add_c1_s32f32s32, jorma__add_c1_s32f32u8, jorma__add_c1_s32s16s16, jorma__add_c1_s32s16u8,
    jorma__add_c1_s32s32s16, jorma__add_c1_s32s32s32, jorma__add_c1_s32s32u8, jorma__add_c1_s32u8u8,
    jorma__add_c1_u8s16s16, jorma__add_c1_u8s16u8, jorma__add_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__addC_c1_f32f32f32, jorma__addC_c1_f32f32f64, jorma__addC_c1_f32s16s16,
    jorma__addC_c1_f32s16s32, jorma__addC_c1_f32s32f64, jorma__addC_c1_f32s32s32, jorma__addC_c1_f32u8s32,
    jorma__addC_c1_f32u8u8, jorma__addC_c1_s16s16s16, jorma__addC_c1_s16u8s32, jorma__addC_c1_s16u8u8,
    jorma__addC_c1_s32f32f32, jorma__addC_c1_s32f32f64, jorma__addC_c1_s32s16s16, jorma__addC_c1_s32s16s32,
    jorma__addC_c1_s32s32s32, jorma__addC_c1_s32u8s32, jorma__addC_c1_s32u8u8, jorma__addC_c1_u8s16s16,
    jorma__addC_c1_u8u8s32, jorma__addC_c1_u8u8u8;
JORM_API jorm_binary_kernel jorma__addq_c1_f32s16s16, jorma__addq_c1_f32s16u8, jorma__addq_c1_f32s32s16,
    jorma__addq_c1_f32s32s32, jorma__addq_c1_f32s32u8, jorma__addq_c1_f32u8u8, jorma__addq_c1_s16s16s16,
    jorma__addq_c1_s16s16u8, jorma__addq_c1_s16u8u8, jorma__addq_c1_s32s16s16, jorma__addq_c1_s32s16u8,
    jorma__addq_c1_s32s32s16, jorma__addq_c1_s32s32s32, jorma__addq_c1_s32s32u8, jorma__addq_c1_s32u8u8,
    jorma__addq_c1_s8u8u8, jorma__addq_c1_u8s16s16, jorma__addq_c1_u8s16u8, jorma__addq_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__addqC_c1_f32s16s32, jorma__addqC_c1_f32s32s32, jorma__addqC_c1_f32u8s32,
    jorma__addqC_c1_s16s16s16, jorma__addqC_c1_s16u8s32, jorma__addqC_c1_s32s16s32, jorma__addqC_c1_s32s32s32,
    jorma__addqC_c1_s32u8s32, jorma__addqC_c1_s8u8u8, jorma__addqC_c1_u8s16s16, jorma__addqC_c1_u8u8s32,
    jorma__addqC_c1_u8u8u8;
JORM_API jorm_binary_kernel jorma__mulq_c1_s16s16s16, jorma__mulq_c1_s16s16u8, jorma__mulq_c1_s16s32s16,
    jorma__mulq_c1_s16s32s32, jorma__mulq_c1_s16s32u8, jorma__mulq_c1_s16u8u8, jorma__mulq_c1_s32s16s16,
    jorma__mulq_c1_s32s16u8, jorma__mulq_c1_s32s32s16, jorma__mulq_c1_s32s32s32, jorma__mulq_c1_s32s32u8,
    jorma__mulq_c1_s32u8u8, jorma__mulq_c1_u8s16s16, jorma__mulq_c1_u8s16u8, jorma__mulq_c1_u8s32s16,
    jorma__mulq_c1_u8s32s32, jorma__mulq_c1_u8s32u8, jorma__mulq_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__mulqC_c1_s16f32, jorma__mulqC_c1_s16s16, jorma__mulqC_c1_s16s32,
    jorma__mulqC_c1_s16u8, jorma__mulqC_c1_s32f32, jorma__mulqC_c1_s32s16, jorma__mulqC_c1_s32s32,
    jorma__mulqC_c1_s32u8, jorma__mulqC_c1_u8f32, jorma__mulqC_c1_u8s16, jorma__mulqC_c1_u8s32, jorma__mulqC_c1_u8u8;
JORM_API jorm_logic_kernel jorma__absdiff_c1_f32f32f32, jorma__absdiff_c1_s16s16s16, jorma__absdiff_c1_s32s32s32,
    jorma__absdiff_c1_s8s8s8, jorma__absdiff_c1_u8u8u8, jorma__min_c1_f32f32f32, jorma__min_c1_s16s16s16,
    jorma__min_c1_s32s32s32, jorma__min_c1_s8s8s8, jorma__min_c1_u8u8u8, jorma__max_c1_f32f32f32,
    jorma__max_c1_s16s16s16, jorma__max_c1_s32s32s32, jorma__max_c1_s8s8s8, jorma__max_c1_u8u8u8;
JORM_API jorm_logic_constant_kernel jorma__absdiffC_c1_f32f32, jorma__absdiffC_c1_s16s16, jorma__absdiffC_c1_s32s32,
    jorma__absdiffC_c1_s8s8, jorma__absdiffC_c1_u8u8, jorma__minC_c1_f32f32, jorma__minC_c1_s16s16,
    jorma__minC_c1_s32s32, jorma__minC_c1_s8s8, jorma__minC_c1_u8u8, jorma__maxC_c1_f32f32, jorma__maxC_c1_s16s16,
    jorma__maxC_c1_s32s32, jorma__maxC_c1_s8s8, jorma__maxC_c1_u8u8;
JORM_API jorm_logic_kernel jorma__and_c1_s16s16s16, jorma__and_c1_s32s32s32, jorma__and_c1_u8u8u8;
JORM_API jorm_logic_constant_kernel jorma__andC_c1_s16s16, jorma__andC_c1_s32s32, jorma__andC_c1_u8u8,
    jorma__andC_c3_s16s16, jorma__andC_c3_s32s32, jorma__andC_c3_u8u8, jorma__andC_c4_s16s16, jorma__andC_c4_s32s32,
    jorma__andC_c4_u8u8;
JORM_API jorm_binary_kernel jorma__div_c1_f32f32f32, jorma__div_c1_s16s16s16, jorma__div_c1_s32s32s32,
    jorma__div_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__divC_c1_f32f32, jorma__divC_c1_s16s16, jorma__divC_c1_s32s32, jorma__divC_c1_u8u8,
    jorma__divC_c3_f32f32, jorma__divC_c3_s16s16, jorma__divC_c3_s32s32, jorma__divC_c3_u8u8, jorma__divC_c4_f32f32,
    jorma__divC_c4_s16s16, jorma__divC_c4_s32s32, jorma__divC_c4_u8u8;
JORM_API jorm_binary_kernel jorma__divr_c1_s16s16s16, jorma__divr_c1_s32s32s32, jorma__divr_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__divrC_c1_s16s16, jorma__divrC_c1_s32s32, jorma__divrC_c1_u8u8,
    jorma__divrC_c3_s16s16, jorma__divrC_c3_s32s32, jorma__divrC_c3_u8u8, jorma__divrC_c4_s16s16,
    jorma__divrC_c4_s32s32, jorma__divrC_c4_u8u8;
JORM_API jorm_ternary_constants_kernel jorma__mlaCC_c1_f32f32f32f32, jorma__mlaCC_c1_f32s16s16s16,
    jorma__mlaCC_c1_f32s32s32s32, jorma__mlaCC_c1_f32u8u8u8, jorma__mlaCC_c1_s16f32f32f32, jorma__mlaCC_c1_s16s16s16s16,
    jorma__mlaCC_c1_s16s32s32s32, jorma__mlaCC_c1_s16u8u8u8, jorma__mlaCC_c1_s32f32f32f32, jorma__mlaCC_c1_s32s16s16s16,
    jorma__mlaCC_c1_s32s32s32s32, jorma__mlaCC_c1_s32u8u8u8, jorma__mlaCC_c1_u8f32f32f32, jorma__mlaCC_c1_u8s16s16s16,
    jorma__mlaCC_c1_u8s32s32s32, jorma__mlaCC_c1_u8u8u8u8;
JORM_API jorm_ternary_constants_kernel jorma__mlsCC_c1_f32f32f32f32, jorma__mlsCC_c1_f32s16s16s16,
    jorma__mlsCC_c1_f32s32s32s32, jorma__mlsCC_c1_f32u8u8u8, jorma__mlsCC_c1_s16f32f32f32, jorma__mlsCC_c1_s16s16s16s16,
    jorma__mlsCC_c1_s16s32s32s32, jorma__mlsCC_c1_s16u8u8u8, jorma__mlsCC_c1_s32f32f32f32, jorma__mlsCC_c1_s32s16s16s16,
    jorma__mlsCC_c1_s32s32s32s32, jorma__mlsCC_c1_s32u8u8u8, jorma__mlsCC_c1_u8f32f32f32, jorma__mlsCC_c1_u8s16s16s16,
    jorma__mlsCC_c1_u8s32s32s32, jorma__mlsCC_c1_u8u8u8u8;
JORM_API jorm_binary_kernel jorma__mul_c1_f32f32f32, jorma__mul_c1_f32f32s16, jorma__mul_c1_f32f32s32,
    jorma__mul_c1_f32f32u8, jorma__mul_c1_f32s16s16, jorma__mul_c1_f32s16u8, jorma__mul_c1_f32s32s16,
    jorma__mul_c1_f32s32s32, jorma__mul_c1_f32s32u8, jorma__mul_c1_f32u8u8, jorma__mul_c1_s16s16s16,
    jorma__mul_c1_s16s16u8, jorma__mul_c1_s16u8u8, jorma__mul_c1_s32f32f32, jorma__mul_c1_s32f32s16,
    jorma__mul_c1_s32f32s32, jorma__mul_c1_s32f32u8, jorma__mul_c1_s32s16s16, jorma__mul_c1_s32s16u8,
    jorma__mul_c1_s32s32s16, jorma__mul_c1_s32s32s32, jorma__mul_c1_s32s32u8, jorma__mul_c1_s32u8u8,
    jorma__mul_c1_u8s16s16, jorma__mul_c1_u8s16u8, jorma__mul_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__mulC_c1_f32f32f32, jorma__mulC_c1_f32f32f64, jorma__mulC_c1_f32s16f32,
    jorma__mulC_c1_f32s16s16, jorma__mulC_c1_f32s16s32, jorma__mulC_c1_f32s32f32, jorma__mulC_c1_f32s32f64,
    jorma__mulC_c1_f32s32s32, jorma__mulC_c1_f32u8f32, jorma__mulC_c1_f32u8s32, jorma__mulC_c1_f32u8u8,
    jorma__mulC_c1_s16s16s16, jorma__mulC_c1_s16u8s32, jorma__mulC_c1_s16u8u8, jorma__mulC_c1_s32f32f32,
    jorma__mulC_c1_s32f32f64, jorma__mulC_c1_s32s16f32, jorma__mulC_c1_s32s16f64, jorma__mulC_c1_s32s16s16,
    jorma__mulC_c1_s32s16s32, jorma__mulC_c1_s32s32f32, jorma__mulC_c1_s32s32f64, jorma__mulC_c1_s32s32s32,
    jorma__mulC_c1_s32u8f32, jorma__mulC_c1_s32u8f64, jorma__mulC_c1_s32u8s32, jorma__mulC_c1_s32u8u8,
    jorma__mulC_c1_s8u8u8, jorma__mulC_c1_u8s16s16, jorma__mulC_c1_u8u8f32, jorma__mulC_c1_u8u8s32,
    jorma__mulC_c1_u8u8u8;
JORM_API jorm_unary_kernel jorma__neg_c1_f32f32, jorma__neg_c1_f32s16, jorma__neg_c1_f32s32, jorma__neg_c1_f32u8,
    jorma__neg_c1_s16f32, jorma__neg_c1_s16s16, jorma__neg_c1_s16s32, jorma__neg_c1_s16u8, jorma__neg_c1_s32f32,
    jorma__neg_c1_s32s16, jorma__neg_c1_s32s32, jorma__neg_c1_s32u8, jorma__neg_c1_u8f32, jorma__neg_c1_u8s16,
    jorma__neg_c1_u8s32, jorma__neg_c1_u8u8;
JORM_API jorm_unary_kernel jorma__negq_c1_s16s16, jorma__negq_c1_s16s32, jorma__negq_c1_s32s32, jorma__negq_c1_u8s16,
    jorma__negq_c1_u8s32;
JORM_API jorm_not_kernel jorma__not_c1_s16s16, jorma__not_c1_s32s32, jorma__not_c1_u8u8;
JORM_API jorm_logic_kernel jorma__orr_c1_s16s16s16, jorma__orr_c1_s32s32s32, jorma__orr_c1_u8u8u8;
JORM_API jorm_logic_constant_kernel jorma__orrC_c1_s16s16, jorma__orrC_c1_s32s32, jorma__orrC_c1_u8u8,
    jorma__orrC_c3_s16s16, jorma__orrC_c3_s32s32, jorma__orrC_c3_u8u8, jorma__orrC_c4_s16s16, jorma__orrC_c4_s32s32,
    jorma__orrC_c4_u8u8;
JORM_API jorm_constant_kernel jorma__rdivC_c1_f32f32, jorma__rdivC_c1_s16s16, jorma__rdivC_c1_s32s32,
    jorma__rdivC_c1_u8u8, jorma__rdivC_c3_f32f32, jorma__rdivC_c3_s16s16, jorma__rdivC_c3_s32s32, jorma__rdivC_c3_u8u8,
    jorma__rdivC_c4_f32f32, jorma__rdivC_c4_s16s16, jorma__rdivC_c4_s32s32, jorma__rdivC_c4_u8u8;
JORM_API jorm_constant_kernel jorma__rdivrC_c1_s16s16, jorma__rdivrC_c1_s32s32, jorma__rdivrC_c1_u8u8,
    jorma__rdivrC_c3_s16s16, jorma__rdivrC_c3_s32s32, jorma__rdivrC_c3_u8u8, jorma__rdivrC_c4_s16s16,
    jorma__rdivrC_c4_s32s32, jorma__rdivrC_c4_u8u8;
JORM_API jorm_binary_kernel jorma__rsub_c1_f32f32f32, jorma__rsub_c1_f32f32s16, jorma__rsub_c1_f32f32s32,
    jorma__rsub_c1_f32f32u8, jorma__rsub_c1_f32s16s16, jorma__rsub_c1_f32s16u8, jorma__rsub_c1_f32s32s16,
    jorma__rsub_c1_f32s32s32, jorma__rsub_c1_f32s32u8, jorma__rsub_c1_f32u8u8, jorma__rsub_c1_s16s16s16,
    jorma__rsub_c1_s16s16u8, jorma__rsub_c1_s16u8u8, jorma__rsub_c1_s32f32f32, jorma__rsub_c1_s32f32s16,
    jorma__rsub_c1_s32f32s32, jorma__rsub_c1_s32f32u8, jorma__rsub_c1_s32s16s16, jorma__rsub_c1_s32s16u8,
    jorma__rsub_c1_s32s32s16, jorma__rsub_c1_s32s32s32, jorma__rsub_c1_s32s32u8, jorma__rsub_c1_s32u8u8,
    jorma__rsub_c1_u8s16s16, jorma__rsub_c1_u8s16u8, jorma__rsub_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__rsubC_c1_f32f32f32, jorma__rsubC_c1_f32f32f64, jorma__rsubC_c1_f32s16s16,
    jorma__rsubC_c1_f32s16s32, jorma__rsubC_c1_f32s32f64, jorma__rsubC_c1_f32s32s32, jorma__rsubC_c1_f32u8s32,
    jorma__rsubC_c1_f32u8u8, jorma__rsubC_c1_s16s16s16, jorma__rsubC_c1_s16u8s32, jorma__rsubC_c1_s16u8u8,
    jorma__rsubC_c1_s32f32f32, jorma__rsubC_c1_s32f32f64, jorma__rsubC_c1_s32s16s16, jorma__rsubC_c1_s32s16s32,
    jorma__rsubC_c1_s32s32s32, jorma__rsubC_c1_s32u8s32, jorma__rsubC_c1_s32u8u8, jorma__rsubC_c1_u8s16s16,
    jorma__rsubC_c1_u8u8s32, jorma__rsubC_c1_u8u8u8;
JORM_API jorm_binary_kernel jorma__rsubq_c1_f32s16s16, jorma__rsubq_c1_f32s16u8, jorma__rsubq_c1_f32s32s16,
    jorma__rsubq_c1_f32s32s32, jorma__rsubq_c1_f32s32u8, jorma__rsubq_c1_f32u8u8, jorma__rsubq_c1_s16s16s16,
    jorma__rsubq_c1_s16s16u8, jorma__rsubq_c1_s16u8u8, jorma__rsubq_c1_s32s16s16, jorma__rsubq_c1_s32s16u8,
    jorma__rsubq_c1_s32s32s16, jorma__rsubq_c1_s32s32s32, jorma__rsubq_c1_s32s32u8, jorma__rsubq_c1_s32u8u8,
    jorma__rsubq_c1_s8u8u8, jorma__rsubq_c1_u8s16s16, jorma__rsubq_c1_u8s16u8, jorma__rsubq_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__rsubqC_c1_f32s16s32, jorma__rsubqC_c1_f32s32s32, jorma__rsubqC_c1_f32u8s32,
    jorma__rsubqC_c1_s16s16s16, jorma__rsubqC_c1_s16u8s32, jorma__rsubqC_c1_s32s16s32, jorma__rsubqC_c1_s32s32s32,
    jorma__rsubqC_c1_s32u8s32, jorma__rsubqC_c1_s8u8u8, jorma__rsubqC_c1_u8s16s16, jorma__rsubqC_c1_u8u8s32,
    jorma__rsubqC_c1_u8u8u8;
JORM_API jorm_unary_kernel jorma__sqr_c1_f32f32, jorma__sqr_c1_f32s16, jorma__sqr_c1_f32s32, jorma__sqr_c1_f32u8,
    jorma__sqr_c1_s16s16, jorma__sqr_c1_s16u8, jorma__sqr_c1_s32f32, jorma__sqr_c1_s32s16, jorma__sqr_c1_s32s32,
    jorma__sqr_c1_s32u8, jorma__sqr_c1_u8s16, jorma__sqr_c1_u8u8;
JORM_API jorm_binary_kernel jorma__sub_c1_f32f32f32, jorma__sub_c1_f32f32s16, jorma__sub_c1_f32f32s32,
    jorma__sub_c1_f32f32u8, jorma__sub_c1_f32s16s16, jorma__sub_c1_f32s16u8, jorma__sub_c1_f32s32s16,
    jorma__sub_c1_f32s32s32, jorma__sub_c1_f32s32u8, jorma__sub_c1_f32u8u8, jorma__sub_c1_s16s16s16,
    jorma__sub_c1_s16s16u8, jorma__sub_c1_s16u8u8, jorma__sub_c1_s32f32f32, jorma__sub_c1_s32f32s16,
    jorma__sub_c1_s32f32s32, jorma__sub_c1_s32f32u8, jorma__sub_c1_s32s16s16, jorma__sub_c1_s32s16u8,
    jorma__sub_c1_s32s32s16, jorma__sub_c1_s32s32s32, jorma__sub_c1_s32s32u8, jorma__sub_c1_s32u8u8,
    jorma__sub_c1_u8s16s16, jorma__sub_c1_u8s16u8, jorma__sub_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__subC_c1_f32f32f32, jorma__subC_c1_f32f32f64, jorma__subC_c1_f32s16s16,
    jorma__subC_c1_f32s16s32, jorma__subC_c1_f32s32f64, jorma__subC_c1_f32s32s32, jorma__subC_c1_f32u8s32,
    jorma__subC_c1_f32u8u8, jorma__subC_c1_s16s16s16, jorma__subC_c1_s16u8s32, jorma__subC_c1_s16u8u8,
    jorma__subC_c1_s32f32f32, jorma__subC_c1_s32f32f64, jorma__subC_c1_s32s16s16, jorma__subC_c1_s32s16s32,
    jorma__subC_c1_s32s32s32, jorma__subC_c1_s32u8s32, jorma__subC_c1_s32u8u8, jorma__subC_c1_u8s16s16,
    jorma__subC_c1_u8u8s32, jorma__subC_c1_u8u8u8;
JORM_API jorm_binary_kernel jorma__subq_c1_f32s16s16, jorma__subq_c1_f32s16u8, jorma__subq_c1_f32s32s16,
    jorma__subq_c1_f32s32s32, jorma__subq_c1_f32s32u8, jorma__subq_c1_f32u8u8, jorma__subq_c1_s16s16s16,
    jorma__subq_c1_s16s16u8, jorma__subq_c1_s16u8u8, jorma__subq_c1_s32s16s16, jorma__subq_c1_s32s16u8,
    jorma__subq_c1_s32s32s16, jorma__subq_c1_s32s32s32, jorma__subq_c1_s32s32u8, jorma__subq_c1_s32u8u8,
    jorma__subq_c1_s8u8u8, jorma__subq_c1_u8s16s16, jorma__subq_c1_u8s16u8, jorma__subq_c1_u8u8u8;
JORM_API jorm_constant_kernel jorma__subqC_c1_f32s16s32, jorma__subqC_c1_f32s32s32, jorma__subqC_c1_f32u8s32,
    jorma__subqC_c1_s16s16s16, jorma__subqC_c1_s16u8s32, jorma__subqC_c1_s32s16s32, jorma__subqC_c1_s32s32s32,
    jorma__subqC_c1_s32u8s32, jorma__subqC_c1_s8u8u8, jorma__subqC_c1_u8s16s16, jorma__subqC_c1_u8u8s32,
    jorma__subqC_c1_u8u8u8;
JORM_API jorm_logic_kernel jorma__xor_c1_s16s16s16, jorma__xor_c1_s32s32s32, jorma__xor_c1_u8u8u8;
JORM_API jorm_logic_constant_kernel jorma__xorC_c1_s16s16, jorma__xorC_c1_s32s32, jorma__xorC_c1_u8u8,
    jorma__xorC_c3_s16s16, jorma__xorC_c3_s32s32, jorma__xorC_c3_u8u8, jorma__xorC_c4_s16s16, jorma__xorC_c4_s32s32,
    jorma__xorC_c4_u8u8;
JORM_API jorm_ternary_kernel jorma__mla_c1_u8u8u8u8, jorma__mla_c1_u8u8u8s16, jorma__mla_c1_u8s16u8u8,
    jorma__mla_c1_u8s16u8s16, jorma__mla_c1_u8s16s16u8, jorma__mla_c1_u8s16s16s16, jorma__mla_c1_s16u8u8u8,
    jorma__mla_c1_s16u8u8s16, jorma__mla_c1_s16s16u8u8, jorma__mla_c1_s16s16u8s16, jorma__mla_c1_s16s16s16u8,
    jorma__mla_c1_s16s16s16s16, jorma__mla_c1_s32u8u8u8, jorma__mla_c1_s32u8u8s16, jorma__mla_c1_s32u8u8s32,
    jorma__mla_c1_s32s16u8u8, jorma__mla_c1_s32s16u8s16, jorma__mla_c1_s32s16u8s32, jorma__mla_c1_s32s16s16u8,
    jorma__mla_c1_s32s16s16s16, jorma__mla_c1_s32s16s16s32, jorma__mla_c1_s32s32u8s32, jorma__mla_c1_s32s32s16s32,
    jorma__mla_c1_s32s32s32s32, jorma__mla_c1_f32f32f32f32, jorma__mla_c1_f32f32f32s32, jorma__mla_c1_f32f32f32s16,
    jorma__mla_c1_f32f32f32u8, jorma__mla_c1_f32f32s32f32, jorma__mla_c1_f32f32s16f32, jorma__mla_c1_f32f32u8f32,
    jorma__mla_c1_f32s32s32f32, jorma__mla_c1_f32s16s16f32, jorma__mla_c1_f32s16s16s16, jorma__mla_c1_f32u8u8f32,
    jorma__mla_c1_f32u8u8u8;
JORM_API jorm_ternary_constant_kernel jorma__mlaC_c1_u8u8u8s32, jorma__mlaC_c1_u8u8s16s32, jorma__mlaC_c1_u8s16u8s32,
    jorma__mlaC_c1_u8s16s16s32, jorma__mlaC_c1_s16u8u8s32, jorma__mlaC_c1_s16u8s16s32, jorma__mlaC_c1_s16s16u8s32,
    jorma__mlaC_c1_s16s16s16s32, jorma__mlaC_c1_s32u8u8s32, jorma__mlaC_c1_s32u8s16s32, jorma__mlaC_c1_s32u8s32s32,
    jorma__mlaC_c1_s32s16u8s32, jorma__mlaC_c1_s32s16s16s32, jorma__mlaC_c1_s32s16s32s32, jorma__mlaC_c1_s32s32u8s32,
    jorma__mlaC_c1_s32s32s16s32, jorma__mlaC_c1_s32s32s32s32, jorma__mlaC_c1_f32u8u8f32, jorma__mlaC_c1_f32u8s16f32,
    jorma__mlaC_c1_f32u8s32f32, jorma__mlaC_c1_f32u8f32f32, jorma__mlaC_c1_f32s16u8f32, jorma__mlaC_c1_f32s16s16f32,
    jorma__mlaC_c1_f32s16s32f32, jorma__mlaC_c1_f32s16f32f32, jorma__mlaC_c1_f32s32u8f32, jorma__mlaC_c1_f32s32s16f32,
    jorma__mlaC_c1_f32s32s32f32, jorma__mlaC_c1_f32s32f32f32, jorma__mlaC_c1_f32f32u8f32, jorma__mlaC_c1_f32f32s16f32,
    jorma__mlaC_c1_f32f32s32f32, jorma__mlaC_c1_f32f32f32f32, jorma__mlaC_c1_u8u8u8f32, jorma__mlaC_c1_s16s16s16f32,
    jorma__mlaC_c1_s32s32s32f64, jorma__mlaC_c1_f32f32f32f64;
JORM_API jorm_ternary_kernel jorma__mls_c1_u8u8u8u8, jorma__mls_c1_u8u8u8s16, jorma__mls_c1_u8s16u8u8,
    jorma__mls_c1_u8s16u8s16, jorma__mls_c1_u8s16s16u8, jorma__mls_c1_u8s16s16s16, jorma__mls_c1_s16u8u8u8,
    jorma__mls_c1_s16u8u8s16, jorma__mls_c1_s16s16u8u8, jorma__mls_c1_s16s16u8s16, jorma__mls_c1_s16s16s16u8,
    jorma__mls_c1_s16s16s16s16, jorma__mls_c1_s32u8u8u8, jorma__mls_c1_s32u8u8s16, jorma__mls_c1_s32u8u8s32,
    jorma__mls_c1_s32s16u8u8, jorma__mls_c1_s32s16u8s16, jorma__mls_c1_s32s16u8s32, jorma__mls_c1_s32s16s16u8,
    jorma__mls_c1_s32s16s16s16, jorma__mls_c1_s32s16s16s32, jorma__mls_c1_s32s32u8s32, jorma__mls_c1_s32s32s16s32,
    jorma__mls_c1_s32s32s32s32, jorma__mls_c1_f32f32f32f32, jorma__mls_c1_f32f32f32s32, jorma__mls_c1_f32f32f32s16,
    jorma__mls_c1_f32f32f32u8, jorma__mls_c1_f32f32s32f32, jorma__mls_c1_f32f32s16f32, jorma__mls_c1_f32f32u8f32,
    jorma__mls_c1_f32s32s32f32, jorma__mls_c1_f32s16s16f32, jorma__mls_c1_f32s16s16s16, jorma__mls_c1_f32u8u8f32,
    jorma__mls_c1_f32u8u8u8;
JORM_API jorm_ternary_constant_kernel jorma__mlsC_c1_u8u8u8s32, jorma__mlsC_c1_u8u8s16s32, jorma__mlsC_c1_u8s16u8s32,
    jorma__mlsC_c1_u8s16s16s32, jorma__mlsC_c1_s16u8u8s32, jorma__mlsC_c1_s16u8s16s32, jorma__mlsC_c1_s16s16u8s32,
    jorma__mlsC_c1_s16s16s16s32, jorma__mlsC_c1_s32u8u8s32, jorma__mlsC_c1_s32u8s16s32, jorma__mlsC_c1_s32u8s32s32,
    jorma__mlsC_c1_s32s16u8s32, jorma__mlsC_c1_s32s16s16s32, jorma__mlsC_c1_s32s16s32s32, jorma__mlsC_c1_s32s32u8s32,
    jorma__mlsC_c1_s32s32s16s32, jorma__mlsC_c1_s32s32s32s32, jorma__mlsC_c1_f32u8u8f32, jorma__mlsC_c1_f32u8s16f32,
    jorma__mlsC_c1_f32u8s32f32, jorma__mlsC_c1_f32u8f32f32, jorma__mlsC_c1_f32s16u8f32, jorma__mlsC_c1_f32s16s16f32,
    jorma__mlsC_c1_f32s16s32f32, jorma__mlsC_c1_f32s16f32f32, jorma__mlsC_c1_f32s32u8f32, jorma__mlsC_c1_f32s32s16f32,
    jorma__mlsC_c1_f32s32s32f32, jorma__mlsC_c1_f32s32f32f32, jorma__mlsC_c1_f32f32u8f32, jorma__mlsC_c1_f32f32s16f32,
    jorma__mlsC_c1_f32f32s32f32, jorma__mlsC_c1_f32f32f32f32, jorma__mlsC_c1_u8u8u8f32, jorma__mlsC_c1_s16s16s16f32,
    jorma__mlsC_c1_s32s32s32f64, jorma__mlsC_c1_f32f32f32f64;

/* The kernel of jorma__add for three types (of jorm_binary_kernel). Without one: jorma_proc_einval when a code is ill
 * formed, else jorma_proc_enotsup. The status that calling it would give goes to `status`, unless that is null. */
JORM_API jorm_proc *jorma__aaddfun_imp(uint32_t dst_type, uint32_t src1_type, uint32_t src2_type, int32_t *status);

/* Stubs of kernel tables: they take any arguments and return JORM_EINVAL, JORM_ENOTIMP and JORM_ENOTSUP. */
JORM_API int64_t jorma_proc_einval(void);
JORM_API int64_t jorma_proc_enotimp(void);
JORM_API int64_t jorma_proc_enotsup(void);

/* ---- The packed call ----
 *
 * Runs a per-slice entry (JormTGA...) over arrays of four axes, cut into pieces of two or three axes. Axes that follow
 * each other in memory in every array are merged, so that dense planes run as one piece. Fill the record with one of
 * the pack functions, for as many arrays as the entry takes, then call:
 *
 *     status = jorma_call(jorma_mappackL(&record, code, entry, ...));
 *
 * The vectors are given at their first used slot; each array has a type, a base (null: the array is left out), an
 * origin (null: zeros) and strides. piece_axes is clamped to 2 or 3. jorma_call returns the first status other than 0
 * of the entry, JORM_EINVAL for a bad count or a null record, entry or size. The entry is called as
 *     entry(xe, options, parameters, word, size, type, start, strides of each array). */
typedef struct jorm_pack_array {
    uint32_t type;
    void *base;
    const int32_t *origin; /* addressed at slot 0, or null */
    const int32_t *stride; /* addressed at slot 0 */
} jorm_pack_array;

typedef struct jorm_pack {
    uint16_t count;      /* arrays, 1 to 5 */
    int16_t reduce_hint; /* handed to the axis reduction when bits 8 and 9 of the options are set */
    uint32_t opcode;
    uint32_t codes; /* element types, four bits each from bit 0; bits 24-27 the channel code */
    jorm_proc *entry;
    const char *name; /* "unknown" */
    jorm_xe *environment;
    uint64_t options;
    const void *parameters;
    uint32_t slots;
    int32_t piece_axes;
    const int32_t *size; /* addressed at slot 0 */
    jorm_pack_array array[5];
} jorm_pack;

JORM_API int64_t jorma_call(const jorm_pack *record);
JORM_API jorm_pack *jorma_genpackL(jorm_pack *record, uint32_t opcode, jorm_proc *entry, jorm_xe *xe, uint64_t options,
                                   const void *parameters, uint32_t word, int32_t piece_axes, const int32_t *size,
                                   uint32_t type1, const void *base1, const int32_t *origin1, const int32_t *stride1);
JORM_API jorm_pack *jorma_mappackL(jorm_pack *record, uint32_t opcode, jorm_proc *entry, jorm_xe *xe, uint64_t options,
                                   const void *parameters, uint32_t word, int32_t piece_axes, const int32_t *size,
                                   uint32_t type1, const void *base1, const int32_t *origin1, const int32_t *stride1,
                                   uint32_t type2, const void *base2, const int32_t *origin2, const int32_t *stride2);
JORM_API jorm_pack *jorma_zippackL(jorm_pack *record, uint32_t opcode, jorm_proc *entry, jorm_xe *xe, uint64_t options,
                                   const void *parameters, uint32_t word, int32_t piece_axes, const int32_t *size,
                                   uint32_t type1, const void *base1, const int32_t *origin1, const int32_t *stride1,
                                   uint32_t type2, const void *base2, const int32_t *origin2, const int32_t *stride2,
                                   uint32_t type3, const void *base3, const int32_t *origin3, const int32_t *stride3);
JORM_API jorm_pack *jorma_zip3packL(jorm_pack *record, uint32_t opcode, jorm_proc *entry, jorm_xe *xe, uint64_t options,
                                    const void *parameters, uint32_t word, int32_t piece_axes, const int32_t *size,
                                    uint32_t type1, const void *base1, const int32_t *origin1, const int32_t *stride1,
                                    uint32_t type2, const void *base2, const int32_t *origin2, const int32_t *stride2,
                                    uint32_t type3, const void *base3, const int32_t *origin3, const int32_t *stride3,
                                    uint32_t type4, const void *base4, const int32_t *origin4, const int32_t *stride4);
JORM_API jorm_pack *jorma_zip4packL(jorm_pack *record, uint32_t opcode, jorm_proc *entry, jorm_xe *xe, uint64_t options,
                                    const void *parameters, uint32_t word, int32_t piece_axes, const int32_t *size,
                                    uint32_t type1, const void *base1, const int32_t *origin1, const int32_t *stride1,
                                    uint32_t type2, const void *base2, const int32_t *origin2, const int32_t *stride2,
                                    uint32_t type3, const void *base3, const int32_t *origin3, const int32_t *stride3,
                                    uint32_t type4, const void *base4, const int32_t *origin4, const int32_t *stride4,
                                    uint32_t type5, const void *base5, const int32_t *origin5, const int32_t *stride5);

#endif
