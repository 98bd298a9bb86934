/* libJorm: sorting and binary search over arrays of any element type.
 *
 * An array is its base address, a count of elements and their size in bytes; elements may lie at any address, aligned
 * or not. A comparison gets the addresses of two elements and the caller's context unchanged; only the sign of its
 * result counts: negative when a orders before b, zero when they are equal, positive when a orders after b. The sorts
 * call it with addresses inside the array only, never with those of a copy. A comparison that contradicts itself
 * leaves the elements in some order; nothing is lost and nothing outside the array is touched.
 */
#ifndef JORM_SORT_H
#define JORM_SORT_H

#include "jorm/types.h"

JORM_BEGIN_DECLS

/* A comparison of two elements. */
typedef int32_t (*jorm_ulcmp)(const void *a, const void *b, void *context);

/* Sorts, ascending and in place. The checked forms return 0, or -1 without touching the array or comparing anything
 * when size is 0, when count exceeds 0x7FFFFFFF / size, or when count is not 0 and base or cmp is null.
 * The _nck forms trust their arguments. */

/* Binary max-heap: O(n log n) comparisons always, no memory, not stable. At most three comparisons for count 3. */
JORM_API int32_t UlHeapSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);
JORM_API void UlHeapSort_nck(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* The only stable sort; O(n^2), close to n comparisons where the array is nearly sorted. Elements of more than 256
 * bytes are moved through one block from malloc; without memory the array stays as it is, and the status is 0 all the
 * same: no other sort needs memory. */
JORM_API int32_t UlInsertSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);
JORM_API void UlInsertSort_nck(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* Introspective quick sort: median of three, ranges of fewer than 9 elements by selection, of equal keys in linear
 * time. A range that is the larger side of 64 splits goes to the heap sort, so that even input made to defeat it takes
 * fewer than (130 + 3 log2 n) n comparisons; a random order takes about 1.2 n log2 n. No heap memory, less than 3 KiB
 * of stack, not stable. */
JORM_API int32_t UlQuickSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);
JORM_API void UlQuickSort_nck(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* n (n - 1) / 2 comparisons and at most n - 1 swaps, whatever the order; the first of equal minima wins; not stable. */
JORM_API int32_t UlSelectSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);
JORM_API void UlSelectSort_nck(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* The sorts themselves, without the short cuts for 2 (heap sort: 3) elements; count must be larger than that. */
JORM_API void __UlHeapSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);
JORM_API void __UlInsertSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);
JORM_API void __UlQuickSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);
JORM_API void __UlSelectSort(void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* Searches in a sorted array. The comparison is called as cmp(element, key, context), at most once plus the halvings
 * of count - 1. Among equal elements any one may be found. An empty array, a null base and a null cmp give null. */

/* An element equal to key, or null. */
JORM_API void *UlBsearch(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* An element equal to key, else the first greater one: the place to insert key, base + count * size at the most. */
JORM_API void *UlBsearchN(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* An element equal to key, else the last smaller one, or null when all are greater. */
JORM_API void *UlBsearchP(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context);

/* UlBsearch with checks: null when size is 0, count exceeds 0x7FFFFFFF / size, or count is not 0 and key, base or cmp
 * is null. Stores 0 through error when an element was found, -1 otherwise; error may be null. */
JORM_API void *UlBsearch_s(const void *key, const void *base, size_t count, size_t size, jorm_ulcmp cmp, void *context,
                           int64_t *error);

JORM_END_DECLS

#endif
