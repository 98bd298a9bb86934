// The exported index-vector helpers. Each line of a table names one function; the tables differ in how the number of
// slots is given: a count (N), a count or packed word of which the low four bits count (M), a packed word with
// operands that begin at the first used slot (L).
#include "array/vec.hpp"

#include "jorm/array.h"

using namespace jorm;

#define BINARY_N(name, op)                                                                                             \
    int32_t *name(int32_t n, int32_t *dst, const int32_t *a, const int32_t *b) { return vec_binary<op>(n, dst, a, b); }
#define BINARY_M(name, op)                                                                                             \
    int32_t *name(uint32_t n, int32_t *dst, const int32_t *a, const int32_t *b) {                                      \
        return vec_binary<op>(word_axes(n), dst, a, b);                                                                \
    }
#define BINARY_L(name, op)                                                                                             \
    int32_t *name(uint32_t word, int32_t *dst, const int32_t *a, const int32_t *b) {                                   \
        vec_binary<op>(word_slots(word), at_slot0(word, dst), at_slot0(word, a), at_slot0(word, b));                   \
        return dst;                                                                                                    \
    }
#define IN_PLACE_N(name, op)                                                                                           \
    int32_t *name(int32_t n, int32_t *a, const int32_t *b) { return vec_binary_in_place<op>(n, a, b); }
#define IN_PLACE_M(name, op)                                                                                           \
    int32_t *name(uint32_t n, int32_t *a, const int32_t *b) { return vec_binary_in_place<op>(word_axes(n), a, b); }
#define IN_PLACE_L(name, op)                                                                                           \
    int32_t *name(uint32_t word, int32_t *a, const int32_t *b) {                                                       \
        vec_binary_in_place<op>(word_slots(word), at_slot0(word, a), at_slot0(word, b));                               \
        return a;                                                                                                      \
    }

BINARY_N(jorm_vec__add, Add)
BINARY_N(jorm_vec__add_$S, Add)
BINARY_M(jorm_vec_add, Add)
BINARY_M(jorm_vec_add_$S, Add)
BINARY_L(jorm_vec_add_$L, Add)
BINARY_L(jorm_vec_add_$LS, Add)
IN_PLACE_N(jorm_vec__add_$I, Add)
IN_PLACE_N(jorm_vec__add_$IS, Add)
IN_PLACE_M(jorm_vec_add_$I, Add)
IN_PLACE_M(jorm_vec_add_$IS, Add)
IN_PLACE_L(jorm_vec_add_$IL, Add)
IN_PLACE_L(jorm_vec_add_$ILS, Add)

BINARY_N(jorm_vec__sub, Sub)
BINARY_N(jorm_vec__sub_$S, Sub)
BINARY_M(jorm_vec_sub, Sub)
BINARY_M(jorm_vec_sub_$S, Sub)
BINARY_L(jorm_vec_sub_$L, Sub)
BINARY_L(jorm_vec_sub_$LS, Sub)
IN_PLACE_N(jorm_vec__sub_$I, Sub)
IN_PLACE_N(jorm_vec__sub_$IS, Sub)
IN_PLACE_M(jorm_vec_sub_$I, Sub)
IN_PLACE_M(jorm_vec_sub_$IS, Sub)
IN_PLACE_L(jorm_vec_sub_$IL, Sub)
IN_PLACE_L(jorm_vec_sub_$ILS, Sub)

BINARY_N(jorm_vec__rsb, Rsb)
BINARY_N(jorm_vec__rsb_$S, Rsb)
BINARY_M(jorm_vec_rsb, Rsb)
BINARY_M(jorm_vec_rsb_$S, Rsb)
BINARY_L(jorm_vec_rsb_$L, Rsb)
BINARY_L(jorm_vec_rsb_$LS, Rsb)
IN_PLACE_N(jorm_vec__rsb_$I, Rsb)
IN_PLACE_N(jorm_vec__rsb_$IS, Rsb)
IN_PLACE_M(jorm_vec_rsb_$I, Rsb)
IN_PLACE_M(jorm_vec_rsb_$IS, Rsb)
IN_PLACE_L(jorm_vec_rsb_$IL, Rsb)
IN_PLACE_L(jorm_vec_rsb_$ILS, Rsb)

BINARY_N(jorm_vec__min, Min)
BINARY_N(jorm_vec__min_$S, Min)
BINARY_M(jorm_vec_min, Min)
BINARY_M(jorm_vec_min_$S, Min)
BINARY_L(jorm_vec_min_$L, Min)
BINARY_L(jorm_vec_min_$LS, Min)
IN_PLACE_N(jorm_vec__min_$I, Min)
IN_PLACE_N(jorm_vec__min_$IS, Min)
IN_PLACE_M(jorm_vec_min_$I, Min)
IN_PLACE_M(jorm_vec_min_$IS, Min)
IN_PLACE_L(jorm_vec_min_$IL, Min)
IN_PLACE_L(jorm_vec_min_$ILS, Min)

BINARY_N(jorm_vec__max, Max)
BINARY_N(jorm_vec__max_$S, Max)
BINARY_M(jorm_vec_max, Max)
BINARY_M(jorm_vec_max_$S, Max)
BINARY_L(jorm_vec_max_$L, Max)
BINARY_L(jorm_vec_max_$LS, Max)
IN_PLACE_N(jorm_vec__max_$I, Max)
IN_PLACE_N(jorm_vec__max_$IS, Max)
IN_PLACE_M(jorm_vec_max_$I, Max)
IN_PLACE_M(jorm_vec_max_$IS, Max)
IN_PLACE_L(jorm_vec_max_$IL, Max)
IN_PLACE_L(jorm_vec_max_$ILS, Max)

#define UNARY_N(name, function)                                                                                        \
    int32_t *name(int32_t n, int32_t *dst, const int32_t *src) { return function(n, dst, src); }
#define UNARY_M(name, function)                                                                                        \
    int32_t *name(uint32_t n, int32_t *dst, const int32_t *src) { return function(word_axes(n), dst, src); }
#define UNARY_L(name, function)                                                                                        \
    int32_t *name(uint32_t word, int32_t *dst, const int32_t *src) {                                                   \
        function(word_slots(word), at_slot0(word, dst), at_slot0(word, src));                                          \
        return dst;                                                                                                    \
    }

UNARY_N(jorm_vec__assign, vec_assign)
UNARY_N(jorm_vec__assign_$S, vec_assign)
UNARY_M(jorm_vec_assign, vec_assign)
UNARY_M(jorm_vec_assign_$S, vec_assign)
UNARY_L(jorm_vec_assign_$L, vec_assign)
UNARY_L(jorm_vec_assign_$LS, vec_assign)
UNARY_N(jorm_vec__neg, vec_neg)
UNARY_M(jorm_vec_neg, vec_neg)
UNARY_L(jorm_vec_neg_$L, vec_neg)

int32_t jorm_vec__assign_$Z(int32_t n, int32_t *dst, const int32_t *src) {
    return vec_positive(n, vec_assign(n, dst, src));
}

int32_t *jorm_vec__neg_$I(int32_t n, int32_t *v) { return vec_neg(n, v, v); }
int32_t *jorm_vec_neg_$I(uint32_t n, int32_t *v) { return vec_neg(word_axes(n), v, v); }
int32_t *jorm_vec_neg_$IL(uint32_t word, int32_t *v) { return jorm_vec_neg_$L(word, v, v); }

int32_t *jorm_vec__dup(int32_t n, int32_t *dst, int32_t v) { return vec_dup(n, dst, v); }
int32_t *jorm_vec_dup(uint32_t n, int32_t *dst, int32_t v) { return vec_dup(word_axes(n), dst, v); }
int32_t *jorm_vec_dup_$L(uint32_t word, int32_t *dst, int32_t v) {
    vec_dup(word_slots(word), at_slot0(word, dst), v);
    return dst;
}
int32_t *jorm_vec__zero(int32_t n, int32_t *dst) { return vec_dup(n, dst, 0); }
int32_t *jorm_vec_zero(uint32_t n, int32_t *dst) { return vec_dup(word_axes(n), dst, 0); }
int32_t *jorm_vec_zero_$L(uint32_t word, int32_t *dst) { return jorm_vec_dup_$L(word, dst, 0); }

#define EQUAL_N(name)                                                                                                  \
    int32_t name(int32_t n, const int32_t *a, const int32_t *b) { return vec_equal(n, a, b); }
#define EQUAL_M(name)                                                                                                  \
    int32_t name(uint32_t n, const int32_t *a, const int32_t *b) { return vec_equal(word_axes(n), a, b); }
#define EQUAL_L(name)                                                                                                  \
    int32_t name(uint32_t word, const int32_t *a, const int32_t *b) {                                                  \
        return vec_equal(word_slots(word), at_slot0(word, a), at_slot0(word, b));                                      \
    }
#define EQUAL0_N(name)                                                                                                 \
    int32_t name(int32_t n, const int32_t *v) { return vec_equal(n, v, nullptr); }
#define EQUAL0_M(name)                                                                                                 \
    int32_t name(uint32_t n, const int32_t *v) { return vec_equal(word_axes(n), v, nullptr); }
#define EQUAL0_L(name)                                                                                                 \
    int32_t name(uint32_t word, const int32_t *v) { return vec_equal(word_slots(word), at_slot0(word, v), nullptr); }

EQUAL_N(jorm_vec__equal)
EQUAL_N(jorm_vec__equal_$S)
EQUAL_M(jorm_vec_equal)
EQUAL_M(jorm_vec_equal_$S)
EQUAL_L(jorm_vec_equal_$L)
EQUAL_L(jorm_vec_equal_$LS)
EQUAL0_N(jorm_vec__equal0)
EQUAL0_N(jorm_vec__equal0_$S)
EQUAL0_M(jorm_vec_equal0)
EQUAL0_M(jorm_vec_equal0_$S)
EQUAL0_L(jorm_vec_equal0_$L)
EQUAL0_L(jorm_vec_equal0_$LS)

int64_t jorm_vec__mkloff(int32_t n, const int32_t *index, const int32_t *stride) {
    return vec_mkloff(n, index, stride);
}
int64_t jorm_vec_mkloff(uint32_t n, const int32_t *index, const int32_t *stride) {
    return vec_mkloff(word_axes(n), index, stride);
}
int64_t jorm_vec_mkloff_$L(uint32_t word, const int32_t *index, const int32_t *stride) {
    return vec_mkloff(word_slots(word), at_slot0(word, index), at_slot0(word, stride));
}
int64_t jorm_vec_mkloff_$LS(uint32_t word, const int32_t *index, const int32_t *stride) {
    return jorm_vec_mkloff_$L(word, index, stride);
}

int32_t *jorm_vec__update_$loff(int32_t n, int32_t *index, const int32_t *stride, int64_t loff) {
    return vec_update_loff(n, index, stride, loff);
}
int32_t *jorm_vec_update_$loff(uint32_t n, int32_t *index, const int32_t *stride, int64_t loff) {
    return vec_update_loff(word_axes(n), index, stride, loff);
}
int32_t *jorm_vec_update_$loff$L(uint32_t word, int32_t *index, const int32_t *stride, int64_t loff) {
    vec_update_loff(word_slots(word), at_slot0(word, index), at_slot0(word, stride), loff);
    return index;
}

int32_t *jorm_vec__fromloff(int32_t n, int32_t *dst, const int32_t *stride, int64_t loff) {
    return vec_fromloff(n, dst, stride, loff);
}
int32_t *jorm_vec_fromloff(uint32_t n, int32_t *dst, const int32_t *stride, int64_t loff) {
    return vec_fromloff(word_axes(n), dst, stride, loff);
}
int32_t *jorm_vec_fromloff_$L(uint32_t word, int32_t *dst, const int32_t *stride, int64_t loff) {
    vec_fromloff(word_slots(word), at_slot0(word, dst), at_slot0(word, stride), loff);
    return dst;
}
