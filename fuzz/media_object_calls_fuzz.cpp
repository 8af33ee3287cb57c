// One or two media objects under calls in any order: two clumsy players take turns, and between their steps objects are
// let go with what they hold and share a buffer. What was counted before stands there after.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "fuzz/support/demand.h"
#include "fuzz/support/input_numbers.h"
#include "tests/support/host_stream.h"
#include "tests/support/negotiation_walk.h"

namespace clarivex {
namespace {

constexpr GUID subtypes[] = {mediaSubtypeYv12, mediaSubtypeIyuv, mediaSubtypeYuy2};

class Players {
public:
    explicit Players(InputNumbers& input) : numbers(input) {
        count = 1 + numbers.Below(2);
        for (uint32_t i = 0; i < count; ++i) Replace(i);
    }

    void Step() {
        const uint32_t player = numbers.Below(count);
        switch (numbers.Below(16)) {
            case 0: return LetGoWhileHolding();
            case 1: return ShareOneBuffer();
            case 2: return Replace(player);
            default: return Demand(walks[player]->Step());
        }
    }

    void Finish() {
        for (auto& walk : walks) {
            if (walk != nullptr) Demand(walk->Finish());
            walk.reset();
        }
        Demand(CanUnloadNow() == S_OK, "objects are left behind");
    }

private:
    void Replace(uint32_t player) {
        if (walks[player] != nullptr) Demand(walks[player]->Finish());
        walks[player] = std::make_unique<NegotiationWalk>([this](uint32_t bound) { return numbers.Below(bound); });
    }

    HostSize AnySize() {
        return {static_cast<int32_t>(16 + numbers.Below(80)), static_cast<int32_t>(16 + numbers.Below(30))};
    }

    void LetGoWhileHolding() {
        FakeBuffer in(5000);
        {
            TestObject object;
            Negotiate(object, subtypes[numbers.Below(3)], AnySize(), numbers.Below(2) * 2);
            Demand(object.media->ProcessInput(0, &in, 0, 0, 0) == S_OK && in.references == 2, "an input was not kept");
        }
        Demand(in.references == 1, "an object is gone and its input is not");
    }

    void ShareOneBuffer() {
        TestObject first, second;
        const GUID& subtype = subtypes[numbers.Below(3)];
        const HostSize size = AnySize();
        FakeBuffer in(HostPicture(subtype, size.typeWidth, size.typeHeight).BytesOf(size.width, size.height));
        FakeBuffer out(mostOutput);
        DMO_OUTPUT_DATA_BUFFER output = {&out, 0, 0, 0};
        for (TestObject* object : {&first, &second}) {
            Negotiate(*object, subtype, size, numbers.Below(2) * 2);
            Demand(object->media->ProcessInput(0, &in, 0, 0, 0) == S_OK, "a shared input was refused");
        }
        Demand(in.references == 3, "a shared input is miscounted");
        for (TestObject* object : {&second, &first})
            Demand(object->media->ProcessOutput(0, 1, &output, nullptr) == S_OK, "a shared input made no frame");
        Demand(in.references == 1 && out.references == 1, "a shared buffer was kept");
    }

    static constexpr size_t mostOutput = 40000;

    InputNumbers& numbers;
    uint32_t count = 0;
    std::unique_ptr<NegotiationWalk> walks[2];
};

}  // namespace
}  // namespace clarivex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    clarivex::InputNumbers numbers(data, size);
    clarivex::Players players(numbers);
    constexpr int mostSteps = 60;
    for (int step = 0; step < mostSteps && numbers.AreLeft(); ++step) players.Step();
    players.Finish();
    return 0;
}
