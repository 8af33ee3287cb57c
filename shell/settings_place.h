// Where each kind of media object keeps its user's settings.
#pragma once

namespace clarivex {

/// A key of the current user in the registry, on a system that has one.
///
/// keepsSizeLimits  whether it is read there too that pictures of every size are enhanced
struct SettingsPlace {
    const char* key = nullptr;
    bool keepsSizeLimits = false;
};

inline constexpr SettingsPlace playersSettings = {R"(Software\Tessel Works\Clarivex WMP)"};
inline constexpr SettingsPlace effectsSettings = {R"(Software\Tessel Works\Clarivex Video)", true};

}  // namespace clarivex
