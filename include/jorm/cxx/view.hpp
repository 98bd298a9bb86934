/// \file
/// Views: typed descriptions of memory of the caller, and the small records that operations are told places by.
#ifndef JORM_CXX_VIEW_HPP
#define JORM_CXX_VIEW_HPP

#include "jorm/array.h"
#include "jorm/cxx/environment.hpp"

#include <concepts>
#include <limits>
#include <ranges>
#include <span>
#include <type_traits>

namespace jorm {
inline namespace cxx {

/// Up to the end, as the number of rows or columns of a rectangle.
inline constexpr int32_t to_end = std::numeric_limits<int32_t>::max();
/// A coordinate that is left to the library.
inline constexpr int32_t automatic = std::numeric_limits<int32_t>::min();

/// A part of every plane; what lies outside the picture is cut off. `{.row = 10}` is all from row 10 on.
struct rectangle {
    int32_t row = 0, column = 0, rows = to_end, columns = to_end;
    friend bool operator==(const rectangle &, const rectangle &) = default;
};

/// A pixel. As a start point left out: the first pixel, or in place the corner of the region.
struct position {
    int32_t row = automatic, column = automatic, plane = automatic;
    friend bool operator==(const position &, const position &) = default;
};

/// One number for each channel: `7` for all of them, or `{1, 2, 3}`.
class values {
public:
    constexpr values(double all) noexcept : of_{all, all, all, all} {}
    constexpr values(double c0, double c1, double c2 = 0, double c3 = 0) noexcept : of_{c0, c1, c2, c3} {}
    constexpr double operator[](size_t channel) const noexcept { return of_[channel]; }
    constexpr double *data() noexcept { return of_; }
    constexpr const double *data() const noexcept { return of_; }
    friend bool operator==(const values &, const values &) = default;

private:
    double of_[4];
};

/// How pixels lie in memory. Strides are bytes, 0 for no gaps: channels beside each other in a pixel, pixels in a row,
/// rows in a plane. Negative ones go upward from the first pixel. Without planes a picture has three axes.
struct shape {
    int32_t rows = 1, columns = 1, channels = 1, planes = 0;
    int64_t row_stride = 0, pixel_stride = 0, channel_stride = 0, plane_stride = 0;
};

namespace detail {

template <class T>
concept element = (std::integral<T> || std::same_as<T, float> || std::same_as<T, double>)&&!std::same_as<T, bool>;

/// The type code of an element: the size class, and the sign.
template <element T>
constexpr uint32_t code_of = std::same_as<T, float>    ? uint32_t(JORM_F32)
                             : std::same_as<T, double> ? uint32_t(JORM_F64)
                                                       : (sizeof(T) == 1   ? 1u
                                                          : sizeof(T) == 2 ? 2u
                                                          : sizeof(T) == 4 ? 3u
                                                                           : 4u) +
                                                             (std::is_signed_v<T> ? 8u : 0u);

inline int64_t describe(jorm_array &out, uint32_t code, int64_t size, const shape &s, const void *first) {
    const auto fits = [=](int64_t v) { return v == int32_t(v) && v % size == 0; };
    const int64_t channel = s.channel_stride ? s.channel_stride : size;
    const int64_t pixel = s.pixel_stride ? s.pixel_stride : s.channels * (channel < 0 ? -channel : channel);
    if (!fits(channel) || !fits(pixel)) return JORM_EINVAL;
    const int64_t row = s.row_stride ? s.row_stride : s.columns * (pixel < 0 ? -pixel : pixel);
    if (!fits(row)) return JORM_EINVAL;
    const int64_t plane = s.plane_stride ? s.plane_stride : s.rows * (row < 0 ? -row : row);
    const int64_t made = s.planes
                             ? jorm_array_make4(&out, code, s.planes, s.rows, s.columns, s.channels, plane, row, first)
                             : jorm_array_make(&out, code, s.rows, s.columns, s.channels, row, first);
    if (made < 0) return made;
    out.stride[2] = int32_t(pixel), out.stride[3] = int32_t(channel);
    return JORM_OK;
}

inline int64_t plane_of(jorm_array &out, const jorm_array &a, int32_t planes, int32_t k) {
    if (k < 0 || k >= planes) return JORM_EINVAL;
    out = a;
    out.base = const_cast<char *>(static_cast<const char *>(a.base)) + int64_t(k) * a.stride[0];
    out.extent[0] = out.parent_extent[0] = 1, out.stride[0] = 0, out.ndims = 3;
    return JORM_OK;
}

/// Whether `bytes` bytes from the first element on hold every element of an array.
inline bool holds(const jorm_array &a, size_t bytes, size_t size) {
    uint64_t last = 0;
    for (int i = 0; i < 4; ++i) {
        if (a.extent[i] < 2) continue;
        if (a.stride[i] < 0) return false;
        last += uint64_t(a.extent[i] - 1) * uint64_t(a.stride[i]);
    }
    return bytes >= size && last <= bytes - size;
}

/// A pointer itself, not an array that would become one.
template <class P, class T>
concept pointer_to = std::is_pointer_v<std::remove_cvref_t<P>> && std::convertible_to<P, T *>;

template <class M, class T>
concept mdspan_like = requires(const M &m) {
    { m.data_handle() } -> std::convertible_to<T *>;
    { M::rank() } -> std::convertible_to<size_t>;
    { m.extent(0) } -> std::convertible_to<int64_t>;
    { m.stride(0) } -> std::convertible_to<int64_t>;
};

template <class M>
concept matrix_like = requires(const M &m) {
    { m.rows } -> std::convertible_to<int32_t>;
    { m.cols } -> std::convertible_to<int32_t>;
    { m.step } -> std::convertible_to<size_t>;
    { m.channels() } -> std::convertible_to<int32_t>;
    {static_cast<const void *>(m.data)};
};

} // namespace detail

/// A picture that an operation reads; every view is one.
class source {
public:
    /// For calls of the C interface; null for `in_place`.
    const jorm_array *get() const noexcept;
    /// The record itself.
    const jorm_array &record() const noexcept { return array_; }

    int32_t rows() const noexcept { return int32_t(array_.extent[1]); }
    int32_t columns() const noexcept { return int32_t(array_.extent[2]); }
    int32_t channels() const noexcept { return int32_t((array_.extent[3] & 7) + (array_.extent[3] >> 3 & 1)); }
    int32_t planes() const noexcept { return int32_t(array_.extent[0]); }
    /// 3, or 4 with planes.
    int32_t axes() const noexcept { return array_.ndims; }

    constexpr source() noexcept = default;

protected:
    jorm_array array_ = {{}, {}, {}, 3, 0, 0, 0, 0, nullptr};
};

/// A picture that an operation writes: a view of elements that are not constant.
class target : public source {};

/// In place of the first source: the destination itself, from the corner of the region on.
///
///     jorm::add(picture, jorm::in_place, 10);
inline const source in_place;

inline const jorm_array *source::get() const noexcept { return this == &in_place ? nullptr : &array_; }

/// A picture in memory of the caller, which has to outlive the view. T is an integer of 8 to 64 bits, float or double,
/// constant or not. Views are cheap to copy; they never copy pixels. A bad shape throws `error`.
///
///     std::vector<uint8_t> pixels(480 * 640 * 3);
///     jorm::view picture(pixels, {480, 640, 3});
///     auto green = picture.sub({.row = 100, .rows = 50}).channel(1);
template <class T>
requires detail::element<std::remove_const_t<T>>
class view : public std::conditional_t<std::is_const_v<T>, source, target> {
    using byte = std::conditional_t<std::is_const_v<T>, const char, char>;

public:
    using element_type = T;

    /// No picture: operations refuse it.
    view() noexcept = default;

    /// From the first element of the first row.
    template <class P>
    requires detail::pointer_to<P, T> view(P &&first, const shape &s) { throwing::report(make(first, s)); }

    /// From a std::span, a vector, an array; one that is too short throws.
    template <std::ranges::contiguous_range R>
    requires std::ranges::borrowed_range<R> &&
        std::convertible_to<decltype(std::ranges::data(std::declval<R &>())), T *>
        view(R &&elements, const shape &s) : view(std::ranges::data(elements), s) {
        if (!detail::holds(this->array_, std::ranges::size(elements) * sizeof(T), sizeof(T)))
            detail::fail(status::invalid);
    }

    /// From an mdspan (any class of that form): rows and columns; rows, columns, channels; or planes in front of these.
    template <class M>
    requires detail::mdspan_like<M, T>
    explicit view(const M &m) {
        constexpr size_t rank = M::rank();
        static_assert(rank >= 2 && rank <= 4, "rows and columns, then channels, in front of all planes");
        constexpr size_t lead = rank == 4;
        shape s;
        const auto bytes = [&](size_t axis) { return int64_t(m.stride(axis)) * int64_t(sizeof(T)); };
        s.rows = size_of(m, lead), s.row_stride = bytes(lead);
        s.columns = size_of(m, lead + 1), s.pixel_stride = bytes(lead + 1);
        if constexpr (rank > 2) s.channels = size_of(m, lead + 2), s.channel_stride = bytes(lead + 2);
        if constexpr (lead) s.planes = size_of(m, 0), s.plane_stride = bytes(0);
        throwing::report(make(m.data_handle(), s));
    }

    /// From any matrix class with the members data, rows, cols, step (bytes from row to row) and channels(). If it also
    /// has elemSize1(), an element size other than that of T throws.
    template <class M>
    requires detail::matrix_like<M>
    explicit view(const M &m) {
        if constexpr (requires { m.elemSize1(); })
            if (size_t(m.elemSize1()) != sizeof(T)) detail::fail(status::invalid);
        throwing::report(
            make(reinterpret_cast<T *>(m.data),
                 {.rows = m.rows, .columns = m.cols, .channels = m.channels(), .row_stride = int64_t(size_t(m.step))}));
    }

    /// A view that may write is also one that may not.
    operator view<const T>() const noexcept requires(!std::is_const_v<T>) { return view<const T>::of(this->array_); }

    /// The view that a record of the C interface describes, whose type code has to be that of T.
    static view of(const jorm_array &record) noexcept {
        view v;
        v.array_ = record;
        return v;
    }

    /// The first element.
    T *data() const noexcept { return &(*this)(0, 0); }
    /// An element; coordinates are not checked.
    T &operator()(int32_t row, int32_t column, int32_t channel = 0, int32_t plane = 0) const noexcept {
        const jorm_array &a = this->array_;
        return *reinterpret_cast<T *>(static_cast<byte *>(a.base) + a.loff + int64_t(plane) * a.stride[0] +
                                      int64_t(row) * a.stride[1] + int64_t(column) * a.stride[2] +
                                      int64_t(channel) * a.stride[3]);
    }

    /// A part. It knows the picture around it: filters read the true pixels beyond its edges.
    template <class Errors = throwing> returns<Errors, view> sub(const rectangle &r) const {
        return Errors::template make<view>(
            [&](view &v) { return jorm_array_sub(&v.array_, &this->array_, r.row, r.column, r.rows, r.columns); });
    }
    /// One channel, as a picture of one channel.
    template <class Errors = throwing> returns<Errors, view> channel(int32_t k) const {
        return Errors::template make<view>([&](view &v) { return jorm_array_channel(&v.array_, &this->array_, k); });
    }
    /// Upside down: the last row first.
    template <class Errors = throwing> returns<Errors, view> flip_vertical() const { return flip<Errors>(1, 0); }
    /// Mirrored: the last pixel of each row first.
    template <class Errors = throwing> returns<Errors, view> flip_horizontal() const { return flip<Errors>(0, 1); }
    /// One plane, as a picture of three axes.
    template <class Errors = throwing> returns<Errors, view> plane(int32_t k) const {
        return Errors::template make<view>(
            [&](view &v) { return detail::plane_of(v.array_, this->array_, this->planes(), k); });
    }

private:
    template <class M> static int32_t size_of(const M &m, size_t axis) {
        const int64_t n = int64_t(m.extent(axis));
        return n == int32_t(n) ? int32_t(n) : -1;
    }
    int64_t make(T *first, const shape &s) {
        return detail::describe(this->array_, detail::code_of<std::remove_const_t<T>>, sizeof(T), s, first);
    }
    template <class Errors> returns<Errors, view> flip(int32_t vertical, int32_t horizontal) const {
        return Errors::template make<view>(
            [&](view &v) { return jorm_array_flip(&v.array_, &this->array_, vertical, horizontal); });
    }
};

/// A picture whose element type only the running program knows, as that of a file or of another language: a record of
/// the C interface that every operation takes. Whether it may be written is for its maker to know.
///
///     jorm::any_view picture = jorm::any_view::of(record);
///     if (picture.element_type() == JORM_U8) ...
class any_view : public target {
public:
    any_view() noexcept = default;
    static any_view of(const jorm_array &record) noexcept {
        any_view v;
        v.array_ = record;
        return v;
    }

    /// JORM_U8 and the like.
    uint32_t element_type() const noexcept { return array_.eltype; }

    /// One channel, one plane, as those of `view`.
    template <class Errors = throwing> returns<Errors, any_view> channel(int32_t k) const {
        return Errors::template make<any_view>([&](any_view &v) { return jorm_array_channel(&v.array_, &array_, k); });
    }
    template <class Errors = throwing> returns<Errors, any_view> plane(int32_t k) const {
        return Errors::template make<any_view>(
            [&](any_view &v) { return detail::plane_of(v.array_, array_, planes(), k); });
    }
};

template <class P>
requires std::is_pointer_v<std::remove_cvref_t<P>> view(P &&, const shape &)
->view<std::remove_pointer_t<std::remove_cvref_t<P>>>;
template <std::ranges::contiguous_range R>
view(R &&, const shape &) -> view<std::remove_reference_t<std::ranges::range_reference_t<R>>>;

/// A mask in a list of options: `.mask = m`. One channel of 8 bits (or, for copies and fills, as many as the picture);
/// pixels with 0 do not take part, with `.invert` those with 255.
class optional_mask {
public:
    constexpr optional_mask() noexcept = default;
    optional_mask(const source &m) noexcept : array_(&m.record()) {}
    const jorm_array *get() const noexcept { return array_; }

private:
    const jorm_array *array_ = nullptr;
};

namespace detail {

/// Arguments of the C interface, made where they are given and null where they are left out. They live as long as the
/// call that they stand in.
class site {
public:
    explicit site(const rectangle &r) noexcept
        : given_(r == rectangle() ? nullptr : jorm_site_make(&site_, r.row, r.column, r.rows, r.columns)) {}
    /// Where only the origin counts.
    explicit site(const position &p) noexcept;
    operator const jorm_site *() const noexcept { return given_; }
    site(const site &) = delete;

private:
    jorm_site site_;
    const jorm_site *given_;
};

class slots {
public:
    explicit slots(const position &p) noexcept : given_(p == position() ? nullptr : slot_) {
        const auto or_0 = [](int32_t v) { return v == automatic ? 0 : v; };
        slot_[0] = or_0(p.plane), slot_[1] = or_0(p.row), slot_[2] = or_0(p.column), slot_[3] = 0;
    }
    /// 0 where it is left out.
    int32_t operator[](int i) const noexcept { return slot_[i]; }
    operator const int32_t *() const noexcept { return given_; }
    slots(const slots &) = delete;

private:
    int32_t slot_[4];
    const int32_t *given_;
};

inline site::site(const position &p) noexcept : given_(nullptr) {
    const slots at(p);
    if (const int32_t *v = at) {
        given_ = jorm_site_make(&site_, v[1], v[2], to_end, to_end);
        site_.origin[0] = v[0];
    }
}

inline uint64_t mask_bits(bool invert) { return invert ? JORM_OPT_MASK_INVERT : 0; }
inline const double *data(const std::optional<values> &v) { return v ? v->data() : nullptr; }

} // namespace detail
} // namespace cxx
} // namespace jorm

#endif
