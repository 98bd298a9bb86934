// Parts of pictures: frames around them, cuts, fills, and one picture laid over another through a mask.
#include "tool.hpp"

#include <sstream>

namespace tool {
namespace {

// "10,20" as two whole numbers, "255,128,0" as up to four values of which the last one stands for the missing.
std::pair<int, int> point(const Args &args, const char *option) {
    std::istringstream in(args.text(option, "0,0"));
    int x = 0, y = 0;
    char comma = 0;
    if (!(in >> x >> comma >> y) || comma != ',' || !(in >> std::ws).eof())
        throw Failure(std::string("--") + option + " wants X,Y");
    return {x, y};
}

void read_colour(const Args &args, const char *option, double *colour) {
    std::istringstream in(args.text(option, "0"));
    int count = 0;
    do {
        if (count == 4 || !(in >> colour[count])) throw Failure(std::string("--") + option + " wants V or V,V,V");
        ++count;
    } while (in.get() == ',');
    if (!in.eof()) throw Failure(std::string("--") + option + " wants V or V,V,V");
    for (; count < 4; ++count) colour[count] = colour[count - 1];
}

jorm_border read_border(const Args &args, const char *otherwise) {
    const std::string wanted = args.text("mode", otherwise);
    jorm_border border = {};
    std::string names;
    for (border.mode = JORM_BORDER_CONST; border.mode <= JORM_BORDER_REFLECT101; ++border.mode) {
        const std::string full = jorm_border_str(border.mode), name = full.substr(0, full.find('-'));
        if (name == wanted) {
            read_colour(args, "colour", border.values);
            return border;
        }
        names += (names.empty() ? "" : ", ") + name;
    }
    throw Failure("--mode wants one of " + names);
}

// The part of the picture that begins at x, y, beyond its edges as the border has it.
Picture block(Picture &picture, int x, int y, int width, int height, const jorm_border &border) {
    Picture result(width, height, picture.channels);
    const jorm_array dst = result.view(), src = picture.view();
    const int32_t at[] = {0, y, x, 0};
    const int64_t status = JormCopyMkb(env(), 0, &dst, &src, nullptr, at, &border);
    if (status == JORM_EEMPTY) throw Failure("nothing of the picture, " + picture.shape() + ", lies there");
    check(status, "copy");
    return result;
}

Picture read_mask(const std::string &path, const Picture &picture) {
    Picture mask = read_picture(path);
    if (mask.width != picture.width || mask.height != picture.height)
        throw Failure("sizes differ: the picture is " + picture.shape() + ", " + path + " is " + mask.shape());
    return mask;
}

} // namespace

void run_border(const Args &args) {
    args.want_files(1, 1);
    const std::string &out = args.output();
    const jorm_border border = read_border(args, "reflect101");
    const int margin = args.number("margin", 16, 0, 16384);
    Picture picture = read_picture(args.files[0]);
    Picture framed = block(picture, -margin, -margin, picture.width + 2 * margin, picture.height + 2 * margin, border);
    write_png(out, framed);
}

void run_crop(const Args &args) {
    args.want_files(1, 1);
    const std::string &out = args.output();
    const jorm_border border = read_border(args, "const");
    const auto [x, y] = point(args, "at");
    const auto [width, height] = args.size("size", "64x64");
    Picture picture = read_picture(args.files[0]);
    Picture part = block(picture, x, y, width, height, border);
    write_png(out, part);
}

void run_fill(const Args &args) {
    args.want_files(1, 1);
    const std::string &out = args.output();
    Colour colour;
    read_colour(args, "colour", colour);
    Picture picture = read_picture(args.files[0]);
    const jorm_array dst = picture.colours();
    const auto [x, y] = point(args, "at");
    const auto [width, height] = args.has("size") ? args.size("size", "") : std::pair(picture.width, picture.height);
    const jorm_site where = site(x, y, width, height);
    int64_t status;
    if (args.has("mask")) {
        Picture mask = read_mask(args.text("mask", ""), picture);
        const jorm_array by = mask.channel(0);
        status = JormFillEx(env(), 0, &dst, &by, &where, where.origin, colour);
    } else
        status = JormFill(env(), 0, &dst, &where, colour);
    if (status == JORM_EEMPTY) throw Failure("the region lies outside the picture, " + picture.shape());
    check(status, "fill");
    write_png(out, picture);
}

void run_mask(const Args &args) {
    args.want_files(3, 3);
    const std::string &out = args.output();
    Picture picture = read_picture(args.files[0]), other = read_picture(args.files[1]);
    if (other.width != picture.width || other.height != picture.height || other.channels != picture.channels)
        throw Failure("sizes differ: " + args.files[0] + " is " + picture.shape() + ", " + args.files[1] + " is " +
                      other.shape());
    Picture mask = read_mask(args.files[2], picture);
    const jorm_array dst = picture.view(), src = other.view(), by = mask.channel(0);
    const uint64_t options = args.has("invert") ? JORM_OPT_MASK_INVERT : 0;
    check(JormCopyEx(env(), options, &dst, &src, &by, nullptr, nullptr, nullptr), "mask");
    write_png(out, picture);
}

} // namespace tool
