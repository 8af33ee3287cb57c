#include "engine/scale_modes.h"

#include <algorithm>
#include <array>

namespace clarivex {
namespace {

constexpr AxisScale none = AxisScale::none;
constexpr AxisScale threeHalves = AxisScale::threeHalves;
constexpr AxisScale twofold = AxisScale::twofold;

constexpr std::array<ScaleModes, 4> enlargingModes{
    {{threeHalves, none}, {threeHalves, threeHalves}, {twofold, threeHalves}, {twofold, twofold}}};

/// One step of the cascade: modes, the pictures that they are for, and what larger ones get instead.
struct Step {
    ScaleModes modes;
    SizeLimit limit;
    ScaleModes instead;
};

// In this order, so that a picture falls as far as it has to.
constexpr std::array<Step, 4> cascade{{
    {{twofold, twofold}, twofoldLimit, {none, none}},
    {{twofold, threeHalves}, twofoldRowsLimit, {threeHalves, threeHalves}},
    {{threeHalves, threeHalves}, threeHalvesLimit, {threeHalves, none}},
    {{threeHalves, none}, rowsLimit, {none, none}},
}};

}  // namespace

ScaleModes KnownModes(ScaleModes wanted) {
    const bool known = wanted.horizontal == none ||
                       std::find(enlargingModes.begin(), enlargingModes.end(), wanted) != enlargingModes.end();
    return known ? wanted : ScaleModes{};
}

ScaleModes LimitModes(ScaleModes wanted, const FrameSize& size) {
    ScaleModes modes = KnownModes(wanted);
    for (const Step& step : cascade)
        if (modes == step.modes && !step.limit.Allows(size)) modes = step.instead;
    return modes;
}

}  // namespace clarivex
