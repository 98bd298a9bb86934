#include "arith/dispatch.hpp"
#include "arith/keys.hpp"
#include "kernel/level_table.hpp"

namespace jorm {
namespace {

struct Arity {
    uint8_t sources, constants;
};
constexpr Arity arity_UNARY = {1, 0}, arity_BINARY = {2, 0}, arity_TERNARY = {3, 0}, arity_CONSTANT = {1, 1},
                arity_CHANNELED = {1, 1}, arity_CONSTANT2 = {2, 1}, arity_CONSTANTS = {1, 2};

} // namespace

#define TABLE(family, ...) JORM_LEVEL_TABLE(const Rows, rows, ::family);
JORM_FAMILIES(TABLE)

#define FAMILY(family, list, shape, ...)                                                                               \
    constexpr Family family_##family = {.sources = arity_##shape.sources,                                              \
                                        .constants = arity_##shape.constants,                                          \
                                        .keys = keys::family,                                                          \
                                        .index = KeyIndex(keys::family),                                               \
                                        .rows = JORM_AT_LEVELS(family::rows) __VA_OPT__(, ) __VA_ARGS__};
JORM_FAMILIES(FAMILY)

} // namespace jorm
