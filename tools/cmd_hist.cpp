// How often each value occurs, as a table and as a picture. An alpha channel takes no part.
#include "tool.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace tool {
namespace {

class Histograms {
public:
    Histograms(Picture &picture, Picture *mask, int bins) {
        const jorm_array a = picture.colours();
        jorm_histdesc d[3] = {};
        for (jorm_histdesc &each : d) each.nbins = uint32_t(bins), each.hi = 255;
        code_ = a.extent[3];
        check(_jorm_histogram__$n$ia(code_, of_, d), "hist");
        if (mask) {
            const jorm_array m = mask->channel(0);
            check(JormHistogramEx(env(), 0, &a, &m, nullptr, nullptr, 0, of_), "hist");
        } else {
            check(JormHistogram(env(), 0, &a, nullptr, 0, of_), "hist");
        }
    }
    ~Histograms() { jorm_hist_fini_$n(code_, of_); }
    Histograms(const Histograms &) = delete;

    int channels() const { return int(code_); }
    int bins() const { return int(of_[0].nbins); }
    int first_value(int bin) const { return (bin * 256 + bins() - 1) / bins(); } // of those in a bin
    uint32_t count(int channel, int bin) const { return of_[channel].bins[bin]; }
    uint32_t largest() const {
        uint32_t most = 0;
        for (int c = 0; c < channels(); ++c)
            most = std::max(most, *std::max_element(of_[c].bins, of_[c].bins + bins()));
        return most;
    }

private:
    uint32_t code_;
    jorm_histogram of_[3];
};

void print_table(const Histograms &h) {
    for (int i = 0; i < h.bins(); ++i) {
        std::printf("%3d..%3d", h.first_value(i), h.first_value(i + 1) - 1);
        for (int c = 0; c < h.channels(); ++c) std::printf(" %10u", h.count(c, i));
        std::printf("\n");
    }
}

void print_json(const Histograms &h) {
    std::printf("[");
    for (int c = 0; c < h.channels(); ++c) {
        std::printf("%s[", c ? ",\n " : "");
        for (int i = 0; i < h.bins(); ++i) std::printf("%s%u", i ? ", " : "", h.count(c, i));
        std::printf("]");
    }
    std::printf("]\n");
}

// Each channel in its own colour over black, so that colours mix where bars overlap.
Picture draw(const Histograms &h) {
    constexpr int left = 60, top = 12, width = 512, height = 256, right = 20, bottom = 24;
    constexpr int base = top + height;
    const Colour black = {0, 0, 0, 0}, bright = {255, 255, 255, 0}, grey = {160, 160, 160, 0};
    Picture drawing(left + width + right, base + bottom, 3);
    const jorm_array whole = drawing.view();
    fill(whole, site(0, 0, drawing.width, drawing.height), black);
    const double most = std::max(1u, h.largest());
    for (int c = 0; c < h.channels(); ++c) {
        const jorm_array where = h.channels() == 1 ? whole : drawing.channel(c);
        for (int i = 0; i < h.bins(); ++i) {
            const int tall = int(std::ceil(h.count(c, i) / most * height));
            const int from = i * width / h.bins(), to = (i + 1) * width / h.bins();
            if (tall > 0) fill(where, site(left + from, base - tall, to - from, tall), bright);
        }
    }
    fill(whole, site(left - 1, top, 1, height + 1), grey);
    fill(whole, site(left - 1, base, width + 1, 1), grey);
    for (int value = 0; value <= 256; value += 64) {
        const std::string text = std::to_string(std::min(value, 255));
        const int x = left + value * width / 256;
        fill(whole, site(x - (value == 256), base, 1, 5), grey);
        draw_text(whole, x - int(text.size()) * glyph_width / 2, base + 8, 1, text, grey);
    }
    for (int part = 0; part <= 4; ++part) {
        const std::string text = std::to_string(std::llround(most * part / 4));
        const int y = base - part * height / 4;
        fill(whole, site(left - 5, y, 5, 1), grey);
        draw_text(whole, left - 8 - int(text.size()) * glyph_width, y - 4, 1, text, grey);
    }
    return drawing;
}

} // namespace

void run_hist(const Args &args) {
    args.want_files(1, 1);
    const int bins = args.number("bins", 256, 1, 256);
    Picture picture = read_picture(args.files[0]), mask;
    if (args.has("mask")) {
        mask = read_picture(args.text("mask", ""));
        if (mask.width != picture.width || mask.height != picture.height)
            throw Failure("sizes differ: the mask is " + mask.shape() + ", " + args.files[0] + " is " +
                          picture.shape());
    }
    const Histograms h(picture, args.has("mask") ? &mask : nullptr, bins);
    if (args.has("output")) {
        Picture drawing = draw(h);
        write_png(args.output(), drawing);
    }
    if (args.has("json") || !args.has("output")) (args.has("json") ? print_json : print_table)(h);
}

} // namespace tool
