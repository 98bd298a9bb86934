// The input region of a neighbourhood operation.
#include "filter/shape.hpp"
#include "jorm/array.h"

using namespace jorm;

namespace {

void grow(jorm_site &site, int32_t first, const jorm_seshape *s) {
    for (int32_t i = first; s && i < spatial_axes; ++i) {
        site.origin[i] = saturate_i32(int64_t(site.origin[i]) - s->anchor[i]);
        site.size[i] = saturate_i32(int64_t(site.size[i]) + s->extent[i] - 1);
    }
}

// `work` comes as the region and leaves grown; `out` comes as the bounding region and leaves as the part that exists.
int32_t compute(jorm_site &out, jorm_site &work, uint64_t options, int32_t k, const jorm_seshape *s) {
    const int32_t n = axes_of(k), first = spatial_axes - n;
    if (options & JORM_OPT_NO_BORDER) out = work;
    grow(work, first, s);
    if (options & JORM_OPT_NO_BORDER) return 0;
    jorm_intersecI(n, out.origin + first, out.size + first, work.origin + first, work.size + first);
    return n > 0 && vec_equal(n, out.origin + first, work.origin + first) &&
           vec_equal(n, out.size + first, work.size + first);
}

jorm_site bounds(uint64_t options, const jorm_site *own, const jorm_site *parent) {
    const jorm_site *const site = parent && !(options & JORM_OPT_OWN_BORDER) ? parent : own;
    return site ? *site : jorm_site{};
}

struct Sites {
    jorm_site own_site{}, parent_site{};
    const jorm_site *own = nullptr, *parent = nullptr;

    explicit Sites(const jorm_array *a) {
        if (!a) return;
        own = jorm_arr_siteof(a, &own_site);
        parent = jorm_arr_parsiteof(a, &parent_site);
    }
};

} // namespace

int32_t jorm_compute_roi_$se(jorm_site *out, jorm_site *work, uint64_t options, const jorm_site *roi,
                             const jorm_seshape *s, const jorm_site *own, const jorm_site *parent) {
    const jorm_site none{}, &whole = own ? *own : none;
    jorm_site region = roi ? *roi : whole, exists = bounds(options, own, parent);
    region.origin[3] = exists.origin[3] = 0;
    region.size[3] = exists.size[3] = whole.size[3];
    const int32_t complete = compute(exists, region, options, spatial_axes, s) && own;
    if (out) *out = exists;
    if (work) *work = region;
    return complete;
}

int32_t jorm__compute_roi_$se(uint64_t options, int32_t k, int32_t *out_origin, int32_t *out_size, int32_t *work_origin,
                              int32_t *work_size, const int32_t *roi_origin, const int32_t *roi_size,
                              const jorm_seshape *s, const jorm_site *own, const jorm_site *parent) {
    const int32_t n = axes_of(k), first = spatial_axes - n;
    jorm_site exists = bounds(options, own, parent), region = own ? *own : jorm_site{};
    if (roi_origin && roi_size) {
        vec_assign(n, region.origin + first, roi_origin);
        vec_assign(n, region.size + first, roi_size);
    }
    const int32_t complete = compute(exists, region, options, k, s) && own;
    vec_assign(n, out_origin, exists.origin + first);
    vec_assign(n, out_size, exists.size + first);
    vec_assign(n, work_origin, region.origin + first);
    vec_assign(n, work_size, region.size + first);
    return complete;
}

int32_t jorm_testfiltop_$se(jorm_site *out, jorm_site *work, uint64_t options, const jorm_site *roi,
                            const jorm_seshape *s, const jorm_array *array) {
    const Sites sites(array);
    return jorm_compute_roi_$se(out, work, options, roi, s, sites.own, sites.parent);
}

int32_t jorm__testfiltop_$se(uint64_t options, int32_t k, int32_t *out_origin, int32_t *out_size, int32_t *work_origin,
                             int32_t *work_size, const int32_t *roi_origin, const int32_t *roi_size,
                             const jorm_seshape *s, const jorm_array *array) {
    const Sites sites(array);
    return jorm__compute_roi_$se(options, k, out_origin, out_size, work_origin, work_size, roi_origin, roi_size, s,
                                 sites.own, sites.parent);
}
