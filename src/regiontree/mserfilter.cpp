// Filters over the lists of stable regions, and what is computed for the regions they keep.
#include "regiontree/regions.hpp"

#include "jorm/geometry.h"
#include "jorm/regiontree.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

static_assert(sizeof(jorm_mserfilt) == 40 && sizeof(jorm_mserfeats) == 96);
static_assert(offsetof(jorm_mserfeats, moments) == 24 && offsetof(jorm_mserfeats, pixels) == 72);

namespace jorm {
namespace {

using Region = const jorm_fwtsr;

// One of the two lists of a generation.
struct List {
    jorm_fwtsr *const *regions;
    uint32_t count;
    const uint32_t *words; // null when the flood left none
    int32_t width;
    int32_t delta;
    int32_t inversion; // what listed levels were combined with

    bool known() const { return words && width > 0; }
};

List dark_list(const jorm_mser &m) {
    return {m.dark, m.dark_count, m.dark_store ? m.dark_store->words : nullptr, m.volume[2], m.delta >> m.shift, 0};
}

List bright_list(const jorm_mser &m) {
    const uint32_t *const words = m.bright_store ? m.bright_store->words : nullptr;
    return {m.bright, m.bright_count, words, m.volume[2], m.delta >> m.shift, 255 >> m.shift};
}

// ---- Criteria ----

int32_t flood_level(const List &list, Region *r) { return r->mser ? r->level ^ list.inversion : r->level; }

// The growth that the detection looked at.
float variation(const List &list, Region *r) {
    const int32_t level = flood_level(list, r);
    for (Region *above = r->parent; above; above = above->parent) {
        const int32_t span = std::abs(flood_level(list, above) - level);
        if (span >= list.delta) return span == list.delta ? __JormMSERregionVariationAbs(r, above) : 0;
    }
    return 0;
}

// Of the ellipse with the region's moments; NaN when its pixels are not known.
double axis_ratio(const List &list, Region *r) {
    if (!list.known()) return NAN;
    jorm_moments m = {};
    const PixelOf pixel_of(list.width);
    m.count = for_subtree(r, list.words, [&](int32_t number) {
        const Pixel pixel = pixel_of(number);
        JormWTSMF_update2D(&m, pixel.row, pixel.column);
    });
    const jorm_r2d_moment2 central = {jorm_mf_Myy(&m), jorm_mf_Mxy(&m), jorm_mf_Mxx(&m)};
    double smaller_larger[2];
    jorm_r2d_moment2c_eigvals(smaller_larger, &central);
    if (!(smaller_larger[1] > 0)) return 1;
    return smaller_larger[0] > 0 ? std::sqrt(smaller_larger[0] / smaller_larger[1]) : 0;
}

bool passes(const jorm_mserfilt &f, const List &list, Region *r) {
    if (r->area < f.min_area || (f.max_area > 0 && r->area > f.max_area)) return false;
    if (r->level < f.min_level || (f.level_end > 0 && r->level >= f.level_end)) return false;
    if (f.max_variation > 0 && !(variation(list, r) <= f.max_variation)) return false;
    if (!(f.min_axis_ratio > 0) && !(f.max_axis_ratio > 0)) return true;
    const double ratio = axis_ratio(list, r);
    return ratio >= f.min_axis_ratio && (f.max_axis_ratio > 0 ? ratio <= f.max_axis_ratio : true);
}

// ---- Nesting ----
// The lists are in post-order: what lies inside a region stands right before it.

bool contains(Region *outer, Region *inner) {
    for (Region *r = inner->parent; r; r = r->parent) {
        if (r == outer) return true;
    }
    return false;
}

uint64_t keep_innermost(jorm_fwtsr **regions, uint64_t n) {
    uint64_t kept = 0;
    Region *before = nullptr;
    for (uint64_t i = 0; i < n; ++i) {
        jorm_fwtsr *const r = regions[i];
        if (!before || !contains(r, before)) regions[kept++] = r;
        before = r;
    }
    return kept;
}

uint64_t keep_outermost(jorm_fwtsr **regions, uint64_t n) {
    uint64_t from = n;
    for (uint64_t i = n; i-- > 0;) {
        if (from == n || !contains(regions[from], regions[i])) regions[--from] = regions[i];
    }
    std::memmove(regions, regions + from, (n - from) * sizeof(jorm_fwtsr *));
    return n - from;
}

bool select(jorm_vector &out, const List &list, const jorm_mserfilt &filter) {
    if (!list.count || !list.regions) return true;
    if (!reserve(out, list.count, sizeof(jorm_fwtsr *))) return false;
    jorm_fwtsr **const to = end_of<jorm_fwtsr *>(out);
    uint64_t n = 0;
    for (uint32_t i = 0; i < list.count; ++i) {
        if (passes(filter, list, list.regions[i])) to[n++] = list.regions[i];
    }
    if (filter.nesting == JORM_MSER_OUTERMOST) n = keep_outermost(to, n);
    if (filter.nesting == JORM_MSER_INNERMOST) n = keep_innermost(to, n);
    out.count += n;
    return true;
}

// The regions that a filter keeps, dark before bright.
struct Selection {
    LocalVector regions;
    List lists[2];
    uint64_t dark_count = 0;
    bool complete = false; // false without memory

    Selection(const jorm_mser &mser, const jorm_mserfilt *given) : lists{dark_list(mser), bright_list(mser)} {
        const jorm_mserfilt all = {}, &filter = given ? *given : all;
        if (!select(regions, lists[0], filter)) return;
        dark_count = regions.count;
        complete = select(regions, lists[1], filter);
    }

    uint64_t count() const { return regions.count; }
    jorm_fwtsr *operator[](uint64_t i) const { return static_cast<jorm_fwtsr **>(regions.data)[i]; }
    const List &list_of(uint64_t i) const { return lists[i >= dark_count]; }
};

// ---- Groups ----

uint64_t pixels_of(const jorm_pixgroup &group) { return group.pixels && group.count > 0 ? uint64_t(group.count) : 0; }

// Regions from..end of the selection: their pixels one after the other, and a group for each.
void write_groups(jorm_pixgroup *group, Pixel *const to, const Selection &kept, uint64_t from, uint64_t end) {
    const auto write = [&](auto pixels_to) {
        Pixel *next = to;
        for (uint64_t i = from; i < end; ++i) {
            const List &list = kept.list_of(i);
            const int32_t n = list.known() ? pixels_to(next, kept[i], list) : 0;
            group[i - from] = {n ? &next->row : nullptr, n};
            next += n;
        }
    };
    ListWriter writer(std::max(kept.lists[0].width, 1));
    write([&](Pixel *next, Region *r, const List &list) { return writer.add_subtree(next, r, list.words); });
    if (writer.finish()) return;
    write([&](Pixel *next, Region *r, const List &list) { return write_subtree(next, r, list.words, list.width); });
}

// Groups and pixels move into one new block: groups that a vector holds already take their pixels along.
bool append_groups(jorm_vector &out, const Selection &kept) {
    const auto *const old = static_cast<const jorm_pixgroup *>(out.data);
    const uint64_t groups = out.count + kept.count();
    uint64_t pixels = 0;
    for (uint64_t i = 0; i < out.count; ++i) pixels += pixels_of(old[i]);
    for (uint64_t i = 0; i < kept.count(); ++i) pixels += kept[i]->area > 0 ? uint64_t(kept[i]->area) : 0;
    jorm_vector fresh = {};
    const uint64_t bytes = groups * sizeof(jorm_pixgroup) + pixels * sizeof(Pixel);
    if (groups == out.count) return true;
    if (!reserve(fresh, bytes, 1) || !fresh.data) return false;

    auto *const group = static_cast<jorm_pixgroup *>(fresh.data);
    Pixel *to = reinterpret_cast<Pixel *>(group + groups);
    for (uint64_t i = 0; i < out.count; ++i) {
        const uint64_t n = pixels_of(old[i]);
        if (n) std::memcpy(static_cast<void *>(to), old[i].pixels, n * sizeof(Pixel));
        group[i] = {n ? &to->row : nullptr, int64_t(n)};
        to += n;
    }
    write_groups(group + out.count, to, kept, 0, kept.count());
    _UlMfree(out.data);
    out = {groups, groups, fresh.data};
    return true;
}

using Query = jorm_vector *(*)(jorm_vector *, const jorm_vector *);

// Figures, entry_bytes each, of some regions at a time, all in the same memory.
jorm_vector *query(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter, Query figures,
                   size_t entry_bytes) {
    constexpr uint64_t most_groups = 64, most_pixels = 16384;
    if (!out || !mser) return out;
    const Selection kept(*mser, filter);
    const auto room_of = [&](uint64_t i) { return uint64_t(std::max(kept[i]->area, 0)); };
    uint64_t room = most_pixels;
    for (uint64_t i = 0; i < kept.count(); ++i) room = std::max(room, room_of(i));
    LocalVector pixels;
    if (!kept.complete || !reserve(pixels, room, sizeof(Pixel)) || !reserve(*out, kept.count(), entry_bytes))
        return out;
    jorm_pixgroup group[most_groups];
    for (uint64_t from = 0, end = 0; from < kept.count(); from = end) {
        uint64_t n = 0;
        while (end < kept.count() && end - from < most_groups && n + room_of(end) <= room) n += room_of(end++);
        write_groups(group, static_cast<Pixel *>(pixels.data), kept, from, end);
        const jorm_vector groups = {end - from, end - from, group};
        figures(out, &groups);
    }
    return out;
}

// ---- Features ----

void *data_of(void *block, const jorm_wtsfeature &feature) { return static_cast<char *>(block) + feature.offset; }

void destroy(void *block, const jorm_wtslsc &layout) {
    for (int32_t i = 0; i < layout.count; ++i) {
        const jorm_wtsfeature &feature = layout.features[i];
        if (feature.destroy) feature.destroy(data_of(block, feature), nullptr);
    }
}

void start(void *data, const jorm_wtsfeature &feature) {
    std::memset(data, 0, feature.size);
    if (feature.init) feature.init(data, feature.parameter);
}

// False when a pixel list could not take the pixels.
bool finish(void *data, const jorm_wtsfeature &feature, const jorm_wtsrgn *block, const jorm_vector &pixels) {
    if (feature.update2D) feature.update2D(data, pixels.data, int32_t(pixels.count));
    if (feature.magic == JORM_WTS_PIXELS && static_cast<jorm_pixlist *>(data)->count != pixels.count) return false;
    if (feature.ongather) feature.ongather(data, block);
    return true;
}

// The pixels of a region in place of what the vector held; false without memory.
bool fetch(jorm_vector &pixels, Region *region, const uint32_t *words, int32_t width) {
    pixels.count = 0;
    jorm_fwtsr_fetchpix_$2d(&pixels, region, words, 0, 1, width);
    return pixels.count || region->area < 1;
}

bool gather(void *block, const jorm_wtslsc &layout, jorm_fwtsr *region, const uint32_t *words, jorm_vector &pixels) {
    const int32_t width = layout.volume[2];
    const bool known = words && width > 0;
    if (known && !fetch(pixels, region, words, width)) return false;
    auto *const head = static_cast<jorm_wtsrgn *>(block);
    *head = {region, region->area, {}};
    for (int32_t i = 0; i < layout.count; ++i) start(data_of(block, layout.features[i]), layout.features[i]);
    bool complete = true;
    for (int32_t i = 0; known && complete && i < layout.count; ++i)
        complete = finish(data_of(block, layout.features[i]), layout.features[i], head, pixels);
    if (!complete) destroy(block, layout);
    return complete;
}

// One block per region; words_of(i) are the words of region i.
template <class WordsOf>
bool append_blocks(jorm_vector &blocks, const jorm_wtslsc &layout, jorm_fwtsr *const *regions, uint64_t count,
                   WordsOf words_of) {
    const size_t size = size_t(layout.block_size);
    if (!reserve(blocks, count, size)) return false;
    char *const to = static_cast<char *>(blocks.data) + blocks.count * size;
    LocalVector pixels;
    for (uint64_t i = 0; i < count; ++i) {
        std::memset(to + i * size, 0, size);
        if (gather(to + i * size, layout, regions[i], words_of(i), pixels)) continue;
        while (i-- > 0) destroy(to + i * size, layout);
        return false;
    }
    blocks.count += count;
    return true;
}

constexpr struct {
    const char *name;
    uint32_t bit;
} feature_names[] = {{"moments", JORM_MSER_MOMENTS}, {"pixels", JORM_MSER_PIXELS}};

uint32_t feature_bit(const char *name) {
    for (const auto &feature : feature_names) {
        if (name && !std::strcmp(name, feature.name)) return feature.bit;
    }
    return 0;
}

// ---- Filters ----

jorm_mserfilt *filter_all(jorm_mserfilt *filter) {
    if (filter) *filter = {};
    return filter;
}

jorm_mserfilt *filter_ex(jorm_mserfilt *filter, int32_t min_area, int32_t max_area, float max_variation) {
    if (!filter_all(filter)) return nullptr;
    filter->min_area = min_area;
    filter->max_area = max_area;
    filter->max_variation = max_variation;
    return filter;
}

jorm_mserfilt *filter_feats(jorm_mserfilt *filter, const char *const *names, int32_t count) {
    if (!filter_all(filter)) return nullptr;
    for (int32_t i = 0; i < count; ++i) {
        const uint32_t bit = feature_bit(names[i]);
        if (!bit) return nullptr;
        filter->features |= bit;
    }
    return filter;
}

jorm_mserfilt *filter_mf(jorm_mserfilt *filter, float min_axis_ratio, float max_axis_ratio) {
    if (!filter_all(filter)) return nullptr;
    filter->min_axis_ratio = min_axis_ratio;
    filter->max_axis_ratio = max_axis_ratio;
    return filter;
}

} // namespace
} // namespace jorm

using namespace jorm;

#define FILTER_ALL(name)                                                                                               \
    jorm_mserfilt *name(jorm_mserfilt *filter) { return filter_all(filter); }
#define FILTER_EX(name)                                                                                                \
    jorm_mserfilt *name(jorm_mserfilt *filter, int32_t min_area, int32_t max_area, float max_variation) {              \
        return filter_ex(filter, min_area, max_area, max_variation);                                                   \
    }
#define FILTER_FEATS(name)                                                                                             \
    jorm_mserfilt *name(jorm_mserfilt *filter, const char *const *names, int32_t count) {                              \
        return filter_feats(filter, names, count);                                                                     \
    }
#define FILTER_MF(name)                                                                                                \
    jorm_mserfilt *name(jorm_mserfilt *filter, float min_axis_ratio, float max_axis_ratio) {                           \
        return filter_mf(filter, min_axis_ratio, max_axis_ratio);                                                      \
    }
// clang-format off
FILTER_ALL(_jorm_mserfilt__$)
FILTER_ALL(_jorm_fmserfilt__$)
FILTER_EX(_jorm_mserfilt__$ex)
FILTER_EX(_jorm_fmserfilt__$ex)
FILTER_FEATS(_jorm_mserfilt__$feats)
FILTER_FEATS(_jorm_fmserfilt__$feats)
FILTER_MF(_jorm_mserfilt__$mf)
FILTER_MF(_jorm_fmserfilt__$mf)
// clang-format on

// ---- Listed regions ----

jorm_vector *jorm_fmserf_regions(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter) {
    if (!out || !mser) return out;
    const Selection kept(*mser, filter);
    if (!kept.complete || !reserve(*out, kept.count(), sizeof(jorm_fwtsr *))) return out;
    for (uint64_t i = 0; i < kept.count(); ++i) end_of<jorm_fwtsr *>(*out)[i] = kept[i];
    out->count += kept.count();
    return out;
}

jorm_vector *jorm_fmserf_pixreg_$2d(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter) {
    if (!out || !mser) return out;
    const Selection kept(*mser, filter);
    if (kept.complete) append_groups(*out, kept);
    return out;
}

jorm_vector *jorm_fmserf_brect_$2d(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter) {
    return query(out, mser, filter, jorm_fwtsr_brect_$2d, sizeof(jorm_2d_rect));
}

jorm_vector *jorm_fmserf_ellipse_$f2d(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter) {
    return query(out, mser, filter, jorm_fwtsr_ellipse_$f2d, sizeof(jorm_f2d_ell));
}

// ---- Gathering ----

void *JormMSERgatherFeatureOfRegion(void *data, const jorm_wtsfeature *feature, const jorm_fwtsr *region,
                                    const uint32_t *words, int32_t width) {
    if (!data || !feature || !region) return nullptr;
    start(data, *feature);
    if (!words || width < 1) return data;
    LocalVector pixels;
    const jorm_wtsrgn block = {const_cast<jorm_fwtsr *>(region), region->area, {}};
    if (fetch(pixels, region, words, width) && finish(data, *feature, &block, pixels)) return data;
    if (feature->destroy) feature->destroy(data, nullptr);
    return nullptr;
}

void *JormMSERgatherFeaturesOfRegion(void *block, const jorm_wtslsc *layout, jorm_fwtsr *region,
                                     const uint32_t *words) {
    if (!block || !layout || !region) return nullptr;
    LocalVector pixels;
    return gather(block, *layout, region, words, pixels) ? block : nullptr;
}

jorm_vector *JormMSERgatherFeatures(jorm_vector *blocks, const jorm_wtslsc *layout, jorm_fwtsr *const *regions,
                                    uint64_t count, const uint32_t *words) {
    if (blocks && layout && regions) append_blocks(*blocks, *layout, regions, count, [=](uint64_t) { return words; });
    return blocks;
}

jorm_vector *JormGatherMSERsFeatures(jorm_vector *out, const jorm_mser *mser, const jorm_mserfilt *filter) {
    if (!out || !mser) return out;
    const Selection kept(*mser, filter);
    if (!kept.complete) return out;
    jorm_wtsfeature both[2];
    JormWTSMFinitFeatureDs(&both[0], nullptr);
    JormWTSPFinitFeatureDs(&both[1], nullptr);
    jorm_wtslsc layout;
    JormWTSLSCinit2D(&layout, both, 2, mser->volume[1], mser->volume[2], mser->volume[5]);
    const uint32_t wanted = filter ? filter->features : 0;
    if (wanted == JORM_MSER_PIXELS) layout.features = &both[1];
    if (wanted == JORM_MSER_PIXELS || wanted == JORM_MSER_MOMENTS) layout.count = 1;
    append_blocks(*out, layout, static_cast<jorm_fwtsr **>(kept.regions.data), kept.count(),
                  [&](uint64_t i) { return kept.list_of(i).words; });
    return out;
}

void JormMSERfreeFeatures(jorm_vector *features) {
    if (!features) return;
    for (uint64_t i = 0; i < features->count; ++i)
        __JormWTSPF__destroy__(&static_cast<jorm_mserfeats *>(features->data)[i].pixels, nullptr);
    _UlMfree(features->data);
    *features = {};
}
