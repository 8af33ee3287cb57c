// The C interface under calls in any order with any numbers: contexts are made, changed, run and let go, with planes that lie
// beside, over and before one another in a block that ends where the sanitizer looks.
#include <clarivex/clarivex.h>

#include <utility>
#include <vector>

#include "fuzz/support/target.h"
#include "library/planes.h"

namespace clarivex {
namespace {

constexpr uint32_t mostSide = 140;
constexpr size_t blockBytes = 140'000;

/// Mostly numbers that mean something.
int32_t Choice(InputNumbers& numbers, uint32_t bound) {
    return numbers.Below(32) == 0 ? numbers.Any<int32_t>() : static_cast<int32_t>(numbers.Below(bound));
}

cvx_settings SettingsFrom(InputNumbers& numbers) {
    cvx_settings settings;
    Demand(cvx_settings_init(&settings, sizeof settings) == CVX_OK, "no defaults");
    settings.sharpness = numbers.Below(8) == 0 ? numbers.Any<float>() : static_cast<float>(numbers.Below(200)) / 100;
    settings.lighting = Choice(numbers, 2);
    settings.mode = numbers.Below(2) == 0 ? CVX_MODE_NEVER : CVX_MODE_ALWAYS;
    settings.noise = Choice(numbers, 2);
    settings.caption = Choice(numbers, 2);
    settings.limits = Choice(numbers, 2);
    settings.padding = Choice(numbers, 2);
    settings.instruction_set = Choice(numbers, 5);
    if (numbers.Below(16) == 0) settings.pixel_aspect = numbers.Any<float>();
    if (numbers.Below(32) == 0) settings.struct_size = numbers.Any<uint32_t>();
    return settings;
}

/// Places the planes of a picture in a block: what is given to the library lies inside, or is not given.
template <class Picture>
bool Place(InputNumbers& numbers, const PictureKind& kind, std::vector<uint8_t>& block, size_t& next,
           Picture& picture) {
    for (int32_t plane = 0; plane < PlaneCount(kind.format); ++plane) {
        const PlaneShape shape = ShapeOf(kind, plane);
        const int32_t stride =
            shape.rowBytes + static_cast<int32_t>(numbers.Below(9)) - (numbers.Below(32) == 0 ? 5 : 0);
        const auto reach = static_cast<size_t>(stride) * static_cast<size_t>(shape.rows - 1);
        if (numbers.Below(16) == 0) next -= std::min<size_t>(next, numbers.Below(5000));
        if (next + reach + static_cast<size_t>(shape.rowBytes) > block.size()) return false;
        const bool upwards = numbers.Below(2) == 0;
        picture.plane[plane] = block.data() + next + (upwards ? reach : 0);
        picture.stride[plane] = upwards ? -stride : stride;
        next += reach + static_cast<size_t>(shape.rowBytes);
        if (numbers.Below(64) == 0) picture.plane[plane] = nullptr;
    }
    return true;
}

class Walk {
public:
    ~Walk() { cvx_destroy(context); }

    void Step(InputNumbers& numbers) {
        const cvx_settings settings = SettingsFrom(numbers);
        switch (context == nullptr ? 0 : 1 + numbers.Below(8)) {
            case 0: return Create(numbers, settings);
            case 1: return Known(cvx_set_settings(context, &settings));
            case 2: return Known(cvx_reset(context));
            case 3: cvx_destroy(std::exchange(context, nullptr)); return;
            default: return Process(numbers);
        }
    }

private:
    static void Known(cvx_result result) {
        Demand(result <= CVX_OK && result >= CVX_ERROR_OVERLAP, "an unknown result, or memory that is there");
    }

    void Create(InputNumbers& numbers, const cvx_settings& settings) {
        kind = {{Choice(numbers, mostSide), Choice(numbers, mostSide)}, Choice(numbers, 4)};
        const cvx_result result = cvx_create(kind.size.width, kind.size.height, kind.format, &settings, &context);
        Known(result);
        Demand((result == CVX_OK) == (context != nullptr), "a context with an error, or none without");
        if (context != nullptr && kind.size.width > int32_t{mostSide}) cvx_destroy(std::exchange(context, nullptr));
    }

    void Process(InputNumbers& numbers) {
        PictureKind target = kind;
        Known(cvx_output_size(context, &target.size.width, &target.size.height));
        cvx_source from{};
        cvx_target to{};
        size_t next = numbers.Below(64);
        std::vector<uint8_t> before(blockBytes, static_cast<uint8_t>(numbers.Below(256)));
        for (size_t i = 0; i < before.size(); i += 1 + numbers.Below(200)) before[i] ^= static_cast<uint8_t>(i);
        block = before;
        if (!Place(numbers, kind, block, next, from) || !Place(numbers, target, block, next, to)) return;
        const cvx_result result = cvx_process(context, &from, &to, numbers.Any<int64_t>());
        Known(result);
        Demand(result == CVX_OK || block == before, "an error, and something was written");
    }

    PictureKind kind;
    cvx_context* context = nullptr;
    std::vector<uint8_t> block;
};

}  // namespace
}  // namespace clarivex

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    clarivex::InputNumbers numbers(data, size);
    constexpr int mostSteps = 12;
    clarivex::Walk walks[2];
    for (int step = 0; step < mostSteps && !numbers.Rest().empty(); ++step) walks[numbers.Below(2)].Step(numbers);
    return 0;
}
