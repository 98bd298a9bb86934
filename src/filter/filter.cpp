// Filters by kind: minima, maxima, means, and what closes and opens with them.
#include "filter/box.hpp"
#include "filter/chain.hpp"
#include "filter/composite.hpp"
#include "filter/extremum.hpp"

#include "jorm/arith.h"
#include "jorm/filter.h"
#include "kernel/proc.hpp"

#include <cstddef>
#include <iterator>

static_assert(sizeof(jorm_filtparams) == 144 && offsetof(jorm_filtparams, shape) == 4 &&
              offsetof(jorm_filtparams, border) == 40 && offsetof(jorm_filtparams, sites) == 80);

namespace jorm {
namespace {

template <Extreme which> int64_t run_extremum(WindowCall &c) {
    if (const int64_t status = rectangle_serves(c); status != JORM_OK || check_only(c)) return status;
    const bool least_window = c.extent[1] == 3 && c.extent[2] == 3; // rows of which take little more than a copy
    return run_prepared(c, PreparedCall::short_row / (least_window ? 2 : 1), [](const WindowCall &band) -> int64_t {
        WindowRows rows;
        if (const int64_t status = rows.open(band, 1); status != JORM_OK) return status;
        ExtremumStage stage;
        const int64_t status = stage.open(rows, which);
        return status == JORM_OK ? run_stage(band, stage) : status;
    });
}

int64_t run_box(WindowCall &c) {
    const int64_t status = rectangle_serves(c);
    return status != JORM_OK || check_only(c) ? status : box(c);
}

template <Composite which> int64_t run_composite(WindowCall &c) {
    const int64_t status = rectangle_serves(c);
    return status != JORM_OK || check_only(c) ? status : rectangular_composite(c, which);
}

int64_t run_filter(WindowCall &c, uint32_t kind) {
    switch (kind & 255) {
    case JORM_FILTER_NUL:
        return copy_call(c);
    case JORM_FILTER_MIN:
        return run_extremum<Extreme::least>(c);
    case JORM_FILTER_MAX:
        return run_extremum<Extreme::largest>(c);
    case JORM_FILTER_BOX:
        return run_box(c);
    case JORM_FILTER_CLOSE:
        return run_composite<Composite::close>(c);
    case JORM_FILTER_OPEN:
        return run_composite<Composite::open>(c);
    case JORM_FILTER_BOTHAT:
        return run_composite<Composite::bothat>(c);
    case JORM_FILTER_TOPHAT:
        return run_composite<Composite::tophat>(c);
    case JORM_FILTER_MEDIAN:
    case JORM_FILTER_GRADIENT:
        return JORM_ENOTIMP;
    default:
        return JORM_EINVAL;
    }
}

} // namespace
} // namespace jorm

using namespace jorm;

// ---- Layers ----

JORM_API int64_t JormFilter(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                            const jorm_site *roi, const jorm_site *src_roi, uint32_t kind, const jorm_seshape *shape) {
    WindowFront front;
    flags &= ~uint64_t{1};
    if (const int64_t status = front.negotiate(xe, flags, dst, src, roi, src_roi); status != JORM_OK) return status;
    WindowCall call;
    const int64_t status = front.make(call, front.adjusted(shape));
    return status == JORM_OK ? run_filter(call, kind) : status;
}

JORM_API int64_t jorma__efilter(WINDOW_PARAMS, const jorm_seshape *shape, uint32_t kind, const jorm_border *border,
                                const jorm_site *sites) {
    return run_bordered(WINDOW_ARGUMENTS, shape, border, sites, [=](WindowCall &c) { return run_filter(c, kind); });
}

JORM_API int64_t jorma_efilter(WINDOW_ORIGIN_PARAMS, const jorm_seshape *shape, uint32_t kind,
                               const jorm_border *border, const jorm_site *sites) {
    const MovedSites moved(layout, sites, src_origin);
    return jorma__efilter(WINDOW_FROM_ORIGINS, shape, kind, border, moved.get);
}

JORM_API int64_t JormTGAfilter(jorm_xe *xe, uint64_t flags, const jorm_filtparams *params, WINDOW_SLICE_PARAMS) {
    if (!params || dst_type != src_type) return JORM_EINVAL;
    return jorma_efilter(xe, flags, layout, size, dst_type, dst, nullptr, dst_strides, src, nullptr, src_strides,
                         &params->shape, params->kind, &params->border, params->sites);
}

JORM_API int64_t jorma__filter(WINDOW_PARAMS, uint32_t kind, const jorm_seshape *shape) {
    return run_bare(WINDOW_ARGUMENTS, shape, [=](WindowCall &c) { return run_filter(c, kind); });
}

JORM_API int64_t jorma_filter(WINDOW_ORIGIN_PARAMS, uint32_t kind, const jorm_seshape *shape) {
    return jorma__filter(WINDOW_FROM_ORIGINS, kind, shape);
}

// ---- By kind ----

#define HANDLER(name, run)                                                                                             \
    JORM_API int64_t name(WINDOW_PARAMS, const jorm_seshape *shape) { return run_bare(WINDOW_ARGUMENTS, shape, run); }
HANDLER(jorma__filter_min, run_extremum<Extreme::least>)
HANDLER(jorma__filter_max, run_extremum<Extreme::largest>)
HANDLER(jorma__filter_box, run_box)
HANDLER(jorma__filter_close, run_composite<Composite::close>)
HANDLER(jorma__filter_open, run_composite<Composite::open>)
HANDLER(jorma__filter_tophat, run_composite<Composite::tophat>)
HANDLER(jorma__filter_bothat, run_composite<Composite::bothat>)

// ---- Typed kernels ----

// Three and four channels have kernels that refuse.
#define JORM_FILTER_KERNELS(K)                                                                                         \
    K(jorma__minfilter_c1_u8, jorma__maxfilter_c1_u8, jorma__boxfilter_c1_u8, 1, JORM_U8)                              \
    K(jorma__minfilter_c1_s16, jorma__maxfilter_c1_s16, jorma__boxfilter_c1_s16, 1, JORM_S16)                          \
    K(jorma__minfilter_c1_s32, jorma__maxfilter_c1_s32, jorma__boxfilter_c1_s32, 1, JORM_S32)                          \
    K(jorma__minfilter_c1_f32, jorma__maxfilter_c1_f32, jorma__boxfilter_c1_f32, 1, JORM_F32)                          \
    K(jorma__minfilter_c3_u8, jorma__maxfilter_c3_u8, jorma__boxfilter_c3_u8, 3, JORM_U8)                              \
    K(jorma__minfilter_c3_s16, jorma__maxfilter_c3_s16, jorma__boxfilter_c3_s16, 3, JORM_S16)                          \
    K(jorma__minfilter_c3_s32, jorma__maxfilter_c3_s32, jorma__boxfilter_c3_s32, 3, JORM_S32)                          \
    K(jorma__minfilter_c3_f32, jorma__maxfilter_c3_f32, jorma__boxfilter_c3_f32, 3, JORM_F32)                          \
    K(jorma__minfilter_c4_u8, jorma__maxfilter_c4_u8, jorma__boxfilter_c4_u8, 4, JORM_U8)                              \
    K(jorma__minfilter_c4_s16, jorma__maxfilter_c4_s16, jorma__boxfilter_c4_s16, 4, JORM_S16)                          \
    K(jorma__minfilter_c4_s32, jorma__maxfilter_c4_s32, jorma__boxfilter_c4_s32, 4, JORM_S32)                          \
    K(jorma__minfilter_c4_f32, jorma__maxfilter_c4_f32, jorma__boxfilter_c4_f32, 4, JORM_F32)

#define KERNEL_PARAMS                                                                                                  \
    jorm_xe *xe, uint64_t flags, int32_t axes, const int32_t *size, void *dst, const int32_t *dst_strides,             \
        const void *src, const int32_t *src_strides, const jorm_seshape *shape
#define KERNEL(name, run, channels, type)                                                                              \
    JORM_API int64_t name(KERNEL_PARAMS) {                                                                             \
        if (channels != 1) return JORM_ENOTSUP;                                                                        \
        if (axes < 2 || axes > 4) return JORM_EINVAL;                                                                  \
        return run_bare(xe, flags, JORM_WORD(axes), size, type, dst, dst_strides, src, src_strides, shape, run);       \
    }
#define KERNELS(min_name, max_name, box_name, channels, type)                                                          \
    KERNEL(min_name, run_extremum<Extreme::least>, channels, type)                                                     \
    KERNEL(max_name, run_extremum<Extreme::largest>, channels, type)                                                   \
    KERNEL(box_name, run_box, channels, type)
JORM_FILTER_KERNELS(KERNELS)

#define LOOKUP(lookup, PROC)                                                                                           \
    JORM_API jorm_filter_proc *lookup(uint32_t channels, uint32_t eltype, int32_t *status) {                           \
        static jorm_filter_proc *const procs[] = {JORM_FILTER_KERNELS(PROC)};                                          \
        return look_up_window(procs, channel_group(channels), eltype, status);                                         \
    }
#define MIN_PROC(min_name, max_name, box_name, channels, type) min_name,
#define MAX_PROC(min_name, max_name, box_name, channels, type) max_name,
#define BOX_PROC(min_name, max_name, box_name, channels, type) box_name,
LOOKUP(jorma__minfiltfun_imp, MIN_PROC)
LOOKUP(jorma__maxfiltfun_imp, MAX_PROC)
LOOKUP(jorma__boxfiltfun_imp, BOX_PROC)

JORM_API const char *jorm_filter_str(uint32_t kind) {
    switch (kind & 255) {
    case JORM_FILTER_NUL:
        return "nul-filter";
    case JORM_FILTER_MIN:
        return "min-filter";
    case JORM_FILTER_MAX:
        return "max-filter";
    case JORM_FILTER_BOX:
        return "box-filter";
    case JORM_FILTER_MEDIAN:
        return "median-filter";
    case JORM_FILTER_CLOSE:
        return "close-filter";
    case JORM_FILTER_OPEN:
        return "open-filter";
    case JORM_FILTER_BOTHAT:
        return "bothat-filter";
    case JORM_FILTER_TOPHAT:
        return "tophat-filter";
    case JORM_FILTER_GRADIENT:
        return "gradient-filter";
    default:
        return "unknown-filter";
    }
}
