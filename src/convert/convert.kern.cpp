// Rows of conversions: to nearest even, clamped.
#include "convert/convert_rows.hpp"
#include "kernel/constant_loop.hpp"
#include "kernel/level_vectors.hpp"

namespace jorm::JORM_LEVEL {
namespace {

template <class D, class S> [[gnu::always_inline]] inline D clamped(S x) {
    constexpr S lo = S(lowest<D>), hi = S(largest<D>);
    x = x < lo ? lo : x;
    x = x > hi ? hi : x;
    return D(x);
}

template <class D, class S> [[gnu::always_inline]] inline D convert_element(S x) {
    if constexpr (is_real<D> || (!is_real<S> && sizeof(S) <= sizeof(D)))
        return D(x);
    else if constexpr (is_real<S>)
        return convert_element<D>(round_s32(x));
    else
        return clamped<D>(x);
}

template <class D, class S> void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
    row1<D, S>(dst, src, n, [](S x) { return convert_element<D>(x); });
}

// ------------------------------------------------------------- range to range

// What becomes of results beyond 32 bits: -2^31, as in conversions, or the nearest value of the type.
enum class Beyond { lowest, nearest };

template <class D, class S> [[gnu::always_inline]] inline D exact_element(S x, f64 scale, f64 offset) {
    return convert_element<D>(f64(x) * scale + offset);
}

// Rows go by blocks through numbers between the source's type and the destination's: what makes the numbers does not
// know the destination, what takes them does not know the source. No pair of types has loops of its own.
constexpr int block = 2 * pattern_length;

// Rounded to 32 bits or not.
template <bool Uniform, class To, class S>
[[gnu::noinline]] void map_block(To *__restrict to, const S *from, int n, const RowParams &p) {
    const f64 *__restrict scale = p.constants[0]->real, *__restrict offset = p.constants[1]->real;
    if constexpr (Uniform) {
        const f64 k = *scale, c = *offset;
        for (int i = 0; i < n; ++i) to[i] = exact_element<To>(from[i], k, c);
    } else
        for (int i = 0; i < n; i += pattern_length) {
            const int m = n - i < pattern_length ? n - i : pattern_length;
            for (int j = 0; j < m; ++j) to[i + j] = exact_element<To>(from[i + j], scale[j], offset[j]);
        }
}
template <class D> [[gnu::noinline]] void take_whole(D *to, const s32 *__restrict from, int n) {
    for (int i = 0; i < n; ++i) to[i] = convert_element<D>(from[i]);
}
template <class D> [[gnu::noinline]] void take_nearest(D *to, const f64 *__restrict from, int n) {
    for (int i = 0; i < n; ++i) to[i] = nearest<D>(from[i]);
}
// May one of these be what stands for results beyond 32 bits?
[[gnu::noinline]] bool any_beyond(const s32 *x, int n) {
    s32 least = 0;
    for (int i = 0; i < n; ++i) least = x[i] < least ? x[i] : least;
    return least == lowest<s32>;
}

// In double precision.
template <bool Uniform, class D, class S, Beyond B>
void exact_range(void *dst, const void *const *src, int64_t n, const RowParams &p) {
    D *d = elements<D>(dst);
    const S *s = elements<S>(src[0]);
    if constexpr (is_real<D> || (same<D, s32> && B == Beyond::lowest)) // the numbers themselves
        constant_row<Uniform, 2, f64, D, S, void *>(dst, src, n, p, exact_element<D, S>);
    else
        for (int m; n > 0; n -= m, d += m, s += m) {
            union {
                s32 whole[block];
                f64 real[block];
            } x;
            m = n < block ? int(n) : block;
            map_block<Uniform>(x.whole, s, m, p);
            if (B == Beyond::lowest || !any_beyond(x.whole, m)) {
                take_whole(d, x.whole, m);
                continue;
            }
            map_block<Uniform>(x.real, s, m, p);
            take_nearest(d, x.real, m);
        }
}

// Where it makes no difference whether the product is rounded.
#ifdef __FP_FAST_FMAF
constexpr bool fused = true;
[[gnu::always_inline]] inline f32 multiply_add(f32 a, f32 b, f32 c) { return __builtin_fmaf(a, b, c); }
#else
constexpr bool fused = false;
[[gnu::always_inline]] inline f32 multiply_add(f32 a, f32 b, f32 c) { return a * b + c; }
#endif

// The constants of the fast rows.
struct Pieces {
    f32 scale, offset, scale_rest, offset_rest;
};
[[gnu::always_inline]] inline Pieces pieces_at(const RangeParams &p, int j) {
    return {p.fast[0][j], p.fast[1][j], p.fast[2][j], p.fast[3][j]};
}

// The fast rows go by chunks of a pattern. Halves of words take fewer instructions than conversions.
constexpr int chunk = 64;
static_assert(pattern_length % chunk == 0);
union Words {
    s32 whole[chunk];
    uint16_t half[2 * chunk];
};
constexpr int upper = __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? 1 : 0;

[[gnu::always_inline]] inline int next_chunk(int j) { return j + chunk < pattern_length ? j + chunk : 0; }

// A block in single precision to bytes, in fixed point with 16 bits of fraction; the lanes of `least` gather the least
// fractions. Is no result in doubt?
template <bool Uniform, class D> [[gnu::noinline]] bool round_block(D *d, const f32 *s, const RangeParams &p) {
    uint16_t least[chunk], least_of_all = 0xffff;
    for (int l = 0; l < chunk; ++l) least[l] = 0xffff;
    const Pieces first = pieces_at(p, 0);
    for (int i = 0, j = 0; i < block; i += chunk, j = next_chunk(j)) {
        Words y;
        for (int l = 0; l < chunk; ++l) {
            const Pieces k = Uniform ? first : pieces_at(p, j + l);
            y.whole[l] = round_s32(multiply_add(s[i + l], k.scale, k.offset));
        }
        for (int l = 0; l < chunk; ++l) {
            const uint16_t fraction = y.half[2 * l + 1 - upper];
            least[l] = fraction < least[l] ? fraction : least[l];
            d[i + l] = clamped<D>(s16(y.half[2 * l + upper]));
        }
    }
    for (int l = 0; l < chunk; ++l) least_of_all = least[l] < least_of_all ? least[l] : least_of_all;
    return least_of_all >= p.doubt;
}
// As much of a block as there is; the rest repeats its first element.
template <class S> [[gnu::noinline]] void to_single(f32 *__restrict to, const S *from, int n) {
    for (int i = 0; i < n; ++i) to[i] = f32(from[i]);
    for (int i = n; i < block; ++i) to[i] = to[0];
}

// Blocks with a result in doubt are computed again in double precision. After some of them in succession the next ones
// go there at once.
template <bool Uniform, class D, class S, Beyond B>
void to_bytes(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    constexpr int patience = 4, respite = 60;
    const RangeParams &p = static_cast<const RangeParams &>(params);
    f32 single[block];
    D aside[block]; // in place, the source has to survive the attempt
    D *d = elements<D>(dst);
    const S *s = elements<S>(src[0]);
    for (int m; n > 0; n -= m, d += m, s += m) {
        m = n < block ? int(n) : block;
        if (p.doubtful >= 0) {
            const uintptr_t from = reinterpret_cast<uintptr_t>(s), to = reinterpret_cast<uintptr_t>(d);
            const bool apart = m == block && (to + block <= from || from + sizeof(S) * block <= to);
            const f32 *x = single;
            if constexpr (same<S, f32>)
                if (m == block) x = s;
            if (x == single) to_single(single, s, m);
            if (round_block<Uniform>(apart ? d : aside, x, p)) {
                for (int l = 0; !apart && l < m; ++l) d[l] = aside[l];
                p.doubtful = 0;
                continue;
            }
            p.doubtful = p.doubtful < patience ? p.doubtful + 1 : -respite;
        } else
            ++p.doubtful;
        const void *again = s;
        exact_range<Uniform, D, S, B>(d, &again, m, p);
    }
}

// From bytes, by the constants' two pieces; brief where the offset has no second one.
template <bool Brief, class D> [[gnu::always_inline]] inline D of_byte(f32 x, Pieces k) {
    const f32 main = multiply_add(x, k.scale, k.offset);
    if constexpr (Brief)
        return multiply_add(x, k.scale_rest, main);
    else {
        const f32 rest = multiply_add(x, k.scale_rest, k.offset_rest);
        if constexpr (is_real<D>)
            return main + rest;
        else if constexpr (sizeof(D) == 1)
            return convert_element<D>(main);
        else
            return convert_element<D>(s32(uint32_t(round_s32(main)) + uint32_t(round_s32(rest))));
    }
}

template <bool Brief, bool Uniform, class D, class S>
void from_bytes(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    const RangeParams &p = static_cast<const RangeParams &>(params);
    D *d = elements<D>(dst);
    const S *s = elements<S>(src[0]);
    const Pieces k = pieces_at(p, 0);
    int64_t i = 0;
    int j = 0;
    for (; i + chunk <= n; i += chunk, j = next_chunk(j)) {
        s32 x[chunk];
        if constexpr (same<S, u8>)
            widen<chunk>(x, s + i);
        else
            for (int l = 0; l < chunk; ++l) x[l] = s[i + l];
        for (int l = 0; l < chunk; ++l) d[i + l] = of_byte<Brief, D>(f32(x[l]), Uniform ? k : pieces_at(p, j + l));
    }
    for (; i < n; ++i, ++j) d[i] = of_byte<Brief, D>(s[i], Uniform ? k : pieces_at(p, j));
}

template <int Bytes> struct Bits { using type = uint32_t; };
template <> struct Bits<2> { using type = uint16_t; };
template <> struct Bits<1> { using type = u8; };

// Are the results with entry j of the constants the exact ones, for every byte?
template <bool Brief, class D, class S> bool holds(const RangeParams &p, int j) {
    using B = typename Bits<sizeof(D)>::type;
    const Pieces k = pieces_at(p, j);
    const f64 scale = p.constants[0]->real[j], offset = p.constants[1]->real[j];
    B difference = 0;
    for (s32 x = lowest<S>; x <= largest<S>; ++x)
        difference |= B(__builtin_bit_cast(B, of_byte<Brief, D>(f32(x), k)) ^
                        __builtin_bit_cast(B, exact_element<D>(x, scale, offset)));
    return difference == 0;
}

// Where results beyond 32 bits make a difference, integers have rows of their own for them.
template <class D, class S, Beyond B> constexpr RangeRows rows_of() {
    constexpr Beyond beyond = is_real<D> ? Beyond::lowest : B;
    constexpr Beyond usual = is_real<S> || (sizeof(D) == 1 && sizeof(S) > 1) ? beyond : Beyond::lowest;
    RangeRows rows = {{exact_range<true, D, S, usual>, exact_range<false, D, S, usual>}, {}, {}, {}, {}, fused};
    if constexpr (beyond != usual) {
        rows.beyond[0] = exact_range<true, D, S, beyond>;
        rows.beyond[1] = exact_range<false, D, S, beyond>;
    }
    if constexpr (sizeof(S) == 1) {
        rows.fast[0] = from_bytes<false, true, D, S>;
        rows.fast[1] = from_bytes<false, false, D, S>;
        rows.holds[0] = holds<false, D, S>;
        if constexpr (is_real<D>) {
            rows.brief[0] = from_bytes<true, true, D, S>;
            rows.brief[1] = from_bytes<true, false, D, S>;
            rows.holds[1] = holds<true, D, S>;
        }
    } else if constexpr (sizeof(D) == 1) {
        rows.fast[0] = to_bytes<true, D, S, usual>;
        rows.fast[1] = to_bytes<false, D, S, usual>;
    }
    return rows;
}

using u16 = uint16_t;

} // namespace

#define ROW(name, D, S) plain<D, S>,
extern const Row convert_rows[];
const Row convert_rows[] = {JORM_CONVERSIONS(ROW)};

#define RANGE(name, D, S) rows_of<D, S, Beyond::lowest>(),
extern const RangeRows range_rows[];
constexpr RangeRows range_rows[] = {JORM_RANGE_CONVERSIONS(RANGE)};

#define GAIN(D, S) rows_of<D, S, Beyond::nearest>(),
extern const RangeRows gain_rows[];
constexpr RangeRows gain_rows[] = {JORM_GAINS(GAIN)};

} // namespace jorm::JORM_LEVEL
