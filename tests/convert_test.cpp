// Conversion against an oracle in double precision.
#include "jorm.h"
#include "support/picture.hpp"

namespace {

const uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};

double sample(uint32_t type, Random &r) {
    static const double odd[] = {nan, inf,  -inf,  3e9,   -3e9,    2147483648.0, 0.5,  1.5,
                                 2.5, -0.5, 254.5, 255.5, 32767.5, -32768.5,     1e-30};
    std::uniform_real_distribution<> part(0, 1);
    if (type == JORM_F32) return r.one_in(4) ? r.of(odd) : (part(r) - 0.5) * std::ldexp(1, r.in(0, 35));
    return lowest(type) + std::floor(part(r) * (highest(type) - lowest(type) + 1));
}

// y = x * scale + offset between the ranges, in double as promised.
double mapped(double x, const vrng &d, const vrng &s) {
    const double scale = (d.hi - d.lo) / (s.hi - s.lo);
    return x * scale + (d.lo - s.lo * scale);
}

struct Convert : testing::Test {
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    Random r{7};
    ~Convert() override { JormXEclose(xe); }

    Picture picture(uint32_t type, const Index &extent, int ndims = 3) {
        Picture p(r, type, extent, false, ndims);
        p.fill([&] { return sample(type, r); });
        return p;
    }
    // Every element of dst is model(element of src, channel).
    template <class F> void expect_elements(const Picture &dst, const Picture &src, double tolerance, F model) {
        each(extent_of(src.a), [&](const Index &i) {
            const double x = src.get(i), got = dst.get(i), wish = model(x, i[3]);
            ASSERT_TRUE(same(got, wish) || std::fabs(got - wish) <= tolerance)
                << dst.a.eltype << " <- " << src.a.eltype << " of " << x << ": " << got << ", not " << wish;
        });
    }
};

TEST_F(Convert, PlainAndByRangesInEveryLayout) {
    for (uint32_t d : types)
        for (uint32_t s : types)
            for (int round = 0; round < 24; ++round) {
                const int ndims = round % 5 == 4 ? 4 : 3;
                const Index extent = {ndims == 4 ? 3 : 1, r.in(1, 4), round % 3 ? r.in(1, 70) : r.in(300, 2300),
                                      r.in(1, 4)};
                Picture src = picture(s, extent, ndims), dst = picture(d, extent, ndims);
                use_level(round % jorm::level_count);
                const bool ranged = round % 3 == 2;
                vrng to[4], from[4], source = s == JORM_U8 ? vrng{0, 200} : vrng{-50, 200};
                for (int c = 0; c < 4; ++c) to[c] = {1, 100.5}, from[c] = {-50, 200};
                ASSERT_EQ(JormVConvert(xe, 0, &dst.a, &src.a, nullptr, nullptr, ranged ? to : nullptr,
                                       ranged ? from : nullptr),
                          0);
                expect_elements(dst, src, 0,
                                [&](double x, int c) { return converted(d, ranged ? mapped(x, to[c], source) : x); });
            }
}

// A source value whose result is anything (kind 0), near a tie by 8 to 0 times 2^-16 (1 to 9), or now and then odd
// (10).
double aimed(uint32_t type, int kind, const vrng &d, const vrng &s, Random &r) {
    static const double odd[] = {nan, inf, -inf, 1e30, -3e9, 4e7, -0.0};
    if (kind == 10 && r() % 64 == 0)
        return type == JORM_F32 ? odd[r() % 7] : (r.one_in(2) ? lowest(type) : highest(type));
    double y = double(r()) / 4294967296.0 * 300 - 20;
    if (kind && kind < 10) y = std::floor(y) + 0.5 + (kind - 9) * (r() % 2 ? 1.0 : -1.0) / 65536;
    const double x = s.lo + (y - d.lo) * (s.hi - s.lo) / (d.hi - d.lo);
    if (type == JORM_F32) return x;
    return std::nearbyint(std::clamp(x, lowest(type), highest(type)));
}

// Single precision takes part only where it gives the same bits.
TEST_F(Convert, RangesToTheLastBit) {
    struct Line {
        vrng to, from;
    };
    std::vector<Line> lines = {{{0, 255}, {0, 1}},          {{0, 255}, {20. / 300, 275. / 300}},
                               {{0, 255}, {-32768, 32767}}, {{-0.5, 0.5}, {0, 255}},
                               {{255, 0}, {-3, 1000}},      {{0, 127.5}, {0, 255}},
                               {{-7e4, 255}, {0, 1}},       {{0, 255}, {1e4, 1e4 + 1}},
                               {{-2e9, 2e9}, {0, 255}},     {{-30000, 32000}, {0, 255}},
                               {{0, 255}, {0, 1e-6}},       {{0, 1e-6}, {0, 255}},
                               {{0, 1e35}, {0, 255}},       {{0, 255}, {-1e9, 2e9}},
                               {{-0.0, 1}, {128, 383}}};
    for (int i = 0; i < 12; ++i) {
        const double lo = double(r() % 2000) / 8 - 128, from = double(r()) / 4294967296.0 * 300 - 150;
        lines.push_back({{lo, lo + double(r() % 9999) / 17 + 1}, {from, from + double(r()) / 1e8 + 0.25}});
    }
    constexpr int block = 384, n = 22 * block + 103;
    std::vector<uint8_t> from(4 * n), to(4 * n);
    for (uint32_t s : types)
        for (uint32_t d : types)
            for (size_t line = 0; line < lines.size(); ++line) {
                const int channels = 1 + int(line % 3), db = bytes_of(d), sb = bytes_of(s);
                vrng dst[3], src[3];
                for (int c = 0; c < channels; ++c) {
                    dst[c] = lines[(line + size_t(c)) % lines.size()].to;
                    src[c] = lines[(line + size_t(c)) % lines.size()].from;
                }
                for (int i = 0; i < n; ++i) {
                    const int c = i % channels, kind = i / block % 2 * (i / block / 2);
                    const double x = s == JORM_U8 ? i / channels % 256 : aimed(s, kind, dst[c], src[c], r);
                    store(s, &from[size_t(i * sb)], x);
                }
                const int32_t size[] = {n / channels, channels}, ds[] = {db * channels, db}, ss[] = {sb * channels, sb};
                for (int run = 0; run < (sb < db ? 3 : 6); ++run) { // at every level, then in place
                    use_level(run % jorm::level_count);
                    if (run >= 3) to = from;
                    ASSERT_EQ(_jorma__swvconvert(xe, 0, JORM_WORD(2), size, d, to.data(), ds, s,
                                                 (run < 3 ? from : to).data(), ss, dst, src),
                              0);
                    for (int i = 0; i < n / channels * channels; ++i) {
                        const double x = load(s, &from[size_t(i * sb)]), got = load(d, &to[size_t(i * db)]);
                        const double wish = converted(d, mapped(x, dst[i % channels], src[i % channels]));
                        ASSERT_TRUE(d == JORM_F32 ? same(got, wish) : got == wish)
                            << d << " <- " << s << ", line " << line << ", run " << run << ", " << x << ": " << got
                            << ", not " << wish;
                    }
                }
            }
}

TEST_F(Convert, MeasuredRangesScalesAndOffsets) {
    const Index extent = {2, 3, 40, 2};
    Picture src = picture(JORM_S16, extent, 4), dst = picture(JORM_S32, extent, 4), bytes = picture(JORM_U8, extent, 4);
    Picture real = picture(JORM_F32, extent, 4);
    double lo = inf, hi = -inf;
    each(extent, [&](const Index &i) { lo = std::min(lo, src.get(i)), hi = std::max(hi, src.get(i)); });
    // Null scales and offsets shift the data so that the minimum becomes 0.
    ASSERT_EQ(JormConvert(xe, 0, &dst.a, &src.a, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
    expect_elements(dst, src, 0, [&](double x, int) { return x - lo; });

    // The measured range fills the destination's. Channels cannot be selected.
    vrng full[2] = {{0, 255}, {0, 255}};
    ASSERT_EQ(JormVConvert(xe, 0x20, &bytes.a, &src.a, nullptr, nullptr, full, nullptr), 0);
    expect_elements(bytes, src, 0, [&](double x, int) { return converted(JORM_U8, mapped(x, {0, 255}, {lo, hi})); });

    // Offsets by channel: the multiply-add with constants per channel.
    const double scales[2] = {0.25, 0.5}, offsets[2] = {10, 20}, ones[2] = {1, nan}, none[2] = {nan, inf};
    const vrng known[2] = {{-32768, 32767}, {-32768, 32767}};
    ASSERT_EQ(JormConvert(xe, 0, &real.a, &src.a, nullptr, nullptr, scales, offsets, known), 0);
    expect_elements(real, src, 0.01, [&](double x, int c) { return offsets[c] + (x + 32768) * scales[c]; });
    // Scales of 1 and offsets of NaN: plain.
    ASSERT_EQ(JormConvert(xe, 0, &bytes.a, &src.a, nullptr, nullptr, ones, none, nullptr), 0);
    expect_elements(bytes, src, 0, [](double x, int) { return converted(JORM_U8, x); });
}

TEST_F(Convert, RangesAreRepairedAndFilled) {
    Picture src = picture(JORM_U8, {1, 2, 9, 1}), dst = picture(JORM_F32, {1, 2, 9, 1});
    vrng invalid = {5, 1}, to = {3, 9};
    const vrng from = {10, 20};
    ASSERT_EQ(JormVConvert(xe, 0, &dst.a, &src.a, nullptr, nullptr, &invalid, &from), 0);
    EXPECT_TRUE(invalid.lo == 10 && invalid.hi == 20 && from.lo == 10);
    src.fill([] { return 77; }); // no extent
    ASSERT_EQ(JormVConvert(xe, 0, &dst.a, &src.a, nullptr, nullptr, &to, nullptr), 0);
    expect_elements(dst, src, 0, [](double, int) { return 3; });
}

TEST_F(Convert, NarrowsInPlace) {
    for (int level = 0; level < jorm::level_count; ++level) {
        use_level(level);
        std::vector<int16_t> memory(5000);
        for (int16_t &v : memory) v = int16_t(r.in(-100, 500));
        const std::vector<int16_t> before = memory;
        const int32_t size[2] = {5000, 1}, wide[2] = {2, 2}, narrow[2] = {1, 1};
        ASSERT_EQ(_jorma__tconvert_u8s16(xe, 0, JORM_WORD(2), size, memory.data(), narrow, memory.data(), wide), 0);
        const auto *bytes = reinterpret_cast<const uint8_t *>(memory.data());
        for (size_t i = 0; i < 5000; ++i) ASSERT_EQ(bytes[i], converted(JORM_U8, before[i])) << i;
    }
}

TEST_F(Convert, Statuses) {
    Picture a = picture(JORM_U8, {1, 3, 5, 1}), b = picture(JORM_S16, {1, 3, 5, 1}),
            c3 = picture(JORM_U8, {1, 3, 5, 3});
    const auto convert = [&](const jorm_array *d, const jorm_array *s, const jorm_site *roi = nullptr) {
        return JormVConvert(xe, 0, d, s, roi, nullptr, nullptr, nullptr);
    };
    const auto changed = [&](uint32_t type, uint16_t ndims) {
        jorm_array other = b.a;
        other.eltype = type, other.ndims = ndims;
        return convert(&a.a, &other);
    };
    const jorm_site far = {{0, 9, 0, 0}, {1, 1, 1, 1}};
    int32_t found[2];
    EXPECT_EQ(jorma__vcvtfun_imp(JORM_U8, JORM_F64, &found[0]), jorma_proc_enotsup);
    EXPECT_EQ(jorma__tcvtfun_imp(8, JORM_U8, &found[1]), jorma_proc_einval);
    expect_each(JORM_EINVAL,
                {convert(nullptr, &a.a), convert(&a.a, &c3.a), changed(7, 3), changed(JORM_S16, 4), found[1],
                 _jorma__swvconvert(xe, 0, JORM_WORD(3), nullptr, JORM_U8, a.at({}), a.a.stride + 1, JORM_U8, a.at({}),
                                    a.a.stride + 1, nullptr, nullptr)});
    expect_each(JORM_ENOTSUP, {changed(JORM_U16, 3), found[0]});
    EXPECT_EQ(convert(&a.a, &b.a, &far), JORM_EEMPTY);
    const double two[] = {2}, one[] = {1};
    EXPECT_EQ(jorm_scfochk(two, nullptr, 1), 3);
    EXPECT_EQ(jorm_scfochk(one, nullptr, 1), 2);
    EXPECT_EQ(jorm_scfochk(two, &nan, 1), 1);
}

} // namespace
