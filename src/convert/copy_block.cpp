#include "convert/copy_block.hpp"

#include "xe/scratch.hpp"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace jorm {
namespace {

void move_bytes(void *dst, const void *src, int64_t bytes, int64_t) { std::memmove(dst, src, size_t(bytes)); }

template <int64_t Unit> void step_units(char *dst, int64_t dst_step, const char *src, int64_t src_step, int64_t n) {
    for (; n > 0; --n, dst += dst_step, src += src_step) {
        char unit[Unit];
        std::memcpy(unit, src, Unit);
        std::memcpy(dst, unit, Unit);
    }
}

// Bytes in the opposite order; `src` is the last of them.
void reverse_bytes(char *dst, const char *src, int64_t n) {
    for (; n >= 8; n -= 8, dst += 8, src -= 8) {
        uint64_t word;
        std::memcpy(&word, src - 7, 8);
        word = __builtin_bswap64(word);
        std::memcpy(dst, &word, 8);
    }
    step_units<1>(dst, 1, src, -1, n);
}

// Units that follow each other, all like the first: what stands already is doubled.
void repeat_unit(char *dst, const char *src, int64_t n, int64_t unit) {
    std::memcpy(dst, src, size_t(unit));
    for (int64_t done = unit, all = n * unit; done < all;) {
        const int64_t more = std::min(done, all - done);
        std::memcpy(dst + done, dst, size_t(more));
        done += more;
    }
}

// Axes of one unit go; axes whose units follow each other become part of the unit.
void fold_axes(CopyBlock &b) {
    int kept = 0;
    for (int i = 0; i < b.axes; ++i)
        if (b.axis[i].size != 1) b.axis[kept++] = b.axis[i];
    b.axes = kept;
    for (int i = b.axes - 1; i >= 0; --i) {
        if (b.axis[i].dst != b.unit || b.axis[i].src != b.unit) continue;
        b.unit *= b.axis[i].size;
        std::copy(b.axis + i + 1, b.axis + b.axes, b.axis + i);
        i = --b.axes;
    }
}

void reverse_axis(CopyBlock &b, CopyBlock::Axis &a) {
    b.dst += (a.size - 1) * a.dst;
    b.src += (a.size - 1) * a.src;
    a.dst = -a.dst;
    a.src = -a.src;
}

void run_axes(CopyBytes copy, const CopyBlock &b, const Transport *apart = nullptr) {
    CopyBlock::Axis a[4] = {{1, 0, 0}, {1, 0, 0}, {1, 0, 0}, {1, 0, 0}};
    std::copy(b.axis, b.axis + b.axes, a + 4 - b.axes);
    for (int64_t i = 0; i < a[0].size; ++i)
        for (int64_t j = 0; j < a[1].size; ++j)
            for (int64_t k = 0; k < a[2].size; ++k)
                copy_units(copy, b.dst + i * a[0].dst + j * a[1].dst + k * a[2].dst, a[3].dst,
                           b.src + i * a[0].src + j * a[1].src + k * a[2].src, a[3].src, a[3].size, b.unit, 0, apart);
}

// Memory of the two does not overlap: any order will do.
void run_apart(uint64_t options, CopyBlock &b) {
    const Level which = level(options);
    const CopyBytes copy = memory_rows_at(which).copy;
    if (b.axes == 0) return copy(b.dst, b.src, b.unit, 0);
    // The longer one of the two inner axes makes the longer runs.
    if (b.axes > 1 && b.axis[b.axes - 1].size < 8 && b.axis[b.axes - 2].size > b.axis[b.axes - 1].size)
        std::swap(b.axis[b.axes - 1], b.axis[b.axes - 2]);
    run_axes(copy, b, &transport_at(which));
}

// How far the addresses of a block's destination or source reach from its start.
struct Span {
    int64_t low, high;
};
Span span_of(const CopyBlock &b, int from, int64_t CopyBlock::Axis::*stride) {
    Span s = {0, b.unit};
    for (int i = from; i < b.axes; ++i) {
        const int64_t reach = (b.axis[i].size - 1) * (b.axis[i].*stride);
        (reach < 0 ? s.low : s.high) += reach;
    }
    return s;
}

enum class Order { ascending, descending, none };

// The source's units lie in ascending order. Copying in that order is safe when no unit moves up, in the opposite order
// when none moves down.
Order order_of_units(const CopyBlock &b) {
    int64_t inside = b.unit;
    int64_t least = b.dst - b.src, most = least;
    for (int i = b.axes - 1; i >= 0; --i) {
        const CopyBlock::Axis &a = b.axis[i];
        if (a.src < inside) return Order::none;
        inside += (a.size - 1) * a.src;
        const int64_t drift = (a.size - 1) * (a.dst - a.src);
        (drift < 0 ? least : most) += drift;
    }
    return most <= 0 ? Order::ascending : least >= 0 ? Order::descending : Order::none;
}

// The same for slices along the outermost axis: none may be written where a later one is still to be read.
Order order_of_slices(const CopyBlock &b) {
    if (b.axes < 2) return Order::none;
    const Span dst = span_of(b, 1, &CopyBlock::Axis::dst), src = span_of(b, 1, &CopyBlock::Axis::src);
    const CopyBlock::Axis &a = b.axis[0];
    const int64_t between = b.dst - b.src, drift = (a.size - 2) * (a.dst - a.src);
    const int64_t above = between + dst.high - a.src - src.low; // of slice 0 above the start of slice 1
    const int64_t below = between + a.dst + dst.low - src.high; // of slice 1 below the end of slice 0
    if (above <= 0 && above + drift <= 0) return Order::ascending;
    if (below >= 0 && below + drift >= 0) return Order::descending;
    return Order::none;
}

// How many bytes of scratch memory a block takes, -1 for more than there can be. Copies it when `memory` is given (any
// pointer will do where none is needed).
int64_t through_scratch(uint64_t options, const CopyBlock &b, char *memory) {
    CopyBlock in = b, out = b;
    int64_t bytes = b.unit;
    for (int i = b.axes - 1; i >= 0; --i) {
        in.axis[i].dst = out.axis[i].src = bytes;
        if (__builtin_mul_overflow(bytes, b.axis[i].size, &bytes)) return -1;
    }
    if (!memory) return bytes;
    in.dst = memory;
    out.src = in.dst;
    run_apart(options, in);
    run_apart(options, out);
    return bytes;
}

int64_t copy_any(uint64_t options, CopyBlock b, char *memory);

// The same for blocks whose source and destination overlap.
int64_t copy_overlapping(uint64_t options, CopyBlock &b, char *memory) {
    for (int i = 0; i < b.axes; ++i)
        if (b.axis[i].src < 0) reverse_axis(b, b.axis[i]);
    for (int i = 1; i < b.axes; ++i)
        for (int j = i; j > 0 && b.axis[j - 1].src < b.axis[j].src; --j) std::swap(b.axis[j - 1], b.axis[j]);
    if (const Order order = order_of_units(b); order != Order::none) {
        if (!memory) return 0;
        if (order == Order::descending)
            for (int i = 0; i < b.axes; ++i) reverse_axis(b, b.axis[i]);
        run_axes(move_bytes, b);
        return 0;
    }
    const Order order = order_of_slices(b);
    if (order == Order::none) return through_scratch(options, b, memory);
    if (order == Order::descending) reverse_axis(b, b.axis[0]);
    int64_t most = 0;
    for (int64_t i = 0; i < b.axis[0].size; ++i) {
        CopyBlock slice = b;
        slice.dst += i * b.axis[0].dst;
        slice.src += i * b.axis[0].src;
        std::copy(b.axis + 1, b.axis + b.axes, slice.axis);
        --slice.axes;
        const int64_t bytes = copy_any(options, slice, memory);
        if (bytes < 0) return bytes;
        most = std::max(most, bytes);
    }
    return most;
}

bool lie_apart(const CopyBlock &b) {
    const Span dst = span_of(b, 0, &CopyBlock::Axis::dst), src = span_of(b, 0, &CopyBlock::Axis::src);
    return b.dst + dst.high <= b.src + src.low || b.src + src.high <= b.dst + dst.low;
}

// Is there nothing to copy, because a size is empty or everything stands in its place?
bool nothing_to_copy(const CopyBlock &b) {
    bool same = b.dst == b.src;
    for (int i = 0; i < b.axes; ++i) {
        if (b.axis[i].size < 1) return true;
        same = same && (b.axis[i].size == 1 || b.axis[i].dst == b.axis[i].src);
    }
    return same;
}

int64_t copy_any(uint64_t options, CopyBlock b, char *memory) {
    if (nothing_to_copy(b)) return 0;
    fold_axes(b);
    if (!lie_apart(b)) return copy_overlapping(options, b, memory);
    if (memory) run_apart(options, b);
    return 0;
}

// What an operand's inner axes, from `from` on, span about its start.
Span span_of(int axes, int from, const int32_t *size, int32_t channels, const Operand &o) {
    Span s = {0, element_size(o.type)};
    for (int i = from; i < axes; ++i) {
        const int64_t n = i + 1 < axes ? size[i] : o.by_pixel ? 1 : channels;
        const int64_t reach = (n - 1) * o.stride[i];
        (reach < 0 ? s.low : s.high) += reach;
    }
    return s;
}

} // namespace

void copy_steps(CopyBytes copy, char *dst, int64_t dst_step, const char *src, int64_t src_step, int64_t n, int64_t unit,
                const Transport *apart) {
    if (src_step == 0 && dst_step == unit) return repeat_unit(dst, src, n, unit);
    if (apart && dst_step == unit && src_step > 0 && unit <= 8 && (unit & (unit - 1)) == 0)
        return apart->gather[__builtin_ctz(unsigned(unit))](dst, src, src_step, 1, n);
    switch (unit) {
    case 1:
        if (dst_step == 1 && src_step == -1) return reverse_bytes(dst, src, n);
        return step_units<1>(dst, dst_step, src, src_step, n);
    case 2:
        return step_units<2>(dst, dst_step, src, src_step, n);
    case 3:
        return step_units<3>(dst, dst_step, src, src_step, n);
    case 4:
        return step_units<4>(dst, dst_step, src, src_step, n);
    case 6:
        return step_units<6>(dst, dst_step, src, src_step, n);
    case 8:
        return step_units<8>(dst, dst_step, src, src_step, n);
    case 12:
        return step_units<12>(dst, dst_step, src, src_step, n);
    case 16:
        return step_units<16>(dst, dst_step, src, src_step, n);
    default:
        for (; n > 0; --n, dst += dst_step, src += src_step) copy(dst, src, unit, src_step);
    }
}

int64_t copy_block(jorm_xe *xe, uint64_t options, CopyBlock &&b) {
    if (nothing_to_copy(b)) return JORM_OK;
    fold_axes(b);
    if (lie_apart(b)) {
        run_apart(options, b);
        return JORM_OK;
    }
    // What memory that takes is known before anything is written.
    const int64_t bytes = copy_any(options, b, nullptr);
    if (bytes == 0) {
        copy_any(options, b, b.dst);
        return JORM_OK;
    }
    if (!xe) return JORM_EINVAL;
    if (bytes < 0) return JORM_ENOMEM;
    const Scratch scratch(xe, size_t(bytes), 64);
    if (!scratch) return JORM_ENOMEM;
    copy_any(options, b, scratch.as<char>());
    return JORM_OK;
}

CopyBlock block_of(int axes, const int32_t *size, int32_t channels, const Operand &dst, const Operand &src) {
    CopyBlock b = {axes, {}, dst.start, src.start, element_size(dst.type)};
    for (int i = 0; i < axes; ++i) b.axis[i] = {i + 1 < axes ? size[i] : channels, dst.stride[i], src.stride[i]};
    return b;
}

int64_t copy_elements(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const Operand &dst,
                      const Operand &src) {
    Shape shape;
    if (!dst.start || !dst.stride || !src.start || !src.stride) return JORM_EINVAL;
    if (int64_t status = read_shape(shape, word, size); status != JORM_OK) return status;
    if (dst.type != src.type || !well_formed(dst.type)) return JORM_EINVAL;
    if (element_size(dst.type) == 0) return JORM_ENOTSUP;
    const Operand operands[] = {dst, src};
    if (const int64_t bytes = one_run(shape, operands, 2) * element_size(dst.type);
        bytes > 0 && std::llabs(dst.start - src.start) >= bytes) {
        memory_rows_at(level(options)).copy(dst.start, src.start, bytes, 0);
        return JORM_OK;
    }
    return copy_block(xe, options, block_of(shape.axes, size, shape.channels, dst, src));
}

bool may_meet(int axes, int32_t channels, const int32_t *size_a, const Operand &a, const int32_t *size_b,
              const Operand &b, int32_t channels_b) {
    if (channels_b == 0) channels_b = channels;
    const int64_t distance = b.start - a.start;
    const Span s = span_of(axes, 0, size_a, channels, a), t = span_of(axes, 0, size_b, channels_b, b);
    if (s.high <= distance + t.low || distance + t.high <= s.low) return false;
    // Interleaved operands, like the two halves of a picture or two channels of it, part modulo a stride that divides
    // all outer ones.
    for (int k = 0; k + 1 < axes; ++k) {
        const int64_t period = a.stride[k] < 0 ? -int64_t(a.stride[k]) : a.stride[k];
        const auto divides = [&](const int32_t *size, const Operand &o, int i) {
            return size[i] <= 1 || o.stride[i] % period == 0;
        };
        bool outer = period != 0;
        for (int i = 0; i <= k && outer; ++i) outer = divides(size_a, a, i) && divides(size_b, b, i);
        if (!outer) continue;
        const Span in_a = span_of(axes, k + 1, size_a, channels, a), in_b = span_of(axes, k + 1, size_b, channels_b, b);
        const int64_t rest = (distance + in_b.low - in_a.low) % period, offset = rest < 0 ? rest + period : rest;
        if (offset >= in_a.high - in_a.low && offset + (in_b.high - in_b.low) <= period) return false;
    }
    return true;
}

bool coincide(int axes, const int32_t *size, int32_t channels, const Operand &a, const Operand &b) {
    bool same = a.start == b.start && element_size(a.type) == element_size(b.type) &&
                (a.by_pixel == b.by_pixel || channels == 1);
    for (int i = 0; i < axes && same; ++i)
        same = a.stride[i] == b.stride[i] || (i + 1 < axes ? size[i] : a.by_pixel ? 1 : channels) == 1;
    return same;
}

} // namespace jorm
