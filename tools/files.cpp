// Files in and out: what kind they are, and which picture goes where.
#include "formats.hpp"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>

namespace tool {
namespace {

namespace fs = std::filesystem;

Failure cannot(const char *what, const std::string &path, const std::string &why) {
    return Failure(std::string("cannot ") + what + " " + (path == "-" ? "standard stream" : path) + ": " + why);
}

// A file that is closed at the end, unless it is a standard stream.
using File = std::unique_ptr<std::FILE, int (*)(std::FILE *)>;

File open(const std::string &path, const char *mode, std::FILE *standard) {
    if (path == "-") return File(standard, std::fflush);
    return File(std::fopen(path.c_str(), mode), std::fclose);
}

Bytes read_file(const std::string &path) {
    std::error_code ignored;
    if (fs::is_directory(path, ignored)) throw cannot("read", path, "it is a folder");
    const File in = open(path, "rb", stdin);
    if (!in) throw cannot("read", path, std::strerror(errno));
    Bytes bytes;
    uint8_t block[65536];
    for (size_t count; (count = std::fread(block, 1, sizeof block, in.get())) > 0;)
        bytes.insert(bytes.end(), block, block + count);
    if (std::ferror(in.get())) throw cannot("read", path, std::strerror(errno));
    if (bytes.empty()) throw cannot("read", path, "it is empty");
    return bytes;
}

using Encoder = Bytes(Picture &);

// By the suffix of a name, in capitals or not.
Encoder *encoder_of(const std::string &path) {
    static constexpr struct {
        const char *suffix;
        Encoder *encode;
    } encoders[] = {{".png", encode_png},
                    {".jpg", encode_jpeg},
                    {".jpeg", encode_jpeg},
                    {".pgm", encode_pgm},
                    {".ppm", encode_ppm}};
    std::string suffix = fs::path(path).extension().string();
    for (char &c : suffix) c = char(std::tolower(static_cast<unsigned char>(c)));
    for (const auto &e : encoders)
        if (suffix == e.suffix) return e.encode;
    return nullptr;
}

} // namespace

Picture read_picture(const std::string &path) {
    const Bytes bytes = read_file(path);
    const auto starts = [&](std::initializer_list<uint8_t> magic) {
        return bytes.size() > magic.size() && std::equal(magic.begin(), magic.end(), bytes.begin());
    };
    try {
        if (starts({0x89, 'P', 'N', 'G'})) return decode_png(bytes);
        if (starts({0xFF, 0xD8, 0xFF})) return decode_jpeg(bytes);
        if (starts({'P'}) && bytes[1] >= '1' && bytes[1] <= '6') return decode_pnm(bytes);
    } catch (const Failure &why) {
        throw cannot("read", path, why.what());
    }
    throw cannot("read", path, "not a PNG, JPEG or PNM picture");
}

bool known_suffix(const std::string &path) { return encoder_of(path) != nullptr; }

void write_picture(const std::string &path, Picture &picture) {
    Encoder *encode = path == "-" ? encode_png : encoder_of(path);
    Bytes bytes;
    try {
        bytes = encode(picture);
    } catch (const Failure &why) {
        throw cannot("write", path, why.what());
    }
    File out = open(path, "wb", stdout);
    if (!out) throw cannot("write", path, std::strerror(errno));
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), out.get()) == bytes.size();
    const bool closed = out.get_deleter()(out.release()) == 0;
    if (written && closed) return;
    const std::string why = std::strerror(errno);
    std::error_code ignored;
    if (path != "-" && fs::is_regular_file(path, ignored)) fs::remove(path, ignored);
    throw cannot("write", path, why);
}

void for_each_picture(const Args &args, const std::function<void(Picture &)> &operation) {
    const std::string out = args.text("output");
    const bool folder = args.files.size() > 1 || fs::is_directory(out) || out.back() == '/';
    if (folder && !fs::is_directory(out) && (out == "-" || known_suffix(out)))
        throw Failure("several pictures go into a folder, and '" + out + "' is not the name of one");
    std::vector<std::string> targets;
    for (const std::string &path : args.files)
        targets.push_back(folder ? (fs::path(out) / fs::path(path).stem()).string() + ".png" : args.output());
    std::set<std::string> taken;
    std::error_code fault;
    for (const std::string &target : targets) {
        if (!taken.insert(target).second) throw Failure("two pictures would be written to " + target);
        for (const std::string &path : args.files)
            if (folder && fs::equivalent(path, target, fault))
                throw Failure("the picture " + path + " would be overwritten");
    }
    if (folder && (fs::create_directories(out, fault), fault)) throw cannot("make the folder", out, fault.message());
    Progress progress(args);
    for (size_t i = 0; i < args.files.size(); ++i) {
        Picture picture = read_picture(args.files[i]);
        operation(picture);
        write_picture(targets[i], picture);
        progress.step(args.files[i]);
    }
}

} // namespace tool
