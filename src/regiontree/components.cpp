#include "regiontree/flood.hpp"

namespace jorm {

jorm_fwtsr *Components::record(Component &c, uint32_t done) {
    if (!c.record) c.record = pool_.take();
    if (jorm_fwtsr *const r = c.record) {
        r->head = place(c.head);
        r->seed = place(c.seed);
        r->level = c.level;
        r->area = int32_t(done - c.opened);
    }
    return c.record;
}

bool Components::close(Component *&top, int32_t level, uint32_t pixel, uint32_t done) {
    jorm_fwtsr *const child = record(*top, done);
    if (!child) return false;
    if (top[-1].level == level)
        --top;
    else
        *top = {level, pixel, no_pixel, top->opened, nullptr};
    if (!top->record) top->record = pool_.take();
    jorm_fwtsr *const parent = top->record;
    if (!parent) return false;
    child->parent = parent;
    child->next = parent->child;
    parent->child = child;
    return true;
}

bool Components::finish(Component *top, uint32_t done) {
    jorm_fwtsr *const root = record(*top, done);
    if (root) pool_.finish(root);
    return root;
}

} // namespace jorm
