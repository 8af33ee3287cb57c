// Drives a fuzz target without a fuzzing engine: gives it its seeds, then inputs mutated from them, RUNS at most and for
// about SECONDS. The inputs and their order are the same in every run.
//
//     fuzz_NAME RUNS SECONDS [SEED_FILE…]
//
// An input that crashes, or takes longer than a minute, is kept in fuzz_NAME.input in the current folder;
// `fuzz_NAME 0 0 fuzz_NAME.input` gives it to the target again.
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iostream>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

// What the sanitizers find ends in SIGABRT like all else.
extern "C" [[gnu::visibility("default")]] const char* __asan_default_options() { return "abort_on_error=1"; }
extern "C" [[gnu::visibility("default")]] const char* __ubsan_default_options() { return "abort_on_error=1"; }

namespace {

using Bytes = std::vector<uint8_t>;

constexpr size_t mostBytes = 1 << 16;
constexpr uint8_t tellingBytes[] = {0, 1, 0x7f, 0x80, 0xff, ' ', '\n', '-', '0', '9', ':', 'A', 'F'};
constexpr uint32_t tellingWords[] = {0, 1, 0x7fff, 0x8000, 0xffff, 0x10000, 0x7fffffff, 0x80000000, 0xffffffff};

std::mt19937 random{1};

size_t Below(size_t bound) { return bound == 0 ? 0 : random() % bound; }

/// One of the changes that reach odd places: bytes put in or taken out, the end of another seed, telling values.
void Mutate(Bytes& input, const Bytes& other) {
    const size_t place = Below(input.size()), left = input.size() - place;
    const auto at = input.begin() + static_cast<std::ptrdiff_t>(place);
    const uint8_t telling = tellingBytes[Below(std::size(tellingBytes))];
    switch (input.empty() ? 0 : Below(6)) {
        case 0: input.insert(at, 1 + Below(16), telling); break;
        case 1: input.erase(at, at + 1 + static_cast<std::ptrdiff_t>(Below(Below(left)))); break;
        case 2:
            input.insert(input.erase(at, input.end()), other.begin() + static_cast<std::ptrdiff_t>(Below(other.size())),
                         other.end());
            break;
        case 3: std::memcpy(&*at, &tellingWords[Below(std::size(tellingWords))], std::min<size_t>(4, left)); break;
        case 4: *at ^= static_cast<uint8_t>(1 << Below(8)); break;
        default: *at = Below(2) != 0 ? telling : static_cast<uint8_t>(random());
    }
}

Bytes inputAtWork;  // of exactly the input's size, so that the address sanitizer notices any read past it

/// The process may be broken when the input is kept; it ends right behind that, whatever comes of it.
void KeepInputAndEnd(int signal) {
    const std::string keptPath = std::string(program_invocation_short_name) + ".input";
    std::ofstream(keptPath, std::ios::binary) << std::string(inputAtWork.begin(), inputAtWork.end());
    std::cerr << "the input is kept in " << keptPath << '\n';
    std::_Exit(128 + signal);
}

void Try(const Bytes& input) {
    constexpr unsigned mostSeconds = 60;
    inputAtWork = Bytes(input.begin(), input.end());
    alarm(mostSeconds);
    LLVMFuzzerTestOneInput(inputAtWork.data(), inputAtWork.size());
}

[[noreturn]] void Refuse(const std::string& what) {
    std::cerr << what << '\n';
    std::exit(2);
}

Bytes ReadFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) Refuse(path + std::string(": cannot be read"));
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) Refuse("usage: " + std::string(argv[0]) + " RUNS SECONDS [SEED_FILE…]");
    std::vector<Bytes> seeds{{}};
    std::transform(argv + 3, argv + argc, std::back_inserter(seeds), ReadFile);
    const long mostRuns = std::strtol(argv[1], nullptr, 10);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::strtol(argv[2], nullptr, 10));

    for (const int signal : {SIGABRT, SIGILL, SIGTRAP, SIGALRM}) std::signal(signal, KeepInputAndEnd);
    for (const Bytes& seed : seeds) Try(seed);
    long runs = 0;
    for (; runs < mostRuns && std::chrono::steady_clock::now() < end; ++runs) {
        Bytes input = seeds[Below(seeds.size())];
        for (size_t steps = 1 + Below(8); steps > 0; --steps) Mutate(input, seeds[Below(seeds.size())]);
        input.resize(std::min(input.size(), mostBytes));
        Try(input);
    }
    std::cout << argc - 3 << " seeds and " << runs << " mutated inputs, none of them made trouble\n";
}
