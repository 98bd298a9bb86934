// Rows of two sources.
#include "arith/kernels/arith_ops.hpp"
#include "kernel/level_vectors.hpp"

namespace jorm::JORM_LEVEL {
namespace {

template <class Op, bool Clamp> struct Binary {
    template <class D, class A, class B>
    static void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
        using C = plain_type<D, Clamp, Op::growth, A, B>;
        constexpr bool clamps = Clamp && same<D, A> && same<D, B> && Op::growth == Growth::sum && !is_real<D>;
        const auto clamped = [](auto a, auto b) { return clamped_sum<Op>(a, b); };
        if constexpr (clamps && has_saturated_sums<D> && !same<Op, RSub>)
            saturated_row<same<Op, Add>, D>(dst, src, n, clamped);
        else if constexpr (clamps)
            row2<D, D, D>(dst, src, n, clamped);
        else
            row2<D, A, B>(dst, src, n, [](A a, B b) { return store<D, Clamp>(Op::of(C(a), C(b))); });
    }
    template <class D, class A, class B>
    static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        using X = exact_type<Op::growth, A, B>;
        scaled_loop<D, Clamp, X>(p, [=]<class Finish>(Finish finish) {
            const auto f = [=](X a, X b) __attribute__((always_inline)) { return finish(Op::of(a, b)); };
            if constexpr (is_known_shift<Finish> && same<D, u8> && same<A, u8> && same<B, u8>)
                row2_pairs<X>(dst, src, n, f);
            else
                row2<D, A, B>(dst, src, n, [=](A a, B b) { return f(X(a), X(b)); });
        });
    }
    template <class D, class A, class B> static constexpr Rows rows() {
        return {plain<D, A, B>, scaled<D, A, B>, nullptr, nullptr, ConstantRule::none};
    }
};

// Operations on operands of one type.
template <class Op> struct OneType {
    template <class D> static void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
        row2<D, D, D>(dst, src, n, [](D a, D b) { return Op::of(a, b); });
    }
    template <class D, class, class> static constexpr Rows rows() {
        return {plain<D>, plain<D>, nullptr, nullptr, ConstantRule::none};
    }
};

// Quotients of integers: single precision divides 16-bit integers closely enough to tell where a quotient stands
// between two integers or two halves, double precision 32-bit ones.
template <bool Reversed, bool Nearest> struct Divide {
    template <class D> using real = select<same<D, s32>, f64, f32>;

    template <class D> static D quotient(D a, D b) {
        using R = real<D>;
        const R q = Reversed ? R(b) / R(a) : R(a) / R(b);
        if constexpr (is_real<D>)
            return q;
        else {
            const R y = (Reversed ? a : b) == 0 ? R(0) : q;
            if constexpr (Nearest)
                return D(round_s32(y));
            else
                return D(s32(y < R(2147483648.0) ? y : R(-2147483648.0)));
        }
    }
    template <class D> static void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
        row2<D, D, D>(dst, src, n, [](D a, D b) { return quotient(a, b); });
    }
    template <class D> static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const f64 scale = p.scale;
        const int shift = p.shift;
        row2<D, D, D>(dst, src, n, [=](D a, D b) {
            if constexpr (is_real<D>)
                return D((Reversed ? f64(b) / f64(a) : f64(a) / f64(b)) * scale);
            else
                return exact_quotient<D, Nearest>(Reversed ? b : a, Reversed ? a : b, shift);
        });
    }
    template <class D, class, class> static constexpr Rows rows() {
        return {plain<D>, scaled<D>, nullptr, nullptr, ConstantRule::none};
    }
};

} // namespace

#define ROWS(name, D, A, B) Op::rows<D, A, B>(),
#define TABLE(family, list, ...)                                                                                       \
    namespace family {                                                                                                 \
    using Op = __VA_ARGS__;                                                                                            \
    extern const Rows rows[];                                                                                          \
    constexpr Rows rows[] = {list(ROWS)};                                                                              \
    }
TABLE(add, JORM_ADD_KERNELS, Binary<Add, false>)
TABLE(sub, JORM_SUB_KERNELS, Binary<Sub, false>)
TABLE(rsub, JORM_RSUB_KERNELS, Binary<RSub, false>)
TABLE(mul, JORM_MUL_KERNELS, Binary<Mul, false>)
TABLE(addq, JORM_ADDQ_KERNELS, Binary<Add, true>)
TABLE(subq, JORM_SUBQ_KERNELS, Binary<Sub, true>)
TABLE(rsubq, JORM_RSUBQ_KERNELS, Binary<RSub, true>)
TABLE(addsq, JORM_ADD_KERNELS, Binary<AddSquare, true>)
TABLE(subsq, JORM_SUB_KERNELS, Binary<SubSquare, true>)
TABLE(div, JORM_DIV_KERNELS, Divide<false, false>)
TABLE(divr, JORM_DIVR_KERNELS, Divide<false, true>)
TABLE(rdiv, JORM_DIV_KERNELS, Divide<true, false>)
TABLE(rdivr, JORM_DIVR_KERNELS, Divide<true, true>)
TABLE(mulq, JORM_MULQ_KERNELS, Binary<Mul, true>)
TABLE(absdiff, JORM_ABSDIFF_KERNELS, OneType<AbsDiff>)
TABLE(min, JORM_MIN_KERNELS, OneType<Extreme<false>>)
TABLE(max, JORM_MAX_KERNELS, OneType<Extreme<true>>)
TABLE(and_, JORM_AND_KERNELS, OneType<And>)
TABLE(orr, JORM_ORR_KERNELS, OneType<Orr>)
TABLE(xor_, JORM_XOR_KERNELS, OneType<Xor>)

} // namespace jorm::JORM_LEVEL
