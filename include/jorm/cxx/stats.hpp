/// \file
/// Sums, means, extrema, histograms, box counts. Types and rounding: jorm/stats.h, jorm/histogram.h.
#ifndef JORM_CXX_STATS_HPP
#define JORM_CXX_STATS_HPP

#include "jorm/cxx/pixels.hpp"
#include "jorm/stats.h"

#include <array>
#include <utility>

namespace jorm {
inline namespace cxx {

struct stats_options {
    optional_mask mask = {}; ///< only the pixels that it selects
    bool invert = false;     ///< the mask selects what is not 255
    uint32_t channels = 0;   ///< bit k selects channel k; 0: all
    rectangle region = {};
    position at_mask = {};
    environment *env = nullptr;
};

namespace detail {
inline uint64_t channel_bits(uint32_t channels) { return (uint64_t(channels) << 4) & JORM_OPT_CHANNELS; }

template <class Record, class... More>
int64_t statistic(int64_t plain(jorm_xe *, uint64_t, const jorm_array *, const jorm_site *, More..., Record *),
                  int64_t masked(jorm_xe *, uint64_t, const jorm_array *, const jorm_array *, const jorm_site *,
                                 const int32_t *, More..., Record *),
                  const source &src, const stats_options &o, std::type_identity_t<More>... more, Record *out) {
    const uint64_t bits = channel_bits(o.channels);
    return o.mask.get() ? masked(xe(o.env), bits | mask_bits(o.invert), src.get(), o.mask.get(), site(o.region),
                                 slots(o.at_mask), more..., out)
                        : plain(xe(o.env), bits, src.get(), site(o.region), more..., out);
}
} // namespace detail

/// The sum of each channel.
template <class Errors = throwing> returns<Errors, values> sum(const source &src, const stats_options &o = {}) {
    return Errors::template make<values>(
        [&](values &v) { return detail::statistic<double>(JormSum, JormSumEx, src, o, v.data()); }, 0.0);
}
/// The mean of each channel; 0 when a mask selects nothing.
template <class Errors = throwing> returns<Errors, values> mean(const source &src, const stats_options &o = {}) {
    return Errors::template make<values>(
        [&](values &v) { return detail::statistic<double>(JormMean, JormMeanEx, src, o, v.data()); }, 0.0);
}
/// The least and the largest value of each channel, and where they stand first: `minmax(v).max[0].row`. A value is both
/// `i` (integer) and `f` (float). Channels that were not looked at are zeros.
struct extrema : jorm_minmax {
    extrema() noexcept : extrema(std::make_index_sequence<4>()) {}

private:
    // Channel by channel, for clearing the record as a whole becomes an instruction that takes longer than the call.
    template <size_t... c> explicit extrema(std::index_sequence<c...>) noexcept {
        request = JORM_WANT_MIN | JORM_WANT_MAX;
        ((min[c] = jorm_extremum(), max[c] = jorm_extremum()), ...);
    }
};
template <class Errors = throwing> returns<Errors, extrema> minmax(const source &src, const stats_options &o = {}) {
    return Errors::template make<extrema>(
        [&](jorm_minmax &m) { return detail::statistic<jorm_minmax>(JormMinmax, JormMinmaxEx, src, o, &m); });
}

/// Counters of samples, for each channel its own. Counts of several pictures, or tiles, add up.
///
///     jorm::histogram h({.bins = 256, .lo = 0, .hi = 255});
///     h.count(picture);
///     h[0][17]; // samples of value 17
class histogram {
public:
    struct layout {
        uint32_t bins = 256;
        double lo = 0, hi = 255; ///< what lies outside counts in the first and the last bin
        int32_t channels = 1;
    };
    explicit histogram(const layout &l) {
        const jorm_histdesc one = {0, l.bins, l.lo, l.hi, 0, 0, 0, 0};
        const jorm_histdesc all[4] = {one, one, one, one};
        throwing::report(jorm_hist__init_n(JORM_HIST_COUNTERS, uint32_t(l.channels), records_.data(), all));
    }
    histogram() : histogram(layout{}) {}
    histogram(histogram &&other) noexcept : records_(std::exchange(other.records_, {})) {}
    histogram &operator=(histogram other) noexcept {
        std::swap(records_, other.records_);
        return *this;
    }
    ~histogram() {
        for (jorm_histogram &r : records_) jorm_hist_fini(&r);
    }

    /// Counts the samples of a picture with as many channels.
    template <class Errors = throwing> returns<Errors> count(const source &src, const stats_options &o = {}) {
        return Errors::report(
            detail::statistic<jorm_histogram, uint32_t>(JormHistogram, JormHistogramEx, src, o, 0, records_.data()));
    }
    /// Back to zero.
    void reset() noexcept {
        for (jorm_histogram &r : records_) jorm_hist_reset(&r);
    }
    /// The counters of a channel.
    std::span<const uint32_t> operator[](size_t channel) const noexcept {
        return {records_[channel].bins, records_[channel].bins ? records_[channel].nbins : 0};
    }
    /// The whole record, with the sums of samples.
    const jorm_histogram &record(size_t channel) const noexcept { return records_[channel]; }

private:
    std::array<jorm_histogram, 4> records_ = {};
};

} // namespace cxx
} // namespace jorm

#endif
