#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "geometry/pointset.hpp"

namespace jorm {
namespace {

// A rectangle with its sides along e and, a quarter turned from x toward y, (-e.y, e.x): ranges in both directions seen
// from the point at, in units of the length of e divided by its square.
struct Turned {
    jorm_r2d_pt at, e;
    double u0, u1, v0, v1;

    double square() const { return e.x * e.x + e.y * e.y; }
    double area() const { return (u1 - u0) * (v1 - v0) / square(); }

    // Corners in the order of the axis-parallel quadrilateral turned by as little as possible: of the four directions
    // along the sides the one nearest to x counts as x. With each quarter turn the order starts one corner earlier.
    template <class Quad> void store(Quad &out) const {
        using T = decltype(out.pt->x);
        int first = 0;
        for (jorm_r2d_pt x = e; first < 9 && !(x.y > -x.x && x.y <= x.x); first += 3) x = {-x.y, x.x};
        const double s = square(), u[4] = {u0, u0, u1, u1}, v[4] = {v0, v1, v1, v0};
        for (int i = 0; i < 4; ++i) {
            const int k = (first + i) & 3;
            out.pt[i] = {static_cast<T>(at.x + (u[k] * e.x - v[k] * e.y) / s),
                         static_cast<T>(at.y + (u[k] * e.y + v[k] * e.x) / s)};
        }
    }
};

// Rotating calipers: while the edges of a hull of m points pass by, the points farthest ahead, across and behind move
// once around it.
template <class F> struct Calipers {
    using Wide = typename F::Wide;
    struct Step {
        Wide x, y;
    };
    const Pt<F> *hull;
    int64_t m;
    int64_t ahead = 1, across = 1, behind = 1;

    Step step(int64_t from, int64_t to) const {
        const auto &p = hull[from % m], &q = hull[to % m];
        return {Wide(q.x) - p.x, Wide(q.y) - p.y};
    }
    static Product<F> along(Step e, Step d) { return Product<F>(e.x) * d.x + Product<F>(e.y) * d.y; }
    static Product<F> aside(Step e, Step d) { return Product<F>(e.x) * d.y - Product<F>(e.y) * d.x; }

    // The smallest rectangle with a side along edge i; edges in ascending order.
    Turned around_edge(int64_t i) {
        const Step e = step(i, i + 1);
        const int64_t end = i + m;
        ahead = std::max(ahead, i + 1);
        while (ahead < end && along(e, step(ahead, ahead + 1)) > 0) ++ahead;
        across = std::max(across, ahead);
        while (across < end && aside(e, step(across, across + 1)) < 0) ++across;
        behind = std::max(behind, across);
        while (behind < end && along(e, step(behind, behind + 1)) < 0) ++behind;
        Turned result = {{double(hull[i].x), double(hull[i].y)}, {double(e.x), double(e.y)}, 0, 0, 0, 0};
        result.u0 = double(along(e, step(i, behind)));
        result.u1 = double(along(e, step(i, ahead)));
        result.v0 = double(aside(e, step(i, across)));
        return result;
    }
};

// Copies the points among which the corners of the hull are, as many as there may be; returns their number.
template <class F> int32_t copy_outer(Pt<F> *to, const Pt<F> *points, int32_t n) {
    if constexpr (std::is_integral_v<typename F::Coord>) {
        // Of the points with the same x the two outer ones. First to[x - least] is their range of y.
        int32_t least = points[0].x, most = least;
        for (int32_t i = 1; i < n; ++i) {
            least = std::min(least, points[i].x);
            most = std::max(most, points[i].x);
        }
        const int64_t lines = int64_t(most) - least + 1;
        if (2 * lines <= n) {
            std::fill_n(to, lines, Pt<F>{INT32_MAX, INT32_MIN});
            for (int32_t i = 0; i < n; ++i) {
                Pt<F> &range = to[points[i].x - least];
                range = {std::min(range.x, points[i].y), std::max(range.y, points[i].y)};
            }
            Pt<F> *const end = to + 2 * lines, *kept = end;
            for (int64_t line = lines; line-- > 0;) {
                const Pt<F> range = to[line];
                if (range.x < range.y) *--kept = {int32_t(least + line), range.y};
                if (range.x <= range.y) *--kept = {int32_t(least + line), range.x};
            }
            std::copy(kept, end, to);
            return int32_t(end - kept);
        }
    }
    memcpy(to, points, size_t(n) * sizeof *to);
    return n;
}

// Replaces the axis-parallel quadrilateral in out if another one is smaller.
template <class F, class Quad> void shrink(Quad &out, const Pt<F> *points, int32_t n) {
    using P = Pt<F>;
    if (!points || n < 2) return;
    const std::unique_ptr<P, decltype(&free)> copy(static_cast<P *>(malloc(size_t(n) * sizeof(P))), free);
    if (!copy) return;
    P *hull = copy.get();
    const int32_t m = plain_hull<F>(hull, copy_outer<F>(hull, points, n));
    const auto [left, right] = std::minmax_element(hull, hull + m, [](const P &a, const P &b) { return a.x < b.x; });
    const auto [low, high] = std::minmax_element(hull, hull + m, [](const P &a, const P &b) { return a.y < b.y; });
    double least = (double(right->x) - double(left->x)) * (double(high->y) - double(low->y));
    Turned best = {};
    Calipers<F> calipers{hull, m};
    for (int64_t i = 0; i < m; ++i) {
        const Turned now = calipers.around_edge(i);
        if (!(now.area() < least)) continue;
        least = now.area();
        best = now;
    }
    if (best.square() > 0) best.store(out);
}

} // namespace
} // namespace jorm

using namespace jorm;

#define MINBQUAD(name, F, Quad, bquad)                                                                                 \
    Quad *name(Quad *out, const F::Pt *points, int32_t n) {                                                            \
        bquad(out, points, n);                                                                                         \
        shrink<F>(*out, points, n);                                                                                    \
        return out;                                                                                                    \
    }

// clang-format off
MINBQUAD(jorm_2d_ptv_minbquad_$f, Int2d, jorm_f2d_quad, jorm_2d_ptv_bquad_$f)
MINBQUAD(jorm_2d_ptv_minbquad_$r, Int2d, jorm_r2d_quad, jorm_2d_ptv_bquad_$r)
MINBQUAD(jorm_f2d_ptv_minbquad, F32, jorm_f2d_quad, jorm_f2d_ptv_bquad)
MINBQUAD(jorm_r2d_ptv_minbquad, F64, jorm_r2d_quad, jorm_r2d_ptv_bquad)
