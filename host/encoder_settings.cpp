#include "host/encoder_settings.h"

#include <algorithm>

namespace clarivex {

namespace {

// clang-format off
constexpr std::array<UsualSettings, 8> usualSettings = {{
    {"libx264",    "18", {{{"preset", "medium"}}}},
    {"libx265",    "20", {{{"preset", "medium"}, {"x265-params", "log-level=none"}}}},  // it would write to the terminal
    {"libvpx",     "10", {{{"b", "20M"}, {"cpu-used", "2"}}}},  // its quality holds below a rate
    {"libvpx-vp9", "24", {{{"b", "0"}, {"row-mt", "1"}, {"cpu-used", "2"}}}},
    {"libaom-av1", "24", {{{"b", "0"}, {"row-mt", "1"}, {"cpu-used", "6"}}}},
    {"libsvtav1",  "24", {}},
    {"libtheora",  "8",  {}},
    {"ffv1",       nullptr, {{{"level", "3"}, {"g", "1"}, {"slicecrc", "1"}}}},
}};
// clang-format on

constexpr UsualSettings ofOthers = {{}, "3", {}};

}  // namespace

const UsualSettings& UsualSettingsOf(std::string_view encoder) {
    const auto* const found = std::ranges::find(usualSettings, encoder, &UsualSettings::encoder);
    return found == usualSettings.end() ? ofOthers : *found;
}

}  // namespace clarivex
