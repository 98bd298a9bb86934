// Rows of weighted sums.
#include "filter/separable_rows.hpp"
#include "kernel/level_words.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Calls f(Count<c>, i) for c elements from i on until all have had their turn, some of them twice: `Many` vectors of
// `Vector` elements at a time, or as many as there are, halved and halved again, or a single element.
template <int C> struct Count {};
template <int Vector, int Many, class F> [[gnu::always_inline]] inline void each_block(int64_t n, F f) {
    constexpr int c = Many > 0 ? Many * Vector : 1;
    if constexpr (Many > 0)
        if (n < c) return each_block<Vector, Many / 2>(n, f);
    for (int64_t i = 0; i < n; i += c) f(Count<c>(), i + c <= n ? i : n - c);
}

// N elements in the type of sums; of two rows their totals, which integers reach without loss.
template <class Sum, int N, class In> [[gnu::always_inline]] inline VectorOf<Sum, N> element(const In *a) {
#ifdef JORM_LEVEL_avx512 // the compiler would go by halves
    if constexpr (same<In, s16> && N == 16) {
        const auto x = VectorOf<s32, N>(_mm512_maskz_cvtepi16_epi32(0xffff, read<__m256i>(a)));
        return converted<Sum, N, s32>(x);
    }
    if constexpr (same<In, s32> && same<Sum, f64> && N == 8) return _mm512_maskz_cvtepi32_pd(0xff, read<__m256i>(a));
#endif
    const auto x = read<VectorOf<In, N>>(a);
    if constexpr (same<In, Sum>)
        return x;
    else if constexpr (same<In, s32>)
        return converted<Sum, N, In>(x);
    else if constexpr (sizeof(In) == 1) // from size to size, or the compiler takes elements one by one
        return converted<Sum, N, s32>(converted<s32, N, s16>(converted<s16, N, In>(x)));
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

#ifdef JORM_LEVEL_avx512
// The same for rows that all begin within a register of the first: every second one comes out of registers that a block
// loads once, for loads across the lines of the cache cost twice.
template <int C> [[gnu::always_inline]] inline void weigh_near(f32 *to, const WeightedRows &rows, int64_t i) {
    constexpr int size = 16, count = C / size;
    using V = VectorOf<f32, size>;
    const f32 *const start = elements<f32>(rows.row[0]) + i, *weight = elements<f32>(rows.weight);
    V near[count + 1], sum[count];
    for (int j = 0; j <= count; ++j) near[j] = read<V>(start + j * size);
    for (V &s : sum) s = -V{};
    const __m512i places = _mm512_setr_epi32(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15);
    const void *const *row = rows.row;
    const auto next = [&] { return elements<f32>(*row++) + i; };
    const auto next_picks = [&] { return _mm512_add_epi32(places, _mm512_set1_epi32(int(next() - start))); };
    const auto next_weight = [&] { return *weight++ - V{}; };
    for (int64_t k = 0; k < rows.pairs; ++k) {
        const auto picks = next_picks();
        const f32 *const b = next();
        const V w = next_weight();
        for (int j = 0; j < count; ++j)
            sum[j] += w * (_mm512_permutex2var_ps(near[j], picks, near[j + 1]) + read<V>(b + j * size));
    }
    for (int64_t k = 0; k < rows.singles; ++k) {
        const f32 *const a = next();
        const V w = next_weight();
        for (int j = 0; j < count; ++j) sum[j] += w * read<V>(a + j * size);
        if (++k == rows.singles) break;
        const auto picks = next_picks();
        const V v = next_weight();
        for (int j = 0; j < count; ++j) sum[j] += v * _mm512_permutex2var_ps(near[j], picks, near[j + 1]);
    }
    __builtin_memcpy(to, sum, sizeof sum);
}
inline bool all_near(const WeightedRows &rows) {
    const void *const last = rows.pairs > 0 ? rows.row[1] : rows.row[rows.singles - 1];
    return elements<f32>(last) - elements<f32>(rows.row[0]) <= 16;
}
#endif

// The row below all others, which no window has read before, lies ahead in memory farther than the processor sees.
template <int Bytes> [[gnu::always_inline]] inline void fetch_ahead(const WeightedRows &rows, int64_t at) {
    const void *const last = rows.pairs > 0 ? rows.row[1] : rows.row[rows.singles - 1];
    for (int b = 0; b < Bytes; b += 64) __builtin_prefetch(elements<u8>(last) + at + 1024 + b);
}

// Vectors of sums in a block.
constexpr int many = 8;

template <class T, class Sum> void down(void *const *to, const WeightedRows *rows, int64_t windows, int64_t n) {
    constexpr int vector = register_bytes / int(sizeof(Sum));
    each_block<vector, many>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            for (int64_t r = 0; r < windows; ++r) {
                if constexpr (C > vector) fetch_ahead<C * sizeof(T)>(rows[r], i * int64_t(sizeof(T)));
                weigh<T, Sum, Sum, vector, C>(elements<Sum>(to[r]) + i, rows[r], i);
            }
        });
}

template <class Out, class Sum> [[gnu::always_inline]] inline Out result_of(Sum x) {
    if constexpr (is_real<Out>)
        return Out(x);
    else if constexpr (same<Sum, f32>)
        return clamp<Out>(round_s32(x)); // sums of single precision stay far from 32 bits
    else
        return nearest<Out>(x);
}
template <class Out, class Sum, int N> [[gnu::always_inline]] inline void store_results(Out *to, const Sum *sums) {
#ifdef __x86_64__
    constexpr int whole = register_bytes / int(sizeof(Out));
    if constexpr (same<Sum, f32> && !is_real<Out> && N % whole == 0) {
        for (int j = 0; j < N; j += whole) store_register(to + j, sums + j);
        return;
    }
#endif
    for (int j = 0; j < N; ++j) to[j] = result_of<Out>(sums[j]);
}

template <class Sum, class Out> void along(void *to, const WeightedRows &rows, int64_t n) {
    constexpr int vector = register_bytes / int(sizeof(Sum));
    Out *const t = elements<Out>(to);
#ifdef JORM_LEVEL_avx512
    const bool near = same<Sum, f32> && all_near(rows);
#endif
    each_block<vector, many>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            Sum sums[C];
#ifdef JORM_LEVEL_avx512
            if constexpr (same<Sum, f32> && C == many * vector)
                if (near) {
                    weigh_near<C>(sums, rows, i);
                    return store_results<Out, Sum, C>(t + i, sums);
                }
#endif
            weigh<Sum, Sum, Sum, vector, C>(sums, rows, i);
            store_results<Out, Sum, C>(t + i, sums);
        });
}

// Bytes under whole weights of 16 bits: exact sums. Two terms at a time, each of them a row or the total of two.
#ifdef __x86_64__
template <int C> [[gnu::always_inline]] inline void weigh_words(f32 *to, const WeightedRows &rows, int64_t i) {
    constexpr int words = register_bytes / 2, count = C / words;
    using V = VectorOf<s16, words>;
    const void *const *row = rows.row;
    const s16 *weight = elements<s16>(rows.weight);
    WeightedWords sum[count];
    const auto single = [&](int r, int j) { return V(words_at(elements<u8>(row[r]) + i + j * words)); };
    const auto total = [&](int r, int j) { return single(r, j) + single(r + 1, j); };
    const auto add = [&](int used, auto first, auto second) __attribute__((always_inline)) {
        const auto both = Register(read<s32>(weight) - VectorOf<s32, words / 2>{});
        for (int j = 0; j < count; ++j) sum[j].add(both, Register(first(j)), Register(second(j)));
        row += used;
        weight += 2;
    };
    const auto nothing = [](int) { return V{}; };
    const auto total0 = [&](int j) { return total(0, j); };
    const auto total2 = [&](int j) { return total(2, j); };
    const auto single0 = [&](int j) { return single(0, j); };
    const auto single1 = [&](int j) { return single(1, j); };
    const auto single2 = [&](int j) { return single(2, j); };
    int64_t pairs = rows.pairs, singles = rows.singles;
    for (; pairs > 1; pairs -= 2) add(4, total0, total2);
    if (pairs > 0 && singles > 0) {
        add(3, total0, single2);
        --singles;
    } else if (pairs > 0)
        add(2, total0, nothing);
    for (; singles > 1; singles -= 2) add(2, single0, single1);
    if (singles > 0) add(1, single0, nothing);
    for (int j = 0; j < count; ++j) sum[j].store(to + j * words);
}
#endif

void down_bytes(void *const *to, const WeightedRows *rows, int64_t windows, int64_t n) {
    each_block<register_bytes / 2, many / 2>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            for (int64_t r = 0; r < windows; ++r) {
                f32 *const t = elements<f32>(to[r]) + i;
#ifdef __x86_64__
                if constexpr (C > 1) {
                    weigh_words<C>(t, rows[r], i);
                    continue;
                }
#endif
                s32 sums[C];
                weigh<u8, s16, s32, register_bytes / 4, C>(sums, rows[r], i);
                for (int j = 0; j < C; ++j) t[j] = f32(sums[j]);
            }
        });
}

} // namespace

#define LINE(T, Sum)                                                                                                   \
    { sizeof(Sum), sizeof(Sum), down<T, Sum>, along<Sum, T>, along<Sum, Sum> }
extern const SeparableRows separable_rows[];
const SeparableRows separable_rows[] = {{sizeof(f32), sizeof(s16), down_bytes, along<f32, u8>, along<f32, f32>},
                                        LINE(u8, f32),
                                        LINE(s16, f32),
                                        LINE(f32, f32),
                                        LINE(u8, f64),
                                        LINE(s16, f64),
                                        LINE(s32, f64)};

} // namespace jorm::JORM_LEVEL
