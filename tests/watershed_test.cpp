// Floods against the slow one of the support folder: whole trees, pixel lists, guard words.
#include "jorm/xe.h"
#include "support/flood_case.hpp"
#include "support/heap.hpp"

#include <optional>

namespace {

// Whole pictures and masks, of which the first selected column counts.
TEST(Watershed, TreesAndListsOfPictures) {
    Random r(1);
    Env xe;
    Store plain, listed;
    int dropped = 0, found_before = 0, nothing = 0;
    for (int round = 0; round < 9000; ++round) {
        const bool masked = r.one_in(3), mask_inverted = r.one_in(2), fast = !r.one_in(3);
        const int kind = round % flood_kinds, rarity = masked ? r.in(1, 40) : 1;
        const int most = masked ? 14 : round % 100 ? 40 : 140; // large ones use all 256 levels
        // Rows a power of two long lie farther apart in the plane than in the picture.
        const int H = r.one_in(6) ? r.in(1, 3) : r.in(1, most);
        const int W = round % 373 == 3 ? r.of(std::array{1024, 2048}) : r.one_in(6) ? r.in(1, 4) : r.in(2, most);
        const Samples samples = flood_picture(r, H, W, kind);
        Samples mask(samples.size());
        const uint8_t off = mask_inverted ? 255 : 0;
        for (uint8_t &m : mask) m = r.one_in(rarity) ? uint8_t(r.in(1, 254)) : off;
        int row = r.one_in(2) ? 0 : r.in(0, H - 1), column = r.one_in(2) ? 0 : r.in(0, W - 1);
        const int n = H * W, seed = row * W + column;
        const bool outside = r.one_in(40);
        if (outside) (r.one_in(2) ? row : column) = r.of(std::array{-1, std::max(H, W), INT32_MAX, INT32_MIN});
        const auto on = [&](int y, int x) { return mask[size_t(y * W + x)] != off; };

        // The start: the first pixel selected from the seed on, then from the beginning.
        int after = 0;
        while (after < n && !on((seed + after) % n / W, (seed + after) % n % W)) ++after;
        const int start = after < n && !outside ? (seed + after) % n : -1;
        const int drop = start >= 0 && seed == 0 ? start / W : 0, x = start % W;
        const bool empty = start < 0 || x + 1 >= W;
        found_before += start >= 0 && start < seed;
        nothing += empty;
        dropped += drop > 0;

        const int shift = r.one_in(2) ? 0 : r.in(0, 8);
        SlowFlood::Options o = {r.one_in(2), shift, start / W - drop, x + 1, fast ? 16 : 1};
        for (int y = drop; y < H; ++y) o.rows.push_back(!empty && on(y, x));
        std::optional<SlowFlood> slow;
        if (!empty) slow.emplace(Samples(samples.begin() + drop * W, samples.end()), H - drop, W, o);
        const FloodArray image(r, samples, H, W), masks(r, mask, H, W);
        std::vector<uint32_t> buffer(size_t(n + 2 * (W + 2) + 2), 0xABCDABCD);
        listed.buffer = &buffer[1];
        for (Store *const store : {&plain, &listed}) {
            jorm_fwtsparams params = {store, o.inverted ? 1 : r.in(2, 3) % 3,
                                      uint16_t(shift == 8 ? r.in(8, 40) : shift), row, column};
            const uint64_t options =
                (fast ? (r.one_in(2) ? 0x200000 : 0x400000) : 0) | (mask_inverted ? JORM_OPT_MASK_INVERT : 0);
            jorm_xe *const given = r.one_in(8) ? nullptr : &xe.xe;
            ASSERT_EQ(masked ? JormWatershedEx(given, options, &image.a, &masks.a, nullptr, nullptr, &params)
                             : JormWatershed(given, options, &image.a, nullptr, &params),
                      JORM_OK);
            expect_same_tree(empty ? nullptr : slow->root, store->root);
            if (HasFatalFailure()) FAIL() << "round " << round << ", kind " << kind << ", " << H << " x " << W;
        }
        EXPECT_EQ(plain.words, nullptr);
        ASSERT_EQ(listed.words, empty ? nullptr : listed.buffer + W + 2);
        EXPECT_EQ(buffer.front(), 0xABCDABCD);
        EXPECT_EQ(buffer.back(), 0xABCDABCD);
        ASSERT_TRUE(empty || std::equal(slow->buffer.begin(), slow->buffer.end(), listed.buffer)) << "round " << round;
    }
    EXPECT_GT(std::min({dropped, found_before, nothing}), 20);
}

// Every layer gives what the entry gives, of a region of the last plane.
TEST(Watershed, LayersRegionsAndPlanes) {
    Random r(4);
    Env xe;
    const int H = 20, W = 24;
    const Samples samples = flood_picture(r, 2 * H, W, 2), mask(samples.size(), 1);
    const int32_t extent[] = {2, H, W, 1}, origin[] = {0, 3, 4, 0}, size[] = {2, 15, 16, 1}, *const flat = size + 1;
    jorm_array a, m;
    _jorm_array__$xtrn(&a, JORM_U8, 4, extent, nullptr, const_cast<uint8_t *>(samples.data()));
    _jorm_array__$xtrn(&m, JORM_U8, 4, extent, nullptr, const_cast<uint8_t *>(mask.data()));
    Samples part;
    each({1, 15, 16, 1}, [&](const Index &i) { part.push_back(*element(a, {1, i[1] + 3, i[2] + 4, 0})); });
    const jorm_site site = {{0, 3, 4, 0}, {2, 15, 16, 1}};
    const int32_t place[] = {0, H + 3, 4, 0}, *const from = place + 1, *const s = a.stride + 1;
    const uint8_t *const base = samples.data(), *const data = element(a, {1, 3, 4, 0}), *const on = mask.data();
    const uint32_t w = JORM_WORD(3), u8 = JORM_U8;
    Store store;
    jorm_fwtsparams p = {&store, 0, 0, 2, 3};
    for (const bool fast : {false, true}) {
        const SlowFlood wanted(part, 15, 16, {.row = 2, .column = 4, .smallest = fast ? 16 : 1});
        const auto check = [&](int64_t status) {
            EXPECT_EQ(status, JORM_OK);
            expect_same_tree(wanted.root, store.root);
            JormFWTSRESinit(&store, nullptr, nullptr);
            EXPECT_EQ(store.root, nullptr);
        };
        const uint64_t options = fast ? JORM_OPT_FAST : 0;
        check(JormWatershed(xe, options, &a, &site, &p));
        check(JormWatershedEx(xe, options, &a, nullptr, origin, size, &p));
        check(JormWatershedEx(xe, options, &a, &m, origin, size, &p));
        check(JormTGAwatershed(xe, options, &p, w, flat, u8, data, s));
        check(JormTGAwatershedEx(xe, options, &p, w, flat, u8, data, s, u8, on, s));
        check(JormTGAwatershedEx(xe, options, &p, w, flat, u8, data, s, 0, nullptr, nullptr));
        // Below, the names decide and not the options.
        check((fast ? jorma_fwatershed : jorma_watershed)(xe, 0, w, flat, u8, base, from, s, &p));
        check(
            (fast ? jorma_fwatershed_xm : jorma_watershed_xm)(xe, 0, w, flat, u8, base, from, s, u8, on, from, s, &p));
        check((fast ? jorma__fwatershed : jorma__watershed)(xe, 0, w, flat, u8, data, s, &p));
        check((fast ? jorma__fwatershed_xm : jorma__watershed_xm)(xe, 0, w, flat, u8, data, s, u8, on, s, &p));
        if (!fast) continue;
        check(_jorma__fwatershed_c1_u8(xe, 0, w, flat, data, s, &p));
        check(_jorma__fwatershed_xm_c1_u8(xe, 0, w, flat, data, s, on, s, &p));
    }
}

TEST(Watershed, Refusals) {
    Random r(6);
    Env xe;
    Store store;
    std::vector<uint32_t> buffer(200, 7);
    store.buffer = buffer.data();
    const Picture grey(r, JORM_U8, {1, 8, 8, 1}, true), two(r, JORM_U8, {1, 8, 8, 2}), wide(r, JORM_S16, {1, 8, 8, 1});
    const jorm_array &a = grey.a;
    jorm_fwtsparams p = {&store, 0, 0, 0, 0}, homeless = {};
    const jorm_site outside = {{0, 9, 0, 0}, {1, 3, 3, 1}};
    const auto flat = [&](uint32_t type, int32_t H, int32_t W, int32_t c) {
        const int32_t size[] = {H, W, c};
        return jorma__fwatershed(xe, 0, JORM_WORD(3), size, type, grey.at({}), a.stride + 1, &p);
    };
    expect_each(JORM_EINVAL,
                {JormWatershed(xe, 0, &a, nullptr, nullptr), JormWatershed(xe, 0, nullptr, nullptr, &p),
                 JormWatershed(xe, 0, &a, nullptr, &homeless), JormWatershedEx(xe, 0, &a, &two.a, nullptr, nullptr, &p),
                 flat(JORM_S8, 8, 8, 1), flat(0, 8, 8, 1), flat(JORM_U8, 1 << 14, 1 << 13, 1),
                 flat(JORM_U8, 1 << 30, 1 << 30, 1), flat(JORM_U8, 0, 8, 1)});
    expect_each(JORM_EEMPTY, {JormWatershed(xe, 0, &a, &outside, &p)});
    expect_each(JORM_ENOTSUP, {JormWatershed(xe, 0, &two.a, nullptr, &p), JormWatershed(xe, 0, &wide.a, nullptr, &p),
                               flat(JORM_U8, 8, 4, 2), flat(JORM_F64, 1, 1, 1)});
    EXPECT_EQ(std::count(buffer.begin(), buffer.end(), 7u), 200);
}

TEST(ResultStore, KeepsItsMemoryAndGivesItBack) {
    Random r(5);
    const Samples samples = flood_picture(r, 60, 60, 0);
    const FloodArray image(r, samples, 60, 60);
    Env xe;
    void *const storage = UlSMEMSTGopen(nullptr, 0, 0);
    void *const before = UlSMEMSTGaalloc(storage, 10, 8, 0);
    jorm_fwtsres store[2] = {};
    for (jorm_fwtsres &s : store) ASSERT_EQ(JormFWTSRESinit(&s, nullptr, storage), &s);
    Store own;
    const auto flood = [&](jorm_fwtsres *s, uint64_t options) {
        jorm_fwtsparams p = {s, 0, 0, 3, 3};
        return JormWatershed(xe, options, &image.a, nullptr, &p);
    };
    const auto flood_all = [&] {
        for (jorm_fwtsres *s : std::array<jorm_fwtsres *, 3>{&store[0], &own, &store[1]})
            ASSERT_EQ(flood(s, 0), JORM_OK);
    };
    for (int i = 0; i < 20; ++i) flood_all();
    const int calls = heap_calls;
    for (int i = 0; i < 200; ++i) flood_all();
    EXPECT_EQ(heap_calls, calls);

    // Two stores of one storage keep their trees apart.
    const SlowFlood slow(samples, 60, 60, {.row = 3, .column = 4, .smallest = 1});
    for (jorm_fwtsres &s : store) expect_same_tree(slow.root, s.root);

    jorm_fwtsr *const region = JormFWTSRESnewregion(&own, 12, 34);
    ASSERT_NE(region, nullptr);
    EXPECT_EQ(std::tuple(region->head, region->seed, region->level, region->area),
              std::tuple(JORM_NO_PIXEL, 12, 34, 0));
    void *const block = JormFWTSRESalloca(&own, 100, 0);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(block) % 16, 0u);
    JormFWTSRES_freea(&own, block);
    EXPECT_EQ(JormFWTSRESalloca(&own, 100, 16), block);
    for (jorm_fwtsres &s : store) {
        EXPECT_EQ(JormFWTSRESfini(&s), &s);
        EXPECT_EQ(std::tuple(s.root, s.storage), std::tuple(nullptr, nullptr));
    }
    void *const next = UlSMEMSTGaalloc(storage, 10, 8, 0);
    EXPECT_LT(static_cast<char *>(next) - static_cast<char *>(before), 64);
    UlMEMSTGclose(storage);
}

} // namespace
