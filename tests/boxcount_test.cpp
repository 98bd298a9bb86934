// Relative box counting over random types, layouts, regions, windows, ranges and levels, against plain loops.
#include "jorm/stats.h"
#include "support/read_case.hpp"

#include <map>

namespace {

double boxes(double low, double high, double height) {
    return height > 0 ? std::fmax(1, std::ceil((high - low) / height)) : 1;
}

void check_case(Random &r, jorm_xe *xe, int rows, int pixels) {
    const uint32_t type = r.of(std::array{JORM_U8, JORM_S16, JORM_S32, JORM_F32});
    ReadCase c(r, type, rows, pixels, false);
    const int style = r.in(0, 2);
    c.src.fill([&] {
        if (type == JORM_F32) return style == 0 && r.one_in(3) ? nan : r.in(-1000, 1000) / 64.;
        return style == 0 ? r.of(std::array{lowest(type), highest(type)}) : r.in(0, 100);
    });
    const Index &n = c.n;
    const bool with_shape = !r.one_in(4), given = r.one_in(2);
    jorm_seshape shape = {};
    Index window = {1, 5, 5, 1};
    if (with_shape) {
        window = {r.in(1, 3), r.in(1, 9), r.in(2, 9), 1};
        for (size_t i = 0; i < 3; ++i) shape.extent[i] = window[i], shape.anchor[i] = r.in(0, 1);
    }
    if (c.axes == 3) window[0] = 1;

    // Given ranges: valid, degenerate, without bounds; for the last the measured range.
    vrng ranges[4];
    double expected[4] = {-7, -7, -7, -7};
    for (int k = 0; k < n[3]; ++k) {
        std::map<Index, vrng> extrema; // of each window and, at a place of its own, of the region
        const Index all = {-1, -1, -1, -1};
        c.each_sample(k, [&](double v, const Index &i) {
            for (const Index &at : {Index{i[0] / window[0], i[1] / window[1], i[2] / window[2], 0}, all}) {
                vrng &range = extrema.try_emplace(at, vrng{inf, -inf}).first->second;
                range = {std::fmin(range.lo, v), std::fmax(range.hi, v)};
            }
        });
        vrng used = {float(extrema[all].lo), float(extrema[all].hi)};
        if (used.lo > used.hi) used = {0, 0}; // nothing but NaN
        ranges[k] = r.of(std::array{vrng{-3.5, 96.25}, vrng{7, 7}, vrng{9, 2}, vrng{-inf, 5}});
        if (given && ranges[k].lo <= ranges[k].hi && ranges[k].lo > -inf && extrema[all].lo <= extrema[all].hi)
            used = ranges[k];
        if (!c.selects(k)) continue;
        extrema.erase(all);
        expected[k] = 0;
        for (const auto &[at, range] : extrema)
            expected[k] += boxes(range.lo, range.hi, (used.hi - used.lo) * window[1] / n[1]);
    }
    for (int level = 0; level < jorm::level_count; ++level) {
        use_level(level);
        double results[4] = {-7, -7, -7, -7};
        ASSERT_EQ(JormCountRelBox(xe, c.options, &c.src.a, c.part.roi(), with_shape ? &shape : nullptr,
                                  given ? ranges : nullptr, results),
                  JORM_OK);
        for (int k = 0; k < 4; ++k) ASSERT_EQ(results[k], expected[k]) << "type " << type << " level " << level;
    }
}

TEST(BoxCount, Counts) {
    Random r(61);
    Env xe;
    for (int i = 0; i < 2560; ++i) {
        const bool large = i >= 2500;
        const int rows = r.in(1, large ? 30 : 14), pixels = r.in(1, large ? 900 : 20);
        check_case(r, xe, rows, pixels);
    }
}

TEST(BoxCount, FourChannelsAndEmptyWindows) {
    Random r(62);
    const Picture three(r, JORM_U8, {1, 6, 6, 3}), four(r, JORM_U8, {1, 6, 6, 4});
    const jorm_seshape narrow = {{}, {1, -6, 3, 0}}; // an extent of 0 becomes 1
    double results[4];
    Env xe;
    EXPECT_EQ(JormCountRelBox(xe, 0, &four.a, nullptr, nullptr, nullptr, results), JORM_EINVAL);
    EXPECT_EQ(JormCountRelBox(xe, 0, &three.a, nullptr, &narrow, nullptr, results), JORM_OK);
}

} // namespace
