// Sums, means, extrema, histograms.
#include "arrays.hpp"
#include "docs.hpp"

#include <algorithm>
#include <array>
#include <vector>

namespace jorm_python {

namespace {

constexpr Function sum_function = {"sum", arithmetic_types, bits(1, 2, 3)};
constexpr Function mean_function = {"mean", arithmetic_types, bits(1, 2, 3)};
constexpr Function minmax_function = {"minmax", arithmetic_types, bits(1, 2, 3)};
constexpr Function histogram_function = {"histogram", compared_types, bits(1, 2, 3)};

jorm::stats_options options(const std::optional<Picture> &mask, const Part &p) {
    jorm::stats_options o;
    if (mask) o.mask = *mask;
    o.region = p.region, o.at_mask = p.at;
    return o;
}

template <class Statistic>
py::object statistic(const Function &f, py::handle a, py::handle mask_, py::handle region, Statistic &&of_picture) {
    const Picture src = read(f, "a", a);
    const std::optional<Picture> m = mask(f, mask_, src);
    const Part p = part(f, src, region);
    jorm::values all = 0;
    unlocked(f, [&] {
        const jorm::stats_options o = options(m, p);
        pieces(f, src, [&](Piece of) {
            const jorm::values v = of_picture(of(src), o);
            if (of.channel < 0)
                all = v;
            else
                all.data()[of.channel] = v[0];
        });
    });
    return by_channel(src, all);
}

py::object sum(py::handle a, py::handle mask, py::handle region) {
    return statistic(sum_function, a, mask, region,
                     [](const jorm::any_view &v, const jorm::stats_options &o) { return jorm::sum(v, o); });
}
py::object mean(py::handle a, py::handle mask, py::handle region) {
    return statistic(mean_function, a, mask, region,
                     [](const jorm::any_view &v, const jorm::stats_options &o) { return jorm::mean(v, o); });
}

// ---- minmax ----

PyTypeObject *minmax_type;

py::object minmax(py::handle a, py::handle mask_, py::handle region) {
    const Function &f = minmax_function;
    const Picture src = read(f, "a", a);
    const std::optional<Picture> m = mask(f, mask_, src);
    const Part p = part(f, src, region);
    jorm::extrema all;
    unlocked(f, [&] {
        const jorm::stats_options o = options(m, p);
        pieces(f, src, [&](Piece of) {
            const jorm::extrema e = jorm::minmax(of(src), o);
            if (of.channel < 0)
                all = e;
            else
                all.min[of.channel] = e.min[0], all.max[of.channel] = e.max[0];
        });
    });

    const bool is_float = src.type() == JORM_F32;
    const int lead = src.dimensions == 4;
    const py::object made = py::reinterpret_steal<py::object>(PyStructSequence_New(minmax_type));
    if (!made) throw py::error_already_set();
    const auto set = [&](int i, const jorm_extremum *e) {
        py::object value, position;
        if (src.dimensions == 2) {
            value = is_float ? py::object(py::float_(e->f)) : py::object(py::int_(e->i));
            position = py::make_tuple(e->row, e->column);
        } else {
            const int axes = 2 + lead;
            value = new_array({src.channels()}, src.type() == JORM_F32 ? uint32_t(JORM_F32) : uint32_t(JORM_S32));
            position = new_array({src.channels(), axes}, JORM_S64);
            for (int c = 0; c < src.channels(); ++c) {
                if (is_float)
                    static_cast<float *>(data_of(value))[c] = e[c].f;
                else
                    static_cast<int32_t *>(data_of(value))[c] = e[c].i;
                const int32_t at[3] = {e[c].plane, e[c].row, e[c].column};
                for (int k = 0; k < axes; ++k)
                    static_cast<int64_t *>(data_of(position))[c * axes + k] = at[3 - axes + k];
            }
        }
        PyStructSequence_SET_ITEM(made.ptr(), i, value.release().ptr());
        PyStructSequence_SET_ITEM(made.ptr(), 2 + i, position.release().ptr());
    };
    set(0, all.min), set(1, all.max);
    return made;
}

// ---- histogram ----

py::object histogram(py::handle a, py::handle bins_, py::handle range, py::handle out, py::handle mask_,
                     py::handle region) {
    Function f = histogram_function;
    if (!mask_.is_none()) f.types = arithmetic_types;
    const Picture src = read(f, "a", a);
    const int32_t bins = integer(f, "bins", bins_);
    if (bins < 1) value_error(f, "bins must be above 0");
    const std::optional<Picture> m = mask(f, mask_, src);
    const Part p = part(f, src, region);
    const int32_t channels = src.channels();

    double lo = 0, hi = 255;
    bool measured = false;
    if (!range.is_none()) {
        if (!PySequence_Check(range.ptr()) || PySequence_Size(range.ptr()) != 2)
            value_error(f, "range must be a pair (lowest, highest)");
        const py::sequence pair = py::reinterpret_borrow<py::sequence>(range);
        lo = number(f, "range", py::object(pair[0])), hi = number(f, "range", py::object(pair[1]));
        if (!(lo <= hi)) value_error(f, "range must not descend");
    } else if (src.type() == JORM_S8) {
        lo = -128, hi = 127;
    } else {
        measured = src.type() != JORM_U8;
    }

    // Counters are an array of their own, or the one given.
    py::object counts = py::reinterpret_borrow<py::object>(out);
    if (out.is_none()) {
        counts = src.dimensions == 2 ? new_array({bins}, JORM_U32) : new_array({channels, bins}, JORM_U32);
    } else {
        const py::array given = py::isinstance<py::array>(out) ? py::reinterpret_borrow<py::array>(out) : py::array();
        const bool flat = src.dimensions == 2;
        if (!given || !given.dtype().is(dtype_of(JORM_U32)) || !(given.flags() & py::array::c_style) ||
            !given.writeable() || given.ndim() != (flat ? 1 : 2) || given.shape(flat ? 0 : 1) != bins ||
            (!flat && given.shape(0) != channels))
            value_error(f, "out must be a dense array of uint32 with " +
                               std::string(flat ? "" : "a row for each channel of ") + std::to_string(bins) +
                               " counters");
    }
    auto *const to = static_cast<uint32_t *>(data_of(counts));
    unlocked(f, [&] {
        const jorm::stats_options o = options(m, p);
        if (measured) {
            Function g = f;
            g.channels = bits(1); // over all channels
            lo = std::numeric_limits<double>::infinity(), hi = -lo;
            pieces(g, src, [&](Piece of) {
                const jorm::extrema e = jorm::minmax(of(src), o);
                const bool is_float = src.type() == JORM_F32;
                if (is_float && e.min[0].f != e.min[0].f) return;
                lo = std::min(lo, is_float ? double(e.min[0].f) : e.min[0].i);
                hi = std::max(hi, is_float ? double(e.max[0].f) : e.max[0].i);
            });
            if (!(lo <= hi)) lo = hi = 0;
        }
        pieces(f, src, [&](Piece of) {
            const jorm::any_view v = of(src);
            jorm::histogram h({uint32_t(bins), lo, hi, v.channels()});
            h.count(v, o);
            const int32_t first = std::max(of.channel, 0);
            for (int32_t c = 0; c < v.channels(); ++c)
                std::copy_n(h[size_t(c)].data(), bins, to + int64_t(first + c) * bins);
        });
    });
    return counts;
}

} // namespace

void define_stats(py::module_ &m) {
    const py::none none;
    static PyStructSequence_Field fields[] = {
        {"min", "the least value"},
        {"max", "the largest value"},
        {"argmin", "where it stands first: (row, column), of 4 axes (plane, row, column)"},
        {"argmax", "where that stands first"},
        {nullptr, nullptr}};
    static PyStructSequence_Desc description = {"jorm.MinMax", "What minmax returns.", fields, 4};
    minmax_type = PyStructSequence_NewType(&description);
    m.attr("MinMax") = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject *>(minmax_type));

#define ONE(name, what, more, example)                                                                                 \
    name "(a, mask=None, *, region=None)\n--\n\n" what "\n\nParameters\n----------\n"                                  \
         "a : ndarray of uint8, int16, int32 or float32\n" JORM_DOC_MASK JORM_DOC_REGION "\nReturns\n-------\n" more   \
         "\n\nExamples\n--------\n" example
    const auto define = [&](const char *name, auto function, const char *doc) {
        m.def(name, function, doc, py::arg("a"), py::arg("mask") = none, py::kw_only(), py::arg("region") = none);
    };
    define("sum", &sum,
           ONE("sum", "The sum of each channel; of integers exact.",
               "float, or for arrays of more than two axes an array of one for each channel",
               ">>> a = np.array([[1, 2, 3]], np.uint8)\n"
               ">>> jorm.sum(a)\n"
               "6.0\n"
               ">>> jorm.sum(a, a > 1)\n"
               "5.0\n"));
    define("mean", &mean,
           ONE("mean", "The mean of each channel; 0 when a mask selects nothing.",
               "float, or for arrays of more than two axes an array of one for each channel",
               ">>> a = np.array([[[1, 20], [3, 40]]], np.int16)\n"
               ">>> jorm.mean(a)\n"
               "array([ 2., 30.])\n"));
    define("minmax", &minmax,
           ONE("minmax",
               "The least and the largest value of each channel, and where they stand first; NaN is passed over.",
               "MinMax\n    The fields min, max, argmin, argmax; for arrays of more than two axes arrays with one for "
               "each channel.",
               ">>> a = np.array([[1, 5], [0, 5]], np.uint8)\n"
               ">>> m = jorm.minmax(a)\n"
               ">>> m.min, m.argmin\n"
               "(0, (1, 0))\n"
               ">>> m.max, m.argmax\n"
               "(5, (0, 1))\n"));
    m.def("histogram", &histogram,
          "histogram(a, bins=256, range=None, out=None, *, mask=None, region=None)\n--\n\n"
          "How many pixels of each channel fall into each bin.\n\n"
          "Pixels outside the range count in the first and the last bin, NaN does not count. Of integers, bins are\n"
          "equal parts of the values lowest to highest; of floats, bin i begins at\n"
          "lowest + i * (highest - lowest) / (bins - 1).\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int8, int16, int32 or float32; int8 without a mask\n"
          "bins : int\n"
          "range : (lowest, highest), optional\n"
          "    Both count in. Left out: all values of uint8 and int8, what is measured over all channels of others.\n"
          "out : ndarray of uint32, optional\n"
          "    Takes the counters.\n" JORM_DOC_MASK JORM_DOC_REGION "\nReturns\n-------\nndarray of uint32\n"
          "    `bins` counters, for arrays of more than two axes a row for each channel.\n\nExamples\n--------\n"
          ">>> a = np.array([[0, 1, 1, 3]], np.uint8)\n"
          ">>> jorm.histogram(a, 4, (0, 3))\n"
          "array([1, 2, 0, 1], dtype=uint32)\n",
          py::arg("a"), py::arg("bins") = 256, py::arg("range") = none, py::arg("out") = none, py::kw_only(),
          py::arg("mask") = none, py::arg("region") = none);
}

} // namespace jorm_python
