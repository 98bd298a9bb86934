#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "geometry/pointset.hpp"
#include "sort/sort.hpp"

namespace jorm {
namespace {

// The sign of a sum, from a sum of components that do not overlap: exact (Shewchuk, 1997).
template <int N> int sign_of_sum(const double (&terms)[N]) {
    double parts[N];
    int count = 0;
    for (double sum : terms) {
        int kept = 0;
        for (int i = 0; i < count; ++i) {
            const double a = sum, b = parts[i];
            sum = a + b;
            const double b_part = sum - a, lost = (a - (sum - b_part)) + (b - b_part);
            if (lost != 0) parts[kept++] = lost;
        }
        if (sum != 0) parts[kept++] = sum;
        count = kept;
    }
    return count ? (parts[count - 1] > 0) - (parts[count - 1] < 0) : 0;
}

// x y and what its rounding lost.
void put_product(double x, double y, double *terms) {
    terms[1] = x * y;
    terms[0] = std::fma(x, y, -terms[1]);
}

// Whether b - a is free of rounding.
bool exact_difference(double a, double b) {
    const double d = b - a, a_part = b - d;
    return a_part == a && d + a_part == b;
}

} // namespace

int doubtful_turn(const jorm_r2d_pt &a, const jorm_r2d_pt &b, const jorm_r2d_pt &q) {
    if (exact_difference(a.x, b.x) && exact_difference(a.y, b.y) && exact_difference(a.x, q.x) &&
        exact_difference(a.y, q.y)) {
        double terms[4];
        put_product(b.y - a.y, q.x - a.x, terms);
        put_product(b.x - a.x, a.y - q.y, terms + 2);
        return sign_of_sum(terms);
    }
    double terms[12];
    put_product(b.y, q.x, terms);
    put_product(b.x, -q.y, terms + 2);
    put_product(a.y, b.x, terms + 4);
    put_product(a.x, -b.y, terms + 6);
    put_product(a.x, q.y, terms + 8);
    put_product(a.y, -q.x, terms + 10);
    return sign_of_sum(terms);
}

namespace {

// The sort for points, comparing with order(a, b) < 0, 0, > 0.
template <class P, class Order> void sort_points(P *points, size_t n, Order order) {
    quick_sort(FixedElement<sizeof(P)>{}, reinterpret_cast<char *>(points), n, [&](const char *a, const char *b) {
        return order(*reinterpret_cast<const P *>(a), *reinterpret_cast<const P *>(b));
    });
}

// By the angle around the pivot, then by the distance from it. The pivot is the lowest point: all directions lie within
// half a turn, and points in one direction are ordered by x or, straight above the pivot, by y.
template <class F> struct ExactOrder {
    Pt<F> pivot;

    int operator()(const Pt<F> &a, const Pt<F> &b) const {
        if (const int side = exact_turn<F>(pivot, a, b)) return -side;
        if (a.x != b.x) return a.x < b.x ? -1 : 1;
        return (a.y > b.y) - (a.y < b.y);
    }
};

// The same with angles and distances that differ by the tolerance or less taken as equal.
template <class F> struct AngularOrder {
    static constexpr double tolerance = 0x1p-23;
    Pt<F> pivot;

    struct Arm {
        double x, y;
        // The sum with 0 turns -0, which atan2 would see as the other direction, into 0.
        double angle() const { return std::atan2(x + 0.0, y + 0.0); }
        double length() const {
            const double square = x * x + y * y;
            return square > 1e-280 && square < 1e300 ? std::sqrt(square) : std::hypot(x, y);
        }
    };
    Arm arm(const Pt<F> &p) const {
        using Wide = typename F::Wide;
        return {double(Wide(p.x) - pivot.x), double(Wide(p.y) - pivot.y)};
    }

    int operator()(const Pt<F> &a, const Pt<F> &b) const {
        // With d the difference of the angles: l sin d and l cos d. For angles as small as the tolerance their quotient
        // is d itself but for a part in 10^14; what lies too close to the tolerance is left to atan2.
        const Arm u = arm(a), v = arm(b);
        const double sine = v.x * u.y - v.y * u.x, cosine = v.x * u.x + v.y * u.y;
        const double limit = tolerance * std::fabs(cosine), slack = 0x1p-20 * limit + 1e-280;
        if (std::fabs(sine) > limit + slack) return sine > 0 ? -1 : 1;
        const bool close = cosine > 0 && std::fabs(sine) < limit - slack;
        return within_tolerance(a, b, u, v, close);
    }

    [[gnu::noinline]] int within_tolerance(const Pt<F> &a, const Pt<F> &b, const Arm &u, const Arm &v,
                                           bool close) const {
        if (a.x == b.x && a.y == b.y) return 0;
        if (!close) {
            const double beyond = v.angle() - u.angle();
            if (beyond > tolerance) return -1;
            if (beyond < -tolerance) return 1;
        }
        const double farther = v.length() - u.length();
        if (farther > tolerance) return -1;
        if (farther < -tolerance) return 1;
        return ExactOrder<F>{pivot}(a, b);
    }
};

// Sorts n >= 1 points around the lowest, which comes first.
template <class F, template <class> class Order> void sort_around_lowest(Pt<F> *points, int32_t n) {
    std::swap(points[0], *const_cast<Pt<F> *>(lowest<F>(points, n)));
    sort_points(points + 1, size_t(n - 1), Order<F>{points[0]});
}

// The inside of the octagon of the points that are extreme along the axes and the diagonals, less a margin: the half
// planes a x + b y > c.
template <class F> struct Octagon {
    double a[8], b[8], c[8];
    bool usable = false;

    Octagon(const Pt<F> *points, int32_t n) {
        using Wide = typename F::Wide;
        const auto keys = [&](int32_t i, Wide(&key)[8]) {
            const Wide x = points[i].x, y = points[i].y;
            const Wide all[8] = {-x, y - x, y, y + x, x, x - y, -y, -x - y};
            std::copy(all, all + 8, key);
        };
        Wide most[8], key[8];
        int32_t at[8] = {};
        keys(0, most);
        for (int32_t i = 1; i < n; ++i) {
            keys(i, key);
            for (int k = 0; k < 8; ++k)
                if (key[k] > most[k]) {
                    most[k] = key[k];
                    at[k] = i;
                }
        }
        // The margin covers what rounding may add, so that no point outside or on an edge is taken for one inside.
        const double reach = std::max({double(most[0]), double(most[2]), double(most[4]), double(most[6])});
        if (!(reach < 1e150)) return;
        int edges = 0;
        for (int k = 0; k < 8; ++k) {
            const Pt<F> &p = points[at[k]], &q = points[at[(k + 1) % 8]];
            const double dx = double(Wide(q.x) - p.x), dy = double(Wide(q.y) - p.y);
            const double length = std::fabs(dx) + std::fabs(dy);
            if (!(length >= 0)) return; // NaN
            if (length == 0) continue;
            a[edges] = dy;
            b[edges] = -dx;
            c[edges++] = dy * p.x - dx * p.y + (0x1p-48 * length * reach + 1e-300);
        }
        usable = edges > 2;
        for (int k = edges; usable && k < 8; ++k) {
            a[k] = a[0];
            b[k] = b[0];
            c[k] = c[0];
        }
    }

    // How far a point lies inside, in units that differ from edge to edge; the comparison keeps NaN.
    double depth(const Pt<F> &p) const {
        double least = a[0] * p.x + b[0] * p.y - c[0];
        for (int k = 1; k < 8; ++k) {
            const double depth = a[k] * p.x + b[k] * p.y - c[k];
            least = least < depth ? least : depth;
        }
        return least;
    }
};

// Moves the points that may belong to the hull, all others on its edges among them, to the front; returns their number.
template <class F> int32_t discard_inside(Pt<F> *points, int32_t n) {
    constexpr int32_t block = 256, worthwhile = 32;
    if (n < worthwhile) return n;
    const Octagon<F> octagon(points, n);
    if (!octagon.usable) return n;
    double depth[block];
    Pt<F> *kept = points;
    for (int32_t start = 0; start < n; start += block) {
        Pt<F> *now = points + start;
        const int32_t count = std::min(block, n - start);
        for (int32_t i = 0; i < count; ++i) depth[i] = octagon.depth(now[i]);
        for (int32_t i = 0; i < count; ++i) {
            std::swap(*kept, now[i]);
            kept += !(depth[i] > 0);
        }
    }
    return int32_t(kept - points);
}

// Graham's scan of n >= 2 sorted points; the pivot is never popped.
template <class F> int32_t scan(Pt<F> *points, int32_t n) {
    int32_t top = 1;
    for (int32_t i = 2; i < n; ++i) {
        const Pt<F> q = points[i];
        int side = 1;
        while (top > 0 && (side = exact_turn<F>(points[top - 1], points[top], q)) < 0) --top;
        if (top == 0 || side > 0) ++top;
        points[top] = q;
    }
    return top + 1;
}

// Whether points in exact order, with any from inside between them, hold three consecutive ones that are not colinear:
// the first direction holds none from inside, and where it ends, at a point that is not repeated, is a corner. False
// means not known.
template <class F> bool surely_turns(const Pt<F> *points, int32_t n) {
    int32_t k = 1;
    while (k + 1 < n && exact_turn<F>(points[0], points[k], points[k + 1]) == 0) ++k;
    return k + 1 < n && (points[k].x != points[k - 1].x || points[k].y != points[k - 1].y);
}

template <class F> int32_t hull(Pt<F> *points, int32_t n) {
    if (!points || n < 4) return std::max(n, 0);
    int32_t kept = discard_inside<F>(points, n);
    sort_around_lowest<F, ExactOrder>(points, kept);
    if (kept == n || !surely_turns<F>(points, kept)) {
        if (kept < n) sort_around_lowest<F, ExactOrder>(points, kept = n);
        if (all_colinear<F>(points, n)) return n;
    }
    return scan<F>(points, kept);
}

template <class F> int32_t hull_of_copy(Pt<F> *out, const Pt<F> *points, int32_t n) {
    if (!points || n <= 0) return 0;
    memmove(out, points, size_t(n) * sizeof *out);
    return hull<F>(out, n);
}

template <class F> int32_t allocated_hull(const Pt<F> *points, int32_t n, Pt<F> **result) {
    *result = points && n > 0 ? static_cast<Pt<F> *>(malloc(size_t(n) * sizeof **result)) : nullptr;
    if (!*result) return 0;
    n = hull_of_copy<F>(*result, points, n);
    if (void *fitting = realloc(*result, size_t(n) * sizeof **result)) *result = static_cast<Pt<F> *>(fitting);
    return n;
}

template <class F> Pt<F> *angular_sort(Pt<F> *points, int32_t n) {
    if (points && n > 1) sort_around_lowest<F, AngularOrder>(points, n);
    return points;
}

} // namespace

template <class F> int32_t plain_hull(Pt<F> *points, int32_t n) {
    if (n < 2) return n;
    n = discard_inside<F>(points, n);
    sort_around_lowest<F, ExactOrder>(points, n);
    return scan<F>(points, n);
}
template int32_t plain_hull<Int2d>(jorm_2d_pt *, int32_t);
template int32_t plain_hull<F32>(jorm_f2d_pt *, int32_t);
template int32_t plain_hull<F64>(jorm_r2d_pt *, int32_t);

} // namespace jorm

using namespace jorm;

#define SORT(name, F, op)                                                                                              \
    F::Pt *name(F::Pt *points, int32_t n) { return op<F>(points, n); }
#define HULL(name, F, op)                                                                                              \
    int32_t name(F::Pt *points, int32_t n) { return op<F>(points, n); }
#define HULL_OF_COPY(name, F, op)                                                                                      \
    int32_t name(F::Pt *out, const F::Pt *points, int32_t n) { return op<F>(out, points, n); }
#define ALLOCATED_HULL(name, F, op)                                                                                    \
    int32_t name(const F::Pt *points, int32_t n, F::Pt **result) { return op<F>(points, n, result); }

// clang-format off
JORM_ALL_FAMILIES(SORT, angular_sort, jorm_2d_ptv_sort_$I, jorm_f2d_ptv_sort_$I, jorm_r2d_ptv_sort_$I)
JORM_ALL_FAMILIES(HULL, hull, jorm_2d_ptv_convexhull_$I, jorm_f2d_ptv_convexhull_$I, jorm_r2d_ptv_convexhull_$I)
JORM_ALL_FAMILIES(HULL_OF_COPY, hull_of_copy, jorm_2d_ptv_convexhull, jorm_f2d_ptv_convexhull, jorm_r2d_ptv_convexhull)
JORM_ALL_FAMILIES(ALLOCATED_HULL, allocated_hull, jorm_2d_ptv_aconvexhull, jorm_f2d_ptv_aconvexhull, jorm_r2d_ptv_aconvexhull)
