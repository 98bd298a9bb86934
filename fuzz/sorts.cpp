// Sorts and searches with comparisons that are honest, contradict themselves or answer at random.
#include "harness.hpp"

#include <algorithm>
#include <vector>

namespace {

struct Context {
    fuzz::ByteReader *r;
    const uint8_t *begin, *end;
    size_t size;
    int manner;
    bool only_inside;
};

int32_t compare(const void *a, const void *b, void *context) {
    const Context &c = *static_cast<Context *>(context);
    const auto inside = [&c](const void *p) {
        const uint8_t *const q = static_cast<const uint8_t *>(p);
        return q >= c.begin && q < c.end && size_t(q - c.begin) % c.size == 0;
    };
    if (c.only_inside) fuzz::check(inside(a) && inside(b), "sort", "compares outside the array");
    if (c.manner == 1) return int8_t(c.r->byte());
    if (c.manner == 2) return 1;
    if (c.manner == 3) return -1;
    return std::memcmp(a, b, c.size);
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static fuzz::Guarded memory;
    fuzz::ByteReader r(data, size);
    static const int sizes[] = {1, 2, 3, 4, 8, 12, 16, 40, 255, 256, 257, 300};
    const auto element = size_t(r.of(sizes));
    const auto count = std::min(size_t(r.in(0, 300)), memory.bytes / element);
    uint8_t *const base = memory.end() - count * element;
    fuzz::Noise noise(r.word());
    const uint32_t keep = r.one_in(2) ? 3 : 0xFF;
    for (uint8_t *p = base; p < memory.end(); ++p) *p = uint8_t(noise() >> 9 & keep);
    using Element = std::vector<uint8_t>;
    const auto elements = [&] {
        std::vector<Element> list;
        for (size_t i = 0; i < count; ++i) list.emplace_back(base + i * element, base + (i + 1) * element);
        return list;
    };
    auto before = elements();
    static int32_t (*const sorts[])(void *, size_t, size_t, jorm_ulcmp, void *) = {UlHeapSort, UlInsertSort,
                                                                                   UlQuickSort, UlSelectSort};
    Context c = {&r, base, memory.end(), element, r.in(0, 3), true};
    fuzz::check(r.of(sorts)(base, count, element, compare, &c) == 0, "sort", "status");
    auto after = elements();
    if (c.manner == 0) fuzz::check(std::is_sorted(after.begin(), after.end()), "sort", "order");
    const Element key(element, uint8_t(r.byte() & keep));
    c.only_inside = false;
    const void *const found = UlBsearch(key.data(), base, count, element, compare, &c);
    if (c.manner == 0)
        fuzz::check((found != nullptr) == std::binary_search(after.begin(), after.end(), key), "search", "found");
    std::sort(before.begin(), before.end());
    std::sort(after.begin(), after.end());
    fuzz::check(before == after, "sort", "elements lost");
    return 0;
}
