#include "filter/chain.hpp"

#include "array/parent.hpp"
#include "convert/copy_block.hpp"
#include "filter/shape.hpp"
#include "jorm/filter.h"

#include <algorithm>
#include <utility>

namespace jorm {
namespace {

// Beyond every address: where a source's surroundings are vouched for, the picture has no edge.
constexpr int64_t no_edge = int64_t(1) << 40;

bool valid_window(const jorm_seshape &s, int first) {
    for (int i = first; i < spatial_axes; ++i)
        if (s.extent[i] < 1 || s.anchor[i] < 0 || s.anchor[i] >= s.extent[i]) return false;
    return true;
}

} // namespace

int64_t read_call(WindowCall &c, WINDOW_PARAMS, const jorm_seshape *shape) {
    const int axes = word_axes(layout), first = 4 - axes;
    if (axes < 2 || axes > 4 || !size || !shape || !valid_window(*shape, first)) return JORM_EINVAL;
    c.xe = xe;
    c.flags = flags;
    c.which = level(flags);
    c.type = eltype;
    c.code = uint32_t(size[axes - 1]);
    c.axes = axes;
    c.channels = stored_channels(c.code & 15);
    if (c.channels < 1 || c.channels > 4) return JORM_EINVAL;
    if (!check_only(c) && (!dst || !dst_strides || !src || !src_strides)) return JORM_EINVAL;
    c.dst = static_cast<char *>(dst);
    c.src = static_cast<const char *>(src);
    for (int i = 0; i < 4; ++i) {
        c.dst_stride[i] = i >= first && dst_strides ? dst_strides[i - first] : 0;
        c.src_stride[i] = i >= first && src_strides ? src_strides[i - first] : 0;
    }
    for (int i = 0; i < 3; ++i) {
        const bool used = i >= first;
        c.size[i] = used ? size[i - first] : 1;
        if (c.size[i] < 1) return JORM_EEMPTY;
        c.before[i] = used ? shape->anchor[i] : 0;
        c.extent[i] = used ? shape->extent[i] : 1;
        c.first[i] = used ? -no_edge : 0;
        c.last[i] = used ? no_edge : 1;
    }
    c.border = {JORM_BORDER_REFLECT101, 0, {}};
    c.in_place = false;
    c.folded = {};
    return JORM_OK;
}

int64_t set_border(WindowCall &c, const jorm_border *border, const jorm_site *sites) {
    if (border) c.border = *border;
    const uint32_t mode = c.border.mode & 15;
    if (mode != JORM_BORDER_NUL && (mode < JORM_BORDER_CONST || mode > JORM_BORDER_REFLECT101)) return JORM_EINVAL;
    if (c.flags & JORM_OPT_NO_BORDER) return JORM_OK;
    const jorm_site *const site = sites ? sites + (c.flags & JORM_OPT_OWN_BORDER ? 0 : 1) : nullptr;
    bool complete = true;
    for (int i = 4 - c.axes; i < 3; ++i) {
        c.first[i] = site ? site->origin[i] : 0;
        c.last[i] = site ? int64_t(site->origin[i]) + site->size[i] : c.size[i];
        if (c.first[i] >= c.last[i]) return JORM_EEMPTY;
        complete = complete && c.first[i] <= -c.before[i] && c.last[i] >= c.size[i] + c.after(i);
    }
    // Without a border a window may only read what exists.
    return mode == JORM_BORDER_NUL && !complete ? JORM_EINVAL : JORM_OK;
}

MovedSites::MovedSites(uint32_t layout, const jorm_site *sites, const int32_t *src_origin) {
    const int first = 4 - word_axes(layout);
    if (!sites || first < 0 || first > 2) return;
    for (int i = first; i < spatial_axes; ++i)
        if (sites[0].size[i] < 1) return;
    for (int k = 0; k < 2; ++k) {
        site[k] = sites[k];
        for (int i = first; i < spatial_axes && src_origin; ++i)
            site[k].origin[i] = wrap_sub(site[k].origin[i], src_origin[i - first]);
    }
    get = site;
}

int64_t copy_call(WindowCall &c) {
    if (!well_formed(c.type)) return JORM_EINVAL;
    if (element_size(c.type) == 0) return JORM_ENOTSUP;
    if (check_only(c)) return JORM_OK;
    CopyBlock b = {4, {}, c.dst, c.src, c.element()};
    for (int i = 0; i < 4; ++i) b.axis[i] = {i < 3 ? c.size[i] : c.channels, c.dst_stride[i], c.src_stride[i]};
    return copy_block(c.xe, c.flags, std::move(b));
}

int64_t WindowFront::negotiate(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src,
                               const jorm_site *roi, const jorm_site *src_roi) {
    const int32_t *at = src_roi ? src_roi->origin : !src && roi ? roi->origin : nullptr;
    src_ = src ? src : dst;
    xe_ = xe;
    flags_ = flags;
    for (int i = 0; i < 3; ++i) origin_[i] = at ? std::max(at[i], 0) : 0;
    return jorm::negotiate(front_, dst, roi, {{src_, at}});
}

jorm_seshape WindowFront::adjusted(const jorm_seshape *shape) const {
    jorm_seshape s = shape ? *shape : jorm_seshape{};
    const int k = front_.axes() - 1;
    adjust_window(s.anchor, s.extent, k, front_.sizes());
    for (int i = 0; i < spatial_axes - k; ++i) { // axes that the array does not have
        s.anchor[i] = 0;
        s.extent[i] = 1;
    }
    return s;
}

jorm_seshape WindowFront::adjusted_as_given(const jorm_seshape &shape) const {
    jorm_seshape s = shape;
    const int k = front_.axes() - 1;
    if (!vec_positive(k, s.extent + spatial_axes - k)) return adjusted(&shape);
    place_anchor(s.anchor, s.extent, k);
    return s;
}

int64_t WindowFront::make(WindowCall &c, const jorm_seshape &shape) const {
    const Operand &dst = front_.operand[0], &src = front_.operand[1];
    if (dst.type != src.type) return JORM_EINVAL;
    const int64_t status = read_call(c, xe_, flags_, front_.word, front_.sizes(), dst.type, dst.start, dst.stride,
                                     src.start, src.stride, &shape);
    if (status != JORM_OK) return status;
    if (front_.size[3] == stored_channels(src_->extent[3] & 15)) c.code = src_->extent[3];
    jorm_site sites[2] = {};
    int64_t index[4] = {}, extent[3] = {};
    const bool view = ParentIndex(*src_).find(index, extent);
    for (int i = front_.first; i < spatial_axes; ++i) {
        sites[0].origin[i] = -origin_[i];
        sites[0].size[i] = int32_t(src_->extent[i]);
        sites[1].origin[i] = view ? int32_t(-origin_[i] - index[i]) : sites[0].origin[i];
        sites[1].size[i] = view ? int32_t(extent[i]) : sites[0].size[i];
    }
    return set_border(c, nullptr, sites);
}

} // namespace jorm
