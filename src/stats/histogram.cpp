#include "stats/gather.hpp"
#include "stats/histogram_rows.hpp"
#include "xe/scratch.hpp"

#include <algorithm>
#include <cstring>
#include <optional>

namespace jorm {

JORM_LEVEL_TABLE(const Row, histogram_rows);
JORM_LEVEL_TABLE(const Row, masked_histogram_rows);
JORM_LEVEL_TABLE(const Row, byte_rows);
JORM_LEVEL_TABLE(const Row, masked_byte_rows);
JORM_LEVEL_TABLE(const Row, fold_rows);

static void begin(HistogramState &state, int, uint8_t unselected) { state.unselected = unselected; }

namespace {

constexpr uint32_t opcode = fourcc("hist"), masked_opcode = fourcc("hstx");

constexpr int line_of(uint32_t type) {
    return type == JORM_U8    ? 0
           : type == JORM_S8  ? 1
           : type == JORM_S16 ? 2
           : type == JORM_S32 ? 3
           : type == JORM_F32 ? 4
                              : -1;
}

struct Limits {
    int32_t lo, hi;
};
constexpr Limits limits_of(uint32_t type) {
    if (type == JORM_U8) return {0, 255};
    const int shift = 32 - 8 * element_size(type);
    return {INT32_MIN >> shift, INT32_MAX >> shift};
}

void read_record(HistogramState &s, const jorm_histogram &h, uint32_t type) {
    s.last = h.nbins - 1;
    s.phase = 0;
    std::fill_n(s.sum, real_sums, 0.0);
    if (type == JORM_F32) {
        s.flo = h.flo;
        s.fhi = h.fhi;
        s.factor = h.fspan == 0 ? 0 : float(s.last) / h.fspan;
        s.rule = s.last <= INT32_MAX ? BinRule::scaled : BinRule::wide;
        return;
    }
    const Limits limits = limits_of(type);
    s.lo = std::clamp(h.ilo, limits.lo, limits.hi);
    s.hi = h.ihi;
    const int64_t width = int64_t(h.ihi) - h.ilo + 1;
    s.bins = h.nbins;
    s.width = uint64_t(width);
    s.rule = width == int64_t(h.nbins) ? BinRule::unit : BinRule::wide;
    if (s.lo > s.hi) { // nothing lies inside
        s.bins = 0;
        s.width = 1;
        s.rule = BinRule::scaled;
    } else if (s.rule == BinRule::wide && s.last <= INT32_MAX && double(width) * h.nbins < 0x1p52) {
        s.rule = BinRule::scaled;
    }
}

// One record while it is counted into.
class Filling {
public:
    Filling(HistogramState &s, jorm_histogram &h, const StatSource &source, double samples)
        : s_(s), h_(h), type_(source.samples.type) {
        read_record(s, h, type_);
        const bool few = samples < few_samples;
        if (element_size(type_) == 1 && !few) {
            take(source.xe, byte_ways, byte_groups);
            by_value_ = has_groups();
        } else if (samples > 2.0 * h.nbins && h.nbins <= most_spread && !few) {
            take(source.xe, bin_ways, h.nbins);
        }
        s.counters = has_groups() ? groups_->as<uint32_t>() : h.bins;
        s.step = has_groups() ? ways_ : 1;
        s.spread = has_groups() ? 1 : 0;
    }
    bool by_value() const { return by_value_; }

    void finish(Level which) {
        if (has_groups()) fold(which);
        if (type_ == JORM_F32)
            set_real_sum();
        else
            set_whole_sum();
    }

private:
    // What the groups cost is then not worth it.
    static constexpr double few_samples = 1024;
    static constexpr uint32_t most_spread = 1024;

    bool has_groups() const { return groups_ && *groups_; }
    void take(jorm_xe *xe, int ways, int64_t groups) {
        ways_ = ways;
        const size_t bytes = scratch_bytes(ways, groups, sizeof(uint32_t));
        groups_.emplace(xe, bytes, 64);
        if (*groups_) std::memset(groups_->get(), 0, bytes);
    }
    void fold(Level which) {
        uint32_t sums[most_spread];
        const void *const groups[] = {groups_->get()};
        const Row row = JORM_OF_LEVEL(fold_rows, which)[by_value_ ? 0 : 1];
        const int64_t n = by_value_ ? byte_groups - 1 : h_.nbins;
        row(sums, groups, n, RowParams{});
        for (int64_t i = 0; i < n; ++i)
            if (sums[i] != 0)
                h_.bins[!by_value_ ? uint32_t(i) : bin_of(s_, type_ == JORM_S8 ? int8_t(i) : int32_t(i))] += sums[i];
    }
    void set_whole_sum() {
        uint32_t sum = 0;
        for (uint32_t i = 0; i < h_.nbins; ++i) sum += h_.bins[i] * (uint32_t(s_.lo) + i);
        h_.sum = sum;
        h_.fsum = h_.ilo < 0 ? float(int32_t(sum)) : float(sum);
    }
    void set_real_sum() {
        for (int half = real_sums / 2; half > 0; half /= 2)
            for (int i = 0; i < half; ++i) s_.sum[i] += s_.sum[i + half];
        h_.fsum = float(double(h_.fsum) + s_.sum[0]);
        h_.sum = uint32_t(rounded(h_.fsum));
    }

    HistogramState &s_;
    jorm_histogram &h_;
    uint32_t type_;
    std::optional<Scratch> groups_;
    int ways_ = 1;
    bool by_value_ = false;
};

// The rows for samples by bin, a line for each type, and for bytes by value.
int64_t histogram_by(const Row *rows, const Row *byte_rows, const StatSource &s, jorm_histogram *records) {
    StatShape shape;
    if (!records) return JORM_EINVAL;
    if (int64_t status = read_source(shape, s); status != JORM_OK) return status;
    const uint32_t type = s.samples.type;
    if (int64_t status = check_histogram_type(type); status != JORM_OK) return status;
    rows += line_of(type) * stat_line_length;
    if (!rows[0]) return JORM_ENOTSUP;
    const double samples = double(shape.planes) * double(shape.rows) * double(shape.pixels);
    for (int c = 0; c < shape.channels; ++c) {
        if (!shape.is_selected(c) || !records[c].bins || records[c].nbins == 0) continue;
        Gathering<HistogramState> g(nullptr, 1u << c, s.options);
        Filling filling(g.state[c], records[c], s, samples);
        g.rows = filling.by_value() ? byte_rows : rows;
        if (int64_t status = gather(g, s, shape, s.masked ? masked_opcode : opcode); status != JORM_OK) return status;
        filling.finish(level(s.options));
    }
    return JORM_OK;
}

} // namespace

int64_t check_histogram_type(uint32_t type) {
    return line_of(type) >= 0 ? JORM_OK : well_formed(type) ? JORM_ENOTSUP : JORM_EINVAL;
}

int64_t histogram(const StatSource &s, jorm_histogram *records) {
    const Level which = level(s.options);
    return histogram_by(JORM_OF_LEVEL(histogram_rows, which), JORM_OF_LEVEL(byte_rows, which), s, records);
}
int64_t masked_histogram(const StatSource &s, jorm_histogram *records) {
    const Level which = level(s.options);
    return histogram_by(JORM_OF_LEVEL(masked_histogram_rows, which), JORM_OF_LEVEL(masked_byte_rows, which), s,
                        records);
}

} // namespace jorm
