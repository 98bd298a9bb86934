// A heap that counts its calls and its blocks and can be made to fail; sanitizers and Valgrind put theirs in its place.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>

[[maybe_unused]] static size_t heap_limit = SIZE_MAX; // larger requests fail
[[maybe_unused]] static int heap_calls = 0;
static int64_t heap_blocks = 0;             // obtained and not given back
static int64_t heap_calls_left = INT64_MAX; // requests that still succeed

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" void *__libc_malloc(size_t);
extern "C" void *__libc_calloc(size_t, size_t);
extern "C" void *__libc_realloc(void *, size_t);
extern "C" void __libc_free(void *);
static bool heap_refuses(size_t bytes) {
    ++heap_calls;
    return bytes > heap_limit || heap_calls_left-- <= 0;
}
extern "C" void *malloc(size_t bytes) noexcept {
    void *const p = heap_refuses(bytes) ? nullptr : __libc_malloc(bytes);
    heap_blocks += p != nullptr;
    return p;
}
extern "C" void *calloc(size_t n, size_t bytes) noexcept { // some compilers make it of malloc and memset
    void *const p = heap_refuses(n * bytes) ? nullptr : __libc_calloc(n, bytes);
    heap_blocks += p != nullptr;
    return p;
}
extern "C" void *realloc(void *old, size_t bytes) noexcept {
    void *const p = heap_refuses(bytes) ? nullptr : __libc_realloc(old, bytes);
    heap_blocks += p && !old;
    return p;
}
extern "C" void free(void *p) noexcept {
    heap_blocks -= p != nullptr;
    __libc_free(p);
}
#endif
static const bool own_heap = [] {
    void *volatile p = std::malloc(1);
    std::free(p);
    return heap_calls > 0;
}();
