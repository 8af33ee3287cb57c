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
#include <utility>
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

/// Makes new inputs out of starting points, of which there must be at least one.
class Mutator {
public:
    explicit Mutator(std::vector<Bytes> startingPoints) : seeds(std::move(startingPoints)) {}

    Bytes Next() {
        Bytes input = AnySeed();
        for (size_t step = 0, steps = 1 + Below(8); step < steps; ++step) Mutate(input);
        input.resize(std::min(input.size(), mostBytes));
        return input;
    }

private:
    size_t Below(size_t bound) { return bound == 0 ? 0 : random() % bound; }
    const Bytes& AnySeed() { return seeds[Below(seeds.size())]; }
    static auto At(Bytes& bytes, size_t offset) { return bytes.begin() + static_cast<std::ptrdiff_t>(offset); }

    void Mutate(Bytes& input) {
        switch (input.empty() ? 0 : Below(7)) {
            case 0: return Insert(input);
            case 1: return Erase(input);
            case 2: return Splice(input);
            case 3: return SetWord(input);
            case 4: input[Below(input.size())] ^= static_cast<uint8_t>(1 << Below(8)); return;
            case 5: input[Below(input.size())] = tellingBytes[Below(std::size(tellingBytes))]; return;
            default: input[Below(input.size())] = static_cast<uint8_t>(random()); return;
        }
    }

    void Insert(Bytes& input) {
        const size_t offset = Below(input.size() + 1);
        const uint8_t value = tellingBytes[Below(std::size(tellingBytes))];
        input.insert(At(input, offset), 1 + Below(16), value);
    }

    void Erase(Bytes& input) {
        const size_t first = Below(input.size());
        const size_t count = 1 + Below(Below(input.size() - first));
        input.erase(At(input, first), At(input, first + count));
    }

    /// Goes on with the end of another seed.
    void Splice(Bytes& input) {
        const Bytes& other = AnySeed();
        input.resize(Below(input.size()));
        input.insert(input.end(), other.end() - static_cast<std::ptrdiff_t>(Below(other.size() + 1)), other.end());
    }

    /// Overwrites up to 4 bytes, low byte first.
    void SetWord(Bytes& input) {
        uint32_t word = tellingWords[Below(std::size(tellingWords))];
        for (size_t i = Below(input.size()), end = std::min(i + 4, input.size()); i < end; ++i, word >>= 8)
            input[i] = static_cast<uint8_t>(word);
    }

    std::vector<Bytes> seeds;
    std::mt19937 random{1};
};

std::string keptPath;
std::span<const uint8_t> inputAtWork;

void KeepInput() {
    std::ofstream(keptPath, std::ios::binary)
        .write(reinterpret_cast<const char*>(inputAtWork.data()), std::ssize(inputAtWork));
    std::cerr << "the input is kept in " << keptPath << '\n';
}

/// The process may be broken when the input is kept; it ends right behind that, whatever comes of it.
void KeepInputWhenDying() {
    for (const int signal : {SIGABRT, SIGILL, SIGTRAP, SIGALRM})
        std::signal(signal, [](int caught) {
            KeepInput();
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
    Mutator mutator(std::move(seeds));
    long runs = 0;
    for (; runs < mostRuns && std::chrono::steady_clock::now() < end; ++runs) Try(mutator.Next());
    std::cout << argc - 3 << " seeds and " << runs << " mutated inputs, none of them made trouble\n";
}
