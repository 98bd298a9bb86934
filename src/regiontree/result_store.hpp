// Region records of one flood, and how a later flood of the same store gets their memory back.
#pragma once
#include "jorm/watershed.h"

namespace jorm {

// Takes records from a store in slabs. The root moves to the start of the first slab in the end, so that the store's
// root pointer leads to all of them.
class RegionPool {
public:
    explicit RegionPool(jorm_fwtsres *store) : store_(store) {}
    RegionPool(const RegionPool &) = delete;
    RegionPool &operator=(const RegionPool &) = delete;
    ~RegionPool() {
        if (first_) free_slabs(store_, first_);
    }

    // A zeroed record, null without memory.
    jorm_fwtsr *take() { return next_ != end_ ? next_++ : take_from_new_slab(); }

    // Makes `root` the tree of the store, which owns the records from then on.
    void finish(jorm_fwtsr *root);

    // Gives the tree that a store holds back to its storage.
    static void release(jorm_fwtsres *store);

private:
    struct Slab {
        Slab *next; // of the first slab: the latest one
        uint64_t unused;
        jorm_fwtsr *regions() { return reinterpret_cast<jorm_fwtsr *>(this + 1); }
    };
    jorm_fwtsr *take_from_new_slab();
    static void free_slabs(jorm_fwtsres *store, Slab *first);

    jorm_fwtsres *store_;
    Slab *first_ = nullptr;
    jorm_fwtsr *next_ = nullptr, *end_ = nullptr;
    size_t slab_regions_ = 0;
};

} // namespace jorm
