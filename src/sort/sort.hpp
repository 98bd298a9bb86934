// The sorts, written once for every way to move elements and to compare them.
//
// A comparison is any callable that takes the addresses of two elements and returns an int whose sign counts. All loops
// are bounded by the range and not by what the comparison says, so that a contradictory one does no harm.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace jorm {

// Elements of a size known at compile time; they are moved in registers.
template <size_t N> struct FixedElement {
    static constexpr size_t size() { return N; }
    static void swap(char *a, char *b) {
        unsigned char x[N], y[N];
        memcpy(x, a, N);
        memcpy(y, b, N);
        memcpy(a, y, N);
        memcpy(b, x, N);
    }
};

// Elements of any size.
struct AnyElement {
    size_t bytes;
    size_t size() const { return bytes; }
    void swap(char *a, char *b) const {
        size_t rest = bytes;
        for (; rest >= 16; rest -= 16, a += 16, b += 16) FixedElement<16>::swap(a, b);
        for (; rest; --rest, ++a, ++b) std::swap(*a, *b);
    }
};

template <class Element, class Compare> void select_sort(Element element, char *base, size_t count, Compare cmp) {
    const size_t size = element.size();
    for (char *end = base + count * size; count > 1; --count, base += size) {
        char *smallest = base;
        for (char *p = base + size; p != end; p += size) smallest = cmp(p, smallest) < 0 ? p : smallest;
        if (smallest != base) element.swap(smallest, base);
    }
}

template <class Element, class Compare>
void sift_down(Element element, char *base, size_t parent, size_t count, Compare cmp) {
    const size_t size = element.size();
    for (size_t child; (child = 2 * parent + 1) < count; parent = child) {
        char *larger = base + child * size;
        if (child + 1 < count && cmp(larger, larger + size) < 0) {
            ++child;
            larger += size;
        }
        char *p = base + parent * size;
        if (cmp(p, larger) >= 0) return;
        element.swap(p, larger);
    }
}

template <class Element, class Compare> void heap_sort(Element element, char *base, size_t count, Compare cmp) {
    for (size_t parent = count / 2; parent-- > 0;) sift_down(element, base, parent, count, cmp);
    while (count > 1) {
        element.swap(base, base + --count * element.size());
        sift_down(element, base, 0, count, cmp);
    }
}

template <class Element, class Compare> void insert_sort(Element element, char *base, size_t count, Compare cmp) {
    const size_t size = element.size();
    char small[256];
    char *copy = size <= sizeof small ? small : static_cast<char *>(malloc(size));
    if (!copy) return;
    for (char *p = base + size; count > 1; --count, p += size) {
        char *place = p;
        while (place != base && cmp(p, place - size) < 0) place -= size;
        if (place == p) continue;
        memcpy(copy, p, size);
        memmove(place + size, place, p - place);
        memcpy(place, copy, size);
    }
    if (copy != small) free(copy);
}

// Moves the median of the first, middle and last element into the last slot and what is not greater into the first.
template <class Element, class Compare>
void median_to_last(Element element, char *first, char *middle, char *last, Compare cmp) {
    const int f = cmp(first, last), m = cmp(middle, last);
    if (f > 0 && m <= 0) {
        element.swap(first, middle);
    } else if ((f < 0 && m < 0) || (f > 0 && m > 0)) {
        if (cmp(first, middle) > 0) element.swap(first, middle);
        element.swap(f > 0 ? first : middle, last);
    }
}

// One side of a partition under way: a block of classified elements, counted from the end of the range that it belongs
// to, and the places of those in it that belong to the other side. All of it is known before anything is moved, so that
// the comparisons depend on no branch that could be mispredicted.
struct PartitionSide {
    static constexpr size_t block = 128;
    char *origin = nullptr;    // place 0
    size_t length = 0;         // elements of the block
    size_t head = 0, tail = 0; // misplaced[head .. tail) still wait for a partner
    uint8_t misplaced[block];

    // Classifies the elements origin, origin + step, ...
    template <class Wrong> void classify(char *from, ptrdiff_t step, size_t count, Wrong wrong) {
        origin = from;
        length = count;
        head = tail = 0;
        for (size_t i = 0; i < count; ++i, from += step) {
            misplaced[tail] = uint8_t(i);
            tail += wrong(from);
        }
    }

    // With nothing left on the other side: moves what is misplaced to the inner end of the block and returns the
    // number of elements before it.
    template <class Element> size_t settle(Element element, ptrdiff_t step) {
        size_t place = length;
        while (head < tail) {
            --place;
            if (misplaced[tail - 1] == place)
                --tail;
            else
                element.swap(origin + misplaced[head++] * step, origin + ptrdiff_t(place) * step);
        }
        return place;
    }
};

// Splits [lo, hi) into the elements for which left() holds and the others, and returns the first of the others. The
// k-th misplaced element from the left changes places with the k-th from the right, as when two pointers run toward
// each other; each element is looked at once.
template <class Element, class Left> char *partition(Element element, char *lo, char *hi, Left left) {
    const ptrdiff_t size = ptrdiff_t(element.size());
    PartitionSide l, r;
    for (size_t rest = size_t(hi - lo) / element.size(); rest;) {
        if (l.head == l.tail) {
            const size_t share = r.head == r.tail ? rest - rest / 2 : rest;
            const size_t count = share < l.block ? share : l.block;
            l.classify(lo, size, count, [&](const char *p) { return !left(p); });
            lo += ptrdiff_t(count) * size;
            rest -= count;
        }
        if (r.head == r.tail && rest) {
            const size_t count = rest < r.block ? rest : r.block;
            r.classify(hi - size, -size, count, left);
            hi -= ptrdiff_t(count) * size;
            rest -= count;
        }
        while (l.head < l.tail && r.head < r.tail)
            element.swap(l.origin + l.misplaced[l.head++] * size, r.origin - r.misplaced[r.head++] * size);
    }
    if (l.head < l.tail) return l.origin + ptrdiff_t(l.settle(element, size)) * size;
    if (r.head < r.tail) return r.origin - (ptrdiff_t(r.settle(element, -size)) - 1) * size;
    return lo;
}

// Introspective quick sort. Of two sides the smaller is sorted first, so that no more ranges wait than a count has
// bits.
template <class Element, class Compare> void quick_sort(Element element, char *base, size_t count, Compare cmp) {
    struct Range {
        char *start, *end;
        int depth;
    };
    const size_t size = element.size();
    constexpr int depth_limit = 64;
    Range pending[64], now{base, base + count * size, 0};
    size_t waiting = 0;
    for (;;) {
        char *const start = now.start, *const end = now.end;
        const int depth = now.depth;
        const size_t n = size_t(end - start) / size;
        char *last = end - size;
        if (n < 9) {
            select_sort(element, start, n, cmp);
        } else {
            median_to_last(element, start, start + n / 2 * size, last, cmp);
            char *cut = partition(element, start, last, [&](const char *p) { return cmp(p, last) < 0; });
            if (cut == start) {
                // The first element is a smallest one: all that equal it are done.
                cut = partition(element, start + size, end, [&](const char *p) { return cmp(start, p) >= 0; });
                now = {cut, end, depth + 1};
                if (depth < depth_limit) continue;
                heap_sort(element, cut, size_t(end - cut) / size, cmp);
            } else if (depth >= depth_limit) {
                heap_sort(element, start, n, cmp);
            } else {
                if (cut != last) element.swap(cut, last);
                Range lower{start, cut, depth}, upper{cut + size, end, depth};
                const bool lower_first = lower.end - lower.start <= upper.end - upper.start;
                now = lower_first ? lower : upper;
                Range &later = lower_first ? upper : lower;
                ++later.depth;
                pending[waiting++] = later;
                continue;
            }
        }
        if (!waiting) return;
        now = pending[--waiting];
    }
}

} // namespace jorm
