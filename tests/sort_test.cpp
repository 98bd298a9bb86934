#include "jorm/sort.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <vector>

namespace {

struct Forms {
    int32_t (*checked)(void *, size_t, size_t, jorm_ulcmp, void *);
    void (*unchecked)(void *, size_t, size_t, jorm_ulcmp, void *), (*core)(void *, size_t, size_t, jorm_ulcmp, void *);
};
const Forms all_forms[] = {{UlHeapSort, UlHeapSort_nck, __UlHeapSort},
                           {UlInsertSort, UlInsertSort_nck, __UlInsertSort},
                           {UlQuickSort, UlQuickSort_nck, __UlQuickSort},
                           {UlSelectSort, UlSelectSort_nck, __UlSelectSort}};

// Elements are bytes, the first one the key. The context counts the calls and holds the array, outside of which nothing
// may be compared.
struct Calls {
    const unsigned char *begin, *end;
    size_t count = 0;
};

int32_t by_first_byte(const void *a, const void *b, void *context) {
    auto *calls = static_cast<Calls *>(context);
    auto *x = static_cast<const unsigned char *>(a), *y = static_cast<const unsigned char *>(b);
    ++calls->count;
    EXPECT_TRUE(x >= calls->begin && x < calls->end && y >= calls->begin && y < calls->end);
    return *x < *y ? INT32_MIN : *x > *y;
}

// n elements of the given size with given keys, numbered in bytes 1 and 2 where these exist, sorted at an odd address
// between two zero bytes; returns the numbers (the keys of smaller elements) in sorted order.
std::vector<int> order_after(const Forms &forms, int form, const std::vector<int> &keys, size_t size, size_t &count) {
    const size_t n = keys.size();
    std::vector<unsigned char> data(n * size + 2), result;
    for (size_t i = 0; i < n; ++i) {
        unsigned char *e = data.data() + 1 + i * size;
        e[size - 1] = 7;
        if (size > 2) e[1] = i & 255, e[2] = i >> 8;
        e[0] = keys[i];
    }
    result = data;
    void *base = result.data() + 1;
    Calls calls{result.data() + 1, result.data() + 1 + n * size};
    EXPECT_TRUE(form || forms.checked(base, n, size, by_first_byte, &calls) == 0);
    if (form) (form == 1 ? forms.unchecked : forms.core)(base, n, size, by_first_byte, &calls);
    count = calls.count;
    EXPECT_EQ(0, result.front() | result.back());
    std::vector<int> order(n);
    for (size_t i = 0; i < n; ++i) {
        const unsigned char *e = calls.begin + i * size;
        order[i] = size > 2 ? e[1] | e[2] << 8 : e[0];
        EXPECT_TRUE(size < 3 || !memcmp(e, data.data() + 1 + order[i] * size, size));
    }
    return order;
}

TEST(Sort, EveryFormSizeAndLength) {
    std::mt19937 rng(1);
    for (size_t n : {0, 1, 2, 3, 4, 7, 8, 9, 10, 40, 255, 256, 257, 700})
        for (int round = n < 5 ? 0 : 27; round < 30; ++round) {
            const int range = round % 3 == 0 ? 1 : round % 3 == 1 ? 3 : 256;
            std::vector<int> keys(n), stable(n), numbers(n);
            for (int &key : keys) key = rng() % range;
            std::iota(numbers.begin(), numbers.end(), 0);
            stable = numbers;
            std::stable_sort(stable.begin(), stable.end(), [&](int a, int b) { return keys[a] < keys[b]; });
            for (const Forms &forms : all_forms) {
                size_t calls, first_calls;
                const std::vector<int> first = order_after(forms, 0, keys, 3, first_calls);
                std::vector<int> kept = first, sorted_keys;
                for (int i : first) sorted_keys.push_back(keys[i]);
                EXPECT_TRUE(std::is_sorted(sorted_keys.begin(), sorted_keys.end()));
                std::sort(kept.begin(), kept.end());
                EXPECT_EQ(numbers, kept);
                EXPECT_TRUE(forms.checked != UlInsertSort || first == stable);
                const bool selects = forms.checked == UlSelectSort || (forms.checked == UlQuickSort && n < 9);
                EXPECT_TRUE(!selects || first_calls == (n ? n * (n - 1) / 2 : 0));
                EXPECT_TRUE(forms.checked != UlHeapSort || n != 3 || first_calls <= 3);
                // Neither the size nor the form of the call changes anything.
                for (size_t size : {1, 2, 3, 4, 8, 12, 16, 23, 40, 256, 300})
                    for (int form = 0; form < (n > 3 ? 3 : 2); ++form) {
                        EXPECT_EQ(size > 2 ? first : sorted_keys, order_after(forms, form, keys, size, calls));
                        EXPECT_EQ(first_calls, calls);
                    }
            }
        }
}

TEST(Sort, RefusesBadArguments) {
    int one = 1;
    for (const Forms &forms : all_forms) {
        for (size_t count : {0, 1}) EXPECT_EQ(-1, forms.checked(&one, count, 0, by_first_byte, nullptr));
        for (size_t count : {size_t(0x20000000), SIZE_MAX})
            EXPECT_EQ(-1, forms.checked(&one, count, 4, by_first_byte, nullptr));
        EXPECT_EQ(-1, forms.checked(nullptr, 1, 4, by_first_byte, nullptr));
        EXPECT_EQ(-1, forms.checked(&one, 1, 4, nullptr, nullptr));
        EXPECT_EQ(0, forms.checked(nullptr, 0, SIZE_MAX, nullptr, nullptr));
    }
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
    std::vector<unsigned char> equal(10000, 7);
    Calls calls{equal.data(), equal.data() + 10000};
    ASSERT_EQ(0, UlQuickSort(equal.data(), 10000, 1, by_first_byte, &calls));
    EXPECT_LT(calls.count, 30000u);
}

TEST(Sort, NonsenseComparisonsKeepAllElements) {
    std::mt19937 rng(2);
    const auto random = [](const void *, const void *, void *r) { return int((*static_cast<std::mt19937 *>(r))()); };
    const auto less = [](const void *, const void *, void *) { return -1; };
    const auto greater = [](const void *, const void *, void *) { return 1; };
    for (const Forms &forms : all_forms)
        for (jorm_ulcmp cmp : {jorm_ulcmp(random), jorm_ulcmp(less), jorm_ulcmp(greater)}) {
            std::vector<int> v(500), all(500);
            std::iota(all.begin(), all.end(), 0);
            v = all;
            EXPECT_EQ(0, forms.checked(v.data(), v.size(), 4, cmp, &rng));
            EXPECT_TRUE(std::is_permutation(v.begin(), v.end(), all.begin()));
        }
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
    for (auto search : {UlBsearch, UlBsearchN, UlBsearchP})
        EXPECT_EQ(nullptr, search(&key, &key, 0, 4, compare, &calls));
    EXPECT_EQ(nullptr, UlBsearch_s(&key, &key, 1, 0, compare, &calls, &error));
    EXPECT_EQ(nullptr, UlBsearch_s(&key, &key, 0x80000000, 1, compare, &calls, nullptr));
    EXPECT_EQ(nullptr, UlBsearch_s(nullptr, &key, 1, 4, compare, &calls, &error));
    EXPECT_EQ(nullptr, UlBsearch_s(nullptr, nullptr, 0, 4, nullptr, nullptr, &error));
    EXPECT_EQ(0, calls);
    EXPECT_EQ(-1, error);
}

} // namespace
