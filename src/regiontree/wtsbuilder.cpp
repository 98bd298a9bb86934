// The watershed tree builder: a tree builder whose nodes carry region blocks.
//
// A block is one allocation of 32 bytes, the jorm_wtsrgn and the features; its address is that of the jorm_wtsrgn.
#include "regiontree/builder.hpp"

#include "jorm/xe.h"

#include <cstddef>

static_assert(sizeof(jorm_wtsl) == 88 && offsetof(jorm_wtsl, allocate) == 8 && offsetof(jorm_wtsl, lazymerge) == 80);
static_assert(sizeof(jorm_wtstb) == 208 && offsetof(jorm_wtstb, layout) == 160);

namespace jorm {
namespace {

constexpr size_t in_front = 32; // bytes of a block's allocation before the block

using Layout = jorm_wtslsc;

Layout &client_layout(jorm_stb *builder) { return reinterpret_cast<jorm_wtstb *>(builder)->layout; }

jorm_wtsrgn *region(void *block) { return static_cast<jorm_wtsrgn *>(block); }

jorm_agt *node_of(void *block) { return static_cast<jorm_agt *>(region(block)->node); }

// operation(feature, its data in the block)
template <class Operation> void for_features(const Layout &layout, void *block, Operation operation) {
    for (int32_t i = 0; i < layout.count; ++i) {
        const jorm_wtsfeature &feature = layout.features[i];
        operation(feature, static_cast<char *>(block) + feature.offset);
    }
}

const Layout &use(const Layout *layout, jorm_stb *builder) { return layout ? *layout : client_layout(builder); }

// ---- The entries of the chains ----

void *allocate(void *, jorm_stb *builder, size_t size, size_t align) { return builder_alloc(builder, size, align); }

void *new_region(void *, jorm_stb *builder, const Layout *given) {
    const Layout &layout = use(given, builder);
    const size_t size = layout.block_size < int32_t(sizeof(jorm_wtsrgn)) ? sizeof(jorm_wtsrgn) : layout.block_size;
    char *const memory = static_cast<char *>(builder_alloc(builder, in_front + size, 0));
    if (!memory) return nullptr;
    void *const block = memory + in_front;
    for_features(layout, block, [](const jorm_wtsfeature &feature, void *data) {
        if (feature.init) feature.init(data, feature.parameter);
    });
    return block;
}

void gather(void *, jorm_stb *builder, const Layout *given, int32_t request) {
    if (request == 0 || !builder->tree) return;
    const auto visit = [](jorm_agt *node, void *layout, int32_t) -> int32_t {
        void *const block = reinterpret_cast<jorm_dgt *>(node)->data;
        if (!block) return 1;
        for_features(*static_cast<const Layout *>(layout), block, [=](const jorm_wtsfeature &feature, void *data) {
            if (feature.ongather) feature.ongather(data, block);
        });
        return 1;
    };
    Layout layout = use(given, builder);
    JormAGTwalk(builder->tree, JORM_WALK_PREORDER, visit, &layout);
}

// Area, links and root; the features are the caller's.
void join(jorm_stb *builder, void *parent, void *child) {
    region(parent)->area += region(child)->area;
    jorm_agt *const above = node_of(parent), *const below = node_of(child);
    if (above && below) __JormAGTaddchild(above, below);
    if (above) __JormSTBrootnode(builder, above);
}

void merge(void *, jorm_stb *builder, const Layout *given, void *parent, void *child) {
    join(builder, parent, child);
    for_features(use(given, builder), parent, [=](const jorm_wtsfeature &feature, void *data) {
        if (feature.merge) feature.merge(data, static_cast<char *>(child) + feature.offset);
    });
}

void lazy_merge(void *, jorm_stb *builder, const Layout *given, void *parent, void *child) {
    join(builder, parent, child);
    for_features(use(given, builder), parent, [=](const jorm_wtsfeature &feature, void *data) {
        if (feature.lazymerge) feature.lazymerge(data, static_cast<char *>(child) + feature.offset);
    });
}

// How new pixels reach the features of a block.
struct Any {
    static void update(const jorm_wtsfeature &f, void *data, const void *pixels, int32_t n) {
        if (f.update) f.update(data, pixels, n);
    }
    static void update2D(const jorm_wtsfeature &f, void *data, const void *pixels, int32_t n) {
        if (f.update2D) f.update2D(data, pixels, n);
    }
};

struct Moments {
    static void update(const jorm_wtsfeature &, void *data, const void *pixels, int32_t n) {
        __JormWTSMF__update__(data, pixels, n);
    }
    static void update2D(const jorm_wtsfeature &, void *data, const void *pixels, int32_t n) {
        __JormWTSMF__update2D__(data, pixels, n);
    }
};

struct Pixels {
    static void update(const jorm_wtsfeature &, void *data, const void *pixels, int32_t n) {
        JormWTSPF_update_n(data, pixels, n);
    }
    static void update2D(const jorm_wtsfeature &, void *data, const void *pixels, int32_t n) {
        JormWTSPF_update2D_n(data, pixels, n);
    }
};

struct Mixed : Any {
    static void update2D(const jorm_wtsfeature &f, void *data, const void *pixels, int32_t n) {
        if (f.update2D == __JormWTSMF__update2D__) {
            Moments::update2D(f, data, pixels, n);
        } else if (f.update2D == JormWTSPF_update2D_n) {
            Pixels::update2D(f, data, pixels, n);
        } else {
            Any::update2D(f, data, pixels, n);
        }
    }
};

template <class How>
void update(void *, jorm_stb *builder, const Layout *given, void *block, const void *pixels, int32_t n) {
    region(block)->area += n;
    for_features(use(given, builder), block,
                 [=](const jorm_wtsfeature &feature, void *data) { How::update(feature, data, pixels, n); });
}

template <class How>
void update2D(void *, jorm_stb *builder, const Layout *given, void *block, const void *pixels, int32_t n) {
    region(block)->area += n;
    for_features(use(given, builder), block,
                 [=](const jorm_wtsfeature &feature, void *data) { How::update2D(feature, data, pixels, n); });
}

void *disposer(jorm_stb *builder, int32_t, const void *) {
    const Layout &layout = client_layout(builder);
    bool owns = false;
    for (int32_t i = 0; i < layout.count; ++i) owns = owns || layout.features[i].destroy;
    if (!owns) return nullptr;
    void (*const dispose)(jorm_agt *, jorm_stb *) = [](jorm_agt *node, jorm_stb *b) {
        if (void *const block = reinterpret_cast<jorm_dgt *>(node)->data)
            __JormWTSTBdestroyrgn(nullptr, b, nullptr, block);
    };
    return reinterpret_cast<void *>(dispose);
}

void setup(void *, jorm_stb *builder, const Layout *layout, uint64_t flags);

struct Chain {
    jorm_stbl stbl;
    jorm_wtsl wtsl;
    uint32_t end[2];
};

template <class How, class How2D> constexpr Chain chain() {
    return {{JORM_STBL, sizeof(jorm_stbl), disposer, nullptr, nullptr},
            {JORM_WTSL, sizeof(jorm_wtsl), allocate, setup, gather, new_region, __JormWTSTBdestroyrgn,
             __JormWTSTBdisposergn, update<How>, update2D<How2D>, merge, lazy_merge},
            {}};
}

enum { general, mixed, moments_only, pixels_only };
constexpr Chain chains[] = {chain<Any, Any>(), chain<Any, Mixed>(), chain<Moments, Moments>(), chain<Pixels, Pixels>()};

bool is_one_of_ours(const void *iface) {
    for (const Chain &c : chains) {
        if (iface == &c) return true;
    }
    return false;
}

void setup(void *, jorm_stb *builder, const Layout *layout, uint64_t flags) {
    if (layout) client_layout(builder) = *layout;
    const Layout &now = client_layout(builder);
    const bool single = (flags & JORM_WTS_SINGLE) && now.count == 1;
    if (flags & JORM_WTS_MIXED) {
        builder->iface = &chains[mixed];
    } else if (single && now.features->magic == JORM_WTS_MOMENTS) {
        builder->iface = &chains[moments_only];
    } else if (single && now.features->magic == JORM_WTS_PIXELS) {
        builder->iface = &chains[pixels_only];
    } else if (is_one_of_ours(builder->iface)) { // one chosen for an earlier layout would not do
        builder->iface = &chains[general];
    }
}

} // namespace
} // namespace jorm

using namespace jorm;

const void *JormWTSTBxinterface(void) { return &chains[general]; }

jorm_stb *__JormWTSTBinit__(jorm_stb *builder) {
    if (builder) builder->iface = &chains[general];
    return builder;
}

jorm_stb *JormWTSTBinit(jorm_stb *builder, jorm_st *tree, void *storage, size_t block_size) {
    return JormSTBinit(builder, &chains[general], sizeof(jorm_wtslsc), tree, storage, block_size);
}

jorm_stb *JormWTSTBopen(jorm_stb *builder, jorm_st *tree, void *storage, size_t block_size) {
    return JormSTBopen(builder, &chains[general], sizeof(jorm_wtslsc), tree, storage, block_size);
}

void *__JormWTSTBnewregion(void *context, jorm_stb *builder, const jorm_wtslsc *layout) {
    if (!builder) return nullptr;
    const auto *const own = static_cast<const jorm_wtsl *>(find_interface(builder->iface, JORM_WTSL));
    return (own && own->newregion ? own->newregion : new_region)(context, builder, layout);
}

jorm_dgt *__JormWTSTBnewnodeWithRegion(jorm_stb *builder, void *block) {
    jorm_dgt *const node = block ? JormSTBnewnode(builder) : nullptr;
    return node ? __JormDGTnodeData(node, block) : nullptr;
}

jorm_dgt *__JormWTSTBnewregionNode(void *context, jorm_stb *builder, const jorm_wtslsc *layout) {
    void *const block = __JormWTSTBnewregion(context, builder, layout);
    jorm_dgt *const node = __JormWTSTBnewnodeWithRegion(builder, block);
    if (block && !node) {
        __JormWTSTBdestroyrgn(context, builder, layout, block);
        UlSMEMSTGfree(builder->storage, static_cast<char *>(block) - in_front);
    }
    return node;
}

void __JormWTSTBdestroyrgn(void *, jorm_stb *builder, const jorm_wtslsc *layout, void *block) {
    for_features(use(layout, builder), block, [](const jorm_wtsfeature &feature, void *data) {
        if (feature.destroy) feature.destroy(data, nullptr);
    });
}

void __JormWTSTBdisposergn(void *, jorm_stb *, const jorm_wtslsc *, void *) {}
