// Descriptors of whole buffers and views of them, as callers usually want them.
#include "array/parent.hpp"
#include "array/region.hpp"
#include "array/vec.hpp"
#include "jorm/array.h"

using namespace jorm;

namespace {

bool fits(int64_t v) { return v == int32_t(v); }

bool is_stride(int64_t stride, int32_t element) { return fits(stride) && stride % element == 0; }

int64_t make(jorm_array *out, uint32_t eltype, uint16_t ndims, const int32_t (&extent)[4], int64_t plane_stride,
             int64_t row_stride, const void *base) {
    const int32_t element = well_formed(eltype) ? element_size(eltype) : 0, channels = extent[3];
    if (!out || !base || element == 0 || channels > 4) return JORM_EINVAL;
    for (const int32_t n : extent)
        if (n < 1) return JORM_EINVAL;
    const int32_t pixel = channels * element;
    if (row_stride == 0) row_stride = int64_t(extent[2]) * pixel;
    if (!is_stride(row_stride, element)) return JORM_EINVAL;
    // Planes follow each other upward in memory, whichever way their rows go.
    if (plane_stride == 0 && ndims == 4) plane_stride = extent[1] * (row_stride < 0 ? -row_stride : row_stride);
    if (!is_stride(plane_stride, element)) return JORM_EINVAL;

    jorm_array a = {};
    for (int i = 0; i < 4; ++i) a.extent[i] = a.parent_extent[i] = uint32_t(extent[i]);
    a.stride[0] = int32_t(plane_stride);
    a.stride[1] = int32_t(row_stride);
    a.stride[2] = pixel;
    a.stride[3] = element;
    a.ndims = ndims;
    a.eltype = eltype;
    a.base = const_cast<void *>(base);
    *out = a;
    return JORM_OK;
}

bool is_array(const jorm_array *a) { return a && a->base && a->ndims >= 1 && a->ndims <= 4; }

// An array without a parent of its own is the parent.
void own_parent(jorm_array &a) {
    const auto *parent = reinterpret_cast<const int32_t *>(a.parent_extent);
    if (a.loff == 0 && vec_equal(4, parent, nullptr)) std::memcpy(a.parent_extent, a.extent, sizeof a.extent);
}

// Lets the view start `loff` bytes from its base. Where that cannot be told in its parent, it becomes a whole array.
void place(jorm_array &view, int64_t loff) {
    if (fits(loff)) {
        view.loff = int32_t(loff);
        int64_t index[4], extent[3];
        if (ParentIndex(view).find(index, extent)) return;
    }
    view.base = static_cast<char *>(view.base) + loff;
    view.loff = 0;
    std::memcpy(view.parent_extent, view.extent, sizeof view.extent);
}

} // namespace

int64_t jorm_array_make(jorm_array *out, uint32_t eltype, int32_t rows, int32_t pixels, int32_t channels,
                        int64_t row_stride, const void *base) {
    return make(out, eltype, 3, {1, rows, pixels, channels}, 0, row_stride, base);
}

int64_t jorm_array_make4(jorm_array *out, uint32_t eltype, int32_t planes, int32_t rows, int32_t pixels,
                         int32_t channels, int64_t plane_stride, int64_t row_stride, const void *base) {
    return make(out, eltype, 4, {planes, rows, pixels, channels}, plane_stride, row_stride, base);
}

int64_t jorm_array_sub(jorm_array *out, const jorm_array *a, int32_t y, int32_t x, int32_t h, int32_t w) {
    if (!out || !is_array(a)) return JORM_EINVAL;
    jorm_array view = *a;
    own_parent(view);
    const Interval rows = intersection(0, int32_t(a->extent[1]), y, h);
    const Interval pixels = intersection(0, int32_t(a->extent[2]), x, w);
    if (rows.size < 1 || pixels.size < 1 || int32_t(a->extent[0]) < 1) return JORM_EEMPTY;
    view.extent[1] = uint32_t(rows.size);
    view.extent[2] = uint32_t(pixels.size);
    place(view, a->loff + int64_t(rows.origin) * a->stride[1] + int64_t(pixels.origin) * a->stride[2]);
    *out = view;
    return JORM_OK;
}

int64_t jorm_array_channel(jorm_array *out, const jorm_array *a, int32_t channel) {
    if (!out || !is_array(a) || channel < 0 || channel >= stored_channels(a->extent[3])) return JORM_EINVAL;
    jorm_array view = *a;
    own_parent(view);
    view.extent[3] = 1;
    place(view, a->loff + int64_t(channel) * a->stride[3]);
    *out = view;
    return JORM_OK;
}

int64_t jorm_array_flip(jorm_array *out, const jorm_array *a, int32_t vertical, int32_t horizontal) {
    if (!out || !is_array(a)) return JORM_EINVAL;
    jorm_array view = *a;
    own_parent(view);
    int64_t loff = a->loff;
    for (int slot = 1; slot <= 2; ++slot) {
        const int64_t stride = a->stride[slot], n = int32_t(a->extent[slot]), all = int32_t(view.parent_extent[slot]);
        if (!(slot == 1 ? vertical : horizontal)) continue;
        if (n < 1 || !fits(-stride)) return JORM_EINVAL;
        // The parent is turned around as well: its first element is its last one so far.
        view.stride[slot] = int32_t(-stride);
        view.base = static_cast<char *>(view.base) + (all - 1) * stride;
        loff += (n - all) * stride;
    }
    place(view, loff);
    *out = view;
    return JORM_OK;
}

jorm_site *jorm_site_make(jorm_site *out, int32_t y, int32_t x, int32_t h, int32_t w) {
    if (out) *out = {{0, y, x, 0}, {INT32_MAX, h, w, 4}};
    return out;
}
