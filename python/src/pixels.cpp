// Conversions, comparisons, thresholds, copies, fills, resizing.
#include "arrays.hpp"
#include "docs.hpp"

#include <cmath>
#include <cstring>

namespace jorm_python {

namespace {

// A choice by name.
template <class T> struct Name {
    const char *name;
    T value;
};
template <class T, size_t n>
T choice(const Function &f, const char *what, py::handle given, const Name<T> (&names)[n]) {
    std::string all;
    for (const Name<T> &x : names) {
        if (PyUnicode_Check(given.ptr()) && !PyUnicode_CompareWithASCIIString(given.ptr(), x.name)) return x.value;
        all += (all.empty() ? "'" : ", '") + std::string(x.name) + "'";
    }
    value_error(f, std::string(what) + " must be one of " + all + ", not " + std::string(py::repr(given)));
}

std::optional<jorm::ranges> range(const Function &f, const char *name, py::handle given) {
    if (given.is_none()) return {};
    if (!PySequence_Check(given.ptr()) || PySequence_Size(given.ptr()) != 2)
        value_error(f, std::string(name) + " must be a pair (lowest, highest)");
    const py::sequence pair = py::reinterpret_borrow<py::sequence>(given);
    return jorm::ranges(number(f, name, py::object(pair[0])), number(f, name, py::object(pair[1])));
}

// ---- convert ----

constexpr Function convert_function = {"convert", short_types};

py::object convert(py::handle a, py::handle dtype, py::handle out, py::handle gain, py::handle offset,
                   py::handle to_range, py::handle from_range, py::handle region) {
    const Function &f = convert_function;
    Picture src = read(f, "a", a);
    const int32_t channels = src.channels();
    const bool scaled = !gain.is_none() || !offset.is_none(), ranged = !to_range.is_none() || !from_range.is_none();
    if (scaled && ranged) value_error(f, "gain and offset do not go with ranges");
    if (ranged && to_range.is_none()) value_error(f, "from_range needs to_range");
    const jorm::values by = gain.is_none() ? jorm::values(1) : values(f, "gain", gain, channels);
    const jorm::values plus = offset.is_none() ? jorm::values(0) : values(f, "offset", offset, channels);
    const jorm::convert_options ranges = {
        range(f, "to_range", to_range), range(f, "from_range", from_range), {}, {}, nullptr};

    const Part p = part(f, src, region);
    if (dtype.is_none() && out.is_none()) type_error(f, "either dtype or out is needed");
    const uint32_t type = dtype.is_none() ? src.type() : element_type(f, "dtype", dtype, short_types);
    const Result dst = result(f, src, p, out, type, short_types);
    if (!dtype.is_none() && dst.type() != type) type_error(f, std::string("out is of ") + type_name(dst.type()));
    if (!out.is_none()) separate(src, dst, p);
    // Plain conversions serve the arithmetic types; a gain of 1 serves all.
    const bool gained = scaled || (!ranged && !(arithmetic_types >> src.type() & arithmetic_types >> dst.type() & 1));
    unlocked(
        f,
        [&] {
            if (gained) return jorm::gain(dst, src, by, plus, {dst.area, p.at, {}, nullptr});
            jorm::convert_options o = ranges;
            o.region = dst.area, o.at = p.at;
            jorm::convert(dst, src, o);
        },
        [&] { return type_name(src.type()) + std::string(" -> ") + type_name(dst.type()); });
    return dst.array;
}

// ---- compare ----

constexpr Function compare_function = {"compare", compared_types};

enum class Test { equal, not_equal, less, less_equal, greater, greater_equal };
constexpr Name<Test> tests[] = {{"==", Test::equal},      {"!=", Test::not_equal}, {"<", Test::less},
                                {"<=", Test::less_equal}, {">", Test::greater},    {">=", Test::greater_equal}};

py::object compare(py::handle a, py::handle b, py::handle op, py::handle out, py::handle if_true, py::handle if_false,
                   py::handle dtype, py::handle region) {
    Function f = compare_function;
    Test test = choice(f, "op", op, tests);
    if (!is_picture(a) && is_picture(b)) { // the other way round
        std::swap(a, b);
        constexpr Test mirrored[] = {Test::equal,         Test::not_equal, Test::greater,
                                     Test::greater_equal, Test::less,      Test::less_equal};
        test = mirrored[int(test)];
    }
    Picture first = read(f, "a", a), second;
    const bool pictures = is_picture(b);
    if (pictures)
        same_shape(f, "b", second = read(f, "b", b), first);
    else
        f.channels = bits(1, 2, 3);
    const int32_t channels = first.channels();
    const jorm::values constant = pictures ? jorm::values(0) : values(f, "b", b, channels);
    std::optional<jorm::values> yes = optional_values(f, "if_true", if_true, channels),
                                no = optional_values(f, "if_false", if_false, channels);

    const uint32_t type = dtype.is_none() ? uint32_t(JORM_U8) : element_type(f, "dtype", dtype, filled_types);
    const Part p = part(f, first, region);
    Result dst = result(f, first, p, out, type, filled_types);
    if (!out.is_none()) {
        separate(first, dst, p);
        if (pictures) separate(second, dst, p);
    }
    jorm::relation relation = jorm::relation::equal;
    switch (test) {
    case Test::equal:
        break;
    case Test::not_equal: {
        const uint32_t t = dst.type(); // all bits set
        const double all = t == JORM_F32 ? 1 : t == JORM_U8 ? 255 : t == JORM_U16 ? 65535 : -1;
        const jorm::values mask_true = yes || no ? yes.value_or(jorm::values(0)) : jorm::values(all);
        if (t == JORM_U32 && !yes && !no) { // which values of 32 bits with a sign say
            jorm_array with_sign = dst.record();
            with_sign.eltype = JORM_S32;
            static_cast<Picture &>(dst) = dst.over(with_sign);
        }
        yes = no.value_or(jorm::values(0)), no = mask_true;
        break;
    }
    case Test::less:
        relation = jorm::relation::less;
        break;
    case Test::less_equal:
        relation = jorm::relation::less_equal;
        break;
    case Test::greater:
        relation = jorm::relation::greater;
        break;
    case Test::greater_equal:
        relation = jorm::relation::greater_equal;
        break;
    }
    unlocked(
        f,
        [&] {
            pieces(f, dst, [&](Piece of) {
                jorm::compare_options o;
                if (yes) o.if_true = of(*yes);
                if (no) o.if_false = of(*no);
                o.region = dst.area, o.at = o.at2 = p.at;
                if (pictures)
                    jorm::compare(of(dst), of(first), relation, of(second), o);
                else
                    jorm::compare(of(dst), of(first), relation, of(constant), o);
            });
        },
        [&] {
            return type_name(first.type()) + (pictures ? std::string(", ") + type_name(second.type()) : "") + " -> " +
                   type_name(dst.type());
        });
    return dst.array;
}

// ---- threshold ----

constexpr Function threshold_function = {"threshold", compared_types, bits(1, 2, 3)};
constexpr Function otsu_function = {"otsu", compared_types, bits(1, 2, 3)};

enum class Method { otsu, usto, blur, adaptive };
constexpr Name<Method> methods[] = {
    {"otsu", Method::otsu}, {"usto", Method::usto}, {"blur", Method::blur}, {"adaptive", Method::adaptive}};

py::object threshold(py::handle a, py::handle level, py::handle out, py::handle upper, py::handle offset, uint32_t bins,
                     py::handle range_, py::handle dtype, py::handle region) {
    Function f = threshold_function;
    const bool named = PyUnicode_Check(level.ptr());
    const Method method = named ? choice(f, "level", level, methods) : Method::adaptive;
    if (named && method == Method::adaptive) f.types = arithmetic_types;
    if (named && (method == Method::usto || method == Method::blur))
        f.types = bits(JORM_U8, JORM_F32), f.channels = bits(1, 3);
    Picture src = read(f, "a", a);
    const int32_t channels = src.channels();
    const bool between = !upper.is_none();
    if (between && named) value_error(f, "upper goes with a level that is a number");
    const jorm::values low = named ? jorm::values(0) : values(f, "level", level, channels);
    const jorm::values high = between ? values(f, "upper", upper, channels) : jorm::values(0);
    const jorm::values above = offset.is_none() ? jorm::values(0) : values(f, "offset", offset, channels);
    const std::optional<jorm::ranges> over = range(f, "range", range_);

    const uint32_t type = dtype.is_none() ? uint32_t(JORM_U8) : element_type(f, "dtype", dtype, arithmetic_types);
    const Part p = part(f, src, region);
    const Result dst = result(f, src, p, out, type, arithmetic_types);
    if (!out.is_none()) separate(src, dst, p);
    unlocked(
        f,
        [&] {
            pieces(f, dst, [&](Piece of) {
                const jorm::any_view d = of(dst), s = of(src);
                const jorm::place_options o = {dst.area, p.at, {}, nullptr};
                if (named && method == Method::adaptive) return jorm::threshold_adaptive(d, s, of(above), o);
                if (!named)
                    return between ? jorm::threshold_between(d, s, of(low), of(high), o)
                                   : jorm::threshold(d, s, of(low), o);
                const jorm::threshold_method by = method == Method::otsu   ? jorm::threshold_method::otsu
                                                  : method == Method::usto ? jorm::threshold_method::usto
                                                                           : jorm::threshold_method::blur;
                jorm::threshold(d, s, by, {over, bins, o.region, o.at, nullptr});
            });
        },
        [&] { return type_name(src.type()) + std::string(" -> ") + type_name(dst.type()); });
    return dst.array;
}

py::object otsu(py::handle a, uint32_t bins, py::handle range_, py::handle region) {
    const Function &f = otsu_function;
    const Picture src = read(f, "a", a);
    const std::optional<jorm::ranges> over = range(f, "range", range_);
    const Part p = part(f, src, region);
    jorm::values found = 0;
    unlocked(f, [&] {
        pieces(f, src, [&](Piece of) {
            const jorm::values v = jorm::otsu_threshold(of(src), {over, bins, p.region, {}, nullptr});
            if (of.channel < 0)
                found = v;
            else
                found.data()[of.channel] = v[0];
        });
    });
    return by_channel(src, found);
}

// ---- copies and fills ----

constexpr Function border_function = {"copy_border", all_types};
constexpr Function fill_function = {"fill", filled_types};

constexpr Name<jorm::border_mode> modes[] = {{"constant", jorm::border_mode::constant},
                                             {"replicate", jorm::border_mode::replicate},
                                             {"wrap", jorm::border_mode::wrap},
                                             {"reflect", jorm::border_mode::reflect},
                                             {"reflect101", jorm::border_mode::reflect101}};

// A margin on all sides, (rows, columns), or ((top, bottom), (left, right)).
std::array<int32_t, 4> margins(const Function &f, py::handle given) {
    const auto pair = [&](py::handle h) -> std::array<int32_t, 2> {
        if (!PySequence_Check(h.ptr())) {
            const int32_t both = integer(f, "margin", h);
            return {both, both};
        }
        const py::sequence s = py::reinterpret_borrow<py::sequence>(h);
        if (s.size() != 2) value_error(f, "margin must be a number, (rows, columns) or ((top, bottom), (left, right))");
        return {integer(f, "margin", py::object(s[0])), integer(f, "margin", py::object(s[1]))};
    };
    if (!PySequence_Check(given.ptr())) {
        const auto m = pair(given);
        return {m[0], m[0], m[0], m[0]};
    }
    const py::sequence s = py::reinterpret_borrow<py::sequence>(given);
    if (s.size() != 2) pair(given);
    const auto v = pair(py::object(s[0])), h = pair(py::object(s[1]));
    return {v[0], v[1], h[0], h[1]};
}

py::object copy_border(py::handle a, py::handle margin, py::handle out, py::handle mode, py::handle value,
                       py::handle region) {
    const Function &f = border_function;
    Picture src = read(f, "a", a);
    const std::array<int32_t, 4> m = margins(f, margin);
    jorm::border_options o;
    o.border = choice(f, "mode", mode, modes);
    o.value = values(f, "value", value, src.channels());
    const Part p = part(f, src, region);
    o.at = {p.region.row - m[0], p.region.column - m[2]};
    o.src_region = p.region;
    const int64_t rows = int64_t(p.rows) + m[0] + m[1], columns = int64_t(p.columns) + m[2] + m[3];
    if (rows < 1 || columns < 1 || rows != int32_t(rows) || columns != int32_t(columns))
        value_error(f, "nothing is left within these margins, or more than 32 bits can count");
    Result dst;
    if (out.is_none()) {
        dst = {fresh(src, int32_t(rows), int32_t(columns), src.type()), {}};
    } else {
        dst = {written(f, "out", out, bits(src.type())), {}};
        if (dst.rows() != rows || dst.columns() != columns || dst.channels() != src.channels() ||
            dst.planes() != src.planes() || dst.axes() != src.axes())
            value_error(f, "out must have " + std::to_string(rows) + " rows and " + std::to_string(columns) +
                               " columns, and the channels and planes of a");
    }
    unlocked(f, [&] { jorm::copy_bordered(dst, src, o); });
    return dst.array;
}

py::object fill(py::handle out, py::handle value, py::handle mask_, py::handle otherwise, py::handle region) {
    const Function &f = fill_function;
    const Picture dst = written(f, "out", out, f.types);
    const jorm::values v = values(f, "value", value, dst.channels());
    const std::optional<jorm::values> other = optional_values(f, "otherwise", otherwise, dst.channels());
    std::optional<Picture> m = mask(f, mask_, dst, true);
    if (other && !m) value_error(f, "otherwise needs a mask");
    const Part p = part(f, dst, region);
    if (m) separate(*m, {dst, p.region}, p);
    unlocked(f, [&] {
        jorm::fill_options o;
        if (m) o.mask = *m;
        o.otherwise = other, o.region = p.region, o.at_mask = p.at;
        jorm::fill(dst, v, o);
    });
    return dst.array;
}

// ---- resize ----

constexpr Function resize_function = {"resize", all_types};

std::array<double, 2> two(const Function &f, const char *name, py::handle given) {
    if (!PySequence_Check(given.ptr())) {
        const double v = number(f, name, given);
        return {v, v};
    }
    const py::sequence s = py::reinterpret_borrow<py::sequence>(given);
    if (s.size() != 2) value_error(f, std::string(name) + " must be a number, or (rows, columns)");
    return {number(f, name, py::object(s[0])), number(f, name, py::object(s[1]))};
}

py::object resize(py::handle a, py::handle shape, py::handle out, py::handle scale, py::handle offset,
                  py::handle region) {
    const Function &f = resize_function;
    Picture src = read(f, "a", a);
    const Part p = part(f, src, region);
    const std::array<double, 2> by = scale.is_none() ? std::array<double, 2>{} : two(f, "scale", scale);
    const std::array<double, 2> from = offset.is_none() ? std::array<double, 2>{} : two(f, "offset", offset);
    if (int(!shape.is_none()) + int(!out.is_none()) + int(!scale.is_none()) == 0)
        type_error(f, "one of shape, out and scale is needed");
    Result dst;
    if (out.is_none()) {
        int32_t rows, columns;
        if (shape.is_none()) {
            const auto grown = [&](int32_t n, double factor) {
                const double v = std::nearbyint(n * std::abs(factor));
                if (!(v >= 1 && v <= 2147483647.0)) value_error(f, "nothing is left at that scale, or it is no number");
                return int32_t(v);
            };
            rows = grown(p.rows, by[0]), columns = grown(p.columns, by[1]);
        } else {
            if (!PySequence_Check(shape.ptr()) || PySequence_Size(shape.ptr()) != 2)
                value_error(f, "shape must be (rows, columns)");
            const py::sequence s = py::reinterpret_borrow<py::sequence>(shape);
            rows = integer(f, "shape", py::object(s[0])), columns = integer(f, "shape", py::object(s[1]));
            if (rows < 1 || columns < 1) value_error(f, "shape must be above 0");
        }
        dst = {fresh(src, rows, columns, src.type()), {}};
    } else {
        dst = {written(f, "out", out, bits(src.type())), {}};
        if (dst.channels() != src.channels() || dst.planes() != src.planes() || dst.axes() != src.axes())
            value_error(f, "out must have the channels and planes of a");
        separate(src, dst, p, false);
    }
    unlocked(f, [&] {
        jorm::resize_options o;
        o.by = {by[0], by[1], src.axes() == 4 ? 1.0 : 0.0}, o.offset = {from[0], from[1]};
        o.src_region = p.region;
        jorm::resize(dst, src, o);
    });
    return dst.array;
}

} // namespace

void define_pixels(py::module_ &m) {
    const py::none none;
    m.def("convert", &convert,
          "convert(a, dtype=None, out=None, *, gain=None, offset=None, to_range=None, from_range=None, region=None)\n"
          "--\n\n"
          "A picture in another element type, rounded to nearest even and clamped.\n\n"
          "Plain, as a * gain + offset, or carried from one range of values onto another.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int8, uint16, int16, int32 or float32\n"
          "dtype : dtype, optional\n"
          "    One of the same; left out, that of `out`.\n" JORM_DOC_OUT
          "gain, offset : number, or one for each channel\n"
          "to_range : (lowest, highest), optional\n"
          "    The range of the results; for uint8, int16, int32, float32.\n"
          "from_range : (lowest, highest), optional\n"
          "    The range of `a` that becomes `to_range`; left out, it is measured.\n" JORM_DOC_REGION
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.array([[-1.5, 0.5, 300]], np.float32)\n"
          ">>> jorm.convert(a, np.uint8)\n"
          "array([[  0,   0, 255]], dtype=uint8)\n"
          ">>> jorm.convert(a, np.int16, gain=100)\n"
          "array([[ -150,    50, 30000]], dtype=int16)\n"
          ">>> jorm.convert(a, np.uint8, from_range=(0, 1), to_range=(0, 255))\n"
          "array([[  0, 128, 255]], dtype=uint8)\n",
          py::arg("a"), py::arg("dtype") = none, py::arg("out") = none, py::kw_only(), py::arg("gain") = none,
          py::arg("offset") = none, py::arg("to_range") = none, py::arg("from_range") = none, py::arg("region") = none);
    m.def("compare", &compare,
          "compare(a, b, op, out=None, *, if_true=None, if_false=None, dtype=None, region=None)\n--\n\n"
          "Where pixels stand in a relation.\n\n"
          "Parameters\n----------\n"
          "a, b : ndarray of uint8, int8, int16, int32 or float32; or one of them a number, or one for each channel\n"
          "    Pictures of different types are compared by value, exactly; numbers are rounded to the type of the\n"
          "    picture first.\n"
          "op : {'==', '!=', '<', '<=', '>', '>='}\n" JORM_DOC_OUT
          "if_true, if_false : number, or one for each channel; optional\n"
          "    What is written; 0 for one left out. Without both, masks: 255 (all bits set, 1.0 in floats) and 0.\n"
          "dtype : dtype, optional\n"
          "    The type of a new result, uint8 when left out.\n" JORM_DOC_REGION
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.array([[1, 2, 3]], np.uint8)\n"
          ">>> jorm.compare(a, 2, '>=')\n"
          "array([[  0, 255, 255]], dtype=uint8)\n"
          ">>> jorm.compare(a, a[:, ::-1], '!=', if_true=1)\n"
          "array([[1, 0, 1]], dtype=uint8)\n",
          py::arg("a"), py::arg("b"), py::arg("op"), py::arg("out") = none, py::kw_only(), py::arg("if_true") = none,
          py::arg("if_false") = none, py::arg("dtype") = none, py::arg("region") = none);
    m.def("threshold", &threshold,
          "threshold(a, level, out=None, *, upper=None, offset=None, bins=0, range=None, dtype=None, region=None)\n"
          "--\n\n"
          "The largest value of the type (1.0) where a pixel is above a level, 0 elsewhere.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int8, int16, int32 or float32\n"
          "level : number, one for each channel, or the name of a method\n"
          "    'otsu': the level is found by Otsu's method; 'usto': dark marks on uneven ground become 0;\n"
          "    'blur': Otsu's method on the smoothed picture (both of uint8 and float32); 'adaptive': the level is\n"
          "    the mean of the 5 by 5 window around the pixel, plus `offset`.\n" JORM_DOC_OUT
          "upper : number, or one for each channel; optional\n"
          "    With it, level < a <= upper.\n"
          "offset : number, or one for each channel; optional\n"
          "bins : int\n    Of the histogram that methods look at; 0: the library's choice.\n"
          "range : (lowest, highest), optional\n    The interval that methods look at.\n"
          "dtype : dtype, optional\n"
          "    The type of a new result, uint8 when left out; int16, int32, float32 of float32.\n" JORM_DOC_REGION
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.array([[10, 20, 200, 210]], np.uint8)\n"
          ">>> jorm.threshold(a, 20)\n"
          "array([[  0,   0, 255, 255]], dtype=uint8)\n"
          ">>> jorm.threshold(a, 'otsu')\n"
          "array([[  0,   0, 255, 255]], dtype=uint8)\n"
          ">>> jorm.threshold(a, 10, upper=200)\n"
          "array([[  0, 255, 255,   0]], dtype=uint8)\n",
          py::arg("a"), py::arg("level"), py::arg("out") = none, py::kw_only(), py::arg("upper") = none,
          py::arg("offset") = none, py::arg("bins") = 0, py::arg("range") = none, py::arg("dtype") = none,
          py::arg("region") = none);
    m.def("otsu", &otsu,
          "otsu(a, *, bins=0, range=None, region=None)\n--\n\n"
          "The threshold of Otsu's method: pixels above it are the upper class.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int8, int16, int32 or float32\n"
          "bins : int\n    Of the histogram; 0: 256 for integers, 384 for floats.\n"
          "range : (lowest, highest), optional\n    The interval that is looked at: (0, 255), for floats (0, "
          "1).\n" JORM_DOC_REGION
          "\nReturns\n-------\nfloat, or an array of one for each channel\n\nExamples\n--------\n"
          ">>> a = np.array([[10, 20, 200, 210]], np.uint8)\n"
          ">>> 20 <= jorm.otsu(a) < 200\n"
          "True\n",
          py::arg("a"), py::kw_only(), py::arg("bins") = 0, py::arg("range") = none, py::arg("region") = none);
    m.def("copy_border", &copy_border,
          "copy_border(a, margin, out=None, *, mode='reflect101', value=0, region=None)\n--\n\n"
          "A picture with a border around it.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of any integer or float type\n"
          "margin : int, (rows, columns), or ((top, bottom), (left, right))\n"
          "    How far the border reaches; negative margins cut off.\n"
          "out : ndarray, optional\n"
          "    Takes the result; it may be an array that holds `a` in the middle.\n"
          "mode : {'reflect101', 'reflect', 'replicate', 'wrap', 'constant'}\n"
          "    The mirror image about the edge pixel, the mirror image, the edge pixel, the picture again, `value`.\n"
          "value : number, or one for each channel\n"
          "region : (row, column, rows, columns) or a pair of slices, optional\n"
          "    The part that counts as the picture.\n"
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.array([[1, 2, 3]], np.uint8)\n"
          ">>> jorm.copy_border(a, (0, 2))\n"
          "array([[3, 2, 1, 2, 3, 2, 1]], dtype=uint8)\n"
          ">>> jorm.copy_border(a, ((0, 0), (0, 3)), mode='constant', value=9)\n"
          "array([[1, 2, 3, 9, 9, 9]], dtype=uint8)\n",
          py::arg("a"), py::arg("margin"), py::arg("out") = none, py::kw_only(), py::arg("mode") = "reflect101",
          py::arg("value") = 0, py::arg("region") = none);
    m.def("fill", &fill,
          "fill(out, value, *, mask=None, otherwise=None, region=None)\n--\n\n"
          "Fills a picture, or what a mask selects.\n\n"
          "Parameters\n----------\n"
          "out : ndarray of any type of at most 32 bits\n"
          "value : number, or one for each channel\n"
          "    Rounded to nearest even and clamped; for uint32, 2**31 and more give 0.\n"
          "mask : ndarray of uint8 or bool, optional\n"
          "    Pixels where it is 0 stay. It may have as many channels as `out`.\n"
          "otherwise : number, or one for each channel; optional\n"
          "    What pixels that the mask leaves out become.\n" JORM_DOC_REGION
          "\nReturns\n-------\nndarray\n    `out`.\n\nExamples\n--------\n"
          ">>> a = np.zeros((1, 2, 3), np.uint8)\n"
          ">>> jorm.fill(a, (1, 2, 300))\n"
          "array([[[  1,   2, 255],\n"
          "        [  1,   2, 255]]], dtype=uint8)\n",
          py::arg("out"), py::arg("value"), py::kw_only(), py::arg("mask") = none, py::arg("otherwise") = none,
          py::arg("region") = none);
    m.def("resize", &resize,
          "resize(a, shape=None, out=None, *, scale=None, offset=None, region=None)\n--\n\n"
          "A picture of another size, of its nearest pixels.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of any integer or float type\n"
          "shape : (rows, columns), optional\n"
          "out : ndarray, optional\n"
          "    Takes the result; its size counts.\n"
          "scale : number, or (rows, columns); optional\n"
          "    Result size per size of `a`; negative ones mirror. Left out, all of `a` becomes all of the result.\n"
          "offset : number, or (rows, columns); optional\n"
          "    Begin so many pixels of `a` further.\n"
          "region : (row, column, rows, columns) or a pair of slices, optional\n"
          "    The part of `a` that is taken.\n"
          "\nReturns\n-------\nndarray\n\nExamples\n--------\n"
          ">>> a = np.array([[1, 2]], np.uint8)\n"
          ">>> jorm.resize(a, (2, 4))\n"
          "array([[1, 1, 2, 2],\n"
          "       [1, 1, 2, 2]], dtype=uint8)\n"
          ">>> jorm.resize(a, scale=(1, -1))\n"
          "array([[2, 1]], dtype=uint8)\n",
          py::arg("a"), py::arg("shape") = none, py::arg("out") = none, py::kw_only(), py::arg("scale") = none,
          py::arg("offset") = none, py::arg("region") = none);
}

} // namespace jorm_python
