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

// Lane k sees samples that lie k beyond a multiple of the lanes, which are a multiple of every number of channels: as
// many as keep the processor busy while a comparison takes its time. Masks are bytes whatever the samples are, so lanes
// under a mask fill a register with bytes. In one round a lane takes `depth` samples.
#ifdef JORM_LEVEL_avx512
constexpr int lane_bytes = 192, real_lane_bytes = 256, depth_of_reals = 2;
#else
constexpr int lane_bytes = 96, real_lane_bytes = 96, depth_of_reals = 4;
#endif
template <class T, int C, bool Masked>
constexpr int lanes = Masked ? 64 : (C == 1 && is_real<T> ? real_lane_bytes : lane_bytes) / int(sizeof(T));
template <class T> constexpr int depth = is_real<T> ? depth_of_reals : 1;

// Single precision as whole numbers in the same order.
[[gnu::always_inline]] inline s32 ordered(f32 x) {
    const s32 word = __builtin_bit_cast(s32, x);
    return word ^ (word >> 31 & largest<s32>);
}
template <class T> [[gnu::always_inline]] inline T ordered(T x) { return x; }

// The best of N lanes, by channel.
template <class Kind, int C, int N, class T> [[gnu::always_inline]] inline void fold(const T *lane, T *best) {
    if constexpr (N == C) {
        for (int c = 0; c < C; ++c) best[c] = lane[c];
    } else if constexpr (C == 1) {
        auto word = ordered(lane[0]);
        for (int k = 0; k < N; ++k) word = better<Kind>(ordered(lane[k]), word);
        if constexpr (is_real<T>)
            best[0] = __builtin_bit_cast(T, ordered(__builtin_bit_cast(T, word)));
        else
            best[0] = word;
    } else {
        constexpr int parts = N % 3 == 0 && C % 3 != 0 ? 3 : 2, M = N / parts;
        T some[M];
        for (int k = 0; k < M; ++k) {
            some[k] = better<Kind>(lane[k + M], lane[k]);
            if (parts == 3) some[k] = better<Kind>(lane[k + N - M], some[k]);
        }
        fold<Kind, C, M>(some, best);
    }
}

// The places in a stretch of samples, as numbers as wide as those; the other channels than c have none.
template <class T> using Place = typename Unsigned<select<same<T, f32>, s32, T>>::type;
template <class T> constexpr Place<T> none = Place<T>(-1);
template <class T, int C, int c> struct Stretch {
    static constexpr int length = lane_bytes;
    Place<T> place[length];
    constexpr Stretch() : place() {
        for (int k = 0; k < length; ++k) place[k] = k % C == c ? Place<T>(k) : none<T>;
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
        if constexpr (is_real<T>) // what is left out becomes NaN
            return __builtin_bit_cast(T, __builtin_bit_cast(s32, x) | (selected(i) ? 0 : -1));
        else
            return selected(i) ? x : Kind::template worst<T>;
    }
    // Place k of the stretch that begins at sample i, where that is an x of channel c; none elsewhere.
    template <int C, int c> [[gnu::always_inline]] Place<T> place(T x, int64_t i, int k) const {
        Place<T> miss = value[i + k] == x ? Place<T>(0) : none<T>;
        if (Masked) miss |= selected(i + k) ? Place<T>(0) : none<T>;
        return miss | stretch<T, C, c>.place[k];
    }
    // Where channel c has its first x from i on; n when nowhere.
    template <int C, int c> [[gnu::noinline]] int64_t find(T x, int64_t i, int64_t n) const {
        constexpr int length = Stretch<T, C, c>::length;
        for (; n - i >= length; i += length) {
            Place<T> all = none<T>, first = none<T>;
            for (int k = 0; k < length; ++k) all &= place<C, c>(x, i, k);
            if (all == none<T>) continue;
            for (int k = 0; k < length; ++k) first = better<Least>(place<C, c>(x, i, k), first);
            return i + first;
        }
        for (i += c; i < n; i += C)
            if (value[i] == x && selected(i)) return i;
        return n;
    }
};

// The extrema of one kind in a row.
template <class Kind, class T, int C, int Lanes> struct Best {
    T value[C];
    int64_t start[C]; // of the block where the value stands; -1 when a former row had it
    T limit[Lanes];   // the value, by lane

    explicit Best(const Extremum *known) {
        for (int c = 0; c < C; ++c) {
            value[c] = known[c].place < 0 ? Kind::template worst<T> : T(known[c].value);
            start[c] = known[c].place < 0 ? 0 : -1;
        }
        set_limit();
    }
    [[gnu::always_inline]] void set_limit() {
        for (int k = 0; k < Lanes; k += C)
            for (int c = 0; c < C; ++c) limit[k + c] = value[c];
    }
    void take(T sample, int c, int64_t i) {
        if (!Kind::beats(sample, value[c])) return;
        value[c] = sample;
        start[c] = i;
    }
    // Takes over what the lanes found in the block that begins at sample i.
    [[gnu::always_inline]] void look(const T *lane, int64_t i) {
        Place<T> any = 0;
        for (int k = 0; k < Lanes; ++k) any |= Kind::beats(lane[k], limit[k]) ? none<T> : 0;
        if (any == 0) [[likely]]
            return;
        T found[C];
        fold<Kind, C, Lanes>(lane, found);
        for (int c = 0; c < C; ++c) take(found[c], c, i);
        set_limit();
    }
    template <int c = 0, class Samples> void store(Extremum *known, const Samples &x, int64_t n, int64_t pixels) const {
        if (start[c] >= 0)
            if (const int64_t at = x.template find<C, c>(value[c], start[c], n); at < n)
                known[c] = {f64(x.value[at]), pixels + at / C};
        if constexpr (c + 1 < C) store<c + 1>(known, x, n, pixels);
    }
};

// A row goes by blocks. Their lanes tell whether one holds anything better; where, is looked up at the end.
template <class T, int C, bool Masked> void extrema(void *dst, const void *const *src, int64_t n, const RowParams &) {
    constexpr int width = lanes<T, C, Masked>, round = depth<T> * width;
    constexpr int64_t block = (C == 1 ? 8192 : 4096) / int(sizeof(T)) / round * round;
    ExtremaState &state = *elements<ExtremaState>(dst);
    const Samples<T, Masked> x = {elements<T>(src[0]), Masked ? elements<u8>(src[1]) : nullptr, state.unselected};
    Best<Least, T, C, width> least(state.least);
    Best<Largest, T, C, width> largest(state.largest);
    if (n < width)
        for (int64_t i = 0; i < n; i += C)
            for (int c = 0; c < C; ++c) {
                least.take(x.template get<Least>(i + c), c, i);
                largest.take(x.template get<Largest>(i + c), c, i);
            }
    else {
        T lo[width], hi[width];
        for (int k = 0; k < width; ++k) lo[k] = top<T>;
        for (int k = 0; k < width; ++k) hi[k] = bottom<T>;
        const auto gather = [&](int64_t from) __attribute__((always_inline)) {
            for (int k = 0; k < width; ++k) {
                lo[k] = better<Least>(x.template get<Least>(from + k), lo[k]);
                hi[k] = better<Largest>(x.template get<Largest>(from + k), hi[k]);
            }
        };
        for (int64_t i = 0; i < n;) {
            const int64_t start = i, end = n - i < block ? n : i + block;
            if ((end - i) % width != 0) gather(end - width); // some samples twice
            for (; end - i >= round; i += round)
                for (int k = 0; k < round; k += width) gather(i + k);
            for (; end - i >= width; i += width) gather(i);
            i = end;
            least.look(lo, start);
            largest.look(hi, start);
        }
    }
    least.store(state.least, x, n, state.pixels);
    largest.store(state.largest, x, n, state.pixels);
    state.pixels += n / C;
}

// The lanes alone: the same rows for every number of channels.
template <class T> void bounds(void *dst, const void *const *src, int64_t n, const RowParams &) {
    constexpr int width = lane_bytes / int(sizeof(T));
    static_assert(lane_bytes <= BoundsState::bytes && width % BoundsState::fewest == 0);
    BoundsState &state = *elements<BoundsState>(dst);
    const T *const x = elements<T>(src[0]);
    T lo[width], hi[width];
    if (state.lanes == 0) {
        for (int k = 0; k < width; ++k) lo[k] = top<T>;
        for (int k = 0; k < width; ++k) hi[k] = bottom<T>;
        state.lanes = width;
    } else {
        __builtin_memcpy(lo, state.least, sizeof lo);
        __builtin_memcpy(hi, state.largest, sizeof hi);
    }
    const auto gather = [&](int64_t from, int count) __attribute__((always_inline)) {
        for (int k = 0; k < count; ++k) {
            lo[k] = better<Least>(x[from + k], lo[k]);
            hi[k] = better<Largest>(x[from + k], hi[k]);
        }
    };
    int64_t i = 0;
    for (; n - i >= width; i += width) gather(i, width);
    if (n < width)
        gather(0, int(n));
    else if (i < n)
        gather(n - width, width); // some samples twice
    __builtin_memcpy(state.least, lo, sizeof lo);
    __builtin_memcpy(state.largest, hi, sizeof hi);
}

// As few lanes as serve every number of channels.
template <class T> void fold_bounds(void *dst, const void *const *, int64_t, const RowParams &) {
    constexpr int width = lane_bytes / int(sizeof(T)), few = BoundsState::fewest;
    BoundsState &state = *elements<BoundsState>(dst);
    T lo[width], hi[width], least[few], largest[few];
    __builtin_memcpy(lo, state.least, sizeof lo);
    __builtin_memcpy(hi, state.largest, sizeof hi);
    fold<Least, few, width>(lo, least);
    fold<Largest, few, width>(hi, largest);
    __builtin_memcpy(state.least, least, sizeof least);
    __builtin_memcpy(state.largest, largest, sizeof largest);
    state.lanes = few;
}

} // namespace

#define LINE(T) extrema<T, 1, false>, nullptr, extrema<T, 3, false>, extrema<T, 4, false>
#define MASKED_LINE(T) extrema<T, 1, true>, nullptr, nullptr, nullptr
#define BOUNDS_LINE(T) bounds<T>, bounds<T>, bounds<T>, bounds<T>
extern const Row extrema_rows[], masked_extrema_rows[], bounds_rows[], fold_bounds_rows[];
const Row extrema_rows[] = {LINE(u8), LINE(s16), LINE(s32), LINE(f32)};
const Row masked_extrema_rows[] = {MASKED_LINE(u8), MASKED_LINE(s16), MASKED_LINE(s32), MASKED_LINE(f32)};
const Row bounds_rows[] = {BOUNDS_LINE(u8), BOUNDS_LINE(s16), BOUNDS_LINE(s32), BOUNDS_LINE(f32)};
const Row fold_bounds_rows[] = {fold_bounds<u8>, fold_bounds<s16>, fold_bounds<s32>, fold_bounds<f32>};

} // namespace jorm::JORM_LEVEL
