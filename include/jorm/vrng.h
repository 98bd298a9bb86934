/* libJorm value ranges: the interval of sample values that an array holds or is to hold.
 *
 * A range has a lower and an upper bound. It is valid when lo is finite and lo <= hi. NaN in lo asks for the usual
 * range of an element type, an infinite lo or lo > hi asks for a default. Arrays with several channels take one record
 * per channel, one after the other; a channel code (jorm/array.h) then tells how many.
 *
 * Element types (JORM_U8 ...) bring their full range: integers of up to 32 bits from their smallest to their largest
 * value, f32 all finite values, every other code [-infinity, +infinity].
 *
 * In names, after _$: I works in place on the first record, Q quantises the result to the element type, S accepts null
 * records, cn works per channel, 2 builds from two numbers, minmax from measured extrema (jorm/stats.h). Forms that are
 * not in place and have a source first copy it, unless it is null or the destination itself.
 *
 * The functions are pure. They return their first record unless stated otherwise, which may be null: then null is
 * returned and nothing done. Truth values are 1 and 0. */
#ifndef JORM_VRNG_H
#define JORM_VRNG_H

#include "jorm/types.h"

JORM_BEGIN_DOLLARS

/* A range of values, and intervals in double and in single precision. */
typedef struct vrng {
    double lo, hi;
} vrng;

typedef struct rngf64 {
    double lo, hi;
} rngf64;

typedef struct rngf32 {
    float lo, hi;
} rngf32;

struct jorm_minmax;

/* Construction: [0, 0]; [lo, hi]; [lo, hi] saturated to a type; the same for every channel. */
JORM_API vrng *__jorm_vrng__$(vrng *r);
JORM_API vrng *__jorm_vrng__$2(vrng *r, double lo, double hi);
JORM_API rngf64 *__jorm_rngf64__$2(rngf64 *r, double lo, double hi);
JORM_API rngf32 *__jorm_rngf32__$2(rngf32 *r, float lo, float hi);
JORM_API vrng *__jorm_vrng__$2$Q(uint32_t type, vrng *r, double lo, double hi);
JORM_API vrng *__jorm_vrng__$cn$2(vrng *ranges, uint32_t code, double lo, double hi);
JORM_API vrng *__jorm_vrng__$cn$2$Q(uint32_t type, vrng *ranges, uint32_t code, double lo, double hi);

/* Construction from extrema: the f32 minimum and maximum of channel 0, or of every channel up to the four that the
 * record has. A null record changes nothing. */
JORM_API vrng *__jorm_vrng__$minmax(vrng *r, const struct jorm_minmax *mm);
JORM_API vrng *__jorm_vrng__$minmax$Q(uint32_t type, vrng *r, const struct jorm_minmax *mm);
JORM_API vrng *__jorm_vrng__$cn$minmax(vrng *ranges, uint32_t code, const struct jorm_minmax *mm);
JORM_API vrng *__jorm_vrng__$cn$minmax$Q(uint32_t type, vrng *ranges, uint32_t code, const struct jorm_minmax *mm);

/* Repair to an element type. A range whose lo is NaN becomes [0, 255] for u8, s16 and s32, [0, 1] for other types. One
 * whose lo is infinite or above hi becomes the default `dflt` as it is, or without one the full range of the type.
 * Every other range, one with NaN in hi alone too, stays, or with Q is saturated. Per channel `dflts` has one record
 * per channel. */
JORM_API vrng *jorm_vrng_normalize(uint32_t type, vrng *r, const vrng *src, const vrng *dflt);
JORM_API vrng *jorm_vrng_normalize_$Q(uint32_t type, vrng *r, const vrng *src, const vrng *dflt);
JORM_API vrng *jorm_vrng_normalize_$QS(uint32_t type, vrng *r, const vrng *src, const vrng *dflt);
JORM_API vrng *jorm_vrng_normalize_$I(uint32_t type, vrng *r, const vrng *dflt);
JORM_API vrng *jorm_vrng_normalize_$IQ(uint32_t type, vrng *r, const vrng *dflt);
JORM_API vrng *jorm_vrng_normalize_$IQS(uint32_t type, vrng *r, const vrng *dflt);
JORM_API vrng *jorm_vrng_normalize_$cn(uint32_t type, vrng *ranges, const vrng *src, const vrng *dflts, uint32_t code);
JORM_API vrng *jorm_vrng_normalize_$cn$Q(uint32_t type, vrng *ranges, const vrng *src, const vrng *dflts,
                                         uint32_t code);
JORM_API vrng *jorm_vrng_normalize_$cn$QS(uint32_t type, vrng *ranges, const vrng *src, const vrng *dflts,
                                          uint32_t code);
JORM_API vrng *jorm_vrng_normalize_$cn$I(uint32_t type, vrng *ranges, const vrng *dflts, uint32_t code);
JORM_API vrng *jorm_vrng_normalize_$cn$IQ(uint32_t type, vrng *ranges, const vrng *dflts, uint32_t code);
JORM_API vrng *jorm_vrng_normalize_$cn$IQS(uint32_t type, vrng *ranges, const vrng *dflts, uint32_t code);

/* Saturation: r = `src` (null: r itself) quantised to a type. Integers of up to 32 bits: lo rounded down, hi rounded
 * up, each then limited to the type; a NaN bound becomes the type's own limit on its side. f32: each bound rounded to
 * single precision. Other types leave r as it is and do not read `src`. */
JORM_API vrng *jorm_vrng_saturate(uint32_t type, vrng *r, const vrng *src);
JORM_API vrng *jorm_vrng_saturate_$I(uint32_t type, vrng *r);
JORM_API vrng *jorm_vrng_saturate_$cn(uint32_t type, vrng *ranges, const vrng *src, uint32_t code);
JORM_API vrng *jorm_vrng_saturate_$cn$I(uint32_t type, vrng *ranges, uint32_t code);

/* Destination ranges for scaled values: per channel lo = offset, hi = (src.hi - src.lo) * scale + offset, fitted into
 * the full range of the type. Ranges that stick out on one side are all shifted by the same amount, which keeps their
 * places relative to each other, when they then fit; otherwise the bounds on that side are rounded outward and limited
 * to the type. Ranges that stick out on both sides are saturated. Null scales are 1, null offsets 0; `src` may be
 * `dst`. Returns 0, JORM_ENOTSUP for u64, s64, f64 and code 15, JORM_EINVAL for every other type without a range and
 * for null ranges; a failure writes nothing. The second form serves one channel. */
JORM_API int32_t jorm_vrng_scale_$cn$Q(uint32_t type, vrng *dst, const vrng *src, const double *scales,
                                       const double *offsets, uint32_t code);
JORM_API int32_t jorm_vrng_scale_$Q(uint32_t type, vrng *dst, const vrng *src, double scale, double offset);

/* Equality. Bounds are equal when, rounded to single precision, they differ by at most 1.1920929e-7, whatever their
 * magnitude; NaN equals nothing, nor do infinities. Two null pointers are equal, one is not. The x forms compare what
 * jorm_vrng_normalize_$IQ without default makes of the two; the operands stay as they are. */
JORM_API int32_t jorm_vrng_equal(const vrng *a, const vrng *b);
JORM_API int32_t jorm_vrng_equal_$S(const vrng *a, const vrng *b);
JORM_API int32_t jorm_vrng_equal_$cn(const vrng *a, const vrng *b, uint32_t code);
JORM_API int32_t jorm_vrng_equal_$cn$S(const vrng *a, const vrng *b, uint32_t code);
JORM_API int32_t jorm_vrng_xequal(uint32_t type, const vrng *a, const vrng *b);
JORM_API int32_t jorm_vrng_xequal_$S(uint32_t type, const vrng *a, const vrng *b);
JORM_API int32_t jorm_vrng_xequal_$cn(uint32_t type, const vrng *a, const vrng *b, uint32_t code);
JORM_API int32_t jorm_vrng_xequal_$cn$S(uint32_t type, const vrng *a, const vrng *b, uint32_t code);

/* 1 when there are fewer than two channels or every channel equals channel 0. */
JORM_API int32_t jorm_vrng_equalized(const vrng *ranges, uint32_t code);

/* Gives every channel the common range [smallest lo, largest hi], NaN bounds passed over; a single channel stays. The x
 * forms take the common range over what jorm_vrng_normalize_$IQ without default makes of the channels. */
JORM_API vrng *jorm_vrng_equalize(vrng *ranges, const vrng *src, uint32_t code);
JORM_API vrng *jorm_vrng_equalize_$I(vrng *ranges, uint32_t code);
JORM_API vrng *jorm_vrng_xequalize(uint32_t type, vrng *ranges, const vrng *src, uint32_t code);
JORM_API vrng *jorm_vrng_xequalize_$I(uint32_t type, vrng *ranges, uint32_t code);

/* Do all channels satisfy a condition? Always for no channel, never for null ranges otherwise.
 * uxchk: both bounds lie in [0, 2^bits - 1]; sxchk: in [-2^(bits-1), 2^(bits-1) - 1]; both also ask, when bits >
 * diffbits, that |hi - lo| <= 2^diffbits - 1. diffuxchk: |hi - lo| <= 2^bits - 1. m2chk: hi - lo, rounded to nearest
 * (ties to even), is at most 0 or a power of two below 2^31. */
JORM_API int32_t jorm_vrng_uxchk_$cn(const vrng *ranges, uint32_t code, int32_t bits, int32_t diffbits);
JORM_API int32_t jorm_vrng_sxchk_$cn(const vrng *ranges, uint32_t code, int32_t bits, int32_t diffbits);
JORM_API int32_t jorm_vrng_diffuxchk_$cn(const vrng *ranges, uint32_t code, int32_t bits);
JORM_API int32_t jorm_vrng_m2chk_$cn(const vrng *ranges, uint32_t code);

/* The map y = scale * x + offset that carries src onto dst. A source range no longer than 2^-23 gets scale 1 and the
 * result 0; otherwise the result is 1. offset = dst.lo - scale * src.lo in both cases. Null ranges give 0 and write
 * nothing; either output may be null. The second form works per channel. */
JORM_API int32_t jorm_vrng_solve(double *scale, double *offset, const vrng *dst, const vrng *src);
JORM_API void jorm_vrng_solve_$cn(double *scales, double *offsets, const vrng *dsts, const vrng *srcs, uint32_t code);

JORM_END_DOLLARS

#endif
