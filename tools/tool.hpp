// What the subcommands share: arguments, failures, pictures in memory, files, drawing.
#pragma once

#include "jorm.h"

#include <cstdint>
#include <cstdio>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace tool {

// A fault that the user can mend; main prints it and exits with status 2.
struct Failure : std::runtime_error {
    using std::runtime_error::runtime_error;
};

struct Args;

inline constexpr char required[] = "required";

struct Option {
    const char *name, *value; // value: what stands for it in the help, null for a switch
    const char *otherwise;    // the value if not given, null for none, or `required`
    const char *help;
    const char *choices = nullptr; // the values there are, parted by blanks; null for any
};

std::string choices_of(const Option &); // "const, wrap, reflect"

// The one description of a command: arguments are parsed by it, and help, manual and completion are made from it.
struct Command {
    const char *name, *operands, *summary; // operands as in the help: "PICTURE [PICTURE...]"
    void (*run)(const Args &);
    std::vector<Option> options;
};

const std::vector<Command> &commands();

// Arguments that fit the command's table. Values are those given, else the ones of the table.
struct Args {
    std::vector<std::string> files;

    Args(const Command &, const std::vector<std::string> &words);
    bool has(const char *option) const { return given_.count(option) != 0; }
    std::string text(const char *option) const;
    int number(const char *option, int low, int high) const;
    double real(const char *option) const;
    std::vector<double> reals(const char *option) const;       // "255,128,0"
    std::pair<double, double> range(const char *option) const; // LOW,HIGH
    std::pair<int, int> point(const char *option) const;       // X,Y
    std::pair<int, int> size(const char *option) const;        // WxH
    std::string output() const;                                // the file of -o, whose suffix is a known one
    std::FILE *report() const;                                 // where text goes: stderr when the picture takes stdout
    void want_files(size_t low, size_t high = SIZE_MAX) const;

private:
    const Option &of(const std::string &option) const;
    [[noreturn]] void bad(const char *option, const std::string &wanted) const;

    const Command &command_;
    std::map<std::string, std::string> given_;
};

// Dense pixels that the tool owns; the library sees them through view(). Files give u8 or u16 samples.
struct Picture {
    int width = 0, height = 0, channels = 0;
    uint32_t eltype = JORM_U8;
    std::vector<uint8_t> bytes;
    std::string file; // what kind of file it was read from

    Picture() = default;
    Picture(int width, int height, int channels, uint32_t eltype = JORM_U8);
    jorm_array view();
    jorm_array colours(); // without the alpha channel, which no operation changes
    jorm_array bits();    // colours() with 16-bit samples as s16, of which every bit is worked on alike
    jorm_array row(int y);
    jorm_array channel(int c);
    jorm_array every(int step, int x, int y); // from (x, y) on, each step-th pixel of each step-th row
    bool has_alpha() const { return channels % 2 == 0; }
    int colour_count() const { return channels - has_alpha(); }
    int depth() const { return eltype == JORM_U8 ? 8 : 16; }
    int top() const { return eltype == JORM_U8 ? 255 : 65535; }
    int sample(int x, int y, int c) const;
    Picture as(uint32_t type); // the same values in another type, rounded and clamped
    Picture scaled(uint32_t type, const double *gain, const double *offset); // the same of gain x sample + offset
    void limit(const double *low, const double *high);                       // colours clamped to a range for each
    uint32_t exact_type() const; // the type for arithmetic: u8, and s32 for 16-bit samples
    std::string shape() const;   // "640x480, 3 channels of 8 bits"
};

// A constant for each channel of a picture.
using Colour = double[4];
// From 1 value for all colours, or 1 for each of them (alpha is then opaque), or 1 for each channel.
void read_colour(const Args &, const char *option, const Picture &, double *colour);
// From 1 value for all colours or 1 for each of them, of any size.
void read_factors(const Args &, const char *option, const Picture &, double *factors);

Picture read_picture(const std::string &path); // "-" is standard input
// A picture of the same size, colour channels and depth. Alpha takes no part, so either may be without.
Picture read_same(const std::string &path, const Picture &first, const std::string &first_path);
// The bytes of all colours of a pixel put together: not 0 where any colour differs from 0; inverted, not 255 where any
// differs from white, for JORM_OPT_MASK_INVERT.
Picture mask_of(Picture &picture, bool inverted = false);
Picture read_mask(const std::string &path, const Picture &picture, bool inverted = false); // of the picture's size
void write_picture(const std::string &path, Picture &);                                    // "-" is standard output
bool known_suffix(const std::string &path);

Picture grey_bytes(Picture &); // one channel of 8 bits: luma of colours, 16 bits divided by 257
// Reads each picture, lets the operation change it and writes it to -o, which is a folder for several of them.
void for_each_picture(const Args &, const std::function<void(Picture &)> &operation);

void filter_window(const Args &, const char *option, uint32_t op); // for_each_picture, over the window of an option

std::vector<double> otsu_levels(Picture &); // whole numbers, one for each colour: what is above is the upper class

jorm_xe *env();                               // the environment of the whole run
void check(int64_t status, const char *what); // a negative status becomes a Failure
jorm_site site(int x, int y, int width, int height);

// Drawing, through the library.
void fill(const jorm_array &dst, const jorm_site &where, const double *colour);
void copy(const jorm_array &dst, int x, int y, const jorm_array &src);
void fill_disk(const jorm_array &dst, double x, double y, double radius, const double *colour);
void draw_text(const jorm_array &dst, int x, int y, int scale, const std::string &text, const double *colour);
constexpr int glyph_width = 6, glyph_height = 9; // of one character at scale 1, with its margin

// Figures of sets of pixels.
using Points = std::vector<jorm_2d_pt>;
jorm_r2d_ell ellipse_of(const Points &); // with the moments of the set
std::vector<jorm_r2d_pt> outline_of(const jorm_r2d_ell &);

class Pen {
public:
    explicit Pen(Picture &picture);
    void outline(const jorm_r2d_pt *points, int n, const double *colour) const; // closed, through n points

private:
    void line(const jorm_r2d_pt &a, const jorm_r2d_pt &b, const double *colour) const;

    jorm_array array_;
    int width_;
};

std::string quoted(const std::string &text); // as a JSON string

// A bar on stderr while several files are worked on, if that is a terminal; not with --quiet.
class Progress {
public:
    explicit Progress(const Args &args);
    ~Progress();
    void step(const std::string &what);

private:
    size_t total_, done_ = 0;
    bool shown_;
};

} // namespace tool
