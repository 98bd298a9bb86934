#include "tool.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace tool {
namespace {

constexpr int gap = 8, caption = 2 * glyph_height;

// The means of blocks; what is left over at the right and the lower edge is dropped.
Picture reduce(Picture &picture, int step) {
    const int across = std::min(step, picture.width), down = std::min(step, picture.height);
    Picture result(picture.width / across, picture.height / down, picture.channels);
    Picture sum(result.width, result.height, result.channels, JORM_F32);
    const jorm_array dst = result.view(), total = sum.view();
    for (int y = 0; y < down; ++y)
        for (int x = 0; x < across; ++x) {
            const jorm_array part = picture.every(step, x, y);
            check(JormAdd(env(), 0, &total, nullptr, &part, nullptr, nullptr, nullptr, 0, 0), "sheet");
        }
    const double share = 1.0 / (across * down);
    const Colour scale = {share, share, share, share}, zero = {0, 0, 0, 0};
    check(JormMulAddCC(env(), 0, &dst, &total, scale, zero, nullptr, nullptr, 0, 0), "sheet");
    return result;
}

// The upper of 16 bits, rounded.
Picture to_bytes(Picture picture) {
    if (picture.depth() == 8) return picture;
    Picture numbers = picture.as(JORM_F32);
    Picture result(picture.width, picture.height, picture.channels);
    const jorm_array dst = result.view(), src = numbers.view();
    const double share = 1.0 / 257;
    const Colour scale = {share, share, share, share}, zero = {0, 0, 0, 0};
    check(JormMulAddCC(env(), 0, &dst, &src, scale, zero, nullptr, nullptr, 0, 0), "sheet");
    return result;
}

// Small pictures get pixels of several dots. Grey goes into all three channels; an alpha channel is left out.
void place(Picture &sheet, int x, int y, Picture &picture, int dots) {
    for (int c = 0; c < 3; ++c) {
        const jorm_array src = picture.channel(picture.channels < 3 ? 0 : c);
        for (int i = 0; i < dots * dots; ++i) {
            jorm_array dst = sheet.every(dots, x + i % dots, y + i / dots);
            dst.extent[3] = 1;
            dst.loff += c;
            copy(dst, 0, 0, src);
        }
    }
}

} // namespace

void run_sheet(const Args &args) {
    const std::string out = args.output();
    const int count = int(args.files.size());
    const auto [cell_width, cell_height] = args.size("cell");
    const int square = std::min(count, int(std::ceil(std::sqrt(count))));
    const int columns = args.has("columns") ? args.number("columns", 1, 1000) : square;
    const int rows = (count + columns - 1) / columns;
    Picture sheet(gap + columns * (cell_width + gap), gap + rows * (cell_height + caption + gap), 3);
    const jorm_array whole = sheet.view();
    const Colour ground = {48, 48, 48, 255}, ink = {230, 230, 230, 255};
    fill(whole, site(0, 0, sheet.width, sheet.height), ground);

    Progress progress(args);
    for (int i = 0; i < count; ++i) {
        Picture picture = to_bytes(read_picture(args.files[i]));
        const int step =
            std::max((picture.width + cell_width - 1) / cell_width, (picture.height + cell_height - 1) / cell_height);
        const int x = gap + i % columns * (cell_width + gap), y = gap + i / columns * (cell_height + caption + gap);
        if (step > 1) picture = reduce(picture, step);
        place(sheet, x, y, picture, std::min(cell_width / picture.width, cell_height / picture.height));
        std::string name = std::filesystem::path(args.files[i]).stem().string();
        name.resize(std::min(name.size(), size_t(cell_width / glyph_width)));
        draw_text(whole, x, y + cell_height + glyph_height / 2, 1, name, ink);
        progress.step(args.files[i]);
    }
    write_picture(out, sheet);
}

} // namespace tool
