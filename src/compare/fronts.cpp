// Comparison: entries, per-slice entries, adapters, dispatchers, runners.
#include "compare/compare.hpp"
#include "jorm/arith.h"
#include "jorm/compare.h"
#include "kernel/arguments.hpp"
#include "kernel/front.hpp"
#include "kernel/proc.hpp"

using namespace jorm;

namespace {

// The values of a mask in f32.
constexpr double ones[4] = {1, 1, 1, 1}, zeros[4] = {};

// Masks of integers are all bits set; others are chosen values.
int64_t compare_mask(CompareCall &&call, const double *constants) {
    call.chosen = (call.operand[0].type & 7) >= 5;
    return compare(static_cast<CompareCall &&>(call), constants, ones, zeros);
}

// The source has the axes and the planes of the destination.
bool same_planes(const jorm_array *dst, const jorm_array *src) {
    return !dst || !src || (dst->ndims == src->ndims && dst->extent[0] == src->extent[0]);
}

// The second source stands in every plane.
bool is_repeated(const jorm_array *dst, const jorm_array *src2) {
    return dst && src2 && dst->ndims == 4 && (src2->ndims == 3 || src2->ndims == 4) &&
           (src2->extent[0] == 1 || (src2->ndims == 3 && src2->extent[0] == dst->extent[0]));
}

int64_t arrays_front(uint32_t opcode, jorm_compare_slice *slice, const void *params, jorm_xe *xe, uint64_t options,
                     const jorm_array *dst, const jorm_array *src, const jorm_array *src2, const jorm_site *roi,
                     const int32_t *at, const int32_t *at2) {
    if (!same_planes(dst, src)) return JORM_EINVAL;
    jorm_array planes;
    int32_t start[4];
    bool misses = false; // the one plane
    if (is_repeated(dst, src2)) {
        planes = *src2;
        planes.ndims = 4;
        planes.extent[0] = dst->extent[0];
        planes.stride[0] = 0;
        src2 = &planes;
        for (int i = 0; at2 && i < 4; ++i) start[i] = i == 0 ? 0 : at2[i];
        misses = at2 && at2[0] != 0;
        at2 = at2 ? start : nullptr;
    }
    Front f;
    if (const int64_t status = negotiate(f, dst, roi, {{src, at}, {src2, at2}}); status != JORM_OK) return status;
    if (misses) return JORM_EEMPTY;
    const Operand &to = f.operand[0], &a = f.operand[1], &b = f.operand[2];
    if (f.axes() < 4) return slice(xe, options, params, f.word, f.sizes(), SLICE(to), SLICE(a), SLICE(b));
    jorm_pack pack;
    return jorma_call(jorma_zippackL(&pack, opcode, to_proc(slice), xe, options, params, f.word, 3, f.sizes(),
                                     PACKED_SLICE(to), PACKED_SLICE(a), PACKED_SLICE(b)));
}

int64_t constants_front(uint32_t opcode, jorm_comparec_slice *slice, const void *params, jorm_xe *xe, uint64_t options,
                        const jorm_array *dst, const jorm_array *src, const jorm_site *roi, const int32_t *at) {
    if (!same_planes(dst, src) || (dst && stored_channels(dst->extent[3]) > 3)) return JORM_EINVAL;
    Front f;
    if (const int64_t status = negotiate(f, dst, roi, {{src, at}}); status != JORM_OK) return status;
    const Operand &to = f.operand[0], &a = f.operand[1];
    if (f.axes() < 4) return slice(xe, options, params, f.word, f.sizes(), SLICE(to), SLICE(a));
    jorm_pack pack;
    return jorma_call(jorma_mappackL(&pack, opcode, to_proc(slice), xe, options, params, f.word, 3, f.sizes(),
                                     PACKED_SLICE(to), PACKED_SLICE(a)));
}

} // namespace

JORM_API const char *jorm_cmpop_str(uint32_t op) {
    static const char *const names[] = {"nul-cmpop",     nullptr,
                                        nullptr,         "equal-cmpop",
                                        "less-cmpop",    "less-or-equal-cmpop",
                                        "greater-cmpop", "greater-or-equal-cmpop"};
    const uint32_t code = op & 15;
    return code < 8 && names[code] ? names[code] : "unknown-cmpop";
}

// ----------------------------------------------------------- layers of a slice

#define LEAD jorm_xe *, uint64_t options, uint32_t word, const int32_t *size
#define VALUES const double *true_values, const double *false_values
#define ARRAYS(L) L##_PARAMS(, dst), L##_PARAMS(const, src), L##_PARAMS(const, src2)
#define ONE_ARRAY(L) L##_PARAMS(, dst), L##_PARAMS(const, src)
#define OF_ARRAYS(L, chosen, op)                                                                                       \
    { options, word, size, {L##_OPERAND(dst), L##_OPERAND(src), L##_OPERAND(src2)}, 2, chosen, relation_of(op) }
#define OF_ONE_ARRAY(L, chosen, op)                                                                                    \
    { options, word, size, {L##_OPERAND(dst), L##_OPERAND(src)}, 1, chosen, relation_of(op) }

#define COMPARE(name, L)                                                                                               \
    JORM_API int64_t name(LEAD, ARRAYS(L), uint32_t op) { return compare_mask(OF_ARRAYS(L, false, op), nullptr); }
#define COMPARE_C(name, L)                                                                                             \
    JORM_API int64_t name(LEAD, ONE_ARRAY(L), const double *constants, uint32_t op) {                                  \
        return compare_mask(OF_ONE_ARRAY(L, false, op), constants);                                                    \
    }
#define ECOMPARE(name, L)                                                                                              \
    JORM_API int64_t name(LEAD, ARRAYS(L), uint32_t op, VALUES) {                                                      \
        return compare(OF_ARRAYS(L, true, op), nullptr, true_values, false_values);                                    \
    }
#define ECOMPARE_C(name, L)                                                                                            \
    JORM_API int64_t name(LEAD, ONE_ARRAY(L), const double *constants, uint32_t op, VALUES) {                          \
        return compare(OF_ONE_ARRAY(L, true, op), constants, true_values, false_values);                               \
    }
COMPARE(jorma_compare, A)
COMPARE(jorma__compare, D)
COMPARE_C(jorma_compareC, A)
COMPARE_C(jorma__compareC, D)
ECOMPARE(jorma_ecompare, A)
ECOMPARE(jorma__ecompare, D)
ECOMPARE(_jorma__swecompare, D)
ECOMPARE_C(jorma_ecompareC, A)
ECOMPARE_C(jorma__ecompareC, D)
ECOMPARE_C(_jorma__swecompareC, D)

JORM_API int64_t _jorma__swcompare(LEAD, ARRAYS(D), uint32_t op) {
    return compare(OF_ARRAYS(D, false, op), nullptr, nullptr, nullptr);
}
JORM_API int64_t _jorma__swcompareC(LEAD, ONE_ARRAY(D), const double *constants, uint32_t op) {
    return compare(OF_ONE_ARRAY(D, false, op), constants, nullptr, nullptr);
}

#define SLICE_LEAD jorm_xe *, uint64_t options, const void *params, uint32_t word, const int32_t *size
#define READ_PARAMS(type)                                                                                              \
    if (!params) return JORM_EINVAL;                                                                                   \
    const auto &p = *static_cast<const type *>(params)

JORM_API int64_t JormTGAcompare(SLICE_LEAD, ARRAYS(D)) {
    READ_PARAMS(jorm_compare_params);
    return compare_mask(OF_ARRAYS(D, false, p.op), nullptr);
}
JORM_API int64_t JormTGAcompareC(SLICE_LEAD, ONE_ARRAY(D)) {
    READ_PARAMS(jorm_comparec_params);
    return compare_mask(OF_ONE_ARRAY(D, false, p.op), p.constants);
}
JORM_API int64_t JormTGAecompare(SLICE_LEAD, ARRAYS(D)) {
    READ_PARAMS(jorm_ecompare_params);
    return compare(OF_ARRAYS(D, true, p.op), nullptr, p.true_values, p.false_values);
}
JORM_API int64_t JormTGAecompareC(SLICE_LEAD, ONE_ARRAY(D)) {
    READ_PARAMS(jorm_ecomparec_params);
    return compare(OF_ONE_ARRAY(D, true, p.op), p.constants, p.true_values, p.false_values);
}

// ---------------------------------------------------------------------- entries

JORM_API int64_t JormCompare(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const jorm_array *src2, const jorm_site *roi, const int32_t *at, const int32_t *at2,
                             uint32_t op) {
    const jorm_compare_params params = {op};
    return arrays_front(fourcc("comp"), JormTGAcompare, &params, xe, options, dst, src, src2, roi, at, at2);
}
JORM_API int64_t JormCompareC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const double *constants, const jorm_site *roi, const int32_t *at, uint32_t op) {
    const jorm_comparec_params params = {constants, op};
    return constants_front(fourcc("cmpC"), JormTGAcompareC, &params, xe, options, dst, src, roi, at);
}
JORM_API int64_t JormECompare(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                              const jorm_array *src2, const jorm_site *roi, const int32_t *at, const int32_t *at2,
                              uint32_t op, VALUES) {
    const jorm_ecompare_params params = {true_values, false_values, op};
    return arrays_front(fourcc("ecmp"), JormTGAecompare, &params, xe, options, dst, src, src2, roi, at, at2);
}
JORM_API int64_t JormECompareC(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                               const double *constants, const jorm_site *roi, const int32_t *at, uint32_t op, VALUES) {
    const jorm_ecomparec_params params = {constants, true_values, false_values, op};
    return constants_front(fourcc("ecmC"), JormTGAecompareC, &params, xe, options, dst, src, roi, at);
}
