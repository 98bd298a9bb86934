// Colours multiplied by a matrix.
#include "tool.hpp"

#include <algorithm>
#include <sstream>

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
    const std::string by = args.text("by", "");
    for (const NamedMatrix &named : matrices)
        if (by == named.name) {
            std::copy(named.m, named.m + 9, m);
            return;
        }
    std::istringstream in(by);
    char comma = ',';
    int count = 0;
    while (count < 9 && comma == ',' && in >> m[count]) {
        ++count;
        if (!(in >> comma)) comma = 0;
    }
    if (count < 9 || comma != 0) throw Failure("--by wants gray, sepia, swap, or nine numbers parted by commas");
}

} // namespace

void run_matrix(const Args &args) {
    args.want_files(1, 1);
    const std::string &out = args.output();
    double m[9];
    read_matrix(args, m);
    Picture picture = read_picture(args.files[0]);
    if (picture.channels < 3) throw Failure("wants a colour picture, got " + picture.shape());
    const int32_t extent[3] = {3, 3, 1};
    jorm_array matrix;
    _jorm_array__$xtrn(&matrix, JORM_F64, 3, extent, nullptr, m);
    const jorm_array colours = picture.colours();
    check(JormMulMV_n(env(), 0, &colours, &matrix, &colours), "matrix");
    write_png(out, picture);
}

} // namespace tool
