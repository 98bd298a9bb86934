// Rows of a product and a further operand, one or two of the operands constant.
#include "arith/kernels/constant_loop.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// A product with the constant, and a second source.
template <class Op> struct ConstantTernary {
    template <class D, class A, class B> static constexpr ConstantRule rule() {
        if (!is_real<D>) return is_real<A> || is_real<B> ? ConstantRule::none : ConstantRule::low_bits;
        return all_f32<A, B> ? ConstantRule::single : ConstantRule::any;
    }
    template <bool Uniform, class D, class A, class B>
    static void fast(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        using C = select<is_real<D>, select<all_f32<A, B>, f32, f64>, uint32_t>;
        constant_row<Uniform, 1, C, D, A, B>(dst, src, n, p, [](A a, B b, C k) { return D(Op::of(C(a), k, C(b))); });
    }
    template <class D, class A, class B>
    static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        scaled_loop<D, false, s128>(p, [=](auto finish) {
            constant_row<false, 1, f64, D, A, B>(
                dst, src, n, p, [=](A a, B b, f64 k) { return finish(Op::of(s128(a), whole<92>(k), s128(b))); });
        });
    }
    template <class D, class A, class B>
    static void real(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const f64 scale = p.scale;
        constant_row<false, 1, f64, D, A, B>(
            dst, src, n, p, [=](A a, B b, f64 k) { return store<D, false>(Op::of(f64(a), k, f64(b)) * scale); });
    }
    template <class D, class A, class B, class> static constexpr Rows rows() {
        Rows r = {nullptr, nullptr, nullptr, real<D, A, B>, rule<D, A, B>()};
        if constexpr (rule<D, A, B>() != ConstantRule::none)
            r.plain = fast<true, D, A, B>, r.pattern = fast<false, D, A, B>;
        if constexpr (has_scaled_rows && !is_real<D> && !is_real<A> && !is_real<B>) r.scaled = scaled<D, A, B>;
        return r;
    }
};

// A product with one constant, and a second constant.
template <class Op> struct TwoConstants {
    template <class D, class A> static constexpr ConstantRule rule() {
        if (!is_real<D>) return is_real<A> ? ConstantRule::none : ConstantRule::low_bits;
        return is_real<A> ? ConstantRule::single : ConstantRule::any;
    }
    template <bool Uniform, class D, class A>
    static void fast(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        using C = select<is_real<D>, select<is_real<A>, f32, f64>, uint32_t>;
        constant_row<Uniform, 2, C, D, A, void *>(dst, src, n, p,
                                                  [](A a, C k1, C k2) { return D(Op::of(C(a), k1, k2)); });
    }
    template <class D, class A> static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        scaled_loop<D, false, s128>(p, [=](auto finish) {
            constant_row<false, 2, f64, D, A, void *>(dst, src, n, p, [=](A a, f64 k1, f64 k2) {
                return finish(Op::of(s128(a), whole<92>(k1), whole<92>(k2)));
            });
        });
    }
    template <class D, class A> static void real(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        const f64 scale = p.scale;
        constant_row<false, 2, f64, D, A, void *>(
            dst, src, n, p, [=](A a, f64 k1, f64 k2) { return store<D, false>(Op::of(f64(a), k1, k2) * scale); });
    }
    template <class D, class A, class, class> static constexpr Rows rows() {
        Rows r = {nullptr, nullptr, nullptr, real<D, A>, rule<D, A>()};
        if constexpr (rule<D, A>() != ConstantRule::none) r.plain = fast<true, D, A>, r.pattern = fast<false, D, A>;
        if constexpr (has_scaled_rows && !is_real<D> && !is_real<A>) r.scaled = scaled<D, A>;
        return r;
    }
};

} // namespace

#define ROWS(name, ...) Op::rows<__VA_ARGS__>(),
#define TABLE(family, list, ...)                                                                                       \
    namespace family {                                                                                                 \
    using Op = __VA_ARGS__;                                                                                            \
    extern const Rows rows[];                                                                                          \
    constexpr Rows rows[] = {list(ROWS)};                                                                              \
    }
TABLE(mlaC, JORM_MLA_C_KERNELS, ConstantTernary<MulAdd>)
TABLE(mlsC, JORM_MLS_C_KERNELS, ConstantTernary<MulSub>)
TABLE(mlrsC, JORM_MLS_C_KERNELS, ConstantTernary<MulRSub>)
TABLE(mlaCC, JORM_MLA_CC_KERNELS, TwoConstants<MulAdd>)
TABLE(mlsCC, JORM_MLS_CC_KERNELS, TwoConstants<MulSub>)
TABLE(mlrsCC, JORM_MLS_CC_KERNELS, TwoConstants<MulRSub>)

} // namespace jorm::JORM_LEVEL
