#include "kernel/front.hpp"

#include "array/region.hpp"
#include "jorm/array.h"

#include <algorithm>
#include <cstring>

namespace jorm {
namespace {

int32_t channels_of(const jorm_array &a) { return stored_channels(a.extent[3]); }

bool valid_destination(const jorm_array *a) {
    return a && (a->ndims == 3 || a->ndims == 4) && int32_t(a->extent[0]) >= 1 && channels_of(*a) >= 1 &&
           channels_of(*a) <= 4 && describes_memory(a);
}

bool valid_source(const FrontSource &source, const jorm_array &dst) {
    const jorm_array *a = source.array;
    const bool mask = source.role == Role::mask;
    return a && (a->ndims == dst.ndims || (dst.ndims == 4 && a->ndims == 3)) &&
           (a->extent[0] == dst.extent[0] || a->extent[0] == 1) &&
           (channels_of(*a) == channels_of(dst) || (mask && channels_of(*a) == 1)) &&
           (!mask || a->eltype == JORM_U8 || a->eltype == JORM_S8) && describes_memory(a);
}

bool agree(const jorm_array *dst, const FrontSource *source, int count) {
    if (!valid_destination(dst)) return false;
    for (int i = 0; i < count; ++i)
        if (!valid_source(source[i], *dst)) return false;
    return true;
}

// What a source other than the last offers of the common size. False when nothing is left.
bool clip_to_source(jorm_site &common, const FrontSource &source) {
    jorm_site site = {};
    if (source.at) std::memcpy(site.origin, source.at, sizeof site.origin);
    site.origin[3] = 0;
    site.size[0] = int32_t(source.array->extent[0]);
    site.size[1] = common.size[1];
    site.size[2] = common.size[2];
    site.size[3] = channels_of(*source.array);
    region_of(*source.array, site, &site);
    for (int i = 0; i < 3; ++i)
        if (site.size[i] <= 0) return false;
    common.size[0] = std::min(common.size[0], site.size[0]);
    common.size[1] = site.size[1];
    common.size[2] = site.size[2];
    return true;
}

// The first of the source's channels, and how many channels it leaves of the region's.
int32_t first_channel(const FrontSource &source, int32_t &channels) {
    if (source.role == Role::mask && channels_of(*source.array) == 1) return 0;
    const int32_t first = source.at ? std::max(source.at[3], 0) : 0;
    channels = std::min(channels, channels_of(*source.array) - std::min(first, 4));
    return first;
}

// Where a source's region starts: never before its first element.
void source_origin(int32_t *origin, const int32_t *at) {
    for (int i = 0; i < 3; ++i) origin[i] = at && at[i] > 0 ? at[i] : 0;
    origin[3] = 0;
}

} // namespace

bool describes_memory(const jorm_array *a) {
    if (!a->base) return false;
    const int32_t element = element_size(a->eltype);
    if (element <= 1) return true;
    if ((reinterpret_cast<uintptr_t>(a->base) + uintptr_t(intptr_t(a->loff))) % unsigned(element) != 0) return false;
    for (int i = 4 - a->ndims; i < 4; ++i) {
        const uint32_t extent = i == 3 ? uint32_t(channels_of(*a)) : a->extent[i];
        if (extent > 1 && a->stride[i] % element != 0) return false;
    }
    return true;
}

// What the strides cannot express stays with the base.
void fold_operand(FrontOperand &o, const jorm_array &a, const int32_t *origin) {
    std::memcpy(o.origin, origin, sizeof o.origin);
    std::memcpy(o.stride, a.stride, sizeof o.stride);
    int64_t folded = 0;
    if (a.loff != 0) {
        folded = -jorm_vec_mkloff(4, o.origin, o.stride);
        jorm_vec_update_$loff(4, o.origin, o.stride, a.loff);
        folded += jorm_vec_mkloff(4, o.origin, o.stride);
    }
    o.type = a.eltype;
    o.base = static_cast<char *>(a.base) + (a.loff - folded);
}

int64_t check_operands(const jorm_array *dst, std::initializer_list<FrontSource> sources) {
    return agree(dst, sources.begin(), int(sources.size())) ? JORM_OK : JORM_EINVAL;
}

int64_t negotiate(Front &front, const jorm_array *dst, const jorm_site *roi, std::initializer_list<FrontSource> given) {
    FrontSource source[max_sources];
    const int count = int(given.size());
    for (int i = 0; i < count; ++i) source[i] = given.begin()[i];
    if (count > 0 && !source[0].array && source[0].role == Role::source) {
        source[0].array = dst;
        if (!source[0].at && roi) source[0].at = roi->origin;
    }
    if (!agree(dst, source, count)) return JORM_EINVAL;

    const FrontSource last = count > 0 ? source[count - 1] : FrontSource{dst, nullptr};
    jorm_site common, other;
    if (!negotiate_region(*dst, *last.array, common, other, roi, last.at, 3)) return JORM_EEMPTY;
    for (int i = 0; i + 1 < count; ++i)
        if (!clip_to_source(common, source[i])) return JORM_EEMPTY;

    int32_t first[1 + max_sources] = {common.origin[3]}, channels = common.size[3];
    for (int i = 0; i < count; ++i) first[1 + i] = first_channel(source[i], channels);
    if (channels < 1) return JORM_EEMPTY;

    front.first = 4 - dst->ndims;
    front.word = JORM_WORD(dst->ndims);
    std::memcpy(front.size, common.size, sizeof front.size);
    front.size[3] = channels;
    fold_operand(front.operand[0], *dst, common.origin);
    for (int i = 0; i < count; ++i) {
        int32_t origin[4];
        source_origin(origin, source[i].at);
        origin[3] = first[1 + i];
        fold_operand(front.operand[1 + i], *source[i].array, origin);
    }
    return JORM_OK;
}

} // namespace jorm
