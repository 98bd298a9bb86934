// Masks of pictures: where a relation holds, where samples lie above a level.
#include "tool.hpp"

#include <cmath>

namespace tool {
namespace {

uint32_t relation(const Args &args) {
    for (uint32_t op = JORM_CMP_EQUAL; op <= JORM_CMP_GREATER_EQUAL; ++op) {
        const std::string full = jorm_cmpop_str(op);
        if (full.substr(0, full.rfind('-')) == args.text("relation")) return op;
    }
    throw Failure("the library has no relation " + args.text("relation"));
}

// The record of a method for pictures of this depth, all values of which are looked at.
jorm_thhmethod method_for(const Picture &picture, uint32_t method) {
    jorm_thhmethod m = {};
    m.word = method;
    if (method != JORM_THRESHOLD_OTSU || picture.eltype == JORM_U8) return m;
    m.word |= JORM_THRESHOLD_OWN_RANGES;
    for (int c = 0; c < 4; ++c) m.ranges[c] = {0, double(picture.top())}, m.bins[c] = uint32_t(picture.top()) + 1;
    return m;
}

void threshold_by(Picture &picture, uint32_t method) {
    const double unit = 1.0 / picture.top();
    const Colour gain = {unit, unit, unit, unit}, none = {};
    const bool smooths = method != JORM_THRESHOLD_OTSU; // then 16 bits go as single precision from 0 to 1
    Picture exact =
        smooths && picture.eltype != JORM_U8 ? picture.scaled(JORM_F32, gain, none) : picture.as(picture.exact_type());
    Picture result(picture.width, picture.height, picture.colour_count());
    const jorm_array src = exact.colours(), dst = result.view();
    const jorm_thhmethod m = method_for(picture, method);
    check(JormThreshold(env(), 0, &dst, &src, nullptr, nullptr, &m, nullptr, 0), "threshold");
    picture = result;
}

// Above the mean of the 5 by 5 window by more than an offset.
void threshold_adaptive(Picture &picture, double offset) {
    double pairs[8];
    for (int c = 0; c < 4; ++c) pairs[2 * c] = offset, pairs[2 * c + 1] = NAN;
    Picture exact = picture.as(picture.exact_type()), result(picture.width, picture.height, picture.colour_count());
    const jorm_array src = exact.colours(), dst = result.view();
    check(JormThreshold(env(), 0, &dst, &src, nullptr, nullptr, nullptr, pairs, 1), "threshold");
    picture = result;
}

} // namespace

void run_compare(const Args &args) {
    if ((args.files.size() == 1) != args.has("to")) throw Failure("wants another picture or --to");
    const std::string out = args.output();
    const uint32_t op = relation(args);
    Picture picture = read_picture(args.files[0]), exact = picture.as(picture.exact_type());
    Picture mask(picture.width, picture.height, picture.colour_count());
    const jorm_array src = exact.colours(), dst = mask.view();
    if (args.has("to")) {
        Colour values;
        read_factors(args, "to", picture, values);
        check(JormCompareC(env(), 0, &dst, &src, values, nullptr, nullptr, op), "compare");
    } else {
        Picture other = read_same(args.files[1], picture, args.files[0]).as(exact.eltype);
        const jorm_array src2 = other.colours();
        check(JormCompare(env(), 0, &dst, &src, &src2, nullptr, nullptr, nullptr, op), "compare");
    }
    write_picture(out, mask);
}

std::vector<double> otsu_levels(Picture &picture) {
    Picture exact = picture.as(picture.exact_type());
    const jorm_array src = exact.colours();
    jorm_thhmethod m = method_for(picture, JORM_THRESHOLD_OTSU);
    double thresholds[4] = {};
    const bool own = (m.word & JORM_THRESHOLD_OWN_RANGES) != 0;
    check(JormComputeThresholdByOtsu(env(), 0, &src, nullptr, thresholds, own ? m.ranges : nullptr,
                                     own ? m.bins : nullptr),
          "otsu");
    std::vector<double> levels(thresholds, thresholds + picture.colour_count());
    for (double &level : levels) level = std::floor(level);
    return levels;
}

void run_otsu(const Args &args) {
    const bool json = args.has("json");
    std::string all;
    for (const std::string &path : args.files) {
        Picture picture = read_picture(path);
        std::string list;
        for (const double level : otsu_levels(picture))
            list.append(list.empty() ? "" : json ? ", " : ",").append(std::to_string(int(level)));
        if (json)
            all += (all.empty() ? "[" : ",\n ") + ("{\"picture\": " + quoted(path)) +
                   ", \"depth\": " + std::to_string(picture.depth()) + ", \"levels\": [" + list + "]}";
        else
            all.append(args.files.size() > 1 ? path + ": " : "").append(list).append("\n");
    }
    std::printf("%s%s", all.c_str(), json ? "]\n" : "");
}

// Samples are whole, so a level may be cut to the whole number below it.
void run_threshold(const Args &args) {
    const std::string method = args.text("method");
    const bool wants_level = method == "level", adaptive = method == "adaptive";
    if (args.has("level") && !wants_level) throw Failure("--level does not go with --method " + method);
    if (args.has("offset") && !adaptive) throw Failure("--offset goes with --method adaptive only");
    if (wants_level && !args.has("level"))
        throw Failure("--level is required, or a --method that finds one: otsu, usto, blur, adaptive");
    if (adaptive) {
        const double offset = args.real("offset");
        return for_each_picture(args, [&](Picture &picture) { threshold_adaptive(picture, offset); });
    }
    if (!wants_level) {
        const uint32_t code = method == "otsu"   ? JORM_THRESHOLD_OTSU
                              : method == "usto" ? JORM_THRESHOLD_USTO
                                                 : JORM_THRESHOLD_BLUR;
        return for_each_picture(args, [&](Picture &picture) { threshold_by(picture, code); });
    }
    const std::vector<double> levels = args.reals("level");
    if (levels.size() > 2) throw Failure("--level wants 1 or 2 numbers");
    for_each_picture(args, [&](Picture &picture) {
        Colour lower, upper, white = {255, 255, 255, 255}, black = {};
        for (const double level : levels)
            if (!(level >= 0 && level <= picture.top()))
                throw Failure("--level wants numbers from 0 to " + std::to_string(picture.top()));
        for (int c = 0; c < 4; ++c) {
            lower[c] = std::floor(levels.front());
            upper[c] = std::floor(levels.back());
        }
        Picture exact = picture.as(picture.exact_type());
        const jorm_array src = exact.colours();
        Picture above(picture.width, picture.height, picture.colour_count()), below = above;
        const jorm_array dst = above.view(), not_above = below.view();
        check(JormECompareC(env(), 0, &dst, &src, lower, nullptr, nullptr, JORM_CMP_GREATER, white, black),
              "threshold");
        if (levels.size() == 2) {
            check(JormECompareC(env(), 0, &not_above, &src, upper, nullptr, nullptr, JORM_CMP_LESS_EQUAL, white, black),
                  "threshold");
            check(JormAnd(env(), 0, &dst, nullptr, &not_above, nullptr, nullptr, nullptr), "threshold");
        }
        picture = above;
    });
}

} // namespace tool
