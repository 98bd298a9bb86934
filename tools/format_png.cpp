// PNG through libpng, without its gamma and colour handling: samples are read and written as they stand.
#include "formats.hpp"

#include <bit>
#include <csetjmp>
#include <cstring>
#include <png.h>

namespace tool {
namespace {

constexpr bool little_endian = std::endian::native == std::endian::little;

struct Fault {
    char message[128] = "it is damaged";
};

void on_error(png_structp png, png_const_charp message) {
    Fault *fault = static_cast<Fault *>(png_get_error_ptr(png));
    std::snprintf(fault->message, sizeof fault->message, "%s", message);
    png_longjmp(png, 1);
}

void on_warning(png_structp, png_const_charp) {}

// Runs calls of libpng, whose errors jump back to here: neither the step nor what it calls may own anything.
template <class Step> void guarded(png_structp png, const Fault &fault, Step step) {
    if (setjmp(png_jmpbuf(png))) throw Failure(fault.message);
    step();
}

struct Source {
    const Bytes &bytes;
    size_t at = 0;
};

void pull(png_structp png, png_bytep to, size_t count) {
    Source *source = static_cast<Source *>(png_get_io_ptr(png));
    if (count > source->bytes.size() - source->at) png_error(png, "it is cut short");
    std::memcpy(to, source->bytes.data() + source->at, count);
    source->at += count;
}

void push(png_structp png, png_bytep from, size_t count) {
    Bytes *bytes = static_cast<Bytes *>(png_get_io_ptr(png));
    bool done = true;
    try {
        bytes->insert(bytes->end(), from, from + count);
    } catch (...) {
        done = false;
    }
    if (!done) png_error(png, "out of memory");
}

struct Reader {
    Fault fault;
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &fault, on_error, on_warning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
};

struct Writer {
    Fault fault;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &fault, on_error, on_warning);
    png_infop info = png ? png_create_info_struct(png) : nullptr;
    ~Writer() { png_destroy_write_struct(&png, &info); }
};

std::vector<png_bytep> rows_of(Picture &picture) {
    std::vector<png_bytep> rows(size_t(picture.height));
    const size_t length = picture.bytes.size() / rows.size();
    for (size_t y = 0; y < rows.size(); ++y) rows[y] = picture.bytes.data() + y * length;
    return rows;
}

std::string colour_name(int type) {
    switch (type) {
    case PNG_COLOR_TYPE_GRAY:
        return "grey";
    case PNG_COLOR_TYPE_GRAY_ALPHA:
        return "grey and alpha";
    case PNG_COLOR_TYPE_PALETTE:
        return "palette";
    case PNG_COLOR_TYPE_RGB:
        return "RGB";
    default:
        return "RGB and alpha";
    }
}

} // namespace

Picture decode_png(const Bytes &bytes) {
    Reader r;
    if (!r.info) throw Failure("out of memory");
    Source source{bytes};
    png_uint_32 width = 0, height = 0;
    int depth = 0, type = 0, interlaced = 0;
    guarded(r.png, r.fault, [&] {
        png_set_read_fn(r.png, &source, pull);
        png_read_info(r.png, r.info);
        png_get_IHDR(r.png, r.info, &width, &height, &depth, &type, &interlaced, nullptr, nullptr);
        png_set_expand(r.png); // palettes, fewer than 8 bits, a transparent colour
        if (little_endian && depth == 16) png_set_swap(r.png);
        png_set_interlace_handling(r.png);
        png_read_update_info(r.png, r.info);
    });
    const bool transparent = png_get_valid(r.png, r.info, PNG_INFO_tRNS) != 0;
    Picture picture(int(width), int(height), png_get_channels(r.png, r.info), depth == 16 ? JORM_U16 : JORM_U8);
    picture.file = "PNG, " + colour_name(type) + " of " + std::to_string(depth) + (depth == 1 ? " bit" : " bits") +
                   (transparent ? ", transparent colours" : "") + (interlaced ? ", interlaced" : "");
    std::vector<png_bytep> rows = rows_of(picture);
    guarded(r.png, r.fault, [&] {
        png_read_image(r.png, rows.data());
        png_read_end(r.png, nullptr);
    });
    return picture;
}

Bytes encode_png(Picture &picture) {
    constexpr int types[5] = {0, PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                              PNG_COLOR_TYPE_RGB_ALPHA};
    Writer w;
    if (!w.info) throw Failure("out of memory");
    Bytes bytes;
    std::vector<png_bytep> rows = rows_of(picture);
    guarded(w.png, w.fault, [&] {
        png_set_write_fn(w.png, &bytes, push, nullptr);
        png_set_IHDR(w.png, w.info, png_uint_32(picture.width), png_uint_32(picture.height), picture.depth(),
                     types[picture.channels], PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                     PNG_FILTER_TYPE_DEFAULT);
        png_write_info(w.png, w.info);
        if (little_endian && picture.depth() == 16) png_set_swap(w.png);
        png_write_image(w.png, rows.data());
        png_write_end(w.png, nullptr);
    });
    return bytes;
}

} // namespace tool
