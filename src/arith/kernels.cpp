// The typed kernels under their exported names, and the stubs of kernel tables.
#include "arith/keys.hpp"
#include "arith/signatures.hpp"
#include "kernel/proc.hpp"

using namespace jorm;

// Defines every kernel of a list: K(name, channels, shape of the arguments, key).
#define KERNEL(name, channels, shape, k)                                                                               \
    JORM_API int64_t name(shape##_PARAMS(K)) {                                                                         \
        constexpr int line = line_of(list, k);                                                                         \
        static_assert(line >= 0);                                                                                      \
        shape##_CALL(K);                                                                                               \
        return run_kernel(family, line, channels, call);                                                               \
    }
#define UNARY(name, D, A) KERNEL(name, 1, UNARY, key(D, A))
#define NOT(name, D, A) KERNEL(name, 1, NOT, key(D, A))
#define BINARY(name, D, A, B) KERNEL(name, 1, BINARY, key(D, A, B))
#define LOGIC(name, D, A, B) KERNEL(name, 1, LOGIC, key(D, A, B))
#define TERNARY(name, D, A, B, C) KERNEL(name, 1, TERNARY, key(D, A, B, C))
#define ONE_CONSTANT(name, D, A, K) KERNEL(name, 1, CONSTANT, key(D, A))
#define CHANNELED(name, channels, D, A) KERNEL(name, channels, CONSTANT, key(D, A))
#define CHANNELED_LOGIC(name, channels, D, A) KERNEL(name, channels, LOGIC_CONSTANT, key(D, A))
#define CONSTANT2(name, D, A, B, K) KERNEL(name, 1, CONSTANT2, key(D, A, B))
#define CONSTANTS(name, D, A, K1, K2) KERNEL(name, 1, CONSTANTS, key(D, A))

#define KERNELS(fam, kernels, shape)                                                                                   \
    namespace jorm::keys {                                                                                             \
    namespace in_##fam {                                                                                               \
        constexpr const Family &family = family_##fam;                                                                 \
        constexpr const auto &list = keys::fam;                                                                        \
        kernels(shape)                                                                                                 \
    }                                                                                                                  \
    }
KERNELS(add, JORM_ADD_KERNELS, BINARY)
KERNELS(sub, JORM_SUB_KERNELS, BINARY)
KERNELS(rsub, JORM_RSUB_KERNELS, BINARY)
KERNELS(mul, JORM_MUL_KERNELS, BINARY)
KERNELS(addq, JORM_ADDQ_KERNELS, BINARY)
KERNELS(subq, JORM_SUBQ_KERNELS, BINARY)
KERNELS(rsubq, JORM_RSUBQ_KERNELS, BINARY)
KERNELS(div, JORM_DIV_KERNELS, BINARY)
KERNELS(divr, JORM_DIVR_KERNELS, BINARY)
KERNELS(mulq, JORM_MULQ_KERNELS, BINARY)
KERNELS(absdiff, JORM_ABSDIFF_KERNELS, LOGIC)
KERNELS(min, JORM_MIN_KERNELS, LOGIC)
KERNELS(max, JORM_MAX_KERNELS, LOGIC)
KERNELS(and_, JORM_AND_KERNELS, LOGIC)
KERNELS(orr, JORM_ORR_KERNELS, LOGIC)
KERNELS(xor_, JORM_XOR_KERNELS, LOGIC)
KERNELS(addC, JORM_ADD_C_KERNELS, ONE_CONSTANT)
KERNELS(subC, JORM_SUB_C_KERNELS, ONE_CONSTANT)
KERNELS(rsubC, JORM_RSUB_C_KERNELS, ONE_CONSTANT)
KERNELS(mulC, JORM_MUL_C_KERNELS, ONE_CONSTANT)
KERNELS(addqC, JORM_ADDQ_C_KERNELS, ONE_CONSTANT)
KERNELS(subqC, JORM_SUBQ_C_KERNELS, ONE_CONSTANT)
KERNELS(rsubqC, JORM_RSUBQ_C_KERNELS, ONE_CONSTANT)
KERNELS(divC, JORM_DIV_C_KERNELS, CHANNELED)
KERNELS(rdivC, JORM_RDIV_C_KERNELS, CHANNELED)
KERNELS(divrC, JORM_DIVR_C_KERNELS, CHANNELED)
KERNELS(rdivrC, JORM_RDIVR_C_KERNELS, CHANNELED)
KERNELS(mulqC, JORM_MULQ_C_KERNELS, CHANNELED)
KERNELS(absdiffC, JORM_ABSDIFF_C_KERNELS, CHANNELED_LOGIC)
KERNELS(minC, JORM_MIN_C_KERNELS, CHANNELED_LOGIC)
KERNELS(maxC, JORM_MAX_C_KERNELS, CHANNELED_LOGIC)
KERNELS(andC, JORM_AND_C_KERNELS, CHANNELED_LOGIC)
KERNELS(orrC, JORM_ORR_C_KERNELS, CHANNELED_LOGIC)
KERNELS(xorC, JORM_XOR_C_KERNELS, CHANNELED_LOGIC)
KERNELS(mla, JORM_MLA_KERNELS, TERNARY)
KERNELS(mls, JORM_MLS_KERNELS, TERNARY)
KERNELS(mlaC, JORM_MLA_C_KERNELS, CONSTANT2)
KERNELS(mlsC, JORM_MLS_C_KERNELS, CONSTANT2)
KERNELS(mlaCC, JORM_MLA_CC_KERNELS, CONSTANTS)
KERNELS(mlsCC, JORM_MLS_CC_KERNELS, CONSTANTS)
KERNELS(neg, JORM_NEG_KERNELS, UNARY)
KERNELS(negq, JORM_NEGQ_KERNELS, UNARY)
KERNELS(sqr, JORM_SQR_KERNELS, UNARY)
KERNELS(not_, JORM_NOT_KERNELS, NOT)

JORM_API int64_t jorma_proc_einval(void) { return JORM_EINVAL; }
JORM_API int64_t jorma_proc_enotimp(void) { return JORM_ENOTIMP; }
JORM_API int64_t jorma_proc_enotsup(void) { return JORM_ENOTSUP; }

JORM_API jorm_proc *jorma__aaddfun_imp(uint32_t dst, uint32_t src1, uint32_t src2, int32_t *status) {
#define PROC(name, D, A, B) name,
    static constexpr decltype(&jorma__add_c1_u8u8u8) procs[] = {JORM_ADD_KERNELS(PROC)};
    const bool formed = well_formed(dst) && well_formed(src1) && well_formed(src2);
    const int line = formed ? family_add.find_line(keys::key(dst, src1, src2)) : -1;
    if (status) *status = line >= 0 ? JORM_OK : formed ? JORM_ENOTSUP : JORM_EINVAL;
    return line >= 0 ? to_proc(procs[line]) : formed ? jorma_proc_enotsup : jorma_proc_einval;
}
