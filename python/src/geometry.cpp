#include "arrays.hpp"

namespace jorm_python {

void define_geometry(py::module_ &) {}

} // namespace jorm_python
