// Windows with a mask.
#include "array/element.hpp"
#include "filter/shape.hpp"

#include <cstddef>
#include <cstring>

static_assert(sizeof(jorm_strel) == 96 && offsetof(jorm_strel, mask) == 16);
static_assert(offsetof(jorm_array, extent) == 0); // so that a strel begins like a seshape

using namespace jorm;

namespace {

int32_t *extent_of(jorm_strel *s) { return reinterpret_cast<int32_t *>(s->mask.extent); }
const int32_t *extent_of(const jorm_strel *s) { return reinterpret_cast<const int32_t *>(s->mask.extent); }

const void *data_of(const jorm_array &a) { return advance(a.base, a.loff); }

template <class T> bool row_is_255(const void *row, int64_t stride, int64_t n) {
    for (int64_t i = 0; i < n; ++i) {
        T value;
        std::memcpy(&value, advance(row, i * stride), sizeof value);
        if (value != T(255)) return false;
    }
    return true;
}
template <> bool row_is_255<int8_t>(const void *, int64_t, int64_t n) { return n < 1; } // -1 is not 255

using RowTest = bool (*)(const void *row, int64_t stride, int64_t n);

RowTest row_test(uint32_t type) {
    switch (type) {
    case JORM_U8:
        return row_is_255<uint8_t>;
    case JORM_U16:
        return row_is_255<uint16_t>;
    case JORM_U32:
        return row_is_255<uint32_t>;
    case JORM_U64:
        return row_is_255<uint64_t>;
    case JORM_S8:
        return row_is_255<int8_t>;
    case JORM_S16:
        return row_is_255<int16_t>;
    case JORM_S32:
        return row_is_255<int32_t>;
    case JORM_S64:
        return row_is_255<int64_t>;
    case JORM_F32:
        return row_is_255<float>;
    case JORM_F64:
        return row_is_255<double>;
    default:
        return nullptr;
    }
}

} // namespace

int32_t jorm_strel__adjust_$gv$I(jorm_strel *s, int32_t k, const int32_t *size) {
    if (!s) return 0;
    if (data_of(s->mask)) {
        s->anchor[3] = 0;
        place_anchor(s->anchor, extent_of(s), k);
    } else {
        adjust_window(s->anchor, extent_of(s), k, size);
    }
    return 1;
}
int32_t jorm_strel__adjust_$gv(jorm_strel *dst, const jorm_strel *src, int32_t k, const int32_t *size) {
    if (dst && src) *dst = *src;
    return jorm_strel__adjust_$gv$I(dst, k, size);
}
int32_t jorm_strel_adjust(jorm_strel *dst, const jorm_strel *src, const int32_t *size) {
    return jorm_strel__adjust_$gv(dst, src, spatial_axes, size);
}
int32_t jorm_strel_adjust_$I(jorm_strel *s, const int32_t *size) {
    return jorm_strel__adjust_$gv$I(s, spatial_axes, size);
}
int32_t jorm_strel_adjust_$g2(jorm_strel *dst, const jorm_strel *src, int32_t h, int32_t w) {
    const int32_t size[2] = {h, w};
    return jorm_strel__adjust_$gv(dst, src, 2, size);
}
int32_t jorm_strel_adjust_$g2$I(jorm_strel *s, int32_t h, int32_t w) { return jorm_strel_adjust_$g2(s, nullptr, h, w); }

jorm_strel *jorm_strel_rstanchor(jorm_strel *s) {
    if (s) centre_anchor(s->anchor, extent_of(s), spatial_axes);
    return s;
}
jorm_strel *jorm_strel_azero(jorm_strel *s) {
    if (s) vec_dup(4, s->anchor, 0);
    return s;
}

int32_t jorm_strel_empty(const jorm_strel *s) { return s ? window_empty(extent_of(s)) : 0; }
int32_t jorm_strel_capacity(const jorm_strel *s) { return s ? window_capacity(extent_of(s)) : 0; }
int64_t jorm_strel_capacity_$Q(const jorm_strel *s) { return s ? window_guarded_capacity(extent_of(s)) : 0; }

int32_t jorm_sea_issolid_v255(const jorm_array *mask) {
    if (!mask || !data_of(*mask)) return 1;
    const RowTest solid = row_test(mask->eltype);
    if (!solid) return 0;
    const int64_t planes = mask->ndims > 3 ? mask->extent[0] : 1;
    const int32_t channels = stored_channels(mask->extent[3]);
    for (int64_t z = 0; z < planes; ++z)
        for (int64_t y = 0; y < mask->extent[1]; ++y)
            for (int32_t c = 0; c < channels; ++c) {
                const int64_t offset = z * mask->stride[0] + y * mask->stride[1] + int64_t(c) * mask->stride[3];
                if (!solid(advance(data_of(*mask), offset), mask->stride[2], mask->extent[2])) return 0;
            }
    return 1;
}
int32_t jorm_strel_issolid_$v255(const jorm_strel *s) { return jorm_sea_issolid_v255(s ? &s->mask : nullptr); }
