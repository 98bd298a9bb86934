// The storage against a model of what is allocated, the environment's rules, the switch and the levels.
#include "jorm/xe.h"
#include "support/heap.hpp"
#include "support/picture.hpp"
#include "xe/scratch.hpp"

#include <malloc.h>

namespace {

struct Held {
    uint8_t *p;
    size_t bytes;
    uint8_t mark;
    bool intact() const {
        return std::all_of(p, p + bytes, [this](uint8_t byte) { return byte == mark; });
    }
};

// Random requests, releases in any order, nested snapshots: what is held keeps its bytes and its alignment.
TEST(Storage, RandomUseAgainstModel) {
    Random r(1);
    alignas(8) unsigned char memory[48];
    for (size_t block : {size_t(0), size_t(1), size_t(4096), SIZE_MAX}) {
        void *const s = UlSMEMSTGopen(memory, block, 0);
        std::vector<Held> held;
        struct Mark {
            uint64_t state[4];
            size_t count;
        };
        std::vector<Mark> marks;
        for (int step = 0; step < 20000; ++step) {
            const unsigned what = r() % 16;
            if (what < 8 && held.size() < 60) {
                const size_t align = size_t(1) << r() % (step % 50 ? 8 : 17);
                const size_t bytes = r() % (step % 100 ? 300 : 200000);
                auto *const p = static_cast<uint8_t *>(UlSMEMSTGaalloc(s, bytes, align, 0));
                ASSERT_TRUE(p && reinterpret_cast<uintptr_t>(p) % align == 0);
                held.push_back({p, bytes, uint8_t(r())});
                std::memset(p, held.back().mark, bytes);
            } else if (what < 13) {
                const size_t floor = marks.empty() ? 0 : marks.back().count;
                if (held.size() == floor) continue;
                const size_t i = what < 11 ? held.size() - 1 : floor + r() % (held.size() - floor);
                ASSERT_TRUE(held[i].intact());
                UlSMEMSTGfree(s, held[i].p);
                held.erase(held.begin() + long(i));
            } else if (what == 13) {
                marks.push_back({{}, held.size()});
                UlSMEMSTGgetstate(marks.back().state, s);
            } else if (!marks.empty()) {
                UlSMEMSTGsetstate(s, marks.back().state);
                held.resize(marks.back().count);
                marks.pop_back();
            }
        }
        for (const Held &h : held) ASSERT_TRUE(h.intact());
        UlMEMSTGdestroy(s);
    }
}

TEST(Storage, GapsBeforeAlignedBlocksComeBack) {
    void *const s = UlSMEMSTGopen(nullptr, 0, 0);
    UlSMEMSTGaalloc(s, 100, 16, 0);
    void *const a = UlSMEMSTGaalloc(s, 50, 16, 0);
    UlSMEMSTGfree(s, a);
    for (size_t align : {4096, 16, 64, 4096, 8, 16, 4096}) {
        UlSMEMSTGfree(s, UlSMEMSTGaalloc(s, 50, align, 0));
        void *const again = UlSMEMSTGaalloc(s, 50, 16, 0);
        EXPECT_EQ(again, a);
        UlSMEMSTGfree(s, again);
        UlSMEMSTGfree(s, nullptr);
    }
    UlMEMSTGclose(s);
}

// The same requests, released in either order, soon need the heap no more; requests that grow leave nothing behind.
TEST(Storage, MemoryDoesNotGrowWithTheNumberOfCalls) {
    if (!own_heap) GTEST_SKIP();
    Random r(2);
    void *const s = UlSMEMSTGopen(nullptr, 1000, 0);
    UlSMEMSTGaalloc(s, 10, 8, 0);
    std::vector<std::pair<size_t, size_t>> pattern;
    for (int i = 0; i < 40; ++i) pattern.push_back({size_t(1) << r() % 22, size_t(1) << r() % 13});
    std::vector<void *> blocks(pattern.size());
    for (int round = 0; round < 2000; ++round) {
        if (round == 20) heap_calls = 0;
        blocks.clear();
        for (size_t i = size_t(round % 3); i < pattern.size(); ++i)
            blocks.push_back(UlSMEMSTGaalloc(s, pattern[i].first, pattern[i].second, 0));
        if (round % 2) std::reverse(blocks.begin(), blocks.end());
        for (void *p : blocks) UlSMEMSTGfree(s, p);
    }
    EXPECT_EQ(heap_calls, 0);
    UlSMEMSTGclear(s);
    const size_t before = mallinfo2().hblkhd;
    for (size_t bytes = 1 << 20; bytes < 64 << 20; bytes += 1 << 20) UlSMEMSTGfree(s, UlSMEMSTGaalloc(s, bytes, 8, 0));
    EXPECT_LT(mallinfo2().hblkhd, before + (size_t(72) << 20));
    UlMEMSTGclose(s);
}

TEST(Storage, ImpossibleRequestsAreNullAndChangeNothing) {
    void *const s = UlSMEMSTGopen(nullptr, 0, 0);
    void *const a = UlSMEMSTGaalloc(s, 64, 16, 0);
    for (size_t bytes : {SIZE_MAX, SIZE_MAX - 7, SIZE_MAX / 2, SIZE_MAX >> 17})
        for (size_t align : {size_t(0), size_t(8), SIZE_MAX / 2 + 1})
            EXPECT_EQ(UlSMEMSTGaalloc(s, bytes, align, 0), nullptr);
    EXPECT_EQ(UlSMEMSTGaalloc(s, 8, 24, 0), nullptr);
    EXPECT_EQ(UlSMEMSTGaalloc(nullptr, 8, 8, 0), nullptr);
    heap_limit = 0;
    void *const none = UlSMEMSTGopen(nullptr, 0, 0), *const big = UlSMEMSTGaalloc(s, 1 << 20, 16, 0);
    heap_limit = SIZE_MAX;
    EXPECT_EQ(none != nullptr || big != nullptr, !own_heap);
    UlSMEMSTGfree(s, big);
    void *const b = UlSMEMSTGaalloc(s, 64, 16, 0);
    EXPECT_TRUE(b > a && static_cast<char *>(b) < static_cast<char *>(a) + 256);
    EXPECT_NE(UlSMEMSTGaalloc(s, 1 << 20, 16, 0), nullptr);
    UlMEMSTGclose(none);
    alignas(8) unsigned char memory[48];
    heap_limit = 4096; // the block size is a wish
    EXPECT_NE(UlSMEMSTGaalloc(UlSMEMSTGopen(memory, 1 << 20, 0), 100, 16, 0), nullptr);
    heap_limit = SIZE_MAX;
    UlMEMSTGdestroy(memory);
    UlMEMSTGclose(s);
}

TEST(Environment, Life) {
    jorm_xe xe{};
    EXPECT_EQ(JormXEinit2(&xe, nullptr, 500), &xe);
    EXPECT_EQ(xe.flags, 1u);
    JormXEinit2(&xe, &xe, 7); // ignored
    EXPECT_TRUE(xe.stack == nullptr && xe.size_hint == 500);
    void *const p = JormXEalloca(&xe, 100000, 0);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 16, 0u);
    EXPECT_EQ(xe.stack, xe.inline_storage);
    uint64_t state[4];
    EXPECT_EQ(JormXEgetmmsp(&xe, state), state);
    void *const q = JormXEalloca(&xe, 10, 64);
    JormXEsetmmsp(&xe, state);
    EXPECT_EQ(JormXEalloca(&xe, 10, 64), q);
    JormXEclear(&xe);
    EXPECT_EQ(JormXEalloca(&xe, 100000, 0), p);
    EXPECT_EQ(JormXEresetMmstack(&xe, xe.inline_storage, 9), &xe); // already in use
    EXPECT_EQ(xe.size_hint, 500u);
    JormXEfini(&xe);
    EXPECT_TRUE(xe.stack == nullptr && xe.flags == 0 && xe.size_hint == 0);
    EXPECT_EQ(JormXEinit(&xe, xe.inline_storage)->stack, nullptr);
    JormXEfini(&xe);
    JormXEmmstack(&xe); // counts as initialised, so that nothing leaks
    EXPECT_EQ(xe.flags, 1u);
    JormXEclose(&xe);
}

TEST(Environment, OnAStackOfTheCaller) {
    void *const stack = jorm_mmstack_open(nullptr, 0);
    void *const mine = jorm_mmstack_alloca(stack, 10, 0);
    uint64_t mark[4];
    EXPECT_EQ(jorm_mmstack_state(stack, mark), mark);
    void *const above = jorm_mmstack_alloca(stack, 10, 0);
    jorm_mmstack_setstate(stack, mark);
    EXPECT_EQ(jorm_mmstack_alloca(stack, 10, 0), above);
    jorm_mmstack_freea(stack, above);
    jorm_xe xe{};
    JormXEopen(&xe, stack, 0);
    void *const a = JormXEalloca(&xe, 10, 0);
    JormXEfini(&xe);
    EXPECT_EQ(xe.stack, stack);
    EXPECT_EQ(jorm_mmstack_alloca(stack, 10, 0), a);
    jorm_mmstack_freea(stack, a);
    JormXEinit(&xe, stack);
    JormXEdestroyMmstack(&xe);
    EXPECT_TRUE(xe.stack == nullptr && xe.flags == 1);
    JormXEclose(&xe);
    jorm_mmstack_freea(stack, mine);

    jorm_xe *own = JormXEopen(nullptr, stack, 0); // closes the caller's storage in the end
    EXPECT_TRUE(own->flags == 17 && own->stack == stack);
    const void *const first = JormXEalloca(own, 10, 0);
    JormXEclear(own);
    EXPECT_EQ(JormXEalloca(own, 10, 0), first); // the record itself stays
    own = JormXEdestroyMmstack(own);
    EXPECT_TRUE(own->flags == 17 && own->stack != nullptr);
    JormXEclose(own);

    heap_limit = 0;
    own = JormXEopen(nullptr, nullptr, 0);
    heap_limit = SIZE_MAX;
    EXPECT_EQ(own == nullptr, own_heap);
    JormXEclose(own);
}

TEST(Environment, NullDoesNothing) {
    uint64_t state[4] = {};
    for (const void *p : std::initializer_list<const void *>{
             JormXEfini(JormXEclear(JormXEinit(nullptr, nullptr))), JormXEinitMmstack(nullptr, 1),
             JormXEdestroyMmstack(nullptr), JormXEalloca(nullptr, 1, 1), JormXEgetmmsp(nullptr, state)})
        EXPECT_EQ(p, nullptr);
    JormXEfreea(nullptr, state);
    JormXEsetmmsp(nullptr, state);
    JormXEclose(nullptr);
    UlMEMSTGclose(nullptr);
    UlSMEMSTGclear(nullptr);
    UlSMEMSTGsetstate(nullptr, state);
    EXPECT_FALSE(jorm::Scratch(nullptr, 8, 8));
}

TEST(Environment, ScratchReturnsItsMemory) {
    jorm_xe *const xe = JormXEopen(nullptr, nullptr, 0);
    const void *p = jorm::Scratch(xe, 100, 64).get();
    EXPECT_EQ(jorm::Scratch(xe, 100, 64).get(), p);
    EXPECT_EQ(jorm::scratch_bytes(1 << 20, 3, 5), size_t(15) << 20);
    for (size_t bytes :
         {jorm::scratch_bytes(-1, 4), jorm::scratch_bytes(INT64_MAX / 2, 3), jorm::scratch_bytes(-1, -1)})
        EXPECT_FALSE(jorm::Scratch(xe, bytes, 0));
    JormXEclose(xe);
}

TEST(Switch, UndecidedTurnsOff) {
    EXPECT_EQ(_G_jorm_use_simd, -1);
    EXPECT_EQ(jorm_use_simd(2), 0);
    EXPECT_EQ(_G_jorm_use_simd, -1);
    EXPECT_EQ(JormXEuseSimd(nullptr, 0), 0);
    EXPECT_EQ(_G_jorm_use_simd, 0);
    EXPECT_STREQ(jorm_level_str(), "base");
    _G_jorm_use_simd = 5;
    EXPECT_EQ(jorm_use_simd(~uint64_t(2)), 1);
    EXPECT_EQ(jorm::level(2), jorm::level_base);
    const jorm::Level highest = jorm::level(0);
    for (int cap = jorm::level_base; cap <= jorm::level_count; ++cap) {
        jorm::limit_level(jorm::Level(cap));
        EXPECT_EQ(jorm::level(0), std::min(jorm::Level(cap), highest));
    }
    for (const size_t level1 : {jorm_level1_dcache_size(), jorm_level1_icache_size()})
        EXPECT_TRUE(level1 > 0 && level1 < jorm_level2_cache_size());
}

TEST(Status, EachHasItsText) {
    const int64_t all[] = {0, -65514, -65508, -65511, -65524, -65496, -65525, 1};
    for (int64_t a : all)
        for (int64_t b : all) EXPECT_EQ(strcmp(jorm_status_str(a), jorm_status_str(b)) == 0, a == b);
    EXPECT_STREQ(jorm_status_str(1), "unknown status");
    EXPECT_STREQ(jorm_status_str(INT64_MIN), "unknown status");
}

} // namespace
