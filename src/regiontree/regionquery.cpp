// Counting, fetching and walking the regions of a flood; figures of groups of pixels.
#include "regiontree/regions.hpp"

#include "jorm/geometry.h"
#include "jorm/pointset.h"
#include "jorm/regiontree.h"

static_assert(sizeof(jorm_pixgroup) == 16 && sizeof(jorm_vector) == 24);

namespace jorm {
namespace {

bool is_stable(const jorm_fwtsr *region) { return region->mser != 0; }

// ---- Figures of one group ----

struct Points {
    const jorm_2d_pt *data;
    int32_t n;
};

Points points_of(const jorm_pixgroup &group) {
    const int64_t n = group.count < 0 ? 0 : group.count > INT32_MAX ? INT32_MAX : group.count;
    return {reinterpret_cast<const jorm_2d_pt *>(group.pixels), group.pixels ? int32_t(n) : 0};
}

template <class Figure> using Of = Figure *(*)(Figure *, const jorm_2d_pt *, int32_t);

jorm_moments *moments(jorm_moments *out, const jorm_2d_pt *points, int32_t n) {
    *out = {};
    out->count = n;
    JormWTSMF_update2D_n(out, points, n);
    return out;
}

jorm_f2d_ell *ellipse(jorm_f2d_ell *out, const jorm_2d_pt *points, int32_t n) {
    jorm_f2d_pt centre;
    jorm_r2d_moment2 second;
    return __jorm_f2d_ellipse__$moment2$c(out, jorm_2d_ptv_centroid_f(&centre, points, n),
                                          jorm_2d_ptv_moment2_c(&second, points, n), 2.0);
}

jorm_r2d_ell *ellipse(jorm_r2d_ell *out, const jorm_2d_pt *points, int32_t n) {
    jorm_r2d_pt centre;
    jorm_r2d_moment2 second;
    return __jorm_r2d_ellipse__$moment2$c(out, jorm_2d_ptv_centroid(&centre, points, n),
                                          jorm_2d_ptv_moment2_c(&second, points, n), 2.0);
}

template <class Figure> jorm_vector *append_figures(jorm_vector *out, const jorm_vector *groups, Of<Figure> figure) {
    if (!out || !groups || !reserve(*out, groups->count, sizeof(Figure))) return out;
    const auto *const group = static_cast<const jorm_pixgroup *>(groups->data);
    Figure *const to = end_of<Figure>(*out);
    for (uint64_t i = 0; i < groups->count; ++i) {
        const Points points = points_of(group[i]);
        figure(to + i, points.data, points.n);
    }
    out->count += groups->count;
    return out;
}

} // namespace

int32_t ListWriter::add_subtree(Pixel *to, const jorm_fwtsr *region, const uint32_t *words) {
    int32_t left = region->area;
    if (left <= 0) return 0;
    walk_preorder(region, [&](const jorm_fwtsr *r, int32_t) {
        const int32_t proper = proper_count(r), n = proper < left ? proper : left;
        if (n < 1) return 1;
        add(to, words, uint32_t(r->head), n);
        to += n;
        left -= n;
        return 1;
    });
    return region->area - left;
}

void ListWriter::step() {
    int32_t n = lane_[0].left;
    for (int i = 1; i < used_; ++i) n = lane_[i].left < n ? lane_[i].left : n;
    for (; n > 0 && complete_; --n)
        for (int i = 0; i < used_; ++i) advance(lane_[i]);
    int kept = 0;
    for (int i = 0; i < used_; ++i)
        if (complete_ && lane_[i].left > 0) lane_[kept++] = lane_[i];
    used_ = kept;
}

void ListWriter::advance(Lane &lane) {
    if (lane.pixel >= JORM_NO_PIXEL) {
        complete_ = false;
        return;
    }
    *lane.to++ = pixel_of_(int32_t(lane.pixel));
    lane.pixel = lane.words[lane.pixel];
    --lane.left;
}

int32_t write_subtree(Pixel *to, const jorm_fwtsr *region, const uint32_t *words, int32_t width) {
    ListWriter writer(width);
    const int32_t n = writer.add_subtree(to, region, words);
    if (writer.finish()) return n;
    const PixelOf pixel_of(width);
    return for_subtree(region, words, [&](int32_t pixel) { *to++ = pixel_of(pixel); });
}

} // namespace jorm

using namespace jorm;

// ---- Counting ----

int32_t jorm_fwtsr_countcld(const jorm_fwtsr *region, int32_t recursive) {
    if (recursive) return jorm_fwtsr_countcld_$R(region);
    return region ? count_children(region) : 0;
}

int32_t jorm_fwtsr_countcld_$R(const jorm_fwtsr *region) {
    return region ? count_descendants(region, [](const jorm_fwtsr *) { return true; }) : 0;
}

int32_t jorm_fwtsr_countcld_$mser(const jorm_fwtsr *region, int32_t recursive) {
    if (recursive) return jorm_fwtsr_countcld_$mser$R(region);
    int32_t n = 0;
    for (const jorm_fwtsr *child = region ? region->child : nullptr; child; child = child->next) n += is_stable(child);
    return n;
}

int32_t jorm_fwtsr_countcld_$mser$R(const jorm_fwtsr *region) {
    return region ? count_descendants(region, is_stable) : 0;
}

int32_t jorm_fwtsr_countpix_$proper(const jorm_fwtsr *region) { return region ? proper_count(region) : 0; }

// ---- Pixels ----

void jorm_fwtsr_fixup(jorm_fwtsr *region, const uint32_t *words) {
    if (!region || !words) return;
    int32_t last = region->head;
    for_list(region, words, proper_count(region), [&](int32_t pixel) { last = pixel; });
    region->seed = last;
}

jorm_vector *jorm_fwtsr_fetchpix_$2d(jorm_vector *pixels, const jorm_fwtsr *region, const uint32_t *words,
                                     int32_t proper, int32_t, int32_t width) {
    if (!pixels || !region || !words || width < 1) return pixels;
    const int32_t most = proper ? proper_count(region) : region->area;
    if (most < 1 || !reserve(*pixels, uint64_t(most), sizeof(Pixel))) return pixels;
    Pixel *to = end_of<Pixel>(*pixels);
    const PixelOf pixel_of(width);
    const int32_t n = proper ? for_list(region, words, most, [&](int32_t pixel) { *to++ = pixel_of(pixel); })
                             : write_subtree(to, region, words, width);
    pixels->count += uint64_t(n);
    return pixels;
}

jorm_vector *jorm_fwtsr_fetchpix(jorm_vector *pixels, const jorm_fwtsr *region, const uint32_t *words, int32_t proper,
                                 int32_t ndim, const int32_t *dims) {
    if (ndim < 2 || !dims) return pixels;
    return jorm_fwtsr_fetchpix_$2d(pixels, region, words, proper, ndim > 2 ? dims[ndim - 3] : 1, dims[ndim - 2]);
}

int32_t jorm_fwtsr_pixenum_$2d(jorm_vector *pixels, const jorm_fwtsr *region, const uint32_t *words, int32_t height,
                               int32_t width) {
    if (!pixels || !region || region->area < 1) return 0;
    const uint64_t before = pixels->count;
    jorm_fwtsr_fetchpix_$2d(pixels, region, words, 0, height, width);
    return pixels->count > before ? 1 + jorm_fwtsr_countcld_$R(region) : 0;
}

// ---- Walks ----

int32_t jorm_fwtsr_walk_$preorder(jorm_fwtsr *region, jorm_fwtsr_visit callback, void *context) {
    return region ? walk_preorder(region, [=](jorm_fwtsr *r, int32_t i) { return callback(r, context, i); }) : 0;
}

int32_t jorm_fwtsr_walk_$inorder(jorm_fwtsr *region, jorm_fwtsr_visit callback, void *context) {
    return region ? walk_inorder(region, [=](jorm_fwtsr *r, int32_t i) { return callback(r, context, i); }) : 0;
}

int32_t jorm_fwtsr_walk_$postorder(jorm_fwtsr *region, jorm_fwtsr_visit callback, void *context) {
    return region ? walk_postorder(region, [=](jorm_fwtsr *r, int32_t i) { return callback(r, context, i); }) : 0;
}

int32_t jorm_fwtsr_walk(jorm_fwtsr *region, int32_t order, jorm_fwtsr_visit callback, void *context) {
    switch (order) {
    case JORM_REGIONS_PREORDER:
        return jorm_fwtsr_walk_$preorder(region, callback, context);
    case JORM_REGIONS_INORDER:
        return jorm_fwtsr_walk_$inorder(region, callback, context);
    case JORM_REGIONS_POSTORDER:
        return jorm_fwtsr_walk_$postorder(region, callback, context);
    default:
        return 0;
    }
}

// ---- Figures of groups ----

#define FIGURES(name, Figure, figure)                                                                                  \
    jorm_vector *name(jorm_vector *out, const jorm_vector *groups) {                                                   \
        return append_figures<Figure>(out, groups, figure);                                                            \
    }

// clang-format off
FIGURES(jorm_fwtsr_brect_$2d, jorm_2d_rect, jorm_2d_ptv_brect)
FIGURES(jorm_fwtsr_m1_$2d, jorm_r2d_moment1, jorm_2d_ptv_moment1)
FIGURES(jorm_fwtsr_m2_$2d, jorm_r2d_moment2, jorm_2d_ptv_moment2)
FIGURES(jorm_fwtsr_m2c_$2d, jorm_r2d_moment2, jorm_2d_ptv_moment2_c)
FIGURES(jorm_fwtsr_mf_$2d, jorm_moments, moments)
FIGURES(jorm_fwtsr_ellipse_$f2d, jorm_f2d_ell, ellipse)
FIGURES(jorm_fwtsr_ellipse_$r2d, jorm_r2d_ell, ellipse)
FIGURES(jorm_fwtsr_minbquad_$f2d, jorm_f2d_quad, jorm_2d_ptv_minbquad_$f)
FIGURES(jorm_fwtsr_minbquad_$r2d, jorm_r2d_quad, jorm_2d_ptv_minbquad_$r)
// clang-format on
