#include "arith/fronts.hpp"

#include "arith/dispatch.hpp"
#include "jorm/arith.h"
#include "kernel/front.hpp"

namespace jorm {
namespace {

struct FrontRow {
    uint32_t code;
    Family family;
};

// What follows the arrays in every front end.
struct FrontCall {
    jorm_xe *xe;
    uint64_t options;
    const jorm_array *dst;
    const jorm_site *roi;
    int32_t p = 0;
    const double *constant1 = nullptr, *constant2 = nullptr;
};

// Negotiates and goes on only with arrays of three axes.
template <int N> int64_t run_front(Family family, const FrontCall &c, FrontSource (&sources)[N]) {
    Front f;
    if (const int64_t status = negotiate(f, c.dst, c.roi, sources, N); status != JORM_OK) return status;
    if (f.axes() > 3) return JORM_ENOTSUP;
    ArithCall call = {c.xe, c.options, f.word, f.sizes(), f.operand, c.p, {c.constant1, c.constant2}};
    return dispatch(family, call);
}

template <int Rows, int N>
int64_t run_front(const FrontRow (&rows)[Rows], uint32_t code, const FrontCall &c, FrontSource (&&sources)[N]) {
    for (const FrontRow &row : rows)
        if (row.code == code) return run_front(row.family, c, sources);
    return JORM_EINVAL;
}

} // namespace

int64_t unary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                    const jorm_site *roi, const int32_t *at, int32_t p, int32_t) {
    static constexpr FrontRow rows[] = {
        {fourcc("exp "), family_exp},
        {fourcc("ln  "), family_ln},
        {fourcc("neg "), family_neg},
        {fourcc("negq"), family_negq},
    };
    return run_front(rows, code, {xe, options, dst, roi, p}, {{src, at}});
}

int64_t binary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                     const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p,
                     int32_t) {
    static constexpr FrontRow rows[] = {
        {fourcc("aadd"), family_add},  {fourcc("addq"), family_addq},  {fourcc("adsq"), family_addsq},
        {fourcc("asub"), family_sub},  {fourcc("subq"), family_subq},  {fourcc("sbsq"), family_subsq},
        {fourcc("rsub"), family_rsub}, {fourcc("rsbq"), family_rsubq}, {fourcc("rssq"), family_subsq},
        {fourcc("amul"), family_mul},  {fourcc("adiv"), family_div},   {fourcc("divr"), family_divr},
        {fourcc("rdiv"), family_rdiv}, {fourcc("rdvr"), family_rdivr}, {fourcc("mulq"), family_mulq},
    };
    return run_front(rows, code, {xe, options, dst, roi, p}, {{src1, at1}, {src2, at2}});
}

int64_t constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                       const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t) {
    static constexpr FrontRow rows[] = {
        {fourcc("aadd"), family_addC},  {fourcc("addq"), family_addqC},  {fourcc("adsq"), family_addsqC},
        {fourcc("asub"), family_subC},  {fourcc("subq"), family_subqC},  {fourcc("sbsq"), family_subsqC},
        {fourcc("rsub"), family_rsubC}, {fourcc("rsbq"), family_rsubqC}, {fourcc("rssq"), family_subsqC},
        {fourcc("amul"), family_mulC},  {fourcc("adiv"), family_divC},   {fourcc("divr"), family_divrC},
        {fourcc("rdiv"), family_rdivC}, {fourcc("rdvr"), family_rdivrC}, {fourcc("sigm"), family_sigmoid},
        {fourcc("mulq"), family_mulqC},
    };
    return run_front(rows, code, {xe, options, dst, roi, p, constant}, {{src, at}});
}

int64_t ternary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                      const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,
                      const int32_t *at2, const int32_t *at3, int32_t p, int32_t) {
    static constexpr FrontRow rows[] = {
        {fourcc("mla "), family_mla}, {fourcc("mls "), family_mls}, {fourcc("mlrs"), family_mlrs}};
    return run_front(rows, code, {xe, options, dst, roi, p}, {{src1, at1}, {src2, at2}, {src3, at3}});
}

int64_t ternary_constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                               const jorm_array *src1, const jorm_array *src2, const double *constant,
                               const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p, int32_t) {
    static constexpr FrontRow rows[] = {
        {fourcc("mla "), family_mlaC}, {fourcc("mls "), family_mlsC}, {fourcc("mlrs"), family_mlrsC}};
    return run_front(rows, code, {xe, options, dst, roi, p, constant}, {{src1, at1}, {src2, at2}});
}

int64_t ternary_constants_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                                const jorm_array *src, const double *constant1, const double *constant2,
                                const jorm_site *roi, const int32_t *at, int32_t p, int32_t) {
    static constexpr FrontRow rows[] = {
        {fourcc("mla "), family_mlaCC}, {fourcc("mls "), family_mlsCC}, {fourcc("mlrs"), family_mlrsCC}};
    return run_front(rows, code, {xe, options, dst, roi, p, constant1, constant2}, {{src, at}});
}

int64_t logic_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                    const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2) {
    static constexpr FrontRow rows[] = {{fourcc("aand"), family_and_}, {fourcc("aorr"), family_orr},
                                        {fourcc("axor"), family_xor_}, {fourcc("abdf"), family_absdiff},
                                        {fourcc("amin"), family_min},  {fourcc("amax"), family_max}};
    return run_front(rows, code, {xe, options, dst, roi}, {{src1, at1}, {src2, at2}});
}

int64_t logic_constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const double *constant, const jorm_site *roi, const int32_t *at) {
    static constexpr FrontRow rows[] = {{fourcc("aand"), family_andC}, {fourcc("aorr"), family_orrC},
                                        {fourcc("axor"), family_xorC}, {fourcc("abdf"), family_absdiffC},
                                        {fourcc("amin"), family_minC}, {fourcc("amax"), family_maxC}};
    return run_front(rows, code, {xe, options, dst, roi, 0, constant}, {{src, at}});
}

} // namespace jorm

JORM_API int64_t JormNot(jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                         const jorm_site *roi, const int32_t *at) {
    using namespace jorm;
    FrontSource sources[] = {{src, at}};
    return run_front(family_not_, {xe, options, dst, roi}, sources);
}
