// The arithmetic of single elements, for the level sources of this folder: which type holds a result exactly, how it is
// scaled, rounded and stored.
#pragma once
#include "arith/kernels/families.hpp"
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// How many bits the exact result of an operation takes.
enum class Growth { sum, product, square, product_sum };

template <Growth G, int Size> struct WholeType { using type = s64; };
template <> struct WholeType<Growth::sum, 1> { using type = s16; };
template <> struct WholeType<Growth::sum, 2> { using type = s32; };
template <> struct WholeType<Growth::product, 1> { using type = uint16_t; };
template <> struct WholeType<Growth::product, 2> { using type = s32; };
template <> struct WholeType<Growth::square, 1> { using type = s32; };
template <> struct WholeType<Growth::square, 4> { using type = uint64_t; };
template <> struct WholeType<Growth::product_sum, 1> { using type = s32; };
template <> struct WholeType<Growth::product_sum, 2> { using type = s32; };

template <class... T> constexpr int widest = 1;
template <class T> constexpr int widest<T> = sizeof(T);
template <class T, class U, class... R>
constexpr int widest<T, U, R...> = widest<U, R...> > int(sizeof(T)) ? widest<U, R...> : int(sizeof(T));

template <class... T> constexpr bool any_real = (is_real<T> || ...);
template <class... T> constexpr bool any_s32 = (same<T, s32> || ...);
template <class... T> constexpr bool all_f32 = (same<T, f32> && ...);

// Holds the result of an operation on these sources without rounding, real sources aside.
template <Growth G, class... T>
using exact_type = select<any_real<T...>, f64, typename WholeType<G, widest<T...>>::type>;

// Computes a result that goes into f32 so that it is rounded once where that is possible; a product and a sum of three
// f32 operands round once each.
template <Growth G, class... T>
using float_type =
    select<any_real<T...>,
           select<G == Growth::product_sum ? !all_f32<T...> : G == Growth::square || any_s32<T...>, f64, f32>,
           select<any_s32<T...> && G == Growth::sum, f64, exact_type<G, T...>>>;

// What the loop without a scale computes in: wrapping results need only the low bits.
template <class D, bool Clamp, Growth G, class... T>
using plain_type =
    select<is_real<D>, float_type<G, T...>, select<any_real<T...> || Clamp, exact_type<G, T...>, uint32_t>>;

// Scaled results: real ones by a factor, whole ones by a rounding shift.
template <class D, class C> constexpr bool scales_by_factor = is_real<D> || is_real<C>;

// Up to this shift to the right an exact result of this type leaves room for the half that rounds it.
template <class X> constexpr int longest_small_shift = bits<X> - 2;
template <> constexpr int longest_small_shift<uint16_t> = 9;
template <> constexpr int longest_small_shift<uint64_t> = 0;

// ------------------------------------------------------------ the operations

struct Add {
    static constexpr Growth growth = Growth::sum;
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return C(a + b); }
};
struct Sub {
    static constexpr Growth growth = Growth::sum;
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return C(a - b); }
};
struct RSub {
    static constexpr Growth growth = Growth::sum;
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return C(b - a); }
};
struct Mul {
    static constexpr Growth growth = Growth::product;
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return C(a * b); }
};
// The square of 2^32 alone does not fit the unsigned type that holds all others: it counts as the value below.
template <class C> [[gnu::always_inline]] inline C square(C x) {
    const C result = C(x * x);
    if constexpr (same<C, uint64_t>) return result == 0 && x != 0 ? ~result : result;
    return result;
}
struct AddSquare {
    static constexpr Growth growth = Growth::square;
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return square(C(a + b)); }
};
struct SubSquare {
    static constexpr Growth growth = Growth::square;
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return square(C(a - b)); }
};
struct And {
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return C(a & b); }
};
struct Orr {
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return C(a | b); }
};
struct Xor {
    template <class C> [[gnu::always_inline]] static C of(C a, C b) { return C(a ^ b); }
};
// On operands of the destination's own type.
struct AbsDiff {
    template <class T> [[gnu::always_inline]] static T of(T a, T b) {
        if constexpr (is_real<T>)
            return __builtin_fabsf(a - b);
        else {
            using U = typename Unsigned<T>::type;
            const T upper = a > b ? a : b, lower = a > b ? b : a;
            const U difference = U(U(upper) - U(lower)), most = U(largest<T>);
            return T(difference < most ? difference : most);
        }
    }
};
// The smaller or the larger one. NaN gives way; of zeros -0 is the smaller: equal numbers differ in no other bit.
template <bool Larger> struct Extreme {
    template <class T> [[gnu::always_inline]] static T of(T a, T b) {
        if constexpr (is_real<T>) {
            const uint32_t x = __builtin_bit_cast(uint32_t, a), y = __builtin_bit_cast(uint32_t, b);
            const uint32_t chosen = (Larger ? a > b : a < b) || b != b ? x : y;
            return __builtin_bit_cast(T, a == b ? (Larger ? x & y : x | y) : chosen);
        } else
            return (Larger ? a > b : a < b) ? a : b;
    }
};
struct MulAdd {
    static constexpr Growth growth = Growth::product_sum;
    template <class C> [[gnu::always_inline]] static C of(C a, C b, C c) { return C(a * b + c); }
};
struct MulSub {
    static constexpr Growth growth = Growth::product_sum;
    template <class C> [[gnu::always_inline]] static C of(C a, C b, C c) { return C(a * b - c); }
};
struct MulRSub {
    static constexpr Growth growth = Growth::product_sum;
    template <class C> [[gnu::always_inline]] static C of(C a, C b, C c) { return C(c - a * b); }
};

// Clamped sums of operands of the destination's own type.
template <class Op, class T> [[gnu::always_inline]] inline T clamped_sum(T a, T b) {
    if constexpr (sizeof(T) < sizeof(s32))
        return clamp<T>(Op::of(s32(a), s32(b)));
    else if constexpr (same<Op, RSub>)
        return clamped_sum<Sub>(b, a);
    else {
        constexpr bool add = same<Op, Add>;
        const T sum = T(add ? uint32_t(a) + uint32_t(b) : uint32_t(a) - uint32_t(b));
        const T over = add ? (a ^ sum) & (b ^ sum) : (a ^ b) & (a ^ sum); // the sign bit tells
        const T edge = (a >> (bits<T> - 1)) ^ T(largest<T>);
        return over < 0 ? edge : sum;
    }
}

// a * 2^shift / b, exactly, for operands of up to 63 bits; 0 for b = 0.
template <class D, bool Nearest> inline D exact_quotient(s128 a, s128 b, int shift) {
    if (b == 0) return D(0);
    const int k = shift < -63 ? -63 : shift > 63 ? 63 : shift;
    const s128 n = a * (s128(1) << (k > 0 ? k : 0)), d = b * (s128(1) << (k < 0 ? -k : 0));
    const s128 q = n / d;
    if constexpr (!Nearest) return D(q);
    const s128 rest = n % d < 0 ? -(n % d) : n % d, divisor = d < 0 ? -d : d;
    const bool away = rest > divisor - rest || (rest == divisor - rest && (q & 1));
    return D(away ? ((n < 0) != (d < 0) ? q - 1 : q + 1) : q);
}

// The compiler keeps a loop in 16 bits only when it knows the shift: the usual ones get loops of their own.
template <class X> constexpr int longest_known_shift = 0;
template <> constexpr int longest_known_shift<s16> = 2;
template <> constexpr int longest_known_shift<uint16_t> = 8;

// Scales by a known shift; what is not clamped keeps its type.
template <class D, bool Clamp, class X, int K> struct KnownShift {
    [[gnu::always_inline]] auto operator()(X x) const {
        const X result = shift_right_small(x, K);
        if constexpr (Clamp)
            return store<D, true>(result);
        else
            return result;
    }
};
template <class F> constexpr bool is_known_shift = false;
template <class D, bool Clamp, class X, int K> constexpr bool is_known_shift<KnownShift<D, Clamp, X, K>> = true;

template <class D, bool Clamp, class X, int K, class Loop>
[[gnu::always_inline]] inline bool known_shift_loop(int k, Loop loop) {
    if constexpr (K > longest_known_shift<X>)
        return false;
    else if (k != K)
        return known_shift_loop<D, Clamp, X, K + 1>(k, loop);
    else
        loop(KnownShift<D, Clamp, X, K>{});
    return true;
}

// Runs `loop` with a function object that scales and stores an exact result of type X.
template <class D, bool Clamp, class X, class Loop>
[[gnu::always_inline]] inline void scaled_loop(const RowParams &p, Loop loop) {
    if constexpr (scales_by_factor<D, X>) {
        const f64 scale = p.scale;
        loop([scale](X x) { return store<D, Clamp>(f64(x) * scale); });
    } else {
        const int shift = p.shift;
        if (shift < 0 && known_shift_loop<D, Clamp, X, 1>(-shift, loop)) return;
        if (shift < 0 && -shift <= longest_small_shift<X>)
            loop([shift](X x) { return store<D, Clamp>(shift_right_small(x, -shift)); });
        else
            loop([shift](X x) { return store_shifted<D, Clamp>(select<(sizeof(X) < 8), s64, X>(x), shift); });
    }
}

// Rows of bytes whose results take 16 bits on the way. Both bytes of a pair are computed in place, which is less work
// than widening whole registers and narrowing them again.
template <class X, class F>
[[gnu::always_inline]] inline void row2_pairs(void *dst, const void *const *src, int64_t n, F f) {
    struct [[gnu::packed, gnu::may_alias]] Pair {
        uint16_t bytes;
    };
    u8 *d = elements<u8>(dst);
    const u8 *a = elements<u8>(src[0]), *b = elements<u8>(src[1]);
    Pair *dd = elements<Pair>(dst);
    const Pair *aa = elements<Pair>(src[0]), *bb = elements<Pair>(src[1]);
    for (int64_t i = 0; i < n / 2; ++i) {
        const uint16_t p = aa[i].bytes, q = bb[i].bytes;
        const uint16_t low = f(X(p & 255), X(q & 255)), high = f(X(p >> 8), X(q >> 8));
        dd[i].bytes = uint16_t((low & 255) | high << 8);
    }
    if (n % 2 != 0) d[n - 1] = u8(f(X(a[n - 1]), X(b[n - 1])));
}

} // namespace
} // namespace jorm::JORM_LEVEL
