#include "tool.hpp"

#include <algorithm>
#include <cmath>
#include <filesystem>

namespace tool {
namespace {

constexpr int gap = 8, caption = 2 * glyph_height;

// Grey goes into all three channels; an alpha channel is left out.
void place(Picture &sheet, int x, int y, Picture &picture, int step) {
    const jorm_array reduced = picture.every(step);
    for (int c = 0; c < 3; ++c) {
        jorm_array src = reduced;
        src.extent[3] = 1;
        src.loff = picture.channels < 3 ? 0 : c;
        copy(sheet.channel(c), x, y, src);
    }
}

} // namespace

void run_sheet(const Args &args) {
    args.want_files(1);
    const std::string &out = args.output();
    const int count = int(args.files.size());
    const auto [cell_width, cell_height] = args.size("cell", "320x240");
    const int columns = args.number("columns", std::min(count, int(std::ceil(std::sqrt(count)))), 1, 1000);
    const int rows = (count + columns - 1) / columns;
    Picture sheet(gap + columns * (cell_width + gap), gap + rows * (cell_height + caption + gap), 3);
    const jorm_array whole = sheet.view();
    const Colour ground = {48, 48, 48, 255}, ink = {230, 230, 230, 255};
    fill(whole, site(0, 0, sheet.width, sheet.height), ground);

    Progress progress(args.files.size());
    for (int i = 0; i < count; ++i) {
        Picture picture = read_picture(args.files[i]);
        const int step =
            std::max((picture.width + cell_width - 1) / cell_width, (picture.height + cell_height - 1) / cell_height);
        const int x = gap + i % columns * (cell_width + gap), y = gap + i / columns * (cell_height + caption + gap);
        place(sheet, x, y, picture, step);
        std::string name = std::filesystem::path(args.files[i]).stem().string();
        name.resize(std::min(name.size(), size_t(cell_width / glyph_width)));
        draw_text(whole, x, y + cell_height + glyph_height / 2, 1, name, ink);
        progress.step(args.files[i]);
    }
    write_png(out, sheet);
}

} // namespace tool
