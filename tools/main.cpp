// jorm-tool: the library's operations on picture files.
#include "tool.hpp"

#include <cstdio>
#include <cstring>
#include <exception>

namespace tool {

#define COMMAND(name, run, ...) void run(const Args &);
#include "commands.def"
#undef COMMAND

namespace {

const Command commands[] = {
#define COMMAND(name, run, usage, summary, options) {name, usage, summary, options, run},
#include "commands.def"
#undef COMMAND
};

void print_help(std::FILE *to) {
    std::fprintf(to, "usage: jorm-tool COMMAND ARGUMENTS\n\n");
    for (const Command &c : commands) std::fprintf(to, "  %-8s %s\n", c.name, c.summary);
    std::fprintf(to,
                 "\nPictures: PNG, JPEG or PNM in, PNG out; 8 bits per sample. An alpha channel is that of the first\n"
                 "picture. jorm-tool COMMAND --help tells more. Exit status: 0, or 2 with a message on stderr.\n");
}

const Command *find(const std::string &name) {
    for (const Command &c : commands)
        if (name == c.name) return &c;
    return nullptr;
}

int run(const std::vector<std::string> &words) {
    if (words.empty()) {
        print_help(stderr);
        return 2;
    }
    if (words[0] == "--help" || words[0] == "-h") {
        print_help(stdout);
        return 0;
    }
    const Command *command = find(words[0]);
    if (!command) throw Failure("unknown command '" + words[0] + "' (jorm-tool --help lists them)");
    const std::vector<std::string> rest(words.begin() + 1, words.end());
    for (const std::string &word : rest)
        if (word == "--help" || word == "-h") {
            std::printf("usage: jorm-tool %s %s\n%s\n", command->name, command->usage, command->summary);
            return 0;
        }
    command->run(Args(*command, rest));
    return 0;
}

} // namespace
} // namespace tool

int main(int argc, char **argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    _G_jorm_use_simd = 1;
    try {
        return tool::run(words);
    } catch (const std::exception &fault) {
        std::fprintf(stderr, "jorm-tool: %s\n", fault.what());
        return 2;
    }
}
