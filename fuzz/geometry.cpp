// Every function that the geometry headers declare, over random records and point vectors that end at guard pages. Each
// runs twice with different rubbish in its output, and with its output in place of each input: the results are the same
// and inputs stay as they were.
#include "harness.hpp"

#include <algorithm>
#include <tuple>
#include <type_traits>
#include <utility>

namespace {

constexpr int most_points = 60;
constexpr size_t most_bytes = most_points * sizeof(jorm_r2d_pt);
constexpr int rubbish[] = {0xA5, 0x5A};

template <class T, class... List> constexpr bool one_of = (std::is_same_v<T, List> || ...);
template <class T> constexpr bool is_point = one_of<T, jorm_2d_pt, jorm_f2d_pt, jorm_r2d_pt>;
template <class T>
constexpr bool is_single = one_of<T, jorm_f2d_pt, jorm_f2d_rect, jorm_f2d_crect, jorm_f2d_quad, jorm_f2d_ell>;
template <class T> constexpr bool is_whole = one_of<T, jorm_2d_pt, jorm_2d_rect, jorm_2d_crect, jorm_2d_quad>;
template <class T>
using Coordinate = std::conditional_t<is_whole<T>, int32_t, std::conditional_t<is_single<T>, float, double>>;

// A number of a call: in its style of few values, so that points coincide and lie on lines, of common size, of any
// bits, or hostile.
template <class T> T number(fuzz::ByteReader &r, int style) {
    if (style < 2) return T(style ? r.in(-600, 600) : r.in(-2, 2));
    if (style == 2) {
        const uint64_t bits = r.wide();
        T value;
        return std::memcpy(&value, &bits, sizeof value), value;
    }
    if constexpr (std::is_same_v<T, int32_t>) return r.hostile_int();
    return T(std::clamp(r.number(), -1e308, 1e308)); // NaN remains
}

struct Call {
    const char *name;
    fuzz::ByteReader &r;
    int style, n;   // of the points of vectors
    struct Memory { // of an argument
        uint8_t *start;
        size_t size;
        bool output;
        uint8_t input[most_bytes], result[2][most_bytes];
    };
    int used = 0;
    static inline Memory memory[4];

    // Next is the type of the argument that follows: vectors are followed by their count.
    template <class T, class Next, bool has_count> T draw() {
        using Bare = std::remove_pointer_t<T>;
        using Record = std::remove_const_t<Bare>;
        if constexpr (std::is_same_v<T, int32_t>)
            return has_count ? n : number<T>(r, style);
        else if constexpr (!std::is_pointer_v<T>)
            return number<T>(r, style);
        else if constexpr (std::is_pointer_v<Bare>) {
            static Bare list;
            return &list;
        } else {
            constexpr bool vector = has_count && is_point<Record> && std::is_same_v<Next, int32_t>;
            if (vector && r.one_in(16)) return nullptr;
            int count = std::is_same_v<Record, double> ? 4 : 1;
            if (is_point<Record>)
                count = vector                            ? std::max(n, 0)
                        : !std::is_const_v<Bare>          ? std::max(n, 1)
                        : std::strstr(name, "quad__$pts") ? 4
                                                          : 1;
            static fuzz::Guarded guarded[4];
            Memory &m = memory[used];
            m.size = size_t(count) * sizeof(Record);
            m.start = guarded[used++].end() - m.size;
            m.output = !std::is_const_v<Bare>;
            using C = Coordinate<Record>;
            for (size_t i = 0; i < m.size; i += sizeof(C)) {
                const C value = number<C>(r, style);
                std::memcpy(m.input + i, &value, sizeof value);
            }
            return reinterpret_cast<T>(m.start);
        }
    }
};

template <class T> void give_back(T) {}
template <class T> void give_back(T **list) { std::free(*list); }

template <class R, class First, class... A, size_t... i>
void call(const char *name, R (*f)(First, A...), fuzz::ByteReader &r, std::index_sequence<i...>) {
    constexpr bool has_count = int(one_of<First, int32_t>) + (0 + ... + int(one_of<A, int32_t>)) == 1;
    const bool on_first = std::strstr(name, "_$I");
    const int style = r.in(0, 3);
    Call c = {name, r, style, r.one_in(8) ? r.hostile_int() | INT32_MIN : r.in(0, most_points)};
    std::tuple<First, A...> values{c.draw<std::tuple_element_t<i, std::tuple<First, A...>>,
                                          std::tuple_element_t<i, std::tuple<A..., void>>, has_count>()...};
    const auto prepare = [&](int filler) {
        for (Call::Memory *m = c.memory; m < c.memory + c.used; ++m)
            if (m->output && !on_first)
                std::memset(m->start, filler, m->size);
            else
                std::memcpy(m->start, m->input, m->size);
    };
    R answers[2];
    for (int turn = 0; turn < 2; ++turn) {
        prepare(rubbish[turn]);
        answers[turn] = std::apply(f, values);
        for (Call::Memory *m = c.memory; m < c.memory + c.used; ++m) {
            std::memcpy(m->result[turn], m->start, m->size);
            fuzz::check(m->output || std::memcmp(m->start, m->input, m->size) == 0, name, "writes its input");
        }
        (give_back(std::get<i>(values)), ...);
    }
    fuzz::check(std::memcmp(&answers[0], &answers[1], sizeof(R)) == 0, name, "answers differently");
    const auto same_result = [&](const Call::Memory &m, const uint8_t *bytes) {
        for (size_t k = 0; k < m.size; ++k)
            if (bytes[k] != m.result[0][k] && (m.result[0][k] != rubbish[0] || m.result[1][k] != rubbish[1]))
                return false;
        return true;
    };
    for (Call::Memory *m = c.memory; m < c.memory + c.used; ++m)
        fuzz::check(!m->output || same_result(*m, m->result[1]), name, "its output differs");
    if constexpr (std::is_pointer_v<First> && !std::is_const_v<std::remove_pointer_t<First>>) {
        if constexpr (std::is_same_v<R, First>) fuzz::check(answers[0] == std::get<0>(values), name, "returns another");
        const auto input_is_output = [&](auto input) {
            using Same = std::is_same<decltype(input), const std::remove_pointer_t<First> *>;
            if constexpr (Same::value) {
                auto changed = values;
                for (Call::Memory *m = c.memory + 1; m < c.memory + c.used; ++m) {
                    if (m->start != reinterpret_cast<const uint8_t *>(input) || m->size < c.memory->size) continue;
                    prepare(0);
                    std::get<0>(changed) = const_cast<First>(input);
                    std::apply(f, changed);
                    fuzz::check(same_result(*c.memory, m->start), name, "its output as input makes a difference");
                }
            }
        };
        if (!on_first) (input_is_output(std::get<i>(values)), ...);
    }
}

template <class R, class... A> constexpr auto indices_of(R (*)(A...)) { return std::index_sequence_for<A...>(); }
template <auto f> void run(const char *name, fuzz::ByteReader &r) { call(name, f, r, indices_of(f)); }

constexpr struct {
    const char *name;
    void (*run)(const char *, fuzz::ByteReader &);
} table[] = {
#define JORM_FUZZ_CALL(name) {#name, run<name>},
#include "geometry_names.inc"
};

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    fuzz::ByteReader r(data, size);
    const auto &line = r.of(table);
    line.run(line.name, r);
    return 0;
}
