// The front end of statistics.
#pragma once
#include "kernel/front.hpp"
#include "stats/statistics.hpp"

#include <algorithm>

namespace jorm {

// A source with up to four axes, and where it begins.
struct StatFront {
    Front f;
    StatSource source;
    int32_t origin[3]; // of the region, in coordinates of the array

    int64_t negotiate(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi) {
        if (!few_channels(src)) return JORM_EINVAL;
        if (const int64_t status = jorm::negotiate(f, src, roi); status != JORM_OK) return status;
        begin(xe, options, *src, roi);
        return JORM_OK;
    }
    int64_t negotiate(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,
                      const jorm_array *mask, const int32_t *at_mask) {
        if (!few_channels(src) || !mask || stored_channels(mask->extent[3]) != 1) return JORM_EINVAL;
        if (const int64_t status = jorm::negotiate(f, src, roi, {{mask, at_mask, Role::mask}}); status != JORM_OK)
            return status;
        begin(xe, options, *src, roi);
        source.masked = true;
        source.mask = f.operand[1];
        return JORM_OK;
    }

private:
    static bool few_channels(const jorm_array *src) { return src && stored_channels(src->extent[3]) < 4; }
    void begin(jorm_xe *xe, uint64_t options, const jorm_array &src, const jorm_site *roi) {
        if ((options & JORM_OPT_CHANNELS) == 0) options |= src.extent[3] & JORM_OPT_CHANNELS;
        source.xe = xe;
        source.options = options;
        source.word = f.word;
        source.size = f.sizes();
        source.samples = f.operand[0];
        for (int i = 0; i < 3; ++i) origin[i] = roi ? std::max(roi->origin[i], 0) : 0;
    }
};

} // namespace jorm
