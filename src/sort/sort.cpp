#include "jorm/sort.h"
#include "sort/sort.hpp"

namespace jorm {
namespace {

// Calls run with the element type that moves elements of this size fastest.
template <class Run> void with_element(size_t size, Run run) {
    switch (size) {
    case 1:
        return run(FixedElement<1>{});
    case 2:
        return run(FixedElement<2>{});
    case 4:
        return run(FixedElement<4>{});
    case 8:
        return run(FixedElement<8>{});
    case 16:
        return run(FixedElement<16>{});
    default:
        return run(AnyElement{size});
    }
}

void heap_sort3(void *base, size_t size, jorm_ulcmp cmp, void *context) {
    const AnyElement element{size};
    char *e0 = static_cast<char *>(base), *e1 = e0 + size, *e2 = e1 + size;
    const bool low = cmp(e0, e1, context) > 0, high = cmp(e1, e2, context) > 0;
    if (low && high) {
        element.swap(e0, e2);
    } else if (low) { // e1 is the smallest
        const bool far = cmp(e0, e2, context) > 0;
        element.swap(e0, e1);
        if (far) element.swap(e1, e2);
    } else if (high) { // e1 is the largest
        const bool far = cmp(e0, e2, context) > 0;
        element.swap(e1, e2);
        if (far) element.swap(e0, e1);
    }
}

// Sorts what is too short for the algorithms and tells whether that was all.
template <size_t Shortest> bool sort_short(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {
    if (count >= Shortest) return false;
    if (count == 2) {
        char *e0 = static_cast<char *>(base), *e1 = e0 + size;
        if (cmp(e0, e1, context) > 0) AnyElement{size}.swap(e0, e1);
    } else if (count == 3) {
        heap_sort3(base, size, cmp, context);
    }
    return true;
}

bool well_formed(const void *base, size_t count, size_t size, jorm_ulcmp cmp) {
    return size && count <= 0x7FFFFFFF / size && (!count || (base && cmp));
}

// Where a binary search ended: at an equal element, or at the first greater one.
struct Found {
    size_t index;
    bool equal;
};

// The first element is looked at before the loop; count must not be 0.
Found search(const void *key, const char *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {
    int32_t order = cmp(base, key, context);
    if (order >= 0) return {0, order == 0};
    size_t lo = 1, hi = count - 1;
    while (lo <= hi) {
        const size_t mid = lo + (hi - lo) / 2;
        order = cmp(base + mid * size, key, context);
        if (order == 0) return {mid, true};
        if (order < 0)
            lo = mid + 1;
        else
            hi = mid - 1;
    }
    return {lo, false};
}

char *element_at(const void *base, size_t index, size_t size) {
    return const_cast<char *>(static_cast<const char *>(base)) + index * size;
}

} // namespace
} // namespace jorm

using namespace jorm;

#define JORM_SORT(checked, unchecked, core, algorithm, shortest)                                                       \
    void core(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {                                  \
        with_element(size, [=](auto element) {                                                                         \
            algorithm(element, static_cast<char *>(base), count,                                                       \
                      [=](const char *a, const char *b) { return cmp(a, b, context); });                               \
        });                                                                                                            \
    }                                                                                                                  \
    void unchecked(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {                             \
        if (!sort_short<shortest>(base, count, size, cmp, context)) core(base, count, size, cmp, context);             \
    }                                                                                                                  \
    int32_t checked(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {                            \
        if (!well_formed(base, count, size, cmp)) return -1;                                                           \
        unchecked(base, count, size, cmp, context);                                                                    \
        return 0;                                                                                                      \
    }

JORM_SORT(UlHeapSort, UlHeapSort_nck, __UlHeapSort, heap_sort, 4)
JORM_SORT(UlInsertSort, UlInsertSort_nck, __UlInsertSort, insert_sort, 3)
JORM_SORT(UlQuickSort, UlQuickSort_nck, __UlQuickSort, quick_sort, 3)
JORM_SORT(UlSelectSort, UlSelectSort_nck, __UlSelectSort, select_sort, 3)

#undef JORM_SORT

void *UlBsearch(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {
    if (!count || !base || !cmp) return nullptr;
    const Found found = search(key, static_cast<const char *>(base), count, size, cmp, context);
    return found.equal ? element_at(base, found.index, size) : nullptr;
}

void *UlBsearchN(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {
    if (!count || !base || !cmp) return nullptr;
    const Found found = search(key, static_cast<const char *>(base), count, size, cmp, context);
    return element_at(base, found.index, size);
}

void *UlBsearchP(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context) {
    if (!count || !base || !cmp) return nullptr;
    const Found found = search(key, static_cast<const char *>(base), count, size, cmp, context);
    if (found.equal) return element_at(base, found.index, size);
    return found.index ? element_at(base, found.index - 1, size) : nullptr;
}

void *UlBsearch_s(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context,
                  int64_t *error) {
    void *found = nullptr;
    if (well_formed(base, count, size, cmp) && (!count || key)) found = UlBsearch(key, base, count, size, cmp, context);
    if (error) *error = found ? 0 : -1;
    return found;
}
