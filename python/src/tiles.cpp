// What combining the results of tiles needs.
#include "arrays.hpp"

#include "jorm/threshold.h"

namespace jorm_python {

namespace {

constexpr Function function = {"otsu", 0};

// The threshold for the counters of `bins` bins in an interval, of so many pixels.
double otsu_of_counts(const py::array_t<uint32_t, py::array::c_style | py::array::forcecast> &counts, double lo,
                      double hi, double pixels) {
    jorm_histdesc d = {};
    d.nbins = uint32_t(counts.size()), d.lo = lo, d.hi = hi;
    jorm_histogram h;
    jorm_hist_inithdr(&h, &d);
    if (!(pixels < 4294967296.0)) value_error(function, "a histogram serves less than 2**32 pixels");
    h.product = uint32_t(pixels);
    h.bins = const_cast<uint32_t *>(counts.data());
    return jorma_calculate_threshold_otsu_f(&h);
}

} // namespace

void define_tiles(py::module_ &m) {
    m.def("_otsu_of_counts", &otsu_of_counts, py::arg("counts"), py::arg("lo"), py::arg("hi"), py::arg("pixels"));
}

} // namespace jorm_python
