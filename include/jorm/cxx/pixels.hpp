/// \file
/// Copies, fills, conversions, comparisons, thresholds, resizing and matrix products.
#ifndef JORM_CXX_PIXELS_HPP
#define JORM_CXX_PIXELS_HPP

#include "jorm/compare.h"
#include "jorm/convert.h"
#include "jorm/copy.h"
#include "jorm/cxx/arith.hpp"
#include "jorm/matrix.h"
#include "jorm/resample.h"
#include "jorm/threshold.h"

namespace jorm {
inline namespace cxx {

// ---- Copies and fills: jorm/copy.h ----

struct copy_options {
    optional_mask mask = {}; ///< copy what it selects, leave the rest
    bool invert = false;     ///< the mask selects what is not 255
    rectangle region = {};
    position at = {}, at_mask = {};
    environment *env = nullptr;
};

/// dst = src; equal types.
template <class Errors = throwing>
returns<Errors> copy(const target &dst, const source &src, const copy_options &o = {}) {
    if (!o.mask.get())
        return Errors::report(
            JormCopy(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region), detail::slots(o.at)));
    return Errors::report(JormCopyEx(detail::xe(o.env), detail::mask_bits(o.invert), dst.get(), src.get(), o.mask.get(),
                                     detail::site(o.region), detail::slots(o.at), detail::slots(o.at_mask)));
}

/// What stands beyond the edge of a picture.
enum class border_mode : uint32_t {
    none = JORM_BORDER_NUL,
    constant = JORM_BORDER_CONST,
    replicate = JORM_BORDER_REPLICATE,   ///< the nearest edge pixel
    wrap = JORM_BORDER_WRAP,             ///< the picture again
    reflect = JORM_BORDER_REFLECT,       ///< its mirror image, the edge repeated
    reflect101 = JORM_BORDER_REFLECT101, ///< its mirror image about the edge pixel
};

struct border_options {
    border_mode border = border_mode::reflect101;
    values value = 0; ///< for border_mode::constant
    rectangle region = {};
    position at = {};          ///< the pixel of the picture that the block begins with; may be negative
    rectangle src_region = {}; ///< the part of src that counts as the picture
    environment *env = nullptr;
};

/// A block of a picture that may reach outside: pixel i of dst is pixel at + i of src, which goes on beyond its edges.
template <class Errors = throwing>
returns<Errors> copy_bordered(const target &dst, const source &src, const border_options &o = {}) {
    const jorm_border border = {uint32_t(o.border), 0, {o.value[0], o.value[1], o.value[2], o.value[3]}};
    if (o.src_region == rectangle())
        return Errors::report(JormCopyMkb(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region),
                                          detail::slots(o.at), &border));
    return Errors::report(JormCopyRMkb(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region),
                                       detail::slots(o.at), &border, detail::site(o.src_region)));
}

struct fill_options {
    optional_mask mask = {};              ///< fill what it selects
    bool invert = false;                  ///< the mask selects what is not 255
    std::optional<values> otherwise = {}; ///< what the rest is filled with; left out, the rest stays
    rectangle region = {};
    position at_mask = {};
    environment *env = nullptr;
};

/// dst = v, rounded and clamped.
template <class Errors = throwing>
returns<Errors> fill(const target &dst, const values &v, const fill_options &o = {}) {
    const uint64_t bits = detail::mask_bits(o.invert);
    if (!o.mask.get())
        return Errors::report(JormFill(detail::xe(o.env), 0, dst.get(), detail::site(o.region), v.data()));
    if (!o.otherwise)
        return Errors::report(JormFillEx(detail::xe(o.env), bits, dst.get(), o.mask.get(), detail::site(o.region),
                                         detail::slots(o.at_mask), v.data()));
    return Errors::report(JormFillEx2(detail::xe(o.env), bits, dst.get(), o.mask.get(), detail::site(o.region),
                                      detail::slots(o.at_mask), v.data(), o.otherwise->data()));
}

// ---- Conversions: jorm/convert.h ----

/// An interval of sample values for each channel: one for all as `{lo, hi}`. NaN in lo asks for the usual one of the
/// element type, lo > hi for the measured one.
struct ranges {
    vrng of[4];
    constexpr ranges(double lo, double hi) noexcept : of{{lo, hi}, {lo, hi}, {lo, hi}, {lo, hi}} {}
};

/// dst = src * gain + offset, rounded and clamped: contrast, depth.
template <class Errors = throwing>
returns<Errors> gain(const target &dst, const source &src, const values &gain, const values &offset = 0,
                     const place_options &o = {}) {
    return Errors::report(JormGain(detail::xe(o.env), 0, dst.get(), src.get(), gain.data(), offset.data(),
                                   detail::site(o.region), detail::slots(o.at)));
}

struct convert_options {
    std::optional<ranges> to = {};   ///< the range of the results; left out, values are kept
    std::optional<ranges> from = {}; ///< the range of the source that becomes `to`; left out, it is measured
    rectangle region = {};
    position at = {};
    environment *env = nullptr;
};

/// dst = src in another type, or with `.to` carried from one range of values onto another.
template <class Errors = throwing>
returns<Errors> convert(const target &dst, const source &src, const convert_options &o = {}) {
    ranges to = o.to.value_or(ranges(0, 0)); // the C interface writes the ranges used
    return Errors::report(JormVConvert(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region),
                                       detail::slots(o.at), o.to ? to.of : nullptr, o.from ? o.from->of : nullptr));
}

struct rescale_options {
    values scale = 1;                ///< by how much the range grows
    values offset = 0;               ///< where it begins then
    std::optional<ranges> from = {}; ///< the range of the source; left out, it is measured
    rectangle region = {};
    position at = {};
    environment *env = nullptr;
};

/// Carries the range [lo, hi] of the source onto [offset, offset + (hi - lo) * scale], fitted into the type of dst.
template <class Errors = throwing>
returns<Errors> rescale(const target &dst, const source &src, const rescale_options &o = {}) {
    return Errors::report(JormConvert(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region),
                                      detail::slots(o.at), o.scale.data(), o.offset.data(),
                                      o.from ? o.from->of : nullptr));
}

// ---- Comparisons and thresholds: jorm/compare.h, jorm/threshold.h ----

enum class relation : uint32_t {
    equal = JORM_CMP_EQUAL,
    less = JORM_CMP_LESS,
    less_equal = JORM_CMP_LESS_EQUAL,
    greater = JORM_CMP_GREATER,
    greater_equal = JORM_CMP_GREATER_EQUAL,
};

/// With a value given, results are these two (0 where one is left out), otherwise masks: all bits set (1.0), or 0.
struct compare_options {
    std::optional<values> if_true = {}, if_false = {};
    rectangle region = {};
    position at = {}, at2 = {};
    environment *env = nullptr;
};

/// dst = where a stands in the relation to b.
template <class Errors = throwing>
returns<Errors> compare(const target &dst, const source &a, relation is, const source &b,
                        const compare_options &o = {}) {
    if (!o.if_true && !o.if_false)
        return Errors::report(JormCompare(detail::xe(o.env), 0, dst.get(), a.get(), b.get(), detail::site(o.region),
                                          detail::slots(o.at), detail::slots(o.at2), uint32_t(is)));
    return Errors::report(JormECompare(detail::xe(o.env), 0, dst.get(), a.get(), b.get(), detail::site(o.region),
                                       detail::slots(o.at), detail::slots(o.at2), uint32_t(is), detail::data(o.if_true),
                                       detail::data(o.if_false)));
}
/// The same with a constant for each channel.
template <class Errors = throwing>
returns<Errors> compare(const target &dst, const source &a, relation is, const values &b,
                        const compare_options &o = {}) {
    if (!o.if_true && !o.if_false)
        return Errors::report(JormCompareC(detail::xe(o.env), 0, dst.get(), a.get(), b.data(), detail::site(o.region),
                                           detail::slots(o.at), uint32_t(is)));
    return Errors::report(JormECompareC(detail::xe(o.env), 0, dst.get(), a.get(), b.data(), detail::site(o.region),
                                        detail::slots(o.at), uint32_t(is), detail::data(o.if_true),
                                        detail::data(o.if_false)));
}

enum class threshold_method : uint32_t {
    otsu = JORM_THRESHOLD_OTSU,
    usto = JORM_THRESHOLD_USTO, ///< dark marks on uneven ground become 0
    blur = JORM_THRESHOLD_BLUR, ///< Otsu's method on the smoothed picture
};

struct otsu_options {
    std::optional<ranges> range = {}; ///< the interval that is looked at
    uint32_t bins = 0;                ///< in so many bins; 0: the library's choice
    rectangle region = {};
    position at = {};
    environment *env = nullptr;
};

/// The largest value of the type (1.0) where src lies above the threshold that the method finds, else 0.
template <class Errors = throwing>
returns<Errors> threshold(const target &dst, const source &src, threshold_method by, const otsu_options &o = {}) {
    jorm_thhmethod method = {};
    method.word = uint32_t(by) | (o.range || o.bins ? uint32_t(JORM_THRESHOLD_OWN_RANGES) : 0u);
    for (int c = 0; c < 4; ++c) {
        method.ranges[c] = o.range ? o.range->of[c] : vrng{std::numeric_limits<double>::quiet_NaN(), 0};
        method.bins[c] = o.bins;
    }
    return Errors::report(JormThreshold(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region),
                                        detail::slots(o.at), &method, nullptr, 0));
}

namespace detail {
template <class Errors>
returns<Errors> immediate(const target &dst, const source &src, const values &lower, const values &upper, int32_t count,
                          const place_options &o) {
    double pairs[8];
    for (size_t c = 0; c < 4; ++c) pairs[2 * c] = lower[c], pairs[2 * c + 1] = upper[c];
    return Errors::report(
        JormThreshold(xe(o.env), 0, dst.get(), src.get(), site(o.region), slots(o.at), nullptr, pairs, count));
}
} // namespace detail

/// The same where src > level.
template <class Errors = throwing>
returns<Errors> threshold(const target &dst, const source &src, const values &level, const place_options &o = {}) {
    return detail::immediate<Errors>(dst, src, level, 0, 1, o);
}
/// The same where lower < src <= upper.
template <class Errors = throwing>
returns<Errors> threshold_between(const target &dst, const source &src, const values &lower, const values &upper,
                                  const place_options &o = {}) {
    return detail::immediate<Errors>(dst, src, lower, upper, 2, o);
}
/// The same where src > the mean of the 5 by 5 window around + offset.
template <class Errors = throwing>
returns<Errors> threshold_adaptive(const target &dst, const source &src, const values &offset,
                                   const place_options &o = {}) {
    return detail::immediate<Errors>(dst, src, offset, std::numeric_limits<double>::quiet_NaN(), 1, o);
}

/// The threshold of each channel by Otsu's method: src > it is the upper class.
template <class Errors = throwing>
returns<Errors, values> otsu_threshold(const source &src, const otsu_options &o = {}) {
    ranges used = o.range.value_or(ranges(std::numeric_limits<double>::quiet_NaN(), 0));
    uint32_t bins[4] = {o.bins, o.bins, o.bins, o.bins};
    return Errors::template make<values>(
        [&](values &found) {
            return JormComputeThresholdByOtsu(detail::xe(o.env), 0, src.get(), detail::site(o.region), found.data(),
                                              used.of, bins);
        },
        0.0);
}

// ---- Resizing: jorm/resample.h ----

/// Size of the destination per unit of the source; 0: from region to region; negative: mirrored.
struct factors {
    double rows = 0, columns = 0, planes = 0;
};

struct resize_options {
    factors by = {};
    factors offset = {}; ///< begin so many source pixels further
    rectangle region = {}, src_region = {};
    environment *env = nullptr;
};

/// Nearest pixels. Returns the factors used.
template <class Errors = throwing>
returns<Errors, factors> resize(const target &dst, const source &src, const resize_options &o = {}) {
    return Errors::template make<factors>([&](factors &used) {
        double by[4] = {o.by.planes, o.by.rows, o.by.columns, 1};
        const double offset[4] = {o.offset.planes, o.offset.rows, o.offset.columns, 0};
        const bool moved = offset[0] != 0 || offset[1] != 0 || offset[2] != 0;
        const int64_t s = moved ? JormEResize(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region),
                                              detail::site(o.src_region), by, offset)
                                : JormResize(detail::xe(o.env), 0, dst.get(), src.get(), detail::site(o.region),
                                             detail::site(o.src_region), by);
        used = {by[1], by[2], by[0]};
        return s;
    });
}

// ---- Matrix products: jorm/matrix.h. A matrix is a picture of one channel, float or double ----

struct matrix_options {
    environment *env = nullptr;
};

/// dst = a b.
template <class Errors = throwing>
returns<Errors> matmul(const target &dst, const source &a, const source &b, const matrix_options &o = {}) {
    return Errors::report(JormMulMM(detail::xe(o.env), 0, dst.get(), a.get(), b.get()));
}
/// dst = m v; vectors are a single row or column.
template <class Errors = throwing>
returns<Errors> matvec(const target &dst, const source &m, const source &v, const matrix_options &o = {}) {
    return Errors::report(JormMulMV(detail::xe(o.env), 0, dst.get(), m.get(), v.get()));
}
/// The same for every pixel (its channels are the vector), as for colours, or where that does not fit for every row.
template <class Errors = throwing>
returns<Errors> matvec_each(const target &dst, const source &m, const source &v, const matrix_options &o = {}) {
    return Errors::report(JormMulMV_n(detail::xe(o.env), 0, dst.get(), m.get(), v.get()));
}

} // namespace cxx
} // namespace jorm

#endif
