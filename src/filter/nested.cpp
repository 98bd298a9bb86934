#include "filter/nested.hpp"

#include "filter/mask.hpp"

#include <algorithm>
#include <cstring>

namespace jorm {

constexpr int32_t least_rows_for_two = 12; // of a mask: fewer are fetched as quickly for one window after the other
constexpr int64_t part_of_folded = 8192;   // elements of a row, whose lines take little memory

// A column with n rows in it has all rows of those with fewer when every row is in all columns with more than some
// number of rows and in no others.
int64_t NestedColumns::open(jorm_xe *xe, const jorm_strel &strel, const WindowCall &c) {
    const int64_t all_rows = c.extent[0] * c.extent[1], columns = c.extent[2];
    if (all_rows > INT32_MAX) return JORM_OK;
    memory_.emplace(xe,
                    scratch_bytes(3 * columns + 3 * all_rows + 1, sizeof(int32_t)) +
                        scratch_bytes(columns, sizeof(Doubled) + sizeof(Place)),
                    alignof(Doubled));
    if (!*memory_) return JORM_ENOMEM;
    auto *const count = memory_->as<int32_t>(), *const ends = count + columns, *const least = ends + columns,
                *const order = least + all_rows;
    auto *const of_two = order + all_rows, *const shared_rows = of_two + all_rows + 1;
    auto *const to_double = reinterpret_cast<Doubled *>(shared_rows + columns);
    auto *const to_place = reinterpret_cast<Place *>(to_double + columns);

    std::fill(count, count + columns, 0);
    for (int64_t r = 0; r < all_rows; ++r)
        each_in_row(strel, c, r, [=](int64_t x, bool belongs) { count[x] += belongs; });
    for (int64_t r = 0; r < all_rows; ++r) {
        int32_t within = INT32_MAX, without = 0;
        each_in_row(strel, c, r, [&](int64_t x, bool belongs) {
            within = std::min(within, belongs ? count[x] : INT32_MAX);
            without = std::max(without, belongs ? 0 : count[x]);
        });
        if (without >= within) return JORM_OK;
        least[r] = within;
        if (within < INT32_MAX) order[rows++] = int32_t(r);
    }
    std::sort(order, order + rows,
              [&](int32_t a, int32_t b) { return least[a] != least[b] ? least[a] < least[b] : a < b; });

    // As many rows as a column of a group has.
    std::copy(count, count + columns, ends);
    std::sort(ends, ends + columns);
    int32_t *const first = std::upper_bound(ends, ends + columns, 0);
    groups = int32_t(std::unique(first, ends + columns) - first);
    end = first;
    for (int32_t i = 0; i < rows; ++i) {
        least[i] = int32_t(order[i] / c.extent[1]); // has served
        order[i] = int32_t(order[i] % c.extent[1]);
    }
    plane = least;
    row = order;
    doubled = to_double;
    place = to_place;
    if (c.extent[0] == 1) list_rows_of_two(of_two, shared_rows);
    list_places(count, int32_t(columns), to_double, to_place);
    return JORM_OK;
}

void NestedColumns::list_rows_of_two(int32_t *list, int32_t *shared_rows) {
    int32_t n = 0, low = 0, high = 0; // the rows so far, of both windows together
    for (int32_t group = 0; group < groups; ++group) {
        const auto [first, last] = std::minmax_element(row, row + end[group]);
        const int32_t top = *first, bottom = *last;
        if (bottom - top + 1 != end[group] || (group > 0 && (top >= low || bottom < high))) return;
        if (group == 0) low = top + 1, high = top;
        const int32_t before = n;
        while (low > top + 1) list[n++] = --low;
        while (high < bottom) list[n++] = ++high;
        shared_rows[group] = n - before;
        list[n++] = low = top;
        list[n++] = high = bottom + 1;
    }
    row_of_two = list;
    shared = shared_rows;
    rows_of_two = n;
}

// Every run of equal columns as places in a line that has been doubled so often that making it and looking at it take
// the fewest steps.
void NestedColumns::list_places(const int32_t *count, int32_t columns, Doubled *to_double, Place *to_place) {
    for (int32_t group = 0; group < groups; ++group) {
        const auto each_run = [&](auto f) {
            for (int32_t x = 0, n; x < columns; x += n + 1) {
                for (n = 0; x + n < columns && count[x + n] == end[group];) ++n;
                if (n > 0) f(x, n);
            }
        };
        const auto steps = [](int32_t n, int times) { // of a run, and which line they are in
            const int which = std::min(times, 31 - __builtin_clz(unsigned(n)));
            return std::pair((n + (1 << which) - 1) >> which, which);
        };
        int32_t least = INT32_MAX, longest = 1;
        int times = 0;
        each_run([&](int32_t, int32_t n) { longest = std::max(longest, n); });
        for (int k = 0; longest >> k > 0; ++k) {
            int32_t cost = 3 * k; // two loads and a store
            each_run([&](int32_t, int32_t n) { cost += steps(n, k).first; });
            if (cost < least) least = cost, times = k;
        }
        const int32_t first_doubled = groups + doubled_lines - 1;
        each_run([&](int32_t x, int32_t n) {
            const auto [many, which] = steps(n, times);
            for (int32_t k = 0; k < many; ++k)
                to_place[places++] = {which == 0 ? group : first_doubled + which,
                                      x + std::min(k << which, n - (1 << which))};
        });
        for (int k = 0; k < times; ++k) to_double[doubled_lines++] = {k == 0 ? group : first_doubled + k, 1 << k};
    }
}

int64_t NestedStage::open(WindowRows &in, Extreme which, const NestedColumns &mask) {
    in_ = &in;
    mask_ = &mask;
    const WindowCall &c = in.call();
    rows_.open(c, which);
    pitch_ = ring_pitch(in.whole() * c.element());
    whole_ = in.left == 0 && in.right == 0;
    part_ = c.folded.rows > 0 ? std::min(part_of_folded, c.row_elements()) : c.row_elements();
    const int64_t line_pitch = ring_pitch((part_ + beyond()) * c.element());
    two_ = mask.shared && mask.rows >= least_rows_for_two && c.size[1] > 1 && in.whole() >= rows_->lanes &&
           (!whole_ || in.keeps(1));
    slots_ = c.extent[1] + (two_ ? 1 : 0);
    const int32_t lines = (mask.groups + mask.doubled_lines) * (two_ ? 2 : 1), places = mask.places * (two_ ? 2 : 1);
    const size_t ring = whole_ ? 0 : scratch_bytes(c.extent[0], slots_, pitch_),
                 made = scratch_bytes(lines, line_pitch),
                 lists = scratch_bytes(lines + std::max(mask.rows, mask.rows_of_two) + places, sizeof(void *));
    if (ring > SIZE_MAX / 4 || made > SIZE_MAX / 4) return JORM_ENOMEM;
    memory_.emplace(c.xe, ring + made + lists, 64);
    if (!*memory_) return JORM_ENOMEM;
    ring_ = memory_->as<char>();
    lines_ = ring_ + ring;
    line_list_ = reinterpret_cast<void **>(lines_ + made);
    place_list_ = const_cast<const void **>(line_list_ + lines);
    row_list_ = place_list_ + places;
    for (int32_t i = 0; i < lines; ++i) line_list_[i] = lines_ + i * line_pitch;
    for (int32_t i = 0; i < places; ++i) {
        const auto [line, column] = mask.place[i % mask.places];
        place_list_[i] = lines_ + (line + i / mask.places * (lines / 2)) * line_pitch + column * c.pixel();
    }
    return JORM_OK;
}

void NestedStage::begin_plane(int64_t z) {
    in_->begin_plane(z);
    taken_ = -in_->call().before[1];
    slot_ = 0;
}

// Rows [taken, end) of every plane of the window, made whole where they do not come so.
void NestedStage::take(int64_t end) {
    const WindowCall &c = in_->call();
    rows_.meet(*in_, taken_, end);
    for (; taken_ < end; ++taken_) {
        for (int64_t d = 0; d < c.extent[0]; ++d) {
            const char *const row = in_->row(d, taken_); // even if the mask is empty there: results may overwrite it
            if (whole_) continue;
            char *const to = ring_ + (d * slots_ + slot_) * pitch_;
            std::memcpy(to + in_->left * c.element(), row, size_t(in_->bare * c.element()));
            in_->complete(to, c.element());
        }
        if (++slot_ == slots_) slot_ = 0;
    }
}

// Those rows of the window of row y, each of its plane; without planes, of the only one.
void NestedStage::find_rows(int64_t y, const int32_t *row, const int32_t *plane, int32_t rows) {
    const int64_t top = y - in_->call().before[1];
    if (whole_) {
        for (int32_t i = 0; i < rows; ++i) row_list_[i] = in_->row(plane ? plane[i] : 0, top + row[i]);
        return;
    }
    const int64_t first = slot_ + slots_ - (taken_ - top); // slot of the window's first row, or `slots_` for slot 0
    for (int32_t i = 0; i < rows; ++i) {
        const int64_t slot = first + row[i];
        row_list_[i] = ring_ + ((plane ? plane[i] * slots_ : 0) + slot - (slot < slots_ ? 0 : slots_)) * pitch_;
    }
}

void NestedStage::produce(int64_t y, void *row) {
    const WindowCall &c = in_->call();
    take(y + c.after(1) + 1);
    find_rows(y, mask_->row, mask_->plane, mask_->rows);
    const int64_t n = c.row_elements(), e = c.element();
    for (int64_t from = 0; from < n; from += part_) {
        for (int32_t i = 0; from > 0 && i < mask_->rows; ++i)
            row_list_[i] = static_cast<const char *>(row_list_[i]) + part_ * e;
        const int64_t count = std::min(part_, n - from);
        rows_->across_nested(line_list_, row_list_, mask_->end, mask_->groups, count + beyond());
        along_lines(0, static_cast<char *>(row) + from * e, count);
    }
}

void NestedStage::produce_two(int64_t y, void *row, void *next) {
    if (!two_) return RowStage::produce_two(y, row, next);
    const WindowCall &c = in_->call();
    take(y + c.after(1) + 2);
    find_rows(y, mask_->row_of_two, nullptr, mask_->rows_of_two);
    void **const lower = line_list_ + mask_->groups + mask_->doubled_lines;
    rows_->across_two(line_list_, lower, row_list_, mask_->shared, mask_->groups, in_->whole());
    along_lines(0, row, c.row_elements());
    along_lines(1, next, c.row_elements());
}

// The first n windows over the upper lines, or over the lower ones.
void NestedStage::along_lines(int lower, void *to, int64_t n) {
    const WindowCall &c = in_->call();
    void **const line = line_list_ + lower * (mask_->groups + mask_->doubled_lines);
    for (int32_t i = 0; i < mask_->doubled_lines; ++i) {
        const auto [from, apart] = mask_->doubled[i];
        rows_->pair(line[mask_->groups + i], line[from], n + beyond() - (2 * apart - 1) * c.channels,
                    apart * c.channels);
    }
    rows_->columns.across(to, place_list_ + lower * mask_->places, mask_->places, n);
}

} // namespace jorm
