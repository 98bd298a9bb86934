// Separable and Gaussian filters.
#include "jorm/sepfilter.h"
#include "support/window_case.hpp"

namespace {

using SepFilter = WindowTest;

using Weights = std::array<std::vector<double>, 3>;

// The weighted sum in long double, of all weights and of magnitudes too; at times without the window's centre.
struct Weighted {
    long double sum = 0, weights = 0, magnitude = 0;

    Weighted(const WindowCase &c, const Index &p, const Weights &w, bool centre = true) {
        c.each_in_window(p, [&](double v, const Index &q) {
            if (!centre && std::equal(q.begin(), q.begin() + 3, c.shape.anchor)) return;
            const long double weight = (long double)w[0][size_t(q[0])] * w[1][size_t(q[1])] * w[2][size_t(q[2])];
            sum += weight * v;
            weights += weight;
            magnitude += fabsl(weight * v);
        });
    }
};

bool close_enough(uint32_t type, double got, const Weighted &exact, bool whole) {
    if (type == JORM_F32) return fabsl(got - exact.sum) <= exact.magnitude * 4e-6L + 1e-30L;
    const long double limit = std::clamp<long double>(exact.sum, lowest(type), highest(type));
    if (whole) return got == double(std::nearbyint(double(limit)));
    return fabsl(got - limit) <= (type == JORM_U8 ? 0.5L + 1 / 256.L : 1.0L);
}

TEST_F(SepFilter, WeightsOfEveryKind) {
    for (int i = 0; i < 2500 && !HasFailure(); ++i) {
        const uint32_t type = r.of(types);
        const int stored = r.of(std::array{1, 1, 3, 4});
        WindowCase c(r, type, stored, r.one_in(4) ? 40 : 6);
        if (c.roi) c.roi->origin[3] = 0, c.roi->size[3] = 4;
        if (type == JORM_F32) c.picture.fill([&] { return float(r.in(-9999, 9999)) / 8; });
        const bool whole = r.one_in(3), mirrored_weights = r.one_in(2);
        Weights w;
        for (size_t k = 0; k < 3; ++k) {
            const size_t n = size_t(c.shape.extent[k]);
            w[k].resize(n);
            double sum = 0;
            for (double &v : w[k]) v = whole ? r.in(-3, 4) : r.in(-200, 1000) / 1000.0, sum += std::fabs(v);
            for (size_t j = 0; j < n && mirrored_weights; ++j) w[k][n - 1 - j] = w[k][j];
            for (double &v : w[k]) v = whole || sum == 0 ? v : v / sum;
            if (n == 1 && c.src.ndims != 4) w[k][0] = k == 0 ? 1 : w[k][0];
        }
        const int first = 4 - c.src.ndims;
        if (first == 1) w[0] = {1};
        jorm_sepkernel kernel = {c.shape, {}};
        for (int k = first; k < 3; ++k) kernel.kernel[k - first] = w[k].data();
        if (stored == 4) c.region.size[3] = std::min(c.region.size[3], 3); // the fourth stays as it is
        // The comparison needs more than a number: what is wanted is what was got, if that is close enough.
        c.check([&] { return c.call(JormSepFilter, xe, &kernel); },
                [&](const Index &p) {
                    const Weighted exact(c, p, w);
                    return close_enough(type, c.got(p), exact, whole) ? c.got(p) : double(exact.sum);
                });
    }
}

TEST_F(SepFilter, GaussianWeights) {
    double w[9];
    jorm__computegauskernel1(w, 2, 5, 1.1);
    EXPECT_NEAR(w[0] + w[1] + w[2] + w[3] + w[4], 1, 1e-15);
    EXPECT_DOUBLE_EQ(w[1] / w[2], std::exp(-1 / (2 * 1.1 * 1.1)));
    EXPECT_EQ(w[0], w[4]);
    jorm__computegauskernel1(w, 0, 1, 3);
    EXPECT_EQ(w[0], 1);
    const int32_t extent[4] = {1, 5, 3, 0};
    const struct {
        double given[2], used[2];
    } cases[] = {{{0, 0}, {1.1, 0.8}}, {{0, 2}, {2, 2}}, {{1.5, 0}, {1.5, 1.5}}, {{1, 4}, {1, 4}}};
    for (const auto &k : cases) {
        double used[2];
        jorm_adjustgaussigmas(JORM_WORD(3), used, extent, k.given);
        EXPECT_DOUBLE_EQ(used[0], k.used[0]);
        EXPECT_DOUBLE_EQ(used[1], k.used[1]);
    }
    double planes[3];
    const double given[3] = {0, 0, 3};
    jorm_adjustgaussigmas(JORM_WORD(4), planes, extent, given);
    EXPECT_EQ(planes[0] + planes[1] + planes[2], 9);
}

// The Gaussian filter is the separable one with these weights; a null shape is 5 by 5.
TEST_F(SepFilter, GaussianFilter) {
    Picture src(r, JORM_U8, {1, 20, 33, 3}), a(r, JORM_U8, {1, 20, 33, 3}, true), b(r, JORM_U8, {1, 20, 33, 3}, true);
    const double sigmas[2] = {1.3, 0.7};
    double rows[5], columns[5];
    jorm_sepkernel kernel = {{}, {rows, columns}};
    __jorm_seshape__$(&kernel.shape);
    jorm_computegauskernel(JORM_WORD(3), &kernel, sigmas);
    EXPECT_EQ(JormGaussianFilter(xe, 0, &a.a, &src.a, nullptr, nullptr, nullptr, sigmas), JORM_OK);
    EXPECT_EQ(JormSepFilter(xe, 0, &b.a, &src.a, nullptr, nullptr, &kernel), JORM_OK);
    each({1, 20, 33, 3}, [&](const Index &i) { ASSERT_EQ(a.get(i), b.get(i)); });
}

// Pixels that stand out are replaced by the mean of their surroundings, the others stay.
TEST_F(SepFilter, Fireflies) {
    for (int i = 0; i < 600 && !HasFailure(); ++i) {
        const uint32_t type = r.of(types);
        const int channels = r.of(std::array{1, 3});
        WindowCase c(r, type, channels, 6);
        if (c.shape.extent[1] * c.shape.extent[2] == 1) c.shape.extent[2] = 3;
        if (c.roi) c.roi->origin[3] = 0, c.roi->size[3] = 4;
        c.picture.fill([&] { return double(r.one_in(9) ? r.in(0, 120) : r.in(50, 60)); });
        const double sigmas[3] = {1, 1.5, 2}, lower[3] = {20, 30, 10}, upper[3] = {15, 25, 40};
        const int first = 4 - c.src.ndims;
        Weights w = {{{1}, {1}, {1}}};
        for (int k = first; k < 3; ++k) {
            w[k].resize(size_t(c.shape.extent[k]));
            jorm__computegauskernel1(w[k].data(), c.shape.anchor[k], c.shape.extent[k], sigmas[k - first]);
        }
        const bool dark = r.one_in(2), given = r.one_in(2);
        const auto mean = [&](const Index &p) {
            const Weighted around(c, p, w, false);
            return double(around.sum / around.weights);
        };
        double low[3], high[3];
        c.seen = c.picture.memory;
        for (int k = 0; k < channels; ++k) {
            double sum = 0, squares = 0, n = 0;
            each(c.region.size, [&](const Index &p) {
                if (p[3] == k) sum += c.at(p) - mean(p), squares += std::pow(c.at(p) - mean(p), 2), ++n;
            });
            const double usual = n > 0 ? 3 * std::sqrt(std::max(0.0, squares / n - sum / n * sum / n)) : 0;
            low[k] = given ? lower[k] : usual;
            high[k] = given ? upper[k] : usual;
        }
        const double *const u = given ? upper : nullptr, *const l = given ? lower : nullptr;
        c.check(
            [&] {
                return dark ? c.call(JormFireflyEx, xe, &c.shape, sigmas, l, u)
                            : c.call(JormFirefly, xe, &c.shape, sigmas, u);
            },
            [&](const Index &p) {
                const double x = c.at(p), m = mean(p), got = c.got(p);
                const double bright = x - m - high[p[3]], dim = dark ? m - x - low[p[3]] : -1;
                const bool near_limit = std::fabs(bright) < 1e-3 || std::fabs(dim) < 1e-3;
                const bool replaced = std::fabs(got - m) <= (type == JORM_F32 ? 1e-3 : 0.5 + 1e-6);
                if (near_limit && (replaced || got == x)) return got;
                return bright > 0 || dim > 0 ? (replaced ? got : m) : x;
            });
    }
}

TEST_F(SepFilter, Refusals) {
    const Picture one(r, JORM_U8, {1, 4, 4, 1}), two(r, JORM_U8, {1, 4, 4, 2});
    const double w[3] = {1, 2, 1};
    const jorm_sepkernel kernel = {{{0, 1, 1, 0}, {1, 3, 3, 1}}, {w, w}}, missing = {kernel.shape, {w}};
    expect_each(JORM_EINVAL, {JormSepFilter(xe, 0, &two.a, &two.a, nullptr, nullptr, &kernel),
                              JormSepFilter(xe, 0, &one.a, &one.a, nullptr, nullptr, &missing)});
    int32_t status;
    EXPECT_EQ(jorma__sepfiltfun_imp(11, JORM_U8, &status), jorma__sepfilter_c3_u8);
    jorma__sepfiltfun_imp(2, JORM_U8, &status);
    EXPECT_EQ(status, JORM_EINVAL);
}

} // namespace
