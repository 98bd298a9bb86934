// From numpy arrays to views of the C++ interface, in place, and back. Element types are run-time values throughout, as
// in the descriptors: nothing here is compiled for each of them.
#pragma once
#include "jorm/jorm.hpp"

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <optional>
#include <string>

namespace jorm_python {

namespace py = pybind11;

constexpr uint32_t bit(uint32_t code) { return uint32_t(1) << code; }
template <class... Codes> constexpr uint32_t bits(Codes... codes) { return (bit(uint32_t(codes)) | ...); }

// Sets of element types.
constexpr uint32_t arithmetic_types = bits(JORM_U8, JORM_S16, JORM_S32, JORM_F32);
constexpr uint32_t compared_types = arithmetic_types | bits(JORM_S8);
constexpr uint32_t short_types = bits(JORM_U8, JORM_S8, JORM_U16, JORM_S16, JORM_S32, JORM_F32);
constexpr uint32_t filled_types = short_types | bits(JORM_U32);
constexpr uint32_t all_types = filled_types | bits(JORM_U64, JORM_S64, JORM_F64);

// A function of the module, for its errors.
struct Function {
    const char *name;
    uint32_t types;                       // of its sources
    uint32_t channels = bits(1, 2, 3, 4); // that one call of the library serves; others go channel by channel
    bool planes = true;                   // whether one call serves four axes; else they go plane by plane
};

// An argument: a view, and the array that it shows.
struct Picture : jorm::any_view {
    Picture() = default;
    py::object array; // holds the memory where the caller does not, as of copies
    int dimensions = 0;

    const jorm_array &raw() const { return record(); }
    uint32_t type() const { return element_type(); }
    Picture over(const jorm_array &record) const {
        Picture p = *this;
        static_cast<jorm::any_view &>(p) = jorm::any_view::of(record);
        return p;
    }
};

// Arrays have 2 axes (rows, columns), 3 (and channels) or 4 (planes in front). What cannot be described raises
// ValueError; other element types than those given raise TypeError with the ones that are served.
Picture read(const Function &f, const char *name, py::handle array, uint32_t types);
inline Picture read(const Function &f, const char *name, py::handle array) { return read(f, name, array, f.types); }
// An array that will be written.
Picture written(const Function &f, const char *name, py::handle array, uint32_t types);
// bool or uint8, one channel, as many rows and columns as the picture beside it; nothing for None.
std::optional<Picture> mask(const Function &f, py::handle array, const Picture &beside, bool by_channel = false);

inline bool is_array(py::handle h) { return py::detail::npy_api::get().PyArray_Check_(h.ptr()); }
// Arrays that count as pictures: a number may come as one without axes, numbers by channel as one with a single axis.
bool is_picture(py::handle h);

// The part that a call works on: `region` of the pictures, written to `area` of the destination.
struct Part {
    jorm::rectangle region; // in the source; the default is all of it
    jorm::position at;      // its corner, left out when all is meant
    int32_t rows, columns;
    bool whole = true;
};
Part part(const Function &f, const Picture &of, py::handle region);

// Where results go: a new array, or the one given, which has the size of the region or that of the picture.
struct Result : Picture {
    jorm::rectangle area;
};
Result result(const Function &f, const Picture &like, const Part &p, py::handle out, uint32_t type,
              uint32_t allowed = all_types);
// A new array of the axes of `like` with so many rows and columns.
Picture fresh(const Picture &like, int32_t rows, int32_t columns, uint32_t type);

// Both have the same rows, columns, channels and planes.
void same_shape(const Function &f, const char *name, const Picture &a, const Picture &like);
// A source for operations that do not look after overlap: itself where it begins and lies like the destination or apart
// from it, otherwise a copy. Some operations do not work in place at all.
void separate(Picture &src, const Result &dst, const Part &p, bool works_in_place = true);

// One number for all channels, or one for each.
jorm::values values(const Function &f, const char *name, py::handle given, int32_t channels);
std::optional<jorm::values> optional_values(const Function &f, const char *name, py::handle given, int32_t channels);
double number(const Function &f, const char *name, py::handle given);
int32_t integer(const Function &f, const char *name, py::handle given);
uint32_t element_type(const Function &f, const char *name, py::handle dtype, uint32_t types);
const char *type_name(uint32_t code);
py::object dtype_of(uint32_t code);
// Results by channel: a float for arrays of two axes, else an array.
py::object by_channel(const Picture &of, const jorm::values &v);
py::object new_array(std::initializer_list<int64_t> shape, uint32_t type);
void *data_of(py::handle array);

[[noreturn]] void value_error(const Function &f, const std::string &text);
[[noreturn]] void type_error(const Function &f, const std::string &text);
[[noreturn]] void raise(const Function &f, jorm::status s, const std::string &about = {});

// Runs the call without the interpreter's lock. `about` tells of the operands, for errors.
inline std::string nothing_more() { return {}; }
template <class Call, class About = std::string (*)()>
auto unlocked(const Function &f, Call &&call, About &&about = nothing_more) {
    try {
        const py::gil_scoped_release released;
        return call();
    } catch (const jorm::error &e) {
        raise(f, e.status(), about());
    }
}

// What one call of the library serves of the operands: all, one plane, one channel.
struct Piece {
    int32_t plane = -1, channel = -1;
    jorm::any_view operator()(const Picture &p) const {
        const jorm::any_view v = plane < 0 || p.axes() < 4 ? jorm::any_view(p) : p.plane(plane);
        return channel < 0 || v.channels() == 1 ? v : v.channel(channel);
    }
    jorm::values operator()(const jorm::values &v) const { return channel < 0 ? v : jorm::values(v[size_t(channel)]); }
};
template <class Call> void pieces(const Function &f, const Picture &like, Call &&call) {
    const int32_t planes = like.axes() == 4 && !f.planes ? like.planes() : 0;
    const int32_t channels = f.channels >> like.channels() & 1 ? 0 : like.channels();
    for (int32_t k = planes ? 0 : -1; k < planes; ++k)
        for (int32_t c = channels ? 0 : -1; c < channels; ++c) call(Piece{k, c});
}

// Registration, one for each family.
void define_errors(py::module_ &m);
void define_arithmetic(py::module_ &m);
void define_pixels(py::module_ &m);
void define_stats(py::module_ &m);
void define_filters(py::module_ &m);
void define_geometry(py::module_ &m);
void define_regions(py::module_ &m);
void define_tiles(py::module_ &m);

} // namespace jorm_python
