// Comparison: the choice of rows, and the combinations that take more than one row.
#include "compare/compare.hpp"

#include "compare/compare_rows.hpp"
#include "jorm/compare.h"
#include "jorm/shapes.h"
#include "kernel/level_table.hpp"

#include <algorithm>
#include <bit>
#include <cstring>
#include <utility>

namespace jorm {

JORM_LEVEL_TABLE(const Row, equal_rows);
JORM_LEVEL_TABLE(const Row, less_rows);
JORM_LEVEL_TABLE(const Row, less_equal_rows);
JORM_LEVEL_TABLE(const Row, constant_equal_rows);
JORM_LEVEL_TABLE(const Row, constant_less_rows);
JORM_LEVEL_TABLE(const Row, constant_less_equal_rows);
JORM_LEVEL_TABLE(const Row, constant_greater_rows);
JORM_LEVEL_TABLE(const Row, constant_greater_equal_rows);
JORM_LEVEL_TABLE(const CompareHelpers, compare_helpers);

#define RELATION(name, arrays, constant, ...)                                                                          \
    constexpr Relation relation_##name = {JORM_AT_LEVELS(arrays), JORM_AT_LEVELS(constant), __VA_ARGS__}
RELATION(equal, equal_rows, constant_equal_rows, false);
RELATION(less, less_rows, constant_less_rows, false);
RELATION(less_equal, less_equal_rows, constant_less_equal_rows, false);
RELATION(greater, less_rows, constant_greater_rows, true);
RELATION(greater_equal, less_equal_rows, constant_greater_equal_rows, true);
RELATION(none, equal_rows, constant_equal_rows, false, true);

namespace {

// -1 for what is not compared.
int compare_type(uint32_t type) {
    switch (type) {
    case JORM_U8:
        return compare_u8;
    case JORM_S8:
        return compare_s8;
    case JORM_S16:
        return compare_s16;
    case JORM_S32:
        return compare_s32;
    case JORM_F32:
        return compare_f32;
    default:
        return -1;
    }
}

// The narrowest type that holds every value of both.
int common_type(int a, int b) {
    if (a == b) return a;
    const int wider = std::max(a, b);
    if (wider < compare_f32) return compare_s32;
    return std::min(a, b) == compare_s32 ? compare_f64 : compare_f32;
}

constexpr int64_t block_length = 4 * pattern_length; // elements, a multiple of every channel count

// A comparison block by block: sources are widened to a type in common; constants by channel stand for a second source;
// a mask becomes values by channel.
struct Blocks : CompareParams {
    Row compare, select = nullptr;
    Row widen[2] = {};
    int32_t dst_element, element[2];
    int sources;
    bool by_channel = false, constant_first;
    alignas(64) char constant_run[4 * block_length], values[2][4 * block_length]; // repeat with the channels
};

void compare_blocks(void *dst, const void *const *src, int64_t n, const RowParams &params) {
    const auto &p = static_cast<const Blocks &>(params);
    alignas(64) char wide[2][8 * block_length];
    for (int64_t i = 0; i < n; i += block_length) {
        const int64_t m = std::min(block_length, n - i);
        const void *run[2] = {};
        for (int k = 0; k < p.sources; ++k) {
            run[k] = static_cast<const char *>(src[k]) + i * p.element[k];
            if (!p.widen[k]) continue;
            p.widen[k](wide[k], &run[k], m, p);
            run[k] = wide[k];
        }
        if (p.by_channel) {
            run[1] = p.constant_run;
            if (p.constant_first) std::swap(run[0], run[1]);
        }
        char *const d = static_cast<char *>(dst) + i * p.dst_element;
        p.compare(d, run, m, p);
        const void *const choice[] = {d, p.values[0], p.values[1]};
        if (p.select) p.select(d, choice, m, p);
    }
}

// The elements of some channels.
struct Pixel {
    const char *elements;
    int32_t element, count;

    Pixel(const void *all, uint32_t type, int first, int count)
        : elements(static_cast<const char *>(all)), element(element_size(type)), count(count) {
        if (elements) elements += first * element;
    }
    bool uniform() const {
        for (int i = 1; elements && i < count; ++i)
            if (std::memcmp(elements, elements + i * element, size_t(element)) != 0) return false;
        return true;
    }
    uint32_t bits(uint32_t otherwise) const {
        static_assert(std::endian::native == std::endian::little);
        uint32_t value = 0;
        if (!elements) return otherwise;
        std::memcpy(&value, elements, size_t(element));
        return value;
    }
    void repeat(char *to, int64_t length) const {
        const int64_t bytes = length * element;
        std::memcpy(to, elements, size_t(std::min<int64_t>(count * element, bytes)));
        for (int64_t done = count * element; done < bytes; done *= 2)
            std::memcpy(to + done, to, size_t(std::min(done, bytes - done)));
    }
};

// The row for `count` channels from `first` on; what it takes goes to p.
Row settle(Blocks &p, const CompareCall &call, const ComparePixels &pixels, const Relation &relation, int first,
           int count, int64_t elements, Level which) {
    const Operand *const o = call.operand;
    const int size_log2 = std::countr_zero(unsigned(element_size(o[0].type)));
    const int first_type = compare_type(o[1].type);
    const int second_type = call.sources == 2 ? compare_type(o[2].type) : first_type;
    const int type = common_type(first_type, second_type);
    const int line = size_log2 * compare_types + type;
    const CompareHelpers &helpers = JORM_OF_LEVEL(compare_helpers, which)[0];
    const Pixel constant(pixels.constant, o[1].type, first, count), yes(pixels.yes, o[0].type, first, count),
        no(pixels.no, o[0].type, first, count);

    p.by_channel = !constant.uniform();
    const bool selects = !yes.uniform() || !no.uniform();
    p.constant = constant.bits(0);
    p.constant_first = relation.exchanged;
    p.compare = (call.sources == 2 || p.by_channel ? relation.arrays : relation.constant)[which][line];
    if (!selects) {
        p.yes = yes.bits(p.yes);
        p.no = no.bits(p.no);
        if (first_type == second_type && !p.by_channel) return p.compare;
    }

    const int64_t length = std::min(elements, block_length);
    if (p.by_channel) constant.repeat(p.constant_run, length);
    if (selects) {
        p.select = helpers.select[size_log2];
        yes.repeat(p.values[0], length);
        no.repeat(p.values[1], length);
    }
    p.sources = call.sources;
    p.dst_element = element_size(o[0].type);
    for (int k = 0; k < call.sources; ++k) {
        p.element[k] = element_size(o[1 + k].type);
        p.widen[k] = helpers.widen[type][k == 0 ? first_type : second_type];
    }
    return compare_blocks;
}

int64_t check(Shape &shape, const CompareCall &call) {
    for (int i = 0; i <= call.sources; ++i)
        if (!call.operand[i].start || !call.operand[i].stride) return JORM_EINVAL;
    return read_shape(shape, call.word, call.size);
}

int64_t run(const Shape &shape, CompareCall &call, ComparePixels pixels) {
    static constexpr char zeros[16] = {};
    if (shape.rows < 1 || shape.pixels < 1) return JORM_OK;
    const Relation &relation = call.relation;
    if (relation.never) { // true is as false
        if (!pixels.no) pixels.no = zeros;
        pixels.yes = pixels.no;
    }
    if (call.sources == 2 && relation.exchanged) std::swap(call.operand[1], call.operand[2]);
    const int operands = 1 + call.sources;
    const Level which = level(call.options);
    if (channels_fold(shape, call.operand, operands)) {
        Blocks p;
        const Row row = settle(p, call, pixels, relation, 0, shape.channels,
                               int64_t(shape.rows) * shape.pixels * shape.channels, which);
        walk_channels(shape, call.operand, operands, row, p, which);
    } else
        for (int c = 0; c < shape.channels; ++c) {
            Blocks p;
            const Row row = settle(p, call, pixels, relation, c, 1, block_length, which);
            Walk w = make_walk(shape, call.operand, operands, c, which);
            walk(w, row, p);
        }
    return JORM_OK;
}

} // namespace

const Relation &relation_of(uint32_t op) {
    switch (op & 15) {
    case JORM_CMP_EQUAL:
        return relation_equal;
    case JORM_CMP_LESS:
        return relation_less;
    case JORM_CMP_LESS_EQUAL:
        return relation_less_equal;
    case JORM_CMP_GREATER:
        return relation_greater;
    case JORM_CMP_GREATER_EQUAL:
        return relation_greater_equal;
    default:
        return relation_none;
    }
}

int compare_line(bool chosen, uint32_t dst_type, uint32_t src_type) {
    const int source = compare_type(src_type);
    const uint32_t size_class = dst_type & 7; // the sign does not matter
    if (!well_formed(dst_type) || source < 0) return -1;
    if (size_class >= 1 && size_class <= 3) return int(size_class - 1) * compare_f64 + source;
    return chosen && dst_type == JORM_F32 && source == compare_f32 ? 3 * compare_f64 : -1;
}

int64_t compare_as(uint32_t dst_type, uint32_t src_type, CompareCall &&call, const ComparePixels &pixels) {
    Shape shape;
    call.operand[0].type = dst_type;
    for (int i = 1; i <= call.sources; ++i) call.operand[i].type = src_type;
    if ((call.sources == 1 && !pixels.constant) || (call.chosen && (!pixels.yes || !pixels.no))) return JORM_EINVAL;
    const int64_t status = check(shape, call);
    return status == JORM_OK ? run(shape, call, pixels) : status;
}

int64_t compare(CompareCall &&call, const double *constants, const double *yes, const double *no) {
    Shape shape;
    if (const int64_t status = check(shape, call); status != JORM_OK) return status;
    const Operand *const o = call.operand;
    for (int i = 0; i <= call.sources; ++i)
        if (!well_formed(o[i].type)) return JORM_EINVAL;
    for (int i = 1; i <= call.sources; ++i)
        if (compare_line(call.chosen, o[0].type, o[i].type) < 0) return JORM_ENOTSUP;

    char constant[16], written[2][16];
    ComparePixels pixels = {};
    if (call.sources == 1) {
        jorm_mkifillvalv16(o[1].type, constant, constants, shape.channels);
        pixels.constant = constant;
    }
    if (call.chosen) {
        jorm_mkifillvalv16(o[0].type, written[0], yes, shape.channels);
        jorm_mkifillvalv16(o[0].type, written[1], no, shape.channels);
        pixels.yes = written[0];
        pixels.no = written[1];
    }
    return run(shape, call, pixels);
}

} // namespace jorm
