// Detection of stable regions. Trees can be as deep as there are regions, so walks go by the links of the records and
// not by recursion.
#include "regiontree/detect.hpp"

#include "array/vec.hpp"
#include "jorm/xe.h"

#include <cmath>
#include <cstddef>
#include <cstdlib>

static_assert(sizeof(jorm_vector) == 24 && sizeof(jorm_msercriteria) == 20);

namespace jorm {
namespace {

bool append(jorm_vector &v, jorm_fwtsr *region) {
    if (v.count == v.capacity) {
        const uint64_t capacity = v.capacity ? 2 * v.capacity : 2;
        void *const data = _UlMrealloc(v.data, size_t(capacity) * sizeof(jorm_fwtsr *));
        if (!data) return false;
        v.data = data;
        v.capacity = capacity;
    }
    static_cast<jorm_fwtsr **>(v.data)[v.count++] = region;
    return true;
}

void remove_unflagged(jorm_vector &v, uint64_t from) {
    auto *const list = static_cast<jorm_fwtsr **>(v.data);
    uint64_t kept = from;
    for (uint64_t i = from; i < v.count; ++i)
        if (list[i]->mser) list[kept++] = list[i];
    v.count = kept;
}

int64_t distance(const jorm_fwtsr *a, const jorm_fwtsr *b) { return std::llabs(int64_t(a->level) - b->level); }

// The next region of a walk through the descendants of `top` that does not enter those of r.
jorm_fwtsr *next_beside(jorm_fwtsr *r, const jorm_fwtsr *top) {
    while (!r->next) {
        r = r->parent;
        if (r == top) return nullptr;
    }
    return r->next;
}

bool any_child_stable(const jorm_fwtsr *r) {
    for (const jorm_fwtsr *c = r->child; c; c = c->next)
        if (c->mser) return true;
    return false;
}

bool grows_little(const jorm_fwtsr *r, const jorm_msercriteria &c) {
    const jorm_fwtsr *p = r->parent;
    while (p && distance(p, r) < c.delta) p = p->parent;
    if (!p) return false;
    const float variation = distance(p, r) == c.delta ? __JormMSERregionVariationAbs(r, p) : 0;
    return !(c.max_variation < variation);
}

// Clears the flags of descendants that r exceeds by too little.
void clear_alike(jorm_fwtsr *r, float min_diversity) {
    jorm_fwtsr *x = r->child;
    while (x) {
        const bool alike = __JormMSERareaVariation(x->area, r->area) < min_diversity;
        if (alike && !x->mser && x->child) {
            x = x->child;
            continue;
        }
        if (alike) x->mser = 0;
        x = next_beside(x, r);
    }
}

// The descendants that are looked at have been judged; what is said of r?
void judge(jorm_vector &regions, jorm_fwtsr *r, const jorm_msercriteria &c) {
    if (r->area < c.min_area) return;
    const bool fits = r->area <= c.max_area;
    if (!fits && (r->level < c.delta || !any_child_stable(r))) return;
    if (!grows_little(r, c)) return;
    if (fits) {
        r->mser = 1;
        append(regions, r);
    }
    clear_alike(r, c.min_diversity);
}

} // namespace

jorm_vector *detect_mser(jorm_vector *regions, jorm_fwtsr *root, const jorm_msercriteria &c, bool fresh) {
    if (!regions) return nullptr;
    const uint64_t before = fresh ? regions->count : 0;
    const auto enters = [&](const jorm_fwtsr *r) {
        return r->child && r->level >= c.delta && !(fresh && r->area < c.min_area);
    };
    // Down to the first leaf; from then on each region is judged after its children.
    jorm_fwtsr *r = root;
    while (r) {
        r->mser = 0;
        if (enters(r)) {
            r = r->child;
            continue;
        }
        for (;;) {
            judge(*regions, r, c);
            if (r == root) {
                r = nullptr;
                break;
            }
            if (r->next) {
                r = r->next;
                break;
            }
            r = r->parent;
        }
    }
    remove_unflagged(*regions, before);
    return regions;
}

} // namespace jorm

using namespace jorm;

jorm_vector *JormDetectFMSERs(jorm_vector *regions, jorm_fwtsr *root, const jorm_msercriteria *criteria) {
    return criteria ? detect_mser(regions, root, *criteria, false) : regions;
}

jorm_vector *JormDetectMSERs(jorm_vector *regions, jorm_fwtsr *root, const jorm_msercriteria *criteria) {
    return JormDetectFMSERs(regions, root, criteria);
}

float __JormMSERareaVariation(int32_t a, int32_t b) { return float(wrap_sub(b, a)) / float(b); }

float __JormMSERareaVariationAbs(int32_t a, int32_t b) {
    return float(std::fabs(double(__JormMSERareaVariation(a, b))));
}

float __JormMSERregionVariation(const jorm_fwtsr *a, const jorm_fwtsr *b) {
    return __JormMSERareaVariation(a->area, b->area);
}

float __JormMSERregionVariationAbs(const jorm_fwtsr *a, const jorm_fwtsr *b) {
    return __JormMSERareaVariationAbs(a->area, b->area);
}
