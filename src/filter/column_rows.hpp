// Rows of operations down the columns of a window: what a level offers.
#pragma once
#include <cstdint>

namespace jorm {

// Rows have elements of the picture; sums, prefixes and suffixes may be wider. Nothing is in place.
struct ColumnRows {
    int32_t result_bytes; // of an element
    void (*across)(void *to, const void *const *rows, int64_t count, int64_t n);
    void (*join)(void *to, const void *row, const void *suffix, int64_t n);
    // The prefix becomes the row, or takes it in; `to` is prefix and suffix.
    void (*begin)(void *to, void *prefix, const void *row, const void *suffix, int64_t n);
    void (*extend)(void *to, void *prefix, const void *row, const void *suffix, int64_t n);
};

} // namespace jorm
