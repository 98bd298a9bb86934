// The plain conversions between different types: K(kernel, destination type, source type).
#pragma once

#define JORM_CONVERSIONS(K) \
    K(_jorma__tconvert_u8s16, u8, s16) \
    K(_jorma__tconvert_u8s32, u8, s32) \
    K(_jorma__tconvert_u8f32, u8, f32) \
    K(_jorma__tconvert_s16u8, s16, u8) \
    K(_jorma__tconvert_s16s32, s16, s32) \
    K(_jorma__tconvert_s16f32, s16, f32) \
    K(_jorma__tconvert_s32u8, s32, u8) \
    K(_jorma__tconvert_s32s16, s32, s16) \
    K(_jorma__tconvert_s32f32, s32, f32) \
    K(_jorma__tconvert_f32u8, f32, u8) \
    K(_jorma__tconvert_f32s16, f32, s16) \
    K(_jorma__tconvert_f32s32, f32, s32)

// The conversions from range to range: K(kernel, destination type, source type).
#define JORM_RANGE_CONVERSIONS(K) \
    K(_jorma__vscale_u8, u8, u8) \
    K(_jorma__vconvert_u8s16, u8, s16) \
    K(_jorma__vconvert_u8s32, u8, s32) \
    K(_jorma__vconvert_u8f32, u8, f32) \
    K(_jorma__vconvert_s16u8, s16, u8) \
    K(_jorma__vscale_s16, s16, s16) \
    K(_jorma__vconvert_s16s32, s16, s32) \
    K(_jorma__vconvert_s16f32, s16, f32) \
    K(_jorma__vconvert_s32u8, s32, u8) \
    K(_jorma__vconvert_s32s16, s32, s16) \
    K(_jorma__vscale_s32, s32, s32) \
    K(_jorma__vconvert_s32f32, s32, f32) \
    K(_jorma__vconvert_f32u8, f32, u8) \
    K(_jorma__vconvert_f32s16, f32, s16) \
    K(_jorma__vconvert_f32s32, f32, s32) \
    K(_jorma__vscale_f32, f32, f32)
