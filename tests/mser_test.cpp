// Stable regions: detection against a slow one on real and made-up trees, generation with its passes, masks and memory.
#include "support/failures.hpp"
#include "support/flood_case.hpp"

namespace {

using Regions = std::vector<jorm_fwtsr *>;

// The detection as it is defined, by recursion.
struct SlowDetection {
    jorm_msercriteria c;
    Regions found;

    bool detect(jorm_fwtsr *r) {
        r->mser = 0;
        bool any = false;
        if (c.delta <= r->level)
            for (jorm_fwtsr *x = r->child; x; x = x->next) any |= detect(x);
        if (r->area < c.min_area || (r->area > c.max_area && !any)) return false;
        const jorm_fwtsr *p = r->parent;
        while (p && std::abs(p->level - r->level) < c.delta) p = p->parent;
        if (!p) return false;
        const bool exact = std::abs(p->level - r->level) == c.delta;
        const float variation = exact ? std::fabs(float(p->area - r->area) / float(p->area)) : 0;
        if (c.max_variation < variation) return false;
        r->mser = r->area <= c.max_area;
        if (r->mser) found.push_back(r);
        diversify(r, r->child);
        return r->mser;
    }
    void diversify(const jorm_fwtsr *r, jorm_fwtsr *x) {
        for (; x; x = x->next) {
            if (float(r->area - x->area) / float(r->area) >= c.min_diversity) continue;
            if (x->mser)
                x->mser = 0;
            else
                diversify(r, x->child);
        }
    }
    const Regions &run(jorm_fwtsr *root) {
        if (root) detect(root);
        std::erase_if(found, [](const jorm_fwtsr *r) { return !r->mser; });
        return found;
    }
};

jorm_msercriteria some_criteria(Random &r) {
    return {r.in(0, 40), r.in(0, 30), r.one_in(4) ? r.in(1, 60) : r.in(60, 4000), float(r.in(0, 100)) / 100,
            float(r.in(0, 60)) / 100};
}

void list_regions(jorm_fwtsr *r, Regions &list) {
    if (r) list.push_back(r);
    for (jorm_fwtsr *c = r ? r->child : nullptr; c; c = c->next) list_regions(c, list);
}

auto facts(const jorm_fwtsr *r) { return std::tuple(r->level, r->area, r->seed, r->head); }

struct Mser : jorm_mser {
    Mser() : jorm_mser{} {}
    ~Mser() { clear(); }
    void clear() {
        JormFWTSRESfini(dark_store);
        JormFWTSRESfini(bright_store);
        _UlMfree(regions.data);
        static_cast<jorm_mser &>(*this) = {};
    }
    void set(const jorm_msercriteria &c) {
        delta = c.delta;
        min_area = c.min_area;
        max_variation = c.max_variation;
        min_diversity = c.min_diversity;
    }
};

TEST(Detection, TreesOfPictures) {
    Random r(11);
    size_t found = 0;
    for (int round = 0; round < 1500; ++round) {
        const int H = r.in(4, 50), W = r.in(4, 50);
        SlowFlood flood(flood_picture(r, H, W, round % flood_kinds), H, W,
                        {.column = 1, .smallest = r.one_in(2) ? 16 : 1});
        jorm_msercriteria c = some_criteria(r);
        // Any subtree; flags from before; regions from elsewhere in the vector.
        Regions all;
        list_regions(flood.root, all);
        for (jorm_fwtsr *x : all) x->mser = r.one_in(2);
        jorm_fwtsr *const root = r.one_in(3) ? r.of(all) : flood.root;
        jorm_fwtsr kept = {}, dropped = {};
        kept.mser = 1;
        jorm_vector v = {2, 2, _UlMrealloc(nullptr, 2 * sizeof(void *))};
        static_cast<jorm_fwtsr **>(v.data)[0] = &dropped;
        static_cast<jorm_fwtsr **>(v.data)[1] = &kept;

        const auto flags = [&] {
            std::vector<uint32_t> list;
            for (const jorm_fwtsr *x : all) list.push_back(x->mser);
            return list;
        };
        const auto before = flags();
        SlowDetection slow = {c, {&dropped, &kept}};
        const Regions wanted = slow.run(root);
        const auto wanted_flags = flags();
        for (size_t i = 0; i < all.size(); ++i) all[i]->mser = before[i];
        ASSERT_EQ((r.one_in(2) ? JormDetectFMSERs : JormDetectMSERs)(&v, root, &c), &v);
        auto *const list = static_cast<jorm_fwtsr **>(v.data);
        ASSERT_EQ(Regions(list, list + v.count), wanted) << "round " << round;
        ASSERT_EQ(flags(), wanted_flags);
        found += v.count;
        _UlMfree(v.data);
    }
    EXPECT_GT(found, 4000u);
    jorm_vector none = {};
    const jorm_msercriteria c = {};
    EXPECT_EQ(JormDetectFMSERs(&none, nullptr, &c), &none);
    EXPECT_EQ(none.count, 0u);
}

TEST(Detection, DeepTrees) {
    const int32_t depth = 1000000;
    std::vector<jorm_fwtsr> chain(static_cast<size_t>(depth));
    for (int32_t i = 0; i < depth; ++i) {
        jorm_fwtsr &x = chain[size_t(i)];
        x.level = depth - i;
        x.area = 2 * (depth - i);
        if (i + 1 < depth) x.child = &chain[size_t(i + 1)];
        if (i > 0) x.parent = &chain[size_t(i - 1)];
    }
    jorm_vector v = {};
    const jorm_msercriteria c = {1, 10, depth, 0.5f, 0};
    JormDetectFMSERs(&v, chain.data(), &c);
    EXPECT_EQ(v.count, uint64_t(depth / 2 - 4));
    _UlMfree(v.data);
}

// By the entry or one of the layers below it.
int64_t generate(Random &r, jorm_xe *xe, bool fast, const jorm_array &a, const jorm_array *mask, jorm_mser &m) {
    const int32_t size[] = {int32_t(a.extent[1]), int32_t(a.extent[2]), 1},
                  origin[4] = {}, *const zero = origin + 1, *const s = a.stride + 1;
    const uint32_t word = JORM_WORD(3), u8 = JORM_U8;
    const void *const p = element(a, {}), *const q = mask ? element(*mask, {}) : nullptr;
    const int32_t *const t = mask ? mask->stride + 1 : nullptr;
    const int way = a.ndims == 4 ? 0 : r.in(0, 2);
    if (way == 1 && fast && mask) return JormTGAgenerateFMSERsEx(xe, 0, &m, word, size, u8, p, s, u8, q, t);
    if (way == 1 && fast) return JormTGAgenerateFMSERs(xe, 0, &m, word, size, u8, p, s);
    if (way == 2 && mask)
        return (fast ? jorma_fmser_xm : jorma_mser_xm)(xe, 0, word, size, u8, p, zero, s, u8, q, zero, t, &m);
    if (way == 2 && fast) return jorma_fmser(xe, 0, word, size, u8, p, zero, s, &m);
    if (mask) return (fast ? JormGenerateFMSERsEx : JormGenerateMSERsEx)(xe, 0, &a, mask, nullptr, nullptr, &m);
    return (fast ? JormGenerateFMSERs : JormGenerateMSERs)(xe, 0, &a, nullptr, &m);
}

TEST(Generation, ListsOfBothKinds) {
    Random r(12);
    Env xe;
    Mser mser;
    size_t found[2] = {};
    for (int round = 0; round < 1200; ++round) {
        const int H = r.in(2, 50), W = r.in(2, 50), n = H * W, kind = round % flood_kinds;
        const Samples samples = flood_picture(r, H, W, kind);
        const int planes = r.one_in(6) ? 2 : 1;
        const FloodArray image(r, samples, H, W, planes), mask(r, Samples(samples.size(), 3), H, W, planes);
        jorm_msercriteria c = some_criteria(r);
        mser.set(c);
        mser.shift = uint8_t(r.one_in(2) ? 0 : r.in(0, 4));
        mser.passes = uint16_t(r.in(0, 3));
        mser.max_area_fraction = r.one_in(2) ? 0.5f : 0.9f;
        mser.min_area_fraction = r.one_in(2) ? 0 : 0.01f;
        mser.seed_row = r.in(0, H - 1);
        mser.seed_column = r.in(0, W - 2);
        if (r.one_in(5)) mser.clear(), mser.set(c), mser.max_area_fraction = 1;

        const auto part = [=](float fraction) { return int32_t(float(n) * fraction); };
        c.delta >>= mser.shift;
        c.max_area = part(mser.max_area_fraction);
        c.min_area = part(mser.min_area_fraction);
        if (c.min_area == 0) c.min_area = mser.min_area > 0 ? mser.min_area : 9;
        std::vector<std::tuple<int32_t, int32_t, int32_t, int32_t>> wanted[2], got[2];
        const bool fast = r.one_in(2), masked = r.one_in(4);
        for (const int bright : {0, 1}) {
            if (mser.passes < 2 && mser.passes != bright) continue;
            SlowFlood flood(samples, H, W,
                            {.inverted = bright == 1,
                             .shift = mser.shift,
                             .row = mser.seed_row,
                             .column = mser.seed_column + 1,
                             .smallest = fast ? 16 : 1});
            SlowDetection slow = {c, {}};
            for (jorm_fwtsr *x : slow.run(flood.root)) {
                if (bright) x->level ^= 255 >> mser.shift;
                wanted[bright].push_back(facts(x));
            }
        }
        ASSERT_EQ(generate(r, xe, fast, image.a, masked ? &mask.a : nullptr, mser), JORM_OK);
        for (uint32_t i = 0; i < mser.dark_count; ++i) got[0].push_back(facts(mser.dark[i]));
        for (uint32_t i = 0; i < mser.bright_count; ++i) got[1].push_back(facts(mser.bright[i]));
        ASSERT_EQ(mser.regions.count, mser.dark_count + mser.bright_count);
        for (const int k : {0, 1}) { // no row is left out by a mask
            ASSERT_EQ(got[k], wanted[k]) << "round " << round << ", kind " << kind << ", " << k;
            found[k] += got[k].size();
        }
        ASSERT_EQ(std::tuple(mser.volume[1], mser.volume[2], mser.volume[5]), std::tuple(H, W, image.a.stride[1]));
    }
    EXPECT_GT(std::min(found[0], found[1]), 500u);
}

TEST(Generation, StoresMemoryAndFailures) {
    Random r(13);
    const Samples samples = flood_picture(r, 80, 70, 3);
    const FloodArray image(r, samples, 80, 70);
    jorm_array wide = image.a;
    wide.eltype = JORM_S8;
    const auto prepare = [](jorm_mser &m) {
        m.delta = 4, m.min_area = 5, m.passes = 2;
        m.max_area_fraction = 0.5f, m.max_variation = 0.9f;
    };
    Env xe;
    { // A caller's stores on one storage, one of them with a buffer.
        void *const storage = UlSMEMSTGopen(nullptr, 0, 0);
        std::vector<uint32_t> buffer(80 * 70 + 2 * 72);
        jorm_fwtsres store[2] = {};
        JormFWTSRESinit(&store[0], buffer.data(), storage);
        JormFWTSRESinit(&store[1], nullptr, storage);
        jorm_mser m = {};
        prepare(m);
        m.dark_store = &store[0], m.bright_store = &store[1];
        int calls = 0;
        for (int i = 0; i < 120; ++i) {
            if (i == 20) calls = heap_calls;
            ASSERT_EQ(JormGenerateFMSERs(xe, 0, &image.a, nullptr, &m), JORM_OK);
        }
        EXPECT_EQ(heap_calls, calls);
        EXPECT_TRUE(store[0].words == buffer.data() + 72 && m.dark_count > 0 && m.bright_count > 0);
        const int64_t blocks = heap_blocks;
        EXPECT_EQ(JormGenerateFMSERs(xe, 0, &wide, nullptr, &m), JORM_EINVAL);
        EXPECT_TRUE(!own_heap || heap_blocks == blocks - 1); // the list is given back
        EXPECT_TRUE(!m.dark_store && !m.bright_store && !m.regions.data && !m.dark_count);
        for (jorm_fwtsres &s : store) JormFWTSRESfini(&s);
        UlMEMSTGclose(storage);
    }
    { // A refusal before there is anything to release; a mask that selects nothing.
        const FloodArray mask(r, Samples(samples.size()), 80, 70);
        Mser m;
        prepare(m);
        EXPECT_EQ(JormGenerateMSERs(xe, 0, &wide, nullptr, &m), JORM_EINVAL);
        EXPECT_EQ(m.regions.data, nullptr);
        prepare(m);
        EXPECT_EQ(JormGenerateMSERsEx(xe, 0, &image.a, &mask.a, nullptr, nullptr, &m), JORM_OK);
        EXPECT_TRUE(m.regions.count == 0 && m.dark_store == &m.embedded[0]);
    }
    if (!own_heap) return;
    const int requests = for_each_failure("generation", [&] {
        Mser m;
        prepare(m);
        Env own;
        const int64_t status = JormGenerateMSERs(own, 0, &image.a, nullptr, &m);
        const int64_t left = std::exchange(heap_calls_left, INT64_MAX);
        if (status != JORM_OK) {
            EXPECT_EQ(status, JORM_ENOMEM);
            EXPECT_TRUE(!m.dark_store && !m.bright_store && !m.regions.data);
        }
        EXPECT_EQ(JormGenerateMSERs(own, 0, &image.a, nullptr, &m), JORM_OK);
        EXPECT_GT(m.regions.count, 64u);
        heap_calls_left = left;
    });
    EXPECT_GT(requests, 3);
}

TEST(Generation, VariationsOfAreas) {
    jorm_fwtsr a = {}, b = {};
    a.area = 30, b.area = 40;
    EXPECT_TRUE(__JormMSERareaVariation(30, 40) == 0.25f && __JormMSERareaVariationAbs(40, 30) == float(10) / 30);
    EXPECT_EQ(__JormMSERregionVariation(&b, &a), float(-10) / 30);
    EXPECT_EQ(__JormMSERregionVariationAbs(&b, &a), float(10) / 30);
}

} // namespace
