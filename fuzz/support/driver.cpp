// Drives a fuzz target without a fuzzing engine: gives it its seeds, then a bounded number of inputs mutated from them.
// The same arguments give the same inputs in every run.
//
//     fuzz_NAME RUNS [SEED_FILE…]
//
// The input at work stands in fuzz_NAME.input. After a crash `fuzz_NAME 0 fuzz_NAME.input` gives it to the target again.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

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

/// The target sees a heap block of exactly the input's size, so that the address sanitizer notices any read past it.
void Try(const Bytes& input, const std::string& keptPath) {
    std::ofstream(keptPath, std::ios::binary).write(reinterpret_cast<const char*>(input.data()), std::ssize(input));
    const Bytes exact(input.begin(), input.end());
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
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
    if (argc < 2) {
        std::cerr << "usage: " << argv[0] << " RUNS [SEED_FILE…]\n";
        return 2;
    }
    std::vector<Bytes> seeds{{}};
    std::transform(argv + 2, argv + argc, std::back_inserter(seeds), ReadFile);
    const std::string keptPath = std::filesystem::path(argv[0]).filename().string() + ".input";

    for (const Bytes& seed : seeds) Try(seed, keptPath);
    const long runs = std::strtol(argv[1], nullptr, 10);
    Mutator mutator(std::move(seeds));
    for (long run = 0; run < runs; ++run) Try(mutator.Next(), keptPath);
    std::filesystem::remove(keptPath);
    std::cout << argc - 2 << " seeds and " << runs << " mutated inputs, none of them made trouble\n";
}
