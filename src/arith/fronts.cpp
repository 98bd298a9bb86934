#include "arith/fronts.hpp"

#include "jorm/arith.h"
#include "kernel/front.hpp"

namespace jorm {
namespace {

template <class Adapter> struct FrontRow {
    uint32_t code;
    Adapter *adapter;
};

template <class Adapter, int N> Adapter *select_adapter(const FrontRow<Adapter> (&rows)[N], uint32_t code) {
    for (const auto &row : rows)
        if (row.code == code) return row.adapter;
    return nullptr;
}

// Negotiates and goes on only with arrays of three axes.
template <int N>
int64_t prepare(Front &front, const jorm_array *dst, const jorm_site *roi, FrontSource (&&sources)[N]) {
    const int64_t status = negotiate(front, dst, roi, sources, N);
    if (status != JORM_OK) return status;
    return dst->ndims > 3 ? JORM_ENOTSUP : JORM_OK;
}

} // namespace

#define SELECT_ADAPTER(rows)                                                                                           \
    auto *const adapter = select_adapter(rows, code);                                                                  \
    if (!adapter) return JORM_EINVAL
#define PREPARE(...)                                                                                                   \
    Front f;                                                                                                           \
    if (const int64_t status = prepare(f, dst, roi, {__VA_ARGS__}); status != JORM_OK) return status
#define FRONT_LEAD xe, options, f.word, f.sizes()
#define FRONT_OPERAND(i) f.operand[i].type, f.operand[i].base, f.origin(i), f.stride(i)

int64_t unary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                    const jorm_site *roi, const int32_t *at, int32_t p, int32_t q) {
    static constexpr FrontRow<jorm_unary_adapter> rows[] = {
        {fourcc("exp "), jorma_exp},
        {fourcc("ln  "), jorma_ln},
        {fourcc("neg "), jorma_neg},
        {fourcc("negq"), jorma_negq},
    };
    SELECT_ADAPTER(rows);
    PREPARE({src, at});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), p, q);
}

int64_t binary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                     const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p,
                     int32_t q) {
    static constexpr FrontRow<jorm_binary_adapter> rows[] = {
        {fourcc("aadd"), jorma_add},  {fourcc("addq"), jorma_addq},  {fourcc("adsq"), jorma_addsq},
        {fourcc("asub"), jorma_sub},  {fourcc("subq"), jorma_subq},  {fourcc("sbsq"), jorma_subsq},
        {fourcc("rsub"), jorma_rsub}, {fourcc("rsbq"), jorma_rsubq}, {fourcc("rssq"), jorma_rsubsq},
        {fourcc("amul"), jorma_mul},  {fourcc("adiv"), jorma_div},   {fourcc("divr"), jorma_divr},
        {fourcc("rdiv"), jorma_rdiv}, {fourcc("rdvr"), jorma_rdivr},
    };
    SELECT_ADAPTER(rows);
    PREPARE({src1, at1}, {src2, at2});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), FRONT_OPERAND(2), p, q);
}

int64_t constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                       const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q) {
    static constexpr FrontRow<jorm_constant_adapter> rows[] = {
        {fourcc("aadd"), jorma_addC},  {fourcc("addq"), jorma_addqC},  {fourcc("adsq"), jorma_addsqC},
        {fourcc("asub"), jorma_subC},  {fourcc("subq"), jorma_subqC},  {fourcc("sbsq"), jorma_subsqC},
        {fourcc("rsub"), jorma_rsubC}, {fourcc("rsbq"), jorma_rsubqC}, {fourcc("rssq"), jorma_rsubsqC},
        {fourcc("amul"), jorma_mulC},  {fourcc("adiv"), jorma_divC},   {fourcc("divr"), jorma_divrC},
        {fourcc("rdiv"), jorma_rdivC}, {fourcc("rdvr"), jorma_rdivrC}, {fourcc("sigm"), jorma_sigmoidalpha},
    };
    SELECT_ADAPTER(rows);
    PREPARE({src, at});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), constant, p, q);
}

int64_t ternary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                      const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,
                      const int32_t *at2, const int32_t *at3, int32_t p, int32_t q) {
    static constexpr FrontRow<jorm_ternary_adapter> rows[] = {
        {fourcc("mla "), jorma_mla}, {fourcc("mls "), jorma_mls}, {fourcc("mlrs"), jorma_mlrs}};
    SELECT_ADAPTER(rows);
    PREPARE({src1, at1}, {src2, at2}, {src3, at3});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), FRONT_OPERAND(2), FRONT_OPERAND(3), p, q);
}

int64_t ternary_constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                               const jorm_array *src1, const jorm_array *src2, const double *constant,
                               const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p, int32_t q) {
    static constexpr FrontRow<jorm_ternary_constant_adapter> rows[] = {
        {fourcc("mla "), jorma_mlaC}, {fourcc("mls "), jorma_mlsC}, {fourcc("mlrs"), jorma_mlrsC}};
    SELECT_ADAPTER(rows);
    PREPARE({src1, at1}, {src2, at2});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), FRONT_OPERAND(2), constant, p, q);
}

int64_t ternary_constants_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                                const jorm_array *src, const double *constant1, const double *constant2,
                                const jorm_site *roi, const int32_t *at, int32_t p, int32_t q) {
    static constexpr FrontRow<jorm_ternary_constants_adapter> rows[] = {
        {fourcc("mla "), jorma_mlaCC}, {fourcc("mls "), jorma_mlsCC}, {fourcc("mlrs"), jorma_mlrsCC}};
    SELECT_ADAPTER(rows);
    PREPARE({src, at});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), constant1, constant2, p, q);
}

int64_t logic_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                    const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2) {
    static constexpr FrontRow<jorm_logic_adapter> rows[] = {
        {fourcc("aand"), jorma_and}, {fourcc("aorr"), jorma_orr}, {fourcc("axor"), jorma_xor}};
    SELECT_ADAPTER(rows);
    PREPARE({src1, at1}, {src2, at2});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), FRONT_OPERAND(2));
}

int64_t logic_constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const double *constant, const jorm_site *roi, const int32_t *at) {
    static constexpr FrontRow<jorm_logic_constant_adapter> rows[] = {
        {fourcc("aand"), jorma_andC}, {fourcc("aorr"), jorma_orrC}, {fourcc("axor"), jorma_xorC}};
    SELECT_ADAPTER(rows);
    PREPARE({src, at});
    return adapter(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1), constant);
}

} // namespace jorm

JORM_API int64_t JormNot(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                         const jorm_site *roi, const int32_t *at) {
    using namespace jorm;
    PREPARE({src, at});
    return jorma_not(FRONT_LEAD, FRONT_OPERAND(0), FRONT_OPERAND(1));
}
