// Calls of entries with random arguments over guarded memory. One table line an entry; arguments are made by their
// types. Each call runs on a level that the input draws and without vectorised kernels, and once more on dense copies
// of its arrays, none of which is a view or overlaps another: status and results are the same. A refused call writes
// nothing, others only the destination's elements.
#pragma once
#include "harness.hpp"
#include "xe/level.hpp"

#include <algorithm>
#include <functional>
#include <string>
#include <tuple>
#include <vector>

namespace fuzz {

struct Outputs { // what entries answer besides arrays
    double numbers[2][16];
    vrng ranges[8];
    jorm_minmax minmax;
    uint32_t bins[8];
    jorm_histogram histogram[8];
    uint32_t counters[8][300];
};

class World {
public:
    World(ByteReader &reader, const char *roles)
        : r(reader), roles_(roles), looks_around_(std::strchr(roles, 'w') != nullptr) {
        static const int32_t widths[] = {1, 2, 3, 7, 16, 31, 40, 65, 130};
        static const uint32_t types[] = {JORM_U8,  JORM_U8,  JORM_S16, JORM_F32, JORM_S32, JORM_S8, JORM_U16,
                                         JORM_U32, JORM_F64, JORM_U64, JORM_S64, 15,       0,       7};
        type_ = r.of(types);
        ndims_ = r.one_in(3) ? 4 : 3;
        extent_[0] = ndims_ == 4 ? r.in(1, 3) : 1;
        extent_[1] = r.in(1, 9);
        extent_[2] = r.of(widths) - r.in(0, 1) % r.in(1, 3);
        if (extent_[2] < 1 || r.one_in(8)) extent_[2] = extent_[1]; // as matrices like it
        extent_[3] = r.one_in(2) ? r.in(1, 4) : 1;
        extent_[1] = std::clamp(most_elements / (extent_[0] * extent_[2] * extent_[3]), 1, extent_[1]);
        Noise noise(r.word());
        const int style = r.in(0, 3);
        for (int block = 0; block < 3; ++block)
            for (size_t i = 0; i < Guarded::bytes; i += 4) {
                uint32_t w = noise();
                if (style == 1) w = (w & 3) == 0 ? 0xFFFFFFFF : w & 0x01010101;
                if (style == 2) { // single precision of common size
                    const float f = float(int32_t(w) >> 12) * 0.125f;
                    std::memcpy(&w, &f, 4);
                }
                std::memcpy(memory()[block].start + i, &w, 4);
            }
        out = {};
        for (auto &list : out.numbers)
            for (double &v : list) v = r.number();
        for (vrng &v : out.ranges) v = {r.number(), r.number()};
        out.minmax.request = r.in(0, 3);
        for (uint32_t &n : out.bins) n = uint32_t(r.in(0, 300));
        for (int i = 0; i < 8; ++i) {
            jorm_histdesc d = {};
            d.nbins = uint32_t(r.in(0, 299));
            d.lo = r.number(), d.hi = r.one_in(3) ? r.number() : d.lo + 255;
            jorm_hist_inithdr(&out.histogram[i], &d);
            out.histogram[i].bins = r.one_in(20) ? nullptr : out.counters[i];
        }
    }

    // ---- Arguments by type ----

    jorm_xe *draw(jorm_xe **) { return r.one_in(12) ? nullptr : environment(); }
    uint64_t draw(uint64_t *) {
        static const uint64_t bits[] = {0, JORM_OPT_MASK_INVERT, JORM_OPT_FAST, 0x10, 0x50, JORM_OPT_OWN_BORDER, 1};
        uint64_t options = r.of(bits) | r.of(bits);
        if (r.one_in(8)) options = r.wide();
        if (options & JORM_OPT_OWN_BORDER) looks_around_ = false;
        return options & ~(JORM_OPT_NO_BORDER | JORM_OPT_NO_SIMD); // pixels around are not vouched for
    }
    int32_t draw(int32_t *) { return r.one_in(3) ? r.one_in(4) ? r.hostile_int() : r.in(-40, 40) : 0; }
    uint32_t draw(uint32_t *) { return r.one_in(16) ? r.word() : uint32_t(r.one_in(3) ? r.in(0, 127) : r.in(0, 9)); }
    const jorm_site *draw(const jorm_site **) {
        if (!r.one_in(2)) return nullptr;
        jorm_site &s = site_[sites_++ % 3];
        for (int i = 0; i < 4; ++i) {
            s.origin[i] = r.one_in(3) ? r.in(-4, extent_[i] + 2) : 0;
            s.size[i] = r.one_in(3) ? r.in(-1, extent_[i] + 4) : extent_[i];
            if (r.one_in(24)) s.origin[i] = r.hostile_int();
            if (r.one_in(24)) s.size[i] = r.hostile_int();
        }
        return &s;
    }
    const int32_t *draw(const int32_t **) {
        if (!r.one_in(2)) return nullptr;
        int32_t *const v = point_[points_++ % 3];
        for (int i = 0; i < 4; ++i) v[i] = r.one_in(24) ? r.hostile_int() : r.one_in(2) ? r.in(-4, extent_[i] + 1) : 0;
        return v;
    }
    const double *draw(const double **) {
        if (r.one_in(6)) return nullptr;
        double *const v = number_[numbers_++ % 4];
        for (int i = 0; i < 16; ++i) v[i] = r.number();
        return v;
    }
    double *draw(double **) {
        if (r.one_in(16)) return nullptr;
        double *const list = out.numbers[outputs_++ % 2];
        if (r.one_in(2)) std::fill_n(list, 16, 0.0); // factors that are to be found
        return list;
    }
    vrng *draw(vrng **) { return r.one_in(4) ? nullptr : out.ranges; }
    uint32_t *draw(uint32_t **) { return r.one_in(4) ? nullptr : out.bins; }
    jorm_minmax *draw(jorm_minmax **) { return r.one_in(16) ? nullptr : &out.minmax; }
    jorm_histogram *draw(jorm_histogram **) { return r.one_in(16) ? nullptr : out.histogram; }
    const vrng *draw(const vrng **) {
        if (r.one_in(3)) return nullptr;
        for (vrng &v : range_) v = {r.number(), r.number()};
        return range_;
    }
    const jorm_border *draw(const jorm_border **) {
        if (r.one_in(16)) return nullptr;
        border_ = {r.one_in(8) ? r.word() : uint32_t(r.in(3, 7)), 0, {}};
        for (double &v : border_.values) v = r.number();
        return &border_;
    }
    const jorm_seshape *draw(const jorm_seshape **) {
        if (r.one_in(6)) return nullptr;
        draw_shape(shape_, true);
        return &shape_;
    }
    const jorm_sepkernel *draw(const jorm_sepkernel **) {
        if (r.one_in(16)) return nullptr;
        draw_shape(kernel_.shape, false);
        const bool whole = r.one_in(3);
        for (auto &axis : weights_)
            for (double &w : axis) w = whole ? r.in(-3, 3) : r.one_in(8) ? r.number() : r.in(0, 100) * 0.01;
        for (int i = 0; i < 3; ++i) kernel_.kernel[i] = r.one_in(16) ? nullptr : weights_[i];
        return &kernel_;
    }
    const jorm_strel *draw(const jorm_strel **) {
        if (r.one_in(12)) return nullptr;
        for (int32_t &a : strel_.anchor) a = r.in(0, 3);
        const int32_t extent[4] = {r.one_in(6) ? 2 : 1, r.in(1, 9), r.in(1, 9), 1};
        int32_t before[4];
        lay_out(strel_.mask, JORM_U8, extent[0] > 1 ? 4 : 3, extent, *mask_memory(), false, before);
        if (r.one_in(8)) break_up(strel_.mask);
        return &strel_;
    }
    const jorm_thhmethod *draw(const jorm_thhmethod **) {
        if (r.one_in(4)) return nullptr;
        static const uint32_t words[] = {0, 3, 4, 5, 19, 20, 21, 9};
        method_ = {r.of(words), 0, {}, {}};
        for (vrng &v : method_.ranges) v = {r.number(), r.number()};
        for (uint32_t &n : method_.bins) n = uint32_t(r.in(0, 300));
        return &method_;
    }

    // One array after the other, as the roles say: d destination, s source, w a source of whose parent pixels around a
    // view are read, m mask; S a source that may be the destination but not overlap it otherwise, M a mask that may not
    // overlap it.
    const jorm_array *draw(const jorm_array **) {
        const bool strict = roles_[arrays_] == 'S' || roles_[arrays_] == 'M';
        const char role = roles_[arrays_] == 'S' ? 's' : roles_[arrays_] == 'M' ? 'm' : roles_[arrays_];
        const int i = arrays_++;
        jorm_array &a = array_[i];
        int32_t extent[4];
        std::memcpy(extent, extent_, sizeof extent);
        int ndims = ndims_;
        uint32_t type = type_;
        if (role == 'm')
            type = r.one_in(8) ? type_ : uint32_t(r.one_in(4) ? JORM_S8 : JORM_U8),
            extent[3] = r.one_in(3) ? extent[3] : 1;
        else if (r.one_in(4)) {
            static const uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32, JORM_S8, JORM_U16, JORM_F64};
            type = r.of(types);
        }
        if (role != 'd' && r.one_in(16)) return in_place_ |= strict, nullptr;
        if (role != 'd' && !(role == 'm' && strict) && i > 0 && r.one_in(6)) {
            in_place_ |= strict;
            std::memcpy(before_[i], before_[0], sizeof before_[0]);
            return a = array_[0], &a;
        }
        for (int k = 1; k < 3; ++k)
            if (r.one_in(5)) extent[k] = r.one_in(3) ? 1 : r.in(1, extent[k] + 2);
        if (r.one_in(12)) extent[3] = r.in(1, 4);
        if (role != 'd' && ndims == 4 && r.one_in(6)) ndims = 3, extent[0] = 1;
        const int block = role == 'd' || (!strict && r.one_in(6)) ? 0 : 1 + i % 2;
        lay_out(a, type, ndims, extent, memory()[block], role != 'd', before_[i]);
        if (role == 'd') has_destination_ = true;
        if (r.one_in(10)) break_up(a);
        return r.one_in(40) ? nullptr : &a;
    }

    jorm_array &array(int i) { return array_[i]; }

    // ---- What a call may and may not do ----

    // In place from another start than the destination's the results of some entries are unspecified.
    bool results_specified() const { return !in_place_ || (sites_ == 0 && points_ == 0); }
    struct State {
        uint8_t bytes[3][Guarded::bytes];
        Outputs out;
    };
    void save(State &s) const {
        for (int i = 0; i < 3; ++i) std::memcpy(s.bytes[i], memory()[i].start, Guarded::bytes);
        s.out = out;
    }
    void restore(const State &s) {
        for (int i = 0; i < 3; ++i) std::memcpy(memory()[i].start, s.bytes[i], Guarded::bytes);
        out = s.out;
    }
    // Gives every array a dense copy of its own, of the whole parent where pixels around are read.
    uint8_t *set_dense_copies() {
        static std::vector<uint8_t> copies[5];
        for (int i = 0; i < arrays_; ++i) {
            jorm_array &a = array_[i];
            if (!in_order(a)) continue;
            int64_t size[4], before[4], start = 0, step = bytes_of(a.eltype);
            jorm_array copy = a;
            for (int k = 3; k >= 0; --k) {
                size[k] = size_of(a, k);
                before[k] = looks_around_ ? before_[i][k] : 0;
                if (looks_around_ && k < 3)
                    size[k] = std::max<int64_t>(before[k] + size[k], a.parent_extent[k]);
                else
                    copy.parent_extent[k] = copy.extent[k];
                copy.stride[k] = int32_t(step);
                start += before[k] * step, step *= size[k];
            }
            copies[i].clear();
            each_element(a, size, before,
                         [&](const uint8_t *p, size_t n) { copies[i].insert(copies[i].end(), p, p + n); });
            copy.base = copies[i].data(), copy.loff = int32_t(start);
            a = copy;
        }
        return copies[0].data();
    }
    // The destination's elements, one after the other.
    std::vector<uint8_t> result(const uint8_t *bytes, const uint8_t *base) const {
        std::vector<uint8_t> list;
        each_result(
            base, [&](size_t offset, size_t size) { list.insert(list.end(), bytes + offset, bytes + offset + size); });
        return list;
    }
    static const uint8_t *destination_memory() { return memory()[0].start; }
    // NaN is one value here; which one it is may depend on the order of operands.
    void settle_nan(uint8_t *bytes, const uint8_t *base, Outputs &o) const {
        for (auto &list : o.numbers)
            for (double &v : list) settle<double>(&v);
        for (vrng &v : o.ranges) settle<double>(&v.lo), settle<double>(&v.hi);
        each_result(base, [&](size_t offset, size_t) {
            if (array_[0].eltype == JORM_F32) settle<float>(bytes + offset);
            if (array_[0].eltype == JORM_F64) settle<double>(bytes + offset);
        });
    }
    bool same(const State &a, const State &b) const {
        return std::memcmp(a.bytes, b.bytes, sizeof a.bytes) == 0 && std::memcmp(&a.out, &b.out, sizeof a.out) == 0;
    }
    bool only_destination_written(const State &before, const State &after) const {
        static uint8_t rest[Guarded::bytes];
        std::memcpy(rest, after.bytes[0], sizeof rest);
        each_result(destination_memory(),
                    [&](size_t offset, size_t size) { std::memcpy(rest + offset, before.bytes[0] + offset, size); });
        return std::memcmp(before.bytes[0], rest, sizeof rest) == 0 &&
               std::memcmp(before.bytes[1], after.bytes[1], 2 * Guarded::bytes) == 0 &&
               (!has_destination_ || std::memcmp(&before.out.minmax, &after.out.minmax, sizeof out.minmax) == 0);
    }

    // For whoever looks into a failure.
    void describe() const {
        const auto list = [](const char *what, const auto *v) {
            std::fprintf(stderr, "  %s %d %d %d %d\n", what, int(v[0]), int(v[1]), int(v[2]), int(v[3]));
        };
        for (int i = 0; i < arrays_; ++i) {
            const jorm_array &a = array_[i];
            std::fprintf(stderr, "array %d (%c): type %u, axes %d, base %p, loff %d\n", i, roles_[i], a.eltype, a.ndims,
                         a.base, a.loff);
            list("extent", a.extent), list("of", a.parent_extent), list("stride", a.stride);
        }
        for (int i = 0; i < std::min(sites_, 3); ++i) list("region", site_[i].origin), list("of", site_[i].size);
        for (int i = 0; i < std::min(points_, 3); ++i) list("start", point_[i]);
    }

    Outputs out;

private:
    static constexpr int most_elements = 1 << 11; // that runs are many

    static Guarded *memory() {
        static Guarded blocks[3];
        return blocks;
    }
    static Guarded *mask_memory() {
        static Guarded block;
        return &block;
    }
    static jorm_xe *environment() {
        static jorm_xe *const xe = JormXEopen(nullptr, nullptr, 0);
        return xe;
    }
    template <class T> static void settle(void *p) {
        T v;
        std::memcpy(&v, p, sizeof v);
        if (v != v) std::memset(p, 0xFF, sizeof v);
    }

    void draw_shape(jorm_seshape &s, bool wild) {
        for (int i = 0; i < 4; ++i) {
            s.extent[i] = i == 0 ? r.one_in(5) ? r.in(-2, 3) : 1 : r.one_in(5) ? r.in(-3, 40) : r.in(1, 9);
            s.anchor[i] = r.one_in(4) ? r.in(-3, 12) : s.extent[i] / 2;
            if (wild && r.one_in(32)) s.anchor[i] = r.hostile_int();
        }
    }

    // A view of a parent whose memory begins or ends at a guard page.
    void lay_out(jorm_array &a, uint32_t type, int ndims, const int32_t *extent, Guarded &where, bool may_repeat,
                 int32_t *befores) {
        const int element = bytes_of(type);
        const bool dense = !r.one_in(2), view = r.one_in(3);
        int order[4] = {3, 2, 1, 0};
        if (!dense && r.one_in(3)) std::swap(order[0], order[1]);
        if (!dense && r.one_in(4)) std::swap(order[1], order[2]);
        a = {};
        int64_t span = element, first = 0, start = 0;
        for (const int k : order) {
            const int32_t n = extent[k];
            const bool used = k >= 4 - ndims;
            const int32_t before = befores[k] = view && used && k > 0 && k < 3 ? r.in(0, 3) : 0;
            const int32_t whole = n + before + (view && used && k > 0 && k < 3 ? r.in(0, 3) : 0);
            a.extent[k] = uint32_t(n);
            a.parent_extent[k] = uint32_t(whole);
            a.stride[k] = int32_t(r.one_in(2) ? 0x7FFFFFF8 : 0); // not read for three axes
            if (!used) continue;
            int64_t step = span + (!dense && r.one_in(3) ? element * r.in(1, 2) : 0);
            if (!dense && may_repeat && r.one_in(12)) step = 0;
            const bool backwards = !dense && r.one_in(5);
            a.stride[k] = int32_t(backwards ? -step : step);
            first += backwards ? (whole - 1) * step : 0;
            start += before * int64_t(a.stride[k]);
            span += (whole - 1) * step;
        }
        if (extent[3] == 4 && r.one_in(2)) a.extent[3] = 11;
        a.parent_extent[3] = a.extent[3];
        a.ndims = uint16_t(ndims);
        a.eltype = type;
        if (span > int64_t(Guarded::bytes)) {
            const int32_t row[4] = {1, 1, extent[2], extent[3]};
            return lay_out(a, type, ndims, row, where, may_repeat, befores);
        }
        uint8_t *const lowest = r.one_in(2) ? where.start : where.end() - span;
        const bool from_lowest = !view && r.one_in(2);
        a.base = lowest + (from_lowest ? 0 : first);
        a.loff = int32_t(start + (from_lowest ? first : 0));
    }

    // Breaks a descriptor in a way that makes it describe nothing, or less.
    void break_up(jorm_array &a) {
        static const uint32_t channels[] = {0, 5, 6, 7, 12, 13, 14, 15, 16, 0x80000001};
        static const uint32_t types[] = {0, 5, 6, 7, 8, 15, 16, 0x10001, 0xFFFFFFFF};
        const int k = r.in(4 - (a.ndims == 4), 3) % 4;
        const int way = r.in(0, 7);
        if (way == 0) a.base = nullptr;
        if (way == 1) a.eltype = r.of(types);
        if (way == 2) a.ndims = uint16_t(r.in(0, 2));
        if (way == 3) a.ndims = uint16_t(r.in(5, 300));
        if (way == 4) a.extent[k == 3 ? 2 : k] = 0;
        if (way == 5) a.extent[1 + r.in(0, 1)] = uint32_t(-r.in(1, 300));
        if (way == 6) a.extent[3] = r.of(channels);
        if (way == 7) a.parent_extent[1 + r.in(0, 1)] = 0;
    }

    static bool in_order(const jorm_array &a) {
        if (!a.base || (a.ndims != 3 && a.ndims != 4)) return false;
        for (int k = 0; k < 3; ++k)
            if (int32_t(a.extent[k]) < 1 || a.extent[k] > 1000) return false;
        const bool sized = (a.eltype >= 1 && a.eltype <= 4) || (a.eltype >= 9 && a.eltype <= 14);
        return sized && channels_of(a) >= 1 && channels_of(a) <= 4;
    }
    static int channels_of(const jorm_array &a) { return int(a.extent[3] & 7) + int(a.extent[3] >> 3 & 1); }
    static int64_t size_of(const jorm_array &a, int k) {
        return k == 3 ? channels_of(a) : k == 0 && a.ndims == 3 ? 1 : a.extent[k];
    }
    template <class F> static void each_element(const jorm_array &a, const int64_t *size, const int64_t *before, F f) {
        const uint8_t *const start = static_cast<const uint8_t *>(a.base) + a.loff;
        for (int64_t e = 0; e < size[0] * size[1] * size[2] * size[3]; ++e) {
            int64_t rest = e, offset = 0;
            for (int k = 3; k >= 0; rest /= size[k--])
                offset += (rest % size[k] - before[k]) * (size[k] > 1 ? a.stride[k] : 0);
            f(start + offset, size_t(bytes_of(a.eltype)));
        }
    }
    // Of the destination, if it describes elements.
    template <class F> void each_result(const uint8_t *base, F f) const {
        const jorm_array &a = array_[0];
        if (!has_destination_ || !in_order(a)) return;
        const int64_t size[] = {size_of(a, 0), size_of(a, 1), size_of(a, 2), size_of(a, 3)}, before[4] = {};
        each_element(a, size, before, [&](const uint8_t *p, size_t n) { f(size_t(p - base), n); });
    }

    ByteReader &r;
    const char *roles_;
    uint32_t type_;
    int ndims_;
    int32_t extent_[4];
    jorm_array array_[5] = {};
    int32_t before_[5][4] = {}; // how far views are from their parents' starts
    int arrays_ = 0, sites_ = 0, points_ = 0, numbers_ = 0, outputs_ = 0;
    bool looks_around_, has_destination_ = false, in_place_ = false;
    jorm_site site_[3];
    int32_t point_[3][4];
    double number_[4][16], weights_[3][64];
    vrng range_[8];
    jorm_border border_;
    jorm_seshape shape_;
    jorm_sepkernel kernel_;
    jorm_strel strel_;
    jorm_thhmethod method_;
};

template <class... A> void call(const char *name, int64_t (*entry)(A...), const char *roles, ByteReader &r) {
    static World::State before, plain, other;
    World world(r, roles);
    std::tuple<A...> arguments{world.draw(static_cast<A *>(nullptr))...}; // braces: from left to right
    jorm::limit_level(r.one_in(3) ? jorm::level_avx2 : jorm::level_count);
    world.save(before);
    _G_jorm_use_simd = 1;
    const int64_t status = std::apply(entry, arguments);
    world.save(plain);
    if (status < 0) check(world.same(before, plain), name, "written although refused");
    const auto want = [&](bool holds, const char *what) {
        if (!holds) world.describe(), fail(name, what);
    };
    want(world.only_destination_written(before, plain), "written beside the destination");
    const uint8_t *const base = World::destination_memory();
    world.settle_nan(plain.bytes[0], base, plain.out);

    world.restore(before);
    std::get<1>(arguments) |= JORM_OPT_NO_SIMD;
    want(std::apply(entry, arguments) == status, "the switch makes a difference to the status");
    world.save(other);
    world.settle_nan(other.bytes[0], base, other.out);
    if (!world.results_specified()) return;
    want(world.same(plain, other), "the switch makes a difference");
    if (status < 0) return;

    const std::vector<uint8_t> result = world.result(plain.bytes[0], base);
    world.restore(before);
    uint8_t *const copy = world.set_dense_copies();
    std::get<1>(arguments) &= ~JORM_OPT_NO_SIMD;
    want(std::apply(entry, arguments) == status, "dense copies make a difference to the status");
    world.settle_nan(copy, copy, world.out);
    const bool same = world.result(copy, copy) == result && std::memcmp(&world.out, &plain.out, sizeof plain.out) == 0;
    want(same, "dense copies make a difference");
}

// Calls f(name, entry) for each of some entries, whose names stand between commas.
template <class F, class... Entries> void each_entry(F f, const char *names, Entries... entries) {
    const auto next = [&] {
        const std::string name(names, std::strcspn(names, ","));
        names += name.size() + std::strspn(names + name.size(), ", ");
        return name;
    };
    (f(next(), entries), ...);
}

} // namespace fuzz
