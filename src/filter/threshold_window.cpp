// Thresholds that look at the surroundings of a sample. They name the one filter that they take, so that no other comes
// into a static program.
#include "compare/compare.hpp"
#include "compare/threshold.hpp"
#include "compare/threshold_rows.hpp"
#include "filter/box.hpp"
#include "filter/separable_call.hpp"
#include "jorm/arith.h"
#include "kernel/level_table.hpp"
#include "xe/scratch.hpp"

#include <algorithm>
#include <cmath>

namespace jorm {

JORM_LEVEL_TABLE(const Row, excess_rows);
JORM_LEVEL_TABLE(const GroundRows, ground_rows);

namespace {

// The part of the options that the operations below are to see.
uint64_t inner(uint64_t options) { return options & JORM_OPT_NO_SIMD; }

constexpr uint32_t three_axes = JORM_WORD(3);

// A picture of the region's size, its channels side by side, in scratch memory.
class Plane {
public:
    Plane(jorm_xe *xe, uint32_t type, const Shape &s, int32_t channels)
        : type_(type), memory_(xe, bytes(type, s, channels), 64), size_{s.rows, s.pixels, channels},
          stride_{int32_t(row_bytes(type, s, channels)), channels * element_size(type), element_size(type)} {}
    explicit operator bool() const { return bool(memory_); }
    Operand all() const { return operand(type_, memory_.get(), stride_); }
    Operand channel(int c) const { return operand(type_, memory_.as<char>() + c * element_size(type_), stride_); }
    const int32_t *size() const { return size_; }

private:
    static int64_t row_bytes(uint32_t type, const Shape &s, int32_t channels) {
        return int64_t(s.pixels) * channels * element_size(type);
    }
    static size_t bytes(uint32_t type, const Shape &s, int32_t channels) {
        const int64_t row = row_bytes(type, s, channels);
        return row <= INT32_MAX ? scratch_bytes(row, s.rows) : SIZE_MAX;
    }
    uint32_t type_;
    Scratch memory_;
    int32_t size_[3], stride_[3];
};

// An operand on three axes.
struct Channel {
    int32_t stride[3];
    Operand o;

    Channel(const Shape &s, const Operand &whole, int c)
        : stride{row_stride(s, whole), pixel_stride(s, whole), channel_stride(s, whole)},
          o(operand(whole.type, whole.start + int64_t(c) * stride[2], stride)) {}
};

jorm_seshape square(int32_t n) { return {{0, n / 2, n / 2, 0}, {1, n, n, 0}}; }

// Every channel of the source through `smooth`, a function of source and destination.
template <class F> int64_t each_channel(const ThresholdCall &call, const Shape &s, const Plane &to, F smooth) {
    for (int c = 0; c < s.channels; ++c) {
        const Channel from(s, call.src, c);
        if (const int64_t status = smooth(from.o, to.channel(c)); status != JORM_OK) return status;
    }
    return JORM_OK;
}

int64_t mean_of_window(const ThresholdCall &call, const Shape &s, const Operand &from, const Operand &to, int32_t n) {
    const jorm_seshape window = square(n);
    const int32_t size[3] = {s.rows, s.pixels, 1};
    return run_bordered(call.xe, inner(call.options), three_axes, size, to.type, to.start, to.stride, from.start,
                        from.stride, &window, nullptr, nullptr, box);
}

int64_t blur(WindowCall &c) {
    GaussianWeights weights;
    const int64_t status = weights.open(c, nullptr);
    return status == JORM_OK ? separable(c, weights, JORM_OF_LEVEL(blur_rows, c.which)) : status;
}

bool empty(const Shape &s) { return s.rows < 1 || s.pixels < 1; }

// What usto and blur serve.
int64_t check_smooth(Shape &s, const ThresholdCall &call) {
    if (int64_t status = check_threshold(s, call); status != JORM_OK) return status;
    const bool served = (call.src.type == JORM_U8 || call.src.type == JORM_F32) && (s.channels == 1 || s.channels == 3);
    return served ? JORM_OK : JORM_ENOTSUP;
}

// Classes of a prepared picture by Otsu's thresholds.
int64_t classify(const ThresholdCall &call, const Shape &s, const Plane &prepared, const jorm_thhmethod *method,
                 bool inverted) {
    double pairs[8];
    const Operand picture = prepared.all();
    const StatSource source = {call.xe, call.options, three_axes, prepared.size(), picture};
    if (int64_t status = otsu_pairs(source, method, pairs); status != JORM_OK) return status;
    const Channel dst(s, call.dst, 0);
    return sheer_threshold({call.xe, call.options, three_axes, prepared.size(), dst.o, picture}, pairs, false,
                           inverted);
}

// The offset as rows take it: of integers whole, and no larger than what no difference exceeds.
double limit_of(uint32_t type, double offset) {
    if (type == JORM_F32) return offset;
    const double beyond = type == JORM_S32 ? 0x1p33 : 0x1p20;
    return std::isnan(offset) ? beyond : std::clamp(std::floor(offset), -beyond, beyond);
}

} // namespace

int64_t adaptive_threshold(const ThresholdCall &call, const double *pairs) {
    Shape s;
    if (!pairs) return JORM_EINVAL;
    if (int64_t status = check_threshold(s, call); status != JORM_OK) return status;
    const uint32_t type = call.src.type;
    if (type == JORM_S8) return JORM_ENOTSUP;
    if (empty(s)) return JORM_OK;
    const Plane mean(call.xe, type, s, s.channels);
    if (!mean) return JORM_ENOMEM;
    const int64_t status = each_channel(
        call, s, mean, [&](const Operand &from, const Operand &to) { return mean_of_window(call, s, from, to, 5); });
    if (status != JORM_OK) return status;

    const Level which = level(call.options);
    const Row row = JORM_OF_LEVEL(excess_rows, which)[compare_line(true, call.dst.type, type)];
    const Operand all = mean.all();
    Operand operands[] = {call.dst, call.src, {all.type, all.start, all.stride + (3 - s.axes)}};
    ExcessParams p;
    set_classes(p, call.dst.type, false);
    for (int c = 0; c < s.channels; ++c) {
        p.limit = limit_of(type, pairs[2 * c]);
        Walk w = make_walk(s, operands, 3, c, which);
        walk(w, row, p);
    }
    return JORM_OK;
}

int64_t usto_threshold(const ThresholdCall &call, const jorm_thhmethod *method) {
    Shape s;
    if (int64_t status = check_smooth(s, call); status != JORM_OK) return status;
    if (empty(s)) return JORM_OK;
    const uint32_t type = call.src.type;
    const bool real = type == JORM_F32;
    const uint64_t options = inner(call.options);
    const Plane difference(call.xe, type, s, s.channels);
    if (!difference) return JORM_ENOMEM;
    const Level which = level(options);
    const GroundRows &rows = JORM_OF_LEVEL(ground_rows, which)[real];
    const Shape one = {3, s.rows, s.pixels, 1, 0};
    const int64_t status = each_channel(call, s, difference, [&](const Operand &from, const Operand &to) -> int64_t {
        const Plane ground(call.xe, type, s, 1), exact(call.xe, real ? JORM_F32 : JORM_S16, s, 1);
        if (!ground || !exact) return JORM_ENOMEM;
        const Operand g = ground.all(), e = exact.all(), below[] = {e, g, from}, shifted[] = {to, e};
        double mean;
        if (int64_t done = mean_of_window(call, s, from, g, 15); done != JORM_OK) return done;
        walk_channels(one, below, 3, rows.subtract, RowParams{}, which);
        if (int64_t done = jorma__mean(call.xe, options, three_axes, exact.size(), e.type, e.start, e.stride, &mean);
            done != JORM_OK)
            return done;
        MoveParams p;
        p.by = (real ? 0.5 : 128) - mean;
        walk_channels(one, shifted, 2, rows.move, p, which);
        return JORM_OK;
    });
    return status == JORM_OK ? classify(call, s, difference, method, true) : status;
}

int64_t blur_threshold(const ThresholdCall &call, const jorm_thhmethod *method) {
    Shape s;
    if (int64_t status = check_smooth(s, call); status != JORM_OK) return status;
    if (empty(s)) return JORM_OK;
    const Plane blurred(call.xe, call.src.type, s, s.channels);
    if (!blurred) return JORM_ENOMEM;
    const int64_t status = each_channel(call, s, blurred, [&](const Operand &from, const Operand &to) {
        const jorm_seshape window = square(5);
        const int32_t size[3] = {s.rows, s.pixels, 1};
        return run_bordered(call.xe, inner(call.options), three_axes, size, to.type, to.start, to.stride, from.start,
                            from.stride, &window, nullptr, nullptr, blur);
    });
    return status == JORM_OK ? classify(call, s, blurred, method, false) : status;
}

} // namespace jorm
