// Samples carried from one range of values to another.
#include "tool.hpp"

#include <algorithm>

namespace tool {
namespace {

// The least and the largest sample of all colours.
std::pair<double, double> own_range(Picture &picture) {
    Picture exact = picture.as(picture.exact_type());
    const jorm_array a = exact.colours();
    jorm_minmax extrema = {};
    extrema.request = JORM_WANT_MIN | JORM_WANT_MAX;
    check(JormMinmax(env(), 0, &a, nullptr, &extrema), "convert");
    std::pair<double, double> range = {extrema.min[0].i, extrema.max[0].i};
    for (uint32_t c = 1; c < a.extent[3]; ++c) {
        range.first = std::min(range.first, double(extrema.min[c].i));
        range.second = std::max(range.second, double(extrema.max[c].i));
    }
    return range;
}

// Alpha goes from depth to depth.
void keep_alpha(const Picture &picture, int top, double *gain, double *offset) {
    if (!picture.has_alpha()) return;
    gain[picture.channels - 1] = double(top) / picture.top();
    offset[picture.channels - 1] = 0;
}

// By the library's conversion from range to range.
Picture refit(Picture &picture, uint32_t type, const std::pair<double, double> &to,
              const std::pair<double, double> *from) {
    Colour gain = {1, 1, 1, 1}, offset = {0, 0, 0, 0};
    const int top = type == JORM_U8 ? 255 : 65535;
    keep_alpha(picture, top, gain, offset);
    Picture exact = picture.as(picture.exact_type());
    Picture result = picture.scaled(type == JORM_U8 ? JORM_U8 : JORM_S32, gain, offset);
    const jorm_array src = exact.colours(), dst = result.colours();
    vrng to_ranges[4], from_ranges[4];
    for (int c = 0; c < 4; ++c) {
        to_ranges[c] = {to.first, to.second};
        if (from) from_ranges[c] = {from->first, from->second};
    }
    check(JormVConvert(env(), 0, &dst, &src, nullptr, nullptr, to_ranges, from ? from_ranges : nullptr), "convert");
    return result.as(type);
}

Picture spread(Picture &picture, uint32_t type, const std::pair<double, double> &to,
               const std::pair<double, double> &from) {
    const int top = type == JORM_U8 ? 255 : 65535;
    const double slope = from.first < from.second ? (to.second - to.first) / (from.second - from.first) : 0;
    Colour gain, offset, low, high;
    std::fill(gain, gain + 4, slope);
    std::fill(offset, offset + 4, to.first - slope * from.first);
    std::fill(low, low + 4, to.first);
    std::fill(high, high + 4, to.second);
    keep_alpha(picture, top, gain, offset);
    Picture result = picture.scaled(type, gain, offset);
    result.limit(low, high);
    return result;
}

} // namespace

void run_convert(const Args &args) {
    const bool by_scale = args.has("scale") || args.has("offset");
    if (by_scale && (args.has("to") || args.has("from") || args.has("refit")))
        throw Failure("--scale and --offset do not go with --from, --to and --refit");
    for_each_picture(args, [&](Picture &picture) {
        const bool narrow = (args.has("depth") ? args.text("depth") : std::to_string(picture.depth())) == "8";
        const uint32_t type = narrow ? JORM_U8 : JORM_U16;
        const int top = narrow ? 255 : 65535;
        if (by_scale) {
            Colour gain, offset;
            read_factors(args, "scale", picture, gain);
            read_factors(args, "offset", picture, offset);
            keep_alpha(picture, top, gain, offset);
            picture = picture.scaled(type, gain, offset);
            return;
        }
        const auto to = args.has("to") ? args.range("to") : std::pair(0.0, double(top));
        if (to.first < 0 || to.second > top)
            throw Failure("--to reaches beyond the values from 0 to " + std::to_string(top));
        const auto from = args.has("from") ? args.range("from") : own_range(picture);
        picture = args.has("refit") ? refit(picture, type, to, args.has("from") ? &from : nullptr)
                                    : spread(picture, type, to, from);
    });
}

void run_gain(const Args &args) {
    for_each_picture(args, [&](Picture &picture) {
        Colour gain, offset;
        read_factors(args, "scale", picture, gain);
        read_factors(args, "offset", picture, offset);
        keep_alpha(picture, picture.top(), gain, offset);
        picture = picture.scaled(picture.eltype, gain, offset);
    });
}

void run_clamp(const Args &args) {
    for_each_picture(args, [&](Picture &picture) {
        Colour low, high;
        std::fill(high, high + 4, picture.top());
        read_colour(args, "low", picture, low);
        if (args.has("high")) read_colour(args, "high", picture, high);
        for (int c = 0; c < picture.colour_count(); ++c)
            if (low[c] > high[c]) throw Failure("--low is above --high");
        picture.limit(low, high);
    });
}

} // namespace tool
