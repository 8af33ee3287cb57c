// Drives a fuzz target without a fuzzing engine: gives it its seeds, then inputs mutated from them, RUNS at most and for
// about SECONDS. The inputs and their order are the same in every run.
//
//     fuzz_NAME RUNS SECONDS [SEED_FILE…]
//
// An input that crashes, or takes longer than a minute, is kept in fuzz_NAME.input in the current folder;
// `fuzz_NAME 0 0 fuzz_NAME.input` gives it to the target again.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <span>
#include <string>
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
    const auto at = [&](size_t offset) { return input.begin() + static_cast<std::ptrdiff_t>(offset); };
    const size_t place = Below(input.size()), change = input.empty() ? 0 : Below(7);
    const uint8_t telling = tellingBytes[Below(std::size(tellingBytes))];
    if (change == 0) input.insert(at(place), 1 + Below(16), telling);
    if (change == 1) input.erase(at(place), at(place + 1 + Below(Below(input.size() - place))));
    if (change == 2) {
        input.resize(place);
        input.insert(input.end(), other.end() - static_cast<std::ptrdiff_t>(Below(other.size() + 1)), other.end());
    }
    uint32_t word = tellingWords[Below(std::size(tellingWords))];
    for (size_t i = place; change == 3 && i < std::min(place + 4, input.size()); ++i, word >>= 8)
        input[i] = static_cast<uint8_t>(word);
    if (change == 4) input[place] ^= static_cast<uint8_t>(1 << Below(8));
    if (change == 5) input[place] = telling;
    if (change == 6) input[place] = static_cast<uint8_t>(random());
}

std::string keptPath;
std::span<const uint8_t> inputAtWork;

/// The process may be broken when the input is kept; it ends right behind that, whatever comes of it.
void KeepInputWhenDying() {
    for (const int signal : {SIGABRT, SIGILL, SIGTRAP, SIGALRM})
        std::signal(signal, [](int caught) {
            std::ofstream(keptPath, std::ios::binary)
                .write(reinterpret_cast<const char*>(inputAtWork.data()), std::ssize(inputAtWork));
            std::cerr << "the input is kept in " << keptPath << '\n';
            std::_Exit(128 + caught);
        });
}

/// The target sees a heap block of exactly the input's size, so that the address sanitizer notices any read past it.
void Try(const Bytes& input) {
    constexpr unsigned mostSeconds = 60;
    const Bytes exact(input.begin(), input.end());
    inputAtWork = exact;
    alarm(mostSeconds);
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
    inputAtWork = {};
}

Bytes ReadFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::cerr << path << ": cannot be read\n";
        std::exit(2);
    }
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 3) {
        std::cerr << "usage: " << argv[0] << " RUNS SECONDS [SEED_FILE…]\n";
        return 2;
    }
    std::vector<Bytes> seeds{{}};
    std::transform(argv + 3, argv + argc, std::back_inserter(seeds), ReadFile);
    keptPath = std::filesystem::path(argv[0]).filename().string() + ".input";
    const long mostRuns = std::strtol(argv[1], nullptr, 10);
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(std::strtol(argv[2], nullptr, 10));

    KeepInputWhenDying();
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
