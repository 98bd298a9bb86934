// Colours multiplied by a matrix.
#include "tool.hpp"

#include <algorithm>

namespace tool {
namespace {

struct NamedMatrix {
    const char *name;
    double m[9];
};
const NamedMatrix matrices[] = {
    {"gray", {.299, .587, .114, .299, .587, .114, .299, .587, .114}},
    {"sepia", {.393, .769, .189, .349, .686, .168, .272, .534, .131}},
    {"swap", {0, 0, 1, 0, 1, 0, 1, 0, 0}},
};

void read_matrix(const Args &args, double *m) {
    const std::string by = args.text("by");
    for (const NamedMatrix &named : matrices)
        if (by == named.name) {
            std::copy(named.m, named.m + 9, m);
            return;
        }
    std::vector<double> numbers;
    if (by.find_first_of("0123456789") != std::string::npos) numbers = args.reals("by");
    if (numbers.size() != 9) throw Failure("--by wants gray, sepia, swap, or nine numbers with commas between them");
    std::copy(numbers.begin(), numbers.end(), m);
}

} // namespace

void run_matrix(const Args &args) {
    double m[9];
    read_matrix(args, m);
    jorm_array matrix;
    jorm_array_make(&matrix, JORM_F64, 3, 3, 1, 0, m);
    for_each_picture(args, [&](Picture &picture) {
        if (picture.channels < 3) throw Failure("wants a colour picture, got " + picture.shape());
        Picture exact = picture.as(picture.exact_type());
        const jorm_array colours = exact.colours();
        check(JormMulMV_n(env(), 0, &colours, &matrix, &colours), "matrix");
        picture = exact.as(picture.eltype);
    });
}

} // namespace tool
