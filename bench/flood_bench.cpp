// Floods, the detection of stable regions and the queries on both, one by one. The time is per call; the counter px is
// pixels a second, the counter regions is regions a second of queries.
//
//     cmake --preset release -DJORM_BENCH=ON && cmake --build build/release --target flood_bench
//     scripts/export-photographs photographs      # optional, needs Debian's python3-skimage
//     JORM_PHOTOGRAPHS=photographs taskset -c 1 build/release/bench/flood_bench
#include "jorm.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#if defined(__linux__)
#include <sys/mman.h>
#endif

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

// Room for the words of a picture, in large pages where the system grants them.
class Words {
public:
    Words(const Shared &p, bool large) : bytes_(4 * (p->samples.size() + 2 * (size_t(p->columns) + 2))) {
        constexpr size_t page = size_t{2} << 20;
        bytes_ = (bytes_ + page - 1) & ~(page - 1);
        data_ = static_cast<uint32_t *>(std::aligned_alloc(page, bytes_));
#if defined(__linux__)
        madvise(data_, bytes_, large ? MADV_HUGEPAGE : MADV_NOHUGEPAGE);
#endif
        std::memset(data_, 0, bytes_);
    }
    ~Words() { std::free(data_); }
    Words(const Words &) = delete;
    Words &operator=(const Words &) = delete;
    uint32_t *data() const { return data_; }

private:
    size_t bytes_;
    uint32_t *data_;
};

enum class Lists { none, small_pages, large_pages };

// One picture with an environment and a store, with or without a buffer for lists.
struct Setting {
    Shared picture;
    jorm_array image;
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    jorm_fwtsres store = {};
    jorm_fwtsparams params = {&store, 0, 0, 0, 0};
    std::optional<Words> words;

    Setting(const Shared &p, Lists lists) : picture(p), image(p->describe()) {
        if (lists != Lists::none) words.emplace(p, lists == Lists::large_pages);
        JormFWTSRESinit(&store, words ? words->data() : nullptr, nullptr);
    }
    ~Setting() {
        JormFWTSRESfini(&store);
        JormXEclose(xe);
    }
    Setting(const Setting &) = delete;
    Setting &operator=(const Setting &) = delete;

    void count(benchmark::State &state) const { rate(state, "px", double(picture->samples.size())); }
    static void rate(benchmark::State &state, const char *name, double n) {
        state.counters[name] = benchmark::Counter(n, benchmark::Counter::kIsIterationInvariantRate);
    }
};

void flood(benchmark::State &state, const Shared &picture, uint64_t options, Lists lists) {
    Setting s(picture, lists);
    for (auto _ : state) benchmark::DoNotOptimize(JormWatershed(s.xe, options, &s.image, nullptr, &s.params));
    s.count(state);
}

constexpr jorm_msercriteria criteria = {5, 60, 14400, 0.25f, 0.2f};

void detect(benchmark::State &state, const Shared &picture, uint64_t options) {
    Setting s(picture, Lists::none);
    JormWatershed(s.xe, options, &s.image, nullptr, &s.params);
    jorm_vector regions = {};
    for (auto _ : state) {
        regions.count = 0;
        benchmark::DoNotOptimize(JormDetectFMSERs(&regions, s.store.root, &criteria));
    }
    s.count(state);
    _UlMfree(regions.data);
}

// A generation of both kinds or of one, with words in both stores or none.
struct Stable {
    Setting setting;
    std::optional<Words> more_words;
    jorm_fwtsres bright = {};
    jorm_mser mser = {};

    Stable(const Shared &p, uint16_t passes, Lists lists) : setting(p, lists) {
        if (lists != Lists::none) more_words.emplace(p, lists == Lists::large_pages);
        JormFWTSRESinit(&bright, more_words ? more_words->data() : nullptr, nullptr);
        mser.delta = criteria.delta;
        mser.min_area = criteria.min_area;
        mser.max_area_fraction = float(criteria.max_area) / float(p->samples.size());
        mser.max_variation = criteria.max_variation;
        mser.min_diversity = criteria.min_diversity;
        mser.passes = passes;
        mser.dark_store = &setting.store;
        mser.bright_store = &bright;
    }
    ~Stable() {
        JormFWTSRESfini(&bright);
        _UlMfree(mser.regions.data);
    }
    int64_t generate(uint64_t options) {
        const auto entry = options & JORM_OPT_FAST ? JormGenerateFMSERs : JormGenerateMSERs;
        return entry(setting.xe, options, &setting.image, nullptr, &mser);
    }
};

void generate(benchmark::State &state, const Shared &picture, uint64_t options, uint16_t passes, Lists lists) {
    Stable s(picture, passes, lists);
    for (auto _ : state) benchmark::DoNotOptimize(s.generate(options));
    s.setting.count(state);
}

// ---- Queries on the tree of a flood with lists ----

using OfTree = int64_t (*)(const Setting &, jorm_vector &scratch);

int32_t go_on(jorm_fwtsr *, void *, int32_t) { return 1; }

// f(region) for each region of the tree.
template <class F> int64_t each_region(const Setting &s, F f) {
    const auto visit = [](jorm_fwtsr *region, void *context, int32_t) {
        (*static_cast<F *>(context))(region);
        return int32_t{1};
    };
    return jorm_fwtsr_walk_$preorder(s.store.root, visit, &f);
}

const struct {
    const char *name;
    OfTree run;
} tree_queries[] = {
    {"children",
     [](const Setting &s, jorm_vector &) {
         int64_t n = 0;
         each_region(s, [&](jorm_fwtsr *r) { n += jorm_fwtsr_countcld(r, 0); });
         return n;
     }},
    {"proper",
     [](const Setting &s, jorm_vector &) {
         int64_t n = 0;
         each_region(s, [&](jorm_fwtsr *r) { n += jorm_fwtsr_countpix_$proper(r); });
         return n;
     }},
    {"descendants", [](const Setting &s, jorm_vector &) { return int64_t(jorm_fwtsr_countcld_$R(s.store.root)); }},
    {"stable", [](const Setting &s, jorm_vector &) { return int64_t(jorm_fwtsr_countcld_$mser$R(s.store.root)); }},
    {"preorder",
     [](const Setting &s, jorm_vector &) { return int64_t(jorm_fwtsr_walk_$preorder(s.store.root, go_on, nullptr)); }},
    {"inorder",
     [](const Setting &s, jorm_vector &) { return int64_t(jorm_fwtsr_walk_$inorder(s.store.root, go_on, nullptr)); }},
    {"postorder",
     [](const Setting &s, jorm_vector &) { return int64_t(jorm_fwtsr_walk_$postorder(s.store.root, go_on, nullptr)); }},
    {"fixup", [](const Setting &s,
                 jorm_vector &) { return each_region(s, [&](jorm_fwtsr *r) { jorm_fwtsr_fixup(r, s.store.words); }); }},
    {"fetch_proper",
     [](const Setting &s, jorm_vector &pixels) {
         return each_region(s, [&](jorm_fwtsr *r) {
             pixels.count = 0;
             jorm_fwtsr_fetchpix_$2d(&pixels, r, s.store.words, 1, s.picture->rows, s.picture->columns);
         });
     }},
    {"fetch_all",
     [](const Setting &s, jorm_vector &pixels) {
         pixels.count = 0;
         jorm_fwtsr_fetchpix_$2d(&pixels, s.store.root, s.store.words, 0, s.picture->rows, s.picture->columns);
         return int64_t(pixels.count);
     }},
    {"pixenum",
     [](const Setting &s, jorm_vector &pixels) {
         pixels.count = 0;
         return int64_t(
             jorm_fwtsr_pixenum_$2d(&pixels, s.store.root, s.store.words, s.picture->rows, s.picture->columns));
     }},
};

void query_tree(benchmark::State &state, const Shared &picture, uint64_t options, OfTree run) {
    Setting s(picture, Lists::large_pages);
    JormWatershed(s.xe, options, &s.image, nullptr, &s.params);
    jorm_vector found = {}, pixels = {};
    JormDetectFMSERs(&found, s.store.root, &criteria);
    for (auto _ : state) benchmark::DoNotOptimize(run(s, pixels));
    s.count(state);
    s.rate(state, "regions", 1 + jorm_fwtsr_countcld_$R(s.store.root));
    _UlMfree(found.data);
    _UlMfree(pixels.data);
}

// ---- Queries on the lists of stable regions, and on the pixels of these ----

using OfList = jorm_vector *(*)(jorm_vector *, const jorm_mser *, const jorm_mserfilt *);
using OfGroups = jorm_vector *(*)(jorm_vector *, const jorm_vector *);

constexpr jorm_mserfilt every = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, steady = {0, 0, 0, 0, 0.1f, 0, 0, 0, 0, 0},
                        round_ones = {0, 0, 0, 0, 0, 0.5f, 0, 0, 0, 0},
                        outermost = {0, 0, 0, 0, 0, 0, 0, JORM_MSER_OUTERMOST, 0, 0};

const struct {
    const char *name;
    OfList run;
    const jorm_mserfilt *filter;
} list_queries[] = {
    {"regions", jorm_fmserf_regions, &every},
    {"regions_variation", jorm_fmserf_regions, &steady},
    {"regions_axes", jorm_fmserf_regions, &round_ones},
    {"regions_nesting", jorm_fmserf_regions, &outermost},
    {"pixels", jorm_fmserf_pixreg_$2d, &every},
    {"pixels_brect", jorm_fmserf_brect_$2d, &every},
    {"pixels_ellipse", jorm_fmserf_ellipse_$f2d, &every},
};

const struct {
    const char *name;
    OfGroups run;
} group_queries[] = {
    {"brect", jorm_fwtsr_brect_$2d},          {"moments1", jorm_fwtsr_m1_$2d},
    {"moments2", jorm_fwtsr_m2_$2d},          {"moments2c", jorm_fwtsr_m2c_$2d},
    {"moment_features", jorm_fwtsr_mf_$2d},   {"ellipse_f", jorm_fwtsr_ellipse_$f2d},
    {"ellipse_r", jorm_fwtsr_ellipse_$r2d},   {"minbquad_f", jorm_fwtsr_minbquad_$f2d},
    {"minbquad_r", jorm_fwtsr_minbquad_$r2d},
};

// Pixels of all groups: those of nested regions several times.
double pixels_of(const jorm_vector &groups) {
    double n = 0;
    for (uint64_t i = 0; i < groups.count; ++i) n += double(static_cast<jorm_pixgroup *>(groups.data)[i].count);
    return n;
}

void query_list(benchmark::State &state, const Shared &picture, OfList run, const jorm_mserfilt &filter) {
    Stable s(picture, 2, Lists::large_pages);
    s.generate(JORM_OPT_FAST);
    jorm_vector out = {}, groups = {};
    for (auto _ : state) {
        out.count = 0;
        benchmark::DoNotOptimize(run(&out, &s.mser, &filter));
    }
    jorm_fmserf_pixreg_$2d(&groups, &s.mser, nullptr);
    Setting::rate(state, "px", pixels_of(groups));
    Setting::rate(state, "regions", double(s.mser.regions.count));
    _UlMfree(out.data);
    _UlMfree(groups.data);
}

void gather(benchmark::State &state, const Shared &picture) {
    Stable s(picture, 2, Lists::large_pages);
    s.generate(JORM_OPT_FAST);
    for (auto _ : state) {
        jorm_vector features = {};
        JormGatherMSERsFeatures(&features, &s.mser, nullptr);
        JormMSERfreeFeatures(&features);
    }
    Setting::rate(state, "regions", double(s.mser.regions.count));
}

void query_groups(benchmark::State &state, const Shared &picture, OfGroups run) {
    Stable s(picture, 2, Lists::large_pages);
    s.generate(JORM_OPT_FAST);
    jorm_vector groups = {}, out = {};
    jorm_fmserf_pixreg_$2d(&groups, &s.mser, nullptr);
    for (auto _ : state) {
        out.count = 0;
        benchmark::DoNotOptimize(run(&out, &groups));
    }
    Setting::rate(state, "px", pixels_of(groups));
    Setting::rate(state, "regions", double(groups.count));
    _UlMfree(out.data);
    _UlMfree(groups.data);
}

// Cycles of random single steps through so many bytes, in large pages: what one access costs that nothing hides.
void chase(benchmark::State &state) {
    const auto lines = uint32_t(state.range(0) / 64);
    const auto p = std::make_shared<Picture>(Picture{"", int32_t(lines), 16, std::vector<uint8_t>(lines * 16)});
    const Words words(p, true);
    uint32_t *const at = words.data();
    std::vector<uint32_t> order(lines);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(order.begin() + 1, order.end(), std::minstd_rand(1));
    for (uint32_t i = 0; i < lines; ++i) at[order[i] * 16] = order[(i + 1) % lines] * 16;
    uint32_t i = 0;
    for (auto _ : state)
        for (int k = 0; k < 1000; ++k) i = at[i];
    benchmark::DoNotOptimize(i);
    Setting::rate(state, "accesses", 1000);
}

void add(const Shared &p) {
    const auto add = [&](const std::string &what, auto run, auto... arguments) {
        benchmark::RegisterBenchmark((what + "/" + p->name).c_str(), run, p, arguments...)
            ->Unit(benchmark::kMillisecond);
    };
    constexpr uint64_t fast = JORM_OPT_FAST, standard = 0;
    for (const auto &[kind, options] : {std::pair{std::string("fast"), fast}, {"standard", standard}}) {
        add("flood_" + kind, flood, options, Lists::none);
        add("flood_" + kind + "_lists", flood, options, Lists::large_pages);
        add("detect_" + kind, detect, options);
        add("mser_" + kind + "_one", generate, options, uint16_t{0}, Lists::none);
        add("mser_" + kind + "_both", generate, options, uint16_t{2}, Lists::none);
        add("mser_" + kind + "_both_lists", generate, options, uint16_t{2}, Lists::large_pages);
        for (const auto &q : tree_queries) add("tree_" + kind + "_" + q.name, query_tree, options, q.run);
    }
    add("flood_fast_lists_small_pages", flood, fast, Lists::small_pages);
    for (const auto &q : list_queries) add(std::string("stable_") + q.name, query_list, q.run, *q.filter);
    add("stable_features", gather);
    for (const auto &q : group_queries) add(std::string("groups_") + q.name, query_groups, q.run);
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
    benchmark::RegisterBenchmark("chase", chase)->RangeMultiplier(2)->Range(16 << 10, 128 << 20);
    benchmark::RunSpecifiedBenchmarks();
}
