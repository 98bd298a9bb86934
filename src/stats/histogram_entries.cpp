// The layers of histograms: entries, per-slice entries, adapters, dispatchers, kernels, lookups.
#include "kernel/arguments.hpp"
#include "kernel/proc.hpp"
#include "stats/stat_front.hpp"

#include "jorm/arith.h"

using namespace jorm;

namespace {

int64_t check_kind(uint32_t kind) { return kind == 0 ? JORM_OK : kind <= 3 ? JORM_ENOTIMP : JORM_EINVAL; }

using Histogram = decltype(histogram);

int64_t histogram_of_kind(Histogram run, const StatSource &s, uint32_t kind, jorm_histogram *records) {
    const int64_t status = check_kind(kind);
    return status == JORM_OK ? run(s, records) : status;
}

} // namespace

#define SOURCE(start) xe, options, word, size, operand(type, start, stride)

int64_t JormHistogram(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi, uint32_t kind,
                      jorm_histogram *records) {
    StatFront front;
    if (!records) return JORM_EINVAL;
    const int64_t status = front.negotiate(xe, options, src, roi);
    return status == JORM_OK ? histogram_of_kind(histogram, front.source, kind, records) : status;
}
int64_t JormHistogramEx(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_array *mask,
                        const jorm_site *roi, const int32_t *at_mask, uint32_t kind, jorm_histogram *records) {
    StatFront front;
    if (!records) return JORM_EINVAL;
    const int64_t status = front.negotiate(xe, options, src, roi, mask, at_mask);
    return status == JORM_OK ? histogram_of_kind(masked_histogram, front.source, kind, records) : status;
}

int64_t JormTGAhistogram(jorm_xe *xe, uint64_t options, const jorm_histparams *params, uint32_t word,
                         const int32_t *size, uint32_t type, const void *data, const int32_t *stride) {
    return params ? histogram_of_kind(histogram, {SOURCE(data)}, params->kind, params->records) : int64_t(JORM_EINVAL);
}
int64_t JormTGAhistogramEx(jorm_xe *xe, uint64_t options, const jorm_histparams *params, uint32_t word,
                           const int32_t *size, uint32_t type, const void *data, const int32_t *stride,
                           uint32_t mask_type, const void *mask, const int32_t *mask_stride) {
    const StatSource source = {SOURCE(data), true, operand(mask_type, mask, mask_stride)};
    return params ? histogram_of_kind(masked_histogram, source, params->kind, params->records) : int64_t(JORM_EINVAL);
}

int64_t jorma_histogram(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                        const void *base, const int32_t *origin, const int32_t *stride, jorm_histogram *records) {
    return histogram({SOURCE(start_of(word, base, origin, stride))}, records);
}
int64_t jorma_histogram_xm(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                           const void *base, const int32_t *origin, const int32_t *stride, const void *mask,
                           const int32_t *mask_origin, const int32_t *mask_stride, jorm_histogram *records) {
    const void *const by = start_of(word, mask, mask_origin, mask_stride);
    return masked_histogram({SOURCE(start_of(word, base, origin, stride)), true, operand(JORM_U8, by, mask_stride)},
                            records);
}
int64_t jorma__histogram(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                         const void *data, const int32_t *stride, jorm_histogram *records) {
    return histogram({SOURCE(data)}, records);
}
int64_t jorma__histogram_xm(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,
                            const void *data, const int32_t *stride, const void *mask, const int32_t *mask_stride,
                            jorm_histogram *records) {
    return masked_histogram({SOURCE(data), true, operand(JORM_U8, mask, mask_stride)}, records);
}

// ---- Kernels ----

#define LEAD jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const void *data, const int32_t *stride
#define PLAIN(name, T)                                                                                                 \
    int64_t name(LEAD, jorm_histogram *record) {                                                                       \
        return histogram({xe, options, word, size, operand(T, data, stride), false, {}, 1}, record);                   \
    }
#define MASKED(name, T)                                                                                                \
    int64_t name(LEAD, const void *mask, const int32_t *mask_stride, jorm_histogram *record) {                         \
        return masked_histogram(                                                                                       \
            {xe, options, word, size, operand(T, data, stride), true, operand(JORM_U8, mask, mask_stride), 1},         \
            record);                                                                                                   \
    }
PLAIN(jorma__histogram_c1_u8, JORM_U8)
PLAIN(jorma__histogram_c1_s8, JORM_S8)
PLAIN(jorma__histogram_c1_s16, JORM_S16)
PLAIN(jorma__histogram_c1_s32, JORM_S32)
PLAIN(jorma__histogram_c1_f32, JORM_F32)
MASKED(jorma__histogram_xm_c1_u8, JORM_U8)
MASKED(jorma__histogram_xm_c1_s16, JORM_S16)
MASKED(jorma__histogram_xm_c1_s32, JORM_S32)
MASKED(jorma__histogram_xm_c1_f32, JORM_F32)

namespace {

struct KernelLine {
    uint32_t type;
    jorm_histogram_kernel *plain;
    jorm_histogram_xm_kernel *masked;
};
constexpr KernelLine kernels[] = {
    {JORM_U8, jorma__histogram_c1_u8, jorma__histogram_xm_c1_u8},
    {JORM_S8, jorma__histogram_c1_s8, nullptr},
    {JORM_S16, jorma__histogram_c1_s16, jorma__histogram_xm_c1_s16},
    {JORM_S32, jorma__histogram_c1_s32, jorma__histogram_xm_c1_s32},
    {JORM_F32, jorma__histogram_c1_f32, jorma__histogram_xm_c1_f32},
};

template <class Kernel>
jorm_proc *look_up(Kernel *const KernelLine::*member, uint32_t channels, uint32_t type, int32_t *status) {
    const int32_t stored = stored_channels(channels & 15);
    Kernel *kernel = nullptr;
    for (const KernelLine &line : kernels)
        if (line.type == type) kernel = line.*member;
    const bool sound = well_formed(type) && stored >= 1 && stored <= 4 && (stored == 1 || !kernel);
    const int32_t outcome = !sound ? JORM_EINVAL : kernel ? JORM_OK : JORM_ENOTSUP;
    if (status) *status = outcome;
    return outcome == JORM_OK ? to_proc(kernel) : outcome == JORM_EINVAL ? jorma_proc_einval : jorma_proc_enotsup;
}

} // namespace

jorm_proc *jorma__histofun_imp(uint32_t channels, uint32_t type, int32_t *status) {
    return look_up<jorm_histogram_kernel>(&KernelLine::plain, channels, type, status);
}
jorm_proc *jorma__histofunxm_imp(uint32_t channels, uint32_t type, int32_t *status) {
    return look_up<jorm_histogram_xm_kernel>(&KernelLine::masked, channels, type, status);
}
