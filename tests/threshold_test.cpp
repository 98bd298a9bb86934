// Otsu's thresholds and thresholding over random types, layouts, regions, thresholds and levels, against plain loops.
#include "jorm/arith.h"
#include "jorm/sepfilter.h"
#include "jorm/threshold.h"
#include "support/read_case.hpp"
#include "support/window_case.hpp"

namespace {

const uint32_t sources[] = {JORM_U8, JORM_S8, JORM_S16, JORM_S32, JORM_F32};
const uint32_t destinations[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};
constexpr double epsilon = 0x1p-23;

// Two humps, at times far apart; at times NaN.
double sample(Random &r, uint32_t type) {
    const double hump = r.one_in(3) ? r.in(150, 220) : r.in(5, 90);
    if (type == JORM_F32) return r.one_in(40) ? nan : hump / 256;
    return std::min(hump, highest(type)) - (type >= JORM_S16 && r.one_in(9) ? 300 : 0);
}

// The threshold by its definition: every cut, both classes from scratch.
double otsu(const std::vector<double> &samples, double n, vrng range, uint32_t nbins, uint32_t type) {
    const bool real = type == JORM_F32;
    const double lo = real ? float(range.lo) : range.lo, hi = real ? float(range.hi) : range.hi;
    const float span = float(hi) - float(lo), factor = span == 0 ? 0 : float(nbins - 1) / span;
    const double step = nbins < 2 ? 0 : double(span / float(nbins - 1));
    std::vector<double> count(nbins);
    for (double x : samples) {
        if (std::isnan(x)) continue;
        const double inside = real                   ? double(float(x) - float(lo)) * factor
                              : hi - lo + 1 == nbins ? x - lo
                                                     : std::floor((x - lo) * nbins / (hi - lo + 1));
        ++count[size_t(x < lo ? 0 : x > hi ? nbins - 1 : std::min(inside, nbins - 1.0))];
    }
    double best = 0, threshold = lo;
    for (uint32_t t = 0; t < nbins; ++t) {
        if (count[t] == 0) continue;
        double below = 0, moment_below = 0, moment = 0;
        for (uint32_t i = 0; i < nbins; ++i) {
            const double value = i * step + lo;
            (i <= t ? moment_below : moment) += count[i] * value;
            below += i <= t ? count[i] : 0;
        }
        const double above = n - below;
        if (above <= 0) break;
        const double d = moment_below / below - moment / above, variance = above * below * d * d;
        if (variance > best * (1 + 1e-12)) best = variance, threshold = t * step + lo;
    }
    return threshold + step - epsilon;
}

void check_otsu(Random &r) {
    const uint32_t type = r.of(sources);
    const int rows = r.in(1, 30), pixels = r.in(1, 60), layer = r.in(0, ReadCase::layers - 1);
    ReadCase c(r, type, rows, pixels, false);
    c.src.fill([&] { return sample(r, type); });
    const bool with_ranges = r.one_in(2);
    const std::array<vrng, 5> wishes = {{{nan, 3}, {-inf, 0}, {5, 1}, {10.5, 200.5}, {-1e9, 1e9}}};
    vrng ranges[3];
    uint32_t bins[3];
    for (int k = 0; k < 3; ++k) {
        ranges[k] = r.of(wishes);
        if (type == JORM_S8 && (std::isinf(ranges[k].lo) || ranges[k].lo > ranges[k].hi)) ranges[k] = {-20, 90};
        bins[k] = r.of(std::array{0u, 1u, 2u, 100u, 256u});
    }
    Env xe;
    for (int level = 0; level < jorm::level_count; ++level) {
        use_level(level);
        double t[4] = {-7, -7, -7, -7};
        vrng used[3] = {ranges[0], ranges[1], ranges[2]};
        uint32_t counts[3] = {bins[0], bins[1], bins[2]};
        vrng *const ur = with_ranges ? used : nullptr;
        uint32_t *const ub = with_ranges ? counts : nullptr;
        const jorm_otsuparams params = {t, ur, ub};
        const auto no_mask = [](auto...) { return int64_t(1); };
        ASSERT_EQ(layer == ReadCase::entry     ? c.at_entry(xe, JormComputeThresholdByOtsu, no_mask, t, ur, ub)
                  : layer == ReadCase::adapter ? c.at_adapter(xe, jorma_compute_threshold_otsu, no_mask, t, ur, ub)
                  : layer == ReadCase::dispatcher
                      ? c.at_dispatcher(xe, jorma__compute_threshold_otsu, no_mask, t, ur, ub)
                      : c.at_slice(xe, JormTGAcomputeThresholdByOtsu, no_mask, &params),
                  JORM_OK);
        for (int k = 0; k < 4; ++k) {
            if (!c.selects(k)) {
                ASSERT_EQ(t[k], -7);
                ASSERT_TRUE(k == 3 || std::memcmp(&used[k], &ranges[k], sizeof(vrng)) == 0);
                continue;
            }
            std::vector<double> samples;
            double low = inf, high = -inf;
            c.each_sample(k, [&](double v, const Index &) {
                samples.push_back(v);
                low = std::fmin(low, v), high = std::fmax(high, v);
            });
            const bool bytes = type == JORM_U8 || type == JORM_S16 || type == JORM_S32;
            vrng range = {0, bytes ? 255. : 1.};
            if (with_ranges && !std::isnan(ranges[k].lo)) {
                range = ranges[k];
                if (std::isinf(range.lo) || range.lo > range.hi)
                    range = {low, high};
                else if (type == JORM_F32)
                    range = {float(range.lo), float(range.hi)};
                else
                    range = {std::max(std::floor(range.lo), lowest(type)),
                             std::min(std::ceil(range.hi), highest(type))};
            }
            if (low > high) continue; // NaN alone: no histogram to speak of
            const uint32_t count = with_ranges && bins[k] >= 2 ? bins[k] : bytes ? 256 : 384;
            ASSERT_NEAR(t[k], otsu(samples, double(samples.size()), range, count, type), 1e-6 * (1 + std::fabs(t[k])))
                << "type " << type << " range " << range.lo << ' ' << range.hi << " bins " << count;
            if (!with_ranges) continue;
            ASSERT_EQ(std::pair(used[k].lo, used[k].hi), std::pair(range.lo, range.hi));
            ASSERT_EQ(counts[k], count);
        }
    }
}

TEST(Threshold, OtsuAgreesWithItsDefinition) {
    Random r(71);
    for (int round = 0; round < 400 && !HasFailure(); ++round) check_otsu(r);
}

TEST(Threshold, OtsuOfHistograms) {
    uint32_t bins[5] = {0, 4, 0, 4, 9}; // the spare counter takes no part
    jorm_histogram h = {};
    h.nbins = 4, h.bins = bins, h.flo = 10, h.fstep = 2, h.product = 8;
    EXPECT_EQ(jorma_calculate_threshold_otsu_f(&h), 12 + 2 - epsilon);
    EXPECT_EQ(jorma_calculate_threshold_otsu_i(&h), 14);
    h.product = 4; // as if the upper class were empty
    EXPECT_EQ(jorma_calculate_threshold_otsu_f(&h), 10 + 2 - epsilon);
    bins[1] = bins[3] = 0;
    EXPECT_EQ(jorma_calculate_threshold_otsu_f(&h), 10 + 2 - epsilon);
}

bool upper(double x, double low, double high, int count) { return x > low && (count < 2 || x <= high); }

void check_immediate(Random &r) {
    const uint32_t from = r.of(sources), to = from == JORM_F32 ? r.of(destinations) : destinations[r.in(0, 2)];
    const int axes = r.in(3, 4), channels = r.in(1, 3);
    const Index full = {axes == 4 ? r.in(1, 3) : 1, r.in(1, 9), r.in(1, 90), channels};
    Picture src(r, from, full, false, axes), dst(r, to, full, false, axes);
    const double low = lowest(from), high = highest(from);
    src.fill([&] {
        if (from == JORM_F32) return r.of(std::array{nan, inf, -inf, 0., -0., 0.1, 3.5, -2., 1e30, double(0.1f)});
        return r.of(std::array{low, low + 1, high, high - 1, 3., 4., 100., 0.});
    });
    const jorm_site roi = Part(r, full).site;
    const Region region = common_region({&dst.a, &src.a}, &roi, {roi.origin});
    double pairs[6];
    const bool alike = r.one_in(2);
    for (int i = 0; i < 6; ++i) {
        const double wishes[] = {3.5,   3,      -0.5, low,  low - 1, high,   high - 0.5, high + 1, inf,         -inf,
                                 1e-50, -1e-50, 0,    99.9, 1e300,   -1e300, 0.1,        0x1p31,   2147483646.5};
        pairs[i] = alike && i > 1 ? pairs[i - 2] : r.of(wishes);
    }
    if (r.one_in(9)) pairs[0] = nan;
    const int count = r.in(0, 3);
    const jorm_thhmethod method = {0x120, 0, {}, {}}, *const m = r.one_in(2) ? &method : nullptr;
    SCOPED_TRACE(testing::Message() << from << " to " << to << " by " << testing::PrintToString(pairs) << count);
    expect_block(
        dst, dst.a, region.origin[0], region.size, JORM_OK,
        [&] { return JormThreshold(nullptr, 0, &dst.a, &src.a, &roi, roi.origin, m, pairs, count); },
        [&](const Index &i) {
            const double x = src.get(sum(i, region.origin[1])), *p = pairs + 2 * i[3];
            return upper(x, p[0], p[1], count) ? to == JORM_F32 ? 1 : highest(to) : 0;
        });
}

TEST(Threshold, ImmediateComparesExactly) {
    Random r(72);
    for (int round = 0; round < 1000 && !HasFailure(); ++round) check_immediate(r);
}

// Thresholds by Otsu's method in the ranges and bins of the method, if it has its own.
void otsu_of(jorm_xe *xe, const jorm_array &src, jorm_thhmethod method, double *t) {
    const bool own = method.word & JORM_THRESHOLD_OWN_RANGES;
    ASSERT_EQ(
        JormComputeThresholdByOtsu(xe, 0, &src, nullptr, t, own ? method.ranges : nullptr, own ? method.bins : nullptr),
        JORM_OK);
}
jorm_thhmethod some_method(Random &r, uint32_t word, vrng range, uint32_t bins) {
    jorm_thhmethod method = {word | (r.one_in(2) ? JORM_THRESHOLD_OWN_RANGES : 0), 0, {}, {}};
    for (int c = 0; c < 4; ++c) method.ranges[c] = range, method.bins[c] = bins;
    return method;
}

TEST(Threshold, OtsuMethodTakesTheWholeRegion) {
    Random r(73);
    Env xe;
    for (int round = 0; round < 60 && !HasFailure(); ++round) {
        const uint32_t type = r.of(sources);
        const int axes = r.in(3, 4);
        const Index full = {axes == 4 ? 3 : 1, 20, 30, r.in(1, 3)};
        Picture src(r, type, full, false, axes), other(r, JORM_U8, full, false, axes);
        src.fill([&] { return sample(r, type); });
        const bool in_place = type == JORM_U8 && r.one_in(2);
        const jorm_thhmethod method = some_method(r, JORM_THRESHOLD_OTSU, {2, 200}, 50);
        double t[4];
        otsu_of(xe, src.a, method, t);
        std::vector<double> wanted;
        each(full, [&](const Index &i) { wanted.push_back(src.get(i) > t[i[3]] ? 255 : 0); });
        const Picture &dst = in_place ? src : other;
        ASSERT_EQ(JormThreshold(xe, 0x20, &dst.a, in_place ? nullptr : &src.a, nullptr, nullptr, &method, nullptr, 0),
                  JORM_OK);
        size_t k = 0;
        each(full, [&](const Index &i) { ASSERT_EQ(dst.get(i), wanted[k++]); });
    }
}

// The mean of the n by n window, in the samples' type.
double window_mean(const Picture &src, const Index &size, const Index &i, int n) {
    double total = 0;
    for (int y = -n / 2; y <= n / 2; ++y)
        for (int x = -n / 2; x <= n / 2; ++x)
            total += src.get({i[0], mirrored(i[1] + y, size[1]), mirrored(i[2] + x, size[2]), i[3]});
    return converted(src.a.eltype, total / (n * n));
}

Index windowed_size(Random &r, int axes) {
    return {axes == 4 ? 2 : 1, r.of(std::array{1, 3, 20, 40}), r.of(std::array{1, 5, 33, 70}), r.of(std::array{1, 3})};
}

TEST(Threshold, AdaptiveComparesWithTheMean) {
    Random r(76);
    Env xe;
    const uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};
    for (int round = 0; round < 60 && !HasFailure(); ++round) {
        use_level(r.in(0, jorm::level_count - 1));
        const int axes = r.in(3, 4);
        const Index full = windowed_size(r, axes);
        Picture src(r, r.of(types), full, false, axes), dst(r, JORM_U8, full, false, axes);
        const bool real = src.a.eltype == JORM_F32;
        src.fill([&] { return real ? r.in(0, 255) / 256. : r.in(0, 255); });
        const double unit = real ? 1 / 256. : 1;
        const double pairs[6] = {3.5 * unit, nan, -2 * unit, 5, r.of(std::array{0., nan, inf, -inf, 1e30}), 0};
        ASSERT_EQ(JormThreshold(xe, 1, &dst.a, &src.a, nullptr, nullptr, nullptr, pairs, r.in(0, 2)), JORM_OK);
        each(full, [&](const Index &i) {
            const double mean = window_mean(src, full, i, 5);
            ASSERT_EQ(dst.get(i), src.get(i) > mean + pairs[2 * i[3]] ? 255 : 0) << src.get(i) << " beside " << mean;
        });
    }
}

// Usto takes the ground away before Otsu's method, blur smooths; both plane by plane.
TEST(Threshold, UstoAndBlurPrepareEachPlane) {
    Random r(77);
    Env xe;
    for (int round = 0; round < 40 && !HasFailure(); ++round) {
        use_level(r.in(0, jorm::level_count - 1));
        const int axes = r.in(3, 4);
        const Index full = windowed_size(r, axes), plane = {1, full[1], full[2], full[3]};
        const uint32_t type = r.of(std::array{JORM_U8, JORM_F32});
        const bool real = type == JORM_F32;
        Picture src(r, type, full, false, axes), dst(r, r.of(std::array{JORM_U8, JORM_S16}), full, false, axes);
        int k = 0;
        src.fill([&] { // marks on a ramp
            const int ground = 60 + k++ * 150 / (full[0] * full[1] * full[2] * full[3]);
            const int mark = r.one_in(20) ? r.in(0, 1) * 255 : ground - r.in(30, 55); // or far away
            return (r.one_in(6) ? mark : ground + r.in(-4, 4)) / (real ? 256. : 1.);
        });
        const bool blur = r.one_in(3);
        const uint32_t word = blur ? JORM_THRESHOLD_BLUR : JORM_THRESHOLD_USTO;
        // Few bins that stay where they are tell where mid range is.
        const jorm_thhmethod method = some_method(r, word, {real ? 0.48 : 124, real ? 0.58 : 148}, 5);
        ASSERT_EQ(JormThreshold(xe, 0, &dst.a, &src.a, nullptr, nullptr, &method, nullptr, 0), JORM_OK);
        for (int z = 0; z < full[0]; ++z) {
            const auto in_plane = [z](const Index &i) { return Index{z, i[1], i[2], i[3]}; };
            const auto difference = [&](const Index &i) {
                const double d = window_mean(src, full, in_plane(i), 15) - src.get(in_plane(i));
                return real ? float(d) : d;
            };
            double shift[3] = {}, t[3];
            each(plane, [&](const Index &i) { shift[i[3]] -= difference(i) / (full[1] * full[2]); });
            Picture flat(r, type, plane, true);
            each(plane, [&](const Index &i) {
                const double leveled = converted(type, difference(i) + (real ? 0.5 : 128) + shift[i[3]]);
                store(type, flat.at(i), blur ? src.get(in_plane(i)) : leveled);
            });
            if (blur) JormGaussianFilter(xe, 0, &flat.a, nullptr, nullptr, nullptr, nullptr, nullptr);
            otsu_of(xe, flat.a, method, t);
            each(plane, [&](const Index &i) {
                const bool is_upper = (flat.get(i) > t[i[3]]) == blur;
                ASSERT_EQ(dst.get(in_plane(i)), is_upper ? highest(dst.a.eltype) : 0);
            });
        }
    }
}

TEST(Threshold, MethodsAndTypesThatAreRefused) {
    Random r(75);
    Env xe;
    const Index size = {1, 4, 5, 1};
    const Picture out(r, JORM_U8, size), u8(r, JORM_U8, size), s8(r, JORM_S8, size), u16(r, JORM_U16, size),
        f32(r, JORM_F32, size), four(r, JORM_U8, {1, 4, 5, 4});
    const jorm_site outside = {{0, 4, 0, 0}, {1, 1, 1, 1}};
    const jorm_thhmethod otsu = {JORM_THRESHOLD_OTSU, 0, {}, {}}, usto = {JORM_THRESHOLD_USTO, 0, {}, {}},
                         unknown = {7, 0, {}, {}};
    const double pair[2] = {3, 5}, adaptive[2] = {3, nan};
    const Bytes before = out.memory;
    const auto run = [&](jorm_xe *e, const Picture &dst, const Picture &src, const jorm_thhmethod *m, const double *p,
                         const jorm_site *roi = nullptr) {
        return JormThreshold(e, 0, &dst.a, &src.a, roi, nullptr, m, p, 1);
    };
    expect_each(JORM_EINVAL, {run(xe, four, four, nullptr, pair, &outside), run(xe, out, u8, &unknown, pair),
                              run(xe, out, u8, nullptr, nullptr)});
    expect_each(JORM_EEMPTY, {run(xe, out, u8, &unknown, nullptr, &outside)});
    expect_each(JORM_ENOTSUP, {run(xe, out, u16, nullptr, pair), run(xe, f32, u8, &otsu, pair),
                               run(xe, u16, u8, nullptr, pair), run(xe, out, u16, &otsu, nullptr),
                               run(xe, out, s8, nullptr, adaptive), run(xe, out, s8, &usto, nullptr)});
    expect_each(JORM_ENOMEM, {run(nullptr, out, u8, &otsu, nullptr), run(nullptr, out, u8, &usto, nullptr),
                              run(nullptr, out, u8, nullptr, adaptive)});
    EXPECT_EQ(out.memory, before);
}

} // namespace
