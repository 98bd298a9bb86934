// Copies, fills and borders over all types, layouts, regions, masks and overlaps, against a model that reads everything
// before it writes anything.
#include "jorm/copy.h"

#include "jorm/array.h"
#include "jorm/xe.h"
#include "xe/level.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <numeric>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Index = std::array<int, 4>;

const uint32_t types[] = {JORM_U8,  JORM_U16, JORM_U32, JORM_U64, JORM_S8,
                          JORM_S16, JORM_S32, JORM_S64, JORM_F32, JORM_F64};
constexpr int room = 50000; // bytes of a buffer
int bytes_of(uint32_t type) { return std::array{0, 1, 2, 4, 8, 4, 8, 0}[type & 7]; }

struct Random : std::mt19937 {
    using std::mt19937::mt19937;
    int in(int low, int high) { return std::uniform_int_distribution<int>(low, high)(*this); }
    bool maybe() { return in(0, 1) != 0; }
};

struct Array : jorm_array {
    int64_t offset(const Index &i) const {
        int64_t o = loff;
        for (int k = 4 - ndims; k < 4; ++k) o += int64_t(i[k]) * stride[k];
        return o;
    }
    uint8_t *at(const Index &i) const { return static_cast<uint8_t *>(base) + offset(i); }
    int channels() const { return int(extent[3] & 7) + int(extent[3] >> 3 & 1); }
    int size(int k) const { return k == 3 ? channels() : int(extent[k]); }
};

// An array somewhere in the buffer: axes in any order in memory, padded, reversed. Dense and interleaved half the time.
Array lay_out(Random &r, Bytes &buffer, uint32_t type, int ndims, Index extent) {
    Array a = {};
    a.ndims = uint16_t(ndims);
    a.eltype = type;
    a.base = buffer.data();
    const int element = bytes_of(type);
    std::array<int, 4> order = {3, 2, 1, 0};
    const bool dense = r.maybe();
    if (!dense) std::shuffle(order.begin(), order.end(), r);
    int64_t span = element, low = 0;
    for (int k : order) {
        a.extent[k] = uint32_t(extent[k]);
        if (k < 4 - ndims) {
            a.stride[k] = r.in(0, 1) * 12345; // not read
            continue;
        }
        const int64_t step = span + (dense ? 0 : r.in(0, 2) * element);
        const bool reversed = !dense && r.in(0, 3) == 0;
        a.stride[k] = int32_t(reversed ? -step : step);
        if (reversed) low -= (extent[k] - 1) * step;
        span = (extent[k] - 1) * step + span;
    }
    if (extent[3] == 4 && r.maybe()) a.extent[3] = 11; // another code for four channels
    const int64_t rest = int64_t(buffer.size()) - span;
    EXPECT_GE(rest, 0);
    a.loff = int32_t(r.in(0, int(std::min<int64_t>(rest, 60) / element)) * element - low);
    return a;
}

struct Region { // what the operands have in common
    Index origin[3], size;
    bool empty = false;
};

// The region of operand 0, cut by what the others offer from their start points on: the last one what is left of it, a
// source before a mask the part of the region that it has. A mask of one channel stands for all.
Region common_region(std::initializer_list<const Array *> arrays, const jorm_site *roi,
                     std::initializer_list<const int32_t *> at, bool masked) {
    Region region = {};
    const Array &dst = **arrays.begin();
    const int last = int(arrays.size()) - 1;
    for (int k = 0; k < 4; ++k) {
        const int low = roi ? std::max(0, roi->origin[k]) : 0;
        const int high = roi ? std::min(dst.size(k), roi->origin[k] + roi->size[k]) : dst.size(k);
        region.origin[0][k] = low;
        region.size[k] = high - low;
        for (int i = last; i > 0; --i) {
            const Array &a = *arrays.begin()[i];
            if (k == 3 && masked && i == last && a.channels() == 1) continue;
            const int from = at.begin()[i - 1] ? at.begin()[i - 1][k] : 0;
            region.origin[i][k] = std::max(0, from);
            const int offered = k == 3 ? a.size(k) - region.origin[i][k] : a.size(k) - std::abs(from);
            if (i < last && (k == 1 || k == 2) && from < 0)
                region.size[k] = std::min(region.size[k] + from, a.size(k));
            else
                region.size[k] = std::min(region.size[k], offered);
        }
        region.empty = region.empty || region.size[k] <= 0;
    }
    return region;
}

template <class F> void each(const Index &size, F f) {
    for (int z = 0; z < size[0]; ++z)
        for (int y = 0; y < size[1]; ++y)
            for (int x = 0; x < size[2]; ++x)
                for (int c = 0; c < size[3]; ++c) f(Index{z, y, x, c});
}
Index sum(const Index &a, const Index &b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2], a[3] + b[3]}; }

// Collects writes, so that all reading comes first.
struct Writes {
    std::vector<std::pair<uint8_t *, std::array<uint8_t, 8>>> list;
    int element;
    void add(uint8_t *to, const void *from) {
        list.push_back({to, {}});
        std::memcpy(list.back().second.data(), from, size_t(element));
    }
    void apply() {
        for (auto &[to, bytes] : list) std::memcpy(to, bytes.data(), size_t(element));
    }
};

void value_bytes(uint32_t type, double v, void *out) {
    const double lo[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, -128, -32768, -2147483648.0};
    const double hi[16] = {0, 255, 65535, 2147483647, 0, 0, 0, 0, 0, 127, 32767, 2147483647};
    const float f = float(v);
    const int64_t i = int64_t(std::nearbyint(std::clamp(v, lo[type], hi[type])));
    std::memcpy(out, type == JORM_F32 ? static_cast<const void *>(&f) : &i, size_t(bytes_of(type)));
}

class Copies : public testing::Test {
protected:
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    Random r{20240817};
    Bytes buffers[3], before[3], result[3];

    ~Copies() override {
        JormXEclose(xe);
        jorm::limit_level(jorm::level_count);
        _G_jorm_use_simd = 0;
    }
    void new_round(int i) {
        _G_jorm_use_simd = i % 4 != 0;
        jorm::limit_level(i % 4 == 1 ? jorm::level_avx2 : jorm::level_count);
        for (Bytes &b : buffers) {
            b.resize(room);
            for (uint32_t x = r(), n = 0; n < room; ++n) b[n] = uint8_t((x = x * 1664525 + 1013904223) >> 24);
        }
    }
    // Mostly in a buffer of its own, sometimes in that of the destination.
    Bytes &buffer_of(int operand) { return buffers[r.in(0, 2) == 0 ? 0 : operand]; }
    Index extent(int ndims) {
        const bool wide = r.in(0, 4) == 0;
        return {ndims == 4 ? r.in(1, 3) : 1, r.in(1, wide ? 2 : 8), wide ? r.in(20, 120) : r.in(1, 9), r.in(1, 4)};
    }
    jorm_site site(const Array &a) {
        jorm_site s;
        for (int k = 0; k < 4; ++k) {
            s.origin[k] = k == 0 && a.ndims == 3 ? 0 : r.in(-1, a.size(k) / 2);
            s.size[k] = r.in(1, a.size(k) + 1);
            if (r.maybe()) s.origin[k] = 0, s.size[k] = a.size(k);
        }
        return s;
    }
    Index start(const Array &a) {
        Index i = {a.ndims == 4 ? r.in(0, 1) : 0, r.in(-1, 2), r.in(-1, 2), r.in(0, 1)};
        if (r.maybe()) i[3] = 0;
        return i;
    }
    // The result must be the model's in every byte of every buffer.
    void expect_model(const std::function<int64_t()> &call, int64_t status, Writes &writes, const std::string &what) {
        for (int i = 0; i < 3; ++i) before[i].assign(buffers[i].begin(), buffers[i].end());
        EXPECT_EQ(call(), status) << what;
        for (int i = 0; i < 3; ++i) {
            result[i].assign(buffers[i].begin(), buffers[i].end());
            std::copy(before[i].begin(), before[i].end(), buffers[i].begin());
        }
        if (status == JORM_OK) writes.apply();
        for (int i = 0; i < 3; ++i) ASSERT_TRUE(result[i] == buffers[i]) << what << ", buffer " << i;
    }
};

TEST_F(Copies, CopyAndFillAnyLayoutUnderAnyMask) {
    enum { copy, copy_ex, fill, fill_ex, fill_ex2, kinds };
    const double values[] = {300.4, -3, 2.5, 40000}, others[] = {1, -200, 3.5, 70000.25};
    for (int round = 0; round < 6000; ++round) {
        new_round(round);
        const int kind = r.in(0, kinds - 1), ndims = r.in(3, 4);
        const bool fills = kind >= fill, masked = kind != copy && kind != fill;
        uint32_t type = types[r.in(0, 9)];
        if (fills && bytes_of(type) == 8) type = JORM_F32;
        const Index size = extent(ndims);
        Index src_size = r.maybe() ? size : extent(ndims), mask_size = r.maybe() ? size : extent(ndims);
        for (Index *other : {&src_size, &mask_size}) {
            (*other)[0] = r.maybe() ? size[0] : 1;
            (*other)[3] = size[3];
        }
        if (r.maybe()) mask_size[3] = 1;
        const Array dst = lay_out(r, buffers[0], type, ndims, size);
        Array src = lay_out(r, buffer_of(1), type, src_size[0] == 1 ? r.in(3, ndims) : ndims, src_size);
        if (r.in(0, 9) == 0) src = dst; // the same, or a shift of it
        const Array mask = lay_out(r, buffer_of(2), r.maybe() ? JORM_U8 : JORM_S8,
                                   mask_size[0] == 1 ? r.in(3, ndims) : ndims, mask_size);
        const bool inverted = r.maybe();
        for (int i = 0; i < 4000; ++i) buffers[2][size_t(r.in(0, room - 1))] = inverted ? 255 : 0;
        const jorm_site roi_site = site(dst), *roi = r.maybe() ? &roi_site : nullptr;
        const Index at_src = start(src), at_mask = start(mask);
        const int32_t *at = r.maybe() ? at_src.data() : nullptr, *at_m = r.maybe() ? at_mask.data() : nullptr;
        const uint64_t options = inverted ? JORM_OPT_MASK_INVERT : 0;
        const double *given = r.in(0, 5) ? values : nullptr, *other = r.in(0, 5) ? others : nullptr;

        Region region;
        if (kind == copy) region = common_region({&dst, &src}, roi, {at}, false);
        if (kind == copy_ex) region = common_region({&dst, &src, &mask}, roi, {at, at_m}, true);
        if (kind == fill) region = common_region({&dst}, roi, {}, false);
        if (kind >= fill_ex) region = common_region({&dst, &mask}, roi, {at_m}, true);
        const Index mask_origin = region.origin[kind == copy_ex ? 2 : 1];

        Writes writes{{}, bytes_of(type)};
        each(region.empty ? Index{} : region.size, [&](const Index &i) {
            Index in_mask = sum(i, mask_origin);
            if (mask.channels() == 1) in_mask[3] = 0;
            const bool selected = !masked || *mask.at(in_mask) != (inverted ? 255 : 0);
            uint8_t value[8];
            if (fills) {
                if (!selected && kind != fill_ex2) return;
                const double *from = selected ? given : other;
                value_bytes(type, from ? from[i[3]] : 0, value);
                writes.add(dst.at(sum(i, region.origin[0])), value);
            } else if (selected)
                writes.add(dst.at(sum(i, region.origin[0])), src.at(sum(i, region.origin[1])));
        });
        const auto call = [&] {
            return kind == copy      ? JormCopy(xe, options, &dst, &src, roi, at)
                   : kind == copy_ex ? JormCopyEx(xe, options, &dst, &src, &mask, roi, at, at_m)
                   : kind == fill    ? JormFill(xe, options, &dst, roi, given)
                   : kind == fill_ex ? JormFillEx(xe, options, &dst, &mask, roi, at_m, given)
                                     : JormFillEx2(xe, options, &dst, &mask, roi, at_m, given, other);
        };
        expect_model(call, region.empty ? JORM_EEMPTY : JORM_OK, writes,
                     "round " + std::to_string(round) + ", kind " + std::to_string(kind));
        if (HasFatalFailure()) return;
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
    for (int round = 0; round < 4000; ++round) {
        new_round(round);
        const int ndims = r.in(3, 4);
        const jorm_border border = {
            uint32_t(std::array{0, 3, 4, 5, 6, 7}[size_t(r.in(0, 5))] | r.in(0, 1) << 4), 0, {300.4, -3, 2.5, 40000}};
        const uint32_t mode = border.mode & 15;
        uint32_t type = types[r.in(0, 9)];
        if (mode == JORM_BORDER_CONST && bytes_of(type) == 8) type = JORM_S16;
        const Index size = extent(ndims);
        Index src_size = {r.maybe() ? size[0] : 1, r.in(1, 7), r.in(1, 7), size[3]};
        const Array dst = lay_out(r, buffers[0], type, ndims, size);
        const Array src = r.in(0, 4) ? lay_out(r, buffer_of(1), type, ndims, src_size) : dst;
        const jorm_site roi_site = site(dst), *roi = r.maybe() ? &roi_site : nullptr;
        const jorm_site part_site = site(src), *part = r.maybe() ? &part_site : nullptr;
        const Index at = {ndims == 4 ? r.in(-1, 1) : 0, r.in(-9, 7), r.in(-40, 7), 0};

        Region region = common_region({&dst}, roi, {}, false);
        Index low, n; // the image
        for (int k = 0; k < 3; ++k) {
            low[k] = part ? std::max(0, part->origin[k]) : 0;
            n[k] = (part ? std::min(src.size(k), part->origin[k] + part->size[k]) : src.size(k)) - low[k];
            region.empty = region.empty || n[k] <= 0 || at[k] >= low[k] + n[k] || at[k] + region.size[k] <= low[k];
        }
        Writes writes{{}, bytes_of(type)};
        each(region.empty ? Index{} : region.size, [&](const Index &i) {
            const int z = at[0] + i[0] - low[0];
            if (z < 0 || z >= n[0]) return;
            const int y = continued(mode, at[1] + i[1] - low[1], n[1]);
            const int x = continued(mode, at[2] + i[2] - low[2], n[2]);
            uint8_t *const to = dst.at(sum(i, region.origin[0]));
            uint8_t value[8];
            value_bytes(type, border.values[i[3]], value);
            if (y >= 0 && x >= 0)
                writes.add(to, src.at({z + low[0], y + low[1], x + low[2], i[3]}));
            else if (mode == JORM_BORDER_CONST)
                writes.add(to, value);
        });
        const auto call = [&] {
            return part || r.maybe() ? JormCopyRMkb(xe, 0, &dst, &src, roi, at.data(), &border, part)
                                     : JormCopyMkb(xe, 0, &dst, &src, roi, at.data(), &border);
        };
        expect_model(call, region.empty ? JORM_EEMPTY : JORM_OK, writes, "round " + std::to_string(round));
        if (HasFatalFailure()) return;
    }
}

// Dense bytes.
Array picture(void *base, int h, int w, int channels) {
    const int32_t extent[] = {h, w, channels};
    Array a;
    _jorm_array__$xtrn(&a, JORM_U8, 3, extent, nullptr, base);
    return a;
}

// Orders of copying and scratch memory: what works without an environment, and what needs one.
TEST_F(Copies, OverlapsInPlace) {
    const int h = 5, w = 8, last = h * w - 1;
    const struct {
        const char *name;
        int dst, dst_row, dst_pixel, src, src_row, src_pixel, rows, pixels;
        bool scratch;
    } cases[] = {
        {"down", w, w, 1, 0, w, 1, h - 1, w, false},
        {"up", 0, w, 1, w, w, 1, h - 1, w, false},
        {"right", 3, w, 1, 0, w, 1, h, w - 3, false},
        {"left", 0, w, 1, 3, w, 1, h, w - 3, false},
        {"odd rows to even ones", 0, 2 * w, 1, w, 2 * w, 1, 2, w, false},
        {"every second pixel packed", 0, w, 1, 0, w, 2, h, w / 2, false},
        {"packed rows", 0, w - 2, 1, 0, w, 1, h, w - 2, false},
        {"unpacked rows", 0, w, 1, 0, w - 2, 1, h, w - 2, false},
        {"mirrored", w - 1, w, -1, 0, w, 1, h, w, true},
        {"upside down", last + 1 - w, -w, 1, 0, w, 1, h, w, true},
        {"turned", last, -w, -1, 0, w, 1, h, w, true},
        {"transposed", 0, 1, h, 0, w, 1, h, w, true},
        {"one row for all", 0, w, 1, w, 0, 1, h, w, true},
    };
    for (const auto &c : cases)
        for (int with_xe = 0; with_xe < 2; ++with_xe) {
            Bytes b(size_t(h * w));
            std::iota(b.begin(), b.end(), uint8_t(1));
            Bytes expected = b;
            for (int y = 0; y < c.rows; ++y)
                for (int x = 0; x < c.pixels; ++x)
                    expected[size_t(c.dst + y * c.dst_row + x * c.dst_pixel)] =
                        b[size_t(c.src + y * c.src_row + x * c.src_pixel)];
            if (c.scratch && !with_xe) expected = b;
            const int32_t size[] = {c.rows, c.pixels, 1}, to[] = {c.dst_row, c.dst_pixel, 1},
                          from[] = {c.src_row, c.src_pixel, 1};
            EXPECT_EQ(jorma__copy(with_xe ? xe : nullptr, 0, JORM_WORD(3), size, &b[size_t(c.dst)], to,
                                  &b[size_t(c.src)], from),
                      c.scratch && !with_xe ? JORM_EINVAL : JORM_OK)
                << c.name;
            EXPECT_EQ(b, expected) << c.name;
        }
}

// Lengths about the thresholds of the loops, at every level; the bytes around stay.
TEST_F(Copies, Lengths) {
    _G_jorm_use_simd = 1;
    for (int level = 0; level < jorm::level_count; ++level)
        for (int n : {1, 15, 63, 64, 65, 191, 255, 257, 500, 24575, 24577, 786431, 786433, (9 << 20) + 5})
            for (int shift : {0, 7}) {
                jorm::limit_level(jorm::Level(level));
                const size_t start = size_t(8 + shift);
                Bytes src(size_t(n) + 80), mask = src, dst(src.size(), 1), expected = dst;
                for (size_t i = 0; i < src.size(); ++i) src[i] = uint8_t(i * 31 >> 3), mask[i] = i % 300 > 140;
                const Array to = picture(&dst[start], 1, n, 1), from = picture(&src[8], 1, n, 1);
                const Array by = picture(&mask[3], 1, n, 1);
                const double value = 9 + shift;
                EXPECT_EQ(JormCopy(nullptr, 0, &to, &from, nullptr, nullptr), JORM_OK);
                std::copy_n(&src[8], n, &expected[start]);
                ASSERT_TRUE(dst == expected) << n << " + " << shift;
                EXPECT_EQ(JormFillEx(nullptr, 0, &to, &by, nullptr, nullptr, &value), JORM_OK);
                for (size_t i = 0; i < size_t(n); ++i)
                    if (mask[3 + i]) expected[start + i] = uint8_t(9 + shift);
                ASSERT_TRUE(dst == expected) << n << " + " << shift;
                EXPECT_EQ(JormFill(nullptr, 0, &to, nullptr, &value), JORM_OK);
                std::fill_n(&expected[start], n, uint8_t(9 + shift));
                ASSERT_TRUE(dst == expected) << n << " + " << shift;
                EXPECT_EQ(JormCopyEx(nullptr, 0, &to, &from, &by, nullptr, nullptr, nullptr), JORM_OK);
                for (size_t i = 0; i < size_t(n); ++i)
                    if (mask[3 + i]) expected[start + i] = src[8 + i];
                ASSERT_TRUE(dst == expected) << n << " + " << shift;
            }
}

TEST_F(Copies, Statuses) {
    Bytes memory(4096, 5);
    const auto array = [&](uint32_t type, uint32_t channels, int ndims = 3) {
        const int e = bytes_of(type);
        Array a = {};
        a.ndims = uint16_t(ndims);
        a.eltype = type;
        a.base = memory.data();
        const uint32_t extent[] = {1, 4, 5, channels};
        const int32_t stride[] = {1024, 128, 4 * e, e};
        std::copy_n(extent, 4, a.extent);
        std::copy_n(stride, 4, a.stride);
        return a;
    };
    const Array a = array(JORM_U8, 3), s8 = array(JORM_S8, 3), two = array(JORM_U8, 2), five = array(5, 3);
    const Array none = array(15, 3), wide = array(JORM_F64, 3), flat = array(JORM_U8, 3, 2),
                deep = array(JORM_U8, 3, 4);
    const Array many = array(JORM_U8, 7), mask = array(JORM_U8, 1), s16_mask = array(JORM_S16, 1);
    Array lost = a;
    lost.base = nullptr;
    const jorm_site outside = {{0, 4, 0, 0}, {1, 1, 1, 3}}, no_channel = {{0, 0, 0, 3}, {1, 4, 5, 1}};
    const int32_t past[] = {0, 0, 5, 0}, before[] = {0, -4, 0, 0};
    const jorm_border constant = {JORM_BORDER_CONST, 0, {}}, unknown = {2, 0, {}}, wrap = {JORM_BORDER_WRAP, 0, {}};
    const int32_t size[] = {4, 5, 3}, s[] = {128, 4, 1}, odd[] = {128, 12, 3};
    const uint32_t word = JORM_WORD(3), u8 = JORM_U8;
    void *const p = memory.data();
    // clang-format off
#define COPY(d, s) JormCopy(xe, 0, d, s, nullptr, nullptr)
#define COPY_AT(d, s, roi, at) JormCopy(xe, 0, d, s, roi, at)
#define COPY_EX(d, s, m) JormCopyEx(xe, 0, d, s, m, nullptr, nullptr, nullptr)
#define MKB(d, s, b, at) JormCopyMkb(xe, 0, d, s, nullptr, at, b)
#define FILL(d) JormFill(xe, 0, d, nullptr, nullptr)
#define FILL_EX(d, m) JormFillEx(xe, 0, d, m, nullptr, nullptr, nullptr)
#define INVALID(call) {#call, call, JORM_EINVAL}
#define EMPTY(call) {#call, call, JORM_EEMPTY}
#define UNSUPPORTED(call) {#call, call, JORM_ENOTSUP}
    const Array *const null = nullptr;
    const struct {
        const char *what;
        int64_t got, want;
    } cases[] = {
        INVALID(COPY(null, &a)), INVALID(COPY(&a, &lost)), INVALID(COPY(&a, &two)), INVALID(COPY(&flat, &a)),
        INVALID(COPY(&a, &deep)), INVALID(COPY(&many, &many)), INVALID(COPY(&five, &five)), UNSUPPORTED(COPY(&none, &none)),
        INVALID(COPY_AT(&a, &s8, &outside, nullptr)), // the types before the region
        EMPTY(COPY_AT(&a, &a, &outside, nullptr)), EMPTY(COPY_AT(&a, &a, &no_channel, nullptr)),
        EMPTY(COPY_AT(&a, &a, nullptr, past)), EMPTY(COPY_AT(&a, &a, nullptr, before)),
        EMPTY(COPY_AT(&five, &five, &outside, nullptr)),
        INVALID(COPY_EX(&a, &a, null)), INVALID(COPY_EX(&a, &a, &s16_mask)), INVALID(COPY_EX(&a, &a, &two)),
        UNSUPPORTED(COPY_EX(&none, &none, &mask)), INVALID(COPY_EX(&five, &five, &mask)),
        INVALID(FILL(null)), UNSUPPORTED(FILL(&wide)), INVALID(FILL(&five)),
        INVALID(FILL_EX(&a, null)), UNSUPPORTED(FILL_EX(&wide, &mask)),
        INVALID(MKB(&a, &a, nullptr, nullptr)), INVALID(MKB(&a, &a, &unknown, nullptr)),
        EMPTY(MKB(&a, &a, nullptr, past)), EMPTY(MKB(&a, &a, &wrap, before)), // the block before the border
        INVALID(MKB(&deep, &a, &wrap, nullptr)), INVALID(MKB(&a, &s8, &wrap, nullptr)),
        UNSUPPORTED(MKB(&wide, &wide, &constant, nullptr)),
        UNSUPPORTED(jorma__copy(xe, 0, JORM_WORD(4), size, p, s, p, s)),
        INVALID(jorma__copy(xe, 0, word, size, p, odd, p, s)),
        INVALID(jorma__copy(xe, 0, word, size, nullptr, s, p, s)),
        INVALID(jorma__fill(xe, 0, word, nullptr, u8, p, s, nullptr)),
        INVALID(JormTGAcopyEx(xe, 0, nullptr, word, size, u8, p, s, u8, p, s, u8, p, s)),
        INVALID(JormTGAfillEx(xe, 0, nullptr, word, size, u8, p, s, u8, p, s)),
        INVALID(JormTGAcopymkb(xe, 0, nullptr, word, size, u8, p, s, u8, p, s)),
    };
    // clang-format on
    for (const auto &c : cases) EXPECT_EQ(c.got, c.want) << c.what;
    EXPECT_EQ(COPY(&a, null), JORM_OK); // in place
    EXPECT_EQ(memory, Bytes(4096, 5));
}

// Adapters, dispatchers, kernels and per-slice entries do what the entries do.
TEST_F(Copies, BelowTheEntries) {
    const int32_t stride4[4] = {0, 12, 2, 1}, pixel_stride4[4] = {0, 6, 1, 1}, origin4[4] = {0, 1, 1, 0};
    const int32_t size[] = {2, 3, 2}, at[] = {0, 1, 1, 0}, *const s = stride4 + 1, *const o = origin4 + 1;
    const int32_t *const p = pixel_stride4 + 1, at_image[] = {-1, 2}, image_size[] = {2, 4};
    const double v[] = {7, 8}, w[] = {3, 4};
    const uint32_t word = JORM_WORD(3), u8 = JORM_U8;
    Bytes src(48), dst, em(48), xm(24);
    std::iota(src.begin(), src.end(), uint8_t(100));
    for (size_t i = 0; i < em.size(); i += 3) em[i] = 1;
    for (size_t i = 0; i < xm.size(); i += 2) xm[i] = 1;
    dst.resize(48);
    const Array d = picture(dst.data(), 4, 6, 2), sa = picture(src.data(), 4, 6, 2);
    const Array ea = picture(em.data(), 4, 6, 2), xa = picture(xm.data(), 4, 6, 1);
    const jorm_site roi = {{0, 1, 1, 0}, {1, 2, 3, 2}};
    const auto after = [&](const std::function<int64_t()> &call) {
        dst.assign(48, 1);
        EXPECT_EQ(call(), JORM_OK);
        return dst;
    };
    uint8_t *const to = &dst[14], *const from = &src[14], *const by = &em[14], *const by_x = &xm[7];
    const jorm_border border = {JORM_BORDER_WRAP, 0, {}};
    const jorm_mkbparams params = {&border, at_image, image_size};
    using Calls = std::vector<std::function<int64_t()>>;
    // clang-format off
#define LEAD nullptr, 0, word, size
#define TO u8, to, s
#define BASE u8, dst.data(), o, s
    const Calls groups[] = {
        {[&] { return JormCopy(xe, 0, &d, &sa, &roi, at); },
         [&] { return jorma__copy(LEAD, to, s, from, s); },
         [&] { return jorma_copy(LEAD, BASE, u8, src.data(), o, s); },
         [&] { return JormTGAcopy(nullptr, 0, nullptr, word, size, TO, u8, from, s); },
         [&] { return jorma__copy(nullptr, 0, JORM_WORD(2), size + 1, to, s + 1, from, s + 1) +
                      jorma__copy(nullptr, 0, JORM_WORD(2), size + 1, to + 12, s + 1, from + 12, s + 1); }},
        {[&] { return JormCopyEx(xe, 0, &d, &sa, &ea, &roi, at, at); },
         [&] { return jorma__copyem(LEAD, TO, u8, from, s, u8, by, s); },
         [&] { return jorma_copyem(LEAD, BASE, u8, src.data(), o, s, u8, em.data(), o, s); }},
        {[&] { return JormCopyEx(xe, 0, &d, &sa, &xa, &roi, at, at); },
         [&] { return jorma__copyxm(LEAD, TO, u8, from, s, u8, by_x, p); },
         [&] { return jorma_copyxm(LEAD, BASE, u8, src.data(), o, s, u8, xm.data(), o, p); }},
        {[&] { return JormFill(xe, 0, &d, &roi, v); },
         [&] { return jorma__fill(LEAD, TO, v); }, [&] { return jorma__dofill(LEAD, TO, v); },
         [&] { return jorma_fill(LEAD, BASE, v); },
         [&] { return JormTGAfill(nullptr, 0, v, word, size, TO); }},
        {[&] { return JormFillEx(xe, 0, &d, &ea, &roi, at, v); },
         [&] { return jorma__fillem(LEAD, TO, u8, by, s, v); }, [&] { return jorma__dofillem(LEAD, TO, u8, by, s, v); },
         [&] { return jorma_fillem(LEAD, BASE, u8, em.data(), o, s, v); }},
        {[&] { return JormFillEx(xe, 0, &d, &xa, &roi, at, v); },
         [&] { return jorma__fillxm(LEAD, TO, u8, by_x, p, v); }, [&] { return jorma__dofillxm(LEAD, TO, u8, by_x, p, v); },
         [&] { return jorma_fillxm(LEAD, BASE, u8, xm.data(), o, p, v); }},
        {[&] { return JormFillEx2(xe, 0, &d, &ea, &roi, at, v, w); },
         [&] { return jorma__fillem2(LEAD, TO, u8, by, s, v, w); }, [&] { return jorma__dofillem2(LEAD, TO, u8, by, s, v, w); },
         [&] { return jorma_fillem2(LEAD, BASE, u8, em.data(), o, s, v, w); }},
        {[&] { return JormFillEx2(xe, 0, &d, &xa, &roi, at, v, w); },
         [&] { return jorma__fillxm2(LEAD, TO, u8, by_x, p, v, w); }, [&] { return jorma__dofillxm2(LEAD, TO, u8, by_x, p, v, w); },
         [&] { return jorma_fillxm2(LEAD, BASE, u8, xm.data(), o, p, v, w); }},
        {[&] { const jorm_site part = {{0, 1, 1, 0}, {1, 2, 4, 2}}; const int32_t where[] = {0, 0, 3, 0};
               return JormCopyRMkb(xe, 0, &d, &sa, &roi, where, &border, &part); },
         [&] { return jorma__copymkb(LEAD, TO, u8, from, s, at_image, image_size, &border); },
         [&] { return jorma__copymkb_wrap(LEAD, TO, u8, from, s, at_image, image_size, &border); },
         [&] { return JormTGAcopymkb(nullptr, 0, &params, word, size, TO, u8, from, s); },
         [&] { return jorma_copymkb(LEAD, BASE, u8, src.data(), o, s, at_image, image_size, &border); }},
    };
    // clang-format on
    for (const Calls &group : groups)
        for (size_t i = 1; i < group.size(); ++i)
            EXPECT_EQ(after(group[i]), after(group[0])) << "group " << &group - groups << ", way " << i;

    // The image may stand in the block: its border is completed in place.
    const int32_t block[] = {4, 6, 2}, inside[] = {2, 3, 2}, before[] = {-1, -1, 0};
    jorm_mkb_kernel *const kernels[] = {jorma__copymkb_const, jorma__copymkb_replicate, jorma__copymkb_wrap,
                                        jorma__copymkb_reflect, jorma__copymkb_reflect101};
    for (uint32_t mode = 3; mode <= 7; ++mode) {
        Bytes b = src;
        const jorm_border of_mode = {0, 0, {77, 78}};
        EXPECT_EQ(kernels[mode - 3](nullptr, 0, word, block, u8, b.data(), s, u8, &b[14], s, before, inside, &of_mode),
                  JORM_OK);
        for (int i = 0; i < 48; ++i) {
            const int y = continued(mode, i / 12 - 1, 2), x = continued(mode, i / 2 % 6 - 1, 3);
            EXPECT_EQ(b[size_t(i)], y < 0 || x < 0 ? 77 + i % 2 : src[size_t(14 + 12 * y + 2 * x + i % 2)])
                << mode << " " << i;
        }
    }
}

} // namespace
