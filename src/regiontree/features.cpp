// Region features: moments and pixel lists, and where they lie in a region block.
#include "jorm/tree.h"
#include "jorm/xe.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <cstring>

static_assert(sizeof(jorm_wtsfeature) == 96 && offsetof(jorm_wtsfeature, parameter) == 16);
static_assert(offsetof(jorm_wtsfeature, init) == 24 && offsetof(jorm_wtsfeature, update) == 48);
static_assert(offsetof(jorm_wtsfeature, ongather) == 88);
static_assert(sizeof(jorm_wtslsc) == 48 && offsetof(jorm_wtslsc, block_size) == 12);
static_assert(sizeof(jorm_moments) == 48 && offsetof(jorm_moments, sum_y) == 8);
static_assert(sizeof(jorm_pixlist) == 24 && sizeof(jorm_wtsrgn) == 24);

namespace jorm {
namespace {

constexpr int32_t head_bytes = sizeof(jorm_wtsrgn);
constexpr uint64_t gathered_bit = uint64_t{1} << 63;

jorm_moments &moments(void *data) { return *static_cast<jorm_moments *>(data); }
const jorm_moments &moments(const void *data) { return *static_cast<const jorm_moments *>(data); }
jorm_pixlist &pixels(void *data) { return *static_cast<jorm_pixlist *>(data); }
const jorm_pixlist &pixels(const void *data) { return *static_cast<const jorm_pixlist *>(data); }

struct Place {
    int32_t row, column;
};

// The two forms in which pixels come.
struct Record {
    int32_t first;
    Place place;
    int32_t rest[5];
};
static_assert(sizeof(Record) == 32);
const Place &place(const Place &p) { return p; }
const Place &place(const Record &r) { return r.place; }

void add_moments(jorm_moments &m, Place p) {
    const double y = p.row, x = p.column;
    m.sum_y += y;
    m.sum_x += x;
    m.sum_yy += y * y;
    m.sum_xy += x * y;
    m.sum_xx += x * x;
}

template <class Form> void add_moments(void *data, const void *from, int32_t n) {
    const Form *const p = static_cast<const Form *>(from);
    jorm_moments sums = moments(data);
    for (int32_t i = 0; i < n; ++i) add_moments(sums, place(p[i]));
    moments(data) = sums;
}

void add_count(jorm_moments &m, int32_t n) { m.count = m.count > 0 ? m.count + n : m.count - n; }

uint64_t capacity(const jorm_pixlist &list) { return list.capacity & ~gathered_bit; }

bool grow(jorm_pixlist &list, uint64_t entries) {
    if (entries <= capacity(list)) return true;
    if (entries > SIZE_MAX / 2 / sizeof(uint64_t)) return false;
    void *const moved = _UlMrealloc(list.entries, entries * sizeof(uint64_t));
    if (!moved) return false;
    list.entries = static_cast<uint64_t *>(moved);
    list.capacity = entries | (list.capacity & gathered_bit);
    return true;
}

bool make_room(jorm_pixlist &list, uint64_t n) {
    uint64_t wanted = capacity(list);
    while (wanted - list.count < n) wanted = wanted ? 2 * wanted : 2;
    return grow(list, wanted);
}

uint64_t entry(Place p) { return uint32_t(p.row) | uint64_t(uint32_t(p.column)) << 32; }

template <class Form> void append(void *data, const void *from, int32_t n) {
    jorm_pixlist &list = pixels(data);
    if (n < 1 || !make_room(list, uint64_t(n))) return;
    const Form *const p = static_cast<const Form *>(from);
    for (int32_t i = 0; i < n; ++i) list.entries[list.count + uint64_t(i)] = entry(place(p[i]));
    list.count += uint64_t(n);
}

} // namespace
} // namespace jorm

using namespace jorm;

// ---- Moments ----

void JormWTSMF_update2D(void *data, int32_t row, int32_t column) { add_moments(moments(data), {row, column}); }

void JormWTSMF_update_n(void *data, const void *from, int32_t n) { add_moments<Record>(data, from, n); }

void JormWTSMF_update2D_n(void *data, const void *from, int32_t n) { add_moments<Place>(data, from, n); }

void __JormWTSMF__update__(void *data, const void *from, int32_t n) {
    add_count(moments(data), n);
    add_moments<Record>(data, from, n);
}

void __JormWTSMF__update2D__(void *data, const void *from, int32_t n) {
    add_count(moments(data), n);
    add_moments<Place>(data, from, n);
}

void __JormWTSMF__merge__(void *data, const void *other) {
    moments(data).count = std::abs(moments(data).count) + std::abs(moments(other).count);
    __JormWTSMF__lazymerge__(data, other);
}

void __JormWTSMF__lazymerge__(void *data, const void *other) {
    jorm_moments &to = moments(data);
    const jorm_moments &from = moments(other);
    to.sum_y += from.sum_y;
    to.sum_x += from.sum_x;
    to.sum_yy += from.sum_yy;
    to.sum_xy += from.sum_xy;
    to.sum_xx += from.sum_xx;
}

int32_t __JormWTSMF__isgathered__(const void *data) { return moments(data).count > 0; }

void __JormWTSMF__ongather__(void *data, const void *region) {
    int32_t &count = moments(data).count;
    count = region ? static_cast<const jorm_wtsrgn *>(region)->area : std::abs(count);
}

jorm_wtsfeature *JormWTSMFinitFeatureDs(jorm_wtsfeature *feature, void *parameter) {
    if (!feature) return nullptr;
    *feature = {};
    feature->magic = JORM_WTS_MOMENTS;
    feature->size = sizeof(jorm_moments);
    feature->parameter = parameter;
    feature->update = __JormWTSMF__update__;
    feature->update2D = __JormWTSMF__update2D__;
    feature->merge = __JormWTSMF__merge__;
    feature->lazymerge = __JormWTSMF__lazymerge__;
    feature->isgathered = __JormWTSMF__isgathered__;
    feature->ongather = __JormWTSMF__ongather__;
    return feature;
}

double jorm_mf_mx(const void *data) { return moments(data).sum_x / moments(data).count; }

double jorm_mf_my(const void *data) { return moments(data).sum_y / moments(data).count; }

double jorm_mf_Mxx(const void *data) {
    const jorm_moments &m = moments(data);
    return (m.sum_xx - m.sum_x * m.sum_x / m.count) / m.count;
}

double jorm_mf_Myy(const void *data) {
    const jorm_moments &m = moments(data);
    return (m.sum_yy - m.sum_y * m.sum_y / m.count) / m.count;
}

double jorm_mf_Mxy(const void *data) {
    const jorm_moments &m = moments(data);
    return (m.sum_xy - m.sum_x * m.sum_y / m.count) / m.count;
}

double *jorm_mf_M2(double *out, const void *data) {
    const double yy = jorm_mf_Myy(data), xy = jorm_mf_Mxy(data), xx = jorm_mf_Mxx(data);
    out[0] = yy;
    out[1] = xy;
    out[2] = xx;
    return out;
}

double jorm_mf_theta(const void *data) {
    return 0.5 * std::atan2(2 * jorm_mf_Mxy(data), jorm_mf_Mxx(data) - jorm_mf_Myy(data));
}

// ---- Pixel lists ----

void __JormWTSPF__init__(void *data, void *) { pixels(data) = {}; }

void __JormWTSPF__destroy__(void *data, void *) {
    _UlMfree(pixels(data).entries);
    pixels(data) = {};
}

void JormWTSPF_update2D(void *data, int32_t row, int32_t column) {
    const Place p = {row, column};
    append<Place>(data, &p, 1);
}

void JormWTSPF_update_n(void *data, const void *from, int32_t n) { append<Record>(data, from, n); }

void JormWTSPF_update2D_n(void *data, const void *from, int32_t n) { append<Place>(data, from, n); }

void __JormWTSPF__merge__(void *data, const void *other) {
    __JormWTSPF__lazymerge__(data, other);
    pixels(data).capacity |= gathered_bit;
}

void __JormWTSPF__lazymerge__(void *data, const void *other) {
    jorm_pixlist &to = pixels(data);
    const uint64_t n = pixels(other).count;
    if (n == 0 || !grow(to, to.count + n)) return;
    std::memcpy(to.entries + to.count, pixels(other).entries, n * sizeof(uint64_t));
    to.count += n;
}

int32_t __JormWTSPF__isgathered__(const void *data) { return (pixels(data).capacity & gathered_bit) != 0; }

void __JormWTSPF__ongather__(void *data, const void *) { pixels(data).capacity |= gathered_bit; }

jorm_wtsfeature *JormWTSPFinitFeatureDs(jorm_wtsfeature *feature, void *parameter) {
    if (!feature) return nullptr;
    *feature = {};
    feature->magic = JORM_WTS_PIXELS;
    feature->size = sizeof(jorm_pixlist);
    feature->parameter = parameter;
    feature->init = __JormWTSPF__init__;
    feature->destroy = __JormWTSPF__destroy__;
    feature->update = JormWTSPF_update_n;
    feature->update2D = JormWTSPF_update2D_n;
    feature->merge = __JormWTSPF__merge__;
    feature->lazymerge = __JormWTSPF__lazymerge__;
    feature->isgathered = __JormWTSPF__isgathered__;
    feature->ongather = __JormWTSPF__ongather__;
    return feature;
}

// ---- Layouts ----

int32_t JormWTSFindexByMagic(const void *table, int32_t count, uint32_t magic) {
    const auto *const features = static_cast<const jorm_wtsfeature *>(table);
    for (int32_t i = 0; features && i < count; ++i) {
        if (features[i].magic == magic) return i;
    }
    return -1;
}

jorm_wtslsc *JormWTSLSCfixup(jorm_wtslsc *layout) {
    if (!layout || layout->block_size > head_bytes) return layout;
    uint32_t offset = head_bytes;
    for (int32_t i = 0; i < layout->count; ++i) {
        layout->features[i].offset = offset;
        offset += (layout->features[i].size + 7) & ~7u;
    }
    layout->block_size = int32_t(offset);
    return layout;
}

jorm_wtslsc *JormWTSLSCsetimvol2D(jorm_wtslsc *layout, int32_t height, int32_t width, int32_t row_stride) {
    if (!layout) return nullptr;
    const int32_t plane = int32_t(uint32_t(height) * uint32_t(row_stride));
    const int32_t volume[8] = {1, height, width, 1, plane, row_stride, 1, 1};
    std::memcpy(layout->volume, volume, sizeof volume);
    return layout;
}

jorm_wtslsc *JormWTSLSCsetimvol(jorm_wtslsc *layout, int32_t ndim, const int32_t *dims, const int32_t *strides) {
    const bool rows = ndim >= 3;
    return JormWTSLSCsetimvol2D(layout, rows ? dims[ndim - 3] : 1, ndim >= 2 ? dims[ndim - 2] : 1,
                                rows ? strides[ndim - 3] : 0);
}

jorm_wtslsc *JormWTSLSCinit(jorm_wtslsc *layout, jorm_wtsfeature *features, int32_t count, int32_t ndim,
                            const int32_t *dims, const int32_t *strides) {
    if (!layout) return nullptr;
    layout->features = features;
    layout->count = count;
    layout->block_size = 0;
    return JormWTSLSCfixup(JormWTSLSCsetimvol(layout, ndim, dims, strides));
}

jorm_wtslsc *JormWTSLSCinit2D(jorm_wtslsc *layout, jorm_wtsfeature *features, int32_t count, int32_t height,
                              int32_t width, int32_t row_stride) {
    const int32_t dims[3] = {height, width, 1}, strides[3] = {row_stride, 1, 1};
    return JormWTSLSCinit(layout, features, count < 0 ? 0 : count, 3, dims, strides);
}
