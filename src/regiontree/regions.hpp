// What the queries over floods share: growable vectors, the pixels of regions.
#pragma once

#include "regiontree/treewalk.hpp"

#include "jorm/watershed.h"
#include "jorm/xe.h"

namespace jorm {

/// Room for `more` further entries, exactly; false when it cannot be had, and nothing has changed then.
inline bool reserve(jorm_vector &v, uint64_t more, size_t entry_bytes) {
    uint64_t wanted = 0, bytes = 0;
    if (__builtin_add_overflow(v.count, more, &wanted)) return false;
    if (wanted <= v.capacity) return true;
    if (__builtin_mul_overflow(wanted, entry_bytes, &bytes) || bytes > uint64_t(PTRDIFF_MAX)) return false;
    void *const moved = _UlMrealloc(v.data, bytes);
    if (!moved) return false;
    v.data = moved;
    v.capacity = wanted;
    return true;
}

template <class Entry> Entry *end_of(jorm_vector &v) { return static_cast<Entry *>(v.data) + v.count; }

/// A vector that is freed at the end of the scope.
struct LocalVector : jorm_vector {
    LocalVector() : jorm_vector() {}
    ~LocalVector() { _UlMfree(data); }
    LocalVector(const LocalVector &) = delete;
    LocalVector &operator=(const LocalVector &) = delete;
};

struct Pixel {
    int32_t row, column;
};

inline int32_t proper_count(const jorm_fwtsr *region) {
    int64_t n = region->area;
    for (const jorm_fwtsr *child = region->child; child; child = child->next) n -= child->area;
    return int32_t(n);
}

/// each(pixel index) for the first n pixels of the region's list; returns how many there were.
template <class Each> int32_t for_list(const jorm_fwtsr *region, const uint32_t *words, int32_t n, Each each) {
    uint32_t pixel = uint32_t(region->head);
    int32_t done = 0;
    for (; done < n && pixel < JORM_NO_PIXEL; ++done) {
        each(int32_t(pixel));
        pixel = words[pixel];
    }
    return done;
}

/// The same for the pixels of a region and its descendants, region by region in pre-order; never more than its area.
template <class Each> int32_t for_subtree(const jorm_fwtsr *start, const uint32_t *words, Each each) {
    int32_t left = start->area;
    if (left <= 0) return 0;
    walk_preorder(start, [&](const jorm_fwtsr *region, int32_t) {
        const int32_t proper = proper_count(region);
        left -= for_list(region, words, proper < left ? proper : left, each);
        return 1;
    });
    return start->area - left;
}

/// Pixels by their numbers.
class PixelOf {
public:
    explicit PixelOf(int32_t width) : width_(uint32_t(width)), reciprocal_(~uint64_t{0} / width_ + 1) {}
    Pixel operator()(int32_t pixel) const {
        // The reciprocal is rounded up, by less than 2^-64: exact for 32 bits. That of 1 is 2^64, which is too much.
        const uint32_t row = reciprocal_ ? uint32_t(u128(reciprocal_) * uint32_t(pixel) >> 64) : uint32_t(pixel);
        return {int32_t(row), int32_t(uint32_t(pixel) - row * width_)};
    }

private:
    __extension__ typedef unsigned __int128 u128;
    uint32_t width_;
    uint64_t reciprocal_;
};

/// Follows several lists at once, for each step of one list waits for the step before. Where the pixels of a list go is
/// known beforehand, from the areas.
class ListWriter {
public:
    explicit ListWriter(int32_t width) : pixel_of_(width) {}

    /// The first n >= 1 pixels of a list.
    void add(Pixel *to, const uint32_t *words, uint32_t head, int32_t n) {
        lane_[used_++] = {to, words, head, n};
        while (used_ == lanes) step();
    }
    /// The pixels of a region and its descendants, at most its area, in the order of for_subtree; returns how many.
    int32_t add_subtree(Pixel *to, const jorm_fwtsr *region, const uint32_t *words);

    /// Writes what is left. False when a list was too short: then what has been written is of no use.
    bool finish() {
        while (used_ > 0) step();
        return complete_;
    }

private:
    static constexpr int lanes = 6;
    struct Lane {
        Pixel *to;
        const uint32_t *words;
        uint32_t pixel;
        int32_t left;
    };
    void step(); // as many pixels of each list as the shortest still has
    void advance(Lane &lane);

    const PixelOf pixel_of_;
    Lane lane_[lanes];
    int used_ = 0;
    bool complete_ = true;
};

/// Writes the pixels of a region and its descendants, at most its area, in the order of for_subtree; returns how many.
int32_t write_subtree(Pixel *to, const jorm_fwtsr *region, const uint32_t *words, int32_t width);

} // namespace jorm
