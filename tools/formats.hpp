// The file formats: pictures from bytes in memory, and bytes from pictures. A Failure says what is wrong with the data.
#pragma once

#include "tool.hpp"

namespace tool {

using Bytes = std::vector<uint8_t>;

Picture decode_png(const Bytes &);
Picture decode_jpeg(const Bytes &);
Picture decode_pnm(const Bytes &);

Bytes encode_png(Picture &);
Bytes encode_jpeg(Picture &);
Bytes encode_pgm(Picture &);
Bytes encode_ppm(Picture &);

} // namespace tool
