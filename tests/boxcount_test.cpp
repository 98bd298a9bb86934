// Relative box counting over random types, layouts, regions, windows, ranges and levels, against plain loops.
#include "jorm/stats.h"
#include "support/picture.hpp"

namespace {

double boxes(double low, double high, double height) {
    return height > 0 ? std::fmax(1, std::ceil((high - low) / height)) : 1;
}

void check_case(Random &r, jorm_xe *xe, int rows, int pixels) {
    const uint32_t type = r.of(std::array{JORM_U8, JORM_S16, JORM_S32, JORM_F32});
    const int axes = r.in(3, 4), style = r.in(0, 2);
    const Index full = {axes == 4 ? r.in(1, 4) : 1, rows, pixels, r.in(1, 3)};
    Picture src(r, type, full, false, axes);
    src.fill([&] {
        if (type == JORM_F32) return style == 0 && r.one_in(3) ? nan : r.in(-1000, 1000) / 64.;
        return style == 0 ? r.of(std::array{lowest(type), highest(type)}) : r.in(0, 100);
    });
    const Part part(r, full);
    const Index &o = part.origin, &n = part.size;
    const bool with_shape = !r.one_in(4);
    jorm_seshape shape = {};
    Index window = {1, 5, 5, 1};
    if (with_shape) {
        window = {r.in(1, 3), r.in(1, 9), r.in(2, 9), 1};
        for (size_t i = 0; i < 3; ++i) shape.extent[i] = window[i], shape.anchor[i] = r.in(0, 1);
    }
    if (axes == 3) window[0] = 1;

    // Given ranges: valid, degenerate, without bounds; for the last the measured range.
    const bool given = r.one_in(2);
    vrng ranges[4], used[4];
    Index one = n;
    one[3] = 1;
    for (int c = 0; c < n[3]; ++c) {
        double low = inf, high = -inf;
        each(one, [&](const Index &i) {
            const double v = src.get(sum(sum(i, o), {0, 0, 0, c}));
            low = std::fmin(low, v), high = std::fmax(high, v);
        });
        ranges[c] = r.of(std::array{vrng{-3.5, 96.25}, vrng{7, 7}, vrng{9, 2}, vrng{-inf, 5}});
        used[c] =
            given && ranges[c].lo <= ranges[c].hi && ranges[c].lo > -inf ? ranges[c] : vrng{float(low), float(high)};
        if (!given) ranges[c] = {1, 0};
        if (low > high) used[c] = {0, 0}; // nothing but NaN
    }
    double expected[4] = {-7, -7, -7, -7};
    const uint32_t chosen = r.one_in(2) ? 0 : r() & 15;
    for (int c = 0; c < n[3]; ++c) {
        if ((chosen & ((1u << n[3]) - 1)) != 0 ? (chosen >> c & 1) == 0 : chosen != 0) continue;
        expected[c] = 0;
        const double height = (used[c].hi - used[c].lo) * window[1] / n[1];
        for (int z = 0; z < n[0]; z += window[0])
            for (int y = 0; y < n[1]; y += window[1])
                for (int x = 0; x < n[2]; x += window[2]) {
                    double low = inf, high = -inf;
                    each({std::min(window[0], n[0] - z), std::min(window[1], n[1] - y), std::min(window[2], n[2] - x),
                          1},
                         [&](const Index &i) {
                             const double v = src.get(sum(sum(i, o), {z, y, x, c}));
                             low = std::fmin(low, v), high = std::fmax(high, v);
                         });
                    expected[c] += boxes(low, high, height);
                }
    }
    for (int level = 0; level < jorm::level_count; ++level) {
        use_level(level);
        double results[4] = {-7, -7, -7, -7};
        ASSERT_EQ(JormCountRelBox(xe, uint64_t(chosen) << 4, &src.a, part.roi(), with_shape ? &shape : nullptr,
                                  given ? ranges : nullptr, results),
                  JORM_OK);
        for (int c = 0; c < 4; ++c) ASSERT_EQ(results[c], expected[c]) << "type " << type << " level " << level;
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

TEST(BoxCount, Refusals) {
    Random r(62);
    Picture a(r, JORM_U8, {1, 6, 6, 3}, true), four(r, JORM_U8, {1, 6, 6, 4}, true),
        f64(r, JORM_F64, {1, 6, 6, 1}, true);
    Env xe;
    double results[4] = {-7, -7, -7, -7};
    const jorm_site outside = {{0, 6, 0, 0}, {1, 1, 1, 3}};
    const jorm_seshape narrow = {{}, {1, -6, 3, 0}};
    const auto count = [&](jorm_xe *e, const jorm_array *src, const jorm_site *roi, const jorm_seshape *shape,
                           double *to) { return JormCountRelBox(e, 0, src, roi, shape, nullptr, to); };
    expect_each(JORM_EINVAL,
                {count(nullptr, &a.a, nullptr, nullptr, results), count(xe, nullptr, nullptr, nullptr, results),
                 count(xe, &a.a, nullptr, nullptr, nullptr), count(xe, &four.a, nullptr, nullptr, results)});
    EXPECT_EQ(count(xe, &a.a, &outside, nullptr, results), JORM_EEMPTY);
    EXPECT_EQ(count(xe, &f64.a, nullptr, nullptr, results), JORM_ENOTSUP);
    EXPECT_EQ(results[0], -7);
    EXPECT_EQ(count(xe, &a.a, nullptr, &narrow, results), JORM_OK); // an extent of 0 becomes 1
}

} // namespace
