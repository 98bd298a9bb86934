#include "kernel/front.hpp"

#include "array/region.hpp"

#include <algorithm>
#include <cstring>

namespace jorm {
namespace {

int32_t channels_of(const jorm_array &a) { return stored_channels(a.extent[3]); }

bool valid_destination(const jorm_array *a) {
    return a && (a->ndims == 3 || a->ndims == 4) && int32_t(a->extent[0]) >= 1 && channels_of(*a) >= 1 &&
           channels_of(*a) <= 4 && describes_memory(a);
}

bool same_extents(const jorm_array &a, const jorm_array &b) {
    return a.ndims == b.ndims && std::memcmp(a.extent, b.extent, sizeof a.extent) == 0;
}

// May a source of other extents than the destination's stand beside it?
bool fits_extents(const FrontSource &source, const jorm_array &dst) {
    const jorm_array &a = *source.array;
    return (a.ndims == dst.ndims || (dst.ndims == 4 && a.ndims == 3)) &&
           (a.extent[0] == dst.extent[0] || a.extent[0] == 1) &&
           (channels_of(a) == channels_of(dst) || (source.role == Role::mask && channels_of(a) == 1));
}

bool valid_source(const FrontSource &source, const jorm_array &dst) {
    const jorm_array *a = source.array;
    return a && (same_extents(*a, dst) || fits_extents(source, dst)) &&
           (source.role == Role::source || a->eltype == JORM_U8 || a->eltype == JORM_S8) && describes_memory(a);
}

bool agree(const jorm_array *dst, const FrontSource *source, int count) {
    if (!valid_destination(dst)) return false;
    for (int i = 0; i < count; ++i)
        if (!valid_source(source[i], *dst)) return false;
    return true;
}

void start(Operand &o, const jorm_array &a, const jorm_array &dst) {
    o.type = a.eltype;
    o.start = static_cast<char *>(a.base) + a.loff;
    o.stride = a.stride + (4 - dst.ndims);
    o.by_pixel = false;
}

void advance(Operand &o, const jorm_array &a, const int32_t *origin) { o.start += vec_mkloff(4, origin, a.stride); }

// Where an operand's region starts; pointers are formed when it is known not to be empty.
struct Origin {
    const jorm_array *array = nullptr; // null: its first element
    int32_t slot[4];
};

// The destination from the region's origin on; every slot of the size may be empty.
void fit_destination(Operand &o, Origin &origin, int32_t *size, const jorm_array &a, const jorm_site *roi) {
    start(o, a, a);
    for (int i = 0; i < 3; ++i) size[i] = int32_t(a.extent[i]);
    size[3] = channels_of(a);
    if (!roi) return;
    origin.array = &a;
    for (int i = 0; i < 4; ++i) {
        const Interval part = intersection(0, size[i], roi->origin[i], roi->size[i]);
        origin.slot[i] = part.origin;
        size[i] = part.size;
    }
}

// Cuts the common size down to what a source has from its start point on. The last source, and every one's planes,
// offer what the start point leaves of them; the others are asked for the common size there.
void fit_source(Operand &o, Origin &origin, int32_t *size, const FrontSource &source, const jorm_array &dst,
                bool last) {
    const jorm_array &a = *source.array;
    start(o, a, dst);
    if (!source.at && same_extents(a, dst)) return;
    const bool one_channel = source.role == Role::mask && channels_of(a) == 1;
    o.by_pixel = one_channel && channels_of(dst) != 1;
    if (!source.at) {
        for (int i = 0; i < 3; ++i) size[i] = std::min(size[i], int32_t(a.extent[i]));
        return;
    }
    origin.array = &a;
    for (int i = 0; i < 3; ++i) {
        const auto extent = int32_t(a.extent[i]);
        const bool all = last || i == 0;
        size[i] = std::min(size[i], intersection(0, extent, source.at[i], all ? extent : size[i]).size);
        origin.slot[i] = std::max(source.at[i], 0);
    }
    origin.slot[3] = one_channel ? 0 : std::max(source.at[3], 0);
    if (!one_channel) size[3] = std::min(size[3], channels_of(a) - std::min(origin.slot[3], 4));
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

Operand operand_at(const jorm_array &a, const int32_t *origin) {
    Operand o;
    start(o, a, a);
    advance(o, a, origin);
    return o;
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

    Operand *operand = front.operand;
    Origin origin[1 + max_sources];
    fit_destination(operand[0], origin[0], front.size, *dst, roi);
    if (count > 0) fit_source(operand[count], origin[count], front.size, source[count - 1], *dst, true);
    for (int i = 1; i < count; ++i) fit_source(operand[i], origin[i], front.size, source[i - 1], *dst, false);
    for (const int32_t n : front.size)
        if (n < 1) return JORM_EEMPTY;
    for (int i = 0; i <= count; ++i)
        if (origin[i].array) advance(operand[i], *origin[i].array, origin[i].slot);
    front.first = 4 - dst->ndims;
    front.word = JORM_WORD(dst->ndims);
    return JORM_OK;
}

} // namespace jorm
