// Thresholds by Otsu's method.
#include "compare/threshold.hpp"
#include "jorm/arith.h"
#include "kernel/arguments.hpp"
#include "stats/gather.hpp"
#include "stats/stat_front.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

static_assert(offsetof(jorm_thhmethod, ranges) == 8 && offsetof(jorm_thhmethod, bins) == 72 &&
              sizeof(jorm_thhmethod) == 88);

namespace jorm {
namespace {

constexpr double epsilon = std::numeric_limits<float>::epsilon();
constexpr double unknown = std::numeric_limits<double>::quiet_NaN();

double otsu(const jorm_histogram &h) {
    const double step = h.fstep;
    uint32_t first = 0;
    while (first < h.nbins && h.bins[first] == 0) ++first;
    const double start = first < h.nbins ? first * step + h.flo : h.flo;
    double moment = 0, value = start;
    for (uint32_t i = first; i < h.nbins; ++i, value += step) moment += h.bins[i] * value;
    double best = 0, threshold = h.flo, below = 0, above = h.product, moment_below = 0;
    value = start;
    for (uint32_t i = first; i < h.nbins; ++i, value += step) {
        const double count = h.bins[i];
        if (count == 0) continue;
        above -= count;
        if (above <= 0) break;
        below += count;
        moment_below += count * value;
        moment -= count * value;
        const double distance = moment_below / below - moment / above;
        const double variance = above * below * distance * distance;
        if (variance - best > epsilon) {
            best = variance;
            threshold = value;
        }
    }
    return threshold + step - epsilon;
}

// What is looked at in each channel, and in how many bins.
struct Look {
    vrng range[4];
    uint32_t bins[4];
};

int64_t settle(Look &look, const StatSource &s, const StatShape &shape) {
    const uint32_t type = s.samples.type;
    uint32_t measure = 0;
    for (int c = 0; c < shape.channels; ++c) {
        vrng &r = look.range[c];
        if (std::isinf(r.lo) || r.lo > r.hi)
            measure |= 1u << c;
        else
            jorm_vrng_normalize_$IQ(type, &r, nullptr);
        if (look.bins[c] < 2) look.bins[c] = type == JORM_U8 || type == JORM_S16 || type == JORM_S32 ? 256 : 384;
    }
    measure &= shape.selected;
    if (measure == 0) return JORM_OK;
    StatSource marked = s;
    marked.options = (s.options & ~JORM_OPT_CHANNELS) | measure << 4;
    return compute_range(marked, look.range);
}

} // namespace

int64_t otsu_thresholds(const StatSource &s, double *thresholds, vrng *ranges, uint32_t *bins) {
    StatShape shape;
    if (!thresholds) return JORM_EINVAL;
    if (const int64_t read = read_source(shape, s); read != JORM_OK) return read;
    if (const int64_t served = check_histogram_type(s.samples.type); served != JORM_OK) return served;

    Look look;
    for (int c = 0; c < shape.channels; ++c) {
        look.range[c] = ranges ? ranges[c] : vrng{unknown, unknown};
        look.bins[c] = bins ? bins[c] : 0;
    }
    if (const int64_t settled = settle(look, s, shape); settled != JORM_OK) return settled;

    jorm_histdesc d[4] = {};
    for (int c = 0; c < shape.channels; ++c) {
        d[c].nbins = look.bins[c];
        d[c].lo = look.range[c].lo;
        d[c].hi = look.range[c].hi;
        d[c].f1 = uint32_t(shape.planes * shape.rows);
        d[c].f2 = uint32_t(shape.pixels);
    }
    const uint32_t code = uint32_t(shape.channels) | shape.selected << 4;
    jorm_histogram h[4];
    if (shape.selected == 0) return JORM_OK;
    if (const int64_t made = _jorm_histogram__$n$xe(code, h, d, s.xe); made != JORM_OK) return made;
    const int64_t counted = histogram(s, h);
    for (int c = 0; c < shape.channels && counted == JORM_OK; ++c) {
        if (!shape.is_selected(c)) continue;
        thresholds[c] = otsu(h[c]);
        if (ranges) ranges[c] = look.range[c];
        if (bins) bins[c] = look.bins[c];
    }
    jorm_hist_fini_$n$xe(code, h, s.xe);
    return counted;
}

int64_t otsu_pairs(StatSource s, const jorm_thhmethod *method, double *pairs) {
    double thresholds[4];
    vrng ranges[4];
    uint32_t bins[4];
    const bool own = method && (method->word & JORM_THRESHOLD_OWN_RANGES) != 0;
    if (own) {
        std::copy_n(method->ranges, 4, ranges);
        std::copy_n(method->bins, 4, bins);
    }
    s.options |= JORM_OPT_CHANNELS;
    const int64_t status = otsu_thresholds(s, thresholds, own ? ranges : nullptr, own ? bins : nullptr);
    for (int c = 0; c < 4 && status == JORM_OK; ++c) {
        pairs[2 * c] = thresholds[c];
        pairs[2 * c + 1] = 0;
    }
    return status;
}

} // namespace jorm

using namespace jorm;

double jorma_calculate_threshold_otsu_f(const jorm_histogram *record) {
    return record && record->bins ? otsu(*record) : unknown;
}
double jorma_calculate_threshold_otsu_i(const jorm_histogram *record) {
    return std::nearbyint(jorma_calculate_threshold_otsu_f(record));
}

int64_t JormComputeThresholdByOtsu(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,
                                   double *thresholds, vrng *ranges, uint32_t *bins) {
    StatFront front;
    if (!thresholds) return JORM_EINVAL;
    const int64_t status = front.negotiate(xe, options, src, roi);
    return status == JORM_OK ? otsu_thresholds(front.source, thresholds, ranges, bins) : status;
}

#define SOURCE(start) xe, options, word, size, operand(type, start, stride)

int64_t JormTGAcomputeThresholdByOtsu(jorm_xe *xe, uint64_t options, const jorm_otsuparams *params, uint32_t word,
                                      const int32_t *size, uint32_t type, const void *data, const int32_t *stride) {
    if (!params) return JORM_EINVAL;
    return otsu_thresholds({SOURCE(data)}, params->thresholds, params->ranges, params->bins);
}
int64_t jorma_compute_threshold_otsu(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                                     const void *base, const int32_t *origin, const int32_t *stride, double *thresholds,
                                     vrng *ranges, uint32_t *bins) {
    return otsu_thresholds({SOURCE(start_of(word, base, origin, stride))}, thresholds, ranges, bins);
}
int64_t jorma__compute_threshold_otsu(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                                      const void *data, const int32_t *stride, double *thresholds, vrng *ranges,
                                      uint32_t *bins) {
    return otsu_thresholds({SOURCE(data)}, thresholds, ranges, bins);
}
