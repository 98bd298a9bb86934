// Region records of one flood, and how a later flood of the same store gets their memory back.
#pragma once
#include "jorm/watershed.h"

namespace jorm {

// Takes records from a store in slabs. The root moves to the start of the first slab in the end, so that the store's
// root pointer leads to all of them. The next flood takes them over: giving them back one by one would not do, for
// other blocks may lie above them in the storage.
class RegionPool {
public:
    // Empties the store.
    explicit RegionPool(jorm_fwtsres *store);
    RegionPool(const RegionPool &) = delete;
    RegionPool &operator=(const RegionPool &) = delete;
    ~RegionPool() { free_slabs(store_, first_); }

    // A zeroed record, null without memory.
    jorm_fwtsr *take() {
        if (next_ == end_ && !enter_next_slab()) return nullptr;
        *next_ = {};
        return next_++;
    }

    // Makes `root` the tree of the store, which owns the records from then on.
    void finish(jorm_fwtsr *root);

    // Empties the store and gives its records back to the storage.
    static void release(jorm_fwtsres *store);

private:
    struct Slab {
        Slab *next;
        size_t count;
        jorm_fwtsr *regions() { return reinterpret_cast<jorm_fwtsr *>(this + 1); }
    };
    bool enter_next_slab();
    static Slab *slabs_of(const jorm_fwtsres *store) {
        return store->root ? reinterpret_cast<Slab *>(store->root) - 1 : nullptr;
    }
    static void free_slabs(jorm_fwtsres *store, Slab *first);

    jorm_fwtsres *store_;
    Slab *first_, *current_ = nullptr;
    jorm_fwtsr *next_ = nullptr, *end_ = nullptr;
};

} // namespace jorm
