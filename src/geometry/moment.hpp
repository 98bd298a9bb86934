// Moments of point vectors, of which polygons without area make use too.
#pragma once

#include <type_traits>

#include "geometry/family.hpp"

namespace jorm {

// Sums over a point vector: exact for integers (at most 2^31 points of 2^62 each), f64 for floats.
template <class F> struct PointSums {
    static constexpr bool integer = std::is_integral_v<typename F::Coord>;
    using First = typename F::Wide;
    using Second = std::conditional_t<integer, int128, double>;
    First x = 0, y = 0;
    Second xx = 0, xy = 0, yy = 0;

    PointSums(const typename F::Pt *points, int32_t n, jorm_r2d_pt origin = {}) {
        for (int32_t i = 0; i < n; ++i) {
            First px = points[i].x, py = points[i].y;
            if constexpr (!integer) {
                px -= origin.x;
                py -= origin.y;
            }
            x += px;
            y += py;
            xx += Second(px) * px;
            xy += Second(px) * py;
            yy += Second(py) * py;
        }
    }
};

template <class F> jorm_r2d_pt mean_point(const typename F::Pt *points, int32_t n) {
    if (n < 1) return {};
    typename F::Wide x = 0, y = 0;
    for (int32_t i = 0; i < n; ++i) {
        x += points[i].x;
        y += points[i].y;
    }
    return {static_cast<double>(x) / n, static_cast<double>(y) / n};
}

template <class F> jorm_r2d_moment2 raw_moments(const typename F::Pt *points, int32_t n) {
    if (n < 1) return {};
    const PointSums<F> s(points, n);
    return {static_cast<double>(s.xx) / n, static_cast<double>(s.xy) / n, static_cast<double>(s.yy) / n};
}

template <class F> jorm_r2d_moment2 central_moments(const typename F::Pt *points, int32_t n) {
    if (n < 1) return {};
    if constexpr (PointSums<F>::integer) {
        const PointSums<F> s(points, n);
        const double nn = static_cast<double>(int64_t(n) * n);
        return {static_cast<double>(n * s.xx - int128(s.x) * s.x) / nn,
                static_cast<double>(n * s.xy - int128(s.x) * s.y) / nn,
                static_cast<double>(n * s.yy - int128(s.y) * s.y) / nn};
    } else {
        // About the rounded mean; what its rounding left over is taken out again.
        const PointSums<F> s(points, n, mean_point<F>(points, n));
        return {(s.xx - s.x * s.x / n) / n, (s.xy - s.x * s.y / n) / n, (s.yy - s.y * s.y / n) / n};
    }
}

} // namespace jorm
