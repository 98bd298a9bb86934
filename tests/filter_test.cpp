// Minima, maxima, means, openings and closings of rectangular windows.
#include "jorm/copy.h"
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
    const auto is_one = [kind](uint32_t a, uint32_t b) { return kind == a || kind == b; };
    return kind == JORM_FILTER_NUL                       ? c.at(p)
           : kind == JORM_FILTER_BOX                     ? mean(c, p)
           : is_one(JORM_FILTER_MIN, JORM_FILTER_MAX)    ? oracle.once(p, kind == JORM_FILTER_MAX)
           : is_one(JORM_FILTER_CLOSE, JORM_FILTER_OPEN) ? oracle.twice(p, kind == JORM_FILTER_CLOSE)
                                                         : oracle.hat(p, kind == JORM_FILTER_BOTHAT);
}

struct Filter : WindowTest {
    void run(uint32_t kind, int count, int max_window, bool specials) {
        for (int i = 0; i < count && !HasFailure(); ++i) {
            const uint32_t type = r.of(types);
            WindowCase c(r, type, 1, r.one_in(4) ? max_window : 5);
            const int one_in = r.one_in(2) ? 3 : 300;
            if (type == JORM_F32)
                c.picture.fill([&] {
                    return specials && r.one_in(one_in) ? r.of(std::array{nan, inf, -inf, 1e30})
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
TEST_F(Filter, SmallWindowsOfLongRows) {
    for (int i = 0; i < 520 && !HasFatalFailure(); ++i) {
        use_level(r.in(0, jorm::level_count - 1));
        const bool means = i % 4 == 0, white = r.one_in(4), plain = r.one_in(2), centred = means || r.one_in(2);
        const uint32_t extrema[] = {JORM_FILTER_MIN, JORM_FILTER_MAX};
        uint32_t type = r.of(types), kind = r.of(extrema);
        if (means) type = JORM_U8, kind = JORM_FILTER_BOX;
        const int halves = r.in(2, means ? 14 : 5), beside = r.one_in(3) ? 0 : r.in(-3, 6);
        const Index size = {1, r.in(1, 9), halves * 32 / bytes_of(type) + beside, 1};
        const int height = r.of(std::array{3, 5}), width = means ? r.of(std::array{3, 5}) : height;
        const int y0 = centred ? height / 2 : r.in(0, height - 1), x0 = centred ? width / 2 : r.in(0, width - 1);
        const jorm_seshape shape = {{0, y0, x0}, {1, height, width}};
        Picture from(r, type, size, plain), to(r, type, size, plain);
        if (means) from.fill([&] { return white ? 255 : r.in(0, 255); });
        if (type == JORM_F32)
            from.fill([&] { return i % 3 == 0 && r.one_in(500) ? nan : float(r.in(-9999, 9999)) / 8; });
        const int top = r.in(0, size[1] / 3), left = r.in(0, 6), right = r.in(0, 6);
        const Index start = {0, top, left, 0}, part = {1, size[1] - top, size[2] - left - right, 1};
        const jorm_site site = site_of(start, part);
        ASSERT_EQ(JormFilter(xe, 0, &to.a, &from.a, &site, &site, kind, &shape), JORM_OK);
        each(part, [&](const Index &p) {
            double least = nan, largest = nan, sum = 0;
            each({1, height, width, 1}, [&](const Index &q) {
                const double v = from.get(
                    {0, mirrored(top + p[1] - y0 + q[1], size[1]), mirrored(left + p[2] - x0 + q[2], size[2]), 0});
                least = std::fmin(least, v), largest = std::fmax(largest, v), sum += v;
            });
            const double got = to.get(::sum(p, start)), wish = means ? std::nearbyint(sum / (height * width))
                                                               : kind == JORM_FILTER_MIN ? least
                                                                                         : largest;
            ASSERT_TRUE(same(got, wish) || got == wish)
                << type << ", " << height << " by " << width << " at " << p[1] << ", " << p[2] << " of " << size[2];
        });
    }
}

TEST_F(Filter, MeansOfEveryWindow) {
    run(JORM_FILTER_BOX, 3000, 40, true);
    run(JORM_FILTER_BOX, 40, 150, true);
    run(JORM_FILTER_BOX, 12, 300, true);
}

TEST_F(Filter, OpeningsAndClosings) {
    for (const uint32_t kind : {JORM_FILTER_CLOSE, JORM_FILTER_OPEN, JORM_FILTER_BOTHAT, JORM_FILTER_TOPHAT})
        run(kind, 250, 11, false);
}

// Pictures of many short rows go in bands unless they are their own destination.
TEST_F(Filter, BandsOfTallPictures) {
    jorm_seshape window;
    __jorm_seshape__$g2(&window, 9, 5);
    uint8_t cross[7][7] = {};
    for (int k = 0; k < 7; ++k) cross[k][3] = cross[3][k] = 255;
    jorm_strel mask = {{0, 3, 3, 0}, {}};
    jorm_array_make(&mask.mask, JORM_U8, 7, 7, 1, 0, cross);
    for (const uint32_t type : {JORM_U8, JORM_S16, JORM_F32}) {
        const Index size = {1, 9000, 20, 1};
        Picture src(r, type, size, true), got(r, type, size, true);
        src.fill([&] { return r.in(0, 255); });
        const Bytes before = src.memory;
        const auto expect_same = [&](auto call) {
            ASSERT_EQ(call(&got.a, &src.a), JORM_OK);
            ASSERT_EQ(call(&src.a, nullptr), JORM_OK);
            each(size, [&](const Index &i) { ASSERT_EQ(got.get(i), src.get(i)) << type << " in row " << i[1]; });
            src.memory = before;
        };
        using Array = const jorm_array *;
        for (const uint32_t kind : {JORM_FILTER_MIN, JORM_FILTER_BOX})
            expect_same([&](Array d, Array s) { return JormFilter(xe, 0, d, s, nullptr, nullptr, kind, &window); });
        expect_same(
            [&](Array d, Array s) { return JormGaussianFilter(xe, 0, d, s, nullptr, nullptr, &window, nullptr); });
        expect_same(
            [&](Array d, Array s) { return JormMorphop(xe, 0, d, s, nullptr, nullptr, JORM_MORPH_DILATE, &mask); });
    }
}

// Rows a page apart go another way than others.
TEST_F(Filter, RowsAPageApart) {
    jorm_seshape window;
    __jorm_seshape__$g2(&window, 11, 5);
    const Index size = {1, 30, 4096, 1};
    const Picture src(r, JORM_U8, size, true), got(r, JORM_U8, size, true), wanted(r, JORM_U8, size, true),
        wide(r, JORM_U8, {1, 30, 4160, 1}, true);
    jorm_array apart;
    ASSERT_EQ(jorm_array_sub(&apart, &wide.a, 0, 0, 30, 4096), JORM_OK);
    ASSERT_EQ(JormCopy(xe, 0, &apart, &src.a, nullptr, nullptr), JORM_OK);
    const uint64_t own = JORM_OPT_OWN_BORDER;
    ASSERT_EQ(JormGaussianFilter(xe, own, &got.a, &src.a, nullptr, nullptr, &window, nullptr), JORM_OK);
    ASSERT_EQ(JormGaussianFilter(xe, own, &wanted.a, &apart, nullptr, nullptr, &window, nullptr), JORM_OK);
    each(size, [&](const Index &i) { ASSERT_EQ(got.get(i), wanted.get(i)) << i[1] << ", " << i[2]; });
}

// Whatever request for memory fails, the status tells so, nothing is written and nothing stays taken.
TEST_F(Filter, MemoryThatCannotBeHad) {
    uint8_t disk[7][7] = {};
    for (int y = 0; y < 7; ++y)
        for (int x = 0; x < 7; ++x) disk[y][x] = (y - 3) * (y - 3) + (x - 3) * (x - 3) < 10 ? 255 : 0;
    jorm_strel mask = {{0, 3, 3, 0}, {}};
    jorm_array_make(&mask.mask, JORM_U8, 7, 7, 1, 0, disk);
    jorm_seshape window;
    __jorm_seshape__$g2(&window, 5, 9);
    const double weights[9] = {1, 2, 4, 2, 1, 0.5, 3, 2, 1}, adaptive[2] = {3, nan};
    const jorm_sepkernel kernel = {window, {weights, weights}};

    const jorm_thhmethod usto = {JORM_THRESHOLD_USTO, 0, {}, {}}, blur = {JORM_THRESHOLD_BLUR, 0, {}, {}};
    using Array = const jorm_array *;
#define CALL(entry, ...) [&](jorm_xe *e, Array d, Array s) { return entry(e, 0, d, s, nullptr, nullptr, __VA_ARGS__); }
    const std::function<int64_t(jorm_xe *, Array, Array)> calls[] = {
        CALL(JormSepFilter, &kernel),
        CALL(JormGaussianFilter, &window, nullptr),
        CALL(JormFirefly, &window, nullptr, nullptr),
        CALL(JormThreshold, nullptr, adaptive, 1),
        CALL(JormThreshold, &usto, nullptr, 0),
        CALL(JormThreshold, &blur, nullptr, 0),
        CALL(JormFilter, JORM_FILTER_MIN, &window),
        CALL(JormFilter, JORM_FILTER_BOX, &window),
        CALL(JormFilter, JORM_FILTER_CLOSE, &window),
        CALL(JormFilter, JORM_FILTER_TOPHAT, &window),
        CALL(JormMorphop, JORM_MORPH_ERODE, &mask),
        CALL(JormMorphop, JORM_MORPH_CLOSE, &mask),
        CALL(JormMorphop, JORM_MORPH_TOPHAT, &mask),
    };
    for (const uint32_t type : {JORM_U8, JORM_F32})
        for (const int below :
             {0, 1, 20, 4000}) { // the destination is the source, overlaps it, lies apart, goes in bands
            const int rows = std::max(below, 20);
            Picture both(r, type, {1, 2 * rows, 30, 1}, true);
            both.fill([&] { return r.in(0, 255); });
            jorm_array src = both.a;
            src.extent[1] = src.parent_extent[1] = uint32_t(rows);
            jorm_array dst = src;
            dst.loff += below * dst.stride[1];
            const Bytes before = both.memory;
            for (const auto &call : calls) {
                const auto number = &call - calls;
                int failures = 0, wrong = 0;
                for_each_failure("call", [&] {
                    jorm_xe *const small = JormXEopen(nullptr, nullptr, 1); // every request is one to the heap
                    if (!small) return;
                    uint64_t level[4], after[4];
                    JormXEgetmmsp(small, level);
                    const int64_t status = call(small, &dst, &src);
                    JormXEgetmmsp(small, after);
                    const bool failed = heap_calls_left < 0;
                    failures += failed;
                    wrong += status != (failed ? JORM_ENOMEM : JORM_OK) || (failed && both.memory != before) ||
                             !std::equal(level, level + 4, after);
                    JormXEclose(small);
                    std::copy(before.begin(), before.end(), both.memory.begin());
                });
                EXPECT_EQ(wrong, 0) << "call " << number << " of type " << type << ", " << below << " rows below";
                EXPECT_TRUE(!own_heap || failures > 0) << "call " << number;
            }
        }
}

} // namespace
