#include "tool.hpp"

#include <cmath>
#include <sstream>

namespace tool {
namespace {

template <class T> bool parse(const std::string &text, T &value) {
    std::istringstream in(text);
    return (in >> value) && in.eof();
}

// "1,2,3" as numbers; false when it is anything else.
template <class T> bool parse_list(const std::string &text, std::vector<T> &values) {
    std::istringstream in(text);
    for (std::string part; std::getline(in, part, ',');) {
        values.emplace_back();
        if (!parse(part, values.back())) return false;
    }
    return !values.empty() && text.back() != ',';
}

// How many operands "PICTURE [PICTURE...]" speaks of.
std::pair<size_t, size_t> operand_counts(const std::string &operands) {
    std::istringstream in(operands);
    size_t low = 0, high = 0;
    for (std::string word; in >> word;) {
        const bool more = word.find("...") != std::string::npos;
        if (word[0] != '[') ++low;
        high = more || high == SIZE_MAX ? SIZE_MAX : high + 1;
    }
    return {low, high};
}

} // namespace

std::string choices_of(const Option &option) {
    std::string list = option.choices;
    for (size_t at = 0; (at = list.find(' ', at)) != std::string::npos; at += 2) list.replace(at, 1, ", ");
    return list;
}

Args::Args(const Command &command, const std::vector<std::string> &words) : command_(command) {
    const std::string see = std::string(" (jorm-tool ") + command.name + " --help)";
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
        const std::string name = word.substr(2, equals == std::string::npos ? equals : equals - 2);
        const Option *option = nullptr;
        for (const Option &o : command.options)
            if (name == o.name) option = &o;
        if (!option || word.compare(0, 2, "--") != 0) throw Failure("unknown option '" + words[i] + "'" + see);
        if (given_.count(name)) throw Failure("option --" + name + " is given twice");
        if (!option->value && equals != std::string::npos) throw Failure("option --" + name + " takes no value");
        if (option->value && equals == std::string::npos && ++i == words.size())
            throw Failure("option --" + name + " needs a value");
        given_[name] = !option->value ? "" : equals == std::string::npos ? words[i] : word.substr(equals + 1);
        if (option->value && given_[name].empty()) throw Failure("option --" + name + " needs a value");
    }
    const auto [low, high] = operand_counts(command.operands);
    want_files(low, high);
    for (const Option &o : command.options) {
        if (o.otherwise == required && !has(o.name)) throw Failure(std::string("--") + o.name + " is required" + see);
        if (!o.choices || !has(o.name)) continue;
        const std::string list = std::string(" ") + o.choices + " ";
        if (list.find(" " + given_[o.name] + " ") == std::string::npos) bad(o.name, "one of " + choices_of(o));
    }
}

const Option &Args::of(const std::string &option) const {
    for (const Option &o : command_.options)
        if (option == o.name) return o;
    throw std::logic_error("no option --" + option + " in the table of " + command_.name);
}

void Args::bad(const char *option, const std::string &wanted) const {
    throw Failure(std::string("--") + option + " wants " + wanted + ", got '" + text(option) + "'");
}

std::string Args::text(const char *option) const {
    const auto found = given_.find(option);
    if (found != given_.end()) return found->second;
    const char *otherwise = of(option).otherwise;
    return otherwise ? otherwise : "";
}

int Args::number(const char *option, int low, int high) const {
    int value = 0;
    if (!parse(text(option), value) || value < low || value > high)
        bad(option, "a whole number from " + std::to_string(low) + " to " + std::to_string(high));
    return value;
}

double Args::real(const char *option) const {
    double value = 0;
    if (!parse(text(option), value) || !std::isfinite(value)) bad(option, "a number");
    return value;
}

std::vector<double> Args::reals(const char *option) const {
    std::vector<double> values;
    if (!parse_list(text(option), values)) bad(option, "numbers with commas between them");
    return values;
}

std::pair<double, double> Args::range(const char *option) const {
    std::vector<double> values;
    if (!parse_list(text(option), values) || values.size() != 2 || !(values[0] <= values[1])) bad(option, "LOW,HIGH");
    return {values[0], values[1]};
}

std::pair<int, int> Args::point(const char *option) const {
    std::vector<int> values;
    if (!parse_list(text(option), values) || values.size() != 2) bad(option, "X,Y");
    return {values[0], values[1]};
}

std::pair<int, int> Args::size(const char *option) const {
    const std::string given = text(option);
    const size_t x = given.find('x');
    int width = 0, height = 0;
    if (x == std::string::npos || !parse(given.substr(0, x), width) || !parse(given.substr(x + 1), height) ||
        width < 1 || height < 1 || width > 32767 || height > 32767)
        bad(option, "WIDTHxHEIGHT, each from 1 to 32767");
    return {width, height};
}

std::string Args::output() const {
    std::string out = text("output");
    if (out != "-" && !known_suffix(out))
        throw Failure("cannot tell from the name what to write to '" + out + "': .png, .jpg, .pgm or .ppm");
    return out;
}

std::FILE *Args::report() const { return text("output") == "-" ? stderr : stdout; }

void Args::want_files(size_t low, size_t high) const {
    if (files.size() >= low && files.size() <= high) return;
    const std::string wanted = low == high        ? std::to_string(low)
                               : high == SIZE_MAX ? "at least " + std::to_string(low)
                                                  : std::to_string(low) + " to " + std::to_string(high);
    throw Failure("wants " + wanted + (wanted == "1" ? " argument" : " arguments") + " (" + command_.operands +
                  "), got " + std::to_string(files.size()));
}

namespace {

// 1 value for all colours, or 1 for each, or (where alpha may have one) 1 for each channel.
std::vector<double> values_for(const Args &args, const char *option, const Picture &picture, bool alpha) {
    std::vector<double> values = args.reals(option);
    const size_t colours = size_t(picture.colour_count()), channels = size_t(picture.channels), n = values.size();
    alpha = alpha && picture.has_alpha();
    if (n == 1 || n == colours || (alpha && n == channels)) return values;
    throw Failure(std::string("--") + option + " wants " + (colours > 1 ? "1 or " : "") + std::to_string(colours) +
                  (colours > 1 ? " values" : " value") +
                  (alpha ? " (with alpha " + std::to_string(channels) + ")" : "") + " for " + picture.shape() +
                  ", got " + std::to_string(n));
}

} // namespace

void read_colour(const Args &args, const char *option, const Picture &picture, double *colour) {
    const std::vector<double> values = values_for(args, option, picture, true);
    for (int c = 0; c < 4; ++c) {
        const bool of_colours = c < picture.colour_count();
        colour[c] = size_t(c) < values.size() ? values[size_t(c)] : of_colours ? values[0] : double(picture.top());
        if (c < picture.channels && !(colour[c] >= 0 && colour[c] <= picture.top()))
            throw Failure(std::string("--") + option + " wants values from 0 to " + std::to_string(picture.top()));
    }
}

void read_factors(const Args &args, const char *option, const Picture &picture, double *factors) {
    const std::vector<double> values = values_for(args, option, picture, false);
    for (size_t c = 0; c < 4; ++c) factors[c] = c < values.size() ? values[c] : values[0];
}

std::string quoted(const std::string &text) {
    std::string result = "\"";
    for (const char c : text) {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned char>(c));
        result += c == '"' || c == '\\' ? std::string("\\") + c
                  : c >= 0 && c < ' '   ? std::string(escape)
                                        : std::string(1, c);
    }
    return result + '"';
}

} // namespace tool
