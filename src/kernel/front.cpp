#include "kernel/front.hpp"

#include "array/region.hpp"

#include <algorithm>

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

// The region's part of the destination; every slot of it may be empty.
void region_of_destination(int32_t *origin, int32_t *size, const jorm_array &dst, const jorm_site *roi) {
    for (int i = 0; i < 3; ++i) size[i] = int32_t(dst.extent[i]);
    size[3] = channels_of(dst);
    for (int i = 0; i < 4; ++i) origin[i] = 0;
    for (int i = 0; roi && i < 4; ++i) {
        const Interval part = intersection(0, size[i], roi->origin[i], roi->size[i]);
        origin[i] = part.origin;
        size[i] = part.size;
    }
}

// Cuts the common size down to what the source has from its start point on, and finds its origin. The last source, and
// every one's planes, offer what the start point leaves of them; the others are asked for the common size there.
void fit_source(int32_t *size, int32_t *origin, const FrontSource &source, bool last) {
    const jorm_array &a = *source.array;
    for (int i = 0; i < 4; ++i) origin[i] = 0;
    for (int i = 0; i < 3; ++i) {
        const auto extent = int32_t(a.extent[i]);
        int32_t part = extent;
        if (source.at) {
            part = intersection(0, extent, source.at[i], last || i == 0 ? extent : size[i]).size;
            origin[i] = std::max(source.at[i], 0);
        }
        size[i] = std::min(size[i], part);
    }
    if (!source.at || (source.role == Role::mask && channels_of(a) == 1)) return;
    origin[3] = std::max(source.at[3], 0);
    size[3] = std::min(size[3], channels_of(a) - std::min(origin[3], 4));
}

// The offset of the first element goes into the origin; what the strides cannot express stays with the base.
void fold_offset(FrontOperand &o, const jorm_array &a) {
    const int64_t before = vec_mkloff(4, o.origin, a.stride);
    vec_update_loff(4, o.origin, a.stride, a.loff);
    o.base += a.loff - (vec_mkloff(4, o.origin, a.stride) - before);
}

void set_operand(FrontOperand &o, const jorm_array &a) {
    o.type = a.eltype;
    o.base = static_cast<char *>(a.base);
    o.stride = a.stride;
    if (a.loff != 0) fold_offset(o, a);
}

} // namespace

bool describes_memory(const jorm_array *a) {
    if (!a->base) return false;
    const int32_t element = element_size(a->eltype);
    if (element <= 1) return true;
    uint64_t steps = reinterpret_cast<uintptr_t>(a->base) + uint64_t(int64_t(a->loff));
    for (int i = 4 - a->ndims; i < 4; ++i)
        if ((i == 3 ? uint32_t(channels_of(*a)) : a->extent[i]) > 1) steps |= uint64_t(int64_t(a->stride[i]));
    return (steps & uint64_t(element - 1)) == 0;
}

void fold_operand(FrontOperand &o, const jorm_array &a, const int32_t *origin) {
    std::copy(origin, origin + 4, o.origin);
    set_operand(o, a);
}

int64_t check_operands(const jorm_array *dst, const FrontSource &source) {
    return agree(dst, &source, 1) ? JORM_OK : JORM_EINVAL;
}

int64_t negotiate(Front &front, const jorm_array *dst, const jorm_site *roi, FrontSource *source, int count) {
    if (count > 0 && !source[0].array && source[0].role == Role::source) {
        source[0].array = dst;
        if (!source[0].at && roi) source[0].at = roi->origin;
    }
    if (!agree(dst, source, count)) return JORM_EINVAL;

    region_of_destination(front.operand[0].origin, front.size, *dst, roi);
    if (count > 0) fit_source(front.size, front.operand[count].origin, source[count - 1], true);
    for (int i = 0; i + 1 < count; ++i) fit_source(front.size, front.operand[1 + i].origin, source[i], false);
    for (const int32_t n : front.size)
        if (n < 1) return JORM_EEMPTY;

    front.first = 4 - dst->ndims;
    front.word = JORM_WORD(dst->ndims);
    set_operand(front.operand[0], *dst);
    for (int i = 0; i < count; ++i) set_operand(front.operand[1 + i], *source[i].array);
    return JORM_OK;
}

} // namespace jorm
