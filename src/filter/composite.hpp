// Openings and closings: one extremum after the other, and what they change.
#pragma once
#include "filter/extremum.hpp"

namespace jorm {

enum class Composite : int { close, open, bothat, tophat };

constexpr bool is_closing(Composite which) { return which == Composite::close || which == Composite::bothat; }
constexpr bool is_hat(Composite which) { return which == Composite::bothat || which == Composite::tophat; }

// A pixel that loses against all others; the limits of single precision are the finite ones.
struct NeutralPixel {
    double value;
    char bytes[16];
    NeutralPixel(const WindowCall &c, Extreme against);
};

// What an opening takes away, or a closing adds: the difference to the source's rows.
class HatStage : public RowStage {
public:
    int64_t open(WindowRows &source, RowStage &changed, Composite which);
    void begin_plane(int64_t z) override;
    void produce(int64_t y, void *row) override;
    void produce_two(int64_t y, void *row, void *next) override;

private:
    void subtract(int64_t y, void *row, const void *changed);

    WindowRows *source_ = nullptr;
    RowStage *changed_ = nullptr;
    int64_t pitch_ = 0;
    bool closing_ = false;
    std::optional<Scratch> rows_; // two
};

// The picture between two passes where one follows the other: with windows of several planes, or folded.
class BetweenPasses {
public:
    int64_t open(const WindowCall &c, Extreme second);
    // Once the first pass has run: surrounds what it made, which lies where the second pass reads it, or lets
    // `prepared` see to that.
    int64_t finish(PreparedCall &prepared);
    WindowCall first, second;

private:
    int64_t before() const { return second.before[1] * second.src_stride[1] + second.before[2] * second.pixel(); }

    Extreme against_ = Extreme::least;
    std::optional<Scratch> block_;
};

// Both passes in one go: the second takes the rows of the first as they come. Windows with several planes and small
// pictures that go as a row take them one after the other, with the picture between them in scratch memory.
// open_pass(stage, rows, extreme) readies a Stage.
template <class Stage, class OpenPass> int64_t run_composite(WindowCall &c, Composite which, OpenPass open_pass) {
    const Extreme one = is_closing(which) ? Extreme::largest : Extreme::least;
    const Extreme other = is_closing(which) ? Extreme::least : Extreme::largest;
    const NeutralPixel neutral(c, other);
    // In the order in which they take scratch memory. One row more than windows have stays readable: a stage may make
    // two rows at a time. A hat looks at its source when the first pass is that far ahead of the second.
    PreparedCall prepared;
    BetweenPasses between;
    PreparedCall prepared_between;
    WindowRows source;
    Stage first;
    WindowRows rows;
    Stage second;
    HatStage hat;
    int64_t status = prepared.prepare(c, Stage::short_row);
    const bool apart = c.extent[0] > 1 || c.folded.rows > 0;
    if (status == JORM_OK && apart) {
        status = between.open(c, other);
        if (status == JORM_OK) {
            WindowRows first_source;
            Stage first_stage;
            status = first_source.open(between.first);
            if (status == JORM_OK) status = open_pass(first_stage, first_source, one);
            if (status == JORM_OK) status = run_stage(between.first, first_stage);
        }
        if (status == JORM_OK) status = between.finish(prepared_between);
    }
    if (status == JORM_OK) status = source.open(c, is_hat(which) ? c.extent[1] + 1 : 1);
    if (status == JORM_OK && !apart) status = open_pass(first, source, one);
    if (status == JORM_OK) status = apart ? rows.open(between.second, 1) : rows.open(c, first, neutral.bytes, 1);
    if (status == JORM_OK) status = open_pass(second, rows, other);
    if (status != JORM_OK || !is_hat(which)) return status == JORM_OK ? run_stage(c, second) : status;
    status = hat.open(source, second, which);
    return status == JORM_OK ? run_stage(c, hat) : status;
}

int64_t rectangular_composite(WindowCall &c, Composite which);

} // namespace jorm
