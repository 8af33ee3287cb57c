// Bytes become the choices of a clumsy player: media types, buffers and calls in any order, frames included.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "tests/support/negotiation_walk.h"

namespace {

// Numbers out of the input, four bytes each, and zeros behind its end.
class InputNumbers {
public:
    InputNumbers(const uint8_t* data, size_t size) : next(data), left(size) {}

    bool AreLeft() const { return left > 0; }

    uint32_t Below(uint32_t bound) {
        const int bytes = bound <= 0x100 ? 1 : 4;
        uint32_t number = 0;
        for (int i = 0; i < bytes && left > 0; ++i, ++next, --left) {
            number = number << 8 | *next;
        }
        return number % bound;
    }

private:
    const uint8_t* next;
    size_t left;
};

void Demand(const std::string& complaint) {
    if (!complaint.empty()) {
        std::fprintf(stderr, "%s\n", complaint.c_str());
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    InputNumbers numbers(data, size);
    clarivex::NegotiationWalk walk([&](uint32_t bound) { return numbers.Below(bound); });
    constexpr int mostSteps = 60;
    for (int step = 0; step < mostSteps && numbers.AreLeft(); ++step) {
        Demand(walk.Step());
    }
    Demand(walk.Finish());
    return 0;
}
