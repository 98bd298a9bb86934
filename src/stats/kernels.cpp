// The kernels of sums and extrema under their names, and their lookups.
#include "stats/gather.hpp"

#include <algorithm>

using namespace jorm;

namespace {

constexpr uint32_t u8 = JORM_U8, s16 = JORM_S16, s32 = JORM_S32, f32 = JORM_F32;

// K(kernel, fast kernel, the same under a mask, channels, type), in the order of the channels and types.
#define JORM_SUM_KERNELS(K)                                                                                            \
    K(jorma__sum_c1_u8, jorma__fastsum_c1_u8, jorma__sum_xm_c1_u8, jorma__fastsum_xm_c1_u8, 1, u8)                     \
    K(jorma__sum_c1_s16, jorma__fastsum_c1_s16, jorma__sum_xm_c1_s16, jorma__fastsum_xm_c1_s16, 1, s16)                \
    K(jorma__sum_c1_s32, jorma__fastsum_c1_s32, jorma__sum_xm_c1_s32, jorma__fastsum_xm_c1_s32, 1, s32)                \
    K(jorma__sum_c1_f32, jorma__fastsum_c1_f32, jorma__sum_xm_c1_f32, jorma__fastsum_xm_c1_f32, 1, f32)                \
    K(jorma__sum_c3_u8, jorma__fastsum_c3_u8, jorma__sum_xm_c3_u8, jorma__fastsum_xm_c3_u8, 3, u8)                     \
    K(jorma__sum_c3_s16, jorma__fastsum_c3_s16, jorma__sum_xm_c3_s16, jorma__fastsum_xm_c3_s16, 3, s16)                \
    K(jorma__sum_c3_s32, jorma__fastsum_c3_s32, jorma__sum_xm_c3_s32, jorma__fastsum_xm_c3_s32, 3, s32)                \
    K(jorma__sum_c3_f32, jorma__fastsum_c3_f32, jorma__sum_xm_c3_f32, jorma__fastsum_xm_c3_f32, 3, f32)                \
    K(jorma__sum_c4_u8, jorma__fastsum_c4_u8, jorma__sum_xm_c4_u8, jorma__fastsum_xm_c4_u8, 4, u8)                     \
    K(jorma__sum_c4_s16, jorma__fastsum_c4_s16, jorma__sum_xm_c4_s16, jorma__fastsum_xm_c4_s16, 4, s16)                \
    K(jorma__sum_c4_s32, jorma__fastsum_c4_s32, jorma__sum_xm_c4_s32, jorma__fastsum_xm_c4_s32, 4, s32)                \
    K(jorma__sum_c4_f32, jorma__fastsum_c4_f32, jorma__sum_xm_c4_f32, jorma__fastsum_xm_c4_f32, 4, f32)

// K(kernel, channels, type).
#define JORM_MINMAX_KERNELS(K)                                                                                         \
    K(jorma__minmax_c1_u8, 1, u8)                                                                                      \
    K(jorma__minmax_c1_s16, 1, s16)                                                                                    \
    K(jorma__minmax_c1_s32, 1, s32)                                                                                    \
    K(jorma__minmax_c1_f32, 1, f32)                                                                                    \
    K(jorma__minmax_c3_u8, 3, u8)                                                                                      \
    K(jorma__minmax_c3_s16, 3, s16)                                                                                    \
    K(jorma__minmax_c3_s32, 3, s32)                                                                                    \
    K(jorma__minmax_c3_f32, 3, f32)                                                                                    \
    K(jorma__minmax_c4_u8, 4, u8)                                                                                      \
    K(jorma__minmax_c4_s16, 4, s16)                                                                                    \
    K(jorma__minmax_c4_s32, 4, s32)                                                                                    \
    K(jorma__minmax_c4_f32, 4, f32)
#define JORM_MINMAX_XM_KERNELS(K)                                                                                      \
    K(jorma__minmax_xm_c1_u8, 1, u8)                                                                                   \
    K(jorma__minmax_xm_c1_s16, 1, s16)                                                                                 \
    K(jorma__minmax_xm_c1_s32, 1, s32)                                                                                 \
    K(jorma__minmax_xm_c1_f32, 1, f32)

// The kernel among `kernels`, and the status of calling it; other_type is that of well-formed types without one.
template <class Kernel, size_t N>
jorm_proc *look_up(Kernel *const (&procs)[N], uint32_t code, uint32_t type, int32_t other_type, int32_t *status) {
    const int32_t channels = (code & 15) == 12 ? 4 : stored_channels(code & 15);
    const int line = stat_line(type), group = channels == 1 ? 0 : channels == 3 ? 1 : channels == 4 ? 2 : -1;
    int32_t outcome = JORM_OK;
    if (channels < 1 || channels > 4 || !well_formed(type))
        outcome = JORM_EINVAL;
    else if (line < 0)
        outcome = other_type;
    else if (group < 0 || size_t(group) * 4 + size_t(line) >= N)
        outcome = JORM_ENOTSUP;
    if (status) *status = outcome;
    return outcome == JORM_OK       ? to_proc(procs[group * 4 + line])
           : outcome == JORM_EINVAL ? jorma_proc_einval
                                    : jorma_proc_enotsup;
}

bool fast(uint64_t options) { return (options & JORM_OPT_FAST) != 0; }

} // namespace

#define LEAD jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const void *data, const int32_t *stride
#define MASK const void *mask, const int32_t *mask_stride
#define PLAIN(name, run, Result, channels, T)                                                                          \
    JORM_API int64_t name(LEAD, Result *results) {                                                                     \
        return run({xe, options, word, size, operand(T, data, stride), false, {}, channels}, results);                 \
    }
#define MASKED(name, run, Result, channels, T)                                                                         \
    JORM_API int64_t name(LEAD, MASK, Result *results) {                                                               \
        return run(                                                                                                    \
            {xe, options, word, size, operand(T, data, stride), true, operand(u8, mask, mask_stride), channels},       \
            results);                                                                                                  \
    }
#define SUM(name, fast_name, xm_name, fast_xm_name, channels, T)                                                       \
    PLAIN(name, sum, double, channels, T)                                                                              \
    PLAIN(fast_name, sum, double, channels, T)                                                                         \
    MASKED(xm_name, masked_sum, double, channels, T)                                                                   \
    MASKED(fast_xm_name, masked_sum, double, channels, T)
JORM_SUM_KERNELS(SUM)

static int64_t extrema_from_start(const StatSource &s, jorm_minmax *record) { return extrema(s, record, nullptr); }
static int64_t masked_extrema_from_start(const StatSource &s, jorm_minmax *record) {
    return masked_extrema(s, record, nullptr);
}
#define MINMAX(name, channels, T) PLAIN(name, extrema_from_start, jorm_minmax, channels, T)
#define MINMAX_XM(name, channels, T) MASKED(name, masked_extrema_from_start, jorm_minmax, channels, T)
JORM_MINMAX_KERNELS(MINMAX)
JORM_MINMAX_XM_KERNELS(MINMAX_XM)

JORM_API jorm_proc *jorma__sumfun_imp(uint64_t options, uint32_t code, uint32_t type, int32_t *status) {
#define PROC(name, fast_name, xm_name, fast_xm_name, channels, T) name,
#define FAST_PROC(name, fast_name, xm_name, fast_xm_name, channels, T) fast_name,
    static constexpr jorm_sum_kernel *plain[] = {JORM_SUM_KERNELS(PROC)}, *quick[] = {JORM_SUM_KERNELS(FAST_PROC)};
    return look_up(fast(options) ? quick : plain, code, type, JORM_EINVAL, status);
}
JORM_API jorm_proc *jorma__sumfunxm_imp(uint64_t options, uint32_t code, uint32_t type, int32_t *status) {
#define XM_PROC(name, fast_name, xm_name, fast_xm_name, channels, T) xm_name,
#define FAST_XM_PROC(name, fast_name, xm_name, fast_xm_name, channels, T) fast_xm_name,
    static constexpr jorm_sum_xm_kernel *plain[] = {JORM_SUM_KERNELS(XM_PROC)},
                                        *quick[] = {JORM_SUM_KERNELS(FAST_XM_PROC)};
    return look_up(fast(options) ? quick : plain, code, type, JORM_EINVAL, status);
}
#define MINMAX_PROC(name, channels, T) name,
JORM_API jorm_proc *jorma__minmaxfun_imp(uint64_t, uint32_t code, uint32_t type, int32_t *status) {
    static constexpr jorm_minmax_kernel *procs[] = {JORM_MINMAX_KERNELS(MINMAX_PROC)};
    return look_up(procs, code, type, JORM_ENOTSUP, status);
}
JORM_API jorm_proc *jorma__minmaxfunxm_imp(uint64_t, uint32_t code, uint32_t type, int32_t *status) {
    static constexpr jorm_minmax_xm_kernel *procs[] = {JORM_MINMAX_XM_KERNELS(MINMAX_PROC)};
    return look_up(procs, code, type, JORM_ENOTSUP, status);
}
