// The layers that every neighbourhood operation has, from the entry to the call that stages run on.
//
// entry -> WindowFront      checks, negotiates, adjusts the window, finds the picture around the region
// jorma_e..., jorma__e...   flat arguments with a border record and the sites of the source
// jorma_..., jorma__...     flat arguments, true pixels around the source
//
// All of them end in a function `int64_t run(WindowCall &)` of the operation, which checks what only it knows, lets
// PreparedCall see to overlap, and runs its stages.
#pragma once
#include "filter/window.hpp"
#include "kernel/arguments.hpp"
#include "kernel/front.hpp"
#include "kernel/proc.hpp"

#include "jorm/arith.h"
#include "jorm/filter.h"

namespace jorm {

// Flat arguments, as all layers below the entry take them.
#define WINDOW_PARAMS                                                                                                  \
    jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype, void *dst,                     \
        const int32_t *dst_strides, const void *src, const int32_t *src_strides
#define WINDOW_ARGUMENTS xe, flags, layout, size, eltype, dst, dst_strides, src, src_strides
// The same with origins, for adapters.
#define WINDOW_ORIGIN_PARAMS                                                                                           \
    jorm_xe *xe, uint64_t flags, uint32_t layout, const int32_t *size, uint32_t eltype, void *dst,                     \
        const int32_t *dst_origin, const int32_t *dst_strides, const void *src, const int32_t *src_origin,             \
        const int32_t *src_strides
#define WINDOW_FROM_ORIGINS                                                                                            \
    xe, flags, layout, size, eltype, const_cast<void *>(jorm::start_of_window(layout, dst, dst_origin, dst_strides)),  \
        dst_strides, jorm::start_of_window(layout, src, src_origin, src_strides), src_strides
// What a per-slice entry takes after its parameters, and the layer below without the source's type.
#define WINDOW_SLICE_PARAMS                                                                                            \
    uint32_t layout, const int32_t *size, uint32_t dst_type, void *dst, const int32_t *dst_strides, uint32_t src_type, \
        const void *src, const int32_t *src_strides

inline const void *start_of_window(uint32_t layout, const void *base, const int32_t *origin, const int32_t *strides) {
    return origin ? start_of(layout, base, origin, strides) : base;
}

// The line of an element type in the tables of neighbourhood rows, -1 when there is none.
constexpr int window_line(uint32_t type) {
    return type == JORM_U8 ? 0 : type == JORM_S16 ? 1 : type == JORM_S32 ? 2 : type == JORM_F32 ? 3 : -1;
}

// The group of a channel code in the tables of kernels, those of one, three and four channels; -1 for none.
constexpr int channel_group(uint32_t code) {
    switch (code & 15) {
    case 1:
        return 0;
    case 3:
        return 1;
    case 4:
    case 11:
        return 2;
    default:
        return -1;
    }
}

// What the rectangular filters serve: one channel. Three and four have kernels, which refuse.
inline int64_t rectangle_serves(const WindowCall &c) {
    const int group = channel_group(c.code);
    return window_line(c.type) < 0 || group < 0 ? JORM_EINVAL : group == 0 ? JORM_OK : JORM_ENOTSUP;
}

// The kernel of a group (of a channel count, -1 when there is none) and an element type in a table of four types a
// group, or the one that refuses.
template <class Proc, size_t N>
Proc *look_up_window(Proc *const (&procs)[N], int group, uint32_t eltype, int32_t *status) {
    const int line = window_line(eltype);
    const bool found = group >= 0 && line >= 0;
    if (status) *status = found ? JORM_OK : JORM_EINVAL;
    return found ? procs[group * 4 + line] : from_proc<Proc>(jorma_proc_einval);
}

// Only checks the arguments: nothing is read or written, and there may be nothing to read.
inline bool check_only(const WindowCall &call) { return (call.flags & 1) != 0; }

// The flat arguments as a call whose source has true pixels around it. JORM_EEMPTY when there is nothing to do.
int64_t read_call(WindowCall &call, WINDOW_PARAMS, const jorm_seshape *shape);

// The edges of the picture: those of the source's parent site, or its own, relative to its start (none: those of the
// region). A null border is reflect101.
int64_t set_border(WindowCall &call, const jorm_border *border, const jorm_site *sites);

// The sites of an adapter relative to the start that the origin moves it to.
struct MovedSites {
    jorm_site site[2];
    const jorm_site *get = nullptr;
    MovedSites(uint32_t layout, const jorm_site *sites, const int32_t *src_origin);
};

template <class Run> int64_t run_bare(WINDOW_PARAMS, const jorm_seshape *shape, Run run) {
    WindowCall call;
    const int64_t status = read_call(call, WINDOW_ARGUMENTS, shape);
    return status == JORM_OK ? run(call) : status;
}

template <class Run>
int64_t run_bordered(WINDOW_PARAMS, const jorm_seshape *shape, const jorm_border *border, const jorm_site *sites,
                     Run run) {
    WindowCall call;
    int64_t status = read_call(call, WINDOW_ARGUMENTS, shape);
    if (status == JORM_OK) status = set_border(call, border, sites);
    return status == JORM_OK ? run(call) : status;
}

// Copies the source's pixels: what operations without an effect do.
int64_t copy_call(WindowCall &call);

// The front end of the entries.
class WindowFront {
public:
    // Checks the arrays and negotiates the region; a null source is the destination. The types may still differ.
    int64_t negotiate(jorm_xe *xe, uint64_t flags, const jorm_array *dst, const jorm_array *src, const jorm_site *roi,
                      const jorm_site *src_roi);
    // Adjusts a window (null: all zero) to the region.
    jorm_seshape adjusted(const jorm_seshape *shape) const;
    // Keeps positive extents as they are, 1 by 1 included.
    jorm_seshape adjusted_as_given(const jorm_seshape &shape) const;
    // The call, bordered by reflect101 where the picture ends.
    int64_t make(WindowCall &call, const jorm_seshape &shape) const;

    const Front &front() const { return front_; }

private:
    jorm_xe *xe_;
    uint64_t flags_;
    const jorm_array *src_;
    int32_t origin_[3]; // of the region in the source
    Front front_;
};

} // namespace jorm
