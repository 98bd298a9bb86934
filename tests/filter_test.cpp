// Minima, maxima, means, openings and closings of rectangular windows.
#include "jorm/filter.h"
#include "support/window_case.hpp"

namespace {

constexpr uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};

// Extremum of the window of p; beyond the region it sees what `value` says.
template <class Value> double extremum(const WindowCase &c, const Index &p, bool largest, Value value) {
    double best = nan;
    const jorm_seshape &s = c.shape;
    each({s.extent[0], s.extent[1], s.extent[2], 1}, [&](const Index &q) {
        const double v =
            value(Index{p[0] - s.anchor[0] + q[0], p[1] - s.anchor[1] + q[1], p[2] - s.anchor[2] + q[2], p[3]});
        if (std::isnan(best) || (largest ? v > best : v < best)) best = v;
    });
    return best;
}

// The second pass sees the first one's results within the region, around it what never wins.
double twice(const WindowCase &c, const Index &p, bool closing) {
    const auto once = [&](const Index &i) { return extremum(c, i, closing, [&](const Index &k) { return c.at(k); }); };
    const double top = c.src.eltype == JORM_F32 ? double(FLT_MAX) : highest(c.src.eltype);
    const double bottom = c.src.eltype == JORM_F32 ? -double(FLT_MAX) : lowest(c.src.eltype);
    return extremum(c, p, !closing, [&](const Index &i) {
        bool inside = true;
        for (size_t k = 0; k < 3; ++k) inside = inside && i[k] >= 0 && i[k] < c.region.size[k];
        return inside ? once(i) : closing ? top : bottom;
    });
}

double difference(uint32_t type, double a, double b) {
    return type == JORM_F32 ? float(a - b) : std::clamp(a - b, lowest(type), highest(type));
}

// The exact mean, rounded to nearest even.
double mean(const WindowCase &c, const Index &p) {
    if (c.src.eltype == JORM_F32) {
        long double sum = 0;
        c.each_in_window(p, [&](double v, const Index &) { sum += v; });
        return float(sum / (c.shape.extent[0] * c.shape.extent[1] * c.shape.extent[2]));
    }
    const int64_t area = int64_t(c.shape.extent[0]) * c.shape.extent[1] * c.shape.extent[2];
    int64_t sum = 0;
    c.each_in_window(p, [&](double v, const Index &) { sum += int64_t(v); });
    int64_t q = sum / area - (sum % area < 0), rest = sum - q * area;
    if (2 * rest > area || (2 * rest == area && q % 2 != 0)) ++q;
    return double(q);
}

double wanted(const WindowCase &c, uint32_t kind, const Index &p) {
    const auto source = [&](const Index &i) { return c.at(i); };
    switch (kind) {
    case JORM_FILTER_NUL:
        return c.at(p);
    case JORM_FILTER_MIN:
        return extremum(c, p, false, source);
    case JORM_FILTER_MAX:
        return extremum(c, p, true, source);
    case JORM_FILTER_BOX:
        return mean(c, p);
    case JORM_FILTER_CLOSE:
        return twice(c, p, true);
    case JORM_FILTER_OPEN:
        return twice(c, p, false);
    case JORM_FILTER_BOTHAT:
        return difference(c.src.eltype, twice(c, p, true), c.at(p));
    default:
        return difference(c.src.eltype, c.at(p), twice(c, p, false));
    }
}

struct Filter : testing::Test {
    Random r{20};
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    ~Filter() override {
        JormXEclose(xe);
        use_level(0);
    }
    void run(uint32_t kind, int count, int max_window, bool specials) {
        for (int i = 0; i < count; ++i) {
            use_level(r.in(0, jorm::level_count - 1));
            const uint32_t type = r.of(types);
            WindowCase c(r, type, 1, r.one_in(4) ? max_window : 5);
            if (type == JORM_F32)
                c.picture.fill([&] {
                    return specials && r.one_in(3) ? r.of(std::array{nan, inf, -inf, 1e30})
                                                   : float(r.in(-9999, 9999)) / 8;
                });
            SCOPED_TRACE(c.describe());
            c.check(
                [&] {
                    return JormFilter(xe, c.flags, &c.dst, c.source(), c.destination_region(), c.source_region(), kind,
                                      &c.shape);
                },
                [&](const Index &p) { return wanted(c, kind, p); },
                [](double a, double b) { return same(a, b) || a == b; });
            if (HasFailure()) return;
        }
    }
};

TEST_F(Filter, ExtremaOfEveryWindow) {
    run(JORM_FILTER_MIN, 1500, 40, true);
    run(JORM_FILTER_MAX, 1500, 40, true);
    run(JORM_FILTER_NUL, 100, 3, false);
}

TEST_F(Filter, MeansOfEveryWindow) { run(JORM_FILTER_BOX, 3000, 40, true); }

TEST_F(Filter, OpeningsAndClosings) {
    for (const uint32_t kind : {JORM_FILTER_CLOSE, JORM_FILTER_OPEN, JORM_FILTER_BOTHAT, JORM_FILTER_TOPHAT})
        run(kind, 250, 11, false);
}

} // namespace
