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
        if constexpr (integer) {
            constexpr int32_t block = 256;
            for (int64_t i = 0; i < n; i += block) add_block(points + i, int32_t(n - i < block ? n - i : block));
        } else {
            for (int32_t i = 0; i < n; ++i) add(points[i].x - origin.x, points[i].y - origin.y);
        }
    }

private:
    void add(First px, First py) {
        x += px;
        y += py;
        xx += Second(px) * px;
        xy += Second(px) * py;
        yy += Second(py) * py;
    }

    // Places in pictures are not negative and small: sums of their products over a block fit 64 bits.
    void add_block(const typename F::Pt *points, int32_t n) {
        uint32_t all = 0;
        for (int32_t i = 0; i < n; ++i) all |= uint32_t(points[i].x) | uint32_t(points[i].y);
        if (all >= uint32_t{1} << 27) {
            for (int32_t i = 0; i < n; ++i) add(points[i].x, points[i].y);
            return;
        }
        uint64_t sx = 0, sy = 0, sxx = 0, sxy = 0, syy = 0;
        for (int32_t i = 0; i < n; ++i) {
            const uint64_t px = uint32_t(points[i].x), py = uint32_t(points[i].y);
            sx += px;
            sy += py;
            sxx += px * px;
            sxy += px * py;
            syy += py * py;
        }
        x += First(sx);
        y += First(sy);
        xx += Second(sxx);
        xy += Second(sxy);
        yy += Second(syy);
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
