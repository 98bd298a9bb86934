// Isolated pixels that are far from what surrounds them.
#include "filter/separable_call.hpp"

#include "jorm/sepfilter.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace jorm {
namespace {

struct Limits {
    const double *lower, *upper; // null: three standard deviations
    bool dark;
};

// What a pixel exceeds its surroundings by, gathered by channel.
struct Spread {
    double sum[4] = {}, squares[4] = {};
    int64_t count[4] = {};

    void add(int c, double excess) {
        if (std::isnan(excess)) return;
        sum[c] += excess;
        squares[c] += excess * excess;
        ++count[c];
    }
    double deviation(int c) const {
        if (count[c] == 0) return 0;
        const double n = double(count[c]), mean = sum[c] / n;
        return std::sqrt(std::max(0.0, squares[c] / n - mean * mean));
    }
};

template <class T> T rounded(double x) {
    if constexpr (std::numeric_limits<T>::is_integer)
        return T(std::clamp(std::nearbyint(x), double(std::numeric_limits<T>::lowest()),
                            double(std::numeric_limits<T>::max())));
    else
        return T(x);
}

// Replaces what exceeds its limits; with a spread it only looks.
class FireflyStage : public RowStage {
public:
    int64_t open(WindowRows &in, const SeparableWeights &weights) {
        in_ = &in;
        const WindowCall &c = in.call();
        for (int i = 0; i < 3; ++i) own_ *= weights.axis[i] ? weights.axis[i][c.before[i]] : 1;
        if (const int64_t status = sums_.open(in, weights, JORM_OF_LEVEL(separable_rows, c.which), true);
            status != JORM_OK)
            return status;
        row_.emplace(c.xe, scratch_bytes(c.row_elements(), sums_.sum_bytes()), 64);
        return *row_ ? JORM_OK : JORM_ENOMEM;
    }
    void begin_plane(int64_t z) override { sums_.begin_plane(z); }
    void look(int64_t y, Spread &spread) {
        each(y, [&](int c, int64_t, auto x, double m) { spread.add(c, double(x) - m); });
    }
    void produce(int64_t y, void *row) override {
        each(y, [&](int c, int64_t i, auto x, double m) {
            const bool far = double(x) - m > upper[c] || m - double(x) > lower[c];
            static_cast<decltype(x) *>(row)[i] = far ? rounded<decltype(x)>(m) : x;
        });
    }
    double lower[4], upper[4];

private:
    // f(channel, element, pixel's value, mean of its surroundings) along a row.
    template <class F> void each(int64_t y, F f) {
        sums_.produce_sums(y, row_->get());
        const char *const source = in_->centre(y);
        switch (in_->call().type) {
        case JORM_U8:
            return each_of<uint8_t, double>(source, f);
        case JORM_S16:
            return each_of<int16_t, double>(source, f);
        case JORM_S32:
            return each_of<int32_t, double>(source, f);
        default:
            return each_of<float, float>(source, f);
        }
    }
    template <class T, class Sum, class F> void each_of(const char *source, F f) {
        const T *const x = reinterpret_cast<const T *>(source);
        const Sum *const sum = row_->as<Sum>();
        const int channels = in_->call().channels;
        for (int64_t i = 0, n = in_->call().row_elements(); i < n; i += channels)
            for (int c = 0; c < channels; ++c)
                f(c, i + c, x[i + c], (double(sum[i + c]) - own_ * double(x[i + c])) / (1 - own_));
    }

    WindowRows *in_ = nullptr;
    SeparableStage sums_;
    double own_ = 1; // the weight of the pixel itself
    std::optional<Scratch> row_;
};

int64_t run_firefly(WindowCall &c, const double *sigmas, const Limits &limits) {
    if (const int64_t status = weights_serve(c); status != JORM_OK || check_only(c)) return status;
    PreparedCall prepared;
    if (const int64_t status = prepared.prepare(c, 0); status != JORM_OK) return status;
    GaussianWeights weights;
    if (const int64_t status = weights.open(c, sigmas); status != JORM_OK) return status;
    WindowRows rows;
    if (const int64_t status = rows.open(c, SeparableStage::together - 1); status != JORM_OK) return status;
    FireflyStage stage;
    if (const int64_t status = stage.open(rows, weights); status != JORM_OK) return status;

    Spread spread;
    const bool wanted = !limits.upper || (limits.dark && !limits.lower);
    for (int64_t z = 0; wanted && z < c.size[0]; ++z) {
        stage.begin_plane(z);
        for (int64_t y = 0; y < c.size[1]; ++y) stage.look(y, spread);
    }
    for (int k = 0; k < c.channels; ++k) {
        const double usual = 3 * spread.deviation(k);
        stage.upper[k] = limits.upper ? limits.upper[k] : usual;
        stage.lower[k] = !limits.dark ? HUGE_VAL : limits.lower ? limits.lower[k] : usual;
    }
    return run_stage(c, stage);
}

int64_t firefly_front(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src, const jorm_site *roi,
                      const jorm_site *src_roi, const jorm_seshape *shape, const double *sigmas, const Limits &limits) {
    WindowFront front;
    flags &= ~JORM_OPT_CHECK_ONLY;
    if (const int64_t status = front.negotiate(xe, flags, dst, src, roi, src_roi); status != JORM_OK) return status;
    WindowCall call;
    const int64_t status = front.make(call, front.adjusted(shape));
    return status == JORM_OK ? run_firefly(call, sigmas, limits) : status;
}

} // namespace
} // namespace jorm

using namespace jorm;

JORM_API int64_t JormFirefly(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const jorm_site *src_roi, const jorm_seshape *shape,
                             const double *sigmas, const double *thresholds) {
    return firefly_front(xe, flags, dst, src, roi, src_roi, shape, sigmas, {nullptr, thresholds, false});
}

JORM_API int64_t JormFireflyEx(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                               const jorm_site *roi, const jorm_site *src_roi, const jorm_seshape *shape,
                               const double *sigmas, const double *lower, const double *upper) {
    return firefly_front(xe, flags, dst, src, roi, src_roi, shape, sigmas, {lower, upper, true});
}

JORM_API int64_t jorma__firefly_gauss(WINDOW_PARAMS, const jorm_seshape *shape, const double *sigmas,
                                      const double *lower, const double *upper, int32_t dark) {
    return run_bare(WINDOW_ARGUMENTS, shape, [=](WindowCall &c) {
        return run_firefly(c, sigmas, {lower, upper, dark != 0});
    });
}
