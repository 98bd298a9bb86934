#include "arith/dispatch.hpp"

#include "jorm/arith.h"
#include "jorm/convert.h"
#include "kernel/level_table.hpp"
#include "xe/scratch.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace jorm {

JORM_LEVEL_TABLE(const Rows *const, binary_rows);
JORM_LEVEL_TABLE(const Rows *const, constant_rows);
JORM_LEVEL_TABLE(const Rows *const, ternary_rows);
JORM_LEVEL_TABLE(const Rows *const, ternary_constant_rows);
JORM_LEVEL_TABLE(const Rows *const, unary_rows);

namespace {

const Rows &find_rows(Level level, Family family, int line) {
    if (family < family_addC) return JORM_OF_LEVEL(binary_rows, level)[family][line];
    if (family < family_mla) return JORM_OF_LEVEL(constant_rows, level)[family - family_addC][line];
    if (family < family_mlaC) return JORM_OF_LEVEL(ternary_rows, level)[family - family_mla][line];
    if (family < family_neg) return JORM_OF_LEVEL(ternary_constant_rows, level)[family - family_mlaC][line];
    return JORM_OF_LEVEL(unary_rows, level)[family - family_neg][line];
}

// ------------------------------------------------------------------ constants

bool is_whole(double c) { return c == std::nearbyint(c) && std::isfinite(c); }

bool obeys(ConstantRule rule, double c) {
    switch (rule) {
    case ConstantRule::none:
        return false;
    case ConstantRule::low_bits:
    case ConstantRule::saturated:
        return is_whole(c);
    case ConstantRule::small:
        return is_whole(c) && std::fabs(c) <= 16777216.0;
    case ConstantRule::single:
        return std::isnan(c) || double(float(c)) == c;
    case ConstantRule::any:
    case ConstantRule::rounded:
        return true;
    }
    return false;
}

// The low 32 bits of a number rounded to nearest even; 0 for what is not finite.
int32_t low_bits(double c) {
    if (!std::isfinite(c)) return 0;
    const double rest = std::fmod(std::nearbyint(c), 4294967296.0);
    return int32_t(uint32_t(int64_t(rest)));
}

int32_t whole_constant(ConstantRule rule, double c) {
    if (rule == ConstantRule::saturated)
        return c < -2147483648.0 ? INT32_MIN : c > 2147483647.0 ? INT32_MAX : int32_t(c);
    return low_bits(c);
}

// The constants of one walk: what they are, and room for their patterns.
class Constants {
public:
    Constants(int count, int channels) : count_(count), channels_(channels) {}
    double at(const ArithCall &call, int i, int channel) const { return call.constant[i][channel]; }

    template <class F> bool all(const ArithCall &call, F f) const {
        for (int i = 0; i < count_; ++i)
            for (int c = 0; c < channels_; ++c)
                if (!f(call.constant[i][c])) return false;
        return true;
    }
    bool uniform(const ArithCall &call) const {
        for (int i = 0; i < count_; ++i)
            for (int c = 1; c < channels_; ++c)
                if (!(call.constant[i][c] == call.constant[i][0])) return false;
        return true;
    }
    // Lays out the constants from `channel` on; only the first entry when `length` is 1.
    void lay_out(RowParams &params, const ArithCall &call, ConstantRule rule, int channel, int channels, int length) {
        for (int i = 0; i < count_; ++i) {
            for (int j = 0; j < std::min(channels, length); ++j) {
                const double c = call.constant[i][channel + j];
                pattern_[i].real[j] = c;
                pattern_[i].whole[j] = is_whole(c) || rule == ConstantRule::rounded ? whole_constant(rule, c) : 0;
            }
            for (int j = channels; j < length; ++j) {
                pattern_[i].real[j] = pattern_[i].real[j - channels];
                pattern_[i].whole[j] = pattern_[i].whole[j - channels];
            }
            params.constants[i] = &pattern_[i];
        }
    }

private:
    int count_, channels_;
    ConstantPattern pattern_[2];
};

enum class Variant { plain, pattern, scaled, real };

// Rows in double precision are exact for whole numbers as well, as long as no result leaves 32 bits.
bool fits_real_rows(const ArithCall &call, const FamilyKeys &keys, const Constants &constants) {
    double bound = 1;
    for (int i = 1; i <= keys.sources; ++i)
        bound = std::max(bound, std::ldexp(1.0, 8 * element_size(call.operand[i].type)));
    return constants.all(call, [&](double c) {
        return std::ldexp(2 * (bound + 1) * (std::fabs(c) + 1), std::clamp(call.p, 0, 64)) < 2147483648.0;
    });
}

Variant choose(const Rows &rows, const Rows &base, const ArithCall &call, const FamilyKeys &keys,
               const Constants &constants) {
    if (keys.constants == 0) return call.p == 0 ? Variant::plain : Variant::scaled;
    const bool logic = rows.rule == ConstantRule::rounded;
    if ((call.p == 0 || logic) && rows.plain && constants.all(call, [&](double c) { return obeys(rows.rule, c); }))
        return constants.uniform(call) ? Variant::plain : Variant::pattern;
    const bool whole = constants.all(call, [](double c) { return is_whole(c) && std::fabs(c) <= 2147483648.0; });
    return base.scaled && whole && !fits_real_rows(call, keys, constants) ? Variant::scaled : Variant::real;
}

// ---------------------------------------------------------------------- strips

constexpr int64_t strip_bytes = 32768;

bool is_float(uint32_t type) { return type == JORM_F32; }

bool wider(uint32_t a, uint32_t b) {
    const int sa = element_size(a), sb = element_size(b);
    return sa != sb ? sa > sb : is_float(a) && !is_float(b);
}

uint32_t key_of(const ArithCall &call, int sources, uint32_t dst) {
    uint32_t key = dst & 15;
    for (int i = 1; i <= sources; ++i) key = key << 4 | (call.operand[i].type & 15);
    return key;
}

// Runs the kernel with a destination of the widest source's type, strip by strip, and converts each strip.
int64_t run_through_strip(Family family, int line, uint32_t type, const Shape &shape, const ArithCall &call) {
    if (!call.xe) return JORM_EINVAL;
    const int sources = family_keys[family].sources;
    const int64_t pixel = int64_t(element_size(type)) * shape.channels;
    const int32_t columns = int32_t(std::min<int64_t>(shape.pixels, strip_bytes / pixel));
    const int32_t height = int32_t(std::clamp<int64_t>(strip_bytes / (columns * pixel), 1, shape.rows));
    const Scratch strip(call.xe, size_t(height * columns * pixel), 64);
    if (!strip) return JORM_ENOMEM;

    const int32_t strip_stride[3] = {int32_t(columns * pixel), int32_t(pixel), element_size(type)};
    for (int32_t y = 0; y < shape.rows; y += height)
        for (int32_t x = 0; x < shape.pixels; x += columns) {
            const int32_t size[3] = {std::min(height, shape.rows - y), std::min(columns, shape.pixels - x),
                                     shape.channels};
            ArithCall part = call;
            part.word = JORM_WORD(3);
            part.size = size;
            int32_t stride[1 + max_sources][3];
            for (int i = 0; i <= sources; ++i) {
                Operand &o = part.operand[i];
                stride[i][0] = row_stride(shape, o);
                stride[i][1] = pixel_stride(shape, o);
                stride[i][2] = channel_stride(shape, o);
                o.start += int64_t(y) * stride[i][0] + int64_t(x) * stride[i][1];
                o.stride = stride[i];
            }
            const Operand dst = part.operand[0];
            part.operand[0] = operand(type, strip.get(), strip_stride);
            int64_t status = run_kernel(family, line, shape.channels, part);
            if (status == JORM_OK)
                status = _jorma__swtconvert(call.xe, call.options, part.word, size, dst.type, dst.start, dst.stride,
                                            type, strip.get(), strip_stride);
            if (status != JORM_OK) return status;
        }
    return JORM_OK;
}

// -------------------------------------------------------------------- ordering

// The operation with its first two sources exchanged; family_count when it may not be.
Family exchanged(Family f) {
    switch (f) {
    case family_sub:
        return family_rsub;
    case family_rsub:
        return family_sub;
    case family_subq:
        return family_rsubq;
    case family_rsubq:
        return family_subq;
    case family_add:
    case family_mul:
    case family_addq:
    case family_addsq:
    case family_subsq:
    case family_mla:
    case family_mls:
    case family_mlrs:
        return f;
    default:
        return family_count;
    }
}

bool same_memory(const Shape &s, const Operand &a, const Operand &b) {
    return a.start == b.start && a.type == b.type && row_stride(s, a) == row_stride(s, b) &&
           pixel_stride(s, a) == pixel_stride(s, b) && channel_stride(s, a) == channel_stride(s, b);
}

// a + a is twice a: one source to read instead of two. False when there is no such kernel.
bool add_to_itself(const ArithCall &call) {
    static constexpr double two[4] = {2, 2, 2, 2};
    ArithCall twice = call;
    twice.constant[0] = two;
    return dispatch(family_mulC, twice) == JORM_OK;
}

bool complete(Family family, const ArithCall &call) {
    const FamilyKeys &keys = family_keys[family];
    for (int i = 0; i <= keys.sources; ++i)
        if (!call.operand[i].start || !call.operand[i].stride) return false;
    for (int i = 0; i < keys.constants; ++i)
        if (!call.constant[i]) return false;
    return true;
}

} // namespace

int64_t run_kernel(Family family, int line, int channels, ArithCall call) {
    Shape shape;
    const FamilyKeys &keys = family_keys[family];
    if (!complete(family, call) || line < 0) return JORM_EINVAL;
    if (int64_t status = read_shape(shape, call.word, call.size); status != JORM_OK) return status;
    shape.channels = channels;
    // Kernels are told their types by their names: operands need not repeat them.
    for (int i = 0; i <= keys.sources; ++i) call.operand[i].type = keys.keys[line] >> 4 * (keys.sources - i) & 15;

    const Rows &rows = find_rows(level(call.options), family, line), &base = find_rows(level_base, family, line);
    Constants constants(keys.constants, channels);
    const Variant variant = choose(rows, base, call, keys, constants);
    const Row row = variant == Variant::plain     ? rows.plain
                    : variant == Variant::pattern ? rows.pattern
                    : variant == Variant::real    ? rows.real
                    : rows.scaled                 ? rows.scaled
                                                  : base.scaled;
    RowParams params = {call.p, std::ldexp(1.0, std::clamp(call.p, -1000, 1000)), {}};
    const int count = 1 + keys.sources;
    const int length = variant == Variant::plain ? 1 : pattern_length;
    if (channels_fold(shape, call.operand, count)) {
        constants.lay_out(params, call, rows.rule, 0, channels, length);
        walk(make_walk(shape, call.operand, count, -1), row, params);
    } else
        for (int c = 0; c < channels; ++c) {
            constants.lay_out(params, call, rows.rule, c, 1, length);
            walk(make_walk(shape, call.operand, count, c), row, params);
        }
    return JORM_OK;
}

int64_t dispatch(Family family, ArithCall call) {
    Shape shape;
    if (!complete(family, call)) return JORM_EINVAL;
    if (int64_t status = read_shape(shape, call.word, call.size); status != JORM_OK) return status;
    if ((call.options & JORM_OPT_CHANNELS) == 0) call.options |= uint64_t(shape.selected) << 4;

    const int sources = family_keys[family].sources;
    Operand *o = call.operand;
    if (sources >= 2 && exchanged(family) != family_count && wider(o[2].type, o[1].type)) {
        std::swap(o[1], o[2]);
        family = exchanged(family);
    }
    if (family == family_add && same_memory(shape, o[1], o[2]) && add_to_itself(call)) return JORM_OK;

    const uint32_t dst = o[0].type;
    bool formed = dst < 16;
    for (int i = 1; i <= sources; ++i) formed = formed && o[i].type < 16;
    if (const int line = formed ? find_line(family, key_of(call, sources, dst)) : -1; line >= 0)
        return run_kernel(family, line, shape.channels, call);

    uint32_t widest = o[1].type;
    for (int i = 2; i <= sources; ++i)
        if (wider(o[i].type, widest)) widest = o[i].type;
    if (formed && element_size(widest) > element_size(dst) &&
        jorma__tcvtfun_imp(dst, widest, nullptr) != jorma_proc_enotsup)
        if (const int line = find_line(family, key_of(call, sources, widest)); line >= 0)
            return run_through_strip(family, line, widest, shape, call);
    for (int i = 0; i <= sources; ++i)
        if (!well_formed(o[i].type)) return JORM_EINVAL;
    return JORM_ENOTSUP;
}

} // namespace jorm
