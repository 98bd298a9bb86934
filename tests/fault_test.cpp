// What every entry that takes arrays refuses, in which order, and that it writes nothing then.
#include "../fuzz/entry_calls.hpp"

#include <gtest/gtest.h>
#include <map>

namespace {

using fuzz::World;

struct Fault {
    const char *what;
    char kind; // of descriptors, types, agreement between arrays; E: nothing is left
    void (*make)(jorm_array &a);
};
const Fault faults[] = {
    {"null base", 'd', [](jorm_array &a) { a.base = nullptr; }},
    {"two axes", 'd', [](jorm_array &a) { a.ndims = 2; }},
    {"five axes", 'd', [](jorm_array &a) { a.ndims = 5; }},
    {"channel code 0", 'd', [](jorm_array &a) { a.extent[3] = 16; }},
    {"five channels", 'd', [](jorm_array &a) { a.extent[3] = 12; }},
    {"base between elements", 'd', [](jorm_array &a) { a.base = static_cast<uint8_t *>(a.base) - 1; }},
    {"offset between elements", 'd', [](jorm_array &a) { a.loff -= 1; }},
    {"rows between elements", 'd', [](jorm_array &a) { a.stride[1] -= 1; }},
    {"pixels between elements", 'd', [](jorm_array &a) { a.stride[2] -= 1; }},
    {"channels between elements", 'd', [](jorm_array &a) { a.stride[3] -= 1; }},
    {"no rows", 'E', [](jorm_array &a) { a.extent[1] = 0; }},
    {"less than no pixels", 'E', [](jorm_array &a) { a.extent[2] = uint32_t(-5); }},
    {"type 0", 't', [](jorm_array &a) { a.eltype = 0; }},
    {"type beyond 4 bits", 't', [](jorm_array &a) { a.eltype += 256; }},
    {"type 15", 'T', [](jorm_array &a) { a.eltype = 15; }}, // well formed
    {"two channels", 'a', [](jorm_array &a) { a.extent[3] = 2; }},
    {"two planes", 'a', [](jorm_array &a) { a.ndims = 4, a.extent[0] = 2; }},
};
const jorm_site outside[] = {{{0, 4, 0, 0}, {1, 1, 1, 3}},
                             {{0, INT32_MAX, INT32_MAX, 0}, {1, INT32_MAX, INT32_MAX, 3}},
                             {{0, 0, 0, 0}, {1, -1, 1, 3}}}; // of a second region only the origin counts
const int32_t past[][4] = {{0, 0, 4, 0}, {0, -4, 0, 0}, {0, INT32_MIN, INT32_MAX, 0}};

const std::map<char, int64_t> status_of = {
    {'.', JORM_OK}, {'I', JORM_EINVAL}, {'E', JORM_EEMPTY}, {'N', JORM_ENOTSUP}, {'M', JORM_ENOMEM}};

// Calls of an entry that would be served but for one change.
template <class... A> struct Calls {
    int64_t (*entry)(A...);
    const char *roles;
    std::string name;
    std::vector<uint8_t> choices = {}; // of the world
    static constexpr auto positions = std::index_sequence_for<A...>();

    using Change = std::function<void(World &, std::tuple<A...> &)>;
    int64_t run(const std::string &what, const Change &change) {
        static World::State before, after;
        fuzz::ByteReader reader(choices.data(), choices.size());
        World world(reader, roles);
        std::tuple<A...> arguments{world.draw(static_cast<A *>(nullptr))...};
        for (auto &list : world.out.numbers) std::fill(std::begin(list), std::end(list), 0);
        for (int k = 0; roles[k]; ++k) // room behind, for strides and extents that change
            world.array(k).base = static_cast<uint8_t *>(world.array(k).base) - 1024;
        change(world, arguments);
        world.save(before);
        const int64_t status = std::apply(entry, arguments);
        world.save(after);
        EXPECT_TRUE(status == JORM_OK || world.same(before, after)) << name << " wrote in spite of " << what;
        return status;
    }
    void expect(char status, const std::string &what, const Change &change) {
        EXPECT_EQ(run(what, change), status_of.at(status)) << name << ": " << what;
    }

    // Small arrays of a type, a number of rows and of channels that the entry serves.
    bool find_served() {
        for (const auto &[rows, channels] : {std::pair{4, 3}, {4, 1}, {1, 1}})
            for (const int type : {3, 2}) { // single precision, 16 bits
                const int bytes[] = {type, 0, rows - 1, 2, 0, 0, 7, channels > 1, channels - 1};
                choices.assign(std::begin(bytes), std::end(bytes));
                if (run("nothing", [](World &, auto &) {}) == JORM_OK) return true;
            }
        return false;
    }

    void broken_arrays(const std::string &types) {
        const bool matrices = types.size() == 1; // they have no regions, and their extents agree
        for (int k = 0; roles[k]; ++k)
            for (const Fault &fault : faults) {
                const bool mask = strchr("mM", roles[k]), type = strchr("tT", fault.kind);
                if (fault.kind == 'a' && (k == 0 || roles[0] != 'd' || matrices)) continue; // nothing to disagree with
                if (strstr(fault.what, "between") && (mask || matrices)) continue;
                const std::string what = fault.what + (" in array " + std::to_string(k));
                const char alone = fault.kind == 'E' && !matrices ? 'E' : fault.kind == 'T' && !mask ? types[0] : 'I';
                expect(alone, what, [&](World &w, auto &) { fault.make(w.array(k)); });
                if (matrices || fault.kind == 'E') continue;
                expect(type && !mask ? types[1] : 'I', what + ", region outside", [&](World &w, auto &arguments) {
                    fault.make(w.array(k));
                    first_site(arguments) = outside;
                });
            }
    }
    static const jorm_site *&first_site(std::tuple<A...> &arguments) {
        constexpr bool sites[] = {std::is_same_v<A, const jorm_site *>...};
        constexpr size_t at = size_t(std::find(sites, std::end(sites), true) - sites);
        static const jorm_site *none;
        if constexpr (at < sizeof...(A)) return std::get<at>(arguments);
        return none;
    }

    // Null pointers, regions and start points outside, one by one.
    template <size_t... I> void bad_arguments(const std::string &nulls, std::index_sequence<I...>) {
        size_t pointers = 0, sites = 0;
        const auto each = [&](auto index) {
            constexpr size_t i = index();
            using T = std::tuple_element_t<i, std::tuple<A...>>;
            const std::string what = "argument " + std::to_string(i);
            const auto expect_with = [&](char status, T value) {
                expect(status, what, [=](World &, auto &arguments) { std::get<i>(arguments) = value; });
            };
            if constexpr (std::is_pointer_v<T>) {
                expect_with(pointers < nulls.size() ? nulls[pointers] : '.', nullptr);
                ++pointers;
            }
            if constexpr (std::is_same_v<T, const jorm_site *>)
                for (size_t k = sites++ ? 1 : 0; k < 3; ++k) expect_with('E', &outside[2 - k]);
            if constexpr (std::is_same_v<T, const int32_t *>)
                for (const auto &start : past) expect_with('E', start);
        };
        (each(std::integral_constant<size_t, I>()), ...);
    }
};

TEST(Faults, OfEveryEntry) {
    const char *roles, *nulls, *types;
    int entries = 0;
    const auto check = [&]<class... A>(const std::string &name, int64_t (*entry)(A...)) {
        ++entries;
        Calls<A...> calls = {entry, roles, name};
        ASSERT_TRUE(calls.find_served()) << name;
        calls.broken_arrays(types);
        calls.bad_arguments(nulls, calls.positions);
    };
#define ENTRIES(r, n, t, ...) roles = r, nulls = n, types = t, fuzz::each_entry(check, #__VA_ARGS__, __VA_ARGS__);
#include "../fuzz/entry_table.inc"
    EXPECT_EQ(entries, 93);
}

} // namespace
