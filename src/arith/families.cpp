#include "arith/dispatch.hpp"
#include "arith/keys.hpp"

namespace jorm {
namespace {

struct Arity {
    uint8_t sources, constants;
};
constexpr Arity arity_UNARY = {1, 0}, arity_BINARY = {2, 0}, arity_TERNARY = {3, 0}, arity_CONSTANT = {1, 1},
                arity_CHANNELED = {1, 1}, arity_CONSTANT2 = {2, 1}, arity_CONSTANTS = {1, 2};

} // namespace

#define KEYS(family, list, shape)                                                                                      \
    {arity_##shape.sources, arity_##shape.constants, keys::family, KeyIndex(keys::family)},
const FamilyKeys family_keys[family_count] = {JORM_FAMILIES(KEYS)};

} // namespace jorm
