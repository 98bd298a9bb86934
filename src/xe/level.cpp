#include "xe/level.hpp"

#include "jorm/xe.h"

#include <atomic>

int32_t _G_jorm_use_simd = -1;

namespace jorm {
namespace {

constexpr int unknown = -1;
std::atomic<int> best{unknown};

// Asks for every feature that the level's sources are compiled with.
Level detect() {
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (!__builtin_cpu_supports("avx2")) return level_base;
    const bool wide = __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
                      __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl");
    return wide ? level_avx512 : level_avx2;
#else
    return level_base;
#endif
}

} // namespace

Level level(uint64_t options) noexcept {
    if (!jorm_use_simd(options)) return level_base;
    int found = best.load(std::memory_order_relaxed);
    if (found == unknown) {
        found = detect();
        best.store(found, std::memory_order_relaxed);
    }
    return Level(found);
}

void limit_level(Level cap) noexcept {
    const Level highest = detect();
    best.store(cap < highest ? cap : highest, std::memory_order_relaxed);
}

} // namespace jorm

// The switch is a plain variable of the host; reading it atomically keeps first calls of several threads defined.
int32_t jorm_use_simd(uint64_t options) {
    if (options & JORM_OPT_NO_SIMD) return 0;
    const int32_t on = __atomic_load_n(&_G_jorm_use_simd, __ATOMIC_RELAXED);
    return on < 0 ? __jorm_use_simd() : on != 0;
}

int32_t JormXEuseSimd(jorm_xe *, uint64_t options) { return jorm_use_simd(options); }

int32_t __jorm_use_simd(void) {
    __atomic_store_n(&_G_jorm_use_simd, 0, __ATOMIC_RELAXED);
    return 0;
}

const char *jorm_level_str(void) {
    static constexpr const char *names[jorm::level_count] = {"base", "avx2", "avx512"};
    return names[jorm::level(0)];
}

size_t jorm_level1_dcache_size(void) { return 32768; }
size_t jorm_level1_icache_size(void) { return 32768; }
size_t jorm_level2_cache_size(void) { return 2097152; }
