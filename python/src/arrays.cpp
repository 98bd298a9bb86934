#include "arrays.hpp"

#include <algorithm>
#include <array>

namespace jorm_python {

namespace {

using Api = py::detail::npy_api;

struct Element {
    uint32_t code;
    const char *name;
    int32_t size;
    int numpy;
};
constexpr Element elements[] = {
    {JORM_U8, "uint8", 1, Api::NPY_UINT8_},    {JORM_S8, "int8", 1, Api::NPY_INT8_},
    {JORM_U16, "uint16", 2, Api::NPY_UINT16_}, {JORM_S16, "int16", 2, Api::NPY_INT16_},
    {JORM_U32, "uint32", 4, Api::NPY_UINT32_}, {JORM_S32, "int32", 4, Api::NPY_INT32_},
    {JORM_F32, "float32", 4, Api::NPY_FLOAT_}, {JORM_U64, "uint64", 8, Api::NPY_UINT64_},
    {JORM_S64, "int64", 8, Api::NPY_INT64_},   {JORM_F64, "float64", 8, Api::NPY_DOUBLE_},
};
const Element &element(uint32_t code) {
    return *std::find_if(std::begin(elements), std::end(elements) - 1,
                         [=](const Element &e) { return e.code == code; });
}

// Codes by numpy's type numbers; bool is a byte where masks are read. 0: none.
constexpr uint32_t code_of(int numpy) {
    constexpr bool wide = sizeof(long) == 8;
    constexpr uint32_t codes[] = {0,
                                  JORM_S8,
                                  JORM_U8,
                                  JORM_S16,
                                  JORM_U16,
                                  JORM_S32,
                                  JORM_U32,
                                  wide ? JORM_S64 : JORM_S32,
                                  wide ? JORM_U64 : JORM_U32,
                                  JORM_S64,
                                  JORM_U64,
                                  JORM_F32,
                                  JORM_F64};
    return numpy >= 0 && numpy < int(std::size(codes)) ? codes[numpy] : 0;
}

std::string text(py::handle h) { return py::str(h); }
std::string list(uint32_t types) {
    std::string all;
    for (const Element &e : elements)
        if (types >> e.code & 1) all += (all.empty() ? "" : ", ") + std::string(e.name);
    return all;
}
std::string shape_text(const Picture &p) { return text(p.array.attr("shape")); }

const py::detail::PyArray_Proxy &proxy(py::handle array) {
    return *reinterpret_cast<const py::detail::PyArray_Proxy *>(array.ptr());
}

// The code of an array's elements, of a set of types; `as_bytes` takes bool, too.
uint32_t code_in(const Function &f, const char *name, py::handle array, uint32_t types, bool as_bytes) {
    const auto &d = *py::detail::array_descriptor_proxy(proxy(array).descr);
    const uint32_t code = as_bytes && d.type_num == Api::NPY_BOOL_ ? uint32_t(JORM_U8) : code_of(d.type_num);
    if (!code || !(types >> code & 1) || d.byteorder == '>') {
        const std::string served = list(types) + (as_bytes ? ", bool" : "");
        type_error(f, std::string(name) + " has dtype " + text(array.attr("dtype").attr("str")) + " (" +
                          text(array.attr("dtype")) + "); served are, in the order of the machine, " + served);
    }
    return code;
}

Picture describe(const Function &f, const char *name, py::handle array, uint32_t types, bool as_bytes = false) {
    if (!is_array(array))
        type_error(f, std::string(name) + " must be a numpy array, not " +
                          text(py::type::handle_of(array).attr("__name__")));
    const auto &in = proxy(array);
    const auto bad = [&](const std::string &what) { value_error(f, std::string(name) + " " + what); };
    if (in.nd < 2 || in.nd > 4)
        bad("has " + std::to_string(in.nd) +
            " axes; pictures have 2 (rows, columns), 3 (channels last) or 4 (planes first, channels last)");
    const uint32_t code = code_in(f, name, array, types, as_bytes);
    const int64_t size = element(code).size;
    if (!(in.flags & Api::NPY_ARRAY_ALIGNED_))
        bad("has elements that are not aligned; np.require makes a copy that is");

    jorm_array a = {};
    a.ndims = in.nd == 4 ? 4 : 3, a.eltype = code, a.base = in.data;
    a.extent[0] = a.extent[3] = 1, a.stride[3] = int32_t(size);
    const int first = in.nd == 4 ? 0 : 1;
    for (int i = 0; i < in.nd; ++i) {
        const int64_t n = in.dimensions[i], stride = n == 1 ? 0 : in.strides[i];
        if (n < 1) bad("is empty: its shape is " + text(array.attr("shape")));
        if (n != int32_t(n) || stride != int32_t(stride))
            bad("has an axis or a stride beyond 32 bits: shape " + text(array.attr("shape")) + ", strides " +
                text(array.attr("strides")) + "; views of parts of it will do");
        if (stride % size)
            bad("has strides that are no multiples of its elements: " + text(array.attr("strides")) + " of " +
                std::to_string(size) + " bytes");
        a.extent[first + i] = uint32_t(n);
        if (n > 1) a.stride[first + i] = int32_t(stride);
    }
    if (a.extent[3] > 4)
        bad("has " + std::to_string(a.extent[3]) +
            " channels; of 3 and 4 axes the last one are 1 to 4 channels (planes come first, of 4 axes)");
    // Axes of one element: what a dense layout has there.
    const auto dense = [&](int i, int64_t bytes) {
        if (a.extent[i] == 1 && bytes == int32_t(bytes)) a.stride[i] = int32_t(bytes);
    };
    dense(2, int64_t(a.extent[3]) * std::abs(a.stride[3]));
    dense(1, int64_t(a.extent[2]) * std::abs(a.stride[2]));
    if (a.ndims == 4) dense(0, int64_t(a.extent[1]) * std::abs(a.stride[1]));
    std::copy_n(a.extent, 4, a.parent_extent);

    Picture p = Picture().over(a);
    p.array = py::reinterpret_borrow<py::object>(array), p.dimensions = in.nd;
    return p;
}

py::object make_array(int nd, const Py_intptr_t *dims, py::handle dtype) {
    Api &api = Api::get();
    PyObject *made =
        api.PyArray_NewFromDescr_(api.PyArray_Type_, dtype.inc_ref().ptr(), nd, dims, nullptr, nullptr, 0, nullptr);
    if (!made) throw py::error_already_set();
    return py::reinterpret_steal<py::object>(made);
}

PyObject *error, *invalid_error, *unsupported_error, *memory_error; // classes, kept by the module

} // namespace

void value_error(const Function &f, const std::string &text) { throw py::value_error(f.name + (": " + text)); }
void type_error(const Function &f, const std::string &text) { throw py::type_error(f.name + (": " + text)); }

void raise(const Function &f, jorm::status s, const std::string &about) {
    PyObject *const type = s == jorm::status::unsupported                           ? unsupported_error
                           : s == jorm::status::no_memory                           ? memory_error
                           : s == jorm::status::invalid || s == jorm::status::empty ? invalid_error
                                                                                    : error;
    const std::string what = f.name + (": " + std::string(jorm::text(s))) + (about.empty() ? "" : "; " + about);
    const py::object instance = py::reinterpret_borrow<py::object>(type)(what);
    instance.attr("status") = int64_t(s);
    PyErr_SetObject(type, instance.ptr());
    throw py::error_already_set();
}

bool is_picture(py::handle h) { return is_array(h) && proxy(h).nd >= 2; }

Picture read(const Function &f, const char *name, py::handle array, uint32_t types) {
    return describe(f, name, array, types);
}

Picture written(const Function &f, const char *name, py::handle array, uint32_t types) {
    Picture p = describe(f, name, array, types);
    if (!(proxy(array).flags & Api::NPY_ARRAY_WRITEABLE_)) value_error(f, std::string(name) + " is read-only");
    return p;
}

std::optional<Picture> mask(const Function &f, py::handle array, const Picture &beside, bool by_channel) {
    if (array.is_none()) return {};
    Picture m = describe(f, "mask", array, bits(JORM_U8), true);
    const bool fits = m.rows() == beside.rows() && m.columns() == beside.columns() &&
                      (m.channels() == 1 || (by_channel && m.channels() == beside.channels())) &&
                      (m.planes() == beside.planes() || m.planes() == 1);
    if (!fits) value_error(f, "mask has shape " + shape_text(m) + " beside a picture of shape " + shape_text(beside));
    if (m.axes() == beside.axes()) return m;
    jorm_array a = m.record();
    a.ndims = beside.record().ndims; // one plane
    if (a.ndims == 4 && beside.planes() > 1)
        value_error(f, "mask has shape " + shape_text(m) + " beside several planes; it needs as many");
    return m.over(a);
}

Part part(const Function &f, const Picture &of, py::handle region) {
    Part p = {{}, {}, of.rows(), of.columns(), true};
    if (region.is_none()) return p;
    const auto wrong = [&]() {
        value_error(f, "region must be (row, column, rows, columns) or a pair of slices, within " + shape_text(of) +
                           "; it is " + std::string(py::repr(region)));
    };
    if (!PySequence_Check(region.ptr())) wrong();
    const py::sequence given = py::reinterpret_borrow<py::sequence>(region);
    Py_ssize_t v[4];
    if (given.size() == 2 && PySlice_Check(py::object(given[0]).ptr()) && PySlice_Check(py::object(given[1]).ptr())) {
        for (int i = 0; i < 2; ++i) {
            const py::slice s = given[size_t(i)];
            size_t start, stop, step, length;
            if (!s.compute(size_t(i ? of.columns() : of.rows()), &start, &stop, &step, &length))
                throw py::error_already_set();
            if (step != 1) wrong();
            v[i] = Py_ssize_t(start), v[2 + i] = Py_ssize_t(length);
        }
    } else {
        if (given.size() != 4) wrong();
        for (size_t i = 0; i < 4; ++i) v[i] = integer(f, "region", py::object(given[i]));
    }
    if (v[0] < 0 || v[1] < 0 || v[2] < 1 || v[3] < 1 || v[0] + v[2] > of.rows() || v[1] + v[3] > of.columns()) wrong();
    p.region = {int32_t(v[0]), int32_t(v[1]), int32_t(v[2]), int32_t(v[3])};
    p.at = {int32_t(v[0]), int32_t(v[1])};
    p.rows = int32_t(v[2]), p.columns = int32_t(v[3]), p.whole = false;
    return p;
}

Picture fresh(const Picture &like, int32_t rows, int32_t columns, uint32_t type) {
    const int lead = like.dimensions == 4;
    Py_intptr_t dims[4];
    if (lead) dims[0] = like.planes();
    dims[lead] = rows, dims[lead + 1] = columns;
    if (like.dimensions > 2) dims[lead + 2] = like.channels();
    const py::handle dtype = type == like.type() && like.array &&
                                     code_of(py::detail::array_descriptor_proxy(proxy(like.array).descr)->type_num)
                                 ? py::handle(proxy(like.array).descr)
                                 : py::handle(dtype_of(type));
    const py::object made = make_array(like.dimensions, dims, dtype);
    static constexpr Function creation = {"new array", all_types};
    return describe(creation, "out", made, all_types);
}

Result result(const Function &f, const Picture &like, const Part &p, py::handle out, uint32_t type, uint32_t allowed) {
    if (out.is_none()) return {fresh(like, p.rows, p.columns, type), {}};
    Result r = {written(f, "out", out, allowed), {}};
    const bool kind = r.axes() == like.axes() && r.planes() == like.planes() && r.channels() == like.channels();
    if (kind && r.rows() == p.rows && r.columns() == p.columns) return r;
    if (kind && r.rows() == like.rows() && r.columns() == like.columns()) {
        r.area = p.region;
        return r;
    }
    value_error(f, "out has shape " + shape_text(r) + ", the result " + std::to_string(p.rows) + " rows and " +
                       std::to_string(p.columns) + " columns of a picture of shape " + shape_text(like));
}

void same_shape(const Function &f, const char *name, const Picture &a, const Picture &like) {
    if (a.rows() == like.rows() && a.columns() == like.columns() && a.channels() == like.channels() &&
        a.planes() == like.planes() && a.axes() == like.axes())
        return;
    value_error(f, std::string(name) + " has shape " + shape_text(a) + ", not that of the picture beside it, " +
                       shape_text(like));
}

void separate(Picture &src, const Result &dst, const Part &p, bool works_in_place) {
    struct Span {
        const char *first, *last;
        explicit Span(const jorm_array &a)
            : first(static_cast<const char *>(a.base)), last(first + element(a.eltype).size) {
            for (int i = a.ndims == 4 ? 0 : 1; i < 4; ++i) {
                const int64_t reach = int64_t(a.extent[i] - 1) * a.stride[i];
                (reach < 0 ? first : last) += reach;
            }
        }
    };
    const jorm_array &s = src.record(), &d = dst.record();
    const Span a(s), b(d);
    if (a.last <= b.first || b.last <= a.first) return;
    const auto start = [](const jorm_array &x, int32_t row, int32_t column) {
        return static_cast<const char *>(x.base) + int64_t(row) * x.stride[1] + int64_t(column) * x.stride[2];
    };
    bool same = works_in_place && element(s.eltype).size == element(d.eltype).size &&
                start(s, p.region.row, p.region.column) == start(d, dst.area.row, dst.area.column);
    for (int i = 0; i < 4; ++i) same = same && (s.extent[i] == 1 || s.stride[i] == d.stride[i]);
    if (same) return;
    const py::object copy = py::reinterpret_steal<py::object>(Api::get().PyArray_NewCopy_(src.array.ptr(), 0));
    if (!copy) throw py::error_already_set();
    static constexpr Function copying = {"copy", all_types};
    src = describe(copying, "copy", copy, all_types, true);
}

double number(const Function &f, const char *name, py::handle given) {
    const double v = PyFloat_AsDouble(given.ptr());
    if (v == -1 && PyErr_Occurred()) {
        PyErr_Clear();
        type_error(f, std::string(name) + " must be a number, not " + std::string(py::repr(given)));
    }
    return v;
}

int32_t integer(const Function &f, const char *name, py::handle given) {
    const py::object index = py::reinterpret_steal<py::object>(PyNumber_Index(given.ptr()));
    int overflow = 0;
    const long v = index ? PyLong_AsLongAndOverflow(index.ptr(), &overflow) : 0;
    if (!index) PyErr_Clear();
    if (!index) type_error(f, std::string(name) + " must be an integer, not " + std::string(py::repr(given)));
    if (overflow || v != int32_t(v)) value_error(f, std::string(name) + " does not fit 32 bits: " + text(index));
    return int32_t(v);
}

jorm::values values(const Function &f, const char *name, py::handle given, int32_t channels) {
    PyObject *const o = given.ptr();
    if (PyFloat_Check(o) || PyLong_Check(o) || !PySequence_Check(o) || (is_array(given) && !proxy(given).nd))
        return number(f, name, given);
    const py::sequence all = py::reinterpret_borrow<py::sequence>(given);
    const size_t n = all.size();
    if (n != 1 && n != size_t(channels))
        value_error(f, std::string(name) + " has " + std::to_string(n) + " numbers for " + std::to_string(channels) +
                           " channels");
    jorm::values v(number(f, name, py::object(all[0])));
    for (size_t c = 1; c < n; ++c) v.data()[c] = number(f, name, py::object(all[c]));
    return v;
}
std::optional<jorm::values> optional_values(const Function &f, const char *name, py::handle given, int32_t channels) {
    if (given.is_none()) return {};
    return values(f, name, given, channels);
}

const char *type_name(uint32_t code) { return element(code).name; }
py::object dtype_of(uint32_t code) {
    return py::reinterpret_steal<py::object>(Api::get().PyArray_DescrFromType_(element(code).numpy));
}

py::object new_array(std::initializer_list<int64_t> shape, uint32_t type) {
    Py_intptr_t dims[4];
    std::copy(shape.begin(), shape.end(), dims);
    return make_array(int(shape.size()), dims, dtype_of(type));
}
void *data_of(py::handle array) { return proxy(array).data; }

py::object by_channel(const Picture &of, const jorm::values &v) {
    if (of.dimensions == 2) return py::float_(v[0]);
    const py::object made = new_array({of.channels()}, JORM_F64);
    std::copy_n(v.data(), of.channels(), static_cast<double *>(data_of(made)));
    return made;
}

uint32_t element_type(const Function &f, const char *name, py::handle dtype, uint32_t types) {
    PyObject *made = nullptr;
    if (!Api::get().PyArray_DescrConverter_(dtype.ptr(), &made) || !made) throw py::error_already_set();
    const py::object held = py::reinterpret_steal<py::object>(made);
    const auto &d = *py::detail::array_descriptor_proxy(made);
    const uint32_t code = code_of(d.type_num);
    if (!code || !(types >> code & 1) || d.byteorder == '>')
        type_error(f, std::string(name) + " " + text(held) + " is not served; these are: " + list(types));
    return code;
}

void define_errors(py::module_ &m) {
    const auto define = [&](const char *name, const char *doc, py::handle bases) {
        PyObject *const type =
            PyErr_NewExceptionWithDoc(("jorm." + std::string(name)).c_str(), doc, bases.ptr(), nullptr);
        if (!type) throw py::error_already_set();
        m.attr(name) = py::reinterpret_borrow<py::object>(type);
        return type;
    };
    error = define("Error", "A call that failed: `status` holds the library's status.", PyExc_Exception);
    py::handle(error).attr("status") = 0;
    const auto also = [&](PyObject *other) { return py::make_tuple(py::handle(error), py::handle(other)); };
    invalid_error = define("InvalidError", "Operands that disagree, or a bad argument.", also(PyExc_ValueError));
    unsupported_error = define("UnsupportedError", "Element types that do not go together.", also(PyExc_TypeError));
    memory_error = define("OutOfMemoryError", "No scratch memory.", also(PyExc_MemoryError));
}

} // namespace jorm_python
