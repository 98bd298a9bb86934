// Floods and stable regions of pictures that end at guard pages, and walks over what they leave.
#include "harness.hpp"

namespace {

// Every region lies within its parent, and areas add up to no more than the parent's.
int32_t check_region(jorm_fwtsr *region, void *pixels, int32_t) {
    fuzz::check(--*static_cast<int64_t *>(pixels) >= 0, "tree", "more regions than pixels");
    int64_t inside = 0;
    for (const jorm_fwtsr *c = region->child; c; c = c->next) {
        fuzz::check(c->parent == region, "tree", "parent");
        inside += c->area;
    }
    fuzz::check(inside <= region->area, "tree", "areas of children");
    return 1;
}

} // namespace

int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    static fuzz::Guarded memory[2];
    static jorm_xe *const environment = JormXEopen(nullptr, nullptr, 0);
    fuzz::ByteReader r(data, size);
    const int h = r.in(1, 40), w = r.in(1, 60), gap = r.one_in(2) ? r.in(0, 3) : 0;
    fuzz::Noise noise(r.word());
    const uint32_t levels[] = {0xFF, 1, 3, 0x1F, 0xC0}, keep = r.of(levels);
    jorm_array arrays[2], &image = arrays[0], &mask = arrays[1];
    for (int i = 0; i < 2; ++i) {
        const bool up = r.one_in(4);
        const int step = w + gap, span = (h - 1) * step;
        uint8_t *const lowest = memory[i].end() - span - w;
        for (int k = 0; k < span + w; ++k) lowest[k] = uint8_t(noise() >> 7 & keep);
        jorm_array_make(&arrays[i], JORM_U8, h, w, 1, 0, up ? lowest + span : lowest);
        arrays[i].stride[1] = up ? -step : step;
    }
    const jorm_site part = {{0, r.in(-2, h), r.in(-2, w), 0}, {1, r.in(0, h + 3), r.in(0, w + 3), 1}};
    const jorm_site *const roi = r.one_in(2) ? nullptr : &part;
    const bool masked = r.one_in(3);
    jorm_xe *const xe = r.one_in(6) ? nullptr : environment;
    const uint64_t options = (r.one_in(2) ? JORM_OPT_FAST : 0) | (r.one_in(3) ? JORM_OPT_MASK_INVERT : 0);

    jorm_fwtsres store = {};
    JormFWTSRESinit(&store, nullptr, nullptr);
    static uint32_t buffer[64 * 64 + 200];
    store.buffer = r.one_in(2) ? buffer : nullptr;
    jorm_fwtsparams params = {&store, r.in(0, 1), uint16_t(r.in(0, 9)), r.one_in(3) ? r.in(-2, h) : 0,
                              r.one_in(3) ? r.in(-2, w) : 0};
    if (r.one_in(12)) params.seed_row = r.hostile_int();
    if (r.one_in(12)) params.seed_column = r.hostile_int();
    for (int turn = 0; turn < 2; ++turn) {
        if (masked)
            JormWatershedEx(xe, options, &image, &mask, roi ? roi->origin : nullptr, roi ? roi->size : nullptr,
                            &params);
        else
            JormWatershed(xe, options, &image, roi, &params);
        int64_t pixels = 2 * int64_t(h) * w + 2;
        jorm_fwtsr_walk(store.root, JORM_WALK_PREORDER, check_region, &pixels);
    }
    JormFWTSRESfini(&store);

    jorm_mser mser = {};
    mser.delta = r.one_in(8) ? r.hostile_int() : r.in(0, 30);
    mser.max_area_fraction = r.one_in(8) ? float(r.number()) : 0.5F;
    mser.max_variation = r.one_in(8) ? float(r.number()) : 1;
    mser.min_diversity = r.one_in(8) ? float(r.number()) : 0.1F;
    mser.min_area = r.one_in(8) ? r.hostile_int() : r.in(0, 9);
    mser.passes = uint16_t(r.in(0, 2));
    mser.shift = uint8_t(r.in(0, 9));
    const int64_t status = masked ? JormGenerateMSERsEx(xe, options, &image, &mask, nullptr, nullptr, &mser)
                                  : JormGenerateMSERs(xe, options, &image, roi, &mser);
    if (status >= 0) {
        fuzz::check(mser.dark_count + mser.bright_count == mser.regions.count, "mser", "counts");
        jorm_vector out = {};
        jorm_mserfilt filter = {};
        filter.nesting = uint32_t(r.in(0, 3));
        filter.min_area = r.in(0, 20);
        JormGatherMSERsFeatures(&out, &mser, r.one_in(2) ? &filter : nullptr);
        JormMSERfreeFeatures(&out);
    }
    if (mser.dark_store) JormFWTSRESfini(mser.dark_store);
    if (mser.bright_store) JormFWTSRESfini(mser.bright_store);
    _UlMfree(mser.regions.data);
    return 0;
}
