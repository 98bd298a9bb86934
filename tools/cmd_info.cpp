#include "tool.hpp"

#include <cstdio>

namespace tool {

void run_info(const Args &args) {
    const unsigned version = jorm_version();
    std::printf("libJorm %u.%u.%u, kernels for %s\n", version >> 16, version >> 8 & 255, version & 255,
                jorm_level_str());
    for (const std::string &path : args.files)
        std::printf("%s: %s\n", path.c_str(), read_picture(path).shape().c_str());
}

} // namespace tool
