// Test pictures. The tool computes a profile or a place; pixels are made by the library from those.
#include "tool.hpp"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace tool {
namespace {

struct Random { // splitmix64: the same picture everywhere
    uint64_t state;
    uint64_t next() {
        uint64_t z = (state += 0x9E3779B97F4A7C15u);
        z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9u;
        z = (z ^ z >> 27) * 0x94D049BB133111EBu;
        return z ^ z >> 31;
    }
    double in(double low, double high) { return low + (high - low) * double(next() >> 11) * 0x1p-53; }
    int below(int n) { return int(next() % uint64_t(n)); }
    void colour(double *c, double low, double high) {
        for (int i = 0; i < 4; ++i) c[i] = std::floor(in(low, high));
    }
};

// A row of samples f(x), the same in every channel.
template <class F> Picture profile(int width, int channels, F f) {
    Picture row(width, 1, channels, JORM_F32);
    for (int x = 0; x < width; ++x)
        for (int c = 0; c < channels; ++c) {
            const float value = float(f(x));
            std::memcpy(&row.bytes[4 * (size_t(x) * channels + c)], &value, 4);
        }
    return row;
}

// Values from 0 to 1 become 0 to 255.
void to_bytes(Picture &dst, Picture &src) {
    const Colour scale = {255, 255, 255, 255}, zero = {0, 0, 0, 0};
    const jorm_array d = dst.view(), s = src.view();
    check(JormMulAddCC(env(), 0, &d, &s, scale, zero, nullptr, nullptr, 0, 0), "paint");
}

void paint_gradient(Picture &picture, Random &random) {
    Picture light(picture.width, picture.height, picture.channels, JORM_F32);
    Picture ramp = profile(picture.width, picture.channels, [&](int x) { return (x + 0.5) / picture.width; });
    const jorm_array across = ramp.view();
    Colour corner[4]; // of the channels: left top, right top, left bottom, right bottom
    for (auto &c : corner)
        for (double &value : c) value = random.in(0, 1);
    for (int y = 0; y < picture.height; ++y) {
        const double t = (y + 0.5) / picture.height;
        Colour left, rise;
        for (int c = 0; c < 4; ++c) {
            left[c] = corner[0][c] * (1 - t) + corner[2][c] * t;
            rise[c] = corner[1][c] * (1 - t) + corner[3][c] * t - left[c];
        }
        const jorm_array row = light.row(y);
        check(JormMulAddCC(env(), 0, &row, &across, rise, left, nullptr, nullptr, 0, 0), "paint");
    }
    to_bytes(picture, light);
}

// Gaussian bumps and dents, summed up and squeezed into the range by a sigmoid.
void paint_blobs(Picture &picture, Random &random) {
    const int w = picture.width, h = picture.height;
    Picture light(w, h, picture.channels, JORM_F32);
    const double unit = std::sqrt(double(w) * h);
    for (int blob = 0; blob < 48; ++blob) {
        const double x0 = random.in(0, w), y0 = random.in(0, h);
        const double sx = unit * random.in(0.01, 0.08), sy = unit * random.in(0.01, 0.08);
        Colour strength;
        for (double &s : strength) s = random.in(-2.5, 2.5);
        Picture bell =
            profile(w, picture.channels, [&](int x) { return std::exp(-0.5 * (x - x0) * (x - x0) / sx / sx); });
        const jorm_array across = bell.view();
        const int top = std::max(0, int(y0 - 4 * sy)), bottom = std::min(h - 1, int(y0 + 4 * sy));
        for (int y = top; y <= bottom; ++y) {
            Colour height;
            for (int c = 0; c < 4; ++c) height[c] = strength[c] * std::exp(-0.5 * (y - y0) * (y - y0) / sy / sy);
            const jorm_array row = light.row(y);
            check(JormMulAddC(env(), 0, &row, &across, &row, height, nullptr, nullptr, nullptr, 0, 0), "paint");
        }
    }
    const jorm_array a = light.view();
    const Colour alpha = {1, 1, 1, 1};
    check(JormSigmoidAlpha(env(), 0, &a, nullptr, alpha, nullptr, nullptr, 0, 0), "paint");
    to_bytes(picture, light);
}

void paint_shapes(Picture &picture, Random &random) {
    const int w = picture.width, h = picture.height, unit = std::max(4, std::min(w, h));
    const jorm_array a = picture.view();
    Colour colour;
    random.colour(colour, 16, 64);
    fill(a, site(0, 0, w, h), colour);
    random.colour(colour, 72, 120);
    const int tile = std::max(1, unit / 8);
    for (int y = 0; y < h; y += tile) // a chequerboard behind the left half
        for (int x = y / tile % 2 * tile; x < w / 2; x += 2 * tile)
            fill(a, site(x, y, std::min(tile, w / 2 - x), tile), colour);
    for (int i = 0; i < 24; ++i) {
        const int x = random.below(w), y = random.below(h), size = unit / 20 + random.below(unit / 4);
        random.colour(colour, 0, 256);
        switch (i % 4) {
        case 0:
            fill(a, site(x, y, size, size * 2 / 3 + 1), colour);
            break;
        case 1:
            fill_disk(a, x, y, size / 2.0, colour);
            break;
        case 2: // a triangle, row by row
            for (int row = 0; row < size; ++row) fill(a, site(x - row / 2, y + row, row + 1, 1), colour);
            break;
        default: // a ladder of bars that get thinner
            for (int at = 0, bar = std::max(1, size / 6); at < size && bar > 0; at += 2 * bar, bar = bar * 3 / 4)
                fill(a, site(x + at, y, bar, size), colour);
        }
    }
}

void paint_text(Picture &picture, Random &random) {
    static const char *const words[] = {"pixels", "lie",    "in",    "rows", "planes", "and",  "channels",
                                        "a",      "stride", "leads", "on",   "from",   "each", "to",
                                        "the",    "next",   "1024",  "x",    "768"};
    const jorm_array a = picture.view();
    const Colour paper = {240, 236, 224, 255}, ink = {24, 24, 40, 255};
    fill(a, site(0, 0, picture.width, picture.height), paper);
    int scale = 4;
    for (int y = scale * 2; y<picture.height; y += glyph_height * scale, scale = scale> 1 ? scale - 1 : 4)
        for (int x = scale * 2; x < picture.width;) {
            const std::string word = words[random.below(int(std::size(words)))];
            draw_text(a, x, y, scale, word, ink);
            x += int(word.size() + 1) * glyph_width * scale;
        }
}

} // namespace

void run_paint(const Args &args) {
    static const struct {
        const char *name;
        void (*paint)(Picture &, Random &);
    } kinds[] = {{"gradient", paint_gradient}, {"blobs", paint_blobs}, {"shapes", paint_shapes}, {"text", paint_text}};
    const std::string out = args.output();
    const auto [width, height] = args.size("size");
    Random random{uint64_t(args.number("seed", 0, INT32_MAX))};
    const int channels = args.number("channels", 1, 3);
    for (const auto &kind : kinds)
        if (args.files[0] == kind.name) {
            Picture picture(width, height, channels);
            kind.paint(picture, random);
            write_picture(out, picture);
            return;
        }
    throw Failure("cannot paint '" + args.files[0] + "': gradient, blobs, shapes or text");
}

} // namespace tool
