#include "kernel/level_ops.hpp"
#include "stats/boxcount_rows.hpp"

namespace jorm::JORM_LEVEL {
namespace {

template <class T> void least(void *dst, const void *const *src, int64_t n, const RowParams &) {
    T *__restrict const d = elements<T>(dst);
    const T *const a = elements<T>(src[0]);
    for (int64_t i = 0; i < n; ++i) d[i] = a[i] < d[i] ? a[i] : d[i];
}

template <class T> void largest_of(void *dst, const void *const *src, int64_t n, const RowParams &) {
    T *__restrict const d = elements<T>(dst);
    const T *const a = elements<T>(src[0]);
    for (int64_t i = 0; i < n; ++i) d[i] = a[i] > d[i] ? a[i] : d[i];
}

} // namespace

extern const BoxRows box_rows[];
const BoxRows box_rows[] = {{{least<u8>, least<s16>, least<s32>, least<f32>},
                             {largest_of<u8>, largest_of<s16>, largest_of<s32>, largest_of<f32>}}};

} // namespace jorm::JORM_LEVEL
