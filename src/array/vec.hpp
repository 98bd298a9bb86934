// Index vectors: slot-wise arithmetic that wraps at 32 bits, offsets in 64 bits.
// A null operand counts as the zero vector; a null destination is left alone.
#pragma once

#include <cstdint>
#include <cstring>
#include <limits>

namespace jorm {

constexpr int32_t wrap_add(int32_t a, int32_t b) { return int32_t(uint32_t(a) + uint32_t(b)); }
constexpr int32_t wrap_sub(int32_t a, int32_t b) { return int32_t(uint32_t(a) - uint32_t(b)); }
constexpr int32_t wrap_mul(int32_t a, int32_t b) { return int32_t(uint32_t(a) * uint32_t(b)); }

constexpr int32_t saturate_i32(int64_t v) {
    using limits = std::numeric_limits<int32_t>;
    return v < limits::min() ? limits::min() : v > limits::max() ? limits::max() : int32_t(v);
}

// The packed count word.
constexpr int32_t word_axes(uint32_t word) { return int32_t(word & 15); }
constexpr int32_t word_lead(uint32_t word) { return int32_t(word >> 4 & 15); }
constexpr int32_t word_slots(uint32_t word) { return word_lead(word) + word_axes(word); }

// The vector addressed at slot 0, from its first used slot.
template <class T> constexpr T *at_slot0(uint32_t word, T *v) { return v ? v - word_lead(word) : v; }

struct Add {
    static constexpr int32_t of(int32_t a, int32_t b) { return wrap_add(a, b); }
};
struct Sub {
    static constexpr int32_t of(int32_t a, int32_t b) { return wrap_sub(a, b); }
};
struct Rsb {
    static constexpr int32_t of(int32_t a, int32_t b) { return wrap_sub(b, a); }
};
struct Min {
    static constexpr int32_t of(int32_t a, int32_t b) { return b < a ? b : a; }
};
struct Max {
    static constexpr int32_t of(int32_t a, int32_t b) { return a < b ? b : a; }
};

inline int32_t *vec_dup(int32_t n, int32_t *dst, int32_t v) {
    for (int32_t i = 0; dst && i < n; ++i) dst[i] = v;
    return dst;
}

inline int32_t *vec_assign(int32_t n, int32_t *dst, const int32_t *src) {
    if (!src) return vec_dup(n, dst, 0);
    if (dst && n > 0) std::memmove(dst, src, size_t(n) * sizeof *dst);
    return dst;
}

template <class Op> int32_t *vec_binary(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b) {
    for (int32_t i = 0; dst && i < n; ++i) dst[i] = Op::of(a ? a[i] : 0, b ? b[i] : 0);
    return dst;
}

// In place a missing operand changes nothing, whatever the operation.
template <class Op> int32_t *vec_binary_in_place(int32_t n, int32_t *a, const int32_t *b) {
    return b ? vec_binary<Op>(n, a, a, b) : a;
}

inline int32_t *vec_neg(int32_t n, int32_t *dst, const int32_t *src) { return vec_binary<Rsb>(n, dst, src, nullptr); }

inline int32_t vec_equal(int32_t n, const int32_t *a, const int32_t *b) {
    for (int32_t i = 0; i < n; ++i)
        if ((a ? a[i] : 0) != (b ? b[i] : 0)) return 0;
    return 1;
}

// True when there are slots and all of them are positive.
inline int32_t vec_positive(int32_t n, const int32_t *v) {
    for (int32_t i = 0; i < n; ++i)
        if (!v || v[i] <= 0) return 0;
    return n > 0;
}

inline int64_t vec_mkloff(int32_t n, const int32_t *index, const int32_t *stride) {
    if (!index || !stride) return 0;
    uint64_t sum = 0;
    for (int32_t i = 0; i < n; ++i) sum += uint64_t(int64_t(index[i]) * stride[i]);
    return int64_t(sum);
}

inline int32_t *vec_update_loff(int32_t n, int32_t *index, const int32_t *stride, int64_t loff) {
    for (int32_t i = 0; index && stride && i < n; ++i) {
        if (stride[i] == 0) continue;
        // The one quotient that does not fit is that of the smallest number by -1.
        const uint64_t quotient = stride[i] == -1 ? 0 - uint64_t(loff) : uint64_t(loff / stride[i]);
        loff = stride[i] == -1 ? 0 : loff % stride[i];
        index[i] = wrap_add(index[i], int32_t(uint32_t(quotient)));
    }
    return index;
}

inline int32_t *vec_fromloff(int32_t n, int32_t *dst, const int32_t *stride, int64_t loff) {
    return vec_update_loff(n, vec_dup(n, dst, 0), stride, loff);
}

// p plus a byte count, as plain address arithmetic.
inline void *advance(const void *p, int64_t bytes) {
    return reinterpret_cast<void *>(reinterpret_cast<uintptr_t>(p) + uintptr_t(bytes));
}

} // namespace jorm
