// Pictures at other sizes.
#include "tool.hpp"

#include <cmath>

namespace tool {
namespace {

// "F" for both sides or "ACROSS,DOWN".
std::pair<double, double> read_scale(const Args &args) {
    const std::vector<double> factors = args.reals("factor");
    if (factors.size() > 2 || factors.front() == 0 || factors.back() == 0)
        throw Failure("--factor wants F or ACROSS,DOWN, none of them 0");
    return {factors.front(), factors.back()};
}

int scaled(int size, double factor) {
    const double result = std::fmax(1, std::nearbyint(size * std::fabs(factor)));
    if (!(result <= 32767)) throw Failure("--factor makes the picture larger than 32767");
    return int(result);
}

} // namespace

void run_resize(const Args &args) {
    if (args.has("size") == args.has("factor")) throw Failure("wants either --size or --factor");
    for_each_picture(args, [&](Picture &picture) {
        double factors[4] = {};
        std::pair<int, int> size;
        if (args.has("size"))
            size = args.size("size");
        else {
            const auto [across, down] = read_scale(args);
            size = {scaled(picture.width, across), scaled(picture.height, down)};
            // From size to size, so that every pixel of the result has its source.
            factors[1] = std::copysign(double(size.second) / picture.height, down);
            factors[2] = std::copysign(double(size.first) / picture.width, across);
        }
        Picture result(size.first, size.second, picture.channels, picture.eltype);
        const jorm_array dst = result.view(), src = picture.view();
        check(JormResize(env(), 0, &dst, &src, nullptr, nullptr, factors), "resize");
        picture = result;
    });
}

} // namespace tool
