// Queries, filters and gathered features over made-up floods, against the plain lists that the floods were made from.
#include "jorm/geometry.h"
#include "jorm/regiontree.h"
#include "support/failures.hpp"
#include "support/picture.hpp"

namespace {

using Place = std::array<int32_t, 2>;
using Places = std::vector<Place>;

// A tree of regions over the pixels of a picture, each with a list in random order.
struct Flood {
    int32_t height, width;
    std::vector<jorm_fwtsr> regions; // the root first, children after their parents
    std::vector<std::vector<int32_t>> own;
    std::vector<uint32_t> words;
    jorm_fwtsres store = {};

    Flood(Random &r, int count, int inversion = 0) : height(r.in(1, 40)), width(r.in(2, 40)) {
        regions.resize(size_t(count));
        own.resize(size_t(count));
        words.assign(size_t(height) * size_t(width), 0xAAAAAAAA);
        std::vector<int32_t> pixels(words.size());
        for (size_t i = 0; i < pixels.size(); ++i) pixels[i] = int32_t(i);
        std::shuffle(pixels.begin(), pixels.end(), r);
        pixels.resize(pixels.size() - r() % (pixels.size() / 3 + 1)); // what the flood did not reach
        const int reach = r.of(std::array{1, 4, 100});
        for (int32_t i = 0; i < count; ++i) {
            jorm_fwtsr &region = regions[size_t(i)];
            region.head = region.seed = JORM_NO_PIXEL;
            region.level = 250 - i;
            if (i == 0) continue;
            jorm_fwtsr *const parent = &regions[size_t(i) - 1 - r() % std::min(size_t(i), size_t(reach))];
            region.level = parent->level - r.in(1, 3);
            region.parent = parent;
            region.next = parent->child;
            parent->child = &region;
        }
        for (const int32_t pixel : pixels) { // prepend
            const size_t i = r() % regions.size();
            words[size_t(pixel)] = uint32_t(regions[i].head);
            regions[i].head = pixel;
            own[i].insert(own[i].begin(), pixel);
            for (jorm_fwtsr *above = &regions[i]; above; above = above->parent) ++above->area;
        }
        for (jorm_fwtsr &region : regions) { // as a detection leaves them
            region.mser = region.area > 0 && r.one_in(2);
            if (region.mser) region.level ^= inversion;
        }
        store.root = &regions[0];
        store.words = words.data();
    }

    Places places(const jorm_fwtsr *region, bool proper) const {
        Places result;
        for (const int32_t pixel : own[size_t(region - regions.data())])
            result.push_back({pixel / width, pixel % width});
        for (const jorm_fwtsr *child = proper ? nullptr : region->child; child; child = child->next) {
            const Places more = places(child, false);
            result.insert(result.end(), more.begin(), more.end());
        }
        return result;
    }

    void list_stable(jorm_fwtsr *region, std::vector<jorm_fwtsr *> &list) {
        for (jorm_fwtsr *child = region->child; child; child = child->next) list_stable(child, list);
        if (region->mser) list.push_back(region);
    }
};

struct Vector : jorm_vector {
    Vector() : jorm_vector{} {}
    ~Vector() { _UlMfree(data); }
    Vector(const Vector &) = delete;
};
template <class Entry> std::vector<Entry> entries(const jorm_vector &v) {
    const Entry *const data = static_cast<const Entry *>(v.data);
    return std::vector<Entry>(data, data + v.count);
}

TEST(Regions, CountsAndPixels) {
    Random r(1);
    for (int round = 0; round < 60; ++round) {
        Flood f(r, r.in(1, 150));
        const int32_t dims[] = {99, f.height, f.width, 1};
        for (jorm_fwtsr &region : f.regions) {
            int32_t counts[2][2] = {}; // of all regions and of the stable ones, children alone and all below
            for (const jorm_fwtsr &other : f.regions)
                for (const jorm_fwtsr *up = other.parent; up; up = up->parent)
                    if (up == &region)
                        for (const int deep : {0, 1}) {
                            counts[0][deep] += deep || other.parent == &region;
                            counts[1][deep] += other.mser && (deep || other.parent == &region);
                        }
            for (const int deep : {0, 1}) {
                EXPECT_EQ(jorm_fwtsr_countcld(&region, deep), counts[0][deep]);
                EXPECT_EQ(jorm_fwtsr_countcld_$mser(&region, deep), counts[1][deep]);
            }
            const Places own = f.places(&region, true), all = f.places(&region, false);
            EXPECT_EQ(jorm_fwtsr_countpix_$proper(&region), int32_t(own.size()));
            Vector v;
            jorm_fwtsr_fetchpix_$2d(&v, &region, f.words.data(), 1, f.height, f.width);
            EXPECT_EQ(entries<Place>(v), own);
            EXPECT_EQ(v.capacity, own.size());
            v.count = 0;
            EXPECT_EQ(jorm_fwtsr_fetchpix(&v, &region, f.words.data(), 0, 4, dims), &v);
            EXPECT_EQ(entries<Place>(v), all);
            const int32_t visited = jorm_fwtsr_pixenum_$2d(&v, &region, f.words.data(), f.height, f.width);
            EXPECT_EQ(visited, all.empty() ? 0 : 1 + counts[0][1]);
            EXPECT_EQ(v.count, 2 * all.size()); // appended
            EXPECT_TRUE(std::equal(all.begin(), all.end(), static_cast<Place *>(v.data) + all.size()));
            jorm_fwtsr_fixup(&region, f.words.data());
            EXPECT_EQ(region.seed, own.empty() ? JORM_NO_PIXEL : f.own[size_t(&region - f.regions.data())].back());
        }
    }
}

TEST(Regions, NothingToDo) {
    jorm_fwtsr region = {JORM_NO_PIXEL, 0, 3, 0, 0, 0, nullptr, nullptr, nullptr};
    jorm_vector v = {}, groups = {};
    const auto never = [](jorm_fwtsr *, void *, int32_t) -> int32_t { return ADD_FAILURE(), 1; };
    expect_each(0, {jorm_fwtsr_countcld(nullptr, 1), jorm_fwtsr_countcld_$mser(nullptr, 0),
                    jorm_fwtsr_countpix_$proper(nullptr), jorm_fwtsr_pixenum_$2d(&v, &region, nullptr, 1, 5),
                    jorm_fwtsr_walk(nullptr, 1, never, nullptr), jorm_fwtsr_walk(&region, 4, never, nullptr)});
    region.area = 7; // a region without words, and a picture without columns
    const uint32_t word = JORM_NO_PIXEL;
    jorm_fwtsr_fetchpix_$2d(&v, &region, nullptr, 0, 1, 5);
    jorm_fwtsr_fetchpix_$2d(&v, &region, &word, 1, 1, 0);
    jorm_fwtsr_fetchpix(&v, &region, &word, 1, 1, nullptr);
    jorm_fwtsr_brect_$2d(&v, &groups);
    jorm_fwtsr_fixup(&region, nullptr);
    EXPECT_TRUE(!v.data && !v.count && !v.capacity);
    EXPECT_EQ(jorm_fwtsr_fetchpix_$2d(nullptr, &region, &word, 0, 1, 5), nullptr);
}

// Figures of groups are those of their points.
TEST(Groups, Figures) {
    Random r(2);
    std::vector<std::vector<jorm_2d_pt>> pixels(40);
    std::vector<jorm_pixgroup> list;
    for (size_t i = 0; i < pixels.size(); ++i) {
        pixels[i].resize(size_t(i ? r.in(1, 60) : 0));
        for (jorm_2d_pt &p : pixels[i]) p = {r.in(0, 2000), i % 5 ? r.in(0, 3000) : 17};
        list.push_back({pixels[i].empty() ? nullptr : &pixels[i][0].x, int64_t(pixels[i].size())});
    }
    const jorm_vector groups = {list.size(), list.size(), list.data()};
    const auto expect = [&](auto query, auto figure) {
        Vector v;
        EXPECT_EQ(query(&v, &groups), &v);
        ASSERT_EQ(v.count, list.size());
        for (size_t i = 1; i < pixels.size(); ++i) {
            auto wanted = figure(pixels[i].data(), int32_t(pixels[i].size()));
            EXPECT_EQ(std::memcmp(&wanted, &entries<decltype(wanted)>(v)[i], sizeof wanted), 0) << "group " << i;
        }
    };
    const auto by = []<class Figure>(Figure *(*figure)(Figure *, const jorm_2d_pt *, int32_t)) {
        return [=](const jorm_2d_pt *points, int32_t n) {
            Figure result;
            return *figure(&result, points, n);
        };
    };
    expect(jorm_fwtsr_brect_$2d, by(jorm_2d_ptv_brect));
    expect(jorm_fwtsr_m1_$2d, by(jorm_2d_ptv_moment1));
    expect(jorm_fwtsr_m2_$2d, by(jorm_2d_ptv_moment2));
    expect(jorm_fwtsr_m2c_$2d, by(jorm_2d_ptv_moment2_$c));
    expect(jorm_fwtsr_minbquad_$f2d, by(jorm_2d_ptv_minbquad_$f));
    expect(jorm_fwtsr_minbquad_$r2d, by(jorm_2d_ptv_minbquad_$r));
    expect(jorm_fwtsr_mf_$2d, [](const jorm_2d_pt *points, int32_t n) {
        jorm_moments m = {n, 0, 0, 0, 0, 0, 0};
        for (int32_t i = 0; i < n; ++i) JormWTSMF_update2D(&m, points[i].x, points[i].y);
        return m;
    });
    const auto ellipse = []<class E, class C>(E *(*make)(E *, const C *, const jorm_r2d_moment2 *, double), auto mean) {
        return [=](const jorm_2d_pt *points, int32_t n) {
            C centre;
            jorm_r2d_moment2 moments;
            E e;
            return *make(&e, mean(&centre, points, n), jorm_2d_ptv_moment2_$c(&moments, points, n), 2);
        };
    };
    expect(jorm_fwtsr_ellipse_$f2d, ellipse(__jorm_f2d_ellipse__$moment2$c, jorm_2d_ptv_centroid_$f));
    expect(jorm_fwtsr_ellipse_$r2d, ellipse(__jorm_r2d_ellipse__$moment2$c, jorm_2d_ptv_centroid));
}

// A generation's lists over two floods of equal size.
struct Generation {
    Flood dark, bright;
    std::vector<jorm_fwtsr *> list;
    jorm_mser mser = {};

    explicit Generation(Random &r) : dark(r, r.in(1, 60)), bright(r, r.in(1, 60), 255 >> 1) {
        bright.width = dark.width; // the same buffer read in other rows
        dark.list_stable(&dark.regions[0], list);
        mser.dark_count = uint32_t(list.size());
        bright.list_stable(&bright.regions[0], list);
        mser.bright_count = uint32_t(list.size()) - mser.dark_count;
        mser.regions = {list.size(), list.size(), list.data()};
        mser.dark = list.data();
        mser.bright = list.data() + mser.dark_count;
        mser.dark_store = &dark.store;
        mser.bright_store = &bright.store;
        mser.delta = 5;
        mser.shift = 1;
        const int32_t dims[] = {dark.height, dark.width, 1}, strides[] = {1000, 1, 1};
        jorm_fmserf_setimvol(&mser, 3, dims, strides);
    }
    bool is_bright(size_t i) const { return i >= mser.dark_count; }
    const Flood &flood(size_t i) const { return is_bright(i) ? bright : dark; }
};

// Every rule from its words, region by region.
struct SlowFilter {
    const Generation &g;
    const jorm_mserfilt &f;

    int true_level(size_t i, const jorm_fwtsr *region) const {
        return g.is_bright(i) && region->mser ? region->level ^ 127 : region->level;
    }
    double variation(size_t i) const {
        const jorm_fwtsr *const region = g.list[i];
        for (const jorm_fwtsr *up = region->parent; up; up = up->parent) {
            const int span = std::abs(true_level(i, up) - true_level(i, region));
            if (span == 2) return (up->area - region->area) / double(up->area);
            if (span > 2) return 0;
        }
        return 0;
    }
    double axis_ratio(size_t i) const {
        long double n = 0, y = 0, x = 0, yy = 0, xy = 0, xx = 0;
        for (const Place &p : g.flood(i).places(g.list[i], false)) {
            ++n, y += p[0], x += p[1], yy += p[0] * p[0], xy += p[0] * p[1], xx += p[1] * p[1];
        }
        yy = yy / n - y * y / n / n, xy = xy / n - x * y / n / n, xx = xx / n - x * x / n / n;
        const long double middle = (yy + xx) / 2, half = std::hypot((yy - xx) / 2, xy);
        return middle + half < 1e-12L ? 1 : double(std::sqrt(std::max(0.0L, (middle - half) / (middle + half))));
    }
    bool plain(size_t i) const {
        const jorm_fwtsr *const region = g.list[i];
        return region->area >= f.min_area && (!f.max_area || region->area <= f.max_area) &&
               region->level >= f.min_level && (!f.level_end || region->level < f.level_end) &&
               (f.max_variation == 0 || float(variation(i)) <= f.max_variation) &&
               (f.min_axis_ratio == 0 || axis_ratio(i) >= double(f.min_axis_ratio)) &&
               (f.max_axis_ratio == 0 || axis_ratio(i) <= double(f.max_axis_ratio));
    }
    bool inside(size_t inner, size_t outer) const {
        const jorm_fwtsr *up = g.list[inner]->parent;
        while (up && up != g.list[outer]) up = up->parent;
        return up;
    }
    std::vector<size_t> kept() const {
        std::vector<size_t> first, result;
        for (size_t i = 0; i < g.list.size(); ++i) {
            if (plain(i)) first.push_back(i);
        }
        for (const size_t i : first) {
            const bool nested = std::any_of(first.begin(), first.end(), [&](size_t j) {
                return f.nesting == JORM_MSER_OUTERMOST   ? inside(i, j)
                       : f.nesting == JORM_MSER_INNERMOST ? inside(j, i)
                                                          : false;
            });
            if (!nested) result.push_back(i);
        }
        return result;
    }
};

jorm_mserfilt some_filter(Random &r) {
    jorm_mserfilt f;
    _jorm_mserfilt__$(&f);
    if (r.one_in(2)) f.min_area = r.in(0, 30);
    if (r.one_in(3)) f.max_area = r.in(5, 300);
    if (r.one_in(4)) f.min_level = r.in(0, 250);
    if (r.one_in(4)) f.level_end = r.in(100, 260);
    if (r.one_in(4)) f.max_variation = float(r.in(1, 10)) / 10;
    if (r.one_in(4)) f.min_axis_ratio = float(r.in(1, 9)) / 10;
    if (r.one_in(4)) f.max_axis_ratio = float(r.in(5, 10)) / 10;
    f.nesting = uint32_t(r.in(0, 2));
    f.features = uint32_t(r.in(0, 3));
    return f;
}

TEST(Filters, KeepWhatTheirFieldsSay) {
    Random r(3);
    uint64_t kept_in_all = 0;
    for (int round = 0; round < 400; ++round) {
        const Generation g(r);
        const jorm_mserfilt filter = some_filter(r);
        const bool none = r.one_in(10);
        const jorm_mserfilt all = {};
        const auto wanted = SlowFilter{g, none ? all : filter}.kept();
        const jorm_mserfilt *const given = none ? nullptr : &filter;
        kept_in_all += wanted.size();

        Vector regions, groups, boxes, ellipses, features;
        EXPECT_EQ(jorm_fmserf_regions(&regions, &g.mser, given), &regions);
        jorm_fmserf_pixreg_$2d(&groups, &g.mser, given);
        jorm_fmserf_brect_$2d(&boxes, &g.mser, given);
        jorm_fmserf_ellipse_$f2d(&ellipses, &g.mser, given);
        JormGatherMSERsFeatures(&features, &g.mser, given);
        ASSERT_EQ(regions.count, wanted.size());
        for (const Vector *v : {&groups, &boxes, &ellipses, &features}) ASSERT_EQ(v->count, wanted.size());
        if (round % 4 == 0) jorm_fmserf_pixreg_$2d(&groups, &g.mser, given); // groups move with their pixels
        for (size_t k = 0; k < groups.count; ++k) {
            const size_t i = wanted[k % wanted.size()];
            const auto group = entries<jorm_pixgroup>(groups)[k];
            const Places places = g.flood(i).places(g.list[i], false);
            ASSERT_EQ(group.count, int64_t(places.size()));
            EXPECT_EQ(std::memcmp(group.pixels, places.data(), places.size() * sizeof(Place)), 0);
            if (k >= wanted.size()) continue;
            EXPECT_EQ(entries<jorm_fwtsr *>(regions)[k], g.list[i]);
            int32_t top = INT32_MAX;
            double sum_x = 0;
            for (const Place &p : places) top = std::min(top, p[0]), sum_x += p[1];
            EXPECT_EQ(entries<jorm_2d_rect>(boxes)[k].x, top);
            EXPECT_NEAR(entries<jorm_f2d_ell>(ellipses)[k].centre.y, sum_x / double(places.size()), 1e-4);
            const auto feats = entries<jorm_mserfeats>(features)[k];
            EXPECT_EQ(feats.region.node, g.list[i]);
            EXPECT_EQ(feats.region.area, int32_t(places.size()));
            const uint32_t asked = given && given->features ? given->features : 3;
            EXPECT_EQ(feats.moments.count, asked & JORM_MSER_MOMENTS ? int32_t(places.size()) : 0);
            EXPECT_EQ(feats.moments.sum_x, asked & JORM_MSER_MOMENTS ? sum_x : 0);
            EXPECT_EQ(feats.pixels.count, asked & JORM_MSER_PIXELS ? places.size() : 0);
            for (size_t p = 0; p < feats.pixels.count; ++p)
                EXPECT_EQ(feats.pixels.entries[p], uint64_t(places[p][1]) << 32 | uint32_t(places[p][0]));
        }
        JormMSERfreeFeatures(&features);
        EXPECT_TRUE(!features.data && !features.count);
    }
    EXPECT_GT(kept_in_all, 1000u);
}

TEST(Filters, Constructors) {
    jorm_mserfilt f;
    const jorm_mserfilt zero = {};
    const auto same = [&](const jorm_mserfilt &wanted) { return std::memcmp(&f, &wanted, sizeof f) == 0; };
    std::memset(&f, 0xEE, sizeof f);
    EXPECT_TRUE(_jorm_mserfilt__$(&f) == &f && same(zero));
    EXPECT_TRUE(_jorm_fmserfilt__$ex(&f, 3, 9, 0.5f) == &f && same({3, 9, 0, 0, 0.5f, 0, 0, 0, 0, 0}));
    EXPECT_TRUE(_jorm_fmserfilt__$mf(&f, 0.25f, 1) == &f && same({0, 0, 0, 0, 0, 0.25f, 1, 0, 0, 0}));
    const char *const names[] = {"pixels", "moments", "colour"};
    EXPECT_TRUE(_jorm_mserfilt__$feats(&f, names, 1) == &f && same({0, 0, 0, 0, 0, 0, 0, 0, JORM_MSER_PIXELS, 0}));
    EXPECT_TRUE(_jorm_fmserfilt__$feats(&f, names, 2) && f.features == 3);
    EXPECT_EQ(_jorm_mserfilt__$feats(&f, names, 3), nullptr);
    EXPECT_EQ(_jorm_fmserfilt__$(nullptr), nullptr);
}

TEST(Filters, WithoutWordsGroupsAreEmpty) {
    Random r(4);
    Generation g(r);
    g.dark.store.words = nullptr;
    g.mser.bright_store = nullptr;
    Vector groups, features, none;
    jorm_fmserf_pixreg_$2d(&groups, &g.mser, nullptr);
    JormGatherMSERsFeatures(&features, &g.mser, nullptr);
    jorm_mserfilt round_ones;
    jorm_fmserf_regions(&none, &g.mser, _jorm_mserfilt__$mf(&round_ones, 0, 1));
    ASSERT_TRUE(groups.count == g.list.size() && features.count == g.list.size() && none.count == 0);
    for (const auto &group : entries<jorm_pixgroup>(groups)) EXPECT_TRUE(!group.pixels && !group.count);
    for (const auto &f : entries<jorm_mserfeats>(features))
        EXPECT_TRUE(f.region.area > 0 && !f.moments.count && !f.pixels.count && !f.pixels.capacity);
    JormMSERfreeFeatures(&features);
}

// A feature of the caller's own, beside a built-in one: the sum of the rows.
TEST(Gathering, FeaturesOfAnyKind) {
    Random r(5);
    Flood f(r, 30);
    jorm_wtsfeature features[2] = {};
    JormWTSPFinitFeatureDs(&features[0], nullptr);
    features[1].size = sizeof(int64_t);
    features[1].parameter = &f;
    features[1].init = [](void *data, void *parameter) { *static_cast<int64_t *>(data) = parameter ? 1000 : 0; };
    features[1].update2D = [](void *data, const void *pixels, int32_t n) {
        for (int32_t i = 0; i < n; ++i) *static_cast<int64_t *>(data) += static_cast<const int32_t *>(pixels)[2 * i];
    };
    jorm_wtslsc layout;
    JormWTSLSCinit2D(&layout, features, 2, f.height, f.width, f.width);
    std::vector<jorm_fwtsr *> all;
    for (jorm_fwtsr &region : f.regions) all.push_back(&region);
    Vector blocks;
    EXPECT_EQ(JormMSERgatherFeatures(&blocks, &layout, all.data(), all.size(), f.words.data()), &blocks);
    ASSERT_EQ(blocks.count, all.size());
    for (size_t i = 0; i < all.size(); ++i) {
        char *const block = static_cast<char *>(blocks.data) + i * size_t(layout.block_size);
        int64_t sum = 1000, alone = -1;
        for (const Place &p : f.places(all[i], false)) sum += p[0];
        EXPECT_EQ(reinterpret_cast<jorm_wtsrgn *>(block)->node, all[i]);
        EXPECT_EQ(*reinterpret_cast<int64_t *>(block + features[1].offset), sum);
        auto *const list = reinterpret_cast<jorm_pixlist *>(block + features[0].offset);
        EXPECT_EQ(list->count, uint64_t(all[i]->area));
        EXPECT_EQ(JormMSERgatherFeatureOfRegion(&alone, &features[1], all[i], f.words.data(), f.width), &alone);
        EXPECT_EQ(alone, sum);
        JormMSERgatherFeatureOfRegion(&alone, &features[1], all[i], nullptr, f.width);
        EXPECT_EQ(alone, 1000); // as it was made
        Bytes one(size_t(layout.block_size) + 8, 0xEE);
        EXPECT_EQ(JormMSERgatherFeaturesOfRegion(one.data(), &layout, all[i], f.words.data()), one.data());
        EXPECT_EQ(std::memcmp(one.data() + features[1].offset, &sum, sizeof sum), 0);
        EXPECT_EQ(one[size_t(layout.block_size)], 0xEE);
        features[0].destroy(one.data() + features[0].offset, nullptr);
        features[0].destroy(list, nullptr);
    }
}

// Whatever request fails, a vector keeps what it had, nothing is leaked, and the next try succeeds.
TEST(Gathering, SurvivesEveryFailure) {
    if (!own_heap) GTEST_SKIP();
    Random r(6);
    const Generation g(r);
    const uint64_t count = g.list.size();
    for (const auto run : {jorm_fmserf_regions, jorm_fmserf_pixreg_$2d, jorm_fmserf_brect_$2d, jorm_fmserf_ellipse_$f2d,
                           JormGatherMSERsFeatures}) {
        uint64_t most = 0;
        const int requests = for_each_failure("query", [&] {
            Vector v;
            for (int attempt = 0; attempt < 3; ++attempt) {
                const uint64_t before = v.count;
                run(&v, &g.mser, nullptr);
                EXPECT_TRUE(v.count == before || v.count == before + count);
            }
            most = v.count;
            if (run == JormGatherMSERsFeatures) JormMSERfreeFeatures(&v);
        });
        EXPECT_TRUE(requests >= 3 && most == 3 * count); // once all requests are granted
    }
    const int requests = for_each_failure("pixels", [&] {
        Vector v;
        jorm_fwtsr_fetchpix_$2d(&v, &g.dark.regions[0], g.dark.words.data(), 0, 1, g.dark.width);
    });
    EXPECT_EQ(requests, 1);
}

} // namespace
