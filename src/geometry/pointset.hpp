// What the functions of point vectors share: the lowest point, turns, the hull without the rules of the exported forms.
#pragma once

#include <type_traits>

#include "geometry/family.hpp"

namespace jorm {

template <class F> using Pt = typename F::Pt;
// Holds products of two coordinate differences, exactly for integers.
template <class F> using Product = std::conditional_t<std::is_integral_v<typename F::Coord>, int128, double>;

template <class F> const Pt<F> *lowest(const Pt<F> *points, int32_t n) {
    const Pt<F> *best = points;
    for (int32_t i = 1; points && i < n; ++i) {
        const Pt<F> &p = points[i];
        if (p.x < best->x || (p.x == best->x && p.y < best->y)) best = &p;
    }
    return best;
}

// The way a, b, q turns clockwise where y points up when left > right, and not at all when both are equal.
template <class F> struct Turn {
    using Wide = typename F::Wide;
    Product<F> left, right;
    Turn(const Pt<F> &a, const Pt<F> &b, const Pt<F> &q)
        : left(Product<F>(Wide(b.y) - a.y) * (Wide(q.x) - a.x)),
          right(Product<F>(Wide(b.x) - a.x) * (Wide(q.y) - a.y)) {}
};

template <class F> int32_t all_colinear(const Pt<F> *points, int32_t n) {
    for (int32_t i = 2; points && i < n; ++i) {
        const Turn<F> turn(points[i - 2], points[i - 1], points[i]);
        if (!(turn.left == turn.right)) return 0;
    }
    return 1;
}

// The sign of left - right, for floats as it is without rounding.
int doubtful_turn(const jorm_r2d_pt &a, const jorm_r2d_pt &b, const jorm_r2d_pt &q);
template <class F> int exact_turn(const Pt<F> &a, const Pt<F> &b, const Pt<F> &q) {
    const Turn<F> turn(a, b, q);
    if constexpr (!std::is_integral_v<typename F::Coord>) {
        constexpr double bound = (3 + 16 * 0x1p-53) * 0x1p-53;
        if (!(std::fabs(turn.left - turn.right) > bound * (std::fabs(turn.left) + std::fabs(turn.right))))
            return doubtful_turn({a.x, a.y}, {b.x, b.y}, {q.x, q.y});
    }
    return (turn.left > turn.right) - (turn.left < turn.right);
}

// Convex hull in place, clockwise where y points up, without points on its edges: of colinear points the two ends, of
// equal ones one or two. Returns the number of its points.
template <class F> int32_t plain_hull(Pt<F> *points, int32_t n);

} // namespace jorm
