// Comparison against an oracle in double precision.
#include "jorm.h"
#include "support/picture.hpp"

namespace {

const uint32_t sources[] = {JORM_U8, JORM_S8, JORM_S16, JORM_S32, JORM_F32};
const uint32_t destinations[] = {JORM_U8, JORM_S8, JORM_U16, JORM_S16, JORM_U32, JORM_S32, JORM_F32};

bool related(double a, uint32_t op, double b) {
    const bool relation[16] = {false, false, false, a == b, a<b, a <= b, a> b, a >= b};
    return relation[op & 15];
}

// The bits of what is written, as a value that load() gives.
double mask_value(uint32_t type, bool held) {
    if (!held) return 0;
    return type == JORM_F32 ? 1 : type < 8 ? highest(type) : -1;
}

// What a fill value becomes; u32 has a rule of its own.
double written(uint32_t type, double v) {
    return type == JORM_U32 ? std::max(0.0, converted(JORM_S32, v)) : converted(type, v);
}

struct Compare : testing::Test {
    Env xe;
    Random r{11};

    Picture picture(uint32_t type, const Index &extent, int ndims = 3, bool plain = false) {
        Picture p(r, type, extent, plain, ndims);
        paint(p, r);
        return p;
    }
    Index near(const Index &e) { // extents and start points that mostly do not matter
        return {e[0], std::max(1, e[1] + r.in(-1, 1)), std::max(1, e[2] + r.in(-2, 2)), e[3]};
    }
    Index start(bool planes) { return {planes ? r.in(-1, 1) : 0, r.in(-1, 1), r.in(-2, 2), r.in(-1, 1)}; }
};

// One call of an entry with random operands; everything in the destination's memory is compared.
struct Call {
    Compare &t;
    Random &r = t.r;
    bool constants = r.one_in(2), chosen = r.one_in(2);
    uint32_t op = uint32_t(r.one_in(8) ? r.in(0, 15) : r.in(3, 7) + 16 * r.in(0, 1));
    double constant[4] = {}, yes[4] = {}, no[4] = {};
    uint32_t dst_type = r.of(destinations);
    uint32_t type = dst_type == JORM_F32 ? uint32_t(JORM_F32) : r.of(sources);
    uint32_t type2 = dst_type != JORM_F32 && r.one_in(3) ? r.of(sources) : type;
    int ndims = r.one_in(3) ? 4 : 3;
    Index extent = {ndims == 4 ? r.in(1, 3) : 1, r.in(1, 4), r.one_in(4) ? r.in(300, 1500) : r.in(1, 40),
                    r.in(1, constants ? 3 : 4)};
    int ndims2 = ndims == 4 && r.one_in(3) ? 3 : ndims;
    bool repeats = ndims2 < ndims || r.one_in(3), in_place = type == dst_type && r.one_in(4), plain = r.one_in(4);

    void run() {
        Picture dst = t.picture(dst_type, extent, ndims, plain), src = t.picture(type, extent2(extent), ndims, plain);
        Index e2 = extent2(extent);
        if (repeats) e2[0] = 1;
        Picture src2 = t.picture(type2, e2, ndims2, plain);
        const bool same_constants = r.one_in(2), same_values = r.one_in(2);
        for (int i = 0; i < 4; ++i) {
            constant[i] = i && same_constants ? constant[0] : r.of(std::array<double, 5>{0, 1, 2.5, -3, 127});
            yes[i] = i && same_values ? yes[0] : r.of(std::array<double, 5>{255, 7.5, -1, 1e9, 3});
            no[i] = i && same_values ? no[0] : r.of(std::array<double, 4>{0, 9, nan, -40000});
        }

        jorm_array second = src2.a; // as the oracle sees it: in every plane
        if (ndims == 4 && repeats) {
            second.ndims = 4;
            second.extent[0] = dst.a.extent[0];
            second.stride[0] = 0;
        }
        jorm_site roi = {{0, r.in(-1, 1), r.in(-1, 2), 0}, {extent[0], extent[1], r.in(1, extent[2]), extent[3]}};
        Index from = t.start(ndims == 4), from2 = t.start(false);
        const jorm_site *const site = r.one_in(2) ? &roi : nullptr;
        const int32_t *at = r.one_in(2) ? from.data() : nullptr, *at2 = r.one_in(2) ? from2.data() : nullptr;
        const jorm_array &a = in_place ? dst.a : src.a;
        const int32_t *const at_or_roi = at || !in_place || !site ? at : site->origin;
        Region region = constants ? common_region({&dst.a, &a}, site, {at_or_roi})
                                  : common_region({&dst.a, &a, &second}, site, {at_or_roi, at2});
        if (in_place && !region.empty && region.origin[0] != region.origin[1]) return; // an unspecified overlap

        const Bytes before = dst.memory;
        Bytes wanted = before;
        if (!region.empty) expect(wanted, dst, a, second, region);
        const int64_t status = call(dst.a, in_place ? nullptr : &src.a, src2.a, site, at, at2);
        ASSERT_EQ(status, region.empty ? JORM_EEMPTY : JORM_OK);
        ASSERT_TRUE(dst.memory == wanted)
            << dst_type << " <- " << type << ", " << type2 << ", op " << op << (constants ? ", constants" : "")
            << (chosen ? ", chosen" : "") << (in_place ? ", in place" : "") << ", " << extent[3] << " channels of "
            << extent[2] << " pixels, " << ndims << " axes";
    }

    Index extent2(const Index &e) { return plain ? e : t.near(e); }

    void expect(Bytes &wanted, const Picture &dst, const jorm_array &a, const jorm_array &second, const Region &g) {
        each(g.size, [&](const Index &i) {
            const size_t k = size_t(i[3]);
            const double x = load(type, element(a, sum(g.origin[1], i)));
            const double y =
                constants ? converted(type, constant[k]) : load(type2, element(second, sum(g.origin[2], i)));
            const bool held = related(x, op, y);
            const double value = chosen ? written(dst_type, held ? yes[k] : no[k]) : mask_value(dst_type, held);
            store(dst_type, &wanted[size_t(dst.at(sum(g.origin[0], i)) - dst.memory.data())], value);
        });
    }

    int64_t call(const jorm_array &d, const jorm_array *s, const jorm_array &s2, const jorm_site *roi,
                 const int32_t *at, const int32_t *at2) {
        if (chosen)
            return constants ? JormECompareC(t.xe, 0, &d, s, constant, roi, at, op, yes, no)
                             : JormECompare(t.xe, 0, &d, s, &s2, roi, at, at2, op, yes, no);
        return constants ? JormCompareC(t.xe, 0, &d, s, constant, roi, at, op)
                         : JormCompare(t.xe, 0, &d, s, &s2, roi, at, at2, op);
    }
};

TEST_F(Compare, EveryFormInEveryLayout) {
    for (int round = 0; round < 6000 && !HasFatalFailure(); ++round) {
        use_level(round % jorm::level_count);
        SCOPED_TRACE(round);
        Call{*this}.run();
    }
}

// Every kernel, through its lookup, on rows of odd lengths and on its own source where that is as wide.
TEST_F(Compare, Kernels) {
    constexpr int n = 997, channels = 4;
    for (uint32_t d : {JORM_U8, JORM_U16, JORM_S32, JORM_F32})
        for (uint32_t s : sources)
            for (uint32_t op = 3; op < 8; ++op)
                for (int form = 0; form < 4; ++form) {
                    const bool constants = form % 2, chosen = form >= 2;
                    const auto lookup = chosen      ? constants ? jorma__ecmpcfun_imp : jorma__ecmpfun_imp
                                        : constants ? jorma__cmpcfun_imp
                                                    : jorma__cmpfun_imp;
                    int32_t status = 1;
                    jorm_proc *const found = lookup(d, s, &status);
                    const bool exists = d == JORM_F32 ? chosen && s == JORM_F32 : true;
                    ASSERT_EQ(status, exists ? JORM_OK : JORM_ENOTSUP);
                    if (!exists) continue;
                    use_level(int(op) % jorm::level_count);
                    const int db = bytes_of(d), sb = bytes_of(s);
                    Bytes a(size_t(n * sb)), b(a), out(size_t(n * std::max(db, sb)));
                    for (int i = 0; i < n; ++i)
                        for (Bytes *bytes : {&a, &b}) draw_element(r, s, &(*bytes)[size_t(i * sb)], i % 3);
                    const bool in_place = sb >= db && op % 2;
                    if (in_place) std::copy(a.begin(), a.end(), out.begin());
                    const double k[] = {1, 0, -2, 127}, values[] = {200, 1, 3, 4}, others[] = {0, 9, 7, 5};
                    alignas(16) char pattern[16], yes[16], no[16];
                    jorm_mkifillvalv16(s, pattern, k, channels);
                    jorm_mkifillvalv16(d, yes, values, channels);
                    jorm_mkifillvalv16(d, no, others, channels);
                    const int32_t size[] = {n / channels, channels}, ds[] = {db * channels, db},
                                  ss[] = {sb * channels, sb};
                    const void *const src = in_place ? out.data() : a.data();
                    const auto call = [&](auto *kernel, auto... rest) {
                        return int32_t(kernel(xe, 0, 2, size, out.data(), ds, src, ss, rest...));
                    };
                    if (form == 0) status = call(kernel_as<jorm_compare_kernel>(found), b.data(), ss, op);
                    if (form == 1) status = call(kernel_as<jorm_comparec_kernel>(found), pattern, op);
                    if (form == 2) status = call(kernel_as<jorm_ecompare_kernel>(found), b.data(), ss, op, yes, no);
                    if (form == 3) status = call(kernel_as<jorm_ecomparec_kernel>(found), pattern, op, yes, no);
                    ASSERT_EQ(status, JORM_OK);
                    for (int i = 0; i < n / channels * channels; ++i) {
                        const double x = load(s, &a[size_t(i * sb)]),
                                     y = constants ? converted(s, k[i % channels]) : load(s, &b[size_t(i * sb)]);
                        const bool held = related(x, op, y);
                        Bytes wish(size_t(db), 0);
                        const double value = held ? values[i % channels] : others[i % channels];
                        store(d, wish.data(), chosen ? converted(d, value) : mask_value(d, held));
                        ASSERT_EQ(std::memcmp(wish.data(), &out[size_t(i * db)], size_t(db)), 0)
                            << d << " <- " << s << ", form " << form << ", op " << op << ", " << x << " and " << y;
                    }
                }
    const auto is = [](jorm_proc *found, auto *kernel) {
        return found == reinterpret_cast<jorm_proc *>(reinterpret_cast<void (*)()>(kernel));
    };
    EXPECT_TRUE(is(jorma__cmpfun_imp(JORM_S8, JORM_F32, nullptr), _jorma__compare_u8f32));
    EXPECT_TRUE(is(jorma__cmpcfun_imp(JORM_U16, JORM_S8, nullptr), _jorma__compareC_s16s8));
    EXPECT_TRUE(is(jorma__ecmpfun_imp(JORM_S32, JORM_S16, nullptr), _jorma__ecompare_s32s16));
    EXPECT_TRUE(is(jorma__ecmpcfun_imp(JORM_F32, JORM_F32, nullptr), _jorma__ecompareC_f32f32));
}

TEST_F(Compare, BelowTheEntries) {
    uint8_t a[6] = {}, m[6];
    const int32_t size[] = {1, 4, 1}, stride[] = {6, 1, 1}, fs[] = {16, 4, 4};
    const uint32_t w = JORM_WORD(3), u8 = JORM_U8, f32 = JORM_F32;
    const double three[] = {3}, yes[] = {1}, no[] = {2};
    // The plain dispatchers choose 1 and 0 for f32, the plain runners do not know it.
    const float f[] = {1, nan, 3, 4};
    float out[4];
    EXPECT_EQ(jorma__compareC(xe, 0, w, size, f32, out, fs, f32, f, fs, three, JORM_CMP_GREATER_EQUAL), JORM_OK);
    EXPECT_TRUE(out[0] == 0 && out[1] == 0 && out[2] == 1 && out[3] == 1);
    expect_each(JORM_ENOTSUP,
                {_jorma__swcompareC(xe, 0, w, size, f32, out, fs, f32, f, fs, three, 3),
                 _jorma__swcompare(xe, 0, w, size, f32, out, fs, f32, f, fs, f32, f, fs, 3),
                 jorma__compareC(xe, 0, w, size, f32, out, fs, u8, a, stride, three, 3),
                 _jorma__swecompare(xe, 0, w, size, u8, m, stride, u8, a, stride, JORM_U16, a, stride, 3, yes, no)});
    expect_each(JORM_EINVAL, {_jorma__swecompareC(xe, 0, w, size, 5, out, fs, f32, f, fs, three, 3, yes, no),
                              jorma__ecompareC(xe, 0, w, size, u8, nullptr, fs, f32, f, fs, three, 3, yes, no),
                              JormTGAcompare(xe, 0, nullptr, w, size, u8, m, stride, u8, a, stride, u8, a, stride),
                              _jorma__ecompareC_u8u8(xe, 0, w, size, m, stride, a, stride, a, 3, nullptr, a)});
}

TEST_F(Compare, UnlikePlanesAndChannels) {
    const Picture flat = picture(JORM_U8, {1, 3, 5, 1}), four = picture(JORM_U8, {1, 3, 5, 4});
    const Picture planes = picture(JORM_U8, {3, 3, 5, 1}, 4), two = picture(JORM_U8, {2, 3, 5, 1}, 4),
                  one = picture(JORM_U8, {1, 3, 5, 1}, 4);
    const Bytes before = planes.memory;
    const int32_t plane1[4] = {1, 0, 0, 0};
    const double k[4] = {};
    const auto compare = [&](const Picture &d, const Picture &s, const jorm_array &s2, const int32_t *at2 = nullptr) {
        return JormCompare(xe, 0, &d.a, &s.a, &s2, nullptr, nullptr, at2, JORM_CMP_LESS);
    };
    expect_each(JORM_EINVAL, {compare(planes, flat, planes.a), compare(planes, one, planes.a),
                              compare(planes, planes, two.a), compare(flat, flat, one.a),
                              JormCompareC(xe, 0, &four.a, &four.a, k, nullptr, nullptr, 3), // of three at most
                              JormCompareC(xe, 0, &planes.a, &one.a, k, nullptr, nullptr, 3)});
    EXPECT_EQ(compare(planes, planes, one.a, plane1), JORM_EEMPTY);
    jorm_array untyped = planes.a;
    untyped.eltype = 15;
    EXPECT_EQ(compare(planes, planes, untyped), JORM_ENOTSUP); // by pieces
    EXPECT_EQ(planes.memory, before);
}

} // namespace
