// Tree nodes and their walks, trees, tree builders.
#include "regiontree/builder.hpp"
#include "regiontree/treewalk.hpp"

#include "jorm/xe.h"

#include <cstddef>
#include <cstdlib>
#include <cstring>

static_assert(sizeof(jorm_agt) == 24 && offsetof(jorm_agt, child) == 8 && offsetof(jorm_agt, parent) == 16);
static_assert(sizeof(jorm_dgt) == 32 && offsetof(jorm_dgt, data) == 24);
static_assert(sizeof(jorm_st) == 40 && offsetof(jorm_st, root) == 0 && offsetof(jorm_st, builder) == 32);
static_assert(sizeof(jorm_stb) == 160 && offsetof(jorm_stb, flags) == 16 && offsetof(jorm_stb, extra) == 18);
static_assert(offsetof(jorm_stb, storage) == 24 && offsetof(jorm_stb, block_size) == 32);
static_assert(offsetof(jorm_stb, inline_storage) == 40 && offsetof(jorm_stb, saved_state) == 88);
static_assert(offsetof(jorm_stb, own_tree) == 120 && sizeof(jorm_stb::inline_storage) == JORM_STORAGE_BYTES);
static_assert(sizeof(jorm_stb::saved_state) == JORM_STORAGE_STATE_BYTES && sizeof(jorm_stbl) == 32);

namespace jorm {

const void *find_interface(const void *chain, uint32_t tag) {
    const char *record = static_cast<const char *>(chain);
    while (record) {
        uint32_t head[2];
        std::memcpy(head, record, sizeof head);
        if (head[0] == tag) return record;
        if (head[0] == 0 || head[1] == 0) break;
        record += head[1];
    }
    return nullptr;
}

namespace {

void use_storage(jorm_stb *builder, void *storage) {
    builder->storage = storage;
    if (storage) UlSMEMSTGgetstate(builder->saved_state, storage);
}

const jorm_stbl *hooks(const jorm_stb *builder) {
    return static_cast<const jorm_stbl *>(find_interface(builder->iface, JORM_STBL));
}

// Empties the builder's tree, and unless `keep` cuts the links between both.
void clear_tree(jorm_stb *builder, int32_t keep) {
    jorm_st *const tree = builder->tree;
    if (!tree) return;
    if (tree->builder != builder) {
        builder->tree = nullptr;
        return;
    }
    const jorm_stbl *const record = hooks(builder);
    if (void *const each = record && record->clear ? record->clear(builder, keep, record) : nullptr) {
        const auto visit = reinterpret_cast<void (*)(jorm_agt *, jorm_stb *)>(each);
        if (tree->root) {
            walk_preorder(tree->root, [&](jorm_agt *node, int32_t) {
                visit(node, builder);
                return 1;
            });
        }
    }
    if (tree->on_clear) tree->on_clear(tree, builder);
    tree->root = nullptr;
    if (keep) return;
    if (record && record->detach) record->detach(builder, record, 0);
    tree->builder = nullptr;
    builder->tree = nullptr;
}

void attach(jorm_stb *builder, jorm_st *tree) {
    if (tree->builder && tree->builder != builder) JormSTBclear(tree->builder, 0);
    builder->tree = tree;
    tree->builder = builder;
    const jorm_stbl *const record = hooks(builder);
    if (record && record->attach) record->attach(builder, record);
    if (tree->on_attach) tree->on_attach(tree, builder);
}

} // namespace

void *builder_alloc(jorm_stb *builder, size_t bytes, size_t align) {
    if (!builder->storage) use_storage(builder, UlSMEMSTGopen(builder->inline_storage, builder->block_size, 0));
    void *const block = UlSMEMSTGaalloc(builder->storage, bytes, align, 0);
    return block ? std::memset(block, 0, bytes) : nullptr;
}

} // namespace jorm

using namespace jorm;

// ---- Nodes ----

void __JormAGTaddchild(jorm_agt *parent, jorm_agt *child) {
    child->parent = parent;
    child->next = parent->child;
    parent->child = child;
}

jorm_agt *JormAGTaddchild(jorm_agt *parent, jorm_agt *child) {
    __JormAGTaddchild(parent, child);
    return parent;
}

int32_t JormAGTcountChildren(const jorm_agt *node, int32_t recursive) {
    if (!node) return 0;
    return recursive ? count_descendants(node, [](const jorm_agt *) { return true; }) : count_children(node);
}

jorm_dgt *__JormDGTnodeData(jorm_dgt *node, void *data) {
    node->data = data;
    std::memcpy(data, &node, sizeof(void *));
    return node;
}

jorm_dgt *JormDGTnodeData(jorm_dgt *node, void *data) { return __JormDGTnodeData(node, data); }

int32_t JormAGTwalkFromNode(jorm_agt *node, uint32_t order, jorm_agt_visit callback, void *context) {
    if (!node) return 0;
    const auto visit = [=](jorm_agt *n, int32_t index) { return callback(n, context, index); };
    switch (order) {
    case JORM_WALK_POSTORDER:
        return walk_postorder(node, visit);
    case JORM_WALK_INORDER:
        return walk_inorder(node, visit);
    case JORM_WALK_PREORDER:
        return walk_preorder(node, visit);
    default:
        return 0;
    }
}

int32_t JormAGTwalk(const jorm_st *tree, uint32_t order, jorm_agt_visit callback, void *context) {
    return tree ? JormAGTwalkFromNode(tree->root, order, callback, context) : 0;
}

// ---- Trees ----

jorm_st *__JormST_setbuilder(jorm_st *tree, jorm_stb *builder) {
    return !builder || JormSTBxtrntree(builder, tree) == builder ? tree : nullptr;
}

jorm_st *JormSTsetbuilder(jorm_st *tree, jorm_stb *builder) {
    if (tree && !builder && tree->builder) JormSTBxtrntree(tree->builder, nullptr);
    return __JormST_setbuilder(tree, builder);
}

jorm_st *JormSTinit(jorm_st *tree, jorm_stb *builder) {
    if (!tree) return nullptr;
    tree->root = nullptr;
    tree->builder = nullptr;
    return __JormST_setbuilder(tree, builder);
}

jorm_st *JormSTopen(jorm_st *tree, jorm_stb *builder) {
    if (tree) return JormSTinit(tree, builder);
    if (builder) return __JormSTBtree(JormSTBclear(builder, 0));
    tree = static_cast<jorm_st *>(std::malloc(sizeof *tree));
    if (!tree) return nullptr;
    *tree = {};
    tree->release = reinterpret_cast<void (*)(jorm_st *)>(std::free);
    return JormSTinit(tree, nullptr);
}

jorm_st *JormSTclear(jorm_st *tree, int32_t keep) {
    if (!tree || !tree->builder) return tree;
    return JormSTBclear(tree->builder, keep == 0) ? tree : nullptr;
}

jorm_st *JormSTfini(jorm_st *tree, int32_t mode) {
    if (!tree) return nullptr;
    jorm_stb *const builder = tree->builder;
    if (!builder) {
        tree->root = nullptr;
        return tree;
    }
    const bool embedded = tree == &builder->own_tree; // it may be gone with its builder
    if (mode == 0) {
        JormSTBclose(builder, 1);
    } else {
        JormSTBxtrntree(builder, nullptr);
    }
    return embedded ? nullptr : tree;
}

void JormSTclose(jorm_st *tree, int32_t mode) {
    if (JormSTfini(tree, mode) && tree->release) tree->release(tree);
}

// ---- Builders ----

jorm_stb *JormSTBinit(jorm_stb *builder, const void *iface, uint32_t extra, jorm_st *tree, void *storage,
                      size_t block_size) {
    if (!builder || builder->flags & JORM_STB_INITIALISED) return builder;
    jorm_st *const external = tree != &builder->own_tree ? tree : nullptr;
    if (external && external->builder == builder) external->builder = nullptr;
    builder->iface = iface;
    builder->tree = nullptr;
    builder->extra = uint16_t(extra);
    builder->block_size = block_size;
    use_storage(builder, storage != builder->inline_storage ? storage : nullptr);
    builder->own_tree = {};
    builder->flags = JORM_STB_INITIALISED;
    if (external) attach(builder, external);
    return builder;
}

jorm_stb *JormSTBopen(jorm_stb *builder, const void *iface, uint32_t extra, jorm_st *tree, void *storage,
                      size_t block_size) {
    const size_t bytes = sizeof(jorm_stb) + uint16_t(extra);
    uint16_t flags = 0;
    if (!builder) {
        void *const given = storage;
        if (!storage) storage = UlSMEMSTGopen(nullptr, block_size, 0);
        builder = static_cast<jorm_stb *>(UlSMEMSTGaalloc(storage, bytes, 8, 0));
        if (!builder) {
            if (!given) UlMEMSTGclose(storage);
            return nullptr;
        }
        flags = given ? JORM_STB_IN_STORAGE : JORM_STB_IN_STORAGE | JORM_STB_OWNS_STORAGE;
    }
    std::memset(static_cast<void *>(builder), 0, bytes);
    JormSTBinit(builder, iface, extra, tree, storage, block_size);
    builder->flags |= flags;
    return builder;
}

jorm_dgt *JormSTBnewnode(jorm_stb *builder) {
    return builder ? static_cast<jorm_dgt *>(builder_alloc(builder, sizeof(jorm_dgt), 8)) : nullptr;
}

jorm_st *__JormSTBtree(jorm_stb *builder) {
    if (!builder) return nullptr;
    if (!builder->tree) attach(builder, &builder->own_tree);
    return builder->tree;
}

void __JormSTBrootnode(jorm_stb *builder, jorm_agt *node) {
    if (jorm_st *const tree = __JormSTBtree(builder)) tree->root = node;
}

jorm_stb *JormSTBxtrntree(jorm_stb *builder, jorm_st *tree) {
    if (!builder || !tree) return JormSTBclear(builder, 0);
    if (builder->tree == tree || tree->builder == builder) return builder;
    if (tree == &builder->own_tree) return nullptr;
    JormSTBclear(builder, 0);
    attach(builder, tree);
    return builder;
}

jorm_stb *JormSTBclear(jorm_stb *builder, int32_t keep) {
    if (!builder) return nullptr;
    clear_tree(builder, keep);
    if (builder->storage) UlSMEMSTGsetstate(builder->storage, builder->saved_state);
    return builder;
}

jorm_stb *JormSTBfini(jorm_stb *builder, int32_t mode) {
    if (!builder || !(builder->flags & JORM_STB_INITIALISED)) return builder;
    jorm_st *const tree = builder->tree;
    const bool external = tree && tree != &builder->own_tree && tree->builder == builder;
    clear_tree(builder, 0);
    if (mode == 0 && external) JormSTclose(tree, 1);
    if (builder->storage == builder->inline_storage) {
        UlMEMSTGdestroy(builder->storage);
        builder->storage = nullptr;
    } else if (builder->storage) {
        UlSMEMSTGsetstate(builder->storage, builder->saved_state);
    }
    builder->flags &= uint16_t(~JORM_STB_INITIALISED);
    builder->block_size = 0;
    return builder;
}

void JormSTBclose(jorm_stb *builder, int32_t mode) {
    if (!builder) return;
    const uint16_t flags = builder->flags;
    void *const storage = builder->storage;
    JormSTBfini(builder, mode);
    if (!(flags & JORM_STB_IN_STORAGE) || !storage) return;
    if (flags & JORM_STB_OWNS_STORAGE) {
        UlMEMSTGclose(storage);
    } else {
        UlSMEMSTGfree(storage, builder);
    }
}
