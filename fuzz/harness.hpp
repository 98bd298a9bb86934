// What the fuzz targets share: input as a source of choices, memory between guard pages, failing.
#pragma once
#include "jorm.h"

#include <cfloat>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace fuzz {

[[noreturn]] inline void fail(const char *where, const char *what) {
    std::fprintf(stderr, "%s: %s\n", where, what);
    std::abort();
}
inline void check(bool holds, const char *where, const char *what) {
    if (!holds) fail(where, what);
}

// Input that has come to its end reads as zeros, which stand for the plain choice everywhere.
class ByteReader {
public:
    ByteReader(const uint8_t *data, size_t size) : data_(data), left_(size) {}
    uint8_t byte() { return left_ ? --left_, *data_++ : uint8_t(0); }
    uint32_t word() {
        uint32_t w = byte();
        for (int i = 0; i < 3; ++i) w = w << 8 | byte();
        return w;
    }
    uint64_t wide() {
        const uint64_t high = word();
        return high << 32 | word();
    }
    int in(int low, int high) { // low when there is nothing in between
        if (high <= low) return low;
        const int high_byte = high - low > 255 ? byte() : 0;
        return low + (high_byte << 8 | byte()) % (high - low + 1);
    }
    bool one_in(int n) { return byte() % n == n - 1; }
    template <class T, size_t n> T of(const T (&list)[n]) { return list[n > 256 ? size_t(in(0, n - 1)) : byte() % n]; }

    int32_t hostile_int() {
        static const int32_t list[] = {0, -1, 1, INT32_MAX, INT32_MIN, INT32_MIN + 1, 0x10000, -0x8000};
        return one_in(4) ? int32_t(word()) : of(list);
    }
    double hostile_double() {
        static const double list[] = {0,      -0.0,     NAN,     INFINITY,     -INFINITY,     1e308,
                                      -1e308, 4.9e-324, FLT_MAX, 2147483647.5, -2147483648.5, 1e-45};
        return of(list);
    }
    double number() {
        if (one_in(6)) return hostile_double();
        return in(-600, 600) * (one_in(2) ? 0.25 : 1);
    }

private:
    const uint8_t *data_;
    size_t left_;
};

// Memory that cannot be left unnoticed on either side.
class Guarded {
public:
    static constexpr size_t bytes = 1 << 15;
    Guarded() {
        const size_t guard = 1 << 16;
        void *const all = mmap(nullptr, bytes + 2 * guard, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        check(all != MAP_FAILED, "mmap", "no memory");
        start = static_cast<uint8_t *>(all) + guard;
        check(mprotect(start, bytes, PROT_READ | PROT_WRITE) == 0, "mprotect", "refused");
    }
    Guarded(const Guarded &) = delete;
    uint8_t *end() const { return start + bytes; }
    uint8_t *start;
};

// Fast numbers for the elements of pictures.
class Noise {
public:
    explicit Noise(uint32_t seed) : x_(seed | 1) {}
    uint32_t operator()() {
        x_ ^= x_ << 13, x_ ^= x_ >> 17, x_ ^= x_ << 5;
        return x_;
    }

private:
    uint32_t x_;
};

inline int bytes_of(uint32_t type) {
    static const int size[] = {0, 1, 2, 4, 8, 4, 8, 8};
    return type < 16 && (type < 5 || type > 8) ? size[type & 7] : 8;
}

} // namespace fuzz
