#include "filter/box.hpp"
namespace jorm {
int64_t box(WindowCall &) { return JORM_ENOTIMP; }
} // namespace jorm
