// Memory kernels: fills, copies, searches, hashes and tables on raw memory.
#include "convert/copy_block.hpp"
#include "jorm/copy.h"
#include "jorm/shapes.h"

#include <cstring>

using namespace jorm;

namespace {

const MemoryRows &memory_rows_now() { return memory_rows_at(level(0)); }

} // namespace

// ------------------------------------------------------------ fill and copy

void jorm::fill_rows(const MemoryRows &kernels, void *dst, int64_t row_stride, int64_t rows, int64_t row_bytes,
                     int32_t period, const void *pattern) {
    // First a multiple of every period, word by word.
    constexpr int whole = 48;
    char block[fill_block_bytes];
    for (int i = 0, k = 0; i < whole; i += 4, k = k + 4 < period ? k + 4 : 0)
        std::memcpy(block + i, static_cast<const char *>(pattern) + k, 4);
    for (int i = whole; i + whole <= fill_block_bytes; i += whole) std::memcpy(block + i, block, whole);
    std::memcpy(block + fill_block_bytes / whole * whole, block, fill_block_bytes % whole);
    for (int64_t y = 0; y < rows; ++y) kernels.fill(static_cast<char *>(dst) + y * row_stride, row_bytes, block);
}

JORM_API void C_jorm_bfill2d(void *dst, int64_t row_stride, int32_t rows, int64_t row_bytes, int32_t channels,
                             const void *pattern) {
    if (!dst || !pattern || rows < 1 || row_bytes < 1 || channels < 1 || channels > 4) return;
    fill_rows(memory_rows_now(), dst, row_stride, rows, row_bytes, 4 * channels, pattern);
}

JORM_API void C_jorm_bfill(void *dst, int64_t bytes, int32_t channels, const void *pattern) {
    C_jorm_bfill2d(dst, 0, 1, bytes, channels, pattern);
}

JORM_API void C_jorm_bcopy2d(void *dst, int64_t dst_stride, const void *src, int64_t src_stride, int32_t rows,
                             int64_t row_bytes) {
    if (!dst || !src || rows < 1 || row_bytes < 1) return;
    char *const d = static_cast<char *>(dst);
    const char *const s = static_cast<const char *>(src);
    const int64_t status = copy_block(nullptr, 0, {2, {{rows, dst_stride, src_stride}, {row_bytes, 1, 1}}, d, s, 1});
    // An overlap that no order serves: rows one after the other.
    for (int64_t y = 0; status != JORM_OK && y < rows; ++y)
        std::memmove(d + y * dst_stride, s + y * src_stride, size_t(row_bytes));
}

// ------------------------------------------------------------------- search

namespace {

constexpr uint32_t not_found = 0xFFFFFFFF;

const FindRow *find_rows(uint32_t type) {
    const MemoryRows &rows = memory_rows_now();
    switch (type) {
    case JORM_U8:
    case JORM_S8:
        return rows.find8;
    case JORM_U16:
    case JORM_S16:
        return rows.find16;
    case JORM_U32:
    case JORM_S32:
        return rows.find32;
    case JORM_F32:
        return rows.find_f32;
    default:
        return nullptr;
    }
}

uint32_t find(Sense sense, uint32_t type, const void *base, int64_t row_stride, int32_t rows, int32_t row_len,
              double value) {
    char element[16];
    const FindRow *const kinds = find_rows(type);
    if (!base || rows < 1 || row_len < 1 || !kinds || jorm_mkifillvalv16(type, element, &value, 1) != JORM_OK)
        return not_found;
    const char *row = static_cast<const char *>(base);
    for (int64_t y = 0; y < rows; ++y, row += row_stride)
        if (const int64_t x = kinds[sense](row, row_len, element); x < row_len) return uint32_t(x + y * row_len);
    return not_found;
}

} // namespace

#define SEARCH(name, sense)                                                                                            \
    JORM_API uint32_t name(uint32_t type, const void *base, int64_t row_stride, int32_t rows, int32_t row_len,         \
                           double value) {                                                                             \
        return find(sense, type, base, row_stride, rows, row_len, value);                                              \
    }
SEARCH(jorm_memelem2d, first_equal)
SEARCH(jorm_memelem2dS, first_equal)
SEARCH(jorm_memcelem2d, first_different)
SEARCH(jorm_memcelem2dS, first_different)

// ------------------------------------------------------------------- hashes

namespace {

struct Hash {
    uint32_t h = 0;
    void add(char c) {
        h = (h << 4) + uint32_t(int32_t(static_cast<signed char>(c)));
        const uint32_t g = h & 0xF0000000;
        h ^= g | g >> 24;
    }
};

} // namespace

JORM_API uint32_t jorm_bhash(const void *bytes, size_t count) {
    Hash hash;
    const char *const p = static_cast<const char *>(bytes);
    for (size_t i = 0; p && i < count; ++i) hash.add(p[i]);
    return hash.h;
}

JORM_API uint32_t jorm_bcsnhash(const char *s, size_t max) {
    Hash hash;
    for (size_t i = 0; s && i < max && s[i]; ++i) hash.add(s[i]);
    return hash.h;
}

JORM_API uint32_t jorm_bcshash(const char *s) { return jorm_bcsnhash(s, SIZE_MAX); }

// ------------------------------------------------------------------- tables

namespace {

bool holds(uint32_t op, int v, int constant) {
    switch (op & 15) {
    case 3:
        return v == constant;
    case 4:
        return v < constant;
    case 5:
        return v <= constant;
    case 6:
        return v > constant;
    case 7:
        return v >= constant;
    default:
        return false;
    }
}

struct Relation {
    uint32_t op;
    const double *constants;
};

int64_t make_table(void *table, const Relation *relation, int count, const double *true_values,
                   const double *false_values, int32_t channels) {
    static constexpr double all[4] = {255, 255, 255, 255};
    uint8_t constant[2][16], yes[16], no[16];
    if (!table) return JORM_EINVAL;
    for (int i = 0; i < count; ++i) {
        if (!relation[i].constants) return JORM_EINVAL;
        const int64_t status = jorm_mkifillvalv16(JORM_U8, constant[i], relation[i].constants, channels);
        if (status != JORM_OK) return status;
    }
    jorm_mkifillvalv16(JORM_U8, yes, true_values ? true_values : all, channels);
    jorm_mkifillvalv16(JORM_U8, no, false_values, channels);
    for (int32_t c = 0; c < channels; ++c)
        for (int v = 0; v < 256; ++v) {
            bool every = true;
            for (int i = 0; i < count; ++i) every = every && holds(relation[i].op, v, constant[i][c]);
            static_cast<uint8_t *>(table)[256 * c + v] = every ? yes[c] : no[c];
        }
    return JORM_OK;
}

} // namespace

JORM_API int64_t jorm_mkcmpxlatab(void *table, uint32_t op, const double *constants, const double *true_values,
                                  const double *false_values, int32_t channels) {
    const Relation relation[] = {{op, constants}};
    return make_table(table, relation, 1, true_values, false_values, channels);
}

JORM_API int64_t jorm_mkcmpxlatab2(void *table, uint32_t op1, uint32_t op2, const double *constants1,
                                   const double *constants2, const double *true_values, const double *false_values,
                                   int32_t channels) {
    const Relation relation[] = {{op1, constants1}, {op2, constants2}};
    return make_table(table, relation, 2, true_values, false_values, channels);
}

JORM_API void jorm_xlat2d_u8(void *dst, int64_t dst_stride, const void *src, int64_t src_stride, int32_t rows,
                             int32_t row_len, int32_t channels, const void *table) {
    if (!dst || !src || !table || channels < 1) return;
    const uint8_t *const t = static_cast<const uint8_t *>(table);
    for (int64_t y = 0; y < rows; ++y) {
        uint8_t *const d = static_cast<uint8_t *>(dst) + y * dst_stride;
        const uint8_t *const s = static_cast<const uint8_t *>(src) + y * src_stride;
        if (channels == 1)
            for (int32_t i = 0; i < row_len; ++i) d[i] = t[s[i]];
        else
            for (int64_t i = 0; i < row_len; i += channels)
                for (int64_t c = 0; c < channels && i + c < row_len; ++c) d[i + c] = t[256 * c + s[i + c]];
    }
}

// ------------------------------------------------------------------ vectors

#define VECTOR_CONSTANT(name, row)                                                                                     \
    JORM_API void name(float *dst, const float *src, const float *pattern16, size_t n) {                               \
        if (dst && src && pattern16) memory_rows_now().row(dst, src, pattern16, n);                                    \
    }
VECTOR_CONSTANT(C_jorm_addvcf, add)
VECTOR_CONSTANT(C_jorm_subvcf, sub)
VECTOR_CONSTANT(C_jorm_rsubvcf, rsub)
VECTOR_CONSTANT(C_jorm_mulvcf, mul)
VECTOR_CONSTANT(C_jorm_divvcf, div)
VECTOR_CONSTANT(C_jorm_rdivvcf, rdiv)

#define VECTOR_BYTES(name, row)                                                                                        \
    JORM_API void name(void *dst, const void *a, const void *b, size_t n) {                                            \
        if (dst && a && b) memory_rows_now().row(dst, a, b, n);                                                        \
    }
VECTOR_BYTES(C_jorm_addLE256_8, add8)
VECTOR_BYTES(C_jorm_addLE256_16, add16)
VECTOR_BYTES(C_jorm_subaLE256_8, distance8)
VECTOR_BYTES(C_jorm_subaLE256_16, distance16)

#define GATHER(name, R, T, row)                                                                                        \
    JORM_API R name(const T *src, size_t n) { return memory_rows_now().row(src, src ? n : 0); }
GATHER(C_jorm_maxu8_n, uint8_t, uint8_t, max_u8)
GATHER(C_jorm_minu8_n, uint8_t, uint8_t, min_u8)
GATHER(C_jorm_maxf_n, float, float, max_f32)
GATHER(C_jorm_minf_n, float, float, min_f32)
GATHER(C_jorm_sumu8_n, int64_t, uint8_t, sum_u8)
GATHER(C_jorm_sumi16_n, int64_t, int16_t, sum_s16)
GATHER(C_jorm_sumf_n, double, float, sum_f32)
