// Rows of one source and a constant.
#include "arith/kernels/constant_loop.hpp"
#include "arith/kernels/transcendental.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// x + c, x - c or c - x clamped to the type of x: x is first clamped to where the sum fits.
template <class Op, class T> [[gnu::always_inline]] inline T clamped_sum_with(T x, s32 constant) {
    // Constants beyond these give the same results as these.
    constexpr s64 least = same<Op, RSub> ? 2 * lowest<T> : lowest<T> - largest<T>;
    constexpr s64 most = same<Op, RSub> ? 2 * largest<T> : largest<T> - lowest<T>;
    const s64 c = constant < least ? least : constant > most ? most : constant;
    const s64 from = same<Op, Add> ? lowest<T> - c : same<Op, Sub> ? lowest<T> + c : c - largest<T>;
    const s64 to = same<Op, Add> ? largest<T> - c : same<Op, Sub> ? largest<T> + c : c - lowest<T>;
    const T lo = T(from < lowest<T> ? lowest<T> : from), hi = T(to > largest<T> ? largest<T> : to);
    using U = select<sizeof(T) == 1, u8, select<sizeof(T) == 2, uint16_t, uint32_t>>;
    const T y = x < lo ? lo : x > hi ? hi : x;
    return T(Op::of(U(y), U(c)));
}

template <class Op, bool Clamp> struct Constant {
    // Clamped sums in another type than the source's need one bit more than the wider of the two; constants beyond
    // what can still matter are cut.
    template <class D> using clamp_type = select<same<D, s32>, s64, s32>;

    template <class D, class A> static constexpr ConstantRule rule() {
        if (Op::growth == Growth::square || (!is_real<D> && is_real<A>)) return ConstantRule::none;
        if (is_real<D>)
            return same<float_type<Op::growth, A>, f64> || same<A, s32> ? ConstantRule::any : ConstantRule::single;
        return Clamp ? ConstantRule::saturated : ConstantRule::low_bits;
    }
    template <bool Uniform, class D, class A>
    static void fast(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        if constexpr (is_real<D>) {
            using K = select<same<A, s32>, f64, f32>;
            constant_row<Uniform, 1, K, D, A, void *>(dst, src, n, p, [](A a, K k) { return D(Op::of(K(a), k)); });
        } else if constexpr (!Clamp) {
            constant_row<Uniform, 1, uint32_t, D, A, void *>(dst, src, n, p,
                                                             [](A a, uint32_t k) { return D(Op::of(uint32_t(a), k)); });
        } else if constexpr (same<D, A>) {
            constant_row<Uniform, 1, s32, D, A, void *>(dst, src, n, p,
                                                        [](A a, s32 k) { return clamped_sum_with<Op, D>(a, k); });
        } else {
            using C = clamp_type<D>;
            constant_row<Uniform, 1, s32, D, A, void *>(dst, src, n, p, [](A a, s32 k) {
                const C c = same<C, s64> ? C(k) : C(k < -(1 << 20) ? -(1 << 20) : k > 1 << 20 ? 1 << 20 : k);
                return clamp<D>(Op::of(C(a), c));
            });
        }
    }
    template <class D, class A> static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        scaled_loop<D, Clamp, s128>(p, [=](auto finish) {
            constant_row<false, 1, f64, D, A, void *>(dst, src, n, p, [=](A a, f64 k) {
                return finish(Op::of(s128(a), whole < Op::growth == Growth::square ? 62 : 92 > (k)));
            });
        });
    }
    template <class D, class A> static void real(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const f64 scale = p.scale;
        constant_row<false, 1, f64, D, A, void *>(
            dst, src, n, p, [=](A a, f64 k) { return store<D, Clamp>(Op::of(f64(a), k) * scale); });
    }
    template <class D, class A, class> static constexpr Rows rows() {
        Rows r = {nullptr, nullptr, nullptr, real<D, A>, rule<D, A>()};
        if constexpr (rule<D, A>() != ConstantRule::none) r.plain = fast<true, D, A>, r.pattern = fast<false, D, A>;
        if constexpr (has_scaled_rows && !is_real<D> && !is_real<A>) r.scaled = scaled<D, A>;
        return r;
    }
};

// Quotients with a constant. Whole constants of at most 24 bits leave single precision exact enough for 16-bit
// sources, and double precision for 32-bit ones.
template <bool Reversed, bool Nearest> struct ConstantDivide {
    template <class D, class R> static D quotient(D x, R c, R scale) {
        R q = (Reversed ? c / R(x) : R(x) / c) * scale;
        if constexpr (is_real<D>)
            return D(q);
        else {
            q = (Reversed ? R(x) : c) == 0 ? R(0) : q;
            if constexpr (Nearest)
                return D(round_s32(q));
            else
                return D(s32(q > R(-2147483649.0) && q < R(2147483648.0) ? q : R(-2147483648.0)));
        }
    }
    template <bool Uniform, class D>
    static void fast(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        using K = select<same<D, s32>, f64, f32>;
        constant_row<Uniform, 1, K, D, D, void *>(dst, src, n, p, [](D a, K k) { return quotient<D, K>(a, k, 1); });
    }
    template <class D> static void real(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const f64 scale = p.scale;
        constant_row<false, 1, f64, D, D, void *>(dst, src, n, p,
                                                  [=](D a, f64 k) { return quotient<D, f64>(a, k, scale); });
    }
    template <class D> static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const int shift = p.shift;
        constant_row<false, 1, f64, D, D, void *>(dst, src, n, p, [=](D a, f64 k) {
            return exact_quotient<D, Nearest>(Reversed ? whole<62>(k) : a, Reversed ? a : whole<62>(k), shift);
        });
    }
    template <class D, class> static constexpr Rows rows() {
        Rows r = {fast<true, D>, nullptr, fast<false, D>, real<D>,
                  is_real<D> ? ConstantRule::single : ConstantRule::small};
        if constexpr (has_scaled_rows && !is_real<D>) r.scaled = scaled<D>;
        return r;
    }
};

// Operations on operands of one type.
template <class Op, ConstantRule rule> struct ConstantOneType {
    template <bool Uniform, class D>
    static void fast(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        using K = select<is_real<D>, f32, uint32_t>;
        constant_row<Uniform, 1, K, D, D, void *>(dst, src, n, p, [](D a, K k) { return Op::of(a, D(k)); });
    }
    template <class D, class> static constexpr Rows rows() {
        return {fast<true, D>, nullptr, fast<false, D>, nullptr, rule};
    }
};

// Products in double precision, to the nearest value of the type.
struct NearestProduct {
    template <bool Uniform, class D, class A>
    static void fast(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        nearest_row<Uniform, 1, D, A>(dst, src, n, p, [](A a, f64 k) { return f64(a) * k; });
    }
    template <class D, class A> static constexpr Rows rows() {
        return {fast<true, D, A>, nullptr, fast<false, D, A>, nullptr, ConstantRule::factor};
    }
};

struct Sigmoid {
    static void real(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const f64 scale = p.scale;
        constant_row<false, 1, f64, f32, f32, void *>(
            dst, src, n, p, [=](f32 a, f64 alpha) { return f32(1.0 / (1.0 + exponential(-alpha * f64(a))) * scale); });
    }
    template <class, class> static constexpr Rows rows() {
        return {nullptr, nullptr, nullptr, real, ConstantRule::none};
    }
};

} // namespace

#define ROWS(name, ...) Op::rows<__VA_ARGS__>(),
#define CHANNELED_ROWS(name, channels, D, A) Op::rows<D, A>(),
#define TABLE(family, list, macro, ...)                                                                                \
    namespace family {                                                                                                 \
    using Op = __VA_ARGS__;                                                                                            \
    extern const Rows rows[];                                                                                          \
    constexpr Rows rows[] = {list(macro)};                                                                             \
    }
TABLE(addC, JORM_ADD_C_KERNELS, ROWS, Constant<Add, false>)
TABLE(subC, JORM_SUB_C_KERNELS, ROWS, Constant<Sub, false>)
TABLE(rsubC, JORM_RSUB_C_KERNELS, ROWS, Constant<RSub, false>)
TABLE(mulC, JORM_MUL_C_KERNELS, ROWS, Constant<Mul, false>)
TABLE(addqC, JORM_ADDQ_C_KERNELS, ROWS, Constant<Add, true>)
TABLE(subqC, JORM_SUBQ_C_KERNELS, ROWS, Constant<Sub, true>)
TABLE(rsubqC, JORM_RSUBQ_C_KERNELS, ROWS, Constant<RSub, true>)
TABLE(addsqC, JORM_ADD_C_KERNELS, ROWS, Constant<AddSquare, true>)
TABLE(subsqC, JORM_SUB_C_KERNELS, ROWS, Constant<SubSquare, true>)
TABLE(divC, JORM_DIV_C_KERNELS, CHANNELED_ROWS, ConstantDivide<false, false>)
TABLE(rdivC, JORM_RDIV_C_KERNELS, CHANNELED_ROWS, ConstantDivide<true, false>)
TABLE(divrC, JORM_DIVR_C_KERNELS, CHANNELED_ROWS, ConstantDivide<false, true>)
TABLE(rdivrC, JORM_RDIVR_C_KERNELS, CHANNELED_ROWS, ConstantDivide<true, true>)
TABLE(mulqC, JORM_MULQ_C_KERNELS, CHANNELED_ROWS, NearestProduct)
TABLE(absdiffC, JORM_ABSDIFF_C_KERNELS, CHANNELED_ROWS, ConstantOneType<AbsDiff, ConstantRule::element>)
TABLE(minC, JORM_MIN_C_KERNELS, CHANNELED_ROWS, ConstantOneType<Extreme<false>, ConstantRule::element>)
TABLE(maxC, JORM_MAX_C_KERNELS, CHANNELED_ROWS, ConstantOneType<Extreme<true>, ConstantRule::element>)
TABLE(andC, JORM_AND_C_KERNELS, CHANNELED_ROWS, ConstantOneType<And, ConstantRule::rounded>)
TABLE(orrC, JORM_ORR_C_KERNELS, CHANNELED_ROWS, ConstantOneType<Orr, ConstantRule::rounded>)
TABLE(xorC, JORM_XOR_C_KERNELS, CHANNELED_ROWS, ConstantOneType<Xor, ConstantRule::rounded>)
TABLE(sigmoid, JORM_REAL_C_KERNELS, CHANNELED_ROWS, Sigmoid)

} // namespace jorm::JORM_LEVEL
