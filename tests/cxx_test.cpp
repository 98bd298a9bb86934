// The C++ face: every function once against the call of the C interface that it stands for, bit for bit; views, errors,
// environments.
#include "jorm/jorm.hpp"
#include "support/picture.hpp"

#include <functional>
#include <thread>

namespace {

using jorm::in_place, jorm::nothrow, jorm::relation, jorm::status;

// Pictures of the same noise in every instance, and room for numbers that calls return.
struct World {
    static constexpr int h = 23, w = 37;
    Bytes bytes = Bytes(size_t(13 * h * w));
    std::vector<float> floats = std::vector<float>(size_t(3 * h * w));
    std::vector<double> matrices = std::vector<double>(9);
    std::vector<double> numbers;
    jorm::extrema extrema;
    jorm::view<uint8_t> a, b, d, mask, a3, b3, d3;
    jorm::view<float> f, g, e;
    jorm::view<double> m;
    jorm_xe *xe = jorm::environment::local().get();

    World() {
        Random r(5);
        scramble(r, bytes);
        for (float &v : floats) v = float(r.in(-1000, 1000)) / 256;
        for (double &v : matrices) v = r.in(-9, 9) / 8.0;
        uint8_t *next = bytes.data();
        for (auto *v : {&a, &b, &d, &mask}) *v = {next, {h, w}}, next += h * w;
        for (auto *v : {&a3, &b3, &d3}) *v = {next, {h, w, 3}}, next += 3 * h * w;
        float *nextf = floats.data();
        for (auto *v : {&f, &g, &e}) *v = {nextf, {h, w}}, nextf += h * w;
        m = {matrices.data(), {3, 3}};
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) mask(y, x) = mask(y, x) > 99 ? 255 : 0;
    }
    template <class... Numbers> void note(Numbers... n) { (numbers.push_back(double(n)), ...); }
    void note(const jorm::extrema &m) { extrema = m; }
    void note(const jorm::values &v) { note(v[0], v[1], v[2]); }
};

// Arguments of the C interface: constants, a region, start points.
constexpr double c3[] = {1, 20, 3, 0}, k3[] = {7, 7, 7, 7}, nothing[] = {0, 0, 0, 0};
constexpr jorm::rectangle part = {2, 3, 9, 11};
constexpr jorm_site site = {{0, 2, 3, 0}, {INT32_MAX, 9, 11, 4}};
constexpr jorm_site from_1_2 = {{0, 1, 2, 0}, {INT32_MAX, INT32_MAX, INT32_MAX, 4}};
constexpr int32_t at[] = {0, 1, 2, 0}, at2[] = {0, 4, 0, 0};
const jorm_seshape s35 = {{0, 1, 2, 0}, {1, 3, 5, 1}};
uint8_t cross_memory[9] = {0, 255, 0, 255, 255, 255, 0, 255, 0};
const jorm::view<uint8_t> cross(cross_memory, {3, 3});
const jorm_strel strel = {{0, 1, 1, 0}, cross.record()};
const double down[] = {0.25, 0.5, 0.25}, along[] = {0.1, 0.2, 0.4, 0.2, 0.1}, sigmas[] = {1.5, 0.75};
struct Case {
    const char *name;
    void (*cxx)(World &);
    int64_t (*c)(World &);
};
#define BOTH(cxx, c)                                                                                                   \
    {                                                                                                                  \
#cxx, [](World & w) { cxx; }, [](World & w) -> int64_t { return c; }                                           \
    }
#define WITH_ARRAY(d, a, b) w.xe, 0, w.d.get(), w.a.get(), w.b.get(), nullptr, nullptr, nullptr
#define WITH_CONSTANT(d, a, k) w.xe, 0, w.d.get(), w.a.get(), k, nullptr, nullptr
// Of arrays and of a constant; with an option off and on; in a place; products of arrays, of an array and constants.
#define FORMS(name, entry, entry_c)                                                                                    \
    BOTH(jorm::name(w.d, w.a, w.b), entry(WITH_ARRAY(d, a, b), 0, 0)),                                                 \
        BOTH(jorm::name(w.d, w.a, 7), entry_c(WITH_CONSTANT(d, a, k3), 0, 0))
#define OPTION(name, option, entry, entry_c)                                                                           \
    BOTH(jorm::name(w.d, w.a, w.b, {.option = true}), entry(WITH_ARRAY(d, a, b), 0, 0)),                               \
        BOTH(jorm::name(w.d, w.a, 7, {.option = true}), entry_c(WITH_CONSTANT(d, a, k3), 0, 0))
#define PLACED(name, entry, entry_c)                                                                                   \
    BOTH(jorm::name(w.d, w.a, w.b, {.region = part, .at = {1, 2}, .at2 = {4}}),                                        \
         entry(w.xe, 0, w.d.get(), w.a.get(), w.b.get(), &site, at, at2)),                                             \
        BOTH(jorm::name(w.d3, w.a3, {1, 20, 3}), entry_c(WITH_CONSTANT(d3, a3, c3)))
#define PRODUCTS(name, entry, entry_c, entry_cc)                                                                       \
    BOTH(jorm::name(w.d, w.a, w.b, w.mask),                                                                            \
         entry(w.xe, 0, w.d.get(), w.a.get(), w.b.get(), w.mask.get(), 0, 0, 0, 0, 0, 0)),                             \
        BOTH(jorm::name(w.d, w.a, 7, w.b), entry_c(w.xe, 0, w.d.get(), w.a.get(), w.b.get(), k3, 0, 0, 0, 0, 0)),      \
        BOTH(jorm::name(w.d, w.a, 7, {1, 2}), entry_cc(w.xe, 0, w.d.get(), w.a.get(), k3, c3, 0, 0, 0, 0))
#define OF_WINDOW(name, kind)                                                                                          \
    BOTH(jorm::name(w.d, w.a, {3, 5}, {.region = part, .at = {1, 2}}),                                                 \
         JormFilter(w.xe, 0, w.d.get(), w.a.get(), &site, &from_1_2, kind, &s35))
#define OF_MASK(name, op)                                                                                              \
    BOTH(jorm::name(w.d3, w.a3, cross), JormMorphop(w.xe, 0, w.d3.get(), w.a3.get(), nullptr, nullptr, op, &strel))
// clang-format off
const Case cases[] = {
    BOTH(jorm::add(w.d, w.a, w.b, {.saturate = true, .shift = -1, .region = part, .at = {1, 2}, .at2 = {4}}),
         JormAddq(w.xe, 0, w.d.get(), w.a.get(), w.b.get(), &site, at, at2, -1, 0)),
    BOTH(jorm::add(w.d3, in_place, {1, 20, 3}, {.region = part}),
         JormAddC(w.xe, 0, w.d3.get(), nullptr, c3, &site, nullptr, 0, 0)),
    FORMS(add, JormAdd, JormAddC), OPTION(add, saturate, JormAddq, JormAddqC),
    FORMS(sub, JormSub, JormSubC), OPTION(sub, saturate, JormSubq, JormSubqC),
    FORMS(rsub, JormRSub, JormRSubC), OPTION(rsub, saturate, JormRSubq, JormRSubqC),
    FORMS(mul, JormMul, JormMulC), OPTION(mul, saturate, JormMulq, JormMulqC),
    FORMS(div, JormDiv, JormDivC), OPTION(div, round, JormDivr, JormDivrC),
    FORMS(rdiv, JormRDiv, JormRDivC), OPTION(rdiv, round, JormRDivr, JormRDivrC),
    FORMS(add_squared, JormAddsq, JormAddsqC), FORMS(sub_squared, JormSubsq, JormSubsqC),
    FORMS(rsub_squared, JormRSubsq, JormRSubsqC),
    PLACED(abs_diff, JormAbsDiff, JormAbsDiffC), PLACED(min, JormMin, JormMinC), PLACED(max, JormMax, JormMaxC),
    PLACED(bit_and, JormAnd, JormAndC), PLACED(bit_or, JormOrr, JormOrrC), PLACED(bit_xor, JormXor, JormXorC),
    PRODUCTS(mul_add, JormMulAdd, JormMulAddC, JormMulAddCC), PRODUCTS(mul_sub, JormMulSub, JormMulSubC, JormMulSubCC),
    PRODUCTS(mul_rsub, JormMulRSub, JormMulRSubC, JormMulRSubCC),
    BOTH(jorm::bit_not(w.d, w.a), JormNot(w.xe, 0, w.d.get(), w.a.get(), nullptr, nullptr)),
    BOTH(jorm::negate(w.e, w.f), JormNegate(w.xe, 0, w.e.get(), w.f.get(), nullptr, nullptr, 0, 0)),
    BOTH(jorm::exp(w.e, w.f), JormExp(w.xe, 0, w.e.get(), w.f.get(), nullptr, nullptr, 0, 0)),
    BOTH(jorm::ln(w.e, w.f), JormLn(w.xe, 0, w.e.get(), w.f.get(), nullptr, nullptr, 0, 0)),
    BOTH(jorm::sigmoid(w.e, w.f, 7), JormSigmoidAlpha(WITH_CONSTANT(e, f, k3), 0, 0)),

    BOTH(jorm::copy(w.d, w.a, {.region = part, .at = {1, 2}}), JormCopy(w.xe, 0, w.d.get(), w.a.get(), &site, at)),
    BOTH(jorm::copy(w.d3, w.a3, {.mask = w.mask, .invert = true, .region = part, .at_mask = {1, 2}}),
         JormCopyEx(w.xe, JORM_OPT_MASK_INVERT, w.d3.get(), w.a3.get(), w.mask.get(), &site, nullptr, at)),
    BOTH(jorm::copy_bordered(w.d, w.a, {.border = jorm::border_mode::wrap, .at = {-5, 9}}),
         (JormCopyMkb(w.xe, 0, w.d.get(), w.a.get(), nullptr, std::array{0, -5, 9, 0}.data(),
                      std::array{jorm_border{JORM_BORDER_WRAP, 0, {}}}.data()))),
    BOTH(jorm::copy_bordered(w.d, w.a, {.border = jorm::border_mode::constant, .value = 7, .src_region = part}),
         (JormCopyRMkb(w.xe, 0, w.d.get(), w.a.get(), nullptr, nullptr,
                       std::array{jorm_border{JORM_BORDER_CONST, 0, {7, 7, 7, 7}}}.data(), &site))),
    BOTH(jorm::fill(w.d3, {1, 20, 3}, {.region = part}), JormFill(w.xe, 0, w.d3.get(), &site, c3)),
    BOTH(jorm::fill(w.d3, 7, {.mask = w.mask}), JormFillEx(w.xe, 0, w.d3.get(), w.mask.get(), nullptr, nullptr, k3)),
    BOTH(jorm::fill(w.d3, 7, {.mask = w.mask, .otherwise = {{1, 20, 3}}}),
         JormFillEx2(w.xe, 0, w.d3.get(), w.mask.get(), nullptr, nullptr, k3, c3)),
    BOTH(jorm::gain(w.d3, w.a3, 7, {1, 20, 3}), JormGain(w.xe, 0, w.d3.get(), w.a3.get(), k3, c3, nullptr, nullptr)),
    BOTH(jorm::convert(w.e, w.a), JormVConvert(w.xe, 0, w.e.get(), w.a.get(), nullptr, nullptr, nullptr, nullptr)),
    BOTH(jorm::convert(w.d, w.f, {.to = {{10, 200}}, .region = part, .at = {1, 2}}),
         (JormVConvert(w.xe, 0, w.d.get(), w.f.get(), &site, at, std::array{vrng{10, 200}}.data(), nullptr))),
    BOTH(jorm::rescale(w.d, w.f, {.scale = 7, .offset = {1}, .from = {{-3, 4}}}),
         (JormConvert(w.xe, 0, w.d.get(), w.f.get(), 0, 0, k3, c3, std::array{vrng{-3, 4}}.data()))),
    BOTH(jorm::compare(w.d, w.a, relation::greater, w.b),
         JormCompare(w.xe, 0, w.d.get(), w.a.get(), w.b.get(), nullptr, nullptr, nullptr, JORM_CMP_GREATER)),
    BOTH(jorm::compare(w.d3, w.a3, relation::less_equal, {1, 20, 3}),
         JormCompareC(w.xe, 0, w.d3.get(), w.a3.get(), c3, nullptr, nullptr, JORM_CMP_LESS_EQUAL)),
    BOTH(jorm::compare(w.d, w.a, relation::less, w.b, {.if_true = 7}),
         JormECompare(w.xe, 0, w.d.get(), w.a.get(), w.b.get(), 0, 0, 0, JORM_CMP_LESS, k3, nothing)),
    BOTH(jorm::compare(w.d3, w.a3, relation::equal, 7, {.if_false = {{1, 20, 3}}}),
         JormECompareC(w.xe, 0, w.d3.get(), w.a3.get(), k3, 0, 0, JORM_CMP_EQUAL, nothing, c3)),
    BOTH(jorm::threshold(w.d, w.a, 7),
         (JormThreshold(w.xe, 0, w.d.get(), w.a.get(), 0, 0, nullptr, std::array{7., 0.}.data(), 1))),
    BOTH(jorm::threshold_between(w.d, w.a, 7, 99),
         (JormThreshold(w.xe, 0, w.d.get(), w.a.get(), 0, 0, nullptr, std::array{7., 99.}.data(), 2))),
    BOTH(jorm::threshold_adaptive(w.d, w.a, 7),
         (JormThreshold(w.xe, 0, w.d.get(), w.a.get(), 0, 0, nullptr, std::array{7., nan}.data(), 1))),
    BOTH(jorm::threshold(w.d, w.a, jorm::threshold_method::blur),
         (JormThreshold(w.xe, 0, w.d.get(), w.a.get(), 0, 0, std::array{jorm_thhmethod{5, 0, {}, {}}}.data(), 0, 0))),
    BOTH(jorm::threshold(w.e, w.f, jorm::threshold_method::otsu, {.range = {{-1, 1}}, .bins = 50}),
         (JormThreshold(w.xe, 0, w.e.get(), w.f.get(), 0, 0,
                        std::array{jorm_thhmethod{3 | 16, 0, {{-1, 1}}, {50}}}.data(), 0, 0))),
    BOTH(w.note(jorm::otsu_threshold(w.a)[0]),
         (w.numbers.resize(1), JormComputeThresholdByOtsu(w.xe, 0, w.a.get(), nullptr, w.numbers.data(), 0, 0))),
    BOTH(w.note(jorm::resize(w.d, w.a, {.region = part}).rows),
         (w.note(9. / 23), JormResize(w.xe, 0, w.d.get(), w.a.get(), &site, nullptr, nullptr))),
    BOTH(jorm::resize(w.d, w.a, {.by = {2, -1.5}, .offset = {0, 0.25}}),
         (JormEResize(w.xe, 0, w.d.get(), w.a.get(), nullptr, nullptr, std::array{0., 2., -1.5, 0.}.data(),
                      std::array{0., 0., 0.25, 0.}.data()))),
    BOTH(jorm::matmul(w.e.sub({0, 0, 3, 3}), w.m, w.f.sub({0, 0, 3, 3})),
         JormMulMM(w.xe, 0, w.e.sub({0, 0, 3, 3}).get(), w.m.get(), w.f.sub({0, 0, 3, 3}).get())),
    BOTH(jorm::matvec(w.e.sub({0, 0, 3, 1}), w.m, w.f.sub({0, 0, 1, 3})),
         JormMulMV(w.xe, 0, w.e.sub({0, 0, 3, 1}).get(), w.m.get(), w.f.sub({0, 0, 1, 3}).get())),
    BOTH(jorm::matvec_each(w.d3, w.m, w.a3), JormMulMV_n(w.xe, 0, w.d3.get(), w.m.get(), w.a3.get())),

    BOTH(w.note(jorm::sum(w.a3, {.channels = 5, .region = part})),
         (w.numbers.resize(3), JormSum(w.xe, 0x50, w.a3.get(), &site, w.numbers.data()))),
    BOTH(w.note(jorm::sum(w.a3, {.mask = w.mask})),
         (w.numbers.resize(3), JormSumEx(w.xe, 0, w.a3.get(), w.mask.get(), nullptr, nullptr, w.numbers.data()))),
    BOTH(w.note(jorm::mean(w.a3)), (w.numbers.resize(3), JormMean(w.xe, 0, w.a3.get(), nullptr, w.numbers.data()))),
    BOTH(w.note(jorm::mean(w.a3, {.mask = w.mask, .invert = true, .region = part, .at_mask = {1, 2}})),
         (w.numbers.resize(3), JormMeanEx(w.xe, JORM_OPT_MASK_INVERT, w.a3.get(), w.mask.get(), &site, at,
                                          w.numbers.data()))),
    BOTH(w.note(jorm::minmax(w.a3)),
         JormMinmax(w.xe, 0, w.a3.get(), nullptr, &w.extrema)),
    BOTH(w.note(jorm::minmax(w.f, {.mask = w.mask})),
         JormMinmaxEx(w.xe, 0, w.f.get(), w.mask.get(), nullptr, nullptr, &w.extrema)),
    BOTH(w.note(jorm::box_count(w.a, {3, 5}, {.region = part})[0]),
         (w.numbers.resize(1), JormCountRelBox(w.xe, 0, w.a.get(), &site, &s35, nullptr, w.numbers.data()))),

    OF_WINDOW(box_filter, JORM_FILTER_BOX), OF_WINDOW(min_filter, JORM_FILTER_MIN),
    OF_WINDOW(max_filter, JORM_FILTER_MAX), OF_WINDOW(erode, JORM_FILTER_MIN), OF_WINDOW(dilate, JORM_FILTER_MAX),
    OF_WINDOW(open, JORM_FILTER_OPEN), OF_WINDOW(close, JORM_FILTER_CLOSE), OF_WINDOW(tophat, JORM_FILTER_TOPHAT),
    OF_WINDOW(bothat, JORM_FILTER_BOTHAT),
    OF_MASK(erode, JORM_MORPH_ERODE), OF_MASK(dilate, JORM_MORPH_DILATE), OF_MASK(open, JORM_MORPH_OPEN),
    OF_MASK(close, JORM_MORPH_CLOSE), OF_MASK(tophat, JORM_MORPH_TOPHAT), OF_MASK(bothat, JORM_MORPH_BOTHAT),
    BOTH(jorm::separable_filter(w.d, w.a.sub(part), down, along, {.beyond = jorm::beyond::mirror}),
         (JormSepFilter(w.xe, JORM_OPT_OWN_BORDER, w.d.get(), w.a.sub(part).get(), nullptr, nullptr,
                        std::array{jorm_sepkernel{s35, {down, along}}}.data()))),
    BOTH(jorm::gaussian(w.d3, w.a3, {3, 5}, {.sigma = {1.5, 0.75}, .region = part}),
         JormGaussianFilter(w.xe, 0, w.d3.get(), w.a3.get(), &site, nullptr, &s35, sigmas)),
    BOTH(jorm::firefly(w.d3, w.a3, {3, 5}, {.sigma = {1.5, 0.75}}),
         JormFirefly(w.xe, 0, w.d3.get(), w.a3.get(), nullptr, nullptr, &s35, sigmas, nullptr)),
    BOTH(jorm::firefly(w.d3, w.a3, {3, 5}, {.sigma = {1.5, 0.75}, .bright = {{1, 20, 3}}, .dark = 7}),
         JormFireflyEx(w.xe, 0, w.d3.get(), w.a3.get(), nullptr, nullptr, &s35, sigmas, k3, c3)),
};
// clang-format on
#undef BOTH

TEST(Cxx, FunctionsGiveTheBitsOfTheCallsTheyStandFor) {
    for (const Case &c : cases) {
        World one, other, before;
        ASSERT_NO_THROW(c.cxx(one)) << c.name;
        ASSERT_EQ(c.c(other), JORM_OK) << c.name;
        EXPECT_TRUE(one.bytes == other.bytes && one.numbers == other.numbers) << c.name;
        EXPECT_EQ(std::memcmp(one.floats.data(), other.floats.data(), one.floats.size() * sizeof(float)), 0) << c.name;
        EXPECT_EQ(std::memcmp(&one.extrema, &other.extrema, sizeof one.extrema), 0) << c.name;
        EXPECT_TRUE(one.bytes != before.bytes || one.floats != before.floats || !one.numbers.empty() ||
                    one.extrema.max[0].i)
            << c.name;
    }
}

TEST(Cxx, HistogramsAddUp) {
    World w;
    jorm::histogram h({.channels = 3});
    h.count(w.a3, {.region = {.rows = 10}});
    jorm::histogram moved = std::move(h);
    moved.count(w.a3, {.mask = w.mask, .region = {.row = 10}, .at_mask = {10}});
    std::array<uint32_t, 256> expected = {};
    for (int y = 0; y < w.h; ++y)
        for (int x = 0; x < w.w; ++x) expected[w.a3(y, x, 1)] += y < 10 || w.mask(y, x);
    EXPECT_TRUE(std::ranges::equal(moved[1], expected));
    EXPECT_TRUE(h[1].empty());
    moved.reset();
    EXPECT_EQ(moved.record(1).sum + std::ranges::count(moved[1], 0u), 256);
}

// ---- Views ----

// A matrix class as other libraries have them, and an mdspan of three axes with strides.
struct Matrix {
    int rows, cols;
    unsigned char *data;
    size_t step;
    size_t element = 2;
    int channels() const { return 3; }
    size_t elemSize1() const { return element; }
};
struct Mdspan {
    int16_t *first;
    static constexpr size_t rank() { return 3; }
    int16_t *data_handle() const { return first; }
    size_t extent(size_t axis) const { return std::array{4, 5, 3}[axis]; }
    size_t stride(size_t axis) const { return std::array{20, 4, 1}[axis]; }
};

TEST(Cxx, ViewsNameTheSameElements) {
    std::vector<int16_t> memory(4 * 20 * 2);
    for (size_t i = 0; i < memory.size(); ++i) memory[i] = int16_t(i);
    const auto plain = [](int y, int x, int c, int p) { return p * 80 + y * 20 + x * 4 + c; };
    using View = jorm::view<int16_t>;
    const Matrix matrix = {4, 5, reinterpret_cast<unsigned char *>(memory.data()), 40};
    const View base(std::span<int16_t>(memory),
                    {.rows = 4, .columns = 5, .channels = 3, .row_stride = 40, .pixel_stride = 8});
    jorm::shape two = {.rows = 4, .columns = 5, .channels = 3, .planes = 2, .row_stride = 40, .pixel_stride = 8};
    two.plane_stride = 160;
    const View planes(memory, two), lower = base.sub({.row = 1});
    const jorm::shape upward = {.rows = 4, .columns = 20, .row_stride = -40};
    const jorm::shape planar = {.rows = 4, .columns = 5, .channels = 4, .pixel_stride = 2, .channel_stride = 40};
    const struct {
        const char *name;
        View view;
        std::array<int, 4> extent; // planes, rows, columns, channels
        std::function<int(int, int, int, int)> place;
    } views[] = {
#define PLACE(call) [&](int y, int x, [[maybe_unused]] int c, int) { return call; }
        {"span", base, {1, 4, 5, 3}, plain},
        {"dense", {memory, {4, 5, 4}}, {1, 4, 5, 4}, plain},
        {"bottom up", {&memory[60], upward}, {1, 4, 20, 1}, PLACE((3 - y) * 20 + x)},
        {"planar", {memory, planar}, {1, 4, 5, 4}, PLACE(y * 5 + x + c * 20)},
        {"mdspan", View(Mdspan{memory.data()}), {1, 4, 5, 3}, plain},
        {"matrix", View(matrix), {1, 4, 5, 3}, PLACE(y * 20 + x * 3 + c)},
        {"sub", base.sub({1, 2, 2, jorm::to_end}), {1, 2, 3, 3}, PLACE(plain(y + 1, x + 2, c, 0))},
        {"channel", base.channel(2), {1, 4, 5, 1}, PLACE(plain(y, x, 2, 0))},
        {"vertical", lower.flip_vertical(), {1, 3, 5, 3}, PLACE(plain(3 - y, x, c, 0))},
        {"horizontal", base.flip_horizontal(), {1, 4, 5, 3}, PLACE(plain(y, 4 - x, c, 0))},
        {"planes", planes, {2, 4, 5, 3}, plain},
        {"plane", planes.sub({1, 1}).plane(1), {1, 3, 4, 3}, PLACE(plain(y + 1, x + 1, c, 1))},
#undef PLACE
    };
    for (const auto &v : views) {
        const auto &e = v.extent;
        EXPECT_EQ((std::array{v.view.planes(), v.view.rows(), v.view.columns(), v.view.channels()}), e) << v.name;
        for (int i = 0; i < e[0] * e[1] * e[2] * e[3]; ++i) {
            const int c = i % e[3], x = i / e[3] % e[2], y = i / e[3] / e[2] % e[1], p = i / e[3] / e[2] / e[1];
            ASSERT_EQ(v.view(y, x, c, p), v.place(y, x, c, p)) << v.name << " " << y << " " << x << " " << c;
        }
        const jorm::view<const int16_t> constant = v.view; // reads the same, and operations take it as a source
        std::vector<int16_t> copied(size_t(e[1] * e[2] * e[3]));
        jorm::copy(View(copied, {e[1], e[2], e[3]}), e[0] > 1 ? constant.plane(0) : constant);
        EXPECT_EQ(copied.back(), v.view(e[1] - 1, e[2] - 1, e[3] - 1)) << v.name;
    }
    static_assert(!std::is_convertible_v<jorm::view<const int16_t>, const jorm::target &>);
}

TEST(Cxx, ViewsThatCannotBeAreRefused) {
    std::vector<int16_t> memory(100);
    using View = jorm::view<int16_t>;
    const View view(memory, {10, 10});
    const auto refused = [](auto make) {
        try {
            make();
        } catch (const jorm::error &e) {
            return int64_t(e.status());
        }
        return int64_t(status::ok);
    };
    const jorm::shape shapes[] = {{10, 11},
                                  {0, 10},
                                  {1, 1, 5},
                                  {INT32_MAX, INT32_MAX, 4, INT32_MAX},
                                  {.rows = 2, .columns = 2, .row_stride = -20},
                                  {.rows = 2, .columns = 2, .pixel_stride = 3},
                                  {.rows = 2, .columns = 2, .channels = 2, .channel_stride = int64_t(1) << 33}};
    for (const jorm::shape &s : shapes) EXPECT_EQ(refused([&] { View bad(memory, s); }), JORM_EINVAL) << &s - shapes;
    const Matrix nowhere = {4, 5, nullptr, 40},
                 unlike = {2, 2, reinterpret_cast<unsigned char *>(memory.data()), 40, 4};
    expect_each(int64_t(status::invalid),
                {refused([&] { jorm::view short_array(cross_memory, shapes[0]); }), refused([&] { View bad(nowhere); }),
                 refused([&] { View bad(unlike); }), refused([&] { view.channel(1); }), refused([&] { view.plane(1); }),
                 refused([&] { View().flip_vertical(); }), refused([&] { jorm::histogram bad({.channels = 5}); })});
    EXPECT_EQ(view.sub<nothrow>({.row = 10}).status(), status::empty);
}

// ---- Errors, environments ----

TEST(Cxx, ErrorsBothWays) {
    World w;
    const jorm::view<uint8_t> none;
    const Bytes before = w.bytes;
    const auto both = [](status s, auto returning, auto throwing) {
        EXPECT_EQ(returning().status(), s);
        EXPECT_FALSE(returning());
        try {
            throwing();
            ADD_FAILURE() << "nothing thrown";
        } catch (const std::exception &e) {
            EXPECT_STREQ(e.what(), jorm_status_str(int64_t(s)));
        }
    };
#define ERROR(s, function, ...)                                                                                        \
    both(                                                                                                              \
        s, [&] { return jorm::function<nothrow>(__VA_ARGS__); }, [&] { return jorm::function(__VA_ARGS__); })
    ERROR(status::invalid, add, w.d, w.a3, w.b);
    ERROR(status::empty, add, w.d, w.a, 7, {.region = {.row = 23}});
    ERROR(status::invalid, mean, none);
    ERROR(status::unsupported, box_filter, w.d3, w.a3, {3, 3});
    ERROR(status::invalid, otsu_threshold, none);
    ERROR(status::invalid, convert, w.d3, w.f);
    ERROR(status::invalid, mser, w.a, {.dark = false, .bright = false});
    ERROR(status::unsupported, flood, w.a3);
#undef ERROR
    EXPECT_EQ(w.bytes, before);
    auto mean = jorm::mean<nothrow>(w.a);
    ASSERT_TRUE(mean);
    EXPECT_EQ(mean.value()[0], jorm::mean(w.a)[0]);
    EXPECT_THROW(jorm::mean<nothrow>(none).value(), jorm::error);
}

TEST(Cxx, EnvironmentsByThreadAndByOption) {
    World w;
    jorm_xe *here = w.xe;
    EXPECT_EQ(here, jorm::environment::local().get());
    std::thread([&] {
        jorm_xe *const there = jorm::environment::local().get();
        EXPECT_NE(there, here);
        jorm::environment own(1 << 16);
        jorm::gaussian(w.d, w.a, {3, 3}, {.env = &own});
        EXPECT_TRUE(own.get()->stack && !there->stack); // only the one given was used
        jorm::gaussian(w.d, w.a, {3, 3});
        EXPECT_TRUE(there->stack);
    }).join();

    const int32_t decided = _G_jorm_use_simd;
    for (const auto &[before, after] : {std::pair(-1, 1), {0, 0}, {1, 1}}) {
        _G_jorm_use_simd = before;
        jorm::environment first;
        EXPECT_EQ(_G_jorm_use_simd, after);
    }
    _G_jorm_use_simd = decided;
}

// ---- Regions ----

using Pixels = std::vector<int32_t>;

template <class Range> Pixels listed(const Range &range) {
    Pixels out;
    for (const jorm::position p : range) out.insert(out.end(), {p.row, p.column});
    return out;
}
Pixels fetched(const jorm::region &r, const uint32_t *words, int32_t proper, int32_t h, int32_t w) {
    jorm_vector v = {};
    jorm_fwtsr_fetchpix_$2d(&v, r.get(), words, proper, h, w);
    const auto *first = static_cast<const int32_t *>(v.data);
    const Pixels out(first, first + 2 * v.count);
    _UlMfree(v.data);
    return out;
}

TEST(Cxx, TreesAsRanges) {
    World w;
    for (const bool every : {false, true}) {
        std::vector<uint32_t> words(size_t(w.h * w.w + 2 * (w.w + 2)));
        jorm_fwtsres store = {};
        JormFWTSRESinit(&store, words.data(), nullptr);
        jorm_fwtsparams params = {&store, 1, 2, 0, 0};
        ASSERT_EQ(JormWatershed(w.xe, every ? 0 : JORM_OPT_FAST, w.a.get(), &site, &params), JORM_OK);
        jorm::flood_options options = {.bright = true, .pixels = true, .every = every, .shift = 2, .region = part};
        if (every) jorm::fill(w.mask, 255), options.mask = w.mask; // leaves nothing out
        const jorm::region_tree tree = jorm::flood(w.a, options);
        const auto same = [&](const jorm::region &r, const jorm_fwtsr *c) {
            return r.level() == c->level && r.area() == c->area;
        };
        std::vector<const jorm_fwtsr *> expected;
        jorm_fwtsr_walk_$preorder(
            store.root,
            [](jorm_fwtsr *r, void *to, int32_t) {
                static_cast<std::vector<const jorm_fwtsr *> *>(to)->push_back(r);
                return 1;
            },
            &expected);
        ASSERT_GT(expected.size(), every ? 9u : 0u);
        ASSERT_TRUE(std::ranges::equal(tree, expected, same)) << every;
        for (size_t i = 0; const jorm::region r : tree) {
            const jorm::region c(expected[i++], {});
            EXPECT_EQ(listed(r.pixels()), fetched(c, store.words, 0, 9, 11));
            EXPECT_EQ(listed(r.own_pixels()), fetched(c, store.words, 1, 9, 11));
            EXPECT_EQ(std::ranges::distance(r.children()), jorm_fwtsr_countcld(r.get(), 0));
            EXPECT_EQ(std::ranges::distance(r.all()), 1 + jorm_fwtsr_countcld(r.get(), 1));
            EXPECT_TRUE(r.is_root() || std::ranges::count(r.parent().children(), r) == 1);
        }
        JormFWTSRESfini(&store);
    }
    EXPECT_TRUE(jorm::flood(w.a.sub({.columns = 1})).empty());
    EXPECT_TRUE(listed(jorm::flood(w.a).root().pixels()).empty()); // no pixels were asked for
}

TEST(Cxx, StableRegions) {
    std::vector<uint8_t> memory(60 * 80, 128);
    const jorm::view picture(memory, {60, 80});
    jorm::fill(picture, 20, {.region = {10, 10, 20, 12}});
    jorm::fill(picture, 230, {.region = {35, 40, 8, 30}});
    const auto found = jorm::mser(picture, {.pixels = true, .max_variation = 0.5f});
    const jorm::mser_filter large = {.min_area = 100};
    const auto regions = found.regions(large);
    ASSERT_EQ(regions.size(), 2u);
    EXPECT_EQ(found.dark().size() + found.bright().size(), found.regions().size());
    const auto bounds = found.bounds(large);
    const auto ellipses = found.ellipses(large);
    const jorm_2d_rect expected[] = {{10, 10, 19, 11}, {35, 40, 7, 29}};
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_TRUE(jorm_2d_rect_equal(&bounds[i], &expected[i]));
        std::vector<jorm_2d_pt> pixels;
        for (const jorm::position p : regions[i].pixels()) pixels.push_back({p.row, p.column});
        EXPECT_EQ(int32_t(pixels.size()), regions[i].area());
        EXPECT_FLOAT_EQ(ellipses[i].semi2, float(jorm::ellipse(pixels).semi2));
    }
    const jorm::region_tree tree = jorm::flood(picture);
    const auto stable = tree.stable({.min_area = 100, .max_area = 1000, .max_variation = 0.5f});
    ASSERT_EQ(stable.size(), 1u);
    EXPECT_EQ(stable[0].area(), 240);
}

// ---- Points, sorting ----

template <class T> class CxxPoints : public testing::Test {};
using Families = testing::Types<jorm_2d_pt, jorm_f2d_pt, jorm_r2d_pt>;
TYPED_TEST_SUITE(CxxPoints, Families);

TYPED_TEST(CxxPoints, Figures) {
    using Number = decltype(TypeParam::x);
    std::vector<TypeParam> p; // a rectangle of 6 by 4 full of points, in no order
    for (int i = 0; i < 35; ++i) p.push_back({Number(i * 11 % 35 % 7), Number(i * 11 % 35 / 7)});
    auto hull = jorm::convex_hull(p);
    ASSERT_EQ(hull.size(), 4u);
    EXPECT_EQ(jorm::area(hull), 24);
    EXPECT_EQ(jorm::perimeter(hull), 20);
    EXPECT_TRUE(jorm::is_convex(hull) && jorm::is_clockwise(hull));
    EXPECT_TRUE(jorm::contains(hull, {3, 4}) && !jorm::contains(hull, {3, 5}));
    const auto bounds = jorm::bounding_rect(p);
    EXPECT_EQ(bounds.width * 10 + bounds.height, 64);
    const auto quad = jorm::min_area_quad(p);
    EXPECT_EQ(quad.pt[2].x * 10 + quad.pt[2].y, 64);
    EXPECT_EQ(jorm::centroid(p).x, 3);
    EXPECT_EQ(jorm::polygon_centroid(hull).y, 2);
    EXPECT_DOUBLE_EQ(jorm::moments(p).m00 - 9, jorm::central_moments(p).m00);
    EXPECT_DOUBLE_EQ(jorm::central_moments(p).m11, 2);
    EXPECT_DOUBLE_EQ(jorm::polygon_central_moments(hull).m00, 3);
    EXPECT_DOUBLE_EQ(jorm::polygon_moments(hull).m00, 12);
    EXPECT_FLOAT_EQ(float(jorm::ellipse(p).semi2), 4);
    jorm::sort_by_angle(p);
    EXPECT_EQ(p.back().y, 0);
    EXPECT_TRUE(jorm::convex_hull(std::vector<TypeParam>()).empty());
}

TEST(Cxx, SortsAndSearches) {
    struct Item {
        int key, order;
        auto operator<=>(const Item &) const = default;
    };
    std::vector<Item> items;
    for (int i = 0; i < 200; ++i) items.push_back({i * 37 % 50, i});
    const auto sorted_by = [&](auto sort) {
        auto copy = items;
        sort(copy);
        return copy;
    };
    auto expected = items;
    std::ranges::sort(expected);
    const auto by_key = [](const Item &a, const Item &b) { return a.key - b.key; };
    EXPECT_EQ(sorted_by([](auto &v) { jorm::quick_sort(v); }), expected);
    EXPECT_EQ(sorted_by([](auto &v) { jorm::heap_sort(v); }), expected);
    EXPECT_EQ(sorted_by([](auto &v) { jorm::select_sort(v); }), expected);
    EXPECT_EQ(sorted_by([&](auto &v) { jorm::insert_sort(v, by_key); }), expected);
    EXPECT_EQ(jorm::search(expected, {7, 0}, by_key)->key, 7);
    EXPECT_EQ(jorm::search(expected, {50, 0}), nullptr);
}

} // namespace
