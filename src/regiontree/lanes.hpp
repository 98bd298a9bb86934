// Selections that must not become branches: what a neighbour of the visited pixel is cannot be foretold. Compilers turn
// a conditional expression back into a branch where they see fit, so x86-64 gets its conditional moves by name.
#pragma once
#include <cstdint>

namespace jorm {

#if defined(__x86_64__) && defined(__GNUC__)
#define JORM_CMOV 1
#endif

// What was read through p is read again from here on: cheaper than to keep it in registers, of which there are few.
template <class T> void forget(T *&p) {
#if defined(__GNUC__)
    asm("" : "+r"(p));
#endif
}

inline uint32_t smaller(uint32_t a, uint32_t b) {
#if JORM_CMOV
    asm("cmpl %[b], %[a]\n\tcmoval %[b], %[a]" : [a] "+r"(a) : [b] "r"(b) : "cc");
    return a;
#else
    const uint32_t m = 0 - uint32_t(a < b);
    return (a & m) | (b & ~m);
#endif
}

// a < b ? yes : no
inline uint32_t select_below(uint32_t a, uint32_t b, uint32_t yes, uint32_t no) {
#if JORM_CMOV
    asm("cmpl %[b], %[a]\n\tcmovbl %[yes], %[no]" : [no] "+r"(no) : [a] "r"(a), [b] "ri"(b), [yes] "r"(yes) : "cc");
    return no;
#else
    const uint32_t m = 0 - uint32_t(a < b);
    return (yes & m) | (no & ~m);
#endif
}

// When a == b: x = y.
inline void select_equal(uint32_t &x, uint32_t a, uint32_t b, uint32_t y) {
#if JORM_CMOV
    asm("cmpl %[b], %[a]\n\tcmovel %[y], %[x]" : [x] "+r"(x) : [a] "r"(a), [b] "r"(b), [y] "r"(y) : "cc");
#else
    const uint32_t m = 0 - uint32_t(a == b);
    x = (y & m) | (x & ~m);
#endif
}

// When t < 0: a = x, b = y.
inline void select_negative(uint32_t &a, uint32_t &b, int32_t t, uint32_t x, uint32_t y) {
#if JORM_CMOV
    asm("testl %[t], %[t]\n\tcmovsl %[x], %[a]\n\tcmovsl %[y], %[b]"
        : [a] "+r"(a), [b] "+r"(b)
        : [t] "r"(t), [x] "r"(x), [y] "r"(y)
        : "cc");
#else
    const uint32_t m = uint32_t(t >> 31);
    a = (x & m) | (a & ~m);
    b = (y & m) | (b & ~m);
#endif
}

} // namespace jorm
