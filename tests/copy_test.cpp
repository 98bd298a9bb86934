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
        const auto call = [&]() -> int64_t {
            switch (kind) {
            case copy:
                return JormCopy(xe, options, &dst, &src, roi, at);
            case copy_ex:
                return JormCopyEx(xe, options, &dst, &src, &mask, roi, at, at_m);
            case fill:
                return JormFill(xe, options, &dst, roi, given);
            case fill_ex:
                return JormFillEx(xe, options, &dst, &mask, roi, at_m, given);
            default:
                return JormFillEx2(xe, options, &dst, &mask, roi, at_m, given, other);
            }
        };
        expect_model(call, region.empty ? JORM_EEMPTY : JORM_OK, writes,
                     "round " + std::to_string(round) + ", kind " + std::to_string(kind));
        if (HasFatalFailure()) return;
    }
}

// Where position p of a line of n pixels lies, step by step; -1: nowhere.
int continued(uint32_t mode, int p, int n) {
    while (p < 0 || p >= n) {
        switch (mode) {
        case JORM_BORDER_REPLICATE:
            p += p < 0 ? 1 : -1;
            break;
        case JORM_BORDER_WRAP:
            p += p < 0 ? n : -n;
            break;
        case JORM_BORDER_REFLECT:
            p = p < 0 ? -1 - p : 2 * n - 1 - p;
            break;
        case JORM_BORDER_REFLECT101:
            if (n == 1) return 0;
            p = p < 0 ? -p : 2 * n - 2 - p;
            break;
        default:
            return -1;
        }
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

// A picture of one byte per pixel.
Array picture(void *base, int h, int w, int stride) {
    const int32_t extent[] = {h, w, 1}, strides[] = {stride, 1, 1};
    Array a;
    _jorm_array__$xtrn(&a, JORM_U8, 3, extent, strides, base);
    return a;
}

// The image stands inside the block: its border is completed in place, by the kernel too.
TEST_F(Copies, BorderAroundAnImageInPlace) {
    const int32_t size[] = {7, 9, 1}, image[] = {3, 4, 1}, none[4] = {};
    const int32_t at4[] = {0, -2, -3, 0}, *const at = at4 + 1, stride4[] = {0, 9, 1, 1}, *const stride = stride4 + 1;
    for (uint32_t mode : {3, 4, 5, 6, 7}) {
        const jorm_border border = {mode, 0, {77}};
        for (int how = 0; how < 4; ++how) {
            Bytes b(63);
            std::iota(b.begin(), b.end(), uint8_t(0));
            const Bytes before = b;
            uint8_t *const inside = &b[2 * 9 + 3];
            const jorm_mkbparams params = {&border, at, image};
            const Array block = picture(b.data(), 7, 9, 9), view = picture(inside, 3, 4, 9);
            const int64_t status = how == 0 ? jorma__copymkb(nullptr, 0, JORM_WORD(3), size, JORM_U8, b.data(), stride,
                                                             JORM_U8, inside, stride, at, image, &border)
                                   : how == 1 ? JormTGAcopymkb(nullptr, 0, &params, JORM_WORD(3), size, JORM_U8,
                                                               b.data(), stride, JORM_U8, inside, stride)
                                   : how == 2
                                       ? jorma_copymkb(nullptr, 0, JORM_WORD(3), size, JORM_U8, b.data(), none + 1,
                                                       stride, JORM_U8, inside, none + 1, stride, at, image, &border)
                                       : JormCopyMkb(nullptr, 0, &block, &view, nullptr, at4, &border);
            EXPECT_EQ(status, JORM_OK);
            for (int y = 0; y < 7; ++y)
                for (int x = 0; x < 9; ++x) {
                    const int sy = continued(mode, y - 2, 3), sx = continued(mode, x - 3, 4);
                    EXPECT_EQ(b[size_t(9 * y + x)], sy < 0 || sx < 0 ? 77 : before[size_t(9 * (sy + 2) + sx + 3)])
                        << mode << " " << how << " at " << y << ", " << x;
                }
        }
    }
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
    for (int level = 0; level < jorm::level_count; ++level)
        for (int n : {1, 15, 63, 64, 65, 191, 255, 256, 257, 500, 24575, 24577, 786431, 786433, (12 << 20) + 5}) {
            _G_jorm_use_simd = 1;
            jorm::limit_level(jorm::Level(level));
            Bytes src(size_t(n) + 80), dst(src.size(), 1), expected = dst;
            for (size_t i = 0; i < src.size(); ++i) src[i] = uint8_t(i * 31 >> 3);
            for (int shift : {0, 7}) {
                const Array to = picture(&dst[size_t(8 + shift)], 1, n, n), from = picture(&src[8], 1, n, n);
                EXPECT_EQ(JormCopy(nullptr, 0, &to, &from, nullptr, nullptr), JORM_OK);
                std::copy_n(&src[8], n, &expected[size_t(8 + shift)]);
                ASSERT_EQ(dst, expected) << n << " + " << shift;
                const double value = 9 + shift;
                EXPECT_EQ(JormFill(nullptr, 0, &to, nullptr, &value), JORM_OK);
                std::fill_n(&expected[size_t(8 + shift)], n, uint8_t(9 + shift));
                ASSERT_EQ(dst, expected) << n << " + " << shift;
            }
        }
}

TEST_F(Copies, Statuses) {
    Bytes memory(4096, 5);
    const auto array = [&](uint32_t type, int h, int w, uint32_t channels, int ndims = 3) {
        Array a = {};
        const int e = bytes_of(type);
        a.ndims = uint16_t(ndims);
        a.eltype = type;
        a.base = memory.data();
        const uint32_t extent[] = {1, uint32_t(h), uint32_t(w), channels};
        std::copy_n(extent, 4, a.extent);
        const int32_t stride[] = {1024, 128, 4 * e, e};
        std::copy_n(stride, 4, a.stride);
        return a;
    };
    const Array a = array(JORM_U8, 4, 5, 3), other_type = array(JORM_S8, 4, 5, 3), two = array(JORM_U8, 4, 5, 2);
    const Array five = array(5, 4, 5, 3), none = array(15, 4, 5, 3), wide = array(JORM_F64, 4, 5, 3);
    const Array flat = array(JORM_U8, 4, 5, 3, 2), deep = array(JORM_U8, 4, 5, 3, 4), many = array(JORM_U8, 4, 5, 7);
    const Array mask = array(JORM_U8, 4, 5, 1), s16_mask = array(JORM_S16, 4, 5, 1);
    Array lost = a;
    lost.base = nullptr;
    const jorm_site outside = {{0, 4, 0, 0}, {1, 1, 1, 3}}, no_channel = {{0, 0, 0, 3}, {1, 4, 5, 1}};
    const int32_t past[] = {0, 0, 5, 0}, before[] = {0, -4, 0, 0};
    const jorm_border constant = {JORM_BORDER_CONST, 0, {}}, unknown = {2, 0, {}}, wrap = {JORM_BORDER_WRAP, 0, {}};
    const auto copy = [&](const Array *d, const Array *s, const jorm_site *roi = nullptr, const int32_t *at = nullptr) {
        return JormCopy(xe, 0, d, s, roi, at);
    };
    const auto copy_ex = [&](const Array *d, const Array *s, const Array *m, const jorm_site *roi = nullptr) {
        return JormCopyEx(xe, 0, d, s, m, roi, nullptr, nullptr);
    };
    const auto mkb = [&](const Array *d, const Array *s, const jorm_border *b, const int32_t *at = nullptr) {
        return JormCopyMkb(xe, 0, d, s, nullptr, at, b);
    };
    const auto fill_ex = [&](const Array *d, const Array *m) {
        return JormFillEx(xe, 0, d, m, nullptr, nullptr, nullptr);
    };
    const int32_t size[] = {4, 5, 3}, stride[] = {128, 4, 1}, odd[] = {128, 12, 3};
    void *const p = memory.data();
    const struct {
        const char *what;
        int64_t got, want;
    } cases[] = {
        {"null", copy(nullptr, &a), JORM_EINVAL},
        {"in place", copy(&a, nullptr), JORM_OK},
        {"no base", copy(&a, &lost), JORM_EINVAL},
        {"types", copy(&a, &other_type), JORM_EINVAL},
        {"types before region", copy(&a, &other_type, &outside), JORM_EINVAL},
        {"channels", copy(&a, &two), JORM_EINVAL},
        {"axes", copy(&flat, &a), JORM_EINVAL},
        {"axes of the source", copy(&a, &deep), JORM_EINVAL},
        {"five channels", copy(&many, &many), JORM_EINVAL},
        {"region", copy(&a, &a, &outside), JORM_EEMPTY},
        {"region without a channel", copy(&a, &a, &no_channel), JORM_EEMPTY},
        {"source past its end", copy(&a, &a, nullptr, past), JORM_EEMPTY},
        {"source before its start", copy(&a, &a, nullptr, before), JORM_EEMPTY},
        {"ill-formed", copy(&five, &five), JORM_EINVAL},
        {"region before ill-formed", copy(&five, &five, &outside), JORM_EEMPTY},
        {"no size", copy(&none, &none), JORM_ENOTSUP},
        {"no mask", copy_ex(&a, &a, nullptr), JORM_EINVAL},
        {"type of mask", copy_ex(&a, &a, &s16_mask), JORM_EINVAL},
        {"channels of mask", copy_ex(&a, &a, &two), JORM_EINVAL},
        {"mask and region", copy_ex(&a, &a, &mask, &outside), JORM_EEMPTY},
        {"masked without a size", copy_ex(&none, &none, &mask), JORM_ENOTSUP},
        {"masked and ill-formed", copy_ex(&five, &five, &mask), JORM_EINVAL},
        {"fill without a mask", fill_ex(&a, nullptr), JORM_EINVAL},
        {"fill wide", JormFill(xe, 0, &wide, nullptr, nullptr), JORM_ENOTSUP},
        {"fill wide under a mask", fill_ex(&wide, &mask), JORM_ENOTSUP},
        {"fill ill-formed", JormFill(xe, 0, &five, nullptr, nullptr), JORM_EINVAL},
        {"fill null", JormFill(xe, 0, nullptr, nullptr, nullptr), JORM_EINVAL},
        {"no border", mkb(&a, &a, nullptr), JORM_EINVAL},
        {"no border, no block", mkb(&a, &a, nullptr, past), JORM_EEMPTY},
        {"unknown border", mkb(&a, &a, &unknown), JORM_EINVAL},
        {"axes of the image", mkb(&deep, &a, &wrap), JORM_EINVAL},
        {"type of the image", mkb(&a, &other_type, &wrap), JORM_EINVAL},
        {"wide constants", mkb(&wide, &wide, &constant), JORM_ENOTSUP},
        {"image before the block", mkb(&a, &a, &wrap, before), JORM_EEMPTY},
        {"four axes below", jorma__copy(xe, 0, JORM_WORD(4), size, p, stride, p, stride), JORM_ENOTSUP},
        {"odd elements", jorma__copy(xe, 0, JORM_WORD(3), size, p, odd, p, stride), JORM_EINVAL},
        {"null below", jorma__copy(xe, 0, JORM_WORD(3), size, nullptr, stride, p, stride), JORM_EINVAL},
        {"null size", jorma__fill(xe, 0, JORM_WORD(3), nullptr, JORM_U8, p, stride, nullptr), JORM_EINVAL},
        {"null parameters",
         JormTGAcopyEx(xe, 0, nullptr, JORM_WORD(3), size, JORM_U8, p, stride, JORM_U8, p, stride, JORM_U8, p, stride),
         JORM_EINVAL},
        {"null parameters of a fill",
         JormTGAfillEx(xe, 0, nullptr, JORM_WORD(3), size, JORM_U8, p, stride, JORM_U8, p, stride), JORM_EINVAL},
        {"null parameters of a border",
         JormTGAcopymkb(xe, 0, nullptr, JORM_WORD(3), size, JORM_U8, p, stride, JORM_U8, p, stride), JORM_EINVAL},
    };
    for (const auto &c : cases) EXPECT_EQ(c.got, c.want) << c.what;
    EXPECT_EQ(memory, Bytes(4096, 5)); // nor did the copies onto itself write anything
}

// Below the entries: adapters add their origins, words of two slots stand for one row, dispatchers and kernels agree.
TEST_F(Copies, AdaptersAndKernels) {
    const int32_t stride[4] = {0, 12, 2, 1}, origin[4] = {0, 1, 1, 0}, size[] = {2, 3, 2}, row_size[] = {3, 2};
    const double values[] = {7, 8}, others[] = {3, 4};
    const auto mask_stride_em = stride + 1;
    const int32_t mask_stride4[] = {0, 6, 1, 1}, *const mask_stride_xm = mask_stride4 + 1;
    Bytes src(36), em(36), xm(18);
    std::iota(src.begin(), src.end(), uint8_t(100));
    for (size_t i = 0; i < em.size(); i += 3) em[i] = 1;
    for (size_t i = 0; i < xm.size(); i += 2) xm[i] = 1;
    const int start = 12 + 2, mask_start = 6 + 1;
    const uint32_t word = JORM_WORD(3), u8 = JORM_U8;
    const int32_t *const s = stride + 1, *const o = origin + 1;

    const auto check = [&](const char *name, int mask, bool copies, bool both, int rows, auto run) {
        Bytes dst(36, 1), expected = dst;
        for (int y = 0; y < rows; ++y)
            for (int x = 0; x < 3; ++x)
                for (int c = 0; c < 2; ++c) {
                    const size_t i = size_t(start + 12 * y + 2 * x + c), m = size_t(mask_start + 6 * y + x);
                    const bool in = mask == 0 || (mask == 1 ? em[i] : xm[m]) != 0;
                    if (in || both) expected[i] = copies ? src[i] : uint8_t(in ? values[c] : others[c]);
                }
        EXPECT_EQ(run(dst.data()), JORM_OK) << name;
        EXPECT_EQ(dst, expected) << name;
    };
#define ELEMENT_MASK u8, &em[start], mask_stride_em
#define PIXEL_MASK u8, &xm[mask_start], mask_stride_xm
#define LEAD nullptr, 0, word, size, u8
    check("copy", 0, true, false, 2,
          [&](uint8_t *d) { return jorma__copy(nullptr, 0, word, size, d + start, s, &src[start], s); });
    check("copy, one row", 0, true, false, 1, [&](uint8_t *d) {
        return jorma__copy(nullptr, 0, JORM_WORD(2), row_size, d + start, s + 1, &src[start], s + 1);
    });
    check("copy, adapter", 0, true, false, 2,
          [&](uint8_t *d) { return jorma_copy(LEAD, d, o, s, u8, src.data(), o, s); });
    check("copy, slice", 0, true, false, 2, [&](uint8_t *d) {
        return JormTGAcopy(nullptr, 0, nullptr, word, size, u8, d + start, s, u8, &src[start], s);
    });
    check("em", 1, true, false, 2,
          [&](uint8_t *d) { return jorma__copyem(LEAD, d + start, s, u8, &src[start], s, ELEMENT_MASK); });
    check("xm", 2, true, false, 2,
          [&](uint8_t *d) { return jorma__copyxm(LEAD, d + start, s, u8, &src[start], s, PIXEL_MASK); });
    check("em, adapter", 1, true, false, 2, [&](uint8_t *d) {
        return jorma_copyem(LEAD, d, o, s, u8, src.data(), o, s, u8, em.data(), o, mask_stride_em);
    });
    check("xm, adapter", 2, true, false, 2, [&](uint8_t *d) {
        return jorma_copyxm(LEAD, d, o, s, u8, src.data(), o, s, u8, xm.data(), o, mask_stride_xm);
    });
    for (jorm_fill_kernel *f : {jorma__fill, jorma__dofill}) {
        check("fill", 0, false, false, 2, [&](uint8_t *d) { return f(LEAD, d + start, s, values); });
        check("fill, one row", 0, false, false, 1,
              [&](uint8_t *d) { return f(nullptr, 0, JORM_WORD(2), row_size, u8, d + start, s + 1, values); });
    }
    check("fill, adapter", 0, false, false, 2, [&](uint8_t *d) { return jorma_fill(LEAD, d, o, s, values); });
    check("fill, slice", 0, false, false, 2,
          [&](uint8_t *d) { return JormTGAfill(nullptr, 0, values, word, size, u8, d + start, s); });
    for (jorm_masked_fill_kernel *f : {jorma__fillem, jorma__dofillem})
        check("fill em", 1, false, false, 2, [&](uint8_t *d) { return f(LEAD, d + start, s, ELEMENT_MASK, values); });
    for (jorm_masked_fill_kernel *f : {jorma__fillxm, jorma__dofillxm})
        check("fill xm", 2, false, false, 2, [&](uint8_t *d) { return f(LEAD, d + start, s, PIXEL_MASK, values); });
    for (jorm_masked_fill2_kernel *f : {jorma__fillem2, jorma__dofillem2})
        check("fill em2", 1, false, true, 2,
              [&](uint8_t *d) { return f(LEAD, d + start, s, ELEMENT_MASK, values, others); });
    for (jorm_masked_fill2_kernel *f : {jorma__fillxm2, jorma__dofillxm2})
        check("fill xm2", 2, false, true, 2,
              [&](uint8_t *d) { return f(LEAD, d + start, s, PIXEL_MASK, values, others); });
    check("fill em, adapter", 1, false, false, 2,
          [&](uint8_t *d) { return jorma_fillem(LEAD, d, o, s, u8, em.data(), o, mask_stride_em, values); });
    check("fill xm, adapter", 2, false, false, 2,
          [&](uint8_t *d) { return jorma_fillxm(LEAD, d, o, s, u8, xm.data(), o, mask_stride_xm, values); });
    check("fill em2, adapter", 1, false, true, 2,
          [&](uint8_t *d) { return jorma_fillem2(LEAD, d, o, s, u8, em.data(), o, mask_stride_em, values, others); });
    check("fill xm2, adapter", 2, false, true, 2,
          [&](uint8_t *d) { return jorma_fillxm2(LEAD, d, o, s, u8, xm.data(), o, mask_stride_xm, values, others); });
}

} // namespace
