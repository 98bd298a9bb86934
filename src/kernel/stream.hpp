// How large results leave at a level.
#pragma once
#include "kernel/level_table.hpp"
#include "kernel/row.hpp"

namespace jorm {

// A copy of 0 bytes ends a series: what was streamed is then visible to other processors.
JORM_LEVEL_TABLE(const StreamCopy, stream_copy);

inline StreamCopy stream_at(Level which) { return JORM_OF_LEVEL(stream_copy, which)[0]; }

} // namespace jorm
