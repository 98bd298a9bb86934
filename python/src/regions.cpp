// Floods: component trees, watersheds, stable regions.
#include "arrays.hpp"
#include "docs.hpp"

#include <array>
#include <cstddef>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace jorm_python {

namespace {

constexpr Function tree_function = {"component_tree", bits(JORM_U8)};
constexpr Function watershed_function = {"watershed", bits(JORM_U8)};
constexpr Function mser_function = {"mser", bits(JORM_U8)};

// What comes back as record arrays; laid out as numpy's aligned types of these fields are.
struct RegionRecord {
    int32_t area, level, parent, start;
};
struct StableRecord {
    int32_t area, level;
    float variation;
    int32_t box[4];
    float ellipse[5];
    int32_t parent, start;
    bool bright;
};
static_assert(sizeof(RegionRecord) == 16 && sizeof(StableRecord) == 60 && offsetof(StableRecord, bright) == 56);

using Pixels = std::vector<std::array<int32_t, 2>>;

py::object record_dtype(std::initializer_list<std::pair<const char *, const char *>> fields) {
    py::list all;
    for (const auto &[name, type] : fields) all.append(py::make_tuple(name, type));
    return py::module_::import("numpy").attr("dtype")(all, py::arg("align") = true);
}

template <class Record> py::object records(const std::vector<Record> &of, const py::object &dtype) {
    const py::module_ numpy = py::module_::import("numpy");
    py::object made = numpy.attr("empty")(of.size(), dtype);
    if (dtype.attr("itemsize").cast<size_t>() != sizeof(Record))
        throw py::value_error("records are laid out otherwise");
    if (!of.empty()) std::memcpy(data_of(made), of.data(), of.size() * sizeof(Record));
    return made.attr("view")(numpy.attr("recarray"));
}
py::object region_records(const std::vector<RegionRecord> &of) {
    return records(of, record_dtype({{"area", "i4"}, {"level", "i4"}, {"parent", "i4"}, {"start", "i4"}}));
}
py::object pixel_array(const Pixels &p) {
    const py::object made = new_array({int64_t(p.size()), 2}, JORM_S32);
    if (!p.empty()) std::memcpy(data_of(made), p.data(), p.size() * sizeof p[0]);
    return made;
}

// The picture, what takes part, where it starts.
struct Flood {
    const Function &f;
    Picture picture;
    std::optional<Picture> mask_;
    Part where;
    jorm::position seed;

    Flood(const Function &function, py::handle a, py::handle seed_given, py::handle mask_given, py::handle region)
        : f(function), picture(read(function, "a", a)), where(part(function, picture, region)) {
        if (picture.channels() != 1 || picture.axes() != 3) value_error(f, "a must have one channel and no planes");
        mask_ = mask(f, mask_given, picture);
        if (mask_ && !where.whole) { // it is read from the region's corner on
            jorm_array part_of_mask;
            jorm_array_sub(&part_of_mask, &mask_->record(), where.at.row, where.at.column, where.rows, where.columns);
            mask_ = mask_->over(part_of_mask);
        }
        if (seed_given.is_none()) return;
        if (!PySequence_Check(seed_given.ptr()) || PySequence_Size(seed_given.ptr()) != 2)
            value_error(f, "seed must be (row, column)");
        const py::sequence s = py::reinterpret_borrow<py::sequence>(seed_given);
        seed = {integer(f, "seed", py::object(s[0])), integer(f, "seed", py::object(s[1]))};
    }
    template <class Options> void put(Options &o) const {
        o.seed = seed, o.region = where.region;
        if (mask_) o.mask = *mask_;
    }
    // From the region to the picture.
    std::array<int32_t, 2> moved(const jorm::position &p) const {
        return {p.row + where.region.row, p.column + where.region.column};
    }
};

struct Tree {
    std::vector<RegionRecord> regions;
    Pixels pixels;
};

// The regions in pre-order, and their own pixels in the same order: those of a region and all inside it are one piece.
Tree tree_of(const Flood &flood, bool bright, bool every, uint16_t shift, bool pixels) {
    jorm::flood_options o;
    flood.put(o);
    o.bright = bright, o.every = every, o.shift = shift, o.pixels = pixels;
    const jorm::region_tree tree = jorm::flood(flood.picture, o);
    Tree out;
    std::vector<std::pair<const jorm_fwtsr *, int32_t>> path;
    for (const jorm::region r : tree) {
        while (!path.empty() && path.back().first != r.get()->parent) path.pop_back();
        const int32_t parent = path.empty() ? -1 : path.back().second;
        path.emplace_back(r.get(), int32_t(out.regions.size()));
        const int32_t seen = (r.level() << shift) | ((1 << shift) - 1);
        out.regions.push_back({r.area(), bright ? 255 - seen : seen, parent, int32_t(out.pixels.size())});
        for (const jorm::position p : r.own_pixels()) out.pixels.push_back(flood.moved(p));
    }
    return out;
}

uint16_t shift_of(const Function &f, int32_t shift) {
    if (shift < 0 || shift > 7) value_error(f, "shift must be between 0 and 7");
    return uint16_t(shift);
}

py::object component_tree(py::handle a, bool bright, bool every, bool pixels, int32_t shift, py::handle seed,
                          py::handle mask, py::handle region) {
    const Function &f = tree_function;
    const Flood flood(f, a, seed, mask, region);
    const uint16_t bits_off = shift_of(f, shift);
    const Tree tree = unlocked(f, [&] { return tree_of(flood, bright, every, bits_off, pixels); });
    const py::object regions = region_records(tree.regions);
    if (!pixels) return regions;
    return py::make_tuple(regions, pixel_array(tree.pixels));
}

py::object watershed(py::handle a, py::handle out, bool bright, bool every, int32_t shift, py::handle seed,
                     py::handle mask, py::handle region) {
    const Function &f = watershed_function;
    const Flood flood(f, a, seed, mask, region);
    const uint16_t bits_off = shift_of(f, shift);
    const Result dst = result(f, flood.picture, flood.where, out, JORM_S32, bits(JORM_S32));
    const Tree tree = unlocked(f, [&] {
        Tree t = tree_of(flood, bright, every, bits_off, true);
        jorm::fill(dst, -1, {{}, false, {}, dst.area, {}, nullptr});
        const jorm_array &to = dst.record();
        const bool whole = dst.area == flood.where.region; // labels stand where the picture's pixels do
        const int32_t row0 = whole ? 0 : flood.where.region.row, column0 = whole ? 0 : flood.where.region.column;
        size_t pixel = 0;
        for (size_t i = 0; i < t.regions.size(); ++i) {
            const size_t end = i + 1 < t.regions.size() ? size_t(t.regions[i + 1].start) : t.pixels.size();
            for (; pixel < end; ++pixel) {
                const int64_t row = t.pixels[pixel][0] - row0, column = t.pixels[pixel][1] - column0;
                const int32_t label = int32_t(i);
                std::memcpy(static_cast<char *>(to.base) + row * to.stride[1] + column * to.stride[2], &label, 4);
            }
        }
        return t;
    });
    return py::make_tuple(dst.array, region_records(tree.regions));
}

// The growth of a stable region that the detection looked at: to the first ancestor at least delta levels away, when
// that is exactly so far. Levels of stable bright regions are listed as the picture's, those of others as the flood's.
float variation(const jorm_fwtsr *r, int32_t delta, int32_t inversion) {
    const auto level = [=](const jorm_fwtsr *x) { return x->mser ? x->level ^ inversion : x->level; };
    for (const jorm_fwtsr *above = r->parent; above; above = above->parent) {
        const int32_t span = std::abs(level(above) - level(r));
        if (span >= delta) return span == delta ? float(above->area - r->area) / float(r->area) : 0;
    }
    return 0;
}

py::object mser(py::handle a, int32_t delta, int32_t min_area, float min_area_fraction, float max_area_fraction,
                float max_variation, float min_diversity, bool dark, bool bright, bool every, bool pixels,
                int32_t shift, py::handle seed, py::handle mask, py::handle region) {
    const Function &f = mser_function;
    const Flood flood(f, a, seed, mask, region);
    if (!dark && !bright) value_error(f, "either dark or bright regions are wanted");
    jorm::mser_options o;
    flood.put(o);
    o.dark = dark, o.bright = bright, o.pixels = true, o.every = every, o.shift = uint8_t(shift_of(f, shift));
    o.delta = delta, o.min_area = min_area, o.min_area_fraction = min_area_fraction;
    o.max_area_fraction = max_area_fraction, o.max_variation = max_variation, o.min_diversity = min_diversity;

    std::vector<StableRecord> found;
    Pixels all;
    unlocked(f, [&] {
        const jorm::stable_regions stable = jorm::mser(flood.picture, o);
        const std::vector<jorm::region> regions = stable.regions();
        const std::vector<jorm_2d_rect> boxes = stable.bounds();
        const std::vector<jorm_f2d_ell> ellipses = stable.ellipses();
        const size_t dark_count = stable.record().dark_count;
        std::unordered_map<const jorm_fwtsr *, int32_t> index;
        for (size_t i = 0; i < regions.size(); ++i) index[regions[i].get()] = int32_t(i);
        for (size_t i = 0; i < regions.size(); ++i) {
            const jorm::region &r = regions[i];
            const bool is_bright = i >= dark_count;
            const int32_t level = is_bright ? r.level() << shift : (r.level() << shift) | ((1 << shift) - 1);
            const auto corner = flood.moved({boxes[i].x, boxes[i].y});
            const jorm_f2d_ell &e = ellipses[i];
            StableRecord s = {r.area(),
                              level,
                              variation(r.get(), delta >> shift, is_bright ? 255 >> shift : 0),
                              {corner[0], corner[1], boxes[i].width + 1, boxes[i].height + 1},
                              {e.centre.x + float(flood.where.region.row),
                               e.centre.y + float(flood.where.region.column), e.semi1, e.semi2, e.angle},
                              -1,
                              int32_t(all.size()),
                              is_bright};
            for (const jorm_fwtsr *above = r.get()->parent; above && s.parent < 0; above = above->parent) {
                const auto at = index.find(above);
                if (at != index.end()) s.parent = at->second;
            }
            if (pixels)
                for (const jorm::position p : r.pixels()) all.push_back(flood.moved(p));
            found.push_back(s);
        }
    });
    const py::object regions = records(found, record_dtype({{"area", "i4"},
                                                            {"level", "i4"},
                                                            {"variation", "f4"},
                                                            {"box", "(4,)i4"},
                                                            {"ellipse", "(5,)f4"},
                                                            {"parent", "i4"},
                                                            {"start", "i4"},
                                                            {"bright", "?"}}));
    if (!pixels) return regions;
    return py::make_tuple(regions, pixel_array(all));
}

} // namespace

void define_regions(py::module_ &m) {
    const py::none none;
#define FLOOD                                                                                                          \
    "shift : int\n    Grey levels lose so many bits first.\n"                                                          \
    "seed : (row, column), optional\n    Where the flood starts; it begins in the next column.\n"                      \
    "mask : ndarray of uint8 or bool, optional\n"                                                                      \
    "    It is looked at coarsely and decides about whole rows: by its column at the first pixel that it "             \
    "selects.\n" JORM_DOC_REGION
#define EVERY                                                                                                          \
    "every : bool\n"                                                                                                   \
    "    A record of every component; otherwise those below 16 pixels belong to what swallows them.\n"
    m.def(
        "component_tree", &component_tree,
        "component_tree(a, *, bright=False, every=False, pixels=False, shift=0, seed=None, mask=None, region=None)\n"
        "--\n\n"
        "The tree of connected components (four neighbours) of pixels at or below each grey level.\n\n"
        "The first column is a border that no component enters.\n\n"
        "Parameters\n----------\n"
        "a : ndarray of uint8, one channel\n"
        "bright : bool\n    At or above each level instead.\n" EVERY
        "pixels : bool\n    Also return the pixels.\n" FLOOD "\nReturns\n-------\nregions : recarray\n"
        "    Outer components before inner ones, with the fields area (pixels, those of inner ones included), level,\n"
        "    parent (the index of the component around, -1 for the root) and start.\n"
        "pixels : ndarray of int32\n"
        "    With `pixels`: rows (row, column); those of region r are pixels[r.start:r.start + r.area].\n\n"
        "Examples\n--------\n"
        ">>> a = np.full((6, 8), 200, np.uint8)\n"
        ">>> a[1:5, 2:6] = 50\n"
        ">>> tree = jorm.component_tree(a)\n"
        ">>> tree.area, tree.level, tree.parent\n"
        "(array([42, 16], dtype=int32), array([200,  50], dtype=int32), array([-1,  0], dtype=int32))\n",
        py::arg("a"), py::kw_only(), py::arg("bright") = false, py::arg("every") = false, py::arg("pixels") = false,
        py::arg("shift") = 0, py::arg("seed") = none, py::arg("mask") = none, py::arg("region") = none);
    m.def("watershed", &watershed,
          "watershed(a, out=None, *, bright=False, every=False, shift=0, seed=None, mask=None, region=None)\n--\n\n"
          "Floods a picture and labels every pixel with the innermost component that it belongs to.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, one channel\n"
          "out : ndarray of int32, optional\n    Takes the labels.\n"
          "bright : bool\n    Flood from bright to dark.\n" EVERY FLOOD
          "\nReturns\n-------\nlabels : ndarray of int32\n"
          "    The index of a region; -1 where none is, as in the first column.\n"
          "regions : recarray\n    As of `component_tree`.\n\nExamples\n--------\n"
          ">>> a = np.full((6, 8), 200, np.uint8)\n"
          ">>> a[1:5, 2:6] = 50\n"
          ">>> labels, regions = jorm.watershed(a)\n"
          ">>> labels[2]\n"
          "array([-1,  0,  1,  1,  1,  1,  0,  0], dtype=int32)\n",
          py::arg("a"), py::arg("out") = none, py::kw_only(), py::arg("bright") = false, py::arg("every") = false,
          py::arg("shift") = 0, py::arg("seed") = none, py::arg("mask") = none, py::arg("region") = none);
    m.def(
        "mser", &mser,
        "mser(a, *, delta=5, min_area=0, min_area_fraction=0.0, max_area_fraction=0.25, max_variation=0.25, "
        "min_diversity=0.0, dark=True, bright=True, every=False, pixels=False, shift=0, seed=None, mask=None, "
        "region=None)\n--\n\n"
        "The maximally stable extremal regions of a picture.\n\n"
        "Parameters\n----------\n"
        "a : ndarray of uint8, one channel\n"
        "delta : int\n    Grey levels over which the growth is measured.\n"
        "min_area : int\n    Pixels; used when the fraction gives 0. 0: 9 of them.\n"
        "min_area_fraction, max_area_fraction : float\n    Of the picture.\n"
        "max_variation : float\n    The largest growth, as a part of the region.\n"
        "min_diversity : float\n    The smallest part by which a region must exceed a stable one inside it.\n"
        "dark, bright : bool\n    Which regions to look for.\n" EVERY
        "pixels : bool\n    Also return the pixels.\n" FLOOD "\nReturns\n-------\nregions : recarray\n"
        "    Dark regions, then bright ones, inner ones before outer ones, with the fields area, level (the darkest "
        "of\n"
        "    bright, the brightest of dark regions), variation, box (row, column, rows, columns), ellipse (centre row\n"
        "    and column, semi-axes, the shorter one first, and angle: the first semi-axis lies along cos angle down\n"
        "    the rows and -sin angle along the columns), parent (the index of the stable region around, or -1), "
        "start,\n"
        "    and bright.\n"
        "pixels : ndarray of int32\n"
        "    With `pixels`: rows (row, column); those of region r are pixels[r.start:r.start + r.area].\n\n"
        "Examples\n--------\n"
        ">>> a = np.full((40, 40), 200, np.uint8)\n"
        ">>> a[10:20, 12:24] = 50\n"
        ">>> regions = jorm.mser(a, dark=True, bright=False)\n"
        ">>> regions.area, regions.level, regions.box\n"
        "(array([120], dtype=int32), array([50], dtype=int32), array([[10, 12, 10, 12]], dtype=int32))\n",
        py::arg("a"), py::kw_only(), py::arg("delta") = 5, py::arg("min_area") = 0, py::arg("min_area_fraction") = 0.0f,
        py::arg("max_area_fraction") = 0.25f, py::arg("max_variation") = 0.25f, py::arg("min_diversity") = 0.0f,
        py::arg("dark") = true, py::arg("bright") = true, py::arg("every") = false, py::arg("pixels") = false,
        py::arg("shift") = 0, py::arg("seed") = none, py::arg("mask") = none, py::arg("region") = none);
}

} // namespace jorm_python
