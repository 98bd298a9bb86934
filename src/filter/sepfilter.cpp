// Separable filters with weights of the caller's.
#include "filter/chain.hpp"
#include "filter/separable_call.hpp"

#include "jorm/sepfilter.h"

#include <cstddef>

static_assert(sizeof(jorm_sepkernel) == 56 && offsetof(jorm_sepkernel, kernel) == 32);
static_assert(offsetof(jorm_sepparams, border) == 56 && offsetof(jorm_sepparams, sites) == 96);

using namespace jorm;

namespace {

int64_t run_separable(WindowCall &c, const jorm_sepkernel &kernel) {
    SeparableWeights weights = {};
    for (int i = 4 - c.axes; i < 3; ++i) {
        weights.axis[i] = kernel.kernel[i - (4 - c.axes)];
        if (!weights.axis[i] && c.extent[i] > 1) return JORM_EINVAL;
    }
    return run_weights(c, weights);
}

} // namespace

JORM_API int64_t JormSepFilter(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                               const jorm_site *roi, const jorm_site *src_roi, const jorm_sepkernel *kernel) {
    WindowFront front;
    flags &= ~JORM_OPT_CHECK_ONLY;
    if (const int64_t status = front.negotiate(xe, flags, dst, src, roi, src_roi); status != JORM_OK) return status;
    if (!kernel) return JORM_EINVAL;
    WindowCall call;
    const int64_t status = front.make(call, front.adjusted_as_given(kernel->shape));
    return status == JORM_OK ? run_separable(call, *kernel) : status;
}

JORM_API int64_t jorma__esepfilter(WINDOW_PARAMS, const jorm_sepkernel *kernel, const jorm_border *border,
                                   const jorm_site *sites) {
    if (!kernel) return JORM_EINVAL;
    return run_bordered(WINDOW_ARGUMENTS, &kernel->shape, border, sites,
                        [=](WindowCall &c) { return run_separable(c, *kernel); });
}

JORM_API int64_t jorma_esepfilter(WINDOW_ORIGIN_PARAMS, const jorm_sepkernel *kernel, const jorm_border *border,
                                  const jorm_site *sites) {
    const MovedSites moved(layout, sites, src_origin);
    return jorma__esepfilter(WINDOW_FROM_ORIGINS, kernel, border, moved.get);
}

JORM_API int64_t JormTGAsepfilter(jorm_xe *xe, uint64_t flags, const jorm_sepparams *params, WINDOW_SLICE_PARAMS) {
    if (!params || dst_type != src_type) return JORM_EINVAL;
    return jorma_esepfilter(xe, flags, layout, size, dst_type, dst, nullptr, dst_strides, src, nullptr, src_strides,
                            &params->kernel, &params->border, params->sites);
}

JORM_API int64_t jorma__sepfilter(WINDOW_PARAMS, const jorm_sepkernel *kernel) {
    if (!kernel) return JORM_EINVAL;
    return run_bare(WINDOW_ARGUMENTS, &kernel->shape, [=](WindowCall &c) { return run_separable(c, *kernel); });
}

JORM_API int64_t jorma_sepfilter(WINDOW_ORIGIN_PARAMS, const jorm_sepkernel *kernel) {
    return jorma__sepfilter(WINDOW_FROM_ORIGINS, kernel);
}

// ---- Typed kernels ----

#define JORM_SEPARABLE_KERNELS(K)                                                                                      \
    K(jorma__sepfilter_c1_u8, 1, JORM_U8)                                                                              \
    K(jorma__sepfilter_c1_s16, 1, JORM_S16)                                                                            \
    K(jorma__sepfilter_c1_s32, 1, JORM_S32)                                                                            \
    K(jorma__sepfilter_c1_f32, 1, JORM_F32)                                                                            \
    K(jorma__sepfilter_c3_u8, 3, JORM_U8)                                                                              \
    K(jorma__sepfilter_c3_s16, 3, JORM_S16)                                                                            \
    K(jorma__sepfilter_c3_s32, 3, JORM_S32)                                                                            \
    K(jorma__sepfilter_c3_f32, 3, JORM_F32)

#define KERNEL(name, channels, type)                                                                                   \
    JORM_API int64_t name(jorm_xe *xe, uint64_t flags, int32_t axes, const int32_t *size, void *dst,                   \
                          const int32_t *dst_strides, const void *src, const int32_t *src_strides,                     \
                          const jorm_sepkernel *kernel) {                                                              \
        if (axes < 2 || axes > 4 || !size) return JORM_EINVAL;                                                         \
        if (weighted_channels(uint32_t(size[axes - 1])) != channels) return JORM_EINVAL;                               \
        return jorma__sepfilter(xe, flags, JORM_WORD(axes), size, type, dst, dst_strides, src, src_strides, kernel);   \
    }
JORM_SEPARABLE_KERNELS(KERNEL)

JORM_API jorm_sepfilter_proc *jorma__sepfiltfun_imp(uint32_t channels, uint32_t eltype, int32_t *status) {
#define PROC(name, channels, type) name,
    static jorm_sepfilter_proc *const procs[] = {JORM_SEPARABLE_KERNELS(PROC)};
    const int32_t served = weighted_channels(channels);
    return look_up_window(procs, served == 1 ? 0 : served == 3 ? 1 : -1, eltype, status);
}
