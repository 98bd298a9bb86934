#include "formats.hpp"

#include <cstring>
#include <memory>
#include <turbojpeg.h>

namespace tool {
namespace {

constexpr int quality = 95;

using Handle = std::unique_ptr<void, int (*)(void *)>;

} // namespace

Picture decode_jpeg(const Bytes &bytes) {
    const Handle reader(tjInitDecompress(), tjDestroy);
    int width = 0, height = 0, sampling = 0, space = 0;
    if (!reader ||
        tjDecompressHeader3(reader.get(), bytes.data(), bytes.size(), &width, &height, &sampling, &space) != 0)
        throw Failure(tjGetErrorStr2(reader.get()));
    if (width < 1 || height < 1) throw Failure("it is cut short");
    if (space == TJCS_CMYK || space == TJCS_YCCK) throw Failure("it is a CMYK picture; only grey and RGB are read");
    const bool grey = space == TJCS_GRAY;
    Picture picture(width, height, grey ? 1 : 3);
    picture.file = grey ? "JPEG, grey" : "JPEG, colour";
    if (tjDecompress2(reader.get(), bytes.data(), bytes.size(), picture.bytes.data(), width, 0, height,
                      grey ? TJPF_GRAY : TJPF_RGB, TJFLAG_ACCURATEDCT) == 0)
        return picture;
    const char *why = tjGetErrorStr2(reader.get());
    if (std::strstr(why, "remature end")) throw Failure("it is cut short");
    if (tjGetErrorCode(reader.get()) != TJERR_WARNING) throw Failure(why);
    std::fprintf(stderr, "jorm-tool: %s\n", why); // the decoder made the best of it
    return picture;
}

Bytes encode_jpeg(Picture &picture) {
    if (picture.depth() != 8) throw Failure("JPEG holds 8 bits per sample (convert --depth 8, or write a .png)");
    if (picture.has_alpha()) throw Failure("JPEG holds no alpha channel (write a .png)");
    const bool grey = picture.channels == 1;
    const Handle writer(tjInitCompress(), tjDestroy);
    unsigned char *data = nullptr;
    unsigned long size = 0;
    const bool failed = !writer || tjCompress2(writer.get(), picture.bytes.data(), picture.width, 0, picture.height,
                                               grey ? TJPF_GRAY : TJPF_RGB, &data, &size,
                                               grey ? TJSAMP_GRAY : TJSAMP_444, quality, TJFLAG_ACCURATEDCT) != 0;
    const std::unique_ptr<unsigned char, void (*)(unsigned char *)> owner(data, tjFree);
    if (failed) throw Failure(tjGetErrorStr2(writer.get()));
    return Bytes(data, data + size);
}

} // namespace tool
