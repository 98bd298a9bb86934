// Random calls of neighbourhood operations: views of pictures in any layout and overlap, regions and windows; and what
// a window sees, looked up pixel by pixel.
#pragma once
#include "jorm/shapes.h"
#include "support/picture.hpp"

#include <optional>

namespace {

// The position that stands for v in a mirrored row of n.
inline int mirrored(int v, int n) {
    while (v < 0 || v >= n) v = n == 1 ? 0 : v < 0 ? -v : 2 * n - 2 - v;
    return v;
}

inline jorm_site site_of(const Index &origin, const Index &size) {
    jorm_site site;
    for (size_t k = 0; k < 4; ++k) site.origin[k] = origin[k], site.size[k] = size[k];
    return site;
}

struct WindowCase {
    Picture picture;               // holds the source
    std::optional<Picture> result; // holds the destination, unless that is a view of the picture too
    jorm_array src, dst;
    Index src_at = {}; // of the source in its picture
    bool in_place = false;
    uint64_t flags = 0;
    std::optional<jorm_site> roi, src_roi;
    jorm_seshape shape = {};
    Region region;
    Bytes seen; // the picture's memory before the call

    WindowCase(Random &r, uint32_t type, int channels, int max_window)
        : WindowCase(r, type, channels, max_window, r.one_in(5) ? 4 : 3) {}

    const jorm_array *source() const { return in_place ? nullptr : &src; }
    const jorm_site *destination_region() const { return roi ? &*roi : nullptr; }
    const jorm_site *source_region() const { return src_roi ? &*src_roi : nullptr; }

    // What stands at position p of the region, or beyond it.
    double at(const Index &p) const {
        const bool own = (flags & JORM_OPT_OWN_BORDER) != 0;
        const Index whole = own ? extent_of(src) : extent_of(picture.a), view = own ? Index{} : src_at;
        Index i = sum(sum(p, region.origin[1]), view);
        for (size_t k = 0; k < 3; ++k) i[k] = mirrored(i[k], whole[k]);
        return load(src.eltype, seen.data() + (element(own ? src : picture.a, i) - picture.memory.data()));
    }
    // Calls f for every position of the window of p, with its place in the window; with the value there.
    template <class F> void each_place(const Index &p, F f) const {
        const int *const n = shape.extent, *const a = shape.anchor;
        each({n[0], n[1], n[2], 1}, [&](const Index &q) { f(sum(p, {q[0] - a[0], q[1] - a[1], q[2] - a[2], 0}), q); });
    }
    template <class F> void each_in_window(const Index &p, F f) const {
        each_place(p, [&](const Index &i, const Index &q) { f(at(i), q); });
    }

    template <class Entry, class... Rest> int64_t call(Entry entry, jorm_xe *xe, Rest... rest) const {
        return entry(xe, flags, &dst, source(), destination_region(), source_region(), rest...);
    }
    double got(const Index &p) const { return load(dst.eltype, element(dst, sum(p, region.origin[0]))); }

    // Every element p of the region becomes wanted(p).
    template <class Call, class Wanted> void check(Call make_call, Wanted wanted) {
        SCOPED_TRACE(describe());
        seen = picture.memory;
        expect_block(result ? *result : picture, dst, region.origin[0], region.empty ? Index{} : region.size,
                     region.empty ? JORM_EEMPTY : JORM_OK, make_call, wanted, false);
    }
    std::string describe() const {
        const auto list = [](const auto *v) { return testing::PrintToString(std::vector(v, v + 4)); };
        return "type " + std::to_string(src.eltype) + " picture " + list(picture.a.extent) + " source " +
               list(src.extent) + list(src.stride) + " destination " + list(dst.extent) + list(dst.stride) +
               " region " + list(region.size.data()) + " window " + list(shape.anchor) + " of " + list(shape.extent) +
               (in_place ? " in place"
                : result ? ""
                         : " within one picture") +
               " flags " + std::to_string(flags);
    }

private:
    // Most are tiny, some have long rows, some have short ones and room for large windows.
    static Index random_extent(Random &r, int ndims, int channels) {
        const int planes = ndims == 4 ? r.in(1, 3) : 1;
        if (ndims == 3 && r.one_in(4)) return {1, r.in(8, 24), r.in(16, 48), channels};
        return {planes, r.in(1, 12), r.one_in(5) ? r.in(60, 310) : r.in(1, 20), channels};
    }
    WindowCase(Random &r, uint32_t type, int channels, int max_window, int ndims)
        : picture{r, type, random_extent(r, ndims, channels), r.one_in(3), ndims} {
        // A picture with views is described from its first pixel on, others from their lowest byte perhaps.
        const int way = r.in(0, 5);
        const bool views = r.one_in(2) || way == 5, from_lowest = !views && r.one_in(2);
        int64_t low = 0;
        for (int k = 4 - ndims; k < 4 && from_lowest; ++k)
            low += std::min<int64_t>(0, int64_t(extent_of(picture.a)[size_t(k)] - 1) * picture.a.stride[k]);
        picture.a.base = picture.at({}) + low;
        picture.a.loff = int32_t(-low);
        src = views ? view(r, src_at) : picture.a;
        Index dst_at = src_at;
        in_place = way == 3;
        if (way == 5)
            dst = view(r, dst_at, extent_of(src)[0]);
        else if (way == 4 || way == 3)
            dst = src;
        else {
            result.emplace(r, type, random_extent(r, ndims, channels), r.one_in(3), ndims);
            if (extent_of(src)[0] != 1) result.emplace(r, type, extent_of(src), false, ndims);
            dst = result->a;
        }
        if (r.one_in(2)) {
            const Index origin = {0, r.in(-2, 3), r.in(-2, 3), 0};
            roi = site_of(origin, {9, r.in(3, 12), r.in(3, 30), 4});
            if (way == 5 || r.one_in(2)) src_roi = site_of({0, r.in(0, 2), r.in(0, 2), 0}, {});
        }
        const int *const start = src_roi ? src_roi->origin : in_place && roi ? roi->origin : nullptr;
        region = common_region({&dst, &src}, roi ? &*roi : nullptr, {start});
        if (r.one_in(6)) flags |= JORM_OPT_OWN_BORDER;
        for (int k = 0; k < 3; ++k) {
            const int most = k > 0 ? max_window : ndims == 4 && r.one_in(2) ? 3 : 1;
            shape.extent[k] = r.in(1, most);
            shape.anchor[k] = r.in(0, shape.extent[k] - 1);
        }
        if (shape.extent[0] * shape.extent[1] * shape.extent[2] == 1) shape.extent[2] = 2;
    }
    jorm_array view(Random &r, Index &at, int planes = 0) const {
        Index size = extent_of(picture.a);
        for (size_t k = picture.a.ndims == 4 ? 0 : 1; k < 3; ++k) {
            const int n = size[k];
            size[k] = k == 0 && planes ? planes : r.in((n + 1) / 2, n);
            at[k] = r.in(0, n - size[k]);
        }
        const jorm_site site = site_of(at, size);
        jorm_array a;
        EXPECT_TRUE(_jorm_array__$sar(&a, &picture.a, &site));
        return a;
    }
};

struct WindowTest : testing::Test {
    static constexpr uint32_t types[] = {JORM_U8, JORM_S16, JORM_S32, JORM_F32};
    Random r{20};
    Env xe;
    ~WindowTest() override { use_level(0); }
};

} // namespace
