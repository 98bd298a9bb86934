// Walks over trees of records that have the links next, child and parent. No recursion: the depth of a tree is the
// caller's and may exceed any stack.
#pragma once

#include <cstdint>

namespace jorm {

// Where a walk stands, with its nearest ancestors. Those further up are found again by the parent links, so any depth
// takes the same memory and a shallow tree needs no parent links at all.
template <class Node> class Path {
public:
    explicit Path(Node *start) { at(0) = {start, 0}; }

    Node *node() const { return at(depth_).node; }
    Node *parent() const { return depth_ > oldest_ ? at(depth_ - 1).node : node()->parent; }
    bool at_start() const { return depth_ == 0; }
    bool has_next() const { return depth_ > 0 && node()->next; }

    // The number of siblings before the node.
    int32_t index() {
        Step &step = at(depth_);
        if (step.index < 0) {
            step.index = 0;
            for (Node *n = parent()->child; n != step.node; n = n->next) ++step.index;
        }
        return step.index;
    }

    bool down() {
        Node *const child = node()->child;
        if (!child) return false;
        at(++depth_) = {child, 0};
        if (depth_ - oldest_ == room) ++oldest_;
        return true;
    }

    void down_to_leaf() {
        while (down()) {
        }
    }

    bool next() {
        if (!has_next()) return false;
        Step &step = at(depth_);
        step = {step.node->next, step.index < 0 ? -1 : step.index + 1};
        return true;
    }

    void up() {
        Node *const above = parent();
        --depth_;
        if (depth_ >= oldest_) return;
        oldest_ = depth_;
        at(depth_) = {above, -1};
    }

private:
    struct Step {
        Node *node;
        int32_t index; // negative: not known
    };
    static constexpr int64_t room = 64; // a power of two

    Step &at(int64_t depth) { return steps_[depth & (room - 1)]; }
    const Step &at(int64_t depth) const { return steps_[depth & (room - 1)]; }

    int64_t depth_ = 0;
    int64_t oldest_ = 0; // the least depth whose step is still held
    Step steps_[room];
};

// visit(node, index) of the three walks returns int32_t; what it means is told where the walks are declared.

template <class Node, class Visit> int32_t walk_preorder(Node *start, Visit visit) {
    Path<Node> path(start);
    for (;;) {
        int32_t result = visit(path.node(), 0);
        if (result >= 1 && path.down()) continue;
        if (result < 0) result = result == -1 ? 1 : -1;
        for (;;) {
            if (result == 0 || path.at_start()) return result;
            if (result >= 1 && path.next()) break;
            path.up();
            if (result < 0) result = 1;
        }
    }
}

// The node is left before it is visited, so that the visit may release it.
template <class Node, class Visit> int32_t walk_postorder(Node *start, Visit visit) {
    Path<Node> path(start);
    path.down_to_leaf();
    for (;;) {
        Node *const node = path.node();
        const bool last = path.at_start();
        const bool sibling = path.next();
        if (!last && !sibling) path.up();
        if (!visit(node, 0)) return 0;
        if (last) return 1;
        if (sibling) path.down_to_leaf();
    }
}

template <class Node, class Visit> int32_t walk_inorder(Node *start, Visit visit) {
    Path<Node> path(start);
    for (;;) {
        path.down_to_leaf();
        int32_t result = visit(path.node(), -1);
        for (;;) {
            if (result == 0 || path.at_start()) return result;
            const int32_t gap = path.index();
            if (path.has_next()) {
                if (!visit(path.parent(), gap)) return 0;
                path.next();
                break;
            }
            path.up();
            result = gap == 0 ? visit(path.node(), 0) : 1;
        }
    }
}

template <class Node> int32_t count_children(const Node *node) {
    int32_t n = 0;
    for (const Node *child = node->child; child; child = child->next) ++n;
    return n;
}

// counts(node) says whether a descendant counts.
template <class Node, class Counts> int32_t count_descendants(const Node *start, Counts counts) {
    int32_t n = 0;
    walk_preorder(start, [&](const Node *node, int32_t) {
        n += node != start && counts(node);
        return 1;
    });
    return n;
}

} // namespace jorm
