// Gaussian filters: separable ones whose weights are made here.
#include "filter/separable_call.hpp"

#include "filter/shape.hpp"
#include "jorm/sepfilter.h"

#include <cmath>
#include <cstddef>

static_assert(offsetof(jorm_gaussparams, sigmas) == 32 && offsetof(jorm_gaussparams, border) == 40 &&
              offsetof(jorm_gaussparams, sites) == 80);

using namespace jorm;

JORM_API void jorm__computegauskernel1(double *out, int32_t anchor, int32_t length, double sigma) {
    if (!out) return;
    const double divisor = (sigma + sigma) * sigma;
    double sum = 0;
    for (int32_t i = 0; i < length; ++i) {
        const int32_t x = wrap_sub(i, anchor);
        out[i] = std::exp(-double(wrap_mul(x, x)) / divisor);
        sum += out[i];
    }
    for (int32_t i = 0; i < length; ++i) out[i] /= sum;
}

JORM_API void jorm__computegauskernel(int32_t k, double *const *kernels, const int32_t *anchors, const int32_t *extents,
                                      const double *sigmas) {
    if (!kernels || !anchors || !extents || !sigmas) return;
    for (int32_t i = 0; i < axes_of(k); ++i) jorm__computegauskernel1(kernels[i], anchors[i], extents[i], sigmas[i]);
}

JORM_API void jorm_computegauskernel(uint32_t layout, const jorm_sepkernel *block, const double *sigmas) {
    if (!block) return;
    const int32_t k = axes_of(word_axes(layout) - 1), first = spatial_axes - k;
    double *kernels[spatial_axes];
    for (int i = 0; i < spatial_axes; ++i) kernels[i] = const_cast<double *>(block->kernel[i]);
    jorm__computegauskernel(k, kernels, block->shape.anchor + first, block->shape.extent + first, sigmas);
}

JORM_API void jorm_adjustgaussigmas(uint32_t layout, double *out, const int32_t *extent, const double *given) {
    if (!out || !extent) return;
    const int32_t k = axes_of(word_axes(layout) - 1), first = spatial_axes - k;
    double last = 0; // the one that an axis without its own takes
    for (int32_t i = 0; i < k && given && last == 0; ++i) last = given[i];
    for (int32_t i = 0; i < k; ++i) {
        if (given && given[i] != 0) last = given[i];
        out[i] = last != 0 ? last : ((extent[first + i] - 1) * 0.5 - 1.0) * 0.3 + 0.8;
    }
}

int64_t GaussianWeights::open(const WindowCall &c, const double *sigmas) {
    const int first = 4 - c.axes, k = 3 - first;
    int32_t anchor[3] = {}, extent[4] = {1, 1, 1, 0};
    int64_t length = 0;
    for (int i = first; i < 3; ++i) {
        anchor[i - first] = int32_t(c.before[i]);
        extent[i] = int32_t(c.extent[i]);
        length += c.extent[i];
    }
    memory_.emplace(c.xe, scratch_bytes(length, sizeof(double)), alignof(double));
    if (!*memory_) return JORM_ENOMEM;
    double *kernels[3] = {}, used[3] = {}, *next = memory_->as<double>();
    for (int i = first; i < 3; next += extent[i++]) axis[i] = kernels[i - first] = next;
    jorm_adjustgaussigmas(JORM_WORD(c.axes), used, extent, sigmas);
    jorm__computegauskernel(k, kernels, anchor, extent + first, used);
    return JORM_OK;
}

namespace {

int64_t run_gaussian(WindowCall &c, const double *sigmas) {
    if (const int64_t status = weights_serve(c); status != JORM_OK || check_only(c)) return status;
    GaussianWeights weights;
    const int64_t status = weights.open(c, sigmas);
    return status == JORM_OK ? run_weights(c, weights) : status;
}

} // namespace

JORM_API int64_t JormGaussianFilter(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                                    const jorm_site *roi, const jorm_site *src_roi, const jorm_seshape *shape,
                                    const double *sigmas) {
    WindowFront front;
    flags &= ~JORM_OPT_CHECK_ONLY;
    if (const int64_t status = front.negotiate(xe, flags, dst, src, roi, src_roi); status != JORM_OK) return status;
    WindowCall call;
    const int64_t status = front.make(call, front.adjusted(shape));
    return status == JORM_OK ? run_gaussian(call, sigmas) : status;
}

JORM_API int64_t jorma__efilter_gaussian(WINDOW_PARAMS, const jorm_seshape *shape, const double *sigmas,
                                         const jorm_border *border, const jorm_site *sites) {
    return run_bordered(WINDOW_ARGUMENTS, shape, border, sites, [=](WindowCall &c) { return run_gaussian(c, sigmas); });
}

JORM_API int64_t jorma_egaussianfilter(WINDOW_ORIGIN_PARAMS, const jorm_seshape *shape, const double *sigmas,
                                       const jorm_border *border, const jorm_site *sites) {
    const MovedSites moved(layout, sites, src_origin);
    return jorma__efilter_gaussian(WINDOW_FROM_ORIGINS, shape, sigmas, border, moved.get);
}

JORM_API int64_t JormTGAgaussianfilter(jorm_xe *xe, uint64_t flags, const jorm_gaussparams *params,
                                       WINDOW_SLICE_PARAMS) {
    if (!params || dst_type != src_type) return JORM_EINVAL;
    return jorma_egaussianfilter(xe, flags, layout, size, dst_type, dst, nullptr, dst_strides, src, nullptr,
                                 src_strides, &params->shape, params->sigmas, &params->border, params->sites);
}

JORM_API int64_t jorma__filter_gaussian(WINDOW_PARAMS, const jorm_seshape *shape, const double *sigmas) {
    return run_bare(WINDOW_ARGUMENTS, shape, [=](WindowCall &c) { return run_gaussian(c, sigmas); });
}

JORM_API int64_t jorma_gaussianfilter(WINDOW_ORIGIN_PARAMS, const jorm_seshape *shape, const double *sigmas) {
    return jorma__filter_gaussian(WINDOW_FROM_ORIGINS, shape, sigmas);
}
