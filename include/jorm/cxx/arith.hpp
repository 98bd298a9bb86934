/// \file
/// Element-wise arithmetic and logic. Types, rounding and overlap: jorm/arith.h.
///
///     add(dst, a, b, {.saturate = true, .shift = -1, .region = {.row = 10}, .at = {0, 5}});
///     add(dst, a, 7);               // a constant, or one for each channel: {1, 2, 3}
///     add(dst, jorm::in_place, b);  // dst += b
///
/// The destination comes first. All operands have as many channels; a source that ends early shortens the operation.
#ifndef JORM_CXX_ARITH_HPP
#define JORM_CXX_ARITH_HPP

#include "jorm/arith.h"
#include "jorm/cxx/view.hpp"

namespace jorm {
inline namespace cxx {

/// Options of operations that only need places.
struct place_options {
    rectangle region = {};      ///< the part of the destination to work on
    position at = {}, at2 = {}; ///< where the regions of the first and of the second source start
    environment *env = nullptr; ///< null: that of the thread
};
/// Options of sums, differences and products.
struct arith_options {
    bool saturate = false; ///< clamp integers to the destination's type instead of wrapping
    int32_t shift = 0;     ///< results are multiplied by 2^shift before they are rounded
    rectangle region = {};
    position at = {}, at2 = {};
    environment *env = nullptr;
};
/// Options of quotients.
struct division_options {
    bool round = false; ///< integers to nearest even instead of truncated
    int32_t shift = 0;
    rectangle region = {};
    position at = {}, at2 = {};
    environment *env = nullptr;
};
/// Options of what only scales.
struct scale_options {
    int32_t shift = 0;
    rectangle region = {};
    position at = {}, at2 = {}, at3 = {};
    environment *env = nullptr;
};

namespace detail {
// Where an option picks one of two entries.
inline bool second(const arith_options &o) { return o.saturate; }
inline bool second(const division_options &o) { return o.round; }
inline bool second(const scale_options &) { return false; }

template <class Errors, class Entry, class Options>
returns<Errors> binary(Entry *entry, Entry *other, const target &dst, const source &a, const source &b,
                       const Options &o) {
    return Errors::report((second(o) ? other : entry)(xe(o.env), 0, dst.get(), a.get(), b.get(), site(o.region),
                                                      slots(o.at), slots(o.at2), o.shift, 0));
}
template <class Errors, class Entry, class Options>
returns<Errors> constant(Entry *entry, Entry *other, const target &dst, const source &a, const values &c,
                         const Options &o) {
    return Errors::report((second(o) ? other : entry)(xe(o.env), 0, dst.get(), a.get(), c.data(), site(o.region),
                                                      slots(o.at), o.shift, 0));
}
template <class Errors, class Options>
returns<Errors> unary(decltype(JormExp) *entry, const target &dst, const source &a, const Options &o) {
    return Errors::report(entry(xe(o.env), 0, dst.get(), a.get(), site(o.region), slots(o.at), o.shift, 0));
}
template <class Errors>
returns<Errors> place(decltype(JormMin) *entry, const target &dst, const source &a, const source &b,
                      const place_options &o) {
    return Errors::report(entry(xe(o.env), 0, dst.get(), a.get(), b.get(), site(o.region), slots(o.at), slots(o.at2)));
}
template <class Errors>
returns<Errors> place(decltype(JormMinC) *entry, const target &dst, const source &a, const values &c,
                      const place_options &o) {
    return Errors::report(entry(xe(o.env), 0, dst.get(), a.get(), c.data(), site(o.region), slots(o.at)));
}
} // namespace detail

// An operation on two pictures, or on a picture and a constant, as a line: its name here, the options it takes, its
// entries, and those that the option chooses instead.
#define JORM_CXX_ARITH(name, Options, entry, other, entry_c, other_c)                                                  \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &a, const source &b, const Options &o = {}) {                 \
        return detail::binary<Errors>(entry, other, dst, a, b, o);                                                     \
    }                                                                                                                  \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &a, const values &b, const Options &o = {}) {                 \
        return detail::constant<Errors>(entry_c, other_c, dst, a, b, o);                                               \
    }

/// \name dst = a + b, a - b, b - a, a * b
/// \{
JORM_CXX_ARITH(add, arith_options, JormAdd, JormAddq, JormAddC, JormAddqC)
JORM_CXX_ARITH(sub, arith_options, JormSub, JormSubq, JormSubC, JormSubqC)
JORM_CXX_ARITH(rsub, arith_options, JormRSub, JormRSubq, JormRSubC, JormRSubqC)
JORM_CXX_ARITH(mul, arith_options, JormMul, JormMulq, JormMulC, JormMulqC)
/// \}
/// \name dst = (a + b)^2, (a - b)^2, (b - a)^2, clamped
/// \{
JORM_CXX_ARITH(add_squared, scale_options, JormAddsq, JormAddsq, JormAddsqC, JormAddsqC)
JORM_CXX_ARITH(sub_squared, scale_options, JormSubsq, JormSubsq, JormSubsqC, JormSubsqC)
JORM_CXX_ARITH(rsub_squared, scale_options, JormRSubsq, JormRSubsq, JormRSubsqC, JormRSubsqC)
/// \}
/// \name dst = a / b, b / a; of integers truncated, or rounded with `.round`
/// \{
JORM_CXX_ARITH(div, division_options, JormDiv, JormDivr, JormDivC, JormDivrC)
JORM_CXX_ARITH(rdiv, division_options, JormRDiv, JormRDivr, JormRDivC, JormRDivrC)
/// \}
#undef JORM_CXX_ARITH

#define JORM_CXX_PLACE(name, entry, entry_c)                                                                           \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &a, const source &b, const place_options &o = {}) {           \
        return detail::place<Errors>(entry, dst, a, b, o);                                                             \
    }                                                                                                                  \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &a, const values &b, const place_options &o = {}) {           \
        return detail::place<Errors>(entry_c, dst, a, b, o);                                                           \
    }

/// \name dst = |a - b|, the smaller, the larger one, the bits of both, of either, of one of them
/// \{
JORM_CXX_PLACE(abs_diff, JormAbsDiff, JormAbsDiffC)
JORM_CXX_PLACE(min, JormMin, JormMinC)
JORM_CXX_PLACE(max, JormMax, JormMaxC)
JORM_CXX_PLACE(bit_and, JormAnd, JormAndC)
JORM_CXX_PLACE(bit_or, JormOrr, JormOrrC)
JORM_CXX_PLACE(bit_xor, JormXor, JormXorC)
/// \}
#undef JORM_CXX_PLACE

/// dst = -a.
template <class Errors = throwing>
returns<Errors> negate(const target &dst, const source &a, const arith_options &o = {}) {
    return detail::unary<Errors>(o.saturate ? JormNegateq : JormNegate, dst, a, o);
}
/// dst = e^a; float.
template <class Errors = throwing>
returns<Errors> exp(const target &dst, const source &a, const scale_options &o = {}) {
    return detail::unary<Errors>(JormExp, dst, a, o);
}
/// dst = ln a; float.
template <class Errors = throwing> returns<Errors> ln(const target &dst, const source &a, const scale_options &o = {}) {
    return detail::unary<Errors>(JormLn, dst, a, o);
}
/// dst = 1 / (1 + e^(-alpha a)); float.
template <class Errors = throwing>
returns<Errors> sigmoid(const target &dst, const source &a, const values &alpha, const scale_options &o = {}) {
    return detail::constant<Errors>(JormSigmoidAlpha, JormSigmoidAlpha, dst, a, alpha, o);
}
/// dst = the complement of every bit.
template <class Errors = throwing>
returns<Errors> bit_not(const target &dst, const source &a, const place_options &o = {}) {
    return Errors::report(
        JormNot(detail::xe(o.env), 0, dst.get(), a.get(), detail::site(o.region), detail::slots(o.at)));
}

#define JORM_CXX_PRODUCT(name, entry, entry_c, entry_cc)                                                               \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &a, const source &b, const source &c,                         \
                         const scale_options &o = {}) {                                                                \
        return Errors::report(entry(detail::xe(o.env), 0, dst.get(), a.get(), b.get(), c.get(),                        \
                                    detail::site(o.region), detail::slots(o.at), detail::slots(o.at2),                 \
                                    detail::slots(o.at3), o.shift, 0));                                                \
    }                                                                                                                  \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &a, const values &b, const source &c,                         \
                         const scale_options &o = {}) {                                                                \
        return Errors::report(entry_c(detail::xe(o.env), 0, dst.get(), a.get(), c.get(), b.data(),                     \
                                      detail::site(o.region), detail::slots(o.at), detail::slots(o.at2), o.shift, 0)); \
    }                                                                                                                  \
    template <class Errors = throwing>                                                                                 \
    returns<Errors> name(const target &dst, const source &a, const values &b, const values &c,                         \
                         const scale_options &o = {}) {                                                                \
        return Errors::report(entry_cc(detail::xe(o.env), 0, dst.get(), a.get(), b.data(), c.data(),                   \
                                       detail::site(o.region), detail::slots(o.at), o.shift, 0));                      \
    }

/// \name dst = a * b + c, a * b - c, c - a * b; b and c constants or pictures. `.at2` is the start of the second
/// picture
/// \{
JORM_CXX_PRODUCT(mul_add, JormMulAdd, JormMulAddC, JormMulAddCC)
JORM_CXX_PRODUCT(mul_sub, JormMulSub, JormMulSubC, JormMulSubCC)
JORM_CXX_PRODUCT(mul_rsub, JormMulRSub, JormMulRSubC, JormMulRSubCC)
/// \}
#undef JORM_CXX_PRODUCT

} // namespace cxx
} // namespace jorm

#endif
