// Windows without a mask.
#include "filter/shape.hpp"

#include <cstddef>

static_assert(sizeof(jorm_seshape) == 32 && offsetof(jorm_seshape, extent) == 16);

namespace jorm {

void centre_anchor(int32_t *anchor, const int32_t *extent, int32_t k) {
    for (int32_t i = spatial_axes - axes_of(k); i < spatial_axes; ++i) anchor[i] = extent[i] / 2;
}

void place_anchor(int32_t *anchor, const int32_t *extent, int32_t k) {
    for (int32_t i = spatial_axes - axes_of(k); i < spatial_axes; ++i) {
        const int64_t from_end = anchor[i] < 0 ? int64_t(anchor[i]) + extent[i] : anchor[i];
        const int64_t inside = from_end < extent[i] ? from_end : int64_t(extent[i]) - 1;
        anchor[i] = inside < 0 ? 0 : int32_t(inside);
    }
}

void adjust_window(int32_t *anchor, int32_t *extent, int32_t k, const int32_t *size) {
    const int32_t first = spatial_axes - axes_of(k);
    anchor[3] = extent[3] = 0;
    bool single = true;
    for (int32_t i = first; i < spatial_axes; ++i) {
        if (extent[i] < 0) {
            const int64_t from_size = int64_t(extent[i]) + (size ? size[i - first] : 0);
            extent[i] = from_size < 0 ? 0 : int32_t(from_size);
        }
        if (extent[i] == 0) extent[i] = 1; // placing the anchor puts it at 0
        single = single && extent[i] == 1;
    }
    if (single) {
        constexpr int32_t default_extent[4] = {1, 5, 5, 0};
        constexpr int32_t default_anchor[4] = {0, 2, 2, 0};
        vec_assign(4, extent, default_extent);
        vec_assign(4, anchor, default_anchor);
    }
    place_anchor(anchor, extent, k);
}

int32_t window_empty(const int32_t *extent) { return !vec_positive(spatial_axes, extent); }

int32_t window_capacity(const int32_t *extent) { return wrap_mul(wrap_mul(extent[0], extent[1]), extent[2]); }

int64_t window_guarded_capacity(const int32_t *extent) {
    uint64_t product = 1;
    for (int32_t i = 0; i < spatial_axes; ++i) product *= extent[i] < 0 ? 0 : uint64_t(extent[i]);
    return int64_t(product);
}

namespace {

jorm_seshape *set_extent(jorm_seshape *s, int32_t d, int32_t h, int32_t w) {
    if (!s) return s;
    const int32_t extent[4] = {d, h, w, 1};
    vec_assign(4, s->extent, extent);
    return s;
}

jorm_seshape *set_anchor(jorm_seshape *s, int32_t a0, int32_t a1, int32_t a2) {
    if (!s) return s;
    const int32_t anchor[4] = {a0, a1, a2, 0};
    vec_assign(4, s->anchor, anchor);
    return s;
}

jorm_seshape *centre(jorm_seshape *s, int32_t k) {
    if (s) centre_anchor(s->anchor, s->extent, k);
    return s;
}

jorm_seshape *set_centred(jorm_seshape *s, int32_t d, int32_t h, int32_t w) {
    return centre(set_anchor(set_extent(s, d, h, w), 0, 0, 0), spatial_axes);
}

// k entries aligned to the right, `missing` in front.
struct Spatial {
    int32_t v[spatial_axes];

    Spatial(int32_t k, const int32_t *entries, int32_t missing) {
        k = axes_of(k);
        vec_dup(spatial_axes, v, missing);
        vec_assign(k, v + spatial_axes - k, entries);
    }
};

jorm_seshape *set_extent(jorm_seshape *s, int32_t k, const int32_t *extent) {
    const Spatial e(k, extent, 1);
    return set_extent(s, e.v[0], e.v[1], e.v[2]);
}

jorm_seshape *set_centred(jorm_seshape *s, int32_t k, const int32_t *extent) {
    const Spatial e(k, extent, 1);
    return set_centred(s, e.v[0], e.v[1], e.v[2]);
}

jorm_seshape *set_both(jorm_seshape *s, int32_t k, const int32_t *anchor, const int32_t *extent) {
    const Spatial a(k, anchor, 0);
    return set_anchor(set_extent(s, k, extent), a.v[0], a.v[1], a.v[2]);
}

} // namespace
} // namespace jorm

using namespace jorm;

// ---- Constructors ----

jorm_seshape *__jorm_seshape__$(jorm_seshape *s) { return set_centred(s, 1, 5, 5); }
jorm_seshape *__jorm_seshape__$g1(jorm_seshape *s, int32_t n) { return set_centred(s, 1, 1, n); }
jorm_seshape *__jorm_seshape__$g2(jorm_seshape *s, int32_t h, int32_t w) { return set_centred(s, 1, h, w); }
jorm_seshape *__jorm_seshape__$g3(jorm_seshape *s, int32_t d, int32_t h, int32_t w) { return set_centred(s, d, h, w); }
jorm_seshape *__jorm_seshape__$gv(jorm_seshape *s, int32_t k, const int32_t *extent) {
    return set_centred(s, k, extent);
}
jorm_seshape *__jorm_seshape__$gv$L(jorm_seshape *s, uint32_t word, const int32_t *extent) {
    return set_centred(s, word_axes(word), extent);
}

jorm_seshape *__jorm_seshape__$g11(jorm_seshape *s, int32_t a, int32_t n) {
    return set_anchor(set_extent(s, 1, 1, n), 0, 0, a);
}
jorm_seshape *__jorm_seshape__$g22(jorm_seshape *s, int32_t a1, int32_t a2, int32_t h, int32_t w) {
    return set_anchor(set_extent(s, 1, h, w), 0, a1, a2);
}
jorm_seshape *__jorm_seshape__$g33(jorm_seshape *s, int32_t a0, int32_t a1, int32_t a2, int32_t d, int32_t h,
                                   int32_t w) {
    return set_anchor(set_extent(s, d, h, w), a0, a1, a2);
}
jorm_seshape *__jorm_seshape__$gvv(jorm_seshape *s, int32_t k, const int32_t *anchor, const int32_t *extent) {
    return set_both(s, k, anchor, extent);
}
jorm_seshape *__jorm_seshape__$gvv$L(jorm_seshape *s, uint32_t word, const int32_t *anchor, const int32_t *extent) {
    return set_both(s, word_axes(word), anchor, extent);
}

// ---- Parts of a shape ----

jorm_seshape *jorm_seshape_setvol_$g1(jorm_seshape *s, int32_t n) { return set_extent(s, 1, 1, n); }
jorm_seshape *jorm_seshape_setvol_$g2(jorm_seshape *s, int32_t h, int32_t w) { return set_extent(s, 1, h, w); }
jorm_seshape *jorm_seshape_setvol_$g3(jorm_seshape *s, int32_t d, int32_t h, int32_t w) {
    return set_extent(s, d, h, w);
}
jorm_seshape *jorm_seshape_setvol_$gv(jorm_seshape *s, int32_t k, const int32_t *extent) {
    return set_extent(s, k, extent);
}
jorm_seshape *jorm_seshape_setvol_$gv$L(jorm_seshape *s, uint32_t word, const int32_t *extent) {
    return set_extent(s, word_axes(word), extent);
}

jorm_seshape *jorm_seshape_xsetvol_$g1(jorm_seshape *s, int32_t n) { return set_centred(s, 1, 1, n); }
jorm_seshape *jorm_seshape_xsetvol_$g2(jorm_seshape *s, int32_t h, int32_t w) { return set_centred(s, 1, h, w); }
jorm_seshape *jorm_seshape_xsetvol_$g3(jorm_seshape *s, int32_t d, int32_t h, int32_t w) {
    return set_centred(s, d, h, w);
}
jorm_seshape *jorm_seshape_xsetvol_$gv(jorm_seshape *s, int32_t k, const int32_t *extent) {
    return set_centred(s, k, extent);
}
jorm_seshape *jorm_seshape_xsetvol_$gv$L(jorm_seshape *s, uint32_t word, const int32_t *extent) {
    return set_centred(s, word_axes(word), extent);
}

jorm_seshape *jorm_seshape_rstanchor(jorm_seshape *s) { return centre(s, 3); }
jorm_seshape *jorm_seshape_rstanchor_$g1(jorm_seshape *s) { return centre(s, 1); }
jorm_seshape *jorm_seshape_rstanchor_$g2(jorm_seshape *s) { return centre(s, 2); }
jorm_seshape *jorm_seshape_rstanchor_$g3(jorm_seshape *s) { return centre(s, 3); }
jorm_seshape *jorm_seshape_rstanchor_$gn(jorm_seshape *s, int32_t k) { return centre(s, k); }

jorm_seshape *jorm_seshape_zero(jorm_seshape *s) {
    if (s) *s = jorm_seshape{};
    return s;
}
jorm_seshape *jorm_seshape_azero(jorm_seshape *s) { return set_anchor(s, 0, 0, 0); }
jorm_seshape *jorm_seshape_vzero(jorm_seshape *s) {
    if (s) vec_dup(4, s->extent, 0);
    return s;
}

int32_t jorm_seshape_empty(const jorm_seshape *s) { return s ? window_empty(s->extent) : 0; }
int32_t jorm_seshape_capacity(const jorm_seshape *s) { return s ? window_capacity(s->extent) : 0; }
int64_t jorm_seshape_capacity_$Q(const jorm_seshape *s) { return s ? window_guarded_capacity(s->extent) : 0; }

// ---- Adjustment ----

int32_t jorm_seshape__adjust_$gv$I(jorm_seshape *s, int32_t k, const int32_t *size) {
    if (!s) return 0;
    adjust_window(s->anchor, s->extent, k, size);
    return 1;
}
int32_t jorm_seshape__adjust_$gv(jorm_seshape *dst, const jorm_seshape *src, int32_t k, const int32_t *size) {
    if (dst && src) *dst = *src;
    return jorm_seshape__adjust_$gv$I(dst, k, size);
}
int32_t jorm_seshape_adjust(jorm_seshape *dst, const jorm_seshape *src, const int32_t *size) {
    return jorm_seshape__adjust_$gv(dst, src, spatial_axes, size);
}
int32_t jorm_seshape_adjust_$I(jorm_seshape *s, const int32_t *size) {
    return jorm_seshape__adjust_$gv$I(s, spatial_axes, size);
}
int32_t jorm_seshape_adjust_$g2(jorm_seshape *dst, const jorm_seshape *src, int32_t h, int32_t w) {
    const int32_t size[2] = {h, w};
    return jorm_seshape__adjust_$gv(dst, src, 2, size);
}
int32_t jorm_seshape_adjust_$g2$I(jorm_seshape *s, int32_t h, int32_t w) {
    return jorm_seshape_adjust_$g2(s, nullptr, h, w);
}
