// Every typed kernel that is exported, by family: K(name, [channels,] destination type, source types...).
// Constant forms name the type of their constant last (the two constants of the CC forms: the last two). A kernel of a
// list is exported under its name, entered into the lookup table of its family, and compiled at every level.
#pragma once

#define JORM_ADD_KERNELS(K) \
    K(jorma__add_c1_f32f32f32, f32, f32, f32) \
    K(jorma__add_c1_f32f32s16, f32, f32, s16) \
    K(jorma__add_c1_f32f32s32, f32, f32, s32) \
    K(jorma__add_c1_f32f32u8, f32, f32, u8) \
    K(jorma__add_c1_f32s16s16, f32, s16, s16) \
    K(jorma__add_c1_f32s16u8, f32, s16, u8) \
    K(jorma__add_c1_f32s32s16, f32, s32, s16) \
    K(jorma__add_c1_f32s32s32, f32, s32, s32) \
    K(jorma__add_c1_f32s32u8, f32, s32, u8) \
    K(jorma__add_c1_f32u8u8, f32, u8, u8) \
    K(jorma__add_c1_s16s16s16, s16, s16, s16) \
    K(jorma__add_c1_s16s16u8, s16, s16, u8) \
    K(jorma__add_c1_s16u8u8, s16, u8, u8) \
    K(jorma__add_c1_s32f32f32, s32, f32, f32) \
    K(jorma__add_c1_s32f32s16, s32, f32, s16) \
    K(jorma__add_c1_s32f32s32, s32, f32, s32) \
    K(jorma__add_c1_s32f32u8, s32, f32, u8) \
    K(jorma__add_c1_s32s16s16, s32, s16, s16) \
    K(jorma__add_c1_s32s16u8, s32, s16, u8) \
    K(jorma__add_c1_s32s32s16, s32, s32, s16) \
    K(jorma__add_c1_s32s32s32, s32, s32, s32) \
    K(jorma__add_c1_s32s32u8, s32, s32, u8) \
    K(jorma__add_c1_s32u8u8, s32, u8, u8) \
    K(jorma__add_c1_u8s16s16, u8, s16, s16) \
    K(jorma__add_c1_u8s16u8, u8, s16, u8) \
    K(jorma__add_c1_u8u8u8, u8, u8, u8)

#define JORM_SUB_KERNELS(K) \
    K(jorma__sub_c1_f32f32f32, f32, f32, f32) \
    K(jorma__sub_c1_f32f32s16, f32, f32, s16) \
    K(jorma__sub_c1_f32f32s32, f32, f32, s32) \
    K(jorma__sub_c1_f32f32u8, f32, f32, u8) \
    K(jorma__sub_c1_f32s16s16, f32, s16, s16) \
    K(jorma__sub_c1_f32s16u8, f32, s16, u8) \
    K(jorma__sub_c1_f32s32s16, f32, s32, s16) \
    K(jorma__sub_c1_f32s32s32, f32, s32, s32) \
    K(jorma__sub_c1_f32s32u8, f32, s32, u8) \
    K(jorma__sub_c1_f32u8u8, f32, u8, u8) \
    K(jorma__sub_c1_s16s16s16, s16, s16, s16) \
    K(jorma__sub_c1_s16s16u8, s16, s16, u8) \
    K(jorma__sub_c1_s16u8u8, s16, u8, u8) \
    K(jorma__sub_c1_s32f32f32, s32, f32, f32) \
    K(jorma__sub_c1_s32f32s16, s32, f32, s16) \
    K(jorma__sub_c1_s32f32s32, s32, f32, s32) \
    K(jorma__sub_c1_s32f32u8, s32, f32, u8) \
    K(jorma__sub_c1_s32s16s16, s32, s16, s16) \
    K(jorma__sub_c1_s32s16u8, s32, s16, u8) \
    K(jorma__sub_c1_s32s32s16, s32, s32, s16) \
    K(jorma__sub_c1_s32s32s32, s32, s32, s32) \
    K(jorma__sub_c1_s32s32u8, s32, s32, u8) \
    K(jorma__sub_c1_s32u8u8, s32, u8, u8) \
    K(jorma__sub_c1_u8s16s16, u8, s16, s16) \
    K(jorma__sub_c1_u8s16u8, u8, s16, u8) \
    K(jorma__sub_c1_u8u8u8, u8, u8, u8)

#define JORM_RSUB_KERNELS(K) \
    K(jorma__rsub_c1_f32f32f32, f32, f32, f32) \
    K(jorma__rsub_c1_f32f32s16, f32, f32, s16) \
    K(jorma__rsub_c1_f32f32s32, f32, f32, s32) \
    K(jorma__rsub_c1_f32f32u8, f32, f32, u8) \
    K(jorma__rsub_c1_f32s16s16, f32, s16, s16) \
    K(jorma__rsub_c1_f32s16u8, f32, s16, u8) \
    K(jorma__rsub_c1_f32s32s16, f32, s32, s16) \
    K(jorma__rsub_c1_f32s32s32, f32, s32, s32) \
    K(jorma__rsub_c1_f32s32u8, f32, s32, u8) \
    K(jorma__rsub_c1_f32u8u8, f32, u8, u8) \
    K(jorma__rsub_c1_s16s16s16, s16, s16, s16) \
    K(jorma__rsub_c1_s16s16u8, s16, s16, u8) \
    K(jorma__rsub_c1_s16u8u8, s16, u8, u8) \
    K(jorma__rsub_c1_s32f32f32, s32, f32, f32) \
    K(jorma__rsub_c1_s32f32s16, s32, f32, s16) \
    K(jorma__rsub_c1_s32f32s32, s32, f32, s32) \
    K(jorma__rsub_c1_s32f32u8, s32, f32, u8) \
    K(jorma__rsub_c1_s32s16s16, s32, s16, s16) \
    K(jorma__rsub_c1_s32s16u8, s32, s16, u8) \
    K(jorma__rsub_c1_s32s32s16, s32, s32, s16) \
    K(jorma__rsub_c1_s32s32s32, s32, s32, s32) \
    K(jorma__rsub_c1_s32s32u8, s32, s32, u8) \
    K(jorma__rsub_c1_s32u8u8, s32, u8, u8) \
    K(jorma__rsub_c1_u8s16s16, u8, s16, s16) \
    K(jorma__rsub_c1_u8s16u8, u8, s16, u8) \
    K(jorma__rsub_c1_u8u8u8, u8, u8, u8)

#define JORM_MUL_KERNELS(K) \
    K(jorma__mul_c1_f32f32f32, f32, f32, f32) \
    K(jorma__mul_c1_f32f32s16, f32, f32, s16) \
    K(jorma__mul_c1_f32f32s32, f32, f32, s32) \
    K(jorma__mul_c1_f32f32u8, f32, f32, u8) \
    K(jorma__mul_c1_f32s16s16, f32, s16, s16) \
    K(jorma__mul_c1_f32s16u8, f32, s16, u8) \
    K(jorma__mul_c1_f32s32s16, f32, s32, s16) \
    K(jorma__mul_c1_f32s32s32, f32, s32, s32) \
    K(jorma__mul_c1_f32s32u8, f32, s32, u8) \
    K(jorma__mul_c1_f32u8u8, f32, u8, u8) \
    K(jorma__mul_c1_s16s16s16, s16, s16, s16) \
    K(jorma__mul_c1_s16s16u8, s16, s16, u8) \
    K(jorma__mul_c1_s16u8u8, s16, u8, u8) \
    K(jorma__mul_c1_s32f32f32, s32, f32, f32) \
    K(jorma__mul_c1_s32f32s16, s32, f32, s16) \
    K(jorma__mul_c1_s32f32s32, s32, f32, s32) \
    K(jorma__mul_c1_s32f32u8, s32, f32, u8) \
    K(jorma__mul_c1_s32s16s16, s32, s16, s16) \
    K(jorma__mul_c1_s32s16u8, s32, s16, u8) \
    K(jorma__mul_c1_s32s32s16, s32, s32, s16) \
    K(jorma__mul_c1_s32s32s32, s32, s32, s32) \
    K(jorma__mul_c1_s32s32u8, s32, s32, u8) \
    K(jorma__mul_c1_s32u8u8, s32, u8, u8) \
    K(jorma__mul_c1_u8s16s16, u8, s16, s16) \
    K(jorma__mul_c1_u8s16u8, u8, s16, u8) \
    K(jorma__mul_c1_u8u8u8, u8, u8, u8)

#define JORM_ADDQ_KERNELS(K) \
    K(jorma__addq_c1_f32s16s16, f32, s16, s16) \
    K(jorma__addq_c1_f32s16u8, f32, s16, u8) \
    K(jorma__addq_c1_f32s32s16, f32, s32, s16) \
    K(jorma__addq_c1_f32s32s32, f32, s32, s32) \
    K(jorma__addq_c1_f32s32u8, f32, s32, u8) \
    K(jorma__addq_c1_f32u8u8, f32, u8, u8) \
    K(jorma__addq_c1_s16s16s16, s16, s16, s16) \
    K(jorma__addq_c1_s16s16u8, s16, s16, u8) \
    K(jorma__addq_c1_s16u8u8, s16, u8, u8) \
    K(jorma__addq_c1_s32s16s16, s32, s16, s16) \
    K(jorma__addq_c1_s32s16u8, s32, s16, u8) \
    K(jorma__addq_c1_s32s32s16, s32, s32, s16) \
    K(jorma__addq_c1_s32s32s32, s32, s32, s32) \
    K(jorma__addq_c1_s32s32u8, s32, s32, u8) \
    K(jorma__addq_c1_s32u8u8, s32, u8, u8) \
    K(jorma__addq_c1_s8u8u8, s8, u8, u8) \
    K(jorma__addq_c1_u8s16s16, u8, s16, s16) \
    K(jorma__addq_c1_u8s16u8, u8, s16, u8) \
    K(jorma__addq_c1_u8u8u8, u8, u8, u8)

#define JORM_SUBQ_KERNELS(K) \
    K(jorma__subq_c1_f32s16s16, f32, s16, s16) \
    K(jorma__subq_c1_f32s16u8, f32, s16, u8) \
    K(jorma__subq_c1_f32s32s16, f32, s32, s16) \
    K(jorma__subq_c1_f32s32s32, f32, s32, s32) \
    K(jorma__subq_c1_f32s32u8, f32, s32, u8) \
    K(jorma__subq_c1_f32u8u8, f32, u8, u8) \
    K(jorma__subq_c1_s16s16s16, s16, s16, s16) \
    K(jorma__subq_c1_s16s16u8, s16, s16, u8) \
    K(jorma__subq_c1_s16u8u8, s16, u8, u8) \
    K(jorma__subq_c1_s32s16s16, s32, s16, s16) \
    K(jorma__subq_c1_s32s16u8, s32, s16, u8) \
    K(jorma__subq_c1_s32s32s16, s32, s32, s16) \
    K(jorma__subq_c1_s32s32s32, s32, s32, s32) \
    K(jorma__subq_c1_s32s32u8, s32, s32, u8) \
    K(jorma__subq_c1_s32u8u8, s32, u8, u8) \
    K(jorma__subq_c1_s8u8u8, s8, u8, u8) \
    K(jorma__subq_c1_u8s16s16, u8, s16, s16) \
    K(jorma__subq_c1_u8s16u8, u8, s16, u8) \
    K(jorma__subq_c1_u8u8u8, u8, u8, u8)

#define JORM_RSUBQ_KERNELS(K) \
    K(jorma__rsubq_c1_f32s16s16, f32, s16, s16) \
    K(jorma__rsubq_c1_f32s16u8, f32, s16, u8) \
    K(jorma__rsubq_c1_f32s32s16, f32, s32, s16) \
    K(jorma__rsubq_c1_f32s32s32, f32, s32, s32) \
    K(jorma__rsubq_c1_f32s32u8, f32, s32, u8) \
    K(jorma__rsubq_c1_f32u8u8, f32, u8, u8) \
    K(jorma__rsubq_c1_s16s16s16, s16, s16, s16) \
    K(jorma__rsubq_c1_s16s16u8, s16, s16, u8) \
    K(jorma__rsubq_c1_s16u8u8, s16, u8, u8) \
    K(jorma__rsubq_c1_s32s16s16, s32, s16, s16) \
    K(jorma__rsubq_c1_s32s16u8, s32, s16, u8) \
    K(jorma__rsubq_c1_s32s32s16, s32, s32, s16) \
    K(jorma__rsubq_c1_s32s32s32, s32, s32, s32) \
    K(jorma__rsubq_c1_s32s32u8, s32, s32, u8) \
    K(jorma__rsubq_c1_s32u8u8, s32, u8, u8) \
    K(jorma__rsubq_c1_s8u8u8, s8, u8, u8) \
    K(jorma__rsubq_c1_u8s16s16, u8, s16, s16) \
    K(jorma__rsubq_c1_u8s16u8, u8, s16, u8) \
    K(jorma__rsubq_c1_u8u8u8, u8, u8, u8)

#define JORM_DIV_KERNELS(K) \
    K(jorma__div_c1_f32f32f32, f32, f32, f32) \
    K(jorma__div_c1_s16s16s16, s16, s16, s16) \
    K(jorma__div_c1_s32s32s32, s32, s32, s32) \
    K(jorma__div_c1_u8u8u8, u8, u8, u8)

#define JORM_DIVR_KERNELS(K) \
    K(jorma__divr_c1_s16s16s16, s16, s16, s16) \
    K(jorma__divr_c1_s32s32s32, s32, s32, s32) \
    K(jorma__divr_c1_u8u8u8, u8, u8, u8)

#define JORM_AND_KERNELS(K) \
    K(jorma__and_c1_s16s16s16, s16, s16, s16) \
    K(jorma__and_c1_s32s32s32, s32, s32, s32) \
    K(jorma__and_c1_u8u8u8, u8, u8, u8)

#define JORM_ORR_KERNELS(K) \
    K(jorma__orr_c1_s16s16s16, s16, s16, s16) \
    K(jorma__orr_c1_s32s32s32, s32, s32, s32) \
    K(jorma__orr_c1_u8u8u8, u8, u8, u8)

#define JORM_XOR_KERNELS(K) \
    K(jorma__xor_c1_s16s16s16, s16, s16, s16) \
    K(jorma__xor_c1_s32s32s32, s32, s32, s32) \
    K(jorma__xor_c1_u8u8u8, u8, u8, u8)

#define JORM_MULQ_KERNELS(K) \
    K(jorma__mulq_c1_s16s16s16, s16, s16, s16) \
    K(jorma__mulq_c1_s16s16u8, s16, s16, u8) \
    K(jorma__mulq_c1_s16s32s16, s16, s32, s16) \
    K(jorma__mulq_c1_s16s32s32, s16, s32, s32) \
    K(jorma__mulq_c1_s16s32u8, s16, s32, u8) \
    K(jorma__mulq_c1_s16u8u8, s16, u8, u8) \
    K(jorma__mulq_c1_s32s16s16, s32, s16, s16) \
    K(jorma__mulq_c1_s32s16u8, s32, s16, u8) \
    K(jorma__mulq_c1_s32s32s16, s32, s32, s16) \
    K(jorma__mulq_c1_s32s32s32, s32, s32, s32) \
    K(jorma__mulq_c1_s32s32u8, s32, s32, u8) \
    K(jorma__mulq_c1_s32u8u8, s32, u8, u8) \
    K(jorma__mulq_c1_u8s16s16, u8, s16, s16) \
    K(jorma__mulq_c1_u8s16u8, u8, s16, u8) \
    K(jorma__mulq_c1_u8s32s16, u8, s32, s16) \
    K(jorma__mulq_c1_u8s32s32, u8, s32, s32) \
    K(jorma__mulq_c1_u8s32u8, u8, s32, u8) \
    K(jorma__mulq_c1_u8u8u8, u8, u8, u8)

#define JORM_ABSDIFF_KERNELS(K) \
    K(jorma__absdiff_c1_f32f32f32, f32, f32, f32) \
    K(jorma__absdiff_c1_s16s16s16, s16, s16, s16) \
    K(jorma__absdiff_c1_s32s32s32, s32, s32, s32) \
    K(jorma__absdiff_c1_s8s8s8, s8, s8, s8) \
    K(jorma__absdiff_c1_u8u8u8, u8, u8, u8)

#define JORM_MIN_KERNELS(K) \
    K(jorma__min_c1_f32f32f32, f32, f32, f32) \
    K(jorma__min_c1_s16s16s16, s16, s16, s16) \
    K(jorma__min_c1_s32s32s32, s32, s32, s32) \
    K(jorma__min_c1_s8s8s8, s8, s8, s8) \
    K(jorma__min_c1_u8u8u8, u8, u8, u8)

#define JORM_MAX_KERNELS(K) \
    K(jorma__max_c1_f32f32f32, f32, f32, f32) \
    K(jorma__max_c1_s16s16s16, s16, s16, s16) \
    K(jorma__max_c1_s32s32s32, s32, s32, s32) \
    K(jorma__max_c1_s8s8s8, s8, s8, s8) \
    K(jorma__max_c1_u8u8u8, u8, u8, u8)

#define JORM_ADD_C_KERNELS(K) \
    K(jorma__addC_c1_f32f32f32, f32, f32, f32) \
    K(jorma__addC_c1_f32f32f64, f32, f32, f64) \
    K(jorma__addC_c1_f32s16s16, f32, s16, s16) \
    K(jorma__addC_c1_f32s16s32, f32, s16, s32) \
    K(jorma__addC_c1_f32s32f64, f32, s32, f64) \
    K(jorma__addC_c1_f32s32s32, f32, s32, s32) \
    K(jorma__addC_c1_f32u8s32, f32, u8, s32) \
    K(jorma__addC_c1_f32u8u8, f32, u8, u8) \
    K(jorma__addC_c1_s16s16s16, s16, s16, s16) \
    K(jorma__addC_c1_s16u8s32, s16, u8, s32) \
    K(jorma__addC_c1_s16u8u8, s16, u8, u8) \
    K(jorma__addC_c1_s32f32f32, s32, f32, f32) \
    K(jorma__addC_c1_s32f32f64, s32, f32, f64) \
    K(jorma__addC_c1_s32s16s16, s32, s16, s16) \
    K(jorma__addC_c1_s32s16s32, s32, s16, s32) \
    K(jorma__addC_c1_s32s32s32, s32, s32, s32) \
    K(jorma__addC_c1_s32u8s32, s32, u8, s32) \
    K(jorma__addC_c1_s32u8u8, s32, u8, u8) \
    K(jorma__addC_c1_u8s16s16, u8, s16, s16) \
    K(jorma__addC_c1_u8u8s32, u8, u8, s32) \
    K(jorma__addC_c1_u8u8u8, u8, u8, u8)

#define JORM_SUB_C_KERNELS(K) \
    K(jorma__subC_c1_f32f32f32, f32, f32, f32) \
    K(jorma__subC_c1_f32f32f64, f32, f32, f64) \
    K(jorma__subC_c1_f32s16s16, f32, s16, s16) \
    K(jorma__subC_c1_f32s16s32, f32, s16, s32) \
    K(jorma__subC_c1_f32s32f64, f32, s32, f64) \
    K(jorma__subC_c1_f32s32s32, f32, s32, s32) \
    K(jorma__subC_c1_f32u8s32, f32, u8, s32) \
    K(jorma__subC_c1_f32u8u8, f32, u8, u8) \
    K(jorma__subC_c1_s16s16s16, s16, s16, s16) \
    K(jorma__subC_c1_s16u8s32, s16, u8, s32) \
    K(jorma__subC_c1_s16u8u8, s16, u8, u8) \
    K(jorma__subC_c1_s32f32f32, s32, f32, f32) \
    K(jorma__subC_c1_s32f32f64, s32, f32, f64) \
    K(jorma__subC_c1_s32s16s16, s32, s16, s16) \
    K(jorma__subC_c1_s32s16s32, s32, s16, s32) \
    K(jorma__subC_c1_s32s32s32, s32, s32, s32) \
    K(jorma__subC_c1_s32u8s32, s32, u8, s32) \
    K(jorma__subC_c1_s32u8u8, s32, u8, u8) \
    K(jorma__subC_c1_u8s16s16, u8, s16, s16) \
    K(jorma__subC_c1_u8u8s32, u8, u8, s32) \
    K(jorma__subC_c1_u8u8u8, u8, u8, u8)

#define JORM_RSUB_C_KERNELS(K) \
    K(jorma__rsubC_c1_f32f32f32, f32, f32, f32) \
    K(jorma__rsubC_c1_f32f32f64, f32, f32, f64) \
    K(jorma__rsubC_c1_f32s16s16, f32, s16, s16) \
    K(jorma__rsubC_c1_f32s16s32, f32, s16, s32) \
    K(jorma__rsubC_c1_f32s32f64, f32, s32, f64) \
    K(jorma__rsubC_c1_f32s32s32, f32, s32, s32) \
    K(jorma__rsubC_c1_f32u8s32, f32, u8, s32) \
    K(jorma__rsubC_c1_f32u8u8, f32, u8, u8) \
    K(jorma__rsubC_c1_s16s16s16, s16, s16, s16) \
    K(jorma__rsubC_c1_s16u8s32, s16, u8, s32) \
    K(jorma__rsubC_c1_s16u8u8, s16, u8, u8) \
    K(jorma__rsubC_c1_s32f32f32, s32, f32, f32) \
    K(jorma__rsubC_c1_s32f32f64, s32, f32, f64) \
    K(jorma__rsubC_c1_s32s16s16, s32, s16, s16) \
    K(jorma__rsubC_c1_s32s16s32, s32, s16, s32) \
    K(jorma__rsubC_c1_s32s32s32, s32, s32, s32) \
    K(jorma__rsubC_c1_s32u8s32, s32, u8, s32) \
    K(jorma__rsubC_c1_s32u8u8, s32, u8, u8) \
    K(jorma__rsubC_c1_u8s16s16, u8, s16, s16) \
    K(jorma__rsubC_c1_u8u8s32, u8, u8, s32) \
    K(jorma__rsubC_c1_u8u8u8, u8, u8, u8)

#define JORM_MUL_C_KERNELS(K) \
    K(jorma__mulC_c1_f32f32f32, f32, f32, f32) \
    K(jorma__mulC_c1_f32f32f64, f32, f32, f64) \
    K(jorma__mulC_c1_f32s16f32, f32, s16, f32) \
    K(jorma__mulC_c1_f32s16s16, f32, s16, s16) \
    K(jorma__mulC_c1_f32s16s32, f32, s16, s32) \
    K(jorma__mulC_c1_f32s32f32, f32, s32, f32) \
    K(jorma__mulC_c1_f32s32f64, f32, s32, f64) \
    K(jorma__mulC_c1_f32s32s32, f32, s32, s32) \
    K(jorma__mulC_c1_f32u8f32, f32, u8, f32) \
    K(jorma__mulC_c1_f32u8s32, f32, u8, s32) \
    K(jorma__mulC_c1_f32u8u8, f32, u8, u8) \
    K(jorma__mulC_c1_s16s16s16, s16, s16, s16) \
    K(jorma__mulC_c1_s16u8s32, s16, u8, s32) \
    K(jorma__mulC_c1_s16u8u8, s16, u8, u8) \
    K(jorma__mulC_c1_s32f32f32, s32, f32, f32) \
    K(jorma__mulC_c1_s32f32f64, s32, f32, f64) \
    K(jorma__mulC_c1_s32s16f32, s32, s16, f32) \
    K(jorma__mulC_c1_s32s16f64, s32, s16, f64) \
    K(jorma__mulC_c1_s32s16s16, s32, s16, s16) \
    K(jorma__mulC_c1_s32s16s32, s32, s16, s32) \
    K(jorma__mulC_c1_s32s32f32, s32, s32, f32) \
    K(jorma__mulC_c1_s32s32f64, s32, s32, f64) \
    K(jorma__mulC_c1_s32s32s32, s32, s32, s32) \
    K(jorma__mulC_c1_s32u8f32, s32, u8, f32) \
    K(jorma__mulC_c1_s32u8f64, s32, u8, f64) \
    K(jorma__mulC_c1_s32u8s32, s32, u8, s32) \
    K(jorma__mulC_c1_s32u8u8, s32, u8, u8) \
    K(jorma__mulC_c1_s8u8u8, s8, u8, u8) \
    K(jorma__mulC_c1_u8s16s16, u8, s16, s16) \
    K(jorma__mulC_c1_u8u8f32, u8, u8, f32) \
    K(jorma__mulC_c1_u8u8s32, u8, u8, s32) \
    K(jorma__mulC_c1_u8u8u8, u8, u8, u8)

#define JORM_ADDQ_C_KERNELS(K) \
    K(jorma__addqC_c1_f32s16s32, f32, s16, s32) \
    K(jorma__addqC_c1_f32s32s32, f32, s32, s32) \
    K(jorma__addqC_c1_f32u8s32, f32, u8, s32) \
    K(jorma__addqC_c1_s16s16s16, s16, s16, s16) \
    K(jorma__addqC_c1_s16u8s32, s16, u8, s32) \
    K(jorma__addqC_c1_s32s16s32, s32, s16, s32) \
    K(jorma__addqC_c1_s32s32s32, s32, s32, s32) \
    K(jorma__addqC_c1_s32u8s32, s32, u8, s32) \
    K(jorma__addqC_c1_s8u8u8, s8, u8, u8) \
    K(jorma__addqC_c1_u8s16s16, u8, s16, s16) \
    K(jorma__addqC_c1_u8u8s32, u8, u8, s32) \
    K(jorma__addqC_c1_u8u8u8, u8, u8, u8)

#define JORM_SUBQ_C_KERNELS(K) \
    K(jorma__subqC_c1_f32s16s32, f32, s16, s32) \
    K(jorma__subqC_c1_f32s32s32, f32, s32, s32) \
    K(jorma__subqC_c1_f32u8s32, f32, u8, s32) \
    K(jorma__subqC_c1_s16s16s16, s16, s16, s16) \
    K(jorma__subqC_c1_s16u8s32, s16, u8, s32) \
    K(jorma__subqC_c1_s32s16s32, s32, s16, s32) \
    K(jorma__subqC_c1_s32s32s32, s32, s32, s32) \
    K(jorma__subqC_c1_s32u8s32, s32, u8, s32) \
    K(jorma__subqC_c1_s8u8u8, s8, u8, u8) \
    K(jorma__subqC_c1_u8s16s16, u8, s16, s16) \
    K(jorma__subqC_c1_u8u8s32, u8, u8, s32) \
    K(jorma__subqC_c1_u8u8u8, u8, u8, u8)

#define JORM_RSUBQ_C_KERNELS(K) \
    K(jorma__rsubqC_c1_f32s16s32, f32, s16, s32) \
    K(jorma__rsubqC_c1_f32s32s32, f32, s32, s32) \
    K(jorma__rsubqC_c1_f32u8s32, f32, u8, s32) \
    K(jorma__rsubqC_c1_s16s16s16, s16, s16, s16) \
    K(jorma__rsubqC_c1_s16u8s32, s16, u8, s32) \
    K(jorma__rsubqC_c1_s32s16s32, s32, s16, s32) \
    K(jorma__rsubqC_c1_s32s32s32, s32, s32, s32) \
    K(jorma__rsubqC_c1_s32u8s32, s32, u8, s32) \
    K(jorma__rsubqC_c1_s8u8u8, s8, u8, u8) \
    K(jorma__rsubqC_c1_u8s16s16, u8, s16, s16) \
    K(jorma__rsubqC_c1_u8u8s32, u8, u8, s32) \
    K(jorma__rsubqC_c1_u8u8u8, u8, u8, u8)

#define JORM_DIV_C_KERNELS(K) \
    K(jorma__divC_c1_f32f32, 1, f32, f32) \
    K(jorma__divC_c1_s16s16, 1, s16, s16) \
    K(jorma__divC_c1_s32s32, 1, s32, s32) \
    K(jorma__divC_c1_u8u8, 1, u8, u8) \
    K(jorma__divC_c3_f32f32, 3, f32, f32) \
    K(jorma__divC_c3_s16s16, 3, s16, s16) \
    K(jorma__divC_c3_s32s32, 3, s32, s32) \
    K(jorma__divC_c3_u8u8, 3, u8, u8) \
    K(jorma__divC_c4_f32f32, 4, f32, f32) \
    K(jorma__divC_c4_s16s16, 4, s16, s16) \
    K(jorma__divC_c4_s32s32, 4, s32, s32) \
    K(jorma__divC_c4_u8u8, 4, u8, u8)

#define JORM_RDIV_C_KERNELS(K) \
    K(jorma__rdivC_c1_f32f32, 1, f32, f32) \
    K(jorma__rdivC_c1_s16s16, 1, s16, s16) \
    K(jorma__rdivC_c1_s32s32, 1, s32, s32) \
    K(jorma__rdivC_c1_u8u8, 1, u8, u8) \
    K(jorma__rdivC_c3_f32f32, 3, f32, f32) \
    K(jorma__rdivC_c3_s16s16, 3, s16, s16) \
    K(jorma__rdivC_c3_s32s32, 3, s32, s32) \
    K(jorma__rdivC_c3_u8u8, 3, u8, u8) \
    K(jorma__rdivC_c4_f32f32, 4, f32, f32) \
    K(jorma__rdivC_c4_s16s16, 4, s16, s16) \
    K(jorma__rdivC_c4_s32s32, 4, s32, s32) \
    K(jorma__rdivC_c4_u8u8, 4, u8, u8)

#define JORM_DIVR_C_KERNELS(K) \
    K(jorma__divrC_c1_s16s16, 1, s16, s16) \
    K(jorma__divrC_c1_s32s32, 1, s32, s32) \
    K(jorma__divrC_c1_u8u8, 1, u8, u8) \
    K(jorma__divrC_c3_s16s16, 3, s16, s16) \
    K(jorma__divrC_c3_s32s32, 3, s32, s32) \
    K(jorma__divrC_c3_u8u8, 3, u8, u8) \
    K(jorma__divrC_c4_s16s16, 4, s16, s16) \
    K(jorma__divrC_c4_s32s32, 4, s32, s32) \
    K(jorma__divrC_c4_u8u8, 4, u8, u8)

#define JORM_RDIVR_C_KERNELS(K) \
    K(jorma__rdivrC_c1_s16s16, 1, s16, s16) \
    K(jorma__rdivrC_c1_s32s32, 1, s32, s32) \
    K(jorma__rdivrC_c1_u8u8, 1, u8, u8) \
    K(jorma__rdivrC_c3_s16s16, 3, s16, s16) \
    K(jorma__rdivrC_c3_s32s32, 3, s32, s32) \
    K(jorma__rdivrC_c3_u8u8, 3, u8, u8) \
    K(jorma__rdivrC_c4_s16s16, 4, s16, s16) \
    K(jorma__rdivrC_c4_s32s32, 4, s32, s32) \
    K(jorma__rdivrC_c4_u8u8, 4, u8, u8)

#define JORM_AND_C_KERNELS(K) \
    K(jorma__andC_c1_s16s16, 1, s16, s16) \
    K(jorma__andC_c1_s32s32, 1, s32, s32) \
    K(jorma__andC_c1_u8u8, 1, u8, u8) \
    K(jorma__andC_c3_s16s16, 3, s16, s16) \
    K(jorma__andC_c3_s32s32, 3, s32, s32) \
    K(jorma__andC_c3_u8u8, 3, u8, u8) \
    K(jorma__andC_c4_s16s16, 4, s16, s16) \
    K(jorma__andC_c4_s32s32, 4, s32, s32) \
    K(jorma__andC_c4_u8u8, 4, u8, u8)

#define JORM_ORR_C_KERNELS(K) \
    K(jorma__orrC_c1_s16s16, 1, s16, s16) \
    K(jorma__orrC_c1_s32s32, 1, s32, s32) \
    K(jorma__orrC_c1_u8u8, 1, u8, u8) \
    K(jorma__orrC_c3_s16s16, 3, s16, s16) \
    K(jorma__orrC_c3_s32s32, 3, s32, s32) \
    K(jorma__orrC_c3_u8u8, 3, u8, u8) \
    K(jorma__orrC_c4_s16s16, 4, s16, s16) \
    K(jorma__orrC_c4_s32s32, 4, s32, s32) \
    K(jorma__orrC_c4_u8u8, 4, u8, u8)

#define JORM_XOR_C_KERNELS(K) \
    K(jorma__xorC_c1_s16s16, 1, s16, s16) \
    K(jorma__xorC_c1_s32s32, 1, s32, s32) \
    K(jorma__xorC_c1_u8u8, 1, u8, u8) \
    K(jorma__xorC_c3_s16s16, 3, s16, s16) \
    K(jorma__xorC_c3_s32s32, 3, s32, s32) \
    K(jorma__xorC_c3_u8u8, 3, u8, u8) \
    K(jorma__xorC_c4_s16s16, 4, s16, s16) \
    K(jorma__xorC_c4_s32s32, 4, s32, s32) \
    K(jorma__xorC_c4_u8u8, 4, u8, u8)

#define JORM_MULQ_C_KERNELS(K) \
    K(jorma__mulqC_c1_s16f32, 1, s16, f32) \
    K(jorma__mulqC_c1_s16s16, 1, s16, s16) \
    K(jorma__mulqC_c1_s16s32, 1, s16, s32) \
    K(jorma__mulqC_c1_s16u8, 1, s16, u8) \
    K(jorma__mulqC_c1_s32f32, 1, s32, f32) \
    K(jorma__mulqC_c1_s32s16, 1, s32, s16) \
    K(jorma__mulqC_c1_s32s32, 1, s32, s32) \
    K(jorma__mulqC_c1_s32u8, 1, s32, u8) \
    K(jorma__mulqC_c1_u8f32, 1, u8, f32) \
    K(jorma__mulqC_c1_u8s16, 1, u8, s16) \
    K(jorma__mulqC_c1_u8s32, 1, u8, s32) \
    K(jorma__mulqC_c1_u8u8, 1, u8, u8)

#define JORM_ABSDIFF_C_KERNELS(K) \
    K(jorma__absdiffC_c1_f32f32, 1, f32, f32) \
    K(jorma__absdiffC_c1_s16s16, 1, s16, s16) \
    K(jorma__absdiffC_c1_s32s32, 1, s32, s32) \
    K(jorma__absdiffC_c1_s8s8, 1, s8, s8) \
    K(jorma__absdiffC_c1_u8u8, 1, u8, u8)

#define JORM_MIN_C_KERNELS(K) \
    K(jorma__minC_c1_f32f32, 1, f32, f32) \
    K(jorma__minC_c1_s16s16, 1, s16, s16) \
    K(jorma__minC_c1_s32s32, 1, s32, s32) \
    K(jorma__minC_c1_s8s8, 1, s8, s8) \
    K(jorma__minC_c1_u8u8, 1, u8, u8)

#define JORM_MAX_C_KERNELS(K) \
    K(jorma__maxC_c1_f32f32, 1, f32, f32) \
    K(jorma__maxC_c1_s16s16, 1, s16, s16) \
    K(jorma__maxC_c1_s32s32, 1, s32, s32) \
    K(jorma__maxC_c1_s8s8, 1, s8, s8) \
    K(jorma__maxC_c1_u8u8, 1, u8, u8)

#define JORM_MLA_KERNELS(K) \
    K(jorma__mla_c1_u8u8u8u8, u8, u8, u8, u8) \
    K(jorma__mla_c1_u8u8u8s16, u8, u8, u8, s16) \
    K(jorma__mla_c1_u8s16u8u8, u8, s16, u8, u8) \
    K(jorma__mla_c1_u8s16u8s16, u8, s16, u8, s16) \
    K(jorma__mla_c1_u8s16s16u8, u8, s16, s16, u8) \
    K(jorma__mla_c1_u8s16s16s16, u8, s16, s16, s16) \
    K(jorma__mla_c1_s16u8u8u8, s16, u8, u8, u8) \
    K(jorma__mla_c1_s16u8u8s16, s16, u8, u8, s16) \
    K(jorma__mla_c1_s16s16u8u8, s16, s16, u8, u8) \
    K(jorma__mla_c1_s16s16u8s16, s16, s16, u8, s16) \
    K(jorma__mla_c1_s16s16s16u8, s16, s16, s16, u8) \
    K(jorma__mla_c1_s16s16s16s16, s16, s16, s16, s16) \
    K(jorma__mla_c1_s32u8u8u8, s32, u8, u8, u8) \
    K(jorma__mla_c1_s32u8u8s16, s32, u8, u8, s16) \
    K(jorma__mla_c1_s32u8u8s32, s32, u8, u8, s32) \
    K(jorma__mla_c1_s32s16u8u8, s32, s16, u8, u8) \
    K(jorma__mla_c1_s32s16u8s16, s32, s16, u8, s16) \
    K(jorma__mla_c1_s32s16u8s32, s32, s16, u8, s32) \
    K(jorma__mla_c1_s32s16s16u8, s32, s16, s16, u8) \
    K(jorma__mla_c1_s32s16s16s16, s32, s16, s16, s16) \
    K(jorma__mla_c1_s32s16s16s32, s32, s16, s16, s32) \
    K(jorma__mla_c1_s32s32u8s32, s32, s32, u8, s32) \
    K(jorma__mla_c1_s32s32s16s32, s32, s32, s16, s32) \
    K(jorma__mla_c1_s32s32s32s32, s32, s32, s32, s32) \
    K(jorma__mla_c1_f32f32f32f32, f32, f32, f32, f32) \
    K(jorma__mla_c1_f32f32f32s32, f32, f32, f32, s32) \
    K(jorma__mla_c1_f32f32f32s16, f32, f32, f32, s16) \
    K(jorma__mla_c1_f32f32f32u8, f32, f32, f32, u8) \
    K(jorma__mla_c1_f32f32s32f32, f32, f32, s32, f32) \
    K(jorma__mla_c1_f32f32s16f32, f32, f32, s16, f32) \
    K(jorma__mla_c1_f32f32u8f32, f32, f32, u8, f32) \
    K(jorma__mla_c1_f32s32s32f32, f32, s32, s32, f32) \
    K(jorma__mla_c1_f32s16s16f32, f32, s16, s16, f32) \
    K(jorma__mla_c1_f32s16s16s16, f32, s16, s16, s16) \
    K(jorma__mla_c1_f32u8u8f32, f32, u8, u8, f32) \
    K(jorma__mla_c1_f32u8u8u8, f32, u8, u8, u8)

#define JORM_MLS_KERNELS(K) \
    K(jorma__mls_c1_u8u8u8u8, u8, u8, u8, u8) \
    K(jorma__mls_c1_u8u8u8s16, u8, u8, u8, s16) \
    K(jorma__mls_c1_u8s16u8u8, u8, s16, u8, u8) \
    K(jorma__mls_c1_u8s16u8s16, u8, s16, u8, s16) \
    K(jorma__mls_c1_u8s16s16u8, u8, s16, s16, u8) \
    K(jorma__mls_c1_u8s16s16s16, u8, s16, s16, s16) \
    K(jorma__mls_c1_s16u8u8u8, s16, u8, u8, u8) \
    K(jorma__mls_c1_s16u8u8s16, s16, u8, u8, s16) \
    K(jorma__mls_c1_s16s16u8u8, s16, s16, u8, u8) \
    K(jorma__mls_c1_s16s16u8s16, s16, s16, u8, s16) \
    K(jorma__mls_c1_s16s16s16u8, s16, s16, s16, u8) \
    K(jorma__mls_c1_s16s16s16s16, s16, s16, s16, s16) \
    K(jorma__mls_c1_s32u8u8u8, s32, u8, u8, u8) \
    K(jorma__mls_c1_s32u8u8s16, s32, u8, u8, s16) \
    K(jorma__mls_c1_s32u8u8s32, s32, u8, u8, s32) \
    K(jorma__mls_c1_s32s16u8u8, s32, s16, u8, u8) \
    K(jorma__mls_c1_s32s16u8s16, s32, s16, u8, s16) \
    K(jorma__mls_c1_s32s16u8s32, s32, s16, u8, s32) \
    K(jorma__mls_c1_s32s16s16u8, s32, s16, s16, u8) \
    K(jorma__mls_c1_s32s16s16s16, s32, s16, s16, s16) \
    K(jorma__mls_c1_s32s16s16s32, s32, s16, s16, s32) \
    K(jorma__mls_c1_s32s32u8s32, s32, s32, u8, s32) \
    K(jorma__mls_c1_s32s32s16s32, s32, s32, s16, s32) \
    K(jorma__mls_c1_s32s32s32s32, s32, s32, s32, s32) \
    K(jorma__mls_c1_f32f32f32f32, f32, f32, f32, f32) \
    K(jorma__mls_c1_f32f32f32s32, f32, f32, f32, s32) \
    K(jorma__mls_c1_f32f32f32s16, f32, f32, f32, s16) \
    K(jorma__mls_c1_f32f32f32u8, f32, f32, f32, u8) \
    K(jorma__mls_c1_f32f32s32f32, f32, f32, s32, f32) \
    K(jorma__mls_c1_f32f32s16f32, f32, f32, s16, f32) \
    K(jorma__mls_c1_f32f32u8f32, f32, f32, u8, f32) \
    K(jorma__mls_c1_f32s32s32f32, f32, s32, s32, f32) \
    K(jorma__mls_c1_f32s16s16f32, f32, s16, s16, f32) \
    K(jorma__mls_c1_f32s16s16s16, f32, s16, s16, s16) \
    K(jorma__mls_c1_f32u8u8f32, f32, u8, u8, f32) \
    K(jorma__mls_c1_f32u8u8u8, f32, u8, u8, u8)

#define JORM_MLA_C_KERNELS(K) \
    K(jorma__mlaC_c1_u8u8u8s32, u8, u8, u8, s32) \
    K(jorma__mlaC_c1_u8u8s16s32, u8, u8, s16, s32) \
    K(jorma__mlaC_c1_u8s16u8s32, u8, s16, u8, s32) \
    K(jorma__mlaC_c1_u8s16s16s32, u8, s16, s16, s32) \
    K(jorma__mlaC_c1_s16u8u8s32, s16, u8, u8, s32) \
    K(jorma__mlaC_c1_s16u8s16s32, s16, u8, s16, s32) \
    K(jorma__mlaC_c1_s16s16u8s32, s16, s16, u8, s32) \
    K(jorma__mlaC_c1_s16s16s16s32, s16, s16, s16, s32) \
    K(jorma__mlaC_c1_s32u8u8s32, s32, u8, u8, s32) \
    K(jorma__mlaC_c1_s32u8s16s32, s32, u8, s16, s32) \
    K(jorma__mlaC_c1_s32u8s32s32, s32, u8, s32, s32) \
    K(jorma__mlaC_c1_s32s16u8s32, s32, s16, u8, s32) \
    K(jorma__mlaC_c1_s32s16s16s32, s32, s16, s16, s32) \
    K(jorma__mlaC_c1_s32s16s32s32, s32, s16, s32, s32) \
    K(jorma__mlaC_c1_s32s32u8s32, s32, s32, u8, s32) \
    K(jorma__mlaC_c1_s32s32s16s32, s32, s32, s16, s32) \
    K(jorma__mlaC_c1_s32s32s32s32, s32, s32, s32, s32) \
    K(jorma__mlaC_c1_f32u8u8f32, f32, u8, u8, f32) \
    K(jorma__mlaC_c1_f32u8s16f32, f32, u8, s16, f32) \
    K(jorma__mlaC_c1_f32u8s32f32, f32, u8, s32, f32) \
    K(jorma__mlaC_c1_f32u8f32f32, f32, u8, f32, f32) \
    K(jorma__mlaC_c1_f32s16u8f32, f32, s16, u8, f32) \
    K(jorma__mlaC_c1_f32s16s16f32, f32, s16, s16, f32) \
    K(jorma__mlaC_c1_f32s16s32f32, f32, s16, s32, f32) \
    K(jorma__mlaC_c1_f32s16f32f32, f32, s16, f32, f32) \
    K(jorma__mlaC_c1_f32s32u8f32, f32, s32, u8, f32) \
    K(jorma__mlaC_c1_f32s32s16f32, f32, s32, s16, f32) \
    K(jorma__mlaC_c1_f32s32s32f32, f32, s32, s32, f32) \
    K(jorma__mlaC_c1_f32s32f32f32, f32, s32, f32, f32) \
    K(jorma__mlaC_c1_f32f32u8f32, f32, f32, u8, f32) \
    K(jorma__mlaC_c1_f32f32s16f32, f32, f32, s16, f32) \
    K(jorma__mlaC_c1_f32f32s32f32, f32, f32, s32, f32) \
    K(jorma__mlaC_c1_f32f32f32f32, f32, f32, f32, f32) \
    K(jorma__mlaC_c1_u8u8u8f32, u8, u8, u8, f32) \
    K(jorma__mlaC_c1_s16s16s16f32, s16, s16, s16, f32) \
    K(jorma__mlaC_c1_s32s32s32f64, s32, s32, s32, f64) \
    K(jorma__mlaC_c1_f32f32f32f64, f32, f32, f32, f64)

#define JORM_MLS_C_KERNELS(K) \
    K(jorma__mlsC_c1_u8u8u8s32, u8, u8, u8, s32) \
    K(jorma__mlsC_c1_u8u8s16s32, u8, u8, s16, s32) \
    K(jorma__mlsC_c1_u8s16u8s32, u8, s16, u8, s32) \
    K(jorma__mlsC_c1_u8s16s16s32, u8, s16, s16, s32) \
    K(jorma__mlsC_c1_s16u8u8s32, s16, u8, u8, s32) \
    K(jorma__mlsC_c1_s16u8s16s32, s16, u8, s16, s32) \
    K(jorma__mlsC_c1_s16s16u8s32, s16, s16, u8, s32) \
    K(jorma__mlsC_c1_s16s16s16s32, s16, s16, s16, s32) \
    K(jorma__mlsC_c1_s32u8u8s32, s32, u8, u8, s32) \
    K(jorma__mlsC_c1_s32u8s16s32, s32, u8, s16, s32) \
    K(jorma__mlsC_c1_s32u8s32s32, s32, u8, s32, s32) \
    K(jorma__mlsC_c1_s32s16u8s32, s32, s16, u8, s32) \
    K(jorma__mlsC_c1_s32s16s16s32, s32, s16, s16, s32) \
    K(jorma__mlsC_c1_s32s16s32s32, s32, s16, s32, s32) \
    K(jorma__mlsC_c1_s32s32u8s32, s32, s32, u8, s32) \
    K(jorma__mlsC_c1_s32s32s16s32, s32, s32, s16, s32) \
    K(jorma__mlsC_c1_s32s32s32s32, s32, s32, s32, s32) \
    K(jorma__mlsC_c1_f32u8u8f32, f32, u8, u8, f32) \
    K(jorma__mlsC_c1_f32u8s16f32, f32, u8, s16, f32) \
    K(jorma__mlsC_c1_f32u8s32f32, f32, u8, s32, f32) \
    K(jorma__mlsC_c1_f32u8f32f32, f32, u8, f32, f32) \
    K(jorma__mlsC_c1_f32s16u8f32, f32, s16, u8, f32) \
    K(jorma__mlsC_c1_f32s16s16f32, f32, s16, s16, f32) \
    K(jorma__mlsC_c1_f32s16s32f32, f32, s16, s32, f32) \
    K(jorma__mlsC_c1_f32s16f32f32, f32, s16, f32, f32) \
    K(jorma__mlsC_c1_f32s32u8f32, f32, s32, u8, f32) \
    K(jorma__mlsC_c1_f32s32s16f32, f32, s32, s16, f32) \
    K(jorma__mlsC_c1_f32s32s32f32, f32, s32, s32, f32) \
    K(jorma__mlsC_c1_f32s32f32f32, f32, s32, f32, f32) \
    K(jorma__mlsC_c1_f32f32u8f32, f32, f32, u8, f32) \
    K(jorma__mlsC_c1_f32f32s16f32, f32, f32, s16, f32) \
    K(jorma__mlsC_c1_f32f32s32f32, f32, f32, s32, f32) \
    K(jorma__mlsC_c1_f32f32f32f32, f32, f32, f32, f32) \
    K(jorma__mlsC_c1_u8u8u8f32, u8, u8, u8, f32) \
    K(jorma__mlsC_c1_s16s16s16f32, s16, s16, s16, f32) \
    K(jorma__mlsC_c1_s32s32s32f64, s32, s32, s32, f64) \
    K(jorma__mlsC_c1_f32f32f32f64, f32, f32, f32, f64)

#define JORM_MLA_CC_KERNELS(K) \
    K(jorma__mlaCC_c1_f32f32f32f32, f32, f32, f32, f32) \
    K(jorma__mlaCC_c1_f32s16s16s16, f32, s16, s16, s16) \
    K(jorma__mlaCC_c1_f32s32s32s32, f32, s32, s32, s32) \
    K(jorma__mlaCC_c1_f32u8u8u8, f32, u8, u8, u8) \
    K(jorma__mlaCC_c1_s16f32f32f32, s16, f32, f32, f32) \
    K(jorma__mlaCC_c1_s16s16s16s16, s16, s16, s16, s16) \
    K(jorma__mlaCC_c1_s16s32s32s32, s16, s32, s32, s32) \
    K(jorma__mlaCC_c1_s16u8u8u8, s16, u8, u8, u8) \
    K(jorma__mlaCC_c1_s32f32f32f32, s32, f32, f32, f32) \
    K(jorma__mlaCC_c1_s32s16s16s16, s32, s16, s16, s16) \
    K(jorma__mlaCC_c1_s32s32s32s32, s32, s32, s32, s32) \
    K(jorma__mlaCC_c1_s32u8u8u8, s32, u8, u8, u8) \
    K(jorma__mlaCC_c1_u8f32f32f32, u8, f32, f32, f32) \
    K(jorma__mlaCC_c1_u8s16s16s16, u8, s16, s16, s16) \
    K(jorma__mlaCC_c1_u8s32s32s32, u8, s32, s32, s32) \
    K(jorma__mlaCC_c1_u8u8u8u8, u8, u8, u8, u8)

#define JORM_MLS_CC_KERNELS(K) \
    K(jorma__mlsCC_c1_f32f32f32f32, f32, f32, f32, f32) \
    K(jorma__mlsCC_c1_f32s16s16s16, f32, s16, s16, s16) \
    K(jorma__mlsCC_c1_f32s32s32s32, f32, s32, s32, s32) \
    K(jorma__mlsCC_c1_f32u8u8u8, f32, u8, u8, u8) \
    K(jorma__mlsCC_c1_s16f32f32f32, s16, f32, f32, f32) \
    K(jorma__mlsCC_c1_s16s16s16s16, s16, s16, s16, s16) \
    K(jorma__mlsCC_c1_s16s32s32s32, s16, s32, s32, s32) \
    K(jorma__mlsCC_c1_s16u8u8u8, s16, u8, u8, u8) \
    K(jorma__mlsCC_c1_s32f32f32f32, s32, f32, f32, f32) \
    K(jorma__mlsCC_c1_s32s16s16s16, s32, s16, s16, s16) \
    K(jorma__mlsCC_c1_s32s32s32s32, s32, s32, s32, s32) \
    K(jorma__mlsCC_c1_s32u8u8u8, s32, u8, u8, u8) \
    K(jorma__mlsCC_c1_u8f32f32f32, u8, f32, f32, f32) \
    K(jorma__mlsCC_c1_u8s16s16s16, u8, s16, s16, s16) \
    K(jorma__mlsCC_c1_u8s32s32s32, u8, s32, s32, s32) \
    K(jorma__mlsCC_c1_u8u8u8u8, u8, u8, u8, u8)

#define JORM_NEG_KERNELS(K) \
    K(jorma__neg_c1_f32f32, f32, f32) \
    K(jorma__neg_c1_f32s16, f32, s16) \
    K(jorma__neg_c1_f32s32, f32, s32) \
    K(jorma__neg_c1_f32u8, f32, u8) \
    K(jorma__neg_c1_s16f32, s16, f32) \
    K(jorma__neg_c1_s16s16, s16, s16) \
    K(jorma__neg_c1_s16s32, s16, s32) \
    K(jorma__neg_c1_s16u8, s16, u8) \
    K(jorma__neg_c1_s32f32, s32, f32) \
    K(jorma__neg_c1_s32s16, s32, s16) \
    K(jorma__neg_c1_s32s32, s32, s32) \
    K(jorma__neg_c1_s32u8, s32, u8) \
    K(jorma__neg_c1_u8f32, u8, f32) \
    K(jorma__neg_c1_u8s16, u8, s16) \
    K(jorma__neg_c1_u8s32, u8, s32) \
    K(jorma__neg_c1_u8u8, u8, u8)

#define JORM_NEGQ_KERNELS(K) \
    K(jorma__negq_c1_s16s16, s16, s16) \
    K(jorma__negq_c1_s16s32, s16, s32) \
    K(jorma__negq_c1_s32s32, s32, s32) \
    K(jorma__negq_c1_u8s16, u8, s16) \
    K(jorma__negq_c1_u8s32, u8, s32)

#define JORM_SQR_KERNELS(K) \
    K(jorma__sqr_c1_f32f32, f32, f32) \
    K(jorma__sqr_c1_f32s16, f32, s16) \
    K(jorma__sqr_c1_f32s32, f32, s32) \
    K(jorma__sqr_c1_f32u8, f32, u8) \
    K(jorma__sqr_c1_s16s16, s16, s16) \
    K(jorma__sqr_c1_s16u8, s16, u8) \
    K(jorma__sqr_c1_s32f32, s32, f32) \
    K(jorma__sqr_c1_s32s16, s32, s16) \
    K(jorma__sqr_c1_s32s32, s32, s32) \
    K(jorma__sqr_c1_s32u8, s32, u8) \
    K(jorma__sqr_c1_u8s16, u8, s16) \
    K(jorma__sqr_c1_u8u8, u8, u8)

#define JORM_NOT_KERNELS(K) \
    K(jorma__not_c1_s16s16, s16, s16) \
    K(jorma__not_c1_s32s32, s32, s32) \
    K(jorma__not_c1_u8u8, u8, u8)
