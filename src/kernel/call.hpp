// One call of a dispatcher or kernel: flat arguments that describe up to three axes, and their way into walks.
#pragma once
#include "array/element.hpp"
#include "jorm/types.h"
#include "kernel/walk.hpp"

namespace jorm {

// A typed start pointer with its strides, addressed at the first used slot.
struct Operand {
    uint32_t type;
    char *start;
    const int32_t *stride;
    bool by_pixel; // one element for all channels of a pixel: a mask

    Operand() {} // arrays of operands have room for more than a call uses
    Operand(uint32_t type, char *start, const int32_t *stride, bool by_pixel = false)
        : type(type), start(start), stride(stride), by_pixel(by_pixel) {}
    // Member by member: a copy in wide pieces would wait for narrow stores of a moment before.
    Operand(const Operand &o) : Operand(o.type, o.start, o.stride, o.by_pixel) {}
    Operand &operator=(const Operand &o) {
        type = o.type;
        start = o.start;
        stride = o.stride;
        by_pixel = o.by_pixel;
        return *this;
    }
};
inline Operand operand(uint32_t type, const void *start, const int32_t *stride) {
    return {type, static_cast<char *>(const_cast<void *>(start)), stride};
}

// What the packed count word and the size vector say: words with two used slots (one row) serve as well as three.
struct Shape {
    int32_t axes;
    int32_t rows, pixels, channels;
    uint32_t selected; // channel mask that travels in bits 4-7 of the channel slot
};

inline int64_t read_shape(Shape &shape, uint32_t word, const int32_t *size) {
    const int32_t axes = int32_t(word & 15);
    if (axes == 4) return JORM_ENOTSUP;
    if (axes < 2 || axes > 4 || !size) return JORM_EINVAL;
    const uint32_t code = uint32_t(size[axes - 1]);
    shape = {axes, axes == 3 ? size[0] : 1, size[axes - 2], stored_channels(code & 15), code >> 4 & 15};
    return shape.channels >= 1 && shape.channels <= 4 ? JORM_OK : JORM_EINVAL;
}

inline int32_t row_stride(const Shape &s, const Operand &o) { return s.axes == 3 ? o.stride[0] : 0; }
inline int32_t pixel_stride(const Shape &s, const Operand &o) { return o.stride[s.axes - 2]; }
inline int32_t channel_stride(const Shape &s, const Operand &o) {
    return o.stride[s.axes - 1]; // NOLINT(clang-analyzer-core.NullDereference): checked with the start
}

// Do the channels of every operand fold into the rows: are the pixels dense?
inline bool channels_fold(const Shape &s, const Operand *operands, int count) {
    for (int i = 0; i < count && s.channels > 1; ++i)
        if (!operands[i].by_pixel &&
            (channel_stride(s, operands[i]) != element_size(operands[i].type) ||
             (s.pixels > 1 && pixel_stride(s, operands[i]) != s.channels * element_size(operands[i].type))))
            return false;
    return true;
}

// The walk over all channels folded into the rows (channel < 0), or over one of them.
inline Walk make_walk(const Shape &s, const Operand *operands, int count, int channel, Level level) {
    const bool fold = channel < 0 && s.channels > 1;
    Walk w;
    w.rows = s.rows;
    w.length = fold ? int64_t(s.pixels) * s.channels : s.pixels;
    w.operands = count;
    w.transport = &transport_at(level);
    for (int i = 0; i < count; ++i) {
        const Operand &o = operands[i];
        const int32_t element = element_size(o.type);
        const int64_t skip = channel > 0 && !o.by_pixel ? int64_t(channel) * channel_stride(s, o) : 0;
        w.operand[i] = {o.start + skip, row_stride(s, o), fold && !o.by_pixel ? element : pixel_stride(s, o), element,
                        fold && o.by_pixel ? s.channels : 1};
    }
    return w;
}

// The elements of one run over everything, 0 where the layout does not allow that: operands without a gap, all alike.
inline int64_t one_run(const Shape &s, const Operand *operands, int count) {
    const int64_t row = int64_t(s.pixels) * s.channels;
    bool dense = s.axes == 3;
    for (int i = 0; i < count && dense; ++i) {
        const Operand &o = operands[i];
        const int64_t element = element_size(o.type);
        dense = o.stride[0] == row * element && o.stride[1] == s.channels * element &&
                (s.channels == 1 || (o.stride[2] == element && !o.by_pixel));
    }
    return dense && s.rows > 0 && s.pixels > 0 ? s.rows * row : 0;
}

// Runs the row over all channels, folded where the layout allows it, else one after the other.
inline void walk_channels(const Shape &s, const Operand *operands, int count, Row row, const RowParams &params,
                          Level level, WalkKind kind = WalkKind::map) {
    constexpr int64_t small = 1 << 18; // never streamed
    if (const int64_t run = one_run(s, operands, count); run > 0 && run < small) {
        const void *src[max_sources];
        for (int i = 1; i < count; ++i) src[i - 1] = operands[i].start;
        return row(operands[0].start, src, run, params);
    }
    const bool fold = channels_fold(s, operands, count);
    for (int c = 0; c < (fold ? 1 : s.channels); ++c) {
        Walk w = make_walk(s, operands, count, fold ? -1 : c, level);
        w.kind = kind;
        walk(w, row, params);
    }
}

} // namespace jorm
