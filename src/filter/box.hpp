// Means of rectangular windows.
#pragma once
#include "filter/window.hpp"

namespace jorm {

int64_t box(WindowCall &c);

} // namespace jorm
