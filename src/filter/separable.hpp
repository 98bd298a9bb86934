// Separable convolution.
#pragma once
#include "filter/separable_rows.hpp"
#include "filter/window.hpp"

namespace jorm {

// The weights of the spatial axes, as many as the window has places.
struct SeparableWeights {
    const double *axis[3]; // null: a single 1
};

// The weighted sums of the windows: down the columns first, then along the row. Weights that mirror each other about
// their centre serve two rows or columns at once. Bytes and 16-bit elements go in single precision where that keeps the
// promised accuracy, in double precision otherwise; bytes go down the columns in integers where a scale makes the
// weights nearly whole.
class SeparableStage : public RowStage {
public:
    // Windows of so many rows go down the columns together, so each element is fetched for all of them at once.
    static constexpr int64_t together = 2;

    // `in` keeps a history of together - 1 rows. The table has the lines that the types and weights of calls ask for.
    // Precise: in double precision whatever the weights, but for single precision itself.
    int64_t open(WindowRows &in, const SeparableWeights &weights, const SeparableRows *table, bool precise = false);
    void begin_plane(int64_t z) override {
        in_->begin_plane(z);
        first_ = last_ = 0;
    }
    void produce(int64_t y, void *row) override;
    // The row before it is rounded, in the type of sums.
    void produce_sums(int64_t y, void *row);
    int32_t sum_bytes() const { return rows_->sum_bytes; }

private:
    // A list of weights in the type of sums, and of the places that they belong to.
    struct Taps {
        WeightedRows rows;
        const void **row;
        const int64_t *place; // of every row in the list
    };
    bool small_serves() const;
    // The rows around row y as those of window r of the ones that go together.
    const void **find_rows(int64_t r, int64_t y);
    void produce_small(int64_t y, void *row);
    void gather(int64_t y);
    static Taps make_taps(int64_t places, const double *weights, double scale, int32_t weight_bytes, char *&memory);

    WindowRows *in_ = nullptr;
    const SeparableRows *rows_ = nullptr;
    Taps down_ = {}, along_ = {};
    bool small_ = false;           // columns stay in registers but for those at the ends of rows
    int64_t first_ = 0, last_ = 0; // the rows whose sums are there
    char *sums_[together] = {};
    std::optional<Scratch> memory_;
};

// Runs the convolution over a call that has been checked.
int64_t separable(WindowCall &c, const SeparableWeights &weights, const SeparableRows *table);

} // namespace jorm
