#include "tool.hpp"

#include <cstdio>

namespace tool {
namespace {

int element_size(uint32_t eltype) { return eltype == JORM_F32 ? 4 : 1; }

struct Environment {
    jorm_xe *xe = JormXEopen(nullptr, nullptr, 0);
    ~Environment() { JormXEclose(xe); }
};

} // namespace

Picture::Picture(int width, int height, int channels, uint32_t eltype)
    : width(width), height(height), channels(channels), eltype(eltype) {
    const int64_t size = int64_t(width) * height * channels * element_size(eltype);
    if (size > INT32_MAX) throw Failure("a picture of " + shape() + " is too large");
    bytes.resize(size_t(size));
}

jorm_array Picture::view() {
    const int32_t extent[3] = {height, width, channels};
    jorm_array a;
    _jorm_array__$xtrn(&a, eltype, 3, extent, nullptr, bytes.data());
    return a;
}

jorm_array Picture::colours() {
    jorm_array a = view();
    if (channels % 2 == 0) --a.extent[3];
    return a;
}

jorm_array Picture::row(int y) {
    jorm_array a = view();
    a.loff = y * a.stride[1];
    a.extent[1] = 1;
    return a;
}

jorm_array Picture::channel(int c) {
    jorm_array a = view();
    a.loff = c * a.stride[3];
    a.extent[3] = 1;
    return a;
}

jorm_array Picture::every(int step, int x, int y) {
    jorm_array a = view();
    const int from[] = {0, y, x};
    for (int i : {1, 2}) {
        a.extent[i] = (a.extent[i] - uint32_t(from[i]) + uint32_t(step) - 1) / uint32_t(step);
        a.loff += from[i] * a.stride[i];
        a.stride[i] *= step;
    }
    return a;
}

std::string Picture::shape() const {
    return std::to_string(width) + "x" + std::to_string(height) + ", " + std::to_string(channels) +
           (channels == 1 ? " channel" : " channels");
}

jorm_xe *env() {
    static Environment environment;
    if (!environment.xe) throw Failure("out of memory");
    return environment.xe;
}

void check(int64_t status, const char *what) {
    if (status < 0) throw Failure(std::string(what) + ": " + jorm_status_str(status));
}

jorm_site site(int x, int y, int width, int height) { return {{0, y, x, 0}, {1, height, width, 4}}; }

Progress::~Progress() {
    if (spoke_) std::fputc('\n', stderr);
}

void Progress::step(const std::string &what) {
    ++done_;
    if (Clock::now() - last_ < std::chrono::seconds(1)) return;
    last_ = Clock::now();
    spoke_ = true;
    std::fprintf(stderr, "\r%zu of %zu: %s\033[K", done_, total_, what.c_str());
}

} // namespace tool
