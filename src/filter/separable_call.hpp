// What the layers of separable and Gaussian filters share.
#pragma once
#include "filter/chain.hpp"
#include "filter/separable.hpp"

namespace jorm {

// The channels that are filtered of those that a code stores: one or three, the fourth stays as it is; 0 for others.
constexpr int32_t weighted_channels(uint32_t code) {
    const int group = channel_group(code);
    return group < 0 ? 0 : group == 0 ? 1 : 3;
}

// Checks types and channels, and leaves only those in that are filtered.
inline int64_t weights_serve(WindowCall &c) {
    const int32_t channels = weighted_channels(c.code);
    if (window_line(c.type) < 0 || channels == 0) return JORM_EINVAL;
    c.channels = channels;
    return JORM_OK;
}

inline int64_t run_weights(WindowCall &c, const SeparableWeights &weights) {
    if (const int64_t status = weights_serve(c); status != JORM_OK || check_only(c)) return status;
    return separable(c, weights, JORM_OF_LEVEL(separable_rows, c.which));
}

// The Gaussian weights of a call's window.
class GaussianWeights : public SeparableWeights {
public:
    GaussianWeights() : SeparableWeights{} {}
    int64_t open(const WindowCall &c, const double *sigmas);

private:
    std::optional<Scratch> memory_;
};

} // namespace jorm
