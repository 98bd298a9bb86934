// Scratch memory that returns to its environment at the end of the scope.
#pragma once

#include "jorm/xe.h"

#include <cstdint>

namespace jorm {

/// Product of counts and sizes; SIZE_MAX, which no request can get, when one is negative or the product does not fit.
constexpr size_t scratch_bytes(int64_t a, int64_t b, int64_t c = 1, int64_t d = 1) {
    int64_t product = 0;
    const bool over = a < 0 || b < 0 || c < 0 || d < 0 || __builtin_mul_overflow(a, b, &product) ||
                      __builtin_mul_overflow(product, c, &product) || __builtin_mul_overflow(product, d, &product);
    return over ? SIZE_MAX : size_t(product);
}

/// A block of scratch memory; false when it could not be had. Guards of one environment must nest.
class Scratch {
public:
    Scratch(jorm_xe *xe, size_t bytes, size_t align) : xe_(xe), block_(JormXEalloca(xe, bytes, align)) {}
    ~Scratch() {
        if (block_) JormXEfreea(xe_, block_);
    }
    Scratch(const Scratch &) = delete;
    Scratch &operator=(const Scratch &) = delete;

    void *get() const { return block_; }
    template <class T> T *as() const { return static_cast<T *>(block_); }
    explicit operator bool() const { return block_ != nullptr; }

private:
    jorm_xe *xe_;
    void *block_;
};

} // namespace jorm
