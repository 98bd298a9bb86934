#include "resample/axis.hpp"

#include <cmath>

namespace jorm {

using u128 = unsigned __int128;

Ratio ratio_of(double factor) {
    constexpr double all_first = 4294967296; // from here on every position reads the first one
    if (factor >= all_first) return {uint64_t(1) << 32, 1};
    int exponent;
    const auto digits = uint64_t(std::ldexp(std::frexp(factor, &exponent), 53));
    exponent -= 53;
    const Ratio exact = {exponent < 0 ? digits : digits << exponent, u128(1) << (exponent < 0 ? -exponent : 0)};

    // The fraction of two sizes is among the convergents of the factor's continued fraction.
    constexpr u128 limit = u128(1) << 31;
    u128 a = exact.p, b = exact.q;
    u128 p = 1, q = 0, before_p = 0, before_q = 1;
    while (b != 0) {
        const u128 term = a / b, rest = a % b;
        if (term >= limit) break;
        const u128 next_p = term * p + before_p, next_q = term * q + before_q;
        if (next_p >= limit || next_q >= limit) break;
        before_p = p, before_q = q;
        p = next_p, q = next_q;
        if (double(uint64_t(p)) / double(uint64_t(q)) == factor) return {uint64_t(p), q};
        a = b, b = rest;
    }
    return exact;
}

// In parts of 1 / (2 p): (2 i + 1) q, and as much of the offset's fraction as makes whole parts.
Axis::Axis(const Ratio &ratio, double offset, int64_t size) : size_(size), whole_(2 * ratio.p) {
    constexpr double far = 1152921504606846976; // 2^60, beyond every position
    offset = offset < -far ? -far : offset > far ? far : offset;
    const double floor = std::floor(offset);
    int exponent;
    const auto digits = uint64_t(std::ldexp(std::frexp(offset - floor, &exponent), 53));
    const int shift = 53 - exponent;
    const u128 more = shift < 128 ? u128(digits) * whole_ >> shift : 0;

    const u128 first = ratio.q + more, step = 2 * ratio.q;
    at_ = int64_t(floor) + int64_t(first / whole_);
    rest_ = uint64_t(first % whole_);
    step_ = int64_t(step / whole_);
    step_rest_ = uint64_t(step % whole_);
}

} // namespace jorm
