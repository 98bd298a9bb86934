// What the tests of element-wise arithmetic share: the table of operations, their results in exact arithmetic (128 bits
// and double precision), calls at every layer and level.
#pragma once
#include "jorm/arith.h"
#include "support/picture.hpp"

#include <bit>
#include <cfloat>
#include <string>
#include <tuple>

namespace {

using Wide = __int128;
using Bits = unsigned __int128;
using Fn = void (*)();
using Result = testing::AssertionResult;

// ---- Calls ----

enum Layer { entry, adapter, dispatcher, kernel };
enum Formula { add, sub, rsub, mul, divide, rdiv, neg, sqr, mla, mls, mlrs };
enum OtherFormula { bit_and = mlrs + 1, bit_or, bit_xor, bit_not, absdiff, smaller, larger, exp_, ln, sigmoid };
enum Rule { wraps, clamps, squares, truncates, nearest_value };

struct Case;
using Call = int64_t(const Case &c, jorm_xe *xe, uint64_t options);
struct Op {
    const char *name;
    int sources, constants, kind;
    Rule rule;
    const char *types; // of the kernels that there are
    Fn functions[3];   // by layer
    Call *const *calls;

    bool one_type() const { return kind >= absdiff && kind <= larger; }
    bool logic() const { return kind >= bit_and && kind <= larger; } // without p and q
    bool division() const { return kind == divide || kind == rdiv; }
    bool product_sum() const { return kind >= mla && kind <= mlrs; }
    bool smooth() const { return kind >= exp_; }
};

struct Case {
    const Op *op;
    Layer layer = entry;
    Fn f = op->functions[entry];
    Picture *x[4] = {}; // destination and sources; a null first source works in place
    double c[2][4] = {};
    bool no_constants = false;
    const jorm_site *roi = nullptr;
    const int32_t *at[4] = {};
    int32_t p = 0, q = 0;
    uint32_t word = JORM_WORD(3);
    Region region = {}; // what is covered
    Index size = {};    // as it is handed over

    Picture *picture(int k) const { return x[k] ? x[k] : x[0]; }
    bool negotiate() {
        std::vector<const jorm_array *> arrays;
        std::vector<const int32_t *> starts;
        for (int k = 0; k <= op->sources; ++k) {
            arrays.push_back(&picture(k)->a);
            if (k) starts.push_back(!x[k] && !at[k] && roi ? roi->origin : at[k]);
        }
        region = common_region(arrays, roi, starts);
        size = region.size;
        return !region.empty;
    }
};

template <Layer L, class P> auto operand(const Case &c, int k) {
    const Picture *p = c.x[k];
    if constexpr (L == entry)
        return std::tuple<const jorm_array *>(p ? &p->a : nullptr);
    else {
        const int lead = 4 - int(c.word & 15);
        const Index &origin = c.region.origin[k];
        P const start = p->a.base ? p->at(L == adapter ? Index{} : origin) : nullptr;
        const auto flat = std::tuple(start, p->a.stride + lead);
        if constexpr (L == kernel) return flat;
        if constexpr (L == dispatcher) return std::tuple_cat(std::tuple(p->a.eltype), flat);
        if constexpr (L == adapter) return std::tuple(p->a.eltype, start, origin.data() + lead, p->a.stride + lead);
    }
}

template <bool B, class... T> auto only_if(T... values) {
    if constexpr (B)
        return std::tuple(values...);
    else
        return std::tuple();
}
template <class... A> int64_t invoke(Fn f, std::tuple<A...> arguments) {
    return std::apply(reinterpret_cast<int64_t (*)(A...)>(f), arguments);
}

template <Layer L, int S, int C, bool scaled> int64_t call(const Case &c, jorm_xe *xe, uint64_t options) {
    constexpr bool flat = L != entry;
    const double *const c1 = c.no_constants ? nullptr : c.c[0], *const c2 = c.no_constants ? nullptr : c.c[1];
    const auto sources = [&]<size_t... I>(std::index_sequence<I...>) {
        return std::tuple_cat(operand<L, const void *>(c, I + 1)..., only_if<(C > 0)>(c1), only_if<(C > 1)>(c2),
                              only_if<!flat>(c.roi), only_if<!flat>(c.at[I + 1])...);
    };
    return invoke(c.f, std::tuple_cat(std::tuple(xe, options), only_if<flat>(c.word, &c.size[4 - (c.word & 15)]),
                                      operand<L, void *>(c, 0), sources(std::make_index_sequence<S>()),
                                      only_if<scaled>(c.p, c.q)));
}
int64_t call(const Case &c, jorm_xe *xe, uint64_t options = 0) { return c.op->calls[c.layer](c, xe, options); }

// ---- What there is. Types are letters: c s8, b u8, h s16, i s32, f f32; first the destination's, then the sources'.

const char sums[] = "fff ffh ffi ffb fhh fhb fih fii fib fbb hhh hhb hbb iff ifh ifi ifb ihh ihb iih iii iib ibb bhh "
                    "bhb bbb";
const char clamped_sums[] = "fhh fhb fih fii fib fbb hhh hhb hbb ihh ihb iih iii iib ibb cbb bhh bhb bbb";
const char clamped_products[] = "hhh hhb hih hii hib hbb ihh ihb iih iii iib ibb bhh bhb bih bii bib bbb",
           nearest_products[] = "hf hh hi hb if ih ii ib bf bh bi bb";
const char sums_c[] = "ff fh fi fb hh hb if ih ii ib bh bb", products_c[] = "ff fh fi fb hh hb if ih ii ib bh bb cb";
const char clamped_sums_c[] = "fh fi fb hh hb ih ii ib cb bh bb", negations[] = "hh hi ii bh bi", real[] = "ff";
const char same3[] = "hhh iii bbb", same3_f[] = "fff hhh iii bbb", same2[] = "hh ii bb",
           same3_all[] = "ccc hhh iii bbb fff", same2_all[] = "cc hh ii bb ff", same2_f[] = "ff hh ii bb";
const char any2[] = "ff fh fi fb hf hh hi hb if ih ii ib bf bh bi bb";
const char mixed3[] = "bbbb bbbh bhbb bhbh bhhb bhhh hbbb hbbh hhbb hhbh hhhb hhhh ibbb ibbh ibbi ihbb ihbh ihbi ihhb "
                      "ihhh ihhi iibi iihi iiii ffff fffi fffh fffb ffif ffhf ffbf fiif fhhf fhhh fbbf fbbb";
const char mixed2[] = "bbb bbh bhb bhh hbb hbh hhb hhh ibb ibh ibi ihb ihh ihi iib iih iii fbb fbh fbi fbf fhb fhh fhi "
                      "fhf fib fih fii fif ffb ffh ffi fff";

template <int S, int C, bool scaled>
constexpr Call *calls[] = {call<entry, S, C, scaled>, call<adapter, S, C, scaled>, call<dispatcher, S, C, scaled>,
                           call<kernel, S, C, scaled>};
template <int S, int C, bool scaled = true, class E, class A, class D>
Op row(const char *name, int kind, Rule rule, const char *types, E e, A a, D d) {
    return {name, S, C, kind, rule, types, {Fn(e), Fn(a), Fn(d)}, calls<S, C, scaled>};
}

const Op ops[] = {
    row<2, 0>("Add", add, wraps, sums, JormAdd, jorma_add, jorma__add),
    row<2, 0>("Sub", sub, wraps, sums, JormSub, jorma_sub, jorma__sub),
    row<2, 0>("RSub", rsub, wraps, sums, JormRSub, jorma_rsub, jorma__rsub),
    row<2, 0>("Mul", mul, wraps, sums, JormMul, jorma_mul, jorma__mul),
    row<2, 0>("Addq", add, clamps, clamped_sums, JormAddq, jorma_addq, jorma__addq),
    row<2, 0>("Subq", sub, clamps, clamped_sums, JormSubq, jorma_subq, jorma__subq),
    row<2, 0>("RSubq", rsub, clamps, clamped_sums, JormRSubq, jorma_rsubq, jorma__rsubq),
    row<2, 0>("Addsq", add, squares, sums, JormAddsq, jorma_addsq, jorma__addsq),
    row<2, 0>("Subsq", sub, squares, sums, JormSubsq, jorma_subsq, jorma__subsq),
    row<2, 0>("RSubsq", rsub, squares, sums, JormRSubsq, jorma_rsubsq, jorma__rsubsq),
    row<2, 0>("Mulq", mul, clamps, clamped_products, JormMulq, jorma_mulq, jorma__mulq),
    row<2, 0>("Div", divide, truncates, same3_f, JormDiv, jorma_div, jorma__div),
    row<2, 0>("Divr", divide, wraps, same3, JormDivr, jorma_divr, jorma__divr),
    row<2, 0>("RDiv", rdiv, truncates, same3_f, JormRDiv, jorma_rdiv, jorma__rdiv),
    row<2, 0>("RDivr", rdiv, wraps, same3, JormRDivr, jorma_rdivr, jorma__rdivr),
    row<1, 1>("AddC", add, wraps, sums_c, JormAddC, jorma_addC, jorma__addC),
    row<1, 1>("SubC", sub, wraps, sums_c, JormSubC, jorma_subC, jorma__subC),
    row<1, 1>("RSubC", rsub, wraps, sums_c, JormRSubC, jorma_rsubC, jorma__rsubC),
    row<1, 1>("MulC", mul, wraps, products_c, JormMulC, jorma_mulC, jorma__mulC),
    row<1, 1>("AddqC", add, clamps, clamped_sums_c, JormAddqC, jorma_addqC, jorma__addqC),
    row<1, 1>("SubqC", sub, clamps, clamped_sums_c, JormSubqC, jorma_subqC, jorma__subqC),
    row<1, 1>("RSubqC", rsub, clamps, clamped_sums_c, JormRSubqC, jorma_rsubqC, jorma__rsubqC),
    row<1, 1>("AddsqC", add, squares, sums_c, JormAddsqC, jorma_addsqC, jorma__addsqC),
    row<1, 1>("SubsqC", sub, squares, sums_c, JormSubsqC, jorma_subsqC, jorma__subsqC),
    row<1, 1>("RSubsqC", rsub, squares, sums_c, JormRSubsqC, jorma_rsubsqC, jorma__rsubsqC),
    row<1, 1>("MulqC", mul, nearest_value, nearest_products, JormMulqC, jorma_mulqC, jorma__mulqC),
    row<1, 1>("DivC", divide, truncates, same2_f, JormDivC, jorma_divC, jorma__divC),
    row<1, 1>("DivrC", divide, wraps, same2, JormDivrC, jorma_divrC, jorma__divrC),
    row<1, 1>("RDivC", rdiv, truncates, same2_f, JormRDivC, jorma_rdivC, jorma__rdivC),
    row<1, 1>("RDivrC", rdiv, wraps, same2, JormRDivrC, jorma_rdivrC, jorma__rdivrC),
    row<1, 1>("Sigmoid", sigmoid, wraps, real, JormSigmoidAlpha, jorma_sigmoidalpha, jorma__sigmoidalpha),
    row<1, 0>("Exp", exp_, wraps, real, JormExp, jorma_exp, jorma__exp),
    row<1, 0>("Ln", ln, wraps, real, JormLn, jorma_ln, jorma__ln),
    row<1, 0>("Negate", neg, wraps, any2, JormNegate, jorma_neg, jorma__neg),
    row<1, 0>("Sqr", sqr, clamps, sums_c, nullptr, nullptr, jorma__sqr),
    row<1, 0>("Negateq", neg, clamps, negations, JormNegateq, jorma_negq, jorma__negq),
    row<3, 0>("MulAdd", mla, wraps, mixed3, JormMulAdd, jorma_mla, jorma__mla),
    row<3, 0>("MulSub", mls, wraps, mixed3, JormMulSub, jorma_mls, jorma__mls),
    row<3, 0>("MulRSub", mlrs, wraps, mixed3, JormMulRSub, jorma_mlrs, jorma__mlrs),
    row<2, 1>("MulAddC", mla, wraps, mixed2, JormMulAddC, jorma_mlaC, jorma__mlaC),
    row<2, 1>("MulSubC", mls, wraps, mixed2, JormMulSubC, jorma_mlsC, jorma__mlsC),
    row<2, 1>("MulRSubC", mlrs, wraps, mixed2, JormMulRSubC, jorma_mlrsC, jorma__mlrsC),
    row<1, 2>("MulAddCC", mla, wraps, any2, JormMulAddCC, jorma_mlaCC, jorma__mlaCC),
    row<1, 2>("MulSubCC", mls, wraps, any2, JormMulSubCC, jorma_mlsCC, jorma__mlsCC),
    row<1, 2>("MulRSubCC", mlrs, wraps, any2, JormMulRSubCC, jorma_mlrsCC, jorma__mlrsCC),
    row<2, 0, false>("And", bit_and, wraps, same3, JormAnd, jorma_and, jorma__and),
    row<2, 0, false>("Orr", bit_or, wraps, same3, JormOrr, jorma_orr, jorma__orr),
    row<2, 0, false>("Xor", bit_xor, wraps, same3, JormXor, jorma_xor, jorma__xor),
    row<1, 1, false>("AndC", bit_and, wraps, same2, JormAndC, jorma_andC, jorma__andC),
    row<1, 1, false>("OrrC", bit_or, wraps, same2, JormOrrC, jorma_orrC, jorma__orrC),
    row<1, 1, false>("XorC", bit_xor, wraps, same2, JormXorC, jorma_xorC, jorma__xorC),
    row<2, 0, false>("AbsDiff", absdiff, clamps, same3_all, JormAbsDiff, jorma_absdiff, jorma__absdiff),
    row<2, 0, false>("Min", smaller, clamps, same3_all, JormMin, jorma_min, jorma__min),
    row<2, 0, false>("Max", larger, clamps, same3_all, JormMax, jorma_max, jorma__max),
    row<1, 1, false>("AbsDiffC", absdiff, clamps, same2_all, JormAbsDiffC, jorma_absdiffC, jorma__absdiffC),
    row<1, 1, false>("MinC", smaller, clamps, same2_all, JormMinC, jorma_minC, jorma__minC),
    row<1, 1, false>("MaxC", larger, clamps, same2_all, JormMaxC, jorma_maxC, jorma__maxC),
    row<1, 0, false>("Not", bit_not, wraps, same2, JormNot, jorma_not, jorma__not),
};

const Op &named(const std::string &name) {
    return *std::find_if(std::begin(ops), std::end(ops), [&](const Op &o) { return o.name == name; });
}

char letter_of(uint32_t type) { return type < 14 ? "?b???????chi?f"[type] : '?'; }
uint32_t code_of(char letter) { return uint32_t(strchr("?b???????chi?f", letter) - "?b???????chi?f"); }

// The type in which the result arises: the destination's, or the widest source's and then it is converted. 0 when
// nothing serves these types.
uint32_t stage_of(const Op &op, std::string types) {
    const auto served = [&](std::string t) {
        const bool found = strstr(op.types, t.c_str());
        if (op.sources > 1) std::swap(t[1], t[2]);
        return found || strstr(op.types, t.c_str());
    };
    const auto rank = [](char type) { return strchr("cbhif", type); };
    const auto bytes = [](char type) { return bytes_of(code_of(type)); };
    const char widest =
        *std::max_element(types.begin() + 1, types.end(), [&](char a, char b) { return rank(a) < rank(b); });
    if (!served(types)) {
        if (types[0] == 'c' || bytes(widest) <= bytes(types[0]) || op.smooth() || op.one_type()) return 0;
        types[0] = widest;
    }
    return served(types) ? code_of(types[0]) : 0;
}
std::string types_of(const Case &c) {
    std::string types;
    for (int k = 0; k <= c.op->sources; ++k) types += letter_of(c.picture(k)->a.eltype);
    return types;
}

// ---- The arithmetic ----

// Integers and whole constants also have their value modulo 2^128.
struct Value {
    double d = 0;
    bool whole = true;
    Bits i = 0;
    bool single = false;
};

Value operator+(const Value &a, const Value &b) { return {a.d + b.d, a.whole && b.whole, a.i + b.i}; }
Value operator-(const Value &a, const Value &b) { return {a.d - b.d, a.whole && b.whole, a.i - b.i}; }
Value operator*(const Value &a, const Value &b) { return {a.d * b.d, a.whole && b.whole, a.i * b.i}; }

Value value_at(uint32_t type, const void *p) {
    const double d = load(type, p);
    return type == JORM_F32 ? Value{d, false, 0, true} : Value{d, true, Bits(Wide(d))};
}

Value constant(double d) {
    Value v{d, std::isfinite(d) && d == std::trunc(d), 0, std::isnan(d) || double(float(d)) == d};
    int e;
    const double mantissa = std::ldexp(std::frexp(d, &e), 53);
    if (v.whole) v.i = e < 53 ? Bits(Wide(d)) : e < 181 ? Bits(Wide(mantissa)) << (e - 53) : 0;
    return v;
}

Wide clamp(Wide v, uint32_t type) { return std::clamp(v, Wide(lowest(type)), Wide(highest(type))); }
Wide nearest(double d) { return Wide(converted(JORM_S32, d)); }

Wide scaled(Wide v, int p) {
    if (p >= 0) return Wide(p < 128 ? Bits(v) << p : 0);
    p = -std::max(p, -126);
    const Wide down = v >> p, rest = v - (down << p), half = Wide(1) << (p - 1);
    return down + (rest > half || (rest == half && (down & 1)));
}

Value combined(const Op &op, const Value *v) {
    const Value &a = v[0], &b = v[1], &c = v[2];
    if (op.kind == add) return a + b;
    if (op.kind == sub) return a - b;
    if (op.kind == rsub) return b - a;
    if (op.kind == mul) return a * b;
    if (op.kind == sqr) return a * a;
    if (op.kind == mla) return a * b + c;
    if (op.kind == mls) return a * b - c;
    if (op.kind == mlrs) return c - a * b;
    if (op.kind == neg) return a.whole ? Value() - a : Value{-a.d, false};
    return {op.kind == rdiv ? b.d / a.d : a.d / b.d, false};
}

Wide quotient(const Value &a, const Value &b, int p, bool truncate) {
    if (b.d == 0) return 0;
    const double d = std::scalbn(a.d / b.d, p);
    if (!a.whole || !b.whole || std::fabs(a.d) > 0x1p60 || std::fabs(b.d) > 0x1p60)
        return nearest(truncate ? std::trunc(d) : d);
    const Wide n = Wide(a.i) << std::max(p, 0), m = Wide(b.i) << std::max(-p, 0), q = n / m, rest = n % m;
    const Wide twice = 2 * (rest < 0 ? -rest : rest), whole = m < 0 ? -m : m;
    const bool away = !truncate && (twice > whole || (twice == whole && (q & 1)));
    return q + (!away ? 0 : (n < 0) == (m < 0) ? 1 : -1);
}

// An f32 or an integer: the distance, or the one of the two that comes first or last in order, -0 before 0.
template <class T> T of_one_type(const Op &op, T a, T b) {
    if (op.kind == absdiff) return a < b ? b - a : a - b + 0;
    const bool a_first = a < b || (a == b && std::signbit(double(a)));
    return a != a || (b == b && a_first != (op.kind == smaller)) ? b : a;
}

#if LDBL_MANT_DIG >= 113
using Exact = long double;
#else
using Exact = __float128;
#endif

// The product with a constant, rounded once to double precision, as the nearest value of the type.
Wide nearest_product(uint32_t type, const Value *v, int p) {
    const double d = double(Exact(v[0].d) * Exact(v[1].d) * Exact(std::scalbn(1., p)));
    return Wide(std::isnan(d) ? 0 : std::clamp(std::nearbyint(d), lowest(type), highest(type)));
}

// The result as an integer, of which the type keeps the low bits.
Wide integer(const Op &op, uint32_t type, const Value *v, int p) {
    const Wide a = Wide(v[0].i), bits = std::isfinite(v[1].d) ? Wide(constant(std::nearbyint(v[1].d)).i) : INT32_MIN;
    if (op.kind == bit_and) return a & bits;
    if (op.kind == bit_or) return a | bits;
    if (op.kind == bit_xor) return a ^ bits;
    if (op.kind == bit_not) return ~a;
    if (op.one_type()) return clamp(of_one_type(op, a, Wide(converted(type, v[1].d))), type);
    if (op.rule == nearest_value) return nearest_product(type, v, p);
    if (op.division()) return quotient(v[op.kind == rdiv], v[op.kind == divide], p, op.rule == truncates);
    Value x = combined(op, v);
    if (op.rule == squares) x = x * x;
    const bool huge = x.whole && std::scalbn(std::fabs(x.d), std::max(p, 0)) > 0x1p90;
    if (op.rule != wraps && huge) return clamp(x.d > 0 ? INT64_MAX : INT64_MIN, type);
    const Wide r = x.whole ? scaled(Wide(x.i), p) : nearest(std::scalbn(x.d, p));
    return op.rule == wraps ? r : clamp(r, type);
}

float single(const Op &op, const Value *v, int p) {
    if (op.one_type()) return of_one_type(op, float(v[0].d), float(v[1].d));
    if (op.product_sum() && p == 0 && v[0].single && v[1].single && v[2].single) {
        const float product = float(v[0].d) * float(v[1].d), c = float(v[2].d);
        return op.kind == mla ? product + c : op.kind == mls ? product - c : c - product;
    }
    const double d = combined(op, v).d;
    return float(std::scalbn(op.rule == squares ? d * d : d, p));
}

double expected(const Op &op, uint32_t stage, uint32_t type, const Value *v, int p) {
    const float f = stage == JORM_F32 ? single(op, v, p) : 0;
    if (type == JORM_F32) return f;
    Wide r = stage == JORM_F32 ? nearest(f) : integer(op, stage, v, p);
    if (type != stage) r = clamp(stage == JORM_S16 ? int16_t(r) : int32_t(r), type);
    return load(type, &r);
}

// How far f lies from the exact value, in units of its last place.
double ulps(const Op &op, const Value *v, int p, float f) {
    constexpr long double top = 0x1p128L; // stands for infinity
    const long double x = v[0].d, alpha = v[1].d;
    long double exact = scalbnl(op.kind == exp_ ? expl(x) : op.kind == ln ? logl(x) : 1 / (1 + expl(-alpha * x)), p);
    if (std::isnan(exact) || exact == 0) return (std::isnan(exact) ? std::isnan(f) : f == 0) ? 0 : 1e9;
    exact = std::clamp(exact, -top, top);
    const int e = std::clamp(ilogbl(exact), -126, 127) - 23;
    return double(fabsl(scalbnl((std::isinf(f) ? std::copysign(top, f) : f) - exact, -e)));
}

// ---- Checks ----

Result failure(const Case &c) {
    const Index &n = c.region.size;
    Result r = testing::AssertionFailure() << c.op->name << " " << types_of(c) << " layer " << c.layer << " p " << c.p
                                           << " size " << n[1] << " " << n[2] << " " << n[3] << " constants";
    for (int i = 0; i < n[3]; ++i) r << " " << c.c[0][i] << " " << c.c[1][i];
    return r;
}

// Runs the case at every level, now and then the base level by its option: the right status, the right elements, the
// same bits, nothing else written.
Result check(Case &c) {
    static jorm_xe *const xe = JormXEopen(nullptr, nullptr, 0);
    static int calls = 0;
    const Op &op = *c.op;
    const Picture &d = *c.x[0];
    const Bytes input = d.memory;
    const uint32_t stage = stage_of(op, types_of(c));
    const int64_t status = c.layer == entry && !c.negotiate() ? JORM_EEMPTY : stage ? JORM_OK : JORM_ENOTSUP;
    Result result = testing::AssertionSuccess();
    const auto wanted = [&](const Index &i) {
        Value v[4];
        for (int k = 1; k <= op.sources; ++k) {
            const Picture &s = *c.picture(k);
            const uint8_t *const p = s.at(sum(i, c.region.origin[k]));
            v[k - 1] = value_at(s.a.eltype, &s == &d ? &input[size_t(p - d.memory.data())] : p);
        }
        for (int k = 0; k < op.constants; ++k) v[op.sources + k] = constant(c.c[k][i[3]]);
        if (op.product_sum() && op.sources == 2) std::swap(v[1], v[2]);
        const double got = d.get(sum(i, c.region.origin[0]));
        const double wish = !op.smooth() ? expected(op, stage, d.a.eltype, v, c.p) : std::isnan(got) ? 0 : nan;
        // The sign of a zero from integers is free.
        const bool integers = v[0].whole && v[1].whole && v[2].whole;
        const bool right = op.smooth() ? ulps(op, v, c.p, float(got)) <= 2 : integers ? got == wish : same(got, wish);
        if (!right && result) result = failure(c) << " of " << v[0].d << " " << v[1].d << " " << v[2].d;
        return right ? got : wish;
    };
    expect_block(
        *c.x[0], d.a, c.region.origin[0], status == JORM_OK ? c.region.size : Index{}, status,
        [&] { return call(c, xe, ++calls % 4 ? 0 : JORM_OPT_NO_SIMD); }, wanted);
    return result && testing::Test::HasFatalFailure() ? failure(c) : result;
}

} // namespace
