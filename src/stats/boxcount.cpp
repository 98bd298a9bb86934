// Relative differential box counting.
#include "jorm/shapes.h"
#include "stats/boxcount_rows.hpp"
#include "stats/gather.hpp"
#include "xe/scratch.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace jorm {
namespace {

// The extrema of each element of a row over all rows of a line of windows; interleaved channels.
struct Line {
    void *least, *largest;
    int64_t pixels;
    int channels;
    int64_t elements() const { return pixels * channels; }
};

template <class T> void begin(const Line &line) {
    using limits = std::numeric_limits<T>;
    constexpr T high = limits::has_infinity ? limits::infinity() : limits::max();
    constexpr T low = limits::has_infinity ? -limits::infinity() : limits::lowest();
    std::fill_n(static_cast<T *>(line.least), line.elements(), high);
    std::fill_n(static_cast<T *>(line.largest), line.elements(), low);
}

// Boxes of the given height that the samples of a window go through; at least one, also without any sample.
double boxes(double least, double largest, double height) {
    const double count = height > 0 ? std::ceil((largest - least) / height) : 1;
    return count > 1 ? count : 1;
}

template <class T> double count_boxes(const Line &line, int channel, int64_t width, double height) {
    const T *const least = static_cast<const T *>(line.least) + channel;
    const T *const largest = static_cast<const T *>(line.largest) + channel;
    double count = 0;
    for (int64_t x = 0; x < line.pixels; x += width) {
        T low = least[x * line.channels], high = largest[x * line.channels];
        for (int64_t i = x + 1; i < std::min(x + width, line.pixels); ++i) {
            low = std::min(low, least[i * line.channels]);
            high = std::max(high, largest[i * line.channels]);
        }
        count += boxes(low, high, height);
    }
    return count;
}

struct LineOf {
    void (*begin)(const Line &);
    double (*count)(const Line &, int channel, int64_t width, double height);
};
template <class T> constexpr LineOf line_of = {begin<T>, count_boxes<T>};
constexpr LineOf lines[] = {line_of<uint8_t>, line_of<int16_t>, line_of<int32_t>, line_of<float>}; // by stat_line()

bool valid(const vrng &r) { return std::isfinite(r.lo) && r.lo <= r.hi; }

// The ranges given; in place of missing and invalid ones what the data says.
int64_t read_ranges(vrng *ranges, const vrng *given, const StatSource &s, const StatShape &shape) {
    constexpr vrng measured = {1, 0};
    vrng repaired[4];
    for (int c = 0; c < shape.channels; ++c) ranges[c] = repaired[c] = given ? given[c] : measured;
    if (const int64_t status = adjust_range(s, repaired); status != JORM_OK) return status;
    for (int c = 0; c < shape.channels; ++c)
        if (!valid(ranges[c])) ranges[c] = repaired[c];
    return JORM_OK;
}

int64_t count_boxes(const StatSource &s, const StatShape &shape, const int32_t *extent, const double *heights,
                    double *counts) {
    const Operand &a = s.samples;
    const int type = stat_line(a.type), axes = int(s.word & 15);
    const Level which = level(s.options);
    const BoxRows &rows = JORM_OF_LEVEL(box_rows, which)[0];
    const int64_t element = element_size(a.type);
    const Scratch least(s.xe, scratch_bytes(shape.pixels, shape.channels, element), 64);
    if (!least) return JORM_ENOMEM;
    const Scratch largest(s.xe, scratch_bytes(shape.pixels, shape.channels, element), 64);
    if (!largest) return JORM_ENOMEM;
    const Line line = {least.get(), largest.get(), shape.pixels, shape.channels};

    const Shape row = {3, 1, int32_t(shape.pixels), shape.channels, 0};
    const int32_t strides[3] = {int32_t(line.elements() * element), int32_t(shape.channels * element),
                                int32_t(element)};
    const int64_t plane_stride = axes == 4 ? a.stride[0] : 0, row_stride = a.stride[axes - 3];
    const int64_t depth = axes == 4 ? extent[0] : 1, height = extent[1];
    for (int64_t z = 0; z < shape.planes; z += depth)
        for (int64_t y = 0; y < shape.rows; y += height) {
            lines[type].begin(line);
            for (int64_t i = z; i < std::min(z + depth, shape.planes); ++i)
                for (int64_t j = y; j < std::min(y + height, shape.rows); ++j) {
                    const Operand from(a.type, a.start + i * plane_stride + j * row_stride, a.stride + (axes - 3));
                    const Operand low[] = {operand(a.type, line.least, strides), from};
                    const Operand high[] = {operand(a.type, line.largest, strides), from};
                    walk_channels(row, low, 2, rows.least[type], RowParams{}, which, WalkKind::update);
                    walk_channels(row, high, 2, rows.largest[type], RowParams{}, which, WalkKind::update);
                }
            for (int c = 0; c < shape.channels; ++c) counts[c] += lines[type].count(line, c, extent[2], heights[c]);
        }
    return JORM_OK;
}

} // namespace
} // namespace jorm

using namespace jorm;

JORM_API int64_t JormCountRelBox(jorm_xe *xe, uint64_t options, const jorm_array *src, const jorm_site *roi,
                                 const jorm_seshape *shape, const vrng *ranges, double *results) {
    if (!xe || !results || !src || stored_channels(src->extent[3]) >= 4) return JORM_EINVAL;
    Front f;
    if (const int64_t status = negotiate(f, src, roi); status != JORM_OK) return status;
    if ((options & JORM_OPT_CHANNELS) == 0) options |= src->extent[3] & JORM_OPT_CHANNELS;
    const StatSource s = {xe, options, f.word, f.sizes(), f.operand[0]};
    StatShape region;
    if (const int64_t status = read_source(region, s); status != JORM_OK) return status;
    if (stat_line(src->eltype) < 0) return well_formed(src->eltype) ? JORM_ENOTSUP : JORM_EINVAL;
    jorm_seshape window = {};
    jorm_seshape_adjust(&window, shape, f.size);

    vrng range[4];
    if (const int64_t status = read_ranges(range, ranges, s, region); status != JORM_OK) return status;
    double heights[4] = {}, counts[4] = {};
    for (int c = 0; c < region.channels; ++c)
        heights[c] = (range[c].hi - range[c].lo) * window.extent[1] / double(region.rows);
    const int64_t status = count_boxes(s, region, window.extent, heights, counts);
    for (int c = 0; c < region.channels && status == JORM_OK; ++c)
        if (region.is_selected(c)) results[c] = counts[c];
    return status;
}
