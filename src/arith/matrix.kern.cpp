// The loops of matrix products.
#include "arith/matrix_rows.hpp"
#include "kernel/level_vectors.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// ------------------------------------------------------------------ transfer

// Steps that the compiler knows become shuffles.
template <class T, int Step>
[[gnu::always_inline]] inline void load_steps(f64 *__restrict to, const T *from, int64_t n) {
    if constexpr (same<T, u8> && Step == 1) {
        constexpr int block = 64;
        for (; n >= block; n -= block, to += block, from += block) {
            s32 words[block];
            widen<block>(words, from);
            for (int i = 0; i < block; ++i) to[i] = words[i];
        }
    }
    for (int64_t i = 0; i < n; ++i) to[i] = from[i * Step];
}

template <class T> void load_row(f64 *to, int64_t step, const char *from, int64_t stride, int64_t n) {
    const T *f = reinterpret_cast<const T *>(from);
    constexpr int64_t size = sizeof(T);
    if (step == 1 && stride == size) return load_steps<T, 1>(to, f, n);
    if (step == 1 && stride == 2 * size) return load_steps<T, 2>(to, f, n);
    if (step == 1 && stride == 3 * size) return load_steps<T, 3>(to, f, n);
    if (step == 1 && stride == 4 * size) return load_steps<T, 4>(to, f, n);
    for (int64_t i = 0; i < n; ++i) to[i * step] = *reinterpret_cast<const T *>(from + i * stride);
}

// Are the rows the components of dense pixels?
template <class T> [[gnu::always_inline]] inline bool interleaved(const MatrixTransfer &t) {
    return t.rows <= 4 && t.row_stride == int64_t(sizeof(T)) && t.stride == t.rows * int64_t(sizeof(T)) && t.step == 1;
}

template <class T> void load(const MatrixTransfer &t) {
    if constexpr (same<T, u8>)
        if (t.rows == 3 && interleaved<T>(t)) {
            u8 apart[3 * vector_block];
            for (int64_t x = 0; x < t.n; x += vector_block) {
                const int64_t n = t.n - x < vector_block ? t.n - x : vector_block;
                split_thirds(apart, vector_block, elements<u8>(t.elements) + 3 * x, n);
                for (int y = 0; y < 3; ++y)
                    load_steps<u8, 1>(t.numbers + y * t.row_step + x, apart + y * vector_block, n);
            }
            return;
        }
    const auto magnitude = [](int64_t v) { return v < 0 ? -v : v; };
    // Along the smaller stride of the array, except that interleaved components are shuffled apart.
    const bool across = t.rows > 4 && magnitude(t.row_stride) < magnitude(t.stride);
    const int64_t rows = across ? t.n : t.rows, n = across ? t.rows : t.n;
    const int64_t row_step = across ? t.step : t.row_step, step = across ? t.row_step : t.step;
    const int64_t row_stride = across ? t.stride : t.row_stride, stride = across ? t.row_stride : t.stride;
    for (int64_t y = 0; y < rows; ++y)
        load_row<T>(t.numbers + y * row_step, step, t.elements + y * row_stride, stride, n);
}

template <class T> [[gnu::always_inline]] inline T rounded(f64 x) {
    if constexpr (is_real<T>)
        return T(x);
    else if constexpr (same<T, u8>) {
        x = 255 < x ? 255 : x;
        const s32 r = round_s32(x); // negative for what is far below 0, and for NaN
        return T(r < 0 ? 0 : r);
    } else {
        constexpr f64 low = f64(lowest<T>), high = f64(largest<T>);
        x = x == x ? x : 0;
        x = x > low ? x : low;
        x = x < high ? x : high;
        return T(round_s32(x));
    }
}

template <class T> [[gnu::always_inline]] inline void store_dense(T *__restrict to, const f64 *from, int64_t n) {
    if constexpr (same<T, u8>) {
        constexpr int block = 64;
        for (; n >= block; n -= block, to += block, from += block) {
            s32 words[block];
            for (int i = 0; i < block; ++i) words[i] = rounded<u8>(from[i]);
            narrow<block>(to, words);
        }
    }
    for (int64_t i = 0; i < n; ++i) to[i] = rounded<T>(from[i]);
}

template <class T, int Rows> void weave(T *__restrict to, const T *from, int64_t n) {
    if constexpr (same<T, u8> && Rows == 3) return join_thirds(to, from, vector_block, n);
    for (int64_t i = 0; i < n; ++i)
        for (int y = 0; y < Rows; ++y) to[i * Rows + y] = from[y * vector_block + i];
}

template <class T> void store_interleaved(const MatrixTransfer &t) {
    T apart[4 * vector_block];
    for (int64_t x = 0; x < t.n; x += vector_block) {
        const int64_t n = t.n - x < vector_block ? t.n - x : vector_block;
        for (int y = 0; y < t.rows; ++y) store_dense(apart + y * vector_block, t.numbers + y * t.row_step + x, n);
        T *const to = elements<T>(t.elements) + x * t.rows;
        if (t.rows == 2) weave<T, 2>(to, apart, n);
        if (t.rows == 3) weave<T, 3>(to, apart, n);
        if (t.rows == 4) weave<T, 4>(to, apart, n);
    }
}

template <class T> void store(const MatrixTransfer &t) {
    if (t.rows > 1 && interleaved<T>(t)) return store_interleaved<T>(t);
    for (int64_t y = 0; y < t.rows; ++y) {
        const f64 *const from = t.numbers + y * t.row_step;
        char *const to = t.elements + y * t.row_stride;
        if (t.stride == int64_t(sizeof(T)))
            store_dense(reinterpret_cast<T *>(to), from, t.n);
        else
            for (int64_t i = 0; i < t.n; ++i) *reinterpret_cast<T *>(to + i * t.stride) = rounded<T>(from[i]);
    }
}

// ------------------------------------------------------------------- product

#if defined(JORM_LEVEL_avx512)
constexpr int lanes = 8, tile_rows = 8;
#elif defined(JORM_LEVEL_avx2)
constexpr int lanes = 4, tile_rows = 4;
#else
constexpr int lanes = 2, tile_rows = 4;
#endif
constexpr int tile_vectors = 3, tile_columns = tile_vectors * lanes;
typedef f64 Lanes __attribute__((vector_size(lanes * 8)));
typedef Lanes LanesAnywhere __attribute__((aligned(8)));

// As pointers, so that the compiler keeps arrays of vectors in registers.
[[gnu::always_inline]] inline LanesAnywhere *vectors(f64 *p) { return reinterpret_cast<LanesAnywhere *>(p); }
[[gnu::always_inline]] inline const LanesAnywhere *vectors(const f64 *p) {
    return reinterpret_cast<const LanesAnywhere *>(p);
}

// A product that is exact may as well go into the sum unrounded.
template <bool Exact> [[gnu::always_inline]] inline Lanes add_product(Lanes sum, f64 x, Lanes y) {
#ifdef JORM_LEVEL_avx512
    if constexpr (Exact) return _mm512_fmadd_pd(_mm512_set1_pd(x), y, sum);
#endif
    return sum + x * y;
}

template <int Rows, bool Exact> void multiply(f64 *sums, const f64 *a, const f64 *b, int64_t k) {
    Lanes s[Rows][tile_vectors];
    for (int i = 0; i < Rows; ++i)
        for (int j = 0; j < tile_vectors; ++j) s[i][j] = vectors(sums)[i * tile_vectors + j];
    for (; k > 0; --k, a += Rows, b += tile_columns) {
        Lanes v[tile_vectors];
        for (int j = 0; j < tile_vectors; ++j) v[j] = vectors(b)[j];
#pragma GCC unroll 8
        for (int i = 0; i < Rows; ++i)
#pragma GCC unroll 3
            for (int j = 0; j < tile_vectors; ++j) s[i][j] = add_product<Exact>(s[i][j], a[i], v[j]);
    }
    for (int i = 0; i < Rows; ++i)
        for (int j = 0; j < tile_vectors; ++j) vectors(sums)[i * tile_vectors + j] = s[i][j];
}

template <int Components> void transform(f64 *to, const f64 *from, const f64 *matrix, int rows, int64_t n) {
    for (int r = 0; r < rows; ++r, to += vector_block, matrix += Components) {
        f64 m[Components];
        for (int c = 0; c < Components; ++c) m[c] = matrix[c];
        f64 *__restrict const t = to;
        for (int64_t i = 0; i < n; ++i) {
            f64 sum = 0;
            for (int c = 0; c < Components; ++c) sum += m[c] * from[c * vector_block + i];
            t[i] = sum;
        }
    }
}

} // namespace

extern const MatrixRows matrix_rows[];
const MatrixRows matrix_rows[] = {{{load<u8>, load<s16>, load<s32>, load<f32>, load<f64>},
                                   {store<u8>, store<s16>, store<s32>, store<f32>, store<f64>},
                                   tile_rows,
                                   tile_columns,
                                   {multiply<tile_rows, false>, multiply<tile_rows, true>},
                                   {multiply<1, false>, multiply<1, true>},
                                   {transform<1>, transform<2>, transform<3>, transform<4>}}};

} // namespace jorm::JORM_LEVEL
