// jorm-tool: the library's operations on picture files.
#include "manual.hpp"

#include <cstdio>
#include <cstring>
#include <exception>
#include <new>

namespace tool {

#define COMMAND(name, run, ...) void run(const Args &);
#include "commands.def"
#undef COMMAND

const std::vector<Command> &commands() {
    const Option out = {"output", "OUT", required,
                        "the result, by its name .png, .jpg, .pgm or .ppm; - is standard output"};
    const Option out_or_folder = {"output", "OUT", required,
                                  "the result, by its name .png, .jpg, .pgm or .ppm; - is standard output; or a "
                                  "folder, in which PNG files get the pictures' names"};
    const Option window = {"size", "WxH", "5x5", "the window around each pixel"};
    const Option deviation_window = {"size", "WxH", nullptr,
                                     "the window around each pixel; as wide as --sigma needs if not given"};
    const Option sigma = {"sigma", "S[,S]", nullptr,
                          "the standard deviation in pixels, or those across and down; by --size if not given"};
    const Option element_size = {"size", "WxH", "5x5", "the element; with odd sides nothing moves"};
    const Option element_shape = {"shape", "NAME", "rectangle", "its shape", "rectangle ellipse cross"};
    const Option element_mask = {"mask", "PICTURE", nullptr, "the white pixels of this picture as the element instead"};
    const Option polarity = {"polarity", "NAME", "dark", "regions darker or lighter than what is around", "dark light"};
    const Option polarity_both = {"polarity", "NAME", "both", polarity.help, "dark light both"};
    const char *border_modes = "const replicate wrap reflect reflect101";
#define COMMAND(name, run, operands, summary, ...) {name, operands, summary, run, {__VA_ARGS__}},
    static const std::vector<Command> all = [&] {
        std::vector<Command> list = {
#include "commands.def"
        };
        for (Command &c : list)
            if (std::strstr(c.operands, "...") && !c.options.empty() && !std::strcmp(c.options[0].name, "output"))
                c.options.push_back({"quiet", nullptr, nullptr, "no progress bar when there are several pictures"});
        return list;
    }();
#undef COMMAND
    return all;
}

namespace {

const Command *find(const std::string &name) {
    for (const Command &c : commands())
        if (name == c.name) return &c;
    return nullptr;
}

int run(const std::vector<std::string> &words) {
    static const struct {
        const char *option;
        void (*print)(std::FILE *);
    } prints[] = {{"--help", print_help},
                  {"-h", print_help},
                  {"--version", print_version},
                  {"--manual", print_manual},
                  {"--completion", print_completion}};
    if (words.empty()) {
        print_help(stderr);
        return 2;
    }
    for (const auto &p : prints)
        if (words[0] == p.option) {
            p.print(stdout);
            return 0;
        }
    const Command *command = find(words[0]);
    if (!command) throw Failure("unknown command '" + words[0] + "' (jorm-tool --help lists them)");
    const std::vector<std::string> rest(words.begin() + 1, words.end());
    for (const std::string &word : rest) {
        if (word == "--") break;
        if (word == "--help" || word == "-h") {
            print_command(stdout, *command);
            return 0;
        }
    }
    try {
        command->run(Args(*command, rest));
    } catch (const Failure &fault) {
        throw Failure(words[0] + ": " + fault.what());
    }
    return 0;
}

} // namespace
} // namespace tool

int main(int argc, char **argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    _G_jorm_use_simd = 1;
    try {
        const int status = tool::run(words);
        if (std::fflush(stdout) == 0) return status;
        std::fputs("jorm-tool: cannot write to standard output\n", stderr);
    } catch (const std::bad_alloc &) {
        std::fputs("jorm-tool: out of memory\n", stderr);
    } catch (const std::exception &fault) {
        std::fprintf(stderr, "jorm-tool: %s\n", fault.what());
    }
    return 2;
}
