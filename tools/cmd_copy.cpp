// Parts of pictures: frames around them, cuts, fills, and one picture laid over another through a mask.
#include "tool.hpp"

namespace tool {
namespace {

// --mode and --colour, of which the latter is about const only.
jorm_border read_border(const Args &args, const Picture &picture) {
    if (args.has("colour") && args.has("mode") && args.text("mode") != "const")
        throw Failure("--colour goes with --mode const only");
    const std::string wanted = args.has("colour") ? "const" : args.text("mode");
    jorm_border border = {};
    for (border.mode = JORM_BORDER_CONST; border.mode < JORM_BORDER_REFLECT101; ++border.mode) {
        const std::string full = jorm_border_str(border.mode);
        if (full.substr(0, full.find('-')) == wanted) break;
    }
    read_colour(args, "colour", picture, border.values);
    return border;
}

// The part of the picture that begins at x, y, beyond its edges as the border has it.
Picture block(Picture &picture, int x, int y, int width, int height, const jorm_border &border) {
    Picture result(width, height, picture.channels, picture.eltype);
    const jorm_array dst = result.view(), src = picture.view();
    const int32_t at[] = {0, y, x, 0};
    const int64_t status = JormCopyMkb(env(), 0, &dst, &src, nullptr, at, &border);
    if (status == JORM_EEMPTY) throw Failure("nothing of the picture, " + picture.shape() + ", lies there");
    check(status, "copy");
    return result;
}

} // namespace

void run_border(const Args &args) {
    const int margin = args.number("margin", 0, 16384);
    for_each_picture(args, [&](Picture &picture) {
        const jorm_border border = read_border(args, picture);
        picture = block(picture, -margin, -margin, picture.width + 2 * margin, picture.height + 2 * margin, border);
    });
}

void run_crop(const Args &args) {
    const auto at = args.point("at"), size = args.size("size");
    for_each_picture(args, [&](Picture &picture) {
        picture = block(picture, at.first, at.second, size.first, size.second, read_border(args, picture));
    });
}

void run_fill(const Args &args) {
    for_each_picture(args, [&](Picture &picture) {
        Colour colour;
        read_colour(args, "colour", picture, colour);
        const bool all = args.reals("colour").size() == size_t(picture.channels); // a value for alpha, too
        const jorm_array dst = all ? picture.view() : picture.colours();
        const auto [x, y] = args.point("at");
        const auto [width, height] = args.has("size") ? args.size("size") : std::pair(picture.width, picture.height);
        const jorm_site where = site(x, y, width, height);
        int64_t status;
        if (args.has("mask")) {
            Picture mask = read_mask(args.text("mask"), picture);
            const jorm_array by = mask.view();
            status = JormFillEx(env(), 0, &dst, &by, &where, where.origin, colour);
        } else
            status = JormFill(env(), 0, &dst, &where, colour);
        if (status == JORM_EEMPTY) throw Failure("the region lies outside the picture, " + picture.shape());
        check(status, "fill");
    });
}

void run_mask(const Args &args) {
    const std::string out = args.output();
    Picture picture = read_picture(args.files[0]), other = read_same(args.files[1], picture, args.files[0]);
    Picture mask = read_mask(args.files[2], picture, args.has("invert"));
    const bool all = picture.channels == other.channels;
    const jorm_array dst = all ? picture.view() : picture.colours(), src = all ? other.view() : other.colours(),
                     by = mask.view();
    const uint64_t options = args.has("invert") ? JORM_OPT_MASK_INVERT : 0;
    check(JormCopyEx(env(), options, &dst, &src, &by, nullptr, nullptr, nullptr), "mask");
    write_picture(out, picture);
}

} // namespace tool
