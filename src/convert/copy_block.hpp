// Copies between strided layouts, whatever their overlap.
#pragma once
#include "convert/memory_rows.hpp"
#include "kernel/call.hpp"
#include "kernel/level_table.hpp"

namespace jorm {

JORM_LEVEL_TABLE(const MemoryRows, memory_rows);

inline const MemoryRows &memory_rows_at(Level which) { return JORM_OF_LEVEL(memory_rows, which)[0]; }

// A block of up to four axes of units; strides are bytes.
struct CopyBlock {
    struct Axis {
        int64_t size, dst, src;
    };
    int axes;
    Axis axis[4]; // the outermost first
    char *dst;
    const char *src;
    int64_t unit; // bytes
};

// Copies as if the source were read first. Where no order of copying does that, the source goes through scratch memory
// of the size of the block, or of one slice where slices do not get in each other's way: JORM_EINVAL when that is
// wanted and `xe` is null, JORM_ENOMEM when it cannot be had.
int64_t copy_block(jorm_xe *xe, uint64_t options, CopyBlock &&block);

// The block of two operands of one element size, in `axes` slots; the last of them, the channels, counts `channels`.
CopyBlock block_of(int axes, const int32_t *size, int32_t channels, const Operand &dst, const Operand &src);

// Copies elements of any layout: the typed copy behind every entry. Types that differ or have no size are refused.
int64_t copy_elements(jorm_xe *xe, uint64_t options, uint32_t word, const int32_t *size, const Operand &dst,
                      const Operand &src);

// False only when no byte belongs to both operands, each of a size of its own and, when told, channels of its own.
bool may_meet(int axes, int32_t channels, const int32_t *size_a, const Operand &a, const int32_t *size_b,
              const Operand &b, int32_t channels_b = 0);

// Do both operands name the same elements in the same order?
bool coincide(int axes, const int32_t *size, int32_t channels, const Operand &a, const Operand &b);

// n units at the steps given, in this order, or in any where the two lie `apart`. `copy` serves long runs; they overlap
// only if it can do that. The source of the next call lies `next` bytes further.
void copy_steps(CopyBytes copy, char *dst, int64_t dst_step, const char *src, int64_t src_step, int64_t n, int64_t unit,
                const Transport *apart);
inline void copy_units(CopyBytes copy, char *dst, int64_t dst_step, const char *src, int64_t src_step, int64_t n,
                       int64_t unit, int64_t next = 0, const Transport *apart = nullptr) {
    if (n == 1 || (dst_step == unit && src_step == unit))
        copy(dst, src, n * unit, next);
    else if (unit == 1 && n < 8) // narrow margins are not worth a call
        for (int64_t i = 0; i < n; ++i) dst[i * dst_step] = src[i * src_step];
    else
        copy_steps(copy, dst, dst_step, src, src_step, n, unit, apart);
}

// Rows of bytes that each repeat a pattern of `period` (4, 8, 12, 16) bytes from its start on.
void fill_rows(const MemoryRows &kernels, void *dst, int64_t row_stride, int64_t rows, int64_t row_bytes,
               int32_t period, const void *pattern);

} // namespace jorm
