// Sorts of elements of any size, their bounds and their orders; searches.
#include "jorm/sort.h"
#include "support/heap.hpp"
#include "support/picture.hpp"

#include <numeric>

namespace {

struct Forms {
    int32_t (*checked)(void *, size_t, size_t, jorm_ulcmp, void *);
    void (*unchecked)(void *, size_t, size_t, jorm_ulcmp, void *), (*core)(void *, size_t, size_t, jorm_ulcmp, void *);
};
const Forms all_forms[] = {{UlHeapSort, UlHeapSort_nck, __UlHeapSort},
                           {UlInsertSort, UlInsertSort_nck, __UlInsertSort},
                           {UlQuickSort, UlQuickSort_nck, __UlQuickSort},
                           {UlSelectSort, UlSelectSort_nck, __UlSelectSort}};

// The context counts the calls and holds the array, outside of which nothing may be compared.
struct Calls {
    const uint8_t *begin, *end;
    size_t count = 0;
};

int32_t by_first_byte(const void *a, const void *b, void *context) {
    auto *calls = static_cast<Calls *>(context);
    auto *x = static_cast<const uint8_t *>(a), *y = static_cast<const uint8_t *>(b);
    ++calls->count;
    EXPECT_TRUE(x >= calls->begin && x < calls->end && y >= calls->begin && y < calls->end);
    return *x < *y ? INT32_MIN : *x > *y;
}

// Elements in some order: a byte with the key, two with the number, more of their own; as many as there is room for.
// The array lies at an odd address between two zero bytes.
Bytes array_of(const std::vector<int> &keys, const std::vector<int> &order, size_t size) {
    Bytes bytes(order.size() * size + 2);
    for (size_t i = 0; i < order.size(); ++i)
        for (size_t b = 0; b < size; ++b) {
            const int number = order[i];
            bytes[1 + i * size + b] = uint8_t(b == 0   ? keys[size_t(number)]
                                              : b == 2 ? number >> 8
                                                       : number + int(b) - 1);
        }
    return bytes;
}

// Sorts by one of the three forms and returns the number of comparisons.
size_t sort(Bytes &bytes, const Forms &forms, int form, size_t n, size_t size) {
    Calls calls{&bytes[1], &bytes[1] + n * size};
    EXPECT_TRUE(form || forms.checked(&bytes[1], n, size, by_first_byte, &calls) == 0);
    if (form) (form == 1 ? forms.unchecked : forms.core)(&bytes[1], n, size, by_first_byte, &calls);
    return calls.count;
}

TEST(Sort, EveryFormSizeAndLength) {
    Random r(1);
    for (size_t n : {0, 1, 2, 3, 4, 7, 8, 9, 10, 40, 255, 256, 257, 700})
        for (int round = n < 5 ? 0 : 27; round < 30; ++round) {
            std::vector<int> keys(n), numbers(n), order(n);
            for (int &key : keys) key = r.in(0, std::array{0, 2, 255}[size_t(round % 3)]);
            std::iota(numbers.begin(), numbers.end(), 0);
            std::vector<int> stable = numbers;
            const auto smaller = [&](int a, int b) { return keys[size_t(a)] < keys[size_t(b)]; };
            std::stable_sort(stable.begin(), stable.end(), smaller);
            for (const Forms &forms : all_forms) {
                Bytes first = array_of(keys, numbers, 3);
                const size_t calls = sort(first, forms, 0, n, 3);
                for (size_t i = 0; i < n; ++i) order[i] = first[3 * i + 2] | first[3 * i + 3] << 8;
                EXPECT_TRUE(std::is_permutation(order.begin(), order.end(), numbers.begin()));
                EXPECT_TRUE(std::is_sorted(order.begin(), order.end(), smaller));
                EXPECT_TRUE(forms.checked != UlInsertSort || order == stable);
                const bool selects = forms.checked == UlSelectSort || (forms.checked == UlQuickSort && n < 9);
                EXPECT_TRUE(!selects || calls == (n ? n * (n - 1) / 2 : 0));
                EXPECT_TRUE(forms.checked != UlHeapSort || n != 3 || calls <= 3);
                // Neither the size nor the form of the call changes anything.
                for (size_t size : {1, 2, 3, 4, 8, 12, 16, 23, 40, 256, 300})
                    for (int form = 0; form < (n > 3 ? 3 : 2); ++form) {
                        Bytes bytes = array_of(keys, numbers, size);
                        EXPECT_EQ(sort(bytes, forms, form, n, size), calls);
                        EXPECT_TRUE(bytes == array_of(keys, order, size)) << n << " of " << size;
                    }
            }
        }
}

TEST(Sort, RefusesBadArguments) {
    int one = 1;
    for (const Forms &forms : all_forms) {
        for (const auto &[count, size] : {std::pair(size_t(0), size_t(0)), {1, 0}, {0x20000000, 4}, {SIZE_MAX, 4}})
            EXPECT_EQ(-1, forms.checked(&one, count, size, by_first_byte, nullptr));
        EXPECT_EQ(-1, forms.checked(nullptr, 1, 4, by_first_byte, nullptr));
        EXPECT_EQ(-1, forms.checked(&one, 1, 4, nullptr, nullptr));
        EXPECT_EQ(0, forms.checked(nullptr, 0, SIZE_MAX, nullptr, nullptr));
    }
}

// Large elements are inserted through a block of memory; without any the array stays.
TEST(Sort, InsertionWithoutMemory) {
    if (!own_heap) GTEST_SKIP();
    Bytes bytes = array_of({3, 2, 1}, {0, 1, 2}, 300);
    const Bytes before = bytes;
    heap_limit = 0;
    const size_t calls = sort(bytes, all_forms[1], 1, 3, 300);
    heap_limit = SIZE_MAX;
    EXPECT_TRUE(bytes == before) << calls;
}

// An opponent that decides the order while it is asked, so that every pivot is among the smallest left (McIlroy 1999);
// share elements at a time are equal.
struct Opponent {
    std::vector<int> value;
    int frozen, share, candidate;
    size_t count;
};
int32_t oppose(const void *a, const void *b, void *context) {
    auto *o = static_cast<Opponent *>(context);
    int &x = o->value[*static_cast<const int *>(a)], &y = o->value[*static_cast<const int *>(b)];
    ++o->count;
    if (x == INT32_MAX && y == INT32_MAX) (&x == &o->value[o->candidate] ? x : y) = o->frozen++ / o->share;
    if (x == INT32_MAX) o->candidate = int(&x - o->value.data());
    if (y == INT32_MAX) o->candidate = int(&y - o->value.data());
    return (x > y) - (x < y);
}

TEST(Sort, QuickSortStaysWithinItsBound) {
    for (int n : {1000, 30000})
        for (int share : {1, 2, n}) {
            std::vector<int> v(n);
            std::iota(v.begin(), v.end(), 0);
            Opponent opponent{std::vector<int>(n, INT32_MAX), 0, share, 0, 0};
            ASSERT_EQ(0, UlQuickSort(v.data(), n, sizeof(int), oppose, &opponent));
            EXPECT_LT(opponent.count, (130 + 3 * std::log2(n)) * n);
            EXPECT_GT(opponent.count, 60 * n); // it is a hard one
        }
    Bytes equal(10000, 7);
    Calls calls{equal.data(), equal.data() + 10000};
    ASSERT_EQ(0, UlQuickSort(equal.data(), 10000, 1, by_first_byte, &calls));
    EXPECT_LT(calls.count, 30000u);
}

TEST(Search, FindsNeighboursWithinTheBound) {
    const auto compare = [](const void *element, const void *key, void *calls) {
        ++*static_cast<int *>(calls);
        return *static_cast<const int *>(element) - *static_cast<const int *>(key);
    };
    int calls = 0;
    int64_t error = 0;
    for (int n = 1; n < 40; ++n) {
        std::vector<int> v(n);
        for (int i = 0; i < n; ++i) v[i] = 2 * i + 1;
        for (int key = 0; key <= 2 * n; ++key) {
            int *greater = v.data() + key / 2, *equal = key % 2 ? greater : nullptr;
            calls = 0;
            EXPECT_EQ(equal, UlBsearch(&key, v.data(), n, 4, compare, &calls));
            EXPECT_LE(calls, 1 + (n > 1 ? 1 + int(std::log2(n - 1)) : 0));
            EXPECT_EQ(greater, UlBsearchN(&key, v.data(), n, 4, compare, &calls));
            EXPECT_EQ(equal || !key ? equal : greater - 1, UlBsearchP(&key, v.data(), n, 4, compare, &calls));
            EXPECT_EQ(equal, UlBsearch_s(&key, v.data(), n, 4, compare, &calls, &error));
            EXPECT_EQ(equal ? 0 : -1, error);
        }
    }
    int key = calls = 0;
    for (const void *found :
         {UlBsearch(&key, &key, 0, 4, compare, &calls), UlBsearchN(&key, &key, 0, 4, compare, &calls),
          UlBsearchP(&key, &key, 0, 4, compare, &calls), UlBsearch_s(&key, &key, 1, 0, compare, &calls, &error),
          UlBsearch_s(&key, &key, 0x80000000, 1, compare, &calls, nullptr),
          UlBsearch_s(nullptr, &key, 1, 4, compare, &calls, &error),
          UlBsearch_s(nullptr, nullptr, 0, 4, nullptr, nullptr, &error)})
        EXPECT_EQ(nullptr, found);
    EXPECT_EQ(0, calls);
    EXPECT_EQ(-1, error);
}

} // namespace
