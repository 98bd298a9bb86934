// Floods against the slow one of the support folder: whole trees, pixel lists, guard words.
#include "jorm/xe.h"
#include "support/flood_case.hpp"

namespace {

struct Env {
    jorm_xe xe = {};
    Env() { JormXEinit(&xe, nullptr); }
    ~Env() { JormXEclose(&xe); }
    operator jorm_xe *() { return &xe; }
};

struct Store : jorm_fwtsres {
    Store() : jorm_fwtsres{} { JormFWTSRESinit(this, nullptr, nullptr); }
    ~Store() { JormFWTSRESfini(this); }
};

jorm_array describe(std::vector<uint8_t> &samples, int H, int W) {
    jorm_array a;
    const int32_t extent[] = {H, W, 1};
    _jorm_array__$xtrn(&a, JORM_U8, 3, extent, nullptr, samples.data());
    return a;
}

TEST(Watershed, TreesAndListsOfSmallPictures) {
    Random r(1);
    Env xe;
    Store plain, listed;
    for (int round = 0; round < 6000; ++round) {
        const int kind = round % flood_kinds;
        const int H = r.one_in(6) ? r.in(1, 3) : r.in(1, 40), W = r.one_in(6) ? r.in(2, 4) : r.in(2, 40);
        std::vector<uint8_t> samples = flood_picture(r, H, W, kind);
        SlowFlood::Options o;
        o.inverted = r.one_in(2);
        o.shift = r.one_in(2) ? 0 : r.in(0, 7);
        o.row = r.in(0, H - 1);
        o.column = r.in(1, W - 1);
        const bool fast = r.one_in(3) ? false : true;
        o.smallest = fast ? 16 : 1;
        const SlowFlood slow(samples, H, W, o);

        const jorm_array image = describe(samples, H, W);
        std::vector<uint32_t> buffer(slow.buffer.size() + 2, 0xABCDABCD);
        listed.buffer = &buffer[1];
        for (Store *const store : {&plain, &listed}) {
            jorm_fwtsparams params = {store, o.inverted ? 1 : r.in(2, 3) % 3, uint16_t(o.shift), int32_t(o.row),
                                      int32_t(o.column) - 1};
            const uint64_t options = fast ? (r.one_in(2) ? 0x200000 : 0x400000) : 0;
            jorm_xe *const env = r.one_in(8) ? nullptr : &xe.xe;
            ASSERT_EQ(JormWatershed(env, options, &image, nullptr, &params), JORM_OK);
            expect_same_tree(slow.root, store->root);
            if (HasFatalFailure()) FAIL() << "round " << round << ", kind " << kind << ", " << H << " x " << W;
        }
        EXPECT_EQ(plain.words, nullptr);
        ASSERT_EQ(listed.words, listed.buffer + W + 2);
        EXPECT_EQ(buffer.front(), 0xABCDABCD);
        EXPECT_EQ(buffer.back(), 0xABCDABCD);
        ASSERT_EQ(std::vector(buffer.begin() + 1, buffer.end() - 1), slow.buffer) << "round " << round;
    }
}

} // namespace
