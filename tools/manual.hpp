// What tells the user about the commands, made from their tables.
#pragma once

#include "tool.hpp"

namespace tool {

void print_version(std::FILE *);
void print_help(std::FILE *);                     // all commands, a line each
void print_command(std::FILE *, const Command &); // one command with its options
void print_manual(std::FILE *);                   // the manual page, docs/jorm-tool.1
void print_completion(std::FILE *);               // completion for bash, docs/jorm-tool.bash

} // namespace tool
