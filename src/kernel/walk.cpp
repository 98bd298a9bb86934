#include "kernel/walk.hpp"

#include <algorithm>
#include <cstring>

namespace jorm {
namespace {

// A block stays in the first-level cache and holds whole patterns of constants and whole cache lines.
constexpr int64_t block_bytes = 2048;
constexpr int64_t line = 64;

constexpr int64_t block_elements(int64_t bytes, int32_t element) {
    const int64_t patterns = bytes / element / pattern_length;
    return (patterns < 1 ? 1 : patterns) * pattern_length;
}

// Results are streamed in smaller blocks, so that reading and writing alternate.
constexpr int64_t streamed_block_bytes = 1024;

// From this traffic on, results would leave the cache before anyone reads them: they are written past it, which saves
// reading the lines that they overwrite. With one source that saves less.
constexpr double streaming_bytes_one = 24 << 20, streaming_bytes_more = 16 << 20;

template <class T, int Repeat> void gather_groups(T *t, const char *start, int64_t stride, int64_t n) {
    for (int64_t i = 0; i < n; i += Repeat, start += stride)
        for (int k = 0; k < Repeat; ++k) t[i + k] = *reinterpret_cast<const T *>(start);
}
template <class T> void gather(void *to, const WalkOperand &from, const char *start, int64_t n) {
    static constexpr decltype(&gather_groups<T, 1>) groups[] = {gather_groups<T, 1>, gather_groups<T, 2>,
                                                                gather_groups<T, 3>, gather_groups<T, 4>};
    groups[from.repeat - 1](static_cast<T *>(to), start, from.stride, n);
}
template <class T> void scatter(char *to, int64_t stride, const void *from, int64_t n) {
    const T *f = static_cast<const T *>(from);
    for (int64_t i = 0; i < n; ++i) *reinterpret_cast<T *>(to + i * stride) = f[i];
}

void gather(void *to, const WalkOperand &from, const char *start, int64_t n) {
    switch (from.element) {
    case 1:
        return gather<uint8_t>(to, from, start, n);
    case 2:
        return gather<uint16_t>(to, from, start, n);
    case 4:
        return gather<uint32_t>(to, from, start, n);
    default:
        return gather<uint64_t>(to, from, start, n);
    }
}
void scatter(const WalkOperand &to, char *start, const void *from, int64_t n) {
    switch (to.element) {
    case 1:
        return scatter<uint8_t>(start, to.stride, from, n);
    case 2:
        return scatter<uint16_t>(start, to.stride, from, n);
    case 4:
        return scatter<uint32_t>(start, to.stride, from, n);
    default:
        return scatter<uint64_t>(start, to.stride, from, n);
    }
}

bool dense(const WalkOperand &o) { return o.stride == o.element && o.repeat == 1; }

// The operands that are arrays.
int first_array(const Walk &w) { return w.kind == WalkKind::reduce ? 1 : 0; }

bool all_dense(const Walk &w) {
    bool all = true;
    for (int i = first_array(w); i < w.operands; ++i) all &= dense(w.operand[i]);
    return all;
}

// One axis where the layout allows it: rows of one element, and rows that follow each other in every operand.
void merge_rows(Walk &w) {
    int64_t merged;
    if (w.rows == 1 || __builtin_mul_overflow(w.rows, w.length, &merged)) return;
    for (int i = first_array(w); i < w.operands; ++i) {
        WalkOperand &o = w.operand[i];
        if (w.length == 1)
            o.stride = o.row_stride;
        else if (o.row_stride != (o.repeat == 1 ? w.length : w.length / o.repeat) * o.stride)
            return;
    }
    w.length = merged;
    w.rows = 1;
}

// Dense data: streaming pays when the destination is not narrower than a source and not among the sources, whose lines
// are in the cache anyway.
bool wants_streaming(const Walk &w) {
    int32_t elements = 0;
    for (int i = 0; i < w.operands; ++i) elements += w.operand[i].element;
    if (const double bytes = double(w.rows) * double(w.length) * elements;
        bytes < (w.operands > 2 ? streaming_bytes_more : streaming_bytes_one))
        return false;
    if (w.kind != WalkKind::map) return false;
    auto low = [&](const WalkOperand &o) { return o.start + std::min<int64_t>(0, (w.rows - 1) * o.row_stride); };
    auto high = [&](const WalkOperand &o) {
        return o.start + std::max<int64_t>(0, (w.rows - 1) * o.row_stride) + o.element * w.length;
    };
    for (int i = 1; i < w.operands; ++i)
        if (w.operand[i].element > w.operand[0].element ||
            (low(w.operand[i]) < high(w.operand[0]) && low(w.operand[0]) < high(w.operand[i])))
            return false;
    return true;
}

void walk_streaming(const Walk &w, Row row, const RowParams &params) {
    alignas(line) char block[block_bytes];
    const int64_t step = block_elements(streamed_block_bytes, w.operand[0].element);
    for (int64_t y = 0; y < w.rows; ++y) {
        char *dst = w.operand[0].start + y * w.operand[0].row_stride;
        const void *src[max_sources] = {};
        for (int64_t x = 0; x < w.length; x += step) {
            const int64_t n = std::min(step, w.length - x);
            for (int i = 1; i < w.operands; ++i)
                src[i - 1] = w.operand[i].start + y * w.operand[i].row_stride + x * w.operand[i].element;
            row(block, src, n, params);
            params.stream(dst + x * w.operand[0].element, block, n * w.operand[0].element);
        }
    }
    params.stream(nullptr, nullptr, 0);
}

void walk_blocks(const Walk &w, Row row, const RowParams &params) {
    alignas(line) char block[1 + max_sources][block_bytes];
    int32_t widest = 1;
    for (int i = first_array(w); i < w.operands; ++i) widest = std::max(widest, w.operand[i].element);
    const int64_t step = block_elements(block_bytes, widest);
    const bool direct = w.kind == WalkKind::reduce || dense(w.operand[0]);
    for (int64_t y = 0; y < w.rows; ++y)
        for (int64_t x = 0; x < w.length; x += step) {
            const int64_t n = std::min(step, w.length - x);
            char *start[1 + max_sources] = {};
            const void *src[max_sources] = {};
            for (int i = 0; i < w.operands; ++i) {
                const WalkOperand &o = w.operand[i];
                if (i < first_array(w)) {
                    start[i] = o.start;
                    continue;
                }
                start[i] = o.start + y * o.row_stride + x / o.repeat * o.stride;
                if (i > 0) src[i - 1] = dense(o) ? start[i] : block[i];
                if (i > 0 ? !dense(o) : w.kind == WalkKind::update && !direct) gather(block[i], o, start[i], n);
            }
            row(direct ? start[0] : block[0], src, n, params);
            if (!direct) scatter(w.operand[0], start[0], block[0], n);
        }
}

} // namespace

void walk(Walk &w, Row row, const RowParams &params) {
    if (w.rows <= 0 || w.length <= 0) return;
    merge_rows(w);
    if (!all_dense(w)) return walk_blocks(w, row, params);
    if (params.stream && wants_streaming(w)) return walk_streaming(w, row, params);
    const int64_t dst_step = w.kind == WalkKind::reduce ? 0 : w.operand[0].row_stride;
    for (int64_t y = 0; y < w.rows; ++y) {
        const void *src[max_sources] = {};
        for (int i = 1; i < w.operands; ++i) src[i - 1] = w.operand[i].start + y * w.operand[i].row_stride;
        row(w.operand[0].start + y * dst_step, src, w.length, params);
    }
}

} // namespace jorm
