// Stack-style storages and the heap functions, standing in for the companion base library. Nothing else of the library
// looks inside: replacing this file's names replaces the storages.
//
// A storage is a stack of heap blocks. Inside a block lie allocations, each behind one header word that links to the
// header below it and carries a bit for "released". Only the topmost allocation can go at once; one below it is marked
// and goes when it becomes the topmost. Emptied blocks wait as spares. When no spare can hold a request, one new block
// at least as large as all spares together replaces them: memory obtained stays within a small multiple of the peak in
// use, and a repeated pattern of requests soon runs without the heap.
#include "jorm/xe.h"

#include <cstdlib>
#include <cstring>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#define JORM_NO_ASAN __attribute__((no_sanitize_address))
#else
#define ASAN_POISON_MEMORY_REGION(from, size) ((void)(from), (void)(size))
#define ASAN_UNPOISON_MEMORY_REGION(from, size) ((void)(from), (void)(size))
#define JORM_NO_ASAN
#endif

namespace {

constexpr size_t word = 8;
constexpr size_t default_align = 16;
constexpr size_t default_block = size_t{64} << 10;
constexpr size_t largest_step = size_t{16} << 20; // blocks stop growing on their own account here
constexpr size_t largest_hint = size_t{1} << 30;
constexpr size_t large_page = size_t{2} << 20;
constexpr size_t largest_request = size_t(PTRDIFF_MAX) >> 17; // no address space holds more; sums cannot overflow

constexpr size_t smaller(size_t a, size_t b) { return a < b ? a : b; }
constexpr size_t larger(size_t a, size_t b) { return a < b ? b : a; }
constexpr size_t round_up(size_t n, size_t align) { return (n + align - 1) & ~(align - 1); }

// The address of the header below (0 at the bottom of a block), bit 0 set once the allocation is released.
struct Header {
    uintptr_t below;
};
static_assert(sizeof(Header) == word);

struct Block {
    Block *below; // the next block in use, or the next spare
    char *top;    // end of the topmost allocation
    char *end;
    Header *last;   // of the topmost allocation
    uint64_t order; // position in the history of blocks put into use, so it grows towards the top of the stack

    char *start() { return reinterpret_cast<char *>(this + 1); }
    size_t capacity() { return size_t(end - start()); }
    bool holds(const void *p) { return p >= start() && p < top; }
    void reset() {
        top = start();
        last = nullptr;
        ASAN_POISON_MEMORY_REGION(top, capacity());
    }
    void push(char *at);
    void pop();
    void *take(size_t bytes, size_t align);
};

struct Storage {
    Block *current; // the block in use that holds the top of the stack
    Block *spares;
    size_t block_size;
    uint64_t order; // of the latest block put into use
    uint64_t on_heap;
    uint64_t unused;
};
static_assert(sizeof(Storage) == JORM_STORAGE_BYTES);

struct State {
    uint64_t order; // of the current block, 0 without one
    uintptr_t top;
    uint64_t unused[2];
};
static_assert(sizeof(State) == JORM_STORAGE_STATE_BYTES);

// Headers are poisoned for the sanitizer like all memory that is not handed out; these functions alone touch them.

JORM_NO_ASAN void Block::push(char *at) { last = new (at) Header{reinterpret_cast<uintptr_t>(last)}; }

JORM_NO_ASAN void Block::pop() {
    char *const at = reinterpret_cast<char *>(last);
    last = reinterpret_cast<Header *>(last->below & ~uintptr_t{1});
    ASAN_POISON_MEMORY_REGION(at, size_t(top - at));
    top = at;
}

JORM_NO_ASAN void mark_released(Header *header) { header->below |= 1; }
JORM_NO_ASAN bool is_released(const Header *header) { return header->below & 1; }

void *Block::take(size_t bytes, size_t align) {
    const uintptr_t from = reinterpret_cast<uintptr_t>(top);
    const uintptr_t at = round_up(from + word, align);
    const uintptr_t limit = reinterpret_cast<uintptr_t>(end);
    if (at > limit || round_up(bytes, word) > limit - at) return nullptr;
    if (at - word != from) { // the gap becomes a released allocation, so that popping finds its way back to `from`
        push(top);
        mark_released(last);
    }
    char *const p = top + (at - from);
    push(p - word);
    top = p + round_up(bytes, word);
    ASAN_UNPOISON_MEMORY_REGION(p, bytes);
    return p;
}

void put_into_use(Storage *s, Block *block) {
    block->below = s->current;
    block->order = ++s->order;
    block->reset();
    s->current = block;
}

void drop_current(Storage *s) {
    Block *const block = s->current;
    s->current = block->below;
    block->reset();
    block->below = s->spares;
    s->spares = block;
}

// Removes released allocations from the top, and blocks that hold nothing any more.
void settle(Storage *s) {
    while (Block *block = s->current) {
        while (block->last && is_released(block->last)) block->pop();
        if (block->last) return;
        drop_current(s);
    }
}

size_t total_capacity(Block *chain) {
    size_t total = 0;
    for (; chain; chain = chain->below) total += chain->capacity();
    return total;
}

void free_chain(Block *&chain) {
    while (Block *block = chain) {
        chain = block->below;
        std::free(block);
    }
}

// Floods of large pictures read all over their block: with small pages they would mostly wait for translations of
// addresses.
void ask_for_large_pages([[maybe_unused]] void *memory, [[maybe_unused]] size_t size) {
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    if (size < 8 * large_page) return;
    char *const from = static_cast<char *>(memory);
    const size_t lead = -reinterpret_cast<uintptr_t>(from) & (large_page - 1);
    madvise(from + lead, (size - lead) & ~(large_page - 1), MADV_HUGEPAGE); // no harm when it is refused
#endif
}

Block *heap_block(size_t capacity) {
    void *const memory = std::malloc(sizeof(Block) + capacity);
    if (!memory) return nullptr;
    ask_for_large_pages(memory, sizeof(Block) + capacity);
    Block *const block = new (memory) Block{};
    block->end = block->start() + capacity;
    return block;
}

// Puts a block of at least `need` bytes on top: the first spare that is large enough, else a new one.
bool add_block(Storage *s, size_t need) {
    for (Block **link = &s->spares; *link; link = &(*link)->below) {
        Block *const block = *link;
        if (block->capacity() < need) continue;
        *link = block->below;
        put_into_use(s, block);
        return true;
    }
    const size_t step = larger(s->block_size, smaller(total_capacity(s->current), largest_step));
    const size_t wanted = larger(larger(need, step), total_capacity(s->spares));
    Block *block = heap_block(round_up(wanted, word));
    if (!block && wanted > need) block = heap_block(need);
    if (!block) return false;
    free_chain(s->spares);
    put_into_use(s, block);
    return true;
}

bool misaligned(const void *p) { return reinterpret_cast<uintptr_t>(p) % word != 0; }

Storage *storage(void *handle) { return static_cast<Storage *>(handle); }

} // namespace

void *UlSMEMSTGopen(void *mem, size_t block, uint32_t) {
    if (misaligned(mem)) return nullptr;
    const bool on_heap = !mem;
    if (on_heap) mem = std::malloc(sizeof(Storage));
    if (!mem) return nullptr;
    return new (mem) Storage{nullptr, nullptr, block ? smaller(block, largest_hint) : default_block, 0, on_heap, 0};
}

void *UlSMEMSTGaalloc(void *stack, size_t bytes, size_t align, uint32_t) {
    Storage *const s = storage(stack);
    if (!s || (align & (align - 1)) || bytes > largest_request || align > largest_request) return nullptr;
    align = align ? larger(align, word) : default_align;
    if (s->current) {
        if (void *const p = s->current->take(bytes, align)) return p;
    }
    if (!add_block(s, word + align + round_up(bytes, word))) return nullptr;
    return s->current->take(bytes, align);
}

void UlSMEMSTGfree(void *stack, void *p) {
    Storage *const s = storage(stack);
    if (!s || !p || misaligned(p)) return;
    Header *const header = static_cast<Header *>(p) - 1;
    for (Block *block = s->current; block; block = block->below) {
        if (!block->holds(header)) continue;
        mark_released(header);
        settle(s);
        return;
    }
}

void UlSMEMSTGgetstate(void *state, const void *stack) {
    if (!state) return;
    const Block *const block = stack ? static_cast<const Storage *>(stack)->current : nullptr;
    const State mark{block ? block->order : 0, block ? reinterpret_cast<uintptr_t>(block->top) : 0, {}};
    std::memcpy(state, &mark, sizeof mark);
}

void UlSMEMSTGsetstate(void *stack, const void *state) {
    Storage *const s = storage(stack);
    if (!s || !state) return;
    State mark;
    std::memcpy(&mark, state, sizeof mark);
    while (s->current && s->current->order > mark.order) drop_current(s);
    if (Block *const block = s->current; block && block->order == mark.order) {
        while (block->last && reinterpret_cast<uintptr_t>(block->last) >= mark.top) block->pop();
    }
    settle(s);
}

void UlSMEMSTGclear(void *stack) {
    Storage *const s = storage(stack);
    while (s && s->current) drop_current(s);
}

void UlMEMSTGdestroy(void *handle) {
    Storage *const s = storage(handle);
    if (!s) return;
    free_chain(s->current);
    free_chain(s->spares);
    if (s->on_heap) std::free(s);
}

void UlMEMSTGclose(void *handle) { UlMEMSTGdestroy(handle); }

void *_UlMcalloc(size_t n, size_t size) { return std::calloc(n, size); }

void *_UlMrealloc(void *p, size_t size) { return std::realloc(p, size); }

void _UlMfree(void *p) { std::free(p); }

void UlMfree(void *p) { std::free(p); }
