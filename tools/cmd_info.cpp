#include "tool.hpp"

#include <cstdio>

namespace tool {

void run_info(const Args &args) {
    const unsigned version = jorm_version();
    std::printf("libJorm %u.%u.%u, kernels for %s\n", version >> 16, version >> 8 & 255, version & 255,
                jorm_level_str());
    for (const std::string &path : args.files) {
        const Picture picture = read_picture(path);
        std::printf("%s: %s (%s)\n", path.c_str(), picture.shape().c_str(), picture.file.c_str());
    }
}

} // namespace tool
