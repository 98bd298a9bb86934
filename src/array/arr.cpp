// Sites of arrays, negotiation of regions, overlap, sub-arrays.
#include "array/region.hpp"
#include "array/vec.hpp"
#include "jorm/array.h"

#include <cmath>
#include <cstddef>
#include <limits>

using namespace jorm;

static_assert(sizeof(jorm_array) == 80 && offsetof(jorm_array, extent) == 0 &&
              offsetof(jorm_array, parent_extent) == 16 && offsetof(jorm_array, stride) == 32 &&
              offsetof(jorm_array, ndims) == 48 && offsetof(jorm_array, eltype) == 52 &&
              offsetof(jorm_array, loff) == 64 && offsetof(jorm_array, base) == 72);
static_assert(sizeof(jorm_site) == 32 && offsetof(jorm_site, size) == 16);

namespace {

// Brings one slot of two regions to the proportion `scale` (size of a per unit of b). False when that empties it.
bool fit_scaled(int32_t &size_a, int32_t &size_b, double &scale) {
    constexpr auto to_size = [](double v) {
        constexpr double limit = std::numeric_limits<int32_t>::max();
        return int32_t(std::nearbyint(v < limit ? v > -limit ? v : -limit : limit));
    };
    if (std::fabs(scale) <= double(std::numeric_limits<float>::epsilon())) scale = double(size_a) / double(size_b);
    const double wanted = size_b * scale;
    if (std::ceil(wanted) < size_a) {
        size_a = to_size(wanted);
        return size_a > 0;
    }
    if (size_a < std::floor(wanted)) {
        size_b = to_size(size_a / scale);
        return size_b > 0;
    }
    return true;
}

// Address range of a region, as the overlap test sees it.
struct Footprint {
    int64_t begin, end;     // of the whole region
    int64_t row_bytes;      // what one row spans
    int32_t row_stride = 0; // of regions with rows
    bool has_row, has_rows;

    Footprint(uint32_t word, const void *base, int32_t loff, const int32_t *origin, const int32_t *size,
              const int32_t *stride)
        : has_row(word_axes(word) >= 2), has_rows(word_axes(word) >= 3) {
        const int32_t n = word_axes(word);
        begin = wrap(int64_t(reinterpret_cast<uintptr_t>(base)), loff);
        begin = wrap(begin, jorm_vec_mkloff_$LS(word, origin, stride));
        end = wrap(begin, vec_mkloff(n, size, stride));
        row_bytes = has_row && size && stride ? int64_t(size[n - 2]) * stride[n - 2] : 0;
        if (has_rows && stride) row_stride = stride[n - 3];
    }
    static int64_t wrap(int64_t a, int64_t b) { return int64_t(uint64_t(a) + uint64_t(b)); }
};

int32_t overlapping(const Footprint &a, const Footprint &b) {
    if (a.end <= b.begin || b.end <= a.begin) return 0;
    if (a.has_rows && b.has_rows && a.row_stride != b.row_stride) return -1;
    const bool rows_apart =
        a.has_row && b.has_row &&
        (Footprint::wrap(a.begin, a.row_bytes) <= b.begin || Footprint::wrap(b.begin, b.row_bytes) <= a.begin);
    return rows_apart ? 0 : -1;
}

jorm_array *sub_array(jorm_array *out, const jorm_array *a, const jorm_site *site, bool cut) {
    if (!out || !a) return nullptr;
    const jorm_site whole = explicit_site_of(*a);
    jorm_site part = site ? *site : whole;
    const bool empty = cut && !intersect(part, part, whole);
    const int64_t loff = empty ? a->loff : int64_t(uint64_t(vec_mkloff(4, part.origin, a->stride)) + uint64_t(a->loff));
    if (loff != int32_t(loff)) return nullptr;

    jorm_array view = *a;
    view.loff = int32_t(loff);
    for (int32_t i = 0; i < 4; ++i) view.extent[i] = empty ? 0 : uint32_t(part.size[i]);
    // All channels keep the code they had.
    if (!empty && part.size[3] == whole.size[3]) view.extent[3] = a->extent[3];
    // An array without a parent of its own is the parent.
    const auto *parent = reinterpret_cast<const int32_t *>(a->parent_extent);
    if (a->loff == 0 && vec_equal(4, parent, nullptr)) std::memcpy(view.parent_extent, a->extent, sizeof view.extent);
    *out = view;
    return out;
}

} // namespace

int32_t jorm_intersec(int32_t n, int32_t *out_origin, int32_t *out_size, const int32_t *origin, const int32_t *size,
                      const int32_t *other_origin, const int32_t *other_size) {
    if (n < 1 || !origin || !size || !other_origin || !other_size) return 0;
    return intersect_slots(n, out_origin, out_size, origin, size, other_origin, other_size);
}

int32_t jorm_intersecI(int32_t n, int32_t *origin, int32_t *size, const int32_t *other_origin,
                       const int32_t *other_size) {
    return jorm_intersec(n, origin, size, origin, size, other_origin, other_size);
}

jorm_site *jorm_arr_siteof(const jorm_array *a, jorm_site *site) { return jorm_arr__siteof(a, 3, site); }

jorm_site *jorm_arr__siteof(const jorm_array *a, int32_t n, jorm_site *site) {
    if (!a || !site) return nullptr;
    *site = site_of(a->extent);
    for (int32_t i = 0; i < 3 - spatial_slots(n); ++i) site->size[i] = 1;
    return site;
}

jorm_site *jorm_arr_parsiteof(const jorm_array *a, jorm_site *site) {
    if (!a || !site) return nullptr;
    *site = site_of(a->parent_extent);
    vec_fromloff(4, site->origin, a->stride, a->loff);
    vec_neg(4, site->origin, site->origin);
    return site;
}

jorm_site *jorm_arr_siteofAt(const jorm_array *a, jorm_site *site, const int32_t *at) {
    return jorm_arr__siteofAt(a, 3, site, at);
}

jorm_site *jorm_arr_siteofAt_$g2(const jorm_array *a, jorm_site *site, int32_t y, int32_t x) {
    const int32_t at[4] = {0, y, x, 0};
    return jorm_arr__siteofAt(a, 3, site, at);
}

jorm_site *jorm_arr__siteofAt(const jorm_array *a, int32_t n, jorm_site *site, const int32_t *at) {
    if (!a || !site) return nullptr;
    site_at(*a, spatial_slots(n), *site, at);
    return site;
}

jorm_site *jorm_arr_adjorgetRoi(const jorm_array *a, jorm_site *site, const jorm_site *roi) {
    if (!a || !site) return nullptr;
    region_of(*a, *site, roi);
    return site;
}

jorm_site *jorm_arr_adjustRoi(const jorm_array *a, jorm_site *site, const jorm_site *roi) {
    return jorm_arr_adjorgetRoi(a, site, roi ? roi : site);
}

jorm_site *jorm_arr_adjustRoi_$I(const jorm_array *a, jorm_site *site) { return jorm_arr_adjorgetRoi(a, site, site); }

int32_t jorm_arr_negotiateRoi(const jorm_array *a, const jorm_array *b, jorm_site *site_a, jorm_site *site_b,
                              const jorm_site *roi_a, const int32_t *at_b, int32_t n) {
    if (!a || !b || !site_a || !site_b) return 0;
    return negotiate_region(*a, *b, *site_a, *site_b, roi_a, at_b, spatial_slots(n));
}

int32_t jorm_arr_negotiateRoiEx(const jorm_array *a, const jorm_array *b, jorm_site *site_a, jorm_site *site_b,
                                double *scale, const jorm_site *roi_a, const jorm_site *roi_b, int32_t n) {
    if (!a || !b || !site_a || !site_b) return 0;
    if (!region_of(*a, *site_a, roi_a) || !region_of(*b, *site_b, roi_b)) return 0;
    double own[4] = {};
    if (!scale) scale = own;
    int32_t common = 1;
    for (int32_t i = 3 - spatial_slots(n); i < 3; ++i) common &= fit_scaled(site_a->size[i], site_b->size[i], scale[i]);
    return common;
}

int32_t jorm_xoverlappedLS(uint32_t word_a, const void *base_a, int32_t loff_a, const int32_t *origin_a,
                           const int32_t *size_a, const int32_t *stride_a, uint32_t word_b, const void *base_b,
                           int32_t loff_b, const int32_t *origin_b, const int32_t *size_b, const int32_t *stride_b) {
    return overlapping(Footprint(word_a, base_a, loff_a, origin_a, size_a, stride_a),
                       Footprint(word_b, base_b, loff_b, origin_b, size_b, stride_b));
}

int32_t jorm_overlappedLS(uint32_t word, const int32_t *size, const void *base_a, const int32_t *origin_a,
                          const int32_t *stride_a, const void *base_b, const int32_t *origin_b,
                          const int32_t *stride_b) {
    return jorm_xoverlappedLS(word, base_a, 0, origin_a, size, stride_a, word, base_b, 0, origin_b, size, stride_b);
}

int32_t jorm_arr_overlapped(const jorm_array *a, const jorm_array *b, const jorm_site *site_a,
                            const jorm_site *site_b) {
    if (!a || !b) return 0;
    const jorm_site whole_a = explicit_site_of(*a), whole_b = explicit_site_of(*b);
    if (!site_a) site_a = &whole_a;
    if (!site_b) site_b = &whole_b;
    const auto footprint = [](const jorm_array &array, const jorm_site &site) {
        const int32_t n = array.ndims >= 1 && array.ndims <= 4 ? array.ndims : 4, lead = 4 - n;
        return Footprint(JORM_WORD(n), array.base, array.loff, site.origin + lead, site.size + lead,
                         array.stride + lead);
    };
    return overlapping(footprint(*a, *site_a), footprint(*b, *site_b));
}

void *jorm_arr_topcs(const jorm_array *a, uint32_t n, int32_t *dst, const int32_t *index) {
    if (!a) return nullptr;
    const int32_t used = word_axes(n) < 4 ? word_axes(n) : 4;
    vec_update_loff(used, vec_assign(used, dst, index), a->stride + 4 - used, a->loff);
    return a->base;
}

void *jorm_arr_pt2pcs(const jorm_array *a, int32_t *dst, const int32_t *point) {
    const int32_t index[4] = {0, point ? point[0] : 0, point ? point[1] : 0, 0};
    return jorm_arr_topcs(a, 4, dst, index);
}

jorm_array *_jorm_array__$sar(jorm_array *out, const jorm_array *a, const jorm_site *site) {
    return sub_array(out, a, site, true);
}
jorm_array *_jorm_array__$sar$I(jorm_array *a, const jorm_site *site) { return sub_array(a, a, site, true); }
jorm_array *_jorm_array__$_sar(jorm_array *out, const jorm_array *a, const jorm_site *site) {
    return sub_array(out, a, site, false);
}
jorm_array *_jorm_array__$_sar$I(jorm_array *a, const jorm_site *site) { return sub_array(a, a, site, false); }

jorm_array *_jorm_array__$xtrn(jorm_array *out, uint32_t eltype, int32_t ndims, const int32_t *extent,
                               const int32_t *stride, void *base) {
    if (!out || !extent || ndims < 1 || ndims > 4) return nullptr;
    jorm_array array = {};
    array.ndims = uint16_t(ndims);
    array.eltype = eltype;
    array.base = base;
    // From the channels outward; dense strides follow from the bytes met so far.
    int64_t bytes = element_size(eltype);
    if (!stride && bytes == 0) return nullptr;
    for (int32_t i = 3; i >= 0; --i) {
        const int32_t used = i - (4 - ndims);
        if (used < 0) {
            array.extent[i] = 1;
            continue;
        }
        if (extent[used] < 0 || (!stride && bytes != int32_t(bytes))) return nullptr;
        array.extent[i] = uint32_t(extent[used]);
        array.stride[i] = stride ? stride[used] : int32_t(bytes);
        bytes = int64_t(array.stride[i]) * (i == 3 ? stored_channels(array.extent[i]) : extent[used]);
    }
    std::memcpy(array.parent_extent, array.extent, sizeof array.extent);
    *out = array;
    return out;
}
