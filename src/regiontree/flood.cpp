// The flood: a plane of one byte for each pixel and a pile of waiting pixels for each level.
//
// Each visit looks at all four neighbours at once. When none is lower, every neighbour goes through the same straight
// code: one that has been seen before is pushed to where it does not matter, one of the present level becomes the next
// pixel. Branches remain for a lower neighbour and for an empty pile. A pixel that a descent leaves behind is looked at
// anew when it is popped; the neighbours pushed the first time have then been seen.
//
// A byte of 255 says that a pixel has been seen, so levels get codes from 0 to 254: with 256 levels in use the two
// neighbouring ones that are rarest together share a code. Pixels of that code take a slow road which looks their
// levels up in the picture.
#include "regiontree/flood.hpp"

#include "jorm/xe.h"

#include <algorithm>
#include <cstring>
#include <initializer_list>

namespace jorm {
namespace {

constexpr uint32_t seen = 255, none = levels;
constexpr uint32_t fresh_bit = 0x80000000; // on words of pixels that no flood has reached

// How far ahead memory is fetched. The flood waits for memory where it enters new rows and where piles enter new cache
// lines: stores leave in order, so a few that miss hold up all others.
constexpr int ahead = 8;         // pixels further down in a pile
constexpr int pushed_ahead = 24; // places of a pile, upwards
constexpr int popped_ahead = 48; // and downwards
constexpr int rows_ahead = 6;
constexpr uint32_t linked_ahead = 64; // pixels of the log

// When a == b: x = y. What a neighbour is cannot be foretold, and compilers turn a conditional expression back into a
// branch where they see fit, so x86-64 gets its conditional move by name.
inline void select_equal(uint32_t &x, uint32_t a, uint32_t b, uint32_t y) {
#if defined(__x86_64__) && defined(__GNUC__)
    asm("cmpl %[b], %[a]\n\tcmovel %[y], %[x]" : [x] "+r"(x) : [a] "r"(a), [b] "r"(b), [y] "r"(y) : "cc");
#else
    const uint32_t m = 0 - uint32_t(a == b);
    x = (y & m) | (x & ~m);
#endif
}

// What was read through p is read again from here on: cheaper than to keep it in registers, of which there are few.
inline void forget(uint8_t *&p) {
#if defined(__GNUC__)
    asm("" : "+r"(p));
#endif
}

// Codes of the levels: a level above `split` has the code one less. Of the two that share the code `split` the lower
// one may be unused; when both are used, `pair` is their code.
struct Coding {
    uint32_t split = none, pair = none;
    uint32_t of(uint32_t level) const { return level - (level > split); }
    uint32_t level(uint32_t code) const { return code + (code >= split); }
};

void count_row(uint32_t (*count)[levels], const FloodSource &s, int64_t r) {
    const uint8_t *const from = s.row(r);
    const int64_t step = s.pixel_stride;
    int32_t c = 0;
    for (; c + 4 <= s.columns; c += 4)
        for (int k = 0; k < 4; ++k) ++count[k][from[(c + k) * step]];
    for (; c < s.columns; ++c) ++count[0][from[c * step]];
}

void count_levels(uint32_t *histogram, const FloodSource &s) {
    uint32_t count[4][levels] = {};
    for (int64_t r = 0; r < s.rows; ++r)
        if (s.takes_part(r)) count_row(count, s, r);
    std::memset(histogram, 0, levels * sizeof *histogram);
    for (int v = 0; v < levels; ++v)
        histogram[s.level(uint8_t(v))] += count[0][v] + count[1][v] + count[2][v] + count[3][v];
}

Coding choose_coding(const uint32_t *histogram) {
    Coding coding;
    if (histogram[255] == 0) return coding;
    coding.split = 0;
    for (uint32_t l = 0; l < 255; ++l) {
        if (histogram[l] == 0) return {l, none};
        const auto together = [=](uint32_t k) { return uint64_t(histogram[k]) + histogram[k + 1]; };
        if (together(l) < together(coding.split)) coding.split = l;
    }
    coding.pair = coding.split;
    return coding;
}

// Pixels that wait, the latest on top.
struct Pile {
    uint32_t *base = nullptr, *top = nullptr;
    bool empty() const { return top == base; }
    void push(uint32_t pixel) { *top++ = pixel; }
    uint32_t pop() { return *--top; }
};

template <int smallest, bool lists> class Flood {
public:
    Flood(jorm_fwtsres *store, const FloodSource &source, int64_t stride, const Coding &coding, uint32_t *log)
        : source_(source), stride_(stride), coding_(coding), log_(log),
          components_(store, uint32_t(stride), uint32_t(source.columns), log) {}

    void build(uint8_t *memory);
    void lay_out(uint32_t *memory, const uint32_t *histogram);
    int64_t run();
    void link(uint32_t *words);
    void complete(uint32_t *words) const;

private:
    // A pixel is done.
    void add(uint32_t pixel, uint32_t &done) {
        if (lists) log_[done] = pixel;
        ++done;
    }

    enum class Way { down, up, failed };
    [[gnu::cold, gnu::noinline]] Way run_pair(bool fell);
    bool upper(uint32_t pixel) const {
        const uint8_t sample = source_.row(pixel / stride_)[pixel % stride_ * source_.pixel_stride];
        return source_.level(sample) > coding_.pair;
    }

    // Takes the top pixel off a pile and tells what lies below it.
    uint32_t pop(uint32_t code) {
        uint32_t *const top = --top_of_[code];
        const uint8_t *const soon = plane_ + top[-ahead];
        __builtin_prefetch(soon);
        __builtin_prefetch(soon - stride_);
        __builtin_prefetch(soon + stride_);
        __builtin_prefetch(top - popped_ahead);
        return top[-1];
    }

    const FloodSource &source_;
    const int64_t stride_;
    const Coding coding_;
    uint8_t *plane_ = nullptr;
    uint32_t *const log_;                         // null without lists
    uint32_t *top_of_[levels], *base_of_[levels]; // what waits at each code; [seen] takes pixels that have been seen
    uint32_t seen_[4];
    Pile pair_[2]; // what waits at the two levels of the pair; what was pushed meanwhile waits under the code
    Components components_;
    // Where the flood stands, between the fast road and the slow one.
    Component *top_ = components_.bottom();
    uint32_t pixel_ = 0, code_ = 0, done_ = 0;
};

// A guard row above and below.
size_t plane_bytes(const FloodSource &s, int64_t stride) { return size_t(stride) * (size_t(s.rows) + 2); }

// The codes of a row, by comparisons where the compiler can make vectors of them.
void encode_row(uint8_t *to, const FloodSource &s, int64_t r, const Coding &coding) {
    const uint8_t *const from = s.row(r);
    const uint8_t invert = s.invert, split = uint8_t(std::min(coding.split, 255u));
    if (s.pixel_stride == 1 && s.shift == 0) {
        for (int32_t c = 0; c < s.columns; ++c) {
            const uint8_t level = from[c] ^ invert;
            to[c] = uint8_t(level - (level > split));
        }
        return;
    }
    for (int32_t c = 0; c < s.columns; ++c) to[c] = uint8_t(coding.of(s.level(from[c * s.pixel_stride])));
}

template <int smallest, bool lists> void Flood<smallest, lists>::build(uint8_t *memory) {
    const FloodSource &s = source_;
    plane_ = memory + stride_;
    for (int64_t r = -1; r <= s.rows; ++r) {
        uint8_t *const to = plane_ + r * stride_;
        const bool floods = r >= 0 && r < s.rows && s.takes_part(r);
        const int64_t done = floods ? s.columns : 0;
        if (floods) encode_row(to, s, r, coding_);
        std::memset(to + done, seen, size_t(stride_ - done));
        to[0] = seen;
    }
}

// A pile for each code, above an end mark.
template <int smallest, bool lists> void Flood<smallest, lists>::lay_out(uint32_t *memory, const uint32_t *histogram) {
    uint32_t room[levels] = {};
    for (uint32_t l = 0; l < levels; ++l) room[coding_.of(l)] += histogram[l];
    for (uint32_t code = 0; code < seen; ++code) {
        *memory++ = no_pixel;
        top_of_[code] = base_of_[code] = memory;
        memory += room[code];
    }
    top_of_[seen] = seen_;
    base_of_[seen] = nullptr; // never looks empty
    if (coding_.pair == none) return;
    for (uint32_t i = 0; i < 2; ++i) {
        pair_[i].base = pair_[i].top = memory;
        memory += histogram[coding_.pair + i];
    }
}

// Visits the pixels of the two levels that share a code, one neighbour after the other: from pixel_ on, or from what
// waits there; until the flood leaves for a lower code or nothing waits at these levels any more.
template <int smallest, bool lists> typename Flood<smallest, lists>::Way Flood<smallest, lists>::run_pair(bool fell) {
    const uint32_t code = coding_.pair;
    uint32_t p = pixel_;
    uint32_t which = 0; // the upper one of the two levels?
    const auto go_to = [&](uint32_t to) {
        which = to;
        const uint32_t last = p;
        p = pair_[which].pop();
        return rise<smallest>(components_, top_, int32_t(code + which), p, last, done_);
    };
    if (!fell) {
        for (const uint32_t *q = base_of_[code]; q != top_of_[code]; ++q) pair_[upper(*q)].push(*q);
        top_of_[code] = base_of_[code];
        if (!go_to(pair_[0].empty())) return Way::failed;
    } else {
        which = upper(p);
    }
    for (;;) {
        const int64_t neighbours[] = {int64_t(p) + 1, int64_t(p) - 1, p - stride_, p + stride_};
        bool lower = false;
        for (const int64_t at : neighbours) {
            const uint32_t v = plane_[at], q = uint32_t(at);
            if (v == seen) continue;
            plane_[at] = seen;
            if (v < code) {
                *top_of_[code]++ = p;
                pixel_ = q;
                code_ = v;
                return Way::down;
            }
            if (v > code) {
                *top_of_[v]++ = q;
            } else if (const bool u = upper(q); u >= which) {
                pair_[u].push(q);
            } else {
                pair_[1].push(p);
                p = q;
                which = 0;
                fell = lower = true;
                break;
            }
        }
        if (lower) continue;
        if (fell) components_.open(top_, code + which, p, done_);
        fell = false;
        add(p, done_);
        if (!pair_[which].empty())
            p = pair_[which].pop();
        else if (which == 0 && !pair_[1].empty()) {
            if (!go_to(1)) return Way::failed;
        } else {
            pixel_ = p;
            return Way::up;
        }
    }
}

template <int smallest, bool lists> int64_t Flood<smallest, lists>::run() {
    uint8_t *const plane = plane_;
    const int64_t stride = stride_;
    Component *top = top_;
    uint32_t done = 0;
    uint32_t p = uint32_t(source_.start_row * stride + source_.start_column);
    uint32_t code = plane[p];
    plane[p] = seen;
    bool fell = true; // down to p, where nothing is open at this level yet; otherwise up, to what waits there
    for (;;) {
        if (!fell) {
            do ++code;
            while (top_of_[code] == base_of_[code]);
            if (code == seen) break;
        }
        if (code == coding_.pair) {
            pixel_ = p;
            top_ = top;
            done_ = done;
            const Way way = run_pair(fell);
            if (way == Way::failed) return JORM_ENOMEM;
            top = top_;
            done = done_;
            fell = way == Way::down;
            p = pixel_;
            if (fell) code = code_;
            continue;
        }
        uint32_t next = no_pixel; // what waits on top at the present code, the end mark when nothing does
        if (!fell) {
            const uint32_t last = p;
            p = top_of_[code][-1];
            next = pop(code);
            const auto level = int32_t(coding_.level(code));
            if (!rise<smallest>(components_, top, level, p, last, done)) return JORM_ENOMEM;
        }
        for (;;) {
            uint8_t *at = plane + p;
            const auto above = [at, code](int64_t step) { return int32_t(at[step]) - int32_t(code); };
            const auto fetch_rows = [at, far = rows_ahead * stride] {
                __builtin_prefetch(at - far);
                __builtin_prefetch(at + far);
            };
            const auto push = [&](uint32_t v, int64_t step) {
                const uint32_t q = p + uint32_t(step);
                uint32_t *const to = top_of_[v];
                __builtin_prefetch(to + pushed_ahead, 1);
                *to = q;
                top_of_[v] = to + 1;
                select_equal(next, v, code, q);
            };
            if ((above(1) | above(-1) | above(-stride) | above(stride)) < 0) {
                // Down to the first lower neighbour; those before it are pushed, then the pixel itself.
                fetch_rows();
                forget(at);
                for (const int64_t step : {int64_t(1), int64_t(-1), -stride, stride}) {
                    const uint32_t v = at[step];
                    at[step] = seen;
                    if (v < code) {
                        *top_of_[code]++ = p;
                        p += uint32_t(step);
                        code = v;
                        break;
                    }
                    push(v, step);
                }
                top_of_[seen] = seen_;
                fell = true;
                break;
            }
            if (fell) components_.open(top, coding_.level(code), p, done);
            fell = false;
            if ((at[1] & at[-1] & at[-stride] & at[stride]) != seen) {
                fetch_rows();
                forget(at);
                for (const int64_t step : {int64_t(1), int64_t(-1), -stride, stride}) {
                    const uint32_t v = at[step];
                    at[step] = seen;
                    push(v, step);
                }
                top_of_[seen] = seen_;
            }
            add(p, done);
            if (next == no_pixel) break;
            p = next;
            next = pop(code);
        }
    }
    done_ = done;
    return components_.finish(top, p, done) ? JORM_OK : JORM_ENOMEM;
}

// Makes pixel lists of the log: while the flood runs, their words would be spread over too much memory.
template <int smallest, bool lists> void Flood<smallest, lists>::link(uint32_t *words) {
    const uint32_t padding = uint32_t(stride_ - source_.columns);
    const uint64_t row_reciprocal = ~uint64_t{0} / uint64_t(stride_) + 1; // rounded up: exact for pixel numbers
    for (uint32_t i = 0; padding && i < done_; ++i)
        log_[i] -= uint32_t((unsigned __int128)(log_[i] & log_pixel) * row_reciprocal >> 64) * padding;
    std::fill_n(log_ + done_, linked_ahead, 0u);

    uint32_t interrupted[levels + 1] = {}, *top = interrupted + 1; // lists
    uint32_t next = no_pixel;
    for (uint32_t i = 0; i < done_; ++i) {
        __builtin_prefetch(words + (log_[i + linked_ahead] & log_pixel), 1);
        const uint32_t entry = log_[i], pixel = entry & log_pixel;
        if (smallest > 1 && entry == pixel) { // otherwise marks are frequent and cannot be foretold
            words[pixel] = next;
            next = pixel;
            continue;
        }
        *top = next;
        select_equal(next, entry & log_begins, log_begins, no_pixel);
        top += (entry & log_begins) != 0;
        words[pixel] = next;
        next = pixel;
        select_equal(next, entry & log_resumes, log_resumes, top[-1]);
        select_equal(next, entry & log_renews, log_renews, no_pixel);
        top -= (entry & log_resumes) != 0;
    }
}

// Words of what is in no list: guards, border, rows left out, and pixels that the flood did not reach.
template <int smallest, bool lists> void Flood<smallest, lists>::complete(uint32_t *words) const {
    const FloodSource &s = source_;
    const size_t guard = size_t(s.columns) + 2;
    std::memset(words - guard, 0, guard * sizeof *words);
    std::memset(words + s.pixels(), 0, guard * sizeof *words);
    for (int64_t r = 0; r < s.rows; ++r) {
        uint32_t *const to = words + r * s.columns;
        const uint8_t *const from = s.row(r), *const left = plane_ + r * stride_;
        const uint32_t fresh = s.takes_part(r) ? fresh_bit : 0;
        to[0] = s.level(from[0]);
        if (!s.row_mask) continue;
        for (int32_t c = 1; c < s.columns; ++c)
            if (!fresh || left[c] != seen) to[c] = s.level(from[c * s.pixel_stride]) | fresh;
    }
}

// Rows a multiple of 1024 bytes apart would meet in few sets of the cache.
int64_t plane_stride(int32_t columns) { return columns >= 1024 && columns % 1024 == 0 ? columns + 64 : columns; }

} // namespace

template <int smallest, bool lists> int64_t flood_with(jorm_xe *xe, jorm_fwtsres *store, const FloodSource &source) {
    uint32_t histogram[levels];
    count_levels(histogram, source);
    const Coding coding = choose_coding(histogram);
    const int64_t stride = plane_stride(source.columns);
    size_t pixels = 0;
    for (uint32_t l = 0; l < levels; ++l) pixels += histogram[l];
    size_t entries = 2 * ahead + levels + pixels;
    if (coding.pair != none) entries += histogram[coding.pair] + histogram[coding.pair + 1];
    const size_t logged = lists ? pixels + linked_ahead : 0;
    const size_t bytes = (entries + logged) * sizeof(uint32_t) + plane_bytes(source, stride);

    void *const stack = xe ? JormXEmmstack(xe) : store->storage;
    void *const memory = jorm_mmstack_alloca(stack, bytes, 64);
    if (!memory) return JORM_ENOMEM;
    int64_t status;
    {
        auto *const waiting = static_cast<uint32_t *>(memory), *const log = waiting + entries;
        Flood<smallest, lists> flood(store, source, stride, coding, lists ? log : nullptr);
        std::fill_n(waiting, 2 * ahead, 0u); // what looks ahead may look below the lowest pile
        flood.lay_out(waiting + 2 * ahead, histogram);
        flood.build(reinterpret_cast<uint8_t *>(log + logged));
        status = flood.run();
        if (status == JORM_OK && lists) {
            store->words = store->buffer + source.columns + 2;
            flood.link(store->words);
            flood.complete(store->words);
        }
    }
    jorm_mmstack_freea(stack, memory);
    return status;
}

int64_t flood(jorm_xe *xe, jorm_fwtsres *store, const FloodSource &source, int smallest) {
    const auto run = store->buffer   ? smallest == 1 ? flood_with<1, true> : flood_with<16, true>
                       : smallest == 1 ? flood_with<1, false>
                                     : flood_with<16, false>;
    return run(xe, store, source);
}

} // namespace jorm
