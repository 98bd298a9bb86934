// Sums, means, extrema and measured ranges over random types, layouts, regions, masks and levels, against plain loops.
#include "jorm/arith.h"
#include "jorm/stats.h"
#include "support/read_case.hpp"

namespace {

const uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};

// Few values make many ties; whole types reach their limits.
double sample(Random &r, uint32_t type, int style) {
    const double low = lowest(type), high = highest(type);
    if (type != JORM_F32 && style == 0) return std::floor(std::uniform_real_distribution<>(low, high + 1)(r));
    if (type != JORM_F32) return style == 1 ? r.in(5, 7) : r.of(std::array{low, high});
    if (style == 1) return r.of(std::array{-1., -0., 0., 1.});
    if (style == 2) return r.of(std::array{nan, nan, nan, nan, inf, 1e30});
    const double v = std::uniform_real_distribution<>(-1, 1)(r);
    return std::ldexp(v, r.in(0, 39));
}

auto parts(const jorm_extremum &e) {
    return std::tuple(e.i, std::bit_cast<uint32_t>(std::isnan(e.f) ? NAN : e.f), e.plane, e.row, e.column);
}
struct Expected {
    double sum = -7, mean = -7;
    jorm_extremum min, max;
};

// One channel of the region, whose first pixel is called `first`.
Expected expected(const ReadCase &c, int channel, const Index &first) {
    const bool real = c.type == JORM_F32;
    double partial[64] = {}, count = 0, low = nan, high = nan;
    __int128 whole = 0;
    const auto extremum = [&](double v, const Index &at) {
        const int32_t nearest = v >= INT32_MIN && v <= INT32_MAX ? int32_t(std::nearbyint(v)) : INT32_MIN;
        return jorm_extremum{nearest, float(v), at[1], at[2], at[0], 0};
    };
    const Index nowhere = {-1, -1, -1, -1};
    Expected e = {0, 0, extremum(real ? nan : highest(c.type), nowhere),
                  extremum(real ? nan : lowest(c.type), nowhere)};
    c.each_sample(channel, [&](double v, const Index &at) {
        ++count;
        partial[((at[0] * c.n[1] + at[1]) * c.n[2] + at[2]) % 64] += v;
        if (!real) whole += int64_t(v);
        if (v < low || (std::isnan(low) && !std::isnan(v))) low = v, e.min = extremum(v, sum(at, first));
        if (v > high || (std::isnan(high) && !std::isnan(v))) high = v, e.max = extremum(v, sum(at, first));
    });
    for (int half = 32; half > 0; half /= 2)
        for (int k = 0; k < half; ++k) partial[k] += partial[k + half];
    e.sum = real ? partial[0] : double(whole);
    e.mean = count > 0 ? e.sum / count : 0;
    return e;
}

void check_case(Random &r, int rows, int pixels) {
    ReadCase c(r, r.of(types), rows, pixels);
    const int style = r.in(0, 2);
    c.src.fill([&] { return sample(r, c.type, style); });
    if (r.one_in(2)) c.options |= JORM_OPT_FAST;
    for (int level = 0; level < jorm::level_count; ++level) {
        use_level(level);
        const int layer = r.in(0, ReadCase::layers - 1);
        const auto call = [&](auto entry, auto entry_ex, auto base, auto base_xm, auto start, auto start_xm, auto tga,
                              auto tga_ex, auto *out) {
            return layer == ReadCase::entry        ? c.at_entry(nullptr, entry, entry_ex, out)
                   : layer == ReadCase::adapter    ? c.at_adapter(nullptr, base, base_xm, out)
                   : layer == ReadCase::dispatcher ? c.at_dispatcher(nullptr, start, start_xm, out)
                                                   : c.at_slice(nullptr, tga, tga_ex, out);
        };
        double sums[4] = {-7, -7, -7, -7}, means[4] = {-7, -7, -7, -7};
        vrng ranges[4] = {};
        jorm_minmax mm;
        std::memset(&mm, 0x55, sizeof mm);
        const jorm_minmax untouched = mm;
        mm.request = r() & 3;
        expect_each(JORM_OK, {call(JormSum, JormSumEx, jorma_sum, jorma_sum_xm, jorma__sum, jorma__sum_xm, JormTGAsum,
                                   JormTGAsumEx, sums),
                              call(JormMean, JormMeanEx, jorma_mean, jorma_mean_xm, jorma__mean, jorma__mean_xm,
                                   JormTGAmean, JormTGAmeanEx, means),
                              call(JormMinmax, JormMinmaxEx, jorma_minmax, jorma_minmax_xm, jorma__minmax,
                                   jorma__minmax_xm, JormTGAminmax, JormTGAminmaxEx, &mm),
                              c.at_dispatcher(nullptr, jorma__compute_vrange, jorma__compute_vrange_xm, ranges)});
        for (int k = 0; k < 4; ++k) {
            const Expected e = c.selects(k) ? expected(c, k, layer > ReadCase::adapter ? Index{} : c.o) : Expected{};
            SCOPED_TRACE(testing::Message() << "type " << c.type << " channel " << k << " level " << level << " layer "
                                            << layer << " size " << testing::PrintToString(c.n));
            ASSERT_PRED2(same, sums[k], e.sum);
            ASSERT_PRED2(same, means[k], e.mean);
            const vrng range = c.selects(k) ? vrng{e.min.f, e.max.f} : vrng{};
            ASSERT_TRUE(std::isnan(range.lo) ? std::isnan(ranges[k].lo) : ranges[k].lo == range.lo);
            ASSERT_TRUE(std::isnan(range.hi) ? std::isnan(ranges[k].hi) : ranges[k].hi == range.hi);
            const bool min = c.selects(k) && (mm.request & JORM_WANT_MIN);
            const bool max = c.selects(k) && (mm.request & JORM_WANT_MAX);
            ASSERT_EQ(parts(mm.min[k]), parts(min ? e.min : untouched.min[k]));
            ASSERT_EQ(parts(mm.max[k]), parts(max ? e.max : untouched.max[k]));
        }
    }
}

TEST(Stats, AgreeWithPlainLoops) {
    Random r(6);
    for (int round = 0; round < 1540 && !HasFailure(); ++round) {
        const int rows = r.in(1, round < 1500 ? 9 : 300), pixels = round < 1500 ? r.in(1, 90) : r.in(200, 600);
        check_case(r, rows, pixels);
    }
}

// Sums leave every narrow counter behind and are rounded once.
TEST(Stats, SumsAreExactAtAnySize) {
    use_level(jorm::level_count);
    const int32_t size[2] = {8421505, 1}, stride[2] = {1, 1}, thirds[2] = {2807168, 3}, stride3[2] = {3, 1};
    double s[3];
    const Bytes bytes(size_t(size[0]), 255);
    for (uint64_t options : {uint64_t(0), JORM_OPT_NO_SIMD, JORM_OPT_FAST}) {
        EXPECT_EQ(jorma__sum(nullptr, options, JORM_WORD(2), size, JORM_U8, bytes.data(), stride, s), JORM_OK);
        EXPECT_EQ(s[0], 2147483775.0);
        EXPECT_EQ(jorma__sum(nullptr, options, JORM_WORD(2), thirds, JORM_U8, bytes.data(), stride3, s), JORM_OK);
        EXPECT_EQ(s[2], 2807168 * 255.0);
    }
    std::vector<int32_t> words(size_t(1 << 22) + 3, INT32_MIN);
    words[7] = words[70] = words[700] = 1; // -2^53 + 3
    const int32_t many[2] = {int32_t(words.size()), 1}, stride4[2] = {4, 4};
    EXPECT_EQ(jorma__sum(nullptr, 0, JORM_WORD(2), many, JORM_S32, words.data(), stride4, s), JORM_OK);
    EXPECT_EQ(s[0], -9007199254740989.0);
}

TEST(Stats, RangesAreMeasuredAndRepaired) {
    const float data[] = {3, NAN, -2, 5, 0.1f, 9, 7, 1, 300};
    const int32_t size[3] = {1, 3, 3}, stride[3] = {36, 12, 4};
    const auto expect = [](const vrng &range, double lo, double hi) {
        EXPECT_EQ(range.lo, lo);
        EXPECT_EQ(range.hi, hi);
    };
    vrng r[3] = {}, given[3] = {{2, 1}, {nan, 8}, {0.1, 0.7}}, q[2] = {{-inf, 4}, {0.5, 3.5}};
    ASSERT_EQ(jorma__compute_vrange(nullptr, 0x50, JORM_WORD(3), size, JORM_F32, data, stride, r), JORM_OK);
    expect(r[0], 3, 7), expect(r[1], 0, 0), expect(r[2], -2, 300);
    ASSERT_EQ(jorma__adjust_vrange(nullptr, 0, JORM_WORD(3), size, JORM_F32, data, stride, given), JORM_OK);
    expect(given[0], 3, 7), expect(given[1], 0, 1), expect(given[2], 0.1f, 0.7f);
    const uint8_t mask[] = {0, 1, 1}, bytes[] = {1, 2, 9};
    const int32_t flat[3] = {1, 3, 1}, by1[3] = {3, 1, 1};
    ASSERT_EQ(jorma__adjust_vrange_xm(nullptr, 0, JORM_WORD(3), flat, JORM_U8, bytes, by1, mask, by1, q), JORM_OK);
    expect(q[0], 2, 9), expect(q[1], 0.5, 3.5);
}

// Kernels give what the dispatchers give.
TEST(Stats, Kernels) {
    Random r(8);
    for (uint32_t type : types)
        for (uint32_t code : {1u, 2u, 3u, 4u, 11u, 12u, 5u, 0u}) {
            const int channels = code > 10 ? 4 : int(code);
            const bool served = channels >= 1 && channels <= 4;
            Picture a(r, type, {1, 9, 8, served ? channels : 1}, true), mask(r, JORM_U8, {1, 9, 8, 1}, true);
            a.fill([&] { return sample(r, type, 0); });
            mask.fill([&] { return r.in(0, 1); });
            const int32_t size[3] = {6, 5, int32_t(code)}, *stride = a.a.stride + 1, *by = mask.a.stride + 1;
            const void *start = a.at({0, 2, 3, 0}), *m = mask.at({0, 2, 3, 0});
            double s[4] = {}, t[4] = {};
            jorm_minmax mm = {3, {}, {}}, nn = mm;
            const uint32_t word = JORM_WORD(3);
            EXPECT_EQ(jorma__sum(nullptr, 0, word, size, type, start, stride, s), served ? JORM_OK : JORM_EINVAL);
            int32_t looked = 1;
            for (const uint64_t options : {uint64_t(0), JORM_OPT_FAST}) {
                auto *const kernel = kernel_as<jorm_sum_kernel>(jorma__sumfun_imp(options, code, type, &looked));
                EXPECT_EQ(looked, !served ? JORM_EINVAL : code == 2 ? JORM_ENOTSUP : JORM_OK) << code;
                EXPECT_EQ(kernel(nullptr, options, word, size, start, stride, t), looked);
                EXPECT_TRUE(looked != JORM_OK || std::memcmp(s, t, sizeof s) == 0) << type << ' ' << code;
            }
            if (!served) continue;
            auto *const kernel = kernel_as<jorm_minmax_xm_kernel>(jorma__minmaxfunxm_imp(0, code, type, &looked));
            EXPECT_EQ(looked, channels == 1 ? JORM_OK : JORM_ENOTSUP);
            EXPECT_EQ(jorma__minmax_xm(nullptr, 0, word, size, type, start, stride, m, by, &mm), JORM_OK);
            EXPECT_EQ(kernel(nullptr, 0, word, size, start, stride, m, by, &nn), looked);
            EXPECT_TRUE(looked != JORM_OK || std::memcmp(&mm, &nn, sizeof mm) == 0);
        }
}

TEST(Stats, LookupsOfTypesThatAreNotServed) {
    int32_t status;
    EXPECT_EQ(jorma__minmaxfun_imp(0, 1, JORM_U16, &status), jorma_proc_enotsup);
    EXPECT_EQ(jorma__sumfunxm_imp(0, 1, JORM_U16, &status), jorma_proc_einval);
    EXPECT_EQ(status, JORM_EINVAL);
}

} // namespace
