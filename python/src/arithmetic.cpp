#include "arrays.hpp"
#include "docs.hpp"

namespace jorm_python {

namespace {

enum class Op { add, subtract, multiply, divide };
constexpr Function functions[] = {{"add", arithmetic_types, bits(1, 2, 3, 4), false},
                                  {"subtract", arithmetic_types, bits(1, 2, 3, 4), false},
                                  {"multiply", arithmetic_types, bits(1, 2, 3, 4), false},
                                  {"divide", arithmetic_types, bits(1, 2, 3, 4), false}};

std::string types_text(const Picture &a, const Picture *b, const Picture &dst) {
    return type_name(a.type()) + (b ? ", " + std::string(type_name(b->type())) : "") + " -> " + type_name(dst.type());
}

// The type of a result: of two, the wider one; float where one is.
uint32_t wider(uint32_t a, uint32_t b) {
    const auto rank = [](uint32_t c) { return c == JORM_F32 ? 4 : c == JORM_S32 ? 3 : c == JORM_S16 ? 2 : 1; };
    return rank(a) < rank(b) ? b : a;
}

template <Op op, class Second>
void run(const jorm::any_view &dst, const jorm::any_view &a, const Second &b, bool reversed, bool exact,
         const jorm::arith_options &given) {
    jorm::arith_options o = given;
    o.saturate = exact;
    if constexpr (op == Op::add) jorm::add(dst, a, b, o);
    if constexpr (op == Op::subtract) reversed ? jorm::rsub(dst, a, b, o) : jorm::sub(dst, a, b, o);
    if constexpr (op == Op::multiply) jorm::mul(dst, a, b, o);
    if constexpr (op == Op::divide) {
        const jorm::division_options d = {exact, o.shift, o.region, o.at, o.at2, nullptr};
        reversed ? jorm::rdiv(dst, a, b, d) : jorm::div(dst, a, b, d);
    }
}

// `exact`: clamp, or round.
template <Op op>
py::object binary(py::handle a, py::handle b, py::handle out, bool exact, int32_t shift, py::handle region) {
    const Function &f = functions[int(op)];
    const bool reversed = !is_picture(a) && is_picture(b);
    if (reversed) std::swap(a, b);
    Picture first = read(f, reversed ? "b" : "a", a);
    const Part p = part(f, first, region);
    const auto options = [&](const Result &dst, bool integers) {
        exact = exact && integers && dst.type() != JORM_F32;
        jorm::arith_options o;
        o.region = dst.area, o.at = o.at2 = p.at, o.shift = shift;
        return o;
    };
    if (!is_picture(b)) {
        const jorm::values constant = values(f, reversed ? "a" : "b", b, first.channels());
        const Result dst = result(f, first, p, out, first.type());
        if (!out.is_none()) separate(first, dst, p);
        const jorm::arith_options o = options(dst, first.type() != JORM_F32);
        unlocked(
            f, [&] { pieces(f, dst, [&](Piece of) { run<op>(of(dst), of(first), constant, reversed, exact, o); }); },
            [&] { return types_text(first, nullptr, dst); });
        return dst.array;
    }
    Picture second = read(f, "b", b);
    same_shape(f, "b", second, first);
    const Result dst = result(f, first, p, out, wider(first.type(), second.type()));
    if (!out.is_none()) separate(first, dst, p), separate(second, dst, p);
    const jorm::arith_options o = options(dst, first.type() != JORM_F32 && second.type() != JORM_F32);
    unlocked(
        f, [&] { pieces(f, dst, [&](Piece of) { run<op>(of(dst), of(first), of(second), false, exact, o); }); },
        [&] { return types_text(first, &second, dst); });
    return dst.array;
}

constexpr Function muladd_function = {"muladd", arithmetic_types, bits(1, 2, 3, 4), false};

py::object muladd(py::handle a, py::handle b, py::handle c, py::handle out, int32_t shift, py::handle region) {
    const Function &f = muladd_function;
    if (!is_picture(a) && is_picture(b)) std::swap(a, b);
    Picture first = read(f, "a", a), second, third;
    const bool has_second = is_picture(b), has_third = is_picture(c);
    uint32_t type = first.type();
    const auto source = [&](const char *name, py::handle h) {
        const Picture p = read(f, name, h);
        same_shape(f, name, p, first);
        type = wider(type, p.type());
        return p;
    };
    if (has_second) second = source("b", b);
    if (has_third) third = source("c", c);
    const int32_t channels = first.channels();
    const jorm::values factor = has_second ? jorm::values(0) : values(f, "b", b, channels);
    const jorm::values summand = has_third ? jorm::values(0) : values(f, "c", c, channels);
    const Part p = part(f, first, region);
    const Result dst = result(f, first, p, out, type);
    if (!out.is_none()) {
        separate(first, dst, p);
        if (has_second) separate(second, dst, p);
        if (has_third) separate(third, dst, p);
    }
    // Beside two pictures the constant is one, too, of a single pixel that is everywhere, in the type of the result (of
    // bytes a wider one).
    alignas(4) char constant[16];
    if (has_second && !has_third) {
        jorm_array everywhere = first.record();
        everywhere.eltype = dst.type() == JORM_U8 ? uint32_t(JORM_S16) : dst.type();
        const int32_t size = everywhere.eltype == JORM_S16 ? 2 : 4;
        jorm_array pixel = {};
        jorm_array_make(&pixel, everywhere.eltype, 1, 1, channels, 0, constant);
        jorm::fill(jorm::any_view::of(pixel), summand);
        everywhere.base = constant;
        std::fill_n(everywhere.stride, 3, 0);
        everywhere.stride[3] = size;
        third = first.over(everywhere);
    }
    jorm::scale_options o;
    o.region = dst.area, o.at = o.at2 = o.at3 = p.at, o.shift = shift;
    unlocked(
        f,
        [&] {
            pieces(f, dst, [&](Piece of) {
                if (has_second) return jorm::mul_add(of(dst), of(first), of(second), of(third), o);
                if (has_third) return jorm::mul_add(of(dst), of(first), factor, of(third), o);
                jorm::mul_add(of(dst), of(first), factor, summand, o);
            });
        },
        [&] { return types_text(first, has_second ? &second : nullptr, dst); });
    return dst.array;
}

#define OPERANDS                                                                                                       \
    "Parameters\n----------\n"                                                                                         \
    "a, b : ndarray of uint8, int16, int32 or float32; or one of them a number, or one for each channel\n"
#define SHIFT                                                                                                          \
    "shift : int\n"                                                                                                    \
    "    The exact result is multiplied by 2**shift before it is rounded, to nearest even.\n"
#define RETURNS                                                                                                        \
    "\nReturns\n-------\nndarray\n    `out`, or an array of the wider of the two types.\n\nExamples\n--------\n"

} // namespace

void define_arithmetic(py::module_ &m) {
    const auto define = [&](const char *name, auto function, const char *doc, const char *exact) {
        m.def(name, function, doc, py::arg("a"), py::arg("b"), py::arg("out") = py::none(), py::kw_only(),
              py::arg(exact) = true, py::arg("shift") = 0, py::arg("region") = py::none());
    };
#define SUMS(name, what, example)                                                                                      \
    name "(a, b, out=None, *, saturate=True, shift=0, region=None)\n--\n\n" what                                       \
         ", element by element.\n\n" OPERANDS JORM_DOC_OUT                                                             \
         "saturate : bool\n    Clamp integers to the type of the result; otherwise they wrap.\n" SHIFT JORM_DOC_REGION \
             RETURNS example
    define("add", &binary<Op::add>,
           SUMS("add", "The sum of two pictures, or of a picture and a number",
                ">>> a = np.array([[100, 200]], np.uint8)\n"
                ">>> jorm.add(a, 100)\n"
                "array([[200, 255]], dtype=uint8)\n"
                ">>> jorm.add(a, a, saturate=False)\n"
                "array([[200, 144]], dtype=uint8)\n"
                ">>> jorm.add(a, a, shift=-1)\n"
                "array([[100, 200]], dtype=uint8)\n"),
           "saturate");
    define("subtract", &binary<Op::subtract>,
           SUMS("subtract", "The difference of two pictures, or of a picture and a number",
                ">>> a = np.array([[100, 200]], np.uint8)\n"
                ">>> jorm.subtract(a, 150)\n"
                "array([[ 0, 50]], dtype=uint8)\n"
                ">>> jorm.subtract(255, a)\n"
                "array([[155,  55]], dtype=uint8)\n"),
           "saturate");
    define("multiply", &binary<Op::multiply>,
           SUMS("multiply", "The product of two pictures, or of a picture and a number",
                ">>> a = np.array([[100, 200]], np.uint8)\n"
                ">>> jorm.multiply(a, a, shift=-8)\n"
                "array([[ 39, 156]], dtype=uint8)\n"
                ">>> jorm.multiply(a, 1.5)\n"
                "array([[150, 255]], dtype=uint8)\n"),
           "saturate");
    define("divide", &binary<Op::divide>,
           "divide(a, b, out=None, *, round=True, shift=0, region=None)\n--\n\n"
           "The quotient of two pictures, or of a picture and a number, element by element. Integers divided by 0\n"
           "are 0.\n\n" OPERANDS JORM_DOC_OUT
           "round : bool\n    Round integers to nearest even; otherwise they are truncated.\n"
           "shift : int\n    The exact result is multiplied by 2**shift first.\n" JORM_DOC_REGION RETURNS
           ">>> a = np.array([[100, 200, 7]], np.uint8)\n"
           ">>> jorm.divide(a, 3)\n"
           "array([[33, 67,  2]], dtype=uint8)\n"
           ">>> jorm.divide(a, 3, round=False)\n"
           "array([[33, 66,  2]], dtype=uint8)\n",
           "round");
    m.def("muladd", &muladd,
          "muladd(a, b, c, out=None, *, shift=0, region=None)\n--\n\n"
          "a * b + c, element by element, rounded once. Integers wrap.\n\n"
          "Parameters\n----------\n"
          "a : ndarray of uint8, int16, int32 or float32\n"
          "b, c : like `a`, or a number, or one for each channel\n"
          "    Beside two pictures of integers, `c` is rounded.\n" JORM_DOC_OUT SHIFT JORM_DOC_REGION RETURNS
          ">>> a = np.array([[100, 200]], np.uint8)\n"
          ">>> jorm.muladd(a, 0.5, 10)\n"
          "array([[ 60, 110]], dtype=uint8)\n",
          py::arg("a"), py::arg("b"), py::arg("c"), py::arg("out") = py::none(), py::kw_only(), py::arg("shift") = 0,
          py::arg("region") = py::none());
}

} // namespace jorm_python
