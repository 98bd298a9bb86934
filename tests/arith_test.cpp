// Every element-wise entry, adapter and dispatcher, over all types, layouts, regions and levels, against exact
// arithmetic in 128 bits and double precision.
#include "arith/fronts.hpp"
#include "support/arith_case.hpp"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool limits_heap = false; // the sanitizer has an allocator of its own
#else
constexpr bool limits_heap = true;
#endif
static size_t heap_limit = SIZE_MAX; // larger requests fail
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" void *__libc_malloc(size_t);
extern "C" void *malloc(size_t bytes) { return bytes > heap_limit ? nullptr : __libc_malloc(bytes); }
#endif

namespace {

double some_constant(unsigned flavour, bool far, Random &rng) {
    static const double near[] = {0,   1,    2,   -1,    3,      -7,    100,        255,
                                  256, -300, 300, 32767, -40000, 65537, 0x1p31 - 1, -0x1p31};
    static const double wide[] = {4294967295.0, -5e9, 1e10, -1e15, 9007199254740994.0, 1e300};
    static const double others[] = {0.5,       -0.5,       1.5,      2.75,      -1.25, 1 / 3., 1e-3,  1e9 + 0.5,
                                    3e9 + 0.5, -5e9 - 0.5, INFINITY, -INFINITY, NAN,   -0.0,   1e-310};
    if (flavour == 0) return int(rng() % 9) - 4;
    if (flavour == 1 || rng() % 2) return far && rng() % 4 == 0 ? wide[rng() % 6] : near[rng() % 16];
    return others[rng() % 15];
}

int some_shift(const Op &op, Random &rng) {
    static const int shifts[] = {0, 0, 0, 0, 1, 3, -1, -2, -8, 20, -40, 100, -100, INT32_MAX, INT32_MIN};
    return op.logic() ? 0 : shifts[rng() % (op.constants == 0 && !op.division() && !op.smooth() ? 15 : 11)];
}

// One random call of the operation for these types.
Result random_case(const Op &op, const std::string &types, Random &rng, int h, int w) {
    Case c{&op};
    const int channels = int(1 + rng() % 4);
    const bool regions = rng() % 3 == 0;
    std::vector<Picture> pictures;
    pictures.reserve(4);
    for (int k = 0; k <= op.sources; ++k) {
        const int dh = regions ? int(rng() % 3) : 0, dw = regions ? int(rng() % 4) : 0;
        const int layout = rng() % 3 ? int(rng() % (k ? layouts : repeated)) : dense;
        c.x[k] = &pictures.emplace_back(types[size_t(k)], h + dh, w + dw, channels, layout, rng);
        c.x[k]->paint(rng);
    }
    c.p = some_shift(op, rng);
    c.q = int32_t(rng());
    for (auto &constants : c.c)
        for (const unsigned flavour = rng() % 3; double &v : constants) v = some_constant(flavour, !op.division(), rng);
    const auto small = [&] { return int32_t(rng() % 4) - 1; };
    const jorm_site roi = {{0, small(), small(), 0}, {1, int32_t(rng() % 9) + 1, w - 1 + int32_t(rng() % 4), channels}};
    int32_t at[4][4] = {};
    if (regions && rng() % 4) c.roi = &roi;
    for (int k = 1; k <= op.sources; ++k)
        if (regions && rng() % 2) at[k][1] = small(), at[k][2] = small(), c.at[k] = at[k];
    const unsigned alias = rng() % 6;
    for (int k = 1; k <= op.sources; ++k) // in place, once or several times
        if (types[size_t(k)] == types[0] && (alias == 0 || (alias == 1 && k == 1) || (alias == 2 && k == op.sources))) {
            c.x[k] = k == 1 && rng() % 2 ? nullptr : c.x[0];
            for (int s : {1, 2}) at[k][s] = c.roi ? std::max(roi.origin[s], 0) : 0;
            c.at[k] = c.x[k] ? at[k] : nullptr;
        }
    if (alias == 3 && op.sources > 1 && types[1] == types[2]) c.x[2] = c.x[1], c.at[2] = c.at[1];
    if ((!op.entry || rng() % 3 == 0) && c.negotiate()) { // further down, on what the entry would cover
        c.layer = op.entry && rng() % 2 ? adapter : dispatcher;
        c.f = c.layer == adapter ? op.adapter : op.dispatcher;
        if (!c.x[1]) c.x[1] = c.x[0];
        if (c.size[1] == 1 && rng() % 2) c.word = JORM_WORD(2);
    }
    return c.f ? check(c) : testing::AssertionSuccess();
}

class Arithmetic : public testing::TestWithParam<Op> {};

TEST_P(Arithmetic, MatchesTheOracle) {
    const Op &op = GetParam();
    Random rng(1);
    for (char d : {'b', 'c', 'h', 'i', 'f'})
        for (int n = 0; n < 1 << 2 * op.sources; ++n) {
            std::string types(1, d);
            for (int k = 0; k < op.sources; ++k) types += "bhif"[n >> 2 * k & 3];
            const int runs = stage_of(op, types) == 0 ? 1 : op.sources == 3 ? 12 : 24;
            for (int i = 0; i < runs; ++i)
                ASSERT_TRUE(i == 7 ? random_case(op, types, rng, 1, int(700 + rng() % 1600))
                                   : random_case(op, types, rng, int(1 + rng() % 4), int(1 + rng() % 70)));
        }
}

void PrintTo(const Op &op, std::ostream *out) { *out << op.name; }
INSTANTIATE_TEST_SUITE_P(All, Arithmetic, testing::ValuesIn(ops),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- Further out and further down ----

// Pictures too large to stay in the cache, whose results are streamed to memory.
TEST(Kernels, LargePictures) {
    Random rng(2);
    const std::tuple<const char *, const char *, int, Layout> large[] = {{"Add", "bbb", 3, dense},
                                                                         {"Add", "bii", 1, dense},
                                                                         {"MulC", "fb", 1, upward},
                                                                         {"Subq", "hhb", 3, padded_rows},
                                                                         {"MulAdd", "ihbi", 1, dense}};
    for (const auto &[name, types, channels, layout] : large) {
        Case c{&named(name)};
        std::vector<Picture> pictures;
        pictures.reserve(4);
        for (int k = 0; types[k]; ++k) c.x[k] = &pictures.emplace_back(types[k], 1501, 1703, channels, layout, rng);
        if (types[0] == types[1] && channels == 3) c.x[1] = nullptr;
        c.c[0][0] = 0.7;
        EXPECT_TRUE(check(c));
    }
}

TEST(Kernels, CalledDirectly) {
    const std::tuple<const char *, const char *, int, Fn> kernels[] = {
        {"Add", "bbb", 1, Fn(jorma__add_c1_u8u8u8)},
        {"Sub", "ifb", 1, Fn(jorma__sub_c1_s32f32u8)},
        {"Mul", "bhb", 1, Fn(jorma__mul_c1_u8s16u8)},
        {"Addq", "cbb", 1, Fn(jorma__addq_c1_s8u8u8)},
        {"AddC", "bb", 1, Fn(jorma__addC_c1_u8u8s32)},
        {"MulC", "cb", 1, Fn(jorma__mulC_c1_s8u8u8)},
        {"RSubqC", "ii", 1, Fn(jorma__rsubqC_c1_s32s32s32)},
        {"Div", "hhh", 1, Fn(jorma__div_c1_s16s16s16)},
        {"RDivC", "ii", 3, Fn(jorma__rdivC_c3_s32s32)},
        {"DivrC", "hh", 4, Fn(jorma__divrC_c4_s16s16)},
        {"MulAdd", "ihbi", 1, Fn(jorma__mla_c1_s32s16u8s32)},
        {"MulAddC", "bbh", 1, Fn(jorma__mlaC_c1_u8u8s16s32)},
        {"MulSubCC", "bf", 1, Fn(jorma__mlsCC_c1_u8f32f32f32)},
        {"Negate", "hf", 1, Fn(jorma__neg_c1_s16f32)},
        {"Sqr", "bh", 1, Fn(jorma__sqr_c1_u8s16)},
        {"Xor", "iii", 1, Fn(jorma__xor_c1_s32s32s32)},
        {"AndC", "bb", 4, Fn(jorma__andC_c4_u8u8)},
        {"Not", "hh", 1, Fn(jorma__not_c1_s16s16)},
    };
    Random rng(3);
    for (const auto &[name, types, channels, f] : kernels)
        for (int i = 0; i < 20; ++i) {
            Case c{&named(name), kernel, f};
            if (i % 3 == 0) c.word = JORM_WORD(2);
            std::vector<Picture> pictures;
            pictures.reserve(4);
            const int h = i % 3 ? 1 + i % 4 : 1, w = int(1 + rng() % 300);
            for (int k = 0; types[k]; ++k) {
                c.x[k] = &pictures.emplace_back(types[k], h, w, channels, i % 4 ? dense : int(rng() % repeated), rng);
                c.x[k]->paint(rng);
            }
            for (auto &constants : c.c)
                for (double &v : constants) v = some_constant(unsigned(i % 3), false, rng);
            c.p = c.op->logic() || i % 5 ? 0 : -1;
            c.negotiate();
            ASSERT_TRUE(check(c));
        }
}

TEST(Kernels, AddLookup) {
    const uint32_t codes[] = {0, 1, 2, 9, 10, 11, 12, 13, 14, 15, 16, 257, UINT32_MAX};
    const auto formed = [](uint32_t t) { return (t >= 1 && t <= 4) || (t >= 9 && t <= 15); };
    const auto letter = [](uint32_t t) { return t < 14 ? "?b???????chi?f"[t] : '?'; };
    for (uint32_t d : codes)
        for (uint32_t a : codes)
            for (uint32_t b : codes) {
                const bool exists = strstr(sums, std::string{letter(d), letter(a), letter(b)}.c_str());
                const bool valid = formed(d) && formed(a) && formed(b);
                int32_t status = 1;
                jorm_proc *const f = jorma__aaddfun_imp(d, a, b, &status);
                ASSERT_EQ(status, exists ? JORM_OK : valid ? JORM_ENOTSUP : JORM_EINVAL) << d << " " << a << " " << b;
                ASSERT_EQ(jorma__aaddfun_imp(d, a, b, nullptr), f);
                ASSERT_TRUE(exists || f == (valid ? jorma_proc_enotsup : jorma_proc_einval));
            }
    EXPECT_EQ(Fn(jorma__aaddfun_imp(1, 10, 1, nullptr)), Fn(jorma__add_c1_u8s16u8));
}

// A region may narrow the channels; a mask of channels in the size of a dispatcher is no part of their number.
TEST(Kernels, ChannelSlots) {
    Random rng(4);
    const double c[] = {7, 7, 7};
    for (int channel = 0; channel < 4; ++channel) {
        Picture d('b', 3, 5, 3, padded_pixels, rng), s('b', 3, 5, 3, dense, rng);
        const std::vector<uint8_t> before = d.memory;
        const jorm_site roi = {{0, 0, 0, channel}, {1, 3, 5, 1}};
        const int32_t at[4] = {0, 0, 0, channel}, size[] = {3, 5, 3 | 0x50};
        if (channel < 3)
            EXPECT_EQ(JormAddC(nullptr, 0, &d.a, &s.a, c, &roi, at, 0, 0), JORM_OK);
        else
            EXPECT_EQ(jorma__addC(nullptr, 0, JORM_WORD(3), size, 1, d.first, d.a.stride + 1, 1, s.first,
                                  s.a.stride + 1, c, 0, 0),
                      JORM_OK);
        for (int i = 0; i < 45; ++i) {
            const uint8_t *p = d.first + d.at(i / 15, i / 3 % 5, i % 3);
            ASSERT_EQ(*p,
                      i % 3 == channel || channel == 3 ? uint8_t(s.first[i] + 7) : before[size_t(p - d.memory.data())]);
        }
    }
}

// ---- Functions of real numbers ----

struct Singles {
    std::vector<float> x, y;
    jorm_array src, dst;
    explicit Singles(std::vector<float> values) : x(std::move(values)), y(x.size()) {
        const int n = int(x.size());
        src = described('f', 1, n, 1, 4 * n, 4, 4, 0, x.data());
        dst = described('f', 1, n, 1, 4 * n, 4, 4, 0, y.data());
    }
    int64_t call(Kind kind, double alpha, int p) {
        return kind == exp_ ? JormExp(nullptr, 0, &dst, &src, nullptr, nullptr, p, 0)
               : kind == ln ? JormLn(nullptr, 0, &dst, &src, nullptr, nullptr, p, 0)
                            : JormSigmoidAlpha(nullptr, 0, &dst, &src, &alpha, nullptr, nullptr, p, 0);
    }
};

TEST(Functions, WithinTwoUnitsOverAllSingles) {
    std::vector<float> x;
    for (uint64_t i = 0; i >> 32 == 0; i += 7919) x.push_back(std::bit_cast<float>(uint32_t(i)));
    Singles s(x);
    const std::tuple<const char *, double, int> calls[] = {
        {"Exp", 0, 0},     {"Exp", 0, -30},       {"Ln", 0, 0},         {"Ln", 0, 2},
        {"Sigmoid", 1, 0}, {"Sigmoid", -1e-3, 0}, {"Sigmoid", 1e30, 0}, {"Sigmoid", 0, 7}};
    for (const auto &[name, alpha, p] : calls) {
        const Op &op = named(name);
        std::vector<float> reference;
        for (int level = jorm::level_base; level < jorm::level_count; ++level) {
            _G_jorm_use_simd = 1;
            jorm::limit_level(jorm::Level(level));
            ASSERT_EQ(s.call(op.kind, alpha, p), JORM_OK);
            if (level == jorm::level_base) reference = s.y;
            ASSERT_EQ(std::memcmp(reference.data(), s.y.data(), 4 * s.y.size()), 0) << name << " level " << level;
        }
        double worst = 0;
        for (size_t i = 0; i < x.size(); ++i) {
            const Value v[2] = {{x[i], false}, {alpha, false}};
            const double u = ulps(s.y[i], smooth(op, v, p));
            worst = std::max(worst, u);
            ASSERT_LE(u, 2) << name << " of " << x[i] << " is " << s.y[i];
        }
        RecordProperty(name + std::to_string(p), std::to_string(worst));
    }
}

TEST(Functions, SpecialValues) {
    const float inf = INFINITY;
    Singles s({0.f, -0.f, inf, -inf, NAN, 1.f, -1.f, 1e-45f, -1e-45f, 88.8f, -104.f});
    const std::vector<float> &y = s.y;
    EXPECT_EQ(s.call(exp_, 0, 0), JORM_OK);
    EXPECT_TRUE(y[0] == 1 && y[1] == 1 && y[2] == inf && y[3] == 0 && std::isnan(y[4]) && y[7] == 1 && y[8] == 1);
    EXPECT_TRUE(y[9] == inf && y[10] == 0 && !std::signbit(y[3]) && !std::signbit(y[10]));
    EXPECT_EQ(s.call(ln, 0, 0), JORM_OK);
    EXPECT_TRUE(y[0] == -inf && y[1] == -inf && y[2] == inf && std::isnan(y[3]) && std::isnan(y[4]) && y[5] == 0);
    EXPECT_TRUE(std::isnan(y[6]) && std::isnan(y[8]));
    EXPECT_EQ(s.call(sigmoid, 1, 0), JORM_OK);
    EXPECT_TRUE(y[0] == 0.5f && y[1] == 0.5f && y[2] == 1 && y[3] == 0 && std::isnan(y[4]));
}

// ---- Statuses ----

struct Fault {
    Case c;
    std::vector<Picture> x;
    jorm_array *d, *s; // the destination and the source in question
    jorm_site roi = {{0, 0, 0, 0}, {1, 3, 4, 3}};
    int32_t at[4] = {};

    Fault(const Op &op, char type, int source, Random &rng) : c{&op} {
        for (int k = 0; k <= op.sources; ++k) { // strides for elements of any type
            x.emplace_back(type, 1, 2000, 1, dense, rng);
            x.back().a = described(type, 3, 4, 3, 512, 64, 8, 64, x.back().memory.data() + 64);
        }
        for (int k = 0; k <= op.sources; ++k) c.x[k] = &x[size_t(k)];
        d = &x[0].a, s = &x[size_t(source)].a;
        c.at[source] = at;
    }
    template <class F> void all(F change) {
        for (Picture &p : x) change(p.a);
    }
    void axes(uint16_t n) {
        all([=](jorm_array &a) { a.ndims = n; });
    }
    void channels(uint32_t n) {
        all([=](jorm_array &a) { a.extent[3] = n; });
    }
};

enum { two_sources = 1, constants = 2, wide_elements = 4 }; // what a fault needs
const struct {
    const char *what;
    int64_t status;
    int needs;
    void (*breaks)(Fault &f);
} faults[] = {
    {"nothing", JORM_OK, 0, [](Fault &) {}},
    {"channel code 11", JORM_OK, 0, [](Fault &f) { f.channels(11); }},
    {"one plane beside two", JORM_OK, 0, [](Fault &f) { f.d->extent[0] = 2; }},
    {"null destination", JORM_EINVAL, 0, [](Fault &f) { f.c.x[0] = nullptr; }},
    {"null last source", JORM_EINVAL, two_sources, [](Fault &f) { f.c.x[f.c.op->sources] = nullptr; }},
    {"null base", JORM_EINVAL, 0, [](Fault &f) { f.d->base = nullptr; }},
    {"null base of a source", JORM_EINVAL, 0, [](Fault &f) { f.s->base = nullptr; }},
    {"two axes", JORM_EINVAL, 0, [](Fault &f) { f.axes(2); }},
    {"five axes", JORM_EINVAL, 0, [](Fault &f) { f.axes(5); }},
    {"no planes", JORM_EINVAL, 0, [](Fault &f) { f.d->extent[0] = 0; }},
    {"no channels", JORM_EINVAL, 0, [](Fault &f) { f.channels(16); }},
    {"five channels", JORM_EINVAL, 0, [](Fault &f) { f.channels(12); }},
    {"source of four axes", JORM_EINVAL, 0, [](Fault &f) { f.s->ndims = 4; }},
    {"source of two planes", JORM_EINVAL, 0, [](Fault &f) { f.s->extent[0] = 2; }},
    {"source of two channels", JORM_EINVAL, 0, [](Fault &f) { f.s->extent[3] = 2; }},
    {"bad source, empty region", JORM_EINVAL, 0, [](Fault &f) { f.s->extent[3] = 2, f.at[1] = 3; }},
    {"misaligned base", JORM_EINVAL, wide_elements, [](Fault &f) { f.d->base = f.x[0].memory.data() + 1; }},
    {"misaligned offset", JORM_EINVAL, wide_elements, [](Fault &f) { f.s->loff += 1; }},
    {"misaligned rows", JORM_EINVAL, wide_elements, [](Fault &f) { f.s->stride[1] += 1; }},
    {"misaligned pixels", JORM_EINVAL, wide_elements, [](Fault &f) { f.d->stride[2] += 1; }},
    {"misaligned channels", JORM_EINVAL, wide_elements, [](Fault &f) { f.d->stride[3] += 1; }},
    {"no rows", JORM_EEMPTY, 0, [](Fault &f) { f.s->extent[1] = 0; }},
    {"region outside", JORM_EEMPTY, 0, [](Fault &f) { f.roi.origin[2] = 4, f.c.roi = &f.roi; }},
    {"region without planes", JORM_EEMPTY, 0, [](Fault &f) { f.roi.size[0] = 0, f.c.roi = &f.roi; }},
    {"region far away", JORM_EEMPTY, 0,
     [](Fault &f) { f.roi.origin[1] = f.roi.size[1] = INT32_MAX, f.c.roi = &f.roi; }},
    {"start at the end", JORM_EEMPTY, 0, [](Fault &f) { f.at[1] = 3; }},
    {"start before the beginning", JORM_EEMPTY, 0, [](Fault &f) { f.at[2] = -4; }},
    {"start far away", JORM_EEMPTY, 0, [](Fault &f) { f.at[2] = INT32_MIN; }},
    {"start in another plane", JORM_EEMPTY, 0, [](Fault &f) { f.at[0] = 1; }},
    {"empty region, bad type", JORM_EEMPTY, 0, [](Fault &f) { f.at[1] = 3, f.d->eltype = 0; }},
    {"empty region, four axes", JORM_EEMPTY, 0, [](Fault &f) { f.at[1] = 3, f.d->ndims = 4; }},
    {"empty region, null constant", JORM_EEMPTY, constants, [](Fault &f) { f.at[1] = 3, f.c.no_constants = true; }},
    {"four axes", JORM_ENOTSUP, 0, [](Fault &f) { f.axes(4); }},
    {"four axes beside three", JORM_ENOTSUP, 0, [](Fault &f) { f.d->ndims = 4; }},
    {"four axes, bad type", JORM_ENOTSUP, 0, [](Fault &f) { f.d->ndims = 4, f.d->eltype = 0; }},
    {"four axes, null constant", JORM_ENOTSUP, constants, [](Fault &f) { f.axes(4), f.c.no_constants = true; }},
    {"null constant", JORM_EINVAL, constants, [](Fault &f) { f.c.no_constants = true; }},
    {"type 0", JORM_EINVAL, 0, [](Fault &f) { f.d->eltype = 0; }},
    {"type 5", JORM_EINVAL, 0, [](Fault &f) { f.s->eltype = 5; }},
    {"type 8 beside u16", JORM_EINVAL, 0, [](Fault &f) { f.d->eltype = 8, f.s->eltype = JORM_U16; }},
    {"type beyond 4 bits", JORM_EINVAL, 0, [](Fault &f) { f.s->eltype += 256; }},
    {"types u16", JORM_ENOTSUP, 0, [](Fault &f) { f.d->eltype = f.s->eltype = JORM_U16; }},
    {"type f64", JORM_ENOTSUP, 0, [](Fault &f) { f.s->eltype = JORM_F64; }},
    {"type 15", JORM_ENOTSUP, 0, [](Fault &f) { f.s->eltype = 15; }},
    {"type s8", JORM_ENOTSUP, 0, [](Fault &f) { f.s->eltype = JORM_S8; }},
};

TEST(Statuses, EachFaultInEachSourceOfEachEntry) {
    Random rng(5);
    for (const Op &op : ops)
        for (char type : {'b', 'f', 'i'})
            for (int k = 1; k <= op.sources && op.entry; ++k)
                for (const auto &fault : faults) {
                    const int has =
                        (op.sources > 1) * two_sources | (op.constants > 0) * constants | (type != 'b') * wide_elements;
                    if (!stage_of(op, std::string(size_t(op.sources) + 1, type)) || (fault.needs & ~has)) continue;
                    Fault f(op, type, k, rng);
                    fault.breaks(f);
                    const std::vector<uint8_t> before = f.x[0].memory;
                    ASSERT_EQ(call(f.c, nullptr), fault.status) << op.name << " " << type << k << ": " << fault.what;
                    ASSERT_EQ(before == f.x[0].memory, fault.status != JORM_OK) << op.name << " " << fault.what;
                }
}

TEST(Statuses, NullsFurtherDown) {
    Random rng(6);
    for (const Op &op : ops) {
        const char type = stage_of(op, std::string(size_t(op.sources) + 1, 'b')) ? 'b' : op.types[0];
        Picture d(type, 3, 4, 3, dense, rng);
        for (Layer layer : {adapter, dispatcher}) {
            if (!op.entry && layer == adapter) continue;
            for (int k = 0; k <= op.sources; ++k) {
                Picture none = d;
                none.first = nullptr;
                Case c{&op, layer, layer == adapter ? op.adapter : op.dispatcher};
                for (int i = 0; i <= op.sources; ++i) c.x[i] = i == k ? &none : &d;
                c.negotiate();
                EXPECT_EQ(call(c, nullptr), JORM_EINVAL) << op.name << " operand " << k;
            }
        }
    }
}

// What a destination narrower than its sources needs.
TEST(Statuses, EmptySizesWriteNothing) {
    jorm_xe *const xe = JormXEopen(nullptr, nullptr, 0);
    uint8_t d = 7;
    const int32_t s = 1, bytes[3] = {1, 1, 1}, words[3] = {4, 4, 4};
    for (const auto &[rows, pixels] : {std::pair{0, 1}, {1, 0}, {-1, 5}, {5, -1}, {0, 0}}) {
        const int32_t size[3] = {rows, pixels, 1};
        EXPECT_EQ(
            jorma__add(xe, 0, JORM_WORD(3), size, JORM_U8, &d, bytes, JORM_U8, &d, bytes, JORM_U8, &d, bytes, 0, 0), 0);
        EXPECT_EQ(
            jorma__sub(xe, 0, JORM_WORD(3), size, JORM_U8, &d, bytes, JORM_S32, &s, words, JORM_S32, &s, words, 0, 0),
            0);
    }
    EXPECT_EQ(d, 7);
    JormXEclose(xe);
}

TEST(Statuses, StripsNeedAnEnvironmentWithMemory) {
    Random rng(7);
    Picture d('b', 3, 400, 3, dense, rng), s('i', 3, 400, 3, dense, rng);
    const std::vector<uint8_t> before = d.memory;
    Case c{&named("Add")};
    c.x[0] = &d, c.x[1] = c.x[2] = &s;
    EXPECT_EQ(call(c, nullptr), JORM_EINVAL);
    if (limits_heap) {
        jorm_xe *const xe = JormXEopen(nullptr, nullptr, 0);
        heap_limit = 0;
        while (JormXEalloca(xe, 4096, 0)) continue;
        const int64_t status = call(c, xe);
        heap_limit = SIZE_MAX;
        JormXEclose(xe);
        EXPECT_EQ(status, JORM_ENOMEM);
    }
    EXPECT_EQ(before, d.memory);
}

// Each front end takes the codes of its own rows only.
TEST(Statuses, Codes) {
    using namespace jorm;
    Random rng(8);
    Picture d('b', 2, 3, 1, dense, rng), s('b', 2, 3, 1, dense, rng);
    const std::string binary = "aadd addq adsq asub subq sbsq rsub rsbq rssq amul adiv divr rdiv rdvr ";
    const std::string unary = "exp  ln   neg  negq ", ternary = "mla  mls  mlrs ", logic = "aand aorr axor ";
    const std::string all_codes = binary + "sigm " + unary + ternary + logic + "not  AADD aad  ";
    const auto has = [](const std::string &list, const std::string &code) {
        const size_t at = list.find(code);
        return at != list.npos && at % 5 == 0;
    };
    const double k[4] = {1, 1, 1, 1};
    const jorm_array *const a = &d.a, *const b = &s.a;
    for (size_t i = 0; i < all_codes.size(); i += 5) {
        const std::string code = all_codes.substr(i, 4);
        uint32_t f = 0;
        for (char ch : code) f = f << 8 | uint8_t(ch);
        const std::vector<uint8_t> before = d.memory;
        const std::pair<int64_t, bool> results[] = {
            {unary_front(f, nullptr, 0, a, b, nullptr, nullptr, 0, 0), has(unary, code)},
            {binary_front(f, nullptr, 0, a, b, b, nullptr, nullptr, nullptr, 0, 0), has(binary, code)},
            {constant_front(f, nullptr, 0, a, b, k, nullptr, nullptr, 0, 0), has((binary + "sigm "), code)},
            {ternary_front(f, nullptr, 0, a, b, b, b, nullptr, nullptr, nullptr, nullptr, 0, 0), has(ternary, code)},
            {ternary_constant_front(f, nullptr, 0, a, b, b, k, nullptr, nullptr, nullptr, 0, 0), has(ternary, code)},
            {ternary_constants_front(f, nullptr, 0, a, b, k, k, nullptr, nullptr, 0, 0), has(ternary, code)},
            {logic_front(f, nullptr, 0, a, b, b, nullptr, nullptr, nullptr), has(logic, code)},
            {logic_constant_front(f, nullptr, 0, a, b, k, nullptr, nullptr), has(logic, code)}};
        for (const auto &[status, mine] : results)
            EXPECT_EQ(status != JORM_EINVAL, mine) << code << " " << &status - &results[0].first;
    }
}

} // namespace
