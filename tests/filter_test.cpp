// Minima, maxima, means, openings and closings of rectangular windows.
#include "jorm/filter.h"
#include "jorm/morphology.h"
#include "jorm/sepfilter.h"
#include "jorm/threshold.h"
#include "support/extremum_case.hpp"
#include "support/failures.hpp"

namespace {

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

struct Filter : WindowTest {
    void run(uint32_t kind, int count, int max_window, bool specials) {
        for (int i = 0; i < count && !HasFailure(); ++i) {
            const uint32_t type = r.of(types);
            WindowCase c(r, type, 1, r.one_in(4) ? max_window : 5);
            if (type == JORM_F32)
                c.picture.fill([&] {
                    return specials && r.one_in(3) ? r.of(std::array{nan, inf, -inf, 1e30})
                                                   : float(r.in(-9999, 9999)) / 8;
                });
            c.check([&] { return c.call(JormFilter, xe, kind, &c.shape); },
                    [&](const Index &p) { return wanted(c, kind, p); });
        }
    }
};

TEST_F(Filter, ExtremaOfEveryWindow) {
    run(JORM_FILTER_MIN, 1500, 40, true);
    run(JORM_FILTER_MAX, 1500, 40, true);
    run(JORM_FILTER_NUL, 100, 3, false);
}

// Rows around one, two and more registers, in pairs and alone, at all edges or inside a larger picture.
TEST_F(Filter, ExtremaOfSmallWindows) {
    for (int i = 0; i < 400; ++i) {
        use_level(r.in(0, jorm::level_count - 1));
        const uint32_t type = r.of(types);
        const int lanes = 64 / bytes_of(type), size = 3 + 2 * (i % 2), anchor = r.in(0, size - 1);
        const int w = r.of(std::array{2, 3, 4, 5}) * lanes / 2 + r.in(-3, 6), h = r.in(1, 9);
        Picture from(r, type, {1, h, w, 1}, false, 3), to(r, type, {1, h, w, 1}, false, 3);
        if (type == JORM_F32)
            from.fill([&] { return i % 3 == 0 && r.one_in(500) ? nan : float(r.in(-9999, 9999)) / 8; });
        const bool largest = r.one_in(2);
        const int top = r.in(0, h / 3), left = r.in(0, 6), right = r.in(0, 6);
        jorm_site site = site_of({0, top, left, 0}, {1, h - top, w - left - right, 1});
        const jorm_seshape shape = {{0, anchor, size - 1 - anchor}, {1, size, size}};
        ASSERT_EQ(JormFilter(xe, 0, &to.a, &from.a, &site, &site, largest ? JORM_FILTER_MAX : JORM_FILTER_MIN, &shape),
                  JORM_OK);
        each({1, h - top, w - left - right, 1}, [&](const Index &p) {
            double best = nan;
            for (int y = 0; y < size; ++y)
                for (int x = 0; x < size; ++x) {
                    const Index at = {0, mirrored(top + p[1] - anchor + y, h),
                                      mirrored(left + p[2] - (size - 1 - anchor) + x, w), 0};
                    const double v = load(type, element(from.a, at));
                    if (std::isnan(best) || (largest ? v > best : v < best)) best = v;
                }
            const double got = load(type, element(to.a, sum(p, {0, top, left, 0})));
            ASSERT_TRUE(same(got, best) || got == best)
                << type << " " << size << " at " << p[1] << ", " << p[2] << " of " << w;
        });
        if (HasFatalFailure()) return;
    }
}

TEST_F(Filter, MeansOfEveryWindow) {
    run(JORM_FILTER_BOX, 3000, 40, true);
    run(JORM_FILTER_BOX, 40, 150, true);
    run(JORM_FILTER_BOX, 12, 300, true);
}

// Rows of bytes longer than the registers that small windows go through, whole pictures and views in them.
TEST_F(Filter, SmallMeansOfLongRows) {
    for (int i = 0; i < 120; ++i) {
        use_level(i % jorm::level_count);
        const Index size = {1, r.in(1, 7), i % 2 ? 192 + r.in(0, 1) * 64 : r.in(190, 460), 1};
        Picture src(r, JORM_U8, size, true), dst(r, JORM_U8, size, true);
        const bool white = r.one_in(4); // the largest sums
        src.fill([&] { return white ? 255 : r.in(0, 255); });
        jorm_seshape window;
        __jorm_seshape__$g2(&window, r.one_in(2) ? 3 : 5, r.one_in(2) ? 3 : 5);
        const int margin = r.in(0, 3);
        const jorm_site roi = site_of({0, 0, margin, 0}, {1, size[1], size[2] - 2 * margin, 1});
        ASSERT_EQ(JormFilter(xe, 0, &dst.a, &src.a, &roi, &roi, JORM_FILTER_BOX, &window), JORM_OK);
        int wrong = 0;
        each({1, size[1], roi.size[2], 1}, [&](Index p) {
            p[2] += margin;
            int sum = 0;
            each({1, window.extent[1], window.extent[2], 1}, [&](const Index &q) {
                sum += int(src.get({0, mirrored(p[1] + q[1] - window.anchor[1], size[1]),
                                    mirrored(p[2] + q[2] - window.anchor[2], size[2]), 0}));
            });
            wrong += dst.get(p) != std::nearbyint(double(sum) / (window.extent[1] * window.extent[2]));
        });
        ASSERT_EQ(wrong, 0) << size[1] << " by " << size[2] << ", margin " << margin << ", window of "
                            << window.extent[1] << " by " << window.extent[2];
    }
}

TEST_F(Filter, OpeningsAndClosings) {
    for (const uint32_t kind : {JORM_FILTER_CLOSE, JORM_FILTER_OPEN, JORM_FILTER_BOTHAT, JORM_FILTER_TOPHAT})
        run(kind, 250, 11, false);
}

// Whatever request for memory fails, the status tells so, nothing is written and nothing stays taken.
TEST_F(Filter, MemoryThatCannotBeHad) {
    constexpr Index size = {1, 20, 30, 1};
    uint8_t disk[7][7] = {};
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 7; ++x) disk[y][x] = (y - 3) * (y - 3) + (x - 3) * (x - 3) < 10 ? 255 : 0;
    jorm_strel mask = {{0, 3, 3, 0}, {}};
    jorm_array_make(&mask.mask, JORM_U8, 7, 7, 1, 0, disk);
    jorm_seshape window;
    __jorm_seshape__$g2(&window, 5, 9);
    const double weights[9] = {1, 2, 4, 2, 1, 0.5, 3, 2, 1}, adaptive[2] = {3, nan};
    const jorm_sepkernel kernel = {window, {weights, weights}};

    using Array = const jorm_array *;
    using Call = std::function<int64_t(jorm_xe *, Array, Array)>;
    std::vector<std::pair<std::string, Call>> calls = {
        {"separable", [&](auto *e, Array d, Array s) { return JormSepFilter(e, 0, d, s, nullptr, nullptr, &kernel); }},
        {"Gaussian",
         [&](auto *e, Array d, Array s) { return JormGaussianFilter(e, 0, d, s, nullptr, nullptr, &window, nullptr); }},
        {"firefly", [&](auto *e, Array d,
                        Array s) { return JormFirefly(e, 0, d, s, nullptr, nullptr, &window, nullptr, nullptr); }},
        {"adaptive threshold",
         [&](auto *e, Array d, Array s) { return JormThreshold(e, 0, d, s, nullptr, nullptr, nullptr, adaptive, 1); }}};
    for (const uint32_t kind : {JORM_FILTER_MIN, JORM_FILTER_BOX, JORM_FILTER_CLOSE, JORM_FILTER_TOPHAT})
        calls.emplace_back("filter " + std::to_string(kind), [=, &window](auto *e, Array d, Array s) {
            return JormFilter(e, 0, d, s, nullptr, nullptr, kind, &window);
        });
    for (const uint32_t op : {JORM_MORPH_ERODE, JORM_MORPH_CLOSE, JORM_MORPH_TOPHAT})
        calls.emplace_back("masked " + std::to_string(op), [=, &mask](auto *e, Array d, Array s) {
            return JormMorphop(e, 0, d, s, nullptr, nullptr, op, &mask);
        });
    for (const uint32_t word : {JORM_THRESHOLD_USTO, JORM_THRESHOLD_BLUR})
        calls.emplace_back("threshold " + std::to_string(word), [=](auto *e, Array d, Array s) {
            jorm_thhmethod method = {};
            method.word = word;
            return JormThreshold(e, 0, d, s, nullptr, nullptr, &method, nullptr, 0);
        });

    for (const uint32_t type : {JORM_U8, JORM_F32})
        for (const bool in_place : {false, true}) {
            Picture src(r, type, size, true), other(r, type, size, true);
            src.fill([&] { return r.in(0, 255); });
            Picture &dst = in_place ? src : other;
            const Bytes before = dst.memory;
            for (const auto &[name, call] : calls) {
                int failures = 0, wrong = 0;
                const int requests = for_each_failure(name.c_str(), [&] {
                    jorm_xe *const small = JormXEopen(nullptr, nullptr, 1); // every request is one to the heap
                    if (!small) return;
                    uint64_t level[4], after[4];
                    JormXEgetmmsp(small, level);
                    const int64_t status = call(small, &dst.a, &src.a);
                    JormXEgetmmsp(small, after);
                    const bool failed = heap_calls_left < 0;
                    failures += failed;
                    wrong += status != (failed ? JORM_ENOMEM : JORM_OK) || (failed && dst.memory != before) ||
                             !std::equal(level, level + 4, after);
                    JormXEclose(small);
                    std::copy(before.begin(), before.end(), dst.memory.begin());
                });
                EXPECT_EQ(wrong, 0) << name << " of type " << type << (in_place ? " in place" : "");
                EXPECT_TRUE(!own_heap || failures > 0) << name << ", " << requests << " requests";
            }
        }
}

} // namespace
