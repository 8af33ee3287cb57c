// Bytes become the choices of a clumsy player: media types, buffers and calls in any order, frames included.
#include <cstddef>
#include <cstdint>

#include "fuzz/support/demand.h"
#include "fuzz/support/input_numbers.h"
#include "tests/support/negotiation_walk.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace clarivex;
    InputNumbers numbers(data, size);
    NegotiationWalk walk([&](uint32_t bound) { return numbers.Below(bound); });
    constexpr int mostSteps = 60;
    for (int step = 0; step < mostSteps && numbers.AreLeft(); ++step) Demand(walk.Step());
    Demand(walk.Finish());
    return 0;
}
