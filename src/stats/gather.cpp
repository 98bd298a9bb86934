#include "stats/gather.hpp"

namespace jorm {

int64_t read_source(StatShape &shape, const StatSource &s) {
    const auto axes = int32_t(s.word & 15);
    if (axes < 2 || axes > 4 || !s.size || !s.samples.start || !s.samples.stride) return JORM_EINVAL;
    if (s.masked && (!s.mask.start || !s.mask.stride)) return JORM_EINVAL;
    if (s.masked && s.mask.type != JORM_U8 && s.mask.type != JORM_S8) return JORM_EINVAL;
    const auto code = uint32_t(s.size[axes - 1]);
    shape = {axes == 4 ? s.size[0] : 1, axes >= 3 ? s.size[axes - 3] : 1, s.size[axes - 2], s.channels, 0};
    // Code 12 stands for four channels here.
    if (shape.channels == 0) shape.channels = (code & 15) == 12 ? 4 : stored_channels(code & 15);
    if (shape.channels < 1 || shape.channels > 4) return JORM_EINVAL;
    const uint32_t all = (1u << shape.channels) - 1;
    const auto asked = uint32_t(s.options >> 4 & 15) != 0 ? uint32_t(s.options >> 4 & 15) : code >> 4 & 15;
    shape.selected = asked != 0 ? asked & all : all;
    return JORM_OK;
}

} // namespace jorm
