// The typed kernels of comparisons under their exported names, and their lookups.
#include "compare/compare.hpp"
#include "compare/lists.hpp"
#include "jorm/arith.h"
#include "jorm/compare.h"
#include "kernel/arguments.hpp"
#include "kernel/proc.hpp"

using namespace jorm;

namespace {

constexpr uint32_t u8 = JORM_U8, s8 = JORM_S8, s16 = JORM_S16, s32 = JORM_S32, f32 = JORM_F32;

template <class Kernel, int N>
jorm_proc *find(Kernel *const (&kernels)[N], bool chosen, uint32_t dst_type, uint32_t src_type, int32_t *status) {
    const int line = compare_line(chosen, dst_type, src_type);
    const bool formed = well_formed(dst_type) && well_formed(src_type);
    if (status) *status = line >= 0 ? JORM_OK : formed ? JORM_ENOTSUP : JORM_EINVAL;
    return line >= 0 ? to_proc(kernels[line]) : formed ? jorma_proc_enotsup : jorma_proc_einval;
}

} // namespace

#define LEAD jorm_xe *, uint64_t options, uint32_t word, const int32_t *size
#define ARRAYS K_PARAMS(, dst), K_PARAMS(const, src), K_PARAMS(const, src2)
#define ONE_ARRAY K_PARAMS(, dst), K_PARAMS(const, src)
#define OF_ARRAYS(chosen)                                                                                              \
    { options, word, size, {K_OPERAND(dst), K_OPERAND(src), K_OPERAND(src2)}, 2, chosen, relation_of(op) }
#define OF_ONE_ARRAY(chosen)                                                                                           \
    { options, word, size, {K_OPERAND(dst), K_OPERAND(src)}, 1, chosen, relation_of(op) }

#define COMPARE(name, D, S)                                                                                            \
    JORM_API int64_t name(LEAD, ARRAYS, uint32_t op) { return compare_as(D, S, OF_ARRAYS(false), {}); }
#define COMPARE_C(name, D, S)                                                                                          \
    JORM_API int64_t name(LEAD, ONE_ARRAY, const void *constants, uint32_t op) {                                       \
        return compare_as(D, S, OF_ONE_ARRAY(false), {constants, nullptr, nullptr});                                   \
    }
#define ECOMPARE(name, D, S)                                                                                           \
    JORM_API int64_t name(LEAD, ARRAYS, uint32_t op, const void *yes, const void *no) {                                \
        return compare_as(D, S, OF_ARRAYS(true), {nullptr, yes, no});                                                  \
    }
#define ECOMPARE_C(name, D, S)                                                                                         \
    JORM_API int64_t name(LEAD, ONE_ARRAY, const void *constants, uint32_t op, const void *yes, const void *no) {      \
        return compare_as(D, S, OF_ONE_ARRAY(true), {constants, yes, no});                                             \
    }
JORM_COMPARE_KERNELS(COMPARE)
JORM_COMPARE_C_KERNELS(COMPARE_C)
JORM_ECOMPARE_KERNELS(ECOMPARE)
JORM_ECOMPARE_C_KERNELS(ECOMPARE_C)

#define PROC(name, D, S) name,
#define LOOKUP(name, list, chosen, Kernel)                                                                             \
    JORM_API jorm_proc *name(uint32_t dst_type, uint32_t src_type, int32_t *status) {                                  \
        static constexpr Kernel *kernels[] = {list(PROC)};                                                             \
        return find(kernels, chosen, dst_type, src_type, status);                                                      \
    }
LOOKUP(jorma__cmpfun_imp, JORM_COMPARE_KERNELS, false, jorm_compare_kernel)
LOOKUP(jorma__cmpcfun_imp, JORM_COMPARE_C_KERNELS, false, jorm_comparec_kernel)
LOOKUP(jorma__ecmpfun_imp, JORM_ECOMPARE_KERNELS, true, jorm_ecompare_kernel)
LOOKUP(jorma__ecmpcfun_imp, JORM_ECOMPARE_C_KERNELS, true, jorm_ecomparec_kernel)
