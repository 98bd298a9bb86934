// Neighbourhood filters: means, isolated pixels, morphology.
#include "tool.hpp"

#include <algorithm>
#include <cmath>

namespace tool {
namespace {

// Runs the filter in place on each colour; alpha stays as it is.
void filter_colours(Picture &picture, const std::function<int64_t(const jorm_array &, int)> &filter) {
    Picture exact = picture.as(picture.exact_type());
    const jorm_array whole = exact.view();
    for (int c = 0; c < picture.colour_count(); ++c) {
        jorm_array colour;
        check(jorm_array_channel(&colour, &whole, c), "filter");
        check(filter(colour, c), "filter");
    }
    picture = exact.as(picture.eltype);
}

// The library takes 1 by 1 for its own window, or for a copy.
void want_window(const char *option, int width, int height) {
    if (width == 1 && height == 1) throw Failure(std::string("--") + option + " wants more than one pixel");
}

jorm_seshape read_window(const Args &args, const char *option = "size") {
    const auto [width, height] = args.size(option);
    want_window(option, width, height);
    jorm_seshape window;
    return *__jorm_seshape__$g2(&window, height, width);
}

struct Gaussian {
    double sigmas[2] = {}; // down, across; 0: by the window
    jorm_seshape window;
};

Gaussian read_gaussian(const Args &args) {
    Gaussian g;
    __jorm_seshape__$(&g.window);
    if (args.has("sigma")) {
        const std::vector<double> sigmas = args.reals("sigma");
        const auto fits = [](double s) { return s > 0 && s <= 5000; };
        if (sigmas.size() > 2 || !fits(sigmas.front()) || !fits(sigmas.back()))
            throw Failure("--sigma wants S or ACROSS,DOWN, above 0 and up to 5000");
        g.sigmas[0] = sigmas.back();
        g.sigmas[1] = sigmas.front();
        const auto reach = [](double s) { return 1 + 2 * int(std::ceil(3 * s)); };
        __jorm_seshape__$g2(&g.window, reach(g.sigmas[0]), reach(g.sigmas[1]));
    }
    if (args.has("size")) g.window = read_window(args);
    return g;
}

// White where a pixel's centre lies in the ellipse that fits into the size.
Picture ellipse(int width, int height) {
    Picture mask(width, height, 1);
    const int64_t w = width, h = height;
    for (int64_t y = 0; y < h; ++y)
        for (int64_t x = 0; x < w; ++x) {
            const int64_t u = (2 * x + 1 - w) * h, v = (2 * y + 1 - h) * w;
            if (u * u + v * v <= w * h * w * h) mask.bytes[size_t(y * w + x)] = 255;
        }
    return mask;
}

Picture cross(int width, int height) {
    Picture mask(width, height, 1);
    const Colour white = {255};
    fill(mask.view(), site(width / 2, 0, 1, height), white);
    fill(mask.view(), site(0, height / 2, width, 1), white);
    return mask;
}

Picture rectangle(int width, int height) {
    Picture mask(width, height, 1);
    std::fill(mask.bytes.begin(), mask.bytes.end(), uint8_t(255));
    return mask;
}

Picture read_element(const Args &args) {
    if (!args.has("mask")) {
        const auto [width, height] = args.size("size");
        want_window("size", width, height);
        const std::string shape = args.text("shape");
        return (shape == "ellipse" ? ellipse : shape == "cross" ? cross : rectangle)(width, height);
    }
    if (args.has("size") || args.has("shape")) throw Failure("--mask does not go with --size and --shape");
    Picture picture = read_picture(args.text("mask")), mask = mask_of(picture, true);
    want_window("mask", mask.width, mask.height);
    if (std::find(mask.bytes.begin(), mask.bytes.end(), 255) == mask.bytes.end())
        throw Failure("no pixel of " + args.text("mask") + " is white");
    return mask;
}

void morph(const Args &args, uint32_t op) {
    Picture mask = read_element(args);
    jorm_strel element = {{}, mask.view()};
    jorm_strel_rstanchor(&element);
    for_each_picture(args, [&](Picture &picture) {
        filter_colours(picture, [&](const jorm_array &colour, int) {
            return JormMorphop(env(), 0, &colour, &colour, nullptr, nullptr, op, &element);
        });
    });
}

} // namespace

void filter_window(const Args &args, const char *option, uint32_t op) {
    const jorm_seshape window = read_window(args, option);
    for_each_picture(args, [&](Picture &picture) {
        filter_colours(picture, [&](const jorm_array &colour, int) {
            return JormFilter(env(), 0, &colour, &colour, nullptr, nullptr, op, &window);
        });
    });
}

void run_box(const Args &args) { filter_window(args, "size", JORM_FILTER_BOX); }

void run_gauss(const Args &args) {
    const Gaussian g = read_gaussian(args);
    for_each_picture(args, [&](Picture &picture) {
        filter_colours(picture, [&](const jorm_array &colour, int) {
            return JormGaussianFilter(env(), 0, &colour, &colour, nullptr, nullptr, &g.window, g.sigmas);
        });
    });
}

void run_firefly(const Args &args) {
    const Gaussian g = read_gaussian(args);
    for_each_picture(args, [&](Picture &picture) {
        Colour thresholds;
        if (args.has("threshold")) read_colour(args, "threshold", picture, thresholds);
        filter_colours(picture, [&](const jorm_array &colour, int c) {
            return JormFirefly(env(), 0, &colour, &colour, nullptr, nullptr, &g.window, g.sigmas,
                               args.has("threshold") ? &thresholds[c] : nullptr);
        });
    });
}

void run_erode(const Args &args) { morph(args, JORM_MORPH_ERODE); }
void run_dilate(const Args &args) { morph(args, JORM_MORPH_DILATE); }
void run_open(const Args &args) { morph(args, JORM_MORPH_OPEN); }
void run_close(const Args &args) { morph(args, JORM_MORPH_CLOSE); }
void run_tophat(const Args &args) { morph(args, JORM_MORPH_TOPHAT); }
void run_bothat(const Args &args) { morph(args, JORM_MORPH_BOTHAT); }

} // namespace tool
