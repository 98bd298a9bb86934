// The packed call: the record, and which pieces an entry sees for arrays of four axes in any layout.
#include "jorm/arith.h"
#include "jorm/array.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <vector>

namespace {

constexpr uint32_t code = 0x66696C74;
const uint64_t option_bits = 0x1234500000;
const uint32_t types[5] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32, JORM_S8};
jorm_xe *const environment = reinterpret_cast<jorm_xe *>(uintptr_t(4096)); // passed on, never touched

// What the entry has seen: for each element of each piece, where it lies in the memory of every array.
using Places = std::array<ptrdiff_t, 5>;
struct Log {
    uint8_t *memory = nullptr;
    int calls = 0, stop_at = 0;
    int64_t status = JORM_OK;
    uint32_t axes = 0;
    bool passed_on = true;
    std::vector<Places> places;
};

struct Piece {
    uint32_t type;
    void *start;
    const int32_t *stride;
};

int64_t see(Log *log, jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size,
            std::initializer_list<Piece> arrays) {
    const int n = int(word & 15);
    log->axes = word & 15;
    log->passed_on = log->passed_on && xe == environment && options == option_bits && word == JORM_WORD(n) && n >= 2;
    for (size_t k = 0; k < arrays.size(); ++k) log->passed_on = log->passed_on && arrays.begin()[k].type == types[k];
    for (int y = 0; y < (n > 2 ? size[n - 3] : 1); ++y)
        for (int x = 0; x < size[n - 2]; ++x)
            for (int c = 0; c < size[n - 1]; ++c) {
                ptrdiff_t *place = log->places.emplace_back().data();
                for (const auto &[type, start, stride] : arrays)
                    *place++ = !start ? 0
                                      : static_cast<uint8_t *>(start) - log->memory +
                                            (n > 2 ? ptrdiff_t(y) * stride[n - 3] : 0) + ptrdiff_t(x) * stride[n - 2] +
                                            ptrdiff_t(c) * stride[n - 1];
            }
    return ++log->calls == log->stop_at ? log->status : int64_t(JORM_OK);
}

// Entries for one to five arrays; the log is their parameter block.
#define LEAD jorm_xe *xe, uint64_t options, const void *log, uint32_t word, const int32_t *size
#define SEE static_cast<Log *>(const_cast<void *>(log)), xe, options, word, size
#define A(k) uint32_t t##k, void *p##k, const int32_t *s##k
#define P(k)                                                                                                           \
    { t##k, p##k, s##k }
int64_t entry1(LEAD, A(1)) { return see(SEE, {P(1)}); }
int64_t entry2(LEAD, A(1), A(2)) { return see(SEE, {P(1), P(2)}); }
int64_t entry3(LEAD, A(1), A(2), A(3)) { return see(SEE, {P(1), P(2), P(3)}); }
int64_t entry4(LEAD, A(1), A(2), A(3), A(4)) { return see(SEE, {P(1), P(2), P(3), P(4)}); }
int64_t entry5(LEAD, A(1), A(2), A(3), A(4), A(5)) { return see(SEE, {P(1), P(2), P(3), P(4), P(5)}); }
#undef LEAD

template <class F> jorm_proc *proc(F *f) { return reinterpret_cast<jorm_proc *>(reinterpret_cast<void (*)()>(f)); }
jorm_proc *const entries[] = {proc(entry1), proc(entry2), proc(entry3), proc(entry4), proc(entry5)};

// Each test array has four slots of origin and stride; the vectors handed over start at the first used slot.
struct Array {
    int32_t origin[4] = {}, stride[4] = {};
    bool has_origin = true;
};

jorm_pack *pack(jorm_pack *record, Log *log, int arrays, int used, int piece_axes, const int32_t *size, const Array *a,
                uint8_t *base) {
    const int lead = 4 - used;
#define LEAD record, code, entries[arrays - 1], environment, option_bits, log, JORM_WORD(used), piece_axes, size + lead
#define ARRAY(k) types[k], base, a[k].has_origin ? a[k].origin + lead : nullptr, a[k].stride + lead
    switch (arrays) {
    case 1:
        return jorma_genpackL(LEAD, ARRAY(0));
    case 2:
        return jorma_mappackL(LEAD, ARRAY(0), ARRAY(1));
    case 3:
        return jorma_zippackL(LEAD, ARRAY(0), ARRAY(1), ARRAY(2));
    case 4:
        return jorma_zip3packL(LEAD, ARRAY(0), ARRAY(1), ARRAY(2), ARRAY(3));
    default:
        return jorma_zip4packL(LEAD, ARRAY(0), ARRAY(1), ARRAY(2), ARRAY(3), ARRAY(4));
    }
#undef LEAD
#undef ARRAY
}

TEST(Pack, FillsTheRecord) {
    uint8_t byte;
    const int32_t size[4] = {2, 3, 4, 0x2B};
    const Array a[5];
    for (int n = 1; n <= 5; ++n)
        for (int used : {3, 4}) {
            Log log;
            jorm_pack r;
            std::memset(&r, 0xA5, sizeof r);
            ASSERT_EQ(pack(&r, &log, n, used, 7, size, a, &byte), &r);
            EXPECT_TRUE(r.count == n && r.reduce_hint == 0 && r.opcode == code && r.slots == 4 && r.piece_axes == 7);
            EXPECT_EQ(r.codes, (0x9DBA1u & ((1u << 4 * n) - 1)) | 11u << 24);
            EXPECT_TRUE(r.entry == entries[n - 1] && r.parameters == &log);
            EXPECT_TRUE(r.environment == environment && r.options == option_bits && r.size == size);
            EXPECT_STREQ(r.name, "unknown");
            for (int k = 0; k < n; ++k) {
                const jorm_pack_array &p = r.array[k];
                EXPECT_TRUE(p.type == types[k] && p.base == &byte && p.origin == a[k].origin &&
                            p.stride == a[k].stride);
            }
        }
    jorm_pack r;
    jorma_genpackL(&r, code, nullptr, nullptr, 0, nullptr, JORM_WORD(4), 3, size, 1, nullptr, size, size);
    EXPECT_TRUE(!r.array[0].base && !r.array[0].origin && !r.array[0].stride);
    jorma_genpackL(&r, code, nullptr, nullptr, 0, nullptr, JORM_WORD(4), 3, size, 1, &byte, size, nullptr);
    EXPECT_TRUE(!r.array[0].base && !r.array[0].origin && !r.array[0].stride);
}

// Random layouts: every element is seen once, corresponding ones together, in pieces of at most the wanted axes.
TEST(Pack, EveryElementOnce) {
    std::mt19937 rng(1);
    std::vector<uint8_t> memory(1 << 16);
    uint8_t *const base = memory.data() + memory.size() / 2;
    for (int i = 0; i < 3000; ++i) {
        int32_t size[4];
        for (int32_t &v : size) v = int32_t(1 + rng() % 4);
        const int n = int(1 + rng() % 5), used = rng() % 4 ? 4 : 3;
        if (used == 3) size[0] = 1;
        Array a[5];
        for (Array &x : a) {
            int32_t step = int32_t(1 + rng() % 2);
            for (int s = 3; s >= 0; --s) {
                x.stride[s] = rng() % 8 ? step : -step;
                if (rng() % 16 == 0) x.stride[s] = 0;
                step = step * size[s] + (rng() % 3 ? 0 : int32_t(rng() % 5));
                x.origin[s] = s < 4 - used ? 0 : int32_t(rng() % 3);
            }
            x.has_origin = rng() % 4;
        }
        Log log;
        log.memory = base;
        const int axes = int(rng() % 6) - 1;
        jorm_pack r;
        ASSERT_EQ(jorma_call(pack(&r, &log, n, used, axes, size, a, base)), JORM_OK);
        EXPECT_TRUE(log.passed_on);
        EXPECT_LE(int(log.axes), std::clamp(axes, 2, 3));
        std::vector<Places> want;
        for (int32_t z = 0; z < size[0]; ++z)
            for (int32_t y = 0; y < size[1]; ++y)
                for (int32_t x = 0; x < size[2]; ++x)
                    for (int32_t c = 0; c < size[3]; ++c) {
                        Places here{};
                        for (int k = 0; k < n; ++k) {
                            const int32_t at[4] = {z, y, x, c};
                            for (int s = 0; s < 4; ++s)
                                here[size_t(k)] +=
                                    ptrdiff_t(at[s] + (a[k].has_origin ? a[k].origin[s] : 0)) * a[k].stride[s];
                        }
                        want.push_back(here);
                    }
        std::sort(want.begin(), want.end());
        std::sort(log.places.begin(), log.places.end());
        ASSERT_EQ(want, log.places) << "round " << i;
    }
}

struct Dense {
    int32_t size[4] = {3, 4, 5, 2};
    Array a[2];
    uint8_t memory[256];
    Log log;
    jorm_pack record;

    Dense() {
        log.memory = memory;
        for (Array &x : a) {
            const int32_t stride[4] = {40, 10, 2, 1};
            std::copy_n(stride, 4, x.stride);
        }
    }
    int64_t call(int axes) { return jorma_call(pack(&record, &log, 2, 4, axes, size, a, memory)); }
};

TEST(Pack, MergesWhatIsContiguousInEveryArray) {
    Dense dense;
    EXPECT_EQ(dense.call(3), JORM_OK);
    EXPECT_EQ(dense.log.calls, 1);
    Dense padded; // rows of one array do not follow each other
    padded.a[1].stride[0] = 48, padded.a[1].stride[1] = 12;
    EXPECT_EQ(padded.call(3), JORM_OK);
    EXPECT_EQ(padded.log.calls, 1);
    EXPECT_EQ(padded.call(2), JORM_OK);
    EXPECT_EQ(padded.log.calls, 1 + 12);
    Dense planes; // nor do planes
    planes.a[1].stride[0] = 50, planes.a[1].stride[1] = 12;
    EXPECT_EQ(planes.call(3), JORM_OK);
    EXPECT_EQ(planes.log.calls, 3);
    Dense one;
    one.size[0] = 1, one.a[1].stride[0] = 1000, one.a[1].stride[1] = 12;
    EXPECT_EQ(one.call(3), JORM_OK);
    EXPECT_EQ(one.log.calls, 1);
}

TEST(Pack, PassesTheFirstFailureOn) {
    Dense d;
    d.a[0].stride[0] = 50, d.a[0].stride[1] = 12;
    d.log.stop_at = 2, d.log.status = JORM_ENOMEM;
    EXPECT_EQ(d.call(3), JORM_ENOMEM);
    EXPECT_EQ(d.log.calls, 2);
    EXPECT_EQ(d.log.places.size(), 80u);
    d.log.status = 7; // any status but 0 ends the call
    d.log.calls = 0;
    EXPECT_EQ(d.call(3), 7);
}

TEST(Pack, RefusesBadRecords) {
    Dense d;
    pack(&d.record, &d.log, 2, 4, 3, d.size, d.a, d.memory);
    for (int count : {0, 6, 65535}) {
        jorm_pack r = d.record;
        r.count = uint16_t(count);
        EXPECT_EQ(jorma_call(&r), JORM_EINVAL);
    }
    jorm_pack r = d.record;
    r.entry = nullptr;
    EXPECT_EQ(jorma_call(&r), JORM_EINVAL);
    r = d.record;
    r.size = nullptr;
    EXPECT_EQ(jorma_call(&r), JORM_EINVAL);
    d.size[1] = 0;
    EXPECT_EQ(jorma_call(&d.record), JORM_EINVAL);
    EXPECT_EQ(jorma_call(nullptr), JORM_EINVAL);
    EXPECT_EQ(d.log.calls, 0);
    EXPECT_EQ(jorma_proc_einval(), JORM_EINVAL);
    EXPECT_EQ(jorma_proc_enotimp(), JORM_ENOTIMP);
    EXPECT_EQ(jorma_proc_enotsup(), JORM_ENOTSUP);
}

TEST(Pack, AnArrayMayBeLeftOut) {
    Dense d;
    pack(&d.record, &d.log, 2, 4, 3, d.size, d.a, d.memory);
    d.record.array[1] = {types[1], nullptr, nullptr, nullptr};
    EXPECT_EQ(jorma_call(&d.record), JORM_OK);
    EXPECT_TRUE(d.log.calls == 1 && d.log.passed_on && d.log.places.size() == 120);
    EXPECT_EQ(d.log.places.back(), (Places{119, 0}));
}

// With both option bits the hint keeps axes from being merged.
TEST(Pack, Hint) {
    Dense d;
    pack(&d.record, &d.log, 2, 4, 3, d.size, d.a, d.memory);
    for (uint64_t bits : {0x100, 0x200, 0x300}) {
        d.log.calls = 0;
        d.record.options = bits;
        d.record.reduce_hint = -1;
        EXPECT_EQ(jorma_call(&d.record), JORM_OK);
        EXPECT_EQ(d.log.calls, bits == 0x300 ? 3 : 1);
    }
}

} // namespace
