#include "tool.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tool {
namespace {

bool is_set(const Picture &picture, int x, int y, int level) {
    for (int c = 0; c < picture.colour_count(); ++c)
        if (picture.sample(x, y, c) >= level) return true;
    return false;
}

// Every pixel at or above the level; ends gets the first and the last of each row, which have the same hull.
Points set_pixels(const Picture &picture, int level, Points &ends) {
    Points all;
    for (int y = 0; y < picture.height; ++y) {
        const size_t before = all.size();
        for (int x = 0; x < picture.width; ++x)
            if (is_set(picture, x, y, level)) all.push_back({x, y});
        if (all.size() == before) continue;
        ends.push_back(all[before]);
        if (all.size() > before + 1) ends.push_back(all.back());
    }
    return all;
}

} // namespace

void run_hull(const Args &args) {
    const std::string out = args.output();
    const Picture picture = read_picture(args.files[0]);
    const int level = args.has("level") ? args.number("level", 1, picture.top()) : picture.top() / 2 + 1;
    Points ends, all = set_pixels(picture, level, ends);
    if (all.empty()) throw Failure("no sample of " + args.files[0] + " reaches " + std::to_string(level));

    Points hull(ends.size());
    hull.resize(jorm_2d_ptv_convexhull(hull.data(), ends.data(), int(ends.size())));
    jorm_2d_rect box;
    jorm_r2d_quad bounds, least;
    jorm_2d_ptv_brect(&box, hull.data(), int(hull.size()));
    jorm_2d_ptv_bquad_$r(&bounds, hull.data(), int(hull.size()));
    jorm_2d_ptv_minbquad_$r(&least, hull.data(), int(hull.size()));
    const jorm_r2d_ell ellipse = ellipse_of(all);
    std::vector<jorm_r2d_pt> corners(hull.size());
    jorm_r2d_ptv_cast_$i(corners.data(), hull.data(), int(hull.size()));

    // The set as grey on black, the figures in colours over it.
    Picture drawing(picture.width, picture.height, 3);
    const jorm_array whole = drawing.view();
    const Colour ground = {0, 0, 0, 0}, grey = {96, 96, 96, 0}, blue = {64, 128, 255, 0}, yellow = {255, 224, 0, 0},
                 green = {0, 208, 64, 0}, red = {255, 64, 64, 0};
    fill(whole, site(0, 0, drawing.width, drawing.height), ground);
    for (size_t i = 0, next; i < all.size(); i = next) {
        for (next = i + 1; next < all.size() && all[next].y == all[i].y && all[next].x == all[next - 1].x + 1;) ++next;
        fill(whole, site(all[i].x, all[i].y, int(next - i), 1), grey);
    }
    const Pen pen(drawing);
    const std::vector<jorm_r2d_pt> curve = outline_of(ellipse);
    pen.outline(bounds.pt, 4, blue);
    pen.outline(least.pt, 4, yellow);
    pen.outline(curve.data(), int(curve.size()), green);
    pen.outline(corners.data(), int(corners.size()), red);
    write_picture(out, drawing);
    std::FILE *text = args.report();

    std::fprintf(text, "%zu pixels\n", all.size());
    std::fprintf(text, "hull (red): %zu points, area %g\n", hull.size(),
                 jorm_2d_poly_area(hull.data(), int(hull.size())));
    std::fprintf(text, "bounding box (blue): %d,%d %dx%d\n", box.x, box.y, box.width, box.height);
    std::fprintf(text, "least rectangle (yellow): %g x %g\n", jorm_r2d_pt_dist(&least.pt[0], &least.pt[3]),
                 jorm_r2d_pt_dist(&least.pt[0], &least.pt[1]));
    std::fprintf(text, "ellipse (green): centre %g,%g, semi-axes %g and %g, angle %g\n", ellipse.centre.x,
                 ellipse.centre.y, ellipse.semi1, ellipse.semi2, ellipse.angle);
}

} // namespace tool
