#include "tool.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tool {
namespace {

using Points = std::vector<jorm_2d_pt>;

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

class Pen {
public:
    explicit Pen(Picture &picture)
        : array_(picture.view()), width_(1 + std::min(picture.width, picture.height) / 400) {}

    // The closed outline through n points.
    void outline(const jorm_r2d_pt *points, int n, const double *colour) const {
        for (int i = 0; i < n; ++i) line(points[i], points[(i + 1) % n], colour);
    }

private:
    void line(const jorm_r2d_pt &a, const jorm_r2d_pt &b, const double *colour) const {
        const int steps = 1 + int(std::max(std::fabs(b.x - a.x), std::fabs(b.y - a.y)));
        for (int i = 0; i <= steps; ++i) {
            const double t = double(i) / steps;
            const int x = int(std::lround(a.x + t * (b.x - a.x))), y = int(std::lround(a.y + t * (b.y - a.y)));
            fill(array_, site(x - width_ / 2, y - width_ / 2, width_, width_), colour);
        }
    }

    jorm_array array_;
    int width_;
};

std::vector<jorm_r2d_pt> outline_of(const jorm_r2d_ell &e) {
    std::vector<jorm_r2d_pt> outline(256);
    const double c = std::cos(e.angle), s = std::sin(e.angle);
    for (size_t i = 0; i < outline.size(); ++i) {
        const double t = 2 * M_PI * double(i) / double(outline.size());
        const double u = e.semi1 * std::cos(t), v = e.semi2 * std::sin(t);
        outline[i] = {e.centre.x + u * c + v * s, e.centre.y - u * s + v * c};
    }
    return outline;
}

jorm_r2d_ell ellipse_of(const Points &all) {
    jorm_r2d_pt centre;
    jorm_r2d_moment2 moments;
    jorm_r2d_ell e;
    const int n = int(all.size());
    __jorm_r2d_ellipse__$moment2$c(&e, jorm_2d_ptv_centroid(&centre, all.data(), n),
                                   jorm_2d_ptv_moment2_$c(&moments, all.data(), n), 2);
    if (!(e.semi1 >= 0)) e.semi1 = 0; // pixels on a line: the eigenvalue may round to below 0
    return e;
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
