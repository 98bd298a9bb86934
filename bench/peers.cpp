// Joins the library to a run of the peer benchmark, which provides peer_bench.hpp: every case below is timed as "jorm"
// with the vectorised kernels and as "jorm_off" without. bench/compare builds and runs it.
#include "jorm.h"
#include "peer_bench.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace {

jorm_array describe(const pb::Plane &plane) {
    static const uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32}; // in the order of pb::Elem
    const int32_t extent[3] = {plane.h, plane.w, plane.ch};                  // the benchmark's planes are dense
    jorm_array a;
    _jorm_array__$xtrn(&a, types[int(plane.elem)], 3, extent, nullptr, plane.data);
    return a;
}

// The benchmark's planes, and results of sizes of our own in memory of the same kind.
struct Planes : pb::Data {
    pb::Plane framed2, framed16; // with a margin of so many pixels
    pb::Plane half, two_thirds;  // of the size
    pb::Plane smooth;            // u8a smoothed, as the peers' cases of that name have it

    explicit Planes(const pb::Data &d)
        : pb::Data(d), framed2(frame(2)), framed16(frame(16)), half(plane(w / 2, h / 2)),
          two_thirds(plane(w * 2 / 3, h * 2 / 3)), smooth(frame(0)) {
        if (filters) smoothen();
    }
    ~Planes() {
        for (const pb::Plane *p : {&framed2, &framed16, &half, &two_thirds, &smooth}) std::free(p->data);
    }
    Planes(const Planes &) = delete;

private:
    pb::Plane frame(int margin) const { return plane(w + 2 * margin, h + 2 * margin); }
    static pb::Plane plane(int w, int h) {
        constexpr size_t block = size_t(2) << 20;
        pb::Plane p = {nullptr, w, h, 1, pb::Elem::u8, size_t(w)};
        const size_t bytes = (p.count() + block - 1) / block * block;
        p.data = std::memset(std::aligned_alloc(block, bytes), 0, bytes);
        return p;
    }
    // A Gaussian of 7 x 7 pixels, sigma 1.5, mirrored at the edges.
    void smoothen() {
        double weight[7], sum = 0;
        for (int k = 0; k < 7; ++k) sum += weight[k] = std::exp(-(k - 3) * (k - 3) / (2 * 1.5 * 1.5));
        const auto mirror = [](int i, int n) { return i < 0 ? -i : i >= n ? 2 * n - 2 - i : i; };
        std::vector<double> across(size_t(w) * h);
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                for (int k = 0; k < 7; ++k)
                    across[size_t(y) * w + x] +=
                        weight[k] / sum * u8a.as<uint8_t>()[y * u8a.stride + mirror(x + k - 3, w)];
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) {
                double v = 0;
                for (int k = 0; k < 7; ++k) v += weight[k] / sum * across[size_t(mirror(y + k - 3, h)) * w + x];
                smooth.as<uint8_t>()[size_t(y) * w + x] = uint8_t(std::lround(v));
            }
    }
};

// What the cases work on: the planes as descriptors, under the same names, and room for scalar results.
struct Scene {
    Planes planes;
    jorm_array u8a, u8b, u8c3, mask, s16a, s16b, s16w, f32a, f32b, f32w, out8, out16, out32f, framed2, framed16;
    jorm_array half, two_thirds, smooth;
    jorm_xe *xe;
    jorm_mser mser = {}, listed = {}; // without pixel lists and with them
    jorm_fwtsres stores[2] = {};
    std::vector<uint32_t> words[2];
    jorm_vector pixels = {}, boxes = {};
    double values[8];

    explicit Scene(const pb::Data &d)
        : planes(d), u8a(describe(d.u8a)), u8b(describe(d.u8b)), u8c3(describe(d.u8c3)), mask(describe(d.mask)),
          s16a(describe(d.s16a)), s16b(describe(d.s16b)), s16w(describe(d.s16w)), f32a(describe(d.f32a)),
          f32b(describe(d.f32b)), f32w(describe(d.f32w)), out8(describe(d.out8)), out16(describe(d.out16)),
          out32f(describe(d.out32f)), framed2(describe(planes.framed2)), framed16(describe(planes.framed16)),
          half(describe(planes.half)), two_thirds(describe(planes.two_thirds)), smooth(describe(planes.smooth)),
          xe(JormXEopen(nullptr, nullptr, 0)) {
        const float pixels = float(d.w) * float(d.h);
        mser.delta = 5;
        mser.min_area_fraction = 60 / pixels;
        mser.max_area_fraction = 14400 / pixels;
        mser.max_variation = 0.25f;
        mser.min_diversity = 0.2f;
        listed = mser;
        listed.dark_store = &stores[0], listed.bright_store = &stores[1];
    }
    ~Scene() {
        JormFWTSRESfini(mser.dark_store);
        JormFWTSRESfini(mser.bright_store);
        for (jorm_fwtsres &store : stores) JormFWTSRESfini(&store);
        for (const jorm_vector *v : {&mser.regions, &listed.regions, &pixels, &boxes}) _UlMfree(v->data);
        JormXEclose(xe);
    }

    // Carries one range of values onto another.
    int64_t spread(const jorm_array &dst, vrng to, const jorm_array &src, vrng from) {
        return JormVConvert(xe, 0, &dst, &src, nullptr, nullptr, &to, &from);
    }

    // A square window.
    int64_t filter(const jorm_array &dst, const jorm_array &src, uint32_t kind, int32_t n) {
        jorm_seshape window;
        return JormFilter(xe, 0, &dst, &src, nullptr, nullptr, kind, __jorm_seshape__$g2(&window, n, n));
    }

    // How often three of 256 values occur.
    int64_t histogram(const jorm_array &a) {
        jorm_histdesc d = {};
        d.nbins = 256, d.hi = 255;
        jorm_histogram h;
        if (int64_t status = _jorm_histogram__$xe(&h, &d, xe); status != JORM_OK) return status;
        const int64_t status = JormHistogram(xe, 0, &a, nullptr, 0, &h);
        values[0] = h.bins[40], values[1] = h.bins[100], values[2] = h.bins[180];
        jorm_hist_fini_$xe(&h, xe);
        return status;
    }

    int64_t gauss(const jorm_array &dst, const jorm_array &src, int32_t n, double sigma) {
        jorm_seshape window;
        const double sigmas[2] = {sigma, sigma};
        return JormGaussianFilter(xe, 0, &dst, &src, nullptr, nullptr, __jorm_seshape__$g2(&window, n, n), sigmas);
    }
    int64_t weigh7(const double *weights) {
        const jorm_sepkernel kernel = {{{0, 3, 3, 0}, {1, 7, 7, 1}}, {weights, weights}};
        return JormSepFilter(xe, 0, &out8, &u8a, nullptr, nullptr, &kernel);
    }
    int64_t weigh7_symmetric() {
        double weights[7];
        jorm__computegauskernel1(weights, 3, 7, 1.4);
        return weigh7(weights);
    }

    // The disk of 15 by 15 that peers call an ellipse.
    int64_t erode_ellipse() {
        uint8_t mask[15][15] = {};
        for (int y = 0; y < 15; ++y) {
            const int reach = int(std::lrint(7 * std::sqrt((49 - (y - 7) * (y - 7)) / 49.0)));
            std::memset(mask[y] + 7 - reach, 255, size_t(2 * reach + 1));
        }
        jorm_strel ellipse = {{0, 7, 7, 0}, {}};
        jorm_array_make(&ellipse.mask, JORM_U8, 15, 15, 1, 0, mask);
        return JormMorphop(xe, 0, &out8, &u8a, nullptr, nullptr, JORM_MORPH_ERODE, &ellipse);
    }

    // Minimum and maximum, then the row and the column of each.
    int64_t extrema(const jorm_array &a) {
        jorm_minmax mm;
        mm.request = JORM_WANT_MIN | JORM_WANT_MAX;
        const int64_t status = JormMinmax(xe, 0, &a, nullptr, &mm);
        const jorm_extremum &lo = mm.min[0], &hi = mm.max[0];
        const double found[] = {lo.f, hi.f, double(lo.row), double(lo.column), double(hi.row), double(hi.column)};
        std::copy(found, found + 6, values);
        return status;
    }

    // How many stable regions, dark ones (0) or both kinds (2).
    int64_t stable(const jorm_array &a, uint16_t passes) {
        mser.passes = passes;
        const int64_t status = JormGenerateFMSERs(xe, 0, &a, nullptr, &mser);
        values[0] = double(mser.regions.count);
        return status;
    }

    // The same with the pixels and the rectangle of each of them.
    int64_t stable_lists(const jorm_array &a, uint16_t passes) {
        for (int i = 0; i < 2 && words[i].empty(); ++i) {
            words[i].resize(size_t(a.extent[1]) * a.extent[2] + 2 * (size_t(a.extent[2]) + 2));
            JormFWTSRESinit(&stores[i], words[i].data(), nullptr);
        }
        listed.passes = passes;
        const int64_t status = JormGenerateFMSERs(xe, 0, &a, nullptr, &listed);
        _UlMfree(pixels.data);
        pixels = {};
        boxes.count = 0;
        jorm_fmserf_pixreg_$2d(&pixels, &listed, nullptr);
        jorm_fwtsr_brect_$2d(&boxes, &pixels);
        values[0] = double(boxes.count);
        return status;
    }
};

// A case fills the plane `result`, or, when that is null, the first `count` values of the scene.
struct Case {
    const char *name;
    const pb::Plane Planes::*result;
    int count;
    int64_t (*run)(Scene &);
    bool filters = false;   // only at the size of the filter cases
    bool by_result = false; // the cost of a pixel of the result instead of the source
};

constexpr std::nullptr_t no = nullptr; // the whole picture, from its start
constexpr double c37[] = {37}, c1_75[] = {1.75}, c93[] = {93}, c128[] = {128}, c255[] = {255}, c0[] = {0};
constexpr jorm_thhmethod otsu = {JORM_THRESHOLD_OTSU, 0, {}, {}};
constexpr double any7[] = {-0.05, 0.11, 0.23, 0.37, 0.29, 0.12, -0.07};
constexpr jorm_border reflect101 = {JORM_BORDER_REFLECT101, 0, {}};
constexpr int32_t margin2[] = {0, -2, -2, 0}, margin16[] = {0, -16, -16, 0};
constexpr auto out8 = &pb::Data::out8, out16 = &pb::Data::out16, out32f = &pb::Data::out32f;

// clang-format off
const Case cases[] = {
    {"add_u8_sat", out8, 0, [](Scene &s) { return JormAddq(s.xe, 0, &s.out8, &s.u8a, &s.u8b, no, no, no, 0, 0); }},
    {"add_u8_wrap", out8, 0, [](Scene &s) { return JormAdd(s.xe, 0, &s.out8, &s.u8a, &s.u8b, no, no, no, 0, 0); }},
    {"add_s16_sat", out16, 0, [](Scene &s) { return JormAddq(s.xe, 0, &s.out16, &s.s16a, &s.s16b, no, no, no, 0, 0); }},
    {"add_s16_wrap", out16, 0, [](Scene &s) { return JormAdd(s.xe, 0, &s.out16, &s.s16a, &s.s16b, no, no, no, 0, 0); }},
    {"add_f32", out32f, 0, [](Scene &s) { return JormAdd(s.xe, 0, &s.out32f, &s.f32a, &s.f32b, no, no, no, 0, 0); }},
    {"add_u8u8_s16", out16, 0, [](Scene &s) { return JormAdd(s.xe, 0, &s.out16, &s.u8a, &s.u8b, no, no, no, 0, 0); }},
    {"addC_u8_sat", out8, 0, [](Scene &s) { return JormAddqC(s.xe, 0, &s.out8, &s.u8a, c37, no, no, 0, 0); }},
    {"addC_u8_wrap", out8, 0, [](Scene &s) { return JormAddC(s.xe, 0, &s.out8, &s.u8a, c37, no, no, 0, 0); }},
    {"sub_u8_sat", out8, 0, [](Scene &s) { return JormSubq(s.xe, 0, &s.out8, &s.u8a, &s.u8b, no, no, no, 0, 0); }},
    {"mul_f32", out32f, 0, [](Scene &s) { return JormMul(s.xe, 0, &s.out32f, &s.f32a, &s.f32b, no, no, no, 0, 0); }},
    {"mul_u8_scaled", out8, 0, [](Scene &s) { return JormMul(s.xe, 0, &s.out8, &s.u8a, &s.u8b, no, no, no, -8, 0); }},
    {"div_f32", out32f, 0, [](Scene &s) { return JormDiv(s.xe, 0, &s.out32f, &s.f32a, &s.f32b, no, no, no, 0, 0); }},
    {"and_u8", out8, 0, [](Scene &s) { return JormAnd(s.xe, 0, &s.out8, &s.u8a, &s.u8b, no, no, no); }},
    {"not_u8", out8, 0, [](Scene &s) { return JormNot(s.xe, 0, &s.out8, &s.u8a, no, no); }},
    {"mlaC_f32", out32f, 0, [](Scene &s) { return JormMulAddC(s.xe, 0, &s.out32f, &s.f32a, &s.f32b, c1_75, no, no, no, 0, 0); }},
    {"cmp_u8_gt", out8, 0, [](Scene &s) { return JormCompare(s.xe, 0, &s.out8, &s.u8a, &s.u8b, no, no, no, JORM_CMP_GREATER); }},
    {"cmpC_u8_gt", out8, 0, [](Scene &s) { return JormCompareC(s.xe, 0, &s.out8, &s.u8a, c128, no, no, JORM_CMP_GREATER); }},
    {"cmp_f32_gt", out8, 0, [](Scene &s) { return JormCompare(s.xe, 0, &s.out8, &s.f32a, &s.f32b, no, no, no, JORM_CMP_GREATER); }},
    {"threshold_u8", out8, 0, [](Scene &s) { return JormECompareC(s.xe, 0, &s.out8, &s.u8a, c128, no, no, JORM_CMP_GREATER, c255, c0); }},
    {"copy_u8", out8, 0, [](Scene &s) { return JormCopy(s.xe, 0, &s.out8, &s.u8a, no, no); }},
    {"copy_u8_masked", out8, 0, [](Scene &s) { return JormCopyEx(s.xe, 0, &s.out8, &s.u8a, &s.mask, no, no, no); }},
    {"fill_u8", out8, 0, [](Scene &s) { return JormFill(s.xe, 0, &s.out8, no, c93); }},
    {"fill_u8_masked", out8, 0, [](Scene &s) { return JormFillEx(s.xe, 0, &s.out8, &s.mask, no, no, c93); }},
    {"cvt_u8_f32", out32f, 0, [](Scene &s) { return JormVConvert(s.xe, 0, &s.out32f, &s.u8a, no, no, no, no); }},
    {"cvt_f32_u8", out8, 0, [](Scene &s) { return JormVConvert(s.xe, 0, &s.out8, &s.f32w, no, no, no, no); }},
    {"cvt_s16_u8", out8, 0, [](Scene &s) { return JormVConvert(s.xe, 0, &s.out8, &s.s16w, no, no, no, no); }},
    {"cvt_u8_s16", out16, 0, [](Scene &s) { return JormVConvert(s.xe, 0, &s.out16, &s.u8a, no, no, no, no); }},
    {"cvtscale_u8_f32", out32f, 0, [](Scene &s) { return s.spread(s.out32f, {-0.5, 0.5}, s.u8a, {0, 255}); }},
    {"cvtscale_f32_u8", out8, 0, [](Scene &s) { return s.spread(s.out8, {0, 255}, s.f32a, {20.0 / 300, 275.0 / 300}); }},
    {"sum_u8", nullptr, 1, [](Scene &s) { return JormSum(s.xe, 0, &s.u8a, no, s.values); }},
    {"sum_f32", nullptr, 1, [](Scene &s) { return JormSum(s.xe, 0, &s.f32a, no, s.values); }},
    {"sum_u8c3", nullptr, 3, [](Scene &s) { return JormSum(s.xe, 0, &s.u8c3, no, s.values); }},
    {"mean_u8", nullptr, 1, [](Scene &s) { return JormMean(s.xe, 0, &s.u8a, no, s.values); }},
    {"mean_f32", nullptr, 1, [](Scene &s) { return JormMean(s.xe, 0, &s.f32a, no, s.values); }},
    {"minmaxloc_u8", nullptr, 6, [](Scene &s) { return s.extrema(s.u8a); }},
    {"minmaxloc_s16", nullptr, 6, [](Scene &s) { return s.extrema(s.s16a); }},
    {"minmaxloc_f32", nullptr, 6, [](Scene &s) { return s.extrema(s.f32a); }},
    {"minmax_u8", nullptr, 2, [](Scene &s) { return s.extrema(s.u8a); }},
    {"minmax_s16", nullptr, 2, [](Scene &s) { return s.extrema(s.s16a); }},
    {"minmax_f32", nullptr, 2, [](Scene &s) { return s.extrema(s.f32a); }},
    {"otsu_threshold_u8", out8, 0, [](Scene &s) { return JormThreshold(s.xe, 0, &s.out8, &s.u8a, no, no, &otsu, no, 0); }},
    {"hist_u8_256", nullptr, 3, [](Scene &s) { return s.histogram(s.u8a); }},
    {"mkborder_u8_r101_2", &Planes::framed2, 0, [](Scene &s) { return JormCopyMkb(s.xe, 0, &s.framed2, &s.u8a, no, margin2, &reflect101); }, true},
    {"mkborder_u8_r101_16", &Planes::framed16, 0, [](Scene &s) { return JormCopyMkb(s.xe, 0, &s.framed16, &s.u8a, no, margin16, &reflect101); }, true},
    {"box_u8_3x3", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_BOX, 3); }, true},
    {"box_u8_5x5", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_BOX, 5); }, true},
    {"box_u8_31x31", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_BOX, 31); }, true},
    {"box_f32_5x5", out32f, 0, [](Scene &s) { return s.filter(s.out32f, s.f32a, JORM_FILTER_BOX, 5); }, true},
    {"erode_u8_3x3", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_MIN, 3); }, true},
    {"erode_u8_5x5", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_MIN, 5); }, true},
    {"erode_u8_31x31", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_MIN, 31); }, true},
    {"dilate_f32_5x5", out32f, 0, [](Scene &s) { return s.filter(s.out32f, s.f32a, JORM_FILTER_MAX, 5); }, true},
    {"gauss_u8_5x5", out8, 0, [](Scene &s) { return s.gauss(s.out8, s.u8a, 5, 1.1); }, true},
    {"gauss_u8_15x15", out8, 0, [](Scene &s) { return s.gauss(s.out8, s.u8a, 15, 2.6); }, true},
    {"gauss_f32_5x5", out32f, 0, [](Scene &s) { return s.gauss(s.out32f, s.f32a, 5, 1.1); }, true},
    {"sepfilter_u8_7x7_sym", out8, 0, [](Scene &s) { return s.weigh7_symmetric(); }, true},
    {"sepfilter_u8_7x7_any", out8, 0, [](Scene &s) { return s.weigh7(any7); }, true},
    {"erode_u8_ellipse15", out8, 0, [](Scene &s) { return s.erode_ellipse(); }, true},
    {"close_u8_5x5", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_CLOSE, 5); }, true},
    {"tophat_u8_5x5", out8, 0, [](Scene &s) { return s.filter(s.out8, s.u8a, JORM_FILTER_TOPHAT, 5); }, true},
    {"resize_nn_u8_to_960x540", &Planes::half, 0, [](Scene &s) { return JormResize(s.xe, 0, &s.half, &s.u8a, no, no, no); }, true, true},
    {"resize_nn_u8_to_1280x720", &Planes::two_thirds, 0, [](Scene &s) { return JormResize(s.xe, 0, &s.two_thirds, &s.u8a, no, no, no); }, true, true},
    {"mser_one_u8", nullptr, 1, [](Scene &s) { return s.stable(s.u8a, 0); }, true},
    {"mser_both_u8", nullptr, 1, [](Scene &s) { return s.stable(s.u8a, 2); }, true},
    {"mser_one_u8_smooth", nullptr, 1, [](Scene &s) { return s.stable(s.smooth, 0); }, true},
    {"mser_both_u8_smooth", nullptr, 1, [](Scene &s) { return s.stable(s.smooth, 2); }, true},
};
// clang-format on

// Cases in another form, beside the one of the same name.
const Case with_lists[] = {
    {"mser_one_u8", nullptr, 1, [](Scene &s) { return s.stable_lists(s.u8a, 0); }, true},
    {"mser_both_u8", nullptr, 1, [](Scene &s) { return s.stable_lists(s.u8a, 2); }, true},
    {"mser_one_u8_smooth", nullptr, 1, [](Scene &s) { return s.stable_lists(s.smooth, 0); }, true},
    {"mser_both_u8_smooth", nullptr, 1, [](Scene &s) { return s.stable_lists(s.smooth, 2); }, true},
};

void add(pb::Registry &registry, const pb::Data &data, const std::shared_ptr<Scene> &scene, const Case &c,
         const char *peer, int32_t simd) {
    const auto run = [scene, simd, f = c.run] {
        _G_jorm_use_simd = simd;
        return f(*scene);
    };
    const pb::Plane &counted = c.by_result ? scene->planes.*c.result : data.u8a;
    pb::Entry &entry =
        registry.add(std::string(c.name) + "@" + data.tag, peer, double(counted.w) * counted.h, [run] { run(); });
    if (c.result)
        entry.result = scene->planes.*c.result;
    else
        entry.values = [run, scene, n = c.count] {
            run();
            return std::vector<double>(scene->values, scene->values + n);
        };
}

} // namespace

void pb::register_extra(Registry &registry, const Data &data) {
    const auto scene = std::make_shared<Scene>(data);
    for (const Case &c : cases) {
        if (c.filters && !data.filters) continue;
        if (const int64_t status = c.run(*scene); status < 0) {
            std::fprintf(stderr, "%s@%s left out: %s\n", c.name, data.tag.c_str(), jorm_status_str(status));
            continue;
        }
        add(registry, data, scene, c, "jorm", 1);
        add(registry, data, scene, c, "jorm_off", 0);
    }
    for (const Case &c : with_lists)
        if (data.filters) add(registry, data, scene, c, "jorm_lists", 1);
}

void pb::register_extra_geometry(Registry &registry, const std::string &case_name, Points points) {
    const auto hull = std::make_shared<std::vector<jorm_2d_pt>>(points.n);
    const auto values = [=] {
        const auto *xy = reinterpret_cast<const jorm_2d_pt *>(points.xy);
        return std::vector<double>{double(jorm_2d_ptv_convexhull(hull->data(), xy, points.n))};
    };
    registry.add(case_name, "jorm", points.n, [=] { values(); }).values = values;
}

void pb::register_extra_sort(Registry &registry, const std::string &case_name, Ints ints) {
    const auto sorted = std::make_shared<std::vector<int32_t>>(ints.n);
    const auto run = [=] { // like the peers, from a fresh copy each time
        sorted->assign(ints.v, ints.v + ints.n);
        const jorm_ulcmp compare = [](const void *a, const void *b, void *) {
            const int32_t x = *static_cast<const int32_t *>(a), y = *static_cast<const int32_t *>(b);
            return int32_t(x > y) - int32_t(x < y);
        };
        UlQuickSort(sorted->data(), sorted->size(), sizeof(int32_t), compare, nullptr);
    };
    const auto check = [=] {
        run();
        const std::vector<int32_t> &s = *sorted;
        return std::vector<double>{double(s.front()), double(s[s.size() / 2]), double(s.back())};
    };
    registry.add(case_name, "jorm", ints.n, run).values = check;
}
