// The pass over samples: brings them before rows that gather into a state.
#pragma once
#include "kernel/front.hpp"
#include "kernel/level_table.hpp"
#include "kernel/proc.hpp"
#include "stats/statistics.hpp"

#include "jorm/arith.h"

namespace jorm {

// The line of a sample type in the tables of rows, -1 when there is none.
constexpr int stat_line(uint32_t type) {
    return type == JORM_U8 ? 0 : type == JORM_S16 ? 1 : type == JORM_S32 ? 2 : type == JORM_F32 ? 3 : -1;
}
// A line holds the rows for 1 to 4 interleaved channels, null where they are taken one by one.
constexpr int stat_line_length = 4;

// Are samples of the type put in order?
constexpr int64_t check_ordered(uint32_t type) {
    return stat_line(type) >= 0 ? JORM_OK : well_formed(type) ? JORM_ENOTSUP : JORM_EINVAL;
}

struct StatShape {
    int64_t planes, rows, pixels;
    int32_t channels;
    uint32_t selected; // bit k for channel k
    bool is_selected(int c) const { return (selected >> c & 1) != 0; }
};

// Checks everything but the type of the samples.
int64_t read_source(StatShape &shape, const StatSource &s);

// A state in the place of the destination.
inline Operand state_operand(void *state) {
    static constexpr int32_t none[4] = {};
    return {JORM_U8, static_cast<char *>(state), none, true};
}

// A state has a function begin(state, channels, unselected).
template <class State> struct Gathering {
    const Row *rows; // a line
    uint32_t selected;
    uint8_t unselected; // mask elements with this value leave their samples out
    Level which;
    bool begun = false;
    bool interleaved = false; // state[0] holds all channels, else state[c] channel c
    State state[4];

    Gathering(const Row *rows, uint32_t selected, uint64_t options)
        : rows(rows), selected(selected), unselected(options & JORM_OPT_MASK_INVERT ? 255 : 0), which(level(options)) {}
    void add(const Shape &shape, const Operand &samples, const Operand *mask) {
        Operand operands[1 + max_sources] = {state_operand(&state[0]), samples};
        if (mask) operands[2] = {mask->type, mask->start, mask->stride, true};
        const int count = mask ? 3 : 2;
        const Row all = rows[shape.channels - 1];
        interleaved = (selected & (selected - 1)) != 0 && all && channels_fold(shape, operands, count);
        for (int c = 0; c < (interleaved ? 1 : shape.channels); ++c) {
            if (!interleaved && (selected >> c & 1) == 0) continue;
            if (!begun) begin(state[c], interleaved ? shape.channels : 1, unselected);
            operands[0] = state_operand(&state[c]);
            Walk w = make_walk(shape, operands, count, interleaved ? -1 : c, which);
            w.kind = WalkKind::reduce;
            walk(w, interleaved ? all : rows[0], RowParams{});
        }
        begun = true;
    }
    const State &state_of(int c) const { return state[interleaved ? 0 : c]; }
    int index_of(int c) const { return interleaved ? c : 0; }

    // What the packed call runs; the parameters are the gathering.
    static int64_t piece(jorm_xe *, uint64_t, const void *gathering, uint32_t word, const int32_t *size, uint32_t type,
                         const void *data, const int32_t *stride) {
        return add_piece(gathering, word, size, operand(type, data, stride), nullptr);
    }
    static int64_t masked_piece(jorm_xe *, uint64_t, const void *gathering, uint32_t word, const int32_t *size,
                                uint32_t type, const void *data, const int32_t *stride, uint32_t mask_type,
                                const void *mask, const int32_t *mask_stride) {
        const Operand by = operand(mask_type, mask, mask_stride);
        return add_piece(gathering, word, size, operand(type, data, stride), &by);
    }

private:
    static int64_t add_piece(const void *gathering, uint32_t word, const int32_t *size, const Operand &samples,
                             const Operand *mask) {
        Shape shape;
        const int64_t status = read_shape(shape, word, size);
        if (status == JORM_OK) static_cast<Gathering *>(const_cast<void *>(gathering))->add(shape, samples, mask);
        return status;
    }
};

// Passes over a source that has been read, in row-major order.
template <class State>
int64_t gather(Gathering<State> &g, const StatSource &s, const StatShape &shape, uint32_t opcode) {
    const Operand &a = s.samples, &m = s.mask;
    if ((s.word & 15) < 4) {
        const auto axes = int32_t(s.word & 15);
        g.add({axes, int32_t(shape.rows), int32_t(shape.pixels), shape.channels, 0}, a, s.masked ? &m : nullptr);
        return JORM_OK;
    }
    jorm_pack pack;
    return jorma_call(s.masked ? jorma_mappackL(&pack, opcode, to_proc(Gathering<State>::masked_piece), s.xe, s.options,
                                                &g, s.word, 3, s.size, a.type, a.start, nullptr, a.stride, m.type,
                                                m.start, nullptr, m.stride)
                               : jorma_genpackL(&pack, opcode, to_proc(Gathering<State>::piece), s.xe, s.options, &g,
                                                s.word, 3, s.size, a.type, a.start, nullptr, a.stride));
}

} // namespace jorm
