#include "manual.hpp"

#include <cctype>
#include <sstream>

namespace tool {
namespace {

const char pictures[] =
    "Pictures are PNG, JPEG or PNM files with 8 or 16 bits per sample (PNG palettes and fewer than 8 bits are expanded "
    "to 8). Samples are read and written as they stand, without gamma or colour management. Results have the depth of "
    "the first picture; -o tells by its suffix what is written: .png, .jpg (8 bits, quality 95), .pgm or .ppm. A "
    "picture named - is standard input, an output named - is a PNG on standard output. No operation changes an alpha "
    "channel, which is that of the first picture, unless told so.";
const char exit_status[] = "0; or 2 after a fault, with a message on standard error and no result written.";

// "-o, --output OUT" or "--weight W".
std::string spelled(const Option &o) {
    std::string text = std::string(o.name) == "output" ? "-o, --output" : std::string("--") + o.name;
    if (o.value) text += std::string(" ") + o.value;
    return text;
}

std::string explained(const Option &o) {
    std::string text = o.help;
    if (o.choices) text += "; one of " + choices_of(o);
    if (o.otherwise == required)
        text += " (required)";
    else if (o.otherwise)
        text += std::string(" (") + o.otherwise + " if not given)";
    return text;
}

// "blend PICTURE PICTURE -o OUT [--weight W]"
std::string synopsis(const Command &c) {
    std::string text = std::string(c.name) + " " + c.operands;
    for (const Option &o : c.options) {
        const std::string name = std::string(o.name) == "output" ? "-o" : std::string("--") + o.name;
        const std::string word = name + (o.value ? std::string(" ") + o.value : "");
        text += o.otherwise == required ? " " + word : " [" + word + "]";
    }
    return text;
}

// The text in lines of at most 100 characters, each after the first behind an indentation.
std::string wrapped(const std::string &text, size_t first, size_t indent) {
    std::istringstream in(text);
    std::string result;
    size_t column = first;
    for (std::string word; in >> word;) {
        if (column > indent && column + 1 + word.size() > 100) {
            result += '\n';
            result.append(indent, ' ');
            column = indent;
        } else if (!result.empty()) {
            result += ' ';
            ++column;
        }
        result += word;
        column += word.size();
    }
    return result;
}

std::string sentence(std::string text) {
    text[0] = char(std::toupper(static_cast<unsigned char>(text[0])));
    return text + ".";
}

// Text for the manual page: hyphens that stay such, no line that begins with a control character.
std::string roff(const std::string &text) {
    std::string result;
    for (const char c : text)
        result += c == '-' || c == '\\' ? std::string("\\") + (c == '-' ? "-" : "e") : std::string(1, c);
    return result;
}

std::string version() {
    const unsigned v = jorm_version();
    return std::to_string(v >> 16) + "." + std::to_string(v >> 8 & 255) + "." + std::to_string(v & 255);
}

} // namespace

void print_version(std::FILE *to) { std::fprintf(to, "jorm-tool %s\n", version().c_str()); }

void print_help(std::FILE *to) {
    std::fprintf(to, "usage: jorm-tool COMMAND ARGUMENTS\n\n");
    for (const Command &c : commands()) std::fprintf(to, "  %-10s%s\n", c.name, wrapped(c.summary, 12, 12).c_str());
    std::fprintf(to,
                 "\n%s\n\njorm-tool COMMAND --help tells more; --version, --manual (a manual page) and --completion "
                 "(for bash)\nprint what they say. Exit status: %s\n",
                 wrapped(pictures, 0, 0).c_str(), exit_status);
}

void print_command(std::FILE *to, const Command &c) {
    std::fprintf(to, "usage: jorm-tool %s\n\n%s\n", wrapped(synopsis(c), 17, 17).c_str(),
                 wrapped(sentence(c.summary), 0, 0).c_str());
    for (const Option &o : c.options)
        std::fprintf(to, "%s  %-22s  %s\n", &o == &c.options[0] ? "\n" : "", spelled(o).c_str(),
                     wrapped(explained(o), 26, 26).c_str());
}

void print_manual(std::FILE *to) {
    std::fprintf(to,
                 ".\\\" Made by jorm-tool --manual (scripts/update-manual); change the tables in tools/, not this.\n"
                 ".TH JORM-TOOL 1 \"\" \"libJorm %s\" \"User Commands\"\n"
                 ".SH NAME\njorm\\-tool \\- image processing on picture files\n"
                 ".SH SYNOPSIS\n.B jorm\\-tool\n.I COMMAND ARGUMENTS\n.br\n"
                 ".B jorm\\-tool\n.RI [ COMMAND ]\n.B \\-\\-help\n.br\n"
                 ".B jorm\\-tool\n.BR \\-\\-version | \\-\\-manual | \\-\\-completion\n"
                 ".SH DESCRIPTION\nEach command is an operation of libJorm.\n%s\n.SH COMMANDS\n",
                 version().c_str(), roff(pictures).c_str());
    for (const Command &c : commands()) {
        std::fprintf(to, ".SS \"%s\"\n%s\n", roff(synopsis(c)).c_str(), roff(sentence(c.summary)).c_str());
        for (const Option &o : c.options)
            std::fprintf(to, ".TP\n.B %s\n%s\n", roff(spelled(o)).c_str(), roff(explained(o)).c_str());
    }
    std::fprintf(to, ".SH EXIT STATUS\n%s\n", roff(exit_status).c_str());
}

void print_completion(std::FILE *to) {
    std::fprintf(to, "# Completion of jorm-tool for bash, made by jorm-tool --completion (scripts/update-manual).\n"
                     "_jorm_tool() {\n"
                     "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} words=\n"
                     "    COMPREPLY=()\n"
                     "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n        words='");
    for (const Command &c : commands()) std::fprintf(to, "%s ", c.name);
    std::fprintf(to, "--help --version --manual --completion'\n    else\n        case ${COMP_WORDS[1]}:$before in\n");
    for (const Command &c : commands())
        for (const Option &o : c.options) // values first: of a word behind such an option nothing else is possible
            if (o.choices) std::fprintf(to, "        %s:--%s) words='%s' ;;\n", c.name, o.name, o.choices);
    for (const Command &c : commands()) {
        std::string options, kinds;
        for (const Option &o : c.options)
            options += std::string(o.name) == "output" ? "-o --output " : std::string("--") + o.name + " ";
        if (std::string(c.operands).find('|') != std::string::npos) kinds = c.operands; // such as gradient|blobs
        for (char &k : kinds) k = k == '|' ? ' ' : k;
        std::fprintf(to, "        %s:*) case $word in -*) words='%s--help' ;;", c.name, options.c_str());
        if (!kinds.empty()) std::fprintf(to, " *) words='%s' ;;", kinds.c_str());
        std::fprintf(to, " esac ;;\n");
    }
    std::fprintf(to, "        esac\n    fi\n"
                     "    [ -z \"$words\" ] || mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$word\")\n"
                     "}\n"
                     "complete -o default -F _jorm_tool jorm-tool\n");
}

} // namespace tool
