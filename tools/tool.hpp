// What the subcommands share: arguments, failures, pictures in memory, files, drawing.
#pragma once

#include "jorm.h"

#include <chrono>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace tool {

// A fault that the user can mend; main prints it and exits with status 2.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Args;

struct Command {
    const char *name, *usage, *summary;
    const char *options; // names parted by blanks; one that takes a value ends in '='
    void (*run)(const Args &);
};

struct Args {
    std::vector<std::string> files;
    std::map<std::string, std::string> options;

    Args(const Command &, const std::vector<std::string> &words);
    bool has(const char *option) const { return options.count(option) != 0; }
    const std::string &output() const; // the file of -o; a Failure without one
    std::string text(const char *option, const char *otherwise) const;
    int number(const char *option, int otherwise, int low, int high) const;
    double real(const char *option, double otherwise) const;
    std::pair<int, int> size(const char *option, const char *otherwise) const; // WxH
    void want_files(size_t low, size_t high = SIZE_MAX) const;
};

// Dense pixels that the tool owns; the library sees them through view().
struct Picture {
    int width = 0, height = 0, channels = 0;
    uint32_t eltype = JORM_U8;
    std::vector<uint8_t> bytes;

    Picture() = default;
    Picture(int width, int height, int channels, uint32_t eltype = JORM_U8);
    jorm_array view();
    jorm_array colours(); // without the alpha channel, which no operation changes
    jorm_array row(int y);
    jorm_array channel(int c);
    jorm_array every(int step, int x, int y); // from (x, y) on, each step-th pixel of each step-th row
    std::string shape() const;                // "640x480, 3 channels"
};

Picture read_picture(const std::string &path);
void write_png(const std::string &path, Picture &);

jorm_xe *env();                               // the environment of the whole run
void check(int64_t status, const char *what); // a negative status becomes a Failure
jorm_site site(int x, int y, int width, int height);

// Drawing, through the library.
using Colour = double[4];
void fill(const jorm_array &dst, const jorm_site &where, const double *colour);
void copy(const jorm_array &dst, int x, int y, const jorm_array &src);
void fill_disk(const jorm_array &dst, double x, double y, double radius, const double *colour);
void draw_text(const jorm_array &dst, int x, int y, int scale, const std::string &text, const double *colour);
constexpr int glyph_width = 6, glyph_height = 9; // of one character at scale 1, with its margin

// Says on stderr how far a long run has come; short runs stay silent.
class Progress {
public:
    explicit Progress(size_t total) : total_(total) {}
    ~Progress();
    void step(const std::string &what);

private:
    using Clock = std::chrono::steady_clock;
    size_t total_, done_ = 0;
    Clock::time_point last_ = Clock::now();
    bool spoke_ = false;
};

} // namespace tool
