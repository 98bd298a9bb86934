// Morphology with structuring elements of any shape.
#include "filter/composite.hpp"
#include "filter/mask.hpp"
#include "filter/nested.hpp"

#include "jorm/copy.h"
#include "jorm/morphology.h"

#include <cstddef>

static_assert(sizeof(jorm_morphparams) == 120 && offsetof(jorm_morphparams, strel) == 8 &&
              offsetof(jorm_morphparams, border) == 16 && offsetof(jorm_morphparams, sites) == 56);

namespace jorm {
namespace {

bool has_data(const jorm_strel *s) { return s && advance(s->mask.base, s->mask.loff) != nullptr; }

// The window that the mask fills.
jorm_seshape window_of(const jorm_strel &s) {
    const bool planes = s.mask.ndims == 4;
    jorm_seshape shape = {};
    for (int i = 0; i < 3; ++i) {
        shape.anchor[i] = i > 0 || planes ? s.anchor[i] : 0;
        shape.extent[i] = i > 0 || planes ? int32_t(s.mask.extent[i]) : 1;
    }
    return shape;
}

bool valid_mask(const jorm_strel *s) {
    return has_data(s) && s->mask.base && s->mask.eltype == JORM_U8 && stored_channels(s->mask.extent[3] & 15) == 1 &&
           (s->mask.ndims == 3 || s->mask.ndims == 4);
}

int64_t serves(const WindowCall &c) { return window_line(c.type) < 0 || channel_group(c.code) < 0 ? JORM_EINVAL : 0; }

// Calls f with the mask in the form that serves it best.
template <class F> int64_t with_mask(const WindowCall &c, const jorm_strel &strel, F f) {
    NestedColumns columns;
    if (const int64_t status = columns.open(c.xe, strel, c); status != JORM_OK) return status;
    if (columns.serve()) return f(columns);
    MaskRuns runs;
    const int64_t status = runs.open(c.xe, strel, c);
    return status == JORM_OK ? f(runs) : status;
}

int64_t run_extremum(WindowCall &c, const jorm_strel &strel, Extreme which) {
    if (const int64_t status = serves(c); status != JORM_OK || check_only(c)) return status;
    return with_mask(c, strel, [&]<class Mask>(const Mask &mask) {
        return run_prepared(c, Mask::Stage::short_row, [&](const WindowCall &band) -> int64_t {
            WindowRows rows;
            if (const int64_t status = rows.open(band, 1); status != JORM_OK) return status;
            typename Mask::Stage stage;
            const int64_t status = stage.open(rows, which, mask);
            return status == JORM_OK ? run_stage(band, stage) : status;
        });
    });
}

int64_t run_composite_of(WindowCall &c, const jorm_strel &strel, Composite which) {
    if (jorm_strel_issolid_$v255(&strel)) {
        const int64_t status = rectangle_serves(c);
        return status != JORM_OK || check_only(c) ? status : rectangular_composite(c, which);
    }
    if (const int64_t status = serves(c); status != JORM_OK || check_only(c)) return status;
    return with_mask(c, strel, [&]<class Mask>(const Mask &mask) {
        using Stage = typename Mask::Stage;
        return run_composite<Stage>(
            c, which, [&](Stage &stage, WindowRows &rows, Extreme extreme) { return stage.open(rows, extreme, mask); });
    });
}

int64_t run_morphop(WindowCall &c, uint32_t op, const jorm_strel &strel) {
    switch (op & 15) {
    case JORM_MORPH_NUL:
        return copy_call(c);
    case JORM_MORPH_ERODE:
        return run_extremum(c, strel, Extreme::least);
    case JORM_MORPH_DILATE:
        return run_extremum(c, strel, Extreme::largest);
    case JORM_MORPH_CLOSE:
        return run_composite_of(c, strel, Composite::close);
    case JORM_MORPH_OPEN:
        return run_composite_of(c, strel, Composite::open);
    case JORM_MORPH_BOTHAT:
        return run_composite_of(c, strel, Composite::bothat);
    case JORM_MORPH_TOPHAT:
        return run_composite_of(c, strel, Composite::tophat);
    case JORM_MORPH_GRADIENT:
        return JORM_ENOTIMP;
    default:
        return JORM_EINVAL;
    }
}

// The filter kind that does the same with a rectangle.
uint32_t filter_kind(uint32_t op) {
    switch (op & 15) {
    case JORM_MORPH_ERODE:
    case JORM_MORPH_DILATE:
        return op & 15;
    case JORM_MORPH_CLOSE:
    case JORM_MORPH_OPEN:
    case JORM_MORPH_BOTHAT:
    case JORM_MORPH_TOPHAT:
    case JORM_MORPH_GRADIENT:
        return 100 + (op & 15);
    default:
        return 255;
    }
}

int64_t copy_array(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src, const jorm_site *roi,
                   const jorm_site *src_roi) {
    return JormCopy(xe, flags, dst, src, roi, src_roi ? src_roi->origin : nullptr);
}

// Does a region leave all channels in?
bool keeps_channels(const jorm_site *roi, const jorm_array *dst) {
    return !roi || !dst || (roi->origin[3] <= 0 && roi->size[3] >= stored_channels(dst->extent[3] & 15));
}

} // namespace
} // namespace jorm

using namespace jorm;

JORM_API int64_t JormMorphop(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                             const jorm_site *roi, const jorm_site *src_roi, uint32_t op, const jorm_strel *strel) {
    if (!has_data(strel)) {
        if ((op & 15) == JORM_MORPH_NUL) return copy_array(xe, flags, dst, src, roi, src_roi);
        const jorm_seshape *const shape = reinterpret_cast<const jorm_seshape *>(strel);
        return JormFilter(xe, flags, dst, src, roi, src_roi, filter_kind(op), shape);
    }
    flags &= ~JORM_OPT_CHECK_ONLY;
    const jorm_seshape window = window_of(*strel);
    if (!valid_mask(strel)) return JORM_EINVAL;
    for (int i = 0; i < 3; ++i)
        if (window.extent[i] < 1 || window.anchor[i] < 0 || window.anchor[i] >= window.extent[i]) return JORM_EINVAL;
    if (window.extent[0] == 1 && window.extent[1] == 1 && window.extent[2] == 1)
        return copy_array(xe, flags, dst, src, roi, src_roi);
    if (!keeps_channels(roi, dst)) return JORM_EINVAL;
    WindowFront front;
    if (const int64_t status = front.negotiate(xe, flags, dst, src, roi, src_roi); status != JORM_OK) return status;
    WindowCall call;
    const int64_t status = front.make(call, window);
    return status == JORM_OK ? run_morphop(call, op, *strel) : status;
}

// ---- Layers ----

JORM_API int64_t jorma__emorphop(WINDOW_PARAMS, const jorm_strel *strel, uint32_t op, const jorm_border *border,
                                 const jorm_site *sites) {
    if (!valid_mask(strel)) return JORM_EINVAL;
    const jorm_seshape window = window_of(*strel);
    return run_bordered(WINDOW_ARGUMENTS, &window, border, sites,
                        [=](WindowCall &c) { return run_morphop(c, op, *strel); });
}

JORM_API int64_t jorma_emorphop(WINDOW_ORIGIN_PARAMS, const jorm_strel *strel, uint32_t op, const jorm_border *border,
                                const jorm_site *sites) {
    const MovedSites moved(layout, sites, src_origin);
    return jorma__emorphop(WINDOW_FROM_ORIGINS, strel, op, border, moved.get);
}

JORM_API int64_t JormTGAmorphop(jorm_xe *xe, uint64_t flags, const jorm_morphparams *params, WINDOW_SLICE_PARAMS) {
    if (!params || dst_type != src_type) return JORM_EINVAL;
    return jorma_emorphop(xe, flags, layout, size, dst_type, dst, nullptr, dst_strides, src, nullptr, src_strides,
                          params->strel, params->op, &params->border, params->sites);
}

template <class Run> static int64_t run_masked(WINDOW_PARAMS, const jorm_strel *strel, Run run) {
    if (!valid_mask(strel)) return JORM_EINVAL;
    const jorm_seshape window = window_of(*strel);
    return run_bare(WINDOW_ARGUMENTS, &window, [=](WindowCall &c) { return run(c, *strel); });
}

JORM_API int64_t jorma__morphop(WINDOW_PARAMS, uint32_t op, const jorm_strel *strel) {
    return run_masked(WINDOW_ARGUMENTS, strel,
                      [=](WindowCall &c, const jorm_strel &mask) { return run_morphop(c, op, mask); });
}

JORM_API int64_t jorma_morphop(WINDOW_ORIGIN_PARAMS, uint32_t op, const jorm_strel *strel) {
    return jorma__morphop(WINDOW_FROM_ORIGINS, op, strel);
}

#define HANDLER(name, op)                                                                                              \
    JORM_API int64_t name(WINDOW_PARAMS, const jorm_strel *strel) {                                                    \
        return jorma__morphop(WINDOW_ARGUMENTS, op, strel);                                                            \
    }
HANDLER(jorma__morphop_erode, JORM_MORPH_ERODE)
HANDLER(jorma__morphop_dilate, JORM_MORPH_DILATE)
HANDLER(jorma__morphop_close, JORM_MORPH_CLOSE)
HANDLER(jorma__morphop_open, JORM_MORPH_OPEN)
HANDLER(jorma__morphop_tophat, JORM_MORPH_TOPHAT)
HANDLER(jorma__morphop_bothat, JORM_MORPH_BOTHAT)

// ---- Typed kernels ----

#define JORM_MORPH_KERNELS(K)                                                                                          \
    K(jorma__erode_c1_u8, jorma__dilate_c1_u8, 1, JORM_U8)                                                             \
    K(jorma__erode_c1_s16, jorma__dilate_c1_s16, 1, JORM_S16)                                                          \
    K(jorma__erode_c1_s32, jorma__dilate_c1_s32, 1, JORM_S32)                                                          \
    K(jorma__erode_c1_f32, jorma__dilate_c1_f32, 1, JORM_F32)                                                          \
    K(jorma__erode_c3_u8, jorma__dilate_c3_u8, 3, JORM_U8)                                                             \
    K(jorma__erode_c3_s16, jorma__dilate_c3_s16, 3, JORM_S16)                                                          \
    K(jorma__erode_c3_s32, jorma__dilate_c3_s32, 3, JORM_S32)                                                          \
    K(jorma__erode_c3_f32, jorma__dilate_c3_f32, 3, JORM_F32)                                                          \
    K(jorma__erode_c4_u8, jorma__dilate_c4_u8, 4, JORM_U8)                                                             \
    K(jorma__erode_c4_s16, jorma__dilate_c4_s16, 4, JORM_S16)                                                          \
    K(jorma__erode_c4_s32, jorma__dilate_c4_s32, 4, JORM_S32)                                                          \
    K(jorma__erode_c4_f32, jorma__dilate_c4_f32, 4, JORM_F32)

// The kernel's name stands for its channels and type, whatever the channel slot says.
#define KERNEL(name, which, channels, type)                                                                            \
    JORM_API int64_t name(jorm_xe *xe, uint64_t flags, int32_t axes, const int32_t *size, void *dst,                   \
                          const int32_t *dst_strides, const void *src, const int32_t *src_strides,                     \
                          const jorm_strel *strel) {                                                                   \
        if (axes < 2 || axes > 4 || !size) return JORM_EINVAL;                                                         \
        if (stored_channels(uint32_t(size[axes - 1]) & 15) != channels) return JORM_EINVAL;                            \
        return run_masked(xe, flags, JORM_WORD(axes), size, type, dst, dst_strides, src, src_strides, strel,           \
                          [](WindowCall &c, const jorm_strel &mask) { return run_extremum(c, mask, which); });         \
    }
#define KERNELS(erode_name, dilate_name, channels, type)                                                               \
    KERNEL(erode_name, Extreme::least, channels, type)                                                                 \
    KERNEL(dilate_name, Extreme::largest, channels, type)
JORM_MORPH_KERNELS(KERNELS)

#define ERODE_PROC(erode_name, dilate_name, channels, type) erode_name,
#define DILATE_PROC(erode_name, dilate_name, channels, type) dilate_name,
JORM_API jorm_morph_proc *jorma__erodefun_imp(uint32_t channels, uint32_t eltype, int32_t *status) {
    static jorm_morph_proc *const procs[] = {JORM_MORPH_KERNELS(ERODE_PROC)};
    return look_up_window(procs, channel_group(channels), eltype, status);
}
JORM_API jorm_morph_proc *jorma__dilatefun_imp(uint32_t channels, uint32_t eltype, int32_t *status) {
    static jorm_morph_proc *const procs[] = {JORM_MORPH_KERNELS(DILATE_PROC)};
    return look_up_window(procs, channel_group(channels), eltype, status);
}

JORM_API const char *jorm_morphop_str(uint32_t op) {
    switch (op & 15) {
    case JORM_MORPH_NUL:
        return "nul-morhop";
    case JORM_MORPH_ERODE:
        return "erode";
    case JORM_MORPH_DILATE:
        return "dilate";
    case JORM_MORPH_CLOSE:
        return "morph-close";
    case JORM_MORPH_OPEN:
        return "morph-open";
    case JORM_MORPH_BOTHAT:
        return "morph-bothat";
    case JORM_MORPH_TOPHAT:
        return "morph-tophat";
    case JORM_MORPH_GRADIENT:
        return "morph-gradient";
    default:
        return "unknown-morhop";
    }
}
