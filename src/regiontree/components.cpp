#include "regiontree/flood.hpp"

namespace jorm {

jorm_fwtsr *Components::record(Component &c, uint32_t last, uint32_t done) {
    if (!c.record) c.record = pool_.take();
    if (jorm_fwtsr *const r = c.record) {
        r->head = place(last);
        r->seed = place(c.seed);
        r->level = c.level;
        r->area = int32_t(done - c.opened);
    }
    return c.record;
}

bool Components::close(Component *&top, int32_t level, uint32_t pixel, uint32_t last, uint32_t done) {
    jorm_fwtsr *const child = record(*top, last, done);
    if (!child) return false;
    const bool merges = top[-1].level == level;
    if (log_) {
        log_[top->opened] |= log_begins;
        log_[done - 1] |= merges ? log_resumes : log_renews;
    }
    if (merges)
        --top;
    else
        *top = {level, pixel, top->opened, nullptr};
    if (!top->record) top->record = pool_.take();
    jorm_fwtsr *const parent = top->record;
    if (!parent) return false;
    child->parent = parent;
    child->next = parent->child;
    parent->child = child;
    return true;
}

bool Components::finish(Component *top, uint32_t last, uint32_t done) {
    jorm_fwtsr *const root = record(*top, last, done);
    if (root) pool_.finish(root);
    return root;
}

} // namespace jorm
