#include "regiontree/result_store.hpp"

#include "jorm/xe.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

static_assert(sizeof(jorm_fwtsr) == 48 && offsetof(jorm_fwtsr, level) == 8 && offsetof(jorm_fwtsr, area) == 12 &&
              offsetof(jorm_fwtsr, mser) == 16 && offsetof(jorm_fwtsr, next) == 24 &&
              offsetof(jorm_fwtsr, child) == 32 && offsetof(jorm_fwtsr, parent) == 40);
static_assert(sizeof(jorm_fwtsres) == 112 && offsetof(jorm_fwtsres, words) == 8 &&
              offsetof(jorm_fwtsres, buffer) == 16 && offsetof(jorm_fwtsres, storage) == 24 &&
              offsetof(jorm_fwtsres, inline_storage) == 32 && offsetof(jorm_fwtsres, saved_state) == 80);
static_assert(sizeof(jorm_fwtsres::inline_storage) == JORM_STORAGE_BYTES);
static_assert(sizeof(jorm_fwtsres::saved_state) == JORM_STORAGE_STATE_BYTES);

namespace jorm {
namespace {

constexpr size_t default_align = 16, region_align = 8;
constexpr size_t first_slab = 64, largest_slab = 16384; // regions

bool owns_storage(const jorm_fwtsres *store) { return store->storage == store->inline_storage; }

} // namespace

RegionPool::RegionPool(jorm_fwtsres *store) : store_(store), first_(slabs_of(store)) {
    store->root = nullptr;
    store->words = nullptr;
}

bool RegionPool::enter_next_slab() {
    Slab *slab = current_ ? current_->next : first_;
    if (!slab) {
        const size_t count = std::clamp(2 * (current_ ? current_->count : 0), first_slab, largest_slab);
        slab = static_cast<Slab *>(JormFWTSRESalloca(store_, sizeof(Slab) + count * sizeof(jorm_fwtsr), region_align));
        if (!slab) return false;
        *slab = {nullptr, count};
        (current_ ? current_->next : first_) = slab;
    }
    const bool first = !current_;
    current_ = slab;
    next_ = slab->regions() + first; // the first place is kept for the root
    end_ = slab->regions() + slab->count;
    return true;
}

void RegionPool::finish(jorm_fwtsr *root) {
    jorm_fwtsr *const place = first_->regions();
    *place = *root;
    for (jorm_fwtsr *child = place->child; child; child = child->next) child->parent = place;
    store_->root = place;
    first_ = nullptr;
}

void RegionPool::free_slabs(jorm_fwtsres *store, Slab *first) {
    while (Slab *const slab = first) {
        first = slab->next;
        JormFWTSRES_freea(store, slab);
    }
}

void RegionPool::release(jorm_fwtsres *store) {
    free_slabs(store, slabs_of(store));
    store->root = nullptr;
    store->words = nullptr;
}

} // namespace jorm

using namespace jorm;

jorm_fwtsres *JormFWTSRESinit(jorm_fwtsres *store, void *buffer, void *storage) {
    if (!store) return nullptr;
    RegionPool::release(store);
    if (buffer) store->buffer = static_cast<uint32_t *>(buffer);
    if (storage == store->inline_storage) storage = nullptr;
    if (storage) {
        if (owns_storage(store)) UlMEMSTGdestroy(store->storage);
        store->storage = storage;
    }
    if (!store->storage) store->storage = UlSMEMSTGopen(store->inline_storage, 0, 0);
    if (store->storage && !owns_storage(store)) UlSMEMSTGgetstate(store->saved_state, store->storage);
    return store;
}

jorm_fwtsres *JormFWTSRESfini(jorm_fwtsres *store) {
    if (!store) return nullptr;
    if (owns_storage(store))
        UlMEMSTGdestroy(store->storage);
    else if (store->storage)
        UlSMEMSTGsetstate(store->storage, store->saved_state);
    store->root = nullptr;
    store->words = store->buffer = nullptr;
    store->storage = nullptr;
    return store;
}

void *JormFWTSRESalloca(jorm_fwtsres *store, size_t size, size_t align) {
    return store && store->storage ? UlSMEMSTGaalloc(store->storage, size, align ? align : default_align, 0) : nullptr;
}

void JormFWTSRES_freea(jorm_fwtsres *store, void *block) {
    if (store && store->storage) UlSMEMSTGfree(store->storage, block);
}

jorm_fwtsr *JormFWTSRESnewregion(jorm_fwtsres *store, int32_t seed, int32_t level) {
    auto *const region = static_cast<jorm_fwtsr *>(JormFWTSRESalloca(store, sizeof(jorm_fwtsr), region_align));
    if (region) *region = {JORM_NO_PIXEL, seed, level, 0, 0, 0, nullptr, nullptr, nullptr};
    return region;
}
