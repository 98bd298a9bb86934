// Per-channel constants as vectors of elements.
#include "array/element.hpp"
#include "jorm/shapes.h"

#include <bit>
#include <cstring>

using namespace jorm;

namespace {

constexpr int32_t smallest_s32 = -2147483647 - 1;

// To nearest even; what does not fit becomes the smallest number. Adding 1.5 * 2^52 rounds in the low bits of the sum.
int32_t round_s32(double x) {
    if (!(x >= -2147483648.5 && x < 2147483647.5)) return smallest_s32;
    return int32_t(uint32_t(std::bit_cast<uint64_t>(x + 6755399441055744.0)));
}

int32_t clamp(int32_t v, int32_t lo, int32_t hi) { return v < lo ? lo : v > hi ? hi : v; }

// The bits of one converted value.
uint32_t element_bits(uint32_t type, double x) {
    if (type == JORM_F32) return std::bit_cast<uint32_t>(float(x));
    const int32_t v = round_s32(x);
    switch (type) {
    case JORM_U8:
        return uint32_t(clamp(v, 0, 255));
    case JORM_U16:
        return uint32_t(clamp(v, 0, 65535));
    case JORM_U32:
        return uint32_t(v < 0 ? 0 : v);
    case JORM_S8:
        return uint32_t(clamp(v, -128, 127));
    case JORM_S16:
        return uint32_t(clamp(v, -32768, 32767));
    default:
        return uint32_t(v);
    }
}

template <class T> void repeat(void *out, const uint32_t *bits, int32_t n) {
    constexpr int32_t count = 16 / sizeof(T);
    T elements[count];
    for (int32_t i = 0, c = 0; i < count; ++i) {
        elements[i] = T(bits[c]);
        if (++c == n) c = 0;
    }
    std::memcpy(out, elements, sizeof elements);
}

int64_t make16(uint32_t type, void *out, const double *values, int32_t n) {
    if (!out || n < 1 || n > 4 || !well_formed(type)) return JORM_EINVAL;
    const int32_t size = element_size(type);
    if (size == 0 || size == 8) return JORM_ENOTSUP;
    uint32_t bits[4];
    for (int32_t c = 0; c < n; ++c) bits[c] = element_bits(type, values ? values[c] : 0);
    if (size == 1) repeat<uint8_t>(out, bits, n);
    if (size == 2) repeat<uint16_t>(out, bits, n);
    if (size == 4) repeat<uint32_t>(out, bits, n);
    return JORM_OK;
}

// Four doubles; the other types of 8 bytes have no vectors.
int64_t make32_wide(uint32_t type, void *out, const double *values, int32_t n) {
    if (!out) return JORM_EINVAL;
    if (type != JORM_F64 || n < 1 || n > 4) return JORM_ENOTSUP;
    double slots[4];
    for (int32_t i = 0; i < 4; ++i) slots[i] = values ? values[i % n] : 0;
    std::memcpy(out, slots, sizeof slots);
    return JORM_OK;
}

bool is_wide(uint32_t type) { return well_formed(type) && element_size(type) == 8; }

// Repeats a vector of `from` words with a period of p words until it has `to`.
void widen(void *vector, int32_t from, int32_t to, int64_t p) {
    if (!vector || p < 1) return;
    char *const bytes = static_cast<char *>(vector);
    for (int64_t i = p > from ? p : from; i < to; ++i) std::memcpy(bytes + 4 * i, bytes + 4 * (i - p), 4);
}

void read_words(uint32_t *const *words, int32_t n, const void *pattern, int32_t s) {
    if (!pattern) return;
    const auto word = [&](int32_t j) {
        uint32_t w;
        std::memcpy(&w, static_cast<const char *>(pattern) + 4 * j, sizeof w);
        return w;
    };
    const int32_t shift = 8 * (s & 3);
    for (int32_t j = 0; j < n; ++j)
        if (words[j]) *words[j] = shift ? word(j) >> shift | word(j + 1) << (32 - shift) : word(j);
}

} // namespace

int64_t jorm_defillvals(uint32_t type, double *largest, double *smallest, int32_t n) {
    struct Limits {
        double largest, smallest;
    } limits;
    switch (type) {
    case JORM_U8:
        limits = {255, 0};
        break;
    case JORM_U16:
        limits = {65535, 0};
        break;
    case JORM_U32:
        limits = {4294967295.0, 0};
        break;
    case JORM_S8:
        limits = {127, -128};
        break;
    case JORM_S16:
        limits = {32767, -32768};
        break;
    case JORM_S32:
        limits = {2147483647, smallest_s32};
        break;
    case JORM_F32:
        limits = {1, 0};
        break;
    default:
        return well_formed(type) ? JORM_ENOTSUP : JORM_EINVAL;
    }
    for (int32_t i = 0; i < n; ++i) {
        if (largest) largest[i] = limits.largest;
        if (smallest) smallest[i] = limits.smallest;
    }
    return JORM_OK;
}

int64_t jorm_mkifillvalv16(uint32_t type, void *out, const double *values, int32_t n) {
    return make16(type, out, values, n);
}

int64_t jorm_mkifillvalv32(uint32_t type, void *out, const double *values, int32_t n) {
    if (is_wide(type)) return make32_wide(type, out, values, n);
    const int64_t status = make16(type, out, values, n);
    if (status == JORM_OK) jorm_dupifillvalv3216(out, n);
    return status;
}

int64_t jorm_mkifillvalv64(uint32_t type, void *out, const double *values, int32_t n) {
    const bool wide = is_wide(type);
    const int64_t status = wide ? make32_wide(type, out, values, n) : make16(type, out, values, n);
    if (status == JORM_OK) wide ? jorm_dupifillvalv6432(out, n) : jorm_dupifillvalv6416(out, n);
    return status;
}

void jorm_dupifillvalv3216(void *vector, int32_t n) { widen(vector, 4, 8, n); }
void jorm_dupifillvalv6416(void *vector, int32_t n) { widen(vector, 4, 16, n); }
void jorm_dupifillvalv6432(void *vector, int32_t n) { widen(vector, 8, 16, 2 * int64_t(n)); }

void jorm_readifillvals4(uint32_t *w0, const void *pattern, int32_t s) {
    uint32_t *const words[] = {w0};
    read_words(words, 1, pattern, s);
}
void jorm_readifillvals4x2(uint32_t *w0, uint32_t *w1, const void *pattern, int32_t s) {
    uint32_t *const words[] = {w0, w1};
    read_words(words, 2, pattern, s);
}
void jorm_readifillvals4x3(uint32_t *w0, uint32_t *w1, uint32_t *w2, const void *pattern, int32_t s) {
    uint32_t *const words[] = {w0, w1, w2};
    read_words(words, 3, pattern, s);
}
void jorm_readifillvals4x4(uint32_t *w0, uint32_t *w1, uint32_t *w2, uint32_t *w3, const void *pattern, int32_t s) {
    uint32_t *const words[] = {w0, w1, w2, w3};
    read_words(words, 4, pattern, s);
}
