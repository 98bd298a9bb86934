// Which source position each position along a resized axis reads, exactly.
#pragma once
#include <cstdint>

namespace jorm {

// A resize factor as the fraction p / q.
struct Ratio {
    uint64_t p;
    unsigned __int128 q;
};

// The simplest fraction of 31-bit numbers whose quotient rounds to the factor, which then came from two sizes; else the
// factor itself. It is finite and at least the epsilon of single precision.
Ratio ratio_of(double factor);

// Gives floor((i + 0.5) / (p / q) + offset), within [0, size), for i = 0, 1, 2 ...
class Axis {
public:
    Axis(const Ratio &ratio, double offset, int64_t size);

    int64_t next() {
        const int64_t position = at_ < 0 ? 0 : at_ < size_ ? at_ : size_ - 1;
        at_ += step_;
        rest_ += step_rest_;
        if (rest_ >= whole_) {
            rest_ -= whole_;
            ++at_;
        }
        return position;
    }

private:
    int64_t at_, step_, size_;
    uint64_t rest_, step_rest_, whole_; // beyond at_ and step_, in parts of `whole_`
};

} // namespace jorm
