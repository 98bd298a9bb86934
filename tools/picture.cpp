#include "tool.hpp"

#include <unistd.h>

#include <cstring>

namespace tool {
namespace {

int element_size(uint32_t eltype) { return eltype == JORM_U8 ? 1 : eltype == JORM_U16 ? 2 : 4; }

struct Environment {
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    ~Environment() { JormXEclose(xe); }
};

} // namespace

Picture::Picture(int width, int height, int channels, uint32_t eltype)
    : width(width), height(height), channels(channels), eltype(eltype) {
    const int64_t size = int64_t(width) * height * channels * element_size(eltype);
    if (size > INT32_MAX) throw Failure("a picture of " + shape() + " is too large");
    bytes.resize(size_t(size));
}

jorm_array Picture::view() {
    const int32_t extent[3] = {height, width, channels};
    jorm_array a;
    _jorm_array__$xtrn(&a, eltype, 3, extent, nullptr, bytes.data());
    return a;
}

jorm_array Picture::colours() {
    jorm_array a = view();
    a.extent[3] = uint32_t(colour_count());
    return a;
}

jorm_array Picture::bits() {
    jorm_array a = colours();
    if (a.eltype == JORM_U16) a.eltype = JORM_S16;
    return a;
}

jorm_array Picture::row(int y) {
    jorm_array a = view();
    a.loff = y * a.stride[1];
    a.extent[1] = 1;
    return a;
}

jorm_array Picture::channel(int c) {
    jorm_array a = view();
    a.loff = c * a.stride[3];
    a.extent[3] = 1;
    return a;
}

jorm_array Picture::every(int step, int x, int y) {
    jorm_array a = view();
    const int from[] = {0, y, x};
    for (int i : {1, 2}) {
        a.extent[i] = (a.extent[i] - uint32_t(from[i]) + uint32_t(step) - 1) / uint32_t(step);
        a.loff += from[i] * a.stride[i];
        a.stride[i] *= step;
    }
    return a;
}

int Picture::sample(int x, int y, int c) const {
    const size_t at = (size_t(y) * size_t(width) + size_t(x)) * size_t(channels) + size_t(c);
    if (eltype == JORM_U8) return bytes[at];
    uint16_t value;
    std::memcpy(&value, &bytes[2 * at], 2);
    return value;
}

Picture Picture::as(uint32_t type) { return type == eltype ? *this : scaled(type, nullptr, nullptr); }

Picture Picture::scaled(uint32_t type, const double *gain, const double *offset) {
    Picture result(width, height, channels, type);
    const jorm_array dst = result.view(), src = view();
    check(JormGain(env(), 0, &dst, &src, gain, offset, nullptr, nullptr), "scaling");
    result.file = file;
    return result;
}

void Picture::limit(const double *low, const double *high) {
    Picture exact = as(exact_type());
    const jorm_array a = exact.colours();
    check(JormMaxC(env(), 0, &a, nullptr, low, nullptr, nullptr), "clamping");
    check(JormMinC(env(), 0, &a, nullptr, high, nullptr, nullptr), "clamping");
    *this = exact.as(eltype);
}

uint32_t Picture::exact_type() const { return eltype == JORM_U16 ? uint32_t(JORM_S32) : eltype; }

std::string Picture::shape() const {
    return std::to_string(width) + "x" + std::to_string(height) + ", " + std::to_string(channels) +
           (channels == 1 ? " channel of " : " channels of ") + std::to_string(depth()) + " bits";
}

Picture read_same(const std::string &path, const Picture &first, const std::string &first_path) {
    Picture picture = read_picture(path);
    const char *differs = picture.width != first.width || picture.height != first.height ? "sizes"
                          : picture.colour_count() != first.colour_count()               ? "channels"
                          : picture.eltype != first.eltype                               ? "depths"
                                                                                         : nullptr;
    if (differs)
        throw Failure(std::string(differs) + " differ: " + first_path + " is " + first.shape() + ", " + path + " is " +
                      picture.shape());
    return picture;
}

Picture read_mask(const std::string &path, const Picture &picture, bool inverted) {
    Picture read = read_picture(path);
    if (read.width != picture.width || read.height != picture.height)
        throw Failure("sizes differ: the picture is " + picture.shape() + ", the mask " + path + " is " + read.shape());
    return mask_of(read, inverted);
}

Picture mask_of(Picture &picture, bool inverted) {
    const int size = picture.depth() / 8;
    Picture mask(picture.width, picture.height, 1);
    const jorm_array dst = mask.view();
    const Colour start = {inverted ? 255.0 : 0.0, 0, 0, 0};
    fill(dst, site(0, 0, mask.width, mask.height), start);
    for (int i = 0; i < picture.colour_count() * size; ++i) {
        jorm_array part = picture.channel(0);
        part.eltype = JORM_U8;
        part.stride[3] = 1;
        part.loff = i;
        check((inverted ? JormAnd : JormOrr)(env(), 0, &dst, nullptr, &part, nullptr, nullptr, nullptr), "mask");
    }
    return mask;
}

jorm_xe *env() {
    static Environment environment;
    if (!environment.xe) throw Failure("out of memory");
    return environment.xe;
}

void check(int64_t status, const char *what) {
    if (status < 0) throw Failure(std::string(what) + ": " + jorm_status_str(status));
}

jorm_site site(int x, int y, int width, int height) { return {{0, y, x, 0}, {1, height, width, 4}}; }

Progress::Progress(const Args &args)
    : total_(args.files.size()), shown_(total_ > 1 && !args.has("quiet") && isatty(STDERR_FILENO)) {}

Progress::~Progress() {
    if (shown_) std::fputs("\r\033[K", stderr);
}

void Progress::step(const std::string &what) {
    ++done_;
    if (!shown_) return;
    constexpr size_t width = 24;
    const size_t full = done_ * width / total_;
    std::fprintf(stderr, "\r[%s%s] %zu of %zu: %.40s\033[K", std::string(full, '#').c_str(),
                 std::string(width - full, '.').c_str(), done_, total_, what.c_str());
}

Picture grey_bytes(Picture &picture) {
    const Colour gain = {1 / 257.0, 1 / 257.0, 1 / 257.0, 1 / 257.0}, none = {};
    Picture bytes = picture.eltype == JORM_U8 ? picture : picture.scaled(JORM_U8, gain, none);
    Picture grey(picture.width, picture.height, 1);
    const size_t step = size_t(bytes.channels);
    for (size_t i = 0; i < grey.bytes.size(); ++i) {
        const uint8_t *p = &bytes.bytes[step * i];
        grey.bytes[i] = step < 3 ? p[0] : uint8_t((299 * p[0] + 587 * p[1] + 114 * p[2] + 500) / 1000);
    }
    return grey;
}

} // namespace tool
