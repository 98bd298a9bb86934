// Histograms over random types, layouts, regions, masks, layouts of bins and levels, against plain counting; the life
// of their records.
#include "jorm/arith.h"
#include "jorm/stats.h"
#include "support/heap.hpp"
#include "support/read_case.hpp"

namespace {

const uint32_t types[] = {JORM_U8, JORM_S8, JORM_S16, JORM_S32, JORM_F32};

struct Histogram : jorm_histogram {
    explicit Histogram(const jorm_histdesc &d) : jorm_histogram() { _jorm_histogram__$ia(this, &d); }
    ~Histogram() { jorm_hist_fini(this); }
    Histogram(const Histogram &) = delete;
};

jorm_histdesc description(uint32_t nbins, double lo, double hi) {
    jorm_histdesc d = {};
    d.first = d.fourth = d.rest = 77; // not read
    d.nbins = nbins, d.lo = lo, d.hi = hi, d.f1 = 1 << 17, d.f2 = 98307;
    return d;
}

// A bin for each value, wider and narrower ones, few, many; intervals within the type, beyond it, empty and absurd.
jorm_histdesc random_description(Random &r, uint32_t type) {
    if (type == JORM_F32) {
        const vrng intervals[] = {{0, 1}, {-1, 1}, {0.25, 0.25}, {0.5, -0.5}, {nan, 1}, {-inf, inf}, {-3e38, 3e38}};
        const vrng v = r.of(intervals);
        return description(r.of(std::array{1u, 2u, 7u, 384u, 5000u}), v.lo, v.hi);
    }
    const double low = lowest(type), high = highest(type), lo = r.in(-300, 300), hi = lo + r.in(0, 600);
    const vrng intervals[] = {{0, 255}, {-128, 127}, {lo, hi}, {lo - 0.4, hi + 0.4}, {low, high}, {hi, lo}, {nan, inf}};
    const vrng v = r.of(intervals);
    const double width = v.hi - v.lo + 1;
    const uint32_t unit = width >= 1 && width <= 70000 ? uint32_t(std::nearbyint(v.hi) - std::nearbyint(v.lo) + 1) : 9;
    return description(r.of(std::array{unit, unit, 1u, 2u, 16u, 300u, 5000u}), v.lo, v.hi);
}

double sample(Random &r, uint32_t type, int style) {
    if (type == JORM_F32)
        return style == 0   ? std::uniform_real_distribution<>(-1.2, 1.2)(r)
               : style == 1 ? r.in(0, 2) / 2.
                            : r.of(std::array{nan, inf, -inf, 0.25, 0., -0., 3e38, 1e-40});
    const double low = std::max(lowest(type), -400.), high = std::min(highest(type), 400.);
    return style == 0   ? r.in(int(low), int(high))
           : style == 1 ? 17
                        : std::floor(std::uniform_real_distribution<>(lowest(type), highest(type) + 1)(r));
}

// The bin of a sample; -1 for none.
int64_t bin_of(const jorm_histogram &h, uint32_t type, double x) {
    const int64_t last = int64_t(h.nbins) - 1;
    if (type == JORM_F32) {
        if (std::isnan(x)) return -1;
        if (x < h.flo || x > h.fhi) return x < h.flo ? 0 : last;
        const float factor = h.fspan == 0 ? 0 : float(last) / h.fspan;
        const double at = double(float(x) - h.flo) * factor;
        return at > 0 ? std::min(last, int64_t(at)) : 0;
    }
    const auto lo = int64_t(std::clamp(double(h.ilo), lowest(type), highest(type))), v = int64_t(x);
    if (v < lo || v > h.ihi) return v < lo ? 0 : last;
    const int64_t width = int64_t(h.ihi) - h.ilo + 1;
    return width == h.nbins ? v - lo : int64_t(__int128(v - lo) * h.nbins / width);
}

// By the kernel that the lookup finds, which serves one channel.
int64_t at_kernel(const ReadCase &c, jorm_xe *xe, jorm_histogram *h) {
    const void *const p = c.src.at(c.o), *const q = c.mask.at(c.m);
    jorm_proc *const found = (c.masked ? jorma__histofunxm_imp : jorma__histofun_imp)(1, c.type, nullptr);
    if (c.masked)
        return kernel_as<jorm_histogram_xm_kernel>(found)(xe, c.options, c.word, c.s, p, c.stride, q, c.by, h);
    return kernel_as<jorm_histogram_kernel>(found)(xe, c.options, c.word, c.s, p, c.stride, h);
}

void check_case(Random &r, int rows, int pixels) {
    const uint32_t type = r.of(types);
    ReadCase c(r, type, rows, pixels, type != JORM_S8);
    const int style = r.in(0, 2), layer = r.in(0, ReadCase::layers - (c.n[3] > 1));
    c.src.fill([&] { return sample(r, type, style); });
    const jorm_histdesc d[3] = {random_description(r, type), random_description(r, type), random_description(r, type)};
    const bool with_scratch = !r.one_in(4), without_bins = r.one_in(8);
    float first_sum[3];
    for (int level = 0; level < jorm::level_count; ++level) {
        use_level(level);
        Histogram own[3] = {Histogram(d[0]), Histogram(d[1]), Histogram(d[2])};
        jorm_histogram h[4] = {own[0], own[1], own[2], {}};
        if (without_bins) h[0].bins = nullptr;
        Env env;
        jorm_xe *const xe = with_scratch ? &env.xe : nullptr;
        const jorm_histparams params = {0, h};
        for (uint32_t calls : {1u, 2u}) {
            ASSERT_EQ(layer == ReadCase::entry        ? c.at_entry(xe, JormHistogram, JormHistogramEx, 0, h)
                      : layer == ReadCase::adapter    ? c.at_adapter(xe, jorma_histogram, jorma_histogram_xm, h)
                      : layer == ReadCase::dispatcher ? c.at_dispatcher(xe, jorma__histogram, jorma__histogram_xm, h)
                      : layer == ReadCase::slice      ? c.at_slice(xe, JormTGAhistogram, JormTGAhistogramEx, &params)
                                                      : at_kernel(c, xe, h),
                      JORM_OK);
            for (int k = 0; k < 3; ++k) {
                SCOPED_TRACE(testing::Message() << "type " << type << " channel " << k << " level " << level
                                                << " layer " << layer << " interval " << d[k].lo << ' ' << d[k].hi);
                std::vector<uint32_t> bins(h[k].nbins + 1);
                double total = 0, magnitude = 0;
                if (c.selects(k) && h[k].bins)
                    c.each_sample(k, [&](double x, const Index &) {
                        const int64_t bin = bin_of(h[k], type, x);
                        if (bin < 0) return;
                        bins[size_t(bin)] += calls, total += calls * x, magnitude += calls * std::fabs(x);
                    });
                ASSERT_TRUE(std::equal(bins.begin(), bins.end(), own[k].bins));
                const auto lo = int64_t(std::clamp(double(h[k].ilo), lowest(type), highest(type)));
                uint32_t sum = 0;
                for (uint32_t i = 0; i < h[k].nbins; ++i) sum += bins[i] * uint32_t(lo + i);
                if (type != JORM_F32) {
                    ASSERT_EQ(h[k].sum, sum);
                    ASSERT_EQ(h[k].fsum, h[k].ilo < 0 ? float(int32_t(h[k].sum)) : float(h[k].sum));
                } else if (magnitude < 1e6) {
                    ASSERT_NEAR(h[k].fsum, total, 1e-6 * magnitude);
                    ASSERT_EQ(int32_t(h[k].sum), std::nearbyint(h[k].fsum));
                    if (level == 0 && calls == 1) first_sum[k] = h[k].fsum;
                    ASSERT_TRUE(calls == 2 || h[k].fsum == first_sum[k]);
                }
            }
        }
    }
}

TEST(Histogram, AgreesWithPlainCounting) {
    Random r(61);
    for (int round = 0; round < 1530 && !HasFailure(); ++round) {
        const int rows = r.in(1, round < 1500 ? 9 : 60), pixels = round < 1500 ? r.in(1, 90) : r.in(200, 900);
        check_case(r, rows, pixels);
    }
}

TEST(Histogram, HeadersSayWhatTheDescriptionMeans) {
    constexpr uint32_t product = 3 << 17; // modulo 2^32
    const std::pair<jorm_histdesc, jorm_histogram> lines[] = {
        {description(256, 0, 255), {0, 0, 255, 256, 1, 0, 0, 255, 255, 1, product, 256, nullptr}},
        {description(16, 0, 255), {0, 0, 255, 256, 17, 0, 0, 255, 255, 17, product, 16, nullptr}},
        {description(1, 0, 255), {0, 0, 255, 256, 0, 0, 0, 255, 255, 0, product, 1, nullptr}},
        {description(9, -2.5, 0.5), {0, -2, 0, 3, 1, 0, -2.5f, 0.5f, 3, 0.375f, product, 9, nullptr}},
        {description(3, 7, 7), {0, 7, 7, 1, 0, 0, 7, 7, 0, 0, product, 3, nullptr}},
        {description(5, -2147483648., 2147483647.),
         {0, INT32_MIN, INT32_MAX, 0, 0x3FFFFFFF, 0, -0x1p31f, 0x1p31f, 0x1p32f, 0x1p30f, product, 5, nullptr}},
        {description(2, 0.1, 1e10),
         {0, 0, INT32_MIN, 0x80000001, 0x80000000, 0, 0.1f, 1e10f, 1e10f, 1e10f, product, 2, nullptr}},
    };
    for (const auto &[d, wanted] : lines) {
        jorm_histogram h;
        std::memset(&h, 0x55, sizeof h);
        EXPECT_EQ(jorm_hist_inithdr(&h, &d), d.nbins);
        EXPECT_EQ(std::memcmp(&h, &wanted, sizeof h), 0) << d.nbins << " bins of " << d.lo << " to " << d.hi;
    }
}

// Every form of making, resetting and releasing, with either memory.
TEST(Histogram, RecordsLiveAndDie) {
    Env xe;
    const jorm_histdesc d[4] = {description(4, 0, 3), description(5, 0, 4), description(6, 0, 5), description(7, 0, 6)};
    const auto zeroed = [](const jorm_histogram &h) {
        return h.bins && std::count(h.bins, h.bins + h.nbins + 1, 0u) == h.nbins + 1;
    };
    for (const bool stack : {false, true})
        for (const bool by_mode : {false, true})
            for (uint32_t code : {1u, 2u, 3u, 4u, 11u, 0x53u, 0xA4u, 0xF2u}) {
                const int channels = code == 11 ? 4 : int(code & 7);
                const uint32_t chosen = code >> 4 ? code >> 4 & ((1u << channels) - 1) : (1u << channels) - 1;
                jorm_histogram h[5];
                std::memset(h, 0x55, sizeof h);
                EXPECT_EQ(jorm_hist_inithdr_$n(code, h, d), chosen);
                const uint64_t junk = 0x5555555555555555;
                EXPECT_EQ(stack     ? by_mode ? jorm_hist__init_n_xe(1, code, h, d, xe)
                                              : _jorm_histogram__$n$xe(code, h, d, xe)
                              : by_mode ? jorm_hist__init_n(1, code, h, d)
                                    : _jorm_histogram__$n$ia(code, h, d),
                          JORM_OK);
                for (int c = 0; c < channels; ++c) {
                    ASSERT_EQ(chosen >> c & 1, zeroed(h[c]));
                    if (h[c].bins) {
                        h[c].bins[2] = 9, h[c].sum = 9, h[c].fsum = 9;
                        continue;
                    }
                    EXPECT_EQ(std::tuple(h[c].sum, h[c].ilo), std::tuple(0u, 0));
                    h[c].sum = 8;
                }
                EXPECT_EQ(std::memcmp(&h[channels], &junk, 8), 0) << "beyond the channels";
                if (!by_mode) jorm_hist_reset_$n(code, h);
                EXPECT_TRUE(!by_mode || jorm_hist__init_n(2, code, h, nullptr) == JORM_OK);
                for (int c = 0; c < channels; ++c) {
                    EXPECT_TRUE(!h[c].bins || (zeroed(h[c]) && h[c].fsum == 0 && h[c].nbins == d[c].nbins));
                    EXPECT_EQ(h[c].sum, h[c].bins ? 0u : 8u);
                }
                stack ? jorm_hist_fini_$n$xe(code, h, xe) : jorm_hist_fini_$n(code, h);
                for (int c = 0; c < channels; ++c)
                    EXPECT_EQ(std::tuple(h[c].sum, h[c].product, h[c].bins), std::tuple(0u, 0u, nullptr));
            }
    jorm_histogram one;
    EXPECT_EQ(jorm_hist__init(0, &one, d), JORM_OK);
    EXPECT_EQ(one.bins, nullptr);
    EXPECT_EQ(jorm_hist__init_xe(1, &one, d, xe), JORM_OK);
    EXPECT_TRUE(zeroed(one));
    jorm_hist_fini_$xe(&one, xe);
    EXPECT_EQ(_jorm_histogram__$xe(&one, d, xe), JORM_OK);
    one.bins[1] = 3;
    jorm_hist_reset(&one);
    EXPECT_TRUE(zeroed(one));
    jorm_hist_fini_$xe(&one, xe);
    jorm_hist_reset(&one);
    jorm_hist_fini(&one);
    expect_each(JORM_EINVAL,
                {jorm_hist__init(3, &one, d), jorm_hist__init(1, nullptr, d), jorm_hist__init_xe(1, &one, nullptr, xe),
                 jorm_hist__init_n(0, 0, &one, d), jorm_hist__init_n_xe(4, 1, &one, d, xe),
                 _jorm_histogram__$n$ia(7, &one, d), _jorm_histogram__$n$xe(0, &one, d, xe)});
}

TEST(Histogram, CountersComeAllOrNone) {
    if (!own_heap) GTEST_SKIP() << "the sanitizer's heap cannot be limited";
    const jorm_histdesc d[3] = {description(4, 0, 3), description(1 << 20, 0, 4), description(1 << 30, 0, 5)};
    jorm_histogram h[3];
    Env xe;
    ASSERT_EQ(_jorm_histogram__$n$xe(2, h, d, xe), JORM_OK);
    jorm_hist_fini_$n$xe(2, h, xe);
    heap_limit = 1 << 24;
    uint64_t before[4], after[4];
    JormXEgetmmsp(xe, before);
    EXPECT_EQ(_jorm_histogram__$n$xe(3, h, d, xe), JORM_ENOMEM);
    JormXEgetmmsp(xe, after);
    EXPECT_EQ(std::memcmp(before, after, sizeof before), 0) << "the stack is where it was";
    for (const jorm_histogram &x : h) EXPECT_EQ(x.bins, nullptr);
    EXPECT_EQ(jorm_hist__init_xe(1, &h[0], &d[0], nullptr), JORM_ENOMEM);
    heap_limit = SIZE_MAX;
}

TEST(Histogram, KernelsThatThereAre) {
    for (uint32_t type = 0; type < 17; ++type)
        for (uint32_t channels = 0; channels < 6; ++channels)
            for (const bool masked : {false, true}) {
                const bool known = std::count(std::begin(types), std::end(types), type) && !(masked && type == JORM_S8);
                const bool sound = ((type >= 1 && type <= 4) || (type >= 9 && type <= 15)) && channels >= 1 &&
                                   channels <= 4 && (!known || channels == 1);
                int32_t status = 1;
                jorm_proc *const proc = (masked ? jorma__histofunxm_imp : jorma__histofun_imp)(channels, type, &status);
                EXPECT_EQ(status, !sound ? JORM_EINVAL : known ? JORM_OK : JORM_ENOTSUP) << type << ' ' << channels;
                EXPECT_TRUE(status == JORM_OK || proc == (sound ? jorma_proc_enotsup : jorma_proc_einval));
            }
}

TEST(Histogram, Refusals) {
    Random r(63);
    const Picture four(r, JORM_U8, {1, 4, 5, 4}), one(r, JORM_U8, {1, 4, 5, 1}), s8(r, JORM_S8, {1, 4, 5, 1});
    Histogram h(description(256, 0, 255));
    const auto *const a = &one.a, *const m = &one.a;
    expect_each(JORM_EINVAL, {JormHistogram(nullptr, 0, &four.a, nullptr, 0, &h),
                              JormHistogram(nullptr, 0, a, nullptr, 4, &h)}); // a mode that there is not
    expect_each(JORM_ENOTIMP, {JormHistogram(nullptr, 0, a, nullptr, 1, &h),
                               JormHistogramEx(nullptr, 0, a, m, nullptr, nullptr, 3, &h)});
    EXPECT_EQ(JormHistogramEx(nullptr, 0, &s8.a, m, nullptr, nullptr, 0, &h), JORM_ENOTSUP);
    EXPECT_EQ(std::count(h.bins, h.bins + 257, 0u), 257);
}

} // namespace
