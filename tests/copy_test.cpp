// Copies, fills and borders over all types, layouts, regions, masks and overlaps, against a model that reads everything
// before it writes anything.
#include "jorm/copy.h"
#include "support/picture.hpp"

#include <functional>

namespace {

const uint32_t types[] = {JORM_U8,  JORM_U16, JORM_U32, JORM_U64, JORM_S8,
                          JORM_S16, JORM_S32, JORM_S64, JORM_F32, JORM_F64};
const double values[] = {300.4, -3, 2.5, 40000}, others[] = {1, -200, 3.5, 70000.25};
constexpr int room = 1 << 16; // bytes of a buffer

// Collects writes, so that all reading comes first.
struct Writes {
    std::vector<std::pair<uint8_t *, std::array<uint8_t, 8>>> list;
    uint32_t type;
    void add(uint8_t *to, const void *from) {
        list.push_back({to, {}});
        std::memcpy(list.back().second.data(), from, size_t(bytes_of(type)));
    }
    void add(uint8_t *to, double value) {
        uint8_t bytes[8];
        store(type, bytes, converted(type, value));
        add(to, bytes);
    }
    void apply() {
        for (auto &[to, bytes] : list) std::memcpy(to, bytes.data(), size_t(bytes_of(type)));
    }
};

// The calls that do one thing, the first of which is the entry. Those below it take start pointers, or bases and
// origins.
using Ways = std::vector<std::function<int64_t()>>;
struct Operand {
    uint32_t type;
    uint8_t *base, *start;
    const int32_t *origin, *stride;
    Operand(const jorm_array &a, const Index &from, int lead)
        : type(a.eltype), base(element(a, {})), start(element(a, from)), origin(from.data() + lead),
          stride(a.stride + lead) {}
};
#define LEAD xe, options, word, n
#define STARTS(x) x.type, x.start, x.stride
#define BASES(x) x.type, x.base, x.origin, x.stride

class Copies : public testing::Test {
protected:
    Env xe;
    Random r{20240817};
    Bytes buffers[3], before[3];

    void new_round(int i) {
        use_level(i % jorm::level_count);
        for (Bytes &b : buffers) {
            b.resize(room);
            scramble(r, b);
        }
    }
    // Mostly in a buffer of its own, sometimes in that of the destination.
    jorm_array place(int operand, uint32_t type, int ndims, const Index &extent) {
        auto [a, span] = lay_out(r, type, ndims, extent);
        EXPECT_LE(span, room);
        a.base = buffers[r.one_in(3) ? 0 : operand].data();
        a.loff += r.in(0, std::min(room - int(span), 60) / bytes_of(type)) * bytes_of(type);
        return a;
    }
    Index extent(int ndims) {
        const bool wide = r.one_in(5);
        return {ndims == 4 ? r.in(1, 3) : 1, r.in(1, wide ? 2 : 8), wide ? r.in(20, 90) : r.in(1, 9), r.in(1, 4)};
    }
    jorm_site site(const jorm_array &a) {
        jorm_site s;
        const Index n = extent_of(a);
        for (size_t k = 0; k < 4; ++k) {
            s.origin[k] = k == 0 && a.ndims == 3 ? 0 : r.in(-1, n[k] / 2);
            s.size[k] = r.in(1, n[k] + 1);
            if (r.one_in(2)) s.origin[k] = 0, s.size[k] = n[k];
        }
        return s;
    }
    Index start(const jorm_array &a) { return {a.ndims == 4 ? r.in(0, 1) : 0, r.in(-1, 2), r.in(-1, 2), r.one_in(4)}; }
    // One of the ways, often the first: the result must be the model's in every byte of every buffer.
    void expect_model(const Ways &ways, size_t usable, int64_t status, Writes &writes) {
        const size_t way = r.one_in(2) ? 0 : r() % usable;
        for (int i = 0; i < 3; ++i) before[i] = buffers[i];
        ASSERT_EQ(ways[way](), status) << "way " << way;
        for (int i = 0; i < 3; ++i) std::swap_ranges(before[i].begin(), before[i].end(), buffers[i].begin());
        if (status == JORM_OK) writes.apply();
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(before[i] == buffers[i]) << "buffer " << i << ", way " << way;
    }
};

TEST_F(Copies, CopyAndFillAnyLayoutUnderAnyMask) {
    enum { copy, copy_ex, fill, fill_ex, fill_ex2, kinds };
    for (int round = 0; round < 6000 && !HasFailure(); ++round) {
        new_round(round);
        const int kind = r.in(0, kinds - 1), ndims = r.in(3, 4);
        const bool fills = kind >= fill, masked = kind != copy && kind != fill, inverted = r.one_in(2);
        SCOPED_TRACE(testing::Message() << "round " << round << ", kind " << kind);
        uint32_t type = r.of(types);
        if (fills && bytes_of(type) == 8) type = JORM_F32;
        const Index size = extent(ndims);
        Index src_size = r.one_in(2) ? size : extent(ndims), mask_size = r.one_in(2) ? size : extent(ndims);
        for (Index *other : {&src_size, &mask_size}) (*other)[0] = r.one_in(2) ? size[0] : 1, (*other)[3] = size[3];
        if (r.one_in(2)) mask_size[3] = 1;
        const jorm_array dst = place(0, type, ndims, size);
        jorm_array src = place(1, type, src_size[0] == 1 ? r.in(3, ndims) : ndims, src_size);
        const bool in_place = r.one_in(8), unsaid = in_place && r.one_in(2); // the same, or a shift of it
        if (in_place) src = dst;
        const uint32_t mask_type = r.of(std::array{JORM_U8, JORM_S8});
        const jorm_array mask = place(2, mask_type, mask_size[0] == 1 ? r.in(3, ndims) : ndims, mask_size);
        for (int i = 0; i < 5000; ++i) buffers[2][r() % room] = inverted ? 255 : 0;
        const jorm_site roi_site = site(dst), *roi = r.one_in(2) ? &roi_site : nullptr;
        const Index at_src = start(src), at_mask = start(mask);
        const int32_t *at = r.one_in(2) ? at_src.data() : nullptr, *at_m = r.one_in(2) ? at_mask.data() : nullptr;
        const uint64_t options = inverted ? JORM_OPT_MASK_INVERT : 0;
        const double *v = r.one_in(6) ? nullptr : values, *w = r.one_in(6) ? nullptr : others;

        std::vector<const jorm_array *> arrays = {&dst};
        std::vector<const int32_t *> starts;
        if (!fills) arrays.push_back(&src), starts.push_back(unsaid && !at && roi ? roi->origin : at);
        if (masked) arrays.push_back(&mask), starts.push_back(at_m);
        const Region region = common_region(arrays, roi, starts, masked);
        const Index &in_dst = region.origin[0], &in_src = region.origin[1], &in_mask = region.origin[fills ? 1 : 2];
        const bool by_pixel = extent_of(mask)[3] == 1;

        Writes writes{{}, type};
        each(region.empty ? Index{} : region.size, [&](const Index &i) {
            Index m = sum(i, in_mask);
            if (by_pixel) m[3] = 0;
            const bool selected = !masked || *element(mask, m) != (inverted ? 255 : 0);
            const double *const from = selected ? v : w;
            uint8_t *const to = element(dst, sum(i, in_dst));
            if (fills && (selected || kind == fill_ex2)) writes.add(to, from ? from[i[3]] : 0);
            if (!fills && selected) writes.add(to, element(src, sum(i, in_src)));
        });

        // Below the entries, where operands are apart.
        const jorm_array *const source = unsaid ? nullptr : &src;
        const int lead = region.size[1] == 1 && r.one_in(2) ? 2 : 1;
        const uint32_t word = JORM_WORD(4 - lead);
        const int32_t *const n = region.size.data() + lead;
        const Operand d(dst, in_dst, lead), s(src, in_src, lead), m(mask, in_mask, lead);
        const Ways ways[kinds] = {
            {[&] { return JormCopy(xe, options, &dst, source, roi, at); },
             [&] { return jorma_copy(LEAD, BASES(d), BASES(s)); },
             [&] { return JormTGAcopy(xe, options, nullptr, word, n, STARTS(d), STARTS(s)); },
             [&] { // goes by the channel stride
                 const bool packed = d.stride[3 - lead] == bytes_of(type);
                 return packed ? jorma__copy(LEAD, d.start, d.stride, s.start, s.stride) : ways[copy][1]();
             }},
            {[&] { return JormCopyEx(xe, options, &dst, source, &mask, roi, at, at_m); },
             [&] { return (by_pixel ? jorma__copyxm : jorma__copyem)(LEAD, STARTS(d), STARTS(s), STARTS(m)); },
             [&] { return (by_pixel ? jorma_copyxm : jorma_copyem)(LEAD, BASES(d), BASES(s), BASES(m)); }},
            {[&] { return JormFill(xe, options, &dst, roi, v); }, [&] { return jorma__fill(LEAD, STARTS(d), v); },
             [&] { return jorma__dofill(LEAD, STARTS(d), v); }, [&] { return jorma_fill(LEAD, BASES(d), v); },
             [&] { return JormTGAfill(xe, options, v, word, n, STARTS(d)); }},
            {[&] { return JormFillEx(xe, options, &dst, &mask, roi, at_m, v); },
             [&] { return (by_pixel ? jorma__fillxm : jorma__fillem)(LEAD, STARTS(d), STARTS(m), v); },
             [&] { return (by_pixel ? jorma__dofillxm : jorma__dofillem)(LEAD, STARTS(d), STARTS(m), v); },
             [&] { return (by_pixel ? jorma_fillxm : jorma_fillem)(LEAD, BASES(d), BASES(m), v); }},
            {[&] { return JormFillEx2(xe, options, &dst, &mask, roi, at_m, v, w); },
             [&] { return (by_pixel ? jorma__fillxm2 : jorma__fillem2)(LEAD, STARTS(d), STARTS(m), v, w); },
             [&] { return (by_pixel ? jorma__dofillxm2 : jorma__dofillem2)(LEAD, STARTS(d), STARTS(m), v, w); },
             [&] { return (by_pixel ? jorma_fillxm2 : jorma_fillem2)(LEAD, BASES(d), BASES(m), v, w); }},
        };
        const bool apart =
            ndims == 3 && !region.empty && (fills || dst.base != src.base) && (!masked || dst.base != mask.base);
        expect_model(ways[kind], apart ? ways[kind].size() : 1, region.empty ? JORM_EEMPTY : JORM_OK, writes);
    }
}

// Where position p of a line of n pixels lies, step by step; -1: nowhere.
int continued(uint32_t mode, int p, int n) {
    while (p < 0 || p >= n) {
        if (mode == JORM_BORDER_NUL || mode == JORM_BORDER_CONST) return -1;
        if (mode == JORM_BORDER_REPLICATE) p += p < 0 ? 1 : -1;
        if (mode == JORM_BORDER_WRAP) p += p < 0 ? n : -n;
        if (mode == JORM_BORDER_REFLECT) p = p < 0 ? -1 - p : 2 * n - 1 - p;
        if (mode == JORM_BORDER_REFLECT101) p = n == 1 ? 0 : p < 0 ? -p : 2 * n - 2 - p;
    }
    return p;
}

TEST_F(Copies, Borders) {
    for (int round = 0; round < 4000 && !HasFailure(); ++round) {
        new_round(round);
        SCOPED_TRACE(testing::Message() << "round " << round);
        const int ndims = r.in(3, 4);
        const uint32_t mode = r.of(std::array{0u, 3u, 4u, 5u, 6u, 7u});
        const jorm_border border = {mode | uint32_t(r.in(0, 1)) << 4, 0, {300.4, -3, 2.5, 40000}};
        uint32_t type = r.of(types);
        if (mode == JORM_BORDER_CONST && bytes_of(type) == 8) type = JORM_S16;
        const Index size = extent(ndims), src_size = {r.one_in(2) ? size[0] : 1, r.in(1, 7), r.in(1, 7), size[3]};
        const bool in_place = r.one_in(4), aligned = in_place && r.one_in(2);
        const jorm_array dst = place(0, type, ndims, size), src = in_place ? dst : place(1, type, ndims, src_size);
        const jorm_site roi_site = site(dst), *roi = r.one_in(2) ? &roi_site : nullptr;
        const jorm_site part_site = site(src), *part = r.one_in(2) ? &part_site : nullptr;
        Region region = common_region({&dst}, roi, {});
        const Index &in_dst = region.origin[0];
        Index at = {ndims == 4 ? r.in(-1, 1) : 0, r.in(-9, 7), r.in(-40, 7), r.one_in(4)};
        if (aligned) at = in_dst;
        Index low = {0, 0, 0, at[3]}, n = extent_of(src), from = {}; // the image, and where the block starts in it
        region.size[3] = std::min(region.size[3], n[3] - at[3]);
        region.empty |= region.size[3] <= 0;
        bool inside = aligned;
        for (size_t k = 0; k < 3; ++k) {
            low[k] = part ? std::max(0, part->origin[k]) : 0;
            n[k] = (part ? std::min(n[k], part->origin[k] + part->size[k]) : n[k]) - low[k];
            from[k] = at[k] - low[k];
            region.empty |= n[k] <= 0 || from[k] >= n[k] || from[k] + region.size[k] <= 0;
            inside &= from[k] <= 0 && from[k] + region.size[k] >= n[k];
        }
        Writes writes{{}, type};
        each(region.empty ? Index{} : region.size, [&](const Index &i) {
            const int z = from[0] + i[0], y = continued(mode, from[1] + i[1], n[1]);
            const int x = continued(mode, from[2] + i[2], n[2]);
            if (z < 0 || z >= n[0]) return;
            uint8_t *const to = element(dst, sum(i, in_dst));
            if (y >= 0 && x >= 0) writes.add(to, element(src, sum(low, {z, y, x, i[3]})));
            if ((y < 0 || x < 0) && mode == JORM_BORDER_CONST) writes.add(to, border.values[i[3]]);
        });
        const uint32_t word = JORM_WORD(3);
        const int32_t *const block = &region.size[1], *const image = &n[1], *const start = &from[1];
        const Operand d(dst, in_dst, 1), s(src, low, 1);
        const jorm_mkbparams params = {&border, start, image};
        const jorm_array *const source = in_place && r.one_in(2) ? nullptr : &src;
        jorm_mkb_kernel *const kernels[] = {jorma__copymkb,      jorma__copymkb_const,   jorma__copymkb_replicate,
                                            jorma__copymkb_wrap, jorma__copymkb_reflect, jorma__copymkb_reflect101};
        const Ways ways = {
            [&] { return JormCopyRMkb(xe, 0, &dst, source, roi, at.data(), &border, part); },
            [&] {
                return kernels[mode ? mode - 2 : 0](xe, 0, word, block, STARTS(d), STARTS(s), start, image, &border);
            },
            [&] { return jorma__copymkb(xe, 0, word, block, STARTS(d), STARTS(s), start, image, &border); },
            [&] { return jorma_copymkb(xe, 0, word, block, BASES(d), BASES(s), start, image, &border); },
            [&] { return JormTGAcopymkb(xe, 0, &params, word, block, STARTS(d), STARTS(s)); },
            [&] { return part ? ways[0]() : JormCopyMkb(xe, 0, &dst, source, roi, at.data(), &border); },
        };
        const bool below = ndims == 3 && !region.empty && (inside || dst.base != src.base);
        expect_model(ways, below ? ways.size() : 1, region.empty ? JORM_EEMPTY : JORM_OK, writes);
    }
}

// Orders of copying and scratch memory: what works without an environment, and what needs one.
TEST_F(Copies, OverlapsInPlace) {
    const int h = 5, w = 8;
    const struct {
        const char *name;
        int dst, dst_row, dst_pixel, src, src_row, src_pixel, rows, pixels;
        bool scratch;
    } cases[] = {
        {"down", w, w, 1, 0, w, 1, h - 1, w, false},
        {"up", 0, w, 1, w, w, 1, h - 1, w, false},
        {"right", 3, w, 1, 0, w, 1, h, w - 3, false},
        {"down, from the last row", (h - 1) * w, -w, 1, (h - 2) * w, -w, 1, h - 1, w, false},
        {"every second pixel packed", 0, w, 1, 0, w, 2, h, w / 2, false},
        {"unpacked rows", 0, w, 1, 0, w - 2, 1, h, w - 2, false},
        {"mirrored", w - 1, w, -1, 0, w, 1, h, w, true},
        {"transposed", 0, 1, h, 0, w, 1, h, w, true},
        {"one row for all", 0, w, 1, w, 0, 1, h, w, true},
    };
    for (const auto &c : cases)
        for (jorm_xe *with : {&xe.xe, static_cast<jorm_xe *>(nullptr)}) {
            SCOPED_TRACE(testing::Message() << c.name << (with ? "" : " without an environment"));
            new_round(1);
            const auto in_buffer = [&](int first, int row, int pixel) {
                const uint32_t rows = uint32_t(c.rows), pixels = uint32_t(c.pixels);
                return jorm_array{{1, rows, pixels, 1}, {}, {0, row, pixel, 1}, 3, 0, JORM_U8, 0, first,
                                  &buffers[0][0]};
            };
            const jorm_array d = in_buffer(c.dst, c.dst_row, c.dst_pixel), s = in_buffer(c.src, c.src_row, c.src_pixel);
            Writes writes{{}, JORM_U8};
            each({1, c.rows, c.pixels, 1}, [&](const Index &i) { writes.add(element(d, i), element(s, i)); });
            const Ways copy = {[&] { return JormCopy(with, 0, &d, &s, nullptr, nullptr); }};
            expect_model(copy, 1, with || !c.scratch ? JORM_OK : JORM_EINVAL, writes);
        }
}

// Lengths about the thresholds of the loops, at every level; the bytes around stay.
TEST_F(Copies, Lengths) {
    const auto row = [](Bytes &bytes, size_t start, int n) {
        const int32_t extent[] = {1, n, 1};
        jorm_array a;
        return *_jorm_array__$xtrn(&a, JORM_U8, 3, extent, nullptr, &bytes[start]);
    };
    for (int level = 0; level < jorm::level_count; ++level)
        for (int n : {1, 15, 63, 64, 65, 191, 255, 257, 500, 24575, 24577, 786431, 786433, (9 << 20) + 5})
            for (size_t start : {8, 15}) {
                use_level(level);
                Bytes src(size_t(n) + 80), mask = src, dst(src.size(), 1), expected = dst;
                for (size_t i = 0; i < src.size(); ++i) src[i] = uint8_t(i * 31 >> 3), mask[i] = i % 300 > 140;
                const jorm_array d = row(dst, start, n), s = row(src, 8, n), m = row(mask, 3, n);
                const double value = double(start);
                const auto expect = [&](int64_t status, bool masked, auto model) {
                    for (size_t i = 0; i < size_t(n); ++i)
                        if (!masked || mask[3 + i]) expected[start + i] = model(i);
                    ASSERT_TRUE(status == JORM_OK && dst == expected) << n << " at " << start << " level " << level;
                };
                const auto copied = [&](size_t i) { return src[8 + i]; };
                const auto filled = [&](size_t) { return uint8_t(value); };
                expect(JormCopy(nullptr, 0, &d, &s, nullptr, nullptr), false, copied);
                expect(JormFillEx(nullptr, 0, &d, &m, nullptr, nullptr, &value), true, filled);
                expect(JormFill(nullptr, 0, &d, nullptr, &value), false, filled);
                expect(JormCopyEx(nullptr, 0, &d, &s, &m, nullptr, nullptr, nullptr), true, copied);
            }
}

// Slices of which only a later one needs scratch memory.
TEST_F(Copies, RefusedBeforeAnythingIsWritten) {
    new_round(0);
    int refused = 0;
    for (int i = 0; i < 20000; ++i) {
        const int32_t extent[] = {r.in(1, 4), r.in(1, 5), r.in(1, 2)};
        const auto strides = [&] { return Index{r.in(-14, 14), r.in(-5, 5), r.in(1, 2), 0}; };
        const Index to = strides(), from = strides();
        jorm_array d, s;
        _jorm_array__$xtrn(&d, JORM_U8, 3, extent, to.data(), &buffers[0][1000]);
        _jorm_array__$xtrn(&s, JORM_U8, 3, extent, from.data(), &buffers[0][size_t(1000 + r.in(-30, 30))]);
        const Bytes memory = buffers[0];
        if (JormCopy(nullptr, 0, &d, &s, nullptr, nullptr) == JORM_OK) continue;
        ++refused;
        ASSERT_EQ(memory, buffers[0]) << i;
    }
    EXPECT_GT(refused, 1000);
}

TEST_F(Copies, Statuses) {
    Bytes memory(4096, 5);
    uint8_t *const p = memory.data();
    const auto array = [p](uint32_t type, uint32_t channels) {
        const int e = bytes_of(type);
        return jorm_array{{1, 4, 5, channels}, {}, {1024, 128, 4 * e, e}, 3, 0, type, 0, 0, p};
    };
    const jorm_array a = array(JORM_U8, 3), s8 = array(JORM_S8, 3), two = array(JORM_U8, 2), wide = array(JORM_F64, 3);
    const jorm_array mask = array(JORM_U8, 1), s16_mask = array(JORM_S16, 1);
    const jorm_border constant = {JORM_BORDER_CONST, 0, {}}, unknown = {2, 0, {}}, wrap = {JORM_BORDER_WRAP, 0, {}};
    const int32_t n[] = {4, 5, 3}, s[] = {128, 4, 1}, odd[] = {128, 12, 3};
    const uint32_t word = JORM_WORD(3), u8 = JORM_U8;
    const auto copy_ex = [&](const jorm_array &m) { return JormCopyEx(xe, 0, &a, &a, &m, nullptr, nullptr, nullptr); };
    const auto with_border = [&](const jorm_array &x, const jorm_array &y, const jorm_border &b) {
        return JormCopyMkb(xe, 0, &x, &y, nullptr, nullptr, &b);
    };
    expect_each(JORM_EINVAL,
                {JormCopy(xe, 0, &a, &s8, nullptr, nullptr), copy_ex(s16_mask), copy_ex(two),
                 with_border(a, a, unknown), with_border(a, s8, wrap), jorma__copy(xe, 0, word, n, p, odd, p, s),
                 jorma__copy(xe, 0, word, n, nullptr, s, p, s), jorma__fill(xe, 0, word, nullptr, u8, p, s, nullptr),
                 JormTGAcopyEx(xe, 0, nullptr, word, n, u8, p, s, u8, p, s, u8, p, s),
                 JormTGAfillEx(xe, 0, nullptr, word, n, u8, p, s, u8, p, s),
                 JormTGAcopymkb(xe, 0, nullptr, word, n, u8, p, s, u8, p, s)});
    expect_each(JORM_ENOTSUP,
                {JormFill(xe, 0, &wide, nullptr, nullptr), JormFillEx(xe, 0, &wide, &mask, nullptr, nullptr, nullptr),
                 with_border(wide, wide, constant), jorma__copy(xe, 0, JORM_WORD(4), n, p, s, p, s)});
    EXPECT_EQ(memory, Bytes(4096, 5));
}

} // namespace
