// PNM: P1 to P3 in text, P4 to P6 in binary; bitmaps, grey and colour.
#include "formats.hpp"

#include <cctype>
#include <cstring>

namespace tool {
namespace {

class Reader {
public:
    explicit Reader(const Bytes &bytes) : bytes_(bytes) {}

    Picture read() {
        const int kind = bytes_[1] - '0', width = number(32767), height = number(32767);
        const bool bitmap = kind % 3 == 1, text = kind <= 3;
        const int top = bitmap ? 1 : number(65535);
        if (width < 1 || height < 1) throw Failure("it has no pixels");
        if (!bitmap && top != 255 && top != 65535)
            throw Failure("only PNM files with 255 or 65535 as the largest value are read");
        Picture picture(width, height, kind % 3 == 0 ? 3 : 1, top == 65535 ? JORM_U16 : JORM_U8);
        static const char *const names[] = {"colour", "bitmap", "grey"};
        picture.file = std::string("PNM, ") + names[kind % 3] + (text ? " in text" : "");
        if (!text && (at_ == bytes_.size() || !std::isspace(bytes_[at_++]))) throw Failure("its header is malformed");
        if (bitmap)
            read_bits(picture, text);
        else
            read_samples(picture, text, top);
        return picture;
    }

private:
    void read_bits(Picture &picture, bool text) {
        const size_t row = (size_t(picture.width) + 7) / 8;
        if (!text) want(row * size_t(picture.height));
        for (size_t y = 0, i = 0; y < size_t(picture.height); ++y)
            for (size_t x = 0; x < size_t(picture.width); ++x, ++i) {
                const bool black = text ? bit() : bytes_[at_ + y * row + x / 8] >> (7 - x % 8) & 1;
                picture.bytes[i] = black ? 0 : 255;
            }
    }

    void read_samples(Picture &picture, bool text, int top) {
        const size_t size = top == 255 ? 1 : 2, count = picture.bytes.size() / size;
        if (!text) want(picture.bytes.size());
        for (size_t i = 0; i < count; ++i) {
            const int value = text        ? number(top)
                              : size == 1 ? bytes_[at_ + i]
                                          : bytes_[at_ + 2 * i] << 8 | bytes_[at_ + 2 * i + 1];
            const uint16_t wide = uint16_t(value);
            if (size == 1)
                picture.bytes[i] = uint8_t(value);
            else
                std::memcpy(&picture.bytes[2 * i], &wide, 2);
        }
    }

    void want(size_t count) const {
        if (bytes_.size() - at_ < count) throw Failure("it is cut short");
    }

    void skip_blanks() {
        for (; at_ < bytes_.size() && (std::isspace(bytes_[at_]) || bytes_[at_] == '#'); ++at_)
            if (bytes_[at_] == '#')
                while (at_ + 1 < bytes_.size() && bytes_[at_] != '\n') ++at_;
        want(1);
    }

    bool bit() {
        skip_blanks();
        const uint8_t c = bytes_[at_++];
        if (c != '0' && c != '1') throw Failure("a bit of it is neither 0 nor 1");
        return c == '1';
    }

    int number(int most) {
        skip_blanks();
        if (!std::isdigit(bytes_[at_])) throw Failure("something in it is not a number");
        int value = 0;
        for (; at_ < bytes_.size() && std::isdigit(bytes_[at_]); ++at_) {
            value = 10 * value + (bytes_[at_] - '0');
            if (value > most) throw Failure("a number in it is too large");
        }
        return value;
    }

    const Bytes &bytes_;
    size_t at_ = 2;
};

Bytes encode(const Picture &picture, int channels) {
    if (picture.channels != channels)
        throw Failure(std::string(channels == 1 ? "a .pgm holds one channel" : "a .ppm holds three channels") +
                      ", the picture has " + std::to_string(picture.channels));
    const std::string header = std::string(channels == 1 ? "P5\n" : "P6\n") + std::to_string(picture.width) + " " +
                               std::to_string(picture.height) + "\n" + std::to_string(picture.top()) + "\n";
    Bytes bytes(header.begin(), header.end());
    if (picture.depth() == 8) {
        bytes.insert(bytes.end(), picture.bytes.begin(), picture.bytes.end());
        return bytes;
    }
    for (size_t i = 0; i < picture.bytes.size(); i += 2) {
        uint16_t value;
        std::memcpy(&value, &picture.bytes[i], 2);
        bytes.push_back(uint8_t(value >> 8));
        bytes.push_back(uint8_t(value));
    }
    return bytes;
}

} // namespace

Picture decode_pnm(const Bytes &bytes) { return Reader(bytes).read(); }
Bytes encode_pgm(Picture &picture) { return encode(picture, 1); }
Bytes encode_ppm(Picture &picture) { return encode(picture, 3); }

} // namespace tool
