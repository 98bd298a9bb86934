// Rows under a mask. The mask is the last source; it selects where it differs from 0, inverted from 255. Sources may be
// the destination itself: no element depends on another one.
#include "convert/copy_masked.hpp"
#include "kernel/level_vectors.hpp"

namespace jorm::JORM_LEVEL {
namespace {

using u16 = uint16_t;
using u32 = uint32_t;
using u64 = uint64_t;

// What selected elements get.
template <class T> struct Source {
    const T *s;
    T operator()(int64_t i) const { return s[i]; }
};
template <class T> struct Value {
    T value;
    T operator()(int64_t) const { return value; }
};

// d[i] = m[i] selects ? in(i) : d[i], for `from` <= i < `to`.
template <u8 skip, class T, class In>
[[gnu::always_inline]] inline void update(T *d, const u8 *m, int64_t from, int64_t to, In in) {
    JORM_INDEPENDENT
    for (int64_t i = from; i < to; ++i) {
        const T x = in(i), y = d[i];
        d[i] = m[i] != skip ? x : y;
    }
}

#ifdef JORM_LEVEL_avx512
constexpr int64_t block = 64; // elements that one comparison of the mask decides about

// Masks come in patches: in the cache it pays to look for blocks of nothing and of everything.
template <u8 skip, class T, class In>
[[gnu::always_inline]] inline int64_t update_near(T *d, const u8 *m, int64_t i, int64_t n, In in) {
    for (; i + block <= n; i += block) {
        const uint64_t which = bytes_other_than(skip, m + i);
        if (which == 0) continue;
        if (~which == 0) {
            JORM_INDEPENDENT
            for (int64_t k = i; k < i + block; ++k) d[k] = in(k);
        } else
            update<skip>(d, m, i, i + block, in);
    }
    return i;
}

// Values are stored under the mask, which does not read what stays.
template <u8 skip, class T>
[[gnu::always_inline]] inline int64_t update_far(T *d, const u8 *m, int64_t i, int64_t n, Value<T> in) {
    for (; i + block <= n; i += block)
        if (bytes_other_than(skip, m + i) != 0) update<skip>(d, m, i, i + block, in);
    return i;
}
#endif

template <class T, bool Inverted, bool Far, class In>
[[gnu::always_inline]] inline void update(void *dst, const void *mask, int64_t n, In in) {
    constexpr u8 skip = Inverted ? 255 : 0;
    T *const d = elements<T>(dst);
    const u8 *const m = elements<u8>(mask);
    int64_t i = 0;
#ifdef JORM_LEVEL_avx512
    // Blocks begin at a line of the destination.
    const int64_t before = int64_t(-reinterpret_cast<uintptr_t>(dst) & 63) / int64_t(sizeof(T));
    i = n < before ? n : before;
    update<skip>(d, m, 0, i, in);
    if constexpr (!Far)
        i = update_near<skip>(d, m, i, n, in);
    else if constexpr (same<In, Value<T>>)
        i = update_far<skip>(d, m, i, n, in);
        // What comes from memory comes fastest in a loop without branches.
#endif
    update<skip>(d, m, i, n, in);
}

template <class T, bool Inverted, bool Far> void copy(void *dst, const void *const *src, int64_t n, const RowParams &) {
    update<T, Inverted, Far>(dst, src[1], n, Source<T>{elements<T>(src[0])});
}

template <class T, bool Inverted, bool Far>
void fill(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    update<T, Inverted, Far>(dst, src[0], n, Value<T>{T(params.constants[0]->whole[0])});
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
