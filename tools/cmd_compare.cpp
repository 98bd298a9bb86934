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

// Samples are whole, so a level may be cut to the whole number below it.
void run_threshold(const Args &args) {
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
