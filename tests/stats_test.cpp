// Sums, means, extrema and measured ranges over random types, layouts, regions, masks and levels, against plain loops.
#include "jorm/arith.h"
#include "jorm/array.h"
#include "jorm/stats.h"
#include "jorm/xe.h"
#include "xe/level.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace {

using Random = std::mt19937;
int below(Random &rng, int n) { return int(rng() % unsigned(n)); }

const uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};
int size_of(uint32_t type) { return type == JORM_U8 || type == JORM_S8 ? 1 : type == JORM_S16 ? 2 : 4; }

// An array of any layout in memory of its own.
struct Picture {
    jorm_array a = {};
    std::vector<char> memory;

    Picture(Random &rng, uint32_t type, int axes, int planes, int rows, int pixels, int channels, bool dense) {
        const int extent[4] = {axes == 4 ? planes : 1, rows, pixels, channels}, element = size_of(type);
        int order[4] = {3, 2, 1, 0}; // the innermost first
        if (!dense) std::shuffle(order, order + 4, rng);
        int64_t step = element, first = 0;
        for (int slot : order) {
            const bool backward = !dense && rng() % 4 == 0;
            a.stride[slot] = int32_t(backward ? -step : step);
            if (backward) first += step * (extent[slot] - 1);
            step *= extent[slot];
            if (!dense) step += element * below(rng, 3);
        }
        memory.resize(size_t(step));
        for (int i = 0; i < 4; ++i) a.extent[i] = a.parent_extent[i] = uint32_t(extent[i]);
        a.ndims = uint16_t(axes);
        a.eltype = type;
        a.loff = int32_t(first);
        a.base = memory.data();
    }
    char *at(int p, int y, int x, int c) {
        const int32_t index[4] = {p, y, x, c};
        return memory.data() + a.loff + jorm_vec_mkloff(4, index, a.stride);
    }
    double get(int p, int y, int x, int c) {
        char *e = at(p, y, x, c);
        switch (a.eltype) {
        case JORM_U8:
            return *reinterpret_cast<uint8_t *>(e);
        case JORM_S16:
            return *reinterpret_cast<int16_t *>(e);
        case JORM_S32:
            return *reinterpret_cast<int32_t *>(e);
        default:
            return double(*reinterpret_cast<float *>(e));
        }
    }
    void set(int p, int y, int x, int c, double v) {
        char *e = at(p, y, x, c);
        const auto i = int32_t(std::isnan(v) ? 0 : v);
        const auto f = float(v);
        std::memcpy(e, a.eltype == JORM_F32 ? static_cast<const void *>(&f) : &i, size_t(size_of(a.eltype)));
    }
    template <class F> void fill(F value) {
        for (int p = 0; p < int(a.extent[0]); ++p)
            for (int y = 0; y < int(a.extent[1]); ++y)
                for (int x = 0; x < int(a.extent[2]); ++x)
                    for (int c = 0; c < int(a.extent[3]); ++c) set(p, y, x, c, value());
    }
};

double limit(uint32_t type, bool low) {
    return type == JORM_U8 ? (low ? 0 : 255) : std::ldexp(low ? -1 : 1, 8 * size_of(type) - 1) - (low ? 0 : 1);
}

// Few values make many ties; whole types reach their limits.
double sample(Random &rng, uint32_t type, int style) {
    if (type != JORM_F32) {
        const double low = limit(type, true), high = limit(type, false);
        return style == 0   ? std::floor(std::uniform_real_distribution<>(low, high + 1)(rng))
               : style == 1 ? below(rng, 3) + 5
               : rng() % 2  ? low
                            : high;
    }
    if (style == 1) return below(rng, 3) - 1.0; // both zeros too
    if (style == 2) return rng() % 3 ? NAN : rng() % 2 ? INFINITY : 1e30;
    return std::ldexp(std::uniform_real_distribution<>(-1, 1)(rng), below(rng, 40));
}

struct Expected {
    double sum = 0, mean = 0;
    jorm_extremum min, max;
};

bool same_bits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b)); }
void expect_same(const jorm_extremum &a, const jorm_extremum &b, const std::string &what) {
    EXPECT_TRUE(a.i == b.i && same_bits(a.f, b.f) && a.row == b.row && a.column == b.column && a.plane == b.plane)
        << what << ": " << a.i << ' ' << a.f << " at " << a.plane << ',' << a.row << ',' << a.column << ", expected "
        << b.i << ' ' << b.f << " at " << b.plane << ',' << b.row << ',' << b.column;
}

jorm_extremum extremum(uint32_t type, bool low, const double *value, int p, int y, int x) {
    const double v = value ? *value : type == JORM_F32 ? NAN : limit(type, !low);
    const double r = std::nearbyint(v);
    const bool fits = r >= -2147483648.0 && r <= 2147483647.0;
    return {fits ? int32_t(r) : INT32_MIN, float(v), value ? y : -1, value ? x : -1, value ? p : -1, 0};
}

// One channel of a region: origin o, size n; the mask is read at m.
Expected expected(Picture &src, const int *o, const int *n, int c, Picture *mask, const int *m, int unselected) {
    Expected e;
    const uint32_t type = src.a.eltype;
    double partial[64] = {}, count = 0, best[2] = {};
    __int128 whole = 0;
    int64_t i = 0;
    bool any = false;
    e.min = extremum(type, true, nullptr, 0, 0, 0);
    e.max = extremum(type, false, nullptr, 0, 0, 0);
    for (int p = 0; p < n[0]; ++p)
        for (int y = 0; y < n[1]; ++y)
            for (int x = 0; x < n[2]; ++x, ++i) {
                if (mask && int(uint8_t(*mask->at(m[0] + p, m[1] + y, m[2] + x, 0))) == unselected) continue;
                const double v = src.get(o[0] + p, o[1] + y, o[2] + x, o[3] + c);
                ++count;
                partial[i % 64] += v;
                if (type != JORM_F32) whole += int64_t(v);
                if (std::isnan(v)) continue;
                if (!any || v < best[0]) best[0] = v, e.min = extremum(type, true, &v, o[0] + p, o[1] + y, o[2] + x);
                if (!any || v > best[1]) best[1] = v, e.max = extremum(type, false, &v, o[0] + p, o[1] + y, o[2] + x);
                any = true;
            }
    for (int half = 32; half > 0; half /= 2)
        for (int k = 0; k < half; ++k) partial[k] += partial[k + half];
    e.sum = partial[0];
    if (type != JORM_F32) e.sum = double(whole);
    e.mean = count > 0 ? e.sum / count : 0;
    return e;
}

void check_case(Random &rng, int rows, int pixels) {
    const uint32_t type = types[below(rng, 4)];
    const int axes = 3 + below(rng, 2), channels = 1 + below(rng, 3);
    const int full[4] = {axes == 4 ? 1 + below(rng, 3) : 1, rows, pixels, channels};
    const bool masked = rng() % 2, inverted = rng() % 2;
    Picture src(rng, type, axes, full[0], full[1], full[2], channels, rng() % 2);
    const int style = below(rng, 3);
    src.fill([&] { return sample(rng, type, style); });

    jorm_site roi = {};
    int o[4] = {}, n[4] = {full[0], full[1], full[2], full[3]};
    const bool part = rng() % 2;
    for (int i = 0; part && i < 4; ++i) {
        o[i] = below(rng, n[i]);
        n[i] = 1 + below(rng, n[i] - o[i]);
        roi.origin[i] = o[i];
        roi.size[i] = n[i];
    }
    int m[4] = {below(rng, 2) * (axes == 4), below(rng, 3), below(rng, 3), 0};
    const int32_t at_mask[4] = {m[0], m[1], m[2], 0};
    Picture mask(rng, rng() % 2 ? JORM_U8 : JORM_S8, axes, full[0] == 1 ? 1 : full[0], n[1] + m[1], n[2] + m[2], 1,
                 rng() % 2);
    const int density = below(rng, 3);
    mask.fill([&] { return below(rng, 8) < density * 4 ? 1 + below(rng, 255) : 0; });
    if (masked) n[0] = std::min(n[0], full[0] - m[0]);
    if (n[0] < 1) return;

    const uint32_t chosen = uint32_t(rng() % 2 ? 0 : rng() & 15);
    if (rng() % 2) src.a.extent[3] |= chosen << 4;
    const uint64_t options = ((src.a.extent[3] >> 4) == chosen ? 0 : chosen << 4) |
                             (inverted ? JORM_OPT_MASK_INVERT : 0) | (rng() % 2 ? JORM_OPT_FAST : 0);
    for (const jorm::Level level : {jorm::level_base, jorm::level_avx2, jorm::level_avx512}) {
        _G_jorm_use_simd = level != jorm::level_base;
        jorm::limit_level(level);
        double sums[4] = {-7, -7, -7, -7}, means[4] = {-7, -7, -7, -7};
        jorm_minmax mm;
        std::memset(&mm, 0x55, sizeof mm);
        const jorm_minmax untouched = mm;
        mm.request = uint32_t(below(rng, 4));
        const jorm_site *where = part ? &roi : nullptr;
        if (masked) {
            ASSERT_EQ(JormSumEx(nullptr, options, &src.a, &mask.a, where, at_mask, sums), JORM_OK);
            ASSERT_EQ(JormMeanEx(nullptr, options, &src.a, &mask.a, where, at_mask, means), JORM_OK);
            ASSERT_EQ(JormMinmaxEx(nullptr, options, &src.a, &mask.a, where, at_mask, &mm), JORM_OK);
        } else {
            ASSERT_EQ(JormSum(nullptr, options, &src.a, where, sums), JORM_OK);
            ASSERT_EQ(JormMean(nullptr, options, &src.a, where, means), JORM_OK);
            ASSERT_EQ(JormMinmax(nullptr, options, &src.a, where, &mm), JORM_OK);
        }
        for (int c = 0; c < 4; ++c) {
            const bool selected = c < n[3] && (chosen == 0 || (chosen >> c & 1));
            const Expected e = selected ? expected(src, o, n, c, masked ? &mask : nullptr, m, inverted ? 255 : 0)
                                        : Expected{-7, -7, {}, {}};
            const std::string what = "type " + std::to_string(type) + " channel " + std::to_string(c) + " of " +
                                     std::to_string(n[3]) + " level " + std::to_string(level) + " size " +
                                     std::to_string(n[0]) + 'x' + std::to_string(n[1]) + 'x' + std::to_string(n[2]);
            EXPECT_TRUE(same_bits(sums[c], e.sum)) << what << ": " << sums[c] << ", expected " << e.sum;
            EXPECT_TRUE(same_bits(means[c], e.mean)) << what << ": " << means[c] << ", expected " << e.mean;
            expect_same(mm.min[c], selected && (mm.request & JORM_WANT_MIN) ? e.min : untouched.min[c], "min " + what);
            expect_same(mm.max[c], selected && (mm.request & JORM_WANT_MAX) ? e.max : untouched.max[c], "max " + what);
        }
        if (testing::Test::HasFailure()) return;
    }
}

class Stats : public testing::Test {
protected:
    void TearDown() override {
        jorm::limit_level(jorm::level_count);
        _G_jorm_use_simd = -1;
    }
};

TEST_F(Stats, AgreeWithPlainLoops) {
    Random rng(6);
    for (int round = 0; round < 1500 && !HasFailure(); ++round) check_case(rng, 1 + below(rng, 9), 1 + below(rng, 90));
    for (int round = 0; round < 40 && !HasFailure(); ++round)
        check_case(rng, 1 + below(rng, 300), 200 + below(rng, 400));
}

// Sums leave every narrow counter behind and are rounded once.
TEST_F(Stats, SumsAreExactAtAnySize) {
    _G_jorm_use_simd = 1;
    const int32_t size[2] = {8421505, 1}, stride[2] = {1, 1}, thirds[2] = {2807168, 3}, stride4[2] = {4, 4};
    double s[3];
    std::vector<uint8_t> bytes(size[0], 255);
    for (uint64_t options : {uint64_t(0), JORM_OPT_NO_SIMD, JORM_OPT_FAST}) {
        EXPECT_EQ(jorma__sum(nullptr, options, JORM_WORD(2), size, JORM_U8, bytes.data(), stride, s), JORM_OK);
        EXPECT_EQ(s[0], 2147483775.0);
        const int32_t stride3[2] = {3, 1};
        EXPECT_EQ(jorma__sum(nullptr, options, JORM_WORD(2), thirds, JORM_U8, bytes.data(), stride3, s), JORM_OK);
        EXPECT_EQ(s[2], 2807168 * 255.0);
    }
    std::vector<int32_t> words(size_t(1 << 22) + 3, INT32_MIN);
    words[7] = words[70] = words[700] = 1; // -2^53 + 3
    const int32_t many[2] = {int32_t(words.size()), 1};
    EXPECT_EQ(jorma__sum(nullptr, 0, JORM_WORD(2), many, JORM_S32, words.data(), stride4, s), JORM_OK);
    EXPECT_EQ(s[0], -9007199254740989.0);
}

TEST_F(Stats, RangesAreMeasuredAndRepaired) {
    const float data[] = {3, NAN, -2, 5, 0.1f, 9, 7, 1, 300};
    const int32_t size[3] = {1, 3, 3}, stride[3] = {36, 12, 4};
    vrng r[3] = {};
    ASSERT_EQ(jorma__compute_vrange(nullptr, 0x50, JORM_WORD(3), size, JORM_F32, data, stride, r), JORM_OK);
    EXPECT_TRUE(r[0].lo == 3 && r[0].hi == 7 && r[1].lo == 0 && r[1].hi == 0 && r[2].lo == -2 && r[2].hi == 300);
    vrng given[3] = {{2, 1}, {NAN, 8}, {0.1, 0.7}};
    ASSERT_EQ(jorma__adjust_vrange(nullptr, 0, JORM_WORD(3), size, JORM_F32, data, stride, given), JORM_OK);
    EXPECT_TRUE(given[0].lo == 3 && given[0].hi == 7 && given[1].lo == 0 && given[1].hi == 1);
    EXPECT_TRUE(given[2].lo == double(0.1f) && given[2].hi == double(0.7f));
    const uint8_t mask[] = {0, 1, 1}, bytes[] = {1, 2, 9};
    const int32_t flat[3] = {1, 3, 1}, by1[3] = {3, 1, 1};
    vrng q[2] = {{-INFINITY, 4}, {0.5, 3.5}};
    ASSERT_EQ(jorma__adjust_vrange_xm(nullptr, 0, JORM_WORD(3), flat, JORM_U8, bytes, by1, mask, by1, q), JORM_OK);
    EXPECT_TRUE(q[0].lo == 2 && q[0].hi == 9 && q[1].lo == 0.5);
}

// Kernels by name, lookups, adapters and slices give what the dispatchers give.
TEST_F(Stats, LayersAgree) {
    Random rng(8);
    const int32_t origin_of_all[4] = {0, 2, 3, 0}, *origin = origin_of_all + 1;
    for (uint32_t type : types)
        for (uint32_t code : {1u, 2u, 3u, 4u, 11u, 12u, 5u, 0u}) {
            const int channels = code == 11 || code == 12 ? 4 : int(code);
            const bool served = channels >= 1 && channels <= 4;
            Picture a(rng, type, 3, 1, 9, 8, served ? channels : 1, true), mask(rng, JORM_U8, 3, 1, 9, 8, 1, true);
            a.fill([&] { return sample(rng, type, 0); });
            mask.fill([&] { return rng() % 2; });
            const int32_t size[3] = {6, 5, int32_t(code)}, *stride = a.a.stride + 1, *mask_stride = mask.a.stride + 1;
            const void *start = a.at(0, 2, 3, 0), *m = mask.at(0, 2, 3, 0);
            double s[4] = {}, t[4] = {};
            jorm_minmax mm = {}, nn = {};
            mm.request = nn.request = 3;
            const int64_t status = jorma__sum(nullptr, 0, JORM_WORD(3), size, type, start, stride, s);
            EXPECT_EQ(status, served ? JORM_OK : JORM_EINVAL) << code;
            for (const uint64_t options : {uint64_t(0), JORM_OPT_FAST}) {
                int32_t looked = 1;
                auto *kernel = reinterpret_cast<jorm_sum_kernel *>(
                    reinterpret_cast<void (*)()>(jorma__sumfun_imp(options, code, type, &looked)));
                EXPECT_EQ(looked, !served ? JORM_EINVAL : code == 2 ? JORM_ENOTSUP : JORM_OK) << code;
                EXPECT_EQ(kernel(nullptr, options, JORM_WORD(3), size, start, stride, t), looked);
                EXPECT_TRUE(looked != JORM_OK || std::memcmp(s, t, sizeof s) == 0);
            }
            if (!served) continue;
            EXPECT_EQ(jorma_sum(nullptr, 0, JORM_WORD(3), size, type, a.a.base, origin, stride, t), JORM_OK);
            EXPECT_EQ(std::memcmp(s, t, sizeof s), 0);
            EXPECT_EQ(jorma_mean_xm(nullptr, 0, JORM_WORD(3), size, type, a.a.base, origin, stride, mask.a.base, origin,
                                    mask_stride, s),
                      JORM_OK);
            EXPECT_EQ(JormTGAmeanEx(nullptr, 0, t, JORM_WORD(3), size, type, start, stride, JORM_U8, m, mask_stride),
                      JORM_OK);
            EXPECT_EQ(std::memcmp(s, t, sizeof s), 0);
            EXPECT_EQ(jorma__minmax(nullptr, 0, JORM_WORD(3), size, type, start, stride, &mm), JORM_OK);
            EXPECT_EQ(jorma_minmax(nullptr, 0, JORM_WORD(3), size, type, a.a.base, origin, stride, &nn), JORM_OK);
            for (int c = 0; c < channels; ++c) {
                EXPECT_EQ(mm.max[c].row + 2, nn.max[c].row);
                EXPECT_EQ(mm.max[c].column + 3, nn.max[c].column);
                EXPECT_EQ(mm.max[c].i, nn.max[c].i);
            }
            int32_t looked = 1;
            auto *kernel = reinterpret_cast<jorm_minmax_xm_kernel *>(
                reinterpret_cast<void (*)()>(jorma__minmaxfunxm_imp(0, code, type, &looked)));
            EXPECT_EQ(looked, channels == 1 ? JORM_OK : JORM_ENOTSUP);
            EXPECT_EQ(jorma__minmax_xm(nullptr, 0, JORM_WORD(3), size, type, start, stride, m, mask_stride, &mm),
                      JORM_OK);
            EXPECT_EQ(kernel(nullptr, 0, JORM_WORD(3), size, start, stride, m, mask_stride, &nn), looked);
            EXPECT_TRUE(looked != JORM_OK || std::memcmp(&mm, &nn, sizeof mm) == 0);
        }
}

TEST_F(Stats, StatusesComeInOrder) {
    Random rng(9);
    const auto array = [&](uint32_t type, int channels) { return Picture(rng, type, 3, 1, 4, 5, channels, true); };
    Picture good = array(JORM_U8, 3), four = array(JORM_S32, 4), mask = array(JORM_U8, 1), wide = array(JORM_S32, 1);
    Picture u16 = array(JORM_U8, 1), odd = array(JORM_U8, 1);
    u16.a.eltype = JORM_U16, u16.a.extent[1] = 1, u16.a.extent[2] = 1;
    odd.a.eltype = 5, odd.a.extent[1] = 1, odd.a.extent[2] = 1;
    const jorm_site outside = {{0, 4, 0, 0}, {1, 1, 1, 3}}, no_channel = {{0, 0, 0, 3}, {1, 4, 5, 1}};
    double s[4] = {5, 5, 5, 5};
    jorm_minmax mm = {};
    mm.request = 3;
    EXPECT_EQ(JormSum(nullptr, 0, nullptr, nullptr, s), JORM_EINVAL);
    EXPECT_EQ(JormSum(nullptr, 0, &good.a, &outside, nullptr), JORM_EINVAL);
    EXPECT_EQ(JormSum(nullptr, 0, &four.a, &outside, s), JORM_EINVAL);
    EXPECT_EQ(JormSum(nullptr, 0, &good.a, &outside, s), JORM_EEMPTY);
    EXPECT_EQ(JormMinmax(nullptr, 0, &good.a, &no_channel, &mm), JORM_EEMPTY);
    EXPECT_EQ(JormSumEx(nullptr, 0, &good.a, nullptr, &outside, nullptr, s), JORM_EINVAL);
    EXPECT_EQ(JormSumEx(nullptr, 0, &good.a, &good.a, &outside, nullptr, s), JORM_EINVAL);
    EXPECT_EQ(JormMinmaxEx(nullptr, 0, &good.a, &wide.a, &outside, nullptr, &mm), JORM_EINVAL);
    EXPECT_EQ(JormMeanEx(nullptr, 0, &u16.a, &mask.a, &outside, nullptr, s), JORM_EEMPTY);
    EXPECT_EQ(JormSum(nullptr, 0, &u16.a, nullptr, s), JORM_EINVAL);
    EXPECT_EQ(JormMinmax(nullptr, 0, &u16.a, nullptr, &mm), JORM_ENOTSUP);
    EXPECT_EQ(JormMinmax(nullptr, 0, &odd.a, nullptr, &mm), JORM_EINVAL);
    int32_t status;
    EXPECT_EQ(jorma__minmaxfun_imp(0, 1, JORM_U16, &status), jorma_proc_enotsup);
    EXPECT_EQ(jorma__sumfunxm_imp(0, 1, JORM_U16, &status), jorma_proc_einval);
    EXPECT_EQ(status, JORM_EINVAL);
    for (double x : s) EXPECT_EQ(x, 5);
    EXPECT_EQ(mm.min[0].row + mm.max[0].column, 0);
}

} // namespace
