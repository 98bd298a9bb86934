/// \file
/// Point sets, polygons, sorting and searching. Exactness, orientation, angles: jorm/geometry.h, jorm/sort.h.
///
///     std::vector<jorm_2d_pt> points = ...;
///     auto hull = jorm::convex_hull(points);
///     jorm_r2d_ell around = jorm::ellipse(points);
#ifndef JORM_CXX_GEOMETRY_HPP
#define JORM_CXX_GEOMETRY_HPP

#include "jorm/geometry.h"
#include "jorm/sort.h"

#include <algorithm>
#include <compare>
#include <functional>
#include <ranges>
#include <span>
#include <type_traits>
#include <vector>

JORM_BEGIN_DOLLARS

namespace jorm {
inline namespace cxx {

namespace detail {

/// The records and the functions of a coordinate family. Figures of integer points are in double.
template <class Point> struct family;

template <> struct family<jorm_2d_pt> {
    using rect = jorm_2d_rect;
    using quad = jorm_r2d_quad;
    using ell = jorm_r2d_ell;
    using centre = jorm_r2d_pt;
    static constexpr auto *hull = jorm_2d_ptv_convexhull;
    static constexpr auto *bounds = jorm_2d_ptv_brect;
    static constexpr auto *convex = jorm_2d_ptv_isconvex;
    static constexpr auto *clockwise = jorm_2d_ptv_isclockwise;
    static constexpr auto *sort = jorm_2d_ptv_sort_$I;
    static constexpr auto *centroid = jorm_2d_ptv_centroid;
    static constexpr auto *raw = jorm_2d_ptv_moment2;
    static constexpr auto *central = jorm_2d_ptv_moment2_$c;
    static constexpr auto *area = jorm_2d_poly_area;
    static constexpr auto *perimeter = jorm_2d_poly_perimeter;
    static constexpr auto *inside = jorm_2d_poly_inside;
    static constexpr auto *poly_centroid = jorm_2d_poly_centroid;
    static constexpr auto *poly_raw = jorm_2d_poly_moment2;
    static constexpr auto *poly_central = jorm_2d_poly_moment2_$c;
    static constexpr auto *min_quad = jorm_2d_ptv_minbquad_$r;
    static constexpr auto *ellipse = __jorm_r2d_ellipse__$moment2$c;
};

template <> struct family<jorm_f2d_pt> {
    using rect = jorm_f2d_rect;
    using quad = jorm_f2d_quad;
    using ell = jorm_f2d_ell;
    using centre = jorm_f2d_pt;
    static constexpr auto *hull = jorm_f2d_ptv_convexhull;
    static constexpr auto *bounds = jorm_f2d_ptv_brect;
    static constexpr auto *convex = jorm_f2d_ptv_isconvex;
    static constexpr auto *clockwise = jorm_f2d_ptv_isclockwise;
    static constexpr auto *sort = jorm_f2d_ptv_sort_$I;
    static constexpr auto *centroid = jorm_f2d_ptv_centroid;
    static constexpr auto *raw = jorm_f2d_ptv_moment2;
    static constexpr auto *central = jorm_f2d_ptv_moment2_$c;
    static constexpr auto *area = jorm_f2d_poly_area;
    static constexpr auto *perimeter = jorm_f2d_poly_perimeter;
    static constexpr auto *inside = jorm_f2d_poly_inside;
    static constexpr auto *poly_centroid = jorm_f2d_poly_centroid;
    static constexpr auto *poly_raw = jorm_f2d_poly_moment2;
    static constexpr auto *poly_central = jorm_f2d_poly_moment2_$c;
    static constexpr auto *min_quad = jorm_f2d_ptv_minbquad;
    static constexpr auto *ellipse = __jorm_f2d_ellipse__$moment2$c;
};

template <> struct family<jorm_r2d_pt> {
    using rect = jorm_r2d_rect;
    using quad = jorm_r2d_quad;
    using ell = jorm_r2d_ell;
    using centre = jorm_r2d_pt;
    static constexpr auto *hull = jorm_r2d_ptv_convexhull;
    static constexpr auto *bounds = jorm_r2d_ptv_brect;
    static constexpr auto *convex = jorm_r2d_ptv_isconvex;
    static constexpr auto *clockwise = jorm_r2d_ptv_isclockwise;
    static constexpr auto *sort = jorm_r2d_ptv_sort_$I;
    static constexpr auto *centroid = jorm_r2d_ptv_centroid;
    static constexpr auto *raw = jorm_r2d_ptv_moment2;
    static constexpr auto *central = jorm_r2d_ptv_moment2_$c;
    static constexpr auto *area = jorm_r2d_poly_area;
    static constexpr auto *perimeter = jorm_r2d_poly_perimeter;
    static constexpr auto *inside = jorm_r2d_poly_inside;
    static constexpr auto *poly_centroid = jorm_r2d_poly_centroid;
    static constexpr auto *poly_raw = jorm_r2d_poly_moment2;
    static constexpr auto *poly_central = jorm_r2d_poly_moment2_$c;
    static constexpr auto *min_quad = jorm_r2d_ptv_minbquad;
    static constexpr auto *ellipse = __jorm_r2d_ellipse__$moment2$c;
};

inline int32_t count(size_t n) { return int32_t(std::min(n, size_t(0x7FFFFFFF))); }

/// The element of a contiguous range, and the functions for it.
template <class R> using point_of = std::remove_cv_t<std::ranges::range_value_t<R>>;
template <class R> using family_of = family<point_of<R>>;

template <class R>
concept points = std::ranges::contiguous_range<R> && std::ranges::sized_range<R> && requires {
    typename family<point_of<R>>::rect;
};

// What a function of the C interface tells of the points, and a figure that it writes through its first argument.
template <class R, class Function, class... Rest> auto of(Function *function, R &&p, Rest... rest) {
    return function(std::ranges::data(p), count(std::ranges::size(p)), rest...);
}
template <class Figure, class R, class Function> Figure figure(Function *function, const R &p) {
    Figure out;
    function(&out, std::ranges::data(p), count(std::ranges::size(p)));
    return out;
}

} // namespace detail

// Every function takes a contiguous range of points of one family: jorm_2d_pt (int32_t), jorm_f2d_pt (float) or
// jorm_r2d_pt (double). At most 2147483647 points count. Nothing here fails.

// ---- Points ----

/// The convex hull, the lowest point first (up to three points: as given).
template <detail::points R> std::vector<detail::point_of<R>> convex_hull(const R &p) {
    std::vector<detail::point_of<R>> out(std::ranges::size(p));
    const int32_t n = detail::family_of<R>::hull(out.data(), std::ranges::data(p), detail::count(out.size()));
    out.resize(size_t(n));
    return out;
}
/// The smallest axis-parallel rectangle.
template <detail::points R> auto bounding_rect(const R &p) {
    return detail::figure<typename detail::family_of<R>::rect>(detail::family_of<R>::bounds, p);
}
/// The rectangle of least area, in any direction.
template <detail::points R> auto min_area_quad(const R &p) {
    return detail::figure<typename detail::family_of<R>::quad>(detail::family_of<R>::min_quad, p);
}
/// The mean point.
template <detail::points R> auto centroid(const R &p) {
    return detail::figure<typename detail::family_of<R>::centre>(detail::family_of<R>::centroid, p);
}
/// The means of x x, x y and y y.
template <detail::points R> jorm_r2d_moment2 moments(const R &p) {
    return detail::figure<jorm_r2d_moment2>(detail::family_of<R>::raw, p);
}
/// The same about the centroid.
template <detail::points R> jorm_r2d_moment2 central_moments(const R &p) {
    return detail::figure<jorm_r2d_moment2>(detail::family_of<R>::central, p);
}
/// The ellipse with the centroid and the central moments of the points, which for the pixels of a filled ellipse is
/// that ellipse. Semi-axes are k standard deviations.
template <detail::points R> auto ellipse(const R &p, double k = 2) {
    using family = detail::family_of<R>;
    const auto centre = centroid(p);
    const jorm_r2d_moment2 about = central_moments(p);
    typename family::ell out;
    family::ellipse(&out, &centre, &about, k);
    return out;
}
/// Sorts by angle around the lowest point, which comes first.
template <detail::points R> void sort_by_angle(R &&p) { detail::of(detail::family_of<R>::sort, p); }

// ---- Polygons: the closed outline through the points ----

template <detail::points R> double area(const R &p) { return detail::of(detail::family_of<R>::area, p); }
template <detail::points R> double perimeter(const R &p) { return detail::of(detail::family_of<R>::perimeter, p); }
/// Whether the point lies inside or on the outline.
template <detail::points R> bool contains(const R &p, const detail::point_of<R> &point) {
    return detail::of(detail::family_of<R>::inside, p, &point) != 0;
}
template <detail::points R> bool is_convex(const R &p) { return detail::of(detail::family_of<R>::convex, p) != 0; }
/// Clockwise where y points up, or without area.
template <detail::points R> bool is_clockwise(const R &p) {
    return detail::of(detail::family_of<R>::clockwise, p) != 0;
}
/// The centroid of the area, and its second moments per unit of area, raw and central.
template <detail::points R> auto polygon_centroid(const R &p) {
    return detail::figure<typename detail::family_of<R>::centre>(detail::family_of<R>::poly_centroid, p);
}
template <detail::points R> jorm_r2d_moment2 polygon_moments(const R &p) {
    return detail::figure<jorm_r2d_moment2>(detail::family_of<R>::poly_raw, p);
}
template <detail::points R> jorm_r2d_moment2 polygon_central_moments(const R &p) {
    return detail::figure<jorm_r2d_moment2>(detail::family_of<R>::poly_central, p);
}

// ---- Sorting and searching ----

namespace detail {
template <class T, class Order> struct comparison {
    static int32_t call(const void *a, const void *b, void *order) {
        const auto c = (*static_cast<Order *>(order))(*static_cast<const T *>(a), *static_cast<const T *>(b));
        return c < 0 ? -1 : c > 0 ? 1 : 0;
    }
};
template <class R>
concept elements = std::ranges::contiguous_range<R> && std::ranges::sized_range<R> &&
    std::is_trivially_copyable_v<std::ranges::range_value_t<R>>;

template <class R, class Order>
void sort(void function(void *, size_t, size_t, jorm_ulcmp, void *), R &&range, Order &order) {
    using T = std::ranges::range_value_t<R>;
    function(std::ranges::data(range), std::ranges::size(range), sizeof(T), comparison<T, Order>::call, &order);
}
} // namespace detail

/// Sort ascending. The order is a three-way comparison, which must not throw; its result is compared with 0. Elements
/// are trivially copyable. quick_sort and heap_sort take O(n log n) comparisons always, insert_sort is the stable one,
/// select_sort swaps least.
template <detail::elements R, class Order = std::compare_three_way> void quick_sort(R &&range, Order order = {}) {
    detail::sort(UlQuickSort_nck, range, order);
}
template <detail::elements R, class Order = std::compare_three_way> void heap_sort(R &&range, Order order = {}) {
    detail::sort(UlHeapSort_nck, range, order);
}
template <detail::elements R, class Order = std::compare_three_way> void insert_sort(R &&range, Order order = {}) {
    detail::sort(UlInsertSort_nck, range, order);
}
template <detail::elements R, class Order = std::compare_three_way> void select_sort(R &&range, Order order = {}) {
    detail::sort(UlSelectSort_nck, range, order);
}
/// An element of a sorted range that equals the key, or null.
template <detail::elements R, class Order = std::compare_three_way>
const std::ranges::range_value_t<R> *search(const R &range, const std::ranges::range_value_t<R> &key,
                                            Order order = {}) {
    using T = std::ranges::range_value_t<R>;
    return static_cast<const T *>(UlBsearch(&key, std::ranges::data(range), std::ranges::size(range), sizeof(T),
                                            detail::comparison<T, Order>::call, &order));
}

} // namespace cxx
} // namespace jorm

JORM_END_DOLLARS

#endif
