// Functions that all families of geometric types have, under one name.
#pragma once
#include <tuple>
#include <type_traits>

namespace {

// Calls that one of its functions which takes the arguments.
template <class... F> struct Overloads {
    std::tuple<F...> functions;
    constexpr explicit Overloads(F... f) : functions(f...) {}
    template <class... A> auto operator()(A... a) const { return call<0>(a...); }

private:
    template <size_t i, class... A> auto call(A... a) const {
        if constexpr (std::is_invocable_v<std::tuple_element_t<i, std::tuple<F...>>, A...>)
            return std::get<i>(functions)(a...);
        else
            return call<i + 1>(a...);
    }
};
#define OF_ALL(name) [[maybe_unused]] constexpr Overloads name(jorm_2d_##name, jorm_f2d_##name, jorm_r2d_##name);
#define OF_FLOATS(name) [[maybe_unused]] constexpr Overloads name(jorm_f2d_##name, jorm_r2d_##name);
#define MAKERS_OF_ALL(name, form) constexpr Overloads name(__jorm_2d_##form, __jorm_f2d_##form, __jorm_r2d_##form);

} // namespace
