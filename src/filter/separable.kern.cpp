// Rows of weighted sums.
#include "filter/separable_rows.hpp"
#include "kernel/level_ops.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Two elements add up without loss before they become a number of the type of sums.
template <class In, class Sum> [[gnu::always_inline]] inline Sum pair_of(In a, In b) {
    if constexpr (same<In, Sum>)
        return a + b;
    else if constexpr (sizeof(In) == 4)
        return Sum(a) + Sum(b);
    else
        return Sum(s32(a) + s32(b));
}

template <class Out, class Sum> [[gnu::always_inline]] inline Out result_of(Sum x) {
    if constexpr (is_real<Out>)
        return Out(x);
    else if constexpr (same<Sum, f32>)
        return clamp<Out>(round_s32(x)); // sums of single precision stay far from 32 bits
    else
        return nearest<Out>(x);
}

// N weights; what stands in `before` comes first unless this is the first group.
template <class In, class Sum, class Out, int N, bool Paired, bool First>
void weigh_n(Out *to, const Sum *before, const void *const *row, const Sum *weight, int64_t n) {
    Out *__restrict t = to;
    const In *r[Paired ? 2 * N : N];
    Sum w[N];
    for (int k = 0; k < (Paired ? 2 * N : N); ++k) r[k] = elements<In>(row[k]);
    for (int k = 0; k < N; ++k) w[k] = weight[k];
    for (int64_t i = 0; i < n; ++i) {
        Sum sum = First ? Sum(0) : before[i];
        for (int k = 0; k < N; ++k) {
            const Sum x = Paired ? pair_of<In, Sum>(r[2 * k % (Paired ? 2 * N : N)][i], r[Paired ? 2 * k + 1 : k][i])
                                 : Sum(r[k][i]);
            sum = First && k == 0 ? w[k] * x : sum + w[k] * x;
        }
        t[i] = result_of<Out>(sum);
    }
}

// As many weights as `count` says, at most N.
template <class In, class Sum, class Out, bool Paired, bool First, int N>
void weigh_few(Out *to, const Sum *before, const void *const *row, const Sum *weight, int64_t count, int64_t n) {
    if constexpr (N > 1)
        if (count < N) return weigh_few<In, Sum, Out, Paired, First, N - 1>(to, before, row, weight, count, n);
    weigh_n<In, Sum, Out, N, Paired, First>(to, before, row, weight, n);
}

// Up to so many rows at a time does the compiler make vectors of the loop.
constexpr int most_rows = 8;

// Groups of weights gather in `sums` but for the last one, whose results go to `to`.
template <class In, class Sum, class Out, bool Paired>
void weigh(Out *to, Sum *sums, const WeightedRows &rows, int64_t n) {
    const void *const *row = rows.row;
    const Sum *weight = elements<Sum>(rows.weight);
    constexpr int group = Paired ? most_rows / 2 : most_rows;
    int64_t left = rows.count;
    if (left <= group) return weigh_few<In, Sum, Out, Paired, true, group>(to, sums, row, weight, left, n);
    weigh_n<In, Sum, Sum, group, Paired, true>(sums, sums, row, weight, n);
    for (left -= group; left > group; left -= group)
        weigh_n<In, Sum, Sum, group, Paired, false>(sums, sums, row += most_rows, weight += group, n);
    weigh_few<In, Sum, Out, Paired, false, group>(to, sums, row + most_rows, weight + group, left, n);
}

template <class T, class Sum> void down(void *sums, const WeightedRows &rows, int64_t n) {
    Sum *const s = elements<Sum>(sums);
    rows.paired ? weigh<T, Sum, Sum, true>(s, s, rows, n) : weigh<T, Sum, Sum, false>(s, s, rows, n);
}
template <class T, class Sum> void along(void *to, void *spare, const WeightedRows &rows, int64_t n) {
    T *const t = elements<T>(to);
    Sum *const s = elements<Sum>(spare);
    rows.paired ? weigh<Sum, Sum, T, true>(t, s, rows, n) : weigh<Sum, Sum, T, false>(t, s, rows, n);
}

template <class Sum> void along_sums(void *to, void *spare, const WeightedRows &rows, int64_t n) {
    along<Sum, Sum>(to, spare, rows, n);
}

} // namespace

#define LINE(T, Sum)                                                                                                   \
    { sizeof(Sum), down<T, Sum>, along<T, Sum>, along_sums<Sum> }
extern const SeparableRows separable_rows[];
const SeparableRows separable_rows[] = {LINE(u8, f32), LINE(s16, f32), LINE(f32, f32),
                                        LINE(u8, f64), LINE(s16, f64), LINE(s32, f64)};

} // namespace jorm::JORM_LEVEL
