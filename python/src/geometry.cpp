// Points: hulls, rectangles, moments, ellipses.
#include "arrays.hpp"

#include <span>

namespace jorm_python {

namespace {

PyTypeObject *moments_type, *ellipse_type;

// Points are the rows (x, y) of an array, dense or not. Calls use(span of points) in the family of its type.
struct Points {
    py::object held; // a dense array
    const void *data;
    size_t count;
    uint32_t type;

    Points(const Function &f, py::handle given) {
        if (!is_array(given))
            type_error(f, "points must be a numpy array, not " + std::string(py::str(py::type::handle_of(given))));
        const py::array a = py::reinterpret_borrow<py::array>(given);
        if (a.ndim() != 2 || a.shape(1) != 2)
            value_error(f, "points must be rows (x, y), not of shape " + std::string(py::str(a.attr("shape"))));
        type = element_type(f, "dtype of points", a.dtype(), bits(JORM_S32, JORM_F32, JORM_F64));
        held = py::array::ensure(a, py::array::c_style);
        data = data_of(held), count = size_t(a.shape(0));
        if (count > 0x7FFFFFFF) value_error(f, "there are more points than 32 bits can count");
    }
    template <class Point> std::span<const Point> of() const { return {static_cast<const Point *>(data), count}; }
    template <class Use> auto with(Use &&use) const {
        return type == JORM_S32   ? use(of<jorm_2d_pt>())
               : type == JORM_F32 ? use(of<jorm_f2d_pt>())
                                  : use(of<jorm_r2d_pt>());
    }
};

py::object record(PyTypeObject *type, std::initializer_list<py::object> fields) {
    const py::object made = py::reinterpret_steal<py::object>(PyStructSequence_New(type));
    if (!made) throw py::error_already_set();
    Py_ssize_t i = 0;
    for (const py::object &o : fields) PyStructSequence_SET_ITEM(made.ptr(), i++, o.inc_ref().ptr());
    return made;
}

constexpr Function hull_function = {"convex_hull", 0};
constexpr Function rect_function = {"min_area_rect", 0};
constexpr Function moments_function = {"moments", 0};
constexpr Function ellipse_function = {"ellipse", 0};

py::object convex_hull(py::handle points) {
    const Points p(hull_function, points);
    return p.with([&](auto in) {
        const auto hull = unlocked(hull_function, [&] { return jorm::convex_hull(in); });
        const py::object made = new_array({int64_t(hull.size()), 2}, p.type);
        std::copy(hull.begin(), hull.end(), static_cast<std::decay_t<decltype(hull[0])> *>(data_of(made)));
        return made;
    });
}

py::object min_area_rect(py::handle points) {
    const Points p(rect_function, points);
    return p.with([&](auto in) {
        const auto quad = unlocked(rect_function, [&] { return jorm::min_area_quad(in); });
        const py::object made = new_array({4, 2}, JORM_F64);
        auto *to = static_cast<double *>(data_of(made));
        for (const auto &corner : quad.pt) *to++ = corner.x, *to++ = corner.y;
        return made;
    });
}

py::object moments(py::handle points, bool central, bool polygon) {
    const Points p(moments_function, points);
    const jorm_r2d_moment2 m = p.with([&](auto in) {
        return unlocked(moments_function, [&] {
            return polygon   ? central ? jorm::polygon_central_moments(in) : jorm::polygon_moments(in)
                     : central ? jorm::central_moments(in)
                             : jorm::moments(in);
        });
    });
    return record(moments_type, {py::float_(m.m00), py::float_(m.m01), py::float_(m.m11)});
}

py::object ellipse(py::handle points, double k) {
    const Points p(ellipse_function, points);
    return p.with([&](auto in) {
        const auto e = unlocked(ellipse_function, [&] { return jorm::ellipse(in, k); });
        return record(ellipse_type, {py::make_tuple(double(e.centre.x), double(e.centre.y)),
                                     py::make_tuple(double(e.semi1), double(e.semi2)), py::float_(double(e.angle))});
    });
}

PyTypeObject *named(py::module_ &m, const char *name, PyStructSequence_Desc &description) {
    PyTypeObject *const type = PyStructSequence_NewType(&description);
    if (!type) throw py::error_already_set();
    m.attr(name) = py::reinterpret_borrow<py::object>(reinterpret_cast<PyObject *>(type));
    return type;
}

} // namespace

void define_geometry(py::module_ &m) {
    static PyStructSequence_Field moments_fields[] = {
        {"xx", "the mean of x x"}, {"xy", "of x y"}, {"yy", "of y y"}, {nullptr, nullptr}};
    static PyStructSequence_Desc moments_description = {"jorm.Moments", "What moments returns.", moments_fields, 3};
    moments_type = named(m, "Moments", moments_description);
    static PyStructSequence_Field ellipse_fields[] = {{"centre", "(x, y)"},
                                                      {"axes", "the semi-axes, the shorter one first"},
                                                      {"angle", "in radians"},
                                                      {nullptr, nullptr}};
    static PyStructSequence_Desc ellipse_description = {"jorm.Ellipse", "What ellipse returns.", ellipse_fields, 3};
    ellipse_type = named(m, "Ellipse", ellipse_description);

#define POINTS                                                                                                         \
    "\n\nParameters\n----------\n"                                                                                     \
    "points : ndarray of int32, float32 or float64\n"                                                                  \
    "    A row (x, y) for each point.\n"
    m.def("convex_hull", &convex_hull,
          "convex_hull(points)\n--\n\n"
          "The convex hull of points: its corners, the lowest one first." POINTS
          "\nReturns\n-------\nndarray\n    Rows (x, y) of the same type.\n\nExamples\n--------\n"
          ">>> points = np.array([[0, 0], [4, 0], [2, 1], [4, 4], [0, 4]], np.int32)\n"
          ">>> sorted(map(tuple, jorm.convex_hull(points).tolist()))\n"
          "[(0, 0), (0, 4), (4, 0), (4, 4)]\n",
          py::arg("points"));
    m.def("min_area_rect", &min_area_rect,
          "min_area_rect(points)\n--\n\n"
          "The rectangle of least area around points, in any direction." POINTS
          "\nReturns\n-------\nndarray of float64\n    The four corners along the outline, rows (x, y).\n\n"
          "Examples\n--------\n"
          ">>> points = np.array([[0, 0], [4, 0], [4, 2], [0, 2]], np.int32)\n"
          ">>> sorted(map(tuple, np.round(jorm.min_area_rect(points), 9) + 0.0))\n"
          "[(0.0, 0.0), (0.0, 2.0), (4.0, 0.0), (4.0, 2.0)]\n",
          py::arg("points"));
    m.def("moments", &moments,
          "moments(points, *, central=False, polygon=False)\n--\n\n"
          "The second moments of points: the means of x x, x y and y y." POINTS
          "central : bool\n    About the centroid instead of the origin.\n"
          "polygon : bool\n    Of the area inside the outline through the points, per unit of area.\n"
          "\nReturns\n-------\nMoments\n    The fields xx, xy, yy.\n\nExamples\n--------\n"
          ">>> points = np.array([[0, 0], [2, 0]], np.int32)\n"
          ">>> jorm.moments(points).xx\n"
          "2.0\n"
          ">>> jorm.moments(points, central=True).xx\n"
          "1.0\n",
          py::arg("points"), py::kw_only(), py::arg("central") = false, py::arg("polygon") = false);
    m.def("ellipse", &ellipse,
          "ellipse(points, k=2.0)\n--\n\n"
          "The ellipse with the centroid and the central moments of the points, which for the pixels of a filled\n"
          "ellipse is that ellipse." POINTS "k : float\n    Semi-axes are so many standard deviations.\n"
          "\nReturns\n-------\nEllipse\n"
          "    The fields centre (x, y), axes (the semi-axes, the shorter one first) and angle: the first semi-axis\n"
          "    lies along (cos angle, -sin angle).\n\nExamples\n--------\n"
          ">>> points = np.array([[0, 1], [2, 1], [1, 0], [1, 2]], np.int32)\n"
          ">>> jorm.ellipse(points).centre\n"
          "(1.0, 1.0)\n",
          py::arg("points"), py::arg("k") = 2.0);
}

} // namespace jorm_python
