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

// Sums of vectors of elements from element i on. They gather in registers, so the vectors share each weight.
template <class In, class Weight, class Sum, class V, int Count>
[[gnu::always_inline]] inline void weigh(V (&sum)[Count], const WeightedRows &rows, int64_t i) {
    constexpr int size = int(sizeof(V)) / int(sizeof(Sum));
    const void *const *row = rows.row;
    const Weight *weight = elements<Weight>(rows.weight);
    for (V &s : sum) s = -V{}; // -0 adds nothing, not even a sign
    for (int64_t k = 0; k < rows.pairs; ++k, row += 2) {
        const In *const a = elements<In>(row[0]) + i, *const b = elements<In>(row[1]) + i;
        const V w = Sum(*weight++) - V{};
        for (int j = 0; j < Count; ++j) sum[j] += w * total<Sum, size>(a + j * size, b + j * size);
    }
    for (int64_t k = 0; k < rows.singles; ++k, ++row) {
        const In *const a = elements<In>(row[0]) + i;
        const V w = Sum(*weight++) - V{};
        for (int j = 0; j < Count; ++j) sum[j] += w * element<Sum, size>(a + j * size);
    }
}

#ifdef JORM_LEVEL_avx512
// The same for rows that all begin within a register of the first: every second one comes out of registers that a block
// loads once, for loads across the lines of the cache cost twice.
template <int Count>
[[gnu::always_inline]] inline void weigh_near(Numbers (&sum)[Count], const WeightedRows &rows, int64_t i) {
    constexpr int size = 16, count = Count;
    using V = Numbers;
    const f32 *const start = elements<f32>(rows.row[0]) + i, *weight = elements<f32>(rows.weight);
    V near[count + 1];
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

constexpr int lanes = register_bytes / 4;

// Vectors of sums in a block.
constexpr int many = 8;

template <class T, class Sum> void down(void *const *to, const WeightedRows *rows, int64_t windows, int64_t n) {
    constexpr int vector = register_bytes / int(sizeof(Sum));
    each_block<vector, many>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            constexpr int size = C < vector ? C : vector;
            for (int64_t r = 0; r < windows; ++r) {
                if constexpr (C > vector) fetch_ahead<C * sizeof(T)>(rows[r], i * int64_t(sizeof(T)));
                VectorOf<Sum, size> sums[C / size];
                weigh<T, Sum, Sum>(sums, rows[r], i);
                __builtin_memcpy(elements<Sum>(to[r]) + i, sums, sizeof sums);
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
template <class Out, class Sum, class V, int Count>
[[gnu::always_inline]] inline void store_results(Out *to, const V (&sums)[Count]) {
    if constexpr (same<Out, Sum>) {
        for (int j = 0; j < Count; ++j)
            __builtin_memcpy(to + j * (int(sizeof(V)) / int(sizeof(Out))), &sums[j], sizeof(V));
        return;
    }
#ifdef __x86_64__
    constexpr int vectors = int(sizeof(Sum)) / int(sizeof(Out));
    if constexpr (same<Sum, f32> && !is_real<Out> && sizeof(V) == register_bytes && Count % vectors == 0) {
        for (int j = 0; j < Count; j += vectors) store_register(to + j * (int(sizeof(V)) / int(sizeof(Sum))), sums + j);
        return;
    }
#endif
    constexpr int count = Count * int(sizeof(V)) / int(sizeof(Sum));
    Sum all[count];
    __builtin_memcpy(all, sums, sizeof sums);
    for (int j = 0; j < count; ++j) to[j] = result_of<Out>(all[j]);
}

template <class Sum, class Out> void along(void *to, const WeightedRows &rows, int64_t n) {
    constexpr int vector = register_bytes / int(sizeof(Sum));
    Out *const t = elements<Out>(to);
#ifdef JORM_LEVEL_avx512
    const bool near = same<Sum, f32> && all_near(rows);
#endif
    each_block<vector, many>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            constexpr int size = C < vector ? C : vector;
            VectorOf<Sum, size> sums[C / size];
#ifdef JORM_LEVEL_avx512
            if constexpr (same<Sum, f32> && C == many * vector)
                if (near) {
                    weigh_near(sums, rows, i);
                    return store_results<Out, Sum>(t + i, sums);
                }
#endif
            weigh<Sum, Sum, Sum>(sums, rows, i);
            store_results<Out, Sum>(t + i, sums);
        });
}

// Bytes under whole weights of 16 bits: exact sums. Two terms at a time, each of them a row or the total of two.
// words(row, j): register j of the words of a row.
#ifdef __x86_64__
template <bool InOrder, int Count, class Words>
[[gnu::always_inline]] inline void weigh_words(Numbers (&sums)[Count], const WeightedRows &rows, Words words) {
    constexpr int count = Count / 2;
    WeightedWords sum[count];
    using V = VectorOf<s16, register_bytes / 2>;
    const void *const *row = rows.row;
    const s16 *weight = elements<s16>(rows.weight);
    const auto single = [&](int r, int j) { return V(words(elements<u8>(row[r]), j)); };
    const auto total = [&](int r, int j) { return single(r, j) + single(r + 1, j); };
    const auto add = [&](int used, auto first, auto second) __attribute__((always_inline)) {
        const auto both = Register(read<s32>(weight) - VectorOf<s32, register_bytes / 4>{});
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
    for (int j = 0; j < count; ++j)
        if constexpr (InOrder)
            sum[j].get_in_order(sums[2 * j], sums[2 * j + 1]);
        else
            sum[j].get(sums[2 * j], sums[2 * j + 1]);
}
#endif

void down_bytes(void *const *to, const WeightedRows *rows, int64_t windows, int64_t n) {
    each_block<register_bytes / 2, many / 2>(
        n, [&]<int C>(Count<C>, int64_t i) __attribute__((always_inline)) {
            for (int64_t r = 0; r < windows; ++r) {
                f32 *const t = elements<f32>(to[r]) + i;
#ifdef __x86_64__
                if constexpr (C > 1) {
                    constexpr int words = register_bytes / 2;
                    Numbers sums[C / lanes];
                    weigh_words<true>(
                        sums, rows[r], [i](const u8 *row, int j) __attribute__((always_inline)) {
                            return words_at(row + i + j * words);
                        });
                    __builtin_memcpy(t, sums, sizeof sums);
                    continue;
                }
#endif
                constexpr int size = C < register_bytes / 4 ? C : register_bytes / 4;
                VectorOf<s32, size> sums[C / size];
                weigh<u8, s16, s32>(sums, rows[r], i);
                for (int j = 0; j < C / size; ++j) {
                    const auto x = converted<f32, size, s32>(sums[j]);
                    __builtin_memcpy(t + j * size, &x, sizeof x);
                }
            }
        });
}

// ---- Windows of few columns: sums of columns stay in registers ----

// Blocks of four registers of sums, the columns in order.
template <class T> struct InOrder {
    [[gnu::always_inline]] static void columns(Numbers (&sums)[4], const WeightedRows &rows, int64_t i) {
        if constexpr (sizeof(T) == sizeof(f32)) fetch_ahead<4 * register_bytes>(rows, i * int64_t(sizeof(T)));
        weigh<T, f32, f32>(sums, rows, i);
    }
    // The register before the first one, and the one after the last.
    static Numbers before(Numbers last_before, Numbers) { return last_before; }
    static Numbers after(Numbers, Numbers first_after) { return first_after; }
    template <int N> [[gnu::always_inline]] static Numbers from(Numbers a, Numbers b) {
        return bytes_from<4 * N>(a, b);
    }
    static constexpr int most = lanes;
    [[gnu::always_inline]] static void store(T *to, const Numbers (&sums)[4]) { store_results<T, f32>(to, sums); }
};

#ifdef __x86_64__
// Of bytes under whole weights. The 128 bits L of register j are columns 16 L + 4 j to 16 L + 4 j + 3, as unpacking
// makes them and packing takes them.
struct ByQuarters {
    [[gnu::always_inline]] static void columns(Numbers (&sums)[4], const WeightedRows &rows, int64_t i) {
        weigh_words<false>(
            sums, rows, [i](const u8 *row, int j) __attribute__((always_inline)) {
                const auto bytes = read<Register>(row + i);
                return j == 0 ? JORM_OF_REGISTER(unpacklo_epi8)(bytes, Register{})
                              : JORM_OF_REGISTER(unpackhi_epi8)(bytes, Register{});
            });
    }
    [[gnu::always_inline]] static Numbers before(Numbers last_before, Numbers last) {
        return bytes_from<register_bytes - 16>(last_before, last);
    }
    [[gnu::always_inline]] static Numbers after(Numbers first, Numbers first_after) {
        return bytes_from<16>(first, first_after);
    }
    template <int N> [[gnu::always_inline]] static Numbers from(Numbers a, Numbers b) {
#if defined(JORM_LEVEL_avx512)
        return Numbers(_mm512_maskz_alignr_epi8(~__mmask64(0), __m512i(b), __m512i(a), 4 * N));
#elif defined(JORM_LEVEL_avx2)
        return Numbers(_mm256_alignr_epi8(__m256i(b), __m256i(a), 4 * N));
#else
        return bytes_from<4 * N>(a, b);
#endif
    }
    static constexpr int most = 4;
    [[gnu::always_inline]] static void store(u8 *to, const Numbers (&sums)[4]) {
        const Register bytes =
            JORM_OF_REGISTER(packus_epi16)(rounded_words(sums[0], sums[1]), rounded_words(sums[2], sums[3]));
        __builtin_memcpy(to, &bytes, sizeof bytes);
    }
};
#endif

// Sums of windows of Width columns about those of `here`.
template <class Order, int Width, bool Mirrored> struct Across {
    static constexpr int reach = Width / 2, weights = Mirrored ? reach + 1 : Width;
    Numbers weight[weights];

    template <int K> [[gnu::always_inline]] static Numbers column(Numbers before, Numbers here, Numbers after) {
        if constexpr (K < reach)
            return Order::template from<Order::most + K - reach>(before, here);
        else if constexpr (K == reach)
            return here;
        else
            return Order::template from<K - reach>(here, after);
    }
    template <int K = 0>
    [[gnu::always_inline]] Numbers sum(Numbers before, Numbers here, Numbers after, Numbers so_far = -Numbers{}) const {
        if constexpr (K == weights)
            return so_far;
        else {
            Numbers x = column<K>(before, here, after);
            if constexpr (Mirrored && K < reach) x += column<Width - 1 - K>(before, here, after);
            return sum<K + 1>(before, here, after, so_far + weight[K] * x);
        }
    }
};

template <class T, class Order, int Width, bool Mirrored>
void small_windows_of(void *to, const WeightedRows &rows, const WeightedRows &along, int64_t n) {
    constexpr int block = 4 * lanes;
    T *const t = elements<T>(to);
    const f32 *const weight = elements<f32>(along.weight);
    Across<Order, Width, Mirrored> across;
    for (int k = 0; k < across.weights; ++k) across.weight[k] = weight[k] - Numbers{};
    const auto store = [&](int64_t i, Numbers last_before, const Numbers(&s)[4], Numbers first_after)
        __attribute__((always_inline)) {
        const Numbers before = Order::before(last_before, s[3]), after = Order::after(s[0], first_after);
        const Numbers sums[] = {across.sum(before, s[0], s[1]), across.sum(s[0], s[1], s[2]),
                                across.sum(s[1], s[2], s[3]), across.sum(s[2], s[3], after)};
        Order::store(t + i, sums);
    };

    Numbers here[4], next[4];
    Order::columns(here, rows, 0);
    Numbers before = here[3];
    int64_t i = 0;
    for (; i + 2 * block <= n; i += block) {
        Order::columns(next, rows, i + block);
        store(i, before, here, next[0]);
        before = here[3];
        for (int j = 0; j < 4; ++j) here[j] = next[j];
    }
    if (i + block < n) { // the rest, some of it once more
        i = n - block;
        Order::columns(here, rows, i - 2 * block);
        before = here[3];
        Order::columns(here, rows, i - block);
        Order::columns(next, rows, i);
        store(i - block, before, here, next[0]);
        before = here[3];
        for (int j = 0; j < 4; ++j) here[j] = next[j];
    }
    store(i, before, here, here[0]);
}

template <class T, class Order>
void small_windows(void *to, const WeightedRows &down, const WeightedRows &along, int64_t n) {
    const bool mirrored = along.pairs > 0;
    switch (2 * along.pairs + along.singles) {
    case 3:
        return mirrored ? small_windows_of<T, Order, 3, true>(to, down, along, n)
                        : small_windows_of<T, Order, 3, false>(to, down, along, n);
    case 5:
        return mirrored ? small_windows_of<T, Order, 5, true>(to, down, along, n)
                        : small_windows_of<T, Order, 5, false>(to, down, along, n);
    default:
        return mirrored ? small_windows_of<T, Order, 7, true>(to, down, along, n)
                        : small_windows_of<T, Order, 7, false>(to, down, along, n);
    }
}

// Bytes whose weights no scale makes whole are too rare for rows of their own where there are scaled ones.
#ifdef __x86_64__
constexpr auto small_scaled_bytes = small_windows<u8, ByQuarters>,
               blur_scaled_bytes = small_windows_of<u8, ByQuarters, 5, true>;
constexpr auto small_bytes = nullptr, blur_bytes = nullptr;
#else
constexpr auto small_scaled_bytes = nullptr, blur_scaled_bytes = nullptr;
constexpr auto small_bytes = small_windows<u8, InOrder<u8>>, blur_bytes = small_windows_of<u8, InOrder<u8>, 5, true>;
#endif

} // namespace

#define LINE(T, Sum, small)                                                                                            \
    { sizeof(Sum), sizeof(Sum), down<T, Sum>, along<Sum, T>, along<Sum, Sum>, small, 12 * lanes }
#define SCALED_LINE(small)                                                                                             \
    { sizeof(f32), sizeof(s16), down_bytes, along<f32, u8>, along<f32, f32>, small, 12 * lanes }
extern const SeparableRows separable_rows[], blur_rows[];
const SeparableRows separable_rows[] = {SCALED_LINE(small_scaled_bytes),
                                        LINE(u8, f32, small_bytes),
                                        LINE(f32, f32, (small_windows<f32, InOrder<f32>>)),
                                        LINE(s16, f32, (small_windows<s16, InOrder<s16>>)),
                                        LINE(u8, f64, nullptr),
                                        LINE(s16, f64, nullptr),
                                        LINE(s32, f64, nullptr)};
const SeparableRows blur_rows[] = {SCALED_LINE(blur_scaled_bytes), LINE(u8, f32, blur_bytes),
                                   LINE(f32, f32, (small_windows_of<f32, InOrder<f32>, 5, true>))};

} // namespace jorm::JORM_LEVEL
