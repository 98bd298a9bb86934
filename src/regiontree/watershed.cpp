// The names of the watershed: entries, per-slice entries, adapters, dispatchers, kernels.
#include "regiontree/watershed.hpp"

#include "kernel/proc.hpp"

#include <cstddef>

using namespace jorm;

static_assert(sizeof(jorm_fwtsparams) == 24 && offsetof(jorm_fwtsparams, polarity) == 8 &&
              offsetof(jorm_fwtsparams, shift) == 12 && offsetof(jorm_fwtsparams, seed_row) == 16 &&
              offsetof(jorm_fwtsparams, seed_column) == 20);

namespace {

int64_t enter(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_array *mask, const jorm_site *roi,
              jorm_fwtsparams *params) {
    Front f;
    if (!params) return JORM_EINVAL;
    if (const int64_t status = negotiate_flood(f, image, mask, roi); status != JORM_OK) return status;
    if (f.axes() == 4)
        return flood_planes(xe, options, mask ? fourcc("wtsx") : fourcc("wtsh"), f, params, to_proc(JormTGAwatershed),
                            to_proc(JormTGAwatershedEx), mask);
    FloodCall call = {xe, options, f.word, f.sizes(), f.operand[0]};
    if (mask) call.mask = f.operand[1];
    return watershed(call, flood_kind(options), params);
}

} // namespace

int64_t JormWatershed(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_site *roi,
                      jorm_fwtsparams *params) {
    return enter(xe, options, image, nullptr, roi, params);
}

int64_t JormWatershedEx(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_array *mask,
                        const int32_t *origin, const int32_t *size, jorm_fwtsparams *params) {
    jorm_site site;
    return enter(xe, options, image, mask, flood_region(site, origin, size), params);
}

int64_t JormTGAwatershed(jorm_xe *xe, uint64_t options, jorm_fwtsparams *params, uint32_t word, const int32_t *size,
                         uint32_t type, const void *data, const int32_t *strides) {
    return watershed({xe, options, word, size, operand(type, data, strides)}, flood_kind(options), params);
}

int64_t JormTGAwatershedEx(jorm_xe *xe, uint64_t options, jorm_fwtsparams *params, uint32_t word, const int32_t *size,
                           uint32_t type, const void *data, const int32_t *strides, uint32_t mask_type,
                           const void *mask, const int32_t *mask_strides) {
    return watershed({xe, options, word, size, operand(type, data, strides), operand(mask_type, mask, mask_strides)},
                     flood_kind(options), params);
}

#define FLOOD_LAYERS(adapter, xm_adapter, dispatcher, kind)                                                            \
    int64_t adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,                  \
                    const void *base, const int32_t *origin, const int32_t *strides, jorm_fwtsparams *params) {        \
        const void *const data = start_of(word, base, origin, strides);                                                \
        return watershed({xe, options, word, size, operand(type, data, strides)}, kind, params);                       \
    }                                                                                                                  \
    int64_t xm_adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,               \
                       const void *base, const int32_t *origin, const int32_t *strides, uint32_t mask_type,            \
                       const void *mask, const int32_t *mask_origin, const int32_t *mask_strides,                      \
                       jorm_fwtsparams *params) {                                                                      \
        const void *const data = start_of(word, base, origin, strides);                                                \
        const void *const mask_data = start_of(word, mask, mask_origin, mask_strides);                                 \
        return watershed(                                                                                              \
            {xe, options, word, size, operand(type, data, strides), operand(mask_type, mask_data, mask_strides)},      \
            kind, params);                                                                                             \
    }                                                                                                                  \
    int64_t dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,               \
                       const void *data, const int32_t *strides, jorm_fwtsparams *params) {                            \
        return watershed({xe, options, word, size, operand(type, data, strides)}, kind, params);                       \
    }
FLOOD_LAYERS(jorma_watershed, jorma_watershed_xm, jorma__watershed, FloodKind::standard)
FLOOD_LAYERS(jorma_fwatershed, jorma_fwatershed_xm, jorma__fwatershed, FloodKind::fast)

#define FLOOD_XM_DISPATCHER(name, kind)                                                                                \
    int64_t name(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type, const void *data,   \
                 const int32_t *strides, uint32_t mask_type, const void *mask, const int32_t *mask_strides,            \
                 jorm_fwtsparams *params) {                                                                            \
        return watershed(                                                                                              \
            {xe, options, word, size, operand(type, data, strides), operand(mask_type, mask, mask_strides)}, kind,     \
            params);                                                                                                   \
    }
FLOOD_XM_DISPATCHER(jorma__watershed_xm, FloodKind::standard)
FLOOD_XM_DISPATCHER(jorma__fwatershed_xm, FloodKind::fast)

int64_t _jorma__fwatershed_c1_u8(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const void *data,
                                 const int32_t *strides, jorm_fwtsparams *params) {
    return watershed({xe, options, word, size, operand(JORM_U8, data, strides)}, FloodKind::fast, params);
}

int64_t _jorma__fwatershed_xm_c1_u8(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const void *data,
                                    const int32_t *strides, const void *mask, const int32_t *mask_strides,
                                    jorm_fwtsparams *params) {
    return watershed({xe, options, word, size, operand(JORM_U8, data, strides), operand(JORM_U8, mask, mask_strides)},
                     FloodKind::fast, params);
}
