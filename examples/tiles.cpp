// Large pictures by tiles, an environment for each thread: a Gaussian filter, and the histogram of its result.
//
//     tiles [size [tile]]
//
// Tiles are views of the whole picture, so a filter reads the true pixels beyond their edges: what comes out is the
// same, bit for bit, as without tiles.
#include <jorm/jorm.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <thread>
#include <vector>

namespace {

using Picture = jorm::view<uint8_t>;
const jorm::histogram::layout levels = {.bins = 256, .lo = 0, .hi = 255};

void work_on(const Picture &dst, const Picture &src, jorm::histogram &counts, jorm::environment *env) {
    jorm::gaussian(dst, src, {7, 7}, {.sigma = {1.5}, .env = env});
    counts.count(dst, {.env = env});
}

// Threads take the tiles as they come. Each has its own environment and counters, which are added up at the end.
std::vector<uint64_t> by_tiles(const Picture &dst, const Picture &src, int tile, int threads) {
    const int across = (src.columns() + tile - 1) / tile, down = (src.rows() + tile - 1) / tile;
    std::atomic<int> next = 0;
    std::vector<jorm::histogram> counts(static_cast<size_t>(threads));
    std::vector<std::thread> pool;
    for (jorm::histogram &own : counts) {
        own = jorm::histogram(levels);
        pool.emplace_back([&] {
            jorm::environment env;
            for (int i; (i = next++) < across * down;) {
                const jorm::rectangle part = {i / across * tile, i % across * tile, tile, tile};
                work_on(dst.sub(part), src.sub(part), own, &env);
            }
        });
    }
    for (std::thread &t : pool) t.join();
    std::vector<uint64_t> total(256);
    for (const jorm::histogram &own : counts)
        for (size_t v = 0; v < total.size(); ++v) total[v] += own[0][v];
    return total;
}

template <class Work> double seconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

int main(int argc, char **argv) {
    const int size = argc > 1 ? std::atoi(argv[1]) : 500, tile = argc > 2 ? std::atoi(argv[2]) : 128;
    if (size < 1 || tile < 1) return 2;
    const size_t pixels = size_t(size) * size_t(size);
    std::vector<uint8_t> noise(pixels), whole(pixels), tiled(pixels);
    uint32_t seed = 1;
    for (uint8_t &v : noise) v = uint8_t((seed = seed * 1664525u + 1013904223u) >> 24);
    const Picture src(noise, {size, size}), expected(whole, {size, size}), dst(tiled, {size, size});

    jorm::histogram counts(levels);
    const double at_once = seconds([&] { work_on(expected, src, counts, nullptr); });
    std::printf("%d x %d, at once: %.1f ms\n", size, size, at_once * 1e3);
    for (int threads = 1; threads <= 2; ++threads) {
        std::fill(tiled.begin(), tiled.end(), uint8_t(0));
        std::vector<uint64_t> total;
        const double time = seconds([&] { total = by_tiles(dst, src, tile, threads); });
        const bool same = tiled == whole && std::equal(total.begin(), total.end(), counts[0].begin());
        std::printf("tiles of %d, %d thread%s: %.1f ms, %s\n", tile, threads, threads > 1 ? "s" : "", time * 1e3,
                    same ? "the same bits" : "OTHER BITS");
        if (!same) return 1;
    }
    return 0;
}
