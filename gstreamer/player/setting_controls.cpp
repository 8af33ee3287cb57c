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
std::string ToggleSplit(PlaySettings& settings) {
    settings.split = settings.split > 0 ? 0.0F : 0.5F;
    if (settings.split <= 0) return "split view off";
    settings.enhanced = true;
    return "split view on: plain on the left, enhanced on the right";
}

std::string MoveSplit(PlaySettings& settings, float step) {
    if (settings.split <= 0) return ToggleSplit(settings);
    Step(settings.split, step, 1);
    settings.split = std::max(settings.split, std::abs(step));  // 0 is no split view
    return Percent("split at", settings.split);
}

std::string ChangeSharpness(PlaySettings& settings, float step) {
    Step(settings.sharpness, step, largestSharpness);
    return SharpnessText(settings.sharpness);
}

std::string ChangeVolume(PlaySettings& settings, float step) {
    Step(settings.volume, step, 1);
    return Percent("volume", settings.volume);
}

}  // namespace

std::optional<std::string> ChangeSetting(Control control, PlaySettings& settings) {
    switch (control) {
        case Control::enhance: return Toggle("enhancement", settings.enhanced);
        case Control::split: return ToggleSplit(settings);
        case Control::splitLeft: return MoveSplit(settings, -0.05F);
        case Control::splitRight: return MoveSplit(settings, 0.05F);
        case Control::softer: return ChangeSharpness(settings, -0.1F);
        case Control::sharper: return ChangeSharpness(settings, 0.1F);
        case Control::lighting: return Toggle("lighting", settings.lighting);
        case Control::noise: return Toggle("noise", settings.noise);
        case Control::caption: return Toggle("caption", settings.caption);
        case Control::mute: settings.muted = !settings.muted; return OnOff("sound", !settings.muted);
        case Control::quieter: return ChangeVolume(settings, -0.1F);
        case Control::louder: return ChangeVolume(settings, 0.1F);
        default: return std::nullopt;
    }
}

std::string SettingsText(const PlaySettings& settings) {
    if (!settings.enhanced) return "not enhanced";
    std::string text = "enhanced, " + SharpnessText(settings.sharpness);
    if (settings.lighting) text += ", lighting";
    if (settings.noise) text += ", noise";
    if (settings.caption) text += ", caption";
    if (settings.split > 0) text += ", " + Percent("split at", settings.split);
    return text;
}

}  // namespace clarivex
