// Picture files: PNG, JPEG and PNM in, PNG out.
#include "tool.hpp"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <memory>
#include <png.h>
#include <sstream>
#include <turbojpeg.h>

namespace tool {
namespace {

using Bytes = std::vector<uint8_t>;

Failure cannot(const char *what, const std::string &path, const std::string &why) {
    return Failure(std::string("cannot ") + what + " " + path + ": " + why);
}

Bytes read_file(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream bytes;
    if (!in || !(bytes << in.rdbuf())) throw cannot("read", path, "no such file, not readable or empty");
    const std::string text = std::move(bytes).str();
    return Bytes(text.begin(), text.end());
}

constexpr uint32_t png_formats[5] = {0, PNG_FORMAT_GRAY, PNG_FORMAT_GA, PNG_FORMAT_RGB, PNG_FORMAT_RGBA};

Picture read_png(const std::string &path, const Bytes &file) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    const std::unique_ptr<png_image, void (*)(png_image *)> owner(&image, png_image_free);
    if (!png_image_begin_read_from_memory(&image, file.data(), file.size())) throw cannot("read", path, image.message);
    image.format &= PNG_FORMAT_FLAG_COLOR | PNG_FORMAT_FLAG_ALPHA;
    Picture picture(int(image.width), int(image.height), int(PNG_IMAGE_PIXEL_CHANNELS(image.format)));
    if (!png_image_finish_read(&image, nullptr, picture.bytes.data(), 0, nullptr))
        throw cannot("read", path, image.message);
    return picture;
}

Picture read_jpeg(const std::string &path, const Bytes &file) {
    const std::unique_ptr<void, int (*)(void *)> reader(tjInitDecompress(), tjDestroy);
    int width = 0, height = 0, sampling = 0, space = 0;
    if (!reader || tjDecompressHeader3(reader.get(), file.data(), file.size(), &width, &height, &sampling, &space) != 0)
        throw cannot("read", path, tjGetErrorStr2(reader.get()));
    if (width < 1 || height < 1) throw cannot("read", path, "it is cut short");
    const bool grey = space == TJCS_GRAY;
    Picture picture(width, height, grey ? 1 : 3);
    if (tjDecompress2(reader.get(), file.data(), file.size(), picture.bytes.data(), width, 0, height,
                      grey ? TJPF_GRAY : TJPF_RGB, TJFLAG_ACCURATEDCT) == 0)
        return picture;
    if (tjGetErrorCode(reader.get()) != TJERR_WARNING) throw cannot("read", path, tjGetErrorStr2(reader.get()));
    std::fprintf(stderr, "jorm-tool: %s: %s\n", path.c_str(), tjGetErrorStr2(reader.get()));
    return picture;
}

// P2, P3 (text) and P5, P6 (binary), grey and colour.
class PnmReader {
public:
    PnmReader(const std::string &path, const Bytes &file) : path_(path), file_(file) {}

    Picture read() {
        const int kind = file_[1] - '0';
        const int width = number(32767), height = number(32767), top = number(65535);
        if (width < 1 || height < 1) throw cannot("read", path_, "it has no pixels");
        if (top != 255) throw cannot("read", path_, "only PNM files with 255 as the largest value are read");
        Picture picture(width, height, kind % 3 == 0 ? 3 : 1);
        if (kind <= 3) {
            for (uint8_t &sample : picture.bytes) sample = uint8_t(number(255));
        } else {
            ++at_; // the one blank behind the header
            if (at_ > file_.size() || file_.size() - at_ < picture.bytes.size())
                throw cannot("read", path_, "it is cut short");
            std::copy_n(file_.begin() + std::ptrdiff_t(at_), picture.bytes.size(), picture.bytes.begin());
        }
        return picture;
    }

private:
    int number(int most) {
        while (at_ < file_.size() && !is_digit(file_[at_])) {
            if (file_[at_] == '#')
                while (at_ < file_.size() && file_[at_] != '\n') ++at_;
            else
                ++at_;
        }
        if (at_ == file_.size()) throw cannot("read", path_, "it is cut short");
        int value = 0;
        for (; at_ < file_.size() && is_digit(file_[at_]); ++at_) {
            value = 10 * value + (file_[at_] - '0');
            if (value > most) throw cannot("read", path_, "a number in it is too large");
        }
        return value;
    }
    static bool is_digit(uint8_t c) { return c >= '0' && c <= '9'; }

    const std::string &path_;
    const Bytes &file_;
    size_t at_ = 2;
};

} // namespace

Picture read_picture(const std::string &path) {
    const Bytes file = read_file(path);
    const auto starts = [&](std::initializer_list<uint8_t> magic) {
        return file.size() > magic.size() && std::equal(magic.begin(), magic.end(), file.begin());
    };
    if (starts({0x89, 'P', 'N', 'G'})) return read_png(path, file);
    if (starts({0xFF, 0xD8, 0xFF})) return read_jpeg(path, file);
    for (uint8_t kind : {'2', '3', '5', '6'})
        if (starts({'P', kind})) return PnmReader(path, file).read();
    throw cannot("read", path, "not a PNG, JPEG or PNM picture");
}

void write_png(const std::string &path, Picture &picture) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = png_uint_32(picture.width);
    image.height = png_uint_32(picture.height);
    image.format = png_formats[picture.channels];
    if (!png_image_write_to_file(&image, path.c_str(), 0, picture.bytes.data(), 0, nullptr))
        throw cannot("write", path, image.message);
}

} // namespace tool
