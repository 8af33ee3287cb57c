// The property page's decisions.
#include "shell/property_page_logic.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace clarivex {
namespace {

constexpr float positionsPerSharpness = 2.0F;

/// The sharpness in steps of the edge slider, counted from "Soft". Any setting may hold any number.
int32_t EdgeSteps(float sharpness) {
    constexpr float farOff = 1000.0F;
    const float steps = sharpness * positionsPerSharpness;
    return std::isnan(steps) ? 0 : static_cast<int32_t>(std::nearbyint(std::clamp(steps, -farOff, farOff)));
}

}  // namespace

SliderPositions PositionsFor(const PageChoices& choices) {
    return {edgeTicks - EdgeSteps(choices.sharpness), static_cast<int32_t>(choices.mode)};
}

bool CountsAsChanged(const PageChoices& known, const SliderPositions& positions) {
    return EdgeSteps(known.sharpness) != positions.edge || known.mode != static_cast<uint32_t>(positions.mode);
}

PageChoices ChoicesAt(const SliderPositions& positions, bool bypassHd, bool enableLighting) {
    return {.sharpness = static_cast<float>(edgeTicks - positions.edge) / positionsPerSharpness,
            .mode = static_cast<uint32_t>(positions.mode),
            .bypassHd = bypassHd,
            .enableLighting = enableLighting};
}

void TouchedChoices::Note(const PageChoices& atFirst, const PageChoices& now) {
    sharpness |= now.sharpness != atFirst.sharpness;
    mode |= now.mode != atFirst.mode;
    bypassHd |= now.bypassHd != atFirst.bypassHd;
    enableLighting |= now.enableLighting != atFirst.enableLighting;
}

void Merge(const PageChoices& chosen, const TouchedChoices& touched, PluginSettings& settings) {
    if (touched.sharpness) settings.SetSharpness(chosen.sharpness);
    if (touched.mode) settings.mode = chosen.mode;
    if (touched.bypassHd) settings.allowHd = !chosen.bypassHd;
    if (touched.enableLighting) settings.enableLighting = chosen.enableLighting;
}

PageChoices ChoicesIn(const PluginSettings& settings) {
    return {.sharpness = settings.Sharpness(),
            .mode = settings.mode,
            .bypassHd = !settings.allowHd,
            .enableLighting = settings.enableLighting};
}

const char* TitleFor(bool scalingActive) {
    return scalingActive ? "Clarivex (Currently On)" : "Clarivex (Currently Off)";
}

ShortString ApplyMessage(const SettingsInUse& before, const PageChoices& chosen) {
    ShortString message;
    const bool modeChanged = chosen.mode != before.mode;
    if (modeChanged && chosen.mode == modeAlways) {
        message.Assign(
            "Setting Clarivex to ALWAYS may result in jerky or slow\n"
            "playback on high resolution videos.");
    }
    const bool allowHd = !chosen.bypassHd;
    if (modeChanged || allowHd != before.allowHd) {
        const bool alone = message.Text()[0] == '\0';
        message.Append(alone ? "" : "\n\n");
        message.Append("Changes may not take immediate effect until video is reloaded.");
    }
    return message;
}

ShortString ScaleFactorText(double scaleFactor) {
    ShortString text;
    text.Format("%0.2f", scaleFactor);
    return text;
}

double ScaleFactorIn(const char* text) {
    double value = 1.0;
    return std::sscanf(text, "%lf", &value) == 1 ? value : 1.0;
}

}  // namespace clarivex
