#include "tool.hpp"

#include <cmath>
#include <sstream>

namespace tool {
namespace {

bool takes_value(const Command &command, const std::string &option, bool &known) {
    std::istringstream names(std::string("output= ") + command.options);
    for (std::string name; names >> name;) {
        const bool valued = name.back() == '=';
        if (valued) name.pop_back();
        if (name == option) {
            known = true;
            return valued;
        }
    }
    known = false;
    return false;
}

template <class T> bool parse(const std::string &text, T &value) {
    std::istringstream in(text);
    return (in >> value) && in.eof();
}

} // namespace

Args::Args(const Command &command, const std::vector<std::string> &words) {
    bool only_files = false;
    for (size_t i = 0; i < words.size(); ++i) {
        std::string word = words[i];
        if (only_files || word.size() < 2 || word[0] != '-') {
            files.push_back(word);
            continue;
        }
        if (word == "--") {
            only_files = true;
            continue;
        }
        if (word == "-o") word = "--output";
        const size_t equals = word.find('=');
        const std::string option = word.substr(2, equals == std::string::npos ? equals : equals - 2);
        bool known = false;
        const bool valued = takes_value(command, option, known);
        if (!known || word.compare(0, 2, "--") != 0)
            throw Failure("unknown option '" + words[i] + "' (jorm-tool " + command.name + " --help)");
        if (!valued && equals != std::string::npos) throw Failure("option --" + option + " takes no value");
        if (valued && equals == std::string::npos && ++i == words.size())
            throw Failure("option --" + option + " needs a value");
        options[option] = !valued ? "" : equals == std::string::npos ? words[i] : word.substr(equals + 1);
    }
}

const std::string &Args::output() const {
    const auto found = options.find("output");
    if (found == options.end() || found->second.empty()) throw Failure("no output named: -o OUT.png");
    return found->second;
}

std::string Args::text(const char *option, const char *otherwise) const {
    const auto found = options.find(option);
    return found == options.end() ? otherwise : found->second;
}

int Args::number(const char *option, int otherwise, int low, int high) const {
    int value = otherwise;
    if (has(option) && (!parse(options.at(option), value) || value < low || value > high))
        throw Failure(std::string("--") + option + " wants a whole number from " + std::to_string(low) + " to " +
                      std::to_string(high));
    return value;
}

double Args::real(const char *option, double otherwise) const {
    double value = otherwise;
    if (has(option) && (!parse(options.at(option), value) || !std::isfinite(value)))
        throw Failure(std::string("--") + option + " wants a number");
    return value;
}

std::pair<int, int> Args::size(const char *option, const char *otherwise) const {
    const std::string given = text(option, otherwise);
    const size_t x = given.find('x');
    int width = 0, height = 0;
    if (x == std::string::npos || !parse(given.substr(0, x), width) || !parse(given.substr(x + 1), height) ||
        width < 1 || height < 1 || width > 32767 || height > 32767)
        throw Failure(std::string("--") + option + " wants WIDTHxHEIGHT, each from 1 to 32767");
    return {width, height};
}

void Args::want_files(size_t low, size_t high) const {
    if (files.size() >= low && files.size() <= high) return;
    const std::string wanted = low == high ? std::to_string(low) : "at least " + std::to_string(low);
    throw Failure("wants " + wanted + (wanted == "1" ? " argument" : " arguments") + ", got " +
                  std::to_string(files.size()));
}

} // namespace tool
