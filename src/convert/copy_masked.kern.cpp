// Rows under a mask. The mask is the last source; it selects where it differs from 0, inverted from 255. Sources may be
// the destination itself: no element depends on another one.
#include "convert/copy_masked.hpp"
#include "kernel/level_ops.hpp"

#ifdef JORM_LEVEL_avx512
#include <immintrin.h>
#endif

namespace jorm::JORM_LEVEL {
namespace {

using u16 = uint16_t;
using u32 = uint32_t;
using u64 = uint64_t;

constexpr int64_t near_block = 64; // elements
constexpr int64_t far_block = 256; // bytes

// How much of a block the mask selects; `some` may also mean all.
enum class Patch { none, some, all };
template <u8 skip> [[gnu::always_inline]] inline Patch patch(const u8 *m) {
#ifdef JORM_LEVEL_avx512
    const auto selected = _mm512_cmpneq_epi8_mask(_mm512_loadu_si512(m), _mm512_set1_epi8(char(skip)));
    return selected == 0 ? Patch::none : ~selected == 0 ? Patch::all : Patch::some;
#else
    u64 word[near_block / 8], any = 0;
    __builtin_memcpy(word, m, sizeof word);
    for (u64 w : word) any |= skip ? ~w : w;
    return any == 0 ? Patch::none : Patch::some;
#endif
}

// What selected elements get.
template <class T> struct Source {
    const T *s;
    T operator()(int64_t i) const { return s[i]; }
    [[gnu::always_inline]] void prefetch(const T *d, const u8 *m, int64_t i) const {
        constexpr int64_t ahead = 1024 / int64_t(sizeof(T)), line = 64 / int64_t(sizeof(T));
        for (int k = 0; k < far_block / 64; ++k) {
            __builtin_prefetch(m + i + ahead + line * k);
            __builtin_prefetch(s + i + ahead + line * k);
            __builtin_prefetch(d + i + ahead + line * k);
        }
    }
};
template <class T> struct Value {
    T value;
    T operator()(int64_t) const { return value; }
};

// d[i] = m[i] selects ? in(i) : d[i], for `from` <= i < `to`.
template <u8 skip, class T, class In>
[[gnu::always_inline]] inline void update(T *d, const u8 *m, int64_t from, int64_t to, In in) {
#pragma GCC ivdep
    for (int64_t i = from; i < to; ++i) {
        const T x = in(i), y = d[i];
        d[i] = m[i] != skip ? x : y;
    }
}

// Masks come in patches: in the cache it pays to look at them first.
template <u8 skip, class T, class In>
[[gnu::always_inline]] inline int64_t update_near(T *d, const u8 *m, int64_t i, int64_t n, In in) {
    for (; i + near_block <= n; i += near_block) switch (patch<skip>(m + i)) {
        case Patch::all:
#pragma GCC ivdep
            for (int64_t k = i; k < i + near_block; ++k) d[k] = in(k);
            break;
        case Patch::some:
            update<skip>(d, m, i, i + near_block, in);
            break;
        case Patch::none:
            break;
        }
    return i;
}

// From memory it pays to ask for what comes and, where a block fits into registers, to read all of it before it is
// written.
template <u8 skip, class T, class In>
[[gnu::always_inline]] inline int64_t update_far(T *d, const u8 *m, int64_t i, int64_t n, In in) {
    constexpr int64_t count = far_block / int64_t(sizeof(T));
    for (; i + count <= n; i += count) {
        in.prefetch(d, m, i);
#ifdef JORM_LEVEL_avx512
        T block[count];
        for (int64_t k = 0; k < count; ++k) {
            const T x = in(i + k), y = d[i + k];
            block[k] = m[i + k] != skip ? x : y;
        }
        for (int64_t k = 0; k < count; ++k) d[i + k] = block[k];
#else
        update<skip>(d, m, i, i + count, in);
#endif
    }
    return i;
}

// Blocks begin at a line of the destination.
template <class T, bool Inverted, bool Far, class In>
[[gnu::always_inline]] inline void update(void *dst, const void *mask, int64_t n, In in) {
    constexpr u8 skip = Inverted ? 255 : 0;
    T *const d = elements<T>(dst);
    const u8 *const m = elements<u8>(mask);
    const int64_t before = int64_t(-reinterpret_cast<uintptr_t>(dst) & 63) / int64_t(sizeof(T));
    const int64_t head = n < before ? n : before;
    update<skip>(d, m, 0, head, in);
    int64_t i = head;
    if constexpr (Far)
        i = update_far<skip>(d, m, i, n, in);
    else
        i = update_near<skip>(d, m, i, n, in);
    update<skip>(d, m, i, n, in);
}

template <class T, bool Inverted, bool Far> void copy(void *dst, const void *const *src, int64_t n, const RowParams &) {
    update<T, Inverted, Far>(dst, src[1], n, Source<T>{elements<T>(src[0])});
}

// Stores under a mask, where there are any, do not read what they leave: looking first pays everywhere.
template <class T, bool Inverted, bool Far>
void fill(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    const Value<T> value = {T(params.constants[0]->whole[0])};
#ifndef JORM_LEVEL_avx512
    if (Far) return update < Inverted ? 255 : 0 > (elements<T>(dst), elements<u8>(src[0]), 0, n, value);
#endif
    update<T, Inverted, false>(dst, src[0], n, value);
}

// Constants by channel, or one for all of them, in elements.
template <class T, bool Pattern> struct Constant {
    T value[Pattern ? pattern_length : 1];
    explicit Constant(const ConstantPattern *c) {
        for (int i = 0; i < (Pattern ? pattern_length : 1); ++i) value[i] = T(c->whole[i]);
    }
    T at(int64_t i) const { return value[Pattern ? i : 0]; }
};

template <class T, bool Inverted> void fill_pattern(void *dst, const void *const *src, int64_t n, const RowParams &p) {
    constexpr u8 skip = Inverted ? 255 : 0;
    const Constant<T, true> in(p.constants[0]);
    T *d = elements<T>(dst);
    const u8 *m = elements<u8>(src[0]);
    for (; n > 0; n -= pattern_length, d += pattern_length, m += pattern_length)
        for (int64_t i = 0; i < (n < pattern_length ? n : pattern_length); ++i) d[i] = m[i] != skip ? in.at(i) : d[i];
}

template <class T, bool Inverted, bool Pattern>
void choose(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    constexpr u8 skip = Inverted ? 255 : 0;
    const Constant<T, Pattern> in(params.constants[0]), out(params.constants[1]);
    T *d = elements<T>(dst);
    const u8 *m = elements<u8>(src[0]);
    const int64_t step = Pattern ? pattern_length : n;
    for (; n > 0; n -= step, d += step, m += step)
        for (int64_t i = 0; i < (n < step ? n : step); ++i) d[i] = m[i] != skip ? in.at(i) : out.at(i);
}

} // namespace

#define COPIES(T, far) copy<T, false, far>, copy<T, true, far>
#define FILLS(T, far) fill<T, false, far>, fill<T, true, far>
#define PATTERNS(T) fill_pattern<T, false>, fill_pattern<T, true>
#define CHOICES(T, pattern) choose<T, false, pattern>, choose<T, true, pattern>
#define NONE nullptr, nullptr

extern const Row masked_rows[];
const Row masked_rows[] = {
    // In the order of MaskedOp; by element size, plain and inverted.
    COPIES(u8, false),  COPIES(u16, false),  COPIES(u32, false),  COPIES(u64, false), //
    COPIES(u8, true),   COPIES(u16, true),   COPIES(u32, true),   COPIES(u64, true),  //
    FILLS(u8, false),   FILLS(u16, false),   FILLS(u32, false),   NONE,               //
    FILLS(u8, true),    FILLS(u16, true),    FILLS(u32, true),    NONE,               //
    PATTERNS(u8),       PATTERNS(u16),       PATTERNS(u32),       NONE,               //
    CHOICES(u8, false), CHOICES(u16, false), CHOICES(u32, false), NONE,               //
    CHOICES(u8, true),  CHOICES(u16, true),  CHOICES(u32, true),  NONE,
};
static_assert(sizeof masked_rows / sizeof(Row) == masked_row(masked_ops, 0, false));

} // namespace jorm::JORM_LEVEL
