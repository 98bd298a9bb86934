// The instruction-set level that a call runs on.
#pragma once

#include <cstdint>

namespace jorm {

enum Level : int { level_base, level_avx2, level_avx512, level_count };

/// The base level when the switch is off or the options forbid vectorised kernels, otherwise the highest one that the
/// processor has. Cheap enough for every call.
Level level(uint64_t options) noexcept;

/// For tests: no call runs above `cap` from now on; level_count lifts the limit.
void limit_level(Level cap) noexcept;

} // namespace jorm
