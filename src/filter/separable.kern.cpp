// Rows of weighted sums.
#include "filter/separable_rows.hpp"
#include "kernel/level_words.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Calls f(Count<c>, i) for c elements from i on until all have had their turn, some of them twice: `Many` vectors of
// `Vector` elements at a time, else one, else a single element.
template <int C> struct Count {};
template <int Vector, int Many, class F> [[gnu::always_inline]] inline void each_block(int64_t n, F f) {
    const auto blocks_of = [&]<int C>(Count<C> count) __attribute__((always_inline)) {
        for (int64_t i = 0; i < n; i += C) f(count, i + C <= n ? i : n - C);
    };
    if (n >= Many * Vector)
        blocks_of(Count<Many * Vector>());
    else if (n >= Vector)
        blocks_of(Count<Vector>());
    else
        blocks_of(Count<1>());
}

// N elements in the type of sums; of two rows their totals, which integers reach without loss.
template <class Sum, int N, class In> [[gnu::always_inline]] inline VectorOf<Sum, N> element(const In *a) {
    const auto x = read<VectorOf<In, N>>(a);
    if constexpr (same<In, Sum>)
        return x;
    else if constexpr (same<In, s32> || same<Sum, s32>)
        return converted<Sum, N, In>(x);
    else
        return converted<Sum, N, s32>(converted<s32, N, In>(x));
}
template <class Sum, int N, class In> [[gnu::always_inline]] inline VectorOf<Sum, N> total(const In *a, const In *b) {
    if constexpr (sizeof(In) >= 4 || same<Sum, s32>)
        return element<Sum, N>(a) + element<Sum, N>(b);
    else
        return converted<Sum, N, s32>(element<s32, N>(a) + element<s32, N>(b));
}

// C sums from element i on. They gather in registers, so the vectors of a block share each weight.
template <class In, class Weight, class Sum, int Vector, int C>
[[gnu::always_inline]] inline void weigh(Sum *to, const WeightedRows &rows, int64_t i) {
    constexpr int size = C < Vector ? C : Vector, count = C / size;
    using V = VectorOf<Sum, size>;
    const void *const *row = rows.row;
    const Weight *weight = elements<Weight>(rows.weight);
    V sum[count];
    for (V &s : sum) s = -V{}; // -0 adds nothing, not even a sign
    for (int64_t k = 0; k < rows.pairs; ++k, row += 2) {
        const In *const a = elements<In>(row[0]) + i, *const b = elements<In>(row[1]) + i;
        const V w = Sum(*weight++) - V{};
        for (int j = 0; j < count; ++j) sum[j] += w * total<Sum, size>(a + j * size, b + j * size);
    }
    for (int64_t k = 0; k < rows.singles; ++k, ++row) {
        const In *const a = elements<In>(row[0]) + i;
        const V w = Sum(*weight++) - V{};
        for (int j = 0; j < count; ++j) sum[j] += w * element<Sum, size>(a + j * size);
    }
    __builtin_memcpy(to, sum, sizeof sum);
}

template <class Out, class Sum> [[gnu::always_inline]] inline Out result_of(Sum x) {
    if constexpr (is_real<Out>)
        return Out(x);
    else if constexpr (same<Sum, f32>)
        return clamp<Out>(round_s32(x)); // sums of single precision stay far from 32 bits
    else
        return nearest<Out>(x);
}

template <class In, class Sum, class Out> void weigh_row(void *to, const WeightedRows &rows, int64_t n) {
    constexpr int vector = register_bytes / int(sizeof(Sum));
    Out *const t = elements<Out>(to);
    each_block<vector, 8>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            if constexpr (same<Sum, Out>)
                weigh<In, Sum, Sum, vector, C>(t + i, rows, i);
            else {
                Sum sums[C];
                weigh<In, Sum, Sum, vector, C>(sums, rows, i);
#ifdef __x86_64__
                if constexpr (same<Sum, f32> && same<Out, u8> && C % (4 * vector) == 0) {
                for (int j = 0; j < C; j += register_bytes) store_bytes(t + i + j, sums + j);
                return;
            }
#endif
                for (int j = 0; j < C; ++j) t[i + j] = result_of<Out>(sums[j]);
            }
        });
}

// Bytes under whole weights of 16 bits: exact sums.
#ifdef __x86_64__
template <int C> [[gnu::always_inline]] inline void weigh_words(f32 *to, const WeightedRows &rows, int64_t i) {
    constexpr int words = register_bytes / 2, count = C / words;
    const void *const *row = rows.row;
    const s16 *weight = elements<s16>(rows.weight);
    WeightedWords sum[count];
    const auto single = [i](const void *const *r, int j) { return words_at(elements<u8>(r[0]) + i + j * words); };
    const auto total = [&](const void *const *r, int j) {
        return Register(VectorOf<s16, words>(single(r, j)) + VectorOf<s16, words>(single(r + 1, j)));
    };
    const auto add = [&](int64_t used, auto first, auto second) __attribute__((always_inline)) {
        const auto both = Register(read<s32>(weight) - VectorOf<s32, words / 2>{});
        for (int j = 0; j < count; ++j) sum[j].add(both, first(j), second(j));
        row += used;
        weight += 2;
    };
    int64_t pairs = rows.pairs, singles = rows.singles;
    const auto nothing = [](int) { return Register{}; };
    for (; pairs > 1; pairs -= 2)
        add(
            4, [&](int j) { return total(row, j); }, [&](int j) { return total(row + 2, j); });
    if (pairs > 0 && singles > 0)
        add(
            3, [&](int j) { return total(row, j); }, [&](int j) { return single(row + 2, j); }),
            --singles;
    else if (pairs > 0)
        add(
            2, [&](int j) { return total(row, j); }, nothing);
    for (; singles > 1; singles -= 2)
        add(
            2, [&](int j) { return single(row, j); }, [&](int j) { return single(row + 1, j); });
    if (singles > 0)
        add(
            1, [&](int j) { return single(row, j); }, nothing);
    for (int j = 0; j < count; ++j) sum[j].store(to + j * words);
}
#endif

void weigh_bytes(void *to, const WeightedRows &rows, int64_t n) {
    f32 *const t = elements<f32>(to);
    each_block<register_bytes / 2, 4>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
#ifdef __x86_64__
            if constexpr (C > 1) return weigh_words<C>(t + i, rows, i);
#endif
            s32 sums[C];
            weigh<u8, s16, s32, register_bytes / 4, C>(sums, rows, i);
            for (int j = 0; j < C; ++j) t[i + j] = f32(sums[j]);
        });
}

} // namespace

#define LINE(T, Sum)                                                                                                   \
    { sizeof(Sum), sizeof(Sum), weigh_row<T, Sum, Sum>, weigh_row<Sum, Sum, T>, weigh_row<Sum, Sum, Sum> }
extern const SeparableRows separable_rows[];
const SeparableRows separable_rows[] = {
    {sizeof(f32), sizeof(s16), weigh_bytes, weigh_row<f32, f32, u8>, weigh_row<f32, f32, f32>},
    LINE(u8, f32),
    LINE(s16, f32),
    LINE(f32, f32),
    LINE(u8, f64),
    LINE(s16, f64),
    LINE(s32, f64)};

} // namespace jorm::JORM_LEVEL
