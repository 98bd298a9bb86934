// The shared front ends of element-wise arithmetic and logic. Each selects the family by the operation code among its
// own rows, then checks and negotiates; an unknown code is JORM_EINVAL.
#pragma once
#include "jorm/types.h"

namespace jorm {

int64_t unary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                    const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
int64_t binary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                     const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p,
                     int32_t q);
int64_t constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                       const double *constant, const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
int64_t ternary_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                      const jorm_array *src2, const jorm_array *src3, const jorm_site *roi, const int32_t *at1,
                      const int32_t *at2, const int32_t *at3, int32_t p, int32_t q);
int64_t ternary_constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                               const jorm_array *src1, const jorm_array *src2, const double *constant,
                               const jorm_site *roi, const int32_t *at1, const int32_t *at2, int32_t p, int32_t q);
int64_t ternary_constants_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst,
                                const jorm_array *src, const double *constant1, const double *constant2,
                                const jorm_site *roi, const int32_t *at, int32_t p, int32_t q);
int64_t logic_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src1,
                    const jorm_array *src2, const jorm_site *roi, const int32_t *at1, const int32_t *at2);
int64_t logic_constant_front(uint32_t code, jorm_xe *xe, uint64_t options, const jorm_array *dst, const jorm_array *src,
                             const double *constant, const jorm_site *roi, const int32_t *at);

} // namespace jorm
