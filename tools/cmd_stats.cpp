// Numbers about pictures, and the spreading of their values. An alpha channel takes no part in either.
#include "tool.hpp"

#include <cstdio>
#include <sstream>

namespace tool {
namespace {

struct Numbers {
    int channels;
    double sum[4], mean[4];
    jorm_minmax extrema;
};

Numbers measure(Picture &picture, Picture *mask) {
    Picture exact = picture.as(picture.exact_type());
    const jorm_array a = exact.colours();
    Numbers n = {};
    n.channels = int(a.extent[3]);
    n.extrema.request = JORM_WANT_MIN | JORM_WANT_MAX;
    if (mask) {
        const jorm_array m = mask->view();
        check(JormSumEx(env(), 0, &a, &m, nullptr, nullptr, n.sum), "stats");
        check(JormMeanEx(env(), 0, &a, &m, nullptr, nullptr, n.mean), "stats");
        check(JormMinmaxEx(env(), 0, &a, &m, nullptr, nullptr, &n.extrema), "stats");
    } else {
        check(JormSum(env(), 0, &a, nullptr, n.sum), "stats");
        check(JormMean(env(), 0, &a, nullptr, n.mean), "stats");
        check(JormMinmax(env(), 0, &a, nullptr, &n.extrema), "stats");
    }
    return n;
}

void print_table(const std::string &path, const Picture &picture, const Numbers &n) {
    std::printf("%s: %s\n%-8s %5s %13s %5s %13s %9s %15s\n", path.c_str(), picture.shape().c_str(), "channel", "min",
                "at x,y", "max", "at x,y", "mean", "sum");
    for (int c = 0; c < n.channels; ++c) {
        const jorm_extremum &lo = n.extrema.min[c], &hi = n.extrema.max[c];
        const std::string at_lo = std::to_string(lo.column) + "," + std::to_string(lo.row);
        const std::string at_hi = std::to_string(hi.column) + "," + std::to_string(hi.row);
        if (lo.row < 0)
            std::printf("%-8d the mask selects nothing\n", c);
        else
            std::printf("%-8d %5d %13s %5d %13s %9.3f %15.0f\n", c, lo.i, at_lo.c_str(), hi.i, at_hi.c_str(), n.mean[c],
                        n.sum[c]);
    }
}

std::string json(const jorm_extremum &e) {
    if (e.row < 0) return "null";
    return "{\"value\": " + std::to_string(e.i) + ", \"x\": " + std::to_string(e.column) +
           ", \"y\": " + std::to_string(e.row) + "}";
}

void print_json(const std::string &path, const Picture &picture, const Numbers &n) {
    std::printf("{\"picture\": %s, \"width\": %d, \"height\": %d, \"depth\": %d, \"channels\": [", quoted(path).c_str(),
                picture.width, picture.height, picture.depth());
    for (int c = 0; c < n.channels; ++c) {
        char mean[32] = "null";
        if (n.extrema.min[c].row >= 0) std::snprintf(mean, sizeof mean, "%.17g", n.mean[c]);
        std::printf("%s{\"min\": %s, \"max\": %s, \"mean\": %s, \"sum\": %.17g}", c ? ", " : "",
                    json(n.extrema.min[c]).c_str(), json(n.extrema.max[c]).c_str(), mean, n.sum[c]);
    }
    std::printf("]}");
}

} // namespace

void run_stats(const Args &args) {
    for (size_t i = 0; i < args.files.size(); ++i) {
        Picture picture = read_picture(args.files[i]), mask;
        if (args.has("mask")) mask = read_mask(args.text("mask"), picture);
        const Numbers n = measure(picture, args.has("mask") ? &mask : nullptr);
        if (args.has("json")) std::printf(i ? ",\n " : "[");
        (args.has("json") ? print_json : print_table)(args.files[i], picture, n);
    }
    if (args.has("json")) std::printf("]\n");
}

} // namespace tool
