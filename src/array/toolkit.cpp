// Extent and stride accessors, counts, memory sizes, pointer arithmetic, reduction of axes.
#include "array/element.hpp"
#include "array/vec.hpp"
#include "jorm/array.h"

using namespace jorm;

namespace {

// Slot n - back of a vector of n slots; `none` where the vector is too short.
int32_t from_end(int32_t n, const int32_t *v, int32_t back, int32_t none = 0) {
    return v && n >= back ? v[n - back] : none;
}

int32_t row_bytes(int32_t n, const int32_t *e, const int32_t *s) {
    return wrap_mul(from_end(n, e, 2), from_end(n, s, 2));
}

int32_t channels(int32_t n, const int32_t *e) { return stored_channels(uint32_t(from_end(n, e, 1))); }

int32_t capacity(int32_t n, const int32_t *e) {
    if (!e) return 0;
    int32_t product = e[0];
    for (int32_t i = 1; i < n; ++i) product = wrap_mul(product, e[i]);
    return product;
}

int32_t guarded_capacity(int32_t n, const int32_t *e) {
    int32_t product = 1;
    for (int32_t i = 0; i < n; ++i) {
        if (!e || e[i] < 0) return 0;
        product = wrap_mul(product, e[i]);
    }
    return product;
}

// The bytes of a layout, its final strides in `out` when given; 0 when it has none.
int64_t layout(int32_t n, const int32_t *extent, const int32_t *stride, int32_t *out) {
    int64_t running = 0;
    for (int32_t i = n - 1; i >= 0; --i) {
        int64_t step = stride[i];
        if (extent[i] < 1 || (i == n - 1 && step < 1)) return 0;
        if (step < 0) {
            if ((-step & (-step - 1)) != 0) return 0; // no power of two
            step &= running - step - 1;
        } else if (step < running) {
            step = running;
        }
        if (step != int32_t(step)) return 0;
        if (out) out[i] = int32_t(step);
        running = extent[i] * step;
    }
    return running;
}

// What jorm_dims_xreduce works on: one size and many stride vectors.
struct Axes {
    int32_t *size;
    int32_t count;
    int32_t *const *strides;

    template <class F> void each(F &&f) const {
        for (int32_t k = 0; k < count; ++k)
            if (strides[k]) f(strides[k]);
    }
    void move(int32_t from, int32_t to) const {
        size[to] = size[from];
        each([=](int32_t *s) { s[to] = s[from]; });
    }
    void clear(int32_t i) const {
        size[i] = 1;
        each([=](int32_t *s) { s[i] = 0; });
    }
    bool contiguous(int32_t outer, int32_t inner) const {
        if (int64_t(size[outer]) * size[inner] > INT32_MAX) return false;
        bool all = true;
        each([&](const int32_t *s) { all &= s[outer] == int64_t(size[inner]) * s[inner]; });
        return all;
    }
};

} // namespace

int32_t jorm__elstride(int32_t n, const int32_t *s) { return from_end(n, s, 1); }
int32_t jorm_elstride(uint32_t word, const int32_t *s) { return jorm__elstride(word_axes(word), s); }
int32_t jorm__pixstride(int32_t n, const int32_t *s) { return from_end(n, s, 2); }
int32_t jorm_pixstride(uint32_t word, const int32_t *s) { return jorm__pixstride(word_axes(word), s); }
int32_t jorm__rowstride(int32_t n, const int32_t *s) { return from_end(n, s, 3); }
int32_t jorm_rowstride(uint32_t word, const int32_t *s) { return jorm__rowstride(word_axes(word), s); }

int32_t jorm__rowstride2(int32_t n, const int32_t *e, const int32_t *s) {
    return n >= 3 ? from_end(n, s, 3) : row_bytes(n, e, s);
}
int32_t jorm_rowstride2(uint32_t word, const int32_t *e, const int32_t *s) {
    return jorm__rowstride2(word_axes(word), e, s);
}

int32_t jorm_elpadding(void) { return 0; }

int32_t jorm__pixpadding(int32_t n, const int32_t *e, const int32_t *s) {
    return wrap_sub(from_end(n, s, 2), wrap_mul(channels(n, e), from_end(n, s, 1)));
}
int32_t jorm_pixpadding(uint32_t word, const int32_t *e, const int32_t *s) {
    return jorm__pixpadding(word_axes(word), e, s);
}

int32_t jorm__rowpadding(int32_t n, const int32_t *e, const int32_t *s) {
    return wrap_sub(from_end(n, s, 3), row_bytes(n, e, s));
}
int32_t jorm_rowpadding(uint32_t word, const int32_t *e, const int32_t *s) {
    return jorm__rowpadding(word_axes(word), e, s);
}

int32_t jorm_volume__height(int32_t n, const int32_t *e) { return from_end(n, e, 3, 1); }
int32_t jorm_volume_height(uint32_t word, const int32_t *e) { return jorm_volume__height(word_axes(word), e); }
int32_t jorm_volume__nchannels(int32_t n, const int32_t *e) { return channels(n, e); }
int32_t jorm_volume_nchannels(uint32_t word, const int32_t *e) { return channels(word_axes(word), e); }

int32_t jorm_volume__capacity(int32_t n, const int32_t *e) { return capacity(n, e); }
int32_t jorm_volume_capacity(uint32_t word, const int32_t *e) { return capacity(word_axes(word), e); }
int32_t jorm_volume__capacity_$Q(int32_t n, const int32_t *e) { return guarded_capacity(n, e); }
int32_t jorm_volume_capacity_$Q(uint32_t word, const int32_t *e) { return guarded_capacity(word_axes(word), e); }

int32_t jorm_volume__pixcap(int32_t n, const int32_t *e) { return capacity(n > 0 ? n - 1 : 0, e); }
int32_t jorm_volume_pixcap(uint32_t word, const int32_t *e) { return jorm_volume__pixcap(word_axes(word), e); }
int32_t jorm_volume__pixcap_$Q(int32_t n, const int32_t *e) { return guarded_capacity(n > 0 ? n - 1 : 0, e); }
int32_t jorm_volume_pixcap_$Q(uint32_t word, const int32_t *e) { return jorm_volume__pixcap_$Q(word_axes(word), e); }

int32_t jorm_volume__empty(int32_t n, const int32_t *e) { return n > 0 && !vec_positive(n, e); }
int32_t jorm_volume_empty(uint32_t word, const int32_t *e) { return jorm_volume__empty(word_axes(word), e); }

static int32_t *volume(int32_t *v, int32_t d, int32_t h, int32_t w, int32_t c) {
    const int32_t slots[4] = {d, h, w, c};
    return vec_assign(4, v, slots);
}

int32_t *_jorm_Nvolume__$(int32_t *v) { return volume(v, 1, 1, 1, 1); }
int32_t *_jorm_Nvolume__$1(int32_t *v, int32_t c) { return volume(v, 1, 1, 1, c); }
int32_t *_jorm_Nvolume__$2(int32_t *v, int32_t w, int32_t c) { return volume(v, 1, 1, w, c); }
int32_t *_jorm_Nvolume__$3(int32_t *v, int32_t h, int32_t w, int32_t c) { return volume(v, 1, h, w, c); }
int32_t *_jorm_Nvolume__$g1(int32_t *v, int32_t w) { return volume(v, 1, 1, w, 1); }
int32_t *_jorm_Nvolume__$g2(int32_t *v, int32_t h, int32_t w) { return volume(v, 1, h, w, 1); }
int32_t *_jorm_Nvolume__$g3(int32_t *v, int32_t d, int32_t h, int32_t w) { return volume(v, d, h, w, 1); }

void *jorm_advance_ptr(const void *p, int32_t off) { return advance(p, off); }

void *jorm_base_advance(const void *p, int64_t off, uint32_t n, const int32_t *index, const int32_t *s) {
    return advance(advance(p, off), jorm_vec_mkloff(n, index, s));
}
void *jorm_base_advance_$L(const void *p, int64_t off, uint32_t word, const int32_t *index, const int32_t *s) {
    return advance(advance(p, off), jorm_vec_mkloff_$L(word, index, s));
}
void *jorm_base_advance_$LS(const void *p, int64_t off, uint32_t word, const int32_t *index, const int32_t *s) {
    return jorm_base_advance_$L(p, off, word, index, s);
}
void *jorm_base_at_$2d$pt(const void *p, int64_t off, const int32_t *pt, const int32_t *s) {
    return advance(advance(p, off), vec_mkloff(2, pt, s));
}

size_t jorm_vmemsize(int32_t n, const int32_t *extent, int32_t *stride, int32_t align) {
    if (n < 1 || !extent || !stride) return 0;
    const int64_t bytes = layout(n, extent, stride, nullptr);
    if (bytes == 0) return 0;
    layout(n, extent, stride, stride);
    return size_t(bytes) + (align >= 2 ? 64 : align == 1 ? 32 : 0);
}

size_t jorm_vmemsizeL(uint32_t word, const int32_t *extent, int32_t *stride, int32_t align) {
    return jorm_vmemsize(word_axes(word), extent, stride, align);
}

int64_t jorm_dims_xreduce(int32_t slots, int32_t *size, int32_t count, int32_t *const *strides, int32_t hint) {
    if (slots < 1 || !size || count < 0 || (count > 0 && !strides)) return JORM_EINVAL;
    for (int32_t i = 0; i < slots; ++i)
        if (size[i] < 1) return JORM_EINVAL;

    const Axes axes{size, count, strides};
    const int32_t held = hint < 0 || hint > slots ? slots : hint > 1 ? hint : 1;
    const int32_t first_held = slots - held;
    int32_t inner = slots - 1; // the outermost axis kept so far
    for (int32_t i = slots - 2; i >= 0; --i) {
        const bool merges_inward = inner < first_held;
        if (merges_inward && size[inner] == 1)
            axes.move(i, inner);
        else if (merges_inward && size[i] != 1 && axes.contiguous(i, inner))
            size[inner] *= size[i];
        else if (size[i] != 1 || i >= first_held || inner == slots - 1)
            axes.move(i, --inner);
    }
    for (int32_t i = 0; i < inner; ++i) axes.clear(i);
    return slots - inner;
}
