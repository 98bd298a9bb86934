#include "arith/dispatch.hpp"

#include "jorm/arith.h"
#include "jorm/convert.h"
#include "jorm/shapes.h"
#include "xe/scratch.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

namespace jorm {

namespace {

// ------------------------------------------------------------------ constants

// From 2^52 on every number is whole.
bool is_whole(double c) {
    if (std::fabs(c) < 0x1p52) return double(int64_t(c)) == c;
    return std::isfinite(c);
}

bool obeys(ConstantRule rule, double c) {
    switch (rule) {
    case ConstantRule::none:
        return false;
    case ConstantRule::low_bits:
        return is_whole(c);
    case ConstantRule::saturated:
        return is_whole(c) && std::fabs(c) <= 2147483647.0;
    case ConstantRule::small:
        return is_whole(c) && std::fabs(c) <= 16777216.0;
    case ConstantRule::single:
        return std::isnan(c) || double(float(c)) == c;
    case ConstantRule::any:
    case ConstantRule::rounded:
    case ConstantRule::element:
    case ConstantRule::factor:
        return true;
    }
    return false;
}

// What a constant is as an integer: the low 32 bits of the number rounded to nearest even.
int32_t low_bits(double c) {
    if (std::fabs(c) < 0x1p62) return int32_t(uint32_t(uint64_t(__builtin_llrint(c))));
    return std::isfinite(c) ? int32_t(uint32_t(int64_t(std::fmod(std::nearbyint(c), 4294967296.0)))) : INT32_MIN;
}

// The constants of some channels of a call.
struct Constants {
    const ArithCall &call;
    int count; // per channel
    int first, channels;

    double at(int i, int channel) const { return call.constant[i][first + channel]; }
    template <class F> bool all(F f) const {
        for (int i = 0; i < count; ++i)
            for (int c = 0; c < channels; ++c)
                if (!f(at(i, c))) return false;
        return true;
    }
    bool uniform() const {
        for (int i = 0; i < count; ++i)
            for (int c = 1; c < channels; ++c)
                if (!(at(i, c) == at(i, 0))) return false;
        return true;
    }
    // Writes the patterns, or the first `length` entries of them.
    void lay_out(ConstantPattern *pattern, int length) const {
        for (int i = 0; i < count; ++i, ++pattern) {
            for (int j = 0; j < std::min(channels, length); ++j) {
                pattern->real[j] = at(i, j);
                pattern->whole[j] = low_bits(at(i, j));
            }
            for (int j = channels; j < length; ++j) {
                pattern->real[j] = pattern->real[j - channels];
                pattern->whole[j] = pattern->whole[j - channels];
            }
        }
    }
};

// The constants of a call as its rows take them.
struct Prepared {
    double constant[4];

    void prepare(ConstantRule rule, int32_t channels, ArithCall &call) {
        if (rule == ConstantRule::element) {
            char pixel[16];
            const uint32_t type = call.operand[0].type;
            jorm_mkifillvalv16(type, pixel, call.constant[0], channels);
            for (int32_t c = 0; c < channels; ++c) constant[c] = read(type, pixel, c);
        } else if (rule == ConstantRule::factor) {
            // Below all numbers is not nothing: its product with infinity is infinite.
            for (int32_t c = 0; c < channels; ++c) {
                const double k = call.constant[0][c], scaled = std::ldexp(k, std::clamp(call.p, -5000, 5000));
                constant[c] = scaled == 0 && k != 0 ? std::copysign(0x1p-1074, k) : scaled;
            }
            call.p = 0;
        } else
            return;
        call.constant[0] = constant;
    }

private:
    template <class T> static double element(const char *pixel, int32_t i) {
        T v;
        std::memcpy(&v, pixel + i * sizeof v, sizeof v);
        return double(v);
    }
    static double read(uint32_t type, const char *pixel, int32_t i) {
        switch (type) {
        case JORM_U8:
            return element<uint8_t>(pixel, i);
        case JORM_S8:
            return element<int8_t>(pixel, i);
        case JORM_S16:
            return element<int16_t>(pixel, i);
        case JORM_S32:
            return element<int32_t>(pixel, i);
        default:
            return element<float>(pixel, i);
        }
    }
};

enum class Variant { plain, pattern, scaled, real };

// Rows in double precision are exact for whole numbers as well, as long as no result leaves 32 bits.
bool fits_real_rows(const Family &family, const Constants &constants) {
    const ArithCall &call = constants.call;
    double bound = 1;
    for (int i = 1; i <= family.sources; ++i)
        bound = std::max(bound, std::ldexp(1.0, 8 * element_size(call.operand[i].type)));
    return constants.all([&](double c) {
        const double most = 2 * (bound + 1) * (std::fabs(c) + 1);
        return std::ldexp(family.squares ? most * most : most, std::clamp(call.p, 0, 64)) < 2147483648.0;
    });
}

Variant choose(const Family &family, const Rows &rows, const Rows &base, const Constants &constants) {
    const bool unscaled = constants.call.p == 0 || rows.rule == ConstantRule::rounded;
    if (unscaled && rows.plain && constants.all([&](double c) { return obeys(rows.rule, c); }))
        return constants.uniform() ? Variant::plain : Variant::pattern;
    return base.scaled && constants.all(is_whole) && !fits_real_rows(family, constants) ? Variant::scaled
                                                                                        : Variant::real;
}

Row row_of(Variant variant, const Rows &rows, const Rows &base) {
    switch (variant) {
    case Variant::plain:
        return rows.plain;
    case Variant::pattern:
        return rows.pattern;
    case Variant::real:
        return rows.real;
    default:
        return rows.scaled ? rows.scaled : base.scaled;
    }
}

// --------------------------------------------------------------------- running

// Constant forms: channels run together where their pixels are dense and their constants call for the same rows.
void run_with_constants(const Family &family, const Rows &rows, const Rows &base, const Shape &shape,
                        const ArithCall &call, RowParams &params, Level which) {
    const int channels = shape.channels, operands = 1 + family.sources;
    ConstantPattern pattern[2];
    params.constants[0] = &pattern[0];
    params.constants[1] = &pattern[1];

    const Constants all = {call, family.constants, 0, channels};
    const Variant variant = choose(family, rows, base, all);
    bool together = channels_fold(shape, call.operand, operands);
    if (variant == Variant::real || variant == Variant::scaled)
        for (int c = 0; c < channels && channels > 1; ++c)
            together = together && choose(family, rows, base, {call, family.constants, c, 1}) == variant;
    if (together) {
        all.lay_out(pattern, variant == Variant::plain ? 1 : pattern_length);
        // `params` ends with this call. NOLINTNEXTLINE(clang-analyzer-core.StackAddressEscape)
        return walk_channels(shape, call.operand, operands, row_of(variant, rows, base), params, which);
    }
    for (int c = 0; c < channels; ++c) {
        const Constants one = {call, family.constants, c, 1};
        const Variant own = choose(family, rows, base, one);
        one.lay_out(pattern, own == Variant::plain ? 1 : pattern_length);
        Walk w = make_walk(shape, call.operand, operands, c, which);
        walk(w, row_of(own, rows, base), params);
    }
}

// Runs the kernel on operands that have been checked and know their types.
int64_t run(const Family &family, int line, const Shape &shape, ArithCall &call) {
    const Level which = level(call.options);
    const Rows &rows = family.rows[which][line], &base = family.rows[level_base][line];
    Prepared constants;
    if (family.constants > 0) constants.prepare(rows.rule, shape.channels, call);
    RowParams params;
    if (call.p != 0) {
        params.shift = std::clamp(call.p, -200, 200); // from there on nothing changes
        params.scale = std::ldexp(1.0, std::clamp(call.p, -1000, 1000));
    }
    if (family.constants > 0)
        run_with_constants(family, rows, base, shape, call, params, which);
    else
        walk_channels(shape, call.operand, 1 + family.sources,
                      row_of(call.p == 0 ? Variant::plain : Variant::scaled, rows, base), params, which);
    return JORM_OK;
}

// ---------------------------------------------------------------------- strips

constexpr int64_t strip_bytes = 32768;

bool is_float(uint32_t type) { return type == JORM_F32; }

bool wider(uint32_t a, uint32_t b) {
    const int sa = element_size(a), sb = element_size(b);
    return sa != sb ? sa > sb : is_float(a) && !is_float(b);
}

uint32_t key_of(const ArithCall &call, int sources, uint32_t dst) {
    uint32_t key = dst;
    for (int i = 1; i <= sources; ++i) key = key << 4 | call.operand[i].type;
    return key;
}

// Runs the kernel with a destination of the widest source's type, strip by strip, and converts each strip.
int64_t run_through_strip(const Family &family, int line, uint32_t type, const Shape &shape, const ArithCall &call) {
    if (!call.xe) return JORM_EINVAL;
    if (shape.rows < 1 || shape.pixels < 1) return JORM_OK;
    const int sources = family.sources;
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
            int32_t stride[1 + max_sources][3];
            Operand operands[1 + max_sources];
            for (int i = 0; i <= sources; ++i) {
                Operand &o = operands[i] = call.operand[i];
                stride[i][0] = row_stride(shape, o);
                stride[i][1] = pixel_stride(shape, o);
                stride[i][2] = channel_stride(shape, o);
                o.start += int64_t(y) * stride[i][0] + int64_t(x) * stride[i][1];
                o.stride = stride[i];
            }
            const Operand dst = operands[0];
            operands[0] = operand(type, strip.get(), strip_stride);
            ArithCall part = call;
            part.word = JORM_WORD(3);
            part.size = size;
            part.operand = operands;
            const Shape part_shape = {3, size[0], size[1], shape.channels, 0};
            int64_t status = run(family, line, part_shape, part);
            if (status == JORM_OK)
                status = _jorma__swtconvert(call.xe, call.options, part.word, size, dst.type, dst.start, dst.stride,
                                            type, strip.get(), strip_stride);
            if (status != JORM_OK) return status;
        }
    return JORM_OK;
}

// -------------------------------------------------------------------- ordering

bool same_memory(const Shape &s, const Operand &a, const Operand &b) {
    return a.start == b.start && a.type == b.type && row_stride(s, a) == row_stride(s, b) &&
           pixel_stride(s, a) == pixel_stride(s, b) && channel_stride(s, a) == channel_stride(s, b);
}

// a + a is twice a: one source to read instead of two. False when there is no such kernel.
bool add_to_itself(const Family &product, const ArithCall &call) {
    static constexpr double two[4] = {2, 2, 2, 2};
    ArithCall twice = call;
    twice.constant[0] = two;
    return dispatch(product, twice) == JORM_OK;
}

int64_t check(const Family &family, Shape &shape, const ArithCall &call) {
    for (int i = 0; i <= family.sources; ++i)
        if (!call.operand[i].start || !call.operand[i].stride) return JORM_EINVAL;
    for (int i = 0; i < family.constants; ++i)
        if (!call.constant[i]) return JORM_EINVAL;
    return read_shape(shape, call.word, call.size);
}

} // namespace

int64_t run_kernel(const Family &family, int line, int channels, ArithCall &call) {
    Shape shape;
    if (line < 0) return JORM_EINVAL;
    if (const int64_t status = check(family, shape, call); status != JORM_OK) return status;
    shape.channels = channels;
    // Kernels are told their types by their names: operands need not repeat them.
    for (int i = 0; i <= family.sources; ++i) call.operand[i].type = family.keys[line] >> 4 * (family.sources - i) & 15;
    return run(family, line, shape, call);
}

int64_t dispatch(const Family &called, ArithCall &call) {
    Shape shape;
    if (const int64_t status = check(called, shape, call); status != JORM_OK) return status;
    if ((call.options & JORM_OPT_CHANNELS) == 0) call.options |= uint64_t(shape.selected) << 4;

    const int sources = called.sources;
    Operand *o = call.operand;
    const bool exchange = sources >= 2 && wider(o[2].type, o[1].type) && called.exchanged;
    if (exchange) std::swap(o[1], o[2]);
    const Family &family = exchange ? *called.exchanged : called;

    const uint32_t dst = o[0].type;
    uint32_t codes = 0;
    for (int i = 0; i <= sources; ++i) codes |= o[i].type;
    const bool formed = codes < 16;
    if (const int line = formed ? family.find_line(key_of(call, sources, dst)) : -1; line >= 0) {
        if (family.doubled && same_memory(shape, o[1], o[2]) && add_to_itself(*family.doubled, call)) return JORM_OK;
        return run(family, line, shape, call);
    }

    uint32_t widest = o[1].type;
    for (int i = 2; i <= sources; ++i)
        if (wider(o[i].type, widest)) widest = o[i].type;
    if (formed && family.narrows && element_size(widest) > element_size(dst) &&
        jorma__tcvtfun_imp(dst, widest, nullptr) != jorma_proc_enotsup)
        if (const int line = family.find_line(key_of(call, sources, widest)); line >= 0)
            return run_through_strip(family, line, widest, shape, call);
    for (int i = 0; i <= sources; ++i)
        if (!well_formed(o[i].type)) return JORM_EINVAL;
    return JORM_ENOTSUP;
}

} // namespace jorm
