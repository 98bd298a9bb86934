// The shared front ends of element-wise arithmetic and logic: they check and negotiate, then go on to the dispatch of
// the family.
#pragma once
#include "jorm/types.h"

namespace jorm {

struct Family;

int64_t unary_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                    const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
int64_t binary_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                     const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p,
                     int32_t q);
int64_t constant_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                       const jorm_array *src, const double *constant, const jorm_site *roi, const int32_t *at,
                       int32_t p, int32_t q);
int64_t ternary_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                      const jorm_array *src1, const jorm_array *src2, const jorm_array *src3, const jorm_site *roi,
                      const int32_t *at1, const int32_t *at2, const int32_t *at3, int32_t p, int32_t q);
int64_t ternary_constant_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                               const jorm_array *src1, const jorm_array *src2, const double *constant,
                               const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p, int32_t q);
int64_t ternary_constants_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                                const jorm_array *src, const double *constant1, const double *constant2,
                                const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
int64_t logic_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                    const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
int64_t logic_constant_front(const Family &family, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                             const jorm_array *src, const double *constant, const jorm_site *roi, const int32_t *at);

} // namespace jorm
