// Figures of sets of pixels, and their outlines.
#include "tool.hpp"

#include <algorithm>
#include <cmath>

namespace tool {

Pen::Pen(Picture &picture) : array_(picture.view()), width_(1 + std::min(picture.width, picture.height) / 400) {}

void Pen::outline(const jorm_r2d_pt *points, int n, const double *colour) const {
    for (int i = 0; i < n; ++i) line(points[i], points[(i + 1) % n], colour);
}

void Pen::line(const jorm_r2d_pt &a, const jorm_r2d_pt &b, const double *colour) const {
    const int steps = 1 + int(std::max(std::fabs(b.x - a.x), std::fabs(b.y - a.y)));
    for (int i = 0; i <= steps; ++i) {
        const double t = double(i) / steps;
        const int x = int(std::lround(a.x + t * (b.x - a.x))), y = int(std::lround(a.y + t * (b.y - a.y)));
        fill(array_, site(x - width_ / 2, y - width_ / 2, width_, width_), colour);
    }
}

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

} // namespace tool
