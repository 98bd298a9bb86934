#include "arith/dispatch.hpp"
#include "arith/keys.hpp"

namespace jorm {
namespace {

struct Arity {
    int8_t sources, constants;
};
constexpr Arity arity_UNARY = {1, 0}, arity_BINARY = {2, 0}, arity_TERNARY = {3, 0}, arity_CONSTANT = {1, 1},
                arity_CHANNELED = {1, 1}, arity_CONSTANT2 = {2, 1}, arity_CONSTANTS = {1, 2};

} // namespace

#define KEYS(family, list, shape)                                                                                      \
    {arity_##shape.sources, arity_##shape.constants, sizeof keys::family / sizeof(uint32_t), keys::family},
const FamilyKeys family_keys[family_count] = {JORM_FAMILIES(KEYS)};

int find_line(Family family, uint32_t key) {
    const FamilyKeys &f = family_keys[family];
    for (int i = 0; i < f.count; ++i)
        if (f.keys[i] == key) return i;
    return -1;
}

} // namespace jorm
