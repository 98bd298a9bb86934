// Value ranges.
#include "jorm/vrng.h"

#include "array/element.hpp"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

using namespace jorm;

static_assert(sizeof(vrng) == 16 && sizeof(rngf64) == 16 && sizeof(rngf32) == 8);

namespace {

bool has_range(uint32_t type) {
    return (type >= JORM_U8 && type <= JORM_U32) || (type >= JORM_S8 && type <= JORM_S32) || type == JORM_F32;
}

vrng full_range(uint32_t type) {
    if (!has_range(type)) return {-HUGE_VAL, HUGE_VAL};
    if (type == JORM_F32) return {-double(std::numeric_limits<float>::max()), std::numeric_limits<float>::max()};
    const auto values = double(int64_t(1) << 8 * element_size(type));
    return type >= JORM_S8 ? vrng{-values / 2, values / 2 - 1} : vrng{0, values - 1};
}

// Only an infinite lo or crossed bounds are out of order; NaN in hi alone passes.
bool in_order(const vrng &r) { return !std::isinf(r.lo) && !(r.lo > r.hi); }

// A rounded bound within the type. Adding 0 turns -0 into 0, as an integer would.
double limited(double bound, const vrng &type_range) {
    return (bound < type_range.lo ? type_range.lo : bound > type_range.hi ? type_range.hi : bound) + 0.0;
}
double lower_bound(uint32_t type, double lo, const vrng &type_range) {
    if (type == JORM_F32) return float(lo);
    return std::isnan(lo) ? type_range.lo : limited(std::floor(lo), type_range);
}
double upper_bound(uint32_t type, double hi, const vrng &type_range) {
    if (type == JORM_F32) return float(hi);
    return std::isnan(hi) ? type_range.hi : limited(std::ceil(hi), type_range);
}

vrng *saturate(uint32_t type, vrng *r, const vrng *src) {
    if (!r || !has_range(type)) return r;
    const vrng from = src ? *src : *r, whole = full_range(type);
    *r = {lower_bound(type, from.lo, whole), upper_bound(type, from.hi, whole)};
    return r;
}

enum class Quantise { no, yes };

vrng *normalize(uint32_t type, vrng *r, const vrng *dflt, Quantise quantise) {
    if (!r) return r;
    if (std::isnan(r->lo))
        *r = {0, type == JORM_U8 || type == JORM_S16 || type == JORM_S32 ? 255.0 : 1.0};
    else if (!in_order(*r))
        *r = dflt ? *dflt : full_range(type);
    else if (quantise == Quantise::yes)
        saturate(type, r, nullptr);
    return r;
}

vrng normalized(uint32_t type, vrng r) { return *normalize(type, &r, nullptr, Quantise::yes); }

// r = src, as far as there are two records.
vrng *assign(vrng *r, const vrng *src) {
    if (r && src && r != src) *r = *src;
    return r;
}

const vrng *channel(const vrng *ranges, int32_t c) { return ranges ? ranges + c : nullptr; }

template <class F> vrng *each_channel(vrng *ranges, uint32_t code, F &&f) {
    for (int32_t c = 0; ranges && c < stored_channels(code); ++c) f(ranges + c, c);
    return ranges;
}

template <class F> int32_t all_channels(const vrng *ranges, uint32_t code, F &&f) {
    for (int32_t c = 0; c < stored_channels(code); ++c)
        if (!ranges || !f(ranges[c], c)) return 0;
    return 1;
}

vrng *assign_cn(vrng *ranges, const vrng *src, uint32_t code) {
    return each_channel(ranges, code, [=](vrng *r, int32_t c) { assign(r, channel(src, c)); });
}

vrng *normalize_cn(uint32_t type, vrng *ranges, const vrng *dflts, uint32_t code, Quantise quantise) {
    return each_channel(ranges, code, [=](vrng *r, int32_t c) { normalize(type, r, channel(dflts, c), quantise); });
}

bool equal_bounds(double a, double b) {
    return std::fabs(float(a) - float(b)) <= std::numeric_limits<float>::epsilon();
}
bool equal(const vrng &a, const vrng &b) { return equal_bounds(a.lo, b.lo) && equal_bounds(a.hi, b.hi); }

vrng *set_all(vrng *ranges, uint32_t code, const vrng &common) {
    return each_channel(ranges, code, [&](vrng *r, int32_t) { *r = common; });
}

// The smallest range around all channels, beginning with `start`; f sees each channel first.
template <class F> vrng hull(const vrng *ranges, uint32_t code, vrng start, F &&f) {
    for (int32_t c = 0; c < stored_channels(code); ++c) {
        const vrng r = f(ranges[c]);
        start = {std::fmin(start.lo, r.lo), std::fmax(start.hi, r.hi)};
    }
    return start;
}

bool extent_within(const vrng &r, int32_t bits) { return std::fabs(r.hi - r.lo) <= std::ldexp(1, bits) - 1; }

// Both bounds in [lo, hi], and the extent in diffbits where that asks for more.
int32_t bits_check(const vrng *ranges, uint32_t code, double lo, double hi, int32_t bits, int32_t diffbits) {
    return all_channels(ranges, code, [=](const vrng &r, int32_t) {
        return r.lo >= lo && r.lo <= hi && r.hi >= lo && r.hi <= hi && (bits <= diffbits || extent_within(r, diffbits));
    });
}

// The bounds of a measured channel. The record begins with a request word; four minima and four maxima follow, each
// entry an i32, the f32 value and 16 further bytes.
vrng measured(const jorm_minmax *mm, int32_t c) {
    constexpr size_t entry = 24, minima = 4, maxima = 100, value = 4;
    const auto *bytes = reinterpret_cast<const unsigned char *>(mm);
    float lo, hi;
    std::memcpy(&lo, bytes + minima + entry * size_t(c) + value, sizeof lo);
    std::memcpy(&hi, bytes + maxima + entry * size_t(c) + value, sizeof hi);
    return {lo, hi};
}

} // namespace

vrng *__jorm_vrng__$(vrng *r) { return __jorm_vrng__$2(r, 0, 0); }
vrng *__jorm_vrng__$2(vrng *r, double lo, double hi) {
    const vrng range = {lo, hi};
    return assign(r, &range);
}
rngf64 *__jorm_rngf64__$2(rngf64 *r, double lo, double hi) {
    if (r) *r = {lo, hi};
    return r;
}
rngf32 *__jorm_rngf32__$2(rngf32 *r, float lo, float hi) {
    if (r) *r = {lo, hi};
    return r;
}
vrng *__jorm_vrng__$2$Q(uint32_t type, vrng *r, double lo, double hi) {
    return saturate(type, __jorm_vrng__$2(r, lo, hi), nullptr);
}
vrng *__jorm_vrng__$cn$2(vrng *ranges, uint32_t code, double lo, double hi) { return set_all(ranges, code, {lo, hi}); }
vrng *__jorm_vrng__$cn$2$Q(uint32_t type, vrng *ranges, uint32_t code, double lo, double hi) {
    return jorm_vrng_saturate_$cn$I(type, __jorm_vrng__$cn$2(ranges, code, lo, hi), code);
}

vrng *__jorm_vrng__$minmax(vrng *r, const jorm_minmax *mm) { return __jorm_vrng__$cn$minmax(r, 1, mm); }
vrng *__jorm_vrng__$minmax$Q(uint32_t type, vrng *r, const jorm_minmax *mm) {
    return __jorm_vrng__$cn$minmax$Q(type, r, 1, mm);
}
vrng *__jorm_vrng__$cn$minmax(vrng *ranges, uint32_t code, const jorm_minmax *mm) {
    return each_channel(ranges, code, [=](vrng *r, int32_t c) {
        if (mm && c < 4) *r = measured(mm, c);
    });
}
vrng *__jorm_vrng__$cn$minmax$Q(uint32_t type, vrng *ranges, uint32_t code, const jorm_minmax *mm) {
    if (!mm) return ranges;
    return jorm_vrng_saturate_$cn$I(type, __jorm_vrng__$cn$minmax(ranges, code, mm), code);
}

vrng *jorm_vrng_normalize(uint32_t type, vrng *r, const vrng *src, const vrng *dflt) {
    return normalize(type, assign(r, src), dflt, Quantise::no);
}
vrng *jorm_vrng_normalize_$Q(uint32_t type, vrng *r, const vrng *src, const vrng *dflt) {
    return normalize(type, assign(r, src), dflt, Quantise::yes);
}
vrng *jorm_vrng_normalize_$QS(uint32_t type, vrng *r, const vrng *src, const vrng *dflt) {
    return jorm_vrng_normalize_$Q(type, r, src, dflt);
}
vrng *jorm_vrng_normalize_$I(uint32_t type, vrng *r, const vrng *dflt) {
    return normalize(type, r, dflt, Quantise::no);
}
vrng *jorm_vrng_normalize_$IQ(uint32_t type, vrng *r, const vrng *dflt) {
    return normalize(type, r, dflt, Quantise::yes);
}
vrng *jorm_vrng_normalize_$IQS(uint32_t type, vrng *r, const vrng *dflt) {
    return jorm_vrng_normalize_$IQ(type, r, dflt);
}
vrng *jorm_vrng_normalize_$cn(uint32_t type, vrng *ranges, const vrng *src, const vrng *dflts, uint32_t code) {
    return normalize_cn(type, assign_cn(ranges, src, code), dflts, code, Quantise::no);
}
vrng *jorm_vrng_normalize_$cn$Q(uint32_t type, vrng *ranges, const vrng *src, const vrng *dflts, uint32_t code) {
    return normalize_cn(type, assign_cn(ranges, src, code), dflts, code, Quantise::yes);
}
vrng *jorm_vrng_normalize_$cn$QS(uint32_t type, vrng *ranges, const vrng *src, const vrng *dflts, uint32_t code) {
    return jorm_vrng_normalize_$cn$Q(type, ranges, src, dflts, code);
}
vrng *jorm_vrng_normalize_$cn$I(uint32_t type, vrng *ranges, const vrng *dflts, uint32_t code) {
    return normalize_cn(type, ranges, dflts, code, Quantise::no);
}
vrng *jorm_vrng_normalize_$cn$IQ(uint32_t type, vrng *ranges, const vrng *dflts, uint32_t code) {
    return normalize_cn(type, ranges, dflts, code, Quantise::yes);
}
vrng *jorm_vrng_normalize_$cn$IQS(uint32_t type, vrng *ranges, const vrng *dflts, uint32_t code) {
    return jorm_vrng_normalize_$cn$IQ(type, ranges, dflts, code);
}

vrng *jorm_vrng_saturate(uint32_t type, vrng *r, const vrng *src) { return saturate(type, r, src); }
vrng *jorm_vrng_saturate_$I(uint32_t type, vrng *r) { return saturate(type, r, nullptr); }
vrng *jorm_vrng_saturate_$cn(uint32_t type, vrng *ranges, const vrng *src, uint32_t code) {
    return each_channel(ranges, code, [=](vrng *r, int32_t c) { saturate(type, r, channel(src, c)); });
}
vrng *jorm_vrng_saturate_$cn$I(uint32_t type, vrng *ranges, uint32_t code) {
    return jorm_vrng_saturate_$cn(type, ranges, nullptr, code);
}

int32_t jorm_vrng_scale_$cn$Q(uint32_t type, vrng *dst, const vrng *src, const double *scales, const double *offsets,
                              uint32_t code) {
    if (!has_range(type)) return well_formed(type) ? JORM_ENOTSUP : JORM_EINVAL;
    if (!dst || !src) return JORM_EINVAL;

    const vrng range = full_range(type);
    double lowest = range.hi, highest = range.lo;
    each_channel(dst, code, [&](vrng *r, int32_t c) {
        const double offset = offsets ? offsets[c] : 0;
        *r = {offset, (src[c].hi - src[c].lo) * (scales ? scales[c] : 1) + offset};
        if (r->lo < lowest) lowest = r->lo;
        if (r->hi > highest) highest = r->hi;
    });

    const auto shift = [=](double by) {
        each_channel(dst, code, [=](vrng *r, int32_t) { *r = {r->lo + by, r->hi + by}; });
    };
    const bool below = lowest<range.lo, above = highest> range.hi;
    if (below && above) {
        jorm_vrng_saturate_$cn$I(type, dst, code);
    } else if (above) {
        const double excess = highest - range.hi;
        if (lowest - excess >= range.lo)
            shift(-excess);
        else
            each_channel(dst, code, [=](vrng *r, int32_t) { r->hi = limited(upper_bound(type, r->hi, range), range); });
    } else if (below) {
        const double excess = range.lo - lowest;
        if (highest + excess <= range.hi)
            shift(excess);
        else
            each_channel(dst, code, [=](vrng *r, int32_t) { r->lo = limited(lower_bound(type, r->lo, range), range); });
    }
    return JORM_OK;
}

int32_t jorm_vrng_scale_$Q(uint32_t type, vrng *dst, const vrng *src, double scale, double offset) {
    return jorm_vrng_scale_$cn$Q(type, dst, src, &scale, &offset, 1);
}

int32_t jorm_vrng_equal(const vrng *a, const vrng *b) { return a && b ? equal(*a, *b) : a == b; }
int32_t jorm_vrng_equal_$S(const vrng *a, const vrng *b) { return jorm_vrng_equal(a, b); }
int32_t jorm_vrng_equal_$cn(const vrng *a, const vrng *b, uint32_t code) {
    if (!a || !b) return a == b;
    return all_channels(a, code, [=](const vrng &r, int32_t c) { return equal(r, b[c]); });
}
int32_t jorm_vrng_equal_$cn$S(const vrng *a, const vrng *b, uint32_t code) { return jorm_vrng_equal_$cn(a, b, code); }

int32_t jorm_vrng_xequal(uint32_t type, const vrng *a, const vrng *b) { return jorm_vrng_xequal_$cn(type, a, b, 1); }
int32_t jorm_vrng_xequal_$S(uint32_t type, const vrng *a, const vrng *b) { return jorm_vrng_xequal(type, a, b); }
int32_t jorm_vrng_xequal_$cn(uint32_t type, const vrng *a, const vrng *b, uint32_t code) {
    if (!a || !b) return a == b;
    return all_channels(a, code,
                        [=](const vrng &r, int32_t c) { return equal(normalized(type, r), normalized(type, b[c])); });
}
int32_t jorm_vrng_xequal_$cn$S(uint32_t type, const vrng *a, const vrng *b, uint32_t code) {
    return jorm_vrng_xequal_$cn(type, a, b, code);
}

int32_t jorm_vrng_equalized(const vrng *ranges, uint32_t code) {
    return stored_channels(code) < 2 ||
           all_channels(ranges, code, [=](const vrng &r, int32_t c) { return c == 0 || equal(ranges[0], r); });
}

vrng *jorm_vrng_equalize(vrng *ranges, const vrng *src, uint32_t code) {
    return jorm_vrng_equalize_$I(assign_cn(ranges, src, code), code);
}
vrng *jorm_vrng_equalize_$I(vrng *ranges, uint32_t code) {
    if (!ranges || stored_channels(code) < 2) return ranges;
    return set_all(ranges, code, hull(ranges, code, ranges[0], [](const vrng &r) { return r; }));
}
vrng *jorm_vrng_xequalize(uint32_t type, vrng *ranges, const vrng *src, uint32_t code) {
    return jorm_vrng_xequalize_$I(type, assign_cn(ranges, src, code), code);
}
vrng *jorm_vrng_xequalize_$I(uint32_t type, vrng *ranges, uint32_t code) {
    if (!ranges || stored_channels(code) < 2) return ranges;
    const vrng range = full_range(type);
    return set_all(ranges, code,
                   hull(ranges, code, {range.hi, range.lo}, [=](const vrng &r) { return normalized(type, r); }));
}

int32_t jorm_vrng_uxchk_$cn(const vrng *ranges, uint32_t code, int32_t bits, int32_t diffbits) {
    return bits_check(ranges, code, 0, std::ldexp(1, bits) - 1, bits, diffbits);
}
int32_t jorm_vrng_sxchk_$cn(const vrng *ranges, uint32_t code, int32_t bits, int32_t diffbits) {
    const double half = std::ldexp(0.5, bits);
    return bits_check(ranges, code, -half, half - 1, bits, diffbits);
}
int32_t jorm_vrng_diffuxchk_$cn(const vrng *ranges, uint32_t code, int32_t bits) {
    return all_channels(ranges, code, [=](const vrng &r, int32_t) { return extent_within(r, bits); });
}
int32_t jorm_vrng_m2chk_$cn(const vrng *ranges, uint32_t code) {
    return all_channels(ranges, code, [](const vrng &r, int32_t) {
        const double extent = std::nearbyint(r.hi - r.lo);
        if (extent <= 0) return true;
        if (!(extent <= INT32_MAX)) return false;
        const auto k = uint32_t(extent);
        return (k & (k - 1)) == 0;
    });
}

int32_t jorm_vrng_solve(double *scale, double *offset, const vrng *dst, const vrng *src) {
    if (!dst || !src) return 0;
    const double extent = src->hi - src->lo;
    const bool degenerate = std::fabs(extent) <= double(std::numeric_limits<float>::epsilon());
    const double factor = degenerate ? 1 : (dst->hi - dst->lo) / extent;
    const double shift = dst->lo - factor * src->lo;
    if (scale) *scale = factor;
    if (offset) *offset = shift;
    return !degenerate;
}
void jorm_vrng_solve_$cn(double *scales, double *offsets, const vrng *dsts, const vrng *srcs, uint32_t code) {
    for (int32_t c = 0; c < stored_channels(code); ++c)
        jorm_vrng_solve(scales ? scales + c : nullptr, offsets ? offsets + c : nullptr, channel(dsts, c),
                        channel(srcs, c));
}
