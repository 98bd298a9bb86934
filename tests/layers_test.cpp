// Every way into an operation gives what its entry gives: neighbourhoods, thresholds, conversions, comparisons.
#include "jorm/compare.h"
#include "jorm/convert.h"
#include "jorm/copy.h"
#include "jorm/filter.h"
#include "jorm/morphology.h"
#include "jorm/sepfilter.h"
#include "jorm/threshold.h"
#include "support/picture.hpp"

#include <functional>
#include <set>

namespace {

using Ways = std::vector<std::function<int64_t()>>;
const jorm_border mirror = {JORM_BORDER_REFLECT101, 0, {}};

#define ENTRY xe, 0, &dst.a, &src.a, &roi, &roi
#define STARTS xe, 0, JORM_WORD(3), size, type, dst.at(from), ds, src.at(from), ss
#define BASES xe, 0, JORM_WORD(3), size, type, dst.at({}), &from[1], ds, src.at({}), &from[1], ss
#define SLICE JORM_WORD(3), size, type, dst.at(from), ds, type, src.at(from), ss
#define TYPED_BASES JORM_WORD(3), size, type, dst.at({}), &from[1], ds, type, src.at({}), &from[1], ss
#define KERNEL xe, 0, 3, size, dst.at(from), ds, src.at(from), ss
#define WAY(call) [&] { return call; }
#define KEPT(call) [=, this] { return call; }

// A region inside a picture, where windows see true pixels, or all of the picture, where they leave it.
struct Layers : testing::TestWithParam<std::tuple<uint32_t, int, bool>> {
    Random r{31};
    Env xe;
    const uint32_t type = std::get<0>(GetParam());
    const int channels = std::get<1>(GetParam());
    const bool whole = std::get<2>(GetParam());
    const Index extent = {1, 30, 40, channels}, from = whole ? Index{} : Index{0, 5, 6, 0};
    const Index count = whole ? extent : Index{1, 20, 25, channels};
    const Picture src{r, type, extent}, dst{r, type, extent};
    const int32_t *const size = &count[1], *const ds = dst.a.stride + 1, *const ss = src.a.stride + 1;
    const jorm_site roi = {{0, from[1], from[2], 0}, {1, count[1], count[2], channels}};
    const jorm_site base_sites[2] = {{{}, {1, 30, 40, 1}}, {{}, {1, 30, 40, 1}}};
    const jorm_site own = {{0, -from[1], -from[2], 0}, {1, 30, 40, 1}}, sites[2] = {own, own};
    jorm_seshape shape;

    Layers() {
        __jorm_seshape__$g22(&shape, 1, 2, 3, 5);
        for (const Picture *p : {&src, &dst})
            each(extent, [&](const Index &i) { store(type, p->at(i), r.in(0, 250)); });
    }
    // All ways below give the bits of the entry; `bare` ones need true pixels around the region.
    void expect_same(const std::function<int64_t()> &entry, const Ways &bordered, const Ways &bare = {}) {
        const auto results = [&] {
            std::vector<double> all;
            each(extent, [&](const Index &i) { all.push_back(dst.get(i)); });
            return all;
        };
        ASSERT_EQ(entry(), JORM_OK);
        const std::vector<double> wanted = results();
        Ways ways = bordered;
        if (!whole) ways.insert(ways.end(), bare.begin(), bare.end());
        for (const auto &way : ways) {
            each(count, [&](const Index &i) { store(type, dst.at(sum(i, from)), 77); });
            EXPECT_EQ(way(), JORM_OK);
            EXPECT_EQ(results(), wanted) << "way " << &way - ways.data();
        }
    }
    // Ways below an entry whose operands each have a type: from starts, from bases, of a slice.
    template <class D, class A, class T, class P, class... Rest>
    Ways typed(D dispatcher, A adapter, T tga, const P &params, Rest... rest) {
        return {KEPT(dispatcher(xe, 0, SLICE, rest...)), KEPT(adapter(xe, 0, TYPED_BASES, rest...)),
                KEPT(tga(xe, 0, &params, SLICE))};
    }
    // The same for windows, where the picture is told, and where it is not; a handler, a kernel.
    template <class D, class A, class T, class P, class... Rest>
    Ways windowed(D dispatcher, A adapter, T tga, const P &params, Rest... rest) {
        return {KEPT(dispatcher(STARTS, rest..., nullptr, sites)),
                KEPT(adapter(BASES, rest..., &mirror, whole ? nullptr : base_sites)), KEPT(tga(xe, 0, &params, SLICE))};
    }
};
TEST_P(Layers, Rectangles) {
    const struct {
        uint32_t kind;
        jorm_filter_handler *handler;
        jorm_filter_proc *(*lookup)(uint32_t, uint32_t, int32_t *) = nullptr;
    } kinds[] = {{JORM_FILTER_MIN, jorma__filter_min, jorma__minfiltfun_imp},
                 {JORM_FILTER_MAX, jorma__filter_max, jorma__maxfiltfun_imp},
                 {JORM_FILTER_BOX, jorma__filter_box, jorma__boxfiltfun_imp},
                 {JORM_FILTER_CLOSE, jorma__filter_close},
                 {JORM_FILTER_OPEN, jorma__filter_open},
                 {JORM_FILTER_TOPHAT, jorma__filter_tophat},
                 {JORM_FILTER_BOTHAT, jorma__filter_bothat}};
    for (const auto &k : kinds) {
        const jorm_filtparams params = {k.kind, shape, mirror, {own, own}};
        jorm_filter_proc *const kernel = k.lookup ? k.lookup(uint32_t(channels), type, nullptr) : nullptr;
        if (channels == 1)
            expect_same(WAY(JormFilter(ENTRY, k.kind, &shape)),
                        windowed(jorma__efilter, jorma_efilter, JormTGAfilter, params, &shape, k.kind),
                        {WAY(jorma__filter(STARTS, k.kind, &shape)), WAY(jorma_filter(BASES, k.kind, &shape)),
                         WAY(k.handler(STARTS, &shape)),
                         WAY(kernel ? kernel(KERNEL, &shape) : k.handler(STARTS, &shape))});
        else
            expect_each(JORM_ENOTSUP,
                        {JormFilter(ENTRY, k.kind, &shape), JormTGAfilter(xe, 0, &params, SLICE),
                         k.handler(STARTS, &shape), kernel ? kernel(KERNEL, &shape) : int64_t(JORM_ENOTSUP)});
    }
    expect_each(JORM_EINVAL,
                {JormTGAfilter(xe, 0, nullptr, SLICE), jorma__filter(STARTS, 17, &shape),
                 jorma__minfiltfun_imp(1, type, nullptr)(xe, 0, 5, size, dst.at({}), ds, src.at({}), ss, &shape)});
}

TEST_P(Layers, Masks) {
    const struct {
        uint32_t op;
        jorm_morph_handler *handler;
        jorm_morph_proc *(*lookup)(uint32_t, uint32_t, int32_t *) = nullptr;
    } ops[] = {{JORM_MORPH_ERODE, jorma__morphop_erode, jorma__erodefun_imp},
               {JORM_MORPH_DILATE, jorma__morphop_dilate, jorma__dilatefun_imp},
               {JORM_MORPH_CLOSE, jorma__morphop_close},
               {JORM_MORPH_OPEN, jorma__morphop_open},
               {JORM_MORPH_TOPHAT, jorma__morphop_tophat},
               {JORM_MORPH_BOTHAT, jorma__morphop_bothat}};
    uint8_t cross[15] = {0, 0, 255, 0, 0, 255, 255, 255, 255, 255, 0, 0, 255, 0, 0};
    jorm_strel strel = {{0, 1, 2, 0}, {}};
    jorm_array_make(&strel.mask, JORM_U8, 3, 5, 1, 0, cross);
    for (const auto &o : ops) {
        const jorm_morphparams params = {o.op, &strel, mirror, {own, own}};
        jorm_morph_proc *const kernel = o.lookup ? o.lookup(uint32_t(channels), type, nullptr) : nullptr;
        expect_same(WAY(JormMorphop(ENTRY, o.op, &strel)),
                    windowed(jorma__emorphop, jorma_emorphop, JormTGAmorphop, params, &strel, o.op),
                    {WAY(jorma__morphop(STARTS, o.op, &strel)), WAY(jorma_morphop(BASES, o.op, &strel)),
                     WAY(o.handler(STARTS, &strel)), WAY(kernel ? kernel(KERNEL, &strel) : o.handler(STARTS, &strel))});
    }
    expect_same(WAY(JormFilter(ENTRY, JORM_FILTER_NUL, &shape)), {},
                {WAY(jorma__morphop(STARTS, JORM_MORPH_NUL, &strel))});
    strel.mask.eltype = JORM_S16;
    expect_each(JORM_EINVAL, {JormTGAmorphop(xe, 0, nullptr, SLICE), jorma__emorphop(STARTS, &strel, 2, nullptr, sites),
                              jorma__morphop(STARTS, 2, &strel)});
}

TEST_P(Layers, Weights) {
    const double w[5] = {1, 2, 3, 2, 0.5}, sigmas[2] = {1.3, 0.7};
    const jorm_sepkernel kernel = {shape, {w, w}};
    const jorm_sepparams params = {kernel, mirror, {own, own}};
    auto *const typed = jorma__sepfiltfun_imp(uint32_t(channels), type, nullptr);
    expect_same(
        WAY(JormSepFilter(ENTRY, &kernel)),
        windowed(jorma__esepfilter, jorma_esepfilter, JormTGAsepfilter, params, &kernel),
        {WAY(jorma__sepfilter(STARTS, &kernel)), WAY(jorma_sepfilter(BASES, &kernel)), WAY(typed(KERNEL, &kernel))});
    const jorm_gaussparams smooth = {shape, sigmas, mirror, {own, own}};
    expect_same(
        WAY(JormGaussianFilter(ENTRY, &shape, sigmas)),
        windowed(jorma__efilter_gaussian, jorma_egaussianfilter, JormTGAgaussianfilter, smooth, &shape, sigmas),
        {WAY(jorma__filter_gaussian(STARTS, &shape, sigmas)), WAY(jorma_gaussianfilter(BASES, &shape, sigmas))});
    const double lower[3] = {40, 50, 60}, upper[3] = {30, 60, 90};
    expect_same(WAY(JormFireflyEx(ENTRY, &shape, sigmas, lower, upper)), {},
                {WAY(jorma__firefly_gauss(STARTS, &shape, sigmas, lower, upper, 1))});
    expect_each(JORM_EINVAL, {JormTGAsepfilter(xe, 0, nullptr, SLICE), JormTGAgaussianfilter(xe, 0, nullptr, SLICE),
                              jorma__esepfilter(STARTS, nullptr, nullptr, sites), jorma__sepfilter(STARTS, nullptr),
                              typed(xe, 0, 5, size, dst.at({}), ds, src.at({}), ss, &kernel)});
}

TEST_P(Layers, Thresholds) {
    const double pairs[6] = {60, 180, 40, 200, 50, 150}, local[6] = {10, nan, -5, nan, 0, nan};
    const auto entry = [&](const jorm_array &from, const jorm_thhmethod *method, const double *thresholds, int count) {
        return JormThreshold(xe, 0, &dst.a, &from, &roi, roi.origin, method, thresholds, count);
    };
    const std::pair<uint32_t, jorm_ethreshold_dispatcher *> methods[] = {{JORM_THRESHOLD_IMMEDIATE, jorma__ethreshold},
                                                                         {JORM_THRESHOLD_OTSU, jorma__ethreshold_otsu},
                                                                         {JORM_THRESHOLD_USTO, jorma__ethreshold_usto},
                                                                         {JORM_THRESHOLD_BLUR, jorma__ethreshold_blur}};
    for (const auto &m : methods) {
        const uint32_t code = m.first;
        const jorm_thhmethod method = {code, 0, {}, {}};
        const jorm_thresholdparams params = {&method, pairs, 2};
        if (code >= JORM_THRESHOLD_USTO && (type == JORM_S16 || type == JORM_S32)) {
            expect_each(JORM_ENOTSUP, {entry(src.a, &method, pairs, 2), JormTGAthreshold(xe, 0, &params, SLICE)});
            continue;
        }
        Ways ways = typed(jorma__ethreshold, jorma_ethreshold, JormTGAthreshold, params, &method, pairs, 2);
        ways.push_back(WAY(m.second(xe, 0, SLICE, &method, pairs, 2)));
        expect_same(WAY(entry(src.a, &method, pairs, 2)), ways);
    }
    jorm_threshold_dispatcher *const kernels[2][2] = {{jorma__sheer_threshold_n1, jorma__sheer_threshold_n2},
                                                      {jorma__adaptive_threshold_n1, jorma__adaptive_threshold_n2}};
    for (const int count : {1, 2})
        for (const bool adaptive : {false, true}) {
            const double *const given = adaptive ? local : pairs;
            const jorm_thresholdparams params = {nullptr, given, count};
            Ways ways = typed(jorma__threshold, jorma_threshold, JormTGAthreshold, params, given, count);
            ways.push_back(WAY(kernels[adaptive][count - 1](xe, 0, SLICE, given, count)));
            expect_same(WAY(entry(src.a, nullptr, given, count)), ways);
        }
    expect_each(JORM_EINVAL,
                {JormTGAthreshold(xe, 0, nullptr, SLICE), jorma__adaptive_threshold_n1(xe, 0, SLICE, nullptr, 1)});
}

TEST_P(Layers, Conversions) {
    const double scales[3] = {0.25, 0.5, 2}, offsets[3] = {10, 20, -3};
    const vrng known[3] = {{-50, 200}, {0, 300}, {0, 100}};
    vrng to[3] = {{0, 100}, {0, 100}, {5, 6}};
    const jorm_convert_params by_scales = {known, scales, offsets};
    const jorm_vconvert_params by_ranges = {to, known};
    const jorm_gain_params by_gains = {scales, offsets};
    Ways ways = typed(jorma__econvert, jorma_econvert, JormTGAconvert, by_scales, scales, offsets, known);
    ways.push_back(WAY(jorma_escale(xe, 0, TYPED_BASES, scales, offsets, known)));
    expect_same(WAY(JormConvert(xe, 0, &dst.a, &src.a, &roi, roi.origin, scales, offsets, known)), ways);
    ways = typed(jorma__vconvert, jorma_vconvert, JormTGAvconvert, by_ranges, to, known);
    ways.push_back(WAY(jorma_vscale(xe, 0, TYPED_BASES, to, known)));
    expect_same(WAY(JormVConvert(xe, 0, &dst.a, &src.a, &roi, roi.origin, to, known)), ways);
    expect_same(WAY(JormGain(xe, 0, &dst.a, &src.a, scales, offsets, &roi, roi.origin)),
                typed(jorma__gain, jorma_gain, JormTGAgain, by_gains, scales, offsets));
    expect_each(JORM_EINVAL, {JormTGAconvert(xe, 0, nullptr, SLICE), JormTGAvconvert(xe, 0, nullptr, SLICE),
                              JormTGAgain(xe, 0, nullptr, SLICE)});
}

TEST_P(Layers, Comparisons) {
    const double k[3] = {100, 50, 150}, yes[3] = {7, 8, 9}, no[3] = {1, 2, 3};
    const Picture other{r, type, extent};
    each(extent, [&](const Index &i) { store(type, other.at(i), r.in(0, 250)); });
    const jorm_array &b = other.a;
    const int32_t *const at = roi.origin, *const bs = b.stride + 1;
    const uint32_t op = JORM_CMP_LESS_EQUAL;
    const jorm_compare_params plain = {op};
    const jorm_comparec_params constant = {k, op};
    const jorm_ecompare_params chosen = {yes, no, op};
    const jorm_ecomparec_params chosen_constant = {k, yes, no, op};
#define STARTS2 xe, 0, SLICE, type, other.at(from), bs
#define BASES2 xe, 0, TYPED_BASES, type, other.at({}), &from[1], bs
    expect_same(WAY(JormCompare(xe, 0, &dst.a, &src.a, &b, &roi, at, at, op)),
                {WAY(jorma__compare(STARTS2, op)), WAY(jorma_compare(BASES2, op)),
                 WAY(JormTGAcompare(xe, 0, &plain, SLICE, type, other.at(from), bs))},
                {});
    expect_same(WAY(JormECompare(xe, 0, &dst.a, &src.a, &b, &roi, at, at, op, yes, no)),
                {WAY(jorma__ecompare(STARTS2, op, yes, no)), WAY(jorma_ecompare(BASES2, op, yes, no)),
                 WAY(JormTGAecompare(xe, 0, &chosen, SLICE, type, other.at(from), bs))},
                {});
    expect_same(WAY(JormCompareC(xe, 0, &dst.a, &src.a, k, &roi, at, op)),
                typed(jorma__compareC, jorma_compareC, JormTGAcompareC, constant, k, op));
    expect_same(WAY(JormECompareC(xe, 0, &dst.a, &src.a, k, &roi, at, op, yes, no)),
                typed(jorma__ecompareC, jorma_ecompareC, JormTGAecompareC, chosen_constant, k, op, yes, no));
}

// Without a border a window may only read what is there; an unknown border is refused.
TEST_P(Layers, Borders) {
    const jorm_border none = {JORM_BORDER_NUL, 0, {}}, unknown = {1, 0, {}};
    const jorm_site nothing[2] = {{{}, {1, 0, 40, 1}}, {{}, {1, 0, 40, 1}}};
    const jorm_sepkernel kernel = {shape, {}};
    const auto smooth = [&](const jorm_border *border, const jorm_site *at) {
        return jorma__efilter_gaussian(STARTS, &shape, nullptr, border, at);
    };
    expect_each(whole ? JORM_EINVAL : JORM_OK, {smooth(&none, sites)});
    expect_each(JORM_EINVAL, {smooth(&unknown, sites), smooth(&none, nullptr), jorma__sepfilter(STARTS, &kernel)});
    expect_each(JORM_EEMPTY, {smooth(nullptr, nothing)});
}

// Around a picture lies what a copy with that border puts there, also where windows are larger than the picture; rows
// short enough to go together, and long ones.
TEST_P(Layers, BordersAreThoseOfCopies) {
    const jorm_seshape large = {{0, 4, 5, 0}, {1, 9, 11, 1}};
    const int32_t outside[4] = {0, -4, -5, 0};
    jorm_strel strel = {{0, 4, 5, 0}, {}};
    Bytes mask(9 * 11);
    for (uint8_t &m : mask) m = r.one_in(3) ? 255 : 0;
    ASSERT_EQ(jorm_array_make(&strel.mask, JORM_U8, 9, 11, 1, 0, mask.data()), JORM_OK);
    for (const int pixels : {4, 200}) {
        const jorm_site all[2] = {{{}, {1, 3, pixels, 1}}, {{}, {1, 3, pixels, 1}}};
        const int32_t n[] = {3, pixels, channels};
        const Index size = {1, 3, pixels, channels};
        const Picture bare{r, type, size}, got{r, type, size}, wanted{r, type, size},
            padded{r, type, {1, 11, pixels + 10, channels}};
        each(size, [&](const Index &i) { store(type, bare.at(i), r.in(0, 250)); });
#define BORDERED xe, 0, JORM_WORD(3), n, type, got.at({}), got.a.stride + 1, bare.at({}), bare.a.stride + 1
#define PADDED                                                                                                         \
    xe, 0, JORM_WORD(3), n, type, wanted.at({}), wanted.a.stride + 1, padded.at({0, 4, 5, 0}), padded.a.stride + 1
        for (const uint32_t mode : {JORM_BORDER_CONST, JORM_BORDER_REPLICATE, JORM_BORDER_WRAP, JORM_BORDER_REFLECT,
                                    JORM_BORDER_REFLECT101}) {
            const jorm_border border = {mode, 0, {9, 200, 77, 0}};
            ASSERT_EQ(JormCopyMkb(xe, 0, &padded.a, &bare.a, nullptr, outside, &border), JORM_OK);
            const auto expect = [&](int64_t status, int64_t status_padded) {
                EXPECT_TRUE(status == JORM_OK && status_padded == JORM_OK);
                each(size, [&](const Index &i) { ASSERT_EQ(got.get(i), wanted.get(i)) << "mode " << mode; });
            };
            expect(jorma__efilter_gaussian(BORDERED, &large, nullptr, &border, all),
                   jorma__filter_gaussian(PADDED, &large, nullptr));
            expect(jorma__emorphop(BORDERED, &strel, JORM_MORPH_DILATE, &border, all),
                   jorma__morphop(PADDED, JORM_MORPH_DILATE, &strel));
            for (const uint32_t kind : {JORM_FILTER_MIN, JORM_FILTER_BOX})
                if (channels == 1)
                    expect(jorma__efilter(BORDERED, &large, kind, &border, all), jorma__filter(PADDED, kind, &large));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, Layers,
                         testing::Combine(testing::Values(JORM_U8, JORM_S16, JORM_S32, JORM_F32), testing::Values(1, 3),
                                          testing::Bool()));

TEST(Names, OfEveryEnumeration) {
    const struct {
        const char *(*name)(uint32_t);
        uint32_t codes; // low bits that count
        size_t distinct;
        uint32_t code;
        std::string known, unknown;
    } enumerations[] = {{jorm_filter_str, 256, 11, JORM_FILTER_BOTHAT, "bothat-filter", "unknown-filter"},
                        {jorm_morphop_str, 16, 9, JORM_MORPH_OPEN, "morph-open", "unknown-morhop"},
                        {jorm_thhmethod_str, 16, 5, 5, "blur-threshold-method", "unknown-threshold-method"},
                        {jorm_border_str, 16, 7, JORM_BORDER_REFLECT101, "reflect101-border", "unknown-border"},
                        {jorm_cmpop_str, 16, 7, 5, "less-or-equal-cmpop", "unknown-cmpop"}};
    for (const auto &e : enumerations) {
        std::set<std::string> names;
        for (uint32_t code = 0; code < e.codes; ++code) names.insert(e.name(code + e.codes));
        EXPECT_TRUE(names.size() == e.distinct && names.count(e.unknown)) << e.unknown;
        EXPECT_EQ(e.name(e.code), e.known);
    }
}

} // namespace
