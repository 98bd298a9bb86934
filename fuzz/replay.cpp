// Runs a fuzz target without a fuzzer: over files, or over --random=N inputs of random bytes from --seed=S on. An input
// that fails is left in fuzz-failure.bin.
#include "harness.hpp"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

std::vector<uint8_t> input;

void keep_input(int signal) {
    const int file = open("fuzz-failure.bin", O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (file < 0 || write(file, input.data(), input.size()) < 0) _exit(126);
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

int run_file(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    input.assign(std::istreambuf_iterator<char>(file), {});
    return LLVMFuzzerTestOneInput(input.data(), input.size());
}

void run_random(unsigned long count, unsigned seed) {
    std::mt19937 random(seed);
    for (unsigned long i = 0; i < count; ++i) {
        input.resize(64 + random() % 1024);
        for (uint8_t &byte : input) byte = uint8_t(random());
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
}

} // namespace

int main(int argc, char **argv) {
    for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, keep_input);
    unsigned seed = 1;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--seed=", 0) == 0)
            seed = unsigned(std::stoul(argument.substr(7)));
        else if (argument.rfind("--random=", 0) == 0)
            run_random(std::stoul(argument.substr(9)), seed);
        else if (std::filesystem::is_directory(argument))
            for (const auto &entry : std::filesystem::directory_iterator(argument)) run_file(entry.path());
        else
            run_file(argument);
    }
    return 0;
}
