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
#include <initializer_list>

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
    bool fell = true; // down to p, where nothing is open at this level yet
    for (;;) {
        // `next` heads the bucket of the present level.
        uint32_t *at = words + p;
        const auto above = [at, level](int64_t step) {
            return int64_t(int32_t(at[step])) - int32_t(level ^ fresh_bit); // of those seen far above
        };
        if ((above(1) | above(-1) | above(-row) | above(row)) < 0) {
            // Down to the first lower neighbour; those before it are pushed, then the pixel itself.
            forget(at);
            uint32_t w0 = at[1], w1 = at[-1], w2 = at[-row], lowest = at[row];
            const auto lower = [level](uint32_t word) { return int32_t(smaller(word ^ fresh_bit, seen) - level); };
            const int32_t t0 = lower(w0), t1 = lower(w1), t2 = lower(w2);
            uint32_t q = p + uint32_t(row);
            select_negative(q, lowest, t2, p - uint32_t(row), w2);
            select_negative(q, lowest, t1, p - 1, w1);
            select_negative(q, lowest, t0, p + 1, w0);
            const auto push_before = [&](int64_t step, uint32_t word, int32_t stop) {
                const uint32_t v = (word ^ fresh_bit) | (uint32_t(stop) & fresh_bit), bucket = smaller(v, seen);
                at[step] = select_below(v, seen, head[bucket], word);
                head[bucket] = p + uint32_t(step);
            };
            push_before(1, w0, t0);
            push_before(-1, w1, t0 | t1);
            push_before(-row, w2, t0 | t1 | t2);
            words[p] = head[level];
            head[level] = p;
            p = q;
            level = lowest & 255;
            next = no_pixel;
            words[p] = no_pixel;
            fell = true;
            continue;
        }
        if (fell) components.open(top, level, p, done);
        fell = false;
        forget(at);
        for (const int64_t step : {int64_t(1), int64_t(-1), -row, row}) {
            const uint32_t word = at[step], v = word ^ fresh_bit, bucket = smaller(v, seen);
            const uint32_t q = p + uint32_t(step);
            at[step] = select_below(v, seen, head[bucket], word);
            head[bucket] = q;
            select_equal(next, bucket, level, q);
        }
        *at = top->head;
        top->head = p;
        ++done;
        if (next == no_pixel) {
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
        head[level] = next;
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
