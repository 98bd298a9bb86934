// Rows of extrema.
#include "kernel/level_ops.hpp"
#include "stats/extrema_rows.hpp"

namespace jorm::JORM_LEVEL {
namespace {

// Comparisons with NaN are false: it never wins.
template <class T> constexpr T top = T(largest<T>);
template <> constexpr f32 top<f32> = __builtin_inff();
template <class T> constexpr T bottom = T(lowest<T>);
template <> constexpr f32 bottom<f32> = -__builtin_inff();

struct Least {
    template <class T> static constexpr T worst = top<T>;
    template <class T> [[gnu::always_inline]] static bool beats(T a, T b) { return a < b; }
};
struct Largest {
    template <class T> static constexpr T worst = bottom<T>;
    template <class T> [[gnu::always_inline]] static bool beats(T a, T b) { return a > b; }
};
template <class Kind, class T> [[gnu::always_inline]] inline T better(T a, T b) { return Kind::beats(a, b) ? a : b; }

// Lane k sees samples that lie k beyond a multiple of the lanes, which are a multiple of the channels. There are as
// many as keep the processor busy while a comparison takes its time.
#if defined(__AVX2__)
constexpr int lane_bytes = 256;
#else
constexpr int lane_bytes = 128;
#endif
template <class T, int C> constexpr int lanes = (C == 3 ? lane_bytes / 2 * 3 : lane_bytes) / int(sizeof(T));

// What is kept of the lanes of a block: no fewer than the compiler takes for a loop.
template <class T, int C> constexpr int kept = (C == 3 ? 48 : 32) * (sizeof(T) == 1 ? 2 : 1);

constexpr int group = 16; // blocks whose lanes are looked at together
template <class T, int C> constexpr int64_t block = 4096 / lanes<T, C> *lanes<T, C>;

// Folds N lanes into the first M.
template <class Kind, int N, int M, class T> [[gnu::always_inline]] inline void fold(T *lane) {
    if constexpr (N > M) {
        for (int k = 0; k < N / 2; ++k) lane[k] = better<Kind>(lane[k + N / 2], lane[k]);
        fold<Kind, N / 2, M>(lane);
    }
}

// The places in a stretch of samples, as numbers as wide as those; the other channels than c have none.
template <class T, int C, int c> struct Stretch {
    using Place = typename Unsigned<select<same<T, f32>, s32, T>>::type;
    static constexpr int length = C == 3 ? 192 : sizeof(T) == 1 ? 128 : 256;
    static constexpr Place none = Place(-1);
    Place place[length];
    constexpr Stretch() : place() {
        for (int k = 0; k < length; ++k) place[k] = k % C == c ? Place(k) : none;
    }
};
template <class T, int C, int c> constexpr Stretch<T, C, c> stretch = {};

// The samples of a row and, perhaps, the mask that selects among them.
template <class T, bool Masked> struct Samples {
    const T *value;
    const u8 *mask;
    u8 unselected;

    [[gnu::always_inline]] bool selected(int64_t i) const { return !Masked || mask[i] != unselected; }
    template <class Kind> [[gnu::always_inline]] T get(int64_t i) const {
        const T x = value[i];
        return selected(i) ? x : Kind::template worst<T>;
    }
    // Where channel c has its first x from i on; n when nowhere.
    template <int C, int c> [[gnu::noinline]] int64_t find(T x, int64_t i, int64_t n) const {
        const auto &s = stretch<T, C, c>;
        using P = typename Stretch<T, C, c>::Place;
        for (; n - i >= s.length; i += s.length) {
            P first = s.none;
            for (int k = 0; k < s.length; ++k) {
                const u8 hit = u8(value[i + k] == x) & u8(selected(i + k));
                const P place = P(s.place[k] | P(P(hit) - 1));
                first = place < first ? place : first;
            }
            if (first != s.none) return i + first;
        }
        for (i += c; i < n; i += C)
            if (value[i] == x && selected(i)) return i;
        return n;
    }
};

// The extrema of one kind in a row.
template <class Kind, class T, int C> struct Best {
    T value[C];
    int64_t start[C];                // of the block where the value stands; -1 when a former row had it
    T block_lane[group][kept<T, C>]; // what the blocks of the group found

    explicit Best(const Extremum *known) {
        for (int c = 0; c < C; ++c) {
            value[c] = known[c].place < 0 ? Kind::template worst<T> : T(known[c].value);
            start[c] = known[c].place < 0 ? 0 : -1;
        }
    }
    // Takes the pixel that begins at sample i, in a row that does not fill the lanes.
    template <class Samples> void take(const Samples &x, int64_t i) {
        for (int c = 0; c < C; ++c) {
            const T sample = x.template get<Kind>(i + c);
            if (!Kind::beats(sample, value[c])) continue;
            value[c] = sample;
            start[c] = i;
        }
    }
    // Takes over what the group that begins at sample i found.
    [[gnu::noinline]] void look(int blocks, int64_t i) {
        T all[kept<T, C>];
        for (int k = 0; k < kept<T, C>; ++k) all[k] = block_lane[0][k];
        for (int b = 1; b < blocks; ++b)
            for (int k = 0; k < kept<T, C>; ++k) all[k] = better<Kind>(block_lane[b][k], all[k]);
        fold<Kind, kept<T, C>, C>(all);
        locate(all, blocks, i);
    }
    template <int c = 0> void locate(const T *all, int blocks, int64_t i) {
        if (Kind::beats(all[c], value[c])) {
            value[c] = all[c];
            const Samples<T, false> found = {block_lane[0], nullptr, 0};
            const int64_t at = found.template find<C, c>(value[c], 0, int64_t(blocks) * kept<T, C>);
            start[c] = i + at / kept<T, C> * block<T, C>;
        }
        if constexpr (c + 1 < C) locate<c + 1>(all, blocks, i);
    }
    template <int c = 0, class Samples> void store(Extremum *known, const Samples &x, int64_t n, int64_t pixels) const {
        if (start[c] >= 0)
            if (const int64_t at = x.template find<C, c>(value[c], start[c], n); at < n)
                known[c] = {f64(x.value[at]), pixels + at / C};
        if constexpr (c + 1 < C) store<c + 1>(known, x, n, pixels);
    }
};

template <class T, int C, bool Masked> void extrema(void *dst, const void *const *src, int64_t n, const RowParams &) {
    constexpr int width = lanes<T, C>;
    ExtremaState &state = *elements<ExtremaState>(dst);
    const Samples<T, Masked> x = {elements<T>(src[0]), Masked ? elements<u8>(src[1]) : nullptr, state.unselected};
    Best<Least, T, C> least(state.least);
    Best<Largest, T, C> largest(state.largest);
    if (n < width)
        for (int64_t i = 0; i < n; i += C) {
            least.take(x, i);
            largest.take(x, i);
        }
    for (int64_t i = 0; n >= width && i < n;) {
        const int64_t start = i;
        int blocks = 0;
        for (; blocks < group && i < n; ++blocks) {
            T lo[width], hi[width];
            for (int k = 0; k < width; ++k) lo[k] = top<T>;
            for (int k = 0; k < width; ++k) hi[k] = bottom<T>;
            const auto gather = [&](int64_t from) __attribute__((always_inline)) {
                for (int k = 0; k < width; ++k) {
                    lo[k] = better<Least>(x.template get<Least>(from + k), lo[k]);
                    hi[k] = better<Largest>(x.template get<Largest>(from + k), hi[k]);
                }
            };
            const int64_t end = n - i < block<T, C> ? n : i + block<T, C>;
            if ((end - i) % width != 0) gather(end - width); // some samples twice
            for (; end - i >= 2 * width; i += 2 * width) {
                gather(i);
                gather(i + width);
            }
            if (end - i >= width) gather(i);
            i = end;
            fold<Least, width, kept<T, C>>(lo);
            fold<Largest, width, kept<T, C>>(hi);
            for (int k = 0; k < kept<T, C>; ++k) least.block_lane[blocks][k] = lo[k];
            for (int k = 0; k < kept<T, C>; ++k) largest.block_lane[blocks][k] = hi[k];
        }
        least.look(blocks, start);
        largest.look(blocks, start);
    }
    least.store(state.least, x, n, state.pixels);
    largest.store(state.largest, x, n, state.pixels);
    state.pixels += n / C;
}

} // namespace

#define LINE(T) extrema<T, 1, false>, nullptr, extrema<T, 3, false>, extrema<T, 4, false>
#define MASKED_LINE(T) extrema<T, 1, true>, nullptr, nullptr, nullptr
extern const Row extrema_rows[], masked_extrema_rows[];
const Row extrema_rows[] = {LINE(u8), LINE(s16), LINE(s32), LINE(f32)};
const Row masked_extrema_rows[] = {MASKED_LINE(u8), MASKED_LINE(s16), MASKED_LINE(s32), MASKED_LINE(f32)};

} // namespace jorm::JORM_LEVEL
