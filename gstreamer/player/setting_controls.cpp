#include "gstreamer/player/setting_controls.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace clarivex {

namespace {

std::string OnOff(const char* what, bool isOn) { return std::string(what) + (isOn ? " on" : " off"); }

std::string Percent(const char* what, float part) {
    return std::string(what) + " " + std::to_string(std::lround(part * 100)) + " %";
}

std::string SharpnessText(float sharpness) {
    char text[32];
    std::snprintf(text, sizeof text, "sharpness %.1f", static_cast<double>(sharpness));
    return text;
}

/// A step up or down to the next multiple of it, within 0 … largest.
void Step(float& setting, float step, float largest) {
    const float steps = std::round(setting / std::abs(step)) + (step < 0 ? -1.0F : 1.0F);
    setting = std::clamp(steps * std::abs(step), 0.0F, largest);
}

std::string Toggle(const char* what, bool& flag) {
    flag = !flag;
    return OnOff(what, flag);
}

/// A view that compares needs something to compare with.
std::string ToggleSplit(Look& look) {
    look.split = look.split > 0 ? 0.0F : 0.5F;
    if (look.split <= 0) return "split view off";
    look.enhanced = true;
    return "split view on: plain on the left, enhanced on the right";
}

std::string MoveSplit(Look& look, float step) {
    if (look.split <= 0) return ToggleSplit(look);
    Step(look.split, step, 1);
    look.split = std::max(look.split, std::abs(step));  // 0 is no split view
    return Percent("split at", look.split);
}

std::string ChangeSharpness(Look& look, float step) {
    Step(look.sharpness, step, largestSharpness);
    return SharpnessText(look.sharpness);
}

std::string ChangeVolume(PlaySettings& settings, float step) {
    Step(settings.volume, step, 1);
    return Percent("volume", settings.volume);
}

}  // namespace

std::optional<std::string> ChangeSetting(Control control, PlaySettings& settings) {
    switch (control) {
        case Control::enhance: return Toggle("enhancement", settings.look.enhanced);
        case Control::split: return ToggleSplit(settings.look);
        case Control::splitLeft: return MoveSplit(settings.look, -0.05F);
        case Control::splitRight: return MoveSplit(settings.look, 0.05F);
        case Control::softer: return ChangeSharpness(settings.look, -0.1F);
        case Control::sharper: return ChangeSharpness(settings.look, 0.1F);
        case Control::lighting: return Toggle("lighting", settings.look.lighting);
        case Control::noise: return Toggle("noise", settings.look.noise);
        case Control::caption: return Toggle("caption", settings.look.caption);
        case Control::mute: settings.muted = !settings.muted; return OnOff("sound", !settings.muted);
        case Control::quieter: return ChangeVolume(settings, -0.1F);
        case Control::louder: return ChangeVolume(settings, 0.1F);
        default: return std::nullopt;
    }
}

std::string LookText(const Look& look) {
    if (!look.enhanced) return "not enhanced";
    std::string text = "enhanced, " + SharpnessText(look.sharpness);
    if (look.lighting) text += ", lighting";
    if (look.noise) text += ", noise";
    if (look.caption) text += ", caption";
    if (look.split > 0) text += ", " + Percent("split at", look.split);
    return text;
}

}  // namespace clarivex
