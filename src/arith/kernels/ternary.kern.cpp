// Rows of three sources: a product and a third operand.
#include "arith/kernels/arith_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

template <class Op> struct Ternary {
    template <class D, class A, class B, class C>
    static void plain(void *dst, const void *const *src, int64_t n, const RowParams &) {
        using X = plain_type<D, false, Op::growth, A, B, C>;
        row3<D, A, B, C>(dst, src, n, [](A a, B b, C c) { return store<D, false>(Op::of(X(a), X(b), X(c))); });
    }
    template <class D, class A, class B, class C>
    static void scaled(void *dst, const void *const *src, int64_t n, const RowParams &p) {
        using X = exact_type<Op::growth, A, B, C>;
        scaled_loop<D, false, X>(p, [=](auto finish) {
            row3<D, A, B, C>(dst, src, n, [=](A a, B b, C c) { return finish(Op::of(X(a), X(b), X(c))); });
        });
    }
    template <class D, class A, class B, class C> static constexpr Rows rows() {
        return {plain<D, A, B, C>, scaled<D, A, B, C>, nullptr, nullptr, ConstantRule::none};
    }
};

} // namespace

#define ROWS(name, D, A, B, C) Op::rows<D, A, B, C>(),
#define TABLE(family, list, ...)                                                                                       \
    namespace family {                                                                                                 \
    using Op = __VA_ARGS__;                                                                                            \
    extern const Rows rows[];                                                                                          \
    constexpr Rows rows[] = {list(ROWS)};                                                                              \
    }
TABLE(mla, JORM_MLA_KERNELS, Ternary<MulAdd>)
TABLE(mls, JORM_MLS_KERNELS, Ternary<MulSub>)
TABLE(mlrs, JORM_MLS_KERNELS, Ternary<MulRSub>)

} // namespace jorm::JORM_LEVEL
