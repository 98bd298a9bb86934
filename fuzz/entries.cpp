// Every entry that takes arrays but the floods (floods.cpp).
#include "entry_calls.hpp"

static const auto table = [] {
    std::vector<std::function<void(fuzz::ByteReader &)>> list;
    const char *roles;
    const auto add = [&](const std::string &name, auto entry) {
        list.push_back([=](fuzz::ByteReader &r) { fuzz::call(name.c_str(), entry, roles, r); });
    };
#define ENTRIES(its_roles, nulls, types, ...) roles = its_roles, fuzz::each_entry(add, #__VA_ARGS__, __VA_ARGS__);
#include "entry_table.inc"
    return list;
}();

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::ByteReader r(data, size);
    table[r.byte() % table.size()](r);
    return 0;
}
