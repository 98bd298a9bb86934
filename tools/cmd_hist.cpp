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
        Picture exact = picture.as(picture.exact_type());
        const jorm_array a = exact.colours();
        top_ = picture.top();
        jorm_histdesc d[3] = {};
        for (jorm_histdesc &each : d) each.nbins = uint32_t(bins), each.hi = top_;
        code_ = a.extent[3];
        check(_jorm_histogram__$n$ia(code_, of_, d), "hist");
        if (mask) {
            const jorm_array m = mask->view();
            check(JormHistogramEx(env(), 0, &a, &m, nullptr, nullptr, 0, of_), "hist");
        } else {
            check(JormHistogram(env(), 0, &a, nullptr, 0, of_), "hist");
        }
    }
    ~Histograms() { jorm_hist_fini_$n(code_, of_); }
    Histograms(const Histograms &) = delete;

    int channels() const { return int(code_); }
    int bins() const { return int(of_[0].nbins); }
    int first_value(int bin) const {
        return int((int64_t(bin) * (top_ + 1) + bins() - 1) / bins());
    } // of those in a bin
    int top() const { return top_; }
    uint32_t count(int channel, int bin) const { return of_[channel].bins[bin]; }
    uint32_t largest() const {
        uint32_t most = 0;
        for (int c = 0; c < channels(); ++c)
            most = std::max(most, *std::max_element(of_[c].bins, of_[c].bins + bins()));
        return most;
    }

private:
    uint32_t code_;
    int top_;
    jorm_histogram of_[3];
};

void print_table(std::FILE *to, const Histograms &h) {
    for (int i = 0; i < h.bins(); ++i) {
        std::fprintf(to, h.top() == 255 ? "%3d..%3d" : "%5d..%5d", h.first_value(i), h.first_value(i + 1) - 1);
        for (int c = 0; c < h.channels(); ++c) std::fprintf(to, " %10u", h.count(c, i));
        std::fprintf(to, "\n");
    }
}

void print_json(std::FILE *to, const Histograms &h) {
    std::fprintf(to, "[");
    for (int c = 0; c < h.channels(); ++c) {
        std::fprintf(to, "%s[", c ? ",\n " : "");
        for (int i = 0; i < h.bins(); ++i) std::fprintf(to, "%s%u", i ? ", " : "", h.count(c, i));
        std::fprintf(to, "]");
    }
    std::fprintf(to, "]\n");
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
        const std::string text = std::to_string(std::min(value * ((h.top() + 1) / 256), h.top()));
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
    const std::string out = args.has("output") ? args.output() : "";
    Picture picture = read_picture(args.files[0]), mask;
    const int bins = args.number("bins", 1, picture.top() + 1);
    if (args.has("mask")) mask = read_mask(args.text("mask"), picture);
    const Histograms h(picture, args.has("mask") ? &mask : nullptr, bins);
    if (!out.empty()) {
        Picture drawing = draw(h);
        write_picture(out, drawing);
    }
    if (args.has("json") || out.empty()) (args.has("json") ? print_json : print_table)(args.report(), h);
}

} // namespace tool
