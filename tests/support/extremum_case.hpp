// What minima, maxima, openings and closings should give, looked up window by window.
#pragma once
#include "support/window_case.hpp"

#include <cfloat>
#include <functional>

namespace {

// Windows of which the places that `uses` names take part; null: all.
struct ExtremumOracle {
    const WindowCase &c;
    std::function<bool(const Index &)> uses;

    // The value that loses against all others.
    double neutral(bool largest) const {
        const uint32_t type = c.src.eltype;
        if (type == JORM_F32) return largest ? -double(FLT_MAX) : double(FLT_MAX);
        return largest ? lowest(type) : highest(type);
    }
    template <class Value> double extremum(const Index &p, bool largest, Value value) const {
        double best = nan; // which loses against all others here
        bool any = false;
        c.each_place(p, [&](const Index &at, const Index &q) {
            if (uses && !uses(q)) return;
            const double v = value(at);
            best = largest ? std::fmax(best, v) : std::fmin(best, v);
            any = true;
        });
        return any ? best : neutral(largest);
    }
    double once(const Index &p, bool largest) const {
        return extremum(p, largest, [&](const Index &i) { return c.at(i); });
    }
    // The second pass sees the first one's results within the region, around it what never wins.
    double twice(const Index &p, bool closing) const {
        return extremum(p, !closing, [&](const Index &i) {
            bool inside = true;
            for (size_t k = 0; k < 3; ++k) inside = inside && i[k] >= 0 && i[k] < c.region.size[k];
            return inside ? once(i, closing) : neutral(!closing);
        });
    }
    double hat(const Index &p, bool closing) const {
        const double difference = closing ? twice(p, true) - c.at(p) : c.at(p) - twice(p, false);
        const uint32_t type = c.src.eltype;
        return type == JORM_F32 ? float(difference) : std::clamp(difference, lowest(type), highest(type));
    }
};

} // namespace
