// Every element-wise entry, adapter and dispatcher, over all types, layouts, regions and levels, against exact
// arithmetic in 128 bits and double precision.
#include "arith/kernels/lists.hpp"
#include "support/arith_case.hpp"
#include "support/heap.hpp"

namespace {

double some_constant(int flavour, bool far, Random &r) {
    static const double near[] = {0,   1,    2,   -1,    3,      -7,    100,        255,
                                  256, -300, 300, 32767, -40000, 65537, 0x1p31 - 1, -0x1p31};
    static const double wide[] = {4294967295.0, -5e9, 1e10, -1e15, 9007199254740994.0, 1e300};
    static const double others[] = {0.5,       -0.5,       1.5, 2.75, -1.25, 1 / 3., 1e-3,  1e9 + 0.5,
                                    3e9 + 0.5, -5e9 - 0.5, inf, -inf, nan,   -0.0,   1e-310};
    if (flavour == 0) return r.in(-4, 4);
    if (flavour == 1 || r.one_in(2)) return far && r.one_in(4) ? r.of(wide) : r.of(near);
    return r.of(others);
}

int some_shift(const Op &op, Random &r) {
    static const int shifts[] = {0, 0, 0, 0, 1, 3, -1, -2, -8, 20, -40, 100, -100, INT32_MAX, INT32_MIN};
    return op.logic() ? 0 : shifts[r.in(0, op.constants == 0 && !op.division() && !op.smooth() ? 14 : 10)];
}

// One random call of the operation for these types, or of a kernel for so many channels.
Result random_case(const Op &op, const std::string &types, Random &r, int h, int w, int only = 0, Fn direct = nullptr) {
    Case c{&op};
    const int channels = only ? only : r.in(1, 4);
    const bool regions = r.one_in(3), narrow = !only && r.one_in(4);
    std::vector<Picture> pictures;
    pictures.reserve(4);
    for (int k = 0; k <= op.sources; ++k) {
        const Index extent = {1, h + r.in(0, regions * 2), w + r.in(0, regions * 3), channels};
        c.x[k] = &pictures.emplace_back(r, code_of(types[size_t(k)]), extent);
        if (k > 0 && r.one_in(10)) c.x[k]->a.stride[1] = 0; // the same row again and again
        paint(*c.x[k], r);
    }
    c.p = some_shift(op, r);
    c.q = int32_t(r());
    for (auto &constants : c.c)
        for (const int flavour = r.in(0, 2); double &v : constants) v = some_constant(flavour, !op.division(), r);
    const jorm_site roi = {{0, r.in(-1, 2), r.in(-1, 2), narrow}, {1, r.in(1, 9), w + r.in(-1, 2), narrow ? 2 : 4}};
    Index at[4] = {};
    if (regions && r.in(0, 3)) c.roi = &roi;
    for (size_t k = 1; k <= size_t(op.sources); ++k)
        if (regions && r.one_in(2))
            at[k] = {0, r.in(-1, 2), r.in(-1, 2), narrow && r.one_in(2)}, c.at[k] = at[k].data();
    const int alias = r.in(0, 5);
    for (int k = 1; k <= op.sources; ++k) // in place, once or several times
        if (types[size_t(k)] == types[0] && (alias == 0 || (alias == 1 && k == 1) || (alias == 2 && k == op.sources))) {
            c.x[k] = k == 1 && r.one_in(2) ? nullptr : c.x[0];
            for (size_t s : {1, 2, 3}) at[k][s] = c.roi ? std::max(roi.origin[s], 0) : 0;
            c.at[k] = c.x[k] ? at[k].data() : nullptr;
        }
    if (alias == 3 && op.sources > 1 && types[1] == types[2]) c.x[2] = c.x[1], c.at[2] = c.at[1];
    // Further down, on what the entry would cover.
    if ((direct || !op.functions[entry] || r.one_in(3)) && c.negotiate()) {
        c.layer = direct ? kernel : op.functions[entry] && r.one_in(2) ? adapter : dispatcher;
        c.f = direct ? direct : op.functions[c.layer];
        if (!c.x[1]) c.x[1] = c.x[0];
        if (c.size[1] == 1 && r.one_in(2)) c.word = JORM_WORD(2);
        c.size[3] |= r.in(0, 15) << 4; // a selection of channels is no part of their number
        const int cut = r.in(c.word == JORM_WORD(2) ? 2 : 1, 2);
        if (r.one_in(16)) c.size[size_t(cut)] = r.in(-1, 0), c.region.size = {}; // nothing is to be done
    }
    return c.f ? check(c) : testing::AssertionSuccess();
}

class Arithmetic : public testing::TestWithParam<Op> {};

TEST_P(Arithmetic, MatchesTheOracle) {
    const Op &op = GetParam();
    Random r(1);
    for (char d : {'b', 'c', 'h', 'i', 'f'})
        for (int n = 0; n < (op.sources == 3 ? 125 : op.sources == 2 ? 25 : 5); ++n) {
            std::string types = {d, "bhifc"[n % 5], "bhifc"[n / 5 % 5], "bhifc"[n / 25]};
            types.resize(size_t(op.sources) + 1);
            const int runs = stage_of(op, types) == 0 ? 1 : op.sources == 3 ? 12 : 24;
            for (int i = 0; i < runs; ++i) {
                const int h = i == 7 ? 1 : r.in(1, 4), w = i == 7 ? r.in(700, 2300) : r.in(1, 70);
                ASSERT_TRUE(random_case(op, types, r, h, w));
            }
        }
}

void PrintTo(const Op &op, std::ostream *out) { *out << op.name; }
INSTANTIATE_TEST_SUITE_P(All, Arithmetic, testing::ValuesIn(ops),
                         [](const auto &info) { return std::string(info.param.name); });

// ---- Further out and further down ----

// A case of dense pictures of the same extent.
struct Uniform : Case {
    std::vector<Picture> pictures;
    Uniform(const std::string &name, const std::string &types, const Index &extent, Random &r) : Case{&named(name)} {
        pictures.reserve(4);
        for (char type : types) pictures.emplace_back(r, code_of(type), extent, true);
        for (size_t k = 0; k < types.size(); ++k) x[k] = &pictures[k];
    }
};

// Pictures too large to stay in the cache, whose results are streamed to memory.
TEST(Kernels, LargePictures) {
    Random r(2);
    const std::tuple<const char *, const char *, int, int, bool> large[] = {
        {"Add", "bbb", 3, 0, false},  {"Add", "bii", 1, 0, false},     {"MulC", "fb", 1, 0, true},
        {"Subq", "hhb", 3, 2, false}, {"MulAdd", "ihbi", 1, 0, false},
    };
    for (const auto &[name, types, channels, padding, upward] : large) {
        Uniform c(name, types, {1, 1501, 1703 + padding, channels}, r);
        for (Picture &picture : c.pictures) {
            picture.a.extent[2] = 1703;
            if (upward) picture.a.loff += 1500 * picture.a.stride[1], picture.a.stride[1] *= -1;
        }
        if (types[0] == types[1] && channels == 3) c.x[1] = nullptr;
        c.c[0][0] = 0.7;
        EXPECT_TRUE(check(c));
    }
}

// Every kernel, which its name describes: operation, channels, types of the destination, the sources, the constants.
TEST(Kernels, CalledDirectly) {
#define K(name, ...) {#name, Fn(name)},
    const std::pair<const char *, Fn> kernels[] = {
        JORM_ADD_KERNELS(K) JORM_SUB_KERNELS(K) JORM_RSUB_KERNELS(K) JORM_MUL_KERNELS(K) JORM_ADDQ_KERNELS(K)
            JORM_SUBQ_KERNELS(K) JORM_RSUBQ_KERNELS(K) JORM_DIV_KERNELS(K) JORM_DIVR_KERNELS(K) JORM_AND_KERNELS(K)
                JORM_ORR_KERNELS(K) JORM_XOR_KERNELS(K) JORM_MULQ_KERNELS(K) JORM_ABSDIFF_KERNELS(K) JORM_MIN_KERNELS(K)
                    JORM_MAX_KERNELS(K) JORM_ADD_C_KERNELS(K) JORM_SUB_C_KERNELS(K) JORM_RSUB_C_KERNELS(K)
                        JORM_MUL_C_KERNELS(K) JORM_ADDQ_C_KERNELS(K) JORM_SUBQ_C_KERNELS(K) JORM_RSUBQ_C_KERNELS(K)
                            JORM_DIV_C_KERNELS(K) JORM_RDIV_C_KERNELS(K) JORM_DIVR_C_KERNELS(K) JORM_RDIVR_C_KERNELS(K)
                                JORM_AND_C_KERNELS(K) JORM_ORR_C_KERNELS(K) JORM_XOR_C_KERNELS(K) JORM_MULQ_C_KERNELS(K)
                                    JORM_ABSDIFF_C_KERNELS(K) JORM_MIN_C_KERNELS(K) JORM_MAX_C_KERNELS(K)
                                        JORM_MLA_KERNELS(K) JORM_MLS_KERNELS(K) JORM_MLA_C_KERNELS(K)
                                            JORM_MLS_C_KERNELS(K) JORM_MLA_CC_KERNELS(K) JORM_MLS_CC_KERNELS(K)
                                                JORM_NEG_KERNELS(K) JORM_NEGQ_KERNELS(K) JORM_SQR_KERNELS(K)
                                                    JORM_NOT_KERNELS(K)};
#undef K
    Random r(3);
    for (const auto &[name, f] : kernels) {
        const char *const tail = strstr(name, "_c");
        std::string operation(name + strlen("jorma__"), tail), types;
        for (const auto &[brief, full] : {std::pair{"mla", "MulAdd"}, {"mls", "MulSub"}, {"neg", "Negate"}})
            if (operation.starts_with(brief)) operation.replace(0, 3, full);
        for (const char *t = tail + 4; *t; t += 1 + strcspn(t + 1, "usf"))
            types += *t == 'u' ? 'b' : *t == 'f' ? 'f' : t[1] == '8' ? 'c' : t[1] == '1' ? 'h' : 'i';
        const Op *const op = std::find_if(std::begin(ops), std::end(ops),
                                          [&](const Op &o) { return strcasecmp(o.name, operation.c_str()) == 0; });
        ASSERT_NE(op, std::end(ops)) << name;
        types.resize(size_t(op->sources) + 1);
        for (int i = 0; i < 3; ++i) {
            const int h = r.in(1, 4), w = r.in(1, 100);
            ASSERT_TRUE(random_case(*op, types, r, h, w, tail[2] - '0', f)) << name;
        }
    }
}

TEST(Kernels, AddLookup) {
    const uint32_t codes[] = {0, 1, 2, 9, 10, 11, 12, 13, 14, 15, 16, 257, UINT32_MAX};
    const auto formed = [](uint32_t t) { return (t >= 1 && t <= 4) || (t >= 9 && t <= 15); };
    for (uint32_t d : codes)
        for (uint32_t a : codes)
            for (uint32_t b : codes) {
                const bool exists = strstr(sums, std::string{letter_of(d), letter_of(a), letter_of(b)}.c_str());
                const bool valid = formed(d) && formed(a) && formed(b);
                int32_t status = 1;
                jorm_proc *const f = jorma__aaddfun_imp(d, a, b, &status);
                ASSERT_EQ(status, exists ? JORM_OK : valid ? JORM_ENOTSUP : JORM_EINVAL) << d << " " << a << " " << b;
                ASSERT_EQ(jorma__aaddfun_imp(d, a, b, nullptr), f);
                ASSERT_TRUE(exists || f == (valid ? jorma_proc_enotsup : jorma_proc_einval));
            }
    EXPECT_EQ(Fn(jorma__aaddfun_imp(1, 10, 1, nullptr)), Fn(jorma__add_c1_u8s16u8));
}

// Factors whose product with 2^p leaves double precision.
TEST(Kernels, ProductsByExtremeFactors) {
    Random r(10);
    const std::tuple<const char *, double, double, int, double> cases[] = {
        {"if", 1e-30, 1e-300, INT32_MAX, 2147483647},
        {"if", inf, -1e-300, INT32_MIN, -2147483648.0},
        {"if", 0, 1e300, INT32_MAX, 0},
        {"ii", 3, 1e300, -996, 4},
        {"bi", 3, 1e-310, 1034, 55},
        {"if", nan, 1, 0, 0},
        {"bf", -inf, 1, 0, 0},
        {"hf", inf, 0, 0, 0}};
    for (const auto &[types, x, factor, p, y] : cases) {
        Uniform c("MulqC", types, {1, 1, 1, 1}, r);
        c.c[0][0] = factor, c.p = p;
        store(c.x[1]->a.eltype, c.x[1]->at({}), x);
        EXPECT_EQ(call(c, nullptr), JORM_OK);
        EXPECT_EQ(c.x[0]->get({}), y) << types << " " << x << " " << factor << " " << p;
    }
}

// ---- Functions of real numbers ----

TEST(Functions, WithinTwoUnitsOverAllSingles) {
    Random r(4);
    const float special[] = {0, -0.f, INFINITY, -INFINITY, NAN, 1, -1, 1e-45f, -1e-45f, 88.8f, -104};
    const int step = 7919, n = int(0x100000000 / step);
    const std::tuple<const char *, double, int> calls[] = {
        {"Exp", 0, 0},     {"Exp", 0, -30},       {"Ln", 0, 0},         {"Ln", 0, 2},
        {"Sigmoid", 1, 0}, {"Sigmoid", -1e-3, 0}, {"Sigmoid", 1e30, 0}, {"Sigmoid", 0, 7}};
    for (const auto &[name, alpha, p] : calls) {
        Uniform c(name, "ff", {1, 1, n, 1}, r);
        for (int i = 0; i < n; ++i) {
            const uint32_t bits = uint32_t(i) * step;
            std::memcpy(c.x[1]->at({0, 0, i, 0}), &bits, sizeof bits);
        }
        for (int i = 0; i < int(std::size(special)); ++i) store(JORM_F32, c.x[1]->at({0, 0, n / 2 + i, 0}), special[i]);
        c.c[0][0] = alpha, c.p = p;
        EXPECT_TRUE(check(c));
    }
}

// ---- Statuses ----

TEST(Statuses, NullsFurtherDownAndFourAxes) {
    Random r(7);
    for (const Op &op : ops)
        for (Layer layer : {entry, adapter, dispatcher})
            for (int k = 0; k <= op.sources && op.functions[layer]; ++k) {
                const char type = stage_of(op, std::string(size_t(op.sources) + 1, 'b')) ? 'b' : op.types[0];
                Uniform c(op.name, std::string(size_t(op.sources) + 1, type), {1, 3, 4, 3}, r);
                c.layer = layer, c.f = op.functions[layer];
                c.negotiate();
                if (layer != entry) c.pictures[size_t(k)].a.base = nullptr;
                for (Picture &p : c.pictures) p.a.ndims = layer == entry ? 4 : 3;
                EXPECT_EQ(call(c, nullptr), layer == entry ? JORM_ENOTSUP : JORM_EINVAL) << op.name << " operand " << k;
            }
}

// What a destination narrower than its sources needs.
TEST(Statuses, StripsNeedAnEnvironmentWithMemory) {
    Random r(9);
    Uniform c("Add", "bii", {1, 3, 400, 3}, r);
    const Bytes before = c.x[0]->memory;
    EXPECT_EQ(call(c, nullptr), JORM_EINVAL);
    if (own_heap) {
        Env xe;
        heap_limit = 0;
        while (JormXEalloca(xe, 4096, 0)) continue;
        const int64_t status = call(c, xe);
        heap_limit = SIZE_MAX;
        EXPECT_EQ(status, JORM_ENOMEM);
    }
    EXPECT_EQ(before, c.x[0]->memory);
}

} // namespace
