#include "arrays.hpp"

namespace jorm_python {

void define_regions(py::module_ &) {}

} // namespace jorm_python
