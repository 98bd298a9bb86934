// Matrix products over random types, layouts and levels, against sums in the documented order.
#include "jorm/matrix.h"
#include "support/picture.hpp"

namespace {

const uint32_t reals[] = {JORM_F32, JORM_F64}, types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32, JORM_F64};

// Magnitudes far apart make the order of a sum matter; now and then what is no number.
void fill(Random &r, Picture &p, bool special) {
    const uint32_t type = p.a.eltype;
    p.fill([&] {
        if (type < JORM_F32) return std::floor(std::uniform_real_distribution<>(lowest(type), highest(type) + 1)(r));
        if (special && r.one_in(20)) return r.of(std::array{nan, inf, -inf, -0., 1e300});
        const double v = std::uniform_real_distribution<>(-1, 1)(r);
        return std::ldexp(v, r.in(-8, r.in(-8, 24)));
    });
}

double rounded(uint32_t type, double v) {
    if (type >= JORM_F32) return type == JORM_F32 ? float(v) : v;
    return std::isnan(v) ? 0 : std::clamp(std::nearbyint(v) + 0., lowest(type), highest(type));
}

// The sum of a(k) b(k) for k < n.
template <class A, class B> double sum_of(int n, A a, B b) {
    double sum = 0;
    for (int k = 0; k < n; ++k) {
        const volatile double product = a(k) * b(k);
        sum = sum + product;
    }
    return sum;
}

double at(const Picture &p, int y, int x) { return p.get({0, y, x, 0}); }
double product(const Picture &a, const Picture &b, int y, int x) {
    return sum_of(
        extent_of(a.a)[2], [&](int k) { return at(a, y, k); }, [&](int k) { return at(b, k, x); });
}

// Afterwards `dst` holds what `expected` says, rounded.
template <class Call, class F> void expect_result(Picture &memory, const jorm_array &dst, Call call, F expected) {
    expect_block(memory, dst, {}, extent_of(dst), JORM_OK, call,
                 [&](const Index &i) { return rounded(dst.eltype, expected(i)); });
}

void check_product(Random &r, jorm_xe *xe, int h, int k, int w, bool special) {
    Picture a(r, r.of(reals), {1, h, k, 1}), b(r, r.of(reals), {1, k, w, 1}), dst(r, r.of(reals), {1, h, w, 1});
    fill(r, a, special), fill(r, b, special);
    expect_result(
        dst, dst.a, [&] { return JormMulMM(xe, 0, &dst.a, &a.a, &b.a); },
        [&](const Index &i) { return product(a, b, i[1], i[2]); });

    const bool upright = r.one_in(2);
    Picture v(r, r.of(reals), upright ? Index{1, k, 1, 1} : Index{1, 1, k, 1});
    Picture out(r, r.of(reals), r.one_in(2) ? Index{1, h, 1, 1} : Index{1, 1, h, 1});
    fill(r, v, special);
    const auto element = [&](int j) { return upright ? at(v, j, 0) : at(v, 0, j); };
    expect_result(
        out, out.a, [&] { return JormMulMV(xe, 0, &out.a, &a.a, &v.a); },
        [&](const Index &i) {
            return sum_of(
                k, [&](int j) { return at(a, i[1] + i[2], j); }, element);
        });
}

enum class Place { apart, same, shifted };

// Vectors in pixels or in rows; the source apart, the destination itself, or in its way.
void check_vectors(Random &r, jorm_xe *xe, bool in_pixels, Place place, int most) {
    const int axes = r.in(3, 4), planes = axes == 4 ? r.in(1, 3) : 1, rows = r.in(1, 5), n = r.in(1, most);
    int h = in_pixels ? r.in(1, 4) : r.in(1, 30), k = in_pixels ? r.in(1, 4) : r.in(1, 30);
    const uint32_t type = r.of(types), src_type = place == Place::apart ? r.of(types) : type;
    if (place != Place::apart) h = k;
    const Index size = in_pixels ? Index{planes, rows, n, h} : Index{planes, rows * 4, h, 1};
    const Index from = in_pixels ? Index{planes, rows, n, k} : Index{planes, rows * 4, k, 1};
    Picture m(r, r.of(reals), {1, h, k, 1}), dst(r, type, size, false, axes);
    m.fill([&] { return r.one_in(30) ? r.of(std::array{nan, inf, 3e9}) : r.in(-2000, 2000) / 1024.; });
    Picture src(r, src_type, from, false, axes);
    jorm_array v = src.a, d = dst.a;
    fill(r, place == Place::apart ? src : dst, place == Place::apart);
    if (place != Place::apart) v = dst.a;
    if (place == Place::shifted) { // both one row less, one of them from one row further on
        if (size[1] < 2) return;
        --v.extent[1], --d.extent[1];
        v.loff += v.stride[1];
    }
    std::vector<double> source;
    const Index count = extent_of(v);
    each(count, [&](const Index &i) { source.push_back(load(v.eltype, element(v, i))); });
    const auto at_source = [&](int z, int y, int x, int c) {
        return source[size_t(((z * count[1] + y) * count[2] + x) * count[3] + c)];
    };
    expect_result(
        dst, d, [&] { return JormMulMV_n(xe, 0, &d, &m.a, &v); },
        [&](const Index &i) {
            const auto of_matrix = [&](int j) { return at(m, in_pixels ? i[3] : i[2], j); };
            const auto of_vector = [&](int j) {
                return in_pixels ? at_source(i[0], i[1], i[2], j) : at_source(i[0], i[1], j, 0);
            };
            return sum_of(k, of_matrix, of_vector);
        });
}

TEST(Matrix, Products) {
    Random r(51);
    Env xe;
    for (int i = 0; i < 660; ++i) {
        const int most = i < 600 ? 12 : 70, h = r.in(1, most), k = r.in(1, most), w = r.in(1, most);
        check_product(r, xe, h, k, w, r.one_in(3));
    }
    // Beyond every block: several rows of blocks, pieces of the sums, and rows too long for many of them.
    for (const auto &[h, k, w] : {std::array{150, 400, 30}, {9, 9000, 5}, {1, 500, 60}})
        check_product(r, xe, h, k, w, false);
}

TEST(Matrix, ManyVectors) {
    Random r(52);
    Env xe;
    for (int i = 0; i < 900; ++i) {
        const bool in_pixels = r.one_in(2);
        const Place place = r.of(std::array{Place::apart, Place::same, Place::shifted});
        check_vectors(r, xe, in_pixels, place, r.one_in(8) ? 700 : 90);
    }
}

// Sums over channels that go into the last channel of the next row; a matrix right before the picture.
TEST(Matrix, ArraysOfUnlikeChannels) {
    Env xe;
    float memory[16 + 3 * 32], wanted[16];
    for (int i = 0; i < 16 + 3 * 32; ++i) memory[i] = i < 16 ? 1 : float(i * i % 37);
    for (int i = 0; i < 16; ++i)
        wanted[i] = memory[16 + 4 * i] + memory[17 + 4 * i] + memory[18 + 4 * i] + memory[19 + 4 * i];
    const auto array = [](int rows, int pixels, int channels, int row_stride, int channel_stride, float *base) {
        const int32_t extent[] = {rows, pixels, channels}, stride[] = {row_stride, row_stride / pixels, channel_stride};
        jorm_array a;
        return *_jorm_array__$xtrn(&a, JORM_F32, 3, extent, stride, base);
    };
    const jorm_array source = array(2, 8, 4, 128, 4, memory + 16), sums = array(2, 8, 1, 128, 4, memory + 16 + 35);
    const jorm_array row = array(1, 4, 1, 16, 4, memory), square = array(4, 4, 1, 16, 400, memory);
    EXPECT_EQ(JormMulMV_n(xe, 0, &sums, &row, &source), JORM_OK);
    for (int i = 0; i < 16; ++i) EXPECT_EQ(memory[16 + 35 + 4 * i], wanted[i]) << i;
    EXPECT_EQ(JormMulMV_n(xe, 0, &source, &square, &source), JORM_OK);
}

TEST(Matrix, Refusals) {
    Random r(53);
    const auto square = [&](uint32_t type) { return Picture(r, type, {1, 4, 4, 1}, true); };
    const Picture a = square(JORM_F32), b = square(JORM_F32), out = square(JORM_F32), whole = square(JORM_S32);
    const Picture wide(r, JORM_F32, {1, 4, 5, 1}, true), colour(r, JORM_U8, {1, 3, 3, 3}, true);
    Env xe;
    const Bytes before = out.memory;
    jorm_array part = a.a, three = a.a; // rows 1 to 3, rows 0 to 2
    part.loff += part.stride[1], part.extent[1] = three.extent[1] = 3;
    expect_each(JORM_EINVAL, {JormMulMM(xe, 0, &out.a, &a.a, &wide.a), JormMulMM(xe, 0, &out.a, &wide.a, &b.a),
                              JormMulMM(xe, 0, &a.a, &a.a, &b.a), JormMulMM(xe, 0, &b.a, &a.a, &b.a),
                              JormMulMM(xe, 0, &part, &three, &b.a), JormMulMV(xe, 0, &out.a, &a.a, &b.a),
                              JormMulMV_n(xe, 0, &colour.a, &a.a, &colour.a), JormMulMV_n(xe, 0, &out.a, &out.a, &b.a),
                              JormMulMV_n(xe, 0, &wide.a, &a.a, &b.a)});
    expect_each(JORM_ENOTSUP, {JormMulMM(xe, 0, &out.a, &whole.a, &b.a), JormMulMM(xe, 0, &whole.a, &a.a, &b.a),
                               JormMulMV_n(xe, 0, &out.a, &whole.a, &b.a)});
    EXPECT_EQ(out.memory, before);
}

} // namespace
