// Two media objects, of one class or of both, under calls in any order: two clumsy players take turns, and now and then one of them is let go with
// what it holds. What was counted before stands there after.
#include <optional>

#include "fuzz/support/target.h"
#include "tests/support/negotiation_walk.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    using namespace clarivex;
    InputNumbers numbers(data, size);
    const NumberSource source = [&](uint32_t bound) { return numbers.Below(bound); };
    constexpr int mostSteps = 60;
    {
        std::optional<NegotiationWalk> walks[2];
        for (int step = 0; step < mostSteps && !numbers.Rest().empty(); ++step) {
            auto& walk = walks[numbers.Below(2)];
            if (!walk) walk.emplace(source, numbers.Below(2) == 0 ? clsidMediaObject : clsidVideoEffect);
            Demand(walk->Step());
            if (numbers.Below(16) != 0) continue;
            Demand(walk->Finish());
            walk.reset();
        }
        for (auto& walk : walks) Demand(walk ? walk->Finish() : "");
    }
    Demand(CanUnloadNow() == S_OK, "objects are left behind");
    return 0;
}
