// Conversion against an oracle in double precision.
#include "jorm.h"
#include "support/picture.hpp"

namespace {

const uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};

// y = x * scale + offset between the ranges, in double as promised.
double mapped(double x, const vrng &d, const vrng &s) {
    const double scale = (d.hi - d.lo) / (s.hi - s.lo);
    return x * scale + (d.lo - s.lo * scale);
}

struct Convert : testing::Test {
    Env xe;
    Random r{7};

    Picture picture(uint32_t type, const Index &extent, int ndims = 3) {
        Picture p(r, type, extent, false, ndims);
        paint(p, r);
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
    // Offsets that are no numbers are none: the minimum stays.
    ASSERT_EQ(JormConvert(xe, 0, &real.a, &src.a, nullptr, nullptr, scales, none, known), 0);
    Picture other = picture(JORM_F32, extent, 4);
    ASSERT_EQ(JormConvert(xe, 0, &other.a, &src.a, nullptr, nullptr, scales, nullptr, known), 0);
    each(extent, [&](const Index &i) { EXPECT_EQ(real.get(i), other.get(i)); });
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

// ---- By a gain and an offset ----

const uint32_t gain_types[] = {JORM_U8, JORM_S8, JORM_U16, JORM_S16, JORM_S32, JORM_F32, JORM_U32};

// src * gain + offset as promised.
double gained(uint32_t type, double x, double gain, double offset) {
    const double product = x * gain, y = product + offset;
    if (type == JORM_F32) return float(y);
    return std::isnan(y) ? 0 : std::clamp(std::nearbyint(y), lowest(type), highest(type));
}

// Plain, by ranges, by gains and offsets; of types that are not served nothing is written.
TEST_F(Convert, EveryFormInEveryLayout) {
    static const double odd[] = {0, -1, 1e9, -1e300, inf, -inf, nan, 0.5, 1};
    for (uint32_t d : gain_types)
        for (uint32_t s : gain_types)
            for (int round = 0; round < 30; ++round) {
                const int ndims = round % 5 == 4 ? 4 : 3, way = round % 4;
                const auto serves = [&](uint32_t type) {
                    return way > 1 ? type != JORM_U32 : std::count(std::begin(types), std::end(types), type) > 0;
                };
                const bool served = serves(d) && serves(s);
                const Index extent = {ndims == 4 ? 3 : 1, r.in(1, 4), round % 3 ? r.in(1, 70) : r.in(300, 2300),
                                      r.in(1, 4)};
                Picture src = picture(s, extent, ndims), dst = picture(d, extent, ndims);
                const vrng source = s == JORM_U8 ? vrng{0, 200} : vrng{-50, 200};
                double gain[4], offset[4];
                for (int c = 0; c < 4; ++c) {
                    const double spread = highest(d) / (highest(s) + 1), tie = double(r.in(-9, 9)) / 2;
                    gain[c] = c && round % 2 ? gain[0] : d == JORM_F32 || s == JORM_F32 ? tie / 7 : tie * spread;
                    offset[c] = c && round % 2 ? offset[0] : tie;
                    if (round % 7 == 6) (r.one_in(2) ? gain : offset)[c] = r.of(odd);
                }
                const Part part(r, extent);
                const int32_t *const at = part.whole ? nullptr : part.site.origin;
                const double *const g = round % 11 == 5 ? nullptr : gain, *const o = round % 3 == 1 ? nullptr : offset;
                vrng to[4], from[4];
                for (int c = 0; c < 4; ++c) to[c] = {1, 100.5}, from[c] = {-50, 200};
                SCOPED_TRACE(testing::Message() << d << " <- " << s << ", way " << way << ", round " << round);
                expect_block(
                    dst, dst.a, part.origin, served ? part.size : Index{}, served ? JORM_OK : JORM_ENOTSUP,
                    [&] {
                        if (way > 1) return JormGain(nullptr, 0, &dst.a, &src.a, g, o, part.roi(), at);
                        return JormVConvert(xe, 0, &dst.a, &src.a, part.roi(), at, way ? to : nullptr,
                                            way ? from : nullptr);
                    },
                    [&](const Index &i) {
                        const double x = src.get(sum(i, part.origin));
                        if (way > 1) return gained(d, x, g ? g[i[3]] : 1, o ? o[i[3]] : 0);
                        return converted(d, way ? mapped(x, to[i[3]], source) : x);
                    },
                    d == JORM_F32);
            }
}

TEST_F(Convert, GainOfPlanes) {
    Picture twin = picture(JORM_F32, {2, 2, 5, 1}, 4), flat = picture(JORM_F32, {1, 2, 5, 1});
    const jorm_site plane = {{1, 0, 0, 0}, {1, 2, 5, 1}};
    const double gain[] = {0.25};
    ASSERT_EQ(JormGain(nullptr, 0, &twin.a, &flat.a, gain, nullptr, &plane, nullptr), 0);
    EXPECT_TRUE(same(twin.get({1, 1, 4, 0}), gained(JORM_F32, flat.get({0, 1, 4, 0}), 0.25, 0)));
    EXPECT_EQ(JormVConvert(xe, 0, &twin.a, &flat.a, &plane, nullptr, nullptr, nullptr), JORM_EINVAL);
}

// ---- In the source's own memory ----

// Destinations at the start of sources at least as wide, in any layout: what is served is right, what needs scratch
// memory is refused without an environment.
TEST_F(Convert, IntoTheStartOfTheSource) {
    enum { plain, scales, ranges, gains, ways };
    const double scale[] = {1, 0.5, 1, 0.25}, offset[] = {3, 0, -2, 1};
    int served[2] = {};
    for (uint32_t d : types)
        for (uint32_t s : types)
            for (int round = 0; round < 250 && bytes_of(d) <= bytes_of(s); ++round) {
                const int way = round % ways, ndims = r.one_in(4) ? 4 : 3;
                const Index extent = {ndims == 4 ? r.in(1, 3) : 1, r.in(1, 4), r.one_in(9) ? r.in(90, 900) : r.in(1, 9),
                                      r.in(1, 4)};
                Picture src(r, s, extent, r.one_in(3), ndims), model(r, d, extent, true, ndims);
                auto [a, span] = lay_out(r, d, ndims, extent, r.one_in(3));
                if (a.loff) continue; // reversed axes begin at their end
                src.fill([&] { return r.in(-300, 600) / (s == JORM_F32 ? 4. : 1.); });
                a.base = src.at({}), a.eltype = d;
                const int64_t room = int64_t(src.memory.data() + src.memory.size() - static_cast<uint8_t *>(a.base));
                if (span > room) continue;
                const Part part(r, extent);
                const int32_t *const at = part.whole ? nullptr : part.site.origin;
                use_level(round / ways % jorm::level_count);
                const auto run = [&](jorm_xe *env, const jorm_array *dst) {
                    vrng to[4], from[4];
                    for (int c = 0; c < 4; ++c) to[c] = {1, 100.5}, from[c] = {0, 200};
                    if (way == gains) return JormGain(env, 0, dst, &src.a, scale, offset, part.roi(), at);
                    if (way == scales) return JormConvert(env, 0, dst, &src.a, part.roi(), at, scale, offset, from);
                    if (way == ranges) return JormVConvert(env, 0, dst, &src.a, part.roi(), at, to, from);
                    return JormVConvert(env, 0, dst, &src.a, part.roi(), at, nullptr, nullptr);
                };
                const Bytes before = src.memory;
                const int64_t status = run(xe, &model.a);
                ASSERT_EQ(before, src.memory);
                const int64_t bare = run(nullptr, &a);
                ++served[bare == status];
                if (bare != status) {
                    ASSERT_EQ(bare, JORM_EINVAL);
                    ASSERT_EQ(before, src.memory);
                    ASSERT_EQ(run(xe, &a), status);
                }
                if (status != JORM_OK) continue;
                each(part.size, [&](const Index &i) {
                    const Index place = sum(i, part.origin);
                    ASSERT_TRUE(same(load(d, element(a, place)), model.get(place)))
                        << d << " <- " << s << " way " << way << " round " << round << " at "
                        << testing::PrintToString(place);
                });
            }
    EXPECT_TRUE(served[0] > 100 && served[1] > 100) << served[0] << " " << served[1];
}

TEST_F(Convert, Refusals) {
    Picture src = picture(JORM_U8, {1, 2, 3, 1}), wrong(r, JORM_U16, {1, 2, 3, 1}, true);
    vrng range = {nan, 5};
    const jorm_vconvert_params params = {&range, nullptr};
    const int32_t size[] = {2, 3, 1}, *const ds = wrong.a.stride + 1, *const ss = src.a.stride + 1;
    const void *const from = src.at({});
    void *const to = wrong.at({});
    const uint32_t word = JORM_WORD(3), u8 = JORM_U8, u16 = JORM_U16;
    int32_t unserved, malformed;
    EXPECT_EQ(jorma__vcvtfun_imp(JORM_U8, JORM_F64, &unserved), jorma_proc_enotsup);
    EXPECT_EQ(jorma__tcvtfun_imp(8, JORM_U8, &malformed), jorma_proc_einval);
    expect_each(JORM_ENOTSUP, {JormVConvert(xe, 0, &wrong.a, &src.a, nullptr, nullptr, &range, nullptr),
                               JormTGAvconvert(xe, 0, &params, word, size, u16, to, ds, u8, from, ss),
                               jorma__vconvert(xe, 0, word, size, u16, to, ds, u8, from, ss, &range, nullptr),
                               JormVConvert(xe, 0, &wrong.a, &wrong.a, nullptr, nullptr, nullptr, nullptr), unserved});
    EXPECT_TRUE(std::isnan(range.lo) && range.hi == 5); // kept
    expect_each(JORM_EINVAL,
                {_jorma__swvconvert(xe, 0, word, nullptr, u8, to, ds, u8, from, ss, nullptr, nullptr),
                 jorma__gain(xe, 0, word, size, u16, nullptr, ds, u8, from, ss, nullptr, nullptr), malformed});
    const double two[] = {2}, one[] = {1};
    EXPECT_EQ(jorm_scfochk(two, nullptr, 1), 3);
    EXPECT_EQ(jorm_scfochk(one, nullptr, 1), 2);
    EXPECT_EQ(jorm_scfochk(two, &nan, 1), 1);
}

} // namespace
