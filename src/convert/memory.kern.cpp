// Byte and vector loops.
#include "convert/memory_rows.hpp"
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

using u16 = uint16_t;
using u32 = uint32_t;

// ------------------------------------------------------------------- bytes

typedef char Line __attribute__((vector_size(64), aligned(1), may_alias));
typedef char AlignedLine __attribute__((vector_size(64), aligned(64), may_alias));

[[gnu::always_inline]] inline void copy_line(char *d, const char *s) {
    *reinterpret_cast<Line *>(d) = *reinterpret_cast<const Line *>(s);
}

// Lengths from which string instructions and memset win: they take whole lines without reading them first. Far beyond
// the cache ordinary stores fill faster again.
constexpr int64_t fill_by_string = 786432, fill_by_stores = 4194304;

#ifdef JORM_LEVEL_avx512
constexpr int64_t move_by_string = 24576;

inline void move_string(char *d, const char *s, int64_t n) {
    asm volatile("rep movsb" : "+D"(d), "+S"(s), "+c"(n) : : "memory");
}

void copy_bytes(void *dst, const void *src, int64_t n, int64_t next) {
    char *d = static_cast<char *>(dst);
    const char *s = static_cast<const char *>(src);
    if (n < 64) {
        __builtin_memcpy(d, s, size_t(n));
        return;
    }
    if (n >= move_by_string) return move_string(d, s, n);
    copy_line(d, s);
    int64_t i = 64 - int64_t(reinterpret_cast<uintptr_t>(d) & 63);
    for (; i + 256 <= n; i += 256) {
        if (next)
            for (int64_t k = 0; k < 256; k += 64) __builtin_prefetch(s + next + i + k);
        const Line *const from = reinterpret_cast<const Line *>(s + i);
        AlignedLine *const to = reinterpret_cast<AlignedLine *>(d + i);
        const Line a = from[0], b = from[1], c = from[2], e = from[3];
        to[0] = a;
        to[1] = b;
        to[2] = c;
        to[3] = e;
    }
    for (; i + 64 <= n; i += 64) copy_line(d + i, s + i);
    if (i < n) copy_line(d + n - 64, s + n - 64);
}
#else
void copy_bytes(void *dst, const void *src, int64_t n, int64_t) { __builtin_memcpy(dst, src, size_t(n)); }
#endif

inline bool one_byte(const char *block) {
    int different = 0;
    for (int i = 1; i < 16; ++i) different |= block[i] ^ block[0];
    return different == 0;
}

void fill_bytes(void *dst, int64_t n, const char *block) {
    char *d = static_cast<char *>(dst);
    if (n < 64) {
        __builtin_memcpy(d, block, size_t(n));
        return;
    }
    if (n >= fill_by_string && n < fill_by_stores && one_byte(block)) {
        __builtin_memset(d, block[0], size_t(n));
        return;
    }
    // The lines from the first aligned one on repeat three of one phase.
    copy_line(d, block);
    int64_t i = 64 - int64_t(reinterpret_cast<uintptr_t>(d) & 63);
    const Line *const phase = reinterpret_cast<const Line *>(block + i);
    const Line first = phase[0], second = phase[1], third = phase[2];
    for (; i + fill_period <= n; i += fill_period) {
        AlignedLine *const line = reinterpret_cast<AlignedLine *>(d + i);
        line[0] = first;
        line[1] = second;
        line[2] = third;
    }
    __builtin_memcpy(d + i, phase, size_t(n - i));
}

// ------------------------------------------------------------------ search

// Whole blocks are tested for a hit by a loop that the compiler vectorises; the block with the first one is then
// searched element by element.
template <class T, Sense S> int64_t find(const void *row, int64_t n, const void *value) {
    constexpr int64_t block = 256;
    const T *p = elements<T>(row);
    T v;
    __builtin_memcpy(&v, value, sizeof v);
    const auto hits = [v](T x) { return S == first_equal ? x == v : x != v; };
    int64_t i = 0;
    for (; i + block <= n; i += block) {
        int any = 0;
        for (int64_t k = 0; k < block; ++k) any |= hits(p[i + k]);
        if (any) break;
    }
    while (i < n && !hits(p[i])) ++i;
    return i;
}

// ----------------------------------------------------------------- vectors

struct Add {
    static f32 of(f32 x, f32 c) { return x + c; }
};
struct Sub {
    static f32 of(f32 x, f32 c) { return x - c; }
};
struct RSub {
    static f32 of(f32 x, f32 c) { return c - x; }
};
struct Mul {
    static f32 of(f32 x, f32 c) { return x * c; }
};
struct Div {
    static f32 of(f32 x, f32 c) { return x / c; }
};
struct RDiv {
    static f32 of(f32 x, f32 c) { return c / x; }
};

template <class Op> void with_constant(f32 *dst, const f32 *src, const f32 *pattern, size_t n) {
    constexpr size_t width = 16;
    f32 c[width];
    for (size_t k = 0; k < width; ++k) c[k] = pattern[k % 4];
    size_t i = 0;
    for (; i + width <= n; i += width)
        for (size_t k = 0; k < width; ++k) dst[i + k] = Op::of(src[i + k], c[k]);
    for (size_t k = 0; i + k < n; ++k) dst[i + k] = Op::of(src[i + k], c[k]);
}

template <class T> void add_elements(void *dst, const void *a, const void *b, size_t n) {
    const void *const src[] = {a, b};
    row2<T, T, T>(dst, src, int64_t(n), [](T x, T y) { return T(x + y); });
}
template <class T> void distance(void *dst, const void *a, const void *b, size_t n) {
    const void *const src[] = {a, b};
    row2<T, T, T>(dst, src, int64_t(n), [](T x, T y) { return T(x > y ? x - y : y - x); });
}

// Sixteen partial results at every level, so that the order of evaluation is the same.
template <class R, class T, class F> [[gnu::always_inline]] inline R gather(const T *src, size_t n, R start, F f) {
    constexpr size_t lanes = 16;
    R part[lanes];
    for (size_t k = 0; k < lanes; ++k) part[k] = start;
    size_t i = 0;
    for (; i + lanes <= n; i += lanes)
        for (size_t k = 0; k < lanes; ++k) part[k] = f(part[k], R(src[i + k]));
    for (size_t k = 0; i + k < n; ++k) part[k] = f(part[k], R(src[i + k]));
    for (size_t step = lanes / 2; step > 0; step /= 2)
        for (size_t k = 0; k < step; ++k) part[k] = f(part[k], part[k + step]);
    return part[0];
}

u8 max_u8(const u8 *src, size_t n) {
    u8 m = 0;
    for (size_t i = 0; i < n; ++i) m = src[i] > m ? src[i] : m;
    return m;
}
u8 min_u8(const u8 *src, size_t n) {
    u8 m = 255;
    for (size_t i = 0; i < n; ++i) m = src[i] < m ? src[i] : m;
    return m;
}
// Comparisons with NaN are false: such samples are passed over.
f32 max_f32(const f32 *src, size_t n) {
    return gather(src, n, -__builtin_inff(), [](f32 m, f32 x) { return x > m ? x : m; });
}
f32 min_f32(const f32 *src, size_t n) {
    return gather(src, n, __builtin_inff(), [](f32 m, f32 x) { return x < m ? x : m; });
}

// Runs of at most `run` elements are summed in 32 bits.
template <class T, class Part> s64 sum_whole(const T *src, size_t n) {
    constexpr size_t run = 32768;
    s64 sum = 0;
    for (size_t i = 0; i < n; i += run) {
        Part part = 0;
        for (size_t k = i; k < (n - i < run ? n : i + run); ++k) part += Part(src[k]);
        sum += part;
    }
    return sum;
}
f64 sum_f32(const f32 *src, size_t n) {
    return gather(src, n, 0.0, [](f64 sum, f64 x) { return sum + x; });
}

} // namespace

extern const MemoryRows memory_rows[];
const MemoryRows memory_rows[] = {{copy_bytes,
                                   fill_bytes,
                                   {find<u8, first_equal>, find<u8, first_different>},
                                   {find<u16, first_equal>, find<u16, first_different>},
                                   {find<u32, first_equal>, find<u32, first_different>},
                                   {find<f32, first_equal>, find<f32, first_different>},
                                   with_constant<Add>,
                                   with_constant<Sub>,
                                   with_constant<RSub>,
                                   with_constant<Mul>,
                                   with_constant<Div>,
                                   with_constant<RDiv>,
                                   add_elements<u8>,
                                   add_elements<u16>,
                                   distance<u8>,
                                   distance<u16>,
                                   max_u8,
                                   min_u8,
                                   max_f32,
                                   min_f32,
                                   sum_whole<u8, u32>,
                                   sum_whole<s16, s32>,
                                   sum_f32}};

} // namespace jorm::JORM_LEVEL
