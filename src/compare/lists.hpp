// Every typed kernel that is exported, by family: K(name, destination type, source type). By destination, then by
// source, as compare_line() counts.
#pragma once

#define JORM_COMPARE_KERNELS(K)                                                                                        \
    K(_jorma__compare_u8u8, u8, u8)                                                                                    \
    K(_jorma__compare_u8s8, u8, s8)                                                                                    \
    K(_jorma__compare_u8s16, u8, s16)                                                                                  \
    K(_jorma__compare_u8s32, u8, s32)                                                                                  \
    K(_jorma__compare_u8f32, u8, f32)                                                                                  \
    K(_jorma__compare_s16u8, s16, u8)                                                                                  \
    K(_jorma__compare_s16s8, s16, s8)                                                                                  \
    K(_jorma__compare_s16s16, s16, s16)                                                                                \
    K(_jorma__compare_s16s32, s16, s32)                                                                                \
    K(_jorma__compare_s16f32, s16, f32)                                                                                \
    K(_jorma__compare_s32u8, s32, u8)                                                                                  \
    K(_jorma__compare_s32s8, s32, s8)                                                                                  \
    K(_jorma__compare_s32s16, s32, s16)                                                                                \
    K(_jorma__compare_s32s32, s32, s32)                                                                                \
    K(_jorma__compare_s32f32, s32, f32)

#define JORM_COMPARE_C_KERNELS(K)                                                                                      \
    K(_jorma__compareC_u8u8, u8, u8)                                                                                   \
    K(_jorma__compareC_u8s8, u8, s8)                                                                                   \
    K(_jorma__compareC_u8s16, u8, s16)                                                                                 \
    K(_jorma__compareC_u8s32, u8, s32)                                                                                 \
    K(_jorma__compareC_u8f32, u8, f32)                                                                                 \
    K(_jorma__compareC_s16u8, s16, u8)                                                                                 \
    K(_jorma__compareC_s16s8, s16, s8)                                                                                 \
    K(_jorma__compareC_s16s16, s16, s16)                                                                               \
    K(_jorma__compareC_s16s32, s16, s32)                                                                               \
    K(_jorma__compareC_s16f32, s16, f32)                                                                               \
    K(_jorma__compareC_s32u8, s32, u8)                                                                                 \
    K(_jorma__compareC_s32s8, s32, s8)                                                                                 \
    K(_jorma__compareC_s32s16, s32, s16)                                                                               \
    K(_jorma__compareC_s32s32, s32, s32)                                                                               \
    K(_jorma__compareC_s32f32, s32, f32)

#define JORM_ECOMPARE_KERNELS(K)                                                                                       \
    K(_jorma__ecompare_u8u8, u8, u8)                                                                                   \
    K(_jorma__ecompare_u8s8, u8, s8)                                                                                   \
    K(_jorma__ecompare_u8s16, u8, s16)                                                                                 \
    K(_jorma__ecompare_u8s32, u8, s32)                                                                                 \
    K(_jorma__ecompare_u8f32, u8, f32)                                                                                 \
    K(_jorma__ecompare_s16u8, s16, u8)                                                                                 \
    K(_jorma__ecompare_s16s8, s16, s8)                                                                                 \
    K(_jorma__ecompare_s16s16, s16, s16)                                                                               \
    K(_jorma__ecompare_s16s32, s16, s32)                                                                               \
    K(_jorma__ecompare_s16f32, s16, f32)                                                                               \
    K(_jorma__ecompare_s32u8, s32, u8)                                                                                 \
    K(_jorma__ecompare_s32s8, s32, s8)                                                                                 \
    K(_jorma__ecompare_s32s16, s32, s16)                                                                               \
    K(_jorma__ecompare_s32s32, s32, s32)                                                                               \
    K(_jorma__ecompare_s32f32, s32, f32)                                                                               \
    K(_jorma__ecompare_f32f32, f32, f32)

#define JORM_ECOMPARE_C_KERNELS(K)                                                                                     \
    K(_jorma__ecompareC_u8u8, u8, u8)                                                                                  \
    K(_jorma__ecompareC_u8s8, u8, s8)                                                                                  \
    K(_jorma__ecompareC_u8s16, u8, s16)                                                                                \
    K(_jorma__ecompareC_u8s32, u8, s32)                                                                                \
    K(_jorma__ecompareC_u8f32, u8, f32)                                                                                \
    K(_jorma__ecompareC_s16u8, s16, u8)                                                                                \
    K(_jorma__ecompareC_s16s8, s16, s8)                                                                                \
    K(_jorma__ecompareC_s16s16, s16, s16)                                                                              \
    K(_jorma__ecompareC_s16s32, s16, s32)                                                                              \
    K(_jorma__ecompareC_s16f32, s16, f32)                                                                              \
    K(_jorma__ecompareC_s32u8, s32, u8)                                                                                \
    K(_jorma__ecompareC_s32s8, s32, s8)                                                                                \
    K(_jorma__ecompareC_s32s16, s32, s16)                                                                              \
    K(_jorma__ecompareC_s32s32, s32, s32)                                                                              \
    K(_jorma__ecompareC_s32f32, s32, f32)                                                                              \
    K(_jorma__ecompareC_f32f32, f32, f32)
