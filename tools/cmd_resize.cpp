// Pictures at other sizes.
#include "tool.hpp"

#include <cmath>
#include <sstream>

namespace tool {
namespace {

// "F" for both sides or "ACROSS,DOWN".
std::pair<double, double> read_factors(const Args &args) {
    std::istringstream in(args.text("factor", ""));
    double across = 0, down = 0;
    char comma = 0;
    in >> across;
    down = across;
    if (in && !in.eof()) in >> comma >> down;
    if (!in || !in.eof() || (comma != 0 && comma != ',') || across == 0 || down == 0)
        throw Failure("--factor wants F or ACROSS,DOWN, none of them 0");
    return {across, down};
}

int scaled(int size, double factor) {
    const double result = std::fmax(1, std::nearbyint(size * std::fabs(factor)));
    if (!(result <= 32767)) throw Failure("--factor makes the picture larger than 32767");
    return int(result);
}

} // namespace

void run_resize(const Args &args) {
    args.want_files(1, 1);
    const std::string &out = args.output();
    if (args.has("size") == args.has("factor")) throw Failure("wants either --size or --factor");
    Picture picture = read_picture(args.files[0]);
    double factors[4] = {};
    std::pair<int, int> size;
    if (args.has("size"))
        size = args.size("size", "");
    else {
        const auto [across, down] = read_factors(args);
        size = {scaled(picture.width, across), scaled(picture.height, down)};
        // From size to size, so that every pixel of the result has its source.
        factors[1] = std::copysign(double(size.second) / picture.height, down);
        factors[2] = std::copysign(double(size.first) / picture.width, across);
    }
    Picture result(size.first, size.second, picture.channels);
    const jorm_array dst = result.view(), src = picture.view();
    check(JormResize(env(), 0, &dst, &src, nullptr, nullptr, factors), "resize");
    write_png(out, result);
}

} // namespace tool
