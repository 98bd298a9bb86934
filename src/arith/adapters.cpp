// Adapters and dispatchers: adapters turn origins into start pointers, both go on to the typed dispatch.
#include "arith/signatures.hpp"

using namespace jorm;

#define DEFINE(adapter, dispatcher, shape, family)                                                                     \
    JORM_API int64_t adapter(shape##_PARAMS(A)) {                                                                      \
        shape##_CALL(A);                                                                                               \
        return dispatch(family, call);                                                                                 \
    }                                                                                                                  \
    JORM_API int64_t dispatcher(shape##_PARAMS(D)) {                                                                   \
        shape##_CALL(D);                                                                                               \
        return dispatch(family, call);                                                                                 \
    }

DEFINE(jorma_add, jorma__add, BINARY, family_add)
DEFINE(jorma_addq, jorma__addq, BINARY, family_addq)
DEFINE(jorma_addsq, jorma__addsq, BINARY, family_addsq)
DEFINE(jorma_sub, jorma__sub, BINARY, family_sub)
DEFINE(jorma_subq, jorma__subq, BINARY, family_subq)
DEFINE(jorma_subsq, jorma__subsq, BINARY, family_subsq)
DEFINE(jorma_rsub, jorma__rsub, BINARY, family_rsub)
DEFINE(jorma_rsubq, jorma__rsubq, BINARY, family_rsubq)
DEFINE(jorma_rsubsq, jorma__rsubsq, BINARY, family_subsq)
DEFINE(jorma_mul, jorma__mul, BINARY, family_mul)
DEFINE(jorma_div, jorma__div, BINARY, family_div)
DEFINE(jorma_divr, jorma__divr, BINARY, family_divr)
DEFINE(jorma_rdiv, jorma__rdiv, BINARY, family_rdiv)
DEFINE(jorma_rdivr, jorma__rdivr, BINARY, family_rdivr)
DEFINE(jorma_mulq, jorma__mulq, BINARY, family_mulq)

DEFINE(jorma_addC, jorma__addC, CONSTANT, family_addC)
DEFINE(jorma_addqC, jorma__addqC, CONSTANT, family_addqC)
DEFINE(jorma_addsqC, jorma__addsqC, CONSTANT, family_addsqC)
DEFINE(jorma_subC, jorma__subC, CONSTANT, family_subC)
DEFINE(jorma_subqC, jorma__subqC, CONSTANT, family_subqC)
DEFINE(jorma_subsqC, jorma__subsqC, CONSTANT, family_subsqC)
DEFINE(jorma_rsubC, jorma__rsubC, CONSTANT, family_rsubC)
DEFINE(jorma_rsubqC, jorma__rsubqC, CONSTANT, family_rsubqC)
DEFINE(jorma_rsubsqC, jorma__rsubsqC, CONSTANT, family_subsqC)
DEFINE(jorma_mulC, jorma__mulC, CONSTANT, family_mulC)
DEFINE(jorma_mulqC, jorma__mulqC, CONSTANT, family_mulqC)
DEFINE(jorma_divC, jorma__divC, CONSTANT, family_divC)
DEFINE(jorma_divrC, jorma__divrC, CONSTANT, family_divrC)
DEFINE(jorma_rdivC, jorma__rdivC, CONSTANT, family_rdivC)
DEFINE(jorma_rdivrC, jorma__rdivrC, CONSTANT, family_rdivrC)
DEFINE(jorma_sigmoidalpha, jorma__sigmoidalpha, CONSTANT, family_sigmoid)

DEFINE(jorma_exp, jorma__exp, UNARY, family_exp)
DEFINE(jorma_ln, jorma__ln, UNARY, family_ln)
DEFINE(jorma_neg, jorma__neg, UNARY, family_neg)
DEFINE(jorma_negq, jorma__negq, UNARY, family_negq)
DEFINE(jorma_not, jorma__not, NOT, family_not_)
JORM_API int64_t jorma__sqr(UNARY_PARAMS(D)) {
    UNARY_CALL(D);
    return dispatch(family_sqr, call);
}

DEFINE(jorma_mla, jorma__mla, TERNARY, family_mla)
DEFINE(jorma_mls, jorma__mls, TERNARY, family_mls)
DEFINE(jorma_mlrs, jorma__mlrs, TERNARY, family_mlrs)
DEFINE(jorma_mlaC, jorma__mlaC, CONSTANT2, family_mlaC)
DEFINE(jorma_mlsC, jorma__mlsC, CONSTANT2, family_mlsC)
DEFINE(jorma_mlrsC, jorma__mlrsC, CONSTANT2, family_mlrsC)
DEFINE(jorma_mlaCC, jorma__mlaCC, CONSTANTS, family_mlaCC)
DEFINE(jorma_mlsCC, jorma__mlsCC, CONSTANTS, family_mlsCC)
DEFINE(jorma_mlrsCC, jorma__mlrsCC, CONSTANTS, family_mlrsCC)

DEFINE(jorma_absdiff, jorma__absdiff, LOGIC, family_absdiff)
DEFINE(jorma_min, jorma__min, LOGIC, family_min)
DEFINE(jorma_max, jorma__max, LOGIC, family_max)
DEFINE(jorma_absdiffC, jorma__absdiffC, LOGIC_CONSTANT, family_absdiffC)
DEFINE(jorma_minC, jorma__minC, LOGIC_CONSTANT, family_minC)
DEFINE(jorma_maxC, jorma__maxC, LOGIC_CONSTANT, family_maxC)

DEFINE(jorma_and, jorma__and, LOGIC, family_and_)
DEFINE(jorma_orr, jorma__orr, LOGIC, family_orr)
DEFINE(jorma_xor, jorma__xor, LOGIC, family_xor_)
DEFINE(jorma_andC, jorma__andC, LOGIC_CONSTANT, family_andC)
DEFINE(jorma_orrC, jorma__orrC, LOGIC_CONSTANT, family_orrC)
DEFINE(jorma_xorC, jorma__xorC, LOGIC_CONSTANT, family_xorC)
