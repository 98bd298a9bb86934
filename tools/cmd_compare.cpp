// Masks of pictures: where a relation holds, where samples lie above a level.
#include "tool.hpp"

#include <cmath>
#include <sstream>

namespace tool {
namespace {

// "100,200" as one to `most` numbers; gives their count.
int numbers(const Args &args, const char *option, double *values, int most) {
    std::istringstream in(args.text(option, ""));
    int count = 0;
    do {
        if (count == most || !(in >> values[count]) || !std::isfinite(values[count]))
            throw Failure(std::string("--") + option + " wants 1 to " + std::to_string(most) +
                          " numbers, parted by commas");
        ++count;
    } while (in.get() == ',');
    if (!in.eof()) throw Failure(std::string("--") + option + " wants numbers, parted by commas");
    return count;
}

uint32_t relation(const Args &args) {
    const std::string wanted = args.text("relation", "greater");
    std::string names;
    for (uint32_t op = JORM_CMP_EQUAL; op <= JORM_CMP_GREATER_EQUAL; ++op) {
        const std::string full = jorm_cmpop_str(op), name = full.substr(0, full.rfind('-'));
        if (name == wanted) return op;
        names += (names.empty() ? "" : ", ") + name;
    }
    throw Failure("--relation wants one of " + names);
}

} // namespace

void run_compare(const Args &args) {
    const bool constants = args.has("to");
    args.want_files(constants ? 1 : 2, constants ? 1 : 2);
    const std::string &out = args.output();
    const uint32_t op = relation(args);
    Picture picture = read_picture(args.files[0]);
    const jorm_array src = picture.colours();
    Picture mask(picture.width, picture.height, int(src.extent[3]));
    const jorm_array dst = mask.view();
    if (constants) {
        Colour values;
        for (int i = numbers(args, "to", values, 3); i < 4; ++i) values[i] = values[i - 1];
        check(JormCompareC(env(), 0, &dst, &src, values, nullptr, nullptr, op), "compare");
    } else {
        Picture other = read_picture(args.files[1]);
        const jorm_array src2 = other.colours();
        if (other.width != picture.width || other.height != picture.height || src2.extent[3] != src.extent[3])
            throw Failure("sizes differ: " + args.files[0] + " is " + picture.shape() + ", " + args.files[1] + " is " +
                          other.shape());
        check(JormCompare(env(), 0, &dst, &src, &src2, nullptr, nullptr, nullptr, op), "compare");
    }
    write_png(out, mask);
}

// Samples are whole, so a level may be cut to the whole number below it.
void run_threshold(const Args &args) {
    args.want_files(1, 1);
    const std::string &out = args.output();
    double levels[2];
    if (!args.has("level")) throw Failure("no level given: --level L or --level L,U");
    const int count = numbers(args, "level", levels, 2);
    Colour lower, upper, white = {255, 255, 255, 255}, black = {};
    for (int i = 0; i < count; ++i)
        if (levels[i] < 0 || levels[i] > 255) throw Failure("--level wants numbers from 0 to 255");
    for (int c = 0; c < 4; ++c) {
        lower[c] = std::floor(levels[0]);
        upper[c] = std::floor(levels[count - 1]);
    }
    Picture picture = read_picture(args.files[0]);
    const jorm_array src = picture.colours();
    Picture above(picture.width, picture.height, int(src.extent[3])), below = above;
    const jorm_array dst = above.view(), not_above = below.view();
    check(JormECompareC(env(), 0, &dst, &src, lower, nullptr, nullptr, JORM_CMP_GREATER, white, black), "threshold");
    if (count == 2) {
        check(JormECompareC(env(), 0, &not_above, &src, upper, nullptr, nullptr, JORM_CMP_LESS_EQUAL, white, black),
              "threshold");
        check(JormAnd(env(), 0, &dst, nullptr, &not_above, nullptr, nullptr, nullptr), "threshold");
    }
    write_png(out, above);
}

} // namespace tool
