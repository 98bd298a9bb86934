// Component trees of the grey picture: stable regions, the regions of a level, a summary.
#include "tool.hpp"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

namespace tool {
namespace {

// A picture to be flooded. Bright regions are the dark ones of the inverted picture; the flood never enters the first
// column, so one stands before the picture.
class Flood {
public:
    Flood(const Picture &grey, bool light)
        : light_(light), width_(grey.width + 1), framed_(width_, grey.height, 1),
          words_(size_t(width_) * size_t(grey.height) + 2 * (size_t(width_) + 2)) {
        for (int y = 0; y < grey.height; ++y)
            for (int x = 0; x < grey.width; ++x) {
                const uint8_t v = grey.bytes[size_t(y) * grey.width + x];
                framed_.bytes[size_t(y) * width_ + x + 1] = light ? uint8_t(255 - v) : v;
            }
        JormFWTSRESinit(&store_, words_.data(), nullptr);
    }
    ~Flood() { JormFWTSRESfini(&store_); }
    Flood(const Flood &) = delete;

    const jorm_fwtsr *tree() {
        jorm_fwtsparams params = {&store_, 0, 0, 0, 0};
        const jorm_array a = framed_.view();
        check(JormWatershed(env(), 0, &a, nullptr, &params), "watershed");
        return store_.root;
    }

    std::vector<const jorm_fwtsr *> stable(jorm_mser &criteria) {
        criteria.dark_store = &store_;
        const jorm_array a = framed_.view();
        check(JormGenerateFMSERs(env(), 0, &a, nullptr, &criteria), "mser");
        std::vector<const jorm_fwtsr *> regions(criteria.dark, criteria.dark + criteria.dark_count);
        _UlMfree(criteria.regions.data);
        return regions;
    }

    int level(const jorm_fwtsr *region) const { return light_ ? 255 - region->level : region->level; }

    // All pixels, those of descendants included.
    Points pixels(const jorm_fwtsr *region) const {
        jorm_vector pairs = {};
        jorm_fwtsr_fetchpix_$2d(&pairs, region, store_.words, 0, framed_.height, width_);
        Points points(pairs.count);
        const int32_t *p = static_cast<const int32_t *>(pairs.data);
        for (size_t i = 0; i < points.size(); ++i) points[i] = {p[2 * i + 1] - 1, p[2 * i]};
        _UlMfree(pairs.data);
        return points;
    }

private:
    bool light_;
    int width_;
    Picture framed_;
    std::vector<uint32_t> words_;
    jorm_fwtsres store_ = {};
};

struct Stable {
    bool light;
    int area, level;
    double variation; // growth over delta levels, as a part of the area
    jorm_2d_rect box; // width and height in pixels
    jorm_r2d_ell ellipse;
    std::vector<jorm_r2d_pt> hull;
};

double growth(const jorm_fwtsr *region, int delta) {
    const jorm_fwtsr *last = region;
    while (last->parent && last->parent->level <= region->level + delta) last = last->parent;
    return double(last->area - region->area) / region->area;
}

Stable describe(Points pixels) {
    Stable s = {};
    s.area = int(pixels.size());
    s.ellipse = ellipse_of(pixels);
    jorm_2d_ptv_brect(&s.box, pixels.data(), s.area);
    ++s.box.width, ++s.box.height;
    Points hull(pixels.size());
    hull.resize(jorm_2d_ptv_convexhull(hull.data(), pixels.data(), s.area));
    s.hull.resize(hull.size());
    jorm_r2d_ptv_cast_$i(s.hull.data(), hull.data(), int(hull.size()));
    return s;
}

std::vector<Stable> find_stable(const Args &args, const Picture &grey, const Picture *mask) {
    const int pixels = grey.width * grey.height, delta = args.number("delta", 1, 254);
    const double most = args.real("variation"), diversity = args.real("diversity");
    if (most < 0) throw Failure("--variation wants a number from 0 on");
    if (diversity < 0 || diversity > 1) throw Failure("--diversity wants a number from 0 to 1");
    std::pair<double, double> area = {30, std::max(30, pixels / 4)};
    if (args.has("area")) area = args.range("area");
    if (area.first < 1) throw Failure("--area wants LOW,HIGH with LOW from 1 on");
    std::vector<Stable> found;
    for (const bool light : {false, true}) {
        if (args.text("polarity") == (light ? "dark" : "light")) continue;
        Flood flood(grey, light);
        jorm_mser criteria = {};
        criteria.delta = delta;
        criteria.min_area = int(std::ceil(std::min(area.first, double(INT32_MAX))));
        criteria.max_area_fraction = 1;
        criteria.max_variation = float(most);
        criteria.min_diversity = float(diversity);
        for (const jorm_fwtsr *region : flood.stable(criteria)) {
            const double variation = growth(region, delta);
            if (region->area < area.first || region->area > area.second || variation > most) continue;
            const Points all = flood.pixels(region);
            const auto outside = [&](const jorm_2d_pt &p) { return !mask->bytes[size_t(p.y) * grey.width + p.x]; };
            if (mask && std::any_of(all.begin(), all.end(), outside)) continue;
            Stable s = describe(all);
            s.light = light, s.level = flood.level(region), s.variation = variation;
            found.push_back(std::move(s));
        }
    }
    return found;
}

void draw(Picture &drawing, const std::vector<Stable> &regions, const std::string &what) {
    const Colour dark = {0, 224, 96, 255}, light = {255, 64, 64, 255};
    const Pen pen(drawing);
    for (const Stable &s : regions) {
        const double *colour = s.light ? light : dark;
        const double x = s.box.x, y = s.box.y, right = x + s.box.width - 1, bottom = y + s.box.height - 1;
        const jorm_r2d_pt corners[] = {{x, y}, {right, y}, {right, bottom}, {x, bottom}};
        const std::vector<jorm_r2d_pt> curve = outline_of(s.ellipse);
        if (what == "box") pen.outline(corners, 4, colour);
        if (what == "hull" || what == "both") pen.outline(s.hull.data(), int(s.hull.size()), colour);
        if (what == "ellipse" || what == "both") pen.outline(curve.data(), int(curve.size()), colour);
    }
}

void print_regions(std::FILE *to, const std::vector<Stable> &regions, bool json) {
    if (!json)
        std::fprintf(to, "%-5s %5s %8s %9s  %-19s ellipse: centre, semi-axes, angle\n", "kind", "level", "area",
                     "variation", "box");
    for (size_t i = 0; i < regions.size(); ++i) {
        const Stable &s = regions[i];
        const jorm_r2d_ell &e = s.ellipse;
        const char *kind = s.light ? "light" : "dark";
        const std::string box = std::to_string(s.box.x) + "," + std::to_string(s.box.y) + " " +
                                std::to_string(s.box.width) + "x" + std::to_string(s.box.height);
        if (json)
            std::fprintf(to,
                         "%s{\"polarity\": \"%s\", \"level\": %d, \"area\": %d, \"variation\": %.9g, "
                         "\"box\": {\"x\": %d, \"y\": %d, \"width\": %d, \"height\": %d}, "
                         "\"ellipse\": {\"x\": %.9g, \"y\": %.9g, \"semi1\": %.9g, \"semi2\": %.9g, \"angle\": %.9g}}",
                         i ? ",\n " : "", kind, s.level, s.area, s.variation, s.box.x, s.box.y, s.box.width,
                         s.box.height, e.centre.x, e.centre.y, e.semi1, e.semi2, e.angle);
        else
            std::fprintf(to, "%-5s %5d %8d %9.3f  %-19s %.1f,%.1f %.1f %.1f %.2f\n", kind, s.level, s.area, s.variation,
                         box.c_str(), e.centre.x, e.centre.y, e.semi1, e.semi2, e.angle);
    }
}

// Bright and far apart for neighbouring numbers: a hue and a lightness from the bits of a hash.
void colour_of(uint32_t number, Colour &colour) {
    uint32_t h = (number + 1) * 0x9E3779B1u;
    h = (h ^ h >> 15) * 0x85EBCA77u;
    h ^= h >> 13;
    const double hue = (h & 0xFFFF) / 65536.0 * 6, pale = (h >> 16 & 0xFF) / 255.0 * 0.45, value = 160 + (h >> 24) % 96;
    for (int c = 0; c < 3; ++c) {
        const double away = std::fabs(std::fmod(hue + (6 - 2 * c), 6) - 3) - 1; // 0 to 1 along the hue circle
        colour[c] = value * (pale + (1 - pale) * std::clamp(away, 0.0, 1.0));
    }
    colour[3] = 255;
}

struct Summary {
    int regions = 0, leaves = 0, depth = 0, pixels = 0;
    const jorm_fwtsr *largest = nullptr; // below the root
    std::map<int, int> levels;
};

Summary summary_of(const Flood &flood, const jorm_fwtsr *root) {
    Summary s;
    s.pixels = root->area;
    std::vector<std::pair<const jorm_fwtsr *, int>> waiting = {{root, 1}};
    while (!waiting.empty()) {
        const auto [region, depth] = waiting.back();
        waiting.pop_back();
        ++s.regions, ++s.levels[flood.level(region)];
        s.leaves += !region->child;
        s.depth = std::max(s.depth, depth);
        if (region != root && (!s.largest || region->area > s.largest->area)) s.largest = region;
        for (const jorm_fwtsr *child = region->child; child; child = child->next) waiting.push_back({child, depth + 1});
    }
    return s;
}

} // namespace

void run_mser(const Args &args) {
    const std::string out = args.has("output") ? args.output() : "";
    if (args.has("draw") && out.empty()) throw Failure("--draw needs -o, the file to draw into");
    Picture picture = read_picture(args.files[0]), mask;
    if (args.has("mask")) mask = read_mask(args.text("mask"), picture);
    const Picture grey = grey_bytes(picture);
    const std::vector<Stable> regions = find_stable(args, grey, args.has("mask") ? &mask : nullptr);
    if (!out.empty()) {
        Picture drawing(grey.width, grey.height, 3);
        const size_t step = picture.has_alpha() || picture.channels < 3 || picture.eltype != JORM_U8 ? 0 : 3;
        for (size_t i = 0; i < drawing.bytes.size(); ++i)
            drawing.bytes[i] = step ? picture.bytes[i] : grey.bytes[i / 3];
        draw(drawing, regions, args.text("draw"));
        write_picture(out, drawing);
    }
    const bool json = args.has("json");
    if (json) std::fprintf(args.report(), "[");
    print_regions(args.report(), regions, json);
    if (json) std::fprintf(args.report(), "]\n");
    if (!json && regions.empty())
        std::fprintf(args.report(),
                     "no stable region: try a smaller --delta, a larger --variation or a wider --area\n");
}

void run_watershed(const Args &args) {
    const bool light = args.text("polarity") == "light";
    const int least = args.number("least", 1, INT32_MAX);
    if (args.has("level")) args.number("level", 0, 255);
    for_each_picture(args, [&](Picture &picture) {
        Picture grey = grey_bytes(picture);
        const int level = args.has("level") ? args.number("level", 0, 255) : int(otsu_levels(grey)[0]) + light;
        const int water = light ? 255 - level : level;
        Flood flood(grey, light);
        picture = Picture(grey.width, grey.height, 3);
        std::vector<const jorm_fwtsr *> waiting = {flood.tree()};
        while (!waiting.empty()) {
            const jorm_fwtsr *region = waiting.back();
            waiting.pop_back();
            if (!region || region->area < least) continue;
            if (region->level > water) {
                for (region = region->child; region; region = region->next) waiting.push_back(region);
                continue;
            }
            const Points pixels = flood.pixels(region);
            size_t first = SIZE_MAX;
            for (const jorm_2d_pt &p : pixels) first = std::min(first, size_t(p.y) * grey.width + p.x);
            Colour colour;
            colour_of(uint32_t(first), colour);
            for (const jorm_2d_pt &p : pixels)
                for (size_t c = 0; c < 3; ++c)
                    picture.bytes[3 * (size_t(p.y) * grey.width + p.x) + c] = uint8_t(colour[c]);
        }
    });
}

void run_tree(const Args &args) {
    const std::string kind = args.text("polarity");
    Picture picture = read_picture(args.files[0]);
    Flood flood(grey_bytes(picture), kind == "light");
    const Summary s = summary_of(flood, flood.tree());
    if (args.has("json")) {
        std::printf("{\"picture\": %s, \"width\": %d, \"height\": %d, \"polarity\": \"%s\", \"regions\": %d, "
                    "\"leaves\": %d, \"depth\": %d, \"largest\": ",
                    quoted(args.files[0]).c_str(), picture.width, picture.height, kind.c_str(), s.regions, s.leaves,
                    s.depth);
        if (s.largest)
            std::printf("{\"area\": %d, \"level\": %d}", s.largest->area, flood.level(s.largest));
        else
            std::printf("null");
        std::printf(",\n \"levels\": [");
        const char *comma = "";
        for (const auto &[level, count] : s.levels) {
            std::printf("%s{\"level\": %d, \"regions\": %d}", comma, level, count);
            comma = ", ";
        }
        std::printf("]}\n");
        return;
    }
    std::printf("%s: %s, %s regions\nregions %d, leaves %d, depth %d, pixels %d\n", args.files[0].c_str(),
                picture.shape().c_str(), kind.c_str(), s.regions, s.leaves, s.depth, s.pixels);
    if (s.largest)
        std::printf("largest below the root: %d pixels, at level %d\n", s.largest->area, flood.level(s.largest));
    std::printf("level regions\n");
    for (const auto &[level, count] : s.levels) std::printf("%5d %7d\n", level, count);
}

} // namespace tool
