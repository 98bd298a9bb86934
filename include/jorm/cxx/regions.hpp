/// \file
/// Floods: component trees of 8-bit pictures and the stable regions (MSER) in them, as ranges of regions and pixels.
/// What a flood finds, and its border rule: jorm/watershed.h.
///
///     jorm::region_tree tree = jorm::flood(picture, {.pixels = true});
///     for (jorm::region r : tree)                   // outer ones before inner ones
///         for (jorm::position p : r.pixels()) ...   // of it and of all regions inside it
#ifndef JORM_CXX_REGIONS_HPP
#define JORM_CXX_REGIONS_HPP

#include "jorm/cxx/view.hpp"
#include "jorm/geometry_types.h"
#include "jorm/regiontree.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <new>
#include <vector>

JORM_BEGIN_DOLLARS

namespace jorm {
inline namespace cxx {

class region;

namespace detail {

/// What the regions of one flood share.
struct flooded {
    const uint32_t *words = nullptr;
    int32_t width = 0;
};

/// Walks a region and its descendants in pre-order, or a list of siblings, by the links of the records.
template <bool Deep> class region_iterator {
public:
    using value_type = region;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::forward_iterator_tag;

    region_iterator() = default;
    region_iterator(const jorm_fwtsr *at, const jorm_fwtsr *top, const flooded &in) : at_(at), top_(top), in_(in) {}
    region operator*() const;
    region_iterator &operator++() {
        if constexpr (Deep) {
            const jorm_fwtsr *next = at_->child;
            for (; !next && at_ != top_; at_ = at_->parent) next = at_->next;
            at_ = next;
        } else {
            at_ = at_->next;
        }
        return *this;
    }
    region_iterator operator++(int) {
        region_iterator old = *this;
        ++*this;
        return old;
    }
    const jorm_fwtsr *get() const { return at_; }
    friend bool operator==(const region_iterator &a, const region_iterator &b) { return a.at_ == b.at_; }
    friend bool operator==(const region_iterator &a, std::default_sentinel_t) { return !a.at_; }

private:
    const jorm_fwtsr *at_ = nullptr, *top_ = nullptr;
    flooded in_;
};

/// Walks the pixels of a region and of all inside it, in the order of jorm_fwtsr_fetchpix; or its own ones.
template <bool Deep> class pixel_iterator {
public:
    using value_type = position;
    using difference_type = std::ptrdiff_t;
    using iterator_concept = std::forward_iterator_tag;

    pixel_iterator() = default;
    pixel_iterator(const jorm_fwtsr *top, const flooded &in) : region_(in.words ? top : nullptr, top, in), in_(in) {
        if (region_.get()) pixel_ = uint32_t(top->head), settle();
    }
    position operator*() const {
        return {int32_t(pixel_ / uint32_t(in_.width)), int32_t(pixel_ % uint32_t(in_.width)), 0};
    }
    pixel_iterator &operator++() {
        pixel_ = in_.words[pixel_];
        settle();
        return *this;
    }
    pixel_iterator operator++(int) {
        pixel_iterator old = *this;
        ++*this;
        return old;
    }
    friend bool operator==(const pixel_iterator &a, const pixel_iterator &b) { return a.pixel_ == b.pixel_; }
    friend bool operator==(const pixel_iterator &a, std::default_sentinel_t) { return a.pixel_ == JORM_NO_PIXEL; }

private:
    void settle() {
        if constexpr (Deep)
            while (pixel_ == JORM_NO_PIXEL && (++region_).get()) pixel_ = uint32_t(region_.get()->head);
    }
    region_iterator<true> region_;
    flooded in_;
    uint32_t pixel_ = JORM_NO_PIXEL;
};

template <class Iterator> class range : public std::ranges::view_base {
public:
    explicit range(const Iterator &first = {}) : first_(first) {}
    Iterator begin() const { return first_; }
    std::default_sentinel_t end() const { return {}; }

private:
    Iterator first_;
};

struct free_memory {
    void operator()(void *p) const { _UlMfree(p); }
};
using words = std::unique_ptr<uint32_t[], free_memory>;

/// The buffer that a flood leaves the pixels in; null without memory.
inline words words_for(const source &s, const rectangle &r) {
    const auto left = [](int64_t n, int32_t from, int32_t size) {
        const int64_t begin = std::max<int64_t>(from, 0), end = std::min<int64_t>(n, int64_t(from) + size);
        return size_t(std::max<int64_t>(end - begin, 0));
    };
    const size_t h = left(s.rows(), r.row, r.rows), w = left(s.columns(), r.column, r.columns);
    return words(static_cast<uint32_t *>(_UlMcalloc(h * w + 2 * (w + 2), sizeof(uint32_t))));
}
inline int32_t width_of(const source &s, const rectangle &r) {
    return int32_t(std::min<int64_t>(s.columns(), int64_t(r.column) + r.columns) - std::max(r.column, 0));
}

template <class Record, class Options>
int64_t flooding(int64_t plain(jorm_xe *, uint64_t, const jorm_array *, const jorm_site *, Record *),
                 int64_t masked(jorm_xe *, uint64_t, const jorm_array *, const jorm_array *, const int32_t *,
                                const int32_t *, Record *),
                 const source &picture, const Options &o, uint64_t bits, Record *record) {
    if (!o.mask.get()) return plain(xe(o.env), bits, picture.get(), site(o.region), record);
    jorm_site part;
    jorm_arr_adjorgetRoi(&picture.record(), &part, site(o.region));
    return masked(xe(o.env), bits, picture.get(), o.mask.get(), part.origin, part.size, record);
}

} // namespace detail

/// A region of a tree: a handle that is good as long as the tree, and until the tree is flooded again.
class region {
public:
    region(const jorm_fwtsr *record, const detail::flooded &in) : record_(record), in_(in) {}

    int32_t level() const { return record_->level; }
    /// Pixels, those of all regions inside included.
    int32_t area() const { return record_->area; }
    bool is_root() const { return !record_->parent; }
    region parent() const { return {record_->parent, in_}; }
    /// The regions directly inside.
    detail::range<detail::region_iterator<false>> children() const {
        return range_of(detail::region_iterator<false>(record_->child, record_, in_));
    }
    /// This region and all inside it, outer ones before inner ones.
    detail::range<detail::region_iterator<true>> all() const {
        return range_of(detail::region_iterator<true>(record_, record_, in_));
    }
    /// Its pixels, those of all regions inside included; none unless the flood was asked for pixels.
    detail::range<detail::pixel_iterator<true>> pixels() const {
        return range_of(detail::pixel_iterator<true>(record_, in_));
    }
    /// Only those that lie in no region inside.
    detail::range<detail::pixel_iterator<false>> own_pixels() const {
        return range_of(detail::pixel_iterator<false>(record_, in_));
    }
    const jorm_fwtsr *get() const { return record_; }
    friend bool operator==(const region &a, const region &b) { return a.record_ == b.record_; }

private:
    template <class Iterator> static detail::range<Iterator> range_of(const Iterator &first) {
        return detail::range<Iterator>(first);
    }
    const jorm_fwtsr *record_;
    detail::flooded in_;
};

template <bool Deep> region detail::region_iterator<Deep>::operator*() const { return {at_, in_}; }

/// What makes regions of a tree stable.
struct stability {
    int32_t delta = 5;                       ///< levels over which the growth is measured
    int32_t min_area = 0, max_area = to_end; ///< pixels
    float max_variation = 0.25f;             ///< largest growth
    float min_diversity = 0;                 ///< smallest excess over a stable region inside
};

/// A component tree; a range of its regions, outer ones before inner ones.
class region_tree {
public:
    /// Whether a flood found anything.
    bool empty() const { return !state_ || !state_->store.root; }
    /// The region with all others inside, of a tree that is not empty.
    region root() const { return {state_->store.root, in()}; }
    detail::region_iterator<true> begin() const {
        return empty() ? detail::region_iterator<true>()
                       : detail::region_iterator<true>(root().get(), root().get(), in());
    }
    std::default_sentinel_t end() const { return {}; }

    /// The stable regions, inner ones before outer ones.
    std::vector<region> stable(const stability &s = {}) const {
        std::vector<region> out;
        if (empty()) return out;
        const jorm_msercriteria c = {s.delta, s.min_area, s.max_area, s.max_variation, s.min_diversity};
        jorm_vector found = {};
        JormDetectFMSERs(&found, state_->store.root, &c);
        const std::unique_ptr<void, detail::free_memory> data(found.data);
        for (uint64_t i = 0; i < found.count; ++i) out.emplace_back(static_cast<jorm_fwtsr **>(found.data)[i], in());
        return out;
    }

    struct state {
        jorm_fwtsres store = {};
        detail::words words;
        int32_t width = 0;
        ~state() { JormFWTSRESfini(&store); }
    };
    explicit region_tree(std::unique_ptr<state> s = {}) noexcept : state_(std::move(s)) {}

private:
    detail::flooded in() const { return {state_->store.words, state_->width}; }
    std::unique_ptr<state> state_;
};

struct flood_options {
    bool bright = false; ///< from bright to dark
    bool pixels = false; ///< keep which pixels belong to each region: 4 bytes for each pixel of the picture
    bool every = false;  ///< a record of every component; otherwise those below 16 pixels belong to what swallows them
    uint16_t shift = 0;  ///< samples are shifted right by so many bits first
    position seed = {};  ///< where the flood starts
    optional_mask mask = {}; ///< which rows take part, see JormWatershedEx
    bool invert = false;
    rectangle region = {};
    environment *env = nullptr;
};

/// Floods a picture of one channel of 8 bits.
template <class Errors = throwing>
returns<Errors, region_tree> flood(const source &picture, const flood_options &o = {}) {
    return Errors::template make<region_tree>([&](region_tree &tree) -> int64_t {
        std::unique_ptr<region_tree::state> s(new (std::nothrow) region_tree::state);
        if (s && o.pixels) s->words = detail::words_for(picture, o.region);
        if (!s || (o.pixels && !s->words)) return JORM_ENOMEM;
        JormFWTSRESinit(&s->store, s->words.get(), nullptr);
        s->width = detail::width_of(picture, o.region);
        const detail::slots seed(o.seed);
        jorm_fwtsparams p = {&s->store, o.bright, o.shift, seed[1], seed[2]};
        const uint64_t bits = (o.every ? 0 : JORM_OPT_FAST) | detail::mask_bits(o.invert);
        const int64_t status = detail::flooding(JormWatershed, JormWatershedEx, picture, o, bits, &p);
        tree = region_tree(std::move(s));
        return status;
    });
}

/// Which stable regions to keep; the default keeps all.
struct mser_filter {
    int32_t min_area = 0, max_area = 0;   ///< pixels; 0: no limit
    int32_t min_level = 0, level_end = 0; ///< from min_level up to below level_end
    float max_variation = 0;
    float min_axis_ratio = 0, max_axis_ratio = 0; ///< shorter through longer axis; needs pixels
    bool outermost = false;                       ///< those inside no other one that is kept
    bool innermost = false;                       ///< those with no other one inside
};

/// The maximally stable extremal regions of a picture, dark and bright ones.
class stable_regions {
public:
    /// Dark regions, then bright ones; inner ones before outer ones.
    std::vector<region> regions(const mser_filter &keep = {}) const {
        const jorm_mserfilt filter = record(keep);
        jorm_vector found = {};
        jorm_fmserf_regions(&found, &state_->mser, &filter);
        const std::unique_ptr<void, detail::free_memory> data(found.data);
        auto *const *const first = static_cast<jorm_fwtsr **>(state_->mser.regions.data), *const *listed = first;
        std::vector<region> out;
        for (uint64_t i = 0; i < found.count; ++i) {
            const auto *r = static_cast<jorm_fwtsr **>(found.data)[i];
            while (*listed != r) ++listed; // what is kept stands in the order of the list
            out.emplace_back(r, in(listed - first >= int64_t(state_->mser.dark_count)));
        }
        return out;
    }
    std::vector<region> dark() const { return list(state_->mser.dark, state_->mser.dark_count, false); }
    std::vector<region> bright() const { return list(state_->mser.bright, state_->mser.bright_count, true); }

    /// Their bounding rectangles and ellipses, in the order of regions(); x is the row, y the column. They need pixels.
    std::vector<jorm_2d_rect> bounds(const mser_filter &keep = {}) const {
        return figures<jorm_2d_rect>(jorm_fmserf_brect_$2d, keep);
    }
    std::vector<jorm_f2d_ell> ellipses(const mser_filter &keep = {}) const {
        return figures<jorm_f2d_ell>(jorm_fmserf_ellipse_$f2d, keep);
    }
    /// The record with all results, for calls of the C interface.
    const jorm_mser &record() const { return state_->mser; }

    struct state {
        jorm_mser mser = {};
        jorm_fwtsres store[2] = {};
        detail::words words[2];
        int32_t width = 0;
        ~state() {
            _UlMfree(mser.regions.data);
            for (jorm_fwtsres &s : store) JormFWTSRESfini(&s);
        }
    };
    explicit stable_regions(std::unique_ptr<state> s = {}) noexcept : state_(std::move(s)) {}

private:
    detail::flooded in(bool bright) const { return {state_->store[bright].words, state_->width}; }
    std::vector<region> list(jorm_fwtsr *const *of, uint32_t count, bool bright) const {
        std::vector<region> out;
        for (uint32_t i = 0; i < count; ++i) out.emplace_back(of[i], in(bright));
        return out;
    }
    static jorm_mserfilt record(const mser_filter &k) {
        return {k.min_area,
                k.max_area,
                k.min_level,
                k.level_end,
                k.max_variation,
                k.min_axis_ratio,
                k.max_axis_ratio,
                k.outermost   ? uint32_t(JORM_MSER_OUTERMOST)
                : k.innermost ? uint32_t(JORM_MSER_INNERMOST)
                              : 0u,
                0,
                0};
    }
    template <class Figure, class Function>
    std::vector<Figure> figures(Function *function, const mser_filter &keep) const {
        const jorm_mserfilt filter = record(keep);
        jorm_vector found = {};
        function(&found, &state_->mser, &filter);
        const std::unique_ptr<void, detail::free_memory> data(found.data);
        const auto *first = static_cast<const Figure *>(found.data);
        return std::vector<Figure>(first, first + found.count);
    }
    std::unique_ptr<state> state_;
};

struct mser_options {
    bool dark = true, bright = true;
    bool pixels = false;                                    ///< keep the pixels of regions, see flood_options
    bool every = false;                                     ///< the standard flood instead of the fast one
    int32_t delta = 5;                                      ///< grey levels over which the growth is measured
    int32_t min_area = 0;                                   ///< pixels; 0: 9 of them
    float min_area_fraction = 0, max_area_fraction = 0.25f; ///< of the picture
    float max_variation = 0.25f, min_diversity = 0;         ///< as in `stability`
    uint8_t shift = 0;
    position seed = {};
    optional_mask mask = {};
    bool invert = false;
    rectangle region = {};
    environment *env = nullptr;
};

/// Finds the stable regions of a picture of one channel of 8 bits.
template <class Errors = throwing>
returns<Errors, stable_regions> mser(const source &picture, const mser_options &o = {}) {
    return Errors::template make<stable_regions>([&](stable_regions &found) -> int64_t {
        if (!o.dark && !o.bright) return JORM_EINVAL;
        std::unique_ptr<stable_regions::state> s(new (std::nothrow) stable_regions::state);
        if (!s) return JORM_ENOMEM;
        for (int i = 0; i < 2; ++i) {
            const bool pixels = o.pixels && (i ? o.bright : o.dark);
            if (pixels && !(s->words[i] = detail::words_for(picture, o.region))) return JORM_ENOMEM;
            JormFWTSRESinit(&s->store[i], s->words[i].get(), nullptr);
        }
        s->width = detail::width_of(picture, o.region);
        const detail::slots seed(o.seed);
        jorm_mser &m = s->mser;
        m.delta = o.delta, m.min_area = o.min_area, m.shift = o.shift;
        m.min_area_fraction = o.min_area_fraction, m.max_area_fraction = o.max_area_fraction;
        m.max_variation = o.max_variation, m.min_diversity = o.min_diversity;
        m.passes = o.dark && o.bright ? 2 : o.bright ? 1 : 0;
        m.seed_row = seed[1], m.seed_column = seed[2];
        m.dark_store = &s->store[0], m.bright_store = &s->store[1];
        const uint64_t bits = detail::mask_bits(o.invert);
        const int64_t status = o.every
                                   ? detail::flooding(JormGenerateMSERs, JormGenerateMSERsEx, picture, o, bits, &m)
                                   : detail::flooding(JormGenerateFMSERs, JormGenerateFMSERsEx, picture, o, bits, &m);
        found = stable_regions(std::move(s));
        return status;
    });
}

} // namespace cxx
} // namespace jorm

JORM_END_DOLLARS

#endif
