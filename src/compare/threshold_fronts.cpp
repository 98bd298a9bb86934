// The layers of thresholds: entry, per-slice entry, adapters, dispatchers, kernels.
#include "compare/threshold.hpp"
#include "jorm/arith.h"
#include "kernel/arguments.hpp"
#include "kernel/front.hpp"
#include "kernel/proc.hpp"

using namespace jorm;

const char *jorm_thhmethod_str(uint32_t method) {
    switch (method & 15) {
    case JORM_THRESHOLD_IMMEDIATE:
        return "null(immediate)-threshold-method";
    case JORM_THRESHOLD_OTSU:
        return "otsu-threshold-method";
    case JORM_THRESHOLD_USTO:
        return "usto-threshold-method";
    case JORM_THRESHOLD_BLUR:
        return "blur-threshold-method";
    default:
        return "unknown-threshold-method";
    }
}

int64_t JormThreshold(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src, const jorm_site *roi,
                      const int32_t *at, const jorm_thhmethod *method, const double *thresholds, int32_t count) {
    if (dst && src && (dst->ndims != src->ndims || dst->extent[0] != src->extent[0])) return JORM_EINVAL;
    if (dst && stored_channels(dst->extent[3]) > 3) return JORM_EINVAL;
    Front f;
    if (const int64_t status = negotiate(f, dst, roi, {{src, at}}); status != JORM_OK) return status;
    const Operand &to = f.operand[0], &from = f.operand[1];
    jorm_thresholdparams params = {method, thresholds, count};
    if (f.axes() < 4) return JormTGAthreshold(xe, options, &params, f.word, f.sizes(), SLICE(to), SLICE(from));

    double common[8];
    if (const int64_t status = check_method(method, thresholds); status != JORM_OK) return status;
    Shape plane;
    const ThresholdCall any = {xe, options, JORM_WORD(3), f.sizes() + 1, to, from};
    if (const int64_t status = check_threshold(plane, any); status != JORM_OK) return status;
    if (method_code(method) == JORM_THRESHOLD_OTSU) { // one threshold for all planes
        const int64_t status = otsu_pairs({xe, options, f.word, f.sizes(), from}, method, common);
        if (status != JORM_OK) return status;
        params = {nullptr, common, 1};
    }
    constexpr uint64_t with_hint = 0x300;
    jorm_pack pack;
    jorma_mappackL(&pack, fourcc("thsh"), to_proc(JormTGAthreshold), xe, options | with_hint, &params, f.word, 3,
                   f.sizes(), PACKED_SLICE(to), PACKED_SLICE(from));
    pack.reduce_hint = 3; // planes have surroundings of their own
    return jorma_call(&pack);
}

#define ONE_ARRAY(L) L##_PARAMS(, dst), L##_PARAMS(const, src)
#define CALL(L)                                                                                                        \
    { xe, options, word, size, L##_OPERAND(dst), L##_OPERAND(src) }

int64_t JormTGAthreshold(jorm_xe *xe, uint64_t options, const void *params, uint32_t word, const int32_t *size,
                         ONE_ARRAY(D)) {
    const auto *const p = static_cast<const jorm_thresholdparams *>(params);
    return p ? method_threshold(CALL(D), p->method, p->thresholds, p->count) : int64_t(JORM_EINVAL);
}

#define METHOD_LAYER(name, L)                                                                                          \
    int64_t name(LEAD_PARAMS, ONE_ARRAY(L), const jorm_thhmethod *method, const double *thresholds, int32_t count) {   \
        return method_threshold(CALL(L), method, thresholds, count);                                                   \
    }
METHOD_LAYER(jorma_ethreshold, A)
METHOD_LAYER(jorma__ethreshold, D)

#define ONE_METHOD(name, run)                                                                                          \
    int64_t name(LEAD_PARAMS, ONE_ARRAY(D), const jorm_thhmethod *method, const double *, int32_t) {                   \
        return run(CALL(D), method);                                                                                   \
    }
ONE_METHOD(jorma__ethreshold_otsu, otsu_threshold)
ONE_METHOD(jorma__ethreshold_usto, usto_threshold)
ONE_METHOD(jorma__ethreshold_blur, blur_threshold)

#define IMMEDIATE_LAYER(name, L)                                                                                       \
    int64_t name(LEAD_PARAMS, ONE_ARRAY(L), const double *thresholds, int32_t count) {                                 \
        return immediate_threshold(CALL(L), thresholds, count);                                                        \
    }
IMMEDIATE_LAYER(jorma_threshold, A)
IMMEDIATE_LAYER(jorma__threshold, D)

int64_t jorma__sheer_threshold_n1(LEAD_PARAMS, ONE_ARRAY(D), const double *thresholds, int32_t) {
    return sheer_threshold(CALL(D), thresholds, false);
}
int64_t jorma__sheer_threshold_n2(LEAD_PARAMS, ONE_ARRAY(D), const double *thresholds, int32_t) {
    return sheer_threshold(CALL(D), thresholds, true);
}
int64_t jorma__adaptive_threshold_n1(LEAD_PARAMS, ONE_ARRAY(D), const double *thresholds, int32_t) {
    return adaptive_threshold(CALL(D), thresholds);
}
int64_t jorma__adaptive_threshold_n2(LEAD_PARAMS, ONE_ARRAY(D), const double *thresholds, int32_t) {
    return adaptive_threshold(CALL(D), thresholds);
}
