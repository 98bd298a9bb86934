// Margins around a region, and the names of the border modes.
#include "filter/shape.hpp"

#include <cmath>
#include <cstddef>

static_assert(sizeof(jorm_brshape) == 32 && offsetof(jorm_brshape, high) == 16);
static_assert(sizeof(jorm_border) == 40 && offsetof(jorm_border, values) == 8);

using namespace jorm;

namespace {

int32_t entry(const int32_t *v, int32_t i) { return v ? v[i] : 0; }

jorm_brshape *set_margins(jorm_brshape *b, int32_t k, const int32_t *before, const int32_t *after) {
    if (!b) return b;
    *b = jorm_brshape{};
    const int32_t n = axes_of(k), first = spatial_axes - n;
    vec_neg(n, b->low + first, before);
    vec_assign(n, b->high + first, after);
    return b;
}

jorm_brshape *reach_of(jorm_brshape *b, const jorm_seshape *s) {
    if (!b || !s) return jorm_brshape_zero(b);
    for (int32_t i = 0; i < spatial_axes; ++i) {
        b->low[i] = wrap_sub(0, s->anchor[i]);
        b->high[i] = wrap_sub(wrap_sub(s->extent[i], s->anchor[i]), 1);
    }
    b->low[3] = b->high[3] = 0;
    return b;
}

// The margins of one axis within a room of r.
bool fit(int32_t &low, int32_t &high, int64_t r) {
    const int64_t span = int64_t(high) - low;
    if (r < 1) {
        low = saturate_i32(-r);
        high = 0;
    } else if (r < span) {
        low = saturate_i32(int64_t(std::rint(float(low * r) / float(span))));
        high = saturate_i32(r + low);
    }
    return low <= 0 && high >= 0;
}

enum class Sense { widen, narrow };

int32_t *resize(int32_t *dst, const int32_t *src, const jorm_brshape *b, Sense sense) {
    if (!dst) return dst;
    vec_assign(4, dst, src);
    for (int32_t i = 0; b && i < spatial_axes; ++i) {
        const int32_t by = wrap_sub(b->high[i], b->low[i]);
        dst[i] = sense == Sense::widen ? wrap_add(dst[i], by) : wrap_sub(dst[i], by);
    }
    return dst;
}

int32_t *resize(int32_t *dst, const int32_t *src, const jorm_seshape *s, Sense sense) {
    jorm_brshape reach;
    return resize(dst, src, s ? reach_of(&reach, s) : nullptr, sense);
}

} // namespace

// ---- Constructors ----

jorm_brshape *__jorm_brshape__$(jorm_brshape *b) { return jorm_brshape_zero(b); }
jorm_brshape *__jorm_brshape__$g1(jorm_brshape *b, int32_t before, int32_t after) {
    return set_margins(b, 1, &before, &after);
}
jorm_brshape *__jorm_brshape__$g2(jorm_brshape *b, int32_t b1, int32_t b2, int32_t a1, int32_t a2) {
    const int32_t before[2] = {b1, b2}, after[2] = {a1, a2};
    return set_margins(b, 2, before, after);
}
jorm_brshape *__jorm_brshape__$g3(jorm_brshape *b, int32_t b0, int32_t b1, int32_t b2, int32_t a0, int32_t a1,
                                  int32_t a2) {
    const int32_t before[3] = {b0, b1, b2}, after[3] = {a0, a1, a2};
    return set_margins(b, 3, before, after);
}
jorm_brshape *__jorm_brshape__$gv(jorm_brshape *b, int32_t k, const int32_t *before, const int32_t *after) {
    return set_margins(b, k, before, after);
}
jorm_brshape *__jorm_brshape__$gv$L(jorm_brshape *b, uint32_t word, const int32_t *before, const int32_t *after) {
    return set_margins(b, word_axes(word), before, after);
}
jorm_brshape *__jorm_brshape__$se(jorm_brshape *b, const jorm_seshape *s) { return reach_of(b, s); }
jorm_brparm *__jorm_brparm__$se(jorm_brparm *b, const jorm_seshape *s) { return reach_of(b, s); }
jorm_brshape *__jorm_brshape__$ois(jorm_brshape *b, const jorm_site *outer, const jorm_site *inner) {
    const jorm_site none{}, &o = outer ? *outer : none, &i = inner ? *inner : none;
    return jorm_brshape__compute_$gv(b, spatial_axes, o.origin, o.size, i.origin, i.size);
}

jorm_brshape *jorm_brshape__compute_$gv(jorm_brshape *b, int32_t k, const int32_t *outer_origin,
                                        const int32_t *outer_size, const int32_t *inner_origin,
                                        const int32_t *inner_size) {
    if (!b) return b;
    const int32_t n = axes_of(k);
    b->low[3] = b->high[3] = 0;
    for (int32_t i = 0; i < n; ++i) {
        const int32_t axis = spatial_axes - n + i;
        b->low[axis] = wrap_sub(entry(outer_origin, i), entry(inner_origin, i));
        b->high[axis] = wrap_add(b->low[axis], wrap_sub(entry(outer_size, i), entry(inner_size, i)));
    }
    return b;
}
jorm_brparm *jorm_brparm__compute_$gv(jorm_brparm *b, int32_t k, const int32_t *outer_origin, const int32_t *outer_size,
                                      const int32_t *inner_origin, const int32_t *inner_size) {
    return jorm_brshape__compute_$gv(b, k, outer_origin, outer_size, inner_origin, inner_size);
}

jorm_brshape *jorm_brshape_zero(jorm_brshape *b) {
    if (b) *b = jorm_brshape{};
    return b;
}
jorm_brparm *jorm_brparm_zero(jorm_brparm *b) { return jorm_brshape_zero(b); }

int32_t jorm_brshape_empty(const jorm_brshape *b) {
    return b && vec_equal(4, b->low, nullptr) && vec_equal(4, b->high, nullptr);
}
int32_t jorm_brparm_empty(const jorm_brparm *b) { return jorm_brshape_empty(b); }

// ---- Fitting ----

int32_t jorm_brshape__adjust_$gv$I(jorm_brshape *b, int32_t k, const int32_t *, const int32_t *size_a, const int32_t *,
                                   const int32_t *size_b) {
    if (!b) return 0;
    const int32_t n = axes_of(k);
    b->low[3] = b->high[3] = 0;
    bool valid = true;
    for (int32_t i = 0; i < n; ++i) {
        const int32_t axis = spatial_axes - n + i;
        const int64_t room = int64_t(entry(size_a, i)) - entry(size_b, i);
        valid = fit(b->low[axis], b->high[axis], room) && valid;
    }
    return valid;
}
int32_t jorm_brshape__adjust_$gv(jorm_brshape *dst, const jorm_brshape *src, int32_t k, const int32_t *origin_a,
                                 const int32_t *size_a, const int32_t *origin_b, const int32_t *size_b) {
    if (dst && src) *dst = *src;
    return jorm_brshape__adjust_$gv$I(dst, k, origin_a, size_a, origin_b, size_b);
}
int32_t jorm_brshape_adjust(jorm_brshape *dst, const jorm_brshape *src, const jorm_site *a, const jorm_site *b) {
    const jorm_site none{}, &sa = a ? *a : none, &sb = b ? *b : none;
    return jorm_brshape__adjust_$gv(dst, src, spatial_axes, sa.origin, sa.size, sb.origin, sb.size);
}

// ---- Sizes ----

int32_t *jorm_Nvolume_widen_$br(int32_t *dst, const int32_t *src, const jorm_brshape *b) {
    return resize(dst, src, b, Sense::widen);
}
int32_t *jorm_Nvolume_widen_$I$br(int32_t *v, const jorm_brshape *b) { return resize(v, v, b, Sense::widen); }
int32_t *jorm_Nvolume_narrow_$br(int32_t *dst, const int32_t *src, const jorm_brshape *b) {
    return resize(dst, src, b, Sense::narrow);
}
int32_t *jorm_Nvolume_narrow_$I$br(int32_t *v, const jorm_brshape *b) { return resize(v, v, b, Sense::narrow); }
int32_t *jorm_Nvolume_widen_$se(int32_t *dst, const int32_t *src, const jorm_seshape *s) {
    return resize(dst, src, s, Sense::widen);
}
int32_t *jorm_Nvolume_widen_$I$se(int32_t *v, const jorm_seshape *s) { return resize(v, v, s, Sense::widen); }
int32_t *jorm_Nvolume_narrow_$se(int32_t *dst, const int32_t *src, const jorm_seshape *s) {
    return resize(dst, src, s, Sense::narrow);
}
int32_t *jorm_Nvolume_narrow_$I$se(int32_t *v, const jorm_seshape *s) { return resize(v, v, s, Sense::narrow); }

// ---- Names ----

const char *jorm_border_str(uint32_t mode) {
    switch (mode & 15) {
    case JORM_BORDER_NUL:
        return "nul-border";
    case JORM_BORDER_CONST:
        return "const-border";
    case JORM_BORDER_REPLICATE:
        return "replicate-border";
    case JORM_BORDER_WRAP:
        return "wrap-border";
    case JORM_BORDER_REFLECT:
        return "reflect-border";
    case JORM_BORDER_REFLECT101:
        return "reflect101-border";
    default:
        return "unknown-border";
    }
}
