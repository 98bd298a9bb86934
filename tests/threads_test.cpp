// Threads with an environment each get what one thread gets, also while the switch is still to be decided.
#include "jorm.h"
#include "support/picture.hpp"

#include <thread>

namespace {

int32_t by_value(const void *a, const void *b, void *) {
    const uint32_t x = uint32_t(load(JORM_S32, a)), y = uint32_t(load(JORM_S32, b));
    return int32_t(x > y) - int32_t(x < y);
}

// Operations of every kind on one set of pictures; the bytes of all results.
Bytes work(unsigned seed) {
    Random r(seed);
    Env xe;
    Bytes results;
    const auto keep = [&](int64_t status, const void *p, size_t size) {
        EXPECT_GE(status, 0);
        const auto *const bytes = static_cast<const uint8_t *>(p);
        results.insert(results.end(), bytes, bytes + size);
    };
    const jorm_seshape window = {{0, 4, 3, 0}, {1, 9, 7, 1}};
    const double sigma[4] = {0, 2, 1.5, 0}, two[4] = {2, 2, 2, 2};
    for (const uint32_t type : {JORM_U8, JORM_S16, JORM_S32, JORM_F32}) {
        const Index extent = {1, r.in(1, 40), r.in(1, 150), 1};
        Picture a(r, type, extent), b(r, type, extent), d(r, type, extent), bytes(r, JORM_U8, extent);
        const auto kept = [&](int64_t status) { keep(status, d.memory.data(), d.memory.size()); };
        kept((bytes_of(type) < 4 ? JormAddq : JormAdd)(xe, 0, &d.a, &a.a, &b.a, nullptr, nullptr, nullptr, 0, 0));
        kept(JormMulC(xe, 0, &d.a, &a.a, two, nullptr, nullptr, 0, 0));
        kept(JormMax(xe, 0, &d.a, nullptr, &b.a, nullptr, nullptr, nullptr));
        kept(JormFilter(xe, 0, &d.a, &a.a, nullptr, nullptr, JORM_FILTER_BOX, &window));
        kept(JormFilter(xe, 0, &d.a, &d.a, nullptr, nullptr, JORM_FILTER_OPEN, &window));
        kept(JormGaussianFilter(xe, 0, &d.a, &b.a, nullptr, nullptr, &window, sigma));
        kept(JormResize(xe, 0, &d.a, &a.a, nullptr, nullptr, nullptr));
        keep(JormConvert(xe, 0, &bytes.a, &a.a, nullptr, nullptr, nullptr, nullptr, nullptr), bytes.memory.data(),
             bytes.memory.size());
        keep(JormCompare(xe, 0, &bytes.a, &a.a, &b.a, nullptr, nullptr, nullptr, JORM_CMP_LESS), bytes.memory.data(),
             bytes.memory.size());
        double sums[4] = {};
        keep(JormSum(xe, 0, &a.a, nullptr, sums), sums, sizeof sums);
        jorm_minmax extrema = {};
        extrema.request = JORM_WANT_MIN | JORM_WANT_MAX;
        keep(JormMinmax(xe, 0, &a.a, nullptr, &extrema), &extrema, sizeof extrema);
    }
    Picture image(r, JORM_U8, {1, 60, 80, 1}, true);
    uint32_t bins[256] = {};
    jorm_histogram histogram = {};
    const jorm_histdesc description = {};
    jorm_hist_inithdr(&histogram, &description);
    histogram.bins = bins;
    keep(JormHistogram(xe, 0, &image.a, nullptr, 0, &histogram), bins, sizeof bins);
    for (const uint64_t options : {uint64_t(0), uint64_t(JORM_OPT_FAST)}) {
        jorm_mser mser = {};
        mser.delta = 2, mser.max_area_fraction = 0.5F, mser.max_variation = 1, mser.min_diversity = 0.1F;
        mser.passes = 2;
        const int64_t status = JormGenerateMSERs(xe, options, &image.a, nullptr, &mser);
        for (uint64_t i = 0; status >= 0 && i < mser.regions.count; ++i)
            keep(status, &static_cast<jorm_fwtsr **>(mser.regions.data)[i]->area, sizeof(int32_t));
        JormFWTSRESfini(mser.dark_store);
        JormFWTSRESfini(mser.bright_store);
        _UlMfree(mser.regions.data);
    }
    std::vector<jorm_2d_pt> points(200);
    for (jorm_2d_pt &p : points) p = {r.in(-99, 99), r.in(-99, 99)};
    jorm_2d_quad corners;
    jorm_f2d_quad box;
    jorm_2d_ptv_minbquad_$f(&box, points.data(), 200);
    keep(__jorm_2d_quad__$cast$f(&corners, &box) == &corners, &corners, sizeof corners);
    keep(UlQuickSort(points.data(), 400, 4, by_value, nullptr), points.data(), 1600);
    keep(jorm_use_simd(0), jorm_level_str(), 4);
    return results;
}

TEST(Threads, GetWhatOneThreadGets) {
    constexpr unsigned rounds = 12;
    use_level(jorm::level_count - 1);
    _G_jorm_use_simd = -1; // undecided, as when a process starts
    std::vector<Bytes> both[2] = {std::vector<Bytes>(rounds), std::vector<Bytes>(rounds)};
    std::vector<std::thread> threads;
    for (unsigned t = 0; t < 2; ++t)
        threads.emplace_back([t, &both] {
            for (unsigned i = 0; i < rounds; ++i) both[t][i] = work(t * rounds / 2 + i);
        });
    for (std::thread &t : threads) t.join();
    for (unsigned t = 0; t < 2; ++t)
        for (unsigned i = 0; i < rounds; ++i) EXPECT_EQ(both[t][i], work(t * rounds / 2 + i)) << t << " " << i;
}

} // namespace
