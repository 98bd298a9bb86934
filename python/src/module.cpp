#include "arrays.hpp"

PYBIND11_MODULE(_jorm, m) {
    pybind11::options options;
    options.disable_function_signatures(); // docstrings begin with their own
    jorm_python::define_errors(m);
    jorm_python::define_arithmetic(m);
    jorm_python::define_pixels(m);
    jorm_python::define_stats(m);
    jorm_python::define_filters(m);
    jorm_python::define_geometry(m);
    jorm_python::define_regions(m);
    jorm_python::define_tiles(m);
    m.attr("__version__") = JORM_PYTHON_VERSION;
}
