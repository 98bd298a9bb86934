// Sums, means, extrema and measured ranges over random types, layouts, regions, masks and levels, against plain loops.
#include "jorm/arith.h"
#include "jorm/stats.h"
#include "support/picture.hpp"

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

// One channel of a region with origin o and size n, whose first pixel is called `first`; the mask, if any, is read at
// m.
Expected expected(const Picture &src, const Index &o, Index n, int channel, const Index &first, const Picture *mask,
                  const Index &m, int unselected) {
    const uint32_t type = src.a.eltype;
    const bool real = type == JORM_F32;
    double partial[64] = {}, count = 0, low = nan, high = nan;
    __int128 whole = 0;
    int64_t i = -1;
    const auto extremum = [&](double v, const Index &at) {
        const int32_t nearest = v >= INT32_MIN && v <= INT32_MAX ? int32_t(std::nearbyint(v)) : INT32_MIN;
        return jorm_extremum{nearest, float(v), at[1], at[2], at[0], 0};
    };
    const Index nowhere = {-1, -1, -1, -1};
    Expected e = {0, 0, extremum(real ? nan : highest(type), nowhere), extremum(real ? nan : lowest(type), nowhere)};
    n[3] = 1;
    each(n, [&](const Index &at) {
        ++i;
        if (mask && *mask->at(sum(at, m)) == unselected) return;
        const double v = src.get(sum(sum(at, o), {0, 0, 0, channel}));
        ++count;
        partial[i % 64] += v;
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
    const uint32_t type = r.of(types);
    const int axes = r.in(3, 4), style = r.in(0, 2), density = r.in(0, 2) * 4;
    const Index full = {axes == 4 ? r.in(1, 3) : 1, rows, pixels, r.in(1, 3)};
    Picture src(r, type, full, false, axes);
    src.fill([&] { return sample(r, type, style); });

    const Part part(r, full);
    const Index &o = part.origin;
    Index n = part.size;
    const bool masked = r.one_in(2), inverted = r.one_in(2);
    const Index m = {r.in(0, axes - 3), r.in(0, 2), r.in(0, 2), 0};
    Picture mask(r, r.of(std::array{JORM_U8, JORM_S8}), {full[0], n[1] + m[1], n[2] + m[2], 1}, false, axes);
    mask.fill([&] { return r.in(0, 7) < density ? r.in(1, 255) : 0; });
    if (masked) n[0] = std::min(n[0], full[0] - m[0]);
    if (n[0] < 1) return;

    const uint32_t chosen = r.one_in(2) ? 0 : r() & 15, in_code = r.one_in(2) ? chosen : 0;
    src.a.extent[3] |= in_code << 4;
    const uint64_t options =
        (chosen - in_code) << 4 | (inverted ? JORM_OPT_MASK_INVERT : 0) | (r.one_in(2) ? JORM_OPT_FAST : 0);
    const int lead = 4 - axes;
    const uint32_t word = JORM_WORD(axes);
    const Index size = {n[0], n[1], n[2], n[3] | int(in_code << 4)};
    const int32_t *const s = &size[lead], *const stride = &src.a.stride[lead], *const by = &mask.a.stride[lead];
    enum { entry, adapter, dispatcher, slice };
    for (int level = 0; level < jorm::level_count; ++level) {
        use_level(level);
        const int layer = r.in(entry, slice);
        const auto call = [&](auto plain, auto ex, auto base, auto base_xm, auto start, auto start_xm, auto tga,
                              auto tga_ex, auto *out) {
            uint8_t *const p = src.at(layer == adapter ? Index{} : o);
            uint8_t *const q = mask.at(layer == adapter ? Index{} : m);
            if (layer == entry && masked) return ex(nullptr, options, &src.a, &mask.a, part.roi(), m.data(), out);
            if (layer == entry) return plain(nullptr, options, &src.a, part.roi(), out);
            if (layer == adapter && masked)
                return base_xm(nullptr, options, word, s, type, p, &o[lead], stride, q, &m[lead], by, out);
            if (layer == adapter) return base(nullptr, options, word, s, type, p, &o[lead], stride, out);
            if (layer == dispatcher && masked) return start_xm(nullptr, options, word, s, type, p, stride, q, by, out);
            if (layer == dispatcher) return start(nullptr, options, word, s, type, p, stride, out);
            if (masked) return tga_ex(nullptr, options, out, word, s, type, p, stride, mask.a.eltype, q, by);
            return tga(nullptr, options, out, word, s, type, p, stride);
        };
        double sums[4] = {-7, -7, -7, -7}, means[4] = {-7, -7, -7, -7};
        jorm_minmax mm;
        std::memset(&mm, 0x55, sizeof mm);
        const jorm_minmax untouched = mm;
        mm.request = r() & 3;
        expect_each(JORM_OK, {call(JormSum, JormSumEx, jorma_sum, jorma_sum_xm, jorma__sum, jorma__sum_xm, JormTGAsum,
                                   JormTGAsumEx, sums),
                              call(JormMean, JormMeanEx, jorma_mean, jorma_mean_xm, jorma__mean, jorma__mean_xm,
                                   JormTGAmean, JormTGAmeanEx, means),
                              call(JormMinmax, JormMinmaxEx, jorma_minmax, jorma_minmax_xm, jorma__minmax,
                                   jorma__minmax_xm, JormTGAminmax, JormTGAminmaxEx, &mm)});
        const Index first = layer > adapter ? Index{} : o;
        for (int c = 0; c < 4; ++c) {
            const bool selected = c < n[3] && (chosen == 0 || (chosen >> c & 1));
            const Expected e =
                selected ? expected(src, o, n, c, first, masked ? &mask : nullptr, m, inverted ? 255 : 0) : Expected{};
            SCOPED_TRACE(testing::Message() << "type " << type << " channel " << c << " level " << level << " layer "
                                            << layer << " size " << n[0] << 'x' << n[1] << 'x' << n[2] << 'x' << n[3]);
            ASSERT_PRED2(same, sums[c], e.sum);
            ASSERT_PRED2(same, means[c], e.mean);
            ASSERT_EQ(parts(mm.min[c]), parts(selected && (mm.request & JORM_WANT_MIN) ? e.min : untouched.min[c]));
            ASSERT_EQ(parts(mm.max[c]), parts(selected && (mm.request & JORM_WANT_MAX) ? e.max : untouched.max[c]));
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

TEST(Stats, StatusesComeInOrder) {
    Random r(9);
    const auto array = [&](uint32_t type, int channels) { return Picture(r, type, {1, 4, 5, channels}, true); };
    Picture good = array(JORM_U8, 3), four = array(JORM_S32, 4), mask = array(JORM_U8, 1), wide = array(JORM_S32, 1);
    Picture u16 = array(JORM_U16, 1), odd = array(JORM_U8, 1);
    odd.a.eltype = 5;
    const jorm_site outside = {{0, 4, 0, 0}, {1, 1, 1, 3}}, no_channel = {{0, 0, 0, 3}, {1, 4, 5, 1}};
    const auto *g = &good.a, *o = &odd.a, *u = &u16.a;
    double s[4] = {5, 5, 5, 5};
    jorm_minmax mm = {3, {}, {}};
    expect_each(JORM_EINVAL, {JormSum(nullptr, 0, nullptr, nullptr, s), JormSum(nullptr, 0, g, &outside, nullptr),
                              JormSum(nullptr, 0, &four.a, &outside, s), JormSum(nullptr, 0, u, nullptr, s),
                              JormSumEx(nullptr, 0, g, nullptr, &outside, nullptr, s),
                              JormSumEx(nullptr, 0, g, g, &outside, nullptr, s),
                              JormMinmaxEx(nullptr, 0, g, &wide.a, &outside, nullptr, &mm),
                              JormMinmax(nullptr, 0, o, nullptr, &mm)});
    expect_each(JORM_EEMPTY, {JormSum(nullptr, 0, g, &outside, s), JormMinmax(nullptr, 0, g, &no_channel, &mm),
                              JormMeanEx(nullptr, 0, u, &mask.a, &outside, nullptr, s)});
    EXPECT_EQ(JormMinmax(nullptr, 0, u, nullptr, &mm), JORM_ENOTSUP);
    int32_t status;
    EXPECT_EQ(jorma__minmaxfun_imp(0, 1, JORM_U16, &status), jorma_proc_enotsup);
    EXPECT_EQ(jorma__sumfunxm_imp(0, 1, JORM_U16, &status), jorma_proc_einval);
    EXPECT_EQ(status, JORM_EINVAL);
    for (double x : s) EXPECT_EQ(x, 5);
    EXPECT_EQ(mm.min[0].row + mm.max[0].column, 0);
}

} // namespace
