// Element-wise arithmetic and logic of pictures.
#include "tool.hpp"

#include <filesystem>
#include <set>

namespace tool {
namespace {

// An alpha channel takes no part, so it may be missing.
Picture read_same(const std::string &path, const Picture &first, const std::string &first_path) {
    Picture picture = read_picture(path);
    if (picture.width != first.width || picture.height != first.height ||
        (picture.channels < 3) != (first.channels < 3))
        throw Failure("sizes differ: " + first_path + " is " + first.shape() + ", " + path + " is " + picture.shape());
    return picture;
}

// The first picture, worked on in place with each of the others: operation(first, other) gives a status.
template <class Operation> void fold(const Args &args, const char *name, Operation operation) {
    args.want_files(2);
    const std::string &out = args.output();
    Picture result = read_picture(args.files[0]);
    const jorm_array dst = result.colours();
    Progress progress(args.files.size());
    progress.step(args.files[0]);
    for (size_t i = 1; i < args.files.size(); ++i) {
        Picture other = read_same(args.files[i], result, args.files[0]);
        const jorm_array src = other.colours();
        check(operation(dst, src), name);
        progress.step(args.files[i]);
    }
    write_png(out, result);
}

using Arith = decltype(JormAdd);
using Logic = decltype(JormAnd);

void fold_arith(const Args &args, const char *name, Arith *operation, int scale = 0) {
    fold(args, name, [=](const jorm_array &dst, const jorm_array &src) {
        return operation(env(), 0, &dst, nullptr, &src, nullptr, nullptr, nullptr, scale, 0);
    });
}

void fold_logic(const Args &args, const char *name, Logic *operation) {
    fold(args, name, [=](const jorm_array &dst, const jorm_array &src) {
        return operation(env(), 0, &dst, nullptr, &src, nullptr, nullptr, nullptr);
    });
}

} // namespace

void run_add(const Args &args) { fold_arith(args, "add", args.has("wrap") ? JormAdd : JormAddq); }
void run_sub(const Args &args) { fold_arith(args, "sub", args.has("wrap") ? JormSub : JormSubq); }
void run_mul(const Args &args) { fold_arith(args, "mul", JormMul, -8); }
void run_and(const Args &args) { fold_logic(args, "and", JormAnd); }
void run_or(const Args &args) { fold_logic(args, "or", JormOrr); }
void run_xor(const Args &args) { fold_logic(args, "xor", JormXor); }

// Of the two differences limited to 0, at most one is not 0.
void run_diff(const Args &args) {
    args.want_files(2, 2);
    fold(args, "diff", [](const jorm_array &dst, const jorm_array &src) {
        Picture reverse(int(dst.extent[2]), int(dst.extent[1]), int(dst.extent[3]));
        const jorm_array other = reverse.view();
        check(JormSubq(env(), 0, &other, &src, &dst, nullptr, nullptr, nullptr, 0, 0), "diff");
        check(JormSubq(env(), 0, &dst, nullptr, &src, nullptr, nullptr, nullptr, 0, 0), "diff");
        return JormOrr(env(), 0, &dst, nullptr, &other, nullptr, nullptr, nullptr);
    });
}

// In single precision, rounded once at the end.
void run_blend(const Args &args) {
    args.want_files(2, 2);
    const double weight = args.real("weight", 0.5);
    if (weight < 0 || weight > 1) throw Failure("--weight wants a number from 0 to 1");
    fold(args, "blend", [=](const jorm_array &dst, const jorm_array &src) {
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
    namespace fs = std::filesystem;
    args.want_files(1);
    const fs::path out = args.output();
    const bool folder = args.files.size() > 1 || fs::is_directory(out);
    std::error_code fault;
    if (folder && (fs::create_directories(out, fault), fault))
        throw Failure("cannot make the folder " + out.string() + ": " + fault.message());
    std::set<std::string> written;
    Progress progress(args.files.size());
    for (const std::string &path : args.files) {
        Picture picture = read_picture(path);
        const jorm_array a = picture.colours();
        check(JormNot(env(), 0, &a, &a, nullptr, nullptr), "negate");
        const std::string target = folder ? (out / fs::path(path).stem()).string() + ".png" : out.string();
        if (!written.insert(target).second) throw Failure("two pictures would be written to " + target);
        write_png(target, picture);
        progress.step(path);
    }
}

} // namespace tool
