// The flood through words, one for each pixel: while a pixel waits its word links the bucket of its level, afterwards
// the list of its region.
//
// Each visit looks at all four neighbours at once. When none is lower, every neighbour goes through the same straight
// code: one that has been seen before gets its own word back, one of the present level becomes the next pixel, a higher
// one is pushed. Branches remain for a lower neighbour and for an empty bucket. A pixel that a descent leaves behind
// is looked at anew when it is popped; the neighbours seen the first time are then no longer fresh.
#include "regiontree/flood.hpp"
#include "regiontree/lanes.hpp"

#include <cstring>

namespace jorm {
namespace {

constexpr uint32_t fresh_bit = 0x80000000; // on words of pixels that no bucket has had yet
constexpr uint32_t seen = levels;          // instead of a level, for pixels that one has

void build_row(uint32_t *words, const FloodSource &s, int64_t r) {
    const uint8_t *const from = s.row(r);
    const uint32_t fresh = s.takes_part(r) ? fresh_bit : 0;
    if (s.pixel_stride == 1)
        for (int32_t c = 0; c < s.columns; ++c) words[c] = s.level(from[c]) | fresh;
    else
        for (int32_t c = 0; c < s.columns; ++c) words[c] = s.level(from[c * s.pixel_stride]) | fresh;
    words[0] &= ~fresh_bit;
}

uint32_t *build_words(uint32_t *buffer, const FloodSource &s) {
    const size_t guard = size_t(s.columns) + 2;
    uint32_t *const words = buffer + guard;
    std::memset(buffer, 0, guard * sizeof *buffer);
    for (int64_t r = 0; r < s.rows; ++r) build_row(words + r * s.columns, s, r);
    std::memset(words + s.pixels(), 0, guard * sizeof *buffer);
    return words;
}

// One neighbour.
struct Lane {
    uint32_t *word;
    uint32_t pixel, old;
    uint32_t level; // `seen` or above when it is not fresh
    Lane(uint32_t *words, int64_t pixel)
        : word(words + pixel), pixel(uint32_t(pixel)), old(*word), level(old ^ fresh_bit) {}
    int32_t above(uint32_t l) const { return int32_t(smaller(level, seen)) - int32_t(l); }
};

// Pushes a fresh neighbour that is not lower: one of the present level on top of `next`, which heads its bucket, any
// other to its bucket. Leaves one that is not fresh, or not `wanted`, as it is.
inline void push(const Lane &lane, uint32_t level, uint32_t *head, uint32_t &next) {
    const uint32_t bucket = smaller(lane.level, seen);
    uint32_t link = head[bucket];
    link_lane(link, next, bucket, level, lane.pixel);
    link = select_below(lane.level, seen, link, lane.old);
    *lane.word = link;
    head[bucket] = lane.pixel;
}

template <int smallest> int64_t run(jorm_fwtsres *store, uint32_t *words, const FloodSource &source) {
    const int64_t row = source.columns;
    uint32_t head[levels + 1]; // the last one belongs to the pixels that have been seen and must not look empty
    for (uint32_t &h : head) h = no_pixel;
    head[seen] = 0;

    Components components(store, uint32_t(row), uint32_t(row));
    Component *top = components.bottom();
    uint32_t done = 0;
    uint32_t p = uint32_t(source.start_row * row + source.start_column), next = no_pixel;
    uint32_t level = words[p] & 255;
    words[p] = no_pixel;

    // Each round has a pixel p; when `opened` is false nothing is open at its level yet.
    bool opened = false;
    for (;;) {
        Lane right(words, int64_t(p) + 1), left(words, int64_t(p) - 1), up(words, p - row), down(words, p + row);
        const int32_t t0 = right.above(level), t1 = left.above(level), t2 = up.above(level), t3 = down.above(level);
        if ((t0 | t1 | t2 | t3) < 0) {
            // Down to the first lower neighbour; those before it are pushed, then the pixel itself.
            uint32_t q = down.pixel, lower = down.level;
            select_negative(q, lower, t2, up.pixel, up.level);
            select_negative(q, lower, t1, left.pixel, left.level);
            select_negative(q, lower, t0, right.pixel, right.level);
            right.level |= uint32_t(t0) & fresh_bit;
            left.level |= uint32_t(t0 | t1) & fresh_bit;
            up.level |= uint32_t(t0 | t1 | t2) & fresh_bit;
            push(right, level, head, next);
            push(left, level, head, next);
            push(up, level, head, next);
            words[p] = next;
            head[level] = p;
            p = q;
            level = lower;
            next = no_pixel;
            words[p] = no_pixel;
            opened = false;
            continue;
        }
        if (!opened) {
            components.open(top, level, p, done);
            opened = true;
        }
        push(right, level, head, next);
        push(left, level, head, next);
        push(up, level, head, next);
        push(down, level, head, next);
        words[p] = top->head;
        top->head = p;
        ++done;
        if (next == no_pixel) {
            head[level] = no_pixel;
            do ++level;
            while (head[level] == no_pixel);
            if (level == seen) break;
            next = head[level];
            const auto splice = [words](uint32_t tail, int merges, uint32_t rest) {
                words[tail] = merges ? rest : no_pixel;
            };
            if (!rise<smallest>(components, top, int32_t(level), next, done, splice)) return JORM_ENOMEM;
        }
        p = next;
        next = words[p];
        // The pixel after the next one; the end mark asks for nothing that matters.
        const uint32_t *const soon = words + words[select_below(next, no_pixel, next, p)];
        __builtin_prefetch(soon);
        __builtin_prefetch(soon - row);
        __builtin_prefetch(soon + row);
    }
    return components.finish(top, done) ? JORM_OK : JORM_ENOMEM;
}

} // namespace

int64_t flood_words(jorm_fwtsres *store, const FloodSource &source, int smallest) {
    uint32_t *const words = build_words(store->buffer, source);
    const int64_t status = smallest == 1 ? run<1>(store, words, source) : run<16>(store, words, source);
    if (status == JORM_OK) store->words = words;
    return status;
}

} // namespace jorm
