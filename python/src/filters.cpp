// Neighbourhoods: filters and morphology.
#include "arrays.hpp"
#include "docs.hpp"

#include <cmath>
#include <cstring>
#include <vector>

namespace jorm_python {

namespace {

// The library's filters serve one channel, its morphology with elements and its weighted filters three as well.
constexpr Function box_function = {"box", arithmetic_types, bits(1)};
constexpr Function minimum_function = {"minimum", arithmetic_types, bits(1)};
constexpr Function maximum_function = {"maximum", arithmetic_types, bits(1)};
constexpr Function erode_function = {"erode", arithmetic_types, bits(1)};
constexpr Function dilate_function = {"dilate", arithmetic_types, bits(1)};
constexpr Function opening_function = {"opening", arithmetic_types, bits(1)};
constexpr Function closing_function = {"closing", arithmetic_types, bits(1)};
constexpr Function tophat_function = {"tophat", arithmetic_types, bits(1)};
constexpr Function bothat_function = {"bothat", arithmetic_types, bits(1)};
constexpr Function gaussian_function = {"gaussian", arithmetic_types, bits(1, 3)};
constexpr Function sepfilter_function = {"sepfilter", arithmetic_types, bits(1, 3)};
constexpr Function firefly_function = {"firefly", arithmetic_types, bits(1, 3)};

// An int or (rows, columns), for arrays of four axes also (planes, rows, columns).
struct Numbers {
    double planes, rows, columns;
};
template <class Convert>
Numbers by_axis(const Function &f, const char *name, py::handle given, const Picture &like, double planes,
                Convert convert) {
    if (!PySequence_Check(given.ptr())) {
        const double v = convert(f, name, given);
        return {planes, v, v};
    }
    const py::sequence s = py::reinterpret_borrow<py::sequence>(given);
    const size_t n = s.size(), lead = n == 3;
    if (n != 2 && !(lead && like.axes() == 4))
        value_error(f, std::string(name) + " must be a number, (rows, columns), or for 4 axes (planes, rows, columns)");
    return {lead ? convert(f, name, py::object(s[0])) : planes, double(convert(f, name, py::object(s[lead]))),
            double(convert(f, name, py::object(s[lead + 1])))};
}

jorm::position anchor_in(const Function &f, py::handle given, const Picture &like, const jorm::window &w) {
    if (given.is_none()) return {};
    const Numbers a = by_axis(f, "anchor", given, like, w.planes / 2, integer);
    if (a.rows < 0 || a.rows >= w.rows || a.columns < 0 || a.columns >= w.columns || a.planes < 0 ||
        a.planes >= w.planes)
        value_error(f, "anchor must lie in the window");
    return {int32_t(a.rows), int32_t(a.columns), int32_t(a.planes)};
}

jorm::window window_of(const Function &f, py::handle size, py::handle anchor, const Picture &like) {
    const Numbers n = by_axis(f, "size", size, like, 1, integer);
    if (n.rows < 1 || n.columns < 1 || n.planes < 1) value_error(f, "size must be above 0");
    jorm::window w = {int32_t(n.rows), int32_t(n.columns), {}, int32_t(n.planes)};
    w.anchor = anchor_in(f, anchor, like, w);
    return w;
}
bool is_single(const jorm::window &w) { return w.rows == 1 && w.columns == 1 && w.planes == 1; }

// What a window of a single pixel gives, which the library takes for its default.
void single(const Function &f, const Picture &src, const Result &dst, const Part &p, bool is_hat) {
    pieces(f, dst, [&](Piece of) {
        if (is_hat)
            jorm::fill(of(dst), 0, {{}, false, {}, dst.area, {}, nullptr});
        else
            jorm::copy(of(dst), of(src), {{}, false, dst.area, p.at, {}, nullptr});
    });
}

using Filter = void(const jorm::target &, const jorm::source &, const jorm::window &, const jorm::filter_options &);
using Morph = void(const jorm::target &, const jorm::source &, const jorm::source &, const jorm::filter_options &,
                   const jorm::position &);

// Over a window, or where there is a `morph` over a structuring element.
template <const Function &function, Filter *filter, Morph *morph, bool is_hat>
py::object neighbourhood(py::handle a, py::handle size, py::handle out, py::handle anchor, py::handle region) {
    Function f = function;
    const Picture src = read(f, "a", a);
    const Part p = part(f, src, region);
    const bool by_element = bool(morph) && is_array(size) && is_picture(size);
    jorm::window w;
    py::object element_array;
    Picture element;
    if (by_element) {
        static constexpr Function reading = {"structuring element", bits(JORM_U8)};
        element_array = size.attr("astype")("bool").attr("astype")("uint8").attr("__mul__")(py::int_(255));
        element_array = element_array.attr("astype")("uint8");
        element = read(reading, "element", element_array);
        if (element.channels() != 1) value_error(f, "element must have one channel");
        w = {element.rows(), element.columns(), {}, element.planes()};
        w.anchor = anchor_in(f, anchor, src, w);
        f.channels = bits(1, 3, 4);
        const bool full = element_array.attr("all")().cast<bool>();
        if (full) f.channels = bits(1); // the library takes that for a window
    } else {
        w = window_of(f, size, anchor, src);
    }
    const Result dst = result(f, src, p, out, src.type(), bits(src.type()));
    unlocked(f, [&] {
        if (!by_element && is_single(w)) return single(f, src, dst, p, is_hat);
        pieces(f, dst, [&](Piece of) {
            const jorm::filter_options o = {jorm::beyond::parent, dst.area, p.at, nullptr};
            if constexpr (morph != nullptr)
                if (by_element) return morph(of(dst), of(src), element, o, w.anchor);
            filter(of(dst), of(src), w, o);
        });
    });
    return dst.array;
}

#define OVER_WINDOW(name) static_cast<Filter *>(&jorm::name<jorm::throwing>)
#define OVER_ELEMENT(name) static_cast<Morph *>(&jorm::name<jorm::throwing>)

// ---- Weighted ----

// The window that holds what a Gaussian of these deviations does not neglect: 4 of them to each side.
int32_t reach(const Function &f, double sigma) {
    const double radius = std::floor(4 * sigma + 0.5);
    if (!(sigma > 0 && radius < 1e9)) value_error(f, "sigma must be above 0 where size is left out");
    return 2 * int32_t(radius) + 1;
}

struct Bell {
    jorm::window window;
    jorm::deviations sigma;
};
Bell bell(const Function &f, py::handle size, py::handle sigma, py::handle anchor, const Picture &src) {
    Numbers s = {0, 0, 0};
    if (!sigma.is_none()) s = by_axis(f, "sigma", sigma, src, 0, number);
    if (!(s.planes >= 0 && s.rows >= 0 && s.columns >= 0)) value_error(f, "sigma must not be negative");
    Bell b;
    b.sigma = {s.rows, s.columns, s.planes};
    if (size.is_none()) {
        b.window = {reach(f, s.rows), reach(f, s.columns), {}, s.planes > 0 ? reach(f, s.planes) : 1};
        b.window.anchor = anchor_in(f, anchor, src, b.window);
    } else {
        b.window = window_of(f, size, anchor, src);
    }
    return b;
}

py::object gaussian(py::handle a, py::handle size, py::handle out, py::handle sigma, py::handle anchor,
                    py::handle region) {
    const Function &f = gaussian_function;
    const Picture src = read(f, "a", a);
    const Part p = part(f, src, region);
    const Bell b = bell(f, size, sigma, anchor, src);
    const Result dst = result(f, src, p, out, src.type(), bits(src.type()));
    unlocked(f, [&] {
        if (is_single(b.window)) return single(f, src, dst, p, false);
        pieces(f, dst, [&](Piece of) {
            jorm::gaussian(of(dst), of(src), b.window, {b.sigma, jorm::beyond::parent, dst.area, p.at, nullptr});
        });
    });
    return dst.array;
}

std::vector<double> weights(const Function &f, const char *name, py::handle given) {
    if (!PySequence_Check(given.ptr())) type_error(f, std::string(name) + " must be a sequence of numbers");
    const py::sequence s = py::reinterpret_borrow<py::sequence>(given);
    std::vector<double> w;
    for (size_t i = 0; i < s.size(); ++i) w.push_back(number(f, name, py::object(s[i])));
    if (w.empty()) value_error(f, std::string(name) + " must not be empty");
    return w;
}

py::object sepfilter(py::handle a, py::handle down, py::handle along, py::handle out, py::handle planes,
                     py::handle anchor, py::handle region) {
    const Function &f = sepfilter_function;
    const Picture src = read(f, "a", a);
    const Part p = part(f, src, region);
    const std::vector<double> d = weights(f, "down", down), l = weights(f, "along", along),
                              across = planes.is_none() ? std::vector<double>() : weights(f, "planes", planes);
    if (!across.empty() && src.axes() != 4) value_error(f, "planes needs an array of 4 axes");
    const jorm::window w = {int32_t(d.size()), int32_t(l.size()), {}, int32_t(std::max(across.size(), size_t(1)))};
    const jorm::position at = anchor_in(f, anchor, src, w);
    const Result dst = result(f, src, p, out, src.type(), bits(src.type()));
    unlocked(f, [&] {
        pieces(f, dst, [&](Piece of) {
            jorm::separable_filter(of(dst), of(src), d, l, {at, across, jorm::beyond::parent, dst.area, p.at, nullptr});
        });
    });
    return dst.array;
}

py::object firefly(py::handle a, py::handle size, py::handle out, py::handle sigma, py::handle bright, py::handle dark,
                   bool both, py::handle anchor, py::handle region) {
    const Function &f = firefly_function;
    const Picture src = read(f, "a", a);
    const Part p = part(f, src, region);
    const Bell b = bell(f, size, sigma, anchor, src);
    const std::optional<jorm::values> above = optional_values(f, "bright", bright, src.channels()),
                                      below = optional_values(f, "dark", dark, src.channels());
    const Result dst = result(f, src, p, out, src.type(), bits(src.type()));
    unlocked(f, [&] {
        if (is_single(b.window)) return single(f, src, dst, p, false);
        pieces(f, dst, [&](Piece of) {
            jorm::firefly_options o;
            o.sigma = b.sigma, o.both = both, o.region = dst.area, o.at = p.at;
            if (above) o.bright = of(*above);
            if (below) o.dark = of(*below);
            jorm::firefly(of(dst), of(src), b.window, o);
        });
    });
    return dst.array;
}

} // namespace

void define_filters(py::module_ &m) {
    const py::none none;
#define HEAD(name, what)                                                                                               \
    name "(a, size, out=None, *, anchor=None, region=None)\n--\n\n" what                                               \
         "\n\nWindows read the true pixels around `region`; beyond the edges of the picture its mirror image about\n"  \
         "the edge pixels (scipy.ndimage's 'mirror').\n\nParameters\n----------\n"                                     \
         "a : ndarray of uint8, int16, int32 or float32\n"
#define WINDOW                                                                                                         \
    "size : int, (rows, columns), or for 4 axes (planes, rows, columns)\n"                                             \
    "    The window.\n"
#define ELEMENT                                                                                                        \
    "size : int, (rows, columns), for 4 axes (planes, rows, columns), or ndarray\n"                                    \
    "    The window, or a structuring element: its elements that are not 0 belong to it.\n"
#define TAIL                                                                                                           \
    JORM_DOC_OUT "anchor : like `size`, optional\n    The place in the window that lies over the pixel; its centre "   \
                 "when left out.\n" JORM_DOC_REGION "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
#define SAMPLE ">>> a = np.array([[0, 0, 9, 9, 9, 0, 9, 0]], np.uint8)\n"
    const auto define = [&](const char *name, auto function, const char *doc) {
        m.def(name, function, doc, py::arg("a"), py::arg("size"), py::arg("out") = none, py::kw_only(),
              py::arg("anchor") = none, py::arg("region") = none);
    };
    define("box", &neighbourhood<box_function, OVER_WINDOW(box_filter), nullptr, false>,
           HEAD("box", "The mean of the window around each pixel, rounded to nearest even.") WINDOW TAIL SAMPLE
           ">>> jorm.box(a, (1, 3))\n"
           "array([[0, 3, 6, 9, 6, 6, 3, 6]], dtype=uint8)\n");
    define("minimum", &neighbourhood<minimum_function, OVER_WINDOW(min_filter), nullptr, false>,
           HEAD("minimum", "The least pixel of the window around each pixel.") WINDOW TAIL SAMPLE
           ">>> jorm.minimum(a, (1, 3))\n"
           "array([[0, 0, 0, 9, 0, 0, 0, 0]], dtype=uint8)\n");
    define("maximum", &neighbourhood<maximum_function, OVER_WINDOW(max_filter), nullptr, false>,
           HEAD("maximum", "The largest pixel of the window around each pixel.") WINDOW TAIL SAMPLE
           ">>> jorm.maximum(a, (1, 3))\n"
           "array([[0, 9, 9, 9, 9, 9, 9, 9]], dtype=uint8)\n");
    define("erode", &neighbourhood<erode_function, OVER_WINDOW(erode), OVER_ELEMENT(erode), false>,
           HEAD("erode", "Grey-level erosion: the least pixel under the element.") ELEMENT TAIL SAMPLE
           ">>> jorm.erode(a, np.array([[1, 0, 1]]))\n"
           "array([[0, 0, 0, 9, 0, 9, 0, 9]], dtype=uint8)\n");
    define("dilate", &neighbourhood<dilate_function, OVER_WINDOW(dilate), OVER_ELEMENT(dilate), false>,
           HEAD("dilate", "Grey-level dilation: the largest pixel under the element, which is not reflected.")
               ELEMENT TAIL SAMPLE ">>> jorm.dilate(a, (1, 3))\n"
                                   "array([[0, 9, 9, 9, 9, 9, 9, 9]], dtype=uint8)\n");
    define("opening", &neighbourhood<opening_function, OVER_WINDOW(open), OVER_ELEMENT(open), false>,
           HEAD("opening", "Grey-level opening: the dilation of the erosion.") ELEMENT TAIL SAMPLE
           ">>> jorm.opening(a, (1, 3))\n"
           "array([[0, 0, 9, 9, 9, 0, 0, 0]], dtype=uint8)\n");
    define("closing", &neighbourhood<closing_function, OVER_WINDOW(close), OVER_ELEMENT(close), false>,
           HEAD("closing", "Grey-level closing: the erosion of the dilation.") ELEMENT TAIL SAMPLE
           ">>> jorm.closing(a, (1, 3))\n"
           "array([[0, 0, 9, 9, 9, 9, 9, 9]], dtype=uint8)\n");
    define("tophat", &neighbourhood<tophat_function, OVER_WINDOW(tophat), OVER_ELEMENT(tophat), true>,
           HEAD("tophat", "What opening removes: a - opening(a).") ELEMENT TAIL SAMPLE
           ">>> jorm.tophat(a, (1, 3))\n"
           "array([[0, 0, 0, 0, 0, 0, 9, 0]], dtype=uint8)\n");
    define("bothat", &neighbourhood<bothat_function, OVER_WINDOW(bothat), OVER_ELEMENT(bothat), true>,
           HEAD("bothat", "What closing adds: closing(a) - a.") ELEMENT TAIL SAMPLE
           ">>> jorm.bothat(a, (1, 3))\n"
           "array([[0, 0, 0, 0, 0, 9, 0, 9]], dtype=uint8)\n");
#define BELL                                                                                                           \
    "size : int, (rows, columns), or for 4 axes (planes, rows, columns); optional\n"                                   \
    "    The window; left out, 4 deviations to each side.\n" JORM_DOC_OUT                                              \
    "sigma : number, (rows, columns), or for 4 axes (planes, rows, columns); optional\n"                               \
    "    Standard deviations in pixels; left out, what suits the window.\n"
#define ANCHOR "anchor : like `size`, optional\n    The place in the window that lies over the pixel.\n"
    m.def("gaussian", &gaussian,
          "gaussian(a, size=None, out=None, *, sigma=None, anchor=None, region=None)\n--\n\n"
          "The Gaussian-weighted mean of the window around each pixel. Beyond the edges stands the mirror image.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int16, int32 or float32\n" BELL ANCHOR JORM_DOC_REGION
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.array([[0, 0, 0, 255, 0, 0, 0]], np.uint8)\n"
          ">>> jorm.gaussian(a, (1, 5), sigma=1)\n"
          "array([[  0,  14,  62, 103,  62,  14,   0]], dtype=uint8)\n"
          ">>> jorm.gaussian(a, sigma=1).shape\n"
          "(1, 7)\n",
          py::arg("a"), py::arg("size") = none, py::arg("out") = none, py::kw_only(), py::arg("sigma") = none,
          py::arg("anchor") = none, py::arg("region") = none);
    m.def("sepfilter", &sepfilter,
          "sepfilter(a, down, along, out=None, *, planes=None, anchor=None, region=None)\n--\n\n"
          "The sum of the window's pixels with the weights down[row] * along[column], of which `anchor` lies over\n"
          "the pixel. Beyond the edges stands the mirror image.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int16, int32 or float32\n"
          "down, along : sequence of numbers\n"
          "    The weights of a column and of a row of the window; they are not reflected.\n" JORM_DOC_OUT
          "planes : sequence of numbers, optional\n    The weights across planes, of 4 axes.\n"
          "anchor : int, (rows, columns), or for 4 axes (planes, rows, columns); optional\n" JORM_DOC_REGION
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.array([[1, 2, 4, 8]], np.int16)\n"
          ">>> jorm.sepfilter(a, [1], [-1, 0, 1])\n"
          "array([[0, 3, 6, 0]], dtype=int16)\n",
          py::arg("a"), py::arg("down"), py::arg("along"), py::arg("out") = none, py::kw_only(),
          py::arg("planes") = none, py::arg("anchor") = none, py::arg("region") = none);
    m.def("firefly", &firefly,
          "firefly(a, size=None, out=None, *, sigma=None, bright=None, dark=None, both=False, anchor=None, "
          "region=None)\n--\n\n"
          "Replaces isolated bright pixels by the Gaussian mean of their surroundings.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int16, int32 or float32\n" BELL "bright : number, or one for each channel; optional\n"
          "    By how much a pixel exceeds its surroundings; left out, three standard deviations of that.\n"
          "dark : number, or one for each channel; optional\n"
          "    By how much dark pixels fall short of theirs; giving it implies `both`.\n"
          "both : bool\n    Replace dark pixels, too.\n" ANCHOR JORM_DOC_REGION
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.full((5, 5), 10, np.uint8)\n"
          ">>> a[2, 2] = 200\n"
          ">>> int(jorm.firefly(a, 5, bright=50).max())\n"
          "10\n",
          py::arg("a"), py::arg("size") = none, py::arg("out") = none, py::kw_only(), py::arg("sigma") = none,
          py::arg("bright") = none, py::arg("dark") = none, py::arg("both") = false, py::arg("anchor") = none,
          py::arg("region") = none);
}

} // namespace jorm_python
