// Generation of stable regions: the floods, the detection, and the names of their layers.
#include "jorm/xe.h"
#include "kernel/proc.hpp"
#include "regiontree/detect.hpp"
#include "regiontree/watershed.hpp"

#include <algorithm>
#include <cstddef>

using namespace jorm;

static_assert(sizeof(jorm_mser) == 360 && offsetof(jorm_mser, min_area_fraction) == 4 &&
              offsetof(jorm_mser, min_diversity) == 16 && offsetof(jorm_mser, min_area) == 20 &&
              offsetof(jorm_mser, passes) == 28 && offsetof(jorm_mser, shift) == 30 &&
              offsetof(jorm_mser, seed_row) == 32 && offsetof(jorm_mser, regions) == 40 &&
              offsetof(jorm_mser, dark_count) == 64 && offsetof(jorm_mser, dark) == 72 &&
              offsetof(jorm_mser, volume) == 88 && offsetof(jorm_mser, dark_store) == 120 &&
              offsetof(jorm_mser, bright_store) == 128 && offsetof(jorm_mser, embedded) == 136);

namespace jorm {
namespace {

enum Pass { dark, bright, passes };

int32_t part(int32_t pixels, float fraction) {
    const float v = float(pixels) * fraction;
    return v >= float(INT32_MAX) ? INT32_MAX : v > float(INT32_MIN) ? int32_t(v) : 0;
}

jorm_msercriteria criteria_of(const jorm_mser &m, int32_t pixels) {
    int32_t min_area = part(pixels, m.min_area_fraction);
    if (min_area == 0) min_area = m.min_area > 0 ? m.min_area : 9;
    return {m.delta >> std::min<int>(m.shift, 31), min_area, part(pixels, m.max_area_fraction), m.max_variation,
            m.min_diversity};
}

// One generation with its stores.
class Generation {
public:
    Generation(jorm_mser *m) : m_(m), store_{&m->dark_store, &m->bright_store} {}

    bool wants(int pass) const { return m_->passes > bright || m_->passes == pass; }

    // Every store is emptied before one is taken into use again: two of a caller may share a storage.
    void begin() {
        m_->regions.count = 0;
        for (int i = 0; i < passes; ++i) {
            jorm_fwtsres *const own = &m_->embedded[i];
            if (!wants(i) && *store_[i] == own) *store_[i] = nullptr;
            if (wants(i) && !*store_[i]) *store_[i] = own;
            if (*store_[i] != own && own->storage) JormFWTSRESfini(own);
            if (wants(i)) RegionPool::release(*store_[i]);
        }
        for (int i = 0; i < passes; ++i)
            if (wants(i)) JormFWTSRESinit(*store_[i], nullptr, nullptr);
    }

    int64_t flood(const FloodCall &call, FloodKind kind) {
        for (int i = 0; i < passes; ++i) {
            if (!wants(i)) continue;
            const jorm_fwtsparams params = {*store_[i], i, m_->shift, m_->seed_row, m_->seed_column};
            if (const int64_t status = watershed(call, kind, &params); status != JORM_OK) return status;
        }
        return JORM_OK;
    }

    void detect(const jorm_msercriteria &criteria) {
        uint64_t end[passes];
        for (int i = 0; i < passes; ++i) {
            if (wants(i)) detect_mser(&m_->regions, (*store_[i])->root, criteria, true);
            end[i] = m_->regions.count;
        }
        auto *const list = static_cast<jorm_fwtsr **>(m_->regions.data);
        const int32_t top = 255 >> std::min<int>(m_->shift, 8);
        for (uint64_t i = end[dark]; i < end[bright]; ++i) list[i]->level ^= top;
        m_->dark_count = uint32_t(end[dark]);
        m_->bright_count = uint32_t(end[bright] - end[dark]);
        m_->dark = list;
        m_->bright = list ? list + end[dark] : nullptr;
    }

    void abandon() {
        for (int i = 0; i < passes; ++i) {
            jorm_fwtsres *const own = &m_->embedded[i];
            if (own->storage) JormFWTSRESfini(own);
            if (wants(i) && *store_[i] && *store_[i] != own) RegionPool::release(*store_[i]);
            *store_[i] = nullptr;
        }
        _UlMfree(m_->regions.data);
        m_->regions = {};
        m_->dark_count = m_->bright_count = 0;
        m_->dark = m_->bright = nullptr;
    }

private:
    jorm_mser *m_;
    jorm_fwtsres **store_[passes];
};

} // namespace

int64_t generate_mser(const FloodCall &call, FloodKind kind, jorm_mser *m) {
    if (!m) return JORM_EINVAL;
    Shape shape;
    Generation generation(m);
    int64_t status = check_flood(call, shape);
    if (status == JORM_OK) {
        jorm_fmserf_setimvol(m, shape.axes, call.size, call.image.stride);
        generation.begin();
        status = generation.flood(call, kind);
    }
    if (status == JORM_OK)
        generation.detect(criteria_of(*m, shape.rows * shape.pixels));
    else
        generation.abandon();
    return status;
}

namespace {

// A plane of a picture of four axes by the standard flood.
int64_t standard_plane(jorm_xe *xe, uint64_t options, jorm_mser *mser, uint32_t word, const int32_t *size,
                       uint32_t type, const void *data, const int32_t *strides) {
    return generate_mser({xe, options, word, size, operand(type, data, strides)}, FloodKind::standard, mser);
}
int64_t masked_standard_plane(jorm_xe *xe, uint64_t options, jorm_mser *mser, uint32_t word, const int32_t *size,
                              uint32_t type, const void *data, const int32_t *strides, uint32_t mask_type,
                              const void *mask, const int32_t *mask_strides) {
    return generate_mser(
        {xe, options, word, size, operand(type, data, strides), operand(mask_type, mask, mask_strides)},
        FloodKind::standard, mser);
}

int64_t enter(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_array *mask, const jorm_site *roi,
              jorm_mser *mser, FloodKind kind) {
    Front f;
    if (!mser) return JORM_EINVAL;
    if (const int64_t status = negotiate_flood(f, image, mask, roi); status != JORM_OK) return status;
    if (f.axes() == 4) {
        const bool fast = kind == FloodKind::fast;
        return flood_planes(xe, options, fourcc("mser"), f, mser,
                            fast ? to_proc(JormTGAgenerateFMSERs) : to_proc(standard_plane),
                            fast ? to_proc(JormTGAgenerateFMSERsEx) : to_proc(masked_standard_plane), mask);
    }
    FloodCall call = {xe, options, f.word, f.sizes(), f.operand[0]};
    if (mask) call.mask = f.operand[1];
    return generate_mser(call, kind, mser);
}

} // namespace
} // namespace jorm

#define MSER_ENTRY(name, ex_name, kind)                                                                                \
    int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_site *roi, jorm_mser *mser) {      \
        return enter(xe, options, image, nullptr, roi, mser, kind);                                                    \
    }                                                                                                                  \
    int64_t ex_name(jorm_xe *xe, uint64_t options, const jorm_array *image, const jorm_array *mask,                    \
                    const int32_t *origin, const int32_t *size, jorm_mser *mser) {                                     \
        jorm_site site;                                                                                                \
        return enter(xe, options, image, mask, flood_region(site, origin, size), mser, kind);                          \
    }
MSER_ENTRY(JormGenerateFMSERs, JormGenerateFMSERsEx, FloodKind::fast)
MSER_ENTRY(JormGenerateMSERs, JormGenerateMSERsEx, flood_kind(options))

int64_t JormTGAgenerateFMSERs(jorm_xe *xe, uint64_t options, jorm_mser *mser, uint32_t word, const int32_t *size,
                              uint32_t type, const void *data, const int32_t *strides) {
    return generate_mser({xe, options, word, size, operand(type, data, strides)}, FloodKind::fast, mser);
}

int64_t JormTGAgenerateFMSERsEx(jorm_xe *xe, uint64_t options, jorm_mser *mser, uint32_t word, const int32_t *size,
                                uint32_t type, const void *data, const int32_t *strides, uint32_t mask_type,
                                const void *mask, const int32_t *mask_strides) {
    return generate_mser(
        {xe, options, word, size, operand(type, data, strides), operand(mask_type, mask, mask_strides)},
        FloodKind::fast, mser);
}

int64_t jorma_fmser(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type, const void *base,
                    const int32_t *origin, const int32_t *strides, jorm_mser *mser) {
    const void *const data = start_of(word, base, origin, strides);
    return generate_mser({xe, options, word, size, operand(type, data, strides)}, FloodKind::fast, mser);
}

#define MSER_XM_ADAPTER(name, kind)                                                                                    \
    int64_t name(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type, const void *base,   \
                 const int32_t *origin, const int32_t *strides, uint32_t mask_type, const void *mask,                  \
                 const int32_t *mask_origin, const int32_t *mask_strides, jorm_mser *mser) {                           \
        const void *const data = start_of(word, base, origin, strides);                                                \
        const void *const mask_data = start_of(word, mask, mask_origin, mask_strides);                                 \
        return generate_mser(                                                                                          \
            {xe, options, word, size, operand(type, data, strides), operand(mask_type, mask_data, mask_strides)},      \
            kind, mser);                                                                                               \
    }
MSER_XM_ADAPTER(jorma_fmser_xm, FloodKind::fast)
MSER_XM_ADAPTER(jorma_mser_xm, FloodKind::standard)

jorm_mser *jorm_fmserf_setimvol(jorm_mser *mser, int32_t ndim, const int32_t *dims, const int32_t *strides) {
    if (!mser || !dims || !strides || ndim < 2) return mser;
    const bool rows = ndim > 2;
    const int32_t H = rows ? dims[ndim - 3] : 1, W = dims[ndim - 2], stride = rows ? strides[ndim - 3] : 0;
    const int32_t volume[8] = {1, H, W, 1, wrap_mul(H, stride), stride, 1, 1};
    std::copy(volume, volume + 8, mser->volume);
    return mser;
}
