// The layers of sums, means, extrema and value ranges: entries, per-slice entries, adapters, dispatchers.
#include "kernel/arguments.hpp"
#include "stats/stat_front.hpp"

namespace jorm {
namespace {

// Every statistic as a function of source, results and where the source begins.
template <auto run, class Result> int64_t anywhere(const StatSource &s, Result *results, const int32_t *) {
    return run(s, results);
}

} // namespace
} // namespace jorm

using namespace jorm;

#define SOURCE(start) xe, options, word, size, operand(type, start, stride)
#define MASK(start) true, operand(JORM_U8, start, mask_stride)
#define TYPED_MASK true, operand(mask_type, mask, mask_stride)

#define ENTRY(name, ex_name, slice, ex_slice, run, masked_run, Result)                                                 \
    JORM_API int64_t name(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,                  \
                          Result *results) {                                                                           \
        StatFront front;                                                                                               \
        if (!results) return JORM_EINVAL;                                                                              \
        const int64_t status = front.negotiate(xe, options, src, roi);                                                 \
        return status == JORM_OK ? run(front.source, results, front.origin) : status;                                  \
    }                                                                                                                  \
    JORM_API int64_t ex_name(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_array *mask,             \
                             const jorm_site *roi, const int32_t *at_mask, Result *results) {                          \
        StatFront front;                                                                                               \
        if (!results) return JORM_EINVAL;                                                                              \
        const int64_t status = front.negotiate(xe, options, src, roi, mask, at_mask);                                  \
        return status == JORM_OK ? masked_run(front.source, results, front.origin) : status;                           \
    }                                                                                                                  \
    JORM_API int64_t slice(jorm_xe *xe, uint64_t options, Result *results, uint32_t word, const int32_t *size,         \
                           uint32_t type, const void *data, const int32_t *stride) {                                   \
        return run({SOURCE(data)}, results, nullptr);                                                                  \
    }                                                                                                                  \
    JORM_API int64_t ex_slice(jorm_xe *xe, uint64_t options, Result *results, uint32_t word, const int32_t *size,      \
                              uint32_t type, const void *data, const int32_t *stride, uint32_t mask_type,              \
                              const void *mask, const int32_t *mask_stride) {                                          \
        return masked_run({SOURCE(data), TYPED_MASK}, results, nullptr);                                               \
    }
ENTRY(JormSum, JormSumEx, JormTGAsum, JormTGAsumEx, anywhere<sum>, anywhere<masked_sum>, double)
ENTRY(JormMean, JormMeanEx, JormTGAmean, JormTGAmeanEx, anywhere<mean>, anywhere<masked_mean>, double)
ENTRY(JormMinmax, JormMinmaxEx, JormTGAminmax, JormTGAminmaxEx, extrema, masked_extrema, jorm_minmax)

#define LAYERS(adapter, dispatcher, run, Result)                                                                       \
    JORM_API int64_t adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,         \
                             const void *base, const int32_t *origin, const int32_t *stride, Result *results) {        \
        return run({SOURCE(start_of(word, base, origin, stride))}, results, at_slot0(word, origin));                   \
    }                                                                                                                  \
    JORM_API int64_t dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,      \
                                const void *data, const int32_t *stride, Result *results) {                            \
        return run({SOURCE(data)}, results, nullptr);                                                                  \
    }
LAYERS(jorma_sum, jorma__sum, anywhere<sum>, double)
LAYERS(jorma_mean, jorma__mean, anywhere<mean>, double)
LAYERS(jorma_minmax, jorma__minmax, extrema, jorm_minmax)
LAYERS(jorma_compute_vrange, jorma__compute_vrange, anywhere<compute_range>, vrng)
LAYERS(jorma_adjust_vrange, jorma__adjust_vrange, anywhere<adjust_range>, vrng)

#define XM_LAYERS(adapter, dispatcher, run, Result)                                                                    \
    JORM_API int64_t adapter(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,         \
                             const void *base, const int32_t *origin, const int32_t *stride, const void *mask,         \
                             const int32_t *mask_origin, const int32_t *mask_stride, Result *results) {                \
        return run(                                                                                                    \
            {SOURCE(start_of(word, base, origin, stride)), MASK(start_of(word, mask, mask_origin, mask_stride))},      \
            results, at_slot0(word, origin));                                                                          \
    }                                                                                                                  \
    JORM_API int64_t dispatcher(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, uint32_t type,      \
                                const void *data, const int32_t *stride, const void *mask, const int32_t *mask_stride, \
                                Result *results) {                                                                     \
        return run({SOURCE(data), MASK(mask)}, results, nullptr);                                                      \
    }
XM_LAYERS(jorma_sum_xm, jorma__sum_xm, anywhere<masked_sum>, double)
XM_LAYERS(jorma_mean_xm, jorma__mean_xm, anywhere<masked_mean>, double)
XM_LAYERS(jorma_minmax_xm, jorma__minmax_xm, masked_extrema, jorm_minmax)
XM_LAYERS(jorma_compute_vrange_xm, jorma__compute_vrange_xm, anywhere<compute_masked_range>, vrng)
XM_LAYERS(jorma_adjust_vrange_xm, jorma__adjust_vrange_xm, anywhere<adjust_masked_range>, vrng)
