// Rows of one source: negation, squares, complement, exponential and logarithm.
#include "arith/kernels/arith_ops.hpp"
#include "arith/kernels/transcendental.hpp"

namespace jorm::JORM_LEVEL {
namespace {

struct Neg {
    static constexpr Growth growth = Growth::sum;
    // Integers have no negative zero.
    template <class A, class C> static C of(C a) { return is_real<A> ? C(-a) : C(C(0) - a); }
};
struct Sqr {
    static constexpr Growth growth = Growth::square;
    template <class, class C> static C of(C a) { return square(a); }
};

template <class Op, bool Clamp> struct Unary {
    template <class D, class A> static void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
        using C = plain_type<D, Clamp, Op::growth, A>;
        row1<D, A>(dst, src, n, [](A a) { return store<D, Clamp>(Op::template of<A>(C(a))); });
    }
    template <class D, class A> static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        using X = exact_type<Op::growth, A>;
        scaled_loop<D, Clamp, X>(
            p, [=](auto finish) { row1<D, A>(dst, src, n, [=](A a) { return finish(Op::template of<A>(X(a))); }); });
    }
    template <class D, class A> static constexpr Rows rows() {
        return {plain<D, A>, scaled<D, A>, nullptr, nullptr, ConstantRule::none};
    }
};

struct Not {
    template <class D> static void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
        row1<D, D>(dst, src, n, [](D a) { return D(~a); });
    }
    template <class D, class> static constexpr Rows rows() {
        return {plain<D>, plain<D>, nullptr, nullptr, ConstantRule::none};
    }
};

template <f64 (*F)(f64)> struct Transcendental {
    static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const f64 scale = p.scale;
        row1<f32, f32>(dst, src, n, [=](f32 a) { return f32(F(f64(a)) * scale); });
    }
    template <class, class> static constexpr Rows rows() {
        return {scaled, scaled, nullptr, nullptr, ConstantRule::none};
    }
};

} // namespace

#define ROWS(name, D, A) Op::rows<D, A>(),
#define TABLE(family, list, ...)                                                                                       \
    namespace family {                                                                                                 \
    using Op = __VA_ARGS__;                                                                                            \
    extern const Rows rows[];                                                                                          \
    constexpr Rows rows[] = {list(ROWS)};                                                                              \
    }
TABLE(neg, JORM_NEG_KERNELS, Unary<Neg, false>)
TABLE(negq, JORM_NEGQ_KERNELS, Unary<Neg, true>)
TABLE(sqr, JORM_SQR_KERNELS, Unary<Sqr, true>)
TABLE(not_, JORM_NOT_KERNELS, Not)
TABLE(exp, JORM_REAL_KERNELS, Transcendental<exponential>)
TABLE(ln, JORM_REAL_KERNELS, Transcendental<logarithm>)

} // namespace jorm::JORM_LEVEL
