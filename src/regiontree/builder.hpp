// What tree builders share.
#pragma once

#include "jorm/tree.h"

namespace jorm {

/// Zeroed memory from the builder's storage, which is opened when there is none yet; null without memory.
void *builder_alloc(jorm_stb *builder, size_t bytes, size_t align);

/// The first record of a chain with that tag, or null.
const void *find_interface(const void *chain, uint32_t tag);

} // namespace jorm
