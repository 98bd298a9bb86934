/// \file
/// Neighbourhood operations: filters, morphology, box counting. Borders, overlap, types: jorm/filter.h,
/// jorm/sepfilter.h, jorm/morphology.h.
///
///     gaussian(dst, src, {7, 7}, {.sigma = {1.5}});
///     open(dst, src, {3, 3});         // a rectangle of 3 by 3
///     open(dst, src, cross, {});      // a mask: elements of 255 belong to it
#ifndef JORM_CXX_FILTER_HPP
#define JORM_CXX_FILTER_HPP

#include "jorm/cxx/stats.hpp"
#include "jorm/filter.h"
#include "jorm/morphology.h"
#include "jorm/sepfilter.h"

namespace jorm {
inline namespace cxx {

/// A window of rows by columns, anchored at its centre or as given. 1 by 1 stands for 5 by 5, the default.
struct window {
    int32_t rows = 5, columns = 5;
    position anchor = {};
    int32_t planes = 1;
};

/// What windows that leave a view read.
enum class beyond : uint64_t {
    parent = 0,                   ///< the pixels of the picture that it is a part of; the mirror image beyond its edges
    mirror = JORM_OPT_OWN_BORDER, ///< the mirror image at the edges of the view itself
    memory = JORM_OPT_NO_BORDER,  ///< what lies there in memory, for which the caller vouches
};

struct filter_options {
    jorm::beyond beyond = jorm::beyond::parent;
    rectangle region = {};
    position at = {}; ///< where the source's region starts
    environment *env = nullptr;
};

namespace detail {
inline int32_t anchor(int32_t given, int32_t extent) {
    return given != automatic ? given : extent > 0 ? extent / 2 : 0;
}
inline jorm_seshape shape_of(const window &w) {
    return {{anchor(w.anchor.plane, w.planes), anchor(w.anchor.row, w.rows), anchor(w.anchor.column, w.columns), 0},
            {w.planes, w.rows, w.columns, 1}};
}
template <class Errors>
returns<Errors> filter(uint32_t kind, const target &dst, const source &src, const window &w, const filter_options &o) {
    const jorm_seshape shape = shape_of(w);
    return Errors::report(
        JormFilter(xe(o.env), uint64_t(o.beyond), dst.get(), src.get(), site(o.region), site(o.at), kind, &shape));
}
template <class Errors>
returns<Errors> morph(uint32_t op, const target &dst, const source &src, const jorm_strel &strel,
                      const filter_options &o) {
    return Errors::report(
        JormMorphop(xe(o.env), uint64_t(o.beyond), dst.get(), src.get(), site(o.region), site(o.at), op, &strel));
}
} // namespace detail

// Over a rectangle, one channel.
#define JORM_CXX_FILTER(name, kind)                                                                                    \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &src, const window &w, const filter_options &o = {}) {        \
        return detail::filter<Errors>(kind, dst, src, w, o);                                                           \
    }
// Over a mask of 8-bit elements, anchored at its centre or as given.
#define JORM_CXX_MORPH(name, op)                                                                                       \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &src, const source &mask, const filter_options &o = {},       \
                         const position &anchor = {}) {                                                                \
        return detail::morph<Errors>(op, dst, src, detail::strel_of(mask, anchor), o);                                 \
    }

namespace detail {
inline jorm_strel strel_of(const source &mask, const position &at) {
    return {{anchor(at.plane, mask.planes()), anchor(at.row, mask.rows()), anchor(at.column, mask.columns()), 0},
            mask.record()};
}
} // namespace detail

/// \name The mean, the least, the largest pixel of the window
/// \{
JORM_CXX_FILTER(box_filter, JORM_FILTER_BOX)
JORM_CXX_FILTER(min_filter, JORM_FILTER_MIN)
JORM_CXX_FILTER(max_filter, JORM_FILTER_MAX)
/// \}
/// \name Grey-level morphology, over a rectangle or a mask: tophat = src - open, bothat = close - src
/// \{
JORM_CXX_FILTER(erode, JORM_FILTER_MIN)
JORM_CXX_MORPH(erode, JORM_MORPH_ERODE)
JORM_CXX_FILTER(dilate, JORM_FILTER_MAX)
JORM_CXX_MORPH(dilate, JORM_MORPH_DILATE)
JORM_CXX_FILTER(open, JORM_FILTER_OPEN)
JORM_CXX_MORPH(open, JORM_MORPH_OPEN)
JORM_CXX_FILTER(close, JORM_FILTER_CLOSE)
JORM_CXX_MORPH(close, JORM_MORPH_CLOSE)
JORM_CXX_FILTER(tophat, JORM_FILTER_TOPHAT)
JORM_CXX_MORPH(tophat, JORM_MORPH_TOPHAT)
JORM_CXX_FILTER(bothat, JORM_FILTER_BOTHAT)
JORM_CXX_MORPH(bothat, JORM_MORPH_BOTHAT)
/// \}
#undef JORM_CXX_FILTER
#undef JORM_CXX_MORPH

struct separable_options {
    position anchor = {};                ///< left out: the centre of the kernels
    std::span<const double> planes = {}; ///< weights across planes, of four axes
    jorm::beyond beyond = jorm::beyond::parent;
    rectangle region = {};
    position at = {};
    environment *env = nullptr;
};

/// The sum of the window's pixels, weighted with down[row] * along[column]; one or three channels.
template <class Errors = throwing>
returns<Errors> separable_filter(const target &dst, const source &src, std::span<const double> down,
                                 std::span<const double> along, const separable_options &o = {}) {
    const auto places = [](std::span<const double> weights) {
        return weights.empty() ? 1 : int32_t(std::min(weights.size(), size_t(to_end)));
    };
    const auto weights = [](std::span<const double> w) { return w.empty() ? nullptr : w.data(); };
    jorm_sepkernel kernel = {detail::shape_of({places(down), places(along), o.anchor, places(o.planes)}), {}};
    const double **k = kernel.kernel;
    if (dst.axes() == 4) *k++ = weights(o.planes);
    k[0] = weights(down), k[1] = weights(along);
    return Errors::report(JormSepFilter(detail::xe(o.env), uint64_t(o.beyond), dst.get(), src.get(),
                                        detail::site(o.region), detail::site(o.at), &kernel));
}

/// Standard deviations in pixels. One that is 0 stands for the other, both for what suits the window.
struct deviations {
    double rows = 0, columns = 0, planes = 0;
};

namespace detail {
/// From the outermost axis in use on.
class deviation_slots {
public:
    deviation_slots(const deviations &s, const source &dst)
        : of_{s.planes, s.rows, s.columns}, skip_(dst.axes() != 4) {}
    operator const double *() const { return of_ + skip_; }

private:
    double of_[3];
    bool skip_;
};
} // namespace detail

struct gaussian_options {
    deviations sigma = {};
    jorm::beyond beyond = jorm::beyond::parent;
    rectangle region = {};
    position at = {};
    environment *env = nullptr;
};

/// The Gaussian-weighted mean of the window; one or three channels.
template <class Errors = throwing>
returns<Errors> gaussian(const target &dst, const source &src, const window &w, const gaussian_options &o = {}) {
    const jorm_seshape shape = detail::shape_of(w);
    return Errors::report(JormGaussianFilter(detail::xe(o.env), uint64_t(o.beyond), dst.get(), src.get(),
                                             detail::site(o.region), detail::site(o.at), &shape,
                                             detail::deviation_slots(o.sigma, dst)));
}

struct firefly_options {
    deviations sigma = {};
    std::optional<values> bright = {}; ///< by how much a pixel exceeds its surroundings; left out, it is measured
    bool both = false;                 ///< also remove dark pixels
    std::optional<values> dark = {};   ///< by how much these fall short of them; giving it implies `both`
    jorm::beyond beyond = jorm::beyond::parent;
    rectangle region = {};
    position at = {};
    environment *env = nullptr;
};

/// Replaces isolated bright pixels by the Gaussian mean of their surroundings.
template <class Errors = throwing>
returns<Errors> firefly(const target &dst, const source &src, const window &w, const firefly_options &o = {}) {
    const jorm_seshape shape = detail::shape_of(w);
    const detail::deviation_slots sigma(o.sigma, dst);
    if (!o.both && !o.dark)
        return Errors::report(JormFirefly(detail::xe(o.env), uint64_t(o.beyond), dst.get(), src.get(),
                                          detail::site(o.region), detail::site(o.at), &shape, sigma,
                                          detail::data(o.bright)));
    return Errors::report(JormFireflyEx(detail::xe(o.env), uint64_t(o.beyond), dst.get(), src.get(),
                                        detail::site(o.region), detail::site(o.at), &shape, sigma, detail::data(o.dark),
                                        detail::data(o.bright)));
}

struct box_options {
    std::optional<ranges> range = {}; ///< of grey levels; left out, it is measured
    uint32_t channels = 0;            ///< bit k selects channel k; 0: all
    rectangle region = {};
    environment *env = nullptr;
};

/// How many boxes over windows of that size the grey-level relief of each channel goes through (jorm/stats.h).
template <class Errors = throwing>
returns<Errors, values> box_count(const source &src, const window &w, const box_options &o = {}) {
    const jorm_seshape shape = detail::shape_of(w);
    return Errors::template make<values>(
        [&](values &v) {
            return JormCountRelBox(detail::xe(o.env), detail::channel_bits(o.channels), src.get(),
                                   detail::site(o.region), &shape, o.range ? o.range->of : nullptr, v.data());
        },
        0.0);
}

} // namespace cxx
} // namespace jorm

#endif
