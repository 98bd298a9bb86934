// Floods and the detection of stable regions, one by one: the fast flood with and without pixel lists, the standard
// one, the detection on a tree that is there, the whole generation. The time is per call; the counter px is pixels a
// second.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target flood_bench
//     scripts/export-photographs photographs      # optional, needs Debian's python3-skimage
//     JORM_PHOTOGRAPHS=photographs taskset -c 1 build/release/bench/flood_bench
#include "jorm.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace {

struct Picture {
    std::string name;
    int32_t rows, columns;
    std::vector<uint8_t> samples;

    jorm_array describe() {
        jorm_array a;
        jorm_array_make(&a, JORM_U8, rows, columns, 1, 0, samples.data());
        return a;
    }
};
using Shared = std::shared_ptr<Picture>;

// Waves with blobs of two sizes, and noise on them.
Shared paint(const std::string &name, int32_t rows, int32_t columns, double noise) {
    auto p = std::make_shared<Picture>(Picture{name, rows, columns, {}});
    uint32_t x = 2463534242;
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < columns; ++c) {
            x ^= x << 13, x ^= x >> 17, x ^= x << 5;
            const double waves = 60 * std::sin(c * 0.011) * std::cos(r * 0.013) + 35 * std::sin(c * 0.09 + r * 0.07) +
                                 20 * std::cos(c * 0.21 - r * 0.17);
            p->samples.push_back(uint8_t(std::clamp(128 + waves + noise * (x % 1000 / 999.0 - 0.5), 0.0, 255.0)));
        }
    return p;
}

// A binary PGM without comments.
Shared load(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::string magic;
    int32_t rows = 0, columns = 0, top = 0;
    file >> magic >> columns >> rows >> top;
    file.get();
    auto p = std::make_shared<Picture>(Picture{path.stem().string(), rows, columns, {}});
    p->samples.resize(size_t(rows) * size_t(columns));
    file.read(reinterpret_cast<char *>(p->samples.data()), std::streamsize(p->samples.size()));
    return magic == "P5" && top == 255 && file ? p : nullptr;
}

// One picture with an environment and a store, with or without a buffer for lists.
struct Setting {
    Shared picture;
    jorm_array image;
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    jorm_fwtsres store = {};
    jorm_fwtsparams params = {&store, 0, 0, 0, 0};
    std::vector<uint32_t> buffer;

    Setting(const Shared &p, bool lists) : picture(p), image(p->describe()) {
        if (lists) buffer.resize(p->samples.size() + 2 * (size_t(p->columns) + 2));
        JormFWTSRESinit(&store, lists ? buffer.data() : nullptr, nullptr);
    }
    ~Setting() {
        JormFWTSRESfini(&store);
        JormXEclose(xe);
    }
    Setting(const Setting &) = delete;

    void count(benchmark::State &state) const {
        state.counters["px"] =
            benchmark::Counter(double(picture->samples.size()), benchmark::Counter::kIsIterationInvariantRate);
    }
};

void flood(benchmark::State &state, const Shared &picture, uint64_t options, bool lists) {
    Setting s(picture, lists);
    for (auto _ : state) benchmark::DoNotOptimize(JormWatershed(s.xe, options, &s.image, nullptr, &s.params));
    s.count(state);
}

constexpr jorm_msercriteria criteria = {5, 60, 14400, 0.25f, 0.2f};

void detect(benchmark::State &state, const Shared &picture, uint64_t options) {
    Setting s(picture, false);
    JormWatershed(s.xe, options, &s.image, nullptr, &s.params);
    jorm_vector regions = {};
    for (auto _ : state) {
        regions.count = 0;
        benchmark::DoNotOptimize(JormDetectFMSERs(&regions, s.store.root, &criteria));
    }
    s.count(state);
    _UlMfree(regions.data);
}

void generate(benchmark::State &state, const Shared &picture, uint16_t passes) {
    Setting s(picture, false);
    jorm_mser m = {};
    m.delta = criteria.delta;
    m.min_area = criteria.min_area;
    m.max_area_fraction = float(criteria.max_area) / float(picture->samples.size());
    m.max_variation = criteria.max_variation;
    m.min_diversity = criteria.min_diversity;
    m.passes = passes;
    for (auto _ : state) benchmark::DoNotOptimize(JormGenerateFMSERs(s.xe, 0, &s.image, nullptr, &m));
    s.count(state);
    JormFWTSRESfini(m.dark_store);
    JormFWTSRESfini(m.bright_store);
    _UlMfree(m.regions.data);
}

void add(const Shared &p) {
    const auto name = [&](const char *what) { return std::string(what) + "/" + p->name; };
    const auto unit = benchmark::kMillisecond;
    benchmark::RegisterBenchmark(name("flood_fast").c_str(), flood, p, JORM_OPT_FAST, false)->Unit(unit);
    benchmark::RegisterBenchmark(name("flood_fast_lists").c_str(), flood, p, JORM_OPT_FAST, true)->Unit(unit);
    benchmark::RegisterBenchmark(name("flood_standard").c_str(), flood, p, 0, false)->Unit(unit);
    benchmark::RegisterBenchmark(name("detect_fast").c_str(), detect, p, JORM_OPT_FAST)->Unit(unit);
    benchmark::RegisterBenchmark(name("detect_standard").c_str(), detect, p, 0)->Unit(unit);
    benchmark::RegisterBenchmark(name("mser_one").c_str(), generate, p, 0)->Unit(unit);
    benchmark::RegisterBenchmark(name("mser_both").c_str(), generate, p, 2)->Unit(unit);
}

} // namespace

int main(int argc, char **argv) {
    benchmark::Initialize(&argc, argv);
    for (const auto &[size, rows, columns] : {std::tuple{"1920x1080", 1080, 1920}, {"4096x4096", 4096, 4096}}) {
        add(paint(std::string("noisy ") + size, rows, columns, 40));
        add(paint(std::string("smooth ") + size, rows, columns, 0));
    }
    if (const char *const folder = std::getenv("JORM_PHOTOGRAPHS"))
        for (const auto &entry : std::filesystem::directory_iterator(folder))
            if (const Shared p = load(entry.path())) add(p);
    benchmark::RunSpecifiedBenchmarks();
}
