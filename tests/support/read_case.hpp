// Random calls of operations that read a region of a picture: some of its channels, at times under a mask, at any
// layer.
#pragma once
#include "support/picture.hpp"

namespace {

struct ReadCase {
    enum Layer { entry, adapter, dispatcher, slice, layers };
    const uint32_t type;
    const int axes, lead = 4 - axes;
    const Index full;
    Picture src;
    const Part part;
    const Index &o = part.origin;
    Index n = part.size;
    const bool masked, inverted;
    const int density;
    Index m; // where the mask is read
    Picture mask;
    const uint32_t chosen, in_code; // channels, of which none means all, and how many of them the extent's code tells
    uint64_t options;
    const uint32_t word = JORM_WORD(axes);
    Index size; // as it is handed over
    const int32_t *const s = &size[size_t(lead)], *const stride = &src.a.stride[lead], *const by = &mask.a.stride[lead];

    ReadCase(Random &r, uint32_t type, int rows, int pixels, bool may_mask = true)
        : type(type), axes(r.in(3, 4)), full{axes == 4 ? r.in(1, 3) : 1, rows, pixels, r.in(1, 3)},
          src(r, type, full, false, axes), part(r, full), masked(may_mask && r.one_in(2)), inverted(r.one_in(2)),
          density(r.in(0, 2) * 4), m{r.in(0, std::min(axes - 3, full[0] - 1)), r.in(0, 2), r.in(0, 2), 0},
          mask(r, r.one_in(2) ? JORM_U8 : JORM_S8, {full[0], n[1] + m[1], n[2] + m[2], 1}, false, axes),
          chosen(r.one_in(2) ? 0 : r() & 15), in_code(r.one_in(2) ? chosen : 0),
          options((chosen - in_code) << 4 | (inverted ? JORM_OPT_MASK_INVERT : 0)) {
        mask.fill([&] { return r.in(0, 7) < density ? r.in(1, 255) : 0; });
        if (masked) n[0] = std::min(n[0], full[0] - m[0]);
        src.a.extent[3] |= in_code << 4;
        size = {n[0], n[1], n[2], n[3] | int(in_code << 4)};
    }
    ReadCase(const ReadCase &) = delete;

    bool selects(int channel) const { return channel < n[3] && (chosen == 0 || (chosen >> channel & 1)); }
    // Calls f(value, place in the region) for what a channel shows through the mask.
    template <class F> void each_sample(int channel, F f) const {
        each({n[0], n[1], n[2], 1}, [&](const Index &at) {
            if (masked && *mask.at(sum(at, m)) == (inverted ? 255 : 0)) return;
            f(src.get(sum(sum(at, o), {0, 0, 0, channel})), at);
        });
    }

    // A layer's function, without and with a mask; the rest follows the operands, in a slice it is the parameters.
    template <class P, class M, class... Rest> int64_t at_entry(jorm_xe *xe, P plain, M under_mask, Rest... rest) {
        if (masked) return under_mask(xe, options, &src.a, &mask.a, part.roi(), m.data(), rest...);
        return plain(xe, options, &src.a, part.roi(), rest...);
    }
    template <class P, class M, class... Rest> int64_t at_adapter(jorm_xe *xe, P plain, M under_mask, Rest... rest) {
        const int32_t *const from = &o[size_t(lead)], *const to = &m[size_t(lead)];
        if (masked)
            return under_mask(xe, options, word, s, type, src.at({}), from, stride, mask.at({}), to, by, rest...);
        return plain(xe, options, word, s, type, src.at({}), from, stride, rest...);
    }
    template <class P, class M, class... Rest> int64_t at_dispatcher(jorm_xe *xe, P plain, M under_mask, Rest... rest) {
        if (masked) return under_mask(xe, options, word, s, type, src.at(o), stride, mask.at(m), by, rest...);
        return plain(xe, options, word, s, type, src.at(o), stride, rest...);
    }
    template <class P, class M, class Rest> int64_t at_slice(jorm_xe *xe, P plain, M under_mask, Rest rest) {
        const uint8_t *const p = src.at(o), *const q = mask.at(m);
        if (masked) return under_mask(xe, options, rest, word, s, type, p, stride, mask.a.eltype, q, by);
        return plain(xe, options, rest, word, s, type, p, stride);
    }
};

} // namespace
