// Floods behind their layers: what front ends, adapters and dispatchers of the watershed and of stable regions share.
#pragma once
#include "kernel/arguments.hpp"
#include "kernel/front.hpp"
#include "regiontree/flood.hpp"

namespace jorm {

enum class FloodKind { standard, fast };

constexpr FloodKind flood_kind(uint64_t options) {
    return options & JORM_OPT_FAST ? FloodKind::fast : FloodKind::standard;
}

// The picture and the mask of a call, at their start pointers. The mask has none when there is no mask.
struct FloodCall {
    jorm_xe *xe;
    uint64_t options;
    uint32_t word;
    const int32_t *size;
    Operand image;
    Operand mask = {0, nullptr, nullptr};
};

// What every flood asks of its picture.
int64_t check_flood(const FloodCall &call, Shape &shape);

int64_t watershed(const FloodCall &call, FloodKind kind, const jorm_fwtsparams *params);
int64_t generate_mser(const FloodCall &call, FloodKind kind, jorm_mser *mser);

// The front end of all floods. A null region is the whole picture.
int64_t negotiate_flood(Front &front, const jorm_array *image, const jorm_array *mask, const jorm_site *roi);

// Runs a per-slice entry on each plane of a picture of four axes.
int64_t flood_planes(jorm_xe *xe, uint64_t options, uint32_t opcode, const Front &front, const void *params,
                     jorm_proc *entry, jorm_proc *masked_entry, bool masked);

// The region of the Ex entries; null when both vectors are.
inline const jorm_site *flood_region(jorm_site &site, const int32_t *origin, const int32_t *size) {
    if (!origin && !size) return nullptr;
    for (int i = 0; i < 4; ++i) {
        site.origin[i] = origin ? origin[i] : 0;
        site.size[i] = size ? size[i] : INT32_MAX;
    }
    return &site;
}

} // namespace jorm
