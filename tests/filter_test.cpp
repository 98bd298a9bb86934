// Minima, maxima, means, openings and closings of rectangular windows.
#include "jorm/filter.h"
#include "support/extremum_case.hpp"

namespace {

constexpr uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};

// The mean of exact sums, or of sums in double precision, rounded to nearest even.
double mean(const WindowCase &c, const Index &p) {
    if (c.src.eltype == JORM_F32) {
        double sum = 0;
        c.each_in_window(p, [&](double v, const Index &) { sum += v; });
        return float((long double)sum / (c.shape.extent[0] * c.shape.extent[1] * c.shape.extent[2]));
    }
    const int64_t area = int64_t(c.shape.extent[0]) * c.shape.extent[1] * c.shape.extent[2];
    int64_t sum = 0;
    c.each_in_window(p, [&](double v, const Index &) { sum += int64_t(v); });
    int64_t q = sum / area - (sum % area < 0), rest = sum - q * area;
    if (2 * rest > area || (2 * rest == area && q % 2 != 0)) ++q;
    return double(q);
}

double wanted(const WindowCase &c, uint32_t kind, const Index &p) {
    const ExtremumOracle oracle = {c, nullptr};
    switch (kind) {
    case JORM_FILTER_NUL:
        return c.at(p);
    case JORM_FILTER_MIN:
    case JORM_FILTER_MAX:
        return oracle.once(p, kind == JORM_FILTER_MAX);
    case JORM_FILTER_BOX:
        return mean(c, p);
    case JORM_FILTER_CLOSE:
    case JORM_FILTER_OPEN:
        return oracle.twice(p, kind == JORM_FILTER_CLOSE);
    default:
        return oracle.hat(p, kind == JORM_FILTER_BOTHAT);
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
