// Morphology with masks of any shape.
#include "jorm/morphology.h"
#include "support/extremum_case.hpp"

namespace {

using Morphology = WindowTest;

// A mask of the case's window, in any layout: random, an ellipse or a part of one, empty, solid, columns that have all
// rows of others.
struct Mask {
    Picture picture;
    jorm_strel strel;

    Mask(Random &r, const WindowCase &c)
        : picture(r, JORM_U8, {c.shape.extent[0], c.shape.extent[1], c.shape.extent[2], 1}, false, c.src.ndims) {
        const int kind = r.in(0, 9);
        const double cut = r.one_in(2) ? -1 : (r.in(0, 8) - 4) / 8.0;
        each(extent_of(picture.a), [&](const Index &q) {
            const double y = (q[1] + 0.5) / c.shape.extent[1] - 0.5, x = (q[2] + 0.5) / c.shape.extent[2] - 0.5;
            const bool nested = (q[0] * 3 + q[1] * 5) % 7 <= q[2] * 4 % 7;
            const bool in = kind == 0   ? false
                            : kind == 1 ? true
                            : kind < 5  ? y * y + x * x <= 0.25 && y > cut
                            : kind < 7  ? nested
                                        : r.one_in(2);
            *picture.at(q) = in ? 255 : uint8_t(r.in(0, 254));
        });
        std::copy(c.shape.anchor, c.shape.anchor + 4, strel.anchor);
        strel.mask = picture.a;
    }
};

TEST_F(Morphology, EveryOperationUnderEveryMask) {
    struct {
        uint32_t op;
        double (*wanted)(const ExtremumOracle &, const Index &);
    } const ops[] = {{JORM_MORPH_ERODE, [](const ExtremumOracle &o, const Index &p) { return o.once(p, false); }},
                     {JORM_MORPH_DILATE, [](const ExtremumOracle &o, const Index &p) { return o.once(p, true); }},
                     {JORM_MORPH_CLOSE, [](const ExtremumOracle &o, const Index &p) { return o.twice(p, true); }},
                     {JORM_MORPH_OPEN, [](const ExtremumOracle &o, const Index &p) { return o.twice(p, false); }},
                     {JORM_MORPH_BOTHAT, [](const ExtremumOracle &o, const Index &p) { return o.hat(p, true); }},
                     {JORM_MORPH_TOPHAT, [](const ExtremumOracle &o, const Index &p) { return o.hat(p, false); }}};
    for (int i = 0; i < 2500 && !HasFailure(); ++i) {
        const uint32_t type = r.of(types);
        const int channels = r.of(std::array{1, 1, 3, 4});
        WindowCase c(r, type, channels, r.one_in(4) ? 17 : 6);
        if (c.roi) c.roi->size[3] = channels;
        if (r.one_in(3)) { // as high as windows are that go by two rows
            c.shape.extent[1] = r.in(12, 17);
            c.shape.anchor[1] = r.in(0, c.shape.extent[1] - 1);
        }
        const Mask mask(r, c);
        const auto &op = ops[size_t(r.in(0, c.region.size[1] * c.region.size[2] > 200 ? 1 : 5))];
        const auto call = [&] { return c.call(JormMorphop, xe, op.op, &mask.strel); };
        const bool once = op.op <= JORM_MORPH_DILATE;
        if (type == JORM_F32)
            c.picture.fill([&] { return once && i % 3 == 0 && r.one_in(90) ? nan : float(r.in(-9999, 9999)) / 8; });
        const bool handed_over = op.op >= JORM_MORPH_CLOSE && jorm_strel_issolid_$v255(&mask.strel);
        if (handed_over && channels > 1 && !c.region.empty) {
            EXPECT_EQ(call(), JORM_ENOTSUP);
            continue;
        }
        const ExtremumOracle oracle = {c, [&](const Index &q) { return *mask.picture.at(q) == 255; }};
        c.check(call, [&](const Index &p) { return op.wanted(oracle, p); });
    }
}

TEST_F(Morphology, WhatIsRefusedAndWhatIsCopied) {
    const Picture src(r, JORM_U8, {1, 3, 4, 3}), dst(r, JORM_U8, {1, 3, 4, 3});
    const Picture grey(r, JORM_U8, {1, 3, 4, 1}), out(r, JORM_U8, {1, 3, 4, 1}), filtered(r, JORM_U8, {1, 3, 4, 1});
    uint8_t ones[9];
    std::fill(std::begin(ones), std::end(ones), uint8_t(255));
    jorm_strel solid = {{0, 1, 1, 0}, {}}, single = {}, outside, none = {{0, 1, 1, 0}, {}};
    jorm_array_make(&solid.mask, JORM_U8, 3, 3, 1, 0, ones);
    jorm_array_make(&single.mask, JORM_U8, 1, 1, 1, 0, ones);
    outside = none = solid;
    outside.anchor[1] = outside.anchor[2] = -1;
    none.mask.base = nullptr;
    const Bytes before = dst.memory, grey_before = out.memory;
    const auto morph = [&](const Picture &d, const Picture &s, uint32_t op, const jorm_strel *strel) {
        return JormMorphop(xe, 0, &d.a, &s.a, nullptr, nullptr, op, strel);
    };
    expect_each(JORM_EINVAL, {morph(out, grey, JORM_MORPH_ERODE, &outside), morph(dst, src, 1, &solid),
                              morph(dst, src, 10, &solid), morph(out, grey, 2, nullptr)});
    expect_each(JORM_ENOTSUP, {morph(dst, src, JORM_MORPH_ERODE, nullptr), morph(dst, src, JORM_MORPH_CLOSE, &solid)});
    expect_each(JORM_ENOTIMP, {morph(dst, src, JORM_MORPH_GRADIENT, &solid), morph(out, grey, 9, &none)});
    EXPECT_TRUE(dst.memory == before && out.memory == grey_before);
    for (const uint32_t op : {0u, 2u, 3u, 9u, 15u}) EXPECT_EQ(morph(dst, src, op, &single), JORM_OK);
    each({1, 3, 4, 3}, [&](const Index &i) { EXPECT_EQ(dst.get(i), src.get(i)); });
    // Without a mask an element is a rectangle.
    jorm_seshape window;
    __jorm_seshape__$g2(&window, 3, 3);
    EXPECT_EQ(morph(out, grey, JORM_MORPH_CLOSE, &none), JORM_OK);
    JormFilter(xe, 0, &filtered.a, &grey.a, nullptr, nullptr, JORM_FILTER_CLOSE, &window);
    each({1, 3, 4, 1}, [&](const Index &i) { EXPECT_EQ(out.get(i), filtered.get(i)); });
}

} // namespace
