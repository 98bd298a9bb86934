// Sites and their negotiation, inline for the front ends of all operations.
#pragma once
#include "array/element.hpp"
#include "array/vec.hpp"
#include "jorm/types.h"

namespace jorm {

// Regions are negotiated over the spatial slots; fewer than three of them are the inner ones.
inline int32_t spatial_slots(int32_t n) { return n >= 1 && n <= 3 ? n : 3; }

inline jorm_site site_of(const uint32_t *extent) {
    jorm_site site = {};
    for (int32_t i = 0; i < 4; ++i) site.size[i] = int32_t(extent[i]);
    return site;
}

// The whole array, the channel slot holding the number of stored channels.
inline jorm_site explicit_site_of(const jorm_array &a) {
    jorm_site site = site_of(a.extent);
    site.size[3] = stored_channels(a.extent[3]);
    return site;
}

struct Interval {
    int32_t origin, size;
};

inline Interval intersection(int64_t origin, int64_t size, int64_t other_origin, int64_t other_size) {
    const int64_t begin = origin < other_origin ? other_origin : origin;
    const int64_t end = origin + size, other_end = other_origin + other_size;
    return {int32_t(begin), saturate_i32((end < other_end ? end : other_end) - begin)};
}

// Two boxes meet in n slots; the result may lie in either, and either part of it may be left out.
inline int32_t intersect_slots(int32_t n, int32_t *out_origin, int32_t *out_size, const int32_t *origin,
                               const int32_t *size, const int32_t *other_origin, const int32_t *other_size) {
    int32_t common = 1;
    for (int32_t i = 0; i < n; ++i) {
        const Interval meet = intersection(origin[i], size[i], other_origin[i], other_size[i]);
        if (out_origin) out_origin[i] = meet.origin;
        if (out_size) out_size[i] = meet.size;
        common &= meet.size > 0;
    }
    return common;
}

inline int32_t intersect(jorm_site &out, const jorm_site &a, const jorm_site &b) {
    return intersect_slots(4, out.origin, out.size, a.origin, a.size, b.origin, b.size);
}

// The whole of a, or what the region leaves of it; false when a slot is empty.
inline int32_t region_of(const jorm_array &a, jorm_site &site, const jorm_site *roi) {
    const jorm_site whole = explicit_site_of(a);
    return intersect(site, whole, roi ? *roi : whole);
}

// What is left of the array from a start point on, which is addressed at the first of the `used` spatial slots.
inline void site_at(const jorm_array &a, int32_t used, jorm_site &site, const int32_t *at) {
    site = site_of(a.extent);
    const int32_t first = 3 - used;
    for (int32_t i = 0; i < first; ++i) site.size[i] = 1;
    if (!at) return;
    const int32_t origin[3] = {}, *whole = &site.size[first];
    intersect_slots(used, &site.origin[first], &site.size[first], origin, whole, at, whole);
}

// The common region of two arrays in the `used` spatial slots; see jorm_arr_negotiateRoi.
inline int32_t negotiate_region(const jorm_array &a, const jorm_array &b, jorm_site &site_a, jorm_site &site_b,
                                const jorm_site *roi_a, const int32_t *at_b, int32_t used) {
    region_of(a, site_a, roi_a);
    site_at(b, 3, site_b, at_b);
    int32_t common = 1;
    for (int32_t i = 3 - used; i < 3; ++i) {
        if (site_b.size[i] < site_a.size[i]) site_a.size[i] = site_b.size[i];
        site_b.size[i] = site_a.size[i];
        common &= site_a.size[i] > 0;
    }
    return common;
}

} // namespace jorm
