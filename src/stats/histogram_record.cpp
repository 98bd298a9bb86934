// The life of histogram records.
#include "array/element.hpp"
#include "stats/statistics.hpp"

#include "jorm/xe.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

static_assert(offsetof(jorm_histdesc, nbins) == 4 && offsetof(jorm_histdesc, lo) == 8 &&
              offsetof(jorm_histdesc, hi) == 16 && offsetof(jorm_histdesc, f1) == 28 &&
              offsetof(jorm_histdesc, f2) == 32 && sizeof(jorm_histdesc) == 40);
static_assert(offsetof(jorm_histogram, ilo) == 4 && offsetof(jorm_histogram, ihi) == 8 &&
              offsetof(jorm_histogram, width) == 12 && offsetof(jorm_histogram, istep) == 16 &&
              offsetof(jorm_histogram, fsum) == 20 && offsetof(jorm_histogram, flo) == 24 &&
              offsetof(jorm_histogram, fhi) == 28 && offsetof(jorm_histogram, fspan) == 32 &&
              offsetof(jorm_histogram, fstep) == 36 && offsetof(jorm_histogram, product) == 40 &&
              offsetof(jorm_histogram, nbins) == 44 && offsetof(jorm_histogram, bins) == 48 &&
              sizeof(jorm_histogram) == 56);

using namespace jorm;

namespace {

void lay_out(jorm_histogram &h, const jorm_histdesc &d) {
    h.sum = 0;
    h.ilo = rounded(d.lo);
    h.ihi = rounded(d.hi);
    const uint32_t distance = uint32_t(h.ihi) - uint32_t(h.ilo), steps = std::min(distance, d.nbins - 1);
    h.width = distance + 1;
    h.istep = steps == 0 ? 0 : distance / steps;
    h.fsum = 0;
    h.flo = float(d.lo);
    h.fhi = float(d.hi);
    h.fspan = h.fhi - h.flo;
    h.fstep = d.nbins < 2 ? 0 : h.fspan / float(d.nbins - 1);
    h.product = d.f1 * d.f2;
    h.nbins = d.nbins;
    h.bins = nullptr;
}

// Counters come from the heap, or from the stack of an environment.
struct Memory {
    bool heap;
    jorm_xe *xe;

    bool take(jorm_histogram &h) const {
        const size_t bytes = (size_t(h.nbins) + 1) * sizeof *h.bins;
        void *p = heap ? _UlMcalloc(bytes / sizeof *h.bins, sizeof *h.bins) : JormXEalloca(xe, bytes, 0);
        if (p && !heap) std::memset(p, 0, bytes);
        h.bins = static_cast<uint32_t *>(p);
        return p != nullptr;
    }
    void give_back(jorm_histogram &h) const {
        if (heap)
            _UlMfree(h.bins);
        else if (h.bins)
            JormXEfreea(xe, h.bins);
        h.bins = nullptr;
    }
};
constexpr Memory heap = {true, nullptr};
Memory stack_of(jorm_xe *xe) { return {false, xe}; }

void finish(jorm_histogram *h, const Memory &memory) {
    if (!h) return;
    h->sum = h->product = 0;
    h->fsum = 0;
    memory.give_back(*h);
}

void reset(jorm_histogram *h) {
    if (!h) return;
    h->sum = 0;
    h->fsum = 0;
    if (h->bins) std::fill_n(h->bins, size_t(h->nbins) + 1, 0);
}

// The records that a channel code speaks of.
struct Channels {
    int32_t count = 0;
    uint32_t selected = 0;

    explicit Channels(uint32_t code) {
        const int32_t stored = stored_channels(code);
        if (stored < 1 || stored > 4) return;
        count = stored;
        const uint32_t all = (1u << count) - 1, asked = code >> 4 & 15;
        selected = asked ? asked & all : all;
    }
    bool has(int32_t c) const { return (selected >> c & 1) != 0; }
};

void lay_out(const Channels &channels, jorm_histogram *records, const jorm_histdesc *descriptions) {
    for (int32_t c = 0; c < channels.count; ++c) {
        if (channels.has(c)) {
            lay_out(records[c], descriptions[c]);
        } else {
            records[c].sum = 0;
            records[c].ilo = 0;
            records[c].bins = nullptr;
        }
    }
}

int64_t make(const Channels &channels, jorm_histogram *records, const jorm_histdesc *descriptions,
             const Memory &memory) {
    if (!records || !descriptions || channels.count == 0) return JORM_EINVAL;
    lay_out(channels, records, descriptions);
    for (int32_t c = 0; c < channels.count; ++c) {
        if (!channels.has(c) || memory.take(records[c])) continue;
        while (c-- > 0) memory.give_back(records[c]);
        return JORM_ENOMEM;
    }
    return JORM_OK;
}

int64_t init(uint32_t mode, const Channels &channels, jorm_histogram *records, const jorm_histdesc *descriptions,
             const Memory &memory) {
    if (mode == JORM_HIST_COUNTERS) return make(channels, records, descriptions, memory);
    if (mode > JORM_HIST_RESET || !records || channels.count == 0) return JORM_EINVAL;
    if (mode == JORM_HIST_HEADER) {
        if (!descriptions) return JORM_EINVAL;
        lay_out(channels, records, descriptions);
    } else {
        for (int32_t c = 0; c < channels.count; ++c)
            if (channels.has(c)) reset(&records[c]);
    }
    return JORM_OK;
}

} // namespace

uint32_t jorm_hist_inithdr(jorm_histogram *record, const jorm_histdesc *description) {
    if (!record || !description) return 0;
    lay_out(*record, *description);
    return record->nbins;
}
uint32_t jorm_hist_inithdr_$n(uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions) {
    const Channels channels(code);
    if (!records || !descriptions) return 0;
    lay_out(channels, records, descriptions);
    return channels.selected;
}

int64_t _jorm_histogram__$ia(jorm_histogram *record, const jorm_histdesc *description) {
    return make(Channels(1), record, description, heap);
}
int64_t _jorm_histogram__$xe(jorm_histogram *record, const jorm_histdesc *description, jorm_xe *xe) {
    return make(Channels(1), record, description, stack_of(xe));
}
int64_t _jorm_histogram__$n$ia(uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions) {
    return make(Channels(code), records, descriptions, heap);
}
int64_t _jorm_histogram__$n$xe(uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions, jorm_xe *xe) {
    return make(Channels(code), records, descriptions, stack_of(xe));
}

int64_t jorm_hist__init(uint32_t mode, jorm_histogram *record, const jorm_histdesc *description) {
    return init(mode, Channels(1), record, description, heap);
}
int64_t jorm_hist__init_xe(uint32_t mode, jorm_histogram *record, const jorm_histdesc *description, jorm_xe *xe) {
    return init(mode, Channels(1), record, description, stack_of(xe));
}
int64_t jorm_hist__init_n(uint32_t mode, uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions) {
    return init(mode, Channels(code), records, descriptions, heap);
}
int64_t jorm_hist__init_n_xe(uint32_t mode, uint32_t code, jorm_histogram *records, const jorm_histdesc *descriptions,
                             jorm_xe *xe) {
    return init(mode, Channels(code), records, descriptions, stack_of(xe));
}

void jorm_hist_fini(jorm_histogram *record) { finish(record, heap); }
void jorm_hist_fini_$xe(jorm_histogram *record, jorm_xe *xe) { finish(record, stack_of(xe)); }
void jorm_hist_fini_$n(uint32_t code, jorm_histogram *records) {
    for (int32_t c = Channels(code).count; records && c-- > 0;) finish(&records[c], heap);
}
void jorm_hist_fini_$n$xe(uint32_t code, jorm_histogram *records, jorm_xe *xe) {
    for (int32_t c = Channels(code).count; records && c-- > 0;) finish(&records[c], stack_of(xe));
}

void jorm_hist_reset(jorm_histogram *record) { reset(record); }
void jorm_hist_reset_$n(uint32_t code, jorm_histogram *records) {
    if (records) init(JORM_HIST_RESET, Channels(code), records, nullptr, heap);
}
