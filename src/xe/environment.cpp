// The environment record: which stack scratch memory comes from, and what is released when.
#include "jorm/xe.h"

#include <cstddef>

static_assert(sizeof(jorm_xe) == 104);
static_assert(offsetof(jorm_xe, flags) == 8 && offsetof(jorm_xe, size_hint) == 16);
static_assert(offsetof(jorm_xe, inline_storage) == 24 && offsetof(jorm_xe, saved_state) == 72);
static_assert(sizeof(jorm_xe::inline_storage) == JORM_STORAGE_BYTES);
static_assert(sizeof(jorm_xe::saved_state) == JORM_STORAGE_STATE_BYTES);

namespace {

constexpr size_t default_align = 16;

bool is_inline(const jorm_xe *xe, const void *stack) { return stack == xe->inline_storage; }

} // namespace

// ---- Life ----

jorm_xe *JormXEopen(jorm_xe *xe, void *stack, size_t size) {
    uint64_t flags = 0;
    if (!xe) {
        void *own = stack ? nullptr : UlSMEMSTGopen(nullptr, size, 0);
        if (own) stack = own;
        xe = static_cast<jorm_xe *>(UlSMEMSTGaalloc(stack, sizeof(jorm_xe), 8, 0));
        if (!xe) {
            if (own) UlMEMSTGclose(own);
            return nullptr;
        }
        flags = JORM_XE_OWNS_STORAGE;
    }
    *xe = jorm_xe{};
    JormXEinit2(xe, stack, size);
    xe->flags |= flags;
    return xe;
}

jorm_xe *JormXEinit2(jorm_xe *xe, void *stack, size_t size) {
    if (!xe || (xe->flags & JORM_XE_INITIALISED)) return xe;
    xe->size_hint = size;
    xe->stack = is_inline(xe, stack) ? nullptr : stack;
    if (xe->stack) UlSMEMSTGgetstate(xe->saved_state, xe->stack);
    xe->flags = JORM_XE_INITIALISED;
    return xe;
}

jorm_xe *JormXEinit(jorm_xe *xe, void *stack) { return JormXEinit2(xe, stack, 0); }

jorm_xe *JormXEfini(jorm_xe *xe) {
    if (!xe || !(xe->flags & JORM_XE_INITIALISED)) return xe;
    if (is_inline(xe, xe->stack)) {
        UlMEMSTGdestroy(xe->stack);
        xe->stack = nullptr;
    } else if (xe->stack) {
        UlSMEMSTGsetstate(xe->stack, xe->saved_state);
    }
    xe->flags &= ~uint64_t{JORM_XE_INITIALISED};
    xe->size_hint = 0;
    return xe;
}

void JormXEclose(jorm_xe *xe) {
    if (!xe) return;
    void *const stack = xe->stack;
    const uint64_t flags = xe->flags;
    JormXEfini(xe);
    if (stack && (flags & JORM_XE_OWNS_STORAGE)) UlMEMSTGclose(stack);
}

jorm_xe *JormXEclear(jorm_xe *xe) {
    if (xe && xe->stack) UlSMEMSTGsetstate(xe->stack, xe->saved_state);
    return xe;
}

// ---- Stack ----

void *JormXEmmstack(jorm_xe *xe) {
    if (!xe) return nullptr;
    if (!xe->stack) {
        xe->stack = UlSMEMSTGopen(xe->inline_storage, xe->size_hint, 0);
        if (!xe->stack) return nullptr;
        UlSMEMSTGgetstate(xe->saved_state, xe->stack);
        xe->flags |= JORM_XE_INITIALISED; // so that fini destroys it even if the caller never initialised the record
    }
    return xe->stack;
}

void *JormXEinitMmstack(jorm_xe *xe, size_t size) {
    if (xe && !xe->stack && size) xe->size_hint = size;
    return JormXEmmstack(xe);
}

jorm_xe *JormXEresetMmstack(jorm_xe *xe, void *stack, size_t size) {
    if (!xe || stack == xe->stack) return xe;
    if (is_inline(xe, stack)) stack = nullptr;
    if (xe->flags & JORM_XE_OWNS_STORAGE) {
        JormXEclose(xe);
        return JormXEopen(nullptr, stack, size);
    }
    return JormXEinit2(JormXEfini(xe), stack, size);
}

jorm_xe *JormXEdestroyMmstack(jorm_xe *xe) { return JormXEresetMmstack(xe, nullptr, 0); }

// ---- Scratch memory ----

void *JormXEalloca(jorm_xe *xe, size_t bytes, size_t align) {
    return jorm_mmstack_alloca(JormXEmmstack(xe), bytes, align);
}

void JormXEfreea(jorm_xe *xe, void *p) {
    if (xe && xe->stack) UlSMEMSTGfree(xe->stack, p);
}

void *JormXEgetmmsp(jorm_xe *xe, void *state) {
    void *const stack = JormXEmmstack(xe);
    return stack ? jorm_mmstack_state(stack, state) : nullptr;
}

void JormXEsetmmsp(jorm_xe *xe, const void *state) {
    if (xe && xe->stack) UlSMEMSTGsetstate(xe->stack, state);
}

// ---- Bare stacks ----

void *jorm_mmstack_open(void *mem, size_t size) { return UlSMEMSTGopen(mem, size, 0); }

void *jorm_mmstack_alloca(void *stack, size_t bytes, size_t align) {
    return stack ? UlSMEMSTGaalloc(stack, bytes, align ? align : default_align, 0) : nullptr;
}

void jorm_mmstack_freea(void *stack, void *p) { UlSMEMSTGfree(stack, p); }

void jorm_mmstack_reset(void *stack) { UlSMEMSTGclear(stack); }

void *jorm_mmstack_state(void *stack, void *state) {
    UlSMEMSTGgetstate(state, stack);
    return state;
}

void jorm_mmstack_setstate(void *stack, const void *state) { UlSMEMSTGsetstate(stack, state); }

void jorm_mmstack_close(void *stack) { UlMEMSTGclose(stack); }

void jorm_mmstack_destroy(void *stack) { UlMEMSTGdestroy(stack); }
