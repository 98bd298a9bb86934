// The lookup keys of the kernel lists: the types of the destination and the sources, four bits each.
#pragma once
#include "arith/kernels/families.hpp"
#include "jorm/types.h"

namespace jorm::keys {

constexpr uint32_t u8 = JORM_U8, s8 = JORM_S8, s16 = JORM_S16, s32 = JORM_S32, f32 = JORM_F32;

template <class... T> constexpr uint32_t key(T... types) {
    uint32_t k = 0;
    ((k = k << 4 | types), ...);
    return k;
}

#define JORM_KEY_UNARY(name, D, A) key(D, A),
#define JORM_KEY_BINARY(name, D, A, B) key(D, A, B),
#define JORM_KEY_TERNARY(name, D, A, B, C) key(D, A, B, C),
#define JORM_KEY_CONSTANT(name, D, A, K) key(D, A),
#define JORM_KEY_CHANNELED(name, channels, D, A) key(D, A),
#define JORM_KEY_CONSTANT2(name, D, A, B, K) key(D, A, B),
#define JORM_KEY_CONSTANTS(name, D, A, K1, K2) key(D, A),

#define JORM_KEYS(family, list, shape, ...) constexpr uint32_t family[] = {list(JORM_KEY_##shape)};
JORM_FAMILIES(JORM_KEYS)
#undef JORM_KEYS

template <int N> constexpr int line_of(const uint32_t (&list)[N], uint32_t k) {
    for (int i = 0; i < N; ++i)
        if (list[i] == k) return i;
    return -1;
}

} // namespace jorm::keys
