// The packed call: the record, and which pieces an entry sees for arrays of four axes in any layout.
#include "jorm/arith.h"
#include "support/picture.hpp"

namespace {

constexpr uint32_t code = 0x66696C74;
const uint64_t option_bits = 0x1234500000;
const uint32_t types[5] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32, JORM_S8};
jorm_xe *const environment = reinterpret_cast<jorm_xe *>(uintptr_t(4096)); // passed on, never touched

// What the entry has seen: for each element of each piece, where it lies in the memory of every array.
using Places = std::array<ptrdiff_t, 5>;
struct Log {
    uint8_t *memory = nullptr;
    int calls = 0, stop_at = 0, most_axes = 3;
    int64_t status = JORM_OK;
    bool passed_on = true;
    std::vector<Places> places;
};

struct Piece {
    uint32_t type;
    void *start;
    const int32_t *stride;
};

int64_t see(jorm_xe *xe, uint64_t options, const void *parameters, uint32_t word, const int32_t *size,
            const std::vector<Piece> &arrays) {
    Log *const log = static_cast<Log *>(const_cast<void *>(parameters));
    const int n = int(word & 15);
    log->passed_on &= xe == environment && options == option_bits && word == JORM_WORD(n) && n <= log->most_axes;
    for (size_t k = 0; k < arrays.size(); ++k) log->passed_on &= arrays[k].type == types[k];
    each({1, n > 2 ? size[n - 3] : 1, size[n - 2], size[n - 1]}, [&](const Index &i) {
        Places &here = log->places.emplace_back();
        for (size_t k = 0; k < arrays.size(); ++k) {
            if (!arrays[k].start) continue;
            here[k] = static_cast<uint8_t *>(arrays[k].start) - log->memory;
            for (int slot = 4 - n; slot < 4; ++slot)
                here[k] += ptrdiff_t(i[size_t(slot)]) * arrays[k].stride[slot - 4 + n];
        }
    });
    return ++log->calls == log->stop_at ? log->status : int64_t(JORM_OK);
}

// Entries for one to five arrays; the log is their parameter block.
#define LEAD jorm_xe *xe, uint64_t options, const void *log, uint32_t word, const int32_t *size
#define SEE xe, options, log, word, size
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
    Index origin = {}, stride = {};
    bool has_origin = true;
};

// The record of a call; what jorma_call does not read is checked here.
jorm_pack pack(Log *log, int arrays, int used, int piece_axes, const Index &size, const Array *a, uint8_t *base) {
    const int lead = 4 - used;
    jorm_pack r, *filled = nullptr;
    std::memset(&r, 0xA5, sizeof r);
#define LEAD &r, code, entries[arrays - 1], environment, option_bits, log, JORM_WORD(used), piece_axes, &size[lead]
#define ARRAY(k) types[k], base, a[k].has_origin ? &a[k].origin[lead] : nullptr, &a[k].stride[lead]
    if (arrays == 1) filled = jorma_genpackL(LEAD, ARRAY(0));
    if (arrays == 2) filled = jorma_mappackL(LEAD, ARRAY(0), ARRAY(1));
    if (arrays == 3) filled = jorma_zippackL(LEAD, ARRAY(0), ARRAY(1), ARRAY(2));
    if (arrays == 4) filled = jorma_zip3packL(LEAD, ARRAY(0), ARRAY(1), ARRAY(2), ARRAY(3));
    if (arrays == 5) filled = jorma_zip4packL(LEAD, ARRAY(0), ARRAY(1), ARRAY(2), ARRAY(3), ARRAY(4));
#undef LEAD
#undef ARRAY
    EXPECT_TRUE(filled == &r && r.count == arrays && r.reduce_hint == 0 && r.opcode == code && r.slots == 4);
    EXPECT_EQ(r.codes, (0x9DBA1u & ((1u << 4 * arrays) - 1)) | uint32_t(size[3] & 15) << 24);
    EXPECT_STREQ(r.name, "unknown");
    return r;
}

// Random layouts: every element is seen once, corresponding ones together, in pieces of at most the wanted axes.
TEST(Pack, EveryElementOnce) {
    Random r(1);
    Bytes memory(1 << 16);
    uint8_t *const base = memory.data() + memory.size() / 2;
    for (int round = 0; round < 3000; ++round) {
        const int n = r.in(1, 5), used = r.in(3, 4), axes = r.in(-1, 4);
        const Index size = {used == 3 ? 1 : r.in(1, 4), r.in(1, 4), r.in(1, 4), r.in(1, 4)};
        Array a[5];
        for (Array &x : a) {
            int32_t step = r.in(1, 2);
            for (size_t s = 4; s-- > 0;) {
                x.stride[s] = r.one_in(16) ? 0 : r.one_in(8) ? -step : step;
                step = step * size[s] + (r.one_in(3) ? r.in(0, 4) : 0);
                x.origin[s] = s < size_t(4 - used) ? 0 : r.in(0, 2);
            }
            x.has_origin = !r.one_in(4);
        }
        Log log;
        log.memory = base;
        log.most_axes = std::clamp(axes, 2, 3);
        const jorm_pack record = pack(&log, n, used, axes, size, a, base);
        ASSERT_EQ(jorma_call(&record), JORM_OK);
        EXPECT_TRUE(log.passed_on);
        std::vector<Places> want;
        each(size, [&](const Index &i) {
            Places &here = want.emplace_back();
            for (size_t k = 0; k < size_t(n); ++k)
                for (size_t s = 0; s < 4; ++s)
                    here[k] += ptrdiff_t(i[s] + (a[k].has_origin ? a[k].origin[s] : 0)) * a[k].stride[s];
        });
        std::sort(want.begin(), want.end());
        std::sort(log.places.begin(), log.places.end());
        ASSERT_EQ(want, log.places) << "round " << round;
    }
}

// Two arrays of which the first is dense.
struct Dense {
    Index size = {3, 4, 5, 2};
    Array a[2] = {{{}, {40, 10, 2, 1}}, {{}, {40, 10, 2, 1}}};
    uint8_t memory[256];
    Log log;
    jorm_pack record;
    Dense() {
        log.memory = memory;
        record = pack(&log, 2, 4, 3, size, a, memory);
    }
};

TEST(Pack, MergesWhatIsContiguousInEveryArray) {
    const struct {
        int planes, plane_stride, row_stride, axes, hint, calls;
        uint64_t options;
    } cases[] = {
        {3, 40, 10, 3, 0, 1, 0},
        {3, 48, 12, 3, 0, 1, 0}, // the rows of one array do not follow each other
        {3, 48, 12, 2, 0, 12, 0},
        {3, 50, 12, 3, 0, 3, 0}, // nor do its planes
        {1, 1000, 12, 3, 0, 1, 0},
        {3, 40, 10, 3, -1, 1, 0x100}, // with both option bits the hint keeps axes from being merged
        {3, 40, 10, 3, -1, 1, 0x200},
        {3, 40, 10, 3, -1, 3, 0x300},
    };
    for (const auto &c : cases) {
        Dense d;
        d.size[0] = c.planes, d.a[1].stride[0] = c.plane_stride, d.a[1].stride[1] = c.row_stride;
        d.record.piece_axes = c.axes, d.record.reduce_hint = int16_t(c.hint), d.record.options |= c.options;
        EXPECT_EQ(jorma_call(&d.record), JORM_OK);
        EXPECT_EQ(d.log.calls, c.calls) << &c - cases;
    }
}

TEST(Pack, PassesTheFirstFailureOn) {
    for (const int64_t status : {int64_t(JORM_ENOMEM), int64_t(7)}) { // any status but 0 ends the call
        Dense d;
        d.a[0].stride[0] = 50, d.a[0].stride[1] = 12;
        d.log.stop_at = 2, d.log.status = status;
        EXPECT_EQ(jorma_call(&d.record), status);
        EXPECT_EQ(d.log.calls, 2);
        EXPECT_EQ(d.log.places.size(), 80u);
    }
}

TEST(Pack, RefusesBadRecords) {
    void (*const faults[])(Dense &) = {
        [](Dense &d) { d.record.count = 0; },      [](Dense &d) { d.record.count = 6; },
        [](Dense &d) { d.record.count = 65535; },  [](Dense &d) { d.record.entry = nullptr; },
        [](Dense &d) { d.record.size = nullptr; }, [](Dense &d) { d.size[1] = 0; },
    };
    for (const auto fault : faults) {
        Dense d;
        fault(d);
        EXPECT_EQ(jorma_call(&d.record), JORM_EINVAL) << &fault - faults;
        EXPECT_EQ(d.log.calls, 0);
    }
    EXPECT_EQ(jorma_call(nullptr), JORM_EINVAL);
    EXPECT_EQ(jorma_proc_einval(), JORM_EINVAL);
    EXPECT_EQ(jorma_proc_enotimp(), JORM_ENOTIMP);
    EXPECT_EQ(jorma_proc_enotsup(), JORM_ENOTSUP);
}

TEST(Pack, AnArrayMayBeLeftOut) {
    Dense d;
    d.record.array[1] = {types[1], nullptr, nullptr, nullptr};
    EXPECT_EQ(jorma_call(&d.record), JORM_OK);
    EXPECT_TRUE(d.log.calls == 1 && d.log.passed_on && d.log.places.size() == 120);
    EXPECT_EQ(d.log.places.back(), (Places{119, 0}));
    const int32_t *const vector = d.size.data();
    d.size[3] = 0x2B;
    for (const int32_t *stride : {vector, static_cast<const int32_t *>(nullptr)}) {
        void *const base = stride ? nullptr : d.memory;
        jorma_genpackL(&d.record, code, nullptr, nullptr, 0, nullptr, JORM_WORD(4), 3, vector, 1, base, vector, stride);
        EXPECT_EQ(d.record.codes, JORM_U8 | 11u << 24);
        EXPECT_TRUE(!d.record.array[0].base && !d.record.array[0].origin && !d.record.array[0].stride);
    }
}

} // namespace
