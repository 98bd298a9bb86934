// A slow flood, step by step, and small pictures that floods find hard.
#pragma once
#include "jorm/watershed.h"
#include "support/picture.hpp"

#include <deque>

namespace {

using Samples = std::vector<uint8_t>;

struct Store : jorm_fwtsres {
    Store() : jorm_fwtsres{} { JormFWTSRESinit(this, nullptr, nullptr); }
    ~Store() { JormFWTSRESfini(this); }
};

// Samples in any layout; of several planes the last one holds them, others hold them upside down.
struct FloodArray {
    jorm_array a;
    FloodArray(Random &r, const Samples &samples, int H, int W, int planes = 1) {
        int64_t bytes;
        std::tie(a, bytes) = lay_out(r, JORM_U8, planes > 1 ? 4 : 3, {planes, H, W, 1});
        memory.resize(size_t(bytes));
        a.base = memory.data();
        each({planes, H, W, 1}, [&](const Index &i) {
            const int row = i[0] == planes - 1 ? i[1] : H - 1 - i[1];
            *element(a, i) = samples[size_t(row * W + i[2])];
        });
    }
    FloodArray(const FloodArray &) = delete;

private:
    Bytes memory;
};

// The flood as it is defined: a bucket for each level, linked through the words, and a stack of open regions.
struct SlowFlood {
    static constexpr uint32_t end = 0x7FFFFFFF, fresh = 0x80000000;
    static constexpr int directions = 4;

    int64_t W;
    std::vector<uint32_t> buffer;
    std::deque<jorm_fwtsr> regions;
    jorm_fwtsr *root = nullptr;

    struct Options {
        bool inverted = false;
        int shift = 0;
        int64_t row = 0, column = 0; // where the flood starts, in the buffer
        int smallest = 16;
        std::vector<bool> rows = {}; // that take part; empty: all
    };

    SlowFlood(const Samples &samples, int64_t H, int64_t W, const Options &o)
        : W(W), buffer(size_t(W * H + 2 * (W + 2))) {
        uint32_t *const words = &buffer[size_t(W + 2)];
        for (int64_t i = 0; i < W * H; ++i) {
            const bool inside = i % W != 0 && (o.rows.empty() || o.rows[size_t(i / W)]);
            words[i] = uint32_t(samples[size_t(i)] ^ (o.inverted ? 255 : 0)) >> o.shift | (inside ? fresh : 0);
        }
        run(words, o);
    }

private:
    jorm_fwtsr *region(uint32_t seed, int32_t level) {
        regions.push_back({int32_t(end), int32_t(seed), level, 0, 0, 0, nullptr, nullptr, nullptr});
        return &regions.back();
    }
    static void adopt(jorm_fwtsr *parent, jorm_fwtsr *child) {
        child->parent = parent;
        child->next = parent->child;
        parent->child = child;
    }

    void run(uint32_t *words, const Options &o) {
        std::vector<std::vector<std::pair<uint32_t, int>>> bucket(257); // pixel, where its exploration goes on
        std::vector<jorm_fwtsr *> stack = {region(end, int32_t(end))};
        const int64_t step[directions] = {1, -1, -W, W};
        uint32_t p = uint32_t(o.row * W + o.column), level = words[p] & 255;
        int resume = 0;
        words[p] = end;
        for (;;) {
            bool lower = false;
            for (int k = resume; k < directions && !lower; ++k) {
                uint32_t &word = words[int64_t(p) + step[k]];
                if (!(word & fresh)) continue;
                const uint32_t v = word & 255, q = uint32_t(p + step[k]);
                word = end;
                lower = v < level;
                if (lower) {
                    bucket[level].push_back({p, k + 1});
                    level = v;
                    p = q;
                    resume = 0;
                } else {
                    bucket[v].push_back({q, 0});
                }
            }
            if (lower) continue;
            if (stack.back()->level != int32_t(level)) stack.push_back(region(p, int32_t(level)));
            words[p] = uint32_t(stack.back()->head);
            stack.back()->head = int32_t(p);
            ++stack.back()->area;

            const uint32_t before = level;
            while (level < 256 && bucket[level].empty()) ++level;
            if (level == 256) break;
            std::tie(p, resume) = bucket[level].back();
            bucket[level].pop_back();
            if (level > before) rise(words, stack, int32_t(level), o.smallest, p);
        }
        root = stack.back();
        EXPECT_EQ(stack.size(), 2u);
    }

    void rise(uint32_t *words, std::vector<jorm_fwtsr *> &stack, int32_t level, int smallest, uint32_t p) {
        do {
            jorm_fwtsr *const top = stack.back(), *const below = stack[stack.size() - 2];
            if (below->level > level) {
                if (top->area < smallest) {
                    top->level = level;
                    return;
                }
                jorm_fwtsr *const grown = region(p, level);
                grown->area = top->area;
                adopt(grown, top);
                stack.back() = grown;
                return;
            }
            stack.pop_back();
            below->area += top->area;
            if (top->area >= smallest) {
                adopt(below, top);
            } else {
                words[top->seed] = uint32_t(below->head);
                below->head = top->head;
            }
        } while (stack.back()->level < level);
    }
};

// Pictures of many kinds, by number.
inline Samples flood_picture(Random &r, int H, int W, int kind) {
    Samples s(size_t(H) * size_t(W));
    const int few = r.in(2, 9), a = r.in(1, 60), b = r.in(1, 60), base = r.in(0, 255);
    for (int y = 0; y < H; ++y)
        for (int x = 0; x < W; ++x) {
            const double wave = std::sin(x * 0.3 + base) + std::cos(y * 0.23 + a);
            const int values[] = {r.in(0, 255),
                                  r.in(0, few) * (255 / few),
                                  int(127 + 60 * wave),
                                  int(127 + 55 * wave) + r.in(-12, 12),
                                  x / few % 2 * 200 + y % 2,
                                  base,
                                  (x / few + y / few) % 2 * 255,
                                  (a * x + b * y) / 8,
                                  255 - (x * x + y * y) / 3,
                                  r.one_in(12) ? r.in(0, 255) : base,
                                  254 + r.in(0, 1),
                                  r.one_in(3) ? r.in(126, 129) : r.in(0, 255)};
            s[size_t(y * W + x)] = uint8_t(values[kind % int(std::size(values))]);
        }
    return s;
}
constexpr int flood_kinds = 12;

// The same levels, areas, lists' ends and children in the same order, links included.
inline void expect_same_tree(const jorm_fwtsr *wanted, const jorm_fwtsr *got) {
    ASSERT_EQ(!wanted, !got);
    std::vector<std::pair<const jorm_fwtsr *, const jorm_fwtsr *>> open = {{wanted, got}};
    if (!wanted) return;
    ASSERT_EQ(got->parent, nullptr);
    while (!open.empty()) {
        const auto [w, g] = open.back();
        open.pop_back();
        ASSERT_EQ(std::tuple(w->level, w->area, w->head, w->seed, w->mser, 0u),
                  std::tuple(g->level, g->area, g->head, g->seed, g->mser, g->pad));
        const jorm_fwtsr *c = w->child, *d = g->child;
        for (; c && d; c = c->next, d = d->next) {
            ASSERT_EQ(d->parent, g);
            open.push_back({c, d});
        }
        ASSERT_EQ(!c, !d);
    }
}

} // namespace
