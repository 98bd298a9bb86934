// What the tests of element-wise arithmetic share: the table of operations, their results in exact arithmetic (128 bits
// and double precision), pictures in any layout, calls at every layer and level.
#pragma once
#include "jorm/arith.h"
#include "jorm/xe.h"
#include "xe/level.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <map>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using Wide = __int128;
using Bits = unsigned __int128;
using Fn = void (*)();
using Random = std::mt19937;
using Result = testing::AssertionResult;

// ---- What there is. Types are letters: c s8, b u8, h s16, i s32, f f32; first the destination's, then the sources'.

enum Kind {
    add,
    sub,
    rsub,
    mul,
    divide,
    rdiv,
    neg,
    sqr,
    mla,
    mls,
    mlrs,
    bit_and,
    bit_or,
    bit_xor,
    bit_not,
    exp_,
    ln,
    sigmoid
};
enum Rule { wraps, clamps, squares, truncates };

const char sums[] = "fff ffh ffi ffb fhh fhb fih fii fib fbb hhh hhb hbb iff ifh ifi ifb ihh ihb iih iii iib ibb bhh "
                    "bhb bbb";
const char clamped_sums[] = "fih fii fib hhh hhb iih iii iib cbb bhh bhb bbb";
const char sums_c[] = "ff fh fi fb hh hb if ih ii ib bh bb", products_c[] = "ff fh fi fb hh hb if ih ii ib bh bb cb";
const char clamped_sums_c[] = "fh fi fb hh hb ih ii ib cb bh bb", negations[] = "hh hi ii bh bi", real[] = "ff";
const char same3[] = "hhh iii bbb", same3_f[] = "fff hhh iii bbb", same2[] = "hh ii bb", same2_f[] = "ff hh ii bb";
const char any2[] = "ff fh fi fb hf hh hi hb if ih ii ib bf bh bi bb";
const char mixed3[] = "bbbb bbbh bhbb bhbh bhhb bhhh hbbb hbbh hhbb hhbh hhhb hhhh ibbb ibbh ibbi ihbb ihbh ihbi ihhb "
                      "ihhh ihhi iibi iihi iiii ffff fffi fffh fffb ffif ffhf ffbf fiif fhhf fhhh fbbf fbbb";
const char mixed2[] = "bbb bbh bhb bhh hbb hbh hhb hhh ibb ibh ibi ihb ihh ihi iib iih iii fbb fbh fbi fbf fhb fhh fhi "
                      "fhf fib fih fii fif ffb ffh ffi fff";

struct Op {
    const char *name;
    int sources, constants;
    Kind kind;
    Rule rule;
    const char *types; // of the kernels that there are
    Fn entry, adapter, dispatcher;

    template <class E, class A, class D>
    Op(const char *n, int s, int c, Kind k, Rule r, const char *t, E e, A a, D d)
        : name(n), sources(s), constants(c), kind(k), rule(r), types(t), entry(Fn(e)), adapter(Fn(a)),
          dispatcher(Fn(d)) {}
    bool logic() const { return kind >= bit_and && kind <= bit_not; } // without p and q
    bool division() const { return kind == divide || kind == rdiv; }
    bool product_sum() const { return kind >= mla && kind <= mlrs; }
    bool smooth() const { return kind >= exp_; }
};

const Op ops[] = {
    {"Add", 2, 0, add, wraps, sums, JormAdd, jorma_add, jorma__add},
    {"Sub", 2, 0, sub, wraps, sums, JormSub, jorma_sub, jorma__sub},
    {"RSub", 2, 0, rsub, wraps, sums, JormRSub, jorma_rsub, jorma__rsub},
    {"Mul", 2, 0, mul, wraps, sums, JormMul, jorma_mul, jorma__mul},
    {"Addq", 2, 0, add, clamps, clamped_sums, JormAddq, jorma_addq, jorma__addq},
    {"Subq", 2, 0, sub, clamps, clamped_sums, JormSubq, jorma_subq, jorma__subq},
    {"RSubq", 2, 0, rsub, clamps, clamped_sums, JormRSubq, jorma_rsubq, jorma__rsubq},
    {"Addsq", 2, 0, add, squares, sums, JormAddsq, jorma_addsq, jorma__addsq},
    {"Subsq", 2, 0, sub, squares, sums, JormSubsq, jorma_subsq, jorma__subsq},
    {"RSubsq", 2, 0, rsub, squares, sums, JormRSubsq, jorma_rsubsq, jorma__rsubsq},
    {"Div", 2, 0, divide, truncates, same3_f, JormDiv, jorma_div, jorma__div},
    {"Divr", 2, 0, divide, wraps, same3, JormDivr, jorma_divr, jorma__divr},
    {"RDiv", 2, 0, rdiv, truncates, same3_f, JormRDiv, jorma_rdiv, jorma__rdiv},
    {"RDivr", 2, 0, rdiv, wraps, same3, JormRDivr, jorma_rdivr, jorma__rdivr},
    {"AddC", 1, 1, add, wraps, sums_c, JormAddC, jorma_addC, jorma__addC},
    {"SubC", 1, 1, sub, wraps, sums_c, JormSubC, jorma_subC, jorma__subC},
    {"RSubC", 1, 1, rsub, wraps, sums_c, JormRSubC, jorma_rsubC, jorma__rsubC},
    {"MulC", 1, 1, mul, wraps, products_c, JormMulC, jorma_mulC, jorma__mulC},
    {"AddqC", 1, 1, add, clamps, clamped_sums_c, JormAddqC, jorma_addqC, jorma__addqC},
    {"SubqC", 1, 1, sub, clamps, clamped_sums_c, JormSubqC, jorma_subqC, jorma__subqC},
    {"RSubqC", 1, 1, rsub, clamps, clamped_sums_c, JormRSubqC, jorma_rsubqC, jorma__rsubqC},
    {"AddsqC", 1, 1, add, squares, sums_c, JormAddsqC, jorma_addsqC, jorma__addsqC},
    {"SubsqC", 1, 1, sub, squares, sums_c, JormSubsqC, jorma_subsqC, jorma__subsqC},
    {"RSubsqC", 1, 1, rsub, squares, sums_c, JormRSubsqC, jorma_rsubsqC, jorma__rsubsqC},
    {"DivC", 1, 1, divide, truncates, same2_f, JormDivC, jorma_divC, jorma__divC},
    {"DivrC", 1, 1, divide, wraps, same2, JormDivrC, jorma_divrC, jorma__divrC},
    {"RDivC", 1, 1, rdiv, truncates, same2_f, JormRDivC, jorma_rdivC, jorma__rdivC},
    {"RDivrC", 1, 1, rdiv, wraps, same2, JormRDivrC, jorma_rdivrC, jorma__rdivrC},
    {"Sigmoid", 1, 1, sigmoid, wraps, real, JormSigmoidAlpha, jorma_sigmoidalpha, jorma__sigmoidalpha},
    {"Exp", 1, 0, exp_, wraps, real, JormExp, jorma_exp, jorma__exp},
    {"Ln", 1, 0, ln, wraps, real, JormLn, jorma_ln, jorma__ln},
    {"Negate", 1, 0, neg, wraps, any2, JormNegate, jorma_neg, jorma__neg},
    {"Sqr", 1, 0, sqr, clamps, sums_c, Fn(), Fn(), jorma__sqr},
    {"Negateq", 1, 0, neg, clamps, negations, JormNegateq, jorma_negq, jorma__negq},
    {"MulAdd", 3, 0, mla, wraps, mixed3, JormMulAdd, jorma_mla, jorma__mla},
    {"MulSub", 3, 0, mls, wraps, mixed3, JormMulSub, jorma_mls, jorma__mls},
    {"MulRSub", 3, 0, mlrs, wraps, mixed3, JormMulRSub, jorma_mlrs, jorma__mlrs},
    {"MulAddC", 2, 1, mla, wraps, mixed2, JormMulAddC, jorma_mlaC, jorma__mlaC},
    {"MulSubC", 2, 1, mls, wraps, mixed2, JormMulSubC, jorma_mlsC, jorma__mlsC},
    {"MulRSubC", 2, 1, mlrs, wraps, mixed2, JormMulRSubC, jorma_mlrsC, jorma__mlrsC},
    {"MulAddCC", 1, 2, mla, wraps, any2, JormMulAddCC, jorma_mlaCC, jorma__mlaCC},
    {"MulSubCC", 1, 2, mls, wraps, any2, JormMulSubCC, jorma_mlsCC, jorma__mlsCC},
    {"MulRSubCC", 1, 2, mlrs, wraps, any2, JormMulRSubCC, jorma_mlrsCC, jorma__mlrsCC},
    {"And", 2, 0, bit_and, wraps, same3, JormAnd, jorma_and, jorma__and},
    {"Orr", 2, 0, bit_or, wraps, same3, JormOrr, jorma_orr, jorma__orr},
    {"Xor", 2, 0, bit_xor, wraps, same3, JormXor, jorma_xor, jorma__xor},
    {"AndC", 1, 1, bit_and, wraps, same2, JormAndC, jorma_andC, jorma__andC},
    {"OrrC", 1, 1, bit_or, wraps, same2, JormOrrC, jorma_orrC, jorma__orrC},
    {"XorC", 1, 1, bit_xor, wraps, same2, JormXorC, jorma_xorC, jorma__xorC},
    {"Not", 1, 0, bit_not, wraps, same2, JormNot, jorma_not, jorma__not},
};

const Op &named(const std::string &name) {
    return *std::find_if(std::begin(ops), std::end(ops), [&](const Op &o) { return o.name == name; });
}

int rank_of(char type) { return int(strchr("cbhif", type) - "cbhif"); }
uint32_t code_of(char type) { return "\x09\x01\x0A\x0B\x0D"[rank_of(type)]; }
int bytes_of(char type) { return "\1\1\2\4\4"[rank_of(type)]; }

// The type in which the result arises: the destination's, or the widest source's and then it is converted. 0 when
// nothing serves these types.
char stage_of(const Op &op, std::string types) {
    const auto served = [&](std::string t) {
        const bool found = strstr(op.types, t.c_str());
        if (op.sources > 1) std::swap(t[1], t[2]);
        return found || strstr(op.types, t.c_str());
    };
    if (served(types)) return types[0];
    char widest = 'c';
    for (char t : types.substr(1)) widest = rank_of(t) > rank_of(widest) ? t : widest;
    if (types[0] == 'c' || bytes_of(widest) <= bytes_of(types[0]) || op.smooth()) return 0;
    types[0] = widest;
    return served(types) ? widest : 0;
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

Value load(char t, const uint8_t *p) {
    const auto as = [p]<class T>(T v) { return std::memcpy(&v, p, sizeof v), v; };
    if (t == 'f') return {as(0.f), false, 0, true};
    const int32_t v = t == 'b' ? *p : t == 'c' ? as(int8_t()) : t == 'h' ? as(int16_t()) : as(int32_t());
    return {double(v), true, Bits(Wide(v))};
}

Value constant(double d) {
    Value v{d, std::isfinite(d) && d == std::trunc(d), 0, std::isnan(d) || double(float(d)) == d};
    int e;
    const double mantissa = std::ldexp(std::frexp(d, &e), 53);
    if (v.whole) v.i = e < 53 ? Bits(Wide(d)) : e < 181 ? Bits(Wide(mantissa)) << (e - 53) : 0;
    return v;
}

Wide clamp(Wide v, char t) {
    const int bits = bytes_of(t) * 8;
    return std::clamp<Wide>(v, t == 'b' ? 0 : -(Wide(1) << (bits - 1)), (Wide(1) << (bits - (t != 'b'))) - 1);
}

Wide nearest(double d) { // integer of 32 bits
    d = std::nearbyint(d);
    return d >= -2147483648.0 && d <= 2147483647.0 ? Wide(d) : INT32_MIN;
}

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

// The result as an integer, of which the type t keeps the low bits.
Wide integer(const Op &op, char t, const Value *v, int p) {
    const Wide a = Wide(v[0].i), bits = std::isfinite(v[1].d) ? Wide(constant(std::nearbyint(v[1].d)).i) : INT32_MIN;
    if (op.kind == bit_and) return a & bits;
    if (op.kind == bit_or) return a | bits;
    if (op.kind == bit_xor) return a ^ bits;
    if (op.kind == bit_not) return ~a;
    if (op.division()) return quotient(v[op.kind == rdiv], v[op.kind == divide], p, op.rule == truncates);
    Value x = combined(op, v);
    if (op.rule == squares) x = x * x;
    const bool huge = x.whole && std::scalbn(std::fabs(x.d), std::max(p, 0)) > 0x1p90;
    if (op.rule != wraps && huge) return clamp(x.d > 0 ? INT64_MAX : INT64_MIN, t);
    const Wide r = x.whole ? scaled(Wide(x.i), p) : nearest(std::scalbn(x.d, p));
    return op.rule == wraps ? r : clamp(r, t);
}

float single(const Op &op, const Value *v, int p) {
    if (op.product_sum() && p == 0 && v[0].single && v[1].single && v[2].single) {
        const float product = float(v[0].d) * float(v[1].d), c = float(v[2].d);
        return op.kind == mla ? product + c : op.kind == mls ? product - c : c - product;
    }
    const double d = combined(op, v).d;
    return float(std::scalbn(op.rule == squares ? d * d : d, p));
}

// Writes the result into the destination's type t.
void expected(const Op &op, char stage, char t, const Value *v, int p, uint8_t *out) {
    const float f = stage == 'f' ? single(op, v, p) : 0;
    Wide r = stage == 'f' ? nearest(f) : integer(op, stage, v, p);
    if (t != stage) r = clamp(stage == 'h' ? int16_t(r) : int32_t(r), t);
    std::memcpy(out, t == 'f' ? static_cast<const void *>(&f) : &r, size_t(bytes_of(t)));
}

long double smooth(const Op &op, const Value *v, int p) {
    const long double x = v[0].d, alpha = v[1].d;
    return scalbnl(op.kind == exp_ ? expl(x) : op.kind == ln ? logl(x) : 1 / (1 + expl(-alpha * x)), p);
}

// How far f lies from the exact value, in units of its last place.
double ulps(float f, long double exact) {
    constexpr long double top = 0x1p128L; // stands for infinity
    if (std::isnan(exact) || exact == 0) return std::isnan(exact) ? !std::isnan(f) * 1e9 : double(f != 0) * 1e9;
    exact = std::clamp(exact, -top, top);
    const int e = std::clamp(ilogbl(exact), -126, 127) - 23;
    return double(fabsl(scalbnl((std::isinf(f) ? std::copysign(top, f) : f) - exact, -e)));
}

// ---- Pictures ----

jorm_array described(char type, int h, int w, int channels, int y, int x, int c, int64_t offset, void *base) {
    jorm_array a = {
        {1, uint32_t(h), uint32_t(w), uint32_t(channels)}, {}, {8, y, x, c}, 3, 0, code_of(type), 0, 0, base};
    a.loff = int32_t(offset);
    return a;
}

enum Layout { dense, padded_rows, padded_pixels, upward, leftward, view, spread, planar, reversed, repeated, layouts };

struct Picture {
    char type;
    jorm_array a{};
    std::vector<uint8_t> memory;
    uint8_t *first; // the element at the origin

    // Guards all around, and between rows, pixels and channels where the layout has gaps.
    Picture(char t, int h, int w, int channels, int layout, Random &rng) : type(t) {
        const int e = bytes_of(t), gap = e * int(1 + rng() % 5);
        int c = layout == spread ? e + gap : e, x = layout == planar ? e : c * channels;
        if (layout == padded_pixels) x += gap;
        int y = x * w;
        if (layout == padded_rows || layout == view) y += layout == view ? 16 * x + gap : gap;
        if (layout == upward) y = -y;
        if (layout == leftward) x = -x;
        if (layout == planar) c = y * h + gap;
        if (layout == reversed) c = -c;
        if (layout == repeated) y = 0;
        int64_t low = 0, high = e;
        for (int64_t s : {int64_t(y) * (h - 1), int64_t(x) * (w - 1), int64_t(c) * (channels - 1)})
            (s < 0 ? low : high) += s;
        const int64_t guard = 64 + gap, before = guard - low;
        memory.resize(size_t(before + high + guard));
        for (size_t i = 0; i + 4 <= memory.size(); i += 4) {
            const uint32_t r = uint32_t(rng());
            std::memcpy(&memory[i], &r, 4);
        }
        first = memory.data() + before;
        const bool offset = layout == view || rng() % 4 == 0;
        a = described(t, h, w, channels, y, x, c, offset ? before : 0, offset ? memory.data() : first);
    }
    ptrdiff_t at(int y, int x, int c) const {
        return ptrdiff_t(y) * a.stride[1] + ptrdiff_t(x) * a.stride[2] + ptrdiff_t(c) * a.stride[3];
    }

    // Limits of the types, small numbers with ties, random bits, or a mixture.
    void paint(Random &rng) {
        const unsigned flavour = rng() % 4;
        for (int y = 0; y < int(a.extent[1]); ++y)
            for (int x = 0; x < int(a.extent[2]); ++x)
                for (int c = 0; c < int(a.extent[3]); ++c)
                    put(first + at(y, x, c), flavour == 3 ? rng() % 3 : flavour, rng);
    }
    void put(uint8_t *p, unsigned flavour, Random &rng) const {
        static const int32_t limits[] = {0,   1,    -1,    2,      127,   128,       254,      255,
                                         256, -128, 32767, -32768, 65535, INT32_MAX, INT32_MIN};
        static const uint32_t singles[] = {0x80000000, 0x7F800000, 0xFF800000, 0x7FC00000, 0xFFC12345,
                                           0x7F800001, 0x80000001, 0x7F7FFFFF, 0x00800000, 0x3F000000,
                                           0x40200000, 0x4EFFFFFF, 0x4F000000, 0xCF000001, 0x437F8000};
        int32_t i = int32_t(rng());
        float f = rng() % 2 ? std::bit_cast<float>(i) : std::ldexp(float(i), -int(rng() % 40));
        if (flavour == 1) i = i % 21, f = float(i) / 4;
        if (flavour == 2) {
            f = rng() % 2 ? float(limits[rng() % 15]) : std::bit_cast<float>(singles[rng() % 15]);
            i = limits[rng() % 15];
        }
        std::memcpy(p, type == 'f' ? static_cast<const void *>(&f) : &i, size_t(bytes_of(type)));
    }
};

// ---- Calls ----

enum Layer { entry, adapter, dispatcher, kernel };

struct Case {
    const Op *op;
    Layer layer = entry;
    Fn f = op->entry;
    Picture *x[4] = {}; // destination and sources; a null first source works in place
    double c[2][4] = {};
    bool no_constants = false;
    const jorm_site *roi = nullptr;
    const int32_t *at[4] = {};
    int32_t p = 0, q = 0;
    uint32_t word = JORM_WORD(3);
    int32_t size[4] = {}, origin[4][4] = {}; // what is covered

    const Picture *picture(int k) const { return x[k] ? x[k] : x[0]; }
    char stage() const {
        std::string types;
        for (int k = 0; k <= op->sources; ++k) types += picture(k)->type;
        return stage_of(*op, types);
    }
    // The common region, false when it is empty: the destination's, shortened by the last source, then by the others.
    bool negotiate() {
        for (int s = 0; s < 3; ++s) {
            const auto extent = [&](int k) { return s ? int(picture(k)->a.extent[s]) : 1; };
            const int low = origin[0][s] = roi ? std::max(roi->origin[s], 0) : 0;
            int &n = size[s] = (roi ? std::min(roi->origin[s] + roi->size[s], extent(0)) : extent(0)) - low;
            for (int i = 0; i < op->sources; ++i) {
                const int k = i ? i : op->sources;
                const int32_t *start = !x[k] && !at[k] && roi ? roi->origin : at[k];
                const int begin = start ? start[s] : 0, from = origin[k][s] = std::max(begin, 0);
                n = i ? std::min(begin + n, extent(k)) - from : std::min(n, extent(k) - std::abs(begin));
            }
        }
        size[3] = int(x[0]->a.extent[3]);
        return size[0] > 0 && size[1] > 0 && size[2] > 0;
    }
};

template <Layer L, class P> auto operand(const Case &c, int k) {
    const Picture *p = c.x[k];
    if constexpr (L == entry)
        return std::tuple<const jorm_array *>(p ? &p->a : nullptr);
    else {
        const int lead = 4 - int(c.word & 15);
        const int32_t *const stride = p->a.stride + lead, *const origin = c.origin[k] + lead;
        P const start = p->first && L != adapter ? p->first + p->at(c.origin[k][1], c.origin[k][2], 0) : p->first;
        if constexpr (L == adapter)
            return std::tuple(p->a.eltype, start, origin, stride);
        else if constexpr (L == dispatcher)
            return std::tuple(p->a.eltype, start, stride);
        else
            return std::tuple(start, stride);
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
    return invoke(c.f, std::tuple_cat(std::tuple(xe, options), only_if<flat>(c.word, c.size + 4 - (c.word & 15)),
                                      operand<L, void *>(c, 0), sources(std::make_index_sequence<S>()),
                                      only_if<scaled>(c.p, c.q)));
}

template <Layer L> int64_t call(const Case &c, jorm_xe *xe, uint64_t options) {
    using Call = int64_t (*)(const Case &, jorm_xe *, uint64_t);
    static const std::map<std::tuple<int, int, bool>, Call> shapes = {
        {{1, 0, false}, call<L, 1, 0, true>}, {{1, 0, true}, call<L, 1, 0, false>},
        {{1, 1, false}, call<L, 1, 1, true>}, {{1, 1, true}, call<L, 1, 1, false>},
        {{1, 2, false}, call<L, 1, 2, true>}, {{2, 0, false}, call<L, 2, 0, true>},
        {{2, 0, true}, call<L, 2, 0, false>}, {{2, 1, false}, call<L, 2, 1, true>},
        {{3, 0, false}, call<L, 3, 0, true>}};
    return shapes.at({c.op->sources, c.op->constants, c.op->logic()})(c, xe, options);
}

int64_t call(const Case &c, jorm_xe *xe, uint64_t options = 0) {
    constexpr decltype(&call<entry>) layers[] = {call<entry>, call<adapter>, call<dispatcher>, call<kernel>};
    return layers[c.layer](c, xe, options);
}

Result failure(const Case &c, const std::string &what) {
    Result r = testing::AssertionFailure() << c.op->name << " ";
    for (int k = 0; k <= c.op->sources; ++k) r << c.picture(k)->type;
    r << " layer " << c.layer << " p " << c.p << " size " << c.size[1] << " " << c.size[2] << " " << c.size[3]
      << " constants";
    for (int i = 0; i < c.size[3]; ++i) r << " " << c.c[0][i] << " " << c.c[1][i];
    return r << ": " << what;
}

// Compares the destination with the oracle, given what its memory held before; elements that were compared are copied
// there, so that in the end all of it must be equal.
Result compare(const Case &c, std::vector<uint8_t> before) {
    const Picture &d = *c.x[0];
    const std::vector<uint8_t> input = before;
    const char stage = c.stage();
    for (int y = 0; y < c.size[1]; ++y)
        for (int x = 0; x < c.size[2]; ++x)
            for (int i = 0; i < c.size[3]; ++i) {
                Value v[4];
                for (int k = 1; k <= c.op->sources; ++k) {
                    const Picture &s = *c.picture(k);
                    const uint8_t *start = &s == &d ? input.data() + (d.first - d.memory.data()) : s.first;
                    v[k - 1] = load(s.type, start + s.at(c.origin[k][1] + y, c.origin[k][2] + x, i));
                }
                for (int k = 0; k < c.op->constants; ++k) v[c.op->sources + k] = constant(c.c[k][i]);
                if (c.op->product_sum() && c.op->sources == 2) std::swap(v[1], v[2]);
                const uint8_t *element = d.first + d.at(c.origin[0][1] + y, c.origin[0][2] + x, i);
                uint8_t want[16] = {};
                const double got = load(d.type, element).d;
                double wish;
                if (c.op->smooth()) {
                    wish = double(smooth(*c.op, v, c.p));
                    if (ulps(float(got), smooth(*c.op, v, c.p)) <= 2) wish = got;
                } else {
                    expected(*c.op, stage, d.type, v, c.p, want);
                    wish = load(d.type, want).d;
                }
                // Any NaN is a NaN; the sign of a zero from integers is free.
                const bool free_sign = v[0].whole && v[1].whole && v[2].whole;
                const bool same = got == wish && (free_sign || std::signbit(got) == std::signbit(wish));
                if (!same && !(std::isnan(got) && std::isnan(wish)))
                    return failure(c, "") << "at " << y << " " << x << " " << i << " of " << v[0].d << " " << v[1].d
                                          << " " << v[2].d << " got " << got << ", expected " << wish;
                std::memcpy(before.data() + (element - d.memory.data()), element, size_t(bytes_of(d.type)));
            }
    return before == d.memory ? testing::AssertionSuccess() : failure(c, "wrote elsewhere");
}

// The memory of the destination, where one NaN is as good as another.
bool same_bits(const Case &c, const std::vector<uint8_t> &reference) {
    const std::vector<uint8_t> &memory = c.x[0]->memory;
    if (reference == memory) return true;
    if (c.x[0]->type != 'f') return false;
    for (size_t i = 0; i + 4 <= memory.size(); i += 4) {
        float a, b;
        std::memcpy(&a, &memory[i], 4);
        std::memcpy(&b, &reference[i], 4);
        if (std::memcmp(&a, &b, 4) != 0 && !(std::isnan(a) && std::isnan(b))) return false;
    }
    return true;
}

// Runs the case at every level: the right status, the right elements, the same bits, nothing else written.
Result check(Case &c) {
    static jorm_xe *const xe = JormXEopen(nullptr, nullptr, 0);
    const char stage = c.stage();
    const int64_t status = c.layer == entry && !c.negotiate() ? JORM_EEMPTY : stage ? JORM_OK : JORM_ENOTSUP;
    const std::vector<uint8_t> before = c.x[0]->memory;
    std::vector<uint8_t> reference = before;
    for (int run = jorm::level_base; run <= jorm::level_count; ++run) {
        _G_jorm_use_simd = run != jorm::level_base;
        jorm::limit_level(jorm::Level(run));
        std::copy(before.begin(), before.end(), c.x[0]->memory.begin());
        const int64_t got = call(c, xe, run == jorm::level_count ? JORM_OPT_NO_SIMD : 0);
        if (got != status) return failure(c, "status ") << got << ", expected " << status;
        if (status == JORM_OK && run == jorm::level_base) {
            if (Result r = compare(c, before); !r) return r;
            reference = c.x[0]->memory;
        }
        if (!same_bits(c, reference)) return failure(c, "other bits at level ") << run << compare(c, before).message();
    }
    return testing::AssertionSuccess();
}

} // namespace
