// Where a view lies in the buffer that it is a view of.
#pragma once
#include "array/element.hpp"
#include "jorm/types.h"

#include <cstdlib>

namespace jorm {

// The index of a view's first element in the buffer that it is a view of. `base` is the buffer's first element in the
// order of the strides, or its lowest byte (a bottom-up picture that is described from its memory's start on). An
// offset is taken apart from the widest stride to the narrowest so that what remains lies within the inner axes.
class ParentIndex {
public:
    explicit ParentIndex(const jorm_array &a) : a_(a) {
        for (int i = 0; i < 4; ++i) {
            extent_[i] = i < 3 ? int32_t(a.parent_extent[i]) : stored_channels(a.parent_extent[3] & 15);
            view_[i] = i < 3 ? int32_t(a.extent[i]) : stored_channels(a.extent[3] & 15);
        }
    }
    // False when the offset leads to no place in it. Index: four slots, extent: the spatial ones.
    bool find(int64_t *index, int64_t *extent) const {
        for (int way = 0; way < 2; ++way) {
            const bool from_lowest = way == 1;
            if (!take_apart(index, from_lowest)) continue;
            for (int i = 0; i < 3; ++i) extent[i] = extent_[i];
            return true;
        }
        return false;
    }

private:
    bool take_apart(int64_t *index, bool from_lowest) const {
        const int first = 4 - a_.ndims;
        int order[4], n = 0; // from the widest stride to the narrowest
        for (int i = first; i < 4; ++i) {
            int k = n++;
            for (; k > 0 && width(order[k - 1]) < width(i); --k) order[k] = order[k - 1];
            order[k] = i;
        }
        int64_t rest = a_.loff;
        for (int k = 0; k < n; ++k) {
            const int i = order[k];
            index[i] = 0;
            if (extent_[i] == 1 && view_[i] == 1) continue;
            const int64_t step = from_lowest ? width(i) : a_.stride[i];
            int64_t low = 0, high = 0; // what the inner axes span
            for (int m = k + 1; m < n; ++m) {
                const int64_t inner = from_lowest ? width(order[m]) : a_.stride[order[m]];
                ((inner < 0) ? low : high) += (extent_[order[m]] - 1) * inner;
            }
            int64_t q = 0;
            if (step > 0) q = floor_div(rest - low, step);
            if (step < 0) q = floor_div(high - rest, -step);
            rest -= q * step;
            index[i] = from_lowest && a_.stride[i] < 0 ? extent_[i] - 1 - q : q;
            if (index[i] < 0 || index[i] + view_[i] > extent_[i]) return false;
        }
        for (int i = 0; i < first; ++i) index[i] = 0;
        return rest == 0;
    }
    int64_t width(int i) const { return std::llabs(a_.stride[i]); }
    static int64_t floor_div(int64_t a, int64_t b) { return a >= 0 ? a / b : -((-a + b - 1) / b); }

    const jorm_array &a_;
    int64_t extent_[4], view_[4];
};

} // namespace jorm
