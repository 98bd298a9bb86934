// What the tests share: random numbers, elements of any type, arrays in any layout, the levels.
#pragma once
#include "jorm/array.h"
#include "jorm/xe.h"
#include "xe/level.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

namespace {

using Bytes = std::vector<uint8_t>;
using Index = std::array<int32_t, 4>;
constexpr double nan = NAN, inf = INFINITY;

struct Random : std::mt19937 {
    using std::mt19937::mt19937;
    int in(int low, int high) { return std::uniform_int_distribution<int>(low, high)(*this); }
    bool one_in(int n) { return (*this)() % unsigned(n) == 0; }
    template <class List> auto of(const List &list) { return list[(*this)() % std::size(list)]; }
};

// Random bits, fast.
inline void scramble(Random &r, Bytes &bytes) {
    uint32_t x = uint32_t(r()) | 1;
    for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
        x ^= x << 13, x ^= x >> 17, x ^= x << 5;
        std::memcpy(&bytes[i], &x, 4);
    }
}

// The switch chooses the base level, the limit one of the others.
inline void use_level(int level) {
    _G_jorm_use_simd = level != jorm::level_base;
    jorm::limit_level(jorm::Level(level));
}

// An environment for the length of a scope.
struct Env {
    jorm_xe xe = {};
    Env() { JormXEinit(&xe, nullptr); }
    ~Env() { JormXEclose(&xe); }
    Env(const Env &) = delete;
    operator jorm_xe *() { return &xe; }
};

// Calls of which all give the same.
inline void expect_each(int64_t wanted, const std::vector<int64_t> &got) {
    for (const int64_t &value : got) EXPECT_EQ(value, wanted) << "call " << &value - got.data();
}

// What a lookup found, as what it is.
template <class Kernel> Kernel *kernel_as(jorm_proc *found) {
    return reinterpret_cast<Kernel *>(reinterpret_cast<void (*)()>(found));
}

// ---- Elements ----

inline int bytes_of(uint32_t type) { return "\0\1\2\4\10\4\10"[type & 7]; }
inline double lowest(uint32_t type) { return type < 8 ? 0 : -std::ldexp(1, 8 * bytes_of(type) - 1); }
inline double highest(uint32_t type) { return std::ldexp(1, 8 * bytes_of(type) - (type > 8)) - 1; }

// What a value becomes in a type: rounded to nearest even into 32 bits, then clamped.
inline double converted(uint32_t type, double v) {
    if (type >= JORM_F32) return type == JORM_F32 ? float(v) : v;
    v = std::nearbyint(v);
    return std::clamp(v >= INT32_MIN && v <= INT32_MAX ? v : INT32_MIN, lowest(type), highest(type));
}

inline double load(uint32_t type, const void *p) {
    const auto as = [p](auto v) { return std::memcpy(&v, p, sizeof v), double(v); };
    switch (type) {
    case JORM_F32:
        return as(float());
    case JORM_F64:
        return as(double());
    case JORM_U16:
        return as(uint16_t());
    case JORM_S16:
        return as(int16_t());
    case JORM_S32:
        return as(int32_t());
    default:
        return type == JORM_S8 ? as(int8_t()) : as(uint8_t());
    }
}

inline void store(uint32_t type, void *p, double v) {
    const float f = float(v);
    const int64_t i = type < JORM_F32 ? int64_t(v) : 0;
    const void *const from = type == JORM_F64 ? static_cast<const void *>(&v) : type == JORM_F32 ? &f : nullptr;
    std::memcpy(p, from ? from : &i, size_t(bytes_of(type)));
}

// Equal down to the sign of a zero; any NaN is a NaN.
inline bool same(double a, double b) {
    return std::isnan(a) ? std::isnan(b) : a == b && std::signbit(a) == std::signbit(b);
}

// ---- Arrays ----

template <class F> void each(const Index &size, F f) {
    for (int z = 0; z < size[0]; ++z)
        for (int y = 0; y < size[1]; ++y)
            for (int x = 0; x < size[2]; ++x)
                for (int c = 0; c < size[3]; ++c) f(Index{z, y, x, c});
}
inline Index sum(const Index &a, const Index &b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2], a[3] + b[3]}; }

inline Index extent_of(const jorm_array &a) {
    const uint32_t *const e = a.extent, code = e[3];
    return {a.ndims == 4 ? int(e[0]) : 1, int(e[1]), int(e[2]), int((code & 7) + (code >> 3 & 1))};
}
inline int64_t offset_of(const jorm_array &a, const Index &i) {
    int64_t offset = a.loff;
    for (int k = 4 - a.ndims; k < 4; ++k) offset += int64_t(i[size_t(k)]) * a.stride[k];
    return offset;
}
inline uint8_t *element(const jorm_array &a, const Index &i) {
    return static_cast<uint8_t *>(a.base) + offset_of(a, i);
}

// Strides for an extent: dense, always when it is to be plain, or axes in any order in memory, with gaps and backwards,
// each with some chance. The lowest byte lies at the base; the number of bytes is returned too.
inline std::pair<jorm_array, int64_t> lay_out(Random &r, uint32_t type, int ndims, const Index &extent,
                                              bool plain = false) {
    jorm_array a = {};
    const int element = bytes_of(type);
    const bool dense = plain || r.one_in(3);
    Index order = {3, 2, 1, 0};
    if (!dense && r.one_in(3)) std::shuffle(order.begin(), order.end(), r);
    int64_t span = element, first = 0;
    for (int k : order) {
        const int n = extent[size_t(k)];
        a.extent[k] = a.parent_extent[k] = uint32_t(n);
        a.stride[k] = 12344; // not read for three axes
        if (k < 4 - ndims) continue;
        const int64_t step = span + (!dense && r.one_in(3) ? element * r.in(1, 2) : 0);
        const bool backwards = !dense && r.one_in(5);
        a.stride[k] = int32_t(backwards ? -step : step);
        first += backwards ? (n - 1) * step : 0;
        span += (n - 1) * step;
    }
    if (extent[3] == 4 && !plain && r.one_in(2)) a.extent[3] = 11; // another code for four channels
    a.ndims = uint16_t(ndims);
    a.eltype = type;
    a.loff = int32_t(first);
    return {a, span};
}

// Where a region starts in each operand, and its size.
struct Region {
    Index origin[4], size;
    bool empty = false;
};

// How many positions of [0, extent) lie in a stretch.
inline int overlap(int extent, int64_t from, int64_t length) {
    int count = 0;
    for (int p = 0; p < extent; ++p) count += p >= from && p < from + length;
    return count;
}

// What the operands have in common: the region of the first, the destination, cut by what the others have from their
// start points on; the last one comes first. A negative start lets the last operand, and every one's planes, offer
// less; elsewhere it shortens the region. A mask of one channel, which then is the last, stands for all.
inline Region common_region(const std::vector<const jorm_array *> &arrays, const jorm_site *roi,
                            const std::vector<const int32_t *> &starts, bool masked = false) {
    Region region = {};
    const size_t last = arrays.size() - 1;
    for (size_t k = 0; k < 4; ++k) {
        const int whole = extent_of(*arrays[0])[k];
        int &n = region.size[k] = roi ? overlap(whole, roi->origin[k], roi->size[k]) : whole;
        region.origin[0][k] = roi ? std::max(0, roi->origin[k]) : 0;
        for (size_t turn = 0; turn < last; ++turn) {
            const size_t i = turn ? turn : last;
            const int extent = extent_of(*arrays[i])[k];
            const int start = starts[i - 1] ? std::max(starts[i - 1][k], k == 3 ? 0 : INT32_MIN) : 0;
            if (k == 3 && masked && i == last && extent == 1) continue;
            region.origin[i][k] = std::max(0, start);
            n = i == last || k == 0 ? std::min(n, overlap(extent, start, extent)) : overlap(extent, start, n);
        }
        region.empty |= n <= 0;
    }
    return region;
}

// An array in memory of its own, which is full of random bits and reaches beyond the array on both sides.
struct Picture {
    jorm_array a;
    Bytes memory;

    Picture(Random &r, uint32_t type, const Index &extent, bool plain = false, int ndims = 3) {
        const auto [array, span] = lay_out(r, type, ndims, extent, plain);
        const int before = 64 + bytes_of(type) * r.in(0, 15);
        a = array;
        memory.resize(size_t(before + span + 64));
        scramble(r, memory);
        const bool at_start = r.one_in(2);
        a.base = memory.data() + (at_start ? 0 : before);
        a.loff += at_start ? before : 0;
    }
    Picture(Picture &&) = default; // the memory stays where it is
    uint8_t *at(const Index &i) const { return element(a, i); }
    double get(const Index &i) const { return load(a.eltype, at(i)); }
    template <class F> void fill(F value) {
        each(extent_of(a), [&](const Index &i) { store(a.eltype, at(i), value()); });
    }
};

// Random bits, a small number, of which quarters are single, or a limit, also of exact comparison with other types.
inline void draw_element(Random &r, uint32_t type, void *p, int flavour) {
    static const int32_t limits[] = {0,    1,     -1,     2,     127,      128,      254,       255,      256,
                                     -128, 32767, -32768, 65535, 16777216, 16777217, INT32_MAX, INT32_MIN};
    static const uint32_t singles[] = {0x80000000, 0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC12345,
                                       0x7F800001, 0x80000001, 0x7F7FFFFF, 0x00800000, 0x3F000000,
                                       0x40200000, 0x4EFFFFFF, 0x4F000000, 0xCF000001, 0x437F8000};
    int32_t i = int32_t(r());
    float f = r.one_in(2) ? std::bit_cast<float>(i) : std::ldexp(float(i), -r.in(0, 39));
    if (flavour == 1) i = i % 21, f = float(i) / 4;
    if (flavour == 2) i = r.of(limits), f = r.one_in(2) ? float(i) : std::bit_cast<float>(r.of(singles));
    std::memcpy(p, type == JORM_F32 ? static_cast<const void *>(&f) : &i, size_t(bytes_of(type)));
}
inline void paint(const Picture &picture, Random &r) {
    const int flavours = r.in(0, 3);
    each(extent_of(picture.a), [&](const Index &at) {
        draw_element(r, picture.a.eltype, picture.at(at), flavours == 3 ? r.in(0, 2) : flavours);
    });
}

// A random part of such an extent, or all of it.
struct Part {
    Index origin = {}, size;
    jorm_site site;
    bool whole;

    Part(Random &r, const Index &extent) : size(extent), whole(r.one_in(2)) {
        for (size_t k = 0; k < 4; ++k) {
            if (!whole) origin[k] = r.in(0, size[k] - 1), size[k] = r.in(1, size[k] - origin[k]);
            site.origin[k] = origin[k], site.size[k] = size[k];
        }
    }
    const jorm_site *roi() const { return whole ? nullptr : &site; }
};

// Calls f at every level, each time with the picture's memory as it was; the widest comes first, so that it finds in
// scratch memory nothing of what another one made of the same picture.
template <class F> void at_each_level(Picture &p, F f) {
    const Bytes before = p.memory;
    for (int level = jorm::level_count - 1; level >= 0; --level) {
        use_level(level);
        std::copy(before.begin(), before.end(), p.memory.begin());
        f(level);
    }
}

// Runs a call at every level. In a block of `dst`, which lies in the picture's memory, each element becomes what
// `wanted` says of its place, to the sign of a zero where that is asked for; every level gives the same; nothing else
// in the memory changes.
template <class Call, class Wanted>
void expect_block(Picture &picture, const jorm_array &dst, const Index &origin, const Index &size, int64_t status,
                  Call call, Wanted wanted, bool signed_zeros = true) {
    const Bytes before = picture.memory;
    std::vector<double> values;
    at_each_level(picture, [&](int level) {
        ASSERT_EQ(call(), status) << "level " << level;
        const bool first = level == jorm::level_count - 1;
        Bytes expected = before;
        size_t k = 0;
        each(size, [&](const Index &i) {
            const uint8_t *const at = element(dst, sum(origin, i));
            const double got = load(dst.eltype, at);
            if (first) values.push_back(got);
            const double wish = first ? wanted(i) : values[k++];
            ASSERT_TRUE(same(got, wish) || (first && !signed_zeros && got == wish))
                << "level " << level << " at " << testing::PrintToString(i) << ": " << got << " instead of " << wish;
            std::memcpy(&expected[size_t(at - picture.memory.data())], at, size_t(bytes_of(dst.eltype)));
        });
        ASSERT_TRUE(picture.memory == expected) << "written outside";
    });
}

} // namespace
