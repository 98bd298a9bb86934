// The packed call: runs a per-slice entry over the pieces of arrays of four axes.
#include "array/element.hpp"
#include "array/vec.hpp"
#include "jorm/arith.h"
#include "jorm/array.h"
#include "kernel/proc.hpp"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <initializer_list>

static_assert(offsetof(jorm_pack, opcode) == 4 && offsetof(jorm_pack, codes) == 8 && offsetof(jorm_pack, entry) == 16 &&
              offsetof(jorm_pack, name) == 24 && offsetof(jorm_pack, environment) == 32 &&
              offsetof(jorm_pack, options) == 40 && offsetof(jorm_pack, parameters) == 48 &&
              offsetof(jorm_pack, slots) == 56 && offsetof(jorm_pack, piece_axes) == 60 &&
              offsetof(jorm_pack, size) == 64 && offsetof(jorm_pack, array) == 72 && sizeof(jorm_pack_array) == 32 &&
              sizeof(jorm_pack) == 232);

namespace jorm {
namespace {

constexpr int max_arrays = 5;

struct PackedArray {
    uint32_t type;
    const void *base;
    const int32_t *origin, *stride;
};

jorm_pack *pack(jorm_pack *record, uint32_t opcode, jorm_proc *entry, jorm_xe *xe, uint64_t options,
                const void *parameters, uint32_t word, int32_t piece_axes, const int32_t *size,
                std::initializer_list<PackedArray> arrays) {
    if (!record) return nullptr;
    const uint32_t channel_code = size && word_axes(word) > 0 ? uint32_t(size[word_axes(word) - 1]) : 0;
    *record = {uint16_t(arrays.size()),
               0,
               opcode,
               (channel_code & 15) << 24,
               entry,
               "unknown",
               xe,
               options,
               parameters,
               uint32_t(word_slots(word)),
               piece_axes,
               at_slot0(word, size),
               {}};
    int i = 0;
    for (const PackedArray &a : arrays) {
        record->codes |= (a.type & 15) << 4 * i;
        jorm_pack_array &packed = record->array[i++];
        packed.type = a.type;
        if (a.base && a.stride)
            packed = {a.type, const_cast<void *>(a.base), at_slot0(word, a.origin), at_slot0(word, a.stride)};
    }
    return record;
}

// One array on its way through the pieces.
struct Cursor {
    uint32_t type;
    char *start;
    int32_t stride[4];
};

int64_t call_piece(const jorm_pack &r, uint32_t word, const int32_t *size, const Cursor *c, int first) {
    // Entries have fixed argument lists, so each count needs a call of its own.
#define ARRAY(i) uint32_t, void *, const int32_t *
#define CALL(...) from_proc<int64_t(jorm_xe *, uint64_t, const void *, uint32_t, const int32_t *, __VA_ARGS__)>(r.entry)
#define LEAD r.environment, r.options, r.parameters, word, size
#define PASS(i) c[i].type, c[i].start, c[i].stride + first
    switch (r.count) {
    case 1:
        return CALL(ARRAY(0))(LEAD, PASS(0));
    case 2:
        return CALL(ARRAY(0), ARRAY(1))(LEAD, PASS(0), PASS(1));
    case 3:
        return CALL(ARRAY(0), ARRAY(1), ARRAY(2))(LEAD, PASS(0), PASS(1), PASS(2));
    case 4:
        return CALL(ARRAY(0), ARRAY(1), ARRAY(2), ARRAY(3))(LEAD, PASS(0), PASS(1), PASS(2), PASS(3));
    default:
        return CALL(ARRAY(0), ARRAY(1), ARRAY(2), ARRAY(3), ARRAY(4))(LEAD, PASS(0), PASS(1), PASS(2), PASS(3),
                                                                      PASS(4));
    }
#undef ARRAY
#undef CALL
#undef LEAD
#undef PASS
}

} // namespace
} // namespace jorm

using namespace jorm;

#define PACK_LEAD                                                                                                      \
    jorm_pack *record, uint32_t opcode, jorm_proc *entry, jorm_xe *xe, uint64_t options, const void *parameters,       \
        uint32_t word, int32_t piece_axes, const int32_t *size
#define PACK_ARRAY(i) uint32_t type##i, const void *base##i, const int32_t *origin##i, const int32_t *stride##i
#define PACKED(i)                                                                                                      \
    { type##i, base##i, origin##i, stride##i }
#define PACK(...) return pack(record, opcode, entry, xe, options, parameters, word, piece_axes, size, {__VA_ARGS__})

JORM_API jorm_pack *jorma_genpackL(PACK_LEAD, PACK_ARRAY(1)) { PACK(PACKED(1)); }
JORM_API jorm_pack *jorma_mappackL(PACK_LEAD, PACK_ARRAY(1), PACK_ARRAY(2)) { PACK(PACKED(1), PACKED(2)); }
JORM_API jorm_pack *jorma_zippackL(PACK_LEAD, PACK_ARRAY(1), PACK_ARRAY(2), PACK_ARRAY(3)) {
    PACK(PACKED(1), PACKED(2), PACKED(3));
}
JORM_API jorm_pack *jorma_zip3packL(PACK_LEAD, PACK_ARRAY(1), PACK_ARRAY(2), PACK_ARRAY(3), PACK_ARRAY(4)) {
    PACK(PACKED(1), PACKED(2), PACKED(3), PACKED(4));
}
JORM_API jorm_pack *jorma_zip4packL(PACK_LEAD, PACK_ARRAY(1), PACK_ARRAY(2), PACK_ARRAY(3), PACK_ARRAY(4),
                                    PACK_ARRAY(5)) {
    PACK(PACKED(1), PACKED(2), PACKED(3), PACKED(4), PACKED(5));
}

JORM_API int64_t jorma_call(const jorm_pack *record) {
    if (!record || record->count < 1 || record->count > max_arrays || !record->entry || !record->size)
        return JORM_EINVAL;
    const jorm_pack &r = *record;
    int32_t size[4];
    std::memcpy(size, r.size, sizeof size);
    Cursor cursor[max_arrays] = {};
    int32_t *strides[max_arrays] = {};
    for (int i = 0; i < r.count; ++i) {
        const jorm_pack_array &a = r.array[i];
        cursor[i].type = a.type;
        if (!a.base) continue;
        std::memcpy(cursor[i].stride, a.stride, sizeof cursor[i].stride);
        cursor[i].start = static_cast<char *>(a.base) + (a.origin ? jorm_vec_mkloff(4, a.origin, a.stride) : 0);
        strides[i] = cursor[i].stride;
    }
    const bool hinted = (r.options & 0x300) == 0x300;
    const int64_t left = jorm_dims_xreduce(4, size, r.count, strides,
                                           !hinted             ? 0
                                           : r.reduce_hint < 0 ? 4
                                                               : r.reduce_hint);
    if (left < 0) return left;

    // The piece takes the last axes; at most the two outermost remain to be iterated.
    const int32_t axes = std::clamp(int32_t(left), 2, std::clamp(r.piece_axes, 2, 3));
    const int32_t first = 4 - axes;
    const uint32_t word = JORM_WORD(axes);
    const int32_t outer = size[0], inner = first == 2 ? size[1] : 1;
    for (int32_t i = 0; i < outer; ++i)
        for (int32_t j = 0; j < inner; ++j) {
            Cursor piece[max_arrays];
            for (int k = 0; k < r.count; ++k) {
                piece[k] = cursor[k];
                if (piece[k].start)
                    piece[k].start +=
                        int64_t(i) * cursor[k].stride[0] + int64_t(j) * (first == 2 ? cursor[k].stride[1] : 0);
            }
            const int64_t status = call_piece(r, word, size + first, piece, first);
            if (status != JORM_OK) return status;
        }
    return JORM_OK;
}
