#include "kernel/walk.hpp"

#include <algorithm>

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

int log2_size(const WalkOperand &o) { return __builtin_ctz(unsigned(o.element)); }

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
    const auto stream = w.transport->stream;
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
            stream(dst + x * w.operand[0].element, block, n * w.operand[0].element);
        }
    }
    stream(nullptr, nullptr, 0);
}

void walk_blocks(const Walk &w, Row row, const RowParams &params) {
    alignas(line) char block[1 + max_sources][block_bytes];
    int32_t widest = 1;
    for (int i = first_array(w); i < w.operands; ++i) widest = std::max(widest, w.operand[i].element);
    const int64_t step = block_elements(block_bytes, widest);
    const WalkOperand &dst = w.operand[0];
    const bool spread = w.kind != WalkKind::reduce && !dense(dst);
    for (int64_t y = 0; y < w.rows; ++y)
        for (int64_t x = 0; x < w.length; x += step) {
            const int64_t n = std::min(step, w.length - x);
            char *start[1 + max_sources], *run[1 + max_sources]; // in the array; dense
            start[0] = run[0] = dst.start;
            for (int i = first_array(w); i < w.operands; ++i) {
                const WalkOperand &o = w.operand[i];
                start[i] = run[i] = o.start + y * o.row_stride + x / o.repeat * o.stride;
                if (dense(o)) continue;
                run[i] = block[i];
                if (i > 0 || w.kind == WalkKind::update)
                    w.transport->gather[log2_size(o)](block[i], start[i], o.stride, o.repeat, n);
            }
            const void *src[max_sources] = {};
            for (int i = 1; i < w.operands; ++i) src[i - 1] = run[i];
            row(run[0], src, n, params);
            if (spread) w.transport->scatter[log2_size(dst)](start[0], dst.stride, block[0], n);
        }
}

} // namespace

void walk(Walk &w, Row row, const RowParams &params) {
    if (w.rows <= 0 || w.length <= 0) return;
    merge_rows(w);
    if (!all_dense(w)) return walk_blocks(w, row, params);
    if (w.transport->stream && wants_streaming(w)) return walk_streaming(w, row, params);
    const int64_t dst_step = w.kind == WalkKind::reduce ? 0 : w.operand[0].row_stride;
    for (int64_t y = 0; y < w.rows; ++y) {
        const void *src[max_sources] = {};
        for (int i = 1; i < w.operands; ++i) src[i - 1] = w.operand[i].start + y * w.operand[i].row_stride;
        row(w.operand[0].start + y * dst_step, src, w.length, params);
    }
}

} // namespace jorm
