// What the property page decides: where its sliders stand, what counts as a change, what the user is told and what is
// stored. Needs no window.
#pragma once

#include <cstdint>

#include "runtime/short_string.h"
#include "shell/plugin_settings.h"

namespace clarivex {

/// What the user chooses on the page; at first what a media object starts with.
struct PageChoices {
    float sharpness = 1.0F;  ///< 0 … 2
    uint32_t mode = modeAuto;
    bool bypassHd = true;
    bool enableLighting = true;
};

/// Last positions of the two sliders; the first is 0.
constexpr int32_t edgeTicks = 4;  ///< "Soft", 0 being "Hard"
constexpr int32_t modeTicks = 2;  ///< "Always", 0 being "Never"

struct SliderPositions {
    int32_t edge = 0;
    int32_t mode = 0;
};

/// Where the sliders are put for these choices. Values that the page does not offer give positions beyond the sliders'
/// ends, where a slider stops.
SliderPositions PositionsFor(const PageChoices& choices);

/// Whether sliders at `positions` make the page dirty.
///
/// known  the choices as they were shown or applied last
/// edge   the position counts from "Hard", the sharpness from "Soft", and the two are compared as they are: the middle is
///        no change from 1.0, while a slider that rests elsewhere may count as changed. Kept so that hosts are told of a
///        change when they were in earlier releases; at worst one is stored that is none.
bool CountsAsChanged(const PageChoices& known, const SliderPositions& positions);

/// What the page's controls mean.
PageChoices ChoicesAt(const SliderPositions& positions, bool bypassHd, bool enableLighting);

/// Which choices a user has touched on a page.
struct TouchedChoices {
    bool sharpness = false;
    bool mode = false;
    bool bypassHd = false;
    bool enableLighting = false;

    /// Adds those in which the controls now say something else than when the page opened. What was touched stays so,
    /// also when it says the old thing again.
    void Note(const PageChoices& atFirst, const PageChoices& now);
};

constexpr TouchedChoices allTouched = {true, true, true, true};

/// Takes over what was touched, and only that, into the settings that are to be saved.
void Merge(const PageChoices& chosen, const TouchedChoices& touched, PluginSettings& settings);

/// The choices that settings stand for.
PageChoices ChoicesIn(const PluginSettings& settings);

/// The heading that tells whether the running stream is enlarged.
const char* TitleFor(bool scalingActive);

/// What a media object uses while the page is open.
struct SettingsInUse {
    uint32_t mode = modeAuto;
    bool allowHd = false;
};

inline constexpr char applyMessageCaption[] = "Clarivex Plugin";

/// What the user is told when a media object gets new choices; empty when they work at once.
ShortString ApplyMessage(const SettingsInUse& before, const PageChoices& chosen);

/// The scale factor as the page shows it, and back: 1.0 for what is no number.
ShortString ScaleFactorText(double scaleFactor);
double ScaleFactorIn(const char* text);

}  // namespace clarivex
