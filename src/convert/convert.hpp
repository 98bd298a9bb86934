// What the parts of conversion share.
#pragma once
#include "jorm/vrng.h"

namespace jorm {

// A range without extent, which no map can spread.
bool is_degenerate(const vrng &r);

} // namespace jorm
