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
    const jorm_array a = picture.colours();
    Numbers n = {};
    n.channels = int(a.extent[3]);
    n.extrema.request = JORM_WANT_MIN | JORM_WANT_MAX;
    if (mask) {
        const jorm_array m = mask->channel(0);
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

std::string quoted(const std::string &text) {
    std::string result = "\"";
    for (const char c : text) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned char>(c));
        result += c == '"' || c == '\\' ? std::string("\\") + c
                  : c >= 0 && c < ' '   ? std::string(escape)
                                        : std::string(1, c);
    }
    return result + '"';
}

std::string json(const jorm_extremum &e) {
    if (e.row < 0) return "null";
    return "{\"value\": " + std::to_string(e.i) + ", \"x\": " + std::to_string(e.column) +
           ", \"y\": " + std::to_string(e.row) + "}";
}

void print_json(const std::string &path, const Picture &picture, const Numbers &n) {
    std::printf("{\"picture\": %s, \"width\": %d, \"height\": %d, \"channels\": [", quoted(path).c_str(), picture.width,
                picture.height);
    for (int c = 0; c < n.channels; ++c)
        std::printf("%s{\"min\": %s, \"max\": %s, \"mean\": %.17g, \"sum\": %.17g}", c ? ", " : "",
                    json(n.extrema.min[c]).c_str(), json(n.extrema.max[c]).c_str(), n.mean[c], n.sum[c]);
    std::printf("]}");
}

vrng range(const Args &args, const char *option, const char *otherwise) {
    std::istringstream in(args.text(option, otherwise));
    vrng r = {};
    char comma = 0;
    if (!(in >> r.lo >> comma >> r.hi) || comma != ',' || !(in >> std::ws).eof() || !(r.lo <= r.hi))
        throw Failure(std::string("--") + option + " wants LOW,HIGH");
    return r;
}

} // namespace

void run_stats(const Args &args) {
    args.want_files(1);
    Picture mask;
    if (args.has("mask")) mask = read_picture(args.text("mask", ""));
    for (size_t i = 0; i < args.files.size(); ++i) {
        Picture picture = read_picture(args.files[i]);
        if (args.has("mask") && (mask.width != picture.width || mask.height != picture.height))
            throw Failure("sizes differ: the mask is " + mask.shape() + ", " + args.files[i] + " is " +
                          picture.shape());
        const Numbers n = measure(picture, args.has("mask") ? &mask : nullptr);
        if (args.has("json")) std::printf(i ? ",\n " : "[");
        (args.has("json") ? print_json : print_table)(args.files[i], picture, n);
    }
    if (args.has("json")) std::printf("]\n");
}

void run_convert(const Args &args) {
    args.want_files(1, 1);
    const std::string &out = args.output();
    const bool by_scale = args.has("scale") || args.has("offset");
    if (by_scale && (args.has("to") || args.has("from")))
        throw Failure("--scale and --offset do not go with --from and --to");
    const vrng to = range(args, "to", "0,255"), from = range(args, "from", "0,255");
    const double scale = args.real("scale", 1), offset = args.real("offset", 0);
    Picture picture = read_picture(args.files[0]);
    Picture result = picture;
    const jorm_array src = picture.colours(), dst = result.colours();
    const double scales[4] = {scale, scale, scale, scale}, offsets[4] = {offset, offset, offset, offset};
    const vrng source[4] = {from, from, from, from};
    vrng destination[4] = {to, to, to, to};
    check(by_scale
              ? JormConvert(env(), 0, &dst, &src, nullptr, nullptr, scales, offsets, nullptr)
              : JormVConvert(env(), 0, &dst, &src, nullptr, nullptr, destination, args.has("from") ? source : nullptr),
          "convert");
    write_png(out, result);
}

} // namespace tool
