// Walks against recursive ones, the life of trees and builders, region features against the pixels they stand for.
#include "jorm/regiontree.h"
#include "support/failures.hpp"
#include "support/picture.hpp"

#include <functional>
#include <set>

namespace {

// ---- Walks ----

template <class Node> using Visit = std::function<int32_t(Node *, int32_t)>;

template <class Node> int32_t slow_preorder(Node *node, const Visit<Node> &visit) {
    int32_t r = visit(node, 0);
    if (r == 0) return 0;
    if (r == -1) return 1;
    if (r < 0) return -1;
    for (Node *child = node->child; child && r >= 1; child = child->next) r = slow_preorder(child, visit);
    return r < 0 ? -r : r;
}

template <class Node> int32_t slow_postorder(Node *node, const Visit<Node> &visit) {
    for (Node *child = node->child; child; child = child->next) {
        if (!slow_postorder(child, visit)) return 0;
    }
    return visit(node, 0) != 0;
}

template <class Node> int32_t slow_inorder(Node *node, const Visit<Node> &visit) {
    if (!node->child) return visit(node, -1);
    if (!slow_inorder(node->child, visit)) return 0;
    if (!node->child->next) return visit(node, 0);
    int32_t gap = 0;
    for (Node *child = node->child->next; child; child = child->next) {
        if (!visit(node, gap++) || !slow_inorder(child, visit)) return 0;
    }
    return 1;
}

template <class Node> void add(Node *parent, Node *child) {
    child->parent = parent;
    child->next = parent->child;
    parent->child = child;
}

// A tree whose nodes hang below one of the `reach` nodes before them: small numbers make it deep.
template <class Node> void grow(std::vector<Node> &nodes, Random &r, int reach) {
    for (Node &n : nodes) n.next = n.child = n.parent = nullptr;
    for (size_t i = 1; i < nodes.size(); ++i) add(&nodes[i - 1 - r() % std::min<size_t>(i, size_t(reach))], &nodes[i]);
}

// One kind of node, its exported walk and the order codes of pre-, in- and post-order.
template <class Node> struct Walker;
template <> struct Walker<jorm_agt> {
    static constexpr uint32_t orders[] = {3, 2, 1};
    static constexpr auto walk = JormAGTwalkFromNode;
};
template <> struct Walker<jorm_fwtsr> {
    static constexpr int32_t orders[] = {1, 2, 3};
    static constexpr auto walk = jorm_fwtsr_walk;
};

template <class Node> struct Walks : testing::Test {};
using Nodes = testing::Types<jorm_agt, jorm_fwtsr>;
TYPED_TEST_SUITE(Walks, Nodes, );

// Visits and results equal those of the recursive walks, from any node, whatever the callback answers.
TYPED_TEST(Walks, EqualRecursiveOnes) {
    using Node = TypeParam;
    using Trace = std::vector<std::pair<const Node *, int32_t>>;
    Random r(1);
    constexpr int32_t (*const slow[])(Node *, const Visit<Node> &) = {slow_preorder, slow_inorder, slow_postorder};
    for (int round = 0; round < 600; ++round) {
        std::vector<Node> nodes(size_t(r.in(1, 400)));
        if (round % 2) nodes.resize(std::min<size_t>(nodes.size(), 64));
        grow(nodes, r, r.of(std::array{1, 2, 3, 8, 1000}));
        if (round % 2) // no parent links are needed above the 64th level
            for (Node &n : nodes) n.parent = nullptr;
        const uint32_t often = r.of(std::array{1u, 3u, 30u, 1000000u});
        const uint32_t seed = r();
        const auto answer = [&](const Node *n, int32_t index) -> int32_t {
            const uint32_t mixed =
                (seed ^ uint32_t(n - nodes.data()) * 2654435761u ^ uint32_t(index)) * 2246822519u >> 7;
            return mixed % often ? 1 : std::array{0, -1, -2, INT32_MIN, 7}[mixed / often % 5];
        };
        Node *const start = &nodes[round % 3 ? 0 : r() % nodes.size()];
        for (int kind = 0; kind < 3; ++kind) {
            Trace wanted, got;
            const int32_t result = slow[kind](start, [&](Node *n, int32_t i) {
                wanted.push_back({n, i});
                return answer(n, i);
            });
            auto visit = [&](Node *n, int32_t i) {
                got.push_back({n, i});
                if (kind == 2) std::memset(static_cast<void *>(n), 0xEE, sizeof *n); // may be released
                return answer(n, i);
            };
            const auto callback = [](Node *n, void *context, int32_t i) {
                return (*static_cast<decltype(visit) *>(context))(n, i);
            };
            EXPECT_EQ(Walker<Node>::walk(start, Walker<Node>::orders[kind], callback, &visit), result);
            EXPECT_EQ(got, wanted) << "round " << round << " kind " << kind;
        }
    }
}

TYPED_TEST(Walks, DeepAndWideTrees) {
    using Node = TypeParam;
    constexpr int64_t n = 1000000;
    std::vector<Node> chain(2 * n), wide(n + 1); // a chain in which every node has a leaf before its next one
    for (int64_t i = 0; i < n; ++i) {
        if (i + 1 < n) add(&chain[i], &chain[i + 1]);
        add(&chain[i], &chain[n + i]);
        add(&wide[0], &wide[i + 1]);
    }
    for (auto *nodes : {&chain, &wide})
        for (int kind = 0; kind < 3; ++kind) {
            int64_t visits = 0;
            const auto count = [](Node *, void *visited, int32_t) -> int32_t {
                return ++*static_cast<int64_t *>(visited), 1;
            };
            EXPECT_EQ(Walker<Node>::walk(nodes->data(), Walker<Node>::orders[kind], count, &visits), 1);
            // In order the wide root comes between every two of its leaves.
            EXPECT_EQ(visits, nodes == &wide && kind == 1 ? 2 * n - 1 : int64_t(nodes->size()));
        }
    if constexpr (std::is_same_v<Node, jorm_agt>) {
        expect_each(2 * n - 1, {JormAGTcountChildren(chain.data(), 1)});
        expect_each(n, {JormAGTcountChildren(wide.data(), 0), JormAGTcountChildren(wide.data(), 1)});
    }
}

TEST(Walk, NothingToWalk) {
    jorm_st tree = {};
    jorm_agt node = {};
    const auto never = [](jorm_agt *, void *, int32_t) -> int32_t { return ADD_FAILURE(), 1; };
    expect_each(0, {JormAGTwalk(nullptr, 1, never, nullptr), JormAGTwalk(&tree, 3, never, nullptr),
                    JormAGTwalkFromNode(nullptr, 2, never, nullptr), JormAGTwalkFromNode(&node, 0, never, nullptr),
                    JormAGTwalkFromNode(&node, 4, never, nullptr), JormAGTcountChildren(nullptr, 1)});
}

// ---- Trees and builders ----

std::string events;

// An interface chain with a foreign record in front; the hooks write down what they see.
struct TestChain {
    uint32_t foreign[4] = {5, 16, 0, 0};
    jorm_stbl stbl = {JORM_STBL, sizeof(jorm_stbl), clear, attach, detach};
    uint32_t end[2] = {};

    static void note(const char *what, const jorm_stb *b) {
        events += what;
        events += b->tree && b->tree->builder == b ? "+" : "-";
        events += b->tree && b->tree->root ? "r " : " ";
    }
    static void *clear(jorm_stb *b, int32_t keep, const void *record) {
        EXPECT_EQ(static_cast<const jorm_stbl *>(record)->tag, uint32_t(JORM_STBL));
        note(keep ? "keep" : "clear", b);
        void (*const each)(jorm_agt *, jorm_stb *) = [](jorm_agt *, jorm_stb *) { events += "n "; };
        return reinterpret_cast<void *>(each);
    }
    static void attach(jorm_stb *b, const void *) { note("attach", b); }
    static void detach(jorm_stb *b, const void *, int32_t zero) {
        EXPECT_EQ(zero, 0);
        note("detach", b);
    }
};

jorm_st noted_tree() {
    jorm_st tree = {};
    tree.on_attach = [](jorm_st *, jorm_stb *b) { TestChain::note("on", b); };
    tree.on_clear = [](jorm_st *, jorm_stb *b) { TestChain::note("off", b); };
    tree.release = [](jorm_st *) { events += "released "; };
    return tree;
}

void plant(jorm_stb *builder) {
    jorm_dgt *const root = JormSTBnewnode(builder);
    JormAGTaddchild(&root->node, &JormSTBnewnode(builder)->node);
    __JormSTBrootnode(builder, &root->node);
}

// What the calls since the last question have set off.
std::string said() { return std::exchange(events, std::string()); }

TEST(Builder, HooksSeeTheLinksTheyAreDocumentedToSee) {
    const TestChain chain;
    jorm_stb a = {}, b = {};
    jorm_st tree = noted_tree();
    EXPECT_EQ(JormSTBinit(&a, &chain, 0, &tree, nullptr, 0), &a);
    EXPECT_EQ(said(), "attach+ on+ ");
    plant(&a);
    EXPECT_EQ(JormSTBclear(&a, 1), &a);
    EXPECT_EQ(said(), "keep+r n n off+r ");
    EXPECT_TRUE(tree.builder == &a && a.tree == &tree && !tree.root);
    plant(&a);
    JormSTBinit(&b, nullptr, 0, nullptr, nullptr, 0);
    EXPECT_EQ(JormSTsetbuilder(&tree, &b), &tree); // the first builder is cleared, the second has no hooks
    EXPECT_EQ(said(), "clear+r n n off+r detach+ on+ ");
    EXPECT_TRUE(!a.tree && b.tree == &tree && tree.builder == &b);
    EXPECT_EQ(JormSTclear(&tree, 0), &tree);
    EXPECT_EQ(said(), "off+ ");
    EXPECT_EQ(tree.builder, &b);
    EXPECT_EQ(JormSTclear(&tree, 1), &tree);
    EXPECT_EQ(said(), "off+ ");
    EXPECT_TRUE(!tree.builder && !b.tree);
    EXPECT_TRUE(JormSTclear(&tree, 1) == &tree && JormSTBclear(&b, 0) == &b && JormSTBclear(&b, 0) == &b);
    EXPECT_EQ(said(), "");
    JormSTBxtrntree(&a, &tree);
    JormSTBfini(&a, 1); // leaves the tree to its owner
    EXPECT_EQ(said(), "attach+ on+ clear+ off+ detach+ ");
    JormSTBinit(&a, nullptr, 0, &tree, nullptr, 0);
    JormSTBfini(&a, 0); // closes it
    EXPECT_EQ(said(), "on+ off+ released ");
    JormSTBfini(&a, 0);
    JormSTBfini(&b, 0);
    EXPECT_EQ(said(), "");
}

TEST(Builder, EmbeddedTreeAndForgottenTree) {
    jorm_stb a = {}, b = {};
    JormSTBinit(&a, nullptr, 0, nullptr, nullptr, 0);
    EXPECT_TRUE(!JormSTBxtrntree(&a, &a.own_tree) && !JormSTinit(&a.own_tree, &a));
    EXPECT_EQ(JormSTopen(nullptr, &a), &a.own_tree);
    EXPECT_EQ(JormSTBxtrntree(&a, &a.own_tree), &a); // attached now
    plant(&a);
    EXPECT_EQ(JormAGTcountChildren(__JormSTBtree(&a)->root, 1), 1);
    EXPECT_EQ(JormSTfini(&a.own_tree, 1), nullptr);
    EXPECT_TRUE(!a.tree && !a.own_tree.root && !a.own_tree.builder);

    jorm_st tree = {};
    JormSTinit(&tree, &a);
    JormSTBinit(&a, nullptr, 9, nullptr, nullptr, 0); // initialised already
    EXPECT_TRUE(a.extra == 0 && a.tree == &tree);
    tree.builder = &b; // a builder only forgets a tree that names another one
    tree.root = reinterpret_cast<jorm_agt *>(&tree);
    JormSTBclear(&a, 0);
    EXPECT_TRUE(!a.tree && tree.root && tree.builder == &b);
    JormSTBfini(&a, 0); // initialised again, with a tree that still names it
    tree = {};
    tree.builder = &a;
    JormSTBinit(&a, nullptr, 0x30007, &tree, a.inline_storage, 0);
    EXPECT_TRUE(a.tree == &tree && a.extra == 7 && a.storage == nullptr && a.flags == 1);
    EXPECT_EQ(JormSTfini(&tree, 0), &tree); // closes the builder
    EXPECT_TRUE(!tree.builder && !(a.flags & 1));
}

// Clearing takes the storage back to where the builder found it, wherever record and storage came from.
TEST(Builder, StorageGoesBack) {
    void *const storage = UlSMEMSTGopen(nullptr, 0, 0);
    UlSMEMSTGaalloc(storage, 100, 16, 0);
    void *const top = UlSMEMSTGaalloc(storage, 100, 16, 0);
    UlSMEMSTGfree(storage, top);
    jorm_stb record;
    for (jorm_stb *given : {static_cast<jorm_stb *>(nullptr), &record}) {
        for (void *s : {static_cast<void *>(nullptr), storage}) {
            if (given) std::memset(static_cast<void *>(given), 0xFF, sizeof *given);
            jorm_st *const tree = JormSTopen(nullptr, nullptr);
            jorm_stb *const b = JormSTBopen(given, nullptr, given ? 0 : 1000, tree, s, 256);
            EXPECT_EQ(b->flags, 1 | (given ? 0 : 16) | (given || s ? 0 : 32));
            jorm_dgt *const first = JormSTBnewnode(b);
            for (int round = 0; round < 3; ++round) {
                for (int i = 0; i < 500; ++i) {
                    jorm_dgt *const node = JormSTBnewnode(b);
                    EXPECT_TRUE(!node->data && !node->node.next && !node->node.child && !node->node.parent);
                    std::memset(static_cast<void *>(node), 0xEE, sizeof *node);
                }
                JormSTBclear(b, 1);
                EXPECT_EQ(JormSTBnewnode(b), first);
            }
            EXPECT_EQ(tree->builder, b);
            JormSTBclose(b, 0); // and frees the tree
            void *const again = UlSMEMSTGaalloc(storage, 100, 16, 0);
            EXPECT_EQ(again, top);
            UlSMEMSTGfree(storage, again);
        }
    }
    UlMEMSTGclose(storage);
    JormSTclose(nullptr, 0);
    JormSTBclose(nullptr, 0);
}

// ---- Layouts ----

TEST(Layout, BlocksAndVolumes) {
    jorm_wtsfeature features[3] = {};
    for (uint32_t i = 0; i < 3; ++i) features[i].magic = 10 + i % 2, features[i].size = std::array{4, 12, 8}[i];
    jorm_wtslsc layout;
    const int32_t dims[] = {7, 11, 13, 1}, strides[] = {10000, 500, 4, 1};
    const auto expect = [&](int32_t bytes, const std::array<int32_t, 8> &volume) {
        EXPECT_EQ(layout.block_size, bytes);
        EXPECT_TRUE(std::equal(volume.begin(), volume.end(), layout.volume));
    };
    EXPECT_EQ(JormWTSLSCinit(&layout, features, 3, 4, dims, strides), &layout);
    EXPECT_EQ((std::array{features[0].offset, features[1].offset, features[2].offset}), (std::array{24u, 32u, 48u}));
    expect(56, {1, 11, 13, 1, 5500, 500, 1, 1});
    features[0].size = 400;
    JormWTSLSCfixup(&layout);
    EXPECT_EQ(layout.block_size, 56);
    JormWTSLSCinit(&layout, features, 0, 2, dims + 2, strides + 2);
    expect(24, {1, 1, 13, 1, 0, 0, 1, 1});
    JormWTSLSCinit2D(&layout, features, -5, 11, 13, 500);
    expect(24, {1, 11, 13, 1, 5500, 500, 1, 1});
    EXPECT_TRUE(layout.count == 0 && JormWTSFindexByMagic(features, 3, 11) == 1);
    expect_each(-1, {JormWTSFindexByMagic(features, 3, 12), JormWTSFindexByMagic(features, -1, 10)});
}

// ---- Features ----

struct Wide { // a pixel as update takes it
    int32_t other, row, column, rest[5];
};

// A line of slope 1/2, seen from the column axis toward the row axis; the count is negative until it is gathered.
TEST(Moments, FiguresOfKnownPixels) {
    jorm_moments line = {}, other = {};
    for (int32_t i = 0; i < 100; ++i) {
        const int32_t place[] = {50 + i, 7 + 2 * i};
        __JormWTSMF__update2D__(&line, place, 1);
    }
    EXPECT_TRUE(line.count == -100 && !__JormWTSMF__isgathered__(&line));
    __JormWTSMF__ongather__(&line, nullptr);
    EXPECT_TRUE(line.count == 100 && jorm_mf_my(&line) == 99.5 && jorm_mf_mx(&line) == 106);
    double second[3];
    EXPECT_EQ(jorm_mf_M2(second, &line), second);
    for (int k = 0; k < 3; ++k) EXPECT_NEAR(second[k], (1 << k) * 9999 / 12., 1e-9);
    EXPECT_TRUE(jorm_mf_Myy(&line) == second[0] && jorm_mf_Mxy(&line) == second[1] && jorm_mf_Mxx(&line) == second[2]);
    EXPECT_NEAR(jorm_mf_theta(&line), std::atan(0.5), 1e-12);
    other.count = 5, other.sum_x = 100;
    __JormWTSMF__merge__(&line, &other);
    EXPECT_TRUE(line.count == 105 && other.count == 5 && line.sum_x == 10700);
    const Wide wide[] = {{9, -4, 65536, {}}, {9, 70000, -5, {}}};
    JormWTSMF_update_n(&line, wide, 2); // counts nothing
    EXPECT_EQ(line.count, 105);
    __JormWTSMF__update__(&line, wide, 2); // counts up once positive
    EXPECT_TRUE(line.count == 107 && line.sum_x == 10700 + 2 * (65536 - 5));
}

TEST(PixelList, GrowsAsDocumented) {
    jorm_pixlist list, other = {};
    std::memset(&list, 0xEE, sizeof list);
    __JormWTSPF__init__(&list, nullptr);
    for (int32_t i = 0; i < 9; ++i) {
        JormWTSPF_update2D(&list, -i, i + 1);
        EXPECT_EQ(list.capacity, (std::array{2u, 2u, 4u, 4u, 8u, 8u, 8u, 8u, 16u}[size_t(i)]));
        EXPECT_EQ(list.entries[i], uint64_t(i + 1) << 32 | uint32_t(-i));
    }
    const Wide wide[3] = {{0, 4, 5, {}}, {0, 6, 7, {}}, {0, 8, 9, {}}};
    JormWTSPF_update_n(&other, wide, 3);
    __JormWTSPF__ongather__(&other, nullptr);
    EXPECT_TRUE(other.capacity == (4 | 1ull << 63) && other.entries[2] == (9ull << 32 | 8));
    __JormWTSPF__lazymerge__(&other, &list); // keeps the flag, which is no capacity
    EXPECT_TRUE(other.capacity == (12 | 1ull << 63) && other.count == 12 && other.entries[3] == list.entries[0]);
    JormWTSPF_update2D(&other, 1, 1);
    EXPECT_EQ(other.capacity, 24 | 1ull << 63);
    for (jorm_pixlist *l : {&list, &other}) {
        __JormWTSPF__destroy__(l, nullptr);
        EXPECT_TRUE(!l->capacity && !l->count && !l->entries);
    }
}

// ---- The watershed tree builder ----

const jorm_wtsl &operations(const jorm_stb *builder) {
    const auto *const stbl = static_cast<const jorm_stbl *>(builder->iface);
    return *reinterpret_cast<const jorm_wtsl *>(reinterpret_cast<const char *>(stbl) + stbl->next);
}

struct Flood {
    jorm_wtstb record = {};
    jorm_stb *builder = &record.builder;
    jorm_wtsfeature features[2];
    jorm_wtslsc layout;

    // kinds: 'm' moments, 'p' pixels.
    Flood(const std::string &kinds, uint64_t flags) {
        for (size_t i = 0; i < kinds.size(); ++i)
            (kinds[i] == 'm' ? JormWTSMFinitFeatureDs : JormWTSPFinitFeatureDs)(&features[i], nullptr);
        JormWTSLSCinit2D(&layout, features, int32_t(kinds.size()), 100, 100, 100);
        JormWTSTBinit(builder, nullptr, nullptr, 0);
        ops().setup(nullptr, builder, &layout, flags);
    }
    ~Flood() { JormSTBfini(builder, 0); }
    const jorm_wtsl &ops() const { return operations(builder); }
    template <class Data> Data &data(void *block, uint32_t magic) const {
        const int32_t i = JormWTSFindexByMagic(features, layout.count, magic);
        return *reinterpret_cast<Data *>(static_cast<char *>(block) + features[i].offset);
    }
};

using Place = std::pair<int32_t, int32_t>;

struct Grown { // a block and the pixels of its subtree
    void *block = nullptr;
    std::multiset<Place> places = {};
};

// Regions take pixels and merge, fully or lazily; once gathered each has the area, the moments and the pixels of its
// subtree, through every chain (the general one or one of its own) and with either form of update.
TEST(WatershedBuilder, GatheredRegionsHoldTheirSubtrees) {
    Random r(3);
    const std::tuple<std::string, uint64_t, bool> layouts[] = {
        {"mp", 0, false},      {"pm", 0x600000, false}, {"m", 0, false},       {"p", 0x80000, false}, {"", 0, false},
        {"m", 0x100000, true}, {"m", 0x400000, true},   {"p", 0x200000, true}, {"pm", 0x100000, true}};
    std::set<const void *> chains;
    for (int round = 0; round < 140; ++round) {
        const auto &[kinds, flags, own] = layouts[round % 9];
        Flood flood(kinds, flags);
        chains.insert(flood.builder->iface);
        ASSERT_EQ(flood.builder->iface != JormWTSTBxinterface(), own) << kinds << flags;
        const jorm_wtsl &ops = flood.ops();
        EXPECT_TRUE(ops.tag == JORM_WTSL && ops.destroyrgn == __JormWTSTBdestroyrgn &&
                    ops.disposergn == __JormWTSTBdisposergn);
        std::vector<Grown> open(30), done;
        for (Grown &x : open) {
            jorm_dgt *const node = __JormWTSTBnewregionNode(nullptr, flood.builder, &flood.layout);
            ASSERT_TRUE(node && *static_cast<jorm_dgt **>(node->data) == node);
            x.block = node->data;
        }
        while (open.size() > 1) {
            const jorm_wtslsc *const layout = r.one_in(3) ? nullptr : &flood.layout; // the builder knows it
            std::swap(open.back(), open[r() % open.size()]);
            std::vector<Place> run(size_t(r.in(0, 5)));
            std::vector<Wide> wide;
            for (Place &p : run) {
                p = {r.in(0, 99), r.in(0, 99)};
                wide.push_back({-1, p.first, p.second, {}});
                open.back().places.insert(p);
            }
            const int32_t n = int32_t(run.size());
            if (r.one_in(2))
                ops.update(nullptr, flood.builder, layout, open.back().block, wide.data(), n);
            else
                ops.update2D(nullptr, flood.builder, layout, open.back().block, run.data(), n);
            if (r.one_in(2)) continue;
            done.push_back(open.back());
            open.pop_back();
            const Grown &child = done.back();
            Grown &parent = open[r() % open.size()];
            (r.one_in(2) ? ops.merge : ops.lazymerge)(nullptr, flood.builder, layout, parent.block, child.block);
            parent.places.insert(child.places.begin(), child.places.end());
            jorm_agt *const node = static_cast<jorm_agt *>(static_cast<jorm_wtsrgn *>(child.block)->node);
            EXPECT_EQ(node->parent->child, node);
            EXPECT_EQ(flood.builder->tree->root, node->parent);
        }
        done.push_back(open[0]);
        __JormSTBrootnode(flood.builder, static_cast<jorm_agt *>(static_cast<jorm_wtsrgn *>(open[0].block)->node));
        EXPECT_EQ(JormAGTcountChildren(flood.builder->tree->root, 1), int32_t(done.size()) - 1);
        for (const int request : {0, 1}) ops.gather(nullptr, flood.builder, &flood.layout, request);
        for (const auto &[block, places] : done) {
            EXPECT_EQ(static_cast<jorm_wtsrgn *>(block)->area, int32_t(places.size()));
            if (kinds.find('m') != kinds.npos) {
                const auto &m = flood.data<jorm_moments>(block, JORM_WTS_MOMENTS);
                jorm_moments wanted = {int32_t(places.size()), 0, 0, 0, 0, 0, 0};
                for (const auto &[y, x] : places) {
                    wanted.sum_y += y, wanted.sum_x += x;
                    wanted.sum_yy += y * y, wanted.sum_xy += x * y, wanted.sum_xx += x * x;
                }
                EXPECT_EQ(std::memcmp(&m, &wanted, sizeof m), 0);
            }
            if (kinds.find('p') == kinds.npos) continue;
            const auto &list = flood.data<jorm_pixlist>(block, JORM_WTS_PIXELS);
            std::multiset<Place> got;
            for (uint64_t i = 0; i < list.count; ++i)
                got.insert({int32_t(list.entries[i]), int32_t(list.entries[i] >> 32)});
            EXPECT_EQ(got, places);
            EXPECT_EQ(__JormWTSPF__isgathered__(&list), 1);
        }
    }
    EXPECT_EQ(chains.size(), 4u);
}

TEST(WatershedBuilder, ReturnsToTheGeneralChain) {
    Flood flood("m", 0x100000);
    const jorm_wtsl &ops = flood.ops();
    ops.setup(nullptr, flood.builder, &flood.layout, 0); // no chain of an earlier layout stays
    EXPECT_EQ(flood.builder->iface, JormWTSTBxinterface());
    flood.builder->iface = nullptr;
    __JormWTSTBinit__(flood.builder);
    EXPECT_EQ(flood.builder->iface, JormWTSTBxinterface());
    auto *const block = static_cast<char *>(ops.allocate(nullptr, flood.builder, 40, 64));
    EXPECT_TRUE(reinterpret_cast<uintptr_t>(block) % 64 == 0 && std::count(block, block + 40, 0) == 40);
}

// Whatever request fails, nothing is leaked, and the same records serve again.
TEST(WatershedBuilder, SurvivesEveryFailure) {
    if (!own_heap) GTEST_SKIP();
    const Flood known("mp", 0);
    jorm_wtstb record = {};
    int complete = 0;
    const auto flood = [&](jorm_stb *b) {
        const jorm_wtsl &ops = operations(b);
        ops.setup(nullptr, b, &known.layout, 0);
        void *last = nullptr;
        for (int i = 0; i < 20; ++i) {
            jorm_dgt *const node = __JormWTSTBnewregionNode(nullptr, b, nullptr);
            if (!node) continue;
            __JormSTBrootnode(b, &node->node);
            ops.update2D(nullptr, b, &known.layout, node->data, std::array{1, 2, 3, 4, 5, 6}.data(), 3);
            if (last) (i % 2 ? ops.merge : ops.lazymerge)(nullptr, b, &known.layout, node->data, last);
            last = node->data;
        }
        ops.gather(nullptr, b, &known.layout, 1);
        complete += last && known.data<jorm_pixlist>(last, JORM_WTS_PIXELS).count == 60;
        JormSTBclose(b, 0);
    };
    const int requests = for_each_failure("builder", [&] {
        for (jorm_stb *given : {&record.builder, static_cast<jorm_stb *>(nullptr)}) {
            jorm_st *const tree = JormSTopen(nullptr, nullptr);
            if (jorm_stb *const b = JormWTSTBopen(given, tree, nullptr, 64))
                flood(b);
            else
                JormSTclose(tree, 0);
        }
    });
    EXPECT_TRUE(requests > 40 && complete >= 2) << requests << ' ' << complete;
}

} // namespace
