// What the rows of histograms count into.
#pragma once

#include <cstdint>

namespace jorm {

// How samples of the interval become bins.
enum class BinRule : uint8_t {
    unit,   // integers: a bin for each value
    scaled, // double precision holds what that takes, 31 bits the bin
    wide    // anything
};

// The rows that count bytes by value have so many counters for each of them, side by side: neighbours of equal value
// need not wait for each other, and what is near in value is near in memory. A further group takes what does not count.
constexpr int byte_ways = 16, byte_groups = 257;
// The others have so many for each bin, or one.
constexpr int bin_ways = 4;

constexpr int real_sums = 8;

struct HistogramState {
    uint32_t *counters; // those of bin i from i * step on, one beside the other when there is a spread
    int64_t step;
    int32_t spread; // 1 or 0
    BinRule rule;
    uint8_t unselected;     // mask elements with this value leave their samples out
    uint32_t last;          // bin
    int32_t lo, hi;         // integers
    uint64_t bins, width;   // scaled: (x - lo) * bins / width
    float flo, fhi, factor; // f32
    int32_t phase;          // the sum that comes next
    double sum[real_sums];  // of f32 samples, sample i in sum i % real_sums
};

namespace {

[[gnu::always_inline]] inline uint32_t bin_of(const HistogramState &s, int32_t x) {
    if (x < s.lo) return 0;
    if (x > s.hi) return s.last;
    const uint32_t distance = uint32_t(x) - uint32_t(s.lo);
    return s.rule == BinRule::unit ? distance : uint32_t(distance * s.bins / s.width);
}

} // namespace
} // namespace jorm
