// Element-wise arithmetic and logic of pictures.
#include "tool.hpp"

namespace tool {
namespace {

// The first picture, worked on in place with each of the others: operation(first, other) gives a status. Their samples
// stand in the type for exact arithmetic, or as files have them when the operation works on bits.
enum class Samples { numbers, bits };

template <class Operation> void fold(const Args &args, const char *name, Samples samples, Operation operation) {
    const std::string out = args.output();
    Picture first = read_picture(args.files[0]);
    const bool bits = samples == Samples::bits;
    Picture result = bits ? first : first.as(first.exact_type());
    const jorm_array dst = bits ? result.bits() : result.colours();
    Progress progress(args);
    progress.step(args.files[0]);
    for (size_t i = 1; i < args.files.size(); ++i) {
        Picture other = read_same(args.files[i], first, args.files[0]);
        if (!bits) other = other.as(result.eltype);
        const jorm_array src = bits ? other.bits() : other.colours();
        check(operation(dst, src), name);
        progress.step(args.files[i]);
    }
    result = result.as(first.eltype);
    write_picture(out, result);
}

using Arith = decltype(JormAdd);
using Logic = decltype(JormAnd);

void fold_arith(const Args &args, const char *name, Samples samples, Arith *operation) {
    fold(args, name, samples, [=](const jorm_array &dst, const jorm_array &src) {
        return operation(env(), 0, &dst, nullptr, &src, nullptr, nullptr, nullptr, 0, 0);
    });
}

void fold_logic(const Args &args, const char *name, Logic *operation, Samples samples = Samples::bits) {
    fold(args, name, samples, [=](const jorm_array &dst, const jorm_array &src) {
        return operation(env(), 0, &dst, nullptr, &src, nullptr, nullptr, nullptr);
    });
}

// Sums modulo 2^16 have the same bits whatever the sign.
void fold_sum(const Args &args, const char *name, Arith *wrapping, Arith *clamping) {
    const bool wrap = args.has("wrap");
    fold_arith(args, name, wrap ? Samples::bits : Samples::numbers, wrap ? wrapping : clamping);
}

using LogicC = decltype(JormAndC);

// Of pictures, of one and a constant, or of the window around each pixel.
void fold_extreme(const Args &args, const char *name, Logic *operation, LogicC *with_constant, uint32_t filter) {
    if ((args.files.size() == 1) != (args.has("constant") != args.has("window")))
        throw Failure("wants another picture or --constant or --window");
    if (args.has("window")) return filter_window(args, "window", filter);
    if (!args.has("constant")) return fold_logic(args, name, operation, Samples::numbers);
    const std::string out = args.output();
    Picture picture = read_picture(args.files[0]), exact = picture.as(picture.exact_type());
    const jorm_array a = exact.colours();
    Colour constant;
    read_colour(args, "constant", picture, constant);
    check(with_constant(env(), 0, &a, nullptr, constant, nullptr, nullptr), name);
    picture = exact.as(picture.eltype);
    write_picture(out, picture);
}

} // namespace

void run_add(const Args &args) { fold_sum(args, "add", JormAdd, JormAddq); }
void run_sub(const Args &args) { fold_sum(args, "sub", JormSub, JormSubq); }
void run_and(const Args &args) { fold_logic(args, "and", JormAnd); }
void run_or(const Args &args) { fold_logic(args, "or", JormOrr); }
void run_xor(const Args &args) { fold_logic(args, "xor", JormXor); }

void run_mul(const Args &args) {
    fold(args, "mul", Samples::numbers, [](const jorm_array &dst, const jorm_array &src) {
        const int p = dst.eltype == JORM_U8 ? -8 : -16;
        return JormMul(env(), 0, &dst, nullptr, &src, nullptr, nullptr, nullptr, p, 0);
    });
}

void run_diff(const Args &args) { fold_logic(args, "diff", JormAbsDiff, Samples::numbers); }

void run_min(const Args &args) { fold_extreme(args, "min", JormMin, JormMinC, JORM_FILTER_MIN); }
void run_max(const Args &args) { fold_extreme(args, "max", JormMax, JormMaxC, JORM_FILTER_MAX); }

// In single precision, rounded once at the end.
void run_blend(const Args &args) {
    const double weight = args.real("weight");
    if (weight < 0 || weight > 1) throw Failure("--weight wants a number from 0 to 1");
    fold(args, "blend", Samples::numbers, [=](const jorm_array &dst, const jorm_array &src) {
        const Colour first = {weight, weight, weight, weight}, one = {1, 1, 1, 1}, nothing = {0, 0, 0, 0};
        const Colour second = {1 - weight, 1 - weight, 1 - weight, 1 - weight};
        Picture sum(int(dst.extent[2]), int(dst.extent[1]), int(dst.extent[3]), JORM_F32);
        Picture part = sum;
        const jorm_array total = sum.view(), summand = part.view();
        check(JormMulC(env(), 0, &total, &dst, first, nullptr, nullptr, 0, 0), "blend");
        check(JormMulC(env(), 0, &summand, &src, second, nullptr, nullptr, 0, 0), "blend");
        check(JormAdd(env(), 0, &total, nullptr, &summand, nullptr, nullptr, nullptr, 0, 0), "blend");
        return JormMulAddCC(env(), 0, &dst, &total, one, nothing, nullptr, nullptr, 0, 0);
    });
}

void run_negate(const Args &args) {
    for_each_picture(args, [](Picture &picture) {
        const jorm_array a = picture.bits();
        check(JormNot(env(), 0, &a, &a, nullptr, nullptr), "negate");
    });
}

} // namespace tool
