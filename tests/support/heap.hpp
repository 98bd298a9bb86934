// A heap that counts its calls and can be made to fail; the sanitizers have allocators of their own.
#pragma once
#include <cstddef>
#include <cstdint>
#include <cstdlib>

static size_t heap_limit = SIZE_MAX; // larger requests fail
static int heap_calls = 0;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool own_heap = false;
#else
constexpr bool own_heap = true;
extern "C" void *__libc_malloc(size_t);
extern "C" void *malloc(size_t bytes) noexcept {
    ++heap_calls;
    return bytes > heap_limit ? nullptr : __libc_malloc(bytes);
}
#endif
